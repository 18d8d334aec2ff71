#ifndef TC_MATTE_NAMES_H
#define TC_MATTE_NAMES_H

// Matte names as a camera file gives them and as output file names carry them.

// Code of a matte name, -1 if unknown. "reflect-..." gives 7, "alpha-texture"
// 27 and "alpha-..." 22; the camera turns these into positions.
int matte_code(const char* name);

// Name of a code for file names; unknown codes give "matte<code>".
// buffer must hold at least 32 characters.
void matte_name(int code, char* buffer);

#endif
