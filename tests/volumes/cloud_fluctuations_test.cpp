#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <string>
#include <vector>

#include "TCCloud_fluctuations.h"
#include "TCLattice_file.h"
#include "scratch_folder.h"

namespace {

struct Moments {
  double mean;
  double width;
};

Moments moments(const std::vector<double>& values) {
  double sum = 0.0;
  for (double v : values) sum += v;
  const double mean = sum / values.size();
  double squares = 0.0;
  for (double v : values) squares += (v - mean) * (v - mean);
  return {mean, std::sqrt(squares / values.size())};
}

long long cells(const TCCloud_fluctuations& field) {
  return static_cast<long long>(field.n_x) * field.n_y * field.n_z;
}

std::vector<double> log_values(const TCCloud_fluctuations& field) {
  std::vector<double> out(cells(field));
  for (size_t c = 0; c < out.size(); c++) out[c] = std::log(static_cast<double>(field.values()[c]));
  return out;
}

std::vector<double> plain_values(const TCCloud_fluctuations& field) {
  return std::vector<double>(field.values(), field.values() + cells(field));
}

double correlation(const std::vector<double>& a, const std::vector<double>& b) {
  const Moments ma = moments(a), mb = moments(b);
  double sum = 0.0;
  for (size_t c = 0; c < a.size(); c++) sum += (a[c] - ma.mean) * (b[c] - mb.mean);
  return sum / a.size() / (ma.width * mb.width);
}

// The signed frequency, in cycles per cell, of index m on a length n.
double frequency(int m, int n) {
  return static_cast<double>(m <= n / 2 ? m : m - n) / n;
}

// The number of independent Gaussian variables the field's sample statistics
// rest on, worked out from the requested spectrum alone: (sum S)^2 / sum S^2
// over the modes in the band, halved since modes k and -k are one variable.
double independent_modes(int n_x, int n_y, int n_z, double power, double length) {
  double sum = 0.0, squares = 0.0;
  for (int k = 0; k < n_z; k++) {
    for (int j = 0; j < n_y; j++) {
      for (int i = 0; i < n_x; i++) {
        const double kx = frequency(i, n_x), ky = frequency(j, n_y), kz = frequency(k, n_z);
        const double magnitude = std::sqrt(kx * kx + ky * ky + kz * kz);
        if (magnitude == 0.0 || magnitude > 1.0 / length + 1e-12) continue;
        const double s = std::pow(magnitude, -power);
        sum += s;
        squares += s * s;
      }
    }
  }
  return 0.5 * sum * sum / squares;
}

// |G(m)|^2 of the field's Gaussian part by a direct separable DFT in double,
// index i + n_x * (j + n_y * k) as the field's.
std::vector<double> direct_power(const TCCloud_fluctuations& field) {
  const int n[3] = {field.n_x, field.n_y, field.n_z};
  const long long count = cells(field);
  std::vector<std::complex<double>> data(count);
  for (long long c = 0; c < count; c++) data[c] = field.gaussian_values()[c];
  const long long stride[3] = {1, n[0], static_cast<long long>(n[0]) * n[1]};
  for (int d = 0; d < 3; d++) {
    std::vector<std::complex<double>> line(n[d]), out(n[d]);
    for (long long start = 0; start < count; start++) {
      // Lines start where this dimension's index is 0.
      if ((start / stride[d]) % n[d] != 0) continue;
      for (int m = 0; m < n[d]; m++) line[m] = data[start + m * stride[d]];
      for (int q = 0; q < n[d]; q++) {
        std::complex<double> sum = 0.0;
        for (int m = 0; m < n[d]; m++) {
          sum += line[m] * std::polar(1.0, -2.0 * M_PI * q * m / n[d]);
        }
        out[q] = sum;
      }
      for (int m = 0; m < n[d]; m++) data[start + m * stride[d]] = out[m];
    }
  }
  std::vector<double> power(count);
  for (long long c = 0; c < count; c++) power[c] = std::norm(data[c]);
  return power;
}

// The largest power above the cutoff (and at k = 0) and the mean power in the
// band, of a field of that length_scale.
void band_powers(const TCCloud_fluctuations& field, double length, double& outside,
                 double& inside_mean) {
  const std::vector<double> power = direct_power(field);
  outside = 0.0;
  double inside = 0.0;
  int inside_count = 0;
  for (int k = 0; k < field.n_z; k++) {
    for (int j = 0; j < field.n_y; j++) {
      for (int i = 0; i < field.n_x; i++) {
        const double kx = frequency(i, field.n_x), ky = frequency(j, field.n_y),
                     kz = frequency(k, field.n_z);
        const double magnitude = std::sqrt(kx * kx + ky * ky + kz * kz);
        const double p = power[i + field.n_x * (j + field.n_y * k)];
        if (magnitude == 0.0 || magnitude > 1.0 / length + 1e-12) {
          if (p > outside) outside = p;
        } else {
          inside += p;
          inside_count++;
        }
      }
    }
  }
  inside_mean = inside_count ? inside / inside_count : 0.0;
}

TEST(CloudFluctuations, LogOfValuesHasTheRequestedWidth) {
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(16, 16, 16, 2.0, 0.7, 2.0, 5), 1);
  EXPECT_EQ(field.sigma, 0.7);
  const Moments m = moments(log_values(field));
  EXPECT_NEAR(m.width, 0.7, 1e-5);
  // ln f = sigma g - sigma^2 / 2 with g of mean 0.
  EXPECT_NEAR(m.mean, -0.5 * 0.7 * 0.7, 1e-5);
  const Moments gm =
      moments(std::vector<double>(field.gaussian_values(), field.gaussian_values() + 4096));
  EXPECT_NEAR(gm.mean, 0.0, 1e-6);
  EXPECT_NEAR(gm.width, 1.0, 1e-6);
}

