#include "TCTexture_plane.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "TCSettings.h"
#include "TCSgi_image.h"

namespace {

// Doubles zeroed, at least one so that a negative count never reaches new[].
double* new_doubles(int n) {
  return new (std::nothrow) double[n > 0 ? n : 1]();
}

void exit_with(const char* message) {
  std::cout << message;
  std::cout.flush();
  std::exit(1);
}

// The index of a pixel coordinate that is already floored. Values no pixel
// can have (far outside, infinite or not a number) become -2 or size, which
// the edge rule gives no weight, so the conversion to int is always defined.
int pixel_index(double floored, int size) {
  if (!(floored >= -2.0)) return -2;
  if (floored > size) return size;
  return static_cast<int>(floored);
}

// Periodic coordinate in pixels onto 0 .. s - 1. The period is s - 1 pixels,
// not s: the last pixel column meets the first at the seam.
double wrap(double u, int s) {
  if (s < 2) return u - std::floor(u);
  return u - std::floor(u / (s - 1)) * (s - 1);
}

void print_band_failure(int band, const char* file) {
  if (band == 3) {
    std::cout << "Error - could not read alpha channel of " << file << "\n";
  } else {
    std::cout << "Error - could not read band " << band << " of " << file << "\n";
  }
}

}  // namespace

TCTexture_plane::TCTexture_plane(const TCTexture_plane_input& input)
    : loaded(0),
      width(input.width),
      height(input.height),
      half_width(0.5 * input.width),
      half_height(0.5 * input.height),
      planes(nullptr),
      n_x(0),
      n_y(0),
      make_levels(input.make_levels),
      periodic(input.periodic),
      n_levels(0),
      level_scale(nullptr),
      level_size(nullptr),
      pixel_x(nullptr),
      pixel_y(nullptr),
      inv_pixel_x(nullptr),
      inv_pixel_y(nullptr),
      side_code(input.side_code),
      n_bands(input.n_bands),
      scale_mode_above(0),
      scale_mode_below(0),
      gamma_above(nullptr),
      gamma_below(nullptr),
      min_above(nullptr),
      max_above(nullptr),
      step_above(nullptr),
      min_below(nullptr),
      max_below(nullptr),
      step_below(nullptr),
      sample_low(nullptr),
      sample_high(nullptr) {
  if (side_code == 1 || side_code == 3) {
    if (!allocate_above(input.min_above, input.max_above, input.above_values()))
      exit_with("Error allocating radiance arrays for texture plane\n");
  }
  if (side_code == 2 || side_code == 3) {
    if (!allocate_below(input.min_below, input.max_below, input.below_values()))
      exit_with("Error allocating radiance_below arrays for texture plane\n");
  }
  if (!allocate_scratch()) exit_with("Error allocating radiance arrays for texture plane\n");
  load_picture(input.picture_file, input.whole_picture, input.first_x, input.last_x, input.first_y,
               input.last_y);
}

TCTexture_plane::TCTexture_plane(double width_in, double height_in, int bands, const double* min,
                                 const double* max, int make_levels_in, int periodic_in,
                                 int side_code_in)
    : loaded(0),
      width(width_in),
      height(height_in),
      half_width(0.5 * width_in),
      half_height(0.5 * height_in),
      planes(nullptr),
      n_x(0),
      n_y(0),
      make_levels(make_levels_in),
      periodic(periodic_in),
      n_levels(0),
      level_scale(nullptr),
      level_size(nullptr),
      pixel_x(nullptr),
      pixel_y(nullptr),
      inv_pixel_x(nullptr),
      inv_pixel_y(nullptr),
      side_code(side_code_in),
      n_bands(bands),
      scale_mode_above(0),
      scale_mode_below(0),
      gamma_above(nullptr),
      gamma_below(nullptr),
      min_above(nullptr),
      max_above(nullptr),
      step_above(nullptr),
      min_below(nullptr),
      max_below(nullptr),
      step_below(nullptr),
      sample_low(nullptr),
      sample_high(nullptr) {
  if (!allocate_above(min, max, bands) || !allocate_scratch()) {
    std::cout << "unable to allocate texture arrays "
              << "\n";
    exit_with("unable to construct texture plane \n");
  }
}

TCTexture_plane::~TCTexture_plane() {
  release_pyramid();
  delete[] gamma_above;
  delete[] gamma_below;
  delete[] min_above;
  delete[] max_above;
  delete[] step_above;
  delete[] min_below;
  delete[] max_below;
  delete[] step_below;
  delete[] sample_low;
  delete[] sample_high;
}

