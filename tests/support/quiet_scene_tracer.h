#ifndef TC_TESTS_QUIET_SCENE_TRACER_H
#define TC_TESTS_QUIET_SCENE_TRACER_H

#include "TCScene_tracer.h"
#include "TCVector.h"

// A scene with nothing in it: no bands, no sun, no objects, no air; every
// pass paints nothing. Test fakes derive from it and answer only what their
// test asks, so that a new question of the tracer needs no change to them.
class Quiet_scene_tracer : public TCScene_tracer {
 public:
  int band_count() const override { return 0; }
  const TCBand* band_table() const override { return nullptr; }
  int frame_number() const override { return 0; }
  const TCStar* star() const override { return nullptr; }
  int sun_irradiance_at(const TCVector&, TCSpectrum&, int) override { return 0; }
  int object_count() const override { return 0; }
  const char* object_name(int) const override { return nullptr; }
  int object_kind(int) const override { return -1; }
  int object_position(int, TCVector&) const override { return 0; }
  int surface_height_under(int, const TCVector&, double&, double&) const override { return 0; }
  int find_by_name(const char*, int& index) const override {
    index = -1;
    return 0;
  }
  int air_radiance(const TCRay&, TCSpectrum&) override { return 0; }
  int nearest_except(int, const TCRay&, TCVector&) override { return 0; }
  int nearest_active(const int*, const TCRay&, TCVector&) override { return 0; }
  void radiance_from(int, int, const TCRay&, TCSpectrum&) override {}
  void image_contour_for_source(int, TCView&, object_contour&) override {}
  void image_scene(int*, TCView&, TCSpectrum*, float**, double, object_contour*, int) override {}
  void image_scene_for_source(int, TCView&, TCSpectrum*, float**, double,
                              object_contour*) override {}
  void image_scene_secondary(int*, TCView&, TCSpectrum*, float**, double, object_contour*,
                             int) override {}
  void image_surface_line(int*, TCView&, TCSpectrum*, float**, double, object_contour*,
                          int) override {}
};

#endif
