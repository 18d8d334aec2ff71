#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "TCDisturbed_grid.h"

namespace {

const double degrees = 0.017453292519444445;

// A periodic 8 x 8 lattice, 1 m apart, centred on the world origin, filled
// with a fixed pattern.
void fill_pattern(TCGrid& grid) {
  for (int j = 0; j < grid.n_y; j++) {
    for (int i = 0; i < grid.n_x; i++) {
      grid.height[i + grid.n_x * j] = static_cast<float>(0.1 * ((i * 7 + j * 3) % 11) - 0.4);
    }
  }
}

void make_periodic_centred(TCGrid& grid) {
  grid.periodic_x = 1;
  grid.periodic_y = 1;
  grid.offset_x = 0.5 * grid.n_x * grid.dx;
  grid.offset_y = 0.5 * grid.n_y * grid.dy;
}

// One detail of n by n nodes, 1 m apart, on a flat periodic 8 x 8 lattice;
// the detail's node (0, 0) at world (0, 0).
TCDisturbed_grid* flat_holder_with_detail(int n) {
  TCDisturbed_grid* holder = new TCDisturbed_grid(8, 8, n, n, 1.0, 1.0, nullptr, 1.0, 1.0);
  make_periodic_centred(*holder);
  return holder;
}

}  // namespace

TEST(DisturbedGrid, WithoutDetailsOrLinesReadsLikeAPlainGrid) {
  TCGrid plain(8, 8, 1.0, 1.0);
  TCDisturbed_grid holder(8, 8, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1.0, 1.0);
  TCGrid* both[2] = {&plain, &holder};
  for (TCGrid* grid : both) {
    make_periodic_centred(*grid);
    fill_pattern(*grid);
    grid->z_offset = 0.25;
    grid->slope_step = 2;
    grid->set_cusps(0.1);
    grid->round_flag = 1;
    grid->radius = 50.0;
  }
  for (int k = 0; k < 200; k++) {
    const double x = -13.0 + 0.173 * k;
    const double y = 7.5 - 0.091 * k;
    EXPECT_EQ(plain.height_at(x, y, 0), holder.height_at(x, y, 0));
    EXPECT_EQ(plain.height_at(x, y, 1), holder.height_at(x, y, 1));
    double px, py, hx, hy;
    plain.slope_at(x, y, px, py, 0);
    holder.slope_at(x, y, hx, hy, 0);
    EXPECT_EQ(px, hx);
    EXPECT_EQ(py, hy);
  }
  for (int i = -3; i < 12; i++) {
    EXPECT_EQ(plain.height_at_node(i, 2 * i), holder.height_at_node(i, 2 * i));
  }
  float pmin, pmax, hmin, hmax;
  plain.height_range(pmin, pmax);
  holder.height_range(hmin, hmax);
  EXPECT_EQ(pmin, hmin);
  EXPECT_EQ(pmax, hmax);
}

TEST(DisturbedGrid, PrimaryLatticeWrapsEvenOnAxesThatAreNotPeriodic) {
  TCDisturbed_grid holder(8, 8, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1.0, 1.0);
  fill_pattern(holder);
  holder.offset_x = 4.0;
  holder.offset_y = 4.0;
  // A bare lattice would drop far below one row past its top; the holder
  // reads the first row again.
  EXPECT_NEAR(holder.height_at(-2.0, 4.0, 0), holder.height[2 + 8 * 0], 1e-12);
  EXPECT_NEAR(holder.height_at(3.5, -4.0, 0),
              0.5 * (static_cast<double>(holder.height[7]) + holder.height[0]), 1e-12);
  EXPECT_NEAR(holder.height_at_node(9, -1), holder.height[1 + 8 * 7], 1e-12);
  // Slopes still clamp at the open edges: a backward difference from
  // node 0 has nothing behind it.
  double sx, sy;
  holder.slope_at_node(0, 3, sx, sy);
  EXPECT_EQ(sx, 0.0);
}

