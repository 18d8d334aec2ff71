// Turns the engine's image files (HDF float planes, SGI RGB) into PNG
// previews: three planes as red, green and blue, or one plane in grey or in
// false colour, scaled linearly, logarithmically or by a gamma over a range
// found from the pixels or given. Prints each shown plane's minimum, maximum
// and mean on standard output.
//
//   TCImage_to_png [options] image_file png_file
//
// Exit status 0 on success, 1 on bad arguments, an unreadable input or a PNG
// that cannot be written.

#include <png.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>

// The HDF 4 header defines MAX, MIN, FAIL and friends as macros: it comes
// after the standard headers.
#include <hdf.h>

#include "TCHdf_image.h"
#include "TCSgi_image.h"

namespace {

const char* const usage_text =
    "usage: TCImage_to_png [options] image_file png_file\n"
    "  image_file is an HDF float image or an SGI RGB file; png_file is written.\n"
    "  --rgb R,G,B           planes (from 0) shown as red, green and blue\n"
    "                        (default 0,1,2 when the file has three planes or more)\n"
    "  --plane K             one plane, in grey (default plane 0 for files of fewer planes)\n"
    "  --false-colour        show the one plane through a blue-cyan-green-yellow-red ramp\n"
    "  --scale linear|log|gamma\n"
    "                        how values map to brightness (default linear)\n"
    "  --gamma G             exponent of --scale gamma, brightness = t^(1/G) (default 2.2)\n"
    "  --range LO HI         values mapped to black and full brightness (default: the\n"
    "                        minimum and maximum of the shown planes' finite values;\n"
    "                        with log, of their positive finite values)\n"
    "  --no-flip             put the file's row 0 at the top (by default it is the\n"
    "                        bottom row, as the engine images it)\n"
    "  -h, --help            this text\n";

enum Scale { scale_linear, scale_log, scale_gamma };

// Image sizes beyond this are refused before any allocation: the SGI limit.
const int largest_side = 65535;

struct Options {
  const char* input;
  const char* output;
  int n_shown;   // 1 or 3
  int shown[3];  // plane numbers, red green blue or the one plane
  int explicit_planes;
  int false_colour;
  Scale scale;
  double gamma;
  int gamma_given;
  int range_given;
  double lo, hi;
  int flip;
};

void print_usage(std::ostream& stream) {
  stream << usage_text;
}

int refuse(const char* what, const char* value) {
  std::cerr << "TCImage_to_png: " << what;
  if (value) std::cerr << " '" << value << "'";
  std::cerr << "\n";
  print_usage(std::cerr);
  return 0;
}

// A whole word as a finite double.
int parse_double(const char* text, double& value) {
  if (!text || !*text) return 0;
  char* end = nullptr;
  errno = 0;
  value = std::strtod(text, &end);
  return *end == '\0' && errno == 0 && std::isfinite(value);
}

// A whole word as a plane number, 0 to 65534.
int parse_plane(const char* text, int& plane) {
  if (!text || !*text || *text == '-' || *text == '+') return 0;
  char* end = nullptr;
  errno = 0;
  const long value = std::strtol(text, &end, 10);
  if (*end != '\0' || errno != 0 || value < 0 || value >= largest_side) return 0;
  plane = static_cast<int>(value);
  return 1;
}

// "R,G,B": three plane numbers separated by commas.
int parse_rgb(const char* text, int planes[3]) {
  char buffer[64];
  if (!text || std::strlen(text) >= sizeof(buffer)) return 0;
  std::strcpy(buffer, text);
  char* start = buffer;
  for (int i = 0; i < 3; i++) {
    char* comma = std::strchr(start, ',');
    if (i < 2) {
      if (!comma) return 0;
      *comma = '\0';
    } else if (comma) {
      return 0;
    }
    if (!parse_plane(start, planes[i])) return 0;
    start = comma ? comma + 1 : start;
  }
  return 1;
}

// Fills options from the command line. 0 after printing the complaint and
// the usage text; -1 when help was asked for.
int parse_options(int argc, char** argv, Options& options) {
  options.input = nullptr;
  options.output = nullptr;
  options.n_shown = 0;
  options.explicit_planes = 0;
  options.false_colour = 0;
  options.scale = scale_linear;
  options.gamma = 2.2;
  options.gamma_given = 0;
  options.range_given = 0;
  options.lo = 0.0;
  options.hi = 0.0;
  options.flip = 1;
  int rgb_given = 0, plane_given = 0;
  const char* files[2] = {nullptr, nullptr};
  int n_files = 0;
  for (int i = 1; i < argc; i++) {
    const char* word = argv[i];
    const char* next = i + 1 < argc ? argv[i + 1] : nullptr;
    if (!std::strcmp(word, "-h") || !std::strcmp(word, "--help")) {
      return -1;
    } else if (!std::strcmp(word, "--rgb")) {
      if (!parse_rgb(next, options.shown)) return refuse("--rgb needs three planes R,G,B", next);
      rgb_given = 1;
      i++;
    } else if (!std::strcmp(word, "--plane")) {
      if (!parse_plane(next, options.shown[0])) return refuse("--plane needs a plane number", next);
      plane_given = 1;
      i++;
    } else if (!std::strcmp(word, "--false-colour") || !std::strcmp(word, "--false-color")) {
      options.false_colour = 1;
    } else if (!std::strcmp(word, "--scale")) {
      if (next && !std::strcmp(next, "linear")) {
        options.scale = scale_linear;
      } else if (next && !std::strcmp(next, "log")) {
        options.scale = scale_log;
      } else if (next && !std::strcmp(next, "gamma")) {
        options.scale = scale_gamma;
      } else {
        return refuse("--scale needs linear, log or gamma", next);
      }
      i++;
    } else if (!std::strcmp(word, "--gamma")) {
      if (!parse_double(next, options.gamma) || options.gamma <= 0.0) {
        return refuse("--gamma needs a positive number", next);
      }
      options.gamma_given = 1;
      i++;
    } else if (!std::strcmp(word, "--range")) {
      const char* second = i + 2 < argc ? argv[i + 2] : nullptr;
      if (!parse_double(next, options.lo) || !parse_double(second, options.hi)) {
        return refuse("--range needs two numbers", nullptr);
      }
      options.range_given = 1;
      i += 2;
    } else if (!std::strcmp(word, "--no-flip")) {
      options.flip = 0;
    } else if (word[0] == '-' && word[1] != '\0') {
      return refuse("unknown option", word);
    } else {
      if (n_files == 2) return refuse("one image file and one PNG file, not more", word);
      files[n_files++] = word;
    }
  }
  if (n_files != 2) return refuse("an image file and a PNG file are needed", nullptr);
  if (rgb_given && plane_given) return refuse("--rgb and --plane exclude each other", nullptr);
  if (rgb_given && options.false_colour) {
    return refuse("--false-colour shows one plane, not --rgb", nullptr);
  }
  if (options.gamma_given && options.scale != scale_gamma) {
    return refuse("--gamma goes with --scale gamma", nullptr);
  }
  if (options.range_given) {
    if (!(options.hi > options.lo)) return refuse("--range needs LO below HI", nullptr);
    if (options.scale == scale_log && !(options.lo > 0.0)) {
      return refuse("--range with --scale log needs a positive LO", nullptr);
    }
  }
  options.input = files[0];
  options.output = files[1];
  if (rgb_given) {
    options.n_shown = 3;
    options.explicit_planes = 1;
  } else if (plane_given) {
    options.n_shown = 1;
    options.explicit_planes = 1;
  }
  return 1;
}

// The planes of one image file that are to be shown, as floats, row-major,
// row 0 first. SGI bytes are taken as their counts, 0 to 255.
class Shown_planes {
 public:
  Shown_planes() : rows(0), columns(0), n_planes(0), n_shown(0), is_sgi(0), format("") {
    for (int i = 0; i < 3; i++) data[i] = nullptr;
  }
  ~Shown_planes() {
    for (int i = 0; i < 3; i++) delete[] data[i];
  }

