#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>

#include "TCCamera_input.h"
#include "TCObject_input.h"
#include "TCObject_list_input.h"
#include "TCPoly_object_input.h"
#include "object_list_input_files.h"
#include "stream_capture.h"

namespace {

std::string no_objects_no_cameras() {
  return two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 0\n";
}

// ---- Construction ----

TEST(ObjectListInput, StartsEmptyAtVersionTwo) {
  TCObject_list_input list;
  EXPECT_EQ(list.n_objects, 0);
  EXPECT_EQ(list.n_cameras, 0);
  EXPECT_EQ(list.sun_flag, 0);
  EXPECT_EQ(list.star_input, nullptr);
  EXPECT_EQ(list.number_of_bands, 0);
  EXPECT_EQ(list.objects_spectrum, nullptr);
  EXPECT_EQ(list.version, 2);
  EXPECT_EQ(TCObject_list_input::max_objects, 100);
  for (int i = 0; i < TCObject_list_input::max_objects; i++) {
    EXPECT_EQ(list.objects[i], nullptr);
    EXPECT_EQ(list.cameras[i], nullptr);
  }
}

// ---- Bands ----

TEST(ObjectListInputBands, RowsAreIdThenCentreWavelengthThenWidth) {
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list,
                           "number_of_bands: 2 width center_wavelength band_id\n"
                           "3 0.45 0.02\n"
                           "9 0.7 0.125\n"
                           "sun_flag: 0 number_of_objects: 0 number_of_cameras: 0\n",
                           printed),
            1);
  EXPECT_EQ(printed, "");
  ASSERT_EQ(list.number_of_bands, 2);
  EXPECT_EQ(list.objects_spectrum[0].band_id, 3);
  EXPECT_DOUBLE_EQ(list.objects_spectrum[0].center_wavelength, 0.45);
  EXPECT_DOUBLE_EQ(list.objects_spectrum[0].width, 0.02);
  EXPECT_EQ(list.objects_spectrum[1].band_id, 9);
  EXPECT_DOUBLE_EQ(list.objects_spectrum[1].center_wavelength, 0.7);
  EXPECT_DOUBLE_EQ(list.objects_spectrum[1].width, 0.125);
}

TEST(ObjectListInputBands, ManyBandsAllKeptInOrder) {
  std::ostringstream text;
  text << "number_of_bands: 40 width center_wavelength band_id\n";
  for (int i = 0; i < 40; i++) text << (100 + i) << " " << i << ".5 0.25\n";
  text << "sun_flag: 0 number_of_objects: 0 number_of_cameras: 0\n";
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list, text.str(), printed), 1);
  ASSERT_EQ(list.number_of_bands, 40);
  for (int i = 0; i < 40; i++) {
    EXPECT_EQ(list.objects_spectrum[i].band_id, 100 + i);
    EXPECT_DOUBLE_EQ(list.objects_spectrum[i].center_wavelength, i + 0.5);
  }
  EXPECT_EQ(list.band_index(100), 0);
  EXPECT_EQ(list.band_index(139), 39);
  EXPECT_EQ(list.band_index(99), -1);
}

TEST(ObjectListInputBands, BandIndexGivesThePositionOfAnId) {
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list, no_objects_no_cameras(), printed), 1);
  EXPECT_EQ(list.band_index(1), 0);
  EXPECT_EQ(list.band_index(2), 1);
  EXPECT_EQ(list.band_index(0), -1);
  EXPECT_EQ(list.band_index(3), -1);
}

TEST(ObjectListInputBands, BandIndexOfAnEmptyListIsMinusOne) {
  TCObject_list_input list;
  EXPECT_EQ(list.band_index(0), -1);
  EXPECT_EQ(list.band_index(1), -1);
}

// The reader's message goes to standard output; the child sends it to
// standard error, where the death test can see it.
TEST(ObjectListInputBandsDeathTest, NoBandsEndsTheProcessWithStatusOne) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list_input list;
        std::istringstream in("number_of_bands: 0 width center_wavelength band_id sun_flag: 0");
        list.read_list(in);
      },
      ::testing::ExitedWithCode(1), "^must define atleast one band\n$");
}

