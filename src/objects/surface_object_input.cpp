#include "surface_object_input.h"

#include <new>

#include "TCData_file.h"

// Packed layout of a surface, positions counted from the root's part (the
// root packs no ints and no doubles, and its name takes the first 256 chars).
//
// ints                              doubles
//   0 textures.active                 0 length x, y, z (metres)
//   1 texture count                   3 per texture: width, height,
//   2 range values                      center_x, center_y, orientation,
//   3 per texture, 21 ints:             v_x, v_y, t_o, then its range
//     order, priorities,                values: min_above, max_above,
//     alpha_above, alpha_below,         min_below, max_below
//     above_flag, below_flag,
//     whole_picture, first_x, last_x,   chars: per texture, picture_file
//     first_y, last_y, make_levels,     and base_file_name in 256 each
//     periodic, side_code, n_bands,
//     priority, animation_flag,
//     new_picture_flag, update_flag,
//     above values, below values

namespace {

const int at_active = 0;
const int at_count = 1;
const int at_range_values = 2;
const int ints_per_texture = 21;
const int doubles_per_texture = 8;
const int text_block = 256;
const int chars_per_texture = 2 * text_block;
const int length_doubles = 3;

// Whole-block arrays of a restored texture block: index lists of n entries
// (room for one at least); null when memory runs out.
int* new_index_list(int n) {
  return new (std::nothrow) int[n > 0 ? n : 1]();
}

// Textures a block holds: none without its array, or for a negative count.
int texture_count(const TCOcean_textures_input& block) {
  return (block.textures != nullptr && block.n_textures > 0) ? block.n_textures : 0;
}

void replace(int*& target, int* values) {
  delete[] target;
  target = values;
}

}  // namespace

surface_object_input::surface_object_input()
    : has_received_counts_(0), received_textures_(0), received_range_values_(0) {}

surface_object_input::~surface_object_input() {}

void surface_object_input::texture_block_sizes(long long n_textures, long long n_range_values,
                                               long long& n_ints, long long& n_doubles,
                                               long long& n_chars) {
  // A negative count is kept as it came but stands for no textures.
  const long long entries = n_textures > 0 ? n_textures : 0;
  n_ints = texture_header_ints + ints_per_texture * entries;
  n_doubles = doubles_per_texture * entries + n_range_values;
  n_chars = chars_per_texture * entries;
}

long long surface_object_input::texture_range_values(const TCOcean_textures_input& block) {
  long long total = 0;
  for (int i = 0; i < texture_count(block); i++) {
    const TCTexture_plane_input& texture = block.textures[i];
    total += 2LL * texture.above_values() + 2LL * texture.below_values();
  }
  return total;
}

void surface_object_input::pack_texture_block(const TCOcean_textures_input& block, int* ints,
                                              double* doubles, char* chars) {
  const int count = texture_count(block);
  ints[at_active] = block.active;
  ints[at_count] = block.n_textures < 0 ? block.n_textures : count;
  ints[at_range_values] = static_cast<int>(texture_range_values(block));
  int* p = ints + texture_header_ints;
  double* d = doubles;
  char* c = chars;
  for (int i = 0; i < count; i++) {
    const TCTexture_plane_input& t = block.textures[i];
    *p++ = block.order[i];
    *p++ = block.priorities[i];
    *p++ = block.alpha_above[i];
    *p++ = block.alpha_below[i];
    *p++ = block.above_flag[i];
    *p++ = block.below_flag[i];
    *p++ = t.whole_picture;
    *p++ = t.first_x;
    *p++ = t.last_x;
    *p++ = t.first_y;
    *p++ = t.last_y;
    *p++ = t.make_levels;
    *p++ = t.periodic;
    *p++ = t.side_code;
    *p++ = t.n_bands;
    *p++ = t.priority;
    *p++ = t.animation_flag;
    *p++ = t.new_picture_flag;
    *p++ = t.update_flag;
    *p++ = t.above_values();
    *p++ = t.below_values();

    *d++ = t.width;
    *d++ = t.height;
    *d++ = t.center_x;
    *d++ = t.center_y;
    *d++ = t.orientation;
    *d++ = t.v_x;
    *d++ = t.v_y;
    *d++ = t.t_o;
    for (int b = 0; b < t.above_values(); b++) *d++ = t.min_above[b];
    for (int b = 0; b < t.above_values(); b++) *d++ = t.max_above[b];
    for (int b = 0; b < t.below_values(); b++) *d++ = t.min_below[b];
    for (int b = 0; b < t.below_values(); b++) *d++ = t.max_below[b];

    copy_text(c, t.picture_file, text_block);
    copy_text(c + text_block, t.base_file_name, text_block);
    c += chars_per_texture;
  }
}

