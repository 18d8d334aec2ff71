#include <gtest/gtest.h>

#include "TCSpectrum.h"
#include "object_contour.h"

namespace {

// The caller's radiance planes for a small patch.
struct Planes {
  Planes(int bands, int pixels) : n(bands) {
    planes = new float*[bands];
    for (int b = 0; b < bands; b++) planes[b] = new float[pixels]();
  }
  ~Planes() {
    for (int b = 0; b < n; b++) delete[] planes[b];
    delete[] planes;
  }
  int n;
  float** planes;
};

// One object's layer: a distance, a coverage and premultiplied radiance in
// two bands.
struct Layer {
  float distance;
  float coverage;
  float radiance[2];
};

// Layers A, B and C at 10, 20 and 30 metres.
const Layer layer_a = {10.0f, 0.5f, {2.0f, 1.0f}};
const Layer layer_b = {20.0f, 0.75f, {6.0f, 3.0f}};
const Layer layer_c = {30.0f, 1.0f, {5.0f, 7.0f}};

const Layer& layer_named(char name) {
  if (name == 'A') return layer_a;
  if (name == 'B') return layer_b;
  return layer_c;
}

// Paints each named layer as its own object into pixel (0, 0), merging
// after each.
void paint_in_order(object_contour& c, const char* order) {
  for (int i = 0; order[i] != '\0'; i++) {
    const Layer& layer = layer_named(order[i]);
    c.add_sample_plain(0, 0, layer.radiance, layer.distance, layer.coverage, i, nullptr);
    c.merge_layer();
  }
}

struct Order_case {
  const char* order;
  float out0;
  float out1;
  float coverage;
  float distance;
  short marked;
};

// Front to back the three give 2 + 0.5 * 6 + 0.5 * 0.25 * 5 = 5.625 and
// 1 + 0.5 * 3 + 0.125 * 7 = 3.375. The total keeps one distance, so a layer
// arriving behind a total already made opaque by a farther one is lost: A
// then C leaves 2 + 0.5 * 5 = 4.5 and 1 + 0.5 * 7 = 4.5, and B adds nothing.
// That is also when B's depth falls inside the range A and C have spanned,
// so the pixel is marked for refinement.
const Order_case order_cases[] = {
    {"AB", 5.0f, 2.5f, 0.875f, 10.0f, 0},    {"BA", 5.0f, 2.5f, 0.875f, 10.0f, 0},
    {"AC", 4.5f, 4.5f, 1.0f, 10.0f, 0},      {"CA", 4.5f, 4.5f, 1.0f, 10.0f, 0},
    {"BC", 7.25f, 4.75f, 1.0f, 20.0f, 0},    {"CB", 7.25f, 4.75f, 1.0f, 20.0f, 0},
    {"ABC", 5.625f, 3.375f, 1.0f, 10.0f, 0}, {"ACB", 4.5f, 4.5f, 1.0f, 10.0f, 1},
    {"BAC", 5.625f, 3.375f, 1.0f, 10.0f, 0}, {"BCA", 5.625f, 3.375f, 1.0f, 10.0f, 0},
    {"CAB", 4.5f, 4.5f, 1.0f, 10.0f, 1},     {"CBA", 5.625f, 3.375f, 1.0f, 10.0f, 0},
};

TEST(ContourMerge, LayersCompositeFrontToBackInEveryOrderOfDepth) {
  for (const Order_case& test : order_cases) {
    TCSpectrum bands(2);
    Planes out(2, 1);
    object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
    paint_in_order(c, test.order);
    EXPECT_FLOAT_EQ(out.planes[0][0], test.out0) << test.order;
    EXPECT_FLOAT_EQ(out.planes[1][0], test.out1) << test.order;
    EXPECT_FLOAT_EQ(c.total_coverage[0][0], test.coverage) << test.order;
    EXPECT_EQ(c.total_distance[0][0], test.distance) << test.order;
    EXPECT_EQ(c.any_marked, test.marked) << test.order;
    EXPECT_EQ(c.marked[0][0], test.marked) << test.order;
  }
}

TEST(ContourMerge, FirstLayerIntoAnEmptyPixelIsCopied) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  paint_in_order(c, "A");
  EXPECT_EQ(out.planes[0][0], 2.0f);
  EXPECT_EQ(out.planes[1][0], 1.0f);
  EXPECT_EQ(c.total_coverage[0][0], 0.5f);
  EXPECT_EQ(c.total_distance[0][0], 10.0f);
}

