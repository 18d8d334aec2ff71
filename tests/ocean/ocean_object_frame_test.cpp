// The runtime sea brought up to time: the order in which a frame's fields
// run, where travelling maps go, how the box follows the waves, and what
// the surface answers about its heights.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "TCDisturbed_grid.h"
#include "TCOcean.h"
#include "TCSurface_field.h"
#include "TCWave_spectrum.h"
#include "ocean_input.h"
#include "ocean_object_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

std::string with_time(const std::string& what, double t) {
  std::ostringstream text;
  text << what << " " << t;
  return text.str();
}

// Stands in for the primary wave field: logs each call with its time, and
// on transforming leaves a flat lattice with one crest and one trough.
class Logging_spectrum : public TCWave_spectrum {
 public:
  Logging_spectrum(std::vector<std::string>& log_in, float* buffer, int n_x_in, int n_y_in)
      : TCWave_spectrum(0, 0, buffer, n_x_in, n_y_in, 2.0, 2.0, 0.0, 0.0, 0.0, 0.0),
        log(log_in),
        crest(0.4f),
        trough(-0.7f) {}
  void evolve_heights(double t) override { log.push_back(with_time("primary evolve", t)); }
  double transform_to_lattice() override {
    log.push_back("primary transform");
    for (long e = 0; e < buffer_floats(); e++) field[e] = 0.0f;
    field[3] = crest;
    field[2 * (n_x + 2) + 5] = trough;
    return 0.0;
  }
  void evolve_potential(double t) override { log.push_back(with_time("primary potential", t)); }

  std::vector<std::string>& log;
  float crest;
  float trough;
};

// Stands in for a disturbance field: logs each call under its name, leaves
// its detail lattice zero, and when it travels puts itself at
// (100 + t, -100 - t).
class Logging_field : public TCSurface_field {
 public:
  Logging_field(std::vector<std::string>& log_in, const std::string& name_in, float* buffer,
                int travels_in)
      : TCSurface_field(0, buffer, 8, 8, 2.0, 2.0),
        log(log_in),
        name(name_in),
        travels(travels_in) {}
  void evolve_heights(double t) override { log.push_back(with_time(name + " evolve", t)); }
  double transform_to_lattice() override {
    log.push_back(name + " transform");
    for (long e = 0; e < buffer_floats(); e++) field[e] = 0.0f;
    return 0.0;
  }
  void evolve_potential(double t) override { log.push_back(with_time(name + " potential", t)); }
  int moving_offset(double& x, double& y, double t) const override {
    log.push_back(with_time(name + " position", t));
    if (!travels) return 0;
    x = 100.0 + t;
    y = -100.0 - t;
    return 1;
  }

  std::vector<std::string>& log;
  std::string name;
  int travels;
};
// ---- The frame update ----

// A sea with five swells whose fields are then replaced by loggers of the
// given codes, in table order; the primary field is replaced too.
class Frame_order : public ::testing::Test {
 protected:
  void build(const int codes[5], const char* const names[5]) {
    small_sea(input, folder);
    for (int i = 0; i < 5; i++) {
      add_swell(input, folder, "swell" + std::to_string(i) + ".spectrum", 8, 2.0);
    }
    ocean = new TCOcean(input);
    std::string printed;
    Verbose_as quiet(0);
    ASSERT_EQ(construct_quietly(*ocean, input, printed), 1) << printed;
    delete ocean->ocean_field;
    primary = new Logging_spectrum(log, ocean->ocean_grid->height, 16, 8);
    ocean->ocean_field = primary;
    for (int i = 0; i < 5; i++) {
      delete ocean->fields[i];
      const int travels = codes[i] == -9 || codes[i] == -7 || codes[i] == -8 || codes[i] == -6;
      ocean->fields[i] = new Logging_field(log, names[i], ocean->holder->detail_field[i], travels);
      ocean->field_info[i].field_code = codes[i];
    }
  }
  void TearDown() override { delete ocean; }

  Scratch_folder folder;
  ocean_input input;
  TCOcean* ocean = nullptr;
  Logging_spectrum* primary = nullptr;
  std::vector<std::string> log;
};

