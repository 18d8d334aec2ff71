#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "TCStar_input.h"
#include "stream_capture.h"

// Expected angles come from sun_reference.py beside this file.

namespace {

int read_sun_text(TCStar_input& sun, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = sun.read_stream(in);
  printed = out.text();
  return result;
}

int read_block_text(TCStar_input& sun, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = sun.read_list_block(in);
  printed = out.text();
  return result;
}

std::string written_sun(const TCStar_input& sun) {
  std::ostringstream out;
  EXPECT_EQ(sun.write_stream(out), 1);
  return out.str();
}

std::string written_block(const TCStar_input& sun) {
  std::ostringstream out;
  EXPECT_EQ(sun.write_list_block(out), 1);
  return out.str();
}

// A fresh directory per test for the files it writes.
class Sun_files : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/sun_input_testXXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    dir_ = pattern;
  }
  void TearDown() override {
    for (const std::string& path : made_) std::remove(path.c_str());
    rmdir(dir_.c_str());
  }
  std::string path(const char* name) {
    const std::string p = dir_ + "/" + name;
    made_.push_back(p);
    return p;
  }
  std::string dir_;
  std::vector<std::string> made_;
};

const char* const two_band_sun =
    "Tidecast_data_file sun 1 1\n"
    "position_method_flag 0\n"
    "number_of_bands 2\n"
    "band_id 1 2\n"
    "irradiance 1.5 1.25\n"
    "end\n";

const char* const two_key_block =
    "number_of_times 2\n"
    "time       theta        phi\n"
    "0 30 90\n"
    "10 60 180\n"
    "data_file:  sun.dat\n";

TEST(SunInput, DefaultsAreOneZeroBandUnderTheNameSun) {
  TCStar_input sun;
  EXPECT_STREQ(sun.object_name, "sun");
  EXPECT_STREQ(sun.object_type, "star");
  EXPECT_EQ(sun.type_code, 101);
  EXPECT_EQ(sun.position_method_flag, 0);
  EXPECT_EQ(sun.number_of_bands, 1);
  ASSERT_EQ(sun.irradiance.n, 1);
  EXPECT_EQ(sun.irradiance.band_id[0], 1);
  EXPECT_EQ(sun.irradiance.radiance_in_band[0], 0.0);
}

TEST(SunInput, FileGivesMethodBandsAndIrradiance) {
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1\n"
                          "position_method_flag 3\n"
                          "number_of_bands 3\n"
                          "band_id 4 9 2\n"
                          "irradiance 1.5 0.25 7\n"
                          "end\n",
                          printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(sun.position_method_flag, 3);
  EXPECT_EQ(sun.number_of_bands, 3);
  ASSERT_EQ(sun.irradiance.n, 3);
  EXPECT_EQ(sun.irradiance.band_id[0], 4);
  EXPECT_EQ(sun.irradiance.band_id[1], 9);
  EXPECT_EQ(sun.irradiance.band_id[2], 2);
  EXPECT_EQ(sun.irradiance.radiance_in_band[0], 1.5);
  EXPECT_EQ(sun.irradiance.radiance_in_band[1], 0.25);
  EXPECT_EQ(sun.irradiance.radiance_in_band[2], 7.0);
}

TEST(SunInput, KeywordsAreNotCompared) {
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(read_sun_text(sun, "Tidecast_data_file sun 1 1 a 1 b 1 c 5 d 2.5 end", printed), 1);
  EXPECT_EQ(sun.position_method_flag, 1);
  EXPECT_EQ(sun.irradiance.band_id[0], 5);
  EXPECT_EQ(sun.irradiance.radiance_in_band[0], 2.5);
}

TEST(SunInput, ZeroBandsReadAsAnEmptySpectrum) {
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(
      read_sun_text(sun,
                    "Tidecast_data_file sun 1 1 position_method_flag 0 number_of_bands 0 band_id "
                    "irradiance end",
                    printed),
      1);
  EXPECT_EQ(sun.number_of_bands, 0);
  EXPECT_EQ(sun.irradiance.n, 0);
}

TEST(SunInput, WritesTheFileWithABlankAheadOfEachValue) {
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(read_sun_text(sun, two_band_sun, printed), 1);
  EXPECT_EQ(written_sun(sun),
            "Tidecast_data_file sun 1 1\n"
            "position_method_flag 0\n"
            "number_of_bands 2\n"
            "band_id  1 2\n"
            "irradiance  1.5 1.25\n"
            "end \n");
}