TEST(ContourMerge, MergeEmptiesTheLayer) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[2] = {1.0, 2.0};
  c.add_sample(0, 0, radiance, 4.0, 5.0, 6.0, 0.5, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.layer_distance[0][0], 1e16f);
  EXPECT_EQ(c.layer_coverage[0][0], 0.0f);
  EXPECT_EQ(c.layer_radiance[0][0][0], 0.0f);
  EXPECT_EQ(c.layer_radiance[1][0][0], 0.0f);
  EXPECT_EQ(c.layer_near[0][0], 1e16f);
  EXPECT_EQ(c.layer_far[0][0], -1.0f);
}

TEST(ContourMerge, AnEmptyLayerLeavesThePixelAlone) {
  TCSpectrum bands(2);
  Planes out(2, 2);
  object_contour c(1, 2, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[2] = {1.0, 2.0};
  c.add_sample(0, 1, radiance, 5.0, 5.0, 5.0, 1.0, 0, nullptr);
  c.merge_layer();
  c.merge_layer();
  EXPECT_EQ(out.planes[0][0], 0.0f);
  EXPECT_EQ(c.total_distance[0][0], 1e16f);
  EXPECT_EQ(c.total_coverage[0][0], 0.0f);
  EXPECT_EQ(c.total_far[0][0], -1.0f);
  EXPECT_EQ(out.planes[0][1], 1.0f);
  EXPECT_EQ(out.planes[1][1], 2.0f);
  EXPECT_EQ(c.total_distance[0][1], 5.0f);
}

TEST(ContourMerge, EqualDistancesOpaqueKeepTheFirst) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const float first[2] = {1.0f, 2.0f};
  const float second[2] = {5.0f, 5.0f};
  c.add_sample_plain(0, 0, first, 10.0, 1.0, 0, nullptr);
  c.merge_layer();
  c.add_sample_plain(0, 0, second, 10.0, 1.0, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(out.planes[0][0], 1.0f);
  EXPECT_EQ(out.planes[1][0], 2.0f);
  EXPECT_EQ(c.total_coverage[0][0], 1.0f);
}

TEST(ContourMerge, EqualDistancesPartialBlendAsBehind) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const float first[2] = {2.0f, 1.0f};
  const float second[2] = {4.0f, 4.0f};
  c.add_sample_plain(0, 0, first, 10.0, 0.5, 0, nullptr);
  c.merge_layer();
  c.add_sample_plain(0, 0, second, 10.0, 0.5, 1, nullptr);
  c.merge_layer();
  // Behind: 2 + 0.5 * 4 and 1 + 0.5 * 4; coverage 0.5 + 0.5 * 0.5.
  EXPECT_EQ(out.planes[0][0], 4.0f);
  EXPECT_EQ(out.planes[1][0], 3.0f);
  EXPECT_EQ(c.total_coverage[0][0], 0.75f);
  EXPECT_EQ(c.total_distance[0][0], 10.0f);
}

TEST(ContourMerge, EmissiveSliverOfNoCoverageStillMerges) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const float wall[2] = {1.0f, 1.0f};
  const float glow[2] = {0.75f, 0.25f};
  c.add_sample_plain(0, 0, wall, 20.0, 1.0, 0, nullptr);
  c.merge_layer();
  c.add_sample_plain(0, 0, glow, 10.0, 0.0, 1, nullptr);
  EXPECT_EQ(c.layer_coverage[0][0], 0.0f);
  EXPECT_EQ(c.layer_radiance[0][0][0], 0.75f);
  c.merge_layer();
  // In front with nothing covered: r = 1, so the glow adds on top.
  EXPECT_EQ(out.planes[0][0], 1.75f);
  EXPECT_EQ(out.planes[1][0], 1.25f);
  EXPECT_EQ(c.total_coverage[0][0], 1.0f);
  EXPECT_EQ(c.total_distance[0][0], 10.0f);
}

TEST(ContourMerge, EmissiveSliverIntoAnEmptyPixel) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const float glow[2] = {0.75f, 0.25f};
  c.add_sample_plain(0, 0, glow, 10.0, 0.0, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(out.planes[0][0], 0.75f);
  EXPECT_EQ(out.planes[1][0], 0.25f);
  EXPECT_EQ(c.total_coverage[0][0], 0.0f);
  EXPECT_EQ(c.total_distance[0][0], 10.0f);
}

