#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

#include "TCSgi_image.h"
#include "image_test_files.h"

namespace {

const int dims_2x3[2] = {2, 3};

void put_be16(std::vector<unsigned char>& b, size_t at, int v) {
  b[at] = static_cast<unsigned char>(v >> 8);
  b[at + 1] = static_cast<unsigned char>(v & 0xFF);
}

void put_be32(std::vector<unsigned char>& b, size_t at, unsigned int v) {
  b[at] = static_cast<unsigned char>(v >> 24);
  b[at + 1] = static_cast<unsigned char>((v >> 16) & 0xFF);
  b[at + 2] = static_cast<unsigned char>((v >> 8) & 0xFF);
  b[at + 3] = static_cast<unsigned char>(v & 0xFF);
}

// A run-length file of 3 columns, 2 rows and 2 planes. The tables hold
// rows * planes = 4 starts then 4 lengths, indexed row + plane * rows; the
// packets follow at 512 + 32 = 544.
std::vector<unsigned char> run_length_file() {
  std::vector<unsigned char> b(544, 0x00);
  put_be16(b, 0, 474);
  b[2] = 1;  // run-length
  b[3] = 1;
  put_be16(b, 4, 3);
  put_be16(b, 6, 3);   // columns
  put_be16(b, 8, 2);   // rows
  put_be16(b, 10, 2);  // planes
  b[19] = 0xFF;
  const unsigned char packets[] = {
      // plane 0, row 0 at 544: copy 3, end by 0x00
      0x83,
      0x10,
      0x20,
      0x30,
      0x00,
      // plane 0, row 1 at 549: repeat 0x40 three times, end by 0x80
      0x03,
      0x40,
      0x80,
      // plane 1, row 0 at 552: repeat once, copy 2, end by 0x80
      0x01,
      0x07,
      0x82,
      0x08,
      0x09,
      0x80,
      // plane 1, row 1 at 558: repeat twice, copy 1, end by 0x00
      0x02,
      0xAA,
      0x81,
      0xBB,
      0x00,
  };
  for (unsigned char c : packets) b.push_back(c);
  const unsigned int starts[4] = {544, 549, 552, 558};
  const unsigned int lengths[4] = {5, 3, 6, 5};
  for (int i = 0; i < 4; i++) {
    put_be32(b, 512 + 4 * i, starts[i]);
    put_be32(b, 528 + 4 * i, lengths[i]);
  }
  return b;
}

const unsigned char plane0_bytes[6] = {0x10, 0x20, 0x30, 0x40, 0x40, 0x40};
const unsigned char plane1_bytes[6] = {0x07, 0x08, 0x09, 0xAA, 0xAA, 0xBB};

std::vector<unsigned char> as_vector(const unsigned char* b, int n) {
  return std::vector<unsigned char>(b, b + n);
}

// The decoder's verdict and the row it left, with guard bytes either side.
struct Decoded {
  int ok;
  std::vector<unsigned char> row;
  bool guards_intact;
};

Decoded decode(const std::vector<unsigned char>& packed, int columns) {
  std::vector<unsigned char> buffer(columns + 2, 0xEE);
  Decoded d;
  d.ok =
      rgb_decode_row(packed.data(), static_cast<long>(packed.size()), buffer.data() + 1, columns);
  d.row.assign(buffer.begin() + 1, buffer.end() - 1);
  d.guards_intact = buffer.front() == 0xEE && buffer.back() == 0xEE;
  return d;
}

TEST(SgiRle, CopyPacketCopiesTheFollowingBytes) {
  const Decoded d = decode({0x83, 1, 2, 3, 0x00}, 3);
  EXPECT_EQ(d.ok, 1);
  EXPECT_EQ(d.row, std::vector<unsigned char>({1, 2, 3}));
  EXPECT_TRUE(d.guards_intact);
}

TEST(SgiRle, RepeatPacketRepeatsOneByte) {
  const Decoded d = decode({0x04, 9, 0x00}, 4);
  EXPECT_EQ(d.ok, 1);
  EXPECT_EQ(d.row, std::vector<unsigned char>({9, 9, 9, 9}));
}

TEST(SgiRle, CountByteOf0x80EndsTheRowToo) {
  const Decoded d = decode({0x02, 5, 0x81, 6, 0x80, 0x01, 7}, 3);
  EXPECT_EQ(d.ok, 1);
  EXPECT_EQ(d.row, std::vector<unsigned char>({5, 5, 6}));
}

TEST(SgiRle, LongestRunsFitAWideRow) {
  std::vector<unsigned char> packed = {0x7F, 1, 0xFF};
  for (int i = 0; i < 127; i++) packed.push_back(static_cast<unsigned char>(i));
  packed.push_back(0x00);
  const Decoded d = decode(packed, 254);
  ASSERT_EQ(d.ok, 1);
  EXPECT_EQ(d.row[126], 1);
  EXPECT_EQ(d.row[127], 0);
  EXPECT_EQ(d.row[253], 126);
}

TEST(SgiRle, RowEndingShortFails) {
  const Decoded d = decode({0x02, 5, 0x00}, 3);
  EXPECT_EQ(d.ok, 0);
  EXPECT_TRUE(d.guards_intact);
}

TEST(SgiRle, RunPastTheRowFailsWithoutWritingPastIt) {
  Decoded d = decode({0x05, 5, 0x00}, 3);
  EXPECT_EQ(d.ok, 0);
  EXPECT_TRUE(d.guards_intact);
  d = decode({0x82, 1, 2, 0x82, 3, 4, 0x00}, 3);
  EXPECT_EQ(d.ok, 0);
  EXPECT_TRUE(d.guards_intact);
}

TEST(SgiRle, InputEndingBeforeTheEndMarkFails) {
  EXPECT_EQ(decode({0x83, 1, 2, 3}, 3).ok, 0);  // full row, no end mark
  EXPECT_EQ(decode({0x83, 1, 2}, 3).ok, 0);     // copy cut short
  EXPECT_EQ(decode({0x03}, 3).ok, 0);           // repeat without its byte
  EXPECT_EQ(decode({}, 3).ok, 0);
}

TEST(SgiRle, FileBuiltByHandDecodesThroughEveryReader) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("rle.rgb");
  put_file_bytes(name, run_length_file());

