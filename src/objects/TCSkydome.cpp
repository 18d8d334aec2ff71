#include "TCSkydome.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "TCConstants.h"
#include "TCData_file.h"
#include "TCObject_list.h"
#include "TCSettings.h"
#include "TCTexture_plane.h"
#include "TCView.h"
#include "object_contour.h"

namespace {

// Squared depths and radiances handed to the contour stay within this, so
// that its single-precision planes never overflow, whatever a file says.
const double largest_sample = 1e30;

double bounded(double value) {
  if (value > largest_sample) return largest_sample;
  if (value < -largest_sample) return -largest_sample;
  return value;
}

void exit_with(const char* message, int status) {
  std::cout << message << "\n";
  std::cout.flush();
  std::exit(status);
}

// rows x cols doubles in one block behind a table of row pointers; null when
// memory runs out.
double** new_grid(int rows, int cols) {
  double** grid = new (std::nothrow) double*[rows];
  double* block = new (std::nothrow) double[static_cast<size_t>(rows) * cols]();
  if (grid == nullptr || block == nullptr) {
    delete[] grid;
    delete[] block;
    return nullptr;
  }
  for (int i = 0; i < rows; i++) grid[i] = block + static_cast<size_t>(i) * cols;
  return grid;
}

void delete_grid(double** grid) {
  if (grid == nullptr) return;
  delete[] grid[0];
  delete[] grid;
}

double* new_doubles(int count) {
  return new (std::nothrow) double[count > 0 ? count : 1]();
}

}  // namespace

TCSkydome::TCSkydome(const Skydome_input& input)
    : TCObject(input),
      n_bands(input.number_of_bands > 0 ? input.number_of_bands : 0),
      band_ids(nullptr),
      tex_width(1.0),
      tex_height(1.0),
      animation(input.animation),
      alpha_channel(input.alpha_channel),
      alpha_band(0),
      tex_band_count(0),
      min_radiance(nullptr),
      max_radiance(nullptr),
      texture_values(nullptr),
      texture_off(1),
      imaging_method(input.imaging_method),
      texture_mode(input.texture_mode),
      samples_x(2),
      samples_y(2),
      sample_u(nullptr),
      sample_v(nullptr),
      texture(nullptr),
      sin_horizon(std::sin(input.horizon_angle)),
      dome_radius(input.dome_radius) {
  copy_text(file_name, input.dome_file, sizeof(file_name));
  if (input.band_ids == nullptr) n_bands = 0;
  alpha_band = alpha_channel != 0 ? n_bands : 0;
  tex_band_count = alpha_channel != 0 ? n_bands + 1 : n_bands;

  band_ids = new (std::nothrow) int[n_bands > 0 ? n_bands : 1]();
  min_radiance = new_doubles(tex_band_count);
  max_radiance = new_doubles(tex_band_count);
  texture_values = new_doubles(tex_band_count);
  if (band_ids == nullptr || min_radiance == nullptr || max_radiance == nullptr ||
      texture_values == nullptr)
    exit_with("unable to allocate texture memory ", 1);
  for (int i = 0; i < n_bands; i++) {
    band_ids[i] = input.band_ids[i];
    min_radiance[i] = input.min_radiance != nullptr ? input.min_radiance[i] : 0.0;
    max_radiance[i] = input.max_radiance != nullptr ? input.max_radiance[i] : 0.0;
  }
  // The alpha band's bytes stand for an opacity of 0 to 1.
  if (alpha_channel != 0) {
    min_radiance[alpha_band] = 0.0;
    max_radiance[alpha_band] = 1.0;
  }

  if (animation == 0) {
    texture = new_texture();
    if (texture->load_picture(file_name, 1, 0, 0, 0, 0)) {
      texture_off = 0;
    } else {
      // Not fatal: the dome stays dark and the run goes on.
      std::cout << "unable to allocate texture map"
                << "\n";
    }
  } else if (animation == 100) {
    exit_with("time based animation not yet implemented ", 1);
  }
  // With "frames" the first picture comes with the first set_time.

  samples_x = samples_y = imaging_method < 2 ? 2 : 4;
  sample_u = new_grid(samples_x, samples_y);
  sample_v = new_grid(samples_x, samples_y);
  if (sample_u == nullptr || sample_v == nullptr)
    exit_with("unable to allocate texture memory ", 1);
}

TCSkydome::~TCSkydome() {
  delete texture;
  delete[] band_ids;
  delete[] min_radiance;
  delete[] max_radiance;
  delete[] texture_values;
  delete_grid(sample_u);
  delete_grid(sample_v);
}

TCTexture_plane* TCSkydome::new_texture() const {
  TCTexture_plane* plane = new (std::nothrow) TCTexture_plane(
      tex_width, tex_height, tex_band_count, min_radiance, max_radiance, texture_mode, 0, 1);
  if (plane == nullptr) exit_with("unable to allocate texture map ", 1);
  return plane;
}

