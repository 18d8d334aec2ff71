#include "Skydome_input.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "TCConstants.h"
#include "TCData_file.h"
#include "TCObject_kinds.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

int read_text(Skydome_input& dome, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = dome.read_stream(in);
  printed = out.text();
  return result;
}

std::string written(const Skydome_input& dome) {
  std::ostringstream out;
  EXPECT_EQ(dome.write_stream(out), 1);
  return out.str();
}

// Every field of the newest format, keywords as the writer spells them.
const char* const full_dome =
    "Tidecast_data_file skydome 4 4\n"
    "dome_radius:   5000\n"
    "number_of_bands: 3\n"
    "band_id:  4  5  6\n"
    "dome_file: sky.rgb\n"
    "horizon_angle: 2.5\n"
    "animation:  frames\n"
    "alpha_channel:  1\n"
    "min_radiance: 0 0.5 1\n"
    "max_radiance:  1 2 3\n"
    "imaging_method: 3\n"
    "end\n";

TEST(SkydomeInput, StartsAsASkydomeWithItsDefaults) {
  Skydome_input dome;
  EXPECT_STREQ(dome.object_type, "skydome");
  EXPECT_EQ(dome.type_code, TC_KIND_SKYDOME);
  EXPECT_EQ(dome.type_code, 11);
  EXPECT_EQ(dome.priority, 2.0);
  EXPECT_EQ(dome.dome_radius, 99999999.0);
  EXPECT_EQ(dome.horizon_angle, 0.0);
  EXPECT_EQ(dome.animation, 0);
  EXPECT_EQ(dome.alpha_channel, 0);
  EXPECT_EQ(dome.imaging_method, 0);
  EXPECT_EQ(dome.texture_mode, 1);
  EXPECT_EQ(dome.number_of_bands, 0);
}

TEST(SkydomeInput, ReadsEveryFieldOfTheNewestFormat) {
  Skydome_input dome;
  std::string printed;
  ASSERT_EQ(read_text(dome, full_dome, printed), 1) << printed;
  EXPECT_EQ(printed, "");
  EXPECT_EQ(dome.dome_radius, 5000.0);
  ASSERT_EQ(dome.number_of_bands, 3);
  EXPECT_EQ(dome.band_ids[0], 4);
  EXPECT_EQ(dome.band_ids[1], 5);
  EXPECT_EQ(dome.band_ids[2], 6);
  EXPECT_STREQ(dome.dome_file, "sky.rgb");
  // Degrees times the engine's own factor.
  EXPECT_DOUBLE_EQ(dome.horizon_angle, 2.5 * 0.017453292519444445);
  EXPECT_EQ(dome.animation, 101);
  EXPECT_EQ(dome.alpha_channel, 1);
  EXPECT_EQ(dome.min_radiance[1], 0.5);
  EXPECT_EQ(dome.max_radiance[2], 3.0);
  EXPECT_EQ(dome.imaging_method, 3);
}

TEST(SkydomeInput, KeywordsAreSkippedUnread) {
  Skydome_input dome;
  std::string printed;
  const std::string text =
      "Tidecast_data_file skydome 4 4\n"
      "a 7 b 1 c 9 d f.rgb e 0 f time g 2 h 0.25 i 0.75 j 1 end";
  ASSERT_EQ(read_text(dome, text, printed), 1) << printed;
  EXPECT_EQ(dome.dome_radius, 7.0);
  EXPECT_EQ(dome.band_ids[0], 9);
  EXPECT_EQ(dome.animation, 100);
  EXPECT_EQ(dome.alpha_channel, 2);
  EXPECT_EQ(dome.min_radiance[0], 0.25);
  EXPECT_EQ(dome.max_radiance[0], 0.75);
  EXPECT_EQ(dome.imaging_method, 1);
}

TEST(SkydomeInput, AnimationWordsOtherThanTimeAndFramesMeanNone) {
  Skydome_input dome;
  std::string printed;
  std::string text = full_dome;
  text.replace(text.find("frames"), 6, "Frames");
  ASSERT_EQ(read_text(dome, text, printed), 1);
  EXPECT_EQ(dome.animation, 0);
}

