#include "TCThermal_Box.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCScene_tracer.h"
#include "Thermal_box_input.h"

namespace {

// The gas block reflects this fraction of the sun's irradiance.
const double gas_reflectivity = 0.1;

// Most pixels of a view imaged for what lies behind the gas.
const long long most_pixels = 1 << 24;

void allocation_failed(const char* text) {
  std::cout << text << "\n";
  std::exit(1);
}

}  // namespace

TCThermal_Box::TCThermal_Box(const Thermal_box_input& input)
    : box_class(input),
      number_of_bands(0),
      illumination(0),
      bands(0),
      emission(nullptr),
      absorption(nullptr) {
  int count = input.number_of_bands;
  if (count > input.band_ids.n) count = input.band_ids.n;
  if (count < 0) count = 0;
  emission = new (std::nothrow) double[count > 0 ? count : 1]();
  if (emission == nullptr)
    allocation_failed("unable to allocate memory in TCThermal_Box constructor");
  absorption = new (std::nothrow) double[count > 0 ? count : 1]();
  if (absorption == nullptr)
    allocation_failed("unable to allocate memory in TCThermal_Box constructor ");
  bands = TCSpectrum(count);
  illumination = TCSpectrum(count);
  for (int i = 0; i < count; i++) {
    bands.band_id[i] = input.band_ids.band_id[i];
    illumination.band_id[i] = input.band_ids.band_id[i];
    if (input.radiance != nullptr) emission[i] = input.radiance[i];
    if (input.absorption != nullptr) absorption[i] = input.absorption[i];
  }
  number_of_bands = count;
}

TCThermal_Box::~TCThermal_Box() {
  delete[] emission;
  delete[] absorption;
}

void TCThermal_Box::print_dimensions() {
  box_class::print_dimensions();
  std::cout << "number of bands " << number_of_bands << "\n";
  std::cout << "bands ids       ";
  for (int i = 0; i < number_of_bands; i++) std::cout << " " << bands.band_id[i];
  std::cout << "\n";
  std::cout << "radiance in bands: ";
  for (int i = 0; i < number_of_bands; i++) std::cout << " " << emission[i];
  std::cout << "\n";
  std::cout << "absorption in bands: ";
  for (int i = 0; i < number_of_bands; i++) std::cout << " " << absorption[i];
  std::cout << "\n";
}

void TCThermal_Box::prepare_frame() {
  for (int i = 0; i < illumination.n; i++) illumination.radiance_in_band[i] = 0.0;
  if (scene != nullptr) scene->sun_irradiance_at(position, illumination, object_id);
}

void TCThermal_Box::image_contour(TCView& view, object_contour& contour) {
  box_class::image_contour(view, contour);
}

int TCThermal_Box::gas_path(const TCVector& entry, const TCVector& direction, double& path) {
  path = 0.0;
  const TCRay from_entry(entry, direction);
  // The first other object along the way, if any, ends the path early.
  int other_hit = 0;
  double other_distance = 0.0;
  if (scene != nullptr) {
    TCVector other;
    if (scene->nearest_except(object_id, from_entry, other) > 0) {
      const TCVector d = other - entry;
      other_distance = std::pow(d.dot(d), 0.5);
      other_hit = 1;
    }
  }
  TCRay local;
  ray_to_object(from_entry, local);
  TCVector exit_point;
  double exit_distance = 0.0;
  if (far_intersect(local, exit_point, exit_distance) < 1) return 0;
  path = (!other_hit || exit_distance < other_distance) ? exit_distance : other_distance;
  return 1;
}

void TCThermal_Box::radiance(const TCRay& ray, TCSpectrum& out) {
  TCVector hit;
  double distance = 0.0;
  double path = 0.0;
  const int crossed = first_contact(ray, hit, distance) > 0 && gas_path(hit, ray.direction(), path);
  for (int k = 0; k < out.n; k++) {
    const int m = bands.index_of(out.band_id[k]);
    out.radiance_in_band[k] = (crossed && m >= 0) ? std::exp(-absorption[m] * path) : 1.0;
  }
}

void TCThermal_Box::scene_radiance(TCView& view, double min_distance, TCSpectrum& out) {
  for (int k = 0; k < out.n; k++) out.radiance_in_band[k] = 0.0;
  const long long pixels = static_cast<long long>(view.n_rows) * view.n_cols;
  if (scene == nullptr || out.n < 1 || pixels < 1 || pixels > most_pixels) return;
  float** planes = new (std::nothrow) float*[out.n]();
  if (planes == nullptr) allocation_failed("unable to allocate memory for imaging");
  for (int k = 0; k < out.n; k++) {
    planes[k] = new (std::nothrow) float[pixels]();
    if (planes[k] == nullptr) allocation_failed("unable to allocate memory for imaging");
  }
  scene->image_scene_for_source(object_id, view, &out, planes, min_distance, nullptr);
  for (int k = 0; k < out.n; k++) {
    double sum = 0.0;
    for (long long p = 0; p < pixels; p++) sum += planes[k][p];
    out.radiance_in_band[k] = sum / pixels;
    delete[] planes[k];
  }
  delete[] planes;
}

void TCThermal_Box::surface_radiance(const TCRay& ray, TCSpectrum& spectrum, TCView& view) {
  TCVector hit;
  double entry = 0.0;
  if (first_contact(ray, hit, entry) <= 0) {
    for (int k = 0; k < spectrum.n; k++) spectrum.radiance_in_band[k] = 0.0;
    return;
  }
  double path = 0.0;
  const int crossed = gas_path(hit, ray.direction(), path);
  // What lies behind, from where the ray meets the gas on; the contour's
  // distances are squared.
  TCSpectrum behind(spectrum);
  scene_radiance(view, entry * entry, behind);
  if (!crossed) {
    for (int k = 0; k < spectrum.n; k++) spectrum.radiance_in_band[k] = behind.radiance_in_band[k];
    return;
  }
  for (int k = 0; k < spectrum.n; k++) {
    const int m = bands.index_of(spectrum.band_id[k]);
    double transmission = 1.0;
    double glow = 0.0;
    if (m >= 0) {
      transmission = std::exp(-absorption[m] * path);
      glow =
          illumination.radiance_in_band[m] * gas_reflectivity + (1.0 - transmission) * emission[m];
    }
    spectrum.radiance_in_band[k] = glow + transmission * behind.radiance_in_band[k];
  }
}
