#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

#include "TCCamera.h"
#include "TCCamera_input.h"
#include "TCObject_list.h"
#include "TCRay.h"
#include "TCSettings.h"
#include "TCVector.h"
#include "stream_capture.h"

// Expected numbers come from camera_reference.py (fov and pixel arithmetic
// with the engine's pi) or are worked out by hand beside each test.

namespace {

// An unrotated camera at the origin over the whole picture, one slice, hdf.
void describe(TCCamera_input& in, int n_azimuth, int n_elevation, double fov_azimuth,
              double fov_elevation, int n_bands) {
  in.n_pixel_azimuth = n_azimuth;
  in.n_pixel_elevation = n_elevation;
  in.fov_azimuth = fov_azimuth;
  in.fov_elevation = fov_elevation;
  in.first_azimuth = 0;
  in.last_azimuth = n_azimuth - 1;
  in.first_elevation = 0;
  in.last_elevation = n_elevation - 1;
  in.bands = TCSpectrum(n_bands);
  std::strcpy(in.object_file, "front.dat");
}

void set_mattes(TCCamera_input& in, const char* text) {
  std::istringstream section(text);
  ASSERT_EQ(in.matte.read(section), 1);
}

class CameraPlane : public ::testing::Test {
 protected:
  CameraPlane() : saved_verbose_(verbose), quiet_(std::cout) { verbose = 0; }
  ~CameraPlane() override { verbose = saved_verbose_; }

