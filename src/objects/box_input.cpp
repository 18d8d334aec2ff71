#include "box_input.h"

#include <new>
#include <string>

#include "TCData_file.h"

namespace {

// Entries a growing list makes room for before any has arrived.
const int first_capacity = 16;

}  // namespace

box_input::box_input() : length(1.0, 1.0, 1.0) {}

box_input::~box_input() {}

int box_input::read_lengths(std::istream& in) {
  skip_token(in);
  read_double(in, length.x);
  skip_token(in);
  read_double(in, length.y);
  skip_token(in);
  read_double(in, length.z);
  return in ? 1 : 0;
}

void box_input::write_lengths(std::ostream& out) const {
  set_file_precision(out);
  out << "length_x:  " << length.x << "\n";
  out << "length_y:  " << length.y << "\n";
  out << "length_z:  " << length.z << "\n";
}

int* box_input::read_int_list(std::istream& in, int count) {
  if (count < 0) return nullptr;
  int capacity = count < first_capacity ? count : first_capacity;
  int* values = new (std::nothrow) int[capacity > 0 ? capacity : 1]();
  int n_read = 0;
  while (values != nullptr && n_read < count) {
    if (n_read == capacity) {
      const int new_capacity = capacity > count / 2 ? count : 2 * capacity;
      int* more = new (std::nothrow) int[new_capacity]();
      if (more == nullptr) break;
      for (int i = 0; i < n_read; i++) more[i] = values[i];
      delete[] values;
      values = more;
      capacity = new_capacity;
    }
    if (!read_int(in, values[n_read])) break;
    n_read++;
  }
  if (n_read < count) {
    delete[] values;
    return nullptr;
  }
  return values;
}

void box_input::read_doubles(std::istream& in, double* target, int count) {
  for (int i = 0; i < count; i++) {
    if (!read_double(in, target[i])) return;
  }
}

int box_input::end_read(std::istream& in, const char* message) {
  const bool read_failed = in.fail();
  in.clear();
  std::string token;
  in >> token;
  if (!read_failed && token == "end") return 1;
  // No blank between the word and "instead": the words have always run together.
  std::cout << message << "\n"
            << "read " << token << "instead of end"
            << "\n";
  return 0;
}

void box_input::write_list(std::ostream& out, const char* keyword, const int* values, int count) {
  out << keyword;
  for (int i = 0; i < count; i++) out << " " << values[i];
  out << "\n";
}

void box_input::write_list(std::ostream& out, const char* keyword, const double* values,
                           int count) {
  set_file_precision(out);
  out << keyword;
  for (int i = 0; i < count; i++) out << " " << values[i];
  out << "\n";
}