TEST(CloudFluctuations, MeanOfValuesIsNearOne) {
  // A log normal of width s has variance exp(s^2) - 1; the sample mean over
  // N independent values strays by its square root over sqrt(N). Without the
  // shift by -s^2 / 2 the mean would be exp(s^2 / 2), well outside.
  const double width = 0.5, power = 1.0;
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(32, 32, 32, power, width, 2.0, 11), 1);
  const double n = independent_modes(32, 32, 32, power, 2.0);
  const double tolerance = 5.0 * std::sqrt((std::exp(width * width) - 1.0) / n);
  ASSERT_LT(tolerance, 0.5 * (std::exp(0.5 * width * width) - 1.0));
  EXPECT_NEAR(moments(plain_values(field)).mean, 1.0, tolerance);
}

TEST(CloudFluctuations, NoPowerAboveTheCutoffNorAtZero) {
  // Shortest wavelength 4 cells: |k| up to 0.25 cycles per cell.
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(12, 10, 9, 2.5, 1.0, 4.0, 3), 1);
  double outside = 0.0, inside_mean = 0.0;
  band_powers(field, 4.0, outside, inside_mean);
  ASSERT_GT(inside_mean, 0.0);
  // Only single precision rounding is left outside the band.
  EXPECT_LT(outside, 1e-9 * inside_mean);
}

TEST(CloudFluctuations, DefaultLengthScaleKeepsEverythingUpToNyquist) {
  // length_scale 2: the sphere |k| <= 0.5; the corner (0.5, 0.5, 0.5) is out,
  // the axis Nyquist (0.5, 0, 0) is in.
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(8, 8, 8, 1.0, 1.0, 2.0, 8), 1);
  const std::vector<double> power = direct_power(field);
  double total = 0.0;
  for (double p : power) total += p;
  EXPECT_LT(power[4 + 8 * (4 + 8 * 4)], 1e-9 * total / 512);
  EXPECT_GT(power[4], 1e-6 * total / 512);
}

TEST(CloudFluctuations, SameSeedGivesTheSameFieldBitForBit) {
  TCCloud_fluctuations a, b;
  ASSERT_EQ(a.generate(10, 12, 14, 1.7, 0.8, 2.5, 42), 1);
  ASSERT_EQ(b.generate(10, 12, 14, 1.7, 0.8, 2.5, 42), 1);
  EXPECT_EQ(std::memcmp(a.values(), b.values(), sizeof(float) * 1680), 0);
  EXPECT_EQ(std::memcmp(a.gaussian_values(), b.gaussian_values(), sizeof(float) * 1680), 0);
  // And generating again in the same object restarts the stream.
  ASSERT_EQ(a.generate(10, 12, 14, 1.7, 0.8, 2.5, 42), 1);
  EXPECT_EQ(std::memcmp(a.values(), b.values(), sizeof(float) * 1680), 0);
}

