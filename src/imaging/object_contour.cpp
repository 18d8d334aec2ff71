#include "object_contour.h"

#include <cstdlib>
#include <iostream>
#include <new>

namespace {

void imaging_allocation_failed() {
  std::cout << "unable to allocate memory for imaging"
            << "\n";
  std::exit(1);
}

void anti_alias_allocation_failed() {
  std::cout << "Error allocating memory for anti-aliasing\n";
  std::exit(1);
}

}  // namespace

object_contour::object_contour(int n_rows_in, int n_cols_in, TCSpectrum* spectrum_in,
                               float** radiance_out_in, float min_distance_in, int anti_alias_in,
                               TCMatte_fields* matte_target_in, const unsigned char* mask)
    : n_rows(n_rows_in),
      n_cols(n_cols_in),
      first_flag(1),
      layer_distance(nullptr),
      total_distance(nullptr),
      layer_coverage(nullptr),
      total_coverage(nullptr),
      spectrum(spectrum_in),
      layer_radiance(nullptr),
      radiance_out(radiance_out_in),
      near_limit_flag(0),
      min_distance(min_distance_in),
      near_limit(nullptr),
      anti_alias(anti_alias_in),
      layer_near(nullptr),
      layer_far(nullptr),
      total_near(nullptr),
      total_far(nullptr),
      any_marked(0),
      marked(nullptr),
      matte_target(matte_target_in),
      forced_object(-1),
      layer_object(-1),
      level(0),
      mask_(mask),
      n_bands_(spectrum_in != nullptr && spectrum_in->n > 0 ? spectrum_in->n : 0),
      owns_arrays_(1),
      owns_radiance_out_(0) {
  allocate_arrays();
  reset();
}

object_contour::object_contour(int n_rows_in, int n_cols_in, TCSpectrum* spectrum_in,
                               float min_distance_in, int anti_alias_in,
                               TCMatte_fields* matte_target_in, const unsigned char* mask)
    : n_rows(n_rows_in),
      n_cols(n_cols_in),
      first_flag(1),
      layer_distance(nullptr),
      total_distance(nullptr),
      layer_coverage(nullptr),
      total_coverage(nullptr),
      spectrum(spectrum_in),
      layer_radiance(nullptr),
      radiance_out(nullptr),
      near_limit_flag(0),
      min_distance(min_distance_in),
      near_limit(nullptr),
      anti_alias(anti_alias_in),
      layer_near(nullptr),
      layer_far(nullptr),
      total_near(nullptr),
      total_far(nullptr),
      any_marked(0),
      marked(nullptr),
      matte_target(matte_target_in),
      forced_object(-1),
      layer_object(-1),
      level(0),
      mask_(mask),
      n_bands_(spectrum_in != nullptr && spectrum_in->n > 0 ? spectrum_in->n : 0),
      owns_arrays_(1),
      owns_radiance_out_(1) {
  allocate_arrays();
  allocate_radiance_out();
  reset();
}

object_contour::object_contour(object_contour& source, float min_distance_in,
                               TCMatte_fields* matte_target_in)
    : n_rows(source.n_rows),
      n_cols(source.n_cols),
      first_flag(1),
      layer_distance(source.layer_distance),
      total_distance(source.total_distance),
      layer_coverage(source.layer_coverage),
      total_coverage(source.total_coverage),
      spectrum(source.spectrum),
      layer_radiance(source.layer_radiance),
      radiance_out(source.radiance_out),
      near_limit_flag(source.near_limit_flag),
      min_distance(min_distance_in),
      near_limit(source.near_limit),
      anti_alias(source.anti_alias),
      layer_near(source.layer_near),
      layer_far(source.layer_far),
      total_near(source.total_near),
      total_far(source.total_far),
      any_marked(0),
      marked(source.marked),
      matte_target(matte_target_in),
      forced_object(-1),
      layer_object(-1),
      level(0),
      mask_(source.mask_),
      n_bands_(source.n_bands_),
      owns_arrays_(0),
      owns_radiance_out_(0) {
  for (int i = 0; i < 100; i++) active[i] = 1;
}

