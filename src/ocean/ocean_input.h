#ifndef TC_OCEAN_INPUT_H
#define TC_OCEAN_INPUT_H

#include <iostream>

#include "TCGrid_details_input.h"
#include "TCOcean_textures_input.h"
#include "surface_object_input.h"

// The ocean file: lattices, disturbances, wind, spectrum, water, glitter,
// whitecaps, textures and the optical bands of one sea surface, with the
// three side files only it names (variable wind, glitter sharpening,
// whitecaps). The reader is positional: keywords are skipped unread and only
// the closing "end" is compared.
//
//   Tidecast_data_file ocean 5 5
//   n_points_x  256 1  ...  end           primary grid (with periodic flags)
//   number_aux_oceans  0                  (not 0: a secondary grid block)
//   number_disturbances  1
//   render_disturbances_interior:  black  (version 4 on, with disturbances)
//   disturbance_type:  swell  <block>     one per disturbance
//   box_depth  20                         metres
//   reference_time  0                     seconds
//   surface_type:  flat                   ("round": surface_radius: follows)
//   max_distance  5000
//   doubling_distance  200
//   variable_wind:  no                    ("yes": wind_file: name)
//   wind_direction:  30                   degrees
//   wind_velocity:  8                     metres per second
//   ocean_spectrum_type:  phillips_smoothed   ("glassy": glassy_scale:)
//   jerlov_water_type:  3
//   external_exact:  no                   (else distance, factor, include, ...)
//   glitter:  enhanced                    (200, 201: sharpening lines)
//   whitecaps: no                         (version 2 on)
//   texture_maps:  no                     (version 2 on)
//   sunbeams:  no                         (the cusps line)
//   exclude_items:   no                   (version 4 on)
//   number_of_bands:  1
//   band_ids:  1
//   index_of_refraction:  1.34
//   end
class ocean_input : public surface_object_input {
 public:
  // The ocean file format the writer writes; the reader also takes files
  // that say a reader of up to version 6 can read them.
  static const int file_version = 5;
  static const int newest_reader = 6;

  // Kind 13, "ocean", with the defaults of every field.
  ocean_input();
  ~ocean_input() override;

  // The ocean file at path, through read / write.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // The whole file, header included; the side files it names are read at
  // once. Prints what is wrong and returns 0, the record partly filled.
  int read(std::istream& in);
  // The record as a file of the current version, writing the side files it
  // names (and the disturbances' detail files) too. 0 after a message, for
  // a code with no word or a file that cannot be written.
  int write(std::ostream& out) const;

  // Band ids (0) and the optical arrays for count bands: index of
  // refraction 1.34, a, b, c, k, refl 0.0. A count of 0 leaves none. 0,
  // after a message and keeping the old arrays, when memory runs out or the
  // count is negative.
  int allocate_bands(int count);
  void release_bands();
  // The two glitter saturation arrays, one 0.0 per band. 0 when memory runs
  // out.
  int allocate_saturation();

  // A new record of the class for a disturbance code at the end of the
  // list, owned by the ocean; null after "unable to allocate disturbance
  // grid ".
  TCGrid_details_input* add_disturbance(int code);
  // Unlinks and deletes a record of the list; 0 for one the list does not
  // hold.
  int remove_disturbance(TCGrid_details_input* record);
  void clear_disturbances();
  // The list's record i (0 first), or null.
  TCGrid_details_input* disturbance(int i) const;

  // The side files. Readers replace what the record held only on success.
  int read_variable_wind(const char* name);
  int write_variable_wind(const char* name) const;
  int read_sharpening(const char* name);
  int write_sharpening(const char* name) const;
  int read_whitecaps(const char* name);
  // The whitecap file's fluctuation block, "lattice_size:" to its "end".
  int read_fluctuations(std::istream& in);
  int write_whitecaps(const char* name) const;
  // The whitecap file's contents; name only for the messages.
  int read_whitecap_stream(std::istream& in, const char* name);
  int write_whitecap_stream(std::ostream& out) const;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold the surface's counts and the ocean's eleven after them
  // (see the layout in the packing source).
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  TCGrid_details_input primary_grid;  // its n_points lines carry the periodic flags
  TCGrid_details_input secondary_grid;
  int number_aux_oceans;
  int n_disturbances;
  // The list, in file order: an owned array of owned records, grown as
  // records are added.
  TCGrid_details_input** disturbances;
  double box_depth;       // metres below the surface the box reaches
  double reference_time;  // seconds; the waves' time 0
  int round_surface;      // 0 flat, 1 round
  double surface_radius;  // metres
  double max_distance;    // metres
  double doubling_distance;
  int variable_wind;
  char wind_file[256];
  int n_wind_values;
  double* wind_time;              // seconds
  double* wind_speed;             // metres per second
  double* wind_direction_series;  // radians
  double wind_direction;          // radians
  double wind_velocity;           // metres per second
  int ocean_spectrum_type;        // 101, 103 or 104 once read
  double glassy_scale;
  int jerlov_water_type;  // 0: the file gives the optics per band
  int external_exact;     // 0 none, 1 "yes", 3 "yes_no_air"
  double max_exact_distance;
  double exact_sharpening_factor;
  int include;            // 0 nothing, 1 above, 2 below, 3 everything
  int reflection_method;  // 0 specular, 1 averaged, 2 total
  int shadow_method;
  double max_shadow_fraction;
  double shadow_distance;  // metres
  int glitter;             // 0 off, 1 yes, 200 enhanced, 201 exactenhanced, 202 exact
  int sharpening_type;     // 1: by angle from the sharpening file
  char sharpening_file[256];
  double sharpening_factor;
  int n_sharpening_angles;
  double* sharpening_angle;  // radians
  double* sharpening_value;
  double glitter_threshold;
  int saturation_type;
  int saturation_band;  // counted from 0 (from 1 on file)
  double saturation_threshold;
  int n_saturation_values;  // entries of the two saturation arrays
  double* sub_saturation_scale;
  double* saturation_values;
  int whitecaps;
  char whitecap_file[256];