TEST(CloudFluctuations, OtherSeedGivesAnotherField) {
  TCCloud_fluctuations a, b;
  ASSERT_EQ(a.generate(16, 16, 16, 1.0, 0.8, 2.0, 42), 1);
  ASSERT_EQ(b.generate(16, 16, 16, 1.0, 0.8, 2.0, 43), 1);
  const double n = independent_modes(16, 16, 16, 1.0, 2.0);
  EXPECT_LT(std::fabs(correlation(log_values(a), log_values(b))), 5.0 / std::sqrt(n));
}

TEST(CloudFluctuations, EvolveCorrelatesByTheFactorAndKeepsWidthAndBand) {
  const double a = 0.6, width = 0.9, power = 1.0, length = 3.0;
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(20, 18, 16, power, width, length, 7), 1);
  const std::vector<double> before = log_values(field);
  ASSERT_EQ(field.evolve(a), 1);
  const std::vector<double> after = log_values(field);
  // corr = (a + sqrt(1 - a^2) c) / s with c the sample correlation of the
  // old and the fresh part, of size 1 / sqrt(N), and s within that of 1.
  const double n = independent_modes(20, 18, 16, power, length);
  EXPECT_NEAR(correlation(before, after), a, 5.0 / std::sqrt(n));
  EXPECT_NEAR(moments(after).width, width, 1e-5);
  EXPECT_NEAR(moments(after).mean, -0.5 * width * width, 1e-5);
  double outside = 0.0, inside_mean = 0.0;
  band_powers(field, length, outside, inside_mean);
  EXPECT_LT(outside, 1e-9 * inside_mean);
}

TEST(CloudFluctuations, EvolveWithFactorOneKeepsAndZeroForgets) {
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(16, 16, 16, 1.0, 0.5, 2.0, 9), 1);
  const std::vector<double> first = log_values(field);
  ASSERT_EQ(field.evolve(1.0), 1);
  const std::vector<double> kept = log_values(field);
  for (size_t c = 0; c < first.size(); c++) ASSERT_NEAR(kept[c], first[c], 1e-5);
  ASSERT_EQ(field.evolve(0.0), 1);
  const double n = independent_modes(16, 16, 16, 1.0, 2.0);
  EXPECT_LT(std::fabs(correlation(first, log_values(field))), 5.0 / std::sqrt(n));
  EXPECT_NEAR(moments(log_values(field)).width, 0.5, 1e-5);
}

TEST(CloudFluctuations, EvolveRefusesFactorsOutsideZeroToOneAndAnEmptyField) {
  TCCloud_fluctuations field;
  EXPECT_EQ(field.evolve(0.5), 0);
  ASSERT_EQ(field.generate(4, 4, 4, 1.0, 0.5, 2.0, 1), 1);
  const std::vector<double> first = plain_values(field);
  EXPECT_EQ(field.evolve(1.5), 0);
  EXPECT_EQ(field.evolve(-0.1), 0);
  EXPECT_EQ(field.evolve(std::nan("")), 0);
  EXPECT_EQ(plain_values(field), first);
}

TEST(CloudFluctuations, ChunkFactorIsTheExponentialOfUpdateOverSigmaTime) {
  EXPECT_DOUBLE_EQ(TCCloud_fluctuations::evolve_factor(0.1, 0.1), std::exp(-1.0));
  EXPECT_DOUBLE_EQ(TCCloud_fluctuations::evolve_factor(0.05, 0.2), std::exp(-0.25));
  // No memory at all for a sigma_time of 0 or less.
  EXPECT_EQ(TCCloud_fluctuations::evolve_factor(0.1, 0.0), 0.0);
  EXPECT_EQ(TCCloud_fluctuations::evolve_factor(0.1, -3.0), 0.0);
  EXPECT_EQ(TCCloud_fluctuations::evolve_factor(0.1, std::nan("")), 0.0);
  // Held within [0, 1] whatever the update time.
  EXPECT_EQ(TCCloud_fluctuations::evolve_factor(-1.0, 0.5), 1.0);
  EXPECT_EQ(TCCloud_fluctuations::evolve_factor(1e300, 1e-300), 0.0);
  EXPECT_EQ(TCCloud_fluctuations::evolve_factor(std::nan(""), 1.0), 0.0);
}

