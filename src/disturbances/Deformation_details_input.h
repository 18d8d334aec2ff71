#ifndef TC_DEFORMATION_DETAILS_INPUT_H
#define TC_DEFORMATION_DETAILS_INPUT_H

#include "TCGrid_details_input.h"

// A slow rise or fall of the surface in a band, with cosine edges.
//
// Grid block: the lattice lines, "spectrum_file:", "generate_file:" yes or
// no, "deformation_file:" name, "end".
// Detail file (no header, no closing word):
//   initial_height: 0          (metres)
//   final_height:     1.5      (metres)
//   evolution_time:   30       (seconds)
//   width:        10           (metres, of each cosine edge)
class Deformation_details_input : public TCGrid_details_input {
 public:
  // Code -2, detail file "deform_spectrum.dat ", not periodic.
  Deformation_details_input();
  ~Deformation_details_input() override;

  // Packing prints the ripple's words, as it always has.
  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  // Closes with "deformation input file is invalid, read " on a wrong word.
  int write_grid_block(std::ostream& out) const override;
  int read_grid_block(std::istream& in) override;
  // A number that does not read fails with
  // "unable to process deformation detail stream ".
  int write_detail_file(std::ostream& out) const override;
  int read_detail_file(std::istream& in) override;

  double initial_height;  // metres
  double final_height;
  double evolution_time;  // seconds
  double width;           // metres

 private:
  Deformation_details_input(const Deformation_details_input&);
  Deformation_details_input& operator=(const Deformation_details_input&);
};

#endif