  // Reads the sizes and plane count, settles which planes are shown and
  // loads them. 0 after a message on standard error.
  int load(Options& options) {
    std::ifstream in(options.input, std::ios::in | std::ios::binary);
    if (!in) {
      std::cerr << "TCImage_to_png: can't open " << options.input << "\n";
      return 0;
    }
    unsigned char magic[4] = {0, 0, 0, 0};
    in.read(reinterpret_cast<char*>(magic), 4);
    const std::streamsize got = in.gcount();
    in.close();
    if (got >= 2 && magic[0] == 0x01 && magic[1] == 0xda) {
      is_sgi = 1;
      format = "SGI RGB";
      if (!rgb_sizes(options.input)) return 0;
    } else if (got == 4 && magic[0] == 0x0e && magic[1] == 0x03 && magic[2] == 0x13 &&
               magic[3] == 0x01) {
      format = "HDF";
      if (!hdf_sizes(options.input)) return 0;
    } else {
      std::cerr << "TCImage_to_png: " << options.input
                << " is neither an HDF nor an SGI RGB image\n";
      return 0;
    }
    if (rows < 1 || columns < 1 || rows > largest_side || columns > largest_side || n_planes < 1) {
      std::cerr << "TCImage_to_png: " << options.input << " has no usable image (" << rows
                << " rows, " << columns << " columns, " << n_planes << " planes)\n";
      return 0;
    }
    if (!options.explicit_planes) {
      options.n_shown = n_planes >= 3 ? 3 : 1;
      for (int i = 0; i < 3; i++) options.shown[i] = options.n_shown == 3 ? i : 0;
    }
    if (options.false_colour && options.n_shown != 1) {
      // False colour shows one plane; a file of three or more starts at plane 0.
      options.n_shown = 1;
      options.shown[0] = 0;
    }
    n_shown = options.n_shown;
    for (int i = 0; i < n_shown; i++) {
      if (options.shown[i] >= n_planes) {
        std::cerr << "TCImage_to_png: plane " << options.shown[i] << " is not in " << options.input
                  << ", which has " << n_planes << " plane" << (n_planes == 1 ? "" : "s")
                  << " (numbered from 0)\n";
        return 0;
      }
    }
    const long pixels = static_cast<long>(rows) * columns;
    for (int i = 0; i < n_shown; i++) {
      data[i] = new (std::nothrow) float[pixels];
      if (!data[i]) {
        std::cerr << "TCImage_to_png: unable to allocate a plane of " << rows << " by " << columns
                  << "\n";
        return 0;
      }
      const int ok = is_sgi ? rgb_plane(options.input, options.shown[i], data[i])
                            : hdf_plane(options.input, options.shown[i], data[i]);
      if (!ok) return 0;
    }
    return 1;
  }

