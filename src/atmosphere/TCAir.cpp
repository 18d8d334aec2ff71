#include "TCAir.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCAir_input.h"
#include "TCBand.h"
#include "TCConstants.h"
#include "TCData_file.h"
#include "TCObject_list_input.h"
#include "TCScene_tracer.h"
#include "TCStar.h"

namespace {

// Scale heights of the two layers for a factor of 1.0 in the file, metres.
const double molecular_scale_height = 8000.0;
const double aerosol_scale_height = 1200.0;
// Vertical aerosol optical depth per metre of scale height at unit density.
const double aerosol_depth_per_metre = 0.000106;
const double four_pi = 12.566371;
// Solid angle of the sun's disc when the scene has no sun object at all.
const double default_sun_solid_angle = 6.76e-05;

void exit_with(const char* message) {
  std::cout << message << "\n";
  std::cout.flush();
  std::exit(1);
}

double* new_values(int count) {
  return new (std::nothrow) double[count > 0 ? count : 1]();
}

// A band's centre and width from a band table; 0 when the id is not there.
int find_band(const TCBand* table, int n_table, int id, double& centre, double& width) {
  if (table == nullptr) return 0;
  for (int i = 0; i < n_table; i++) {
    if (table[i].band_id == id) {
      centre = table[i].center_wavelength;
      width = table[i].width;
      return 1;
    }
  }
  return 0;
}

}  // namespace

TCAir::TCAir(const TCAir_input& input, TCScene_tracer* runtime_scene)
    : TCObject(input),
      number_of_bands(0),
      band_list(0),
      band_list_copy(0),
      air_type(input.air_type),
      surface_shape(input.surface_shape),
      surface_radius(input.surface_radius),
      external_exact(input.external_exact),
      sun_max_radiance(input.sun_max_radiance),
      sun_present(0),
      sun_irradiance(nullptr),
      sun_solid_angle(default_sun_solid_angle),
      sun_cos_radius(1.0 - default_sun_solid_angle / tc_two_pi),
      sun_zenith(0.0),
      sun_azimuth(0.0),
      sun_direction(0.0, 0.0, -1.0),
      uniform_radiance(nullptr),
      lambda_low(nullptr),
      lambda_high(nullptr),
      tau_molecular(nullptr),
      tau_aerosol(nullptr),
      aerosol_g1(nullptr),
      aerosol_g2(nullptr),
      aerosol_w1(nullptr),
      aerosol_w2(nullptr),
      molecular_height_m(0.0),
      aerosol_height_m(0.0),
      molecular_visibility(tc_nothing),
      aerosol_visibility(tc_nothing),
      molecular_height(input.molecular_height),
      molecular_density(input.molecular_density),
      molecular_wavelength_dependence(input.molecular_wavelength_dependence),
      aerosol_height(input.aerosol_height),
      aerosol_density(input.aerosol_density),
      aerosol_scattering_factor(input.aerosol_scattering_factor),
      exact_count(0),
      work_(nullptr) {
  if (runtime_scene != nullptr) scene = runtime_scene;
  copy_text(air_file, input.object_file, sizeof(air_file));

  int count = input.number_of_bands;
  if (count > input.band_id.n) count = input.band_id.n;
  if (count < 0) count = 0;
  number_of_bands = count;

  sun_irradiance = new_values(count);
  uniform_radiance = new_values(count);
  lambda_low = new_values(count);
  lambda_high = new_values(count);
  tau_molecular = new_values(count);
  tau_aerosol = new_values(count);
  aerosol_g1 = new_values(count);
  aerosol_g2 = new_values(count);
  aerosol_w1 = new_values(count);
  aerosol_w2 = new_values(count);
  work_ = new_values(scratch_slots * count);
  double* centre = new_values(count);
  if (!sun_irradiance || !uniform_radiance || !lambda_low || !lambda_high || !tau_molecular ||
      !tau_aerosol || !aerosol_g1 || !aerosol_g2 || !aerosol_w1 || !aerosol_w2 || !work_ ||
      !centre) {
    exit_with("unable to allocate air data structures ");
  }
  band_list = TCSpectrum(count);
  band_list_copy = TCSpectrum(count);

  const TCBand* table = nullptr;
  int n_table = 0;
  if (runtime_scene != nullptr) {
    table = runtime_scene->band_table();
    n_table = runtime_scene->band_count();
  } else if (input.list != nullptr) {
    table = input.list->objects_spectrum;
    n_table = input.list->number_of_bands;
  }

  double centre_sum = 0.0;
  for (int m = 0; m < count; m++) {
    const int id = input.band_id.band_id[m];
    band_list.band_id[m] = id;
    band_list.radiance_in_band[m] = 0.0;
    band_list_copy.band_id[m] = id;
    band_list_copy.radiance_in_band[m] = 0.0;
    double width = 0.0;
    if (!find_band(table, n_table, id, centre[m], width)) {
      std::cout << " air attempting to use an undefined band"
                << "\n";
      std::cout << "band " << id << " not defined in object list"
                << "\n";
      std::cout << "unable to process air file " << air_file << "\n";
      std::cout.flush();
      std::exit(1);
    }
    lambda_low[m] = centre[m] - width / 2;
    lambda_high[m] = centre[m] + width / 2;
    centre_sum += centre[m];
    if (input.radiance_value != nullptr) uniform_radiance[m] = input.radiance_value[m];
  }
  const double lambda_mean = count > 0 ? centre_sum / count : 0.0;

  if (air_type != 0) {
    if (!setup_molecules(lambda_mean)) exit_with("TCAir: unable to initialize air molecules ");
    if (air_type == 2 && !setup_dirty(centre)) exit_with("TCAir: unable to initialize aerosols ");
    if (air_type == 3 && !setup_haze(input.haze_phase_function, input.radiance_value))
      exit_with("TCAir: unable to initialize haze ");
  }
  delete[] centre;
  set_sun_values();
}

