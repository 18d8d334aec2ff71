#include <gtest/gtest.h>

#include <climits>

#include "TCGrid.h"

// The tables are worked out by hand: with D the doubling size and h = D / 2,
// index i above D has m = i - D - 1, level m / h + 1, r = m % h + 1,
// stride 2^level, sample stride * (h + r), fraction (r - 1) / h.

namespace {

struct Walk_step {
  int index;
  int sample;
  int stride;
  double fraction;
};

void expect_walk(const TCGrid& grid, const Walk_step* steps, int n) {
  for (int k = 0; k < n; k++) {
    int sample = -1, stride = -1;
    double fraction = -1.0;
    grid.index_to_sample(steps[k].index, sample, stride, fraction);
    EXPECT_EQ(sample, steps[k].sample) << "index " << steps[k].index;
    EXPECT_EQ(stride, steps[k].stride) << "index " << steps[k].index;
    EXPECT_DOUBLE_EQ(fraction, steps[k].fraction) << "index " << steps[k].index;
    int short_sample = -1, short_stride = -1;
    grid.index_to_sample(steps[k].index, short_sample, short_stride);
    EXPECT_EQ(short_sample, steps[k].sample) << "index " << steps[k].index;
    EXPECT_EQ(short_stride, steps[k].stride) << "index " << steps[k].index;
  }
}

TEST(GridDoubling, WalkWithSizeFour) {
  TCGrid grid(64, 64, 1000, 4, 1.0, 1.0);
  // h = 2: positions 0 .. 4, then 6, 8 by 2, 12, 16 by 4, 24, 32 by 8, 48, 64.
  const Walk_step steps[] = {
      {0, 0, 1, 0.0},   {1, 1, 1, 0.0},    {2, 2, 1, 0.0},    {3, 3, 1, 0.0},    {4, 4, 1, 0.0},
      {5, 6, 2, 0.0},   {6, 8, 2, 0.5},    {7, 12, 4, 0.0},   {8, 16, 4, 0.5},   {9, 24, 8, 0.0},
      {10, 32, 8, 0.5}, {11, 48, 16, 0.0}, {12, 64, 16, 0.5}, {13, 96, 32, 0.0},
  };
  expect_walk(grid, steps, sizeof(steps) / sizeof(steps[0]));
}

TEST(GridDoubling, WalkWithSizeEight) {
  TCGrid grid(64, 64, 1000, 8, 1.0, 1.0);
  // h = 4: 0 .. 8; 10 .. 16 by 2; 20 .. 32 by 4; 40 .. 64 by 8; 80 by 16.
  const Walk_step steps[] = {
      {0, 0, 1, 0.0},      {5, 5, 1, 0.0},   {8, 8, 1, 0.0},    {9, 10, 2, 0.0},
      {10, 12, 2, 0.25},   {11, 14, 2, 0.5}, {12, 16, 2, 0.75}, {13, 20, 4, 0.0},
      {14, 24, 4, 0.25},   {15, 28, 4, 0.5}, {16, 32, 4, 0.75}, {17, 40, 8, 0.0},
      {18, 48, 8, 0.25},   {19, 56, 8, 0.5}, {20, 64, 8, 0.75}, {21, 80, 16, 0.0},
      {24, 128, 16, 0.75},
  };
  expect_walk(grid, steps, sizeof(steps) / sizeof(steps[0]));
}

TEST(GridDoubling, WalkWithSizeSixteen) {
  TCGrid grid(64, 64, 1000, 16, 1.0, 1.0);
  // h = 8: 0 .. 16; 18 .. 32 by 2; 36 .. 64 by 4; 72 .. 128 by 8; 144 by 16.
  const Walk_step steps[] = {
      {16, 16, 1, 0.0},   {17, 18, 2, 0.0},   {18, 20, 2, 0.125},  {20, 24, 2, 0.375},
      {24, 32, 2, 0.875}, {25, 36, 4, 0.0},   {28, 48, 4, 0.375},  {32, 64, 4, 0.875},
      {33, 72, 8, 0.0},   {36, 96, 8, 0.375}, {40, 128, 8, 0.875}, {41, 144, 16, 0.0},
  };
  expect_walk(grid, steps, sizeof(steps) / sizeof(steps[0]));
}

TEST(GridDoubling, EachLevelBoundaryLandsWhereTheRuleSays) {
  for (int d = 4; d <= 16; d *= 2) {
    TCGrid grid(64, 64, 1000, d, 1.0, 1.0);
    const int h = d / 2;
    int sample, stride;
    grid.index_to_sample(d, sample, stride);
    EXPECT_EQ(sample, d);
    grid.index_to_sample(d + 1, sample, stride);
    EXPECT_EQ(sample, d + 2);
    grid.index_to_sample(d + h, sample, stride);
    EXPECT_EQ(sample, 2 * d);
    grid.index_to_sample(d + h + 1, sample, stride);
    EXPECT_EQ(sample, 2 * d + 4);
  }
}

TEST(GridDoubling, SizeFromTheShortFormIsTheLastIndexRounded) {
  // Last index 21 gives D = 20, h = 10: index 21 is sample 22, stride 2.
  TCGrid grid(64, 64, 21, 1.0, 1.0);
  int sample, stride;
  grid.index_to_sample(20, sample, stride);
  EXPECT_EQ(sample, 20);
  grid.index_to_sample(21, sample, stride);
  EXPECT_EQ(sample, 22);
  EXPECT_EQ(stride, 2);
}

TEST(GridDoubling, IndexForSampleIsTheFirstIndexBeyondIt) {
  TCGrid grid(64, 64, 100, 8, 1.0, 1.0);
  EXPECT_EQ(grid.index_for_sample(0), 1);
  EXPECT_EQ(grid.index_for_sample(7), 8);
  // Sample 10 at 9 is not beyond 8; 10 is.
  EXPECT_EQ(grid.index_for_sample(8), 9);
  EXPECT_EQ(grid.index_for_sample(10), 10);
  EXPECT_EQ(grid.index_for_sample(15), 12);
  EXPECT_EQ(grid.index_for_sample(16), 13);
  EXPECT_EQ(grid.index_for_sample(64), 21);
  // 96 at 22, 112 at 23.
  EXPECT_EQ(grid.index_for_sample(100), 23);
}

TEST(GridDoubling, CoarsestStrideIsTheStrideThatReachesTheLastIndex) {
  // index_for_sample(100) = 23: m = 14, level 14 / 4 + 1 = 4.
  TCGrid grid(64, 64, 100, 8, 1.0, 1.0);
  EXPECT_EQ(grid.coarsest_stride(), 16);
  // Last index 40, D = 4: samples 48 at 11, level 4.
  TCGrid small(64, 64, 40, 4, 1.0, 1.0);
  EXPECT_EQ(small.index_for_sample(40), 11);
  EXPECT_EQ(small.coarsest_stride(), 16);
}

TEST(GridDoubling, SampleBeyondTheWalkGivesItselfBack) {
  // Indices 1 to 4 reach sample 4 at most.
  TCGrid grid(64, 64, 5, 8, 1.0, 1.0);
  EXPECT_EQ(grid.index_for_sample(10), 10);
  EXPECT_EQ(grid.index_for_sample(4), 4);
  EXPECT_EQ(grid.index_for_sample(3), 4);
  // index_for_sample(5) is 5, still in the first level.
  EXPECT_EQ(grid.coarsest_stride(), 1);
}

TEST(GridDoubling, WithoutDoublingEveryIndexIsItsOwnSample) {
  TCGrid grid(64, 32, 1.0, 1.0);
  int sample, stride;
  double fraction = -1.0;
  grid.index_to_sample(1000, sample, stride, fraction);
  EXPECT_EQ(sample, 1000);
  EXPECT_EQ(stride, 1);
  EXPECT_EQ(fraction, 0.0);
  EXPECT_EQ(grid.index_for_sample(10), 11);
  EXPECT_EQ(grid.index_for_sample(64), 64);
  EXPECT_EQ(grid.coarsest_stride(), 1);
}

TEST(GridDoubling, FarIndicesDoNotOverflow) {
  TCGrid grid(64, 64, 100, 4, 1.0, 1.0);
  int sample = 0, stride = 0;
  double fraction = -1.0;
  grid.index_to_sample(INT_MAX, sample, stride, fraction);
  EXPECT_GT(sample, 0);
  EXPECT_GT(stride, 0);
  EXPECT_GE(fraction, 0.0);
  EXPECT_LT(fraction, 1.0);
  // Index 64: m = 59, level 30, r = 2: stride 2^30 and a sample beyond any int.
  grid.index_to_sample(64, sample, stride);
  EXPECT_EQ(stride, 1 << 30);
  EXPECT_EQ(sample, INT_MAX);
}

}  // namespace
