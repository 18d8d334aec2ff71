#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <sstream>
#include <string>

#include "TCKeyframes.h"
#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCObject.h"
#include "TCObject_list.h"
#include "stream_capture.h"

namespace {

// Reads section into record; returns the reader's result, output in printed.
int read_section(TCMatte_input& record, const std::string& section, std::string& printed) {
  std::istringstream in(section);
  Stream_capture out(std::cout);
  const int result = record.read(in);
  printed = out.text();
  return result;
}

std::string written(const TCMatte_input& record) {
  std::ostringstream out;
  EXPECT_EQ(record.write(out), 1);
  return out.str();
}

TEST(MatteInput, StartsWithoutMattes) {
  TCMatte_input record;
  EXPECT_EQ(record.use_mattes, 0);
  EXPECT_EQ(record.n_matte_objects, 0);
  EXPECT_EQ(record.n_reflected_names, 0);
  EXPECT_EQ(record.n_alpha_names, 0);
  EXPECT_EQ(record.matte_object_names, nullptr);
  EXPECT_EQ(record.total_mattes(), 0);
}

TEST(MatteInput, UseMattesZeroReadsNothingMore) {
  TCMatte_input record;
  std::istringstream in("use_mattes: 0 next");
  EXPECT_EQ(record.read(in), 1);
  EXPECT_EQ(record.use_mattes, 0);
  EXPECT_EQ(record.n_matte_objects, 0);
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "next");
}

TEST(MatteInput, ReadsObjectsAndTheirMatteCodes) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record,
                         "use_mattes: 1\n"
                         "  NObjects: 2\n"
                         "    Object: boat\n"
                         "      NMattes: 3\n"
                         "        radiance distance normal\n"
                         "    Object: scene\n"
                         "      NMattes: 2\n"
                         "        scene_distance scene_no_radiance\n",
                         printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(record.use_mattes, 1);
  ASSERT_EQ(record.n_matte_objects, 2);
  EXPECT_STREQ(record.matte_object_names[0], "boat");
  EXPECT_STREQ(record.matte_object_names[1], "scene");
  ASSERT_EQ(record.matte_counts[0], 3);
  EXPECT_EQ(record.matte_ids[0][0], 0);
  EXPECT_EQ(record.matte_ids[0][1], 19);
  EXPECT_EQ(record.matte_ids[0][2], 32);
  ASSERT_EQ(record.matte_counts[1], 2);
  EXPECT_EQ(record.matte_ids[1][0], 20);
  EXPECT_EQ(record.matte_ids[1][1], 34);
  EXPECT_EQ(record.total_mattes(), 5);
  EXPECT_EQ(record.object_indices[0], -1);
}

TEST(MatteInput, ObjectNeedsAtLeastOneMatte) {
  TCMatte_input record;
  std::string printed;
  EXPECT_EQ(read_section(record, "use_mattes: 1 NObjects: 1 Object: boat NMattes: 0", printed), 0);
  EXPECT_EQ(printed, "must have atleast one matte for object boat\n");
  EXPECT_EQ(read_section(record, "use_mattes: 1 NObjects: 1 Object: buoy NMattes: -4", printed), 0);
  EXPECT_EQ(printed, "must have atleast one matte for object buoy\n");
}

TEST(MatteInput, UnknownMatteNameFailsTheRead) {
  TCMatte_input record;
  std::string printed;
  EXPECT_EQ(
      read_section(record, "use_mattes: 1 NObjects: 1 Object: boat NMattes: 2 radiance Radiance",
                   printed),
      0);
  EXPECT_EQ(printed, "Invalid matte name: Radiance\n");
}

TEST(MatteInput, ReflectNamesTakeFourPositionsThenStayAtSeven) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 1 Object: sea NMattes: 6 reflect-a reflect-b "
                         "reflect-c reflect-d reflect-e reflect-f",
                         printed),
            1);
  EXPECT_EQ(printed,
            "ERROR - Too many object reflection mattes  Only 5 allowed\n"
            "ERROR - Too many object reflection mattes  Only 5 allowed\n");
  const int expected[6] = {7, 8, 9, 10, 7, 7};
  for (int j = 0; j < 6; j++) EXPECT_EQ(record.matte_ids[0][j], expected[j]) << j;
  EXPECT_EQ(record.n_reflected_names, 4);
  EXPECT_STREQ(record.reflected_names[0], "a");
  EXPECT_STREQ(record.reflected_names[3], "d");
  EXPECT_STREQ(record.reflected_names[4], "");
}

