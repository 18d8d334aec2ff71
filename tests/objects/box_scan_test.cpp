#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "TCConstants.h"
#include "TCObject_list.h"
#include "TCStar.h"
#include "TCView.h"
#include "box_class.h"
#include "box_input.h"
#include "box_test_boxes.h"
#include "object_contour.h"

// Expected coverages come from box_scan_reference.py (run it with
// /usr/bin/python3), which clips and projects the face on its own.

namespace {

// One band (id 1) of caller's planes for a rows x cols patch.
struct Patch {
  Patch(int rows, int cols, int anti_alias) : bands(1), planes(new float*[1]), contour(nullptr) {
    planes[0] = new float[rows * cols]();
    contour = new object_contour(rows, cols, &bands, planes, 0.0f, anti_alias, nullptr, nullptr);
  }
  ~Patch() {
    delete contour;
    delete[] planes[0];
    delete[] planes;
  }
  double coverage_sum() const {
    double sum = 0.0;
    for (int r = 0; r < contour->n_rows; r++)
      for (int c = 0; c < contour->n_cols; c++) sum += contour->layer_coverage[r][c];
    return sum;
  }
  TCSpectrum bands;
  float** planes;
  object_contour* contour;
};

TCView view_at(const TCVector& position, double chi, double phi, double theta, int rows, double e0,
               double e1, int cols, double a0, double a1) {
  TCView view;
  view.set_pose(position, chi, phi, theta);
  view.set_grid(rows, e0, e1, cols, a0, a1);
  return view;
}

std::unique_ptr<TCSolid_Box> cube(double radiance) {
  return std::unique_ptr<TCSolid_Box>(new_solid_box(TCVector(2.0, 2.0, 2.0), radiance));
}

TEST(BoxFaceScan, CoverageOfOneFaceAddsUpToItsProjectedArea) {
  auto box = cube(2.5);
  box->set_position(TCVector(0.4, -0.1, 0.2), 0.0, 0.3, 0.0);
  TCView view =
      view_at(TCVector(0.3, -0.2, 5.0), tc_pi - 0.2, 0.4, 0.1, 32, -0.8, 0.8, 32, -0.8, 0.8);
  Patch patch(32, 32, 0);
  box->image_contour(view, *patch.contour);
  const double area = 115.917958128597;  // pixels
  EXPECT_NEAR(patch.coverage_sum(), area, 1e-4);
  // Radiance arrives premultiplied by coverage.
  double radiance = 0.0;
  for (int r = 0; r < 32; r++)
    for (int c = 0; c < 32; c++) radiance += patch.contour->layer_radiance[0][r][c];
  EXPECT_NEAR(radiance, 2.5 * area, 1e-3);
  EXPECT_EQ(box->lit_face, 0);
}

TEST(BoxFaceScan, DistancesAreSquaredAlongThePixelsRays) {
  auto box = cube(1.0);
  // Straight down from 5 m onto the top face at z = 1: plane point (e, a)
  // meets it 4 sqrt(e^2 + a^2 + 1) away. Pixel (5, 5) spans [0, 0.1]^2.
  TCView view = view_at(TCVector(0.0, 0.0, 5.0), tc_pi, 0.0, 0.0, 10, -0.5, 0.5, 10, -0.5, 0.5);
  Patch patch(10, 10, 1);
  box->image_contour(view, *patch.contour);
  EXPECT_FLOAT_EQ(patch.contour->layer_coverage[5][5], 1.0f);
  EXPECT_NEAR(patch.contour->layer_distance[5][5], 16.0 * 1.005, 1e-4);
  EXPECT_NEAR(patch.contour->layer_near[5][5], 16.0, 1e-4);
  EXPECT_NEAR(patch.contour->layer_far[5][5], 16.0 * 1.02, 1e-4);
  // The face spans e and a in [-0.25, 0.25]: rows and columns 2.5 to 7.5.
  EXPECT_FLOAT_EQ(patch.contour->layer_coverage[2][2], 0.25f);
  EXPECT_FLOAT_EQ(patch.contour->layer_coverage[2][5], 0.5f);
  EXPECT_FLOAT_EQ(patch.contour->layer_coverage[1][5], 0.0f);
  EXPECT_NEAR(patch.coverage_sum(), 25.0, 1e-9);
}

void expect_coverage(const Patch& patch, const double expected[8][8]) {
  for (int r = 0; r < 8; r++)
    for (int c = 0; c < 8; c++)
      EXPECT_NEAR(patch.contour->layer_coverage[r][c], expected[r][c], 1e-6) << r << " " << c;
}

TEST(BoxFaceScan, FaceWithTwoCornersBehindTheViewIsClippedAtTheViewPlane) {
  auto box = cube(1.0);
  // 0.5 m above the top face, level, looking along +x.
  TCView view = view_at(TCVector(0.0, 0.0, 1.5), tc_pi / 2, 0.0, 0.0, 8, -2.0, 0.0, 8, -2.0, 2.0);
  Patch patch(8, 8, 0);
  box->image_contour(view, *patch.contour);
  const double expected[8][8] = {
      {1, 1, 1, 1, 1, 1, 1, 1}, {1, 1, 1, 1, 1, 1, 1, 1},     {1, 1, 1, 1, 1, 1, 1, 1},
      {1, 1, 1, 1, 1, 1, 1, 1}, {0.5, 1, 1, 1, 1, 1, 1, 0.5}, {0, 0.5, 1, 1, 1, 1, 0.5, 0},
      {0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0, 0, 0},
  };
  expect_coverage(patch, expected);
}

TEST(BoxFaceScan, FaceWithThreeCornersBehindTheViewKeepsTheCornerInFront) {
  auto box = cube(1.0);
  TCView view = view_at(TCVector(0.9, 0.9, 1.5), tc_pi / 2 + 0.3, tc_pi / 4, 0.0, 8, -3.0, -1.0, 8,
                        -1.0, 1.0);
  Patch patch(8, 8, 0);
  box->image_contour(view, *patch.contour);
  const double expected[8][8] = {
      {0.080478752, 0.938415199, 1, 1, 1, 1, 0.938415200, 0.080478752},
      {0, 0.453163780, 1, 1, 1, 1, 0.453163781, 0},
      {0, 0.025632048, 0.861801562, 1, 1, 0.861801563, 0.025632048, 0},
      {0, 0, 0.321703439, 1, 1, 0.321703440, 0, 0},
      {0, 0, 0.001333160, 0.754640109, 0.754640110, 0.001333160, 0, 0},
      {0, 0, 0, 0.197825187, 0.197825188, 0, 0, 0},
      {0, 0, 0, 0, 0, 0, 0, 0},
      {0, 0, 0, 0, 0, 0, 0, 0},
  };
  expect_coverage(patch, expected);
}

TEST(BoxFaceScan, FaceWithOneCornerBehindTheViewGainsAVertex) {
  auto box = cube(1.0);
  TCView view = view_at(TCVector(0.9, 0.9, 1.5), tc_pi / 2 + 0.1, tc_pi / 4 + tc_pi, 0.0, 8, -1.0,
                        1.0, 8, -1.0, 1.0);
  Patch patch(8, 8, 0);
  box->image_contour(view, *patch.contour);
  const double expected[8][8] = {
      {1, 1, 1, 1, 1, 1, 1, 1},
      {1, 1, 1, 1, 1, 1, 1, 1},
      {0.986252459, 1, 1, 1, 1, 1, 1, 0.986252459},
      {0.034493714, 0.204333561, 0.387920948, 0.571508336, 0.571508336, 0.387920948, 0.204333561,
       0.034493714},
      {0, 0, 0, 0, 0, 0, 0, 0},
      {0, 0, 0, 0, 0, 0, 0, 0},
      {0, 0, 0, 0, 0, 0, 0, 0},
      {0, 0, 0, 0, 0, 0, 0, 0},
  };
  expect_coverage(patch, expected);
}

TEST(BoxFaceScan, FaceWhollyBehindTheViewIsDropped) {
  auto box = cube(1.0);
  // Above the top face looking straight up.
  TCView view = view_at(TCVector(0.0, 0.0, 1.5), 0.0, 0.0, 0.0, 8, -2.0, 2.0, 8, -2.0, 2.0);
  Patch patch(8, 8, 0);
  box->image_contour(view, *patch.contour);
  EXPECT_EQ(patch.coverage_sum(), 0.0);
}

TEST(BoxFaceScan, ViewInsideTheBoxFillsEveryPixelAtDistanceZero) {
  auto box = cube(3.0);
  TCView view = view_at(TCVector(0.2, 0.1, -0.3), 1.0, 2.0, 0.5, 4, -1.0, 1.0, 5, -1.0, 1.0);
  Patch patch(4, 5, 1);
  box->image_contour(view, *patch.contour);
  for (int r = 0; r < 4; r++) {
    for (int c = 0; c < 5; c++) {
      EXPECT_EQ(patch.contour->layer_coverage[r][c], 1.0f);
      EXPECT_EQ(patch.contour->layer_distance[r][c], 0.0f);
      EXPECT_EQ(patch.contour->layer_near[r][c], 0.0f);
      EXPECT_FLOAT_EQ(patch.contour->layer_radiance[0][r][c], 3.0f);
    }
  }
}

TEST(BoxFaceScan, PixelsAlreadyCoveredNearerAreSkipped) {
  auto box = cube(1.0);
  TCView view = view_at(TCVector(0.0, 0.0, 5.0), tc_pi, 0.0, 0.0, 10, -0.5, 0.5, 10, -0.5, 0.5);
  Patch patch(10, 10, 0);
  patch.contour->total_coverage[5][5] = 1.0f;
  patch.contour->total_distance[5][5] = 10.0f;  // nearer than 16
  patch.contour->total_coverage[4][4] = 1.0f;
  patch.contour->total_distance[4][4] = 100.0f;  // farther
  box->image_contour(view, *patch.contour);
  EXPECT_EQ(patch.contour->layer_coverage[5][5], 0.0f);
  EXPECT_EQ(patch.contour->layer_coverage[4][4], 1.0f);
  EXPECT_EQ(patch.contour->layer_coverage[5][4], 1.0f);
}

// Notes, per face met by the pixel rays, the flags surface_radiance sees.
class Flag_box : public box_class {
 public:
  explicit Flag_box(const box_input& input) : box_class(input), calls(0) {
    for (int f = 0; f < 7; f++) turned[f] = lit[f] = -1;
  }
  void surface_radiance(const TCRay& ray, TCSpectrum& spectrum, TCView&) override {
    TCVector hit;
    double distance = 0.0;
    const int face = ray_intersection(ray, hit, distance);
    calls++;
    // Rays near an edge may meet the neighbouring face first; only those
    // well inside a face say which face is being scanned.
    const int axis = (face - 1) / 2;
    if (std::fabs(hit[(axis + 1) % 3]) < 0.9 && std::fabs(hit[(axis + 2) % 3]) < 0.9) {
      turned[face] = face_turned;
      lit[face] = lit_face;
    }
    for (int k = 0; k < spectrum.n; k++) spectrum.radiance_in_band[k] = 1.0;
  }
  int turned[7];
  int lit[7];
  int calls;
};

// From (3, 3, 3) towards the origin the +x, +y and +z faces show.
TCView corner_view() {
  return view_at(TCVector(3.0, 3.0, 3.0), std::acos(-1.0 / std::sqrt(3.0)), 1.25 * tc_pi, 0.0, 12,
                 -0.6, 0.6, 12, -0.6, 0.6);
}

TEST(BoxFaceScan, FacesAwayFromTheSunAreMarkedTurned) {
  box_input input;
  input.length = TCVector(2.0, 2.0, 2.0);
  Flag_box* box = new Flag_box(input);
  TCObject_list list;
  ASSERT_EQ(list.add_runtime_object(box), 1);
  list.sun = new TCStar();
  // Light travelling along (sin 2, 0, cos 2): towards +x and down.
  list.sun->set_angles(2.0, 0.0);
  TCView view = corner_view();
  Patch patch(12, 12, 0);
  box->image_contour(view, *patch.contour);
  EXPECT_GT(box->calls, 0);
  EXPECT_EQ(box->turned[1], 1);  // +x
  EXPECT_EQ(box->turned[3], 0);  // +y, square to the light
  EXPECT_EQ(box->turned[5], 0);  // +z
  EXPECT_EQ(box->lit[1], 1);
  EXPECT_EQ(box->lit[3], 1);
  EXPECT_EQ(box->lit[5], 1);
  EXPECT_EQ(box->lit_face, 0);

  // Light towards -x, -y and down (azimuth 4: cos and sin both below 0):
  // every face seen is lit.
  list.sun->set_angles(2.0, 4.0);
  box->image_contour(view, *patch.contour);
  EXPECT_EQ(box->turned[1], 0);
  EXPECT_EQ(box->turned[3], 0);
  EXPECT_EQ(box->turned[5], 0);
}

TEST(BoxFaceScan, ViewOnAFacePlaneSeesNoFaceOfThatAxis) {
  box_input input;
  input.length = TCVector(2.0, 2.0, 2.0);
  Flag_box box(input);
  // Level with the top face, off along -x: only the -x face is scanned.
  TCView view = view_at(TCVector(-5.0, 0.0, 1.0), tc_pi / 2, 0.0, 0.0, 8, -0.4, 0.4, 8, -0.4, 0.4);
  Patch patch(8, 8, 0);
  box.image_contour(view, *patch.contour);
  EXPECT_EQ(box.turned[5], -1);
  EXPECT_EQ(box.turned[6], -1);
  EXPECT_EQ(box.turned[2], 1);
  // Plane e = (z - 1) / 4 spans [-0.5, 0] on the face, a = -y / 4 spans
  // [-0.25, 0.25]: rows 0 to 3 whole, columns 2 to 5 whole, 1 and 6 half.
  for (int r = 0; r < 8; r++) {
    for (int c = 0; c < 8; c++) {
      double expected = 0.0;
      if (r < 4 && c >= 2 && c <= 5) expected = 1.0;
      if (r < 4 && (c == 1 || c == 6)) expected = 0.5;
      EXPECT_NEAR(patch.contour->layer_coverage[r][c], expected, 1e-9) << r << " " << c;
    }
  }
}

TEST(BoxFaceScan, WithoutASunEveryFaceCountsAsTurned) {
  box_input input;
  input.length = TCVector(2.0, 2.0, 2.0);
  Flag_box box(input);
  TCView view = corner_view();
  Patch patch(12, 12, 0);
  box.image_contour(view, *patch.contour);
  EXPECT_EQ(box.turned[1], 1);
  EXPECT_EQ(box.turned[3], 1);
  EXPECT_EQ(box.turned[5], 1);
  EXPECT_EQ(box.lit[5], 1);
  EXPECT_EQ(box.turned[2], -1);  // -x never seen
  EXPECT_EQ(box.lit_face, 0);
}

}  // namespace
