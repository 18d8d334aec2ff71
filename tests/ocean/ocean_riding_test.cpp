#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "TCBobbing_box.h"
#include "TCCamera.h"
#include "TCHdf_image.h"
#include "TCObject_list.h"
#include "TCObject_list_input.h"
#include "TCOcean.h"
#include "TCSettings.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

// Boxes and cameras riding a sea built from files. The sea is calm (no
// wind), so the only relief is an imported height grid: a plane
//   f(i, j) = slope_x (i - 32) + slope_y (j - 24)
// over 64 by 48 nodes 1 m apart, centred on the origin and drifting along
// +x at 0.5 m/s from the reference time 1 s. With the grid's frame offset
// (half the extent, less the position and the drift) a world point (x, y)
// reads node (x + 32 - 0.5 dt, y + 24), so the sea stands at
//   h(x, y, t) = slope_x (x - 0.5 (t - 1)) + slope_y y
// wherever that node lies inside the grid. Every value is a multiple of
// 1/16 below 5, so the floats hold it exactly.

namespace {

const double slope_x = 0.125;
const double slope_y = -0.0625;
const double drift = 0.5;      // metres per second along x
const double reference = 1.0;  // seconds

double plane_height(double x, double y, double t) {
  return slope_x * (x - drift * (t - reference)) + slope_y * y;
}

void write_plane(const std::string& path) {
  const int n_x = 64, n_y = 48;
  std::vector<float> values(n_x * n_y);
  for (int j = 0; j < n_y; j++) {
    for (int i = 0; i < n_x; i++) {
      values[i + n_x * j] = static_cast<float>(slope_x * (i - 32) + slope_y * (j - 24));
    }
  }
  const int dims[2] = {n_y, n_x};
  int first = 1;
  ASSERT_EQ(hdf_write_plane(path.c_str(), values.data(), dims, first), 1);
}

// A calm sea, with the drifting plane when grid is set; its lattice
// repeats along both axes when periodic is set, else along neither.
std::string calm_ocean(const Scratch_folder& folder, bool grid, bool periodic, bool wall,
                       bool doubler) {
  std::ostringstream text;
  const int flag = periodic ? 1 : 0;
  text << "Tidecast_data_file ocean 5 5\n"
       << "n_points_x 32 " << flag << "\nn_points_y 32 " << flag
       << "\ndx 2\ndy 2\n"
          "spectrum_file: "
       << folder.file("calm.spectrum")
       << "\ngenerate_file:  yes\nrandom_seed 5\nend\n"
          "number_aux_oceans  0\n";
  if (grid) {
    text << "number_disturbances  " << 1 + (wall ? 1 : 0) + (doubler ? 1 : 0)
         << "\n"
            "render_disturbances_interior:  black\n"
            "disturbance_type:  height_grid\n"
            "n_points_x 64\nn_points_y 48\ndx 1\ndy 1\n"
            "height_detail_file: "
         << folder.file("plane.detail")
         << "\nposition_x: 0\nposition_y: 0\norientation: 0\n"
            "velocity: 0.5\ndirection: 0\nend\n";
    // A wall along the y axis.
    if (wall) {
      text << "disturbance_type:  reflect_wall\nposition_x 0\nposition_y 0\nangle 90\nend\n";
    }
    // A still multiplier grid of 2s, 8 by 8 nodes 1 m apart, centred on
    // (10, -10).
    if (doubler) {
      text << "disturbance_type:  multiplier_grid\nn_points_x 8\nn_points_y 8\ndx 1\ndy 1\n"
              "multiplier_detail_file: "
           << folder.file("doubler.detail")
           << "\nposition_x: 10\nposition_y: -10\norientation: 0\nvelocity: 0\n"
              "direction: 0\nend\n";
    }
  } else {
    text << "number_disturbances  0\n";
  }
  text << "box_depth  25\nreference_time  1\nsurface_type:  flat\nmax_distance  1000\n"
          "doubling_distance  100\nvariable_wind:  no\nwind_direction:  30\n"
          "wind_velocity:  0\nocean_spectrum_type:  phillips_smoothed\n"
          "jerlov_water_type:  3\nexternal_exact:  no\nglitter:  yes\nwhitecaps: no\n"
          "texture_maps:  no\nsunbeams:  no\nexclude_items:   no\nnumber_of_bands:  1\n"
          "band_ids:  1\nindex_of_refraction:  1.33\nend\n";
  return text.str();
}

void write_sea_files(const Scratch_folder& folder, bool grid, bool periodic, bool wall,
                     bool doubler) {
  put_file(folder.file("sea.ocean"), calm_ocean(folder, grid, periodic, wall, doubler));
  if (doubler) {
    put_file(folder.file("doubler.detail"),
             "Tidecast_data_file multiplier_grid 2 2\n"
             "multiplier_file_name:  " +
                 folder.file("doubler.hdf") +
                 "\nperiodicity:  0 0\nnumber_of_scaling_key_times:  1\ntime  scale\n0 1\nend\n");
    std::vector<float> twos(64, 2.0f);
    const int dims[2] = {8, 8};
    int first = 1;
    EXPECT_EQ(hdf_write_plane(folder.file("doubler.hdf").c_str(), twos.data(), dims, first), 1);
  }
  if (!grid) return;
  put_file(folder.file("plane.detail"),
           "Tidecast_data_file height_grid 2 2\n"
           "height_file_name:  " +
               folder.file("plane.hdf") +
               "\nperiodicity:  0 0\nnumber_of_scaling_key_times:  1\ntime  scale\n0 1\nend\n");
  write_plane(folder.file("plane.hdf"));
}

// A 4 by 4 by 1 m box riding within 2 m of the sea, sampling its whole
// footprint.
void write_box_file(const Scratch_folder& folder) {
  put_file(folder.file("raft.box"),
           "Tidecast_data_file box 1 1\nlength_x:  4\nlength_y:  4\nlength_z:  1\n"
           "number_of_bands: 1\nband_id: 1\nradiance: 0.5\nreflectivity: 0.1\n"
           "transmissivity: 0\nend\n"
           "Tidecast_data_file bobbing_box 1 1\ndecoupling_height 2\n"
           "dampening_factor  1\nend\n");
}

// A camera riding within 0.5 m of the mean level over a base of 4 m.
void write_camera_file(const Scratch_folder& folder) {
  put_file(folder.file("buoy.cam"),
           "Tidecast_data_file camera 3 3\nn_pixel_azimuth 4\nn_pixel_elevation 4\n"
           "fov_azimuth 30\nfov_elevation 30\nimage_method 1\npicture_fraction_flag 0\n"
           "n_sub_azimuth 1\nn_sub_elevation 1\nnumber_of_bands 1\nband_id 1\nanti_alias 0\n"
           "efficiency_matte 0\nimage_slices 1\nimage_format img\nend\nuse_mattes: 0\n"
           "Tidecast_data_file bobbing_camera 1 1\ndecouple_height: 0.5\n"
           "decouple_relax_time: 2\nbase_size: 4\nend\n");
}

std::string pose(double x, double y, double z, double phi_degrees = 0.0) {
  std::ostringstream text;
  text << "number_of_times 1\ntime x y z chi phi theta\n0 " << x << " " << y << " " << z << " 0 "
       << phi_degrees << " 0\n";
  return text.str();
}

// The list: the sea at the origin, then a bobbing box at box_at, and a
// bobbing camera at camera_at.
std::string riding_list(const Scratch_folder& folder, const std::string& box_at,
                        const std::string& camera_at) {
  return "number_of_bands: 1\nwidth center_wavelength band_id \n1 0.55 0.1\nsun_flag: 0\n"
         "number_of_objects: 2\n" +
         pose(0, 0, 0) +
         "object_name: sea\nobject_type: ocean\nobject_file: " + folder.file("sea.ocean") +
         "\npriority: 1\n" + box_at +
         "object_name: raft\nobject_type: bobbing_box\nobject_file: " + folder.file("raft.box") +
         "\npriority: 2\nnumber_of_cameras: 1\n" + camera_at +
         "object_type: bobbing_camera\nobject_file: " + folder.file("buoy.cam") + "\n";
}

class Riding : public ::testing::Test {
 protected:
  Riding() : saved_verbose_(verbose) { verbose = 0; }
  ~Riding() override { verbose = saved_verbose_; }

