// Shading a triangle of the surface on the image: exact coverage per pixel,
// the depth of the water under each pixel, and nothing from a piece of no
// area.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "TCConstants.h"
#include "TCGrid.h"
#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCPolygon.h"
#include "TCSpectrum.h"
#include "TCSurface_object.h"
#include "TCView.h"
#include "object_contour.h"
#include "surface_object_input.h"
#include "surface_test_objects.h"

namespace {

// A calm sea of 64 by 64 nodes a metre apart, centred on the origin, seen
// straight down from 10 m by an 8 by 8 view of plane half-width 0.4.
struct Calm_view {
  Calm_view() : lattice(64, 64, 1.0, 1.0), spectrum(1) {
    lattice.periodic_x = lattice.periodic_y = 1;
    lattice.offset_x = lattice.offset_y = 32.0;
    surface = new_surface(&lattice, 99999999.0, 99999999.0, 20.0, 0.0, 0.9);
    view.set_pose(TCVector(0.0, 0.0, 10.0), tc_pi, 0.0, 0.0);
    view.set_grid(8, -0.4, 0.4, 8, -0.4, 0.4);
    spectrum.band_id[0] = 1;
    // The bare layer shades nothing: the radiance stays at what is set here.
    spectrum.radiance_in_band[0] = 2.0;
  }
  // Image position of a point of the sea, and its lattice coordinates.
  TCSurface_vertex vertex_at(double x, double y) const {
    double e = 0.0, a = 0.0;
    view.project(TCVector(x, y, 0.0), e, a);
    TCSurface_vertex v;
    v.x = (a - view.first_azimuth) * view.n_cols / (view.last_azimuth - view.first_azimuth);
    v.y = (e - view.first_elevation) * view.n_rows / (view.last_elevation - view.first_elevation);
    v.u = x + 32.0;
    v.v = y + 32.0;
    return v;
  }
  TCGrid lattice;
  std::unique_ptr<TCSurface_object> surface;
  TCView view;
  TCSpectrum spectrum;
};

TEST(SurfaceTriangle, PixelsTakeExactlyTheTrianglesArea) {
  Calm_view calm;
  const TCSurface_vertex t[3] = {calm.vertex_at(-2.5, -3.0), calm.vertex_at(3.1, -1.2),
                                 calm.vertex_at(0.4, 2.9)};
  TCPolygon visible;
  for (int k = 0; k < 3; k++) visible.add_vertex(t[k].x, t[k].y);
  object_contour contour(8, 8, &calm.spectrum, 0.0f, 0, nullptr, nullptr);
  calm.surface->image_triangle(calm.view, contour, t, visible, 1);
  double covered = 0.0, shaded = 0.0;
  for (int row = 0; row < 8; row++) {
    for (int col = 0; col < 8; col++) {
      covered += contour.layer_coverage[row][col];
      shaded += contour.layer_radiance[0][row][col];
    }
  }
  // The shoelace area of the image triangle, by hand.
  const double area = 0.5 * std::fabs((t[1].x - t[0].x) * (t[2].y - t[0].y) -
                                      (t[2].x - t[0].x) * (t[1].y - t[0].y));
  ASSERT_GT(area, 1.0);
  EXPECT_NEAR(covered, area, 1e-6);  // coverage is kept in floats
  EXPECT_NEAR(shaded, 2.0 * area, 1e-5);
}

TEST(SurfaceTriangle, APixelInsideLiesAtTheDistanceOfTheWaterUnderIt) {
  Calm_view calm;
  // A big triangle over the whole image.
  const TCSurface_vertex t[3] = {calm.vertex_at(-20.0, -20.0), calm.vertex_at(20.0, -20.0),
                                 calm.vertex_at(0.0, 30.0)};
  TCPolygon visible;
  for (int k = 0; k < 3; k++) visible.add_vertex(t[k].x, t[k].y);
  object_contour contour(8, 8, &calm.spectrum, 0.0f, 0, nullptr, nullptr);
  calm.surface->image_triangle(calm.view, contour, t, visible, 1);
  for (int row = 0; row < 8; row++) {
    for (int col = 0; col < 8; col++) {
      EXPECT_NEAR(contour.layer_coverage[row][col], 1.0, 1e-9);
      // The pixel's centre ray from 10 m meets the calm water at 10 / cos;
      // the contour keeps it squared, as it does every object's.
      TCRay ray;
      calm.view.pixel_ray(row, col, ray);
      const double expected = 10.0 / -ray[5];
      EXPECT_NEAR(contour.layer_distance[row][col], expected * expected, 1e-3) << row << " " << col;
    }
  }
}

TEST(SurfaceTriangle, APieceClippedDownToTwoVerticesAddsNothing) {
  Calm_view calm;
  const TCSurface_vertex t[3] = {calm.vertex_at(-2.0, -2.0), calm.vertex_at(2.0, -2.0),
                                 calm.vertex_at(0.0, 2.0)};
  TCPolygon line;
  line.add_vertex(t[0].x, t[0].y);
  line.add_vertex(t[1].x, t[1].y);
  object_contour contour(8, 8, &calm.spectrum, 0.0f, 0, nullptr, nullptr);
  calm.surface->image_triangle(calm.view, contour, t, line, 1);
  // A sliver along a pixel edge: clipped to the pixel it keeps two
  // vertices, or an area of 0.
  TCPolygon sliver;
  sliver.add_vertex(3.0, 1.0);
  sliver.add_vertex(3.0, 5.0);
  sliver.add_vertex(3.0, 3.0);
  calm.surface->image_triangle(calm.view, contour, t, sliver, 1);
  for (int row = 0; row < 8; row++) {
    for (int col = 0; col < 8; col++) EXPECT_EQ(contour.layer_coverage[row][col], 0.0f);
  }
}

TEST(SurfaceTriangle, ATriangleWhollyOutsideTheImageDoesNothing) {
  Calm_view calm;
  TCSurface_vertex t[3] = {calm.vertex_at(-2.0, -2.0), calm.vertex_at(2.0, -2.0),
                           calm.vertex_at(0.0, 2.0)};
  TCPolygon visible;
  for (int k = 0; k < 3; k++) {
    t[k].x += 100.0;
    visible.add_vertex(t[k].x, t[k].y);
  }
  object_contour contour(8, 8, &calm.spectrum, 0.0f, 0, nullptr, nullptr);
  calm.surface->image_triangle(calm.view, contour, t, visible, 1);
  for (int row = 0; row < 8; row++) {
    for (int col = 0; col < 8; col++) EXPECT_EQ(contour.layer_coverage[row][col], 0.0f);
  }
}

}  // namespace

