#include "Picture_input.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "TCData_file.h"
#include "TCObject_kinds.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

int read_text(Picture_input& picture, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = picture.read_stream(in);
  printed = out.text();
  return result;
}

std::string written(const Picture_input& picture) {
  std::ostringstream out;
  EXPECT_EQ(picture.write_stream(out), 1);
  return out.str();
}

// A picture in front, a solid colour behind: every field of the newest
// format.
const char* const full_picture =
    "Tidecast_data_file picture 4 4\n"
    "number_of_bands:  3\n"
    "band_ids: 4 5 6\n"
    "dimensions: 4 2.5\n"
    "picture_file: poster.rgb\n"
    "animation:  frames\n"
    "alpha_channel: 2\n"
    "auto_scale_flag: 0\n"
    "optical_nature:  picture\n"
    "min_radiance: 0 0.5 1\n"
    "max_radiance: 1 2 3\n"
    "optical_nature:  solid\n"
    "color: 7 8 9\n"
    "reflectivity: 0.1 0.2 0.3\n"
    "transmissivity: 0.4 0.5 0.6\n"
    "imaging_method: 1\n"
    "end\n";

TEST(PictureInput, StartsAsAPictureWithItsDefaults) {
  Picture_input picture;
  EXPECT_STREQ(picture.object_type, "picture");
  EXPECT_EQ(picture.type_code, TC_KIND_PICTURE);
  EXPECT_EQ(picture.type_code, 16);
  EXPECT_EQ(picture.priority, 5.0);
  EXPECT_EQ(picture.imaging_method, 2);
  EXPECT_EQ(picture.animation, 0);
  EXPECT_EQ(picture.alpha_channel, 0);
  EXPECT_EQ(picture.auto_scale_flag, 0);
  EXPECT_EQ(picture.number_of_bands, 0);
}

TEST(PictureInput, AllocationFillsTheRangeAndTheColours) {
  Picture_input picture;
  ASSERT_EQ(picture.allocate_arrays(2), 1);
  for (int b = 0; b < 2; b++) {
    EXPECT_EQ(picture.min_radiance[b], 0.0);
    EXPECT_EQ(picture.max_radiance[b], 255.0);
    EXPECT_EQ(picture.color[0][b], 0.0);
    EXPECT_EQ(picture.color[1][b], 0.0);
  }
  EXPECT_EQ(picture.allocate_arrays(-1), 0);
  EXPECT_EQ(picture.number_of_bands, 2);
}

TEST(PictureInput, ReadsEveryFieldOfTheNewestFormat) {
  Picture_input picture;
  std::string printed;
  ASSERT_EQ(read_text(picture, full_picture, printed), 1) << printed;
  EXPECT_EQ(printed, "");
  ASSERT_EQ(picture.number_of_bands, 3);
  EXPECT_EQ(picture.band_ids[2], 6);
  EXPECT_EQ(picture.width, 4.0);
  EXPECT_EQ(picture.height, 2.5);
  EXPECT_STREQ(picture.picture_file, "poster.rgb");
  EXPECT_EQ(picture.animation, 101);
  EXPECT_EQ(picture.alpha_channel, 2);
  EXPECT_EQ(picture.auto_scale_flag, 0);
  EXPECT_EQ(picture.optical_nature[0], 503);
  EXPECT_EQ(picture.optical_nature[1], 502);
  EXPECT_EQ(picture.min_radiance[1], 0.5);
  EXPECT_EQ(picture.max_radiance[2], 3.0);
  EXPECT_EQ(picture.color[1][0], 7.0);
  EXPECT_EQ(picture.color[1][2], 9.0);
  // The front is a picture: its colour stays as allocated.
  EXPECT_EQ(picture.color[0][0], 0.0);
  EXPECT_EQ(picture.imaging_method, 1);
}

TEST(PictureInput, SecondPictureSideOverwritesTheRange) {
  Picture_input picture;
  std::string printed;
  const std::string text =
      "Tidecast_data_file picture 4 4\n"
      "n 1 ids 1 dims 1 1 file p.rgb anim no alpha 0 auto 0\n"
      "side picture min 1 max 2 side picture min 3 max 4 method 2 end";
  ASSERT_EQ(read_text(picture, text, printed), 1) << printed;
  EXPECT_EQ(picture.min_radiance[0], 3.0);
  EXPECT_EQ(picture.max_radiance[0], 4.0);
}

