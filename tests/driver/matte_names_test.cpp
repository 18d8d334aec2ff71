#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>

#include "TCMatte_names.h"

namespace {

std::string name_of(int code) {
  char buffer[32];
  std::memset(buffer, 'x', sizeof(buffer));
  matte_name(code, buffer);
  return std::string(buffer);
}

// Codes whose read and written names are the same word.
struct Same_name {
  int code;
  const char* name;
};

const Same_name same_names[] = {
    {0, "radiance"},
    {1, "absorption"},
    {2, "transmission"},
    {3, "reflectance"},
    {4, "sky"},
    {5, "object_reflected"},
    {6, "object_refracted"},
    {12, "glitter"},
    {13, "whitecap"},
    {14, "path_rad"},
    {16, "no_air"},
    {17, "texture"},
    {18, "fraction_filled"},
    {19, "distance"},
    {20, "scene_distance"},
    {21, "hull_line_water_line"},
    {32, "normal"},
    {33, "scene_xyz"},
};

TEST(MatteNames, PlainNamesReadAndWriteAlike) {
  for (const Same_name& entry : same_names) {
    EXPECT_EQ(matte_code(entry.name), entry.code) << entry.name;
    EXPECT_EQ(name_of(entry.code), entry.name) << entry.code;
  }
}

TEST(MatteNames, UnknownNamesGiveMinusOne) {
  EXPECT_EQ(matte_code("Radiance"), -1);
  EXPECT_EQ(matte_code("radiance "), -1);
  EXPECT_EQ(matte_code("reflect"), -1);
  EXPECT_EQ(matte_code("alpha"), -1);
  EXPECT_EQ(matte_code("matte15"), -1);
  EXPECT_EQ(matte_code(""), -1);
}

TEST(MatteNames, WrittenFamilyNamesAreNotReadBack) {
  EXPECT_EQ(matte_code("object0_reflected"), -1);
  EXPECT_EQ(matte_code("object0_alpha"), -1);
  EXPECT_EQ(matte_code("texture0_alpha"), -1);
}

TEST(MatteNames, ReflectPrefixGivesSeven) {
  EXPECT_EQ(matte_code("reflect-boat"), 7);
  EXPECT_EQ(matte_code("reflect-alpha-texture"), 7);
}

TEST(MatteNames, ReflectPrefixAloneGivesSevenWithAnEmptyObjectName) {
  EXPECT_EQ(matte_code("reflect-"), 7);
}

TEST(MatteNames, AlphaTextureIsTestedBeforeTheAlphaPrefix) {
  EXPECT_EQ(matte_code("alpha-texture"), 27);
  EXPECT_EQ(matte_code("alpha-textures"), 22);
  EXPECT_EQ(matte_code("alpha-boat"), 22);
  EXPECT_EQ(matte_code("alpha-"), 22);
}

TEST(MatteNames, SceneWithoutRadianceIsReadLongAndWrittenShort) {
  EXPECT_EQ(matte_code("scene_no_radiance"), 34);
  EXPECT_EQ(name_of(34), "scene_no_rad");
  EXPECT_EQ(matte_code("scene_no_rad"), -1);
}

TEST(MatteNames, ReflectedObjectsAreNumberedFromZero) {
  EXPECT_EQ(name_of(7), "object0_reflected");
  EXPECT_EQ(name_of(8), "object1_reflected");
  EXPECT_EQ(name_of(9), "object2_reflected");
  EXPECT_EQ(name_of(10), "object3_reflected");
  EXPECT_EQ(name_of(11), "object4_reflected");
}

TEST(MatteNames, ObjectAlphasAreNumberedFromZero) {
  EXPECT_EQ(name_of(22), "object0_alpha");
  EXPECT_EQ(name_of(23), "object1_alpha");
  EXPECT_EQ(name_of(24), "object2_alpha");
  EXPECT_EQ(name_of(25), "object3_alpha");
  EXPECT_EQ(name_of(26), "object4_alpha");
}

TEST(MatteNames, TextureAlphasAreNumberedFromZero) {
  EXPECT_EQ(name_of(27), "texture0_alpha");
  EXPECT_EQ(name_of(28), "texture1_alpha");
  EXPECT_EQ(name_of(29), "texture2_alpha");
  EXPECT_EQ(name_of(30), "texture3_alpha");
  EXPECT_EQ(name_of(31), "texture4_alpha");
}

TEST(MatteNames, UnnamedCodesAreWrittenWithTheirNumber) {
  EXPECT_EQ(name_of(15), "matte15");
  EXPECT_EQ(name_of(35), "matte35");
  EXPECT_EQ(name_of(-1), "matte-1");
  EXPECT_EQ(name_of(INT_MAX), "matte2147483647");
  EXPECT_EQ(name_of(INT_MIN), "matte-2147483648");
}

TEST(MatteNames, NameStaysWithinThirtyTwoCharacters) {
  char buffer[64];
  std::memset(buffer, 'x', sizeof(buffer));
  matte_name(21, buffer);
  EXPECT_STREQ(buffer, "hull_line_water_line");
  for (int i = 32; i < 64; i++) EXPECT_EQ(buffer[i], 'x') << i;
  std::memset(buffer, 'x', sizeof(buffer));
  matte_name(INT_MIN, buffer);
  for (int i = 32; i < 64; i++) EXPECT_EQ(buffer[i], 'x') << i;
}

}  // namespace
