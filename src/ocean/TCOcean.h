#ifndef TC_OCEAN_H
#define TC_OCEAN_H

#include <iostream>

#include "TCGrid.h"
#include "TCSurface_object.h"

class TCDisturbed_grid;
class TCGrid_details_input;
class TCSurface_field;
class TCWave_spectrum;
class TCTexture_plane;
class TCOcean_textures_input;
class object_contour;
class ocean_input;

// The sea of a scene: a box-shaped surface object around one lattice of
// wind waves, with up to one further ocean lattice and any number of
// disturbances (swell, imported height and multiplier maps, walls, ...)
// combined with it where the surface is sampled. Built from an ocean file's
// record by construct(); brought to each frame's time by update_to_time(),
// which sizes the box to the waves.
class TCOcean : public TCSurface_object {
 public:
  static const int most_fields = 100;

  // Disturbance and grid codes of the field table.
  static const int code_ocean_grid = 1;
  static const int code_reflect = -1;
  static const int code_deform = -2;
  static const int code_wall = -3;
  static const int code_ripple = -4;
  static const int code_swell = -5;
  static const int code_wake = -6;
  static const int code_height_grid = -7;
  static const int code_multiplier_grid = -8;
  static const int code_boat = -9;

  // What the ocean keeps of each field besides the field itself.
  struct Field_entry {
    int field_code;
    int n_x, n_y;
    double dx, dy;  // metres
    int periodic_x, periodic_y;
    double centre_x, centre_y;  // metres
    double start_time;          // seconds, for kinds that move
    const TCGrid_details_input* record;
    char spectrum_file[256];
    char detail_file[256];
  };

  // The box and the pose of the record; nothing else until construct.
  explicit TCOcean(const ocean_input& input);
  ~TCOcean() override;

  // Builds the sea from its record, in the order the messages name: 1, or 0
  // after its line (the object is then not used). Some failures exit. Needs
  // the scene (its band table) when the water type is computed per band.
  int construct(const ocean_input& input);

  // The frame update and the per-frame sun and sky update.
  void set_time(double t) override;
  void prepare_frame() override;

  // Brings the surface to time t (seconds of the scene): every field in
  // its order, the height range, the box, whitecaps.
  void update_to_time(double t);
  // The box reaches from box_depth below the mean surface to top above it.
  void set_box_top(double top);
  // Prints its line and evolves every field's velocity potential to t.
  void evolve_potentials(double t);
  // Height (metres over the mean surface) and slopes at a box-frame x, y,
  // without the round drop.
  double surface_height(double x, double y);
  void surface_slope(double x, double y, double& dzdx, double& dzdy);
  // 1 when a point of the sea (metres, the lattice's frame) lies under a
  // ship's hull at the current time: a wake's hull ellipse or rectangle.
  int hull_covers(double x, double y) const;
  // A byte per pixel, 1 under a boat's hull; zero without a boat or wake.
  void hull_mask(unsigned char* buffer, int n_cols, int n_rows);
  // The light of the water (TCOcean_radiance.cpp). Sides are 1 from above
  // and -1 from below; tables index them 0 and 1.

