// Object list sections of both layouts. The first byte picks the list version
// (odd: 1, even: 2). Camera and sun files come from a private folder made at
// start; an "@" in the text stands for that folder and its "/", and a text
// with a "/" of its own is skipped, so no file outside the folder is read.
// A list without cameras that reads must read back from its own writing; its
// text must then be the same unless a sun block or a number too large for the
// writer's degrees is in it. Texts with NUL bytes are only read.
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "TCData_file.h"
#include "TCObject_list_input.h"
#include "quiet_streams.h"

namespace {

std::string folder;

void put(const char* name, const std::string& text) {
  std::ofstream out((folder + name).c_str());
  out << text;
}

std::string camera_section() {
  return "Tidecast_data_file camera 3 3\n"
         "n_pixel_azimuth 8 n_pixel_elevation 6 fov_azimuth 20 fov_elevation 15\n"
         "image_method 1 picture_fraction_flag 0 n_sub_azimuth 1 n_sub_elevation 1\n"
         "number_of_bands 1 band_id 7 anti_alias 0 efficiency_matte 0\n"
         "image_slices 2 image_format img end\n";
}

const char* const mattes = "use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 scene_distance\n";
const char* const bobbing_section =
    "Tidecast_data_file bobbing_camera 1 1 decouple_height: 0.5\n"
    "decouple_relax_time: 2 base_size: 3 end\n";

void remove_files() {
  std::error_code ignored;
  if (!folder.empty()) std::filesystem::remove_all(folder, ignored);
}

// The files the corpus names: "camera" and "bobbing" for lists of version 2
// (matte section in the file), "camera1" and "bobbing1" for version 1, "sun".
void make_files() {
  char pattern[] = "/tmp/tc_fuzz_list_XXXXXX";
  const char* made = mkdtemp(pattern);
  if (made == nullptr) std::abort();
  folder = std::string(made) + "/";
  std::atexit(remove_files);
  put("camera", camera_section() + mattes);
  put("bobbing", camera_section() + mattes + bobbing_section);
  put("camera1", camera_section());
  put("bobbing1", camera_section() + bobbing_section);
  put("sun",
      "Tidecast_data_file sun 1 1 position_method_flag 0 number_of_bands 2\n"
      "band_id 1 2 irradiance 1.5 1.25 end\n");
}

// The band count as the reader takes it: fewer than one ends the process.
int band_count(const std::string& text) {
  std::istringstream in(text);
  skip_token(in);
  int count = 0;
  read_int(in, count);
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  make_files();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const int version = (data[0] & 1) ? 1 : 2;
  const std::string raw = text_of(data + 1, size - 1);
  if (raw.find('/') != std::string::npos) return 0;
  std::string text;
  for (char c : raw) {
    if (c == '@') {
      text += folder;
    } else {
      text += c;
    }
  }
  if (band_count(text) < 1) return 0;

  TCObject_list_input list;
  list.version = version;
  std::istringstream in(text);
  if (!list.read_list(in)) return 0;
  std::ostringstream first;
  if (!list.write_list(first)) return 0;
  // Each camera's matte section is where the reader does not take it from;
  // a NUL byte cuts a word short of what the stream took as one.
  if (list.n_cameras > 0 || raw.find('\0') != std::string::npos) return 0;

  TCObject_list_input again;
  again.version = version;
  std::istringstream back(first.str());
  if (!again.read_list(back)) std::abort();
  std::ostringstream second;
  if (!again.write_list(second)) std::abort();

  // The sun's angles lose digits near the zenith on each pass; an angle too
  // large for the writer's degrees comes out as inf.
  const std::string written = first.str();
  if (list.sun_flag != 0 || written.find("inf") != std::string::npos ||
      written.find("nan") != std::string::npos)
    return 0;
  if (second.str() != written) std::abort();
  return 0;
}
