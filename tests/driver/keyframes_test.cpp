#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <iostream>
#include <sstream>
#include <string>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "TCData_file.h"
#include "TCKeyframes.h"
#include "stream_capture.h"

namespace {

// Collects what is written to standard output for as long as it lives.
void set_key(TCKeyframes& track, int i, double t, double x, double y, double z, double chi,
             double phi, double theta) {
  track.times[i] = t;
  track.positions[i] = TCVector(x, y, z);
  track.chi[i] = chi;
  track.phi[i] = phi;
  track.theta[i] = theta;
}

// Keys at t = 0 and t = 1; every value is a binary fraction, so results are exact.
TCKeyframes two_keys() {
  TCKeyframes track;
  track.set_number_of_times(2);
  set_key(track, 0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.25, 1.0);
  set_key(track, 1, 1.0, 1.0, 2.0, 3.0, 0.5, 0.75, 0.5);
  return track;
}

void expect_key_zero(const TCKeyframes& track) {
  EXPECT_EQ(track.times[0], 0.0);
  EXPECT_EQ(track.positions[0].x, 0.0);
  EXPECT_EQ(track.positions[0].y, 0.0);
  EXPECT_EQ(track.positions[0].z, 0.0);
  EXPECT_EQ(track.chi[0], 0.0);
  EXPECT_EQ(track.phi[0], 0.0);
  EXPECT_EQ(track.theta[0], 0.0);
}

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

const char* const heading = "time  x  y  z  chi  phi  theta \n";

// Construction, storage and copies.

TEST(KeyframeStorage, DefaultIsOneZeroKey) {
  TCKeyframes track;
  EXPECT_EQ(track.number_of_times, 1);
  expect_key_zero(track);
}

TEST(KeyframeStorage, NewCountGivesZeroKeys) {
  TCKeyframes track = two_keys();
  track.set_number_of_times(4);
  EXPECT_EQ(track.number_of_times, 4);
  for (int i = 0; i < 4; i++) {
    EXPECT_EQ(track.times[i], 0.0);
    EXPECT_EQ(track.positions[i].x, 0.0);
    EXPECT_EQ(track.positions[i].z, 0.0);
    EXPECT_EQ(track.chi[i], 0.0);
    EXPECT_EQ(track.phi[i], 0.0);
    EXPECT_EQ(track.theta[i], 0.0);
  }
}

TEST(KeyframeStorage, CountsBelowOneKeepOneZeroKeyOfStorage) {
  TCKeyframes track = two_keys();
  track.set_number_of_times(0);
  EXPECT_EQ(track.number_of_times, 0);
  expect_key_zero(track);
  track.set_number_of_times(-4);
  EXPECT_EQ(track.number_of_times, -4);
  expect_key_zero(track);
}

TEST(KeyframeStorage, CopyConstructionIsDeep) {
  TCKeyframes original = two_keys();
  TCKeyframes copy(original);
  EXPECT_NE(copy.times, original.times);
  EXPECT_NE(copy.positions, original.positions);
  EXPECT_NE(copy.chi, original.chi);
  set_key(original, 1, 9.0, 9.0, 9.0, 9.0, 9.0, 9.0, 9.0);
  EXPECT_EQ(copy.number_of_times, 2);
  EXPECT_EQ(copy.times[1], 1.0);
  EXPECT_EQ(copy.positions[1].y, 2.0);
  EXPECT_EQ(copy.chi[1], 0.5);
  EXPECT_EQ(copy.phi[1], 0.75);
  EXPECT_EQ(copy.theta[1], 0.5);
}

TEST(KeyframeStorage, AssignmentIsDeepAndReplacesTheOldKeys) {
  TCKeyframes original = two_keys();
  TCKeyframes target;
  target.set_number_of_times(5);
  target = original;
  EXPECT_EQ(target.number_of_times, 2);
  EXPECT_NE(target.times, original.times);
  original.positions[1] = TCVector(-1.0, -1.0, -1.0);
  original.theta[0] = 3.0;
  EXPECT_EQ(target.positions[1].x, 1.0);
  EXPECT_EQ(target.theta[0], 1.0);
}

TEST(KeyframeStorage, SelfAssignmentKeepsTheKeys) {
  TCKeyframes track = two_keys();
  TCKeyframes& same = track;
  track = same;
  EXPECT_EQ(track.number_of_times, 2);
  EXPECT_EQ(track.positions[1].z, 3.0);
}

TEST(KeyframeStorage, CopyOfATrackWithNoKeysStillHasOneZeroKey) {
  TCKeyframes track;
  track.set_number_of_times(-2);
  TCKeyframes copy(track);
  EXPECT_EQ(copy.number_of_times, -2);
  expect_key_zero(copy);
  TCKeyframes assigned = two_keys();
  assigned = track;
  EXPECT_EQ(assigned.number_of_times, -2);
  expect_key_zero(assigned);
}

// Evaluation along the track.

TEST(KeyframeTrack, OneKeyGivesItsValuesForEveryTime) {
  TCKeyframes track;
  set_key(track, 0, 5.0, 1.0, 2.0, 3.0, 0.1, 0.2, 0.3);
  const double times[] = {-1e9, 0.0, 5.0, 6.0, 1e9};
  for (double t : times) {
    TCVector p;
    double chi = -1.0, phi = -1.0, theta = -1.0;
    track.pose_at(t, p, chi, phi, theta);
    EXPECT_EQ(p.x, 1.0);
    EXPECT_EQ(p.y, 2.0);
    EXPECT_EQ(p.z, 3.0);
    EXPECT_EQ(chi, 0.1);
    EXPECT_EQ(phi, 0.2);
    EXPECT_EQ(theta, 0.3);
  }
}

TEST(KeyframeTrack, NoKeysGiveTheZeroKey) {
  TCKeyframes track;
  track.set_number_of_times(0);
  TCVector p(7.0, 7.0, 7.0);
  double chi = 7.0, phi = 7.0, theta = 7.0;
  track.pose_at(3.0, p, chi, phi, theta);
  EXPECT_EQ(p.x, 0.0);
  EXPECT_EQ(p.y, 0.0);
  EXPECT_EQ(p.z, 0.0);
  EXPECT_EQ(chi, 0.0);
  EXPECT_EQ(phi, 0.0);
  EXPECT_EQ(theta, 0.0);
}

TEST(KeyframeTrack, MidwayBetweenTwoKeysIsTheAverage) {
  const TCKeyframes track = two_keys();
  TCVector p;
  double chi, phi, theta;
  track.pose_at(0.5, p, chi, phi, theta);
  EXPECT_EQ(p.x, 0.5);
  EXPECT_EQ(p.y, 1.0);
  EXPECT_EQ(p.z, 1.5);
  EXPECT_EQ(chi, 0.25);
  EXPECT_EQ(phi, 0.5);
  EXPECT_EQ(theta, 0.75);
}

TEST(KeyframeTrack, OneSegmentPastTheLastKeyIsExtrapolated) {
  const TCKeyframes track = two_keys();
  TCVector p;
  double chi, phi, theta;
  track.pose_at(2.0, p, chi, phi, theta);
  EXPECT_EQ(p.x, 2.0);
  EXPECT_EQ(p.y, 4.0);
  EXPECT_EQ(p.z, 6.0);
  EXPECT_EQ(chi, 1.0);
  EXPECT_EQ(phi, 1.25);
  EXPECT_EQ(theta, 0.0);
}

TEST(KeyframeTrack, BeforeTheFirstKeyIsExtrapolated) {
  const TCKeyframes track = two_keys();
  TCVector p;
  double chi, phi, theta;
  track.pose_at(-1.0, p, chi, phi, theta);
  EXPECT_EQ(p.x, -1.0);
  EXPECT_EQ(p.y, -2.0);
  EXPECT_EQ(p.z, -3.0);
  EXPECT_EQ(chi, -0.5);
  EXPECT_EQ(phi, -0.25);
  EXPECT_EQ(theta, 1.5);
}

// Keys at t = 0, 1, 3 and 4 with x = 0, 10, 30, 20.
TCKeyframes four_keys() {
  TCKeyframes track;
  track.set_number_of_times(4);
  set_key(track, 0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  set_key(track, 1, 1.0, 10.0, 0.0, 0.0, 1.0, 0.0, 0.0);
  set_key(track, 2, 3.0, 30.0, 0.0, 0.0, 2.0, 0.0, 0.0);
  set_key(track, 3, 4.0, 20.0, 0.0, 0.0, 4.0, 0.0, 0.0);
  return track;
}

TEST(KeyframeTrack, InnerSegmentIsChosenByTheNextKeyTime) {
  const TCKeyframes track = four_keys();
  TCVector p;
  track.position_at(2.0, p);  // segment 1, halfway from 10 to 30
  EXPECT_EQ(p.x, 20.0);
  track.position_at(3.5, p);  // segment 2, halfway from 30 to 20
  EXPECT_EQ(p.x, 25.0);
}

TEST(KeyframeTrack, TimeOnAnInnerKeyGivesThatKey) {
  const TCKeyframes track = four_keys();
  TCVector p;
  track.position_at(1.0, p);
  EXPECT_EQ(p.x, 10.0);
  track.position_at(3.0, p);
  EXPECT_EQ(p.x, 30.0);
}

TEST(KeyframeTrack, EndSegmentsCarryTheirVelocityOutward) {
  const TCKeyframes track = four_keys();
  TCVector p;
  track.position_at(6.0, p);  // last segment falls 10 per second: 20 - 2 * 10
  EXPECT_EQ(p.x, 0.0);
  track.position_at(-0.5, p);  // first segment rises 10 per second
  EXPECT_EQ(p.x, -5.0);
}

TEST(KeyframeTrack, PositionAloneMatchesTheFullPose) {
  const TCKeyframes track = two_keys();
  TCVector p;
  TCVector q;
  double chi, phi, theta;
  track.pose_at(0.25, q, chi, phi, theta);
  track.position_at(0.25, p);
  EXPECT_EQ(p.x, 0.25);
  EXPECT_EQ(p.y, 0.5);
  EXPECT_EQ(p.z, 0.75);
  EXPECT_EQ(p.x, q.x);
  EXPECT_EQ(p.y, q.y);
  EXPECT_EQ(p.z, q.z);
}

TEST(KeyframeTrack, AnglesAloneGiveChiAndPhi) {
  const TCKeyframes track = two_keys();
  double chi = 0.0, phi = 0.0;
  track.angles_at(0.5, chi, phi);
  EXPECT_EQ(chi, 0.25);
  EXPECT_EQ(phi, 0.5);
  track.angles_at(3.0, chi, phi);  // past the end: 0.5 + 2 * 0.5, 0.75 + 2 * 0.5
  EXPECT_EQ(chi, 1.5);
  EXPECT_EQ(phi, 1.75);
  track.angles_at(-2.0, chi, phi);
  EXPECT_EQ(chi, -1.0);
  EXPECT_EQ(phi, -0.75);
}

TEST(KeyframeTrack, AnglesOfASingleKeyAreConstant) {
  TCKeyframes track;
  track.chi[0] = 0.5;
  track.phi[0] = -0.5;
  double chi = 0.0, phi = 0.0;
  track.angles_at(100.0, chi, phi);
  EXPECT_EQ(chi, 0.5);
  EXPECT_EQ(phi, -0.5);
}

TEST(KeyframeTrack, EqualKeyTimesDivideByZeroUnguarded) {
  TCKeyframes track;
  track.set_number_of_times(2);
  set_key(track, 0, 1.0, 0.0, 5.0, 0.0, 0.0, 0.0, 0.0);
  set_key(track, 1, 1.0, 10.0, 5.0, 0.0, 0.0, 0.0, 0.0);
  TCVector p;
  track.position_at(2.0, p);  // fraction 1 / 0
  EXPECT_TRUE(std::isinf(p.x));
  EXPECT_GT(p.x, 0.0);
  EXPECT_TRUE(std::isnan(p.y));  // inf * 0
  track.position_at(0.0, p);     // fraction -1 / 0
  EXPECT_TRUE(std::isinf(p.x));
  EXPECT_LT(p.x, 0.0);
  track.position_at(1.0, p);  // fraction 0 / 0
  EXPECT_TRUE(std::isnan(p.x));
}

// Reading and writing the section.

TEST(KeyframeFile, SectionIsReadWithAnglesInRadians) {
  std::istringstream in(
      "number_of_times  2\n"
      "time  x  y  z  chi  phi  theta\n"
      "0 1 2 3 45 10 30\n"
      "2.5 -4 0.125 1e6 -90 0 359\n"
      "end\n");
  TCKeyframes track;
  EXPECT_EQ(track.read(in), 1);
  ASSERT_EQ(track.number_of_times, 2);
  EXPECT_EQ(track.times[0], 0.0);
  EXPECT_EQ(track.positions[0].x, 1.0);
  EXPECT_EQ(track.positions[0].y, 2.0);
  EXPECT_EQ(track.positions[0].z, 3.0);
  // Radians as python3 computes degrees * 0.017453292519444445.
  EXPECT_EQ(track.chi[0], 0.785398163375);
  EXPECT_EQ(track.phi[0], 0.17453292519444444);
  EXPECT_EQ(track.theta[0], 0.5235987755833333);
  EXPECT_EQ(track.times[1], 2.5);
  EXPECT_EQ(track.positions[1].x, -4.0);
  EXPECT_EQ(track.positions[1].y, 0.125);
  EXPECT_EQ(track.positions[1].z, 1e6);
  EXPECT_EQ(track.chi[1], -1.57079632675);
  EXPECT_EQ(track.phi[1], 0.0);
  EXPECT_EQ(track.theta[1], 6.265732014480555);
  Stream_capture capture(std::cout);
  EXPECT_EQ(check_end(in, "track not terminated"), 1);
  EXPECT_EQ(capture.text(), "");
}

TEST(KeyframeFile, KeywordsAreNotCompared) {
  std::istringstream in("frames: 1 a b c d e f g 4 3 2 1 0 0 0 end");
  TCKeyframes track;
  EXPECT_EQ(track.read(in), 1);
  EXPECT_EQ(track.number_of_times, 1);
  EXPECT_EQ(track.times[0], 4.0);
  EXPECT_EQ(track.positions[0].z, 1.0);
  EXPECT_EQ(check_end(in, "m"), 1);
}

TEST(KeyframeFile, SectionIsWrittenWithDegreesAndItsHeading) {
  std::istringstream in(
      "number_of_times 2 time x y z chi phi theta\n"
      "0 1 2 3 45 10 30\n"
      "2.5 -4 0.125 1e6 -90 0 359\n");
  TCKeyframes track;
  track.read(in);
  std::ostringstream out;
  EXPECT_EQ(track.write(out), 1);
  // Text computed with python3: degrees * 0.017453292519444445 * 180.0 /
  // 3.1415926535, printed with "%.15g" and a blank after every value.
  EXPECT_EQ(out.str(),
            "number_of_times  2\n"
            "time  x  y  z  chi  phi  theta \n"
            "0 1 2 3 45 10 30 \n"
            "2.5 -4 0.125 1000000 -90 0 359 \n");
}

TEST(KeyframeFile, WrittenSectionReadsBackToTheSameTrack) {
  TCKeyframes track;
  track.set_number_of_times(3);
  set_key(track, 0, 0.0, 1.5, -2.25, 100.0, 0.5, -0.25, 1.0);
  set_key(track, 1, 0.1, 3.0, 4.0, 1e-3, 1.0, 0.0, 2.0);
  set_key(track, 2, 7.0, -1e7, 1.0 / 3.0, 0.0, -3.0, 3.0, 0.0);
  std::ostringstream out;
  ASSERT_EQ(track.write(out), 1);
  std::istringstream in(out.str() + "end\n");
  TCKeyframes back;
  EXPECT_EQ(back.read(in), 1);
  ASSERT_EQ(back.number_of_times, 3);
  EXPECT_EQ(check_end(in, "m"), 1);
  for (int i = 0; i < 3; i++) {
    EXPECT_EQ(back.times[i], track.times[i]);
    EXPECT_EQ(back.positions[i].x, track.positions[i].x);
    EXPECT_EQ(back.positions[i].z, track.positions[i].z);
    EXPECT_NEAR(back.positions[i].y, track.positions[i].y, 1e-15);
    EXPECT_NEAR(back.chi[i], track.chi[i], 1e-13);
    EXPECT_NEAR(back.phi[i], track.phi[i], 1e-13);
    EXPECT_NEAR(back.theta[i], track.theta[i], 1e-13);
  }
  std::ostringstream again;
  back.write(again);
  EXPECT_EQ(again.str(), out.str());
}

TEST(KeyframeFile, OneRadianIsWrittenWithTheTenDigitPi) {
  TCKeyframes track;
  track.chi[0] = 1.0;
  std::ostringstream out;
  track.write(out);
  // 1.0 * 180.0 / 3.1415926535 with 15 digits; a library pi would give 57.2957795130823.
  EXPECT_EQ(out.str(),
            std::string("number_of_times  1\n") + heading + "0 0 0 0 57.29577951472 0 0 \n");
}

TEST(KeyframeFile, CountsBelowOneAreReadAndWrittenWithoutRows) {
  const char* const texts[] = {"number_of_times 0 time x y z chi phi theta end",
                               "number_of_times -3 time x y z chi phi theta end"};
  const int counts[] = {0, -3};
  for (int k = 0; k < 2; k++) {
    std::istringstream in(texts[k]);
    TCKeyframes track = two_keys();
    EXPECT_EQ(track.read(in), 1);
    EXPECT_EQ(track.number_of_times, counts[k]);
    expect_key_zero(track);
    EXPECT_EQ(check_end(in, "m"), 1);
    TCVector p(1.0, 1.0, 1.0);
    double chi = 1.0, phi = 1.0, theta = 1.0;
    track.pose_at(10.0, p, chi, phi, theta);
    EXPECT_EQ(p.x, 0.0);
    EXPECT_EQ(chi, 0.0);
    std::ostringstream out;
    EXPECT_EQ(track.write(out), 1);
    EXPECT_EQ(out.str(), "number_of_times  " + std::to_string(counts[k]) + "\n" + heading);
  }
}

TEST(KeyframeFile, HugeCountInAShortFileKeepsTheKeysRead) {
  std::istringstream in("number_of_times 2000000000 time x y z chi phi theta 1 2 3 4 0 0 0");
  const auto start = std::chrono::steady_clock::now();
  TCKeyframes track;
  EXPECT_EQ(track.read(in), 1);
  EXPECT_LT(seconds_since(start), 1.0);
  EXPECT_TRUE(in.fail());
  EXPECT_EQ(track.number_of_times, 1);
  EXPECT_EQ(track.times[0], 1.0);
  EXPECT_EQ(track.positions[0].x, 2.0);
  EXPECT_EQ(track.positions[0].z, 4.0);
}

TEST(KeyframeFile, HugeCountWithNoRowsLeavesOneZeroKey) {
  std::istringstream in("number_of_times 2147483647 time x y z chi phi theta");
  const auto start = std::chrono::steady_clock::now();
  TCKeyframes track;
  EXPECT_EQ(track.read(in), 1);
  EXPECT_LT(seconds_since(start), 1.0);
  EXPECT_EQ(track.number_of_times, 1);
  expect_key_zero(track);
}

TEST(KeyframeFile, HugeCountDoesNotReserveStorageForIt) {
#ifdef __GLIBC__
  // The track stays alive, so any storage sized by the claimed count would
  // still be counted here.
  const struct mallinfo2 before = mallinfo2();
  std::istringstream in("number_of_times 2000000000 time x y z chi phi theta 1 2 3 4 5 6 7");
  TCKeyframes track;
  track.read(in);
  const struct mallinfo2 after = mallinfo2();
  const double grown = static_cast<double>(after.arena + after.hblkhd) -
                       static_cast<double>(before.arena + before.hblkhd);
  EXPECT_LT(grown, 1e6);
  EXPECT_EQ(track.number_of_times, 1);
#else
  GTEST_SKIP() << "heap statistics need glibc";
#endif
}

TEST(KeyframeFile, HugeCountThenEndFailsTheEndCheck) {
  std::istringstream in("number_of_times 2000000000 time x y z chi phi theta 1 2 3 4 0 0 0 end");
  TCKeyframes track;
  track.read(in);
  EXPECT_EQ(track.number_of_times, 1);
  Stream_capture capture(std::cout);
  EXPECT_EQ(check_end(in, "object line not terminated"), 0);
  EXPECT_EQ(capture.text(), "object line not terminated\nread instead of end\n");
}

TEST(KeyframeFile, ManyKeysAreAllKept) {
  // Enough keys to outgrow the reader's first storage several times.
  std::ostringstream text;
  text << "number_of_times 1000 time x y z chi phi theta\n";
  for (int i = 0; i < 1000; i++) text << i << " " << 0.5 * i << " " << -i << " 7 0 0 0\n";
  text << "end";
  std::istringstream in(text.str());
  TCKeyframes track;
  EXPECT_EQ(track.read(in), 1);
  ASSERT_EQ(track.number_of_times, 1000);
  for (int i = 0; i < 1000; i++) {
    EXPECT_EQ(track.times[i], i);
    EXPECT_EQ(track.positions[i].x, 0.5 * i);
    EXPECT_EQ(track.positions[i].y, -i);
    EXPECT_EQ(track.positions[i].z, 7.0);
  }
  EXPECT_EQ(check_end(in, "m"), 1);
}

TEST(KeyframeFile, MoreKeysClaimedThanGivenKeepsThoseRead) {
  std::istringstream in(
      "number_of_times 40 time x y z chi phi theta\n"
      "0 1 1 1 0 0 0\n"
      "1 2 2 2 0 0 0\n"
      "end\n");
  TCKeyframes track;
  EXPECT_EQ(track.read(in), 1);
  EXPECT_EQ(track.number_of_times, 2);
  EXPECT_EQ(track.positions[1].y, 2.0);
  Stream_capture capture(std::cout);
  EXPECT_EQ(check_end(in, "m"), 0);
}

TEST(KeyframeFile, RowCutShortKeepsWhatWasReadOfIt) {
  std::istringstream in("number_of_times 1 time x y z chi phi theta 6 5 4");
  TCKeyframes track;
  track.read(in);
  EXPECT_EQ(track.number_of_times, 1);
  EXPECT_EQ(track.times[0], 6.0);
  EXPECT_EQ(track.positions[0].x, 5.0);
  EXPECT_EQ(track.positions[0].y, 4.0);
  EXPECT_EQ(track.positions[0].z, 0.0);
  EXPECT_EQ(track.chi[0], 0.0);
}

TEST(KeyframeFile, NonNumericCountLeavesOneZeroKeyAndAFailedStream) {
  std::istringstream in("number_of_times many time x y z chi phi theta 1 2 3 4 5 6 7");
  TCKeyframes track = two_keys();
  EXPECT_EQ(track.read(in), 1);
  EXPECT_TRUE(in.fail());
  EXPECT_EQ(track.number_of_times, 1);
  expect_key_zero(track);
}

TEST(KeyframeFile, EmptyStreamLeavesOneZeroKey) {
  std::istringstream in("");
  TCKeyframes track = two_keys();
  EXPECT_EQ(track.read(in), 1);
  EXPECT_EQ(track.number_of_times, 1);
  expect_key_zero(track);
}

TEST(KeyframeFile, NonNumericValueInARowStopsTheReading) {
  std::istringstream in(
      "number_of_times 3 time x y z chi phi theta\n"
      "0 1 1 1 0 0 0\n"
      "1 oops 2 2 0 0 0\n"
      "2 3 3 3 0 0 0\n");
  TCKeyframes track;
  track.read(in);
  EXPECT_TRUE(in.fail());
  EXPECT_EQ(track.number_of_times, 1);
  EXPECT_EQ(track.positions[0].x, 1.0);
}

TEST(KeyframeFile, WriteToAFailedStreamReportsFailure) {
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  TCKeyframes track;
  EXPECT_EQ(track.write(out), 0);
}

}  // namespace

TEST(KeyframesRepeatedTime, DistinctTimesHaveNoRepeat) {
  TCKeyframes track = two_keys();
  double time = -7.0;
  EXPECT_EQ(track.repeated_time(time), 0);
  EXPECT_EQ(time, -7.0);
  TCKeyframes one;
  EXPECT_EQ(one.repeated_time(time), 0);
}

TEST(KeyframesRepeatedTime, TwoKeysAtOneTimeAreFoundWhereverTheyStand) {
  TCKeyframes track;
  track.set_number_of_times(4);
  set_key(track, 0, 3.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  set_key(track, 1, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  set_key(track, 2, 2.5, 2.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  set_key(track, 3, 3.0, 3.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  double time = 0.0;
  EXPECT_EQ(track.repeated_time(time), 1);
  EXPECT_EQ(time, 3.0);
}