TEST(CloudFluctuations, SameSeedEvolvesTheSameWay) {
  TCCloud_fluctuations a, b;
  ASSERT_EQ(a.generate(9, 8, 7, 2.0, 0.6, 2.0, 21), 1);
  ASSERT_EQ(b.generate(9, 8, 7, 2.0, 0.6, 2.0, 21), 1);
  for (int step = 0; step < 3; step++) {
    ASSERT_EQ(a.evolve(0.8), 1);
    ASSERT_EQ(b.evolve(0.8), 1);
  }
  EXPECT_EQ(std::memcmp(a.values(), b.values(), sizeof(float) * 504), 0);
}

TEST(CloudFluctuations, ZeroWidthGivesOneEverywhere) {
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(6, 5, 4, 1.0, 0.0, 2.0, 1), 1);
  for (int c = 0; c < 120; c++) ASSERT_EQ(field.values()[c], 1.0f);
  ASSERT_EQ(field.evolve(0.3), 1);
  for (int c = 0; c < 120; c++) ASSERT_EQ(field.values()[c], 1.0f);
}

TEST(CloudFluctuations, NegativeWidthCountsAsItsSize) {
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(8, 8, 8, 1.0, -0.4, 2.0, 1), 1);
  EXPECT_EQ(field.sigma, 0.4);
  EXPECT_NEAR(moments(log_values(field)).width, 0.4, 1e-5);
}

TEST(CloudFluctuations, PowerNotAboveZeroIsRefusedAndTheFieldKept) {
  TCCloud_fluctuations field;
  EXPECT_EQ(field.generate(4, 4, 4, 0.0, 1.0, 2.0, 1), 0);
  EXPECT_EQ(field.generate(4, 4, 4, -1.0, 1.0, 2.0, 1), 0);
  EXPECT_EQ(field.generate(4, 4, 4, std::nan(""), 1.0, 2.0, 1), 0);
  EXPECT_EQ(field.has_field(), 0);
  EXPECT_EQ(field.value(0, 0, 0), 1.0f);
  EXPECT_EQ(field.value_at(0.5, 0.5, 0.5), 1.0);
  ASSERT_EQ(field.generate(4, 4, 4, 1.0, 1.0, 2.0, 1), 1);
  const std::vector<double> first = plain_values(field);
  EXPECT_EQ(field.generate(5, 5, 5, -2.0, 1.0, 2.0, 2), 0);
  EXPECT_EQ(field.n_x, 4);
  EXPECT_EQ(plain_values(field), first);
  EXPECT_EQ(field.set_spectrum(0.0, 2.0, 1), 0);
}

TEST(CloudFluctuations, OtherRefusals) {
  TCCloud_fluctuations field;
  EXPECT_EQ(field.generate(0, 4, 4, 1.0, 1.0, 2.0, 1), 0);
  EXPECT_EQ(field.generate(4, -4, 4, 1.0, 1.0, 2.0, 1), 0);
  EXPECT_EQ(field.generate(65536, 65536, 65536, 1.0, 1.0, 2.0, 1), 0);
  EXPECT_EQ(field.generate(4, 4, 4, 1.0, std::nan(""), 2.0, 1), 0);
  EXPECT_EQ(field.generate(4, 4, 4, 1.0, 1.0, HUGE_VAL, 1), 0);
  EXPECT_EQ(field.has_field(), 0);
}

TEST(CloudFluctuations, OddSizesWork) {
  const int sizes[][3] = {{12, 10, 9}, {9, 7, 5}, {7, 11, 13}, {103, 2, 1}, {1, 1, 17}};
  for (const auto& s : sizes) {
    TCCloud_fluctuations field;
    ASSERT_EQ(field.generate(s[0], s[1], s[2], 1.5, 0.6, 2.0, 4), 1) << s[0] << s[1] << s[2];
    EXPECT_NEAR(moments(log_values(field)).width, 0.6, 1e-5) << s[0] << " " << s[1] << " " << s[2];
    double outside = 0.0, inside_mean = 0.0;
    band_powers(field, 2.0, outside, inside_mean);
    EXPECT_LT(outside, 1e-9 * inside_mean) << s[0] << " " << s[1] << " " << s[2];
    ASSERT_EQ(field.evolve(0.5), 1);
    EXPECT_NEAR(moments(log_values(field)).width, 0.6, 1e-5);
  }
}

