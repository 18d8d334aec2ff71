#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "TCBand.h"
#include "TCCamera.h"
#include "TCCamera_input.h"
#include "TCObject_kinds.h"
#include "TCObject_list.h"
#include "TCRay.h"
#include "TCStar.h"
#include "TCVector.h"
#include "object_list_test_objects.h"
#include "stream_capture.h"

namespace {

Test_slab* box_at(double priority, double x0, double x1, int* deleted = nullptr) {
  Test_slab* slab = new Test_slab(TC_KIND_SOLID_BOX, priority, 1.0, 1.0);
  slab->occupy(TCVector(x0, -1.0, -1.0), TCVector(x1, 1.0, 1.0));
  slab->deleted = deleted;
  return slab;
}

// Along +x from x = -10.
TCRay ray_along_x() {
  return TCRay(TCVector(-10.0, 0.0, 0.0), TCVector(1.0, 0.0, 0.0));
}

// ---- Ownership ----

TEST(ObjectListOwnership, StartsEmpty) {
  TCObject_list list;
  EXPECT_EQ(list.n_objects, 0);
  EXPECT_EQ(list.n_cameras, 0);
  EXPECT_EQ(list.sun, nullptr);
  EXPECT_EQ(list.number_of_bands, 0);
  EXPECT_EQ(list.objects_spectrum, nullptr);
  for (int i = 0; i < TCObject_list::max_objects; i++) {
    EXPECT_EQ(list.objects[i], nullptr);
    EXPECT_EQ(list.cameras[i], nullptr);
  }
}

TEST(ObjectListOwnership, AddingSetsIdAndListInOrder) {
  TCObject_list list;
  Test_slab* first = box_at(1.0, 0.0, 1.0);
  Test_slab* second = box_at(1.0, 0.0, 1.0);
  first->object_id = 42;
  ASSERT_EQ(list.add_runtime_object(first), 1);
  ASSERT_EQ(list.add_runtime_object(second), 1);
  EXPECT_EQ(list.n_objects, 2);
  EXPECT_EQ(list.objects[0], first);
  EXPECT_EQ(list.objects[1], second);
  EXPECT_EQ(first->object_id, 0);
  EXPECT_EQ(second->object_id, 1);
  EXPECT_EQ(first->list, &list);
  EXPECT_EQ(second->list, &list);
}

TEST(ObjectListOwnership, FullListRefusesAnotherObject) {
  TCObject_list list;
  for (int i = 0; i < 100; i++) ASSERT_EQ(list.add_runtime_object(box_at(1.0, 0.0, 1.0)), 1);
  int deleted = 0;
  Test_slab* extra = box_at(1.0, 0.0, 1.0, &deleted);
  Stream_capture out(std::cout);
  EXPECT_EQ(list.add_runtime_object(extra), 0);
  EXPECT_EQ(out.text(), "maximum number of objects exceeded \n");
  EXPECT_EQ(list.n_objects, 100);
  EXPECT_EQ(extra->list, nullptr);
  delete extra;  // still the caller's
  EXPECT_EQ(deleted, 1);
}

TEST(ObjectListOwnership, NullObjectIsRefused) {
  TCObject_list list;
  EXPECT_EQ(list.add_runtime_object(nullptr), 0);
  EXPECT_EQ(list.n_objects, 0);
}

TEST(ObjectListOwnership, RemovingDeletesClosesTheGapAndRenumbers) {
  TCObject_list list;
  int deleted[3] = {0, 0, 0};
  Test_slab* slabs[3];
  for (int i = 0; i < 3; i++) {
    slabs[i] = box_at(1.0, 0.0, 1.0, &deleted[i]);
    list.add_runtime_object(slabs[i]);
  }
  EXPECT_EQ(list.remove_object(0), 1);
  EXPECT_EQ(deleted[0], 1);
  EXPECT_EQ(list.n_objects, 2);
  EXPECT_EQ(list.objects[0], slabs[1]);
  EXPECT_EQ(list.objects[1], slabs[2]);
  EXPECT_EQ(list.objects[2], nullptr);
  EXPECT_EQ(slabs[1]->object_id, 0);
  EXPECT_EQ(slabs[2]->object_id, 1);
  EXPECT_EQ(deleted[1] + deleted[2], 0);
}

TEST(ObjectListOwnership, RemovingOutOfRangeDoesNothing) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, 0.0, 1.0));
  EXPECT_EQ(list.remove_object(-1), 0);
  EXPECT_EQ(list.remove_object(1), 0);
  EXPECT_EQ(list.n_objects, 1);
}

