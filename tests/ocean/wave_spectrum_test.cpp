#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "TCWave_spectrum.h"
#include "fourt.h"
#include "scratch_folder.h"
#include "spectrum_test_files.h"
#include "stream_capture.h"

// Spectrum files, evolved spectra and heights come from spectrum_reference.py
// beside this file (tests/data/ocean); single components and the wind
// constants are worked out by hand in the comments.

namespace {

const double nothing = 99999999.0;

// The reference script's table of wind seas.
struct Wind_case {
  const char* name;
  int type;
  int seed;
  int n_x;
  int n_y;
  double dx;
  double dy;
  double speed;
  double direction_degrees;
  double glassy_scale;
  double band_low;
  double band_high;
  double time;
};

const Wind_case wind_sea = {"wind_sea", 103,  12345, 16,      8,       3.0, 4.0,
                            5.0,        30.0, 0.0,   nothing, nothing, 7.5};
const Wind_case glassy_sea = {"glassy_sea", 104,  99,  16,      8,       1.0, 1.0,
                              3.0,          75.0, 4.0, nothing, nothing, 3.0};
const Wind_case calm_sea = {"calm_sea", 103, 3,   16,      8,       2.0, 2.0,
                            0.0,        0.0, 0.0, nothing, nothing, 5.0};
const Wind_case hard_cut_sea = {"hard_cut_sea", 101, -5,   16,   8,  1.5, 1.5, 2.5,
                                300.0,          0.0, 0.18, 0.22, 2.0};

// A sea of a case on its own buffer, its spectrum file in folder.
class Case_sea {
 public:
  Case_sea(const Wind_case& c, const Scratch_folder& folder)
      : buffer((c.n_x + 2) * c.n_y, 0.0f),
        sea(c.type, c.seed, buffer.data(), c.n_x, c.n_y, c.dx, c.dy, c.band_low, c.band_high,
            c.speed, c.direction_degrees * test_degrees, 0.0, c.glassy_scale),
        file(folder.file(std::string(c.name) + ".spectrum")) {
    sea.set_spectrum_file(file.c_str());
  }
  std::vector<float> buffer;
  TCWave_spectrum sea;
  std::string file;
};

// The floats of a half-complex spectrum of n_kx by n_ky, all zero but the
// elements set afterwards.
std::vector<float> empty_spectrum(int n_kx, int n_ky) {
  return std::vector<float>(2 * n_kx * n_ky, 0.0f);
}

void expect_close_lists(const std::vector<float>& got, const std::vector<double>& expected,
                        double relative, const char* what) {
  ASSERT_GE(got.size(), expected.size()) << what;
  ASSERT_FALSE(expected.empty()) << what;
  const double tolerance = relative * largest(expected) + 1e-30;
  for (size_t e = 0; e < expected.size(); e++)
    ASSERT_NEAR(got[e], expected[e], tolerance) << what << " element " << e;
}

// The file, the evolved spectrum and the heights of a case against the
// reference.
void check_against_reference(const Wind_case& c) {
  SCOPED_TRACE(c.name);
  Spectrum_settings_guard settings;
  swap_bytes = host_is_little_endian();
  random_generator_kind = 902;
  Scratch_folder folder;
  Case_sea s(c, folder);
  s.sea.initialize_field();

  const std::vector<unsigned char> written = bytes_of(s.file);
  const std::vector<unsigned char> expected =
      bytes_of(ocean_data(std::string(c.name) + ".spectrum"));
  ASSERT_EQ(expected.size(), 8u + 4u * 2u * 9u * 8u);
  EXPECT_EQ(written, expected);

  s.sea.evolve_heights(c.time);
  expect_close_lists(s.buffer, values_of(ocean_data(std::string(c.name) + ".evolved")), 1e-6,
                     "evolved spectrum");
  EXPECT_EQ(s.sea.transform_to_lattice(), 0.0);
  // Single-precision transform of 128 points: a few units in the sixth digit.
  expect_close_lists(s.buffer, values_of(ocean_data(std::string(c.name) + ".heights")), 1e-5,
                     "heights");
}

}  // namespace

// ---------------------------------------------------------------------------
// Against the reference script

TEST(WaveSpectrumReference, WindSeaFileEvolutionAndHeights) {
  check_against_reference(wind_sea);
}

TEST(WaveSpectrumReference, GlassySeaFileEvolutionAndHeights) {
  check_against_reference(glassy_sea);
}

TEST(WaveSpectrumReference, ZeroWindSeaFileEvolutionAndHeights) {
  check_against_reference(calm_sea);
  // No wind: every height is zero.
  Scratch_folder folder;
  Case_sea s(calm_sea, folder);
  s.sea.initialize_field();
  s.sea.evolve_heights(calm_sea.time);
  s.sea.transform_to_lattice();
  for (int e = 0; e < 16 * 8; e++) ASSERT_EQ(s.buffer[e], 0.0f) << e;
}

TEST(WaveSpectrumReference, HardCutSeaWithSharedBandFileEvolutionAndHeights) {
  check_against_reference(hard_cut_sea);
}

TEST(WaveSpectrumReference, AccelerationMatchesTheReference) {
  Spectrum_settings_guard settings;
  swap_bytes = host_is_little_endian();
  random_generator_kind = 902;
  Scratch_folder folder;
  Case_sea s(wind_sea, folder);
  s.sea.initialize_field();
  const std::vector<float> before = s.buffer;
  std::vector<float> acceleration(18 * 8, 0.0f);
  s.sea.evolve_acceleration_into(acceleration.data(), wind_sea.time, 2.0, 3.0, 0.5);
  expect_close_lists(acceleration, values_of(ocean_data("wind_sea.acceleration")), 1e-6,
                     "acceleration");
  // Only the array given is written: the lattice's buffer is untouched.
  EXPECT_EQ(s.buffer, before);
}

TEST(WaveSpectrumReference, PotentialMatchesTheReference) {
  Spectrum_settings_guard settings;
  swap_bytes = host_is_little_endian();
  random_generator_kind = 902;
  Scratch_folder folder;
  Case_sea s(wind_sea, folder);
  s.sea.initialize_field();
  Stream_capture out(std::cout);
  s.sea.evolve_potential(wind_sea.time);
  EXPECT_EQ(out.text(), "upgrading potential field \n");
  expect_close_lists(s.buffer, values_of(ocean_data("wind_sea.potential")), 1e-5, "potential");
}

// ---------------------------------------------------------------------------
// Edge cases

