#include "TCPoly_object.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

#include "Poly_mesh.h"
#include "TCObj_file.h"
#include "TCPolygon.h"
#include "TCSpectrum.h"
#include "TCTexture_plane.h"
#include "TCView.h"
#include "object_contour.h"

namespace {

// Corners nearer the camera plane than this (metres) are clipped away.
const double near_limit = 1e-4;
// Relative slack when two pieces' depth ranges are taken to touch.
const double touching = 1e-6;
// A flat mesh still gets a box of some thickness.
const double least_length = 1e-3;

void fail(const char* what) {
  std::cerr << what;
  std::exit(1);
}

// The part of a ring of view-frame points in front of the near limit.
int clip_near(const TCVector* in, int n, TCVector* out) {
  int m = 0;
  for (int k = 0; k < n; k++) {
    const TCVector& a = in[k];
    const TCVector& b = in[(k + 1) % n];
    const int a_in = a.z >= near_limit, b_in = b.z >= near_limit;
    if (a_in) out[m++] = a;
    if (a_in != b_in) {
      const double f = (near_limit - a.z) / (b.z - a.z);
      out[m++] = a + (b - a) * f;
    }
  }
  return m;
}

}  // namespace

TCPoly_object::TCPoly_object(const TCPoly_object_input& input)
    : box_class(input),
      image_flag(input.image_flag),
      image_level(input.image_level),
      n_surfaces(0),
      surfaces(nullptr),
      has_order(0),
      order(nullptr),
      n_points(0),
      points(nullptr),
      buffer_rows(0),
      buffer_cols(0),
      cover(nullptr),
      red(nullptr),
      green(nullptr),
      blue(nullptr),
      nearest(nullptr),
      farthest(nullptr),
      middle(nullptr) {
  if (input.object_file_type == 2)
    load_obj(input);
  else
    load_poly_surfaces(input);
  set_order(input);
  fit_box();
}

TCPoly_object::~TCPoly_object() {
  for (int s = 0; s < n_surfaces; s++) {
    delete[] surfaces[s].polygons;
    delete surfaces[s].texture;
  }
  delete[] surfaces;
  delete[] order;
  delete[] points;
  free_buffers();
}

void TCPoly_object::free_buffers() {
  delete[] cover;
  delete[] red;
  delete[] green;
  delete[] blue;
  delete[] nearest;
  delete[] farthest;
  delete[] middle;
  cover = red = green = blue = nearest = farthest = middle = nullptr;
}

TCTexture_plane* TCPoly_object::load_texture(const char* file) {
  // The picture over the unit square of texture coordinates, repeating,
  // its bytes read as 0 to 1.
  const double low[3] = {0.0, 0.0, 0.0}, high[3] = {1.0, 1.0, 1.0};
  TCTexture_plane* plane = new (std::nothrow) TCTexture_plane(1.0, 1.0, 3, low, high, 1, 1, 1);
  if (plane == nullptr) fail("Error allocating textureMap\n");
  if (!plane->load_picture(file, 1, 0, 0, 0, 0)) {
    std::cerr << "Error allocating and filling texture map\n";
    delete plane;
    return nullptr;
  }
  return plane;
}

