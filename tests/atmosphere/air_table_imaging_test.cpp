#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <map>
#include <string>
#include <utility>

#include "TCAir.h"
#include "TCAir_input.h"
#include "TCObject_list.h"
#include "TCSettings.h"
#include "TCView.h"
#include "air_table.h"
#include "air_test_scenes.h"
#include "band_planes.h"
#include "object_contour.h"
#include "stream_capture.h"

// The air imaging a round base through its tables: when the auxiliary
// table is built, the statistics, and the table-imaged sky against the
// exact per-pixel calculation.

namespace {

using air_scene::infinity;

const double degree = 0.017453292519444445;

class Quiet {
 public:
  Quiet() : saved(verbose) { verbose = 0; }
  ~Quiet() { verbose = saved; }
  int saved;
};

// Paints the first `count` pixels, row by row, of columns first_col ..
// last_col, wholly covered at one distance in metres, with no radiance.
class Counted_painter : public TCObject {
 public:
  Counted_painter(int first, int last, int count_in, double distance_in)
      : TCObject(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4),
        first_col(first),
        last_col(last),
        count(count_in),
        distance(distance_in) {}
  void image_contour(TCView& view, object_contour& contour) override {
    const double depth = distance * distance;
    const double nothing[2] = {0.0, 0.0};
    int painted = 0;
    for (int row = 0; row < view.n_rows; row++) {
      for (int col = first_col; col <= last_col && col < view.n_cols; col++) {
        if (painted == count) return;
        contour.add_sample(row, col, nothing, depth, depth, depth, 1.0, object_id, nullptr);
        painted++;
      }
    }
  }
  int first_col;
  int last_col;
  int count;
  double distance;
};

class AirTableImaging : public ::testing::Test {
 protected:
  void SetUp() override {
    air_scene::set_bands(list);
    spectrum.band_id[0] = 1;
    spectrum.band_id[1] = 2;
    for (int i = 0; i < TCObject_list::max_objects; i++) active[i] = 1;
  }
  // A haze over the round base: strength 1.0 and 0.6, lobe widths 0.7 and
  // 0.6.
  TCAir* haze_air() {
    TCAir_input input;
    air_scene::fill_input(input, 3, 1);
    input.radiance_value[0] = 1.0;
    input.radiance_value[1] = 0.6;
    input.haze_phase_function[0] = 0.7;
    input.haze_phase_function[1] = 0.6;
    TCAir* air = new TCAir(input, &list);
    list.add_runtime_object(air);
    air->set_sun_values();
    return air;
  }