TEST(SkydomeInput, VersionOneHasNoHorizonAnimationAlphaOrImagingMethod) {
  Skydome_input dome;
  dome.horizon_angle = 1.0;  // left from an earlier file
  std::string printed;
  const std::string text =
      "Tidecast_data_file skydome 1 1\n"
      "dome_radius: 10\n"
      "number_of_bands: 1\n"
      "band_id: 2\n"
      "dome_file: sky.rgb\n"
      "min_radiance: 0\n"
      "max_radiance: 1\n"
      "end\n";
  ASSERT_EQ(read_text(dome, text, printed), 1) << printed;
  EXPECT_EQ(dome.horizon_angle, 0.0);
  EXPECT_EQ(dome.animation, 0);
  EXPECT_EQ(dome.alpha_channel, 0);
  EXPECT_EQ(dome.imaging_method, 2);
  EXPECT_EQ(dome.max_radiance[0], 1.0);
}

TEST(SkydomeInput, VersionTwoAddsTheImagingMethod) {
  Skydome_input dome;
  std::string printed;
  const std::string text =
      "Tidecast_data_file skydome 2 2\n"
      "dome_radius: 10 number_of_bands: 1 band_id: 2 dome_file: sky.rgb\n"
      "min_radiance: 0 max_radiance: 1 imaging_method: 1 end\n";
  ASSERT_EQ(read_text(dome, text, printed), 1) << printed;
  EXPECT_EQ(dome.imaging_method, 1);
  EXPECT_EQ(dome.horizon_angle, 0.0);
}

TEST(SkydomeInput, VersionThreeAddsTheHorizonButNotTheAnimation) {
  Skydome_input dome;
  std::string printed;
  const std::string text =
      "Tidecast_data_file skydome 3 3\n"
      "dome_radius: 10 number_of_bands: 1 band_id: 2 dome_file: sky.rgb\n"
      "horizon_angle: -3 min_radiance: 0 max_radiance: 1 imaging_method: 4 end\n";
  ASSERT_EQ(read_text(dome, text, printed), 1) << printed;
  EXPECT_DOUBLE_EQ(dome.horizon_angle, -3 * 0.017453292519444445);
  EXPECT_EQ(dome.animation, 0);
  EXPECT_EQ(dome.alpha_channel, 0);
  EXPECT_EQ(dome.imaging_method, 4);
}

TEST(SkydomeInput, WrongHeaderIsReported) {
  Skydome_input dome;
  std::string printed;
  EXPECT_EQ(read_text(dome, "Tidecast_data_file picture 4 4 end", printed), 0);
  EXPECT_EQ(printed,
            "file type picture is not of \nexpected type skydome\n"
            "error processing skydome input stream \n");
}

TEST(SkydomeInput, FileForANewerReaderIsRefused) {
  Skydome_input dome;
  std::string printed;
  EXPECT_EQ(read_text(dome, "Tidecast_data_file skydome 5 5 end", printed), 0);
  EXPECT_EQ(printed, "error processing skydome input stream \n");
}

TEST(SkydomeInput, NewerFileReadableByThisReaderIsRead) {
  Skydome_input dome;
  std::string printed;
  std::string text = full_dome;
  text.replace(text.find("4 4"), 3, "6 4");
  ASSERT_EQ(read_text(dome, text, printed), 1) << printed;
  EXPECT_EQ(dome.animation, 101);
}

TEST(SkydomeInput, AnythingButEndAtTheCloseUsesThePicturesWords) {
  Skydome_input dome;
  std::string printed;
  std::string text = full_dome;
  text.replace(text.rfind("end"), 3, "fin");
  EXPECT_EQ(read_text(dome, text, printed), 0);
  EXPECT_EQ(printed, "error processing picture file \nread fininstead of end\n");
}

TEST(SkydomeInput, NumberThatDoesNotReadFailsAtTheClose) {
  Skydome_input dome;
  std::string printed;
  std::string text = full_dome;
  text.replace(text.find("5000"), 4, "far");
  EXPECT_EQ(read_text(dome, text, printed), 0);
  EXPECT_EQ(printed, "error processing picture file \nread farinstead of end\n");
}

TEST(SkydomeInput, NegativeBandCountCannotBeAllocated) {
  Skydome_input dome;
  std::string printed;
  std::string text = full_dome;
  text.replace(text.find("bands: 3"), 8, "bands: -3");
  EXPECT_EQ(read_text(dome, text, printed), 0);
  EXPECT_EQ(printed, "unable to allocate picture input arrays \n");
}

