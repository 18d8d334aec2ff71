#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "TCDisturbed_grid.h"
#include "TCHdf_image.h"
#include "TCKelvin_wake.h"
#include "Wake_details_input.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// cos 0.8, sin 0.6: a 3-4-5 triangle keeps the hand values short.
const double course = 0.6435011087932844;

void describe_generated(Wake_details_input& input, const std::string& file, int n_x, int n_y,
                        double spacing, int shape, double length, double width, double depth,
                        double velocity, double eps, double us) {
  input.n_x = n_x;
  input.n_y = n_y;
  input.dx = spacing;
  input.dy = spacing;
  input.generate_wake = 1;
  std::strncpy(input.wake_file, file.c_str(), 255);
  input.wake_file[255] = '\0';
  input.boat_shape = shape;
  input.boat_length = length;
  input.boat_width = width;
  input.boat_depth = depth;
  input.velocity = velocity;
  input.damping_eps = eps;
  input.damping_us = us;
}

void describe_read(Wake_details_input& input, const std::string& file, int n_x, int n_y,
                   double spacing, double length, double width, double depth) {
  input.n_x = n_x;
  input.n_y = n_y;
  input.dx = spacing;
  input.dy = spacing;
  input.generate_wake = 0;
  std::strncpy(input.wake_file, file.c_str(), 255);
  input.wake_file[255] = '\0';
  input.boat_length = length;
  input.boat_width = width;
  input.boat_depth = depth;
}

std::vector<float> read_plane_of(const std::string& file, int n_x, int n_y) {
  std::vector<float> values(static_cast<size_t>(n_x) * n_y, 0.0f);
  const int dims[2] = {n_y, n_x};
  int found[2];
  EXPECT_EQ(hdf_read_grid(file.c_str(), values.data(), dims, found), hdf_grid_read);
  return values;
}

double largest_magnitude(const float* values, int count) {
  double largest = 0.0;
  for (int k = 0; k < count; k++) largest = std::fmax(largest, std::fabs(values[k]));
  return largest;
}

}  // namespace

TEST(KelvinWake, DampingFollowsTheCubeOfSpeedWhenGenerating) {
  Scratch_folder scratch;
  Wake_details_input input;
  describe_generated(input, scratch.file("damping.hdf"), 16, 8, 1.0, 1, 6.0, 2.0, 1.0, 5.0, 0.01,
                     2.0);
  std::vector<float> buffer(18 * 8, 0.0f);
  TCKelvin_wake wake(input, buffer.data());
  EXPECT_EQ(wake.kind, -6);
  // 0.01 * 125 / (4 * 9.81)
  EXPECT_NEAR(wake.damping, 1.25 / 39.24, 1e-15);

  Wake_details_input reading;
  describe_read(reading, scratch.file("damping.hdf"), 16, 8, 1.0, 6.0, 2.0, 1.0);
  reading.velocity = 5.0;
  reading.damping_eps = 0.01;
  reading.damping_us = 2.0;
  TCKelvin_wake read(reading, buffer.data());
  EXPECT_EQ(read.damping, 0.0);
}

TEST(KelvinWake, ZeroSpeedGivesAFlatWake) {
  Scratch_folder scratch;
  Wake_details_input input;
  describe_generated(input, scratch.file("still.hdf"), 32, 16, 1.0, 1, 8.0, 3.0, 1.5, 0.0, 0.02,
                     1.0);
  std::vector<float> buffer(34 * 16, 1.0f);
  TCKelvin_wake wake(input, buffer.data());
  for (int k = 0; k < 32 * 16; k++) ASSERT_EQ(buffer[k], 0.0f) << k;
}