TEST(ObjectListOwnership, DestroyDeletesObjectsAndBandsAndEmpties) {
  TCObject_list list;
  int deleted = 0;
  list.add_runtime_object(box_at(1.0, 0.0, 1.0, &deleted));
  list.add_runtime_object(box_at(1.0, 0.0, 1.0, &deleted));
  TCBand band;
  band.band_id = 3;
  list.set_bands(1, &band);
  list.destroy();
  EXPECT_EQ(deleted, 2);
  EXPECT_EQ(list.n_objects, 0);
  EXPECT_EQ(list.objects[0], nullptr);
  EXPECT_EQ(list.number_of_bands, 0);
  EXPECT_EQ(list.objects_spectrum, nullptr);
  list.destroy();  // a second time is harmless
  EXPECT_EQ(deleted, 2);
}

TEST(ObjectListOwnership, DestructorDeletesAdoptedObjects) {
  int deleted = 0;
  {
    TCObject_list list;
    list.add_runtime_object(box_at(1.0, 0.0, 1.0, &deleted));
  }
  EXPECT_EQ(deleted, 1);
}

TEST(ObjectListOwnership, SlotsFilledByHandStayTheCallers) {
  int deleted = 0;
  Test_slab mine(TC_KIND_SOLID_BOX, 1.0, 1.0, 1.0);
  mine.deleted = &deleted;
  {
    TCObject_list list;
    list.objects[0] = &mine;
    list.n_objects = 1;
  }
  EXPECT_EQ(deleted, 0);
}

// ---- Bands ----

TEST(ObjectListBands, BandIndexFindsThePositionOfAnId) {
  TCObject_list list;
  TCBand bands[3];
  bands[0].band_id = 7;
  bands[0].center_wavelength = 0.45;
  bands[0].width = 0.1;
  bands[1].band_id = 2;
  bands[2].band_id = 9;
  ASSERT_EQ(list.set_bands(3, bands), 1);
  EXPECT_EQ(list.number_of_bands, 3);
  EXPECT_EQ(list.band_index(7), 0);
  EXPECT_EQ(list.band_index(2), 1);
  EXPECT_EQ(list.band_index(9), 2);
  EXPECT_EQ(list.band_index(1), -1);
  EXPECT_EQ(list.objects_spectrum[0].center_wavelength, 0.45);
  EXPECT_EQ(list.objects_spectrum[0].width, 0.1);
  // The list keeps its own copy.
  bands[0].band_id = 100;
  EXPECT_EQ(list.band_index(7), 0);
}

TEST(ObjectListBands, NoBandsIsAnErrorAndKeepsTheOldOnes) {
  TCObject_list list;
  TCBand band;
  band.band_id = 4;
  list.set_bands(1, &band);
  Stream_capture out(std::cout);
  EXPECT_EQ(list.set_bands(0, &band), 0);
  EXPECT_EQ(out.text(), "must define atleast one band\n");
  EXPECT_EQ(list.band_index(4), 0);
}

TEST(ObjectListBands, EmptyListHasNoBand) {
  TCObject_list list;
  EXPECT_EQ(list.band_index(1), -1);
}

// ---- Containment ----

TEST(ObjectListContaining, EqualPrioritiesKeepTheEarlierObject) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, 5.0, 6.0));   // elsewhere
  list.add_runtime_object(box_at(2.0, -1.0, 1.0));  // contains the origin
  list.add_runtime_object(box_at(2.0, -2.0, 2.0));  // so does this, same priority
  int flags[100];
  for (int i = 0; i < 100; i++) flags[i] = 1;
  EXPECT_EQ(list.object_containing(flags, TCVector(0.0, 0.0, 0.0)), 1);
}

TEST(ObjectListContaining, HigherPriorityWinsWhateverTheOrder) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, -1.0, 1.0));
  list.add_runtime_object(box_at(3.0, -1.0, 1.0));
  list.add_runtime_object(box_at(2.0, -1.0, 1.0));
  int flags[100];
  for (int i = 0; i < 100; i++) flags[i] = 1;
  EXPECT_EQ(list.object_containing(flags, TCVector(0.0, 0.0, 0.0)), 1);
}

TEST(ObjectListContaining, SwitchedOffObjectsAreNotCandidates) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, -1.0, 1.0));
  list.add_runtime_object(box_at(0.5, -1.0, 1.0));
  int flags[100];
  for (int i = 0; i < 100; i++) flags[i] = 1;
  flags[0] = 0;
  // Object 1 contains the point but does not outrank the switched-off 0.
  EXPECT_EQ(list.object_containing(flags, TCVector(0.0, 0.0, 0.0)), -1);
  flags[0] = 1;
  flags[1] = 0;
  EXPECT_EQ(list.object_containing(flags, TCVector(0.0, 0.0, 0.0)), 0);
}

