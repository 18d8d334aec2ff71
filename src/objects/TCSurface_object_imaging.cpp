// Shading the surface's triangles on the image: each pixel takes the piece of
// the triangle's visible part that falls in it, with exact coverage.
#include <cmath>

#include "Slice.h"
#include "TCMatte_fields.h"
#include "TCPolygon.h"
#include "TCSurface_object.h"
#include "TCView.h"
#include "object_contour.h"

namespace {

// Heights this far below the mean stand for "no surface here" (off a lattice
// that does not repeat).
const double no_surface = -1.0e7;

// Barycentric weights of image point (x, y) in the triangle; 0 for a
// triangle of no area.
int weights_of(const TCSurface_vertex t[3], double x, double y, double w[3]) {
  const double d = (t[1].y - t[2].y) * (t[0].x - t[2].x) + (t[2].x - t[1].x) * (t[0].y - t[2].y);
  if (d == 0.0) return 0;
  w[0] = ((t[1].y - t[2].y) * (x - t[2].x) + (t[2].x - t[1].x) * (y - t[2].y)) / d;
  w[1] = ((t[2].y - t[0].y) * (x - t[2].x) + (t[0].x - t[2].x) * (y - t[2].y)) / d;
  w[2] = 1.0 - w[0] - w[1];
  return 1;
}

// The whole pixels the visible polygon touches, in whole-picture rows and
// columns, clamped to this view's part of the picture: 0 when it lies wholly
// outside.
int pixel_window(const TCView& view, const TCPolygon& visible, int& row0, int& row1, int& col0,
                 int& col1) {
  double x0, x1, y0, y1;
  visible.bounds(x0, x1, y0, y1);
  return view.whole_window(x0, x1, y0, y1, row0, row1, col0, col1);
}

}  // namespace

void TCSurface_object::set_pixel_polygon(int, const double*, const double*) {}

int TCSurface_object::water_under(const TCSurface_vertex triangle[3], double px, double py,
                                  TCVector& point) const {
  double w[3];
  if (!weights_of(triangle, px, py, w)) return 0;
  const double u = w[0] * triangle[0].u + w[1] * triangle[1].u + w[2] * triangle[2].u;
  const double v = w[0] * triangle[0].v + w[1] * triangle[1].v + w[2] * triangle[2].v;
  double x = 0.0, y = 0.0;
  lattice->lattice_to_world(u, v, x, y);
  const double z = lattice->height_at(x, y, 0) - lattice->z_offset;
  if (z < no_surface) return 0;
  point = TCVector(x, y, z);
  return 1;
}

int TCSurface_object::shade_piece(TCView& view, object_contour& contour, TCMatte_sample& matte,
                                  double* sample, int row, int col, const TCVector& point,
                                  double area, double near, double distance, double far,
                                  int corners, const double* xs, const double* ys, int side) {
  TCVector normal;
  lattice->normal_at(point.x, point.y, normal);
  TCVector world_point;
  point_to_world(point, world_point);
  TCVector direction = world_point - view.position;
  const double length = std::sqrt(direction.dot(direction));
  if (!(length > 0.0)) return 0;
  direction = direction * (1.0 / length);
  if (matte.on) {
    matte.clear();
    matte.set_distance(distance * distance);
  }
  set_pixel_polygon(corners, xs, ys);
  TCVector in_box = point - box_centre;
  in_box.z += lattice->z_offset;
  TCSpectrum& spectrum = *contour.spectrum;
  surface_radiance(TCRay(view.position, direction), in_box, normal, spectrum, side,
                   matte.on ? matte.values : nullptr,
                   distance * (view.whole_pixel_width() + view.whole_pixel_height()) * 0.25);
  for (int b = 0; b < spectrum.n; b++)
    sample[b] = mattes_only ? 0.0 : spectrum.radiance_in_band[b] * area;
  // Pieces of the surface in one pixel tile it: their coverages add.
  contour.add_sample_adjacent(row - view.whole_first_row, col - view.whole_first_col, sample, near,
                              distance * distance, far, area, object_id,
                              matte.on ? &matte : nullptr);
  return 1;
}

