// The thermal box and the air against a scene that is not an object list:
// whatever they need of the scene must come through the tracer.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "TCAir.h"
#include "TCAir_input.h"
#include "TCBand.h"
#include "TCData_file.h"
#include "TCRay.h"
#include "TCScene_tracer.h"
#include "TCSpectrum.h"
#include "TCStar.h"
#include "TCStar_input.h"
#include "TCVector.h"
#include "TCView.h"
#include "box_test_boxes.h"
#include "object_contour.h"

namespace {

// A scene of nothing but canned answers, remembering what it was asked.
class Fake_tracer : public TCScene_tracer {
 public:
  Fake_tracer()
      : sun(nullptr),
        sun_band(-1),
        sun_value(0.0),
        sun_excluded(-2),
        nearest_answer(0),
        nearest_hit(),
        skipped(-2),
        flags_seen(0),
        object_value(0.0),
        asked_index(-2),
        asked_source(-2),
        scene_value(0.0),
        scene_source(-2),
        contour_source(-2) {
    bands[0].band_id = 1;
    bands[0].center_wavelength = 0.45;
    bands[0].width = 0.1;
    bands[1].band_id = 2;
    bands[1].center_wavelength = 0.65;
    bands[1].width = 0.1;
    for (int i = 0; i < max_objects; i++) flags[i] = -1;
  }

  int band_count() const override { return 2; }
  const TCBand* band_table() const override { return bands; }
  const TCStar* star() const override { return sun; }
  int sun_irradiance_at(const TCVector&, TCSpectrum& out, int excluded_id) override {
    sun_excluded = excluded_id;
    for (int k = 0; k < out.n; k++) {
      if (out.band_id[k] == sun_band) out.radiance_in_band[k] = sun_value;
    }
    return 1;
  }
  int object_count() const override { return 0; }
  const char* object_name(int) const override { return nullptr; }
  int object_kind(int) const override { return -1; }
  int object_position(int, TCVector&) const override { return 0; }
  int air_radiance(const TCRay&, TCSpectrum&) override { return 0; }
  int frame_number() const override { return 0; }
  void image_scene_secondary(int*, TCView&, TCSpectrum*, float**, double, object_contour*,
                             int) override {}
  int surface_height_under(int, const TCVector&, double&, double&) const override { return 0; }
  int find_by_name(const char*, int& index) const override {
    index = -1;
    return 0;
  }
  int nearest_except(int skip_index, const TCRay&, TCVector& hit) override {
    skipped = skip_index;
    if (nearest_answer != 0) hit = nearest_hit;
    return nearest_answer;
  }
  int nearest_active(const int* wanted, const TCRay& ray, TCVector& hit) override {
    flags_seen = 1;
    for (int i = 0; i < max_objects; i++) flags[i] = wanted[i];
    if (nearest_answer < 0) hit = ray.origin();
    if (nearest_answer > 0) hit = nearest_hit;
    return nearest_answer;
  }
  void radiance_from(int index, int source_object, const TCRay&, TCSpectrum& out) override {
    asked_index = index;
    asked_source = source_object;
    for (int k = 0; k < out.n; k++) out.radiance_in_band[k] = object_value * (k + 1);
  }
  void image_contour_for_source(int source_object, TCView&, object_contour&) override {
    contour_source = source_object;
  }
  void image_scene(int*, TCView&, TCSpectrum*, float**, double, object_contour*, int) override {}
  void image_scene_for_source(int source_object, TCView& view, TCSpectrum* spectrum,
                              float** radiance_out, double, object_contour*) override {
    scene_source = source_object;
    const long long pixels = static_cast<long long>(view.n_rows) * view.n_cols;
    for (int k = 0; k < spectrum->n; k++) {
      for (long long p = 0; p < pixels; p++) radiance_out[k][p] = static_cast<float>(scene_value);
    }
  }
  void image_surface_line(int*, TCView&, TCSpectrum*, float**, double, object_contour*,
                          int) override {}

