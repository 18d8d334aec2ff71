// The surface layer shared by the height-field objects: its edge cases, the
// frames it answers heights in, the round surface's horizon angle, its
// tables, its sun and its height grid file. Expected values are worked out
// by hand in the comments, or come from surface_curvature_reference.py.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "../imaging/image_test_files.h"
#include "TCBand.h"
#include "TCData_file.h"
#include "TCGrid.h"
#include "TCHdf_image.h"
#include "TCRay.h"
#include "TCScene_tracer.h"
#include "TCSettings.h"
#include "TCSpectrum.h"
#include "TCStar.h"
#include "TCSurface_object.h"
#include "TCTexture_plane.h"
#include "TCTexture_plane_input.h"
#include "TCVector.h"
#include "quiet_scene_tracer.h"
#include "stream_capture.h"
#include "surface_test_objects.h"
#include "texture_test_pictures.h"

namespace {

void expect_vector(const TCVector& got, const TCVector& want, double tolerance) {
  EXPECT_NEAR(got.x, want.x, tolerance);
  EXPECT_NEAR(got.y, want.y, tolerance);
  EXPECT_NEAR(got.z, want.z, tolerance);
}

// A flat periodic sea at raw height 0 under a box 4 m deep and 1 m high:
// box centre z -1.5, z_offset 1.5, so the surface is at box z 1.5 and the
// box runs from -2.5 to 2.5.
struct Flat_sea {
  Flat_sea() : lattice(8, 8, 1.0, 1.0) {
    lattice.periodic_x = 1;
    lattice.periodic_y = 1;
    fill_flat(lattice, 0.0f);
    surface = new_surface(&lattice, 50.0, 50.0, 4.0, 1.0, 0.9);
  }
  TCGrid lattice;
  std::unique_ptr<TCSurface_object> surface;
};

TEST(SurfaceObject, RayStartingUnderTheSurfaceMeetsItAtDistanceZero) {
  Flat_sea sea;
  const TCVector up(0.6, 0.0, 0.8);
  const TCVector down(0.0, 0.6, -0.8);
  for (const TCVector& direction : {up, down}) {
    // Box frame: 1 m under the surface at box z 1.5.
    const TCRay ray(TCVector(3.0, -2.0, 0.5), direction);
    TCVector hit;
    double distance = 5.0;
    ASSERT_EQ(sea.surface->distance_to_surface(ray, hit, distance), 1);
    EXPECT_EQ(distance, 0.0);
    expect_vector(hit, ray.origin(), 0.0);

    // The same ray in the object frame, where the surface is at z = 0.
    const TCRay object_ray(TCVector(3.0, -2.0, -1.0), direction);
    distance = 5.0;
    ASSERT_GT(sea.surface->intersect(object_ray, hit, distance), 0);
    EXPECT_EQ(distance, 0.0);
    expect_vector(hit, object_ray.origin(), 1e-12);
  }
}

TEST(SurfaceObject, RayStartingInTheBoxAboveTheWaterMarchesFromItsOrigin) {
  Flat_sea sea;
  // Box frame, 0.5 m over the surface, straight down: the box is 4.5 m deep
  // below the origin, n = trunc(4.5 / 0.9) + 1 = 6 steps of 0.75 m.
  const TCRay ray(TCVector(1.0, 2.0, 2.0), TCVector(0.0, 0.0, -1.0));
  TCVector hit;
  double distance = -5.0;
  ASSERT_EQ(sea.surface->distance_to_surface(ray, hit, distance), 1);
  EXPECT_NEAR(distance, 0.5, 0.75 / 64);
  expect_vector(hit, TCVector(1.0, 2.0, 2.0 - distance), 1e-12);

  // In the object frame the surface is at z = 0.
  const TCRay object_ray(TCVector(1.0, 2.0, 0.5), TCVector(0.0, 0.0, -1.0));
  ASSERT_GT(sea.surface->intersect(object_ray, hit, distance), 0);
  EXPECT_NEAR(distance, 0.5, 0.75 / 64);
  EXPECT_NEAR(hit.z, 0.0, 0.75 / 64);
}

TEST(SurfaceObject, RayEnteringTheBoxUnderTheSurfaceMeetsItAtTheEntryPoint) {
  // A lattice open in x whose box ends with it: outside the lattice there is
  // no water, so a ray may start beside the box and enter it through a side
  // face below the surface.
  TCGrid lattice(20, 4, 1.0, 1.0);
  lattice.periodic_y = 1;
  lattice.offset_x = 10.0;
  fill_flat(lattice, 0.0f);
  std::unique_ptr<TCSurface_object> surface = new_surface(&lattice, 16.0, 50.0, 4.0, 1.0, 0.9);
  // Nodes from x = -10 to 9; box frame x face at 8, the origin 3 m beyond
  // it and 1 m under the level.
  const TCRay ray(TCVector(11.0, 0.0, 0.5), TCVector(-1.0, 0.0, 0.0));
  ASSERT_EQ(surface->inside(ray.origin()), 0);
  TCVector hit;
  double distance = -5.0;
  ASSERT_EQ(surface->distance_to_surface(ray, hit, distance), 1);
  expect_vector(hit, TCVector(8.0, 0.0, 0.5), 1e-9);
  // The distance is that of the hit it comes with.
  EXPECT_NEAR(distance, 3.0, 1e-9);
}

TEST(SurfaceObject, BoxEntryBeyondMaxDistanceIsNoHit) {
  Flat_sea sea;
  // A box 6 m high (4 below, 2 above): box z from -3 to 3, surface at box
  // z 1. Straight down from 5 m over the top: entry 5, surface at 7.
  sea.surface = new_surface(&sea.lattice, 50.0, 50.0, 4.0, 2.0, 0.9);
  const TCRay ray(TCVector(0.0, 0.0, 8.0), TCVector(0.0, 0.0, -1.0));
  TCVector hit;
  double distance = 0.0;

  sea.surface->max_distance = 5.0;  // entry not nearer than the limit
  EXPECT_EQ(sea.surface->distance_to_surface(ray, hit, distance), 0);
  EXPECT_EQ(distance, -1.0);
  sea.surface->max_distance = 4.0;
  EXPECT_EQ(sea.surface->distance_to_surface(ray, hit, distance), 0);
  EXPECT_EQ(distance, -1.0);

  // Entry within the limit but the surface beyond it: marched, not found.
  sea.surface->max_distance = 6.5;
  EXPECT_EQ(sea.surface->distance_to_surface(ray, hit, distance), 0);
  EXPECT_EQ(distance, 0.0);

  // Entry 5 to exit 11: n = trunc(6 / 0.9) + 1 = 7, step 6 / 7.
  sea.surface->max_distance = 99999999.0;
  ASSERT_EQ(sea.surface->distance_to_surface(ray, hit, distance), 1);
  EXPECT_NEAR(distance, 7.0, 6.0 / 7.0 / 64);
}

TEST(SurfaceObject, BoxThinnerThanATenthOfTheRayStepAlongTheRayIsNoHit) {
  TCGrid lattice(8, 8, 1.0, 1.0);
  lattice.periodic_x = 1;
  lattice.periodic_y = 1;
  fill_flat(lattice, 0.0f);
  std::unique_ptr<TCSurface_object> surface = new_surface(&lattice, 50.0, 50.0, 1.0, 1.0, 1.0);
  lattice.z_offset = 0.0;  // the surface at box z 0
  const TCRay ray(TCVector(0.0, 0.0, 1.0), TCVector(0.0, 0.0, -1.0));
  TCVector hit;
  double distance = 0.0;

  // 0.05 m of box along the ray, the lower half of it under water.
  surface->set_box(TCVector(50.0, 50.0, 0.05), TCVector(0.0, 0.0, 0.0));
  EXPECT_EQ(surface->distance_to_surface(ray, hit, distance), 0);
  EXPECT_EQ(distance, -1.0);
  // Even all of it under water.
  lattice.z_offset = 1.0;
  EXPECT_EQ(surface->distance_to_surface(ray, hit, distance), 0);
  lattice.z_offset = 0.0;

  // 0.3 m of box: one step of 0.3 from 0.85 to 1.15, the surface at 1.
  surface->set_box(TCVector(50.0, 50.0, 0.3), TCVector(0.0, 0.0, 0.0));
  ASSERT_EQ(surface->distance_to_surface(ray, hit, distance), 1);
  EXPECT_NEAR(distance, 1.0, 0.3 / 64);
}

TEST(SurfaceObject, IsRoundIsFalseOnlyForTheWordFlat) {
  Flat_sea sea;
  EXPECT_FALSE(sea.surface->is_round("flat"));
  EXPECT_TRUE(sea.surface->is_round("round"));
  EXPECT_TRUE(sea.surface->is_round(""));
  EXPECT_TRUE(sea.surface->is_round("Flat"));
  EXPECT_TRUE(sea.surface->is_round("flat "));
  EXPECT_TRUE(sea.surface->is_round("flatter"));
}

// A 10 m square texture of one band whose every byte is 100, mapped so that
// byte b is radiance b.
struct Uniform_texture {
  Uniform_texture() : name(scratch_file("surface_uniform")) {
    write_uniform_picture(name, 8, 8, {100});
    TCTexture_plane_input input;
    input.width = 10.0;
    input.height = 10.0;
    const double low = 0.0, high = 255.0;
    input.set_above(1, &low, &high);
    copy_text(input.picture_file, name.c_str(), 256);
    const int saved = verbose;
    verbose = 0;
    plane.reset(new TCTexture_plane(input));
    verbose = saved;
  }
  ~Uniform_texture() { std::remove(name.c_str()); }
  std::string name;
  std::unique_ptr<TCTexture_plane> plane;
};

TEST(SurfaceObject, PolygonOfMoreThanFourHundredPointsIsRefused) {
  Uniform_texture texture;
  ASSERT_TRUE(texture.plane->loaded);
  Flat_sea sea;
  std::vector<double> xs(401), ys(401);
  for (int k = 0; k < 401; k++) {
    xs[k] = -2.0 + 0.01 * k;
    ys[k] = 1.0 - 0.005 * k;
  }
  double out = -7.0;
  {
    Stream_capture capture(std::cout);
    EXPECT_EQ(sea.surface->radiance_texture_surface(*texture.plane, 401, xs.data(), ys.data(), 0.5,
                                                    1, &out),
              0);
    EXPECT_EQ(capture.text(), "Error in radiance_texture_surface: too many points: 401\n");
  }
  EXPECT_EQ(out, -7.0);

  Stream_capture capture(std::cout);
  EXPECT_EQ(sea.surface->radiance_texture_surface(*texture.plane, 400, xs.data(), ys.data(), 0.5, 1,
                                                  &out),
            1);
  EXPECT_EQ(capture.text(), "");
  EXPECT_NEAR(out, 100.0, 1e-9);
}

// A 4 by 4 periodic lattice 2 m apart holding h = 0.5 i - 0.25 j, world
// (0, 0) at node (2, 2); linear, so the bilinear lookup is exact:
// h(x, y) = 0.5 (x + 4) / 2 - 0.25 (y + 4) / 2.
struct Ramp_sea {
  Ramp_sea() : lattice(4, 4, 2.0, 2.0) {
    lattice.periodic_x = 1;
    lattice.periodic_y = 1;
    lattice.offset_x = 4.0;
    lattice.offset_y = 4.0;
    for (int j = 0; j < 4; j++) {
      for (int i = 0; i < 4; i++)
        lattice.height[i + 4 * j] = static_cast<float>(0.5 * i - 0.25 * j);
    }
    // 10 m deep, 3 m high: box centre z -3.5, z_offset 3.5.
    surface = new_surface(&lattice, 100.0, 100.0, 10.0, 3.0, 1.8);
    surface->set_position(TCVector(5.0, -3.0, 2.0), 0.0, 0.0, 0.0);
  }
  TCGrid lattice;
  std::unique_ptr<TCSurface_object> surface;
};

TEST(SurfaceObject, PointHeightIsTheRawHeightAndTheObjectFrameZ) {
  Ramp_sea sea;
  ASSERT_EQ(sea.lattice.z_offset, 3.5);
  // World (6, -2, 2.7) is object (1, 1, 0.7): u = v = 2.5 nodes,
  // h = 1.25 - 0.625 = 0.625.
  double z = 0.0;
  EXPECT_NEAR(sea.surface->point_height(TCVector(6.0, -2.0, 2.7), z), 0.625, 1e-12);
  EXPECT_NEAR(z, 0.7, 1e-12);
  // World (4, -4.5, -1) is object (-1, -1.5, -3): u = 1.5, v = 1.25,
  // h = 0.75 - 0.3125.
  EXPECT_NEAR(sea.surface->point_height(TCVector(4.0, -4.5, -1.0), z), 0.4375, 1e-12);
  EXPECT_NEAR(z, -3.0, 1e-12);
}

TEST(SurfaceObject, ProjectToSurfaceTakesTheBoxFrameHeight) {
  Ramp_sea sea;
  // Box (1, 1, -7): the surface at raw 0.625 is box z 0.625 + 3.5.
  TCVector out;
  sea.surface->project_to_surface(TCVector(1.0, 1.0, -7.0), out);
  expect_vector(out, TCVector(1.0, 1.0, 4.125), 1e-12);
  // Moved onto the surface it is in the water only just below.
  EXPECT_FALSE(sea.surface->inside(out));
  EXPECT_TRUE(sea.surface->inside(out - TCVector(0.0, 0.0, 1e-9)));
}

TEST(SurfaceObject, RawHeightZeroLiesAtObjectZZero) {
  Ramp_sea sea;
  fill_flat(sea.lattice, 0.0f);
  double z = 5.0;
  // World z 2 is object z 0.
  EXPECT_EQ(sea.surface->point_height(TCVector(-7.0, 11.0, 2.0), z), 0.0);
  EXPECT_NEAR(z, 0.0, 1e-12);
  EXPECT_TRUE(sea.surface->point_inside_world(TCVector(-7.0, 11.0, 1.999)));
  EXPECT_FALSE(sea.surface->point_inside_world(TCVector(-7.0, 11.0, 2.001)));
  EXPECT_TRUE(sea.surface->point_inside(TCVector(0.0, 0.0, -0.001)));
  EXPECT_FALSE(sea.surface->point_inside(TCVector(0.0, 0.0, 0.001)));
}

TEST(SurfaceObject, CurvatureAngleIsZeroOnAFlatSurface) {
  Flat_sea sea;
  const TCRay ray(TCVector(0.0, 0.0, 11.5), TCVector(0.6, 0.0, -0.8));
  EXPECT_EQ(sea.surface->curvature_angle(ray, 0.0), 0.0);
  EXPECT_EQ(sea.surface->curvature_angle(ray, 1.2), 0.0);
}

TEST(SurfaceObject, CurvatureAngleOfARoundSurfaceFollowsTheSphere) {
  Flat_sea sea;
  sea.lattice.round_flag = 1;
  sea.lattice.radius = 6.371e6;
  // 10 m over the mean level: box z 10 + z_offset 1.5. Values from
  // surface_curvature_reference.py.
  const TCRay down(TCVector(0.0, 0.0, 11.5), TCVector(0.0, 0.0, -1.0));
  // b = 0: the dip of the horizon, acos(R / (R + h)), less the difference
  // between 1.57079632675 and half pi.
  EXPECT_NEAR(sea.surface->curvature_angle(down, 0.7), 0.0017717845987823555, 1e-12);
  EXPECT_NEAR(std::acos(6.371e6 / (6.371e6 + 10.0)), 0.0017717845538964309, 1e-15);

  const TCRay slant(TCVector(0.0, 0.0, 11.5), TCVector(0.6, 0.0, -0.8));
  EXPECT_NEAR(sea.surface->curvature_angle(slant, 0.0), 0.0017716904220439478, 1e-12);
  // Looking back along the same line: b = -0.6, s = -1.
  EXPECT_NEAR(sea.surface->curvature_angle(slant, 3.1415926535), 0.0017716904220439478, 1e-12);

  const TCRay level(TCVector(0.0, 0.0, 11.5), TCVector(0.28, 0.96, 0.0));
  EXPECT_NEAR(sea.surface->curvature_angle(level, 1.0), 0.0017716340577698109, 1e-12);
}

TEST(SurfaceObjectDeathTest, AllocatingArraysWithoutASpectrumEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Flat_sea sea;
        sea.surface->allocate_surface_arrays();
      },
      ::testing::ExitedWithCode(1),
      "^can not allocate surface arrays since \nobjects_spectrum has not yet been set\n$");
}

