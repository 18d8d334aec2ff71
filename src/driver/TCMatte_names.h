#ifndef TC_MATTE_NAMES_H
#define TC_MATTE_NAMES_H

// Matte names as a camera file gives them and as output file names carry them.

// Code of a matte name, -1 if unknown. "reflect-..." gives 7, "alpha-texture"
// 27 and "alpha-..." 22; the camera turns these into positions.
int matte_code(const char* name);

// Name of a code for file names; unknown codes give "matte<code>".
// buffer must hold at least 32 characters.
void matte_name(int code, char* buffer);

// Prefix of a matte's output file, into out of length characters: base, the
// object's name and "_" (nothing for the word "scene"; a null name counts as
// the scene), then matte_name(code). A base ending in ".", "_" or "-" uses
// that character as its separator and repeats it after the matte's name;
// any other base gets "_" behind it. "pic." gives "pic.boat_distance.",
// "pic" gives "pic_boat_distance". Returns 0 if out is too short (the name
// is then cut) or missing.
int matte_file_name(const char* object_name, int code, const char* base, char* out, int length);
// The same with the matte's words given instead of a code's name.
int matte_file_name_words(const char* object_name, const char* words, const char* base, char* out,
                          int length);

#endif
