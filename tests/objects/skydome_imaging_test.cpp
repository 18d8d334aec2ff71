#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Skydome_input.h"
#include "TCConstants.h"
#include "TCObject_list.h"
#include "TCSettings.h"
#include "TCSkydome.h"
#include "TCSpectrum.h"
#include "TCView.h"
#include "band_planes.h"
#include "object_contour.h"
#include "scratch_folder.h"
#include "stream_capture.h"
#include "texture_test_pictures.h"

// Expected radiances are worked out by hand in the comments from the texture
// plane's rules; the masks of the tilted camera come from
// skydome_reference.py.

namespace {

// Three bands, ids 1 2 3, bytes 100 50 200, ranges 2..257, 0..255, 10..520:
// steps of 1, 1 and 2 per count. The grid average adds the minimum before
// the byte is mapped, and the mapping adds it again, so the sky is
// 1 * (100 + 2) + 2 = 104, 1 * (50 + 0) + 0 = 50 and 2 * (200 + 10) + 10 = 430.
const double sky[3] = {104.0, 50.0, 430.0};

std::string dome_text(const std::string& file, int imaging_method, double horizon_degrees,
                      const char* animation, int alpha) {
  std::ostringstream text;
  text << "Tidecast_data_file skydome 4 4\n"
       << "dome_radius: 1000\n"
       << "number_of_bands: 3\n"
       << "band_id: 1 2 3\n"
       << "dome_file: " << file << "\n"
       << "horizon_angle: " << horizon_degrees << "\n"
       << "animation: " << animation << "\n"
       << "alpha_channel: " << alpha << "\n"
       << "min_radiance: 2 0 10\n"
       << "max_radiance: 257 255 520\n"
       << "imaging_method: " << imaging_method << "\n"
       << "end\n";
  return text.str();
}

class SkydomeImaging : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_verbose_ = verbose;
    verbose = 0;
    sky_file = folder.file("sky.rgb");
    write_uniform_picture(sky_file, 4, 4, {100, 50, 200});
  }
  void TearDown() override { verbose = saved_verbose_; }

  // A dome from a file's text; the caller owns it.
  static TCSkydome* dome_from(const std::string& text) {
    Skydome_input input;
    std::istringstream in(text);
    EXPECT_EQ(input.read_stream(in), 1);
    return new TCSkydome(input);
  }

  // The list's main pass over view with the dome alone, bands of camera.
  void image(TCSkydome* dome, TCView& view, TCSpectrum& camera, Planes& out) {
    ASSERT_EQ(list.add_runtime_object(dome), 1);
    int active[100];
    for (int i = 0; i < 100; i++) active[i] = 1;
    list.image_scene(active, view, &camera, out.planes, 0.0, nullptr, 1);
  }

  Scratch_folder folder;
  std::string sky_file;
  TCObject_list list;

 private:
  int saved_verbose_ = 1;
};

// Looking straight up, from the dome's centre.
TCView zenith_view(int rows, int cols) {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 0.0), 0.0, 0.0, 0.0);
  view.set_grid(rows, -0.3, 0.3, cols, -0.4, 0.4);
  return view;
}

// A view whose image plane looks along world +x with elevation e on world +z
// exactly: the ray through (e, a) is (1, -a, e) / sqrt(1 + a a + e e), so a
// sample at e = 0 lies exactly on the horizon.
TCView horizontal_view(double first_e, double last_e) {
  TCView view;
  view.set_grid(1, first_e, last_e, 1, -0.5, 0.5);
  const double to_view[9] = {0, 0, -1, 0, 1, 0, 1, 0, 0};
  for (int k = 0; k < 9; k++) view.world_to_view.m[k] = to_view[k];
  view.object_to_world = view.world_to_view.transpose();
  return view;
}

TEST_F(SkydomeImaging, UniformDomeGivesTheMappedValueInEveryPixelAboveTheHorizon) {
  TCView view = zenith_view(3, 4);
  TCSpectrum camera(3);
  Planes out(3, 12);
  image(dome_from(dome_text(sky_file, 2, 0.0, "no", 0)), view, camera, out);
  for (int k = 0; k < 12; k++)
    for (int b = 0; b < 3; b++) EXPECT_FLOAT_EQ(out.planes[b][k], sky[b]) << k << " " << b;
}

