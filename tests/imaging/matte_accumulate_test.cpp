#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>

#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "stream_capture.h"

namespace {

// Two bands, so with B = 2 the planes of one object are:
//   radiance 0, 1; absorption 2, 3; glitter 24, 25; fraction_filled 36;
//   distance 37; object0..4_alpha 40..44; texture0..4_alpha 45..49;
//   normal 50, 51, 52.
const char* const boat_section =
    "use_mattes: 1 NObjects: 1 Object: boat NMattes: 16 radiance absorption fraction_filled "
    "distance alpha-a alpha-b alpha-c alpha-d whitecap alpha-texture alpha-texture "
    "alpha-texture alpha-texture alpha-texture normal glitter";

// A 2 by 3 slice with one list object (the boat, index 0) and the scene.
class MatteAccumulate : public ::testing::Test {
 protected:
  void SetUp() override {
    std::istringstream in(boat_section);
    ASSERT_EQ(request.read(in), 1);
    ASSERT_EQ(request.matte_ids[0][8], 13);
    // A fifth alpha matte cannot come from a file; put one where the
    // whitecap was, to see that it is left out of the sums.
    request.matte_ids[0][8] = 26;
    request.object_indices[0] = 0;
    ASSERT_EQ(fields.set_sizes(40, 1), 1);
    fields.prepare(2, 3, 2, request);
  }

  float& at(int plane) { return fields.planes[0][plane][pixel]; }

