#include "TCPoly_Polygon.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

namespace {

// Rays this close to the plane's edge-on direction never meet it.
const double facing_limit = -1e-7;
// Edge tolerance of the inside test, in metres.
const double edge_tolerance = 1e-6;

// The axis of the largest component: the one a polygon drops to go flat.
int dropped_axis(const TCVector& n) {
  const double ax = std::fabs(n.x), ay = std::fabs(n.y), az = std::fabs(n.z);
  if (ax >= ay && ax >= az) return 0;
  if (ay >= az) return 1;
  return 2;
}

}  // namespace

const int TCPoly_Polygon::colour_set;
const int TCPoly_Polygon::texture_set;
const int TCPoly_Polygon::normal_set;
const int TCPoly_Polygon::not_imaged;
const int TCPoly_Polygon::most_corners;

TCPoly_Polygon::TCPoly_Polygon()
    : flags(0),
      shading_model(4),
      polygon_index(0),
      normal(0.0, 0.0, 1.0),
      plane_d(0.0),
      origin_u(0.0),
      origin_v(0.0),
      color(nullptr),
      n_vertices(0),
      vertices(nullptr) {}

TCPoly_Polygon::~TCPoly_Polygon() {
  delete[] color;
  delete[] vertices;
}

int TCPoly_Polygon::setPolygon(const Poly_source& source, Poly_point_record* points, int n_points,
                               int index, int shading) {
  polygon_index = index;
  shading_model = shading;
  delete[] vertices;
  vertices = nullptr;
  n_vertices = 0;
  const int count = source.n_corners;
  if (count < 0 || count > most_corners) {
    std::cerr << "Error initializing linked list! Too many vertices: " << count << std::endl;
    std::exit(1);
  }
  vertices = new (std::nothrow) Vertex[count > 0 ? count : 1];
  if (vertices == nullptr) {
    std::cerr << "Error allocating vertex array in setPolygon\n";
    std::exit(0);
  }
  flags = source.flags;
  if (flags & colour_set) {
    delete[] color;
    color = new (std::nothrow) double[4];
    if (color == nullptr) {
      std::cerr << "Error allocating polygon color!\n";
      std::exit(1);
    }
    for (int k = 0; k < 4; k++) color[k] = source.colour[k];
  }
  for (int k = 0; k < count; k++) {
    const int i = source.corners[k];
    if (i < 0 || i >= n_points) {
      std::cerr << "Error in TCPoly_Polygon::setPolygon - prisms index, " << i << " is wrong\n";
      std::exit(0);
    }
    vertices[k].index = i;
    vertices[k].point = &points[i];
  }
  n_vertices = count;
  set_normal();
  if (flags != not_imaged && shading == 1) fit_texture();
  return flags != not_imaged;
}

void TCPoly_Polygon::set_normal() {
  double a = 0.0, b = 0.0, c = 0.0;
  for (int i = 0; i < n_vertices; i++) {
    const TCVector& p = vertices[i].point->p;
    const TCVector& q = vertices[(i + 1) % n_vertices].point->p;
    a += (p.z + q.z) * (p.y - q.y);
    b += (p.x + q.x) * (p.z - q.z);
    c += (p.y + q.y) * (p.x - q.x);
  }
  const double length = std::sqrt(a * a + b * b + c * c);
  if (!(length > 0.0) || n_vertices < 3) {
    std::cerr << "Error setting normal for polygon# " << polygon_index
              << ": points might be on a line\n";
    normal = TCVector(0.0, 0.0, 1.0);
    plane_d = 0.0;
    flags = not_imaged;
    std::cerr << "  NOT IMAGING POLYGON #" << polygon_index << "\n";
    return;
  }
  normal = TCVector(-a / length, -b / length, -c / length);
  flags |= normal_set;
  plane_d = -normal.dot(vertices[0].point->p);
}

