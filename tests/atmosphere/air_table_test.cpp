#include "air_table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <sstream>
#include <string>

#include "TCAir.h"
#include "TCAir_input.h"
#include "TCObject_list.h"
#include "TCSettings.h"
#include "TCView.h"
#include "air_test_scenes.h"
#include "object_contour.h"
#include "stream_capture.h"

// Layout, lookup and fill of the air's tables. The layouts and blends are
// worked by hand below; cells are held against the air's own single-ray
// integrals (tested against air_reference.py in air_paths_test.cpp) along
// the directions and ends worked out here.

namespace {

using air_scene::infinity;

const double theta_step = 0.004363323129985824;  // 0.25 degree
const double phi_step = 0.03490658503988659;     // 2 degrees
const double degree = 0.017453292519444445;

// The round base's dip of the horizon from 10 m: acos(R / (R + 10)).
double horizon_from_ten_metres() {
  return -std::acos(air_scene::radius / (air_scene::radius + 10.0));
}

class Quiet {
 public:
  Quiet() : saved(verbose) { verbose = 0; }
  ~Quiet() { verbose = saved; }
  int saved;
};

// Paints columns first_col..last_col of every row at one distance (metres)
// and coverage, with no radiance of its own.
class Column_painter : public TCObject {
 public:
  Column_painter(int first, int last, double distance_in, float coverage_in)
      : TCObject(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4),
        first_col(first),
        last_col(last),
        distance(distance_in),
        coverage(coverage_in) {}
  void image_contour(TCView& view, object_contour& contour) override {
    const double depth = distance * distance;
    const double nothing[2] = {0.0, 0.0};
    for (int row = 0; row < view.n_rows; row++) {
      for (int col = first_col; col <= last_col && col < view.n_cols; col++)
        contour.add_sample(row, col, nothing, depth, depth, depth, coverage, object_id, nullptr);
    }
  }
  int first_col;
  int last_col;
  double distance;
  float coverage;
};

class AirTable : public ::testing::Test {
 protected:
  void SetUp() override {
    air_scene::set_bands(list);
    // The sun 30 degrees up, the air's azimuth of it 0.3.
    air_scene::set_sun(list, 3.1415926535 / 2 + 30.0 * degree, 0.3);
    air = air_scene::add_air(list, 2, 1);
    spectrum.band_id[0] = 1;
    spectrum.band_id[1] = 2;
  }

  // A table over elevations -0.02..0.05 and azimuths -0.1..0.1 widened by
  // 0.01, from 10 m, its columns measured from phi_offset. By hand, with
  // the horizon h = -0.0017718 and the steps above: azimuths -0.11..0.11
  // round out to -4..4 steps, 9 columns; down to -0.03 is (h + 0.03) / step
  // = 6.47, 7 steps and 8 rows; up to 0.06 is (0.06 - h) / step = 14.16, 15
  // steps and 16 rows.
  void define_small(air_table& table, double phi_offset) {
    table.define(TCVector(0.0, 0.0, 10.0), phi_offset, theta_step, phi_step, -0.02, 0.05, -0.1, 0.1,
                 0.01);
  }

  // Values linear in the row and column, so that any bilinear blend of them
  // is the same linear form at the blended position: j * 10 + i on the up
  // rows, -(j * 10 + i) on the down rows, offset by band and layer. Ends 0
  // and 1000 m.
  static double planted(int up, int layer, int band, double j, double i) {
    return 5000.0 + 1000.0 * band + 500.0 * layer + (up ? 1.0 : -1.0) * (10.0 * j + i);
  }
  static double planted_transmission(int up, int band, double j, double i) {
    return 0.5 + 0.1 * band + (up ? 0.01 : -0.01) * j + 0.001 * i;
  }
  void plant(air_table& table) {
    const int n = table.number_of_bands;
    for (int up = 0; up < 2; up++) {
      for (int j = 0; j < table.rows(up); j++) {
        for (int i = 0; i < table.n_phi; i++) {
          for (int b = 0; b < n; b++) {
            table.radiance(up)[table.plane_cell(up, b, j, i)] = planted(up, 0, b, j, i);
            table.radiance(up)[table.plane_cell(up, n + b, j, i)] = planted(up, 1, b, j, i);
            table.transmission(up)[table.plane_cell(up, b, j, i)] =
                planted_transmission(up, b, j, i);
          }
          table.near(up)[table.cell(j, i)] = 0.0;
          table.far(up)[table.cell(j, i)] = 1000.0;
        }
      }
    }
  }
  // Lookup at fractional row and column positions of one row kind.
  int look(const air_table& table, int up, double j, double i, double near, double far) {
    const double h = table.horizon[0];
    const double e = up ? h + j * theta_step : h - j * theta_step;
    return table.lookup(e, table.phi_low + i * phi_step, near, far, molecular, aerosol, through);
  }

