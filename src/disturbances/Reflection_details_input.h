#ifndef TC_REFLECTION_DETAILS_INPUT_H
#define TC_REFLECTION_DETAILS_INPUT_H

#include "TCGrid_details_input.h"

// A scattering object in the sea: the waves of the primary field reflected
// off a body, solved on a lattice of its own.
//
// Grid block: the lattice lines, "spectrum_file:", "generate_file:" yes or
// no, "reflection_file:" name, "end".
// Detail file (no header):
//   radius:  5                   (metres)
//   n_theta:  64
//   n_k_radial:  128
//   k_min_radial:  0.01          (cycles per metre)
//   dr_radial:  0.5              (metres)
//   stretching_factor_x:  1
//   stretching_factor_y:  1
//   algorithm_method:     1
//   matching_method_flag: 0
//   bessel_table_flag:    1
//   table_size:  1000            (these two only when the flag is set)
//   table_increment:  0.01
//   end
class Reflection_details_input : public TCGrid_details_input {
 public:
  // Code -1, detail file "reflection_spectrum.dat ", not periodic.
  Reflection_details_input();
  ~Reflection_details_input() override;

  // Packing prints the swell's words, as it always has.
  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int write_grid_block(std::ostream& out) const override;
  int read_grid_block(std::istream& in) override;
  int write_detail_file(std::ostream& out) const override;
  int read_detail_file(std::istream& in) override;

  double radius;  // metres
  int n_theta;
  int n_k_radial;
  double k_min_radial;
  double dr_radial;  // metres
  double stretching_factor_x;
  double stretching_factor_y;
  int algorithm_method;
  int matching_method_flag;
  int bessel_table_flag;  // not 0: a table of Bessel values, of these two
  int table_size;
  double table_increment;

 private:
  Reflection_details_input(const Reflection_details_input&);
  Reflection_details_input& operator=(const Reflection_details_input&);
};

#endif
