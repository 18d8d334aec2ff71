// The object list answering as the scene tracer its objects are handed.
#include <gtest/gtest.h>

#include <string>

#include "TCBand.h"
#include "TCObject_kinds.h"
#include "TCObject_list.h"
#include "TCRay.h"
#include "TCScene_tracer.h"
#include "TCSpectrum.h"
#include "TCStar.h"
#include "TCView.h"
#include "object_contour.h"
#include "object_list_test_objects.h"

namespace {

Test_slab* slab(int type = TC_KIND_SOLID_BOX) {
  return new Test_slab(type, 1.0, 1.0, 1.0);
}

// Remembers the source it was asked for and answers its own id per band.
class Radiance_slab : public Test_slab {
 public:
  Radiance_slab() : Test_slab(TC_KIND_SOLID_BOX, 1.0, 1.0, 1.0), source(-2) {}
  void radiance_from(int source_object, const TCRay&, TCSpectrum& out) override {
    source = source_object;
    for (int k = 0; k < out.n; k++) out.radiance_in_band[k] = object_id + 0.5;
  }
  int source;
};

TEST(ObjectListTracer, AdoptionHandsTheObjectTheListAsItsTracer) {
  TCObject_list list;
  Test_slab* first = slab();
  EXPECT_EQ(first->scene, nullptr);
  ASSERT_EQ(list.add_runtime_object(first), 1);
  EXPECT_EQ(first->scene, static_cast<TCScene_tracer*>(&list));
  EXPECT_EQ(scene_tracer_of(&list), static_cast<TCScene_tracer*>(&list));
  EXPECT_EQ(scene_tracer_of(nullptr), nullptr);
}

TEST(ObjectListTracer, NamesAndKindsOnlyForObjectsThatAreThere) {
  TCObject_list list;
  Test_slab* sea = slab(TC_KIND_OCEAN);
  sea->set_name("sea");
  list.add_runtime_object(slab());
  list.add_runtime_object(sea);
  const TCScene_tracer& scene = list;
  EXPECT_EQ(scene.object_count(), 2);
  EXPECT_STREQ(scene.object_name(1), "sea");
  EXPECT_EQ(scene.object_kind(1), TC_KIND_OCEAN);
  EXPECT_EQ(scene.object_kind(0), TC_KIND_SOLID_BOX);
  EXPECT_EQ(scene.object_name(-1), nullptr);
  EXPECT_EQ(scene.object_name(2), nullptr);
  EXPECT_EQ(scene.object_kind(-1), -1);
  EXPECT_EQ(scene.object_kind(2), -1);
  int index = 7;
  EXPECT_EQ(scene.find_by_name("sea", index), 1);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(scene.find_by_name("land", index), 0);
  EXPECT_EQ(index, -1);
}

TEST(ObjectListTracer, BandsAndSunAreTheListsOwn) {
  TCObject_list list;
  const TCScene_tracer& scene = list;
  EXPECT_EQ(scene.band_count(), 0);
  EXPECT_EQ(scene.band_table(), nullptr);
  EXPECT_EQ(scene.star(), nullptr);
  TCBand bands[2];
  bands[0].band_id = 4;
  bands[1].band_id = 9;
  list.set_bands(2, bands);
  list.sun = new TCStar();
  EXPECT_EQ(scene.band_count(), 2);
  ASSERT_NE(scene.band_table(), nullptr);
  EXPECT_EQ(scene.band_table()[1].band_id, 9);
  EXPECT_EQ(scene.star(), list.sun);
}

TEST(ObjectListTracer, SunIrradianceWithoutASunLeavesTheSpectrumAlone) {
  TCObject_list list;
  TCSpectrum out(1);
  out.band_id[0] = 1;
  out.radiance_in_band[0] = 7.0;
  EXPECT_EQ(list.sun_irradiance_at(TCVector(0.0, 0.0, 0.0), out, -1), 0);
  EXPECT_EQ(out.radiance_in_band[0], 7.0);
  // A sun that is not up gives nothing, but it is asked.
  list.sun = new TCStar();
  EXPECT_EQ(list.sun_irradiance_at(TCVector(0.0, 0.0, 0.0), out, -1), 1);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
}

TEST(ObjectListTracer, RadianceFromAsksThatObjectWithTheSourceGiven) {
  TCObject_list list;
  Radiance_slab* first = new Radiance_slab();
  Radiance_slab* second = new Radiance_slab();
  list.add_runtime_object(first);
  list.add_runtime_object(second);
  TCSpectrum out(1);
  const TCRay ray(TCVector(0.0, 0.0, 0.0), TCVector(1.0, 0.0, 0.0));
  list.radiance_from(1, 5, ray, out);
  EXPECT_EQ(second->source, 5);
  EXPECT_EQ(first->source, -2);
  EXPECT_EQ(out.radiance_in_band[0], 1.5);
  // No object there: nothing is asked and out stays.
  list.radiance_from(2, 5, ray, out);
  list.radiance_from(-1, 5, ray, out);
  EXPECT_EQ(out.radiance_in_band[0], 1.5);
}

TEST(ObjectListTracer, ContourForSourceLeavesOutTheSourceAndInactiveObjects) {
  TCObject_list list;
  std::string log;
  for (int i = 0; i < 4; i++) {
    Test_slab* s = slab();
    s->log = &log;
    list.add_runtime_object(s);
  }
  TCSpectrum spectrum(1);
  object_contour contour(1, 1, &spectrum, 0.0f, 0, nullptr, nullptr);
  contour.active[1] = 0;
  contour.first_flag = 1;
  TCView view;
  view.set_grid(1, -0.01, 0.01, 1, -0.01, 0.01);
  list.image_contour_for_source(2, view, contour);
  EXPECT_EQ(log, "c0 c3");
  EXPECT_EQ(contour.first_flag, 1);
  log.clear();
  contour.active[1] = 1;
  list.image_contour_for_source(-1, view, contour);
  EXPECT_EQ(log, "c0 c1 c2 c3");
}

}  // namespace
