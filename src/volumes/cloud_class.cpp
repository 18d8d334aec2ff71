#include "cloud_class.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <new>

#include "Cloud_input.h"
#include "TCCloud_fluctuations.h"
#include "TCLattice_file.h"
#include "TCSettings.h"

namespace {

void cloud_failed(const char* words) {
  std::cout << words << "\n";
  std::exit(1);
}

// Index and weight of the lower neighbour along one axis for a place u in
// lattice steps, clamped to the lattice.
void lower_neighbour(double u, int n, int& i0, double& f) {
  if (u < 0.0) u = 0.0;
  if (u > n - 1) u = n - 1;
  i0 = static_cast<int>(std::floor(u));
  if (i0 > n - 2) i0 = n - 2;
  if (i0 < 0) i0 = 0;
  f = n > 1 ? u - i0 : 0.0;
}

}  // namespace

cloud_class::cloud_class(const Cloud_input& input)
    : TCVolume_Object(input),
      density_format(input.density_format),
      small_scale_fluctuations(input.small_scale_fluctuations),
      relative_scale(input.relative_scale),
      reference_time(input.reference_time),
      update_time(input.update_time),
      sigma_time(input.sigma_time),
      min_density(0.0),
      max_density(0.0),
      density(nullptr),
      extinction(nullptr),
      state_now(nullptr),
      state_next(nullptr),
      state_zero(nullptr),
      blended(nullptr),
      current_step(0),
      interpolation(0.0),
      power_law_(input.power_law),
      length_cells_(0.0),
      seed_(input.random_seed),
      log_normal_width_(input.log_normal_width) {
  std::snprintf(density_file, sizeof(density_file), "%s", input.density_file);
  for (int a = 0; a < 3; a++) {
    ss_n[a] = 1;
    ss_cell[a] = 0.0;
  }
  const long n_points = static_cast<long>(n_x) * n_y * n_z;
  density = new (std::nothrow) float[n_points];
  extinction = new (std::nothrow) float[n_points]();
  if (density == nullptr || extinction == nullptr) cloud_failed("unable to allocate cloud ");
  read_density(input);
  if (small_scale_fluctuations != Cloud_input::fluctuations_no) make_fluctuations(input);
  density_changed = 1;
}

cloud_class::~cloud_class() {
  delete[] density;
  delete[] extinction;
  delete state_now;
  delete state_next;
  delete state_zero;
  delete[] blended;
}

void cloud_class::read_density(const Cloud_input& input) {
  const long n_points = static_cast<long>(n_x) * n_y * n_z;
  if (input.density_format == Cloud_input::density_uniform) {
    std::ifstream in(input.density_file);
    double value = 0.0;
    if (!in || !(in >> value)) cloud_failed("unable to process cloud data ");
    for (long i = 0; i < n_points; i++) density[i] = static_cast<float>(value);
  } else if (!TCLattice_file::read(input.density_file, n_x, n_y, n_z, density)) {
    cloud_failed("unable to process cloud data ");
  }
  min_density = max_density = n_points > 0 ? density[0] : 0.0;
  for (long i = 0; i < n_points; i++) {
    // A value that is not a number, or at or below the threshold, is empty.
    if (!(density[i] > threshold_density)) density[i] = 0.0f;
    if (density[i] < min_density) min_density = density[i];
    if (density[i] > max_density) max_density = density[i];
  }
}