TEST(ObjectListContaining, SwitchedOffObjectShadowsEqualPriorityAnywhere) {
  TCObject_list list;
  list.add_runtime_object(box_at(2.0, -1.0, 1.0));
  list.add_runtime_object(box_at(2.0, 50.0, 60.0));  // far away, switched off
  int flags[100];
  for (int i = 0; i < 100; i++) flags[i] = 1;
  flags[1] = 0;
  EXPECT_EQ(list.object_containing(flags, TCVector(0.0, 0.0, 0.0)), -1);
  list.objects[1]->set_priority(1.9);
  EXPECT_EQ(list.object_containing(flags, TCVector(0.0, 0.0, 0.0)), 0);
}

TEST(ObjectListContaining, PriorityMustBeAboveMinusOne) {
  TCObject_list list;
  list.add_runtime_object(box_at(-1.0, -1.0, 1.0));
  list.add_runtime_object(box_at(-0.5, -1.0, 1.0));
  int flags[100];
  for (int i = 0; i < 100; i++) flags[i] = 1;
  EXPECT_EQ(list.object_containing(flags, TCVector(0.0, 0.0, 0.0)), 1);
  list.objects[1]->set_priority(-2.0);
  EXPECT_EQ(list.object_containing(flags, TCVector(0.0, 0.0, 0.0)), -1);
  EXPECT_EQ(list.highest_inside(-1, TCVector(0.0, 0.0, 0.0)), -1);
}

TEST(ObjectListContaining, PointOutsideEverythingGivesNone) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, -1.0, 1.0));
  int flags[100];
  for (int i = 0; i < 100; i++) flags[i] = 1;
  EXPECT_EQ(list.object_containing(flags, TCVector(5.0, 0.0, 0.0)), -1);
  EXPECT_EQ(list.highest_inside(-1, TCVector(5.0, 0.0, 0.0)), -1);
  EXPECT_EQ(list.highest_surface_inside(TCVector(5.0, 0.0, 0.0)), -1);
}

TEST(ObjectListContaining, HighestInsideSkipsOneObject) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, -1.0, 1.0));
  list.add_runtime_object(box_at(3.0, -1.0, 1.0));
  list.add_runtime_object(box_at(2.0, -1.0, 1.0));
  EXPECT_EQ(list.highest_inside(-1, TCVector(0.0, 0.0, 0.0)), 1);
  EXPECT_EQ(list.highest_inside(1, TCVector(0.0, 0.0, 0.0)), 2);
  EXPECT_EQ(list.highest_inside(2, TCVector(0.0, 0.0, 0.0)), 1);
}

TEST(ObjectListContaining, SurfaceQueriesAskOnlyOceanAirAndLand) {
  TCObject_list list;
  const int kinds[5] = {TC_KIND_SOLID_BOX, TC_KIND_LAND, TC_KIND_AIR, TC_KIND_OCEAN, TC_KIND_POLY};
  const double priorities[5] = {9.0, 1.0, 2.0, 3.0, 8.0};
  for (int i = 0; i < 5; i++) {
    Test_slab* slab = box_at(priorities[i], -1.0, 1.0);
    slab->set_type(kinds[i]);
    list.add_runtime_object(slab);
  }
  const TCVector origin(0.0, 0.0, 0.0);
  EXPECT_EQ(list.highest_surface_inside(origin), 3);
  int flags[100];
  for (int i = 0; i < 100; i++) flags[i] = 1;
  flags[3] = 0;
  EXPECT_EQ(list.highest_surface_inside_flagged(flags, origin), 2);
  flags[2] = 0;
  EXPECT_EQ(list.highest_surface_inside_flagged(flags, origin), 1);
  flags[1] = 0;
  EXPECT_EQ(list.highest_surface_inside_flagged(flags, origin), -1);
}

TEST(ObjectListContaining, SurfaceQueriesKeepTheEarlierOfEqualPriorities) {
  TCObject_list list;
  Test_slab* land = box_at(2.0, -1.0, 1.0);
  land->set_type(TC_KIND_LAND);
  Test_slab* ocean = box_at(2.0, -1.0, 1.0);
  ocean->set_type(TC_KIND_OCEAN);
  list.add_runtime_object(land);
  list.add_runtime_object(ocean);
  EXPECT_EQ(list.highest_surface_inside(TCVector(0.0, 0.0, 0.0)), 0);
}

// ---- Nearest hit ----

