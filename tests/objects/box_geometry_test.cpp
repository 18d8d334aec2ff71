#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "TCConstants.h"
#include "TCPolygon.h"
#include "TCRay.h"
#include "TCSettings.h"
#include "TCView.h"
#include "box_test_boxes.h"
#include "stream_capture.h"

namespace {

// A 2 x 4 x 6 m block at the origin, unrotated: faces at x = +-1, y = +-2,
// z = +-3.
std::unique_ptr<TCSolid_Box> block() {
  return std::unique_ptr<TCSolid_Box>(new_solid_box(TCVector(2.0, 4.0, 6.0), 1.0));
}

TCRay ray(double ox, double oy, double oz, double dx, double dy, double dz) {
  return TCRay(TCVector(ox, oy, oz), TCVector(dx, dy, dz));
}

TEST(BoxGeometry, PointInsideStopsShortOfTheFacesBoundsIncluded) {
  auto box = block();
  const double bound_x = (2.0 / 2) * (1 - 0.0001);
  EXPECT_EQ(box->point_inside(TCVector(0.0, 0.0, 0.0)), 1);
  EXPECT_EQ(box->point_inside(TCVector(bound_x, 0.0, 0.0)), 1);
  EXPECT_EQ(box->point_inside(TCVector(-bound_x, 0.0, 0.0)), 1);
  EXPECT_EQ(box->point_inside(TCVector(0.99991, 0.0, 0.0)), 0);
  EXPECT_EQ(box->point_inside(TCVector(0.99989, 1.9996, -2.9994)), 1);
  // On a face plane: not inside.
  EXPECT_EQ(box->point_inside(TCVector(1.0, 0.0, 0.0)), 0);
  EXPECT_EQ(box->point_inside(TCVector(0.0, -2.0, 0.0)), 0);
  EXPECT_EQ(box->point_inside(TCVector(0.0, 0.0, 3.0)), 0);
  EXPECT_EQ(box->point_inside(TCVector(0.0, 0.0, 3.5)), 0);
}

TEST(BoxGeometry, RayFromOutsideMeetsTheNearerFace) {
  auto box = block();
  TCVector hit;
  double distance = 0.0;
  // +x face at t = 6, -x face at t = 4: the -x face, number 2.
  EXPECT_EQ(box->intersect(ray(-5.0, 0.5, 1.0, 1.0, 0.0, 0.0), hit, distance), 2);
  EXPECT_DOUBLE_EQ(distance, 4.0);
  EXPECT_DOUBLE_EQ(hit.x, -1.0);
  EXPECT_DOUBLE_EQ(hit.y, 0.5);
  EXPECT_DOUBLE_EQ(hit.z, 1.0);
  // From above, straight down: the +z face, number 5, 2 m away.
  EXPECT_EQ(box->intersect(ray(0.2, -0.3, 5.0, 0.0, 0.0, -1.0), hit, distance), 5);
  EXPECT_DOUBLE_EQ(distance, 2.0);
  EXPECT_DOUBLE_EQ(hit.z, 3.0);
  // From below: the -z face, number 6.
  EXPECT_EQ(box->intersect(ray(0.2, -0.3, -5.0, 0.0, 0.0, 1.0), hit, distance), 6);
  EXPECT_DOUBLE_EQ(distance, 2.0);
  // From +y: the +y face, number 3.
  EXPECT_EQ(box->intersect(ray(0.0, 10.0, 0.0, 0.0, -1.0, 0.0), hit, distance), 3);
  EXPECT_DOUBLE_EQ(distance, 8.0);
  EXPECT_DOUBLE_EQ(hit.y, 2.0);
}

TEST(BoxGeometry, SlantedRayHitsWhereTheFaceLies) {
  auto box = block();
  TCVector hit;
  double distance = 0.0;
  // From (-4, -1, 0) along (3, 4, 0) / 5: x = -1 at t = 5 gives y = 3, off
  // the -x face; y = -2 is behind; y = +2 at t = 3.75 gives x = -1.75, off;
  // nothing else: a miss.
  EXPECT_EQ(box->intersect(ray(-4.0, -1.0, 0.0, 0.6, 0.8, 0.0), hit, distance), 0);
  EXPECT_EQ(distance, -1.0);
  // From (-4, -1.5, 0) along (4, 3, 0) / 5: x = -1 at t = 3.75, y = 0.75.
  EXPECT_EQ(box->intersect(ray(-4.0, -1.5, 0.0, 0.8, 0.6, 0.0), hit, distance), 2);
  EXPECT_NEAR(distance, 3.75, 1e-12);
  EXPECT_NEAR(hit.y, 0.75, 1e-12);
}

TEST(BoxGeometry, RayThroughAnEdgeTakesTheEarlierFace) {
  auto box = block();
  TCVector hit;
  double distance = 0.0;
  const double d = std::sqrt(0.5);
  // The edge x = 1, y = 2 at t = 2 sqrt 2 for both +x and +y: +x wins.
  EXPECT_EQ(box->intersect(ray(3.0, 4.0, 0.0, -d, -d, 0.0), hit, distance), 1);
  EXPECT_NEAR(distance, 2.0 * std::sqrt(2.0), 1e-12);
  EXPECT_NEAR(hit.x, 1.0, 1e-12);
  EXPECT_NEAR(hit.y, 2.0, 1e-12);
  // The edge x = -1, y = 2: -x before +y.
  EXPECT_EQ(box->intersect(ray(-3.0, 4.0, 0.0, d, -d, 0.0), hit, distance), 2);
  // The edge y = -2, z = 3: -y before +z.
  EXPECT_EQ(box->intersect(ray(0.0, -4.0, 5.0, 0.0, d, -d), hit, distance), 4);
}

TEST(BoxGeometry, RayAlongAFaceHasNoCrossingOnThatAxis) {
  auto box = block();
  TCVector hit;
  double distance = 0.0;
  // z component below 1e-07 counts as none: the -x face is met all the same.
  EXPECT_EQ(box->intersect(ray(-5.0, 0.0, 0.0, 1.0, 0.0, 5e-08), hit, distance), 2);
  EXPECT_DOUBLE_EQ(distance, 4.0);
  // In the plane of the +z face: its edge on the -x face is met.
  EXPECT_EQ(box->intersect(ray(-5.0, 0.0, 3.0, 1.0, 0.0, 0.0), hit, distance), 2);
  EXPECT_DOUBLE_EQ(distance, 4.0);
  // Just above that plane, beyond the 1.00001 margin: a miss.
  EXPECT_EQ(box->intersect(ray(-5.0, 0.0, 3.001, 1.0, 0.0, 0.0), hit, distance), 0);
  EXPECT_EQ(distance, -1.0);
  // Inside the margin: still the -x face.
  EXPECT_EQ(box->intersect(ray(-5.0, 0.0, 3.00002, 1.0, 0.0, 0.0), hit, distance), 2);
  // A ray with no usable component at all meets nothing.
  EXPECT_EQ(box->intersect(ray(-5.0, 0.0, 0.0, 5e-08, 5e-08, 5e-08), hit, distance), 0);
  EXPECT_EQ(distance, -1.0);
}

TEST(BoxGeometry, MissesGiveZeroAndMinusOne) {
  auto box = block();
  TCVector hit;
  double distance = 7.0;
  EXPECT_EQ(box->intersect(ray(-5.0, 3.0, 0.0, 1.0, 0.0, 0.0), hit, distance), 0);
  EXPECT_EQ(distance, -1.0);
  distance = 7.0;
  // Pointing away.
  EXPECT_EQ(box->intersect(ray(-5.0, 0.0, 0.0, -1.0, 0.0, 0.0), hit, distance), 0);
  EXPECT_EQ(distance, -1.0);
  // Leaving from a face: the face itself is nearer than 1e-05.
  EXPECT_EQ(box->intersect(ray(1.0, 0.0, 0.0, 1.0, 0.0, 0.0), hit, distance), 0);
  // Entering from a face: the opposite face, 2 m on.
  EXPECT_EQ(box->intersect(ray(1.0, 0.0, 0.0, -1.0, 0.0, 0.0), hit, distance), 2);
  EXPECT_DOUBLE_EQ(distance, 2.0);
}

TEST(BoxGeometry, RayFromInsideGivesFaceOneAtTheOrigin) {
  auto box = block();
  TCVector hit;
  double distance = 7.0;
  EXPECT_EQ(box->intersect(ray(0.5, -1.0, 2.0, 0.0, 0.0, -1.0), hit, distance), 1);
  EXPECT_EQ(distance, 0.0);
  EXPECT_EQ(hit.x, 0.5);
  EXPECT_EQ(hit.y, -1.0);
  EXPECT_EQ(hit.z, 2.0);
}

TEST(BoxGeometry, FarIntersectFindsTheExit) {
  auto box = block();
  TCVector hit;
  double distance = 0.0;
  // From the centre along +x: out through +x at 1 m.
  EXPECT_EQ(box->far_intersect(ray(0.0, 0.0, 0.0, 1.0, 0.0, 0.0), hit, distance), 1);
  EXPECT_DOUBLE_EQ(distance, 1.0);
  EXPECT_DOUBLE_EQ(hit.x, 1.0);
  // Through from outside: the farther of t = 4 and t = 6.
  EXPECT_EQ(box->far_intersect(ray(-5.0, 0.5, 1.0, 1.0, 0.0, 0.0), hit, distance), 1);
  EXPECT_DOUBLE_EQ(distance, 6.0);
  // From the entry face: that face lies below 0.0001 and is passed over.
  EXPECT_EQ(box->far_intersect(ray(-1.0, 0.5, 1.0, 1.0, 0.0, 0.0), hit, distance), 1);
  EXPECT_DOUBLE_EQ(distance, 2.0);
  // Down from inside: out through -z.
  EXPECT_EQ(box->far_intersect(ray(0.0, 0.0, 1.0, 0.0, 0.0, -1.0), hit, distance), 6);
  EXPECT_DOUBLE_EQ(distance, 4.0);
  // Out through the edge x = 1, y = 2: +x and +y tie, +x is kept.
  const double d = std::sqrt(0.5);
  EXPECT_EQ(box->far_intersect(ray(-1.0, 0.0, 0.0, d, d, 0.0), hit, distance), 1);
  EXPECT_NEAR(distance, 2.0 * std::sqrt(2.0), 1e-12);
  // Bounds widened to 1.0001: z = 3.0002 still leaves through +x.
  EXPECT_EQ(box->far_intersect(ray(0.0, 0.0, 3.0002, 1.0, 0.0, 0.0), hit, distance), 1);
  EXPECT_EQ(box->intersect(ray(-5.0, 0.0, 3.0002, 1.0, 0.0, 0.0), hit, distance), 0);
  distance = 7.0;
  EXPECT_EQ(box->far_intersect(ray(-5.0, 3.0, 0.0, 1.0, 0.0, 0.0), hit, distance), 0);
  EXPECT_EQ(distance, -1.0);
}

TEST(BoxGeometry, RayMeasureIsTheNearEdgeAlongTheVector) {
  auto box = block();
  box->set_position(TCVector(10.0, -3.0, 4.0), 0.0, 0.0, 0.0);
  // Along +x: 10 - 2 / 2.
  EXPECT_DOUBLE_EQ(box->ray_measure(ray(1.0, 0.0, 0.0, 0.0, 0.0, 1.0)), 9.0);
  // Along -z: -4 - 6 / 2.
  EXPECT_DOUBLE_EQ(box->ray_measure(ray(0.0, 0.0, -1.0, 1.0, 0.0, 0.0)), -7.0);
  // Along (0.6, 0.8, 0): 6 - 2.4 - (1.2 + 3.2) / 2.
  EXPECT_NEAR(box->ray_measure(ray(0.6, 0.8, 0.0, 0.0, 0.0, 0.0)), 1.4, 1e-12);
}

TEST(BoxGeometry, WorldQueriesGoThroughTheObjectsPose) {
  auto box = block();
  // Turned a quarter about z: the 2 m side now runs along world y.
  box->set_position(TCVector(10.0, 0.0, 0.0), 0.0, tc_half_pi, 0.0);
  EXPECT_EQ(box->point_inside_world(TCVector(10.0, 0.9, 0.0)), 1);
  EXPECT_EQ(box->point_inside_world(TCVector(10.0, 1.1, 0.0)), 0);
  EXPECT_EQ(box->point_inside_world(TCVector(11.9, 0.0, 0.0)), 1);
  TCVector hit;
  double distance = 0.0;
  EXPECT_GT(box->ray_intersection(ray(0.0, 0.0, 0.0, 1.0, 0.0, 0.0), hit, distance), 0);
  EXPECT_NEAR(distance, 8.0, 1e-9);
  EXPECT_NEAR(hit.x, 8.0, 1e-9);
}

TEST(BoxGeometry, PrintDimensionsGivesTheLengths) {
  auto box = block();
  Stream_capture out(std::cout);
  box->box_class::print_dimensions();
  EXPECT_EQ(out.text(), "Dimensions:  2 4 6\n");
}

// A view 5 m above the origin looking straight down, 10 x 10 pixels over
// [-0.5, 0.5] on both axes: plane point (e, a) looks along (e, -a, -1) / n
// with n = sqrt(e^2 + a^2 + 1), so the plane z = 1 lies 4 n away.
TCView downward_view() {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 5.0), tc_pi, 0.0, 0.0);
  view.set_grid(10, -0.5, 0.5, 10, -0.5, 0.5);
  return view;
}

