#include <gtest/gtest.h>

#include "TCMatrix.h"
#include "TCView.h"

namespace {

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

}  // namespace
