#ifndef TC_THERMAL_BOX_INPUT_H
#define TC_THERMAL_BOX_INPUT_H

#include <iostream>

#include "TCSpectrum.h"
#include "box_input.h"

// A block of absorbing, emitting gas or vapour, per band.
//
// On file, keywords skipped unread, values in this order:
//   Tidecast_data_file thermal_box 1 1
//   length_x:  20
//   length_y:  20
//   length_z:  5
//   number_of_bands: 2
//   band_id: 1 2
//   radiance: 0.5 0.25             (emitted by a block thick enough to be opaque)
//   absorption: 0.1 0.2            (per metre)
//   end
//
// The kind word on an object line is "boxcloud", not the file's type word.
class Thermal_box_input : public box_input {
 public:
  // Kind word "boxcloud", code 9, priority 2.0, lengths 1, no bands.
  Thermal_box_input();
  ~Thermal_box_input() override;

  // The thermal box file at path, through read_stream / write_stream; the
  // path is named when the file cannot be opened or read.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // Header to "end". Prints what is wrong and returns 0; nothing is kept
  // from a section that fails.
  int read_stream(std::istream& in);
  int write_stream(std::ostream& out) const;

  // count bands, ids 1.., every value 0, replacing what was there. 0,
  // keeping the old bands, for a negative count or when memory runs out.
  int allocate_bands(int count);

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold at least the root's ints and the band count.
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  // The arrays below and band_ids all hold number_of_bands entries.
  int number_of_bands;
  TCSpectrum band_ids;  // ids only
  double* radiance;
  double* absorption;  // per metre

 private:
  // Takes the two arrays of count bands in place of the record's own.
  void keep_bands(int count, double* new_radiance, double* new_absorption);
  int packed_band_count() const { return has_received_counts_ ? received_bands_ : number_of_bands; }
  int unpack_thermal_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                          const char* chars, int char_bytes);

  int has_received_counts_;
  int received_bands_;

  Thermal_box_input(const Thermal_box_input&);
  Thermal_box_input& operator=(const Thermal_box_input&);
};

#endif
