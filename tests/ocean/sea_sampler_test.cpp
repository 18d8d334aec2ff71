// The ridge-line sampler against a brute-force picture of the same lattice:
// every pixel inside the sea shows the water its centre ray meets first,
// every pixel below the horizon is covered exactly once, and the horizon
// falls on the analytic row.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Slice.h"
#include "TCGrid.h"
#include "TCPolygon.h"
#include "TCSpectrum.h"
#include "TCSurface_object.h"
#include "TCView.h"
#include "object_contour.h"
#include "surface_object_input.h"

namespace {

struct Reference_pixel {
  int hit;
  double x, y, z;
};

struct Reference_camera {
  double x, y, z, chi, phi, theta, fov_a, fov_e;
  int cols, rows;
  std::vector<Reference_pixel> pixels;  // row by row
  double flat_row, round_row;
};

struct Reference {
  int n_x, n_y;
  double dx, dy, offset_x, offset_y;
  std::vector<float> heights;
  std::map<std::string, Reference_camera> cameras;
};

const Reference& reference() {
  static Reference r;
  static int loaded = 0;
  if (loaded) return r;
  loaded = 1;
  std::ifstream in(TC_TEST_DATA_DIR "/ocean/sea_picture_reference.txt");
  std::string line;
  Reference_camera* camera = nullptr;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    std::string first;
    words >> first;
    if (first == "lattice") {
      words >> r.n_x >> r.n_y >> r.dx >> r.dy >> r.offset_x >> r.offset_y;
      std::getline(in, line);
      std::istringstream values(line);
      r.heights.resize(r.n_x * r.n_y);
      for (float& h : r.heights) values >> h;
    } else if (first == "camera") {
      std::string name;
      words >> name;
      camera = &r.cameras[name];
      words >> camera->x >> camera->y >> camera->z >> camera->chi >> camera->phi >> camera->theta >>
          camera->cols >> camera->rows >> camera->fov_a >> camera->fov_e;
      camera->pixels.resize(camera->cols * camera->rows);
    } else if (first == "horizon") {
      std::string name, word;
      words >> name;
      Reference_camera& c = r.cameras[name];
      words >> word >> c.flat_row >> word >> c.round_row;
    } else if (camera != nullptr) {
      int row = std::stoi(first), col = 0;
      std::string what;
      words >> col >> what;
      Reference_pixel& p = camera->pixels[row * camera->cols + col];
      p.hit = what == "hit";
      if (p.hit) words >> p.x >> p.y >> p.z;
    }
  }
  return r;
}

// Shades each piece by where it lies (bands x, y, z of the water, object
// frame) and keeps each pixel's summed coverage, unclamped, so that pieces
// that overlap or leave gaps show.
class Probe_surface : public TCSurface_object {
 public:
  explicit Probe_surface(const surface_object_input& input) : TCSurface_object(input) {}
  void surface_radiance(const TCRay&, const TCVector& point, const TCVector&, TCSpectrum& spectrum,
                        int, float*, double) override {
    spectrum.radiance_in_band[0] = point.x;
    spectrum.radiance_in_band[1] = point.y;
    spectrum.radiance_in_band[2] = point.z;
  }
  void image_triangle(TCView& view, object_contour& contour, const TCSurface_vertex t[3],
                      const TCPolygon& visible, int side) override {
    add_coverage(view, visible);
    triangles++;
    TCSurface_object::image_triangle(view, contour, t, visible, side);
  }
  void horizon_triangle(TCView& view, object_contour& contour, const TCSurface_vertex t[3],
                        const TCPolygon& visible, int side) override {
    add_coverage(view, visible);
    horizon_pieces++;
    TCSurface_object::horizon_triangle(view, contour, t, visible, side);
  }
  void add_coverage(const TCView& view, const TCPolygon& visible) {
    if (coverage.empty()) coverage.assign(view.n_rows * view.n_cols, 0.0);
    double x0, x1, y0, y1;
    visible.bounds(x0, x1, y0, y1);
    TCPolygon piece;
    for (int row = 0; row < view.n_rows; row++) {
      if (row + 1 < y0 || row > y1) continue;
      for (int col = 0; col < view.n_cols; col++) {
        if (col + 1 < x0 || col > x1) continue;
        visible.clip_to_rectangle(col, col + 1.0, row, row + 1.0, piece);
        coverage[row * view.n_cols + col] += piece.area();
      }
    }
  }
  std::vector<double> coverage;
  int triangles = 0;
  int horizon_pieces = 0;
};

