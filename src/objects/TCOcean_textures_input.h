#ifndef TC_OCEAN_TEXTURES_INPUT_H
#define TC_OCEAN_TEXTURES_INPUT_H

#include <iostream>

#include "TCTexture_plane_input.h"

// The ocean's texture block: a "texture" data file section listing pictures
// laid on the sea, each with a priority that fixes the drawing order and with
// its radiance range above and below the water.
class TCOcean_textures_input {
 public:
  TCOcean_textures_input();
  ~TCOcean_textures_input();

  // Header, "ocean", the textures, "endTexture", then the drawing order.
  // Returns 1, or 0 after printing a line (a header failure prints only the
  // header's own lines; the ocean adds its own).
  int process_texture_grid_input(std::istream& in);
  // The block as the engine writes it. The below section's minimum values go
  // out without their keyword, so a written block reads back one token off.
  int print_texture_grid_input(std::ostream& out) const;

  int active;
  int n_textures;
  int* order;  // texture indices, highest priority first
  int* priorities;
  int* alpha_above;  // 1: the picture's band after the last is an opacity
  int* alpha_below;
  int* above_flag;  // 0 not imaged on this side, else 1 + the reflection flag
  int* below_flag;
  TCTexture_plane_input* textures;

 private:
  TCOcean_textures_input(const TCOcean_textures_input&) = delete;
  TCOcean_textures_input& operator=(const TCOcean_textures_input&) = delete;

  // Makes room for capacity textures, keeping the first `kept`. 0 on failure.
  int reserve(int capacity, int kept);
  void release();
  // The drawing order by priority; 0 when its scratch array can't be had.
  int select_order();
};

#endif