void object_contour::allocate_arrays() {
  if (n_rows < 0 || n_cols < 0) imaging_allocation_failed();

  layer_distance = new_plane(contour_empty_distance);
  total_distance = new_plane(contour_empty_distance);
  layer_coverage = new_plane(0.0f);
  total_coverage = new_plane(0.0f);
  if (!layer_distance || !total_distance || !layer_coverage || !total_coverage) {
    imaging_allocation_failed();
  }

  layer_radiance = new (std::nothrow) float**[n_bands_]();
  if (layer_radiance == nullptr) imaging_allocation_failed();
  for (int band = 0; band < n_bands_; band++) {
    layer_radiance[band] = new_plane(0.0f);
    if (layer_radiance[band] == nullptr) imaging_allocation_failed();
  }

  marked = new (std::nothrow) short*[n_rows]();
  if (marked == nullptr) imaging_allocation_failed();
  for (int row = 0; row < n_rows; row++) {
    marked[row] = new (std::nothrow) short[n_cols]();
    if (marked[row] == nullptr) imaging_allocation_failed();
  }

  if (anti_alias) {
    layer_near = new_plane(contour_empty_distance);
    total_near = new_plane(contour_empty_distance);
    layer_far = new_plane(contour_empty_far);
    total_far = new_plane(contour_empty_far);
    if (!layer_near || !total_near || !layer_far || !total_far) anti_alias_allocation_failed();
  }

  for (int i = 0; i < 100; i++) active[i] = 1;
}

void object_contour::allocate_radiance_out() {
  const long pixels = static_cast<long>(n_rows) * n_cols;
  radiance_out = new (std::nothrow) float*[n_bands_]();
  if (radiance_out == nullptr) imaging_allocation_failed();
  for (int band = 0; band < n_bands_; band++) {
    radiance_out[band] = new (std::nothrow) float[pixels]();
    if (radiance_out[band] == nullptr) imaging_allocation_failed();
  }
}

object_contour::~object_contour() {
  if (owns_radiance_out_ && radiance_out != nullptr) {
    for (int band = 0; band < n_bands_; band++) delete[] radiance_out[band];
    delete[] radiance_out;
  }
  if (!owns_arrays_) return;
  delete_plane(layer_distance);
  delete_plane(total_distance);
  delete_plane(layer_coverage);
  delete_plane(total_coverage);
  if (layer_radiance != nullptr) {
    for (int band = 0; band < n_bands_; band++) delete_plane(layer_radiance[band]);
    delete[] layer_radiance;
  }
  if (marked != nullptr) {
    for (int row = 0; row < n_rows; row++) delete[] marked[row];
    delete[] marked;
  }
  delete_plane(layer_near);
  delete_plane(total_near);
  delete_plane(layer_far);
  delete_plane(total_far);
}

// The near limit and the caller's radiance planes belong to the caller and
// are left as they are.
void object_contour::reset() {
  first_flag = 1;
  forced_object = -1;
  layer_object = -1;
  any_marked = 0;
  for (int i = 0; i < 100; i++) active[i] = 1;

  fill_plane(layer_distance, contour_empty_distance);
  fill_plane(total_distance, contour_empty_distance);
  fill_plane(layer_coverage, 0.0f);
  fill_plane(total_coverage, 0.0f);
  for (int band = 0; band < n_bands_; band++) fill_plane(layer_radiance[band], 0.0f);
  for (int row = 0; row < n_rows; row++) {
    for (int col = 0; col < n_cols; col++) marked[row][col] = 0;
  }
  if (anti_alias) {
    fill_plane(layer_near, contour_empty_distance);
    fill_plane(total_near, contour_empty_distance);
    fill_plane(layer_far, contour_empty_far);
    fill_plane(total_far, contour_empty_far);
  }

  // A masked pixel is already filled, opaque and at distance 0, so nothing
  // can be painted over it. The mask is row major, one byte a pixel.
  if (mask_ != nullptr) {
    for (int row = 0; row < n_rows; row++) {
      for (int col = 0; col < n_cols; col++) {
        if (mask_[row * n_cols + col] != 1) continue;
        total_distance[row][col] = 0.0f;
        total_coverage[row][col] = 1.0f;
        if (anti_alias) {
          total_near[row][col] = 0.0f;
          total_far[row][col] = 0.0f;
        }
      }
    }
  }

  matte_sample.clear();
}