TEST(WaveSpectrumEdge, ZeroWindGivesAFlatSeaWithNothingElseChanged) {
  std::vector<float> buffer(18 * 8, 0.0f);
  std::vector<float> windy_buffer(18 * 8, 0.0f);
  TCWave_spectrum calm(103, 3, buffer.data(), 16, 8, 2.0, 2.0, 0.0, 0.0, 0.0, 0.0);
  TCWave_spectrum windy(103, 3, windy_buffer.data(), 16, 8, 2.0, 2.0, 5.0, 0.0, 0.0, 0.0);
  EXPECT_EQ(calm.k_wind, 99999999.0);
  EXPECT_EQ(calm.amplitude, 0.0);
  EXPECT_EQ(calm.amplitude_total, 0.0);
  // With no level every slope variance falls back to 0.003.
  EXPECT_DOUBLE_EQ(calm.slope_resolved, std::sqrt(0.003));
  EXPECT_DOUBLE_EQ(calm.slope_unresolved, std::sqrt(0.0015));
  EXPECT_EQ(calm.slope_per_log_k, 0.0);
  // The lattice's own numbers are those of a windy sea.
  EXPECT_EQ(calm.k_lattice, windy.k_lattice);
  EXPECT_EQ(calm.k_cut, windy.k_cut);
  EXPECT_EQ(calm.dk_area, windy.dk_area);
  EXPECT_EQ(calm.k_small, 100.0);
  EXPECT_EQ(calm.generate, 3);

  Scratch_folder folder;
  calm.set_spectrum_file(folder.file("calm.spectrum").c_str());
  calm.initialize_field();
  calm.evolve_heights(4.0);
  calm.transform_to_lattice();
  for (int e = 0; e < 16 * 8; e++) ASSERT_EQ(buffer[e], 0.0f) << e;
  // The file still holds the white amplitudes, ready for a wind.
  windy.set_spectrum_file(folder.file("calm.spectrum").c_str());
  windy.evolve_heights(4.0);
  windy.transform_to_lattice();
  double sum = 0.0;
  for (int e = 0; e < 16 * 8; e++) sum += windy_buffer[e] * windy_buffer[e];
  EXPECT_GT(sum, 0.0);
}

TEST(WaveSpectrumEdge, ImaginaryCornersOfRowZeroAndRowHalfAreZeroSoTheTransformIsReal) {
  Spectrum_settings_guard settings;
  random_generator_kind = 902;
  Scratch_folder folder;
  Case_sea s(wind_sea, folder);
  const int n_kx = 9;
  s.sea.initialize_field();
  // (0, 0), (0, 4), (8, 0), (8, 4): their imaginary floats.
  const int corners[4] = {2 * 0 + 1, 2 * (0 + n_kx * 4) + 1, 2 * 8 + 1, 2 * (8 + n_kx * 4) + 1};
  for (int c = 0; c < 4; c++) EXPECT_EQ(s.buffer[corners[c]], 0.0f) << corners[c];
  // Columns 0 and 8: row 8 - j is the conjugate of row j.
  for (int j = 1; j < 4; j++) {
    for (int i = 0; i <= 8; i += 8) {
      EXPECT_EQ(s.buffer[2 * (i + n_kx * (8 - j))], s.buffer[2 * (i + n_kx * j)]);
      EXPECT_EQ(s.buffer[2 * (i + n_kx * (8 - j)) + 1], -s.buffer[2 * (i + n_kx * j) + 1]);
    }
  }

  for (double t = 0.0; t < 30.0; t += 7.3) {
    s.sea.evolve_heights(t);
    for (int c = 0; c < 4; c++) ASSERT_EQ(s.buffer[corners[c]], 0.0f) << t;
    std::vector<float> spectrum(s.buffer.begin(), s.buffer.begin() + 2 * n_kx * 8);
    s.sea.transform_to_lattice();
    // A real lattice transformed forward gives back the same spectrum, times
    // the 128 nodes: nothing of it was lost to an imaginary part.
    fourt2(s.buffer.data(), 16, 8, 1);
    double scale = 0.0;
    for (size_t e = 0; e < spectrum.size(); e++) scale = std::fmax(scale, std::fabs(spectrum[e]));
    for (size_t e = 0; e < spectrum.size(); e++)
      ASSERT_NEAR(s.buffer[e] / 128.0, spectrum[e], 1e-5 * scale) << t << " element " << e;
  }
}

TEST(WaveSpectrumEdge, ElementZeroZeroIsZeroAfterEveryEvolveSoTheMeanIsZero) {
  Scratch_folder folder;
  const int types[3] = {101, 103, 104};
  for (int k = 0; k < 3; k++) {
    std::vector<float> buffer(18 * 8, 0.0f);
    TCWave_spectrum sea(types[k], 77, buffer.data(), 16, 8, 1.0, 1.0, 3.0, 0.4, 0.0, 3.0);
    // A file of ones has a mean of its own that the evolution must drop.
    const std::string file = folder.file("ones.spectrum");
    write_big_endian_spectrum(file, 9, 8, std::vector<float>(2 * 9 * 8, 1.0f));
    sea.set_spectrum_file(file.c_str());
    for (double t = 0.0; t < 20.0; t += 6.5) {
      sea.evolve_heights(t);
      ASSERT_EQ(buffer[0], 0.0f) << types[k] << " " << t;
      ASSERT_EQ(buffer[1], 0.0f) << types[k] << " " << t;
      sea.transform_to_lattice();
      double sum = 0.0;
      double magnitude = 0.0;
      for (int e = 0; e < 128; e++) {
        sum += buffer[e];
        magnitude += std::fabs(buffer[e]);
      }
      EXPECT_GT(magnitude, 0.0);
      EXPECT_NEAR(sum / 128.0, 0.0, 1e-6 * magnitude / 128.0) << types[k] << " " << t;
    }
  }
}

