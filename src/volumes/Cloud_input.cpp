#include "Cloud_input.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "TCData_file.h"
#include "TCObject_kinds.h"

// Packed layout of a cloud, after the volume's part (positions counted from
// where the volume's ints, doubles and chars end).
//
// ints                            doubles
//   0 density_format                0 relative_scale
//   1 small_scale_fluctuations      1 log_normal_width
//   2..4 small_scale_n x, y, z      2 power_law
//   5 generate_file_from_scratch    3 length_scale
//   6 random_seed                   4 reference_time
//                                   5 update_time
// chars                             6 sigma_time
//   0 density_file
//   256 density_with_fluctuation_file
//   512 small_scale_file_name

namespace {

const int cloud_file_version = 1;

const int cloud_ints = 7;
const int cloud_doubles = 7;
const int text_block = 256;
const int cloud_chars = 3 * text_block;

void print_line(const char* text) {
  std::cout << text << "\n";
}

// Adds a cloud's own count to its volume's; -1 stays -1.
int with_cloud_part(int volume_count, int own) {
  if (volume_count < 0) return -1;
  const long long total = static_cast<long long>(volume_count) + own;
  const long long most_packed = INT_MAX / 8;
  return total > most_packed ? -1 : static_cast<int>(total);
}

}  // namespace

Cloud_input::Cloud_input()
    : density_format(density_binary),
      small_scale_fluctuations(fluctuations_no),
      small_scale_n_x(1),
      small_scale_n_y(1),
      small_scale_n_z(1),
      relative_scale(1.0),
      generate_file_from_scratch(1),
      log_normal_width(1.0),
      power_law(1.0),
      length_scale(2.0),
      random_seed(1),
      reference_time(0.0),
      update_time(0.1),
      sigma_time(0.1) {
  copy_text(object_type, "cloud", text_block);
  copy_text(object_name, "cloud_type_name", text_block);
  type_code = TC_KIND_CLOUD;
  copy_text(density_file, "cloudlwc.dat", text_block);
  copy_text(density_with_fluctuation_file, "cloudfluclwc.dat", text_block);
  copy_text(small_scale_file_name, "cloud_fluctuations.dat", text_block);
}

Cloud_input::~Cloud_input() {}

int Cloud_input::density_format_code(const char* word) {
  if (word == nullptr) return -1;
  if (std::strcmp(word, "binary") == 0) return density_binary;
  if (std::strcmp(word, "uniform") == 0) return density_uniform;
  return -1;
}

const char* Cloud_input::density_format_word(int code) {
  if (code == density_binary) return "binary";
  if (code == density_uniform) return "uniform";
  return nullptr;
}

int Cloud_input::fluctuation_code(const char* word) {
  if (word == nullptr) return -1;
  if (std::strcmp(word, "no") == 0) return fluctuations_no;
  if (std::strcmp(word, "yes") == 0) return fluctuations_yes;
  if (std::strcmp(word, "yesdumpdensity") == 0) return fluctuations_yes_dump_density;
  if (std::strcmp(word, "dynamic") == 0) return fluctuations_dynamic;
  return -1;
}

const char* Cloud_input::fluctuation_word(int code) {
  switch (code) {
    case fluctuations_no:
      return "no";
    case fluctuations_yes:
      return "yes";
    case fluctuations_yes_dump_density:
      return "yesdumpdensity";
    case fluctuations_dynamic:
      return "dynamic";
    default:
      return nullptr;
  }
}

int Cloud_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open cloud input file ")) return 0;
  if (read_stream(in)) return 1;
  return report_file_failure("unable to process cloud file ", path);
}

int Cloud_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open cloud output file ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write_stream(out) && out.flush()) return 1;
  return report_file_failure("unable to process cloud output file ", path);
}

