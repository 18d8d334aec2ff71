#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "TCFluctuation_field.h"
#include "TCSettings.h"
#include "TCSpectrum.h"
#include "TCWhitecaps.h"
#include "ocean_input.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

const double g_metres = 9.81;

// One cell (one grid of one node) with R0 0.4, R1 0.8, a1 0.5, a2 1.0,
// steps of 0.5 s from time 10, foam rising over 2 s and decaying over 4 s:
// rise_step 0.2, fade_step 0.2, decay_factor exp(-0.125).
void set_one_cell(ocean_input& w) {
  w.whitecaps = 1;
  w.whitecap_center_x = 0.0;
  w.whitecap_center_y = 0.0;
  w.whitecap_length_x = 1.0;
  w.whitecap_length_y = 1.0;
  w.whitecap_interval_x = 1.0;
  w.whitecap_interval_y = 1.0;
  w.whitecap_max_distance = 0.1;
  w.whitecap_reference_time = 10.0;
  w.whitecap_time_increment = 0.5;
  w.whitecap_initialization_time = 0.0;
  w.whitecap_initialization_increment = 0.5;
  w.whitecap_formation_time = 2.0;
  w.whitecap_decay_time = 4.0;
  w.acceleration_threshold_low = 0.5;
  w.acceleration_threshold_high = 1.0;
  w.whitecap_reflectivity_low = 0.4;
  w.whitecap_reflectivity_high = 0.8;
  w.smear_x = w.smear_y = w.smear_t = 0.0;
  w.acceleration_time_offset = 0.0;
  w.whitecap_generation = 0;
  w.fluctuation_mode = 0;
}

// Two by two nodes at -1 and 0 in x and y: the point (0, 0) falls on node
// (1, 1) alone. (A grid's first node lies on its edge, which belongs to the
// next grid.)
void set_two_by_two(ocean_input& w) {
  set_one_cell(w);
  w.whitecap_length_x = 2.0;
  w.whitecap_length_y = 2.0;
}

// Several grids of several nodes, for the sampling and the state files:
// 4 by 3 nodes 2 m apart around (5, -3); max_distance 20 gives
// floor(log2(40 / 6)) + 2 = 4 grids.
void set_pyramid(ocean_input& w) {
  set_one_cell(w);
  w.whitecap_center_x = 5.0;
  w.whitecap_center_y = -3.0;
  w.whitecap_length_x = 8.0;
  w.whitecap_length_y = 6.0;
  w.whitecap_interval_x = 2.0;
  w.whitecap_interval_y = 2.0;
  w.whitecap_max_distance = 20.0;
  w.whitecap_initialization_time = 2.0;
  w.whitecap_initialization_increment = 0.25;
}

// A sea of waves that break here and there, in units of g.
double rolling_sea(double T, double x, double y) {
  return -1.5 * std::sin(0.7 * x + 0.3 * T) * std::cos(0.5 * y - 0.2 * T);
}

double calm_sea(double, double, double) {
  return 0.0;
}

// The acceleration of a formula, in m/s^2.
class Formula_acceleration : public Whitecap_acceleration {
 public:
  Formula_acceleration(double (*field_in)(double, double, double), double T_in)
      : field(field_in), T(T_in) {}
  double acceleration_at(double x, double y) override { return field(T, x, y) * g_metres; }

 private:
  double (*field)(double, double, double);
  double T;
};

// Whitecaps fed by a formula in units of g, noting every time they sample
// and every point of the first sampling.
class Scripted_whitecaps : public TCWhitecaps {
 public:
  Scripted_whitecaps(const ocean_input& input, double (*field_in)(double, double, double))
      : TCWhitecaps(input), field(field_in) {}
  Whitecap_acceleration* acceleration_at_time(double T) override {
    times.push_back(T);
    return new Formula_acceleration(field, T);
  }
  double (*field)(double, double, double);
  std::vector<double> times;
};

// Whitecaps that note where they sample.
class Point_log : public Whitecap_acceleration {
 public:
  explicit Point_log(std::vector<double>* points_in) : points(points_in) {}
  double acceleration_at(double x, double y) override {
    points->push_back(x);
    points->push_back(y);
    return 0.0;
  }
  std::vector<double>* points;
};

class Point_logging_whitecaps : public TCWhitecaps {
 public:
  explicit Point_logging_whitecaps(const ocean_input& input) : TCWhitecaps(input) {}
  Whitecap_acceleration* acceleration_at_time(double) override { return new Point_log(&points); }
  std::vector<double> points;
};

// Keeps verbose as it was.
class Verbosity {
 public:
  explicit Verbosity(int level) : old(verbose) { verbose = level; }
  ~Verbosity() { verbose = old; }

 private:
  int old;
};

int allocated(TCWhitecaps& caps) {
  TCSpectrum bands(2);
  Stream_capture out(std::cout);
  return caps.allocate(&bands);
}

void quiet_update(TCWhitecaps& caps, double T, int frame) {
  Stream_capture out(std::cout);
  caps.update(T, frame);
}

// Puts a record with these values at a node.
void place(TCWhitecaps& caps, int g, int i, int j, float refl_previous, float refl_latest,
           float trans_previous, float trans_latest) {
  Whitecap_point* p = new Whitecap_point;
  p->acc_previous = -0.75f;
  p->acc_latest = -1.25f;
  p->refl_previous = refl_previous;
  p->refl_latest = refl_latest;
  p->trans_previous = trans_previous;
  p->trans_latest = trans_latest;
  p->released = 0;
  delete caps.grids[g][i][j];
  caps.grids[g][i][j] = p;
}

void write_bytes(const std::string& path, const std::vector<unsigned char>& bytes) {
  std::ofstream out(path.c_str(), std::ios::binary);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
}

std::vector<unsigned char> file_bytes(const std::string& path) {
  std::ifstream in(path.c_str(), std::ios::binary);
  return std::vector<unsigned char>((std::istreambuf_iterator<char>(in)),
                                    std::istreambuf_iterator<char>());
}

void put_big_endian(std::vector<unsigned char>& bytes, unsigned int value) {
  bytes.push_back(static_cast<unsigned char>(value >> 24));
  bytes.push_back(static_cast<unsigned char>(value >> 16));
  bytes.push_back(static_cast<unsigned char>(value >> 8));
  bytes.push_back(static_cast<unsigned char>(value));
}

// Every record field of every node, in table order, for exact comparison.
std::vector<float> all_records(const TCWhitecaps& caps) {
  std::vector<float> values;
  for (int g = 0; g < caps.num_grids; g++) {
    for (int i = 0; i < caps.n_x; i++) {
      for (int j = 0; j < caps.n_y; j++) {
        const Whitecap_point* p = caps.point(g, i, j);
        if (p == nullptr) {
          values.push_back(-99.0f);
          continue;
        }
        values.push_back(p->acc_previous);
        values.push_back(p->acc_latest);
        values.push_back(p->refl_previous);
        values.push_back(p->refl_latest);
        values.push_back(p->trans_previous);
        values.push_back(p->trans_latest);
        values.push_back(static_cast<float>(p->released));
      }
    }
  }
  return values;
}