int TCTexture_plane::allocate_above(const double* min, const double* max, int available) {
  min_above = new_doubles(n_bands);
  max_above = new_doubles(n_bands);
  step_above = new_doubles(n_bands);
  gamma_above = new_doubles(n_bands);
  if (!min_above || !max_above || !step_above || !gamma_above) return 0;
  for (int b = 0; b < n_bands; b++) {
    if (min != nullptr && b < available) min_above[b] = min[b];
    if (max != nullptr && b < available) max_above[b] = max[b];
    step_above[b] = (max_above[b] - min_above[b]) / 255.0;
    gamma_above[b] = 1.0;
  }
  return 1;
}

int TCTexture_plane::allocate_below(const double* min, const double* max, int available) {
  min_below = new_doubles(n_bands);
  max_below = new_doubles(n_bands);
  step_below = new_doubles(n_bands);
  gamma_below = new_doubles(n_bands);
  if (!min_below || !max_below || !step_below || !gamma_below) return 0;
  for (int b = 0; b < n_bands; b++) {
    if (min != nullptr && b < available) min_below[b] = min[b];
    if (max != nullptr && b < available) max_below[b] = max[b];
    step_below[b] = (max_below[b] - min_below[b]) / 255.0;
    gamma_below[b] = 1.0;
  }
  return 1;
}

int TCTexture_plane::allocate_scratch() {
  sample_low = new_doubles(n_bands);
  sample_high = new_doubles(n_bands);
  return sample_low != nullptr && sample_high != nullptr;
}

void TCTexture_plane::release_pyramid() {
  if (planes != nullptr) {
    const int bands = n_bands > 0 ? n_bands : 0;
    for (int l = 0; l < n_levels; l++) {
      if (planes[l] == nullptr) continue;
      for (int b = 0; b < bands; b++) delete[] planes[l][b];
      delete[] planes[l];
    }
    delete[] planes;
  }
  planes = nullptr;
  delete[] level_scale;
  delete[] level_size;
  delete[] pixel_x;
  delete[] pixel_y;
  delete[] inv_pixel_x;
  delete[] inv_pixel_y;
  level_scale = nullptr;
  level_size = nullptr;
  pixel_x = nullptr;
  pixel_y = nullptr;
  inv_pixel_x = nullptr;
  inv_pixel_y = nullptr;
  n_levels = 0;
}

