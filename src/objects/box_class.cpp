#include "box_class.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCConstants.h"
#include "TCObject_list.h"
#include "TCPolygon.h"
#include "TCSettings.h"
#include "TCStar.h"
#include "box_input.h"
#include "object_contour.h"

namespace {

// Below this a direction component runs along a face (unit directions).
const double parallel_limit = 1e-07;
// Nearest hit accepted, metres, so a ray leaving a face does not meet it.
const double min_hit = 1e-05;
const double min_far_hit = 0.0001;
// Faces are hit a little beyond their edges, so rays through an edge or a
// corner are not lost between two faces.
const double hit_margin = 1.00001;
const double far_hit_margin = 1.0001;
// The inside is short of the faces by this fraction of each half length.
const double inside_margin = 0.0001;
// Moved corners land this much beyond the view plane.
const double beyond_view_plane = 1.0001;

const float far_of_nothing = 1e+16f;

// Pixels per unit of the image plane, and the ray through a point given in
// image coordinates (x columns, y rows).
double row_scale(const TCView& view) {
  return view.n_rows / (view.last_elevation - view.first_elevation);
}
double col_scale(const TCView& view) {
  return view.n_cols / (view.last_azimuth - view.first_azimuth);
}
void image_ray(const TCView& view, double x, double y, TCRay& ray) {
  const double e = view.first_elevation + y / row_scale(view);
  const double a = view.first_azimuth + x / col_scale(view);
  view.plane_ray(e, a, ray);
}

// A floored coordinate as a pixel index within lo..hi; NaN goes to lo.
int pixel_index(double v, int lo, int hi) {
  const double f = std::floor(v);
  if (!(f > lo)) return lo;
  if (f >= hi) return hi;
  return static_cast<int>(f);
}

// A corner behind the view plane moved along its edge towards a corner in
// front, to just beyond the plane. A corner on the plane is nudged the same
// small step along the edge, since the factor alone would leave it there.
TCVector moved_towards(const TCVector& behind, const TCVector& front) {
  double t = (-behind.z / (front.z - behind.z)) * beyond_view_plane;
  if (t > 1.0) t = 1.0;
  if (behind.z == 0.0) t = beyond_view_plane - 1.0;
  return TCVector(behind.x + t * (front.x - behind.x), behind.y + t * (front.y - behind.y),
                  behind.z + t * (front.z - behind.z));
}

}  // namespace

box_class::box_class(const box_input& input)
    : TCObject(input), length(input.length), lit_face(0), face_turned(0) {}

box_class::~box_class() {}

void box_class::print_dimensions() {
  std::cout << "Dimensions:  " << length.x << " " << length.y << " " << length.z << "\n";
}

double box_class::ray_measure(TCRay ray) {
  TCVector a;
  direction_to_object(ray.origin(), a);
  return a.dot(position) -
         (std::fabs(length.x * a.x) + std::fabs(length.y * a.y) + std::fabs(length.z * a.z)) / 2;
}

int box_class::point_inside(const TCVector& point) {
  for (int axis = 0; axis < 3; axis++) {
    const double bound = (length[axis] / 2) * (1 - inside_margin);
    if (!(-bound <= point[axis] && point[axis] <= bound)) return 0;
  }
  return 1;
}

int box_class::intersect(const TCRay& ray, TCVector& hit, double& distance) {
  return box_intersect(ray, hit, distance);
}

int box_class::box_intersect(const TCRay& ray, TCVector& hit, double& distance) {
  const TCVector origin = ray.origin();
  // The box's own test: a kind whose inside is not the whole box (the sea
  // is only its water) still enters the box where the ray starts.
  if (box_class::point_inside(origin)) {
    hit = origin;
    distance = 0.0;
    return 1;
  }
  // Face 2a is the plane at +L/2 on axis a, face 2a + 1 the one at -L/2.
  double t[6];
  for (int a = 0; a < 3; a++) {
    const double d = ray[3 + a];
    if (std::fabs(d) >= parallel_limit) {
      t[2 * a] = -(ray[a] - length[a] / 2) / d;
      t[2 * a + 1] = -(length[a] / 2 + ray[a]) / d;
    } else {
      t[2 * a] = -1.0;
      t[2 * a + 1] = -1.0;
    }
  }
  int face = -1;
  distance = -1.0;
  for (int k = 0; k < 6; k++) {
    if (!(t[k] >= min_hit)) continue;
    int within = 1;
    for (int a = 0; a < 3 && within; a++) {
      const double p = ray[a] + t[k] * ray[3 + a];
      within = -(length[a] / 2) * hit_margin <= p && p <= (length[a] / 2) * hit_margin;
    }
    if (!within) continue;
    if (face < 0 || t[k] < distance) {
      face = k;
      distance = t[k];
    }
  }
  if (face < 0) {
    hit = origin;
    return 0;
  }
  hit =
      TCVector(ray[0] + distance * ray[3], ray[1] + distance * ray[4], ray[2] + distance * ray[5]);
  return face + 1;
}

