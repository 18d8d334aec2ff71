#include <gtest/gtest.h>

#include <sstream>

#include "TCEngine.h"
#include "TCError.h"
#include "TCSettings.h"

namespace {

const char* const kDashes = "--------------------------------------------\n";

TEST(EngineOutput, BannerWithVerboseOn) {
  const int saved = verbose;
  verbose = 1;
  std::ostringstream out;
  print_banner(out);
  verbose = saved;
  EXPECT_EQ(out.str(), std::string(kDashes) +
                           "        Tidecast Rendering Engine        \n"
                           "               version 1.2              \n" +
                           kDashes + "\nCompiled with VERBOSE on.\n\n");
}

TEST(EngineOutput, BannerWithVerboseOff) {
  const int saved = verbose;
  verbose = 0;
  std::ostringstream out;
  print_banner(out);
  verbose = saved;
  EXPECT_EQ(out.str(), std::string(kDashes) +
                           "        Tidecast Rendering Engine        \n"
                           "               version 1.2              \n" +
                           kDashes + "\n\n");
}

TEST(EngineOutput, UsageKeepsItsSpacingAndSpelling) {
  std::ostringstream out;
  print_usage(out);
  EXPECT_EQ(out.str(),
            "     TCEngine Usage:  \n"
            "     -f: first frame      -l: last frame       -i: increment   \n"
            "     -S: number of camera slices \n"
            "     -s: slices to be imaged (seperated by commas) \n"
            "     followed by scene files to be run, e.g. \n"
            "     TCEngine -f1 -l9 -i2 -S5 -s0,2 scene.dat \n");
}

TEST(EngineOutput, SizesOfThisHostPass) {
  std::ostringstream err;
  EXPECT_EQ(check_type_sizes(sizeof(short), sizeof(int), sizeof(float), sizeof(double), err), 1);
  EXPECT_EQ(err.str(), "");
}

TEST(EngineOutput, EachWrongSizeNamesTheRequiredSize) {
  std::ostringstream s, i, f, d;
  EXPECT_EQ(check_type_sizes(4, 4, 4, 8, s), 0);
  EXPECT_EQ(s.str(), "PORTING PROBLEM: short of size 2\ncode terminated \n");
  EXPECT_EQ(check_type_sizes(2, 8, 4, 8, i), 0);
  EXPECT_EQ(i.str(), "PORTING PROBLEM: int of size 4\ncode terminated \n");
  EXPECT_EQ(check_type_sizes(2, 4, 8, 8, f), 0);
  EXPECT_EQ(f.str(), "PORTING PROBLEM: float of size 4\ncode terminated \n");
  EXPECT_EQ(check_type_sizes(2, 4, 4, 16, d), 0);
  EXPECT_EQ(d.str(), "PORTING PROBLEM: double of size 8\ncode terminated \n");
}

TEST(EngineOutput, OnlyTheFirstWrongSizeIsReported) {
  std::ostringstream err;
  EXPECT_EQ(check_type_sizes(2, 2, 2, 2, err), 0);
  EXPECT_EQ(err.str(), "PORTING PROBLEM: int of size 4\ncode terminated \n");
}

TEST(EngineOutput, CommandLineTraces) {
  std::ostringstream out;
  print_command_line_trace(out, "COMMAND LINEA: ", 1, 9, 3, -2);
  print_command_line_trace(out, "COMMAND LINEB: ", 0, 1, 1, 1);
  EXPECT_EQ(out.str(), "COMMAND LINEA: 1: (9,3,-2)\nCOMMAND LINEB: 0: (1,1,1)\n");
}

TEST(ErrorReport, FrameOnStandardErrorAndReturns) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  report_error("TCScene::TCScene", "Can't open scene file: ", "a.dat");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "\n->TCError in TCScene::TCScene : Can't open scene file: a.dat\n");
}

TEST(ErrorReportDeath, OneArgumentFormExitsWithStatusOne) {
  EXPECT_EXIT(report_error_exit("place"), testing::ExitedWithCode(1),
              "^\n->TCError in place : \n$");
}

TEST(ErrorReportDeath, TwoArgumentFormExitsWithStatusOne) {
  EXPECT_EXIT(report_error_exit("place", "what went wrong"), testing::ExitedWithCode(1),
              "^\n->TCError in place : what went wrong\n$");
}

TEST(Settings, DefaultsOfTheProcess) {
  // Other tests restore what they change, so the defaults still stand here.
  EXPECT_EQ(verbose, 1);
  EXPECT_EQ(debug_level, 0);
  EXPECT_EQ(random_generator_kind, 902);
  const unsigned int probe = 0x01020304u;
  const bool little = *reinterpret_cast<const unsigned char*>(&probe) == 0x04;
  EXPECT_EQ(swap_bytes, little ? 1 : 0);
}

}  // namespace
