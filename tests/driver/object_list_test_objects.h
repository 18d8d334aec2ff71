#ifndef TC_TESTS_OBJECT_LIST_TEST_OBJECTS_H
#define TC_TESTS_OBJECT_LIST_TEST_OBJECTS_H

#include <string>

#include "TCKeyframes.h"
#include "TCObject.h"
#include "TCRay.h"
#include "TCView.h"
#include "object_contour.h"

// A test object at the world origin, unrotated, so its frame is the world's.
// It occupies an axis-aligned box for the ray and containment queries, and
// paints a constant radiance at a fixed distance into the pixels whose
// centre lies in an azimuth band of the image plane.
class Test_slab : public TCObject {
 public:
  Test_slab(int type, double priority_in, double radiance_in, double distance_in)
      : TCObject(TCKeyframes(), 0.0, 0.0, 0, nullptr, type),
        value(radiance_in),
        depth(distance_in),
        coverage(1.0),
        first_azimuth_painted(-1e9),
        last_azimuth_painted(1e9),
        edge_spread(0.0),
        lo(1e9, 1e9, 1e9),
        hi(-1e9, -1e9, -1e9),
        log(nullptr),
        deleted(nullptr),
        contour_calls(0),
        reflected_calls(0),
        surface_line_calls(0),
        frame_data_calls(0) {
    priority = priority_in;
  }
  ~Test_slab() override {
    if (deleted != nullptr) (*deleted)++;
  }

  // The box the queries see; empty until set.
  void occupy(const TCVector& lo_in, const TCVector& hi_in) {
    lo = lo_in;
    hi = hi_in;
  }

  void image_contour(TCView& view, object_contour& contour) override {
    contour_calls++;
    note("c");
    paint_into(view, contour);
  }
  void image_reflected(TCView& view, object_contour& contour) override {
    reflected_calls++;
    note("r");
    paint_into(view, contour);
  }
  void image_surface_line(TCView& view, object_contour& contour) override {
    surface_line_calls++;
    note("s");
    paint_into(view, contour);
  }

  int point_inside(const TCVector& p) override {
    return p.x > lo.x && p.x < hi.x && p.y > lo.y && p.y < hi.y && p.z > lo.z && p.z < hi.z;
  }

  // Slab method on the box; the ray's direction is a unit vector, so the
  // entry parameter is the distance.
  int intersect(const TCRay& ray, TCVector& hit, double& distance) override {
    double t_in = -1e30, t_out = 1e30;
    const double lows[3] = {lo.x, lo.y, lo.z};
    const double highs[3] = {hi.x, hi.y, hi.z};
    for (int k = 0; k < 3; k++) {
      const double o = ray[k], d = ray[3 + k];
      if (d == 0.0) {
        if (o <= lows[k] || o >= highs[k]) return 0;
        continue;
      }
      double t0 = (lows[k] - o) / d, t1 = (highs[k] - o) / d;
      if (t0 > t1) {
        const double t = t0;
        t0 = t1;
        t1 = t;
      }
      if (t0 > t_in) t_in = t0;
      if (t1 < t_out) t_out = t1;
    }
    if (t_in > t_out || t_in <= 0.0) return 0;
    distance = t_in;
    hit = ray.origin() + ray.direction() * t_in;
    return 1;
  }

  void write_frame_data(const char* stream_name, const char* frame_text) override {
    frame_data_calls++;
    last_stream = stream_name;
    last_frame = frame_text;
  }

  double value;     // radiance in band 0; band b gets value + 10 b
  double depth;     // metres along the view
  double coverage;  // of each painted pixel
  // Pixels whose centre azimuth lies in [first, last) are painted.
  double first_azimuth_painted;
  double last_azimuth_painted;
  // Where an edge of the band crosses a pixel, its depth range reaches this
  // far behind the painted distance, as a rounded silhouette would.
  double edge_spread;
  TCVector lo;
  TCVector hi;
  std::string* log;  // painting order, e.g. "c3 c1"
  int* deleted;      // counts destructions
  int contour_calls;
  int reflected_calls;
  int surface_line_calls;
  int frame_data_calls;
  std::string last_stream;
  std::string last_frame;

 private:
  void note(const char* what) {
    if (log == nullptr) return;
    if (!log->empty()) *log += " ";
    *log += what + std::to_string(object_id);
  }

  void paint_into(TCView& view, object_contour& contour) {
    const int bands = contour.spectrum != nullptr ? contour.spectrum->n : 0;
    double radiance[8];
    for (int b = 0; b < bands && b < 8; b++) radiance[b] = (value + 10.0 * b) * coverage;
    for (int row = 0; row < contour.n_rows; row++) {
      for (int col = 0; col < contour.n_cols; col++) {
        double e0, e1, a0, a1;
        view.pixel_bounds(row, col, e0, e1, a0, a1);
        const double centre = 0.5 * (a0 + a1);
        if (centre < first_azimuth_painted || centre >= last_azimuth_painted) continue;
        const int edge_inside = (first_azimuth_painted > a0 && first_azimuth_painted < a1) ||
                                (last_azimuth_painted > a0 && last_azimuth_painted < a1);
        const double far = edge_inside ? depth + edge_spread : depth;
        contour.add_sample(row, col, radiance, depth, depth, far, coverage, object_id, nullptr);
      }
    }
  }
};

// The caller's [band][pixel] planes, filled with a value.
struct Radiance_planes {
  Radiance_planes(int bands, int pixels, float fill) : n(bands) {
    planes = new float*[bands];
    for (int b = 0; b < bands; b++) {
      planes[b] = new float[pixels];
      for (int k = 0; k < pixels; k++) planes[b][k] = fill;
    }
  }
  ~Radiance_planes() {
    for (int b = 0; b < n; b++) delete[] planes[b];
    delete[] planes;
  }
  int n;
  float** planes;
};

#endif
