#ifndef TC_SURFACE_OBJECT_INPUT_H
#define TC_SURFACE_OBJECT_INPUT_H

#include "TCOcean_textures_input.h"
#include "box_input.h"

// What the two height-field surfaces, ocean and land, share in their input:
// the box around the surface and the pictures laid on it. Neither file gives
// the box's lengths (the runtime object sizes its box from the waves), but
// they are packed with the textures all the same.
class surface_object_input : public box_input {
 public:
  // Lengths 1.0 (metres), no textures.
  surface_object_input();
  ~surface_object_input() override;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // ints must hold at least the surface's three block counts after the
  // root's (see the layout in the source).
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  TCOcean_textures_input textures;

  // A texture block in packed form, shared with records that hold a second
  // block (the ocean's whitecap textures). The ints start with the header:
  // active, texture count, range values (the doubles of all the min and max
  // arrays together).
  static const int texture_header_ints = 3;
  // The block's counts for a header's numbers, worked out wide.
  static void texture_block_sizes(long long n_textures, long long n_range_values, long long& n_ints,
                                  long long& n_doubles, long long& n_chars);
  // Doubles held in all the block's range arrays.
  static long long texture_range_values(const TCOcean_textures_input& block);
  // Writes the block at the three positions; the arrays must have room for
  // texture_block_sizes of the block's own counts.
  static void pack_texture_block(const TCOcean_textures_input& block, int* ints, double* doubles,
                                 char* chars);
  // Rebuilds block from arrays that hold exactly texture_block_sizes of the
  // header's counts (the caller checks that). 0, block untouched, when the
  // per-texture counts are negative or do not add up to the header's.
  static int unpack_texture_block(TCOcean_textures_input& block, const int* ints,
                                  const double* doubles, const char* chars);

 protected:
  // The surface's own counts, from the received header while there is one.
  void surface_part_sizes(long long& n_ints, long long& n_doubles, long long& n_chars) const;

 private:
  int unpack_surface_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                          const char* chars, int char_bytes);

  // Counts taken from a packed int array by set_sizes_from_packed; they
  // stand in for the record's own until the next pack or unpack.
  int has_received_counts_;
  int received_textures_;
  int received_range_values_;

  surface_object_input(const surface_object_input&);
  surface_object_input& operator=(const surface_object_input&);
};

#endif