int live_records(const TCWhitecaps& caps) {
  int count = 0;
  for (int g = 0; g < caps.num_grids; g++) {
    for (int i = 0; i < caps.n_x; i++) {
      for (int j = 0; j < caps.n_y; j++) count += caps.point(g, i, j) != nullptr;
    }
  }
  return count;
}

}  // namespace

TEST(WhitecapGrids, NodesAreTheLengthsWholeIntervalsAndGridsReachMaxDistance) {
  ocean_input w;
  set_one_cell(w);
  w.whitecap_length_x = 10.5;
  w.whitecap_length_y = 6.0;
  w.whitecap_interval_x = 1.0;
  w.whitecap_interval_y = 1.5;
  w.whitecap_max_distance = 40.0;
  TCWhitecaps caps(w);
  EXPECT_EQ(caps.n_x, 10);
  EXPECT_EQ(caps.n_y, 4);
  // floor(log2(2 * 40 / 6)) + 2 = floor(3.74) + 2.
  EXPECT_EQ(caps.num_grids, 5);
  EXPECT_EQ(caps.grid_scale, nullptr);
  EXPECT_EQ(caps.step, -1);
  ASSERT_EQ(allocated(caps), 1);
  const double scales[5] = {1.0, 2.0, 4.0, 8.0, 16.0};
  for (int g = 0; g < 5; g++) EXPECT_EQ(caps.grid_scale[g], scales[g]);
  EXPECT_EQ(live_records(caps), 0);
  EXPECT_DOUBLE_EQ(caps.inv_interval_y, 1.0 / 1.5);
}

TEST(WhitecapGrids, LengthShorterThanItsIntervalBecomesOneInterval) {
  ocean_input w;
  set_one_cell(w);
  w.whitecap_length_x = 0.5;
  w.whitecap_interval_x = 2.0;
  w.whitecap_length_y = 3.0;
  w.whitecap_interval_y = 1.0;
  TCWhitecaps caps(w);
  EXPECT_EQ(caps.n_x, 1);
  EXPECT_EQ(caps.length_x, 2.0);
  EXPECT_EQ(caps.n_y, 3);
  EXPECT_EQ(caps.length_y, 3.0);
}

TEST(WhitecapGrids, AtLeastOneGridWhenMaxDistanceIsShortOrZero) {
  ocean_input w;
  set_one_cell(w);
  w.whitecap_max_distance = 0.0;
  TCWhitecaps none(w);
  EXPECT_EQ(none.num_grids, 1);
  // log2(2 * 0.3 / 1) = -0.74: floor -1, plus 2 is 1.
  w.whitecap_max_distance = 0.3;
  TCWhitecaps short_reach(w);
  EXPECT_EQ(short_reach.num_grids, 1);
  // log2(2 * 1 / 1) = 1: 3 grids.
  w.whitecap_max_distance = 1.0;
  TCWhitecaps three(w);
  EXPECT_EQ(three.num_grids, 3);
}

TEST(WhitecapGrids, AllocationWithoutABandTableIsRefused) {
  ocean_input w;
  set_one_cell(w);
  TCWhitecaps caps(w);
  Stream_capture out(std::cout);
  EXPECT_EQ(caps.allocate(nullptr), 0);
  EXPECT_EQ(out.text(),
            "unable to allocate whitecap data structures due to \nunallocated objects_spectrum \n");
  EXPECT_EQ(caps.grids, nullptr);
}

TEST(WhitecapGrids, AllocationSaysSoWhenVerbose) {
  ocean_input w;
  set_one_cell(w);
  TCWhitecaps caps(w);
  TCSpectrum bands(3);
  Verbosity loud(1);
  Stream_capture out(std::cout);
  EXPECT_EQ(caps.allocate(&bands), 1);
  EXPECT_EQ(out.text(), "done allocating whitecap data structures \n");
  EXPECT_EQ(caps.n_bands, 3);
}

TEST(WhitecapSteps, ConstantsFollowTheStep) {
  ocean_input w;
  set_one_cell(w);
  TCWhitecaps caps(w);
  EXPECT_DOUBLE_EQ(caps.decay_factor, std::exp(-0.125));
  // R0 dt / (0.25 decay_time) = 0.4 * 0.5 / 1.
  EXPECT_DOUBLE_EQ(caps.fade_step, 0.2);
  // R1 dt / formation_time = 0.8 * 0.5 / 2.
  EXPECT_DOUBLE_EQ(caps.rise_step, 0.2);
  caps.set_step_constants(0.25);
  EXPECT_DOUBLE_EQ(caps.decay_factor, std::exp(-0.0625));
  EXPECT_DOUBLE_EQ(caps.fade_step, 0.1);
  EXPECT_DOUBLE_EQ(caps.rise_step, 0.1);
  w.whitecap_formation_time = 0.0;
  TCWhitecaps at_once(w);
  EXPECT_EQ(at_once.rise_step, 99999999.0);
  w.whitecap_formation_time = -1.0;
  TCWhitecaps negative(w);
  EXPECT_EQ(negative.rise_step, 99999999.0);
}

TEST(WhitecapCells, TargetRunsFromR0AtA1ToR1AtA2) {
  ocean_input w;
  set_one_cell(w);
  TCWhitecaps caps(w);
  EXPECT_DOUBLE_EQ(caps.target(-0.5), 0.4);
  EXPECT_DOUBLE_EQ(caps.target(-1.0), 0.8);
  // 0.4 - 0.4 * (-0.75 + 0.5) / 0.5.
  EXPECT_DOUBLE_EQ(caps.target(-0.75), 0.6);
  EXPECT_DOUBLE_EQ(caps.target(-3.0), 0.8);
  EXPECT_DOUBLE_EQ(caps.transmission_of(0.1), 0.75);
  EXPECT_DOUBLE_EQ(caps.transmission_of(0.0), 1.0);
  EXPECT_EQ(caps.transmission_of(0.4), 0.0);
  EXPECT_EQ(caps.transmission_of(0.7), 0.0);
}

TEST(WhitecapCells, AccelerationExactlyAtMinusA1StartsNothing) {
  ocean_input w;
  set_one_cell(w);
  TCWhitecaps caps(w);
  Whitecap_point* cell = nullptr;
  caps.update_cell(cell, -0.5);
  EXPECT_EQ(cell, nullptr);
  caps.update_cell(cell, -0.5000001);
  ASSERT_NE(cell, nullptr);
  delete cell;
}

TEST(WhitecapCells, AccelerationExactlyAtMinusA1ThroughAStepStartsNothing) {
  ocean_input w;
  set_one_cell(w);
  // 0.5 g is 4.905 m/s^2, and 4.905 / 9.81 gives 0.5 again.
  ASSERT_EQ(-0.5 * g_metres / g_metres, -0.5);
  Scripted_whitecaps caps(w, [](double, double, double) { return -0.5; });
  ASSERT_EQ(allocated(caps), 1);
  quiet_update(caps, 10.0, 1);
  EXPECT_EQ(live_records(caps), 0);
}

