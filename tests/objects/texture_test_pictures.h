#ifndef TC_TESTS_TEXTURE_TEST_PICTURES_H
#define TC_TESTS_TEXTURE_TEST_PICTURES_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

// SGI RGB pictures written byte by byte for the texture tests, so that they
// depend on nothing but the file layout: a 512-byte big-endian header, then
// verbatim planes of rows of x bytes, row 0 first.

// The test pattern, also used by texture_reference.py.
inline unsigned char pattern_byte(int x, int y, int band) {
  return static_cast<unsigned char>((37 * x + 11 * y + 61 * band + 7) % 256);
}

// A file name in the test scratch directory, unique to this process.
inline std::string scratch_file(const std::string& name) {
  return ::testing::TempDir() + "tc_texture_" + std::to_string(getpid()) + "_" + name + ".rgb";
}

// bytes holds the planes in file order: plane, then row y, then column x.
inline void write_sgi_bytes(const std::string& name, int n_x, int n_y, int n_z,
                            const std::vector<unsigned char>& bytes) {
  unsigned char header[512] = {0};
  header[0] = 474 >> 8;  // magic
  header[1] = 474 & 0xff;
  header[2] = 0;  // verbatim
  header[3] = 1;  // one byte per channel
  header[5] = 3;  // dimension
  header[6] = static_cast<unsigned char>(n_x >> 8);
  header[7] = static_cast<unsigned char>(n_x & 0xff);
  header[8] = static_cast<unsigned char>(n_y >> 8);
  header[9] = static_cast<unsigned char>(n_y & 0xff);
  header[10] = static_cast<unsigned char>(n_z >> 8);
  header[11] = static_cast<unsigned char>(n_z & 0xff);
  header[19] = 255;  // pixel maximum
  std::ofstream out(name.c_str(), std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(header), sizeof(header));
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

// A picture of the test pattern with n_z planes.
inline std::string write_pattern_picture(const std::string& stem, int n_x, int n_y, int n_z) {
  std::vector<unsigned char> bytes;
  for (int b = 0; b < n_z; b++)
    for (int y = 0; y < n_y; y++)
      for (int x = 0; x < n_x; x++) bytes.push_back(pattern_byte(x, y, b));
  const std::string name = scratch_file(stem);
  write_sgi_bytes(name, n_x, n_y, n_z, bytes);
  return name;
}

// A picture of n_x by n_y pixels whose every pixel holds value[b] in band b.
inline void write_uniform_picture(const std::string& name, int n_x, int n_y,
                                  const std::vector<unsigned char>& value) {
  std::vector<unsigned char> bytes;
  for (unsigned char v : value)
    for (int k = 0; k < n_x * n_y; k++) bytes.push_back(v);
  write_sgi_bytes(name, n_x, n_y, static_cast<int>(value.size()), bytes);
}

#endif
