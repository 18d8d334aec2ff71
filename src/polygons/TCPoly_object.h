#ifndef TC_POLY_OBJECT_H
#define TC_POLY_OBJECT_H

#include "TCPoly_Polygon.h"
#include "TCPoly_object_input.h"
#include "TCVector.h"
#include "box_class.h"

class TCPolygon;
class TCTexture_plane;
class TCView;
class object_contour;

// One surface of a polygon object: its polygons and how they are shaded.
struct Poly_surface {
  int imaging;        // 0: not drawn
  int shading_model;  // 1 texture, 4 colour
  double colour[3];   // radiance per band of a coloured surface
  double scale[3];    // per band, times a texture's value
  double u_scale, v_scale;
  char texture_file[256];
  TCTexture_plane* texture;  // owned; null for a colour
  int n_polygons;
  TCPoly_Polygon* polygons;
};

// Imported surfaces placed in a scene: meshes from ".poly" files or one OBJ
// file, each surface a list of planar polygons shaded by a colour or a
// texture fitted to their corners. The box of box_class is the meshes'
// bounding box, a test that shields the polygons from rays and views that
// miss it.
//
// Winding. A polygon's normal is minus Newell's sum and a ray meets only a
// polygon whose normal faces it, so a ".poly" polygon is seen from the side
// its corners turn clockwise. Modelling tools write an OBJ face
// counter-clockwise seen from outside: its corners are taken in reverse
// order, so that a closed OBJ mesh faces rays from outside.
class TCPoly_object : public box_class {
 public:
  // Loads every surface's mesh; a mesh that can't be read ends the run
  // with status 1.
  explicit TCPoly_object(const TCPoly_object_input& input);
  ~TCPoly_object() override;

  void image_contour(TCView& view, object_contour& contour) override;
  void image_surface_line(TCView& view, object_contour& contour) override;
  // Object frame: an odd number of polygons along +z from the point.
  int point_inside(const TCVector& point) override;
  // Object frame: the box first, then the first polygon in surface and
  // polygon order that the ray meets from its front (not the nearest: the
  // order of the file decides). distance is the squared ray parameter.
  int intersect(const TCRay& ray, TCVector& hit, double& distance) override;

  // Whether a view at this contour level draws the object: image_flag 1
  // always; in the camera's own view only flag 2, in reflected views only
  // flag 3.
  int drawn_at_level(int level) const;
  // Draws one polygon into the object's pixel buffers (the view in the
  // object frame).
  void image_polygon(const TCView& local, const TCView& view, const Poly_surface& surface,
                     const TCPoly_Polygon& polygon);

  int image_flag;
  int image_level;
  int n_surfaces;
  Poly_surface* surfaces;
  int has_order;
  int* order;
  int n_points;
  Poly_point_record* points;
  TCVector centre;  // of the bounding box, object frame

 private:
  void load_poly_surfaces(const TCPoly_object_input& input);
  void load_obj(const TCPoly_object_input& input);
  void apply_changes(const TCPoly_object_input& input);
  void set_order(const TCPoly_object_input& input);
  void fit_box();
  TCTexture_plane* load_texture(const char* file);
  void image(TCView& view, object_contour& contour);
  void free_buffers();

  // Per-pixel sums of one imaging call, over the view's window: pieces of
  // one surface that meet in a pixel add up; a piece clearly behind or in
  // front composites as separate layers do.
  int buffer_rows, buffer_cols;
  float* cover;
  float* red;
  float* green;
  float* blue;
  float* nearest;
  float* farthest;
  float* middle;

  TCPoly_object(const TCPoly_object&);
  TCPoly_object& operator=(const TCPoly_object&);
};

#endif