TEST(SunInput, WrittenFileReadsBackToTheSameRecord) {
  TCStar_input sun, again;
  std::string printed;
  ASSERT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1 position_method_flag 2 number_of_bands 2 "
                          "band_id 3 8 irradiance 0.1 123456.789 end",
                          printed),
            1);
  ASSERT_EQ(read_sun_text(again, written_sun(sun), printed), 1);
  EXPECT_EQ(again.position_method_flag, 2);
  ASSERT_EQ(again.irradiance.n, 2);
  EXPECT_EQ(again.irradiance.band_id[0], 3);
  EXPECT_EQ(again.irradiance.band_id[1], 8);
  EXPECT_EQ(again.irradiance.radiance_in_band[0], 0.1);
  EXPECT_EQ(again.irradiance.radiance_in_band[1], 123456.789);
}

TEST(SunInput, BadHeaderPrintsTheStarFileLine) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_sun_text(sun, "Tidecast_data_file camera 1 1 end", printed), 0);
  EXPECT_EQ(printed,
            "file type camera is not of \n"
            "expected type sun\n"
            "cannot process star file \n");
}

TEST(SunInput, NewerFileIsRefusedWithOnlyTheStarFileLine) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_sun_text(sun, "Tidecast_data_file sun 2 2 a 0 b 1 c 1 d 1 end", printed), 0);
  EXPECT_EQ(printed, "cannot process star file \n");
}

TEST(SunInput, WrongClosingWordIsReportedAndNothingIsKept) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1 position_method_flag 1 number_of_bands 1 "
                          "band_id 7 irradiance 2 fin",
                          printed),
            0);
  EXPECT_EQ(printed,
            "unable to process input file \n"
            "where should have found end  found fin\n");
  EXPECT_EQ(sun.position_method_flag, 0);
  EXPECT_EQ(sun.irradiance.band_id[0], 1);
  EXPECT_EQ(sun.irradiance.radiance_in_band[0], 0.0);
}

TEST(SunInput, WordInPlaceOfANumberIsShownAtTheEndCheck) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1 position_method_flag 0 number_of_bands 2 "
                          "band_id 1 2 irradiance 1.5 bright end",
                          printed),
            0);
  EXPECT_EQ(printed,
            "unable to process input file \n"
            "where should have found end  found bright\n");
}

TEST(SunInput, FailedReadFailsEvenWhenEndFollows) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1 position_method_flag 0 number_of_bands x "
                          "end",
                          printed),
            0);
  EXPECT_EQ(printed,
            "unable to process input file \n"
            "where should have found end  found x\n");
}

TEST(SunInput, TruncatedFileFails) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1 position_method_flag 0 number_of_bands 3 "
                          "band_id 1 2",
                          printed),
            0);
  EXPECT_EQ(printed,
            "unable to process input file \n"
            "where should have found end  found \n");
  EXPECT_EQ(sun.irradiance.n, 1);
}

TEST(SunInput, NegativeBandCountIsRefusedWithoutReadingFurther) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1 position_method_flag 0 number_of_bands -2 "
                          "band_id 1 2 irradiance 1 1 end",
                          printed),
            0);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(sun.number_of_bands, 1);
  EXPECT_EQ(sun.irradiance.n, 1);
}

TEST(SunInput, HugeBandCountInAShortFileFailsWithoutHugeMemory) {
  TCStar_input sun;
  std::string printed;
  // Two billion ids claimed, three present: storage grows only with the ids
  // read, so this fails at the end check rather than allocating 16 GB.
  EXPECT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1 position_method_flag 0 "
                          "number_of_bands 2000000000 band_id 1 2 3 irradiance 1 1 1 end",
                          printed),
            0);
  EXPECT_EQ(printed,
            "unable to process input file \n"
            "where should have found end  found irradiance\n");
}

TEST(SunInput, BandCountBeyondAnIntIsAWordThatCannotBeRead) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_sun_text(sun,
                          "Tidecast_data_file sun 1 1 position_method_flag 0 "
                          "number_of_bands 99999999999 band_id 1 irradiance 1 end",
                          printed),
            0);
  EXPECT_EQ(printed.rfind("unable to process input file \n", 0), 0u);
}

