#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>

#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCMatte_names.h"
#include "TCObject_list.h"
#include "stream_capture.h"

namespace {

struct Layout {
  int first;
  int count;
};

// From matte_layout_reference.py, worked out from the layout rules alone.
// 1 band: {first plane, planes} for codes 0 to 39; table 41
const Layout one_band[40] = {
    {0, 1},  {1, 1},  {2, 1},  {3, 1},  {4, 1},  {5, 1},  {6, 1},  {7, 1},  {8, 1},  {9, 1},
    {10, 1}, {11, 1}, {12, 1}, {13, 1}, {14, 1}, {15, 1}, {16, 1}, {17, 1}, {18, 1}, {19, 1},
    {20, 1}, {21, 1}, {22, 1}, {23, 1}, {24, 1}, {25, 1}, {26, 1}, {27, 1}, {28, 1}, {29, 1},
    {30, 1}, {31, 1}, {32, 3}, {-1, 0}, {-1, 0}, {-1, 0}, {-1, 0}, {-1, 0}, {-1, 0}, {-1, 0},
};
// 3 bands: {first plane, planes} for codes 0 to 39; table 77
const Layout three_bands[40] = {
    {0, 3},  {3, 3},  {6, 3},  {9, 3},  {12, 3}, {15, 3}, {18, 3}, {21, 3}, {24, 3}, {27, 3},
    {30, 3}, {33, 3}, {36, 3}, {39, 3}, {42, 3}, {45, 3}, {48, 3}, {51, 3}, {54, 1}, {55, 1},
    {56, 1}, {57, 1}, {58, 1}, {59, 1}, {60, 1}, {61, 1}, {62, 1}, {63, 1}, {64, 1}, {65, 1},
    {66, 1}, {67, 1}, {68, 3}, {-1, 0}, {-1, 0}, {-1, 0}, {-1, 0}, {-1, 0}, {-1, 0}, {-1, 0},
};
// 10 bands: {first plane, planes} for codes 0 to 39; table 203
const Layout ten_bands[40] = {
    {0, 10},   {10, 10},  {20, 10},  {30, 10},  {40, 10},  {50, 10},  {60, 10},  {70, 10},
    {80, 10},  {90, 10},  {100, 10}, {110, 10}, {120, 10}, {130, 10}, {140, 10}, {150, 10},
    {160, 10}, {170, 10}, {180, 1},  {181, 1},  {182, 1},  {183, 1},  {184, 1},  {185, 1},
    {186, 1},  {187, 1},  {188, 1},  {189, 1},  {190, 1},  {191, 1},  {192, 1},  {193, 1},
    {194, 3},  {-1, 0},   {-1, 0},   {-1, 0},   {-1, 0},   {-1, 0},   {-1, 0},   {-1, 0},
};

void check_layout(int bands, const Layout* expected) {
  for (int code = 0; code < 40; code++) {
    int first = 99;
    int count = 99;
    const int known = TCMatte_fields::plane_layout(code, bands, first, count);
    EXPECT_EQ(known, code <= 34 ? 1 : 0) << "code " << code;
    EXPECT_EQ(first, expected[code].first) << "code " << code << ", " << bands << " bands";
    EXPECT_EQ(count, expected[code].count) << "code " << code << ", " << bands << " bands";
  }
}

TEST(MatteLayout, OneBand) {
  check_layout(1, one_band);
  EXPECT_EQ(TCMatte_fields::plane_table_size(1), 41);
}

TEST(MatteLayout, ThreeBands) {
  check_layout(3, three_bands);
  EXPECT_EQ(TCMatte_fields::plane_table_size(3), 77);
}

TEST(MatteLayout, TenBands) {
  check_layout(10, ten_bands);
  EXPECT_EQ(TCMatte_fields::plane_table_size(10), 203);
}

TEST(MatteLayout, SceneDistanceSitsAtPlane20WithOneBandAnd56WithThree) {
  int first = 0;
  int count = 0;
  TCMatte_fields::plane_layout(20, 1, first, count);
  EXPECT_EQ(first, 20);
  TCMatte_fields::plane_layout(20, 3, first, count);
  EXPECT_EQ(first, 56);
  EXPECT_EQ(count, 1);
}

TEST(MatteLayout, CodeOf40OrMoreIsReported) {
  Stream_capture out(std::cout);
  int first = 5;
  int count = 5;
  EXPECT_EQ(TCMatte_fields::plane_layout(40, 3, first, count), 0);
  EXPECT_EQ(TCMatte_fields::plane_layout(1234, 3, first, count), 0);
  EXPECT_EQ(first, -1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(out.text(), "Bad matte index value: 40\nBad matte index value: 1234\n");
}

TEST(MatteLayout, Code15HasPlanesButNoNameToAskForIt) {
  int first = 0;
  int count = 0;
  EXPECT_EQ(TCMatte_fields::plane_layout(15, 3, first, count), 1);
  EXPECT_EQ(first, 45);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(matte_code("matte15"), -1);
  TCMatte_input request;
  std::istringstream in("use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 matte15");
  Stream_capture out(std::cout);
  EXPECT_EQ(request.read(in), 0);
  EXPECT_EQ(out.text(), "Invalid matte name: matte15\n");
}

// ---------------------------------------------------------------------------

// Two list objects; the request is resolved by hand so that these tests do
// not depend on the object lookup.
class MatteFields : public ::testing::Test {
 protected:
  // Reads section and points every entry at the given list index.
  void request_for(const char* section, int object) {
    std::istringstream in(section);
    ASSERT_EQ(request.read(in), 1);
    for (int i = 0; i < request.n_matte_objects; i++) request.object_indices[i] = object;
    ASSERT_EQ(fields.set_sizes(40, 2), 1);
  }

  TCMatte_input request;
  TCMatte_fields fields;
};

TEST_F(MatteFields, StartEmptyWithFortyCodes) {
  EXPECT_EQ(fields.n_codes, 40);
  EXPECT_EQ(fields.allocated, 0);
  EXPECT_EQ(fields.use_mattes, 0);
  EXPECT_EQ(fields.n_objects, 0);
  EXPECT_EQ(fields.object_wanted, nullptr);
  EXPECT_EQ(fields.code_wanted, nullptr);
  EXPECT_EQ(fields.planes, nullptr);
}

TEST_F(MatteFields, WithNoMattesAskedNothingIsWantedAndNothingPrinted) {
  request_for("use_mattes: 0", 0);
  fields.prepare(4, 5, 3, request);
  EXPECT_EQ(fields.allocated, 1);
  Stream_capture out(std::cout);
  int first = 7;
  int count = 7;
  EXPECT_EQ(fields.is_wanted(0, 0, first, count), 0);
  EXPECT_EQ(fields.is_wanted(2, 19, first, count), 0);
  // False at once: not even a bad code is looked at.
  EXPECT_EQ(fields.is_wanted(0, 45, first, count), 0);
  EXPECT_EQ(first, -1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(fields.planes, nullptr);
}

TEST_F(MatteFields, SceneHasPlanesOfItsOwnAsTheLastObject) {
  request_for("use_mattes: 1 NObjects: 1 Object: scene NMattes: 2 radiance scene_distance", 2);
  fields.prepare(2, 3, 3, request);
  ASSERT_NE(fields.object_wanted, nullptr);
  EXPECT_EQ(fields.object_wanted[0], 0);
  EXPECT_EQ(fields.object_wanted[1], 0);
  EXPECT_EQ(fields.object_wanted[2], 1);
  EXPECT_EQ(fields.planes[0], nullptr);
  ASSERT_NE(fields.planes[2], nullptr);
  for (int p = 0; p < 3; p++) EXPECT_NE(fields.planes[2][p], nullptr);
  EXPECT_EQ(fields.planes[2][3], nullptr);
  EXPECT_NE(fields.planes[2][56], nullptr);
  int first = 0;
  int count = 0;
  EXPECT_EQ(fields.is_wanted(2, 20, first, count), 1);
  EXPECT_EQ(first, 56);
  EXPECT_EQ(count, 1);
  EXPECT_EQ(fields.is_wanted(2, 19, first, count), 0);
  EXPECT_EQ(fields.is_wanted(0, 0, first, count), 0);
  EXPECT_EQ(fields.is_wanted(3, 0, first, count), 0);
}

TEST_F(MatteFields, PlanesStartAtZeroAndDistanceAtNothingSquared) {
  request_for("use_mattes: 1 NObjects: 1 Object: boat NMattes: 3 distance glitter normal", 0);
  fields.prepare(2, 2, 1, request);
  for (int k = 0; k < 4; k++) {
    EXPECT_EQ(fields.planes[0][19][k], 1e16f);
    EXPECT_EQ(fields.planes[0][12][k], 0.0f);
    EXPECT_EQ(fields.planes[0][32][k], 0.0f);
    EXPECT_EQ(fields.planes[0][34][k], 0.0f);
  }
  fields.clear_all();
  // Clearing takes every plane to zero, the distance as well.
  for (int k = 0; k < 4; k++) EXPECT_EQ(fields.planes[0][19][k], 0.0f);
}

TEST_F(MatteFields, SceneXyzIsWantedWithoutPlanes) {
  request_for("use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 scene_xyz", 2);
  fields.prepare(2, 2, 3, request);
  int first = 0;
  int count = 0;
  EXPECT_EQ(fields.is_wanted(2, 33, first, count), 1);
  EXPECT_EQ(first, -1);
  EXPECT_EQ(count, 0);
  // The scene distance it is derived from came with it.
  EXPECT_EQ(fields.is_wanted(2, 20, first, count), 1);
  EXPECT_EQ(first, 56);
}

TEST_F(MatteFields, BadCodeIsReportedWhenMattesAreOn) {
  request_for("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 radiance", 0);
  fields.prepare(1, 1, 1, request);
  Stream_capture out(std::cout);
  int first = 0;
  int count = 0;
  EXPECT_EQ(fields.is_wanted(0, 40, first, count), 0);
  EXPECT_EQ(fields.is_wanted(0, 37, first, count), 0);
  EXPECT_EQ(out.text(), "Bad matte index value: 40\n");
}

TEST_F(MatteFields, ReleaseAllowsPrepareAgain) {
  request_for("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 radiance", 0);
  fields.prepare(2, 2, 2, request);
  fields.release();
  EXPECT_EQ(fields.allocated, 0);
  EXPECT_EQ(fields.planes, nullptr);
  int first = 0;
  int count = 0;
  EXPECT_EQ(fields.is_wanted(0, 0, first, count), 0);
  fields.prepare(3, 3, 1, request);
  EXPECT_EQ(fields.is_wanted(0, 0, first, count), 1);
  EXPECT_EQ(count, 1);
  fields.release();
  fields.release();
}

TEST_F(MatteFields, SizesCannotChangeWhileAllocated) {
  request_for("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 radiance", 0);
  fields.prepare(1, 1, 1, request);
  EXPECT_EQ(fields.set_sizes(40, 7), 0);
  EXPECT_EQ(fields.n_objects, 2);
  fields.release();
  EXPECT_EQ(fields.set_sizes(40, 7), 1);
  EXPECT_EQ(fields.set_sizes(41, 7), 0);
  EXPECT_EQ(fields.set_sizes(40, -1), 0);
}

TEST_F(MatteFields, SceneDistanceGoesToPlane20OfTheScene) {
  request_for("use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 scene_distance", 2);
  fields.prepare(2, 3, 1, request);
  fields.set_scene_distance(4, 42.5);
  fields.set_scene_distance(6, 1.0);   // beyond the plane: ignored
  fields.set_scene_distance(-1, 1.0);  // likewise
  for (int k = 0; k < 6; k++) EXPECT_EQ(fields.planes[2][20][k], k == 4 ? 42.5f : 1e16f);
}

TEST_F(MatteFields, SceneDistanceIsIgnoredWhenNotWanted) {
  request_for("use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 radiance", 2);
  fields.prepare(2, 3, 1, request);
  fields.set_scene_distance(4, 42.5);
  EXPECT_EQ(fields.planes[2][20], nullptr);
}

// Allocation failures exit from inside prepare; their line goes to standard
// output, which the child hands to standard error for the death test to see.
void prepare_in_child(int rows, int columns, int bands, int objects) {
  std::cout.rdbuf(std::cerr.rdbuf());
  TCMatte_input request;
  std::istringstream in("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 radiance");
  request.read(in);
  request.object_indices[0] = 0;
  TCMatte_fields fields;
  fields.n_objects = objects;
  fields.prepare(rows, columns, bands, request);
}

TEST(MatteFieldsDeathTest, PreparingTwiceExitsOne) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCMatte_input request;
        TCMatte_fields fields;
        fields.prepare(1, 1, 1, request);
        fields.prepare(1, 1, 1, request);
      },
      ::testing::ExitedWithCode(1), "^Trying to REALLOCATE matte fields\n$");
}

TEST(MatteFieldsDeathTest, ObjectTableThatCannotBeMadeExitsWithStep1) {
  EXPECT_EXIT(prepare_in_child(1, 1, 1, -2), ::testing::ExitedWithCode(1),
              "^Error allocating matte memory - 1\n$");
}

TEST(MatteFieldsDeathTest, PlaneTableThatCannotBeMadeExitsWithStep2) {
  EXPECT_EXIT(prepare_in_child(1, 1, -1, 1), ::testing::ExitedWithCode(1),
              "^Error allocating matte memory - 2\n$");
}

TEST(MatteFieldsDeathTest, PlaneThatCannotBeMadeExitsWithStep3) {
  EXPECT_EXIT(prepare_in_child(-1, 4, 1, 1), ::testing::ExitedWithCode(1),
              "^Error allocating matte memory - 3\n$");
  EXPECT_EXIT(prepare_in_child(100000, 100000, 1, 1), ::testing::ExitedWithCode(1),
              "^Error allocating matte memory - 3\n$");
}

}  // namespace