TCAir::~TCAir() {
  delete[] sun_irradiance;
  delete[] uniform_radiance;
  delete[] lambda_low;
  delete[] lambda_high;
  delete[] tau_molecular;
  delete[] tau_aerosol;
  delete[] aerosol_g1;
  delete[] aerosol_g2;
  delete[] aerosol_w1;
  delete[] aerosol_w2;
  delete[] work_;
}

// The band mean of 1.07e-06 * H * D * l^-4.1, with the exponent e steered
// about the mean wavelength: lbar^(e - 4.1) * l^-e. A band of no width takes
// the value at its centre.
int TCAir::setup_molecules(double lambda_mean) {
  molecular_height_m = molecular_height * molecular_scale_height;
  if (!(molecular_height_m > 0.0) || !std::isfinite(molecular_height_m)) return 0;
  const double d = molecular_density;
  const double e = molecular_wavelength_dependence;
  const double h = molecular_height_m;
  molecular_visibility = tc_nothing;
  for (int m = 0; m < number_of_bands; m++) {
    const double l1 = lambda_low[m];
    const double l2 = lambda_high[m];
    double tau = 0.0;
    if (l2 == l1) {
      tau = std::pow(l1, -e) * std::pow(lambda_mean, e - 4.1) * 1.07e-06 * h * d;
    } else if (e == 4.1) {
      tau = (std::pow(l1, -3.1) - std::pow(l2, -3.1)) * h * d * 3.451612903225806e-07 / (l2 - l1);
    } else if (e == 1.0) {
      tau = (std::log(l2) - std::log(l1)) * std::pow(lambda_mean, -3.1) * h * d * 1.07e-06 /
            (l2 - l1);
    } else {
      const double f = e - 1.0;
      tau = (std::pow(l1, -f) - std::pow(l2, -f)) * std::pow(lambda_mean, f - 3.1) *
            (1.07e-06 / f) * h * d / (l2 - l1);
    }
    if (!std::isfinite(tau) || tau < 0.0) return 0;
    tau_molecular[m] = tau;
    if (tau > 0.0 && h / tau < molecular_visibility) molecular_visibility = h / tau;
  }
  return 1;
}

