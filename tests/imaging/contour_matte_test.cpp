#include <gtest/gtest.h>

#include <sstream>

#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCSpectrum.h"
#include "object_contour.h"

namespace {

// Mattes for a 1 by 2 patch in two bands: object 0 of a two-object list
// wants radiance (0), fraction filled (18) and distance (19); the scene,
// entry 2, wants its distance (20).
class Contour_mattes {
 public:
  Contour_mattes() : bands(2) {
    out = new float*[2];
    for (int b = 0; b < 2; b++) out[b] = new float[2]();
    std::istringstream text(
        "use_mattes: 1\n"
        "  NObjects: 2\n"
        "    Object: boat\n"
        "      NMattes: 3\n"
        "        radiance\n"
        "        fraction_filled\n"
        "        distance\n"
        "    Object: scene\n"
        "      NMattes: 1\n"
        "        scene_distance\n");
    ok = request.read(text);
    if (!ok) return;
    request.object_indices[0] = 0;
    request.object_indices[1] = 2;
    fields.set_sizes(40, 2);
    fields.prepare(1, 2, 2, request);
    int count = 0;
    ok = fields.is_wanted(0, 0, radiance_plane, count) && count == 2 &&
         fields.is_wanted(0, 18, coverage_plane, count) &&
         fields.is_wanted(0, 19, distance_plane, count) &&
         fields.is_wanted(2, 20, scene_plane, count);
  }
  ~Contour_mattes() {
    for (int b = 0; b < 2; b++) delete[] out[b];
    delete[] out;
  }

  float radiance(int band, int pixel) const {
    return fields.planes[0][radiance_plane + band][pixel];
  }
  float coverage(int pixel) const { return fields.planes[0][coverage_plane][pixel]; }
  float distance(int pixel) const { return fields.planes[0][distance_plane][pixel]; }
  float scene_distance(int pixel) const { return fields.planes[2][scene_plane][pixel]; }
  // What the object's mattes hold before the sample under test.
  void seed(int pixel, float band0, float band1, float seeded_distance) {
    fields.planes[0][radiance_plane][pixel] = band0;
    fields.planes[0][radiance_plane + 1][pixel] = band1;
    fields.planes[0][distance_plane][pixel] = seeded_distance;
    fields.planes[0][coverage_plane][pixel] = 0.125f;
  }

  TCSpectrum bands;
  float** out;
  TCMatte_input request;
  TCMatte_fields fields;
  int ok;
  int radiance_plane = -1;
  int coverage_plane = -1;
  int distance_plane = -1;
  int scene_plane = -1;
};

TEST(ContourMattes, TheTestFieldsWantTheirPlanes) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  EXPECT_EQ(m.radiance_plane, 0);
  EXPECT_EQ(m.coverage_plane, 36);  // 2 * 18 - 18 + 18
  EXPECT_EQ(m.distance_plane, 37);
  EXPECT_EQ(m.scene_plane, 38);
  // Distances start at "nothing", 1e8 m, held squared.
  EXPECT_EQ(m.distance(0), 1e16f);
  EXPECT_EQ(m.scene_distance(0), 1e16f);
}

TEST(ContourMattes, EmptyLayerWeighsTheSampleOneAndWhatStoodNothing) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  m.seed(1, 100.0f, 50.0f, 99.0f);
  const double radiance[2] = {2.0, 1.0};
  c.add_sample(0, 1, radiance, 9.0, 10.0, 11.0, 0.5, 0, nullptr);
  // 100 * 0 + 1 * 2 and 50 * 0 + 1 * 1.
  EXPECT_EQ(m.radiance(0, 1), 2.0f);
  EXPECT_EQ(m.radiance(1, 1), 1.0f);
  EXPECT_EQ(m.coverage(1), 0.5f);
  EXPECT_EQ(m.distance(1), 10.0f);
  EXPECT_EQ(m.radiance(0, 0), 0.0f);
  EXPECT_EQ(m.distance(0), 1e16f);
}

TEST(ContourMattes, BehindWeighsTheSampleByWhatTheLayerLeavesOpen) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  c.layer_coverage[0][0] = 0.5f;
  c.layer_distance[0][0] = 10.0f;
  m.seed(0, 7.0f, 3.0f, 10.0f);
  const double radiance[2] = {4.0, 2.0};
  c.add_sample(0, 0, radiance, 14.0, 15.0, 16.0, 0.5, 0, nullptr);
  // New 0.5, old 1: 7 + 0.5 * 4 and 3 + 0.5 * 2.
  EXPECT_EQ(m.radiance(0, 0), 9.0f);
  EXPECT_EQ(m.radiance(1, 0), 4.0f);
  EXPECT_EQ(m.coverage(0), 0.5f);
  EXPECT_EQ(m.distance(0), 15.0f);
}

