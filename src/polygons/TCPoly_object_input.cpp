#include "TCPoly_object_input.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <new>
#include <string>

#include "TCData_file.h"
#include "TCObject_kinds.h"

namespace {

// The reader understands versions up to this one, and the writer writes it.
const int poly_file_version = 3;

const int name_size = 256;

// Word tables: -1 for a word not in the table. The file type and shading
// tables print their own complaint; for the others the caller does.
int image_flag_code(const std::string& word) {
  if (word == "all") return 1;
  if (word == "primary") return 2;
  if (word == "secondary" || word == "reflections") return 3;
  return -1;
}

const char* image_flag_word(int code) {
  if (code == 2) return "primary";
  if (code == 3) return "secondary";
  return "all";
}

int file_type_code(const std::string& word) {
  if (word == "poly") return 1;
  if (word == "obj") return 2;
  std::cout << "Invalid object file type: " << word << "\n";
  return -1;
}

const char* file_type_word(int code) {
  return code == 2 ? "obj" : "poly";
}

int shading_code(const std::string& word) {
  if (word == "texture") return 1;
  if (word == "color") return 4;
  std::cout << "Invalid object shading type: " << word << "\n";
  return -1;
}

int modify_code(const std::string& word) {
  if (word == "off") return 3;
  if (word == "texture") return 1;
  if (word == "color") return 2;
  return -1;
}

const char* modify_word(int code) {
  if (code == 1) return "texture";
  if (code == 2) return "color";
  return "off";
}

void read_keyed_triple(std::istream& in, double* values) {
  skip_token(in);
  for (int k = 0; k < 3; k++) read_double(in, values[k]);
}

void write_triple(std::ostream& out, const char* label, const double* values) {
  out << label << " " << values[0] << " " << values[1] << " " << values[2] << "\n";
}

// A mesh or picture name on its own line; empty names cannot be written
// so that they read back, and none can be read.
void write_name(std::ostream& out, const char* label, const char* name) {
  out << label << " " << name << "\n";
}

void clear_surface(Poly_surface_input& surface) {
  surface.surface_file_type = 1;
  surface.surface_file[0] = '\0';
  surface.shading_model = 4;
  copy_text(surface.texture_file, "null.dat", name_size);
  for (int k = 0; k < 3; k++) {
    surface.surface_color[k] = 0.0;
    surface.surface_scale[k] = 1.0;
  }
  surface.image_flag = 1;
}

}  // namespace

const int TCPoly_object_input::most_surfaces;
const int TCPoly_object_input::most_changes;

TCPoly_object_input::TCPoly_object_input()
    : scale_flag(0),
      scale_x(1.0),
      scale_y(1.0),
      scale_z(1.0),
      image_flag(1),
      image_level(0),
      object_file_type(1),
      n_surfaces(0),
      surfaces(nullptr),
      modify_surfaces(0),
      n_modified(0),
      has_order(0),
      n_ordered(0),
      order(nullptr) {
  copy_text(object_type, "poly", 256);
  type_code = TC_KIND_POLY;
  obj_file[0] = '\0';
  for (int k = 0; k < 3; k++) {
    obj_scale[k] = 1.0;
    obj_offset[k] = 0.0;
  }
  for (int i = 0; i < most_changes; i++) {
    changes[i].surface = 0;
    changes[i].kind = 0;
    for (int k = 0; k < 3; k++) changes[i].values[k] = 0.0;
  }
}

TCPoly_object_input::~TCPoly_object_input() {
  delete[] surfaces;
  delete[] order;
}

int TCPoly_object_input::read_file(const char* path) {
  return read_objects_file(path);
}

int TCPoly_object_input::read_objects_file(const char* path) {
  std::ifstream in(path ? path : "");
  if (!in) {
    std::cout << "Can't open polygon objects file: " << (path ? path : "") << "\n";
    return 0;
  }
  return read_stream(in);
}

int TCPoly_object_input::write_file(const char* path) {
  std::ofstream out;
  if (!open_output_file(out, path, "Can't open polygon objects file: ")) return 0;
  // Flushed here, so that a disk that refuses the bytes is noticed now.
  if (write_stream(out) && out.flush()) return 1;
  return report_file_failure("Can't write polygon objects file: ", path);
}