void TCPoly_object::load_poly_surfaces(const TCPoly_object_input& input) {
  const int count = input.n_surfaces;
  if (count <= 0) return;
  Poly_mesh** meshes = new (std::nothrow) Poly_mesh*[count];
  surfaces = new (std::nothrow) Poly_surface[count];
  if (meshes == nullptr || surfaces == nullptr)
    fail("Error allocating surfaces array in TCPoly_object\n");
  long long total = 0;
  for (int s = 0; s < count; s++) {
    const Poly_surface_input& in = input.surfaces[s];
    if (in.surface_file_type != 1) fail("Invalid polygon file type.\n");
    if (in.shading_model != 1 && in.shading_model != 4) fail("Invalid polygon shading model.\n");
    std::FILE* file = poly_open_read(in.surface_file);
    meshes[s] = file != nullptr ? poly_read(file) : nullptr;
    if (file != nullptr && file != stdin) std::fclose(file);
    if (meshes[s] == nullptr) {
      std::cerr << "Error reading in prisms file: " << in.surface_file << "\n";
      std::exit(1);
    }
    total += meshes[s]->n_points;
  }
  points = new (std::nothrow) Poly_point_record[total > 0 ? total : 1];
  if (points == nullptr) fail("Error allocating surfacePointList array in setSurface()\n");
  n_surfaces = count;
  int base = 0;
  for (int s = 0; s < count; s++) {
    const Poly_surface_input& in = input.surfaces[s];
    Poly_surface& surface = surfaces[s];
    surface.imaging = 1;
    surface.shading_model = in.shading_model;
    for (int b = 0; b < 3; b++) {
      surface.colour[b] = in.surface_color[b];
      surface.scale[b] = in.surface_scale[b];
    }
    surface.u_scale = surface.v_scale = 1.0;
    std::snprintf(surface.texture_file, sizeof(surface.texture_file), "%s", in.texture_file);
    surface.texture = in.shading_model == 1 ? load_texture(in.texture_file) : nullptr;
    const Poly_mesh* mesh = meshes[s];
    const Poly_point* point = mesh->points;
    for (int k = 0; k < mesh->n_points && point != nullptr; k++, point = point->next) {
      Poly_point_record& r = points[base + k];
      r.p = TCVector(point->x * input.scale_x, point->y * input.scale_y, point->z * input.scale_z);
      r.has_texture = point->has_uv;
      r.u = point->u;
      r.v = point->v;
      r.has_normal = point->has_normal;
      r.n = TCVector(point->nx, point->ny, point->nz);
    }
    surface.n_polygons = mesh->n_polys;
    surface.polygons = new (std::nothrow) TCPoly_Polygon[mesh->n_polys > 0 ? mesh->n_polys : 1];
    if (surface.polygons == nullptr) fail("Error allocating polygons in setSurfaces\n");
    const Poly_polygon* poly = mesh->polys;
    for (int k = 0; k < mesh->n_polys && poly != nullptr; k++, poly = poly->next) {
      int corners[TCPoly_Polygon::most_corners];
      const int n = poly->n_ids;
      if (n > TCPoly_Polygon::most_corners) {
        std::cerr << "Error initializing linked list! Too many vertices: " << n << std::endl;
        std::exit(1);
      }
      for (int c = 0; c < n; c++) corners[c] = base + poly->ids[c] - 1;
      Poly_source source = {TCPoly_Polygon::colour_set,
                            {in.surface_color[0], in.surface_color[1], in.surface_color[2], 1.0},
                            n,
                            corners};
      surface.polygons[k].setPolygon(source, points, static_cast<int>(total), k, in.shading_model);
      if (in.shading_model == 1 && surface.texture == nullptr &&
          surface.polygons[k].flags != TCPoly_Polygon::not_imaged) {
        std::cerr << "Error setting polygon #" << k << ": poly texture not set\n";
      }
    }
    base += mesh->n_points;
  }
  n_points = static_cast<int>(total);
  for (int s = 0; s < count; s++) poly_free(meshes[s]);
  delete[] meshes;
}