TEST(MatteInput, ReflectAloneGivesSevenWithEmptyName) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(
      read_section(record, "use_mattes: 1 NObjects: 1 Object: sea NMattes: 1 reflect-", printed),
      1);
  EXPECT_EQ(record.matte_ids[0][0], 7);
  EXPECT_EQ(record.n_reflected_names, 1);
  EXPECT_STREQ(record.reflected_names[0], "");
}

TEST(MatteInput, PositionsAreCountedOverTheWholeSection) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 2 Object: sea NMattes: 3 reflect-boat "
                         "alpha-boat alpha-texture Object: boat NMattes: 4 reflect-buoy "
                         "alpha-texture alpha-my-buoy alpha-texture",
                         printed),
            1);
  EXPECT_EQ(record.matte_ids[0][0], 7);
  EXPECT_EQ(record.matte_ids[0][1], 22);
  EXPECT_EQ(record.matte_ids[0][2], 27);
  EXPECT_EQ(record.matte_ids[1][0], 8);
  EXPECT_EQ(record.matte_ids[1][1], 28);
  EXPECT_EQ(record.matte_ids[1][2], 23);
  EXPECT_EQ(record.matte_ids[1][3], 29);
  EXPECT_STREQ(record.reflected_names[1], "buoy");
  // Only the first dash separates.
  EXPECT_STREQ(record.alpha_names[1], "my-buoy");
  EXPECT_EQ(record.n_alpha_names, 2);
}

TEST(MatteInput, FifthAlphaNameFailsTheRead) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 1 Object: sea NMattes: 4 alpha-a alpha-b "
                         "alpha-c alpha-d",
                         printed),
            1);
  EXPECT_EQ(record.matte_ids[0][3], 25);
  EXPECT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 1 Object: sea NMattes: 5 alpha-a alpha-b "
                         "alpha-c alpha-d alpha-e",
                         printed),
            0);
  EXPECT_EQ(printed, "ERROR - Too many object reflection mattes  Only 5 allowed.\n");
  EXPECT_EQ(record.n_alpha_names, 4);
}

TEST(MatteInput, SixthAlphaTextureFailsTheRead) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 1 Object: sea NMattes: 5 alpha-texture "
                         "alpha-texture alpha-texture alpha-texture alpha-texture",
                         printed),
            1);
  for (int j = 0; j < 5; j++) EXPECT_EQ(record.matte_ids[0][j], 27 + j);
  EXPECT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 2 Object: sea NMattes: 3 alpha-texture "
                         "alpha-texture alpha-texture Object: boat NMattes: 3 alpha-texture "
                         "alpha-texture alpha-texture",
                         printed),
            0);
  EXPECT_EQ(printed, "ERROR - Invalid number of texture mattes requested  Only 5 allowed\n");
}

TEST(MatteInput, SceneXyzBringsSceneDistance) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(
      read_section(record, "use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 scene_xyz", printed),
      1);
  ASSERT_EQ(record.matte_counts[0], 2);
  EXPECT_EQ(record.matte_ids[0][0], 33);
  EXPECT_EQ(record.matte_ids[0][1], 20);

  ASSERT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 1 Object: scene NMattes: 2 scene_distance "
                         "scene_xyz",
                         printed),
            1);
  EXPECT_EQ(record.matte_counts[0], 2);

  // Only for the scene.
  ASSERT_EQ(
      read_section(record, "use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 scene_xyz", printed),
      1);
  EXPECT_EQ(record.matte_counts[0], 1);
}

TEST(MatteInput, StopsAtTheFirstValueThatCannotBeRead) {
  TCMatte_input record;
  std::string printed;
  EXPECT_EQ(read_section(record, "use_mattes: yes", printed), 0);
  EXPECT_EQ(read_section(record, "use_mattes: 1 NObjects: two", printed), 0);
  EXPECT_EQ(read_section(record, "use_mattes: 1 NObjects: 2 Object: boat NMattes: 1 sky", printed),
            0);
  EXPECT_EQ(record.n_matte_objects, 1);
  EXPECT_EQ(read_section(record, "use_mattes: 1 NObjects: 1 Object: boat NMattes: 3 sky glitter",
                         printed),
            0);
  EXPECT_EQ(record.matte_counts[0], 2);
  EXPECT_EQ(printed, "");
}