TEST(ObjectListInputBandsDeathTest, NegativeBandCountEndsTheProcessWithStatusOne) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list_input list;
        std::istringstream in("number_of_bands: -3");
        list.read_list(in);
      },
      ::testing::ExitedWithCode(1), "^must define atleast one band\n$");
}

// ---- Objects ----

TEST(ObjectListInputObjects, VersionTwoLinesGiveNamedRecordsWithIdsAndTheList) {
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 3\n" +
                           object_line(2, "pond", "water", "pond.txt", "2.5") +
                           object_line(2, "field", "plane", "field.txt", "1") +
                           object_line(2, "lamp", "point", "lamp.txt", "3") +
                           "number_of_cameras: 0\n";
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  EXPECT_EQ(printed, "");
  ASSERT_EQ(list.n_objects, 3);
  const char* names[3] = {"pond", "field", "lamp"};
  const char* kinds[3] = {"water", "plane", "point"};
  const int codes[3] = {3, 5, 6};
  const double priorities[3] = {2.5, 1.0, 3.0};
  for (int i = 0; i < 3; i++) {
    ASSERT_NE(list.objects[i], nullptr);
    EXPECT_STREQ(list.objects[i]->object_name, names[i]);
    EXPECT_STREQ(list.objects[i]->object_type, kinds[i]);
    EXPECT_EQ(list.objects[i]->type_code, codes[i]);
    EXPECT_DOUBLE_EQ(list.objects[i]->priority, priorities[i]);
    EXPECT_EQ(list.objects[i]->object_id, i);
    EXPECT_EQ(list.objects[i]->list, &list);
    EXPECT_EQ(list.objects[i]->version, 2);
    EXPECT_EQ(list.objects[i]->track.number_of_times, 1);
    EXPECT_DOUBLE_EQ(list.objects[i]->track.positions[0].z, 3.0);
  }
  EXPECT_STREQ(list.objects[1]->object_file, "field.txt");
  EXPECT_EQ(list.objects[3], nullptr);
}

TEST(ObjectListInputObjects, VersionOneLinesHaveNoNameAndAllAnswerToTypeName) {
  TCObject_list_input list;
  list.version = 1;
  const std::string text = two_bands_no_sun() + "number_of_objects: 2\n" +
                           object_line(1, "", "blob_lite", "a.txt", "4") +
                           object_line(1, "", "spray_lite", "b.txt", "5") +
                           "number_of_cameras: 0\n";
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  ASSERT_EQ(list.n_objects, 2);
  EXPECT_STREQ(list.objects[0]->object_name, "type_name");
  EXPECT_STREQ(list.objects[1]->object_name, "type_name");
  EXPECT_EQ(list.objects[0]->type_code, 17);
  EXPECT_EQ(list.objects[1]->type_code, 18);
  EXPECT_EQ(list.objects[0]->version, 1);
  EXPECT_DOUBLE_EQ(list.objects[1]->priority, 5.0);
  EXPECT_STREQ(list.objects[1]->object_file, "b.txt");
}

TEST(ObjectListInputObjects, KeyFrameAnglesAreReadInDegrees) {
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() +
                           "number_of_objects: 1\n"
                           "number_of_times 2 time x y z chi phi theta\n"
                           "0 0 0 0 90 45 180\n"
                           "10 5 0 0 0 0 0\n"
                           "object_name: pond object_type: water object_file: p priority: 1\n"
                           "number_of_cameras: 0\n";
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  const TCKeyframes& track = list.objects[0]->track;
  ASSERT_EQ(track.number_of_times, 2);
  EXPECT_DOUBLE_EQ(track.chi[0], 90 * 0.017453292519444445);
  EXPECT_DOUBLE_EQ(track.phi[0], 45 * 0.017453292519444445);
  EXPECT_DOUBLE_EQ(track.theta[0], 180 * 0.017453292519444445);
  EXPECT_DOUBLE_EQ(track.times[1], 10.0);
  EXPECT_DOUBLE_EQ(track.positions[1].x, 5.0);
}