TEST(PictureInput, AutoScaledPictureSidesCarryNoRange) {
  Picture_input picture;
  std::string printed;
  const std::string text =
      "Tidecast_data_file picture 4 4\n"
      "n 2 ids 1 2 dims 1 1 file p.rgb anim time alpha 1 auto 1\n"
      "side picture side transparent method 4 end";
  ASSERT_EQ(read_text(picture, text, printed), 1) << printed;
  EXPECT_EQ(picture.animation, 100);
  EXPECT_EQ(picture.auto_scale_flag, 1);
  EXPECT_EQ(picture.optical_nature[0], 503);
  EXPECT_EQ(picture.optical_nature[1], 501);
  EXPECT_EQ(picture.min_radiance[1], 0.0);
  EXPECT_EQ(picture.max_radiance[1], 255.0);
  EXPECT_EQ(picture.imaging_method, 4);
}

TEST(PictureInput, VersionThreeCannotSetAutoScale) {
  Picture_input picture;
  std::string printed;
  // No auto scale line before version 4: a picture side always has its range.
  const std::string text =
      "Tidecast_data_file picture 3 3\n"
      "n 1 ids 1 dims 1 1 file p.rgb anim frames alpha 1\n"
      "side picture min 1 max 2 side transparent method 3 end";
  ASSERT_EQ(read_text(picture, text, printed), 1) << printed;
  EXPECT_EQ(picture.auto_scale_flag, 0);
  EXPECT_EQ(picture.animation, 101);
  EXPECT_EQ(picture.alpha_channel, 1);
  EXPECT_EQ(picture.min_radiance[0], 1.0);
  EXPECT_EQ(picture.imaging_method, 3);
}

TEST(PictureInput, VersionOneHasNoAnimationAlphaOrImagingMethod) {
  Picture_input picture;
  picture.imaging_method = 7;
  std::string printed;
  const std::string text =
      "Tidecast_data_file picture 1 1\n"
      "n 1 ids 1 dims 1 1 file p.rgb side solid color 0.5 refl 0 trans 0\n"
      "side transparent end";
  ASSERT_EQ(read_text(picture, text, printed), 1) << printed;
  EXPECT_EQ(picture.animation, 0);
  EXPECT_EQ(picture.alpha_channel, 0);
  EXPECT_EQ(picture.auto_scale_flag, 0);
  EXPECT_EQ(picture.imaging_method, 2);
  EXPECT_EQ(picture.color[0][0], 0.5);
}

TEST(PictureInput, VersionTwoAddsTheImagingMethod) {
  Picture_input picture;
  std::string printed;
  const std::string text =
      "Tidecast_data_file picture 2 2\n"
      "n 1 ids 1 dims 1 1 file p.rgb side transparent side transparent method 1 end";
  ASSERT_EQ(read_text(picture, text, printed), 1) << printed;
  EXPECT_EQ(picture.imaging_method, 1);
  EXPECT_EQ(picture.animation, 0);
}

TEST(PictureInput, UnknownOpticalWordIsRefusedOnTwoLines) {
  Picture_input picture;
  std::string printed;
  std::string text = full_picture;
  text.replace(text.find("solid"), 5, "glass");
  EXPECT_EQ(read_text(picture, text, printed), 0);
  EXPECT_EQ(printed, "invalid optical property: glass\n       for picture.\n");
}

TEST(PictureInput, AnythingButEndAtTheCloseIsReported) {
  Picture_input picture;
  std::string printed;
  std::string text = full_picture;
  text.replace(text.rfind("end"), 3, "stop");
  EXPECT_EQ(read_text(picture, text, printed), 0);
  EXPECT_EQ(printed, "error processing picture file \nread stopinstead of end\n");
}

TEST(PictureInput, WrongHeaderIsReported) {
  Picture_input picture;
  std::string printed;
  EXPECT_EQ(read_text(picture, "Picture_data_file picture 4 4", printed), 0);
  EXPECT_EQ(printed,
            "incorrect header Picture_data_file in data file\n"
            "expected string Tidecast_data_file \n"
            "error processing picture input stream \n");
}

TEST(PictureInput, NegativeBandCountCannotBeAllocated) {
  Picture_input picture;
  std::string printed;
  EXPECT_EQ(read_text(picture, "Tidecast_data_file picture 4 4 n -1 ids end", printed), 0);
  EXPECT_EQ(printed, "unable to allocate picture input arrays \n");
}

