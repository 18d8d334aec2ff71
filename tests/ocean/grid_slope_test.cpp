#include <gtest/gtest.h>

#include <cmath>

#include "TCGrid.h"

// Expected values are worked out by hand in the comments, or are the
// analytic derivative of the sampled surface.

namespace {

void set_node(TCGrid& grid, int i, int j, float value) {
  grid.height[i + grid.n_x * j] = value;
}

// 4 by 3 nodes, dx 0.5 m, dy 2 m: h(2, 1) = 5, h(1, 1) = 2, h(2, 0) = 1,
// h(3, 0) = 3, others 0.
void fill_small(TCGrid& grid) {
  set_node(grid, 2, 1, 5.0f);
  set_node(grid, 1, 1, 2.0f);
  set_node(grid, 2, 0, 1.0f);
  set_node(grid, 3, 0, 3.0f);
}

TEST(GridNodeSlope, BackwardDifferencesOverOneNode) {
  TCGrid grid(4, 3, 0.5, 2.0);
  fill_small(grid);
  double dzdx, dzdy;
  // (5 - 2) / 0.5 and (5 - 1) / 2.
  grid.slope_at_node(2, 1, dzdx, dzdy);
  EXPECT_DOUBLE_EQ(dzdx, 6.0);
  EXPECT_DOUBLE_EQ(dzdy, 2.0);
}

TEST(GridNodeSlope, StepWidensTheDifferenceAndItsDenominator) {
  TCGrid grid(4, 3, 0.5, 2.0);
  fill_small(grid);
  grid.slope_step = 2;
  double dzdx, dzdy;
  // (h(2, 1) - h(0, 1)) / (2 * 0.5) = 5; row -1 clamps to row 0:
  // (5 - 1) / (2 * 2) = 1.
  grid.slope_at_node(2, 1, dzdx, dzdy);
  EXPECT_DOUBLE_EQ(dzdx, 5.0);
  EXPECT_DOUBLE_EQ(dzdy, 1.0);
}

TEST(GridNodeSlope, OpenAxesClampAndPeriodicAxesWrap) {
  TCGrid open(4, 3, 0.5, 2.0);
  fill_small(open);
  double dzdx, dzdy;
  // Node (0, 0) differs from itself on both open axes.
  open.slope_at_node(0, 0, dzdx, dzdy);
  EXPECT_EQ(dzdx, 0.0);
  EXPECT_EQ(dzdy, 0.0);
  // Beyond the far edge, (4, 0) and the node behind it, (3, 0), both read
  // h(3, 0): (3 - 3) / 0.5.
  open.slope_at_node(4, 0, dzdx, dzdy);
  EXPECT_EQ(dzdx, 0.0);

  TCGrid closed(4, 3, 0.5, 2.0);
  fill_small(closed);
  closed.periodic_x = 1;
  closed.periodic_y = 1;
  // (h(0, 0) - h(3, 0)) / 0.5 = -6; (h(0, 0) - h(0, 2)) / 2 = 0.
  closed.slope_at_node(0, 0, dzdx, dzdy);
  EXPECT_DOUBLE_EQ(dzdx, -6.0);
  EXPECT_DOUBLE_EQ(dzdy, 0.0);
  // Row 0 of column 2 looks back to row 2: (1 - 0) / 2.
  closed.slope_at_node(2, 0, dzdx, dzdy);
  EXPECT_DOUBLE_EQ(dzdy, 0.5);
  // Indices far out wrap the same: (6, 4) is (2, 1).
  closed.slope_at_node(6, 4, dzdx, dzdy);
  EXPECT_DOUBLE_EQ(dzdx, 6.0);
  EXPECT_DOUBLE_EQ(dzdy, 2.0);
}

TEST(GridNodeSlope, NodeSlopesIgnoreOffsetAndCusps) {
  TCGrid grid(4, 3, 0.5, 2.0);
  fill_small(grid);
  grid.z_offset = 7.0;
  grid.set_cusps(0.9);
  double dzdx, dzdy;
  grid.slope_at_node(2, 1, dzdx, dzdy);
  EXPECT_DOUBLE_EQ(dzdx, 6.0);
  EXPECT_DOUBLE_EQ(dzdy, 2.0);
}

TEST(GridSlope, FieldConstantAlongXHasNoXSlopeForAnyStep) {
  TCGrid grid(8, 8, 0.5, 0.75);
  grid.periodic_x = 1;
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 8; i++) set_node(grid, i, j, static_cast<float>(0.1 * j * j));
  }
  const double points[][2] = {{0.1, 1.2}, {3.9, 2.3}, {-1.3, 4.4}, {2.0, 0.75}};
  for (int step = 1; step <= 3; step++) {
    grid.slope_step = step;
    for (const auto& p : points) {
      double dzdx = 1.0, dzdy = 0.0;
      grid.slope_at(p[0], p[1], dzdx, dzdy, 0);
      EXPECT_EQ(dzdx, 0.0) << step;
      EXPECT_NE(dzdy, 0.0) << step;
    }
  }
}