  // Reads and builds the list; 1 when it all worked.
  int build(const std::string& box_at, const std::string& camera_at, bool grid = true,
            bool periodic = true, bool wall = false, bool doubler = false) {
    write_sea_files(folder, grid, periodic, wall, doubler);
    write_box_file(folder);
    write_camera_file(folder);
    std::istringstream in(riding_list(folder, box_at, camera_at));
    Stream_capture out(std::cout);
    if (input.read_list(in) != 1) return 0;
    int needs_updates = 0;
    if (list.build(input, needs_updates) != 1) return 0;
    printed = out.text();
    sea = list.n_objects > 0 ? dynamic_cast<TCOcean*>(list.objects[0]) : nullptr;
    box = list.n_objects > 1 ? dynamic_cast<TCBobbing_box*>(list.objects[1]) : nullptr;
    camera = list.n_cameras > 0 ? dynamic_cast<TCBobbing_camera*>(list.cameras[0]) : nullptr;
    return sea != nullptr && box != nullptr && camera != nullptr;
  }

  // The frame's order: the sea, then the box; the camera last.
  void frame(double t) {
    Stream_capture out(std::cout);
    sea->set_time(t);
    box->set_time(t);
    camera->set_time(t);
  }

  // The sea's height under a world point, through the surface layer.
  double height_under(double x, double y) {
    double own = 0.0;
    return sea->point_height(TCVector(x, y, 0.0), own);
  }

