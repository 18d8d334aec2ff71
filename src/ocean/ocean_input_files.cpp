// The three side files of the ocean file: variable wind, glitter sharpening
// and whitecaps.
#include <fstream>
#include <new>
#include <string>

#include "TCData_file.h"
#include "TCOcean_words.h"
#include "TCValue_lists.h"
#include "ocean_input.h"

namespace {

const int text_block = 256;
const int whitecap_file_version = 2;

void replace(double*& target, double* values) {
  delete[] target;
  target = values;
}

// What a table side file prints when it cannot be opened, when its count is
// below 1 and when memory runs out.
struct Table_words {
  const char* open_failure;
  const char* count_failure;
  const char* allocation_failure;
};

// A table side file: a count after its keyword (1 at least), a heading word
// a column, then count rows of n_columns values, angle_column in degrees on
// file. New arrays in columns for the caller; 0 after a message, or silently
// when the rows are cut short (the ocean then names the file).
int read_table_file(const char* name, const Table_words& words, int n_columns, int angle_column,
                    double** columns, int& count) {
  std::ifstream in;
  if (!open_input_file(in, name, words.open_failure)) return 0;
  int n_rows = 0;
  read_keyed_int(in, n_rows);
  if (n_rows < 1) {
    std::cout << words.count_failure << "\n";
    return 0;
  }
  for (int j = 0; j < n_columns; j++) skip_token(in);
  int failed_column = -1;
  const int outcome = read_double_rows(in, n_rows, n_columns, columns, failed_column);
  if (outcome == rows_out_of_memory) {
    std::cout << words.allocation_failure << "\n";
    return 0;
  }
  if (outcome != rows_read) return 0;
  double* angles = columns[angle_column];
  for (int i = 0; i < n_rows; i++) angles[i] = radians_from_file(angles[i]);
  count = n_rows;
  return 1;
}

void read_pair(std::istream& in, double& first, double& second) {
  read_keyed_double(in, first);
  read_double(in, second);
}

// The generation modes that name the full state file, and those that name
// the per-frame files.
int names_state_file(int mode) {
  return mode == whitecap_generation_input || mode == whitecap_generation_output ||
         mode == whitecap_generation_input_initial_output_by_frames;
}

int names_frame_file(int mode) {
  return mode == whitecap_generation_input_initial_output_by_frames ||
         mode == whitecap_generation_input_by_frames ||
         mode == whitecap_generation_output_by_frames;
}

}  // namespace

// ---- Variable wind ----

int ocean_input::read_variable_wind(const char* name) {
  // Headings "time", "speed", "direction".
  const Table_words words = {"Error reading variable wind  file ",
                             "number of variable wind values must be postive ",
                             "unable to allocate variable wind array "};
  double* columns[3];
  int count = 0;
  if (!read_table_file(name, words, 3, 2, columns, count)) return 0;
  replace(wind_time, columns[0]);
  replace(wind_speed, columns[1]);
  replace(wind_direction_series, columns[2]);
  n_wind_values = count;
  return 1;
}

int ocean_input::write_variable_wind(const char* name) const {
  std::ofstream out;
  if (!open_output_file(out, name, "unable to open variable wind file ")) return 0;
  set_file_precision(out);
  out << "number_of_times:  " << n_wind_values << "\n";
  out << "time      speed      direction "
      << "\n";
  for (int i = 0; i < n_wind_values; i++) {
    out << wind_time[i] << "  " << wind_speed[i] << "  "
        << degrees_for_file(wind_direction_series[i]) << "\n";
  }
  return out.flush() ? 1 : 0;
}

// ---- Sharpening ----

int ocean_input::read_sharpening(const char* name) {
  // Headings "angle", "sharpness".
  const Table_words words = {"Error reading sharpening file ",
                             "number of sharpening angles must be postive ",
                             "unable to allocate glitter sharpening array "};
  double* columns[2];
  int count = 0;
  if (!read_table_file(name, words, 2, 0, columns, count)) return 0;
  replace(sharpening_angle, columns[0]);
  replace(sharpening_value, columns[1]);
  n_sharpening_angles = count;
  return 1;
}

int ocean_input::write_sharpening(const char* name) const {
  std::ofstream out;
  if (!open_output_file(out, name, "unable to open sharpening file ")) return 0;
  set_file_precision(out);
  out << "number_of_angles:  " << n_sharpening_angles << "\n";
  out << "angle      sharpness "
      << "\n";
  for (int i = 0; i < n_sharpening_angles; i++) {
    out << degrees_for_file(sharpening_angle[i]) << "  " << sharpening_value[i] << "\n";
  }
  return out.flush() ? 1 : 0;
}

// ---- Whitecaps ----

int ocean_input::read_whitecaps(const char* name) {
  std::ifstream in;
  if (!open_input_file(in, name, "unable to open whitecap file ")) return 0;
  return read_whitecap_stream(in, name);
}

