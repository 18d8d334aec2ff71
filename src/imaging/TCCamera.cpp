#include "TCCamera.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <string>

#include "TCData_file.h"
#include "TCImage_file.h"
#include "TCMatte_names.h"
#include "TCObject_kinds.h"
#include "TCScene_tracer.h"
#include "TCSettings.h"
#include "TCSgi_image.h"
#include "object_contour.h"

namespace {

// Half angle in radians of a field of view in degrees: pi / 360 from the
// engine's pi.
const double half_angle_per_degree = 0.008726646259722222;

// What the logarithm gives for a pixel with no light, in log10 units.
const float log_of_nothing = -20.0f;

// A normal shorter than this has no direction; it becomes straight up.
const double shortest_normal = 0.0001;

// Matte codes the camera treats by name.
const int absorption_code = 1;
const int transmission_code = 2;
const int per_band_codes = 18;  // codes below this have one plane per band
const int distance_code = 19;
const int scene_distance_code = 20;
const int normal_code = 32;
const int scene_xyz_code = 33;
const int no_picture_code = 34;

// The picture's own files carry no matte code.
const int picture_code = -1;

// Room for any file name the camera composes.
const int name_length = 4096;

void exit_with(const char* text) {
  std::cout << text << std::flush;
  std::exit(1);
}

void exit_with(const char* text, const char* name) {
  std::cout << text << name << "\n" << std::flush;
  std::exit(1);
}

void camera_part_failed(const char* reason) {
  std::cout << reason << "\n"
            << "unablt to process camera part of camera input "
            << "\n"
            << std::flush;
  std::exit(1);
}

float* new_plane(long n_values, const char* failure) {
  float* plane = new (std::nothrow) float[n_values > 0 ? n_values : 1]();
  if (plane == nullptr) exit_with(failure);
  return plane;
}

// Mean of one n_sub_e by n_sub_a block of a row-major plane of cols columns,
// each term divided first, summed in double.
double block_mean(const float* plane, int cols, int out_row, int out_col, int n_sub_e,
                  int n_sub_a) {
  const double n = static_cast<double>(n_sub_e) * n_sub_a;
  double sum = 0.0;
  for (int p = 0; p < n_sub_e; p++) {
    const long row = static_cast<long>(out_row) * n_sub_e + p;
    for (int q = 0; q < n_sub_a; q++) {
      sum += plane[row * cols + static_cast<long>(out_col) * n_sub_a + q] / n;
    }
  }
  return sum;
}

// 1 when the text contains word.
int contains(const char* text, const char* word) {
  return text != nullptr && std::strstr(text, word) != nullptr;
}

}  // namespace

// ---- Construction ----

TCCamera::TCCamera(const TCCamera_input& input, TCObject_list* list_in)
    : TCObject(input),
      image_format(image_format_hdf),
      min_value(0.0f),
      max_value(1.0f),
      rescale_method(camera_rescale_none),
      gamma(1.0f),
      anti_alias(0),
      resampling_elevation(1),
      resampling_azimuth(1),
      efficiency_matte(0),
      n_pixel_elevation(1),
      n_pixel_azimuth(1),
      fov_elevation(0.0),
      fov_azimuth(0.0),
      pixel_size_elevation(0.0),
      pixel_size_azimuth(0.0),
      size_elevation(0.0),
      size_azimuth(0.0),
      n_sub_elevation(1),
      n_sub_azimuth(1),
      first_elevation(0),
      first_azimuth(0),
      last_elevation(0),
      last_azimuth(0),
      picture_fraction(0),
      image_slices(1),
      slices_to_be_imaged(nullptr),
      slices_not_recombined(0),
      spectrum(nullptr),
      need_picture(1),
      slice_first_elevation_(0),
      slice_first_azimuth_(0),
      fov_elevation_degrees_(0.0),
      fov_azimuth_degrees_(0.0) {
  efficiency_matte_file[0] = '\0';
  object_id = -1;
  list = list_in;
  scene = scene_tracer_of(list_in);

  // Named after its file, without the extension.
  int k = 0;
  while (k < 255 && input.object_file[k] != '\0' && input.object_file[k] != '.') {
    name[k] = input.object_file[k];
    k++;
  }
  name[k] = '\0';

  if (!matte_request.copy_from(input.matte) ||
      !process_matte_input(matte_request, scene, mattes, need_picture)) {
    exit_with("unable to process matte part of camera input\n");
  }

  take_camera_part(input);
  compute_image_plane();
  check_efficiency_matte();
  print_summary();
  set_view_window(first_elevation, last_elevation, first_azimuth, last_azimuth);
}

TCCamera::~TCCamera() {
  delete[] slices_to_be_imaged;
  delete spectrum;
}

