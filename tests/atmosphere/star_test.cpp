#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCObject_list.h"
#include "TCRay.h"
#include "TCSpectrum.h"
#include "TCStar.h"
#include "TCStar_input.h"
#include "stream_capture.h"
#include "sun_test_objects.h"

// Expected angles and directions come from sun_reference.py beside this file.

namespace {

// Within a few units of the last place, for values that pass through sin/cos.
const double direction_tolerance = 1e-15;

// A sun file of two bands, ids 1 and 2, irradiance 1.5 and 1.25.
void two_bands(TCStar_input& input) {
  TCSpectrum bands(2);
  bands.band_id[0] = 1;
  bands.band_id[1] = 2;
  bands.radiance_in_band[0] = 1.5;
  bands.radiance_in_band[1] = 1.25;
  input.irradiance = bands;
  input.number_of_bands = 2;
}

// A sun straight overhead with two bands.
TCStar overhead_sun() {
  TCStar_input input;
  two_bands(input);
  TCStar sun(input);
  sun.set_angles(3.1415926535, 0.0);
  return sun;
}

// Bands asked for: ids 1 and 2, radiance set to a marker that must be
// overwritten.
TCSpectrum asked_bands() {
  TCSpectrum out(2);
  out.radiance_in_band[0] = -7.0;
  out.radiance_in_band[1] = -7.0;
  return out;
}

Sun_blocker* add_blocker(TCObject_list& list, double transmission, std::string* log) {
  Sun_blocker* object = new Sun_blocker(transmission);
  object->log = log;
  EXPECT_EQ(list.add_runtime_object(object), 1);
  return object;
}

TEST(Sun, DefaultIsAbsentAndOnWithOneZeroBand) {
  TCStar sun;
  EXPECT_EQ(sun.present, 0);
  EXPECT_EQ(sun.on, 1);
  EXPECT_EQ(sun.position_method_flag, 0);
  EXPECT_EQ(sun.zenith, 0.0);
  EXPECT_EQ(sun.azimuth, 0.0);
  EXPECT_EQ(sun.solid_angle, 6.76e-05);
  ASSERT_EQ(sun.irradiance.n, 1);
  EXPECT_EQ(sun.irradiance.radiance_in_band[0], 0.0);
  EXPECT_EQ(sun.track.number_of_times, 1);
}

TEST(Sun, NoSunPointsStraightDownAndGivesNothing) {
  TCStar sun;
  EXPECT_EQ(sun.direction.x, 0.0);
  EXPECT_EQ(sun.direction.y, 0.0);
  EXPECT_EQ(sun.direction.z, -1.0);
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(1.0, 2.0, 3.0), out, nullptr, -1);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);
  TCObject_list list;
  out = asked_bands();
  sun.irradiance_at(TCVector(1.0, 2.0, 3.0), out, &list, -1);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);
}

TEST(Sun, AbsentSunAsksNoObject) {
  TCStar sun;
  TCObject_list list;
  std::string log;
  add_blocker(list, 1.0, &log)->contains = 1;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, -1);
  EXPECT_EQ(log, "");
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
}

TEST(Sun, FromInputTakesTrackMethodAndSpectrum) {
  TCStar_input input;
  two_bands(input);
  input.position_method_flag = 4;
  std::istringstream block("number_of_times 2 time theta phi 0 30 90 10 60 180 data_file: sun.dat");
  ASSERT_EQ(input.read_list_block(block), 1);
  TCStar sun(input);
  EXPECT_EQ(sun.present, 1);
  EXPECT_EQ(sun.on, 1);
  EXPECT_EQ(sun.position_method_flag, 4);
  ASSERT_EQ(sun.irradiance.n, 2);
  EXPECT_EQ(sun.irradiance.band_id[1], 2);
  EXPECT_EQ(sun.irradiance.radiance_in_band[1], 1.25);
  ASSERT_EQ(sun.track.number_of_times, 2);
  EXPECT_EQ(sun.track.times[1], 10.0);
  EXPECT_DOUBLE_EQ(sun.track.chi[0], 2.6179938779166667);
  // The angles wait for the first set_time.
  EXPECT_EQ(sun.zenith, 0.0);
  EXPECT_EQ(sun.azimuth, 0.0);
}

