#include <gtest/gtest.h>

#include <cmath>

#include "TCConstants.h"
#include "TCMatrix.h"
#include "TCRay.h"
#include "TCView.h"

namespace {

void expect_direction(const TCRay& ray, double x, double y, double z) {
  EXPECT_NEAR(ray[3], x, 1e-9);
  EXPECT_NEAR(ray[4], y, 1e-9);
  EXPECT_NEAR(ray[5], z, 1e-9);
}

TEST(View, DefaultsAreOnePixelOverTheUnitSquare) {
  TCView view;
  EXPECT_EQ(view.n_rows, 1);
  EXPECT_EQ(view.n_cols, 1);
  EXPECT_EQ(view.first_elevation, -1.0);
  EXPECT_EQ(view.last_elevation, 1.0);
  EXPECT_EQ(view.first_azimuth, -1.0);
  EXPECT_EQ(view.last_azimuth, 1.0);
  EXPECT_EQ(view.step_elevation, 2.0);
  EXPECT_EQ(view.step_azimuth, 2.0);
  EXPECT_EQ(view.mode, 101);
  EXPECT_EQ(view.anti_alias, 1);
  EXPECT_EQ(view.resampling_elevation, 0);
  EXPECT_EQ(view.resampling_azimuth, 0);
  EXPECT_EQ(view.chi, 0.0);
  EXPECT_EQ(view.position.z, 0.0);
  const TCMatrix identity;
  for (int i = 0; i < 9; i++) {
    EXPECT_EQ(view.world_to_view.m[i], identity.m[i]);
    EXPECT_EQ(view.object_to_world.m[i], identity.m[i]);
  }
}

TEST(View, SetGridStoresRangesAndSteps) {
  TCView view;
  view.set_grid(4, -0.2, 0.6, 8, 1.0, 3.0);
  EXPECT_EQ(view.n_rows, 4);
  EXPECT_EQ(view.n_cols, 8);
  EXPECT_EQ(view.first_elevation, -0.2);
  EXPECT_EQ(view.last_elevation, 0.6);
  EXPECT_EQ(view.first_azimuth, 1.0);
  EXPECT_EQ(view.last_azimuth, 3.0);
  EXPECT_DOUBLE_EQ(view.step_elevation, 0.2);
  EXPECT_EQ(view.step_azimuth, 0.25);
}

TEST(View, SetResolutionKeepsTheRanges) {
  TCView view;
  view.set_grid(4, -0.5, 0.5, 8, -2.0, 2.0);
  view.set_resolution(10, 16);
  EXPECT_EQ(view.n_rows, 10);
  EXPECT_EQ(view.n_cols, 16);
  EXPECT_EQ(view.first_elevation, -0.5);
  EXPECT_EQ(view.last_elevation, 0.5);
  EXPECT_EQ(view.first_azimuth, -2.0);
  EXPECT_EQ(view.last_azimuth, 2.0);
  EXPECT_EQ(view.step_elevation, 0.1);
  EXPECT_EQ(view.step_azimuth, 0.25);
}

TEST(View, EmptyGridHasNoStep) {
  TCView view;
  view.set_resolution(0, 0);
  EXPECT_EQ(view.step_elevation, 0.0);
  EXPECT_EQ(view.step_azimuth, 0.0);
}

TEST(View, SetPoseUsesTheObjectRotation) {
  TCView view;
  view.set_pose(TCVector(1.0, -2.0, 30.0), 1.4, -0.3, 0.8);
  EXPECT_EQ(view.position.y, -2.0);
  EXPECT_EQ(view.chi, 1.4);
  EXPECT_EQ(view.phi, -0.3);
  EXPECT_EQ(view.theta, 0.8);
  const TCMatrix r = TCMatrix::rotation(1.4, -0.3, 0.8);
  for (int i = 0; i < 9; i++) EXPECT_EQ(view.world_to_view.m[i], r.m[i]);
  for (int row = 0; row < 3; row++) {
    for (int col = 0; col < 3; col++) {
      EXPECT_EQ(view.object_to_world.at(row, col), r.at(col, row));
    }
  }
}

TEST(View, CopyTakesEveryField) {
  TCView source;
  source.set_pose(TCVector(3.0, 4.0, 5.0), 0.1, 0.2, 0.3);
  source.set_grid(7, -0.7, 0.7, 9, -0.9, 0.9);
  source.mode = 3;
  source.anti_alias = 0;
  source.resampling_elevation = 4;
  source.resampling_azimuth = 5;
  TCView copy;
  copy.copy(source);
  EXPECT_EQ(copy.position.x, 3.0);
  EXPECT_EQ(copy.chi, 0.1);
  EXPECT_EQ(copy.phi, 0.2);
  EXPECT_EQ(copy.theta, 0.3);
  EXPECT_EQ(copy.n_rows, 7);
  EXPECT_EQ(copy.n_cols, 9);
  EXPECT_EQ(copy.first_elevation, -0.7);
  EXPECT_EQ(copy.last_azimuth, 0.9);
  EXPECT_EQ(copy.step_elevation, source.step_elevation);
  EXPECT_EQ(copy.step_azimuth, source.step_azimuth);
  EXPECT_EQ(copy.mode, 3);
  EXPECT_EQ(copy.anti_alias, 0);
  EXPECT_EQ(copy.resampling_elevation, 4);
  EXPECT_EQ(copy.resampling_azimuth, 5);
  for (int i = 0; i < 9; i++) {
    EXPECT_EQ(copy.world_to_view.m[i], source.world_to_view.m[i]);
    EXPECT_EQ(copy.object_to_world.m[i], source.object_to_world.m[i]);
  }
}

TEST(View, PixelBoundsStepFromTheFirstEdge) {
  TCView view;
  view.set_grid(4, -0.2, 0.6, 8, 1.0, 3.0);
  double e0, e1, a0, a1;
  view.pixel_bounds(2, 5, e0, e1, a0, a1);
  EXPECT_DOUBLE_EQ(e0, 0.2);
  EXPECT_DOUBLE_EQ(e1, 0.4);
  EXPECT_DOUBLE_EQ(a0, 2.25);
  EXPECT_DOUBLE_EQ(a1, 2.5);
  view.pixel_bounds(0, 0, e0, e1, a0, a1);
  EXPECT_EQ(e0, -0.2);
  EXPECT_EQ(a0, 1.0);
  view.pixel_bounds(3, 7, e0, e1, a0, a1);
  EXPECT_DOUBLE_EQ(e1, 0.6);
  EXPECT_DOUBLE_EQ(a1, 3.0);
}

TEST(View, PixelViewIsOnePixelWithTheSamePoseAndFlags) {
  TCView view;
  view.set_pose(TCVector(1.0, 2.0, 3.0), 0.4, 0.5, 0.6);
  view.set_grid(4, -0.2, 0.6, 8, 1.0, 3.0);
  view.mode = 7;
  view.anti_alias = 1;
  view.resampling_elevation = 3;
  view.resampling_azimuth = 2;
  TCView pixel;
  view.pixel_view(1, 6, pixel);
  EXPECT_EQ(pixel.n_rows, 1);
  EXPECT_EQ(pixel.n_cols, 1);
  EXPECT_DOUBLE_EQ(pixel.first_elevation, 0.0);
  EXPECT_DOUBLE_EQ(pixel.last_elevation, 0.2);
  EXPECT_DOUBLE_EQ(pixel.first_azimuth, 2.5);
  EXPECT_DOUBLE_EQ(pixel.last_azimuth, 2.75);
  EXPECT_DOUBLE_EQ(pixel.step_elevation, 0.2);
  EXPECT_DOUBLE_EQ(pixel.step_azimuth, 0.25);
  EXPECT_EQ(pixel.position.z, 3.0);
  EXPECT_EQ(pixel.chi, 0.4);
  EXPECT_EQ(pixel.mode, 7);
  EXPECT_EQ(pixel.resampling_elevation, 3);
  EXPECT_EQ(pixel.resampling_azimuth, 2);
  for (int i = 0; i < 9; i++) EXPECT_EQ(pixel.world_to_view.m[i], view.world_to_view.m[i]);
  // The one pixel's ray is the parent pixel's.
  TCRay whole, single;
  view.pixel_ray(1, 6, whole);
  pixel.pixel_ray(0, 0, single);
  for (int i = 0; i < 6; i++) EXPECT_NEAR(single[i], whole[i], 1e-14);
}

TEST(View, PointsAndDirectionsMoveBetweenFrames) {
  TCView view;
  // Spun a quarter turn about z: world x is view -y, world y is view x.
  view.set_pose(TCVector(0.0, 0.0, 1.0), 0.0, 0.0, tc_half_pi);
  TCVector v;
  view.point_to_view(TCVector(1.0, 2.0, 3.0), v);
  EXPECT_NEAR(v.x, 2.0, 1e-9);
  EXPECT_NEAR(v.y, -1.0, 1e-9);
  EXPECT_NEAR(v.z, 2.0, 1e-12);
  view.direction_to_view(TCVector(1.0, 2.0, 3.0), v);
  EXPECT_NEAR(v.x, 2.0, 1e-9);
  EXPECT_NEAR(v.y, -1.0, 1e-9);
  EXPECT_NEAR(v.z, 3.0, 1e-12);

  view.set_pose(TCVector(5.0, -6.0, 7.0), 0.7, -1.1, 2.3);
  const TCVector p(-3.0, 4.5, 0.25);
  TCVector there, back;
  view.point_to_view(p, there);
  view.point_from_view(there, back);
  EXPECT_NEAR(back.x, p.x, 1e-12);
  EXPECT_NEAR(back.y, p.y, 1e-12);
  EXPECT_NEAR(back.z, p.z, 1e-12);
  view.direction_to_view(p, there);
  view.direction_from_view(there, back);
  EXPECT_NEAR(back.x, p.x, 1e-12);
  EXPECT_NEAR(back.y, p.y, 1e-12);
  EXPECT_NEAR(back.z, p.z, 1e-12);
  // A direction ignores the position; a point does not.
  view.direction_from_view(TCVector(0.0, 0.0, 0.0), back);
  EXPECT_EQ(back.x, 0.0);
  view.point_from_view(TCVector(0.0, 0.0, 0.0), back);
  EXPECT_EQ(back.x, 5.0);
  EXPECT_EQ(back.y, -6.0);
  EXPECT_EQ(back.z, 7.0);
}

TEST(View, PlaneRayNegatesBothPlaneCoordinates) {
  TCView view;
  view.set_pose(TCVector(1.0, 2.0, 3.0), 0.0, 0.0, 0.0);
  TCRay ray;
  view.plane_ray(0.3, -0.4, ray);
  EXPECT_EQ(ray[0], 1.0);
  EXPECT_EQ(ray[1], 2.0);
  EXPECT_EQ(ray[2], 3.0);
  const double length = std::sqrt(1.25);
  expect_direction(ray, -0.3 / length, 0.4 / length, 1.0 / length);
}

TEST(View, PlaneRayOfATurnedViewGoesThroughItsMatrix) {
  TCView view;
  // Tilted to the horizon facing +x: view z is world x, view x world down.
  view.set_pose(TCVector(0.0, 0.0, 0.0), tc_half_pi, 0.0, 0.0);
  TCRay ray;
  view.plane_ray(0.5, 0.25, ray);
  const double length = std::sqrt(1.0 + 0.25 + 0.0625);
  expect_direction(ray, 1.0 / length, -0.25 / length, 0.5 / length);
}

TEST(View, ProjectUndoesPlaneRay) {
  TCView view;
  view.set_pose(TCVector(10.0, -4.0, 25.0), 1.9, 0.6, -0.35);
  const double cases[4][2] = {{0.0, 0.0}, {0.31, -0.12}, {-0.8, 0.45}, {1.7, 2.2}};
  for (int i = 0; i < 4; i++) {
    TCRay ray;
    view.plane_ray(cases[i][0], cases[i][1], ray);
    const TCVector point = ray.origin() + ray.direction() * 37.5;
    double e = 99.0, a = 99.0;
    EXPECT_EQ(view.project(point, e, a), 1);
    EXPECT_NEAR(e, cases[i][0], 1e-12) << i;
    EXPECT_NEAR(a, cases[i][1], 1e-12) << i;
  }
}

TEST(View, ProjectOfAPointBesideTheViewGivesNothing) {
  TCView view;
  view.set_pose(TCVector(1.0, 1.0, 1.0), 0.0, 0.0, 0.0);
  double e = 5.0, a = 6.0;
  EXPECT_EQ(view.project(TCVector(4.0, -2.0, 1.0), e, a), 0);
  EXPECT_EQ(e, 5.0);
  EXPECT_EQ(a, 6.0);
  // Behind the view a point still projects, mirrored.
  EXPECT_EQ(view.project(TCVector(1.5, 1.0, -1.0), e, a), 1);
  EXPECT_DOUBLE_EQ(e, 0.25);
  EXPECT_DOUBLE_EQ(a, 0.0);
}

TEST(View, PixelRayGoesThroughThePixelCentre) {
  TCView view;
  view.set_grid(2, -1.0, 1.0, 4, -2.0, 2.0);
  TCRay ray;
  // Row 0 spans elevation -1..0, column 3 azimuth 1..2.
  view.pixel_ray(0, 3, ray);
  double length = std::sqrt(0.25 + 2.25 + 1.0);
  expect_direction(ray, 0.5 / length, -1.5 / length, 1.0 / length);
  view.pixel_ray(1, 0, ray);
  expect_direction(ray, -0.5 / length, 1.5 / length, 1.0 / length);
  view.pixel_ray(1, 2, ray);
  length = std::sqrt(0.25 + 0.25 + 1.0);
  expect_direction(ray, -0.5 / length, -0.5 / length, 1.0 / length);
}

TEST(View, FractionalRayBlendsInsideThePixel) {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 2.0), 2.2, 0.3, 0.1);
  view.set_grid(4, -0.4, 0.4, 5, -0.5, 0.5);
  TCRay got, want;
  view.fractional_ray(2, 1, 0.5, 0.5, got);
  view.pixel_ray(2, 1, want);
  for (int i = 0; i < 6; i++) EXPECT_NEAR(got[i], want[i], 1e-14);
  // Row 2 spans 0.0..0.2, column 1 spans -0.3..-0.1.
  view.fractional_ray(2, 1, 0.0, 0.0, got);
  view.plane_ray(0.0, -0.3, want);
  for (int i = 0; i < 6; i++) EXPECT_NEAR(got[i], want[i], 1e-14);
  view.fractional_ray(2, 1, 1.0, 1.0, got);
  view.plane_ray(0.2, -0.1, want);
  for (int i = 0; i < 6; i++) EXPECT_NEAR(got[i], want[i], 1e-14);
  view.fractional_ray(2, 1, 0.25, 0.75, got);
  view.plane_ray(0.05, -0.15, want);
  for (int i = 0; i < 6; i++) EXPECT_NEAR(got[i], want[i], 1e-14);
}

