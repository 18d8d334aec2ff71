#include "Bobbing_box_input.h"

#include <fstream>

#include "TCData_file.h"
#include "TCObject_kinds.h"

namespace {

const int bobbing_box_file_version = 1;
const int bobbing_doubles = 2;

void print_line(const char* text) {
  std::cout << text << "\n";
}

}  // namespace

Bobbing_box_input::Bobbing_box_input()
    : Solid_box_input("bobbing_box", TC_KIND_BOBBING_BOX),
      decoupling_height(0.0),
      dampening_factor(1.0) {}

Bobbing_box_input::~Bobbing_box_input() {}

int Bobbing_box_input::read_file(const char* path) {
  std::ifstream in;
  if (!open_input_file(in, path, "unable to open box file ")) return 0;
  if (!Solid_box_input::read_stream(in)) {
    return report_file_failure("unable to process box file ", path);
  }
  if (read_bobbing_section(in)) return 1;
  return report_file_failure("unable to process bobbing box file ", path);
}

int Bobbing_box_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "unable to open box file ")) return 0;
  if (!Solid_box_input::write_stream(out) || !out.flush()) {
    return report_file_failure("unable to process box file ", path);
  }
  if (write_bobbing_section(out) && out.flush()) return 1;
  return report_file_failure("unable to process bobbing box file ", path);
}

int Bobbing_box_input::read_stream(std::istream& in) {
  if (!Solid_box_input::read_stream(in)) return 0;
  return read_bobbing_section(in);
}

int Bobbing_box_input::write_stream(std::ostream& out) const {
  if (!Solid_box_input::write_stream(out)) return 0;
  return write_bobbing_section(out);
}

int Bobbing_box_input::read_bobbing_section(std::istream& in) {
  if (check_header(in, "bobbing_box", bobbing_box_file_version) == 0) {
    print_line(" cannot process bobbing_box file ");
    return 0;
  }
  double height = decoupling_height;
  double factor = dampening_factor;
  skip_token(in);
  read_double(in, height);
  skip_token(in);
  read_double(in, factor);
  // No closing word is read here: the runtime box's reader checks it.
  if (!in) return 0;
  decoupling_height = height;
  dampening_factor = factor;
  return 1;
}

int Bobbing_box_input::write_bobbing_section(std::ostream& out) const {
  out << "Tidecast_data_file bobbing_box " << bobbing_box_file_version << " "
      << bobbing_box_file_version << "\n";
  set_file_precision(out);
  out << "decoupling_height " << decoupling_height << "\n";
  out << "dampening_factor  " << dampening_factor << "\n";
  out << "end "
      << "\n";
  return out ? 1 : 0;
}

void Bobbing_box_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  Solid_box_input::packing_sizes(n_ints, n_doubles, n_chars);
  if (n_doubles >= 0) n_doubles += bobbing_doubles;
}

int Bobbing_box_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                            char*& chars, int& char_bytes) {
  drop_received_counts();
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (!packing_counts_fit(n_ints, n_doubles, n_chars,
                          "unable to allocate bobbing box character packing arrays ",
                          "unable to allocate bobbing box integer packing array ",
                          "unable to allocate bobbing box double packing array ")) {
    return 0;
  }
  if (!Solid_box_input::pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    print_line("unable to pack box part of bobbing box ");
    return 0;
  }
  int solid_ints = 0, solid_doubles = 0, solid_chars = 0;
  Solid_box_input::packing_sizes(solid_ints, solid_doubles, solid_chars);
  doubles[solid_doubles] = decoupling_height;
  doubles[solid_doubles + 1] = dampening_factor;
  return 1;
}

int Bobbing_box_input::unpack(const int* ints, int int_bytes, const double* doubles,
                              int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (!packed_numbers_fit(n_ints, 0, int_bytes, n_doubles, bobbing_doubles, double_bytes) ||
      !packed_chars_fit(n_chars, char_bytes)) {
    drop_received_counts();
    return 0;
  }
  if (!Solid_box_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    print_line("unable to unpack box part of bobbing box ");
    return 0;
  }
  // The solid box's count is now the record's own, the one packed.
  int solid_ints = 0, solid_doubles = 0, solid_chars = 0;
  Solid_box_input::packing_sizes(solid_ints, solid_doubles, solid_chars);
  decoupling_height = doubles[solid_doubles];
  dampening_factor = doubles[solid_doubles + 1];
  return 1;
}
