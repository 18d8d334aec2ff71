#include "TCWhitecaps.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>

#include "TCByte_order.h"
#include "TCData_file.h"
#include "TCFluctuation_field.h"
#include "TCSettings.h"
#include "TCSpectrum.h"
#include "ocean_input.h"

namespace {

const double standard_gravity = 9.81;  // m/s^2: samples are in units of g
const double whitecap_pi = 3.1415926535;
const float whitecap_pi_float = 3.1415927f;
const double no_limit = 99999999.0;
const int static_state_magic = 9811;
// The foam's reflectivity is held below this once fluctuations multiply it.
const double reflectivity_cap = 0.95;
// Beyond these the tables could not be held anyway; they keep the counts
// within an int.
const int most_grids = 1000;
const double most_nodes = 1.0e9;
// More steps than an int counts cannot be run.
const double most_steps = 2.0e9;

void fatal(const char* words) {
  std::cout << words << "\n";
  std::cout.flush();
  std::exit(1);
}

void fatal(const char* words, const char* name) {
  std::cout << words << name << "\n";
  std::cout.flush();
  std::exit(1);
}

// Nodes along one side: the length's whole intervals, at least one (the
// length then becomes one interval).
int node_count(double& length, double interval) {
  const double count = std::trunc(length / interval);
  if (!(count >= 1.0)) {
    length = interval;
    return 1;
  }
  return count > most_nodes ? static_cast<int>(most_nodes) : static_cast<int>(count);
}

void put_int(std::ostream& out, int value) {
  swap_long(value);
  out.write(reinterpret_cast<const char*>(&value), 4);
}

void put_float(std::ostream& out, float value) {
  int bits;
  std::memcpy(&bits, &value, 4);
  put_int(out, bits);
}

int get_int(std::istream& in, int& value) {
  if (!in.read(reinterpret_cast<char*>(&value), 4)) return 0;
  swap_long(value);
  return 1;
}

int get_float(std::istream& in, float& value) {
  int bits;
  if (!get_int(in, bits)) return 0;
  std::memcpy(&value, &bits, 4);
  return 1;
}

// Shifts each latest value of a record into its previous one.
void shift(Whitecap_point& p) {
  p.acc_previous = p.acc_latest;
  p.refl_previous = p.refl_latest;
  p.trans_previous = p.trans_latest;
}

void cut_short(const char* name) {
  std::cout << "whitecap file " << name << " ends before its last record "
            << "\n";
}

}  // namespace

Whitecap_point::Whitecap_point()
    : acc_previous(0.0f),
      acc_latest(0.0f),
      refl_previous(0.0f),
      refl_latest(0.0f),
      trans_previous(1.0f),
      trans_latest(1.0f),
      released(0) {}

Whitecap_acceleration::~Whitecap_acceleration() {}

