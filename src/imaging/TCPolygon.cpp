#include "TCPolygon.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

namespace {

void allocation_failed() {
  std::cout << "unable to allocate polygon vertices\n";
  std::exit(1);
}

// One pass of the clip against the half plane coord >= bound (keep_above)
// or coord <= bound, coord being x (axis 0) or y (axis 1). The crossing is
// only computed when the kept end lies strictly inside, so a vertex on the
// boundary is never doubled by a rounded copy of itself.
int clip_pass(const double* in_x, const double* in_y, int count, int axis, double bound,
              bool keep_above, double* out_x, double* out_y) {
  int m = 0;
  if (count == 0) return 0;
  double sx = in_x[count - 1];
  double sy = in_y[count - 1];
  for (int i = 0; i < count; i++) {
    const double ex = in_x[i];
    const double ey = in_y[i];
    const double s_coord = axis == 0 ? sx : sy;
    const double e_coord = axis == 0 ? ex : ey;
    const bool s_in = keep_above ? s_coord >= bound : s_coord <= bound;
    const bool e_in = keep_above ? e_coord >= bound : e_coord <= bound;
    const bool s_strict = s_in && s_coord != bound;
    const bool e_strict = e_in && e_coord != bound;
    if (e_in != s_in && (e_strict || s_strict)) {
      const double t = (bound - s_coord) / (e_coord - s_coord);
      if (axis == 0) {
        out_x[m] = bound;
        out_y[m] = sy + (ey - sy) * t;
      } else {
        out_x[m] = sx + (ex - sx) * t;
        out_y[m] = bound;
      }
      m++;
    }
    if (e_in) {
      out_x[m] = ex;
      out_y[m] = ey;
      m++;
    }
    sx = ex;
    sy = ey;
  }
  return m;
}

// Drops consecutive equal vertices, the last against the first included.
int drop_repeats(double* px, double* py, int count) {
  int m = 0;
  for (int i = 0; i < count; i++) {
    if (m > 0 && px[i] == px[m - 1] && py[i] == py[m - 1]) continue;
    px[m] = px[i];
    py[m] = py[i];
    m++;
  }
  while (m > 1 && px[m - 1] == px[0] && py[m - 1] == py[0]) m--;
  return m;
}

// A floored or ceiled coordinate as an int within lo..hi; out-of-range and
// NaN values never reach the conversion.
int clamp_to_int(double v, int lo, int hi) {
  if (!(v > lo)) return lo;
  if (v >= hi) return hi;
  return static_cast<int>(v);
}

}  // namespace

TCPolygon::TCPolygon() : n(0), x(nullptr), y(nullptr), capacity_(0) {}

TCPolygon::~TCPolygon() {
  delete[] x;
  delete[] y;
}

TCPolygon::TCPolygon(const TCPolygon& other) : n(0), x(nullptr), y(nullptr), capacity_(0) {
  *this = other;
}

TCPolygon& TCPolygon::operator=(const TCPolygon& other) {
  if (this == &other) return *this;
  clear();
  for (int i = 0; i < other.n; i++) add_vertex(other.x[i], other.y[i]);
  return *this;
}

void TCPolygon::clear() {
  n = 0;
}

void TCPolygon::add_vertex(double vx, double vy) {
  if (n == capacity_) {
    if (capacity_ > 0x3fffffff / 2) allocation_failed();
    const int grown = capacity_ == 0 ? 8 : capacity_ * 2;
    double* nx = new (std::nothrow) double[grown];
    double* ny = new (std::nothrow) double[grown];
    if (nx == nullptr || ny == nullptr) allocation_failed();
    for (int i = 0; i < n; i++) {
      nx[i] = x[i];
      ny[i] = y[i];
    }
    delete[] x;
    delete[] y;
    x = nx;
    y = ny;
    capacity_ = grown;
  }
  x[n] = vx;
  y[n] = vy;
  n++;
}