  // The whitecap file.
  double whitecap_center_x;  // metres: centre of the finest grid
  double whitecap_center_y;
  double whitecap_length_x;  // metres: extent of the finest grid
  double whitecap_length_y;
  double whitecap_interval_x;  // metres: its cell spacing
  double whitecap_interval_y;
  double whitecap_max_distance;              // metres the coarsest grid must reach
  double whitecap_reference_time;            // seconds: time of step 0
  double whitecap_time_increment;            // seconds per step
  double whitecap_initialization_time;       // seconds of spin-up
  double whitecap_initialization_increment;  // seconds per spin-up step
  double whitecap_formation_time;            // seconds to full reflectivity
  double whitecap_decay_time;                // seconds, e-folding of foam
  double acceleration_threshold_low;         // units of g: breaking starts
  double acceleration_threshold_high;        // units of g: reflectivity saturates
  double whitecap_reflectivity_low;
  double whitecap_reflectivity_high;
  double smear_x;  // metres
  double smear_y;
  double smear_t;                   // seconds
  double acceleration_time_offset;  // seconds
  int whitecap_generation;          // 0 none, 1 input, -1 output, -2, -3, 2 by frames
  char initial_state_file[256];
  char frame_file[256];
  int fluctuation_mode;  // 0 none, 1 random lattice, 2 textures
  int fluctuation_n_x;
  int fluctuation_n_y;
  double fluctuation_dx;  // metres
  double fluctuation_dy;
  int fluctuation_seed;
  double fluctuation_length_scale;  // metres
  double fluctuation_power_law;
  double fluctuation_time_scale;  // seconds
  double fluctuation_log_normal_width;
  TCOcean_textures_input whitecap_textures;

  int texture_maps;  // 1: the inherited textures were read
  int cusps;
  double cusps_scale;
  int exclude_mask;                  // 1 glitter, 2 textures, 4 whitecaps; never written
  int render_disturbances_interior;  // 0 black, 1 flat, 2 natural
  int number_of_bands;
  int* band_ids;
  double* index_of_refraction;
  double* a;  // absorption, per metre
  double* b;  // scattering, per metre
  double* c;  // attenuation, per metre
  double* k;  // diffuse attenuation, per metre
  double* refl;

 private:
  // Reading in the order of the file, one step per group of lines; each
  // returns 0 after its message.
  int read_grids(std::istream& in);
  int read_disturbances(std::istream& in, int version);
  int read_surface_and_wind(std::istream& in);
  int read_spectrum_and_water(std::istream& in);
  int read_external_exact(std::istream& in, int version);
  int read_glitter(std::istream& in);
  int read_whitecaps_and_textures(std::istream& in, int version);
  int read_exclusions(std::istream& in, int version);
  int read_bands(std::istream& in);

  // Every word the writer needs exists; else 0 after the message.
  int has_words() const;
  int write_disturbances(std::ostream& out) const;
  int write_optics(std::ostream& out) const;
  void write_values(std::ostream& out, const char* keyword, const double* values, int stored) const;

  // Packing: the ocean's eleven counts (layout in the packing source), from
  // the received header while there is one.
  static const int packed_counts = 11;
  void ocean_counts(long long counts[]) const;
  int unpack_ocean_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                        const char* chars, int char_bytes);
  int has_received_counts_;
  long long received_[packed_counts];

  int disturbance_capacity;

  ocean_input(const ocean_input&);
  ocean_input& operator=(const ocean_input&);
};

#endif