TEST_F(SkydomeImaging, RaysTowardsTheNadirAreMappedButNeverPainted) {
  TCView view = zenith_view(3, 4);
  view.set_pose(TCVector(0.0, 0.0, 0.0), tc_pi, 0.0, 0.0);  // straight down
  TCSpectrum camera(3);
  Planes out(3, 12);
  TCSkydome* dome = dome_from(dome_text(sky_file, 2, 0.0, "no", 0));
  image(dome, view, camera, out);
  for (int k = 0; k < 12; k++)
    for (int b = 0; b < 3; b++) EXPECT_EQ(out.planes[b][k], 0.0f) << k << " " << b;
  // The fold through |z| still gives the lookup a position in the square.
  EXPECT_LE(dome->sample_u[0][0], 0.5);
  EXPECT_GE(dome->sample_u[0][0], -0.5);
}

// From skydome_reference.py: camera at chi 85, phi 30, theta 20 degrees,
// 12 rows over elevation -0.3..0.3, 16 columns over azimuth -0.4..0.4.
const char* const two_by_two_mask[12] = {
    "0000000000000000", "1100000000000000", "1111000000000000", "1111111000000000",
    "1111111111000000", "1111111111111000", "1111111111111110", "1111111111111111",
    "1111111111111111", "1111111111111111", "1111111111111111", "1111111111111111"};
const char* const four_by_four_mask[12] = {
    "0000000000000000", "1100000000000000", "1111100000000000", "1111111100000000",
    "1111111111000000", "1111111111111000", "1111111111111111", "1111111111111111",
    "1111111111111111", "1111111111111111", "1111111111111111", "1111111111111111"};
const char* const four_degree_horizon_mask[12] = {
    "1111000000000000", "1111110000000000", "1111111110000000", "1111111111110000",
    "1111111111111110", "1111111111111111", "1111111111111111", "1111111111111111",
    "1111111111111111", "1111111111111111", "1111111111111111", "1111111111111111"};

struct Tilted_case {
  int imaging_method;
  double horizon_degrees;
  const char* const* mask;
};

TEST_F(SkydomeImaging, TiltedCameraShowsTheDomeWhereAnySampleRayIsAboveTheHorizon) {
  const Tilted_case cases[] = {
      {0, 0.0, two_by_two_mask}, {2, 0.0, four_by_four_mask}, {2, 4.0, four_degree_horizon_mask}};
  for (const Tilted_case& c : cases) {
    TCObject_list own_list;
    TCView view;
    view.set_pose(TCVector(0.0, 0.0, 0.0), 85.0 * tc_degrees_to_radians,
                  30.0 * tc_degrees_to_radians, 20.0 * tc_degrees_to_radians);
    view.set_grid(12, -0.3, 0.3, 16, -0.4, 0.4);
    view.anti_alias = 0;
    TCSpectrum camera(3);
    Planes out(3, 12 * 16);
    ASSERT_EQ(own_list.add_runtime_object(
                  dome_from(dome_text(sky_file, c.imaging_method, c.horizon_degrees, "no", 0))),
              1);
    int active[100];
    for (int i = 0; i < 100; i++) active[i] = 1;
    own_list.image_scene(active, view, &camera, out.planes, 0.0, nullptr, 1);
    for (int row = 0; row < 12; row++) {
      for (int col = 0; col < 16; col++) {
        const float want = c.mask[row][col] == '1' ? static_cast<float>(sky[0]) : 0.0f;
        EXPECT_FLOAT_EQ(out.planes[0][row * 16 + col], want)
            << "method " << c.imaging_method << " horizon " << c.horizon_degrees << " row " << row
            << " col " << col;
      }
    }
  }
}

