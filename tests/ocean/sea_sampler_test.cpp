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

namespace {

// A camera of the reference over the reference lattice, with the sampler
// built for it but not run.
struct Sampler_case {
  Sampler_case(const std::string& name, int periodic = 1) : sea(0, 1500) {
    set_camera(reference().cameras.at(name), view);
    if (!periodic) sea.lattice.periodic_x = sea.lattice.periodic_y = 0;
    spectrum.band_id[0] = 1;
    spectrum.band_id[1] = 2;
    spectrum.band_id[2] = 3;
  }
  Sea sea;
  TCView view;
  TCSpectrum spectrum{3};
};

TEST(SeaSampler, StraightDownViewKeepsTheRidgeEmptyAndDrawsEveryTriangleWhole) {
  Sampler_case b("b");
  testing::internal::CaptureStdout();
  Slice slice(&b.sea.lattice, b.sea.surface->sampler_points(b.view), b.sea.surface, 1, b.view);
  EXPECT_EQ(slice.straight_down, 1);
  EXPECT_EQ(slice.full_turn, 1);
  object_contour contour(b.view.n_rows, b.view.n_cols, &b.spectrum, 0.0f, 0, nullptr, nullptr);
  slice.run(b.view, contour);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_EQ(slice.n_ridge, 2);
  EXPECT_EQ(slice.ridge_y[0], -99999999.0);
  EXPECT_EQ(slice.ridge_y[1], -99999999.0);
  EXPECT_GT(b.sea.surface->triangles, 100);
  EXPECT_NE(out.find("fov sees straight down (up)\n"), std::string::npos) << out;
  EXPECT_NE(out.find("fov is above the surface \nstartR = 0\nendR =   "), std::string::npos) << out;
  EXPECT_NE(out.find("extending to horizon\n"), std::string::npos);
  // A triangle that passes whole reaches the surface as its own three
  // corners; every piece of this view is one.
  Sampler_case again("b");
  const Ring_vertex corners[3] = {{10.0, 10.0, 0, 0, 0, 0, 0, 1},
                                  {20.0, 10.0, 1, 0, 0, 1, 0, 1},
                                  {15.0, 20.0, 0, 1, 0, 0, 1, 1}};
  const Ring_vertex* t[3] = {&corners[0], &corners[1], &corners[2]};
  TCPolygon visible;
  ASSERT_TRUE(slice.clip_to_ridge(t, visible));
  ASSERT_EQ(visible.size(), 3);
  for (int k = 0; k < 3; k++) {
    EXPECT_EQ(visible.x[k], corners[k].x);
    EXPECT_EQ(visible.y[k], corners[k].y);
  }
}

TEST(SeaSampler, ViewAcrossTheSeaBuildsARidgeAndSaysSo) {
  Sampler_case a("a");
  testing::internal::CaptureStdout();
  Slice slice(&a.sea.lattice, a.sea.surface->sampler_points(a.view), a.sea.surface, 1, a.view);
  object_contour contour(a.view.n_rows, a.view.n_cols, &a.spectrum, 0.0f, 0, nullptr, nullptr);
  slice.run(a.view, contour);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_EQ(slice.straight_down, 0);
  EXPECT_GT(slice.n_ridge, 2);
  EXPECT_NE(out.find("fov does not see straight down\nquads : 0 0\nphiCenter = 0 phiMax = "),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("current Radius = 10 out of "), std::string::npos) << out;
  EXPECT_NE(out.find("  increment = 1\n"), std::string::npos) << out;
  EXPECT_NE(out.find("  increment = 2\n"), std::string::npos) << out;
}

TEST(SeaSampler, FirstRingTrianglesSkipTheFacingTest) {
  Sampler_case a("a");
  Slice slice(&a.sea.lattice, a.sea.surface->sampler_points(a.view), a.sea.surface, 1, a.view);
  object_contour contour(a.view.n_rows, a.view.n_cols, &a.spectrum, 0.0f, 0, nullptr, nullptr);
  // Turning clockwise on the picture: facing away.
  const Ring_vertex corners[3] = {{10.0, 10.0, 0, 0, 0, 0, 0, 1},
                                  {15.0, 20.0, 0, 1, 0, 0, 1, 1},
                                  {20.0, 10.0, 1, 0, 0, 1, 0, 1}};
  const Ring_vertex* t[3] = {&corners[0], &corners[1], &corners[2]};
  slice.draw_triangle(t, 0, a.view, contour, 0);
  EXPECT_EQ(a.sea.surface->triangles, 0);
  slice.draw_triangle(t, 1, a.view, contour, 0);
  EXPECT_EQ(a.sea.surface->triangles, 1);
  // A missing corner keeps even a first-ring triangle out.
  Ring_vertex lost = corners[1];
  lost.valid = 0;
  const Ring_vertex* u[3] = {&corners[0], &lost, &corners[2]};
  slice.draw_triangle(u, 1, a.view, contour, 0);
  EXPECT_EQ(a.sea.surface->triangles, 1);
}

TEST(SeaSampler, RingsBeyondAPeriodicLatticeWrapOntoItsNodes) {
  Sampler_case b("b");
  Slice slice(&b.sea.lattice, b.sea.surface->sampler_points(b.view), b.sea.surface, 1, b.view);
  ASSERT_TRUE(slice.build_ring(0, 100, 4, b.view));
  ASSERT_EQ(slice.n_ring_points[0], 8 * 25 + 1);  // a whole turn, closed
  const Reference& r = reference();
  for (int k = 0; k < slice.n_ring_points[0]; k++) {
    const Ring_vertex& v = slice.ring[0][k];
    ASSERT_TRUE(v.valid) << k;
    EXPECT_TRUE(std::llabs(v.i - slice.center_i) == 100 || std::llabs(v.j - slice.center_j) == 100);
    // The node's height is that of the lattice node it wraps onto.
    const long long i = ((v.i % 64) + 64) % 64, j = ((v.j % 64) + 64) % 64;
    const double h = r.heights[i + 64 * j];
    double e = 0.0, a = 0.0;
    ASSERT_TRUE(b.view.project(TCVector(v.u - 32.0, v.v - 32.0, h), e, a));
    const double x = (a - b.view.first_azimuth) / b.view.step_azimuth;
    EXPECT_NEAR(v.x, x, 1e-6 * (1.0 + std::fabs(x))) << k;
  }
}

TEST(SeaSampler, CoarseRingNodesAreAmongTheFineRingsNodes) {
  // Whole rings (the view sees straight down), where the stride first
  // doubles, at both strides.
  Sampler_case b("b");
  Slice slice(&b.sea.lattice, b.sea.surface->sampler_points(b.view), b.sea.surface, 1, b.view);
  int sample = 0, stride = 0;
  b.sea.lattice.index_to_sample(16, sample, stride);
  ASSERT_EQ(sample, 16);
  ASSERT_TRUE(slice.build_ring(0, sample, 1, b.view));
  ASSERT_TRUE(slice.build_ring(1, sample, 2, b.view));
  EXPECT_EQ(slice.n_ring_points[0], 8 * 16 + 1);
  EXPECT_EQ(slice.n_ring_points[1], 8 * 8 + 1);
  ASSERT_GT(slice.n_ring_points[1], 3);
  for (int k = 0; k < slice.n_ring_points[1]; k++) {
    const Ring_vertex& coarse = slice.ring[1][k];
    int found = 0;
    for (int l = 0; l < slice.n_ring_points[0] && !found; l++)
      found = slice.ring[0][l].i == coarse.i && slice.ring[0][l].j == coarse.j;
    EXPECT_TRUE(found) << "node " << coarse.i << " " << coarse.j;
  }
}

TEST(SeaSampler, RidgeKeepsItsLastSentinelUntilSomethingIsDrawnAcrossIt) {
  Sampler_case a("a");
  Slice slice(&a.sea.lattice, 64, a.sea.surface, 1, a.view);
  EXPECT_EQ(slice.n_ridge, 2);
  EXPECT_EQ(slice.ridge_x[1], -99999999.0);
  const double xs[3] = {30.0, 20.0, 10.0}, ys[3] = {5.0, 7.0, 6.0};
  slice.merge_into_ridge(xs, ys, 3);
  EXPECT_EQ(slice.ridge_x[slice.n_ridge - 1], -99999999.0);
  EXPECT_EQ(slice.ridge_y[slice.n_ridge - 1], -99999999.0);
  EXPECT_EQ(slice.ridge_x[0], 99999999.0);
  // In between, the line itself, with a drop at each end.
  int cursor = 0;
  EXPECT_DOUBLE_EQ(TCInterp_help8(slice.ridge_x, slice.ridge_y, slice.n_ridge, 25.0, cursor), 6.0);
  for (int k = 0; k + 1 < slice.n_ridge; k++) EXPECT_GE(slice.ridge_x[k], slice.ridge_x[k + 1]);
  // A line across the sentinel's column replaces it.
  const double wide_x[2] = {5.0, -199999999.0}, wide_y[2] = {1.0, 1.0};
  slice.merge_into_ridge(wide_x, wide_y, 2);
  cursor = 0;
  EXPECT_EQ(TCInterp_help8(slice.ridge_x, slice.ridge_y, slice.n_ridge, -99999999.0, cursor), 1.0);
}

TEST(SeaSampler, RidgeTakesTheHigherLineAndTheirCrossing) {
  Sampler_case a("a");
  Slice slice(&a.sea.lattice, 64, a.sea.surface, 1, a.view);
  const double xs[2] = {10.0, 0.0}, ys[2] = {0.0, 10.0};
  slice.merge_into_ridge(xs, ys, 2);
  const double xs2[2] = {10.0, 0.0}, ys2[2] = {10.0, 0.0};
  slice.merge_into_ridge(xs2, ys2, 2);
  int cursor = 0;
  // Max of y = 10 - x and y = x: 10 - x right of 5... mirrored: a tent.
  for (double x : {0.0, 2.5, 5.0, 7.5, 10.0}) {
    const double expected = x > 5.0 ? x : 10.0 - x;
    EXPECT_NEAR(TCInterp_help8(slice.ridge_x, slice.ridge_y, slice.n_ridge, x, cursor), expected,
                1e-12)
        << x;
  }
}

TEST(SeaSampler, TriangleBelowTheRidgeIsHiddenAndOneAcrossItIsCut) {
  Sampler_case a("a");
  Slice slice(&a.sea.lattice, 64, a.sea.surface, 1, a.view);
  const double xs[2] = {100.0, -100.0}, ys[2] = {10.0, 10.0};
  slice.merge_into_ridge(xs, ys, 2);
  const Ring_vertex low[3] = {
      {0.0, 0.0, 0, 0, 0, 0, 0, 1}, {8.0, 0.0, 0, 0, 0, 0, 0, 1}, {4.0, 9.0, 0, 0, 0, 0, 0, 1}};
  const Ring_vertex* t[3] = {&low[0], &low[1], &low[2]};
  TCPolygon visible;
  EXPECT_FALSE(slice.clip_to_ridge(t, visible));
  const Ring_vertex across[3] = {
      {0.0, 0.0, 0, 0, 0, 0, 0, 1}, {8.0, 0.0, 0, 0, 0, 0, 0, 1}, {4.0, 20.0, 0, 0, 0, 0, 0, 1}};
  const Ring_vertex* u[3] = {&across[0], &across[1], &across[2]};
  ASSERT_TRUE(slice.clip_to_ridge(u, visible));
  // The tip above row 10: half the height, a quarter of the area.
  EXPECT_NEAR(visible.area(), 0.25 * 80.0, 1e-9);
}

TEST(SeaSampler, InterpolationRefusesFewerThanTwoPoints) {
  const double x[1] = {1.0}, y[1] = {2.0};
  int cursor = 0;
  testing::internal::CaptureStderr();
  EXPECT_EQ(TCInterp_help8(x, y, 1, 0.5, cursor), 0.0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error: Interpolating into 1 points in TCInterp_help8\n");
}

TEST(SeaSampler, ColumnOffTheRidgeIsReportedAndTheSearchGoesOnFromTheStart) {
  Sampler_case a("a");
  Slice slice(&a.sea.lattice, 64, a.sea.surface, 1, a.view);
  testing::internal::CaptureStderr();
  EXPECT_EQ(slice.get_ridge_point(2.0e8, 1), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "\n->TCError in Slice::get_ridge_point : opps! missed the ridgeline!!\n");
}

TEST(SeaSamplerDeathTest, RidgeOverflowEndsTheRun) {
  Sampler_case a("a");
  Slice slice(&a.sea.lattice, 16, a.sea.surface, 1, a.view);  // room for 64 points
  std::vector<double> xs, ys;
  for (int k = 0; k < 100; k++) {
    xs.push_back(100.0 - k);
    ys.push_back(k % 2 ? 5.0 : 6.0);
  }
  EXPECT_EXIT(slice.merge_into_ridge(xs.data(), ys.data(), 100), testing::ExitedWithCode(1),
              "ridge array too small ");
}

TEST(SeaSamplerDeathTest, RidgeTooDetailedUnderOneTriangleEndsTheRun) {
  Sampler_case a("a");
  Slice slice(&a.sea.lattice, 64, a.sea.surface, 1, a.view);
  std::vector<double> xs, ys;
  for (int k = 0; k < 60; k++) {
    xs.push_back(60.0 - k);
    ys.push_back(k % 2 ? 5.0 : 6.0);
  }
  slice.merge_into_ridge(xs.data(), ys.data(), 60);
  const Ring_vertex wide[3] = {
      {0.0, 0.0, 0, 0, 0, 0, 0, 1}, {60.0, 0.0, 0, 0, 0, 0, 0, 1}, {30.0, 20.0, 0, 0, 0, 0, 0, 1}};
  const Ring_vertex* t[3] = {&wide[0], &wide[1], &wide[2]};
  TCPolygon visible;
  EXPECT_EXIT(slice.clip_to_ridge(t, visible), testing::ExitedWithCode(1),
              "nRidgePoly > MAXPOINTS ");
}

TEST(SeaSampler, RingLongerThanItsRoomIsCutShortWithAMessage) {
  Sampler_case b("b");
  Slice slice(&b.sea.lattice, 16, b.sea.surface, 1, b.view);  // 32 vertices a ring
  testing::internal::CaptureStdout();
  ASSERT_TRUE(slice.build_ring(0, 40, 1, b.view));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "maxed out in get new slice \n");
  EXPECT_EQ(slice.n_ring_points[0], 32);
}

TEST(SeaSampler, LatticeThatDoesNotRepeatEndsWithoutAHorizon) {
  Sampler_case a("a", 0);
  Slice slice(&a.sea.lattice, a.sea.surface->sampler_points(a.view), a.sea.surface, 1, a.view);
  // Camera over node (32, 32): rings reach the far edge, 32 nodes on.
  EXPECT_EQ(slice.start_ring, 0);
  EXPECT_EQ(slice.end_ring, 33);
  object_contour contour(a.view.n_rows, a.view.n_cols, &a.spectrum, 0.0f, 0, nullptr, nullptr);
  slice.run(a.view, contour);
  EXPECT_GT(a.sea.surface->triangles, 0);
  EXPECT_EQ(a.sea.surface->horizon_pieces, 0);
}

TEST(SeaSampler, CameraOutsideALatticeThatDoesNotRepeatStartsAtItsEdge) {
  Sampler_case a("a", 0);
  a.view.set_pose(TCVector(-60.0, 5.0, 3.0), 1.7104226669055556, 0.0, 0.0);
  Slice slice(&a.sea.lattice, a.sea.surface->sampler_points(a.view), a.sea.surface, 1, a.view);
  // Node column -28: 28 nodes short of the lattice, 91 from its far side.
  EXPECT_EQ(slice.center_i, -28);
  EXPECT_EQ(slice.start_ring, 28);
  EXPECT_EQ(slice.end_ring, 92);
}

TEST(SeaSampler, NothingIsDrawnWhenEveryRayLooksUpFromAboveTheWaves) {
  Sampler_case a("a");
  a.view.set_pose(TCVector(0.0, 0.0, 3.0), 0.3, 0.0, 0.0);
  object_contour contour(a.view.n_rows, a.view.n_cols, &a.spectrum, 0.0f, 0, nullptr, nullptr);
  testing::internal::CaptureStdout();
  a.sea.surface->image_surface(a.view, contour);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(a.sea.surface->triangles, 0);
}

TEST(SeaSampler, MattePassCoversAsThePictureDoesWithoutRadiance) {
  Sampler_case a("a");
  object_contour picture(a.view.n_rows, a.view.n_cols, &a.spectrum, 0.0f, 0, nullptr, nullptr);
  object_contour mattes(a.view.n_rows, a.view.n_cols, &a.spectrum, 0.0f, 0, nullptr, nullptr);
  a.sea.surface->image_surface(a.view, picture);
  a.sea.surface->image_mattes(a.view, mattes);
  int covered = 0;
  for (int row = 0; row < a.view.n_rows; row++) {
    for (int col = 0; col < a.view.n_cols; col++) {
      EXPECT_EQ(mattes.layer_coverage[row][col], picture.layer_coverage[row][col]);
      EXPECT_EQ(mattes.layer_radiance[0][row][col], 0.0f);
      covered += picture.layer_coverage[row][col] > 0.0f;
    }
  }
  EXPECT_GT(covered, 100);
}

TEST(SeaSampler, FromBelowEachRisingRayMeetsThePlaneOfTheWaterOverTheCamera) {
  Sampler_case a("a");
  // Under node (32, 32), 2 m down, looking 30 degrees up.
  const double under = reference().heights[32 + 64 * 32];
  a.view.set_pose(TCVector(0.0, 0.0, under - 2.0), 1.0471975511666667, 0.0, 0.0);
  a.sea.surface->underwater_plane = 1;
  object_contour contour(a.view.n_rows, a.view.n_cols, &a.spectrum, 0.0f, 0, nullptr, nullptr);
  a.sea.surface->image_surface(a.view, contour);
  EXPECT_EQ(a.sea.surface->triangles, 0);  // no sampler
  for (int row = 0; row < a.view.n_rows; row++) {
    for (int col = 0; col < a.view.n_cols; col++) {
      TCRay ray;
      a.view.pixel_ray(row, col, ray);
      const float cover = contour.layer_coverage[row][col];
      if (!(ray[5] > 0.0)) {
        EXPECT_EQ(cover, 0.0f) << row << " " << col;
        continue;
      }
      ASSERT_EQ(cover, 1.0f) << row << " " << col;
      const double t = 2.0 / ray[5];
      EXPECT_NEAR(contour.layer_radiance[0][row][col], ray[3] * t, 1e-4);
      EXPECT_NEAR(contour.layer_radiance[1][row][col], ray[4] * t, 1e-4);
    }
  }
}

}  // namespace

