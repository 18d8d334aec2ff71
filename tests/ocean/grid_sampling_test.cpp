#include <gtest/gtest.h>

#include <cmath>

#include "TCGrid.h"

// Expected values are worked out by hand in the comments.

namespace {

void set_node(TCGrid& grid, int i, int j, float value) {
  grid.height[i + grid.n_x * j] = value;
}

// A 4 by 4 lattice, 1 m spacing, not periodic, whose nodes (1,1), (1,2),
// (2,1), (2,2) hold 1, 2, 4, 8 and all others 0.
void fill_corner_cell(TCGrid& grid) {
  set_node(grid, 1, 1, 1.0f);
  set_node(grid, 1, 2, 2.0f);
  set_node(grid, 2, 1, 4.0f);
  set_node(grid, 2, 2, 8.0f);
}

TEST(GridConstruction, PlainLatticeStartsFlatWithoutDoubling) {
  TCGrid grid(4, 3, 2.0, 0.5);
  EXPECT_EQ(grid.n_x, 4);
  EXPECT_EQ(grid.n_y, 3);
  EXPECT_EQ(grid.dx, 2.0);
  EXPECT_EQ(grid.dy, 0.5);
  EXPECT_EQ(grid.inv_dx, 0.5);
  EXPECT_EQ(grid.inv_dy, 2.0);
  EXPECT_EQ(grid.offset_x, 0.0);
  EXPECT_EQ(grid.offset_y, 0.0);
  EXPECT_EQ(grid.height_min, 100000000.0f);
  EXPECT_EQ(grid.height_max, -100000000.0f);
  EXPECT_EQ(grid.z_offset, 0.0);
  EXPECT_EQ(grid.periodic_x, 0);
  EXPECT_EQ(grid.periodic_y, 0);
  EXPECT_EQ(grid.round_flag, 0);
  EXPECT_EQ(grid.radius, 99999999.0);
  EXPECT_EQ(grid.doubling_on, 0);
  EXPECT_EQ(grid.last_index, 4);
  EXPECT_EQ(grid.slope_step, 1);
  EXPECT_EQ(grid.doubling_size, 99999999);
  EXPECT_EQ(grid.cusp_on, 0);
}

TEST(GridConstruction, LastIndexWithoutDoublingIsTheLongerAxis) {
  TCGrid grid(8, 32, 1.0, 1.0);
  EXPECT_EQ(grid.last_index, 32);
}

TEST(GridConstruction, BufferHoldsTwoSpareFloatsPerRowAllZero) {
  // A real transform of 6 by 3 leaves 6 / 2 + 1 = 4 complex values a row:
  // 8 * 3 = 24 floats, the last of which must be ours to write.
  TCGrid grid(6, 3, 1.0, 1.0);
  for (int k = 0; k < 24; k++) EXPECT_EQ(grid.height[k], 0.0f) << k;
  grid.height[23] = 3.0f;
  EXPECT_EQ(grid.height[23], 3.0f);
}

TEST(GridConstruction, NodesArePackedRowByRowAtTheLatticeWidth) {
  TCGrid grid(6, 3, 1.0, 1.0);
  // Node (2, 1) is element 2 + 6 * 1 = 8.
  grid.height[8] = 5.0f;
  EXPECT_EQ(grid.height_at_node(2, 1), 5.0);
  EXPECT_EQ(grid.height_at_node(1, 2), 0.0);
}

TEST(GridConstruction, DoublingFormsRoundTheSizeDownToAMultipleOfFour) {
  TCGrid five(8, 8, 100, 5, 1.0, 1.0);
  EXPECT_EQ(five.doubling_on, 1);
  EXPECT_EQ(five.last_index, 100);
  EXPECT_EQ(five.doubling_size, 4);
  EXPECT_EQ(five.slope_step, 1);
  EXPECT_EQ(five.z_offset, 0.0);
  EXPECT_EQ(five.periodic_x, 0);
  EXPECT_EQ(five.cusp_on, 0);
  TCGrid three(8, 8, 100, 3, 1.0, 1.0);
  EXPECT_EQ(three.doubling_size, 4);
  TCGrid negative(8, 8, 100, -9, 1.0, 1.0);
  EXPECT_EQ(negative.doubling_size, 4);
  TCGrid seventeen(8, 8, 100, 19, 1.0, 1.0);
  EXPECT_EQ(seventeen.doubling_size, 16);
}

TEST(GridConstruction, ShortDoublingFormUsesTheLastIndexForBoth) {
  TCGrid grid(8, 8, 18, 1.0, 1.0);
  EXPECT_EQ(grid.doubling_on, 1);
  EXPECT_EQ(grid.last_index, 18);
  EXPECT_EQ(grid.doubling_size, 16);
}

TEST(GridConstructionDeathTest, ImpossibleSizeEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCGrid grid(0, 4, 1.0, 1.0);
      },
      ::testing::ExitedWithCode(1), "error allocating grid ");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCGrid grid(2000000000, 2000000000, 1.0, 1.0);
      },
      ::testing::ExitedWithCode(1), "error allocating grid ");
}