void TCPoly_Polygon::fit_texture() {
  for (int k = 0; k < n_vertices; k++) {
    if (!vertices[k].point->has_texture) {
      std::cerr << "Error setting polygon #" << polygon_index << ": a NULL texture point\n";
      std::cerr << "  NOT IMAGING POLYGON #" << polygon_index << "\n";
      flags = not_imaged;
      return;
    }
  }
  const int c = dropped_axis(normal);
  const int a = (c + 1) % 3, b = (c + 2) % 3;
  const Poly_point_record& first = *vertices[0].point;
  origin = first.p;
  origin_u = first.u;
  origin_v = first.v;
  // Least squares over the corners, rows a and b; row c holds the gradient
  // in the plane (normal . gradient = 0).
  double S[3][3] = {{0.0}};
  double Ru[3] = {0.0, 0.0, 0.0}, Rv[3] = {0.0, 0.0, 0.0};
  for (int k = 1; k < n_vertices; k++) {
    const Poly_point_record& q = *vertices[k].point;
    const TCVector d = q.p - origin;
    const double du = q.u - origin_u, dv = q.v - origin_v;
    S[a][a] += d[a] * d[a];
    S[b][a] += d[a] * d[b];
    S[c][a] += d[a] * d[c];
    S[b][b] += d[b] * d[b];
    S[c][b] += d[b] * d[c];
    Ru[a] += d[a] * du;
    Ru[b] += d[b] * du;
    Rv[a] += d[a] * dv;
    Rv[b] += d[b] * dv;
  }
  // Rows a and b of the normal equations in full (the sums are symmetric),
  // row c the plane's constraint.
  double M[3][3];
  M[a][a] = S[a][a];
  M[a][b] = S[b][a];
  M[a][c] = S[c][a];
  M[b][a] = S[b][a];
  M[b][b] = S[b][b];
  M[b][c] = S[c][b];
  M[c][0] = normal.x;
  M[c][1] = normal.y;
  M[c][2] = normal.z;
  Ru[c] = 0.0;
  Rv[c] = 0.0;
  const double det = M[0][0] * (M[1][1] * M[2][2] - M[1][2] * M[2][1]) -
                     M[0][1] * (M[1][0] * M[2][2] - M[1][2] * M[2][0]) +
                     M[0][2] * (M[1][0] * M[2][1] - M[1][1] * M[2][0]);
  if (det == 0.0 || !std::isfinite(det)) {
    std::cerr << "Error setting polygon #" << polygon_index << ": determinate = 0\n";
    std::cerr << "  NOT IMAGING POLYGON #" << polygon_index << "\n";
    flags = not_imaged;
    return;
  }
  double inverse[3][3];
  for (int i = 0; i < 3; i++) {
    for (int j = 0; j < 3; j++) {
      // Adjugate: cofactor of (j, i).
      const int r0 = (j + 1) % 3, r1 = (j + 2) % 3, c0 = (i + 1) % 3, c1 = (i + 2) % 3;
      inverse[i][j] = (M[r0][c0] * M[r1][c1] - M[r0][c1] * M[r1][c0]) / det;
    }
  }
  double gu[3], gv[3];
  for (int i = 0; i < 3; i++) {
    gu[i] = inverse[i][0] * Ru[0] + inverse[i][1] * Ru[1] + inverse[i][2] * Ru[2];
    gv[i] = inverse[i][0] * Rv[0] + inverse[i][1] * Rv[1] + inverse[i][2] * Rv[2];
  }
  u_gradient = TCVector(gu[0], gu[1], gu[2]);
  v_gradient = TCVector(gv[0], gv[1], gv[2]);
  flags |= texture_set;
}

void TCPoly_Polygon::texture_at(const TCVector& p, double& u, double& v) const {
  const TCVector d = p - origin;
  u = origin_u + u_gradient.dot(d);
  v = origin_v + v_gradient.dot(d);
}

int TCPoly_Polygon::contains(const TCVector& p) const {
  const int c = dropped_axis(normal);
  const int a = (c + 1) % 3, b = (c + 2) % 3;
  int crossings = 0;
  for (int k = 0; k < n_vertices; k++) {
    const TCVector& s = vertices[k].point->p;
    const TCVector& e = vertices[(k + 1) % n_vertices].point->p;
    const double sa = s[a] - p[a], sb = s[b] - p[b];
    const double ea = e[a] - p[a], eb = e[b] - p[b];
    // A point on an edge is inside.
    const double cross = sa * eb - sb * ea;
    const double dot = sa * ea + sb * eb;
    const double edge = std::sqrt((ea - sa) * (ea - sa) + (eb - sb) * (eb - sb));
    if (std::fabs(cross) <= edge_tolerance * (edge > 0.0 ? edge : 1.0) && dot <= 0.0) return 1;
    // Half-open rule on b: each edge crossing the ray along +a counts once.
    if ((sb > 0.0) != (eb > 0.0)) {
      const double at = sa + (ea - sa) * (0.0 - sb) / (eb - sb);
      if (at > 0.0) crossings++;
    }
  }
  return crossings & 1;
}

int TCPoly_Polygon::intersect(const TCVector& origin_in, const TCVector& direction, TCVector& hit,
                              double& distance_squared) const {
  if (flags == not_imaged) return 0;
  const double dn = normal.dot(direction);
  if (dn > facing_limit) return 0;
  const double t = -(normal.dot(origin_in) + plane_d) / dn;
  if (!(t >= 0.0)) return 0;
  const TCVector p = origin_in + direction * t;
  if (!contains(p)) return 0;
  hit = p;
  distance_squared = t * t;
  return 1;
}
