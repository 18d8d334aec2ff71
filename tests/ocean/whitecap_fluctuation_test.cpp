#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "TCFluctuation_field.h"
#include "TCSettings.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// 64 by 32 cells of 0.5 m, length scale 2 m, power 1, time scale 4 s,
// width 0.6, steps of 0.25 s from t = 10.
TCFluctuation_field* small_field(int seed = 3) {
  Stream_capture quiet(std::cout);
  return new TCFluctuation_field(64, 32, 0.5, 0.5, seed, 2.0, 1.0, 4.0, 0.6, 0.25, 10.0);
}

}  // namespace

TEST(WhitecapFluctuation, ConstructionPrintsTheDerivedConstants) {
  Stream_capture out(std::cout);
  TCFluctuation_field field(8, 8, 1.0, 1.0, 1, 2.0, 1.0, 4.0, 1.0, 0.1, 0.0);
  // length^2 = 4, exponent (1 + 1) / 4, decay (1 / 4)^2.
  EXPECT_EQ(out.text(), "FLUCT 4 0.5 0.0625\n");
  EXPECT_EQ(field.step, -1);
}

TEST(WhitecapFluctuation, LogOfTheFactorsHasTheWidthExactly) {
  TCFluctuation_field* field = small_field();
  const int saved = verbose;
  verbose = 0;
  field->update(10.0);
  verbose = saved;
  // The mean mode is 0 and the field is set to unit rms: ln f = w g - w^2 / 2
  // has mean -w^2 / 2 and width w over the field.
  double sum = 0.0, squares = 0.0, f_sum = 0.0;
  const int n = 64 * 32;
  for (int i = 0; i < 64; i++)
    for (int j = 0; j < 32; j++) {
      const double l = std::log(field->value(i, j));
      sum += l;
      squares += l * l;
      f_sum += field->value(i, j);
    }
  const double mean = sum / n;
  EXPECT_NEAR(mean, -0.18, 1e-5);
  EXPECT_NEAR(std::sqrt(squares / n - mean * mean), 0.6, 1e-5);
  // The factors' mean is near 1 (sampling error of a correlated field).
  EXPECT_NEAR(f_sum / n, 1.0, 0.1);
  delete field;
}

TEST(WhitecapFluctuation, TheSameSeedGivesTheSameField) {
  TCFluctuation_field *a = small_field(3), *b = small_field(3), *c = small_field(4);
  const int saved = verbose;
  verbose = 0;
  a->update(10.6);
  b->update(10.6);
  c->update(10.6);
  verbose = saved;
  int differ = 0;
  for (int i = 0; i < 64; i++)
    for (int j = 0; j < 32; j++) {
      EXPECT_EQ(a->value(i, j), b->value(i, j));
      differ += a->value(i, j) != c->value(i, j);
    }
  EXPECT_GT(differ, 64 * 32 / 2);
  delete a;
  delete b;
  delete c;
}

TEST(WhitecapFluctuation, AFrameOnAStepWeighsTheStepBeforeWhole) {
  TCFluctuation_field* field = small_field();
  const int saved = verbose;
  verbose = 0;
  // t = 10.5 is two steps on: target trunc(2) + 1 = 3, weight 3 - 2 = 1.
  field->update(10.5);
  EXPECT_EQ(field->step, 3);
  EXPECT_DOUBLE_EQ(field->time_weight, 1.0);
  // Between: 10.6 is 2.4 steps on, target 3, weight 0.6.
  field->update(10.6);
  EXPECT_EQ(field->step, 3);
  EXPECT_NEAR(field->time_weight, 0.6, 1e-12);
  verbose = saved;
  // With weight 1 a point on a cell gives the step before's value.
  field->time_weight = 1.0;
  EXPECT_NEAR(field->factor_at(3 * 0.5, 5 * 0.5, 0.5, 0.5),
              std::fmax(0.95, field->previous_value(3, 5)), 1e-6);
  delete field;
}