TEST(Sun, SetFromInputOnADefaultSunMakesItPresent) {
  TCStar_input input;
  two_bands(input);
  TCStar sun;
  sun.set_from_input(input);
  EXPECT_EQ(sun.present, 1);
  EXPECT_EQ(sun.irradiance.n, 2);
}

TEST(Sun, DirectionFromTheAngles) {
  TCStar sun;
  sun.set_angles(1.0, 2.0);
  EXPECT_EQ(sun.present, 1);
  EXPECT_EQ(sun.zenith, 1.0);
  EXPECT_EQ(sun.azimuth, 2.0);
  EXPECT_DOUBLE_EQ(sun.direction.x, 0.35017548837401463);
  EXPECT_DOUBLE_EQ(sun.direction.y, -0.7651474012342926);
  EXPECT_DOUBLE_EQ(sun.direction.z, -0.5403023058681398);
}

TEST(Sun, KeyFramesGiveTheAnglesAtATime) {
  TCStar_input input;
  std::istringstream block("number_of_times 2 time theta phi 0 30 90 10 60 180 data_file: sun.dat");
  ASSERT_EQ(input.read_list_block(block), 1);
  TCStar sun(input);
  sun.set_time(0.0);
  EXPECT_DOUBLE_EQ(sun.zenith, 2.6179938779166667);
  EXPECT_DOUBLE_EQ(sun.azimuth, 4.71238898025);
  // theta 30 on file, azimuth 90: 30 degrees from overhead, towards +y.
  EXPECT_NEAR(sun.direction.x, 6.734488826337064e-11, direction_tolerance);
  EXPECT_DOUBLE_EQ(sun.direction.y, 0.5000000000648026);
  EXPECT_DOUBLE_EQ(sun.direction.z, 0.8660254037470249);
  sun.set_time(5.0);
  EXPECT_DOUBLE_EQ(sun.zenith, 2.356194490125);
  EXPECT_DOUBLE_EQ(sun.azimuth, 5.4977871436250005);
  // Past the last key the end segment goes on.
  sun.set_time(20.0);
  EXPECT_DOUBLE_EQ(sun.zenith, 1.57079632675);
  EXPECT_DOUBLE_EQ(sun.azimuth, 7.85398163375);
  sun.set_time(-10.0);
  EXPECT_DOUBLE_EQ(sun.zenith, 3.1415926535);
  EXPECT_DOUBLE_EQ(sun.azimuth, 3.1415926535);
}

TEST(Sun, OneKeyNeverMoves) {
  TCStar_input input;
  std::istringstream block("number_of_times 1 time theta phi 3 45 10 data_file: s");
  ASSERT_EQ(input.read_list_block(block), 1);
  TCStar sun(input);
  sun.set_time(-100.0);
  const double zenith = sun.zenith;
  const double azimuth = sun.azimuth;
  sun.set_time(1e6);
  EXPECT_EQ(sun.zenith, zenith);
  EXPECT_EQ(sun.azimuth, azimuth);
}

TEST(Sun, ClockRisesAtSixInTheEast) {
  TCStar sun;
  sun.position_method_flag = 1;
  sun.set_time(6.0);
  EXPECT_EQ(sun.present, 1);
  EXPECT_EQ(sun.zenith, 1.57079632675);
  EXPECT_EQ(sun.azimuth, 1.5707963267948966);
  EXPECT_NEAR(sun.direction.x, -6.123233995736766e-17, direction_tolerance);
  EXPECT_DOUBLE_EQ(sun.direction.y, -1.0);
  EXPECT_NEAR(sun.direction.z, -4.489659216976159e-11, direction_tolerance);
}

TEST(Sun, ClockIsOverheadAtTwelve) {
  TCStar sun;
  sun.position_method_flag = 1;
  sun.set_time(12.0);
  EXPECT_EQ(sun.zenith, 3.1415926535);
  EXPECT_NEAR(sun.direction.x, 0.0, direction_tolerance);
  EXPECT_NEAR(sun.direction.y, -8.979318433952318e-11, direction_tolerance);
  EXPECT_DOUBLE_EQ(sun.direction.z, 1.0);
}

