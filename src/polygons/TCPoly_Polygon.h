#ifndef TC_POLY_POLYGON_H
#define TC_POLY_POLYGON_H

#include "TCVector.h"

// A corner point of a polygon object: its position in the object frame,
// and the texture coordinates and normal its mesh gave it, if any.
struct Poly_point_record {
  TCVector p;
  int has_texture;
  double u, v;
  int has_normal;
  TCVector n;
};

// What a mesh says of one polygon: its flag bits (2 when it carries a
// colour), the colour, and its corners as indices into the point table.
struct Poly_source {
  int flags;
  double colour[4];
  int n_corners;
  const int* corners;
};

// One planar polygon of a polygon object, of up to 350 corners, with its
// plane (Newell's normal) and, for a textured surface, the texture's
// gradients over the plane.
//
// The normal is minus Newell's sum: a polygon whose corners turn
// counter-clockwise seen from one side has its normal on the other side.
// A ray meets only a polygon whose normal faces it (normal . direction
// below -1e-7).
class TCPoly_Polygon {
 public:
  TCPoly_Polygon();
  ~TCPoly_Polygon();

  // Takes the corners of source from points (n_points of them), its flags
  // and colour, and works out the normal and, for shading 1, the texture
  // fit. 1, or 0 when the polygon is not usable (its flags are then 64 and
  // it is never imaged); an index out of range ends the run with status 0.
  int setPolygon(const Poly_source& source, Poly_point_record* points, int n_points, int index,
                 int shading);

  // Newell's normal and plane_d; flags gain 32, or become 64 for corners
  // on a line.
  void set_normal();
  // The gradients of u and v over the plane; flags gain 4, or become 64.
  void fit_texture();

  // The ray (object frame, unit direction) meets the polygon from its front:
  // 1 with the hit and the squared ray parameter.
  int intersect(const TCVector& origin, const TCVector& direction, TCVector& hit,
                double& distance_squared) const;
  // Texture coordinates of a point of the plane.
  void texture_at(const TCVector& p, double& u, double& v) const;
  // True for a point of the plane inside the polygon (edges within 1e-6).
  int contains(const TCVector& p) const;

  // Flag bits.
  static const int colour_set = 2;
  static const int texture_set = 4;
  static const int normal_set = 32;
  static const int not_imaged = 64;
  static const int most_corners = 350;

  int flags;
  int shading_model;  // 1 texture, 4 colour
  int polygon_index;
  TCVector normal;
  double plane_d;
  TCVector u_gradient;
  TCVector v_gradient;
  double origin_u, origin_v;
  TCVector origin;
  double* color;  // four values when set, else null
  int n_vertices;
  struct Vertex {
    int index;
    Poly_point_record* point;
  };
  Vertex* vertices;

 private:
  TCPoly_Polygon(const TCPoly_Polygon&);
  TCPoly_Polygon& operator=(const TCPoly_Polygon&);
};

#endif