int box_class::far_intersect(const TCRay& ray, TCVector& hit, double& distance) {
  double t[6];
  for (int a = 0; a < 3; a++) {
    const double d = ray[3 + a];
    if (std::fabs(d) >= parallel_limit) {
      t[2 * a] = -(ray[a] - length[a] / 2) / d;
      t[2 * a + 1] = -(length[a] / 2 + ray[a]) / d;
    } else {
      t[2 * a] = -1.0;
      t[2 * a + 1] = -1.0;
    }
  }
  int face = -1;
  distance = -1.0;
  for (int k = 0; k < 6; k++) {
    if (!(t[k] >= min_far_hit)) continue;
    int within = 1;
    for (int a = 0; a < 3 && within; a++) {
      const double p = ray[a] + t[k] * ray[3 + a];
      within = -(length[a] / 2) * far_hit_margin <= p && p <= (length[a] / 2) * far_hit_margin;
    }
    if (!within) continue;
    if (face < 0 || t[k] > distance) {
      face = k;
      distance = t[k];
    }
  }
  if (face < 0) {
    hit = ray.origin();
    return 0;
  }
  hit =
      TCVector(ray[0] + distance * ray[3], ray[1] + distance * ray[4], ray[2] + distance * ray[5]);
  return face + 1;
}

void box_class::surface_radiance(const TCRay&, TCSpectrum&, TCView&) {}

TCStar* box_class::scene_sun() const {
  if (list == nullptr || list->sun == nullptr || !list->sun->present) return nullptr;
  return list->sun;
}

void box_class::image_contour(TCView& view, object_contour& contour) {
  if (contour.spectrum == nullptr) return;
  TCSpectrum sample(*contour.spectrum);
  if (point_inside_world(view.position)) {
    fill_from_inside(view, contour, sample);
    return;
  }
  if (view.n_rows < 1 || view.n_cols < 1 || !(view.last_elevation != view.first_elevation) ||
      !(view.last_azimuth != view.first_azimuth))
    return;

  // The light's direction of travel in the box's frame.
  const TCStar* sun = scene_sun();
  TCVector s;
  if (sun != nullptr) {
    const double e = sun->zenith;
    const double a = sun->azimuth;
    direction_to_object(TCVector(std::sin(e) * std::cos(a), std::sin(e) * std::sin(a), std::cos(e)),
                        s);
  }

  TCView local;
  view_in_object_frame(view, local);
  const double rows_per_elevation = row_scale(local);
  const double cols_per_azimuth = col_scale(local);

  // The faces the view sees, each as a ring in image coordinates.
  Face_ring faces[3];
  int n_faces = 0;
  for (int i = 0; i < 3; i++) {
    const double c = local.position[i];
    if (-length[i] / 2 <= c && c <= length[i] / 2) continue;
    const int sign = c <= 0 ? -1 : 1;

    // Corners in ring order around the face, in view coordinates.
    TCVector corner[4];
    for (int index = 0; index < 4; index++) {
      const int a = index < 2 ? 1 : -1;
      const int b = index % 2 == 0 ? 1 : -1;
      const int u = c <= 0 ? a : a * b;
      const int v = c <= 0 ? a * b : a;
      TCVector p;
      p[i] = sign * length[i] / 2;
      p[(i + 1) % 3] = sign * length[(i + 1) % 3] / 2 * u;
      p[(i + 2) % 3] = sign * length[(i + 2) % 3] / 2 * v;
      local.point_to_view(p, corner[index]);
    }

    // Clip against the view plane: a corner behind moves along each edge to
    // a neighbour in front, or along the diagonal when only the opposite
    // corner is in front.
    int behind = 0;
    for (int k = 0; k < 4; k++) behind += corner[k].z <= 0.0;
    if (behind == 4) continue;
    TCVector kept[5];
    int n_kept = 0;
    for (int k = 0; k < 4; k++) {
      const TCVector& here = corner[k];
      if (here.z > 0.0) {
        kept[n_kept++] = here;
        continue;
      }
      const TCVector& previous = corner[(k + 3) % 4];
      const TCVector& next = corner[(k + 1) % 4];
      const int previous_front = previous.z > 0.0;
      const int next_front = next.z > 0.0;
      if (previous_front) kept[n_kept++] = moved_towards(here, previous);
      if (next_front) kept[n_kept++] = moved_towards(here, next);
      if (!previous_front && !next_front) kept[n_kept++] = moved_towards(here, corner[(k + 2) % 4]);
    }
    if (n_kept < 3) continue;

    Face_ring& face = faces[n_faces++];
    face.axis = i;
    face.sign = sign;
    face.turned = sun != nullptr ? (sign * s[i] > 0 ? 1 : 0) : 1;
    for (int k = 0; k < n_kept; k++) {
      const double e = -kept[k].x / kept[k].z;
      const double a = -kept[k].y / kept[k].z;
      face.ring.add_vertex((a - local.first_azimuth) * cols_per_azimuth,
                           (e - local.first_elevation) * rows_per_elevation);
    }
  }
  if (n_faces > 0) scan_faces(faces, n_faces, view, local, contour, sample);
  lit_face = 0;
}