void cloud_class::make_fluctuations(const Cloud_input& input) {
  if (!(input.power_law > 0.0)) cloud_failed("small scale power must be positive ");
  ss_n[0] = input.small_scale_n_x > 0 ? input.small_scale_n_x : 1;
  ss_n[1] = input.small_scale_n_y > 0 ? input.small_scale_n_y : 1;
  ss_n[2] = input.small_scale_n_z > 0 ? input.small_scale_n_z : 1;
  const double scale = relative_scale > 0.0 ? relative_scale : 1.0;
  double smallest_cell = 0.0;
  for (int a = 0; a < 3; a++) {
    ss_cell[a] = length[a] * scale / ss_n[a];
    if (ss_cell[a] > 0.0 && (smallest_cell == 0.0 || ss_cell[a] < smallest_cell))
      smallest_cell = ss_cell[a];
  }
  // length_scale is in metres; the field takes it in its own cells.
  length_cells_ = smallest_cell > 0.0 ? input.length_scale / smallest_cell : 0.0;

  state_now = new (std::nothrow) TCCloud_fluctuations;
  state_next = new (std::nothrow) TCCloud_fluctuations;
  const long long cells = static_cast<long long>(ss_n[0]) * ss_n[1] * ss_n[2];
  if (state_now == nullptr || state_next == nullptr || cells > (1LL << 28))
    cloud_failed("unable to allocate small scale fluctuation field");
  blended = new (std::nothrow) float[cells];
  if (blended == nullptr)
    cloud_failed("unable to allocate random fluctuation field in cloud class");

  if (input.generate_file_from_scratch) {
    if (!state_now->generate(ss_n[0], ss_n[1], ss_n[2], power_law_, log_normal_width_,
                             length_cells_, seed_))
      cloud_failed("unable to allocate random fluctuation field in cloud class");
    std::cout << "writing to " << input.small_scale_file_name << "\n";
    if (!state_now->write_file(input.small_scale_file_name))
      cloud_failed("unable to process cloud data ");
  } else {
    if (!state_now->read_file(input.small_scale_file_name) || state_now->n_x != ss_n[0] ||
        state_now->n_y != ss_n[1] || state_now->n_z != ss_n[2])
      cloud_failed("unable to process cloud data ");
    state_now->set_spectrum(power_law_, length_cells_, seed_);
  }
  if (small_scale_fluctuations == Cloud_input::fluctuations_dynamic) {
    state_zero = new (std::nothrow) TCCloud_fluctuations;
    if (state_zero == nullptr || !state_zero->copy_from(*state_now))
      cloud_failed("unable to allocate small scale fluctuation field");
    restart_chain();
  } else {
    blend(0.0);
  }

  if (small_scale_fluctuations == Cloud_input::fluctuations_yes_dump_density) {
    const long n_points = static_cast<long>(n_x) * n_y * n_z;
    float* dumped = new (std::nothrow) float[n_points];
    if (dumped == nullptr) cloud_failed(" memory allocation of cloud failed ");
    for (int k = 0; k < n_z; k++) {
      for (int j = 0; j < n_y; j++) {
        for (int i = 0; i < n_x; i++) {
          const long idx = i + static_cast<long>(n_x) * (j + static_cast<long>(n_y) * k);
          const TCVector p(-length.x / 2 + i * spacing[0], -length.y / 2 + j * spacing[1],
                           -length.z / 2 + k * spacing[2]);
          dumped[idx] = static_cast<float>(density[idx] * blended_at(p));
        }
      }
    }
    const int written =
        TCLattice_file::write(input.density_with_fluctuation_file, n_x, n_y, n_z, dumped);
    delete[] dumped;
    if (!written) cloud_failed("unable to process cloud data ");
  }
}

// State 0 is the field as made or read; state 1 follows it by one chunk.
void cloud_class::restart_chain() {
  if (!state_next->copy_from(*state_now) ||
      !state_next->evolve(TCCloud_fluctuations::evolve_factor(update_time, sigma_time)))
    cloud_failed("unable to allocate random fluctuation field in cloud class");
  current_step = 0;
  blend(0.0);
}

void cloud_class::blend(double r) {
  interpolation = r;
  const long long cells = static_cast<long long>(ss_n[0]) * ss_n[1] * ss_n[2];
  const float* a = state_now->values();
  const float* b = state_next != nullptr && state_next->has_field() ? state_next->values() : a;
  for (long long c = 0; c < cells; c++)
    blended[c] = static_cast<float>((1.0 - r) * a[c] + r * b[c]);
}

void cloud_class::evolve_cloud(double t) {
  std::cout << "evolving cloud to time " << t << "\n";
  if (small_scale_fluctuations == Cloud_input::fluctuations_dynamic && t >= reference_time &&
      update_time > 0.0) {
    const double steps = std::floor((t - reference_time) / update_time);
    const int step = steps < 1e9 ? static_cast<int>(steps) : 1000000000;
    const double r = (t - (reference_time + step * update_time)) / update_time;
    if (verbose) {
      std::cout << "step of time " << step << "\n";
      std::cout << "current_step " << current_step << "\n";
      std::cout << "TCInterpolation " << r << "\n";
    }
    if (step != current_step) {
      // The chain only runs forward from the seed: an earlier step starts
      // it again, so that a frame looks the same whatever ran before it.
      if (step < current_step) {
        if (!state_now->copy_from(*state_zero)) cloud_failed(" memory allocation of cloud failed ");
        restart_chain();
      }
      while (current_step < step) {
        if (verbose)
          std::cout << "evolving one chunk "
                    << "\n";
        TCCloud_fluctuations* old = state_now;
        state_now = state_next;
        state_next = old;
        if (!state_next->copy_from(*state_now) ||
            !state_next->evolve(TCCloud_fluctuations::evolve_factor(update_time, sigma_time)))
          cloud_failed("unable to allocate random fluctuation field in cloud class");
        current_step++;
      }
    }
    // The sun's column is the lattice's alone: the field moving on leaves
    // it as it is.
    blend(r);
  }
  std::cout << " done evolving cloud "
            << "\n";
}

void cloud_class::set_time(double t) {
  TCVolume_Object::set_time(t);
  if (small_scale_fluctuations == Cloud_input::fluctuations_dynamic) evolve_cloud(t);
}

