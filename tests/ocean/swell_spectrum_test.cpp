#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <string>
#include <vector>

#include "Swell_details_input.h"
#include "TCData_file.h"
#include "TCSwell_spectrum.h"
#include "fourt.h"
#include "scratch_folder.h"
#include "spectrum_test_files.h"
#include "stream_capture.h"

// The swell case of spectrum_reference.py (tests/data/ocean/swell.*), and
// the bump's shape worked out by hand.

namespace {

// 16 by 8 nodes 10 m apart; rms 0.8 m, wavelength 60 m, spreads 0.3 and 0.5,
// towards 200 degrees, seed 7, evolved to 12 s.
void fill_reference_swell(Swell_details_input& input, const std::string& spectrum_file) {
  input.n_x = 16;
  input.n_y = 8;
  input.dx = 10.0;
  input.dy = 10.0;
  input.generate_file = 1;
  input.random_seed = 7;
  input.swell_height = 0.8;
  input.swell_wavelength = 60.0;
  input.long_spread = 0.3;
  input.trans_spread = 0.5;
  input.direction = 200.0 * test_degrees;
  copy_text(input.spectrum_file, spectrum_file.c_str(), 256);
}

// A swell with its own buffer, exactly the lattice's size (one float for
// sizes below 1); the constructor's lines are swallowed.
class Swell_on_buffer {
 public:
  Swell_on_buffer(const Swell_details_input& input, double offset)
      : buffer(input.n_x >= 1 && input.n_y >= 1 ? (input.n_x + 2) * input.n_y : 1, 0.0f),
        swell(construct(input, offset)) {}
  ~Swell_on_buffer() { delete swell; }
  std::vector<float> buffer;
  TCSwell_spectrum* swell;

 private:
  TCSwell_spectrum* construct(const Swell_details_input& input, double offset) {
    Stream_capture out(std::cout);
    return new TCSwell_spectrum(input, buffer.data(), offset);
  }
};

}  // namespace

TEST(SwellReference, FileEvolutionAndHeightsMatchTheReference) {
  Spectrum_settings_guard settings;
  swap_bytes = host_is_little_endian();
  random_generator_kind = 902;
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("swell.spectrum"));
  Swell_on_buffer s(input, 0.0);
  s.swell->initialize_field();
  EXPECT_EQ(bytes_of(folder.file("swell.spectrum")), bytes_of(ocean_data("swell.spectrum")));

  s.swell->evolve_heights(12.0);
  const std::vector<double> evolved = values_of(ocean_data("swell.evolved"));
  ASSERT_EQ(evolved.size(), 144u);
  for (size_t e = 0; e < evolved.size(); e++)
    ASSERT_NEAR(s.buffer[e], evolved[e], 1e-6 * largest(evolved)) << e;

  const double rms = s.swell->transform_to_lattice();
  const std::vector<double> heights = values_of(ocean_data("swell.heights"));
  ASSERT_EQ(heights.size(), 128u);
  double sum = 0.0;
  for (size_t e = 0; e < heights.size(); e++) {
    ASSERT_NEAR(s.buffer[e], heights[e], 1e-5 * largest(heights)) << e;
    sum += heights[e] * heights[e];
  }
  EXPECT_NEAR(rms, std::sqrt(sum / 128.0), 1e-5);
}