TEST(GridSampling, BilinearWeightsGoToTheirOwnNodes) {
  TCGrid grid(4, 4, 1.0, 1.0);
  fill_corner_cell(grid);
  // a = 1.25, b = 1.5: f = 0.25, g = 0.5; weights 0.375, 0.375, 0.125, 0.125
  // on 1, 2, 4, 8: 0.375 + 0.75 + 0.5 + 1.0.
  EXPECT_DOUBLE_EQ(grid.height_at(1.25, 1.5, 0), 2.625);
  // a = 1.5, b = 1.25: weights 0.375, 0.125, 0.375, 0.125: 0.375 + 0.25 + 1.5 + 1.0.
  EXPECT_DOUBLE_EQ(grid.height_at(1.5, 1.25, 0), 3.125);
  EXPECT_DOUBLE_EQ(grid.height_at(2.0, 2.0, 0), 8.0);
}

TEST(GridSampling, SpacingScalesWorldToNodes) {
  TCGrid grid(4, 4, 2.0, 0.5);
  fill_corner_cell(grid);
  // x = 2.5 m is a = 1.25; y = 0.75 m is b = 1.5.
  EXPECT_DOUBLE_EQ(grid.height_at(2.5, 0.75, 0), 2.625);
}

TEST(GridSampling, OffsetsMoveTheWorldOriginOntoTheLattice) {
  TCGrid grid(4, 4, 1.0, 1.0);
  fill_corner_cell(grid);
  grid.offset_x = 2.0;
  grid.offset_y = 2.0;
  EXPECT_DOUBLE_EQ(grid.height_at(-0.75, -0.5, 0), 2.625);
  EXPECT_DOUBLE_EQ(grid.height_at(0.0, 0.0, 0), 8.0);
}

TEST(GridSampling, FloorIsTrueFloorBelowZero) {
  TCGrid grid(4, 4, 1.0, 1.0);
  grid.periodic_x = 1;
  grid.periodic_y = 1;
  set_node(grid, 3, 0, 4.0f);
  set_node(grid, 1, 0, 8.0f);
  // a = -0.25: i = -1 (node 3), f = 0.75: 0.25 * 4 + 0.75 * h(0, 0) = 1.
  // Truncation (i = 0, f = -0.25) would give -0.25 * 8 = -2.
  EXPECT_DOUBLE_EQ(grid.height_at(-0.25, 0.0, 0), 1.0);
}

TEST(GridSampling, PeriodicLatticeRepeatsOverItsLength) {
  TCGrid grid(4, 8, 1.5, 0.5);
  grid.periodic_x = 1;
  grid.periodic_y = 1;
  grid.offset_x = 3.0;
  grid.offset_y = 2.0;
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 4; i++) set_node(grid, i, j, static_cast<float>((i * 7 + j * 3) % 11));
  }
  const double length_x = 4 * 1.5;
  const double length_y = 8 * 0.5;
  const double points[][2] = {{0.3, 0.1}, {-2.9, 1.7}, {2.95, -1.99}, {-7.1, 5.3}};
  for (const auto& p : points) {
    const double here = grid.height_at(p[0], p[1], 0);
    EXPECT_NEAR(grid.height_at(p[0] + length_x, p[1], 0), here, 1e-9);
    EXPECT_NEAR(grid.height_at(p[0] - length_x, p[1], 0), here, 1e-9);
    EXPECT_NEAR(grid.height_at(p[0], p[1] + length_y, 0), here, 1e-9);
    EXPECT_NEAR(grid.height_at(p[0] + 3 * length_x, p[1] - 2 * length_y, 0), here, 1e-9);
  }
  // Between the last column and the first: a = 3.5 mixes h(3, 0) = 10 and h(0, 0) = 0.
  EXPECT_DOUBLE_EQ(grid.height_at(3.5 * 1.5 - 3.0, -2.0, 0), 5.0);
}