  int saved_verbose_;
  Stream_capture quiet_;
  TCObject_list list;
};

TEST_F(CameraPlane, HalfAngleUsesTheEnginesPi) {
  TCCamera_input in;
  describe(in, 4, 640, 90.0, 40.0, 1);
  TCCamera camera(in, &list);
  EXPECT_DOUBLE_EQ(camera.fov_azimuth, 0.78539816337500001);
  EXPECT_DOUBLE_EQ(camera.fov_elevation, 0.34906585038888888);
}

TEST_F(CameraPlane, PixelsAreUniformOnTheTangentPlane) {
  TCCamera_input in;
  describe(in, 4, 640, 90.0, 40.0, 1);
  TCCamera camera(in, &list);
  EXPECT_DOUBLE_EQ(camera.pixel_size_azimuth, 0.49999999997755168);
  EXPECT_DOUBLE_EQ(camera.size_azimuth, 1.9999999999102067);
  EXPECT_DOUBLE_EQ(camera.pixel_size_elevation, 0.0011374069820465737);
  EXPECT_DOUBLE_EQ(camera.size_elevation, 0.7279404685098072);
}

TEST_F(CameraPlane, ThreePixelsOfThirtyDegrees) {
  TCCamera_input in;
  describe(in, 3, 3, 30.0, 30.0, 1);
  TCCamera camera(in, &list);
  EXPECT_DOUBLE_EQ(camera.fov_azimuth, 0.26179938779166667);
  EXPECT_DOUBLE_EQ(camera.pixel_size_azimuth, 0.17863279494873516);
  EXPECT_DOUBLE_EQ(camera.size_azimuth, 0.53589838484620544);
}

TEST_F(CameraPlane, ViewCoversTheImagedWindowWithItsSamples) {
  TCCamera_input in;
  describe(in, 4, 640, 90.0, 40.0, 1);
  in.picture_fraction_flag = 1;
  in.first_elevation = 10;
  in.last_elevation = 319;
  in.first_azimuth = 1;
  in.last_azimuth = 2;
  in.n_sub_elevation = 2;
  in.n_sub_azimuth = 3;
  TCCamera camera(in, &list);
  const TCView& view = camera.get_view();
  EXPECT_DOUBLE_EQ(view.first_elevation, -0.35259616443443786);
  EXPECT_NEAR(view.last_elevation, 0.0, 1e-15);
  // Pixels 1 and 2 of four half-unit pixels: from -0.5 to 0.5, to the
  // rounding of tan(pi / 4) with the engine's pi.
  EXPECT_NEAR(view.first_azimuth, -0.5, 1e-10);
  EXPECT_NEAR(view.last_azimuth, 0.5, 1e-10);
  EXPECT_EQ(view.n_rows, 310 * 2);
  EXPECT_EQ(view.n_cols, 2 * 3);
}

TEST_F(CameraPlane, WindowBoundsFollowPixelNumbers) {
  double low = 0.0, high = 0.0;
  // Size 2 over 4 pixels: pixel 0 from -1 to -0.5, pixels 1..3 to 1.
  TCCamera::plane_window(2.0, 4, 0, 0, low, high);
  EXPECT_DOUBLE_EQ(low, -1.0);
  EXPECT_DOUBLE_EQ(high, -0.5);
  TCCamera::plane_window(2.0, 4, 1, 3, low, high);
  EXPECT_DOUBLE_EQ(low, -0.5);
  EXPECT_DOUBLE_EQ(high, 1.0);
}

TEST_F(CameraPlane, PixelCentreRaysOfAnUnrotatedCamera) {
  TCCamera_input in;
  describe(in, 2, 2, 90.0, 90.0, 1);
  TCCamera camera(in, &list);
  // Centres at (e, a) = (-+0.5, -+0.5): direction (-e, -a, 1) / sqrt(1.5).
  const double side = 0.40824829045164368;
  const double ahead = 0.81649658093994537;
  const double expected[4][3] = {
      {side, side, ahead}, {side, -side, ahead}, {-side, side, ahead}, {-side, -side, ahead}};
  for (int row = 0; row < 2; row++) {
    for (int col = 0; col < 2; col++) {
      TCRay ray;
      camera.get_view().pixel_ray(row, col, ray);
      for (int k = 0; k < 3; k++) {
        EXPECT_NEAR(ray[k], 0.0, 1e-15);
        EXPECT_NEAR(ray[3 + k], expected[row * 2 + col][k], 1e-10) << row << " " << col;
      }
    }
  }
}

TEST_F(CameraPlane, PlanePointRayIsNormalisedAndNegated) {
  TCCamera_input in;
  describe(in, 2, 2, 90.0, 90.0, 1);
  TCCamera camera(in, &list);
  TCRay ray;
  // (e, a) = (3, 4): (-3, -4, 1) / sqrt(26).
  camera.plane_ray(3.0, 4.0, ray);
  const double length = std::sqrt(26.0);
  EXPECT_DOUBLE_EQ(ray[3], -3.0 / length);
  EXPECT_DOUBLE_EQ(ray[4], -4.0 / length);
  EXPECT_DOUBLE_EQ(ray[5], 1.0 / length);
}

TEST_F(CameraPlane, FiveStripsOfOneHundredTwoColumns) {
  const int widths[5] = {20, 20, 20, 20, 22};
  int expected_start = 0;
  for (int i = 0; i < 5; i++) {
    int start = 0, end = 0;
    TCCamera::strip_columns(0, 101, 5, i, start, end);
    EXPECT_EQ(start, expected_start) << i;
    EXPECT_EQ(end - start + 1, widths[i]) << i;
    expected_start = end + 1;
  }
  EXPECT_EQ(expected_start, 102);
}

TEST_F(CameraPlane, StripsStartAtTheWindow) {
  int start = 0, end = 0;
  // Columns 10..19 in three strips of 10 / 3 = 3: 10-12, 13-15, 16-19.
  TCCamera::strip_columns(10, 19, 3, 1, start, end);
  EXPECT_EQ(start, 13);
  EXPECT_EQ(end, 15);
  TCCamera::strip_columns(10, 19, 3, 2, start, end);
  EXPECT_EQ(start, 16);
  EXPECT_EQ(end, 19);
}

TEST_F(CameraPlane, WindowNarrowerThanSliceCountLeavesTheLastStripAll) {
  // Three columns in five strips: width 3 / 5 = 0.
  for (int i = 0; i < 4; i++) {
    int start = 0, end = 0;
    TCCamera::strip_columns(0, 2, 5, i, start, end);
    EXPECT_LT(end, start) << i;
  }
  int start = 0, end = 0;
  TCCamera::strip_columns(0, 2, 5, 4, start, end);
  EXPECT_EQ(start, 0);
  EXPECT_EQ(end, 2);
}

TEST_F(CameraPlane, FileTypesByFormat) {
  const int formats[3] = {3000, 3002, 3003};
  const char* types[3] = {".img", ".rgb", ".tiff"};
  for (int k = 0; k < 3; k++) {
    TCCamera_input in;
    describe(in, 2, 2, 30.0, 30.0, 1);
    in.image_format = formats[k];
    TCCamera camera(in, &list);
    char buffer[256];
    camera.get_file_type(buffer);
    EXPECT_STREQ(buffer, types[k]);
  }
}

TEST_F(CameraPlane, NameIsTheFileNameUpToTheFirstDot) {
  TCCamera_input in;
  describe(in, 2, 2, 30.0, 30.0, 1);
  std::strcpy(in.object_file, "rig/bow.cam.dat");
  TCCamera camera(in, &list);
  EXPECT_STREQ(camera.get_name(), "rig/bow");
}

TEST_F(CameraPlane, CamerasAreNotAmongTheObjects) {
  TCCamera_input in;
  describe(in, 2, 2, 30.0, 30.0, 1);
  in.object_id = 3;
  TCCamera camera(in, &list);
  EXPECT_EQ(camera.get_object_id(), -1);
  EXPECT_EQ(camera.list, &list);
}

TEST_F(CameraPlane, MoreThanOneSliceTurnsPictureFractionOff) {
  TCCamera_input one;
  describe(one, 8, 2, 30.0, 30.0, 1);
  one.picture_fraction_flag = 1;
  TCCamera whole(one, &list);
  EXPECT_EQ(whole.picture_fraction, 1);

  TCCamera_input sliced;
  describe(sliced, 8, 2, 30.0, 30.0, 1);
  sliced.picture_fraction_flag = 1;
  sliced.set_all_slices(2);
  TCCamera camera(sliced, &list);
  EXPECT_EQ(camera.picture_fraction, 0);
  EXPECT_EQ(camera.image_slices, 2);
  EXPECT_EQ(camera.slices_not_recombined, 0);
}

TEST_F(CameraPlane, NamedSlicesAreLeftForALaterMerge) {
  TCCamera_input in;
  describe(in, 8, 2, 30.0, 30.0, 1);
  const int flags[3] = {0, 1, 0};
  ASSERT_EQ(in.set_slices_to_image(3, flags), 1);
  TCCamera camera(in, &list);
  EXPECT_EQ(camera.slices_not_recombined, 1);
  for (int i = 0; i < 3; i++) EXPECT_EQ(camera.get_slices_to_be_imaged()[i], flags[i]);
}

TEST_F(CameraPlane, SceneNoRadianceMatteTurnsThePictureOff) {
  TCCamera_input in;
  describe(in, 2, 2, 30.0, 30.0, 1);
  set_mattes(in, "use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 scene_no_radiance");
  TCCamera camera(in, &list);
  EXPECT_EQ(camera.need_picture, 0);
}

TEST_F(CameraPlane, SetTimeRebuildsTheViewAtTheNewPose) {
  TCCamera_input in;
  describe(in, 2, 2, 30.0, 30.0, 1);
  in.track.set_number_of_times(2);
  in.track.times[0] = 0.0;
  in.track.times[1] = 2.0;
  in.track.positions[1] = TCVector(4.0, -2.0, 6.0);
  TCCamera camera(in, &list);
  camera.set_time(1.0);
  EXPECT_DOUBLE_EQ(camera.get_view().position.x, 2.0);
  EXPECT_DOUBLE_EQ(camera.get_view().position.y, -1.0);
  EXPECT_DOUBLE_EQ(camera.get_view().position.z, 3.0);
  EXPECT_EQ(camera.get_view().n_rows, 2);
  EXPECT_EQ(camera.get_view().n_cols, 2);
}

TEST_F(CameraPlane, SetPositionRebuildsTheViewRotation) {
  TCCamera_input in;
  describe(in, 2, 2, 30.0, 30.0, 1);
  TCCamera camera(in, &list);
  // Theta a quarter turn: world_to_view row 0 is (s(theta), c(theta), 0).
  camera.set_position(TCVector(1.0, 2.0, 3.0), 0.0, 0.0, 1.5707963267);
  const TCView& view = camera.get_view();
  EXPECT_DOUBLE_EQ(view.position.y, 2.0);
  EXPECT_NEAR(view.world_to_view.at(0, 0), 0.0, 1e-9);
  EXPECT_NEAR(view.world_to_view.at(0, 1), 1.0, 1e-9);
}

TEST(CameraSummary, PrintsEveryLineOfARescaledRgbCamera) {
  const int saved = verbose;
  verbose = 1;
  TCObject_list list;
  Stream_capture out(std::cout);
  {
    TCCamera_input in;
    describe(in, 8, 6, 20.0, 15.0, 3);
    std::strcpy(in.object_file, "cams/front.dat");
    in.picture_fraction_flag = 1;
    in.first_azimuth = 2;
    in.last_azimuth = 5;
    in.first_elevation = 1;
    in.last_elevation = 4;
    in.image_format = 3002;
    in.rescale_method = 2;
    in.gamma = 2.5f;
    in.min_value = 0.5f;
    in.max_value = 1.5f;
    TCCamera camera(in, &list);
  }
  verbose = saved;
  // Half angles: 20 and 15 degrees times pi / 360.
  EXPECT_EQ(out.text(),
            "camera constructed camera_type_name\n"
            "      CAMERA \n"
            "name of camera:   cams/front\n"
            "number of pixels: 8 6\n"
            "field of view   : 20 15\n"
            "imaged azimuth pixels    : 2 5\n"
            "imaged elevation pixels : 1 4\n"
            "fov 0.174533 0.1309\n"
            "number of bands 3\n"
            "antialiasing flag 0\n"
            "memory saving     1\n"
            "need picture flag 1\n"
            "file type:        .rgb\n"
            "rescaling by gamma =  2.5\n"
            "minimum value =       0.5\n"
            "maximum value =       1.5\n"
            "Not generating mattes\n"
            "slices_imaged: 0\n");
}

TEST(CameraSummary, PrintsMattesLogAndSlicesLeftOnDisk) {
  const int saved = verbose;
  verbose = 1;
  TCObject_list list;
  Stream_capture out(std::cout);
  {
    TCCamera_input in;
    describe(in, 8, 6, 20.0, 15.0, 1);
    in.rescale_method = 1;
    in.anti_alias = 1;
    set_mattes(in, "use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 scene_distance");
    const int flags[4] = {0, 1, 0, 1};
    ASSERT_EQ(in.set_slices_to_image(4, flags), 1);
    TCCamera camera(in, &list);
  }
  verbose = saved;
  EXPECT_EQ(out.text(),
            "camera constructed camera_type_name\n"
            "      CAMERA \n"
            "name of camera:   front\n"
            "number of pixels: 8 6\n"
            "field of view   : 20 15\n"
            "imaged azimuth pixels    : 0 7\n"
            "imaged elevation pixels : 0 5\n"
            "fov 0.174533 0.1309\n"
            "number of bands 1\n"
            "antialiasing flag 1\n"
            "memory saving     4\n"
            "need picture flag 1\n"
            "file type:        .img\n"
            "rescaling by log10 \n"
            "Generating mattes for: \n"
            "      TCObject: scene\n"
            "slices_imaged: 1 3\n"
            "slices not recombined at end \n");
}

TEST(CameraSummary, SilentWithoutVerbose) {
  const int saved = verbose;
  verbose = 0;
  TCObject_list list;
  TCCamera_input* in = nullptr;
  {
    Stream_capture quiet(std::cout);
    in = new TCCamera_input;
  }
  describe(*in, 2, 2, 30.0, 30.0, 1);
  Stream_capture out(std::cout);
  { TCCamera camera(*in, &list); }
  verbose = saved;
  delete in;
  EXPECT_EQ(out.text(), "");
}

TEST(CameraConstruction, MatteForAnAbsentObjectEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 2, 2, 30.0, 30.0, 1);
        set_mattes(in, "use_mattes: 1 NObjects: 1 Object: buoy NMattes: 1 distance");
        TCCamera camera(in, &list);
      },
      ::testing::ExitedWithCode(1),
      "buoy in matte field input does not correspond to and object\n"
      "unable to process matte part of camera input\n");
}