// The reference lattice, periodic, drawn out to reach metres (about) with
// its distance doubling, then to the horizon.
struct Sea {
  Sea(int round, int reach) : lattice(64, 64, reach, 16, 1.0, 1.0) {
    const Reference& r = reference();
    lattice.periodic_x = lattice.periodic_y = 1;
    lattice.offset_x = r.offset_x;
    lattice.offset_y = r.offset_y;
    for (int k = 0; k < 64 * 64; k++) lattice.height[k] = r.heights[k];
    lattice.refresh_height_limits();
    if (round) {
      lattice.round_flag = 1;
      lattice.radius = 6.371e6;
    }
    surface_object_input input;
    std::strcpy(input.object_name, "sea");
    surface = new Probe_surface(input);
    surface->lattice = &lattice;
    surface->ray_step = 0.5;
    // Box centred on the object origin, so that box and object frames agree.
    surface->set_box(TCVector(99999999.0, 99999999.0, 40.0), TCVector(0.0, 0.0, 0.0));
    lattice.z_offset = 0.0;
  }
  ~Sea() { delete surface; }
  TCGrid lattice;
  Probe_surface* surface;
};

void set_camera(const Reference_camera& c, TCView& view) {
  const double half_e = std::tan(c.fov_e * 0.008726646259722222);
  const double half_a = std::tan(c.fov_a * 0.008726646259722222);
  view.set_pose(TCVector(c.x, c.y, c.z), c.chi, c.phi, c.theta);
  view.set_grid(c.rows, -half_e, half_e, c.cols, -half_a, half_a);
}

// The picture of the sea through the sampler: per pixel the mean water
// point (x, y, z) and the layer's coverage.
struct Picture {
  int rows = 0, cols = 0;
  std::vector<double> x, y, z, layer_coverage, coverage;
  int triangles = 0, horizon_pieces = 0;
};

Picture draw(const std::string& name, int round, int reach = 1500) {
  const Reference_camera& c = reference().cameras.at(name);
  Sea sea(round, reach);
  TCView view;
  set_camera(c, view);
  TCSpectrum spectrum(3);
  for (int b = 0; b < 3; b++) spectrum.band_id[b] = b + 1;
  object_contour contour(view.n_rows, view.n_cols, &spectrum, 0.0f, 0, nullptr, nullptr);
  sea.surface->image_surface(view, contour);
  Picture p;
  p.rows = view.n_rows;
  p.cols = view.n_cols;
  for (int row = 0; row < p.rows; row++) {
    for (int col = 0; col < p.cols; col++) {
      const double cover = contour.layer_coverage[row][col];
      p.layer_coverage.push_back(cover);
      const double w = cover > 0.0 ? 1.0 / cover : 0.0;
      p.x.push_back(contour.layer_radiance[0][row][col] * w);
      p.y.push_back(contour.layer_radiance[1][row][col] * w);
      p.z.push_back(contour.layer_radiance[2][row][col] * w);
    }
  }
  p.coverage = sea.surface->coverage;
  if (p.coverage.empty()) p.coverage.assign(p.rows * p.cols, 0.0);
  p.triangles = sea.surface->triangles;
  p.horizon_pieces = sea.surface->horizon_pieces;
  return p;
}

double gap(double ax, double ay, double az, double bx, double by, double bz) {
  return std::sqrt((ax - bx) * (ax - bx) + (ay - by) * (ay - by) + (az - bz) * (az - bz));
}

// Pixels whose own and eight neighbours' centre rays all meet water, with no
// jump in depth among them: away from silhouettes and the horizon. spread
// is the largest distance from the pixel's hit to a neighbour's.
int interior(const Reference_camera& c, int row, int col, double& spread, double& range) {
  if (row < 1 || col < 1 || row >= c.rows - 1 || col >= c.cols - 1) return 0;
  const Reference_pixel& p = c.pixels[row * c.cols + col];
  if (!p.hit) return 0;
  range = gap(p.x, p.y, p.z, c.x, c.y, c.z);
  spread = 0.0;
  for (int dr = -1; dr <= 1; dr++) {
    for (int dc = -1; dc <= 1; dc++) {
      const Reference_pixel& q = c.pixels[(row + dr) * c.cols + col + dc];
      if (!q.hit) return 0;
      const double d = gap(p.x, p.y, p.z, q.x, q.y, q.z);
      const double q_range = gap(q.x, q.y, q.z, c.x, c.y, c.z);
      if (std::fabs(q_range - range) > 0.25 * range) return 0;
      if (d > spread) spread = d;
    }
  }
  return 1;
}

