#include <gtest/gtest.h>

#include <sstream>

#include "TCScene_input.h"

namespace {

struct Range {
  int first, last, increment;
};

Range normalised(int first, int last, int increment) {
  normalise_frame_range(first, last, increment);
  return {first, last, increment};
}

TEST(FrameRange, ZeroIncrementBecomesOne) {
  Range r = normalised(1, 10, 0);
  EXPECT_EQ(r.first, 1);
  EXPECT_EQ(r.last, 10);
  EXPECT_EQ(r.increment, 1);
}

TEST(FrameRange, ReversedWithoutNegativeIncrementIsTheFirstFrameAlone) {
  Range r = normalised(9, 3, 1);
  EXPECT_EQ(r.first, 9);
  EXPECT_EQ(r.last, 9);
  EXPECT_EQ(r.increment, 1);
}

TEST(FrameRange, ReversedWithNegativeIncrementRunsBackwards) {
  Range r = normalised(9, 3, -2);
  EXPECT_EQ(r.first, 9);
  EXPECT_EQ(r.last, 3);
  EXPECT_EQ(r.increment, -2);
}

TEST(FrameRange, ForwardWithNegativeIncrementCollapses) {
  Range r = normalised(3, 9, -2);
  EXPECT_EQ(r.first, 3);
  EXPECT_EQ(r.last, 3);
  EXPECT_EQ(r.increment, 1);
}

TEST(FrameRange, ReadFromTheLinesBehindEnd) {
  std::istringstream in("first_frame: 9 last_frame: 3 increment:  0\n");
  TCScene_input input;
  EXPECT_EQ(input.read_frame_range(in), 1);
  EXPECT_EQ(input.first_frame, 9);
  EXPECT_EQ(input.last_frame, 9);
  EXPECT_EQ(input.increment, 1);
}

TEST(FrameRange, CommandLineRangeIsStoredAsGiven) {
  TCScene_input input;
  input.set_frame_range(9, 3, 1);
  EXPECT_EQ(input.first_frame, 9);
  EXPECT_EQ(input.last_frame, 3);
  EXPECT_EQ(input.increment, 1);
}

}  // namespace
