#ifndef TC_TESTS_SUN_TEST_OBJECTS_H
#define TC_TESTS_SUN_TEST_OBJECTS_H

#include <string>

#include "TCKeyframes.h"
#include "TCObject.h"
#include "TCObject_list.h"
#include "TCRay.h"
#include "TCSpectrum.h"

// An object on the sun's way whose answers the test sets: whether it holds
// a point, its measure along a ray, whether and how far a ray meets it, and
// the fraction of light it lets through. It sits at the world origin,
// unrotated, so its frame is the world's. It counts and logs the questions
// it is asked.
class Sun_blocker : public TCObject {
 public:
  explicit Sun_blocker(double transmission_in)
      : TCObject(TCKeyframes(), 0.0, 0.0, 0, nullptr, 4),
        transmission(transmission_in),
        contains(0),
        measure(0.0),
        hit(0),
        hit_distance(0.0),
        behind(nullptr),
        log(nullptr),
        inside_calls(0),
        measure_calls(0),
        intersect_calls(0),
        radiance_calls(0),
        last_source(-99) {}

  int point_inside(const TCVector& p) override {
    inside_calls++;
    last_point = p;
    note("i");
    return contains;
  }
  double ray_measure(TCRay ray) override {
    measure_calls++;
    note("m");
    last_ray = ray;
    return measure;
  }
  int intersect(const TCRay& ray, TCVector& hit_point, double& distance) override {
    intersect_calls++;
    note("x");
    last_ray = ray;
    hit_point = ray.origin() + ray.direction() * hit_distance;
    distance = hit_distance;
    return hit;
  }
  // Scales what arrives by the transmission, then hands on to the object
  // behind, if any, as a chain of transmissions would.
  void radiance_from(int source_object, const TCRay& ray, TCSpectrum& out) override {
    radiance_calls++;
    note("r");
    last_source = source_object;
    last_ray = ray;
    for (int i = 0; i < out.n; i++) out.radiance_in_band[i] *= transmission;
    if (behind != nullptr) behind->radiance_from(source_object, ray, out);
  }

  double transmission;
  int contains;
  double measure;
  int hit;  // what intersect returns
  double hit_distance;
  TCObject* behind;
  std::string* log;  // e.g. "i0 x0 i1 r1"
  int inside_calls;
  int measure_calls;
  int intersect_calls;
  int radiance_calls;
  int last_source;
  TCVector last_point;
  TCRay last_ray;

 private:
  void note(const char* what) {
    if (log == nullptr) return;
    if (!log->empty()) *log += " ";
    *log += what + std::to_string(object_id);
  }
};

#endif
