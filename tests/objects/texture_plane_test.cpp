#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "TCData_file.h"
#include "TCSettings.h"
#include "TCTexture_plane.h"
#include "TCTexture_plane_input.h"
#include "stream_capture.h"
#include "texture_test_pictures.h"

// Expected lookups come from texture_reference.py (numpy), or are worked out
// by hand in the comments; none is taken from this code's own output.

namespace {

const double kTolerance = 1e-9;

// Quiet unless a test asks for the verbose line; restores the setting.
class TextureTest : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_verbose_ = verbose;
    verbose = 0;
  }
  void TearDown() override {
    verbose = saved_verbose_;
    for (const std::string& name : files_) std::remove(name.c_str());
  }
  std::string picture(const std::string& stem, int n_x, int n_y, int n_z) {
    files_.push_back(write_pattern_picture(stem, n_x, n_y, n_z));
    return files_.back();
  }
  std::string bytes_picture(const std::string& stem, int n_x, int n_y, int n_z,
                            const std::vector<unsigned char>& bytes) {
    files_.push_back(scratch_file(stem));
    write_sgi_bytes(files_.back(), n_x, n_y, n_z, bytes);
    return files_.back();
  }

 private:
  int saved_verbose_ = 1;
  std::vector<std::string> files_;
};

// A record whose range above maps byte b to radiance b, so that lookups
// show the byte scale.
TCTexture_plane_input byte_record(const std::string& file, double width, double height, int bands,
                                  int periodic) {
  TCTexture_plane_input input;
  input.width = width;
  input.height = height;
  input.periodic = periodic;
  std::vector<double> lo(bands, 0.0);
  std::vector<double> hi(bands, 255.0);
  input.set_above(bands, lo.data(), hi.data());
  copy_text(input.picture_file, file.c_str(), 256);
  return input;
}

void expect_values(const double* got, const std::vector<double>& want) {
  for (size_t b = 0; b < want.size(); b++) EXPECT_NEAR(got[b], want[b], kTolerance) << "band " << b;
}

// Level counts and sizes.

TEST_F(TextureTest, LevelCountHalvesTheShorterSideDownToTwo) {
  struct Case {
    int n_x, n_y, levels;
  } cases[] = {{512, 512, 9}, {2, 2, 1}, {3, 5, 2}, {8, 8, 3}, {1, 1, 1}, {640, 3, 2}};
  for (const Case& c : cases) {
    const std::string name =
        picture("levels_" + std::to_string(c.n_x) + "x" + std::to_string(c.n_y), c.n_x, c.n_y, 1);
    TCTexture_plane plane(byte_record(name, 1.0, 1.0, 1, 0));
    ASSERT_EQ(plane.loaded, 1) << c.n_x << " by " << c.n_y;
    EXPECT_EQ(plane.n_x, c.n_x);
    EXPECT_EQ(plane.n_y, c.n_y);
    EXPECT_EQ(plane.n_levels, c.levels) << c.n_x << " by " << c.n_y;
  }
}

TEST_F(TextureTest, NoLevelsWithoutMakeLevels) {
  const std::string name = picture("one_level", 8, 8, 1);
  TCTexture_plane_input input = byte_record(name, 1.0, 1.0, 1, 0);
  input.make_levels = 0;
  TCTexture_plane plane(input);
  ASSERT_EQ(plane.loaded, 1);
  EXPECT_EQ(plane.n_levels, 1);
}

