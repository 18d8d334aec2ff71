// A whole frame of the sea, as TCEngine renders it: a wind sea under a clear
// round-earth sky with the sun ahead, glitter and the sky tables on, three
// bands, one camera 5 m up looking across to the horizon. Arguments: the
// picture's width (height 9/16 of it) and the lattice's size. Each
// iteration runs the engine on the scene files in a scratch folder, from
// reading them to writing the image; times are CPU times of the process.
// Counter peak_MB is the process's peak resident size so far, so run the
// largest case alone to read its own peak.

#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

#include "engine_scratch.h"

namespace {

const char* scene_text =
    "Tidecast_data_file scene 2 2\n"
    "output_file: sea\noutput_format: -b-C-c-f-.-t-\n"
    "number_of_bands: 3\nwidth center_wavelength band_id\n"
    "1 0.65 0.1\n2 0.55 0.1\n3 0.45 0.1\n"
    "sun_flag: 1\nnumber_of_times 1\ntime theta phi\n0 70 0\ndata_file: sun.dat\n"
    "number_of_objects: 2\n"
    "number_of_times 1\ntime x y z chi phi theta\n0 0 0 0 0 0 0\n"
    "object_name: air\nobject_type: air\nobject_file: sky.air\npriority: 1.0\n"
    "number_of_times 1\ntime x y z chi phi theta\n0 0 0 0 0 0 0\n"
    "object_name: sea\nobject_type: ocean\nobject_file: sea.ocean\npriority: 2.0\n"
    "number_of_cameras: 1\n"
    "number_of_times 1\ntime x y z chi phi theta\n0 0 0 5 95 0 0\n"
    "object_type: camera\nobject_file: view.cam\n"
    "number_of_frames: 1\ntod_flag: 0\nframe_number time\n1 0.0\nend\n"
    "first_frame: 1\nlast_frame: 1\nincrement: 1\n";

const char* air_text =
    "Tidecast_data_file air 2 2\nnumber_of_bands 3\nband_id  1 2 3\nair_type: haze\n"
    "surface_shape round\nsurface_radius 6371000\nmolecular_height 1\nmolecular_density 1\n"
    "molecular_wavelength_dependence:  4.1\naerosol_height 1\naerosol_density 1\n"
    "aerosol_scattering_strength:  1  1  1\naerosol_scattering_width:  0.7  0.7  0.7\n"
    "sun_max_radiance 4\nend\n";

std::string ocean_text(int lattice) {
  std::ostringstream out;
  out << "Tidecast_data_file ocean 5 5\nn_points_x " << lattice << " 1\nn_points_y " << lattice
      << " 1\ndx 1\ndy 1\nspectrum_file: sea.spectrum\ngenerate_file:  yes\nrandom_seed 5\n"
         "end\nnumber_aux_oceans  0\nnumber_disturbances  0\nbox_depth  25\n"
         "reference_time  0\nsurface_type:  round\nsurface_radius  6371000\n"
         "max_distance  20000\ndoubling_distance  64\nvariable_wind:  no\n"
         "wind_direction:  30\nwind_velocity:  8\nocean_spectrum_type:  phillips_smoothed\n"
         "jerlov_water_type:  0\nexternal_exact:  no\nglitter:  yes\nwhitecaps: no\n"
         "texture_maps:  no\nsunbeams:  no\nexclude_items:   no\nnumber_of_bands:  3\n"
         "band_ids:  1 2 3\nindex_of_refraction:  1.34 1.34 1.34\na: 0.065 0.065 0.065\n"
         "b: 0.002 0.002 0.002\nc: 0.067 0.067 0.067\nk: 0.07 0.07 0.07\n"
         "refl: 0.02 0.02 0.02\nend\n";
  return out.str();
}

void BM_SeaFrame(benchmark::State& state) {
  const int width = static_cast<int>(state.range(0));
  const int lattice = static_cast<int>(state.range(1));
  Engine_scratch scratch;
  scratch.write("scene.dat", scene_text);
  scratch.write("sun.dat", bench_sun_text());
  scratch.write("sky.air", air_text);
  scratch.write("view.cam", bench_camera_text(width, 60, 35));
  scratch.write("sea.ocean", ocean_text(lattice));
  scratch.run(state, static_cast<double>(width) * (width * 9 / 16));
}
BENCHMARK(BM_SeaFrame)
    ->Args({480, 1024})
    ->Args({960, 1024})
    ->Args({1920, 256})
    ->Args({1920, 512})
    ->Args({1920, 1024})
    ->Iterations(1)
    ->Unit(benchmark::kSecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
