#include <gtest/gtest.h>

#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "fourt.h"
#include "stream_capture.h"

namespace {

std::vector<float> random_floats(int count, unsigned seed) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
  std::vector<float> values(count);
  for (int i = 0; i < count; ++i) values[i] = uniform(engine);
  return values;
}

TEST(FourtEdgeCases, LengthOneIsLeftAloneSilently) {
  float data[2] = {3.0f, 4.0f};
  float work[400];
  const int n = 1;
  Stream_capture out(std::cout);
  EXPECT_EQ(fourt(data, &n, 1, 1, 1, work, 100), 0);
  EXPECT_EQ(data[0], 3.0f);
  EXPECT_EQ(data[1], 4.0f);
  EXPECT_EQ(out.text(), "");
}

TEST(FourtEdgeCases, LengthOneDimensionIsSkippedWhileTheOthersTransform) {
  // Shape 1 x 4: an impulse at the start becomes four ones.
  float data[8] = {1, 0, 0, 0, 0, 0, 0, 0};
  float work[400];
  const int n[2] = {1, 4};
  fourt(data, n, 2, -1, 1, work, 100);
  const float expected[8] = {1, 0, 1, 0, 1, 0, 1, 0};
  for (int i = 0; i < 8; ++i) EXPECT_FLOAT_EQ(data[i], expected[i]) << i;
}

TEST(FourtEdgeCases, OddFirstLengthOfARealTransformIsRefusedWithTheDebugLines) {
  std::vector<float> data = random_floats(7 * 4, 1);
  const std::vector<float> before = data;
  std::string printed;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(fourt2(data.data(), 5, 4, 1), 0);
    printed = out.text();
  }
  EXPECT_EQ(printed, "\n Debug stuff \niform = 0\nn [0] = 5\nn [1] = 4\n");
  EXPECT_EQ(data, before);

  Stream_capture out(std::cout);
  fourt3(data.data(), 3, 2, 2, -1);
  EXPECT_EQ(out.text(), "\n Debug stuff \niform = -1\nn [0] = 3\nn [1] = 2\nn [2] = 2\n");
  EXPECT_EQ(data, before);
}

