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
      mask_(mask),
      n_bands_(spectrum_in != nullptr && spectrum_in->n > 0 ? spectrum_in->n : 0) {
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
  reset();
}

object_contour::~object_contour() {
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