// The reader takes sizes as they come; here they must describe a picture the
// camera can hold, with every sample index within an int.
void TCCamera::take_camera_part(const TCCamera_input& input) {
  image_format = input.image_format;
  min_value = input.min_value;
  max_value = input.max_value;
  rescale_method = input.rescale_method;
  gamma = input.gamma;
  anti_alias = input.anti_alias;
  resampling_elevation = input.resampling_elevation;
  resampling_azimuth = input.resampling_azimuth;
  efficiency_matte = input.efficiency_matte;
  copy_text(efficiency_matte_file, input.efficiency_matte_file, 256);
  n_pixel_elevation = input.n_pixel_elevation;
  n_pixel_azimuth = input.n_pixel_azimuth;
  fov_elevation = input.fov_elevation;
  fov_azimuth = input.fov_azimuth;
  n_sub_elevation = input.n_sub_elevation;
  n_sub_azimuth = input.n_sub_azimuth;
  first_elevation = input.first_elevation;
  first_azimuth = input.first_azimuth;
  last_elevation = input.last_elevation;
  last_azimuth = input.last_azimuth;
  picture_fraction = input.picture_fraction_flag;
  image_slices = input.image_slices;

  if (n_pixel_elevation < 1 || n_pixel_azimuth < 1) {
    camera_part_failed("camera needs at least one pixel on each axis");
  }
  if (n_sub_elevation < 1 || n_sub_azimuth < 1) {
    camera_part_failed("camera needs at least one sample per pixel on each axis");
  }
  if (first_elevation < 0 || last_elevation < first_elevation ||
      last_elevation >= n_pixel_elevation || first_azimuth < 0 || last_azimuth < first_azimuth ||
      last_azimuth >= n_pixel_azimuth) {
    camera_part_failed("imaged pixels lie outside the camera's picture");
  }
  const long long sample_rows = static_cast<long long>(n_pixel_elevation) * n_sub_elevation;
  const long long sample_cols = static_cast<long long>(n_pixel_azimuth) * n_sub_azimuth;
  if (sample_rows > INT_MAX || sample_cols > INT_MAX || sample_rows * sample_cols > INT_MAX) {
    camera_part_failed("camera picture has too many samples");
  }
  if (input.bands.n < 1) camera_part_failed("camera needs at least one band");
  if (image_slices < 1) camera_part_failed("camera needs at least one slice");

  spectrum = new (std::nothrow) TCSpectrum(input.bands);
  if (spectrum == nullptr) exit_with("unable to allocate camera spectrum \n");

  slices_to_be_imaged = new (std::nothrow) int[image_slices];
  if (slices_to_be_imaged == nullptr) exit_with("unable to allocate slices to be imaged \n");
  const int named = input.slices_given != 0 && input.slices_to_be_imaged != nullptr;
  for (int i = 0; i < image_slices; i++) {
    slices_to_be_imaged[i] = named ? input.slices_to_be_imaged[i] : 1;
  }
  // Slices named on the command line are parts of a run spread over
  // processes: their files wait for a later merge.
  slices_not_recombined = input.slices_given != 0 ? 1 : 0;

  // A sliced picture is always written whole.
  if (image_slices > 1) picture_fraction = 0;
}

void TCCamera::compute_image_plane() {
  fov_elevation_degrees_ = fov_elevation;
  fov_azimuth_degrees_ = fov_azimuth;
  fov_elevation = fov_elevation * half_angle_per_degree;
  fov_azimuth = fov_azimuth * half_angle_per_degree;
  pixel_size_elevation = 2.0 * std::tan(fov_elevation) / n_pixel_elevation;
  pixel_size_azimuth = 2.0 * std::tan(fov_azimuth) / n_pixel_azimuth;
  size_elevation = n_pixel_elevation * pixel_size_elevation;
  size_azimuth = n_pixel_azimuth * pixel_size_azimuth;
}

namespace {

void not_using_efficiency_mattes() {
  std::cout << "**NOT USING EFFICIENCY MATTES!**\n";
}

}  // namespace

// The matte must be an SGI RGB file of the camera's whole picture with at
// least one channel; otherwise the camera renders without it.
void TCCamera::check_efficiency_matte() {
  if (efficiency_matte == 0) return;
  int dims[2] = {0, 0};
  if (!rgb_read_dims(efficiency_matte_file, dims)) {
    std::cout << "Error reading efficiency matte dimensions from " << efficiency_matte_file << "\n"
              << "Error setting efficiency mattes from file: " << efficiency_matte_file << "\n";
    not_using_efficiency_mattes();
    efficiency_matte = 0;
    return;
  }
  int channels = 0;
  if (!rgb_read_channels(efficiency_matte_file, channels)) {
    std::cout << "Error reading efficiency matte channels from " << efficiency_matte_file << "\n"
              << "Error setting efficiency mattes from file: " << efficiency_matte_file << "\n";
    not_using_efficiency_mattes();
    efficiency_matte = 0;
    return;
  }
  if (dims[0] != n_pixel_elevation || dims[1] != n_pixel_azimuth) {
    std::cout << "Efficiency matte dimensions: (" << dims[1] << ", " << dims[0]
              << ") != camera dimensions: (" << n_pixel_azimuth << ", " << n_pixel_elevation
              << ")\n";
    not_using_efficiency_mattes();
    efficiency_matte = 0;
    return;
  }
  if (channels < 1) {
    std::cout << "No channels in efficiency matte file: " << efficiency_matte_file << "\n";
    not_using_efficiency_mattes();
    efficiency_matte = 0;
  }
}

