#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCConstants.h"
#include "TCTexture_plane_input.h"
#include "stream_capture.h"

namespace {

const char* const kVersionTwoStill =
    "Center: 10 -20\n"
    "Orientation: 90\n"
    "Dimensions: 400 300\n"
    "MakePeridoic: 1\n"
    "AnimationFlag: 0\n"
    "NewPictureFlag: 0\n"
    "PictureFile: sea.rgb\n"
    "Priority: 4\n"
    "Picture_bands: 3\n";

const char* const kVersionTwoMoving =
    "Center: 1.5 2.5\n"
    "Orientation: -45\n"
    "Dimensions: 20 10\n"
    "MakePeridoic: 0\n"
    "AnimationFlag: 1\n"
    "V_x: 0.25\n"
    "V_y: -0.5\n"
    "t_o: 3\n"
    "NewPictureFlag: 1\n"
    "BaseFileName: frames/slick\n"
    "PictureFile: slick.rgb\n"
    "Priority: 2\n"
    "Picture_bands: 2\n";

TEST(TextureInput, DefaultsBeforeReading) {
  TCTexture_plane_input input;
  EXPECT_EQ(input.whole_picture, 1);
  EXPECT_EQ(input.make_levels, 1);
  EXPECT_EQ(input.update_flag, 1);
  EXPECT_EQ(input.first_x, 0);
  EXPECT_EQ(input.last_y, 0);
  EXPECT_EQ(input.side_code, 0);
  EXPECT_EQ(input.min_above, nullptr);
  EXPECT_EQ(input.min_below, nullptr);
}

TEST(TextureInput, VersionTwoStillTextureReadsEveryField) {
  std::istringstream in(kVersionTwoStill);
  TCTexture_plane_input input;
  EXPECT_EQ(input.read_texture_grid(in, 2), 1);
  EXPECT_TRUE(static_cast<bool>(in));
  EXPECT_EQ(input.center_x, 10.0);
  EXPECT_EQ(input.center_y, -20.0);
  EXPECT_DOUBLE_EQ(input.orientation, 90.0 * 0.017453292519444445);
  EXPECT_EQ(input.width, 400.0);
  EXPECT_EQ(input.height, 300.0);
  EXPECT_EQ(input.periodic, 1);
  EXPECT_EQ(input.animation_flag, 0);
  EXPECT_EQ(input.new_picture_flag, 0);
  EXPECT_STREQ(input.picture_file, "sea.rgb");
  EXPECT_EQ(input.priority, 4);
  EXPECT_EQ(input.n_bands, 3);
  EXPECT_EQ(input.side_code, 0);
  EXPECT_EQ(input.min_above, nullptr);
  EXPECT_EQ(input.max_below, nullptr);
}

TEST(TextureInput, AnimationAndNewPictureFlagsOpenTheirFields) {
  std::istringstream in(kVersionTwoMoving);
  TCTexture_plane_input input;
  EXPECT_EQ(input.read_texture_grid(in, 2), 1);
  EXPECT_EQ(input.animation_flag, 1);
  EXPECT_EQ(input.v_x, 0.25);
  EXPECT_EQ(input.v_y, -0.5);
  EXPECT_EQ(input.t_o, 3.0);
  EXPECT_EQ(input.new_picture_flag, 1);
  EXPECT_STREQ(input.base_file_name, "frames/slick");
  EXPECT_STREQ(input.picture_file, "slick.rgb");
  EXPECT_EQ(input.priority, 2);
  EXPECT_EQ(input.n_bands, 2);
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "");
}

TEST(TextureInput, VersionOneHasNoAnimationFields) {
  std::istringstream in(
      "Center: 1 2 Orientation: 0 Dimensions: 3 4 MakePeridoic: 0 "
      "PictureFile: a.rgb Priority: 1 Picture_bands: 3 next");
  TCTexture_plane_input input;
  input.animation_flag = 7;
  input.v_x = 9.0;
  input.new_picture_flag = 5;
  EXPECT_EQ(input.read_texture_grid(in, 1), 1);
  EXPECT_EQ(input.animation_flag, 0);
  EXPECT_EQ(input.v_x, 0.0);
  EXPECT_EQ(input.v_y, 0.0);
  EXPECT_EQ(input.t_o, 0.0);
  EXPECT_EQ(input.new_picture_flag, 0);
  EXPECT_STREQ(input.base_file_name, "");
  EXPECT_STREQ(input.picture_file, "a.rgb");
  EXPECT_EQ(input.n_bands, 3);
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "next");
}