  TCBand bands[2];
  const TCStar* sun;
  int sun_band;
  double sun_value;
  int sun_excluded;
  int nearest_answer;
  TCVector nearest_hit;
  int skipped;
  int flags_seen;
  int flags[max_objects];
  double object_value;
  int asked_index;
  int asked_source;
  double scene_value;
  int scene_source;
  int contour_source;
};

TCRay ray(double ox, double oy, double oz, double dx, double dy, double dz) {
  return TCRay(TCVector(ox, oy, oz), TCVector(dx, dy, dz));
}

// A 2 m cube of gas at the origin, band 1 absorbing 0.5 per metre and
// emitting 3, standing as object 3 of the fake scene.
TCThermal_Box* gas_in(Fake_tracer& scene) {
  const int id = 1;
  const double radiance = 3.0;
  const double absorption = 0.5;
  TCThermal_Box* gas = new_thermal_box(TCVector(2.0, 2.0, 2.0), 1, &id, &radiance, &absorption);
  gas->object_id = 3;
  gas->scene = &scene;
  return gas;
}

TEST(SceneTracerFake, ThermalBoxTakesItsSunlightFromTheTracerLeavingItselfOut) {
  Fake_tracer scene;
  scene.sun_band = 1;
  scene.sun_value = 2.0;
  std::unique_ptr<TCThermal_Box> gas(gas_in(scene));
  gas->prepare_frame();
  EXPECT_EQ(scene.sun_excluded, 3);
  ASSERT_EQ(gas->illumination.n, 1);
  EXPECT_EQ(gas->illumination.radiance_in_band[0], 2.0);
}

TEST(SceneTracerFake, ThermalBoxPathEndsAtTheNearestOtherObjectTheTracerNames) {
  Fake_tracer scene;
  scene.nearest_answer = 1;
  scene.nearest_hit = TCVector(0.4, 0.0, 0.0);
  std::unique_ptr<TCThermal_Box> gas(gas_in(scene));
  const int id = 1;
  TCSpectrum out = request(1, &id);
  // Enters at x = -1; the named object at x = 0.4 ends the path: 1.4 m.
  gas->radiance(ray(-5.0, 0.0, 0.0, 1.0, 0.0, 0.0), out);
  EXPECT_EQ(scene.skipped, 3);
  EXPECT_NEAR(out.radiance_in_band[0], std::exp(-0.7), 1e-12);
}

TEST(SceneTracerFake, ThermalBoxSeesTheSceneBehindThroughTheTracer) {
  Fake_tracer scene;
  scene.sun_band = 1;
  scene.sun_value = 2.0;
  scene.scene_value = 5.0;
  std::unique_ptr<TCThermal_Box> gas(gas_in(scene));
  gas->prepare_frame();
  const int id = 1;
  TCSpectrum out = request(1, &id);
  TCView view;
  view.set_pose(TCVector(-5.0, 0.0, 0.0), 3.1415926535 / 2, 0.0, 0.0);
  view.set_grid(1, -0.01, 0.01, 1, -0.01, 0.01);
  gas->surface_radiance(ray(-5.0, 0.0, 0.0, 1.0, 0.0, 0.0), out, view);
  EXPECT_EQ(scene.scene_source, 3);
  // A tenth of the sun, the glow of 2 m of gas, and 5 behind it dimmed.
  const double t = std::exp(-1.0);
  EXPECT_NEAR(out.radiance_in_band[0], 0.2 + (1.0 - t) * 3.0 + t * 5.0, 1e-6);
}

// Uniform air of bands 1 and 2, both looked up in the fake scene's table.
TCAir* air_in(Fake_tracer& scene) {
  TCAir_input input;
  input.allocate_arrays(2);
  input.band_id.band_id[0] = 1;
  input.band_id.band_id[1] = 2;
  input.air_type = 1;
  input.surface_shape = 0;
  input.surface_radius = 6371000.0;
  input.object_id = 4;
  copy_text(input.object_file, "fake.air", 256);
  return new TCAir(input, &scene);
}

TEST(SceneTracerFake, AirTakesItsBandsAndSunFromTheTracer) {
  Fake_tracer scene;
  TCStar_input star_input;
  TCSpectrum irradiance(2);
  irradiance.band_id[0] = 2;
  irradiance.band_id[1] = 1;
  irradiance.radiance_in_band[0] = 1.5;
  irradiance.radiance_in_band[1] = 1.8;
  star_input.irradiance = irradiance;
  star_input.number_of_bands = 2;
  TCStar sun(star_input);
  sun.set_angles(0.0, 0.0);
  scene.sun = &sun;
  std::unique_ptr<TCAir> air(air_in(scene));
  EXPECT_EQ(air->scene, &scene);
  // The band edges come from the fake table: 0.45 and 0.65 um, 0.1 wide.
  EXPECT_NEAR(air->lambda_low[0], 0.40, 1e-12);
  EXPECT_NEAR(air->lambda_high[1], 0.70, 1e-12);
  air->set_sun_values();
  EXPECT_EQ(air->sun_present, 1);
  EXPECT_EQ(air->sun_irradiance[0], 1.8);
  EXPECT_EQ(air->sun_irradiance[1], 1.5);
  EXPECT_NEAR(air->sun_zenith, 0.0, 1e-12);
}

TEST(SceneTracerFake, AirAsksTheTracerForWhatLiesAlongARay) {
  Fake_tracer scene;
  std::unique_ptr<TCAir> air(air_in(scene));
  air->object_id = 4;
  // The ray starts inside object 6: nothing of the air lies in between.
  scene.nearest_answer = -7;
  scene.object_value = 0.25;
  const int ids[2] = {1, 2};
  TCSpectrum out = request(2, ids);
  air->radiance_from(9, ray(0.0, 0.0, 10.0, 0.0, 0.0, 1.0), out);
  ASSERT_EQ(scene.flags_seen, 1);
  for (int i = 0; i < TCScene_tracer::max_objects; i++) {
    EXPECT_EQ(scene.flags[i], i != 4 && i != 9) << i;
  }
  EXPECT_EQ(scene.asked_index, 6);
  EXPECT_EQ(scene.asked_source, 4);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], 0.25);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[1], 0.5);
}

TEST(SceneTracerFake, AirHasTheOtherObjectsPaintThroughTheTracerFirst) {
  Fake_tracer scene;
  std::unique_ptr<TCAir> air(air_in(scene));
  air->object_id = 4;
  const int ids[2] = {1, 2};
  TCSpectrum spectrum = request(2, ids);
  float plane0[1] = {0.0f};
  float plane1[1] = {0.0f};
  float* planes[2] = {plane0, plane1};
  object_contour contour(1, 1, &spectrum, planes, 0.0f, 0, nullptr, nullptr);
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 0.0, 0.0, 0.0);
  view.set_grid(1, -0.01, 0.01, 1, -0.01, 0.01);
  testing::internal::CaptureStdout();  // the air's imaging statistics
  air->image_contour(view, contour);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(scene.contour_source, 4);
}

}  // namespace
