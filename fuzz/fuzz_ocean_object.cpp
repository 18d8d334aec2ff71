// The sea built from a hostile ocean file, brought to a frame and asked for
// heights, slopes and ray hits. Files that would make the run end on
// purpose (an exit with its message) or take minutes are left out: grids of
// more than 64 by 64 nodes, spacings below a centimetre, distances beyond
// ten kilometres, imported grid files, stored spectra (every lattice is
// generated from its seed instead) and more than a hundred walls.
#include <stdlib.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "TCDisturbed_grid.h"
#include "TCGrid_details_input.h"
#include "TCOcean.h"
#include "TCRay.h"
#include "ocean_input.h"
#include "quiet_streams.h"

namespace {

std::string folder;

void remove_folder() {
  std::error_code ignored;
  if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
}

int small_lattice(const TCGrid_details_input& grid) {
  return grid.n_x >= 2 && grid.n_y >= 1 && grid.n_x <= 64 && grid.n_y <= 64 &&
         std::isfinite(grid.dx) && std::isfinite(grid.dy) && std::fabs(grid.dx) >= 0.01 &&
         std::fabs(grid.dy) >= 0.01 && std::fabs(grid.dx) <= 1000.0 && std::fabs(grid.dy) <= 1000.0;
}

// Each lattice generates its own spectrum file, under a name of its own, from
// a seed that generates (one whose low 16 bits are not all 0).
void generate(TCGrid_details_input& grid, const char* name) {
  grid.generate_file = 1;
  if ((grid.random_seed & 0xffff) == 0) grid.random_seed += 1;
  std::snprintf(grid.spectrum_file, sizeof(grid.spectrum_file), "%s", name);
}

int buildable(ocean_input& input) {
  if (!small_lattice(input.primary_grid) || input.primary_grid.n_y < 2) return 0;
  if (input.number_aux_oceans == 1 && !small_lattice(input.secondary_grid)) return 0;
  if (input.n_disturbances > 100) return 0;
  if (!(std::fabs(input.max_distance) <= 10000.0) || !(std::fabs(input.box_depth) <= 10000.0) ||
      !(std::fabs(input.doubling_distance) <= 10000.0) ||
      (input.round_surface && !(input.surface_radius > 1.0)))
    return 0;
  generate(input.primary_grid, "spectrum.primary");
  generate(input.secondary_grid, "spectrum.secondary");
  for (int i = 0; i < input.n_disturbances; i++) {
    TCGrid_details_input* record = input.disturbance(i);
    if (record == nullptr) continue;
    const int code = record->field_code;
    if (code == TCOcean::code_height_grid || code == TCOcean::code_multiplier_grid) return 0;
    if (code != TCOcean::code_wall && code != 0 && !small_lattice(*record)) return 0;
    char name[32];
    std::snprintf(name, sizeof(name), "spectrum.%d", i);
    generate(*record, name);
  }
  return 1;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  char pattern[] = "/tmp/tc_fuzz_sea_XXXXXX";
  const char* made = mkdtemp(pattern);
  if (made == nullptr || chdir(made) != 0) std::abort();
  folder = made;
  std::atexit(remove_folder);
  std::ofstream("wind") << "number_of_times: 2\ntime speed direction\n0 5 30\n60 7.5 45\n";
  std::ofstream("sharp") << "number_of_angles: 1\nangle sharpness\n10 2\n";
  std::ofstream("swelldetail") << "swell_height: 0.5\nswell_wavelenth: 40\nlong_spread: 0.1\n"
                                  "trans_spread: 0.2\ndirection: 60\nrandom_seed: 7\nend\n";
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = text_of(data, size);
  if (text.find('/') != std::string::npos) return 0;
  ocean_input input;
  std::istringstream in(text);
  if (!input.read(in)) return 0;
  if (!buildable(input)) return 0;
  TCOcean ocean(input);
  if (!ocean.construct(input)) return 0;
  ocean.update_to_time(0.5);
  ocean.prepare_frame();
  double sum = 0.0;
  for (int k = 0; k < 16; k++) {
    const double x = -40.0 + 5.3 * k, y = 17.0 - 3.1 * k;
    double dzdx = 0.0, dzdy = 0.0;
    sum += ocean.surface_height(x, y);
    ocean.surface_slope(x, y, dzdx, dzdy);
    sum += dzdx + dzdy;
    TCVector hit;
    double distance = 0.0;
    const TCVector down(std::cos(0.3 * k), std::sin(0.3 * k), -0.05 - 0.06 * k);
    const double length = std::sqrt(down.dot(down));
    ocean.ray_intersection(TCRay(TCVector(x, y, 5.0), down * (1.0 / length)), hit, distance);
    sum += distance;
  }
  // Keeps the work from being optimised away.
  if (sum == 12345.678) std::abort();
  return 0;
}