void TCPoly_object::load_obj(const TCPoly_object_input& input) {
  TCObj_file obj;
  if (!obj.read(input.obj_file)) {
    std::cerr << "Error reading file - exiting program\nBye now\n";
    std::exit(1);
  }
  n_points = obj.n_points;
  points = new (std::nothrow) Poly_point_record[n_points > 0 ? n_points : 1];
  if (points == nullptr) fail("Error allocating surfacePointList array in setSurface()\n");
  for (int k = 0; k < n_points; k++) {
    Poly_point_record& r = points[k];
    r.p = TCVector(obj.x[k] * input.obj_scale[0] * input.scale_x + input.obj_offset[0],
                   obj.y[k] * input.obj_scale[1] * input.scale_y + input.obj_offset[1],
                   obj.z[k] * input.obj_scale[2] * input.scale_z + input.obj_offset[2]);
    r.has_texture = obj.has_texture[k];
    r.u = obj.u[k];
    r.v = obj.v[k];
    r.has_normal = obj.has_normal[k];
    r.n = TCVector(obj.nx[k], obj.ny[k], obj.nz[k]);
  }
  n_surfaces = obj.n_surfaces;
  surfaces = new (std::nothrow) Poly_surface[n_surfaces > 0 ? n_surfaces : 1];
  if (surfaces == nullptr) fail("Error allocating surfaces array in TCPoly_object\n");
  int* per_surface = new (std::nothrow) int[n_surfaces > 0 ? n_surfaces : 1]();
  if (per_surface == nullptr) fail("Error allocating polygons in setSurfaces\n");
  for (int f = 0; f < obj.n_faces; f++) per_surface[obj.face_surface[f]]++;
  for (int s = 0; s < n_surfaces; s++) {
    Poly_surface& surface = surfaces[s];
    surface.imaging = 1;
    std::snprintf(surface.texture_file, sizeof(surface.texture_file), "%s", obj.texture_names[s]);
    // A material whose picture is not there is drawn in grey.
    surface.texture = load_texture(surface.texture_file);
    surface.shading_model = surface.texture != nullptr ? 1 : 4;
    for (int b = 0; b < 3; b++) {
      surface.colour[b] = 0.5;
      surface.scale[b] = 1.0;
    }
    surface.u_scale = surface.v_scale = 1.0;
    surface.n_polygons = 0;
    surface.polygons = new (std::nothrow) TCPoly_Polygon[per_surface[s] > 0 ? per_surface[s] : 1];
    if (surface.polygons == nullptr) fail("Error allocating polygons in setSurfaces\n");
  }
  int corners[TCPoly_Polygon::most_corners];
  for (int f = 0; f < obj.n_faces; f++) {
    Poly_surface& surface = surfaces[obj.face_surface[f]];
    int n = obj.face_size[f];
    if (n > TCPoly_Polygon::most_corners) n = TCPoly_Polygon::most_corners;
    // Counter-clockwise from outside, as modelling tools write faces: taken
    // backwards, so that the normal points out and rays from outside meet it.
    for (int c = 0; c < n; c++) corners[c] = obj.corners[obj.face_first[f] + n - 1 - c];
    Poly_source source = {TCPoly_Polygon::colour_set, {0.5, 0.5, 0.5, 1.0}, n, corners};
    const int index = surface.n_polygons++;
    surface.polygons[index].setPolygon(source, points, n_points, index, surface.shading_model);
  }
  delete[] per_surface;
  apply_changes(input);
}

void TCPoly_object::apply_changes(const TCPoly_object_input& input) {
  if (!input.modify_surfaces) return;
  for (int k = 0; k < input.n_modified && k < TCPoly_object_input::most_changes; k++) {
    const Poly_surface_change& change = input.changes[k];
    const int s = change.surface;
    if (s < 0 || s >= n_surfaces) {
      std::cerr << "Error modifiying surface " << s << ": out of range\n";
      continue;
    }
    Poly_surface& surface = surfaces[s];
    if (change.kind == 3) {
      surface.imaging = 0;
      std::cout << "Surface[" << s << "]: NOT imaging.\n";
    } else if (change.kind == 2) {
      surface.shading_model = 4;
      for (int b = 0; b < 3; b++) surface.colour[b] = change.values[b];
      std::cout << "Surface[" << s << "]: set to color (" << change.values[0] << ", "
                << change.values[1] << ", " << change.values[2] << ")\n";
    } else if (change.kind == 1) {
      surface.u_scale = change.values[0];
      surface.v_scale = change.values[1];
      std::cout << "Surface[" << s << "]: texture rescaled by (" << change.values[0] << ", "
                << change.values[1] << ")\n";
    }
  }
}

void TCPoly_object::set_order(const TCPoly_object_input& input) {
  if (!input.has_order) return;
  if (input.n_ordered != n_surfaces || input.order == nullptr) {
    std::cerr << "Error setting up surface order! Not reordering points!\n";
    return;
  }
  int* list = new (std::nothrow) int[n_surfaces > 0 ? n_surfaces : 1];
  int* seen = new (std::nothrow) int[n_surfaces > 0 ? n_surfaces : 1]();
  if (list == nullptr || seen == nullptr) {
    std::cerr << "Error allocating surface ordering arrays.\n";
    delete[] list;
    delete[] seen;
    return;
  }
  for (int k = 0; k < n_surfaces; k++) {
    const int s = input.order[k];
    if (s < 0 || s >= n_surfaces || seen[s]) {
      std::cerr << "Error setting up surface order! Not reordering points!\n";
      delete[] list;
      delete[] seen;
      return;
    }
    seen[s] = 1;
    list[k] = s;
  }
  delete[] seen;
  std::cout << "Imaging surfaces: first\n";
  for (int k = 0; k < n_surfaces; k++) std::cout << list[k] << "\n";
  order = list;
  has_order = 1;
}

