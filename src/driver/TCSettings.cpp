#include "TCSettings.h"

int host_is_little_endian() {
  const int probe = 1;
  return *reinterpret_cast<const unsigned char*>(&probe) == 1;
}

int verbose = 1;
int debug_level = 0;
int random_generator_kind = 902;
int swap_bytes = host_is_little_endian();
