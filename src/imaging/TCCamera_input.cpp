#include "TCCamera_input.h"

#include <cfloat>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <new>
#include <sstream>
#include <string>

#include "TCData_file.h"

// Packed layout of a camera, positions counted from the root's part (the
// root packs no ints and no doubles, and its name takes the first 256 chars).
//
// ints                                   doubles
//   0 n_pixel_elevation                    0 fov_elevation
//   1 n_pixel_azimuth                      1 fov_azimuth
//   2 picture_fraction_flag                2 gamma
//   3 first_elevation                      3 min_value
//   4 first_azimuth                        4 max_value
//   5 last_elevation                       5 priority
//   6 last_azimuth
//   7 n_sub_elevation                    chars, blocks of 256 after the name
//   8 n_sub_azimuth                        efficiency_matte_file
//   9 anti_alias                           with mattes on: the matte object
//  10 efficiency_matte                     names, then the reflected names,
//  11 resampling_elevation                 then the alpha names
//  12 resampling_azimuth
//  13 image_slices                       bobbing camera, doubles after the
//  14 image_format                       camera's:
//  15 rescale_method                       6 decouple_height
//  16 number of bands                      7 decouple_relax_time
//  17 slices_given (0 or 1)                8 base_size
//  18 version (of the object list)
//  19 use_mattes
//  with mattes on:
//  20 n_matte_objects, 21 total of mattes, 22 n_reflected_names,
//  23 n_alpha_names, then per object its count and its codes
//  then the band ids, then image_slices flags when slices are given.

namespace {

// The file's reader understands versions up to this one, and writes it.
const int camera_file_version = 3;
const int bobbing_file_version = 1;
const int most_bands = 10;

// Fixed int positions.
const int at_image_slices = 13;
const int at_n_bands = 16;
const int at_slices_given = 17;
const int at_use_mattes = 19;
const int at_n_matte_objects = 20;
const int at_matte_total = 21;
const int at_n_reflected = 22;
const int at_n_alpha = 23;
const int fixed_ints = 20;       // through use_mattes
const int matte_fixed_ints = 4;  // the counts at 20 to 23
const int camera_doubles = 6;
const int text_block = 256;

// A float in the fewest digits that read back to the same float.
void write_float(std::ostream& out, float value) {
  for (int digits = 6; digits <= 9; digits++) {
    std::ostringstream text;
    text.precision(digits);
    text << value;
    // Checked the way the reader takes it: as a double, then narrowed.
    if (static_cast<float>(std::strtod(text.str().c_str(), nullptr)) == value) {
      out << text.str();
      return;
    }
  }
  std::ostringstream text;
  text.precision(9);
  text << value;
  out << text.str();
}

// A number beyond the range of a float is refused like one beyond a double's.
int read_float(std::istream& in, float& value) {
  double read_value = 0.0;
  if (!read_double(in, read_value)) return 0;
  if (read_value > FLT_MAX || read_value < -FLT_MAX) {
    in.setstate(std::ios::failbit);
    return 0;
  }
  value = static_cast<float>(read_value);
  return 1;
}

// n - 1, wrapping at the lowest int rather than overflowing: the reader
// leaves sizes unchecked.
int last_pixel(int n) {
  return static_cast<int>(static_cast<unsigned int>(n) - 1u);
}

// The reader's end check: a failed read left the word it choked on in the
// stream, and that word is the most useful thing to show. A failed read
// fails the check even when "end" follows (a number out of range at the
// last field is consumed all the same).
int camera_end_read(std::istream& in) {
  std::string token;
  if (read_end_word(in, token)) return 1;
  std::cout << "camera file invalid, read " << token << "instead of end"
            << "\n";
  return 0;
}

}  // namespace

int image_format_code(const char* word) {
  const std::string text = word ? word : "";
  if (text == "hdf" || text == "img" || text == "HDF") return image_format_hdf;
  if (text == "sgi" || text == "rgb") return image_format_rgb;
  if (text == "tiff") return image_format_tiff;
  if (text == "cineon") return image_format_cineon;
  std::cout << "file format " << text << "unknown"
            << "\n"
            << "allowable formats:  img  rgb "
            << "\n";
  return 0;
}