TEST_F(TextureTest, LevelSizesRoundUpAndPixelSizesDouble) {
  const std::string name = picture("sizes", 7, 6, 1);
  TCTexture_plane plane(byte_record(name, 14.0, 3.0, 1, 0));
  ASSERT_EQ(plane.n_levels, 3);
  const int sizes[3][2] = {{7, 6}, {4, 3}, {2, 2}};
  for (int l = 0; l < 3; l++) {
    EXPECT_EQ(plane.level_scale[l], 1 << l);
    EXPECT_EQ(plane.level_size[l][0], sizes[l][0]) << l;
    EXPECT_EQ(plane.level_size[l][1], sizes[l][1]) << l;
  }
  EXPECT_EQ(plane.pixel_x[0], 2.0);
  EXPECT_EQ(plane.pixel_y[0], 0.5);
  EXPECT_EQ(plane.inv_pixel_x[0], 0.5);
  EXPECT_EQ(plane.inv_pixel_y[0], 2.0);
  EXPECT_EQ(plane.pixel_x[2], 8.0);
  EXPECT_EQ(plane.pixel_y[2], 2.0);
  EXPECT_EQ(plane.inv_pixel_x[2], 0.125);
  EXPECT_EQ(plane.inv_pixel_y[1], 1.0);
  EXPECT_EQ(plane.half_width, 7.0);
  EXPECT_EQ(plane.half_height, 1.5);
}

// The pyramid.

TEST_F(TextureTest, LevelZeroHoldsThePictureXMajor) {
  const std::string name = picture("level0", 3, 5, 2);
  TCTexture_plane plane(byte_record(name, 1.0, 1.0, 2, 0));
  ASSERT_EQ(plane.loaded, 1);
  for (int b = 0; b < 2; b++)
    for (int x = 0; x < 3; x++)
      for (int y = 0; y < 5; y++)
        EXPECT_EQ(plane.planes[0][b][x * 5 + y], pattern_byte(x, y, b)) << x << "," << y;
}

TEST_F(TextureTest, MeanRoundsByAddingJustUnderAHalf) {
  // Level 0 as [x][y]; level 1's four boxes have means 0.5, 3.25, 0.75 and
  // 9.5, which give 0, 3, 1 and 9: a half rounds down, three quarters up.
  const unsigned char level0[4][4] = {{0, 0, 3, 3}, {0, 2, 3, 4}, {0, 1, 9, 10}, {2, 0, 9, 10}};
  std::vector<unsigned char> bytes;
  for (int y = 0; y < 4; y++)
    for (int x = 0; x < 4; x++) bytes.push_back(level0[x][y]);
  const std::string name = bytes_picture("rounding", 4, 4, 1, bytes);
  TCTexture_plane plane(byte_record(name, 1.0, 1.0, 1, 0));
  ASSERT_EQ(plane.n_levels, 2);
  const unsigned char* level1 = plane.planes[1][0];
  EXPECT_EQ(level1[0 * 2 + 0], 0);
  EXPECT_EQ(level1[0 * 2 + 1], 3);
  EXPECT_EQ(level1[1 * 2 + 0], 1);
  EXPECT_EQ(level1[1 * 2 + 1], 9);
}

TEST_F(TextureTest, EdgeOfAnOddSizedPyramidAveragesLevelZero) {
  const std::string name = picture("pyramid76", 7, 6, 1);
  TCTexture_plane plane(byte_record(name, 1.0, 1.0, 1, 0));
  ASSERT_EQ(plane.n_levels, 3);
  const int level1[12] = {31, 53, 75, 105, 127, 149, 179, 201, 223, 234, 128, 22};
  const int level2[4] = {79, 112, 187, 156};
  for (int k = 0; k < 12; k++) EXPECT_EQ(plane.planes[1][0][k], level1[k]) << k;
  for (int k = 0; k < 4; k++) EXPECT_EQ(plane.planes[2][0][k], level2[k]) << k;
  // By hand: level 2 at (1, 1) is the level-0 box x 4..6, y 4..5 (the rest
  // lies outside): 199 210 236 247 17 28, mean 156.17, byte 156.
  EXPECT_EQ(plane.planes[2][0][1 * 2 + 1], 156);
}

TEST_F(TextureTest, PyramidOfThreeByFiveForEachBand) {
  const std::string name = picture("pyramid35", 3, 5, 2);
  TCTexture_plane plane(byte_record(name, 1.0, 1.0, 2, 0));
  ASSERT_EQ(plane.n_levels, 2);
  const int level1[2][6] = {{31, 53, 69, 86, 108, 125}, {92, 114, 130, 147, 169, 186}};
  for (int b = 0; b < 2; b++)
    for (int k = 0; k < 6; k++) EXPECT_EQ(plane.planes[1][b][k], level1[b][k]) << b << "," << k;
}