void cloud_class::print_dimensions() {
  TCVolume_Object::print_dimensions();
  std::cout << "CLOUD PARAMETERS"
            << "\n";
  std::cout << "lwc file              " << density_file << "\n";
  std::cout << "minimum density       " << min_density << "\n";
  std::cout << "maximum density       " << max_density << "\n";
  const char* word = Cloud_input::fluctuation_word(small_scale_fluctuations);
  std::cout << "small scale fluctuations " << (word != nullptr ? word : "") << "\n";
  if (small_scale_fluctuations == Cloud_input::fluctuations_dynamic) {
    std::cout << "small scale reference time  " << reference_time << "\n";
    std::cout << "small scale update time     " << update_time << "\n";
    std::cout << "small scale sigma           " << sigma_time << "\n";
  }
}

// ---- Look-ups ----

double cloud_class::density_of_index(long index) {
  return density[index];
}

void cloud_class::set_extinction(long index, double value) {
  extinction[index] = static_cast<float>(value);
}

double cloud_class::get_extinction(long index) {
  return extinction[index];
}

void cloud_class::lattice_at(const TCVector& p, double& rho, double& column) const {
  rho = 0.0;
  column = 0.0;
  const int n[3] = {n_x, n_y, n_z};
  const long stride[3] = {1, n_x, static_cast<long>(n_x) * n_y};
  int i0[3];
  double f[3];
  long step[3];
  for (int a = 0; a < 3; a++) {
    const double half = length[a] / 2;
    if (!(p[a] >= -half * 1.0001 && p[a] <= half * 1.0001)) return;
    const double u = spacing[a] > 0.0 ? (p[a] + half) / spacing[a] : 0.0;
    lower_neighbour(u, n[a], i0[a], f[a]);
    // A lattice one point thick has no upper neighbour.
    step[a] = n[a] > 1 ? stride[a] : 0;
  }
  const long base = i0[0] + stride[1] * i0[1] + stride[2] * i0[2];
  const long c[8] = {base,
                     base + step[0],
                     base + step[1],
                     base + step[0] + step[1],
                     base + step[2],
                     base + step[0] + step[2],
                     base + step[1] + step[2],
                     base + step[0] + step[1] + step[2]};
  const double gx = 1.0 - f[0], gy = 1.0 - f[1], gz = 1.0 - f[2];
  const double w[8] = {gx * gy * gz,   f[0] * gy * gz,   gx * f[1] * gz,   f[0] * f[1] * gz,
                       gx * gy * f[2], f[0] * gy * f[2], gx * f[1] * f[2], f[0] * f[1] * f[2]};
  for (int k = 0; k < 8; k++) {
    rho += w[k] * density[c[k]];
    column += w[k] * extinction[c[k]];
  }
}

double cloud_class::blended_at(const TCVector& p) const {
  if (blended == nullptr) return 1.0;
  // Periodic trilinear look-up in the field's cells.
  int i0[3];
  double f[3];
  for (int a = 0; a < 3; a++) {
    const double u = ss_cell[a] > 0.0 ? (p[a] + length[a] / 2) / ss_cell[a] : 0.0;
    const double fl = std::floor(u);
    f[a] = u - fl;
    double wrapped = std::fmod(fl, static_cast<double>(ss_n[a]));
    if (wrapped < 0.0) wrapped += ss_n[a];
    i0[a] = static_cast<int>(wrapped);
    if (i0[a] >= ss_n[a] || i0[a] < 0) i0[a] = 0;
  }
  double value = 0.0;
  for (int c = 0; c < 8; c++) {
    double w = 1.0;
    int idx[3];
    for (int a = 0; a < 3; a++) {
      const int up = (c >> a) & 1;
      w *= up ? f[a] : 1.0 - f[a];
      idx[a] = i0[a] + up;
      if (idx[a] >= ss_n[a]) idx[a] = 0;
    }
    if (w == 0.0) continue;
    value += w * blended[idx[0] + static_cast<long>(ss_n[0]) *
                                      (idx[1] + static_cast<long>(ss_n[1]) * idx[2])];
  }
  return value;
}

double cloud_class::density_point(const TCVector& point, double& rho, double& column) {
  lattice_at(point, rho, column);
  if (rho > 0.0 && blended != nullptr) rho *= blended_at(point);
  return rho;
}

double cloud_class::density_lattice(const TCVector& point, double& rho) {
  double column = 0.0;
  lattice_at(point, rho, column);
  return rho;
}

double cloud_class::small_scale_factor() {
  if (blended == nullptr) return 0.0;
  const double smallest = smallest_spacing();
  double cell = 0.0;
  for (int a = 0; a < 3; a++) {
    if (ss_cell[a] > 0.0 && (cell == 0.0 || ss_cell[a] < cell)) cell = ss_cell[a];
  }
  if (!(smallest > 0.0) || !(cell > 0.0)) return 0.0;
  const double factor = cell / smallest;
  return factor < 1.0 ? factor : 1.0;
}
