// Header judgement of every keyword file, and the "end" check.
#include <sstream>

#include "TCData_file.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream in(text_of(data, size));
  check_header(in, "scene", 2);
  check_end(in, "fuzz");
  char token[256];
  read_token(in, token, sizeof(token));
  parse_yes_no(token);
  return 0;
}
