#ifndef TC_TESTS_BOX_TEST_BOXES_H
#define TC_TESTS_BOX_TEST_BOXES_H

#include "Bobbing_box_input.h"
#include "Solid_box_input.h"
#include "TCSolid_Box.h"
#include "TCSpectrum.h"
#include "TCThermal_Box.h"
#include "TCVector.h"
#include "Thermal_box_input.h"

// Records for tests: lengths and bands as given, everything else default.
inline void fill_solid_input(Solid_box_input& input, const TCVector& length, int n_bands,
                             const int* ids, const double* radiance, const double* reflectivity) {
  input.length = length;
  input.allocate_bands(n_bands);
  for (int i = 0; i < n_bands; i++) {
    input.band_ids.band_id[i] = ids[i];
    input.band_ids.radiance_in_band[i] = radiance[i];
    input.reflectivity[i] = reflectivity[i];
    input.transmissivity[i] = 0.0;
  }
}

// A solid box of the given lengths emitting one band (id 1) at radiance.
inline TCSolid_Box* new_solid_box(const TCVector& length, double radiance) {
  Solid_box_input input;
  const int id = 1;
  const double reflectivity = 0.0;
  fill_solid_input(input, length, 1, &id, &radiance, &reflectivity);
  return new TCSolid_Box(input);
}

inline TCThermal_Box* new_thermal_box(const TCVector& length, int n_bands, const int* ids,
                                      const double* radiance, const double* absorption) {
  Thermal_box_input input;
  input.length = length;
  input.allocate_bands(n_bands);
  for (int i = 0; i < n_bands; i++) {
    input.band_ids.band_id[i] = ids[i];
    input.radiance[i] = radiance[i];
    input.absorption[i] = absorption[i];
  }
  return new TCThermal_Box(input);
}

// A spectrum asking for the given band ids, radiance 0.
inline TCSpectrum request(int n, const int* ids) {
  TCSpectrum s(n);
  for (int i = 0; i < n; i++) s.band_id[i] = ids[i];
  return s;
}

#endif