int surface_object_input::unpack_texture_block(TCOcean_textures_input& block, const int* ints,
                                               const double* doubles, const char* chars) {
  const int count = ints[at_count] > 0 ? ints[at_count] : 0;
  const long long range_values = ints[at_range_values];
  if (range_values < 0) return 0;

  // The per-texture counts must account for the range doubles exactly before
  // anything is made from them.
  long long total = 0;
  for (int i = 0; i < count; i++) {
    const int* p = ints + texture_header_ints + ints_per_texture * static_cast<long long>(i);
    const int above = p[19];
    const int below = p[20];
    if (above < 0 || below < 0) return 0;
    total += 2LL * above + 2LL * below;
    if (total > range_values) return 0;
  }
  if (total != range_values) return 0;

  int* order = new_index_list(count);
  int* priorities = new_index_list(count);
  int* alpha_above = new_index_list(count);
  int* alpha_below = new_index_list(count);
  int* above_flag = new_index_list(count);
  int* below_flag = new_index_list(count);
  TCTexture_plane_input* textures = new (std::nothrow) TCTexture_plane_input[count > 0 ? count : 1];
  if (order == nullptr || priorities == nullptr || alpha_above == nullptr ||
      alpha_below == nullptr || above_flag == nullptr || below_flag == nullptr ||
      textures == nullptr) {
    delete[] order;
    delete[] priorities;
    delete[] alpha_above;
    delete[] alpha_below;
    delete[] above_flag;
    delete[] below_flag;
    delete[] textures;
    return 0;
  }

  const int* p = ints + texture_header_ints;
  const double* d = doubles;
  const char* c = chars;
  for (int i = 0; i < count; i++) {
    TCTexture_plane_input& t = textures[i];
    order[i] = *p++;
    priorities[i] = *p++;
    alpha_above[i] = *p++;
    alpha_below[i] = *p++;
    above_flag[i] = *p++;
    below_flag[i] = *p++;
    t.whole_picture = *p++;
    t.first_x = *p++;
    t.last_x = *p++;
    t.first_y = *p++;
    t.last_y = *p++;
    t.make_levels = *p++;
    t.periodic = *p++;
    const int side_code = *p++;
    const int n_bands = *p++;
    t.priority = *p++;
    t.animation_flag = *p++;
    t.new_picture_flag = *p++;
    t.update_flag = *p++;
    const int above = *p++;
    const int below = *p++;

    t.width = *d++;
    t.height = *d++;
    t.center_x = *d++;
    t.center_y = *d++;
    t.orientation = *d++;
    t.v_x = *d++;
    t.v_y = *d++;
    t.t_o = *d++;
    // The setters make arrays of exactly these sizes; side code and band
    // count are put back afterwards, so the below side is set as if alone
    // and no mismatch is reported for what the sender already held.
    if (above > 0) t.set_above(above, d, d + above);
    d += 2LL * above;
    t.side_code = 0;
    if (below > 0) t.set_below(below, d, d + below);
    d += 2LL * below;
    t.side_code = side_code;
    t.n_bands = n_bands;

    text_from_block(t.picture_file, c);
    text_from_block(t.base_file_name, c + text_block);
    c += chars_per_texture;
  }

  replace(block.order, order);
  replace(block.priorities, priorities);
  replace(block.alpha_above, alpha_above);
  replace(block.alpha_below, alpha_below);
  replace(block.above_flag, above_flag);
  replace(block.below_flag, below_flag);
  delete[] block.textures;
  block.textures = textures;
  block.n_textures = ints[at_count];
  block.active = ints[at_active];
  return 1;
}