TEST(MatteInput, NegativeObjectCountIsAnAllocationFailure) {
  TCMatte_input record;
  std::string printed;
  EXPECT_EQ(read_section(record, "use_mattes: 1 NObjects: -1", printed), 0);
  EXPECT_EQ(printed, "unable to allocate matte field data \n");
  EXPECT_EQ(record.n_matte_objects, 0);
}

TEST(MatteInput, HugeCountsInShortFilesCostNothing) {
  TCMatte_input record;
  std::string printed;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 2147483647 Object: boat NMattes: 2000000000 "
                         "radiance sky",
                         printed),
            0);
  EXPECT_EQ(record.n_matte_objects, 1);
  EXPECT_EQ(record.matte_counts[0], 2);
  EXPECT_EQ(read_section(record, "use_mattes: 1 NObjects: 2000000000", printed), 0);
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_LT(seconds, 1.0);
  EXPECT_EQ(printed, "");
}

TEST(MatteInput, ManyObjectsAndMattesGrowTheStorage) {
  std::ostringstream section;
  section << "use_mattes: 1 NObjects: 40\n";
  for (int i = 0; i < 40; i++) {
    section << "Object: o" << i << " NMattes: 35";
    for (int j = 0; j < 35; j++) section << (j % 2 ? " sky" : " glitter");
    section << "\n";
  }
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record, section.str(), printed), 1);
  ASSERT_EQ(record.n_matte_objects, 40);
  EXPECT_STREQ(record.matte_object_names[39], "o39");
  EXPECT_EQ(record.matte_counts[39], 35);
  EXPECT_EQ(record.matte_ids[39][34], 12);
  EXPECT_EQ(record.matte_ids[0][33], 4);
  EXPECT_EQ(record.total_mattes(), 40 * 35);
}

TEST(MatteInput, LongWordsAreCutToFit) {
  const std::string long_name(400, 'q');
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 1 Object: " + long_name + " NMattes: 1 reflect-" +
                             long_name,
                         printed),
            1);
  EXPECT_EQ(std::string(record.matte_object_names[0]), long_name.substr(0, 255));
  EXPECT_EQ(std::string(record.reflected_names[0]), long_name.substr(0, 255 - 8));
}

TEST(MatteInput, ReadReplacesWhatWasThere) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(
      read_section(record, "use_mattes: 1 NObjects: 1 Object: boat NMattes: 2 reflect-x alpha-y",
                   printed),
      1);
  ASSERT_EQ(read_section(record, "use_mattes: 0", printed), 1);
  EXPECT_EQ(record.n_matte_objects, 0);
  EXPECT_EQ(record.n_reflected_names, 0);
  EXPECT_EQ(record.n_alpha_names, 0);
  EXPECT_STREQ(record.reflected_names[0], "");
}

TEST(MatteInput, WritesTheSectionLayout) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 2 Object: sea NMattes: 4 radiance reflect-boat "
                         "alpha-buoy alpha-texture Object: scene NMattes: 2 scene_xyz "
                         "scene_no_radiance",
                         printed),
            1);
  EXPECT_EQ(written(record),
            "use_mattes: 1\n"
            "  NObjects: 2\n"
            "    Object: sea\n"
            "      NMattes: 4\n"
            "        radiance\n"
            "        reflect-boat\n"
            "        alpha-buoy\n"
            "        alpha-texture\n"
            "    Object: scene\n"
            "      NMattes: 3\n"
            "        scene_xyz\n"
            "        scene_no_radiance\n"
            "        scene_distance\n");

  TCMatte_input off;
  EXPECT_EQ(written(off), "use_mattes: 0\n");
}

