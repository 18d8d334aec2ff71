#include "TCJerlov_water.h"

#include <cmath>
#include <iostream>

#include "TCObject_list.h"

namespace {

// Pigment concentration of types 0 to 5.
const double concentrations[6] = {0.0, 0.01, 0.05, 0.1, 0.5, 2.0};

// Pure water and pigment absorption, nodes 400 to 700 nm by 10.
const int n_absorption_nodes = 31;
const double absorption_first = 400.0;
const double absorption_step = 10.0;
const double water_absorption[n_absorption_nodes] = {
    0.018, 0.017, 0.016, 0.015, 0.015, 0.015, 0.016, 0.016, 0.018, 0.02,  0.026,
    0.036, 0.048, 0.051, 0.056, 0.064, 0.071, 0.08,  0.108, 0.157, 0.245, 0.29,
    0.31,  0.32,  0.33,  0.35,  0.41,  0.43,  0.45,  0.5,   0.65};
const double pigment_absorptions[n_absorption_nodes] = {
    0.687, 0.828, 0.913, 0.973, 1.0,   0.944, 0.917, 0.87,  0.798, 0.75,  0.668,
    0.618, 0.528, 0.474, 0.416, 0.357, 0.294, 0.276, 0.291, 0.282, 0.236, 0.252,
    0.276, 0.317, 0.334, 0.356, 0.441, 0.595, 0.502, 0.329, 0.215};

// Particle scattering against concentration; the nodes are not evenly spaced.
const int n_scattering_nodes = 8;
const double scattering_concentrations[n_scattering_nodes] = {0.0, 0.03, 0.05, 0.12,
                                                              0.3, 0.6,  1.0,  3.0};
const double small_scattering[n_scattering_nodes] = {0.0,   0.001, 0.002, 0.004,
                                                     0.009, 0.016, 0.024, 0.062};
const double large_scattering[n_scattering_nodes] = {0.0,   0.035, 0.051, 0.098,
                                                     0.194, 0.325, 0.476, 1.078};

// Diffuse attenuation of types 1 to 5, nodes 350 to 700 nm by 25.
const int n_k_nodes = 15;
const double k_first = 350.0;
const double k_step = 25.0;
const double k_values[5][n_k_nodes] = {{0.062, 0.038, 0.028, 0.022, 0.019, 0.018, 0.027, 0.043,
                                        0.063, 0.089, 0.235, 0.305, 0.36, 0.42, 0.56},
                                       {0.078, 0.052, 0.038, 0.031, 0.026, 0.025, 0.032, 0.048,
                                        0.067, 0.094, 0.24, 0.31, 0.37, 0.43, 0.57},
                                       {0.1, 0.066, 0.051, 0.042, 0.036, 0.033, 0.042, 0.054, 0.072,
                                        0.099, 0.245, 0.315, 0.375, 0.435, 0.58},
                                       {0.175, 0.122, 0.096, 0.081, 0.068, 0.062, 0.07, 0.076,
                                        0.089, 0.115, 0.26, 0.335, 0.4, 0.465, 0.61},
                                       {0.32, 0.22, 0.185, 0.16, 0.135, 0.116, 0.115, 0.116, 0.12,
                                        0.148, 0.295, 0.375, 0.445, 0.52, 0.66}};

// Reflectance of types 1 to 5, nodes 0.4 to 0.7 micrometres by 0.025.
const int n_refl_nodes = 13;
const double refl_first = 0.4;
const double refl_step = 0.025;
const double refl_values[5][n_refl_nodes] = {
    {0.097, 0.097, 0.074, 0.053, 0.031, 0.015, 0.0105, 0.0063, 0.0035, 0.0014, 0.0007, 0.0004,
     0.0002},
    {0.071, 0.07, 0.059, 0.045, 0.028, 0.016, 0.011, 0.0069, 0.0035, 0.0018, 0.0009, 0.0005,
     0.0002},
    {0.05, 0.052, 0.046, 0.04, 0.026, 0.017, 0.0125, 0.0081, 0.004, 0.002, 0.001, 0.0005, 0.0003},
    {0.03, 0.034, 0.034, 0.03, 0.024, 0.018, 0.013, 0.0098, 0.0049, 0.0025, 0.0012, 0.0006, 0.0003},
    {0.0155, 0.019, 0.022, 0.024, 0.023, 0.019, 0.017, 0.013, 0.0065, 0.0032, 0.0016, 0.0008,
     0.0004}};

// Linear between nodes first + i * step, end values outside; a NaN takes
// the first value.
double even_lookup(const double* values, int n, double first, double step, double x) {
  if (!(x > first)) return values[0];
  if (x >= first + (n - 1) * step) return values[n - 1];
  int i = static_cast<int>((x - first) / step);
  if (i > n - 2) i = n - 2;
  if (i < 0) i = 0;
  const double f = (x - (first + i * step)) / step;
  return values[i] + f * (values[i + 1] - values[i]);
}

// Linear between increasing nodes, end values outside; a NaN takes the
// first value.
double node_lookup(const double* nodes, const double* values, int n, double x) {
  if (!(x > nodes[0])) return values[0];
  if (x >= nodes[n - 1]) return values[n - 1];
  int i = 0;
  while (i < n - 2 && x >= nodes[i + 1]) ++i;
  const double f = (x - nodes[i]) / (nodes[i + 1] - nodes[i]);
  return values[i] + f * (values[i + 1] - values[i]);
}

}  // namespace

