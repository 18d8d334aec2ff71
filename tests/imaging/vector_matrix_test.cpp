#include <gtest/gtest.h>

#include "TCConstants.h"
#include "TCMatrix.h"
#include "TCRay.h"
#include "TCVector.h"

namespace {

const double kTight = 1e-14;

void expect_matrix_near(const TCMatrix& a, const double expected[9], double tolerance) {
  for (int i = 0; i < 9; i++) EXPECT_NEAR(a.m[i], expected[i], tolerance) << "element " << i;
}

TEST(Vector, ComponentsByIndexAndOutOfRangeGivesZ) {
  TCVector v(1.0, 2.0, 3.0);
  EXPECT_EQ(v[0], 1.0);
  EXPECT_EQ(v[1], 2.0);
  EXPECT_EQ(v[2], 3.0);
  EXPECT_EQ(v[7], 3.0);
  v[1] = 5.0;
  EXPECT_EQ(v.y, 5.0);
  const TCVector& c = v;
  EXPECT_EQ(c[0], 1.0);
  EXPECT_EQ(c[-1], 3.0);
}

TEST(Vector, SumDifferenceScaleAndDot) {
  TCVector a(1.0, 2.0, 3.0), b(4.0, -5.0, 0.5);
  TCVector s = a + b, d = a - b, k = a * 2.0;
  EXPECT_EQ(s.x, 5.0);
  EXPECT_EQ(s.y, -3.0);
  EXPECT_EQ(s.z, 3.5);
  EXPECT_EQ(d.x, -3.0);
  EXPECT_EQ(d.y, 7.0);
  EXPECT_EQ(d.z, 2.5);
  EXPECT_EQ(k.x, 2.0);
  EXPECT_EQ(k.y, 4.0);
  EXPECT_EQ(k.z, 6.0);
  EXPECT_EQ(a.dot(b), 4.0 - 10.0 + 1.5);
  TCVector zero;
  EXPECT_EQ(zero.x, 0.0);
  EXPECT_EQ(zero.y, 0.0);
  EXPECT_EQ(zero.z, 0.0);
}

TEST(Matrix, DefaultIsIdentity) {
  TCMatrix m;
  const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  expect_matrix_near(m, identity, 0.0);
}

TEST(Matrix, MultiplyIsRowByColumn) {
  TCMatrix a, b;
  for (int i = 0; i < 9; i++) {
    a.m[i] = i + 1;  // 1..9
    b.m[i] = 9 - i;  // 9..1
  }
  // [1 2 3;4 5 6;7 8 9] * [9 8 7;6 5 4;3 2 1] by hand.
  const double expected[9] = {30, 24, 18, 84, 69, 54, 138, 114, 90};
  expect_matrix_near(TCMatrix::multiply(a, b), expected, 0.0);
}

TEST(Matrix, TransposeAndTimes) {
  TCMatrix a;
  for (int i = 0; i < 9; i++) a.m[i] = i + 1;
  TCMatrix t = a.transpose();
  EXPECT_EQ(t.at(0, 1), 4.0);
  EXPECT_EQ(t.at(2, 0), 3.0);
  EXPECT_EQ(t.at(1, 1), 5.0);
  TCVector v = a.times(TCVector(1.0, 0.0, -1.0));
  EXPECT_EQ(v.x, -2.0);
  EXPECT_EQ(v.y, -2.0);
  EXPECT_EQ(v.z, -2.0);
}

TEST(Matrix, RotationOfZeroAnglesIsIdentity) {
  const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  expect_matrix_near(TCMatrix::rotation(0.0, 0.0, 0.0), identity, 0.0);
}

// Reference values from an independent python3 evaluation of the rotation
// table with pi = 3.1415926535.
TEST(Matrix, RotationMatchesTableForSixthQuarterThirdOfPi) {
  const double expected[9] = {-0.30618621779817612, 0.91855865355850175,  -0.25000000000648026,
                              -0.88388347650089938, -0.17677669525388395, 0.43301270187351243,
                              0.35355339059204599,  0.35355339057617263,  0.86602540379192139};
  expect_matrix_near(TCMatrix::rotation(tc_pi / 6.0, tc_pi / 4.0, tc_pi / 3.0), expected, kTight);
}

TEST(Matrix, RotationMatchesTableForMixedSignAngles) {
  const double expected[9] = {0.90556590675557591, 0.35897421999958967, -0.22602632124962302,
                              -0.4024696742513208, 0.89541826352856613, -0.19037934406737264,
                              0.13404681954446868, 0.26336978322346222, 0.95533648912560598};
  expect_matrix_near(TCMatrix::rotation(0.3, 1.1, -0.7), expected, kTight);
}

TEST(Matrix, RotationTimesItsTransposeIsIdentity) {
  TCMatrix r = TCMatrix::rotation(1.2, -2.5, 0.4);
  const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  expect_matrix_near(TCMatrix::multiply(r, r.transpose()), identity, kTight);
}

TEST(Ray, DefaultIsZeroAndPartsRoundTrip) {
  TCRay zero;
  for (int i = 0; i < 6; i++) EXPECT_EQ(zero[i], 0.0);
  TCRay ray(TCVector(1.0, 2.0, 3.0), TCVector(4.0, 5.0, 6.0));
  for (int i = 0; i < 6; i++) EXPECT_EQ(ray[i], i + 1.0);
  ray.set_origin(TCVector(-1.0, -2.0, -3.0));
  ray.set_direction(TCVector(0.0, 0.0, 1.0));
  EXPECT_EQ(ray.origin().y, -2.0);
  EXPECT_EQ(ray.direction().z, 1.0);
  EXPECT_EQ(ray.r[3], 0.0);
}

}  // namespace