namespace {

// A surface whose light writes a known value into its "sky" matte.
class Marked_surface : public TCSurface_object {
 public:
  explicit Marked_surface(const surface_object_input& input) : TCSurface_object(input) {}
  void surface_radiance(const TCRay&, const TCVector&, const TCVector&, TCSpectrum& spectrum, int,
                        float* matte_values, double) override {
    spectrum.radiance_in_band[0] = 2.0;
    if (matte_values != nullptr) matte_values[1 * 4] = 7.0f;  // one band: code 4 at 4
  }
};

TEST(SurfaceTriangle, TheLightsMatteValuesReachTheCamerasMattes) {
  std::istringstream text(
      "use_mattes: 1\n"
      "  NObjects: 1\n"
      "    Object: sea\n"
      "      NMattes: 2\n"
      "        sky\n"
      "        distance\n");
  TCMatte_input request;
  ASSERT_TRUE(request.read(text));
  request.object_indices[0] = 0;
  TCMatte_fields fields;
  fields.set_sizes(40, 1);
  fields.prepare(8, 8, 1, request);
  int sky_plane = -1, distance_plane = -1, count = 0;
  ASSERT_TRUE(fields.is_wanted(0, 4, sky_plane, count));
  ASSERT_TRUE(fields.is_wanted(0, 19, distance_plane, count));

  TCGrid lattice(64, 64, 1.0, 1.0);
  lattice.periodic_x = lattice.periodic_y = 1;
  lattice.offset_x = lattice.offset_y = 32.0;
  surface_object_input input;
  Marked_surface surface(input);
  surface.lattice = &lattice;
  surface.set_box(TCVector(99999999.0, 99999999.0, 20.0), TCVector(0.0, 0.0, -10.0));
  lattice.z_offset = 10.0;
  Calm_view calm;  // for its view and spectrum
  const TCSurface_vertex t[3] = {calm.vertex_at(-20.0, -20.0), calm.vertex_at(20.0, -20.0),
                                 calm.vertex_at(0.0, 30.0)};
  TCPolygon visible;
  for (int k = 0; k < 3; k++) visible.add_vertex(t[k].x, t[k].y);
  float** out = new float*[1];
  out[0] = new float[64]();
  {
    object_contour contour(8, 8, &calm.spectrum, out, 0.0f, 0, &fields, nullptr);
    surface.image_triangle(calm.view, contour, t, visible, 1);
    contour.merge_layer();
  }
  EXPECT_EQ(surface.matte_fields, nullptr);  // only while a triangle is shaded
  const int pixel = 3 * 8 + 4;
  EXPECT_NEAR(fields.planes[0][sky_plane][pixel], 7.0f, 1e-5);
  TCRay ray;
  calm.view.pixel_ray(3, 4, ray);
  // Squared, as every object leaves it until the camera takes the root.
  const double distance = 10.0 / -ray[5];
  EXPECT_NEAR(fields.planes[0][distance_plane][pixel], distance * distance, 1e-2);
  delete[] out[0];
  delete[] out;
}

}  // namespace