  TCObject_list list;
  TCAir* air = nullptr;
  TCSpectrum spectrum{2};
  double molecular[2] = {0.0, 0.0};
  double aerosol[2] = {0.0, 0.0};
  double through[2] = {0.0, 0.0};
  Quiet quiet;
};

// ---- Layout ----

TEST_F(AirTable, LayoutRoundsTheWidenedRangeOutToTheSteps) {
  air_table table(air);
  define_small(table, 0.3);
  EXPECT_EQ(table.number_of_bands, 2);
  EXPECT_EQ(table.spectrum.band_id[1], 2);
  EXPECT_EQ(table.n_phi, 9);
  EXPECT_EQ(table.n_down, 8);
  EXPECT_EQ(table.n_up, 16);
  EXPECT_DOUBLE_EQ(table.phi_low, -4 * phi_step);
  EXPECT_DOUBLE_EQ(table.phi_high, 4 * phi_step);
  EXPECT_DOUBLE_EQ(table.phi_offset, 0.3);
  EXPECT_DOUBLE_EQ(table.theta_step_down, theta_step);
  EXPECT_DOUBLE_EQ(table.theta_step_up, theta_step);
  EXPECT_DOUBLE_EQ(table.inverse_theta_step_up, 1.0 / theta_step);
  EXPECT_DOUBLE_EQ(table.inverse_phi_step, 1.0 / phi_step);
  const double h = horizon_from_ten_metres();
  EXPECT_NEAR(h, -0.0017718, 1e-7);
  for (int i = 0; i < table.n_phi; i++) EXPECT_DOUBLE_EQ(table.horizon[i], h);
  EXPECT_DOUBLE_EQ(table.theta_low, h - 7 * theta_step);
  EXPECT_DOUBLE_EQ(table.theta_high, h + 15 * theta_step);
  EXPECT_EQ(table.viewpoint.z, 10.0);
  // The sun's bearing, (0.3 + pi) - 0.3 = pi wrapped, is beyond the columns.
  EXPECT_EQ(table.sun_side_flag, 0);
}

TEST_F(AirTable, RowsStopAtThePolesAndAzimuthsAtTheWholeCircle) {
  air_table table(air);
  table.define(TCVector(0.0, 0.0, 10.0), 0.0, theta_step, phi_step, -2.0, 2.0, -4.0, 4.0, 0.0);
  // -pi / step = -89.99999999738 with the engine's pi: -90 .. 90 steps.
  EXPECT_EQ(table.n_phi, 181);
  EXPECT_DOUBLE_EQ(table.phi_low, -90 * phi_step);
  // Up: (pi / 2 - h) / step = 360.41, 360 steps; down: (pi / 2 + h) / step
  // = 359.59, 359 steps.
  EXPECT_EQ(table.n_up, 361);
  EXPECT_EQ(table.n_down, 360);
  EXPECT_EQ(table.sun_side_flag, 1);
}

TEST_F(AirTable, FlatBaseAndViewpointOnTheBaseHaveTheHorizonLevel) {
  air_table on_base(air);
  on_base.define(TCVector(0.0, 0.0, 0.0), 0.0, theta_step, phi_step, 0.01, 0.02, 0.0, 0.1, 0.0);
  EXPECT_EQ(on_base.horizon[0], 0.0);
  // Nothing below: one down row, the horizon's.
  EXPECT_EQ(on_base.n_down, 1);
  TCAir* flat = air_scene::add_air(list, 2, 0);
  air_table table(flat);
  table.define(TCVector(0.0, 0.0, 500.0), 0.0, theta_step, phi_step, -0.01, 0.01, 0.0, 0.1, 0.0);
  EXPECT_EQ(table.horizon[0], 0.0);
  // From the level horizon, 0.01 / step = 2.29: 3 steps and 4 rows each way.
  EXPECT_EQ(table.n_down, 4);
  EXPECT_EQ(table.n_up, 4);
}

TEST_F(AirTable, NodeRaysRunAlongTheirRowAndColumnAndClearTheHorizon) {
  air_table table(air);
  define_small(table, 0.3);
  const double h = horizon_from_ten_metres();
  struct Case {
    int up, j, i;
    double elevation;
  } cases[] = {{1, 3, 2, h + 3 * theta_step},
               {0, 5, 7, h - 5 * theta_step},
               {1, 0, 4, h + 0.01 * theta_step},
               {0, 0, 0, h - 0.01 * theta_step}};
  for (const Case& c : cases) {
    TCVector d;
    table.node_direction(c.up, c.j, c.i, d);
    const double azimuth = 0.3 + (c.i - 4) * phi_step;
    EXPECT_NEAR(d.x, std::cos(c.elevation) * std::cos(azimuth), 1e-15);
    EXPECT_NEAR(d.y, std::cos(c.elevation) * std::sin(azimuth), 1e-15);
    EXPECT_NEAR(d.z, std::sin(c.elevation), 1e-15);
    double e = 0.0, a = 0.0;
    table.angles_of(d, e, a);
    EXPECT_NEAR(e, c.elevation, 1e-12);
    EXPECT_NEAR(a, (c.i - 4) * phi_step, 1e-12);
  }
}

TEST_F(AirTable, OffTheAxisEveryDownRowStrikesTheBaseAndNoUpRowDoes) {
  // 36 km from the air's origin the base's horizon tilts by about 0.3
  // degree with the azimuth, more than a row: each column keeps its own.
  // Every down cell's ray, the one just below the horizon included, must
  // strike the sphere (so no blend of down cells mixes in sky) and no up
  // cell's ray may.
  air_table table(air);
  const TCVector eye(30000.0, 20000.0, 1000.0);
  table.define(eye, 0.0, theta_step, phi_step, -0.05, 0.05, -3.1, 3.1, 0.0);
  ASSERT_GT(table.n_phi, 100);
  double least = 0.0, most = 0.0;
  for (int i = 0; i < table.n_phi; i++) {
    if (i == 0 || table.horizon[i] < least) least = table.horizon[i];
    if (i == 0 || table.horizon[i] > most) most = table.horizon[i];
    for (int up = 0; up < 2; up++) {
      for (int j = 0; j < 3 && j < table.rows(up); j++) {
        TCVector d;
        table.node_direction(up, j, i, d);
        double near = 0.0, far = 0.0;
        const int strikes = air->sphere_roots(eye, d, near, far) && far > 0.0;
        EXPECT_EQ(strikes, !up) << "column " << i << " row " << j << " up " << up;
      }
    }
  }
  // The tilt, 36 km over the radius, on either side.
  EXPECT_NEAR(most - least,
              2.0 * std::sqrt(30000.0 * 30000.0 + 20000.0 * 20000.0) / air_scene::radius, 2e-4);
}

TEST_F(AirTable, AnglesAreTakenFromTheSunsAzimuthAndWrapped) {
  air_table table(air);
  define_small(table, 3.0);
  double e = 0.0, a = 0.0;
  // Azimuth -3.0 in the frame: -6.0 from the offset, wrapped to 0.283185307.
  table.angles_of(TCVector(std::cos(-3.0), std::sin(-3.0), 0.0), e, a);
  EXPECT_NEAR(a, -6.0 + 6.283185307, 1e-9);
  EXPECT_NEAR(e, 0.0, 1e-15);
  table.angles_of(TCVector(0.0, 0.0, -2.0), e, a);
  EXPECT_NEAR(e, -3.1415926535 / 2, 1e-9);
}

TEST(AirTableDeath, TableTooLargeForMemoryEndsTheRun) {
  // Steps of 1e-12 radians ask for some 1e24 cells: refused before any
  // allocation, so nothing is really taken.
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list list;
        air_scene::set_bands(list);
        TCAir* air = air_scene::add_air(list, 2, 1);
        air_table table(air);
        table.define(TCVector(0.0, 0.0, 10.0), 0.0, 1e-12, 1e-12, -1.0, 1.0, -3.0, 3.0, 0.0);
      },
      ::testing::ExitedWithCode(1), "^Not enough memory to allocate air table \n$");
}

