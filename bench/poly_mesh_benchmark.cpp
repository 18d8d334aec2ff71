// Imaging a polygon object of about 100 000 triangles into a 1920 by 1080
// picture: a rolling 222 by 222 grid of quads, each cut into two triangles,
// 200 m across, seen from 60 m up and 150 m off, filling most of the
// picture. The mesh is read once (from an OBJ file written into a scratch
// folder); each iteration images it. Times are the process's CPU time.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "TCPoly_object.h"
#include "TCPoly_object_input.h"
#include "TCSpectrum.h"
#include "TCView.h"
#include "object_contour.h"

namespace {

// The OBJ reader takes at most 50 000 vertices, and 50 000 faces a surface.
const int cells = 222;

std::string grid_obj() {
  std::ostringstream out;
  out << "o terrain\n";
  for (int j = 0; j <= cells; j++) {
    for (int i = 0; i <= cells; i++) {
      const double x = -100.0 + 200.0 * i / cells, y = -100.0 + 200.0 * j / cells;
      const double z = 3.0 * std::sin(x * 0.07) * std::cos(y * 0.05);
      out << "v " << x << " " << y << " " << z << "\n";
    }
  }
  for (int j = 0; j < cells; j++) {
    // A new surface every 100 rows keeps each under the reader's limit.
    if (j % 100 == 0) out << "usemtl ground" << j / 100 << "\n";
    for (int i = 0; i < cells; i++) {
      const int a = 1 + i + (cells + 1) * j, b = a + 1, c = b + cells + 1, d = a + cells + 1;
      out << "f " << a << " " << b << " " << c << "\nf " << a << " " << c << " " << d << "\n";
    }
  }
  return out.str();
}

void BM_PolyMeshImage(benchmark::State& state) {
  char pattern[] = "/tmp/tc_mesh_XXXXXX";
  const std::string folder = mkdtemp(pattern);
  std::ofstream(folder + "/terrain.obj") << grid_obj();
  std::ofstream(folder + "/terrain.objects")
      << "Tidecast_data_file poly 3 3\nscale_flag: 0\nimage_flag: all\nimage_level: 0\n"
         "object_file_type: obj\nobj_file: "
      << folder
      << "/terrain.obj\nobj_scale: 1 1 1\nobj_offset: 0 0 0\nmodify_surfaces: 0\n"
         "number_ordered: 0\nend\n";
  std::streambuf* kept_out = std::cout.rdbuf();
  std::streambuf* kept_err = std::cerr.rdbuf();
  std::ostringstream quiet;
  std::cout.rdbuf(quiet.rdbuf());
  std::cerr.rdbuf(quiet.rdbuf());
  TCPoly_object_input input;
  if (!input.read_objects_file((folder + "/terrain.objects").c_str())) std::abort();
  TCPoly_object object(input);
  std::cout.rdbuf(kept_out);
  std::cerr.rdbuf(kept_err);
  TCView view;
  view.set_pose(TCVector(-150.0, 0.0, 60.0), 1.9, 0.0, 0.0);
  const double half_a = std::tan(35.0 * 0.017453292519444445);
  const double half_e = half_a * 1080.0 / 1920.0;
  view.set_grid(1080, -half_e, half_e, 1920, -half_a, half_a);
  TCSpectrum three(3);
  for (int b = 0; b < 3; b++) three.band_id[b] = b + 1;
  object_contour contour(1080, 1920, &three, 0.0f, 0, nullptr, nullptr);
  double covered = 0.0;
  for (auto _ : state) {
    contour.reset();
    object.image_contour(view, contour);
    state.PauseTiming();
    covered = 0.0;
    for (int row = 0; row < 1080; row++)
      for (int col = 0; col < 1920; col++) covered += contour.layer_coverage[row][col];
    state.ResumeTiming();
  }
  state.counters["triangles"] = 2.0 * cells * cells;
  state.counters["covered_pixels"] = covered;
  std::remove((folder + "/terrain.obj").c_str());
  std::remove((folder + "/terrain.objects").c_str());
  rmdir(folder.c_str());
}
BENCHMARK(BM_PolyMeshImage)->Unit(benchmark::kSecond)->Iterations(3)->MeasureProcessCPUTime();

}  // namespace

BENCHMARK_MAIN();
