// Skydome and picture files. The first byte picks the kind. A file that reads
// must read back from its own writing to the same writing, and must survive
// packing.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "Picture_input.h"
#include "Skydome_input.h"
#include "quiet_streams.h"

namespace {

// The text without its horizon line: degrees go to radians and back, and a
// value near the end of the double range need not come back digit for digit.
std::string without_horizon(const std::string& text) {
  const size_t start = text.find("horizon_angle: ");
  if (start == std::string::npos) return text;
  const size_t end = text.find('\n', start);
  return text.substr(0, start) + (end == std::string::npos ? "" : text.substr(end + 1));
}

// Packs input and unpacks the arrays into receiver; both must succeed.
void pack_round_trip(TCObject_input& input, TCObject_input& receiver) {
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
}

void exercise_skydome(const uint8_t* data, size_t size) {
  Skydome_input input, again, receiver;
  std::istringstream in(text_of(data, size));
  if (!input.read_stream(in)) return;
  std::ostringstream first;
  // Only a record read from a file is written; every code it holds has a word.
  if (!input.write_stream(first)) std::abort();
  // NUL bytes cut a word short of what the stream took as one.
  if (std::memchr(data, 0, size) == nullptr) {
    std::istringstream back(first.str());
    if (!again.read_stream(back)) std::abort();
    std::ostringstream second;
    if (!again.write_stream(second)) std::abort();
    if (without_horizon(second.str()) != without_horizon(first.str())) std::abort();
  }
  pack_round_trip(input, receiver);
  std::ostringstream third;
  if (!receiver.write_stream(third) || third.str() != first.str()) std::abort();
}

void exercise_picture(const uint8_t* data, size_t size) {
  Picture_input input, again, receiver;
  std::istringstream in(text_of(data, size));
  if (!input.read_stream(in)) return;
  std::ostringstream first;
  if (!input.write_stream(first)) std::abort();
  // A solid side is written with three reflectivities whatever the band
  // count: such a file is not meant to read back.
  const int solid =
      input.optical_nature[0] == picture_solid || input.optical_nature[1] == picture_solid;
  if (std::memchr(data, 0, size) == nullptr && (!solid || input.number_of_bands == 3)) {
    std::istringstream back(first.str());
    if (!again.read_stream(back)) std::abort();
    std::ostringstream second;
    if (!again.write_stream(second) || second.str() != first.str()) std::abort();
  }
  pack_round_trip(input, receiver);
  std::ostringstream third;
  if (!receiver.write_stream(third) || third.str() != first.str()) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  if (data[0] & 1) {
    exercise_picture(data + 1, size - 1);
  } else {
    exercise_skydome(data + 1, size - 1);
  }
  return 0;
}