// ---- Lookup ----

TEST_F(AirTable, LookupAtANodeReturnsTheNode) {
  air_table table(air);
  define_small(table, 0.0);
  plant(table);
  ASSERT_TRUE(look(table, 1, 5, 3, 0.0, 1000.0));
  for (int b = 0; b < 2; b++) {
    EXPECT_NEAR(molecular[b], planted(1, 0, b, 5, 3), 1e-9);
    EXPECT_NEAR(aerosol[b], planted(1, 1, b, 5, 3), 1e-9);
    EXPECT_NEAR(through[b], planted_transmission(1, b, 5, 3), 1e-12);
  }
  ASSERT_TRUE(look(table, 0, 4, 6, 0.0, 1000.0));
  EXPECT_NEAR(molecular[1], planted(0, 0, 1, 4, 6), 1e-9);
}

TEST_F(AirTable, BetweenNodesTheLookupIsTheBilinearBlend) {
  air_table table(air);
  define_small(table, 0.0);
  plant(table);
  // Row 3.25, column 2.5: g = 0.75 on row 3, f = 0.5 on column 2; planted
  // values are linear, so the blend is the form at (3.25, 2.5).
  ASSERT_TRUE(look(table, 1, 3.25, 2.5, 0.0, 1000.0));
  for (int b = 0; b < 2; b++) {
    EXPECT_NEAR(molecular[b], planted(1, 0, b, 3.25, 2.5), 1e-9);
    EXPECT_NEAR(aerosol[b], planted(1, 1, b, 3.25, 2.5), 1e-9);
    EXPECT_NEAR(through[b], planted_transmission(1, b, 3.25, 2.5), 1e-12);
  }
  // Below the horizon the down rows serve: 2.5 rows down, column 1.
  ASSERT_TRUE(look(table, 0, 2.5, 1.0, 0.0, 1000.0));
  EXPECT_NEAR(molecular[0], planted(0, 0, 0, 2.5, 1.0), 1e-9);
  // Raising one cell by 2000 raises a blend that holds it at weight 0.7
  // (row 6 alone, column 3 at 0.7) by 1400.
  const double saved = table.radiance_up[table.plane_cell(1, 0, 6, 3)];
  table.radiance_up[table.plane_cell(1, 0, 6, 3)] = saved + 2000.0;
  ASSERT_TRUE(look(table, 1, 6.0, 2.7, 0.0, 1000.0));
  EXPECT_NEAR(molecular[0], planted(1, 0, 0, 6.0, 2.7) + 0.7 * 2000.0, 1e-9);
}