TEST(ObjectListInputObjects, HundredObjectsAreAllowed) {
  std::string text = two_bands_no_sun() + "number_of_objects: 100\n";
  for (int i = 0; i < 100; i++) text += object_line(2, "p", "point", "p.txt", "1");
  text += "number_of_cameras: 0\n";
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  EXPECT_EQ(list.n_objects, 100);
  EXPECT_EQ(list.objects[99]->object_id, 99);
}

TEST(ObjectListInputObjects, HundredAndOneObjectsFailBeforeAnyLineIsRead) {
  std::string text = two_bands_no_sun() + "number_of_objects: 101\n";
  for (int i = 0; i < 101; i++) text += object_line(2, "p", "point", "p.txt", "1");
  text += "number_of_cameras: 0\n";
  TCObject_list_input list;
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  EXPECT_EQ(printed, "can only have 100 objects \n");
  EXPECT_EQ(list.n_objects, 0);
}

TEST(ObjectListInputObjects, UnknownKindWordPrintsBothLines) {
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 1\n" +
                           object_line(2, "hull", "boat", "hull.txt", "1") +
                           "number_of_cameras: 0\n";
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  EXPECT_EQ(printed, "object type boatnot valid \nobject type not valid \n");
  EXPECT_EQ(list.n_objects, 0);
}

TEST(ObjectListInputObjects, FailureAtTheSecondLineKeepsTheFirstRecord) {
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 2\n" +
                           object_line(2, "pond", "water", "pond.txt", "1") +
                           object_line(2, "hull", "boat", "hull.txt", "1") +
                           "number_of_cameras: 0\n";
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  ASSERT_EQ(list.n_objects, 1);
  EXPECT_STREQ(list.objects[0]->object_name, "pond");
  EXPECT_EQ(list.objects[1], nullptr);
}

// Every kind word the table knows that has no input record in this build,
// with the code the report names.
TEST(ObjectListInputObjects, KindsWithoutRecordsAreReportedByCode) {
  struct Kind {
    const char* word;
    int code;
  };
  const Kind kinds[] = {
      {"land", 2},    {"spray", 8}, {"blob", 10}, {"caustic", 15}, {"bobbing_camera", 254},
      {"camera", 255}};
  for (const Kind& kind : kinds) {
    TCObject_list_input list;
    const std::string text = two_bands_no_sun() + "number_of_objects: 1\n" +
                             object_line(2, "thing", kind.word, "thing.txt", "1") +
                             "number_of_cameras: 0\n";
    std::string printed;
    EXPECT_EQ(read_list_text(list, text, printed), 0) << kind.word;
    EXPECT_EQ(printed, "CODING TCError: valid object type " + std::to_string(kind.code) +
                           " not defined in program\n")
        << kind.word;
    EXPECT_EQ(list.n_objects, 0) << kind.word;
  }
}

// A "poly" object gets the polygon objects record, which reads the file
// its line names.
TEST(ObjectListInputObjects, PolyKindMakesAPolygonObjectsRecordThatReadsItsFile) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("ship.txt",
             "Tidecast_data_file poly 3 3\n"
             "scale_flag: 0\n"
             "image_flag: reflections\n"
             "image_level: 1\n"
             "object_file_type: obj\n"
             "obj_file: ship.obj\n"
             "obj_scale: 1 1 1\n"
             "obj_offset: 0 0 0\n"
             "modify_surfaces: 0\n"
             "number_ordered: 0\n"
             "end\n");
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 1\n" +
                           object_line(2, "ship", "poly", folder.file("ship.txt").c_str(), "4") +
                           "number_of_cameras: 0\n";
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  EXPECT_EQ(printed, "");
  ASSERT_EQ(list.n_objects, 1);
  TCPoly_object_input* ship = dynamic_cast<TCPoly_object_input*>(list.objects[0]);
  ASSERT_NE(ship, nullptr);
  EXPECT_EQ(ship->type_code, 19);
  EXPECT_STREQ(ship->object_type, "poly");
  EXPECT_STREQ(ship->object_name, "ship");
  EXPECT_DOUBLE_EQ(ship->priority, 4.0);
  EXPECT_EQ(ship->image_flag, 3);
  EXPECT_EQ(ship->object_file_type, 2);
  EXPECT_STREQ(ship->obj_file, "ship.obj");
}