TCWhitecaps::TCWhitecaps(const ocean_input& input)
    : time_increment(input.whitecap_time_increment),
      reference_time(input.whitecap_reference_time),
      initialization_time(input.whitecap_initialization_time),
      initialization_increment(input.whitecap_initialization_increment),
      formation_time(input.whitecap_formation_time),
      decay_time(input.whitecap_decay_time),
      decay_factor(0.0),
      fade_step(0.0),
      rise_step(0.0),
      length_x(input.whitecap_length_x),
      length_y(input.whitecap_length_y),
      center_x(input.whitecap_center_x),
      center_y(input.whitecap_center_y),
      interval_x(input.whitecap_interval_x),
      interval_y(input.whitecap_interval_y),
      smear_x(input.smear_x),
      smear_y(input.smear_y),
      smear_t(input.smear_t),
      time_offset(input.acceleration_time_offset),
      max_distance(input.whitecap_max_distance),
      num_grids(1),
      grid_scale(nullptr),
      inv_interval_x(0.0),
      inv_interval_y(0.0),
      n_x(1),
      n_y(1),
      threshold_low(input.acceleration_threshold_low),
      threshold_high(input.acceleration_threshold_high),
      reflectivity_low(input.whitecap_reflectivity_low),
      reflectivity_high(input.whitecap_reflectivity_high),
      step(-1),
      step_weight(1.0),
      grids(nullptr),
      generation_mode(input.whitecap_generation),
      fluctuation_mode(input.fluctuation_mode),
      fluctuation_n_x(input.fluctuation_n_x),
      fluctuation_n_y(input.fluctuation_n_y),
      fluctuation_dx(input.fluctuation_dx),
      fluctuation_dy(input.fluctuation_dy),
      fluctuation_seed(input.fluctuation_seed),
      fluctuation_length_scale(input.fluctuation_length_scale),
      fluctuation_power_law(input.fluctuation_power_law),
      fluctuation_time_scale(input.fluctuation_time_scale),
      fluctuation_log_normal_width(input.fluctuation_log_normal_width),
      fluctuation(nullptr),
      band_scratch(nullptr),
      n_bands(0),
      downwelling_irradiance(nullptr),
      sun_band_irradiance(nullptr) {
  copy_text(initial_state_file, input.initial_state_file, 256);
  copy_text(frame_file, input.frame_file, 256);
  set_step_constants(time_increment);

  n_x = node_count(length_x, interval_x);
  n_y = node_count(length_y, interval_y);
  inv_interval_x = 1.0 / interval_x;
  inv_interval_y = 1.0 / interval_y;
  const double finest = std::fmin(length_x, length_y);
  const double count = std::floor(std::log(2.0 * max_distance / finest) / std::log(2.0)) + 2.0;
  if (!(count >= 1.0)) {
    num_grids = 1;
  } else {
    num_grids = count > most_grids ? most_grids : static_cast<int>(count);
  }
  if (fluctuation_mode == 1) {
    fluctuation = new (std::nothrow) TCFluctuation_field(
        fluctuation_n_x, fluctuation_n_y, fluctuation_dx, fluctuation_dy, fluctuation_seed,
        fluctuation_length_scale, fluctuation_power_law, fluctuation_time_scale,
        fluctuation_log_normal_width, time_increment, reference_time);
    if (fluctuation == nullptr) {
      std::cout << "unable to allocate memory for fluctuation field "
                << "\n";
      std::exit(1);
    }
  }
}

TCWhitecaps::~TCWhitecaps() {
  free_tables();
  delete fluctuation;
}

void TCWhitecaps::free_tables() {
  if (grids != nullptr) {
    for (int g = 0; g < num_grids; g++) {
      if (grids[g] == nullptr) continue;
      for (int i = 0; i < n_x; i++) {
        if (grids[g][i] == nullptr) continue;
        for (int j = 0; j < n_y; j++) delete grids[g][i][j];
        delete[] grids[g][i];
      }
      delete[] grids[g];
    }
    delete[] grids;
    grids = nullptr;
  }
  delete[] grid_scale;
  grid_scale = nullptr;
  delete[] band_scratch;
  band_scratch = nullptr;
  n_bands = 0;
}