int Cloud_input::read_stream(std::istream& in) {
  const int result = read_sections(in);
  // A fluctuation mode the file does not name is fatal, not a failed read.
  if (result == invalid_fluctuation_word) std::exit(1);
  if (result == 0) return 0;
  if (!read_phase_file(phase_function_file)) {
    print_line("unable to process phase function file ");
    return 0;
  }
  return 1;
}

int Cloud_input::read_sections(std::istream& in) {
  if (check_header(in, "cloud", cloud_file_version) == 0 || !read_section(in)) {
    print_line("unable to process cloud data ");
    return 0;
  }
  return read_cloud_values(in);
}

// The cloud's own values after the volume section. A value that does not
// read leaves the stream failed, and the end check shows the word it met.
int Cloud_input::read_cloud_values(std::istream& in) {
  std::string format = read_keyed_text(in);
  if (in) {
    const int code = density_format_code(format.c_str());
    if (code < 0) {
      std::cout << format << " not a valid density format"
                << "\n";
      return 0;
    }
    density_format = code;
  }
  read_token(in, density_file, text_block);

  const std::string mode = read_keyed_text(in);
  if (in) {
    const int code = fluctuation_code(mode.c_str());
    if (code < 0) {
      // No blank before "not valid": the words have always run together.
      std::cout << "input string " << mode << "not valid"
                << "\n";
      return invalid_fluctuation_word;
    }
    small_scale_fluctuations = code;
  }
  if (small_scale_fluctuations != fluctuations_no) {
    if (small_scale_fluctuations == fluctuations_yes_dump_density) {
      read_keyed_word(in, density_with_fluctuation_file, text_block);
    }
    read_keyed_int(in, small_scale_n_x);
    read_keyed_int(in, small_scale_n_y);
    read_keyed_int(in, small_scale_n_z);
    read_keyed_double(in, relative_scale);
    read_keyed_word(in, small_scale_file_name, text_block);
    const std::string generate = read_keyed_text(in);
    if (in) generate_file_from_scratch = parse_yes_no(generate.c_str());
    if (generate_file_from_scratch) {
      read_keyed_double(in, log_normal_width);
      read_keyed_double(in, power_law);
      read_keyed_double(in, length_scale);
      read_keyed_int(in, random_seed);
    }
    if (small_scale_fluctuations == fluctuations_dynamic) {
      read_keyed_double(in, reference_time);
      read_keyed_double(in, update_time);
      read_keyed_double(in, sigma_time);
    }
  }

  std::string word;
  if (!read_end_word(in, word)) {
    std::cout << "cloud input file is invalid, read " << word << " instead of end"
              << "\n";
    return 0;
  }
  return 1;
}

int Cloud_input::write_stream(std::ostream& out) const {
  // Judged before anything is written, so that a refusal writes nothing.
  if (density_format_word(density_format) == nullptr) {
    std::cout << density_format << " not a valid density format"
              << "\n";
    return 0;
  }
  if (fluctuation_word(small_scale_fluctuations) == nullptr) {
    print_line("invalid small_scale_fluctuation_flag ");
    return 0;
  }
  std::ostringstream text;
  text << "Tidecast_data_file cloud  " << cloud_file_version << " " << cloud_file_version << "\n";
  if (!TCVolume_Object_class::write_stream(text)) return 0;
  if (!write_cloud_values(text)) return 0;
  out << text.str();
  return out ? 1 : 0;
}

