#include "TCLattice_file.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

const char magic[8] = {'T', 'C', 'L', 'A', 'T', 'T', 'I', 'C'};
const long long largest_count = 1LL << 28;
// Values go through a buffer of this many at a time, so that no copy of a
// whole lattice is ever made.
const int chunk_values = 4096;

uint32_t little_endian_word(const unsigned char* b) {
  return static_cast<uint32_t>(b[0]) | (static_cast<uint32_t>(b[1]) << 8) |
         (static_cast<uint32_t>(b[2]) << 16) | (static_cast<uint32_t>(b[3]) << 24);
}

void put_little_endian_word(uint32_t word, unsigned char* b) {
  b[0] = static_cast<unsigned char>(word & 0xff);
  b[1] = static_cast<unsigned char>((word >> 8) & 0xff);
  b[2] = static_cast<unsigned char>((word >> 16) & 0xff);
  b[3] = static_cast<unsigned char>((word >> 24) & 0xff);
}

int signed_word(const unsigned char* b) {
  const uint32_t word = little_endian_word(b);
  int32_t value;
  std::memcpy(&value, &word, 4);
  return value;
}

// The header's sizes, with the file left at the first value. 0 for a file
// that is not one of ours or whose length does not match its sizes.
int read_header(FILE* file, int& n_x, int& n_y, int& n_z) {
  unsigned char header[TCLattice_file::header_bytes];
  if (std::fread(header, 1, sizeof header, file) != sizeof header) return 0;
  if (std::memcmp(header, magic, sizeof magic) != 0) return 0;
  const int x = signed_word(header + 8);
  const int y = signed_word(header + 12);
  const int z = signed_word(header + 16);
  if (!TCLattice_file::sizes_are_valid(x, y, z)) return 0;
  if (std::fseek(file, 0, SEEK_END) != 0) return 0;
  const long length = std::ftell(file);
  const long long expected = TCLattice_file::header_bytes + 4LL * static_cast<long long>(x) * y * z;
  if (length < 0 || static_cast<long long>(length) != expected) return 0;
  if (std::fseek(file, TCLattice_file::header_bytes, SEEK_SET) != 0) return 0;
  n_x = x;
  n_y = y;
  n_z = z;
  return 1;
}

}  // namespace

int TCLattice_file::sizes_are_valid(int n_x, int n_y, int n_z) {
  if (n_x < 1 || n_y < 1 || n_z < 1) return 0;
  // In two steps, so that no product of three sizes can overflow.
  const long long area = static_cast<long long>(n_x) * n_y;
  return area <= largest_count && area * n_z <= largest_count;
}

int TCLattice_file::read_sizes(const char* path, int& n_x, int& n_y, int& n_z) {
  if (path == nullptr) return 0;
  FILE* file = std::fopen(path, "rb");
  if (file == nullptr) return 0;
  const int ok = read_header(file, n_x, n_y, n_z);
  std::fclose(file);
  return ok;
}

int TCLattice_file::read(const char* path, int n_x, int n_y, int n_z, float* values) {
  if (path == nullptr || values == nullptr || !sizes_are_valid(n_x, n_y, n_z)) return 0;
  FILE* file = std::fopen(path, "rb");
  if (file == nullptr) return 0;
  int x = 0, y = 0, z = 0;
  if (!read_header(file, x, y, z) || x != n_x || y != n_y || z != n_z) {
    std::fclose(file);
    return 0;
  }
  const long long count = static_cast<long long>(n_x) * n_y * n_z;
  unsigned char bytes[4 * chunk_values];
  for (long long done = 0; done < count; done += chunk_values) {
    const int now = count - done < chunk_values ? static_cast<int>(count - done) : chunk_values;
    if (std::fread(bytes, 4, now, file) != static_cast<size_t>(now)) {
      std::fclose(file);
      return 0;
    }
    for (int v = 0; v < now; v++) {
      const uint32_t word = little_endian_word(bytes + 4 * v);
      std::memcpy(values + done + v, &word, 4);
    }
  }
  std::fclose(file);
  return 1;
}

int TCLattice_file::write(const char* path, int n_x, int n_y, int n_z, const float* values) {
  if (path == nullptr || values == nullptr || !sizes_are_valid(n_x, n_y, n_z)) return 0;
  FILE* file = std::fopen(path, "wb");
  if (file == nullptr) return 0;
  unsigned char header[header_bytes];
  std::memcpy(header, magic, sizeof magic);
  const int sizes[3] = {n_x, n_y, n_z};
  for (int d = 0; d < 3; d++) {
    uint32_t word;
    std::memcpy(&word, &sizes[d], 4);
    put_little_endian_word(word, header + 8 + 4 * d);
  }
  int ok = std::fwrite(header, 1, sizeof header, file) == sizeof header;
  const long long count = static_cast<long long>(n_x) * n_y * n_z;
  unsigned char bytes[4 * chunk_values];
  for (long long done = 0; ok && done < count; done += chunk_values) {
    const int now = count - done < chunk_values ? static_cast<int>(count - done) : chunk_values;
    for (int v = 0; v < now; v++) {
      uint32_t word;
      std::memcpy(&word, values + done + v, 4);
      put_little_endian_word(word, bytes + 4 * v);
    }
    ok = std::fwrite(bytes, 4, now, file) == static_cast<size_t>(now);
  }
  if (std::fclose(file) != 0) ok = 0;
  return ok;
}
