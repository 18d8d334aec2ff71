#ifndef TC_TEXTURE_PLANE_INPUT_H
#define TC_TEXTURE_PLANE_INPUT_H

#include <iostream>

// The parsed record of one texture: a picture laid on a rectangle of the sea
// (or of any surface), with a radiance range per band for each side of the
// water. A plain record, not an object input of its own: the ocean's texture
// block reads and writes a list of them.
class TCTexture_plane_input {
 public:
  TCTexture_plane_input();
  TCTexture_plane_input(const TCTexture_plane_input& other);
  TCTexture_plane_input& operator=(const TCTexture_plane_input& other);
  ~TCTexture_plane_input();

  // One texture, each field behind a keyword that is skipped. Fields of the
  // second format version (animation and new pictures) read as 0 before it.
  // Leaves the ranges empty and side_code 0: the block sets them. Returns 1;
  // a malformed texture leaves the stream failed for the block to catch.
  int read_texture_grid(std::istream& in, int version);
  // Everything the reader reads but the band count, which the block writes.
  int print_texture_grid(std::ostream& out, int version) const;

  // The range above the water; a count of 0 clears it and side_code.
  void set_above(int count, const double* min, const double* max);
  // The range below; with a range above already the sides become both (3).
  void set_below(int count, const double* min, const double* max);

  // Doubles held in each pair of range arrays (0 when there are none). They
  // can differ from n_bands when the two sides were given different counts.
  int above_values() const { return above_storage; }
  int below_values() const { return below_storage; }

  double width;  // metres
  double height;
  char picture_file[256];
  int whole_picture;  // 0: only first_x..last_x by first_y..last_y, in pixels
  int first_x;
  int last_x;
  int first_y;
  int last_y;
  int make_levels;  // build the pyramid of halved pictures
  int periodic;
  int side_code;  // 0 none, 1 above the water, 2 below, 3 both
  int n_bands;
  double* min_above;  // radiance of byte 0 and byte 255, per band
  double* max_above;
  double* min_below;
  double* max_below;
  int priority;
  double center_x;  // metres
  double center_y;
  double orientation;  // radians
  int animation_flag;
  double v_x;  // drift, metres per second, starting at time t_o
  double v_y;
  double t_o;
  char base_file_name[256];
  int new_picture_flag;
  int update_flag;

 private:
  void copy_from(const TCTexture_plane_input& other);
  void release_above();
  void release_below();

  int above_storage;
  int below_storage;
};

#endif
