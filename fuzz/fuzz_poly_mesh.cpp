// The ".poly" mesh reader and writer. Whatever reads must write, what is
// written must read back, and from then on the text must stay the same (the
// first writing rounds to %g, which may turn an alpha near 1 into 1).
#include <stdio_ext.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "Poly_mesh.h"
#include "quiet_streams.h"

namespace {

std::string written(const Poly_mesh* mesh) {
  char* buffer = nullptr;
  size_t size = 0;
  std::FILE* out = open_memstream(&buffer, &size);
  if (out == nullptr) std::abort();
  if (!poly_write(out, mesh)) std::abort();
  std::fclose(out);
  std::string text(buffer, size);
  std::free(buffer);
  return text;
}

Poly_mesh* read_text(const std::string& text) {
  std::FILE* in = fmemopen(const_cast<char*>(text.data()), text.size(), "r");
  if (in == nullptr) return nullptr;
  Poly_mesh* mesh = poly_read(in);
  std::fclose(in);
  // The reader's reasons are dropped before they reach the fuzzer's own
  // stream, which shares the C standard error.
  __fpurge(stderr);
  return mesh;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  // Buffered, so that read_text can drop what the reader says.
  static char buffer[1 << 16];
  std::setvbuf(stderr, buffer, _IOFBF, sizeof buffer);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;  // fmemopen refuses an empty buffer
  Poly_mesh* mesh = read_text(text_of(data, size));
  if (mesh == nullptr) return 0;
  const std::string first = written(mesh);
  poly_free(mesh);
  Poly_mesh* again = read_text(first);
  if (again == nullptr) std::abort();
  const std::string second = written(again);
  poly_free(again);
  Poly_mesh* third = read_text(second);
  if (third == nullptr) std::abort();
  if (written(third) != second) std::abort();
  poly_free(third);
  return 0;
}
