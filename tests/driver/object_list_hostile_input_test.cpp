#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCObject_input.h"
#include "TCObject_list_input.h"
#include "object_list_input_files.h"
#include "stream_capture.h"

namespace {

// Where the text after the band count starts: a cut before it would leave no
// band and end the process.
size_t after_band_count(const std::string& text) {
  const std::string count = "number_of_bands: 2";
  return text.find(count) + count.size();
}

// A list of every part: bands, objects of each kind with a record, a camera
// and a bobbing camera. Without trailing blanks, so every shorter text lacks
// at least part of a token.
std::string full_version_two(const List_folder& folder) {
  std::string text = two_bands_no_sun() + "number_of_objects: 3\n" +
                     object_line(2, "pond", "water", "pond.txt", "2.5") +
                     object_line(2, "haze", "blob_lite", "haze.txt", "1") +
                     object_line(2, "mist", "spray_lite", "mist.txt", "1") +
                     "number_of_cameras: 2\n" +
                     camera_line("bobbing_camera", folder.file("bobbing.txt"), 2) +
                     camera_line("camera", folder.file("camera.txt"), 10);
  return text.substr(0, text.find_last_not_of(" \n") + 1);
}

std::string full_version_one(const List_folder& folder) {
  std::string text = two_bands_no_sun() + "number_of_objects: 1\n" +
                     object_line(1, "", "point", "lamp.txt", "3") + "number_of_cameras: 1\n" +
                     camera_line("camera", folder.file("camera.txt"), 10) + scene_distance_mattes();
  return text.substr(0, text.find_last_not_of(" \n") + 1);
}

void put_camera_files(const List_folder& folder, int version) {
  const std::string mattes = version >= 2 ? "use_mattes: 0\n" : "";
  folder.put("camera.txt", camera_section_text() + mattes);
  folder.put("bobbing.txt", camera_section_text() + mattes + bobbing_section_text());
}

// Reads text into a fresh list of the given version; the reader's result.
int read_quietly(const std::string& text, int version) {
  TCObject_list_input list;
  list.version = version;
  std::istringstream in(text);
  Stream_capture quiet(std::cout);
  return list.read_list(in);
}

TEST(ObjectListHostileInput, WholeTextsRead) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  put_camera_files(folder, 2);
  EXPECT_EQ(read_quietly(full_version_two(folder), 2), 1);
  put_camera_files(folder, 1);
  EXPECT_EQ(read_quietly(full_version_one(folder), 1), 1);
}

TEST(ObjectListHostileInput, EveryCutOfAVersionTwoListFails) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  put_camera_files(folder, 2);
  const std::string text = full_version_two(folder);
  for (size_t length = after_band_count(text); length < text.size(); length++) {
    EXPECT_EQ(read_quietly(text.substr(0, length), 2), 0) << "cut at " << length;
  }
}

TEST(ObjectListHostileInput, EveryCutOfAVersionOneListFails) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  put_camera_files(folder, 1);
  const std::string text = full_version_one(folder);
  for (size_t length = after_band_count(text); length < text.size(); length++) {
    EXPECT_EQ(read_quietly(text.substr(0, length), 1), 0) << "cut at " << length;
  }
}

TEST(ObjectListHostileInput, WordsWhereNumbersBelongFail) {
  const std::string tail = "number_of_objects: 0\nnumber_of_cameras: 0\n";
  const std::string texts[] = {
      "number_of_bands: 1 width center_wavelength band_id one 0.5 0.1 sun_flag: 0 " + tail,
      "number_of_bands: 1 width center_wavelength band_id 1 green 0.1 sun_flag: 0 " + tail,
      "number_of_bands: 1 width center_wavelength band_id 1 0.5 wide sun_flag: 0 " + tail,
      "number_of_bands: 1 width center_wavelength band_id 1 0.5 0.1 sun_flag: no " + tail,
      two_bands_no_sun() + "number_of_objects: some\nnumber_of_cameras: 0\n",
      two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: few\n",
      two_bands_no_sun() +
          "number_of_objects: 1\n"
          "number_of_times 1 time x y z chi phi theta 0 1 2 three 0 0 0\n"
          "object_name: a object_type: water object_file: a priority: 1\n"
          "number_of_cameras: 0\n",
      two_bands_no_sun() + "number_of_objects: 1\n" +
          object_line(2, "a", "water", "a.txt", "high") + "number_of_cameras: 0\n",
  };
  for (const std::string& text : texts) EXPECT_EQ(read_quietly(text, 2), 0) << text;
}