TEST(KelvinWake, AHullFromAFileLeavesTheWakeFlatAndCentredAtTheOrigin) {
  Scratch_folder scratch;
  Wake_details_input input;
  describe_generated(input, scratch.file("file_hull.hdf"), 32, 16, 1.0, 0, 8.0, 3.0, 1.5, 4.0, 0.02,
                     1.0);
  std::strcpy(input.hull_file, "no_such_hull_file.dat");
  std::vector<float> buffer(34 * 16, 1.0f);
  TCKelvin_wake wake(input, buffer.data());
  EXPECT_EQ(wake.center_x, 0.0);
  EXPECT_EQ(wake.center_y, 0.0);
  for (int k = 0; k < 32 * 16; k++) ASSERT_EQ(buffer[k], 0.0f) << k;
  // And nothing is inside a hull that has no shape.
  EXPECT_EQ(wake.inside_hull(0.0, 0.0), 0);
}

TEST(KelvinWake, AMovingHullMakesAFiniteWakeBehindItself) {
  Scratch_folder scratch;
  Wake_details_input input;
  describe_generated(input, scratch.file("moving.hdf"), 64, 32, 2.0, 1, 20.0, 4.0, 2.0, 6.0, 0.02,
                     1.0);
  std::vector<float> buffer(66 * 32, 0.0f);
  TCKelvin_wake wake(input, buffer.data());
  // The ship stands at the far x end, centred across.
  EXPECT_DOUBLE_EQ(wake.center_x, 64 * 2.0 - 10.0);
  EXPECT_DOUBLE_EQ(wake.center_y, 2.0 * 0.5 * 32);
  for (int k = 0; k < 64 * 32; k++) ASSERT_TRUE(std::isfinite(buffer[k])) << k;
  EXPECT_GT(largest_magnitude(buffer.data(), 64 * 32), 0.01);
}

TEST(KelvinWake, ResonanceWithoutDampingGoesOnWithNonFiniteValues) {
  // A speed for which the first padded mode along x has a^2 = g k exactly in
  // single precision: r rounds to 1, c is 0, and H divides 0 by 0.
  const int n_x = 8;
  const double kx = 6.2831853 / (2 * n_x * 1.0);
  const double k = static_cast<float>(kx);
  const double speed = std::sqrt(9.81 * k) / kx;
  ASSERT_EQ(static_cast<float>(speed * kx * speed * kx / (9.81 * k)), 1.0f);

  Scratch_folder scratch;
  Wake_details_input input;
  describe_generated(input, scratch.file("resonant.hdf"), n_x, 4, 1.0, 1, 4.0, 2.0, 1.0, speed, 0.0,
                     1.0);
  std::vector<float> buffer((n_x + 2) * 4, 0.0f);
  TCKelvin_wake wake(input, buffer.data());
  EXPECT_EQ(wake.damping, 0.0);
  int non_finite = 0;
  for (int k2 = 0; k2 < n_x * 4; k2++) non_finite += std::isfinite(buffer[k2]) ? 0 : 1;
  EXPECT_GT(non_finite, 0);

  // A little damping keeps the same speed finite.
  input.damping_eps = 0.01;
  TCKelvin_wake damped(input, buffer.data());
  for (int k2 = 0; k2 < n_x * 4; k2++) ASSERT_TRUE(std::isfinite(buffer[k2])) << k2;
}

TEST(KelvinWake, AWakeReadBackFromItsFileEqualsTheGeneratedOne) {
  Scratch_folder scratch;
  const std::string file = scratch.file("round_trip.hdf");
  Wake_details_input input;
  describe_generated(input, file, 64, 32, 2.0, 2, 20.0, 4.0, 2.0, 6.0, 0.02, 1.0);
  std::vector<float> generated(66 * 32, 0.0f);
  TCKelvin_wake wake(input, generated.data());
  ASSERT_GT(largest_magnitude(generated.data(), 64 * 32), 0.01);

  // The file holds the pattern per metre of depth.
  const std::vector<float> stored = read_plane_of(file, 64, 32);
  for (int k = 0; k < 64 * 32; k++) ASSERT_EQ(stored[k], generated[k] / 2.0f) << k;

  Wake_details_input reading;
  describe_read(reading, file, 64, 32, 2.0, 20.0, 4.0, 2.0);
  std::vector<float> read(66 * 32, 0.0f);
  TCKelvin_wake back(reading, read.data());
  for (int k = 0; k < 64 * 32; k++) ASSERT_EQ(read[k], generated[k]) << k;
  EXPECT_EQ(back.center_x, wake.center_x);
  EXPECT_EQ(back.center_y, wake.center_y);
}