TEST(Sun, ClockSetsOnTheOtherHorizonAtEighteen) {
  TCStar sun;
  sun.position_method_flag = 1;
  sun.set_time(18.0);
  EXPECT_EQ(sun.zenith, 4.71238898025);
  EXPECT_NEAR(sun.direction.x, 6.123233995736766e-17, direction_tolerance);
  EXPECT_DOUBLE_EQ(sun.direction.y, 1.0);
  EXPECT_NEAR(sun.direction.z, 1.3468977650928477e-10, direction_tolerance);
}

TEST(Sun, ClockGoesOnBelowTheHorizonWithoutWrapping) {
  TCStar sun;
  sun.position_method_flag = 1;
  sun.set_time(24.0);
  EXPECT_EQ(sun.zenith, 6.283185307);
  EXPECT_NEAR(sun.direction.y, 1.7958636867904636e-10, direction_tolerance);
  EXPECT_DOUBLE_EQ(sun.direction.z, -1.0);
}

TEST(Sun, AnyNonZeroMethodIsTheClock) {
  TCStar_input input;
  input.position_method_flag = -3;
  TCStar sun(input);
  sun.set_time(12.0);
  EXPECT_EQ(sun.zenith, 3.1415926535);
  EXPECT_EQ(sun.azimuth, 1.5707963267948966);
}

TEST(Sun, CopyTakesAnglesDirectionSpectrumAndTrack) {
  TCStar_input input;
  two_bands(input);
  std::istringstream block("number_of_times 2 time theta phi 0 30 90 10 60 180 data_file: s");
  ASSERT_EQ(input.read_list_block(block), 1);
  input.position_method_flag = 2;
  TCStar sun(input);
  sun.set_angles(1.0, 2.0);
  sun.on = 0;
  sun.solid_angle = 1.0;
  TCStar copy(sun);
  EXPECT_EQ(copy.present, 1);
  EXPECT_EQ(copy.position_method_flag, 2);
  EXPECT_EQ(copy.zenith, 1.0);
  EXPECT_EQ(copy.azimuth, 2.0);
  EXPECT_EQ(copy.direction.x, sun.direction.x);
  EXPECT_EQ(copy.direction.y, sun.direction.y);
  EXPECT_EQ(copy.direction.z, sun.direction.z);
  ASSERT_EQ(copy.irradiance.n, 2);
  EXPECT_EQ(copy.irradiance.radiance_in_band[0], 1.5);
  ASSERT_EQ(copy.track.number_of_times, 2);
  EXPECT_EQ(copy.track.times[1], 10.0);
  // Not among what a copy takes: these are the new sun's own defaults.
  EXPECT_EQ(copy.on, 1);
  EXPECT_EQ(copy.solid_angle, 6.76e-05);
}

TEST(Sun, CopyOfAnAbsentSunIsPresent) {
  TCStar sun;
  TCStar copy(sun);
  EXPECT_EQ(copy.present, 1);
  EXPECT_EQ(copy.direction.z, -1.0);
}

TEST(Sun, PrintsAnglesInDegreesAndTheDirectionOnOneLine) {
  TCStar sun;
  sun.set_angles(1.0, 2.0);
  std::ostringstream out;
  sun.print_state(out);
  EXPECT_EQ(out.str(),
            "sun zenith 57.2958 azimuth 114.592 direction 0.350175 -0.765147 -0.540302\n");
}

TEST(Sun, PrintsNoNegativeZeros) {
  TCStar sun;
  std::ostringstream out;
  sun.print_state(out);
  EXPECT_EQ(out.str(), "sun zenith 0 azimuth 0 direction 0 0 -1\n");
}