TEST_F(Sun_files, FileRoundTripThroughDisk) {
  TCStar_input sun, again;
  std::string printed;
  ASSERT_EQ(read_sun_text(sun, two_band_sun, printed), 1);
  const std::string p = path("sun.dat");
  ASSERT_EQ(sun.write_file(p.c_str()), 1);
  Stream_capture out(std::cout);
  ASSERT_EQ(again.read_file(p.c_str()), 1);
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(written_sun(again), written_sun(sun));
}

TEST_F(Sun_files, MissingFileCannotBeOpened) {
  TCStar_input sun;
  const std::string p = path("absent.dat");
  Stream_capture out(std::cout);
  EXPECT_EQ(sun.read_file(p.c_str()), 0);
  EXPECT_EQ(out.text(), "unable to open sun input file " + p + "\n");
}

TEST_F(Sun_files, UnreadableFileNamesThePath) {
  TCStar_input sun;
  const std::string p = path("bad.dat");
  {
    std::ofstream file(p.c_str());
    file << "Tidecast_data_file sun 1 1 position_method_flag 0 number_of_bands 1 band_id 1 "
            "irradiance 1 stop\n";
  }
  Stream_capture out(std::cout);
  EXPECT_EQ(sun.read_file(p.c_str()), 0);
  EXPECT_EQ(out.text(),
            "unable to process input file \n"
            "where should have found end  found stop\n"
            "unable to process sun file " +
                p + "\n");
}

TEST_F(Sun_files, OutputFileThatCannotBeOpenedIsReported) {
  TCStar_input sun;
  const std::string p = dir_ + "/no_such_dir/sun.dat";
  Stream_capture out(std::cout);
  EXPECT_EQ(sun.write_file(p.c_str()), 0);
  EXPECT_EQ(out.text(), "unable to open star output file " + p + "\n");
}

TEST_F(Sun_files, OutputThatCannotBeWrittenIsReported) {
  // /dev/full opens but refuses every byte.
  std::ofstream probe("/dev/full");
  if (!probe) GTEST_SKIP() << "no /dev/full here";
  TCStar_input sun;
  Stream_capture out(std::cout);
  EXPECT_EQ(sun.write_file("/dev/full"), 0);
  EXPECT_EQ(out.text(), "unable to process star output file /dev/full\n");
}

TEST(SunListBlock, AnglesAreTurnedIntoTheEnginesConvention) {
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(read_block_text(sun, two_key_block, printed), 1);
  EXPECT_EQ(printed, "");
  ASSERT_EQ(sun.track.number_of_times, 2);
  EXPECT_EQ(sun.track.times[0], 0.0);
  EXPECT_EQ(sun.track.times[1], 10.0);
  // pi - theta * deg and phi * deg + pi, with pi = 3.1415926535.
  EXPECT_DOUBLE_EQ(sun.track.chi[0], 2.6179938779166667);
  EXPECT_DOUBLE_EQ(sun.track.phi[0], 4.71238898025);
  EXPECT_DOUBLE_EQ(sun.track.chi[1], 2.0943951023333334);
  EXPECT_DOUBLE_EQ(sun.track.phi[1], 6.283185307);
  for (int i = 0; i < 2; i++) {
    EXPECT_EQ(sun.track.theta[i], 0.0);
    EXPECT_EQ(sun.track.positions[i].x, 0.0);
    EXPECT_EQ(sun.track.positions[i].y, 0.0);
    EXPECT_EQ(sun.track.positions[i].z, 0.0);
  }
  EXPECT_STREQ(sun.object_file, "sun.dat");
}

TEST(SunListBlock, OverheadSunOnFileIsPiInMemory) {
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(read_block_text(sun, "n 1 a b c 0 0 0 d f", printed), 1);
  EXPECT_EQ(sun.track.chi[0], 3.1415926535);
  EXPECT_EQ(sun.track.phi[0], 3.1415926535);
  EXPECT_STREQ(sun.object_file, "f");
}

TEST(SunListBlock, NegativeAndLargeAnglesAreTakenAsGiven) {
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(read_block_text(sun, "n 1 a b c 4 -12.5 270 d f", printed), 1);
  EXPECT_EQ(sun.track.times[0], 4.0);
  EXPECT_DOUBLE_EQ(sun.track.chi[0], 3.3597588099930555);
  EXPECT_DOUBLE_EQ(sun.track.phi[0], 7.85398163375);
}