void TCPoly_object::fit_box() {
  TCVector low, high;
  for (int k = 0; k < n_points; k++) {
    for (int a = 0; a < 3; a++) {
      if (k == 0 || points[k].p[a] < low[a]) low[a] = points[k].p[a];
      if (k == 0 || points[k].p[a] > high[a]) high[a] = points[k].p[a];
    }
  }
  for (int a = 0; a < 3; a++) {
    centre[a] = 0.5 * (low[a] + high[a]);
    length[a] = high[a] - low[a];
    // A little over the points, so that the box test never cuts a polygon.
    length[a] = length[a] * 1.001 + least_length;
  }
  std::cout << "   Object size:        " << length.x << " " << length.y << " " << length.z << "\n";
  std::cout << "   Center Offset:      " << centre.x << " " << centre.y << " " << centre.z << "\n";
}

int TCPoly_object::drawn_at_level(int level) const {
  if (image_flag == 1) return 1;
  // Level 0 is the camera's own view; anything else a view off a surface.
  if (level == 0) return image_flag == 2;
  return image_flag == 3;
}

int TCPoly_object::point_inside(const TCVector& point) {
  int crossings = 0;
  const TCVector up(0.0, 0.0, 1.0);
  for (int s = 0; s < n_surfaces; s++) {
    for (int k = 0; k < surfaces[s].n_polygons; k++) {
      const TCPoly_Polygon& polygon = surfaces[s].polygons[k];
      if (polygon.flags == TCPoly_Polygon::not_imaged || polygon.normal.z == 0.0) continue;
      const double t = -(polygon.normal.dot(point) + polygon.plane_d) / polygon.normal.z;
      if (!(t > 0.0)) continue;
      if (polygon.contains(point + up * t)) crossings++;
    }
  }
  return crossings & 1;
}

int TCPoly_object::intersect(const TCRay& ray, TCVector& hit, double& distance) {
  const TCVector origin = ray.origin();
  const TCVector direction(ray[3], ray[4], ray[5]);
  TCVector box_hit;
  double box_distance = 0.0;
  TCRay shifted(origin - centre, direction);
  if (!box_intersect(shifted, box_hit, box_distance)) {
    distance = -1.0;
    return 0;
  }
  for (int s = 0; s < n_surfaces; s++) {
    for (int k = 0; k < surfaces[s].n_polygons; k++) {
      if (surfaces[s].polygons[k].intersect(origin, direction, hit, distance)) return 1;
    }
  }
  distance = -1.0;
  return 0;
}

void TCPoly_object::image_contour(TCView& view, object_contour& contour) {
  if (contour.spectrum == nullptr || !drawn_at_level(contour.level)) return;
  if (contour.spectrum->n != 3) {
    std::cout << "Sorry, polygon objects are currently set only to image 3 bands\n"
              << "Not imaging polygon\n";
    return;
  }
  image(view, contour);
}

void TCPoly_object::image_surface_line(TCView& view, object_contour& contour) {
  image_contour(view, contour);
}

