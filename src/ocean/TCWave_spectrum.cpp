#include "TCWave_spectrum.h"

#include <cmath>
#include <cstdlib>
#include <iostream>

#include "TCConstants.h"
#include "TCSettings.h"
#include "fourt.h"

namespace {

const int height_form = 0;
const int acceleration_form = 1;
const int potential_form = 2;

// 8 pi^3 * 1.3e-05: slope variance per unit of ln k for a unit amplitude.
const double slope_per_log_k_unit = 0.0032246527744746794;

int is_wind_type(int type) {
  return type == ocean_spectrum_phillips || type == ocean_spectrum_phillips_smoothed ||
         type == ocean_spectrum_glassy;
}

// The low 16 bits of a seed as a signed 16-bit value.
short low_half(int value) {
  int low = value & 0xffff;
  if (low >= 32768) low -= 65536;
  return static_cast<short>(low);
}

void refuse_type() {
  std::cout << "DP not yet implemented "
            << "\n";
  std::cout.flush();
  std::exit(1);
}

}  // namespace

TCWave_spectrum::TCWave_spectrum(int type, int seed_in, float* buffer, int n_x_in, int n_y_in,
                                 double dx_in, double dy_in, double wind_speed_in,
                                 double wind_direction_in, double reference_time_in,
                                 double glassy_scale)
    : TCSurface_field(0, buffer, n_x_in, n_y_in, dx_in, dy_in),
      band_low(tc_nothing),
      band_high(tc_nothing),
      seed(seed_in),
      wind_direction(wind_direction_in),
      wind_speed(wind_speed_in) {
  reference_time = reference_time_in;
  construct(type, glassy_scale);
}

TCWave_spectrum::TCWave_spectrum(int type, int seed_in, float* buffer, int n_x_in, int n_y_in,
                                 double dx_in, double dy_in, double band_low_in,
                                 double band_high_in, double wind_speed_in,
                                 double wind_direction_in, double reference_time_in,
                                 double glassy_scale)
    : TCSurface_field(0, buffer, n_x_in, n_y_in, dx_in, dy_in),
      band_low(band_low_in),
      band_high(band_high_in),
      seed(seed_in),
      wind_direction(wind_direction_in),
      wind_speed(wind_speed_in) {
  reference_time = reference_time_in;
  construct(type, glassy_scale);
}

TCWave_spectrum::~TCWave_spectrum() {}

void TCWave_spectrum::construct(int type, double glassy_scale) {
  if (type != ocean_spectrum_flat && !is_wind_type(type)) refuse_type();
  spectrum_type = static_cast<short>(type);
  generate = low_half(seed);
  cos_wind = std::cos(wind_direction);
  sin_wind = std::sin(wind_direction);

  n_kx = n_x / 2 + 1;
  n_ky = n_y;
  dk_x = 1.0 / (n_x * dx);
  dk_y = 1.0 / (n_y * dy);
  // The Nyquist row and column are left out of the resolved range.
  k_max_x = 1.0 / (dx * 2.0) - dk_x;
  k_max_y = 1.0 / (dy * 2.0) - dk_y;
  k_lattice = k_max_x < k_max_y ? k_max_x : k_max_y;
  dk_area = dk_x * dk_y;

  k_cut = k_lattice;
  // A glassy sea is smooth below glassy_scale metres.
  if (type == ocean_spectrum_glassy && glassy_scale > 0.0 && 1.0 / glassy_scale < k_lattice)
    k_cut = 1.0 / glassy_scale;

  amplitude_total = 0.0;
  amplitude = 0.0;
  k_wind = tc_nothing;
  k_small = 100.0;
  slope_unresolved = 0.0;
  slope_resolved = 0.0;
  slope_per_log_k = 0.0;
  slope_reference = 0.0;
  update_wind_constants();
  slope_current = slope_unresolved;
}

void TCWave_spectrum::set_wind(double speed, double direction) {
  wind_speed = speed;
  wind_direction = direction;
  cos_wind = std::cos(direction);
  sin_wind = std::sin(direction);
}

void TCWave_spectrum::update_wind_constants() {
  const double u = wind_speed;
  // 6.5727 is 0.67 * 9.81: waves slower than the wind's 0.67 are cut off.
  if (is_wind_type(spectrum_type) && u > 0.0)
    k_wind = 6.5727 / (u * u * 2.0 * tc_pi);
  else
    k_wind = tc_nothing;
  k_small = 100.0;

  // The level makes the slope variance from k_wind to k_small equal the
  // Cox-Munk mean square slope of this wind.
  double log_range = std::log(k_small / k_wind) * slope_per_log_k_unit;
  if (!(log_range > 0.0)) log_range = 0.0;
  const double cox_munk = u * 0.00508 + 0.003;
  if (log_range > 0.0) {
    amplitude_total = cox_munk / log_range;
    amplitude = amplitude_total;
  } else {
    amplitude_total = 0.0;
    amplitude = 0.0;
  }

  const double c = amplitude * 8.0 * tc_pi * tc_pi * tc_pi * 1.3e-05;
  double resolved = std::log(k_lattice / k_wind) * c;
  if (!(resolved > 0.0)) resolved = 0.003;
  slope_resolved = std::sqrt(resolved);

  slope_per_log_k = c;
  double unresolved = std::log(k_small / k_lattice) * c;
  if (!(unresolved > 0.0)) unresolved = 0.003;
  slope_unresolved = std::sqrt(unresolved * 0.5);
  slope_reference = slope_unresolved;
}