TEST(SunListBlock, WritesDegreesBackInTheFilesConvention) {
  TCStar_input sun;
  sun.track.set_number_of_times(1);
  sun.track.times[0] = 2.5;
  sun.track.chi[0] = 2.0;
  sun.track.phi[0] = 4.0;
  std::strcpy(sun.object_file, "noon.sun");
  EXPECT_EQ(written_block(sun),
            "number_of_times 1\n"
            "time       theta        phi\n"
            "2.5 65.4084409705601 49.1831180588798\n"
            "data_file:  noon.sun\n");
}

TEST(SunListBlock, ReadThenWrittenGivesTheSameDegrees) {
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(read_block_text(sun, two_key_block, printed), 1);
  EXPECT_EQ(written_block(sun),
            "number_of_times 2\n"
            "time       theta        phi\n"
            "0 30 90\n"
            "10 60 180\n"
            "data_file:  sun.dat\n");
}

TEST(SunListBlock, FewerThanOneTimeIsRefused) {
  for (const char* count : {"0", "-3"}) {
    TCStar_input sun;
    std::string printed;
    EXPECT_EQ(
        read_block_text(
            sun, std::string("number_of_times ") + count + " time theta phi data_file: f", printed),
        0);
    EXPECT_EQ(printed, "star must be specified for atleast one time \n");
    EXPECT_EQ(sun.track.number_of_times, 1);
    EXPECT_STREQ(sun.object_file, "");
  }
}

TEST(SunListBlock, WritingATrackWithNoTimesIsRefused) {
  TCStar_input sun;
  sun.track.set_number_of_times(0);
  std::ostringstream block;
  Stream_capture out(std::cout);
  EXPECT_EQ(sun.write_list_block(block), 0);
  EXPECT_EQ(out.text(), "star must be specified for atleast one time \n");
}

TEST(SunListBlock, TruncatedRowsFailAndKeepTheOldTrack) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_block_text(sun, "number_of_times 3 time theta phi 0 10 20 1 11", printed), 0);
  EXPECT_EQ(sun.track.number_of_times, 1);
  EXPECT_EQ(sun.track.chi[0], 0.0);
}

TEST(SunListBlock, WordInARowFails) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(
      read_block_text(sun, "number_of_times 1 time theta phi 0 high 20 data_file: f", printed), 0);
  EXPECT_STREQ(sun.object_file, "");
}

TEST(SunListBlock, MissingFileNameFails) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_block_text(sun, "number_of_times 1 time theta phi 0 10 20 data_file:", printed),
            0);
  EXPECT_EQ(sun.track.number_of_times, 1);
}

TEST(SunListBlock, UnreadableCountFails) {
  TCStar_input sun;
  std::string printed;
  EXPECT_EQ(read_block_text(sun, "number_of_times many", printed), 0);
}

TEST(SunListBlock, HugeCountInAShortBlockFailsWithoutHugeMemory) {
  TCStar_input sun;
  std::string printed;
  // 2^31 - 1 rows claimed (some 50 GB of keys), two present.
  EXPECT_EQ(read_block_text(sun,
                            "number_of_times 2147483647 time theta phi 0 1 2 3 4 5 "
                            "data_file: f",
                            printed),
            0);
  EXPECT_EQ(sun.track.number_of_times, 1);
}

TEST(SunListBlock, ManyRowsGrowTheStorage) {
  std::ostringstream block;
  block << "number_of_times 100 time theta phi\n";
  for (int i = 0; i < 100; i++) block << i << " 0 0\n";
  block << "data_file: f\n";
  TCStar_input sun;
  std::string printed;
  ASSERT_EQ(read_block_text(sun, block.str(), printed), 1);
  ASSERT_EQ(sun.track.number_of_times, 100);
  EXPECT_EQ(sun.track.times[99], 99.0);
  EXPECT_EQ(sun.track.chi[99], 3.1415926535);
}

TEST(SunListBlock, LongFileNameIsCutToTheField) {
  TCStar_input sun;
  std::string printed;
  const std::string name(400, 'n');
  ASSERT_EQ(
      read_block_text(sun, "number_of_times 1 time theta phi 0 1 2 data_file: " + name, printed),
      1);
  EXPECT_EQ(std::strlen(sun.object_file), 255u);
}

}  // namespace
