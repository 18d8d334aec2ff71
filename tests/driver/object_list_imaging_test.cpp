#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCObject_kinds.h"
#include "TCObject_list.h"
#include "TCSpectrum.h"
#include "TCView.h"
#include "object_contour.h"
#include "object_list_test_objects.h"

namespace {

// A strip of three pixels, one row: azimuth columns [-1.5, -0.5],
// [-0.5, 0.5] and [0.5, 1.5], elevation [-0.5, 0.5].
TCView strip_view() {
  TCView view;
  view.set_grid(1, -0.5, 0.5, 3, -1.5, 1.5);
  return view;
}

class ObjectListImaging : public ::testing::Test {
 protected:
  ObjectListImaging() : bands(1), out(1, 3, 7.0f), view(strip_view()) {
    for (int i = 0; i < 100; i++) active[i] = 1;
  }

  Test_slab* add(int type, double priority, double radiance, double distance) {
    Test_slab* slab = new Test_slab(type, priority, radiance, distance);
    slab->log = &log;
    EXPECT_EQ(list.add_runtime_object(slab), 1);
    return slab;
  }

  // The view's position lies inside this object.
  static void around_view(Test_slab* slab) {
    slab->occupy(TCVector(-1.0, -1.0, -1.0), TCVector(1.0, 1.0, 1.0));
  }

  TCObject_list list;
  TCSpectrum bands;
  Radiance_planes out;
  TCView view;
  int active[100];
  std::string log;
};

TEST_F(ObjectListImaging, EmptyListClearsTheImageAndPaintsNothing) {
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  for (int k = 0; k < 3; k++) EXPECT_EQ(out.planes[0][k], 0.0f) << k;
}

TEST_F(ObjectListImaging, EmptyListLeavesACallersContourUntouched) {
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.first_flag = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 0);
  for (int k = 0; k < 3; k++) EXPECT_EQ(out.planes[0][k], 0.0f) << k;
  EXPECT_EQ(contour.first_flag, 0);
}

TEST_F(ObjectListImaging, EveryBandOfEveryPixelIsClearedFirst) {
  TCSpectrum two(2);
  Radiance_planes wide(2, 3, 5.0f);
  Test_slab* slab = add(TC_KIND_SOLID_BOX, 1.0, 3.0, 10.0);
  slab->first_azimuth_painted = -2.0;
  slab->last_azimuth_painted = -0.5;  // the first pixel only
  list.image_scene(active, view, &two, wide.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(wide.planes[0][0], 3.0f);
  EXPECT_FLOAT_EQ(wide.planes[1][0], 13.0f);
  for (int k = 1; k < 3; k++) {
    EXPECT_EQ(wide.planes[0][k], 0.0f) << k;
    EXPECT_EQ(wide.planes[1][k], 0.0f) << k;
  }
}

// A half-covering veil at 5 m over an opaque wall at 10 m: the veil keeps
// its 0.5 coverage of 4, so 2, and half the wall's 1 shows, 2.5 in all.
TEST_F(ObjectListImaging, LayersCompositeFrontToBackWhenTheNearOneComesFirst) {
  Test_slab* veil = add(TC_KIND_SOLID_BOX, 1.0, 4.0, 5.0);
  veil->coverage = 0.5;
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 2.5f) << k;
  EXPECT_EQ(log, "c0 c1");
}

TEST_F(ObjectListImaging, LayersCompositeFrontToBackWhenTheFarOneComesFirst) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  Test_slab* veil = add(TC_KIND_SOLID_BOX, 1.0, 4.0, 5.0);
  veil->coverage = 0.5;
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 2.5f) << k;
  EXPECT_EQ(log, "c0 c1");
}

TEST_F(ObjectListImaging, ViewInsideTheHighestObjectSeesOnlyThatObject) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  Test_slab* lower = add(TC_KIND_SOLID_BOX, 1.5, 2.0, 3.0);
  around_view(lower);
  Test_slab* fog = add(TC_KIND_THERMAL_BOX, 2.0, 6.0, 20.0);
  around_view(fog);
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  // Its layer, copied straight out, even though others stand nearer.
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 6.0f) << k;
  EXPECT_EQ(log, "c2");
}