  int rows, columns, n_planes, n_shown;
  int is_sgi;          // else HDF
  const char* format;  // for the size line
  float* data[3];

 private:
  int rgb_sizes(const char* name) {
    int dims[2] = {0, 0};
    if (!rgb_read_dims(name, dims) || !rgb_read_channels(name, n_planes)) {
      std::cerr << "TCImage_to_png: unable to read the header of " << name << "\n";
      return 0;
    }
    rows = dims[0];
    columns = dims[1];
    return 1;
  }

  int rgb_plane(const char* name, int plane, float* out) {
    const int dims[2] = {rows, columns};
    const long pixels = static_cast<long>(rows) * columns;
    unsigned char* bytes = new (std::nothrow) unsigned char[pixels];
    if (!bytes) {
      std::cerr << "TCImage_to_png: unable to allocate a plane of " << rows << " by " << columns
                << "\n";
      return 0;
    }
    int bad_row = 0;
    const int ok = rgb_load_plane(name, plane, bytes, dims, bad_row);
    if (ok) {
      for (long p = 0; p < pixels; p++) out[p] = bytes[p];
    } else {
      std::cerr << "TCImage_to_png: unable to read plane " << plane << " of " << name
                << (bad_row ? ": a run-length row does not decode" : "") << "\n";
    }
    delete[] bytes;
    return ok;
  }