TEST(GridSlope, HalfStepCentringMakesAParabolaExact) {
  // h = x^2 on 0.5 m spacing: the backward difference at node x_i is
  // 2 x_i - s dx, linear in x, so sampled half a step ahead and interpolated
  // it gives 2x exactly; without the half step it would be 2x - s dx.
  TCGrid grid(16, 4, 0.5, 1.0);
  for (int j = 0; j < 4; j++) {
    for (int i = 0; i < 16; i++) set_node(grid, i, j, static_cast<float>(0.25 * i * i));
  }
  for (int step = 1; step <= 3; step++) {
    grid.slope_step = step;
    double dzdx, dzdy;
    grid.slope_at(3.3, 1.4, dzdx, dzdy, 0);
    EXPECT_NEAR(dzdx, 6.6, 1e-12) << step;
    EXPECT_NEAR(dzdy, 0.0, 1e-12) << step;
  }
}

TEST(GridSlope, HalfStepCentringAppliesAlongYToo) {
  // h = y^2 on 0.25 m spacing in y.
  TCGrid grid(4, 16, 1.0, 0.25);
  for (int j = 0; j < 16; j++) {
    for (int i = 0; i < 4; i++) set_node(grid, i, j, static_cast<float>(0.0625 * j * j));
  }
  for (int step = 1; step <= 4; step++) {
    grid.slope_step = step;
    double dzdx, dzdy;
    grid.slope_at(1.5, 2.1, dzdx, dzdy, 0);
    EXPECT_NEAR(dzdy, 4.2, 1e-12) << step;
    EXPECT_NEAR(dzdx, 0.0, 1e-12) << step;
  }
}

// A plane wave h = A sin(kx x + ky y) on a periodic lattice. Along x the
// difference over s nodes, centred, is A kx cos(...) sin(t) / t with
// t = kx s dx / 2, off by at most A |kx| t^2 / 6; bilinear interpolation of
// it adds at most A |kx| ((kx dx)^2 + (ky dy)^2) / 8. Heights are floats:
// a relative 2^-24 on each of the two heights of a difference.
double slope_bound(double amplitude, double k_along, double k_x, double k_y, double step,
                   double spacing, double dx, double dy) {
  const double t = k_along * step * spacing * 0.5;
  const double difference = t * t / 6.0;
  const double interpolation = (k_x * dx * k_x * dx + k_y * dy * k_y * dy) / 8.0;
  const double storage = 2.0 * amplitude * std::ldexp(1.0, -24) / (step * spacing);
  return amplitude * std::fabs(k_along) * (difference + interpolation) + storage + 1e-12;
}

