#ifndef TC_IMAGE_FILE_H
#define TC_IMAGE_FILE_H

// The camera's three calls for image and matte files, chosen by its image
// format code. dims are (rows, columns); planes are row-major, row 0 first.
// Each call prints its line (where there is one) and returns 0 on failure.

const int image_format_hdf = 3000;   // 32-bit float planes in HDF data sets
const int image_format_rgb = 3002;   // 8-bit SGI RGB
const int image_format_tiff = 3003;  // refused

// Sets first_flag to 1, then starts the file: an SGI RGB file is created
// with its header; an HDF file is left alone until its first plane.
int open_image(int format, const char* name, const int dims[2], int& first_flag, int n_planes,
               int matte_code);

// Plane `plane` into data. min_value and max_value are the camera's limits.
int read_plane(int format, const char* name, int plane, float* data, const int dims[2],
               int matte_code, double min_value, double max_value);

// Writes plane `plane`. For HDF, first_flag set creates the file and clears
// the flag; later planes append.
int write_plane(int format, const char* name, int plane, const float* data, const int dims[2],
                int& first_flag, int matte_code, int keep_range, double min_value,
                double max_value);

// 1 for the mattes kept as floats whatever the format (19, 20, 33): their
// values do not lie between 0 and 1.
int matte_always_hdf(int matte_code);

// The format a plane of this matte really goes to.
int effective_format(int format, int matte_code);

// 1 for the mattes coded over (0, 1) rather than the camera's limits:
// 1, 2, 15, 18 and 21 to 32.
int matte_has_unit_range(int matte_code);

// The (lo, hi) of 8-bit coding: (0, 1) for a unit-range matte when reading,
// and when writing unless keep_range is set; else (min_value, max_value).
void coding_limits(int matte_code, int writing, int keep_range, double min_value, double max_value,
                   double& lo, double& hi);

#endif
