#include <gtest/gtest.h>

#include <cmath>

#include "TCGrid.h"

// Past an open edge the lattice answers with a marker far below any wave.
// Cusps square the height above z_offset; the marker must not be squared
// into a spike. Expected values by hand in the comments.

namespace {

// 8 by 8 nodes 1 m apart, periodic in x only, a wave of crests 1.0 and
// troughs -1.0 along x, z_offset 0.3 and cusps 0.5.
void make_open_in_y(TCGrid& grid) {
  grid.periodic_x = 1;
  grid.periodic_y = 0;
  for (int j = 0; j < 8; j++)
    for (int i = 0; i < 8; i++) grid.height[i + 8 * j] = (i % 2 == 0) ? 1.0f : -1.0f;
  grid.z_offset = 0.3;
}

}  // namespace

TEST(GridCuspEdge, HeightPastTheLastRowStaysFarBelowWithCuspsOn) {
  TCGrid grid(8, 8, 1.0, 1.0);
  make_open_in_y(grid);
  grid.set_cusps(0.5);
  // The highest cusped wave: 1.3 + 0.5 * 1^2 = 1.8 at a crest node.
  EXPECT_DOUBLE_EQ(grid.height_at_node(2, 7), 1.8);
  // Half a row past the last one over a crest: (2, 7) weighs 0.5, (3, 7)
  // weighs 0 and the two nodes of row 8 are off: 0.5 - 2 * 99999999 + 0.3.
  EXPECT_DOUBLE_EQ(grid.height_at(2.0, 7.5, 0), 0.8 - 2.0 * 99999999.0);
  // Wholly past it: four nodes off.
  EXPECT_DOUBLE_EQ(grid.height_at(2.5, 9.25, 0), 0.3 - 4.0 * 99999999.0);
  // And before the first row.
  EXPECT_DOUBLE_EQ(grid.height_at(2.0, -0.5, 0), 0.8 - 2.0 * 99999999.0);
  // A node off the lattice is the marker plus z_offset.
  EXPECT_DOUBLE_EQ(grid.height_at_node(2, 8), -99999999.0 + 0.3);
  EXPECT_DOUBLE_EQ(grid.height_at_node(2, -1), -99999999.0 + 0.3);
}

TEST(GridCuspEdge, NoSamplePastAnOpenEdgeRisesAboveTheWaves) {
  for (int sign = -1; sign <= 1; sign += 2) {
    TCGrid grid(8, 8, 1.0, 1.0);
    make_open_in_y(grid);
    grid.set_cusps(0.5 * sign);
    for (double y = 7.01; y < 12.0; y += 0.37) {
      for (double x = -3.0; x < 11.0; x += 0.29) {
        const double h = grid.height_at(x, y, 0);
        ASSERT_LT(h, -0.9 * 99999999.0) << "x " << x << " y " << y << " factor " << 0.5 * sign;
        const double below = grid.height_at(x, -y + 7.0 - 0.02, 0);
        ASSERT_LT(below, -0.9 * 99999999.0) << "x " << x << " y " << -y << " factor " << 0.5 * sign;
      }
    }
  }
}

TEST(GridCuspEdge, CuspsLeaveTheHeightAndSlopePastTheEdgeAsWithoutThem) {
  TCGrid plain(8, 8, 1.0, 1.0);
  TCGrid cusped(8, 8, 1.0, 1.0);
  make_open_in_y(plain);
  make_open_in_y(cusped);
  cusped.set_cusps(0.5);
  for (double x = 0.0; x < 8.0; x += 0.45) {
    EXPECT_EQ(cusped.height_at(x, 7.6, 0), plain.height_at(x, 7.6, 0)) << x;
    double px, py, cx, cy;
    plain.slope_at(x, 7.6, px, py, 0);
    cusped.slope_at(x, 7.6, cx, cy, 0);
    EXPECT_EQ(cx, px) << x;
    EXPECT_EQ(cy, py) << x;
  }
  // Inside the lattice the cusps still act: half way between a crest and a
  // trough node the plain height is 0 + 0.3, cusped 0.3 + 0.5 * 0 = 0.3, and
  // on a crest 1.3 becomes 1.8.
  EXPECT_DOUBLE_EQ(cusped.height_at(2.0, 3.0, 0), 1.8);
  EXPECT_DOUBLE_EQ(cusped.height_at(2.5, 3.0, 0), 0.3);
}