TEST_F(ObjectListImaging, ViewInsideAnObjectGivesTheSceneMattesThatObject) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  Test_slab* lower = add(TC_KIND_SOLID_BOX, 1.5, 2.0, 3.0);
  around_view(lower);
  std::istringstream section(
      "use_mattes: 1 NObjects: 1 Object: scene NMattes: 2 scene_distance fraction_filled");
  TCMatte_input request;
  ASSERT_EQ(request.read(section), 1);
  request.object_indices[0] = 2;  // the scene of a list of two
  TCMatte_fields fields;
  fields.set_sizes(40, 2);
  fields.prepare(1, 3, 1, request);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, &fields, nullptr);
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  // Only the object around the view paints; what the scene shows is it, at
  // its (squared) distance of 3, filling every pixel.
  int first = -1, count = 0;
  ASSERT_EQ(fields.is_wanted(2, 20, first, count), 1);
  for (int k = 0; k < 3; k++) EXPECT_EQ(fields.planes[2][first][k], 3.0f) << k;
  ASSERT_EQ(fields.is_wanted(2, 18, first, count), 1);
  for (int k = 0; k < 3; k++) EXPECT_EQ(fields.planes[2][first][k], 1.0f) << k;
}

TEST_F(ObjectListImaging, ViewInsideAnObjectSeesEverythingBeyondAMinimumDistance) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  Test_slab* fog = add(TC_KIND_THERMAL_BOX, 2.0, 6.0, 20.0);
  around_view(fog);
  list.image_scene(active, view, &bands, out.planes, 0.5, nullptr, 1);
  // The wall at 10 m stands in front of the fog's layer at 20 m.
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 1.0f) << k;
  EXPECT_EQ(log, "c0 c1");
}

TEST_F(ObjectListImaging, ViewInsideAnObjectSeesEverythingWithANearLimit) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  Test_slab* fog = add(TC_KIND_THERMAL_BOX, 2.0, 6.0, 20.0);
  around_view(fog);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  float limits[3] = {0.0f, 0.0f, 0.0f};
  float* limit_rows[1] = {limits};
  contour.near_limit = limit_rows;
  contour.near_limit_flag = 1;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  contour.near_limit = nullptr;
  contour.near_limit_flag = 0;
  EXPECT_EQ(log, "c0 c1");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 1.0f) << k;
}

TEST_F(ObjectListImaging, ViewInsideAnObjectWithFirstFlagOffLeavesItsLayerForTheCaller) {
  Test_slab* fog = add(TC_KIND_THERMAL_BOX, 2.0, 6.0, 20.0);
  around_view(fog);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.first_flag = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  EXPECT_EQ(contour.first_flag, 1);
  for (int k = 0; k < 3; k++) {
    EXPECT_EQ(out.planes[0][k], 0.0f) << k;
    EXPECT_FLOAT_EQ(contour.layer_radiance[0][0][k], 6.0f) << k;
  }
}

TEST_F(ObjectListImaging, SwitchedOffHigherObjectKeepsTheViewOutOfALowerOne) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  Test_slab* fog = add(TC_KIND_THERMAL_BOX, 2.0, 6.0, 20.0);
  around_view(fog);
  add(TC_KIND_SOLID_BOX, 2.0, 9.0, 30.0);  // contains nothing
  active[2] = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_EQ(log, "c0 c1");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 1.0f) << k;
}

TEST_F(ObjectListImaging, ForcedObjectPaintsAlone) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  add(TC_KIND_SOLID_BOX, 1.0, 2.0, 20.0);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.forced_object = 1;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  EXPECT_EQ(log, "c1");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 5.0f) << k;
}

TEST_F(ObjectListImaging, ForcedObjectSwitchedOffLetsEveryActiveObjectPaint) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  add(TC_KIND_SOLID_BOX, 1.0, 2.0, 20.0);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.forced_object = 1;
  active[1] = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  EXPECT_EQ(log, "c0 c2");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 1.0f) << k;
}