  unsigned char bytes[6];
  ASSERT_EQ(rgb_read_plane_bytes(name.c_str(), 0, bytes, dims_2x3), 1);
  EXPECT_EQ(as_vector(bytes, 6), as_vector(plane0_bytes, 6));
  ASSERT_EQ(rgb_read_plane_bytes(name.c_str(), 1, bytes, dims_2x3), 1);
  EXPECT_EQ(as_vector(bytes, 6), as_vector(plane1_bytes, 6));

  float data[6];
  ASSERT_EQ(rgb_read_plane(name.c_str(), 1, data, dims_2x3, 10.0, 265.0), 1);
  for (int i = 0; i < 6; i++) EXPECT_EQ(data[i], 10.5f + plane1_bytes[i]) << i;

  ASSERT_EQ(rgb_read_texture_plane(name.c_str(), 0, bytes, 3, 2), 1);
  const unsigned char texture[6] = {0x10, 0x40, 0x20, 0x40, 0x30, 0x40};
  EXPECT_EQ(as_vector(bytes, 6), as_vector(texture, 6));

  int bad_row = 7;
  ASSERT_EQ(rgb_load_plane(name.c_str(), 0, bytes, dims_2x3, bad_row), 1);
  EXPECT_EQ(bad_row, 0);
}

TEST(SgiRle, RunLengthFileAnswersDimsAndChannels) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("rle.rgb");
  put_file_bytes(name, run_length_file());
  int dims[2];
  ASSERT_EQ(rgb_read_dims(name.c_str(), dims), 1);
  EXPECT_EQ(dims[0], 2);
  EXPECT_EQ(dims[1], 3);
  int channels = 0;
  ASSERT_EQ(rgb_read_channels(name.c_str(), channels), 1);
  EXPECT_EQ(channels, 2);
}

TEST(SgiRle, BandBeyondTheCountIsCheckedBeforeTheTables) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("rle.rgb");
  put_file_bytes(name, run_length_file());
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 2, bytes, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "band 2not present in RGB file  only has 2 bands \n");
}

// The decoding message goes to standard output; in the child it is sent to
// standard error, where the death test can see it.
void read_in_child(const std::string& name, int plane) {
  std::cout.rdbuf(std::cerr.rdbuf());
  unsigned char bytes[6];
  rgb_read_plane_bytes(name.c_str(), plane, bytes, dims_2x3);
}