TEST_F(Frame_order, BoatsThenPrimaryThenReflectionsThenPrimaryTransformThenTheRestThenPositions) {
  const int codes[5] = {-5, -8, -1, -9, -7};
  const char* const names[5] = {"swell", "multiplier", "reflect", "boat", "height"};
  build(codes, names);
  ASSERT_FALSE(HasFatalFailure());
  const double times[3] = {2.0, 3.5, 11.5};
  for (int f = 0; f < 3; f++) {
    log.clear();
    ocean->update_to_time(times[f]);
    const double dt = times[f] - 1.5;
    const std::vector<std::string> expected = {
        with_time("boat evolve", dt),
        "boat transform",
        with_time("primary evolve", dt),
        with_time("reflect evolve", dt),
        "reflect transform",
        "primary transform",
        with_time("swell evolve", dt),
        "swell transform",
        with_time("multiplier evolve", dt),
        "multiplier transform",
        with_time("height evolve", dt),
        "height transform",
        with_time("multiplier position", dt),
        with_time("boat position", dt),
        with_time("height position", dt),
    };
    EXPECT_EQ(log, expected) << "frame " << f;
    // Each traveller was put where it said; the others stayed put.
    for (int i : {1, 3, 4}) {
      EXPECT_EQ(ocean->holder->detail_offset[i][0], 100.0 + dt) << i;
      EXPECT_EQ(ocean->holder->detail_offset[i][1], -100.0 - dt) << i;
    }
    EXPECT_EQ(ocean->holder->detail_offset[0][0], 8.0);
    EXPECT_EQ(ocean->holder->detail_offset[2][1], 8.0);
    EXPECT_EQ(ocean->current_time, times[f]);
  }
}

TEST_F(Frame_order, TheBoxTopIsTheLargerExcursionWithAMargin) {
  const int codes[5] = {-5, -5, -5, -5, -5};
  const char* const names[5] = {"a", "b", "c", "d", "e"};
  build(codes, names);
  ASSERT_FALSE(HasFatalFailure());
  ocean->update_to_time(4.0);
  // Crest 0.4, trough -0.7: the trough is the larger.
  EXPECT_FLOAT_EQ(ocean->height_low, -0.7f);
  EXPECT_FLOAT_EQ(ocean->height_high, 0.4f);
  const double top = 1.05 * static_cast<double>(0.7f);
  EXPECT_DOUBLE_EQ(ocean->length.z, 20.0 + top);
  EXPECT_DOUBLE_EQ(ocean->box_centre.z, (top - 20.0) * 0.5);
  EXPECT_DOUBLE_EQ(ocean->ocean_grid->z_offset, -(top - 20.0) * 0.5);
  EXPECT_EQ(ocean->current_time, 4.0);
  EXPECT_EQ(ocean->get_time(), 4.0);
  // A higher crest takes over.
  primary->crest = 1.25f;
  ocean->update_to_time(5.0);
  EXPECT_DOUBLE_EQ(ocean->length.z, 20.0 + 1.05 * 1.25);
  EXPECT_DOUBLE_EQ(ocean->ocean_grid->z_offset, -(1.05 * 1.25 - 20.0) * 0.5);
}

TEST_F(Frame_order, PotentialsAreEvolvedPrimaryFirstThenEveryFieldInOrder) {
  const int codes[5] = {-9, -5, -1, -7, -8};
  const char* const names[5] = {"boat", "swell", "reflect", "height", "multiplier"};
  build(codes, names);
  ASSERT_FALSE(HasFatalFailure());
  Stream_capture out(std::cout);
  ocean->evolve_potentials(4.0);
  EXPECT_EQ(out.text(), "evolving velocity potentials to time 4\n");
  const std::vector<std::string> expected = {"primary potential 2.5", "boat potential 2.5",
                                             "swell potential 2.5",   "reflect potential 2.5",
                                             "height potential 2.5",  "multiplier potential 2.5"};
  EXPECT_EQ(log, expected);
}

// Height and multiplier maps on a flat sea, over several frames.
class Travelling_maps : public ::testing::Test {
 protected:
  void SetUp() override {
    small_sea(input, folder);
    // A flat primary sea: every height comes from the maps.
    input.ocean_spectrum_type = 0;
    write_small_grid(folder.file("heights.hdf"), -0.5f, 0.1f);
    write_small_grid(folder.file("factors.hdf"), 0.5f, 0.02f);
    const double height_times[2] = {0.0, 10.0}, height_scales[2] = {1.0, 2.0};
    const double factor_times[1] = {0.0}, factor_scales[1] = {1.0};
    add_map(input, -7, folder.file("heights.hdf"), 10.0, -4.0, 0.3, 2.0, 0.5, 2, height_times,
            height_scales);
    add_map(input, -8, folder.file("factors.hdf"), 5.0, 6.0, 0.7, 1.5, 2.0, 1, factor_times,
            factor_scales);
    ocean = new TCOcean(input);
    std::string printed;
    Verbose_as quiet(0);
    ASSERT_EQ(construct_quietly(*ocean, input, printed), 1) << printed;
  }
  void TearDown() override { delete ocean; }

  Scratch_folder folder;
  ocean_input input;
  TCOcean* ocean = nullptr;
};

