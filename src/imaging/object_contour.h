#ifndef TC_OBJECT_CONTOUR_H
#define TC_OBJECT_CONTOUR_H

#include "TCSpectrum.h"

class TCMatte_fields;

// The depth-aware render target objects paint into: one layer per object,
// merged front to back into the caller's radiance planes.
class object_contour {
 public:
  // radiance_out is the caller's [band][pixel] array. A mask byte of 1 marks
  // a pixel as already covered at distance 0. Allocation failure exits 1.
  object_contour(int n_rows_in, int n_cols_in, TCSpectrum* spectrum_in, float** radiance_out_in,
                 float min_distance_in, int anti_alias_in, TCMatte_fields* matte_target_in,
                 const unsigned char* mask);
  ~object_contour();

  // Back to the starting values, every object active.
  void reset();

  int n_rows;
  int n_cols;
  int first_flag;
  float** layer_distance;
  float** total_distance;
  float** layer_coverage;
  float** total_coverage;
  TCSpectrum* spectrum;
  float*** layer_radiance;  // [band][row][col]
  float** radiance_out;     // [band][pixel], the caller's
  int near_limit_flag;
  float min_distance;
  float** near_limit;
  int anti_alias;
  float** layer_near;
  float** layer_far;
  float** total_near;
  float** total_far;
  short any_marked;
  short** marked;
  TCMatte_fields* matte_target;
  int active[100];
  int forced_object;

 private:
  const unsigned char* mask_;
  // Bands allocated in layer_radiance, fixed at construction whatever later
  // happens to the shared spectrum.
  int n_bands_;
  float** new_plane(float value);
  void fill_plane(float** plane, float value);
  void delete_plane(float** plane);

  object_contour(const object_contour&);
  object_contour& operator=(const object_contour&);
};

// Distances of an empty layer and far value of an empty depth range.
const float contour_empty_distance = 1e16f;
const float contour_empty_far = -1.0f;

#endif