TEST(MatteInput, WrittenSectionReadsBackTheSame) {
  TCMatte_input first;
  std::string printed;
  ASSERT_EQ(read_section(first,
                         "use_mattes: 1 NObjects: 3 Object: sea NMattes: 7 reflect-a reflect-b "
                         "reflect-c reflect-d reflect-e alpha-texture alpha-a Object: boat "
                         "NMattes: 5 reflect- alpha-b alpha-c alpha-texture normal Object: scene "
                         "NMattes: 3 scene_xyz whitecap path_rad",
                         printed),
            1);
  const std::string text = written(first);
  TCMatte_input second;
  ASSERT_EQ(read_section(second, text, printed), 1);
  EXPECT_EQ(written(second), text);
  ASSERT_EQ(second.n_matte_objects, first.n_matte_objects);
  for (int i = 0; i < first.n_matte_objects; i++) {
    EXPECT_STREQ(second.matte_object_names[i], first.matte_object_names[i]);
    ASSERT_EQ(second.matte_counts[i], first.matte_counts[i]);
    for (int j = 0; j < first.matte_counts[i]; j++)
      EXPECT_EQ(second.matte_ids[i][j], first.matte_ids[i][j]) << i << " " << j;
  }
  EXPECT_EQ(second.n_reflected_names, 4);
  EXPECT_EQ(second.n_alpha_names, 3);
  for (int k = 0; k < 5; k++) {
    EXPECT_STREQ(second.reflected_names[k], first.reflected_names[k]);
    EXPECT_STREQ(second.alpha_names[k], first.alpha_names[k]);
  }
}

TEST(MatteInput, CopyIsDeep) {
  TCMatte_input record;
  std::string printed;
  ASSERT_EQ(read_section(record,
                         "use_mattes: 1 NObjects: 2 Object: sea NMattes: 2 radiance reflect-boat "
                         "Object: scene NMattes: 1 distance",
                         printed),
            1);
  record.object_indices[1] = 3;
  TCMatte_input copy;
  ASSERT_EQ(copy.copy_from(record), 1);
  record.matte_ids[0][0] = 5;
  record.clear();
  EXPECT_EQ(copy.use_mattes, 1);
  ASSERT_EQ(copy.n_matte_objects, 2);
  EXPECT_STREQ(copy.matte_object_names[1], "scene");
  EXPECT_EQ(copy.matte_ids[0][0], 0);
  EXPECT_EQ(copy.matte_ids[0][1], 7);
  EXPECT_EQ(copy.matte_ids[1][0], 19);
  EXPECT_EQ(copy.object_indices[1], 3);
  EXPECT_STREQ(copy.reflected_names[0], "boat");
}

// ---------------------------------------------------------------------------

// A list of a boat (0) and a buoy (1), both names sorting before "scene".
class MatteProcess : public ::testing::Test {
 protected:
  MatteProcess() : boat(track, 0.0, 0.0, 0, &list, 2), buoy(track, 0.0, 0.0, 1, &list, 2) {
    boat.set_name("boat");
    buoy.set_name("buoy");
    list.objects[0] = &boat;
    list.objects[1] = &buoy;
    list.n_objects = 2;
  }

  // Reads section (which must read) and processes it; output in printed.
  int process(const std::string& section, std::string& printed) {
    std::istringstream in(section);
    Stream_capture out(std::cout);
    EXPECT_EQ(request.read(in), 1);
    const int result = process_matte_input(request, list, fields, need_picture);
    printed = out.text();
    return result;
  }

  TCKeyframes track;
  TCObject_list list;
  TCObject boat;
  TCObject buoy;
  TCMatte_input request;
  TCMatte_fields fields;
  int need_picture = 1;
};

