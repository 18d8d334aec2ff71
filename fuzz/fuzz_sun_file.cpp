// The sun file and the object list's sun block. The first byte picks which
// one the rest is. What reads must read back from its own writing (the sun
// file to the same text; the block to the same keys, its angles within
// rounding, since degrees and radians are turned both ways) and must survive
// packing unchanged.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "TCStar_input.h"
#include "quiet_streams.h"

namespace {

std::string sun_file_text(const TCStar_input& sun) {
  std::ostringstream out;
  if (!sun.write_stream(out)) std::abort();
  return out.str();
}

std::string block_text(const TCStar_input& sun) {
  std::ostringstream out;
  if (!sun.write_list_block(out)) std::abort();
  return out.str();
}

// Packs input into receiver, which must then write exactly as input does.
void pack_round_trip(TCStar_input& input) {
  TCStar_input receiver;
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  if (!input.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) std::abort();
  receiver.set_sizes_from_packed(ints, doubles, chars);
  if (!receiver.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) std::abort();
  delete[] ints;
  delete[] doubles;
  delete[] chars;
  if (sun_file_text(receiver) != sun_file_text(input)) std::abort();
  if (block_text(receiver) != block_text(input)) std::abort();
}

int close_enough(double a, double b) {
  return std::fabs(a - b) <= 1e-12 * (1.0 + std::fabs(a));
}

void exercise_sun_file(const std::string& text, int no_nul) {
  TCStar_input sun;
  std::istringstream in(text);
  if (!sun.read_stream(in)) return;
  const std::string first = sun_file_text(sun);
  if (no_nul) {
    TCStar_input again;
    std::istringstream back(first);
    if (!again.read_stream(back)) std::abort();
    if (sun_file_text(again) != first) std::abort();
  }
  pack_round_trip(sun);
}

void exercise_block(const std::string& text, int no_nul) {
  TCStar_input sun;
  std::istringstream in(text);
  if (!sun.read_list_block(in)) return;
  const std::string first = block_text(sun);
  // A key beyond the range of a double on the way back cannot be read again.
  if (no_nul && first.find("inf") == std::string::npos && first.find("nan") == std::string::npos) {
    TCStar_input again;
    std::istringstream back(first);
    if (!again.read_list_block(back)) std::abort();
    if (again.track.number_of_times != sun.track.number_of_times) std::abort();
    if (std::strcmp(again.object_file, sun.object_file) != 0) std::abort();
    for (int i = 0; i < sun.track.number_of_times; i++) {
      if (!close_enough(sun.track.chi[i], again.track.chi[i])) std::abort();
      if (!close_enough(sun.track.phi[i], again.track.phi[i])) std::abort();
    }
  }
  pack_round_trip(sun);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const std::string text = text_of(data + 1, size - 1);
  // NUL bytes cut a word short of what the stream took as one.
  const int no_nul = std::memchr(data + 1, 0, size - 1) == nullptr;
  if (data[0] & 1)
    exercise_block(text, no_nul);
  else
    exercise_sun_file(text, no_nul);
  return 0;
}