TEST(KelvinWake, ReadingAtAnotherDepthScalesTheStoredPattern) {
  Scratch_folder scratch;
  const std::string file = scratch.file("per_depth.hdf");
  std::vector<float> values(8 * 4);
  for (int k = 0; k < 8 * 4; k++) values[k] = 0.25f * k - 3.0f;
  const int dims[2] = {4, 8};
  int first = 1;
  ASSERT_EQ(hdf_write_plane(file.c_str(), values.data(), dims, first), 1);
  Wake_details_input reading;
  describe_read(reading, file, 8, 4, 1.5, 6.0, 2.0, 3.0);
  std::vector<float> buffer(10 * 4, 0.0f);
  TCKelvin_wake wake(reading, buffer.data());
  for (int k = 0; k < 8 * 4; k++) EXPECT_EQ(buffer[k], 3.0f * (0.25f * k - 3.0f)) << k;
  // 8 * 1.5 - 3 and 1.5 * 2
  EXPECT_DOUBLE_EQ(wake.center_x, 9.0);
  EXPECT_DOUBLE_EQ(wake.center_y, 3.0);

  // At depth 0 whatever the file holds reads as a flat sea.
  describe_read(reading, file, 8, 4, 1.5, 6.0, 2.0, 0.0);
  TCKelvin_wake flat(reading, buffer.data());
  for (int k = 0; k < 8 * 4; k++) EXPECT_EQ(buffer[k], 0.0f) << k;
}

TEST(KelvinWake, DepthZeroOrBelowWritesTheFieldAsItStands) {
  Scratch_folder scratch;
  // Depth 0: no source, a flat field, and a file of zeros all the same.
  Wake_details_input input;
  describe_generated(input, scratch.file("depth_zero.hdf"), 32, 16, 1.0, 1, 8.0, 3.0, 0.0, 4.0,
                     0.02, 1.0);
  std::vector<float> buffer(34 * 16, 1.0f);
  TCKelvin_wake zero(input, buffer.data());
  const std::vector<float> zeros = read_plane_of(scratch.file("depth_zero.hdf"), 32, 16);
  for (int k = 0; k < 32 * 16; k++) ASSERT_EQ(zeros[k], 0.0f) << k;
  // Reading it back multiplies by 0.
  Wake_details_input reading;
  describe_read(reading, scratch.file("depth_zero.hdf"), 32, 16, 1.0, 8.0, 3.0, 0.0);
  TCKelvin_wake back(reading, buffer.data());
  for (int k = 0; k < 32 * 16; k++) ASSERT_EQ(buffer[k], 0.0f) << k;

  // A negative depth raises the water and is stored undivided: its file is
  // -2 times the per-metre file of the same hull at depth +2.
  describe_generated(input, scratch.file("depth_plus.hdf"), 32, 16, 1.0, 1, 8.0, 3.0, 2.0, 4.0,
                     0.02, 1.0);
  TCKelvin_wake plus(input, buffer.data());
  ASSERT_GT(largest_magnitude(buffer.data(), 32 * 16), 0.01);
  describe_generated(input, scratch.file("depth_minus.hdf"), 32, 16, 1.0, 1, 8.0, 3.0, -2.0, 4.0,
                     0.02, 1.0);
  TCKelvin_wake minus(input, buffer.data());
  const std::vector<float> per_metre = read_plane_of(scratch.file("depth_plus.hdf"), 32, 16);
  const std::vector<float> as_is = read_plane_of(scratch.file("depth_minus.hdf"), 32, 16);
  for (int k = 0; k < 32 * 16; k++) {
    ASSERT_EQ(as_is[k], -2.0f * per_metre[k]) << k;
    ASSERT_EQ(buffer[k], as_is[k]) << k;
  }
}