TEST(DisturbedGrid, AdditiveDetailAddsNothingOutsideAndHalfOverItsEdge) {
  TCDisturbed_grid* holder = flat_holder_with_detail(4);
  for (int k = 0; k < 4 * 6; k++) holder->detail_field[0][k] = 2.0f;
  EXPECT_NEAR(holder->height_at(1.5, 1.5, 0), 2.0, 1e-12);
  EXPECT_NEAR(holder->height_at(-1.0, 1.5, 0), 0.0, 1e-12);
  EXPECT_NEAR(holder->height_at(10.0, 10.0, 0), 0.0, 1e-12);
  // Half a cell beyond the last column: two corners on, two off.
  EXPECT_NEAR(holder->height_at(3.5, 1.0, 0), 1.0, 1e-12);
  // A quarter beyond in x and in y: only the corner (3, 3) is on.
  EXPECT_NEAR(holder->height_at(3.25, 3.25, 0), 2.0 * 0.75 * 0.75, 1e-12);
  delete holder;
}

TEST(DisturbedGrid, MultiplierIsTheIdentityOutsideAndHalfOverItsEdge) {
  TCDisturbed_grid* holder = flat_holder_with_detail(4);
  for (int k = 0; k < 64; k++) holder->height[k] = 1.0f;
  holder->set_detail_multiplier(0);
  for (int k = 0; k < 4 * 6; k++) holder->detail_field[0][k] = 3.0f;
  EXPECT_NEAR(holder->height_at(1.5, 1.5, 0), 3.0, 1e-12);
  EXPECT_NEAR(holder->height_at(-2.0, 1.5, 0), 1.0, 1e-12);
  EXPECT_NEAR(holder->height_at(3.5, 1.0, 0), 0.5 * 3.0 + 0.5 * 1.0, 1e-12);
  EXPECT_NEAR(holder->height_at(3.25, 3.25, 0), 0.5625 * 3.0 + 0.4375, 1e-12);
  delete holder;
}

TEST(DisturbedGrid, PeriodicDetailWrapsBothAxes) {
  TCDisturbed_grid* holder = flat_holder_with_detail(4);
  holder->detail_periodic[0] = 1;
  for (int k = 0; k < 16; k++) holder->detail_field[0][k] = static_cast<float>(k);
  EXPECT_NEAR(holder->height_at(1.25, 2.5, 0), holder->height_at(1.25 + 4.0, 2.5 - 8.0, 0), 1e-12);
  // Between the last column and the first: 3 and 0 averaged on row 0.
  EXPECT_NEAR(holder->height_at(3.5, 0.0, 0), 1.5, 1e-12);
  delete holder;
}

TEST(DisturbedGrid, RadialDetailReadsItsRowByRadiusAndIsZeroOrOneBeyond) {
  TCDisturbed_grid holder(8, 8, 5, 1, 2.0, 2.0, nullptr, 1.0, 1.0);
  make_periodic_centred(holder);
  holder.set_detail_radial(0);
  const float row[5] = {1.0f, 0.5f, 0.25f, 0.0f, 4.0f};
  for (int k = 0; k < 5; k++) holder.detail_field[0][k] = row[k];
  // r = 5: between index 2 (r 4) and 3 (r 6).
  EXPECT_NEAR(holder.height_at(3.0, 4.0, 0), 0.125, 1e-12);
  EXPECT_NEAR(holder.height_at(0.0, 0.0, 0), 1.0, 1e-12);
  // At and beyond (n_x - 1) dx = 8 nothing is added.
  EXPECT_NEAR(holder.height_at(0.0, 8.0, 0), 0.0, 1e-12);
  holder.set_detail_radial_multiplier(0);
  for (int k = 0; k < 64; k++) holder.height[k] = 2.0f;
  EXPECT_NEAR(holder.height_at(3.0, 4.0, 0), 0.25, 1e-12);
  EXPECT_NEAR(holder.height_at(0.0, 9.0, 0), 2.0, 1e-12);
}

TEST(DisturbedGrid, OneWallAtXZeroReadsTheMirrorPointToo) {
  TCDisturbed_grid holder(8, 8, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1.0, 1.0);
  TCGrid plain(8, 8, 1.0, 1.0);
  make_periodic_centred(holder);
  make_periodic_centred(plain);
  fill_pattern(holder);
  fill_pattern(plain);
  holder.z_offset = 0.5;
  plain.z_offset = 0.5;
  holder.add_reflecting_line(0.0, 0.0, 90.0 * degrees);
  const double points[3][2] = {{1.3, 2.7}, {-2.2, 0.4}, {3.9, -1.6}};
  for (const auto& p : points) {
    const double a = p[0];
    const double b = p[1];
    EXPECT_NEAR(holder.height_at(a, b, 0),
                plain.height_at(a, b, 0) + plain.height_at(-a, b, 0) - 0.5, 1e-9);
    double hx, hy, px, py, mx, my;
    holder.slope_at(a, b, hx, hy, 0);
    plain.slope_at(a, b, px, py, 0);
    plain.slope_at(-a, b, mx, my, 0);
    // The mirror image's x slope changes sign on the way back.
    EXPECT_NEAR(hx, px - mx, 1e-9);
    EXPECT_NEAR(hy, py + my, 1e-9);
  }
}

