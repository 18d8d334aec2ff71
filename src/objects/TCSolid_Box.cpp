#include "TCSolid_Box.h"

#include <cstdlib>
#include <iostream>
#include <new>

#include "Solid_box_input.h"
#include "TCObject_list.h"
#include "TCStar.h"

TCSolid_Box::TCSolid_Box(const Solid_box_input& input)
    : box_class(input), number_of_bands(0), band_radiance(0), reflectivity(nullptr) {
  int count = input.number_of_bands;
  if (count > input.band_ids.n) count = input.band_ids.n;
  if (count < 0) count = 0;
  reflectivity = new (std::nothrow) double[count > 0 ? count : 1]();
  if (reflectivity == nullptr) {
    std::cout << "unable to allocate memory in TCSolid_Box constructor"
              << "\n";
    std::exit(1);
  }
  band_radiance = TCSpectrum(count);
  for (int i = 0; i < count; i++) {
    band_radiance.band_id[i] = input.band_ids.band_id[i];
    band_radiance.radiance_in_band[i] = input.band_ids.radiance_in_band[i];
    if (input.reflectivity != nullptr) reflectivity[i] = input.reflectivity[i];
  }
  number_of_bands = count;
}

TCSolid_Box::~TCSolid_Box() {
  delete[] reflectivity;
}

void TCSolid_Box::print_dimensions() {
  box_class::print_dimensions();
  std::cout << "number of bands " << number_of_bands << "\n";
  std::cout << "bands ids       ";
  for (int i = 0; i < number_of_bands; i++) std::cout << " " << band_radiance.band_id[i];
  std::cout << "\n";
  std::cout << "radiance in bands: ";
  for (int i = 0; i < number_of_bands; i++) std::cout << " " << band_radiance.radiance_in_band[i];
  std::cout << "\n";
  std::cout << "reflectivity in bands: ";
  for (int i = 0; i < number_of_bands; i++) std::cout << " " << reflectivity[i];
  std::cout << "\n";
}

void TCSolid_Box::surface_radiance(const TCRay& ray, TCSpectrum& spectrum, TCView&) {
  TCVector hit;
  double distance = 0.0;
  if (first_contact(ray, hit, distance) <= 0) {
    for (int k = 0; k < spectrum.n; k++) spectrum.radiance_in_band[k] = 0.0;
    return;
  }

  TCSpectrum irradiance(spectrum);
  for (int k = 0; k < irradiance.n; k++) irradiance.radiance_in_band[k] = 0.0;
  const TCStar* sun = list != nullptr ? list->sun : nullptr;
  if (sun != nullptr) {
    if (!lit_face) {
      sun->irradiance_at(hit, irradiance, list, -1);
    } else if (!face_turned) {
      sun->irradiance_at(hit, irradiance, list, object_id);
    }
  }

  for (int k = 0; k < spectrum.n; k++) {
    // Reflectivity by the request's position, kept so; a request beyond
    // this box's bands reflects nothing.
    const double reflect = k < number_of_bands ? reflectivity[k] : 0.0;
    const int m = band_radiance.index_of(spectrum.band_id[k]);
    const double emitted = m >= 0 ? band_radiance.radiance_in_band[m] : 0.0;
    spectrum.radiance_in_band[k] = reflect * irradiance.radiance_in_band[k] + emitted;
  }
}
