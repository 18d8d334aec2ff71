#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>

#include "TCAir.h"
#include "TCAir_input.h"
#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCObject_list.h"
#include "TCSettings.h"
#include "TCStar.h"
#include "TCView.h"
#include "air_test_scenes.h"
#include "band_planes.h"
#include "object_contour.h"
#include "stream_capture.h"

// The pixel rules worked by hand; where a pixel carries exact path
// integrals, the expected value is composed from the air's own single-ray
// operations (tested against air_reference.py in air_paths_test.cpp) over
// the pixel's 2 by 2 sub-rays.

namespace {

using air_scene::infinity;

// Paints every pixel (or one column) with a coverage, a radiance per band
// (before the coverage weighting) and a distance in metres.
class Patch_painter : public TCObject {
 public:
  Patch_painter(float coverage_in, double band0, double band1, double distance_in)
      : TCObject(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4),
        coverage(coverage_in),
        distance(distance_in),
        only_col(-1),
        calls(0) {
    radiance[0] = band0;
    radiance[1] = band1;
  }
  void image_contour(TCView& view, object_contour& contour) override {
    calls++;
    const double depth = distance * distance;
    for (int row = 0; row < view.n_rows; row++) {
      for (int col = 0; col < view.n_cols; col++) {
        if (only_col >= 0 && col != only_col) continue;
        const double weighted[2] = {radiance[0] * coverage, radiance[1] * coverage};
        contour.add_sample(row, col, weighted, depth, depth, depth, coverage, object_id, nullptr);
      }
    }
  }
  float coverage;
  double radiance[2];
  double distance;
  int only_col;
  int calls;
};

class Quiet {
 public:
  Quiet() : saved(verbose) { verbose = 0; }
  ~Quiet() { verbose = saved; }
  int saved;
};

class AirImaging : public ::testing::Test {
 protected:
  void SetUp() override {
    air_scene::set_bands(list);
    spectrum.band_id[0] = 1;
    spectrum.band_id[1] = 2;
    for (int i = 0; i < TCObject_list::max_objects; i++) active[i] = 1;
    // Looking straight up from 10 m, 1 row by 3 columns of 0.01 each.
    view.set_pose(TCVector(0.0, 0.0, 10.0), 0.0, 0.0, 0.0);
    view.set_grid(1, -0.005, 0.005, 3, -0.015, 0.015);
    view.anti_alias = 0;
  }
  TCAir* uniform_air(double band0, double band1) {
    TCAir_input input;
    air_scene::fill_input(input, 0, 0);
    input.radiance_value[0] = band0;
    input.radiance_value[1] = band1;
    TCAir* air = new TCAir(input, &list);
    list.add_runtime_object(air);
    return air;
  }
  float pixel(const Planes& planes, int band, int k) { return planes.planes[band][k]; }
  void image(Planes& planes) {
    list.image_scene(active, view, &spectrum, planes.planes, 0.0, nullptr, 0);
  }

  // Mean over the pixel's 2 by 2 sub-rays of object * T + path radiance
  // along [0, s_end], band by band.
  void exact_pixel(TCAir* air, int col, double s_end, const double* object, double* out) {
    out[0] = out[1] = 0.0;
    const double fractions[2] = {0.25, 0.75};
    for (double fr : fractions) {
      for (double fc : fractions) {
        TCRay ray;
        view.fractional_ray(0, col, fr, fc, ray);
        TCSpectrum mol = air_scene::two_bands(), aer = air_scene::two_bands();
        TCSpectrum t = air_scene::two_bands();
        air->path_radiance(ray, mol, aer, 0.0, s_end);
        air->scatter_phase(ray, mol, aer);
        air->path_transmission(ray, t, 0.0, s_end);
        for (int b = 0; b < 2; b++)
          out[b] += 0.25 * (object[b] * t.radiance_in_band[b] + mol.radiance_in_band[b]);
      }
    }
  }