TEST(SurfaceObject, AllocatingArraysSetsTheTableAxes) {
  Flat_sea sea;
  sea.surface->object_spectrum = new TCSpectrum(3);
  sea.surface->allocate_surface_arrays();
  EXPECT_EQ(sea.surface->n_bands, 3);
  EXPECT_NE(sea.surface->band_radiance, nullptr);
  EXPECT_NE(sea.surface->external_radiance, nullptr);
  EXPECT_NE(sea.surface->external_radiance_mean, nullptr);
  EXPECT_NE(sea.surface->sun_irradiance, nullptr);
  // Cosine -1 to 1 in 201 values: 0.01 apart.
  EXPECT_EQ(sea.surface->fresnel_axis_n, 201);
  EXPECT_EQ(sea.surface->fresnel_first, -1.0);
  EXPECT_EQ(sea.surface->fresnel_last, 1.0);
  EXPECT_NEAR(sea.surface->fresnel_step, 0.01, 1e-15);
  EXPECT_NEAR(sea.surface->fresnel_inverse_step, 100.0, 1e-11);
  // Azimuth -3.1415926535 to 3.1415926535 in 91 values: 6.283185307 / 90
  // apart.
  EXPECT_EQ(sea.surface->azimuth_axis_n, 91);
  EXPECT_EQ(sea.surface->azimuth_first, -3.1415926535);
  EXPECT_EQ(sea.surface->azimuth_last, 3.1415926535);
  EXPECT_NEAR(sea.surface->azimuth_step, 0.069813170077777778, 1e-15);
  EXPECT_NEAR(sea.surface->azimuth_inverse_step, 14.323944878679988, 1e-11);
  for (int k = 0; k < 3; k++) EXPECT_EQ(sea.surface->sun_irradiance[k], 0.0f);
}

