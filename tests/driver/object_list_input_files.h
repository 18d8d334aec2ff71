#ifndef TC_TESTS_OBJECT_LIST_INPUT_FILES_H
#define TC_TESTS_OBJECT_LIST_INPUT_FILES_H

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "TCObject_list_input.h"
#include "stream_capture.h"

// Files and texts for the object list section tests: a private folder for the
// camera and sun files a list names, and list sections that name them.

// A fresh folder under /tmp, removed with its contents when the holder goes.
class List_folder {
 public:
  List_folder() {
    char pattern[] = "/tmp/tc_list_XXXXXX";
    const char* made = mkdtemp(pattern);
    path_ = made ? made : "";
  }
  ~List_folder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  bool ok() const { return !path_.empty(); }
  std::string file(const char* name) const { return path_ + "/" + name; }
  void put(const char* name, const std::string& text) const {
    std::ofstream out(file(name).c_str());
    out << text;
  }

 private:
  std::string path_;
};

// A camera file up to its "end": 8 x 6 pixels, band 2, 3 slices, hdf.
inline std::string camera_section_text() {
  return "Tidecast_data_file camera 3 3\n"
         "n_pixel_azimuth 8 n_pixel_elevation 6\n"
         "fov_azimuth 20 fov_elevation 15\n"
         "image_method 1\n"
         "picture_fraction_flag 0\n"
         "n_sub_azimuth 1 n_sub_elevation 1\n"
         "number_of_bands 1 band_id 2\n"
         "anti_alias 0\n"
         "efficiency_matte 0\n"
         "image_slices 3\n"
         "image_format img\n"
         "end\n";
}

// A matte section asking for the scene's distance.
inline std::string scene_distance_mattes() {
  return "use_mattes: 1\n"
         "  NObjects: 1\n"
         "    Object: scene\n"
         "      NMattes: 1\n"
         "        scene_distance\n";
}

inline std::string bobbing_section_text() {
  return "Tidecast_data_file bobbing_camera 1 1\n"
         "decouple_height: 0.5\n"
         "decouple_relax_time: 2\n"
         "base_size: 3\n"
         "end\n";
}

// A camera line: one key at (x, y, z), no rotation.
inline std::string camera_line(const char* kind, const std::string& file, int z) {
  std::ostringstream line;
  line << "number_of_times  1\n"
       << "time  x  y  z  chi  phi  theta \n"
       << "0 0 0 " << z << " 0 0 0 \n"
       << "object_type: " << kind << "\n"
       << "object_file: " << file << "\n";
  return line.str();
}

// An object line of a list of the given version; the name only from 2.
inline std::string object_line(int version, const char* name, const char* kind, const char* file,
                               const char* priority) {
  std::ostringstream line;
  line << "number_of_times  1\n"
       << "time  x  y  z  chi  phi  theta \n"
       << "0 1 2 3 0 0 0 \n";
  if (version >= 2) line << "object_name: " << name << "\n";
  line << "object_type: " << kind << "\n"
       << "object_file: " << file << "\n"
       << "priority:    " << priority << "\n";
  return line.str();
}

// Two bands and no sun, as the writer lays them out.
inline std::string two_bands_no_sun() {
  return "number_of_bands: 2\n"
         "width center_wavelength band_id \n"
         "1 0.55 0.1\n"
         "2 0.65 0.05\n"
         "sun_flag: 0\n";
}

// Reads text into list (its version set beforehand); the result, and what
// the reader printed in printed.
inline int read_list_text(TCObject_list_input& list, const std::string& text,
                          std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = list.read_list(in);
  printed = out.text();
  return result;
}

inline std::string written_list(const TCObject_list_input& list) {
  std::ostringstream out;
  Stream_capture quiet(std::cout);
  if (!list.write_list(out)) return "<write failed>";
  return out.str();
}

#endif
