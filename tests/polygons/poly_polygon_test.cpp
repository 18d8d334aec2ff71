// One polygon of a polygon object: its plane, its texture fit and the ray
// test that sees it only from its front.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "TCPoly_Polygon.h"
#include "stream_capture.h"

namespace {

struct Corners {
  explicit Corners(const std::vector<TCVector>& ps) {
    for (const TCVector& p : ps) {
      Poly_point_record r;
      r.p = p;
      r.has_texture = 0;
      r.u = r.v = 0.0;
      r.has_normal = 0;
      points.push_back(r);
      ids.push_back(static_cast<int>(ids.size()));
    }
  }
  int set(TCPoly_Polygon& polygon, int shading = 4) {
    Poly_source source = {
        TCPoly_Polygon::colour_set, {0.2, 0.4, 0.6, 1.0}, static_cast<int>(ids.size()), ids.data()};
    return polygon.setPolygon(source, points.data(), static_cast<int>(points.size()), 7, shading);
  }
  std::vector<Poly_point_record> points;
  std::vector<int> ids;
};

TEST(PolyPolygon, CounterClockwiseFromAboveHasItsNormalBelow) {
  // Newell's sum of a square turning counter-clockwise seen from +z points
  // up; the polygon's normal is minus it.
  Corners square({TCVector(0, 0, 2), TCVector(1, 0, 2), TCVector(1, 1, 2), TCVector(0, 1, 2)});
  TCPoly_Polygon polygon;
  ASSERT_TRUE(square.set(polygon));
  EXPECT_DOUBLE_EQ(polygon.normal.x, 0.0);
  EXPECT_DOUBLE_EQ(polygon.normal.y, 0.0);
  EXPECT_DOUBLE_EQ(polygon.normal.z, -1.0);
  EXPECT_DOUBLE_EQ(polygon.plane_d, 2.0);  // -(n . first corner)
  EXPECT_EQ(polygon.flags, TCPoly_Polygon::colour_set | TCPoly_Polygon::normal_set);
  ASSERT_NE(polygon.color, nullptr);
  EXPECT_EQ(polygon.color[1], 0.4);
}

TEST(PolyPolygon, RayMeetsOnlyTheFront) {
  Corners square({TCVector(0, 0, 2), TCVector(1, 0, 2), TCVector(1, 1, 2), TCVector(0, 1, 2)});
  TCPoly_Polygon polygon;
  ASSERT_TRUE(square.set(polygon));
  TCVector hit;
  double d2 = 0.0;
  // From below, going up: the normal (down) faces it.
  ASSERT_TRUE(polygon.intersect(TCVector(0.5, 0.25, -1), TCVector(0, 0, 1), hit, d2));
  EXPECT_DOUBLE_EQ(hit.z, 2.0);
  EXPECT_DOUBLE_EQ(d2, 9.0);
  // From above, going down: its back.
  EXPECT_FALSE(polygon.intersect(TCVector(0.5, 0.25, 5), TCVector(0, 0, -1), hit, d2));
  // Outside the square.
  EXPECT_FALSE(polygon.intersect(TCVector(1.5, 0.25, -1), TCVector(0, 0, 1), hit, d2));
  // Edge on.
  EXPECT_FALSE(polygon.intersect(TCVector(-1, 0.5, 2), TCVector(1, 0, 0), hit, d2));
}

TEST(PolyPolygon, PointsOnALineAreNotImagedAndSaySo) {
  Corners line({TCVector(0, 0, 0), TCVector(1, 1, 1), TCVector(2, 2, 2)});
  TCPoly_Polygon polygon;
  Stream_capture err(std::cerr);
  EXPECT_FALSE(line.set(polygon));
  EXPECT_EQ(err.text(),
            "Error setting normal for polygon# 7: points might be on a line\n"
            "  NOT IMAGING POLYGON #7\n");
  EXPECT_EQ(polygon.flags, TCPoly_Polygon::not_imaged);
  EXPECT_EQ(polygon.normal.z, 1.0);
  EXPECT_EQ(polygon.plane_d, 0.0);
  TCVector hit;
  double d2 = 0.0;
  EXPECT_FALSE(polygon.intersect(TCVector(1, 1, -3), TCVector(0, 0, 1), hit, d2));
}

TEST(PolyPolygon, TextureFitGivesBackEveryCornersCoordinates) {
  // A tilted pentagon with u, v an affine function of position in its plane.
  const TCVector o(3, -2, 5), e1(0.8, 0.6, 0.0), e2(-0.36, 0.48, 0.8);
  std::vector<TCVector> ps;
  const double s[5][2] = {{0, 0}, {4, 0.5}, {5, 3}, {2, 5}, {-1, 2}};
  for (auto& st : s) ps.push_back(o + e1 * st[0] + e2 * st[1]);
  Corners pentagon(ps);
  for (int k = 0; k < 5; k++) {
    pentagon.points[k].has_texture = 1;
    pentagon.points[k].u = 0.1 + 0.25 * s[k][0] - 0.05 * s[k][1];
    pentagon.points[k].v = -0.3 + 0.02 * s[k][0] + 0.4 * s[k][1];
  }
  TCPoly_Polygon polygon;
  ASSERT_TRUE(pentagon.set(polygon, 1));
  EXPECT_TRUE(polygon.flags & TCPoly_Polygon::texture_set);
  for (int k = 0; k < 5; k++) {
    double u = 0.0, v = 0.0;
    polygon.texture_at(ps[k], u, v);
    EXPECT_NEAR(u, pentagon.points[k].u, 1e-12) << k;
    EXPECT_NEAR(v, pentagon.points[k].v, 1e-12) << k;
  }
  // The gradients lie in the plane.
  EXPECT_NEAR(polygon.u_gradient.dot(polygon.normal), 0.0, 1e-12);
  EXPECT_NEAR(polygon.v_gradient.dot(polygon.normal), 0.0, 1e-12);
}

TEST(PolyPolygon, ACornerWithoutTextureCoordinatesStopsTheFit) {
  Corners tri({TCVector(0, 0, 0), TCVector(1, 0, 0), TCVector(0, 1, 0)});
  tri.points[0].has_texture = tri.points[1].has_texture = 1;
  TCPoly_Polygon polygon;
  Stream_capture err(std::cerr);
  EXPECT_FALSE(tri.set(polygon, 1));
  EXPECT_EQ(err.text(),
            "Error setting polygon #7: a NULL texture point\n  NOT IMAGING POLYGON #7\n");
  EXPECT_EQ(polygon.flags, TCPoly_Polygon::not_imaged);
}

TEST(PolyPolygonDeathTest, CornerIndexOutOfRangeEndsTheRunWithStatusZero) {
  Corners tri({TCVector(0, 0, 0), TCVector(1, 0, 0), TCVector(0, 1, 0)});
  tri.ids[2] = 3;
  TCPoly_Polygon polygon;
  EXPECT_EXIT(tri.set(polygon), testing::ExitedWithCode(0),
              "Error in TCPoly_Polygon::setPolygon - prisms index, 3 is wrong\n");
}

TEST(PolyPolygon, InsideTestCountsCrossingsOfANonConvexOutline) {
  // An L shape in the x-y plane.
  Corners l_shape({TCVector(0, 0, 0), TCVector(2, 0, 0), TCVector(2, 1, 0), TCVector(1, 1, 0),
                   TCVector(1, 2, 0), TCVector(0, 2, 0)});
  TCPoly_Polygon polygon;
  ASSERT_TRUE(l_shape.set(polygon));
  EXPECT_TRUE(polygon.contains(TCVector(0.5, 1.5, 0)));
  EXPECT_TRUE(polygon.contains(TCVector(1.5, 0.5, 0)));
  EXPECT_FALSE(polygon.contains(TCVector(1.5, 1.5, 0)));
  EXPECT_TRUE(polygon.contains(TCVector(2.0, 0.5, 0)));  // on an edge
}

}  // namespace