int TCTexture_plane::load_picture(const char* file, int whole_picture, int first_x, int last_x,
                                  int first_y, int last_y) {
  loaded = 0;
  release_pyramid();
  if (file == nullptr) file = "";

  // dims are (rows, columns): y size first.
  int dims[2] = {0, 0};
  if (!rgb_read_dims(file, dims) || dims[0] < 1 || dims[1] < 1) {
    std::cout << "Error - could not read dimensions of " << file << "\n";
    return 0;
  }
  const int full_x = dims[1];
  const int full_y = dims[0];
  int whole = whole_picture == 1 ? 1 : 0;
  if (whole) {
    n_x = full_x;
    n_y = full_y;
  } else {
    // In long long, so that no pair of ints from a file can overflow here.
    const long long sub_x = static_cast<long long>(last_x) - first_x + 1;
    const long long sub_y = static_cast<long long>(last_y) - first_y + 1;
    if (sub_x < 1 || first_x < 0 || last_x >= full_x || sub_y < 1 || first_y < 0 ||
        last_y >= full_y) {
      std::cout << "Subpicture texture patch is larger than whole picture\n";
      std::cout << "Using whole picture\n";
      whole = 1;
      n_x = full_x;
      n_y = full_y;
    } else {
      n_x = static_cast<int>(sub_x);
      n_y = static_cast<int>(sub_y);
    }
  }

  // Halve the shorter side down to 2 pixels or less, one level per halving.
  n_levels = 1;
  if (make_levels) {
    int m = n_x < n_y ? n_x : n_y;
    while (m > 2) {
      m = m / 2;
      n_levels++;
    }
  }

  const int bands = n_bands > 0 ? n_bands : 0;
  level_scale = new (std::nothrow) int[n_levels];
  level_size = new (std::nothrow) int[n_levels][2];
  pixel_x = new_doubles(n_levels);
  pixel_y = new_doubles(n_levels);
  inv_pixel_x = new_doubles(n_levels);
  inv_pixel_y = new_doubles(n_levels);
  planes = new (std::nothrow) unsigned char**[n_levels]();
  if (!level_scale || !level_size || !pixel_x || !pixel_y || !inv_pixel_x || !inv_pixel_y ||
      !planes) {
    std::cout << "unable to allocate texture memory "
              << "\n";
    release_pyramid();
    return 0;
  }

  for (int i = 0; i < n_levels; i++) {
    const int scale = 1 << i;
    level_scale[i] = scale;
    level_size[i][0] = n_x / scale + (n_x % scale != 0 ? 1 : 0);
    level_size[i][1] = n_y / scale + (n_y % scale != 0 ? 1 : 0);
  }
  pixel_x[0] = width / n_x;
  pixel_y[0] = height / n_y;
  inv_pixel_x[0] = 1.0 / pixel_x[0];
  inv_pixel_y[0] = 1.0 / pixel_y[0];
  for (int i = 1; i < n_levels; i++) {
    pixel_x[i] = level_scale[i] * pixel_x[0];
    pixel_y[i] = level_scale[i] * pixel_y[0];
    inv_pixel_x[i] = inv_pixel_x[0] / level_scale[i];
    inv_pixel_y[i] = inv_pixel_y[0] / level_scale[i];
  }

  for (int l = 0; l < n_levels; l++) {
    planes[l] = new (std::nothrow) unsigned char*[bands > 0 ? bands : 1]();
    if (planes[l] == nullptr) {
      std::cout << "unable to allocate texture memory "
                << "\n";
      release_pyramid();
      return 0;
    }
    const std::size_t size =
        static_cast<std::size_t>(level_size[l][0]) * static_cast<std::size_t>(level_size[l][1]);
    for (int b = 0; b < bands; b++) {
      planes[l][b] = new (std::nothrow) unsigned char[size]();
      if (planes[l][b] == nullptr) {
        std::cout << "unable to allocate texture memory "
                  << "\n";
        release_pyramid();
        return 0;
      }
    }
  }

  // A sub-rectangle is cut from whole-picture planes, one per band.
  unsigned char** scratch = nullptr;
  if (!whole) {
    scratch = new (std::nothrow) unsigned char*[bands > 0 ? bands : 1]();
    int ok = scratch != nullptr;
    const std::size_t full_size = static_cast<std::size_t>(full_x) * full_y;
    for (int b = 0; ok && b < bands; b++) {
      scratch[b] = new (std::nothrow) unsigned char[full_size];
      ok = scratch[b] != nullptr;
    }
    if (!ok) {
      std::cout << "unable to allocate texture memory "
                << "\n";
      if (scratch != nullptr)
        for (int b = 0; b < bands; b++) delete[] scratch[b];
      delete[] scratch;
      return 0;
    }
  }

  int result = 1;
  int channels = 0;
  if (!rgb_read_channels(file, channels)) {
    std::cout << "unable to read SGI file " << file << "\n";
    result = 0;
  } else {
    // Reported, not refused: the band that isn't there fails below.
    if (channels < n_bands) {
      std::cout << "file " << file << " only has " << channels << " bands. "
                << "\n"
                << "texture map expects " << n_bands << " bands "
                << "\n";
    }
    if (verbose) std::cout << "texture file " << file << " has " << channels << " bands \n";

    for (int b = 0; b < bands && result; b++) {
      if (whole) {
        if (!rgb_read_texture_plane(file, b, planes[0][b], n_x, n_y)) {
          print_band_failure(b, file);
          result = 0;
        }
        continue;
      }
      if (!rgb_read_texture_plane(file, b, scratch[b], full_x, full_y)) {
        print_band_failure(b, file);
        result = 0;
        continue;
      }
      // Both planes have x as the slow axis.
      for (int x = 0; x < n_x; x++) {
        const unsigned char* from = scratch[b] + static_cast<std::size_t>(x + first_x) * full_y;
        unsigned char* to = planes[0][b] + static_cast<std::size_t>(x) * n_y;
        for (int y = 0; y < n_y; y++) to[y] = from[y + first_y];
      }
    }
  }

  if (scratch != nullptr) {
    for (int b = 0; b < bands; b++) delete[] scratch[b];
    delete[] scratch;
  }
  if (!result) return 0;

  build_levels();
  loaded = 1;
  return 1;
}