int TCWhitecaps::allocate(const TCSpectrum* objects_spectrum) {
  free_tables();
  if (objects_spectrum == nullptr || objects_spectrum->n < 1) {
    std::cout << "unable to allocate whitecap data structures due to "
              << "\n"
              << "unallocated objects_spectrum "
              << "\n";
    return 0;
  }
  grid_scale = new (std::nothrow) double[num_grids];
  grids = new (std::nothrow) Whitecap_point***[num_grids];
  if (grid_scale == nullptr || grids == nullptr) {
    std::cout << "unable to allocate whitecap data structures "
              << "\n";
    delete[] grids;
    grids = nullptr;
    free_tables();
    return 0;
  }
  double scale = 1.0;
  for (int g = 0; g < num_grids; g++) {
    grid_scale[g] = scale;
    scale *= 2.0;
    grids[g] = nullptr;
  }
  for (int g = 0; g < num_grids; g++) {
    grids[g] = new (std::nothrow) Whitecap_point**[n_x];
    if (grids[g] == nullptr) {
      std::cout << "unable to allocated whitecap data structures "
                << "\n";
      free_tables();
      return 0;
    }
    for (int i = 0; i < n_x; i++) grids[g][i] = nullptr;
    for (int i = 0; i < n_x; i++) {
      grids[g][i] = new (std::nothrow) Whitecap_point*[n_y];
      if (grids[g][i] == nullptr) {
        std::cout << "unable to allocate whitecap data structures "
                  << "\n";
        free_tables();
        return 0;
      }
      for (int j = 0; j < n_y; j++) grids[g][i][j] = nullptr;
    }
  }
  band_scratch = new (std::nothrow) double[objects_spectrum->n];
  if (band_scratch == nullptr) {
    std::cout << "unable to allocate whitecap data structures "
              << "\n";
    free_tables();
    return 0;
  }
  n_bands = objects_spectrum->n;
  for (int b = 0; b < n_bands; b++) band_scratch[b] = 0.0;
  if (verbose) {
    std::cout << "done allocating whitecap data structures "
              << "\n";
  }
  return 1;
}

long long TCWhitecaps::cell_count() const {
  return static_cast<long long>(num_grids) * n_x * n_y;
}

void TCWhitecaps::set_step_constants(double increment) {
  decay_factor = std::exp(-increment / decay_time);
  fade_step = reflectivity_low * increment / (0.25 * decay_time);
  rise_step = formation_time > 0.0 ? reflectivity_high * increment / formation_time : no_limit;
}

double TCWhitecaps::target(double A) const {
  if (A >= -threshold_high) {
    return reflectivity_low - (reflectivity_high - reflectivity_low) * (A + threshold_low) /
                                  (threshold_high - threshold_low);
  }
  return reflectivity_high;
}

double TCWhitecaps::transmission_of(double r) const {
  if (r < reflectivity_low) return (reflectivity_low - r) / reflectivity_low;
  return 0.0;
}

double TCWhitecaps::release_factor(double acc_before, double A) const {
  // +a1 in the numerator is how the model has always weighed the release.
  double w = (threshold_low - acc_before) / (A - acc_before);
  if (w < 0.0) w = 0.0;
  if (w > 1.0) w = 1.0;
  return std::exp(-(1.0 - w) * time_increment / decay_time);
}

void TCWhitecaps::update_cell(Whitecap_point*& cell, double A) {
  const int breaking = A < -threshold_low;
  if (cell == nullptr) {
    if (!breaking) return;
    Whitecap_point* p = new (std::nothrow) Whitecap_point;
    if (p == nullptr) {
      std::cout << "unable to allocate whitecap point"
                << "\n"
                << "continuing anyway, but some whitecaps will be missing "
                << "\n";
      return;
    }
    p->acc_previous = 0.0f;
    p->acc_latest = static_cast<float>(A);
    p->released = 0;
    p->refl_previous = 0.0f;
    p->refl_latest = static_cast<float>(std::fmin(target(A), rise_step));
    p->trans_previous = 1.0f;
    p->trans_latest = static_cast<float>(transmission_of(p->refl_latest));
    cell = p;
    return;
  }
  Whitecap_point& p = *cell;
  if (breaking) {
    p.released = 0;
    shift(p);
    p.acc_latest = static_cast<float>(A);
    double t = target(A);
    if (t > p.refl_previous + rise_step) t = p.refl_previous + rise_step;
    // A cap never loses reflectivity while it is still breaking.
    if (t > p.refl_previous) p.refl_latest = static_cast<float>(t);
    p.trans_latest = static_cast<float>(transmission_of(t));
    return;
  }
  if (p.released == 0) {
    p.released = 1;
    const double f = release_factor(p.acc_latest, A);
    shift(p);
    p.refl_latest = static_cast<float>(p.refl_latest * f);
    p.trans_latest = static_cast<float>(transmission_of(p.refl_latest));
    return;
  }
  if (p.refl_latest <= 0.0f) {
    delete cell;
    cell = nullptr;
    return;
  }
  if (p.refl_latest >= reflectivity_low) {
    // Thick foam thins exponentially and still hides the water.
    shift(p);
    p.refl_latest = static_cast<float>(p.refl_latest * decay_factor);
    return;
  }
  // Thin foam fades linearly, letting the water through.
  const double v = std::fmax(p.refl_latest - fade_step, 0.0);
  shift(p);
  p.refl_latest = static_cast<float>(v);
  p.trans_latest = static_cast<float>(1.0 - v / reflectivity_low);
}

