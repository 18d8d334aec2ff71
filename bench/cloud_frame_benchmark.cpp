// A whole frame through a cloud, as TCEngine renders it: a 128^3 lattice of
// liquid water (8 m apart across, 6 m up: 1 km wide, 760 m tall) made of
// overlapping round turrets, lit by a sun 15 degrees up, in a clear
// round-earth sky, seen from 2.5 km so that it fills most of the picture.
// Arguments: the picture's width (height 9/16 of it) and the lattice's
// size along each axis. Each iteration runs the engine on the files in a
// scratch folder, from reading them to writing the image; times are CPU
// times of the process.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "TCLattice_file.h"
#include "engine_scratch.h"

namespace {

const char* scene_text =
    "Tidecast_data_file scene 2 2\n"
    "output_file: cloud\noutput_format: -b-C-c-f-.-t-\n"
    "number_of_bands: 3\nwidth center_wavelength band_id\n"
    "1 0.65 0.1\n2 0.55 0.1\n3 0.45 0.1\n"
    "sun_flag: 1\nnumber_of_times 1\ntime theta phi\n0 75 40\ndata_file: sun.dat\n"
    "number_of_objects: 2\n"
    "number_of_times 1\ntime x y z chi phi theta\n0 0 0 0 0 0 0\n"
    "object_name: air\nobject_type: air\nobject_file: sky.air\npriority: 1.0\n"
    "number_of_times 1\ntime x y z chi phi theta\n0 2500 0 900 0 0 0\n"
    "object_name: cumulus\nobject_type: cloud\nobject_file: cumulus.cloud\npriority: 3.0\n"
    "number_of_cameras: 1\n"
    "number_of_times 1\ntime x y z chi phi theta\n0 0 0 300 80 0 0\n"
    "object_type: camera\nobject_file: view.cam\n"
    "number_of_frames: 1\ntod_flag: 0\nframe_number time\n1 0.0\nend\n"
    "first_frame: 1\nlast_frame: 1\nincrement: 1\n";

const char* air_text =
    "Tidecast_data_file air 2 2\nnumber_of_bands 3\nband_id  1 2 3\nair_type: haze\n"
    "surface_shape round\nsurface_radius 6371000\nmolecular_height 1\nmolecular_density 1\n"
    "molecular_wavelength_dependence:  4.1\naerosol_height 1\naerosol_density 0.3\n"
    "aerosol_scattering_strength:  1  1  1\naerosol_scattering_width:  0.7  0.7  0.7\n"
    "sun_max_radiance 4\nend\n";

std::string cloud_text(int n) {
  std::ostringstream out;
  out << "Tidecast_data_file cloud  1 1\nTidecast_data_file volume 1 1\n"
      << "number_points_x: " << n << "\nnumber_points_y: " << n << "\nnumber_points_z: " << n
      << "\nlattice_spacing_x: " << 1016.0 / (n - 1) << "\nlattice_spacing_y: " << 1016.0 / (n - 1)
      << "\nlattice_spacing_z: " << 762.0 / (n - 1)
      << "\nnumber_of_bands 3\nband_id  1 2 3\nabsorption:  0.00001 0.00001 0.00001\n"
         "scattering:  0.15 0.15 0.15\nextinction:  0.05 0.05 0.05\n"
         "phase_function_file: phase.dat\nthreshold_density: 0\nscattering_method: multiple\n"
         "integration_scale: 1\ntransmission_cutoff: 0.0001\nsubdivide_threshold: 0\nend\n"
         "density_file: binary cumulus.lwc\nsmall_scale_fluctuations:  no\nend\n";
  return out.str();
}

// Henyey-Greenstein, g = 0.8, per steradian, three bands.
void write_phase_file() {
  std::ofstream out("phase.dat");
  for (int band = 1; band <= 3; band++) {
    out << band << "\n";
    for (int degree = 0; degree <= 180; degree++) {
      const double g = 0.8, mu = std::cos(degree * 3.1415926535 / 180.0);
      out << degree << " "
          << (1 - g * g) / (4 * 3.1415926535 * std::pow(1 + g * g - 2 * g * mu, 1.5)) << "\n";
    }
  }
}

// Round turrets on a broad base: water up to 0.6 g/m^3 in the middle of each.
void write_cloud(int n) {
  std::vector<float> lwc(static_cast<size_t>(n) * n * n, 0.0f);
  const double turrets[][4] = {{0, 0, -150, 330},   {-200, 120, -100, 230}, {180, -90, -60, 250},
                               {60, 200, 60, 200},  {-120, -180, 20, 210},  {0, 0, 120, 220},
                               {-60, 40, 250, 150}, {120, 60, 200, 140}};
  for (int k = 0; k < n; k++) {
    for (int j = 0; j < n; j++) {
      for (int i = 0; i < n; i++) {
        const double x = -508.0 + i * 1016.0 / (n - 1), y = -508.0 + j * 1016.0 / (n - 1);
        const double z = -381.0 + k * 762.0 / (n - 1);
        double inside = -1.0;
        for (const auto& t : turrets) {
          const double d = std::sqrt((x - t[0]) * (x - t[0]) + (y - t[1]) * (y - t[1]) +
                                     (z - t[2]) * (z - t[2]));
          inside = std::max(inside, 1.0 - d / t[3]);
        }
        const double base = z < -330 ? 0.0 : 1.0;
        const double value = 0.6 * std::min(1.0, std::max(0.0, inside / 0.2)) * base;
        lwc[i + static_cast<size_t>(n) * (j + static_cast<size_t>(n) * k)] =
            static_cast<float>(value);
      }
    }
  }
  TCLattice_file::write("cumulus.lwc", n, n, n, lwc.data());
}

void BM_CloudFrame(benchmark::State& state) {
  const int width = static_cast<int>(state.range(0));
  const int lattice = static_cast<int>(state.range(1));
  Engine_scratch scratch;
  scratch.write("scene.dat", scene_text);
  scratch.write("sun.dat", bench_sun_text());
  scratch.write("sky.air", air_text);
  scratch.write("view.cam", bench_camera_text(width, 40, 22.5));
  scratch.write("cumulus.cloud", cloud_text(lattice));
  write_phase_file();
  write_cloud(lattice);
  scratch.run(state, static_cast<double>(width) * (width * 9 / 16));
}
BENCHMARK(BM_CloudFrame)
    ->Args({480, 128})
    ->Args({960, 128})
    ->Args({1920, 64})
    ->Args({1920, 128})
    ->Iterations(1)
    ->Unit(benchmark::kSecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
