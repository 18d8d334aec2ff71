#ifndef TC_WHITECAPS_H
#define TC_WHITECAPS_H

#include <iosfwd>

class ocean_input;
class TCSpectrum;
class TCFluctuation_field;

// The foam of one cell that has broken: its last two whitecap steps. Readers
// see step_weight * previous + (1 - step_weight) * latest.
class Whitecap_point {
 public:
  Whitecap_point();

  float acc_previous;  // units of g, up positive
  float acc_latest;    // the most recent breaking acceleration
  float refl_previous;
  float refl_latest;
  float trans_previous;  // share of the water's own radiance left visible
  float trans_latest;
  int released;  // 0 while still breaking, 1 once fading has begun
};

// The sea's vertical acceleration at one time, as the whitecaps sample it.
class Whitecap_acceleration {
 public:
  virtual ~Whitecap_acceleration();
  // Metres per second squared, up positive, at a point of the ocean's frame.
  virtual double acceleration_at(double x, double y) = 0;
};

// Whitecaps as an automaton on a pyramid of grids around a sampling centre.
// Grid g has cells 2^g times the finest and the same n_x by n_y nodes; a cell
// holds a record once the sea beneath it has broken (acceleration below -a1
// in units of g) and loses it when its foam has faded. Every time_increment
// seconds each node samples the acceleration and moves its record's
// reflectivity and transmission; frames in between are read by weighting the
// last two steps.
class TCWhitecaps {
 public:
  // Fields from the ocean's whitecap record, grids set up but not allocated.
  explicit TCWhitecaps(const ocean_input& input);
  virtual ~TCWhitecaps();

  // The grid tables (all cells empty) and one scratch value per band of the
  // object list's band table. 0 after its message when memory runs out or
  // the band table does not exist yet.
  int allocate(const TCSpectrum* objects_spectrum);

  // Brings the foam to a frame at time seconds: loads or spins up the first
  // state, steps forward, reads or writes the state files the generation
  // mode asks for. Ends the run (status 1) with its message on a time before
  // the reference time, a frame going back past a step or a state file that
  // fails; returns 1 otherwise.
  int update(double time, int frame);

  // Foam reflectivity r and transmission t at a point of the ocean's frame,
  // interpolated over the finest grid that holds it. 0 where there is no
  // foam (r 0 and t 1 beyond the coarsest grid), 1 where r is above 0.
  int whitecap_at(double x, double y, double& reflectivity, double& transmission) const;

  // The per-band irradiance (W/m^2 per band) that lights the foam: from the
  // sky, and from the sun on a surface facing it. Borrowed; null reads as 0.
  void set_irradiance(const double* downwelling, const double* sun_band);

  // Lays foam over the water radiance of every band: radiance becomes
  // t * radiance + whitecap_radiance, with whitecap_radiance the foam's own
  // light (Lambertian, reflectivity r). Without foam whitecap_radiance is 0
  // and radiance is left alone; the result is then 0, else 1. sun_cosine is
  // the cosine of the sun's angle from the surface normal; footprint and
  // view_cosine serve only the foam textures, which are not built yet.
  int blend(double x, double y, double sun_cosine, double footprint, double view_cosine,
            double radiance[], double whitecap_radiance[]);

  // The acceleration of the whole sea state at time T, owned by the caller
  // afterwards; null when it cannot be built. The ocean provides it; without
  // one the whitecaps cannot step.
  virtual Whitecap_acceleration* acceleration_at_time(double T);

  // Reflectivity a cell breaking at A (units of g) heads for.
  double target(double A) const;
  // Transmission that goes with a reflectivity r.
  double transmission_of(double r) const;
  // The release factor of a record that breaks no more: acc_before its last
  // breaking acceleration, A the first that is not.
  double release_factor(double acc_before, double A) const;
  // Moves one cell by a sample A (units of g); may create or delete the
  // record.
  void update_cell(Whitecap_point*& cell, double A);
  // decay_factor, fade_step and rise_step for steps of increment seconds.
  void set_step_constants(double increment);
  // One whitecap step: samples every node at T + time_offset.
  void increment(double T);

  // Record of a node, or null (also for a node outside the tables).
  const Whitecap_point* point(int g, int i, int j) const;
  // The name of the static state of a frame: frame_file.NNNN.wcs.
  void static_state_name(int frame, char name[300]) const;

  // The full state (every record as it is) and the static state (each
  // record's blend at the current step_weight). Readers take a file only if
  // its grids match these and replace every record on success; 0 after the
  // message otherwise, the records as they were.
  int write_state(const char* name) const;
  int read_state(const char* name);
  int write_static_state(const char* name) const;
  int read_static_state(const char* name);

  double time_increment;  // seconds per step
  double reference_time;  // seconds: time of step 0
  double initialization_time;
  double initialization_increment;
  double formation_time;  // seconds to full reflectivity
  double decay_time;      // seconds: e-folding of foam after breaking
  double decay_factor;    // per step, foam above R0
  double fade_step;       // reflectivity lost per step below R0
  double rise_step;       // reflectivity gained at most per step
  double length_x;        // metres: extent of the finest grid
  double length_y;
  double center_x;  // metres
  double center_y;
  double interval_x;  // metres: node spacing of the finest grid
  double interval_y;
  double smear_x;  // metres, seconds: smearing of the acceleration
  double smear_y;
  double smear_t;
  double time_offset;   // seconds added to the step time when sampling
  double max_distance;  // metres the coarsest grid must reach
  int num_grids;
  double* grid_scale;  // 1, 2, 4, ...
  double inv_interval_x;
  double inv_interval_y;
  int n_x;
  int n_y;
  double threshold_low;  // a1, units of g
  double threshold_high;
  double reflectivity_low;  // R0
  double reflectivity_high;
  int step;  // -1 until the first state exists
  double step_weight;
  Whitecap_point**** grids;  // grid, i, j to a record or null
  char initial_state_file[256];
  char frame_file[256];
  int generation_mode;
  int fluctuation_mode;
  int fluctuation_n_x;
  int fluctuation_n_y;
  double fluctuation_dx;  // metres
  double fluctuation_dy;
  int fluctuation_seed;
  double fluctuation_length_scale;
  double fluctuation_power_law;
  double fluctuation_time_scale;  // seconds
  double fluctuation_log_normal_width;
  // The small-scale fluctuation field of fluctuation_mode 1, owned; null in
  // the other modes.
  TCFluctuation_field* fluctuation;
  double* band_scratch;
  int n_bands;

 private:
  TCWhitecaps(const TCWhitecaps&);
  TCWhitecaps& operator=(const TCWhitecaps&);

  void initial_distribution();
  // Frees every record and the tables.
  void free_tables();
  // The records after a file's header, into the flat table cells (grid, i,
  // j order); full records or the static pair of values.
  int read_records(std::istream& in, const char* name, int full, Whitecap_point** cells);
  // Reads the records and, only when all were read, puts them in the tables.
  int read_body(std::istream& in, const char* name, int full);
  int header_matches(const int header[3]) const;
  long long cell_count() const;

  const double* downwelling_irradiance;
  const double* sun_band_irradiance;
};

#endif
