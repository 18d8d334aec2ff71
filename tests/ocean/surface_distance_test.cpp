// How far a ray travels to the sea, against the exact crossing of a surface
// known in closed form: one cosine along x on the nodes, constant in y, so
// that between nodes the lattice's bilinear lookup is the straight line
// joining them and the first crossing of a ray is a root of a linear
// function on each piece.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "../objects/surface_test_objects.h"
#include "TCGrid.h"
#include "TCRay.h"
#include "TCSurface_object.h"
#include "TCVector.h"

namespace {

const double pi = 3.1415926535;

// 16 nodes 2 m apart along x (a 32 m wave of amplitude 1 m), 4 along y,
// periodic both ways, node 0 at x = 0. The box is the ocean's for that
// wave: 4 m deep, 1.05 m high, so the box frame runs from -2.525 to 2.525
// and the surface sits 1.475 m above the raw heights.
const int nodes = 16;
const double spacing = 2.0;
const double amplitude = 1.0;
const double depth = 4.0;
const double top = 1.05;
const double z_shift = -(top - depth) * 0.5;
const double box_x = 200.0;
const double box_y = 100.0;
const double box_z = depth + top;
const double ray_step = 0.9 * spacing;

// The lattice stores floats: the model takes the node values as stored.
double node_height(long i) {
  const long k = ((i % nodes) + nodes) % nodes;
  return static_cast<float>(amplitude * std::cos(2.0 * pi * k / nodes));
}

// The surface in the box frame: the straight line between the two nodes
// around x.
double surface_z(double x) {
  const double u = x / spacing;
  const double i = std::floor(u);
  const double t = u - i;
  const long k = static_cast<long>(i);
  return (1.0 - t) * node_height(k) + t * node_height(k + 1) + z_shift;
}

struct Sine_sea {
  Sine_sea() : lattice(nodes, 4, spacing, spacing) {
    lattice.periodic_x = 1;
    lattice.periodic_y = 1;
    for (int j = 0; j < 4; j++) {
      for (int i = 0; i < nodes; i++) lattice.height[i + nodes * j] = node_height(i);
    }
    surface = new_surface(&lattice, box_x, box_y, depth, top, ray_step);
  }
  TCGrid lattice;
  std::unique_ptr<TCSurface_object> surface;
};

// The stretch of the box the ray crosses, by slabs: entry (0 when the ray
// starts in the box) and exit; 0 when it misses.
int box_span(const TCVector& o, const TCVector& d, double& entry, double& exit) {
  const double half[3] = {box_x / 2, box_y / 2, box_z / 2};
  double near = -1e300, far = 1e300;
  for (int a = 0; a < 3; a++) {
    if (std::fabs(d[a]) < 1e-12) {
      if (std::fabs(o[a]) > half[a]) return 0;
      continue;
    }
    const double t1 = (-half[a] - o[a]) / d[a];
    const double t2 = (half[a] - o[a]) / d[a];
    near = std::max(near, std::min(t1, t2));
    far = std::min(far, std::max(t1, t2));
  }
  if (!(far > std::max(near, 0.0))) return 0;
  entry = std::max(near, 0.0);
  exit = far;
  return 1;
}

// The first stretch of [s0, s1] where the ray is under the surface: its
// ends r1 and r2 (r2 = s1 when it lasts to the end). Height over the
// surface is linear between the ray's crossings of node lines, so each
// piece has at most one root.
int first_under_water(const TCVector& o, const TCVector& d, double s0, double s1, double& r1,
                      double& r2) {
  std::vector<double> cuts{s0, s1};
  if (std::fabs(d.x) > 0.0) {
    const double u0 = (o.x + d.x * s0) / spacing;
    const double u1 = (o.x + d.x * s1) / spacing;
    for (double k = std::ceil(std::min(u0, u1)); k <= std::floor(std::max(u0, u1)); k += 1.0) {
      const double s = (k * spacing - o.x) / d.x;
      if (s > s0 && s < s1) cuts.push_back(s);
    }
  }
  std::sort(cuts.begin(), cuts.end());
  auto over = [&](double s) { return o.z + d.z * s - surface_z(o.x + d.x * s); };
  int in = 0;
  for (size_t k = 0; k + 1 < cuts.size(); k++) {
    const double a = cuts[k], b = cuts[k + 1];
    const double fa = over(a), fb = over(b);
    if (!in) {
      if (fa < 0.0) {
        r1 = a;
        in = 1;
      } else if (fb < 0.0) {
        r1 = a + fa / (fa - fb) * (b - a);
        in = 1;
        continue;  // in the water from r1 to b at least
      }
    }
    if (in && fb >= 0.0) {
      r2 = a + fa / (fa - fb) * (b - a);
      return 1;
    }
  }
  if (in) r2 = s1;
  return in;
}

TCVector unit(double azimuth, double elevation) {
  return TCVector(std::cos(elevation) * std::cos(azimuth), std::cos(elevation) * std::sin(azimuth),
                  std::sin(elevation));
}

struct Sweep_counts {
  int hits = 0;        // checked against the exact crossing
  int in_water = 0;    // in the water at the entry
  int misses = 0;      // no water along the ray in the box
  int too_short = 0;   // a first stretch shorter than a step: not checked
  int beyond_max = 0;  // entry not nearer than max_distance
  int slivers = 0;     // less than a tenth of a ray step between entry and limit
};

// One ray against the model.
void check_ray(TCSurface_object& surface, const TCVector& o, const TCVector& d,
               Sweep_counts& counts) {
  const TCRay ray(o, d);
  TCVector hit;
  double distance = 0.0;
  const int found = surface.distance_to_surface(ray, hit, distance);
  // The same ray in the object frame finds the same.
  TCVector object_hit;
  double object_distance = 0.0;
  const int object_found =
      surface.intersect(TCRay(o + surface.box_centre, d), object_hit, object_distance);
  EXPECT_EQ(object_found > 0, found > 0);
  if (found) {
    EXPECT_NEAR(object_distance, distance, 1e-9);
    EXPECT_NEAR(object_hit.z, hit.z + surface.box_centre.z, 1e-9);
  }
  double entry = 0.0, exit = 0.0;
  if (!box_span(o, d, entry, exit)) {
    EXPECT_EQ(found, 0);
    return;
  }
  if (!(entry < surface.max_distance)) {
    counts.beyond_max++;
    EXPECT_EQ(found, 0) << "entry " << entry;
    EXPECT_EQ(distance, -1.0);
    return;
  }
  exit = std::min(exit, surface.max_distance);
  // The march's own step.
  const double n = std::trunc((exit - entry) / ray_step) + 1.0;
  const double step = (exit - entry) / n;
  if (step < 0.1 * ray_step) {
    // Only a sliver of the box before the limit: not marched at all.
    counts.slivers++;
    EXPECT_EQ(found, 0);
    EXPECT_EQ(distance, -1.0);
    return;
  }
  double r1 = 0.0, r2 = 0.0;
  if (!first_under_water(o, d, entry, exit, r1, r2)) {
    counts.misses++;
    EXPECT_EQ(found, 0) << "origin " << o.x << " " << o.y << " " << o.z;
    EXPECT_EQ(distance, 0.0);
    return;
  }
  if (r1 == entry) {
    counts.in_water++;
    ASSERT_EQ(found, 1);
    EXPECT_NEAR(distance, entry, 1e-9);
    EXPECT_NEAR(hit.x, o.x + d.x * entry, 1e-9);
    EXPECT_NEAR(hit.z, o.z + d.z * entry, 1e-9);
    return;
  }
  // A march sees the water only where one of its points falls in it: a
  // stretch shorter than a step may be stepped over, so only rays whose
  // first stretch is longer than a step have a known answer.
  if (!(r2 - r1 > step)) {
    counts.too_short++;
    return;
  }
  counts.hits++;
  ASSERT_EQ(found, 1) << "origin " << o.x << " " << o.y << " " << o.z << " crossing " << r1;
  EXPECT_NEAR(distance, r1, step / 32) << "origin " << o.x << " " << o.y << " " << o.z;
  EXPECT_NEAR(hit.x, o.x + d.x * distance, 1e-9);
  EXPECT_NEAR(hit.y, o.y + d.y * distance, 1e-9);
  EXPECT_NEAR(hit.z, o.z + d.z * distance, 1e-9);
}

TEST(SurfaceDistance, FirstCrossingAgreesWithTheExactRootOfTheLattice) {
  Sine_sea sea;
  std::mt19937 engine(20261125);
  std::uniform_real_distribution<double> unit_draw(0.0, 1.0);
  auto draw = [&](double low, double high) { return low + (high - low) * unit_draw(engine); };
  Sweep_counts counts;

  // Grazing, from inside the box over the water.
  for (int k = 0; k < 120; k++) {
    const double x = draw(-80.0, 80.0), y = draw(-40.0, 40.0);
    const TCVector o(x, y, draw(surface_z(x) + 0.02, 2.5));
    check_ray(*sea.surface, o, unit(draw(0.0, 2 * pi), -draw(0.005, 0.12)), counts);
  }
  // Grazing, from over the box, entering through its top.
  for (int k = 0; k < 80; k++) {
    const TCVector o(draw(-90.0, 0.0), draw(-40.0, 40.0), 2.525 + draw(0.05, 1.0));
    check_ray(*sea.surface, o, unit(draw(-0.5, 0.5), -draw(0.02, 0.1)), counts);
  }
  // Steep, from well over the box.
  for (int k = 0; k < 100; k++) {
    const TCVector o(draw(-80.0, 80.0), draw(-40.0, 40.0), 2.525 + draw(1.0, 20.0));
    check_ray(*sea.surface, o, unit(draw(0.0, 2 * pi), -draw(0.5, 1.5707)), counts);
  }
  // From beside the box, entering through a side face above or below the
  // water (the lattice repeats, so the origin may itself be in the water).
  for (int k = 0; k < 60; k++) {
    const TCVector o(-100.0 - draw(1.0, 20.0), draw(-30.0, 30.0), draw(0.3, 3.5));
    check_ray(*sea.surface, o, unit(draw(-0.4, 0.4), -draw(0.0, 0.08)), counts);
  }
  // Starting in the water, any way.
  for (int k = 0; k < 60; k++) {
    const double x = draw(-80.0, 80.0);
    const TCVector o(x, draw(-40.0, 40.0), draw(-2.4, surface_z(x) - 0.02));
    check_ray(*sea.surface, o, unit(draw(0.0, 2 * pi), draw(-1.5, 1.5)), counts);
  }
  // Upwards from over the water: only a crest ahead can be met.
  for (int k = 0; k < 40; k++) {
    const double x = draw(-80.0, 80.0);
    const TCVector o(x, draw(-40.0, 40.0), draw(surface_z(x) + 0.02, 2.5));
    check_ray(*sea.surface, o, unit(draw(0.0, 2 * pi), draw(0.0, 0.3)), counts);
  }
  // Steep rays under a distance limit: some enter beyond it, some reach it
  // before the water, some only just inside it.
  sea.surface->max_distance = 12.0;
  for (int k = 0; k < 60; k++) {
    const TCVector o(draw(-80.0, 80.0), draw(-40.0, 40.0), 2.525 + draw(1.0, 20.0));
    check_ray(*sea.surface, o, unit(draw(0.0, 2 * pi), -draw(0.3, 1.5707)), counts);
  }

  EXPECT_GE(counts.hits, 250);
  EXPECT_GE(counts.in_water, 60);
  EXPECT_GE(counts.misses, 20);
  EXPECT_GE(counts.beyond_max, 10);
  EXPECT_GE(counts.slivers, 1);
  EXPECT_LE(counts.too_short, 30);
}

TEST(SurfaceDistance, RayClippingACornerOfTheBoxInTheWaterIsNoHit) {
  Sine_sea sea;
  // A box whose top (2.2) is below the crest at x = 96 (a node of height 1,
  // box z 2.475): the box's corner there lies in the water. A ray along
  // (1, 0, -1) / sqrt 2 that enters the top at x = 96 - c leaves by the x
  // face c lower, after c sqrt 2 of box.
  sea.surface->set_box(TCVector(192.0, box_y, 4.4), TCVector(0.0, 0.0, 0.0));
  const TCVector d(std::sqrt(0.5), 0.0, -std::sqrt(0.5));
  TCVector hit;
  double distance = 0.0;
  for (double c : {0.02, 0.1}) {
    // c sqrt 2 below 0.1 of the 1.8 m ray step.
    const TCVector o(96.0 - c - 0.5, 0.0, 2.7);
    ASSERT_EQ(sea.surface->inside(o), 0);
    ASSERT_EQ(sea.surface->inside(o + d * (0.5 * std::sqrt(2.0) + 1e-6)), 1);
    EXPECT_EQ(sea.surface->distance_to_surface(TCRay(o, d), hit, distance), 0) << c;
    EXPECT_EQ(distance, -1.0);
  }
  // With 0.2 m of corner the box is entered in the water: hit at the entry.
  const TCVector o(96.0 - 0.2 - 0.5, 0.0, 2.7);
  ASSERT_EQ(sea.surface->distance_to_surface(TCRay(o, d), hit, distance), 1);
  EXPECT_NEAR(distance, 0.5 * std::sqrt(2.0), 1e-9);
  EXPECT_NEAR(hit.x, 95.8, 1e-9);
  EXPECT_NEAR(hit.z, 2.2, 1e-9);
}

TEST(SurfaceDistance, RoundSurfaceIsMetBelowTheFlatLevelByItsDrop) {
  TCGrid lattice(8, 8, 1.0, 1.0);
  lattice.periodic_x = 1;
  lattice.periodic_y = 1;
  fill_flat(lattice, 0.0f);
  lattice.round_flag = 1;
  lattice.radius = 1000.0;
  // 10 m deep, 1 m high: box z from -5.5 to 5.5, the mean level at 4.5.
  std::unique_ptr<TCSurface_object> surface = new_surface(&lattice, 400.0, 400.0, 10.0, 1.0, 0.9);
  // 100 m out the sphere has dropped 100^2 / 2000 = 5 m: box z -0.5. Straight
  // down from box z 5: 5.5 m, in 12 steps of 10.5 / 12.
  const TCRay ray(TCVector(60.0, 80.0, 5.0), TCVector(0.0, 0.0, -1.0));
  TCVector hit;
  double distance = 0.0;
  ASSERT_EQ(surface->distance_to_surface(ray, hit, distance), 1);
  EXPECT_NEAR(distance, 5.5, 10.5 / 12 / 64);
  EXPECT_NEAR(hit.z, -0.5, 10.5 / 12 / 64);
}

TEST(SurfaceDistance, MarchWithoutRefiningGivesTheLastPointOutOfTheWater) {
  Sine_sea sea;
  std::mt19937 engine(7);
  std::uniform_real_distribution<double> unit_draw(0.0, 1.0);
  int checked = 0;
  for (int k = 0; k < 100; k++) {
    const double x = -60.0 + 120.0 * unit_draw(engine);
    const TCVector o(x, 0.0, surface_z(x) + 0.05 + 1.5 * unit_draw(engine));
    const TCVector d = unit(2 * pi * unit_draw(engine), -0.02 - 0.3 * unit_draw(engine));
    const double step = 0.3 + 1.2 * unit_draw(engine);
    const double end = 60.0;
    // The march's points are start + i step; the first in the water, by
    // the model, is point i, so the answer is point i - 1.
    long first = -1;
    for (long i = 1; i * step <= end + 0.5 * step; i++) {
      const double s = i * step;
      if (o.z + d.z * s < surface_z(o.x + d.x * s)) {
        first = i;
        break;
      }
    }
    double distance = -3.0;
    const int found = sea.surface->march(0.0, end, step, o, d, distance, 0);
    if (first < 0) {
      EXPECT_EQ(found, 0);
      EXPECT_EQ(distance, 0.0);
      continue;
    }
    checked++;
    ASSERT_EQ(found, 1);
    EXPECT_DOUBLE_EQ(distance, (first - 1) * step);
  }
  EXPECT_GE(checked, 80);
}

TEST(SurfaceDistance, BisectLandsWithinASixtyFourthOfTheStepOfTheCrossing) {
  // A plane tilted along x, 0.25 m up per metre, on an open lattice: the
  // crossing of a straight ray is exact.
  TCGrid lattice(64, 4, 1.0, 1.0);
  lattice.periodic_y = 1;
  for (int j = 0; j < 4; j++) {
    for (int i = 0; i < 64; i++) lattice.height[i + 64 * j] = static_cast<float>(0.25 * i);
  }
  std::unique_ptr<TCSurface_object> surface = new_surface(&lattice, 64.0, 50.0, 20.0, 20.0, 0.9);
  lattice.z_offset = 0.0;
  std::mt19937 engine(11);
  std::uniform_real_distribution<double> unit_draw(0.0, 1.0);
  for (int k = 0; k < 200; k++) {
    // Over the plane, looking down and forward: the crossing stays on the
    // lattice (x below 45).
    const double x = 5.0 + 10.0 * unit_draw(engine);
    const TCVector o(x, 0.0, 0.25 * x + 0.1 + 8.0 * unit_draw(engine));
    const TCVector d = unit(pi * (unit_draw(engine) - 0.5), -0.3 - 1.2 * unit_draw(engine));
    // o.z + d.z s = 0.25 (o.x + d.x s)
    const double root = (0.25 * o.x - o.z) / (d.z - 0.25 * d.x);
    ASSERT_GT(root, 0.0);
    const double step = 0.2 + 2.0 * unit_draw(engine);
    const double a = std::max(0.0, root - step * unit_draw(engine));
    const double b = a + step;
    ASSERT_EQ(surface->inside(o + d * a), 0);
    ASSERT_EQ(surface->inside(o + d * b), 1);
    double distance = -1.0;
    surface->bisect(a, b, step, o, d, distance);
    EXPECT_LE(std::fabs(distance - root), step / 64) << k;
  }
}

}  // namespace
