#ifndef TC_TESTS_AIR_TEST_SCENES_H
#define TC_TESTS_AIR_TEST_SCENES_H

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "TCAir.h"
#include "TCAir_input.h"
#include "TCBand.h"
#include "TCData_file.h"
#include "TCObject_list.h"
#include "TCSpectrum.h"
#include "TCStar.h"
#include "TCStar_input.h"

// The scene of air_reference.py: bands 1 and 2 at 0.45 and 0.65 um, 0.1 um
// wide; a sun of irradiance 1.8 and 1.5; molecular scale factor 1.0 (8000
// m), density 1.0, exponent 4.1; dirty aerosol factor 1.0 (1200 m), density
// 1.0, 0.93; a round base of radius 6371000 m.
namespace air_scene {

const double radius = 6371000.0;
const double infinity = 99999999.0;

inline void set_bands(TCObject_list& list) {
  TCBand bands[2];
  bands[0].band_id = 1;
  bands[0].center_wavelength = 0.45;
  bands[0].width = 0.1;
  bands[1].band_id = 2;
  bands[1].center_wavelength = 0.65;
  bands[1].width = 0.1;
  list.set_bands(2, bands);
}

// A sun of bands 1 and 2 at the given angles (the sun's own convention).
inline void set_sun(TCObject_list& list, double zenith, double azimuth) {
  TCStar_input input;
  TCSpectrum irradiance(2);
  irradiance.band_id[0] = 1;
  irradiance.band_id[1] = 2;
  irradiance.radiance_in_band[0] = 1.8;
  irradiance.radiance_in_band[1] = 1.5;
  input.irradiance = irradiance;
  input.number_of_bands = 2;
  delete list.sun;
  list.sun = new TCStar(input);
  list.sun->set_angles(zenith, azimuth);
}

// An air file's record for the reference scene: bands 1 and 2.
inline void fill_input(TCAir_input& input, int air_type, int surface_shape) {
  input.allocate_arrays(2);
  input.band_id.band_id[0] = 1;
  input.band_id.band_id[1] = 2;
  input.air_type = air_type;
  input.surface_shape = surface_shape;
  input.surface_radius = radius;
  input.object_id = 0;
  copy_text(input.object_file, "reference.air", 256);
}

// The air of the reference scene adopted by list, which needs its bands
// (and its sun, if any) first.
inline TCAir* add_air(TCObject_list& list, int air_type, int surface_shape) {
  TCAir_input input;
  fill_input(input, air_type, surface_shape);
  TCAir* air = new TCAir(input, &list);
  list.add_runtime_object(air);
  air->set_sun_values();
  return air;
}

// The lines of the reference fixture that start with tag, as numbers ("inf"
// is the engine's infinity).
inline std::vector<std::vector<double> > fixture_lines(const std::string& tag) {
  std::vector<std::vector<double> > lines;
  std::ifstream in(TC_TEST_DATA_DIR "/atmosphere/air_reference.txt");
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string first;
    if (!(words >> first) || first != tag) continue;
    std::vector<double> values;
    std::string word;
    while (words >> word) values.push_back(word == "inf" ? infinity : std::stod(word));
    lines.push_back(values);
  }
  return lines;
}

inline TCRay ray_of(const std::vector<double>& v, int at) {
  return TCRay(TCVector(v[at], v[at + 1], v[at + 2]), TCVector(v[at + 3], v[at + 4], v[at + 5]));
}

// Spectra asking for bands 1 and 2, set to a marker that must be replaced.
inline TCSpectrum two_bands() {
  TCSpectrum out(2);
  out.radiance_in_band[0] = -7.0;
  out.radiance_in_band[1] = -7.0;
  return out;
}

}  // namespace air_scene

#endif
