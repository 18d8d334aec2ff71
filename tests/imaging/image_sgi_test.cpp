#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "TCSettings.h"
#include "TCSgi_image.h"
#include "image_test_files.h"

namespace {

const int dims_2x3[2] = {2, 3};  // 2 rows of 3 columns

// The 512 bytes a 2-row, 3-column, 2-plane file starts with.
std::vector<unsigned char> header_2x3x2() {
  std::vector<unsigned char> h = {
      0x01, 0xDA,              // magic 474
      0x00,                    // verbatim
      0x01,                    // one byte per channel
      0x00, 0x03,              // dimension 3
      0x00, 0x03,              // x size: 3 columns
      0x00, 0x02,              // y size: 2 rows
      0x00, 0x02,              // z size: 2 planes
      0x00, 0x00, 0x00, 0x00,  // pixel minimum 0
      0x00, 0x00, 0x00, 0xFF,  // pixel maximum 255
  };
  h.resize(512, 0x00);  // name, colour map 0 and padding are all zero
  return h;
}

// A header with the given fields, the rest zero, and `extra` bytes after it.
std::vector<unsigned char> sgi_header(int magic, int storage, int x, int y, int z, size_t extra) {
  std::vector<unsigned char> h(512 + extra, 0x00);
  h[0] = static_cast<unsigned char>(magic >> 8);
  h[1] = static_cast<unsigned char>(magic & 0xFF);
  h[2] = static_cast<unsigned char>(storage);
  h[3] = 1;
  h[5] = 3;
  h[6] = static_cast<unsigned char>(x >> 8);
  h[7] = static_cast<unsigned char>(x & 0xFF);
  h[8] = static_cast<unsigned char>(y >> 8);
  h[9] = static_cast<unsigned char>(y & 0xFF);
  h[10] = static_cast<unsigned char>(z >> 8);
  h[11] = static_cast<unsigned char>(z & 0xFF);
  h[19] = 0xFF;
  return h;
}

// Plane 0 over (0, 1) and plane 1 over (-1, 1), with the bytes each value
// codes to worked out by hand as truncate((x - lo) / (hi - lo) * 255).
const float plane0[6] = {0.0f, 0.5f, 1.0f, -1.0f, 2.0f, 0.25f};
const unsigned char plane0_bytes[6] = {0, 127, 255, 0, 255, 63};
const float plane1[6] = {-1.0f, 0.0f, 1.0f, 0.5f, -0.5f, 0.9990234375f};
const unsigned char plane1_bytes[6] = {0, 127, 255, 191, 63, 254};

std::string write_two_plane_file(const Temp_folder& folder) {
  const std::string name = folder.file("two.rgb");
  EXPECT_EQ(rgb_open(name.c_str(), dims_2x3, 2), 1);
  EXPECT_EQ(rgb_write_plane(name.c_str(), 0, plane0, dims_2x3, 0.0, 1.0), 1);
  EXPECT_EQ(rgb_write_plane(name.c_str(), 1, plane1, dims_2x3, -1.0, 1.0), 1);
  return name;
}

TEST(SgiImage, OpenWritesTheHeaderAndNothingElse) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("h.rgb");
  ASSERT_EQ(rgb_open(name.c_str(), dims_2x3, 2), 1);
  EXPECT_EQ(file_bytes(name), header_2x3x2());
}

TEST(SgiImage, VerbatimFileHasHandWorkedBytes) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_two_plane_file(folder);
  std::vector<unsigned char> expected = header_2x3x2();
  expected.insert(expected.end(), plane0_bytes, plane0_bytes + 6);
  expected.insert(expected.end(), plane1_bytes, plane1_bytes + 6);
  EXPECT_EQ(file_bytes(name), expected);
}

TEST(SgiImage, PlanesCanBeWrittenInAnyOrder) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("order.rgb");
  ASSERT_EQ(rgb_open(name.c_str(), dims_2x3, 2), 1);
  ASSERT_EQ(rgb_write_plane(name.c_str(), 1, plane1, dims_2x3, -1.0, 1.0), 1);
  ASSERT_EQ(rgb_write_plane(name.c_str(), 0, plane0, dims_2x3, 0.0, 1.0), 1);
  const std::vector<unsigned char> bytes = file_bytes(name);
  ASSERT_EQ(bytes.size(), 524u);
  EXPECT_EQ(std::vector<unsigned char>(bytes.begin() + 512, bytes.begin() + 518),
            std::vector<unsigned char>(plane0_bytes, plane0_bytes + 6));
  EXPECT_EQ(std::vector<unsigned char>(bytes.begin() + 518, bytes.end()),
            std::vector<unsigned char>(plane1_bytes, plane1_bytes + 6));
}