TEST(WhitecapFluctuation, LargeCellsAverageTowardsOneAndNothingFallsBelowPointNineFive) {
  TCFluctuation_field* field = small_field();
  const int saved = verbose;
  verbose = 0;
  field->update(10.0);
  verbose = saved;
  field->time_weight = 0.0;
  int floored = 0;
  for (int i = 0; i < 64; i++)
    for (int j = 0; j < 32; j++) {
      const double v = field->value(i, j);
      const double x = i * 0.5, y = j * 0.5;
      EXPECT_NEAR(field->factor_at(x, y, 0.5, 0.5), std::fmax(v, 0.95), 1e-6);
      // A cell 2 m square is 4 of the field's: (v - 1) / 4 + 1.
      EXPECT_NEAR(field->factor_at(x, y, 2.0, 2.0), std::fmax((v - 1.0) / 4.0 + 1.0, 0.95), 1e-6);
      floored += v < 0.95;
    }
  EXPECT_GT(floored, 0);
  // Periodic: a field's length on, the same.
  EXPECT_NEAR(field->factor_at(1.25 + 32.0, 2.75 - 16.0, 0.5, 0.5),
              field->factor_at(1.25, 2.75, 0.5, 0.5), 1e-9);
  delete field;
}

TEST(WhitecapFluctuationDeathTest, TimesBeforeTheReferenceOrGoingBackEndTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCFluctuation_field field(8, 8, 1.0, 1.0, 1, 2.0, 1.0, 4.0, 1.0, 0.25, 10.0);
        field.update(9.0);
      },
      ::testing::ExitedWithCode(1),
      "^FLUCT 4 0.5 0.0625\nimpossible to image whitecaps prior to whitecap reference time\n$");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCFluctuation_field field(8, 8, 1.0, 1.0, 1, 2.0, 1.0, 4.0, 1.0, 0.25, 10.0);
        field.update(11.0);
        field.update(10.5);
      },
      ::testing::ExitedWithCode(1),
      "^FLUCT 4 0.5 0.0625\ncan not evolve whitecap backwards in time \n$");
}

// Each mode moves on as p x + q n with p = sqrt(exp(-k^2 dt^2 decay)),
// q = sqrt(1 - p^2) and n a fresh normal deviate: over the field's modes the
// residual after the expected part is uncorrelated with the old value and
// has variance q^2 (the j = 0 column, partly copied for symmetry, left out).
TEST(WhitecapFluctuation, ModesKeepTheExpectedCorrelationFromStepToStep) {
  TCFluctuation_field* field = small_field();
  const int saved = verbose;
  verbose = 0;
  field->update(10.0);
  const int n_ky = 32 / 2 + 1;
  std::vector<float> before_r(field->mode_real, field->mode_real + 64 * n_ky);
  std::vector<float> before_i(field->mode_imag, field->mode_imag + 64 * n_ky);
  field->update(10.25);
  verbose = saved;
  double cross = 0.0, norm = 0.0, residual = 0.0, expected = 0.0;
  long count = 0;
  for (int i = 0; i < 64; i++) {
    for (int j = 1; j < n_ky; j++) {
      const long m = static_cast<long>(i) * n_ky + j;
      const double kx = 6.283185307 / 32.0 * (i <= 32 ? i : i - 64);
      const double ky = 6.283185307 / 16.0 * j;
      const double a = std::exp(-(kx * kx + ky * ky) * 0.0625 * (0.5 / 4.0) * (0.5 / 4.0));
      const double p = std::sqrt(a), q2 = 1.0 - a;
      const int parts = (i == 32 || j == 16) ? 1 : 2;
      for (int part = 0; part < parts; part++) {
        const double old = part ? before_i[m] : before_r[m];
        const double now = part ? field->mode_imag[m] : field->mode_real[m];
        const double r = now - p * old;
        cross += r * old;
        norm += old * old;
        residual += r * r;
        expected += q2;
        count++;
      }
    }
  }
  ASSERT_GT(count, 1000);
  // Residual variance q^2 within sampling error (4 standard errors).
  EXPECT_NEAR(residual / expected, 1.0, 4.0 * std::sqrt(2.0 / count));
  // No correlation left with the old value.
  EXPECT_LT(std::fabs(cross) / std::sqrt(norm * expected / count), 4.0);
  delete field;
}