TEST(CameraConstruction, WindowOutsideThePictureEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 4, 4, 30.0, 30.0, 1);
        in.last_azimuth = 4;
        TCCamera camera(in, &list);
      },
      ::testing::ExitedWithCode(1), "unablt to process camera part of camera input \n");
}

TEST(CameraConstruction, PictureWithoutPixelsEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 0, 4, 30.0, 30.0, 1);
        TCCamera camera(in, &list);
      },
      ::testing::ExitedWithCode(1), "unablt to process camera part of camera input \n");
}

TEST(CameraConstruction, SamplesBeyondAnIntEndTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 50000, 50000, 30.0, 30.0, 1);
        TCCamera camera(in, &list);
      },
      ::testing::ExitedWithCode(1), "unablt to process camera part of camera input \n");
}

TEST(CameraConstruction, ZeroSubPixelsEndTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 4, 4, 30.0, 30.0, 1);
        in.n_sub_azimuth = 0;
        TCCamera camera(in, &list);
      },
      ::testing::ExitedWithCode(1), "unablt to process camera part of camera input \n");
}

// ---- The camera that rides the sea ----

// A sea of h = mean + a x + b y in world coordinates; clearance is the
// point's height over z = 0.
struct Tilted_sea {
  double mean;
  double a;
  double b;
  int calls;
};