TEST(SgiImage, OpenTruncatesAnEarlierFile) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_two_plane_file(folder);
  ASSERT_EQ(rgb_open(name.c_str(), dims_2x3, 2), 1);
  EXPECT_EQ(file_bytes(name).size(), 512u);
}

TEST(SgiImage, HeaderFollowsTheByteOrderSetting) {
  // With the flag cleared on a little-endian host the fields stay in host
  // order, which shows every field goes through the swap routines.
  if (!host_is_little_endian()) GTEST_SKIP() << "needs a little-endian host";
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("le.rgb");
  const int saved = swap_bytes;
  swap_bytes = 0;
  const int ok = rgb_open(name.c_str(), dims_2x3, 2);
  swap_bytes = saved;
  ASSERT_EQ(ok, 1);
  const std::vector<unsigned char> bytes = file_bytes(name);
  ASSERT_EQ(bytes.size(), 512u);
  EXPECT_EQ(bytes[0], 0xDA);
  EXPECT_EQ(bytes[1], 0x01);
  EXPECT_EQ(bytes[6], 0x03);
  EXPECT_EQ(bytes[16], 0xFF);
}

TEST(SgiImage, OpenInAMissingFolderFails) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_open("/nonexistent_tidecast_dir/a.rgb", dims_2x3, 1), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to open /nonexistent_tidecast_dir/a.rgb\n");
}

TEST(SgiImage, OpenRefusesSizesTheHeaderCannotHold) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("big.rgb");
  const int too_wide[2] = {2, 65536};
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_open(name.c_str(), too_wide, 1), 0);
  EXPECT_EQ(rgb_open(name.c_str(), dims_2x3, 0), 0);
  EXPECT_NE(testing::internal::GetCapturedStdout(), "");
  EXPECT_TRUE(file_bytes(name).empty());
}

TEST(SgiImage, WritingIntoAMissingFileFails) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_write_plane("/nonexistent_tidecast_dir/a.rgb", 0, plane0, dims_2x3, 0.0, 1.0), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to open /nonexistent_tidecast_dir/a.rgb\n"
            "unable to write plane 0 to /nonexistent_tidecast_dir/a.rgb\n");
}

TEST(SgiImage, MaskWriterWritesBytesUnchanged) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("mask.rgb");
  const unsigned char mask[6] = {0, 1, 2, 128, 254, 255};
  ASSERT_EQ(rgb_open(name.c_str(), dims_2x3, 2), 1);
  ASSERT_EQ(rgb_write_mask(name.c_str(), 1, mask, dims_2x3), 1);
  const std::vector<unsigned char> bytes = file_bytes(name);
  ASSERT_EQ(bytes.size(), 524u);
  // Plane 0 was never written: the gap reads back as zeros.
  for (int i = 512; i < 518; i++) EXPECT_EQ(bytes[i], 0) << i;
  EXPECT_EQ(std::vector<unsigned char>(bytes.begin() + 518, bytes.end()),
            std::vector<unsigned char>(mask, mask + 6));
}

TEST(SgiImage, CodingClampsAndTruncates) {
  // Over (-1, 1) the span is 2, so each of these is exact in binary.
  EXPECT_EQ(rgb_code_byte(-3.0, -1.0, 1.0), 0);                // below lo
  EXPECT_EQ(rgb_code_byte(-1.0, -1.0, 1.0), 0);                // v = 0 exactly
  EXPECT_EQ(rgb_code_byte(-1.0 + 1.0 / 1024, -1.0, 1.0), 0);   // v * 255 = 0.1245...
  EXPECT_EQ(rgb_code_byte(-0.5, -1.0, 1.0), 63);               // 63.75
  EXPECT_EQ(rgb_code_byte(0.0, -1.0, 1.0), 127);               // 127.5
  EXPECT_EQ(rgb_code_byte(0.5, -1.0, 1.0), 191);               // 191.25
  EXPECT_EQ(rgb_code_byte(1.0 - 1.0 / 1024, -1.0, 1.0), 254);  // 254.875
  EXPECT_EQ(rgb_code_byte(1.0, -1.0, 1.0), 255);               // v * 255 = 255 exactly
  EXPECT_EQ(rgb_code_byte(7.0, -1.0, 1.0), 255);               // above hi
  // Over (0, 256) the division is exact as well.
  EXPECT_EQ(rgb_code_byte(128.0, 0.0, 256.0), 127);  // 127.5
  EXPECT_EQ(rgb_code_byte(256.0, 0.0, 256.0), 255);
}

