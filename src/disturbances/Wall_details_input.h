#ifndef TC_WALL_DETAILS_INPUT_H
#define TC_WALL_DETAILS_INPUT_H

#include "TCGrid_details_input.h"

// A mirror wall: a straight line that reflects the sea. No lattice and no
// detail file; the holder keeps it as a reflecting line.
//
// Grid block:
//   position_x  10     (metres, a point of the line)
//   position_y  -5
//   angle  90          (degrees on file, radians here)
//   end
class Wall_details_input : public TCGrid_details_input {
 public:
  // Code -3, periodic both ways, no detail file (the name
  // "reflect_wall_spectrum.dat" is never read).
  Wall_details_input();
  ~Wall_details_input() override;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int write_grid_block(std::ostream& out) const override;
  int read_grid_block(std::istream& in) override;

  double position_x;  // metres
  double position_y;
  double angle;  // radians

 private:
  Wall_details_input(const Wall_details_input&);
  Wall_details_input& operator=(const Wall_details_input&);
};

#endif
