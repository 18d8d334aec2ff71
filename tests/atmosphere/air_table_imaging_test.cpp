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

const double theta_step = 0.004363323129985824;
const double phi_step = 0.03490658503988659;
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
// degree: azimuths within 0.6 degree of 0. The sun at azimuth -1 degree puts
// the columns of nodes at -1 + 2k degrees, all outside the window, so every
// node takes the ends of an edge pixel. With the edge columns left as sky,
// every node runs to the top of the air, and a pixel painted at 1000 m
// finds no cell within 0.05 * 1000 m of its ends: each painted pixel misses.
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

TEST_F(AuxTable, ThousandMissesAreLeftToTheExactCalculation) {
  const std::string text = image_with_painted(1000);
  EXPECT_EQ(air->table_misses, 1000);
  EXPECT_EQ(text.find("building aux table"), std::string::npos);
  EXPECT_EQ(air->aux_table_count, 0);
  // The painted pixels' 4 sub-rays each, exactly; the sky from the table.
  EXPECT_EQ(air->exact_count, 4000);
  EXPECT_EQ(air->main_table_count, 4 * (50 * 24 - 1000));
}

TEST_F(AuxTable, ThousandAndOneMissesBuildTheAuxiliaryTable) {
  const std::string text = image_with_painted(1001);
  EXPECT_EQ(air->table_misses, 1001);
  const size_t at = text.find("building aux table 1001\n theta range ");
  ASSERT_NE(at, std::string::npos) << text;
  EXPECT_NE(text.find("\n phi range   ", at), std::string::npos);
  const size_t done = text.find(" done with auxiliary air table \n", at);
  ASSERT_NE(done, std::string::npos);
  // The auxiliary fill prints its layout too, at half the steps.
  const size_t layout = text.find("table data  \n", at);
  ASSERT_LT(layout, done);
  EXPECT_NE(text.find(" 0.0174533\n", layout), std::string::npos);
  // Every cell of the auxiliary table that a painted sub-ray blends has a
  // column at -1 or 1 degree, sky-ended like the main table's: the painted
  // sub-rays ask the auxiliary table and go on to the exact calculation.
  EXPECT_EQ(air->aux_table_count, 0);
  EXPECT_EQ(air->exact_count, 4 * 1001);
  EXPECT_EQ(air->main_table_count, 4 * (50 * 24 - 1001));
}

// Pixels at 1000 m save those the main table's nodes pass through, at 1100
// m. Every main cell then ends 100 m beyond a 1000 m pixel, more than 0.05
// * 1000 m: those pixels miss it. The auxiliary table's nodes between the
// main ones end at 1000 m, and its blends hold the main ones at weights w,
// 1000 + 100 w m: within the tolerance for w below a half.
class Node_painter : public TCObject {
 public:
  Node_painter(int rows_in, int cols_in)
      : TCObject(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4), rows(rows_in), cols(cols_in) {
    node_pixel = new int[rows * cols]();
  }
  ~Node_painter() override { delete[] node_pixel; }
  void image_contour(TCView& view, object_contour& contour) override {
    const double nothing[2] = {0.0, 0.0};
    for (int row = 0; row < rows && row < view.n_rows; row++) {
      for (int col = 0; col < cols && col < view.n_cols; col++) {
        const double distance = node_pixel[row * cols + col] ? 1100.0 : 1000.0;
        const double depth = distance * distance;
        contour.add_sample(row, col, nothing, depth, depth, depth, 1.0, object_id, nullptr);
      }
    }
  }
  int rows;
  int cols;
  int* node_pixel;
};

