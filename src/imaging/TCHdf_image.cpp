#include "TCHdf_image.h"

#include <fstream>
#include <iostream>

// The only place that sees the HDF 4 header: it defines MAX, MIN, FAIL and
// friends as macros.
#include <hdf.h>

namespace {

int dims_usable(const int dims[2], const char* name) {
  if (dims[0] < 1 || dims[1] < 1) {
    std::cout << "HDF plane of " << dims[0] << " by " << dims[1] << " not possible for " << name
              << "\n";
    return 0;
  }
  return 1;
}

// The library gives the same error for a missing file as for a foreign one;
// look first so that the message says which.
int file_exists(const char* name) {
  std::ifstream in(name, std::ios::in | std::ios::binary);
  if (!in) {
    std::cout << "unable to open " << name << "\n";
    return 0;
  }
  return 1;
}

int unreadable_plane(const char* name, int plane) {
  std::cout << "unable to read plane " << plane << " of " << name << "\n";
  return 0;
}

}  // namespace

int hdf_write_plane(const char* name, const float* data, const int dims[2], int& first_flag) {
  if (!dims_usable(dims, name)) return 0;
  int32 sizes[2] = {dims[0], dims[1]};
  // The library takes non-const buffers but does not write to them.
  void* buffer = const_cast<float*>(data);
  int status = DFSDsetdims(2, sizes);
  if (status == 0) status = DFSDsetNT(DFNT_FLOAT32);
  if (status == 0) {
    if (first_flag) {
      status = DFSDputdata(name, 2, sizes, buffer);
      if (status == 0) first_flag = 0;
    } else {
      status = DFSDadddata(name, 2, sizes, buffer);
    }
  }
  if (status != 0) {
    std::cout << "unable to write plane to HDF file " << name << "\n";
    return 0;
  }
  return 1;
}

int hdf_read_plane(const char* name, int plane, float* data, const int dims[2]) {
  if (!dims_usable(dims, name)) return 0;
  if (plane < 0) return unreadable_plane(name, plane);
  if (!file_exists(name)) return 0;
  intn rank = 0;
  int32 sizes[2] = {0, 0};
  // The first look makes this file the library's current one, so the restart
  // goes back to its first data set whatever was read before. It fails when
  // an earlier read left the file at its end; only the passes below count.
  DFSDgetdims(name, &rank, sizes, 2);
  DFSDrestart();
  for (int pass = 0; pass <= plane; pass++) {
    if (DFSDgetdims(name, &rank, sizes, 2) != 0) return unreadable_plane(name, plane);
    // The library converts nothing: only a float plane of our size fits the buffer.
    int32 number_type = 0;
    if (DFSDgetNT(&number_type) != 0 || number_type != DFNT_FLOAT32 || rank != 2 ||
        sizes[0] != dims[0] || sizes[1] != dims[1]) {
      std::cout << "HDF data set in " << name << " is not a float plane of " << dims[0] << " by "
                << dims[1] << "\n";
      return 0;
    }
    if (DFSDgetdata(name, rank, sizes, data) != 0) return unreadable_plane(name, plane);
  }
  return 1;
}

int hdf_read_grid(const char* name, float* data, const int dims[2], int found[2]) {
  found[0] = 0;
  found[1] = 0;
  std::ifstream in(name, std::ios::in | std::ios::binary);
  if (!in) return hdf_grid_missing;
  in.close();
  intn rank = 0;
  int32 sizes[2] = {0, 0};
  // A first look makes this the library's current file; the restart then
  // goes back to its first data set, whatever was read of it before.
  DFSDgetdims(name, &rank, sizes, 2);
  DFSDrestart();
  if (DFSDgetdims(name, &rank, sizes, 2) != 0) return hdf_grid_unreadable;
  found[0] = sizes[0];
  found[1] = sizes[1];
  if (rank != 2 || sizes[0] != dims[0] || sizes[1] != dims[1]) return hdf_grid_wrong_size;
  // The library converts nothing: only a float plane fits the buffer.
  int32 number_type = 0;
  if (DFSDgetNT(&number_type) != 0 || number_type != DFNT_FLOAT32) return hdf_grid_unreadable;
  if (DFSDgetdata(name, rank, sizes, data) != 0) return hdf_grid_unreadable;
  return hdf_grid_read;
}