void TCCamera::print_summary() const {
  if (!verbose) return;
  std::cout << "      CAMERA "
            << "\n"
            << "name of camera:   " << name << "\n"
            << "number of pixels: " << n_pixel_azimuth << " " << n_pixel_elevation << "\n"
            << "field of view   : " << fov_azimuth_degrees_ << " " << fov_elevation_degrees_ << "\n"
            << "imaged azimuth pixels    : " << first_azimuth << " " << last_azimuth << "\n"
            << "imaged elevation pixels : " << first_elevation << " " << last_elevation << "\n"
            << "fov " << fov_azimuth << " " << fov_elevation << "\n"
            << "number of bands " << spectrum->n << "\n"
            << "antialiasing flag " << anti_alias << "\n"
            << "memory saving     " << image_slices << "\n"
            << "need picture flag " << need_picture << "\n";
  char file_type[256];
  get_file_type(file_type);
  std::cout << "file type:        " << file_type << "\n";
  if (rescale_method == camera_rescale_log) {
    std::cout << "rescaling by log10 "
              << "\n";
  } else if (rescale_method == camera_rescale_gamma) {
    std::cout << "rescaling by gamma =  " << gamma << "\n";
  }
  // The limits only code 8-bit files.
  if (image_format != image_format_hdf) {
    std::cout << "minimum value =       " << min_value << "\n"
              << "maximum value =       " << max_value << "\n";
  }
  if (matte_request.use_mattes != 0 && matte_request.n_matte_objects > 0) {
    std::cout << "Generating mattes for: \n";
    for (int i = 0; i < matte_request.n_matte_objects; i++) {
      std::cout << "      TCObject: " << matte_request.matte_object_names[i] << "\n";
    }
  } else {
    std::cout << "Not generating mattes\n";
  }
  std::cout << "slices_imaged: ";
  const char* separator = "";
  for (int i = 0; i < image_slices; i++) {
    if (!slices_to_be_imaged[i]) continue;
    std::cout << separator << i;
    separator = " ";
  }
  std::cout << "\n";
  if (slices_not_recombined) {
    std::cout << "slices not recombined at end "
              << "\n";
  }
}

// ---- Pose and view ----

void TCCamera::print_dimensions() {
  TCObject::print_dimensions();
  std::cout << "number of pixels: " << n_pixel_azimuth << " " << n_pixel_elevation << "\n"
            << "field of view   : " << fov_azimuth_degrees_ << " " << fov_elevation_degrees_
            << "\n";
}

void TCCamera::set_position(const TCVector& position_in, double chi_in, double phi_in,
                            double theta_in) {
  TCObject::set_position(position_in, chi_in, phi_in, theta_in);
  set_view_window(first_elevation, last_elevation, first_azimuth, last_azimuth);
}

// The key frame pose goes through set_position, which rebuilds the view.
void TCCamera::set_time(double t) {
  TCObject::set_time(t);
}

void TCCamera::print_state(std::ostream& out) {
  TCObject::print_state(out);
  if (!print_flag) return;
  out << "number of pixels: " << n_pixel_azimuth << " " << n_pixel_elevation << "\n";
}

void TCCamera::plane_window(double size, int n_pixel, int first, int last, double& low,
                            double& high) {
  low = size * -0.5 + (size / n_pixel) * first;
  high = size * -0.5 + (size / n_pixel) * (last + 1);
}

void TCCamera::set_view_window(int first_e, int last_e, int first_a, int last_a) {
  double e0 = 0.0, e1 = 0.0, a0 = 0.0, a1 = 0.0;
  plane_window(size_elevation, n_pixel_elevation, first_e, last_e, e0, e1);
  plane_window(size_azimuth, n_pixel_azimuth, first_a, last_a, a0, a1);
  view.set_pose(position, chi, phi, theta);
  view.set_grid((last_e - first_e + 1) * n_sub_elevation, e0, e1,
                (last_a - first_a + 1) * n_sub_azimuth, a0, a1);
  // The whole picture is the camera's window, whichever slice is imaged.
  double we0 = 0.0, we1 = 0.0, wa0 = 0.0, wa1 = 0.0;
  plane_window(size_elevation, n_pixel_elevation, first_elevation, last_elevation, we0, we1);
  plane_window(size_azimuth, n_pixel_azimuth, first_azimuth, last_azimuth, wa0, wa1);
  view.set_whole((last_elevation - first_elevation + 1) * n_sub_elevation, we0, we1,
                 (last_azimuth - first_azimuth + 1) * n_sub_azimuth, wa0, wa1,
                 (first_e - first_elevation) * n_sub_elevation,
                 (first_a - first_azimuth) * n_sub_azimuth);
  view.anti_alias = anti_alias;
  view.resampling_elevation = resampling_elevation;
  view.resampling_azimuth = resampling_azimuth;
  slice_first_elevation_ = first_e;
  slice_first_azimuth_ = first_a;
}

void TCCamera::plane_ray(double e, double a, TCRay& ray) const {
  view.plane_ray(e, a, ray);
}

void TCCamera::get_file_type(char* buffer) const {
  if (buffer == nullptr) return;
  const char* type = ".img";
  if (image_format == image_format_rgb) type = ".rgb";
  if (image_format == image_format_tiff) type = ".tiff";
  std::snprintf(buffer, 256, "%s", type);
}

// ---- Imaging ----

void TCCamera::strip_columns(int first, int last, int n, int i, int& start, int& end) {
  const int width = n > 0 ? (last - first + 1) / n : 0;
  start = first + i * width;
  end = i == n - 1 ? last : first + (i + 1) * width - 1;
}

void TCCamera::image(const char* prefix, const char* frame_text, const char* suffix) {
  image_with_pass(picture_pass, prefix, frame_text, suffix);
}

