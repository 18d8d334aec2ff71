#ifndef TC_OBJECT_KINDS_H
#define TC_OBJECT_KINDS_H

// The words of an object line and the type codes they stand for.
enum TCObject_kind {
  TC_KIND_CLOUD = 1,
  TC_KIND_LAND = 2,
  TC_KIND_WATER = 3,
  TC_KIND_SOLID_BOX = 4,
  TC_KIND_FLAT_GROUND = 5,
  TC_KIND_POINT = 6,
  TC_KIND_AIR = 7,
  TC_KIND_SPRAY = 8,
  TC_KIND_THERMAL_BOX = 9,
  TC_KIND_BLOB = 10,
  TC_KIND_SKYDOME = 11,
  TC_KIND_OCEAN = 13,
  TC_KIND_BOBBING_BOX = 14,
  TC_KIND_CAUSTIC = 15,
  TC_KIND_PICTURE = 16,
  TC_KIND_BLOB_LITE = 17,
  TC_KIND_SPRAY_LITE = 18,
  TC_KIND_POLY = 19,
  TC_KIND_BOBBING_CAMERA = 254,
  TC_KIND_CAMERA = 255
};

// Type code of a kind word, -1 for an unknown word.
int object_kind_code(const char* word);

// "no" 0, "time" 100, "frames" 101, anything else 0.
int texture_motion_code(const char* word);
// Writes the word of a code into buffer (at least 16 characters); 0 and "no"
// for a code with no word.
int texture_motion_text(int code, char* buffer);

// "background" 1, "fore_N_background" 2, anything else 0.
int background_code(const char* word);
// The writer's word is "fore_n_background", with a small n, for code 2;
// "background" for 1 and "foreground" otherwise. buffer: 32 characters.
void background_text(int code, char* buffer);

#endif
