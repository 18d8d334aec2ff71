#ifndef TC_BOX_CLASS_H
#define TC_BOX_CLASS_H

#include "TCObject.h"
#include "TCPolygon.h"
#include "TCRay.h"
#include "TCSpectrum.h"
#include "TCVector.h"
#include "TCView.h"

class TCStar;
class box_input;
class object_contour;

// Runtime base of everything shaped like a rectangular block in its own
// frame, centred on the object's position: the ray-box geometry and the
// scan of the visible faces into a contour. Derived kinds say what a face
// looks like through surface_radiance.
class box_class : public TCObject {
 public:
  explicit box_class(const box_input& input);
  ~box_class() override;

  // "Dimensions:  " and the three lengths.
  void print_dimensions() override;
  // The near edge of the box along a: the ray's first three numbers, a,
  // turned into the object's frame, give a . position - sum |L a| / 2.
  double ray_measure(TCRay ray) override;
  // The face scan: every face the view sees, clipped to the view plane,
  // scan converted pixel by pixel with exact coverage. A view inside the
  // box gets the box in every pixel at distance 0.
  void image_contour(TCView& view, object_contour& contour) override;
  // Object frame; strictly inside by 0.0001 of each half length, bounds
  // included.
  int point_inside(const TCVector& point) override;
  // Object frame, unit direction. The nearest face hit at t >= 1e-05 and
  // within 1.00001 of the half lengths: 1 to 6 for +x, -x, +y, -y, +z, -z,
  // earlier faces winning ties; 0 and distance -1.0 for a miss. A ray
  // starting inside the box (by this class's point_inside, whatever a kind
  // makes of it) gives 1, distance 0 and the origin.
  int intersect(const TCRay& ray, TCVector& hit, double& distance) override;
  // The same, always about the block itself, whatever a kind makes of its
  // inside.
  int box_intersect(const TCRay& ray, TCVector& hit, double& distance);

  // Radiance leaving the surface along a world ray, into the bands of
  // spectrum (its ids say which). view is the pixel's own 1 by 1 view.
  // Nothing here; the kinds fill it.
  virtual void surface_radiance(const TCRay& ray, TCSpectrum& spectrum, TCView& view);
  // As intersect, without the inside case, t >= 0.0001, bounds widened by
  // 1.0001, and the farthest face kept: where a ray starting inside or
  // passing through leaves the box.
  virtual int far_intersect(const TCRay& ray, TCVector& hit, double& distance);

  // Squared distances (m^2) along the rays through one pixel's piece of the
  // face on axis `axis`, side `sign`: near from the nearest corner or the
  // centroid, mid along the centroid, far from the farthest corner. view is
  // in the object's frame; polygon in image coordinates (x columns, y rows).
  // With the centroid ray parallel to the face, mid is (near + far) / 2 of
  // the plain distances; without any usable ray, mid is -1, far 1e16 and
  // near keeps what it held (a message when verbose).
  void distance_to_face(int axis, int sign, const TCView& view, const TCPolygon& polygon,
                        float& near, float& mid, float& far);

  TCVector length;  // metres
  // 1 while the faces are being scanned, so that surface_radiance can tell a
  // face from a single ray.
  int lit_face;
  // 1 when the face being scanned looks away from the sun.
  int face_turned;

 protected:
  // The scene's sun when it has one that is set, else null.
  TCStar* scene_sun() const;

 private:
  // One visible face on the image plane, and what its pixels last gave.
  struct Face_ring {
    Face_ring()
        : axis(0),
          sign(1),
          turned(0),
          in_view(0),
          row0(0),
          row1(-1),
          col0(0),
          col1(-1),
          near(0.0f),
          mid(0.0f),
          far(0.0f) {}
    int axis;
    int sign;
    int turned;  // 1 when the face looks away from the sun
    TCPolygon ring;
    int in_view;
    int row0, row1, col0, col1;  // its pixel window
    float near, mid, far;        // squared distances of its last piece
  };
  // The faces' rings in image coordinates, pixel by pixel: the pieces of
  // all faces in one pixel make one sample.
  void scan_faces(Face_ring* faces, int n_faces, TCView& view, const TCView& local,
                  object_contour& contour, TCSpectrum& sample);
  // Every pixel of a view from inside the box.
  void fill_from_inside(TCView& view, object_contour& contour, TCSpectrum& sample);

  box_class(const box_class&);
  box_class& operator=(const box_class&);
};

#endif