Whitecap_acceleration* TCWhitecaps::acceleration_at_time(double) {
  return nullptr;
}

void TCWhitecaps::increment(double T) {
  if (grids == nullptr) return;
  if (verbose) std::cout << "incrementing whitecap distribution to time " << T << "\n";
  Whitecap_acceleration* acceleration = acceleration_at_time(T + time_offset);
  if (acceleration == nullptr) {
    std::cout << "unable to allocate intermediate acceleration grid"
              << "\n";
    fatal("for the generation of whitecaps");
  }
  double smallest = no_limit;
  double sum_magnitude = 0.0;
  long long above_threshold = 0, above_max_threshold = 0, active = 0;
  for (int g = 0; g < num_grids; g++) {
    const double scale = grid_scale[g];
    const double corner_x = center_x - scale * 0.5 * length_x;
    const double corner_y = center_y - scale * 0.5 * length_y;
    for (int i = 0; i < n_x; i++) {
      const double x = i * scale * interval_x + corner_x;
      for (int j = 0; j < n_y; j++) {
        const double y = j * scale * interval_y + corner_y;
        const double A = acceleration->acceleration_at(x, y) / standard_gravity;
        update_cell(grids[g][i][j], A);
        if (A < smallest) smallest = A;
        if (A < -threshold_low) above_threshold++;
        if (A < -threshold_high) above_max_threshold++;
        sum_magnitude += std::fabs(A);
        if (grids[g][i][j] != nullptr) active++;
      }
    }
  }
  if (verbose) {
    const double cells = static_cast<double>(cell_count());
    std::cout << "average acceleration " << sum_magnitude / cells << "\n";
    std::cout << "max downward acceleration " << smallest << "\n";
    std::cout << "fraction above threshold  " << above_threshold / cells << "\n";
    std::cout << "fraction above max threshold " << above_max_threshold / cells << "\n";
    std::cout << "fraction active  " << active / cells << "\n";
  }
  delete acceleration;
}

void TCWhitecaps::static_state_name(int frame, char name[300]) const {
  std::snprintf(name, 300, "%s.%04d.wcs", frame_file, frame);
}

int TCWhitecaps::update(double time, int frame) {
  if (grids == nullptr) fatal("unable to allocate whitecap data structures ");
  if (generation_mode == -2) {
    // Each frame stands alone: its saved picture, whatever the time.
    char name[300];
    static_state_name(frame, name);
    if (!read_static_state(name)) fatal("unable to process whitecap state file ", name);
    step_weight = 1.0;
    std::cout << "reading whitecap state from " << name << "\n";
  } else {
    if (time < reference_time) {
      fatal("impossible to image whitecaps prior to whitecap reference time");
    }
    const double steps = (time - reference_time) / time_increment;
    if (!(time_increment > 0.0) || !(steps < most_steps)) {
      std::cout << "whitecap time increment " << time_increment << " can not reach time " << time
                << "\n";
      std::exit(1);
    }
    if (step < 0) initial_distribution();
    if ((step - 1) * time_increment + reference_time > time) {
      fatal("can not evolve whitecap backwards in time ");
    }
    const int target_step = static_cast<int>(std::trunc(steps)) + 1;
    while (step < target_step) {
      step += 1;
      increment(step * time_increment + reference_time);
    }
    step_weight = target_step - steps;
    if (generation_mode == -3 || generation_mode == 2) {
      char name[300];
      static_state_name(frame, name);
      if (!write_static_state(name)) fatal("unable to output whitecap state file ", name);
      std::cout << "outputting whitecap static state to " << name << "\n";
    }
  }
  if (fluctuation_mode == 1 && fluctuation != nullptr) fluctuation->update(time);
  if (verbose) {
    std::cout << "generating whitecaps at " << time << "\n";
    std::cout << "with weighting " << step_weight << "\n";
    std::cout << "n_primary_field: " << step << "\n";
  }
  return 1;
}

