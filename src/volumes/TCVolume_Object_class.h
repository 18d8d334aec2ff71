#ifndef TC_VOLUME_OBJECT_CLASS_H
#define TC_VOLUME_OBJECT_CLASS_H

#include <iostream>

#include "box_input.h"

// The input record shared by every participating medium (cloud, spray): a
// box-shaped lattice of density, optical coefficients per band and a phase
// function per band. The cloud and spray files embed this section after
// their own header.
//
// On file, keywords skipped unread, values in this order:
//   Tidecast_data_file volume 1 1
//   number_points_x: 11
//   number_points_y: 11
//   number_points_z: 6
//   lattice_spacing_x: 10
//   lattice_spacing_y: 10
//   lattice_spacing_z: 20
//   number_of_bands 2
//   band_id  1 2
//   absorption:  0.001 0.002
//   scattering:  0.1 0.1
//   extinction:  0.1 0.1
//   phase_function_file: phase_functions.dat
//   threshold_density: 0
//   scattering_method: multiple        (any other word: single)
//   integration_scale: 1
//   transmission_cutoff: 0.0001
//   subdivide_threshold: 0
//   end
//
// The phase file holds, per band in order, the band id (not compared) and
// 181 pairs of angle (degrees, 0 to 180, not read into the record) and value.
class TCVolume_Object_class : public box_input {
 public:
  // No lattice, no bands, phase file "phase_functions.dat", 181 angles,
  // multiple scattering.
  TCVolume_Object_class();
  ~TCVolume_Object_class() override;

  // A file holding the volume section alone; the path is named when it
  // cannot be opened or read.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // Header to "end", then the phase file it names. 0 after a message;
  // scalar fields read before a failure keep their new values, while the
  // band arrays always match num_bands.
  virtual int read_stream(std::istream& in);
  // 0 for a scattering method with no word, or a failed stream.
  virtual int write_stream(std::ostream& out) const;
  // The section alone, header to "end", without its phase file.
  int read_section(std::istream& in);
  // Fills phase_functions from the named file, keeping the old values on
  // any failure. The arrays must be allocated and hold 181 angles.
  int read_phase_file(const char* path);

  // Band arrays for count bands (ids 1.., values 0) and phase arrays of
  // angles values each (0), replacing what was there. 0 after a message,
  // keeping the old arrays, for a count out of range or when memory runs out.
  int allocate_arrays(int count, int angles);
  // Lattice points in all, counted wide.
  long long number_of_points() const;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold at least the root's ints, the band and angle counts.
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  // Lattice points along x, y, z (at least 1 once a file is read).
  int number_points_x;
  int number_points_y;
  int number_points_z;
  // Metres between lattice points; the box is (n - 1) times this along each
  // axis, and a read sets length so.
  double lattice_spacing_x;
  double lattice_spacing_y;
  double lattice_spacing_z;

  // The arrays below hold num_bands entries (null before any are made).
  int num_bands;
  int* band_id;
  // Per unit of density per metre: absorption and scattering along the
  // ray, extinction applied to the optical depth towards the sun.
  double* absorption;
  double* scattering;
  double* extinction;

  char phase_function_file[256];
  // Values per band in phase_functions; only 181 (one a degree, 0 to 180)
  // can be read from a phase file.
  int n_phase_function_angles;
  // phase_functions[band][angle], per steradian, angle in whole degrees.
  double** phase_functions;

  // Density at or below which a lattice point counts as empty.
  double threshold_density;
  // 1 multiple, 0 single.
  int scattering_method;
  // Fraction of a step taken by a sub-step; 1.0 means no sub-steps.
  double integration_scale;
  // Transmission at which a march stops (held as -ln of it at run time).
  double transmission_cutoff;
  // Fraction of a ray's integrand above which an interval is sub-stepped.
  double subdivide_threshold;

 private:
  void release_arrays();
  int read_bands(std::istream& in);
  int lattice_is_sound() const;
  int unpack_volume_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                         const char* chars, int char_bytes);
  int packed_band_count() const { return has_received_counts_ ? received_bands_ : num_bands; }
  int packed_angle_count() const {
    return has_received_counts_ ? received_angles_ : n_phase_function_angles;
  }

  // Counts taken from a packed int array; they stand in for the record's
  // own until the next pack or unpack.
  int has_received_counts_;
  int received_bands_;
  int received_angles_;

  TCVolume_Object_class(const TCVolume_Object_class&);
  TCVolume_Object_class& operator=(const TCVolume_Object_class&);
};

#endif
