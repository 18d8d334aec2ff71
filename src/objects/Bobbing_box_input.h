#ifndef TC_BOBBING_BOX_INPUT_H
#define TC_BOBBING_BOX_INPUT_H

#include <iostream>

#include "Solid_box_input.h"

// A solid box that floats on the ocean. Its file is a whole solid box file,
// "end" included, followed by:
//   Tidecast_data_file bobbing_box 1 1
//   decoupling_height 2            (metres: rides the sea only this close)
//   dampening_factor  0.5          (fraction of the footprint sampled)
//   end
// This reader stops after the second number; the runtime box's own reader
// of the section requires the "end".
class Bobbing_box_input : public Solid_box_input {
 public:
  // Kind word "bobbing_box", code 14, priority 2.0; decoupling height 0
  // (never rides), dampening factor 1.
  Bobbing_box_input();
  ~Bobbing_box_input() override;

  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // The solid box section, then the bobbing section.
  int read_stream(std::istream& in) override;
  int write_stream(std::ostream& out) const override;
  // Header and the two numbers. Prints what is wrong and returns 0;
  // nothing is kept from a section that fails.
  int read_bobbing_section(std::istream& in);
  int write_bobbing_section(std::ostream& out) const;

  // Doubles after the solid box's: decoupling_height, dampening_factor.
  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  double decoupling_height;  // metres
  double dampening_factor;

 private:
  Bobbing_box_input(const Bobbing_box_input&);
  Bobbing_box_input& operator=(const Bobbing_box_input&);
};

#endif
