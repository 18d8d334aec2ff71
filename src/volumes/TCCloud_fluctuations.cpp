#include "TCCloud_fluctuations.h"

#include <cmath>
#include <new>

#include "TCLattice_file.h"
#include "fourt.h"

namespace {

// The signed frequency of FFT index m on a length n: m folded to -n/2..n/2.
int folded_index(int m, int n) {
  return m <= n / 2 ? m : m - n;
}

// Sets values to mean 0 and standard deviation 1 (sums in double). Returns 0
// and sets them all to 0 when they do not vary.
int normalise(float* values, long long count) {
  double sum = 0.0;
  for (long long c = 0; c < count; c++) sum += values[c];
  const double mean = sum / count;
  double squares = 0.0;
  for (long long c = 0; c < count; c++) {
    const double d = values[c] - mean;
    squares += d * d;
  }
  const double width = std::sqrt(squares / count);
  if (!(width > 0.0)) {
    for (long long c = 0; c < count; c++) values[c] = 0.0f;
    return 0;
  }
  for (long long c = 0; c < count; c++) values[c] = static_cast<float>((values[c] - mean) / width);
  return 1;
}

int parameters_are_valid(double power, double length) {
  return power > 0.0 && std::isfinite(power) && std::isfinite(length);
}

}  // namespace

TCCloud_fluctuations::TCCloud_fluctuations()
    : n_x(0),
      n_y(0),
      n_z(0),
      sigma(0.0),
      power_law(1.0),
      length_scale(2.0),
      seed(1),
      generator(),
      g(nullptr),
      f(nullptr) {}

TCCloud_fluctuations::~TCCloud_fluctuations() {
  free_arrays();
}

void TCCloud_fluctuations::free_arrays() {
  delete[] g;
  delete[] f;
  g = nullptr;
  f = nullptr;
}

int TCCloud_fluctuations::make_gaussian_part(int nx, int ny, int nz, double power, double length,
                                             float* out, int& flat) {
  const long long count = static_cast<long long>(nx) * ny * nz;
  const int longest = nx > ny ? (nx > nz ? nx : nz) : (ny > nz ? ny : nz);
  // The complex form takes any length, odd ones included; the scratch is
  // sized so that no prime factor of a length can exceed it.
  float* data = new (std::nothrow) float[2 * count];
  float* work = new (std::nothrow) float[4 * longest];
  if (data == nullptr || work == nullptr) {
    delete[] data;
    delete[] work;
    return 0;
  }
  // Real white noise, x fastest.
  for (long long c = 0; c < count; c++) {
    data[2 * c] = static_cast<float>(generator.gaussian());
    data[2 * c + 1] = 0.0f;
  }
  const int n[3] = {nx, ny, nz};
  fourt(data, n, 3, -1, 1, work, longest);

  // Amplitude sqrt(|k|^-power) inside the band, 0 outside. The filter is even
  // in k, so the noise's Hermitian symmetry survives and the result is real.
  // A wavelength of exactly length_scale is kept despite rounding.
  const double cutoff_squared = length > 0.0 ? (1.0 / length) * (1.0 / length) : 1.0e300;
  const double allowance = 1.0 + 1.0e-12;
  long long modes = 0;
  for (int k = 0; k < nz; k++) {
    const double kz = static_cast<double>(folded_index(k, nz)) / nz;
    for (int j = 0; j < ny; j++) {
      const double ky = static_cast<double>(folded_index(j, ny)) / ny;
      for (int i = 0; i < nx; i++) {
        const double kx = static_cast<double>(folded_index(i, nx)) / nx;
        const double k_squared = kx * kx + ky * ky + kz * kz;
        const long long c = i + static_cast<long long>(nx) * (j + static_cast<long long>(ny) * k);
        double amplitude = 0.0;
        if (k_squared > 0.0 && k_squared <= cutoff_squared * allowance) {
          // sqrt(|k|^-power) = (k^2)^(-power / 4)
          amplitude = std::pow(k_squared, -0.25 * power);
          modes++;
        }
        data[2 * c] = static_cast<float>(data[2 * c] * amplitude);
        data[2 * c + 1] = static_cast<float>(data[2 * c + 1] * amplitude);
      }
    }
  }
  fourt(data, n, 3, 1, 1, work, longest);
  for (long long c = 0; c < count; c++) out[c] = data[2 * c];
  delete[] data;
  delete[] work;
  flat = modes == 0 || !normalise(out, count);
  return 1;
}