TEST_F(AirTable, RowsBeyondTheLastOrAboveTheHorizonRowTakeOneRowAlone) {
  air_table table(air);
  define_small(table, 0.0);
  plant(table);
  // 20 rows down is past the last down row, 7.
  ASSERT_TRUE(look(table, 0, 20.0, 2.0, 0.0, 1000.0));
  EXPECT_NEAR(molecular[0], planted(0, 0, 0, 7, 2), 1e-9);
  // 30 rows up, past row 15.
  ASSERT_TRUE(look(table, 1, 30.0, 2.0, 0.0, 1000.0));
  EXPECT_NEAR(molecular[0], planted(1, 0, 0, 15, 2), 1e-9);

  // A table with a single up row takes the down rows above the horizon
  // too, row 0 alone there.
  air_table low(air);
  low.define(TCVector(0.0, 0.0, 10.0), 0.0, theta_step, phi_step, -0.05, -0.02, -0.1, 0.1, 0.0);
  ASSERT_EQ(low.n_up, 1);
  plant(low);
  ASSERT_TRUE(look(low, 1, 0.5, 2.0, 0.0, 1000.0));
  EXPECT_NEAR(molecular[0], planted(0, 0, 0, 0, 2), 1e-9);
}

TEST_F(AirTable, AzimuthOutsideTheColumnsMisses) {
  air_table table(air);
  define_small(table, 0.0);
  plant(table);
  EXPECT_FALSE(look(table, 1, 3.0, -0.01, 0.0, 1000.0));
  // The last column has no right-hand neighbour.
  EXPECT_FALSE(look(table, 1, 3.0, 8.0, 0.0, 1000.0));
  EXPECT_FALSE(look(table, 1, 3.0, 9.5, 0.0, 1000.0));
  EXPECT_TRUE(look(table, 1, 3.0, 7.99, 0.0, 1000.0));
}