TEST(FourtEdgeCases, PowersOfFourRunOnlyRadixFourPasses) {
  int radix[32];
  ASSERT_EQ(fourt_passes(1024, -1, 100, radix, 32), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(radix[i], 4) << i;
}

TEST(FourtEdgeCases, SevenSixtyEightRunsOneRadixThreePass) {
  int radix[32];
  ASSERT_EQ(fourt_passes(768, 1, 100, radix, 32), 5);
  const int expected[5] = {4, 4, 3, 4, 4};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(radix[i], expected[i]) << i;
}

TEST(FourtEdgeCases, SquareFactorsAreLaidOutSymmetricallyAroundTheUnpairedOnes) {
  int factor[32];
  int icent = 0;
  ASSERT_EQ(fourt_factors(360, factor, icent), 6);
  const int expected[6] = {2, 3, 2, 5, 3, 2};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(factor[i], expected[i]) << i;
  EXPECT_EQ(icent, 10);

  ASSERT_EQ(fourt_factors(1024, factor, icent), 10);
  EXPECT_EQ(icent, 1);
  ASSERT_EQ(fourt_factors(97 * 3, factor, icent), 2);
  EXPECT_EQ(factor[0], 3);
  EXPECT_EQ(factor[1], 97);
  EXPECT_EQ(icent, 291);
}

TEST(FourtEdgeCases, PrimeAboveOneHundredStopsAWrapperWithTheSecondDebugText) {
  std::vector<float> data = random_floats(2 * 101, 2);
  const std::vector<float> before = data;
  Stream_capture out(std::cout);
  EXPECT_EQ(fourt1(data.data(), 101, 1), 0);
  EXPECT_EQ(out.text(),
            "\n Debugging stuff \nnwork : \nidim  : \nncurr : \nicent : \nifact [0] : \n");
  EXPECT_EQ(data, before);
}

TEST(FourtEdgeCases, RefusalInTheSecondDimensionKeepsTheFirstDimensionDone) {
  // Rows r of 1, 2, 3, 4 times (r + 1): each becomes 10, -2 + 2i, -2 times
  // (r + 1), then the second dimension of length 101 is refused.
  const int rows = 101;
  std::vector<float> data(6 * rows, 0.0f);
  for (int r = 0; r < rows; ++r)
    for (int i = 0; i < 4; ++i) data[4 * r + i] = (i + 1.0f) * (r + 1.0f);
  Stream_capture out(std::cout);
  fourt2(data.data(), 4, rows, 1);
  EXPECT_EQ(out.text(),
            "\n Debugging stuff \nnwork : \nidim  : \nncurr : \nicent : \nifact [0] : \n");
  const float row[6] = {10, 0, -2, 2, -2, 0};
  for (int r = 0; r < rows; ++r)
    for (int i = 0; i < 6; ++i) ASSERT_FLOAT_EQ(data[6 * r + i], row[i] * (r + 1.0f)) << r;
}

TEST(FourtEdgeCases, RefusedFirstDimensionOfAnInverseIsNotFoldedEither) {
  // Half-complex rows of 202 reals (102 values), two of them: the length-2
  // dimension goes first and gives sum and difference; 101 is then refused
  // before the rows are touched.
  const int n[2] = {202, 2};
  std::vector<float> data = random_floats(2 * 204, 6);
  const std::vector<float> before = data;
  float work[400];
  Stream_capture out(std::cout);
  fourt(data.data(), n, 2, 1, -1, work, 100);
  EXPECT_EQ(out.text(),
            "\n Debugging stuff \nnwork : \nidim  : \nncurr : \nicent : \nifact [0] : \n");
  for (int i = 0; i < 204; ++i) {
    EXPECT_FLOAT_EQ(data[i], before[i] + before[204 + i]) << i;
    EXPECT_FLOAT_EQ(data[204 + i], before[i] - before[204 + i]) << i;
  }
}

TEST(FourtEdgeCases, UnpairedMiddleAboveTheScratchBoundIsRefused) {
  // 30 = 2 * 3 * 5: no factor above 10, but the middle part is 30.
  std::vector<float> data = random_floats(60, 3);
  const std::vector<float> before = data;
  float work[40];
  const int n = 30;
  Stream_capture out(std::cout);
  fourt(data.data(), &n, 1, 1, 1, work, 10);
  EXPECT_EQ(out.text(),
            "\n Debugging stuff \nnwork : \nidim  : \nncurr : \nicent : \nifact [0] : \n"
            "ifact [1] : \nifact [2] : \n");
  EXPECT_EQ(data, before);
}

TEST(FourtEdgeCases, RealRoundTripThroughTheTwoDimensionalWrapperScalesByTheSize) {
  const int n1 = 16, n2 = 12;
  const std::vector<float> values = random_floats(n1 * n2, 4);
  std::vector<float> data((n1 + 2) * n2, 0.0f);
  for (int i = 0; i < n1 * n2; ++i) data[i] = values[i];
  fourt2(data.data(), n1, n2, 1);
  fourt2(data.data(), n1, n2, -1);
  for (int i = 0; i < n1 * n2; ++i) EXPECT_NEAR(data[i], values[i] * n1 * n2, 2e-4) << i;
}

TEST(FourtEdgeCases, RealRoundTripThroughTheThreeDimensionalWrapperScalesByTheSize) {
  const int n1 = 8, n2 = 6, n3 = 4;
  const std::vector<float> values = random_floats(n1 * n2 * n3, 5);
  std::vector<float> data((n1 + 2) * n2 * n3, 0.0f);
  for (int i = 0; i < n1 * n2 * n3; ++i) data[i] = values[i];
  fourt3(data.data(), n1, n2, n3, 1);
  fourt3(data.data(), n1, n2, n3, -1);
  for (int i = 0; i < n1 * n2 * n3; ++i) EXPECT_NEAR(data[i], values[i] * n1 * n2 * n3, 2e-4);
}

TEST(FourtEdgeCases, ComplexWrapperSignPlusOneUsesExponentSignMinusOne) {
  // An impulse at index 1 of 4 becomes exp(-2 pi i k / 4): 1, -i, -1, i.
  float data[8] = {0, 0, 1, 0, 0, 0, 0, 0};
  fourt1(data, 4, 1);
  const float forward[8] = {1, 0, 0, -1, -1, 0, 0, 1};
  for (int i = 0; i < 8; ++i) EXPECT_NEAR(data[i], forward[i], 1e-6) << i;

  float other[8] = {0, 0, 1, 0, 0, 0, 0, 0};
  fourt1(other, 4, -1);
  const float backward[8] = {1, 0, 0, 1, -1, 0, 0, -1};
  for (int i = 0; i < 8; ++i) EXPECT_NEAR(other[i], backward[i], 1e-6) << i;
}

TEST(FourtEdgeCases, RealWrapperSignPlusOneGivesTheHalfComplexSpectrum) {
  // 4 x 2 x 2 real data with an impulse at x = 1 in every row: each row
  // becomes 1, -i, -1 (exponent sign -1) times the 2 x 2 rows summed, 4.
  std::vector<float> data(6 * 4, 0.0f);
  for (int r = 0; r < 4; ++r) data[4 * r + 1] = 1.0f;
  fourt3(data.data(), 4, 2, 2, 1);
  const float expected[6] = {4, 0, 0, -4, -4, 0};
  for (int i = 0; i < 6; ++i) EXPECT_NEAR(data[i], expected[i], 1e-6) << i;
  for (int i = 6; i < 24; ++i) EXPECT_NEAR(data[i], 0.0f, 1e-6) << i;
}

TEST(FourtEdgeCases, HalfComplexInputGivesRealRowsWithExponentSignPlusOne) {
  // Only element 1 of a 4 x 2 half-complex array set: row 0 becomes
  // exp(+2 pi i x / 4) + its mirror, 2 cos(pi x / 2), and so does row 1.
  std::vector<float> data(6 * 2, 0.0f);
  data[2] = 1.0f;
  fourt2(data.data(), 4, 2, -1);
  const float expected[4] = {2, 0, -2, 0};
  for (int r = 0; r < 2; ++r)
    for (int x = 0; x < 4; ++x) EXPECT_NEAR(data[4 * r + x], expected[x], 1e-6) << r << x;
}

TEST(FourtEdgeCases, MalformedArgumentsChangeNothing) {
  float data[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  float work[400];
  const int negative[2] = {4, -2};
  const int zero = 0;
  Stream_capture out(std::cout);
  EXPECT_EQ(fourt(data, negative, 2, 1, 1, work, 100), 0);
  EXPECT_EQ(fourt(data, &zero, 1, 1, 1, work, 100), 0);
  EXPECT_EQ(fourt(data, negative, 0, 1, 1, work, 100), 0);
  EXPECT_EQ(fourt(nullptr, negative, 1, 1, 1, work, 100), 0);
  EXPECT_EQ(fourt(data, nullptr, 1, 1, 1, work, 100), 0);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(data[i], i + 1.0f);
  EXPECT_EQ(out.text(), "");
}

}  // namespace
