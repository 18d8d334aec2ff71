#include "TCObject_input.h"

#include <climits>
#include <cstring>
#include <iostream>
#include <new>
#include <sstream>
#include <string>

#include "TCData_file.h"
#include "TCObject_kinds.h"

namespace {

// Looks the kind word up; an unknown word is the line's only failure.
int check_kind(const char* object_type, int& type_code) {
  type_code = object_kind_code(object_type);
  if (type_code == -1) {
    std::cout << "object type " << object_type << "not valid "
              << "\n";
    return 0;
  }
  return 1;
}

}  // namespace

TCObject_input::TCObject_input()
    : priority(1.0), list(nullptr), object_id(0), start_time(0.0), type_code(-1), version(2) {
  std::strcpy(object_name, "type_name");
  std::strcpy(object_type, "type_name");
  object_file[0] = '\0';
}

TCObject_input::~TCObject_input() {}

int TCObject_input::read_file(const char*) {
  return 1;
}

int TCObject_input::write_file(const char*) {
  return 1;
}

int TCObject_input::read_object_line(std::istream& in) {
  track.read(in);
  if (version <= 1) {
    // Lists before names: every object answers to the same name.
    skip_token(in);
    read_token(in, object_type, 256);
    skip_token(in);
    read_token(in, object_file, 256);
    skip_token(in);
    read_double(in, priority);
    std::strcpy(object_name, "type_name");
  } else {
    skip_token(in);
    read_token(in, object_name, 256);
    skip_token(in);
    read_token(in, object_type, 256);
    skip_token(in);
    read_token(in, object_file, 256);
    skip_token(in);
    read_double(in, priority);
  }
  return check_kind(object_type, type_code);
}

// Cameras carry no name or priority on their line; -1 keeps them out of any
// ordering by priority.
int TCObject_input::read_camera_line(std::istream& in) {
  track.read(in);
  skip_token(in);
  read_token(in, object_type, 256);
  skip_token(in);
  read_token(in, object_file, 256);
  priority = -1.0;
  std::strcpy(object_name, "type_name");
  return check_kind(object_type, type_code);
}

int TCObject_input::write_object_line(std::ostream& out) const {
  track.write(out);
  if (version >= 2) out << "object_name: " << object_name << "\n";
  out << "object_type: " << object_type << "\n";
  out << "object_file: " << object_file << "\n";
  set_file_precision(out);
  out << "priority:    " << priority << "\n";
  return 1;
}

int TCObject_input::write_camera_line(std::ostream& out) const {
  track.write(out);
  out << "object_type: " << object_type << "\n";
  out << "object_file: " << object_file << "\n";
  return 1;
}

void TCObject_input::copy_header(const TCObject_input& other) {
  if (this == &other) return;
  track = other.track;
  priority = other.priority;
  list = other.list;
  object_id = other.object_id;
  start_time = other.start_time;
  copy_text(object_name, other.object_name, 256);
  copy_text(object_type, other.object_type, 256);
  type_code = other.type_code;
  version = other.version;
  copy_text(object_file, other.object_file, 256);
}

int TCObject_input::process_input(const TCObject_input& other) {
  copy_header(other);
  return read_file(object_file);
}

// The root packs only the name, in a fixed block of 256 characters.
void TCObject_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  n_ints = 0;
  n_doubles = 0;
  n_chars = 256;
}

void TCObject_input::set_sizes_from_packed(const int*, const double*, const char*) {}

int TCObject_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                         char*& chars, int& char_bytes) {
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int_bytes = n_ints * static_cast<int>(sizeof(int));
  double_bytes = n_doubles * static_cast<int>(sizeof(double));
  char_bytes = n_chars;

  // Zero-filled, so that what no class writes is still defined on the wire.
  ints = n_ints >= 0 ? new (std::nothrow) int[n_ints]() : nullptr;
  if (ints == nullptr) {
    std::cout << "unable to allocate object integer packing array "
              << "\n";
    return 0;
  }
  doubles = n_doubles >= 0 ? new (std::nothrow) double[n_doubles]() : nullptr;
  if (doubles == nullptr) {
    std::cout << "unable to allocate object double packing array "
              << "\n";
    return 0;
  }
  chars = n_chars >= 0 ? new (std::nothrow) char[n_chars]() : nullptr;
  if (chars == nullptr) {
    std::cout << "unable to allocate object character packing array "
              << "\n";
    return 0;
  }

  std::ostringstream text;
  text << object_name << "\n" << '\0';
  const std::string written = text.str();
  if (static_cast<int>(written.size()) > n_chars) {
    std::cout << "unable to open stream to packing char array "
              << "\n";
    return 0;
  }
  std::memcpy(chars, written.data(), written.size());
  std::cout << "packing " << object_name << "\n";
  return 1;
}

