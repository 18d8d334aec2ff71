#include "object_contour.h"

#include <gtest/gtest.h>

#include "TCSpectrum.h"

namespace {

// The caller's radiance planes for a small patch.
struct Radiance_planes {
  Radiance_planes(int bands, int pixels) : n(bands) {
    planes = new float*[bands];
    for (int b = 0; b < bands; b++) planes[b] = new float[pixels]();
  }
  ~Radiance_planes() {
    for (int b = 0; b < n; b++) delete[] planes[b];
    delete[] planes;
  }
  int n;
  float** planes;
};

void expect_starting_values(const object_contour& c) {
  EXPECT_EQ(c.first_flag, 1);
  EXPECT_EQ(c.forced_object, -1);
  EXPECT_EQ(c.any_marked, 0);
  for (int i = 0; i < 100; i++) EXPECT_EQ(c.active[i], 1) << i;
  for (int row = 0; row < c.n_rows; row++) {
    for (int col = 0; col < c.n_cols; col++) {
      EXPECT_EQ(c.layer_distance[row][col], 1e16f);
      EXPECT_EQ(c.total_distance[row][col], 1e16f);
      EXPECT_EQ(c.layer_coverage[row][col], 0.0f);
      EXPECT_EQ(c.total_coverage[row][col], 0.0f);
      EXPECT_EQ(c.marked[row][col], 0);
      for (int b = 0; b < c.spectrum->n; b++) EXPECT_EQ(c.layer_radiance[b][row][col], 0.0f);
      if (c.anti_alias) {
        EXPECT_EQ(c.layer_near[row][col], 1e16f);
        EXPECT_EQ(c.total_near[row][col], 1e16f);
        EXPECT_EQ(c.layer_far[row][col], -1.0f);
        EXPECT_EQ(c.total_far[row][col], -1.0f);
      }
    }
  }
}

TEST(ContourSetup, EmptyValuesAreTheDocumentedConstants) {
  EXPECT_EQ(contour_empty_distance, 1e16f);
  EXPECT_EQ(contour_empty_far, -1.0f);
}

TEST(ContourSetup, ConstructionStartsEmptyWithEveryObjectActive) {
  TCSpectrum bands(3);
  Radiance_planes out(3, 12);
  object_contour c(3, 4, &bands, out.planes, 2.5f, 1, nullptr, nullptr);
  EXPECT_EQ(c.n_rows, 3);
  EXPECT_EQ(c.n_cols, 4);
  EXPECT_EQ(c.spectrum, &bands);
  EXPECT_EQ(c.radiance_out, out.planes);
  EXPECT_EQ(c.min_distance, 2.5f);
  EXPECT_EQ(c.anti_alias, 1);
  EXPECT_EQ(c.near_limit_flag, 0);
  EXPECT_EQ(c.near_limit, nullptr);
  EXPECT_EQ(c.matte_target, nullptr);
  expect_starting_values(c);
}

TEST(ContourSetup, WithoutAntiAliasingTheDepthRangeTablesDoNotExist) {
  TCSpectrum bands(1);
  Radiance_planes out(1, 4);
  object_contour c(2, 2, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  EXPECT_EQ(c.layer_near, nullptr);
  EXPECT_EQ(c.layer_far, nullptr);
  EXPECT_EQ(c.total_near, nullptr);
  EXPECT_EQ(c.total_far, nullptr);
  EXPECT_NE(c.marked, nullptr);
  expect_starting_values(c);
}

TEST(ContourSetup, MaskedPixelsStartFilledAtDistanceZero) {
  TCSpectrum bands(2);
  Radiance_planes out(2, 6);
  // Row major: pixel (0, 1) and (1, 2) are masked; 2 is not a mask value.
  const unsigned char mask[6] = {0, 1, 2, 0, 0, 1};
  object_contour c(2, 3, &bands, out.planes, 0.0f, 1, nullptr, mask);
  for (int row = 0; row < 2; row++) {
    for (int col = 0; col < 3; col++) {
      const bool masked = (row == 0 && col == 1) || (row == 1 && col == 2);
      EXPECT_EQ(c.total_distance[row][col], masked ? 0.0f : 1e16f) << row << col;
      EXPECT_EQ(c.total_coverage[row][col], masked ? 1.0f : 0.0f) << row << col;
      EXPECT_EQ(c.total_near[row][col], masked ? 0.0f : 1e16f) << row << col;
      EXPECT_EQ(c.total_far[row][col], masked ? 0.0f : -1.0f) << row << col;
      EXPECT_EQ(c.layer_distance[row][col], 1e16f);
      EXPECT_EQ(c.layer_coverage[row][col], 0.0f);
    }
  }
}

TEST(ContourSetup, MaskWithoutAntiAliasingSetsOnlyDistanceAndCoverage) {
  TCSpectrum bands(1);
  Radiance_planes out(1, 2);
  const unsigned char mask[2] = {1, 0};
  object_contour c(1, 2, &bands, out.planes, 0.0f, 0, nullptr, mask);
  EXPECT_EQ(c.total_distance[0][0], 0.0f);
  EXPECT_EQ(c.total_coverage[0][0], 1.0f);
  EXPECT_EQ(c.total_distance[0][1], 1e16f);
  EXPECT_EQ(c.total_coverage[0][1], 0.0f);
}

TEST(ContourSetup, ResetRestoresTheStartingValuesAndTheMask) {
  TCSpectrum bands(2);
  Radiance_planes out(2, 4);
  const unsigned char mask[4] = {0, 0, 0, 1};
  object_contour c(2, 2, &bands, out.planes, 0.0f, 1, nullptr, mask);
  out.planes[1][3] = 4.0f;
  c.first_flag = 0;
  c.forced_object = 6;
  c.any_marked = 1;
  c.active[0] = 0;
  c.active[99] = 0;
  for (int row = 0; row < 2; row++) {
    for (int col = 0; col < 2; col++) {
      c.layer_distance[row][col] = 3.0f;
      c.total_distance[row][col] = 3.0f;
      c.layer_coverage[row][col] = 0.5f;
      c.total_coverage[row][col] = 0.5f;
      c.layer_radiance[0][row][col] = 1.0f;
      c.layer_radiance[1][row][col] = 1.0f;
      c.layer_near[row][col] = 2.0f;
      c.layer_far[row][col] = 4.0f;
      c.total_near[row][col] = 2.0f;
      c.total_far[row][col] = 4.0f;
      c.marked[row][col] = 1;
    }
  }
  c.reset();
  EXPECT_EQ(c.total_distance[1][1], 0.0f);
  EXPECT_EQ(c.total_coverage[1][1], 1.0f);
  EXPECT_EQ(c.total_near[1][1], 0.0f);
  EXPECT_EQ(c.total_far[1][1], 0.0f);
  // With the masked pixel put back to empty, every value is the start's.
  c.total_distance[1][1] = 1e16f;
  c.total_coverage[1][1] = 0.0f;
  c.total_near[1][1] = 1e16f;
  c.total_far[1][1] = -1.0f;
  expect_starting_values(c);
  EXPECT_EQ(out.planes[1][3], 4.0f);  // the caller's planes are the caller's
}

TEST(ContourSetup, LayerRadianceHasOnePlanePerBand) {
  TCSpectrum bands(5);
  Radiance_planes out(5, 6);
  object_contour c(3, 2, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  for (int b = 0; b < 5; b++) {
    for (int row = 0; row < 3; row++) {
      for (int col = 0; col < 2; col++) c.layer_radiance[b][row][col] = b + row + col;
    }
  }
  EXPECT_EQ(c.layer_radiance[4][2][1], 7.0f);
  EXPECT_EQ(c.layer_radiance[0][0][0], 0.0f);
}

TEST(ContourSetup, EmptyPatchIsAllowed) {
  TCSpectrum bands(1);
  object_contour c(0, 0, &bands, nullptr, 0.0f, 1, nullptr, nullptr);
  EXPECT_EQ(c.n_rows, 0);
  c.reset();
}

TEST(ContourSetupDeathTest, NegativeSizeIsAnAllocationFailure) {
  TCSpectrum bands(1);
  EXPECT_EXIT({ object_contour c(-1, 4, &bands, nullptr, 0.0f, 0, nullptr, nullptr); },
              ::testing::ExitedWithCode(1), "");
}

}  // namespace
