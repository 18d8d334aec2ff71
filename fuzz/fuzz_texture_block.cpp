// The ocean's texture block: read, and when it reads, write it back.
// Counts on file (textures, bands) only bound loops; storage grows with what
// is actually read, so a huge or negative count in a short input is cheap.
#include <sstream>

#include "TCOcean_textures_input.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream in(text_of(data, size));
  TCOcean_textures_input block;
  if (block.process_texture_grid_input(in)) {
    std::ostringstream out;
    block.print_texture_grid_input(out);
  }
  return 0;
}