TEST_F(ObjectListImaging, CallerFlagSwitchesAnObjectOffInBothLists) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  active[0] = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  EXPECT_EQ(log, "c1");
  EXPECT_EQ(contour.active[0], 0);
  EXPECT_EQ(contour.active[1], 1);
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 5.0f) << k;
}

TEST_F(ObjectListImaging, ContourFlagSwitchesAnObjectOffInBothLists) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.active[0] = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  EXPECT_EQ(log, "c1");
  EXPECT_EQ(active[0], 0);
  EXPECT_EQ(active[1], 1);
}

TEST_F(ObjectListImaging, SourceObjectIsLeftOutOfWhatItSees) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_WATER, 1.0, 5.0, 30.0);
  list.image_scene_for_source(0, view, &bands, out.planes, 0.0, nullptr);
  EXPECT_EQ(log, "c1");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 5.0f) << k;
}

TEST_F(ObjectListImaging, NoSourceLetsEveryObjectPaint) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_WATER, 1.0, 5.0, 30.0);
  list.image_scene_for_source(-1, view, &bands, out.planes, 0.0, nullptr);
  EXPECT_EQ(log, "c0 c1");
}

TEST_F(ObjectListImaging, MinimumDistanceDropsWhatStandsInFront) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  list.image_scene(active, view, &bands, out.planes, 15.0, nullptr, 1);
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 5.0f) << k;
}

TEST_F(ObjectListImaging, ImagingWithAContourUsesItsFlagsOutputAndMinimumDistance) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  add(TC_KIND_SOLID_BOX, 1.0, 2.0, 20.0);
  object_contour contour(1, 3, &bands, out.planes, 12.0f, 1, nullptr, nullptr);
  contour.active[2] = 0;
  list.image_with_contour(view, contour);
  EXPECT_EQ(log, "c0 c1");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 5.0f) << k;
}

TEST_F(ObjectListImaging, KeptContourGoesOnFromItsLastPass) {
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  // Something opaque already stands at 10 m in every pixel.
  for (int k = 0; k < 3; k++) {
    contour.total_distance[0][k] = 10.0f;
    contour.total_coverage[0][k] = 1.0f;
  }
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  for (int k = 0; k < 3; k++) EXPECT_EQ(out.planes[0][k], 0.0f) << k;
}

TEST_F(ObjectListImaging, UnkeptContourStartsAfreshButKeepsItsRequests) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  add(TC_KIND_SOLID_BOX, 1.0, 2.0, 20.0);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  for (int k = 0; k < 3; k++) {
    contour.total_distance[0][k] = 1.0f;
    contour.total_coverage[0][k] = 1.0f;
  }
  contour.active[0] = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 0);
  EXPECT_EQ(log, "c1 c2");
  EXPECT_EQ(contour.active[0], 0);
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 2.0f) << k;
}

TEST_F(ObjectListImaging, UnkeptContourKeepsItsForcedObject) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_SOLID_BOX, 1.0, 5.0, 30.0);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.forced_object = 1;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 0);
  EXPECT_EQ(log, "c1");
  EXPECT_EQ(contour.forced_object, 1);
}

TEST_F(ObjectListImaging, FirstFlagOffLetsTheSecondObjectCarryTheFirstLayer) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  Test_slab* veil = add(TC_KIND_SOLID_BOX, 1.0, 4.0, 5.0);
  veil->coverage = 0.5;
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.first_flag = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  // Both painted into one layer before the single merge: the veil in front
  // of the wall inside the layer, 2 + 0.5 * 1.
  EXPECT_EQ(contour.first_flag, 1);
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 2.5f) << k;
}

// ---- Refinement ----

// A near slab (radiance 4 at 10 m) covers azimuths below 0.1, so its edge
// crosses the middle pixel [-0.5, 0.5], whose centre it covers; there its
// depth range reaches back to 30 m, across the wall (radiance 1 at 20 m)
// behind it. Only the middle pixel is marked. On a 1 x 4 sub-grid the
// sub-pixel centres are -0.375, -0.125, 0.125 and 0.375: two show the slab,
// two the wall, so the pixel becomes (4 + 4 + 1 + 1) / 4 = 2.5 in place of
// the 4 its centre gave.
class ObjectListRefinement : public ObjectListImaging {
 protected:
  ObjectListRefinement() {
    view.resampling_elevation = 1;
    view.resampling_azimuth = 4;
    slab = add(TC_KIND_SOLID_BOX, 1.0, 4.0, 10.0);
    slab->last_azimuth_painted = 0.1;
    slab->edge_spread = 20.0;
    wall = add(TC_KIND_SOLID_BOX, 1.0, 1.0, 20.0);
  }
  Test_slab* slab;
  Test_slab* wall;
};

