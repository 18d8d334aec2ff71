#ifndef TC_BOAT_DETAILS_INPUT_H
#define TC_BOAT_DETAILS_INPUT_H

#include "TCGrid_details_input.h"

// A polygonal hull moving in a straight line, with a hull depth map and a
// Kelvin wake, a dynamic wake solved in the hull's frame, both, or none.
//
// Grid block: the lattice lines, "boat_file:" the detail file's name,
// "position_x:", "position_y:" (metres), "direction:" (degrees on file),
// "velocity:" (metres per second), "end".
// Detail file:
//   Tidecast_data_file boat 2 2
//   number_of_hull_points: 4      (below 1: no points, count 0)
//   -10 -2                        (x y, metres, x towards the bow)
//   ...
//   end
//   boat_hull_depth:  constant    (or "file": hull_file:, hull_dx:,
//   hull_depth:  1.5               hull_dy:, hull_scaling:; or
//   end                            "custom_type_one": hull_scaling:)
//   wake_type:  dynamic           ("none"/"no", "kelvin", "dynamic", "full")
//   ...                           (the branch's lines, see the source)
//   couple_to_ocean_waves:  no
//   end
class Boat_details_input : public TCGrid_details_input {
 public:
  // Code -9, detail file "boat_grid.dat ", not periodic; no hull points,
  // constant depth 0, no wake, enhancements 1, files "boat_wake.hdf"
  // (Kelvin), "boat_wake.dat" (dynamic state), "boat_wake_height.hdf"
  // (hull depths).
  Boat_details_input();
  ~Boat_details_input() override;

  // Behind the grid part (layout in the source); the hull arrays are made
  // anew on unpacking.
  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold the root's, the grid part's and the hull count.
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  // Closes with "ocean boat input file is invalid, read " on a wrong word.
  int write_grid_block(std::ostream& out) const override;
  int read_grid_block(std::istream& in) override;
  // For a Kelvin wake the "couple_to_ocean_waves:" line is written the
  // wrong way round, "no" when coupled and "yes" with the dynamic block when
  // not, as the format always has; reading goes by the word.
  int write_detail_file(std::ostream& out) const override;
  int read_detail_file(std::istream& in) override;

  // Hull arrays for count points, all 0, replacing the old ones. 0, with
  // "unable to allocate location array in Boat Grid input " and the old
  // points kept, for a negative count or when memory runs out.
  int allocate_hull(int count);

  // Codes of "boat_hull_depth:", "wake_type:" and "use_initial_wake:".
  static const int hull_constant = 601;
  static const int hull_from_file = 602;
  static const int hull_custom_type_one = 701;
  static const int wake_none = 501;
  static const int wake_kelvin = 502;
  static const int wake_dynamic = 503;
  static const int wake_full = 504;
  static const int initial_no = 0;
  static const int initial_yes = 1;
  static const int initial_yes_input_height_frames = 2;
  static const int initial_no_output_height_frames = 3;
  static const int initial_yes_output_height_frames = 4;

  double position_x;  // metres, the hull at the reference time
  double position_y;
  double direction;  // radians, the way the hull travels
  double velocity;   // metres per second
  int number_of_hull_points;
  double* hull_x;  // metres, the outline in boat coordinates
  double* hull_y;
  int hull_type;
  double hull_depth;  // metres; a factor of the file's depths for 602 and 701
  char hull_file[256];
  double hull_dx;  // metres, the hull file's spacing
  double hull_dy;
  int wake_type;
  int kelvin_initial;
  char kelvin_file[256];
  double eps0;
  double us;
  double slope_threshold;
  int dynamic_initial;
  char dynamic_file[256];
  double reference_time;  // seconds
  double initialization_interval;
  double time_increment;
  double acceleration_threshold;
  double fore_enhancement;
  double aft_enhancement;
  int couple_to_ocean_waves;

 private:
  int read_hull_points(std::istream& in);
  int read_hull_depth(std::istream& in);
  void read_dynamic_lines(std::istream& in, int with_enhancements);
  void write_dynamic_lines(std::ostream& out, const char* initial_word,
                           int with_enhancements) const;
  void release_hull();
  int unpack_boat_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                       const char* chars, int char_bytes);

  // A hull count taken from a packed int array by set_sizes_from_packed; it
  // stands in for the record's own until the next pack or unpack.
  int has_received_counts_;
  int received_points_;

  Boat_details_input(const Boat_details_input&);
  Boat_details_input& operator=(const Boat_details_input&);
};

#endif