void check_plane_wave(double dx, double dy, int step) {
  const int n_x = 64, n_y = 32;
  const double pi = 3.14159265358979323846;
  const double amplitude = 0.7;
  const double k_x = 2.0 * pi * 3.0 / (n_x * dx);
  const double k_y = -2.0 * pi * 2.0 / (n_y * dy);
  TCGrid grid(n_x, n_y, dx, dy);
  grid.periodic_x = 1;
  grid.periodic_y = 1;
  grid.offset_x = 0.5 * n_x * dx;
  grid.offset_y = 0.5 * n_y * dy;
  grid.slope_step = step;
  for (int j = 0; j < n_y; j++) {
    for (int i = 0; i < n_x; i++) {
      set_node(grid, i, j, static_cast<float>(amplitude * std::sin(k_x * i * dx + k_y * j * dy)));
    }
  }
  const double bound_x = slope_bound(amplitude, k_x, k_x, k_y, step, dx, dx, dy);
  const double bound_y = slope_bound(amplitude, k_y, k_x, k_y, step, dy, dx, dy);
  double worst_x = 0.0, worst_y = 0.0;
  for (int p = 0; p < 97; p++) {
    // Points spread over the lattice and beyond it, off the nodes.
    const double x = (p * 0.6180339887 - std::floor(p * 0.6180339887) - 0.5) * n_x * dx * 1.3;
    const double y = (p * 0.7548776662 - std::floor(p * 0.7548776662) - 0.5) * n_y * dy * 1.3;
    const double phase = k_x * (x + grid.offset_x) + k_y * (y + grid.offset_y);
    double dzdx, dzdy;
    grid.slope_at(x, y, dzdx, dzdy, 0);
    const double error_x = std::fabs(dzdx - amplitude * k_x * std::cos(phase));
    const double error_y = std::fabs(dzdy - amplitude * k_y * std::cos(phase));
    EXPECT_LE(error_x, bound_x) << "dx " << dx << " step " << step << " at " << x << ", " << y;
    EXPECT_LE(error_y, bound_y) << "dy " << dy << " step " << step << " at " << x << ", " << y;
    if (error_x > worst_x) worst_x = error_x;
    if (error_y > worst_y) worst_y = error_y;
  }
  // The bound is not loose by orders of magnitude: the error is visible.
  EXPECT_GT(worst_x, 0.05 * bound_x);
  EXPECT_GT(worst_y, 0.05 * bound_y);
}

TEST(GridSlope, PlaneWaveSlopesStayWithinTheSchemesErrorBound) {
  const double spacings[][2] = {{1.0, 1.0}, {0.5, 0.5}, {2.0, 2.0}, {1.0, 0.75}, {0.3, 1.7}};
  for (const auto& s : spacings) {
    for (int step = 1; step <= 4; step *= 2) check_plane_wave(s[0], s[1], step);
  }
}

TEST(GridSlope, PlaneWaveErrorFallsFourfoldWhenTheStepHalves) {
  // Second order: the difference error goes as t^2, so step 4 against step 2
  // on a lattice whose interpolation error is small gives nearly a factor 4.
  const int n = 256;
  const double pi = 3.14159265358979323846;
  const double k = 2.0 * pi * 8.0 / n;
  double errors[2];
  for (int pass = 0; pass < 2; pass++) {
    TCGrid grid(n, 4, 1.0, 1.0);
    grid.periodic_x = 1;
    grid.periodic_y = 1;
    grid.slope_step = pass == 0 ? 4 : 2;
    for (int j = 0; j < 4; j++) {
      for (int i = 0; i < n; i++) set_node(grid, i, j, static_cast<float>(std::sin(k * i)));
    }
    double dzdx, dzdy;
    // At a node, where interpolation adds nothing.
    grid.slope_at(10.0, 1.0, dzdx, dzdy, 0);
    errors[pass] = std::fabs(dzdx - k * std::cos(k * 10.0));
  }
  EXPECT_NEAR(errors[0] / errors[1], 4.0, 0.1);
}

TEST(GridSlope, CuspsLeaveTheSlopeAtAnOffsetHeightNodeAlone) {
  TCGrid plain(8, 8, 1.0, 1.0);
  TCGrid cusped(8, 8, 1.0, 1.0);
  TCGrid* grids[2] = {&plain, &cusped};
  for (TCGrid* grid : grids) {
    grid->z_offset = 2.0;
    set_node(*grid, 2, 3, -1.0f);
    set_node(*grid, 4, 3, 2.0f);
    set_node(*grid, 3, 2, 0.5f);
    set_node(*grid, 3, 4, 1.5f);
    set_node(*grid, 4, 4, -0.5f);
  }
  cusped.set_cusps(0.7);
  // Node (3, 3) holds 0: its height is exactly z_offset.
  EXPECT_DOUBLE_EQ(cusped.height_at(3.0, 3.0, 0), 2.0);
  double plain_x, plain_y, cusp_x, cusp_y;
  plain.slope_at(3.0, 3.0, plain_x, plain_y, 0);
  cusped.slope_at(3.0, 3.0, cusp_x, cusp_y, 0);
  EXPECT_NE(plain_x, 0.0);
  EXPECT_NE(plain_y, 0.0);
  EXPECT_DOUBLE_EQ(cusp_x, plain_x);
  EXPECT_DOUBLE_EQ(cusp_y, plain_y);
  EXPECT_EQ(cusped.cusp_on, 1);
}

