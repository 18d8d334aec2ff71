// Scene files as the engine reads them, with the frame range behind "end".
#include <sstream>

#include "TCScene_input.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream in(text_of(data, size));
  TCScene_input input;
  if (input.read_scene(in)) input.read_frame_range(in);
  return 0;
}