TEST(SkydomeInput, HugeBandCountInAShortFileFailsWithoutTheMemory) {
  Skydome_input dome;
  std::string printed;
  const std::string text =
      "Tidecast_data_file skydome 4 4 dome_radius: 1 number_of_bands: 2000000000 band_id: 1 2 3";
  EXPECT_EQ(read_text(dome, text, printed), 0);
  EXPECT_EQ(printed, "error processing picture file \nread instead of end\n");
  EXPECT_EQ(dome.number_of_bands, 0);
}

TEST(SkydomeInput, WriterPrintsTheNewestFormat) {
  Skydome_input dome;
  std::string printed;
  ASSERT_EQ(read_text(dome, full_dome, printed), 1);
  EXPECT_EQ(written(dome),
            "Tidecast_data_file skydome 4 4 \n"
            "dome_radius:   5000\n"
            "number_of_bands: 3\n"
            "band_id:   4  5  6\n"
            "dome_file: sky.rgb\n"
            "horizon_angle: 2.5\n"
            "animation:  frames\n"
            "alpha_channel:  1\n"
            "min_radiance:  0 0.5 1\n"
            "max_radiance:   1 2 3\n"
            "imaging_method: 3\n"
            "end \n");
}

TEST(SkydomeInput, WrittenFileReadsBackToTheSameRecord) {
  Skydome_input dome, again;
  std::string printed;
  ASSERT_EQ(read_text(dome, full_dome, printed), 1);
  dome.animation = 100;
  const std::string text = written(dome);
  ASSERT_EQ(read_text(again, text, printed), 1) << printed;
  EXPECT_EQ(written(again), text);
  EXPECT_EQ(again.animation, 100);
}

TEST(SkydomeInput, AnimationCodeWithNoWordCannotBeWritten) {
  Skydome_input dome;
  dome.animation = 7;
  std::ostringstream out;
  Stream_capture printed(std::cout);
  EXPECT_EQ(dome.write_stream(out), 0);
  EXPECT_EQ(printed.text(), "illegal value of animation flag in skydome \n");
}

TEST(SkydomeInput, FilesAreReadAndWrittenByPath) {
  Scratch_folder folder;
  const std::string path = folder.file("dome.sky");
  {
    std::ofstream out(path.c_str());
    out << full_dome;
  }
  Skydome_input dome, again;
  ASSERT_EQ(dome.read_file(path.c_str()), 1);
  const std::string copy = folder.file("copy.sky");
  ASSERT_EQ(dome.write_file(copy.c_str()), 1);
  ASSERT_EQ(again.read_file(copy.c_str()), 1);
  EXPECT_EQ(written(again), written(dome));
}

TEST(SkydomeInput, FileFailuresNameThePathOrTheObject) {
  Scratch_folder folder;
  Skydome_input dome;
  copy_text(dome.object_name, "big_sky", 256);
  {
    Stream_capture printed(std::cout);
    const std::string missing = folder.file("none.sky");
    EXPECT_EQ(dome.read_file(missing.c_str()), 0);
    EXPECT_EQ(printed.text(), "unable to open skydome input file " + missing + "\n");
  }
  const std::string bad = folder.file("bad.sky");
  {
    std::ofstream out(bad.c_str());
    out << "Tidecast_data_file sky 4 4\n";
  }
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(dome.read_file(bad.c_str()), 0);
    EXPECT_NE(printed.text().find("error processing skydome input stream \n"
                                  "unable to process skydome file big_sky\n"),
              std::string::npos)
        << printed.text();
  }
  {
    Stream_capture printed(std::cout);
    const std::string nowhere = folder.file("no/such/folder.sky");
    EXPECT_EQ(dome.write_file(nowhere.c_str()), 0);
    EXPECT_EQ(printed.text(), "unable to open skydome output file " + nowhere + "\n");
  }
  {
    Stream_capture printed(std::cout);
    dome.animation = 5;
    const std::string path = folder.file("out.sky");
    EXPECT_EQ(dome.write_file(path.c_str()), 0);
    EXPECT_EQ(printed.text(),
              "illegal value of animation flag in skydome \n"
              "unable to process skydome output file " +
                  path + "\n");
  }
}

// Packing.

struct Packed {
  ~Packed() {
    delete[] ints;
    delete[] doubles;
    delete[] chars;
  }
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
};

