#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <vector>

#include "Swell_details_input.h"
#include "TCData_file.h"
#include "TCSwell_spectrum.h"
#include "TCWave_spectrum.h"
#include "scratch_folder.h"
#include "spectrum_test_files.h"
#include "stream_capture.h"

// Large generated seas against the levels their amplitudes were set for.
// Expectations and error bounds are summed here from the spectra's own
// formulas, independently of the fields' code.

namespace {

const double true_two_pi = 6.283185307179586;

// Signed ky (cycles per metre) of row j of an n-row spectrum.
double row_ky(int j, int n, double dk) {
  return (j <= n / 2 ? j : j - n) * dk;
}

}  // namespace

// 512 by 512 nodes 3 m apart, a hard-cut (type 101) sea in a 10 m/s wind.
// k_wind = 0.0104608 cycles per metre is 16 lattice steps, k_cut 0.16602.
//
// The level makes the slope variance from k_wind to 100 cycles per metre
// the Cox-Munk m = 0.003 + 0.00508 U = 0.0538; the lattice carries the part
// from k_wind to k_cut, m ln(k_cut / k_wind) / ln(100 / k_wind) = 0.016227.
//
// The sample: mean square slope of the lattice = sum over the full plane of
// (2 pi k)^2 |F|^2 (Parseval, with no scaling in the transform). Each
// independent element has |F|^2 exponential with mean dk^2 S A, so the
// sample's expectation E and variance V are sums over the independent
// elements (columns 1 to n/2 - 1, and rows 1 to n/2 - 1 of column 0, each
// counted twice for its conjugate). sqrt(V) / E = 1.1%.
TEST(WaveSpectrumStatistics, MeanSquareSlopeOfALargeSeaMatchesTheCoxMunkLevel) {
  Spectrum_settings_guard settings;
  random_generator_kind = 902;
  Scratch_folder folder;
  const int n = 512;
  const int n_kx = n / 2 + 1;
  const double dx = 3.0;
  const double dk = 1.0 / (n * dx);
  const double u = 10.0;
  const double direction = 0.5;
  std::vector<float> buffer((n + 2) * n, 0.0f);
  TCWave_spectrum sea(101, 2024, buffer.data(), n, n, dx, dx, u, direction, 0.0, 0.0);
  sea.set_spectrum_file(folder.file("large.spectrum").c_str());
  sea.initialize_field();
  sea.evolve_heights(13.0);

  const double k_wind = 6.5727 / (u * u * 2.0 * 3.1415926535);
  const double k_cut = 1.0 / (2.0 * dx) - dk;
  const double cox_munk = 0.003 + 0.00508 * u;
  const double level =
      cox_munk / (std::log(100.0 / k_wind) * 8.0 * std::pow(3.1415926535, 3) * 1.3e-05);
  const double share = cox_munk * std::log(k_cut / k_wind) / std::log(100.0 / k_wind);

  double sample = 0.0;
  double power = 0.0;
  double expected = 0.0;
  double variance = 0.0;
  for (int j = 0; j < n; j++) {
    const double ky = row_ky(j, n, dk);
    for (int i = 0; i < n_kx; i++) {
      const double kx = i * dk;
      const double k2 = kx * kx + ky * ky;
      const double slope_weight = true_two_pi * true_two_pi * k2;
      const float* e = &buffer[2 * (i + static_cast<long>(n_kx) * j)];
      const double f2 = static_cast<double>(e[0]) * e[0] + static_cast<double>(e[1]) * e[1];
      const double copies = (i == 0 || i == n_kx - 1) ? 1.0 : 2.0;
      sample += copies * slope_weight * f2;
      power += copies * f2;

      const int independent = (i > 0 && i < n_kx - 1) || (i == 0 && j > 0 && j < n / 2);
      if (!independent || k2 < k_wind * k_wind || k2 > k_cut * k_cut) continue;
      const double theta = std::atan2(ky, kx);
      const double c = std::cos(theta - direction);
      const double mean = dk * dk * level * 2.6e-05 * c * c / (k2 * k2);
      expected += 2.0 * slope_weight * mean;
      variance += 4.0 * slope_weight * slope_weight * mean * mean;
    }
  }
  const double sd = std::sqrt(variance);
  EXPECT_NEAR(sd / expected, 0.011, 0.002);
  // The lattice's sum against the continuous integral: 0.14% apart.
  EXPECT_NEAR(expected, share, 0.005 * share);
  // The sample within four standard deviations, plus that discretisation.
  EXPECT_NEAR(sample, expected, 4.0 * sd);
  EXPECT_NEAR(sample, share, 4.0 * sd + 0.005 * share);

  // The heights carry that power: mean h^2 is the spectrum's total.
  sea.transform_to_lattice();
  double mean_square = 0.0;
  for (long e = 0; e < static_cast<long>(n) * n; e++)
    mean_square += static_cast<double>(buffer[e]) * buffer[e];
  mean_square /= static_cast<double>(n) * n;
  EXPECT_NEAR(mean_square, power, 1e-4 * power);
}

// 256 by 256 nodes 5 m apart; a swell of wavelength 100 m (12.8 lattice
// steps) with widths 0.2 and 0.3 of that, 2.56 and 3.84 steps.
//
// The amplitudes are fixed and only the phases random, so by Parseval the
// mean square height is sum over the full plane of dk^2 S, whatever the
// seed; no randomness enters the rms. What separates it from rms_height^2
// is the lattice's sampling of the Gaussian bump: with widths over 2.5
// steps the Riemann sum of a Gaussian is exact to exp(-2 pi^2 2.56^2), far
// below 1e-6, and k_cut is 40 widths away. Single-precision arithmetic
// over 65536 nodes adds a few 1e-7. Bound: 1e-5 relative.
TEST(SwellStatistics, RmsOfALargeSwellMatchesItsRmsHeight) {
  Spectrum_settings_guard settings;
  verbose = 0;
  random_generator_kind = 902;
  Scratch_folder folder;
  Swell_details_input input;
  input.n_x = 256;
  input.n_y = 256;
  input.dx = 5.0;
  input.dy = 5.0;
  input.generate_file = 1;
  input.swell_height = 1.5;
  input.swell_wavelength = 100.0;
  input.long_spread = 0.2;
  input.trans_spread = 0.3;
  input.direction = 2.5;
  copy_text(input.spectrum_file, folder.file("swell.spectrum").c_str(), 256);
  std::vector<float> buffer(258 * 256, 0.0f);
  const int seeds[2] = {11, 4711};
  for (int k = 0; k < 2; k++) {
    input.random_seed = seeds[k];
    Stream_capture out(std::cout);
    TCSwell_spectrum swell(input, buffer.data(), 0.0);
    swell.initialize_field();
    swell.evolve_heights(8.0 * k);
    const double rms = swell.transform_to_lattice();
    EXPECT_NEAR(rms, 1.5, 1.5e-5) << seeds[k];
    double sum = 0.0;
    for (int e = 0; e < 256 * 256; e++) sum += static_cast<double>(buffer[e]) * buffer[e];
    EXPECT_NEAR(rms, std::sqrt(sum / 65536.0), 1e-12);
  }
}