TEST(SgiImage, CodingWithLimitsReversedCountsDown) {
  EXPECT_EQ(rgb_code_byte(1.0, 1.0, -1.0), 0);
  EXPECT_EQ(rgb_code_byte(-1.0, 1.0, -1.0), 255);
  EXPECT_EQ(rgb_code_byte(0.5, 1.0, -1.0), 63);
}

TEST(SgiImage, EqualLimitsAreNotGuarded) {
  // The division by zero happens: infinity clamps, and the 0 / 0 NaN codes to 0.
  EXPECT_EQ(rgb_code_byte(2.0, 1.0, 1.0), 255);
  EXPECT_EQ(rgb_code_byte(0.0, 1.0, 1.0), 0);
  EXPECT_EQ(rgb_code_byte(1.0, 1.0, 1.0), 0);
  EXPECT_EQ(rgb_code_byte(std::numeric_limits<double>::quiet_NaN(), 0.0, 1.0), 0);
}

TEST(SgiImage, DecodingPutsAValueInTheMiddleOfItsInterval) {
  // Over (10, 265), (hi - lo) * (byte + 0.5) / 255 is exactly byte + 0.5.
  EXPECT_EQ(rgb_decode_byte(0, 10.0, 265.0), 10.5f);
  EXPECT_EQ(rgb_decode_byte(127, 10.0, 265.0), 137.5f);
  EXPECT_EQ(rgb_decode_byte(255, 10.0, 265.0), 265.5f);
  EXPECT_EQ(rgb_decode_byte(127, 0.0, 1.0), 0.5f);
  EXPECT_EQ(rgb_decode_byte(0, 0.0, 1.0), static_cast<float>(0.5 / 255.0));
}

TEST(SgiImage, FloatReaderDecodesEachByte) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_two_plane_file(folder);
  float data[6];
  ASSERT_EQ(rgb_read_plane(name.c_str(), 1, data, dims_2x3, 10.0, 265.0), 1);
  for (int i = 0; i < 6; i++) EXPECT_EQ(data[i], 10.5f + plane1_bytes[i]) << i;
  ASSERT_EQ(rgb_read_plane(name.c_str(), 0, data, dims_2x3, 0.0, 1.0), 1);
  EXPECT_EQ(data[1], 0.5f);
  EXPECT_EQ(data[2], static_cast<float>(255.5 / 255.0));
}

TEST(SgiImage, ByteReaderGivesTheFileBytes) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_two_plane_file(folder);
  unsigned char bytes[6];
  ASSERT_EQ(rgb_read_plane_bytes(name.c_str(), 0, bytes, dims_2x3), 1);
  EXPECT_EQ(std::vector<unsigned char>(bytes, bytes + 6),
            std::vector<unsigned char>(plane0_bytes, plane0_bytes + 6));
  ASSERT_EQ(rgb_read_plane_bytes(name.c_str(), 1, bytes, dims_2x3), 1);
  EXPECT_EQ(std::vector<unsigned char>(bytes, bytes + 6),
            std::vector<unsigned char>(plane1_bytes, plane1_bytes + 6));
}

TEST(SgiImage, TextureReaderMakesColumnsTheSlowAxis) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = write_two_plane_file(folder);
  // File rows are y (2 of them), columns x (3): byte (x, y) goes to x * 2 + y.
  unsigned char bytes[6];
  ASSERT_EQ(rgb_read_texture_plane(name.c_str(), 1, bytes, 3, 2), 1);
  const unsigned char expected[6] = {plane1_bytes[0], plane1_bytes[3], plane1_bytes[1],
                                     plane1_bytes[4], plane1_bytes[2], plane1_bytes[5]};
  EXPECT_EQ(std::vector<unsigned char>(bytes, bytes + 6),
            std::vector<unsigned char>(expected, expected + 6));
}

TEST(SgiImage, DimsAreRowsThenColumns) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("d.rgb");
  const int dims[2] = {5, 7};
  ASSERT_EQ(rgb_open(name.c_str(), dims, 4), 1);
  int read[2] = {0, 0};
  ASSERT_EQ(rgb_read_dims(name.c_str(), read), 1);
  EXPECT_EQ(read[0], 5);
  EXPECT_EQ(read[1], 7);
  int channels = 0;
  ASSERT_EQ(rgb_read_channels(name.c_str(), channels), 1);
  EXPECT_EQ(channels, 4);
}

TEST(SgiImage, SizesAreUnsignedSixteenBitFields) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("wide.rgb");
  put_file_bytes(name, sgi_header(474, 0, 65535, 40000, 65535, 0));
  int dims[2] = {0, 0};
  ASSERT_EQ(rgb_read_dims(name.c_str(), dims), 1);
  EXPECT_EQ(dims[0], 40000);
  EXPECT_EQ(dims[1], 65535);
  int channels = 0;
  ASSERT_EQ(rgb_read_channels(name.c_str(), channels), 1);
  EXPECT_EQ(channels, 65535);
}