TEST(View, PolarOfGivesThousandthsAboutTheViewPosition) {
  TCView view;
  view.set_pose(TCVector(1.0, -1.0, 2.0), 0.4, 0.2, 0.0);
  double elevation, bearing;
  // 3-4-5 triangle above the view; bearing 0 looks along -y.
  view.polar_of(TCVector(1.0, -4.0, 6.0), 0.0, elevation, bearing);
  EXPECT_NEAR(elevation, 800.0, 1e-9);
  EXPECT_NEAR(bearing, 0.0, 1e-12);
  view.polar_of(TCVector(4.0, -1.0, -2.0), 0.25, elevation, bearing);
  EXPECT_NEAR(elevation, -800.0, 1e-9);
  EXPECT_NEAR(bearing, (1.5707963267948966 + 0.25) * 1000.0, 1e-9);
  view.polar_of(TCVector(1.0, -1.0, 2.0), 0.0, elevation, bearing);
  EXPECT_EQ(elevation, 0.0);
}

TEST(View, PolarOfWrapsTheBearingBySteps) {
  TCView view;
  double elevation, bearing;
  // Quarter turn plus 3 passes pi: one step of 6.2831853 back.
  view.polar_of(TCVector(1.0, 0.0, 0.0), 3.0, elevation, bearing);
  EXPECT_NEAR(bearing, -1712.3889732051039, 1e-9);
  view.polar_of(TCVector(-1.0, 0.0, 0.0), -3.0, elevation, bearing);
  EXPECT_NEAR(bearing, 1712.3889732051039, 1e-9);
  // An offset of 10 needs two steps.
  view.polar_of(TCVector(1.0, -4.0, 0.0), 10.0, elevation, bearing);
  EXPECT_NEAR(bearing, -2321.3919368731376, 1e-9);
  // Pi itself is inside the range and stays.
  view.polar_of(TCVector(0.0, -1.0, 0.0), tc_pi, elevation, bearing);
  EXPECT_NEAR(bearing, 3141.5926535, 1e-9);
}

