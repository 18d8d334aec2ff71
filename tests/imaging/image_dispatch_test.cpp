#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TCHdf_image.h"
#include "TCImage_file.h"
#include "TCSgi_image.h"
#include "image_test_files.h"

namespace {

const int dims_2x3[2] = {2, 3};

TEST(ImageDispatch, UnitRangeMattesAreExactlyTheListedCodes) {
  const int unit[] = {1, 2, 15, 18, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32};
  for (int code : unit) EXPECT_EQ(matte_has_unit_range(code), 1) << code;
  const int other[] = {-1, 0, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 16, 17, 19, 20, 33, 34};
  for (int code : other) EXPECT_EQ(matte_has_unit_range(code), 0) << code;
}

TEST(ImageDispatch, ReadingUnitRangeMattesAlwaysUsesZeroToOne) {
  const int unit[] = {1, 2, 15, 18, 21, 26, 31, 32};
  for (int code : unit) {
    for (int keep_range = 0; keep_range <= 1; keep_range++) {
      double lo = -9.0, hi = -9.0;
      coding_limits(code, 0, keep_range, 5.0, 50.0, lo, hi);
      EXPECT_EQ(lo, 0.0) << code;
      EXPECT_EQ(hi, 1.0) << code;
    }
  }
}

TEST(ImageDispatch, WritingUnitRangeMattesKeepsTheCameraRangeOnlyWhenAsked) {
  const int unit[] = {1, 2, 15, 18, 21, 22, 31, 32};
  for (int code : unit) {
    double lo = -9.0, hi = -9.0;
    coding_limits(code, 1, 0, 5.0, 50.0, lo, hi);
    EXPECT_EQ(lo, 0.0) << code;
    EXPECT_EQ(hi, 1.0) << code;
    coding_limits(code, 1, 1, 5.0, 50.0, lo, hi);
    EXPECT_EQ(lo, 5.0) << code;
    EXPECT_EQ(hi, 50.0) << code;
  }
}

TEST(ImageDispatch, OtherPlanesUseTheCameraRange) {
  const int other[] = {0, 3, 7, 14, 16, 17, 33};
  for (int code : other) {
    for (int writing = 0; writing <= 1; writing++) {
      for (int keep_range = 0; keep_range <= 1; keep_range++) {
        double lo = -9.0, hi = -9.0;
        coding_limits(code, writing, keep_range, 5.0, 50.0, lo, hi);
        EXPECT_EQ(lo, 5.0) << code;
        EXPECT_EQ(hi, 50.0) << code;
      }
    }
  }
}

TEST(ImageDispatch, DepthLikeMattesAlwaysGoToHdf) {
  for (int code = -1; code <= 40; code++) {
    const int always = code == 19 || code == 20 || code == 33;
    EXPECT_EQ(matte_always_hdf(code), always) << code;
    EXPECT_EQ(effective_format(image_format_rgb, code), always ? 3000 : 3002) << code;
    EXPECT_EQ(effective_format(image_format_tiff, code), always ? 3000 : 3003) << code;
  }
}

TEST(ImageDispatch, FormatCodes) {
  EXPECT_EQ(image_format_hdf, 3000);
  EXPECT_EQ(image_format_rgb, 3002);
  EXPECT_EQ(image_format_tiff, 3003);
}

TEST(ImageDispatch, TiffIsRefusedOnOpening) {
  int first_flag = 0;
  testing::internal::CaptureStdout();
  EXPECT_EQ(open_image(3003, "/tmp/never.tif", dims_2x3, first_flag, 3, 0), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "TIFF FILE FORMAT NOT YET IMPLEMENTED\n");
  EXPECT_EQ(first_flag, 1);
}

TEST(ImageDispatch, TiffPlanesGiveZeroQuietly) {
  float data[6] = {0.0f};
  int first_flag = 1;
  testing::internal::CaptureStdout();
  EXPECT_EQ(read_plane(3003, "/tmp/never.tif", 0, data, dims_2x3, 0, 0.0, 1.0), 0);
  EXPECT_EQ(write_plane(3003, "/tmp/never.tif", 0, data, dims_2x3, first_flag, 0, 0, 0.0, 1.0), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(ImageDispatch, TiffCameraStillWritesDepthMattesToHdf) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("depth.hdf");
  float data[6] = {1, 2, 3, 4, 5, 6};
  int first_flag = 0;
  ASSERT_EQ(open_image(3003, name.c_str(), dims_2x3, first_flag, 1, 19), 1);
  EXPECT_EQ(first_flag, 1);
  ASSERT_EQ(write_plane(3003, name.c_str(), 0, data, dims_2x3, first_flag, 19, 0, 0.0, 1.0), 1);
  float back[6];
  ASSERT_EQ(read_plane(3003, name.c_str(), 0, back, dims_2x3, 19, 0.0, 1.0), 1);
  EXPECT_EQ(back[5], 6.0f);
}

TEST(ImageDispatch, UnknownFormatsGiveZero) {
  float data[6] = {0.0f};
  int first_flag = 0;
  testing::internal::CaptureStdout();
  EXPECT_EQ(open_image(3001, "/tmp/never.img", dims_2x3, first_flag, 1, 0), 0);
  EXPECT_EQ(read_plane(3004, "/tmp/never.img", 0, data, dims_2x3, 0, 0.0, 1.0), 0);
  EXPECT_EQ(write_plane(0, "/tmp/never.img", 0, data, dims_2x3, first_flag, 0, 0, 0.0, 1.0), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "image format 3001 not known\n"
            "image format 3004 not known\n"
            "image format 0 not known\n");
}

TEST(ImageDispatch, OpeningHdfLeavesTheFileAlone) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("later.hdf");
  int first_flag = 0;
  ASSERT_EQ(open_image(3000, name.c_str(), dims_2x3, first_flag, 3, 0), 1);
  EXPECT_EQ(first_flag, 1);
  EXPECT_TRUE(file_bytes(name).empty());
}

TEST(ImageDispatch, OpeningRgbWritesTheHeader) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("start.rgb");
  int first_flag = 0;
  ASSERT_EQ(open_image(3002, name.c_str(), dims_2x3, first_flag, 3, 0), 1);
  EXPECT_EQ(first_flag, 1);
  int channels = 0;
  ASSERT_EQ(rgb_read_channels(name.c_str(), channels), 1);
  EXPECT_EQ(channels, 3);
}