TEST(DisturbedGrid, TheHundredAndFirstWallEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCDisturbed_grid holder(8, 8, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1.0, 1.0);
        for (int k = 0; k < 100; k++) holder.add_reflecting_line(k, 0.0, 0.0);
        std::cerr << "hundred walls taken\n";
        holder.add_reflecting_line(100.0, 0.0, 0.0);
      },
      ::testing::ExitedWithCode(1),
      "hundred walls taken\nunable to allocate reflecting line \ntoo many disturbances on "
      "surface ");
}

TEST(DisturbedGrid, DetailTurnedNinetyDegreesTurnsItsRampOntoWorldY) {
  TCDisturbed_grid* holder = flat_holder_with_detail(8);
  holder->detail_offset[0][0] = 4.0;
  holder->detail_offset[0][1] = 4.0;
  holder->detail_periodic[0] = 1;
  holder->set_detail_rotation(0, 90.0 * degrees);
  EXPECT_EQ(holder->detail_rotated[0], 1);
  EXPECT_NEAR(holder->detail_cos[0], 0.0, 1e-9);
  // The stored sine is that of minus the angle.
  EXPECT_NEAR(holder->detail_sin[0], -1.0, 1e-12);
  // Rising along the detail's own u axis by 0.5 per node (1 m).
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 8; i++) holder->detail_field[0][i + 8 * j] = static_cast<float>(0.5 * i);
  }
  const double h0 = holder->height_at(0.3, -0.5, 0);
  EXPECT_NEAR(holder->height_at(1.3, -0.5, 0), h0, 1e-9);
  EXPECT_NEAR(holder->height_at(0.3, 0.5, 0), h0 + 0.5, 1e-9);
  double sx, sy;
  holder->slope_at(0.3, -0.5, sx, sy, 0);
  EXPECT_NEAR(sx, 0.0, 1e-9);
  EXPECT_NEAR(sy, 0.5, 1e-9);
  delete holder;
}

TEST(DisturbedGrid, DetailCoordinatesAndTheirInverseRoundTrip) {
  TCDisturbed_grid* holder = flat_holder_with_detail(4);
  holder->detail_offset[0][0] = 2.5;
  holder->detail_offset[0][1] = -1.0;
  holder->set_detail_rotation(0, 30.0 * degrees);
  double u, v, x, y;
  holder->detail_coordinates(0, 1.0, 2.0, u, v);
  // u = x + 2.5 = 3.5, v = y - 1 = 1; turned with c = cos 30, s = -sin 30.
  const double c = std::cos(30.0 * degrees);
  const double s = -std::sin(30.0 * degrees);
  EXPECT_NEAR(u, 3.5 * c - 1.0 * s, 1e-12);
  EXPECT_NEAR(v, 1.0 * c + 3.5 * s, 1e-12);
  holder->detail_to_world(0, u, v, x, y);
  EXPECT_NEAR(x, 1.0, 1e-12);
  EXPECT_NEAR(y, 2.0, 1e-12);
  holder->clear_detail_rotation(0);
  holder->detail_coordinates(0, 1.0, 2.0, u, v);
  EXPECT_NEAR(u, 3.5, 1e-12);
  EXPECT_NEAR(v, 1.0, 1e-12);
  delete holder;
}

TEST(DisturbedGrid, SettersIgnoreAnIndexOutsideTheTable) {
  TCDisturbed_grid* holder = flat_holder_with_detail(4);
  const int bad[3] = {-1, 1, 99};
  for (int i : bad) {
    holder->set_detail_radial(i);
    holder->set_detail_multiplier(i);
    holder->set_detail_radial_multiplier(i);
    holder->set_detail_rotation(i, 1.0);
    holder->clear_detail_rotation(i);
    holder->set_detail_cartesian(i);
  }
  for (int k = 0; k < TCDisturbed_grid::capacity; k++) {
    EXPECT_EQ(holder->detail_mode[k], 0);
    EXPECT_EQ(holder->detail_rotated[k], 0);
    EXPECT_EQ(holder->detail_sin[k], 0.0);
  }
  holder->set_detail_multiplier(0);
  EXPECT_EQ(holder->detail_mode[0], 2);
  holder->set_detail_radial_multiplier(0);
  EXPECT_EQ(holder->detail_mode[0], 3);
  holder->set_detail_radial(0);
  EXPECT_EQ(holder->detail_mode[0], 1);
  holder->set_detail_cartesian(0);
  EXPECT_EQ(holder->detail_mode[0], 0);
  double u, v;
  holder->detail_coordinates(5, 1.5, -2.5, u, v);
  EXPECT_EQ(u, 1.5);
  EXPECT_EQ(v, -2.5);
  delete holder;
}