void TCPoly_object::image(TCView& view, object_contour& contour) {
  if (view.n_rows < 1 || view.n_cols < 1) return;
  TCView local;
  view_in_object_frame(view, local);
  // Nothing to do when the whole box lies behind the view.
  int in_front = 0;
  for (int corner = 0; corner < 8 && !in_front; corner++) {
    TCVector p = centre;
    for (int a = 0; a < 3; a++) p[a] += ((corner >> a) & 1 ? 0.5 : -0.5) * length[a];
    TCVector v;
    local.point_to_view(p, v);
    in_front = v.z > 0.0;
  }
  if (!in_front) return;
  const long long size = static_cast<long long>(view.n_rows) * view.n_cols;
  if (view.n_rows != buffer_rows || view.n_cols != buffer_cols) {
    free_buffers();
    cover = new (std::nothrow) float[size];
    red = new (std::nothrow) float[size];
    green = new (std::nothrow) float[size];
    blue = new (std::nothrow) float[size];
    nearest = new (std::nothrow) float[size];
    farthest = new (std::nothrow) float[size];
    middle = new (std::nothrow) float[size];
    if (!cover || !red || !green || !blue || !nearest || !farthest || !middle)
      fail("Error allocating polygon memory!\n");
    buffer_rows = view.n_rows;
    buffer_cols = view.n_cols;
  }
  for (long long k = 0; k < size; k++) cover[k] = red[k] = green[k] = blue[k] = 0.0f;
  for (int i = 0; i < n_surfaces; i++) {
    const Poly_surface& surface = surfaces[has_order ? order[i] : i];
    if (!surface.imaging) continue;
    for (int k = 0; k < surface.n_polygons; k++)
      image_polygon(local, view, surface, surface.polygons[k]);
  }
  for (int row = 0; row < view.n_rows; row++) {
    for (int col = 0; col < view.n_cols; col++) {
      const long long k = static_cast<long long>(row) * view.n_cols + col;
      if (!(cover[k] > 0.0f)) continue;
      if (!contour.pixel_wanted(row, col, nearest[k], farthest[k])) continue;
      const double radiance[3] = {red[k], green[k], blue[k]};
      contour.add_sample(row, col, radiance, nearest[k], middle[k], farthest[k], cover[k],
                         object_id, nullptr);
    }
  }
}