TEST(TextureInput, ReadingResetsPictureChoicesAndRanges) {
  TCTexture_plane_input input;
  const double lo[2] = {0.0, 0.0};
  const double hi[2] = {1.0, 1.0};
  input.set_above(2, lo, hi);
  input.set_below(2, lo, hi);
  input.whole_picture = 0;
  input.first_x = 3;
  input.last_x = 9;
  input.make_levels = 0;
  input.update_flag = 0;
  std::istringstream in(kVersionTwoStill);
  input.read_texture_grid(in, 2);
  EXPECT_EQ(input.whole_picture, 1);
  EXPECT_EQ(input.first_x, 0);
  EXPECT_EQ(input.last_x, 0);
  EXPECT_EQ(input.make_levels, 1);
  EXPECT_EQ(input.update_flag, 1);
  EXPECT_EQ(input.side_code, 0);
  EXPECT_EQ(input.min_above, nullptr);
  EXPECT_EQ(input.max_above, nullptr);
  EXPECT_EQ(input.min_below, nullptr);
  EXPECT_EQ(input.max_below, nullptr);
}

TEST(TextureInput, PrintWritesKeywordsInReadingOrder) {
  std::istringstream in(kVersionTwoMoving);
  TCTexture_plane_input input;
  input.read_texture_grid(in, 2);
  std::ostringstream out;
  EXPECT_EQ(input.print_texture_grid(out, 2), 1);
  EXPECT_EQ(out.str(),
            "Center: 1.5 2.5\n"
            "Orientation: -45\n"
            "Dimensions: 20 10\n"
            "MakePeridoic: 0\n"
            "AnimationFlag: 1\n"
            "V_x: 0.25\n"
            "V_y: -0.5\n"
            "t_o: 3\n"
            "NewPictureFlag: 1\n"
            "BaseFileName: frames/slick\n"
            "PictureFile: slick.rgb\n"
            "Priority: 2\n");
}

TEST(TextureInput, PrintLeavesOutUnsetAnimationFields) {
  std::istringstream in(kVersionTwoStill);
  TCTexture_plane_input input;
  input.read_texture_grid(in, 2);
  std::ostringstream out;
  input.print_texture_grid(out, 2);
  EXPECT_EQ(out.str(),
            "Center: 10 -20\n"
            "Orientation: 90\n"
            "Dimensions: 400 300\n"
            "MakePeridoic: 1\n"
            "AnimationFlag: 0\n"
            "NewPictureFlag: 0\n"
            "PictureFile: sea.rgb\n"
            "Priority: 4\n");
  std::ostringstream old;
  input.print_texture_grid(old, 1);
  EXPECT_EQ(old.str().find("AnimationFlag"), std::string::npos);
  EXPECT_EQ(old.str().find("NewPictureFlag"), std::string::npos);
}

// The band count is the block's to write; the record writes the rest.
void expect_round_trip(const char* text, int version) {
  std::istringstream in(text);
  TCTexture_plane_input first;
  first.read_texture_grid(in, version);
  std::ostringstream out;
  first.print_texture_grid(out, version);
  out << "Picture_bands: " << first.n_bands << "\n";
  std::istringstream again(out.str());
  TCTexture_plane_input second;
  EXPECT_EQ(second.read_texture_grid(again, version), 1);
  EXPECT_TRUE(static_cast<bool>(again));
  EXPECT_EQ(second.center_x, first.center_x);
  EXPECT_EQ(second.center_y, first.center_y);
  EXPECT_NEAR(second.orientation, first.orientation, 1e-14);
  EXPECT_EQ(second.width, first.width);
  EXPECT_EQ(second.height, first.height);
  EXPECT_EQ(second.periodic, first.periodic);
  EXPECT_EQ(second.animation_flag, first.animation_flag);
  EXPECT_EQ(second.v_x, first.v_x);
  EXPECT_EQ(second.v_y, first.v_y);
  EXPECT_EQ(second.t_o, first.t_o);
  EXPECT_EQ(second.new_picture_flag, first.new_picture_flag);
  EXPECT_STREQ(second.base_file_name, first.base_file_name);
  EXPECT_STREQ(second.picture_file, first.picture_file);
  EXPECT_EQ(second.priority, first.priority);
  EXPECT_EQ(second.n_bands, first.n_bands);
}

TEST(TextureInput, VersionTwoRoundTripsWithAndWithoutAnimation) {
  expect_round_trip(kVersionTwoStill, 2);
  expect_round_trip(kVersionTwoMoving, 2);
}

TEST(TextureInput, VersionOneRoundTrips) {
  expect_round_trip(
      "Center: -3.25 7 Orientation: 12.5 Dimensions: 8 6 MakePeridoic: 1 "
      "PictureFile: old.rgb Priority: 9 Picture_bands: 4",
      1);
}