TEST(DisturbedGrid, HeightRangeDoublesWithOneFarWall) {
  TCDisturbed_grid holder(8, 8, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1.0, 1.0);
  fill_pattern(holder);
  float min, max;
  holder.height_range(min, max);
  EXPECT_NEAR(min, -0.4, 1e-6);
  EXPECT_NEAR(max, 0.6, 1e-6);
  holder.add_reflecting_line(1.0e6, -1.0e6, 0.3);
  holder.height_range(min, max);
  EXPECT_NEAR(min, -0.8, 1e-6);
  EXPECT_NEAR(max, 1.2, 1e-6);
}

TEST(DisturbedGrid, HeightRangeDoesNotStackDetails) {
  const int nx[3] = {2, 3, 4};
  const int ny[3] = {2, 3, 1};
  const double d[3] = {1.0, 1.0, 1.0};
  TCDisturbed_grid holder(8, 8, 3, nx, ny, d, d, nullptr, 1.0, 1.0);
  fill_pattern(holder);
  holder.set_detail_multiplier(1);
  holder.set_detail_radial(2);
  holder.detail_field[0][0] = 1.0f;
  holder.detail_field[0][3] = -0.5f;
  holder.detail_field[1][4] = 1.5f;
  holder.detail_field[2][0] = -2.0f;
  float min, max;
  holder.height_range(min, max);
  // Each detail against the bare lattice's -0.4 and 0.6, not on top of one another;
  // the multiplier's values taken like the rest.
  EXPECT_NEAR(min, -2.4, 1e-6);
  EXPECT_NEAR(max, 2.1, 1e-6);
}

TEST(DisturbedGrid, BehindReflectingLineOnlyOnTheBlankSide) {
  TCDisturbed_grid holder(8, 8, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1.0, 1.0);
  EXPECT_EQ(holder.behind_reflecting_line(-5.0, 3.0), 0);
  // A line along +x through (0, 1): (x - 0) * 0 - (y - 1) * 1 < 0 above it.
  holder.add_reflecting_line(0.0, 1.0, 0.0);
  EXPECT_EQ(holder.behind_reflecting_line(3.0, 2.0), 1);
  EXPECT_EQ(holder.behind_reflecting_line(3.0, 0.0), 0);
  // A second line along +y through (2, 0): x < 2 is behind it.
  holder.add_reflecting_line(2.0, 0.0, 90.0 * degrees);
  EXPECT_EQ(holder.behind_reflecting_line(3.0, 0.0), 0);
  EXPECT_EQ(holder.behind_reflecting_line(1.0, 0.0), 1);
}