TEST(ObjectListInputObjects, PolyObjectWhoseFileIsMissingFailsTheList) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string missing = folder.file("absent.txt");
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 1\n" +
                           object_line(2, "ship", "poly", missing.c_str(), "4") +
                           "number_of_cameras: 0\n";
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  EXPECT_EQ(printed, "Can't open polygon objects file: " + missing +
                         "\nunable to process input structure \n");
}

TEST(ObjectListInputObjects, NegativeObjectCountReadsAsNoObjects) {
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(
      read_list_text(list, two_bands_no_sun() + "number_of_objects: -4\nnumber_of_cameras: 0\n",
                     printed),
      1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(list.n_objects, 0);
}

// ---- Cameras ----

TEST(ObjectListInputCameras, VersionTwoCameraTakesItsMattesFromItsOwnFile) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("camera.txt", camera_section_text() + scene_distance_mattes());
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                           camera_line("camera", folder.file("camera.txt"), 10);
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  EXPECT_EQ(printed, "camera constructed camera_type_name\n");
  ASSERT_EQ(list.n_cameras, 1);
  TCCamera_input* camera = list.cameras[0];
  ASSERT_NE(camera, nullptr);
  EXPECT_EQ(camera->type_code, 255);
  EXPECT_STREQ(camera->object_type, "camera");
  EXPECT_STREQ(camera->object_name, "type_name");
  EXPECT_DOUBLE_EQ(camera->priority, -1.0);
  EXPECT_EQ(camera->version, 2);
  EXPECT_EQ(camera->list, &list);
  EXPECT_EQ(camera->object_id, -1);
  EXPECT_DOUBLE_EQ(camera->track.positions[0].z, 10.0);
  EXPECT_EQ(camera->n_pixel_azimuth, 8);
  EXPECT_EQ(camera->image_slices, 3);
  EXPECT_EQ(camera->matte.use_mattes, 1);
  ASSERT_EQ(camera->matte.n_matte_objects, 1);
  EXPECT_EQ(camera->matte.matte_ids[0][0], 20);
}

TEST(ObjectListInputCameras, VersionOneCameraTakesItsMattesFromTheList) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  // A matte section in the file too: a list of version 1 must not read it.
  folder.put("camera.txt", camera_section_text() + "use_mattes: 0\n");
  TCObject_list_input list;
  list.version = 1;
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                           camera_line("camera", folder.file("camera.txt"), 10) +
                           scene_distance_mattes();
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  ASSERT_EQ(list.n_cameras, 1);
  TCCamera_input* camera = list.cameras[0];
  EXPECT_EQ(camera->version, 1);
  EXPECT_EQ(camera->matte.use_mattes, 1);
  ASSERT_EQ(camera->matte.n_matte_objects, 1);
  EXPECT_STREQ(camera->matte.matte_object_names[0], "scene");
  EXPECT_EQ(camera->matte.matte_ids[0][0], 20);
  // The slices come from the camera's file after the matte section.
  EXPECT_EQ(camera->image_slices, 3);
}

TEST(ObjectListInputCameras, VersionOneCameraFileEndingEarlyHasOneSlice) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("camera.txt",
             "Tidecast_data_file camera 3 3 n_pixel_azimuth 8 n_pixel_elevation 6\n"
             "fov_azimuth 20 fov_elevation 15 image_method 1 picture_fraction_flag 0\n"
             "n_sub_azimuth 1 n_sub_elevation 1 number_of_bands 1 band_id 2\n"
             "anti_alias 0 efficiency_matte 0 end\n");
  TCObject_list_input list;
  list.version = 1;
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                           camera_line("camera", folder.file("camera.txt"), 10) + "use_mattes: 0\n";
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  EXPECT_EQ(list.cameras[0]->image_slices, 1);
  EXPECT_EQ(list.cameras[0]->matte.use_mattes, 0);
}

