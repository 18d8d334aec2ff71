#include "TCImage_file.h"

#include <iostream>

#include "TCHdf_image.h"
#include "TCSgi_image.h"

namespace {

int unknown_format(int format) {
  std::cout << "image format " << format << " not known"
            << "\n";
  return 0;
}

}  // namespace

int matte_always_hdf(int matte_code) {
  return matte_code == 19 || matte_code == 20 || matte_code == 33;
}

int effective_format(int format, int matte_code) {
  return matte_always_hdf(matte_code) ? image_format_hdf : format;
}

int matte_has_unit_range(int matte_code) {
  return matte_code == 1 || matte_code == 2 || matte_code == 15 || matte_code == 18 ||
         (matte_code >= 21 && matte_code <= 32);
}

void coding_limits(int matte_code, int writing, int keep_range, double min_value, double max_value,
                   double& lo, double& hi) {
  lo = min_value;
  hi = max_value;
  if (matte_has_unit_range(matte_code) && (!writing || keep_range == 0)) {
    lo = 0.0;
    hi = 1.0;
  }
}

int open_image(int format, const char* name, const int dims[2], int& first_flag, int n_planes,
               int matte_code) {
  first_flag = 1;
  switch (effective_format(format, matte_code)) {
    case image_format_hdf:
      return 1;
    case image_format_rgb:
      return rgb_open(name, dims, n_planes);
    case image_format_tiff:
      std::cout << "TIFF FILE FORMAT NOT YET IMPLEMENTED"
                << "\n";
      return 0;
    default:
      return unknown_format(format);
  }
}

int read_plane(int format, const char* name, int plane, float* data, const int dims[2],
               int matte_code, double min_value, double max_value) {
  switch (effective_format(format, matte_code)) {
    case image_format_hdf:
      return hdf_read_plane(name, plane, data, dims);
    case image_format_rgb: {
      double lo, hi;
      coding_limits(matte_code, 0, 0, min_value, max_value, lo, hi);
      return rgb_read_plane(name, plane, data, dims, lo, hi);
    }
    case image_format_tiff:
      return 0;
    default:
      return unknown_format(format);
  }
}

int write_plane(int format, const char* name, int plane, const float* data, const int dims[2],
                int& first_flag, int matte_code, int keep_range, double min_value,
                double max_value) {
  switch (effective_format(format, matte_code)) {
    case image_format_hdf:
      return hdf_write_plane(name, data, dims, first_flag);
    case image_format_rgb: {
      double lo, hi;
      coding_limits(matte_code, 1, keep_range, min_value, max_value, lo, hi);
      return rgb_write_plane(name, plane, data, dims, lo, hi);
    }
    case image_format_tiff:
      return 0;
    default:
      return unknown_format(format);
  }
}
