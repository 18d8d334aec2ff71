#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

#include "TCConstants.h"
#include "TCKeyframes.h"
#include "TCMatrix.h"
#include "TCObject.h"
#include "TCObject_input.h"
#include "TCView.h"
#include "object_contour.h"
#include "stream_capture.h"

namespace {

const double kTight = 1e-12;

TCKeyframes one_key(double x, double y, double z, double chi, double phi, double theta) {
  TCKeyframes track;
  track.set_number_of_times(1);
  track.times[0] = 0.0;
  track.positions[0] = TCVector(x, y, z);
  track.chi[0] = chi;
  track.phi[0] = phi;
  track.theta[0] = theta;
  return track;
}

// Keys at t = 0 (origin, level) and t = 1 (1, 2, 3), tilted by 10 degrees.
TCKeyframes two_keys() {
  TCKeyframes track;
  track.set_number_of_times(2);
  track.times[0] = 0.0;
  track.times[1] = 1.0;
  track.positions[0] = TCVector(0.0, 0.0, 0.0);
  track.positions[1] = TCVector(1.0, 2.0, 3.0);
  track.chi[0] = track.phi[0] = track.theta[0] = 0.0;
  track.chi[1] = 10.0 * tc_degrees_to_radians;
  track.phi[1] = 0.0;
  track.theta[1] = 0.0;
  return track;
}

void expect_vector_near(const TCVector& v, double x, double y, double z, double tolerance) {
  EXPECT_NEAR(v.x, x, tolerance);
  EXPECT_NEAR(v.y, y, tolerance);
  EXPECT_NEAR(v.z, z, tolerance);
}

void expect_matrices_equal(const TCMatrix& a, const TCMatrix& b, double tolerance) {
  for (int i = 0; i < 9; i++) EXPECT_NEAR(a.m[i], b.m[i], tolerance) << "element " << i;
}

// A ball of radius 1 about the object's origin.
class Unit_ball : public TCObject {
 public:
  Unit_ball(const TCKeyframes& track) : TCObject(track, 0.0, 0.0, 1, nullptr, 4) {}
  int point_inside(const TCVector& p) override { return p.dot(p) < 1.0 ? 1 : 0; }
  int intersect(const TCRay& ray, TCVector& hit, double& distance) override {
    const TCVector o = ray.origin(), d = ray.direction();
    const double b = o.dot(d), c = o.dot(o) - 1.0, disc = b * b - c;
    if (disc < 0.0 || -b - std::sqrt(disc) < 0.0) return 0;
    distance = -b - std::sqrt(disc);
    hit = o + d * distance;
    return 1;
  }
};

// Counts the painting passes that reach image_contour.
class Painting_counter : public TCObject {
 public:
  Painting_counter() : TCObject(TCKeyframes(), 0.0, 0.0, 2, nullptr, 5) {}
  void image_contour(TCView&, object_contour&) override { calls++; }
  int calls = 0;
};

TEST(Object, OneKeyNeverMovesWhateverTheTime) {
  TCObject object(one_key(-1.0, -2.0, -3.0, 0.2, 1.5, -0.4), 0.0, 0.0, 0, nullptr, 4);
  const TCMatrix start = object.world_to_object;
  const double times[] = {-1e6, -1.0, 0.0, 0.5, 3.0, 1e9};
  for (double t : times) {
    object.set_time(t);
    EXPECT_EQ(object.get_time(), t);
    TCVector p;
    double chi, phi, theta;
    object.get_pose(p, chi, phi, theta);
    EXPECT_EQ(p.x, -1.0);
    EXPECT_EQ(p.y, -2.0);
    EXPECT_EQ(p.z, -3.0);
    EXPECT_EQ(chi, 0.2);
    EXPECT_EQ(phi, 1.5);
    EXPECT_EQ(theta, -0.4);
    expect_matrices_equal(object.world_to_object, start, 0.0);
  }
}

TEST(Object, SetTimeFollowsTheTrackAndExtrapolatesPastTheEnd) {
  TCObject object(two_keys(), 0.0, 0.0, 0, nullptr, 4);
  object.set_time(2.0);
  EXPECT_EQ(object.time, 2.0);
  expect_vector_near(object.position, 2.0, 4.0, 6.0, kTight);
  EXPECT_NEAR(object.chi, 20.0 * tc_degrees_to_radians, kTight);
  expect_matrices_equal(object.world_to_object, TCMatrix::rotation(object.chi, 0.0, 0.0), 0.0);
  expect_matrices_equal(object.object_to_world, object.world_to_object.transpose(), 0.0);
}

TEST(Object, RawConstructorNamesByIdAndPosesAtStartTime) {
  TCObject_list* list = reinterpret_cast<TCObject_list*>(0x10);
  TCObject object(two_keys(), 0.5, 7.0, 7, list, 4);
  EXPECT_STREQ(object.get_name(), "object_7");
  EXPECT_EQ(object.get_time(), 7.0);
  EXPECT_EQ(object.get_object_id(), 7);
  EXPECT_EQ(object.get_type(), 4);
  EXPECT_EQ(object.list, list);
  EXPECT_EQ(object.print_flag, 1);
  expect_vector_near(object.get_position(), 0.5, 1.0, 1.5, kTight);
}

TEST(Object, InputConstructorCopiesTheHeaderButNotTheInputList) {
  TCObject_input input;
  input.track = two_keys();
  input.object_id = 3;
  input.priority = 2.5;
  input.start_time = 0.25;
  input.type_code = 13;
  std::strcpy(input.object_name, "sea");
  input.list = reinterpret_cast<TCObject_list_input*>(0x20);

  TCObject object(input);
  EXPECT_STREQ(object.get_name(), "sea");
  EXPECT_EQ(object.get_object_id(), 3);
  EXPECT_EQ(object.get_priority(), 2.5);
  EXPECT_EQ(object.get_type(), 13);
  EXPECT_EQ(object.get_time(), 0.25);
  EXPECT_EQ(object.list, nullptr);
  EXPECT_EQ(object.print_flag, 1);
  expect_vector_near(object.position, 0.25, 0.5, 0.75, kTight);
  EXPECT_NEAR(object.chi, 2.5 * tc_degrees_to_radians, kTight);
  EXPECT_EQ(object.track.number_of_times, 2);
  EXPECT_NE(object.track.times, input.track.times);
}

TEST(Object, AccessorsSetAndGet) {
  TCObject object(TCKeyframes(), 0.0, 0.0, 0, nullptr, 1);
  object.set_priority(-3.0);
  object.set_type(19);
  object.set_name("hull");
  object.set_time_value(12.5);
  EXPECT_EQ(object.get_priority(), -3.0);
  EXPECT_EQ(object.get_type(), 19);
  EXPECT_STREQ(object.get_name(), "hull");
  EXPECT_EQ(object.get_time(), 12.5);
  EXPECT_EQ(object.position.x, 0.0);  // the time alone moves nothing
  const std::string long_name(300, 'q');
  object.set_name(long_name.c_str());
  EXPECT_EQ(std::string(object.get_name()), std::string(255, 'q'));
}

// Point (4, 6, 8) seen from an object at (1, 2, 3) with chi 0.3, phi 1.1,
// theta -0.7: rotation times (3, 4, 5), evaluated independently in python3.
TEST(Object, PointAndDirectionIntoTheObjectFrame) {
  TCObject object(one_key(1.0, 2.0, 3.0, 0.3, 1.1, -0.7), 0.0, 0.0, 0, nullptr, 4);
  TCVector p, d;
  object.point_to_object(TCVector(4.0, 6.0, 8.0), p);
  expect_vector_near(p, 3.0224629940169709, 1.4223673110234389, 6.2323020371552849, kTight);
  object.direction_to_object(TCVector(0.0, 0.0, 1.0), d);
  expect_vector_near(d, -0.22602632124962302, -0.19037934406737264, 0.95533648912560598, kTight);
}

TEST(Object, WorldObjectRoundTripsForPointsDirectionsAndRays) {
  TCObject object(one_key(-7.0, 12.0, 0.5, 2.1, -0.6, 4.0), 0.0, 0.0, 0, nullptr, 4);
  const TCVector point(3.0, -8.0, 25.0), direction(0.6, 0.0, -0.8);
  TCVector local, back;
  object.point_to_object(point, local);
  object.point_to_world(local, back);
  expect_vector_near(back, point.x, point.y, point.z, kTight);
  object.direction_to_object(direction, local);
  EXPECT_NEAR(local.dot(local), 1.0, kTight);  // rotations keep lengths
  object.direction_to_world(local, back);
  expect_vector_near(back, direction.x, direction.y, direction.z, kTight);

  TCRay ray(point, direction), local_ray, back_ray;
  object.ray_to_object(ray, local_ray);
  object.ray_to_world(local_ray, back_ray);
  for (int i = 0; i < 6; i++) EXPECT_NEAR(back_ray[i], ray[i], kTight) << i;
  TCVector origin;
  object.point_to_object(point, origin);
  EXPECT_NEAR(local_ray[0], origin.x, 0.0);
}

TEST(Object, DefaultPointInsideIsZeroEverywhere) {
  TCObject object(one_key(1.0, 1.0, 1.0, 0.0, 0.0, 0.0), 0.0, 0.0, 0, nullptr, 4);
  const double values[] = {-1e9, -1.0, 0.0, 1e-12, 1.0, 1e9};
  for (double x : values) {
    for (double y : values) {
      for (double z : values) {
        EXPECT_EQ(object.point_inside(TCVector(x, y, z)), 0);
        EXPECT_EQ(object.point_inside_world(TCVector(x, y, z)), 0);
      }
    }
  }
}

TEST(Object, DefaultIntersectMissesAtTheRayOrigin) {
  TCObject object(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4);
  TCVector hit(9.0, 9.0, 9.0);
  double distance = 5.0;
  EXPECT_EQ(
      object.intersect(TCRay(TCVector(1.0, 2.0, 3.0), TCVector(0.0, 0.0, 1.0)), hit, distance), 0);
  EXPECT_EQ(distance, 0.0);
  expect_vector_near(hit, 1.0, 2.0, 3.0, 0.0);
}

TEST(Object, DefaultRayIntersectionAndFirstContactMiss) {
  // Object at (10, 0, 0), not rotated: the miss reports the origin as the
  // object frame sees it.
  TCObject object(one_key(10.0, 0.0, 0.0, 0.0, 0.0, 0.0), 0.0, 0.0, 0, nullptr, 4);
  const TCRay ray(TCVector(1.0, 2.0, 3.0), TCVector(1.0, 0.0, 0.0));
  TCVector hit;
  double distance = 5.0;
  EXPECT_EQ(object.ray_intersection(ray, hit, distance), 0);
  EXPECT_EQ(distance, 0.0);
  expect_vector_near(hit, -9.0, 2.0, 3.0, 0.0);
  distance = 5.0;
  EXPECT_EQ(object.first_contact(ray, hit, distance), 0);
  EXPECT_EQ(distance, 0.0);
}

TEST(Object, RayIntersectionReturnsTheHitInTheWorldFrame) {
  Unit_ball ball(one_key(10.0, 0.0, 0.0, 0.3, 1.1, -0.7));
  const TCRay ray(TCVector(0.0, 0.0, 0.0), TCVector(1.0, 0.0, 0.0));
  TCVector hit;
  double distance = 0.0;
  EXPECT_EQ(ball.ray_intersection(ray, hit, distance), 1);
  EXPECT_NEAR(distance, 9.0, kTight);
  expect_vector_near(hit, 9.0, 0.0, 0.0, kTight);
}

TEST(Object, FirstContactFromInsideIsTheOriginAtDistanceZero) {
  Unit_ball ball(one_key(10.0, 0.0, 0.0, 0.0, 0.0, 0.0));
  const TCRay inside(TCVector(10.2, 0.1, 0.0), TCVector(1.0, 0.0, 0.0));
  TCVector hit;
  double distance = 5.0;
  EXPECT_EQ(ball.first_contact(inside, hit, distance), 1);
  EXPECT_EQ(distance, 0.0);
  expect_vector_near(hit, 10.2, 0.1, 0.0, 0.0);

  const TCRay outside(TCVector(0.0, 0.0, 0.0), TCVector(1.0, 0.0, 0.0));
  EXPECT_EQ(ball.first_contact(outside, hit, distance), 1);
  EXPECT_NEAR(distance, 9.0, kTight);
  expect_vector_near(hit, 9.0, 0.0, 0.0, kTight);
}

TEST(Object, RayMeasureIsOriginDotPosition) {
  TCObject object(one_key(1.0, 2.5, -3.0, 0.0, 0.0, 0.0), 0.0, 0.0, 0, nullptr, 4);
  TCRay ray(TCVector(2.0, 4.0, 1.0), TCVector(100.0, 100.0, 100.0));
  EXPECT_EQ(object.ray_measure(ray), 2.0 + 10.0 - 3.0);
}

TEST(Object, DefaultRadianceIsZeroInEveryBand) {
  TCObject object(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4);
  TCSpectrum out(3);
  for (int i = 0; i < 3; i++) out.radiance_in_band[i] = 7.0;
  object.radiance(TCRay(), out);
  for (int i = 0; i < 3; i++) EXPECT_EQ(out.radiance_in_band[i], 0.0);
  for (int i = 0; i < 3; i++) out.radiance_in_band[i] = 7.0;
  object.radiance_from(4, TCRay(), out);
  for (int i = 0; i < 3; i++) EXPECT_EQ(out.radiance_in_band[i], 0.0);
  EXPECT_EQ(out.band_id[2], 3);
}

TEST(Object, DefaultImageContourLeavesAnEmptyFarLayer) {
  TCObject object(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4);
  TCSpectrum bands(2);
  float plane0[6] = {0}, plane1[6] = {0};
  float* radiance_out[2] = {plane0, plane1};
  object_contour contour(2, 3, &bands, radiance_out, 0.0f, 1, nullptr, nullptr);
  for (int row = 0; row < 2; row++) {
    for (int col = 0; col < 3; col++) {
      contour.layer_distance[row][col] = 5.0f;
      contour.layer_coverage[row][col] = 0.5f;
      contour.layer_radiance[0][row][col] = 1.0f;
      contour.layer_radiance[1][row][col] = 2.0f;
    }
  }
  TCView view;
  object.image_contour(view, contour);
  for (int row = 0; row < 2; row++) {
    for (int col = 0; col < 3; col++) {
      EXPECT_EQ(contour.layer_distance[row][col], 1e8f);
      EXPECT_EQ(contour.layer_coverage[row][col], 0.0f);
      EXPECT_EQ(contour.layer_radiance[0][row][col], 0.0f);
      EXPECT_EQ(contour.layer_radiance[1][row][col], 0.0f);
      EXPECT_EQ(contour.total_distance[row][col], contour_empty_distance);
    }
  }
}

TEST(Object, ReflectedAndSurfaceLinePassesPaintThroughImageContour) {
  Painting_counter object;
  TCSpectrum bands(1);
  float plane[1] = {0};
  float* radiance_out[1] = {plane};
  object_contour contour(1, 1, &bands, radiance_out, 0.0f, 0, nullptr, nullptr);
  TCView view;
  object.image_reflected(view, contour);
  object.image_surface_line(view, contour);
  EXPECT_EQ(object.calls, 2);
}

// Angles read as 90 and 45 degrees come back as exactly those numbers.
TCObject* printable_object() {
  return new TCObject(
      one_key(1.0, 2.5, -3.0, 90.0 * tc_degrees_to_radians, 45.0 * tc_degrees_to_radians, 0.0), 0.0,
      0.0, 5, nullptr, 4);
}

TEST(Object, PrintDimensionsGivesTimePositionAndAnglesInDegrees) {
  TCObject* object = printable_object();
  Stream_capture out(std::cout);
  object->print_dimensions();
  EXPECT_EQ(out.text(), "0 1 2.5 -3 90 45 0\n");
  delete object;
}

TEST(Object, PrintStateGivesNameThenTheDimensionsLine) {
  TCObject* object = printable_object();
  object->set_time_value(1.5);
  std::ostringstream out;
  object->print_state(out);
  EXPECT_EQ(out.str(), "object_5\n1.5 1 2.5 -3 90 45 0\n");
  object->print_flag = 0;
  std::ostringstream quiet;
  object->print_state(quiet);
  EXPECT_EQ(quiet.str(), "");
  delete object;
}

TEST(Object, FrameHooksDoNothingByDefault) {
  TCObject object(two_keys(), 0.0, 0.0, 0, nullptr, 4);
  Stream_capture out(std::cout);
  object.prepare_frame();
  object.prepare_camera(nullptr);
  object.write_frame_data("stream", "0001");
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(object.position.x, 0.0);
}

void expect_view_angles(const TCView& view, double chi, double phi, double theta,
                        double tolerance) {
  EXPECT_NEAR(view.chi, chi, tolerance);
  EXPECT_NEAR(view.phi, phi, tolerance);
  EXPECT_NEAR(view.theta, theta, tolerance);
}

TEST(ObjectView, UnmovedObjectSeesTheViewUnchanged) {
  TCObject object(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4);
  TCView view, out;
  view.set_pose(TCVector(4.0, 5.0, 6.0), 1.0, 0.7, 1.2);
  view.set_grid(20, -0.5, 0.5, 30, -0.75, 0.75);
  view.mode = 7;
  object.view_in_object_frame(view, out);
  expect_view_angles(out, 1.0, 0.7, 1.2, kTight);
  expect_vector_near(out.position, 4.0, 5.0, 6.0, 0.0);
  expect_matrices_equal(out.world_to_view, view.world_to_view, kTight);
  expect_matrices_equal(out.object_to_world, view.object_to_world, kTight);
  EXPECT_EQ(out.n_rows, 20);
  EXPECT_EQ(out.n_cols, 30);
  EXPECT_EQ(out.first_azimuth, -0.75);
  EXPECT_EQ(out.step_elevation, view.step_elevation);
  EXPECT_EQ(out.mode, 7);
}

TEST(ObjectView, CachedMatricesComposeTheViewAndTheObject) {
  TCObject object(one_key(1.0, 2.0, 3.0, 0.4, 0.9, 0.2), 0.0, 0.0, 0, nullptr, 4);
  TCView view, out;
  view.set_pose(TCVector(10.0, -5.0, 7.0), 1.2, 0.5, 2.0);
  object.view_in_object_frame(view, out);
  expect_matrices_equal(object.view_to_world, view.object_to_world, 0.0);
  expect_matrices_equal(object.world_to_view, view.world_to_view, 0.0);
  expect_matrices_equal(object.world_to_object_view,
                        TCMatrix::multiply(view.world_to_view, object.object_to_world), 0.0);
  expect_matrices_equal(object.object_view_to_world,
                        TCMatrix::multiply(object.world_to_object, view.object_to_world), 0.0);
  // A view direction reaches the same world direction either way round.
  const TCVector in_view(0.3, -0.2, 0.9);
  TCVector through_object;
  object.direction_to_world(out.object_to_world.times(in_view), through_object);
  const TCVector direct = view.object_to_world.times(in_view);
  expect_vector_near(through_object, direct.x, direct.y, direct.z, kTight);
}

// Reference from python3: R = rotation(view) * rotation(object)^T, position
// rotation(object) * (view - object), angles by atan2 normalised into
// (-half pi, three halves pi) with the pi literal where the cosine part is
// negative (theta here); rotation(angles) reproduces R.
TEST(ObjectView, MovedAndTurnedObjectMatchesIndependentComputation) {
  TCObject object(one_key(1.0, 2.0, 3.0, 0.4, 0.9, 0.2), 0.0, 0.0, 0, nullptr, 4);
  TCView view, out;
  view.set_pose(TCVector(10.0, -5.0, 7.0), 1.2, 0.5, 2.0);
  object.view_in_object_frame(view, out);
  expect_vector_near(out.position, -3.6913131817337153, -10.884833220687618, 3.7275478202397463,
                     kTight);
  const double r[9] = {0.22429168901960131,  0.86900267159392564,   0.4410528256335674,
                       -0.79435201985336468, -0.099149800758851867, 0.5993114261920589,
                       0.56453353026336195,  -0.48477177493342105,  0.66805555116044524};
  for (int i = 0; i < 9; i++) EXPECT_NEAR(out.world_to_view.m[i], r[i], kTight) << i;
  expect_view_angles(out, 0.83920372999236226, -0.70953019501487735, 2.2052333524425576, 1e-12);
  expect_matrices_equal(TCMatrix::rotation(out.chi, out.phi, out.theta), out.world_to_view, 1e-9);
}

TEST(ObjectView, AxisAlignedViewKeepsTheWholeTurnInTheta) {
  // chi 0 on both: the composed rotation is a turn about z by the
  // difference of (phi + theta), 1.4 - 0.5.
  TCObject object(one_key(0.0, 0.0, 0.0, 0.0, 0.2, 0.3), 0.0, 0.0, 0, nullptr, 4);
  TCView view, out;
  view.set_pose(TCVector(0.0, 0.0, 0.0), 0.0, 0.5, 0.9);
  object.view_in_object_frame(view, out);
  expect_view_angles(out, 0.0, 0.0, 0.9, kTight);
}

TEST(ObjectView, RoundingAboveOneStillGivesAnAngle) {
  TCObject object(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4);
  TCView view, out;
  view.world_to_view.m[8] = 1.0000000000000002;
  object.view_in_object_frame(view, out);
  EXPECT_EQ(out.chi, 0.0);
  EXPECT_EQ(out.phi, 0.0);
  EXPECT_EQ(out.theta, 0.0);
}

TCView view_with_rotation(const double r[9]) {
  TCView view;
  for (int i = 0; i < 9; i++) view.world_to_view.m[i] = r[i];
  view.object_to_world = view.world_to_view.transpose();
  return view;
}

TEST(ObjectView, ZeroDenominatorGivesTheQuarterTurnConstants) {
  TCObject object(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4);
  TCView out;
  // rotation(half pi, half pi, 0) written out exactly.
  const double up[9] = {0, 0, -1, -1, 0, 0, 0, 1, 0};
  object.view_in_object_frame(view_with_rotation(up), out);
  EXPECT_EQ(out.phi, 1.5707963267);
  EXPECT_EQ(out.theta, 0.0);
  // rotation(half pi, three halves pi, 0).
  const double down[9] = {0, 0, -1, 1, 0, 0, 0, -1, 0};
  object.view_in_object_frame(view_with_rotation(down), out);
  EXPECT_EQ(out.phi, 4.7123889801);
  // rotation(half pi, 0, half pi): theta's denominator is the zero one.
  const double spun[9] = {0, 1, 0, 0, 0, 1, 1, 0, 0};
  object.view_in_object_frame(view_with_rotation(spun), out);
  EXPECT_EQ(out.phi, 0.0);
  EXPECT_EQ(out.theta, 1.5707963267);
}

// A negative cosine part adds the pi literal to the arc tangent, so the
// angle comes back short by the literal's rounding: 2.5 - pi + 3.1415926535.
TEST(ObjectView, NegativeDenominatorAddsThePiLiteral) {
  TCObject object(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4);
  TCView view, out;
  view.set_pose(TCVector(), 0.5, 2.5, 2.5);
  object.view_in_object_frame(view, out);
  expect_view_angles(out, 0.5, 2.4999999999102069, 2.4999999999102069, kTight);
  // -2.5 lies below the range and comes back about one turn up.
  view.set_pose(TCVector(), 0.5, -2.5, 0.0);
  object.view_in_object_frame(view, out);
  EXPECT_NEAR(out.phi, 3.7831853070897932, kTight);
}

}  // namespace