namespace {

TEST(SeaSampler, SeaStandsBehindANearerObjectAndInFrontOfAFartherOne) {
  const Reference_camera& c = reference().cameras.at("a");
  Sea sea(0, 1500);
  TCView view;
  set_camera(c, view);
  TCSpectrum spectrum(3);
  for (int b = 0; b < 3; b++) spectrum.band_id[b] = b + 1;
  float** out = new float*[3];
  for (int b = 0; b < 3; b++) out[b] = new float[view.n_rows * view.n_cols]();
  {
    object_contour contour(view.n_rows, view.n_cols, &spectrum, out, 0.0f, 0, nullptr, nullptr);
    // Something 20 m off in every pixel, painted first (squared distances).
    const double wall[3] = {-1.0, -1.0, -1.0};
    for (int row = 0; row < view.n_rows; row++)
      for (int col = 0; col < view.n_cols; col++)
        contour.add_sample(row, col, wall, 400.0, 400.0, 400.0, 1.0, 1, nullptr);
    contour.merge_layer();
    sea.surface->image_surface(view, contour);
    contour.merge_layer();
  }
  int near_seen = 0, far_hidden = 0;
  for (int row = 0; row < c.rows; row++) {
    for (int col = 0; col < c.cols; col++) {
      double spread = 0.0, range = 0.0;
      if (!interior(c, row, col, spread, range)) continue;
      const float x = out[0][row * c.cols + col];
      if (range < 15.0) {
        EXPECT_NE(x, -1.0f) << "sea at " << range << " m hidden, row " << row << " col " << col;
        near_seen++;
      } else if (range > 25.0) {
        EXPECT_EQ(x, -1.0f) << "sea at " << range << " m in front, row " << row << " col " << col;
        far_hidden++;
      }
    }
  }
  EXPECT_GT(near_seen, 50);
  EXPECT_GT(far_hidden, 50);
  for (int b = 0; b < 3; b++) delete[] out[b];
  delete[] out;
}

}  // namespace

namespace {

TEST(SeaSampler, HorizonOfARingCutShortSaysMaxedOut) {
  // Room for 32 vertices a ring: the whole rings of a view straight down
  // are cut short, and so is the horizon drawn from the last of them.
  Sampler_case b("b");
  Slice slice(&b.sea.lattice, 16, b.sea.surface, 1, b.view);
  object_contour contour(b.view.n_rows, b.view.n_cols, &b.spectrum, 0.0f, 0, nullptr, nullptr);
  testing::internal::CaptureStdout();
  slice.run(b.view, contour);
  const std::string out = testing::internal::GetCapturedStdout();
  EXPECT_NE(out.find("maxed out in get new slice \n"), std::string::npos);
  EXPECT_NE(out.find("extending to horizon\nmaxed out\n"), std::string::npos) << out;
}

}  // namespace
