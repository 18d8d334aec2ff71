#ifndef TC_STAR_INPUT_H
#define TC_STAR_INPUT_H

#include <iostream>

#include "TCObject_input.h"
#include "TCSpectrum.h"

// Kind code of the sun's record; it never appears on an object line.
const int star_type_code = 101;

// The sun as the files give it. Its key frames carry the sun's angles, not a
// pose: chi holds the zenith and phi the azimuth, both in radians in the
// engine's convention (see read_list_block), positions all zero.
//
// The sun file:
//   Tidecast_data_file sun 1 1
//   position_method_flag 0
//   number_of_bands 2
//   band_id 1 2
//   irradiance 1.5 1.25
//   end
class TCStar_input : public TCObject_input {
 public:
  // Type word "star", name "sun", code 101, one band of irradiance 0.
  TCStar_input();
  ~TCStar_input() override;

  // The sun file at path, through read_stream / write_stream.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // Nothing is kept from a file that fails. A negative band count is refused
  // at once; storage for the ids grows as they are read, so a count the
  // stream cannot back costs nothing.
  int read_stream(std::istream& in);
  // Counts and lists come from the irradiance spectrum (its n), not from
  // number_of_bands, so what is written always reads back.
  int write_stream(std::ostream& out) const;

  // The object list's sun block, read right after the list's "sun_flag: "
  // value: "number_of_times " n, a three-word heading, n rows of time, theta
  // and phi in degrees, then "data_file:  " and the sun file's name (kept in
  // object_file; the list reads that file afterwards).
  int read_list_block(std::istream& in);
  // Fewer than one time prints "star must be specified for atleast one time "
  // and fails; a block cut short fails silently, for the list to report. The
  // track and file name change only when the whole block reads.
  //
  // The same block for writing, without the "sun_flag" keyword the list
  // prints ahead of it.
  int write_list_block(std::ostream& out) const;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold at least the 3 fixed ints past the root's (see the layout
  // in the source).
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int position_method_flag;
  int number_of_bands;
  // band_id per band; radiance_in_band holds the irradiance.
  TCSpectrum irradiance;

 private:
  // unpack without forgetting the received counts, which the root's size
  // check still needs.
  int unpack_star_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                       const char* chars, int char_bytes);
  // The sun's part of the packed sizes for these counts, wide so that no
  // count overflows.
  static void sizes_of(int n_bands, int n_keys, long long& n_ints, long long& n_doubles,
                       long long& n_chars);

  // Counts taken from a packed int array by set_sizes_from_packed; they
  // stand in for the record's own until the next pack or unpack.
  int has_received_counts_;
  int received_bands_;
  int received_keys_;

  TCStar_input(const TCStar_input&);
  TCStar_input& operator=(const TCStar_input&);
};

#endif