TEST(DisturbedGrid, EveryConstructorAllocatesZeroedDetailsAndKeepsItsLatticeForm) {
  const int nx[2] = {3, 5};
  const int ny[2] = {4, 1};
  const double ddx[2] = {0.5, 2.0};
  const double ddy[2] = {0.25, 2.0};
  std::vector<float> primary(10 * 6, 7.0f);
  TCDisturbed_grid* holders[6] = {
      new TCDisturbed_grid(8, 6, 3, 4, 0.5, 0.25, nullptr, 1.0, 1.0),
      new TCDisturbed_grid(8, 6, 2, nx, ny, ddx, ddy, primary.data(), 1.0, 1.0),
      new TCDisturbed_grid(8, 6, 40, 3, 4, 0.5, 0.25, primary.data(), 1.0, 1.0),
      new TCDisturbed_grid(8, 6, 40, 2, nx, ny, ddx, ddy, nullptr, 1.0, 1.0),
      new TCDisturbed_grid(8, 6, 40, 13, 3, 4, 0.5, 0.25, nullptr, 1.0, 1.0),
      new TCDisturbed_grid(8, 6, 40, 13, 2, nx, ny, ddx, ddy, primary.data(), 1.0, 1.0)};
  const int counts[6] = {1, 2, 1, 2, 1, 2};
  const int doubling[6] = {0, 0, 1, 1, 1, 1};
  const int sizes[6] = {99999999, 99999999, 40, 40, 12, 12};
  const int handed[6] = {0, 1, 1, 0, 0, 1};
  for (int h = 0; h < 6; h++) {
    TCDisturbed_grid* g = holders[h];
    EXPECT_EQ(g->n_details, counts[h]);
    EXPECT_EQ(g->n_lines, 0);
    EXPECT_EQ(g->doubling_on, doubling[h]);
    EXPECT_EQ(g->doubling_size, sizes[h]);
    EXPECT_EQ(g->height == primary.data(), handed[h] == 1);
    for (int k = 0; k < g->n_details; k++) {
      EXPECT_EQ(g->detail_n_x[k], nx[k]);
      EXPECT_EQ(g->detail_n_y[k], ny[k]);
      EXPECT_EQ(g->detail_dx[k], ddx[k]);
      EXPECT_EQ(g->detail_inv[k][1], 1.0 / ddy[k]);
      EXPECT_EQ(g->detail_mode[k], 0);
      EXPECT_EQ(g->detail_periodic[k], 0);
      for (int e = 0; e < (nx[k] + 2) * ny[k]; e++) EXPECT_EQ(g->detail_field[k][e], 0.0f);
    }
  }
  // A handed-in buffer is what the holder samples, and it outlives the holder.
  EXPECT_NEAR(holders[1]->height_at(0.5, 0.5, 0), 7.0, 1e-12);
  for (TCDisturbed_grid* g : holders) delete g;
  EXPECT_EQ(primary[0], 7.0f);
}

TEST(DisturbedGrid, ADetailThatCannotBeAllocatedEndsTheRunWithItsIndex) {
  const int nx[3] = {4, 4, 0};
  const int ny[3] = {4, 4, 4};
  const double d[3] = {1.0, 1.0, 1.0};
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCDisturbed_grid holder(8, 8, 3, nx, ny, d, d, nullptr, 1.0, 1.0);
      },
      ::testing::ExitedWithCode(1), "unable to allocate grid 2\n");
  const int huge[1] = {2000000000};
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCDisturbed_grid holder(8, 8, 40, 1, huge, huge, d, d, nullptr, 1.0, 1.0);
      },
      ::testing::ExitedWithCode(1), "unable to allocate grid 0\n");
}

TEST(DisturbedGrid, MoreThanAHundredDetailsAreRefusedWithAClearMessage) {
  std::vector<int> n(101, 2);
  std::vector<double> d(101, 1.0);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCDisturbed_grid holder(8, 8, 101, n.data(), n.data(), d.data(), d.data(), nullptr, 1.0,
                                1.0);
      },
      ::testing::ExitedWithCode(1), "too many disturbances on surface: 101, at most 100 fit\n");
}

TEST(DisturbedGrid, NodeHeightAndNodeSlopeCarryTheDetails) {
  TCDisturbed_grid* holder = flat_holder_with_detail(4);
  fill_pattern(*holder);
  holder->z_offset = 0.2;
  for (int k = 0; k < 16; k++) holder->detail_field[0][k] = static_cast<float>(0.1 * k);
  // Lattice node (5, 6) sits at world (1, 2): detail node (1, 2) = 0.9.
  const double lattice = holder->height[5 + 8 * 6];
  EXPECT_NEAR(holder->height_at_node(5, 6), lattice + 0.9 + 0.2, 1e-6);
  EXPECT_NEAR(holder->height_at_node(5, 6), holder->height_at(1.0, 2.0, 0), 1e-9);
  double sx, sy;
  holder->slope_at_node(5, 6, sx, sy);
  // Lattice backward differences plus the detail's over S = 2 nodes (2 m),
  // sampled a node ahead: x from nodes (2, 2) and (0, 2), y from (1, 3) and (1, 1).
  const double lattice_x = holder->height[5 + 8 * 6] - holder->height[4 + 8 * 6];
  const double lattice_y = holder->height[5 + 8 * 6] - holder->height[5 + 8 * 5];
  EXPECT_NEAR(sx, lattice_x + (1.0 - 0.8) / 2.0, 1e-6);
  EXPECT_NEAR(sy, lattice_y + (1.3 - 0.5) / 2.0, 1e-6);
  delete holder;
}

