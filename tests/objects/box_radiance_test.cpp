#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "TCConstants.h"
#include "TCObject_list.h"
#include "TCStar.h"
#include "TCView.h"
#include "box_test_boxes.h"
#include "object_contour.h"

namespace {

// The box's bands 5 and 7 emit 10 and 20 and reflect 0.1 and 0.3.
TCSolid_Box* new_banded_box() {
  Solid_box_input input;
  const int ids[2] = {5, 7};
  const double radiance[2] = {10.0, 20.0};
  const double reflectivity[2] = {0.1, 0.3};
  fill_solid_input(input, TCVector(2.0, 2.0, 2.0), 2, ids, radiance, reflectivity);
  return new TCSolid_Box(input);
}

// A sun straight overhead (zenith pi) giving 2 in band 7 and 4 in band 9.
TCStar* new_overhead_sun() {
  TCStar* sun = new TCStar();
  const int ids[2] = {7, 9};
  sun->irradiance = request(2, ids);
  sun->irradiance.radiance_in_band[0] = 2.0;
  sun->irradiance.radiance_in_band[1] = 4.0;
  sun->set_angles(tc_pi, 0.0);
  return sun;
}

TCRay ray(double ox, double oy, double oz, double dx, double dy, double dz) {
  return TCRay(TCVector(ox, oy, oz), TCVector(dx, dy, dz));
}

TCView any_view() {
  return TCView();
}

TEST(SolidBoxRadiance, LitFaceReflectsByRequestPositionAndEmitsByBandPosition) {
  TCObject_list list;
  TCSolid_Box* box = new_banded_box();
  ASSERT_EQ(list.add_runtime_object(box), 1);
  list.sun = new_overhead_sun();
  const int ids[2] = {7, 9};
  TCSpectrum out = request(2, ids);
  TCView view = any_view();
  box->surface_radiance(ray(0.3, 0.2, 5.0, 0.0, 0.0, -1.0), out, view);
  // Band 7 (request 0): reflectivity[0] 0.1 times 2, plus radiance[1] 20.
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], 20.2);
  // Band 9 (request 1): the box lacks it; reflectivity[1] 0.3 times 4.
  EXPECT_DOUBLE_EQ(out.radiance_in_band[1], 1.2);
}

TEST(SolidBoxRadiance, FaceInItsOwnShadowOnlyEmits) {
  TCObject_list list;
  TCSolid_Box* box = new_banded_box();
  ASSERT_EQ(list.add_runtime_object(box), 1);
  list.sun = new_overhead_sun();
  const int ids[2] = {7, 9};
  TCSpectrum out = request(2, ids);
  TCView view = any_view();
  // The bottom face: the way to the sun runs through the box itself.
  box->surface_radiance(ray(0.3, 0.2, -5.0, 0.0, 0.0, 1.0), out, view);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], 20.0);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[1], 0.0);
}

TEST(SolidBoxRadiance, WithoutASunOnlyEmits) {
  TCObject_list list;
  TCSolid_Box* box = new_banded_box();
  ASSERT_EQ(list.add_runtime_object(box), 1);
  const int ids[3] = {7, 9, 5};
  TCSpectrum out = request(3, ids);
  TCView view = any_view();
  box->surface_radiance(ray(0.3, 0.2, 5.0, 0.0, 0.0, -1.0), out, view);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], 20.0);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[1], 0.0);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[2], 10.0);
}

TEST(SolidBoxRadiance, RequestBeyondTheBoxsBandsReflectsNothing) {
  TCObject_list list;
  TCSolid_Box* box = new_banded_box();
  ASSERT_EQ(list.add_runtime_object(box), 1);
  list.sun = new_overhead_sun();
  // Third request, band 5: no reflectivity at position 2; emission 10.
  const int ids[3] = {7, 9, 5};
  TCSpectrum out = request(3, ids);
  TCView view = any_view();
  box->surface_radiance(ray(0.3, 0.2, 5.0, 0.0, 0.0, -1.0), out, view);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], 20.2);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[1], 1.2);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[2], 10.0);
}