TCPolygon rectangle(double x0, double x1, double y0, double y1) {
  TCPolygon p;
  p.add_vertex(x0, y0);
  p.add_vertex(x1, y0);
  p.add_vertex(x1, y1);
  p.add_vertex(x0, y1);
  return p;
}

TEST(BoxGeometry, DistanceToFaceGivesSquaredDistancesOfCentroidAndCorners) {
  auto box = std::unique_ptr<TCSolid_Box>(new_solid_box(TCVector(2.0, 2.0, 2.0), 1.0));
  const TCView view = downward_view();
  // Pixel (5, 5): plane e, a in [0, 0.1]; centroid (0.05, 0.05).
  float near = 0.0f, mid = 0.0f, far = 0.0f;
  box->distance_to_face(2, 1, view, rectangle(5, 6, 5, 6), near, mid, far);
  EXPECT_NEAR(mid, 16.0 * 1.005, 1e-4);
  EXPECT_NEAR(near, 16.0, 1e-4);
  EXPECT_NEAR(far, 16.0 * 1.02, 1e-4);
}

TEST(BoxGeometry, DistanceToFaceAlongTheFaceAveragesPlainDistances) {
  auto box = std::unique_ptr<TCSolid_Box>(new_solid_box(TCVector(2.0, 2.0, 2.0), 1.0));
  TCView view = downward_view();
  view.set_pose(TCVector(3.0, 0.0, 5.0), tc_pi, 0.0, 0.0);
  // Rows 4 to 6 span e in [-0.1, 0.1]; the centroid at e = 0 runs parallel
  // to the +x face. Corner rays (x direction e / n) cross x = 1 at
  // t = -2 n / e: +-20 sqrt(1.01) and +-20 sqrt(1.02).
  float near = 0.0f, mid = 0.0f, far = 0.0f;
  box->distance_to_face(0, 1, view, rectangle(5, 6, 4, 6), near, mid, far);
  EXPECT_NEAR(mid, 0.0, 1e-4);
  EXPECT_NEAR(near, 400.0 * 1.02, 1e-3);
  EXPECT_NEAR(far, 400.0 * 1.02, 1e-3);
  // Rows 3 to 5 span e in [-0.2, 0]: the corners at e = 0 have no crossing
  // and are passed over, and the centroid at e = -0.1, a = 0.05 crosses at
  // t = 20 n.
  box->distance_to_face(0, 1, view, rectangle(5, 6, 3, 5), near, mid, far);
  const double n_centroid = std::sqrt(0.01 + 0.0025 + 1.0);
  EXPECT_NEAR(mid, 400.0 * n_centroid * n_centroid, 1e-3);
  // Corners at e = -0.2 cross at t = 10 n, with a = 0 and 0.1.
  EXPECT_NEAR(near, 100.0 * 1.04, 1e-3);
  EXPECT_NEAR(far, 100.0 * 1.05, 1e-3);
}

