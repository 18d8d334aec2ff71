#include "TCSurface_field.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>

#include "TCByte_order.h"
#include "TCConstants.h"
#include "TCData_file.h"

namespace {

// Floats moved through the file per read or write call.
const int file_chunk = 1024;

void exit_with(const char* message) {
  std::cout << message << "\n";
  std::cout.flush();
  std::exit(1);
}

double* new_column_terms(int count) {
  return new (std::nothrow) double[count > 0 ? count : 1];
}

int to_file_order(float value) {
  int bits;
  std::memcpy(&bits, &value, 4);
  swap_long(bits);
  return bits;
}

float from_file_order(int bits) {
  swap_long(bits);
  float value;
  std::memcpy(&value, &bits, 4);
  return value;
}

double sinc(double u) {
  if (u == 0.0) return 1.0;
  return std::sin(u) / u;
}

// Turns one element (a, b) to time t: w in radians per second, s the sign
// that sends the wave into the chosen half plane.
void turn_element(float* e, double w, double t, double s, int potential) {
  const double a = e[0];
  const double b = e[1];
  if (potential) {
    if (!(w > 0.0)) {
      e[0] = 0.0f;
      e[1] = 0.0f;
      return;
    }
    const double sw = std::sin(w * t) / w;
    const double cw = std::cos(w * t) / w;
    e[0] = static_cast<float>(a * sw - s * b * cw);
    e[1] = static_cast<float>(b * sw + s * a * cw);
    return;
  }
  const double c = std::cos(w * t);
  const double sn = std::sin(w * t);
  e[0] = static_cast<float>(a * c + s * b * sn);
  e[1] = static_cast<float>(b * c - s * a * sn);
}

}  // namespace

TCSurface_field::TCSurface_field(int kind_in, float* field_in, int n_x_in, int n_y_in, double dx_in,
                                 double dy_in)
    : kind(kind_in),
      n_x(n_x_in),
      n_y(n_y_in),
      dx(dx_in),
      dy(dy_in),
      field(field_in),
      generate(0),
      reference_time(0.0) {
  copy_text(spectrum_file, "spectra.dat", sizeof(spectrum_file));
}

TCSurface_field::~TCSurface_field() {}

void TCSurface_field::evolve_heights(double) {}

void TCSurface_field::initialize_field() {}

double TCSurface_field::transform_to_lattice() {
  zero_buffer(field);
  return 0.0;
}

void TCSurface_field::evolve_acceleration_into(float* array, double, double, double, double) {
  zero_buffer(array);
}

void TCSurface_field::evolve_potential(double) {
  zero_buffer(field);
}

int TCSurface_field::moving_offset(double&, double&, double) const {
  return 0;
}

void TCSurface_field::set_spectrum_file(const char* name) {
  copy_text(spectrum_file, name ? name : "", sizeof(spectrum_file));
}

long TCSurface_field::buffer_floats() const {
  if (n_x < 1 || n_y < 1) return 0;
  return (static_cast<long>(n_x) + 2) * n_y;
}

int TCSurface_field::spectrum_columns() const {
  if (n_x < 1 || n_y < 1) return 0;
  return n_x / 2 + 1;
}

int TCSurface_field::spectrum_rows() const {
  if (n_x < 1 || n_y < 1) return 0;
  return n_y;
}

void TCSurface_field::zero_buffer(float* array) const {
  if (!array) return;
  const long n = buffer_floats();
  for (long e = 0; e < n; e++) array[e] = 0.0f;
}

void TCSurface_field::zero_spectrum(float* array) const {
  if (!array) return;
  const long n = 2L * spectrum_columns() * spectrum_rows();
  for (long e = 0; e < n; e++) array[e] = 0.0f;
}

void TCSurface_field::make_hermitian(float* array) const {
  const int nkx = spectrum_columns();
  const int nky = spectrum_rows();
  if (!array || nkx < 1 || nky < 1) return;
  const long half = n_y / 2;
  const long last = nkx - 1;
  array[2 * (0 + nkx * 0L) + 1] = 0.0f;
  array[2 * (0 + nkx * half) + 1] = 0.0f;
  array[2 * (last + nkx * 0L) + 1] = 0.0f;
  array[2 * (last + nkx * half) + 1] = 0.0f;
  for (long j = 1; j < half; j++) {
    const long columns[2] = {0, last};
    for (int c = 0; c < 2; c++) {
      const long from = 2 * (columns[c] + nkx * j);
      const long to = 2 * (columns[c] + nkx * (n_y - j));
      array[to] = array[from];
      array[to + 1] = -array[from + 1];
    }
  }
}

void TCSurface_field::write_spectrum_file(const float* array) const {
  const int nkx = spectrum_columns();
  const int nky = spectrum_rows();
  std::ofstream out(spectrum_file, std::ios::out | std::ios::binary | std::ios::trunc);
  if (out) {
    int header[2] = {nkx, nky};
    swap_long(header[0]);
    swap_long(header[1]);
    out.write(reinterpret_cast<const char*>(header), sizeof(header));
    int chunk[file_chunk];
    const long n = array ? 2L * nkx * nky : 0;
    for (long start = 0; start < n && out; start += file_chunk) {
      const long count = n - start < file_chunk ? n - start : file_chunk;
      for (long e = 0; e < count; e++) chunk[e] = to_file_order(array[start + e]);
      out.write(reinterpret_cast<const char*>(chunk), count * 4);
    }
    out.close();
  }
  if (!out) {
    std::cout << "unable to write to " << spectrum_file << "\n";
    std::cout.flush();
    std::exit(1);
  }
}