TEST(PictureInput, HugeBandCountInAShortFileFailsWithoutTheMemory) {
  Picture_input picture;
  std::string printed;
  EXPECT_EQ(read_text(picture, "Tidecast_data_file picture 4 4 n 2147483647 ids 1 2", printed), 0);
  EXPECT_EQ(printed, "error processing picture file \nread instead of end\n");
  EXPECT_EQ(picture.number_of_bands, 0);
}

TEST(PictureInput, WriterPrintsTheNewestFormatWithFixedSolidLines) {
  Picture_input picture;
  std::string printed;
  ASSERT_EQ(read_text(picture, full_picture, printed), 1);
  EXPECT_EQ(written(picture),
            "Tidecast_data_file picture 4 4 \n"
            "number_of_bands:  3\n"
            "band_ids: 4 5 6 \n"
            "dimensions: 4 2.5\n"
            "picture_file: poster.rgb\n"
            "animation:  frames\n"
            "alpha_channel: 2\n"
            "auto_scale_flag: 0\n"
            "optical_nature:  picture\n"
            "min_radiance: 0 0.5 1 \n"
            "max_radiance: 1 2 3 \n"
            "optical_nature:  solid\n"
            "color: 7 8 9 \n"
            "reflectivity:  0. 0. 0. \n"
            "transmissivity:  0. 0. 0. \n"
            "imaging_method: 1\n"
            "end \n");
}

TEST(PictureInput, WrittenThreeBandFileReadsBack) {
  Picture_input picture, again;
  std::string printed;
  ASSERT_EQ(read_text(picture, full_picture, printed), 1);
  const std::string text = written(picture);
  ASSERT_EQ(read_text(again, text, printed), 1) << printed;
  EXPECT_EQ(written(again), text);
}

TEST(PictureInput, WrittenSolidSideOfTwoBandsDoesNotReadBack) {
  Picture_input picture, again;
  std::string printed;
  const std::string text =
      "Tidecast_data_file picture 4 4\n"
      "n 2 ids 1 2 dims 1 1 file p.rgb anim no alpha 0 auto 0\n"
      "side solid color 1 2 r 0 0 t 0 0 side transparent method 2 end";
  ASSERT_EQ(read_text(picture, text, printed), 1) << printed;
  // Three zeros where two are wanted: one token off from there on.
  EXPECT_EQ(read_text(again, written(picture), printed), 0);
  EXPECT_NE(printed.find("error processing picture file \n"), std::string::npos) << printed;
}

TEST(PictureInput, CodesWithNoWordCannotBeWritten) {
  Picture_input picture;
  std::ostringstream out;
  {
    picture.optical_nature[1] = 42;
    Stream_capture printed(std::cout);
    EXPECT_EQ(picture.write_stream(out), 0);
    EXPECT_EQ(printed.text(), "illegal picture optical type \n");
  }
  {
    picture.animation = 3;
    Stream_capture printed(std::cout);
    EXPECT_EQ(picture.write_stream(out), 0);
    EXPECT_EQ(printed.text(), "illegal value of animation flag in skydome \n");
  }
}

TEST(PictureInput, OpticalWordsAndCodes) {
  EXPECT_EQ(picture_optical_code("transparent"), 501);
  EXPECT_EQ(picture_optical_code("solid"), 502);
  EXPECT_EQ(picture_optical_code("picture"), 503);
  EXPECT_EQ(picture_optical_code("Picture"), 0);
  EXPECT_STREQ(picture_optical_word(503), "picture");
  EXPECT_EQ(picture_optical_word(500), nullptr);
}