TEST(Swell, PeakSitsOnALatticeNodeWithTheSpreadsAlongAndAcross) {
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("swell.spectrum"));
  Swell_on_buffer s(input, 42.0);
  const TCSwell_spectrum& w = *s.swell;
  EXPECT_EQ(w.kind, -5);
  EXPECT_EQ(w.reference_time, 42.0);
  EXPECT_EQ(std::string(w.spectrum_file), folder.file("swell.spectrum"));
  EXPECT_EQ(w.generate, 1);
  EXPECT_EQ(w.seed, 7);
  EXPECT_EQ(w.n_kx, 9);
  EXPECT_EQ(w.n_ky, 8);
  EXPECT_DOUBLE_EQ(w.dk_x, 1.0 / 160.0);
  EXPECT_DOUBLE_EQ(w.dk_y, 1.0 / 80.0);
  EXPECT_DOUBLE_EQ(w.dk_area, 1.0 / 12800.0);
  EXPECT_DOUBLE_EQ(w.k_swell, 1.0 / 60.0);
  EXPECT_EQ(w.rms_height, 0.8);
  EXPECT_EQ(w.swell_direction, 200.0 * test_degrees);
  // cos 200 = -0.93969: -0.93969 / 60 * 160 = -2.506, down to -3 nodes;
  // sin 200 = -0.34202: -0.34202 / 60 * 80 = -0.456, down to -1 node.
  EXPECT_DOUBLE_EQ(w.k_swell_x, -3.0 / 160.0);
  EXPECT_DOUBLE_EQ(w.k_swell_y, -1.0 / 80.0);
  EXPECT_DOUBLE_EQ(w.k_L, 0.3 / 60.0);
  EXPECT_DOUBLE_EQ(w.k_T, 0.5 / 60.0);
  // A rotated covariance keeps its determinant k_L^2 k_T^2.
  const double kl2 = 0.005 * 0.005;
  const double kt2 = (0.5 / 60.0) * (0.5 / 60.0);
  EXPECT_NEAR(w.det, kl2 * kt2, 1e-12 * kl2 * kt2);
  EXPECT_NEAR(w.cov_a + w.cov_b, kl2 + kt2, 1e-15);
  EXPECT_NEAR(w.peak, 0.64 / (6.283185307 * 0.005 * (0.5 / 60.0)), 1e-9);
  // min(1/20 - 1/160, 1/20 - 1/80).
  EXPECT_DOUBLE_EQ(w.k_cut, 0.0375);
}

TEST(Swell, PrintsItsParametersAndMoreWhenVerbose) {
  Spectrum_settings_guard settings;
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("swell.spectrum"));
  std::vector<float> buffer(18 * 8, 0.0f);
  verbose = 0;
  {
    Stream_capture out(std::cout);
    TCSwell_spectrum swell(input, buffer.data(), 0.0);
    EXPECT_EQ(out.text(), "rms_height  0.8\nswell dir   3.49066\nrandom seed 7\n");
  }
  verbose = 1;
  {
    Stream_capture out(std::cout);
    TCSwell_spectrum swell(input, buffer.data(), 0.0);
    EXPECT_EQ(out.text(),
              "rms_height  0.8\nswell dir   3.49066\nrandom seed 7\n"
              "k_L         0.005\nk_T         0.00833333\nk_swell     0.0166667\n"
              "k_swell_x   -0.01875\nk_swell_y   -0.0125\n");
  }
}

TEST(Swell, SpectrumIsAGaussianAroundThePeakAndItsMirror) {
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("swell.spectrum"));
  Swell_on_buffer s(input, 0.0);
  const TCSwell_spectrum& w = *s.swell;
  const double x0 = w.k_swell_x, y0 = w.k_swell_y;
  const double c = std::cos(200.0 * test_degrees), sn = std::sin(200.0 * test_degrees);
  // The mirror is e^-8 away at the peak: 0.5 peak (1 + tiny).
  EXPECT_NEAR(w.spectrum_value(x0, y0), 0.5 * w.peak, 1e-3 * w.peak);
  EXPECT_DOUBLE_EQ(w.spectrum_value(-x0, -y0), w.spectrum_value(x0, y0));
  EXPECT_DOUBLE_EQ(w.spectrum_value(0.01, -0.02), w.spectrum_value(-0.01, 0.02));
  // One width along the direction and one across: e^-1/2 each.
  EXPECT_NEAR(w.spectrum_value(x0 + w.k_L * c, y0 + w.k_L * sn), 0.5 * w.peak * std::exp(-0.5),
              1e-3 * w.peak);
  EXPECT_NEAR(w.spectrum_value(x0 - w.k_T * sn, y0 + w.k_T * c), 0.5 * w.peak * std::exp(-0.5),
              1e-3 * w.peak);
  // Beyond k_cut = 0.0375 nothing, even though the bump would reach there.
  EXPECT_EQ(w.spectrum_value(0.0376, 0.0), 0.0);
  EXPECT_GT(w.spectrum_value(0.0374, -0.0001), 0.0);
}

