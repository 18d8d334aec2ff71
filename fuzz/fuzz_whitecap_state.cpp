// Whitecap state files, full and static, read into a small pyramid of two
// grids of 3 by 2 nodes. The first byte chooses the reader (even: full, odd:
// static) and the rest is the file, written into a private folder. A file
// that reads must give a state that writes, reads back with as many records
// and can be looked up anywhere.
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "TCSettings.h"
#include "TCSpectrum.h"
#include "TCWhitecaps.h"
#include "ocean_input.h"
#include "quiet_streams.h"

namespace {

std::string folder;

void remove_folder() {
  std::error_code ignored;
  if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
}

// Centre (0, 0), finest grid 3 by 2 m with 1 m cells, reaching 1 m: two
// grids.
void set_pyramid(ocean_input& w) {
  w.whitecaps = 1;
  w.whitecap_length_x = 3.0;
  w.whitecap_length_y = 2.0;
  w.whitecap_interval_x = 1.0;
  w.whitecap_interval_y = 1.0;
  w.whitecap_max_distance = 1.0;
  w.whitecap_time_increment = 0.5;
  w.whitecap_initialization_increment = 0.5;
  w.whitecap_decay_time = 4.0;
  w.acceleration_threshold_low = 0.5;
  w.acceleration_threshold_high = 1.0;
  w.whitecap_reflectivity_low = 0.4;
  w.whitecap_reflectivity_high = 0.8;
}

int records(const TCWhitecaps& caps) {
  int count = 0;
  for (int g = 0; g < caps.num_grids; g++) {
    for (int i = 0; i < caps.n_x; i++) {
      for (int j = 0; j < caps.n_y; j++) count += caps.point(g, i, j) != nullptr;
    }
  }
  return count;
}

int read_kind(TCWhitecaps& caps, int full, const char* name) {
  return full ? caps.read_state(name) : caps.read_static_state(name);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  char pattern[] = "/tmp/tc_fuzz_whitecaps_XXXXXX";
  const char* made = mkdtemp(pattern);
  if (made == nullptr || chdir(made) != 0) std::abort();
  folder = made;
  std::atexit(remove_folder);
  verbose = 0;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const int full = (data[0] & 1) == 0;
  {
    std::ofstream out("state", std::ios::binary);
    out.write(reinterpret_cast<const char*>(data + 1), static_cast<std::streamsize>(size - 1));
  }
  ocean_input w;
  set_pyramid(w);
  TCSpectrum bands(2);
  TCWhitecaps caps(w);
  if (!caps.allocate(&bands)) std::abort();
  if (!read_kind(caps, full, "state")) {
    if (records(caps) != 0) std::abort();  // a refused file leaves nothing behind
    return 0;
  }
  double r, t;
  for (double x = -4.0; x <= 4.0; x += 0.37) {
    for (double y = -3.0; y <= 3.0; y += 0.41) caps.whitecap_at(x, y, r, t);
  }
  const int written = full ? caps.write_state("again") : caps.write_static_state("again");
  if (!written) std::abort();
  TCWhitecaps back(w);
  if (!back.allocate(&bands)) std::abort();
  if (!read_kind(back, full, "again") || records(back) != records(caps)) std::abort();
  return 0;
}