// Lookups, on the byte scale (range 0 to 255 over bytes 0 to 255).

struct Lookup {
  const char* name;
  int n_x, n_y, bands;
  double width, height;
  int periodic;
  double x, y, footprint;
  std::vector<double> expected;
};

TEST_F(TextureTest, LookupsMatchTheIndependentReference) {
  const Lookup cases[] = {
      {"2x2 below a pixel", 2, 2, 3, 2.0, 2.0, 0, 0.2, -0.3, 0.1, {35.1, 96.1, 157.1}},
      {"2x2 periodic below a pixel", 2, 2, 3, 2.0, 2.0, 1, 0.2, -0.3, 0.1, {6.44, 49.14, 91.84}},
      {"2x2 far outside", 2, 2, 3, 2.0, 2.0, 0, 50.0, -40.0, 0.1, {44.0, 105.0, 166.0}},
      {"3x5 below a pixel", 3, 5, 2, 3.0, 2.5, 0, 0.35, 0.6, 0.2, {92.15, 153.15}},
      {"3x5 periodic beyond the picture", 3, 5, 2, 3.0, 2.5, 1, 4.1, -2.2, 0.2, {65.3, 126.3}},
      {"3x5 between the levels", 3, 5, 2, 3.0, 2.5, 0, -0.4, 0.3, 0.6, {57.5505, 118.5505}},
      {"3x5 footprint beyond the picture", 3, 5, 2, 3.0, 2.5, 0, 0.7, -0.9, 10.0, {64.0, 125.0}},
      {"8x8 below a pixel", 8, 8, 2, 4.0, 4.0, 0, 0.3, 1.1, 0.25, {203.48, 26.4}},
      {"8x8 between levels 0 and 1", 8, 8, 2, 4.0, 4.0, 0, 0.3, 1.1, 0.75, {181.72, 48.16}},
      {"8x8 between levels 1 and 2", 8, 8, 2, 4.0, 4.0, 0, -1.3, 0.45, 1.5, {99.8, 155.0}},
      {"8x8 periodic between levels 1 and 2",
       8,
       8,
       2,
       4.0,
       4.0,
       1,
       5.7,
       -6.05,
       1.5,
       {131.05, 154.22}},
      {"8x8 footprint beyond the picture", 8, 8, 2, 4.0, 4.0, 0, 0.3, 1.1, 10.0, {115.2, 108.2}},
      {"8x8 periodic at the seam", 8, 8, 2, 4.0, 4.0, 1, -1.9, 1.95, 0.1, {7.98, 50.68}},
      {"1x4 periodic one-pixel axis", 1, 4, 1, 1.0, 4.0, 1, 0.8, 0.4, 0.1, {22.32}},
  };
  int k = 0;
  for (const Lookup& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string name = picture("lookup" + std::to_string(k++), c.n_x, c.n_y, c.bands);
    TCTexture_plane plane(byte_record(name, c.width, c.height, c.bands, c.periodic));
    ASSERT_EQ(plane.loaded, 1);
    double out[3] = {-1.0, -1.0, -1.0};
    plane.sample_point(out, c.x, c.y, c.footprint, 1);
    expect_values(out, c.expected);
  }
}

TEST_F(TextureTest, FootprintBelowAPixelIsPlainBilinearOnLevelZero) {
  const std::string name = picture("bilinear", 2, 2, 1);
  TCTexture_plane plane(byte_record(name, 2.0, 2.0, 1, 0));
  // By hand: u = 1.2 - 0.5 = 0.7, v = 0.7 - 0.5 = 0.2; bytes 7, 18 (x 0)
  // and 44, 55 (x 1): 0.3*0.8*7 + 0.3*0.2*18 + 0.7*0.8*44 + 0.7*0.2*55.
  double out[1];
  plane.sample(out, 0.2, -0.3, 0);
  EXPECT_NEAR(out[0], 35.1, kTolerance);
  plane.sample_point(out, 0.2, -0.3, 0.999, 1);
  EXPECT_NEAR(out[0], 35.1, kTolerance);
}