TEST(KelvinWakeDeathTest, AMissingWakeFileEndsTheRun) {
  Wake_details_input reading;
  describe_read(reading, "no_such_wake_file.hdf", 8, 4, 1.0, 4.0, 2.0, 1.0);
  std::vector<float> buffer(10 * 4, 0.0f);
  // Only standard output is let through to the matcher.
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        std::cerr.rdbuf(nullptr);
        TCKelvin_wake wake(reading, buffer.data());
      },
      ::testing::ExitedWithCode(1),
      "^wake file no_such_wake_file.hdfcan not be opened\n"
      "unable to allocate space for wake \n$");
}

TEST(KelvinWakeDeathTest, AWakeFileOfOtherDimensionsEndsTheRun) {
  Scratch_folder scratch;
  const std::string file = scratch.file("small.hdf");
  std::vector<float> values(5 * 3, 1.0f);
  const int dims[2] = {3, 5};
  int first = 1;
  ASSERT_EQ(hdf_write_plane(file.c_str(), values.data(), dims, first), 1);
  Wake_details_input reading;
  describe_read(reading, file, 8, 4, 1.0, 4.0, 2.0, 1.0);
  std::vector<float> buffer(10 * 4, 0.0f);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        std::cerr.rdbuf(nullptr);
        TCKelvin_wake wake(reading, buffer.data());
      },
      ::testing::ExitedWithCode(1),
      "^wake file " + file +
          " is not of correct dimension\n"
          "file size : 5 x 3\n"
          "array size: 8 x 4\n"
          "unable to allocate space for wake \n$");
}

namespace {

// A wake read from a small file, with its placement set by hand.
class PlacedKelvinWake : public ::testing::Test {
 protected:
  void SetUp() override {
    file = scratch.file("placed.hdf");
    std::vector<float> values(8 * 4, 0.5f);
    const int dims[2] = {4, 8};
    int first = 1;
    ASSERT_EQ(hdf_write_plane(file.c_str(), values.data(), dims, first), 1);
    describe_read(input, file, 8, 4, 1.0, 20.0, 6.0, 1.0);
    input.position_x = 100.0;
    input.position_y = 50.0;
    input.direction = course;
    input.velocity = 5.0;
  }
  Scratch_folder scratch;
  std::string file;
  Wake_details_input input;
  std::vector<float> buffer = std::vector<float>(10 * 4, 0.0f);
};

}  // namespace

TEST_F(PlacedKelvinWake, MovingOffsetCarriesTheCentreAlongTheCourse) {
  TCKelvin_wake wake(input, buffer.data());
  wake.center_x = 10.0;
  wake.center_y = 4.0;
  double x = 0.0, y = 0.0;
  EXPECT_EQ(wake.moving_offset(x, y, 2.0), 1);
  // 0.8 * 10 - 0.6 * 4 - 100 - 0.8 * 5 * 2; 0.6 * 10 + 0.8 * 4 - 50 - 0.6 * 5 * 2
  EXPECT_NEAR(x, -102.4, 1e-9);
  EXPECT_NEAR(y, -46.8, 1e-9);
}

TEST_F(PlacedKelvinWake, LatticeToWorldTurnsAndMovesAPoint) {
  TCKelvin_wake wake(input, buffer.data());
  wake.center_x = 10.0;
  wake.center_y = 4.0;
  double x = 0.0, y = 0.0;
  // a = 3, b = 2: 2.4 - 1.2 + 100 + 8; 1.6 + 1.8 + 50 + 6
  wake.lattice_to_world(13.0, 6.0, 2.0, x, y);
  EXPECT_NEAR(x, 109.2, 1e-9);
  EXPECT_NEAR(y, 59.4, 1e-9);
}

TEST_F(PlacedKelvinWake, TheHolderPlacesTheLatticeWhereLatticeToWorldSaysItIs) {
  TCKelvin_wake wake(input, buffer.data());
  TCDisturbed_grid holder(8, 8, 8, 4, 1.0, 1.0, nullptr, 1.0, 1.0);
  holder.set_detail_rotation(0, input.direction);
  for (int step = 0; step < 3; step++) {
    const double t = 1.5 * step;
    wake.moving_offset(holder.detail_offset[0][0], holder.detail_offset[0][1], t);
    double x, y, u, v;
    wake.lattice_to_world(2.25, 1.5, t, x, y);
    holder.detail_coordinates(0, x, y, u, v);
    EXPECT_NEAR(u, 2.25, 1e-9);
    EXPECT_NEAR(v, 1.5, 1e-9);
  }
}