TEST(WaveSpectrumEdgeDeath, NoSpectrumFileWithoutGenerateStopsTheFirstEvolve) {
  Scratch_folder folder;
  const std::string file = folder.file("nothing_here.spectrum");
  // A seed of 0, and one of 65536 whose low half is 0: neither generates.
  const int seeds[2] = {0, 65536};
  for (int k = 0; k < 2; k++) {
    EXPECT_EXIT(
        {
          std::cout.rdbuf(std::cerr.rdbuf());
          std::vector<float> buffer(18 * 8, 0.0f);
          TCWave_spectrum sea(103, seeds[k], buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
          sea.set_spectrum_file(file.c_str());
          sea.initialize_field();
          sea.evolve_heights(1.0);
        },
        ::testing::ExitedWithCode(1), "^unable to open " + file + "\n$");
  }
}

TEST(WaveSpectrumEdge, SameSeedAndSpectrumFileGiveTheSameWavesForAnyWind) {
  Scratch_folder folder;
  const std::string file = folder.file("shared.spectrum");
  std::vector<float> gentle_buffer(18 * 8, 0.0f);
  std::vector<float> strong_buffer(18 * 8, 0.0f);
  const double direction = 20.0 * test_degrees;
  TCWave_spectrum gentle(103, 4242, gentle_buffer.data(), 16, 8, 1.0, 1.0, 3.0, direction, 0.0,
                         0.0);
  TCWave_spectrum strong(103, 4242, strong_buffer.data(), 16, 8, 1.0, 1.0, 9.0, direction, 0.0,
                         0.0);
  gentle.set_spectrum_file(file.c_str());
  strong.set_spectrum_file(folder.file("again.spectrum").c_str());
  gentle.initialize_field();
  strong.initialize_field();
  // One seed, one file.
  EXPECT_EQ(bytes_of(file), bytes_of(folder.file("again.spectrum")));

  strong.set_spectrum_file(file.c_str());
  gentle.evolve_heights(6.0);
  strong.evolve_heights(6.0);
  // Element by element the two differ by a real positive factor: the square
  // root of the ratio of their spectral levels. Phases are the same.
  int compared = 0;
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 9; i++) {
      const double kx = i / 16.0;
      const double ky = j <= 4 ? j / 8.0 : -(8 - j) / 8.0;
      const double gentle_level = gentle.spectrum_value(kx, ky) * gentle.amplitude;
      const double strong_level = strong.spectrum_value(kx, ky) * strong.amplitude;
      const int e = 2 * (i + 9 * j);
      if (gentle_level <= 0.0) continue;
      const double ratio = std::sqrt(strong_level / gentle_level);
      EXPECT_NEAR(strong_buffer[e], gentle_buffer[e] * ratio, 1e-6 * std::fabs(strong_buffer[e]));
      EXPECT_NEAR(strong_buffer[e + 1], gentle_buffer[e + 1] * ratio,
                  1e-6 * std::fabs(strong_buffer[e + 1]));
      compared++;
    }
  }
  EXPECT_GT(compared, 20);
  // A new field with the same seed gives the same waves again.
  std::vector<float> again_buffer(18 * 8, 0.0f);
  TCWave_spectrum again(103, 4242, again_buffer.data(), 16, 8, 1.0, 1.0, 3.0, direction, 0.0, 0.0);
  again.set_spectrum_file(file.c_str());
  again.evolve_heights(6.0);
  EXPECT_EQ(again_buffer, gentle_buffer);
}

TEST(WaveSpectrumEdge, GlassySeaHasNoComponentAboveOneOverItsScale) {
  Scratch_folder folder;
  std::vector<float> buffer(18 * 8, 0.0f);
  // k_lattice = 0.5 - 1/8 = 0.375 cycles per metre; 1/S = 0.25 is below it.
  TCWave_spectrum sea(104, 99, buffer.data(), 16, 8, 1.0, 1.0, 3.0, 75.0 * test_degrees, 0.0, 4.0);
  EXPECT_EQ(sea.k_cut, 0.25);
  sea.set_spectrum_file(folder.file("glassy.spectrum").c_str());
  sea.initialize_field();
  int below = 0;
  for (double t = 0.0; t < 10.0; t += 3.3) {
    sea.evolve_heights(t);
    for (int j = 0; j < 8; j++) {
      for (int i = 0; i < 9; i++) {
        const double kx = i / 16.0;
        const double ky = j <= 4 ? j / 8.0 : -(8 - j) / 8.0;
        const int e = 2 * (i + 9 * j);
        if (kx * kx + ky * ky > 0.25 * 0.25) {
          ASSERT_EQ(buffer[e], 0.0f) << i << " " << j;
          ASSERT_EQ(buffer[e + 1], 0.0f) << i << " " << j;
        } else if (buffer[e] != 0.0f || buffer[e + 1] != 0.0f) {
          below++;
        }
      }
    }
  }
  EXPECT_GT(below, 20);
}

// ---------------------------------------------------------------------------
// Construction and the wind constants

TEST(WaveSpectrum, LatticeLimitsComeFromSizeAndSpacing) {
  std::vector<float> buffer(18 * 8, 0.0f);
  TCWave_spectrum sea(103, 1, buffer.data(), 16, 8, 3.0, 4.0, 5.0, 0.5, 2.0, 0.0);
  EXPECT_EQ(sea.kind, 0);
  EXPECT_EQ(sea.n_kx, 9);
  EXPECT_EQ(sea.n_ky, 8);
  EXPECT_DOUBLE_EQ(sea.dk_x, 1.0 / 48.0);
  EXPECT_DOUBLE_EQ(sea.dk_y, 1.0 / 32.0);
  EXPECT_DOUBLE_EQ(sea.dk_area, 1.0 / 1536.0);
  // 1/6 - 1/48 and 1/8 - 1/32: the Nyquist lines are left out.
  EXPECT_DOUBLE_EQ(sea.k_max_x, 0.14583333333333334);
  EXPECT_DOUBLE_EQ(sea.k_max_y, 0.09375);
  EXPECT_DOUBLE_EQ(sea.k_lattice, 0.09375);
  EXPECT_DOUBLE_EQ(sea.k_cut, 0.09375);
  EXPECT_EQ(sea.band_low, 99999999.0);
  EXPECT_EQ(sea.band_high, 99999999.0);
  EXPECT_EQ(sea.reference_time, 2.0);
  EXPECT_EQ(sea.wind_direction, 0.5);
  EXPECT_DOUBLE_EQ(sea.cos_wind, std::cos(0.5));
  EXPECT_DOUBLE_EQ(sea.sin_wind, std::sin(0.5));
  EXPECT_STREQ(sea.spectrum_file, "spectra.dat");
  int n_x = 0, n_y = 0;
  double dx = 0.0, dy = 0.0;
  sea.get_size(n_x, n_y, dx, dy);
  EXPECT_EQ(n_x, 16);
  EXPECT_EQ(n_y, 8);
  EXPECT_EQ(dx, 3.0);
  EXPECT_EQ(dy, 4.0);

  TCWave_spectrum banded(101, 1, buffer.data(), 16, 8, 3.0, 4.0, 0.01, 0.02, 5.0, 0.5, 0.0, 0.0);
  EXPECT_EQ(banded.band_low, 0.01);
  EXPECT_EQ(banded.band_high, 0.02);
  EXPECT_EQ(banded.spectrum_type, 101);
}

