#include "quiet_streams.h"

#include <iostream>

namespace {
class Null_buffer : public std::streambuf {
 protected:
  int overflow(int c) override { return c == EOF ? 0 : c; }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};
Null_buffer null_buffer;
}  // namespace

void silence_standard_streams() {
  std::cout.rdbuf(&null_buffer);
  std::cerr.rdbuf(&null_buffer);
}

std::string text_of(const uint8_t* data, size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}