void TCWave_spectrum::set_footprint(double scale) {
  double v;
  if (scale <= 0.0) {
    if (verbose)
      std::cout << "generating mean radiance table "
                << "\n";
    v = std::log(k_small / k_wind) * amplitude * 8.0 * tc_pi * tc_pi * tc_pi * 1.3e-05;
    if (!(v > 0.0)) v = 0.003;
  } else {
    // A footprint scale cells wide leaves ln(scale) more of the spectrum
    // unresolved.
    v = slope_reference * 2.0 * slope_reference + std::log(scale) * slope_per_log_k;
  }
  slope_unresolved = std::pow(v * 0.5, 0.5);
  slope_current = slope_unresolved;
}

void TCWave_spectrum::set_reflection_footprint(double scale) {
  double v;
  if (scale <= 0.0) {
    if (verbose)
      std::cout << "generating mean radiance table "
                << "\n";
    v = std::log(k_small / k_wind) * amplitude * 8.0 * tc_pi * tc_pi * tc_pi * 1.3e-05;
    if (!(v > 0.0)) v = 0.003;
  } else {
    v = slope_reference * 2.0 * slope_reference + std::log(scale) * slope_per_log_k;
  }
  slope_current = std::sqrt(v * 0.5);
}

double TCWave_spectrum::wave_direction(double kx, double ky) {
  if (kx == 0.0) return ky >= 0.0 ? 1.57079632675 : 4.71238898025;
  double theta = std::atan(ky / kx);
  if (kx < 0.0) theta += tc_pi;
  return theta;
}

double TCWave_spectrum::spectrum_value(double kx, double ky) const {
  const double k2 = kx * kx + ky * ky;
  double value = 0.0;
  if (spectrum_type == ocean_spectrum_phillips_smoothed || spectrum_type == ocean_spectrum_glassy) {
    if (k2 > k_cut * k_cut || k2 == 0.0) return 0.0;
    const double c = std::cos(wave_direction(kx, ky) - wind_direction);
    value = 2.6e-05 * c * c / (k2 * k2) * std::exp(-k_wind * k_wind / k2);
  } else if (spectrum_type == ocean_spectrum_phillips) {
    if (k2 > k_cut * k_cut || k2 < k_wind * k_wind) return 0.0;
    const double c = std::cos(wave_direction(kx, ky) - wind_direction);
    value = 2.6e-05 * c * c / (k2 * k2);
  } else if (spectrum_type == ocean_spectrum_flat) {
    return 0.0;
  } else {
    refuse_type();
  }
  // Both lattices carry this band: each takes half the power.
  if (band_low * band_low < k2 && k2 < band_high * band_high) value *= 0.5;
  return value;
}

void TCWave_spectrum::get_size(int& n_x_out, int& n_y_out, double& dx_out, double& dy_out) const {
  n_x_out = n_x;
  n_y_out = n_y;
  dx_out = dx;
  dy_out = dy;
}

void TCWave_spectrum::apply_amplitudes(float* array, int form, double smear_x, double smear_y,
                                       double smear_t) const {
  const int columns = spectrum_columns();
  const int half = n_y / 2;
  for (int i = 0; i < columns; i++) {
    const double kx = i * dk_x;
    for (int j = 0; j < half; j++) {
      // Row j, then its partner n_y - j - 1, whose ky is -(j + 1) dk_y except
      // for the row n_y / 2, which counts as positive.
      const int rows[2] = {j, n_y - j - 1};
      const double ky[2] = {j * dk_y, j == half - 1 ? half * dk_y : -(j + 1) * dk_y};
      for (int r = 0; r < 2; r++) {
        const double density = spectrum_value(kx, ky[r]) * amplitude;
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

void TCWave_spectrum::evolve_heights(double time) {
  update_wind_constants();
  if (!field) return;
  load_and_turn_phases(field, time, cos_wind, sin_wind, height_phases);
  if (spectrum_type != ocean_spectrum_flat) apply_amplitudes(field, height_form, 0.0, 0.0, 0.0);
  make_hermitian(field);
}

void TCWave_spectrum::initialize_field() {
  if (!field) return;
  zero_spectrum(field);
  if (generate == 0) return;
  if (spectrum_type != ocean_spectrum_flat) {
    generator = TCRandom(random_generator_kind);
    generator.seed_generator(seed);
    // Real and imaginary parts each carry half the element's variance.
    const double a = std::pow(dk_area * 0.5, 0.5);
    const long n = 2L * spectrum_columns() * spectrum_rows();
    for (long e = 0; e < n; e++) field[e] = static_cast<float>(generator.gaussian() * a);
  }
  make_hermitian(field);
  write_spectrum_file(field);
}

double TCWave_spectrum::transform_to_lattice() {
  if (field) fourt2(field, n_x, n_y, -1);
  return 0.0;
}

void TCWave_spectrum::evolve_acceleration_into(float* array, double time, double smear_x,
                                               double smear_y, double smear_t) {
  update_wind_constants();
  if (!array) return;
  load_and_turn_phases(array, time, cos_wind, sin_wind, height_phases);
  if (spectrum_type != ocean_spectrum_flat)
    apply_amplitudes(array, acceleration_form, smear_x, smear_y, smear_t);
  make_hermitian(array);
}

void TCWave_spectrum::evolve_potential(double time) {
  update_wind_constants();
  if (!field) return;
  load_and_turn_phases(field, time, cos_wind, sin_wind, potential_phases);
  if (spectrum_type != ocean_spectrum_flat) apply_amplitudes(field, potential_form, 0.0, 0.0, 0.0);
  make_hermitian(field);
  fourt2(field, n_x, n_y, -1);
  std::cout << "upgrading potential field "
            << "\n";
}