TEST(WaveSpectrum, GlassyCutOffOnlyForType104BelowTheLatticeLimit) {
  std::vector<float> buffer(18 * 8, 0.0f);
  // k_lattice 0.375 cycles per metre on this lattice.
  TCWave_spectrum short_scale(104, 1, buffer.data(), 16, 8, 1.0, 1.0, 3.0, 0.0, 0.0, 2.0);
  EXPECT_EQ(short_scale.k_cut, 0.375);  // 1/2 is above the lattice's limit
  TCWave_spectrum long_scale(104, 1, buffer.data(), 16, 8, 1.0, 1.0, 3.0, 0.0, 0.0, 8.0);
  EXPECT_EQ(long_scale.k_cut, 0.125);
  TCWave_spectrum no_scale(104, 1, buffer.data(), 16, 8, 1.0, 1.0, 3.0, 0.0, 0.0, 0.0);
  EXPECT_EQ(no_scale.k_cut, 0.375);
  TCWave_spectrum not_glassy(103, 1, buffer.data(), 16, 8, 1.0, 1.0, 3.0, 0.0, 0.0, 8.0);
  EXPECT_EQ(not_glassy.k_cut, 0.375);
}

TEST(WaveSpectrum, WindConstantsFollowTheCoxMunkSlope) {
  std::vector<float> buffer(18 * 8, 0.0f);
  TCWave_spectrum sea(103, 1, buffer.data(), 16, 8, 1.0, 1.0, 10.0, 0.0, 0.0, 0.0);
  // 6.5727 / (100 * 2 * 3.1415926535).
  EXPECT_DOUBLE_EQ(sea.k_wind, 0.010460776944899997);
  EXPECT_EQ(sea.k_small, 100.0);
  // Cox-Munk m = 10 * 0.00508 + 0.003 = 0.0538 over ln(100 / k_wind) = 9.1654
  // times 0.0032246528: 1.82034.
  EXPECT_NEAR(sea.amplitude, 1.8203419510360634, 1e-12);
  EXPECT_EQ(sea.amplitude_total, sea.amplitude);
  const double c = sea.amplitude * 0.0032246527744746794;
  EXPECT_NEAR(sea.slope_per_log_k, c, 1e-15);
  // Resolved and unresolved parts add up to the whole Cox-Munk variance.
  EXPECT_NEAR(
      sea.slope_resolved * sea.slope_resolved + 2.0 * sea.slope_unresolved * sea.slope_unresolved,
      0.0538, 1e-12);
  EXPECT_NEAR(sea.slope_resolved * sea.slope_resolved, std::log(0.375 / sea.k_wind) * c, 1e-15);
  EXPECT_EQ(sea.slope_reference, sea.slope_unresolved);
  EXPECT_EQ(sea.slope_current, sea.slope_unresolved);

  // Stronger wind, refreshed on demand.
  sea.set_wind(20.0, 1.0);
  sea.update_wind_constants();
  EXPECT_DOUBLE_EQ(sea.k_wind, 0.010460776944899997 / 4.0);
  EXPECT_NEAR(
      sea.slope_resolved * sea.slope_resolved + 2.0 * sea.slope_unresolved * sea.slope_unresolved,
      20.0 * 0.00508 + 0.003, 1e-12);
}

TEST(WaveSpectrum, UnresolvedSlopeFallsBackWhenTheLatticeResolvesPastTheSlopeLimit) {
  std::vector<float> buffer(18 * 8, 0.0f);
  // dx = 1 mm: k_lattice = 500 - 125 = 375 cycles per metre, past 100.
  TCWave_spectrum sea(103, 1, buffer.data(), 16, 8, 0.001, 0.001, 10.0, 0.0, 0.0, 0.0);
  EXPECT_DOUBLE_EQ(sea.slope_unresolved, std::sqrt(0.003 * 0.5));
  EXPECT_GT(sea.slope_resolved, std::sqrt(0.0538));
}

TEST(WaveSpectrum, FootprintMovesTheResolvedBoundary) {
  Spectrum_settings_guard settings;
  verbose = 1;
  std::vector<float> buffer(18 * 8, 0.0f);
  TCWave_spectrum sea(103, 1, buffer.data(), 16, 8, 1.0, 1.0, 10.0, 0.0, 0.0, 0.0);
  const double reference = sea.slope_reference;
  {
    Stream_capture out(std::cout);
    sea.set_footprint(1.0);
    EXPECT_EQ(out.text(), "");
  }
  // One cell: the lattice's own boundary.
  EXPECT_DOUBLE_EQ(sea.slope_unresolved, reference);
  // Eight cells: ln 8 of slope variance per unit more, split over two axes.
  sea.set_footprint(8.0);
  const double eight =
      std::sqrt((2.0 * reference * reference + std::log(8.0) * sea.slope_per_log_k) * 0.5);
  EXPECT_DOUBLE_EQ(sea.slope_unresolved, eight);
  EXPECT_EQ(sea.slope_current, sea.slope_unresolved);
  EXPECT_EQ(sea.slope_reference, reference);

  // Nothing resolved: half the whole Cox-Munk variance per axis.
  {
    Stream_capture out(std::cout);
    sea.set_footprint(-1.0);
    EXPECT_EQ(out.text(), "generating mean radiance table \n");
  }
  EXPECT_NEAR(sea.slope_unresolved, std::sqrt(0.0538 * 0.5), 1e-12);
  verbose = 0;
  {
    Stream_capture out(std::cout);
    sea.set_footprint(0.0);
    EXPECT_EQ(out.text(), "");
  }
  EXPECT_NEAR(sea.slope_current, std::sqrt(0.0538 * 0.5), 1e-12);

  // No wind: the 0.003 floor.
  std::vector<float> calm_buffer(18 * 8, 0.0f);
  TCWave_spectrum calm(103, 1, calm_buffer.data(), 16, 8, 1.0, 1.0, 0.0, 0.0, 0.0, 0.0);
  calm.set_footprint(-1.0);
  EXPECT_DOUBLE_EQ(calm.slope_unresolved, std::sqrt(0.0015));
}

TEST(WaveSpectrum, ReflectionFootprintSetsOnlyTheCurrentSlope) {
  Spectrum_settings_guard settings;
  verbose = 1;
  std::vector<float> buffer(18 * 8, 0.0f);
  TCWave_spectrum sea(103, 1, buffer.data(), 16, 8, 1.0, 1.0, 10.0, 0.0, 0.0, 0.0);
  const double unresolved = sea.slope_unresolved;
  sea.set_reflection_footprint(4.0);
  EXPECT_EQ(sea.slope_unresolved, unresolved);
  EXPECT_DOUBLE_EQ(
      sea.slope_current,
      std::sqrt((2.0 * unresolved * unresolved + std::log(4.0) * sea.slope_per_log_k) * 0.5));
  Stream_capture out(std::cout);
  sea.set_reflection_footprint(-2.0);
  EXPECT_EQ(out.text(), "generating mean radiance table \n");
  EXPECT_NEAR(sea.slope_current, std::sqrt(0.0538 * 0.5), 1e-12);
  EXPECT_EQ(sea.slope_unresolved, unresolved);
}