  int saved_verbose_;
  Scratch_folder folder;
  TCObject_list_input input;
  TCObject_list list;
  std::string printed;
  TCOcean* sea = nullptr;
  TCBobbing_box* box = nullptr;
  TCBobbing_camera* camera = nullptr;
};

}  // namespace

TEST_F(Riding, CalmSeaWithoutWindIsFlatEverywhere) {
  ASSERT_EQ(build(pose(2, 3, 0.5), pose(-1, 2, 0.3), false), 1) << printed;
  for (double t : {1.0, 2.5, 7.0}) {
    frame(t);
    for (int k = 0; k < sea->primary.n_x * sea->primary.n_y; k++) {
      ASSERT_EQ(sea->ocean_grid->height[k], 0.0f) << "node " << k << " at t = " << t;
    }
    for (double x : {-40.0, -3.3, 0.0, 1.7, 25.0}) {
      for (double y : {-11.0, 0.0, 4.2}) EXPECT_EQ(height_under(x, y), 0.0) << x << " " << y;
    }
  }
}

TEST_F(Riding, SeaReadsThePlaneOfItsHeightGridWhereTheGridLies) {
  ASSERT_EQ(build(pose(2, 3, 0.5), pose(-1, 2, 0.3)), 1) << printed;
  for (double t : {1.0, 3.0}) {
    frame(t);
    for (double x : {-20.0, -1.25, 0.0, 6.5, 20.0}) {
      for (double y : {-15.0, 0.0, 2.75, 15.0}) {
        EXPECT_NEAR(height_under(x, y), plane_height(x, y, t), 1e-12)
            << x << " " << y << " at t = " << t;
      }
    }
  }
}

TEST_F(Riding, BoxWithinReachTakesTheMeanHeightAndTheTiltOfThePlane) {
  ASSERT_EQ(build(pose(2, 3, 0.5), pose(-1, 2, 3)), 1) << printed;
  frame(1.0);
  // Its 101 by 101 samples lie evenly about (2, 3) over 4 by 4 m: their
  // mean on a plane is the height at the centre, 0.25 - 0.1875 = 0.0625,
  // and the fitted slopes are the plane's.
  const double mean = plane_height(2.0, 3.0, 1.0);
  ASSERT_DOUBLE_EQ(mean, 0.0625);
  // The same mean taken through the sea itself, sample by sample: 4 m / 100
  // apart on both axes.
  double sum = 0.0;
  for (int i = -50; i <= 50; i++) {
    for (int j = -50; j <= 50; j++) sum += height_under(2.0 + i * 0.04, 3.0 + j * 0.04);
  }
  EXPECT_NEAR(sum / (101.0 * 101.0), mean, 1e-12);
  TCVector p;
  double chi = 0.0, phi = 0.0, theta = 0.0;
  box->get_pose(p, chi, phi, theta);
  EXPECT_NEAR(p.z, 0.5 + mean, 1e-12);
  // The tilt moves the box by the slope times its key height.
  EXPECT_NEAR(p.x, 2.0 + slope_x * 0.5, 1e-12);
  EXPECT_NEAR(p.y, 3.0 + slope_y * 0.5, 1e-12);
  EXPECT_NEAR(chi, -std::atan(slope_x), 1e-7);
  EXPECT_NEAR(theta, std::atan(slope_y), 1e-7);
  EXPECT_EQ(phi, 0.0);
}

TEST_F(Riding, BoxHeightFollowsTheSeaUnderItAsTheGridDrifts) {
  ASSERT_EQ(build(pose(2, 3, 0.5), pose(-1, 2, 3)), 1) << printed;
  // h(2, 3, t) = 0.0625 (2 - t): 0.0625, 0, -0.0625, -0.125.
  const double times[4] = {1.0, 2.0, 3.0, 4.0};
  const double expected[4] = {0.0625, 0.0, -0.0625, -0.125};
  for (int k = 0; k < 4; k++) {
    frame(times[k]);
    TCVector p;
    double chi = 0.0, phi = 0.0, theta = 0.0;
    box->get_pose(p, chi, phi, theta);
    EXPECT_NEAR(p.z, 0.5 + expected[k], 1e-12) << "t = " << times[k];
    EXPECT_NEAR(p.z - 0.5, height_under(2.0, 3.0), 1e-12) << "t = " << times[k];
    EXPECT_NEAR(chi, -std::atan(slope_x), 1e-7) << "t = " << times[k];
  }
}