TEST(SkydomePacking, RecordCrossesThePackedArraysWhole) {
  Skydome_input dome, received;
  std::string printed;
  ASSERT_EQ(read_text(dome, full_dome, printed), 1);
  copy_text(dome.object_name, "big_sky", 256);
  dome.priority = 3.5;
  dome.texture_mode = 4;
  Packed packed;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(dome.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                        packed.chars, packed.char_bytes),
              1);
    EXPECT_EQ(out.text(), "packing big_sky\n");
  }
  // 6 fixed ints and 3 ids; 3 fixed doubles and two ranges of 3; the name
  // and the file name in 256 characters each.
  EXPECT_EQ(packed.int_bytes, 9 * 4);
  EXPECT_EQ(packed.double_bytes, 9 * 8);
  EXPECT_EQ(packed.char_bytes, 512);
  received.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(received.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                              packed.chars, packed.char_bytes),
              1);
    EXPECT_EQ(out.text(), "big_sky unpacked !\n");
  }
  EXPECT_EQ(written(received), written(dome));
  EXPECT_STREQ(received.object_name, "big_sky");
  EXPECT_EQ(received.priority, 3.5);
  EXPECT_EQ(received.texture_mode, 4);
  EXPECT_EQ(received.horizon_angle, dome.horizon_angle);
}

TEST(SkydomePacking, ArraysOfTheWrongSizeAreRefused) {
  Skydome_input dome;
  std::string printed;
  ASSERT_EQ(read_text(dome, full_dome, printed), 1);
  Packed packed;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(dome.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                        packed.chars, packed.char_bytes),
              1);
  }
  struct Case {
    int int_bytes, double_bytes, char_bytes;
    const char* words;
  } cases[] = {
      {packed.int_bytes - 4, packed.double_bytes, packed.char_bytes,
       "packing integer array of the wrong size \n"},
      {packed.int_bytes, packed.double_bytes + 8, packed.char_bytes,
       "packing double array of the wrong size \n"},
      {packed.int_bytes, packed.double_bytes, packed.char_bytes - 1,
       "object char packing array of the wrong size \nunable to unpack object part of camera \n"},
  };
  for (const Case& c : cases) {
    Skydome_input received;
    received.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
    Stream_capture out(std::cout);
    EXPECT_EQ(received.unpack(packed.ints, c.int_bytes, packed.doubles, c.double_bytes,
                              packed.chars, c.char_bytes),
              0);
    EXPECT_EQ(out.text(), c.words);
  }
  // A band count in the array that differs from the sizes.
  Skydome_input received;
  received.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  packed.ints[0] = 2;
  Stream_capture out(std::cout);
  EXPECT_EQ(received.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
}

TEST(SkydomePacking, MissingArraysAreNamed) {
  Skydome_input dome;
  int ints[6] = {0};
  double doubles[3] = {0};
  char chars[512] = {0};
  Stream_capture out(std::cout);
  EXPECT_EQ(dome.unpack(ints, 24, doubles, 24, nullptr, 512), 0);
  EXPECT_EQ(dome.unpack(nullptr, 24, doubles, 24, chars, 512), 0);
  EXPECT_EQ(dome.unpack(ints, 24, nullptr, 24, chars, 512), 0);
  EXPECT_EQ(out.text(),
            "char variable pointer not allocated \n"
            "integer variable pointer not allocated \n"
            "double variable pointer not allocated \n");
}

TEST(SkydomePacking, CountsNoArrayCanHoldAreRefusedWithTheirOwnWords) {
  Packed packed;
  {
    Skydome_input dome;
    dome.number_of_bands = -1;
    Stream_capture out(std::cout);
    EXPECT_EQ(dome.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                        packed.chars, packed.char_bytes),
              0);
    EXPECT_EQ(out.text(), "unable to allocate picture character packing array \n");
    dome.number_of_bands = 0;
  }
  {
    // Two doubles a band: more than 2^31 bytes of doubles, ids still fit.
    Skydome_input dome;
    dome.number_of_bands = 134217727;
    Stream_capture out(std::cout);
    EXPECT_EQ(dome.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                        packed.chars, packed.char_bytes),
              0);
    EXPECT_EQ(out.text(), "unable to allocate air double packing array \n");
    dome.number_of_bands = 0;
  }
  {
    Skydome_input dome;
    dome.number_of_bands = 268435450;
    Stream_capture out(std::cout);
    EXPECT_EQ(dome.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                        packed.chars, packed.char_bytes),
              0);
    EXPECT_EQ(out.text(), "unable to allocate air integer packing array \n");
    dome.number_of_bands = 0;
  }
  EXPECT_EQ(packed.ints, nullptr);
}

}  // namespace
