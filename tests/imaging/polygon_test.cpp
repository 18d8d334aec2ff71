#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "TCPolygon.h"

namespace {

TCPolygon ring(const double* xy, int count) {
  TCPolygon p;
  for (int i = 0; i < count; i++) p.add_vertex(xy[2 * i], xy[2 * i + 1]);
  return p;
}

TEST(Polygon, StartsEmptyAndGrowsPastItsFirstStorage) {
  TCPolygon p;
  EXPECT_EQ(p.size(), 0);
  for (int i = 0; i < 100; i++) p.add_vertex(i, -i);
  ASSERT_EQ(p.size(), 100);
  EXPECT_EQ(p.x[99], 99.0);
  EXPECT_EQ(p.y[99], -99.0);
  EXPECT_EQ(p.x[0], 0.0);
  p.clear();
  EXPECT_EQ(p.size(), 0);
}

TEST(Polygon, CopyAndAssignmentAreDeep) {
  const double xy[] = {0, 0, 2, 0, 2, 1};
  TCPolygon a = ring(xy, 3);
  TCPolygon b(a);
  TCPolygon c;
  c.add_vertex(9, 9);
  c = a;
  a.x[0] = 5.0;
  EXPECT_EQ(b.size(), 3);
  EXPECT_EQ(b.x[0], 0.0);
  EXPECT_EQ(c.size(), 3);
  EXPECT_EQ(c.x[0], 0.0);
  c = c;
  EXPECT_EQ(c.size(), 3);
}

TEST(Polygon, AreaIsUnsignedAndFollowsConcaveOutlines) {
  // L shape of three unit squares, counter-clockwise and clockwise.
  const double ccw[] = {0, 0, 2, 0, 2, 1, 1, 1, 1, 2, 0, 2};
  const double cw[] = {0, 2, 1, 2, 1, 1, 2, 1, 2, 0, 0, 0};
  EXPECT_DOUBLE_EQ(ring(ccw, 6).area(), 3.0);
  EXPECT_DOUBLE_EQ(ring(cw, 6).area(), 3.0);
  // 0.5 * |5.4 * 4.7 - 2.1 * 0.9| = 11.745
  const double tri[] = {0.3, 0.2, 5.7, 1.1, 2.4, 4.9};
  EXPECT_NEAR(ring(tri, 3).area(), 11.745, 1e-12);
}

TEST(Polygon, CentroidOfAnLShapeIsTheAreaWeightedMeanOfItsSquares) {
  // (2 * (1, 0.5) + 1 * (0.5, 1.5)) / 3 = (5/6, 5/6)
  const double ccw[] = {0, 0, 2, 0, 2, 1, 1, 1, 1, 2, 0, 2};
  double cx, cy;
  ring(ccw, 6).centroid(cx, cy);
  EXPECT_NEAR(cx, 5.0 / 6.0, 1e-12);
  EXPECT_NEAR(cy, 5.0 / 6.0, 1e-12);
}

TEST(Polygon, CentroidFarFromTheOriginKeepsItsPrecision) {
  const double sq[] = {1e6, 1e6, 1e6 + 0.25, 1e6, 1e6 + 0.25, 1e6 + 0.5, 1e6, 1e6 + 0.5};
  double cx, cy;
  TCPolygon p = ring(sq, 4);
  p.centroid(cx, cy);
  EXPECT_NEAR(cx - 1e6, 0.125, 1e-9);
  EXPECT_NEAR(cy - 1e6, 0.25, 1e-9);
  EXPECT_NEAR(p.area(), 0.125, 1e-9);
}

TEST(Polygon, DegenerateRingsHaveNoAreaAndTheVertexMeanAsCentroid) {
  TCPolygon empty;
  double cx = 7.0, cy = 7.0;
  empty.centroid(cx, cy);
  EXPECT_EQ(cx, 0.0);
  EXPECT_EQ(cy, 0.0);
  EXPECT_EQ(empty.area(), 0.0);

  const double two[] = {1, 1, 3, 5};
  ring(two, 2).centroid(cx, cy);
  EXPECT_EQ(ring(two, 2).area(), 0.0);
  EXPECT_DOUBLE_EQ(cx, 2.0);
  EXPECT_DOUBLE_EQ(cy, 3.0);

  const double line[] = {0, 0, 1, 1, 4, 4};
  ring(line, 3).centroid(cx, cy);
  EXPECT_EQ(ring(line, 3).area(), 0.0);
  EXPECT_NEAR(cx, 5.0 / 3.0, 1e-12);
  EXPECT_NEAR(cy, 5.0 / 3.0, 1e-12);

  TCPolygon out;
  out.add_vertex(3, 3);
  ring(two, 2).clip_to_rectangle(0, 10, 0, 10, out);
  EXPECT_EQ(out.size(), 0);
}

TEST(Polygon, BoundsCoverEveryVertex) {
  const double tri[] = {0.3, 0.2, 5.7, 1.1, 2.4, 4.9};
  double x0, x1, y0, y1;
  ring(tri, 3).bounds(x0, x1, y0, y1);
  EXPECT_EQ(x0, 0.3);
  EXPECT_EQ(x1, 5.7);
  EXPECT_EQ(y0, 0.2);
  EXPECT_EQ(y1, 4.9);
  TCPolygon empty;
  empty.bounds(x0, x1, y0, y1);
  EXPECT_EQ(x0, 0.0);
  EXPECT_EQ(y1, 0.0);
}

TEST(Polygon, ClipToAPixelKeepsThePartInside) {
  // A 2 x 1 rectangle over pixel [1, 2] x [1, 2]: the upper half is left.
  const double rect[] = {0.5, 0.5, 2.5, 0.5, 2.5, 1.5, 0.5, 1.5};
  TCPolygon out;
  ring(rect, 4).clip_to_rectangle(1, 2, 1, 2, out);
  ASSERT_GE(out.size(), 3);
  EXPECT_DOUBLE_EQ(out.area(), 0.5);
  double cx, cy;
  out.centroid(cx, cy);
  EXPECT_DOUBLE_EQ(cx, 1.5);
  EXPECT_DOUBLE_EQ(cy, 1.25);
  for (int i = 0; i < out.size(); i++) {
    EXPECT_GE(out.x[i], 1.0);
    EXPECT_LE(out.x[i], 2.0);
    EXPECT_GE(out.y[i], 1.0);
    EXPECT_LE(out.y[i], 2.0);
  }
}

TEST(Polygon, ClipAcrossADiagonalLeavesATriangle) {
  // x + y <= 4 over pixel [2, 3] x [1, 2]: triangle (2,1) (3,1) (2,2).
  const double tri[] = {0, 0, 4, 0, 0, 4};
  TCPolygon out;
  ring(tri, 3).clip_to_rectangle(2, 3, 1, 2, out);
  EXPECT_EQ(out.size(), 3);
  EXPECT_DOUBLE_EQ(out.area(), 0.5);
  double cx, cy;
  out.centroid(cx, cy);
  EXPECT_NEAR(cx, 7.0 / 3.0, 1e-12);
  EXPECT_NEAR(cy, 4.0 / 3.0, 1e-12);
  // Pixel [1, 2] x [1, 2] touches the diagonal only at a corner: all inside.
  ring(tri, 3).clip_to_rectangle(1, 2, 1, 2, out);
  EXPECT_EQ(out.size(), 4);
  EXPECT_DOUBLE_EQ(out.area(), 1.0);
}

TEST(Polygon, ClipToTheImageCutsALargerRing) {
  const double big[] = {-5, -5, 20, -5, 20, 20, -5, 20};
  TCPolygon out;
  ring(big, 4).clip_to_rectangle(0, 8, 0, 6, out);
  EXPECT_EQ(out.size(), 4);
  EXPECT_DOUBLE_EQ(out.area(), 48.0);
  double x0, x1, y0, y1;
  out.bounds(x0, x1, y0, y1);
  EXPECT_EQ(x0, 0.0);
  EXPECT_EQ(x1, 8.0);
  EXPECT_EQ(y0, 0.0);
  EXPECT_EQ(y1, 6.0);
}

TEST(Polygon, RingsTouchingAPixelOnlyAlongItsBorderLeaveNothing) {
  const double sq[] = {0, 0, 1, 0, 1, 1, 0, 1};
  TCPolygon out;
  ring(sq, 4).clip_to_rectangle(1, 2, 0, 1, out);  // shares an edge
  EXPECT_EQ(out.size(), 0);
  ring(sq, 4).clip_to_rectangle(1, 2, 1, 2, out);  // shares a corner
  EXPECT_EQ(out.size(), 0);
  ring(sq, 4).clip_to_rectangle(3, 4, 3, 4, out);  // apart
  EXPECT_EQ(out.size(), 0);
}

TEST(Polygon, PixelPiecesAddUpToTheWholeArea) {
  const double tri[] = {0.3, 0.2, 5.7, 1.1, 2.4, 4.9};
  TCPolygon p = ring(tri, 3);
  TCPolygon out;
  double sum = 0.0;
  for (int r = 0; r < 6; r++) {
    for (int c = 0; c < 6; c++) {
      p.clip_to_rectangle(c, c + 1, r, r + 1, out);
      sum += out.area();
    }
  }
  EXPECT_NEAR(sum, 11.745, 1e-12);
}

TEST(Polygon, ManyVertexRingsClipLikeFewVertexOnes) {
  // A regular 100-gon of radius 3 about (5, 5): the quarter above and right of
  // the centre holds a quarter of its area 0.5 * 100 * 9 * sin(2 pi / 100).
  TCPolygon p;
  const double step = 2.0 * 3.14159265358979323846 / 100.0;
  for (int k = 0; k < 100; k++)
    p.add_vertex(5 + 3 * std::cos(k * step), 5 + 3 * std::sin(k * step));
  const double whole = 0.5 * 100 * 9 * std::sin(step);
  EXPECT_NEAR(p.area(), whole, 1e-12);
  TCPolygon out;
  p.clip_to_rectangle(5, 15, 5, 15, out);
  EXPECT_NEAR(out.area(), whole / 4.0, 1e-12);
}

int mask_at(const unsigned char* mask, int cols, int r, int c) {
  return mask[r * cols + c];
}

TEST(Polygon, ScanMaskOfAPixelAlignedSquareHasNoEdgePixels) {
  const double sq[] = {1, 1, 3, 1, 3, 3, 1, 3};
  unsigned char mask[16];
  for (int i = 0; i < 16; i++) mask[i] = 9;
  int r0, r1, c0, c1;
  EXPECT_EQ(ring(sq, 4).scan_mask(mask, 4, 4, r0, r1, c0, c1), 1);
  for (int r = 0; r < 4; r++) {
    for (int c = 0; c < 4; c++) {
      const int expected = (r >= 1 && r <= 2 && c >= 1 && c <= 2) ? 1 : 0;
      EXPECT_EQ(mask_at(mask, 4, r, c), expected) << r << " " << c;
    }
  }
  EXPECT_EQ(r0, 1);
  EXPECT_EQ(r1, 2);
  EXPECT_EQ(c0, 1);
  EXPECT_EQ(c1, 2);
}

TEST(Polygon, ScanMaskMarksInsideEdgeAndOutside) {
  // [0.5, 2.5] x [0.5, 2.5] on 3 rows x 4 columns: pixel (1, 1) lies wholly
  // inside, the ring of pixels around it is cut, column 3 is outside.
  const double sq[] = {0.5, 0.5, 2.5, 0.5, 2.5, 2.5, 0.5, 2.5};
  unsigned char mask[12];
  int r0, r1, c0, c1;
  EXPECT_EQ(ring(sq, 4).scan_mask(mask, 3, 4, r0, r1, c0, c1), 1);
  const int expected[3][4] = {{2, 2, 2, 0}, {2, 1, 2, 0}, {2, 2, 2, 0}};
  for (int r = 0; r < 3; r++) {
    for (int c = 0; c < 4; c++) EXPECT_EQ(mask_at(mask, 4, r, c), expected[r][c]) << r << c;
  }
  EXPECT_EQ(r0, 0);
  EXPECT_EQ(r1, 2);
  EXPECT_EQ(c0, 0);
  EXPECT_EQ(c1, 2);
}

TEST(Polygon, ScanMaskAgreesWithPixelClipping) {
  // 1 where the clip leaves the whole pixel, 0 where it leaves nothing, 2
  // where it leaves a part.
  const double tri[] = {0.3, 0.2, 5.7, 1.1, 2.4, 4.9};
  const double diag[] = {0, 0, 4, 0, 0, 4};
  const double* rings[] = {tri, diag};
  for (const double* xy : rings) {
    TCPolygon p = ring(xy, 3);
    unsigned char mask[36];
    int r0, r1, c0, c1;
    ASSERT_EQ(p.scan_mask(mask, 6, 6, r0, r1, c0, c1), 1);
    TCPolygon out;
    for (int r = 0; r < 6; r++) {
      for (int c = 0; c < 6; c++) {
        p.clip_to_rectangle(c, c + 1, r, r + 1, out);
        const double a = out.area();
        const int m = mask_at(mask, 6, r, c);
        if (m == 1) {
          EXPECT_NEAR(a, 1.0, 1e-12) << r << " " << c;
        } else if (m == 0) {
          EXPECT_EQ(a, 0.0) << r << " " << c;
        } else {
          EXPECT_GT(a, 0.0) << r << " " << c;
          EXPECT_LT(a, 1.0) << r << " " << c;
        }
      }
    }
  }
}

TEST(Polygon, ScanMaskClampsToTheImage) {
  const double big[] = {-5, -5, 20, -5, 20, 20, -5, 20};
  unsigned char mask[6];
  int r0, r1, c0, c1;
  EXPECT_EQ(ring(big, 4).scan_mask(mask, 2, 3, r0, r1, c0, c1), 1);
  for (int i = 0; i < 6; i++) EXPECT_EQ(mask[i], 1);
  EXPECT_EQ(r0, 0);
  EXPECT_EQ(r1, 1);
  EXPECT_EQ(c0, 0);
  EXPECT_EQ(c1, 2);

  // Half off the left: column 0 is cut, column 1 whole.
  const double half[] = {-3, 0, 1.5, 0, 1.5, 2, -3, 2};
  EXPECT_EQ(ring(half, 4).scan_mask(mask, 2, 3, r0, r1, c0, c1), 1);
  const unsigned char expected[6] = {1, 2, 0, 1, 2, 0};
  for (int i = 0; i < 6; i++) EXPECT_EQ(mask[i], expected[i]) << i;
  EXPECT_EQ(c0, 0);
  EXPECT_EQ(c1, 1);
}

TEST(Polygon, ScanMaskOfRingsOffTheImageOrDegenerateMarksNothing) {
  unsigned char mask[16];
  int r0, r1, c0, c1;
  const double off[] = {10, 10, 12, 10, 12, 12};
  for (int i = 0; i < 16; i++) mask[i] = 7;
  EXPECT_EQ(ring(off, 3).scan_mask(mask, 4, 4, r0, r1, c0, c1), 0);
  for (int i = 0; i < 16; i++) EXPECT_EQ(mask[i], 0);
  const double two[] = {0.5, 0.5, 3.5, 3.5};
  EXPECT_EQ(ring(two, 2).scan_mask(mask, 4, 4, r0, r1, c0, c1), 0);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double bad[] = {0.5, 0.5, nan, 1.0, 2.0, 3.0};
  EXPECT_EQ(ring(bad, 3).scan_mask(mask, 4, 4, r0, r1, c0, c1), 0);
  const double sq[] = {1, 1, 3, 1, 3, 3, 1, 3};
  EXPECT_EQ(ring(sq, 4).scan_mask(nullptr, 4, 4, r0, r1, c0, c1), 0);
  EXPECT_EQ(ring(sq, 4).scan_mask(mask, 0, 4, r0, r1, c0, c1), 0);
}

TEST(Polygon, ScanMaskSurvivesHugeCoordinates) {
  const double huge[] = {-1e300, -1e300, 1e300, -1e300, 1.5, 1e300};
  unsigned char mask[16];
  int r0, r1, c0, c1;
  EXPECT_EQ(ring(huge, 3).scan_mask(mask, 4, 4, r0, r1, c0, c1), 1);
  EXPECT_EQ(mask_at(mask, 4, 0, 0), 1);
  TCPolygon out;
  ring(huge, 3).clip_to_rectangle(0, 1, 0, 1, out);
  EXPECT_NEAR(out.area(), 1.0, 1e-9);
}

}  // namespace