const char* image_format_word(int code) {
  if (code == image_format_hdf) return "img";
  if (code == image_format_rgb) return "rgb";
  if (code == image_format_tiff) return "tiff";
  return nullptr;
}

int rescale_method_code(const char* word) {
  const std::string text = word ? word : "";
  if (text == "no") return camera_rescale_none;
  if (text == "log") return camera_rescale_log;
  if (text == "gamma") return camera_rescale_gamma;
  std::cout << "rescaling method " << text << "unknown"
            << "\n"
            << "allowable values :  no  log  gamma "
            << "\n";
  return 0;
}

const char* rescale_method_word(int code) {
  if (code == camera_rescale_none) return "no";
  if (code == camera_rescale_log) return "log";
  if (code == camera_rescale_gamma) return "gamma";
  return nullptr;
}

TCCamera_input::TCCamera_input() : TCCamera_input("camera_type_name", "camera", 255) {}

TCCamera_input::TCCamera_input(const char* name, const char* kind, int code)
    : n_pixel_elevation(0),
      n_pixel_azimuth(0),
      fov_elevation(0.0),
      fov_azimuth(0.0),
      picture_fraction_flag(0),
      first_elevation(0),
      first_azimuth(0),
      last_elevation(-1),
      last_azimuth(-1),
      n_sub_elevation(1),
      n_sub_azimuth(1),
      bands(),
      anti_alias(0),
      efficiency_matte(0),
      resampling_elevation(1),
      resampling_azimuth(1),
      image_slices(1),
      slices_given(0),
      slices_to_be_imaged(nullptr),
      image_format(image_format_hdf),
      rescale_method(camera_rescale_none),
      gamma(1.0f),
      min_value(0.0f),
      max_value(1.0f),
      has_received_counts_(0),
      received_counts_() {
  efficiency_matte_file[0] = '\0';
  copy_text(object_name, name, 256);
  copy_text(object_type, kind, 256);
  type_code = code;
  std::cout << "camera constructed " << object_name << "\n";
}

TCCamera_input::~TCCamera_input() {
  delete[] slices_to_be_imaged;
}

int TCCamera_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open camera file ")) return 0;
  if (read_stream(in) && check_field_of_view(path)) return 1;
  return report_file_failure("unable to process camera file ", path);
}

int TCCamera_input::check_field_of_view(const char* path) const {
  // The plane is 2 tan(fov / 2) wide: 0 gives no picture, a negative angle
  // turns it over, and 180 degrees or more has no plane at all.
  const char* names[2] = {"fov_azimuth", "fov_elevation"};
  const double values[2] = {fov_azimuth, fov_elevation};
  for (int i = 0; i < 2; i++) {
    if (values[i] > 0.0 && values[i] < 180.0) continue;
    std::cout << "camera file " << (path ? path : "") << ": " << names[i] << " " << values[i]
              << " must be above 0 and below 180 degrees"
              << "\n";
    return 0;
  }
  return 1;
}

int TCCamera_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open camera output file ")) return 0;
  if (write_stream(out)) return 1;
  return report_file_failure("unable to process camera output file ", path);
}

int TCCamera_input::read_stream(std::istream& in) {
  if (!read_camera_section(in)) return 0;
  // Older lists carry the matte request elsewhere; leave it to them.
  if (version >= 2) return matte.read(in);
  return 1;
}

int TCCamera_input::write_stream(std::ostream& out) const {
  if (!write_camera_section(out)) return 0;
  if (version >= 2 && !matte.write(out)) return 0;
  return out ? 1 : 0;
}

int TCCamera_input::read_camera_section(std::istream& in) {
  const int file_version = check_header(in, "camera", camera_file_version);
  if (file_version == 0) {
    std::cout << " cannot process camera file "
              << "\n";
    return 0;
  }
  const int status = read_camera_fields(in, file_version);
  if (status == 0) return 0;
  if (status == 2) return 1;
  return camera_end_read(in);
}