int object_contour::inside(int row, int col) const {
  return row >= 0 && row < n_rows && col >= 0 && col < n_cols;
}

int object_contour::pixel_wanted(int row, int col, double near, double far) const {
  if (!inside(row, col)) return 0;
  float limit = min_distance;
  if (near_limit_flag && near_limit != nullptr) {
    limit = static_cast<float>(0.95 * near_limit[row][col]);
  }
  const float near_f = static_cast<float>(near);
  const float far_f = static_cast<float>(far);
  const int covered = total_coverage[row][col] >= 1.0f;
  if (!anti_alias) {
    if (near_f < limit) return 0;
    if (covered && total_distance[row][col] <= near_f) return 0;
    return 1;
  }
  // With depth ranges kept, a sample straddling the limit or the covering
  // surface can still show in part, and so is wanted.
  if (far_f < limit) return 0;
  if (covered && total_far[row][col] <= near_f) return 0;
  return 1;
}

int object_contour::pixel_open(int row, int col) const {
  if (!inside(row, col)) return 0;
  const float coverage = total_coverage[row][col];
  if (coverage == 0.0f) return 0;
  if (coverage == 1.0f && total_distance[row][col] == 0.0f) return 0;
  return 1;
}

// Distances go to float first, as the layer keeps them, so that a sample at
// a layer's own distance compares equal and counts as behind it.
int object_contour::place_sample(int row, int col, double near, double distance, double far,
                                 double coverage, int object, double& keep, double& add,
                                 double& weight_old) {
  if (!inside(row, col)) return 0;
  const float d = static_cast<float>(distance);
  if (d < min_distance) return 0;
  layer_object = object;
  const float near_f = static_cast<float>(near);
  const float far_f = static_cast<float>(far);
  float& layer_c = layer_coverage[row][col];

  if (layer_c == 0.0f) {
    // Empty layer: what radiance it holds (an emissive sliver of coverage
    // 0) is kept and added to, but gives the mattes nothing to keep.
    layer_c = static_cast<float>(coverage);
    layer_distance[row][col] = d;
    if (anti_alias) {
      layer_near[row][col] = near_f;
      layer_far[row][col] = far_f;
    }
    keep = 1.0;
    add = 1.0;
    weight_old = 0.0;
    return 1;
  }

  if (layer_distance[row][col] <= d) {
    // Behind: only the part the layer leaves uncovered shows. Behind an
    // opaque layer nothing does, and the mattes are not told of it either.
    if (layer_c >= 1.0f) return 0;
    const double r = 1.0 - layer_c;
    layer_c = static_cast<float>(layer_c + r * coverage);
    keep = 1.0;
    add = r;
    weight_old = 1.0;
  } else {
    // In front: the layer shows through what the sample leaves uncovered.
    const double r = 1.0 - coverage;
    layer_c = static_cast<float>(r * layer_c + coverage);
    layer_distance[row][col] = d;
    keep = r;
    add = 1.0;
    weight_old = r;
  }
  if (anti_alias) {
    if (near_f < layer_near[row][col]) layer_near[row][col] = near_f;
    if (far_f > layer_far[row][col]) layer_far[row][col] = far_f;
  }
  return 1;
}

// The matte's per-ray values are not premultiplied as radiance is, so the
// sample's coverage is their weight.
void object_contour::add_sample(int row, int col, const double* radiance, double near,
                                double distance, double far, double coverage, int object,
                                const TCMatte_sample* sample) {
  double keep, add, weight_old;
  if (!place_sample(row, col, near, distance, far, coverage, object, keep, add, weight_old)) return;
  for (int band = 0; band < n_bands_; band++) {
    float& value = layer_radiance[band][row][col];
    value = static_cast<float>(keep * value + add * radiance[band]);
  }
  if (matte_target != nullptr) {
    matte_target->accumulate(row, col, object, add, weight_old, coverage, coverage,
                             static_cast<float>(distance), radiance, sample);
  }
}