TEST(ObjectListInputCameras, BobbingCameraReadsItsSecondSection) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("bobbing.txt", camera_section_text() + "use_mattes: 0\n" + bobbing_section_text());
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                           camera_line("bobbing_camera", folder.file("bobbing.txt"), 2);
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  EXPECT_EQ(printed, "camera constructed bobbing_camera_type\n");
  ASSERT_EQ(list.n_cameras, 1);
  EXPECT_EQ(list.cameras[0]->type_code, 254);
  TCBobbing_camera_input* bobbing = dynamic_cast<TCBobbing_camera_input*>(list.cameras[0]);
  ASSERT_NE(bobbing, nullptr);
  EXPECT_DOUBLE_EQ(bobbing->decouple_height, 0.5);
  EXPECT_DOUBLE_EQ(bobbing->decouple_relax_time, 2.0);
  EXPECT_DOUBLE_EQ(bobbing->base_size, 3.0);
}

TEST(ObjectListInputCameras, PlainCameraIsNotABobbingOne) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("camera.txt", camera_section_text() + "use_mattes: 0\n");
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 2\n" +
                           camera_line("camera", folder.file("camera.txt"), 1) +
                           camera_line("camera", folder.file("camera.txt"), 2);
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  ASSERT_EQ(list.n_cameras, 2);
  EXPECT_EQ(dynamic_cast<TCBobbing_camera_input*>(list.cameras[0]), nullptr);
  EXPECT_DOUBLE_EQ(list.cameras[1]->track.positions[0].z, 2.0);
}

TEST(ObjectListInputCameras, ObjectKindOnACameraLineIsNotACamera) {
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                           camera_line("water", "pond.txt", 1);
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  EXPECT_EQ(printed, "TCCamera type NOT valid\n");
  EXPECT_EQ(list.n_cameras, 0);
}

TEST(ObjectListInputCameras, UnknownWordOnACameraLinePrintsBothLines) {
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                           camera_line("eye", "eye.txt", 1);
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  EXPECT_EQ(printed, "object type eyenot valid \nTCCamera type NOT valid\n");
}

TEST(ObjectListInputCameras, MissingCameraFileFailsWithTheListsLine) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  TCObject_list_input list;
  const std::string path = folder.file("absent.txt");
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                           camera_line("camera", path, 1);
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  EXPECT_EQ(printed,
            "camera constructed camera_type_name\n"
            "unable to open camera file " +
                path +
                "\n"
                "unable to process camera file \n");
  // The record made for it stays the list's.
  EXPECT_EQ(list.n_cameras, 1);
}

TEST(ObjectListInputCameras, BadMatteSectionInAVersionOneListFails) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("camera.txt", camera_section_text());
  TCObject_list_input list;
  list.version = 1;
  const std::string text = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                           camera_line("camera", folder.file("camera.txt"), 1) +
                           "use_mattes: 1 NObjects: 1 Object: scene NMattes: 1 sparkle\n";
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  EXPECT_EQ(printed,
            "camera constructed camera_type_name\n"
            "Invalid matte name: sparkle\n"
            "unable to process camera file \n");
}

TEST(ObjectListInputCameras, HundredAndOneCamerasAreRefusedUpFront) {
  TCObject_list_input list;
  std::string printed;
  EXPECT_EQ(
      read_list_text(list, two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 101\n",
                     printed),
      0);
  EXPECT_EQ(printed, "maximum number of cameras exceeded \n");
  EXPECT_EQ(list.n_cameras, 0);
}

TEST(ObjectListInputCameras, NegativeCameraCountReadsAsNoCameras) {
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(
      read_list_text(list, two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: -1\n",
                     printed),
      1);
  EXPECT_EQ(list.n_cameras, 0);
}

// ---- Reading again ----

TEST(ObjectListInput, ReadingAgainReplacesTheList) {
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list,
                           two_bands_no_sun() + "number_of_objects: 2\n" +
                               object_line(2, "a", "water", "a", "1") +
                               object_line(2, "b", "water", "b", "1") + "number_of_cameras: 0\n",
                           printed),
            1);
  ASSERT_EQ(read_list_text(list,
                           "number_of_bands: 1 width center_wavelength band_id 5 0.5 0.1\n"
                           "sun_flag: 0 number_of_objects: 1\n" +
                               object_line(2, "c", "point", "c", "1") + "number_of_cameras: 0\n",
                           printed),
            1);
  EXPECT_EQ(list.number_of_bands, 1);
  EXPECT_EQ(list.objects_spectrum[0].band_id, 5);
  ASSERT_EQ(list.n_objects, 1);
  EXPECT_STREQ(list.objects[0]->object_name, "c");
  EXPECT_EQ(list.objects[1], nullptr);
  EXPECT_EQ(list.version, 2);
}