TEST_F(ObjectListRefinement, OverlappingDepthsAreReimagedAsTheMeanOfSubPixels) {
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(out.planes[0][0], 4.0f);
  EXPECT_FLOAT_EQ(out.planes[0][1], 2.5f);
  EXPECT_FLOAT_EQ(out.planes[0][2], 1.0f);
  // Once for the strip, once for the one marked pixel: the sub-grid pass
  // refines nothing further.
  EXPECT_EQ(slab->contour_calls, 2);
  EXPECT_EQ(wall->contour_calls, 2);
}

TEST_F(ObjectListRefinement, EveryBandTakesItsOwnMean) {
  TCSpectrum two(2);
  Radiance_planes wide(2, 3, 0.0f);
  list.image_scene(active, view, &two, wide.planes, 0.0, nullptr, 1);
  // Band 1 carries 14 for the slab and 11 for the wall: (14 + 14 + 11 + 11) / 4.
  EXPECT_FLOAT_EQ(wide.planes[0][1], 2.5f);
  EXPECT_FLOAT_EQ(wide.planes[1][1], 12.5f);
  EXPECT_FLOAT_EQ(wide.planes[1][0], 14.0f);
  EXPECT_FLOAT_EQ(wide.planes[1][2], 11.0f);
}

TEST_F(ObjectListRefinement, TwoByTwoSubGridAveragesFourSamples) {
  view.resampling_elevation = 2;
  view.resampling_azimuth = 2;
  // Sub-pixel centres at azimuth -0.25 and 0.25 in both rows: half slab.
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(out.planes[0][1], 2.5f);
}

TEST_F(ObjectListRefinement, ViewWithoutAntiAliasingKeepsTheCentreSample) {
  view.anti_alias = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(out.planes[0][1], 4.0f);
  EXPECT_EQ(slab->contour_calls, 1);
}

TEST_F(ObjectListRefinement, ContourWithoutAntiAliasingKeepsTheCentreSample) {
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  EXPECT_FLOAT_EQ(out.planes[0][1], 4.0f);
  EXPECT_EQ(slab->contour_calls, 1);
}

TEST_F(ObjectListRefinement, NoSubGridMeansNoRefinement) {
  view.resampling_elevation = 0;
  view.resampling_azimuth = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(out.planes[0][1], 4.0f);
  EXPECT_EQ(slab->contour_calls, 1);
}

TEST_F(ObjectListRefinement, SingleObjectNeverRefines) {
  active[1] = 0;
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(out.planes[0][1], 4.0f);
  EXPECT_EQ(slab->contour_calls, 1);
}

TEST_F(ObjectListRefinement, ForcedObjectStaysAloneInTheSubPixels) {
  // Forced alone, the slab is the only layer: nothing overlaps, nothing is
  // marked, and a caller's marks from before are what refine.
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.forced_object = 0;
  contour.any_marked = 1;
  contour.marked[0][1] = 1;
  list.image_scene(active, view, &bands, out.planes, 0.0, &contour, 1);
  // Sub-pixels: 4, 4, 0, 0 with the wall left out.
  EXPECT_FLOAT_EQ(out.planes[0][1], 2.0f);
  EXPECT_EQ(wall->contour_calls, 0);
}

// ---- Secondary pass ----

TEST_F(ObjectListImaging, SecondaryPassLeavesTheAirOut) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_AIR, 0.0, 50.0, 5.0);
  list.image_scene_secondary(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_EQ(log, "r0");
  EXPECT_EQ(active[1], 0);
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 1.0f) << k;
}

TEST_F(ObjectListImaging, MainPassLetsTheAirPaint) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_AIR, 0.0, 50.0, 5.0);
  list.image_scene(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_EQ(log, "c0 c1");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 50.0f) << k;
}

