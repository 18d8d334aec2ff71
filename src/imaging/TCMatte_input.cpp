#include "TCMatte_input.h"

#include <cstring>
#include <new>

#include "TCData_file.h"
#include "TCMatte_fields.h"
#include "TCMatte_names.h"
#include "TCScene_tracer.h"

namespace {

// Room made before anything has been read; storage then doubles as entries
// arrive, up to what the file's count claims.
const int first_read_capacity = 16;

// Codes of the matte names that a section can ask for (0 to 34) and the
// codes the fields know of.
const int matte_code_count = 40;

const int scene_distance_code = 20;
const int scene_xyz_code = 33;
const int no_picture_code = 34;

void allocation_failed() {
  std::cout << "unable to allocate matte field data "
            << "\n";
}

// First room to make for a list the file says holds count entries.
int first_capacity(int count) {
  return count < first_read_capacity ? count : first_read_capacity;
}

// Capacity for needed entries, doubling from capacity, at least needed.
int grown_capacity(int capacity, int needed) {
  int grown = capacity < 1 ? 1 : capacity;
  while (grown < needed) {
    if (grown > 0x3fffffff) return needed;
    grown *= 2;
  }
  return grown;
}

// The object or texture behind the first "-" of a positional name.
const char* text_behind_dash(const char* name) {
  const char* dash = std::strchr(name, '-');
  return dash ? dash + 1 : nullptr;
}

}  // namespace

TCMatte_input::TCMatte_input()
    : use_mattes(0),
      n_matte_objects(0),
      matte_object_names(nullptr),
      matte_counts(nullptr),
      matte_ids(nullptr),
      n_reflected_names(0),
      n_alpha_names(0),
      object_indices(nullptr),
      object_capacity_(0),
      code_capacity_(nullptr) {
  for (int k = 0; k < max_named_objects; k++) {
    reflected_names[k][0] = '\0';
    alpha_names[k][0] = '\0';
    reflected_objects[k] = -1;
    alpha_objects[k] = -1;
  }
}

TCMatte_input::~TCMatte_input() {
  clear();
}

void TCMatte_input::clear() {
  for (int i = 0; i < n_matte_objects; i++) delete[] matte_ids[i];
  delete[] matte_object_names;
  delete[] matte_counts;
  delete[] matte_ids;
  delete[] object_indices;
  delete[] code_capacity_;
  matte_object_names = nullptr;
  matte_counts = nullptr;
  matte_ids = nullptr;
  object_indices = nullptr;
  code_capacity_ = nullptr;
  object_capacity_ = 0;
  use_mattes = 0;
  n_matte_objects = 0;
  n_reflected_names = 0;
  n_alpha_names = 0;
  for (int k = 0; k < max_named_objects; k++) {
    reflected_names[k][0] = '\0';
    alpha_names[k][0] = '\0';
    reflected_objects[k] = -1;
    alpha_objects[k] = -1;
  }
}

int TCMatte_input::total_mattes() const {
  int total = 0;
  for (int i = 0; i < n_matte_objects; i++) total += matte_counts[i];
  return total;
}

int TCMatte_input::reserve_objects(int n) {
  if (n <= object_capacity_) return 1;
  const int capacity = grown_capacity(object_capacity_, n);
  char(*names)[256] = new (std::nothrow) char[capacity][256];
  int* counts = new (std::nothrow) int[capacity]();
  int** ids = new (std::nothrow) int*[capacity]();
  int* indices = new (std::nothrow) int[capacity]();
  int* code_room = new (std::nothrow) int[capacity]();
  if (names == nullptr || counts == nullptr || ids == nullptr || indices == nullptr ||
      code_room == nullptr) {
    delete[] names;
    delete[] counts;
    delete[] ids;
    delete[] indices;
    delete[] code_room;
    return 0;
  }
  for (int i = 0; i < capacity; i++) {
    names[i][0] = '\0';
    indices[i] = -1;
  }
  for (int i = 0; i < n_matte_objects; i++) {
    std::memcpy(names[i], matte_object_names[i], 256);
    counts[i] = matte_counts[i];
    ids[i] = matte_ids[i];
    indices[i] = object_indices[i];
    code_room[i] = code_capacity_[i];
  }
  delete[] matte_object_names;
  delete[] matte_counts;
  delete[] matte_ids;
  delete[] object_indices;
  delete[] code_capacity_;
  matte_object_names = names;
  matte_counts = counts;
  matte_ids = ids;
  object_indices = indices;
  code_capacity_ = code_room;
  object_capacity_ = capacity;
  return 1;
}

int TCMatte_input::reserve_codes(int i, int n) {
  if (n <= code_capacity_[i]) return 1;
  const int capacity = grown_capacity(code_capacity_[i], n);
  int* codes = new (std::nothrow) int[capacity]();
  if (codes == nullptr) return 0;
  for (int j = 0; j < matte_counts[i]; j++) codes[j] = matte_ids[i][j];
  delete[] matte_ids[i];
  matte_ids[i] = codes;
  code_capacity_[i] = capacity;
  return 1;
}

