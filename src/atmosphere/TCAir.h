#ifndef TC_AIR_H
#define TC_AIR_H

#include "TCGaussian_table.h"
#include "TCObject.h"
#include "TCRay.h"
#include "TCSpectrum.h"
#include "TCVector.h"

class TCAir_input;
#include "air_table.h"
class TCBand;
class TCScene_tracer;

// The atmosphere: a molecular and an aerosol layer, each of exponential
// density over a flat or round base, lit by the scene's sun in single
// scattering. It stands behind every other object: its image_contour has the
// others paint first and then adds, pixel by pixel, the light scattered into
// the ray and dims what the ray struck by the same path's transmission.
//
// Frame: the air's own. Heights are z over a flat base, and
// z + (x^2 + y^2) / 2R over a round base of radius R, whose sphere touches
// the origin with its centre at (0, 0, -R). Distances in metres, wavelengths
// in micrometres, angles in radians.
//
// The public path operations take world rays (unit directions) and answer in
// the bands their spectra name; a band the air lacks gets 0.
class TCAir : public TCObject {
 public:
  // The bands are looked up in the runtime scene's band table when it is
  // given, else in that of the input's own list; an undefined band ends the
  // run (status 1), as does a layer that cannot be set up or memory running
  // out. The sun values come from the runtime scene's sun, none without one.
  explicit TCAir(const TCAir_input& input, TCScene_tracer* runtime_scene = nullptr);
  ~TCAir() override;

  void print_dimensions() override;
  // The base operations, then the sun values again.
  void set_position(const TCVector& position_in, double chi_in, double phi_in,
                    double theta_in) override;
  void set_time(double t) override;
  // The sky along a world ray: path radiance to infinity, 0 for a ray at or
  // below a flat horizon or into the round base; uniform air its own values.
  void radiance(const TCRay& ray, TCSpectrum& out) override;
  // What arrives along the world ray, carried back to its origin. The
  // nearest other object (not source_object) is asked first, with this air
  // as its source; when any band comes back positive it is dimmed by the
  // transmission to the hit and the path radiance up to it is added. With
  // nothing hit, out is dimmed by the transmission to the top of the air:
  // the sun's 1.0 becomes the air's transmission.
  void radiance_from(int source_object, const TCRay& ray, TCSpectrum& out) override;
  // The scene first, then path radiance, transmission and the sun's disc.
  // Over a round base the path radiance comes from tables of this view's
  // rays where they hold it, and exactly where not; a flat base, uniform
  // air or external_exact set works every ray out exactly. The result stays
  // in the contour's layer with first_flag set, as the list takes it from
  // the object holding the view.
  void image_contour(TCView& view, object_contour& contour) override;
  // Object frame: 1 on or above the base (the exact sphere over a round one).
  int point_inside(const TCVector& point) override;
  // Nothing is ever struck: 0, distance 0, hit at the ray's origin.
  int intersect(const TCRay& ray, TCVector& hit, double& distance) override;

  // The two single-scattering integrals between s_start and s_end along the
  // ray, sun irradiance included; both 0 when s_start >= s_end.
  void path_radiance(const TCRay& ray, TCSpectrum& molecular, TCSpectrum& aerosol, double s_start,
                     double s_end);
  // band holds the molecular integrals and receives the radiance; aerosol's
  // integrals are taken at the same positions.
  void scatter_phase(const TCRay& ray, TCSpectrum& band, const TCSpectrum& aerosol);
  // 1.0 in every band for a path of no length.
  void path_transmission(const TCRay& ray, TCSpectrum& out, double s_start, double s_end);

  // From the scene's sun, in this air's frame: present, irradiance per band,
  // disc size, angles and direction; (0, 0, -1) and zeros without a sun.
  void set_sun_values();

  // The same operations on rays already in the air's frame, with one value
  // per air band in arrays of number_of_bands.
  void local_path_radiance(const TCRay& ray, double* molecular, double* aerosol, double s_start,
                           double s_end);
  void local_path_transmission(const TCRay& ray, double* out, double s_start, double s_end);
  void local_scatter_phase(const TCVector& direction, double* molecular, const double* aerosol);

