#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "TCHdf_image.h"
#include "image_test_files.h"

namespace {

const int dims_2x3[2] = {2, 3};

// One data set as the independent reader describes it.
struct Data_set {
  std::string type;
  int rows;
  int cols;
  int n_attributes;
  std::vector<double> values;
};

// Runs the pyhdf dumper on a file; fails the test when it cannot.
std::vector<Data_set> independent_read(const std::string& name) {
  int status = -1;
  const std::string text = command_output(hdf_tool_command("dump " + name), status);
  EXPECT_EQ(status, 0) << "the pyhdf checker did not run: " << text;
  std::vector<Data_set> sets;
  std::istringstream lines(text);
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream in(line);
    Data_set set;
    std::string colon;
    in >> set.type >> set.rows >> set.cols >> set.n_attributes >> colon;
    EXPECT_EQ(colon, ":") << line;
    double v;
    while (in >> v) set.values.push_back(v);
    sets.push_back(set);
  }
  return sets;
}

// Makes a file with pyhdf: n_planes data sets where element (r, c) of plane p
// is p * 1000 + r * cols + c, plus 0.25 for the float types.
void independent_write(const std::string& name, const char* type, int rows, int cols,
                       int n_planes) {
  std::ostringstream arguments;
  arguments << "make " << name << " " << type << " " << rows << " " << cols << " " << n_planes;
  int status = -1;
  const std::string text = command_output(hdf_tool_command(arguments.str()), status);
  ASSERT_EQ(status, 0) << "the pyhdf checker did not run: " << text;
}

void fill_plane(float* data, int n, float offset) {
  for (int i = 0; i < n; i++) data[i] = offset + 0.5f * i;
}

std::string write_three_planes(const Temp_folder& folder) {
  const std::string name = folder.file("three.hdf");
  float data[6];
  int first_flag = 1;
  for (int p = 0; p < 3; p++) {
    fill_plane(data, 6, 100.0f * p - 1.0f);
    EXPECT_EQ(hdf_write_plane(name.c_str(), data, dims_2x3, first_flag), 1);
    EXPECT_EQ(first_flag, 0);
  }
  return name;
}

TEST(HdfImage, WrittenPlanesAreReadByAnIndependentReader) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_three_planes(folder);
  const std::vector<Data_set> sets = independent_read(name);
  ASSERT_EQ(sets.size(), 3u);
  for (int p = 0; p < 3; p++) {
    EXPECT_EQ(sets[p].type, "float32");
    EXPECT_EQ(sets[p].rows, 2);
    EXPECT_EQ(sets[p].cols, 3);
    EXPECT_EQ(sets[p].n_attributes, 0);  // bare: no label, unit, scale or range
    ASSERT_EQ(sets[p].values.size(), 6u);
    for (int i = 0; i < 6; i++) EXPECT_EQ(sets[p].values[i], 100.0 * p - 1.0 + 0.5 * i);
  }
}

TEST(HdfImage, HdpSeesOneFloatDataSetPerPlane) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_three_planes(folder);
  int status = -1;
  const std::string headers = command_output("/usr/bin/hdp dumpsds -h " + name, status);
  ASSERT_EQ(status, 0) << headers;
  // hdp lists the dimension records too, as "Dimension Variable Name".
  int data_sets = 0;
  int floats = 0;
  std::istringstream lines(headers);
  std::string line;
  while (std::getline(lines, line)) {
    if (line.rfind("Variable Name = ", 0) == 0) data_sets++;
    if (line.find("Type= 32-bit floating point") != std::string::npos) floats++;
  }
  EXPECT_EQ(data_sets, 3) << headers;
  EXPECT_EQ(floats, 3) << headers;

  const std::string values = command_output("/usr/bin/hdp dumpsds -d " + name, status);
  ASSERT_EQ(status, 0) << values;
  // A row to a line, planes in the order written.
  const size_t first = values.find("-1.000000 -0.500000 0.000000 \n0.500000 1.000000 1.500000");
  const size_t last = values.find("199.000000 199.500000 200.000000 \n200.500000 201.000000");
  EXPECT_NE(first, std::string::npos) << values;
  EXPECT_NE(last, std::string::npos) << values;
  EXPECT_LT(first, last);
}

TEST(HdfImage, FirstPlaneTruncatesAnEarlierFile) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_three_planes(folder);
  float data[6];
  fill_plane(data, 6, 7.0f);
  int first_flag = 1;
  ASSERT_EQ(hdf_write_plane(name.c_str(), data, dims_2x3, first_flag), 1);
  EXPECT_EQ(first_flag, 0);
  const std::vector<Data_set> sets = independent_read(name);
  ASSERT_EQ(sets.size(), 1u);
  ASSERT_EQ(sets[0].values.size(), 6u);
  EXPECT_EQ(sets[0].values[5], 9.5);
}

TEST(HdfImage, EnginesOwnPlanesReadBackInAnyOrder) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_three_planes(folder);
  const int order[4] = {2, 0, 1, 1};
  for (int k : order) {
    float data[6];
    ASSERT_EQ(hdf_read_plane(name.c_str(), k, data, dims_2x3), 1) << k;
    for (int i = 0; i < 6; i++) EXPECT_EQ(data[i], 100.0f * k - 1.0f + 0.5f * i) << k;
  }
}

