#ifndef TC_BENCH_ENGINE_SCRATCH_H
#define TC_BENCH_ENGINE_SCRATCH_H

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "TCEngine.h"

// The sun of the frame benchmarks: three bands of irradiance 10, 12, 13.
inline const char* bench_sun_text() {
  return "Tidecast_data_file sun 1 1\nposition_method_flag 0\nnumber_of_bands 3\n"
         "band_id 1 2 3\nirradiance 10 12 13\nend\n";
}

// A three-band camera of width by 9/16 width pixels over the given field of
// view (degrees), no mattes.
inline std::string bench_camera_text(int width, double fov_azimuth, double fov_elevation) {
  std::ostringstream out;
  out << "Tidecast_data_file camera 3 3\nn_pixel_azimuth " << width << "\nn_pixel_elevation "
      << width * 9 / 16 << "\nfov_azimuth " << fov_azimuth << "\nfov_elevation " << fov_elevation
      << "\nimage_method 1\npicture_fraction_flag 0\n"
         "n_sub_azimuth 1\nn_sub_elevation 1\nnumber_of_bands 3\nband_id 1 2 3\nanti_alias 0\n"
         "efficiency_matte 0\nimage_slices 1\nimage_format img\nend\nuse_mattes: 0\n";
  return out.str();
}

// A scratch folder the engine runs in: the benchmark writes its scene files
// there, runs the engine on scene.dat once an iteration with its standard
// output swallowed, and the folder goes with everything in it.
class Engine_scratch {
 public:
  Engine_scratch() {
    char pattern[] = "/tmp/tc_bench_XXXXXX";
    const char* made = mkdtemp(pattern);
    if (made == nullptr) std::abort();
    folder_ = made;
    char here[4096];
    old_ = getcwd(here, sizeof(here)) ? here : "";
    if (chdir(folder_.c_str()) != 0) std::abort();
  }
  ~Engine_scratch() {
    if (!old_.empty() && chdir(old_.c_str()) != 0) std::abort();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  void write(const char* name, const std::string& text) { std::ofstream(name) << text; }

  // Runs the engine once an iteration, then sets the counters peak_MB (the
  // process's peak resident size so far) and pixels.
  void run(benchmark::State& state, double pixels) {
    char program[] = "TCEngine";
    char scene[] = "scene.dat";
    char* argv[] = {program, scene, nullptr};
    std::streambuf* kept = std::cout.rdbuf();
    std::ostringstream quiet;
    for (auto _ : state) {
      std::cout.rdbuf(quiet.rdbuf());
      engine_main(2, argv);
      std::cout.rdbuf(kept);
      quiet.str("");
    }
    struct rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_MB"] = usage.ru_maxrss / 1024.0;
    state.counters["pixels"] = pixels;
  }

 private:
  std::string folder_;
  std::string old_;

  Engine_scratch(const Engine_scratch&);
  Engine_scratch& operator=(const Engine_scratch&);
};

#endif
