#ifndef TC_SOLID_BOX_H
#define TC_SOLID_BOX_H

#include "TCSpectrum.h"
#include "box_class.h"

class Solid_box_input;

// An opaque block that emits its own radiance and reflects the sun's
// irradiance, band by band. It stops sun rays (its transmission is 0).
class TCSolid_Box : public box_class {
 public:
  // Exits 1 when memory runs out.
  explicit TCSolid_Box(const Solid_box_input& input);
  ~TCSolid_Box() override;

  // The box's dimensions, then the band count, ids, radiances and
  // reflectivities.
  void print_dimensions() override;
  // Reflected sun plus emission at the first face the world ray meets; 0
  // in every band for a miss. While faces are scanned the sun's irradiance
  // is 0 on a face turned from it and is otherwise found with this box left
  // out; a single ray asks the sun with every object in place. The
  // reflectivity is taken at the position of the band asked for, the
  // emission at the position of the band in this box's own list.
  void surface_radiance(const TCRay& ray, TCSpectrum& spectrum, TCView& view) override;

  int number_of_bands;
  TCSpectrum band_radiance;  // band ids and emitted radiance
  double* reflectivity;      // number_of_bands entries

 private:
  TCSolid_Box(const TCSolid_Box&);
  TCSolid_Box& operator=(const TCSolid_Box&);
};

#endif
