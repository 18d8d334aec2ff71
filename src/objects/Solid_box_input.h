#ifndef TC_SOLID_BOX_INPUT_H
#define TC_SOLID_BOX_INPUT_H

#include <iostream>

#include "TCSpectrum.h"
#include "box_input.h"

// An opaque block that emits and reflects, per band.
//
// On file, keywords skipped unread, values in this order:
//   Tidecast_data_file box 1 1
//   length_x:  2
//   length_y:  2
//   length_z:  1
//   number_of_bands: 2
//   band_id: 1 2
//   radiance: 0.5 0.25             (emitted, per band)
//   reflectivity: 0.1 0.2          (of the sun's irradiance)
//   transmissivity: 0 0            (kept and written; no effect)
//   end
class Solid_box_input : public box_input {
 public:
  // Kind word "box", code 4, priority 2.0, lengths 1, no bands.
  Solid_box_input();
  ~Solid_box_input() override;

  // The box file at path, through read_stream / write_stream; the path is
  // named when the file cannot be opened or read.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // Header to "end". Prints what is wrong and returns 0; nothing is kept
  // from a section that fails.
  virtual int read_stream(std::istream& in);
  virtual int write_stream(std::ostream& out) const;

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
  // Band ids; radiance_in_band holds the emitted radiance.
  TCSpectrum band_ids;
  double* reflectivity;
  double* transmissivity;

 protected:
  // For a derived kind: its own kind word and code.
  Solid_box_input(const char* kind, int code);
  // The counts of this record, or those received from a packed array until
  // the next pack or unpack.
  int packed_band_count() const { return has_received_counts_ ? received_bands_ : number_of_bands; }
  void drop_received_counts() { has_received_counts_ = 0; }

 private:
  // Takes the two arrays of count bands in place of the record's own.
  void keep_bands(int count, double* new_reflectivity, double* new_transmissivity);
  int unpack_solid_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                        const char* chars, int char_bytes);

  int has_received_counts_;
  int received_bands_;

  Solid_box_input(const Solid_box_input&);
  Solid_box_input& operator=(const Solid_box_input&);
};

#endif