TEST(GridSampling, RowBeyondTheTopOfAnOpenAxisIsFarBelow) {
  TCGrid grid(4, 4, 1.0, 1.0);
  grid.periodic_x = 1;
  for (int j = 0; j < 4; j++) {
    for (int i = 0; i < 4; i++) set_node(grid, i, j, 1.0f);
  }
  // b = 4: both rows 4 and 5 are off; each of the four nodes takes
  // 99999999 off the sum, whatever its weight.
  EXPECT_DOUBLE_EQ(grid.height_at(1.0, 4.0, 0), -4.0 * 99999999.0);
  EXPECT_LE(grid.height_at(0.3, 4.2, 0), -99999999.0);
  // b = 3.5 at a = 0: nodes (0, 3) and (1, 3) hold 1 with weights 0.5 and 0;
  // (0, 4) and (1, 4) are off: 0.5 - 2 * 99999999.
  EXPECT_DOUBLE_EQ(grid.height_at(0.0, 3.5, 0), 0.5 - 2.0 * 99999999.0);
  // Below the bottom row likewise; the periodic axis still wraps.
  EXPECT_DOUBLE_EQ(grid.height_at(-1.0, -1.5, 0), -4.0 * 99999999.0);
  // b = -1: row -1 is off, row 0 is on with weight 0.
  EXPECT_DOUBLE_EQ(grid.height_at(-1.0, -1.0, 0), -2.0 * 99999999.0);
  EXPECT_DOUBLE_EQ(grid.height_at(-1.0, 1.0, 0), 1.0);
  EXPECT_DOUBLE_EQ(grid.height_at(5.5, 2.0, 0), 1.0);
}

TEST(GridSampling, FarCoordinatesStayOnTheLatticeOrFarBelow) {
  TCGrid open(4, 4, 1.0, 1.0);
  EXPECT_DOUBLE_EQ(open.height_at(1e300, 1.0, 0), -4.0 * 99999999.0);
  EXPECT_DOUBLE_EQ(open.height_at(-1e300, -1e300, 0), -4.0 * 99999999.0);
  // Not a number lands off the lattice, where no weight is used.
  EXPECT_DOUBLE_EQ(open.height_at(NAN, 1.0, 0), -4.0 * 99999999.0);
  TCGrid closed(4, 4, 1.0, 1.0);
  closed.periodic_x = 1;
  closed.periodic_y = 1;
  set_node(closed, 0, 0, 2.0f);
  // 2^60 is a whole number of periods of 4.
  EXPECT_DOUBLE_EQ(closed.height_at(std::ldexp(1.0, 60), 0.0, 0), 2.0);
  EXPECT_TRUE(std::isfinite(closed.height_at(-3e20, 7e19, 0)));
}

TEST(GridSampling, NodeHeightsWrapOnPeriodicAxesOnly) {
  TCGrid both(4, 3, 1.0, 1.0);
  both.periodic_x = 1;
  both.periodic_y = 1;
  set_node(both, 3, 2, 6.0f);
  set_node(both, 0, 0, 7.0f);
  EXPECT_EQ(both.height_at_node(-1, -1), 6.0);
  EXPECT_EQ(both.height_at_node(4, 3), 7.0);
  EXPECT_EQ(both.height_at_node(-5, -4), 6.0);

  TCGrid only_x(4, 3, 1.0, 1.0);
  only_x.periodic_x = 1;
  set_node(only_x, 3, 1, 5.0f);
  EXPECT_EQ(only_x.height_at_node(-1, 1), 5.0);
  EXPECT_EQ(only_x.height_at_node(3, 3), -99999999.0);
  EXPECT_EQ(only_x.height_at_node(0, -1), -99999999.0);

  TCGrid neither(4, 3, 1.0, 1.0);
  EXPECT_EQ(neither.height_at_node(4, 0), -99999999.0);
  EXPECT_EQ(neither.height_at_node(-1, 0), -99999999.0);
  neither.z_offset = 2.5;
  EXPECT_EQ(neither.height_at_node(4, 0), -99999999.0 + 2.5);
}

