// The atmosphere file. What reads must write a text that reads back to the
// same text, and must survive packing unchanged.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "TCAir_input.h"
#include "quiet_streams.h"

namespace {

std::string air_text(const TCAir_input& air) {
  std::ostringstream out;
  if (!air.write_stream(out)) std::abort();
  return out.str();
}

void pack_round_trip(TCAir_input& input) {
  TCAir_input receiver;
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
  if (air_text(receiver) != air_text(input)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = text_of(data, size);
  TCAir_input air;
  std::istringstream in(text);
  if (!air.read_stream(in)) return 0;
  const std::string first = air_text(air);
  // NUL bytes cut a word short of what the stream took as one.
  if (std::memchr(data, 0, size) == nullptr) {
    TCAir_input again;
    std::istringstream back(first);
    if (!again.read_stream(back)) std::abort();
    if (air_text(again) != first) std::abort();
  }
  pack_round_trip(air);
  return 0;
}