TEST(ContourMerge, ASliverDarkInTheFirstBandDoesNotMerge) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const float glow[2] = {0.0f, 3.0f};
  c.add_sample_plain(0, 0, glow, 10.0, 0.0, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(out.planes[1][0], 0.0f);
  EXPECT_EQ(c.total_distance[0][0], 1e16f);
  EXPECT_EQ(c.layer_radiance[1][0][0], 0.0f);
}

TEST(ContourMerge, ASliverBehindAnOpaqueTotalIsHidden) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const float wall[2] = {1.0f, 1.0f};
  const float glow[2] = {0.75f, 0.25f};
  c.add_sample_plain(0, 0, wall, 10.0, 1.0, 0, nullptr);
  c.merge_layer();
  c.add_sample_plain(0, 0, glow, 20.0, 0.0, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(out.planes[0][0], 1.0f);
  EXPECT_EQ(out.planes[1][0], 1.0f);
}

TEST(ContourMerge, ContourWithItsOwnOutputTakesTheMerge) {
  TCSpectrum bands(2);
  object_contour c(2, 3, &bands, 0.0f, 1, nullptr, nullptr);
  ASSERT_NE(c.radiance_out, nullptr);
  for (int b = 0; b < 2; b++) {
    for (int k = 0; k < 6; k++) EXPECT_EQ(c.radiance_out[b][k], 0.0f);
  }
  const float radiance[2] = {3.0f, 4.0f};
  c.add_sample_plain(1, 2, radiance, 8.0, 1.0, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.radiance_out[0][5], 3.0f);
  EXPECT_EQ(c.radiance_out[1][5], 4.0f);
  EXPECT_EQ(c.radiance_out[0][4], 0.0f);
}

TEST(ContourMerge, BorrowingContourPaintsIntoTheSourceArrays) {
  TCSpectrum bands(2);
  Planes out(2, 4);
  object_contour source(2, 2, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  source.first_flag = 0;
  source.active[3] = 0;
  {
    object_contour borrower(source, 1.5f, nullptr);
    EXPECT_EQ(borrower.n_rows, 2);
    EXPECT_EQ(borrower.n_cols, 2);
    EXPECT_EQ(borrower.spectrum, &bands);
    EXPECT_EQ(borrower.radiance_out, out.planes);
    EXPECT_EQ(borrower.layer_distance, source.layer_distance);
    EXPECT_EQ(borrower.total_coverage, source.total_coverage);
    EXPECT_EQ(borrower.layer_radiance, source.layer_radiance);
    EXPECT_EQ(borrower.total_far, source.total_far);
    EXPECT_EQ(borrower.marked, source.marked);
    EXPECT_EQ(borrower.anti_alias, 1);
    EXPECT_EQ(borrower.min_distance, 1.5f);
    EXPECT_EQ(borrower.first_flag, 1);
    EXPECT_EQ(borrower.forced_object, -1);
    EXPECT_EQ(borrower.active[3], 1);
    const float radiance[2] = {1.0f, 2.0f};
    borrower.add_sample_plain(1, 0, radiance, 1.0, 1.0, 0, nullptr);  // below 1.5: dropped
    borrower.add_sample_plain(1, 1, radiance, 2.0, 1.0, 0, nullptr);
    borrower.merge_layer();
  }
  // The borrower's end freed nothing of the source's.
  EXPECT_EQ(source.total_distance[1][0], 1e16f);
  EXPECT_EQ(source.total_distance[1][1], 2.0f);
  EXPECT_EQ(out.planes[1][3], 2.0f);
  EXPECT_EQ(source.min_distance, 0.0f);
  EXPECT_EQ(source.first_flag, 0);
}

TEST(ContourSample, EmptyLayerTakesTheSampleWhole) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[2] = {2.0, 1.0};
  c.add_sample(0, 0, radiance, 8.0, 10.0, 12.0, 0.5, 0, nullptr);
  EXPECT_EQ(c.layer_coverage[0][0], 0.5f);
  EXPECT_EQ(c.layer_distance[0][0], 10.0f);
  EXPECT_EQ(c.layer_radiance[0][0][0], 2.0f);
  EXPECT_EQ(c.layer_radiance[1][0][0], 1.0f);
  EXPECT_EQ(c.layer_near[0][0], 8.0f);
  EXPECT_EQ(c.layer_far[0][0], 12.0f);
}

