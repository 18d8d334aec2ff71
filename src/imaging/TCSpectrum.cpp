#include "TCSpectrum.h"

#include <cstdlib>
#include <iostream>
#include <new>

TCSpectrum::TCSpectrum() : n(0), band_id(nullptr), radiance_in_band(nullptr) {
  allocate(1);
  band_id[0] = 1;
  radiance_in_band[0] = 0.0;
}

TCSpectrum::TCSpectrum(int count) : n(0), band_id(nullptr), radiance_in_band(nullptr) {
  allocate(count);
  for (int i = 0; i < n; i++) {
    band_id[i] = i + 1;
    radiance_in_band[i] = 0.0;
  }
}

TCSpectrum::TCSpectrum(const TCSpectrum& other)
    : n(0), band_id(nullptr), radiance_in_band(nullptr) {
  assign(other);
}

TCSpectrum& TCSpectrum::operator=(const TCSpectrum& other) {
  if (this != &other) assign(other);
  return *this;
}

TCSpectrum::~TCSpectrum() {
  delete[] band_id;
  delete[] radiance_in_band;
}

void TCSpectrum::assign(const TCSpectrum& other) {
  if (this == &other) return;
  allocate(other.n);
  for (int i = 0; i < n; i++) {
    band_id[i] = other.band_id[i];
    radiance_in_band[i] = other.radiance_in_band[i];
  }
}

// Ids from 0 here, unlike construction: callers that reset a spectrum index
// bands by position and rely on it.
void TCSpectrum::reset(const TCSpectrum& other) {
  if (this == &other) {
    for (int i = 0; i < n; i++) {
      band_id[i] = i;
      radiance_in_band[i] = 0.0;
    }
    return;
  }
  allocate(other.n);
  for (int i = 0; i < n; i++) {
    band_id[i] = i;
    radiance_in_band[i] = 0.0;
  }
}

int TCSpectrum::index_of(int band) const {
  for (int i = 0; i < n; i++) {
    if (band_id[i] == band) return i;
  }
  return -1;
}

// Replaces both arrays with uninitialised ones of count entries.
void TCSpectrum::allocate(int count) {
  delete[] band_id;
  delete[] radiance_in_band;
  band_id = nullptr;
  radiance_in_band = nullptr;
  if (count >= 0) {
    band_id = new (std::nothrow) int[count];
    radiance_in_band = new (std::nothrow) double[count];
  }
  if (band_id == nullptr || radiance_in_band == nullptr) {
    std::cerr << "Error allocating band_id or radiance_in_band\n";
    std::exit(1);
  }
  n = count;
}
