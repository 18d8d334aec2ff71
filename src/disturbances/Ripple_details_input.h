#ifndef TC_RIPPLE_DETAILS_INPUT_H
#define TC_RIPPLE_DETAILS_INPUT_H

#include "TCGrid_details_input.h"

// The ring of waves from one splash, kept as a single row of heights over
// radius.
//
// Grid block: the lattice lines, "spectrum_file:", "generate_file:" yes or
// no, "ripple_file:" name, "position_x:", "position_y:" (metres), "end".
// Detail file, with or without its header, and no closing word:
//   Tidecast_data_file  ripple  1 1
//   start_time: 2.5              (seconds)
//   radius:     0.3              (metres, of the source)
//   velocity:   1.5              (metres per second, of the source)
//   n_r:        256
//   dr:         0.1              (metres)
class Ripple_details_input : public TCGrid_details_input {
 public:
  // Code -4, detail file "ripple_spectrum.dat ", periodic both ways.
  Ripple_details_input();
  ~Ripple_details_input() override;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int write_grid_block(std::ostream& out) const override;
  int read_grid_block(std::istream& in) override;
  // Writes the header. A number that does not read fails with
  // "unable to process ripple detail stream ".
  int write_detail_file(std::ostream& out) const override;
  int read_detail_file(std::istream& in) override;

  double position_x;  // metres, the centre of the ring
  double position_y;
  double ripple_start_time;  // seconds; the file's "start_time:"
  double radius;             // metres
  double velocity;           // metres per second
  int n_r;
  double dr;  // metres

 private:
  Ripple_details_input(const Ripple_details_input&);
  Ripple_details_input& operator=(const Ripple_details_input&);
};

#endif