void TCCamera::image_surface_line(const char* prefix, const char* frame_text, const char* suffix) {
  const std::string line_prefix = std::string(prefix ? prefix : "") + "_surfaceline";
  image_with_pass(surface_line_pass, line_prefix.c_str(), frame_text, suffix);
}

void TCCamera::image_with_pass(Pass pass, const char* prefix, const char* frame_text,
                               const char* suffix) {
  if (prefix == nullptr) prefix = "";
  if (frame_text == nullptr) frame_text = "";
  if (suffix == nullptr) suffix = "";

  if (image_slices <= 1) {
    if (slices_to_be_imaged[0]) {
      image_slice(pass, prefix, frame_text, suffix, first_elevation, last_elevation, first_azimuth,
                  last_azimuth);
    }
  } else {
    const int n = image_slices;
    for (int i = 0; i < n; i++) {
      if (!slices_to_be_imaged[i]) continue;
      std::cout << " imaging slice " << i + 1 << " of " << n << "\n";
      int start = 0, end = 0;
      strip_columns(first_azimuth, last_azimuth, n, i, start, end);
      // A window narrower than the slice count leaves strips with no columns.
      if (end < start) continue;
      const std::string slice_prefix = std::string(prefix) + "s" + std::to_string(i);
      image_slice(pass, slice_prefix.c_str(), frame_text, suffix, first_elevation, last_elevation,
                  start, end);
    }
  }
  // Objects asking the camera afterwards see the whole window again.
  set_view_window(first_elevation, last_elevation, first_azimuth, last_azimuth);

  if (image_slices > 1 && slices_not_recombined == 0) {
    recombine_slices(prefix, frame_text, suffix);
  }
}

void TCCamera::image_slice(Pass pass, const char* prefix, const char* frame_text,
                           const char* suffix, int first_e, int last_e, int first_a, int last_a) {
  set_view_window(first_e, last_e, first_a, last_a);
  const int rows = view.n_rows;
  const int cols = view.n_cols;
  const long n_pixels = static_cast<long>(rows) * cols;
  const int n_bands = spectrum->n;

  mattes.release();
  mattes.prepare(rows, cols, n_bands, matte_request);

  // Three planes at least: the normal and scene position mattes go through
  // the same arrays as the picture.
  const int n_work = n_bands < 3 ? 3 : n_bands;
  float** planes = new (std::nothrow) float*[n_work]();
  if (planes == nullptr) exit_with("unable to allocate image \n");
  for (int b = 0; b < n_work; b++) planes[b] = new_plane(n_pixels, "unable to allocate image \n");

  unsigned char* mask = nullptr;
  if (efficiency_matte) {
    mask = new (std::nothrow) unsigned char[n_pixels];
    if (mask == nullptr) exit_with("Unable to allocate efficiencyMatte\n");
    read_efficiency_mask(mask, rows, cols);
  }

  if (scene != nullptr) {
    object_contour contour(rows, cols, spectrum, planes, 0.0f, view.anti_alias, &mattes, mask);
    int active[TCScene_tracer::max_objects];
    for (int i = 0; i < TCScene_tracer::max_objects; i++) active[i] = 1;
    if (pass == surface_line_pass) {
      scene->image_surface_line(active, view, spectrum, planes, 0.0, &contour, 1);
    } else {
      scene->image_scene(active, view, spectrum, planes, 0.0, &contour, 1);
    }
  }

  scene_radiance(planes, n_bands, n_pixels);
  rescale_slice(planes, n_bands, n_pixels);
  distances_and_normals(n_pixels);
  if (need_picture) write_planes(planes, prefix, frame_text, suffix, n_bands, picture_code);
  write_slice_mattes(planes, n_work, prefix, frame_text, suffix);

  delete[] mask;
  for (int b = 0; b < n_work; b++) delete[] planes[b];
  delete[] planes;
  mattes.release();
}

void TCCamera::read_efficiency_mask(unsigned char* mask, int rows, int cols) {
  const long n_pixels = static_cast<long>(rows) * cols;
  for (long k = 0; k < n_pixels; k++) mask[k] = 0;
  const long total = static_cast<long>(n_pixel_elevation) * n_pixel_azimuth;
  unsigned char* all = new (std::nothrow) unsigned char[total];
  if (all == nullptr) exit_with("Error allocating total efficiency matte array\n");
  const int dims[2] = {n_pixel_elevation, n_pixel_azimuth};
  if (!rgb_read_plane_bytes(efficiency_matte_file, 0, all, dims)) {
    std::cout << "Error reading in efficiency matte file: " << efficiency_matte_file << "\n"
              << "NOT USING EFFICIENCY MATTES FOR THIS OR FUTURE FRAMES\n";
    efficiency_matte = 0;
    delete[] all;
    return;
  }
  // Every sample of a pixel takes the pixel's mark.
  for (int row = 0; row < rows; row++) {
    const long picture_row = slice_first_elevation_ + row / n_sub_elevation;
    for (int col = 0; col < cols; col++) {
      const long picture_col = slice_first_azimuth_ + col / n_sub_azimuth;
      mask[static_cast<long>(row) * cols + col] =
          all[picture_row * n_pixel_azimuth + picture_col] == 255 ? 1 : 0;
    }
  }
  delete[] all;
}

