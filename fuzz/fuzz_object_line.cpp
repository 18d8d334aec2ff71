// Object and camera lines of an object list, in both list layouts. The first
// byte picks the layout and the line kind.
#include <sstream>

#include "TCObject_input.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const int selector = data[0];
  std::istringstream in(text_of(data + 1, size - 1));
  TCObject_input input;
  input.version = (selector & 1) ? 1 : 2;
  std::ostringstream out;
  if (selector & 2) {
    input.read_camera_line(in);
    input.write_camera_line(out);
  } else {
    input.read_object_line(in);
    input.write_object_line(out);
  }
  return 0;
}
