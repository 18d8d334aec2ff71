#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "TCFrame_plan.h"
#include "TCScene_input.h"

namespace {

// Frames the loop visits for a range as given, after normalising it.
std::vector<int> walked_frames(int first, int last, int increment) {
  normalise_frame_range(first, last, increment);
  std::vector<int> frames;
  for (int frame = first; frame_in_range(frame, last, increment); frame += increment)
    frames.push_back(frame);
  return frames;
}

// Runs make_output_name for base "run", camera 2 "cam", frame "0007".
struct Named {
  int result;
  std::string prefix;
  std::string suffix;
  std::string errors;
};

Named named(const char* format, const char* file_type = ".img", const char* base = "run") {
  char prefix[256];
  char suffix[256];
  testing::internal::CaptureStderr();
  int result = make_output_name(format, base, "cam", 2, "0007", file_type, prefix, suffix);
  std::string errors = testing::internal::GetCapturedStderr();
  return {result, prefix, suffix, errors};
}

const std::string fallback_lines =
    "Error in outfile format string. \n"
    "Setting file output file to: Base:  runc2cam\n"
    "                             Frame: 0007\n"
    "                             End:   .img\n";

// ---- time of a frame ----

TEST(FramePlanTime, OneRowGivesItsTimeForEveryFrame) {
  int frames[] = {5};
  double times[] = {2.5};
  EXPECT_EQ(time_for_frame(5, 1, frames, times), 2.5);
  EXPECT_EQ(time_for_frame(-100, 1, frames, times), 2.5);
  EXPECT_EQ(time_for_frame(1000, 1, frames, times), 2.5);
}

TEST(FramePlanTime, TwoRowsInterpolateAndExtrapolateBothEnds) {
  int frames[] = {10, 20};
  double times[] = {0.0, 1.0};
  EXPECT_DOUBLE_EQ(time_for_frame(10, 2, frames, times), 0.0);
  EXPECT_DOUBLE_EQ(time_for_frame(15, 2, frames, times), 0.5);
  EXPECT_DOUBLE_EQ(time_for_frame(20, 2, frames, times), 1.0);
  EXPECT_DOUBLE_EQ(time_for_frame(25, 2, frames, times), 1.5);
  EXPECT_DOUBLE_EQ(time_for_frame(5, 2, frames, times), -0.5);
}

TEST(FramePlanTime, TableFramesNeedNotMatchRenderedFrames) {
  int frames[] = {1, 11, 21};
  double times[] = {0.0, 10.0, 30.0};
  EXPECT_DOUBLE_EQ(time_for_frame(6, 3, frames, times), 5.0);
  EXPECT_DOUBLE_EQ(time_for_frame(11, 3, frames, times), 10.0);
  EXPECT_DOUBLE_EQ(time_for_frame(16, 3, frames, times), 20.0);
  // Past the end the last segment's slope of 2 per frame carries on.
  EXPECT_DOUBLE_EQ(time_for_frame(26, 3, frames, times), 40.0);
  // Before the start the first segment's slope of 1 per frame carries on.
  EXPECT_DOUBLE_EQ(time_for_frame(-4, 3, frames, times), -5.0);
}

TEST(FramePlanTime, TimeOfDayColumnUsesTheSameRule) {
  int frames[] = {0, 100};
  double times_of_day[] = {12.0, 13.0};
  EXPECT_DOUBLE_EQ(time_for_frame(50, 2, frames, times_of_day), 12.5);
  EXPECT_DOUBLE_EQ(time_for_frame(200, 2, frames, times_of_day), 14.0);
}

TEST(FramePlanTime, EqualNeighbouringFramesDivideByZero) {
  int frames[] = {10, 10};
  double times[] = {0.0, 1.0};
  // On the row itself: 1 * 0 / 0.
  EXPECT_TRUE(std::isnan(time_for_frame(10, 2, frames, times)));
  // Past it: 1 * 5 / 0.
  EXPECT_TRUE(std::isinf(time_for_frame(15, 2, frames, times)));
}

// ---- the frame walk ----

TEST(FramePlanWalk, NegativeIncrementOnReversedRangeRunsBackwards) {
  EXPECT_EQ(walked_frames(9, 3, -2), (std::vector<int>{9, 7, 5, 3}));
}

TEST(FramePlanWalk, NegativeIncrementOnForwardRangeIsFirstFrameAlone) {
  EXPECT_EQ(walked_frames(3, 9, -2), (std::vector<int>{3}));
}

TEST(FramePlanWalk, IncrementFourStopsAtLastFrameItCanReach) {
  EXPECT_EQ(walked_frames(1, 10, 4), (std::vector<int>{1, 5, 9}));
}

TEST(FramePlanWalk, ReversedRangeWithDefaultIncrementIsFirstFrameAlone) {
  EXPECT_EQ(walked_frames(9, 3, 1), (std::vector<int>{9}));
}

TEST(FramePlanWalk, RangeTestFollowsIncrementSign) {
  EXPECT_TRUE(frame_in_range(3, 3, 1));
  EXPECT_FALSE(frame_in_range(4, 3, 1));
  EXPECT_TRUE(frame_in_range(3, 3, -1));
  EXPECT_FALSE(frame_in_range(2, 3, -1));
  // Zero counts as below one.
  EXPECT_TRUE(frame_in_range(5, 3, 0));
  EXPECT_FALSE(frame_in_range(2, 3, 0));
}

// ---- frame text ----

TEST(FramePlanText, FillsWithZerosToFourCharacters) {
  char text[5];
  frame_text(7, text);
  EXPECT_STREQ(text, "0007");
  frame_text(0, text);
  EXPECT_STREQ(text, "0000");
  frame_text(1234, text);
  EXPECT_STREQ(text, "1234");
}

TEST(FramePlanText, FiveDigitFrameIsCutToItsFirstFourDigits) {
  char text[5];
  frame_text(12345, text);
  EXPECT_STREQ(text, "1234");
}

TEST(FramePlanText, NegativeFrameKeepsItsSignInTheFourCharacters) {
  char text[5];
  frame_text(-1, text);
  EXPECT_STREQ(text, "-001");
  frame_text(-12345, text);
  EXPECT_STREQ(text, "-123");
}

// ---- output names ----

TEST(FramePlanName, DefaultFormatGivesOneDotBeforeTheType) {
  // "-." gives the dot and "-t" the extension without its own dot.
  Named n = named("-b-C-c-f-.-t-");
  EXPECT_EQ(n.result, 1);
  EXPECT_EQ(n.prefix, "runc2cam");
  EXPECT_EQ(n.suffix, ".img");
  EXPECT_EQ(n.errors, "");
  char text[5];
  frame_text(7, text);
  EXPECT_EQ(n.prefix + text + n.suffix, "runc2cam0007.img");
}

TEST(FramePlanName, DefaultFormatWithBareTypeGivesOneDot) {
  Named n = named("-b-C-c-f-.-t-", "img");
  EXPECT_EQ(n.result, 1);
  EXPECT_EQ(n.prefix + "0007" + n.suffix, "runc2cam0007.img");
}

TEST(FramePlanName, EveryItemEmitsItsText) {
  Named n = named("-b-_-C---c-f-t-.-_-");
  EXPECT_EQ(n.result, 1);
  EXPECT_EQ(n.prefix, "run_c2-cam");
  EXPECT_EQ(n.suffix, "img._");
  EXPECT_EQ(n.errors, "");
}

TEST(FramePlanName, SecondFrameItemOnlyComplains) {
  Named n = named("-b-f-t-f-");
  EXPECT_EQ(n.result, 1);
  EXPECT_EQ(n.prefix, "run");
  EXPECT_EQ(n.suffix, "img");
  EXPECT_EQ(n.errors, "You have 2 frame numbers in your output field!\n");
}

TEST(FramePlanName, ItemNotStartingWithDashStopsTheWalkAndFallsBack) {
  // The walk stops at "x-", so the unknown "-q" behind it is never seen.
  Named n = named("-bx--q-f-");
  EXPECT_EQ(n.result, 0);
  EXPECT_EQ(n.prefix, "runc2cam");
  EXPECT_EQ(n.suffix, ".img");
  EXPECT_EQ(n.errors, "Error in format string format: -bx--q-f-" + fallback_lines);
}

TEST(FramePlanName, FirstCharacterNotDashFallsBack) {
  Named n = named("b-f-");
  EXPECT_EQ(n.result, 0);
  EXPECT_EQ(n.errors, "Error in format string format: b-f-" + fallback_lines);
}

TEST(FramePlanName, UnknownLetterComplainsGoesOnAndFallsBack) {
  Named n = named("-b-q-z-f-t-");
  EXPECT_EQ(n.result, 0);
  EXPECT_EQ(n.prefix, "runc2cam");
  EXPECT_EQ(n.suffix, ".img");
  EXPECT_EQ(n.errors,
            "q is not a valid input\n"
            "Input format string is incorrect: -b-q-z-f-t-"
            "z is not a valid input\n"
            "Input format string is incorrect: -b-q-z-f-t-" +
                fallback_lines);
}

TEST(FramePlanName, FormatNotEndingInDashFallsBack) {
  Named n = named("-b-f-t");
  EXPECT_EQ(n.result, 0);
  EXPECT_EQ(n.prefix, "runc2cam");
  EXPECT_EQ(n.suffix, ".img");
  EXPECT_EQ(n.errors,
            "Format string error: -b-f-t is not correctly  formatted to end "
            "with a -\n" +
                fallback_lines);
}

TEST(FramePlanName, OddLengthFormatsLastCharacterIsOnlyCheckedForDash) {
  // "-b-fx": items "-b" and "-f"; the lone "x" is no item but fails the end.
  Named n = named("-b-fx");
  EXPECT_EQ(n.result, 0);
  EXPECT_EQ(n.errors,
            "Format string error: -b-fx is not correctly  formatted to end "
            "with a -\n" +
                fallback_lines);
}

TEST(FramePlanName, EmptyFormatFallsBack) {
  Named n = named("");
  EXPECT_EQ(n.result, 0);
  EXPECT_EQ(n.prefix, "runc2cam");
  EXPECT_EQ(n.suffix, ".img");
  EXPECT_EQ(n.errors,
            "Format string error:  is not correctly  formatted to end with "
            "a -\n" +
                fallback_lines);
}

TEST(FramePlanName, MissingFrameItemWarnsButIsNoError) {
  Named n = named("-b-t-");
  EXPECT_EQ(n.result, 1);
  EXPECT_EQ(n.prefix, "runimg");
  EXPECT_EQ(n.suffix, "");
  EXPECT_EQ(n.errors,
            "WARNING! You're output file format string has NO frame number.\n"
            "If you are running more than 1 file, the latest frame will "
            "overwrite earlier ones\n");
}

TEST(FramePlanName, LongTextIsCutToTheBuffer) {
  std::string base(300, 'a');
  Named n = named("-b-b-f-b-", ".img", base.c_str());
  EXPECT_EQ(n.result, 1);
  EXPECT_EQ(n.prefix, std::string(255, 'a'));
  EXPECT_EQ(n.suffix, std::string(255, 'a'));
}

TEST(FramePlanName, LongBaseIsCutInTheFallback) {
  std::string base(300, 'a');
  Named n = named("-q-", ".img", base.c_str());
  EXPECT_EQ(n.result, 0);
  EXPECT_EQ(n.prefix, std::string(255, 'a'));
  EXPECT_EQ(n.suffix, ".img");
}

}  // namespace