// ---------------------------------------------------------------------------
// The spectrum's value

TEST(WaveSpectrum, DirectionFollowsTheArctangentRule) {
  EXPECT_EQ(TCWave_spectrum::wave_direction(0.0, 1.0), 1.57079632675);
  EXPECT_EQ(TCWave_spectrum::wave_direction(0.0, 0.0), 1.57079632675);
  EXPECT_EQ(TCWave_spectrum::wave_direction(0.0, -2.0), 4.71238898025);
  EXPECT_DOUBLE_EQ(TCWave_spectrum::wave_direction(1.0, 1.0), std::atan(1.0));
  EXPECT_DOUBLE_EQ(TCWave_spectrum::wave_direction(-1.0, -1.0), std::atan(1.0) + 3.1415926535);
  EXPECT_DOUBLE_EQ(TCWave_spectrum::wave_direction(-1.0, 1.0), -std::atan(1.0) + 3.1415926535);
  EXPECT_DOUBLE_EQ(TCWave_spectrum::wave_direction(1.0, -1.0), -std::atan(1.0));
  EXPECT_EQ(TCWave_spectrum::wave_direction(-2.0, 0.0), 3.1415926535);
}

TEST(WaveSpectrum, HardCutValueBetweenWindAndLatticeLimits) {
  std::vector<float> buffer(18 * 8, 0.0f);
  // dx = 1: k_cut 0.375. Wind 10 m/s: k_wind 0.01046.
  TCWave_spectrum sea(101, 1, buffer.data(), 16, 8, 1.0, 1.0, 10.0, 0.0, 0.0, 0.0);
  // Along the wind at k = 0.1: 2.6e-05 / 0.01^2 = 0.26.
  EXPECT_NEAR(sea.spectrum_value(0.1, 0.0), 0.26, 1e-15);
  // Against the wind the same: cos^2 of pi.
  EXPECT_NEAR(sea.spectrum_value(-0.1, 0.0), 0.26, 1e-15);
  // Across it: cos of 1.57079632675 is 4.5e-11.
  EXPECT_NEAR(sea.spectrum_value(0.0, 0.1), 0.0, 1e-20);
  // 45 degrees: half. k2 = 0.02, k2^2 = 4e-4.
  EXPECT_NEAR(sea.spectrum_value(0.1, 0.1), 2.6e-05 * 0.5 / 4e-4, 1e-12);
  // Below k_wind and above k_cut: nothing.
  EXPECT_EQ(sea.spectrum_value(0.01, 0.0), 0.0);
  EXPECT_EQ(sea.spectrum_value(0.0, 0.0), 0.0);
  EXPECT_EQ(sea.spectrum_value(0.3, 0.3), 0.0);
  EXPECT_GT(sea.spectrum_value(0.375, 0.0), 0.0);
}

TEST(WaveSpectrum, SmoothCutValueFadesBelowTheWindCutOff) {
  std::vector<float> buffer(18 * 8, 0.0f);
  TCWave_spectrum sea(103, 1, buffer.data(), 16, 8, 1.0, 1.0, 10.0, 0.0, 0.0, 0.0);
  const double kw = 0.010460776944899997;
  // At k = k_wind: the hard value times exp(-1).
  EXPECT_NEAR(sea.spectrum_value(kw, 0.0), 2.6e-05 / (kw * kw * kw * kw) * std::exp(-1.0),
              1e-9 * 2.6e-05 / (kw * kw * kw * kw));
  // At k = 0.1: times exp(-(0.01046 / 0.1)^2).
  EXPECT_NEAR(sea.spectrum_value(0.1, 0.0), 0.26 * std::exp(-kw * kw / 0.01), 1e-14);
  EXPECT_EQ(sea.spectrum_value(0.0, 0.0), 0.0);
  EXPECT_EQ(sea.spectrum_value(0.4, 0.0), 0.0);
  // Wind from 90 degrees of the engine: along y now.
  sea.set_wind(10.0, 90.0 * test_degrees);
  EXPECT_NEAR(sea.spectrum_value(0.0, -0.1), 0.26 * std::exp(-kw * kw / 0.01), 1e-12);
  EXPECT_NEAR(sea.spectrum_value(0.1, 0.0), 0.0, 1e-20);
}

TEST(WaveSpectrum, SharedBandHalvesThePowerStrictlyInside) {
  std::vector<float> buffer(18 * 8, 0.0f);
  TCWave_spectrum sea(101, 1, buffer.data(), 16, 8, 1.0, 1.0, 0.05, 0.2, 10.0, 0.0, 0.0, 0.0);
  EXPECT_NEAR(sea.spectrum_value(0.1, 0.0), 0.13, 1e-15);
  EXPECT_NEAR(sea.spectrum_value(0.3, 0.0), 2.6e-05 / (0.09 * 0.09), 1e-15);
  EXPECT_NEAR(sea.spectrum_value(0.04, 0.0), 2.6e-05 / (0.0016 * 0.0016), 1e-12);
  // On the edges themselves the power stays whole.
  EXPECT_NEAR(sea.spectrum_value(0.2, 0.0), 2.6e-05 / (0.04 * 0.04), 1e-14);
}

TEST(WaveSpectrum, FlatSeaHasNoSpectrumAndNoNoise) {
  Scratch_folder folder;
  std::vector<float> buffer(18 * 8, 5.0f);
  TCWave_spectrum flat(0, 11, buffer.data(), 16, 8, 1.0, 1.0, 10.0, 0.0, 0.0, 0.0);
  EXPECT_EQ(flat.spectrum_value(0.1, 0.0), 0.0);
  EXPECT_EQ(flat.k_wind, 99999999.0);
  EXPECT_EQ(flat.amplitude, 0.0);
  flat.set_spectrum_file(folder.file("flat.spectrum").c_str());
  flat.initialize_field();
  EXPECT_EQ(bytes_of(folder.file("flat.spectrum")).size(), 8u + 4u * 2u * 9u * 8u);
  for (int e = 0; e < 2 * 9 * 8; e++) ASSERT_EQ(buffer[e], 0.0f);
  // Read back, the file holds zeros (of either sign) and evolves to nothing.
  std::fill(buffer.begin(), buffer.end(), 5.0f);
  flat.evolve_heights(3.0);
  flat.transform_to_lattice();
  for (int e = 0; e < 16 * 8; e++) ASSERT_EQ(buffer[e], 0.0f);
}

// ---------------------------------------------------------------------------
// Phases, signs and the transform, on single components of a flat sea, which
// applies no amplitudes.