TEST(View, ViewLimitsOfALevelViewAreItsCornerAzimuths) {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), tc_half_pi, 0.0, 0.0);
  view.set_grid(10, -0.5, 0.5, 10, -0.5, 0.5);
  double low = 0.0, high = 0.0;
  EXPECT_EQ(view.view_limits(low, high), 0);
  EXPECT_NEAR(low, -0.4636476090008061, 1e-9);
  EXPECT_NEAR(high, 0.4636476090008061, 1e-9);
}

TEST(View, ViewLimitsStayInOnePieceAcrossTheSeam) {
  TCView view;
  // Facing -x: the corners lie either side of the -pi/pi seam.
  view.set_pose(TCVector(0.0, 0.0, 10.0), tc_half_pi, tc_pi, 0.0);
  view.set_grid(10, -0.5, 0.5, 10, -0.5, 0.5);
  double low = 0.0, high = 0.0;
  EXPECT_EQ(view.view_limits(low, high), 0);
  EXPECT_NEAR(high - low, 2.0 * 0.4636476090008061, 1e-9);
  EXPECT_NEAR(std::cos(0.5 * (low + high)), -1.0, 1e-12);
}

TEST(View, ViewLimitsOfATiltedViewMissingTheNadir) {
  TCView view;
  // Pitched 45 degrees down: the nadir projects at elevation -1, azimuth 0.
  view.set_pose(TCVector(0.0, 0.0, 10.0), 0.75 * tc_pi, 0.0, 0.0);
  view.set_grid(10, -0.5, 0.5, 10, -0.5, 0.5);
  double low = 0.0, high = 0.0;
  EXPECT_EQ(view.view_limits(low, high), 0);
  EXPECT_NEAR(low, -0.9553166181245093, 1e-9);
  EXPECT_NEAR(high, 0.9553166181245093, 1e-9);
}