TEST_F(TextureTest, FootprintLargerThanThePictureReadsTheLastLevelAlone) {
  const std::string name = picture("last_level", 8, 8, 2);
  TCTexture_plane plane(byte_record(name, 4.0, 4.0, 2, 0));
  double last[2];
  double looked_up[2];
  plane.sample(last, 0.3, 1.1, 2);
  plane.sample_point(looked_up, 0.3, 1.1, 100.0, 1);
  EXPECT_EQ(looked_up[0], last[0]);
  EXPECT_EQ(looked_up[1], last[1]);
  EXPECT_NEAR(last[0], 115.2, kTolerance);
}

TEST_F(TextureTest, OutsideANonPeriodicPlaneTheEdgePixelGoesOn) {
  const std::string name = picture("edge", 3, 5, 1);
  TCTexture_plane plane(byte_record(name, 3.0, 5.0, 1, 0));
  double out[1];
  // Beyond the last column at the height of row 2's centre: byte (2, 2).
  plane.sample_point(out, 1000.0, 0.0, 0.1, 1);
  EXPECT_NEAR(out[0], pattern_byte(2, 2, 0), kTolerance);
  // Below and left of the corner: byte (0, 0), however far.
  plane.sample_point(out, -1e9, -1e9, 0.1, 1);
  EXPECT_NEAR(out[0], pattern_byte(0, 0, 0), kTolerance);
}

TEST_F(TextureTest, OnePixelPeriodicAxisWrapsByTheFraction) {
  // x: u = 1.3 wraps to 0.3, less a half -0.2: pixel -1 has no weight, so
  // pixel 0 gets f = 0.8. y: v = 0.9 - 0.5 = 0.4 between bytes 7 and 18.
  const std::string name = picture("one_pixel", 1, 4, 1);
  TCTexture_plane plane(byte_record(name, 1.0, 4.0, 1, 1));
  double out[1];
  plane.sample_point(out, 0.8, -1.1, 0.1, 1);
  EXPECT_NEAR(out[0], 0.8 * (0.6 * 7 + 0.4 * 18), kTolerance);
}

TEST_F(TextureTest, PlaneNeverLoadedAnswersItsMinimum) {
  const double lo[1] = {2.0};
  const double hi[1] = {3.0};
  TCTexture_plane plane(1.0, 1.0, 1, lo, hi, 1, 0, 1);
  double out[1] = {-1.0};
  plane.sample_point(out, 0.0, 0.0, 0.1, 1);
  EXPECT_EQ(out[0], 2.0);
}

// Radiance.

class TextureRadiance : public TextureTest {
 protected:
  // The 8 by 8 picture with different ranges above and below.
  TCTexture_plane* make_plane() {
    const std::string name = picture("radiance", 8, 8, 2);
    TCTexture_plane_input input;
    input.width = 4.0;
    input.height = 4.0;
    const double lo_above[2] = {0.5, 1.0};
    const double hi_above[2] = {10.0, 3.0};
    const double lo_below[2] = {0.25, 0.0};
    const double hi_below[2] = {2.0, 5.0};
    input.set_above(2, lo_above, hi_above);
    input.set_below(2, lo_below, hi_below);
    copy_text(input.picture_file, name.c_str(), 256);
    return new TCTexture_plane(input);
  }
};

TEST_F(TextureRadiance, BothSidesLinear) {
  TCTexture_plane* plane = make_plane();
  ASSERT_EQ(plane->side_code, 3);
  double out[2];
  plane->sample_point(out, -1.3, 0.45, 1.5, 1);
  expect_values(out, {4.218039215686275, 2.215686274509804});
  plane->sample_point(out, -1.3, 0.45, 1.5, -1);
  expect_values(out, {0.9349019607843138, 3.0392156862745097});
  delete plane;
}

