#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "TCCamera_input.h"
#include "TCKeyframes.h"
#include "TCObject_input.h"
#include "TCObject_list_input.h"
#include "TCPoly_object_input.h"
#include "TCStar_input.h"
#include "object_list_input_files.h"
#include "stream_capture.h"

namespace {

TCKeyframes key_at(double x) {
  TCKeyframes track;
  track.positions[0].x = x;
  return track;
}

// ---- Objects ----

TEST(ObjectListBuilding, AddObjectAppendsARecordOfTheKind) {
  TCObject_list_input list;
  TCKeyframes track;
  track.set_number_of_times(2);
  track.times[1] = 4.0;
  track.positions[1].y = 7.0;
  Stream_capture out(std::cout);
  TCObject_input* pond = list.add_object(3, "pond", "pond.txt", 2.5, track);
  TCObject_input* field = list.add_object(5, "field", "field.txt", 1.0, key_at(0.0));
  EXPECT_EQ(out.text(), "");
  ASSERT_NE(pond, nullptr);
  ASSERT_NE(field, nullptr);
  ASSERT_EQ(list.n_objects, 2);
  EXPECT_EQ(list.objects[0], pond);
  EXPECT_EQ(list.objects[1], field);
  EXPECT_STREQ(pond->object_name, "pond");
  EXPECT_STREQ(pond->object_type, "water");
  EXPECT_EQ(pond->type_code, 3);
  EXPECT_STREQ(pond->object_file, "pond.txt");
  EXPECT_DOUBLE_EQ(pond->priority, 2.5);
  EXPECT_EQ(pond->object_id, 0);
  EXPECT_EQ(pond->list, &list);
  EXPECT_EQ(pond->version, 2);
  ASSERT_EQ(pond->track.number_of_times, 2);
  EXPECT_DOUBLE_EQ(pond->track.positions[1].y, 7.0);
  EXPECT_STREQ(field->object_type, "plane");
  EXPECT_EQ(field->object_id, 1);
}

TEST(ObjectListBuilding, EveryKindWithARecordCanBeAddedAndWritesItsWord) {
  struct Kind {
    int code;
    const char* word;
  };
  const Kind kinds[] = {
      {3, "water"}, {5, "plane"}, {6, "point"}, {17, "blob_lite"}, {18, "spray_lite"}};
  for (const Kind& kind : kinds) {
    TCObject_list_input list;
    TCObject_input* record = list.add_object(kind.code, "thing", "thing.txt", 1.0, key_at(0));
    ASSERT_NE(record, nullptr) << kind.word;
    EXPECT_STREQ(record->object_type, kind.word);
    // The word written reads back to the same code.
    const std::string written = written_list(list);
    const std::string text =
        "number_of_bands: 1 width center_wavelength band_id 1 0.5 0.1\n"
        "sun_flag: 0\n" +
        written.substr(written.find("number_of_objects"));
    TCObject_list_input again;
    std::string printed;
    ASSERT_EQ(read_list_text(again, text, printed), 1) << kind.word;
    EXPECT_EQ(again.objects[0]->type_code, kind.code);
  }
}

TEST(ObjectListBuilding, NamesAndFilesAreCutToTheirFields) {
  TCObject_list_input list;
  const std::string long_name(300, 'n');
  TCObject_input* record = list.add_object(6, long_name.c_str(), nullptr, 1.0, key_at(0));
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(std::string(record->object_name), std::string(255, 'n'));
  EXPECT_STREQ(record->object_file, "");
}

TEST(ObjectListBuilding, HundredAndFirstObjectIsRefused) {
  TCObject_list_input list;
  for (int i = 0; i < 100; i++) ASSERT_NE(list.add_object(6, "p", "p", 1.0, key_at(i)), nullptr);
  Stream_capture out(std::cout);
  EXPECT_EQ(list.add_object(6, "p", "p", 1.0, key_at(0)), nullptr);
  EXPECT_EQ(out.text(), "maximum number of objects exceeded \n");
  EXPECT_EQ(list.n_objects, 100);
}

TEST(ObjectListBuilding, CodesThatAreNoObjectKindAreInvalid) {
  const int codes[] = {-1, 0, 20, 101, 254, 255};
  for (int code : codes) {
    TCObject_list_input list;
    Stream_capture out(std::cout);
    EXPECT_EQ(list.add_object(code, "x", "x", 1.0, key_at(0)), nullptr) << code;
    EXPECT_EQ(out.text(), "invalid object type \n") << code;
    EXPECT_EQ(list.n_objects, 0);
  }
}

TEST(ObjectListBuilding, KindsWithoutRecordsAreReportedByCode) {
  const int codes[] = {2, 8, 10, 12, 15};
  for (int code : codes) {
    TCObject_list_input list;
    Stream_capture out(std::cout);
    EXPECT_EQ(list.add_object(code, "x", "x", 1.0, key_at(0)), nullptr) << code;
    EXPECT_EQ(out.text(), "CODING TCError: valid object type " + std::to_string(code) +
                              " not defined in program\n")
        << code;
    EXPECT_EQ(list.n_objects, 0);
  }
}

TEST(ObjectListBuilding, PolyKindAddsAPolygonObjectsRecordThatWritesItsWord) {
  TCObject_list_input list;
  Stream_capture out(std::cout);
  TCObject_input* record = list.add_object(19, "ship", "ship.txt", 3.0, key_at(0));
  EXPECT_EQ(out.text(), "");
  ASSERT_NE(record, nullptr);
  EXPECT_NE(dynamic_cast<TCPoly_object_input*>(record), nullptr);
  EXPECT_EQ(record->type_code, 19);
  EXPECT_STREQ(record->object_type, "poly");
  EXPECT_STREQ(record->object_file, "ship.txt");
  EXPECT_NE(written_list(list).find("object_type: poly\n"), std::string::npos);
}

// ---- Cameras ----

TEST(ObjectListBuilding, AddCameraMakesTheKindOfTheCode) {
  TCObject_list_input list;
  list.version = 1;
  Stream_capture out(std::cout);
  TCCamera_input* camera = list.add_camera(255, "eye.cam", key_at(3.0));
  TCCamera_input* bobbing = list.add_camera(254, "float.cam", key_at(4.0));
  EXPECT_EQ(out.text(),
            "camera constructed camera_type_name\n"
            "camera constructed bobbing_camera_type\n");
  ASSERT_NE(camera, nullptr);
  ASSERT_NE(bobbing, nullptr);
  ASSERT_EQ(list.n_cameras, 2);
  EXPECT_EQ(list.cameras[0], camera);
  EXPECT_EQ(list.cameras[1], bobbing);
  EXPECT_EQ(dynamic_cast<TCBobbing_camera_input*>(camera), nullptr);
  EXPECT_NE(dynamic_cast<TCBobbing_camera_input*>(bobbing), nullptr);
  EXPECT_EQ(camera->type_code, 255);
  EXPECT_STREQ(bobbing->object_type, "bobbing_camera");
  EXPECT_STREQ(camera->object_file, "eye.cam");
  EXPECT_DOUBLE_EQ(camera->track.positions[0].x, 3.0);
  EXPECT_DOUBLE_EQ(camera->priority, -1.0);
  EXPECT_STREQ(camera->object_name, "type_name");
  EXPECT_EQ(camera->object_id, -1);
  EXPECT_EQ(camera->list, &list);
  EXPECT_EQ(camera->version, 1);
}

TEST(ObjectListBuilding, AddCameraRefusesOtherCodes) {
  const int codes[] = {3, 253, 256, -1};
  for (int code : codes) {
    TCObject_list_input list;
    Stream_capture out(std::cout);
    EXPECT_EQ(list.add_camera(code, "c", key_at(0)), nullptr);
    EXPECT_EQ(out.text(), "invalid camera type \n");
    EXPECT_EQ(list.n_cameras, 0);
  }
}

TEST(ObjectListBuilding, HundredAndFirstCameraIsRefused) {
  TCObject_list_input list;
  Stream_capture out(std::cout);
  for (int i = 0; i < 100; i++) ASSERT_NE(list.add_camera(255, "c", key_at(i)), nullptr);
  Stream_capture last(std::cout);
  EXPECT_EQ(list.add_camera(255, "c", key_at(0)), nullptr);
  EXPECT_EQ(last.text(), "maximum number of cameras exceeded \n");
  EXPECT_EQ(list.n_cameras, 100);
}

// ---- Sun ----

TEST(ObjectListBuilding, AddSunOnceOnly) {
  TCObject_list_input list;
  TCStar_input* sun = list.add_sun("sun.txt");
  ASSERT_NE(sun, nullptr);
  EXPECT_EQ(list.star_input, sun);
  EXPECT_EQ(list.sun_flag, 1);
  EXPECT_STREQ(sun->object_file, "sun.txt");
  EXPECT_EQ(sun->list, &list);
  Stream_capture out(std::cout);
  EXPECT_EQ(list.add_sun("other.txt"), nullptr);
  EXPECT_EQ(out.text(), "sun already allocated \n");
  EXPECT_EQ(list.star_input, sun);
  EXPECT_STREQ(sun->object_file, "sun.txt");
}

// ---- Removal ----

TEST(ObjectListBuilding, RemovingAnObjectClosesTheGapAndRenumbers) {
  TCObject_list_input list;
  TCObject_input* a = list.add_object(3, "a", "a", 1.0, key_at(0));
  TCObject_input* b = list.add_object(5, "b", "b", 1.0, key_at(0));
  TCObject_input* c = list.add_object(6, "c", "c", 1.0, key_at(0));
  TCObject_input* d = list.add_object(17, "d", "d", 1.0, key_at(0));
  Stream_capture out(std::cout);
  ASSERT_EQ(list.remove_input(b), 1);
  EXPECT_EQ(out.text(), "");
  ASSERT_EQ(list.n_objects, 3);
  EXPECT_EQ(list.objects[0], a);
  EXPECT_EQ(list.objects[1], c);
  EXPECT_EQ(list.objects[2], d);
  EXPECT_EQ(list.objects[3], nullptr);
  EXPECT_EQ(a->object_id, 0);
  EXPECT_EQ(c->object_id, 1);
  EXPECT_EQ(d->object_id, 2);

  ASSERT_EQ(list.remove_input(a), 1);
  EXPECT_EQ(c->object_id, 0);
  EXPECT_EQ(d->object_id, 1);
  ASSERT_EQ(list.remove_input(d), 1);
  ASSERT_EQ(list.n_objects, 1);
  EXPECT_EQ(list.objects[0], c);
  EXPECT_EQ(list.objects[1], nullptr);

  // A new object goes to the end with the next number.
  TCObject_input* e = list.add_object(18, "e", "e", 1.0, key_at(0));
  EXPECT_EQ(e->object_id, 1);
}

TEST(ObjectListBuilding, RemovingACameraClosesTheGap) {
  TCObject_list_input list;
  Stream_capture quiet(std::cout);
  TCCamera_input* a = list.add_camera(255, "a", key_at(0));
  TCCamera_input* b = list.add_camera(254, "b", key_at(0));
  TCCamera_input* c = list.add_camera(255, "c", key_at(0));
  ASSERT_EQ(list.remove_input(a), 1);
  ASSERT_EQ(list.n_cameras, 2);
  EXPECT_EQ(list.cameras[0], b);
  EXPECT_EQ(list.cameras[1], c);
  EXPECT_EQ(list.cameras[2], nullptr);
}

TEST(ObjectListBuilding, RemovingTheSunClearsTheFlag) {
  TCObject_list_input list;
  TCStar_input* sun = list.add_sun("sun.txt");
  ASSERT_EQ(list.remove_input(sun), 1);
  EXPECT_EQ(list.star_input, nullptr);
  EXPECT_EQ(list.sun_flag, 0);
  // And a new one may be added.
  EXPECT_NE(list.add_sun("sun.txt"), nullptr);
}

TEST(ObjectListBuilding, RemovingWhatTheListDoesNotHoldDeletesNothing) {
  TCObject_list_input list;
  TCObject_input* a = list.add_object(3, "a", "a", 1.0, key_at(0));
  TCObject_input stranger;
  Stream_capture out(std::cout);
  EXPECT_EQ(list.remove_input(&stranger), 0);
  EXPECT_EQ(list.remove_input(nullptr), 0);
  EXPECT_EQ(out.text(),
            " pointer does not match any pointers in object_list_input \n"
            " nothing deleted \n"
            " pointer does not match any pointers in object_list_input \n"
            " nothing deleted \n");
  ASSERT_EQ(list.n_objects, 1);
  EXPECT_EQ(list.objects[0], a);
}

// ---- Writing what was built ----

TEST(ObjectListBuilding, BuiltListWritesAndReadsBack) {
  TCObject_list_input list;
  list.add_object(3, "pond", "pond.txt", 2.0, key_at(1.0));
  list.add_object(6, "lamp", "lamp.txt", 0.5, key_at(-3.0));
  const std::string text = written_list(list);
  // A list built by hand has no bands yet; give it one for the reader.
  const std::string with_band =
      "number_of_bands: 1\nwidth center_wavelength band_id \n4 0.5 0.1\n" +
      text.substr(text.find("sun_flag"));
  TCObject_list_input again;
  std::string printed;
  ASSERT_EQ(read_list_text(again, with_band, printed), 1);
  ASSERT_EQ(again.n_objects, 2);
  EXPECT_STREQ(again.objects[1]->object_name, "lamp");
  EXPECT_EQ(again.objects[1]->type_code, 6);
  EXPECT_DOUBLE_EQ(again.objects[1]->priority, 0.5);
  EXPECT_DOUBLE_EQ(again.objects[1]->track.positions[0].x, -3.0);
}

TEST(ObjectListBuilding, WriteFilesWritesEachCamerasFile) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  TCObject_list_input list;
  Stream_capture quiet(std::cout);
  list.add_object(3, "pond", folder.file("pond.txt").c_str(), 1.0, key_at(0));
  TCCamera_input* camera = list.add_camera(255, folder.file("eye.cam").c_str(), key_at(0));
  ASSERT_NE(camera, nullptr);
  camera->n_pixel_azimuth = 32;
  camera->n_pixel_elevation = 16;
  // A camera file with no field of view does not read back.
  camera->fov_azimuth = 40.0;
  camera->fov_elevation = 20.0;
  camera->last_azimuth = 31;
  camera->last_elevation = 15;
  camera->image_slices = 2;
  ASSERT_EQ(list.write_files(), 1);

  TCCamera_input back;
  back.version = 2;
  ASSERT_EQ(back.read_file(folder.file("eye.cam").c_str()), 1);
  EXPECT_EQ(back.n_pixel_azimuth, 32);
  EXPECT_EQ(back.n_pixel_elevation, 16);
  EXPECT_EQ(back.image_slices, 2);
  // Water has no file of its own: nothing is written for it.
  std::ifstream pond(folder.file("pond.txt").c_str());
  EXPECT_FALSE(pond.good());
}

TEST(ObjectListBuilding, WriteFilesFailsOnACameraFileThatCannotBeOpened) {
  List_folder folder;
  ASSERT_TRUE(folder.ok());
  TCObject_list_input list;
  Stream_capture out(std::cout);
  const std::string path = folder.file("no_such_folder/eye.cam");
  list.add_camera(255, path.c_str(), key_at(0));
  EXPECT_EQ(list.write_files(), 0);
  EXPECT_EQ(out.text(),
            "camera constructed camera_type_name\n"
            "unable to open camera output file " +
                path + "\n");
}

TEST(ObjectListBuilding, WriteFilesOfAnEmptyListSucceeds) {
  TCObject_list_input list;
  EXPECT_EQ(list.write_files(), 1);
}

}  // namespace