TEST(SolidBoxRadiance, MissGivesZeroInEveryBand) {
  std::unique_ptr<TCSolid_Box> box(new_banded_box());
  const int ids[2] = {7, 5};
  TCSpectrum out = request(2, ids);
  out.radiance_in_band[0] = out.radiance_in_band[1] = 9.0;
  TCView view = any_view();
  box->surface_radiance(ray(0.3, 5.0, 5.0, 0.0, 0.0, -1.0), out, view);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);
}

TEST(SolidBoxRadiance, ScannedFacesSeeTheSunUnlessTurnedFromIt) {
  TCObject_list list;
  TCSolid_Box* box = new_banded_box();
  ASSERT_EQ(list.add_runtime_object(box), 1);
  list.sun = new_overhead_sun();
  const int ids[1] = {7};
  TCSpectrum bands = request(1, ids);
  float* plane = new float[100]();
  float* planes[1] = {plane};
  // Straight down onto the top face; pixel (5, 5) is wholly inside it.
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 5.0), tc_pi, 0.0, 0.0);
  view.set_grid(10, -0.5, 0.5, 10, -0.5, 0.5);
  {
    object_contour contour(10, 10, &bands, planes, 0.0f, 0, nullptr, nullptr);
    box->image_contour(view, contour);
    EXPECT_NEAR(contour.layer_radiance[0][5][5], 20.2, 1e-5);
  }
  {
    // The light now travels upwards: the top face looks away from it.
    list.sun->set_angles(0.0, 0.0);
    object_contour contour(10, 10, &bands, planes, 0.0f, 0, nullptr, nullptr);
    box->image_contour(view, contour);
    EXPECT_NEAR(contour.layer_radiance[0][5][5], 20.0, 1e-5);
  }
  delete[] plane;
}

TEST(SolidBoxRadiance, ScannedFaceIsShadedByOtherObjects) {
  // A second box standing over the first shades its top face.
  TCObject_list list;
  TCSolid_Box* box = new_banded_box();
  ASSERT_EQ(list.add_runtime_object(box), 1);
  TCSolid_Box* roof = new_solid_box(TCVector(4.0, 4.0, 0.5), 0.0);
  roof->set_position(TCVector(0.0, 0.0, 3.0), 0.0, 0.0, 0.0);
  ASSERT_EQ(list.add_runtime_object(roof), 1);
  list.sun = new_overhead_sun();
  const int ids[2] = {7, 9};
  TCSpectrum out = request(2, ids);
  TCView view = any_view();
  box->lit_face = 1;
  box->face_turned = 0;
  box->surface_radiance(ray(0.3, 0.2, 2.0, 0.0, 0.0, -1.0), out, view);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], 20.0);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[1], 0.0);
  box->lit_face = 0;
}

TEST(SolidBoxRadiance, PrintDimensionsListsTheBands) {
  std::unique_ptr<TCSolid_Box> box(new_banded_box());
  testing::internal::CaptureStdout();
  box->print_dimensions();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Dimensions:  2 2 2\n"
            "number of bands 2\n"
            "bands ids        5 7\n"
            "radiance in bands:  10 20\n"
            "reflectivity in bands:  0.1 0.3\n");
}

// Thermal boxes: a 2 m cube at the origin, band 1 absorbing 0.5 per metre
// and emitting 3.
TCThermal_Box* new_gas() {
  const int id = 1;
  const double radiance = 3.0;
  const double absorption = 0.5;
  return new_thermal_box(TCVector(2.0, 2.0, 2.0), 1, &id, &radiance, &absorption);
}

TEST(ThermalBoxTransmission, PathThroughTheGasDimsItsBandsOnly) {
  std::unique_ptr<TCThermal_Box> gas(new_gas());
  const int ids[2] = {1, 2};
  TCSpectrum out = request(2, ids);
  // Enters at x = -1 and leaves at x = 1: 2 m.
  gas->radiance(ray(-5.0, 0.0, 0.0, 1.0, 0.0, 0.0), out);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], std::exp(-1.0));
  EXPECT_EQ(out.radiance_in_band[1], 1.0);
  // From the centre: 1 m.
  gas->radiance(ray(0.0, 0.0, 0.0, 0.0, 0.0, 1.0), out);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], std::exp(-0.5));
  // A miss lets everything through.
  gas->radiance(ray(-5.0, 3.0, 0.0, 1.0, 0.0, 0.0), out);
  EXPECT_EQ(out.radiance_in_band[0], 1.0);
  EXPECT_EQ(out.radiance_in_band[1], 1.0);
}

