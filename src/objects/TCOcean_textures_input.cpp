#include "TCOcean_textures_input.h"

#include <new>
#include <string>

#include "TCData_file.h"

namespace {

// Room made for textures and band values before any has been read. Both grow
// as entries actually arrive, so a wild count in a short file costs nothing
// and the work stays bounded by the length of the file.
const int first_texture_capacity = 16;
const int first_band_capacity = 64;

int* new_ints(int n) {
  return new (std::nothrow) int[n > 0 ? n : 1]();
}

// Copies the first `kept` ints of *values into a new array of n; 0 on failure.
int grow_ints(int*& values, int n, int kept) {
  int* grown = new_ints(n);
  if (grown == nullptr) return 0;
  for (int i = 0; i < kept && values != nullptr; i++) grown[i] = values[i];
  delete[] values;
  values = grown;
  return 1;
}

// Makes `values` hold at least `needed` doubles, keeping the first `kept`.
int make_room(double*& values, int& capacity, int needed, int kept) {
  if (needed <= capacity && values != nullptr) return 1;
  double* grown = new (std::nothrow) double[needed > 0 ? needed : 1]();
  if (grown == nullptr) return 0;
  for (int i = 0; i < kept && i < capacity; i++) grown[i] = values[i];
  delete[] values;
  values = grown;
  capacity = needed > 0 ? needed : 1;
  return 1;
}

// Sums of flags and counts as file values can make them: modulo 2^32 like
// the engine's ints have always been, rather than undefined at the ends.
int wrapped_sum(int a, int b) {
  return static_cast<int>(static_cast<unsigned int>(a) + static_cast<unsigned int>(b));
}

const int read_ok = 1;
const int read_stream_failed = 0;
const int read_out_of_memory = -1;

// Reads count doubles into values, which ends up with room for count + 1 (the
// alpha band's value goes last). Room doubles as values arrive rather than
// being taken from the count. Stops at the first failed read.
int read_band_values(std::istream& in, int count, double*& values, int& capacity) {
  for (int i = 0; i < count; i++) {
    if (i == capacity) {
      // Written so that no sum overflows for a count near the largest int.
      const int wanted = capacity >= count - capacity ? count + 1 : 2 * capacity;
      if (!make_room(values, capacity, wanted, i)) return read_out_of_memory;
    }
    if (!read_double(in, values[i])) return read_stream_failed;
  }
  if (!make_room(values, capacity, count + 1, count > 0 ? count : 0)) return read_out_of_memory;
  return read_ok;
}

void write_values(std::ostream& out, const double* values, int stored, int count) {
  for (int b = 0; b < count; b++) {
    const double value = (values != nullptr && b < stored) ? values[b] : 0.0;
    out << value << " ";
  }
}

}  // namespace

TCOcean_textures_input::TCOcean_textures_input()
    : active(0),
      n_textures(0),
      order(nullptr),
      priorities(nullptr),
      alpha_above(nullptr),
      alpha_below(nullptr),
      above_flag(nullptr),
      below_flag(nullptr),
      textures(nullptr) {}

TCOcean_textures_input::~TCOcean_textures_input() {
  release();
}

void TCOcean_textures_input::release() {
  delete[] order;
  delete[] priorities;
  delete[] alpha_above;
  delete[] alpha_below;
  delete[] above_flag;
  delete[] below_flag;
  delete[] textures;
  order = nullptr;
  priorities = nullptr;
  alpha_above = nullptr;
  alpha_below = nullptr;
  above_flag = nullptr;
  below_flag = nullptr;
  textures = nullptr;
  n_textures = 0;
  active = 0;
}