TEST_F(TextureRadiance, LogModeRaisesTenToTheValue) {
  TCTexture_plane* plane = make_plane();
  plane->set_scale_mode(1);
  EXPECT_EQ(plane->scale_mode_above, 1);
  EXPECT_EQ(plane->scale_mode_below, 1);
  double out[2];
  plane->sample_point(out, -1.3, 0.45, 1.5, 1);
  EXPECT_NEAR(out[0] / 16521.109729094846, 1.0, 1e-12);
  EXPECT_NEAR(out[1] / 164.3184291506274, 1.0, 1e-12);
  // Below: bytes 0 and 255 give 10^0.25 and 10^5.
  double ends[2] = {0.0, 255.0};
  plane->to_radiance(ends, -1);
  EXPECT_NEAR(ends[0], std::pow(10.0, 0.25), 1e-12);
  EXPECT_NEAR(ends[1] / 100000.0, 1.0, 1e-12);
  delete plane;
}

TEST_F(TextureRadiance, GammaModeTakesTheRootOfTheValue) {
  TCTexture_plane* plane = make_plane();
  const double high[2] = {2.0, 5.0};
  const double low[2] = {0.25, 0.0};
  const double gamma[2] = {2.2, 1.5};
  plane->set_display_range(2, high, low, gamma);
  double out[2];
  plane->sample_point(out, -1.3, 0.45, 1.5, -1);
  expect_values(out, {0.9698662579046301, 2.0981716503231254});
  // Above: bytes 255 and 0 with a range of 0 to 4 and gamma 2: 2 and 0.
  const double high_above[2] = {4.0, 4.0};
  const double low_above[2] = {0.0, 0.0};
  const double square[2] = {2.0, 2.0};
  plane->set_display_range(2, high_above, low_above, square);
  double ends[2] = {255.0, 0.0};
  plane->to_radiance(ends, 1);
  EXPECT_NEAR(ends[0], 2.0, 1e-12);
  EXPECT_EQ(ends[1], 0.0);
  delete plane;
}

TEST_F(TextureRadiance, DisplayRangeReplacesBothSidesAndSteps) {
  TCTexture_plane* plane = make_plane();
  const double high[2] = {255.0, 510.0};
  const double low[2] = {0.0, 0.0};
  const double gamma[2] = {1.0, 1.0};
  plane->set_display_range(0, high, low, gamma);
  EXPECT_EQ(plane->step_above[0], 1.0);
  EXPECT_EQ(plane->step_below[1], 2.0);
  EXPECT_EQ(plane->min_below[0], 0.0);
  EXPECT_EQ(plane->max_above[1], 510.0);
  double out[2] = {10.0, 10.0};
  plane->to_radiance(out, -1);
  EXPECT_EQ(out[0], 10.0);
  EXPECT_EQ(out[1], 20.0);
  delete plane;
}

TEST_F(TextureRadiance, AverageListIsTheMeanOfSamples) {
  TCTexture_plane* plane = make_plane();
  const double xs[4] = {-1.3, 0.2, 1.6, 0.9};
  const double ys[4] = {0.45, -1.7, 1.2, 0.05};
  double out[2];
  plane->average_list(out, 1.5, 4, xs, ys, 1);
  expect_values(out, {4.794651960784313, 1.9588627450980391});
  delete plane;
}

TEST_F(TextureRadiance, AverageGridAddsTheMinimumOnceMore) {
  TCTexture_plane* plane = make_plane();
  double row0_x[2] = {-1.3, 0.2};
  double row1_x[2] = {1.6, 0.9};
  double row0_y[2] = {0.45, -1.7};
  double row1_y[2] = {1.2, 0.05};
  double* xs[2] = {row0_x, row1_x};
  double* ys[2] = {row0_y, row1_y};
  double out[2];
  plane->average_grid(out, 1.5, 2, 2, xs, ys);
  expect_values(out, {4.8132794117647055, 1.966705882352941});

  // One position: the grid differs from the point by the minimum times
  // the step, the minimum having entered twice.
  double* one_x[1] = {row0_x};
  double* one_y[1] = {row0_y};
  plane->average_grid(out, 1.5, 1, 1, one_x, one_y);
  expect_values(out, {4.236666666666667, 2.223529411764706});
  double point[2];
  plane->sample_point(point, -1.3, 0.45, 1.5, 1);
  EXPECT_NEAR(out[0] - point[0], 0.5 * 9.5 / 255.0, 1e-12);
  EXPECT_NEAR(out[1] - point[1], 1.0 * 2.0 / 255.0, 1e-12);
  delete plane;
}