int TCMatte_input::place_code(const char* name, int& code, int& n_textures) {
  if (code == 7) {
    // Four names are taken although the message speaks of five; an entry
    // beyond them stays at code 7 and the reading goes on.
    if (n_reflected_names < 4) {
      copy_text(reflected_names[n_reflected_names], text_behind_dash(name), 256);
      code = 7 + n_reflected_names;
      n_reflected_names++;
    } else {
      std::cout << "ERROR - Too many object reflection mattes "
                << " Only " << 5 << " allowed\n";
    }
    return 1;
  }
  if (code == 22) {
    // The alpha family shares the reflection family's words, with a full stop.
    if (n_alpha_names >= 4) {
      std::cout << "ERROR - Too many object reflection mattes "
                << " Only " << 5 << " allowed.\n";
      return 0;
    }
    const char* object = text_behind_dash(name);
    if (object == nullptr) {
      std::cout << "Error processing matte name: " << name << "\n";
      return 0;
    }
    copy_text(alpha_names[n_alpha_names], object, 256);
    code = 22 + n_alpha_names;
    n_alpha_names++;
    return 1;
  }
  if (code == 27) {
    if (n_textures >= 5) {
      std::cout << "ERROR - Invalid number of texture mattes requested "
                << " Only " << 5 << " allowed\n";
      return 0;
    }
    code = 27 + n_textures;
    n_textures++;
  }
  return 1;
}

int TCMatte_input::read(std::istream& in) {
  clear();
  skip_token(in);  // "use_mattes:"
  if (!read_int(in, use_mattes)) return 0;
  if (use_mattes == 0) return 1;

  skip_token(in);  // "NObjects:"
  int n_objects = 0;
  if (!read_int(in, n_objects)) return 0;
  // A negative count is a size no allocation can give.
  if (n_objects < 0) {
    allocation_failed();
    return 0;
  }
  if (!reserve_objects(first_capacity(n_objects))) {
    allocation_failed();
    return 0;
  }

  // "alpha-texture" entries are numbered over the whole section.
  int n_textures = 0;
  char word[256];
  for (int i = 0; i < n_objects; i++) {
    skip_token(in);  // "Object:"
    if (!read_token(in, word, sizeof(word))) return 0;
    if (!reserve_objects(i + 1)) {
      allocation_failed();
      return 0;
    }
    copy_text(matte_object_names[i], word, 256);
    matte_counts[i] = 0;
    matte_ids[i] = nullptr;
    object_indices[i] = -1;
    code_capacity_[i] = 0;
    n_matte_objects = i + 1;

    skip_token(in);  // "NMattes:"
    int n_mattes = 0;
    if (!read_int(in, n_mattes)) return 0;
    if (n_mattes < 1) {
      std::cout << "must have atleast one matte for object " << word << "\n";
      return 0;
    }
    // One more than the first batch: the scene may get its distance added.
    if (!reserve_codes(i, first_capacity(n_mattes) + 1)) {
      allocation_failed();
      return 0;
    }

    int has_scene_distance = 0;
    int has_scene_xyz = 0;
    char name[256];
    for (int j = 0; j < n_mattes; j++) {
      if (!read_token(in, name, sizeof(name))) return 0;
      int code = matte_code(name);
      if (code == -1) {
        std::cout << "Invalid matte name: " << name << "\n";
        return 0;
      }
      if (!place_code(name, code, n_textures)) return 0;
      if (!reserve_codes(i, matte_counts[i] + 1)) {
        allocation_failed();
        return 0;
      }
      matte_ids[i][matte_counts[i]] = code;
      matte_counts[i]++;
      if (code == scene_distance_code) has_scene_distance = 1;
      if (code == scene_xyz_code) has_scene_xyz = 1;
    }

    // Scene positions are derived from the scene distance, so asking for the
    // one brings the other.
    if (std::strcmp(word, "scene") == 0 && has_scene_xyz && !has_scene_distance) {
      if (!reserve_codes(i, matte_counts[i] + 1)) {
        allocation_failed();
        return 0;
      }
      matte_ids[i][matte_counts[i]] = scene_distance_code;
      matte_counts[i]++;
    }
  }
  return 1;
}