namespace {

// A flat sea of 16 by 8 nodes, dx 2 m, dy 3 m, over a hand-made file.
struct Single_component {
  Single_component(const Scratch_folder& folder, double wind_direction,
                   const std::vector<float>& spectrum)
      : buffer(18 * 8, 0.0f),
        sea(0, 0, buffer.data(), 16, 8, 2.0, 3.0, 5.0, wind_direction, 0.0, 0.0) {
    const std::string file = folder.file("single.spectrum");
    write_big_endian_spectrum(file, 9, 8, spectrum);
    sea.set_spectrum_file(file.c_str());
  }
  std::vector<float> buffer;
  TCWave_spectrum sea;
};

}  // namespace

TEST(WaveSpectrumPhases, InverseTransformHasAPositiveExponentAndNoScaling) {
  Spectrum_settings_guard settings;
  swap_bytes = host_is_little_endian();
  Scratch_folder folder;
  std::vector<float> spectrum = empty_spectrum(9, 8);
  spectrum[2 * 1 + 1] = 1.0f;        // (1, 0) = i
  spectrum[2 * (0 + 9 * 1)] = 0.5f;  // (0, 1) = 0.5, its conjugate at row 7
  spectrum[2 * (0 + 9 * 7)] = 0.5f;
  Single_component s(folder, 0.0, spectrum);
  s.sea.evolve_heights(0.0);
  s.sea.transform_to_lattice();
  // i e^{+i theta} + conjugate = -2 sin(theta), theta = 2 pi i / 16; the
  // pair in column 0 gives 2 * 0.5 cos(2 pi j / 8).
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 16; i++) {
      const double expected =
          -2.0 * std::sin(2.0 * M_PI * i / 16.0) + std::cos(2.0 * M_PI * j / 8.0);
      ASSERT_NEAR(s.buffer[i + 16 * j], expected, 2e-6) << i << " " << j;
    }
  }
}

TEST(WaveSpectrumPhases, WavesRunIntoTheWindsHalfPlane) {
  Spectrum_settings_guard settings;
  swap_bytes = host_is_little_endian();
  Scratch_folder folder;
  // Column 2: kx = 2 / 32 cycles per metre, K = 0.392699 rad/m,
  // w = 3.132 sqrt(K) = 1.962683 rad/s.
  const double big_k = 2.0 * 6.283185307 / 32.0;
  const double w = 3.132 * std::sqrt(big_k);
  const double t = 1.3;
  std::vector<float> spectrum = empty_spectrum(9, 8);
  spectrum[2 * 2] = 1.0f;
  {
    Single_component s(folder, 0.0, spectrum);
    s.sea.evolve_heights(t);
    EXPECT_NEAR(s.buffer[4], std::cos(w * t), 1e-7);
    EXPECT_NEAR(s.buffer[5], -std::sin(w * t), 1e-7);
    s.sea.transform_to_lattice();
    // 2 cos(K x - w t): the crest moves towards +x.
    for (int i = 0; i < 16; i++)
      ASSERT_NEAR(s.buffer[i], 2.0 * std::cos(big_k * 2.0 * i - w * t), 2e-6) << i;
  }
  {
    // Wind towards -x: the same component runs the other way.
    Single_component s(folder, 3.1415926535, spectrum);
    s.sea.evolve_heights(t);
    EXPECT_NEAR(s.buffer[4], std::cos(w * t), 1e-7);
    EXPECT_NEAR(s.buffer[5], std::sin(w * t), 1e-7);
    s.sea.transform_to_lattice();
    for (int i = 0; i < 16; i++)
      ASSERT_NEAR(s.buffer[i], 2.0 * std::cos(big_k * 2.0 * i + w * t), 2e-6) << i;
  }
}

TEST(WaveSpectrumPhases, RowsOfNegativeKyTurnTheOtherWay) {
  Spectrum_settings_guard settings;
  swap_bytes = host_is_little_endian();
  Scratch_folder folder;
  // Column 0, rows 1 and 7: ky = +-1/24 cycles per metre, K = 0.261799 rad/m.
  const double big_k = 6.283185307 / 24.0;
  const double w = 3.132 * std::sqrt(big_k);
  const double t = 2.1;
  std::vector<float> spectrum = empty_spectrum(9, 8);
  spectrum[2 * (0 + 9 * 1)] = 1.0f;
  spectrum[2 * (0 + 9 * 7)] = 1.0f;
  // Wind towards +y.
  Single_component s(folder, 90.0 * test_degrees, spectrum);
  s.sea.evolve_heights(t);
  EXPECT_NEAR(s.buffer[2 * 9], std::cos(w * t), 1e-7);
  EXPECT_NEAR(s.buffer[2 * 9 + 1], -std::sin(w * t), 1e-7);
  EXPECT_NEAR(s.buffer[2 * 63], std::cos(w * t), 1e-7);
  EXPECT_NEAR(s.buffer[2 * 63 + 1], std::sin(w * t), 1e-7);
  s.sea.transform_to_lattice();
  for (int j = 0; j < 8; j++)
    ASSERT_NEAR(s.buffer[16 * j], 2.0 * std::cos(big_k * 3.0 * j - w * t), 2e-6) << j;
}

TEST(WaveSpectrumPhases, PotentialLeadsTheHeightByAQuarterPeriod) {
  Spectrum_settings_guard settings;
  swap_bytes = host_is_little_endian();
  Scratch_folder folder;
  const double big_k = 2.0 * 6.283185307 / 32.0;
  const double w = 3.132 * std::sqrt(big_k);
  const double t = 0.7;
  std::vector<float> spectrum = empty_spectrum(9, 8);
  spectrum[2 * 2] = 1.0f;
  Single_component s(folder, 0.0, spectrum);
  Stream_capture out(std::cout);
  s.sea.evolve_potential(t);
  EXPECT_EQ(out.text(), "upgrading potential field \n");
  // (sin(wt) / w, cos(wt) / w) in column 2, transformed: -2 sin(K x - w t) / w.
  for (int i = 0; i < 16; i++)
    ASSERT_NEAR(s.buffer[i], -2.0 * std::sin(big_k * 2.0 * i - w * t) / w, 2e-6) << i;
  // Column 0 of row 0 has w = 0 and is set to nothing.
  std::vector<float> mean_only = empty_spectrum(9, 8);
  mean_only[0] = 3.0f;
  Single_component m(folder, 0.0, mean_only);
  m.sea.evolve_potential(t);
  for (int i = 0; i < 128; i++) ASSERT_EQ(m.buffer[i], 0.0f);
}