void surface_object_input::surface_part_sizes(long long& n_ints, long long& n_doubles,
                                              long long& n_chars) const {
  long long n_textures = texture_count(textures);
  long long range_values = texture_range_values(textures);
  if (has_received_counts_) {
    n_textures = received_textures_;
    range_values = received_range_values_;
  }
  texture_block_sizes(n_textures, range_values, n_ints, n_doubles, n_chars);
  n_doubles += length_doubles;
}

void surface_object_input::packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const {
  box_input::packing_sizes(n_ints, n_doubles, n_chars);
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  surface_part_sizes(own_ints, own_doubles, own_chars);
  // -1 marks a count no array could hold (negative, or bytes beyond an int);
  // pack and unpack refuse it.
  const int sound =
      own_ints >= texture_header_ints && own_doubles >= length_doubles && own_chars >= 0;
  n_ints = packed_count(n_ints + own_ints, sound);
  n_doubles = packed_count(n_doubles + own_doubles, sound);
  n_chars = packed_count(n_chars + own_chars, sound);
}

void surface_object_input::set_sizes_from_packed(const int* ints, const double* doubles,
                                                 const char* chars) {
  box_input::set_sizes_from_packed(ints, doubles, chars);
  if (ints == nullptr) return;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  box_input::packing_sizes(base_ints, base_doubles, base_chars);
  received_textures_ = ints[base_ints + at_count];
  received_range_values_ = ints[base_ints + at_range_values];
  has_received_counts_ = 1;
}

int surface_object_input::pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes,
                               char*& chars, int& char_bytes) {
  has_received_counts_ = 0;
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  if (!pack_root_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes,
                      "unable to allocate surface character packing array ",
                      "unable to allocate surface integer packing array ",
                      "unable to allocate surface double packing array ",
                      "unable to pack object part of surface ", base_ints, base_doubles,
                      base_chars)) {
    return 0;
  }
  double* d = doubles + base_doubles;
  d[0] = length.x;
  d[1] = length.y;
  d[2] = length.z;
  pack_texture_block(textures, ints + base_ints, d + length_doubles, chars + base_chars);
  return 1;
}

int surface_object_input::unpack(const int* ints, int int_bytes, const double* doubles,
                                 int double_bytes, const char* chars, int char_bytes) {
  // Counts taken by set_sizes_from_packed serve this one unpack, the root's
  // size check included.
  const int result = unpack_surface_part(ints, int_bytes, doubles, double_bytes, chars, char_bytes);
  has_received_counts_ = 0;
  return result;
}

int surface_object_input::unpack_surface_part(const int* ints, int int_bytes, const double* doubles,
                                              int double_bytes, const char* chars, int char_bytes) {
  if (!packed_arrays_present(ints, doubles, chars)) return 0;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  packing_sizes(n_ints, n_doubles, n_chars);
  int base_ints = 0, base_doubles = 0, base_chars = 0;
  box_input::packing_sizes(base_ints, base_doubles, base_chars);
  if (!packed_numbers_fit(n_ints, base_ints + texture_header_ints, int_bytes, n_doubles,
                          base_doubles + length_doubles, double_bytes)) {
    return 0;
  }
  if (!packed_chars_fit(n_chars, char_bytes)) return 0;

  // The counts in the array must be the ones the sizes were worked out from.
  const int* p = ints + base_ints;
  long long want_ints = 0, want_doubles = 0, want_chars = 0;
  texture_block_sizes(p[at_count], p[at_range_values], want_ints, want_doubles, want_chars);
  long long own_ints = 0, own_doubles = 0, own_chars = 0;
  surface_part_sizes(own_ints, own_doubles, own_chars);
  if (p[at_range_values] < 0 || want_ints != own_ints) {
    return packed_ints_wrong();
  }
  if (want_doubles + length_doubles != own_doubles) return packed_doubles_wrong();
  if (want_chars != own_chars) return packed_chars_fit(-1, char_bytes);

  if (!box_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    std::cout << "unable to unpack object part of surface "
              << "\n";
    return 0;
  }
  const double* d = doubles + base_doubles;
  if (!unpack_texture_block(textures, p, d + length_doubles, chars + base_chars)) {
    return packed_ints_wrong();
  }
  length.x = d[0];
  length.y = d[1];
  length.z = d[2];
  return 1;
}
