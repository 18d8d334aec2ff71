// Ocean files with their side files. The fuzzer works in a private folder
// holding one wind, one sharpening and one whitecap file ("wind", "sharp",
// "caps"); a text with a "/" is skipped so that no file outside it is read or
// written. A file that reads must write, read back from its own writing to
// the same writing, and survive packing.
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "ocean_input.h"
#include "quiet_streams.h"

namespace {

std::string folder;

void remove_folder() {
  std::error_code ignored;
  if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
}

void write_side_files() {
  std::ofstream("wind") << "number_of_times: 2\ntime speed direction\n0 5 30\n60 7.5 45\n";
  std::ofstream("sharp") << "number_of_angles: 1\nangle sharpness\n10 2\n";
  std::ofstream("caps")
      << "Tidecast_data_file whitecaps 2 2\nsampling_region center: 0 0 length: 10 10\n"
         "interval: 1 1 max_distance: 100 reference_time: 0 time_increment: 0.5\n"
         "initialization_time: 2 initialization_increment: 0.5 formation_time: 0\n"
         "whitecap_decay_time: 1 acceleration_thresholds: 0.4 0.5 reflectivities: 0.3 0.6\n"
         "smearing_scales: 1 1 0 acceleration_time_offset: 0 whitecap_generation: no\n"
         "small_scale_fluctuations: no diffusion: no end\n";
}

// The record as a file; its side files are written into the private folder
// as well, with what was read from them.
int written(const ocean_input& ocean, std::string& text) {
  std::ostringstream out;
  const int result = ocean.write(out);
  text = out.str();
  return result;
}

// Disturbance detail files are read and written by their own kinds, which
// can write one over a side file; such records are packed but not read back.
int has_detail_files(const ocean_input& ocean) {
  for (int i = 0; i < ocean.n_disturbances; i++) {
    if (ocean.disturbance(i)->has_detail_file) return 1;
  }
  return 0;
}

void pack_round_trip(ocean_input& input, ocean_input& receiver) {
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
}

// Texture blocks with a below side are written one token off for the
// reader (the format's own quirk); such a file is not meant to read back.
int has_below_textures(const TCOcean_textures_input& block) {
  for (int i = 0; block.textures != nullptr && i < block.n_textures; i++) {
    if (block.below_flag[i] != 0) return 1;
  }
  return 0;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  char pattern[] = "/tmp/tc_fuzz_ocean_XXXXXX";
  const char* made = mkdtemp(pattern);
  if (made == nullptr || chdir(made) != 0) std::abort();
  folder = made;
  std::atexit(remove_folder);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = text_of(data, size);
  if (text.find('/') != std::string::npos) return 0;
  // Writing can replace a side file by another kind's: every run starts
  // from the same three.
  write_side_files();
  ocean_input input;
  std::istringstream in(text);
  if (!input.read(in)) return 0;
  std::string first;
  // A detail file a lenient reader took may be a name nothing can be
  // written to; only such a record fails here.
  if (!written(input, first)) return 0;
  // NUL bytes cut a word short of what the stream took as one.
  const int reads_back = std::memchr(data, 0, size) == nullptr &&
                         !(input.texture_maps && has_below_textures(input.textures)) &&
                         !(input.whitecaps && input.fluctuation_mode == 2 &&
                           has_below_textures(input.whitecap_textures)) &&
                         !has_detail_files(input);
  if (reads_back) {
    ocean_input again;
    std::istringstream back(first);
    if (!again.read(back)) std::abort();
    // Angles go to degrees and back: the second writing is the fixed point.
    std::string second;
    if (!written(again, second)) std::abort();
    ocean_input third;
    std::istringstream back_again(second);
    if (!third.read(back_again)) std::abort();
    std::string third_text;
    if (!written(third, third_text) || third_text != second) std::abort();
  }
  ocean_input receiver;
  pack_round_trip(input, receiver);
  std::string unpacked;
  if (!written(receiver, unpacked) || unpacked != first) std::abort();
  return 0;
}