TEST(WaveSpectrumPhases, PotentialOfAWindSeaIsTheHeightTurnedAndScaledByGOverW) {
  Spectrum_settings_guard settings;
  random_generator_kind = 902;
  Scratch_folder folder;
  Case_sea heights(wind_sea, folder);
  heights.sea.initialize_field();
  heights.sea.evolve_heights(3.0);
  Case_sea potential(wind_sea, folder);
  {
    Stream_capture out(std::cout);
    potential.sea.evolve_potential(3.0);
  }
  fourt2(potential.buffer.data(), 16, 8, 1);
  // Per element P = -9.81 i s H / w.
  const double cos_wind = std::cos(30.0 * test_degrees);
  const double sin_wind = std::sin(30.0 * test_degrees);
  double scale = 0.0;
  for (int e = 0; e < 2 * 9 * 8; e++)
    scale = std::fmax(scale, std::fabs(potential.buffer[e] / 128.0));
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 9; i++) {
      const double kx = 6.283185307 * i / 48.0;
      const double ky = 6.283185307 * (j <= 4 ? j : j - 8) / 32.0;
      const double w = 3.132 * std::pow(kx * kx + ky * ky, 0.25);
      const double s = kx * cos_wind + ky * sin_wind >= 0.0 ? 1.0 : -1.0;
      const int e = 2 * (i + 9 * j);
      const double real = w > 0.0 ? 9.81 * s * heights.buffer[e + 1] / w : 0.0;
      const double imaginary = w > 0.0 ? -9.81 * s * heights.buffer[e] / w : 0.0;
      // Columns 0 and 8 of rows 5 to 7 come back as the conjugates made by
      // the Hermitian step, which the relation keeps.
      EXPECT_NEAR(potential.buffer[e] / 128.0, real, 2e-5 * scale) << i << " " << j;
      EXPECT_NEAR(potential.buffer[e + 1] / 128.0, imaginary, 2e-5 * scale) << i << " " << j;
    }
  }
}

TEST(WaveSpectrumPhases, AccelerationIsMinusTwoPiGKTimesHeightWithBoxFilters) {
  Spectrum_settings_guard settings;
  random_generator_kind = 902;
  Scratch_folder folder;
  Case_sea s(wind_sea, folder);
  s.sea.initialize_field();
  s.sea.evolve_heights(4.0);
  const double sx = 5.0, sy = 2.5, st = 0.8;
  std::vector<float> filtered(18 * 8, 0.0f);
  std::vector<float> plain(18 * 8, 0.0f);
  std::vector<float> negative_time(18 * 8, 0.0f);
  s.sea.evolve_acceleration_into(filtered.data(), 4.0, sx, sy, st);
  s.sea.evolve_acceleration_into(plain.data(), 4.0, 0.0, 0.0, 0.0);
  s.sea.evolve_acceleration_into(negative_time.data(), 4.0, 0.0, 0.0, -3.0);
  int compared = 0;
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 9; i++) {
      const double kx = i / 48.0;
      const double ky = (j <= 4 ? j : j - 8) / 32.0;
      const double k = std::sqrt(kx * kx + ky * ky);
      auto sinc = [](double u) { return u == 0.0 ? 1.0 : std::sin(u) / u; };
      const double f = std::sqrt(k * k * 6.283185307 * 9.81);
      const double box = sinc(test_pi * kx * sx) * sinc(test_pi * ky * sy) * sinc(test_pi * f * st);
      const double ratio = -6.2831853 * 9.81 * k;
      for (int part = 0; part < 2; part++) {
        const int e = 2 * (i + 9 * j) + part;
        const double h = s.buffer[e];
        ASSERT_NEAR(plain[e], ratio * h, 1e-6 * std::fabs(ratio * h) + 1e-12) << i << " " << j;
        ASSERT_EQ(negative_time[e], plain[e]);
        ASSERT_NEAR(filtered[e], ratio * box * h, 1e-6 * std::fabs(ratio * h) + 1e-12);
        if (h != 0.0) compared++;
      }
    }
  }
  EXPECT_GT(compared, 40);
}

// ---------------------------------------------------------------------------
// The generate order and the file

TEST(WaveSpectrum, OnlyTheLowHalfOfTheSeedOrdersAFile) {
  Scratch_folder folder;
  std::vector<float> buffer(18 * 8, 1.0f);
  const int seeds[5] = {65536, -65536, 65537, 98304, 1};
  const short expected[5] = {0, 0, 1, -32768, 1};
  for (int k = 0; k < 5; k++) {
    TCWave_spectrum sea(103, seeds[k], buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
    EXPECT_EQ(sea.generate, expected[k]) << seeds[k];
    EXPECT_EQ(sea.seed, seeds[k]);
    const std::string file = folder.file("seed" + std::to_string(k) + ".spectrum");
    sea.set_spectrum_file(file.c_str());
    sea.initialize_field();
    EXPECT_EQ(bytes_of(file).empty(), expected[k] == 0) << seeds[k];
    // The buffer is cleared either way.
    if (expected[k] == 0) {
      for (int e = 0; e < 2 * 9 * 8; e++) ASSERT_EQ(buffer[e], 0.0f);
    }
  }
  // The whole seed drives the generator: 65537 is not 1.
  EXPECT_NE(bytes_of(folder.file("seed2.spectrum")), bytes_of(folder.file("seed4.spectrum")));
}

TEST(WaveSpectrum, ByteSwapSettingOffWritesNativeOrder) {
  Spectrum_settings_guard settings;
  random_generator_kind = 902;
  Scratch_folder folder;
  swap_bytes = 0;
  Case_sea s(wind_sea, folder);
  s.sea.initialize_field();
  std::vector<unsigned char> native = bytes_of(s.file);
  std::vector<unsigned char> big = bytes_of(ocean_data("wind_sea.spectrum"));
  ASSERT_EQ(native.size(), big.size());
  if (host_is_little_endian()) {
    for (size_t b = 0; b < big.size(); b += 4) {
      std::swap(big[b], big[b + 3]);
      std::swap(big[b + 1], big[b + 2]);
    }
  }
  EXPECT_EQ(native, big);
  // Read back under the same setting it gives the same evolution.
  s.sea.evolve_heights(wind_sea.time);
  expect_close_lists(s.buffer, values_of(ocean_data("wind_sea.evolved")), 1e-6, "evolved");
}

TEST(WaveSpectrumDeath, FileOfOtherDimensionsStopsTheEvolve) {
  Scratch_folder folder;
  const std::string file = folder.file("small.spectrum");
  write_big_endian_spectrum(file, 3, 4, std::vector<float>(24, 1.0f));
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        swap_bytes = host_is_little_endian();
        std::vector<float> buffer(18 * 8, 0.0f);
        TCWave_spectrum sea(103, 0, buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
        sea.set_spectrum_file(file.c_str());
        sea.evolve_heights(1.0);
      },
      ::testing::ExitedWithCode(1), "^dimensions on " + file + " are incorrect\n3 x 4\n$");
}