TEST_F(Riding, BoxBeyondItsDecouplingHeightKeepsItsKeyFrame) {
  // 10 m up, the sea 0.0625 m under it and the band 2 m.
  ASSERT_EQ(build(pose(2, 3, 10), pose(-1, 2, 3)), 1) << printed;
  frame(1.0);
  TCVector p;
  double chi = 1.0, phi = 1.0, theta = 1.0;
  box->get_pose(p, chi, phi, theta);
  EXPECT_EQ(p.x, 2.0);
  EXPECT_EQ(p.y, 3.0);
  EXPECT_EQ(p.z, 10.0);
  EXPECT_EQ(chi, 0.0);
  EXPECT_EQ(theta, 0.0);
}

TEST_F(Riding, CameraWithinReachTiltsWithThePlaneAndRidesItsMean) {
  ASSERT_EQ(build(pose(2, 3, 10), pose(-1, 2, 0.3)), 1) << printed;
  for (double t : {1.0, 2.0, 3.5}) {
    frame(t);
    // A base of 4 m about (-1, 2): the mean is the height there,
    // -0.125 - 0.0625 (t - 1) - 0.125, and the slopes are the plane's.
    const double mean = plane_height(-1.0, 2.0, t);
    EXPECT_DOUBLE_EQ(mean, -0.25 - 0.0625 * (t - 1.0));
    TCVector p;
    double chi = 0.0, phi = 0.0, theta = 0.0;
    camera->get_pose(p, chi, phi, theta);
    EXPECT_NEAR(p.z, 0.3 + mean, 1e-12) << "t = " << t;
    EXPECT_NEAR(p.x, -1.0 + slope_x * 0.3, 1e-12) << "t = " << t;
    EXPECT_NEAR(p.y, 2.0 + slope_y * 0.3, 1e-12) << "t = " << t;
    EXPECT_NEAR(chi, -std::atan(slope_x), 1e-7) << "t = " << t;
    EXPECT_NEAR(theta, std::atan(slope_y), 1e-7) << "t = " << t;
    EXPECT_EQ(phi, 0.0);
  }
}

TEST_F(Riding, CameraBeyondItsDecouplingHeightKeepsItsKeyFrame) {
  ASSERT_EQ(build(pose(2, 3, 10), pose(-1, 2, 3)), 1) << printed;
  frame(2.0);
  TCVector p;
  double chi = 1.0, phi = 1.0, theta = 1.0;
  camera->get_pose(p, chi, phi, theta);
  EXPECT_EQ(p.x, -1.0);
  EXPECT_EQ(p.y, 2.0);
  EXPECT_EQ(p.z, 3.0);
  EXPECT_EQ(chi, 0.0);
  EXPECT_EQ(theta, 0.0);
}

TEST_F(Riding, CalmSeasBoxRunsFromItsDepthToTheMeanLevel) {
  ASSERT_EQ(build(pose(2, 3, 10), pose(-1, 2, 3), false), 1) << printed;
  frame(2.0);
  // Periodic both ways: unbounded across; 25 m deep, no crest.
  EXPECT_EQ(sea->length.x, 99999999.0);
  EXPECT_EQ(sea->length.y, 99999999.0);
  EXPECT_EQ(sea->length.z, 25.0);
  EXPECT_EQ(sea->box_centre.z, -12.5);
  EXPECT_EQ(sea->ocean_grid->z_offset, 12.5);
}

TEST_F(Riding, SeasBoxReachesPastTheTallestValueOfItsGrid) {
  ASSERT_EQ(build(pose(2, 3, 10), pose(-1, 2, 3)), 1) << printed;
  frame(2.0);
  // The grid's values run from 0.125 (0 - 32) - 0.0625 (47 - 24) = -5.4375
  // to 0.125 (63 - 32) - 0.0625 (0 - 24) = 5.375, on a lattice of zeros:
  // the top is 5.4375 * 1.05 = 5.709375.
  const double top = 5.4375 * 1.05;
  EXPECT_NEAR(sea->length.z, 25.0 + top, 1e-12);
  EXPECT_NEAR(sea->box_centre.z, (top - 25.0) * 0.5, 1e-12);
  EXPECT_NEAR(sea->ocean_grid->z_offset, -(top - 25.0) * 0.5, 1e-12);
  EXPECT_EQ(sea->length.x, 99999999.0);
  // The surface stays where it was in the world while the box is centred.
  EXPECT_NEAR(height_under(2.0, 3.0), plane_height(2.0, 3.0, 2.0), 1e-12);
}

