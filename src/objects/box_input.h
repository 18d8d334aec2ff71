#ifndef TC_BOX_INPUT_H
#define TC_BOX_INPUT_H

#include <climits>
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
  // The most bands whose packed bytes still fit an int.
  static const int most_bands = INT_MAX / 8;
  // The band count, the ids, then n_lists lists of per-band values, each
  // after a keyword, into new arrays the caller owns; all null unless every
  // id was read. 0, printing failure_words (with a blank after them when
  // memory ran out) and keeping nothing, for a count out of range or when
  // memory runs out.
  static int read_band_lists(std::istream& in, const char* failure_words, int& count, int*& ids,
                             double** lists, int n_lists);
  // A list line: the keyword, then " value" per entry, then a new line.
  static void write_list(std::ostream& out, const char* keyword, const int* values, int count);
  static void write_list(std::ostream& out, const char* keyword, const double* values, int count);

 private:
  box_input(const box_input&);
  box_input& operator=(const box_input&);
};

#endif