TEST(ThermalBoxTransmission, AnObjectInsideTheGasEndsThePath) {
  TCObject_list list;
  TCThermal_Box* gas = new_gas();
  ASSERT_EQ(list.add_runtime_object(gas), 1);
  TCSolid_Box* pebble = new_solid_box(TCVector(0.2, 0.2, 0.2), 0.0);
  pebble->set_position(TCVector(0.5, 0.0, 0.0), 0.0, 0.0, 0.0);
  ASSERT_EQ(list.add_runtime_object(pebble), 1);
  const int id = 1;
  TCSpectrum out = request(1, &id);
  // From x = -1 to the pebble's face at x = 0.4: 1.4 m.
  gas->radiance(ray(-5.0, 0.0, 0.0, 1.0, 0.0, 0.0), out);
  EXPECT_NEAR(out.radiance_in_band[0], std::exp(-0.7), 1e-12);
  // Past the pebble's side the whole 2 m counts.
  gas->radiance(ray(-5.0, 0.5, 0.0, 1.0, 0.0, 0.0), out);
  EXPECT_NEAR(out.radiance_in_band[0], std::exp(-1.0), 1e-12);
}

TEST(ThermalBoxTransmission, SunlightThroughTheGasIsDimmed) {
  // A solid box lit from overhead through a layer of gas above it.
  TCObject_list list;
  const int id = 7;
  const double radiance = 0.0;
  const double absorption = 0.25;
  TCThermal_Box* gas = new_thermal_box(TCVector(10.0, 10.0, 2.0), 1, &id, &radiance, &absorption);
  gas->set_position(TCVector(0.0, 0.0, 5.0), 0.0, 0.0, 0.0);
  ASSERT_EQ(list.add_runtime_object(gas), 1);
  TCSolid_Box* box = new_banded_box();
  ASSERT_EQ(list.add_runtime_object(box), 1);
  list.sun = new_overhead_sun();
  const int ids[1] = {7};
  TCSpectrum out = request(1, ids);
  TCView view = any_view();
  box->surface_radiance(ray(0.3, 0.2, 3.0, 0.0, 0.0, -1.0), out, view);
  // 0.1 * 2 * exp(-0.25 * 2) + 20.
  EXPECT_NEAR(out.radiance_in_band[0], 0.2 * std::exp(-0.5) + 20.0, 1e-9);
}

// A 1 by 1 view from (-5, 0, 0) along +x, a little wide.
TCView view_along_x() {
  TCView view;
  view.set_pose(TCVector(-5.0, 0.0, 0.0), tc_pi / 2, 0.0, 0.0);
  view.set_grid(1, -0.01, 0.01, 1, -0.01, 0.01);
  return view;
}

TEST(ThermalBoxRadiance, GasAloneGlowsByItsPath) {
  TCObject_list list;
  TCThermal_Box* gas = new_gas();
  ASSERT_EQ(list.add_runtime_object(gas), 1);
  gas->prepare_frame();
  const int ids[2] = {1, 2};
  TCSpectrum out = request(2, ids);
  TCView view = view_along_x();
  gas->surface_radiance(ray(-5.0, 0.0, 0.0, 1.0, 0.0, 0.0), out, view);
  // No sun: (1 - exp(-1)) * 3; band 2 is not the gas's.
  EXPECT_NEAR(out.radiance_in_band[0], (1.0 - std::exp(-1.0)) * 3.0, 1e-12);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);
}

TEST(ThermalBoxRadiance, SunlitGasReflectsATenth) {
  TCObject_list list;
  TCThermal_Box* gas = new_gas();
  ASSERT_EQ(list.add_runtime_object(gas), 1);
  TCStar* sun = new TCStar();
  const int sun_id = 1;
  sun->irradiance = request(1, &sun_id);
  sun->irradiance.radiance_in_band[0] = 2.0;
  sun->set_angles(tc_pi, 0.0);
  list.sun = sun;
  gas->prepare_frame();
  EXPECT_DOUBLE_EQ(gas->illumination.radiance_in_band[0], 2.0);
  const int id = 1;
  TCSpectrum out = request(1, &id);
  TCView view = view_along_x();
  gas->surface_radiance(ray(-5.0, 0.0, 0.0, 1.0, 0.0, 0.0), out, view);
  EXPECT_NEAR(out.radiance_in_band[0], 0.1 * 2.0 + (1.0 - std::exp(-1.0)) * 3.0, 1e-12);
}

