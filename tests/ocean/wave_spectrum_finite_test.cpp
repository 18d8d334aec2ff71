#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "TCRandom.h"
#include "TCWave_spectrum.h"
#include "scratch_folder.h"
#include "spectrum_test_files.h"

// With the library's generator a uniform draw is exactly 0 about once in
// 32768 draws; a 256 by 256 spectrum takes 33024 radius draws, so most seeds
// meet one. One infinite amplitude used to turn the whole lattice to NaN.
TEST(WaveSpectrumFinite, LibraryGeneratorSeasAreFiniteForEverySeed) {
  Spectrum_settings_guard settings;
  verbose = 0;
  random_generator_kind = random_library_generator;
  Scratch_folder folder;
  const int n = 256;
  const double dx = 2.0;
  for (int seed = 1; seed <= 10; seed++) {
    std::vector<float> buffer((n + 2) * n, 0.0f);
    TCWave_spectrum sea(103, seed, buffer.data(), n, n, dx, dx, 8.0, 0.3, 0.0, 0.0);
    sea.set_spectrum_file(folder.file("sea.spectrum").c_str());
    sea.initialize_field();
    sea.evolve_heights(4.0);
    sea.transform_to_lattice();
    double sum = 0.0;
    long bad = 0;
    for (long e = 0; e < static_cast<long>(n) * n; e++) {
      if (!std::isfinite(buffer[e])) {
        bad++;
        continue;
      }
      sum += static_cast<double>(buffer[e]) * buffer[e];
    }
    EXPECT_EQ(bad, 0) << "seed " << seed;
    // The spectrum's integral, level * 2.6e-05 * pi / (2 k_wind^2) with
    // k_wind = 0.01635 cycles per metre and level 1.55, gives an rms of about
    // 0.49 m for an 8 m/s wind; the loose bounds leave room for the few
    // hundred modes that carry most of it.
    const double rms = std::sqrt(sum / (static_cast<double>(n) * n));
    EXPECT_GT(rms, 0.25) << "seed " << seed;
    EXPECT_LT(rms, 1.0) << "seed " << seed;
  }
}