TEST(WhitecapCells, ScriptedHistoryRisesHoldsReleasesDecaysFadesAndGoes) {
  ocean_input w;
  set_one_cell(w);
  TCWhitecaps caps(w);
  Whitecap_point* cell = nullptr;

  // Breaks at -0.75 g: target 0.6, held to rise_step 0.2.
  caps.update_cell(cell, -0.75);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->acc_previous, 0.0f);
  EXPECT_EQ(cell->acc_latest, -0.75f);
  EXPECT_EQ(cell->refl_previous, 0.0f);
  EXPECT_FLOAT_EQ(cell->refl_latest, 0.2f);
  EXPECT_EQ(cell->trans_previous, 1.0f);
  EXPECT_FLOAT_EQ(cell->trans_latest, 0.5f);  // (0.4 - 0.2) / 0.4
  EXPECT_EQ(cell->released, 0);

  // -1.2 g: target R1 0.8, held to 0.2 + 0.2.
  caps.update_cell(cell, -1.2);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->acc_previous, -0.75f);
  EXPECT_EQ(cell->acc_latest, -1.2f);
  EXPECT_FLOAT_EQ(cell->refl_previous, 0.2f);
  EXPECT_FLOAT_EQ(cell->refl_latest, 0.4f);
  EXPECT_FLOAT_EQ(cell->trans_previous, 0.5f);
  EXPECT_EQ(cell->trans_latest, 0.0f);

  // -0.6 g: target 0.4 + 0.4 * 0.1 / 0.5 = 0.48, within 0.4 + 0.2.
  caps.update_cell(cell, -0.6);
  ASSERT_NE(cell, nullptr);
  EXPECT_FLOAT_EQ(cell->refl_latest, 0.48f);
  EXPECT_EQ(cell->trans_latest, 0.0f);

  // -0.55 g: target 0.44 is below what the cap has; it keeps 0.48.
  caps.update_cell(cell, -0.55);
  ASSERT_NE(cell, nullptr);
  EXPECT_FLOAT_EQ(cell->refl_previous, 0.48f);
  EXPECT_FLOAT_EQ(cell->refl_latest, 0.48f);
  EXPECT_EQ(cell->acc_latest, -0.55f);
  EXPECT_EQ(cell->released, 0);

  // +0.8 g releases it: w = (0.5 + 0.55) / (0.8 + 0.55) and the foam keeps
  // exp(-(1 - w) * 0.5 / 4) of its reflectivity.
  caps.update_cell(cell, 0.8);
  ASSERT_NE(cell, nullptr);
  const double f = std::exp(-(1.0 - 1.05 / 1.35) * 0.5 / 4.0);
  double r = 0.48 * f;
  EXPECT_EQ(cell->released, 1);
  EXPECT_EQ(cell->acc_previous, -0.55f);
  EXPECT_EQ(cell->acc_latest, -0.55f);
  EXPECT_NEAR(cell->refl_latest, r, 1e-6);
  EXPECT_EQ(cell->trans_latest, 0.0f);

  // Above R0 it decays by exp(-0.125) a step, the transmission unchanged,
  // even on the step that takes it below R0.
  caps.update_cell(cell, 0.0);
  ASSERT_NE(cell, nullptr);
  r *= std::exp(-0.125);
  EXPECT_NEAR(cell->refl_latest, r, 1e-6);
  caps.update_cell(cell, 0.1);
  ASSERT_NE(cell, nullptr);
  r *= std::exp(-0.125);
  ASSERT_LT(r, 0.4);
  EXPECT_NEAR(cell->refl_latest, r, 1e-6);
  EXPECT_EQ(cell->trans_latest, 0.0f);

  // Below R0 it fades by 0.2 a step and lets the water through.
  caps.update_cell(cell, 0.0);
  ASSERT_NE(cell, nullptr);
  EXPECT_NEAR(cell->refl_previous, r, 1e-6);
  r -= 0.2;
  EXPECT_NEAR(cell->refl_latest, r, 1e-6);
  EXPECT_NEAR(cell->trans_latest, 1.0 - r / 0.4, 1e-6);
  EXPECT_EQ(cell->trans_previous, 0.0f);

  // -0.4 g is no breaking: it fades to nothing, then goes.
  caps.update_cell(cell, -0.4);
  ASSERT_NE(cell, nullptr);
  EXPECT_EQ(cell->refl_latest, 0.0f);
  EXPECT_EQ(cell->trans_latest, 1.0f);
  caps.update_cell(cell, 0.0);
  EXPECT_EQ(cell, nullptr);
}

TEST(WhitecapCells, FadingCapBreaksAgainFromWhatItHas) {
  ocean_input w;
  set_one_cell(w);
  TCWhitecaps caps(w);
  Whitecap_point* cell = new Whitecap_point;
  cell->acc_latest = -0.9f;
  cell->refl_previous = 0.3f;
  cell->refl_latest = 0.15f;
  cell->trans_previous = 0.25f;
  cell->trans_latest = 0.625f;
  cell->released = 1;
  // target(-0.7) = 0.56, held to 0.15 + 0.2 = 0.35.
  caps.update_cell(cell, -0.7);
  EXPECT_EQ(cell->released, 0);
  EXPECT_EQ(cell->acc_previous, -0.9f);
  EXPECT_EQ(cell->acc_latest, -0.7f);
  EXPECT_FLOAT_EQ(cell->refl_previous, 0.15f);
  EXPECT_FLOAT_EQ(cell->refl_latest, 0.35f);
  EXPECT_FLOAT_EQ(cell->trans_previous, 0.625f);
  EXPECT_FLOAT_EQ(cell->trans_latest, 0.125f);  // (0.4 - 0.35) / 0.4
  delete cell;
}

TEST(WhitecapCells, ReleaseFactorTakesPlusA1InItsNumerator) {
  ocean_input w;
  set_one_cell(w);
  TCWhitecaps caps(w);
  // (0.5 + 0.75) / (0 + 0.75) is above 1, clamped: nothing is lost. With
  // -a1 it would have been (-0.5 + 0.75) / 0.75 and a loss.
  EXPECT_EQ(caps.release_factor(-0.75, 0.0), 1.0);
  EXPECT_DOUBLE_EQ(caps.release_factor(-0.75, 1.0), std::exp(-(1.0 - 1.25 / 1.75) * 0.5 / 4.0));
  Whitecap_point* cell = nullptr;
  caps.update_cell(cell, -1.2);
  ASSERT_NE(cell, nullptr);
  const float before = cell->refl_latest;
  caps.update_cell(cell, 0.0);
  EXPECT_EQ(cell->refl_latest, before);
  EXPECT_EQ(cell->released, 1);
  delete cell;
}

TEST(WhitecapCells, ZeroFormationTimeReachesTheTargetAtOnce) {
  ocean_input w;
  set_one_cell(w);
  w.whitecap_formation_time = 0.0;
  TCWhitecaps caps(w);
  Whitecap_point* cell = nullptr;
  caps.update_cell(cell, -0.75);
  ASSERT_NE(cell, nullptr);
  EXPECT_FLOAT_EQ(cell->refl_latest, 0.6f);
  caps.update_cell(cell, -2.0);
  EXPECT_FLOAT_EQ(cell->refl_latest, 0.8f);
  delete cell;
}