int ocean_input::read_whitecap_stream(std::istream& in, const char* name) {
  const int version = check_header(in, "whitecaps", whitecap_file_version);
  if (version == 0) {
    std::cout << "whitecap data file " << (name ? name : "") << " not of correct type"
              << "\n";
    return 0;
  }
  skip_token(in);  // "sampling_region"
  read_pair(in, whitecap_center_x, whitecap_center_y);
  read_pair(in, whitecap_length_x, whitecap_length_y);
  read_pair(in, whitecap_interval_x, whitecap_interval_y);
  read_keyed_double(in, whitecap_max_distance);
  read_keyed_double(in, whitecap_reference_time);
  read_keyed_double(in, whitecap_time_increment);
  read_keyed_double(in, whitecap_initialization_time);
  if (version >= 2) {
    read_keyed_double(in, whitecap_initialization_increment);
    read_keyed_double(in, whitecap_formation_time);
  } else {
    // The spin-up steps as the run does, and foam appears at once.
    whitecap_initialization_increment = whitecap_time_increment;
    whitecap_formation_time = 0.0;
  }
  read_keyed_double(in, whitecap_decay_time);
  read_pair(in, acceleration_threshold_low, acceleration_threshold_high);
  read_pair(in, whitecap_reflectivity_low, whitecap_reflectivity_high);
  read_keyed_double(in, smear_x);
  read_double(in, smear_y);
  read_double(in, smear_t);
  read_keyed_double(in, acceleration_time_offset);

  whitecap_generation = whitecap_generation_none;
  if (version >= 2) {
    whitecap_generation = whitecap_generation_code(read_keyed_text(in).c_str());
    if (names_state_file(whitecap_generation)) read_keyed_word(in, initial_state_file, text_block);
    if (names_frame_file(whitecap_generation)) read_keyed_word(in, frame_file, text_block);
  }

  fluctuation_mode = whitecap_fluctuations_code(read_keyed_text(in).c_str());
  if (fluctuation_mode == whitecap_fluctuations_lattice) {
    if (!read_fluctuations(in)) {
      std::cout << "unable to read in small scale fluctuation parameters of whitecap"
                << "\n";
      return 0;
    }
  } else if (fluctuation_mode == whitecap_fluctuations_texture) {
    if (!whitecap_textures.process_texture_grid_input(in)) {
      std::cout << "unable to process whitecap texture maps "
                << "\n";
      return 0;
    }
  }

  skip_token(in);  // "diffusion:" and its word mean nothing
  skip_token(in);
  std::string word;
  if (read_end_word(in, word)) return 1;
  std::cout << "problem reading whitecap file"
            << "\n"
            << " expected to read end, read " << word << " instead "
            << "\n";
  return 0;
}

int ocean_input::read_fluctuations(std::istream& in) {
  read_keyed_int(in, fluctuation_n_x);
  read_int(in, fluctuation_n_y);
  read_pair(in, fluctuation_dx, fluctuation_dy);
  read_keyed_int(in, fluctuation_seed);
  read_keyed_double(in, fluctuation_length_scale);
  read_keyed_double(in, fluctuation_power_law);
  read_keyed_double(in, fluctuation_time_scale);
  read_keyed_double(in, fluctuation_log_normal_width);
  std::string word;
  return read_end_word(in, word);
}

int ocean_input::write_whitecaps(const char* name) const {
  std::ofstream out;
  if (!open_output_file(out, name, "unable to open ocean whitecap output file ")) return 0;
  return write_whitecap_stream(out) && out.flush() ? 1 : 0;
}

int ocean_input::write_whitecap_stream(std::ostream& out) const {
  set_file_precision(out);
  write_header(out, "whitecaps", whitecap_file_version);
  out << "sampling_region"
      << "\n";
  out << "center: " << whitecap_center_x << " " << whitecap_center_y << "\n";
  out << "length: " << whitecap_length_x << " " << whitecap_length_y << "\n";
  out << "interval: " << whitecap_interval_x << " " << whitecap_interval_y << "\n";
  out << "max_distance: " << whitecap_max_distance << "\n";
  out << "reference_time: " << whitecap_reference_time << "\n";
  out << "time_increment: " << whitecap_time_increment << "\n";
  out << "initialization_time: " << whitecap_initialization_time << "\n";
  out << "initialization_increment: " << whitecap_initialization_increment << "\n";
  out << "formation_time:  " << whitecap_formation_time << "\n";
  out << "whitecap_decay_time: " << whitecap_decay_time << "\n";
  out << "acceleration_thresholds: " << acceleration_threshold_low << " "
      << acceleration_threshold_high << "\n";
  out << "reflectivities:  " << whitecap_reflectivity_low << " " << whitecap_reflectivity_high
      << "\n";
  out << "smearing_scales: " << smear_x << " " << smear_y << " " << smear_t << "\n";
  out << "acceleration_time_offset: " << acceleration_time_offset << "\n";

  // A mode with no word is written as none, and names no files.
  const char* generation = whitecap_generation_word(whitecap_generation);
  const int mode = generation != nullptr ? whitecap_generation : whitecap_generation_none;
  out << "whitecap_generation: " << (generation != nullptr ? generation : "no") << "\n";
  if (names_state_file(mode)) out << "initial_state_file: " << initial_state_file << "\n";
  if (names_frame_file(mode)) out << "frame_file: " << frame_file << "\n";

  const char* fluctuations = whitecap_fluctuations_word(fluctuation_mode);
  const int fluctuation = fluctuations != nullptr ? fluctuation_mode : whitecap_fluctuations_none;
  out << "small_scale_fluctuations: " << (fluctuations != nullptr ? fluctuations : "no") << "\n";
  if (fluctuation == whitecap_fluctuations_lattice) {
    out << "lattice_size: " << fluctuation_n_x << " " << fluctuation_n_y << "\n";
    out << "lattice_spacing: " << fluctuation_dx << " " << fluctuation_dy << "\n";
    out << "random_seed: " << fluctuation_seed << "\n";
    out << "length_scale: " << fluctuation_length_scale << "\n";
    out << "power_law: " << fluctuation_power_law << "\n";
    out << "time_scale: " << fluctuation_time_scale << "\n";
    out << "log_normal_width: " << fluctuation_log_normal_width << "\n";
    out << "end "
        << "\n";
  } else if (fluctuation == whitecap_fluctuations_texture) {
    if (!whitecap_textures.print_texture_grid_input(out)) return 0;
    set_file_precision(out);
  }
  out << "diffusion:  no "
      << "\n";
  out << "end "
      << "\n";
  return out ? 1 : 0;
}