TEST_F(ObjectListImaging, SecondaryPassForASourceLeavesOutBothSourceAndAir) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  add(TC_KIND_AIR, 0.0, 50.0, 5.0);
  add(TC_KIND_WATER, 1.0, 3.0, 2.0);
  list.image_scene_secondary_for_source(2, view, &bands, out.planes, 0.0, nullptr);
  EXPECT_EQ(log, "r0");
}

TEST_F(ObjectListImaging, SecondaryPassWithAContourSwitchesTheAirOffInIt) {
  add(TC_KIND_AIR, 0.0, 50.0, 5.0);
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  list.image_secondary_with_contour(view, contour);
  EXPECT_EQ(log, "r1");
  EXPECT_EQ(contour.active[0], 0);
}

TEST_F(ObjectListRefinement, SecondaryPassNeverRefines) {
  list.image_scene_secondary(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(out.planes[0][1], 4.0f);
  EXPECT_EQ(slab->reflected_calls, 1);
  EXPECT_EQ(slab->contour_calls, 0);
}

TEST_F(ObjectListImaging, SecondaryViewInsideAnObjectCopiesItsReflectedLayer) {
  add(TC_KIND_SOLID_BOX, 1.0, 1.0, 10.0);
  Test_slab* fog = add(TC_KIND_THERMAL_BOX, 2.0, 6.0, 20.0);
  around_view(fog);
  list.image_scene_secondary(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_EQ(log, "r1");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 6.0f) << k;
}

TEST_F(ObjectListImaging, SecondaryViewInsideAnObjectLeavesFirstFlagOff) {
  Test_slab* fog = add(TC_KIND_THERMAL_BOX, 2.0, 6.0, 20.0);
  around_view(fog);
  object_contour contour(1, 3, &bands, out.planes, 0.0f, 1, nullptr, nullptr);
  contour.first_flag = 0;
  list.image_scene_secondary(active, view, &bands, out.planes, 0.0, &contour, 1);
  EXPECT_EQ(contour.first_flag, 0);
  for (int k = 0; k < 3; k++) EXPECT_EQ(out.planes[0][k], 0.0f) << k;
}

// ---- Surface-line pass ----

TEST_F(ObjectListImaging, SurfaceLinePassWalksPolygonsThenOceansOnly) {
  add(TC_KIND_OCEAN, 1.0, 1.0, 50.0);
  add(TC_KIND_SOLID_BOX, 1.0, 9.0, 1.0);
  add(TC_KIND_POLY, 1.0, 2.0, 40.0);
  add(TC_KIND_OCEAN, 1.0, 3.0, 30.0);
  add(TC_KIND_AIR, 1.0, 9.0, 2.0);
  add(TC_KIND_POLY, 1.0, 4.0, 20.0);
  list.image_surface_line(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_EQ(log, "s2 s5 s0 s3");
  // The nearest painted, the polygon at 20 m, covers all.
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 4.0f) << k;
}

TEST_F(ObjectListImaging, SurfaceLinePassSkipsSwitchedOffSurfaces) {
  add(TC_KIND_OCEAN, 1.0, 1.0, 50.0);
  add(TC_KIND_POLY, 1.0, 2.0, 40.0);
  list.image_surface_line_for_source(1, view, &bands, out.planes, 0.0, nullptr);
  EXPECT_EQ(log, "s0");
  for (int k = 0; k < 3; k++) EXPECT_FLOAT_EQ(out.planes[0][k], 1.0f) << k;
}

TEST_F(ObjectListRefinement, SurfaceLinePassRefinesWithItsOwnWalk) {
  slab->set_type(TC_KIND_POLY);
  wall->set_type(TC_KIND_OCEAN);
  list.image_surface_line(active, view, &bands, out.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(out.planes[0][0], 4.0f);
  EXPECT_FLOAT_EQ(out.planes[0][1], 2.5f);
  EXPECT_FLOAT_EQ(out.planes[0][2], 1.0f);
  EXPECT_EQ(slab->surface_line_calls, 2);
  EXPECT_EQ(slab->contour_calls, 0);
}

}  // namespace