void TCWhitecaps::initial_distribution() {
  std::cout << "generating initial whitecap distribution"
            << "\n";
  if (generation_mode == 1 || generation_mode == 2) {
    if (!read_state(initial_state_file)) {
      std::cout.flush();
      std::exit(1);
    }
    step = 1;
  } else {
    // The spin-up runs at its own step, with the constants of that step.
    const double e = initialization_increment;
    set_step_constants(e);
    // A spin-up step that does not move time forward runs no spin-up.
    double count = e > 0.0 ? std::trunc(initialization_time / e) : 0.0;
    if (!(count >= 0.0)) count = 0.0;
    if (count > most_steps) count = most_steps;
    const int n = static_cast<int>(count);
    step = -n;
    for (int s = 1; s <= n; s++) {
      std::cout << "on step " << s << "  out of " << n << "\n";
      step += 1;
      increment(step * e + reference_time);
    }
    set_step_constants(time_increment);
    step += 1;
    increment(step * time_increment + reference_time);
    if (generation_mode == -1 || generation_mode == -3) {
      if (!write_state(initial_state_file)) {
        std::cout << "unable to output to whitecap data file "
                  << "\n"
                  << "continuing anyway....                  "
                  << "\n";
      }
    }
  }
  std::cout << " done generating initial whitecap distribution "
            << "\n";
}

const Whitecap_point* TCWhitecaps::point(int g, int i, int j) const {
  if (grids == nullptr || g < 0 || g >= num_grids || i < 0 || i >= n_x || j < 0 || j >= n_y) {
    return nullptr;
  }
  return grids[g][i][j];
}

int TCWhitecaps::whitecap_at(double x, double y, double& reflectivity, double& transmission) const {
  reflectivity = 0.0;
  transmission = 1.0;
  if (grids == nullptr) return 0;
  const double u = x - center_x;
  const double v = y - center_y;
  const double px = 2.0 * std::fabs(u);
  const double py = 2.0 * std::fabs(v);
  int g = 0;
  while (g < num_grids && (grid_scale[g] * length_x <= px || grid_scale[g] * length_y <= py)) g++;
  if (g >= num_grids) return 0;

  const double scale = grid_scale[g];
  const double fx = (scale * 0.5 * length_x + u) * (inv_interval_x / scale);
  const double fy = (scale * 0.5 * length_y + v) * (inv_interval_y / scale);
  if (!std::isfinite(fx) || !std::isfinite(fy)) return 0;
  const double base_x = std::floor(fx);
  const double base_y = std::floor(fy);
  const double wx = fx - base_x;
  const double wy = fy - base_y;
  const long long i0 = static_cast<long long>(base_x);
  const long long j0 = static_cast<long long>(base_y);
  double r = 0.0, t = 0.0;
  for (int corner = 0; corner < 4; corner++) {
    const long long i = i0 + (corner & 1);
    const long long j = j0 + (corner >> 1);
    const double weight = ((corner & 1) ? wx : 1.0 - wx) * ((corner >> 1) ? wy : 1.0 - wy);
    if (i < 0 || i >= n_x || j < 0 || j >= n_y) {
      // Beyond the grid the water is clear.
      t += weight;
      continue;
    }
    const Whitecap_point* p = grids[g][i][j];
    if (p == nullptr) {
      t += weight;
      continue;
    }
    r += weight * (step_weight * p->refl_previous + (1.0 - step_weight) * p->refl_latest);
    t += weight * (step_weight * p->trans_previous + (1.0 - step_weight) * p->trans_latest);
  }
  reflectivity = r;
  transmission = t;
  if (r <= 0.0) return 0;
  if (fluctuation_mode == 1 && fluctuation != nullptr) {
    // Foam breaks into patches, averaged over the cell, and never whitens a
    // cell fully.
    reflectivity *= fluctuation->factor_at(x, y, scale * interval_x, scale * interval_y);
    if (reflectivity > reflectivity_cap) reflectivity = reflectivity_cap;
  }
  return 1;
}