double tilted_height(void* context, const TCVector& point, double& clearance) {
  Tilted_sea* sea = static_cast<Tilted_sea*>(context);
  sea->calls++;
  clearance = point.z;
  return sea->mean + sea->a * point.x + sea->b * point.y;
}

// h = c + x * x about x = 0: no slope, a mean raised by the curvature.
double bowl_height(void* context, const TCVector& point, double& clearance) {
  clearance = point.z;
  return *static_cast<double*>(context) + point.x * point.x;
}

TEST(SeaPlaneFit, LevelSeaGivesItsHeightAndNoTilt) {
  Tilted_sea sea = {0.25, 0.0, 0.0, 0};
  TCSea_plane fit;
  ASSERT_EQ(TCBobbing_camera::fit_sea_plane(tilted_height, &sea, TCVector(0.0, 0.0, 0.4), 0.4, 0.5,
                                            3.0, fit),
            1);
  // One look for the clearance, then 101 by 101 samples.
  EXPECT_EQ(sea.calls, 1 + 101 * 101);
  EXPECT_NEAR(fit.a, 0.0, 1e-15);
  EXPECT_NEAR(fit.b, 0.0, 1e-15);
  EXPECT_NEAR(fit.mean, 0.25, 1e-12);
  EXPECT_NEAR(fit.offset.z, 0.25, 1e-12);
  EXPECT_NEAR(fit.pitch, 0.0f, 1e-15);
  EXPECT_NEAR(fit.roll, 0.0f, 1e-15);
}