TEST(ContourSample, BehindShowsThroughWhatTheLayerLeavesOpen) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double first[2] = {2.0, 1.0};
  const double second[2] = {3.0, 5.0};
  c.add_sample(0, 0, first, 8.0, 10.0, 12.0, 0.5, 0, nullptr);
  c.add_sample(0, 0, second, 14.0, 15.0, 16.0, 0.5, 0, nullptr);
  // r = 0.5: 2 + 1.5, 1 + 2.5; coverage 0.5 + 0.5 * 0.5.
  EXPECT_EQ(c.layer_radiance[0][0][0], 3.5f);
  EXPECT_EQ(c.layer_radiance[1][0][0], 3.5f);
  EXPECT_EQ(c.layer_coverage[0][0], 0.75f);
  EXPECT_EQ(c.layer_distance[0][0], 10.0f);
  EXPECT_EQ(c.layer_near[0][0], 8.0f);
  EXPECT_EQ(c.layer_far[0][0], 16.0f);
}

TEST(ContourSample, InFrontLetsTheLayerShowThrough) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double first[2] = {2.0, 1.0};
  const double second[2] = {3.0, 5.0};
  const double third[2] = {4.0, 8.0};
  c.add_sample(0, 0, first, 8.0, 10.0, 12.0, 0.5, 0, nullptr);
  c.add_sample(0, 0, second, 14.0, 15.0, 16.0, 0.5, 0, nullptr);
  c.add_sample(0, 0, third, 4.0, 5.0, 9.0, 0.25, 0, nullptr);
  // r = 0.75: 4 + 0.75 * 3.5, 8 + 0.75 * 3.5; coverage 0.75 * 0.75 + 0.25.
  EXPECT_EQ(c.layer_radiance[0][0][0], 6.625f);
  EXPECT_EQ(c.layer_radiance[1][0][0], 10.625f);
  EXPECT_EQ(c.layer_coverage[0][0], 0.8125f);
  EXPECT_EQ(c.layer_distance[0][0], 5.0f);
  EXPECT_EQ(c.layer_near[0][0], 4.0f);
  EXPECT_EQ(c.layer_far[0][0], 16.0f);
}

TEST(ContourSample, BehindAnOpaqueLayerNothingChanges) {
  TCSpectrum bands(2);
  Planes out(2, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double first[2] = {2.0, 1.0};
  const double second[2] = {3.0, 5.0};
  c.add_sample(0, 0, first, 9.0, 10.0, 11.0, 1.0, 0, nullptr);
  c.add_sample(0, 0, second, 14.0, 15.0, 16.0, 0.5, 0, nullptr);
  EXPECT_EQ(c.layer_radiance[0][0][0], 2.0f);
  EXPECT_EQ(c.layer_radiance[1][0][0], 1.0f);
  EXPECT_EQ(c.layer_coverage[0][0], 1.0f);
  EXPECT_EQ(c.layer_far[0][0], 11.0f);
}

TEST(ContourSample, EqualDistanceCountsAsBehindEvenOffTheFloatGrid) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const double first[1] = {2.0};
  const double second[1] = {4.0};
  // 0.1 is not a float; both samples must still compare equal.
  c.add_sample(0, 0, first, 0.1, 0.1, 0.1, 0.5, 0, nullptr);
  c.add_sample(0, 0, second, 0.1, 0.1, 0.1, 0.5, 0, nullptr);
  // Behind: 2 + 0.5 * 4 (in front would have been 4 + 0.5 * 2).
  EXPECT_EQ(c.layer_radiance[0][0][0], 4.0f);
  EXPECT_EQ(c.layer_coverage[0][0], 0.75f);
}

TEST(ContourSample, SampleBelowTheMinimumDistanceIsDroppedWhole) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 3.0f, 1, nullptr, nullptr);
  const double radiance[1] = {5.0};
  // Its far end lies beyond the minimum, but it is not clipped to it.
  c.add_sample(0, 0, radiance, 1.0, 2.9, 6.0, 1.0, 0, nullptr);
  EXPECT_EQ(c.layer_coverage[0][0], 0.0f);
  EXPECT_EQ(c.layer_distance[0][0], 1e16f);
  EXPECT_EQ(c.layer_radiance[0][0][0], 0.0f);
  EXPECT_EQ(c.layer_far[0][0], -1.0f);
  c.merge_layer();
  EXPECT_EQ(out.planes[0][0], 0.0f);
  // At the minimum itself it is kept.
  c.add_sample(0, 0, radiance, 1.0, 3.0, 6.0, 1.0, 0, nullptr);
  EXPECT_EQ(c.layer_coverage[0][0], 1.0f);
  EXPECT_EQ(c.layer_near[0][0], 1.0f);
}

