#ifndef TC_PICTURE_INPUT_H
#define TC_PICTURE_INPUT_H

#include <iostream>

#include "TCObject_input.h"

// Optical nature of each side of a picture.
const int picture_transparent = 501;
const int picture_solid = 502;
const int picture_image = 503;

// "transparent" 501, "solid" 502, "picture" 503; 0 for any other word.
int picture_optical_code(const char* word);
// The word of a code, null for any other code.
const char* picture_optical_word(int code);

// A picture file: a flat width by height rectangle in the object's x-y
// plane, whose front (seen from +z) and back are each transparent, a solid
// colour or a picture.
//
// On file, keywords skipped unread, values in this order:
//   Tidecast_data_file picture 4 4
//   number_of_bands:  3
//   band_ids: 1 2 3
//   dimensions: 4 3                 (width and height, metres)
//   picture_file: poster.rgb        (the stem of per-frame names when animated)
//   animation:  no                  ("no", "time", "frames"; version 3 on)
//   alpha_channel: 0                (version 3 on)
//   auto_scale_flag: 0              (version 4 on)
//   optical_nature:  picture        front, then the same again for the back:
//   min_radiance: 0 0 0               picture with auto_scale_flag 0 only
//   max_radiance: 1 1 1
//   optical_nature:  solid
//   color: 0.5 0.5 0.5                solid only; reflectivity and
//   reflectivity:  0. 0. 0.           transmissivity are read and thrown
//   transmissivity:  0. 0. 0.         away
//   imaging_method: 2               (version 2 on, else 2)
//   end
class Picture_input : public TCObject_input {
 public:
  // Kind word "picture", code 16, display order 5.0, no bands, both sides
  // transparent.
  Picture_input();
  ~Picture_input() override;

  // The picture file at path, through read_stream / write_stream.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // Prints what is wrong and returns 0. A failed read can leave the fields
  // read before the failure changed; the caller gives the record up.
  int read_stream(std::istream& in);
  // A solid side is written with three zero reflectivities and
  // transmissivities whatever the band count, so such a file reads back only
  // with three bands. Returns 0 for an animation or optical code with no
  // word, or a failed stream.
  int write_stream(std::ostream& out) const;

  // Band ids, both colours and the radiance range for count bands, replacing
  // what was there: ids and colours 0, range 0 to 255.0. 0, keeping the old
  // arrays, for a negative count or when memory runs out.
  int allocate_arrays(int count);
  void release_arrays();

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold at least the root's ints and the 8 fixed ones (see the
  // layout in the source).
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int number_of_bands;
  int* band_ids;
  double width;   // metres, along the object's x
  double height;  // metres, along y
  char picture_file[256];
  int animation;          // 0 none, 100 time, 101 frames
  int alpha_channel;      // 0 none, 1 alpha after the radiance, 2 alpha scales it too
  int auto_scale_flag;    // not 0: the range comes from the camera
  int optical_nature[2];  // front (+z), back
  double* color[2];       // per band, radiance of a solid side
  double* min_radiance;   // per band, one range for both sides
  double* max_radiance;
  int imaging_method;  // 1 skips anti-aliased views; below 2: 2 x 2 samples, else 4 x 4

 private:
  // The band count and ids, into arrays made for them.
  int read_band_ids(std::istream& in);
  int read_side(std::istream& in, int side);
  int write_side(std::ostream& out, int side) const;
  int unpack_picture_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                          const char* chars, int char_bytes);
  // Counts taken from a packed int array by set_sizes_from_packed; they
  // stand in for the record's own until the next pack or unpack.
  int has_received_counts_;
  int received_bands_;

  Picture_input(const Picture_input&);
  Picture_input& operator=(const Picture_input&);
};

#endif