// Two Henyey-Greenstein lobes whose shape follows the band's centre
// wavelength; one optical depth for all bands.
int TCAir::setup_dirty(const double* centre) {
  aerosol_height_m = aerosol_height * aerosol_scale_height;
  if (!(aerosol_height_m > 0.0) || !std::isfinite(aerosol_height_m)) return 0;
  aerosol_visibility = tc_nothing;
  for (int m = 0; m < number_of_bands; m++) {
    const double lc = centre[m];
    const double g1 = aerosol_scattering_factor - 0.1064 * lc;
    const double g2 = 0.07964 * lc - 0.613408;
    const double w = 0.05528 * lc + 0.935354;
    // A lobe of width 1 or more has no weight and a pole: NaN or negative light.
    if (!(g1 > -1.0 && g1 < 1.0)) return 0;
    aerosol_g1[m] = g1;
    aerosol_g2[m] = g2;
    aerosol_w1[m] = (1.0 - g1 * g1) * w / four_pi;
    aerosol_w2[m] = (1.0 - w) * (1.0 - g2 * g2) / four_pi;
    const double tau = aerosol_density * aerosol_depth_per_metre * aerosol_height_m;
    if (!std::isfinite(tau) || tau < 0.0) return 0;
    tau_aerosol[m] = tau;
    if (tau > 0.0 && aerosol_height_m / tau < aerosol_visibility)
      aerosol_visibility = aerosol_height_m / tau;
  }
  return 1;
}

// One lobe per band of the file's width, its depth scaled by the file's
// strength, which is never taken below 0.1.
int TCAir::setup_haze(const double* haze_width, const double* haze_strength) {
  aerosol_height_m = aerosol_height * aerosol_scale_height;
  if (!(aerosol_height_m > 0.0) || !std::isfinite(aerosol_height_m)) return 0;
  aerosol_visibility = tc_nothing;
  for (int m = 0; m < number_of_bands; m++) {
    const double g1 = haze_width != nullptr ? haze_width[m] : 0.0;
    if (!(g1 > -1.0 && g1 < 1.0)) return 0;
    aerosol_g1[m] = g1;
    aerosol_g2[m] = 0.0;
    aerosol_w1[m] = (1.0 - g1 * g1) / four_pi;
    aerosol_w2[m] = 0.0;
    double strength = haze_strength != nullptr ? haze_strength[m] : 0.0;
    if (strength < 0.1) strength = 0.1;
    const double tau = aerosol_density * aerosol_depth_per_metre * aerosol_height_m * strength;
    if (!std::isfinite(tau) || tau < 0.0) return 0;
    tau_aerosol[m] = tau;
    if (tau > 0.0 && aerosol_height_m / tau < aerosol_visibility)
      aerosol_visibility = aerosol_height_m / tau;
  }
  return 1;
}

void TCAir::set_sun_values() {
  sun_present = 0;
  sun_zenith = 0.0;
  sun_azimuth = 0.0;
  sun_direction = TCVector(0.0, 0.0, -1.0);
  for (int m = 0; m < number_of_bands; m++) sun_irradiance[m] = 0.0;
  const TCStar* sun = scene != nullptr ? scene->star() : nullptr;
  sun_solid_angle = sun != nullptr ? sun->solid_angle : default_sun_solid_angle;
  sun_cos_radius = 1.0 - sun_solid_angle / tc_two_pi;
  if (sun == nullptr || !sun->present || !sun->on) return;

  sun_present = 1;
  TCVector d;
  direction_to_object(sun->direction, d);
  // The star's convention: direction = (-sin z cos a, -sin z sin a, -cos z).
  double cos_zenith = -d.z;
  if (cos_zenith > 1.0) cos_zenith = 1.0;
  if (cos_zenith < -1.0) cos_zenith = -1.0;
  sun_zenith = std::acos(cos_zenith);
  sun_azimuth = (d.x == 0.0 && d.y == 0.0) ? 0.0 : std::atan2(-d.y, -d.x);
  sun_direction = TCVector(-std::sin(sun_zenith) * std::cos(sun_azimuth),
                           -std::sin(sun_zenith) * std::sin(sun_azimuth), -std::cos(sun_zenith));
  for (int m = 0; m < number_of_bands; m++) {
    const int i = sun->irradiance.index_of(band_list.band_id[m]);
    sun_irradiance[m] = i < 0 ? 0.0 : sun->irradiance.radiance_in_band[i];
  }
}