TEST(SgiImage, WrongMagicIsRefusedByEveryReader) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("magic.rgb");
  put_file_bytes(name, sgi_header(0x1DB, 0, 3, 2, 1, 6));
  const std::string line = "file " + name + " not of SGI RGB format \n";
  int dims[2] = {9, 9};
  int channels = 9;
  float data[6];
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_dims(name.c_str(), dims), 0);
  EXPECT_EQ(rgb_read_channels(name.c_str(), channels), 0);
  EXPECT_EQ(rgb_read_plane(name.c_str(), 0, data, dims_2x3, 0.0, 1.0), 0);
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 0, bytes, dims_2x3), 0);
  EXPECT_EQ(rgb_read_texture_plane(name.c_str(), 0, bytes, 3, 2), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), line + line + line + line + line);
  EXPECT_EQ(dims[0], 9);
  EXPECT_EQ(channels, 9);
}

TEST(SgiImage, MissingFileIsReported) {
  int dims[2];
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_dims("/nonexistent_tidecast_dir/x.rgb", dims), 0);
  EXPECT_EQ(rgb_read_plane("/nonexistent_tidecast_dir/x.rgb", 0, data, dims_2x3, 0.0, 1.0), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to open /nonexistent_tidecast_dir/x.rgb\n"
            "unable to open /nonexistent_tidecast_dir/x.rgb\n");
}

TEST(SgiImage, TruncatedHeaderIsRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("short.rgb");
  std::vector<unsigned char> bytes = sgi_header(474, 0, 3, 2, 1, 0);
  bytes.resize(11);  // one byte short of the z size
  put_file_bytes(name, bytes);
  int dims[2] = {0, 0};
  int channels = 0;
  unsigned char plane[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_dims(name.c_str(), dims), 0);
  EXPECT_EQ(rgb_read_channels(name.c_str(), channels), 0);
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 0, plane, dims_2x3), 0);
  const std::string line = "SGI RGB file " + name + " is too short for its header\n";
  EXPECT_EQ(testing::internal::GetCapturedStdout(), line + line + line);
}

TEST(SgiImage, EmptyFileIsRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("empty.rgb");
  put_file_bytes(name, {});
  int dims[2] = {0, 0};
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_dims(name.c_str(), dims), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "SGI RGB file " + name + " is too short for its header\n");
}

TEST(SgiImage, VerbatimPlaneCutShortIsRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("cut.rgb");
  put_file_bytes(name, sgi_header(474, 0, 3, 2, 2, 6 + 5));  // plane 1 lacks a byte
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 0, bytes, dims_2x3), 1);
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 1, bytes, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to read plane 1 of SGI RGB file " + name + "\n");
}

TEST(SgiImage, BandBeyondTheCountIsNamedOnOneLine) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("one.rgb");
  put_file_bytes(name, sgi_header(474, 0, 3, 2, 1, 6));
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane(name.c_str(), 2, data, dims_2x3, 0.0, 1.0), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "band 2not present in RGB file  only has 1 bands \n");
}

TEST(SgiImage, PlaneEqualToTheCountIsNotPresent) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("two.rgb");
  put_file_bytes(name, sgi_header(474, 0, 3, 2, 2, 12));
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 2, bytes, dims_2x3), 0);
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), -1, bytes, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "band 2not present in RGB file  only has 2 bands \n"
            "band -1not present in RGB file  only has 2 bands \n");
}

TEST(SgiImage, MissingFourthChannelIsTheAlpha) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("rgb.rgb");
  put_file_bytes(name, sgi_header(474, 0, 3, 2, 3, 18));
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_texture_plane(name.c_str(), 3, bytes, 3, 2), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ERROR: alpha channel not present in RGB file \n");
}

TEST(SgiImage, SizesOtherThanTheCallersAreRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("huge.rgb");
  put_file_bytes(name, sgi_header(474, 0, 65535, 65535, 65535, 6));
  unsigned char bytes[6];
  float data[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 0, bytes, dims_2x3), 0);
  EXPECT_EQ(rgb_read_plane(name.c_str(), 1, data, dims_2x3, 0.0, 1.0), 0);
  const std::string line = "SGI RGB file " + name + " is 65535 by 65535, not 2 by 3\n";
  EXPECT_EQ(testing::internal::GetCapturedStdout(), line + line);
}

TEST(SgiImage, TransposedSizesAreRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("t.rgb");
  put_file_bytes(name, sgi_header(474, 0, 2, 3, 1, 6));
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 0, bytes, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "SGI RGB file " + name + " is 3 by 2, not 2 by 3\n");
}

}  // namespace