int TCCamera_input::read_camera_fields(std::istream& in, int file_version) {
  skip_token(in);
  if (!read_int(in, n_pixel_azimuth)) return 1;
  skip_token(in);
  if (!read_int(in, n_pixel_elevation)) return 1;
  skip_token(in);
  if (!read_double(in, fov_azimuth)) return 1;
  skip_token(in);
  if (!read_double(in, fov_elevation)) return 1;
  // The imaging method has one value and is not kept.
  int image_method = 0;
  skip_token(in);
  if (!read_int(in, image_method)) return 1;
  skip_token(in);
  if (!read_int(in, picture_fraction_flag)) return 1;
  if (picture_fraction_flag != 0) {
    skip_token(in);
    if (!read_int(in, first_azimuth) || !read_int(in, last_azimuth)) return 1;
    skip_token(in);
    if (!read_int(in, first_elevation) || !read_int(in, last_elevation)) return 1;
  } else {
    first_azimuth = 0;
    first_elevation = 0;
    last_azimuth = last_pixel(n_pixel_azimuth);
    last_elevation = last_pixel(n_pixel_elevation);
  }
  skip_token(in);
  if (!read_int(in, n_sub_azimuth)) return 1;
  skip_token(in);
  if (!read_int(in, n_sub_elevation)) return 1;

  int n_bands = 0;
  skip_token(in);
  if (!read_int(in, n_bands)) return 1;
  if (n_bands > most_bands) {
    std::cout << "n_bands = " << n_bands << "is too large"
              << "\n";
    return 0;
  }
  // A negative count is as unreadable as a word: the end check shows what
  // follows it.
  if (n_bands < 0) return 1;
  TCSpectrum read_bands(n_bands);
  skip_token(in);
  for (int i = 0; i < n_bands; i++) {
    if (!read_int(in, read_bands.band_id[i])) return 1;
  }
  bands = read_bands;

  anti_alias = 0;
  if (file_version >= 2) {
    skip_token(in);
    if (!read_int(in, anti_alias)) return 1;
    if (anti_alias != 0) {
      skip_token(in);
      if (!read_int(in, resampling_azimuth)) return 1;
      skip_token(in);
      if (!read_int(in, resampling_elevation)) return 1;
    }
  }
  efficiency_matte = 0;
  if (file_version >= 3) {
    skip_token(in);
    if (!read_int(in, efficiency_matte)) return 1;
    if (efficiency_matte != 0) {
      skip_token(in);
      if (!read_token(in, efficiency_matte_file, 256)) return 1;
    }
  }

  // From here on the file may stop at an "end" in a keyword's place.
  std::string word;
  if (!(in >> word)) return 1;
  if (word == "end") {
    set_all_slices(1);
    image_format = image_format_hdf;
    rescale_method = camera_rescale_none;
    return 2;
  }
  int slices = 0;
  if (!read_int(in, slices)) return 1;
  set_all_slices(slices < 1 ? 1 : slices);

  if (!(in >> word)) return 1;
  if (word == "end") {
    image_format = image_format_hdf;
    rescale_method = camera_rescale_none;
    return 2;
  }
  if (!(in >> word)) return 1;
  int format = image_format_code(word.c_str());
  if (format == image_format_cineon) {
    // Its two settings are read past and the picture goes out as hdf.
    double setting = 0.0;
    skip_token(in);
    if (!read_double(in, setting)) return 1;
    skip_token(in);
    if (!read_double(in, setting)) return 1;
    std::cout << "**Sorry, this version does NOT support cineon format!\n"
              << "**Using hdf instead\n";
    format = image_format_hdf;
  }
  image_format = format;
  if (image_format == image_format_hdf) {
    // Float planes are written as they are.
    rescale_method = camera_rescale_none;
    return 1;
  }

  skip_token(in);
  if (!(in >> word)) return 1;
  rescale_method = rescale_method_code(word.c_str());
  if (rescale_method == camera_rescale_gamma && !read_float(in, gamma)) return 1;
  skip_token(in);
  if (!read_float(in, min_value)) return 1;
  skip_token(in);
  if (!read_float(in, max_value)) return 1;
  return 1;
}