TEST(View, ViewLimitsWidenWhenTheNadirIsInTheWindow) {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 0.75 * tc_pi, 0.0, 0.0);
  view.set_grid(10, -1.5, 0.5, 10, -0.5, 0.5);
  double low = 0.0, high = 0.0;
  EXPECT_EQ(view.view_limits(low, high), 1);
  EXPECT_EQ(low, -tc_pi);
  EXPECT_EQ(high, tc_pi);
}

TEST(View, ViewLimitsOfAViewStraightDownAreTheWholeCircle) {
  TCView view;
  view.set_pose(TCVector(3.0, 4.0, 100.0), tc_pi, 0.0, 0.0);
  view.set_grid(10, -0.1, 0.1, 10, -0.1, 0.1);
  double low = 0.0, high = 0.0;
  EXPECT_EQ(view.view_limits(low, high), 1);
  EXPECT_EQ(low, -tc_pi);
  EXPECT_EQ(high, tc_pi);
}

TEST(View, ViewLimitsWidenWhenTheZenithIsInTheWindow) {
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 0.0), 0.0, 0.0, 0.0);
  double low = 0.0, high = 0.0;
  EXPECT_EQ(view.view_limits(low, high), 1);
  // Pitched 45 degrees up the zenith sits at elevation 1.
  view.set_pose(TCVector(0.0, 0.0, 0.0), 0.25 * tc_pi, 0.0, 0.0);
  view.set_grid(10, -0.5, 0.5, 10, -0.5, 0.5);
  EXPECT_EQ(view.view_limits(low, high), 0);
  view.set_grid(10, -0.5, 1.5, 10, -0.5, 0.5);
  EXPECT_EQ(view.view_limits(low, high), 1);
  EXPECT_EQ(low, -tc_pi);
  EXPECT_EQ(high, tc_pi);
}

}  // namespace