TEST(SeaPlaneFit, TiltedSeaGivesSlopesMeanAndAngles) {
  // Under (2, -3): mean 0.3 + 0.1 * 2 - 0.05 * -3 = 0.65; offset
  // (0.1 * 0.4, -0.05 * 0.4, 0.65); pitch -atan(0.1), roll atan(-0.05).
  Tilted_sea sea = {0.3, 0.1, -0.05, 0};
  TCSea_plane fit;
  ASSERT_EQ(TCBobbing_camera::fit_sea_plane(tilted_height, &sea, TCVector(2.0, -3.0, 0.4), 0.4, 0.5,
                                            3.0, fit),
            1);
  EXPECT_NEAR(fit.a, 0.1, 1e-12);
  EXPECT_NEAR(fit.b, -0.05, 1e-12);
  EXPECT_NEAR(fit.mean, 0.65, 1e-12);
  EXPECT_NEAR(fit.offset.x, 0.04, 1e-12);
  EXPECT_NEAR(fit.offset.y, -0.02, 1e-12);
  EXPECT_NEAR(fit.offset.z, 0.65, 1e-12);
  EXPECT_FLOAT_EQ(fit.pitch, -0.0996686518f);
  EXPECT_FLOAT_EQ(fit.roll, -0.0499583967f);
}

TEST(SeaPlaneFit, CurvedSeaRaisesTheMeanByItsCurvature) {
  // Spacing 2 / 100; the mean of i * i over -50..50 is 850, so the mean
  // height is 0.1 + 0.0004 * 850 = 0.44; the bowl is symmetric: no slope.
  double floor = 0.1;
  TCSea_plane fit;
  ASSERT_EQ(TCBobbing_camera::fit_sea_plane(bowl_height, &floor, TCVector(0.0, 0.0, 0.2), 0.2, 0.5,
                                            2.0, fit),
            1);
  EXPECT_NEAR(fit.mean, 0.44, 1e-12);
  EXPECT_NEAR(fit.a, 0.0, 1e-12);
  EXPECT_NEAR(fit.b, 0.0, 1e-12);
}