  // Radiance leaving the surface at point (box frame) with unit normal
  // along a world ray from the camera: sky and water by the tables, the
  // sun's glint in closed form. matte_values, when not null, hold one
  // object's matte planes (per-band codes at n_bands * code + band).
  void surface_radiance(const TCRay& ray, const TCVector& point, const TCVector& normal,
                        TCSpectrum& spectrum, int side, float* matte_values,
                        double footprint) override;
  void set_footprint(double scale) override;
  void set_reflection_footprint(double scale) override;
  // The hull matte first, when the camera asks for it, then the surface.
  void image_contour(TCView& view, object_contour& contour) override;
  // Projects the last boat's or wake's hull into the hull matte. No field
  // in this build carries a hull, so the matte stays empty; the two lines
  // still frame the step.
  void image_hull_matte(TCView& view, object_contour& contour);
  // Reflectance of unpolarised light arriving at angle (radians, pi minus
  // the angle of incidence from the side the index is given for) on a
  // boundary of relative index n.
  static double fresnel_reflectance(double angle, double n);
  // Per band, by the cosine table: linear, clamped.
  void fresnel(double c, double* out) const;
  // The sky table at zenith cosine z and azimuth phi: bilinear, z clamped,
  // phi wrapped; and its mean over azimuth, linear in z.
  void external_radiance_at(double z, double phi, double* out) const;
  void external_radiance_mean_at(double z, double* out) const;
  // Level of a footprint of r lattice cells.
  int level_for(double r) const;
  // Range of a facet's cosine with the view for view cosine m and squared
  // resolved slope s, from side.
  static void facet_limits(double m, double s, int side, double& lo, double& hi);
  // The average over unresolved slopes of what a facet of cosine c with the
  // view returns (band, side); reflection: the averaged reflectance.
  double facet_radiance(int band, double c, double s, double m, int side, int reflection) const;
  double local_radiance(int band, double k, double S, double m, int side) const;
  // Fills the current level's table of a side when it was not made yet.
  void make_tables(int side);
  // Trilinear in the current level's table of a side.
  void radiance_lookup(double c, double m, double s, double* out, int side) const;
  void reflection_lookup(double c, double m, double s, double* out, int side) const;
  // The sun's glint per unit irradiance, per band, for a resolved facet of
  // slopes px, py seen along the world ray direction ray.
  void glitter_intensity(double px, double py, const TCVector& ray, double* out, int side);
  // The view-weighted slope density's normaliser along the view (an
  // unnormalised Gaussian of width sigma around pu, weighted by 1 + T p
  // over the visible slopes).
  double glitter_normaliser(double T, double pu, double sigma) const;
  // Sky table, water terms and the empty levels, for a new sun or sky.
  void update_light();
  // The surface points (object frame x, y in metres) of the pixel piece
  // the next surface_radiance call shades, for the textures on the water;
  // none: the shaded point alone. The arrays must outlive that call.
  void set_pixel_polygon(int n, const double* xs, const double* ys) override;
  // Textures drift and change picture with the frame.
  void update_textures(double t, int frame);
  // Blends the textures on the water into total (per band), from side,
  // with reflectance per band; texture_out gets what they added.
  void apply_textures(const TCVector& point, int side, double footprint, const double* reflectance,
                      double* total, double* texture_out);

  // The sea's parameters on the log.
  void print_parameters(std::ostream& out) const;
  // The per-scene update: the sky tables when the sun moved (or under an
  // atmosphere), which objects stand above the water, the footprint.
  void update_scene();

  Field_entry primary;       // the primary lattice, dy made equal to dx
  int primary_seed;          // 0: the spectrum file must exist
  int last_index;            // lattice steps to max_distance
  int doubling_size;         // lattice steps to doubling_distance
  TCGrid* ocean_grid;        // owned; a TCDisturbed_grid when has_disturbances
  TCDisturbed_grid* holder;  // the same lattice when it is a holder, else null
  int has_disturbances;
  TCWave_spectrum* ocean_field;  // owned
  TCSurface_field* fields[most_fields];
  Field_entry field_info[most_fields];
  int n_fields;
  int n_walls;
  double wall_origin[most_fields][2];    // metres
  double wall_orientation[most_fields];  // radians

  double box_depth;       // metres
  double reference_time;  // seconds
  int external_exact;
  int air_coupling;
  int reflection_method;
  int shadow_method;
  double max_exact_distance_sq;
  double max_shadow_fraction;
  double shadow_distance_sq;
  double sharpening;
  int include;
  int keep_reflection_table;

  // Per band: index of refraction, negative Snell cosine, water optics.
  float* index_of_refraction;
  float* snell_cosine;
  double* a;
  double* b;
  double* c;
  double* k;
  double* refl;