// The visible faces of a box never overlap on the image plane and meet
// along shared edges, so inside one pixel their pieces add up: the box
// covers the pixel by the sum of their areas, as one surface. Combining
// them as separate layers would darken every edge between two faces.
void box_class::scan_faces(Face_ring* faces, int n_faces, TCView& view, const TCView& local,
                           object_contour& contour, TCSpectrum& sample) {
  const int n_rows = view.n_rows < contour.n_rows ? view.n_rows : contour.n_rows;
  const int n_cols = view.n_cols < contour.n_cols ? view.n_cols : contour.n_cols;
  if (n_rows < 1 || n_cols < 1) return;

  // Each face's pixel window; the box's is their union.
  int used = 0;
  int row_lo = n_rows, row_hi = -1, col_lo = n_cols, col_hi = -1;
  for (int f = 0; f < n_faces; f++) {
    Face_ring& face = faces[f];
    face.in_view = 0;
    double x0, x1, y0, y1;
    face.ring.bounds(x0, x1, y0, y1);
    // A face of lengths or a view that are not finite paints nothing.
    if (!std::isfinite(x0) || !std::isfinite(x1) || !std::isfinite(y0) || !std::isfinite(y1))
      continue;
    if (x1 < 0.0 || y1 < 0.0 || x0 > n_cols || y0 > n_rows) continue;
    face.row0 = pixel_index(y0, 0, n_rows - 1);
    face.row1 = pixel_index(y1, 0, n_rows - 1);
    face.col0 = pixel_index(x0, 0, n_cols - 1);
    face.col1 = pixel_index(x1, 0, n_cols - 1);
    face.in_view = 1;
    used++;
    if (face.row0 < row_lo) row_lo = face.row0;
    if (face.row1 > row_hi) row_hi = face.row1;
    if (face.col0 < col_lo) col_lo = face.col0;
    if (face.col1 > col_hi) col_hi = face.col1;
  }
  if (used == 0) return;

  const int n_bands = sample.n;
  double* radiance = new (std::nothrow) double[n_bands > 0 ? n_bands : 1];
  if (radiance == nullptr) {
    std::cout << "unable to allocate memory for imaging\n";
    std::exit(1);
  }
  TCPolygon piece[3];
  double area[3];
  int has_piece[3];
  for (int row = row_lo; row <= row_hi; row++) {
    for (int col = col_lo; col <= col_hi; col++) {
      double coverage = 0.0;
      float near = 0.0f, mid = 0.0f, far = 0.0f;
      int n_pieces = 0;
      for (int f = 0; f < n_faces; f++) {
        Face_ring& face = faces[f];
        area[f] = 0.0;
        has_piece[f] = 0;
        if (!face.in_view || row < face.row0 || row > face.row1 || col < face.col0 ||
            col > face.col1)
          continue;
        face.ring.clip_to_rectangle(col, col + 1, row, row + 1, piece[f]);
        if (piece[f].size() < 3) continue;
        area[f] = piece[f].area();
        has_piece[f] = 1;
        // Kept from pixel to pixel: a piece with no usable ray leaves them
        // as they were.
        distance_to_face(face.axis, face.sign, local, piece[f], face.near, face.mid, face.far);
        // The box stands at the distance of its nearest piece here, and
        // reaches over all of them.
        if (n_pieces == 0 || face.mid < mid) mid = face.mid;
        if (n_pieces == 0 || face.near < near) near = face.near;
        if (n_pieces == 0 || face.far > far) far = face.far;
        coverage += area[f];
        n_pieces++;
      }
      if (n_pieces == 0) continue;
      if (coverage > 1.0) coverage = 1.0;
      if (!contour.pixel_wanted(row, col, near, far)) continue;

      for (int b = 0; b < n_bands; b++) radiance[b] = 0.0;
      for (int f = 0; f < n_faces; f++) {
        if (!has_piece[f]) continue;
        face_turned = faces[f].turned;
        lit_face = 1;
        double cx, cy;
        piece[f].centroid(cx, cy);
        const double e = view.first_elevation + cy / row_scale(view);
        const double a = view.first_azimuth + cx / col_scale(view);
        TCRay ray;
        view.plane_ray(e, a, ray);
        // The pixel's own view, centred on the piece.
        TCView sub_view;
        sub_view.copy(view);
        sub_view.set_grid(1, e - view.step_elevation / 2, e + view.step_elevation / 2, 1,
                          a - view.step_azimuth / 2, a + view.step_azimuth / 2);
        surface_radiance(ray, sample, sub_view);
        for (int b = 0; b < n_bands; b++) radiance[b] += sample.radiance_in_band[b] * area[f];
      }
      contour.add_sample(row, col, radiance, near, mid, far, coverage, object_id, nullptr);
    }
  }
  delete[] radiance;
}