void object_contour::add_sample_adjacent(int row, int col, const double* radiance, double near,
                                         double distance, double far, double coverage, int object,
                                         const TCMatte_sample* sample) {
  if (!inside(row, col)) return;
  const float d = static_cast<float>(distance);
  if (d < min_distance) return;
  float& layer_c = layer_coverage[row][col];
  if (layer_c == 0.0f) {
    add_sample(row, col, radiance, near, distance, far, coverage, object, sample);
    return;
  }
  layer_object = object;
  // Pieces that overlap a little (a fold of the mesh seen edge on) would
  // cover more than the pixel: only the part left open counts.
  double share = 1.0;
  if (layer_c + coverage > 1.0) {
    share = coverage > 0.0 ? (1.0 - layer_c) / coverage : 0.0;
    if (share < 0.0) share = 0.0;
  }
  layer_c = static_cast<float>(layer_c + share * coverage);
  if (layer_c > 1.0f) layer_c = 1.0f;
  if (d < layer_distance[row][col]) layer_distance[row][col] = d;
  if (anti_alias) {
    if (static_cast<float>(near) < layer_near[row][col])
      layer_near[row][col] = static_cast<float>(near);
    if (static_cast<float>(far) > layer_far[row][col])
      layer_far[row][col] = static_cast<float>(far);
  }
  for (int band = 0; band < n_bands_; band++) {
    float& value = layer_radiance[band][row][col];
    value = static_cast<float>(value + share * radiance[band]);
  }
  if (matte_target != nullptr) {
    matte_target->accumulate(row, col, object, share, 1.0, layer_c, coverage,
                             layer_distance[row][col], radiance, sample);
  }
}

void object_contour::add_sample_float(int row, int col, const float* radiance, double near,
                                      double distance, double far, double coverage, int object,
                                      const TCMatte_sample* sample) {
  double keep, add, weight_old;
  if (!place_sample(row, col, near, distance, far, coverage, object, keep, add, weight_old)) return;
  for (int band = 0; band < n_bands_; band++) {
    float& value = layer_radiance[band][row][col];
    value = static_cast<float>(keep * value + add * radiance[band]);
  }
  if (matte_target != nullptr) {
    matte_target->accumulate(row, col, object, add, weight_old, coverage, coverage,
                             static_cast<float>(distance), radiance, sample);
  }
}

void object_contour::add_sample_plain(int row, int col, const float* radiance, double distance,
                                      double coverage, int object, const TCMatte_sample* sample) {
  add_sample_float(row, col, radiance, distance, distance, distance, coverage, object, sample);
}

// The spectrum may have been given fewer bands since construction; bands it
// lacks receive nothing.
void object_contour::add_sample_from_spectrum(int row, int col, double near, double distance,
                                              double far, double coverage, int object,
                                              const TCMatte_sample* sample) {
  if (spectrum == nullptr) return;
  double keep, add, weight_old;
  if (!place_sample(row, col, near, distance, far, coverage, object, keep, add, weight_old)) return;
  const int bands = spectrum->n < n_bands_ ? spectrum->n : n_bands_;
  for (int band = 0; band < bands; band++) {
    float& value = layer_radiance[band][row][col];
    value = static_cast<float>(keep * value + add * spectrum->radiance_in_band[band]);
  }
  if (matte_target != nullptr) {
    matte_target->accumulate(row, col, object, add, weight_old, coverage, coverage,
                             static_cast<float>(distance), spectrum->radiance_in_band, sample);
  }
}

void object_contour::add_sample_spectrum_plain(int row, int col, double distance, double coverage,
                                               int object, const TCMatte_sample* sample) {
  add_sample_from_spectrum(row, col, distance, distance, distance, coverage, object, sample);
}