void TCPolygon::clip_to_rectangle(double x0, double x1, double y0, double y1,
                                  TCPolygon& out) const {
  out.clear();
  if (n < 3 || &out == this) return;
  // Each of the four passes adds at most one vertex. Pixel-sized clips of
  // small rings stay on the stack.
  const int room = n + 4;
  double stack_buffer[4 * 32];
  double* heap_buffer = nullptr;
  double* buffer = stack_buffer;
  if (room > 32) {
    if (room > 0x3fffffff / 4) allocation_failed();
    heap_buffer = new (std::nothrow) double[4 * room];
    if (heap_buffer == nullptr) allocation_failed();
    buffer = heap_buffer;
  }
  double* ax = buffer;
  double* ay = buffer + room;
  double* bx = buffer + 2 * room;
  double* by = buffer + 3 * room;
  int m = clip_pass(x, y, n, 0, x0, true, ax, ay);
  m = clip_pass(ax, ay, m, 0, x1, false, bx, by);
  m = clip_pass(bx, by, m, 1, y0, true, ax, ay);
  m = clip_pass(ax, ay, m, 1, y1, false, bx, by);
  m = drop_repeats(bx, by, m);
  if (m >= 3) {
    for (int i = 0; i < m; i++) out.add_vertex(bx[i], by[i]);
  }
  delete[] heap_buffer;
}

double TCPolygon::area() const {
  if (n < 3) return 0.0;
  // Relative to the first vertex, which keeps small pixel pieces far from
  // the origin accurate.
  double twice = 0.0;
  for (int i = 1; i + 1 < n; i++) {
    const double ux = x[i] - x[0];
    const double uy = y[i] - y[0];
    const double vx = x[i + 1] - x[0];
    const double vy = y[i + 1] - y[0];
    twice += ux * vy - vx * uy;
  }
  return std::fabs(twice) * 0.5;
}

void TCPolygon::centroid(double& cx, double& cy) const {
  cx = 0.0;
  cy = 0.0;
  if (n == 0) return;
  double twice = 0.0;
  double sx = 0.0;
  double sy = 0.0;
  double extent = 0.0;
  for (int i = 1; i + 1 < n; i++) {
    const double ux = x[i] - x[0];
    const double uy = y[i] - y[0];
    const double vx = x[i + 1] - x[0];
    const double vy = y[i + 1] - y[0];
    const double cross = ux * vy - vx * uy;
    twice += cross;
    sx += cross * (ux + vx);
    sy += cross * (uy + vy);
  }
  for (int i = 1; i < n; i++) {
    const double dx = std::fabs(x[i] - x[0]);
    const double dy = std::fabs(y[i] - y[0]);
    if (dx > extent) extent = dx;
    if (dy > extent) extent = dy;
  }
  // An area lost in rounding against the ring's size counts as none.
  if (n >= 3 && std::fabs(twice) > 1e-14 * extent * extent) {
    cx = x[0] + sx / (3.0 * twice);
    cy = y[0] + sy / (3.0 * twice);
    return;
  }
  for (int i = 0; i < n; i++) {
    cx += x[i];
    cy += y[i];
  }
  cx /= n;
  cy /= n;
}

void TCPolygon::bounds(double& x0, double& x1, double& y0, double& y1) const {
  x0 = x1 = y0 = y1 = 0.0;
  if (n == 0) return;
  x0 = x1 = x[0];
  y0 = y1 = y[0];
  for (int i = 1; i < n; i++) {
    if (x[i] < x0) x0 = x[i];
    if (x[i] > x1) x1 = x[i];
    if (y[i] < y0) y0 = y[i];
    if (y[i] > y1) y1 = y[i];
  }
}