TEST_F(AuxTable, AuxiliaryTableServesWhatTheMainTableMisses) {
  // 50 by 40 pixels of 0.1 degree: the main columns at -1 and 1 degree and
  // a main row every 2.5 pixel rows cross the window.
  const double pixel = std::tan(0.1 * degree);
  view.set_grid(50, -25 * pixel, 25 * pixel, 40, -20 * pixel, 20 * pixel);
  Node_painter* painter = new Node_painter(50, 40);
  list.add_runtime_object(painter);
  // The main table's nodes, from a table of this view, marked where they
  // cross the window.
  {
    object_contour contour(50, 40, &spectrum, 0.0f, 0, nullptr, nullptr);
    TCView local;
    air->view_in_object_frame(view, local);
    air_table* main_table = nullptr;
    air_table* aux_table = nullptr;
    air->build_tables(local, contour, 50, 40, main_table, aux_table);
    ASSERT_NE(main_table, nullptr);
    for (int up = 0; up < 2; up++) {
      for (int j = 0; j < main_table->rows(up); j++) {
        for (int i = 0; i < main_table->n_phi; i++) {
          TCVector d;
          main_table->node_direction(up, j, i, d);
          double e = 0.0, a = 0.0;
          TCVector v;
          view.direction_to_view(d, v);
          if (!(v.z > 0.0)) continue;
          e = -v.x / v.z;
          a = -v.y / v.z;
          const int row =
              static_cast<int>(std::floor((e - view.first_elevation) / view.step_elevation));
          const int col =
              static_cast<int>(std::floor((a - view.first_azimuth) / view.step_azimuth));
          if (row >= 0 && row < 50 && col >= 0 && col < 40) painter->node_pixel[row * 40 + col] = 1;
        }
      }
    }
    delete main_table;
    delete aux_table;
  }
  object_contour contour(50, 40, &spectrum, 0.0f, 0, nullptr, nullptr);
  air->image_contour(view, contour);
  EXPECT_GT(air->table_misses, 1000);
  EXPECT_GT(air->main_table_count, 0);
  EXPECT_GT(air->aux_table_count, 0);
  EXPECT_GT(air->exact_count, 0);
  EXPECT_EQ(air->main_table_count + air->aux_table_count + air->exact_count, 4 * 50 * 40);
}

TEST_F(AuxTable, MissedRangeIsThatOfThePaintedPixels) {
  Counted_painter* painter = new Counted_painter(1, 22, 1001, 1000.0);
  list.add_runtime_object(painter);
  object_contour contour(50, 24, &spectrum, 0.0f, 0, nullptr, nullptr);
  painter->image_contour(view, contour);
  contour.merge_layer();
  TCView local;
  air->view_in_object_frame(view, local);
  air_table* main_table = nullptr;
  air_table* aux_table = nullptr;
  air->build_tables(local, contour, 50, 24, main_table, aux_table);
  ASSERT_NE(aux_table, nullptr);
  EXPECT_DOUBLE_EQ(aux_table->theta_step_up, theta_step / 2);
  EXPECT_DOUBLE_EQ(aux_table->phi_step, phi_step / 2);
  // 1001 pixels fill rows 0..45 of columns 1..22: elevations about 3.75 to
  // 6.1 degrees, azimuths within 0.55 degree of 0, so 1 +- 0.55 degree
  // from the sun's -1. The range widened by two pixels and rounded out to
  // 1 degree columns: 0 .. 2 degrees.
  EXPECT_NEAR(aux_table->phi_low, 0.0, 1e-12);
  EXPECT_NEAR(aux_table->phi_high, 2.0 * degree, 1e-12);
  EXPECT_LT(aux_table->theta_high, 6.5 * degree);
  EXPECT_GT(aux_table->theta_high, 6.0 * degree);
  delete main_table;
  delete aux_table;
}

// ---- Statistics ----

TEST_F(AirTableImaging, VerbosePrintsTheTableLayoutAndCountsEachSource) {
  air_scene::set_sun(list, 2.5, 0.0);
  TCAir* air = air_scene::add_air(list, 2, 1);
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  view.set_grid(1, -0.005, 0.005, 3, -0.015, 0.015);
  view.anti_alias = 0;
  object_contour contour(1, 3, &spectrum, 0.0f, 0, nullptr, nullptr);
  verbose = 1;
  Stream_capture out(std::cout);
  air->image_contour(view, contour);
  verbose = 0;
  const std::string text = out.text();
  EXPECT_EQ(text.find("table data  \nphi : "), 0u);
  EXPECT_NE(text.find("\ntheta "), std::string::npos);
  EXPECT_NE(text.find("\ndiscretizations "), std::string::npos);
  EXPECT_NE(text.find("\ns_primary_min = 0\n"), std::string::npos);
  // Three sky pixels of 4 sub-rays, all from the main table.
  const std::string counts =
      "radiance calculation statistics : \naux table  : 0\nmain table : 12\nexact      : 0\n";
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
// multiples of 2 degrees, up rows at the horizon's elevation, -acos(R / (R +
// 10)), plus multiples of 0.25 degree. I at nodes and sub-rays comes from the
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
