#ifndef TC_GRID_DETAILS_INPUT_H
#define TC_GRID_DETAILS_INPUT_H

#include <iostream>

#include "TCObject_input.h"

// One lattice of the sea as the ocean file gives it: the primary and further
// ocean grids use this record as it stands, and every disturbance kind derives
// from it with its own grid block and detail file.
//
// Base grid block, keywords skipped unread, closed by "end":
//   n_points_x  256 1        (the second int, the axis's periodicity, only
//   n_points_y  256 1         when carries_periodicity is set: primary grid)
//   dx  0.5
//   dy  0.5
//   spectrum_file:  ocean_spectrum.dat
//   generate_file:  yes
//   random_seed  12345       (only after "yes")
//   end
class TCGrid_details_input : public TCObject_input {
 public:
  // Code 1 (a further ocean grid), no detail file, periodic both ways,
  // generating with seed 1.
  TCGrid_details_input();
  ~TCGrid_details_input() override;

  // Opens detail_file's namesake path and reads it through read_detail_file,
  // only when has_detail_file is set; else succeeds at once. Failures print
  // "unable to open grid file " or "unable to process grid file " with the
  // name.
  int read_file(const char* path) override;
  // Writes the detail file the same way; nothing, and success, without one.
  int write_file(const char* path) override;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  // The kind's block in the ocean file. 0 after a message.
  virtual int write_grid_block(std::ostream& out) const;
  virtual int read_grid_block(std::istream& in);
  // The kind's detail file body; the base has none and succeeds.
  virtual int write_detail_file(std::ostream& out) const;
  virtual int read_detail_file(std::istream& in);

  int field_code;  // 1 ocean grid, 0 unknown kind, negative: the disturbance kinds
  char detail_file[256];
  int has_detail_file;
  int periodic_x;
  int periodic_y;
  int n_x;
  int n_y;
  double dx;  // metres
  double dy;
  int random_seed;
  int generate_file;  // 1: write a new spectrum file at start
  char spectrum_file[256];

  // Never on file or packed: where the record belongs, and whether the
  // n_points lines carry the periodic flags.
  void* parent_ocean;
  int carries_periodicity;

 protected:
  // The lattice lines shared by most blocks: n_points_x, n_points_y, dx, dy
  // (with the periodic flags when carries_periodicity is set).
  int read_lattice_lines(std::istream& in);
  void write_lattice_lines(std::ostream& out) const;
  // "spectrum_file:" name and "generate_file:" yes or no, with "random_seed"
  // after yes when with_seed is set.
  int read_spectrum_lines(std::istream& in, int with_seed);
  void write_spectrum_lines(std::ostream& out, int with_seed) const;
  // Where a kind's pattern stands, metres: "position_x:" and "position_y:"
  // as written; on reading any keyword will do, as the wall's show.
  static int read_position_lines(std::istream& in, double& position_x, double& position_y);
  static void write_position_lines(std::ostream& out, double position_x, double position_y);
  // "direction:" (degrees on file, radians here) and "velocity:" (metres per
  // second): the course of a boat or of a wake.
  static int read_course_lines(std::istream& in, double& direction, double& velocity);
  static void write_course_lines(std::ostream& out, double direction, double velocity);
  // A block's closing word: anything but "end" (or a number that failed
  // before it) prints opening, the word and " instead of end", and gives 0.
  static int check_block_end(std::istream& in, const char* opening);
  // Writes the closing "end" of a block or detail file; 0 when the stream
  // has failed.
  static int write_block_end(std::ostream& out);

  // What a kind prints when packing fails. Several kinds print another's:
  // reflect the swell's, deform the ripple's, both grid kinds the wake's.
  struct Packing_words {
    const char* allocate_ints;
    const char* allocate_doubles;
    const char* allocate_chars;
    const char* open_stream;
    const char* pack_object_part;
    const char* unpack_object_part;
    const char* wrong_ints;
    const char* wrong_doubles;
    const char* wrong_chars;
  };
  static const Packing_words grid_words;
  static const Packing_words swell_words;
  static const Packing_words ripple_words;
  static const Packing_words wake_words;
  static const Packing_words wall_words;
  static const Packing_words boat_words;

  // Packed part of this record behind the root's: field_code,
  // has_detail_file, periodic_x, periodic_y, n_x, n_y, random_seed,
  // generate_file; dx, dy; detail_file and spectrum_file in 256 chars each.
  static const int grid_part_ints = 8;
  static const int grid_part_doubles = 2;
  static const int grid_part_chars = 512;
  static const int text_block = 256;

  // New arrays of the whole record's packing_sizes with the root and grid
  // parts filled; at_int, at_double, at_char give where the kind's own part
  // starts. 0 after a message in the kind's words.
  int pack_grid_part(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
                     int& char_bytes, const Packing_words& words, int& at_int, int& at_double,
                     int& at_char);
  // The receiving side: arrays present and of packing_sizes' byte sizes,
  // then the root and grid parts taken back; at_* as for packing.
  int unpack_grid_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                       const char* chars, int char_bytes, const Packing_words& words, int& at_int,
                       int& at_double, int& at_char);
  // Byte sizes against packing_sizes, ints, then doubles, then chars; the
  // first that differs is printed in the kind's words.
  int packed_sizes_fit(int int_bytes, int double_bytes, int char_bytes,
                       const Packing_words& words) const;

 private:
  TCGrid_details_input(const TCGrid_details_input&);
  TCGrid_details_input& operator=(const TCGrid_details_input&);
};

#endif