TEST(ObjectListNearest, EmptyListHitsNothing) {
  TCObject_list list;
  TCVector hit(7.0, 7.0, 7.0);
  EXPECT_EQ(list.nearest_except(-1, ray_along_x(), hit), 0);
  int flags[100] = {0};
  EXPECT_EQ(list.nearest_active(flags, ray_along_x(), hit), 0);
  EXPECT_EQ(list.nearest_above_priority(-1, ray_along_x(), hit), 0);
}

TEST(ObjectListNearest, NearestHitGivesPositionPlusOneAndItsPoint) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, 4.0, 5.0));
  list.add_runtime_object(box_at(1.0, 2.0, 3.0));
  list.add_runtime_object(box_at(1.0, 6.0, 7.0));
  TCVector hit;
  EXPECT_EQ(list.nearest_except(-1, ray_along_x(), hit), 2);
  EXPECT_DOUBLE_EQ(hit.x, 2.0);
  EXPECT_DOUBLE_EQ(hit.y, 0.0);
  EXPECT_DOUBLE_EQ(hit.z, 0.0);
}

TEST(ObjectListNearest, SkippedObjectIsNotAsked) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, 4.0, 5.0));
  list.add_runtime_object(box_at(1.0, 2.0, 3.0));
  TCVector hit;
  EXPECT_EQ(list.nearest_except(1, ray_along_x(), hit), 1);
  EXPECT_DOUBLE_EQ(hit.x, 4.0);
}

TEST(ObjectListNearest, MissingEverythingGivesZero) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, -20.0, -15.0));  // behind the ray
  TCVector hit;
  EXPECT_EQ(list.nearest_except(-1, ray_along_x(), hit), 0);
}

TEST(ObjectListNearest, EqualDistancesKeepTheEarlierObject) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, 8.0, 9.0));
  list.add_runtime_object(box_at(1.0, 2.0, 3.0));
  list.add_runtime_object(box_at(1.0, 2.0, 4.0));  // same entry at x = 2
  TCVector hit;
  EXPECT_EQ(list.nearest_except(-1, ray_along_x(), hit), 2);
}

TEST(ObjectListNearest, OriginInsideObjectThreeGivesMinusFourAndTheOrigin) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, -9.0, -8.0));  // hit at 1 m, nearer
  list.add_runtime_object(box_at(1.0, 2.0, 3.0));
  list.add_runtime_object(box_at(1.0, 4.0, 5.0));
  list.add_runtime_object(box_at(1.0, -11.0, 0.0));  // the origin is in here
  list.add_runtime_object(box_at(1.0, -12.0, 0.0));  // and here, later
  TCVector hit(7.0, 7.0, 7.0);
  EXPECT_EQ(list.nearest_except(-1, ray_along_x(), hit), -4);
  EXPECT_DOUBLE_EQ(hit.x, -10.0);
  EXPECT_DOUBLE_EQ(hit.y, 0.0);
  EXPECT_DOUBLE_EQ(hit.z, 0.0);
  // Skipping 3, the next container answers.
  EXPECT_EQ(list.nearest_except(3, ray_along_x(), hit), -5);
}

TEST(ObjectListNearest, ActiveFlagsChooseWhomToAsk) {
  TCObject_list list;
  list.add_runtime_object(box_at(1.0, -11.0, 0.0));  // contains the origin
  list.add_runtime_object(box_at(1.0, 2.0, 3.0));
  list.add_runtime_object(box_at(1.0, 4.0, 5.0));
  int flags[100] = {0};
  flags[2] = 1;
  TCVector hit;
  EXPECT_EQ(list.nearest_active(flags, ray_along_x(), hit), 3);
  EXPECT_DOUBLE_EQ(hit.x, 4.0);
  flags[0] = 1;
  EXPECT_EQ(list.nearest_active(flags, ray_along_x(), hit), -1);
}

TEST(ObjectListNearest, AbovePriorityAsksOnlyStrictlyHigherObjects) {
  TCObject_list list;
  list.add_runtime_object(box_at(2.0, 1.0, 2.0));    // equal to the skipped one
  list.add_runtime_object(box_at(2.0, -11.0, 0.0));  // the skipped one
  list.add_runtime_object(box_at(1.0, 2.0, 3.0));    // lower
  list.add_runtime_object(box_at(2.5, 6.0, 7.0));    // higher
  list.add_runtime_object(box_at(3.0, 4.0, 5.0));    // higher, nearer
  TCVector hit;
  EXPECT_EQ(list.nearest_above_priority(1, ray_along_x(), hit), 5);
  EXPECT_DOUBLE_EQ(hit.x, 4.0);
  // Out of range: no priority bar, and the container of the origin answers.
  EXPECT_EQ(list.nearest_above_priority(-1, ray_along_x(), hit), -2);
}

