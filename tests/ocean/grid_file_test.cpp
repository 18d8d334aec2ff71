#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "../imaging/image_test_files.h"
#include "TCGrid.h"
#include "TCHdf_image.h"

// Small cases are worked out by hand in the comments; the single-precision
// walk comes from grid_file_reference.py beside this file.

namespace {

void write_text(const std::string& path, const std::string& text) {
  std::ofstream out(path.c_str());
  out << text;
}

// 4 by 4 periodic nodes 1 m apart holding h = u + 10 v, world (0, 0) at the middle.
void fill_ramp(TCGrid& grid) {
  grid.periodic_x = 1;
  grid.periodic_y = 1;
  grid.offset_x = 2.0;
  grid.offset_y = 2.0;
  for (int j = 0; j < 4; j++) {
    for (int i = 0; i < 4; i++) grid.height[i + 4 * j] = static_cast<float>(i + 10 * j);
  }
}

// The independent reader's view of the file: type, dims and values of each data set.
std::string dump(const std::string& name) {
  int status = -1;
  const std::string text = command_output(hdf_tool_command("dump " + name), status);
  EXPECT_EQ(status, 0) << "the pyhdf checker did not run: " << text;
  return text;
}

TEST(GridFile, SamplesTheRectangleXOuterYInner) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  TCGrid grid(4, 4, 1.0, 1.0);
  fill_ramp(grid);
  grid.z_offset = 0.5;
  const std::string definition = folder.file("grid.def");
  write_text(definition,
             "center_x 0.5\ncenter_y -0.5\nn_points_x 3\nspacing_x 0.5\n"
             "n_points_y 2\nspacing_y 1.25\n");
  const std::string object = folder.file("ocean");
  ASSERT_EQ(grid.write_height_grid(definition.c_str(), object.c_str(), "0007"), 1);

  // x from 0.5 - 3 * 0.5 * 0.5 = -0.25 by 0.5; y from -0.5 - 2 * 0.5 * 1.25 = -1.75
  // by 1.25. Lattice u = x + 2: 1.75, 2.25, 2.75; v = y + 2: 0.25, 1.5.
  // h = u + 10 v + 0.5, y running fastest.
  const float expected[6] = {4.75f, 17.25f, 5.25f, 17.75f, 5.75f, 18.25f};
  const std::string name = object + "_grid.0007.img";
  const int dims[2] = {3, 2};
  float values[6] = {0};
  ASSERT_EQ(hdf_read_plane(name.c_str(), 0, values, dims), 1);
  for (int k = 0; k < 6; k++) EXPECT_EQ(values[k], expected[k]) << k;
  // One bare float data set of 3 rows (x) by 2 columns (y).
  EXPECT_EQ(dump(name), "float32 3 2 0 : 4.75 17.25 5.25 17.75 5.75 18.25\n");
}

TEST(GridFile, SamplesIncludeTheRoundDropAndCusps) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  TCGrid grid(4, 4, 1.0, 1.0);
  fill_ramp(grid);
  grid.round_flag = 1;
  grid.radius = 10.0;
  grid.set_cusps(0.5);
  const std::string definition = folder.file("grid.def");
  // One point at 2 - 1 * 0.5 * 2 = 1, 0: u = 3, v = 2: h = 23; cusped 23 + 0.5 * 529 = 287.5;
  // dropped by 1 * 0.5 / 10.
  write_text(definition, "cx 2.0 cy 0.0 nx 1 sx 2.0 ny 1 sy 0.0");
  const std::string object = folder.file("sea");
  ASSERT_EQ(grid.write_height_grid(definition.c_str(), object.c_str(), "a"), 1);
  const int dims[2] = {1, 1};
  float value = 0.0f;
  ASSERT_EQ(hdf_read_plane((object + "_grid.a.img").c_str(), 0, &value, dims), 1);
  EXPECT_EQ(value, 287.45f);
}

TEST(GridFile, PositionsAreSteppedInSinglePrecision) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  TCGrid grid(64, 4, 1.0, 1.0);
  grid.periodic_x = 1;
  grid.periodic_y = 1;
  for (int j = 0; j < 4; j++) {
    for (int i = 0; i < 64; i++) grid.height[i + 64 * j] = static_cast<float>(0.5 * i);
  }
  const std::string definition = folder.file("walk.def");
  write_text(definition,
             "centre_x 10.0 centre_y 2.0 points_x 180 step_x 0.1 points_y 1 step_y 1.0");
  const std::string object = folder.file("walk");
  ASSERT_EQ(grid.write_height_grid(definition.c_str(), object.c_str(), "1"), 1);
  std::vector<float> values(180);
  const int dims[2] = {180, 1};
  ASSERT_EQ(hdf_read_plane((object + "_grid.1.img").c_str(), 0, values.data(), dims), 1);
  // From grid_file_reference.py; stepping in double would give 5 and 9.44999981.
  EXPECT_EQ(values[0], 0.5f);
  EXPECT_EQ(values[1], 0.550000012f);
  EXPECT_EQ(values[90], 5.00000095f);
  EXPECT_EQ(values[179], 9.45001793f);
}

TEST(GridFileDeathTest, MissingDefinitionFileEndsTheRun) {
  Temp_folder folder;
  const std::string missing = folder.file("none.def");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCGrid grid(4, 4, 1.0, 1.0);
        grid.write_height_grid(missing.c_str(), "ocean", "1");
      },
      ::testing::ExitedWithCode(1), "Error opening grid-file: " + missing);
}

TEST(GridFileDeathTest, CountsThatCannotBeAllocatedEndTheRun) {
  Temp_folder folder;
  const std::string zero = folder.file("zero.def");
  write_text(zero, "cx 0 cy 0 nx 0 sx 1 ny 4 sy 1");
  const std::string huge = folder.file("huge.def");
  write_text(huge, "cx 0 cy 0 nx 2000000000 sx 1 ny 2000000000 sy 1");
  const std::string cut = folder.file("cut.def");
  write_text(cut, "cx 0 cy 0 nx");
  const std::string* files[3] = {&zero, &huge, &cut};
  for (const std::string* file : files) {
    EXPECT_EXIT(
        {
          std::cout.rdbuf(std::cerr.rdbuf());
          TCGrid grid(4, 4, 1.0, 1.0);
          grid.write_height_grid(file->c_str(), folder.file("ocean").c_str(), "1");
        },
        ::testing::ExitedWithCode(1), "unable to allocate array for ocean height grid ")
        << *file;
  }
}

TEST(GridFileDeathTest, UnwritableImageEndsTheRun) {
  Temp_folder folder;
  const std::string definition = folder.file("grid.def");
  write_text(definition, "cx 0 cy 0 nx 2 sx 1 ny 2 sy 1");
  const std::string object = folder.file("no_such_folder/ocean");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCGrid grid(4, 4, 1.0, 1.0);
        grid.write_height_grid(definition.c_str(), object.c_str(), "12");
      },
      ::testing::ExitedWithCode(1), "Error writing " + object + "_grid.12.img for ocean grid\n$");
}

}  // namespace