void TCPoly_object::image_polygon(const TCView& local, const TCView& view,
                                  const Poly_surface& surface, const TCPoly_Polygon& polygon) {
  if (polygon.flags == TCPoly_Polygon::not_imaged || polygon.n_vertices < 3) return;
  // A camera sees what its rays would meet: a polygon from its front only.
  if (!(polygon.normal.dot(local.position - polygon.vertices[0].point->p) > 0.0)) return;
  TCVector in_view[TCPoly_Polygon::most_corners];
  TCVector kept[2 * TCPoly_Polygon::most_corners];
  int behind = 0;
  for (int k = 0; k < polygon.n_vertices; k++) {
    local.point_to_view(polygon.vertices[k].point->p, in_view[k]);
    behind += in_view[k].z < near_limit;
  }
  if (behind == polygon.n_vertices) return;
  int n = polygon.n_vertices;
  const TCVector* ring = in_view;
  if (behind > 0) {
    n = clip_near(in_view, polygon.n_vertices, kept);
    ring = kept;
    if (n < 3) return;
  }
  // Whole-picture pixel coordinates, so that a strip of a sliced picture
  // works out each pixel as the whole does.
  const double pixel_a = view.whole_pixel_width();
  const double pixel_e = view.whole_pixel_height();
  TCPolygon outline;
  for (int k = 0; k < n; k++) {
    const double e = -ring[k].x / ring[k].z, a = -ring[k].y / ring[k].z;
    outline.add_vertex((a - view.whole_first_azimuth) / pixel_a,
                       (e - view.whole_first_elevation) / pixel_e);
  }
  double x0, x1, y0, y1;
  outline.bounds(x0, x1, y0, y1);
  int row0 = 0, row1 = 0, col0 = 0, col1 = 0;
  if (!view.whole_window(x0, x1, y0, y1, row0, row1, col0, col1)) return;
  const int first_col = view.whole_first_col, first_row = view.whole_first_row;
  TCPolygon piece;
  for (int row = row0; row <= row1; row++) {
    for (int col = col0; col <= col1; col++) {
      outline.clip_to_rectangle(col, col + 1.0, row, row + 1.0, piece);
      if (piece.size() < 3) continue;
      const double area = piece.area();
      if (!(area > 0.0)) continue;
      // Depths along the rays through the piece's corners and centroid, to
      // the polygon's plane (squared, as the contour keeps them).
      double near_sq = 0.0, far_sq = 0.0, mid_sq = 0.0;
      int usable = 0;
      TCVector centroid_point;
      for (int k = -1; k < piece.size(); k++) {
        double px = 0.0, py = 0.0;
        if (k < 0)
          piece.centroid(px, py);
        else {
          px = piece.x[k];
          py = piece.y[k];
        }
        TCRay ray;
        local.plane_ray(view.whole_first_elevation + py * pixel_e,
                        view.whole_first_azimuth + px * pixel_a, ray);
        const TCVector o = ray.origin(), d(ray[3], ray[4], ray[5]);
        const double dn = polygon.normal.dot(d);
        if (dn == 0.0) continue;
        const double t = -(polygon.normal.dot(o) + polygon.plane_d) / dn;
        const double t2 = t * t;
        if (k < 0) {
          mid_sq = t2;
          centroid_point = o + d * t;
        }
        if (usable == 0 || t2 < near_sq) near_sq = t2;
        if (usable == 0 || t2 > far_sq) far_sq = t2;
        usable++;
      }
      if (usable == 0) continue;
      if (!(mid_sq > 0.0)) mid_sq = 0.5 * (near_sq + far_sq);
      double colour[3];
      if (surface.shading_model == 1 && surface.texture != nullptr) {
        double u = 0.0, v = 0.0;
        polygon.texture_at(centroid_point, u, v);
        surface.texture->sample_point(colour, u * surface.u_scale - 0.5, v * surface.v_scale - 0.5,
                                      0.0, 1);
        for (int b = 0; b < 3; b++) colour[b] *= surface.scale[b];
      } else {
        for (int b = 0; b < 3; b++) colour[b] = surface.colour[b];
      }
      const long long k = static_cast<long long>(row - first_row) * view.n_cols + (col - first_col);
      const float n_f = static_cast<float>(near_sq), f_f = static_cast<float>(far_sq);
      const float m_f = static_cast<float>(mid_sq);
      if (cover[k] == 0.0f) {
        cover[k] = static_cast<float>(area);
        red[k] = static_cast<float>(colour[0] * area);
        green[k] = static_cast<float>(colour[1] * area);
        blue[k] = static_cast<float>(colour[2] * area);
        nearest[k] = n_f;
        farthest[k] = f_f;
        middle[k] = m_f;
      } else if (cover[k] + area <= 1.0 + touching || (n_f <= farthest[k] * (1.0f + touching) &&
                                                       f_f >= nearest[k] * (1.0f - touching))) {
        // Pieces of neighbouring polygons tile the pixel (their areas fit in
        // it, or their depths meet): the areas add, as far as there is room.
        double share = 1.0;
        if (cover[k] + area > 1.0) share = area > 0.0 ? (1.0 - cover[k]) / area : 0.0;
        if (share < 0.0) share = 0.0;
        cover[k] = static_cast<float>(cover[k] + share * area);
        red[k] = static_cast<float>(red[k] + share * colour[0] * area);
        green[k] = static_cast<float>(green[k] + share * colour[1] * area);
        blue[k] = static_cast<float>(blue[k] + share * colour[2] * area);
        if (n_f < nearest[k]) nearest[k] = n_f;
        if (f_f > farthest[k]) farthest[k] = f_f;
        if (m_f < middle[k]) middle[k] = m_f;
      } else if (f_f < nearest[k]) {
        // Wholly in front: what was there shows through the rest.
        const double keep = 1.0 - area;
        cover[k] = static_cast<float>(area + keep * cover[k]);
        red[k] = static_cast<float>(colour[0] * area + keep * red[k]);
        green[k] = static_cast<float>(colour[1] * area + keep * green[k]);
        blue[k] = static_cast<float>(colour[2] * area + keep * blue[k]);
        nearest[k] = n_f;
        middle[k] = m_f;
      } else {
        // Behind: only through what is left open.
        const double open = 1.0 - cover[k];
        cover[k] = static_cast<float>(cover[k] + open * area);
        red[k] = static_cast<float>(red[k] + open * colour[0] * area);
        green[k] = static_cast<float>(green[k] + open * colour[1] * area);
        blue[k] = static_cast<float>(blue[k] + open * colour[2] * area);
        if (f_f > farthest[k]) farthest[k] = f_f;
      }
    }
  }
}