TEST(DisturbedGrid, SamplingLeavesTheHolderUntouched) {
  TCDisturbed_grid* holder = flat_holder_with_detail(4);
  fill_pattern(*holder);
  holder->set_cusps(0.2);
  holder->round_flag = 1;
  holder->radius = 40.0;
  holder->add_reflecting_line(0.5, 0.5, 0.7);
  std::vector<unsigned char> before(sizeof(TCDisturbed_grid));
  std::memcpy(before.data(), static_cast<void*>(holder), sizeof(TCDisturbed_grid));
  double sum = 0.0, sx, sy;
  for (int k = 0; k < 50; k++) {
    sum += holder->height_at(0.3 * k, -0.2 * k, 0);
    holder->slope_at(0.3 * k, -0.2 * k, sx, sy, 0);
    sum += sx + sy + holder->height_at_node(k, -k);
    holder->slope_at_node(k, 2 * k, sx, sy);
    sum += sx + sy;
  }
  EXPECT_TRUE(std::isfinite(sum));
  EXPECT_EQ(std::memcmp(before.data(), static_cast<void*>(holder), sizeof(TCDisturbed_grid)), 0);
  delete holder;
}

// A smooth scene: long sine waves on the lattice, a rotated Gaussian bump
// detail, a radial ring and a gentle multiplier. Slopes against central
// differences of the heights away from detail edges.
TEST(DisturbedGrid, SlopesAgreeWithCentralDifferencesOfHeightsWhereSmooth) {
  const int nx[3] = {96, 64, 200};
  const int ny[3] = {96, 64, 1};
  const double ddx[3] = {0.25, 0.5, 0.1};
  TCDisturbed_grid holder(128, 128, 3, nx, ny, ddx, ddx, nullptr, 0.25, 0.25);
  make_periodic_centred(holder);
  const double two_pi = 6.283185307;
  for (int j = 0; j < 128; j++) {
    for (int i = 0; i < 128; i++) {
      holder.height[i + 128 * j] =
          static_cast<float>(0.3 * std::sin(two_pi * i / 64.0) * std::cos(two_pi * j / 64.0));
    }
  }
  for (int j = 0; j < 96; j++) {
    for (int i = 0; i < 96; i++) {
      const double u = (i - 48) * 0.25;
      const double v = (j - 48) * 0.25;
      holder.detail_field[0][i + 96 * j] =
          static_cast<float>(0.5 * std::exp(-(u * u + v * v) / 32.0));
    }
  }
  for (int j = 0; j < 64; j++) {
    for (int i = 0; i < 64; i++) {
      holder.detail_field[1][i + 64 * j] = static_cast<float>(
          1.0 + 0.02 * std::sin(two_pi * i / 64.0) * std::sin(two_pi * j / 64.0));
    }
  }
  for (int i = 0; i < 200; i++) {
    const double r = i * 0.1;
    holder.detail_field[2][i] =
        static_cast<float>(0.2 * std::cos(two_pi * r / 10.0) * std::exp(-r * r / 50.0));
  }
  // The bump's centre, detail (12, 12), turned back to the world origin, so
  // that the points sampled stay well inside the detail.
  holder.set_detail_rotation(0, 35.0 * degrees);
  const double c = holder.detail_cos[0];
  const double s = holder.detail_sin[0];
  holder.detail_offset[0][0] = c * 12.0 + s * 12.0;
  holder.detail_offset[0][1] = -s * 12.0 + c * 12.0;
  holder.detail_periodic[0] = 0;
  holder.set_detail_multiplier(1);
  holder.detail_periodic[1] = 1;
  holder.set_detail_radial(2);
  holder.detail_offset[2][0] = 3.0;
  holder.detail_offset[2][1] = -2.0;
  holder.add_reflecting_line(-6.0, 0.0, 80.0 * degrees);
  const double e = 1e-3;
  double worst = 0.0;
  for (int k = 0; k < 400; k++) {
    const double x = -5.0 + 10.0 * ((k * 37) % 101) / 101.0;
    const double y = -5.0 + 10.0 * ((k * 53) % 97) / 97.0;
    double sx, sy;
    holder.slope_at(x, y, sx, sy, 1);
    const double cx = (holder.height_at(x + e, y, 1) - holder.height_at(x - e, y, 1)) / (2 * e);
    const double cy = (holder.height_at(x, y + e, 1) - holder.height_at(x, y - e, 1)) / (2 * e);
    worst = std::fmax(worst, std::fabs(sx - cx));
    worst = std::fmax(worst, std::fabs(sy - cy));
    // The stencils centre the lattice and cartesian differences only to
    // first order within a cell, the radial ones are one-sided, and the
    // multiplier's own gradient (0.02 * 2 pi / 16 of the height) is left out
    // on purpose: about 0.025 at worst here, where a lost or mis-signed term
    // would be off by the slopes themselves (0.1 to 0.3).
    EXPECT_NEAR(sx, cx, 0.035) << x << " " << y;
    EXPECT_NEAR(sy, cy, 0.035) << x << " " << y;
  }
  std::cout << "largest slope difference " << worst << "\n";
}