// Edge pixels are those whose open square an edge enters; a pixel only
// touched along its border is left to the centre test, so a ring laid on
// pixel borders marks its pixels 1 and its neighbours 0.
int TCPolygon::scan_mask(unsigned char* mask, int rows, int cols, int& row0, int& row1, int& col0,
                         int& col1) const {
  row0 = 0;
  row1 = -1;
  col0 = 0;
  col1 = -1;
  if (mask == nullptr || rows <= 0 || cols <= 0) return 0;
  std::memset(mask, 0, static_cast<size_t>(rows) * static_cast<size_t>(cols));
  if (n < 3) return 0;
  for (int i = 0; i < n; i++) {
    if (!std::isfinite(x[i]) || !std::isfinite(y[i])) return 0;
  }
  double bx0, bx1, by0, by1;
  bounds(bx0, bx1, by0, by1);
  if (bx1 <= 0.0 || by1 <= 0.0 || bx0 >= cols || by0 >= rows) return 0;

  for (int i = 0; i < n; i++) {
    const int k = i + 1 == n ? 0 : i + 1;
    const double px = x[i], py = y[i], qx = x[k], qy = y[k];
    const double ylo = py < qy ? py : qy;
    const double yhi = py < qy ? qy : py;
    if (ylo == yhi) {
      // Horizontal: inside a row only when strictly between its borders.
      const double r = std::floor(ylo);
      if (r == ylo || r < 0 || r >= rows) continue;
      const double xl = px < qx ? px : qx;
      const double xh = px < qx ? qx : px;
      int c_first, c_last;
      if (xl == xh) {
        if (std::floor(xl) == xl) continue;
        c_first = c_last = clamp_to_int(std::floor(xl), -1, cols);
      } else {
        c_first = clamp_to_int(std::floor(xl), -1, cols);
        c_last = clamp_to_int(std::ceil(xh), -1, cols) - 1;
      }
      if (c_first < 0) c_first = 0;
      if (c_last > cols - 1) c_last = cols - 1;
      const size_t base = static_cast<size_t>(r) * cols;
      for (int c = c_first; c <= c_last; c++) mask[base + c] = 2;
      continue;
    }
    int r_first = clamp_to_int(std::floor(ylo), -1, rows);
    int r_last = clamp_to_int(std::ceil(yhi), -1, rows) - 1;
    if (r_first < 0) r_first = 0;
    if (r_last > rows - 1) r_last = rows - 1;
    const double slope = (qx - px) / (qy - py);
    for (int r = r_first; r <= r_last; r++) {
      const double ya = ylo > r ? ylo : r;
      const double yb = yhi < r + 1 ? yhi : r + 1;
      if (!(ya < yb)) continue;
      const double xa = ya == py ? px : (ya == qy ? qx : px + (ya - py) * slope);
      const double xb = yb == py ? px : (yb == qy ? qx : px + (yb - py) * slope);
      const double xl = xa < xb ? xa : xb;
      const double xh = xa < xb ? xb : xa;
      int c_first, c_last;
      if (xl == xh) {
        if (std::floor(xl) == xl) continue;
        c_first = c_last = clamp_to_int(std::floor(xl), -1, cols);
      } else {
        c_first = clamp_to_int(std::floor(xl), -1, cols);
        c_last = clamp_to_int(std::ceil(xh), -1, cols) - 1;
      }
      if (c_first < 0) c_first = 0;
      if (c_last > cols - 1) c_last = cols - 1;
      const size_t base = static_cast<size_t>(r) * cols;
      for (int c = c_first; c <= c_last; c++) mask[base + c] = 2;
    }
  }

  // Pixel centres inside the ring (even-odd) that no edge entered.
  double stack_cross[64];
  double* heap_cross = nullptr;
  double* cross = stack_cross;
  if (n > 64) {
    heap_cross = new (std::nothrow) double[n];
    if (heap_cross == nullptr) allocation_failed();
    cross = heap_cross;
  }
  int r_first = clamp_to_int(std::floor(by0), 0, rows - 1);
  int r_last = clamp_to_int(std::floor(by1), 0, rows - 1);
  for (int r = r_first; r <= r_last; r++) {
    const double yc = r + 0.5;
    int m = 0;
    for (int i = 0; i < n; i++) {
      const int k = i + 1 == n ? 0 : i + 1;
      if ((y[i] > yc) != (y[k] > yc)) {
        const double xc = x[i] + (yc - y[i]) / (y[k] - y[i]) * (x[k] - x[i]);
        int j = m++;
        while (j > 0 && cross[j - 1] > xc) {
          cross[j] = cross[j - 1];
          j--;
        }
        cross[j] = xc;
      }
    }
    for (int p = 0; p + 1 < m; p += 2) {
      // Centres c + 0.5 strictly between the two crossings.
      int c_first = clamp_to_int(std::floor(cross[p] - 0.5) + 1.0, -1, cols);
      int c_last = clamp_to_int(std::ceil(cross[p + 1] - 0.5) - 1.0, -1, cols);
      if (c_first < 0) c_first = 0;
      if (c_last > cols - 1) c_last = cols - 1;
      const size_t base = static_cast<size_t>(r) * cols;
      for (int c = c_first; c <= c_last; c++) {
        if (mask[base + c] == 0) mask[base + c] = 1;
      }
    }
  }
  delete[] heap_cross;

  bool found = false;
  for (int r = 0; r < rows; r++) {
    const size_t base = static_cast<size_t>(r) * cols;
    for (int c = 0; c < cols; c++) {
      if (mask[base + c] == 0) continue;
      if (!found) {
        row0 = row1 = r;
        col0 = col1 = c;
        found = true;
        continue;
      }
      if (r > row1) row1 = r;
      if (c < col0) col0 = c;
      if (c > col1) col1 = c;
    }
  }
  return found ? 1 : 0;
}
