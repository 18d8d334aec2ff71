#ifndef TC_HEIGHT_GRID_H
#define TC_HEIGHT_GRID_H

#include "Height_grid_details_input.h"
#include "TCSurface_field.h"

// An imported map on the sea, read from an HDF grid file into the detail
// lattice the holder lends it. The height grid adds its heights times a
// scale from a key table; the multiplier grid multiplies the sea by its
// factors raised to the power of that scale. The file is read again at
// every evolution, so nothing but the key table carries from frame to
// frame and frames may be evaluated in any order.
class TCHeight_grid : public TCSurface_field {
 public:
  // Copies the key table and the motion, sets kind -7 and reads the file
  // once: a failed read ends the process with "unable to allocate space for
  // height grid" and status 1, whatever the fault was.
  TCHeight_grid(const Height_grid_details_input& input, float* buffer);
  ~TCHeight_grid() override;

  // Reads the file and multiplies every value by the scale at t (seconds
  // since the ocean's reference time). A failed read warns and zeroes.
  void evolve_heights(double time) override;
  // The file data already sit in the buffer: nothing to do; returns 0.0.
  double transform_to_lattice() override;
  // A map standing still in time has no vertical acceleration: zeroes.
  void evolve_acceleration_into(float* array, double time, double smear_x, double smear_y,
                                double smear_t) override;

  // Linear in the key table, extrapolated along the first or last segment;
  // a single key is a constant, none gives 1.0.
  double scale_at(double time) const;
  // The detail offset (metres) that puts the grid's centre at its position
  // at time t, turned by its orientation and moved along its direction.
  void offset_at(double time, double& offset_x, double& offset_y) const;
  // The same, as every travelling field answers it.
  int moving_offset(double& x, double& y, double time) const override;
  // Reads the data set into the buffer: 1, or 0 after the file's own
  // message ("can not be opened", or the dimension report).
  int read_field_file() const;

  int number_of_keys;
  double* key_times;   // seconds
  double* key_scales;  // a factor (height grid) or a power (multiplier grid)
  double velocity;     // metres per second
  double direction;    // radians
  double orientation;  // radians
  double position_x;   // metres
  double position_y;
  char field_file[256];
  double current_scale;

 protected:
  // The few words that differ between the two kinds.
  struct Kind_words {
    int kind;
    const char* size_failure;  // first word of the dimension report
    const char* construction_failure;
    const char* read_failure;
    const char* fill_warning;
  };
  TCHeight_grid(const Height_grid_details_input& input, float* buffer, const Kind_words& words);
  void fill(float value) const;

  Kind_words words_;

 private:
  void set_up(const Height_grid_details_input& input);

  TCHeight_grid(const TCHeight_grid&);
  TCHeight_grid& operator=(const TCHeight_grid&);
};

class TCMultiplier_grid : public TCHeight_grid {
 public:
  // Kind -8; a failed first read ends the process with "unable to allocate
  // space for multiplier grid" and status 1.
  TCMultiplier_grid(const Height_grid_details_input& input, float* buffer);
  ~TCMultiplier_grid() override;

  // Reads the file and raises every value to the power of the scale at t
  // when it is not 1.0. A failed read warns and fills with 1.0.
  void evolve_heights(double time) override;
  // The identity of a product: fills the array with 1.0.
  void evolve_acceleration_into(float* array, double time, double smear_x, double smear_y,
                                double smear_t) override;

 private:
  TCMultiplier_grid(const TCMultiplier_grid&);
  TCMultiplier_grid& operator=(const TCMultiplier_grid&);
};

#endif