  TCObject_list list;
  TCSpectrum spectrum{2};
  TCView view;
  int active[TCObject_list::max_objects];
  Quiet quiet;
};

TEST_F(AirImaging, UniformAirFillsTheSkyAndBlendsPartlyCoveredPixels) {
  uniform_air(3.0, 4.0);
  Patch_painter* full = new Patch_painter(1.0f, 5.0, 6.0, 100.0);
  full->only_col = 1;
  list.add_runtime_object(full);
  Patch_painter* half = new Patch_painter(0.5f, 4.0, 8.0, 100.0);
  half->only_col = 2;
  list.add_runtime_object(half);
  Planes planes(2, 3);
  image(planes);
  // Sky: its own radiance. Covered: the object, undimmed. Half: 0.5 * 4 +
  // 0.5 * 3 and 0.5 * 8 + 0.5 * 4.
  EXPECT_FLOAT_EQ(pixel(planes, 0, 0), 3.0f);
  EXPECT_FLOAT_EQ(pixel(planes, 1, 0), 4.0f);
  EXPECT_FLOAT_EQ(pixel(planes, 0, 1), 5.0f);
  EXPECT_FLOAT_EQ(pixel(planes, 1, 1), 6.0f);
  EXPECT_FLOAT_EQ(pixel(planes, 0, 2), 3.5f);
  EXPECT_FLOAT_EQ(pixel(planes, 1, 2), 6.0f);
  EXPECT_EQ(full->calls, 1);
  EXPECT_EQ(half->calls, 1);
}

TEST_F(AirImaging, CoverageOfExactlyPointNineNineNineNineCountsAsFull) {
  uniform_air(10000.0, 20000.0);
  Patch_painter* object = new Patch_painter(0.9999f, 1.0, 1.0, 50.0);
  list.add_runtime_object(object);
  Planes planes(2, 3);
  image(planes);
  // No sky sample: the pixel is the object alone.
  EXPECT_FLOAT_EQ(pixel(planes, 0, 0), 0.9999f);
  EXPECT_FLOAT_EQ(pixel(planes, 1, 0), 0.9999f);
  // A shade less covered takes the sky behind: 0.9998 + 0.0002 * 10000.
  object->coverage = 0.9998f;
  image(planes);
  EXPECT_NEAR(pixel(planes, 0, 0), 0.9998 + (1.0 - 0.9998f) * 10000.0, 1e-3);
}

TEST_F(AirImaging, OtherObjectsPaintFirstButInactiveOnesAndTheAirItselfDoNot) {
  TCAir* air = uniform_air(1.0, 1.0);
  Patch_painter* on = new Patch_painter(1.0f, 2.0, 2.0, 10.0);
  Patch_painter* off = new Patch_painter(1.0f, 9.0, 9.0, 5.0);
  list.add_runtime_object(on);
  list.add_runtime_object(off);
  // A switched-off object shadows the holders of the view of its priority
  // or less; kept below the air's.
  off->set_priority(0.5);
  active[off->get_object_id()] = 0;
  Planes planes(2, 3);
  image(planes);
  EXPECT_EQ(on->calls, 1);
  EXPECT_EQ(off->calls, 0);
  EXPECT_FLOAT_EQ(pixel(planes, 0, 2), 2.0f);
  // Called directly, the air still skips itself.
  object_contour contour(1, 3, &spectrum, planes.planes, 0.0f, 0, nullptr, nullptr);
  contour.active[off->get_object_id()] = 0;
  air->image_contour(view, contour);
  EXPECT_EQ(on->calls, 2);
  EXPECT_EQ(contour.first_flag, 1);
  EXPECT_FLOAT_EQ(contour.layer_radiance[1][0][1], 2.0f);
}

TEST_F(AirImaging, FlatAirDimsTheObjectAndAddsThePathRadiance) {
  air_scene::set_sun(list, 2.4, 0.7);
  TCAir* air = air_scene::add_air(list, 2, 0);
  Patch_painter* object = new Patch_painter(1.0f, 10.0, 20.0, 1000.0);
  object->only_col = 0;
  list.add_runtime_object(object);
  Planes planes(2, 3);
  image(planes);
  double expected[2];
  const double seen[2] = {10.0, 20.0};
  exact_pixel(air, 0, 1000.0, seen, expected);
  EXPECT_NEAR(pixel(planes, 0, 0), expected[0], 1e-6 * expected[0]);
  EXPECT_NEAR(pixel(planes, 1, 0), expected[1], 1e-6 * expected[1]);
  EXPECT_LT(expected[0], 10.0 + 1e-9);  // dimmed more than the path adds here
  // The sky pixels: the path radiance to infinity alone.
  const double nothing[2] = {0.0, 0.0};
  exact_pixel(air, 1, infinity, nothing, expected);
  EXPECT_NEAR(pixel(planes, 0, 1), expected[0], 1e-6 * expected[0]);
  EXPECT_NEAR(pixel(planes, 1, 1), expected[1], 1e-6 * expected[1]);
}

TEST_F(AirImaging, PartlyCoveredPixelBlendsObjectPathAndSkyByCoverage) {
  air_scene::set_sun(list, 2.4, 0.7);
  TCAir* air = air_scene::add_air(list, 1, 0);
  Patch_painter* object = new Patch_painter(0.25f, 8.0, 4.0, 500.0);
  list.add_runtime_object(object);
  Planes planes(2, 3);
  image(planes);
  double near_part[2], sky[2];
  const double seen[2] = {8.0, 4.0};
  exact_pixel(air, 2, 500.0, seen, near_part);
  const double nothing[2] = {0.0, 0.0};
  exact_pixel(air, 2, infinity, nothing, sky);
  // 0.25 * (object * T + path) + 0.75 * sky; near_part holds object * T + path.
  for (int b = 0; b < 2; b++) {
    const double expected = 0.25 * near_part[b] + 0.75 * sky[b];
    EXPECT_NEAR(pixel(planes, b, 2), expected, 1e-6 * expected);
  }
}

TEST_F(AirImaging, SunDiscIsAddedUnattenuatedInUniformAirUpToTheCap) {
  // The sun straight up, the pixel a thousandth wide about it: all 25
  // sub-pixels fall in the disc (radius sqrt(2 * 6.76e-05 / 2 pi) = 0.0046).
  air_scene::set_sun(list, 3.1415926535, 0.0);
  view.set_grid(1, -0.0005, 0.0005, 1, -0.0005, 0.0005);
  TCAir_input input;
  air_scene::fill_input(input, 0, 0);
  input.sun_max_radiance = 1000.0;
  TCAir* air = new TCAir(input, &list);
  list.add_runtime_object(air);
  air->set_sun_values();
  Planes planes(2, 1);
  image(planes);
  // Band 1 is the brighter (1.8 / 6.76e-05): capped to 1000; band 2 scaled
  // alike, 1000 * 1.5 / 1.8.
  EXPECT_NEAR(pixel(planes, 0, 0), 1000.0, 1e-3);
  EXPECT_NEAR(pixel(planes, 1, 0), 1000.0 * 1.5 / 1.8, 1e-3);

  // No cap: the disc's own radiance, irradiance over the solid angle.
  air->sun_max_radiance = 99999999.0;
  image(planes);
  EXPECT_NEAR(pixel(planes, 0, 0), 1.8 / 6.76e-05, 1e-2);

  // Half covered: half of it; wholly covered: none.
  Patch_painter* object = new Patch_painter(0.5f, 0.0, 0.0, 10.0);
  list.add_runtime_object(object);
  image(planes);
  EXPECT_NEAR(pixel(planes, 1, 0), 0.5 * 1.5 / 6.76e-05, 1e-2);
  object->coverage = 1.0f;
  image(planes);
  EXPECT_EQ(pixel(planes, 1, 0), 0.0f);
}

TEST_F(AirImaging, SunDiscBelowAFlatHorizonIsNotDrawn) {
  // The sun straight down, the view straight down at it.
  air_scene::set_sun(list, 0.0, 0.0);
  view.set_pose(TCVector(0.0, 0.0, 10.0), 3.1415926535, 0.0, 0.0);
  view.set_grid(1, -0.0005, 0.0005, 1, -0.0005, 0.0005);
  uniform_air(0.0, 0.0)->set_sun_values();
  Planes planes(2, 1);
  image(planes);
  EXPECT_EQ(pixel(planes, 0, 0), 0.0f);
}

TEST_F(AirImaging, SunDiscIsDimmedByTheTransmissionAlongThePixel) {
  air_scene::set_sun(list, 3.1415926535, 0.0);
  view.set_grid(1, -0.0005, 0.0005, 1, -0.0005, 0.0005);
  TCAir* air = air_scene::add_air(list, 1, 0);
  Planes planes(2, 1);
  image(planes);
  TCRay centre;
  view.pixel_ray(0, 0, centre);
  TCSpectrum t = air_scene::two_bands();
  air->path_transmission(centre, t, 0.0, infinity);
  const double nothing[2] = {0.0, 0.0};
  double sky[2];
  exact_pixel(air, 0, infinity, nothing, sky);
  const double expected = sky[1] + 1.5 / 6.76e-05 * t.radiance_in_band[1];
  EXPECT_NEAR(pixel(planes, 1, 0), expected, 1e-6 * expected);
}

TEST_F(AirImaging, RoundAirWithTheExactFlagImagesEveryPixelExactly) {
  air_scene::set_sun(list, 2.0, 3.1415926535);
  TCAir* air = air_scene::add_air(list, 2, 1);
  // Without it the round base's pixels come from tables (air_table_test.cpp).
  air->external_exact = 1;
  // Looking 10 degrees above the horizon towards +x.
  view.set_pose(TCVector(0.0, 0.0, 10.0), 80.0 * 0.017453292519444445, 0.0, 0.0);
  view.set_grid(2, -0.01, 0.01, 2, -0.01, 0.01);
  Patch_painter* object = new Patch_painter(1.0f, 3.0, 3.0, 2000.0);
  object->only_col = 1;
  list.add_runtime_object(object);
  Planes planes(2, 4);
  image(planes);
  double expected[2];
  const double seen[2] = {3.0, 3.0};
  for (int row = 0; row < 2; row++) {
    for (int b = 0; b < 2; b++) {
      EXPECT_GT(pixel(planes, b, row * 2), 0.0f);
      EXPECT_TRUE(std::isfinite(pixel(planes, b, row * 2 + 1)));
    }
  }
  // Row 0, column 1: the object 2 km away.
  exact_pixel(air, 1, 2000.0, seen, expected);
  EXPECT_NEAR(pixel(planes, 0, 1), expected[0], 1e-5 * expected[0]);
  // 4 pixels, one sample each, 4 sub-rays a sample.
  EXPECT_EQ(air->exact_count, 16);
}

TEST_F(AirImaging, VerbosePrintsTheRadianceStatistics) {
  air_scene::set_sun(list, 2.5, 0.0);
  TCAir* air = air_scene::add_air(list, 1, 0);
  Patch_painter* half = new Patch_painter(0.5f, 1.0, 1.0, 10.0);
  half->only_col = 2;
  list.add_runtime_object(half);
  object_contour contour(1, 3, &spectrum, nullptr, 0.0f, 0, nullptr, nullptr);
  verbose = 1;
  Stream_capture out(std::cout);
  air->image_contour(view, contour);
  verbose = 0;
  // Sky, sky, and a half pixel of two samples: 4 samples of 4 sub-rays.
  EXPECT_EQ(out.text(),
            "radiance calculation statistics : \naux table  : 0\nmain table : 0\n"
            "exact      : 16\n");
}

TEST_F(AirImaging, MattesHoldPathRadianceTransmissionAndTheSceneWithoutAir) {
  uniform_air(3.0, 4.0);
  Patch_painter* object = new Patch_painter(1.0f, 5.0, 6.0, 20.0);
  object->only_col = 1;
  list.add_runtime_object(object);
  std::istringstream text(
      "use_mattes: 1\n"
      "  NObjects: 1\n"
      "    Object: scene\n"
      "      NMattes: 3\n"
      "        path_rad\n"
      "        transmission\n"
      "        no_air\n");
  TCMatte_input request;
  ASSERT_TRUE(request.read(text));
  request.object_indices[0] = 2;
  TCMatte_fields fields;
  fields.set_sizes(40, 2);
  fields.prepare(1, 3, 2, request);
  int path_plane = -1, through_plane = -1, no_air_plane = -1, count = 0;
  ASSERT_TRUE(fields.is_wanted(2, 14, path_plane, count));
  ASSERT_TRUE(fields.is_wanted(2, 2, through_plane, count));
  ASSERT_TRUE(fields.is_wanted(2, 16, no_air_plane, count));
  Planes planes(2, 3);
  object_contour contour(1, 3, &spectrum, planes.planes, 0.0f, 0, &fields, nullptr);
  list.image_scene(active, view, &spectrum, planes.planes, 0.0, &contour, 0);
  // Sky pixel 0: path = the sky, T = 1, nothing behind. Object pixel 1: no
  // path in uniform air, T = 1, the object's own radiance.
  EXPECT_EQ(fields.planes[2][path_plane][0], 3.0f);
  EXPECT_EQ(fields.planes[2][path_plane + 1][0], 4.0f);
  EXPECT_EQ(fields.planes[2][through_plane][0], 1.0f);
  EXPECT_EQ(fields.planes[2][no_air_plane][0], 0.0f);
  EXPECT_EQ(fields.planes[2][path_plane][1], 0.0f);
  EXPECT_EQ(fields.planes[2][no_air_plane][1], 5.0f);
  EXPECT_EQ(fields.planes[2][no_air_plane + 1][1], 6.0f);
}

}  // namespace
