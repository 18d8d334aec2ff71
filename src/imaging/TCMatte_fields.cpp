#include "TCMatte_fields.h"

#include <cstdlib>
#include <iostream>
#include <new>

#include "TCMatte_input.h"

namespace {

// Distance of a pixel nothing has painted yet: the square of the "nothing"
// distance (99999999 m), as distances are squared until the camera takes the
// root, so that it comes out as 1e8 like every other "nothing".
const float no_distance = 1e16f;

const int coverage_code = 18;
const int distance_code = 19;
const int scene_distance_code = 20;
const int normal_code = 32;
const int first_alpha_code = 22;
const int alpha_codes = 5;

void allocation_failed(int step) {
  std::cout << "Error allocating matte memory - " << step << "\n";
  std::cout.flush();
  std::exit(1);
}

// First plane of a one-plane code; the layout's second row.
int single_plane(int code, int n_bands) {
  return n_bands * 18 - 18 + code;
}

// Codes summed from a sample with weights: 0 to 17, then 22 to 25 and 27 to
// 30. The fifth of each positional range (26, 31) is not part of the sum.
int summed_from_sample(int code) {
  return (code >= 0 && code <= 17) || (code >= 22 && code <= 25) || (code >= 27 && code <= 30);
}

}  // namespace

// ---------------------------------------------------------------------------

TCMatte_sample::TCMatte_sample()
    : on(0),
      n_codes(0),
      n_bands(0),
      wanted(nullptr),
      values(nullptr),
      wanted_size_(0),
      values_size_(0) {}

TCMatte_sample::~TCMatte_sample() {
  delete[] wanted;
  delete[] values;
}

void TCMatte_sample::attach(int object_index, const TCMatte_fields* fields) {
  on = 0;
  if (fields == nullptr || fields->use_mattes == 0 || fields->allocated == 0 ||
      fields->object_wanted == nullptr)
    return;
  if (object_index < 0 || object_index > fields->n_objects) {
    std::cout << "Bad matte field index\n";
    return;
  }
  if (fields->object_wanted[object_index] == 0) return;

  n_codes = fields->n_codes;
  n_bands = fields->n_bands;
  const long table = static_cast<long>(n_bands) * 18 + 23;
  if (n_codes < 1 || n_bands < 0 || table > 2147483647L) allocation_failed(4);
  const int n_values = TCMatte_fields::plane_table_size(n_bands);
  // Made once and kept; only fields of another size make it anew.
  if (wanted == nullptr || wanted_size_ != n_codes) {
    delete[] wanted;
    wanted = new (std::nothrow) int[n_codes]();
    if (wanted == nullptr) allocation_failed(4);
    wanted_size_ = n_codes;
  }
  if (values == nullptr || values_size_ != n_values) {
    delete[] values;
    values = new (std::nothrow) float[n_values]();
    if (values == nullptr) allocation_failed(4);
    values_size_ = n_values;
  }
  for (int c = 0; c < n_codes; c++) wanted[c] = fields->code_wanted[object_index][c];
  on = 1;
}

void TCMatte_sample::clear() {
  if (on == 0 || values == nullptr) return;
  for (int i = 0; i < values_size_; i++) values[i] = 0.0f;
  values[single_plane(distance_code, n_bands)] = no_distance;
}

void TCMatte_sample::add(const TCMatte_sample& other) {
  if (on == 0 || values == nullptr || other.values == nullptr) return;
  const int n = values_size_ < other.values_size_ ? values_size_ : other.values_size_;
  for (int i = 0; i < n; i++) values[i] += other.values[i];
}

void TCMatte_sample::normalise(double weight) {
  if (on == 0 || values == nullptr) return;
  if (weight < 1e-06) {
    std::cout << "Matte Field Normalization is wrong: " << weight << "Normalizing by 1.0\n";
    return;
  }
  for (int i = 0; i < values_size_; i++) values[i] = static_cast<float>(values[i] / weight);
}

void TCMatte_sample::set_distance(double d) {
  if (on == 0 || values == nullptr) return;
  values[single_plane(distance_code, n_bands)] = static_cast<float>(d);
}

// ---------------------------------------------------------------------------