int TCPoly_object_input::read_stream(std::istream& in) {
  int fatal = 0;
  const int result = parse_stream(in, fatal);
  if (fatal) {
    std::cout.flush();
    std::exit(1);
  }
  return result;
}

int TCPoly_object_input::parse_stream(std::istream& in, int& fatal) {
  fatal = 0;
  const int file_version = check_header(in, "poly", poly_file_version);
  if (file_version == 0) {
    std::cout << "Error processing first line of polygon input stream.\n";
    return 0;
  }

  // What an older file leaves out takes its default, whatever was read before.
  delete[] surfaces;
  surfaces = nullptr;
  n_surfaces = 0;
  delete[] order;
  order = nullptr;
  has_order = 0;
  n_ordered = 0;
  modify_surfaces = 0;
  n_modified = 0;
  obj_file[0] = '\0';
  for (int k = 0; k < 3; k++) {
    obj_scale[k] = 1.0;
    obj_offset[k] = 0.0;
  }

  skip_token(in);
  read_int(in, scale_flag);
  scale_x = scale_y = scale_z = 1.0;
  if (scale_flag) {
    read_keyed_double(in, scale_x);
    read_keyed_double(in, scale_y);
    read_keyed_double(in, scale_z);
  }

  image_flag = 1;
  image_level = 0;
  if (file_version >= 2) {
    const std::string word = read_keyed_text(in);
    image_flag = image_flag_code(word);
    if (image_flag < 0) {
      std::cout << "Texture map input has invalid imageflag: " << word << "\n";
      fatal = 1;
      return 0;
    }
    read_keyed_int(in, image_level);
  }

  object_file_type = 1;
  if (file_version >= 3) {
    object_file_type = file_type_code(read_keyed_text(in));
    if (object_file_type < 0) return 0;
  }

  if (object_file_type == 2) return read_obj_block(in);
  return read_surface_list(in, fatal);
}

int TCPoly_object_input::read_surface_list(std::istream& in, int& fatal) {
  int count = 0;
  read_keyed_int(in, count);
  if (count < 0 || count > most_surfaces) {
    std::cout << "Error reading poly_object input.\n";
    std::cout << "      Bad number of surfaces: " << count << "out of "
              << " a maximum of " << most_surfaces << "\n";
    fatal = 1;
    return 0;
  }
  // At least one, so that an empty list still owns a table.
  surfaces = new (std::nothrow) Poly_surface_input[count > 0 ? count : 1];
  if (surfaces == nullptr) {
    std::cout << "Error allocating surface_inputs in "
              << "TCPoly_object_input::read_objects_file\n";
    fatal = 1;
    return 0;
  }
  n_surfaces = count;

  for (int i = 0; i < count; i++) {
    Poly_surface_input& surface = surfaces[i];
    clear_surface(surface);
    surface.image_flag = image_flag;
    surface.surface_file_type = file_type_code(read_keyed_text(in));
    if (surface.surface_file_type < 0) return 0;
    read_keyed_word(in, surface.surface_file, name_size);
    const std::string shading = read_keyed_text(in);
    surface.shading_model = shading_code(shading);
    if (surface.shading_model < 0) {
      std::cout << "Error processing polygon file: \n";
      std::cout << "Invalid shading model for surface " << i << ": " << shading << "\n";
      fatal = 1;
      return 0;
    }
    if (surface.shading_model == 1) read_keyed_word(in, surface.texture_file, name_size);
    read_keyed_triple(in, surface.surface_color);
    read_keyed_triple(in, surface.surface_scale);
  }

  std::string word;
  if (!read_end_word(in, word)) {
    std::cout << "Error processing polygon data file: \n";
    std::cout << "Expected end but read: " << word << "\n";
    fatal = 1;
    return 0;
  }
  return 1;
}

