#include <gtest/gtest.h>

#include "TCConstants.h"
#include "TCView.h"
#include "box_class.h"
#include "box_test_boxes.h"
#include "object_contour.h"

// Expected coverages come from box_seam_reference.py (run it with
// /usr/bin/python3 from this folder): the box's outline on the image plane is
// the hull of its corners, clipped to each pixel on its own.

namespace {

// A 2 m cube glowing at 1 in band 1, 10 m ahead of a level view along +x,
// turned 30 degrees about the vertical so that two faces show.
struct Turned_cube_picture {
  Turned_cube_picture() : bands(1), planes(new float*[1]), contour(nullptr), box(nullptr) {
    bands.band_id[0] = 1;
    planes[0] = new float[16 * 16]();
    contour = new object_contour(16, 16, &bands, planes, 0.0f, 0, nullptr, nullptr);
    box = new_solid_box(TCVector(2.0, 2.0, 2.0), 1.0);
    box->set_position(TCVector(10.0, 0.13, 0.05), 0.0, 30.0 * 0.017453292519444445, 0.0);
    view.set_pose(TCVector(0.0, 0.0, 0.0), tc_pi / 2, 0.0, 0.0);
    view.set_grid(16, -0.2, 0.2, 16, -0.2, 0.2);
    box->image_contour(view, *contour);
  }
  ~Turned_cube_picture() {
    delete box;
    delete contour;
    delete[] planes[0];
    delete[] planes;
  }
  TCSpectrum bands;
  float** planes;
  object_contour* contour;
  TCSolid_Box* box;
  TCView view;
};

}  // namespace

TEST(BoxFaceSeams, EdgeBetweenTwoFacesIsAsBrightAsTheFaces) {
  Turned_cube_picture picture;
  // Column 5 holds the edge where the two faces meet (shares 0.298 and
  // 0.702 in row 8); rows 4 to 11 lie wholly inside the outline.
  for (int row = 4; row <= 11; row++) {
    EXPECT_NEAR(picture.contour->layer_coverage[row][5], 1.0, 1e-5) << "row " << row;
    EXPECT_NEAR(picture.contour->layer_radiance[0][row][5], 1.0, 1e-5) << "row " << row;
    // And the faces either side of it.
    EXPECT_NEAR(picture.contour->layer_radiance[0][row][4], 1.0, 1e-5) << "row " << row;
    EXPECT_NEAR(picture.contour->layer_radiance[0][row][7], 1.0, 1e-5) << "row " << row;
  }
}

TEST(BoxFaceSeams, OutlineKeepsItsExactPartialCoverage) {
  Turned_cube_picture picture;
  struct Edge_pixel {
    int row, col;
    double coverage;
  };
  const Edge_pixel edge[] = {
      {8, 2, 0.772802383},   // left side, one face
      {8, 13, 0.131943795},  // right side, the other face
      {4, 2, 0.577746055},   // a corner of the outline
      {3, 6, 0.352150129},   // top edge, just right of the seam
      {12, 5, 0.803851179},  // bottom edge across the seam: both faces
      {3, 5, 0.346341546},   // top edge across the seam: both faces
      {4, 13, 0.125139520},
  };
  for (const Edge_pixel& p : edge) {
    EXPECT_NEAR(picture.contour->layer_coverage[p.row][p.col], p.coverage, 1e-5)
        << "pixel " << p.row << ", " << p.col;
    // Radiance arrives multiplied by the coverage.
    EXPECT_NEAR(picture.contour->layer_radiance[0][p.row][p.col], p.coverage, 1e-5)
        << "pixel " << p.row << ", " << p.col;
  }
  EXPECT_EQ(picture.contour->layer_coverage[8][1], 0.0f);
  EXPECT_EQ(picture.contour->layer_coverage[2][8], 0.0f);
}

TEST(BoxFaceSeams, MergedPictureShowsNoSeam) {
  Turned_cube_picture picture;
  picture.contour->merge_layer();
  for (int row = 4; row <= 11; row++) {
    EXPECT_NEAR(picture.planes[0][row * 16 + 5], 1.0, 1e-5) << "row " << row;
  }
  EXPECT_NEAR(picture.planes[0][8 * 16 + 2], 0.772802383, 1e-5);
}
