#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TCCommand_line.h"
#include "TCSettings.h"

namespace {

struct Words {
  explicit Words(std::vector<std::string> w) : text(w) {
    for (auto& s : text) pointers.push_back(&s[0]);
    pointers.push_back(nullptr);
  }
  int argc() const { return static_cast<int>(text.size()); }
  char** argv() { return pointers.data(); }
  std::vector<std::string> text;
  std::vector<char*> pointers;
};

// Parses the words as the engine does, with the frame override applied.
void parse(TCCommand_line& command, std::vector<std::string> words, int* first_scene = nullptr) {
  Words w(words);
  const int index = command.parse(w.argc(), w.argv());
  command.apply_frame_override();
  if (first_scene) *first_scene = index;
}

TEST(CommandLine, NoFrameOptionsLeaveFramesToTheScene) {
  TCCommand_line c;
  int first_scene = 0;
  parse(c, {"TCEngine", "a.dat"}, &first_scene);
  EXPECT_EQ(c.frames_given, 0);
  EXPECT_EQ(c.any_option_seen, 0);
  EXPECT_EQ(first_scene, 1);
}

TEST(CommandLine, FirstFrameAloneMeansOneFrame) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-f5"});
  EXPECT_EQ(c.frames_given, 1);
  EXPECT_EQ(c.first_frame, 5);
  EXPECT_EQ(c.last_frame, 5);
  EXPECT_EQ(c.increment, 1);
}

TEST(CommandLine, LastFrameAloneStartsAtOne) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-l7"});
  EXPECT_EQ(c.first_frame, 1);
  EXPECT_EQ(c.last_frame, 7);
  EXPECT_EQ(c.increment, 1);
}

TEST(CommandLine, ReversedRangeWithAttachedNegativeIncrement) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-f9", "-l3", "-i-2"});
  EXPECT_EQ(c.first_frame, 9);
  EXPECT_EQ(c.last_frame, 3);
  EXPECT_EQ(c.increment, -2);
}

TEST(CommandLine, ReversedRangeWithoutIncrementIsLeftForTheScene) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-f9", "-l3"});
  EXPECT_EQ(c.first_frame, 9);
  EXPECT_EQ(c.last_frame, 3);
  EXPECT_EQ(c.increment, 1);
  TCCommand_line zero;
  parse(zero, {"TCEngine", "-i0"});
  EXPECT_EQ(zero.increment, 0);
}

TEST(CommandLine, IncrementAloneMeansFrameOne) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-i3"});
  EXPECT_EQ(c.first_frame, 1);
  EXPECT_EQ(c.last_frame, 1);
  EXPECT_EQ(c.increment, 3);
}

TEST(CommandLine, DetachedNegativeIncrementKeepsTheDefault) {
  TCCommand_line c;
  int first_scene = 0;
  parse(c, {"TCEngine", "-i", "-2", "a.dat"}, &first_scene);
  EXPECT_EQ(c.frames_given, 0);
  EXPECT_EQ(c.increment, 1);
  EXPECT_EQ(c.any_option_seen, 1);
  EXPECT_EQ(first_scene, 3);
}

TEST(CommandLine, IllegalOptionCountsAsAnOption) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-z"});
  EXPECT_EQ(c.any_option_seen, 1);
  EXPECT_EQ(c.frames_given, 0);
}

TEST(CommandLine, SlicesNamedInTheListAreFlagged) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-S3", "-s0,2"});
  ASSERT_EQ(c.n_slices, 3);
  EXPECT_EQ(c.slices_given, 1);
  EXPECT_EQ(c.slice_list_given, 1);
  EXPECT_EQ(c.slice_flags[0], 1);
  EXPECT_EQ(c.slice_flags[1], 0);
  EXPECT_EQ(c.slice_flags[2], 1);
}

TEST(CommandLine, EmptyItemsAndTrailingCommaMeanSliceZero) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-S3", "-s,,2,"});
  EXPECT_EQ(c.slice_flags[0], 1);
  EXPECT_EQ(c.slice_flags[1], 0);
  EXPECT_EQ(c.slice_flags[2], 1);
}

TEST(CommandLine, SliceCountAloneLeavesAllFlagsZero) {
  TCCommand_line c;
  parse(c, {"TCEngine", "-S4"});
  EXPECT_EQ(c.slices_given, 1);
  EXPECT_EQ(c.slice_list_given, 0);
  for (int i = 0; i < 4; i++) EXPECT_EQ(c.slice_flags[i], 0);
}

TEST(CommandLine, VerbosityLevels) {
  const int saved_verbose = verbose;
  const int saved_debug = debug_level;
  TCCommand_line a;
  parse(a, {"TCEngine", "-v0"});
  EXPECT_EQ(verbose, 0);
  EXPECT_EQ(debug_level, 0);
  TCCommand_line b;
  parse(b, {"TCEngine", "-v2"});
  EXPECT_EQ(verbose, 1);
  EXPECT_EQ(debug_level, 1);
  TCCommand_line c;
  parse(c, {"TCEngine", "-v7"});
  EXPECT_EQ(verbose, 1);
  EXPECT_EQ(debug_level, 1);
  TCCommand_line d;
  parse(d, {"TCEngine", "-v1"});
  EXPECT_EQ(verbose, 1);
  EXPECT_EQ(debug_level, 0);
  verbose = saved_verbose;
  debug_level = saved_debug;
}

TEST(CommandLine, RandomGeneratorToggles) {
  const int saved = random_generator_kind;
  random_generator_kind = 902;
  TCCommand_line once;
  parse(once, {"TCEngine", "-R"});
  EXPECT_EQ(random_generator_kind, 901);
  random_generator_kind = 902;
  TCCommand_line twice;
  parse(twice, {"TCEngine", "-R", "-R"});
  EXPECT_EQ(random_generator_kind, 902);
  random_generator_kind = saved;
}

TEST(CommandLineDeath, SliceListBeforeCountExits) {
  EXPECT_EXIT(
      {
        TCCommand_line c;
        parse(c, {"TCEngine", "-s1", "-S3"});
      },
      testing::ExitedWithCode(1), "");
}

TEST(CommandLineDeath, SliceOutOfRangeExits) {
  EXPECT_EXIT(
      {
        TCCommand_line c;
        parse(c, {"TCEngine", "-S3", "-s3"});
      },
      testing::ExitedWithCode(1), "");
}

}  // namespace