namespace {

// One of the cameras of the independent sea picture, and the rows where it
// sees the horizon (row k's centre at k, rows upwards).
struct Horizon_case {
  TCView view;
  double flat_row;
  double round_row;
};

Horizon_case horizon_case(const std::string& name) {
  Horizon_case c;
  std::ifstream in(TC_TEST_DATA_DIR "/ocean/sea_picture_reference.txt");
  std::string line;
  double x = 0, y = 0, z = 0, chi = 0, phi = 0, theta = 0, fov_a = 0, fov_e = 0;
  int cols = 0, rows = 0;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string first, which;
    words >> first >> which;
    if (first == "camera" && which == name) {
      words >> x >> y >> z >> chi >> phi >> theta >> cols >> rows >> fov_a >> fov_e;
    } else if (first == "horizon" && which == name) {
      std::string word;
      words >> word >> c.flat_row >> word >> c.round_row;
    }
  }
  // The image plane of a camera: half-widths tan(fov / 2).
  const double half_e = std::tan(fov_e * 0.008726646259722222);
  const double half_a = std::tan(fov_a * 0.008726646259722222);
  c.view.set_pose(TCVector(x, y, z), chi, phi, theta);
  c.view.set_grid(rows, -half_e, half_e, cols, -half_a, half_a);
  return c;
}

// Rows whose pixel centre sees water in a middle column.
int water_rows(TCView& view, int round) {
  TCGrid lattice(64, 64, 1.0, 1.0);
  lattice.periodic_x = lattice.periodic_y = 1;
  lattice.offset_x = lattice.offset_y = 32.0;
  if (round) {
    lattice.round_flag = 1;
    lattice.radius = 6.371e6;
  }
  std::unique_ptr<TCSurface_object> surface =
      new_surface(&lattice, 99999999.0, 99999999.0, 20.0, 0.0, 0.9);
  TCSpectrum spectrum(1);
  spectrum.band_id[0] = 1;
  // The middle column alone.
  const int col = view.n_cols / 2;
  TCPolygon all;
  all.add_vertex(col, 0.0);
  all.add_vertex(col + 1.0, 0.0);
  all.add_vertex(col + 1.0, view.n_rows);
  all.add_vertex(col, view.n_rows);
  TCSurface_vertex unused[3] = {};
  object_contour contour(view.n_rows, view.n_cols, &spectrum, 0.0f, 0, nullptr, nullptr);
  surface->horizon_triangle(view, contour, unused, all, 1);
  int water = 0;
  for (int row = 0; row < view.n_rows; row++) {
    if (contour.layer_coverage[row][col] > 0.5f) {
      EXPECT_EQ(row, water) << "water above the sky at row " << row;
      water++;
    }
  }
  return water;
}

TEST(SurfaceHorizon, FlatAndRoundHorizonsFallWhereTheyShould) {
  for (const char* name : {"a", "c"}) {
    Horizon_case c = horizon_case(name);
    ASSERT_GT(c.flat_row, 1.0) << name;
    // The same camera with a hundred rows to each of its own, so that the
    // sphere's dip (a few hundredths of a row) shows: fine row k has its
    // centre at (k + 0.5) / 100 - 0.5 in the camera's rows, and is water
    // when that lies below the horizon row.
    const int fine = 100;
    c.view.set_grid(c.view.n_rows * fine, c.view.first_elevation, c.view.last_elevation,
                    c.view.n_cols, c.view.first_azimuth, c.view.last_azimuth);
    const int flat = static_cast<int>(std::ceil((c.flat_row + 0.5) * fine - 0.5));
    const int round = static_cast<int>(std::ceil((c.round_row + 0.5) * fine - 0.5));
    ASSERT_GT(flat - round, 3) << name;
    EXPECT_NEAR(water_rows(c.view, 0), flat, 1) << name;
    EXPECT_NEAR(water_rows(c.view, 1), round, 1) << name;
  }
}

TEST(SurfaceHorizon, ACameraUnderTheMeanSurfaceDrawsNoHorizon) {
  Horizon_case c = horizon_case("a");
  c.view.set_pose(TCVector(0.0, 0.0, -1.0), c.view.chi, c.view.phi, c.view.theta);
  EXPECT_EQ(water_rows(c.view, 0), 0);
}

}  // namespace