TEST(TextureInput, SetAboveCopiesTheRange) {
  TCTexture_plane_input input;
  const double lo[3] = {0.5, 1.5, 2.5};
  const double hi[3] = {10.0, 20.0, 30.0};
  input.set_above(3, lo, hi);
  EXPECT_EQ(input.side_code, 1);
  EXPECT_EQ(input.n_bands, 3);
  ASSERT_NE(input.min_above, nullptr);
  ASSERT_NE(input.max_above, nullptr);
  EXPECT_NE(input.min_above, lo);
  for (int b = 0; b < 3; b++) {
    EXPECT_EQ(input.min_above[b], lo[b]);
    EXPECT_EQ(input.max_above[b], hi[b]);
  }
}

TEST(TextureInput, SetAboveWithNoBandsClearsTheRangeAndSide) {
  TCTexture_plane_input input;
  const double lo[2] = {0.0, 0.0};
  const double hi[2] = {1.0, 1.0};
  input.set_above(2, lo, hi);
  input.set_above(0, nullptr, nullptr);
  EXPECT_EQ(input.side_code, 0);
  EXPECT_EQ(input.n_bands, 0);
  EXPECT_EQ(input.min_above, nullptr);
  EXPECT_EQ(input.max_above, nullptr);
}

TEST(TextureInput, SetBelowAfterAboveMakesBothSides) {
  TCTexture_plane_input input;
  const double lo[2] = {0.0, 0.1};
  const double hi[2] = {1.0, 1.1};
  const double lo_below[2] = {0.2, 0.3};
  const double hi_below[2] = {2.0, 3.0};
  input.set_above(2, lo, hi);
  Stream_capture capture(std::cout);
  input.set_below(2, lo_below, hi_below);
  EXPECT_EQ(capture.text(), "");
  EXPECT_EQ(input.side_code, 3);
  EXPECT_EQ(input.n_bands, 2);
  EXPECT_EQ(input.min_below[1], 0.3);
  EXPECT_EQ(input.max_below[0], 2.0);
  EXPECT_EQ(input.min_above[1], 0.1);
}

TEST(TextureInput, SetBelowWithAnotherBandCountIsReportedButKept) {
  TCTexture_plane_input input;
  const double lo[4] = {0.0, 0.0, 0.0, 0.0};
  const double hi[4] = {1.0, 1.0, 1.0, 1.0};
  const double lo_below[3] = {5.0, 6.0, 7.0};
  const double hi_below[3] = {8.0, 9.0, 10.0};
  input.set_above(4, lo, hi);
  Stream_capture capture(std::cout);
  input.set_below(3, lo_below, hi_below);
  EXPECT_EQ(capture.text(),
            "Number of bands below water (3) not equal to number of bands above (4)\n");
  EXPECT_EQ(input.side_code, 3);
  EXPECT_EQ(input.n_bands, 4);
  EXPECT_EQ(input.min_below[2], 7.0);
  EXPECT_EQ(input.max_below[2], 10.0);
  // Room for every band of the texture, the missing one at 0.
  EXPECT_EQ(input.below_values(), 4);
  EXPECT_EQ(input.min_below[3], 0.0);
}

TEST(TextureInput, SetBelowAloneMakesTheBelowSide) {
  TCTexture_plane_input input;
  const double lo[2] = {1.0, 2.0};
  const double hi[2] = {3.0, 4.0};
  input.set_below(2, lo, hi);
  EXPECT_EQ(input.side_code, 2);
  EXPECT_EQ(input.n_bands, 2);
  EXPECT_EQ(input.min_above, nullptr);
  EXPECT_EQ(input.min_below[0], 1.0);
  EXPECT_EQ(input.max_below[1], 4.0);
}

TEST(TextureInput, SetBelowAgainOnBothSidesLeavesOnlyBelow) {
  TCTexture_plane_input input;
  const double lo[1] = {0.0};
  const double hi[1] = {1.0};
  input.set_above(1, lo, hi);
  input.set_below(1, lo, hi);
  ASSERT_EQ(input.side_code, 3);
  input.set_below(1, lo, hi);
  EXPECT_EQ(input.side_code, 2);
}

TEST(TextureInput, CopiesOwnTheirRanges) {
  TCTexture_plane_input input;
  const double lo[2] = {0.25, 0.5};
  const double hi[2] = {2.0, 4.0};
  input.set_above(2, lo, hi);
  input.set_below(2, hi, lo);
  input.priority = 6;
  TCTexture_plane_input copy(input);
  TCTexture_plane_input assigned;
  assigned = input;
  input.min_above[0] = 99.0;
  input.min_below[1] = 99.0;
  EXPECT_EQ(copy.min_above[0], 0.25);
  EXPECT_EQ(copy.min_below[1], 4.0);
  EXPECT_EQ(assigned.min_above[0], 0.25);
  EXPECT_EQ(assigned.max_below[0], 0.25);
  EXPECT_EQ(copy.side_code, 3);
  EXPECT_EQ(assigned.priority, 6);
}

}  // namespace