int TCPoly_object_input::read_obj_block(std::istream& in) {
  read_keyed_word(in, obj_file, name_size);
  read_keyed_triple(in, obj_scale);
  read_keyed_triple(in, obj_offset);
  read_keyed_int(in, modify_surfaces);

  if (modify_surfaces) {
    int count = 0;
    read_keyed_int(in, count);
    if (count > most_changes) {
      std::cout << "Error - too many modified surfaces.\n";
      return 0;
    }
    if (count < 0) {
      std::cout << "Error reading poly input: Bad number of modified surfaces: " << count << "\n";
      return 0;
    }
    for (int i = 0; i < count; i++) {
      Poly_surface_change& change = changes[i];
      change.surface = 0;
      for (int k = 0; k < 3; k++) change.values[k] = 0.0;
      read_keyed_int(in, change.surface);
      const std::string word = read_keyed_text(in);
      change.kind = modify_code(word);
      if (change.kind < 0) {
        std::cout << "Error reading poly input: Invalid surface modification: " << word << "\n";
        return 0;
      }
      // The values follow the kind word on its line, with no label of their own.
      const int n_values = change.kind == 1 ? 2 : (change.kind == 2 ? 3 : 0);
      for (int k = 0; k < n_values; k++) read_double(in, change.values[k]);
      n_modified = i + 1;
    }
  }

  int count = 0;
  read_keyed_int(in, count);
  // An order names each surface once at most, and an OBJ file has at most
  // most_surfaces of them.
  if (count < 0 || count > most_surfaces) {
    std::cout << "Error reading poly input: Bad number of ordered surfaces: " << count << "\n";
    return 0;
  }
  if (count != 0) {
    order = new (std::nothrow) int[count]();
    if (order == nullptr) {
      std::cout << "Error reading poly input: unable to allocate the surface order\n";
      return 0;
    }
    has_order = 1;
    n_ordered = count;
    for (int i = 0; i < count; i++) read_int(in, order[i]);
  }

  std::string word;
  if (!read_end_word(in, word)) {
    std::cout << "Error reading poly input: Expected end, read: " << word << "\n";
    return 0;
  }
  return 1;
}

int TCPoly_object_input::write_stream(std::ostream& out) const {
  set_file_precision(out);
  write_header(out, "poly", poly_file_version);
  out << "scale_flag: " << scale_flag << "\n";
  if (scale_flag) {
    out << "scale_x: " << scale_x << "\n";
    out << "scale_y: " << scale_y << "\n";
    out << "scale_z: " << scale_z << "\n";
  }
  out << "image_flag: " << image_flag_word(image_flag) << "\n";
  out << "image_level: " << image_level << "\n";
  out << "object_file_type: " << file_type_word(object_file_type) << "\n";

  if (object_file_type == 2) {
    write_name(out, "obj_file:", obj_file);
    write_triple(out, "obj_scale:", obj_scale);
    write_triple(out, "obj_offset:", obj_offset);
    out << "modify_surfaces: " << modify_surfaces << "\n";
    if (modify_surfaces) {
      out << "number_modified: " << n_modified << "\n";
      for (int i = 0; i < n_modified && i < most_changes; i++) {
        const Poly_surface_change& change = changes[i];
        out << "surface: " << change.surface << " modify_kind: " << modify_word(change.kind);
        const int n_values = change.kind == 1 ? 2 : (change.kind == 2 ? 3 : 0);
        for (int k = 0; k < n_values; k++) out << " " << change.values[k];
        out << "\n";
      }
    }
    out << "number_ordered:";
    if (!has_order || order == nullptr) {
      out << " 0\n";
    } else {
      out << " " << n_ordered;
      for (int i = 0; i < n_ordered; i++) out << " " << order[i];
      out << "\n";
    }
  } else {
    const int count = surfaces ? n_surfaces : 0;
    out << "number_of_surfaces: " << count << "\n";
    for (int i = 0; i < count; i++) {
      const Poly_surface_input& surface = surfaces[i];
      out << "surface_file_type: " << file_type_word(surface.surface_file_type) << "\n";
      write_name(out, "surface_file:", surface.surface_file);
      if (surface.shading_model == 1) {
        out << "shading_model: texture\n";
        write_name(out, "texture_file:", surface.texture_file);
      } else {
        out << "shading_model: color\n";
      }
      write_triple(out, "surface_color:", surface.surface_color);
      write_triple(out, "surface_scale:", surface.surface_scale);
    }
  }
  out << "end\n";
  return out ? 1 : 0;
}