// A scene that has nothing but a sun, or none.
class Sun_only_tracer : public Quiet_scene_tracer {
 public:
  explicit Sun_only_tracer(const TCStar* sun_in) : sun(sun_in) {}
  const TCStar* star() const override { return sun; }

 private:
  const TCStar* sun;
};

// Bands 3, 7 and 9; the star knows 7, 3 and 5.
struct Sunlit_sea : Flat_sea {
  Sunlit_sea() {
    TCSpectrum* bands = new TCSpectrum(3);
    bands->band_id[0] = 3;
    bands->band_id[1] = 7;
    bands->band_id[2] = 9;
    surface->object_spectrum = bands;
    surface->allocate_surface_arrays();
    TCSpectrum light(3);
    light.band_id[0] = 7;
    light.band_id[1] = 3;
    light.band_id[2] = 5;
    light.radiance_in_band[0] = 70.5;
    light.radiance_in_band[1] = 30.25;
    light.radiance_in_band[2] = 50.0;
    sun.irradiance = light;
  }
  // A sun the last update left behind, so that the next must undo it.
  void leave_a_sun() {
    for (int b = 0; b < 3; b++) surface->sun_irradiance[b] = 5.0f;
    surface->sun_on = 1;
    surface->sun_zenith = 0.3;
    surface->sun_direction = TCVector(0.6, 0.0, -0.8);
    surface->sun_direction_local = TCVector(0.6, 0.0, -0.8);
  }
  void expect_no_sun() {
    for (int b = 0; b < 3; b++) EXPECT_EQ(surface->sun_irradiance[b], 0.0f) << b;
    EXPECT_EQ(surface->sun_on, 0);
    EXPECT_EQ(surface->sun_zenith, 9.42477796);
    expect_vector(surface->sun_direction, TCVector(0.0, 0.0, -1.0), 0.0);
    expect_vector(surface->sun_direction_local, TCVector(0.0, 0.0, -1.0), 0.0);
  }
  TCStar sun;
};

