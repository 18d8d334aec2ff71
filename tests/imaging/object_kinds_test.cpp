#include <gtest/gtest.h>

#include <cstring>

#include "TCObject_kinds.h"

namespace {

TEST(ObjectKinds, EveryWordOfTheTableHasItsCode) {
  struct Row {
    const char* word;
    int code;
  };
  const Row rows[] = {
      {"air", 7},          {"skydome", 11},  {"boxcloud", 9},   {"cloud", 1},
      {"land", 2},         {"ocean", 13},    {"water", 3},      {"box", 4},
      {"solidbox", 4},     {"plane", 5},     {"flatground", 5}, {"point", 6},
      {"spray", 8},        {"blob", 10},     {"camera", 255},   {"bobbing_camera", 254},
      {"bobbing_box", 14}, {"caustic", 15},  {"poly", 19},      {"picture", 16},
      {"spray_lite", 18},  {"blob_lite", 17}};
  for (const Row& row : rows) EXPECT_EQ(object_kind_code(row.word), row.code) << row.word;
}

TEST(ObjectKinds, UnknownWordsAndOtherCaseGiveMinusOne) {
  EXPECT_EQ(object_kind_code("Box"), -1);
  EXPECT_EQ(object_kind_code("OCEAN"), -1);
  EXPECT_EQ(object_kind_code(""), -1);
  EXPECT_EQ(object_kind_code("type_name"), -1);
  EXPECT_EQ(object_kind_code("boxes"), -1);
  EXPECT_EQ(object_kind_code(nullptr), -1);
}

TEST(ObjectKinds, TextureMotionCodes) {
  EXPECT_EQ(texture_motion_code("no"), 0);
  EXPECT_EQ(texture_motion_code("time"), 100);
  EXPECT_EQ(texture_motion_code("frames"), 101);
  EXPECT_EQ(texture_motion_code("Time"), 0);
  EXPECT_EQ(texture_motion_code("yes"), 0);
}

TEST(ObjectKinds, TextureMotionTextKnownCodes) {
  char buffer[16];
  EXPECT_EQ(texture_motion_text(0, buffer), 1);
  EXPECT_STREQ(buffer, "no");
  EXPECT_EQ(texture_motion_text(100, buffer), 1);
  EXPECT_STREQ(buffer, "time");
  EXPECT_EQ(texture_motion_text(101, buffer), 1);
  EXPECT_STREQ(buffer, "frames");
}

TEST(ObjectKinds, TextureMotionTextOtherCodeWritesNoAndFails) {
  char buffer[16];
  std::strcpy(buffer, "junk");
  EXPECT_EQ(texture_motion_text(7, buffer), 0);
  EXPECT_STREQ(buffer, "no");
  EXPECT_EQ(texture_motion_text(-1, buffer), 0);
  EXPECT_STREQ(buffer, "no");
}

TEST(ObjectKinds, BackgroundCodesReadCapitalN) {
  EXPECT_EQ(background_code("background"), 1);
  EXPECT_EQ(background_code("fore_N_background"), 2);
  EXPECT_EQ(background_code("fore_n_background"), 0);
  EXPECT_EQ(background_code("foreground"), 0);
  EXPECT_EQ(background_code("anything"), 0);
}

TEST(ObjectKinds, BackgroundTextWritesSmallN) {
  char buffer[32];
  background_text(1, buffer);
  EXPECT_STREQ(buffer, "background");
  background_text(2, buffer);
  EXPECT_STREQ(buffer, "fore_n_background");
  background_text(0, buffer);
  EXPECT_STREQ(buffer, "foreground");
  background_text(9, buffer);
  EXPECT_STREQ(buffer, "foreground");
}

TEST(ObjectKinds, WrittenForeAndBackgroundReadsBackAsForeground) {
  char buffer[32];
  background_text(2, buffer);
  EXPECT_EQ(background_code(buffer), 0);
}

}  // namespace