int TCCamera_input::write_camera_section(std::ostream& out) const {
  const char* format_word = image_format_word(image_format);
  if (format_word == nullptr) return 0;
  const char* rescale_word = nullptr;
  if (image_format != image_format_hdf) {
    rescale_word = rescale_method_word(rescale_method);
    if (rescale_word == nullptr) return 0;
  }

  write_header(out, "camera", camera_file_version);
  set_file_precision(out);
  out << "n_pixel_azimuth " << n_pixel_azimuth << "\n";
  out << "n_pixel_elevation " << n_pixel_elevation << "\n";
  out << "fov_azimuth " << fov_azimuth << "\n";
  out << "fov_elevation " << fov_elevation << "\n";
  out << "image_method 1"
      << "\n";
  out << "picture_fraction_flag " << picture_fraction_flag << "\n";
  if (picture_fraction_flag != 0) {
    out << "azimuth_range " << first_azimuth << " " << last_azimuth << "\n";
    out << "elevation_range " << first_elevation << " " << last_elevation << "\n";
  }
  out << "n_sub_azimuth " << n_sub_azimuth << "\n";
  out << "n_sub_elevation " << n_sub_elevation << "\n";
  out << "number_of_bands " << bands.n << "\n";
  out << "band_id";
  for (int i = 0; i < bands.n; i++) out << " " << bands.band_id[i];
  out << "\n";
  out << "anti_alias " << anti_alias << "\n";
  if (anti_alias != 0) {
    out << "resampling_azimuth " << resampling_azimuth << "\n";
    out << "resampling_elevation " << resampling_elevation << "\n";
  }
  out << "efficiency_matte " << efficiency_matte << "\n";
  if (efficiency_matte != 0) out << "efficiency_matte_file " << efficiency_matte_file << "\n";
  out << "image_slices " << image_slices << "\n";
  out << "image_format " << format_word << "\n";
  if (image_format != image_format_hdf) {
    out << "scale " << rescale_word;
    if (rescale_method == camera_rescale_gamma) {
      out << " ";
      write_float(out, gamma);
    }
    out << "\n";
    out << "min_value ";
    write_float(out, min_value);
    out << "\n";
    out << "max_value ";
    write_float(out, max_value);
    out << "\n";
  }
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

void TCCamera_input::set_all_slices(int n) {
  delete[] slices_to_be_imaged;
  slices_to_be_imaged = nullptr;
  image_slices = n;
  slices_given = 0;
}

int TCCamera_input::set_slices_to_image(int n, const int* flags) {
  if (n < 1) {
    std::cout << "can not image a non-positive number of slices "
              << "\n";
    return 0;
  }
  int* list = new (std::nothrow) int[n];
  if (list == nullptr) {
    std::cout << "unable to allocate slices_to_be_imaged in Camera input "
              << "\n";
    return 0;
  }
  for (int i = 0; i < n; i++) list[i] = flags ? flags[i] : 1;
  delete[] slices_to_be_imaged;
  slices_to_be_imaged = list;
  image_slices = n;
  slices_given = 1;
  return 1;
}

int TCCamera_input::matte_name_count() const {
  if (matte.use_mattes == 0) return 0;
  return matte.n_matte_objects + 2 + matte.total_mattes();
}

TCCamera_input::Packed_counts TCCamera_input::counts_of_fields() const {
  Packed_counts counts;
  counts.n_bands = bands.n;
  counts.image_slices = image_slices;
  // A flag without its list has nothing to send.
  counts.slices_given = (slices_given != 0 && slices_to_be_imaged != nullptr) ? 1 : 0;
  counts.use_mattes = matte.use_mattes;
  const int on = matte.use_mattes != 0;
  counts.n_matte_objects = on ? matte.n_matte_objects : 0;
  counts.matte_total = on ? matte.total_mattes() : 0;
  counts.n_reflected_names = on ? matte.n_reflected_names : 0;
  counts.n_alpha_names = on ? matte.n_alpha_names : 0;
  return counts;
}

TCCamera_input::Packed_counts TCCamera_input::counts_in(const int* ints, int n_base_ints) {
  const int* p = ints + n_base_ints;
  Packed_counts counts;
  counts.n_bands = p[at_n_bands];
  counts.image_slices = p[at_image_slices];
  counts.slices_given = p[at_slices_given];
  counts.use_mattes = p[at_use_mattes];
  const int on = counts.use_mattes != 0;
  counts.n_matte_objects = on ? p[at_n_matte_objects] : 0;
  counts.matte_total = on ? p[at_matte_total] : 0;
  counts.n_reflected_names = on ? p[at_n_reflected] : 0;
  counts.n_alpha_names = on ? p[at_n_alpha] : 0;
  return counts;
}

void TCCamera_input::sizes_of(const Packed_counts& counts, long long& n_ints, long long& n_doubles,
                              long long& n_chars) {
  n_ints = fixed_ints + static_cast<long long>(counts.n_bands) +
           static_cast<long long>(counts.image_slices) * counts.slices_given;
  n_doubles = camera_doubles;
  n_chars = text_block;
  if (counts.use_mattes != 0) {
    n_ints +=
        matte_fixed_ints + static_cast<long long>(counts.n_matte_objects) + counts.matte_total;
    n_chars +=
        static_cast<long long>(text_block) * (static_cast<long long>(counts.n_matte_objects) +
                                              counts.n_reflected_names + counts.n_alpha_names);
  }
}

void TCCamera_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  sizes_of(has_received_counts_ ? received_counts_ : counts_of_fields(), own_ints, own_doubles,
           own_chars);
  // -1 marks a count that no array could hold; pack and unpack refuse it.
  const long long all_ints = n_ints + own_ints;
  const long long all_doubles = n_doubles + own_doubles;
  const long long all_chars = n_chars + own_chars;
  n_ints = packed_count(all_ints, all_ints >= 0);
  n_doubles = packed_count(all_doubles, all_doubles >= 0);
  n_chars = packed_count(all_chars, all_chars >= 0);
}