// ---- Writing ----

TEST(ObjectListOutput, WritesTheLayoutTheReaderTakes) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("camera.txt", camera_section_text() + scene_distance_mattes());
  TCObject_list_input list;
  const std::string text = two_bands_no_sun() + "number_of_objects: 1\n" +
                           object_line(2, "pond", "water", "pond.txt", "2.5") +
                           "number_of_cameras: 1\n" +
                           camera_line("camera", folder.file("camera.txt"), 10);
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  // From version 2 the camera's matte section follows its line.
  const std::string expected =
      "number_of_bands: 2\n"
      "width center_wavelength band_id \n"
      "1 0.55 0.1\n"
      "2 0.65 0.05\n"
      "sun_flag: 0\n"
      "number_of_objects: 1\n"
      "number_of_times  1\n"
      "time  x  y  z  chi  phi  theta \n"
      "0 1 2 3 0 0 0 \n"
      "object_name: pond\n"
      "object_type: water\n"
      "object_file: pond.txt\n"
      "priority:    2.5\n"
      "number_of_cameras: 1\n"
      "number_of_times  1\n"
      "time  x  y  z  chi  phi  theta \n"
      "0 0 0 10 0 0 0 \n"
      "object_type: camera\n"
      "object_file: " +
      folder.file("camera.txt") +
      "\n"
      "use_mattes: 1\n"
      "  NObjects: 1\n"
      "    Object: scene\n"
      "      NMattes: 1\n"
      "        scene_distance\n";
  EXPECT_EQ(written_list(list), expected);
}

TEST(ObjectListOutput, VersionTwoWithoutCamerasReadsBackToTheSameText) {
  const std::string text = two_bands_no_sun() + "number_of_objects: 3\n" +
                           object_line(2, "pond", "water", "pond.txt", "2.5") +
                           object_line(2, "field", "flatground", "field.txt", "-0.75") +
                           object_line(2, "haze", "blob_lite", "haze.txt", "1e-05") +
                           "number_of_cameras: 0\n";
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  const std::string first = written_list(list);
  EXPECT_EQ(first, text);
  TCObject_list_input again;
  ASSERT_EQ(read_list_text(again, first, printed), 1);
  EXPECT_EQ(written_list(again), first);
}

TEST(ObjectListOutput, VersionOneWithoutCamerasReadsBackToTheSameText) {
  const std::string text =
      two_bands_no_sun() + "number_of_objects: 2\n" + object_line(1, "", "point", "lamp.txt", "3") +
      object_line(1, "", "spray_lite", "mist.txt", "0.5") + "number_of_cameras: 0\n";
  TCObject_list_input list;
  list.version = 1;
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  const std::string first = written_list(list);
  EXPECT_EQ(first, text);
  TCObject_list_input again;
  again.version = 1;
  ASSERT_EQ(read_list_text(again, first, printed), 1);
  EXPECT_EQ(written_list(again), first);
}

TEST(ObjectListOutput, MovingTrackSurvivesTheRoundTrip) {
  const std::string text = two_bands_no_sun() +
                           "number_of_objects: 1\n"
                           "number_of_times 2 time x y z chi phi theta\n"
                           "0 0 0 0 30 60 90\n"
                           "2.5 1 -2 0.125 -45 10 170\n"
                           "object_name: pond object_type: water object_file: p priority: 1\n"
                           "number_of_cameras: 0\n";
  TCObject_list_input list, again;
  std::string printed;
  ASSERT_EQ(read_list_text(list, text, printed), 1);
  ASSERT_EQ(read_list_text(again, written_list(list), printed), 1);
  const TCKeyframes& a = list.objects[0]->track;
  const TCKeyframes& b = again.objects[0]->track;
  ASSERT_EQ(b.number_of_times, 2);
  for (int i = 0; i < 2; i++) {
    EXPECT_DOUBLE_EQ(b.times[i], a.times[i]);
    EXPECT_DOUBLE_EQ(b.positions[i].y, a.positions[i].y);
    EXPECT_NEAR(b.chi[i], a.chi[i], 1e-13);
    EXPECT_NEAR(b.phi[i], a.phi[i], 1e-13);
    EXPECT_NEAR(b.theta[i], a.theta[i], 1e-13);
  }
}

