#ifndef TC_WAKE_DETAILS_INPUT_H
#define TC_WAKE_DETAILS_INPUT_H

#include "TCGrid_details_input.h"

// A ship's Kelvin wake: a stationary pattern computed once (or read from the
// file it was written to) and moved across the sea with the ship.
//
// Grid block: the lattice lines, "spectrum_file:", "generate_file:" yes or
// no, "wake_file:" the detail file's name, "position_x:", "position_y:"
// (metres), "direction:" (degrees on file), "velocity:" (metres per second),
// "end".
// Detail file:
//   Tidecast_data_file wake 1 1
//   generate_wake:  yes
//   wake_file_name:  wake.hdf           (the pattern, written or read)
//   boat_shape:   rectangle             (generating: rectangle, ellipse, or
//   boat_length: 40                      any other word for a file, then
//   boat_width:  8                       "file:" and its name instead of
//   boat_depth:  2                       the three sizes, metres)
//   damping_eps:  0.01
//   damping_us:  2
//   end
// Not generating, only the three sizes follow the name.
class Wake_details_input : public TCGrid_details_input {
 public:
  // Code -6, detail file "boat_hull_file.dat", pattern file
  // "wake_grid.dat ", not periodic; not generating, rectangle.
  Wake_details_input();
  ~Wake_details_input() override;

  // 7 ints, 11 doubles and 768 chars in all: what the field needs, behind
  // the root's name (layout in the source). The detail and spectrum file
  // names and the seed stay the receiver's.
  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int write_grid_block(std::ostream& out) const override;
  int read_grid_block(std::istream& in) override;
  // Header failure "file not of wake data type ", closing word
  // "unable to process wake stream ". Writing a shape with no word fails
  // with "unable to generate output for boat shape in wake ".
  int write_detail_file(std::ostream& out) const override;
  int read_detail_file(std::istream& in) override;

  double position_x;  // metres, the ship at the reference time
  double position_y;
  double direction;  // radians, the way the ship travels
  double velocity;   // metres per second
  int generate_wake;
  char wake_file[256];
  int boat_shape;      // 0 from a file, 1 rectangle, 2 ellipse
  double boat_length;  // metres
  double boat_width;
  double boat_depth;
  char hull_file[256];  // the shape's file, when boat_shape is 0
  double damping_eps;
  double damping_us;

 private:
  Wake_details_input(const Wake_details_input&);
  Wake_details_input& operator=(const Wake_details_input&);
};

#endif
