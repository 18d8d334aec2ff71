#include "TCObject_kinds.h"

#include <cstring>

namespace {

struct Kind_word {
  const char* word;
  int code;
};

// Some kinds answer to two words.
const Kind_word kind_words[] = {
    {"air", TC_KIND_AIR},
    {"skydome", TC_KIND_SKYDOME},
    {"boxcloud", TC_KIND_THERMAL_BOX},
    {"cloud", TC_KIND_CLOUD},
    {"land", TC_KIND_LAND},
    {"ocean", TC_KIND_OCEAN},
    {"water", TC_KIND_WATER},
    {"box", TC_KIND_SOLID_BOX},
    {"solidbox", TC_KIND_SOLID_BOX},
    {"plane", TC_KIND_FLAT_GROUND},
    {"flatground", TC_KIND_FLAT_GROUND},
    {"point", TC_KIND_POINT},
    {"spray", TC_KIND_SPRAY},
    {"blob", TC_KIND_BLOB},
    {"camera", TC_KIND_CAMERA},
    {"bobbing_camera", TC_KIND_BOBBING_CAMERA},
    {"bobbing_box", TC_KIND_BOBBING_BOX},
    {"caustic", TC_KIND_CAUSTIC},
    {"poly", TC_KIND_POLY},
    {"picture", TC_KIND_PICTURE},
    {"spray_lite", TC_KIND_SPRAY_LITE},
    {"blob_lite", TC_KIND_BLOB_LITE},
};

}  // namespace

// "caustic" has a code but no class: the list refuses it when it builds.
int object_kind_code(const char* word) {
  if (word == nullptr) return -1;
  for (const Kind_word& kind : kind_words) {
    if (std::strcmp(word, kind.word) == 0) return kind.code;
  }
  return -1;
}

int texture_motion_code(const char* word) {
  if (word == nullptr) return 0;
  if (std::strcmp(word, "time") == 0) return 100;
  if (std::strcmp(word, "frames") == 0) return 101;
  return 0;
}

int texture_motion_text(int code, char* buffer) {
  if (code == 100) {
    std::strcpy(buffer, "time");
    return 1;
  }
  if (code == 101) {
    std::strcpy(buffer, "frames");
    return 1;
  }
  std::strcpy(buffer, "no");
  return code == 0 ? 1 : 0;
}

int background_code(const char* word) {
  if (word == nullptr) return 0;
  if (std::strcmp(word, "background") == 0) return 1;
  if (std::strcmp(word, "fore_N_background") == 0) return 2;
  return 0;
}

// The reader takes "fore_N_background"; files written here carry a small n,
// which that reader then sees as foreground. Kept as files have it.
void background_text(int code, char* buffer) {
  if (code == 1) {
    std::strcpy(buffer, "background");
  } else if (code == 2) {
    std::strcpy(buffer, "fore_n_background");
  } else {
    std::strcpy(buffer, "foreground");
  }
}