TEST_F(AirTable, ColumnsAcrossTheSeamServeAzimuthsWrappedIntoMinusPiToPi) {
  air_table table(air);
  // 3.0 / step = 85.94 and 3.3 / step = 94.54: columns 85 to 95 steps.
  table.define(TCVector(0.0, 0.0, 10.0), 0.0, theta_step, phi_step, 0.0, 0.05, 3.0, 3.3, 0.0);
  ASSERT_EQ(table.n_phi, 11);
  plant(table);
  const double e = table.horizon[0] + 2 * theta_step;
  ASSERT_TRUE(table.lookup(e, -3.0, 0.0, 1000.0, molecular, aerosol, through));
  const double column = (-3.0 + 6.283185307 - 85 * phi_step) / phi_step;
  EXPECT_NEAR(column, 9.06, 0.01);
  EXPECT_NEAR(molecular[0], planted(1, 0, 0, 2, column), 1e-6);
  EXPECT_FALSE(table.lookup(e, -2.8, 0.0, 1000.0, molecular, aerosol, through));
}

TEST_F(AirTable, PathEndsOffTheCellsByMoreThanTheToleranceMiss) {
  air_table table(air);
  define_small(table, 0.0);
  plant(table);
  // Cells hold 0 .. 1000 m. Far 1060: tolerance 0.05 * 1060 = 53 < 60.
  EXPECT_FALSE(look(table, 1, 3.5, 2.5, 0.0, 1060.0));
  // Far 1050: 52.5 > 50.
  EXPECT_TRUE(look(table, 1, 3.5, 2.5, 0.0, 1050.0));
  EXPECT_FALSE(look(table, 1, 3.5, 2.5, 0.0, 940.0));
  // Near 60: tolerance 0.05 * 940 = 47 < 60; near 40: 48 > 40.
  EXPECT_FALSE(look(table, 1, 3.5, 2.5, 60.0, 1000.0));
  EXPECT_TRUE(look(table, 1, 3.5, 2.5, 40.0, 1000.0));
  // Ends blended across cells: half of column 3 at 2000 m makes 1500.
  for (int j = 0; j < table.n_up; j++) table.far_up[table.cell(j, 3)] = 2000.0;
  EXPECT_TRUE(look(table, 1, 3.0, 2.5, 0.0, 1500.0));
  EXPECT_FALSE(look(table, 1, 3.0, 2.5, 0.0, 1000.0));
}

TEST_F(AirTable, PathToTheTopOfTheAirIsServedByOpenCellsWhateverTheirNearEnds) {
  EXPECT_EQ(air_table::end_tolerance(0.0, 98999999.01), 99999999.0);
  EXPECT_NEAR(air_table::end_tolerance(0.0, 98999999.0), 4949999.95, 1e-6);
  EXPECT_EQ(air_table::end_tolerance(100.0, 50.0), 0.0);
  air_table table(air);
  define_small(table, 0.0);
  plant(table);
  for (int j = 0; j < table.n_up; j++) {
    for (int i = 0; i < table.n_phi; i++) table.far_up[table.cell(j, i)] = infinity;
  }
  EXPECT_TRUE(look(table, 1, 3.5, 2.5, 5e7, infinity));
}

TEST_F(AirTable, PathToTheTopOfTheAirIsNeverServedByACellEndingOnAnObject) {
  air_table table(air);
  define_small(table, 0.0);
  plant(table);
  for (int j = 0; j < table.n_up; j++) {
    for (int i = 0; i < table.n_phi; i++) table.far_up[table.cell(j, i)] = infinity;
  }
  // One corner of the blend ends 1000 m out, on an object's face.
  table.far_up[table.cell(4, 3)] = 1000.0;
  EXPECT_FALSE(look(table, 1, 3.5, 2.5, 0.0, infinity));
  // Its own node with no weight on that cell still serves.
  EXPECT_TRUE(look(table, 1, 3.0, 2.0, 0.0, infinity));
}

TEST_F(AirTable, CellsComputedForNoRayAreNeverBlendedIn) {
  air_table table(air);
  define_small(table, 0.0);
  plant(table);
  const long empty = table.cell(4, 2);
  table.near_up[empty] = infinity;
  table.far_up[empty] = infinity;
  EXPECT_FALSE(look(table, 1, 3.5, 2.0, 0.0, infinity));
  EXPECT_FALSE(look(table, 1, 4.0, 1.5, 0.0, infinity));
  // Its neighbour's own node still serves.
  EXPECT_TRUE(look(table, 1, 3.0, 2.0, 0.0, 1000.0));
}