int TCOcean_textures_input::reserve(int capacity, int kept) {
  if (!grow_ints(order, capacity, kept)) return 0;
  if (!grow_ints(priorities, capacity, kept)) return 0;
  if (!grow_ints(alpha_above, capacity, kept)) return 0;
  if (!grow_ints(alpha_below, capacity, kept)) return 0;
  if (!grow_ints(above_flag, capacity, kept)) return 0;
  if (!grow_ints(below_flag, capacity, kept)) return 0;
  TCTexture_plane_input* grown = new (std::nothrow) TCTexture_plane_input[capacity];
  if (grown == nullptr) return 0;
  for (int i = 0; i < kept && textures != nullptr; i++) grown[i] = textures[i];
  delete[] textures;
  textures = grown;
  return 1;
}

int TCOcean_textures_input::process_texture_grid_input(std::istream& in) {
  release();
  const int version = check_header(in, "texture", 2);
  if (version == 0) return 0;

  skip_token(in);  // "surface_type:"
  std::string surface;
  in >> surface;
  if (surface != "ocean") {
    std::cout << "Error processing texture input. Expected ocean but read " << surface << "\n";
    return 0;
  }

  active = 1;
  skip_token(in);  // "number_of_textures:"
  int count = 0;
  read_int(in, count);

  int capacity = count < 1 ? 1 : (count > first_texture_capacity ? first_texture_capacity : count);
  if (!reserve(capacity, 0)) {
    std::cout << "Error allocating texture maps in process_texture_grid_input\n";
    return 0;
  }

  // Scratch ranges: the file's bands, then the alpha band's 0.0 and 1.0.
  double* min_values = nullptr;
  double* max_values = nullptr;
  int min_capacity = 0;
  int max_capacity = 0;
  int bands = 0;  // fixed by the first texture
  int n_read = 0;
  int result = 1;

  for (int i = 0; i < count && in; i++) {
    if (i == capacity) {
      const int grown = capacity > count / 2 ? count : 2 * capacity;
      if (!reserve(grown, i)) {
        std::cout << "Error allocating texture maps in process_texture_grid_input\n";
        result = 0;
        break;
      }
      capacity = grown;
    }
    TCTexture_plane_input& texture = textures[i];
    n_read = i + 1;
    if (texture.read_texture_grid(in, version) == 0) {
      std::cout << "Error processing texture grid\n";
      result = 0;
      break;
    }
    if (!in) break;  // cut short: the endTexture check reports it

    if (i == 0) {
      bands = texture.n_bands;
      const int first = bands < first_band_capacity - 1 ? bands + 1 : first_band_capacity;
      if (!make_room(min_values, min_capacity, first, 0) ||
          !make_room(max_values, max_capacity, first, 0)) {
        std::cout << "Error allocating radiance bands in process_texture_grid_input\n";
        result = 0;
        break;
      }
    } else if (texture.n_bands != bands) {
      std::cout << "Texture maps cannot have different numbers of bands.\n";
      result = 0;
      break;
    }
    priorities[i] = texture.priority;

    // The two sides share one layout; only the flags and the setter differ.
    int stream_ok = 1;
    for (int side = 0; side < 2 && stream_ok; side++) {
      int& flag = side == 0 ? above_flag[i] : below_flag[i];
      int& alpha = side == 0 ? alpha_above[i] : alpha_below[i];
      skip_token(in);  // "image_above:" or "image_below:"
      std::string answer;
      in >> answer;
      if (answer != "yes") {
        flag = 0;
        continue;
      }
      flag = 1;
      int reflection_flag = 0;
      skip_token(in);  // "reflection_flag:"
      read_int(in, reflection_flag);
      flag = wrapped_sum(flag, reflection_flag);
      skip_token(in);  // "alpha_flag:"
      read_int(in, alpha);
      skip_token(in);  // "min_radiance"
      int got = read_band_values(in, bands, min_values, min_capacity);
      if (got == read_ok) {
        skip_token(in);  // "max_radiance:"
        got = read_band_values(in, bands, max_values, max_capacity);
      }
      if (got == read_out_of_memory) {
        std::cout << "Error allocating radiance bands in process_texture_grid_input\n";
        result = 0;
        stream_ok = 0;
        break;
      }
      if (got == read_stream_failed || !in) {
        stream_ok = 0;
        break;
      }
      if (bands >= 0) {
        min_values[bands] = 0.0;  // the alpha band's range
        max_values[bands] = 1.0;
      }
      const int n = alpha != 0 ? wrapped_sum(bands, 1) : bands;
      if (side == 0)
        texture.set_above(n, min_values, max_values);
      else
        texture.set_below(n, min_values, max_values);
    }
    if (!stream_ok) break;
  }
  delete[] min_values;
  delete[] max_values;
  if (result == 0) return 0;

  // A block cut short keeps the textures it has; the check below refuses it.
  n_textures = n_read < count ? n_read : count;

  std::string token;
  in >> token;
  if (token != "endTexture") {
    std::cout << "Error reading ocean texture maps: Expected endTexture, read " << token << "\n";
    return 0;
  }

  if (n_textures == 1) {
    order[0] = 0;
    return 1;
  }
  return select_order();
}