int TCObject_input::packed_arrays_present(const int* ints, const double* doubles,
                                          const char* chars) {
  if (chars == nullptr) {
    std::cout << "char variable pointer not allocated "
              << "\n";
    return 0;
  }
  if (ints == nullptr) {
    std::cout << "integer variable pointer not allocated "
              << "\n";
    return 0;
  }
  if (doubles == nullptr) {
    std::cout << "double variable pointer not allocated "
              << "\n";
    return 0;
  }
  return 1;
}

int TCObject_input::unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                           const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;

  // Sizes as this build's whole class counts them, not just the root's part.
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (int_bytes != n_ints * static_cast<int>(sizeof(int))) {
    std::cout << "object packing integer array of the wrong size "
              << "\n";
    return 0;
  }
  if (double_bytes != n_doubles * static_cast<int>(sizeof(double))) {
    std::cout << "object packing double array of the wrong size "
              << "\n";
    return 0;
  }
  if (char_bytes != n_chars) {
    std::cout << "object char packing array of the wrong size "
              << "\n";
    return 0;
  }

  // The name ends at its new line or its zero, whichever comes first, and is
  // never read past the array nor written past the field.
  const int limit = char_bytes < 255 ? char_bytes : 255;
  int i = 0;
  while (i < limit && chars[i] != '\n' && chars[i] != '\0') {
    object_name[i] = chars[i];
    i++;
  }
  object_name[i] = '\0';
  std::cout << object_name << " unpacked !"
            << "\n";
  return 1;
}

int TCObject_input::packed_count(long long total, int sound) {
  // The largest count whose size in bytes (8 a double) still fits an int.
  const long long most_packed = INT_MAX / 8;
  return (!sound || total > most_packed) ? -1 : static_cast<int>(total);
}

int TCObject_input::packing_counts_fit(int n_ints, int n_doubles, int n_chars,
                                       const char* char_message, const char* int_message,
                                       const char* double_message) {
  const char* message = nullptr;
  if (n_chars < 0) {
    message = char_message;
  } else if (n_ints < 0) {
    message = int_message;
  } else if (n_doubles < 0) {
    message = double_message;
  }
  if (message == nullptr) return 1;
  std::cout << message << "\n";
  return 0;
}

int TCObject_input::pack_root_part(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                                   char*& chars, int& char_bytes, const char* char_message,
                                   const char* int_message, const char* double_message,
                                   const char* root_failure, int& base_ints, int& base_doubles,
                                   int& base_chars) {
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  if (!packing_counts_fit(n_ints, n_doubles, n_chars, char_message, int_message, double_message)) {
    return 0;
  }
  if (!TCObject_input::pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << root_failure << "\n";
    return 0;
  }
  TCObject_input::packing_sizes(base_ints, base_doubles, base_chars);
  return 1;
}

int TCObject_input::packed_numbers_fit(int n_ints, int least_ints, int int_bytes, int n_doubles,
                                       int least_doubles, int double_bytes) {
  if (n_ints < least_ints || int_bytes != n_ints * static_cast<int>(sizeof(int))) {
    return packed_ints_wrong();
  }
  if (n_doubles < least_doubles || double_bytes != n_doubles * static_cast<int>(sizeof(double))) {
    return packed_doubles_wrong();
  }
  return 1;
}

int TCObject_input::packed_chars_fit(int n_chars, int char_bytes) {
  if (n_chars >= 0 && char_bytes == n_chars) return 1;
  std::cout << "packing char array of the wrong size "
            << "\n";
  return 0;
}

int TCObject_input::packed_ints_wrong() {
  std::cout << "packing integer array of the wrong size "
            << "\n";
  return 0;
}

int TCObject_input::packed_doubles_wrong() {
  std::cout << "packing double array of the wrong size "
            << "\n";
  return 0;
}

void TCObject_input::text_from_block(char* target, const char* block) {
  const int text_block = 256;
  int i = 0;
  while (i < text_block - 1 && block[i] != '\0') {
    target[i] = block[i];
    i++;
  }
  target[i] = '\0';
}