TCMatte_fields::TCMatte_fields()
    : n_rows(0),
      n_cols(0),
      n_bands(0),
      allocated(0),
      n_objects(0),
      n_codes(code_count),
      use_mattes(0),
      object_wanted(nullptr),
      code_wanted(nullptr),
      planes(nullptr),
      held_objects_(0),
      held_table_(0) {
  for (int k = 0; k < alpha_codes; k++) alpha_objects[k] = reflected_objects[k] = -1;
}

TCMatte_fields::~TCMatte_fields() {
  release();
}

int TCMatte_fields::plane_layout(int code, int n_bands, int& first_plane, int& n_planes) {
  first_plane = -1;
  n_planes = 0;
  if (code >= 40) {
    std::cout << "Bad matte index value: " << code << "\n";
    return 0;
  }
  if (code < 0) return 0;
  if (code <= 17) {
    first_plane = n_bands * code;
    n_planes = n_bands;
    return 1;
  }
  if (code <= 31) {
    first_plane = single_plane(code, n_bands);
    n_planes = 1;
    return 1;
  }
  if (code == normal_code) {
    first_plane = n_bands * 18 + 14;
    n_planes = 3;
    return 1;
  }
  // 33 and 34 are mattes without planes of their own; 35 to 39 do not exist.
  return code <= 34 ? 1 : 0;
}

int TCMatte_fields::plane_table_size(int n_bands) {
  return n_bands * 18 + 23;
}

int TCMatte_fields::set_sizes(int codes, int objects) {
  if (allocated) return 0;
  if (codes < 1 || codes > code_count || objects < 0) return 0;
  n_codes = codes;
  n_objects = objects;
  return 1;
}

void TCMatte_fields::prepare(int rows, int columns, int bands, const TCMatte_input& request) {
  if (allocated) {
    std::cout << "Trying to REALLOCATE matte fields\n";
    std::cout.flush();
    std::exit(1);
  }
  n_rows = rows;
  n_cols = columns;
  n_bands = bands;
  use_mattes = request.use_mattes;
  allocated = 1;
  for (int k = 0; k < alpha_codes; k++) {
    alpha_objects[k] = request.alpha_objects[k];
    reflected_objects[k] = request.reflected_objects[k];
  }
  if (use_mattes == 0) return;

  // Sizes no allocation can give fail like one that found no memory; a plane
  // must also be indexable by an int pixel number.
  const int n_entries = n_objects + 1;  // the scene is the last
  const long plane_size = static_cast<long>(n_rows) * static_cast<long>(n_cols);
  if (n_entries < 1) allocation_failed(1);
  held_objects_ = n_entries;
  object_wanted = new (std::nothrow) int[n_entries]();
  code_wanted = new (std::nothrow) int*[n_entries]();
  planes = new (std::nothrow) float**[n_entries]();
  if (object_wanted == nullptr || code_wanted == nullptr || planes == nullptr) allocation_failed(1);

  // Several entries may name the same object: their codes add up.
  for (int i = 0; i < request.n_matte_objects; i++) {
    const int object = request.object_indices ? request.object_indices[i] : -1;
    if (object < 0 || object >= n_entries) continue;
    if (object_wanted[object] == 0) {
      const long table = static_cast<long>(n_bands) * 18 + 23;
      if (n_codes < 1 || n_bands < 0 || table > 2147483647L) allocation_failed(2);
      held_table_ = plane_table_size(n_bands);
      object_wanted[object] = 1;
      code_wanted[object] = new (std::nothrow) int[n_codes]();
      planes[object] = new (std::nothrow) float*[held_table_]();
      if (code_wanted[object] == nullptr || planes[object] == nullptr) allocation_failed(2);
    }
    for (int j = 0; j < request.matte_counts[i]; j++) {
      const int code = request.matte_ids[i][j];
      if (code >= 0 && code < n_codes) code_wanted[object][code] = 1;
    }
  }

  for (int object = 0; object < n_entries; object++) {
    if (object_wanted[object] == 0) continue;
    if (n_rows < 0 || n_cols < 0 || plane_size > 2147483647L) allocation_failed(3);
    for (int code = 0; code < n_codes; code++) {
      if (code_wanted[object][code] == 0) continue;
      int first = 0;
      int count = 0;
      if (!plane_layout(code, n_bands, first, count)) continue;
      const float start = code == distance_code || code == scene_distance_code ? no_distance : 0.0f;
      for (int p = first; p < first + count; p++) {
        if (planes[object][p] != nullptr) continue;
        float* plane = new (std::nothrow) float[plane_size];
        if (plane == nullptr) allocation_failed(3);
        for (long k = 0; k < plane_size; k++) plane[k] = start;
        planes[object][p] = plane;
      }
    }
  }
}