TEST(WhitecapSteps, EveryNodeOfEveryGridIsSampledAtItsPlace) {
  ocean_input w;
  set_pyramid(w);
  w.whitecap_initialization_time = 0.0;
  w.acceleration_time_offset = 0.25;
  Point_logging_whitecaps caps(w);
  ASSERT_EQ(allocated(caps), 1);
  Stream_capture out(std::cout);
  caps.increment(3.0);
  ASSERT_EQ(caps.points.size(), 2u * 4 * 4 * 3);
  size_t k = 0;
  for (int g = 0; g < 4; g++) {
    const double scale = std::pow(2.0, g);
    for (int i = 0; i < 4; i++) {
      for (int j = 0; j < 3; j++) {
        // Grid g's corner is the centre less half its extent 8 s by 6 s.
        EXPECT_DOUBLE_EQ(caps.points[k++], 5.0 - 4.0 * scale + 2.0 * scale * i);
        EXPECT_DOUBLE_EQ(caps.points[k++], -3.0 - 3.0 * scale + 2.0 * scale * j);
      }
    }
  }
}

TEST(WhitecapSteps, StepSamplesAtItsTimePlusTheOffsetAndTallies) {
  ocean_input w;
  set_one_cell(w);
  w.whitecap_length_x = 2.0;
  w.acceleration_time_offset = 0.25;
  // Node x = -1 breaks hard, node x = 0 rises.
  Scripted_whitecaps caps(w, [](double, double x, double) { return x < -0.5 ? -1.2 : 0.3; });
  ASSERT_EQ(allocated(caps), 1);
  Verbosity loud(1);
  Stream_capture out(std::cout);
  caps.increment(11.0);
  ASSERT_EQ(caps.times.size(), 1u);
  EXPECT_EQ(caps.times[0], 11.25);
  EXPECT_EQ(out.text(),
            "incrementing whitecap distribution to time 11\n"
            "average acceleration 0.75\n"
            "max downward acceleration -1.2\n"
            "fraction above threshold  0.5\n"
            "fraction above max threshold 0.5\n"
            "fraction active  0.5\n");
  EXPECT_NE(caps.point(0, 0, 0), nullptr);
  EXPECT_EQ(caps.point(0, 1, 0), nullptr);
}

TEST(WhitecapSteps, QuietStepPrintsNothing) {
  ocean_input w;
  set_one_cell(w);
  Scripted_whitecaps caps(w, calm_sea);
  ASSERT_EQ(allocated(caps), 1);
  Verbosity quiet(0);
  Stream_capture out(std::cout);
  caps.increment(11.0);
  EXPECT_EQ(out.text(), "");
}

TEST(WhitecapUpdate, SpinUpStepsAtItsOwnIncrementWithItsOwnConstants) {
  ocean_input w;
  set_one_cell(w);
  w.whitecap_initialization_time = 1.0;
  w.whitecap_initialization_increment = 0.25;
  w.whitecap_formation_time = 0.0;
  w.acceleration_time_offset = 0.1;
  // Breaks at the first spin-up step only, at 10 - 3 * 0.25.
  Scripted_whitecaps caps(
      w, [](double T, double, double) { return std::fabs(T - 9.35) < 1e-9 ? -1.2 : 0.0; });
  ASSERT_EQ(allocated(caps), 1);
  Verbosity quiet(0);
  Stream_capture out(std::cout);
  caps.update(10.5, 1);
  EXPECT_EQ(out.text(),
            "generating initial whitecap distribution\n"
            "on step 1  out of 4\n"
            "on step 2  out of 4\n"
            "on step 3  out of 4\n"
            "on step 4  out of 4\n"
            " done generating initial whitecap distribution \n");
  const double expected_times[6] = {9.35, 9.6, 9.85, 10.1, 10.6, 11.1};
  ASSERT_EQ(caps.times.size(), 6u);
  for (int k = 0; k < 6; k++) EXPECT_NEAR(caps.times[k], expected_times[k], 1e-12);
  // 10.5 is one step past step 1: target 2.
  EXPECT_EQ(caps.step, 2);
  EXPECT_DOUBLE_EQ(caps.step_weight, 1.0);
  // Made at 0.8 (no formation time), kept on release (A = 0), then two
  // spin-up decays of exp(-0.25 / 4) and two running ones of exp(-0.5 / 4).
  const Whitecap_point* p = caps.point(0, 0, 0);
  ASSERT_NE(p, nullptr);
  EXPECT_NEAR(p->refl_previous, 0.8 * std::exp(-0.125) * std::exp(-0.125), 1e-6);
  EXPECT_NEAR(p->refl_latest, 0.8 * std::exp(-0.125) * std::exp(-0.25), 1e-6);
  EXPECT_DOUBLE_EQ(caps.decay_factor, std::exp(-0.125));
  EXPECT_DOUBLE_EQ(caps.fade_step, 0.2);
}

TEST(WhitecapUpdate, FramesStepForwardAndWeighTheLastTwoSteps) {
  ocean_input w;
  set_one_cell(w);
  Scripted_whitecaps caps(w, calm_sea);
  ASSERT_EQ(allocated(caps), 1);
  Verbosity loud(1);
  {
    Stream_capture out(std::cout);
    caps.update(11.15, 4);
    // (11.15 - 10) / 0.5 = 2.3: target 3, weight 0.7.
    const std::string text = out.text();
    EXPECT_NE(text.find("generating whitecaps at 11.15\nwith weighting 0.7\nn_primary_field: 3\n"),
              std::string::npos);
  }
  EXPECT_EQ(caps.step, 3);
  EXPECT_NEAR(caps.step_weight, 0.7, 1e-12);
  const double expected_times[3] = {10.5, 11.0, 11.5};
  ASSERT_EQ(caps.times.size(), 3u);
  for (int k = 0; k < 3; k++) EXPECT_EQ(caps.times[k], expected_times[k]);
  // Back within the step before is allowed and steps nothing.
  quiet_update(caps, 11.05, 5);
  EXPECT_EQ(caps.times.size(), 3u);
  EXPECT_NEAR(caps.step_weight, 0.9, 1e-12);
}

TEST(WhitecapUpdate, FrameOnAStepBoundaryShowsTheRecordOneStepBack) {
  ocean_input w;
  set_two_by_two(w);
  // Breaks from 10.75 on: steps at 11.0 and later see it.
  Scripted_whitecaps caps(w, [](double T, double, double) { return T > 10.75 ? -2.0 : 0.0; });
  ASSERT_EQ(allocated(caps), 1);
  quiet_update(caps, 11.0, 1);
  // (11 - 10) / 0.5 = 2: steps 1 to 3 ran, weight 1.
  EXPECT_EQ(caps.step, 3);
  EXPECT_EQ(caps.step_weight, 1.0);
  const Whitecap_point* p = caps.point(0, 1, 1);
  ASSERT_NE(p, nullptr);
  // Step 2 (11.0) made it at rise_step 0.2; step 3 (11.5) raised it to 0.4.
  EXPECT_FLOAT_EQ(p->refl_previous, 0.2f);
  EXPECT_FLOAT_EQ(p->refl_latest, 0.4f);
  double r, t;
  EXPECT_EQ(caps.whitecap_at(0.0, 0.0, r, t), 1);
  EXPECT_NEAR(r, 0.2, 1e-7);
  EXPECT_NEAR(t, 0.5, 1e-7);
}