TEST(ThermalBoxRadiance, IlluminationLeavesTheGasOutButNotWhatShadesIt) {
  TCObject_list list;
  TCThermal_Box* gas = new_gas();
  ASSERT_EQ(list.add_runtime_object(gas), 1);
  TCSolid_Box* roof = new_solid_box(TCVector(4.0, 4.0, 0.5), 0.0);
  roof->set_position(TCVector(0.0, 0.0, 3.0), 0.0, 0.0, 0.0);
  ASSERT_EQ(list.add_runtime_object(roof), 1);
  TCStar* sun = new TCStar();
  const int sun_id = 1;
  sun->irradiance = request(1, &sun_id);
  sun->irradiance.radiance_in_band[0] = 2.0;
  sun->set_angles(tc_pi, 0.0);
  list.sun = sun;
  gas->prepare_frame();
  EXPECT_EQ(gas->illumination.radiance_in_band[0], 0.0);
}

TEST(ThermalBoxRadiance, SceneBehindShowsThroughWeightedByTheTransmission) {
  TCObject_list list;
  TCThermal_Box* gas = new_gas();
  ASSERT_EQ(list.add_runtime_object(gas), 1);
  // A wall emitting 7 behind the gas, filling the view.
  TCSolid_Box* wall = new_solid_box(TCVector(2.0, 2.0, 2.0), 7.0);
  wall->set_position(TCVector(5.0, 0.0, 0.0), 0.0, 0.0, 0.0);
  ASSERT_EQ(list.add_runtime_object(wall), 1);
  gas->prepare_frame();
  const int id = 1;
  TCSpectrum out = request(1, &id);
  TCView view = view_along_x();
  gas->surface_radiance(ray(-5.0, 0.0, 0.0, 1.0, 0.0, 0.0), out, view);
  const double t = std::exp(-1.0);
  EXPECT_NEAR(out.radiance_in_band[0], (1.0 - t) * 3.0 + t * 7.0, 1e-6);
}

TEST(ThermalBoxRadiance, MissGivesZero) {
  std::unique_ptr<TCThermal_Box> gas(new_gas());
  const int id = 1;
  TCSpectrum out = request(1, &id);
  out.radiance_in_band[0] = 5.0;
  TCView view = view_along_x();
  gas->surface_radiance(ray(-5.0, 4.0, 0.0, 1.0, 0.0, 0.0), out, view);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
}

TEST(ThermalBoxRadiance, FacesOfTheGasAreScannedLikeASolidBox) {
  TCObject_list list;
  TCThermal_Box* gas = new_gas();
  ASSERT_EQ(list.add_runtime_object(gas), 1);
  gas->prepare_frame();
  const int id = 1;
  TCSpectrum bands = request(1, &id);
  float* plane = new float[100]();
  float* planes[1] = {plane};
  // Straight down; pixel (5, 5) sees the gas 2 m deep.
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 5.0), tc_pi, 0.0, 0.0);
  view.set_grid(10, -0.5, 0.5, 10, -0.5, 0.5);
  object_contour contour(10, 10, &bands, planes, 0.0f, 0, nullptr, nullptr);
  gas->image_contour(view, contour);
  EXPECT_EQ(contour.layer_coverage[5][5], 1.0f);
  // The centroid ray through plane point (0.05, 0.05) is slanted: the path
  // is 2 sqrt(1 + 0.05^2 + 0.05^2).
  const double path = 2.0 * std::sqrt(1.005);
  EXPECT_NEAR(contour.layer_radiance[0][5][5], (1.0 - std::exp(-0.5 * path)) * 3.0, 1e-5);
  delete[] plane;
}

TEST(ThermalBoxRadiance, PrintDimensionsListsTheBands) {
  std::unique_ptr<TCThermal_Box> gas(new_gas());
  testing::internal::CaptureStdout();
  gas->print_dimensions();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "Dimensions:  2 2 2\n"
            "number of bands 1\n"
            "bands ids        1\n"
            "radiance in bands:  3\n"
            "absorption in bands:  0.5\n");
}

}  // namespace