TEST_F(SkydomeImaging, PixelWhoseHighestSampleLiesExactlyOnTheHorizonIsNotPainted) {
  // Four by four samples at -0.875 + (i + 0.5) / 4: -0.75, -0.5, -0.25 and 0.
  TCSkydome* dome = dome_from(dome_text(sky_file, 2, 0.0, "no", 0));
  TCView view = horizontal_view(-0.875, 0.125);
  TCSpectrum camera(3);
  Planes out(3, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  dome->image_contour(view, contour);
  EXPECT_EQ(contour.layer_coverage[0][0], 0.0f);
  EXPECT_EQ(contour.layer_radiance[0][0][0], 0.0f);
  delete dome;
}

TEST_F(SkydomeImaging, TwoByTwoSamplesOnTheHorizonDoNotPaintEither) {
  // Samples at -0.75 + (i + 0.5) / 2: -0.5 and 0.
  TCSkydome* dome = dome_from(dome_text(sky_file, 0, 0.0, "no", 0));
  TCView view = horizontal_view(-0.75, 0.25);
  view.anti_alias = 0;
  TCSpectrum camera(3);
  Planes out(3, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  dome->image_contour(view, contour);
  EXPECT_EQ(contour.layer_coverage[0][0], 0.0f);
  delete dome;
}

TEST_F(SkydomeImaging, OneSampleAboveTheHorizonPaintsThePixelWhole) {
  // Samples at -0.625, -0.375, -0.125 and 0.125: one row above.
  TCSkydome* dome = dome_from(dome_text(sky_file, 2, 0.0, "no", 0));
  TCView view = horizontal_view(-0.75, 0.25);
  TCSpectrum camera(3);
  Planes out(3, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  dome->image_contour(view, contour);
  EXPECT_EQ(contour.layer_coverage[0][0], 1.0f);
  for (int b = 0; b < 3; b++) EXPECT_FLOAT_EQ(contour.layer_radiance[b][0][0], sky[b]) << b;
  // Entered at the square of the 1000 m radius.
  EXPECT_FLOAT_EQ(contour.layer_distance[0][0], 1e6f);
  delete dome;
}

TEST_F(SkydomeImaging, FourBandCameraGetsZeroInTheBandTheDomeLacks) {
  TCView view = zenith_view(2, 2);
  TCSpectrum camera(4);
  // Camera bands by id 3, 1, 4, 2: the dome has ids 1, 2, 3.
  const int ids[4] = {3, 1, 4, 2};
  for (int b = 0; b < 4; b++) camera.band_id[b] = ids[b];
  Planes out(4, 4);
  image(dome_from(dome_text(sky_file, 2, 0.0, "no", 0)), view, camera, out);
  for (int k = 0; k < 4; k++) {
    EXPECT_FLOAT_EQ(out.planes[0][k], sky[2]) << k;
    EXPECT_FLOAT_EQ(out.planes[1][k], sky[0]) << k;
    EXPECT_EQ(out.planes[2][k], 0.0f) << k;
    EXPECT_FLOAT_EQ(out.planes[3][k], sky[1]) << k;
  }
}

// The alpha channel holds 51 counts: 51 / 255 = 0.2 on its fixed 0..1 range
// (its minimum 0 adds nothing, however often it is added).
class SkydomeAlpha : public SkydomeImaging {
 protected:
  void SetUp() override {
    SkydomeImaging::SetUp();
    alpha_file = folder.file("alpha_sky.rgb");
    write_uniform_picture(alpha_file, 4, 4, {100, 50, 200, 51});
  }
  std::string alpha_file;
};

TEST_F(SkydomeAlpha, AlphaTwoScalesBothTheCoverageAndTheRadiance) {
  TCSkydome* dome = dome_from(dome_text(alpha_file, 2, 0.0, "no", 2));
  TCView view = zenith_view(1, 1);
  TCSpectrum camera(3);
  Planes out(3, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  dome->image_contour(view, contour);
  EXPECT_FLOAT_EQ(contour.layer_coverage[0][0], 0.2f);
  for (int b = 0; b < 3; b++) EXPECT_FLOAT_EQ(contour.layer_radiance[b][0][0], 0.2 * sky[b]) << b;
  delete dome;
}

TEST_F(SkydomeAlpha, AlphaOneScalesOnlyTheCoverage) {
  TCSkydome* dome = dome_from(dome_text(alpha_file, 2, 0.0, "no", 1));
  TCView view = zenith_view(1, 1);
  TCSpectrum camera(3);
  Planes out(3, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  dome->image_contour(view, contour);
  EXPECT_FLOAT_EQ(contour.layer_coverage[0][0], 0.2f);
  for (int b = 0; b < 3; b++) EXPECT_FLOAT_EQ(contour.layer_radiance[b][0][0], sky[b]) << b;
  delete dome;
}

TEST_F(SkydomeAlpha, AlphaBandIsNeverReturnedAsRadiance) {
  TCView view = zenith_view(2, 2);
  TCSpectrum camera(4);  // ids 1 to 4; the alpha band would come fourth
  Planes out(4, 4);
  image(dome_from(dome_text(alpha_file, 2, 0.0, "no", 2)), view, camera, out);
  for (int k = 0; k < 4; k++) {
    EXPECT_EQ(out.planes[3][k], 0.0f) << k;
    EXPECT_FLOAT_EQ(out.planes[0][k], 0.2 * sky[0]) << k;
  }
}

TEST_F(SkydomeImaging, ImagingMethodOneSkipsAntiAliasedViewsOnly) {
  TCSkydome* dome = dome_from(dome_text(sky_file, 1, 0.0, "no", 0));
  TCView view = zenith_view(1, 1);
  TCSpectrum camera(3);
  Planes out(3, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  view.anti_alias = 1;
  dome->image_contour(view, contour);
  EXPECT_EQ(contour.layer_coverage[0][0], 0.0f);
  view.anti_alias = 0;
  dome->image_contour(view, contour);
  EXPECT_EQ(contour.layer_coverage[0][0], 1.0f);
  EXPECT_FLOAT_EQ(contour.layer_radiance[0][0][0], sky[0]);
  // Below imaging method 2 the samples are 2 by 2.
  EXPECT_EQ(dome->samples_x, 2);
  EXPECT_EQ(dome->samples_y, 2);
  delete dome;
}

TEST_F(SkydomeImaging, DomeIsHiddenBehindANearerSample) {
  TCSkydome* dome = dome_from(dome_text(sky_file, 2, 0.0, "no", 0));
  TCView view = zenith_view(1, 1);
  TCSpectrum camera(3);
  Planes out(3, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  // Something opaque already stands at 10 (squared distance) in the pixel.
  contour.total_coverage[0][0] = 1.0f;
  contour.total_distance[0][0] = 10.0f;
  dome->image_contour(view, contour);
  EXPECT_EQ(contour.layer_coverage[0][0], 0.0f);
  delete dome;
}

TEST_F(SkydomeImaging, StillPictureThatFailsToLoadLeavesTheDomeDark) {
  Stream_capture out(std::cout);
  TCSkydome* dome = dome_from(dome_text(folder.file("missing.rgb"), 2, 0.0, "no", 0));
  EXPECT_NE(out.text().find("unable to allocate texture map\n"), std::string::npos) << out.text();
  EXPECT_EQ(dome->texture_off, 1);
  TCView view = zenith_view(1, 1);
  TCSpectrum camera(3);
  Planes planes(3, 1);
  object_contour contour(1, 1, &camera, planes.planes, 0.0f, 0, nullptr, nullptr);
  dome->image_contour(view, contour);
  EXPECT_EQ(contour.layer_coverage[0][0], 0.0f);
  delete dome;
}

TEST_F(SkydomeImaging, TimeAnimationEndsTheRun) {
  const std::string text = dome_text(sky_file, 2, 0.0, "time", 0);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCSkydome* dome = dome_from(text);
        delete dome;
      },
      ::testing::ExitedWithCode(1), "time based animation not yet implemented ");
}

TEST_F(SkydomeImaging, FramesAnimationLoadsThePictureOfTheListsFrame) {
  write_uniform_picture(folder.file("anim.0007.rgb"), 2, 2, {100, 50, 200});
  write_uniform_picture(folder.file("anim.0012.rgb"), 2, 2, {10, 20, 30});
  TCSkydome* dome = dome_from(dome_text(folder.file("anim"), 2, 0.0, "frames", 0));
  ASSERT_EQ(list.add_runtime_object(dome), 1);
  TCView view = zenith_view(1, 1);
  TCSpectrum camera(3);
  int active[100];
  for (int i = 0; i < 100; i++) active[i] = 1;

  // Nothing to show before the first frame's time is set.
  EXPECT_EQ(dome->texture_off, 1);
  Planes before(3, 1);
  list.image_scene(active, view, &camera, before.planes, 0.0, nullptr, 1);
  EXPECT_EQ(before.planes[0][0], 0.0f);

  verbose = 1;
  list.current_frame = 7;
  {
    Stream_capture out(std::cout);
    dome->set_time(0.25);
    EXPECT_NE(out.text().find("skydome texture set to " + folder.file("anim.0007.rgb") + "\n"),
              std::string::npos)
        << out.text();
  }
  EXPECT_EQ(dome->texture_off, 0);
  EXPECT_DOUBLE_EQ(dome->get_time(), 0.25);
  Planes seventh(3, 1);
  list.image_scene(active, view, &camera, seventh.planes, 0.0, nullptr, 1);
  for (int b = 0; b < 3; b++) EXPECT_FLOAT_EQ(seventh.planes[b][0], sky[b]) << b;

  // Bytes 10 20 30: 1 * (10 + 2) + 2 = 14, 20, 2 * (30 + 10) + 10 = 90.
  verbose = 0;
  list.current_frame = 12;
  {
    Stream_capture out(std::cout);
    dome->set_time(0.5);
    EXPECT_EQ(out.text().find("skydome texture set to"), std::string::npos) << out.text();
  }
  Planes twelfth(3, 1);
  list.image_scene(active, view, &camera, twelfth.planes, 0.0, nullptr, 1);
  EXPECT_FLOAT_EQ(twelfth.planes[0][0], 14.0f);
  EXPECT_FLOAT_EQ(twelfth.planes[1][0], 20.0f);
  EXPECT_FLOAT_EQ(twelfth.planes[2][0], 90.0f);
}

TEST_F(SkydomeImaging, MissingFrameEndsTheRunWithStatus1912) {
  const std::string text = dome_text(folder.file("anim"), 2, 0.0, "frames", 0);
  const std::string name = folder.file("anim.0003.rgb");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCSkydome* dome = dome_from(text);
        TCObject_list frames;
        frames.add_runtime_object(dome);
        frames.current_frame = 3;
        dome->set_time(0.0);
      },
      ::testing::ExitedWithCode(1912 & 0xff), "unable to allocate skydome texture " + name);
}

TEST_F(SkydomeImaging, SingleRaysGetOneInEveryBand) {
  TCSkydome* dome = dome_from(dome_text(sky_file, 2, 0.0, "no", 0));
  TCSpectrum out(5);
  TCRay ray(TCVector(1.0, 2.0, 3.0), TCVector(0.0, 0.0, -1.0));
  dome->radiance(ray, out);
  for (int b = 0; b < 5; b++) EXPECT_EQ(out.radiance_in_band[b], 1.0) << b;
  delete dome;
}

TEST_F(SkydomeImaging, EveryRayMeetsTheDomeAtItsRadius) {
  TCSkydome* dome = dome_from(dome_text(sky_file, 2, 0.0, "no", 0));
  TCRay ray(TCVector(1.0, 2.0, 3.0), TCVector(0.6, 0.0, -0.8));
  TCVector hit;
  double distance = 0.0;
  EXPECT_EQ(dome->intersect(ray, hit, distance), 1);
  EXPECT_DOUBLE_EQ(distance, 1000.0);
  EXPECT_DOUBLE_EQ(hit.x, 601.0);
  EXPECT_DOUBLE_EQ(hit.y, 2.0);
  EXPECT_DOUBLE_EQ(hit.z, -797.0);
  delete dome;
}

// Radii and views at the ends of the double range: the dome paints whole
// pixels or nothing, and nothing overruns.
TEST_F(SkydomeImaging, HostileRadiusAndViewsNeverCrash) {
  const char* const radii[] = {"1e300", "-1e300", "0", "1e-320"};
  for (const char* radius : radii) {
    std::string text = dome_text(sky_file, 2, 89.999, "no", 2);
    text.replace(text.find("1000"), 4, radius);
    text.replace(text.find("alpha_channel: 2"), 16, "alpha_channel: 0");
    TCSkydome* dome = dome_from(text);
    for (int grid = 0; grid < 3; grid++) {
      TCView view = zenith_view(4, 4);
      if (grid == 1) view.set_grid(4, 1e300, -1e300, 4, 0.0, 0.0);
      if (grid == 2) view.set_grid(0, -0.3, 0.3, 0, -0.4, 0.4);
      TCSpectrum camera(3);
      Planes out(3, 16);
      object_contour contour(4, 4, &camera, out.planes, 0.0f, 1, nullptr, nullptr);
      dome->image_contour(view, contour);
      for (int row = 0; row < 4; row++)
        for (int col = 0; col < 4; col++) {
          const float c = contour.layer_coverage[row][col];
          EXPECT_TRUE(c == 0.0f || c == 1.0f) << radius << " " << grid << " " << c;
        }
    }
    delete dome;
  }
}

}  // namespace