TEST(WhitecapUpdateDeath, FramesRunningBackPastAStepEndTheRun) {
  ocean_input w;
  set_one_cell(w);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        Scripted_whitecaps caps(w, calm_sea);
        TCSpectrum bands(1);
        caps.allocate(&bands);
        caps.update(11.15, 1);
        std::cerr << "--\n";
        caps.update(10.95, 2);
      },
      ::testing::ExitedWithCode(1), "--\ncan not evolve whitecap backwards in time \n$");
}

TEST(WhitecapUpdateDeath, FrameBeforeTheReferenceTimeEndsTheRun) {
  ocean_input w;
  set_one_cell(w);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        Scripted_whitecaps caps(w, calm_sea);
        TCSpectrum bands(1);
        caps.allocate(&bands);
        caps.update(9.99, 1);
      },
      ::testing::ExitedWithCode(1),
      "^impossible to image whitecaps prior to whitecap reference time\n$");
}

TEST(WhitecapUpdateDeath, StepWithoutAnAccelerationEndsTheRun) {
  ocean_input w;
  set_one_cell(w);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCWhitecaps caps(w);
        TCSpectrum bands(1);
        caps.allocate(&bands);
        caps.update(10.0, 1);
      },
      ::testing::ExitedWithCode(1),
      "unable to allocate intermediate acceleration grid\nfor the generation of whitecaps\n$");
}

TEST(WhitecapState, FullStateIsBigEndianRecordsBehindAFlagByte) {
  Scratch_folder folder;
  ocean_input w;
  set_one_cell(w);
  w.whitecap_length_y = 2.0;
  TCWhitecaps caps(w);
  ASSERT_EQ(allocated(caps), 1);
  place(caps, 0, 0, 1, 0.25f, 0.5f, 1.0f, 0.0f);
  caps.grids[0][0][1]->released = 1;
  const std::string path = folder.file("state.dat");
  Verbosity quiet(0);
  ASSERT_EQ(caps.write_state(path.c_str()), 1);
  std::vector<unsigned char> expected;
  put_big_endian(expected, 1);
  put_big_endian(expected, 1);
  put_big_endian(expected, 2);
  expected.push_back(0);
  expected.push_back(1);
  put_big_endian(expected, 0xBF400000u);  // -0.75
  put_big_endian(expected, 0xBFA00000u);  // -1.25
  put_big_endian(expected, 0x3E800000u);  // 0.25
  put_big_endian(expected, 0x3F000000u);  // 0.5
  put_big_endian(expected, 0x3F800000u);  // 1.0
  put_big_endian(expected, 0x00000000u);  // 0.0
  put_big_endian(expected, 1);
  EXPECT_EQ(file_bytes(path), expected);
}

TEST(WhitecapState, StaticStateHoldsTheBlendOfThatMoment) {
  Scratch_folder folder;
  ocean_input w;
  set_one_cell(w);
  w.whitecap_length_x = 2.0;
  TCWhitecaps caps(w);
  ASSERT_EQ(allocated(caps), 1);
  place(caps, 0, 1, 0, 0.25f, 0.75f, 1.0f, 0.5f);
  caps.step_weight = 0.75;
  const std::string path = folder.file("frame.0007.wcs");
  ASSERT_EQ(caps.write_static_state(path.c_str()), 1);
  std::vector<unsigned char> expected;
  put_big_endian(expected, 9811);
  put_big_endian(expected, 1);
  put_big_endian(expected, 2);
  put_big_endian(expected, 1);
  expected.push_back(0);
  expected.push_back(1);
  put_big_endian(expected, 0x3EC00000u);  // 0.75 * 0.25 + 0.25 * 0.75 = 0.375
  put_big_endian(expected, 0x3F600000u);  // 0.75 * 1 + 0.25 * 0.5 = 0.875
  EXPECT_EQ(file_bytes(path), expected);

  TCWhitecaps back(w);
  ASSERT_EQ(allocated(back), 1);
  ASSERT_EQ(back.read_static_state(path.c_str()), 1);
  EXPECT_EQ(back.point(0, 0, 0), nullptr);
  const Whitecap_point* p = back.point(0, 1, 0);
  ASSERT_NE(p, nullptr);
  EXPECT_EQ(p->refl_previous, 0.375f);
  EXPECT_EQ(p->refl_latest, 0.375f);
  EXPECT_EQ(p->trans_previous, 0.875f);
  EXPECT_EQ(p->trans_latest, 0.875f);
}

TEST(WhitecapState, FullStateWrittenAfterSpinUpGivesTheSameRecordsAtEveryLaterStep) {
  Scratch_folder folder;
  ocean_input w;
  set_pyramid(w);
  const std::string path = folder.file("initial.dat");
  std::snprintf(w.initial_state_file, 256, "%s", path.c_str());
  w.whitecap_generation = -1;
  Scripted_whitecaps writer(w, rolling_sea);
  ASSERT_EQ(allocated(writer), 1);
  quiet_update(writer, 10.2, 1);
  ASSERT_GT(live_records(writer), 0);

  w.whitecap_generation = 1;
  Scripted_whitecaps reader(w, rolling_sea);
  ASSERT_EQ(allocated(reader), 1);
  quiet_update(reader, 10.2, 1);
  EXPECT_EQ(reader.times.size(), 0u);  // step 1 came from the file
  EXPECT_EQ(reader.step, writer.step);
  EXPECT_EQ(all_records(reader), all_records(writer));
  int seen_live = 0;
  for (int frame = 2; frame < 30; frame++) {
    const double T = 10.2 + 0.37 * frame;
    quiet_update(writer, T, frame);
    quiet_update(reader, T, frame);
    ASSERT_EQ(reader.step, writer.step);
    ASSERT_EQ(all_records(reader), all_records(writer)) << "frame " << frame;
    seen_live += live_records(writer);
  }
  EXPECT_GT(seen_live, 0);
}

TEST(WhitecapState, OutputModeSaysWhereTheStateGoes) {
  Scratch_folder folder;
  ocean_input w;
  set_one_cell(w);
  const std::string path = folder.file("initial.dat");
  std::snprintf(w.initial_state_file, 256, "%s", path.c_str());
  w.whitecap_generation = -1;
  Scripted_whitecaps caps(w, calm_sea);
  ASSERT_EQ(allocated(caps), 1);
  Verbosity loud(1);
  Stream_capture out(std::cout);
  caps.update(10.0, 1);
  EXPECT_NE(out.text().find(" outputting whitecap data to " + path + "\n"), std::string::npos);
}

