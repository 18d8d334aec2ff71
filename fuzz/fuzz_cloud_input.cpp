// The cloud file, its volume section included, without the phase file (the
// volume target covers that). A file that reads must be written, read back
// from its own writing to the same writing, and survive packing whole.
#include <cstdlib>
#include <sstream>
#include <string>

#include "Cloud_input.h"
#include "quiet_streams.h"

namespace {

void pack_round_trip(Cloud_input& input, const std::string& written) {
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  if (input.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    Cloud_input receiver;
    receiver.set_sizes_from_packed(ints, doubles, chars);
    if (!receiver.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) std::abort();
    std::ostringstream again;
    if (!receiver.write_stream(again) || again.str() != written) std::abort();
  }
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = text_of(data, size);
  Cloud_input input;
  std::istringstream in(text);
  // An unknown fluctuation word ends a real run; here it is just a refusal.
  const int result = input.read_sections(in);
  if (result != 1) {
    if (result != 0 && result != Cloud_input::invalid_fluctuation_word) std::abort();
    return 0;
  }
  std::ostringstream first;
  if (!input.write_stream(first)) std::abort();
  // NUL bytes cut a word short of what the stream took as one.
  if (text.find('\0') == std::string::npos) {
    Cloud_input again;
    std::istringstream back(first.str());
    if (again.read_sections(back) != 1) std::abort();
    std::ostringstream second;
    if (!again.write_stream(second) || second.str() != first.str()) std::abort();
  }
  pack_round_trip(input, first.str());
  return 0;
}
