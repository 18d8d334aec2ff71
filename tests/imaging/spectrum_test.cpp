#include <gtest/gtest.h>

#include "TCSpectrum.h"

namespace {

TEST(Spectrum, DefaultHasOneBandNumberedOne) {
  TCSpectrum s;
  ASSERT_EQ(s.n, 1);
  EXPECT_EQ(s.band_id[0], 1);
  EXPECT_EQ(s.radiance_in_band[0], 0.0);
}

TEST(Spectrum, CountedBandsNumberFromOne) {
  TCSpectrum s(4);
  ASSERT_EQ(s.n, 4);
  for (int i = 0; i < 4; i++) {
    EXPECT_EQ(s.band_id[i], i + 1);
    EXPECT_EQ(s.radiance_in_band[i], 0.0);
  }
}

TEST(Spectrum, ZeroBandsIsAValidEmptySpectrum) {
  TCSpectrum s(0);
  EXPECT_EQ(s.n, 0);
  EXPECT_EQ(s.index_of(1), -1);
}

TEST(Spectrum, CopyAndAssignTakeEverything) {
  TCSpectrum a(3);
  a.band_id[1] = 42;
  a.radiance_in_band[2] = 7.5;
  TCSpectrum b(a);
  EXPECT_EQ(b.n, 3);
  EXPECT_EQ(b.band_id[1], 42);
  EXPECT_EQ(b.radiance_in_band[2], 7.5);
  EXPECT_NE(b.band_id, a.band_id);

  TCSpectrum c;
  c.assign(a);
  EXPECT_EQ(c.n, 3);
  EXPECT_EQ(c.band_id[1], 42);
  EXPECT_EQ(c.radiance_in_band[2], 7.5);

  TCSpectrum d(7);
  d = a;
  EXPECT_EQ(d.n, 3);
  EXPECT_EQ(d.radiance_in_band[2], 7.5);
  d = d;
  EXPECT_EQ(d.band_id[1], 42);
}

TEST(Spectrum, ResetTakesOnlyTheCountAndNumbersFromZero) {
  TCSpectrum other(3);
  other.band_id[0] = 10;
  other.radiance_in_band[0] = 5.0;
  TCSpectrum s(1);
  s.radiance_in_band[0] = 9.0;
  s.reset(other);
  ASSERT_EQ(s.n, 3);
  for (int i = 0; i < 3; i++) {
    EXPECT_EQ(s.band_id[i], i);
    EXPECT_EQ(s.radiance_in_band[i], 0.0);
  }
  s.reset(s);
  EXPECT_EQ(s.n, 3);
  EXPECT_EQ(s.band_id[2], 2);
}

TEST(Spectrum, IndexOfFindsPositionOrMinusOne) {
  TCSpectrum s(3);
  s.band_id[0] = 450;
  s.band_id[1] = 550;
  s.band_id[2] = 650;
  EXPECT_EQ(s.index_of(550), 1);
  EXPECT_EQ(s.index_of(650), 2);
  EXPECT_EQ(s.index_of(500), -1);
}

TEST(SpectrumDeathTest, NegativeCountPrintsAndExitsOne) {
  EXPECT_EXIT({ TCSpectrum s(-1); }, ::testing::ExitedWithCode(1),
              "^Error allocating band_id or radiance_in_band\n$");
}

}  // namespace