TEST(WhitecapState, UnwritableInitialStateIsReportedAndTheRunGoesOn) {
  Scratch_folder folder;
  ocean_input w;
  set_one_cell(w);
  const std::string path = folder.file("no/such/folder/initial.dat");
  std::snprintf(w.initial_state_file, 256, "%s", path.c_str());
  w.whitecap_generation = -3;
  std::snprintf(w.frame_file, 256, "%s", folder.file("frame").c_str());
  Scripted_whitecaps caps(w, calm_sea);
  ASSERT_EQ(allocated(caps), 1);
  Verbosity quiet(0);
  Stream_capture out(std::cout);
  caps.update(10.0, 1);
  EXPECT_EQ(out.text(),
            "generating initial whitecap distribution\n"
            "unable to open file " +
                path +
                "\n"
                "unable to output to whitecap data file \n"
                "continuing anyway....                  \n"
                " done generating initial whitecap distribution \n"
                "outputting whitecap static state to " +
                folder.file("frame") + ".0001.wcs\n");
  EXPECT_EQ(caps.step, 1);
}

TEST(WhitecapState, StaticStatesReadBackInAnyOrderAtAnyTimeGiveTheSamePicture) {
  Scratch_folder folder;
  ocean_input w;
  set_pyramid(w);
  std::snprintf(w.frame_file, 256, "%s", folder.file("caps").c_str());
  w.whitecap_generation = -3;
  std::snprintf(w.initial_state_file, 256, "%s", folder.file("initial.dat").c_str());
  Scripted_whitecaps writer(w, rolling_sea);
  ASSERT_EQ(allocated(writer), 1);
  // Points over all four grids, between nodes and at them.
  std::vector<double> xs, ys;
  for (int k = 0; k < 60; k++) {
    xs.push_back(5.0 + 0.83 * k * std::cos(1.3 * k));
    ys.push_back(-3.0 + 0.61 * k * std::sin(0.9 * k));
  }
  const double frame_times[3] = {10.3, 11.45, 12.0};
  std::vector<double> pictures[3];
  int foam_points = 0;
  for (int f = 0; f < 3; f++) {
    Verbosity loud(1);
    Stream_capture out(std::cout);
    writer.update(frame_times[f], f + 1);
    char name[300];
    writer.static_state_name(f + 1, name);
    EXPECT_EQ(std::string(name), folder.file("caps") + ".000" + std::to_string(f + 1) + ".wcs");
    EXPECT_NE(out.text().find("outputting whitecap static state to " + std::string(name) + "\n"),
              std::string::npos);
    for (size_t k = 0; k < xs.size(); k++) {
      double r, t;
      foam_points += writer.whitecap_at(xs[k], ys[k], r, t);
      pictures[f].push_back(r);
      pictures[f].push_back(t);
    }
  }
  ASSERT_GT(foam_points, 0);

  w.whitecap_generation = -2;
  TCWhitecaps reader(w);
  ASSERT_EQ(allocated(reader), 1);
  const int order[3] = {3, 1, 2};
  const double any_time[3] = {0.0, 1.0e6, -5.0};
  for (int k = 0; k < 3; k++) {
    const int frame = order[k];
    {
      Verbosity quiet(0);
      Stream_capture out(std::cout);
      reader.update(any_time[k], frame);
      char name[300];
      reader.static_state_name(frame, name);
      EXPECT_EQ(out.text(), "reading whitecap state from " + std::string(name) + "\n");
    }
    EXPECT_EQ(reader.step_weight, 1.0);
    for (size_t p = 0; p < xs.size(); p++) {
      double r, t;
      reader.whitecap_at(xs[p], ys[p], r, t);
      EXPECT_NEAR(r, pictures[frame - 1][2 * p], 1e-6) << "frame " << frame << " point " << p;
      EXPECT_NEAR(t, pictures[frame - 1][2 * p + 1], 1e-6) << "frame " << frame << " point " << p;
    }
  }
}

TEST(WhitecapState, InputInitialOutputByFramesReadsTheStateAndWritesFrames) {
  Scratch_folder folder;
  ocean_input w;
  set_pyramid(w);
  std::snprintf(w.initial_state_file, 256, "%s", folder.file("initial.dat").c_str());
  std::snprintf(w.frame_file, 256, "%s", folder.file("caps").c_str());
  w.whitecap_generation = -1;
  Scripted_whitecaps writer(w, rolling_sea);
  ASSERT_EQ(allocated(writer), 1);
  quiet_update(writer, 10.7, 12);
  w.whitecap_generation = 2;
  Scripted_whitecaps reader(w, rolling_sea);
  ASSERT_EQ(allocated(reader), 1);
  quiet_update(reader, 10.7, 12);
  EXPECT_EQ(all_records(reader), all_records(writer));
  std::ifstream frame((folder.file("caps") + ".0012.wcs").c_str());
  EXPECT_TRUE(frame.good());
}

TEST(WhitecapStateDeath, MissingStaticStateEndsTheRun) {
  Scratch_folder folder;
  ocean_input w;
  set_one_cell(w);
  std::snprintf(w.frame_file, 256, "%s", folder.file("none").c_str());
  w.whitecap_generation = -2;
  const std::string name = folder.file("none") + ".0003.wcs";
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCWhitecaps caps(w);
        TCSpectrum bands(1);
        verbose = 0;
        caps.allocate(&bands);
        caps.update(10.0, 3);
      },
      ::testing::ExitedWithCode(1),
      "^unable to open file " + name + "\nunable to process whitecap state file " + name + "\n$");
}

TEST(WhitecapStateDeath, MissingInitialStateEndsTheRun) {
  Scratch_folder folder;
  ocean_input w;
  set_one_cell(w);
  const std::string name = folder.file("none.dat");
  std::snprintf(w.initial_state_file, 256, "%s", name.c_str());
  w.whitecap_generation = 1;
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCWhitecaps caps(w);
        TCSpectrum bands(1);
        verbose = 0;
        caps.allocate(&bands);
        caps.update(10.0, 3);
      },
      ::testing::ExitedWithCode(1),
      "^generating initial whitecap distribution\nunable to open file " + name + "\n$");
}

TEST(WhitecapStateDeath, UnwritableFrameStateEndsTheRun) {
  Scratch_folder folder;
  ocean_input w;
  set_one_cell(w);
  std::snprintf(w.frame_file, 256, "%s", folder.file("no/such/caps").c_str());
  w.whitecap_generation = -3;
  std::snprintf(w.initial_state_file, 256, "%s", folder.file("initial.dat").c_str());
  const std::string name = folder.file("no/such/caps") + ".0002.wcs";
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Scripted_whitecaps caps(w, calm_sea);
        TCSpectrum bands(1);
        verbose = 0;
        caps.allocate(&bands);
        caps.update(10.0, 2);
      },
      ::testing::ExitedWithCode(1),
      "unable to open file " + name + "\nunable to output whitecap state file " + name + "\n$");
}