void TCSurface_object::image_triangle(TCView& view, object_contour& contour,
                                      const TCSurface_vertex triangle[3], const TCPolygon& visible,
                                      int side) {
  if (lattice == nullptr || contour.spectrum == nullptr || visible.size() < 3) return;
  int row0 = 0, row1 = 0, col0 = 0, col1 = 0;
  if (!pixel_window(view, visible, row0, row1, col0, col1)) return;
  TCVector camera;
  point_to_object(view.position, camera);
  double* sample = new double[contour.spectrum->n > 0 ? contour.spectrum->n : 1];
  TCPolygon piece;
  double xs[64], ys[64];
  // The mattes this object adds to, one pixel's values at a time.
  TCMatte_sample matte;
  matte.attach(object_id, contour.matte_target);
  matte_fields = matte.on ? contour.matte_target : nullptr;
  for (int row = row0; row <= row1; row++) {
    for (int col = col0; col <= col1; col++) {
      visible.clip_to_rectangle(col, col + 1.0, row, row + 1.0, piece);
      if (piece.size() < 3) continue;
      const double area = piece.area();
      if (!(area > 0.0)) continue;
      // The surface under each corner of the piece: nearest and farthest.
      double nearest = 0.0, farthest = 0.0;
      int lost = 0;
      const int corners = piece.size() < 64 ? piece.size() : 64;
      for (int k = 0; k < corners && !lost; k++) {
        TCVector corner;
        if (!water_under(triangle, piece.x[k], piece.y[k], corner)) {
          lost = 1;
          break;
        }
        const TCVector gap = corner - camera;
        const double range = gap.dot(gap);
        if (k == 0 || range < nearest) nearest = range;
        if (k == 0 || range > farthest) farthest = range;
        xs[k] = corner.x;
        ys[k] = corner.y;
      }
      if (lost) continue;
      double cx = 0.0, cy = 0.0;
      piece.centroid(cx, cy);
      TCVector point;
      if (!water_under(triangle, cx, cy, point)) continue;
      const TCVector gap = point - camera;
      // The contour keeps squared distances.
      const double near = nearest, far = farthest;
      const double distance = std::sqrt(gap.dot(gap));
      if (!contour.pixel_wanted(row - view.whole_first_row, col - view.whole_first_col, near, far))
        continue;
      shade_piece(view, contour, matte, sample, row, col, point, area, near, distance, far, corners,
                  xs, ys, side);
    }
  }
  matte_fields = nullptr;
  delete[] sample;
}

void TCSurface_object::horizon_triangle(TCView& view, object_contour& contour,
                                        const TCSurface_vertex[3], const TCPolygon& visible,
                                        int side) {
  if (lattice == nullptr || contour.spectrum == nullptr || visible.size() < 3) return;
  int row0 = 0, row1 = 0, col0 = 0, col1 = 0;
  if (!pixel_window(view, visible, row0, row1, col0, col1)) return;
  TCVector camera;
  point_to_object(view.position, camera);
  const int round = lattice->round_flag;
  const double radius = lattice->radius;
  // The camera's height over the mean surface, and over the sphere under it.
  double h = camera.z;
  if (round) h += (camera.x * camera.x + camera.y * camera.y) * 0.5 / radius;
  if (h < 0.0) return;
  double* sample = new double[contour.spectrum->n > 0 ? contour.spectrum->n : 1];
  TCMatte_sample matte;
  matte.attach(object_id, contour.matte_target);
  matte_fields = matte.on ? contour.matte_target : nullptr;
  TCPolygon piece;
  for (int row = row0; row <= row1; row++) {
    for (int col = col0; col <= col1; col++) {
      visible.clip_to_rectangle(col, col + 1.0, row, row + 1.0, piece);
      if (piece.size() < 3) continue;
      const double area = piece.area();
      if (!(area > 0.0)) continue;
      double cx = 0.0, cy = 0.0;
      piece.centroid(cx, cy);
      TCRay ray;
      view.plane_ray(view.whole_first_elevation + cy * view.whole_pixel_height(),
                     view.whole_first_azimuth + cx * view.whole_pixel_width(), ray);
      TCRay local;
      ray_to_object(ray, local);
      const double across = std::sqrt(local[3] * local[3] + local[4] * local[4]);
      if (!(across > 0.0)) continue;
      const double azimuth = std::atan2(local[4], local[3]);
      const double m = -local[5] / across;  // tangent of the depression
      // Above the horizon: the sky.
      TCRay in_box_ray;
      ray_to_box(ray, in_box_ray);
      if (!(m > std::tan(curvature_angle(in_box_ray, azimuth)))) continue;
      double reach = 99999999.0;  // metres along the mean surface
      if (round) {
        const double under = radius * radius * m * m - 2.0 * radius * h;
        if (under < 0.0) continue;
        reach = std::fabs(m) * radius - std::sqrt(under);
      } else if (m != 0.0) {
        reach = h / m;
      }
      const double x = camera.x + reach * local[3] / across;
      const double y = camera.y + reach * local[4] / across;
      const TCVector point(x, y, lattice->height_at(x, y, 0) - lattice->z_offset);
      const TCVector gap = point - camera;
      const double distance = std::sqrt(gap.dot(gap));
      const double squared = gap.dot(gap);
      if (!contour.pixel_wanted(row - view.whole_first_row, col - view.whole_first_col, squared,
                                squared))
        continue;
      const double xs[1] = {x}, ys[1] = {y};
      shade_piece(view, contour, matte, sample, row, col, point, area, squared, distance, squared,
                  1, xs, ys, side);
    }
  }
  matte_fields = nullptr;
  delete[] sample;
}