TEST_F(MatteProcess, ResolvesObjectsAndSceneAndSizesTheFields) {
  std::string printed;
  ASSERT_EQ(process("use_mattes: 1 NObjects: 3 Object: buoy NMattes: 1 radiance Object: scene "
                    "NMattes: 1 distance Object: boat NMattes: 1 sky",
                    printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(fields.n_codes, 40);
  EXPECT_EQ(fields.n_objects, 2);
  EXPECT_EQ(fields.use_mattes, 1);
  EXPECT_EQ(request.object_indices[0], 1);
  EXPECT_EQ(request.object_indices[1], 2);
  EXPECT_EQ(request.object_indices[2], 0);
  EXPECT_EQ(need_picture, 1);

  fields.prepare(2, 2, 3, request);
  EXPECT_EQ(fields.object_wanted[0], 1);
  EXPECT_EQ(fields.object_wanted[1], 1);
  EXPECT_EQ(fields.object_wanted[2], 1);
  int first = 0;
  int count = 0;
  EXPECT_EQ(fields.is_wanted(0, 4, first, count), 1);
  EXPECT_EQ(first, 12);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(fields.is_wanted(0, 0, first, count), 0);
  EXPECT_EQ(fields.is_wanted(2, 19, first, count), 1);
  EXPECT_EQ(first, 55);
}

TEST_F(MatteProcess, NoMattesStillSizesTheFields) {
  std::string printed;
  ASSERT_EQ(process("use_mattes: 0", printed), 1);
  EXPECT_EQ(fields.n_codes, 40);
  EXPECT_EQ(fields.n_objects, 2);
  EXPECT_EQ(fields.use_mattes, 0);
}

TEST_F(MatteProcess, UnknownObjectFails) {
  std::string printed;
  EXPECT_EQ(process("use_mattes: 1 NObjects: 1 Object: ark NMattes: 1 radiance", printed), 0);
  EXPECT_EQ(printed, "ark in matte field input does not correspond to and object\n");
}

TEST_F(MatteProcess, MissingNameSortingAfterSceneFailsLikeAnyOther) {
  std::string printed;
  EXPECT_EQ(process("use_mattes: 1 NObjects: 1 Object: ship NMattes: 1 radiance", printed), 0);
  EXPECT_EQ(printed, "ship in matte field input does not correspond to and object\n");
  printed.clear();
  EXPECT_EQ(process("use_mattes: 1 NObjects: 1 Object: scenery NMattes: 1 radiance", printed), 0);
  EXPECT_EQ(printed, "scenery in matte field input does not correspond to and object\n");
  printed.clear();
  EXPECT_EQ(process("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 alpha-wall", printed), 0);
  EXPECT_EQ(printed, "ERROR - alpha object matte name: wall does not correspond to any object.\n");
}

TEST_F(MatteProcess, ObjectNamesSortingAfterSceneNameTheirObjects) {
  boat.set_name("tower");
  buoy.set_name("sea");
  std::string printed;
  ASSERT_EQ(process("use_mattes: 1 NObjects: 3 Object: sea NMattes: 1 radiance Object: tower "
                    "NMattes: 1 alpha-sea Object: scene NMattes: 1 scene_distance",
                    printed),
            1);
  EXPECT_EQ(request.object_indices[0], 1);
  EXPECT_EQ(request.object_indices[1], 0);
  EXPECT_EQ(request.object_indices[2], 2);
  EXPECT_EQ(request.alpha_objects[0], 1);
}

TEST_F(MatteProcess, ReflectedObjectAbsentFromTheListFailsHereNotOnReading) {
  std::string printed;
  EXPECT_EQ(process("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 reflect-ark", printed), 0);
  EXPECT_EQ(printed,
            "ERROR - reflected object matte name: ark does not correspond to any object.\n");
}

TEST_F(MatteProcess, ReflectAloneNamesNoObjectAndFails) {
  std::string printed;
  EXPECT_EQ(process("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 reflect-", printed), 0);
  EXPECT_EQ(printed, "ERROR - reflected object matte name:  does not correspond to any object.\n");
}

TEST_F(MatteProcess, AlphaObjectAbsentFromTheListFails) {
  std::string printed;
  EXPECT_EQ(process("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 alpha-ark", printed), 0);
  EXPECT_EQ(printed, "ERROR - alpha object matte name: ark does not correspond to any object.\n");
}

TEST_F(MatteProcess, ReflectedAndAlphaNamesAreResolved) {
  std::string printed;
  ASSERT_EQ(process("use_mattes: 1 NObjects: 2 Object: boat NMattes: 2 reflect-buoy alpha-boat "
                    "Object: buoy NMattes: 2 reflect-boat alpha-buoy",
                    printed),
            1);
  EXPECT_EQ(request.reflected_objects[0], 1);
  EXPECT_EQ(request.reflected_objects[1], 0);
  EXPECT_EQ(request.alpha_objects[0], 0);
  EXPECT_EQ(request.alpha_objects[1], 1);
  EXPECT_EQ(request.reflected_objects[2], -1);
}

TEST_F(MatteProcess, CodeWithoutItsAlphaNameFails) {
  std::istringstream in("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 alpha-buoy");
  ASSERT_EQ(request.read(in), 1);
  request.matte_ids[0][0] = 26;
  Stream_capture out(std::cout);
  EXPECT_EQ(process_matte_input(request, list, fields, need_picture), 0);
  EXPECT_EQ(out.text(),
            "Error processing matte information - too many alpha object mattes\n"
            "Only 5 mattes allowed!\n");
}

TEST_F(MatteProcess, CodeWithoutItsReflectedNameFails) {
  std::istringstream in("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 reflect-buoy");
  ASSERT_EQ(request.read(in), 1);
  request.matte_ids[0][0] = 11;
  Stream_capture out(std::cout);
  EXPECT_EQ(process_matte_input(request, list, fields, need_picture), 0);
  EXPECT_EQ(out.text(),
            "Error processing matte information - too many reflected object mattes\n"
            "Only 5 mattes allowed!\n");
}

TEST_F(MatteProcess, CodeAbove39Fails) {
  std::istringstream in("use_mattes: 1 NObjects: 1 Object: boat NMattes: 1 radiance");
  ASSERT_EQ(request.read(in), 1);
  request.matte_ids[0][0] = 40;
  Stream_capture out(std::cout);
  EXPECT_EQ(process_matte_input(request, list, fields, need_picture), 0);
  EXPECT_EQ(out.text(), "invalid matte id 40\n");
}

TEST_F(MatteProcess, SceneNoRadianceTurnsThePictureOff) {
  std::string printed;
  ASSERT_EQ(process("use_mattes: 1 NObjects: 1 Object: scene NMattes: 2 scene_distance "
                    "scene_no_radiance",
                    printed),
            1);
  EXPECT_EQ(need_picture, 0);
}

// ---------------------------------------------------------------------------

class MatteObjectList : public ::testing::Test {
 protected:
  MatteObjectList()
      : first(track, 0.0, 0.0, 0, &list, 2),
        second(track, 0.0, 0.0, 1, &list, 2),
        third(track, 0.0, 0.0, 2, &list, 2) {
    first.set_name("boat");
    second.set_name("scene");
    third.set_name("boat");
    list.objects[0] = &first;
    list.objects[1] = &second;
    list.objects[2] = &third;
    list.n_objects = 3;
  }

  TCKeyframes track;
  TCObject_list list;
  TCObject first;
  TCObject second;
  TCObject third;
};

TEST(MatteObjectListEmpty, StartsEmpty) {
  TCObject_list list;
  EXPECT_EQ(list.n_objects, 0);
  for (int i = 0; i < TCObject_list::max_objects; i++) EXPECT_EQ(list.objects[i], nullptr);
  int index = 5;
  EXPECT_EQ(list.find_by_name("boat", index), 0);
  EXPECT_EQ(index, -1);
}

TEST_F(MatteObjectList, LastMatchWins) {
  int index = 7;
  EXPECT_EQ(list.find_by_name("boat", index), 1);
  EXPECT_EQ(index, 2);
}

TEST_F(MatteObjectList, NamesAfterSceneAreSearchedLikeAnyName) {
  int index = 7;
  EXPECT_EQ(list.find_by_name("ship", index), 0);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(list.find_by_name("zebra", index), 0);
  EXPECT_EQ(list.find_by_name("scenery", index), 0);
  third.set_name("tower");
  EXPECT_EQ(list.find_by_name("tower", index), 1);
  EXPECT_EQ(index, 2);
}

TEST_F(MatteObjectList, SceneItselfIsSearchedLikeAnyName) {
  int index = 7;
  EXPECT_EQ(list.find_by_name("scene", index), 1);
  EXPECT_EQ(index, 1);
  list.n_objects = 1;
  EXPECT_EQ(list.find_by_name("scene", index), 0);
  EXPECT_EQ(index, -1);
}

TEST_F(MatteObjectList, NamesBeforeSceneMustMatchExactly) {
  int index = 7;
  EXPECT_EQ(list.find_by_name("Boat", index), 0);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(list.find_by_name("boa", index), 0);
  EXPECT_EQ(list.find_by_name("", index), 0);
  EXPECT_EQ(list.find_by_name("Scene", index), 0);
}

}  // namespace