// A pyramid holding one known record, saved full and static, to spoil.
class Hostile_state : public ::testing::Test {
 protected:
  void SetUp() override {
    set_pyramid(w);
    caps = new TCWhitecaps(w);
    ASSERT_EQ(allocated(*caps), 1);
    place(*caps, 2, 3, 1, 0.5f, 0.75f, 0.0f, 0.0f);
    full = folder.file("full.dat");
    frame = folder.file("frame.0001.wcs");
    Verbosity quiet(0);
    ASSERT_EQ(caps->write_state(full.c_str()), 1);
    ASSERT_EQ(caps->write_static_state(frame.c_str()), 1);
    // The reader holds another record, which a failed read must keep.
    reader = new TCWhitecaps(w);
    ASSERT_EQ(allocated(*reader), 1);
    place(*reader, 0, 0, 0, 0.125f, 0.25f, 0.5f, 0.5f);
  }
  void TearDown() override {
    delete caps;
    delete reader;
  }
  // The reader still holds only its own record.
  void expect_reader_unchanged() {
    EXPECT_EQ(live_records(*reader), 1);
    ASSERT_NE(reader->point(0, 0, 0), nullptr);
    EXPECT_EQ(reader->point(0, 0, 0)->refl_latest, 0.25f);
  }
  std::string read_full(const std::vector<unsigned char>& bytes, int& result) {
    write_bytes(full, bytes);
    Verbosity quiet(0);
    Stream_capture out(std::cout);
    result = reader->read_state(full.c_str());
    return out.text();
  }
  std::string read_static(const std::vector<unsigned char>& bytes, int& result) {
    write_bytes(frame, bytes);
    Stream_capture out(std::cout);
    result = reader->read_static_state(frame.c_str());
    return out.text();
  }

  Scratch_folder folder;
  ocean_input w;
  TCWhitecaps* caps = nullptr;
  TCWhitecaps* reader = nullptr;
  std::string full;
  std::string frame;
};

