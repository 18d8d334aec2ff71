#include "TCHeight_grid.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

#include "TCHdf_image.h"

namespace {

const int height_grid_kind = -7;
const int multiplier_grid_kind = -8;

}  // namespace

TCHeight_grid::TCHeight_grid(const Height_grid_details_input& input, float* buffer)
    : TCSurface_field(height_grid_kind, buffer, input.n_x, input.n_y, input.dx, input.dy) {
  const Kind_words words = {
      height_grid_kind, "wake file ", "unable to allocate space for height grid",
      "unable to read in ocean height field from ", "setting height field to zero "};
  words_ = words;
  set_up(input);
}

TCHeight_grid::TCHeight_grid(const Height_grid_details_input& input, float* buffer,
                             const Kind_words& words)
    : TCSurface_field(words.kind, buffer, input.n_x, input.n_y, input.dx, input.dy), words_(words) {
  set_up(input);
}

void TCHeight_grid::set_up(const Height_grid_details_input& input) {
  number_of_keys = input.number_of_key_times > 0 ? input.number_of_key_times : 0;
  key_times = nullptr;
  key_scales = nullptr;
  if (number_of_keys > 0) {
    key_times = new (std::nothrow) double[number_of_keys];
    key_scales = new (std::nothrow) double[number_of_keys];
    if (key_times == nullptr || key_scales == nullptr || input.key_times == nullptr ||
        input.key_scales == nullptr) {
      std::cout << words_.construction_failure << "\n";
      std::cout.flush();
      std::exit(1);
    }
    for (int k = 0; k < number_of_keys; k++) {
      key_times[k] = input.key_times[k];
      key_scales[k] = input.key_scales[k];
    }
  }
  velocity = input.velocity;
  direction = input.direction;
  orientation = input.orientation;
  position_x = input.position_x;
  position_y = input.position_y;
  std::strncpy(field_file, input.field_file, sizeof(field_file) - 1);
  field_file[sizeof(field_file) - 1] = '\0';
  current_scale = scale_at(0.0);
  // Loaded once now; a file that cannot be read here ends the run.
  if (field == nullptr || !read_field_file()) {
    std::cout << words_.construction_failure << "\n";
    std::cout.flush();
    std::exit(1);
  }
}

TCHeight_grid::~TCHeight_grid() {
  delete[] key_times;
  delete[] key_scales;
}

double TCHeight_grid::scale_at(double time) const {
  if (number_of_keys < 1) return 1.0;
  if (number_of_keys == 1) return key_scales[0];
  // Below the first key the first segment goes on, past the last the last.
  int segment = 0;
  while (segment < number_of_keys - 2 && time > key_times[segment + 1]) segment++;
  const double t0 = key_times[segment];
  const double t1 = key_times[segment + 1];
  const double fraction = (time - t0) / (t1 - t0);
  return key_scales[segment] + fraction * (key_scales[segment + 1] - key_scales[segment]);
}

void TCHeight_grid::offset_at(double time, double& offset_x, double& offset_y) const {
  const double half_x = 0.5 * dx * n_x;
  const double half_y = 0.5 * dy * n_y;
  const double co = std::cos(orientation);
  const double so = std::sin(orientation);
  offset_x = co * half_x - so * half_y - position_x - std::cos(direction) * velocity * time;
  offset_y = so * half_x + co * half_y - position_y - std::sin(direction) * velocity * time;
}

int TCHeight_grid::moving_offset(double& x, double& y, double time) const {
  offset_at(time, x, y);
  return 1;
}

int TCHeight_grid::read_field_file() const {
  const int dims[2] = {n_y, n_x};
  int found[2];
  const int status = hdf_read_grid(field_file, field, dims, found);
  if (status == hdf_grid_read) return 1;
  if (status == hdf_grid_wrong_size) {
    std::cout << words_.size_failure << field_file << " is not of correct dimension\n";
    std::cout << "file size : " << found[1] << " x " << found[0] << "\n";
    std::cout << "array size: " << n_x << " x " << n_y << "\n";
    return 0;
  }
  // The multiplier says height here too.
  std::cout << "height file " << field_file << "can not be opened\n";
  return 0;
}

void TCHeight_grid::fill(float value) const {
  const long count = static_cast<long>(n_x) * n_y;
  for (long k = 0; k < count; k++) field[k] = value;
}

void TCHeight_grid::evolve_heights(double time) {
  current_scale = scale_at(time);
  if (!read_field_file()) {
    std::cout << words_.read_failure << field_file << "\n";
    std::cout << words_.fill_warning << "\n";
    fill(0.0f);
    return;
  }
  const long count = static_cast<long>(n_x) * n_y;
  for (long k = 0; k < count; k++) field[k] = static_cast<float>(field[k] * current_scale);
}

double TCHeight_grid::transform_to_lattice() {
  return 0.0;
}

void TCHeight_grid::evolve_acceleration_into(float* array, double, double, double, double) {
  zero_buffer(array);
}

TCMultiplier_grid::TCMultiplier_grid(const Height_grid_details_input& input, float* buffer)
    : TCHeight_grid(
          input, buffer,
          {multiplier_grid_kind, "multilplier file ",
           "unable to allocate space for multiplier grid",
           "unable to read in ocean multiplier field from ", "setting multiplier field to one "}) {}

TCMultiplier_grid::~TCMultiplier_grid() {}

void TCMultiplier_grid::evolve_heights(double time) {
  current_scale = scale_at(time);
  if (!read_field_file()) {
    std::cout << words_.read_failure << field_file << "\n";
    std::cout << words_.fill_warning << "\n";
    fill(1.0f);
    return;
  }
  // Here the scale is a power of the factor, not a product.
  if (current_scale == 1.0) return;
  const long count = static_cast<long>(n_x) * n_y;
  for (long k = 0; k < count; k++) {
    field[k] = static_cast<float>(std::pow(static_cast<double>(field[k]), current_scale));
  }
}

void TCMultiplier_grid::evolve_acceleration_into(float* array, double, double, double, double) {
  const long count = buffer_floats();
  for (long k = 0; k < count; k++) array[k] = 1.0f;
}
