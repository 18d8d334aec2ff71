#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "TCFile_checks.h"

namespace {

std::string make_temp_dir() {
  char pattern[] = "/tmp/tc_checks_XXXXXX";
  const char* dir = mkdtemp(pattern);
  return dir ? dir : "";
}

bool exists(const std::string& path) {
  std::ifstream f(path);
  return static_cast<bool>(f);
}

TEST(OutputDirectory, WritableDirectoryPassesAndLeavesNoFile) {
  const std::string dir = make_temp_dir();
  ASSERT_FALSE(dir.empty());
  const std::string base = dir + "/run";
  testing::internal::CaptureStderr();
  EXPECT_EQ(output_directory_ok(base.c_str()), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_FALSE(exists(base + "_ovktst.tmp"));
  rmdir(dir.c_str());
}

TEST(OutputDirectory, MissingDirectoryIsReportedOnStandardError) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  EXPECT_EQ(output_directory_ok("/nonexistent_tidecast_dir/run"), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "\n      OUTPUT DIRECTORY ERROR \n"
            "      UNABLE TO WRITE TO /nonexistent_tidecast_dir/run\n"
            "      RENDER TERMINATED\n\n");
}

TEST(OutputDirectory, TestNameLongerThanItsBufferIsRefused) {
  // 245 characters plus "_ovktst.tmp" make 256, one more than the buffer holds.
  const std::string base(245, 'a');
  testing::internal::CaptureStdout();
  EXPECT_EQ(output_directory_ok(base.c_str()), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "unable to open test string for testing directory \n");
}

TEST(OutputDirectory, TestNameThatJustFitsIsTried) {
  // 244 + 11 = 255 characters: fits, and fails only because the folder is missing.
  const std::string base = "/nonexistent_tidecast_dir/" + std::string(244 - 26, 'b');
  ASSERT_EQ(base.size(), 244u);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_EQ(output_directory_ok(base.c_str()), 0);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_NE(testing::internal::GetCapturedStderr().find("OUTPUT DIRECTORY ERROR"),
            std::string::npos);
}

TEST(FileReadable, MissingFileIsReported) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(file_readable("/nonexistent_tidecast_dir/x.dat"), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "   UNABLE TO READ FROM /nonexistent_tidecast_dir/x.dat\n   RENDER TERMINATED \n");
}

TEST(FileReadable, ExistingFilePasses) {
  const std::string dir = make_temp_dir();
  const std::string name = dir + "/x.dat";
  { std::ofstream(name) << "x"; }
  EXPECT_EQ(file_readable(name.c_str()), 1);
  std::remove(name.c_str());
  rmdir(dir.c_str());
}

}  // namespace
