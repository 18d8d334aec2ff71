#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "TCMatte_names.h"

namespace {

std::string file_name(const char* object, int code, const char* base) {
  char out[256];
  std::memset(out, 'x', sizeof(out));
  EXPECT_EQ(matte_file_name(object, code, base, out, sizeof(out)), 1);
  return std::string(out);
}

TEST(MatteFileName, BaseEndingInDotRepeatsTheDot) {
  EXPECT_EQ(file_name("boat", 19, "pic."), "pic.boat_distance.");
  EXPECT_EQ(file_name("scene", 20, "pic."), "pic.scene_distance.");
}

TEST(MatteFileName, BaseEndingInUnderscoreRepeatsTheUnderscore) {
  EXPECT_EQ(file_name("boat", 0, "out/pic_"), "out/pic_boat_radiance_");
  EXPECT_EQ(file_name("scene", 0, "out/pic_"), "out/pic_radiance_");
}

TEST(MatteFileName, BaseEndingInDashRepeatsTheDash) {
  EXPECT_EQ(file_name("boat", 13, "pic-"), "pic-boat_whitecap-");
  EXPECT_EQ(file_name("scene", 33, "pic-"), "pic-scene_xyz-");
}

TEST(MatteFileName, OtherBaseGetsUnderscoreAndNothingBehind) {
  EXPECT_EQ(file_name("boat", 19, "pic"), "pic_boat_distance");
  EXPECT_EQ(file_name("scene", 19, "pic"), "pic_distance");
  EXPECT_EQ(file_name("boat", 18, "out/"), "out/_boat_fraction_filled");
  EXPECT_EQ(file_name("scene", 0, ""), "_radiance");
}

TEST(MatteFileName, UsesWrittenNamesOfPositionalAndUnnamedCodes) {
  EXPECT_EQ(file_name("boat", 8, "pic"), "pic_boat_object1_reflected");
  EXPECT_EQ(file_name("boat", 25, "pic."), "pic.boat_object3_alpha.");
  EXPECT_EQ(file_name("boat", 31, "pic_"), "pic_boat_texture4_alpha_");
  EXPECT_EQ(file_name("scene", 34, "pic"), "pic_scene_no_rad");
  EXPECT_EQ(file_name("scene", 15, "pic"), "pic_matte15");
}

TEST(MatteFileName, OnlyTheExactWordSceneMeansTheScene) {
  EXPECT_EQ(file_name("Scene", 0, "pic"), "pic_Scene_radiance");
  EXPECT_EQ(file_name("scenery", 0, "pic"), "pic_scenery_radiance");
  EXPECT_EQ(file_name(nullptr, 0, "pic"), "pic_radiance");
}

TEST(MatteFileName, TooShortBufferIsCutAndReported) {
  char out[8];
  EXPECT_EQ(matte_file_name("boat", 0, "pic", out, sizeof(out)), 0);
  EXPECT_STREQ(out, "pic_boa");
  char exact[18];  // "pic_boat_radiance" and its terminator
  EXPECT_EQ(matte_file_name("boat", 0, "pic", exact, sizeof(exact)), 1);
  EXPECT_STREQ(exact, "pic_boat_radiance");
  EXPECT_EQ(matte_file_name("boat", 0, "pic", nullptr, 10), 0);
}

}  // namespace
