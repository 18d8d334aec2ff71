#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <string>
#include <vector>

#include "TCFluctuation_field.h"
#include "TCSettings.h"
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
