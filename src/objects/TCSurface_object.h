#ifndef TC_SURFACE_OBJECT_H
#define TC_SURFACE_OBJECT_H

#include "TCGrid.h"
#include "TCRay.h"
#include "TCSpectrum.h"
#include "TCVector.h"
#include "box_class.h"

class TCMatte_fields;
class TCMatte_sample;
class TCPolygon;
class TCScene_tracer;
class TCView;
class object_contour;

// A corner of a triangle of the surface on the image: its image position
// (x along the columns, y along the rows, in pixels) and where it stands on
// the lattice (metres from node (0, 0)).
struct TCSurface_vertex {
  double x, y;
  double u, v;
};
class TCTexture_plane;
class surface_object_input;

// A height field over a lattice inside a box: the sea, and later the land.
// Rays find the surface by marching through the box; the box hugs the waves,
// from the deepest water shown to the highest crest.
//
// Frames: the object frame is the scene pose's; the box frame is the object
// frame moved so that the box is centred on its origin (box_centre is the
// box's centre in the object frame). The lattice answers heights in the box
// frame: its z_offset is minus the box centre's z, so a raw lattice height
// of 0 lies on the object frame's z = 0 plane.
class TCSurface_object : public box_class {
 public:
  // Box lengths from the input, centred on the pose; no lattice, no bands;
  // no sun (zero irradiance, straight-down direction, zenith 9.42477796).
  explicit TCSurface_object(const surface_object_input& input);
  ~TCSurface_object() override;

  // Rays and points of the object frame, answered by the surface inside the
  // box rather than by the box's faces.
  int point_inside(const TCVector& point) override;
  int intersect(const TCRay& ray, TCVector& hit, double& distance) override;
  // The surface is drawn by sampling its lattice in image space, not by its
  // box's faces: image_surface.
  void image_contour(TCView& view, object_contour& contour) override;

  // The table axes from their sizes: cosine -1 to 1, azimuth -pi to pi.
  virtual void set_table_axes();
  // New box lengths (metres) and centre (object frame).
  virtual void set_box(const TCVector& box_length, const TCVector& centre);
  // True unless the word is "flat".
  virtual int is_round(const char* word);
  // Steps along origin + s direction (box frame, unit direction) from s =
  // start to end by step, looking for the first point in the water: 1 with
  // distance set (refined by bisect when refine is set, else the last point
  // outside), 0 with distance 0 when none is. A start in the water is a hit
  // at distance 0.
  virtual int march(double start, double end, double step, const TCVector& origin,
                    const TCVector& direction, double& distance, int refine);
  // Five halvings of the bracket [a, b], a outside and b in the water:
  // distance is the middle of what is left, within step / 64 of the surface.
  virtual void bisect(double a, double b, double step, const TCVector& origin,
                      const TCVector& direction, double& distance);
  // Radiance the surface returns along a world ray that meets it at point
  // with unit upward normal, from above (side 1) or below (-1), into the
  // bands of spectrum; matte_values may be null. footprint in metres.
  // Nothing here: the kinds fill it.
  using box_class::surface_radiance;
  virtual void surface_radiance(const TCRay& ray, const TCVector& point, const TCVector& normal,
                                TCSpectrum& spectrum, int side, float* matte_values,
                                double footprint);
  // Shades a triangle of the surface into the contour, pixel by pixel:
  // each pixel's piece of the visible polygon (image coordinates, the
  // triangle's part that shows) gives the coverage, its corners the depth
  // range, its centroid the surface point that is shaded. view is the
  // camera's, in the world frame; side 1 from above the water, -1 below.
  virtual void image_triangle(TCView& view, object_contour& contour,
                              const TCSurface_vertex triangle[3], const TCPolygon& visible,
                              int side);
  // The rows beyond the last ring of lattice nodes, out to the horizon: each
  // pixel piece of the visible polygon is shaded by the water its centroid's
  // ray meets on the flat or round mean surface, the lattice giving its
  // height and slope there; above the horizon there is no water.
  virtual void horizon_triangle(TCView& view, object_contour& contour,
                                const TCSurface_vertex triangle[3], const TCPolygon& visible,
                                int side);
  // image_triangle's walk with the mattes filled and no radiance added.
  virtual void matte_triangle(TCView& view, object_contour& contour,
                              const TCSurface_vertex triangle[3], const TCPolygon& visible,
                              int side);
  // Unresolved slopes for a footprint of scale lattice cells. Nothing here.
  virtual void set_footprint(double scale);
  virtual void set_reflection_footprint(double scale);