TEST(BoxGeometry, DistanceToFaceWithNoUsableRayReportsAndGivesAFarValue) {
  auto box = std::unique_ptr<TCSolid_Box>(new_solid_box(TCVector(2.0, 2.0, 2.0), 1.0));
  TCView view = downward_view();
  view.set_pose(TCVector(3.0, 0.0, 5.0), tc_pi, 0.0, 0.0);
  // Every point on row 5 has e = 0: no ray crosses the x = 1 plane.
  TCPolygon flat;
  flat.add_vertex(5.0, 5.0);
  flat.add_vertex(6.0, 5.0);
  flat.add_vertex(5.5, 5.0);
  const int old_verbose = verbose;
  float near = 7.0f, mid = 8.0f, far = 9.0f;
  {
    verbose = 1;
    Stream_capture out(std::cout);
    box->distance_to_face(0, 1, view, flat, near, mid, far);
    EXPECT_EQ(out.text(), "Error in box_class::distance_to_face: s2 = -1\n");
  }
  EXPECT_EQ(far, 1e+16f);
  EXPECT_EQ(near, 7.0f);
  EXPECT_EQ(mid, -1.0f);
  {
    verbose = 0;
    Stream_capture out(std::cout);
    far = 9.0f;
    box->distance_to_face(0, 1, view, flat, near, mid, far);
    EXPECT_EQ(out.text(), "");
    EXPECT_EQ(far, 1e+16f);
  }
  verbose = old_verbose;
}

}  // namespace