TEST(ImageDispatch, HdfPlanesAppendInOrder) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("bands.hdf");
  int first_flag = 0;
  ASSERT_EQ(open_image(3000, name.c_str(), dims_2x3, first_flag, 3, 0), 1);
  for (int p = 0; p < 3; p++) {
    float data[6];
    for (int i = 0; i < 6; i++) data[i] = 10.0f * p + i;
    ASSERT_EQ(write_plane(3000, name.c_str(), p, data, dims_2x3, first_flag, 0, 0, 0.0, 1.0), 1);
    EXPECT_EQ(first_flag, 0);
  }
  for (int p = 2; p >= 0; p--) {
    float data[6];
    ASSERT_EQ(read_plane(3000, name.c_str(), p, data, dims_2x3, 0, 0.0, 1.0), 1);
    EXPECT_EQ(data[4], 10.0f * p + 4);
  }
}

TEST(ImageDispatch, RgbUnitMatteIsCodedOverZeroToOneUnlessKept) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("alpha.rgb");
  int first_flag = 0;
  ASSERT_EQ(open_image(3002, name.c_str(), dims_2x3, first_flag, 2, 1), 1);
  const float data[6] = {0.0f, 0.5f, 1.0f, 2.0f, 5.0f, 10.0f};
  // Camera range (0, 10): 0.5 codes to 127 over (0, 1) and to 12 (12.75) over (0, 10).
  ASSERT_EQ(write_plane(3002, name.c_str(), 0, data, dims_2x3, first_flag, 1, 0, 0.0, 10.0), 1);
  ASSERT_EQ(write_plane(3002, name.c_str(), 1, data, dims_2x3, first_flag, 1, 1, 0.0, 10.0), 1);
  const std::vector<unsigned char> bytes = file_bytes(name);
  ASSERT_EQ(bytes.size(), 524u);
  const std::vector<unsigned char> unit = {0, 127, 255, 255, 255, 255};
  const std::vector<unsigned char> kept = {0, 12, 25, 51, 127, 255};
  EXPECT_EQ(std::vector<unsigned char>(bytes.begin() + 512, bytes.begin() + 518), unit);
  EXPECT_EQ(std::vector<unsigned char>(bytes.begin() + 518, bytes.end()), kept);

  // Reading a unit-range matte always decodes over (0, 1).
  float back[6];
  ASSERT_EQ(read_plane(3002, name.c_str(), 0, back, dims_2x3, 1, 0.0, 10.0), 1);
  EXPECT_EQ(back[1], 0.5f);
  // An image plane decodes over the camera range: byte 12 is 12.5 / 25.5.
  ASSERT_EQ(read_plane(3002, name.c_str(), 1, back, dims_2x3, 0, 0.0, 10.0), 1);
  EXPECT_EQ(back[1], static_cast<float>(10.0 * 12.5 / 255.0));
}

TEST(ImageDispatch, RgbImagePlaneUsesTheCameraRangeWhenWriting) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("image.rgb");
  int first_flag = 0;
  ASSERT_EQ(open_image(3002, name.c_str(), dims_2x3, first_flag, 1, 0), 1);
  const float data[6] = {-2.0f, 0.0f, 1.0f, 2.0f, 3.0f, 4.0f};
  ASSERT_EQ(write_plane(3002, name.c_str(), 0, data, dims_2x3, first_flag, 0, 0, -2.0, 2.0), 1);
  const std::vector<unsigned char> bytes = file_bytes(name);
  ASSERT_EQ(bytes.size(), 518u);
  // Over (-2, 2): v = (x + 2) / 4, times 255.
  const std::vector<unsigned char> expected = {0, 127, 191, 255, 255, 255};
  EXPECT_EQ(std::vector<unsigned char>(bytes.begin() + 512, bytes.end()), expected);
}

TEST(ImageDispatch, RgbOpenFailureIsReported) {
  int first_flag = 0;
  testing::internal::CaptureStdout();
  EXPECT_EQ(open_image(3002, "/nonexistent_tidecast_dir/a.rgb", dims_2x3, first_flag, 1, 0), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to open /nonexistent_tidecast_dir/a.rgb\n");
  EXPECT_EQ(first_flag, 1);
}

}  // namespace
