#ifndef TC_SWELL_DETAILS_INPUT_H
#define TC_SWELL_DETAILS_INPUT_H

#include "TCGrid_details_input.h"

// A swell train: a Gaussian bump of the spectrum around one wavenumber,
// generated on a lattice of its own.
//
// Grid block: the lattice lines, "spectrum_file:", "generate_file:" yes or
// no (no seed: it is in the detail file), "swell_file:" name, "end".
// Detail file (no header):
//   swell_height:  0.5        (metres, rms)
//   swell_wavelenth:  120     (metres; the keyword's spelling is the format's)
//   long_spread:  0.1         (relative width along the direction)
//   trans_spread:  0.2        (relative width across)
//   direction:  30            (degrees on file, radians here)
//   random_seed:  7
//   end
class Swell_details_input : public TCGrid_details_input {
 public:
  // Code -5, detail file "swell_spectrum.dat ", periodic both ways.
  Swell_details_input();
  ~Swell_details_input() override;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int write_grid_block(std::ostream& out) const override;
  int read_grid_block(std::istream& in) override;
  int write_detail_file(std::ostream& out) const override;
  int read_detail_file(std::istream& in) override;

  double swell_height;      // metres, rms
  double swell_wavelength;  // metres
  double long_spread;       // relative widths of the peak, along and across
  double trans_spread;
  double direction;  // radians, the way the swell travels

 private:
  Swell_details_input(const Swell_details_input&);
  Swell_details_input& operator=(const Swell_details_input&);
};

#endif