  TCMatte_input request;
  TCMatte_fields fields;
  const int pixel = 5;  // row 1, column 2
};

TEST_F(MatteAccumulate, WithoutSampleRadianceCoverageAndDistance) {
  at(0) = 4.0f;
  at(1) = 8.0f;
  at(2) = 7.0f;
  const double radiance[2] = {2.0, 4.0};
  fields.accumulate(1, 2, 0, 0.25, 0.5, 0.75, 9.0, 12.5, radiance, nullptr);
  EXPECT_FLOAT_EQ(at(0), 2.5f);  // 4 * 0.5 + 0.25 * 2
  EXPECT_FLOAT_EQ(at(1), 5.0f);  // 8 * 0.5 + 0.25 * 4
  EXPECT_FLOAT_EQ(at(2), 7.0f);  // only the radiance without a sample
  EXPECT_FLOAT_EQ(at(37), 12.5f);
  EXPECT_FLOAT_EQ(at(36), 0.75f);
  // Other pixels keep their start values.
  EXPECT_EQ(fields.planes[0][0][4], 0.0f);
  EXPECT_EQ(fields.planes[0][37][4], 1e16f);
}

TEST_F(MatteAccumulate, FloatRadianceFormMatchesDoubleForm) {
  at(0) = 4.0f;
  at(1) = 8.0f;
  const float radiance[2] = {2.0f, 4.0f};
  fields.accumulate(1, 2, 0, 0.25, 0.5, 0.75, 9.0, 12.5, radiance, nullptr);
  EXPECT_FLOAT_EQ(at(0), 2.5f);
  EXPECT_FLOAT_EQ(at(1), 5.0f);
  EXPECT_FLOAT_EQ(at(37), 12.5f);
  EXPECT_FLOAT_EQ(at(36), 0.75f);
}

TEST_F(MatteAccumulate, WithSampleWeightedSumsSkipTheFifthOfEachRange) {
  TCMatte_sample sample;
  sample.attach(0, &fields);
  ASSERT_EQ(sample.on, 1);
  sample.clear();
  const float values[][2] = {{0, 2},  {1, 4},  {2, 1},  {3, 3},  {24, 5}, {25, 6}, {40, 0.5f},
                             {41, 1}, {42, 2}, {43, 3}, {44, 7}, {45, 1}, {46, 2}, {47, 3},
                             {48, 4}, {49, 9}, {50, 1}, {51, 0}, {52, 0}};
  for (const auto& v : values) sample.values[static_cast<int>(v[0])] = v[1];

  at(0) = 4.0f;
  at(1) = 8.0f;
  at(24) = 2.0f;
  at(25) = 2.0f;
  for (int p = 40; p <= 44; p++) at(p) = 1.0f;
  for (int p = 45; p <= 49; p++) at(p) = 2.0f;
  at(52) = 1.0f;

  const double radiance[2] = {100.0, 100.0};
  // weight_new * sample_weight = 1, so each sum is old * 0.25 + value.
  fields.accumulate(1, 2, 0, 0.5, 0.25, 0.75, 2.0, 12.5, radiance, &sample);
  EXPECT_FLOAT_EQ(at(0), 3.0f);
  EXPECT_FLOAT_EQ(at(1), 6.0f);
  EXPECT_FLOAT_EQ(at(2), 1.0f);
  EXPECT_FLOAT_EQ(at(3), 3.0f);
  EXPECT_FLOAT_EQ(at(24), 5.5f);
  EXPECT_FLOAT_EQ(at(25), 6.5f);
  EXPECT_FLOAT_EQ(at(40), 0.75f);
  EXPECT_FLOAT_EQ(at(41), 1.25f);
  EXPECT_FLOAT_EQ(at(42), 2.25f);
  EXPECT_FLOAT_EQ(at(43), 3.25f);
  EXPECT_FLOAT_EQ(at(44), 1.0f);  // code 26 untouched
  EXPECT_FLOAT_EQ(at(45), 1.5f);
  EXPECT_FLOAT_EQ(at(46), 2.5f);
  EXPECT_FLOAT_EQ(at(47), 3.5f);
  EXPECT_FLOAT_EQ(at(48), 4.5f);
  EXPECT_FLOAT_EQ(at(49), 2.0f);  // code 31 untouched
  // Normal: s = 0.75, (0.25 / s) * (0, 0, 1) + (0.5 / s) * (1, 0, 0).
  EXPECT_FLOAT_EQ(at(50), 2.0f / 3.0f);
  EXPECT_FLOAT_EQ(at(51), 0.0f);
  EXPECT_FLOAT_EQ(at(52), 1.0f / 3.0f);
  EXPECT_FLOAT_EQ(at(37), 12.5f);
  EXPECT_FLOAT_EQ(at(36), 0.75f);
}

TEST_F(MatteAccumulate, NormalWithWeightsSummingToZeroUsesOne) {
  TCMatte_sample sample;
  sample.attach(0, &fields);
  sample.clear();
  sample.values[50] = 1.0f;
  at(52) = 1.0f;
  const double radiance[2] = {0.0, 0.0};
  fields.accumulate(1, 2, 0, -0.5, 0.5, 1.0, 1.0, 3.0, radiance, &sample);
  // s = 0 becomes 1: 0.5 * (0, 0, 1) - 0.5 * (1, 0, 0).
  EXPECT_FLOAT_EQ(at(50), -0.5f);
  EXPECT_FLOAT_EQ(at(51), 0.0f);
  EXPECT_FLOAT_EQ(at(52), 0.5f);
}

TEST_F(MatteAccumulate, SampleOfOtherFieldsCountsAsNone) {
  TCMatte_input one_band_request;
  std::istringstream in("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 radiance");
  ASSERT_EQ(one_band_request.read(in), 1);
  one_band_request.object_indices[0] = 0;
  TCMatte_fields one_band;
  one_band.set_sizes(40, 1);
  one_band.prepare(1, 1, 1, one_band_request);
  TCMatte_sample sample;
  sample.attach(0, &one_band);
  ASSERT_EQ(sample.on, 1);
  sample.clear();
  sample.values[0] = 50.0f;

  const double radiance[2] = {2.0, 4.0};
  fields.accumulate(1, 2, 0, 1.0, 0.0, 1.0, 1.0, 3.0, radiance, &sample);
  EXPECT_FLOAT_EQ(at(0), 2.0f);
  EXPECT_FLOAT_EQ(at(1), 4.0f);
}

TEST_F(MatteAccumulate, ObjectsWithoutMattesAndPixelsOutsideAreIgnored) {
  const double radiance[2] = {2.0, 4.0};
  fields.accumulate(1, 2, 1, 1.0, 0.0, 1.0, 1.0, 3.0, radiance, nullptr);   // the scene
  fields.accumulate(1, 2, 5, 1.0, 0.0, 1.0, 1.0, 3.0, radiance, nullptr);   // no such object
  fields.accumulate(2, 0, 0, 1.0, 0.0, 1.0, 1.0, 3.0, radiance, nullptr);   // row beyond
  fields.accumulate(0, -1, 0, 1.0, 0.0, 1.0, 1.0, 3.0, radiance, nullptr);  // column before
  for (int k = 0; k < 6; k++) EXPECT_EQ(fields.planes[0][0][k], 0.0f);
  EXPECT_EQ(fields.planes[1], nullptr);
}

// ---------------------------------------------------------------------------

TEST_F(MatteAccumulate, SampleIsOffWithoutFieldsInUse) {
  TCMatte_sample sample;
  sample.attach(0, nullptr);
  EXPECT_EQ(sample.on, 0);

  TCMatte_input none;
  TCMatte_fields unused;
  unused.prepare(2, 2, 2, none);
  sample.attach(0, &unused);
  EXPECT_EQ(sample.on, 0);
  EXPECT_EQ(sample.values, nullptr);
}

TEST_F(MatteAccumulate, SampleIndexOutsideTheFieldsIsReported) {
  TCMatte_sample sample;
  Stream_capture out(std::cout);
  sample.attach(-1, &fields);
  EXPECT_EQ(sample.on, 0);
  sample.attach(2, &fields);
  EXPECT_EQ(sample.on, 0);
  // The scene (index n_objects) is in range, only not wanted here.
  sample.attach(1, &fields);
  EXPECT_EQ(sample.on, 0);
  EXPECT_EQ(out.text(), "Bad matte field index\nBad matte field index\n");
}

TEST_F(MatteAccumulate, SampleCopiesSizesAndFlagsOfItsObject) {
  TCMatte_sample sample;
  sample.attach(0, &fields);
  EXPECT_EQ(sample.on, 1);
  EXPECT_EQ(sample.n_codes, 40);
  EXPECT_EQ(sample.n_bands, 2);
  ASSERT_NE(sample.wanted, nullptr);
  for (int c = 0; c < 40; c++) EXPECT_EQ(sample.wanted[c], fields.code_wanted[0][c]) << c;
  EXPECT_EQ(sample.wanted[26], 1);
  EXPECT_EQ(sample.wanted[13], 0);
  // Storage is made once and kept across attachments.
  float* values = sample.values;
  sample.attach(0, &fields);
  EXPECT_EQ(sample.values, values);
}

TEST_F(MatteAccumulate, SampleClearZeroesAndSetsDistanceToNothingSquared) {
  TCMatte_sample sample;
  sample.attach(0, &fields);
  for (int i = 0; i < 59; i++) sample.values[i] = 3.0f;
  sample.clear();
  for (int i = 0; i < 59; i++) EXPECT_EQ(sample.values[i], i == 37 ? 1e16f : 0.0f) << i;
  sample.set_distance(33.5);
  EXPECT_EQ(sample.values[37], 33.5f);
}

TEST_F(MatteAccumulate, SampleAddIsValuewise) {
  TCMatte_sample a;
  TCMatte_sample b;
  a.attach(0, &fields);
  b.attach(0, &fields);
  for (int i = 0; i < 59; i++) {
    a.values[i] = static_cast<float>(i);
    b.values[i] = 0.5f;
  }
  a.add(b);
  for (int i = 0; i < 59; i++) EXPECT_FLOAT_EQ(a.values[i], i + 0.5f) << i;
}

TEST_F(MatteAccumulate, SampleNormaliseDividesByWeight) {
  TCMatte_sample sample;
  sample.attach(0, &fields);
  sample.clear();
  sample.values[0] = 3.0f;
  sample.normalise(4.0);
  EXPECT_FLOAT_EQ(sample.values[0], 0.75f);
  EXPECT_FLOAT_EQ(sample.values[37], 2.5e15f);
}

TEST_F(MatteAccumulate, SampleNormaliseBySmallWeightIsReportedAndSkipped) {
  TCMatte_sample sample;
  sample.attach(0, &fields);
  sample.clear();
  sample.values[0] = 3.0f;
  Stream_capture out(std::cout);
  sample.normalise(1e-07);
  sample.normalise(0.0);
  sample.normalise(-2.0);
  EXPECT_EQ(out.text(),
            "Matte Field Normalization is wrong: 1e-07Normalizing by 1.0\n"
            "Matte Field Normalization is wrong: 0Normalizing by 1.0\n"
            "Matte Field Normalization is wrong: -2Normalizing by 1.0\n");
  EXPECT_EQ(sample.values[0], 3.0f);
  // 1e-06 itself is not below the limit.
  sample.normalise(1e-06);
  EXPECT_FLOAT_EQ(sample.values[0], 3e6f);
}

TEST_F(MatteAccumulate, SampleThatIsOffIgnoresItsOperations) {
  TCMatte_sample sample;
  sample.attach(0, &fields);
  sample.values[0] = 3.0f;
  sample.attach(1, &fields);  // the scene: not wanted, so off
  ASSERT_EQ(sample.on, 0);
  Stream_capture out(std::cout);
  sample.normalise(0.0);
  sample.clear();
  sample.set_distance(1.0);
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(sample.values[0], 3.0f);
}

using MatteAccumulateDeathTest = MatteAccumulate;

TEST_F(MatteAccumulateDeathTest, SampleStorageThatCannotBeMadeExitsWithStep4) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        fields.n_bands = -2;
        TCMatte_sample sample;
        sample.attach(0, &fields);
      },
      ::testing::ExitedWithCode(1), "^Error allocating matte memory - 4\n$");
}

}  // namespace
