// Shading the surface's triangles on the image: each pixel takes the piece of
// the triangle's visible part that falls in it, with exact coverage.
#include <cmath>

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

// The whole pixels the visible polygon touches, clamped to the image: 0 when
// it lies wholly outside.
int pixel_window(const TCView& view, const TCPolygon& visible, int& row0, int& row1, int& col0,
                 int& col1) {
  double x0, x1, y0, y1;
  visible.bounds(x0, x1, y0, y1);
  if (x1 < 0.0 || y1 < 0.0 || x0 >= view.n_cols || y0 >= view.n_rows) return 0;
  col0 = x0 < 0.0 ? 0 : static_cast<int>(std::floor(x0));
  row0 = y0 < 0.0 ? 0 : static_cast<int>(std::floor(y0));
  col1 = x1 >= view.n_cols ? view.n_cols - 1 : static_cast<int>(std::floor(x1));
  row1 = y1 >= view.n_rows ? view.n_rows - 1 : static_cast<int>(std::floor(y1));
  return 1;
}

// Plane units a pixel spans across, and up.
double pixel_width(const TCView& view) {
  return (view.last_azimuth - view.first_azimuth) / view.n_cols;
}
double pixel_height(const TCView& view) {
  return (view.last_elevation - view.first_elevation) / view.n_rows;
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
    matte.set_distance(distance);
  }
  set_pixel_polygon(corners, xs, ys);
  TCVector in_box = point - box_centre;
  in_box.z += lattice->z_offset;
  TCSpectrum& spectrum = *contour.spectrum;
  surface_radiance(TCRay(view.position, direction), in_box, normal, spectrum, side,
                   matte.on ? matte.values : nullptr,
                   distance * (pixel_width(view) + pixel_height(view)) * 0.25);
  for (int b = 0; b < spectrum.n; b++) sample[b] = spectrum.radiance_in_band[b] * area;
  contour.add_sample(row, col, sample, near, distance, far, area, object_id,
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
      const double near = std::sqrt(nearest), far = std::sqrt(farthest);
      const double distance = std::sqrt(gap.dot(gap));
      if (!contour.pixel_wanted(row, col, near, far)) continue;
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
      view.plane_ray(view.first_elevation + cy * pixel_height(view),
                     view.first_azimuth + cx * pixel_width(view), ray);
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
      if (!contour.pixel_wanted(row, col, distance, distance)) continue;
      const double xs[1] = {x}, ys[1] = {y};
      shade_piece(view, contour, matte, sample, row, col, point, area, distance, distance, distance,
                  1, xs, ys, side);
    }
  }
  matte_fields = nullptr;
  delete[] sample;
}