TEST_F(TextureTest, AverageGridUsesTheAboveSideWithoutGuard) {
  const std::string name = picture("grid_below", 2, 2, 1);
  TCTexture_plane_input input;
  input.width = 2.0;
  input.height = 2.0;
  const double lo[1] = {1.0};
  const double hi[1] = {2.0};
  input.set_below(1, lo, hi);
  copy_text(input.picture_file, name.c_str(), 256);
  TCTexture_plane plane(input);
  ASSERT_EQ(plane.side_code, 2);
  double x[1] = {0.2};
  double y[1] = {-0.3};
  double* xs[1] = {x};
  double* ys[1] = {y};
  double out[1] = {-1.0};
  // No range above: the byte-scale mean is all there is.
  plane.average_grid(out, 0.1, 1, 1, xs, ys);
  EXPECT_NEAR(out[0], 35.1, kTolerance);
}

TEST_F(TextureTest, LookupOnASideTheTextureDoesNotShowLeavesTheOutputAlone) {
  const std::string name = picture("guard", 2, 2, 1);
  TCTexture_plane_input input;
  input.width = 2.0;
  input.height = 2.0;
  const double lo[1] = {0.0};
  const double hi[1] = {255.0};
  input.set_below(1, lo, hi);
  copy_text(input.picture_file, name.c_str(), 256);
  TCTexture_plane below(input);
  double out[1] = {42.0};
  below.sample_point(out, 0.2, -0.3, 0.1, 1);
  EXPECT_EQ(out[0], 42.0);
  const double xs[1] = {0.2};
  const double ys[1] = {-0.3};
  below.average_list(out, 0.1, 1, xs, ys, 1);
  EXPECT_EQ(out[0], 42.0);
  below.sample_point(out, 0.2, -0.3, 0.1, -1);
  EXPECT_NEAR(out[0], 35.1, kTolerance);

  TCTexture_plane above(byte_record(name, 2.0, 2.0, 1, 0));
  out[0] = 42.0;
  above.sample_point(out, 0.2, -0.3, 0.1, -1);
  EXPECT_EQ(out[0], 42.0);
  above.average_list(out, 0.1, 1, xs, ys, -1);
  EXPECT_EQ(out[0], 42.0);
}

// Construction.

TEST_F(TextureTest, ConstructionFromTheRecordCopiesRangesAndStartsLinear) {
  const std::string name = picture("record", 2, 2, 1);
  TCTexture_plane_input input;
  input.width = 6.0;
  input.height = 4.0;
  input.periodic = 1;
  const double lo[1] = {1.0};
  const double hi[1] = {52.0};
  const double lo_below[1] = {0.0};
  const double hi_below[1] = {25.5};
  input.set_above(1, lo, hi);
  input.set_below(1, lo_below, hi_below);
  copy_text(input.picture_file, name.c_str(), 256);
  TCTexture_plane plane(input);
  EXPECT_EQ(plane.loaded, 1);
  EXPECT_EQ(plane.half_width, 3.0);
  EXPECT_EQ(plane.half_height, 2.0);
  EXPECT_EQ(plane.periodic, 1);
  EXPECT_EQ(plane.side_code, 3);
  EXPECT_EQ(plane.scale_mode_above, 0);
  EXPECT_EQ(plane.scale_mode_below, 0);
  EXPECT_EQ(plane.gamma_above[0], 1.0);
  EXPECT_EQ(plane.gamma_below[0], 1.0);
  EXPECT_EQ(plane.step_above[0], 51.0 / 255.0);
  EXPECT_EQ(plane.step_below[0], 25.5 / 255.0);
}