void TCMatte_fields::release() {
  if (planes != nullptr) {
    for (int object = 0; object < held_objects_; object++) {
      if (planes[object] == nullptr) continue;
      for (int p = 0; p < held_table_; p++) delete[] planes[object][p];
      delete[] planes[object];
    }
  }
  if (code_wanted != nullptr) {
    for (int object = 0; object < held_objects_; object++) delete[] code_wanted[object];
  }
  delete[] planes;
  delete[] code_wanted;
  delete[] object_wanted;
  planes = nullptr;
  code_wanted = nullptr;
  object_wanted = nullptr;
  held_objects_ = 0;
  held_table_ = 0;
  allocated = 0;
}

void TCMatte_fields::clear_all() {
  if (planes == nullptr) return;
  const long plane_size = static_cast<long>(n_rows) * static_cast<long>(n_cols);
  for (int object = 0; object < held_objects_; object++) {
    if (planes[object] == nullptr) continue;
    for (int p = 0; p < held_table_; p++) {
      float* plane = planes[object][p];
      if (plane == nullptr) continue;
      for (long k = 0; k < plane_size; k++) plane[k] = 0.0f;
    }
  }
}

int TCMatte_fields::is_wanted(int object, int code, int& first_plane, int& n_planes) const {
  first_plane = -1;
  n_planes = 0;
  if (use_mattes == 0 || allocated == 0 || object_wanted == nullptr) return 0;
  int first = -1;
  int count = 0;
  if (!plane_layout(code, n_bands, first, count)) return 0;
  if (object < 0 || object >= held_objects_ || object_wanted[object] == 0) return 0;
  if (code >= n_codes || code_wanted[object][code] == 0) return 0;
  first_plane = first;
  n_planes = count;
  return 1;
}

void TCMatte_fields::set_scene_distance(int pixel, double value) {
  const int scene = n_objects;
  if (use_mattes == 0 || allocated == 0 || object_wanted == nullptr) return;
  if (scene < 0 || scene >= held_objects_ || object_wanted[scene] == 0) return;
  if (scene_distance_code >= n_codes || code_wanted[scene][scene_distance_code] == 0) return;
  if (pixel < 0 || static_cast<long>(pixel) >= static_cast<long>(n_rows) * n_cols) return;
  planes[scene][single_plane(scene_distance_code, n_bands)][pixel] = static_cast<float>(value);
}

void TCMatte_fields::set_scene_pixel(int pixel, double distance, double coverage) {
  const int scene = n_objects;
  if (use_mattes == 0 || allocated == 0 || object_wanted == nullptr) return;
  if (scene < 0 || scene >= held_objects_ || object_wanted[scene] == 0) return;
  if (pixel < 0 || static_cast<long>(pixel) >= static_cast<long>(n_rows) * n_cols) return;
  float** table = planes[scene];
  const int* wanted = code_wanted[scene];
  if (scene_distance_code < n_codes && wanted[scene_distance_code])
    table[single_plane(scene_distance_code, n_bands)][pixel] = static_cast<float>(distance);
  if (distance_code < n_codes && wanted[distance_code])
    table[single_plane(distance_code, n_bands)][pixel] = static_cast<float>(distance);
  if (coverage_code < n_codes && wanted[coverage_code])
    table[single_plane(coverage_code, n_bands)][pixel] = static_cast<float>(coverage);
}