TEST(CloudFluctuations, SingleCellAndEmptyBandAreFlat) {
  // A single cell has only k = 0; a shortest wavelength longer than the grid
  // leaves no mode either.
  TCCloud_fluctuations one;
  ASSERT_EQ(one.generate(1, 1, 1, 1.0, 0.8, 2.0, 1), 1);
  EXPECT_EQ(one.sigma, 0.0);
  EXPECT_EQ(one.value(0, 0, 0), 1.0f);
  ASSERT_EQ(one.evolve(0.5), 1);
  EXPECT_EQ(one.value(0, 0, 0), 1.0f);
  TCCloud_fluctuations wide;
  ASSERT_EQ(wide.generate(8, 8, 8, 1.0, 0.8, 100.0, 1), 1);
  EXPECT_EQ(wide.sigma, 0.0);
  for (int c = 0; c < 512; c++) ASSERT_EQ(wide.values()[c], 1.0f);
}

TEST(CloudFluctuations, WriteThenReadRecoversValuesWidthAndGaussianPart) {
  Scratch_folder folder;
  const std::string path = folder.file("fluctuations.dat");
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(10, 9, 8, 1.2, 0.75, 2.0, 13), 1);
  ASSERT_EQ(field.write_file(path.c_str()), 1);
  int n_x = 0, n_y = 0, n_z = 0;
  ASSERT_EQ(TCLattice_file::read_sizes(path.c_str(), n_x, n_y, n_z), 1);
  EXPECT_EQ(n_x * 100 + n_y * 10 + n_z, 1098);
  TCCloud_fluctuations back;
  ASSERT_EQ(back.read_file(path.c_str()), 1);
  EXPECT_EQ(back.n_x, 10);
  EXPECT_EQ(back.n_y, 9);
  EXPECT_EQ(back.n_z, 8);
  EXPECT_EQ(std::memcmp(back.values(), field.values(), sizeof(float) * 720), 0);
  EXPECT_NEAR(back.sigma, 0.75, 1e-6);
  for (int c = 0; c < 720; c++) {
    ASSERT_NEAR(back.gaussian_values()[c], field.gaussian_values()[c], 1e-4);
  }
}

TEST(CloudFluctuations, ConstantFileGivesWidthZero) {
  Scratch_folder folder;
  const std::string path = folder.file("constant.dat");
  std::vector<float> twos(60, 2.0f);
  ASSERT_EQ(TCLattice_file::write(path.c_str(), 5, 4, 3, twos.data()), 1);
  TCCloud_fluctuations field;
  ASSERT_EQ(field.read_file(path.c_str()), 1);
  EXPECT_EQ(field.sigma, 0.0);
  for (int c = 0; c < 60; c++) {
    ASSERT_EQ(field.gaussian_values()[c], 0.0f);
    ASSERT_EQ(field.values()[c], 2.0f);
  }
}

TEST(CloudFluctuations, ReadRefusesValuesNotAboveZeroAndKeepsTheField) {
  Scratch_folder folder;
  const std::string path = folder.file("bad.dat");
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(4, 4, 4, 1.0, 0.5, 2.0, 1), 1);
  const std::vector<double> first = plain_values(field);
  const float bad[3] = {0.0f, -1.0f, std::nanf("")};
  for (float value : bad) {
    std::vector<float> values(8, 1.5f);
    values[5] = value;
    ASSERT_EQ(TCLattice_file::write(path.c_str(), 2, 2, 2, values.data()), 1);
    EXPECT_EQ(field.read_file(path.c_str()), 0);
  }
  EXPECT_EQ(field.read_file(folder.file("absent.dat").c_str()), 0);
  EXPECT_EQ(field.n_x, 4);
  EXPECT_EQ(plain_values(field), first);
}