TEST_F(PlacedKelvinWake, HullOutlineIsTheBoxCornersInTheWorld) {
  TCKelvin_wake wake(input, buffer.data());
  wake.center_x = 10.0;
  wake.center_y = 4.0;
  int count = 0;
  TCWake_corner ring[4];
  wake.hull_outline(count, ring, 2.0);
  ASSERT_EQ(count, 4);
  // Corners (-10, -3), (10, -3), (10, 3), (-10, 3) about the centre, turned
  // by the course and moved to (100, 50) + 2 s * 5 m/s * (0.8, 0.6).
  const double expected[4][2] = {{101.8, 47.6}, {117.8, 59.6}, {114.2, 64.4}, {98.2, 52.4}};
  for (int k = 0; k < 4; k++) {
    EXPECT_NEAR(ring[k].x, expected[k][0], 1e-9) << k;
    EXPECT_NEAR(ring[k].y, expected[k][1], 1e-9) << k;
  }
}

TEST_F(PlacedKelvinWake, InsideHullIsTheBoxForARectangle) {
  TCKelvin_wake wake(input, buffer.data());
  wake.center_x = 10.0;
  wake.center_y = 4.0;
  wake.boat_shape = 1;
  EXPECT_EQ(wake.inside_hull(10.0, 4.0), 1);
  EXPECT_EQ(wake.inside_hull(0.0, 4.0), 1);
  EXPECT_EQ(wake.inside_hull(20.0, 7.0), 1);
  EXPECT_EQ(wake.inside_hull(16.0, 6.0), 1);
  EXPECT_EQ(wake.inside_hull(20.01, 4.0), 0);
  EXPECT_EQ(wake.inside_hull(-0.01, 4.0), 0);
  EXPECT_EQ(wake.inside_hull(10.0, 7.01), 0);
  EXPECT_EQ(wake.inside_hull(10.0, 0.99), 0);
}

TEST_F(PlacedKelvinWake, InsideHullIsTheForwardHalfOfAnEllipseFromTheStern) {
  TCKelvin_wake wake(input, buffer.data());
  wake.center_x = 10.0;
  wake.center_y = 4.0;
  wake.boat_shape = 2;
  // (u / 20)^2 + ((v - 4) / 3)^2 <= 1 within the box.
  EXPECT_EQ(wake.inside_hull(0.0, 4.0), 1);
  EXPECT_EQ(wake.inside_hull(0.0, 6.9), 1);
  EXPECT_EQ(wake.inside_hull(19.9, 4.0), 1);
  EXPECT_EQ(wake.inside_hull(20.0, 4.0), 1);
  EXPECT_EQ(wake.inside_hull(12.0, 6.0), 1);   // 0.36 + 0.44
  EXPECT_EQ(wake.inside_hull(16.0, 6.0), 0);   // 0.64 + 0.44
  EXPECT_EQ(wake.inside_hull(19.9, 5.0), 0);   // 0.99 + 0.11
  EXPECT_EQ(wake.inside_hull(-0.01, 4.0), 0);  // the ellipse's rear half is outside the box
  wake.boat_shape = 0;
  EXPECT_EQ(wake.inside_hull(10.0, 4.0), 0);
}

TEST_F(PlacedKelvinWake, NothingEvolvesButThePotentialIsZero) {
  TCKelvin_wake wake(input, buffer.data());
  wake.evolve_heights(3.0);
  wake.initialize_field();
  EXPECT_EQ(wake.transform_to_lattice(), 0.0);
  for (int k = 0; k < 8 * 4; k++) ASSERT_EQ(buffer[k], 0.5f) << k;
  wake.evolve_potential(3.0);
  for (int k = 0; k < 10 * 4; k++) ASSERT_EQ(buffer[k], 0.0f) << k;
}

