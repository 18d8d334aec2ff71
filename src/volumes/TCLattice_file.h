#ifndef TC_LATTICE_FILE_H
#define TC_LATTICE_FILE_H

// The binary lattice layout shared by a cloud's density file and its
// fluctuation file:
//   bytes 0-7   the ASCII magic "TCLATTIC"
//   bytes 8-19  n_x, n_y, n_z as 32-bit little-endian signed ints
//   then        n_x * n_y * n_z 32-bit little-endian IEEE floats, x fastest,
//               value (i, j, k) at i + n_x * (j + n_y * k)
// The file is exactly that long. Bytes are put together one by one, so the
// same file reads the same on any host byte order. Nothing here prints: the
// callers say what failed.
class TCLattice_file {
 public:
  // Each size at least 1 and their product at most 2^28 (1 GiB of floats).
  static int sizes_are_valid(int n_x, int n_y, int n_z);

  // The sizes a file holds: 1, or 0 when it cannot be opened, has another
  // magic, sizes that are not valid, or a length other than they make.
  static int read_sizes(const char* path, int& n_x, int& n_y, int& n_z);

  // Fills values (n_x * n_y * n_z floats): 1, or 0 when the file fails
  // read_sizes or holds sizes other than those asked. A file refused for its
  // header or its length leaves values as they were.
  static int read(const char* path, int n_x, int n_y, int n_z, float* values);

  // 1, or 0 for sizes that are not valid, no values, or a file that cannot
  // be written whole.
  static int write(const char* path, int n_x, int n_y, int n_z, const float* values);

  static const int header_bytes = 20;
};

#endif