TEST(GridSampling, ZOffsetIsAddedToEveryHeight) {
  TCGrid grid(4, 4, 1.0, 1.0);
  fill_corner_cell(grid);
  grid.z_offset = -1.5;
  EXPECT_DOUBLE_EQ(grid.height_at(1.25, 1.5, 0), 2.625 - 1.5);
  EXPECT_DOUBLE_EQ(grid.height_at_node(2, 1), 4.0 - 1.5);
  EXPECT_DOUBLE_EQ(grid.height_at(0.0, 4.0, 0), -1.5 - 4.0 * 99999999.0);
}

TEST(GridSampling, CuspsRaiseHeightsByTheSquareAboveTheOffset) {
  TCGrid grid(4, 4, 1.0, 1.0);
  fill_corner_cell(grid);
  grid.z_offset = 1.0;
  grid.set_cusps(0.5);
  EXPECT_EQ(grid.cusp_on, 1);
  EXPECT_EQ(grid.cusp_factor, 0.5);
  // Node (2, 1): 4 + 1 = 5, then 5 + 0.5 * (5 - 1)^2 = 13.
  EXPECT_DOUBLE_EQ(grid.height_at_node(2, 1), 13.0);
  // 2.625 + 1 = 3.625, then 3.625 + 0.5 * 2.625^2 = 7.0703125.
  EXPECT_DOUBLE_EQ(grid.height_at(1.25, 1.5, 0), 7.0703125);
  // A trough is lifted too: -2 + 0.5 * 4 = 0 with no offset.
  grid.z_offset = 0.0;
  set_node(grid, 0, 0, -2.0f);
  EXPECT_DOUBLE_EQ(grid.height_at_node(0, 0), 0.0);
  grid.clear_cusps();
  EXPECT_EQ(grid.cusp_on, 0);
  EXPECT_DOUBLE_EQ(grid.height_at_node(2, 1), 4.0);
  EXPECT_DOUBLE_EQ(grid.height_at(1.25, 1.5, 0), 2.625);
}

TEST(GridSampling, RoundSurfaceDropsWithDistanceFromTheWorldOrigin) {
  TCGrid grid(8, 8, 1.0, 1.0);
  for (int k = 0; k < 64; k++) grid.height[k] = 0.25f;
  grid.periodic_x = 1;
  grid.periodic_y = 1;
  grid.offset_x = 4.0;
  grid.offset_y = 4.0;
  grid.round_flag = 1;
  grid.radius = 1000.0;
  // (3, -2): (9 + 4) * 0.5 / 1000 = 0.0065, measured from the world origin,
  // not from the lattice's corner.
  EXPECT_DOUBLE_EQ(grid.height_at(3.0, -2.0, 0), 0.25 - 0.0065);
  EXPECT_DOUBLE_EQ(grid.height_at(0.0, 0.0, 0), 0.25);
}

TEST(GridSampling, KeepFlatOnARoundSurfaceGivesTheFlatHeight) {
  TCGrid grid(4, 4, 1.0, 1.0);
  fill_corner_cell(grid);
  grid.round_flag = 1;
  grid.radius = 50.0;
  EXPECT_DOUBLE_EQ(grid.height_at(1.25, 1.5, 1), 2.625);
  EXPECT_DOUBLE_EQ(grid.height_at(1.25, 1.5, 0), 2.625 - (1.5625 + 2.25) * 0.5 / 50.0);
  // Another flag value than 1 means flat, too.
  grid.round_flag = 2;
  EXPECT_DOUBLE_EQ(grid.height_at(1.25, 1.5, 0), 2.625);
}

TEST(GridSampling, RoundDropComesAfterTheCusps) {
  TCGrid grid(4, 4, 1.0, 1.0);
  fill_corner_cell(grid);
  grid.round_flag = 1;
  grid.radius = 10.0;
  grid.set_cusps(0.5);
  // 2.625 + 0.5 * 2.625^2 = 6.0703125; drop (1.5625 + 2.25) * 0.05 = 0.190625.
  EXPECT_DOUBLE_EQ(grid.height_at(1.25, 1.5, 0), 6.0703125 - 0.190625);
}

