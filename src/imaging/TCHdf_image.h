#ifndef TC_HDF_IMAGE_H
#define TC_HDF_IMAGE_H

// Float image planes in HDF 4 files: one bare 32-bit float data set per plane,
// of rank 2 with dims (rows, columns), appended in plane order. Each call
// prints its line and returns 0 on failure.

// Writes a plane. With first_flag set the file is created (an earlier one is
// truncated) and first_flag is cleared; otherwise the plane is appended.
int hdf_write_plane(const char* name, const float* data, const int dims[2], int& first_flag);

// Reads the data set of index `plane` (from 0) into data, which holds
// dims[0] * dims[1] floats. Refused unless every data set passed on the way is
// a float plane of exactly those dims.
int hdf_read_plane(const char* name, int plane, float* data, const int dims[2]);

// Reads the first data set of a grid file into data, which holds
// dims[0] * dims[1] floats (dims[0] rows of dims[1]). Prints nothing: the
// caller words its own failure. found receives the file's dims when known.
const int hdf_grid_read = 1;
const int hdf_grid_missing = 0;
const int hdf_grid_wrong_size = -1;
const int hdf_grid_unreadable = -2;
int hdf_read_grid(const char* name, float* data, const int dims[2], int found[2]);

#endif