void TCCloud_fluctuations::make_values() {
  const long long count = cell_count();
  const double shift = 0.5 * sigma * sigma;
  for (long long c = 0; c < count; c++) f[c] = static_cast<float>(std::exp(sigma * g[c] - shift));
}

int TCCloud_fluctuations::generate(int n_x_in, int n_y_in, int n_z_in, double power_law_in,
                                   double log_normal_width, double length_scale_in, int seed_in) {
  if (!parameters_are_valid(power_law_in, length_scale_in) || !std::isfinite(log_normal_width)) {
    return 0;
  }
  if (!TCLattice_file::sizes_are_valid(n_x_in, n_y_in, n_z_in)) return 0;
  const long long count = static_cast<long long>(n_x_in) * n_y_in * n_z_in;
  float* new_g = new (std::nothrow) float[count];
  float* new_f = new (std::nothrow) float[count];
  if (new_g == nullptr || new_f == nullptr) {
    delete[] new_g;
    delete[] new_f;
    return 0;
  }
  // The generator is only reseeded once memory is there, so that a refusal
  // leaves its stream where it was.
  TCRandom saved = generator;
  generator.seed_generator(seed_in);
  int flat = 0;
  if (!make_gaussian_part(n_x_in, n_y_in, n_z_in, power_law_in, length_scale_in, new_g, flat)) {
    generator = saved;
    delete[] new_g;
    delete[] new_f;
    return 0;
  }
  free_arrays();
  g = new_g;
  f = new_f;
  n_x = n_x_in;
  n_y = n_y_in;
  n_z = n_z_in;
  power_law = power_law_in;
  length_scale = length_scale_in;
  seed = seed_in;
  sigma = flat ? 0.0 : std::fabs(log_normal_width);
  make_values();
  return 1;
}

int TCCloud_fluctuations::set_spectrum(double power_law_in, double length_scale_in, int seed_in) {
  if (!parameters_are_valid(power_law_in, length_scale_in)) return 0;
  power_law = power_law_in;
  length_scale = length_scale_in;
  seed = seed_in;
  generator.seed_generator(seed);
  return 1;
}

int TCCloud_fluctuations::evolve(double a) {
  if (g == nullptr || !(a >= 0.0 && a <= 1.0)) return 0;
  const long long count = cell_count();
  float* fresh = new (std::nothrow) float[count];
  if (fresh == nullptr) return 0;
  // A field read from a file draws from its spectrum's seed.
  if (!generator.get_initialized()) generator.seed_generator(seed);
  int flat = 0;
  if (!make_gaussian_part(n_x, n_y, n_z, power_law, length_scale, fresh, flat)) {
    delete[] fresh;
    return 0;
  }
  const double b = std::sqrt(1.0 - a * a);
  for (long long c = 0; c < count; c++) fresh[c] = static_cast<float>(a * g[c] + b * fresh[c]);
  delete[] g;
  g = fresh;
  if (!normalise(g, count)) sigma = 0.0;
  make_values();
  return 1;
}

double TCCloud_fluctuations::evolve_factor(double update_time, double sigma_time) {
  if (!(sigma_time > 0.0)) return 0.0;
  const double a = std::exp(-update_time / sigma_time);
  if (!(a >= 0.0)) return 0.0;
  return a > 1.0 ? 1.0 : a;
}