// From version 2 the writer puts each camera's matte section into the list
// while the reader takes it from the camera's file: reading the written list
// back leaves the section in the stream, where a second camera line would
// have to be.
TEST(ObjectListOutput, VersionTwoMatteSectionIsWrittenWhereTheReaderDoesNotLook) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("camera.txt", camera_section_text() + "use_mattes: 0\n");
  TCObject_list_input list;
  const std::string one_camera = two_bands_no_sun() +
                                 "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                                 camera_line("camera", folder.file("camera.txt"), 10);
  std::string printed;
  ASSERT_EQ(read_list_text(list, one_camera, printed), 1);
  const std::string written = written_list(list);
  EXPECT_EQ(written, one_camera + "use_mattes: 0\n");

  std::istringstream back(written);
  TCObject_list_input again;
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(again.read_list(back), 1);
  }
  std::string left;
  back >> left;
  EXPECT_EQ(left, "use_mattes:");

  // With two cameras the first one's section stands where the second line is.
  const std::string two_cameras = two_bands_no_sun() +
                                  "number_of_objects: 0\nnumber_of_cameras: 2\n" +
                                  camera_line("camera", folder.file("camera.txt"), 1) +
                                  camera_line("camera", folder.file("camera.txt"), 2);
  TCObject_list_input pair;
  ASSERT_EQ(read_list_text(pair, two_cameras, printed), 1);
  TCObject_list_input pair_again;
  EXPECT_EQ(read_list_text(pair_again, written_list(pair), printed), 0);
}

// A list of version 1 reads the matte section behind each camera line, but
// its writer does not put one there.
TEST(ObjectListOutput, VersionOneWritesNoMatteSectionBehindACamera) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("camera.txt", camera_section_text());
  TCObject_list_input list;
  list.version = 1;
  const std::string lines = two_bands_no_sun() + "number_of_objects: 0\nnumber_of_cameras: 1\n" +
                            camera_line("camera", folder.file("camera.txt"), 10);
  std::string printed;
  ASSERT_EQ(read_list_text(list, lines + scene_distance_mattes(), printed), 1);
  ASSERT_EQ(list.cameras[0]->matte.use_mattes, 1);
  const std::string written = written_list(list);
  EXPECT_EQ(written, lines);

  TCObject_list_input again;
  again.version = 1;
  EXPECT_EQ(read_list_text(again, written, printed), 0);
}

TEST(ObjectListOutput, EmptyListWritesItsCountsOnly) {
  TCObject_list_input list;
  EXPECT_EQ(written_list(list),
            "number_of_bands: 0\n"
            "width center_wavelength band_id \n"
            "sun_flag: 0\n"
            "number_of_objects: 0\n"
            "number_of_cameras: 0\n");
}

}  // namespace

TEST(ObjectListInputCameras, CameraBandMissingFromTheBandTableIsRefusedWithFileAndBand) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  folder.put("camera.txt", camera_section_text() + "use_mattes: 0\n");  // band 2
  TCObject_list_input list;
  list.version = 2;
  const std::string text =
      "number_of_bands: 1\nwidth center_wavelength band_id\n1 0.55 0.1\nsun_flag: 0\n"
      "number_of_objects: 0\nnumber_of_cameras: 1\n" +
      camera_line("camera", folder.file("camera.txt"), 10);
  std::string printed;
  EXPECT_EQ(read_list_text(list, text, printed), 0);
  EXPECT_NE(printed.find("camera file " + folder.file("camera.txt") +
                         ": band_id 2 is not in the scene's band table\n"),
            std::string::npos)
      << printed;
}