void TCAir::set_position(const TCVector& position_in, double chi_in, double phi_in,
                         double theta_in) {
  TCObject::set_position(position_in, chi_in, phi_in, theta_in);
  set_sun_values();
}

void TCAir::set_time(double t) {
  TCObject::set_time(t);
  set_sun_values();
}

void TCAir::print_dimensions() {
  std::cout << "      ATMOSPHERE         "
            << "\n";
  if (air_type == 0) {
    std::cout << " air type :    uniform "
              << "\n";
    for (int m = 0; m < number_of_bands; m++) {
      std::cout << " radiance in band " << band_list.band_id[m] << "  " << uniform_radiance[m]
                << "\n";
    }
  } else if (air_type == 1) {
    std::cout << " air type :                           clean "
              << "\n";
    std::cout << " molecular height :                  " << molecular_height_m << "\n";
    std::cout << " molecular density scaling factor:   " << molecular_density << "\n";
    std::cout << " molecular wavelength dependence:   " << molecular_wavelength_dependence << "\n";
    std::cout << " molecular visiblity distance (sea level) :          " << molecular_visibility
              << "\n";
  } else {
    std::cout << " air type :     haze  "
              << "\n";
    std::cout << " molecular height :                  " << molecular_height_m << "\n";
    std::cout << " molecular density scaling factor :  " << molecular_density << "\n";
    std::cout << " molecular wavelength dependence:   " << molecular_wavelength_dependence << "\n";
    std::cout << " molecular visiblity distance (sea level) :          " << molecular_visibility
              << "\n";
    std::cout << " haze height :                       " << aerosol_height_m << "\n";
    std::cout << " haze density scaling factor :       " << aerosol_density << "\n";
    std::cout << "  aerosol visiblity distance (sea level) :          " << aerosol_visibility
              << "\n";
  }
  std::cout << " maximum direct sun radiance in image : " << sun_max_radiance << "\n";
  std::cout << " external exact flag     :  " << external_exact << "\n";
  if (surface_shape == 1) {
    std::cout << " atmosphere base shape   :   round "
              << "\n";
    std::cout << " radius                  :  " << surface_radius << "\n";
  } else {
    std::cout << " atmosphere base shape   :  flat "
              << "\n";
  }
}

double TCAir::height_of(const TCVector& p) const {
  if (surface_shape != 1) return p.z;
  return p.z + (p.x * p.x + p.y * p.y) / 2 / surface_radius;
}

int TCAir::point_inside(const TCVector& point) {
  if (surface_shape != 1) return point.z >= 0.0 ? 1 : 0;
  // Outside or on the sphere of the base, centre (0, 0, -R).
  return point.dot(point) + 2.0 * surface_radius * point.z >= 0.0 ? 1 : 0;
}

int TCAir::base_ahead(const TCRay& local, double& distance) const {
  distance = 0.0;
  if (surface_shape != 1) {
    if (!(local[2] >= 0.0 && local[5] < 0.0)) return 0;
    distance = -local[2] / local[5];
    return 1;
  }
  double near = 0.0, far = 0.0;
  if (!sphere_roots(local.origin(), local.direction(), near, far) || near < 0.0) return 0;
  distance = near;
  return 1;
}