TEST(ObjectListHostileInput, HugeBandCountWithFewRowsFails) {
  TCObject_list_input list;
  std::string printed;
  EXPECT_EQ(read_list_text(list,
                           "number_of_bands: 2147483647 width center_wavelength band_id\n"
                           "1 0.5 0.1\n2 0.6 0.1\nsun_flag: 0\n",
                           printed),
            0);
  EXPECT_EQ(printed, "");
  // What was read is kept and never overrun.
  EXPECT_EQ(list.number_of_bands, 2);
  EXPECT_EQ(list.band_index(2), 1);
}

TEST(ObjectListHostileInput, HugeObjectAndCameraCountsAreRefused) {
  std::string printed;
  TCObject_list_input objects;
  EXPECT_EQ(
      read_list_text(objects, two_bands_no_sun() + "number_of_objects: 2147483647\n", printed), 0);
  EXPECT_EQ(printed, "can only have 100 objects \n");
  TCObject_list_input cameras;
  EXPECT_EQ(
      read_list_text(cameras,
                     two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 2147483647\n",
                     printed),
      0);
  EXPECT_EQ(printed, "maximum number of cameras exceeded \n");
}

TEST(ObjectListHostileInput, CountsBeyondAnIntFail) {
  EXPECT_EQ(read_quietly(two_bands_no_sun() + "number_of_objects: 99999999999\n"
                                              "number_of_cameras: 0\n",
                         2),
            0);
  EXPECT_EQ(read_quietly(two_bands_no_sun() + "number_of_objects: 0\n"
                                              "number_of_cameras: -99999999999\n",
                         2),
            0);
}

TEST(ObjectListHostileInput, HugeKeyFrameCountInAnObjectLineFails) {
  EXPECT_EQ(read_quietly(two_bands_no_sun() +
                             "number_of_objects: 1\n"
                             "number_of_times 2000000000 time x y z chi phi theta\n"
                             "0 0 0 0 0 0 0\n"
                             "object_name: a object_type: water object_file: a priority: 1\n"
                             "number_of_cameras: 0\n",
                         2),
            0);
}

// A track with no keys is the track reader's to judge; the list carries it.
TEST(ObjectListHostileInput, NegativeKeyFrameCountIsCarried) {
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list,
                           two_bands_no_sun() +
                               "number_of_objects: 1\n"
                               "number_of_times -3 time x y z chi phi theta\n"
                               "object_name: a object_type: water object_file: a priority: 1\n"
                               "number_of_cameras: 0\n",
                           printed),
            1);
  EXPECT_EQ(list.objects[0]->track.number_of_times, -3);
  std::string written = written_list(list);
  EXPECT_NE(written.find("number_of_times  -3\n"), std::string::npos);
}

TEST(ObjectListHostileInput, LongWordsAreCutToTheirFields) {
  const std::string name(1000, 'a');
  const std::string file(600, 'f');
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list,
                           two_bands_no_sun() + "number_of_objects: 1\n" +
                               object_line(2, name.c_str(), "water", file.c_str(), "1") +
                               "number_of_cameras: 0\n",
                           printed),
            1);
  EXPECT_EQ(std::string(list.objects[0]->object_name), std::string(255, 'a'));
  EXPECT_EQ(std::string(list.objects[0]->object_file), std::string(255, 'f'));
}

TEST(ObjectListHostileInput, BytesOfNoMeaningFail) {
  std::string noise;
  for (int i = 0; i < 256; i++) noise += static_cast<char>((i * 37) & 0xff);
  EXPECT_EQ(
      read_quietly("number_of_bands: 1 width center_wavelength band_id 1 0.5 0.1 " + noise, 2), 0);
  std::string with_nul = two_bands_no_sun() + "number_of_objects: 1\n";
  const char cut[] = "number_of_times 1 time x y z chi phi theta 0 0 0 0 0 0 0\0 object_name:";
  with_nul.append(cut, sizeof(cut) - 1);
  EXPECT_EQ(read_quietly(with_nul, 2), 0);
}

}  // namespace