int TCMatte_input::write(std::ostream& out) const {
  out << "use_mattes: " << use_mattes << "\n";
  if (use_mattes == 0) return out ? 1 : 0;
  out << "  NObjects: " << n_matte_objects << "\n";
  char name[32];
  for (int i = 0; i < n_matte_objects; i++) {
    out << "    Object: " << matte_object_names[i] << "\n";
    out << "      NMattes: " << matte_counts[i] << "\n";
    for (int j = 0; j < matte_counts[i]; j++) {
      const int code = matte_ids[i][j];
      out << "        ";
      if (code >= 7 && code <= 11) {
        // An entry held at 7 beyond the four names reads back the same way,
        // since it follows them in the file.
        const int k = code - 7;
        out << "reflect-" << (k < n_reflected_names ? reflected_names[k] : "");
      } else if (code >= 22 && code <= 26) {
        const int k = code - 22;
        out << "alpha-" << (k < n_alpha_names ? alpha_names[k] : "");
      } else if (code >= 27 && code <= 31) {
        out << "alpha-texture";
      } else if (code == no_picture_code) {
        out << "scene_no_radiance";
      } else {
        matte_name(code, name);
        out << name;
      }
      out << "\n";
    }
  }
  return out ? 1 : 0;
}

int TCMatte_input::copy_from(const TCMatte_input& other) {
  if (this == &other) return 1;
  clear();
  use_mattes = other.use_mattes;
  n_reflected_names = other.n_reflected_names;
  n_alpha_names = other.n_alpha_names;
  for (int k = 0; k < max_named_objects; k++) {
    std::memcpy(reflected_names[k], other.reflected_names[k], 256);
    std::memcpy(alpha_names[k], other.alpha_names[k], 256);
    reflected_objects[k] = other.reflected_objects[k];
    alpha_objects[k] = other.alpha_objects[k];
  }
  if (other.n_matte_objects < 1) return 1;
  if (!reserve_objects(other.n_matte_objects)) {
    allocation_failed();
    return 0;
  }
  for (int i = 0; i < other.n_matte_objects; i++) {
    std::memcpy(matte_object_names[i], other.matte_object_names[i], 256);
    object_indices[i] = other.object_indices[i];
    matte_counts[i] = 0;
    n_matte_objects = i + 1;
    if (!reserve_codes(i, other.matte_counts[i] + 1)) {
      allocation_failed();
      return 0;
    }
    for (int j = 0; j < other.matte_counts[i]; j++) matte_ids[i][j] = other.matte_ids[i][j];
    matte_counts[i] = other.matte_counts[i];
  }
  return 1;
}

namespace {

int find_object(const TCScene_tracer* scene, const char* name, int& index) {
  index = -1;
  return scene != nullptr ? scene->find_by_name(name, index) : 0;
}

}  // namespace

int process_matte_input(TCMatte_input& request, const TCScene_tracer& scene, TCMatte_fields& fields,
                        int& need_picture) {
  return process_matte_input(request, &scene, fields, need_picture);
}

int process_matte_input(TCMatte_input& request, const TCScene_tracer* scene, TCMatte_fields& fields,
                        int& need_picture) {
  const int n_objects = scene != nullptr ? scene->object_count() : 0;
  fields.set_sizes(matte_code_count, n_objects);
  fields.use_mattes = request.use_mattes;
  for (int k = 0; k < TCMatte_input::max_named_objects; k++) {
    request.reflected_objects[k] = -1;
    request.alpha_objects[k] = -1;
  }
  if (request.use_mattes == 0) return 1;

  for (int i = 0; i < request.n_matte_objects; i++) {
    const char* word = request.matte_object_names[i];
    int index = -1;
    // The lookup cannot be trusted with "scene" (see find_by_name).
    if (std::strcmp(word, "scene") == 0) {
      index = n_objects;
    } else if (!find_object(scene, word, index)) {
      std::cout << word << " in matte field input does not correspond to and object"
                << "\n";
      return 0;
    }
    request.object_indices[i] = index;

    for (int j = 0; j < request.matte_counts[i]; j++) {
      const int code = request.matte_ids[i][j];
      if (code < 0 || code > 39) {
        std::cout << "invalid matte id " << code << "\n";
        return 0;
      }
      if (code >= 22 && code <= 26) {
        const int k = code - 22;
        if (k >= request.n_alpha_names) {
          std::cout << "Error processing matte information - too many alpha object mattes\n"
                    << "Only " << 5 << " mattes allowed!\n";
          return 0;
        }
        int object = -1;
        if (!find_object(scene, request.alpha_names[k], object)) {
          std::cout << "ERROR - alpha object matte name: " << request.alpha_names[k]
                    << " does not correspond to any object.\n";
          return 0;
        }
        request.alpha_objects[k] = object;
      }
      if (code >= 7 && code <= 11) {
        const int k = code - 7;
        if (k >= request.n_reflected_names) {
          std::cout << "Error processing matte information - too many reflected object mattes\n"
                    << "Only " << 5 << " mattes allowed!\n";
          return 0;
        }
        int object = -1;
        if (!find_object(scene, request.reflected_names[k], object)) {
          std::cout << "ERROR - reflected object matte name: " << request.reflected_names[k]
                    << " does not correspond to any object.\n";
          return 0;
        }
        request.reflected_objects[k] = object;
      }
      if (code == no_picture_code) need_picture = 0;
    }
  }
  return 1;
}