void TCMatte_fields::merge_scene_alpha(int pixel, int object, double layer_coverage, int in_front,
                                       double open) {
  const int scene = n_objects;
  if (use_mattes == 0 || allocated == 0 || object_wanted == nullptr) return;
  if (scene < 0 || scene >= held_objects_ || object_wanted[scene] == 0) return;
  if (pixel < 0 || static_cast<long>(pixel) >= static_cast<long>(n_rows) * n_cols) return;
  for (int k = 0; k < alpha_codes; k++) {
    const int code = first_alpha_code + k;
    if (code >= n_codes || code_wanted[scene][code] == 0) continue;
    float* plane = planes[scene][single_plane(code, n_bands)];
    const double own = alpha_objects[k] >= 0 && alpha_objects[k] == object ? layer_coverage : 0.0;
    if (in_front) {
      plane[pixel] = static_cast<float>((1.0 - layer_coverage) * plane[pixel] + own);
    } else {
      plane[pixel] = static_cast<float>(plane[pixel] + open * own);
    }
  }
}

int TCMatte_fields::writable(int row, int col, int object, int& pixel) const {
  if (use_mattes == 0 || allocated == 0 || object_wanted == nullptr) return 0;
  if (object < 0 || object >= held_objects_ || object_wanted[object] == 0) return 0;
  if (row < 0 || row >= n_rows || col < 0 || col >= n_cols) return 0;
  pixel = row * n_cols + col;
  return 1;
}

void TCMatte_fields::accumulate(int row, int col, int object, double weight_new, double weight_old,
                                double coverage, double sample_weight, double distance,
                                const double* radiance, const TCMatte_sample* sample) {
  accumulate_any(row, col, object, weight_new, weight_old, coverage, sample_weight, distance,
                 radiance, nullptr, sample);
}

void TCMatte_fields::accumulate(int row, int col, int object, double weight_new, double weight_old,
                                double coverage, double sample_weight, double distance,
                                const float* radiance, const TCMatte_sample* sample) {
  accumulate_any(row, col, object, weight_new, weight_old, coverage, sample_weight, distance,
                 nullptr, radiance, sample);
}

void TCMatte_fields::accumulate_any(int row, int col, int object, double weight_new,
                                    double weight_old, double coverage, double sample_weight,
                                    double distance, const double* radiance_d,
                                    const float* radiance_f, const TCMatte_sample* sample) {
  int pixel = 0;
  if (!writable(row, col, object, pixel)) return;
  float** table = planes[object];
  const int* wanted = code_wanted[object];
  const int wanted_count = n_codes;

  const int with_sample = sample != nullptr && sample->on != 0 && sample->values != nullptr &&
                          sample->n_bands == n_bands;
  if (with_sample) {
    for (int code = 0; code < wanted_count && code < normal_code; code++) {
      if (!wanted[code] || !summed_from_sample(code)) continue;
      int first = 0;
      int count = 0;
      plane_layout(code, n_bands, first, count);
      for (int p = first; p < first + count; p++) {
        table[p][pixel] = static_cast<float>(table[p][pixel] * weight_old +
                                             weight_new * sample_weight * sample->values[p]);
      }
    }
    if (normal_code < wanted_count && wanted[normal_code]) {
      // A weighted mean of directions, whatever the weights add up to.
      double s = weight_old + weight_new;
      if (s == 0.0) s = 1.0;
      int first = 0;
      int count = 0;
      plane_layout(normal_code, n_bands, first, count);
      for (int p = first; p < first + count; p++) {
        table[p][pixel] = static_cast<float>((weight_old / s) * table[p][pixel] +
                                             (weight_new / s) * sample->values[p]);
      }
    }
  } else if (wanted[0] && (radiance_d != nullptr || radiance_f != nullptr)) {
    for (int b = 0; b < n_bands; b++) {
      const double r = radiance_d != nullptr ? radiance_d[b] : radiance_f[b];
      table[b][pixel] = static_cast<float>(table[b][pixel] * weight_old + weight_new * r);
    }
  }

  if (distance_code < wanted_count && wanted[distance_code])
    table[single_plane(distance_code, n_bands)][pixel] = static_cast<float>(distance);
  if (coverage_code < wanted_count && wanted[coverage_code])
    table[single_plane(coverage_code, n_bands)][pixel] = static_cast<float>(coverage);
  // An object's alpha matte of itself is its coverage, like its
  // fraction_filled; alpha mattes of other objects come from per-ray samples.
  for (int k = 0; k < alpha_codes; k++) {
    const int code = first_alpha_code + k;
    if (code >= wanted_count || !wanted[code] || alpha_objects[k] != object) continue;
    table[single_plane(code, n_bands)][pixel] = static_cast<float>(coverage);
  }
}
