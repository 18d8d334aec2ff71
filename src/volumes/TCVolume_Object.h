#ifndef TC_VOLUME_OBJECT_H
#define TC_VOLUME_OBJECT_H

#include "TCSpectrum.h"
#include "TCVector.h"
#include "box_class.h"

class TCMatte_sample;
class TCVolume_Object_class;

// Base of every participating medium (cloud, spray): a box-shaped lattice of
// density with optical coefficients and a phase function per band, lit by
// the sun through its own optical depth and marched along each ray. The
// kinds say what the density is; this class owns the optics, the field of
// optical depth towards the sun and the march.
//
// Lattice point (i, j, k) sits at (-X/2 + i Lx, -Y/2 + j Ly, -Z/2 + k Lz) in
// the object's frame, X = (n_x - 1) Lx and so on: the box is the lattice.
class TCVolume_Object : public box_class {
 public:
  // Samples one march may take.
  static constexpr int MAX_INTEGRAND = 2500;
  static constexpr int phase_angles = 181;

  // Copies the record's lattice, bands, coefficients and phase table.
  // Exits 1 when memory runs out or the phase table is not of 181 angles.
  explicit TCVolume_Object(const TCVolume_Object_class& input);
  ~TCVolume_Object() override;

  // The box, then the "VOLUME PARAMETERS" block.
  void print_dimensions() override;
  // The sun in the box's frame and the irradiance reaching the box's centre
  // (this object left out); the field of optical depth to the sun is made
  // again when the sun has moved or the density changed.
  void prepare_frame() override;
  // One march along a world ray; what out holds on entry is the radiance
  // behind the volume, and out receives scattered + T * that.
  void radiance(const TCRay& ray, TCSpectrum& out) override;
  // What of the light along a world ray gets through: out is multiplied by
  // the transmission exp(-extinction * column) per band (the coefficient the
  // sun's beam is dimmed by), so the volume shades what lies in its shadow.
  void radiance_from(int source_object, const TCRay& ray, TCSpectrum& out) override;
  void image_contour(TCView& view, object_contour& contour) override;
  // A medium hides nothing by holding the view: a camera inside a fog bank
  // still sees what lies beyond it, so no point counts as inside.
  int point_inside(const TCVector& point) override;
  void image_reflected(TCView& view, object_contour& contour) override;
  void image_surface_line(TCView& view, object_contour& contour) override;

  // Lattice look-ups; in the base each gives 0 or does nothing.
  virtual int face_scan_in(const TCRay& ray, TCVector& hit, double& distance);
  virtual int face_scan_out(const TCRay& ray, TCVector& hit, double& distance);
  virtual double density_at_ray(const TCRay& ray, double distance);
  // Density at a point of the object's frame and the density column from
  // it to the box's edge towards the sun (density times metres).
  virtual double density_point(const TCVector& point, double& density, double& extinction);
  virtual double density_lattice(const TCVector& point, double& density);
  // A kind with fine structure below the lattice gives the fraction of a
  // step its sub-steps take (0: none).
  virtual double small_scale_factor();
  virtual double extinction_scale();
  virtual double density_of_index(long index);
  virtual void set_extinction(long index, double value);
  virtual double get_extinction(long index);
  virtual double phase_scale();

  // The phase table of object band m at scattering angle a (radians),
  // linear between whole degrees; P[180] at 180 degrees, 0 beyond.
  double phase_lookup(double angle, int m) const;
  // Fades the phase function towards isotropic once the ray's scattering
  // optical depth passes 2; 1.0 for single scattering.
  double multiple_scattering_factor(double scattering_depth, double phase) const;
  // Column of density towards the sun at every lattice point, by walking the
  // lattice plane by plane from the sun's side along up to three axes.
  void make_extinction_field();

  // The march along a world ray into out's bands. background (per band of
  // out, may be null for none) is what lies behind; far_limit cuts the path
  // (metres from the ray's origin). opacity_flag set: the view path is
  // dimmed by absorption alone. matte receives this object's values.
  // double_step doubles the step. transmission (per band of out, may be
  // null) receives T, entry the distance where the density begins along
  // the ray (the box's entry when it holds none) and exit where the march
  // ends. 1 when the ray crossed the box, else 0 with out = background.
  int integrate_ray(const TCRay& world_ray, TCSpectrum& out, const double* background,
                    double far_limit, int opacity_flag, TCMatte_sample* matte, int double_step,
                    double* transmission = nullptr, double* entry = nullptr,
                    double* exit = nullptr);
  // The imaging all three passes share. total_radiance_flag 1 for a view
  // with its own bands (the camera's), 2 for an object's sub-view; anything
  // else ends the run.
  void image_volume(TCView& view, object_contour& contour, int total_radiance_flag);

  // Column of density along the object-frame ray from distance t0 to t1,
  // by the trapezoid at the march's step.
  double density_column(const TCRay& object_ray, double t0, double t1);
  // The lattice's smallest nonzero spacing (metres), 0 for none.
  double smallest_spacing() const;
  // The march's step along an object-frame direction, before doubling.
  double march_step(const TCVector& d) const;
  // Band index of the object for a band id, or -1.
  int object_band(int id) const;

  int n_x, n_y, n_z;
  double spacing[3];  // metres between lattice points
  int num_bands;
  TCSpectrum band_list;     // the object's band ids
  double* extinction_band;  // per unit density per metre, towards the sun
  double* scattering_band;
  double* absorption_band;
  double** phase_table;  // [band][181], per steradian
  double threshold_density;
  int scattering_method;  // 1 multiple, 0 single
  double integration_scale;
  double cutoff;  // -ln of the transmission at which a march stops
  double subdivide_threshold;
  TCVector sun_direction;   // towards the sun, object frame
  TCSpectrum sun_radiance;  // irradiance reaching the box, per object band
  double step_limit;
  // Set by a kind when its density has changed since the field was made.
  int density_changed;

 protected:
  // Samples of one march, per band of the asking spectrum.
  struct March_arrays {
    int n_bands;
    double** integrand;  // [band][MAX_INTEGRAND]
    double* density;     // [MAX_INTEGRAND]
    double* tau;
    double* sun_column;
    double* coefficients;  // 6 per band: e, s, x, P, sum, running
  };
  int allocate_march(March_arrays& arrays, int n_bands);
  void free_march(March_arrays& arrays);

 private:
  // One axis's walk of the field into column[].
  void walk_axis(int axis, double* column);
  // Point of a lattice index in the object's frame.
  TCVector lattice_point(int i, int j, int k) const;
  long lattice_index(int i, int j, int k) const;
  // Length of the sun ray from an object-frame point to the box's edge.
  double sun_path(const TCVector& point) const;
  // Pixels of view the box may cover: 0 when none.
  int box_window(const TCView& view, int& row0, int& row1, int& col0, int& col1) const;

  March_arrays shared_;
  int shared_in_use_;
  int sun_known_;
  TCVector field_sun_;  // the sun the field was made for

  TCVolume_Object(const TCVolume_Object&);
  TCVolume_Object& operator=(const TCVolume_Object&);
};

#endif
