#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include "TCLattice_file.h"
#include "scratch_folder.h"

namespace {

std::string fixture(const char* name) {
  return std::string(TC_TEST_DATA_DIR) + "/volumes/" + name;
}

std::string bytes_of(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

void put_bytes(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

// A little-endian 32-bit word as four bytes.
std::string word(uint32_t w) {
  std::string b(4, '\0');
  for (int i = 0; i < 4; i++) b[i] = static_cast<char>((w >> (8 * i)) & 0xff);
  return b;
}

std::string header(int n_x, int n_y, int n_z, const char* magic = "TCLATTIC") {
  return std::string(magic, 8) + word(static_cast<uint32_t>(n_x)) +
         word(static_cast<uint32_t>(n_y)) + word(static_cast<uint32_t>(n_z));
}

// A file of the right length for its sizes, every value 1.0 (0x3f800000).
std::string whole_file(int n_x, int n_y, int n_z, const char* magic = "TCLATTIC") {
  std::string all = header(n_x, n_y, n_z, magic);
  for (int v = 0; v < n_x * n_y * n_z; v++) all += word(0x3f800000u);
  return all;
}

// Values that no read can leave behind by accident.
std::vector<float> untouched(int count) {
  return std::vector<float>(count, -12345.5f);
}

bool all_untouched(const std::vector<float>& values) {
  for (float v : values) {
    if (v != -12345.5f) return false;
  }
  return true;
}

TEST(LatticeFile, FileWrittenByThePythonToolIsReadExactly) {
  // tests/volumes/lattice_fixture.py wrote (x + 10 y + 100 z) / 2 - 7.25.
  const std::string path = fixture("lattice_3x2x5.dat");
  int n_x = 0, n_y = 0, n_z = 0;
  ASSERT_EQ(TCLattice_file::read_sizes(path.c_str(), n_x, n_y, n_z), 1);
  EXPECT_EQ(n_x, 3);
  EXPECT_EQ(n_y, 2);
  EXPECT_EQ(n_z, 5);
  std::vector<float> values = untouched(30);
  ASSERT_EQ(TCLattice_file::read(path.c_str(), 3, 2, 5, values.data()), 1);
  for (int k = 0; k < 5; k++) {
    for (int j = 0; j < 2; j++) {
      for (int i = 0; i < 3; i++) {
        EXPECT_EQ(values[i + 3 * (j + 2 * k)], (i + 10 * j + 100 * k) / 2.0f - 7.25f)
            << i << " " << j << " " << k;
      }
    }
  }
}

TEST(LatticeFile, WrittenBytesAreLittleEndianWithXFastest) {
  Scratch_folder folder;
  const std::string path = folder.file("two.dat");
  // Cells (0,0,0), (1,0,0), (0,1,0), (1,1,0): 1.0, -2.0, 0.5, 3.0.
  const float values[4] = {1.0f, -2.0f, 0.5f, 3.0f};
  ASSERT_EQ(TCLattice_file::write(path.c_str(), 2, 2, 1, values), 1);
  const std::string expected = std::string("TCLATTIC") + word(2) + word(2) + word(1) +
                               word(0x3f800000u) + word(0xc0000000u) + word(0x3f000000u) +
                               word(0x40400000u);
  EXPECT_EQ(bytes_of(path), expected);
}

TEST(LatticeFile, RoundTripKeepsEveryBit) {
  Scratch_folder folder;
  const std::string path = folder.file("round.dat");
  const int n_x = 5, n_y = 3, n_z = 7;
  std::vector<float> values(n_x * n_y * n_z);
  for (size_t c = 0; c < values.size(); c++) values[c] = std::sin(0.37f * c) * 1.0e3f;
  values[0] = -0.0f;
  values[1] = std::numeric_limits<float>::denorm_min();
  values[2] = std::numeric_limits<float>::infinity();
  values[3] = std::numeric_limits<float>::max();
  ASSERT_EQ(TCLattice_file::write(path.c_str(), n_x, n_y, n_z, values.data()), 1);
  std::vector<float> back = untouched(n_x * n_y * n_z);
  ASSERT_EQ(TCLattice_file::read(path.c_str(), n_x, n_y, n_z, back.data()), 1);
  EXPECT_EQ(std::memcmp(back.data(), values.data(), sizeof(float) * values.size()), 0);
}

TEST(LatticeFile, LargeLatticeRoundTripsAcrossTheReadBuffer) {
  // More values than one buffer of the reader holds, and not a multiple.
  Scratch_folder folder;
  const std::string path = folder.file("large.dat");
  const int n_x = 37, n_y = 29, n_z = 11;
  std::vector<float> values(n_x * n_y * n_z);
  for (size_t c = 0; c < values.size(); c++) values[c] = static_cast<float>(c);
  ASSERT_EQ(TCLattice_file::write(path.c_str(), n_x, n_y, n_z, values.data()), 1);
  EXPECT_EQ(bytes_of(path).size(), 20u + 4u * values.size());
  std::vector<float> back = untouched(n_x * n_y * n_z);
  ASSERT_EQ(TCLattice_file::read(path.c_str(), n_x, n_y, n_z, back.data()), 1);
  EXPECT_EQ(back, values);
}

TEST(LatticeFile, ShortFileIsRefusedAndValuesStayUntouched) {
  Scratch_folder folder;
  const std::string path = folder.file("short.dat");
  const std::string whole = whole_file(2, 3, 4);
  put_bytes(path, whole.substr(0, whole.size() - 1));
  int n_x = 0, n_y = 0, n_z = 0;
  EXPECT_EQ(TCLattice_file::read_sizes(path.c_str(), n_x, n_y, n_z), 0);
  std::vector<float> values = untouched(24);
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 3, 4, values.data()), 0);
  EXPECT_TRUE(all_untouched(values));
  // A header cut short, and an empty file.
  put_bytes(path, whole.substr(0, 13));
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 3, 4, values.data()), 0);
  put_bytes(path, "");
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 3, 4, values.data()), 0);
  EXPECT_TRUE(all_untouched(values));
}