TEST(PictureInput, FileFailuresNameThePathOrTheObject) {
  Scratch_folder folder;
  Picture_input picture;
  copy_text(picture.object_name, "poster", 256);
  {
    Stream_capture printed(std::cout);
    const std::string missing = folder.file("none.pic");
    EXPECT_EQ(picture.read_file(missing.c_str()), 0);
    EXPECT_EQ(printed.text(), "unable to open picture input file " + missing + "\n");
  }
  const std::string bad = folder.file("bad.pic");
  {
    std::ofstream out(bad.c_str());
    out << "Tidecast_data_file picture 4 4 n 0 ids dims 1 1 file f anim no alpha 0 auto 0 "
           "side mirror";
  }
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(picture.read_file(bad.c_str()), 0);
    EXPECT_EQ(printed.text(),
              "invalid optical property: mirror\n       for picture.\n"
              "unable to process picture file poster\n");
  }
  {
    Stream_capture printed(std::cout);
    const std::string nowhere = folder.file("no/such/folder.pic");
    EXPECT_EQ(picture.write_file(nowhere.c_str()), 0);
    EXPECT_EQ(printed.text(), "unable to open picture output file " + nowhere + "\n");
  }
  const std::string good = folder.file("good.pic");
  {
    std::ofstream out(good.c_str());
    out << full_picture;
  }
  Picture_input again;
  ASSERT_EQ(picture.read_file(good.c_str()), 1);
  const std::string copy = folder.file("copy.pic");
  ASSERT_EQ(picture.write_file(copy.c_str()), 1);
  ASSERT_EQ(again.read_file(copy.c_str()), 1);
  EXPECT_EQ(written(again), written(picture));
  {
    picture.optical_nature[0] = 0;
    Stream_capture printed(std::cout);
    EXPECT_EQ(picture.write_file(copy.c_str()), 0);
    EXPECT_EQ(
        printed.text(),
        "illegal picture optical type \nunable to process picture output file " + copy + "\n");
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

TEST(PicturePacking, RecordCrossesThePackedArraysWhole) {
  Picture_input picture, received;
  std::string printed;
  ASSERT_EQ(read_text(picture, full_picture, printed), 1);
  copy_text(picture.object_name, "poster", 256);
  picture.priority = 6.5;
  Packed packed;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(picture.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                           packed.chars, packed.char_bytes),
              1);
    EXPECT_EQ(out.text(), "packing poster\n");
  }
  // 8 fixed ints and 3 ids; 3 fixed doubles and four lists of 3.
  EXPECT_EQ(packed.int_bytes, 11 * 4);
  EXPECT_EQ(packed.double_bytes, 15 * 8);
  EXPECT_EQ(packed.char_bytes, 512);
  received.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(received.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                              packed.chars, packed.char_bytes),
              1);
    EXPECT_EQ(out.text(), "poster unpacked !\n");
  }
  EXPECT_EQ(written(received), written(picture));
  EXPECT_EQ(received.priority, 6.5);
  EXPECT_EQ(received.color[1][1], 8.0);
  EXPECT_EQ(received.color[0][1], 0.0);
}

TEST(PicturePacking, ArraysOfTheWrongSizeAreRefused) {
  Picture_input picture;
  std::string printed;
  ASSERT_EQ(read_text(picture, full_picture, printed), 1);
  Packed packed;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(picture.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                           packed.chars, packed.char_bytes),
              1);
  }
  struct Case {
    int int_bytes, double_bytes, char_bytes;
    const char* words;
  } cases[] = {
      {packed.int_bytes + 4, packed.double_bytes, packed.char_bytes,
       "packing integer array of the wrong size \n"},
      {packed.int_bytes, packed.double_bytes - 8, packed.char_bytes,
       "packing double array of the wrong size \n"},
      {packed.int_bytes, packed.double_bytes, packed.char_bytes + 1,
       "object char packing array of the wrong size \nunable to unpack object part of camera \n"},
  };
  for (const Case& c : cases) {
    Picture_input received;
    received.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
    Stream_capture out(std::cout);
    EXPECT_EQ(received.unpack(packed.ints, c.int_bytes, packed.doubles, c.double_bytes,
                              packed.chars, c.char_bytes),
              0);
    EXPECT_EQ(out.text(), c.words);
  }
}

TEST(PicturePacking, CountsNoArrayCanHoldAreRefusedWithTheirOwnWords) {
  Packed packed;
  struct Case {
    int bands;
    const char* words;
  } cases[] = {
      {-2, "unable to allocate picture character packing array \n"},
      // Four doubles a band: beyond 2^31 bytes while the ids still fit.
      {67108864, "unable to allocate picture double packing array \n"},
      {268435450, "unable to allocate picture integer packing array \n"},
  };
  for (const Case& c : cases) {
    Picture_input picture;
    picture.number_of_bands = c.bands;
    Stream_capture out(std::cout);
    EXPECT_EQ(picture.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                           packed.chars, packed.char_bytes),
              0);
    EXPECT_EQ(out.text(), c.words);
    picture.number_of_bands = 0;
  }
  EXPECT_EQ(packed.ints, nullptr);
}

}  // namespace