TEST_F(Riding, SeaThatDoesNotRepeatHasTheBoxOfItsFirstDetail) {
  ASSERT_EQ(build(pose(2, 3, 10), pose(-1, 2, 3), true, false), 1) << printed;
  // The grid's 64 by 48 nodes 1 m apart, not the lattice's 64 by 64 m.
  EXPECT_EQ(sea->length.x, 64.0);
  EXPECT_EQ(sea->length.y, 48.0);
  frame(2.0);
  EXPECT_EQ(sea->length.x, 64.0);
  EXPECT_EQ(sea->length.y, 48.0);
  EXPECT_NEAR(height_under(2.0, 3.0), plane_height(2.0, 3.0, 2.0), 1e-12);
}

TEST_F(Riding, WallAlongTheYAxisAddsTheMirroredGridAndDoublesTheBox) {
  ASSERT_EQ(build(pose(2, 3, 10), pose(-1, 2, 3), true, true, true), 1) << printed;
  ASSERT_EQ(sea->n_walls, 1);
  ASSERT_EQ(sea->n_fields, 1);
  for (double t : {1.0, 3.0}) {
    frame(t);
    // (x, y) also reads the sea at (-x, y): the x slopes cancel and
    // 2 slope_y y - slope_x (t - 1) remains. The wall's 90 degrees, through
    // the literal degree constant, leave a cosine of about 5e-11: hence
    // the looser bound.
    for (double x : {-6.0, 0.5, 4.0}) {
      for (double y : {-2.0, 3.0}) {
        EXPECT_NEAR(height_under(x, y), plane_height(x, y, t) + plane_height(-x, y, t), 1e-9)
            << x << " " << y << " at t = " << t;
        EXPECT_NEAR(height_under(x, y), 2.0 * slope_y * y - slope_x * (t - 1.0), 1e-9);
      }
    }
  }
  // Both ends of the range doubled, however far the wall.
  const double top = 2.0 * 5.4375 * 1.05;
  EXPECT_NEAR(sea->length.z, 25.0 + top, 1e-12);
}

TEST_F(Riding, MultiplierGridScalesTheSeaUnderItAndLeavesItElsewhere) {
  ASSERT_EQ(build(pose(2, 3, 10), pose(-1, 2, 3), true, true, false, true), 1) << printed;
  ASSERT_EQ(sea->n_fields, 2);
  for (double t : {1.0, 2.0}) {
    frame(t);
    // Within a metre and a half of (10, -10) every corner of the doubler
    // is 2: the height grid's plane is doubled there.
    for (double x : {8.5, 10.0, 11.25}) {
      for (double y : {-11.5, -10.0, -8.75}) {
        EXPECT_NEAR(height_under(x, y), 2.0 * plane_height(x, y, t), 1e-12)
            << x << " " << y << " at t = " << t;
      }
    }
    // Far from it the multiplier is 1.
    for (double x : {-5.0, 2.0}) {
      for (double y : {3.0, 12.0}) {
        EXPECT_NEAR(height_under(x, y), plane_height(x, y, t), 1e-12)
            << x << " " << y << " at t = " << t;
      }
    }
  }
}

TEST_F(Riding, BoxTurnedAQuarterFitsTheSlopesAlongItsOwnAxes) {
  ASSERT_EQ(build(pose(2, 3, 0.5, 90), pose(-1, 2, 3)), 1) << printed;
  frame(1.0);
  // Heading 90 degrees: the box's x runs along the world's y and its y
  // along the world's -x, so its slopes are slope_y and -slope_x; the
  // patch is still centred on (2, 3). The degree constant leaves a cosine
  // of about 5e-11.
  TCVector p;
  double chi = 0.0, phi = 0.0, theta = 0.0;
  box->get_pose(p, chi, phi, theta);
  EXPECT_NEAR(p.z, 0.5 + plane_height(2.0, 3.0, 1.0), 1e-9);
  EXPECT_NEAR(p.x, 2.0 + slope_y * 0.5, 1e-9);
  EXPECT_NEAR(p.y, 3.0 - slope_x * 0.5, 1e-9);
  EXPECT_NEAR(chi, -std::atan(slope_y), 1e-7);
  EXPECT_NEAR(theta, std::atan(-slope_x), 1e-7);
  EXPECT_NEAR(phi, 1.5707963267, 1e-9);
}