TEST(SurfaceObject, SunUpdateWithoutAStarLightsNothing) {
  Sunlit_sea sea;
  sea.leave_a_sun();
  sea.surface->update_sun(nullptr);
  sea.expect_no_sun();

  Sun_only_tracer empty(nullptr);
  sea.leave_a_sun();
  sea.surface->update_sun(&empty);
  sea.expect_no_sun();
}

TEST(SurfaceObject, SunUpdateWithAStarThatIsNotPresentLightsNothing) {
  Sunlit_sea sea;
  sea.sun.zenith = 0.6;
  sea.sun.azimuth = 2.0;
  sea.sun.present = 0;
  Sun_only_tracer scene(&sea.sun);
  sea.leave_a_sun();
  sea.surface->update_sun(&scene);
  sea.expect_no_sun();
}

TEST(SurfaceObject, SunUpdateTakesEachBandByIdAndPointsTheLightDown) {
  Sunlit_sea sea;
  sea.sun.set_angles(0.6, 2.0);
  ASSERT_TRUE(sea.sun.present);
  Sun_only_tracer scene(&sea.sun);
  sea.leave_a_sun();
  sea.surface->update_sun(&scene);
  EXPECT_EQ(sea.surface->sun_on, 1);
  // Band 3 is the star's second, 7 its first, 9 it does not have.
  EXPECT_EQ(sea.surface->sun_irradiance[0], 30.25f);
  EXPECT_EQ(sea.surface->sun_irradiance[1], 70.5f);
  EXPECT_EQ(sea.surface->sun_irradiance[2], 0.0f);
  EXPECT_EQ(sea.surface->sun_zenith, 0.6);
  EXPECT_EQ(sea.surface->sun_azimuth, 2.0);
  // -(sin z cos a, sin z sin a, cos z): sin 0.6 = 0.5646424734,
  // cos 0.6 = 0.8253356149, cos 2 = -0.4161468365, sin 2 = 0.9092974268.
  const TCVector light(0.5646424734 * 0.4161468365, -0.5646424734 * 0.9092974268, -0.8253356149);
  expect_vector(sea.surface->sun_direction, light, 1e-10);
  // The object is not turned: the same in its own frame.
  expect_vector(sea.surface->sun_direction_local, light, 1e-10);
}

