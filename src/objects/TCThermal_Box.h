#ifndef TC_THERMAL_BOX_H
#define TC_THERMAL_BOX_H

#include "TCSpectrum.h"
#include "box_class.h"

class Thermal_box_input;

// A block of absorbing, emitting gas. Seen along a ray it adds its own glow
// (a fixed tenth of the sun's irradiance at its centre, plus emission that
// grows with the path) to what lies behind it, dimmed by the path's
// transmission exp(-absorption * length).
class TCThermal_Box : public box_class {
 public:
  // Exits 1 when memory runs out.
  explicit TCThermal_Box(const Thermal_box_input& input);
  ~TCThermal_Box() override;

  // The box's dimensions, then the band count, ids, radiances and
  // absorptions.
  void print_dimensions() override;
  // The sun's irradiance at the box's centre, this box left out.
  void prepare_frame() override;
  // Transmission along a world ray, per band: 1.0 for a miss and for a
  // band the box lacks, else exp(-absorption * path) over the path from
  // where the ray meets the box to where it leaves it, or to the first
  // other object met before that.
  void radiance(const TCRay& ray, TCSpectrum& out) override;
  void image_contour(TCView& view, object_contour& contour) override;
  // The gas along the world ray plus the scene behind it, weighted by the
  // transmission. The scene is imaged through view (the pixel's view) with
  // this box left out, from where the ray meets the box.
  void surface_radiance(const TCRay& ray, TCSpectrum& spectrum, TCView& view) override;

  int number_of_bands;
  TCSpectrum illumination;  // sun's irradiance per band of the box, per frame
  TCSpectrum bands;         // the box's band ids
  double* emission;         // number_of_bands entries
  double* absorption;       // per metre, number_of_bands entries

 private:
  // Path length (metres) through the gas along a world ray from a point
  // where it meets the box. 0 when no exit is found.
  int gas_path(const TCVector& entry, const TCVector& direction, double& path);
  // Radiance of the scene, this box left out, through every pixel of view
  // (their mean), beyond squared distance min_distance.
  void scene_radiance(TCView& view, double min_distance, TCSpectrum& out);

  TCThermal_Box(const TCThermal_Box&);
  TCThermal_Box& operator=(const TCThermal_Box&);
};

#endif