void TCCamera_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                           const char* chars) {
  TCObject_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
  received_counts_ = counts_in(ints, n_ints);
  has_received_counts_ = 1;
}

int TCCamera_input::check_packing_sizes(const char* class_word) const {
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (n_chars < 0) {
    std::cout << "unable to allocate " << class_word << " character packing array "
              << "\n";
    return 0;
  }
  if (n_ints < 0) {
    std::cout << "unable to allocate " << class_word << " integer packing array "
              << "\n";
    return 0;
  }
  if (n_doubles < 0) {
    std::cout << "unable to allocate " << class_word << " double packing array "
              << "\n";
    return 0;
  }
  return 1;
}

int TCCamera_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                         char*& chars, int& char_bytes) {
  drop_received_counts();
  if (!check_packing_sizes("camera")) return 0;
  if (!TCObject_input::pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to pack object part of camera "
              << "\n";
    return 0;
  }
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  const Packed_counts counts = counts_of_fields();

  int* p = ints + base_ints;
  p[0] = n_pixel_elevation;
  p[1] = n_pixel_azimuth;
  p[2] = picture_fraction_flag;
  p[3] = first_elevation;
  p[4] = first_azimuth;
  p[5] = last_elevation;
  p[6] = last_azimuth;
  p[7] = n_sub_elevation;
  p[8] = n_sub_azimuth;
  p[9] = anti_alias;
  p[10] = efficiency_matte;
  p[11] = resampling_elevation;
  p[12] = resampling_azimuth;
  p[at_image_slices] = image_slices;
  p[14] = image_format;
  p[15] = rescale_method;
  p[at_n_bands] = counts.n_bands;
  p[at_slices_given] = counts.slices_given;
  p[18] = version;
  p[at_use_mattes] = counts.use_mattes;
  int k = fixed_ints;
  char* block = chars + base_chars;
  copy_text(block, efficiency_matte_file, text_block);
  block += text_block;
  if (counts.use_mattes != 0) {
    p[at_n_matte_objects] = counts.n_matte_objects;
    p[at_matte_total] = counts.matte_total;
    p[at_n_reflected] = counts.n_reflected_names;
    p[at_n_alpha] = counts.n_alpha_names;
    k += matte_fixed_ints;
    for (int i = 0; i < counts.n_matte_objects; i++) {
      p[k++] = matte.matte_counts[i];
      for (int j = 0; j < matte.matte_counts[i]; j++) p[k++] = matte.matte_ids[i][j];
      copy_text(block, matte.matte_object_names[i], text_block);
      block += text_block;
    }
    for (int i = 0; i < counts.n_reflected_names; i++) {
      copy_text(block, matte.reflected_names[i], text_block);
      block += text_block;
    }
    for (int i = 0; i < counts.n_alpha_names; i++) {
      copy_text(block, matte.alpha_names[i], text_block);
      block += text_block;
    }
  }
  for (int i = 0; i < counts.n_bands; i++) p[k++] = bands.band_id[i];
  if (counts.slices_given) {
    for (int i = 0; i < image_slices; i++) p[k++] = slices_to_be_imaged[i];
  }

  double* d = doubles + base_doubles;
  d[0] = fov_elevation;
  d[1] = fov_azimuth;
  d[2] = gamma;
  d[3] = min_value;
  d[4] = max_value;
  d[5] = priority;
  return 1;
}