  // Draws the surface into the contour: nothing when every ray of the view
  // looks away from the waves, else the ridge-line sampler from the
  // camera's side of the water (or, below it when underwater_plane is set,
  // one ray per pixel up to the plane of the water over the camera).
  // image_mattes does the same with the mattes alone.
  void image_surface(TCView& view, object_contour& contour);
  void image_mattes(TCView& view, object_contour& contour);
  // 1 when the camera is over the water under it, -1 otherwise.
  int surface_side(const TCView& view) const;
  // 0 when the camera is clear of the waves on its side and all the
  // view's rays look away from them.
  int surface_in_view(const TCView& view, int side) const;
  // The ring and ridge size the sampler gets for this view.
  int sampler_points(const TCView& view) const;

  // Box frame: below height_at(x, y) with the round drop.
  int inside(const TCVector& point) const;
  // The ray (box frame, unit direction) to the surface: 1 with the hit and
  // its distance along the ray, else 0. distance is -1.0 until found, and 0
  // for a miss. A ray in the water where it enters the box is hit there: at
  // its origin, distance 0, when it starts in the box.
  int distance_to_surface(const TCRay& ray, TCVector& hit, double& distance);
  // band_radiance and the external tables, after set_table_axes. Without a
  // band spectrum: two lines and exit 1.
  void allocate_surface_arrays();
  // A world point: the surface height under it and the point's own height,
  // both over the object frame's z = 0 (metres).
  double point_height(const TCVector& point, double& z_out) const;
  // A box-frame point moved vertically onto the surface.
  void project_to_surface(const TCVector& point, TCVector& out) const;
  // Round surface: the angle below the horizontal at which a line of sight
  // from the ray's origin meets the sphere along azimuth (radians); 0 flat.
  double curvature_angle(const TCRay& ray, double azimuth) const;
  // The surface sampled on a definition file's rectangle (box x, y), its
  // heights over the object frame's z = 0, written as
  // "<name>_grid.<suffix>.img". Failures exit 1.
  int write_height_grid(const char* definition_file, const char* suffix);
  // Radiance of a texture over a polygon's vertices (metres in the texture's
  // frame, at most 400 of them): 1, or 0 after the message for too many.
  int radiance_texture_surface(TCTexture_plane& texture, int n_points, const double* xs,
                               const double* ys, double footprint, int side, double* out);
  // The sun of the scene into the per-band irradiance and the two
  // directions; no sun gives zero irradiance, straight down and the
  // out-of-range zenith.
  void update_sun(const TCScene_tracer* tracer);

  // The piece of water a pixel covers, handed to the light before it is
  // asked: object frame x, y of the piece's corners. Nothing here.
  virtual void set_pixel_polygon(int n, const double* xs, const double* ys);

  // World ray into the box frame.
  void ray_to_box(const TCRay& world_ray, TCRay& out) const;
  void point_to_box(const TCVector& world_point, TCVector& out) const;

  TCGrid* lattice;
  TCSpectrum* object_spectrum;  // owned
  int n_bands;
  int sun_on;
  float* sun_irradiance;  // per band
  double sun_zenith;      // radians
  double sun_azimuth;
  TCVector sun_direction;        // towards the sun, world axes
  TCVector sun_direction_local;  // the same in the object frame
  double ray_step;               // metres
  double max_distance;           // metres
  double* external_radiance;     // [band][cosine][azimuth]
  double* external_radiance_mean;
  int fresnel_axis_n;
  int azimuth_axis_n;
  double fresnel_first, fresnel_last, fresnel_step, fresnel_inverse_step;
  double azimuth_first, azimuth_last, azimuth_step, azimuth_inverse_step;
  int table_ready;
  double* band_radiance;
  TCVector box_centre;  // object frame, metres
  // The mattes of the view being imaged, while a triangle is shaded; null
  // otherwise.
  const TCMatte_fields* matte_fields;

  // Set by a kind whose underside is drawn per pixel rather than sampled.
  int underwater_plane;
  // While set, shading adds coverage and mattes but no radiance.
  int mattes_only;

  // The zenith standing for "no sun": about three pi, out of any range.
  static const double no_sun_zenith;
  static const int most_texture_points = 400;

 private:
  // The water under image point (px, py) of a triangle: object frame x, y, z;
  // 0 for a degenerate triangle or a point over no water.
  int water_under(const TCSurface_vertex triangle[3], double px, double py, TCVector& point) const;
  // The last step of shading a pixel piece: the light at point (object frame)
  // with normal, into the contour with coverage area and the depth range
  // (near and far squared, as the contour keeps them; distance in metres).
  // corners (xs, ys) go to the textures. 0 when the point gives no ray.
  int shade_piece(TCView& view, object_contour& contour, TCMatte_sample& matte, double* sample,
                  int row, int col, const TCVector& point, double area, double near,
                  double distance, double far, int corners, const double* xs, const double* ys,
                  int side);

  void image_below_plane(TCView& view, object_contour& contour);

  TCSurface_object(const TCSurface_object&);
  TCSurface_object& operator=(const TCSurface_object&);
};

#endif
