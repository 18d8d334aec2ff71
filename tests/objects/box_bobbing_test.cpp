#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>

#include "Bobbing_box_input.h"
#include "TCBobbing_box.h"
#include "TCObject_kinds.h"
#include "TCObject_list.h"
#include "stream_capture.h"

namespace {

// A tilted plane: h = h0 + gx X + gy Y over world X, Y; the clearance is
// the point's height over the surface there.
struct Plane {
  double h0, gx, gy;
};
double plane_height(void* context, const TCVector& p, double& clearance) {
  const Plane* plane = static_cast<const Plane*>(context);
  const double h = plane->h0 + plane->gx * p.x + plane->gy * p.y;
  clearance = p.z - h;
  return h;
}

// h = X^2: level on average about X = 0, but raised.
double bowl_height(void*, const TCVector& p, double& clearance) {
  const double h = p.x * p.x;
  clearance = p.z - h;
  return h;
}

TEST(BobbingBox, PlaneFitTurnsTheSlopesIntoTheBoxsAxes) {
  Plane plane = {0.3, 0.1, 0.05};
  const TCVector p(2.0, -1.0, 4.0);
  const double phi = 0.5;
  TCSea_plane fit;
  ASSERT_EQ(TCBobbing_box::fit_surface(plane_height, &plane, p, phi, TCVector(10.0, 6.0, 2.0),
                                       10.0f, 0.5f, fit),
            1);
  // Along the box's x (cos phi, sin phi) the slope is gx cos + gy sin; along
  // its y (-sin phi, cos phi) it is -gx sin + gy cos. The mean is the
  // height under the centre, 0.3 + 0.2 - 0.05.
  const double a = 0.1 * std::cos(phi) + 0.05 * std::sin(phi);
  const double b = -0.1 * std::sin(phi) + 0.05 * std::cos(phi);
  EXPECT_NEAR(fit.a, a, 1e-12);
  EXPECT_NEAR(fit.b, b, 1e-12);
  EXPECT_NEAR(fit.mean, 0.45, 1e-12);
  EXPECT_NEAR(fit.offset.x, a * 4.0, 1e-12);
  EXPECT_NEAR(fit.offset.y, b * 4.0, 1e-12);
  EXPECT_NEAR(fit.offset.z, 0.45, 1e-12);
  EXPECT_EQ(fit.pitch, static_cast<float>(-std::atan(a)));
  EXPECT_EQ(fit.roll, static_cast<float>(std::atan(b)));
}

TEST(BobbingBox, CurvedSurfaceRaisesTheMeanWithoutTilt) {
  // Steps of 10 / 100 along x: the mean of (0.1 i)^2 over i = -50..50 is
  // 0.01 * 2 * 42925 / 101 = 8.5.
  TCSea_plane fit;
  ASSERT_EQ(TCBobbing_box::fit_surface(bowl_height, nullptr, TCVector(0.0, 0.0, 1.0), 0.0,
                                       TCVector(10.0, 4.0, 1.0), 5.0f, 1.0f, fit),
            1);
  EXPECT_NEAR(fit.a, 0.0, 1e-12);
  EXPECT_NEAR(fit.b, 0.0, 1e-12);
  EXPECT_NEAR(fit.mean, 8.5, 1e-9);
  EXPECT_NEAR(fit.offset.z, 8.5, 1e-9);
}

TEST(BobbingBox, BoxBeyondTheDecouplingHeightIsNotMoved) {
  Plane plane = {0.0, 0.1, 0.0};
  TCSea_plane fit;
  // 4 m above the surface with a band of 4 m: outside (the band is open).
  EXPECT_EQ(TCBobbing_box::fit_surface(plane_height, &plane, TCVector(0.0, 0.0, 4.0), 0.0,
                                       TCVector(2.0, 2.0, 2.0), 4.0f, 1.0f, fit),
            0);
  EXPECT_EQ(fit.a, 0.0);
  EXPECT_EQ(fit.offset.z, 0.0);
  EXPECT_EQ(fit.pitch, 0.0f);
  // As far below: outside too.
  EXPECT_EQ(TCBobbing_box::fit_surface(plane_height, &plane, TCVector(0.0, 0.0, -4.0), 0.0,
                                       TCVector(2.0, 2.0, 2.0), 4.0f, 1.0f, fit),
            0);
  EXPECT_EQ(TCBobbing_box::fit_surface(plane_height, &plane, TCVector(0.0, 0.0, -3.9), 0.0,
                                       TCVector(2.0, 2.0, 2.0), 4.0f, 1.0f, fit),
            1);
  EXPECT_EQ(TCBobbing_box::fit_surface(nullptr, nullptr, TCVector(), 0.0, TCVector(2.0, 2.0, 2.0),
                                       4.0f, 1.0f, fit),
            0);
}

TEST(BobbingBox, FootprintOfNoSizeGivesNoTilt) {
  Plane plane = {1.0, 0.1, 0.2};
  TCSea_plane fit;
  ASSERT_EQ(TCBobbing_box::fit_surface(plane_height, &plane, TCVector(0.0, 0.0, 1.0), 0.0,
                                       TCVector(2.0, 2.0, 2.0), 4.0f, 0.0f, fit),
            1);
  EXPECT_EQ(fit.a, 0.0);
  EXPECT_EQ(fit.b, 0.0);
  EXPECT_NEAR(fit.mean, 1.0, 1e-12);
}

Bobbing_box_input* new_bobbing_input() {
  Bobbing_box_input* input = new Bobbing_box_input();
  input->length = TCVector(4.0, 2.0, 1.0);
  input->decoupling_height = 2.0;
  input->dampening_factor = 0.5;
  input->track.set_number_of_times(2);
  input->track.times[0] = 0.0;
  input->track.times[1] = 10.0;
  input->track.positions[1] = TCVector(10.0, 0.0, 1.0);
  input->track.phi[1] = 0.2;
  return input;
}

TEST(BobbingBox, RidesSurfacesWithinReach) {
  Bobbing_box_input* input = new_bobbing_input();
  TCBobbing_box box(*input);
  delete input;
  Plane plane = {0.0, 0.1, 0.0};
  TCVector moved(1.0, 2.0, 3.0);
  double chi = 0.25, theta = 0.5;
  // At x = 5, z = 0.5 the surface stands at 0.5: clearance 0, within 2 m.
  ASSERT_EQ(box.ride_surface(plane_height, &plane, TCVector(5.0, 0.0, 0.5), 0.0, moved, chi, theta),
            1);
  EXPECT_NEAR(moved.x, 1.0 + 0.1 * 0.5, 1e-12);
  EXPECT_NEAR(moved.y, 2.0, 1e-12);
  EXPECT_NEAR(moved.z, 3.0 + 0.5, 1e-12);
  EXPECT_EQ(chi, 0.25 + static_cast<float>(-std::atan(0.1)));
  EXPECT_NEAR(theta, 0.5, 1e-12);
}

TEST(BobbingBox, WithoutAnOceanTheBoxFollowsItsKeyFrames) {
  Bobbing_box_input* input = new_bobbing_input();
  TCBobbing_box* box = new TCBobbing_box(*input);
  delete input;
  TCObject_list list;
  ASSERT_EQ(list.add_runtime_object(box), 1);
  // An ocean without a height to give yet, and the box.
  TCObject* sea = new TCObject(TCKeyframes(), 0.0, 0.0, 1, &list, TC_KIND_OCEAN);
  ASSERT_EQ(list.add_runtime_object(sea), 1);
  box->set_time(5.0);
  EXPECT_DOUBLE_EQ(box->position.x, 5.0);
  EXPECT_DOUBLE_EQ(box->position.z, 0.5);
  EXPECT_DOUBLE_EQ(box->phi, 0.1);
  EXPECT_EQ(box->time, 5.0);
}

TEST(BobbingBox, KeepsItsParametersInSinglePrecision) {
  Bobbing_box_input* input = new_bobbing_input();
  input->decoupling_height = 0.1;
  TCBobbing_box box(*input);
  delete input;
  EXPECT_EQ(box.decoupling_height, 0.1f);
  EXPECT_EQ(box.dampening_factor, 0.5f);
}

TEST(BobbingBox, SectionReaderNeedsItsEnd) {
  Bobbing_box_input* input = new_bobbing_input();
  TCBobbing_box box(*input);
  delete input;
  {
    std::istringstream in(
        "Tidecast_data_file bobbing_box 1 1\ndecoupling_height 0.3\ndampening_factor  0.75\nend\n");
    Stream_capture out(std::cout);
    EXPECT_EQ(box.read_section(in), 1);
    EXPECT_EQ(out.text(), "");
  }
  EXPECT_EQ(box.decoupling_height, 0.3f);
  EXPECT_EQ(box.dampening_factor, 0.75f);
  {
    std::istringstream in("Tidecast_data_file bobbing_box 1 1 d 1 f 2 finish");
    Stream_capture out(std::cout);
    EXPECT_EQ(box.read_section(in), 0);
    EXPECT_EQ(out.text(), "error processing solid_box file \nread finishinstead of end\n");
  }
  EXPECT_EQ(box.decoupling_height, 0.3f);
  {
    // Beyond a float's range.
    std::istringstream in("Tidecast_data_file bobbing_box 1 1 d 1e300 f 2 end");
    Stream_capture out(std::cout);
    EXPECT_EQ(box.read_section(in), 0);
  }
  {
    std::istringstream in("Tidecast_data_file box 1 1 d 1 f 2 end");
    Stream_capture out(std::cout);
    EXPECT_EQ(box.read_section(in), 0);
    EXPECT_EQ(out.text(),
              "file type box is not of \nexpected type bobbing_box\n"
              " cannot process bobbing_box file \n");
  }
  EXPECT_EQ(box.dampening_factor, 0.75f);
}

TEST(BobbingBox, PrintDimensionsAddsTheBobbingLines) {
  Bobbing_box_input* input = new_bobbing_input();
  TCBobbing_box box(*input);
  delete input;
  Stream_capture out(std::cout);
  box.print_dimensions();
  EXPECT_EQ(out.text(),
            "Dimensions:  4 2 1\n"
            "number of bands 0\n"
            "bands ids       \n"
            "radiance in bands: \n"
            "reflectivity in bands: \n"
            "bobbing parameters \n"
            "decoupling height  2\n"
            "dampening factor   0.5\n");
}

}  // namespace