void object_contour::merge_layer() {
  for (int row = 0; row < n_rows; row++) {
    for (int col = 0; col < n_cols; col++) {
      const int k = row * n_cols + col;
      const float layer_c = layer_coverage[row][col];
      // A sliver of coverage 0 can still glow; the first band tells.
      const int emits = n_bands_ > 0 && layer_radiance[0][row][col] > 0.0f;
      if (layer_c > 0.0f || emits) {
        float& total_c = total_coverage[row][col];
        if (total_distance[row][col] <= layer_distance[row][col]) {
          if (total_c < 1.0f) {
            const float r = 1.0f - total_c;
            if (matte_target != nullptr)
              matte_target->merge_scene_alpha(k, layer_object, layer_c, 0, r);
            total_c = r * layer_c + total_c;
            if (radiance_out != nullptr) {
              for (int band = 0; band < n_bands_; band++) {
                radiance_out[band][k] += r * layer_radiance[band][row][col];
              }
            }
          }
        } else {
          total_distance[row][col] = layer_distance[row][col];
          const float r = 1.0f - layer_c;
          if (matte_target != nullptr)
            matte_target->merge_scene_alpha(k, layer_object, layer_c, 1, r);
          total_c = total_c * r + layer_c;
          if (radiance_out != nullptr) {
            for (int band = 0; band < n_bands_; band++) {
              radiance_out[band][k] = r * radiance_out[band][k] + layer_radiance[band][row][col];
            }
          }
        }
        if (anti_alias) {
          // Two objects reaching overlapping depths here: an edge of one
          // against the other falls inside this pixel.
          float& t_near = total_near[row][col];
          float& t_far = total_far[row][col];
          const float l_near = layer_near[row][col];
          const float l_far = layer_far[row][col];
          if (t_far > 0.0f && l_near <= t_far && t_near <= l_far) {
            any_marked = 1;
            marked[row][col] = 1;
          }
          if (l_far > t_far) t_far = l_far;
          if (l_near < t_near) t_near = l_near;
        }
      }
      // The scene's depth is that of the front-most surface merged so far,
      // whatever the order the objects came in.
      if (matte_target != nullptr)
        matte_target->set_scene_pixel(k, total_distance[row][col], total_coverage[row][col]);
      if (anti_alias) {
        layer_near[row][col] = contour_empty_distance;
        layer_far[row][col] = contour_empty_far;
      }
      layer_distance[row][col] = contour_empty_distance;
      layer_coverage[row][col] = 0.0f;
      for (int band = 0; band < n_bands_; band++) layer_radiance[band][row][col] = 0.0f;
    }
  }
  layer_object = -1;
}

void object_contour::note_scene_of_lone_layer() {
  if (matte_target == nullptr) return;
  for (int row = 0; row < n_rows; row++) {
    for (int col = 0; col < n_cols; col++) {
      const int k = row * n_cols + col;
      if (layer_coverage[row][col] > 0.0f && layer_distance[row][col] < total_distance[row][col]) {
        matte_target->set_scene_pixel(k, layer_distance[row][col], layer_coverage[row][col]);
      } else {
        matte_target->set_scene_pixel(k, total_distance[row][col], total_coverage[row][col]);
      }
    }
  }
}

// A plane of rows, each its own block, every value set; null on failure with
// nothing left allocated.
float** object_contour::new_plane(float value) {
  float** plane = new (std::nothrow) float*[n_rows]();
  if (plane == nullptr) return nullptr;
  for (int row = 0; row < n_rows; row++) {
    plane[row] = new (std::nothrow) float[n_cols];
    if (plane[row] == nullptr) {
      for (int done = 0; done < row; done++) delete[] plane[done];
      delete[] plane;
      return nullptr;
    }
  }
  fill_plane(plane, value);
  return plane;
}

void object_contour::fill_plane(float** plane, float value) {
  if (plane == nullptr) return;
  for (int row = 0; row < n_rows; row++) {
    for (int col = 0; col < n_cols; col++) plane[row][col] = value;
  }
}

void object_contour::delete_plane(float** plane) {
  if (plane == nullptr) return;
  for (int row = 0; row < n_rows; row++) delete[] plane[row];
  delete[] plane;
}
