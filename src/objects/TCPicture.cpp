#include "TCPicture.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "TCCamera.h"
#include "TCData_file.h"
#include "TCObject_list.h"
#include "TCPolygon.h"
#include "TCTexture_plane.h"
#include "TCView.h"
#include "object_contour.h"

namespace {

// Squared depths and radiances handed to the contour stay within this, so
// that its single-precision planes never overflow, whatever a file says.
const double largest_sample = 1e30;

void exit_with(const char* message, const char* detail) {
  std::cout << message << detail << "\n";
  std::cout.flush();
  std::exit(1);
}

double bounded(double value) {
  if (value > largest_sample) return largest_sample;
  if (value < -largest_sample) return -largest_sample;
  return value;
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

double* new_doubles(int count, double value) {
  double* values = new (std::nothrow) double[count > 0 ? count : 1];
  if (values == nullptr) return nullptr;
  for (int i = 0; i < count; i++) values[i] = value;
  return values;
}

}  // namespace

TCPicture::TCPicture(const Picture_input& input)
    : TCObject(input),
      n_bands(input.number_of_bands > 0 ? input.number_of_bands : 0),
      band_ids(nullptr),
      width(input.width),
      height(input.height),
      animation(input.animation),
      alpha_channel(input.alpha_channel),
      alpha_band(0),
      tex_band_count(0),
      min_radiance(nullptr),
      max_radiance(nullptr),
      texture_values(nullptr),
      no_texture(1),
      auto_scale(input.auto_scale_flag != 0 ? 101 : 0),
      has_picture_side(0),
      texture(nullptr),
      imaging_method(input.imaging_method),
      samples_x(2),
      samples_y(2),
      sample_u(nullptr),
      sample_v(nullptr) {
  copy_text(file_name, input.picture_file, sizeof(file_name));
  if (input.band_ids == nullptr) n_bands = 0;
  alpha_band = alpha_channel != 0 ? n_bands : 0;
  tex_band_count = alpha_channel != 0 ? n_bands + 1 : n_bands;

  band_ids = new (std::nothrow) int[n_bands > 0 ? n_bands : 1]();
  min_radiance = new_doubles(tex_band_count, 0.0);
  max_radiance = new_doubles(tex_band_count, 0.0);
  texture_values = new_doubles(tex_band_count, 0.0);
  int ok = band_ids != nullptr && min_radiance != nullptr && max_radiance != nullptr &&
           texture_values != nullptr;
  for (int side = 0; side < 2; side++) {
    optical_nature[side] = input.optical_nature[side];
    // A transparent side lets everything through; the file's values for a
    // solid side play no part.
    const int clear = optical_nature[side] == picture_transparent;
    color[side] = new_doubles(n_bands, 0.0);
    reflectivity[side] = new_doubles(n_bands, 0.0);
    transmissivity[side] = new_doubles(n_bands, clear ? 1.0 : 0.0);
    ok = ok && color[side] != nullptr && reflectivity[side] != nullptr &&
         transmissivity[side] != nullptr;
  }
  if (!ok) exit_with("unable to allocate texture memory ", "");
  for (int i = 0; i < n_bands; i++) {
    band_ids[i] = input.band_ids[i];
    for (int side = 0; side < 2; side++)
      if (input.color[side] != nullptr) color[side][i] = input.color[side][i];
    if (input.min_radiance != nullptr) min_radiance[i] = input.min_radiance[i];
    if (input.max_radiance != nullptr) max_radiance[i] = input.max_radiance[i];
  }
  // The alpha band's bytes stand for an opacity of 0 to 1.
  if (alpha_channel != 0) {
    min_radiance[alpha_band] = 0.0;
    max_radiance[alpha_band] = 1.0;
  }

  const double half_w = 0.5 * width, half_h = 0.5 * height;
  corners[0] = TCVector(-half_w, -half_h, 0.0);
  corners[1] = TCVector(-half_w, half_h, 0.0);
  corners[2] = TCVector(half_w, half_h, 0.0);
  corners[3] = TCVector(half_w, -half_h, 0.0);

  has_picture_side =
      optical_nature[0] == picture_image || optical_nature[1] == picture_image ? 1 : 0;
  if (has_picture_side) {
    if (animation == 0) {
      texture = new_texture();
      if (!texture->load_picture(file_name, 1, 0, 0, 0, 0))
        exit_with("unable to allocate texture map ", file_name);
      no_texture = 0;
    } else if (animation == 100) {
      exit_with("time based animation not yet implemented ", "");
    }
    // With "frames" the first picture comes with the first set_time.
  }

  samples_x = samples_y = imaging_method < 2 ? 2 : 4;
  sample_u = new_grid(samples_x, samples_y);
  sample_v = new_grid(samples_x, samples_y);
  if (sample_u == nullptr || sample_v == nullptr)
    exit_with("unable to allocate texture memory ", "");
}

TCPicture::~TCPicture() {
  delete texture;
  delete[] band_ids;
  for (int side = 0; side < 2; side++) {
    delete[] color[side];
    delete[] reflectivity[side];
    delete[] transmissivity[side];
  }
  delete[] min_radiance;
  delete[] max_radiance;
  delete[] texture_values;
  delete_grid(sample_u);
  delete_grid(sample_v);
}

TCTexture_plane* TCPicture::new_texture() const {
  TCTexture_plane* plane = new (std::nothrow)
      TCTexture_plane(width, height, tex_band_count, min_radiance, max_radiance, 1, 0, 1);
  if (plane == nullptr) exit_with("unable to allocate texture map ", file_name);
  return plane;
}

int TCPicture::side_is_transparent(int side) const {
  return optical_nature[side] != picture_solid && optical_nature[side] != picture_image;
}

void TCPicture::prepare_camera(TCCamera* camera) {
  if (auto_scale != 101 || camera == nullptr || texture == nullptr) return;
  double* low = new_doubles(tex_band_count, camera->get_min_value());
  double* high = new_doubles(tex_band_count, camera->get_max_value());
  double* gamma = new_doubles(tex_band_count, camera->get_gamma());
  if (low == nullptr || high == nullptr || gamma == nullptr)
    exit_with("unable to allocate texture memory ", "");
  if (alpha_channel != 0) {
    low[alpha_band] = 0.0;
    high[alpha_band] = 1.0;
    gamma[alpha_band] = 1.0;
  }
  texture->set_display_range(camera->get_rescale_method(), high, low, gamma);
  delete[] low;
  delete[] high;
  delete[] gamma;
}

void TCPicture::set_time(double t) {
  if (animation == 101 && has_picture_side) {
    const int frame = list != nullptr ? list->current_frame : 1;
    char frame_file[300];
    std::snprintf(frame_file, sizeof(frame_file), "%s.%04d.rgb", file_name, frame);
    delete texture;
    texture = nullptr;
    no_texture = 1;
    texture = new_texture();
    if (!texture->load_picture(frame_file, 1, 0, 0, 0, 0))
      exit_with("unable to allocate texture map ", frame_file);
    no_texture = 0;
    std::cout << "setting picture texture to " << frame_file << "\n";
  } else if (animation == 100) {
    std::cout << "setting picture texture to time " << t << "\n";
  }
  TCObject::set_time(t);
}

double TCPicture::ray_measure(TCRay ray) {
  TCVector a;
  direction_to_object(TCVector(ray[0], ray[1], ray[2]), a);
  return a.dot(position) - (std::fabs(width * a.x) + std::fabs(height * a.y)) / 2;
}

int TCPicture::intersect(const TCRay& ray, TCVector& hit, double& distance) {
  distance = 0.0;
  hit = ray.origin();
  const double oz = ray[2], dz = ray[5];
  if (oz == 0.0) return 0;
  if (side_is_transparent(oz > 0.0 ? 0 : 1)) return 0;
  if (dz == 0.0) return 0;
  const double t = -oz / dz;
  if (!(t > 0.0)) return 0;
  const double x = ray[0] + t * ray[3];
  const double y = ray[1] + t * ray[4];
  // Strictly inside: a point on an edge misses.
  if (!(std::fabs(x) < 0.5 * width && std::fabs(y) < 0.5 * height)) return 0;
  hit = TCVector(x, y, 0.0);
  distance = t;
  return 1;
}

int TCPicture::outline_in_image(const TCView& view, TCPolygon& clipped) const {
  // Corners in the view's frame, cut at the view plane: a corner behind it
  // moves along an edge to just in front of it.
  TCVector in_view[4];
  int any_in_front = 0;
  for (int i = 0; i < 4; i++) {
    in_view[i] = view.world_to_view.times(corners[i] - view.position);
    if (in_view[i].z > 0.0) any_in_front = 1;
  }
  if (!any_in_front) return 0;
  if (view.step_elevation == 0.0 || view.step_azimuth == 0.0) return 0;

  TCPolygon outline;
  for (int i = 0; i < 4; i++) {
    const TCVector& previous = in_view[(i + 3) % 4];
    const TCVector& current = in_view[i];
    const int previous_in = previous.z > 0.0;
    const int current_in = current.z > 0.0;
    TCVector points[2];
    int n_points = 0;
    if (previous_in != current_in) {
      const TCVector& behind = current_in ? previous : current;
      const TCVector& front = current_in ? current : previous;
      double t = (-behind.z / (front.z - behind.z)) * 1.0001;
      if (t > 1.0) t = 1.0;
      points[n_points++] = behind + (front - behind) * t;
    }
    if (current_in) points[n_points++] = current;
    for (int k = 0; k < n_points; k++) {
      const double e = -points[k].x / points[k].z;
      const double a = -points[k].y / points[k].z;
      const double col = (a - view.first_azimuth) / view.step_azimuth;
      const double row = (e - view.first_elevation) / view.step_elevation;
      // Only a corner within rounding of the view plane projects to
      // infinity; such an outline is not drawn.
      if (!std::isfinite(col) || !std::isfinite(row)) return 0;
      outline.add_vertex(col, row);
    }
  }
  outline.clip_to_rectangle(0.0, view.n_cols, 0.0, view.n_rows, clipped);
  return clipped.size() >= 3;
}

void TCPicture::image_contour(TCView& view, object_contour& contour) {
  if (imaging_method == 1 && view.anti_alias == 1) return;
  if (!(width > 0.0 && height > 0.0)) return;

  TCView local;
  view_in_object_frame(view, local);
  // A viewpoint in the plane sees the back.
  const int side = local.position.z <= 0.0 ? 1 : 0;
  if (side_is_transparent(side)) return;

  TCPolygon clipped;
  if (!outline_in_image(local, clipped)) return;

  const int n_out = contour.spectrum != nullptr ? contour.spectrum->n : 0;
  double* radiance = new_doubles(n_out, 0.0);
  int* band_of = new (std::nothrow) int[n_out > 0 ? n_out : 1];
  if (radiance == nullptr || band_of == nullptr)
    exit_with("unable to allocate texture memory ", "");
  for (int k = 0; k < n_out; k++) {
    band_of[k] = -1;
    for (int m = 0; m < n_bands && band_of[k] < 0; m++)
      if (band_ids[m] == contour.spectrum->band_id[k]) band_of[k] = m;
  }

  if (local.n_rows == 1 && local.n_cols == 1) {
    paint_pixel(local, contour, 0, 0, side, -1, clipped, band_of, radiance);
  } else if (local.n_rows > 0 && local.n_cols > 0) {
    const int rows = local.n_rows, cols = local.n_cols;
    unsigned char* mask = new (std::nothrow) unsigned char[static_cast<size_t>(rows) * cols];
    if (mask == nullptr) exit_with("unable to allocate texture memory ", "");
    int row0 = 0, row1 = -1, col0 = 0, col1 = -1;
    if (clipped.scan_mask(mask, rows, cols, row0, row1, col0, col1)) {
      for (int row = row0; row <= row1; row++) {
        for (int col = col0; col <= col1; col++) {
          const unsigned char marked = mask[static_cast<size_t>(row) * cols + col];
          if (marked == 0) continue;
          paint_pixel(local, contour, row, col, side, marked == 1 ? 1 : 0, clipped, band_of,
                      radiance);
        }
      }
    }
    delete[] mask;
  }
  delete[] radiance;
  delete[] band_of;
}

void TCPicture::paint_pixel(const TCView& view, object_contour& contour, int row, int col, int side,
                            int inside, const TCPolygon& clipped, const int* band_of,
                            double* radiance) {
  double e0, e1, a0, a1;
  view.pixel_bounds(row, col, e0, e1, a0, a1);
  // Distances along the rays to the plane, kept in single precision.
  float min_t = 100000000.0f, max_t = 0.0f;
  double t = 0.0, dz = 0.0;
  for (int i = 0; i < samples_x; i++) {
    const double e = e0 + (e1 - e0) * (i + 0.5) / samples_x;
    for (int j = 0; j < samples_y; j++) {
      const double a = a0 + (a1 - a0) * (j + 0.5) / samples_y;
      TCRay ray;
      view.plane_ray(e, a, ray);
      dz = ray[5];
      t = -ray[2] / dz;
      sample_u[i][j] = ray[0] + t * ray[3];
      sample_v[i][j] = ray[1] + t * ray[4];
      const float t_single = static_cast<float>(bounded(t));
      if (t_single < min_t) min_t = t_single;
      if (t_single > max_t) max_t = t_single;
    }
  }
  // The pixel's size on the plane at the last sample's distance, halved.
  const double pixel_width = std::fabs(a1 - a0), pixel_height = std::fabs(e1 - e0);
  const double footprint = 0.5 * ((pixel_width + pixel_height) * 0.5 * t / std::fabs(dz));
  const double near = bounded(static_cast<double>(min_t) * min_t);
  const double far = bounded(static_cast<double>(max_t) * max_t);
  const double middle = (near + far) * 0.5;
  if (!contour.pixel_wanted(row, col, near, far)) return;

  double coverage = 1.0;
  if (inside == 0) {
    TCPolygon piece;
    clipped.clip_to_rectangle(col, col + 1.0, row, row + 1.0, piece);
    coverage = piece.area();
  } else if (inside < 0) {
    coverage = clipped.area();
  }
  if (coverage == 0.0) return;

  const int n_out = contour.spectrum != nullptr ? contour.spectrum->n : 0;
  if (optical_nature[side] == picture_image && !no_texture && texture != nullptr) {
    texture->average_grid(texture_values, footprint, samples_x, samples_y, sample_u, sample_v);
    if (alpha_channel == 2) coverage *= texture_values[alpha_band];
    for (int k = 0; k < n_out; k++)
      radiance[k] = band_of[k] >= 0 ? bounded(coverage * texture_values[band_of[k]]) : 0.0;
    // Here the opacity thins the pixel without darkening what it adds.
    if (alpha_channel == 1) coverage *= texture_values[alpha_band];
  } else {
    for (int k = 0; k < n_out; k++)
      radiance[k] = band_of[k] >= 0 ? bounded(coverage * color[side][band_of[k]]) : 0.0;
  }
  contour.add_sample(row, col, radiance, near, middle, far, coverage, object_id, nullptr);
}