int TCCamera_input::counts_are_sound(const int* ints, int n_base_ints, int n_ints,
                                     const Packed_counts& counts) {
  if (counts.n_bands < 0 || counts.slices_given < 0 || counts.slices_given > 1) return 0;
  if (counts.slices_given == 1 && counts.image_slices < 1) return 0;
  if (counts.use_mattes == 0) return 1;
  if (counts.n_matte_objects < 0 || counts.matte_total < 0) return 0;
  if (counts.n_reflected_names < 0 || counts.n_reflected_names > TCMatte_input::max_named_objects)
    return 0;
  if (counts.n_alpha_names < 0 || counts.n_alpha_names > TCMatte_input::max_named_objects) return 0;
  // Each object's count must lie inside the array and the counts must add
  // up to the total.
  long long position = n_base_ints + fixed_ints + matte_fixed_ints;
  long long sum = 0;
  for (int i = 0; i < counts.n_matte_objects; i++) {
    if (position >= n_ints) return 0;
    const int count = ints[position];
    if (count < 0 || count > counts.matte_total - sum) return 0;
    sum += count;
    position += 1 + count;
  }
  return sum == counts.matte_total ? 1 : 0;
}

int TCCamera_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                           const char* chars, int char_bytes) {
  // Counts taken by set_sizes_from_packed serve this one unpack, the root's
  // size check included.
  const int result = unpack_camera_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  drop_received_counts();
  return result;
}