TEST(SunIrradiance, WithoutAListEachBandAskedForGetsItsIrradiance) {
  TCStar sun = overhead_sun();
  TCSpectrum out(3);
  out.band_id[0] = 2;
  out.band_id[1] = 5;
  out.band_id[2] = 1;
  sun.irradiance_at(TCVector(), out, nullptr, -1);
  EXPECT_EQ(out.radiance_in_band[0], 1.25);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);
  EXPECT_EQ(out.radiance_in_band[2], 1.5);
}

TEST(SunIrradiance, EmptyListLetsAllThrough) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, -1);
  EXPECT_EQ(out.radiance_in_band[0], 1.5);
  EXPECT_EQ(out.radiance_in_band[1], 1.25);
}

TEST(SunIrradiance, OpaqueObjectInTheWayGivesZero) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  Sun_blocker* roof = add_blocker(list, 0.0, nullptr);
  roof->hit = 1;
  roof->hit_distance = 5.0;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(1.0, 2.0, 3.0), out, &list, -1);
  EXPECT_EQ(roof->radiance_calls, 1);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);
}

TEST(SunIrradiance, RayRunsFromThePointTowardsTheSun) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  Sun_blocker* haze = add_blocker(list, 0.5, nullptr);
  haze->hit = 1;
  haze->hit_distance = 2.0;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(1.0, 2.0, 3.0), out, &list, -1);
  EXPECT_EQ(haze->last_point.x, 1.0);
  EXPECT_EQ(haze->last_point.y, 2.0);
  EXPECT_EQ(haze->last_point.z, 3.0);
  const TCRay& ray = haze->last_ray;
  EXPECT_EQ(ray[0], 1.0);
  EXPECT_EQ(ray[1], 2.0);
  EXPECT_EQ(ray[2], 3.0);
  EXPECT_EQ(ray[3], sun.direction.x);
  EXPECT_EQ(ray[4], sun.direction.y);
  EXPECT_EQ(ray[5], sun.direction.z);
  EXPECT_DOUBLE_EQ(ray[5], 1.0);
  // The 1.0 each band starts at, halved, times the irradiance.
  EXPECT_EQ(out.radiance_in_band[0], 0.75);
  EXPECT_EQ(out.radiance_in_band[1], 0.625);
  EXPECT_EQ(haze->last_source, -1);
}

TEST(SunIrradiance, MissOrZeroResultIsNotAHit) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  Sun_blocker* missed = add_blocker(list, 0.0, nullptr);
  missed->hit = 0;
  missed->hit_distance = 1.0;
  Sun_blocker* negative = add_blocker(list, 0.0, nullptr);
  negative->hit = -1;
  negative->hit_distance = 1.0;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, -1);
  EXPECT_EQ(missed->radiance_calls, 0);
  EXPECT_EQ(negative->radiance_calls, 0);
  EXPECT_EQ(out.radiance_in_band[0], 1.5);
}

TEST(SunIrradiance, NearestHitIsAskedAndTheFirstOfEqualsKept) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  Sun_blocker* far = add_blocker(list, 0.5, nullptr);
  far->hit = 1;
  far->hit_distance = 9.0;
  Sun_blocker* near = add_blocker(list, 0.25, nullptr);
  near->hit = 1;
  near->hit_distance = 3.0;
  Sun_blocker* as_near = add_blocker(list, 0.0, nullptr);
  as_near->hit = 1;
  as_near->hit_distance = 3.0;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, -1);
  EXPECT_EQ(far->radiance_calls, 0);
  EXPECT_EQ(near->radiance_calls, 1);
  EXPECT_EQ(as_near->radiance_calls, 0);
  EXPECT_EQ(out.radiance_in_band[0], 0.375);
}

