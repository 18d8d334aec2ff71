#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "TCWind_wave_spectrum.h"
#include "scratch_folder.h"
#include "spectrum_test_files.h"
#include "stream_capture.h"

// Interpolated winds worked out by hand; the waves compared with a
// constant-wind sea of the same numbers over the same spectrum file.

namespace {

void write_text(const std::string& path, const std::string& text) {
  std::ofstream out(path.c_str());
  out << text;
}

// Two keys: 5 m/s towards 0 degrees at 0 s, 9 m/s towards 90 degrees at 10 s.
const char* const two_keys =
    "number_of_times:  2\n"
    "time      speed      direction\n"
    "0.0   5.0   0.0\n"
    "10.0  9.0   90.0\n";

}  // namespace

TEST(WindWaveSpectrum, ReadsTheWindFileAndStartsWithTheDefaultWind) {
  Scratch_folder folder;
  const std::string file = folder.file("wind.dat");
  write_text(file, two_keys);
  std::vector<float> buffer(18 * 8, 0.0f);
  Stream_capture out(std::cout);
  TCWind_wave_spectrum sea(103, 5, buffer.data(), 16, 8, 1.0, 1.0, file.c_str(), 1.5, 0.0);
  EXPECT_EQ(out.text(), "wind file is :" + file + "\n");
  EXPECT_EQ(sea.wind_speed, 4.0);
  EXPECT_EQ(sea.wind_direction, 0.0);
  // 6.5727 / (16 * 2 * 3.1415926535).
  EXPECT_DOUBLE_EQ(sea.k_wind, 6.5727 / (16.0 * 2.0 * 3.1415926535));
  EXPECT_EQ(sea.reference_time, 1.5);
  EXPECT_EQ(sea.band_low, 99999999.0);
  ASSERT_EQ(sea.wind_series.number_of_times, 2);
  EXPECT_EQ(sea.wind_series.times[1], 10.0);
  EXPECT_EQ(sea.wind_series.positions[1].x, 9.0);
  EXPECT_DOUBLE_EQ(sea.wind_series.chi[1], 90.0 * test_degrees);
  EXPECT_EQ(std::string(sea.wind_file), file);

  TCWind_wave_spectrum banded(101, 5, buffer.data(), 16, 8, 1.0, 1.0, 0.1, 0.2, file.c_str(), 0.0,
                              0.0);
  EXPECT_EQ(banded.band_low, 0.1);
  EXPECT_EQ(banded.band_high, 0.2);
  EXPECT_EQ(banded.spectrum_type, 101);
}

TEST(WindWaveSpectrum, WindIsInterpolatedAndExtrapolatedAndPrintedWhenVerbose) {
  Spectrum_settings_guard settings;
  verbose = 1;
  Scratch_folder folder;
  const std::string file = folder.file("wind.dat");
  write_text(file, two_keys);
  std::vector<float> buffer(18 * 8, 0.0f);
  std::vector<float> steady_buffer(18 * 8, 0.0f);
  TCWind_wave_spectrum* sea;
  {
    Stream_capture out(std::cout);
    sea = new TCWind_wave_spectrum(103, 5, buffer.data(), 16, 8, 1.0, 1.0, file.c_str(), 0.0, 0.0);
  }
  sea->set_spectrum_file(folder.file("sea.spectrum").c_str());
  sea->initialize_field();
  {
    Stream_capture out(std::cout);
    sea->evolve_heights(5.0);
    // Half way: 7 m/s towards 45 degrees.
    EXPECT_EQ(out.text(), "time    wind vel.   wind Direction\n5  7  45\n");
  }
  EXPECT_EQ(sea->wind_speed, 7.0);
  EXPECT_DOUBLE_EQ(sea->wind_direction, 45.0 * test_degrees);
  EXPECT_DOUBLE_EQ(sea->cos_wind, std::cos(45.0 * test_degrees));
  EXPECT_DOUBLE_EQ(sea->k_wind, 6.5727 / (49.0 * 2.0 * 3.1415926535));

  // The same waves as a steady 7 m/s wind towards 45 degrees.
  TCWave_spectrum steady(103, 5, steady_buffer.data(), 16, 8, 1.0, 1.0, 7.0, sea->wind_direction,
                         0.0, 0.0);
  steady.set_spectrum_file(folder.file("sea.spectrum").c_str());
  steady.evolve_heights(5.0);
  EXPECT_EQ(steady_buffer, buffer);

  // Past the last key the last segment goes on: 13 m/s towards 180 degrees.
  verbose = 0;
  {
    Stream_capture out(std::cout);
    sea->evolve_heights(20.0);
    EXPECT_EQ(out.text(), "");
  }
  EXPECT_EQ(sea->wind_speed, 13.0);
  EXPECT_DOUBLE_EQ(sea->wind_direction, 180.0 * test_degrees);
  delete sea;
}

TEST(WindWaveSpectrum, OneKeyIsASteadyWind) {
  Spectrum_settings_guard settings;
  verbose = 0;
  Scratch_folder folder;
  const std::string file = folder.file("wind.dat");
  write_text(file, "number_of_times: 1\ntime speed direction\n3.0 6.5 -30.0\n");
  std::vector<float> buffer(18 * 8, 0.0f);
  Stream_capture out(std::cout);
  TCWind_wave_spectrum sea(103, 5, buffer.data(), 16, 8, 1.0, 1.0, file.c_str(), 0.0, 0.0);
  sea.set_spectrum_file(folder.file("sea.spectrum").c_str());
  sea.initialize_field();
  sea.evolve_heights(-100.0);
  EXPECT_EQ(sea.wind_speed, 6.5);
  EXPECT_DOUBLE_EQ(sea.wind_direction, -30.0 * test_degrees);
}

TEST(WindWaveSpectrumDeath, MissingWindFileEndsTheRun) {
  Scratch_folder folder;
  const std::string file = folder.file("no_wind.dat");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        std::vector<float> buffer(18 * 8, 0.0f);
        TCWind_wave_spectrum sea(103, 5, buffer.data(), 16, 8, 1.0, 1.0, file.c_str(), 0.0, 0.0);
      },
      ::testing::ExitedWithCode(1), "^wind file is :" + file + "\nError reading wind file.\n$");
}

TEST(WindWaveSpectrumDeath, CountBelowOneOrShortRowsEndTheRun) {
  Scratch_folder folder;
  const char* const bad[4] = {
      "number_of_times: 0\ntime speed direction\n",
      "number_of_times: 3\ntime speed direction\n0 5 0\n1 6 0\n",
      "number_of_times: 2\ntime speed direction\n0 5 0\n1 6\n",
      // A count far beyond the file costs nothing before the rows run out.
      "number_of_times: 2000000000\ntime speed direction\n0 5 0\n",
  };
  for (int k = 0; k < 4; k++) {
    const std::string file = folder.file("bad" + std::to_string(k) + ".dat");
    write_text(file, bad[k]);
    EXPECT_EXIT(
        {
          std::cout.rdbuf(std::cerr.rdbuf());
          std::vector<float> buffer(18 * 8, 0.0f);
          TCWind_wave_spectrum sea(103, 5, buffer.data(), 16, 8, 1.0, 1.0, file.c_str(), 0.0, 0.0);
        },
        ::testing::ExitedWithCode(1), "^wind file is :" + file + "\nError reading wind file.\n$")
        << bad[k];
  }
}