int Cloud_input::write_cloud_values(std::ostream& out) const {
  set_file_precision(out);
  out << "density_file: " << density_format_word(density_format) << " " << density_file << "\n";
  out << "small_scale_fluctuations:  " << fluctuation_word(small_scale_fluctuations) << " "
      << "\n";
  if (small_scale_fluctuations != fluctuations_no) {
    if (small_scale_fluctuations == fluctuations_yes_dump_density) {
      out << "density_with_fluctuation_file:  " << density_with_fluctuation_file << "\n";
    }
    out << "small_scale_n_x: " << small_scale_n_x << "\n";
    out << "small_scale_n_y: " << small_scale_n_y << "\n";
    out << "small_scale_n_z: " << small_scale_n_z << "\n";
    out << "relative_scale: " << relative_scale << "\n";
    out << "small_scale_file_name: " << small_scale_file_name << "\n";
    if (generate_file_from_scratch) {
      out << "generate_file_from_scratch: yes"
          << "\n";
      out << "log_normal_width: " << log_normal_width << "\n";
      out << "power_law: " << power_law << "\n";
      out << "length_scale: " << length_scale << "\n";
      out << "random_seed: " << random_seed << "\n";
    } else {
      out << "generate_file_from_scratch: no "
          << "\n";
    }
    if (small_scale_fluctuations == fluctuations_dynamic) {
      out << "reference_time: " << reference_time << "\n";
      out << "update_time: " << update_time << "\n";
      out << "sigma_time: " << sigma_time << "\n";
    }
  }
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

void Cloud_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  TCVolume_Object_class::packing_sizes(n_ints, n_doubles, n_chars);
  n_ints = with_cloud_part(n_ints, cloud_ints);
  n_doubles = with_cloud_part(n_doubles, cloud_doubles);
  n_chars = with_cloud_part(n_chars, cloud_chars);
}

int Cloud_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
                      int& char_bytes) {
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (!packing_counts_fit(n_ints, n_doubles, n_chars,
                          "unable to allocate cloud character packing array ",
                          "unable to allocate cloud integer packing array ",
                          "unable to allocate cloud double packing array ")) {
    return 0;
  }
  if (!TCVolume_Object_class::pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    print_line("unable to pack volume part of cloud ");
    return 0;
  }
  // The volume's counts are its own again once it has packed.
  int volume_ints = 0, volume_doubles = 0, volume_chars = 0;
  TCVolume_Object_class::packing_sizes(volume_ints, volume_doubles, volume_chars);
  int* p = ints + volume_ints;
  p[0] = density_format;
  p[1] = small_scale_fluctuations;
  p[2] = small_scale_n_x;
  p[3] = small_scale_n_y;
  p[4] = small_scale_n_z;
  p[5] = generate_file_from_scratch;
  p[6] = random_seed;
  double* d = doubles + volume_doubles;
  d[0] = relative_scale;
  d[1] = log_normal_width;
  d[2] = power_law;
  d[3] = length_scale;
  d[4] = reference_time;
  d[5] = update_time;
  d[6] = sigma_time;
  char* c = chars + volume_chars;
  copy_text(c, density_file, text_block);
  copy_text(c + text_block, density_with_fluctuation_file, text_block);
  copy_text(c + 2 * text_block, small_scale_file_name, text_block);
  return 1;
}

int Cloud_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                        const char* chars, int char_bytes) {
  // The volume checks the three sizes against this record's whole counts
  // (packing_sizes is this class's), so the cloud's part is there once it
  // has unpacked.
  if (!TCVolume_Object_class::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    print_line("unable to unpack volume part of cloud ");
    return 0;
  }
  int volume_ints = 0, volume_doubles = 0, volume_chars = 0;
  TCVolume_Object_class::packing_sizes(volume_ints, volume_doubles, volume_chars);
  const int* p = ints + volume_ints;
  density_format = p[0];
  small_scale_fluctuations = p[1];
  small_scale_n_x = p[2];
  small_scale_n_y = p[3];
  small_scale_n_z = p[4];
  generate_file_from_scratch = p[5];
  random_seed = p[6];
  const double* d = doubles + volume_doubles;
  relative_scale = d[0];
  log_normal_width = d[1];
  power_law = d[2];
  length_scale = d[3];
  reference_time = d[4];
  update_time = d[5];
  sigma_time = d[6];
  const char* c = chars + volume_chars;
  text_from_block(density_file, c);
  text_from_block(density_with_fluctuation_file, c + text_block);
  text_from_block(small_scale_file_name, c + 2 * text_block);
  return 1;
}
