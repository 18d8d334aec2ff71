#ifndef TC_FILE_CHECKS_H
#define TC_FILE_CHECKS_H

// Checks made before rendering starts, so that a long run does not fail at its
// first output file.

// Creates and removes "<path>_ovktst.tmp", where output files will stand.
// Returns 0 (with a message) when that cannot be done.
int output_directory_ok(const char* path);

// 1 when the file can be opened for reading.
int file_readable(const char* path);

#endif