namespace {

void rescale_plane(float* plane, long n_pixels, int method, float gamma) {
  for (long k = 0; k < n_pixels; k++) {
    const double v = plane[k];
    if (method == camera_rescale_log) {
      plane[k] = v <= 0.0 ? log_of_nothing : static_cast<float>(std::log10(v));
    } else if (method == camera_rescale_gamma) {
      plane[k] = v <= 0.0 ? 0.0f : static_cast<float>(std::pow(v, static_cast<double>(gamma)));
    }
  }
}

}  // namespace

// The scene's radiance matte is the picture itself, rescaled with it.
void TCCamera::scene_radiance(float** planes, int n_bands, long n_pixels) {
  int first = 0, count = 0;
  if (!mattes.is_wanted(mattes.n_objects, 0, first, count)) return;
  for (int b = 0; b < n_bands && b < count; b++) {
    float* plane = mattes.planes[mattes.n_objects][first + b];
    for (long k = 0; k < n_pixels; k++) plane[k] = planes[b][k];
  }
}

// Before sub-pixel averaging, so that it is the logarithm that is averaged.
// Absorption and transmission are fractions and keep their scale under log.
void TCCamera::rescale_slice(float** planes, int n_bands, long n_pixels) {
  if (rescale_method != camera_rescale_log && rescale_method != camera_rescale_gamma) return;
  for (int b = 0; b < n_bands; b++) rescale_plane(planes[b], n_pixels, rescale_method, gamma);
  for (int object = 0; object <= mattes.n_objects; object++) {
    for (int code = 0; code < per_band_codes; code++) {
      int first = 0, count = 0;
      if (!mattes.is_wanted(object, code, first, count)) continue;
      if (rescale_method == camera_rescale_log &&
          (code == absorption_code || code == transmission_code)) {
        continue;
      }
      for (int p = first; p < first + count; p++) {
        rescale_plane(mattes.planes[object][p], n_pixels, rescale_method, gamma);
      }
    }
  }
}

void TCCamera::distances_and_normals(long n_pixels) {
  for (int object = 0; object <= mattes.n_objects; object++) {
    const int scene = object == mattes.n_objects;
    const int codes[2] = {distance_code, scene_distance_code};
    for (int c = 0; c < (scene ? 2 : 1); c++) {
      int first = 0, count = 0;
      if (!mattes.is_wanted(object, codes[c], first, count)) continue;
      float* plane = mattes.planes[object][first];
      // Every distance becomes metres; "nothing" (1e16 squared) becomes 1e8.
      for (long k = 0; k < n_pixels; k++) {
        if (plane[k] > 0.0f)
          plane[k] = static_cast<float>(std::sqrt(static_cast<double>(plane[k])));
      }
    }

    int first = 0, count = 0;
    if (!mattes.is_wanted(object, normal_code, first, count)) continue;
    if (count != 3) {
      std::cout << "Wrong number of mattes for surface normal matte\n"
                << "Not rescaling - normal matte may be wrong\n";
      continue;
    }
    float* x = mattes.planes[object][first];
    float* y = mattes.planes[object][first + 1];
    float* z = mattes.planes[object][first + 2];
    for (long k = 0; k < n_pixels; k++) {
      const double length =
          std::sqrt(static_cast<double>(x[k]) * x[k] + static_cast<double>(y[k]) * y[k] +
                    static_cast<double>(z[k]) * z[k]);
      if (length < shortest_normal) {
        x[k] = 0.0f;
        y[k] = 0.0f;
        z[k] = 1.0f;
      } else {
        x[k] = static_cast<float>(x[k] / length);
        y[k] = static_cast<float>(y[k] / length);
        z[k] = static_cast<float>(z[k] / length);
      }
    }
  }
}

void TCCamera::write_slice_mattes(float** planes, int n_work, const char* prefix,
                                  const char* frame_text, const char* suffix) {
  const int scene = mattes.n_objects;
  const long n_pixels = static_cast<long>(view.n_rows) * view.n_cols;
  char matte_prefix[name_length];
  for (int object = 0; object <= scene; object++) {
    for (int code = 0; code < TCMatte_fields::code_count; code++) {
      if (!matte_file_wanted(object, code)) continue;
      const int n_planes = matte_file_planes(code);
      if (n_planes > n_work) continue;
      int first = 0, count = 0;
      if (code == scene_xyz_code) {
        // Where each pixel's centre ray meets what the scene shows.
        if (!mattes.is_wanted(scene, scene_distance_code, first, count)) continue;
        const float* distance = mattes.planes[scene][first];
        for (int row = 0; row < view.n_rows; row++) {
          for (int col = 0; col < view.n_cols; col++) {
            const long k = static_cast<long>(row) * view.n_cols + col;
            TCRay ray;
            view.pixel_ray(row, col, ray);
            for (int axis = 0; axis < 3; axis++) {
              planes[axis][k] = static_cast<float>(ray[axis] + ray[3 + axis] * distance[k]);
            }
          }
        }
      } else {
        if (!mattes.is_wanted(object, code, first, count) || count != n_planes) continue;
        for (int p = 0; p < count; p++) {
          const float* source = mattes.planes[object][first + p];
          for (long k = 0; k < n_pixels; k++) planes[p][k] = source[k];
        }
      }
      for (int p = n_planes; p < n_work; p++) {
        for (long k = 0; k < n_pixels; k++) planes[p][k] = 0.0f;
      }
      this->matte_prefix(object, code, prefix, matte_prefix, name_length);
      write_planes(planes, matte_prefix, frame_text, suffix, n_planes, code);
    }
  }
}

