// A sea whose only wave is one swell component read from a spectrum file:
// its lattice must hold a pure cosine along x, and rays must find that
// surface where a hand calculation of the piecewise-linear surface puts it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "TCDisturbed_grid.h"
#include "TCOcean.h"
#include "TCRay.h"
#include "TCSettings.h"
#include "TCVector.h"
#include "ocean_input.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

const int swell_n = 32;
const double swell_dx = 4.0;
const int swell_column = 4;  // wavelength 32 m: 4 cycles over the 128 m lattice

// Four bytes in the file's order: swapped when the process swaps.
void put_word(std::ofstream& out, const void* value) {
  const unsigned char* bytes = static_cast<const unsigned char*>(value);
  if (swap_bytes) {
    for (int i = 3; i >= 0; i--) out.put(static_cast<char>(bytes[i]));
  } else {
    for (int i = 0; i < 4; i++) out.put(static_cast<char>(bytes[i]));
  }
}

// One element of the generator's modulus, sqrt of a cell's area in
// wavenumber (1/128 per metre here), at column swell_column of row 0.
void write_single_component(const std::string& path) {
  std::ofstream out(path.c_str(), std::ios::binary);
  const int32_t n_kx = swell_n / 2 + 1, n_ky = swell_n;
  put_word(out, &n_kx);
  put_word(out, &n_ky);
  for (int j = 0; j < n_ky; j++) {
    for (int i = 0; i < n_kx; i++) {
      const float re = (j == 0 && i == swell_column) ? 0.0078125f : 0.0f;
      const float im = 0.0f;
      put_word(out, &re);
      put_word(out, &im);
    }
  }
}

std::string ocean_text() {
  return "Tidecast_data_file ocean 5 5\n"
         "n_points_x 32 1\nn_points_y 32 1\ndx 2\ndy 2\n"
         "spectrum_file: calm.spectrum\ngenerate_file:  yes\nrandom_seed 5\nend\n"
         "number_aux_oceans  0\nnumber_disturbances  1\n"
         "render_disturbances_interior:  black\n"
         "disturbance_type:  swell\n"
         "n_points_x 32\nn_points_y 32\ndx 4\ndy 4\n"
         "spectrum_file: one.spectrum\ngenerate_file: no\nswell_file: swell.detail\nend\n"
         "box_depth  25\nreference_time  0\nsurface_type:  flat\nmax_distance  1000\n"
         "doubling_distance  100\nvariable_wind:  no\nwind_direction:  0\nwind_velocity:  0\n"
         "ocean_spectrum_type:  phillips_smoothed\njerlov_water_type:  0\n"
         "external_exact:  no\nglitter:  yes\nwhitecaps: no\ntexture_maps:  no\n"
         "sunbeams:  no\nexclude_items:   no\nnumber_of_bands:  1\nband_ids:  1\n"
         "index_of_refraction:  1.34\na: 0.1\nb: 0.1\nc: 0.2\nk: 0.1\nrefl: 0.02\nend\n";
}

std::string swell_text() {
  return "swell_height: 0.5\nswell_wavelenth: 32\nlong_spread: 0.1\ntrans_spread: 0.1\n"
         "direction: 0\nrandom_seed: 7\nend\n";
}

class SwellSea : public ::testing::Test {
 protected:
  void SetUp() override {
    put_file(folder.file("sea.ocean"), ocean_text());
    put_file(folder.file("swell.detail"), swell_text());
    write_single_component(folder.file("one.spectrum"));
    Working_folder here(folder.file(""));
    ASSERT_TRUE(here.ok());
    Stream_capture quiet(std::cout);
    ASSERT_EQ(input.read_file("sea.ocean"), 1) << quiet.text();
    ocean = new TCOcean(input);
    ASSERT_EQ(ocean->construct(input), 1) << quiet.text();
    ocean->update_to_time(0.0);
  }
  void TearDown() override { delete ocean; }

  // The swell's node values, node i along x (all rows alike).
  double node(int i) const {
    const int wrapped = ((i % swell_n) + swell_n) % swell_n;
    return ocean->holder->detail_field[0][wrapped];
  }
  // The sea's height at world x by straight lines between the swell's
  // nodes, which stand at x = i dx - n dx / 2 (the detail is centred).
  double surface(double x) const {
    const double u = (x + 0.5 * swell_n * swell_dx) / swell_dx;
    const double i = std::floor(u);
    const double f = u - i;
    return node(static_cast<int>(i)) * (1.0 - f) + node(static_cast<int>(i) + 1) * f;
  }
  // First distance along the ray at which it is below the surface, walking
  // the straight pieces cell by cell; -1 when none before limit. under is
  // how far it stays below from there.
  double first_root(const TCVector& o, const TCVector& d, double limit, double& under) const {
    const double ds = 0.01;  // fine enough to bracket each piece's crossing
    double s0 = 0.0;
    double g0 = o.z - surface(o.x);
    for (double s = ds; s <= limit; s += ds) {
      const double g = o.z + s * d.z - surface(o.x + s * d.x);
      if (g < 0.0 && g0 >= 0.0) {
        // Refine by bisection on the exact piecewise-linear surface.
        double lo = s0, hi = s;
        for (int k = 0; k < 60; k++) {
          const double mid = 0.5 * (lo + hi);
          if (o.z + mid * d.z - surface(o.x + mid * d.x) < 0.0) {
            hi = mid;
          } else {
            lo = mid;
          }
        }
        const double root = 0.5 * (lo + hi);
        under = 0.0;
        for (double t = root + ds; t <= limit; t += ds) {
          if (o.z + t * d.z - surface(o.x + t * d.x) >= 0.0) break;
          under = t - root;
        }
        if (under == 0.0) under = limit - root;
        return root;
      }
      s0 = s;
      g0 = g;
    }
    return -1.0;
  }