  // What the record said, kept for printing and for the glitter and
  // whitecap code to come.
  int spectrum_type;
  int round_surface;
  double surface_radius;
  double wind_speed;      // metres per second
  double wind_direction;  // radians
  int variable_wind;
  char wind_file[256];
  int glitter_mode;
  int sharpening_variable;
  int n_sharpening;
  double* sharpening_angle;  // radians
  double* sharpening_value;
  double sharpening_factor;
  double glitter_threshold;
  int saturated;
  int saturation_band;
  double saturation_threshold;
  double* sub_saturation_scale;
  double* saturation_value;
  int whitecaps_on;
  const ocean_input* whitecap_record;
  int cusp_on;
  double cusp_factor;
  int sunbeam_on;

  double current_time;            // seconds
  float height_low, height_high;  // metres, the last range found
  double stored_sun[3];           // the direction the tables were made for
  int object_above[100];
  int table_level;
  int n_levels;
  short* table_done[2];  // per level, above and below
  int table_builds;      // how often the sky tables were asked for
  // Kept for good for the mattes of what the water reflects and refracts;
  // sized to each view when the surface is imaged.
  object_contour* reflected_contour;
  object_contour* refracted_contour;

  // Light tables.
  static const int t_points = 16;
  static const int s_points = 15;
  static const int m_points_above = 9;
  static const int m_points_below = 36;
  static const int normal_points = 801;
  double* fresnel_table;     // [band][fresnel_axis_n]
  double* irradiance_above;  // per band
  double* irradiance_saved;
  double* upwelling;
  float* radiance_table[2];    // [level][band][t][s][m], per side
  float* reflection_table[2];  // the same, when kept
  double t_first, t_last, t_step, t_inverse;
  double s_first, s_last, s_step, s_inverse;
  double m_first[2], m_last[2], m_step[2], m_inverse[2];
  float normal_table[normal_points];  // standard normal CDF at -4 + i / 100
  // The Gaussian weights of the unresolved slopes' grid, exp(-u^2 / 2) at
  // u = -3 + 0.1 i and exp(-v^2 / 2) at v = -3 + 0.2 j: the same for every
  // cell of every table.
  double gauss_u[71];
  double gauss_v[31];
  int interior_mode;  // 0 black, 1 flat, 2 natural
  int exclude_mask;   // 1 glitter, 2 textures, 4 whitecaps
  int reflection_level;
  // Per band scratch of a pixel's light: none of it outlives the pixel.
  double* work_reflectance;
  double* work_glitter;
  double* work_table;
  double* work_matte;
  double* work_reflected;
  double* work_refracted;
  double* work_texture;      // a texture's colour, its bands and opacity
  double* work_texture_out;  // per band, what the textures added

  // Textures laid on the water, in the order of the texture block.
  const TCOcean_textures_input* texture_list;
  TCTexture_plane** texture_planes;  // owned
  int n_texture_planes;
  double* texture_centre;  // per texture, x and y now (metres, object frame)
  int pixel_n;
  const double* pixel_xs;
  const double* pixel_ys;
  double texture_x[most_texture_points];
  double texture_y[most_texture_points];
  int* glitter_done;

 private:
  int take_glitter(const ocean_input& input);
  int take_bands(const ocean_input& input);
  int allocate_tables();
  int allocate_light();
  int build_textures(const ocean_input& input);
  void set_s_axis();
  long table_cells(int side) const;
  float* level_table(float* const* tables, int side, int level) const;
  void lookup(const float* table, double c, double m, double s, double* out, int side) const;
  double sharpening_at(double view_zenith) const;
  // What the scene shows inside a narrow cone from a world point: the
  // objects' radiance per band (the air left out), the fraction of the cone
  // they fill and the nearest one's distance (1e16 when none). only: that
  // object alone, or -1 for all the cone may show.
  void trace_cone(const TCVector& from, const TCVector& direction, double width_x, double width_y,
                  int below, object_contour* contour, double* radiance, double& fraction,
                  double& distance, int only);
  // Whitecap grids needed to reach max_distance from the finest.
  int whitecap_grid_count() const;
  int take_grid(const TCGrid_details_input& grid, int code, Field_entry& entry);
  int build_lattice();
  int build_spectrum(const ocean_input& input);
  int build_fields();
  void first_box();
  void print_field(std::ostream& out, const Field_entry& entry) const;

  TCOcean(const TCOcean&);
  TCOcean& operator=(const TCOcean&);
};

#endif
