// Shading a triangle of the surface on the image: exact coverage per pixel,
// the depth of the water under each pixel, and nothing from a piece of no
// area.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <sstream>

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
      // The pixel's centre ray from 10 m meets the calm water at 10 / cos.
      TCRay ray;
      calm.view.pixel_ray(row, col, ray);
      const double expected = 10.0 / -ray[5];
      EXPECT_NEAR(contour.layer_distance[row][col], expected, 1e-4) << row << " " << col;
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
  EXPECT_NEAR(fields.planes[0][distance_plane][pixel], 10.0 / -ray[5], 1e-3);
  delete[] out[0];
  delete[] out;
}

}  // namespace