// The field's power spectrum follows the amplitude's square, |k| / (1 +
// L^2 k^2)^((1 + p) / 2), up to one constant: measured by a direct Fourier
// sum of g = (ln f + w^2 / 2) / w over a few fields, in bands of |k|, each
// band within four of its own sampling errors of the fitted constant.
TEST(WhitecapFluctuation, ThePowerSpectrumFollowsThePowerLaw) {
  const int nx = 32, ny = 32;
  const double d = 0.5, w = 0.6;
  const int n_bins = 8;
  double power[n_bins] = {0}, model[n_bins] = {0};
  int modes[n_bins] = {0};
  const double k_top = 6.283185307 / (2 * d);  // Nyquist, rad / m
  for (int seed = 1; seed <= 6; seed++) {
    TCFluctuation_field* field;
    {
      Stream_capture quiet(std::cout);
      field = new TCFluctuation_field(nx, ny, d, d, seed, 1.5, 2.0, 4.0, w, 0.25, 0.0);
    }
    const int saved = verbose;
    verbose = 0;
    field->update(0.0);
    verbose = saved;
    std::vector<double> g(nx * ny);
    for (int i = 0; i < nx; i++)
      for (int j = 0; j < ny; j++) g[i * ny + j] = (std::log(field->value(i, j)) + 0.5 * w * w) / w;
    // Half the plane of wavenumbers, the axes' Nyquist rows left out.
    for (int a = -nx / 2 + 1; a < nx / 2; a++) {
      for (int b = 1; b < ny / 2; b++) {
        double re = 0.0, im = 0.0;
        for (int i = 0; i < nx; i++)
          for (int j = 0; j < ny; j++) {
            const double phase = 6.283185307179586 * (static_cast<double>(a) * i / nx +
                                                      static_cast<double>(b) * j / ny);
            re += g[i * ny + j] * std::cos(phase);
            im -= g[i * ny + j] * std::sin(phase);
          }
        const double kx = 6.283185307 / (nx * d) * a, ky = 6.283185307 / (ny * d) * b;
        const double k = std::sqrt(kx * kx + ky * ky);
        const int bin = static_cast<int>(k / k_top * n_bins);
        if (bin >= n_bins) continue;
        power[bin] += re * re + im * im;
        model[bin] += k / std::pow(1.0 + 1.5 * 1.5 * k * k, 1.5);
        modes[bin]++;
      }
    }
    delete field;
  }
  // The constant from all bins together, then each bin against it.
  double total_power = 0.0, total_model = 0.0;
  for (int b = 0; b < n_bins; b++) {
    total_power += power[b];
    total_model += model[b];
  }
  const double constant = total_power / total_model;
  int checked = 0;
  for (int b = 0; b < n_bins; b++) {
    if (modes[b] < 30) continue;
    // A mode's power is exponential (two normal parts): relative error 1 / sqrt(count).
    EXPECT_NEAR(power[b] / (constant * model[b]), 1.0, 4.0 / std::sqrt(modes[b])) << "band " << b;
    checked++;
  }
  EXPECT_GE(checked, 5);
}

TEST(WhitecapFluctuation, AFieldCanBeMadeFromTheWhitecapFilesBlock) {
  Scratch_folder folder;
  std::ofstream(folder.file("block")) << "lattice_size: 16 8\nlattice_spacing: 0.5 0.25\n"
                                         "random_seed: 9\nlength_scale: 2\npower_law: 1\n"
                                         "time_scale: 4\nlog_normal_width: 0.3\nend\n";
  Stream_capture out(std::cout);
  TCFluctuation_field* field =
      TCFluctuation_field::from_file(folder.file("block").c_str(), 0.1, 2.0);
  ASSERT_NE(field, nullptr);
  EXPECT_EQ(out.text(), "FLUCT 4 0.5 0.015625\n");
  EXPECT_EQ(field->n_x, 16);
  EXPECT_EQ(field->n_y, 8);
  EXPECT_EQ(field->dy, 0.25);
  EXPECT_EQ(field->width, 0.3);
  EXPECT_EQ(field->time_increment, 0.1);
  EXPECT_EQ(field->reference_time, 2.0);
  delete field;
}

TEST(WhitecapFluctuation, AMissingOrCutBlockIsReported) {
  Scratch_folder folder;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(TCFluctuation_field::from_file(folder.file("none").c_str(), 0.1, 0.0), nullptr);
    EXPECT_EQ(out.text(), "unable to open file " + folder.file("none") + "\n");
  }
  std::ofstream(folder.file("cut")) << "lattice_size: 16 8\nlattice_spacing: 0.5\n";
  Stream_capture out(std::cout);
  EXPECT_EQ(TCFluctuation_field::from_file(folder.file("cut").c_str(), 0.1, 0.0), nullptr);
  EXPECT_EQ(out.text(),
            "unable to process input stream in 2D fluctuation field \n"
            "unable to read 2D fluctuation field file " +
                folder.file("cut") + "\n");
}