void TCSkydome::set_time(double t) {
  if (animation == 101) {
    const int frame = list != nullptr ? list->current_frame : 1;
    char frame_file[300];
    std::snprintf(frame_file, sizeof(frame_file), "%s.%04d.rgb", file_name, frame);
    delete texture;
    texture = nullptr;
    texture_off = 1;
    texture = new_texture();
    if (!texture->load_picture(frame_file, 1, 0, 0, 0, 0)) {
      std::cout << "unable to allocate skydome texture " << frame_file << "\n";
      std::cout.flush();
      // A status of its own, so that a batch script can tell a missing frame.
      std::exit(1912);
    }
    texture_off = 0;
    if (verbose) std::cout << "skydome texture set to " << frame_file << "\n";
  } else if (animation == 100) {
    if (verbose) std::cout << "setting skydome texture to time " << t << "\n";
  }
  TCObject::set_time(t);
}

void TCSkydome::radiance(const TCRay&, TCSpectrum& out) {
  for (int i = 0; i < out.n; i++) out.radiance_in_band[i] = 1.0;
}

int TCSkydome::intersect(const TCRay& ray, TCVector& hit, double& distance) {
  distance = dome_radius;
  hit = ray.origin() + ray.direction() * dome_radius;
  return 1;
}

void TCSkydome::image_contour(TCView& view, object_contour& contour) {
  if (imaging_method == 1 && view.anti_alias == 1) return;
  if (texture_off || texture == nullptr) return;

  TCView local;
  view_in_object_frame(view, local);

  // Where each band the camera wants sits among the dome's bands (-1: absent).
  const int n_out = contour.spectrum != nullptr ? contour.spectrum->n : 0;
  double* radiance = new_doubles(n_out);
  int* band_of = new (std::nothrow) int[n_out > 0 ? n_out : 1];
  if (radiance == nullptr || band_of == nullptr) exit_with("unable to allocate texture memory ", 1);
  for (int k = 0; k < n_out; k++) {
    band_of[k] = -1;
    for (int m = 0; m < n_bands && band_of[k] < 0; m++)
      if (band_ids[m] == contour.spectrum->band_id[k]) band_of[k] = m;
  }

  // The dome is entered in the depth buffer at the square of its radius.
  const double depth = bounded(dome_radius * dome_radius);
  const int rows = local.n_rows < contour.n_rows ? local.n_rows : contour.n_rows;
  const int cols = local.n_cols < contour.n_cols ? local.n_cols : contour.n_cols;
  for (int row = 0; row < rows; row++) {
    for (int col = 0; col < cols; col++) {
      double e0, e1, a0, a1;
      local.pixel_bounds(row, col, e0, e1, a0, a1);
      int visible = 0;
      double max_u = -99999999.0, min_u = 99999999.0;
      double max_v = -99999999.0, min_v = 99999999.0;
      for (int i = 0; i < samples_x; i++) {
        const double e = e0 + (e1 - e0) * (i + 0.5) / samples_x;
        for (int j = 0; j < samples_y; j++) {
          const double a = a0 + (a1 - a0) * (j + 0.5) / samples_y;
          TCRay ray;
          local.plane_ray(e, a, ray);
          const double x = ray[3], y = ray[4], z = ray[5];
          // Strict: a ray exactly on the horizon does not show the dome.
          if (z > -sin_horizon) visible = 1;
          // Equal-area projection of the upper hemisphere onto the unit
          // square; the lower one folds onto it through |z|.
          const double s = std::sqrt(std::fabs(z) + 1.0);
          double u = 99999999.0, v = 99999999.0;
          if (s > 0.0) {
            u = 0.5 * x / s;
            v = 0.5 * y / s;
          }
          sample_u[i][j] = u;
          sample_v[i][j] = v;
          if (u > max_u) max_u = u;
          if (u < min_u) min_u = u;
          if (v > max_v) max_v = v;
          if (v < min_v) min_v = v;
        }
      }
      const double footprint = (max_u - min_u) > (max_v - min_v) ? max_u - min_u : max_v - min_v;

      if (!contour.pixel_wanted(row, col, depth, depth)) continue;
      double coverage = visible ? 1.0 : 0.0;
      if (!(coverage > 0.1)) continue;

      texture->average_grid(texture_values, footprint, samples_x, samples_y, sample_u, sample_v);
      if (alpha_channel == 2) coverage *= texture_values[alpha_band];
      for (int k = 0; k < n_out; k++)
        radiance[k] = band_of[k] >= 0 ? bounded(coverage * texture_values[band_of[k]]) : 0.0;
      // Here the opacity thins the pixel without darkening what it adds.
      if (alpha_channel == 1) coverage *= texture_values[alpha_band];
      contour.add_sample(row, col, radiance, depth, depth, depth, coverage, object_id, nullptr);
    }
  }
  delete[] radiance;
  delete[] band_of;
}
