#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCData_file.h"
#include "TCObject_list_input.h"
#include "TCStar_input.h"
#include "object_list_input_files.h"
#include "stream_capture.h"

namespace {

const char* const sun_file =
    "Tidecast_data_file sun 1 1\n"
    "position_method_flag 0\n"
    "number_of_bands 2\n"
    "band_id 1 2\n"
    "irradiance 1.5 1.25\n"
    "end\n";

// The bands, then a sun seen at two times, then nothing else.
std::string list_with_sun(const std::string& sun_path) {
  return "number_of_bands: 2\n"
         "width center_wavelength band_id \n"
         "1 0.55 0.1\n"
         "2 0.65 0.05\n"
         "sun_flag    1 \n"
         "number_of_times 2\n"
         "time       theta        phi\n"
         "0 30 90\n"
         "6 45.5 -120.25\n"
         "data_file:  " +
         sun_path +
         "\n"
         "number_of_objects: 0\n"
         "number_of_cameras: 0\n";
}

TEST(ObjectListSunBlock, SunBlockAndItsFileAreRead) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("sun.txt", sun_file);
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list, list_with_sun(folder.file("sun.txt")), printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_NE(list.sun_flag, 0);
  ASSERT_NE(list.star_input, nullptr);
  const TCStar_input& sun = *list.star_input;
  EXPECT_EQ(sun.list, &list);
  EXPECT_STREQ(sun.object_file, folder.file("sun.txt").c_str());
  ASSERT_EQ(sun.track.number_of_times, 2);
  // Zenith pi - theta and azimuth phi + pi, both in radians, the literal pi.
  EXPECT_DOUBLE_EQ(sun.track.chi[0], 3.1415926535 - 30 * 0.017453292519444445);
  EXPECT_DOUBLE_EQ(sun.track.phi[0], 90 * 0.017453292519444445 + 3.1415926535);
  EXPECT_DOUBLE_EQ(sun.track.times[1], 6.0);
  EXPECT_DOUBLE_EQ(sun.track.chi[1], 3.1415926535 - 45.5 * 0.017453292519444445);
  EXPECT_DOUBLE_EQ(sun.track.phi[1], -120.25 * 0.017453292519444445 + 3.1415926535);
  EXPECT_DOUBLE_EQ(sun.track.positions[1].z, 0.0);
  ASSERT_EQ(sun.irradiance.n, 2);
  EXPECT_EQ(sun.irradiance.band_id[1], 2);
  EXPECT_DOUBLE_EQ(sun.irradiance.radiance_in_band[0], 1.5);
  EXPECT_DOUBLE_EQ(sun.irradiance.radiance_in_band[1], 1.25);
}

// Written by the list's literal keyword and the sun's block; the angles come
// back to the same degrees (worked out in object_list_sun_angles.py).
TEST(ObjectListSunBlock, SunBlockIsWrittenBackAsRead) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("sun.txt", sun_file);
  const std::string text = list_with_sun(folder.file("sun.txt"));
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  EXPECT_EQ(written_list(list), text);
}

TEST(ObjectListSunBlock, SunBlockWithoutTimesFails) {
  TCObject_list_input list;
  std::string printed;
  EXPECT_EQ(read_list_text(list,
                           "number_of_bands: 1 width center_wavelength band_id 1 0.5 0.1\n"
                           "sun_flag: 1 number_of_times 0 time theta phi data_file: sun.txt\n"
                           "number_of_objects: 0 number_of_cameras: 0\n",
                           printed),
            0);
  EXPECT_EQ(printed,
            "star must be specified for atleast one time \n"
            "unable to process star input stream \n");
}

TEST(ObjectListSunBlock, CutSunBlockFailsAsAStream) {
  TCObject_list_input list;
  std::string printed;
  EXPECT_EQ(read_list_text(list,
                           "number_of_bands: 1 width center_wavelength band_id 1 0.5 0.1\n"
                           "sun_flag: 1 number_of_times 2 time theta phi 0 30 90 6 45\n",
                           printed),
            0);
  EXPECT_EQ(printed, "unable to process star input stream \n");
}

TEST(ObjectListSunBlock, MissingSunFileFailsAsAFile) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string path = folder.file("absent.txt");
  TCObject_list_input list;
  std::string printed;
  EXPECT_EQ(read_list_text(list, list_with_sun(path), printed), 0);
  EXPECT_EQ(printed, "unable to open sun input file " + path +
                         "\n"
                         "unable to process star input file \n");
  // The record is the list's, and goes with it.
  EXPECT_NE(list.star_input, nullptr);
}

TEST(ObjectListSunBlock, AnyFlagButZeroMeansASun) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("sun.txt", sun_file);
  std::string text = list_with_sun(folder.file("sun.txt"));
  text.replace(text.find("sun_flag    1"), 13, "sun_flag: -7");
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  ASSERT_NE(list.star_input, nullptr);
  // Written with the literal 1.
  EXPECT_NE(written_list(list).find("\nsun_flag    1 \nnumber_of_times 2\n"), std::string::npos);
}

TEST(ObjectListSunBlock, WriteFilesWritesTheSunsFile) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("sun.txt", sun_file);
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list, list_with_sun(folder.file("sun.txt")), printed), 1);
  // Point the sun at a new file and write it there.
  copy_text(list.star_input->object_file, folder.file("sun_out.txt").c_str(), 256);
  ASSERT_EQ(list.write_files(), 1);
  TCStar_input back;
  Stream_capture quiet(std::cout);
  ASSERT_EQ(back.read_file(folder.file("sun_out.txt").c_str()), 1);
  ASSERT_EQ(back.irradiance.n, 2);
  EXPECT_DOUBLE_EQ(back.irradiance.radiance_in_band[1], 1.25);
}

TEST(ObjectListSunBlock, AddedSunIsWrittenWithItsBlock) {
  TCObject_list_input list;
  TCStar_input* sun = list.add_sun("sun.txt");
  ASSERT_NE(sun, nullptr);
  // The default track: one key, zenith 0 (as a file angle of 180).
  const std::string written = written_list(list);
  EXPECT_NE(written.find("sun_flag    1 \nnumber_of_times 1\n"), std::string::npos);
  EXPECT_NE(written.find("data_file:  sun.txt\nnumber_of_objects: 0\n"), std::string::npos);
}

}  // namespace
