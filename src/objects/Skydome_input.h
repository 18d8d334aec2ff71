#ifndef TC_SKYDOME_INPUT_H
#define TC_SKYDOME_INPUT_H

#include <iostream>

#include "TCObject_input.h"

// A skydome file: a hemisphere of sky, textured from one picture laid over
// it by an equal-area mapping.
//
// On file, keywords skipped unread, values in this order:
//   Tidecast_data_file skydome 4 4
//   dome_radius:   99999999
//   number_of_bands: 3
//   band_id:   1  2  3
//   dome_file: sky.rgb             (the stem of per-frame names when animated)
//   horizon_angle: 2.5             (degrees; file version 3 on, else 0)
//   animation:  no                 ("no", "time", "frames"; version 4 on)
//   alpha_channel:  0              (version 4 on)
//   min_radiance:  0 0 0           (radiance of byte 0, per band)
//   max_radiance:   1 1 1          (radiance of byte 255)
//   imaging_method: 2              (version 2 on, else 2)
//   end
class Skydome_input : public TCObject_input {
 public:
  // Kind word "skydome", code 11, display order 2.0, no bands.
  Skydome_input();
  ~Skydome_input() override;

  // The skydome file at path, through read_stream / write_stream.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // Prints what is wrong and returns 0. A failed read can leave the fields
  // read before the failure changed; the caller gives the record up.
  int read_stream(std::istream& in);
  // Returns 0 for an animation code with no word, or a failed stream.
  int write_stream(std::ostream& out) const;

  // Band ids and both radiance arrays for count bands, all 0, replacing
  // what was there. 0, keeping the old arrays, for a negative count or when
  // memory runs out.
  int allocate_arrays(int count);
  void release_arrays();

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold at least the root's ints and the 6 fixed ones (see the
  // layout in the source).
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int number_of_bands;
  int* band_ids;
  double dome_radius;  // metres; the dome's depth is its square
  char dome_file[256];
  double horizon_angle;  // radians
  int animation;         // 0 none, 100 time, 101 frames
  int alpha_channel;     // 0 none, 1 alpha after the radiance, 2 alpha scales it too
  double* min_radiance;  // per band
  double* max_radiance;
  int imaging_method;  // 1 skips anti-aliased views; below 2: 2 x 2 samples, else 4 x 4
  int texture_mode;    // never on file; handed to the texture plane

 private:
  int unpack_skydome_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                          const char* chars, int char_bytes);
  // Counts taken from a packed int array by set_sizes_from_packed; they
  // stand in for the record's own until the next pack or unpack.
  int has_received_counts_;
  int received_bands_;

  Skydome_input(const Skydome_input&);
  Skydome_input& operator=(const Skydome_input&);
};

#endif