TEST(ContourMattes, InFrontWeighsWhatStoodByWhatTheSampleLeavesOpen) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  c.layer_coverage[0][0] = 0.5f;
  c.layer_distance[0][0] = 10.0f;
  m.seed(0, 7.0f, 3.0f, 10.0f);
  const double radiance[2] = {4.0, 2.0};
  c.add_sample(0, 0, radiance, 4.0, 5.0, 6.0, 0.25, 0, nullptr);
  // New 1, old 0.75: 0.75 * 7 + 4 and 0.75 * 3 + 2.
  EXPECT_EQ(m.radiance(0, 0), 9.25f);
  EXPECT_EQ(m.radiance(1, 0), 4.25f);
  EXPECT_EQ(m.coverage(0), 0.25f);
  EXPECT_EQ(m.distance(0), 5.0f);
}

TEST(ContourMattes, EqualDistanceWeighsAsBehind) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 0, &m.fields, nullptr);
  c.layer_coverage[0][0] = 0.5f;
  c.layer_distance[0][0] = 10.0f;
  m.seed(0, 7.0f, 3.0f, 10.0f);
  const float radiance[2] = {4.0f, 4.0f};
  c.add_sample_plain(0, 0, radiance, 10.0, 0.5, 0, nullptr);
  EXPECT_EQ(m.radiance(0, 0), 9.0f);
  EXPECT_EQ(m.radiance(1, 0), 5.0f);
}

TEST(ContourMattes, ASampleHiddenByItsOwnOpaqueLayerLeavesTheMattes) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  c.layer_coverage[0][0] = 1.0f;
  c.layer_distance[0][0] = 10.0f;
  m.seed(0, 7.0f, 3.0f, 10.0f);
  const double radiance[2] = {4.0, 2.0};
  c.add_sample(0, 0, radiance, 14.0, 15.0, 16.0, 0.5, 0, nullptr);
  EXPECT_EQ(m.radiance(0, 0), 7.0f);
  EXPECT_EQ(m.radiance(1, 0), 3.0f);
  EXPECT_EQ(m.coverage(0), 0.125f);
  EXPECT_EQ(m.distance(0), 10.0f);
}

TEST(ContourMattes, ADroppedSampleLeavesTheMattes) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 3.0f, 1, &m.fields, nullptr);
  m.seed(0, 7.0f, 3.0f, 10.0f);
  const double radiance[2] = {4.0, 2.0};
  c.add_sample(0, 0, radiance, 1.0, 2.0, 6.0, 1.0, 0, nullptr);
  EXPECT_EQ(m.radiance(0, 0), 7.0f);
  EXPECT_EQ(m.coverage(0), 0.125f);
  EXPECT_EQ(m.distance(0), 10.0f);
}

TEST(ContourMattes, EmissiveSliverReachesTheRadianceMatte) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  m.seed(0, 7.0f, 3.0f, 10.0f);
  const float glow[2] = {0.75f, 0.25f};
  c.add_sample_float(0, 0, glow, 11.0, 12.0, 13.0, 0.0, 0, nullptr);
  EXPECT_EQ(m.radiance(0, 0), 0.75f);
  EXPECT_EQ(m.radiance(1, 0), 0.25f);
  EXPECT_EQ(m.coverage(0), 0.0f);
  EXPECT_EQ(m.distance(0), 12.0f);
}

TEST(ContourMattes, RadianceMatteFollowsTheLayerThroughASequence) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  const double first[2] = {2.0, 1.0};
  const double second[2] = {3.0, 5.0};
  const double third[2] = {4.0, 8.0};
  c.add_sample(0, 0, first, 8.0, 10.0, 12.0, 0.5, 0, nullptr);
  c.add_sample(0, 0, second, 14.0, 15.0, 16.0, 0.5, 0, nullptr);
  c.add_sample(0, 0, third, 4.0, 5.0, 9.0, 0.25, 0, nullptr);
  EXPECT_EQ(m.radiance(0, 0), 6.625f);
  EXPECT_EQ(m.radiance(1, 0), 10.625f);
  EXPECT_EQ(m.coverage(0), 0.25f);  // the last sample's
  EXPECT_EQ(m.distance(0), 5.0f);
}