int TCCamera_input::unpack_camera_part(const int* ints, int int_bytes, const double* doubles,
                                       int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  const Packed_counts expected = has_received_counts_ ? received_counts_ : counts_of_fields();

  if (!packed_numbers_fit(n_ints, base_ints + fixed_ints, int_bytes, n_doubles, 0, double_bytes) ||
      !packed_chars_fit(n_chars, char_bytes)) {
    return 0;
  }
  // The counts in the array itself must be those the sizes were worked out
  // from, and must describe a record. The matte counts are only there when
  // the array has room for them.
  if (ints[base_ints + at_use_mattes] != 0 && n_ints < base_ints + fixed_ints + matte_fixed_ints) {
    return packed_ints_wrong();
  }
  const Packed_counts counts = counts_in(ints, base_ints);
  if (std::memcmp(&counts, &expected, sizeof(counts)) != 0 ||
      !counts_are_sound(ints, base_ints, n_ints, counts)) {
    return packed_ints_wrong();
  }

  if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to unpack object part of camera "
              << "\n";
    return 0;
  }

  const int* p = ints + base_ints;
  int k = fixed_ints;
  const char* block = chars + base_chars;
  text_from_block(efficiency_matte_file, block);
  block += text_block;

  matte.clear();
  matte.use_mattes = counts.use_mattes;
  if (counts.use_mattes != 0) {
    k += matte_fixed_ints;
    if (!matte.reserve_objects(counts.n_matte_objects)) {
      std::cout << "ERROR allocating matte data in unpack\n";
      return 0;
    }
    for (int i = 0; i < counts.n_matte_objects; i++) {
      const int count = p[k++];
      text_from_block(matte.matte_object_names[i], block);
      block += text_block;
      matte.matte_counts[i] = 0;
      matte.n_matte_objects = i + 1;
      if (!matte.reserve_codes(i, count)) {
        std::cout << "ERROR allocating matte_data in unpack\n";
        return 0;
      }
      for (int j = 0; j < count; j++) matte.matte_ids[i][j] = p[k++];
      matte.matte_counts[i] = count;
    }
    for (int i = 0; i < counts.n_reflected_names; i++) {
      text_from_block(matte.reflected_names[i], block);
      block += text_block;
    }
    matte.n_reflected_names = counts.n_reflected_names;
    for (int i = 0; i < counts.n_alpha_names; i++) {
      text_from_block(matte.alpha_names[i], block);
      block += text_block;
    }
    matte.n_alpha_names = counts.n_alpha_names;
  }

  TCSpectrum unpacked_bands(counts.n_bands);
  for (int i = 0; i < counts.n_bands; i++) unpacked_bands.band_id[i] = p[k++];
  bands = unpacked_bands;

  if (counts.slices_given) {
    int* list = new (std::nothrow) int[counts.image_slices];
    if (list == nullptr) {
      std::cout << "unable to allocate memory for slices_to_be_imaged "
                << "\n";
      return 0;
    }
    for (int i = 0; i < counts.image_slices; i++) list[i] = p[k++];
    delete[] slices_to_be_imaged;
    slices_to_be_imaged = list;
    slices_given = 1;
  } else {
    delete[] slices_to_be_imaged;
    slices_to_be_imaged = nullptr;
    slices_given = 0;
  }

  n_pixel_elevation = p[0];
  n_pixel_azimuth = p[1];
  picture_fraction_flag = p[2];
  first_elevation = p[3];
  first_azimuth = p[4];
  last_elevation = p[5];
  last_azimuth = p[6];
  n_sub_elevation = p[7];
  n_sub_azimuth = p[8];
  anti_alias = p[9];
  efficiency_matte = p[10];
  resampling_elevation = p[11];
  resampling_azimuth = p[12];
  image_slices = p[at_image_slices];
  image_format = p[14];
  rescale_method = p[15];
  version = p[18];

  const double* d = doubles + base_doubles;
  fov_elevation = d[0];
  fov_azimuth = d[1];
  gamma = static_cast<float>(d[2]);
  min_value = static_cast<float>(d[3]);
  max_value = static_cast<float>(d[4]);
  priority = d[5];
  return 1;
}

TCBobbing_camera_input::TCBobbing_camera_input()
    : TCCamera_input("bobbing_camera_type", "bobbing_camera", 254),
      decouple_height(0.0),
      decouple_relax_time(0.0),
      base_size(0.0) {}

TCBobbing_camera_input::~TCBobbing_camera_input() {}

int TCBobbing_camera_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open bobbing camera file ")) return 0;
  if (!TCCamera_input::read_stream(in) || !check_field_of_view(path)) {
    return report_file_failure("unable to process camera file ", path);
  }
  if (read_bobbing_section(in)) return 1;
  return report_file_failure("unable to process bobbing camera file ", path);
}