void TCCamera::write_planes(float** planes, const char* prefix, const char* frame_text,
                            const char* suffix, int n_planes, int matte_code) {
  if (picture_fraction) {
    write_fraction(planes, prefix, frame_text, suffix, n_planes, matte_code);
  } else {
    write_full(planes, prefix, frame_text, suffix, n_planes, matte_code);
  }
}

void TCCamera::write_full(float** planes, const char* prefix, const char* frame_text,
                          const char* suffix, int n_planes, int matte_code) {
  const int rows = view.n_rows;
  const int cols = view.n_cols;
  const int out_rows = rows / n_sub_elevation;
  const int out_cols = cols / n_sub_azimuth;
  if (n_sub_elevation > 1 || n_sub_azimuth > 1) {
    // In place: an output pixel never lies beyond its block's first sample,
    // and every later block reads only beyond it.
    for (int p = 0; p < n_planes; p++) {
      for (int i = 0; i < out_rows; i++) {
        for (int j = 0; j < out_cols; j++) {
          planes[p][static_cast<long>(i) * out_cols + j] =
              static_cast<float>(block_mean(planes[p], cols, i, j, n_sub_elevation, n_sub_azimuth));
        }
      }
    }
  }

  char name[name_length];
  file_name(matte_code, prefix, frame_text, suffix, name, name_length);
  const int dims[2] = {out_rows, out_cols};
  int first_flag = 1;
  if (!open_image(image_format, name, dims, first_flag, n_planes, matte_code)) {
    exit_with("unable to initialize data file ", name);
  }
  for (int p = 0; p < n_planes; p++) {
    if (!write_plane(image_format, name, p, planes[p], dims, first_flag, matte_code, 0, min_value,
                     max_value)) {
      exit_with("unable to output data file ", name);
    }
  }
}

void TCCamera::write_fraction(float** planes, const char* prefix, const char* frame_text,
                              const char* suffix, int n_planes, int matte_code) {
  const int cols = view.n_cols;
  const int out_rows = view.n_rows / n_sub_elevation;
  const int out_cols = cols / n_sub_azimuth;
  const long total = static_cast<long>(n_pixel_elevation) * n_pixel_azimuth;
  float* picture = new_plane(total, "unable to allocate picture camera array\n");
  const float clear = rescale_method == camera_rescale_log ? log_of_nothing : 0.0f;

  char name[name_length];
  file_name(matte_code, prefix, frame_text, suffix, name, name_length);
  const int dims[2] = {n_pixel_elevation, n_pixel_azimuth};
  int first_flag = 1;
  if (!open_image(image_format, name, dims, first_flag, n_planes, matte_code)) {
    exit_with("unable to initialize data file ", name);
  }
  for (int p = 0; p < n_planes; p++) {
    for (long k = 0; k < total; k++) picture[k] = clear;
    for (int i = 0; i < out_rows; i++) {
      const long row = static_cast<long>(slice_first_elevation_) + i;
      for (int j = 0; j < out_cols; j++) {
        picture[row * n_pixel_azimuth + slice_first_azimuth_ + j] =
            static_cast<float>(block_mean(planes[p], cols, i, j, n_sub_elevation, n_sub_azimuth));
      }
    }
    if (!write_plane(image_format, name, p, picture, dims, first_flag, matte_code, 0, min_value,
                     max_value)) {
      exit_with("unable to output data file ", name);
    }
  }
  delete[] picture;
}

// ---- Slice recombination ----

int TCCamera::recombine_slices(const char* prefix, const char* frame_text, const char* suffix) {
  if (prefix == nullptr) prefix = "";
  if (frame_text == nullptr) frame_text = "";
  if (suffix == nullptr) suffix = "";
  const int n = image_slices;
  if (n <= 1) return 1;

  int widest = 0;
  for (int i = 0; i < n; i++) {
    int start = 0, end = 0;
    strip_columns(first_azimuth, last_azimuth, n, i, start, end);
    if (end - start + 1 > widest) widest = end - start + 1;
  }
  float* strip = new (std::nothrow) float[static_cast<long>(n_pixel_elevation) * (widest + 1)]();
  if (strip == nullptr) exit_with("unable to allocate partial camera image\n");
  // A whole picture for every plane of the widest file, zeroed once: every
  // file fills the same window and leaves the rest at 0.
  const int most_planes = spectrum->n < 3 ? 3 : spectrum->n;
  const long total = static_cast<long>(n_pixel_elevation) * n_pixel_azimuth;
  float* picture = new_plane(total * most_planes, "unable to allocate picture camera array\n");

  // The picture first, then each matte file in the order they were written;
  // the picture is object -1 here.
  const int scene = mattes.n_objects;
  if (need_picture) {
    merge_file(picture_code, picture_code, prefix, frame_text, suffix, strip, picture);
  }
  for (int object = 0; object <= scene; object++) {
    for (int code = 0; code < TCMatte_fields::code_count; code++) {
      if (matte_file_wanted(object, code)) {
        merge_file(object, code, prefix, frame_text, suffix, strip, picture);
      }
    }
  }
  delete[] strip;
  delete[] picture;

  if (need_picture) remove_slice_files(picture_code, picture_code, prefix, frame_text, suffix);
  for (int object = 0; object <= scene; object++) {
    for (int code = 0; code < TCMatte_fields::code_count; code++) {
      if (matte_file_wanted(object, code)) {
        remove_slice_files(object, code, prefix, frame_text, suffix);
      }
    }
  }
  return 1;
}