double TCCloud_fluctuations::value_at(double u, double v, double w) const {
  if (f == nullptr || !std::isfinite(u) || !std::isfinite(v) || !std::isfinite(w)) return 1.0;
  const double at[3] = {u, v, w};
  const int n[3] = {n_x, n_y, n_z};
  int low[3];
  int high[3];
  double t[3];
  for (int d = 0; d < 3; d++) {
    double p = std::fmod(at[d], static_cast<double>(n[d]));
    if (p < 0.0) p += n[d];
    // Rounding can carry a small negative remainder up to the period itself.
    if (!(p < n[d])) p = 0.0;
    low[d] = static_cast<int>(std::floor(p));
    if (low[d] > n[d] - 1) low[d] = n[d] - 1;
    t[d] = p - low[d];
    high[d] = low[d] + 1 == n[d] ? 0 : low[d] + 1;
  }
  double sum = 0.0;
  for (int corner = 0; corner < 8; corner++) {
    double weight = 1.0;
    int index[3];
    for (int d = 0; d < 3; d++) {
      const int upper = (corner >> d) & 1;
      index[d] = upper ? high[d] : low[d];
      weight *= upper ? t[d] : 1.0 - t[d];
    }
    if (weight == 0.0) continue;
    sum += weight * f[index[0] + static_cast<long long>(n_x) *
                                     (index[1] + static_cast<long long>(n_y) * index[2])];
  }
  return sum;
}

float TCCloud_fluctuations::value(int i, int j, int k) const {
  if (f == nullptr) return 1.0f;
  i %= n_x;
  if (i < 0) i += n_x;
  j %= n_y;
  if (j < 0) j += n_y;
  k %= n_z;
  if (k < 0) k += n_z;
  return f[i + static_cast<long long>(n_x) * (j + static_cast<long long>(n_y) * k)];
}

int TCCloud_fluctuations::write_file(const char* path) const {
  if (f == nullptr) return 0;
  return TCLattice_file::write(path, n_x, n_y, n_z, f);
}

int TCCloud_fluctuations::read_file(const char* path) {
  int nx = 0, ny = 0, nz = 0;
  if (!TCLattice_file::read_sizes(path, nx, ny, nz)) return 0;
  const long long count = static_cast<long long>(nx) * ny * nz;
  float* new_g = new (std::nothrow) float[count];
  float* new_f = new (std::nothrow) float[count];
  int ok = new_g != nullptr && new_f != nullptr;
  if (ok) ok = TCLattice_file::read(path, nx, ny, nz, new_f);
  for (long long c = 0; ok && c < count; c++) {
    if (!(new_f[c] > 0.0f) || !std::isfinite(new_f[c])) ok = 0;
  }
  if (!ok) {
    delete[] new_g;
    delete[] new_f;
    return 0;
  }
  // ln f in double; a constant file is told apart exactly, since its mean
  // need not round back to its value.
  int constant = 1;
  double sum = 0.0;
  for (long long c = 0; c < count; c++) {
    if (new_f[c] != new_f[0]) constant = 0;
    sum += std::log(static_cast<double>(new_f[c]));
  }
  const double mean = sum / count;
  double squares = 0.0;
  for (long long c = 0; c < count; c++) {
    const double d = std::log(static_cast<double>(new_f[c])) - mean;
    squares += d * d;
  }
  const double width = constant ? 0.0 : std::sqrt(squares / count);
  for (long long c = 0; c < count; c++) {
    new_g[c] = width > 0.0
                   ? static_cast<float>((std::log(static_cast<double>(new_f[c])) - mean) / width)
                   : 0.0f;
  }
  free_arrays();
  g = new_g;
  f = new_f;
  n_x = nx;
  n_y = ny;
  n_z = nz;
  sigma = width;
  return 1;
}

int TCCloud_fluctuations::copy_from(const TCCloud_fluctuations& other) {
  if (&other == this) return 1;
  float* new_g = nullptr;
  float* new_f = nullptr;
  if (other.f != nullptr) {
    const long long count = other.cell_count();
    new_g = new (std::nothrow) float[count];
    new_f = new (std::nothrow) float[count];
    if (new_g == nullptr || new_f == nullptr) {
      delete[] new_g;
      delete[] new_f;
      return 0;
    }
    for (long long c = 0; c < count; c++) {
      new_g[c] = other.g[c];
      new_f[c] = other.f[c];
    }
  }
  free_arrays();
  g = new_g;
  f = new_f;
  n_x = other.n_x;
  n_y = other.n_y;
  n_z = other.n_z;
  sigma = other.sigma;
  power_law = other.power_law;
  length_scale = other.length_scale;
  seed = other.seed;
  generator = other.generator;
  return 1;
}
