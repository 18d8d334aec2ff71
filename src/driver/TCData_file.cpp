#include "TCData_file.h"

#include <cstring>
#include <string>

#include "TCConstants.h"

int check_header(std::istream& in, const char* expected_type, int max_version) {
  // Whole tokens, so a message shows exactly the word that was on file.
  std::string word;
  in >> word;
  if (word != "Tidecast_data_file" && word != "Beavis_rules_the") {
    std::cout << "incorrect header " << word << " in data file"
              << "\n"
              << "expected string Tidecast_data_file "
              << "\n";
    return 0;
  }
  std::string type;
  in >> type;
  if (expected_type == nullptr || type != expected_type) {
    std::cout << "file type " << type << " is not of "
              << "\n"
              << "expected type " << (expected_type ? expected_type : "") << "\n";
    return 0;
  }
  // The file's own version, then the oldest reader able to read it.
  int version = 0;
  int oldest_reader = 0;
  read_int(in, version);
  read_int(in, oldest_reader);
  if (oldest_reader > max_version) return 0;
  return version;
}

void write_header(std::ostream& out, const char* type, int version) {
  out << "Tidecast_data_file " << type << " " << version << " " << version << "\n";
}

int parse_yes_no(const char* token) {
  if (token == nullptr) return 0;
  if (std::strcmp(token, "yes") == 0 || std::strcmp(token, "Yes") == 0 ||
      std::strcmp(token, "YES") == 0)
    return 1;
  return 0;
}

const char* yes_no_text(int flag) {
  return flag == 1 ? "yes" : "no";
}

int check_end(std::istream& in, const char* message) {
  std::string token;
  in >> token;
  if (token == "end") return 1;
  // No blank between the token and "instead": the words have always run together.
  std::cout << (message ? message : "") << "\n"
            << "read " << token << "instead of end"
            << "\n";
  return 0;
}

int read_token(std::istream& in, char* buffer, int size) {
  std::string token;
  const bool ok = static_cast<bool>(in >> token);
  if (buffer == nullptr || size < 1) return ok ? 1 : 0;
  if (!ok) {
    buffer[0] = '\0';
    return 0;
  }
  // Keep what fits; the rest of the token is consumed all the same.
  size_t kept = token.size();
  if (kept > static_cast<size_t>(size - 1)) kept = static_cast<size_t>(size - 1);
  std::memcpy(buffer, token.data(), kept);
  buffer[kept] = '\0';
  return 1;
}

void skip_token(std::istream& in) {
  std::string discarded;
  in >> discarded;
}

int read_int(std::istream& in, int& value) {
  // Extraction zeroes its target on failure; the files want the old value kept.
  int read_value = 0;
  if (!(in >> read_value)) return 0;
  value = read_value;
  return 1;
}

int read_double(std::istream& in, double& value) {
  double read_value = 0.0;
  if (!(in >> read_value)) return 0;
  value = read_value;
  return 1;
}

int read_keyed_int(std::istream& in, int& value) {
  skip_token(in);
  return read_int(in, value);
}

int read_keyed_double(std::istream& in, double& value) {
  skip_token(in);
  return read_double(in, value);
}

int read_keyed_word(std::istream& in, char* buffer, int size) {
  skip_token(in);
  return read_token(in, buffer, size);
}

std::string read_keyed_text(std::istream& in) {
  skip_token(in);
  std::string word;
  in >> word;
  return word;
}

int read_keyed_angle(std::istream& in, double& radians) {
  double degrees = 0.0;
  if (!read_keyed_double(in, degrees)) return 0;
  radians = radians_from_file(degrees);
  return 1;
}

double radians_from_file(double degrees) {
  return degrees * tc_degrees_to_radians;
}

double degrees_for_file(double radians) {
  return radians * 180.0 / tc_pi;
}

void set_file_precision(std::ostream& out) {
  // Fifteen significant digits in the default (shortest of fixed/scientific) form.
  out.unsetf(std::ios::floatfield);
  out.precision(15);
}

void copy_text(char* target, const char* source, int size) {
  if (target == nullptr || size < 1) return;
  std::size_t length = source ? std::strlen(source) : 0;
  if (length > static_cast<std::size_t>(size - 1)) length = static_cast<std::size_t>(size - 1);
  if (length > 0) std::memcpy(target, source, length);
  target[length] = '\0';
}

int read_end_word(std::istream& in, std::string& token) {
  const bool read_failed = in.fail();
  in.clear();
  token.clear();
  in >> token;
  return !read_failed && token == "end";
}

int check_end_after_fields(std::istream& in, const char* message) {
  std::string token;
  if (read_end_word(in, token)) return 1;
  // No blank between the word and "instead": the words have always run together.
  std::cout << (message ? message : "") << "\n"
            << "read " << token << "instead of end"
            << "\n";
  return 0;
}

int open_input_file(std::ifstream& in, const char* path, const char* message) {
  in.open(path ? path : "");
  if (in) return 1;
  return report_file_failure(message, path);
}

int open_output_file(std::ofstream& out, const char* path, const char* message) {
  out.open(path ? path : "");
  if (out) return 1;
  return report_file_failure(message, path);
}

int report_file_failure(const char* message, const char* name) {
  std::cout << (message ? message : "") << (name ? name : "") << "\n";
  return 0;
}
