// The polygon objects file. The reader runs without ending the process, so
// that the faults the format calls fatal are explored too. A file that reads
// must read back from its own writing to the same writing, and must pack and
// unpack its name.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "TCPoly_object_input.h"
#include "quiet_streams.h"

namespace {

std::string written(const TCPoly_object_input& record) {
  std::ostringstream out;
  if (!record.write_stream(out)) std::abort();
  return out.str();
}

void pack_round_trip(TCPoly_object_input& input) {
  TCPoly_object_input receiver;
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
  if (std::strcmp(receiver.object_name, input.object_name) != 0) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  TCPoly_object_input record;
  std::istringstream in(text_of(data, size));
  int fatal = 0;
  const int result = record.parse_stream(in, fatal);
  if (result && fatal) std::abort();
  if (record.n_surfaces < 0 || record.n_surfaces > TCPoly_object_input::most_surfaces) std::abort();
  if (record.n_modified < 0 || record.n_modified > TCPoly_object_input::most_changes) std::abort();
  if (record.n_surfaces > 0 && record.surfaces == nullptr) std::abort();
  if (record.has_order && record.order == nullptr) std::abort();
  if (!result) return 0;

  const std::string first = written(record);
  // NUL bytes cut a word short of what the stream took as one.
  if (std::memchr(data, 0, size) == nullptr) {
    TCPoly_object_input again;
    std::istringstream back(first);
    if (!again.parse_stream(back, fatal)) std::abort();
    if (written(again) != first) std::abort();
  }
  pack_round_trip(record);
  return 0;
}