int TCAir::intersect(const TCRay& ray, TCVector& hit, double& distance) {
  distance = 0.0;
  hit = ray.origin();
  return 0;
}

void TCAir::radiance(const TCRay& ray, TCSpectrum& out) {
  for (int k = 0; k < out.n; k++) out.radiance_in_band[k] = 0.0;
  if (air_type == 0) {
    for (int k = 0; k < out.n; k++) {
      const int m = band_list.index_of(out.band_id[k]);
      out.radiance_in_band[k] = m < 0 ? 0.0 : uniform_radiance[m];
    }
    return;
  }
  TCRay local;
  ray_to_object(ray, local);
  if (surface_shape == 1) {
    double near = 0.0, far = 0.0;
    if (sphere_roots(local.origin(), local.direction(), near, far) && far > 0.0) return;
  } else if (local[5] <= 0.0) {
    return;
  }
  double* molecular = scratch(0);
  double* aerosol = scratch(1);
  local_path_radiance(local, molecular, aerosol, 0.0, tc_nothing);
  local_scatter_phase(local.direction(), molecular, aerosol);
  for (int k = 0; k < out.n; k++) {
    const int m = band_list.index_of(out.band_id[k]);
    out.radiance_in_band[k] = m < 0 ? 0.0 : molecular[m];
  }
}

void TCAir::radiance_from(int source_object, const TCRay& ray, TCSpectrum& out) {
  TCRay local;
  ray_to_object(ray, local);
  double* transmission = scratch(2);

  int nearest = 0;
  TCVector hit;
  if (scene != nullptr) {
    int wanted[TCScene_tracer::max_objects];
    for (int i = 0; i < TCScene_tracer::max_objects; i++)
      wanted[i] = i != object_id && i != source_object;
    nearest = scene->nearest_active(wanted, ray, hit);
  }

  // The base in front of what the ray would reach is opaque: a sun below a
  // point's horizon does not light it. A ray from below the base passes.
  double ground = 0.0;
  if (base_ahead(local, ground)) {
    const TCVector to_hit = hit - ray.origin();
    if (nearest == 0 || (nearest > 0 && ground * ground < to_hit.dot(to_hit))) {
      for (int k = 0; k < out.n; k++) out.radiance_in_band[k] = 0.0;
      return;
    }
  }

  if (nearest == 0) {
    local_path_transmission(local, transmission, 0.0, tc_nothing);
    for (int k = 0; k < out.n; k++) {
      const int m = band_list.index_of(out.band_id[k]);
      // A band the air does not know passes unchanged.
      if (m >= 0) out.radiance_in_band[k] *= transmission[m];
    }
    return;
  }

  // A ray starting inside the object meets it at its origin.
  const int index = nearest > 0 ? nearest - 1 : -nearest - 1;
  const TCVector to_hit = hit - ray.origin();
  const double distance = nearest > 0 ? std::sqrt(to_hit.dot(to_hit)) : 0.0;
  scene->radiance_from(index, object_id, ray, out);
  int positive = 0;
  for (int k = 0; k < out.n; k++)
    if (out.radiance_in_band[k] > 0.0) positive = 1;
  if (!positive) return;

  double* molecular = scratch(0);
  double* aerosol = scratch(1);
  local_path_transmission(local, transmission, 0.0, distance);
  local_path_radiance(local, molecular, aerosol, 0.0, distance);
  local_scatter_phase(local.direction(), molecular, aerosol);
  for (int k = 0; k < out.n; k++) {
    const int m = band_list.index_of(out.band_id[k]);
    if (m >= 0) out.radiance_in_band[k] = out.radiance_in_band[k] * transmission[m] + molecular[m];
  }
}