// The reference scene and its expected heights and slopes are written by
// holder_model.py beside this file, a numpy model of the combination
// rules made apart from this code.
TEST(DisturbedGrid, HeightsAndSlopesAgreeWithTheNumpyModel) {
  std::ifstream in(TC_TEST_DATA_DIR "/disturbances/holder_points.txt");
  ASSERT_TRUE(in.good());
  std::string word;
  int nx, ny, step, px, py, cusp, round;
  double dx, dy, ox, oy, z, cf, radius;
  in >> word >> nx >> ny >> dx >> dy >> ox >> oy >> z >> step >> px >> py >> cusp >> cf >> round >>
      radius;
  ASSERT_EQ(word, "lattice");
  std::vector<float> lattice(nx * ny);
  for (float& v : lattice) in >> v;
  int count;
  in >> word >> count;
  ASSERT_EQ(word, "details");
  std::vector<int> mode(count), per(count), rot(count), dnx(count), dny(count);
  std::vector<double> ang(count), ddx(count), ddy(count), dox(count), doy(count);
  std::vector<std::vector<float> > values(count);
  for (int k = 0; k < count; k++) {
    in >> mode[k] >> per[k] >> rot[k] >> ang[k] >> dnx[k] >> dny[k] >> ddx[k] >> ddy[k] >> dox[k] >>
        doy[k];
    values[k].resize(dnx[k] * dny[k]);
    for (float& v : values[k]) in >> v;
  }
  TCDisturbed_grid holder(nx, ny, count, dnx.data(), dny.data(), ddx.data(), ddy.data(), nullptr,
                          dx, dy);
  for (int k = 0; k < nx * ny; k++) holder.height[k] = lattice[k];
  holder.offset_x = ox;
  holder.offset_y = oy;
  holder.z_offset = z;
  holder.slope_step = step;
  holder.periodic_x = px;
  holder.periodic_y = py;
  if (cusp) holder.set_cusps(cf);
  holder.round_flag = round;
  holder.radius = radius;
  for (int k = 0; k < count; k++) {
    if (mode[k] == 1) holder.set_detail_radial(k);
    if (mode[k] == 2) holder.set_detail_multiplier(k);
    if (mode[k] == 3) holder.set_detail_radial_multiplier(k);
    holder.detail_periodic[k] = per[k];
    if (rot[k]) holder.set_detail_rotation(k, ang[k]);
    holder.detail_offset[k][0] = dox[k];
    holder.detail_offset[k][1] = doy[k];
    for (int e = 0; e < dnx[k] * dny[k]; e++) holder.detail_field[k][e] = values[k][e];
  }
  int lines;
  in >> word >> lines;
  ASSERT_EQ(word, "lines");
  for (int k = 0; k < lines; k++) {
    double x, y, a;
    in >> x >> y >> a;
    holder.add_reflecting_line(x, y, a);
  }
  int points;
  in >> word >> points;
  ASSERT_EQ(word, "points");
  ASSERT_GE(points, 2000);
  int checked = 0;
  for (int k = 0; k < points; k++) {
    double x, y, h, sx, sy;
    in >> x >> y >> h >> sx >> sy;
    ASSERT_TRUE(in.good());
    double gx, gy;
    holder.slope_at(x, y, gx, gy, 0);
    EXPECT_NEAR(holder.height_at(x, y, 0), h, 1e-6) << "at " << x << " " << y;
    EXPECT_NEAR(gx, sx, 1e-6) << "at " << x << " " << y;
    EXPECT_NEAR(gy, sy, 1e-6) << "at " << x << " " << y;
    checked++;
  }
  EXPECT_EQ(checked, points);
}