TEST(KelvinWake, AccelerationIsSpeedSquaredTimesTheSecondDerivativeAlongX) {
  Scratch_folder scratch;
  const int n_x = 64, n_y = 8;
  const double dx = 2.0;
  const std::string file = scratch.file("acceleration.hdf");
  std::vector<float> values(n_x * n_y, 0.0f);
  const int dims[2] = {n_y, n_x};
  int first = 1;
  ASSERT_EQ(hdf_write_plane(file.c_str(), values.data(), dims, first), 1);
  Wake_details_input reading;
  describe_read(reading, file, n_x, n_y, dx, 10.0, 2.0, 1.0);
  reading.velocity = 3.0;
  std::vector<float> buffer((n_x + 2) * n_y, 0.0f);
  TCKelvin_wake wake(reading, buffer.data());
  // h = 0.5 cos(2 pi 3 i / n_x) + 0.25 sin(2 pi j / n_y): the second
  // derivative along x of the first term is -(2 pi 3 / (n_x dx))^2 times it;
  // the second term does not vary along x.
  const double kx = 2.0 * 3.1415926535 * 3.0 / (n_x * dx);
  for (int j = 0; j < n_y; j++) {
    for (int i = 0; i < n_x; i++) {
      buffer[i + n_x * j] = static_cast<float>(0.5 * std::cos(2.0 * 3.1415926535 * 3 * i / n_x) +
                                               0.25 * std::sin(2.0 * 3.1415926535 * j / n_y));
    }
  }
  std::vector<float> acceleration((n_x + 2) * n_y, 7.0f);
  wake.evolve_acceleration_into(acceleration.data(), 12.0, 5.0, 5.0, 1.0);
  // Columns 0 .. n_x / 20 - 1 (here 0, 1, 2) and the last two are zero.
  for (int j = 0; j < n_y; j++) {
    for (int i = 0; i < n_x; i++) {
      const float a = acceleration[i + n_x * j];
      if (i < 3 || i >= n_x - 2) {
        ASSERT_EQ(a, 0.0f) << i << " " << j;
      } else {
        const double expected = -9.0 * kx * kx * 0.5 * std::cos(2.0 * 3.1415926535 * 3 * i / n_x);
        ASSERT_NEAR(a, expected, 2e-5) << i << " " << j;
      }
    }
  }
  // The pattern is stationary: time and smearing change nothing.
  std::vector<float> again((n_x + 2) * n_y, 0.0f);
  wake.evolve_acceleration_into(again.data(), 0.0, 0.0, 0.0, 0.0);
  for (int k = 0; k < n_x * n_y; k++) ASSERT_EQ(again[k], acceleration[k]) << k;
  // The field itself is left alone.
  EXPECT_FLOAT_EQ(buffer[5], static_cast<float>(0.5 * std::cos(2.0 * 3.1415926535 * 15 / n_x)));
}

TEST(KelvinWakePlacement, WorldToLatticeUndoesLatticeToWorld) {
  Wake_details_input input;
  input.n_x = 8;
  input.n_y = 4;
  input.dx = 2.0;
  input.dy = 2.0;
  input.generate_wake = 1;
  input.boat_shape = 0;
  input.position_x = 3.0;
  input.position_y = -4.0;
  input.direction = 2.2;
  input.velocity = 6.0;
  std::vector<float> buffer((8 + 2) * 4, 0.0f);
  Scratch_folder folder;
  std::snprintf(input.wake_file, sizeof(input.wake_file), "%s", folder.file("w.hdf").c_str());
  Stream_capture quiet(std::cout);
  TCKelvin_wake wake(input, buffer.data());
  double x = 0.0, y = 0.0, u = 0.0, v = 0.0;
  wake.lattice_to_world(5.5, -1.25, 3.0, x, y);
  wake.world_to_lattice(x, y, 3.0, u, v);
  EXPECT_NEAR(u, 5.5, 1e-12);
  EXPECT_NEAR(v, -1.25, 1e-12);
}