  // The table for a view already in the air's frame, laid out over the
  // whole picture the view is part of and filled from the contour; null for
  // a picture of fewer than 64 pixels imaged for the world view (its table
  // would cost more integrals than its rays). rows and cols are the patch
  // imaged. With world_view (the same view in the world's frame) the
  // whole picture's columns next to the patch are imaged for their depths,
  // so that cells beyond the patch hold what they would in the whole; without
  // it the patch is its own picture. No auxiliary table is built: its
  // making hung on the count of misses in the patch (aux_table is left
  // null). The caller deletes the table.
  void build_tables(const TCView& local, object_contour& contour, int rows, int cols,
                    air_table*& main_table, air_table*& aux_table, TCView* world_view = nullptr);
  // Depths of the whole picture's columns first_col up to end_col of view,
  // imaged from every other object, into ends.
  void image_depths(const TCView& view, const object_contour& contour, int first_col, int end_col,
                    air_table::pixel_ends& ends);

  // Height over the base of a point in the air's frame.
  double height_of(const TCVector& p) const;
  // Where a ray meets the round base's exact sphere: the two roots, 0 when
  // it misses or only grazes it.
  int sphere_roots(const TCVector& o, const TCVector& d, double& near, double& far) const;
  // Whether a ray in the air's frame, from a point at or above the base,
  // strikes the base ahead, and at what distance.
  int base_ahead(const TCRay& local, double& distance) const;
  // The round base's column (1/H) * integral of exp(-z(s)/H) over [s1, s2],
  // s2 at or beyond 99999999.0 meaning infinity; optical depth = tau * this.
  double round_column(const TCVector& o, const TCVector& d, double s1, double s2, double h) const;

  int number_of_bands;
  TCSpectrum band_list;
  TCSpectrum band_list_copy;
  int air_type;       // 0 uniform, 1 clean, 2 dirty, 3 haze
  int surface_shape;  // 1 round, 0 flat
  double surface_radius;
  int external_exact;
  double sun_max_radiance;

  int sun_present;
  double* sun_irradiance;
  double sun_solid_angle;  // steradians
  double sun_cos_radius;
  double sun_zenith;
  double sun_azimuth;
  TCVector sun_direction;

  double* uniform_radiance;
  double* lambda_low;
  double* lambda_high;
  double* tau_molecular;
  double* tau_aerosol;
  double* aerosol_g1;
  double* aerosol_g2;
  double* aerosol_w1;  // already divided by 4 pi
  double* aerosol_w2;
  double molecular_height_m;
  double aerosol_height_m;
  double molecular_visibility;
  double aerosol_visibility;
  TCGaussian_table gaussian;

  // The file's own numbers, for the printout.
  double molecular_height;
  double molecular_density;
  double molecular_wavelength_dependence;
  double aerosol_height;
  double aerosol_density;
  double aerosol_scattering_factor;
  char air_file[256];

  // Sub-ray evaluations of the last image_contour: worked out exactly, and
  // served by the main and the auxiliary table; and the covered pixels the
  // main table could not serve.
  long exact_count;
  long main_table_count = 0;
  long aux_table_count = 0;
  long table_misses = 0;

 private:
  // Layer setups: 0 when a scale height or an optical depth is unusable.
  int setup_molecules(double lambda_mean);
  int setup_dirty(const double* centre);
  int setup_haze(const double* haze_width, const double* haze_strength);

  void flat_path_radiance(const TCRay& ray, double* molecular, double* aerosol, double s_start,
                          double s_end);
  // One layer's closed form over a flat base, added to out.
  void flat_layer(double mu, double oz, double s1, double s2, double mu_s, double h,
                  const double* tau, double* out) const;
  void flat_path_transmission(const TCRay& ray, double* out, double s_start, double s_end);
  void round_path_radiance(const TCRay& ray, double* molecular, double* aerosol, double s_start,
                           double s_end);
  void round_path_transmission(const TCRay& ray, double* out, double s_start, double s_end);
  // Romberg integration of the round integrand over one lit segment.
  void integrate_segment(const TCRay& ray, double s_start, double a, double b, double* result);
  // Integrand at s: per band, exp(-z/H) times the transmission from s_start
  // and towards the sun, molecular then aerosol.
  void integrand(const TCRay& ray, double s_start, double s, double* out);
  int layers() const { return air_type > 1 ? 2 : 1; }

  // Scratch of the path operations: scratch_slots arrays of number_of_bands
  // values. Slots 0 to 2 serve the public operations, 4 to 17 the round
  // integration, 18 and 19 the flat forms.
  static constexpr int scratch_slots = 20;
  double* scratch(int slot) { return work_ + slot * number_of_bands; }
  double* work_;

  TCAir(const TCAir&);
  TCAir& operator=(const TCAir&);
};

#endif