TEST(SunIrradiance, PointInsideTwoObjectsGoesToTheLargerMeasure) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  std::string log;
  Sun_blocker* hit = add_blocker(list, 0.0, &log);
  hit->hit = 1;
  hit->hit_distance = 1.0;
  Sun_blocker* small = add_blocker(list, 0.5, &log);
  small->contains = 1;
  small->measure = 2.0;
  Sun_blocker* large = add_blocker(list, 0.25, &log);
  large->contains = 1;
  large->measure = 3.0;
  Sun_blocker* after = add_blocker(list, 0.0, &log);
  after->hit = 1;
  after->hit_distance = 0.5;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, -1);
  // Once a container is known no more hits are tested, and the hit found
  // before it is never asked.
  EXPECT_EQ(log, "i0 x0 i1 m1 i2 m2 i3 r2");
  EXPECT_EQ(hit->radiance_calls, 0);
  EXPECT_EQ(after->intersect_calls, 0);
  EXPECT_EQ(out.radiance_in_band[0], 0.375);
  EXPECT_EQ(out.radiance_in_band[1], 0.3125);
}

TEST(SunIrradiance, EqualMeasuresKeepTheFirstContainer) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  Sun_blocker* first = add_blocker(list, 0.5, nullptr);
  first->contains = 1;
  first->measure = -4.0;
  Sun_blocker* second = add_blocker(list, 0.0, nullptr);
  second->contains = 1;
  second->measure = -4.0;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, -1);
  EXPECT_EQ(first->radiance_calls, 1);
  EXPECT_EQ(second->radiance_calls, 0);
  EXPECT_EQ(out.radiance_in_band[0], 0.75);
}

TEST(SunIrradiance, ExcludedObjectIsNotAskedButGoesDownTheChain) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  std::string log;
  Sun_blocker* air = add_blocker(list, 0.5, &log);
  air->hit = 1;
  air->hit_distance = 4.0;
  Sun_blocker* self = add_blocker(list, 0.0, &log);
  self->contains = 1;
  self->hit = 1;
  self->hit_distance = 1.0;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, 1);
  EXPECT_EQ(self->inside_calls, 0);
  EXPECT_EQ(self->intersect_calls, 0);
  EXPECT_EQ(air->radiance_calls, 1);
  // The exclusion travels with the ray as its source object.
  EXPECT_EQ(air->last_source, 1);
  EXPECT_EQ(out.radiance_in_band[0], 0.75);
}

TEST(SunIrradiance, ContainingObjectAlsoLearnsTheExclusion) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  Sun_blocker* air = add_blocker(list, 0.5, nullptr);
  air->contains = 1;
  Sun_blocker* box = add_blocker(list, 0.0, nullptr);
  box->contains = 1;
  box->measure = 10.0;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, 1);
  EXPECT_EQ(box->radiance_calls, 0);
  EXPECT_EQ(air->radiance_calls, 1);
  EXPECT_EQ(air->last_source, 1);
  EXPECT_EQ(out.radiance_in_band[1], 0.625);
}

TEST(SunIrradiance, ExclusionOutOfRangeLeavesEveryObjectIn) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  Sun_blocker* only = add_blocker(list, 0.5, nullptr);
  only->contains = 1;
  for (int excluded : {-1, 1, 100, -5}) {
    TCSpectrum out = asked_bands();
    sun.irradiance_at(TCVector(), out, &list, excluded);
    EXPECT_EQ(only->last_source, -1);
    EXPECT_EQ(out.radiance_in_band[0], 0.75);
  }
  EXPECT_EQ(only->radiance_calls, 4);
}

TEST(SunIrradiance, ChainOfTransmissionsMultiplies) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  Sun_blocker* cloud = add_blocker(list, 0.5, nullptr);
  cloud->hit = 1;
  cloud->hit_distance = 10.0;
  Sun_blocker* air = add_blocker(list, 0.8, nullptr);
  air->contains = 1;
  air->behind = cloud;
  TCSpectrum out = asked_bands();
  sun.irradiance_at(TCVector(), out, &list, -1);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], 0.6);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[1], 0.5);
}

TEST(SunIrradiance, BandsTheSunLacksGetZeroAfterTheWay) {
  TCStar sun = overhead_sun();
  TCObject_list list;
  add_blocker(list, 0.5, nullptr)->contains = 1;
  TCSpectrum out(2);
  out.band_id[0] = 9;
  out.band_id[1] = 2;
  sun.irradiance_at(TCVector(), out, &list, -1);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
  EXPECT_EQ(out.radiance_in_band[1], 0.625);
}

}  // namespace
