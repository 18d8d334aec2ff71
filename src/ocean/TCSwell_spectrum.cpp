#include "TCSwell_spectrum.h"

#include <cmath>
#include <iostream>

#include "TCConstants.h"
#include "TCSettings.h"
#include "fourt.h"

namespace {

const int height_form = 0;
const int acceleration_form = 1;
const int potential_form = 2;

short low_half(int value) {
  int low = value & 0xffff;
  if (low >= 32768) low -= 65536;
  return static_cast<short>(low);
}

}  // namespace

TCSwell_spectrum::TCSwell_spectrum(const Swell_details_input& input, float* buffer, double offset)
    : TCSurface_field(-5, buffer, input.n_x, input.n_y, input.dx, input.dy),
      generator(random_generator_kind),
      k_swell(input.swell_wavelength > 0.0 ? 1.0 / input.swell_wavelength : 0.0),
      k_L(0.0),
      k_T(0.0),
      rms_height(input.swell_height),
      swell_direction(input.direction),
      seed(input.random_seed) {
  reference_time = offset;
  set_spectrum_file(input.spectrum_file);
  generate = low_half(input.generate_file);
  generator.seed_generator(seed);

  n_kx = n_x / 2 + 1;
  n_ky = n_y;
  dk_x = 1.0 / (n_x * dx);
  dk_y = 1.0 / (n_y * dy);
  dk_area = dk_x * dk_y;

  const double c = std::cos(swell_direction);
  const double s = std::sin(swell_direction);
  k_swell_x = std::floor(c * k_swell / dk_x) * dk_x;
  k_swell_y = std::floor(s * k_swell / dk_y) * dk_y;
  k_L = input.long_spread * k_swell;
  k_T = input.trans_spread * k_swell;

  // Covariance of the bump: k_L^2 along the direction, k_T^2 across.
  cov_a = k_T * k_T * s * s + k_L * k_L * c * c;
  cov_b = k_T * k_T * c * c + k_L * k_L * s * s;
  cov_c = (k_L * k_L - k_T * k_T) * s * c;
  det = cov_a * cov_b - cov_c * cov_c;
  if (!(det > 0.0)) det = k_L * 1e-05 * k_L * k_T * k_T;
  peak = rms_height * rms_height / (tc_two_pi * std::sqrt(det));

  const double cut_x = 1.0 / (2.0 * dx) - dk_x;
  const double cut_y = 1.0 / (2.0 * dy) - dk_y;
  k_cut = cut_x < cut_y ? cut_x : cut_y;

  std::cout << "rms_height  " << rms_height << "\n";
  std::cout << "swell dir   " << swell_direction << "\n";
  std::cout << "random seed " << seed << "\n";
  if (verbose) {
    std::cout << "k_L         " << k_L << "\n";
    std::cout << "k_T         " << k_T << "\n";
    std::cout << "k_swell     " << k_swell << "\n";
    std::cout << "k_swell_x   " << k_swell_x << "\n";
    std::cout << "k_swell_y   " << k_swell_y << "\n";
  }
}

TCSwell_spectrum::~TCSwell_spectrum() {}

double TCSwell_spectrum::quadratic_form(double u, double v) const {
  return (v * v * cov_a + u * u * cov_b - 2.0 * u * v * cov_c) / (2.0 * det);
}

double TCSwell_spectrum::spectrum_value(double kx, double ky) const {
  const double k2 = kx * kx + ky * ky;
  if (k2 > k_cut * k_cut) return 0.0;
  return 0.5 * (peak * std::exp(-quadratic_form(kx - k_swell_x, ky - k_swell_y)) +
                peak * std::exp(-quadratic_form(-kx - k_swell_x, -ky - k_swell_y)));
}

void TCSwell_spectrum::apply_amplitudes(float* array, int form, double smear_x, double smear_y,
                                        double smear_t) const {
  const int columns = spectrum_columns();
  const int half = n_y / 2;
  for (int i = 0; i < columns; i++) {
    const double kx = i * dk_x;
    for (int j = 0; j < half; j++) {
      // Row j, then n_y - j - 1 at -(j + 1) dk_y; the row n_y / 2 is positive.
      const int rows[2] = {j, n_y - j - 1};
      const double ky[2] = {j * dk_y, j == half - 1 ? half * dk_y : -(j + 1) * dk_y};
      for (int r = 0; r < 2; r++) {
        const double density = spectrum_value(kx, ky[r]);
        double factor;
        if (form == acceleration_form)
          factor = acceleration_factor(density, kx, ky[r], smear_x, smear_y, smear_t);
        else if (form == potential_form)
          factor = potential_factor(density);
        else
          factor = height_factor(density);
        float* e = array + 2 * (i + static_cast<long>(columns) * rows[r]);
        e[0] = static_cast<float>(e[0] * factor);
        e[1] = static_cast<float>(e[1] * factor);
      }
    }
  }
}

void TCSwell_spectrum::evolve_heights(double time) {
  if (!field) return;
  load_and_turn_phases(field, time, std::cos(swell_direction), std::sin(swell_direction),
                       height_phases);
  apply_amplitudes(field, height_form, 0.0, 0.0, 0.0);
  make_hermitian(field);
}

void TCSwell_spectrum::initialize_field() {
  if (!field) return;
  zero_spectrum(field);
  if (generate == 0) return;
  const double a = std::pow(dk_area, 0.5);
  const long n = static_cast<long>(spectrum_columns()) * spectrum_rows();
  for (long e = 0; e < n; e++) {
    const double u = generator.uniform();
    field[2 * e] = static_cast<float>(a * std::cos(tc_two_pi * u));
    field[2 * e + 1] = static_cast<float>(a * std::sin(tc_two_pi * u));
  }
  make_hermitian(field);
  write_spectrum_file(field);
}

double TCSwell_spectrum::transform_to_lattice() {
  if (!field || n_x < 1 || n_y < 1) return 0.0;
  fourt2(field, n_x, n_y, -1);
  double sum = 0.0;
  const long n = static_cast<long>(n_x) * n_y;
  for (long e = 0; e < n; e++) sum += static_cast<double>(field[e]) * field[e];
  return std::sqrt(sum / (n_x * 1.0 * n_y));
}

void TCSwell_spectrum::evolve_acceleration_into(float* array, double time, double smear_x,
                                                double smear_y, double smear_t) {
  if (!array) return;
  load_and_turn_phases(array, time, std::cos(swell_direction), std::sin(swell_direction),
                       height_phases);
  apply_amplitudes(array, acceleration_form, smear_x, smear_y, smear_t);
  make_hermitian(array);
}

void TCSwell_spectrum::evolve_potential(double time) {
  if (!field) return;
  load_and_turn_phases(field, time, std::cos(swell_direction), std::sin(swell_direction),
                       potential_phases);
  apply_amplitudes(field, potential_form, 0.0, 0.0, 0.0);
  make_hermitian(field);
  fourt2(field, n_x, n_y, -1);
  std::cout << "upgrading potential field "
            << "\n";
}