int TCTexture_plane::reload_picture(const char* file) {
  if (file == nullptr) file = "";
  int dims[2] = {0, 0};
  if (!rgb_read_dims(file, dims)) {
    std::cout << "Error - could not read dimensions of " << file << "\n";
    return 0;
  }
  // Only a picture of the same size can go into the pyramid already built.
  if (planes == nullptr || dims[1] != n_x || dims[0] != n_y) {
    std::cout << "Error changing texture: " << file << " has different "
              << "dimensions that expected!\n"
              << "NOT UPDATING TEXTURE\n\n";
    return 0;
  }

  int channels = 0;
  if (!rgb_read_channels(file, channels)) {
    std::cout << "unable to read SGI file " << file << "\n";
    return 0;
  }
  if (channels < n_bands) {
    std::cout << "file " << file << "only has " << channels << " number of bands "
              << "\n"
              << "texture map expects " << n_bands << " bands "
              << "\n";
  }
  if (verbose) std::cout << "texture file " << file << " has " << channels << " bands \n";

  for (int b = 0; b < n_bands; b++) {
    if (!rgb_read_texture_plane(file, b, planes[0][b], n_x, n_y)) {
      print_band_failure(b, file);
      return 0;
    }
  }
  build_levels();
  loaded = 1;
  return 1;
}

void TCTexture_plane::build_levels() {
  for (int i = 1; i < n_levels; i++) {
    const int size_x = level_size[i][0];
    const int size_y = level_size[i][1];
    const int from_x = level_size[i - 1][0];
    const int from_y = level_size[i - 1][1];
    const int scale = level_scale[i];
    for (int b = 0; b < n_bands; b++) {
      const unsigned char* from = planes[i - 1][b];
      const unsigned char* base = planes[0][b];
      unsigned char* to = planes[i][b];
      for (int x = 0; x < size_x; x++) {
        for (int y = 0; y < size_y; y++) {
          long long sum = 0;
          long long count = 0;
          if (x < size_x - 1 && y < size_y - 1) {
            // Interior: the 2 by 2 box of the level below.
            for (int px = 2 * x; px <= 2 * x + 1; px++) {
              for (int py = 2 * y; py <= 2 * y + 1; py++) {
                if (px >= from_x || py >= from_y) continue;
                sum += from[static_cast<std::size_t>(px) * from_y + py];
                count++;
              }
            }
          } else {
            // Last row and column: straight from level 0, so that a size that
            // isn't a power of two keeps its edge pixels.
            for (int px = x * scale; px < (x + 1) * scale; px++) {
              if (px >= n_x) break;
              for (int py = y * scale; py < (y + 1) * scale; py++) {
                if (py >= n_y) break;
                sum += base[static_cast<std::size_t>(px) * n_y + py];
                count++;
              }
            }
          }
          int value = 0;
          if (count > 0) value = static_cast<int>(static_cast<double>(sum) / count + 0.499);
          to[static_cast<std::size_t>(x) * size_y + y] = static_cast<unsigned char>(value);
        }
      }
    }
  }
}

void TCTexture_plane::sample(double* out, double x, double y, int level) const {
  const int size_x = level_size[level][0];
  const int size_y = level_size[level][1];
  double u = (x + half_width) * inv_pixel_x[level];
  double v = (y + half_height) * inv_pixel_y[level];
  if (!periodic) {
    // Pixel centres sit at half-integers; outside, the edge pixel goes on.
    u -= 0.5;
    v -= 0.5;
    if (u < 0.0) u = 0.0;
    if (u > size_x - 1) u = size_x - 1;
    if (v < 0.0) v = 0.0;
    if (v > size_y - 1) v = size_y - 1;
  } else {
    u = wrap(u, size_x) - 0.5;
    v = wrap(v, size_y) - 0.5;
  }
  const int i = pixel_index(std::floor(u), size_x);
  const int j = pixel_index(std::floor(v), size_y);
  const double f = u - i;
  const double g = v - j;

  // Pixels (i, j), (i, j + 1), (i + 1, j), (i + 1, j + 1).
  double weight[4] = {(1.0 - g) * (1.0 - f), (1.0 - f) * g, (1.0 - g) * f, f * g};
  int index_x[4] = {i, i, i + 1, i + 1};
  int index_y[4] = {j, j + 1, j, j + 1};
  if (i < 0 || i >= size_x - 1 || j < 0 || j >= size_y - 1) {
    int keep[4] = {1, 1, 1, 1};
    if (i < -1 || i > size_x - 1 || j < -1 || j > size_y - 1) {
      keep[0] = keep[1] = keep[2] = keep[3] = 0;
    } else {
      if (i == -1) keep[0] = keep[1] = 0;
      if (i == size_x - 1) keep[2] = keep[3] = 0;
      if (j == -1) keep[0] = keep[2] = 0;
      if (j == size_y - 1) keep[1] = keep[3] = 0;
    }
    for (int k = 0; k < 4; k++) {
      if (keep[k]) continue;
      weight[k] = 0.0;
      index_x[k] = 0;
      index_y[k] = 0;
    }
  }

  for (int b = 0; b < n_bands; b++) {
    const unsigned char* plane = planes[level][b];
    double value = 0.0;
    for (int k = 0; k < 4; k++)
      value += weight[k] * plane[static_cast<std::size_t>(index_x[k]) * size_y + index_y[k]];
    out[b] = value;
  }
}