// ---- Fill ----

TEST_F(AirTable, CellsHoldTheExactIntegralsOfTheirRayAndItsPixelsEnds) {
  // From 10 m, 10 degrees up towards +x, 4 rows by 6 columns of 0.01.
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  view.set_grid(4, -0.02, 0.02, 6, -0.03, 0.03);
  view.anti_alias = 0;
  // Near 5 m for every pixel (squared distances); columns 0..2 wholly
  // covered at 2000 m, columns 3..5 half covered at 800 m. The columns of
  // nodes, 0.3 + k * 2 degrees, cross the plane about columns 0 and 4.
  object_contour contour(4, 6, &spectrum, 25.0f, 0, nullptr, nullptr);
  Column_painter wall(0, 2, 2000.0, 1.0f);
  wall.image_contour(view, contour);
  contour.merge_layer();
  Column_painter half(3, 5, 800.0, 0.5f);
  half.image_contour(view, contour);
  contour.merge_layer();

  TCView local;
  air->view_in_object_frame(view, local);
  air_table table(air);
  // Elevations 8.9 to 11.1 degrees, azimuths -0.03..0.03 from the sun's
  // 0.3, inside the range given.
  table.define(local.position, air->sun_azimuth, theta_step, phi_step, 0.12, 0.24, -0.4, -0.2, 0.0);
  table.fill(local, contour, 0.05, 5.0);

  int in_window = 0, empty = 0, covered = 0, half_covered = 0;
  double mol[2], aer[2], t[2];
  for (int up = 0; up < 2; up++) {
    for (int j = 0; j < table.rows(up); j++) {
      for (int i = 0; i < table.n_phi; i++) {
        TCVector d;
        table.node_direction(up, j, i, d);
        const long c = table.cell(j, i);
        // Where the ray crosses the image plane: (-x, -y) / z in the view.
        TCVector v;
        view.direction_to_view(d, v);
        const double e = -v.x / v.z;
        const double a = -v.y / v.z;
        if (v.z > 0.0 && std::fabs(e) < 0.02 && std::fabs(a) < 0.03) {
          const int row = static_cast<int>(std::floor((e + 0.02) / 0.01));
          const int col = static_cast<int>(std::floor((a + 0.03) / 0.01));
          const double far = col <= 2 ? 2000.0 : infinity;
          EXPECT_EQ(table.near(up)[c], 5.0) << row << " " << col;
          EXPECT_EQ(table.far(up)[c], far) << row << " " << col;
          air->local_path_radiance(TCRay(TCVector(0.0, 0.0, 10.0), d), mol, aer, 5.0, far);
          air->local_path_transmission(TCRay(TCVector(0.0, 0.0, 10.0), d), t, 5.0, far);
          for (int b = 0; b < 2; b++) {
            EXPECT_EQ(table.radiance(up)[table.plane_cell(up, b, j, i)], mol[b]);
            EXPECT_EQ(table.radiance(up)[table.plane_cell(up, 2 + b, j, i)], aer[b]);
            EXPECT_EQ(table.transmission(up)[table.plane_cell(up, b, j, i)], t[b]);
            EXPECT_GT(mol[b], 0.0);
          }
          in_window++;
          if (col <= 2) covered++;
          if (col >= 3) half_covered++;
        } else if (!(v.z > 0.0) || std::fabs(e) > 0.1 || std::fabs(a) > 0.1) {
          // Well beyond the window and its margin of 0.05.
          EXPECT_EQ(table.near(up)[c], infinity);
          EXPECT_EQ(table.far(up)[c], infinity);
          for (int b = 0; b < 2; b++) {
            EXPECT_EQ(table.radiance(up)[table.plane_cell(up, b, j, i)], 0.0);
            EXPECT_EQ(table.radiance(up)[table.plane_cell(up, 2 + b, j, i)], 0.0);
            EXPECT_EQ(table.transmission(up)[table.plane_cell(up, b, j, i)], 1.0);
          }
          empty++;
        }
      }
    }
  }
  // The window spans 2.3 degrees by 3.4: some 9 rows by 1 or 2 columns.
  EXPECT_GE(in_window, 9);
  EXPECT_GT(covered, 0);
  EXPECT_GT(half_covered, 0);
  EXPECT_GT(empty, 50);
  EXPECT_GE(table.computed_cells, in_window);
}