TEST_F(Travelling_maps, OffsetsFollowTheirMotionFrameByFrame) {
  // dt = 0, 2.5, 7.5 after the reference time 1.5. Height grid: half extents
  // 2 and 1.5 turned by 0.3, less (10, -4), less 2 m/s along 0.5 rad;
  // multiplier: turned by 0.7, less (5, 6), less 1.5 m/s along 2 rad.
  const double times[3] = {1.5, 4.0, 9.0};
  const double height_x[3] = {-8.532607331740797, -12.920520141192661, -21.69634576009639};
  const double height_y[3] = {6.024045147011089, 3.6269174539900737, -1.1673379320519564};
  const double factor_x[3] = {-4.43664215628756, -2.876091519235776, 0.24500975486779275};
  const double factor_y[3] = {-3.5643013445978853, -6.974166695194191, -13.793897396386804};
  for (int f = 0; f < 3; f++) {
    ocean->update_to_time(times[f]);
    EXPECT_NEAR(ocean->holder->detail_offset[0][0], height_x[f], 1e-12) << f;
    EXPECT_NEAR(ocean->holder->detail_offset[0][1], height_y[f], 1e-12) << f;
    EXPECT_NEAR(ocean->holder->detail_offset[1][0], factor_x[f], 1e-12) << f;
    EXPECT_NEAR(ocean->holder->detail_offset[1][1], factor_y[f], 1e-12) << f;
  }
}

TEST_F(Travelling_maps, FramesMayComeInAnyOrder) {
  ocean->update_to_time(9.0);
  ocean->update_to_time(4.0);
  EXPECT_NEAR(ocean->holder->detail_offset[0][0], -12.920520141192661, 1e-12);
  EXPECT_NEAR(ocean->holder->detail_offset[1][1], -6.974166695194191, 1e-12);
}

TEST_F(Travelling_maps, TheBoxFollowsTheScaledHeightsAndTheFactors) {
  // Heights -0.5 to 0.6 times 1 + dt / 10; factors 0.5 to 0.72 stay.
  const double times[3] = {1.5, 4.0, 9.0};
  const double tops[3] = {0.72, 0.75, 1.05};
  const double lows[3] = {-0.5, -0.625, -0.875};
  for (int f = 0; f < 3; f++) {
    ocean->update_to_time(times[f]);
    EXPECT_NEAR(ocean->height_high, tops[f], 1e-6) << f;
    EXPECT_NEAR(ocean->height_low, lows[f], 1e-6) << f;
    const double top = 1.05 * tops[f];
    EXPECT_NEAR(ocean->length.z, 20.0 + top, 1e-6) << f;
    EXPECT_NEAR(ocean->box_centre.z, (top - 20.0) * 0.5, 1e-6) << f;
    EXPECT_NEAR(ocean->ocean_grid->z_offset, -(top - 20.0) * 0.5, 1e-6) << f;
    EXPECT_EQ(ocean->current_time, times[f]);
  }
}

// ---- Heights, slopes, hull ----

TEST(OceanSurface, SurfaceHeightIsTheLatticesWithoutTheDropAndTheOffset) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.round_surface = 1;
  input.surface_radius = 1000.0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ocean.update_to_time(3.0);
  ASSERT_NE(ocean.ocean_grid->z_offset, 0.0);
  const double points[3][2] = {{0.3, 0.7}, {5.5, -3.25}, {150.0, 40.0}};
  for (const auto& p : points) {
    EXPECT_EQ(ocean.surface_height(p[0], p[1]),
              ocean.ocean_grid->height_at(p[0], p[1], 1) - ocean.ocean_grid->z_offset);
    double sx = 0.0, sy = 0.0, lx = 1.0, ly = 1.0;
    ocean.surface_slope(p[0], p[1], sx, sy);
    ocean.ocean_grid->slope_at(p[0], p[1], lx, ly, 1);
    EXPECT_EQ(sx, lx);
    EXPECT_EQ(sy, ly);
  }
}

TEST(OceanSurface, AFlatRoundSeaHasHeightAndSlopeZeroEvenFarOut) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.ocean_spectrum_type = 0;
  input.round_surface = 1;
  input.surface_radius = 1000.0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ocean.update_to_time(3.0);
  // The box is from -20 to 0, so the lattice sits 10 m up in it.
  EXPECT_EQ(ocean.ocean_grid->z_offset, 10.0);
  EXPECT_NEAR(ocean.surface_height(150.0, 40.0), 0.0, 1e-12);
  // With the drop it would be about (150^2 + 40^2) / 2000 = 12 m lower.
  EXPECT_LT(ocean.ocean_grid->height_at(150.0, 40.0, 0) - ocean.ocean_grid->z_offset, -10.0);
  double sx = 1.0, sy = 1.0;
  ocean.surface_slope(150.0, 40.0, sx, sy);
  EXPECT_NEAR(sx, 0.0, 1e-12);
  EXPECT_NEAR(sy, 0.0, 1e-12);
}

TEST(OceanSurface, HullMaskWithoutABoatIsAllZero) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  std::vector<unsigned char> buffer(7 * 5 + 1, 0xAB);
  ocean.hull_mask(buffer.data(), 7, 5);
  for (int i = 0; i < 35; i++) EXPECT_EQ(buffer[i], 0) << i;
  EXPECT_EQ(buffer[35], 0xAB);
}

}  // namespace