void box_class::fill_from_inside(TCView& view, object_contour& contour, TCSpectrum& sample) {
  const int n_rows = view.n_rows < contour.n_rows ? view.n_rows : contour.n_rows;
  const int n_cols = view.n_cols < contour.n_cols ? view.n_cols : contour.n_cols;
  const int n_bands = sample.n;
  for (int row = 0; row < n_rows; row++) {
    for (int col = 0; col < n_cols; col++) {
      TCRay ray;
      view.pixel_ray(row, col, ray);
      TCView sub_view;
      view.pixel_view(row, col, sub_view);
      surface_radiance(ray, sample, sub_view);
      for (int b = 0; b < n_bands; b++)
        contour.layer_radiance[b][row][col] = static_cast<float>(sample.radiance_in_band[b]);
      contour.layer_coverage[row][col] = 1.0f;
      contour.layer_distance[row][col] = 0.0f;
      if (contour.anti_alias) contour.layer_near[row][col] = 0.0f;
    }
  }
}

void box_class::distance_to_face(int axis, int sign, const TCView& view, const TCPolygon& polygon,
                                 float& near, float& mid, float& far) {
  const double face = sign * length[axis] / 2;
  double s1 = tc_nothing;
  double s2 = -1.0;

  double cx, cy;
  polygon.centroid(cx, cy);
  TCRay ray;
  image_ray(view, cx, cy, ray);
  if (std::fabs(ray[3 + axis]) <= parallel_limit) {
    mid = -1.0f;
  } else {
    const double t = -(ray[axis] - face) / ray[3 + axis];
    mid = static_cast<float>(t * t);
    s1 = t;
  }

  // A vertex whose ray runs along the face has no distance and is passed
  // over.
  for (int k = 0; k < polygon.size(); k++) {
    TCRay corner_ray;
    image_ray(view, polygon.x[k], polygon.y[k], corner_ray);
    if (!(std::fabs(corner_ray[3 + axis]) > parallel_limit)) continue;
    const double t = -(corner_ray[axis] - face) / corner_ray[3 + axis];
    if (view.anti_alias == 0) {
      // Asked and not used.
      TCVector hit;
      double distance = 0.0;
      intersect(corner_ray, hit, distance);
    }
    if (t < s1) s1 = t;
    if (t > s2) s2 = t;
  }

  if (mid == -1.0f) {
    if (s1 == tc_nothing || s2 == -1.0) {
      if (verbose) std::cout << "Error in box_class::distance_to_face: s2 = -1\n";
      far = far_of_nothing;
      return;
    }
    // A plain distance, not squared like the others.
    mid = static_cast<float>((s1 + s2) * 0.5);
  }
  near = static_cast<float>(s1 * s1);
  far = static_cast<float>(s2 * s2);
}