TEST(ContourMattes, SpectrumFormsUseTheDoubleRadiance) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  m.bands.radiance_in_band[0] = 1.5;
  m.bands.radiance_in_band[1] = 2.5;
  c.add_sample_spectrum_plain(0, 0, 6.0, 1.0, 0, nullptr);
  c.add_sample_from_spectrum(0, 1, 5.0, 6.0, 7.0, 1.0, 0, nullptr);
  for (int pixel = 0; pixel < 2; pixel++) {
    EXPECT_EQ(m.radiance(0, pixel), 1.5f) << pixel;
    EXPECT_EQ(m.radiance(1, pixel), 2.5f) << pixel;
    EXPECT_EQ(m.distance(pixel), 6.0f) << pixel;
  }
}

TEST(ContourMattes, OtherObjectsMattesAreNotTouched) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  m.seed(0, 7.0f, 3.0f, 10.0f);
  const double radiance[2] = {4.0, 2.0};
  c.add_sample(0, 0, radiance, 4.0, 5.0, 6.0, 1.0, 1, nullptr);  // object 1: no mattes
  EXPECT_EQ(m.radiance(0, 0), 7.0f);
  EXPECT_EQ(m.distance(0), 10.0f);
  // The layer took it all the same.
  EXPECT_EQ(c.layer_radiance[0][0][0], 4.0f);
}

TEST(ContourMattes, PerRaySampleValuesAreWeightedByCoverage) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  TCMatte_sample sample;
  sample.attach(0, &m.fields);
  ASSERT_EQ(sample.on, 1);
  sample.clear();
  sample.values[0] = 10.0f;
  sample.values[1] = 20.0f;
  const double radiance[2] = {4.0, 2.0};
  c.add_sample(0, 0, radiance, 9.0, 10.0, 11.0, 0.5, 0, &sample);
  // The per-ray values replace the radiance: 1 * 0.5 * 10 and 1 * 0.5 * 20.
  EXPECT_EQ(m.radiance(0, 0), 5.0f);
  EXPECT_EQ(m.radiance(1, 0), 10.0f);
  EXPECT_EQ(m.coverage(0), 0.5f);
  EXPECT_EQ(m.distance(0), 10.0f);
  // Behind, r = 0.5: 5 + 0.5 * 0.5 * 10 and 10 + 0.5 * 0.5 * 20.
  c.add_sample(0, 0, radiance, 14.0, 15.0, 16.0, 0.5, 0, &sample);
  EXPECT_EQ(m.radiance(0, 0), 7.5f);
  EXPECT_EQ(m.radiance(1, 0), 15.0f);
}

TEST(ContourMattes, MergeGivesTheSceneTheFrontMostDistanceWhateverTheOrder) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  const double radiance[2] = {1.0, 1.0};
  c.add_sample(0, 0, radiance, 9.0, 10.0, 11.0, 1.0, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(m.scene_distance(0), 10.0f);
  EXPECT_EQ(m.scene_distance(1), 1e16f);  // nothing there
  // A layer behind what stands leaves the scene's distance as it was, and
  // one that paints elsewhere does not clear it.
  c.add_sample(0, 0, radiance, 19.0, 20.0, 21.0, 1.0, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(m.scene_distance(0), 10.0f);
  c.add_sample(0, 1, radiance, 29.0, 30.0, 31.0, 0.5, 1, nullptr);
  c.merge_layer();
  EXPECT_EQ(m.scene_distance(0), 10.0f);
  EXPECT_EQ(m.scene_distance(1), 30.0f);
  // One in front, even covering a part only, is what the scene shows first.
  c.add_sample(0, 1, radiance, 4.0, 5.0, 6.0, 0.25, 0, nullptr);
  c.merge_layer();
  EXPECT_EQ(m.scene_distance(1), 5.0f);
  EXPECT_EQ(c.total_distance[0][0], 10.0f);
}

TEST(ContourMattes, ResetClearsTheMatteSample) {
  Contour_mattes m;
  ASSERT_TRUE(m.ok);
  object_contour c(1, 2, &m.bands, m.out, 0.0f, 1, &m.fields, nullptr);
  c.matte_sample.attach(0, &m.fields);
  ASSERT_EQ(c.matte_sample.on, 1);
  c.matte_sample.values[0] = 3.0f;
  c.matte_sample.values[m.distance_plane] = 4.0f;
  c.reset();
  EXPECT_EQ(c.matte_sample.values[0], 0.0f);
  EXPECT_EQ(c.matte_sample.values[m.distance_plane], 1e16f);
  EXPECT_EQ(c.matte_target, &m.fields);
}

TEST(ContourMattes, AContourStartsWithItsMatteSampleOff) {
  TCSpectrum bands(1);
  object_contour c(1, 1, &bands, 0.0f, 0, nullptr, nullptr);
  EXPECT_EQ(c.matte_sample.on, 0);
  c.reset();
  EXPECT_EQ(c.matte_sample.on, 0);
}

}  // namespace