// Every plane of every strip's file lands at its place in the whole picture;
// what lies outside the window stays 0. All planes are read before the first
// is written: the hdf library writes a file whose planes follow one another
// without other files read in between exactly as an unsliced render does.
void TCCamera::merge_file(int object, int matte_code, const char* prefix, const char* frame_text,
                          const char* suffix, float* strip, float* picture) {
  const int n = image_slices;
  const int n_planes = object < 0 ? spectrum->n : matte_file_planes(matte_code);
  const int window_rows = last_elevation - first_elevation + 1;
  const int full_dims[2] = {n_pixel_elevation, n_pixel_azimuth};
  char merged[name_length];
  char sliced[name_length];
  object_file_name(object, matte_code, prefix, frame_text, suffix, merged, name_length);

  int first_flag = 1;
  if (!open_image(image_format, merged, full_dims, first_flag, n_planes, matte_code)) {
    exit_with(object < 0 ? "unable to initialize data file " : "unable to initialize matte file ",
              merged);
  }
  const long total = static_cast<long>(n_pixel_elevation) * n_pixel_azimuth;
  for (int p = 0; p < n_planes; p++) {
    float* plane = picture + p * total;
    for (int i = 0; i < n; i++) {
      int start = 0, end = 0;
      strip_columns(first_azimuth, last_azimuth, n, i, start, end);
      const int width = end - start + 1;
      if (width < 1) continue;
      const std::string slice_prefix = std::string(prefix) + "s" + std::to_string(i);
      object_file_name(object, matte_code, slice_prefix.c_str(), frame_text, suffix, sliced,
                       name_length);
      const int slice_dims[2] = {window_rows, width};
      if (!read_plane(image_format, sliced, p, strip, slice_dims, matte_code, min_value,
                      max_value)) {
        exit_with("unable to read file ", sliced);
      }
      for (int r = 0; r < window_rows; r++) {
        const long row = static_cast<long>(first_elevation) + r;
        for (int c = 0; c < width; c++) {
          plane[row * n_pixel_azimuth + start + c] = strip[static_cast<long>(r) * width + c];
        }
      }
    }
  }
  for (int p = 0; p < n_planes; p++) {
    if (!write_plane(image_format, merged, p, picture + p * total, full_dims, first_flag,
                     matte_code, 0, min_value, max_value)) {
      exit_with("unable to output data file ", merged);
    }
  }
}

void TCCamera::remove_slice_files(int object, int matte_code, const char* prefix,
                                  const char* frame_text, const char* suffix) {
  const int n = image_slices;
  char sliced[name_length];
  for (int i = 0; i < n; i++) {
    int start = 0, end = 0;
    strip_columns(first_azimuth, last_azimuth, n, i, start, end);
    if (end < start) continue;
    const std::string slice_prefix = std::string(prefix) + "s" + std::to_string(i);
    object_file_name(object, matte_code, slice_prefix.c_str(), frame_text, suffix, sliced,
                     name_length);
    if (std::remove(sliced) != 0) exit_with("Can't remove: ", sliced);
  }
}

// ---- Names and requests ----

// The float mattes cannot be coded in 8 bits, so they never carry the 8-bit
// format's extension.
void TCCamera::file_name(int matte_code, const char* prefix, const char* frame_text,
                         const char* suffix, char* out, int length) const {
  if (matte_always_hdf(matte_code) && image_format != image_format_hdf &&
      (contains(suffix, "rgb") || contains(suffix, "tiff"))) {
    suffix = ".img";
  }
  std::snprintf(out, static_cast<std::size_t>(length), "%s%s%s", prefix, frame_text, suffix);
}

void TCCamera::object_file_name(int object, int matte_code, const char* prefix,
                                const char* frame_text, const char* suffix, char* out,
                                int length) const {
  if (object < 0) {
    file_name(picture_code, prefix, frame_text, suffix, out, length);
    return;
  }
  char matte_prefix[name_length];
  this->matte_prefix(object, matte_code, prefix, matte_prefix, name_length);
  file_name(matte_code, matte_prefix, frame_text, suffix, out, length);
}

void TCCamera::matte_prefix(int object, int code, const char* prefix, char* out, int length) const {
  int named = -1;
  const char* kind = "";
  if (code >= 22 && code <= 26) {
    named = matte_request.alpha_objects[code - 22];
    kind = "_alpha";
  } else if (code >= 7 && code <= 11) {
    named = matte_request.reflected_objects[code - 7];
    kind = "_reflected";
  }
  const char* named_name = scene != nullptr ? scene->object_name(named) : nullptr;
  if (named_name != nullptr) {
    char words[name_length];
    std::snprintf(words, sizeof(words), "%s%s", named_name, kind);
    matte_file_name_words(matte_object_name(object), words, prefix, out, length);
    return;
  }
  matte_file_name(matte_object_name(object), code, prefix, out, length);
}