TEST(GridSlope, CuspsScaleTheSlopeByTheirHeightDerivative) {
  // h = 0.1 x - 0.2 y, raw. At (2.5, 4): raw height 0.25 - 0.8 = -0.55;
  // the cusped slope is (1 + 2 * 0.7 * -0.55) = 0.23 times the plain one.
  TCGrid grid(8, 8, 1.0, 1.0);
  grid.z_offset = 2.0;
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 8; i++) set_node(grid, i, j, static_cast<float>(0.1 * i - 0.2 * j));
  }
  grid.set_cusps(0.7);
  double dzdx, dzdy;
  grid.slope_at(2.5, 4.0, dzdx, dzdy, 0);
  // Tolerance: float heights near 1 m carry about 1e-7 m of rounding.
  EXPECT_NEAR(dzdx, 0.1 * 0.23, 3e-7);
  EXPECT_NEAR(dzdy, -0.2 * 0.23, 3e-7);
  EXPECT_EQ(grid.cusp_on, 1);
  EXPECT_EQ(grid.cusp_factor, 0.7);
}

TEST(GridSlope, CuspedSlopeMatchesTheCuspedHeightsDerivative) {
  // The slope of the cusped surface against a centred difference of
  // height_at itself, on a linear field where both are exact but for rounding.
  TCGrid grid(8, 8, 1.0, 1.0);
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 8; i++) set_node(grid, i, j, static_cast<float>(0.125 * i + 0.25 * j));
  }
  grid.z_offset = -3.0;
  grid.set_cusps(0.3);
  const double e = 1e-5;
  double dzdx, dzdy;
  grid.slope_at(3.2, 4.4, dzdx, dzdy, 0);
  EXPECT_NEAR(dzdx, (grid.height_at(3.2 + e, 4.4, 0) - grid.height_at(3.2 - e, 4.4, 0)) / (2 * e),
              1e-6);
  EXPECT_NEAR(dzdy, (grid.height_at(3.2, 4.4 + e, 0) - grid.height_at(3.2, 4.4 - e, 0)) / (2 * e),
              1e-6);
}

TEST(GridSlope, RoundSurfaceAddsTheParabolasSlope) {
  TCGrid grid(8, 8, 1.0, 1.0);
  grid.periodic_x = 1;
  grid.periodic_y = 1;
  grid.offset_x = 4.0;
  grid.offset_y = 4.0;
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 8; i++) set_node(grid, i, j, static_cast<float>(0.5 * j));
  }
  grid.round_flag = 1;
  grid.radius = 200.0;
  double dzdx, dzdy;
  // Flat part: 0 and 0.5 inside (rows 4 to 6 hold 2, 2.5, 3); parabola:
  // -3 / 200 and -(-1) / 200, from the world position given.
  grid.slope_at(3.0, -1.0, dzdx, dzdy, 0);
  EXPECT_DOUBLE_EQ(dzdx, -0.015);
  EXPECT_DOUBLE_EQ(dzdy, 0.5 + 0.005);
  grid.slope_at(3.0, -1.0, dzdx, dzdy, 1);
  EXPECT_DOUBLE_EQ(dzdx, 0.0);
  EXPECT_DOUBLE_EQ(dzdy, 0.5);
}

TEST(GridSlope, OffsetDoesNotChangeTheSlope) {
  TCGrid grid(8, 8, 1.0, 1.0);
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 8; i++) set_node(grid, i, j, static_cast<float>(0.5 * i - 0.25 * j));
  }
  grid.z_offset = 12.0;
  double dzdx, dzdy;
  grid.slope_at(3.7, 2.2, dzdx, dzdy, 0);
  EXPECT_DOUBLE_EQ(dzdx, 0.5);
  EXPECT_DOUBLE_EQ(dzdy, -0.25);
}

TEST(GridSlope, SlopesOffAnOpenLatticeUseTheEdgeNodes) {
  // No far-below rule for slopes: beyond the edge the clamped nodes repeat,
  // so the slope there is 0, and it never blows up.
  TCGrid grid(8, 8, 1.0, 1.0);
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 8; i++) set_node(grid, i, j, static_cast<float>(0.5 * i));
  }
  double dzdx, dzdy;
  grid.slope_at(20.0, 3.0, dzdx, dzdy, 0);
  EXPECT_EQ(dzdx, 0.0);
  EXPECT_EQ(dzdy, 0.0);
  grid.slope_at(-1e300, 1e300, dzdx, dzdy, 0);
  EXPECT_EQ(dzdx, 0.0);
  EXPECT_EQ(dzdy, 0.0);
}

}  // namespace