TEST(GridRange, RangeRunsOverRawNodesOnly) {
  TCGrid grid(3, 2, 1.0, 1.0);
  const float values[6] = {0.5f, -1.25f, 2.0f, 0.0f, 3.5f, -0.75f};
  for (int k = 0; k < 6; k++) grid.height[k] = values[k];
  // The spare floats behind the nodes are not heights.
  grid.height[6] = 100.0f;
  grid.height[7] = -100.0f;
  grid.z_offset = 10.0;
  grid.set_cusps(1.0);
  float low = 0.0f, high = 0.0f;
  grid.height_range(low, high);
  EXPECT_EQ(low, -1.25f);
  EXPECT_EQ(high, 3.5f);
  EXPECT_EQ(grid.height_min, 100000000.0f);
  grid.refresh_height_limits();
  EXPECT_EQ(grid.height_min, -1.25f);
  EXPECT_EQ(grid.height_max, 3.5f);
  grid.set_height_limits(-2.0f, 4.0f);
  EXPECT_EQ(grid.height_min, -2.0f);
  EXPECT_EQ(grid.height_max, 4.0f);
}

TEST(GridRange, FlatLatticeHasAZeroRange) {
  TCGrid grid(4, 4, 1.0, 1.0);
  float low = 1.0f, high = -1.0f;
  grid.height_range(low, high);
  EXPECT_EQ(low, 0.0f);
  EXPECT_EQ(high, 0.0f);
}

TEST(GridCoordinates, LatticeAndWorldDifferByOffsetAndSpacing) {
  TCGrid grid(4, 4, 2.0, 0.5);
  grid.offset_x = 1.5;
  grid.offset_y = 2.5;
  double x, y, u, v;
  // x = 3 * 2 - 1.5, y = 4 * 0.5 - 2.5.
  grid.lattice_to_world(3.0, 4.0, x, y);
  EXPECT_DOUBLE_EQ(x, 4.5);
  EXPECT_DOUBLE_EQ(y, -0.5);
  // u = (4.5 + 1.5) / 2, v = (-0.5 + 2.5) / 0.5.
  grid.world_to_lattice(4.5, -0.5, u, v);
  EXPECT_DOUBLE_EQ(u, 3.0);
  EXPECT_DOUBLE_EQ(v, 4.0);
}

TEST(GridCoordinates, VectorFormsCarryTheZOffset) {
  TCGrid grid(4, 4, 2.0, 0.5);
  grid.offset_x = 1.5;
  grid.offset_y = 2.5;
  grid.z_offset = 0.75;
  TCVector world, lattice;
  grid.lattice_to_world(TCVector(3.0, 4.0, 1.0), world);
  EXPECT_DOUBLE_EQ(world.x, 4.5);
  EXPECT_DOUBLE_EQ(world.y, -0.5);
  EXPECT_DOUBLE_EQ(world.z, 1.75);
  grid.world_to_lattice(TCVector(4.5, -0.5, 1.0), lattice);
  EXPECT_DOUBLE_EQ(lattice.x, 3.0);
  EXPECT_DOUBLE_EQ(lattice.y, 4.0);
  EXPECT_DOUBLE_EQ(lattice.z, 0.25);
}

TEST(GridNormal, NormalLeansAgainstTheSlope) {
  // h = 0.5 x - 0.25 y over a 1 m lattice, sampled inside.
  TCGrid grid(8, 8, 1.0, 1.0);
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 8; i++) set_node(grid, i, j, static_cast<float>(0.5 * i - 0.25 * j));
  }
  TCVector normal;
  grid.normal_at(3.3, 4.6, normal);
  const double length = std::sqrt(0.25 + 0.0625 + 1.0);
  EXPECT_NEAR(normal.x, -0.5 / length, 1e-12);
  EXPECT_NEAR(normal.y, 0.25 / length, 1e-12);
  EXPECT_NEAR(normal.z, 1.0 / length, 1e-12);
}

TEST(GridNormal, NormalOfARoundFlatSeaPointsAwayFromTheCentre) {
  TCGrid grid(8, 8, 1.0, 1.0);
  grid.offset_x = 4.0;
  grid.offset_y = 4.0;
  grid.round_flag = 1;
  grid.radius = 100.0;
  TCVector normal;
  // Slopes -3 / 100 and 4 / 100: the vector (0.03, -0.04, 1).
  grid.normal_at(3.0, -4.0, normal);
  const double length = std::sqrt(0.0009 + 0.0016 + 1.0);
  EXPECT_NEAR(normal.x, 0.03 / length, 1e-12);
  EXPECT_NEAR(normal.y, -0.04 / length, 1e-12);
  EXPECT_NEAR(normal.z, 1.0 / length, 1e-12);
}

}  // namespace
