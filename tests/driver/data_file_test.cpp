#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>

#include "TCData_file.h"
#include "stream_capture.h"

namespace {

// Collects what is written to standard output for as long as it lives.
int header_of(const std::string& text, const char* type, int max_version, std::string& printed) {
  std::istringstream in(text);
  Stream_capture capture(std::cout);
  const int version = check_header(in, type, max_version);
  printed = capture.text();
  return version;
}

// Header: magic words, type and the version rule.

TEST(Header, MainMagicGivesTheFileVersion) {
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file scene 2 2", "scene", 2, printed), 2);
  EXPECT_EQ(printed, "");
}

TEST(Header, SecondMagicIsAcceptedExactlyLikeTheFirst) {
  std::string printed;
  EXPECT_EQ(header_of("Beavis_rules_the scene 2 2", "scene", 2, printed), 2);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(header_of("Beavis_rules_the camera 3 1\n", "camera", 3, printed), 3);
  EXPECT_EQ(printed, "");
}

TEST(Header, UnknownMagicIsReportedWordForWord) {
  std::string printed;
  EXPECT_EQ(header_of("Seascape_data_file scene 2 2", "scene", 2, printed), 0);
  EXPECT_EQ(printed,
            "incorrect header Seascape_data_file in data file\n"
            "expected string Tidecast_data_file \n");
}

TEST(Header, MagicIsComparedWithExactCase) {
  std::string printed;
  EXPECT_EQ(header_of("tidecast_data_file scene 2 2", "scene", 2, printed), 0);
  EXPECT_EQ(printed,
            "incorrect header tidecast_data_file in data file\n"
            "expected string Tidecast_data_file \n");
  EXPECT_EQ(header_of("BEAVIS_RULES_THE scene 2 2", "scene", 2, printed), 0);
  EXPECT_EQ(printed,
            "incorrect header BEAVIS_RULES_THE in data file\n"
            "expected string Tidecast_data_file \n");
}

TEST(Header, LongUnknownMagicIsPrintedWhole) {
  const std::string word(400, 'q');
  std::string printed;
  EXPECT_EQ(header_of(word + " scene 2 2", "scene", 2, printed), 0);
  EXPECT_EQ(printed,
            "incorrect header " + word + " in data file\nexpected string Tidecast_data_file \n");
}

TEST(Header, WrongTypeIsReportedWithTheExpectedWord) {
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file camera 3 3", "scene", 2, printed), 0);
  EXPECT_EQ(printed, "file type camera is not of \nexpected type scene\n");
}

TEST(Header, TypeIsComparedWithExactCase) {
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file Scene 2 2", "scene", 2, printed), 0);
  EXPECT_EQ(printed, "file type Scene is not of \nexpected type scene\n");
}

TEST(Header, ReaderTooOldForTheFileGivesZeroSilently) {
  // A scene file that needs reader version 3; this reader knows up to 2.
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file scene 3 3", "scene", 2, printed), 0);
  EXPECT_EQ(printed, "");
}

TEST(Header, NewerFileReadableByOlderReaderGivesItsVersion) {
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file scene 5 2", "scene", 2, printed), 5);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(header_of("Tidecast_data_file scene 1 1", "scene", 2, printed), 1);
  EXPECT_EQ(printed, "");
}

TEST(Header, FileVersionZeroLooksLikeAFailedHeader) {
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file scene 0 0", "scene", 2, printed), 0);
  EXPECT_EQ(printed, "");
}

TEST(Header, EmptyStreamIsAnIncorrectHeaderWithAnEmptyWord) {
  std::string printed;
  EXPECT_EQ(header_of("", "scene", 2, printed), 0);
  EXPECT_EQ(printed, "incorrect header  in data file\nexpected string Tidecast_data_file \n");
}

TEST(Header, MissingTypeIsAWrongType) {
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file", "scene", 2, printed), 0);
  EXPECT_EQ(printed, "file type  is not of \nexpected type scene\n");
}

TEST(Header, MissingVersionsGiveZeroSilently) {
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file scene", "scene", 2, printed), 0);
  EXPECT_EQ(printed, "");
}

TEST(Header, MissingOldestReaderCountsAsZero) {
  // The second number stays 0, which no reader is too old for.
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file scene 2", "scene", 2, printed), 2);
  EXPECT_EQ(printed, "");
}

TEST(Header, NonNumericFileVersionGivesZeroSilently) {
  std::string printed;
  EXPECT_EQ(header_of("Tidecast_data_file scene two 2", "scene", 2, printed), 0);
  EXPECT_EQ(printed, "");
}

TEST(Header, NonNumericOldestReaderLeavesTheFileVersionAndAFailedStream) {
  std::istringstream in("Tidecast_data_file scene 2 two");
  Stream_capture capture(std::cout);
  EXPECT_EQ(check_header(in, "scene", 2), 2);
  EXPECT_TRUE(in.fail());
  EXPECT_EQ(capture.text(), "");
}

TEST(Header, StreamIsLeftJustAfterTheVersions) {
  std::istringstream in("Beavis_rules_the scene 2 1\nnext_token 7");
  EXPECT_EQ(check_header(in, "scene", 2), 2);
  std::string next;
  in >> next;
  EXPECT_EQ(next, "next_token");
}

TEST(Header, WrittenHeaderRepeatsTheVersion) {
  std::ostringstream out;
  write_header(out, "camera", 3);
  EXPECT_EQ(out.str(), "Tidecast_data_file camera 3 3\n");
}

TEST(Header, WrittenHeaderReadsBack) {
  std::ostringstream out;
  write_header(out, "scene", 2);
  std::istringstream in(out.str());
  EXPECT_EQ(check_header(in, "scene", 2), 2);
}

// Yes and no.

TEST(YesNo, ThreeSpellingsOfYesAreYes) {
  EXPECT_EQ(parse_yes_no("yes"), 1);
  EXPECT_EQ(parse_yes_no("Yes"), 1);
  EXPECT_EQ(parse_yes_no("YES"), 1);
}

TEST(YesNo, NoAndEverythingElseAreNo) {
  EXPECT_EQ(parse_yes_no("no"), 0);
  EXPECT_EQ(parse_yes_no("No"), 0);
  EXPECT_EQ(parse_yes_no("NO"), 0);
  EXPECT_EQ(parse_yes_no("yEs"), 0);
  EXPECT_EQ(parse_yes_no("yes!"), 0);
  EXPECT_EQ(parse_yes_no("true"), 0);
  EXPECT_EQ(parse_yes_no("1"), 0);
  EXPECT_EQ(parse_yes_no(""), 0);
}

TEST(YesNo, SingleLetterIsNoWithoutComplaint) {
  Stream_capture capture(std::cout);
  EXPECT_EQ(parse_yes_no("y"), 0);
  EXPECT_EQ(capture.text(), "");
}

TEST(YesNo, WriterSpellsFlagsInLowerCase) {
  EXPECT_STREQ(yes_no_text(1), "yes");
  EXPECT_STREQ(yes_no_text(0), "no");
  EXPECT_EQ(parse_yes_no(yes_no_text(1)), 1);
  EXPECT_EQ(parse_yes_no(yes_no_text(0)), 0);
}

// End marker.

TEST(EndMarker, EndIsAcceptedSilently) {
  std::istringstream in("  end\n");
  Stream_capture capture(std::cout);
  EXPECT_EQ(check_end(in, "camera file not terminated"), 1);
  EXPECT_EQ(capture.text(), "");
}

TEST(EndMarker, OtherTokenPrintsTheMessageAndWhatWasRead) {
  std::istringstream in("finish");
  Stream_capture capture(std::cout);
  EXPECT_EQ(check_end(in, "camera file not terminated"), 0);
  EXPECT_EQ(capture.text(), "camera file not terminated\nread finishinstead of end\n");
}

TEST(EndMarker, EndIsComparedExactly) {
  std::istringstream in("END end. ending");
  Stream_capture capture(std::cout);
  EXPECT_EQ(check_end(in, "m"), 0);
  EXPECT_EQ(check_end(in, "m"), 0);
  EXPECT_EQ(check_end(in, "m"), 0);
  EXPECT_EQ(capture.text(),
            "m\nread ENDinstead of end\n"
            "m\nread end.instead of end\n"
            "m\nread endinginstead of end\n");
}

TEST(EndMarker, ExhaustedStreamFailsWithAnEmptyToken) {
  std::istringstream in("   ");
  Stream_capture capture(std::cout);
  EXPECT_EQ(check_end(in, "box file not terminated"), 0);
  EXPECT_EQ(capture.text(), "box file not terminated\nread instead of end\n");
}

// Token and number readers.

TEST(Tokens, TokenIsReadUpToWhitespace) {
  std::istringstream in("  first\tsecond\nthird");
  char buffer[16];
  EXPECT_EQ(read_token(in, buffer, sizeof(buffer)), 1);
  EXPECT_STREQ(buffer, "first");
  EXPECT_EQ(read_token(in, buffer, sizeof(buffer)), 1);
  EXPECT_STREQ(buffer, "second");
  EXPECT_EQ(read_token(in, buffer, sizeof(buffer)), 1);
  EXPECT_STREQ(buffer, "third");
}

TEST(Tokens, LongTokenIsCutToTheBufferButConsumedWhole) {
  std::istringstream in("abcdefghij next");
  char buffer[8] = {'z', 'z', 'z', 'z', 'z', 'z', 'z', 'z'};
  EXPECT_EQ(read_token(in, buffer, 5), 1);
  EXPECT_STREQ(buffer, "abcd");
  EXPECT_EQ(buffer[5], 'z');  // nothing written past the given size
  EXPECT_EQ(read_token(in, buffer, 8), 1);
  EXPECT_STREQ(buffer, "next");
}

TEST(Tokens, TokenThatExactlyFillsTheBufferIsKept) {
  std::istringstream in("abcd");
  char buffer[5];
  EXPECT_EQ(read_token(in, buffer, 5), 1);
  EXPECT_STREQ(buffer, "abcd");
}

TEST(Tokens, NothingLeftGivesAnEmptyTokenAndZero) {
  std::istringstream in(" \n ");
  char buffer[8] = "old";
  EXPECT_EQ(read_token(in, buffer, sizeof(buffer)), 0);
  EXPECT_STREQ(buffer, "");
}

TEST(Tokens, SkippedTokenIsDroppedUnread) {
  std::istringstream in("whatever_keyword: 42");
  skip_token(in);
  int value = 0;
  EXPECT_EQ(read_int(in, value), 1);
  EXPECT_EQ(value, 42);
}

TEST(Numbers, IntegerAndDoubleAreRead) {
  std::istringstream in("-17 2.5e3 7");
  int i = 0;
  double d = 0.0;
  EXPECT_EQ(read_int(in, i), 1);
  EXPECT_EQ(i, -17);
  EXPECT_EQ(read_double(in, d), 1);
  EXPECT_EQ(d, 2500.0);
  EXPECT_EQ(read_double(in, d), 1);
  EXPECT_EQ(d, 7.0);
}

TEST(Numbers, FailedIntegerKeepsTheOldValue) {
  std::istringstream in("seven");
  int value = 12;
  EXPECT_EQ(read_int(in, value), 0);
  EXPECT_EQ(value, 12);
  EXPECT_TRUE(in.fail());
}

TEST(Numbers, OverflowingIntegerKeepsTheOldValue) {
  std::istringstream in("99999999999");
  int value = 12;
  EXPECT_EQ(read_int(in, value), 0);
  EXPECT_EQ(value, 12);
}

TEST(Numbers, FailedDoubleKeepsTheOldValue) {
  std::istringstream in("x1.5");
  double value = 0.75;
  EXPECT_EQ(read_double(in, value), 0);
  EXPECT_EQ(value, 0.75);
}

TEST(Numbers, ExhaustedStreamKeepsTheOldValues) {
  std::istringstream in("");
  int i = 3;
  double d = -2.0;
  EXPECT_EQ(read_int(in, i), 0);
  EXPECT_EQ(read_double(in, d), 0);
  EXPECT_EQ(i, 3);
  EXPECT_EQ(d, -2.0);
}

TEST(Numbers, FailedStreamReadsNothingMore) {
  std::istringstream in("bad 5 6.0");
  int i = 1;
  double d = 1.0;
  EXPECT_EQ(read_int(in, i), 0);
  EXPECT_EQ(read_int(in, i), 0);
  EXPECT_EQ(read_double(in, d), 0);
  EXPECT_EQ(i, 1);
  EXPECT_EQ(d, 1.0);
}

// Keyword-then-value lines.

TEST(KeyedValues, KeywordIsDroppedUnreadAndTheValueTaken) {
  std::istringstream in(
      "n_points_x: 256 dx 0.5 spectrum_file: sea.dat detail_file: ocean_grid.dat 12 34 next");
  int n = 0;
  double dx = 0.0;
  char name[16] = "";
  char short_name[6] = "";
  int number_as_keyword = 0;
  EXPECT_EQ(read_keyed_int(in, n), 1);
  EXPECT_EQ(n, 256);
  EXPECT_EQ(read_keyed_double(in, dx), 1);
  EXPECT_EQ(dx, 0.5);
  EXPECT_EQ(read_keyed_word(in, name, sizeof(name)), 1);
  EXPECT_STREQ(name, "sea.dat");
  // A word longer than the buffer is cut to fit and consumed whole.
  EXPECT_EQ(read_keyed_word(in, short_name, sizeof(short_name)), 1);
  EXPECT_STREQ(short_name, "ocean");
  // Only the order counts: even a number in the keyword's place is dropped.
  EXPECT_EQ(read_keyed_int(in, number_as_keyword), 1);
  EXPECT_EQ(number_as_keyword, 34);
  char rest[8] = "";
  EXPECT_EQ(read_token(in, rest, sizeof(rest)), 1);
  EXPECT_STREQ(rest, "next");
}

TEST(KeyedValues, ValueThatDoesNotReadKeepsTheOldOneAndFailsTheStream) {
  std::istringstream in("n_points_x: many");
  int n = 64;
  EXPECT_EQ(read_keyed_int(in, n), 0);
  EXPECT_EQ(n, 64);
  EXPECT_TRUE(in.fail());

  std::istringstream in_double("dx: x0.5");
  double dx = 0.25;
  EXPECT_EQ(read_keyed_double(in_double, dx), 0);
  EXPECT_EQ(dx, 0.25);
  EXPECT_TRUE(in_double.fail());
}

TEST(KeyedValues, KeywordWithNothingAfterItKeepsTheOldValues) {
  int n = 3;
  double d = -2.0;
  std::istringstream only_keyword("n_points_x:");
  EXPECT_EQ(read_keyed_int(only_keyword, n), 0);
  std::istringstream empty("");
  EXPECT_EQ(read_keyed_double(empty, d), 0);
  EXPECT_EQ(n, 3);
  EXPECT_EQ(d, -2.0);
}

TEST(KeyedValues, FailedStreamReadsNothingMore) {
  std::istringstream in("a: bad b: 5 c: 6.5 d: name e: 90");
  int a = 1, b = 2;
  double c = 3.0, e = 4.0;
  char word[8] = "old";
  EXPECT_EQ(read_keyed_int(in, a), 0);
  EXPECT_EQ(read_keyed_int(in, b), 0);
  EXPECT_EQ(read_keyed_double(in, c), 0);
  EXPECT_EQ(read_keyed_word(in, word, sizeof(word)), 0);
  EXPECT_EQ(read_keyed_angle(in, e), 0);
  EXPECT_EQ(a, 1);
  EXPECT_EQ(b, 2);
  EXPECT_EQ(c, 3.0);
  EXPECT_EQ(e, 4.0);
  // As read_token: an unread word leaves the buffer empty.
  EXPECT_STREQ(word, "");
}

TEST(KeyedValues, TextIsTheWholeWordAfterTheKeyword) {
  const std::string long_word(300, 'w');
  std::istringstream in("glitter: enhanced name: " + long_word + " last:");
  EXPECT_EQ(read_keyed_text(in), "enhanced");
  EXPECT_EQ(read_keyed_text(in), long_word);
  // Nothing after the keyword: an empty word and a failed stream.
  EXPECT_EQ(read_keyed_text(in), "");
  EXPECT_TRUE(in.fail());
}

TEST(KeyedValues, AngleOnFileIsDegreesWithTheTenDigitPi) {
  // python3: 90 * 0.017453292519444445 = 1.57079632675,
  // -45 * 0.017453292519444445 = -0.785398163375.
  std::istringstream in("direction: 90 orientation: -45");
  double direction = 0.0, orientation = 0.0;
  EXPECT_EQ(read_keyed_angle(in, direction), 1);
  EXPECT_EQ(direction, 0x1.921fb54411744p+0);
  EXPECT_NE(direction, 1.5707963267948966);
  EXPECT_EQ(read_keyed_angle(in, orientation), 1);
  EXPECT_EQ(orientation, -0x1.921fb54411744p-1);
}

TEST(KeyedValues, AngleThatDoesNotReadKeepsTheOldRadians) {
  std::istringstream in("direction: north");
  double direction = 0.25;
  EXPECT_EQ(read_keyed_angle(in, direction), 0);
  EXPECT_EQ(direction, 0.25);
  EXPECT_TRUE(in.fail());
}

// Angles keep the ten-digit pi. Expected values computed independently with
// python3 from 0.017453292519444445 and 180.0 / 3.1415926535.

TEST(Angles, NinetyDegreesUseTheTenDigitPi) {
  // 90 * 0.017453292519444445 = 1.57079632675, not the library's 1.5707963267948966.
  EXPECT_EQ(radians_from_file(90.0), 0x1.921fb54411744p+0);
  EXPECT_EQ(radians_from_file(90.0), 1.5707963267500000);
  EXPECT_NE(radians_from_file(90.0), 1.5707963267948966);
}

TEST(Angles, TenDegreesUseTheTenDigitPi) {
  EXPECT_EQ(radians_from_file(10.0), 0x1.657184ae48675p-3);
  EXPECT_EQ(radians_from_file(10.0), 0.17453292519444444);
  EXPECT_NE(radians_from_file(10.0), 0.17453292519943295);
}

TEST(Angles, WrittenDegreesMultiplyThenDivideByTheTenDigitPi) {
  // For 1/7 rad, 180.0 / 3.1415926535 applied in that order gives
  // 8.185111359245706; multiplying by 57.29577951471995 would give ...708.
  const double radians = 1.0 / 7.0;
  EXPECT_EQ(degrees_for_file(radians), 0x1.05ec6ea842826p+3);
  EXPECT_EQ(degrees_for_file(radians), 8.1851113592457060);
  EXPECT_NE(degrees_for_file(radians), 8.1851113592457080);
}

TEST(Angles, OneRadianIsWrittenWithTheTenDigitPi) {
  std::ostringstream out;
  set_file_precision(out);
  out << degrees_for_file(1.0);
  EXPECT_EQ(out.str(), "57.29577951472");  // a library pi would print 57.2957795130823
}

// Number format of the writers.

TEST(Precision, FifteenSignificantDigitsInDefaultForm) {
  std::ostringstream out;
  out << std::fixed;
  out.precision(3);
  set_file_precision(out);
  out << 1.0 / 3.0 << " " << 0.1 << " " << 1e6 << " " << 1e20 << " " << 2.5 << " " << -0.0;
  EXPECT_EQ(out.str(), "0.333333333333333 0.1 1000000 1e+20 2.5 -0");
}

}  // namespace