TEST_F(AirTable, FillPrintsTheTableLayoutWhenVerbose) {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  view.set_grid(1, -0.01, 0.01, 1, -0.01, 0.01);
  object_contour contour(1, 1, &spectrum, 0.0f, 0, nullptr, nullptr);
  air_table table(air);
  define_small(table, 0.0);
  std::ostringstream expected;
  const double h = horizon_from_ten_metres();
  expected << "table data  \n"
           << "phi : " << -4 * phi_step << " " << 4 * phi_step << " " << phi_step << "\n"
           << "theta " << h - 7 * theta_step << " " << h + 15 * theta_step << " " << theta_step
           << " " << theta_step << "\n"
           << "discretizations 9 8 16\n"
           << "s_primary_min = 12.5\n";
  verbose = 1;
  Stream_capture out(std::cout);
  table.fill(view, contour, 0.0, 12.5);
  verbose = 0;
  EXPECT_EQ(out.text(), expected.str());
}

// ---- Steps of the view's tables ----

TEST_F(AirTable, AReflectedViewHalvesTheElevationStepAndTakesATenthOfTheAzimuthStep) {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  // Pixels of 0.05: wide enough that the steps do not follow them.
  view.set_grid(2, -0.05, 0.05, 2, -0.05, 0.05);
  view.anti_alias = 0;
  object_contour contour(2, 2, &spectrum, 0.0f, 0, nullptr, nullptr);
  EXPECT_EQ(contour.level, 0);
  TCView local;
  air->view_in_object_frame(view, local);
  air_table* main_table = nullptr;
  air_table* aux_table = nullptr;
  air->build_tables(local, contour, 2, 2, main_table, aux_table);
  ASSERT_NE(main_table, nullptr);
  EXPECT_EQ(aux_table, nullptr);
  // Rows at most a tenth of the lowest layer's grazing angle apart.
  const double grazing =
      0.1 * std::sqrt(2.0 * std::fmin(air->aerosol_height_m, air->molecular_height_m) /
                      air->surface_radius);
  EXPECT_DOUBLE_EQ(main_table->theta_step_up, std::fmin(0.004363323129985824, grazing));
  EXPECT_DOUBLE_EQ(main_table->theta_step_down, std::fmin(0.004363323129985824, grazing));
  EXPECT_DOUBLE_EQ(main_table->phi_step, 0.03490658503988659);
  // The sun's azimuth in the air's frame, within -pi..pi already.
  EXPECT_DOUBLE_EQ(main_table->phi_offset, 0.3);
  delete main_table;

  contour.level = 1;
  air->build_tables(local, contour, 2, 2, main_table, aux_table);
  ASSERT_NE(main_table, nullptr);
  EXPECT_DOUBLE_EQ(main_table->theta_step_up, std::fmin(0.004363323129985824 / 2, grazing));
  EXPECT_DOUBLE_EQ(main_table->theta_step_down, std::fmin(0.004363323129985824 / 2, grazing));
  EXPECT_DOUBLE_EQ(main_table->phi_step, 0.03490658503988659 / 10);
  delete main_table;
  delete aux_table;
}

TEST_F(AirTable, ANarrowPicturesStepsFollowItsPixels) {
  // 0.0005 pixels (0.029 degree): columns sixteen pixels apart, rows two.
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  view.set_grid(10, -0.0025, 0.0025, 10, -0.0025, 0.0025);
  view.anti_alias = 0;
  object_contour contour(10, 10, &spectrum, 0.0f, 0, nullptr, nullptr);
  TCView local;
  air->view_in_object_frame(view, local);
  air_table* main_table = nullptr;
  air_table* aux_table = nullptr;
  air->build_tables(local, contour, 10, 10, main_table, aux_table);
  ASSERT_NE(main_table, nullptr);
  EXPECT_NEAR(main_table->phi_step, 0.008, 1e-15);
  EXPECT_NEAR(main_table->theta_step_up, 0.001, 1e-15);
  delete main_table;
}