TEST(CloudFluctuations, ReadFieldEvolvesWithTheSpectrumItIsGiven) {
  Scratch_folder folder;
  const std::string path = folder.file("fluctuations.dat");
  TCCloud_fluctuations field;
  ASSERT_EQ(field.generate(12, 12, 12, 2.0, 0.5, 4.0, 13), 1);
  ASSERT_EQ(field.write_file(path.c_str()), 1);
  TCCloud_fluctuations back;
  ASSERT_EQ(back.read_file(path.c_str()), 1);
  ASSERT_EQ(back.set_spectrum(2.0, 4.0, 99), 1);
  ASSERT_EQ(back.evolve(0.5), 1);
  EXPECT_NEAR(moments(log_values(back)).width, 0.5, 1e-5);
  double outside = 0.0, inside_mean = 0.0;
  band_powers(back, 4.0, outside, inside_mean);
  EXPECT_LT(outside, 1e-9 * inside_mean);
  // Without set_spectrum a read field still evolves (power 1, length 2).
  TCCloud_fluctuations plain;
  ASSERT_EQ(plain.read_file(path.c_str()), 1);
  EXPECT_EQ(plain.evolve(0.5), 1);
}

TEST(CloudFluctuations, ValueAtInterpolatesTrilinearlyAndWrapsAround) {
  Scratch_folder folder;
  const std::string path = folder.file("known.dat");
  // Value 1 + i + 2 j + 4 k on 2 by 3 by 4 cells.
  std::vector<float> values(24);
  for (int k = 0; k < 4; k++) {
    for (int j = 0; j < 3; j++) {
      for (int i = 0; i < 2; i++) values[i + 2 * (j + 3 * k)] = 1.0f + i + 2 * j + 4 * k;
    }
  }
  ASSERT_EQ(TCLattice_file::write(path.c_str(), 2, 3, 4, values.data()), 1);
  TCCloud_fluctuations field;
  ASSERT_EQ(field.read_file(path.c_str()), 1);
  EXPECT_DOUBLE_EQ(field.value_at(1.0, 2.0, 3.0), 1.0 + 1 + 4 + 12);
  EXPECT_FLOAT_EQ(field.value(1, 2, 3), 18.0f);
  // Inside the grid: linear in each direction.
  EXPECT_DOUBLE_EQ(field.value_at(0.25, 0.5, 1.5), 1.0 + 0.25 + 1.0 + 6.0);
  // Between the last cell and the first: x from 2 (at 1) back to 1 (at 2).
  EXPECT_DOUBLE_EQ(field.value_at(1.25, 0.0, 0.0), 0.75 * 2.0 + 0.25 * 1.0);
  // z from 13 (k = 3) to 1 (k = 0 again) halfway.
  EXPECT_DOUBLE_EQ(field.value_at(0.0, 0.0, 3.5), 7.0);
  // Periodic in every direction, negative coordinates included.
  EXPECT_DOUBLE_EQ(field.value_at(-0.75, 0.5, 1.5), field.value_at(1.25, 0.5, 1.5));
  EXPECT_DOUBLE_EQ(field.value_at(4.25, -2.5, 9.5), field.value_at(0.25, 0.5, 1.5));
  EXPECT_EQ(field.value(-1, 5, 4), field.value(1, 2, 0));
  EXPECT_DOUBLE_EQ(field.value_at(std::nan(""), 0.0, 0.0), 1.0);
  EXPECT_DOUBLE_EQ(field.value_at(0.0, HUGE_VAL, 0.0), 1.0);
  // A coordinate far out stays within the field's values.
  const double far = field.value_at(1e300, -1e300, 3e15);
  EXPECT_GE(far, 1.0);
  EXPECT_LE(far, 24.0);
}

TEST(CloudFluctuations, CopyIsATwinThatEvolvesAlike) {
  TCCloud_fluctuations field, twin;
  ASSERT_EQ(field.generate(8, 6, 10, 1.3, 0.7, 2.0, 17), 1);
  ASSERT_EQ(field.evolve(0.9), 1);
  ASSERT_EQ(twin.copy_from(field), 1);
  EXPECT_EQ(twin.n_x * 100 + twin.n_y * 10 + twin.n_z, 8 * 100 + 60 + 10);
  EXPECT_EQ(twin.sigma, field.sigma);
  EXPECT_EQ(std::memcmp(twin.values(), field.values(), sizeof(float) * 480), 0);
  ASSERT_EQ(field.evolve(0.4), 1);
  ASSERT_EQ(twin.evolve(0.4), 1);
  EXPECT_EQ(std::memcmp(twin.values(), field.values(), sizeof(float) * 480), 0);
  TCCloud_fluctuations empty;
  ASSERT_EQ(twin.copy_from(empty), 1);
  EXPECT_EQ(twin.has_field(), 0);
}

}  // namespace
