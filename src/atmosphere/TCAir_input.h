#ifndef TC_AIR_INPUT_H
#define TC_AIR_INPUT_H

#include <iostream>

#include "TCObject_input.h"
#include "TCSpectrum.h"

// An atmosphere file: one of four kinds of air over a flat or round base,
// with the scale heights and densities of a molecular and an aerosol layer.
//
// On file, keywords skipped unread, values in this order:
//   Tidecast_data_file air 2 2
//   number_of_bands 2
//   band_id  1 2
//   air_type: haze                 (uniform, clean, haze; any other word: dirty)
//   surface_shape round            (round; any other word: flat)
//   surface_radius 6371000         (only for round)
//   ...the kind's values (see docs/air.md)
//   sun_max_radiance 2000          (optional tail; negative: no limit)
//   external_exact 0               (optional, only after sun_max_radiance)
//   end
class TCAir_input : public TCObject_input {
 public:
  // Kind "air", code 7, name "air_type_name", clean air over a round base.
  TCAir_input();
  ~TCAir_input() override;

  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // 0 after a message; fields read before a failure keep their new values.
  // Values that would make NaN or negative light are refused with a message
  // naming name (the file) and the value.
  int read_stream(std::istream& in, const char* name = "");
  // 0 for a kind or shape with no word, or a failed stream.
  int write_stream(std::ostream& out) const;

  // The band list and both per-band arrays for count bands (ids from 1,
  // radiances 0, haze widths 0.95), replacing what was there. 0, keeping
  // the old ones, for a negative count or when memory runs out.
  int allocate_arrays(int count);

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int number_of_bands;
  TCSpectrum band_id;
  double* radiance_value;       // uniform sky radiance; haze: aerosol scattering strength
  double* haze_phase_function;  // haze: aerosol scattering width
  int surface_shape;            // 1 round, 0 flat
  int air_type;                 // 0 uniform, 1 clean, 2 dirty, 3 haze
  double surface_radius;        // metres, round base only
  double molecular_height;
  double molecular_density;
  double molecular_wavelength_dependence;
  double aerosol_height;
  double aerosol_density;
  double aerosol_scattering_factor;
  int external_exact;       // 1: every sky pixel computed, no table
  double sun_max_radiance;  // cap on the sun disc's radiance in an image

 private:
  void release_arrays();
  // 0 after a message naming file and the value, for a value the air cannot
  // make light from; the dirty air's widths are checked only with a list.
  int values_make_light(const char* file) const;
  int unpack_air_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                      const char* chars, int char_bytes);
  // Counts taken from a packed int array by set_sizes_from_packed; they
  // stand in for the record's own until the next pack or unpack.
  int has_received_counts_;
  int received_bands_;

  TCAir_input(const TCAir_input&);
  TCAir_input& operator=(const TCAir_input&);
};

#endif