void read_floats_in_child(const std::string& name, int plane) {
  std::cout.rdbuf(std::cerr.rdbuf());
  float data[6];
  rgb_read_plane(name.c_str(), plane, data, dims_2x3, 0.0, 1.0);
}

void read_texture_in_child(const std::string& name, int plane) {
  std::cout.rdbuf(std::cerr.rdbuf());
  unsigned char bytes[6];
  rgb_read_texture_plane(name.c_str(), plane, bytes, 3, 2);
}

TEST(SgiRle, RowOfTheWrongLengthEndsTheRun) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("bad.rgb");
  std::vector<unsigned char> b = run_length_file();
  b[549] = 0x02;  // plane 0, row 1 now holds 2 pixels
  put_file_bytes(name, b);
  EXPECT_EXIT(read_in_child(name, 0), testing::ExitedWithCode(1),
              "^problem with decoding rgb file " + name + "\n$");
  // The other plane is intact and still reads.
  unsigned char bytes[6];
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 1, bytes, dims_2x3), 1);
}

TEST(SgiRle, RowOverflowingItsLengthEndsTheRun) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("long.rgb");
  std::vector<unsigned char> b = run_length_file();
  b[552] = 0x7F;  // plane 1, row 0 repeats 127 times into a row of 3
  put_file_bytes(name, b);
  EXPECT_EXIT(read_in_child(name, 1), testing::ExitedWithCode(1),
              "^problem with decoding rgb file " + name + "\n$");
}

TEST(SgiRle, RowStartBeyondTheFileEndsTheRun) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("far.rgb");
  std::vector<unsigned char> b = run_length_file();
  put_be32(b, 512 + 4, 0xFFFFFFF0u);  // plane 0, row 1
  put_file_bytes(name, b);
  EXPECT_EXIT(read_in_child(name, 0), testing::ExitedWithCode(1),
              "^problem with decoding rgb file " + name + "\n$");
}

TEST(SgiRle, FloatAndTextureReadersEndTheRunToo) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("cut.rgb");
  std::vector<unsigned char> b = run_length_file();
  b.resize(b.size() - 1);  // the last row loses its end mark
  put_file_bytes(name, b);
  EXPECT_EXIT(read_floats_in_child(name, 1), testing::ExitedWithCode(1),
              "^problem with decoding rgb file " + name + "\n$");
  EXPECT_EXIT(read_texture_in_child(name, 1), testing::ExitedWithCode(1),
              "^problem with decoding rgb file " + name + "\n$");
}

TEST(SgiRle, LoaderReportsABadRowInsteadOfExiting) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("bad.rgb");
  std::vector<unsigned char> b = run_length_file();
  b[549] = 0x02;
  put_file_bytes(name, b);
  unsigned char bytes[6];
  int bad_row = 0;
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_load_plane(name.c_str(), 0, bytes, dims_2x3, bad_row), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(bad_row, 1);
}

TEST(SgiRle, TablesCutShortAreRefused) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("tables.rgb");
  std::vector<unsigned char> b = run_length_file();
  b.resize(540);  // the lengths table loses its last entry
  put_file_bytes(name, b);
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 0, bytes, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "SGI RGB file " + name + " is too short for its run-length tables\n");
}

TEST(SgiRle, TablesLargerThanTheFileAreRefusedBeforeAllocation) {
  // 65535 planes would need tables of a megabyte; the file has 32 bytes of them.
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("planes.rgb");
  std::vector<unsigned char> b = run_length_file();
  put_be16(b, 10, 65535);
  put_file_bytes(name, b);
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 1, bytes, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "SGI RGB file " + name + " is too short for its run-length tables\n");
}

TEST(SgiRle, AbsurdSizesAreRefusedBeforeTheTables) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string name = folder.file("absurd.rgb");
  std::vector<unsigned char> b = run_length_file();
  put_be16(b, 6, 65535);
  put_be16(b, 8, 65535);
  put_be16(b, 10, 65535);
  put_file_bytes(name, b);
  unsigned char bytes[6];
  testing::internal::CaptureStdout();
  EXPECT_EQ(rgb_read_plane_bytes(name.c_str(), 0, bytes, dims_2x3), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "SGI RGB file " + name + " is 65535 by 65535, not 2 by 3\n");
}

}  // namespace