void TCSurface_object::matte_triangle(TCView& view, object_contour& contour,
                                      const TCSurface_vertex triangle[3], const TCPolygon& visible,
                                      int side) {
  const int was = mattes_only;
  mattes_only = 1;
  image_triangle(view, contour, triangle, visible, side);
  mattes_only = was;
}

int TCSurface_object::surface_side(const TCView& view) const {
  TCVector camera;
  point_to_object(view.position, camera);
  const double under = lattice->height_at(camera.x, camera.y, 0) - lattice->z_offset;
  return camera.z > under ? 1 : -1;
}

int TCSurface_object::surface_in_view(const TCView& view, int side) const {
  TCVector camera;
  point_to_object(view.position, camera);
  // Zenith angles of the window's edge rays in the object frame; the
  // window's own axes are straight on the plane, so its edges bound them
  // unless it holds the point straight up or down.
  const int steps_a = view.n_cols > 1 ? view.n_cols : 1;
  const int steps_e = view.n_rows > 1 ? view.n_rows : 1;
  double lowest = 1.0, highest = -1.0;  // of the rays' z
  for (int k = 0; k <= steps_a; k++) {
    for (int edge = 0; edge < 2; edge++) {
      TCRay ray;
      view.plane_ray(edge ? view.last_elevation : view.first_elevation,
                     view.first_azimuth + (view.last_azimuth - view.first_azimuth) * k / steps_a,
                     ray);
      TCVector d;
      direction_to_object(TCVector(ray[3], ray[4], ray[5]), d);
      if (d.z < lowest) lowest = d.z;
      if (d.z > highest) highest = d.z;
    }
  }
  for (int k = 0; k <= steps_e; k++) {
    for (int edge = 0; edge < 2; edge++) {
      TCRay ray;
      view.plane_ray(
          view.first_elevation + (view.last_elevation - view.first_elevation) * k / steps_e,
          edge ? view.last_azimuth : view.first_azimuth, ray);
      TCVector d;
      direction_to_object(TCVector(ray[3], ray[4], ray[5]), d);
      if (d.z < lowest) lowest = d.z;
      if (d.z > highest) highest = d.z;
    }
  }
  for (int sign = -1; sign <= 1; sign += 2) {
    TCVector axis, in_view;
    direction_to_world(TCVector(0.0, 0.0, sign), axis);
    in_view = view.world_to_view.times(axis);
    if (!(in_view.z > 0.0)) continue;
    const double e = -in_view.x / in_view.z, a = -in_view.y / in_view.z;
    const int inside_e = (e - view.first_elevation) * (e - view.last_elevation) <= 0.0;
    const int inside_a = (a - view.first_azimuth) * (a - view.last_azimuth) <= 0.0;
    if (inside_e && inside_a) {
      if (sign < 0) lowest = -1.0;
      if (sign > 0) highest = 1.0;
    }
  }
  float low = 0.0f, high = 0.0f;
  lattice->height_range(low, high);
  // From above, nothing to draw when even the lowest ray looks up (its
  // zenith angle is at most a right angle); from below, when even the
  // highest looks down.
  const double lowest_ray_zenith = std::acos(lowest < -1.0 ? -1.0 : lowest);
  const double highest_ray_zenith = std::acos(highest > 1.0 ? 1.0 : highest);
  if (side > 0 && camera.z > high && lowest_ray_zenith <= 1.57079632675) return 0;
  if (side < 0 && camera.z < low && highest_ray_zenith >= 1.57079632675) return 0;
  return 1;
}