void TCTexture_plane::add_footprint_sample(double* sum, double x, double y, double footprint) {
  if (planes == nullptr || n_levels < 1) return;
  // The footprint in level-0 pixels picks the level; between two levels
  // the two samples are blended linearly in scale.
  const double sx = footprint * inv_pixel_x[0];
  const double sy = footprint * inv_pixel_y[0];
  const double s = sx > sy ? sx : sy;
  const int last = n_levels - 1;
  if (s <= 1.0) {
    sample(sample_low, x, y, 0);
    for (int b = 0; b < n_bands; b++) sum[b] += sample_low[b];
    return;
  }
  if (!(s < level_scale[last])) {
    sample(sample_low, x, y, last);
    for (int b = 0; b < n_bands; b++) sum[b] += sample_low[b];
    return;
  }
  int l = 0;
  for (int k = 0; k < last; k++)
    if (level_scale[k] < s) l = k;
  const double w = (level_scale[l + 1] - s) / (level_scale[l + 1] - level_scale[l]);
  sample(sample_low, x, y, l);
  sample(sample_high, x, y, l + 1);
  for (int b = 0; b < n_bands; b++) sum[b] += w * sample_low[b] + (1.0 - w) * sample_high[b];
}

void TCTexture_plane::to_radiance(double* out, int side) const {
  const double* step = side == -1 ? step_below : step_above;
  const double* min = side == -1 ? min_below : min_above;
  const double* gamma = side == -1 ? gamma_below : gamma_above;
  const int mode = side == -1 ? scale_mode_below : scale_mode_above;
  if (step == nullptr) return;  // no range on that side: bytes stay bytes
  for (int b = 0; b < n_bands; b++) {
    double value = step[b] * out[b] + min[b];
    if (mode == 1) {
      value = std::pow(10.0, value);
    } else if (mode == 2) {
      value = std::pow(value, 1.0 / gamma[b]);
    }
    out[b] = value;
  }
}

void TCTexture_plane::sample_point(double* out, double x, double y, double footprint, int side) {
  if (side == 1 && side_code != 1 && side_code != 3) return;
  if (side == -1 && side_code != 2 && side_code != 3) return;
  for (int b = 0; b < n_bands; b++) out[b] = 0.0;
  add_footprint_sample(out, x, y, footprint);
  to_radiance(out, side);
}

void TCTexture_plane::average_list(double* out, double footprint, int n, const double* xs,
                                   const double* ys, int side) {
  if (side == 1 && side_code != 1 && side_code != 3) return;
  if (side == -1 && side_code != 2 && side_code != 3) return;
  for (int b = 0; b < n_bands; b++) out[b] = 0.0;
  for (int k = 0; k < n; k++) add_footprint_sample(out, xs[k], ys[k], footprint);
  if (n > 0)
    for (int b = 0; b < n_bands; b++) out[b] /= n;
  to_radiance(out, side);
}

void TCTexture_plane::average_grid(double* out, double footprint, int count_x, int count_y,
                                   double** xs, double** ys) {
  for (int b = 0; b < n_bands; b++) out[b] = 0.0;
  for (int i = 0; i < count_x; i++)
    for (int j = 0; j < count_y; j++) add_footprint_sample(out, xs[i][j], ys[i][j], footprint);
  const int n = count_x * count_y;
  if (count_x > 0 && count_y > 0)
    for (int b = 0; b < n_bands; b++) out[b] /= n;
  // The minimum is added here and again in to_radiance: the objects that
  // use this lookup have always been shown so.
  if (min_above != nullptr)
    for (int b = 0; b < n_bands; b++) out[b] += min_above[b];
  to_radiance(out, 1);
}

void TCTexture_plane::set_scale_mode(int mode) {
  scale_mode_above = mode;
  scale_mode_below = mode;
}

void TCTexture_plane::set_display_range(int mode, const double* high, const double* low,
                                        const double* gamma) {
  set_scale_mode(mode);
  for (int b = 0; b < n_bands; b++) {
    if (min_above != nullptr) {
      min_above[b] = low[b];
      max_above[b] = high[b];
      gamma_above[b] = gamma[b];
      step_above[b] = (high[b] - low[b]) / 255.0;
    }
    if (min_below != nullptr) {
      min_below[b] = low[b];
      max_below[b] = high[b];
      gamma_below[b] = gamma[b];
      step_below[b] = (high[b] - low[b]) / 255.0;
    }
  }
}