  Scratch_folder folder;
  ocean_input input;
  TCOcean* ocean = nullptr;
};

TEST_F(SwellSea, OneComponentGivesAPureCosineAlongX) {
  ASSERT_NE(ocean->holder, nullptr);
  // The windless sea underneath is flat.
  for (int i = 0; i < 32 * 32; i += 37) EXPECT_EQ(ocean->ocean_grid->height[i], 0.0f);
  const double amplitude = node(0);
  ASSERT_GT(std::fabs(amplitude), 1e-3);
  for (int j = 0; j < swell_n; j++) {
    for (int i = 0; i < swell_n; i++) {
      const double expected =
          amplitude * std::cos(2.0 * 3.14159265358979 * swell_column * i / swell_n);
      EXPECT_NEAR(ocean->holder->detail_field[0][i + swell_n * j], expected,
                  1e-5 * std::fabs(amplitude))
          << i << " " << j;
    }
  }
}

TEST_F(SwellSea, RaysMeetTheSurfaceWhereTheHandCalculationPutsIt) {
  const double amplitude = std::fabs(node(0));
  const double ray_step = ocean->ray_step;
  EXPECT_DOUBLE_EQ(ray_step, 1.8);
  int checked = 0;
  for (int r = 0; r < 300; r++) {
    // From 10 m over the sea, looking down at 1.5 to 80 degrees, every way.
    const double depression = (1.5 + 78.5 * ((r * 37) % 300) / 300.0) * 3.1415926535 / 180.0;
    const double azimuth = (r * 73 % 360) * 3.1415926535 / 180.0;
    const TCVector o(0.37 * r - 50.0, 3.0, 10.0);
    const TCVector d(std::cos(depression) * std::cos(azimuth),
                     std::cos(depression) * std::sin(azimuth), -std::sin(depression));
    TCVector hit;
    double distance = -5.0;
    const int found = ocean->ray_intersection(TCRay(o, d), hit, distance);
    // The march's own step: the box from its top (1.05 times the highest
    // node) to max_distance or its floor.
    const double top = ocean->length.z - ocean->box_depth;
    const double entry = (o.z - top) / -d.z;
    double exit = (o.z + ocean->box_depth) / -d.z;
    if (exit > ocean->max_distance) exit = ocean->max_distance;
    const double n = std::trunc((exit - entry) / ray_step) + 1.0;
    const double step = (exit - entry) / n;
    double under = 0.0;
    const double root = first_root(o, d, exit, under);
    ASSERT_GT(root, 0.0);
    // A march only sees water it is in for a whole step.
    if (under < step) continue;
    checked++;
    ASSERT_EQ(found, 1) << r;
    EXPECT_NEAR(distance, root, step / 32.0) << r << " depression " << depression;
    EXPECT_NEAR(hit.z, o.z + distance * d.z, 1e-9);
  }
  EXPECT_GT(checked, 250);
  EXPECT_GT(amplitude, 0.0);
}

TEST_F(SwellSea, RaysThatMissOrStartInTheWater) {
  TCVector hit;
  double distance = 0.0;
  // Looking up from above the box.
  EXPECT_EQ(
      ocean->ray_intersection(TCRay(TCVector(0, 0, 10), TCVector(0, 0.6, 0.8)), hit, distance), 0);
  // Level, beyond the crests: it never comes down.
  EXPECT_EQ(ocean->ray_intersection(TCRay(TCVector(0, 0, 5), TCVector(1, 0, 0)), hit, distance), 0);
  // Down at a milliradian: the water is more than max_distance away.
  const TCVector far_down(std::cos(0.001), 0.0, -std::sin(0.001));
  EXPECT_EQ(ocean->ray_intersection(TCRay(TCVector(0, 0, 5), far_down), hit, distance), 0);
  // Starting under the surface: a hit where it starts.
  EXPECT_EQ(ocean->ray_intersection(TCRay(TCVector(1, 2, -3), TCVector(0, 0, 1)), hit, distance),
            1);
  EXPECT_EQ(distance, 0.0);
  EXPECT_NEAR(hit.z, -3.0, 1e-12);
}

}  // namespace
