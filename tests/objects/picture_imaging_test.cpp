#include <gtest/gtest.h>
#include <stdlib.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "Picture_input.h"
#include "Skydome_input.h"
#include "TCCamera.h"
#include "TCCamera_input.h"
#include "TCConstants.h"
#include "TCObject_list.h"
#include "TCPicture.h"
#include "TCSettings.h"
#include "TCSkydome.h"
#include "TCSpectrum.h"
#include "TCView.h"
#include "band_planes.h"
#include "object_contour.h"
#include "scratch_folder.h"
#include "stream_capture.h"
#include "texture_test_pictures.h"

// Expected coverages and radiances are worked out by hand in the comments.
//
// The picture stands at the origin, unrotated: 3 m along x, 2.4 m along y.
// A camera 10 m behind it at (0, 0, -10), looking along +z, or 10 m in
// front at (0, 0, 10), turned by chi = pi to look along -z, sees it on an
// image plane of 8 by 8 pixels over elevation and azimuth -0.4 .. 0.4, so
// pixel (row, col) spans e in [-0.4 + 0.1 row, -0.3 + 0.1 row] and a likewise
// by column. A point (x, y, 0) projects to e = -x / 10 from behind and
// e = x / 10 from in front, and to a = -y / 10 from both. In pixel units the
// outline runs over rows 2.5 .. 5.5 (x = +-1.5) and columns 2.8 .. 5.2
// (y = +-1.2), so pixels are covered:
//
//   row 2:  col 2: 0.5 * 0.2   cols 3, 4: 0.5   col 5: 0.5 * 0.2
//   rows 3, 4:     0.2                    1.0          0.2
//   row 5:         0.1                    0.5          0.1
//
// and nothing else.

namespace {

double expected_coverage(int row, int col) {
  const double along_rows[8] = {0, 0, 0.5, 1, 1, 0.5, 0, 0};
  const double along_cols[8] = {0, 0, 0.2, 1, 1, 0.2, 0, 0};
  return along_rows[row] * along_cols[col];
}

TCView behind_view() {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, -10.0), 0.0, 0.0, 0.0);
  view.set_grid(8, -0.4, 0.4, 8, -0.4, 0.4);
  return view;
}

TCView front_view() {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), tc_pi, 0.0, 0.0);
  view.set_grid(8, -0.4, 0.4, 8, -0.4, 0.4);
  return view;
}

// Three bands, ids 1 2 3. A picture side's range is 2..257, 0..255 and
// 10..520 (steps of 1, 1 and 2 per count): the grid average adds the
// minimum before the bytes are mapped, and the mapping adds it again, so the
// bytes 100 50 200 show as 1 * (100 + 2) + 2 = 104, 50 and
// 2 * (200 + 10) + 10 = 430.
const double poster[3] = {104.0, 50.0, 430.0};

std::string picture_text(const std::string& front, const std::string& back, const std::string& file,
                         const char* animation, int alpha, int auto_scale) {
  auto side = [auto_scale](const std::string& nature) {
    if (nature == "solid")
      return std::string("optical_nature: solid color: 2 4 6 ") +
             "reflectivity: 0 0 0 transmissivity: 0 0 0\n";
    if (nature == "picture" && auto_scale == 0)
      return std::string("optical_nature: picture min_radiance: 2 0 10 ") +
             "max_radiance: 257 255 520\n";
    return "optical_nature: " + nature + "\n";
  };
  std::ostringstream text;
  text << "Tidecast_data_file picture 4 4\n"
       << "number_of_bands: 3\n"
       << "band_ids: 1 2 3\n"
       << "dimensions: 3 2.4\n"
       << "picture_file: " << file << "\n"
       << "animation: " << animation << "\n"
       << "alpha_channel: " << alpha << "\n"
       << "auto_scale_flag: " << auto_scale << "\n"
       << side(front) << side(back) << "imaging_method: 2\n"
       << "end\n";
  return text.str();
}