const char* TCCamera::matte_object_name(int object) const {
  if (object >= mattes.n_objects) return "scene";
  const char* object_name = scene != nullptr ? scene->object_name(object) : nullptr;
  return object_name != nullptr ? object_name : "scene";
}

int TCCamera::requested(int object, int code) const {
  if (matte_request.use_mattes == 0 || matte_request.object_indices == nullptr) return 0;
  for (int i = 0; i < matte_request.n_matte_objects; i++) {
    if (matte_request.object_indices[i] != object) continue;
    for (int j = 0; j < matte_request.matte_counts[i]; j++) {
      if (matte_request.matte_ids[i][j] == code) return 1;
    }
  }
  return 0;
}

// Matte 34 only switches the picture off; 33 exists for the scene alone,
// derived from its distance; 35 and up are no mattes.
int TCCamera::matte_file_wanted(int object, int code) const {
  if (code < 0 || code >= TCMatte_fields::code_count || code == no_picture_code) return 0;
  int first = 0, count = 0;
  if (!TCMatte_fields::plane_layout(code, spectrum->n, first, count)) return 0;
  if (!requested(object, code)) return 0;
  if (code == scene_xyz_code) {
    return object == mattes.n_objects && requested(object, scene_distance_code);
  }
  return count > 0;
}

int TCCamera::matte_file_planes(int code) const {
  if (code < per_band_codes) return spectrum->n;
  if (code == normal_code || code == scene_xyz_code) return 3;
  return 1;
}

// ---- Bobbing camera ----

namespace {

// One sea of the scene, asked for the height under a point and the point's
// own height over the sea's mean level.
struct Sea_under {
  TCScene_tracer* scene;
  int index;
};

double clearance_over_sea(void* context, const TCVector& point, double& clearance) {
  const Sea_under* sea = static_cast<const Sea_under*>(context);
  double height = 0.0;
  sea->scene->surface_height_under(sea->index, point, height, clearance);
  return height;
}

}  // namespace

TCBobbing_camera::TCBobbing_camera(const TCBobbing_camera_input& input, TCObject_list* list_in)
    : TCCamera(input, list_in),
      decouple_height(input.decouple_height),
      decouple_relax_time(input.decouple_relax_time),
      base_size(input.base_size) {}

TCBobbing_camera::~TCBobbing_camera() {}

void TCBobbing_camera::print_dimensions() {
  TCCamera::print_dimensions();
  std::cout << "Bobbing TCCamera :"
            << "\n"
            << "base size      :   " << base_size << "\n"
            << "relaxation time:   " << decouple_relax_time << "\n"
            << "decoupling height: " << decouple_height << "\n";
}

void TCBobbing_camera::set_time(double t) {
  time = t;
  TCVector pose;
  double pose_chi = 0.0, pose_phi = 0.0, pose_theta = 0.0;
  track.pose_at(t, pose, pose_chi, pose_phi, pose_theta);
  TCVector moved = pose;
  for (int i = 0; scene != nullptr && i < scene->object_count(); i++) {
    double height = 0.0, own = 0.0;
    if (!scene->surface_height_under(i, moved, height, own)) continue;
    Sea_under sea = {scene, i};
    ride_sea(clearance_over_sea, &sea, pose, moved, pose_chi, pose_theta);
  }
  set_position(moved, pose_chi, pose_phi, pose_theta);
}

int TCBobbing_camera::fit_sea_plane(TCSea_height height, void* context, const TCVector& under,
                                    double pose_height, double decouple_height_in,
                                    double base_size_in, TCSea_plane& fit) {
  fit.a = 0.0;
  fit.b = 0.0;
  fit.mean = 0.0;
  fit.offset = TCVector();
  fit.pitch = 0.0f;
  fit.roll = 0.0f;
  if (height == nullptr) return 0;
  double clearance = 0.0;
  height(context, under, clearance);
  if (!(std::fabs(clearance) < decouple_height_in)) return 0;

  const double spacing = base_size_in / 100.0;
  double sx = 0.0, sy = 0.0, sxx = 0.0, syy = 0.0, sh = 0.0;
  for (int i = -50; i <= 50; i++) {
    for (int j = -50; j <= 50; j++) {
      const double x = i * spacing;
      const double y = j * spacing;
      double ignored = 0.0;
      const double h = height(context, TCVector(under.x + x, under.y + y, under.z), ignored);
      sx += x * h;
      sy += y * h;
      sxx += x * x;
      syy += y * y;
      sh += h;
    }
  }
  // A base of no size has no tilt to give.
  fit.a = sxx != 0.0 ? sx / sxx : 0.0;
  fit.b = syy != 0.0 ? sy / syy : 0.0;
  fit.mean = sh / (101.0 * 101.0);
  fit.offset = TCVector(fit.a * pose_height, fit.b * pose_height, fit.mean);
  fit.pitch = static_cast<float>(-std::atan(fit.a));
  fit.roll = static_cast<float>(std::atan(fit.b));
  return 1;
}

int TCBobbing_camera::ride_sea(TCSea_height height, void* context, const TCVector& pose,
                               TCVector& position_io, double& chi_io, double& theta_io) const {
  TCSea_plane fit;
  if (!fit_sea_plane(height, context, pose, pose.z, decouple_height, base_size, fit)) return 0;
  position_io = position_io + fit.offset;
  chi_io += fit.pitch;
  theta_io += fit.roll;
  return 1;
}
