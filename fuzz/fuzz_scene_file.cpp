// Scene files as the engine reads them, with the frame range behind "end".
// The fuzzer works in a private folder holding one camera file, "cam"; a text
// with a "/" is skipped so that no file outside it is read. A band count
// below one ends the process by design, so such texts are skipped too.
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "TCData_file.h"
#include "TCScene_input.h"
#include "quiet_streams.h"

namespace {

std::string folder;

void remove_folder() {
  std::error_code ignored;
  if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
}

// The band count where the scene reader will take it.
int band_count(const std::string& text) {
  std::istringstream in(text);
  const int version = check_header(in, "scene", 2);
  if (version == 0) return 1;  // refused at the header, before the list
  skip_token(in);
  skip_token(in);
  if (version >= 2) {
    skip_token(in);
    skip_token(in);
  }
  skip_token(in);
  int count = 0;
  read_int(in, count);
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  char pattern[] = "/tmp/tc_fuzz_scene_XXXXXX";
  const char* made = mkdtemp(pattern);
  if (made == nullptr || chdir(made) != 0) std::abort();
  folder = made;
  std::atexit(remove_folder);
  std::ofstream("cam")
      << "Tidecast_data_file camera 3 3\n"
         "n_pixel_azimuth 8 n_pixel_elevation 6 fov_azimuth 20 fov_elevation 15\n"
         "image_method 1 picture_fraction_flag 0 n_sub_azimuth 1 n_sub_elevation 1\n"
         "number_of_bands 1 band_id 1 anti_alias 0 efficiency_matte 0\n"
         "image_slices 1 image_format img end use_mattes: 0\n";
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text = text_of(data, size);
  if (text.find('/') != std::string::npos) return 0;
  if (band_count(text) < 1) return 0;
  std::istringstream in(text);
  TCScene_input input;
  if (input.read_scene(in)) input.read_frame_range(in);
  return 0;
}