int TCSurface_object::sampler_points(const TCView& view) const {
  const int longer = view.whole_n_cols > view.whole_n_rows ? view.whole_n_cols : view.whole_n_rows;
  // A ring of the lattice holds at most 8 nodes per step of its half side;
  // with doubling, half sides stay near the doubling size.
  long long half_side = lattice->doubling_on ? lattice->doubling_size + 4 : lattice->last_index + 4;
  if (!lattice->doubling_on || !lattice->periodic_x || !lattice->periodic_y) {
    const long long n = lattice->n_x > lattice->n_y ? lattice->n_x : lattice->n_y;
    if (n + 4 > half_side) half_side = n + 4;
  }
  long long points = 2LL * longer + 16;
  if (4 * half_side + 16 > points) points = 4 * half_side + 16;
  const long long most = 1LL << 22;
  return static_cast<int>(points < most ? points : most);
}

void TCSurface_object::image_surface(TCView& view, object_contour& contour) {
  if (lattice == nullptr || contour.spectrum == nullptr) return;
  const int side = surface_side(view);
  if (!surface_in_view(view, side)) return;
  if (side < 0 && underwater_plane) {
    image_below_plane(view, contour);
    return;
  }
  Slice slice(lattice, sampler_points(view), this, side, view);
  slice.run(view, contour);
}

void TCSurface_object::image_mattes(TCView& view, object_contour& contour) {
  if (lattice == nullptr || contour.spectrum == nullptr) return;
  const int side = surface_side(view);
  if (!surface_in_view(view, side)) return;
  if (side < 0 && underwater_plane) {
    mattes_only = 1;
    image_below_plane(view, contour);
    mattes_only = 0;
    return;
  }
  // The horizon band goes through its own slot: the flag covers it too.
  mattes_only = 1;
  Slice slice(lattice, sampler_points(view), this, side, view);
  slice.run_mattes(view, contour);
  mattes_only = 0;
}

void TCSurface_object::image_below_plane(TCView& view, object_contour& contour) {
  TCVector camera;
  point_to_object(view.position, camera);
  // The plane through the water over the camera stands for the surface.
  const double level = lattice->height_at(camera.x, camera.y, 0) - lattice->z_offset;
  double* sample = new double[contour.spectrum->n > 0 ? contour.spectrum->n : 1];
  TCMatte_sample matte;
  matte.attach(object_id, contour.matte_target);
  matte_fields = matte.on ? contour.matte_target : nullptr;
  for (int row = 0; row < view.n_rows; row++) {
    for (int col = 0; col < view.n_cols; col++) {
      const int whole_row = row + view.whole_first_row, whole_col = col + view.whole_first_col;
      TCRay ray;
      view.plane_ray(view.whole_first_elevation + (whole_row + 0.5) * view.whole_pixel_height(),
                     view.whole_first_azimuth + (whole_col + 0.5) * view.whole_pixel_width(), ray);
      TCRay local;
      ray_to_object(ray, local);
      // Only rays that rise meet the surface overhead: on that plane, where
      // the lattice gives the height and the slope.
      if (!(local[5] > 0.0)) continue;
      const double t = (level - camera.z) / local[5];
      if (!(t > 0.0)) continue;
      const double x = camera.x + t * local[3], y = camera.y + t * local[4];
      const double z = lattice->height_at(x, y, 0) - lattice->z_offset;
      if (!(z > no_surface)) continue;
      const TCVector point(x, y, z);
      const TCVector gap = point - camera;
      const double distance = std::sqrt(gap.dot(gap));
      const double squared = gap.dot(gap);
      if (!contour.pixel_wanted(row, col, squared, squared)) continue;
      const double xs[1] = {x}, ys[1] = {y};
      shade_piece(view, contour, matte, sample, whole_row, whole_col, point, 1.0, squared, distance,
                  squared, 1, xs, ys, -1);
    }
  }
  matte_fields = nullptr;
  delete[] sample;
}
