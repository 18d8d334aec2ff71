// One polygon of a polygon object: its plane, its texture fit and the ray
// test that sees it only from its front.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
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

namespace {

// Planar polygons of an independent script: normal, plane and texture
// gradients as the script worked them out.
struct Reference_polygon {
  int index = 0;
  std::string kind;
  std::vector<Poly_point_record> points;
  TCVector normal;
  double plane_d = 0.0;
  int valid = 0;
  TCVector gu, gv;
};

std::vector<Reference_polygon> reference_planes() {
  std::vector<Reference_polygon> out;
  std::ifstream in(TC_TEST_DATA_DIR "/polygons/plane_reference.txt");
  std::string line;
  Reference_polygon current;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    std::string what;
    words >> what;
    if (what == "polygon") {
      current = Reference_polygon();
      int n = 0;
      words >> current.index >> current.kind >> n;
    } else if (what == "vertex") {
      Poly_point_record r;
      words >> r.p.x >> r.p.y >> r.p.z >> r.u >> r.v;
      r.has_texture = 1;
      r.has_normal = 0;
      current.points.push_back(r);
    } else if (what == "normal") {
      words >> current.normal.x >> current.normal.y >> current.normal.z >> current.plane_d;
    } else if (what == "valid") {
      words >> current.valid;
    } else if (what == "gradients") {
      words >> current.gu.x >> current.gu.y >> current.gu.z >> current.gv.x >> current.gv.y >>
          current.gv.z;
    } else if (what == "end") {
      out.push_back(current);
    }
  }
  return out;
}

TEST(PolyPolygon, PlanesAndTextureFitsMatchTheIndependentScript) {
  const std::vector<Reference_polygon> planes = reference_planes();
  ASSERT_EQ(planes.size(), 43u);
  int degenerate = 0;
  for (const Reference_polygon& r : planes) {
    std::vector<Poly_point_record> points = r.points;
    std::vector<int> ids;
    for (size_t k = 0; k < points.size(); k++) ids.push_back(static_cast<int>(k));
    Poly_source source = {0, {0, 0, 0, 0}, static_cast<int>(ids.size()), ids.data()};
    TCPoly_Polygon polygon;
    Stream_capture quiet(std::cerr);
    const int usable =
        polygon.setPolygon(source, points.data(), static_cast<int>(points.size()), r.index, 1);
    ASSERT_EQ(usable, r.valid) << r.index << " " << r.kind;
    if (!r.valid) {
      degenerate++;
      EXPECT_EQ(polygon.flags, TCPoly_Polygon::not_imaged);
      continue;
    }
    EXPECT_NEAR(polygon.normal.x, r.normal.x, 1e-12) << r.index;
    EXPECT_NEAR(polygon.normal.y, r.normal.y, 1e-12) << r.index;
    EXPECT_NEAR(polygon.normal.z, r.normal.z, 1e-12) << r.index;
    EXPECT_NEAR(polygon.plane_d, r.plane_d, 1e-9) << r.index;
    const double scale_u = 1.0 + std::sqrt(r.gu.dot(r.gu));
    const double scale_v = 1.0 + std::sqrt(r.gv.dot(r.gv));
    for (int a = 0; a < 3; a++) {
      EXPECT_NEAR(polygon.u_gradient[a], r.gu[a], 1e-9 * scale_u) << r.index << " axis " << a;
      EXPECT_NEAR(polygon.v_gradient[a], r.gv[a], 1e-9 * scale_v) << r.index << " axis " << a;
    }
    for (const Poly_point_record& p : r.points) {
      double u = 0.0, v = 0.0;
      polygon.texture_at(p.p, u, v);
      EXPECT_NEAR(u, p.u, 1e-9) << r.index;
      EXPECT_NEAR(v, p.v, 1e-9) << r.index;
    }
  }
  EXPECT_EQ(degenerate, 3);
}

}  // namespace