TEST(ContourSample, DroppedSampleLeavesALayerBehindItUntouched) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 3.0f, 0, nullptr, nullptr);
  const float far_part[1] = {1.0f};
  const float near_part[1] = {8.0f};
  c.add_sample_plain(0, 0, far_part, 6.0, 0.5, 0, nullptr);
  c.add_sample_plain(0, 0, near_part, 2.0, 1.0, 0, nullptr);
  EXPECT_EQ(c.layer_radiance[0][0][0], 1.0f);
  EXPECT_EQ(c.layer_coverage[0][0], 0.5f);
  EXPECT_EQ(c.layer_distance[0][0], 6.0f);
}

TEST(ContourSample, AllFiveFormsAgree) {
  TCSpectrum bands(2);
  bands.radiance_in_band[0] = 3.0;
  bands.radiance_in_band[1] = 0.5;
  const double as_double[2] = {3.0, 0.5};
  const float as_float[2] = {3.0f, 0.5f};
  Planes out(2, 5);
  object_contour c(1, 5, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  c.add_sample(0, 0, as_double, 6.0, 7.0, 9.0, 0.5, 0, nullptr);
  c.add_sample_float(0, 1, as_float, 6.0, 7.0, 9.0, 0.5, 0, nullptr);
  c.add_sample_from_spectrum(0, 2, 6.0, 7.0, 9.0, 0.5, 0, nullptr);
  c.add_sample_plain(0, 3, as_float, 7.0, 0.5, 0, nullptr);
  c.add_sample_spectrum_plain(0, 4, 7.0, 0.5, 0, nullptr);
  for (int col = 0; col < 5; col++) {
    EXPECT_EQ(c.layer_radiance[0][0][col], 3.0f) << col;
    EXPECT_EQ(c.layer_radiance[1][0][col], 0.5f) << col;
    EXPECT_EQ(c.layer_coverage[0][col], 0.5f) << col;
    EXPECT_EQ(c.layer_distance[0][col], 7.0f) << col;
    const bool plain = col >= 3;
    EXPECT_EQ(c.layer_near[0][col], plain ? 7.0f : 6.0f) << col;
    EXPECT_EQ(c.layer_far[0][col], plain ? 7.0f : 9.0f) << col;
  }
}

TEST(ContourSample, PixelsOutsideThePatchAreIgnored) {
  TCSpectrum bands(1);
  Planes out(1, 4);
  object_contour c(2, 2, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[1] = {1.0};
  c.add_sample(2, 0, radiance, 1.0, 1.0, 1.0, 1.0, 0, nullptr);
  c.add_sample(0, -1, radiance, 1.0, 1.0, 1.0, 1.0, 0, nullptr);
  for (int row = 0; row < 2; row++) {
    for (int col = 0; col < 2; col++) EXPECT_EQ(c.layer_coverage[row][col], 0.0f);
  }
  EXPECT_EQ(c.pixel_wanted(2, 0, 1.0, 1.0), 0);
  EXPECT_EQ(c.pixel_open(0, 2), 0);
}

TEST(ContourAntiAlias, OverlappingDepthRangesOfTwoObjectsMarkThePixel) {
  TCSpectrum bands(1);
  Planes out(1, 2);
  object_contour c(1, 2, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[1] = {1.0};
  c.add_sample(0, 0, radiance, 10.0, 12.0, 20.0, 0.5, 0, nullptr);
  c.add_sample(0, 1, radiance, 10.0, 12.0, 20.0, 0.5, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.any_marked, 0);
  EXPECT_EQ(c.total_near[0][0], 10.0f);
  EXPECT_EQ(c.total_far[0][0], 20.0f);
  // Second object: overlapping at column 0, beyond the first at column 1.
  c.add_sample(0, 0, radiance, 15.0, 18.0, 25.0, 1.0, 1, nullptr);
  c.add_sample(0, 1, radiance, 21.0, 22.0, 25.0, 1.0, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.any_marked, 1);
  EXPECT_EQ(c.marked[0][0], 1);
  EXPECT_EQ(c.marked[0][1], 0);
  EXPECT_EQ(c.total_near[0][0], 10.0f);
  EXPECT_EQ(c.total_far[0][0], 25.0f);
  EXPECT_EQ(c.total_near[0][1], 10.0f);
  EXPECT_EQ(c.total_far[0][1], 25.0f);
}

TEST(ContourAntiAlias, RangesThatOnlyTouchCountAsOverlapping) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[1] = {1.0};
  c.add_sample(0, 0, radiance, 10.0, 12.0, 20.0, 0.5, 0, nullptr);
  c.merge_layer();
  c.add_sample(0, 0, radiance, 20.0, 22.0, 30.0, 0.5, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.marked[0][0], 1);
}

TEST(ContourAntiAlias, AnObjectInFrontOverlappingIsMarkedToo) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[1] = {1.0};
  c.add_sample(0, 0, radiance, 10.0, 12.0, 20.0, 1.0, 0, nullptr);
  c.merge_layer();
  c.add_sample(0, 0, radiance, 5.0, 6.0, 10.0, 1.0, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.marked[0][0], 1);
  EXPECT_EQ(c.total_near[0][0], 5.0f);
  EXPECT_EQ(c.total_far[0][0], 20.0f);
}

TEST(ContourAntiAlias, HiddenOverlapBehindAnOpaqueTotalStillMarks) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[1] = {1.0};
  c.add_sample(0, 0, radiance, 10.0, 12.0, 20.0, 1.0, 0, nullptr);
  c.merge_layer();
  c.add_sample(0, 0, radiance, 15.0, 16.0, 30.0, 1.0, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(out.planes[0][0], 1.0f);
  EXPECT_EQ(c.marked[0][0], 1);
}

TEST(ContourAntiAlias, ASingleObjectsInnerDetailIsNotMarked) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[1] = {0.25};
  // Overlapping pieces of one object in one pixel, one layer.
  c.add_sample(0, 0, radiance, 10.0, 12.0, 20.0, 0.25, 0, nullptr);
  c.add_sample(0, 0, radiance, 15.0, 16.0, 25.0, 0.25, 0, nullptr);
  c.add_sample(0, 0, radiance, 8.0, 9.0, 11.0, 0.25, 0, nullptr);
  EXPECT_EQ(c.layer_near[0][0], 8.0f);
  EXPECT_EQ(c.layer_far[0][0], 25.0f);
  c.merge_layer();
  EXPECT_EQ(c.any_marked, 0);
  EXPECT_EQ(c.marked[0][0], 0);
  EXPECT_EQ(c.total_near[0][0], 8.0f);
  EXPECT_EQ(c.total_far[0][0], 25.0f);
}