void TCAir::path_radiance(const TCRay& ray, TCSpectrum& molecular, TCSpectrum& aerosol,
                          double s_start, double s_end) {
  for (int k = 0; k < molecular.n; k++) molecular.radiance_in_band[k] = 0.0;
  for (int k = 0; k < aerosol.n; k++) aerosol.radiance_in_band[k] = 0.0;
  if (!(s_start < s_end)) return;
  TCRay local;
  ray_to_object(ray, local);
  double* mol = scratch(0);
  double* aer = scratch(1);
  local_path_radiance(local, mol, aer, s_start, s_end);
  for (int k = 0; k < molecular.n; k++) {
    const int m = band_list.index_of(molecular.band_id[k]);
    if (m >= 0) molecular.radiance_in_band[k] = mol[m];
  }
  for (int k = 0; k < aerosol.n; k++) {
    const int m = band_list.index_of(aerosol.band_id[k]);
    if (m >= 0) aerosol.radiance_in_band[k] = aer[m];
  }
}

void TCAir::scatter_phase(const TCRay& ray, TCSpectrum& band, const TCSpectrum& aerosol) {
  TCVector d;
  direction_to_object(ray.direction(), d);
  double* mol = scratch(0);
  double* aer = scratch(1);
  for (int m = 0; m < number_of_bands; m++) {
    mol[m] = 0.0;
    aer[m] = 0.0;
  }
  for (int k = 0; k < band.n; k++) {
    const int m = band_list.index_of(band.band_id[k]);
    if (m < 0) continue;
    mol[m] = band.radiance_in_band[k];
    if (k < aerosol.n) aer[m] = aerosol.radiance_in_band[k];
  }
  local_scatter_phase(d, mol, aer);
  for (int k = 0; k < band.n; k++) {
    const int m = band_list.index_of(band.band_id[k]);
    band.radiance_in_band[k] = m < 0 ? 0.0 : mol[m];
  }
}

void TCAir::path_transmission(const TCRay& ray, TCSpectrum& out, double s_start, double s_end) {
  TCRay local;
  ray_to_object(ray, local);
  double* t = scratch(2);
  local_path_transmission(local, t, s_start, s_end);
  for (int k = 0; k < out.n; k++) {
    const int m = band_list.index_of(out.band_id[k]);
    out.radiance_in_band[k] = m < 0 ? 1.0 : t[m];
  }
}

void TCAir::local_scatter_phase(const TCVector& direction, double* molecular,
                                const double* aerosol) {
  const double c = direction.dot(sun_direction);
  for (int m = 0; m < number_of_bands; m++) {
    double value = 0.0;
    if (air_type != 0) {
      const double p_m =
          tau_molecular[m] * (0.9324 * c * c + 1.0) * 0.060709651179326155 / molecular_height_m;
      value = molecular[m] * p_m;
    }
    if (air_type > 1) {
      const double g1 = aerosol_g1[m];
      const double g2 = aerosol_g2[m];
      const double p_a = (tau_aerosol[m] / aerosol_height_m) *
                         (aerosol_w1[m] / std::pow(1 - 2 * g1 * c + g1 * g1, 1.5) +
                          aerosol_w2[m] / std::pow(1 - 2 * g2 * c + g2 * g2, 1.5));
      value += aerosol[m] * p_a;
    }
    molecular[m] = value;
  }
}

void TCAir::local_path_radiance(const TCRay& ray, double* molecular, double* aerosol,
                                double s_start, double s_end) {
  for (int m = 0; m < number_of_bands; m++) {
    molecular[m] = 0.0;
    aerosol[m] = 0.0;
  }
  if (!(s_start < s_end) || air_type == 0) return;
  if (surface_shape == 1) {
    round_path_radiance(ray, molecular, aerosol, s_start, s_end);
  } else {
    flat_path_radiance(ray, molecular, aerosol, s_start, s_end);
  }
}

void TCAir::local_path_transmission(const TCRay& ray, double* out, double s_start, double s_end) {
  for (int m = 0; m < number_of_bands; m++) out[m] = 1.0;
  if (!(s_start < s_end) || air_type == 0) return;
  if (surface_shape == 1) {
    round_path_transmission(ray, out, s_start, s_end);
  } else {
    flat_path_transmission(ray, out, s_start, s_end);
  }
}