// A file too short for its own dimensions counts as having wrong ones.
int TCSurface_field::read_spectrum_file(float* array) const {
  std::ifstream in(spectrum_file, std::ios::in | std::ios::binary);
  if (!in) {
    std::cout << "unable to open " << spectrum_file << "\n";
    return 0;
  }
  int header[2] = {0, 0};
  in.read(reinterpret_cast<char*>(header), sizeof(header));
  if (in.gcount() == static_cast<std::streamsize>(sizeof(header))) {
    swap_long(header[0]);
    swap_long(header[1]);
  } else {
    header[0] = 0;
    header[1] = 0;
  }
  const int nkx = spectrum_columns();
  const int nky = spectrum_rows();
  int whole = in && header[0] == nkx && header[1] == nky;
  const long n = 2L * nkx * nky;
  int chunk[file_chunk];
  for (long start = 0; start < n && whole; start += file_chunk) {
    const long count = n - start < file_chunk ? n - start : file_chunk;
    in.read(reinterpret_cast<char*>(chunk), count * 4);
    if (in.gcount() != count * 4) whole = 0;
    for (long e = 0; e < count && whole; e++) array[start + e] = from_file_order(chunk[e]);
  }
  if (!whole) {
    std::cout << "dimensions on " << spectrum_file << " are incorrect"
              << "\n"
              << header[0] << " x " << header[1] << "\n";
    return 0;
  }
  return 1;
}

void TCSurface_field::load_and_turn_phases(float* array, double t, double cos_dir, double sin_dir,
                                           int phase_form) const {
  if (!array) return;
  const int nkx = spectrum_columns();
  double* kx = new_column_terms(nkx);
  if (!kx) exit_with("unable to allocate kx");
  double* kx_X_xwind = new_column_terms(nkx);
  if (!kx_X_xwind) {
    delete[] kx;
    exit_with("unable to allocate kx_X_xwind");
  }
  double* kx_X_kx = new_column_terms(nkx);
  if (!kx_X_kx) {
    delete[] kx;
    delete[] kx_X_xwind;
    exit_with("unable to allocate kx_X_kx");
  }

  // Radians per metre.
  const double dk_x = 1.0 / (n_x * dx);
  for (int i = 0; i < nkx; i++) {
    kx[i] = dk_x * tc_two_pi * i;
    kx_X_xwind[i] = kx[i] * cos_dir;
    kx_X_kx[i] = kx[i] * kx[i];
  }

  if (!read_spectrum_file(array)) {
    delete[] kx;
    delete[] kx_X_xwind;
    delete[] kx_X_kx;
    std::cout.flush();
    std::exit(1);
  }

  const int potential = phase_form == potential_phases;
  const double dk_y_rad = 1.0 / (n_y * dy) * tc_two_pi;
  const int half = n_y / 2;
  // Deep water: w = 3.132 (K^2)^0.25, K angular, 3.132 standing for sqrt(9.81).
  for (int i = 0; i < nkx; i++) {
    const double ky = 0.0;
    const double w = 3.132 * std::pow(kx_X_kx[i] + ky * ky, 0.25);
    const double s = kx_X_xwind[i] + ky * sin_dir >= 0.0 ? 1.0 : -1.0;
    turn_element(array + 2L * i, w, t, s, potential);
  }
  if (half > 0) {
    const double ky = dk_y_rad * half;
    for (int i = 0; i < nkx; i++) {
      const double w = 3.132 * std::pow(kx_X_kx[i] + ky * ky, 0.25);
      const double s = kx_X_xwind[i] + ky * sin_dir >= 0.0 ? 1.0 : -1.0;
      turn_element(array + 2 * (i + nkx * static_cast<long>(half)), w, t, s, potential);
    }
  }
  for (int j = 1; j < half; j++) {
    const double ky = dk_y_rad * j;
    for (int i = 0; i < nkx; i++) {
      const double w = 3.132 * std::pow(kx_X_kx[i] + ky * ky, 0.25);
      const double s_up = kx_X_xwind[i] + ky * sin_dir >= 0.0 ? 1.0 : -1.0;
      const double s_down = kx_X_xwind[i] - ky * sin_dir >= 0.0 ? 1.0 : -1.0;
      turn_element(array + 2 * (i + nkx * static_cast<long>(j)), w, t, s_up, potential);
      turn_element(array + 2 * (i + nkx * static_cast<long>(n_y - j)), w, t, s_down, potential);
    }
  }

  delete[] kx;
  delete[] kx_X_xwind;
  delete[] kx_X_kx;
}

double TCSurface_field::height_factor(double density) {
  return std::pow(density, 0.5);
}

double TCSurface_field::acceleration_factor(double density, double kx, double ky, double smear_x,
                                            double smear_y, double smear_t) {
  const double k2 = kx * kx + ky * ky;
  double factor = -6.2831853 * std::sqrt(k2 * density * 9.81 * 9.81) * sinc(tc_pi * kx * smear_x) *
                  sinc(tc_pi * ky * smear_y);
  if (smear_t > 0.0) {
    // The wave's frequency in the engine's own form.
    const double f = std::sqrt(k2 * tc_two_pi * 9.81);
    factor *= sinc(tc_pi * f * smear_t);
  }
  return factor;
}

double TCSurface_field::potential_factor(double density) {
  return std::pow(density, 0.5) * -9.81;
}
