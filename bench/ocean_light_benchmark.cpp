// What the sea's light costs: filling one level's radiance and reflection
// tables, and one pixel of surface_radiance by the tables alone and by the
// exact path through a scene with a box in the mirror. Times are the
// thread's CPU time, so other work on a shared machine counts less.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Solid_box_input.h"
#include "TCBand.h"
#include "TCObject_list.h"
#include "TCOcean.h"
#include "TCSettings.h"
#include "TCSolid_Box.h"
#include "TCWave_spectrum.h"
#include "ocean_input.h"

namespace {

std::string sea_text(int bands, int exact) {
  std::ostringstream ids, indices, optics;
  for (int b = 0; b < bands; b++) {
    ids << " " << b + 1;
    indices << " 1.34";
  }
  const char* five[5] = {"a:", "b:", "c:", "k:", "refl:"};
  for (int r = 0; r < 5; r++) {
    optics << five[r];
    for (int b = 0; b < bands; b++) optics << " 0.05";
    optics << "\n";
  }
  std::string coupling = exact ? "external_exact:  yes\nmax_exact_distance:  400\n"
                                 "exact_sharpening_factor:  1\ninclude:  above\n"
                                 "reflection_method:  averaged\nshadow_method:  no\n"
                               : "external_exact:  no\n";
  return "Tidecast_data_file ocean 5 5\n"
         "n_points_x 64 1\nn_points_y 64 1\ndx 1\ndy 1\n"
         "spectrum_file: bench.spectrum\ngenerate_file:  yes\nrandom_seed 5\nend\n"
         "number_aux_oceans  0\nnumber_disturbances  0\n"
         "box_depth  20\nreference_time  0\nsurface_type:  flat\nmax_distance  2000\n"
         "doubling_distance  50\nvariable_wind:  no\nwind_direction:  0\nwind_velocity:  7\n"
         "ocean_spectrum_type:  phillips_smoothed\njerlov_water_type:  0\n" +
         coupling +
         "glitter:  yes\nwhitecaps: no\ntexture_maps:  no\nsunbeams:  no\nexclude_items:   no\n"
         "number_of_bands:  " +
         std::to_string(bands) + "\nband_ids: " + ids.str() +
         "\nindex_of_refraction: " + indices.str() + "\n" + optics.str() + "end\n";
}

// A sea built in a scratch folder, with the output of building it kept
// off the benchmark's report.
struct Bench_sea {
  explicit Bench_sea(int bands, int exact) {
    char pattern[] = "/tmp/tc_bench_XXXXXX";
    folder = mkdtemp(pattern);
    char here[4096];
    old = getcwd(here, sizeof(here)) ? here : "";
    if (chdir(folder.c_str()) != 0) std::abort();
    std::ofstream(folder + "/sea.ocean") << sea_text(bands, exact);
    std::streambuf* kept = std::cout.rdbuf();
    std::ostringstream quiet;
    std::cout.rdbuf(quiet.rdbuf());
    verbose = 0;
    if (!input.read_file("sea.ocean")) std::abort();
    ocean = new TCOcean(input);
    if (!ocean->construct(input)) std::abort();
    ocean->update_to_time(0.0);
    std::cout.rdbuf(kept);
  }
  ~Bench_sea() {
    delete ocean;
    if (!old.empty() && chdir(old.c_str()) != 0) std::abort();
    std::remove((folder + "/bench.spectrum").c_str());
    std::remove((folder + "/sea.ocean").c_str());
    rmdir(folder.c_str());
  }
  std::string folder, old;
  ocean_input input;
  TCOcean* ocean = nullptr;
};

// Sky light that varies with direction, so that lookups touch real values.
void fill_sky(TCOcean& ocean) {
  for (int band = 0; band < ocean.n_bands; band++) {
    for (int i = 0; i < ocean.fresnel_axis_n; i++) {
      const double z = -1.0 + i * 0.01;
      ocean.external_radiance_mean[band * ocean.fresnel_axis_n + i] =
          z > 0.0 ? 1.0 + 3.0 * z * z : 0.1;
    }
    ocean.upwelling[band] = 0.02;
  }
}

void BM_TableFillPerLevelAndSide(benchmark::State& state) {
  Bench_sea sea(1, 0);
  TCOcean& ocean = *sea.ocean;
  fill_sky(ocean);
  const int side = state.range(0) == 0 ? 1 : -1;
  std::streambuf* kept = std::cout.rdbuf();
  std::ostringstream quiet;
  std::cout.rdbuf(quiet.rdbuf());
  for (auto _ : state) {
    ocean.table_level = 1;
    ocean.table_done[side == 1 ? 0 : 1][1] = 0;
    ocean.make_tables(side);
  }
  std::cout.rdbuf(kept);
  state.SetLabel(side == 1 ? "above, 16x15x9 cells" : "below, 16x15x36 cells");
}
BENCHMARK(BM_TableFillPerLevelAndSide)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

void BM_PixelByTables(benchmark::State& state) {
  Bench_sea sea(static_cast<int>(state.range(0)), 0);
  TCOcean& ocean = *sea.ocean;
  fill_sky(ocean);
  ocean.sun_direction_local = TCVector(0.3, 0.2, std::sqrt(1.0 - 0.13));
  for (int b = 0; b < ocean.n_bands; b++) ocean.sun_irradiance[b] = 1000.0f;
  ocean.table_level = 1;
  std::streambuf* kept = std::cout.rdbuf();
  std::ostringstream quiet;
  std::cout.rdbuf(quiet.rdbuf());
  ocean.make_tables(1);
  std::cout.rdbuf(kept);
  TCSpectrum spectrum(ocean.n_bands);
  for (int b = 0; b < ocean.n_bands; b++) spectrum.band_id[b] = b + 1;
  std::vector<float> mattes(static_cast<size_t>(40 * ocean.n_bands), 0.0f);
  long k = 0;
  for (auto _ : state) {
    const double a = 0.001 * (k % 1000), tilt = 0.0002 * (k % 500);
    TCVector normal(tilt * std::cos(a), tilt * std::sin(a), 1.0);
    normal = normal * (1.0 / std::sqrt(normal.dot(normal)));
    const TCVector down(0.8 * std::cos(a), 0.8 * std::sin(a), -0.6);
    ocean.surface_radiance(TCRay(TCVector(0, 0, 10), down), TCVector(0, 0, 0), normal, spectrum, 1,
                           mattes.data(), 0.5);
    benchmark::DoNotOptimize(spectrum.radiance_in_band[0]);
    k++;
  }
  state.SetLabel(std::to_string(state.range(0)) + " band(s)");
}
BENCHMARK(BM_PixelByTables)->Arg(1)->Arg(3)->MeasureProcessCPUTime();

void BM_PixelByTheExactPath(benchmark::State& state) {
  Bench_sea sea(1, 1);
  TCObject_list list;
  TCBand band;
  band.band_id = 1;
  band.center_wavelength = 0.55;
  band.width = 0.1;
  list.set_bands(1, &band);
  TCOcean* ocean = sea.ocean;
  sea.ocean = nullptr;
  list.add_runtime_object(ocean);
  Solid_box_input box_input;
  box_input.length = TCVector(40.0, 2.0, 40.0);
  box_input.allocate_bands(1);
  box_input.band_ids.band_id[0] = 1;
  box_input.band_ids.radiance_in_band[0] = 10.0;
  box_input.reflectivity[0] = 0.0;
  box_input.transmissivity[0] = 0.0;
  TCSolid_Box* box = new TCSolid_Box(box_input);
  box->set_position(TCVector(0.0, 20.0, 20.0), 0.0, 0.0, 0.0);
  list.add_runtime_object(box);
  std::streambuf* kept = std::cout.rdbuf();
  std::ostringstream quiet;
  std::cout.rdbuf(quiet.rdbuf());
  ocean->prepare_frame();
  fill_sky(*ocean);
  ocean->table_level = 1;
  ocean->make_tables(1);
  std::cout.rdbuf(kept);
  TCSpectrum spectrum(1);
  std::vector<float> mattes(40, 0.0f);
  const TCVector down = TCVector(0.0, 10.0, -10.0) * (1.0 / std::sqrt(200.0));
  TCVector point;
  ocean->point_to_box(TCVector(0.0, 0.0, 0.0), point);
  for (auto _ : state) {
    ocean->surface_radiance(TCRay(TCVector(0.0, -10.0, 10.0), down), point, TCVector(0.0, 0.0, 1.0),
                            spectrum, 1, mattes.data(), 0.01);
    benchmark::DoNotOptimize(mattes[5]);
  }
  state.SetLabel("mirror cone into a box");
}
BENCHMARK(BM_PixelByTheExactPath)->MeasureProcessCPUTime();

}  // namespace

BENCHMARK_MAIN();
