#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "TCOption_parser.h"

namespace {

// Owns writable copies of the words, as main's argv would be.
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

struct Result {
  int option;
  std::string value;
};

std::vector<Result> scan_all(TCOption_parser& parser) {
  std::vector<Result> results;
  int option;
  while ((option = parser.next()) != -1) {
    results.push_back({option, parser.optarg ? parser.optarg : "<none>"});
  }
  return results;
}

const char* const kOptions = "f:l:i:v:S:s:R";

TEST(OptionParser, AttachedNegativeValueIsTaken) {
  Words w({"TCEngine", "-i-1", "scene.dat"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  parser.opterr = 0;
  std::vector<Result> r = scan_all(parser);
  ASSERT_EQ(r.size(), 1u);
  EXPECT_EQ(r[0].option, 'i');
  EXPECT_EQ(r[0].value, "-1");
  EXPECT_EQ(parser.optind, 2);
}

TEST(OptionParser, DetachedValueBeginningWithDashIsRefused) {
  Words w({"TCEngine", "-i", "-1", "scene.dat"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  parser.opterr = 0;
  std::vector<Result> r = scan_all(parser);
  // The refusal, then "-1" scanned as a cluster whose letter is unknown.
  ASSERT_EQ(r.size(), 2u);
  EXPECT_EQ(r[0].option, '?');
  EXPECT_EQ(r[1].option, '?');
  EXPECT_EQ(parser.optind, 3);
}

TEST(OptionParser, DetachedPlainValueIsTaken) {
  Words w({"TCEngine", "-f", "12", "-l", "20", "a.dat"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  std::vector<Result> r = scan_all(parser);
  ASSERT_EQ(r.size(), 2u);
  EXPECT_EQ(r[0].option, 'f');
  EXPECT_EQ(r[0].value, "12");
  EXPECT_EQ(r[1].option, 'l');
  EXPECT_EQ(r[1].value, "20");
  EXPECT_EQ(parser.optind, 5);
}

TEST(OptionParser, ClusterOfFlagsAndValue) {
  Words w({"TCEngine", "-RRf3"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  std::vector<Result> r = scan_all(parser);
  ASSERT_EQ(r.size(), 3u);
  EXPECT_EQ(r[0].option, 'R');
  EXPECT_EQ(r[1].option, 'R');
  EXPECT_EQ(r[2].option, 'f');
  EXPECT_EQ(r[2].value, "3");
  EXPECT_EQ(parser.optind, 2);
}

TEST(OptionParser, DoubleDashMarksIndexAndEndsOptions) {
  Words w({"TCEngine", "-R", "--", "-f3", "-l4"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  std::vector<Result> r = scan_all(parser);
  ASSERT_EQ(r.size(), 1u);
  EXPECT_EQ(parser.dash_index, 2);
  EXPECT_EQ(parser.optind, 3);
  // Once the marker is seen the scanner stays at its end.
  EXPECT_EQ(parser.next(), -1);
  EXPECT_EQ(parser.optind, 3);
}

TEST(OptionParser, OperandEndsTheScan) {
  Words w({"TCEngine", "a.dat", "-f3"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  EXPECT_EQ(parser.next(), -1);
  EXPECT_EQ(parser.optind, 1);
}

TEST(OptionParser, BlankLetterEndsTheScan) {
  Words w({"TCEngine", "- R", "-R"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  EXPECT_EQ(parser.next(), -1);
  EXPECT_EQ(parser.optind, 1);
}

TEST(OptionParser, LoneDashIsAnOperand) {
  Words w({"TCEngine", "-", "-R"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  EXPECT_EQ(parser.next(), -1);
  EXPECT_EQ(parser.optind, 1);
}

TEST(OptionParser, ComplaintsGoToStandardErrorWithProgramWord) {
  Words w({"myname", "-x", "-s"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  testing::internal::CaptureStderr();
  EXPECT_EQ(parser.next(), '?');
  EXPECT_EQ(parser.next(), '?');
  EXPECT_EQ(parser.next(), -1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "myname: illegal option -- x\nmyname: option requires an argument -- s\n");
}

TEST(OptionParser, SilentWhenOpterrIsZero) {
  Words w({"myname", "-x"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  parser.opterr = 0;
  testing::internal::CaptureStderr();
  EXPECT_EQ(parser.next(), '?');
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(OptionParser, ColonIsNotAnOptionLetter) {
  Words w({"TCEngine", "-:"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  parser.opterr = 0;
  EXPECT_EQ(parser.next(), '?');
  EXPECT_EQ(parser.next(), -1);
}

TEST(OptionParser, LastIndexFollowsTheWordOfEachResult) {
  Words w({"TCEngine", "-R", "-f", "2"});
  TCOption_parser parser(w.argc(), w.argv(), kOptions);
  EXPECT_EQ(parser.next(), 'R');
  EXPECT_EQ(parser.last_index, 1);
  EXPECT_EQ(parser.next(), 'f');
  EXPECT_EQ(parser.last_index, 2);
  EXPECT_EQ(parser.optind, 4);
}

}  // namespace
