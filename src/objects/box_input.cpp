#include "box_input.h"

#include "TCData_file.h"
#include "TCValue_lists.h"

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

int box_input::read_band_lists(std::istream& in, const char* failure_words, int& count, int*& ids,
                               double** lists, int n_lists) {
  for (int i = 0; i < n_lists; i++) lists[i] = nullptr;
  // The ids come first, so that storage for the count is only made once the
  // stream has shown that it holds that many values.
  if (!read_counted_ints(in, most_bands, count, ids)) {
    std::cout << failure_words << "\n";
    return 0;
  }
  if (ids == nullptr) return 1;
  if (!new_band_lists(count, lists, n_lists)) {
    std::cout << failure_words << " "
              << "\n";
    delete[] ids;
    ids = nullptr;
    return 0;
  }
  for (int i = 0; i < n_lists; i++) {
    skip_token(in);
    read_doubles(in, lists[i], count);
  }
  return 1;
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