// ---- Finding ----

TEST(ObjectListFind, AirIsTheLastObjectOfItsKind) {
  TCObject_list list;
  EXPECT_EQ(list.find_air(), -1);
  Test_slab* air = box_at(1.0, 0.0, 1.0);
  air->set_type(TC_KIND_AIR);
  list.add_runtime_object(box_at(1.0, 0.0, 1.0));
  EXPECT_EQ(list.find_air(), -1);
  list.add_runtime_object(air);
  Test_slab* second_air = box_at(1.0, 0.0, 1.0);
  second_air->set_type(TC_KIND_AIR);
  list.add_runtime_object(second_air);
  list.add_runtime_object(box_at(1.0, 0.0, 1.0));
  EXPECT_EQ(list.find_air(), 2);
}

TEST(ObjectListFind, NamesOfAdoptedObjectsAreFound) {
  TCObject_list list;
  Test_slab* boat = box_at(1.0, 0.0, 1.0);
  boat->set_name("boat");
  list.add_runtime_object(box_at(1.0, 0.0, 1.0));
  list.add_runtime_object(boat);
  int index = 0;
  EXPECT_EQ(list.find_by_name("boat", index), 1);
  EXPECT_EQ(index, 1);
}

// ---- Frame data and state ----

TEST(ObjectListFrameData, EveryObjectWritesItsFrameData) {
  TCObject_list list;
  Test_slab* a = box_at(1.0, 0.0, 1.0);
  Test_slab* b = box_at(1.0, 0.0, 1.0);
  list.add_runtime_object(a);
  list.add_runtime_object(b);
  list.write_all_frame_data("out/run", "0007", 1);
  EXPECT_EQ(a->frame_data_calls, 1);
  EXPECT_EQ(b->frame_data_calls, 1);
  EXPECT_EQ(b->last_stream, "out/run");
  EXPECT_EQ(b->last_frame, "0007");
}

TEST(ObjectListFrameData, PrintAllPrintsEachObjectsStateInOrder) {
  TCObject_list list;
  Test_slab* a = box_at(1.0, 0.0, 1.0);
  a->set_name("first");
  Test_slab* b = box_at(1.0, 0.0, 1.0);
  b->set_name("second");
  list.add_runtime_object(a);
  list.add_runtime_object(b);
  std::ostringstream expected;
  a->print_state(expected);
  b->print_state(expected);
  std::ostringstream printed;
  list.print_all(printed);
  EXPECT_EQ(printed.str(), expected.str());
  EXPECT_EQ(printed.str().find("first\n"), 0u);
  EXPECT_NE(printed.str().find("second\n"), std::string::npos);
}

TEST(ObjectListFrameData, PrintAllPrintsTheSunFirstAndTheCamerasLast) {
  TCObject_list list;
  Test_slab* a = box_at(1.0, 0.0, 1.0);
  a->set_name("only");
  list.add_runtime_object(a);
  list.sun = new TCStar();
  list.sun->set_angles(0.5, 1.0);

  TCCamera_input input;
  input.n_pixel_elevation = 2;
  input.n_pixel_azimuth = 2;
  input.fov_elevation = 10.0;
  input.fov_azimuth = 10.0;
  input.last_elevation = 1;
  input.last_azimuth = 1;
  input.n_sub_elevation = 1;
  input.n_sub_azimuth = 1;
  input.image_slices = 1;
  std::copy_n("eye.cam", 8, input.object_file);
  {
    Stream_capture quiet(std::cout);
    list.cameras[0] = new TCCamera(input, &list);
  }
  list.n_cameras = 1;

  std::ostringstream expected;
  expected << "  ";
  list.sun->print_state(expected);
  a->print_state(expected);
  expected << "Camera 1\n";
  list.cameras[0]->print_state(expected);
  std::ostringstream printed;
  list.print_all(printed);
  EXPECT_EQ(printed.str(), expected.str());
  EXPECT_EQ(printed.str().find("  sun "), 0u) << printed.str();
  EXPECT_NE(printed.str().find("only\n"), std::string::npos);
  EXPECT_NE(printed.str().find("Camera 1\neye\n"), std::string::npos) << printed.str();
}

TEST(ObjectListFrameData, PrintingAnEmptyListPrintsNothing) {
  TCObject_list list;
  std::ostringstream printed;
  list.print_all(printed);
  EXPECT_EQ(printed.str(), "");
}

}  // namespace