TEST(SurfaceObject, HeightGridHoldsTheSurfaceOverTheMeanLevel) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  // 4 by 4 periodic nodes 1 m apart holding h = u + 10 v, world (0, 0) at
  // the middle, under a box whose z_offset is 1.5.
  TCGrid lattice(4, 4, 1.0, 1.0);
  lattice.periodic_x = 1;
  lattice.periodic_y = 1;
  lattice.offset_x = 2.0;
  lattice.offset_y = 2.0;
  for (int j = 0; j < 4; j++) {
    for (int i = 0; i < 4; i++) lattice.height[i + 4 * j] = static_cast<float>(i + 10 * j);
  }
  const std::string name = folder.file("sea");
  std::unique_ptr<TCSurface_object> surface =
      new_surface(&lattice, 100.0, 100.0, 4.0, 1.0, 0.9, name.c_str());
  ASSERT_EQ(lattice.z_offset, 1.5);
  const std::string definition = folder.file("sea.def");
  {
    std::ofstream out(definition.c_str());
    out << "center_x 0.5\ncenter_y -0.5\nn_points_x 3\nspacing_x 0.5\n"
        << "n_points_y 2\nspacing_y 1.25\n";
  }
  ASSERT_EQ(surface->write_height_grid(definition.c_str(), "4"), 1);
  // x from 0.5 - 3 * 0.5 * 0.5 = -0.25 by 0.5, y from -0.5 - 2 * 0.5 * 1.25
  // = -1.75 by 1.25: u = 1.75, 2.25, 2.75 and v = 0.25, 1.5; h = u + 10 v
  // over the object's z = 0, y running fastest.
  const float expected[6] = {4.25f, 16.75f, 4.75f, 17.25f, 5.25f, 17.75f};
  const int dims[2] = {3, 2};
  float values[6] = {0};
  ASSERT_EQ(hdf_read_plane((name + "_grid.4.img").c_str(), 0, values, dims), 1);
  for (int k = 0; k < 6; k++) EXPECT_EQ(values[k], expected[k]) << k;
  // The box frame the lattice answers in is left as it was.
  EXPECT_EQ(lattice.z_offset, 1.5);
}