TEST(Swell, SpectrumIntegratesToTheRmsHeightSquared) {
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("swell.spectrum"));
  input.dx = 1.0;  // a wide k_cut, so that the whole bump counts
  input.dy = 1.0;
  Swell_on_buffer s(input, 0.0);
  const TCSwell_spectrum& w = *s.swell;
  // A Riemann sum in steps of k_L / 5 over ten of the larger width k_T
  // around the peak; the mirror bump holds the same again.
  const double step = w.k_L / 5.0;
  const int reach = static_cast<int>(10.0 * w.k_T / step) + 1;
  double sum = 0.0;
  for (int a = -reach; a <= reach; a++)
    for (int b = -reach; b <= reach; b++)
      sum += w.spectrum_value(w.k_swell_x + a * step, w.k_swell_y + b * step);
  EXPECT_NEAR(2.0 * sum * step * step, 0.64, 1e-6);
}

TEST(Swell, InitializeGivesRandomPhasesOfFixedAmplitude) {
  Spectrum_settings_guard settings;
  random_generator_kind = 902;
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("swell.spectrum"));
  Swell_on_buffer s(input, 0.0);
  s.swell->initialize_field();
  const double a = std::sqrt(1.0 / 12800.0);
  int turned = 0;
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 9; i++) {
      const float* e = &s.buffer[2 * (i + 9 * j)];
      const double modulus = std::sqrt(e[0] * e[0] + e[1] * e[1]);
      const int corner = (i == 0 || i == 8) && (j == 0 || j == 4);
      if (corner) {
        EXPECT_EQ(e[1], 0.0f);
        EXPECT_LE(std::fabs(e[0]), a * (1.0 + 1e-6));
      } else {
        EXPECT_NEAR(modulus, a, 1e-6 * a) << i << " " << j;
      }
      if (e[0] < 0.0f) turned++;
    }
  }
  EXPECT_GT(turned, 10);
}

TEST(Swell, WithoutTheGenerateFlagNoFileIsWritten) {
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("none.spectrum"));
  input.generate_file = 0;
  Swell_on_buffer s(input, 0.0);
  EXPECT_EQ(s.swell->generate, 0);
  s.swell->initialize_field();
  EXPECT_TRUE(bytes_of(folder.file("none.spectrum")).empty());
  for (int e = 0; e < 144; e++) ASSERT_EQ(s.buffer[e], 0.0f);
}

TEST(SwellDeath, NoSpectrumFileStopsTheEvolve) {
  Scratch_folder folder;
  const std::string file = folder.file("none.spectrum");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Swell_details_input input;
        fill_reference_swell(input, file);
        input.generate_file = 0;
        std::vector<float> buffer(18 * 8, 0.0f);
        TCSwell_spectrum swell(input, buffer.data(), 0.0);
        swell.initialize_field();
        swell.evolve_heights(1.0);
      },
      ::testing::ExitedWithCode(1), "unable to open " + file + "\n$");
}

TEST(SwellDeath, UnwritableSpectrumFileEndsTheRun) {
  Scratch_folder folder;
  const std::string file = folder.file("missing/swell.spectrum");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Swell_details_input input;
        fill_reference_swell(input, file);
        std::vector<float> buffer(18 * 8, 0.0f);
        TCSwell_spectrum swell(input, buffer.data(), 0.0);
        swell.initialize_field();
      },
      ::testing::ExitedWithCode(1), "unable to write to " + file + "\n$");
}