class PictureImaging : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_verbose_ = verbose;
    verbose = 0;
    poster_file = folder.file("poster.rgb");
    write_uniform_picture(poster_file, 4, 4, {100, 50, 200});
  }
  void TearDown() override { verbose = saved_verbose_; }

  static TCPicture* picture_from(const std::string& text) {
    Picture_input input;
    std::istringstream in(text);
    EXPECT_EQ(input.read_stream(in), 1);
    return new TCPicture(input);
  }

  // Paints the picture into a fresh 8 by 8 contour of three bands (ids 1 2 3)
  // and checks each pixel: coverage, and radiance coverage * value[b].
  static void expect_painted(TCPicture* picture, TCView view, const double* value) {
    TCSpectrum camera(3);
    Planes out(3, 64);
    object_contour contour(8, 8, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
    picture->image_contour(view, contour);
    for (int row = 0; row < 8; row++) {
      for (int col = 0; col < 8; col++) {
        const double c = expected_coverage(row, col);
        EXPECT_NEAR(contour.layer_coverage[row][col], c, 1e-6) << row << " " << col;
        for (int b = 0; b < 3; b++)
          EXPECT_NEAR(contour.layer_radiance[b][row][col], c * value[b], 1e-4 * value[b])
              << row << " " << col << " band " << b;
      }
    }
  }

  static void expect_nothing_painted(TCPicture* picture, TCView view) {
    TCSpectrum camera(3);
    Planes out(3, 64);
    object_contour contour(8, 8, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
    picture->image_contour(view, contour);
    for (int row = 0; row < 8; row++)
      for (int col = 0; col < 8; col++)
        EXPECT_EQ(contour.layer_coverage[row][col], 0.0f) << row << " " << col;
  }

  Scratch_folder folder;
  std::string poster_file;

 private:
  int saved_verbose_ = 1;
};

const double solid_colour[3] = {2.0, 4.0, 6.0};

TEST_F(PictureImaging, SolidBackIsSeenFromBehindWithEdgeCoverageByArea) {
  TCPicture* picture = picture_from(picture_text("transparent", "solid", poster_file, "no", 0, 0));
  expect_painted(picture, behind_view(), solid_colour);
  // From in front only the transparent side faces the camera.
  expect_nothing_painted(picture, front_view());
  delete picture;
}

TEST_F(PictureImaging, TexturedFrontIsSeenFromInFront) {
  TCPicture* picture =
      picture_from(picture_text("picture", "transparent", poster_file, "no", 0, 0));
  expect_painted(picture, front_view(), poster);
  expect_nothing_painted(picture, behind_view());
  delete picture;
}

TEST_F(PictureImaging, EachSideShowsItsOwnNature) {
  TCPicture* picture = picture_from(picture_text("picture", "solid", poster_file, "no", 0, 0));
  expect_painted(picture, front_view(), poster);
  expect_painted(picture, behind_view(), solid_colour);
  delete picture;
}

TEST_F(PictureImaging, BothSidesTransparentPaintNothingAndStopNoRay) {
  TCPicture* picture =
      picture_from(picture_text("transparent", "transparent", poster_file, "no", 0, 0));
  expect_nothing_painted(picture, front_view());
  expect_nothing_painted(picture, behind_view());
  TCVector hit;
  double distance = 0.0;
  EXPECT_EQ(picture->intersect(TCRay(TCVector(0.1, 0.1, 5.0), TCVector(0, 0, -1)), hit, distance),
            0);
  EXPECT_EQ(picture->intersect(TCRay(TCVector(0.1, 0.1, -5.0), TCVector(0, 0, 1)), hit, distance),
            0);
  delete picture;
}

// A picture of two pixels, byte 10 at x = 0 and 250 at x = 1, on one band
// mapped 0..255: each byte shows as itself. The rectangle's 3 m put the
// pixel centres at x = -0.75 and 0.75, and positions beyond them clamp to the
// edge pixel. Rows 2 and 5 span x in [1, 2] and [-2, -1] (from behind) or
// the other way round (from in front), wholly on one side.
TEST_F(PictureImaging, PictureIsLaidAlongXWithItsFirstColumnAtNegativeX) {
  const std::string two = folder.file("two.rgb");
  write_sgi_bytes(two, 2, 1, 1, {10, 250});
  const std::string text =
      "Tidecast_data_file picture 4 4\n"
      "number_of_bands: 1 band_ids: 1 dimensions: 3 2.4 picture_file: " +
      two +
      "\nanimation: no alpha_channel: 0 auto_scale_flag: 0\n"
      "optical_nature: picture min_radiance: 0 max_radiance: 255\n"
      "optical_nature: picture min_radiance: 0 max_radiance: 255\n"
      "imaging_method: 2 end\n";
  TCPicture* picture = picture_from(text);
  TCSpectrum camera(1);
  for (int from_behind = 0; from_behind < 2; from_behind++) {
    Planes out(1, 64);
    object_contour contour(8, 8, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
    TCView view = from_behind ? behind_view() : front_view();
    picture->image_contour(view, contour);
    const double row_two = from_behind ? 250.0 : 10.0;
    const double row_five = from_behind ? 10.0 : 250.0;
    for (int col = 3; col <= 4; col++) {
      EXPECT_NEAR(contour.layer_radiance[0][2][col], 0.5 * row_two, 1e-4) << from_behind;
      EXPECT_NEAR(contour.layer_radiance[0][5][col], 0.5 * row_five, 1e-4) << from_behind;
    }
  }
  delete picture;
}

// Alpha of 51 counts on its fixed 0..1 range: 0.2.
class PictureAlpha : public PictureImaging {
 protected:
  void SetUp() override {
    PictureImaging::SetUp();
    alpha_file = folder.file("alpha.rgb");
    write_uniform_picture(alpha_file, 4, 4, {100, 50, 200, 51});
  }
  std::string alpha_file;
};

TEST_F(PictureAlpha, AlphaTwoScalesCoverageAndRadiance) {
  TCPicture* picture = picture_from(picture_text("picture", "solid", alpha_file, "no", 2, 0));
  TCSpectrum camera(3);
  Planes out(3, 64);
  object_contour contour(8, 8, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  TCView view = front_view();
  picture->image_contour(view, contour);
  // Inside (3, 3) and an edge pixel (2, 3) of coverage 0.5.
  EXPECT_NEAR(contour.layer_coverage[3][3], 0.2, 1e-6);
  EXPECT_NEAR(contour.layer_coverage[2][3], 0.1, 1e-6);
  for (int b = 0; b < 3; b++) {
    EXPECT_NEAR(contour.layer_radiance[b][3][3], 0.2 * poster[b], 1e-4) << b;
    EXPECT_NEAR(contour.layer_radiance[b][2][3], 0.1 * poster[b], 1e-4) << b;
  }
  delete picture;
}

TEST_F(PictureAlpha, AlphaOneScalesOnlyCoverage) {
  TCPicture* picture = picture_from(picture_text("picture", "solid", alpha_file, "no", 1, 0));
  TCSpectrum camera(3);
  Planes out(3, 64);
  object_contour contour(8, 8, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  TCView view = front_view();
  picture->image_contour(view, contour);
  EXPECT_NEAR(contour.layer_coverage[3][3], 0.2, 1e-6);
  EXPECT_NEAR(contour.layer_coverage[2][3], 0.1, 1e-6);
  for (int b = 0; b < 3; b++) {
    EXPECT_NEAR(contour.layer_radiance[b][3][3], poster[b], 1e-4) << b;
    EXPECT_NEAR(contour.layer_radiance[b][2][3], 0.5 * poster[b], 1e-4) << b;
  }
  // The solid back ignores alpha.
  delete picture;
  picture = picture_from(picture_text("picture", "solid", alpha_file, "no", 1, 0));
  expect_painted(picture, behind_view(), solid_colour);
  delete picture;
}

// A sky of 14 (bytes 10 over the range 2..257: 1 * (10 + 2) + 2) stands
// beyond the picture, whose textured back the camera below looks up at. A
// picture of 104 at alpha 0.2 lets 0.8 of the sky through: with alpha 2,
// 0.2 * 104 + 0.8 * 14 = 32; with alpha 1, 104 + 0.8 * 14 = 115.2. At the
// edge pixel (2, 3), of coverage 0.5: 0.1 * 104 + 0.9 * 14 = 23 and
// 0.5 * 104 + 0.9 * 14 = 64.6.
TEST_F(PictureAlpha, AlphaRulesCompositeOverTheSky) {
  const std::string sky_file = folder.file("sky.rgb");
  write_uniform_picture(sky_file, 4, 4, {10, 50, 200});
  const std::string sky_text =
      "Tidecast_data_file skydome 4 4 dome_radius: 1000 number_of_bands: 3 band_id: 1 2 3 "
      "dome_file: " +
      sky_file +
      " horizon_angle: 0 animation: no alpha_channel: 0 min_radiance: 2 0 10 "
      "max_radiance: 257 255 520 imaging_method: 2 end";
  const double inside[3] = {0.0, 115.2, 32.0};  // by alpha rule
  const double edge[3] = {0.0, 64.6, 23.0};
  for (int alpha = 1; alpha <= 2; alpha++) {
    TCObject_list list;
    ASSERT_EQ(list.add_runtime_object(
                  picture_from(picture_text("solid", "picture", alpha_file, "no", alpha, 0))),
              1);
    Skydome_input sky_input;
    std::istringstream in(sky_text);
    ASSERT_EQ(sky_input.read_stream(in), 1);
    ASSERT_EQ(list.add_runtime_object(new TCSkydome(sky_input)), 1);
    TCView view = behind_view();
    view.anti_alias = 0;
    TCSpectrum camera(3);
    Planes out(3, 64);
    int active[100];
    for (int i = 0; i < 100; i++) active[i] = 1;
    list.image_scene(active, view, &camera, out.planes, 0.0, nullptr, 1);
    EXPECT_NEAR(out.planes[0][3 * 8 + 3], inside[alpha], 1e-4) << alpha;
    EXPECT_NEAR(out.planes[0][2 * 8 + 3], edge[alpha], 1e-4) << alpha;
    EXPECT_NEAR(out.planes[0][0], 14.0, 1e-4) << alpha;
  }
}

TEST_F(PictureImaging, FourBandCameraGetsZeroInTheBandThePictureLacks) {
  TCPicture* picture = picture_from(picture_text("transparent", "solid", poster_file, "no", 0, 0));
  TCSpectrum camera(4);
  const int ids[4] = {3, 1, 4, 2};
  for (int b = 0; b < 4; b++) camera.band_id[b] = ids[b];
  Planes out(4, 64);
  object_contour contour(8, 8, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  TCView view = behind_view();
  picture->image_contour(view, contour);
  EXPECT_NEAR(contour.layer_radiance[0][3][3], 6.0, 1e-5);
  EXPECT_NEAR(contour.layer_radiance[1][3][3], 2.0, 1e-5);
  EXPECT_EQ(contour.layer_radiance[2][3][3], 0.0f);
  EXPECT_NEAR(contour.layer_radiance[3][3][3], 4.0, 1e-5);
  delete picture;
}

// The depths are the squares of the nearest and farthest sample distances
// and their mean. Pixel (3, 3) from behind has samples at e and a of
// -0.0875, -0.0625, -0.0375 and -0.0125, at distances 10 sqrt(1 + e e + a a):
// squares 100 (1 + 2 * 0.0125^2) = 100.03125 and 100 (1 + 2 * 0.0875^2) =
// 101.53125, mean 100.78125.
TEST_F(PictureImaging, DepthsAreTheSquaredSampleDistances) {
  TCPicture* picture = picture_from(picture_text("transparent", "solid", poster_file, "no", 0, 0));
  TCSpectrum camera(3);
  Planes out(3, 64);
  object_contour contour(8, 8, &camera, out.planes, 0.0f, 1, nullptr, nullptr);
  TCView view = behind_view();
  view.anti_alias = 0;
  picture->image_contour(view, contour);
  EXPECT_NEAR(contour.layer_near[3][3], 100.03125, 1e-3);
  EXPECT_NEAR(contour.layer_distance[3][3], 100.78125, 1e-3);
  EXPECT_NEAR(contour.layer_far[3][3], 101.53125, 1e-3);
  delete picture;
}

// One pixel over the whole window: the outline covers elevation -0.15..0.15
// and azimuth -0.12..0.12 of the window's 0.8 by 0.8, so
// (0.3 / 0.8) * (0.24 / 0.8) = 0.1125 of the pixel.
TEST_F(PictureImaging, SinglePixelViewIsCoveredByTheOutlinesAreaInTheImage) {
  TCPicture* picture = picture_from(picture_text("transparent", "solid", poster_file, "no", 0, 0));
  TCSpectrum camera(3);
  Planes out(3, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  TCView view = behind_view();
  view.set_grid(1, -0.4, 0.4, 1, -0.4, 0.4);
  picture->image_contour(view, contour);
  EXPECT_NEAR(contour.layer_coverage[0][0], 0.1125, 1e-6);
  for (int b = 0; b < 3; b++)
    EXPECT_NEAR(contour.layer_radiance[b][0][0], 0.1125 * solid_colour[b], 1e-5) << b;
  delete picture;
}

// A camera at (-1, 0, -1) looking along +x sees the back from below: the
// corners at x = -1.5 lie behind it. A point (x, y, 0) projects to
// e = 1 / (x + 1), a = -y / (x + 1), so what shows is e >= 0.4 with
// |a| <= 1.2 e. On 4 by 4 pixels over e 0..1 and a -1..1 (0.25 by 0.5) the
// covered areas, integrated by hand, are (row 1) 299/6000 and 1/240 in the
// inner and outer column, (row 2) 0.125 and 0.0625, (row 3) 0.125 and
// 29/240, mirrored about a = 0; row 0 is empty.
TEST_F(PictureImaging, OutlinePartlyBehindTheCameraIsCutAtTheViewPlane) {
  TCPicture* picture = picture_from(picture_text("transparent", "solid", poster_file, "no", 0, 0));
  TCSpectrum camera(3);
  Planes out(3, 16);
  object_contour contour(4, 4, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  TCView view;
  view.set_pose(TCVector(-1.0, 0.0, -1.0), tc_half_pi, 0.0, 0.0);
  view.set_grid(4, 0.0, 1.0, 4, -1.0, 1.0);
  picture->image_contour(view, contour);
  const double inner[4] = {0.0, 299.0 / 750.0, 1.0, 1.0};
  const double outer[4] = {0.0, 1.0 / 30.0, 0.5, 29.0 / 30.0};
  for (int row = 0; row < 4; row++) {
    EXPECT_NEAR(contour.layer_coverage[row][0], outer[row], 1e-6) << row;
    EXPECT_NEAR(contour.layer_coverage[row][1], inner[row], 1e-6) << row;
    EXPECT_NEAR(contour.layer_coverage[row][2], inner[row], 1e-6) << row;
    EXPECT_NEAR(contour.layer_coverage[row][3], outer[row], 1e-6) << row;
    EXPECT_NEAR(contour.layer_radiance[0][row][1], 2.0 * inner[row], 1e-5) << row;
  }
  delete picture;
}

// A view from a point in the plane, looking along it (set by hand so that
// the plane projects exactly onto e = 0): the outline has no area, and no
// ray from there meets the picture.
TEST_F(PictureImaging, ViewpointInThePlaneSeesNothingAndItsRaysNeverHit) {
  TCPicture* picture = picture_from(picture_text("solid", "solid", poster_file, "no", 0, 0));
  TCView view;
  view.set_grid(8, -0.4, 0.4, 8, -0.4, 0.4);
  view.position = TCVector(-5.0, 0.0, 0.0);
  const double to_view[9] = {0, 0, -1, 0, 1, 0, 1, 0, 0};
  for (int k = 0; k < 9; k++) view.world_to_view.m[k] = to_view[k];
  view.object_to_world = view.world_to_view.transpose();
  expect_nothing_painted(picture, view);
  TCVector hit;
  double distance = 0.0;
  EXPECT_EQ(
      picture->intersect(TCRay(TCVector(-5.0, 0.0, 0.0), TCVector(0.6, 0.0, 0.8)), hit, distance),
      0);
  EXPECT_EQ(
      picture->intersect(TCRay(TCVector(0.0, 0.0, 0.0), TCVector(0.0, 0.0, 1.0)), hit, distance),
      0);
  delete picture;
}

TEST_F(PictureImaging, RectangleWithoutAreaPaintsNothing) {
  std::string text = picture_text("solid", "solid", poster_file, "no", 0, 0);
  text.replace(text.find("dimensions: 3 2.4"), 17, "dimensions: 3 0");
  TCPicture* picture = picture_from(text);
  expect_nothing_painted(picture, behind_view());
  delete picture;
}

TEST_F(PictureImaging, ImagingMethodOneSkipsAntiAliasedViews) {
  std::string text = picture_text("solid", "solid", poster_file, "no", 0, 0);
  text.replace(text.find("imaging_method: 2"), 17, "imaging_method: 1");
  TCPicture* picture = picture_from(text);
  TCView view = behind_view();
  view.anti_alias = 1;
  expect_nothing_painted(picture, view);
  view.anti_alias = 0;
  expect_painted(picture, view, solid_colour);
  delete picture;
}

TEST_F(PictureImaging, RaysHitOnlyStrictlyInsideAndAheadOnAnOpaqueSide) {
  TCPicture* picture = picture_from(picture_text("solid", "transparent", poster_file, "no", 0, 0));
  TCVector hit;
  double distance = 0.0;
  // From in front, straight down onto (0.5, 0.2).
  EXPECT_EQ(picture->intersect(TCRay(TCVector(0.5, 0.2, 4.0), TCVector(0, 0, -1)), hit, distance),
            1);
  EXPECT_DOUBLE_EQ(distance, 4.0);
  EXPECT_DOUBLE_EQ(hit.x, 0.5);
  EXPECT_DOUBLE_EQ(hit.y, 0.2);
  EXPECT_EQ(hit.z, 0.0);
  // Slanted: from (0, 0, 3) along (0.6, 0, -0.8), 3.75 m to (2.25, 0), beyond
  // the 1.5 m half width; along (0.28, 0, -0.96), 3.125 m to (0.875, 0).
  EXPECT_EQ(
      picture->intersect(TCRay(TCVector(0.0, 0.0, 3.0), TCVector(0.6, 0, -0.8)), hit, distance), 0);
  EXPECT_EQ(
      picture->intersect(TCRay(TCVector(0.0, 0.0, 3.0), TCVector(0.28, 0, -0.96)), hit, distance),
      1);
  EXPECT_DOUBLE_EQ(distance, 3.125);
  // On the edge x = 1.5 exactly: a miss.
  EXPECT_EQ(picture->intersect(TCRay(TCVector(1.5, 0.0, 2.0), TCVector(0, 0, -1)), hit, distance),
            0);
  EXPECT_EQ(picture->intersect(TCRay(TCVector(0.0, 1.2, 2.0), TCVector(0, 0, -1)), hit, distance),
            0);
  // Pointing away, or along the plane.
  EXPECT_EQ(picture->intersect(TCRay(TCVector(0.5, 0.2, 4.0), TCVector(0, 0, 1)), hit, distance),
            0);
  EXPECT_EQ(picture->intersect(TCRay(TCVector(0.5, 0.2, 4.0), TCVector(1, 0, 0)), hit, distance),
            0);
  // From behind, where the side is transparent.
  EXPECT_EQ(picture->intersect(TCRay(TCVector(0.5, 0.2, -4.0), TCVector(0, 0, 1)), hit, distance),
            0);
  delete picture;
}

// The ray's first vector (its origin) turned into the picture's frame, dotted
// with the position, less half the rectangle's extent along it.
TEST_F(PictureImaging, RayMeasureIsTheNearEdgeAlongTheRaysFirstVector) {
  Picture_input input;
  std::istringstream in(picture_text("solid", "solid", poster_file, "no", 0, 0));
  ASSERT_EQ(input.read_stream(in), 1);
  input.track.positions[0] = TCVector(1.0, 2.0, 3.0);
  {
    TCPicture picture(input);
    // 0.6 + 1.6 - (3 * 0.6 + 2.4 * 0.8) / 2 = 2.2 - 1.86 = 0.34
    EXPECT_NEAR(picture.ray_measure(TCRay(TCVector(0.6, 0.8, 0.0), TCVector(0, 0, 1))), 0.34,
                1e-12);
  }
  // Turned a quarter about z (phi 90 degrees): (0.6, 0.8, 0) becomes
  // (0.8, -0.6, 0) in the picture's frame; 0.8 - 1.2 - (2.4 + 1.44) / 2 = -2.32.
  input.track.phi[0] = tc_half_pi;
  TCPicture turned(input);
  EXPECT_NEAR(turned.ray_measure(TCRay(TCVector(0.6, 0.8, 0.0), TCVector(0, 0, 1))), -2.32, 1e-9);
}

TEST_F(PictureImaging, StillPictureThatFailsToLoadEndsTheRun) {
  const std::string missing = folder.file("missing.rgb");
  const std::string text = picture_text("picture", "solid", missing, "no", 0, 0);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        delete picture_from(text);
      },
      ::testing::ExitedWithCode(1), "unable to allocate texture map " + missing);
}

TEST_F(PictureImaging, TimeAnimationOfAPictureSideEndsTheRun) {
  const std::string text = picture_text("solid", "picture", poster_file, "time", 0, 0);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        delete picture_from(text);
      },
      ::testing::ExitedWithCode(1), "time based animation not yet implemented ");
}

TEST_F(PictureImaging, TimeAnimationWithoutAPictureSideOnlyReportsTheTime) {
  TCPicture* picture = picture_from(picture_text("solid", "solid", poster_file, "time", 0, 0));
  Stream_capture out(std::cout);
  picture->set_time(0.5);
  EXPECT_EQ(out.text(), "setting picture texture to time 0.5\n");
  EXPECT_EQ(picture->get_time(), 0.5);
  delete picture;
}

TEST_F(PictureImaging, FramesAnimationLoadsThePictureOfTheListsFrame) {
  write_uniform_picture(folder.file("clip.0003.rgb"), 2, 2, {100, 50, 200});
  TCObject_list list;
  TCPicture* picture =
      picture_from(picture_text("picture", "transparent", folder.file("clip"), "frames", 0, 0));
  ASSERT_EQ(list.add_runtime_object(picture), 1);
  // Before the first frame the picture side has no picture and shows its
  // colour, which is 0.
  EXPECT_EQ(picture->no_texture, 1);
  {
    TCSpectrum camera(3);
    Planes out(3, 64);
    object_contour contour(8, 8, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
    TCView view = front_view();
    picture->image_contour(view, contour);
    EXPECT_NEAR(contour.layer_coverage[3][3], 1.0, 1e-6);
    EXPECT_EQ(contour.layer_radiance[0][3][3], 0.0f);
  }
  list.current_frame = 3;
  {
    // Printed whether or not the run is verbose.
    Stream_capture out(std::cout);
    picture->set_time(1.5);
    EXPECT_EQ(out.text(), "setting picture texture to " + folder.file("clip.0003.rgb") + "\n");
  }
  EXPECT_EQ(picture->no_texture, 0);
  expect_painted(picture, front_view(), poster);
}

TEST_F(PictureImaging, MissingFrameEndsTheRun) {
  const std::string text =
      picture_text("picture", "transparent", folder.file("clip"), "frames", 0, 0);
  const std::string name = folder.file("clip.0042.rgb");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list frames;
        TCPicture* picture = picture_from(text);
        frames.add_runtime_object(picture);
        frames.current_frame = 42;
        picture->set_time(0.0);
      },
      ::testing::ExitedWithCode(1), "unable to allocate texture map " + name);
}

// The camera's display range, gamma 2 from 0.1 to 1.1, replaces the range:
// 51 counts become (1.0 / 255) * (51 + 0.1) + 0.1 (the grid average's
// minimum counted twice) = 0.300392..., shown through the inverse of the
// camera's gamma as its square root. The alpha band keeps 0..1 at gamma 1:
// 51 counts are 0.2 whatever the camera.
TEST_F(PictureAlpha, AutoScaleTakesTheCamerasDisplayRange) {
  const std::string one_band = folder.file("grey.rgb");
  write_uniform_picture(one_band, 4, 4, {51, 51});
  const std::string text =
      "Tidecast_data_file picture 4 4\n"
      "number_of_bands: 1 band_ids: 1 dimensions: 3 2.4 picture_file: " +
      one_band +
      "\nanimation: no alpha_channel: 1 auto_scale_flag: 1\n"
      "optical_nature: picture optical_nature: transparent imaging_method: 2 end\n";
  TCPicture* picture = picture_from(text);
  EXPECT_EQ(picture->auto_scale, 101);

  TCObject_list list;
  TCCamera_input in;
  in.n_pixel_azimuth = 8;
  in.n_pixel_elevation = 8;
  in.fov_azimuth = 40.0;
  in.fov_elevation = 40.0;
  in.last_azimuth = 7;
  in.last_elevation = 7;
  in.bands = TCSpectrum(1);
  in.rescale_method = 2;
  in.gamma = 2.0f;
  in.min_value = 0.1f;
  in.max_value = 1.1f;
  std::strcpy(in.object_file, "cam.dat");
  TCCamera* camera;
  {
    Stream_capture quiet(std::cout);
    camera = new TCCamera(in, &list);
  }
  picture->prepare_camera(camera);

  const double low = static_cast<double>(0.1f), high = static_cast<double>(1.1f);
  const double value = std::sqrt((high - low) / 255.0 * (51.0 + low) + low);
  TCSpectrum bands(1);
  Planes out(1, 64);
  object_contour contour(8, 8, &bands, out.planes, 0.0f, 0, nullptr, nullptr);
  TCView view = front_view();
  picture->image_contour(view, contour);
  EXPECT_NEAR(contour.layer_radiance[0][3][3], value, 1e-6);
  EXPECT_NEAR(contour.layer_coverage[3][3], 0.2, 1e-6);
  delete camera;
  delete picture;
}

TEST_F(PictureImaging, WithoutAutoScaleTheCameraChangesNothing) {
  TCPicture* picture =
      picture_from(picture_text("picture", "transparent", poster_file, "no", 0, 0));
  TCObject_list list;
  TCCamera_input in;
  in.n_pixel_azimuth = 8;
  in.n_pixel_elevation = 8;
  in.fov_azimuth = 40.0;
  in.fov_elevation = 40.0;
  in.last_azimuth = 7;
  in.last_elevation = 7;
  in.bands = TCSpectrum(3);
  in.rescale_method = 1;
  std::strcpy(in.object_file, "cam.dat");
  TCCamera* camera;
  {
    Stream_capture quiet(std::cout);
    camera = new TCCamera(in, &list);
  }
  picture->prepare_camera(camera);
  expect_painted(picture, front_view(), poster);
  delete camera;
  delete picture;
}

// The pyramid level follows the footprint. A 4 by 4 test pattern on the
// 3 by 2.4 m rectangle has pixels of 0.75 by 0.6 m; band 0 holds 7 at pixel
// (0, 0), and its level 1 pixel (0, 0) the rounded mean of 7, 18, 44 and 55,
// 31. One pixel over e 0.1125..0.2925, a 0.09..0.27 seen from 10 m behind
// has all its samples at x <= -1.35, y <= -1.125: beyond the first pixel
// centres of both levels, so each level gives its corner value. The last
// sample, at e = 0.27, a = 0.2475, is 10 (1 + e e + a a) / |dz| = 11.3415625
// long per unit of dz, so the footprint is 0.5 * (0.36 * 0.5 * 11.3415625)
// = 1.020740625 m, 1.701234375 pixels of 0.6 m: a blend of
// 2 - 1.701234375 of level 0 and the rest of level 1, 23.829625. The outline
// covers e 0.1125..0.15 and a 0.09..0.12 of the pixel: 0.0375 / 0.18 times
// 0.03 / 0.18.
TEST_F(PictureImaging, FootprintChoosesAndBlendsPyramidLevels) {
  const std::string pattern = folder.file("pattern.rgb");
  std::vector<unsigned char> bytes;
  for (int y = 0; y < 4; y++)
    for (int x = 0; x < 4; x++) bytes.push_back(pattern_byte(x, y, 0));
  write_sgi_bytes(pattern, 4, 4, 1, bytes);
  const std::string text =
      "Tidecast_data_file picture 4 4\n"
      "number_of_bands: 1 band_ids: 1 dimensions: 3 2.4 picture_file: " +
      pattern +
      "\nanimation: no alpha_channel: 0 auto_scale_flag: 0\n"
      "optical_nature: transparent\n"
      "optical_nature: picture min_radiance: 0 max_radiance: 255\n"
      "imaging_method: 2 end\n";
  TCPicture* picture = picture_from(text);
  TCSpectrum camera(1);
  Planes out(1, 1);
  object_contour contour(1, 1, &camera, out.planes, 0.0f, 0, nullptr, nullptr);
  TCView view = behind_view();
  view.set_grid(1, 0.1125, 0.2925, 1, 0.09, 0.27);
  picture->image_contour(view, contour);
  const double coverage = (0.0375 / 0.18) * (0.03 / 0.18);
  EXPECT_NEAR(contour.layer_coverage[0][0], coverage, 1e-6);
  EXPECT_NEAR(contour.layer_radiance[0][0][0], coverage * 23.829625, 1e-5);
  delete picture;
}

// Sizes and viewpoints at the ends of the double range: whatever is painted
// stays a coverage between 0 and 1, and nothing overruns.
TEST_F(PictureAlpha, HostileGeometryPaintsWithinBoundsAndNeverCrashes) {
  const char* const sizes[] = {"1e300 1e-300", "1e-300 1e300", "1e300 1e300", "3 -2.4", "1e-320 3"};
  const TCVector places[] = {TCVector(0.0, 0.0, -1e-300), TCVector(1.5, 1.2, -10.0),
                             TCVector(0.0, 0.0, 1e300), TCVector(1e300, -1e300, -1e-10),
                             TCVector(0.0, 0.0, -10.0)};
  for (const char* size : sizes) {
    std::string text = picture_text("solid", "picture", alpha_file, "no", 2, 0);
    text.replace(text.find("3 2.4"), 5, size);
    TCPicture* picture = picture_from(text);
    for (const TCVector& place : places) {
      for (int grid = 0; grid < 3; grid++) {
        TCView view;
        view.set_pose(place, 0.0, 0.0, 0.3);
        if (grid == 0) view.set_grid(8, -0.4, 0.4, 8, -0.4, 0.4);
        if (grid == 1) view.set_grid(8, 0.4, -0.4, 8, 1e-300, 2e-300);
        if (grid == 2) view.set_grid(8, -1e30, 1e30, 8, -0.4, 0.4);
        TCSpectrum camera(3);
        Planes out(3, 64);
        object_contour contour(8, 8, &camera, out.planes, 0.0f, 1, nullptr, nullptr);
        picture->image_contour(view, contour);
        for (int row = 0; row < 8; row++) {
          for (int col = 0; col < 8; col++) {
            const float c = contour.layer_coverage[row][col];
            EXPECT_TRUE(c >= 0.0f && c <= 1.0f) << size << " " << row << " " << col << " " << c;
          }
        }
      }
    }
    delete picture;
  }
}

}  // namespace
