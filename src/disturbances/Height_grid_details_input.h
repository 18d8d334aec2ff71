#ifndef TC_HEIGHT_GRID_DETAILS_INPUT_H
#define TC_HEIGHT_GRID_DETAILS_INPUT_H

#include "TCGrid_details_input.h"

// An imported height map added to the sea, scaled by a key table over time
// and carried along at a constant velocity.
//
// Grid block:
//   n_points_x 128  n_points_y 64  dx 0.5  dy 0.5
//   height_detail_file: heights.dat
//   position_x: 10               (metres)
//   position_y: -4
//   orientation: 30              (degrees on file, radians here)
//   velocity:   2                (metres per second)
//   direction:  90               (degrees on file, radians here)
//   end
// Detail file:
//   Tidecast_data_file height_grid 2 2
//   height_file_name:  bump.hdf
//   periodicity:  0 0              (version 2 on; else the flags stay)
//   number_of_scaling_key_times:  2
//   time   scale
//   0 0
//   10 2
//   end
class Height_grid_details_input : public TCGrid_details_input {
 public:
  // Code -7, detail file "height_field_file.dat", grid file
  // "nouse_grid.dat ", not periodic; one key, scale 1 at time 0.
  Height_grid_details_input();
  ~Height_grid_details_input() override;

  // Behind the grid part: the key count; position_x, position_y,
  // orientation, velocity, direction, then the times and the scales; the
  // grid file's name in 256 chars. Prints the wake's words, as it always
  // has.
  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold the root's, the grid part's and the key count.
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  int write_grid_block(std::ostream& out) const override;
  int read_grid_block(std::istream& in) override;
  int write_detail_file(std::ostream& out) const override;
  // A key table is taken only when all its rows have read; a negative
  // count, or memory running out, fails with the allocation words.
  int read_detail_file(std::istream& in) override;

  // Both key arrays for count keys, all 0, replacing the old ones. 0, with
  // the allocation words and the old table kept, for a negative count or
  // when memory runs out.
  int allocate_keys(int count);

  double position_x;  // metres, where the grid's centre starts
  double position_y;
  double orientation;    // radians, of the grid's axes
  double velocity;       // metres per second
  double direction;      // radians, the way the grid moves
  char field_file[256];  // the data set: "height_file_name:" on file
  int number_of_key_times;
  double* key_times;   // seconds
  double* key_scales;  // a factor of the heights at each key time

 protected:
  // The words and codes that set the multiplier grid apart.
  struct Kind_words {
    int field_code;
    const char* detail_file;
    const char* header_type;
    const char* header_failure;
    const char* detail_file_keyword;
    const char* file_name_keyword;
    const char* block_end;
    const char* scaling_allocation;
  };
  explicit Height_grid_details_input(const Kind_words& kind);

 private:
  void release_keys();
  int unpack_height_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                         const char* chars, int char_bytes);

  Kind_words kind_;
  // A key count taken from a packed int array by set_sizes_from_packed; it
  // stands in for the record's own until the next pack or unpack.
  int has_received_counts_;
  int received_keys_;

  Height_grid_details_input(const Height_grid_details_input&);
  Height_grid_details_input& operator=(const Height_grid_details_input&);
};

#endif