TEST(SeaPlaneFit, BeyondTheDecoupleHeightTheSeaGivesNoMotion) {
  Tilted_sea sea = {0.3, 0.1, -0.05, 0};
  TCSea_plane fit;
  EXPECT_EQ(TCBobbing_camera::fit_sea_plane(tilted_height, &sea, TCVector(0.0, 0.0, 0.5), 0.5, 0.5,
                                            3.0, fit),
            0);
  EXPECT_EQ(sea.calls, 1);
  EXPECT_EQ(fit.mean, 0.0);
  EXPECT_EQ(fit.offset.z, 0.0);
  EXPECT_EQ(fit.pitch, 0.0f);
  // Below the sea counts by the size of the clearance.
  EXPECT_EQ(TCBobbing_camera::fit_sea_plane(tilted_height, &sea, TCVector(0.0, 0.0, -0.4), -0.4,
                                            0.5, 3.0, fit),
            1);
}

TEST(SeaPlaneFit, BaseOfNoSizeGivesNoTilt) {
  Tilted_sea sea = {0.3, 0.1, -0.05, 0};
  TCSea_plane fit;
  ASSERT_EQ(TCBobbing_camera::fit_sea_plane(tilted_height, &sea, TCVector(1.0, 0.0, 0.1), 0.1, 0.5,
                                            0.0, fit),
            1);
  EXPECT_EQ(fit.a, 0.0);
  EXPECT_EQ(fit.b, 0.0);
  EXPECT_NEAR(fit.mean, 0.4, 1e-12);
}

class BobbingCamera : public ::testing::Test {
 protected:
  BobbingCamera() : saved_verbose_(verbose), quiet_(std::cout) {
    verbose = 0;
    describe(input, 4, 4, 30.0, 30.0, 1);
    input.decouple_height = 0.5;
    input.decouple_relax_time = 2.0;
    input.base_size = 3.0;
    input.track.positions[0] = TCVector(2.0, -3.0, 0.4);
  }
  ~BobbingCamera() override { verbose = saved_verbose_; }

  int saved_verbose_;
  Stream_capture quiet_;
  TCObject_list list;
  TCBobbing_camera_input input;
};

TEST_F(BobbingCamera, RidingASeaAddsItsOffsetAndAngles) {
  TCBobbing_camera camera(input, &list);
  Tilted_sea sea = {0.3, 0.1, -0.05, 0};
  TCVector position(2.0, -3.0, 0.4);
  double chi = 0.5, theta = -0.25;
  ASSERT_EQ(camera.ride_sea(tilted_height, &sea, position, position, chi, theta), 1);
  EXPECT_NEAR(position.x, 2.04, 1e-12);
  EXPECT_NEAR(position.y, -3.02, 1e-12);
  EXPECT_NEAR(position.z, 1.05, 1e-12);
  EXPECT_NEAR(chi, 0.5 + -0.0996686518, 1e-7);
  EXPECT_NEAR(theta, -0.25 + -0.0499583967, 1e-7);
}

TEST_F(BobbingCamera, WithoutOceansItFollowsItsKeyFrames) {
  TCBobbing_camera camera(input, &list);
  camera.set_time(5.0);
  EXPECT_EQ(camera.get_time(), 5.0);
  EXPECT_EQ(camera.get_position().x, 2.0);
  EXPECT_EQ(camera.get_position().z, 0.4);
  EXPECT_EQ(camera.get_view().position.y, -3.0);
}

TEST_F(BobbingCamera, KeepsItsBobbingNumbers) {
  TCBobbing_camera camera(input, &list);
  EXPECT_EQ(camera.decouple_height, 0.5);
  EXPECT_EQ(camera.decouple_relax_time, 2.0);
  EXPECT_EQ(camera.base_size, 3.0);
}

TEST_F(BobbingCamera, PrintsItsBobbingNumbers) {
  TCBobbing_camera camera(input, &list);
  Stream_capture out(std::cout);
  camera.print_dimensions();
  const std::string text = out.text();
  EXPECT_NE(text.find("Bobbing TCCamera :\n"
                      "base size      :   3\n"
                      "relaxation time:   2\n"
                      "decoupling height: 0.5\n"),
            std::string::npos)
      << text;
}

}  // namespace