  // Sizes from the first data set; every plane must match them, which the
  // plane reader checks.
  int hdf_sizes(const char* name) {
    // The library's calls take non-const names but do not write to them.
    char* library_name = const_cast<char*>(name);
    intn rank = 0;
    int32 sizes[2] = {0, 0};
    // Makes this file the library's current one so that the restart applies to it.
    DFSDgetdims(library_name, &rank, sizes, 2);
    DFSDrestart();
    if (DFSDgetdims(library_name, &rank, sizes, 2) != 0 || rank != 2) {
      std::cerr << "TCImage_to_png: " << name << " holds no two-dimensional HDF data set\n";
      return 0;
    }
    const int32 count = DFSDndatasets(library_name);
    if (count < 1) {
      std::cerr << "TCImage_to_png: " << name << " holds no HDF data set\n";
      return 0;
    }
    rows = sizes[0];
    columns = sizes[1];
    n_planes = count > largest_side ? largest_side : static_cast<int>(count);
    return 1;
  }

  int hdf_plane(const char* name, int plane, float* out) {
    const int dims[2] = {rows, columns};
    if (!hdf_read_plane(name, plane, out, dims)) {
      std::cerr << "TCImage_to_png: unable to read plane " << plane << " of " << name << "\n";
      return 0;
    }
    return 1;
  }
};

// Minimum, maximum and mean of one plane's finite values.
void print_statistics(int plane, const float* data, long pixels) {
  long finite = 0;
  double low = 0.0, high = 0.0, sum = 0.0;
  for (long p = 0; p < pixels; p++) {
    const double v = data[p];
    if (!std::isfinite(v)) continue;
    if (finite == 0 || v < low) low = v;
    if (finite == 0 || v > high) high = v;
    sum += v;
    finite++;
  }
  std::cout << "plane " << plane << ":";
  if (finite == 0) {
    std::cout << " no finite values\n";
    return;
  }
  std::cout << " min " << low << " max " << high << " mean " << sum / finite;
  if (finite < pixels) std::cout << " (" << pixels - finite << " non-finite values left out)";
  std::cout << "\n";
}

// The range of the shown planes: finite values, and for log only positive
// ones. 0 when there is none.
int automatic_range(const Shown_planes& image, Scale scale, double& lo, double& hi) {
  const long pixels = static_cast<long>(image.rows) * image.columns;
  int found = 0;
  for (int i = 0; i < image.n_shown; i++) {
    for (long p = 0; p < pixels; p++) {
      const double v = image.data[i][p];
      if (!std::isfinite(v) || (scale == scale_log && v <= 0.0)) continue;
      if (!found || v < lo) lo = v;
      if (!found || v > hi) hi = v;
      found = 1;
    }
  }
  return found;
}

// Brightness from 0 to 1 of a value over (lo, hi). NaN and, under log, values
// at or below 0 are 0. A range of no width puts everything at or below lo at
// 0 and the rest at 1.
double brightness(double v, const Options& options, int range_found) {
  if (!range_found || std::isnan(v)) return 0.0;
  double a = v, lo = options.lo, hi = options.hi;
  if (options.scale == scale_log) {
    if (!(v > 0.0)) return 0.0;
    a = std::log10(v);
    lo = std::log10(lo);
    hi = std::log10(hi);
  }
  double t;
  if (hi > lo) {
    t = (a - lo) / (hi - lo);
  } else {
    t = a > lo ? 1.0 : 0.0;
  }
  if (!(t > 0.0)) return 0.0;
  if (t > 1.0) t = 1.0;
  if (options.scale == scale_gamma) t = std::pow(t, 1.0 / options.gamma);
  return t;
}

unsigned char to_byte(double t) {
  return static_cast<unsigned char>(std::floor(255.0 * t + 0.5));
}

// The false-colour ramp: blue, cyan, green, yellow, red at 0, 1/4, 1/2, 3/4, 1,
// linear in between. NaN shows black, apart from every value.
void false_colour(double t, int is_nan, unsigned char rgb[3]) {
  static const double stops[5][3] = {
      {0, 0, 255}, {0, 255, 255}, {0, 255, 0}, {255, 255, 0}, {255, 0, 0}};
  if (is_nan) {
    rgb[0] = rgb[1] = rgb[2] = 0;
    return;
  }
  double x = t * 4.0;
  int k = static_cast<int>(std::floor(x));
  if (k > 3) k = 3;
  if (k < 0) k = 0;
  const double f = x - k;
  for (int c = 0; c < 3; c++) {
    const double value = stops[k][c] + (stops[k + 1][c] - stops[k][c]) * f;
    rgb[c] = static_cast<unsigned char>(std::floor(value + 0.5));
  }
}

int write_png(const char* name, const unsigned char* pixels, int rows, int columns, int channels) {
  png_image image;
  std::memset(&image, 0, sizeof(image));
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(columns);
  image.height = static_cast<png_uint_32>(rows);
  image.format = channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
  if (!png_image_write_to_file(&image, name, 0, pixels, columns * channels, nullptr)) {
    std::cerr << "TCImage_to_png: unable to write " << name << ": " << image.message << "\n";
    png_image_free(&image);
    return 0;
  }
  return 1;
}

// Scales the shown planes into 8-bit PNG rows, top row first, and writes them.
int convert(const Shown_planes& image, const Options& options, int range_found) {
  const int channels = image.n_shown == 3 || options.false_colour ? 3 : 1;
  const long pixels = static_cast<long>(image.rows) * image.columns;
  unsigned char* out = new (std::nothrow) unsigned char[pixels * channels];
  if (!out) {
    std::cerr << "TCImage_to_png: unable to allocate the PNG picture\n";
    return 0;
  }
  for (int r = 0; r < image.rows; r++) {
    const int out_row = options.flip ? image.rows - 1 - r : r;
    for (int c = 0; c < image.columns; c++) {
      const long p = static_cast<long>(r) * image.columns + c;
      unsigned char* at = out + (static_cast<long>(out_row) * image.columns + c) * channels;
      if (options.false_colour) {
        const double v = image.data[0][p];
        false_colour(brightness(v, options, range_found), std::isnan(v), at);
      } else {
        for (int k = 0; k < image.n_shown; k++) {
          at[k] = to_byte(brightness(image.data[k][p], options, range_found));
        }
      }
    }
  }
  const int ok = write_png(options.output, out, image.rows, image.columns, channels);
  delete[] out;
  return ok;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  const int parsed = parse_options(argc, argv, options);
  if (parsed < 0) {
    print_usage(std::cout);
    return 0;
  }
  if (!parsed) return 1;

  Shown_planes image;
  if (!image.load(options)) return 1;

  std::cout << options.input << ": " << image.format << ", " << image.rows << " rows by "
            << image.columns << " columns, " << image.n_planes << " plane"
            << (image.n_planes == 1 ? "" : "s") << "\n";
  const long pixels = static_cast<long>(image.rows) * image.columns;
  for (int i = 0; i < image.n_shown; i++) print_statistics(options.shown[i], image.data[i], pixels);

  int range_found = 1;
  if (!options.range_given) {
    range_found = automatic_range(image, options.scale, options.lo, options.hi);
  }
  static const char* const scale_words[] = {"linear", "log", "gamma"};
  std::cout << "scale: " << scale_words[options.scale];
  if (options.scale == scale_gamma) std::cout << " " << options.gamma;
  if (range_found) {
    std::cout << ", range " << options.lo << " to " << options.hi << "\n";
  } else {
    std::cout << ", no value to set a range by: the picture is black\n";
  }

  if (!convert(image, options, range_found)) return 1;
  return 0;
}