TEST(LatticeFile, FileLongerThanItsSizesIsRefused) {
  Scratch_folder folder;
  const std::string path = folder.file("long.dat");
  put_bytes(path, whole_file(2, 3, 4) + word(0));
  std::vector<float> values = untouched(24);
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 3, 4, values.data()), 0);
  EXPECT_TRUE(all_untouched(values));
}

TEST(LatticeFile, OtherMagicIsRefused) {
  Scratch_folder folder;
  const std::string path = folder.file("magic.dat");
  put_bytes(path, whole_file(2, 3, 4, "TCLATTIX"));
  int n_x = 0, n_y = 0, n_z = 0;
  EXPECT_EQ(TCLattice_file::read_sizes(path.c_str(), n_x, n_y, n_z), 0);
  std::vector<float> values = untouched(24);
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 3, 4, values.data()), 0);
  EXPECT_TRUE(all_untouched(values));
  // Lower case is another magic too.
  put_bytes(path, whole_file(2, 3, 4, "tclattic"));
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 3, 4, values.data()), 0);
  // The control: the same file with the right magic reads.
  put_bytes(path, whole_file(2, 3, 4));
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 3, 4, values.data()), 1);
}

TEST(LatticeFile, SizesOtherThanThoseAskedAreRefused) {
  Scratch_folder folder;
  const std::string path = folder.file("sizes.dat");
  put_bytes(path, whole_file(2, 3, 4));
  std::vector<float> values = untouched(24);
  // Same count, other shape; and each size off by one.
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 4, 3, 2, values.data()), 0);
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 3, 3, 4, values.data()), 0);
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 2, 4, values.data()), 0);
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 2, 3, 3, values.data()), 0);
  EXPECT_TRUE(all_untouched(values));
}

TEST(LatticeFile, MissingFileIsRefused) {
  Scratch_folder folder;
  const std::string path = folder.file("absent.dat");
  int n_x = 0, n_y = 0, n_z = 0;
  EXPECT_EQ(TCLattice_file::read_sizes(path.c_str(), n_x, n_y, n_z), 0);
  std::vector<float> values = untouched(1);
  EXPECT_EQ(TCLattice_file::read(path.c_str(), 1, 1, 1, values.data()), 0);
  EXPECT_EQ(TCLattice_file::read_sizes(nullptr, n_x, n_y, n_z), 0);
}

TEST(LatticeFile, HostileSizesAreRefusedWithoutReadingOn) {
  Scratch_folder folder;
  const std::string path = folder.file("hostile.dat");
  int n_x = 7, n_y = 7, n_z = 7;
  // Zero, negative, a product just above 2^28, a product that overflows an
  // int, all with no values behind them.
  const int cases[][3] = {{0, 1, 1},
                          {1, -1, 1},
                          {1, 1, -2147483647 - 1},
                          {1024, 1024, 257},
                          {65536, 65536, 65536},
                          {2147483647, 2, 1}};
  for (const auto& c : cases) {
    put_bytes(path, header(c[0], c[1], c[2]));
    EXPECT_EQ(TCLattice_file::read_sizes(path.c_str(), n_x, n_y, n_z), 0)
        << c[0] << " " << c[1] << " " << c[2];
  }
  EXPECT_EQ(n_x, 7);
  // 2^28 values exactly is the largest lattice taken: its header is fine,
  // but a file without its values is refused for its length.
  put_bytes(path, header(1024, 1024, 256));
  EXPECT_EQ(TCLattice_file::read_sizes(path.c_str(), n_x, n_y, n_z), 0);
  EXPECT_EQ(TCLattice_file::sizes_are_valid(1024, 1024, 256), 1);
  EXPECT_EQ(TCLattice_file::sizes_are_valid(1024, 1024, 257), 0);
  // Products of three sizes beyond what 64 bits hold: 2^63 would wrap to a
  // negative count.
  EXPECT_EQ(TCLattice_file::sizes_are_valid(2097152, 2097152, 2097152), 0);
  EXPECT_EQ(TCLattice_file::sizes_are_valid(2147483647, 2147483647, 2147483647), 0);
  EXPECT_EQ(TCLattice_file::sizes_are_valid(1095516996, 1128354900, 65536), 0);
}

TEST(LatticeFile, WriteRefusesSizesItCouldNotReadBack) {
  Scratch_folder folder;
  const std::string path = folder.file("refused.dat");
  const float one = 1.0f;
  EXPECT_EQ(TCLattice_file::write(path.c_str(), 0, 1, 1, &one), 0);
  EXPECT_EQ(TCLattice_file::write(path.c_str(), 1, 1, -3, &one), 0);
  EXPECT_EQ(TCLattice_file::write(path.c_str(), 65536, 65536, 65536, &one), 0);
  EXPECT_EQ(TCLattice_file::write(path.c_str(), 1, 1, 1, nullptr), 0);
  EXPECT_EQ(TCLattice_file::write(folder.file("no/such/folder.dat").c_str(), 1, 1, 1, &one), 0);
}

}  // namespace