TCJerlov_water::TCJerlov_water() : a(0.0), b(0.0), c(0.0), k(0.0), refl(0.0) {}

double TCJerlov_water::pigment_concentration(int type) {
  if (type < 0 || type > 5) return 0.0;
  return concentrations[type];
}

double TCJerlov_water::pure_water_absorption(double nanometres) {
  return even_lookup(water_absorption, n_absorption_nodes, absorption_first, absorption_step,
                     nanometres);
}

double TCJerlov_water::pigment_absorption(double nanometres) {
  return even_lookup(pigment_absorptions, n_absorption_nodes, absorption_first, absorption_step,
                     nanometres);
}

double TCJerlov_water::small_particle_scattering(double concentration) {
  return node_lookup(scattering_concentrations, small_scattering, n_scattering_nodes,
                     concentration);
}

double TCJerlov_water::large_particle_scattering(double concentration) {
  return node_lookup(scattering_concentrations, large_scattering, n_scattering_nodes,
                     concentration);
}

double TCJerlov_water::diffuse_attenuation(int type, double nanometres) {
  if (type < 1 || type > 5) return 0.0;
  return even_lookup(k_values[type - 1], n_k_nodes, k_first, k_step, nanometres);
}

double TCJerlov_water::reflectance(int type, double micrometres) {
  if (type < 1 || type > 5) return 0.0;
  return even_lookup(refl_values[type - 1], n_refl_nodes, refl_first, refl_step, micrometres);
}

int TCJerlov_water::compute(int type, double wavelength) {
  if (type < 1 || type > 5) return 0;
  const double concentration = concentrations[type];
  const double L = 1000.0 * wavelength;  // nanometres
  // A wavelength of zero or less has no meaning here; b is then not finite.
  const double ratio = 400.0 / L;

  a = (pure_water_absorption(L) + 0.06 * pigment_absorption(L) * std::pow(concentration, 0.65)) *
      (1 + 0.2 * std::exp(-0.014 * (L - 440)));
  b = 0.005826 * std::pow(ratio, 4.322) +
      1.1513 * std::pow(ratio, 1.7) * small_particle_scattering(concentration) +
      0.3411 * std::pow(ratio, 0.3) * large_particle_scattering(concentration);
  c = a + b;
  k = diffuse_attenuation(type, L);
  refl = reflectance(type, wavelength);
  return 1;
}

int TCJerlov_water::compute_for_band(const TCObject_list& list, int band_id, int type) {
  return compute_for_band(list.objects_spectrum, list.number_of_bands, band_id, type);
}

int TCJerlov_water::compute_for_band(const TCBand* bands, int count, int band_id, int type) {
  if (type < 1 || type > 5) return 0;
  if (bands != nullptr) {
    for (int i = 0; i < count; ++i) {
      if (bands[i].band_id == band_id) return compute(type, bands[i].center_wavelength);
    }
  }
  std::cout << " ocean attempting to use an undefined band\n"
            << "band " << band_id << " not defined in object list\n";
  return 0;
}
