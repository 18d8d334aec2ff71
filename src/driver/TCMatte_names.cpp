#include "TCMatte_names.h"

#include <cstdio>
#include <cstring>

namespace {

// Names read and written alike. Codes 7 to 11, 15 and 22 to 31 are not here:
// the first and last are families picked by prefix, 15 has no name.
struct Matte_entry {
  int code;
  const char* name;
};

const Matte_entry plain_mattes[] = {
    {0, "radiance"},
    {1, "absorption"},
    {2, "transmission"},
    {3, "reflectance"},
    {4, "sky"},
    {5, "object_reflected"},
    {6, "object_refracted"},
    {12, "glitter"},
    {13, "whitecap"},
    {14, "path_rad"},
    {16, "no_air"},
    {17, "texture"},
    {18, "fraction_filled"},
    {19, "distance"},
    {20, "scene_distance"},
    {21, "hull_line_water_line"},
    {32, "normal"},
    {33, "scene_xyz"},
};

const int plain_matte_count = sizeof(plain_mattes) / sizeof(plain_mattes[0]);

// Output file names allow this many characters for a matte name.
const int matte_name_size = 32;

}  // namespace

int matte_code(const char* name) {
  if (name == nullptr) return -1;
  for (int i = 0; i < plain_matte_count; i++) {
    if (std::strcmp(name, plain_mattes[i].name) == 0) return plain_mattes[i].code;
  }
  // Read and written forms of this one differ.
  if (std::strcmp(name, "scene_no_radiance") == 0) return 34;
  // The camera gives each "reflect-<object>" its own code from 7 upwards.
  if (std::strncmp(name, "reflect-", 8) == 0) return 7;
  // "alpha-texture" would otherwise be taken as an object called "texture".
  if (std::strcmp(name, "alpha-texture") == 0) return 27;
  if (std::strncmp(name, "alpha-", 6) == 0) return 22;
  return -1;
}

void matte_name(int code, char* buffer) {
  if (buffer == nullptr) return;
  for (int i = 0; i < plain_matte_count; i++) {
    if (plain_mattes[i].code == code) {
      std::snprintf(buffer, matte_name_size, "%s", plain_mattes[i].name);
      return;
    }
  }
  if (code >= 7 && code <= 11) {
    std::snprintf(buffer, matte_name_size, "object%d_reflected", code - 7);
  } else if (code >= 22 && code <= 26) {
    std::snprintf(buffer, matte_name_size, "object%d_alpha", code - 22);
  } else if (code >= 27 && code <= 31) {
    std::snprintf(buffer, matte_name_size, "texture%d_alpha", code - 27);
  } else if (code == 34) {
    std::snprintf(buffer, matte_name_size, "scene_no_rad");
  } else {
    std::snprintf(buffer, matte_name_size, "matte%d", code);
  }
}

int matte_file_name(const char* object_name, int code, const char* base, char* out, int length) {
  char matte[matte_name_size];
  matte_name(code, matte);
  return matte_file_name_words(object_name, matte, base, out, length);
}

int matte_file_name_words(const char* object_name, const char* matte, const char* base, char* out,
                          int length) {
  if (out == nullptr || length < 1) return 0;
  if (matte == nullptr) matte = "";
  if (base == nullptr) base = "";
  const std::size_t base_length = std::strlen(base);
  const char last = base_length > 0 ? base[base_length - 1] : '\0';
  const bool own_separator = last == '.' || last == '_' || last == '-';

  const bool scene = object_name == nullptr || std::strcmp(object_name, "scene") == 0;

  int written = 0;
  if (own_separator) {
    written = std::snprintf(out, static_cast<std::size_t>(length), "%s%s%s%s%c", base,
                            scene ? "" : object_name, scene ? "" : "_", matte, last);
  } else {
    written = std::snprintf(out, static_cast<std::size_t>(length), "%s_%s%s%s", base,
                            scene ? "" : object_name, scene ? "" : "_", matte);
  }
  return written >= 0 && written < length ? 1 : 0;
}