TEST(SurfaceObject, HeightGridOfARoundSurfaceIncludesTheDrop) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  TCGrid lattice(4, 4, 1.0, 1.0);
  lattice.periodic_x = 1;
  lattice.periodic_y = 1;
  fill_flat(lattice, 0.25f);
  lattice.round_flag = 1;
  lattice.radius = 1000.0;
  const std::string name = folder.file("round");
  std::unique_ptr<TCSurface_object> surface =
      new_surface(&lattice, 100.0, 100.0, 4.0, 1.0, 0.9, name.c_str());
  const std::string definition = folder.file("round.def");
  {
    std::ofstream out(definition.c_str());
    out << "cx 30.0 cy 0.0 nx 2 sx 20.0 ny 1 sy 0.0";
  }
  ASSERT_EQ(surface->write_height_grid(definition.c_str(), "1"), 1);
  // x = 30 - 2 * 0.5 * 20 = 10 and 30, y = 0: 0.25 - x^2 / 2000.
  const int dims[2] = {2, 1};
  float values[2] = {0};
  ASSERT_EQ(hdf_read_plane((name + "_grid.1.img").c_str(), 0, values, dims), 1);
  EXPECT_EQ(values[0], 0.2f);
  EXPECT_EQ(values[1], -0.2f);
}

}  // namespace