TEST(WaveSpectrumDeath, TruncatedFileCountsAsWrongDimensions) {
  Scratch_folder folder;
  const std::string file = folder.file("short.spectrum");
  write_big_endian_spectrum(file, 9, 8, std::vector<float>(100, 1.0f));
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        swap_bytes = host_is_little_endian();
        std::vector<float> buffer(18 * 8, 0.0f);
        TCWave_spectrum sea(103, 0, buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
        sea.set_spectrum_file(file.c_str());
        sea.evolve_acceleration_into(buffer.data(), 1.0, 0.0, 0.0, 0.0);
      },
      ::testing::ExitedWithCode(1), "^dimensions on " + file + " are incorrect\n9 x 8\n$");
  const std::string empty = folder.file("empty.spectrum");
  std::FILE* cut = std::fopen(empty.c_str(), "wb");
  ASSERT_NE(cut, nullptr);
  std::fclose(cut);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        std::vector<float> buffer(18 * 8, 0.0f);
        TCWave_spectrum sea(103, 0, buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
        sea.set_spectrum_file(empty.c_str());
        sea.evolve_potential(1.0);
      },
      ::testing::ExitedWithCode(1), "^dimensions on " + empty + " are incorrect\n0 x 0\n$");
}

TEST(WaveSpectrumDeath, FileReadWithTheWrongByteOrderHasWrongDimensions) {
  Scratch_folder folder;
  const std::string file = folder.file("wrong_order.spectrum");
  write_big_endian_spectrum(file, 9, 8, std::vector<float>(144, 1.0f));
  // 9 and 8 with their bytes reversed: 0x09000000 and 0x08000000.
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        swap_bytes = !host_is_little_endian();
        std::vector<float> buffer(18 * 8, 0.0f);
        TCWave_spectrum sea(103, 0, buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
        sea.set_spectrum_file(file.c_str());
        sea.evolve_heights(1.0);
      },
      ::testing::ExitedWithCode(1),
      "^dimensions on " + file + " are incorrect\n150994944 x 134217728\n$");
}

TEST(WaveSpectrumDeath, UnwritableSpectrumFileEndsTheRun) {
  Scratch_folder folder;
  const std::string file = folder.file("no_such_folder/out.spectrum");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        std::vector<float> buffer(18 * 8, 0.0f);
        TCWave_spectrum sea(103, 5, buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
        sea.set_spectrum_file(file.c_str());
        sea.initialize_field();
      },
      ::testing::ExitedWithCode(1), "^unable to write to " + file + "\n$");
}

TEST(WaveSpectrumDeath, TypeDpIsRefused) {
  std::vector<float> buffer(18 * 8, 0.0f);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCWave_spectrum sea(102, 1, buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
      },
      ::testing::ExitedWithCode(1), "^DP not yet implemented \n$");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCWave_spectrum sea(7, 1, buffer.data(), 16, 8, 0.01, 0.02, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
      },
      ::testing::ExitedWithCode(1), "^DP not yet implemented \n$");
  // A type changed after construction is refused where the spectrum is used.
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCWave_spectrum sea(103, 1, buffer.data(), 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
        sea.spectrum_type = 102;
        sea.spectrum_value(0.1, 0.1);
      },
      ::testing::ExitedWithCode(1), "^DP not yet implemented \n$");
}

TEST(WaveSpectrum, GeneratorFamilyFollowsTheSettingAtInitialization) {
  Spectrum_settings_guard settings;
  Scratch_folder folder;
  std::vector<float> buffer(18 * 8, 0.0f);
  TCWave_spectrum sea(103, 12345, buffer.data(), 16, 8, 3.0, 4.0, 5.0, 0.0, 0.0, 0.0);
  sea.set_spectrum_file(folder.file("library.spectrum").c_str());
  random_generator_kind = 901;
  sea.initialize_field();
  EXPECT_EQ(sea.generator.get_generator_type(), 901);
  EXPECT_NE(bytes_of(folder.file("library.spectrum")), bytes_of(ocean_data("wind_sea.spectrum")));
  random_generator_kind = 902;
  sea.set_spectrum_file(folder.file("own.spectrum").c_str());
  sea.initialize_field();
  EXPECT_EQ(sea.generator.get_generator_type(), 902);
  EXPECT_EQ(bytes_of(folder.file("own.spectrum")), bytes_of(ocean_data("wind_sea.spectrum")));
}

TEST(WaveSpectrum, NullBufferIsLeftAlone) {
  TCWave_spectrum sea(103, 1, nullptr, 16, 8, 1.0, 1.0, 5.0, 0.0, 0.0, 0.0);
  sea.initialize_field();
  sea.evolve_heights(1.0);
  sea.evolve_acceleration_into(nullptr, 1.0, 0.0, 0.0, 0.0);
  EXPECT_EQ(sea.transform_to_lattice(), 0.0);
}

TEST(WaveSpectrum, NonsenseSizesStayWithinTheBuffer) {
  Spectrum_settings_guard settings;
  verbose = 0;
  Scratch_folder folder;
  // n_x, n_y, dx: negative, odd, zero. Each buffer is exactly (n_x + 2) * n_y
  // floats (one at least), so any stray write shows in the sanitizer build.
  const int sizes[4][2] = {{-4, 8}, {5, 3}, {0, 0}, {6, 1}};
  const double spacing[4] = {1.0, 2.0, 0.0, -1.0};
  for (int k = 0; k < 4; k++) {
    const int n_x = sizes[k][0], n_y = sizes[k][1];
    const long floats = n_x >= 1 && n_y >= 1 ? (n_x + 2L) * n_y : 1;
    std::vector<float> buffer(floats, 0.0f);
    Stream_capture out(std::cout);
    TCWave_spectrum sea(103, 9, buffer.data(), n_x, n_y, spacing[k], spacing[k], 5.0, 0.0, 0.0,
                        0.0);
    sea.set_spectrum_file(folder.file("odd" + std::to_string(k) + ".spectrum").c_str());
    sea.initialize_field();
    sea.evolve_heights(1.0);
    sea.transform_to_lattice();
    std::vector<float> acceleration(floats, 0.0f);
    sea.evolve_acceleration_into(acceleration.data(), 1.0, 1.0, 1.0, 1.0);
    sea.evolve_potential(1.0);
    sea.set_footprint(2.0);
    EXPECT_GE(bytes_of(folder.file("odd" + std::to_string(k) + ".spectrum")).size(), 8u) << k;
  }
}
