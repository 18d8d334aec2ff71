#ifndef TC_JERLOV_WATER_H
#define TC_JERLOV_WATER_H

class TCBand;
class TCObject_list;

// Optics of sea water of one Jerlov type in one band: absorption a,
// scattering b, attenuation c = a + b, diffuse attenuation k (all per
// metre) and the water's reflectance refl.
//
// Types 1 to 5 are computed from the band's centre wavelength; type 0 means
// the ocean file gives the values itself, and nothing is computed. Every
// table is linear between nodes and keeps its end value outside them.
//
// Wavelengths come in micrometres, as the bands carry them. The absorption,
// scattering and k tables are in nanometres, so they are entered with
// L = 1000 * wavelength; the reflectance table is in micrometres and is
// entered with the wavelength as it comes.
class TCJerlov_water {
 public:
  // All five values 0.0.
  TCJerlov_water();

  // The five values of water type (1 to 5) at wavelength micrometres.
  // Returns 1. Returns 0 and leaves the values alone for type 0 (the file's
  // values stand) and for any type outside 0 to 5.
  int compute(int type, double wavelength);

  // compute at the centre wavelength of the list's band band_id. Returns 0
  // without a word for a type other than 1 to 5, as compute does. A band
  // the list does not hold prints " ocean attempting to use an undefined
  // band" and "band " id " not defined in object list", each on its own
  // line, and returns 0 with the values left alone.
  int compute_for_band(const TCObject_list& list, int band_id, int type);
  // The same over a band table of count bands (null for none).
  int compute_for_band(const TCBand* bands, int count, int band_id, int type);

  // Pigment concentration C of a type (0 to 5); 0.0 outside.
  static double pigment_concentration(int type);
  // Absorption of pure water, per metre, at L nanometres.
  static double pure_water_absorption(double nanometres);
  // Specific absorption of pigment at L nanometres.
  static double pigment_absorption(double nanometres);
  // Scattering coefficients of small and large particles at concentration C.
  static double small_particle_scattering(double concentration);
  static double large_particle_scattering(double concentration);
  // k of a type (1 to 5) at L nanometres; 0.0 for any other type.
  static double diffuse_attenuation(int type, double nanometres);
  // refl of a type (1 to 5) at a wavelength in micrometres; 0.0 for any
  // other type.
  static double reflectance(int type, double micrometres);

  double a;
  double b;
  double c;
  double k;
  double refl;
};

#endif
