// Lattice files as the cloud reads them: the sizes, the values for the sizes
// the file claims and for sizes it does not hold, and the fluctuation field
// that takes its values from such a file. A refused file must leave the values
// alone; a read field must hold only values above 0 and write back to the
// same bytes.
#include <stdlib.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "TCCloud_fluctuations.h"
#include "TCLattice_file.h"
#include "quiet_streams.h"

namespace {

char file_name[] = "/tmp/fuzz_lattice_file_XXXXXX";
char copy_name[] = "/tmp/fuzz_lattice_copy_XXXXXX";

// Lattices beyond this many values are only checked for their sizes.
const long long largest_read = 1 << 16;
const float untouched_value = -12345.5f;

void remove_files() {
  unlink(file_name);
  unlink(copy_name);
}

int put_file(const uint8_t* data, size_t size) {
  FILE* f = std::fopen(file_name, "wb");
  if (f == nullptr) return 0;
  const size_t written = size ? std::fwrite(data, 1, size, f) : 0;
  std::fclose(f);
  return written == size;
}

std::vector<unsigned char> bytes_of(const char* path) {
  std::vector<unsigned char> bytes;
  FILE* f = std::fopen(path, "rb");
  if (f == nullptr) return bytes;
  int c;
  while ((c = std::fgetc(f)) != EOF) bytes.push_back(static_cast<unsigned char>(c));
  std::fclose(f);
  return bytes;
}

void check_refusal_keeps_values(int n_x, int n_y, int n_z) {
  std::vector<float> values(static_cast<size_t>(n_x) * n_y * n_z, untouched_value);
  if (TCLattice_file::read(file_name, n_x, n_y, n_z, values.data())) return;
  for (float v : values) {
    if (v != untouched_value) abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  int fd = mkstemp(file_name);
  if (fd < 0) abort();
  close(fd);
  fd = mkstemp(copy_name);
  if (fd < 0) abort();
  close(fd);
  atexit(remove_files);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (!put_file(data, size)) return 0;
  // Sizes the file cannot hold, whatever it says.
  check_refusal_keeps_values(1, 1, 1);
  check_refusal_keeps_values(2, 3, 4);

  int n_x = 0, n_y = 0, n_z = 0;
  if (!TCLattice_file::read_sizes(file_name, n_x, n_y, n_z)) return 0;
  if (!TCLattice_file::sizes_are_valid(n_x, n_y, n_z)) abort();
  const long long count = static_cast<long long>(n_x) * n_y * n_z;
  if (static_cast<long long>(size) != TCLattice_file::header_bytes + 4 * count) abort();
  if (count > largest_read) return 0;

  std::vector<float> values(count);
  if (!TCLattice_file::read(file_name, n_x, n_y, n_z, values.data())) abort();
  if (!TCLattice_file::write(copy_name, n_x, n_y, n_z, values.data())) abort();
  const std::vector<unsigned char> again = bytes_of(copy_name);
  if (again.size() != size || std::memcmp(again.data(), data, size) != 0) abort();

  TCCloud_fluctuations field;
  if (field.read_file(file_name)) {
    if (field.n_x != n_x || field.n_y != n_y || field.n_z != n_z) abort();
    if (!(field.sigma >= 0.0) || !std::isfinite(field.sigma)) abort();
    for (long long c = 0; c < count; c++) {
      if (!(field.values()[c] > 0.0f)) abort();
    }
    // Interpolation is a weighted mean: it stays within the values.
    float lowest = field.values()[0], highest = field.values()[0];
    for (long long c = 1; c < count; c++) {
      lowest = std::fmin(lowest, field.values()[c]);
      highest = std::fmax(highest, field.values()[c]);
    }
    const double at = field.value_at(0.5 * n_x + 0.25, -0.75, 1.5 * n_z);
    if (!(at >= lowest * (1.0 - 1e-9) && at <= highest * (1.0 + 1e-9))) abort();
    if (!field.write_file(copy_name)) abort();
    const std::vector<unsigned char> written = bytes_of(copy_name);
    if (written.size() != size || std::memcmp(written.data(), data, size) != 0) abort();
  }
  return 0;
}
