// Camera and bobbing camera files, for object lists of version 1 and 2. The
// first byte picks the kind and the list version. A file that reads must read
// back from its own writing to the same writing, and must survive packing.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "TCCamera_input.h"
#include "quiet_streams.h"

namespace {

// Packs input and unpacks the arrays into receiver; both must succeed.
void pack_round_trip(TCCamera_input& input, TCCamera_input& receiver) {
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  if (input.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    receiver.set_sizes_from_packed(ints, doubles, chars);
    if (!receiver.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) std::abort();
  }
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

void exercise(TCCamera_input& input, TCCamera_input& again, TCCamera_input& receiver,
              const uint8_t* data, size_t size) {
  std::istringstream in(text_of(data, size));
  if (!input.read_stream(in)) return;
  std::ostringstream first;
  // Codes with no word on file (an unknown format or rescale word) cannot be
  // written; nothing more to check then.
  if (!input.write_stream(first)) return;
  // NUL bytes cut a word short of what the stream took as one.
  if (std::memchr(data, 0, size) == nullptr) {
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
  const int selector = data[0];
  const int list_version = (selector & 1) ? 1 : 2;
  if (selector & 2) {
    TCBobbing_camera_input input, again, receiver;
    input.version = again.version = receiver.version = list_version;
    exercise(input, again, receiver, data + 1, size - 1);
  } else {
    TCCamera_input input, again, receiver;
    input.version = again.version = receiver.version = list_version;
    exercise(input, again, receiver, data + 1, size - 1);
  }
  return 0;
}