TEST_F(TextureTest, RawConstructionFillsTheAboveRangeOnly) {
  const double lo[2] = {0.0, 1.0};
  const double hi[2] = {255.0, 511.0};
  TCTexture_plane plane(2.0, 2.0, 2, lo, hi, 1, 0, 1);
  EXPECT_EQ(plane.loaded, 0);
  EXPECT_EQ(plane.side_code, 1);
  EXPECT_EQ(plane.step_above[1], 2.0);
  EXPECT_EQ(plane.gamma_above[1], 1.0);
  EXPECT_EQ(plane.min_below, nullptr);
  EXPECT_EQ(plane.step_below, nullptr);
  const std::string name = picture("raw", 2, 2, 2);
  ASSERT_EQ(plane.load_picture(name.c_str(), 1, 0, 0, 0, 0), 1);
  EXPECT_EQ(plane.loaded, 1);
  double out[2];
  plane.sample_point(out, 0.2, -0.3, 0.1, 1);
  expect_values(out, {35.1, 1.0 + 2.0 * 96.1});
}

// Loading.

TEST_F(TextureTest, SubRectangleIsCutFromThePicture) {
  const std::string name = picture("sub", 6, 4, 2);
  const double lo[2] = {0.0, 0.0};
  const double hi[2] = {255.0, 255.0};
  TCTexture_plane plane(3.0, 2.0, 2, lo, hi, 1, 0, 1);
  Stream_capture capture(std::cout);
  ASSERT_EQ(plane.load_picture(name.c_str(), 0, 1, 3, 1, 2), 1);
  EXPECT_EQ(capture.text(), "");
  EXPECT_EQ(plane.n_x, 3);
  EXPECT_EQ(plane.n_y, 2);
  EXPECT_EQ(plane.n_levels, 1);
  for (int b = 0; b < 2; b++)
    for (int x = 0; x < 3; x++)
      for (int y = 0; y < 2; y++)
        EXPECT_EQ(plane.planes[0][b][x * 2 + y], pattern_byte(x + 1, y + 1, b));
}

TEST_F(TextureTest, SubRectangleOutsideThePictureFallsBackToTheWhole) {
  const std::string name = picture("sub_fallback", 6, 4, 1);
  const double lo[1] = {0.0};
  const double hi[1] = {255.0};
  const int bad[4][4] = {{1, 6, 0, 3}, {-1, 2, 0, 3}, {0, 5, 2, 1}, {0, 5, 0, 4}};
  for (const auto& r : bad) {
    TCTexture_plane plane(6.0, 4.0, 1, lo, hi, 1, 0, 1);
    Stream_capture capture(std::cout);
    ASSERT_EQ(plane.load_picture(name.c_str(), 0, r[0], r[1], r[2], r[3]), 1);
    EXPECT_EQ(capture.text(),
              "Subpicture texture patch is larger than whole picture\nUsing whole picture\n");
    EXPECT_EQ(plane.n_x, 6);
    EXPECT_EQ(plane.n_y, 4);
    EXPECT_EQ(plane.planes[0][0][5 * 4 + 3], pattern_byte(5, 3, 0));
  }
}

TEST_F(TextureTest, FewerChannelsThanBandsFailsOnTheMissingBand) {
  const std::string name = picture("one_channel", 2, 2, 1);
  Stream_capture capture(std::cout);
  TCTexture_plane plane(byte_record(name, 1.0, 1.0, 3, 0));
  EXPECT_EQ(plane.loaded, 0);
  const std::string text = capture.text();
  const std::string mismatch =
      "file " + name + " only has 1 bands. \ntexture map expects 3 bands \n";
  const std::string failure = "Error - could not read band 1 of " + name + "\n";
  ASSERT_EQ(text.find(mismatch), 0u) << text;
  const size_t at = text.find(failure);
  ASSERT_NE(at, std::string::npos) << text;
  EXPECT_EQ(at + failure.size(), text.size());
}