  TCObject_list list;
  TCSpectrum spectrum{2};
  int active[TCObject_list::max_objects];
  Quiet quiet;
};

// ---- The auxiliary table ----

// From 10 m, 5 degrees up along azimuth 0, 50 rows by 24 columns of 0.05
// degree, the sun at azimuth -1 degree. Pixels painted at 1000 m next to sky
// pixels: the cells blended for a painted pixel's sub-rays near that edge
// run to the top of the air, and those sub-rays miss the table.
class AuxTable : public AirTableImaging {
 protected:
  void SetUp() override {
    AirTableImaging::SetUp();
    air_scene::set_sun(list, 3.1415926535 / 2 + 30.0 * degree, -1.0 * degree);
    air = haze_air();
    const double pixel = std::tan(0.05 * degree);
    view.set_pose(TCVector(0.0, 0.0, 10.0), 85.0 * degree, 0.0, 0.0);
    view.set_grid(50, -25 * pixel, 25 * pixel, 24, -12 * pixel, 12 * pixel);
    view.anti_alias = 0;
  }
  std::string image_with_painted(int count) {
    Counted_painter* painter = new Counted_painter(1, 22, count, 1000.0);
    list.add_runtime_object(painter);
    object_contour contour(50, 24, &spectrum, 0.0f, 0, nullptr, nullptr);
    verbose = 1;
    Stream_capture out(std::cout);
    air->image_contour(view, contour);
    verbose = 0;
    return out.text();
  }
  TCAir* air = nullptr;
  TCView view;
};

TEST_F(AuxTable, MissesAreIntegratedExactlyAndNeverBuildAnAuxiliaryTable) {
  // An auxiliary table made when more than 1000 pixels miss would hang on
  // how many of them the patch holds, which differs between a slice and the
  // whole picture; misses go to the exact calculation however many they are.
  const std::string text = image_with_painted(1200);
  EXPECT_EQ(text.find("building aux table"), std::string::npos) << text;
  EXPECT_EQ(text.find("done with auxiliary air table"), std::string::npos);
  EXPECT_EQ(air->aux_table_count, 0);
  EXPECT_GT(air->exact_count, 0);
  EXPECT_EQ(air->main_table_count + air->exact_count, 4 * 50 * 24);
}

// ---- Statistics ----

TEST_F(AirTableImaging, VerbosePrintsTheTableLayoutAndCountsEachSource) {
  air_scene::set_sun(list, 2.5, 0.0);
  TCAir* air = air_scene::add_air(list, 2, 1);
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  view.set_grid(8, -0.04, 0.04, 8, -0.04, 0.04);
  view.anti_alias = 0;
  object_contour contour(8, 8, &spectrum, 0.0f, 0, nullptr, nullptr);
  verbose = 1;
  Stream_capture out(std::cout);
  air->image_contour(view, contour);
  verbose = 0;
  const std::string text = out.text();
  EXPECT_EQ(text.find("table data  \nphi : "), 0u);
  EXPECT_NE(text.find("\ntheta "), std::string::npos);
  EXPECT_NE(text.find("\ndiscretizations "), std::string::npos);
  EXPECT_NE(text.find("\ns_primary_min = 0\n"), std::string::npos);
  // 64 sky pixels of 4 sub-rays, all from the main table.
  const std::string counts =
      "radiance calculation statistics : \naux table  : 0\nmain table : 256\nexact      : 0\n";
  ASSERT_GE(text.size(), counts.size());
  EXPECT_EQ(text.substr(text.size() - counts.size()), counts);
}

// ---- Tables against the exact calculation ----

// A haze sky over the round base, 64 by 48 pixels of 0.005 (0.29 degree)
// from 10 m looking 10 degrees up: elevations about 3 to 17 degrees. Imaged
// through the tables and again with external_exact set.
//
// The bound. A pixel is the mean over its 2 by 2 sub-rays d of
// P_m(d) I_m(d) + P_a(d) I_a(d): the phase factors P and the two path
// integrals I to the top of the air. Through the table, each I(d) is a blend
// with weights in [0, 1] summing to 1 of I at the four nodes n around d (the
// phase is still taken at d), so per band
//   |table - exact| <= mean over d of sum over layers of
//                      P(d) * max over n of |I(n) - I(d)|.
// The nodes are worked out by hand: columns at the sun's azimuth plus
// multiples of the column step, up rows at the horizon's elevation,
// -acos(R / (R + 10)), plus multiples of the row step. I at nodes and sub-rays comes from the
// air's single-ray operation. The bound holds whatever the Romberg
// integral's own error, which both sides share node by node; what it
// excludes is a wrong node, row kind or phase. Weights (g on row j, f on
// column k, from the fractional row and column) are held to as well: the
// table's pixel must be the blend of those node values itself.
TEST_F(AirTableImaging, TableImagedSkyAgreesWithTheExactCalculationWithinTheTableBound) {
  air_scene::set_sun(list, 3.1415926535 / 2 + 0.5, 1.0);
  TCAir* air = haze_air();
  const int rows = 48, cols = 64;
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  view.set_grid(rows, -0.12, 0.12, cols, -0.16, 0.16);
  view.anti_alias = 0;

  Planes tables(2, rows * cols), exact(2, rows * cols);
  list.image_scene(active, view, &spectrum, tables.planes, 0.0, nullptr, 0);
  EXPECT_EQ(air->main_table_count, 4 * rows * cols);
  EXPECT_EQ(air->exact_count, 0);
  air->external_exact = 1;
  list.image_scene(active, view, &spectrum, exact.planes, 0.0, nullptr, 0);
  EXPECT_EQ(air->exact_count, 4 * rows * cols);
  EXPECT_EQ(air->main_table_count, 0);

  // The steps the air chose for this picture.
  double theta_step = 0.0, phi_step = 0.0;
  {
    object_contour contour(rows, cols, &spectrum, 0.0f, 0, nullptr, nullptr);
    TCView local;
    air->view_in_object_frame(view, local);
    air_table* main_table = nullptr;
    air_table* aux_table = nullptr;
    air->build_tables(local, contour, rows, cols, main_table, aux_table);
    ASSERT_NE(main_table, nullptr);
    theta_step = main_table->theta_step_up;
    phi_step = main_table->phi_step;
    delete main_table;
  }
  // The column step the lesser of 2 degrees and sixteen pixels (0.08), and
  // the row step the least of two pixels,
  // 0.25 degree and a tenth of the grazing angle of the lowest layer.
  EXPECT_NEAR(phi_step, 0.03490658503988659, 1e-15);
  const double grazing =
      0.1 * std::sqrt(2.0 * std::fmin(air->aerosol_height_m, air->molecular_height_m) /
                      air_scene::radius);
  EXPECT_NEAR(theta_step, std::fmin(0.004363323129985824, grazing), 1e-15);
  const TCVector eye(0.0, 0.0, 10.0);
  const double horizon = -std::acos(air_scene::radius / (air_scene::radius + 10.0));
  const double offset = air->sun_azimuth;
  // I at a node, by (row, column) index, molecular then aerosol per band.
  std::map<std::pair<long, long>, std::pair<TCSpectrum, TCSpectrum> > nodes;
  auto node_integrals = [&](long j, long k) -> const std::pair<TCSpectrum, TCSpectrum>& {
    auto found = nodes.find(std::make_pair(j, k));
    if (found != nodes.end()) return found->second;
    const double e = horizon + j * theta_step;
    const double a = offset + k * phi_step;
    TCRay ray(eye, TCVector(std::cos(e) * std::cos(a), std::cos(e) * std::sin(a), std::sin(e)));
    TCSpectrum mol = air_scene::two_bands(), aer = air_scene::two_bands();
    air->path_radiance(ray, mol, aer, 0.0, infinity);
    return nodes.emplace(std::make_pair(j, k), std::make_pair(mol, aer)).first->second;
  };

  const double fractions[2] = {0.25, 0.75};
  for (int row = 0; row < rows; row++) {
    for (int col = 0; col < cols; col++) {
      double bound[2] = {0.0, 0.0};
      double blended[2] = {0.0, 0.0};
      for (double fr : fractions) {
        for (double fc : fractions) {
          TCRay ray;
          view.fractional_ray(row, col, fr, fc, ray);
          const TCVector d = ray.direction();
          const double e = std::asin(d.z);
          double a = std::atan2(d.y, d.x) - offset;
          const double row_at = (e - horizon) / theta_step;
          const double col_at = a / phi_step;
          const long j = static_cast<long>(std::floor(row_at));
          const long k = static_cast<long>(std::floor(col_at));
          ASSERT_GE(j, 1);
          // Weights of row j and column k, the rest to j + 1 and k + 1.
          const double g = 1.0 - (row_at - j);
          const double f = 1.0 - (col_at - k);
          const double w[2][2] = {{f * g, (1.0 - f) * g}, {f * (1.0 - g), (1.0 - f) * (1.0 - g)}};
          TCSpectrum mol = air_scene::two_bands(), aer = air_scene::two_bands();
          air->path_radiance(ray, mol, aer, 0.0, infinity);
          // Phase factors at d: the radiance of unit integrals.
          TCSpectrum unit_m(2), unit_a(2), zero(2), p_m(2), p_a(2);
          for (int b = 0; b < 2; b++) {
            unit_m.band_id[b] = unit_a.band_id[b] = zero.band_id[b] = b + 1;
            unit_m.radiance_in_band[b] = unit_a.radiance_in_band[b] = 1.0;
            zero.radiance_in_band[b] = 0.0;
          }
          p_m.assign(unit_m);
          air->scatter_phase(ray, p_m, zero);
          p_a.assign(zero);
          air->scatter_phase(ray, p_a, unit_a);
          for (int b = 0; b < 2; b++) {
            double spread_m = 0.0, spread_a = 0.0, blend_m = 0.0, blend_a = 0.0;
            for (long dj = 0; dj < 2; dj++) {
              for (long dk = 0; dk < 2; dk++) {
                const auto& n = node_integrals(j + dj, k + dk);
                blend_m += w[dj][dk] * n.first.radiance_in_band[b];
                blend_a += w[dj][dk] * n.second.radiance_in_band[b];
                spread_m = std::fmax(
                    spread_m, std::fabs(n.first.radiance_in_band[b] - mol.radiance_in_band[b]));
                spread_a = std::fmax(
                    spread_a, std::fabs(n.second.radiance_in_band[b] - aer.radiance_in_band[b]));
              }
            }
            bound[b] +=
                0.25 * (p_m.radiance_in_band[b] * spread_m + p_a.radiance_in_band[b] * spread_a);
            blended[b] +=
                0.25 * (p_m.radiance_in_band[b] * blend_m + p_a.radiance_in_band[b] * blend_a);
          }
        }
      }
      for (int b = 0; b < 2; b++) {
        const int at = row * cols + col;
        const double x = exact.planes[b][at];
        const double t = tables.planes[b][at];
        ASSERT_GT(x, 0.0);
        // Both pixels were stored as floats.
        const double allowed = bound[b] + 2e-7 * x;
        EXPECT_LE(std::fabs(t - x), allowed) << "row " << row << " column " << col << " band " << b;
        // And the table's pixel is that blend itself.
        EXPECT_NEAR(t, blended[b], 1e-6 * x) << "row " << row << " column " << col << " band " << b;
      }
    }
  }
}

}  // namespace