TEST(ContourAntiAlias, NothingIsMarkedWithAntiAliasingOff) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const double radiance[1] = {1.0};
  c.add_sample(0, 0, radiance, 10.0, 12.0, 20.0, 0.5, 0, nullptr);
  c.merge_layer();
  c.add_sample(0, 0, radiance, 15.0, 18.0, 25.0, 1.0, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.any_marked, 0);
  EXPECT_EQ(c.marked[0][0], 0);
  EXPECT_EQ(c.layer_near, nullptr);
  EXPECT_EQ(c.total_far, nullptr);
  // The radiance still composites, behind: 1 + 0.5 * 1.
  EXPECT_EQ(out.planes[0][0], 1.5f);
}

TEST(ContourAntiAlias, AMaskedPixelIsNeverMarked) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  const unsigned char mask[1] = {1};
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, mask);
  const double radiance[1] = {1.0};
  // Starting at the mask's own distance 0, but the mask has no far end.
  c.add_sample(0, 0, radiance, 0.0, 1.0, 2.0, 1.0, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.any_marked, 0);
  EXPECT_EQ(out.planes[0][0], 0.0f);
}

TEST(ContourWanted, NearTestedAgainstTheMinimumDistance) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 3.0f, 0, nullptr, nullptr);
  EXPECT_EQ(c.pixel_wanted(0, 0, 2.0, 4.0), 0);
  EXPECT_EQ(c.pixel_wanted(0, 0, 3.0, 4.0), 1);
}

TEST(ContourWanted, WithAntiAliasingTheFarEndIsTested) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 3.0f, 1, nullptr, nullptr);
  EXPECT_EQ(c.pixel_wanted(0, 0, 2.0, 4.0), 1);
  EXPECT_EQ(c.pixel_wanted(0, 0, 1.0, 2.5), 0);
}

