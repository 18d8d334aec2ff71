#ifndef TC_OBJECT_CONTOUR_H
#define TC_OBJECT_CONTOUR_H

#include "TCMatte_fields.h"
#include "TCSpectrum.h"

// The depth-aware render target objects paint into: one layer per object,
// merged front to back into the caller's radiance planes.
class object_contour {
 public:
  // radiance_out is the caller's [band][pixel] array. A mask byte of 1 marks
  // a pixel as already covered at distance 0. Allocation failure exits 1.
  object_contour(int n_rows_in, int n_cols_in, TCSpectrum* spectrum_in, float** radiance_out_in,
                 float min_distance_in, int anti_alias_in, TCMatte_fields* matte_target_in,
                 const unsigned char* mask);
  // The same, with radiance_out allocated here ([band][pixel], zeroed) and
  // freed with the contour.
  object_contour(int n_rows_in, int n_cols_in, TCSpectrum* spectrum_in, float min_distance_in,
                 int anti_alias_in, TCMatte_fields* matte_target_in, const unsigned char* mask);
  // For an object that keeps a contour for good: borrows the grid, spectrum,
  // mask, every array and the near limit of source, which must outlive it,
  // and owns none of them. Flags start afresh; the shared arrays are left
  // as they stand.
  object_contour(object_contour& source, float min_distance_in, TCMatte_fields* matte_target_in);
  ~object_contour();

  // Back to the starting values, every object active, the matte sample
  // cleared.
  void reset();

  // 0 when a sample over [near, far] at this pixel cannot show: in front of
  // the near limit, or behind what already covers the pixel. Pixels outside
  // the patch are never wanted.
  int pixel_wanted(int row, int col, double near, double far) const;
  // 0 for a pixel with nothing in it yet and for a masked pixel.
  int pixel_open(int row, int col) const;

  // One sample into the current object's layer. Radiance is per band and
  // already multiplied by coverage; distances are those of the painting
  // object (near <= distance <= far). A sample whose distance is below
  // min_distance is dropped whole. With a matte target, the object's mattes
  // take the same weights; the per-ray sample may be null.
  void add_sample(int row, int col, const double* radiance, double near, double distance,
                  double far, double coverage, int object, const TCMatte_sample* sample);
  void add_sample_float(int row, int col, const float* radiance, double near, double distance,
                        double far, double coverage, int object, const TCMatte_sample* sample);
  // A piece of a surface that tiles the pixel with the pieces the layer
  // already holds there (neighbouring triangles of one mesh): coverages
  // and radiance add up rather than hide one another, and the layer keeps
  // the nearest distance.
  void add_sample_adjacent(int row, int col, const double* radiance, double near, double distance,
                           double far, double coverage, int object, const TCMatte_sample* sample);
  // Near and far both taken as the distance.
  void add_sample_plain(int row, int col, const float* radiance, double distance, double coverage,
                        int object, const TCMatte_sample* sample);
  // Radiance taken from the contour's spectrum record.
  void add_sample_from_spectrum(int row, int col, double near, double distance, double far,
                                double coverage, int object, const TCMatte_sample* sample);
  void add_sample_spectrum_plain(int row, int col, double distance, double coverage, int object,
                                 const TCMatte_sample* sample);

  // Takes the layer into radiance_out front to back and empties it, marking
  // pixels where two depth ranges overlap for refinement. The scene's mattes
  // follow what stands in front after each merge.
  void merge_layer();
  // For a view that starts inside the one object that paints it, whose
  // layer is never merged: the scene's mattes take that layer where it lies
  // in front of what stands, and what stands elsewhere.
  void note_scene_of_lone_layer();

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
  TCMatte_sample matte_sample;  // per-ray matte values an object may gather
  int active[100];
  int forced_object;
  // List index of the object whose samples the layer holds, -1 when none
  // has come through add_sample since the last merge.
  int layer_object;
  // 0 for a view from a camera, nonzero for a view reflected off a surface,
  // which the air images on finer tables. Set by the caller; reset() keeps it.
  int level;

 private:
  const unsigned char* mask_;
  // Bands allocated in layer_radiance, fixed at construction whatever later
  // happens to the shared spectrum.
  int n_bands_;
  int owns_arrays_;
  int owns_radiance_out_;

  void allocate_arrays();
  void allocate_radiance_out();
  int inside(int row, int col) const;
  // Places a sample's coverage, distance and depth range in the layer and
  // gives the radiance blend, layer = keep * layer + add * radiance, and
  // the matte's weight of what stood before. 0 when nothing is added.
  int place_sample(int row, int col, double near, double distance, double far, double coverage,
                   int object, double& keep, double& add, double& weight_old);
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