TEST(Swell, AccelerationAndPotentialFollowTheHeights) {
  Spectrum_settings_guard settings;
  random_generator_kind = 902;
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("swell.spectrum"));
  Swell_on_buffer heights(input, 0.0);
  heights.swell->initialize_field();
  heights.swell->evolve_heights(5.0);
  std::vector<float> acceleration(18 * 8, 0.0f);
  heights.swell->evolve_acceleration_into(acceleration.data(), 5.0, 0.0, 0.0, 0.0);

  Swell_on_buffer potential(input, 0.0);
  {
    Stream_capture out(std::cout);
    potential.swell->evolve_potential(5.0);
    EXPECT_EQ(out.text(), "upgrading potential field \n");
  }
  fourt2(potential.buffer.data(), 16, 8, 1);

  const double c = std::cos(200.0 * test_degrees), sn = std::sin(200.0 * test_degrees);
  double scale_h = 0.0, scale_p = 0.0;
  for (int e = 0; e < 144; e++) {
    scale_h = std::fmax(scale_h, std::fabs(heights.buffer[e]));
    scale_p = std::fmax(scale_p, std::fabs(potential.buffer[e] / 128.0));
  }
  int compared = 0;
  for (int j = 0; j < 8; j++) {
    for (int i = 0; i < 9; i++) {
      const double kx = i / 160.0;
      const double ky = (j <= 4 ? j : j - 8) / 80.0;
      const double k = std::sqrt(kx * kx + ky * ky);
      const double w = 3.132 * std::sqrt(6.283185307 * k);
      const double s = kx * c + ky * sn >= 0.0 ? 1.0 : -1.0;
      const int e = 2 * (i + 9 * j);
      const double hr = heights.buffer[e], hi = heights.buffer[e + 1];
      // Vertical acceleration: -2 pi g k times the height.
      ASSERT_NEAR(acceleration[e], -6.2831853 * 9.81 * k * hr, 1e-5 * scale_h * 9.81);
      ASSERT_NEAR(acceleration[e + 1], -6.2831853 * 9.81 * k * hi, 1e-5 * scale_h * 9.81);
      // Potential: -g i s H / w.
      const double pr = w > 0.0 ? 9.81 * s * hi / w : 0.0;
      const double pi = w > 0.0 ? -9.81 * s * hr / w : 0.0;
      ASSERT_NEAR(potential.buffer[e] / 128.0, pr, 2e-5 * scale_p) << i << " " << j;
      ASSERT_NEAR(potential.buffer[e + 1] / 128.0, pi, 2e-5 * scale_p) << i << " " << j;
      if (hr != 0.0) compared++;
    }
  }
  EXPECT_GT(compared, 20);
}

TEST(Swell, WavelengthNotAboveZeroGivesNoSwellNumber) {
  Scratch_folder folder;
  Swell_details_input input;
  fill_reference_swell(input, folder.file("swell.spectrum"));
  input.swell_wavelength = 0.0;
  Swell_on_buffer s(input, 0.0);
  EXPECT_EQ(s.swell->k_swell, 0.0);
  EXPECT_EQ(s.swell->k_swell_x, 0.0);
  EXPECT_EQ(s.swell->k_swell_y, 0.0);
}

TEST(Swell, NonsenseSizesStayWithinTheBuffer) {
  Scratch_folder folder;
  const int sizes[3][2] = {{-4, 8}, {5, 3}, {0, 0}};
  for (int k = 0; k < 3; k++) {
    Swell_details_input input;
    fill_reference_swell(input, folder.file("odd" + std::to_string(k) + ".spectrum"));
    input.n_x = sizes[k][0];
    input.n_y = sizes[k][1];
    Swell_on_buffer s(input, 0.0);
    Stream_capture out(std::cout);
    s.swell->initialize_field();
    s.swell->evolve_heights(1.0);
    s.swell->transform_to_lattice();
    s.swell->evolve_potential(1.0);
  }
}
