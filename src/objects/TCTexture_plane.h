#ifndef TC_TEXTURE_PLANE_H
#define TC_TEXTURE_PLANE_H

#include "TCTexture_plane_input.h"

// A picture laid on a width by height rectangle centred on the origin, kept
// as a pyramid of byte planes (level i is the picture reduced 2^i times) and
// looked up by position and footprint. Bytes 0..255 map linearly onto a
// radiance range per band, one range for each side of the water, and the
// result can then be taken as a logarithm or through a gamma.
class TCTexture_plane {
 public:
  // Sizes, flags and ranges of the record, then the record's picture is
  // loaded; `loaded` tells whether that worked.
  explicit TCTexture_plane(const TCTexture_plane_input& input);
  // For the objects that show a picture (skydome, picture, foam): a range for
  // the side above the water only, and no picture yet: the owner calls
  // load_picture, so that a failed load can be told from a failed build.
  // side_code says which lookups answer (1 above, 2 below, 3 both); a below
  // lookup on a plane built this way leaves values on the byte scale, since
  // there is no range below. Exits when its arrays can't be had.
  TCTexture_plane(double width, double height, int n_bands, const double* min, const double* max,
                  int make_levels, int periodic, int side_code);
  ~TCTexture_plane();

  // Reads an SGI RGB picture, whole or a sub-rectangle of it in pixels, and
  // builds the pyramid. Returns 1, or 0 after printing a line.
  int load_picture(const char* file, int whole_picture, int first_x, int last_x, int first_y,
                   int last_y);
  // The next picture of an animation, which must have the size of the last.
  int reload_picture(const char* file);

  // Band values at positions in metres, averaged over a footprint in metres.
  // average_grid takes positions xs[i][j], ys[i][j] for i < count_x, j < count_y.
  void average_grid(double* out, double footprint, int count_x, int count_y, double** xs,
                    double** ys);
  void average_list(double* out, double footprint, int n, const double* xs, const double* ys,
                    int side);
  void sample_point(double* out, double x, double y, double footprint, int side);

  // Bilinear byte values of one level at (x, y), for every band.
  void sample(double* out, double x, double y, int level) const;
  // Bytes to radiance: side -1 below the water, anything else above.
  void to_radiance(double* out, int side) const;

  // 0 linear, 1 the value is a base-10 logarithm, 2 the value is gamma coded.
  void set_scale_mode(int mode);
  // A display range per band (as a camera has it) for every range there is.
  void set_display_range(int mode, const double* high, const double* low, const double* gamma);

  int loaded;
  double width;  // metres
  double height;
  double half_width;
  double half_height;
  unsigned char*** planes;  // [level][band], byte (x, y) at x * level_size[level][1] + y
  int n_x;                  // picture size in pixels
  int n_y;
  int make_levels;
  int periodic;
  int n_levels;
  int* level_scale;      // 1, 2, 4, ...
  int (*level_size)[2];  // x and y size of each level
  double* pixel_x;       // metres per pixel, per level
  double* pixel_y;
  double* inv_pixel_x;
  double* inv_pixel_y;
  int side_code;  // 0 none, 1 above the water, 2 below, 3 both
  int n_bands;
  int scale_mode_above;  // 0 none, 1 log, 2 gamma
  int scale_mode_below;
  double* gamma_above;
  double* gamma_below;
  double* min_above;   // radiance of byte 0
  double* max_above;   // radiance of byte 255
  double* step_above;  // radiance per byte step
  double* min_below;
  double* max_below;
  double* step_below;

 private:
  TCTexture_plane(const TCTexture_plane&) = delete;
  TCTexture_plane& operator=(const TCTexture_plane&) = delete;

  // The range arrays of one side from the first `available` values given
  // (the rest 0), gamma 1.0; 0 when any can't be had.
  int allocate_above(const double* min, const double* max, int available);
  int allocate_below(const double* min, const double* max, int available);
  int allocate_scratch();
  void release_pyramid();
  void build_levels();
  // Adds weight times the sample with level choice by footprint to sum.
  void add_footprint_sample(double* sum, double x, double y, double footprint);

  // Two bands' worth of working values for the level blend.
  double* sample_low;
  double* sample_high;
};

#endif