int TCOcean_textures_input::select_order() {
  const int n = n_textures;
  int* temp_priority = new_ints(n);
  if (temp_priority == nullptr) {
    std::cout << "Error allocating tempPriority array\n";
    return 0;
  }
  for (int i = 0; i < n; i++) temp_priority[i] = priorities[i];

  // Highest first; the strict comparison keeps file order among equals, and
  // starting from -1 means a priority of -1 or below is never chosen: its
  // slot repeats the last choice instead.
  int last_pick = 0;
  for (int k = 0; k < n; k++) {
    int best = -1;
    int pick = -1;
    for (int i = 0; i < n; i++) {
      if (temp_priority[i] > best) {
        best = temp_priority[i];
        pick = i;
      }
    }
    if (pick >= 0) {
      last_pick = pick;
      temp_priority[pick] = -1;  // taken
    }
    order[k] = last_pick;
  }
  delete[] temp_priority;
  return 1;
}

int TCOcean_textures_input::print_texture_grid_input(std::ostream& out) const {
  set_file_precision(out);
  write_header(out, "texture", 2);
  out << "surface_type: ocean "
      << "\n";
  out << "number_of_textures:  " << n_textures << "\n";
  for (int i = 0; i < n_textures; i++) {
    const TCTexture_plane_input& texture = textures[i];
    texture.print_texture_grid(out, 2);
    // The stored count includes the alpha band; the file's doesn't.
    const int alpha = (alpha_above[i] != 0 || alpha_below[i] != 0) ? 1 : 0;
    const int bands = wrapped_sum(texture.n_bands, -alpha);
    out << "Picture_bands: " << bands << "\n";

    if (above_flag[i] != 0) {
      out << "image_above:  yes "
          << "\n";
      out << "reflection_flag:  " << wrapped_sum(above_flag[i], -1) << "\n";
      out << "alpha_flag:  " << alpha_above[i] << "\n";
      out << "min_radiance ";
      write_values(out, texture.min_above, texture.above_values(), bands);
      out << "\n";
      out << "max_radiance: ";
      write_values(out, texture.max_above, texture.above_values(), bands);
      out << "\n";
    } else {
      out << "image_above: no "
          << "\n";
    }

    if (below_flag[i] != 0) {
      out << "image_below: yes "
          << "\n";
      out << "reflection_flag:  " << wrapped_sum(below_flag[i], -1) << "\n";
      out << "alpha_flag: " << alpha_below[i] << "\n";
      // No keyword ahead of these values: the format has always been written so.
      write_values(out, texture.min_below, texture.below_values(), bands);
      out << "\n";
      out << "max_radiance: ";
      write_values(out, texture.max_below, texture.below_values(), bands);
      out << "\n";
    } else {
      out << "image_below:  no "
          << "\n";
    }
  }
  out << "endTexture"
      << "\n";
  return out.good() ? 1 : 0;
}