TEST(ContourWanted, NearLimitReplacesTheMinimumAtNinetyFivePercent) {
  TCSpectrum bands(1);
  Planes out(1, 2);
  object_contour c(1, 2, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  float row[2] = {10.0f, 100.0f};
  float* limit[1] = {row};
  c.near_limit = limit;
  EXPECT_EQ(c.pixel_wanted(0, 0, 9.4, 9.4), 1);  // flag off: the minimum, 0
  c.near_limit_flag = 1;
  EXPECT_EQ(c.pixel_wanted(0, 0, 9.4, 9.4), 0);
  EXPECT_EQ(c.pixel_wanted(0, 0, 9.6, 9.6), 1);
  EXPECT_EQ(c.pixel_wanted(0, 1, 94.0, 94.0), 0);
  EXPECT_EQ(c.pixel_wanted(0, 1, 96.0, 96.0), 1);
  c.near_limit = nullptr;
}

TEST(ContourWanted, AnOpaquePixelHidesWhatLiesBehind) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const float radiance[1] = {1.0f};
  c.add_sample_plain(0, 0, radiance, 10.0, 1.0, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.pixel_wanted(0, 0, 12.0, 12.0), 0);
  EXPECT_EQ(c.pixel_wanted(0, 0, 10.0, 12.0), 0);
  EXPECT_EQ(c.pixel_wanted(0, 0, 8.0, 12.0), 1);
}

TEST(ContourWanted, WithAntiAliasingTheOpaqueFarEndDecides) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  const double radiance[1] = {1.0};
  c.add_sample(0, 0, radiance, 8.0, 9.0, 10.0, 1.0, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.total_distance[0][0], 9.0f);
  EXPECT_EQ(c.pixel_wanted(0, 0, 9.5, 12.0), 1);  // behind its distance, inside its range
  EXPECT_EQ(c.pixel_wanted(0, 0, 10.0, 12.0), 0);
}

TEST(ContourWanted, APartlyCoveredPixelWantsEverythingBeyondTheLimit) {
  TCSpectrum bands(1);
  Planes out(1, 1);
  object_contour c(1, 1, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  const float radiance[1] = {1.0f};
  c.add_sample_plain(0, 0, radiance, 10.0, 0.5, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.pixel_wanted(0, 0, 50.0, 50.0), 1);
}

TEST(ContourWanted, AMaskedPixelTakesNoSample) {
  TCSpectrum bands(1);
  Planes out(1, 2);
  const unsigned char mask[2] = {1, 0};
  object_contour plain(1, 2, &bands, out.planes, 0.0f, 0, nullptr, mask);
  object_contour ranged(1, 2, &bands, out.planes, 0.0f, 1, nullptr, mask);
  EXPECT_EQ(plain.pixel_wanted(0, 0, 0.0, 0.0), 0);
  EXPECT_EQ(plain.pixel_wanted(0, 0, 5.0, 9.0), 0);
  EXPECT_EQ(ranged.pixel_wanted(0, 0, 0.0, 0.0), 0);
  EXPECT_EQ(ranged.pixel_wanted(0, 0, 5.0, 9.0), 0);
  EXPECT_EQ(plain.pixel_wanted(0, 1, 5.0, 9.0), 1);
  // Only a distance below 0, which no object gives, would get past it.
  object_contour below(1, 2, &bands, out.planes, -5.0f, 0, nullptr, mask);
  EXPECT_EQ(below.pixel_wanted(0, 0, -1.0, -1.0), 1);
}

TEST(ContourOpen, EmptyAndMaskedPixelsAreNotOpen) {
  TCSpectrum bands(1);
  Planes out(1, 4);
  const unsigned char mask[4] = {0, 1, 0, 0};
  object_contour c(1, 4, &bands, out.planes, 0.0f, 0, nullptr, mask);
  const float radiance[1] = {1.0f};
  c.add_sample_plain(0, 2, radiance, 5.0, 0.5, 0, nullptr);
  c.add_sample_plain(0, 3, radiance, 5.0, 1.0, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(c.pixel_open(0, 0), 0);
  EXPECT_EQ(c.pixel_open(0, 1), 0);
  EXPECT_EQ(c.pixel_open(0, 2), 1);
  EXPECT_EQ(c.pixel_open(0, 3), 1);
}

}  // namespace