TEST(HdfImage, IndependentFileIsReadPlaneByPlane) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("made.hdf");
  independent_write(name, "float32", 2, 3, 3);
  const int order[3] = {2, 0, 1};
  for (int k : order) {
    float data[6];
    ASSERT_EQ(hdf_read_plane(name.c_str(), k, data, dims_2x3), 1) << k;
    for (int i = 0; i < 6; i++) EXPECT_EQ(data[i], 1000.0f * k + i + 0.25f) << k;
  }
}

TEST(HdfImage, ReadingAnotherFileInBetweenDoesNotLoseThePlace) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string ours = write_three_planes(folder);
  const std::string theirs = folder.file("made.hdf");
  independent_write(theirs, "float32", 2, 3, 2);
  float data[6];
  ASSERT_EQ(hdf_read_plane(ours.c_str(), 2, data, dims_2x3), 1);
  ASSERT_EQ(hdf_read_plane(theirs.c_str(), 1, data, dims_2x3), 1);
  EXPECT_EQ(data[0], 1000.25f);
  ASSERT_EQ(hdf_read_plane(ours.c_str(), 1, data, dims_2x3), 1);
  EXPECT_EQ(data[0], 99.0f);
}

TEST(HdfImage, PlaneBeyondTheCountFails) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_three_planes(folder);
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_read_plane(name.c_str(), 3, data, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "unable to read plane 3 of " + name + "\n");
  // The library is left in a state from which the file still reads.
  ASSERT_EQ(hdf_read_plane(name.c_str(), 0, data, dims_2x3), 1);
  EXPECT_EQ(data[0], -1.0f);
}

TEST(HdfImage, NegativePlaneFails) {
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_read_plane("/nonexistent_tidecast_dir/x.hdf", -1, data, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to read plane -1 of /nonexistent_tidecast_dir/x.hdf\n");
}

TEST(HdfImage, DoublePlanesAreRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("doubles.hdf");
  independent_write(name, "float64", 2, 3, 1);
  float data[6 + 6];  // room for the doubles, so a missing check would show as wrong values
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_read_plane(name.c_str(), 0, data, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "HDF data set in " + name + " is not a float plane of 2 by 3\n");
}

TEST(HdfImage, IntegerPlanesAreRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("shorts.hdf");
  independent_write(name, "int16", 2, 3, 1);
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_read_plane(name.c_str(), 0, data, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "HDF data set in " + name + " is not a float plane of 2 by 3\n");
}

TEST(HdfImage, OtherDimsAreRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("big.hdf");
  independent_write(name, "float32", 4, 5, 1);
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_read_plane(name.c_str(), 0, data, dims_2x3), 0);
  const int transposed[2] = {3, 2};
  const std::string ours = write_three_planes(folder);
  EXPECT_EQ(hdf_read_plane(ours.c_str(), 0, data, transposed), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "HDF data set in " + name + " is not a float plane of 2 by 3\n" + "HDF data set in " +
                ours + " is not a float plane of 3 by 2\n");
}

TEST(HdfImage, EarlierPlaneOfOtherDimsIsRefusedOnTheWay) {
  // Every pass reads into the caller's buffer, so each plane passed must fit.
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("mixed.hdf");
  float big[20] = {0.0f};
  const int dims_4x5[2] = {4, 5};
  int first_flag = 1;
  ASSERT_EQ(hdf_write_plane(name.c_str(), big, dims_4x5, first_flag), 1);
  float data[6];
  fill_plane(data, 6, 3.0f);
  ASSERT_EQ(hdf_write_plane(name.c_str(), data, dims_2x3, first_flag), 1);
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_read_plane(name.c_str(), 1, data, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "HDF data set in " + name + " is not a float plane of 2 by 3\n");
}

TEST(HdfImage, MissingFileIsRefused) {
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_read_plane("/nonexistent_tidecast_dir/x.hdf", 0, data, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to open /nonexistent_tidecast_dir/x.hdf\n");
}

TEST(HdfImage, FileOfAnotherKindIsRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("text.hdf");
  put_file_bytes(name, {'n', 'o', 't', ' ', 'h', 'd', 'f', '\n'});
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_read_plane(name.c_str(), 0, data, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "unable to read plane 0 of " + name + "\n");
}

TEST(HdfImage, WritingIntoAMissingFolderFails) {
  float data[6] = {0.0f};
  int first_flag = 1;
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_write_plane("/nonexistent_tidecast_dir/x.hdf", data, dims_2x3, first_flag), 0);
  EXPECT_EQ(first_flag, 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to write plane to HDF file /nonexistent_tidecast_dir/x.hdf\n");
}

TEST(HdfImage, EmptyDimsAreRefused) {
  float data[1] = {0.0f};
  const int empty[2] = {0, 3};
  int first_flag = 1;
  testing::internal::CaptureStdout();
  EXPECT_EQ(hdf_write_plane("/tmp/never_written.hdf", data, empty, first_flag), 0);
  EXPECT_EQ(hdf_read_plane("/tmp/never_written.hdf", 0, data, empty), 0);
  EXPECT_NE(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
