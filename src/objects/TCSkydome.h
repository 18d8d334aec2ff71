#ifndef TC_SKYDOME_H
#define TC_SKYDOME_H

#include "Skydome_input.h"
#include "TCObject.h"

class TCTexture_plane;

// The sky as a hemisphere of dome_radius, textured by one picture laid over
// it by an equal-area mapping: a direction (x, y, z) looks the unit texture
// up at (x, y) * 0.5 / sqrt(|z| + 1). Every pixel with a sample ray above the
// horizon angle is painted whole, at the square of dome_radius. The lower
// hemisphere folds onto the upper through |z| but is never painted.
class TCSkydome : public TCObject {
 public:
  // A still picture is loaded now; one that fails to load is reported and
  // leaves the dome dark, and the run goes on. "time" animation ends the
  // run (status 1), as does memory running out.
  explicit TCSkydome(const Skydome_input& input);
  ~TCSkydome() override;

  // "frames" animation loads <file>.<frame, 4 digits>.rgb for the list's
  // current frame; a picture that fails to load ends the run with status
  // 1912. Then the pose, as for any object.
  void set_time(double t) override;
  // 1.0 in every band, whatever the ray: single rays are not looked up in
  // the picture.
  void radiance(const TCRay& ray, TCSpectrum& out) override;
  void image_contour(TCView& view, object_contour& contour) override;
  // Every ray meets the dome at dome_radius along its direction.
  int intersect(const TCRay& ray, TCVector& hit, double& distance) override;

  int n_bands;
  int* band_ids;
  double tex_width;  // the texture is a unit square centred on the origin
  double tex_height;
  char file_name[256];
  int animation;         // 0 none, 100 time, 101 frames
  int alpha_channel;     // 0 none, 1 alpha after the radiance, 2 alpha scales it too
  int alpha_band;        // n_bands with alpha, else 0
  int tex_band_count;    // n_bands, and one more with alpha
  double* min_radiance;  // tex_band_count entries; alpha 0 to 1.0
  double* max_radiance;
  double* texture_values;  // scratch, tex_band_count
  int texture_off;         // not 0: nothing is painted
  int imaging_method;
  int texture_mode;
  int samples_x;      // per pixel, along elevation
  int samples_y;      // along azimuth
  double** sample_u;  // [samples_x][samples_y] texture positions of one pixel
  double** sample_v;
  TCTexture_plane* texture;
  double sin_horizon;
  double dome_radius;  // metres

 private:
  // A texture plane for the dome's bands and range; exits when it can't be had.
  TCTexture_plane* new_texture() const;

  TCSkydome(const TCSkydome&);
  TCSkydome& operator=(const TCSkydome&);
};

#endif
