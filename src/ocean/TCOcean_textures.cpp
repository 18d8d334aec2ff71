// Pictures laid on the water: painted marks, slicks, a sea bed seen through
// the surface. Each texture is a plane of given size, centred and turned on
// the sea, drawn in priority order over the water's own light.
#include <cmath>
#include <cstdio>
#include <iostream>
#include <new>

#include "TCOcean.h"
#include "TCOcean_textures_input.h"
#include "TCTexture_plane.h"
#include "ocean_input.h"

int TCOcean::build_textures(const ocean_input& input) {
  if (!input.texture_maps || !input.textures.active || input.textures.n_textures < 1) return 1;
  const TCOcean_textures_input& list = input.textures;
  texture_list = &list;
  texture_planes = new (std::nothrow) TCTexture_plane*[list.n_textures]();
  texture_centre = new (std::nothrow) double[2 * list.n_textures]();
  if (texture_planes == nullptr || texture_centre == nullptr) return 0;
  n_texture_planes = list.n_textures;
  int widest = n_bands > 0 ? n_bands : 1;
  for (int i = 0; i < list.n_textures; i++) {
    if (list.textures[i].n_bands > widest) widest = list.textures[i].n_bands;
  }
  work_texture = new (std::nothrow) double[widest]();
  if (work_texture == nullptr) return 0;
  for (int i = 0; i < list.n_textures; i++) {
    const TCTexture_plane_input& texture = list.textures[i];
    texture_planes[i] = new (std::nothrow) TCTexture_plane(texture);
    if (texture_planes[i] == nullptr) return 0;
    if (!texture_planes[i]->loaded) {
      std::cout << "unable to allocate texture map " << texture.picture_file << "\n";
      return 0;
    }
    texture_centre[2 * i] = texture.center_x;
    texture_centre[2 * i + 1] = texture.center_y;
  }
  return 1;
}

void TCOcean::set_pixel_polygon(int n, const double* xs, const double* ys) {
  pixel_n = n;
  pixel_xs = xs;
  pixel_ys = ys;
}

void TCOcean::update_textures(double t, int frame) {
  if (texture_list == nullptr) return;
  for (int i = 0; i < n_texture_planes; i++) {
    const TCTexture_plane_input& texture = texture_list->textures[i];
    // A drifting texture moves from its centre at its start time.
    double x = texture.center_x, y = texture.center_y;
    if (texture.animation_flag && t > texture.t_o) {
      x += texture.v_x * (t - texture.t_o);
      y += texture.v_y * (t - texture.t_o);
    }
    texture_centre[2 * i] = x;
    texture_centre[2 * i + 1] = y;
    if (texture.new_picture_flag) {
      // One picture per frame: <base>.<frame, four digits>.rgb.
      char name[300];
      std::snprintf(name, sizeof(name), "%s.%04d.rgb", texture.base_file_name, frame);
      if (!texture_planes[i]->reload_picture(name)) std::cout << "Error updating texture\n";
    }
  }
}

void TCOcean::apply_textures(const TCVector& point, int side, double footprint,
                             const double* reflectance, double* total, double* texture_out) {
  for (int band = 0; band < n_bands; band++) texture_out[band] = 0.0;
  if (texture_list == nullptr) return;
  // The piece of water the pixel covers, or the point alone.
  int n = pixel_n > 0 && pixel_xs != nullptr && pixel_ys != nullptr ? pixel_n : 1;
  for (int k = 0; k < n_texture_planes; k++) {
    const int i = texture_list->order != nullptr ? texture_list->order[k] : k;
    if (i < 0 || i >= n_texture_planes) continue;
    const int flag = side == -1 ? texture_list->below_flag[i] : texture_list->above_flag[i];
    if (flag == 0) continue;
    const int alpha = side == -1 ? texture_list->alpha_below[i] : texture_list->alpha_above[i];
    const int mode = flag - 1 < 0 ? 0 : (flag - 1 > 2 ? 2 : flag - 1);
    const TCTexture_plane_input& texture = texture_list->textures[i];
    TCTexture_plane& plane = *texture_planes[i];
    // Into the texture's frame: about its centre, turned back by its
    // orientation.
    const double c = std::cos(texture.orientation), s = std::sin(texture.orientation);
    double mean_x = 0.0, mean_y = 0.0;
    for (int v = 0; v < n; v++) {
      const double x = (pixel_n > 0 ? pixel_xs[v] : point.x) - texture_centre[2 * i];
      const double y = (pixel_n > 0 ? pixel_ys[v] : point.y) - texture_centre[2 * i + 1];
      if (v < most_texture_points) {
        texture_x[v] = x * c + y * s;
        texture_y[v] = -x * s + y * c;
        mean_x += texture_x[v];
        mean_y += texture_y[v];
      }
    }
    if (n <= most_texture_points) {
      mean_x /= n;
      mean_y /= n;
      // Beyond a texture that does not repeat there is nothing of it.
      if (!plane.periodic &&
          (std::fabs(mean_x) > plane.half_width || std::fabs(mean_y) > plane.half_height))
        continue;
    }
    double* colour = work_texture;
    if (!radiance_texture_surface(plane, n, texture_x, texture_y, footprint, side, colour)) return;
    const int colours = plane.n_bands - (alpha ? 1 : 0);
    double a = alpha ? colour[plane.n_bands - 1] : 1.0;
    if (a < 0.0) a = 0.0;
    if (a > 1.0) a = 1.0;
    for (int band = 0; band < n_bands && band < colours; band++) {
      // Modes 1 and 2 are seen through the surface: what the water lets
      // through, 1 - R, and nothing where it reflects everything.
      const double R = reflectance[band];
      const double o = mode == 0 ? 1.0 : (R >= 1.0 ? 0.0 : 1.0 - R);
      const double before = total[band];
      if (mode == 0) {
        total[band] = (1.0 - a) * before + a * colour[band];
      } else if (mode == 1) {
        total[band] = (1.0 - a) * before + a * ((1.0 - o) * before + colour[band]);
      } else {
        total[band] = (1.0 - a * o) * before + a * o * colour[band];
      }
      texture_out[band] += total[band] - before;
    }
  }
}