int TCBobbing_camera_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open bobbing camera output file ")) return 0;
  if (write_stream(out)) return 1;
  return report_file_failure("unable to process bobbing camera output file ", path);
}

int TCBobbing_camera_input::read_stream(std::istream& in) {
  if (!TCCamera_input::read_stream(in)) return 0;
  return read_bobbing_section(in);
}

int TCBobbing_camera_input::write_stream(std::ostream& out) const {
  if (!TCCamera_input::write_stream(out)) return 0;
  return write_bobbing_section(out);
}

int TCBobbing_camera_input::read_bobbing_section(std::istream& in) {
  if (check_header(in, "bobbing_camera", bobbing_file_version) == 0) {
    std::cout << " cannot process bobbing camera file "
              << "\n";
    return 0;
  }
  skip_token(in);
  if (read_double(in, decouple_height)) {
    skip_token(in);
    if (read_double(in, decouple_relax_time)) {
      skip_token(in);
      read_double(in, base_size);
    }
  }
  // After a failed read, show the word that stopped it, and fail.
  std::string token;
  if (!read_end_word(in, token)) {
    std::cout << "error in bobbing camera file, found " << token << "where I expected end "
              << "\n";
    return 0;
  }
  return 1;
}

int TCBobbing_camera_input::write_bobbing_section(std::ostream& out) const {
  write_header(out, "bobbing_camera", bobbing_file_version);
  set_file_precision(out);
  out << "decouple_height: " << decouple_height << "\n";
  out << "decouple_relax_time: " << decouple_relax_time << "\n";
  out << "base_size: " << base_size << "\n";
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

void TCBobbing_camera_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCCamera_input::packing_sizes(n_ints, n_doubles, n_chars);
  if (n_doubles >= 0) n_doubles += 3;
}

int TCBobbing_camera_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                                 char*& chars, int& char_bytes) {
  drop_received_counts();
  if (!check_packing_sizes("bobbing camera")) return 0;
  if (!TCCamera_input::pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to pack camera part of bobbing camera "
              << "\n";
    return 0;
  }
  int camera_ints = 0, camera_doubles_count = 0, camera_chars = 0;
  TCCamera_input::packing_sizes(camera_ints, camera_doubles_count, camera_chars);
  doubles[camera_doubles_count] = decouple_height;
  doubles[camera_doubles_count + 1] = decouple_relax_time;
  doubles[camera_doubles_count + 2] = base_size;
  return 1;
}

int TCBobbing_camera_input::unpack(const int* ints, int int_bytes, const double* doubles,
                                   int double_bytes, const char* chars, int char_bytes) {
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (int_bytes != n_ints * static_cast<int>(sizeof(int))) {
    std::cout << "packing integer array of the wrong size "
              << "\n"
              << "expected " << n_ints * static_cast<int>(sizeof(int)) << "\n"
              << "got " << int_bytes << "\n";
    return 0;
  }
  if (double_bytes != n_doubles * static_cast<int>(sizeof(double))) {
    std::cout << "packing double array of the wrong size "
              << "\n"
              << "expected " << n_doubles * static_cast<int>(sizeof(double)) << "\n"
              << "got " << double_bytes << "\n";
    return 0;
  }
  if (char_bytes != n_chars) {
    std::cout << "packing char array of the wrong size "
              << "\n"
              << "expected " << n_chars << "\n"
              << "got " << char_bytes << "\n";
    return 0;
  }
  if (!TCCamera_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to unpack camera part of bobbing camera "
              << "\n";
    return 0;
  }
  int camera_ints = 0, camera_doubles_count = 0, camera_chars = 0;
  TCCamera_input::packing_sizes(camera_ints, camera_doubles_count, camera_chars);
  decouple_height = doubles[camera_doubles_count];
  decouple_relax_time = doubles[camera_doubles_count + 1];
  base_size = doubles[camera_doubles_count + 2];
  return 1;
}
