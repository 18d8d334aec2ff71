// SGI RGB files as the image readers see them, and run-length rows on their
// own. A run-length row that does not decode ends the engine's run by design,
// so run-length files go through the loader that reports instead of exiting.
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>

#include "TCSgi_image.h"
#include "quiet_streams.h"

namespace {

char file_name[] = "/tmp/fuzz_sgi_image_XXXXXX";

// Small enough that every buffer below fits on the stack.
const int largest_side = 64;
const int largest_depth = 8;

void remove_file() {
  unlink(file_name);
}

int put_file(const uint8_t* data, size_t size) {
  FILE* f = fopen(file_name, "wb");
  if (f == nullptr) return 0;
  const size_t written = size ? fwrite(data, 1, size, f) : 0;
  fclose(f);
  return written == size;
}

void decode_rows(const uint8_t* data, size_t size) {
  if (size < 1) return;
  // The first byte picks the row length, the rest are packets.
  const int columns = 1 + data[0] % largest_side;
  unsigned char row[largest_side];
  rgb_decode_row(data + 1, static_cast<long>(size - 1), row, columns);
}

void read_file(const uint8_t* data, size_t size) {
  int dims[2] = {0, 0};
  int channels = 0;
  if (!rgb_read_dims(file_name, dims) || !rgb_read_channels(file_name, channels)) return;
  const int verbatim = size > 2 && data[2] == 0;

  static unsigned char bytes[largest_side * largest_side];
  static float floats[largest_side * largest_side];
  // Sizes other than the file's must be refused, whatever the file says.
  const int other[2] = {2, 3};
  int bad_row = 0;
  rgb_load_plane(file_name, 0, bytes, other, bad_row);
  if (verbatim) rgb_read_plane(file_name, 0, floats, other, 0.0, 1.0);

  if (dims[0] < 1 || dims[1] < 1 || dims[0] > largest_side || dims[1] > largest_side) return;
  const int depth = channels < largest_depth ? channels : largest_depth;
  for (int plane = -1; plane <= depth; plane++) {
    rgb_load_plane(file_name, plane, bytes, dims, bad_row);
    if (!verbatim) continue;
    rgb_read_plane(file_name, plane, floats, dims, -1.0, 2.0);
    rgb_read_plane_bytes(file_name, plane, bytes, dims);
    rgb_read_texture_plane(file_name, plane, bytes, dims[1], dims[0]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  const int fd = mkstemp(file_name);
  if (fd < 0) abort();
  close(fd);
  atexit(remove_file);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  decode_rows(data, size);
  if (put_file(data, size)) read_file(data, size);
  return 0;
}