TEST_F(TextureTest, MissingAlphaChannelHasItsOwnMessage) {
  const std::string name = picture("no_alpha", 2, 2, 3);
  Stream_capture capture(std::cout);
  TCTexture_plane plane(byte_record(name, 1.0, 1.0, 4, 0));
  EXPECT_EQ(plane.loaded, 0);
  const std::string failure = "Error - could not read alpha channel of " + name + "\n";
  const std::string text = capture.text();
  ASSERT_GE(text.size(), failure.size());
  EXPECT_EQ(text.substr(text.size() - failure.size()), failure);
}

TEST_F(TextureTest, VerboseLoadReportsTheChannelCount) {
  const std::string name = picture("verbose", 2, 2, 3);
  verbose = 1;
  Stream_capture capture(std::cout);
  TCTexture_plane plane(byte_record(name, 1.0, 1.0, 3, 0));
  EXPECT_EQ(plane.loaded, 1);
  EXPECT_EQ(capture.text(), "texture file " + name + " has 3 bands \n");
}

TEST_F(TextureTest, UnreadableFileFailsOnItsDimensions) {
  const std::string name = scratch_file("not_there");
  Stream_capture capture(std::cout);
  TCTexture_plane plane(byte_record(name, 1.0, 1.0, 1, 0));
  EXPECT_EQ(plane.loaded, 0);
  const std::string failure = "Error - could not read dimensions of " + name + "\n";
  const std::string text = capture.text();
  ASSERT_GE(text.size(), failure.size());
  EXPECT_EQ(text.substr(text.size() - failure.size()), failure);
  double out[1] = {-1.0};
  plane.sample_point(out, 0.0, 0.0, 0.1, 1);
  EXPECT_EQ(out[0], 0.0);
}

// Reloading.

TEST_F(TextureTest, ReloadOfAnotherSizeIsRefusedAndKeepsThePicture) {
  const std::string first = picture("reload_first", 4, 4, 1);
  const std::string other = picture("reload_other", 4, 3, 1);
  TCTexture_plane plane(byte_record(first, 1.0, 1.0, 1, 0));
  ASSERT_EQ(plane.loaded, 1);
  Stream_capture capture(std::cout);
  EXPECT_EQ(plane.reload_picture(other.c_str()), 0);
  EXPECT_EQ(capture.text(), "Error changing texture: " + other +
                                " has different dimensions that expected!\n"
                                "NOT UPDATING TEXTURE\n\n");
  EXPECT_EQ(plane.loaded, 1);
  EXPECT_EQ(plane.n_y, 4);
  for (int x = 0; x < 4; x++)
    for (int y = 0; y < 4; y++) EXPECT_EQ(plane.planes[0][0][x * 4 + y], pattern_byte(x, y, 0));
}

TEST_F(TextureTest, ReloadReplacesThePictureAndItsLevels) {
  const std::string first = picture("reload_a", 4, 4, 1);
  const std::string second =
      bytes_picture("reload_b", 4, 4, 1, std::vector<unsigned char>(16, 200));
  TCTexture_plane plane(byte_record(first, 1.0, 1.0, 1, 0));
  Stream_capture capture(std::cout);
  ASSERT_EQ(plane.reload_picture(second.c_str()), 1);
  EXPECT_EQ(capture.text(), "");
  for (int k = 0; k < 16; k++) EXPECT_EQ(plane.planes[0][0][k], 200);
  for (int k = 0; k < 4; k++) EXPECT_EQ(plane.planes[1][0][k], 200);
}

TEST_F(TextureTest, ReloadWithFewerChannelsUsesItsOwnWords) {
  const std::string first = picture("reload_two", 2, 2, 2);
  const std::string second = picture("reload_one", 2, 2, 1);
  TCTexture_plane plane(byte_record(first, 1.0, 1.0, 2, 0));
  ASSERT_EQ(plane.loaded, 1);
  Stream_capture capture(std::cout);
  EXPECT_EQ(plane.reload_picture(second.c_str()), 0);
  const std::string text = capture.text();
  EXPECT_EQ(
      text.find("file " + second + "only has 1 number of bands \ntexture map expects 2 bands \n"),
      0u)
      << text;
  EXPECT_NE(text.find("Error - could not read band 1 of " + second + "\n"), std::string::npos);
}

}  // namespace