TEST_F(AirTable, RowsReachTheMiddleOfAWideViewsTopAndBottomEdges) {
  // Looking level, 45 by 72 degrees: the top edge's middle is 22.5 degrees
  // up, its corners only asin(tan 22.5 / sqrt(1 + tan^2 22.5 + tan^2 36)) =
  // 18.6 degrees.
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 90.0 * degree, 0.0, 0.0);
  const double e = std::tan(22.5 * degree), a = std::tan(36.0 * degree);
  // Pixels of 0.021: a margin of two is 2.4 degrees, short of the 3.9.
  view.set_grid(40, -e, e, 60, -a, a);
  view.anti_alias = 0;
  object_contour contour(40, 60, &spectrum, 0.0f, 0, nullptr, nullptr);
  TCView local;
  air->view_in_object_frame(view, local);
  air_table* main_table = nullptr;
  air_table* aux_table = nullptr;
  air->build_tables(local, contour, 40, 60, main_table, aux_table);
  ASSERT_NE(main_table, nullptr);
  EXPECT_GE(main_table->theta_high, 22.5 * degree);
  EXPECT_LE(main_table->theta_low, -22.5 * degree);
  // Azimuths from the corners: along (1, -+tan 36, e), +-36 degrees about
  // the view's 0, relative to the sun's 0.3.
  EXPECT_LE(main_table->phi_low, -0.3 - 36.0 * degree);
  EXPECT_GE(main_table->phi_high, -0.3 + 36.0 * degree);
  delete main_table;
  delete aux_table;
}

TEST_F(AirTable, EveryContourStartsAtLevelZeroAndResetKeepsTheLevel) {
  object_contour own(1, 1, &spectrum, 0.0f, 0, nullptr, nullptr);
  float plane[2] = {0.0f, 0.0f};
  float* planes[2] = {plane, plane + 1};
  object_contour given(1, 1, &spectrum, planes, 0.0f, 0, nullptr, nullptr);
  own.level = 2;
  object_contour borrowing(own, 0.0f, nullptr);
  EXPECT_EQ(given.level, 0);
  EXPECT_EQ(borrowing.level, 0);
  own.reset();
  EXPECT_EQ(own.level, 2);
}

TEST_F(AirTable, ViewsAndAnglesOutOfAllRangeEndWithoutAnswersButDoNotHang) {
  const double nan = std::nan("");
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  view.set_grid(1, nan, nan, 1, nan, nan);
  view.anti_alias = 0;
  object_contour contour(1, 1, &spectrum, 0.0f, 0, nullptr, nullptr);
  air->image_contour(view, contour);
  // No cell lies in a window of no size: nothing computed, all asked of
  // the exact path.
  EXPECT_EQ(air->main_table_count, 0);

  air->sun_azimuth = 1e300;
  view.set_grid(1, -0.005, 0.005, 1, -0.005, 0.005);
  TCView local;
  air->view_in_object_frame(view, local);
  air_table* main_table = nullptr;
  air_table* aux_table = nullptr;
  air->build_tables(local, contour, 1, 1, main_table, aux_table);
  ASSERT_NE(main_table, nullptr);
  double e = 0.0, a = 0.0;
  main_table->angles_of(TCVector(1.0, 0.0, 0.0), e, a);
  EXPECT_LE(std::fabs(a), 3.1415926535);
  delete main_table;
  delete aux_table;

  air_table table(air);
  table.define(TCVector(nan, 0.0, 0.0), nan, theta_step, phi_step, nan, nan, nan, nan, nan);
  EXPECT_EQ(table.n_phi, 181);
  EXPECT_FALSE(table.lookup(nan, 0.0, 0.0, 1.0, molecular, aerosol, through));
  EXPECT_FALSE(table.lookup(0.0, nan, 0.0, 1.0, molecular, aerosol, through));
}

TEST_F(AirTable, SunAzimuthAbovePiIsWrappedForTheColumns) {
  air->sun_azimuth = 4.0;
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * degree, 0.0, 0.0);
  view.set_grid(1, -0.005, 0.005, 1, -0.005, 0.005);
  object_contour contour(1, 1, &spectrum, 0.0f, 0, nullptr, nullptr);
  TCView local;
  air->view_in_object_frame(view, local);
  air_table* main_table = nullptr;
  air_table* aux_table = nullptr;
  air->build_tables(local, contour, 1, 1, main_table, aux_table);
  ASSERT_NE(main_table, nullptr);
  EXPECT_DOUBLE_EQ(main_table->phi_offset, 4.0 - 6.283185307);
  // The view looks along azimuth 0: 6.283185307 - 4.0 from the offset.
  EXPECT_LE(main_table->phi_low, 6.283185307 - 4.0);
  EXPECT_GE(main_table->phi_high, 6.283185307 - 4.0);
  delete main_table;
  delete aux_table;
}

}  // namespace