void TCWhitecaps::set_irradiance(const double* downwelling, const double* sun_band) {
  downwelling_irradiance = downwelling;
  sun_band_irradiance = sun_band;
}

int TCWhitecaps::blend(double x, double y, double sun_cosine, double, double, double radiance[],
                       double whitecap_radiance[]) {
  double r, t;
  if (!whitecap_at(x, y, r, t)) {
    for (int b = 0; b < n_bands; b++) whitecap_radiance[b] = 0.0;
    return 0;
  }
  // The foam textures of fluctuation_mode 2 are not built yet: every mode
  // lights the foam by the irradiance.
  const float r_float = static_cast<float>(r);
  const float sun_float = static_cast<float>(sun_cosine);
  for (int b = 0; b < n_bands; b++) {
    const double down = downwelling_irradiance != nullptr ? downwelling_irradiance[b] : 0.0;
    double foam = r * down / whitecap_pi;
    if (sun_cosine > 0.0 && sun_band_irradiance != nullptr) {
      const float sun = static_cast<float>(sun_band_irradiance[b]);
      foam += sun * r_float * sun_float / whitecap_pi_float;
    }
    whitecap_radiance[b] = foam;
    radiance[b] = t * radiance[b] + whitecap_radiance[b];
  }
  return 1;
}

int TCWhitecaps::header_matches(const int header[3]) const {
  if (header[0] == num_grids && header[1] == n_x && header[2] == n_y) return 1;
  std::cout << "whitecap file not of matching format "
            << "\n";
  std::cout << "num_grids = " << header[0] << "\n";
  std::cout << "n_x = " << header[1] << "\n";
  std::cout << "n_y = " << header[2] << "\n";
  return 0;
}

int TCWhitecaps::write_state(const char* name) const {
  if (verbose) std::cout << " outputting whitecap data to " << name << "\n";
  std::ofstream out(name, std::ios::binary);
  if (!out) {
    std::cout << "unable to open file " << name << "\n";
    return 0;
  }
  put_int(out, num_grids);
  put_int(out, n_x);
  put_int(out, n_y);
  for (int g = 0; g < num_grids; g++) {
    for (int i = 0; i < n_x; i++) {
      for (int j = 0; j < n_y; j++) {
        const Whitecap_point* p = grids != nullptr ? grids[g][i][j] : nullptr;
        out.put(p != nullptr ? 1 : 0);
        if (p == nullptr) continue;
        put_float(out, p->acc_previous);
        put_float(out, p->acc_latest);
        put_float(out, p->refl_previous);
        put_float(out, p->refl_latest);
        put_float(out, p->trans_previous);
        put_float(out, p->trans_latest);
        put_int(out, p->released);
      }
    }
  }
  out.flush();
  return out ? 1 : 0;
}

