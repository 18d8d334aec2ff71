#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "Height_grid_details_input.h"
#include "Multiplier_grid_details_input.h"
#include "TCHdf_image.h"
#include "TCHeight_grid.h"

namespace {

// A 4 by 3 grid file of the values 0, 1, ... 11 at i + 4 j.
void write_grid(const char* name, int n_x, int n_y, float first) {
  std::vector<float> values(n_x * n_y);
  for (int k = 0; k < n_x * n_y; k++) values[k] = first + k;
  const int dims[2] = {n_y, n_x};
  int first_flag = 1;
  ASSERT_EQ(hdf_write_plane(name, values.data(), dims, first_flag), 1);
}

void describe(Height_grid_details_input& input, const char* file, int keys, const double* times,
              const double* scales) {
  input.n_x = 4;
  input.n_y = 3;
  input.dx = 1.0;
  input.dy = 1.0;
  std::strcpy(input.field_file, file);
  ASSERT_EQ(input.allocate_keys(keys), 1);
  for (int k = 0; k < keys; k++) {
    input.key_times[k] = times[k];
    input.key_scales[k] = scales[k];
  }
}

}  // namespace

TEST(HeightGrid, ScaleFollowsTheKeysAndExtrapolatesPastBothEnds) {
  write_grid("height_grid_keys.hdf", 4, 3, 0.0f);
  Height_grid_details_input input;
  const double times[2] = {0.0, 10.0};
  const double scales[2] = {0.0, 2.0};
  describe(input, "height_grid_keys.hdf", 2, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  TCHeight_grid grid(input, buffer.data());
  EXPECT_EQ(grid.kind, -7);
  EXPECT_DOUBLE_EQ(grid.scale_at(15.0), 3.0);
  EXPECT_DOUBLE_EQ(grid.scale_at(-5.0), -1.0);
  EXPECT_DOUBLE_EQ(grid.scale_at(2.5), 0.5);
  grid.evolve_heights(15.0);
  EXPECT_DOUBLE_EQ(grid.current_scale, 3.0);
  for (int k = 0; k < 12; k++) EXPECT_FLOAT_EQ(buffer[k], 3.0f * k);
  std::remove("height_grid_keys.hdf");
}

TEST(HeightGrid, OneKeyIsAConstantScale) {
  write_grid("height_grid_one_key.hdf", 4, 3, 1.0f);
  Height_grid_details_input input;
  const double times[1] = {4.0};
  const double scales[1] = {0.5};
  describe(input, "height_grid_one_key.hdf", 1, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  TCHeight_grid grid(input, buffer.data());
  EXPECT_DOUBLE_EQ(grid.scale_at(-100.0), 0.5);
  EXPECT_DOUBLE_EQ(grid.scale_at(100.0), 0.5);
  std::remove("height_grid_one_key.hdf");
}

TEST(HeightGrid, FileIsReadAgainAtEveryEvolutionWithoutCompounding) {
  write_grid("height_grid_reread.hdf", 4, 3, 1.0f);
  Height_grid_details_input input;
  const double times[2] = {0.0, 10.0};
  const double scales[2] = {1.0, 3.0};
  describe(input, "height_grid_reread.hdf", 2, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  TCHeight_grid grid(input, buffer.data());
  // Loaded once at construction, unscaled.
  EXPECT_FLOAT_EQ(buffer[5], 6.0f);
  grid.evolve_heights(10.0);
  EXPECT_FLOAT_EQ(buffer[5], 18.0f);
  grid.evolve_heights(10.0);
  EXPECT_FLOAT_EQ(buffer[5], 18.0f);
  // A new file under the same name is what the next frame sees.
  write_grid("height_grid_reread.hdf", 4, 3, 100.0f);
  grid.evolve_heights(5.0);
  EXPECT_FLOAT_EQ(buffer[5], 2.0f * 105.0f);
  grid.transform_to_lattice();
  EXPECT_FLOAT_EQ(buffer[5], 2.0f * 105.0f);
  std::remove("height_grid_reread.hdf");
}

TEST(MultiplierGrid, ScaleIsAPowerAndZeroTurnsEveryValueIntoOne) {
  write_grid("multiplier_grid_power.hdf", 4, 3, 0.0f);
  Multiplier_grid_details_input input;
  const double times[3] = {0.0, 10.0, 20.0};
  const double scales[3] = {1.0, 2.0, 0.0};
  describe(input, "multiplier_grid_power.hdf", 3, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  TCMultiplier_grid grid(input, buffer.data());
  EXPECT_EQ(grid.kind, -8);
  grid.evolve_heights(0.0);
  for (int k = 0; k < 12; k++) EXPECT_FLOAT_EQ(buffer[k], static_cast<float>(k));
  grid.evolve_heights(10.0);
  for (int k = 0; k < 12; k++) EXPECT_FLOAT_EQ(buffer[k], static_cast<float>(k * k));
  grid.evolve_heights(20.0);
  // 0 to the power 0 included.
  for (int k = 0; k < 12; k++) EXPECT_FLOAT_EQ(buffer[k], 1.0f);
  std::remove("multiplier_grid_power.hdf");
}

TEST(HeightGrid, AFileLostAfterConstructionWarnsAndZeroes) {
  write_grid("height_grid_lost.hdf", 4, 3, 1.0f);
  Height_grid_details_input input;
  const double times[1] = {0.0};
  const double scales[1] = {1.0};
  describe(input, "height_grid_lost.hdf", 1, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  TCHeight_grid grid(input, buffer.data());
  std::remove("height_grid_lost.hdf");
  testing::internal::CaptureStdout();
  grid.evolve_heights(1.0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "height file height_grid_lost.hdfcan not be opened\n"
            "unable to read in ocean height field from height_grid_lost.hdf\n"
            "setting height field to zero \n");
  for (int k = 0; k < 12; k++) EXPECT_EQ(buffer[k], 0.0f);
}

TEST(MultiplierGrid, AFileLostAfterConstructionWarnsAndFillsWithOne) {
  write_grid("multiplier_grid_lost.hdf", 4, 3, 5.0f);
  Multiplier_grid_details_input input;
  const double times[1] = {0.0};
  const double scales[1] = {2.0};
  describe(input, "multiplier_grid_lost.hdf", 1, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  TCMultiplier_grid grid(input, buffer.data());
  std::remove("multiplier_grid_lost.hdf");
  testing::internal::CaptureStdout();
  grid.evolve_heights(1.0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "height file multiplier_grid_lost.hdfcan not be opened\n"
            "unable to read in ocean multiplier field from multiplier_grid_lost.hdf\n"
            "setting multiplier field to one \n");
  for (int k = 0; k < 12; k++) EXPECT_EQ(buffer[k], 1.0f);
}

TEST(HeightGrid, AFileOfTheWrongSizeGivesBothSizesNxSideFirst) {
  write_grid("height_grid_size.hdf", 4, 3, 1.0f);
  write_grid("multiplier_grid_size.hdf", 4, 3, 1.0f);
  Height_grid_details_input height_input;
  Multiplier_grid_details_input multiplier_input;
  const double times[1] = {0.0};
  const double scales[1] = {1.0};
  describe(height_input, "height_grid_size.hdf", 1, times, scales);
  describe(multiplier_input, "multiplier_grid_size.hdf", 1, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  std::vector<float> other(6 * 3, 0.0f);
  TCHeight_grid height(height_input, buffer.data());
  TCMultiplier_grid multiplier(multiplier_input, other.data());
  write_grid("height_grid_size.hdf", 6, 5, 1.0f);
  write_grid("multiplier_grid_size.hdf", 6, 5, 1.0f);
  testing::internal::CaptureStdout();
  height.evolve_heights(0.0);
  multiplier.evolve_heights(0.0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "wake file height_grid_size.hdf is not of correct dimension\n"
            "file size : 6 x 5\n"
            "array size: 4 x 3\n"
            "unable to read in ocean height field from height_grid_size.hdf\n"
            "setting height field to zero \n"
            "multilplier file multiplier_grid_size.hdf is not of correct dimension\n"
            "file size : 6 x 5\n"
            "array size: 4 x 3\n"
            "unable to read in ocean multiplier field from multiplier_grid_size.hdf\n"
            "setting multiplier field to one \n");
  std::remove("height_grid_size.hdf");
  std::remove("multiplier_grid_size.hdf");
}

TEST(HeightGridDeathTest, AFileUnreadableAtConstructionEndsTheRun) {
  Height_grid_details_input height_input;
  Multiplier_grid_details_input multiplier_input;
  const double times[1] = {0.0};
  const double scales[1] = {1.0};
  describe(height_input, "no_such_height_grid.hdf", 1, times, scales);
  describe(multiplier_input, "no_such_multiplier_grid.hdf", 1, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCHeight_grid grid(height_input, buffer.data());
      },
      ::testing::ExitedWithCode(1),
      "height file no_such_height_grid.hdfcan not be opened\n"
      "unable to allocate space for height grid\n");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCMultiplier_grid grid(multiplier_input, buffer.data());
      },
      ::testing::ExitedWithCode(1),
      "height file no_such_multiplier_grid.hdfcan not be opened\n"
      "unable to allocate space for multiplier grid\n");
}

TEST(HeightGrid, AccelerationIsZeroForHeightsAndOneForMultipliers) {
  write_grid("grid_acceleration.hdf", 4, 3, 2.0f);
  Height_grid_details_input height_input;
  Multiplier_grid_details_input multiplier_input;
  const double times[1] = {0.0};
  const double scales[1] = {1.0};
  describe(height_input, "grid_acceleration.hdf", 1, times, scales);
  describe(multiplier_input, "grid_acceleration.hdf", 1, times, scales);
  std::vector<float> buffer(6 * 3, 0.0f);
  TCHeight_grid height(height_input, buffer.data());
  TCMultiplier_grid multiplier(multiplier_input, buffer.data());
  std::vector<float> array(6 * 3, 7.0f);
  height.evolve_acceleration_into(array.data(), 1.0, 0.1, 0.1, 0.1);
  for (float v : array) EXPECT_EQ(v, 0.0f);
  multiplier.evolve_acceleration_into(array.data(), 1.0, 0.1, 0.1, 0.1);
  for (float v : array) EXPECT_EQ(v, 1.0f);
  std::remove("grid_acceleration.hdf");
}

TEST(HeightGrid, OffsetPutsTheTurnedCentreAtTheMovingPosition) {
  write_grid("grid_offset.hdf", 4, 3, 0.0f);
  Height_grid_details_input input;
  const double times[1] = {0.0};
  const double scales[1] = {1.0};
  describe(input, "grid_offset.hdf", 1, times, scales);
  input.dx = 2.0;
  input.position_x = 10.0;
  input.position_y = -4.0;
  input.orientation = 90.0 * 0.017453292519444445;
  input.velocity = 2.0;
  input.direction = 0.0;
  std::vector<float> buffer(6 * 3, 0.0f);
  TCHeight_grid grid(input, buffer.data());
  double ox, oy;
  // Half extents 4 and 1.5; turned by 90 degrees: (-1.5, 4); less the
  // position and 2 m/s along x for 3 s.
  grid.offset_at(3.0, ox, oy);
  EXPECT_NEAR(ox, -1.5 - 10.0 - 6.0, 1e-9);
  EXPECT_NEAR(oy, 4.0 + 4.0, 1e-9);
  std::remove("grid_offset.hdf");
}
