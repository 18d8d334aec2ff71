#ifndef TC_BAND_H
#define TC_BAND_H

// One spectral band of a scene. The engine carries the two numbers without
// giving them a meaning beyond the id; wavelengths and widths are as read.
class TCBand {
 public:
  TCBand() : center_wavelength(0.0), width(0.0), band_id(0) {}

  double center_wavelength;
  double width;
  int band_id;
};

#endif