int TCWhitecaps::write_static_state(const char* name) const {
  std::ofstream out(name, std::ios::binary);
  if (!out) {
    std::cout << "unable to open file " << name << "\n";
    return 0;
  }
  put_int(out, static_state_magic);
  put_int(out, num_grids);
  put_int(out, n_x);
  put_int(out, n_y);
  for (int g = 0; g < num_grids; g++) {
    for (int i = 0; i < n_x; i++) {
      for (int j = 0; j < n_y; j++) {
        const Whitecap_point* p = grids != nullptr ? grids[g][i][j] : nullptr;
        out.put(p != nullptr ? 1 : 0);
        if (p == nullptr) continue;
        // The picture of this moment: later readers need no weighting.
        put_float(out, static_cast<float>(step_weight * p->refl_previous +
                                          (1.0 - step_weight) * p->refl_latest));
        put_float(out, static_cast<float>(step_weight * p->trans_previous +
                                          (1.0 - step_weight) * p->trans_latest));
      }
    }
  }
  out.flush();
  return out ? 1 : 0;
}

int TCWhitecaps::read_records(std::istream& in, const char* name, int full,
                              Whitecap_point** cells) {
  const long long count = cell_count();
  for (long long c = 0; c < count; c++) {
    char flag;
    if (!in.get(flag)) {
      cut_short(name);
      return 0;
    }
    if (flag == 0) continue;
    Whitecap_point* p = new (std::nothrow) Whitecap_point;
    if (p == nullptr) {
      std::cout << "unable to allocate whitecap point"
                << "\n";
      return 0;
    }
    cells[c] = p;
    int ok = 1;
    if (full) {
      ok = get_float(in, p->acc_previous) && get_float(in, p->acc_latest) &&
           get_float(in, p->refl_previous) && get_float(in, p->refl_latest) &&
           get_float(in, p->trans_previous) && get_float(in, p->trans_latest) &&
           get_int(in, p->released);
    } else {
      float reflectivity = 0.0f, transmission = 0.0f;
      ok = get_float(in, reflectivity) && get_float(in, transmission);
      // A saved picture no longer breaks: both steps show it.
      p->refl_previous = p->refl_latest = reflectivity;
      p->trans_previous = p->trans_latest = transmission;
      p->acc_previous = p->acc_latest = 0.0f;
      p->released = 1;
    }
    if (!ok) {
      cut_short(name);
      return 0;
    }
  }
  return 1;
}

int TCWhitecaps::read_body(std::istream& in, const char* name, int full) {
  if (grids == nullptr) return 0;
  Whitecap_point** cells = new (std::nothrow) Whitecap_point*[cell_count()]();
  if (cells == nullptr) {
    std::cout << "unable to allocate whitecap data structures "
              << "\n";
    return 0;
  }
  // Records go into the tables only once the whole file has been read.
  const int ok = read_records(in, name, full, cells);
  long long c = 0;
  for (int g = 0; g < num_grids; g++) {
    for (int i = 0; i < n_x; i++) {
      for (int j = 0; j < n_y; j++, c++) {
        if (ok) {
          delete grids[g][i][j];
          grids[g][i][j] = cells[c];
        } else {
          delete cells[c];
        }
      }
    }
  }
  delete[] cells;
  return ok;
}

int TCWhitecaps::read_state(const char* name) {
  if (verbose) std::cout << "inputting whitecap from file " << name << "\n";
  std::ifstream in(name, std::ios::binary);
  if (!in) {
    std::cout << "unable to open file " << name << "\n";
    return 0;
  }
  int header[3];
  if (!get_int(in, header[0]) || !get_int(in, header[1]) || !get_int(in, header[2])) {
    cut_short(name);
    return 0;
  }
  if (!header_matches(header)) return 0;
  return read_body(in, name, 1);
}

int TCWhitecaps::read_static_state(const char* name) {
  std::ifstream in(name, std::ios::binary);
  if (!in) {
    std::cout << "unable to open file " << name << "\n";
    return 0;
  }
  int magic = 0;
  if (!get_int(in, magic) || magic != static_state_magic) {
    std::cout << "file " << name << " not of whitecap static data format "
              << "\n";
    return 0;
  }
  int header[3];
  if (!get_int(in, header[0]) || !get_int(in, header[1]) || !get_int(in, header[2])) {
    cut_short(name);
    return 0;
  }
  if (!header_matches(header)) return 0;
  return read_body(in, name, 0);
}