void check_against_reference(const std::string& name) {
  const Reference_camera& c = reference().cameras.at(name);
  const Picture p = draw(name, 0);
  int compared = 0, overlapping = 0, worst_row = -1, worst_col = -1;
  double worst = 0.0;
  for (int row = 0; row < c.rows; row++) {
    for (int col = 0; col < c.cols; col++) {
      double spread = 0.0, range = 0.0;
      if (!interior(c, row, col, spread, range)) continue;
      const int k = row * c.cols + col;
      const Reference_pixel& r = c.pixels[k];
      compared++;
      // The pixel's mean water point lies among its neighbours' centre hits.
      const double off = gap(p.x[k], p.y[k], p.z[k], r.x, r.y, r.z);
      const double allowed = 0.5 * spread + 0.002 * range;
      if (off / allowed > worst) {
        worst = off / allowed;
        worst_row = row;
        worst_col = col;
      }
      EXPECT_LE(off, allowed) << name << " row " << row << " col " << col << " sees (" << p.x[k]
                              << ", " << p.y[k] << ", " << p.z[k] << "), the reference (" << r.x
                              << ", " << r.y << ", " << r.z << ")";
      // Inside the sea every pixel is covered: no holes. Triangles of one
      // band may overlap a little where the band folds over a crest.
      EXPECT_GE(p.coverage[k], 1.0 - 1e-6) << name << " row " << row << " col " << col;
      EXPECT_LE(p.coverage[k], 1.1) << name << " row " << row << " col " << col;
      if (p.coverage[k] > 1.001) overlapping++;
      EXPECT_LE(p.layer_coverage[k], 1.0);
    }
  }
  EXPECT_GT(compared, c.rows * c.cols / 4) << name;
  EXPECT_LE(overlapping, compared / 50) << name;
  std::cout << name << ": " << compared << " pixels compared, worst at " << worst
            << " of the allowance (row " << worst_row << ", col " << worst_col << ")\n";
}

TEST(SeaSampler, LowCameraSeesTheWaterTheBruteForceMarchFinds) {
  check_against_reference("a");
}

TEST(SeaSampler, CameraLookingStraightDownSeesTheWaterTheBruteForceMarchFinds) {
  check_against_reference("b");
}

TEST(SeaSampler, CameraAtWaveHeightSeesTheWaterTheBruteForceMarchFinds) {
  check_against_reference("c");
}

}  // namespace

namespace {

// The lattice is drawn to 100 m only, where the sea still stands a pixel
// or two below the horizon: the band out to the horizon fills the rest.
const int near_reach = 100;

// Rows of water in one column, as the sum of their coverage: rows wholly
// below the horizon count 1 and the row it crosses its part, so with row
// k's centre at k the horizon stands at the sum less a half.
double horizon_row(const Picture& p, int col) {
  double sum = 0.0;
  for (int row = 0; row < p.rows; row++) sum += p.layer_coverage[row * p.cols + col];
  return sum - 0.5;
}

TEST(SeaSampler, HorizonOfAFlatSeaFallsOnTheLevelLine) {
  for (const char* name : {"a", "c"}) {
    const Reference_camera& c = reference().cameras.at(name);
    const Picture p = draw(name, 0, near_reach);
    EXPECT_GT(p.horizon_pieces, 0) << name;
    for (int col : {1, c.cols / 2, c.cols - 2})
      EXPECT_NEAR(horizon_row(p, col), c.flat_row, 1.0) << name << " col " << col;
  }
}

TEST(SeaSampler, HorizonOfARoundSeaDipsAsTheSphereDoes) {
  for (const char* name : {"a", "c"}) {
    const Reference_camera& c = reference().cameras.at(name);
    const Picture p = draw(name, 1, near_reach);
    for (int col : {1, c.cols / 2, c.cols - 2})
      EXPECT_NEAR(horizon_row(p, col), c.round_row, 1.0) << name << " col " << col;
  }
}

}  // namespace
