#ifndef TC_BOX_INPUT_H
#define TC_BOX_INPUT_H

#include <iostream>

#include "TCObject_input.h"
#include "TCVector.h"

// The part every box-shaped record shares: the block's edge lengths in its
// own frame. Solid, thermal and bobbing boxes, and the surface and polygon
// records, build on it. Its packing slots are the root's: each kind packs
// the lengths with its own fields.
//
// On file, right after the header of the derived kind:
//   length_x:  2
//   length_y:  1.5
//   length_z:  3
class box_input : public TCObject_input {
 public:
  // Lengths 1.0, 1.0, 1.0 (metres).
  box_input();
  ~box_input() override;

  // The three lengths, each after a keyword that is skipped. Returns 0 when
  // the stream fails; a length not read keeps its value.
  int read_lengths(std::istream& in);
  void write_lengths(std::ostream& out) const;

  TCVector length;  // metres, along the object's x, y, z

 protected:
  // Helpers of the box readers.
  // count ints into a new array, grown as they arrive, so that a count the
  // stream cannot back costs no memory. Null unless all count were read (or
  // memory ran out); the caller owns the array.
  static int* read_int_list(std::istream& in, int count);
  // Up to count doubles, stopping at the first that fails.
  static void read_doubles(std::istream& in, double* target, int count);
  // The closing word: anything but "end", or a read that failed before it,
  // prints message, a new line and "read <word>instead of end", and gives 0.
  static int end_read(std::istream& in, const char* message);
  // A list line: the keyword, then " value" per entry, then a new line.
  static void write_list(std::ostream& out, const char* keyword, const int* values, int count);
  static void write_list(std::ostream& out, const char* keyword, const double* values, int count);

 private:
  box_input(const box_input&);
  box_input& operator=(const box_input&);
};

#endif