TEST_F(Hostile_state, GoodFilesReplaceEveryRecord) {
  int result = 0;
  EXPECT_EQ(read_full(file_bytes(full), result), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(all_records(*reader), all_records(*caps));
  place(*reader, 0, 0, 0, 0.125f, 0.25f, 0.5f, 0.5f);
  EXPECT_EQ(read_static(file_bytes(frame), result), "");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(live_records(*reader), 1);
  // Saved at step_weight 1: the previous value.
  EXPECT_EQ(reader->point(2, 3, 1)->refl_latest, 0.5f);
}

TEST_F(Hostile_state, VerboseFullReadSaysWhatItReads) {
  Verbosity loud(1);
  Stream_capture out(std::cout);
  EXPECT_EQ(reader->read_state(full.c_str()), 1);
  EXPECT_EQ(out.text(), "inputting whitecap from file " + full + "\n");
}

TEST_F(Hostile_state, TruncatedFullStateIsRefusedWithItsMessage) {
  const std::vector<unsigned char> whole = file_bytes(full);
  // Cut in the header, in the flags and inside the record.
  const size_t cuts[4] = {0, 7, 12 + 50, whole.size() - 1};
  for (size_t c = 0; c < 4; c++) {
    std::vector<unsigned char> bytes(whole.begin(), whole.begin() + cuts[c]);
    int result = 1;
    EXPECT_EQ(read_full(bytes, result),
              "whitecap file " + full + " ends before its last record \n");
    EXPECT_EQ(result, 0);
    expect_reader_unchanged();
  }
}

TEST_F(Hostile_state, TruncatedStaticStateIsRefusedWithItsMessage) {
  const std::vector<unsigned char> whole = file_bytes(frame);
  const size_t cuts[3] = {6, 16 + 20, whole.size() - 3};
  for (size_t c = 0; c < 3; c++) {
    std::vector<unsigned char> bytes(whole.begin(), whole.begin() + cuts[c]);
    int result = 1;
    EXPECT_EQ(read_static(bytes, result),
              "whitecap file " + frame + " ends before its last record \n");
    EXPECT_EQ(result, 0);
    expect_reader_unchanged();
  }
}

TEST_F(Hostile_state, StaticStateWithoutItsMagicIsRefused) {
  std::vector<unsigned char> bytes = file_bytes(frame);
  bytes[3] ^= 1;
  int result = 1;
  EXPECT_EQ(read_static(bytes, result), "file " + frame + " not of whitecap static data format \n");
  EXPECT_EQ(result, 0);
  expect_reader_unchanged();
  // Nor is a file too short for the magic, or a full state.
  EXPECT_EQ(read_static(std::vector<unsigned char>(bytes.begin(), bytes.begin() + 2), result),
            "file " + frame + " not of whitecap static data format \n");
  EXPECT_EQ(read_static(file_bytes(full), result),
            "file " + frame + " not of whitecap static data format \n");
  expect_reader_unchanged();
}

TEST_F(Hostile_state, HeaderOfOtherGridsIsRefusedWithTheFilesSizes) {
  std::vector<unsigned char> bytes = file_bytes(full);
  bytes[7] = 5;  // n_x 4 becomes 5
  int result = 1;
  EXPECT_EQ(read_full(bytes, result),
            "whitecap file not of matching format \nnum_grids = 4\nn_x = 5\nn_y = 3\n");
  EXPECT_EQ(result, 0);
  expect_reader_unchanged();
  std::vector<unsigned char> static_bytes = file_bytes(frame);
  static_bytes[4] = 0x80;  // num_grids becomes negative
  EXPECT_EQ(read_static(static_bytes, result),
            "whitecap file not of matching format \nnum_grids = -2147483644\nn_x = 4\nn_y = 3\n");
  EXPECT_EQ(result, 0);
  expect_reader_unchanged();
}

TEST_F(Hostile_state, MissingFilesAreReported) {
  Stream_capture out(std::cout);
  Verbosity quiet(0);
  const std::string none = folder.file("none");
  EXPECT_EQ(reader->read_state(none.c_str()), 0);
  EXPECT_EQ(reader->read_static_state(none.c_str()), 0);
  EXPECT_EQ(out.text(), "unable to open file " + none + "\nunable to open file " + none + "\n");
  expect_reader_unchanged();
}

TEST(WhitecapLookup, PointBeyondTheCoarsestGridIsClearWater) {
  ocean_input w;
  set_pyramid(w);
  TCWhitecaps caps(w);
  ASSERT_EQ(allocated(caps), 1);
  // Grid 3 covers 64 by 48 m around (5, -3): x from -27 to 37.
  for (int g = 0; g < 4; g++) {
    for (int i = 0; i < 4; i++) {
      for (int j = 0; j < 3; j++) place(caps, g, i, j, 0.5f, 0.5f, 0.0f, 0.0f);
    }
  }
  double r = -1.0, t = -1.0;
  EXPECT_EQ(caps.whitecap_at(37.0, -3.0, r, t), 0);
  EXPECT_EQ(r, 0.0);
  EXPECT_EQ(t, 1.0);
  EXPECT_EQ(caps.whitecap_at(5.0, 21.0, r, t), 0);
  EXPECT_EQ(caps.whitecap_at(5.0, 20.9, r, t), 1);
  double radiance[2] = {3.0, 5.0};
  double foam[2] = {7.0, 7.0};
  const double down[2] = {10.0, 20.0};
  caps.set_irradiance(down, down);
  EXPECT_EQ(caps.blend(38.0, -3.0, 0.5, 1.0, 1.0, radiance, foam), 0);
  EXPECT_EQ(radiance[0], 3.0);
  EXPECT_EQ(radiance[1], 5.0);
  EXPECT_EQ(foam[0], 0.0);
  EXPECT_EQ(foam[1], 0.0);
}

TEST(WhitecapLookup, FinestGridThatHoldsThePointIsUsed) {
  ocean_input w;
  set_pyramid(w);
  TCWhitecaps caps(w);
  ASSERT_EQ(allocated(caps), 1);
  // Grid 1: 16 by 12 m from (-3, -9), nodes 4 m apart; node (2, 1) is at
  // (5, -5).
  place(caps, 1, 2, 1, 0.5f, 0.5f, 0.0f, 0.0f);
  double r, t;
  // (5, -5) lies in grid 0 too (x from 1 to 9, y from -6 to 0): that grid is
  // empty.
  EXPECT_EQ(caps.whitecap_at(5.0, -5.0, r, t), 0);
  EXPECT_EQ(t, 1.0);
  // (5, -6) is outside grid 0 (2 |v| = 6, not below 6); in grid 1 it lies
  // between the nodes at y -9 and -5, a quarter of the way from -5.
  EXPECT_EQ(caps.whitecap_at(5.0, -6.0, r, t), 1);
  EXPECT_DOUBLE_EQ(r, 0.75 * 0.5);
  EXPECT_DOUBLE_EQ(t, 0.25);
}

TEST(WhitecapLookup, CornerOutsideTheGridCountsAsClearWater) {
  ocean_input w;
  set_pyramid(w);
  // floor(log2(2 / 6)) + 2 = 0: one grid.
  w.whitecap_max_distance = 1.0;
  TCWhitecaps caps(w);
  ASSERT_EQ(caps.num_grids, 1);
  ASSERT_EQ(allocated(caps), 1);
  // Nodes at x 1, 3, 5, 7 and y -6, -4, -2: x = 8 is half past the last
  // node, still inside the 8 m extent.
  place(caps, 0, 3, 1, 0.6f, 0.6f, 0.2f, 0.2f);
  double r, t;
  EXPECT_EQ(caps.whitecap_at(8.0, -4.0, r, t), 1);
  EXPECT_DOUBLE_EQ(r, 0.5 * 0.6f);
  EXPECT_DOUBLE_EQ(t, 0.5 * 0.2f + 0.5);
}

TEST(WhitecapLookup, RecordsAreWeighedByTheStepWeight) {
  ocean_input w;
  set_two_by_two(w);
  TCWhitecaps caps(w);
  ASSERT_EQ(allocated(caps), 1);
  place(caps, 0, 1, 1, 0.25f, 0.75f, 0.5f, 0.0f);
  caps.step_weight = 0.25;
  double r, t;
  EXPECT_EQ(caps.whitecap_at(0.0, 0.0, r, t), 1);
  EXPECT_DOUBLE_EQ(r, 0.25 * 0.25 + 0.75 * 0.75);
  EXPECT_DOUBLE_EQ(t, 0.25 * 0.5);
}

TEST(WhitecapLookup, FluctuationsScaleTheReflectivityWhichIsThenCapped) {
  ocean_input w;
  set_two_by_two(w);
  TCWhitecaps plain(w);
  ASSERT_EQ(allocated(plain), 1);
  place(plain, 0, 1, 1, 0.98f, 0.98f, 0.0f, 0.0f);
  double r, t;
  EXPECT_EQ(plain.whitecap_at(0.0, 0.0, r, t), 1);
  EXPECT_FLOAT_EQ(static_cast<float>(r), 0.98f);
  w.fluctuation_mode = 1;
  w.fluctuation_n_x = 4;
  w.fluctuation_n_y = 4;
  w.fluctuation_dx = 100.0;
  w.fluctuation_dy = 100.0;
  TCWhitecaps fluctuating(w);
  ASSERT_EQ(allocated(fluctuating), 1);
  ASSERT_NE(fluctuating.fluctuation, nullptr);
  // A field of factors 1.2 everywhere, cells far larger than the caps'.
  for (int k = 0; k < 6 * 4; k++) {
    fluctuating.fluctuation->field_current[k] = 1.2f;
    fluctuating.fluctuation->field_previous[k] = 1.2f;
  }
  place(fluctuating, 0, 1, 1, 0.98f, 0.98f, 0.0f, 0.0f);
  EXPECT_EQ(fluctuating.whitecap_at(0.0, 0.0, r, t), 1);
  EXPECT_EQ(r, 0.95);
  place(fluctuating, 0, 1, 1, 0.5f, 0.5f, 0.0f, 0.0f);
  EXPECT_EQ(fluctuating.whitecap_at(0.0, 0.0, r, t), 1);
  EXPECT_NEAR(r, 0.5 * 1.2f, 1e-7);
}

TEST(WhitecapBlend, FoamIsLitBySkyAndSunOverTheWaterItLetsThrough) {
  ocean_input w;
  set_two_by_two(w);
  TCWhitecaps caps(w);
  ASSERT_EQ(allocated(caps), 1);
  place(caps, 0, 1, 1, 0.5f, 0.5f, 0.25f, 0.25f);
  const double down[2] = {10.0, 20.0};
  const double sun[2] = {100.0, 300.0};
  caps.set_irradiance(down, sun);
  double radiance[2] = {4.0, 8.0};
  double foam[2] = {0.0, 0.0};
  EXPECT_EQ(caps.blend(0.0, 0.0, 0.6, 1.0, 0.8, radiance, foam), 1);
  // r 0.5, t 0.25: r E / pi + r E_sun cos / pi, the sun's term in floats.
  const double foam0 = 0.5 * 10.0 / 3.1415926535 + 100.0f * 0.5f * 0.6f / 3.1415927f;
  const double foam1 = 0.5 * 20.0 / 3.1415926535 + 300.0f * 0.5f * 0.6f / 3.1415927f;
  EXPECT_DOUBLE_EQ(foam[0], foam0);
  EXPECT_DOUBLE_EQ(foam[1], foam1);
  EXPECT_DOUBLE_EQ(radiance[0], 0.25 * 4.0 + foam0);
  EXPECT_DOUBLE_EQ(radiance[1], 0.25 * 8.0 + foam1);
  // With the sun below the surface only the sky lights it.
  radiance[0] = 4.0;
  radiance[1] = 8.0;
  EXPECT_EQ(caps.blend(0.0, 0.0, -0.2, 1.0, 0.8, radiance, foam), 1);
  EXPECT_DOUBLE_EQ(foam[0], 0.5 * 10.0 / 3.1415926535);
  EXPECT_DOUBLE_EQ(radiance[1], 0.25 * 8.0 + 0.5 * 20.0 / 3.1415926535);
}
