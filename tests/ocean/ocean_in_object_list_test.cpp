#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "TCCamera.h"
#include "TCCamera_input.h"
#include "TCKeyframes.h"
#include "TCObject_list.h"
#include "TCObject_list_input.h"
#include "TCOcean.h"
#include "TCScene.h"
#include "TCScene_input.h"
#include "ocean_input.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// A list section of two bands, no sun, one ocean named sea at file, and no
// cameras.
std::string list_with_ocean(const std::string& file) {
  return "number_of_bands: 2\n"
         "width center_wavelength band_id \n"
         "1 0.55 0.1\n"
         "2 0.65 0.05\n"
         "sun_flag: 0\n"
         "number_of_objects: 1\n"
         "number_of_times  1\n"
         "time  x  y  z  chi  phi  theta \n"
         "0 0 0 0 0 0 0 \n"
         "object_name: sea\n"
         "object_type: ocean\n"
         "object_file: " +
         file +
         "\n"
         "priority:    1\n"
         "number_of_cameras: 0\n";
}

int read_list(TCObject_list_input& list, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = list.read_list(in);
  printed = out.text();
  return result;
}

TEST(OceanInObjectList, ListNamingAnOceanFileReadsIt) {
  Scratch_folder folder;
  const std::string path = folder.file("sea.ocean");
  put_file(path, plain_ocean(5));
  TCObject_list_input list;
  std::string printed;
  ASSERT_EQ(read_list(list, list_with_ocean(path), printed), 1) << printed;
  EXPECT_EQ(printed, "");
  ASSERT_EQ(list.n_objects, 1);
  const ocean_input* ocean = dynamic_cast<const ocean_input*>(list.objects[0]);
  ASSERT_NE(ocean, nullptr);
  EXPECT_EQ(ocean->type_code, 13);
  EXPECT_STREQ(ocean->object_name, "sea");
  EXPECT_STREQ(ocean->object_file, path.c_str());
  EXPECT_EQ(ocean->primary_grid.n_x, 32);
  EXPECT_EQ(ocean->box_depth, 25.0);
  ASSERT_EQ(ocean->number_of_bands, 1);
  EXPECT_EQ(ocean->band_ids[0], 7);
}

TEST(OceanInObjectList, OceanFileThatFailsFailsTheList) {
  TCObject_list_input list;
  std::string printed;
  EXPECT_EQ(read_list(list, list_with_ocean("/nonexistent/sea.ocean"), printed), 0);
  EXPECT_EQ(printed,
            "unable to open ocean input file /nonexistent/sea.ocean\n"
            "unable to process input structure \n");
}

TEST(OceanInObjectList, AddObjectMakesAnOceanRecord) {
  TCObject_list_input list;
  TCKeyframes track;
  Stream_capture out(std::cout);
  TCObject_input* record = list.add_object(13, "sea", "sea.ocean", 1.0, track);
  EXPECT_EQ(out.text(), "");
  ASSERT_NE(record, nullptr);
  EXPECT_NE(dynamic_cast<ocean_input*>(record), nullptr);
  EXPECT_EQ(record->type_code, 13);
}

// A sea the list can build: square spacing, and the scene's band 1.
std::string buildable_ocean() {
  std::string text = replaced(plain_ocean(5), "n_points_y 16 1\n", "n_points_y 32 1\n");
  text = replaced(text, "dy 4\n", "dy 2\n");
  return replaced(text, "band_ids:  7\n", "band_ids:  1\n");
}

TEST(OceanInObjectList, BuildingAListWithAnOceanMakesTheSeaAndAsksForUpdates) {
  Scratch_folder folder;
  Working_folder here(folder.file(""));
  ASSERT_TRUE(here.ok());
  const std::string path = folder.file("sea.ocean");
  put_file(path, replaced(buildable_ocean(), "spectrum_file: sea.spectrum",
                          "spectrum_file: " + folder.file("sea.spectrum")));
  TCObject_list_input input;
  std::string printed;
  ASSERT_EQ(read_list(input, list_with_ocean(path), printed), 1) << printed;
  TCObject_list list;
  // One key frame: only the sea's own evolution can ask for updates.
  int needs_updates = 0;
  Stream_capture out(std::cout);
  ASSERT_EQ(list.build(input, needs_updates), 1) << out.text();
  ASSERT_EQ(list.n_objects, 1);
  EXPECT_EQ(list.objects[0]->get_type(), 13);
  const TCOcean* sea = dynamic_cast<const TCOcean*>(list.objects[0]);
  ASSERT_NE(sea, nullptr);
  EXPECT_EQ(sea->primary.n_x, 32);
  EXPECT_EQ(sea->primary.n_y, 32);
  EXPECT_EQ(sea->current_time, 1.5);
  EXPECT_EQ(needs_updates, 1);
  EXPECT_EQ(out.text().find("CODING TCError"), std::string::npos) << out.text();
}

// A camera that notes, whenever it is moved to a frame's time, that time
// and the time the sea has been brought to.
class Sea_clock_camera : public TCCamera {
 public:
  Sea_clock_camera(const TCCamera_input& input, TCObject_list* list, const TCOcean* sea_in)
      : TCCamera(input, list), sea(sea_in) {}
  void set_time(double t) override {
    frame_times.push_back(t);
    sea_times.push_back(sea->current_time);
    TCCamera::set_time(t);
  }
  const TCOcean* sea;
  std::vector<double> frame_times;
  std::vector<double> sea_times;
};

// The frame walk: every frame brings the sea to the frame's time before a
// camera images (a camera's set_time follows the objects'); with no key
// frames of its own moving, the sea still asks for updates every frame.
TEST(OceanInObjectList, SceneFramesBringTheSeaToEachFramesTimeBeforeTheCameras) {
  Scratch_folder folder;
  const std::string path = folder.file("sea.ocean");
  put_file(path, replaced(buildable_ocean(), "spectrum_file: sea.spectrum",
                          "spectrum_file: " + folder.file("sea.spectrum")));
  put_file(folder.file("eye.cam"),
           "Tidecast_data_file camera 3 3\nn_pixel_azimuth 4\nn_pixel_elevation 2\n"
           "fov_azimuth 30\nfov_elevation 20\nimage_method 1\npicture_fraction_flag 0\n"
           "n_sub_azimuth 1\nn_sub_elevation 1\nnumber_of_bands 1\nband_id 1\nanti_alias 0\n"
           "efficiency_matte 0\nimage_slices 1\nimage_format img\nend\nuse_mattes: 0\n");
  const std::string text =
      "Tidecast_data_file scene 2 2\noutput_file: " + folder.file("run") +
      "\noutput_format: -b-C-f-.-t-\n"
      "number_of_bands: 1\nwidth center_wavelength band_id\n1 0.55 0.1\nsun_flag: 0\n"
      "number_of_objects: 1\nnumber_of_times 1\ntime x y z chi phi theta\n0 0 0 0 0 0 0\n"
      "object_name: sea\nobject_type: ocean\nobject_file: " +
      path +
      "\npriority: 1\nnumber_of_cameras: 1\nnumber_of_times 1\ntime x y z chi phi theta\n"
      "0 0 0 10 0 0 0\nobject_type: camera\nobject_file: " +
      folder.file("eye.cam") +
      "\nnumber_of_frames: 2\ntod_flag: 0\nframe_number time\n1 0.0\n10 0.9\nend\n"
      "first_frame: 2\nlast_frame: 4\nincrement: 1\n";
  TCScene_input input;
  {
    std::istringstream in(text);
    Stream_capture quiet(std::cout);
    ASSERT_EQ(input.read_scene(in), 1);
    ASSERT_EQ(input.read_frame_range(in), 1);
  }
  Stream_capture out(std::cout);
  TCScene scene(input);
  ASSERT_EQ(scene.object_list.n_objects, 1);
  TCOcean* sea = dynamic_cast<TCOcean*>(scene.object_list.objects[0]);
  ASSERT_NE(sea, nullptr);
  EXPECT_EQ(scene.needs_updates, 1);
  // The list's camera gives way to one that notes the sea's clock each
  // time the walk moves it.
  ASSERT_EQ(scene.object_list.n_cameras, 1);
  ASSERT_EQ(input.object_list.n_cameras, 1);
  Sea_clock_camera* clock =
      new Sea_clock_camera(*input.object_list.cameras[0], &scene.object_list, sea);
  delete scene.object_list.cameras[0];
  scene.object_list.cameras[0] = clock;
  scene.run();
  // Frames 2 to 4 at 0.1 s a frame from frame 1 at 0.
  const double times[3] = {0.1, 0.2, 0.3};
  ASSERT_EQ(clock->frame_times.size(), 3u);
  for (int k = 0; k < 3; k++) {
    EXPECT_NEAR(clock->frame_times[k], times[k], 1e-15) << k;
    EXPECT_EQ(clock->sea_times[k], clock->frame_times[k]) << k;
  }
  EXPECT_NEAR(sea->current_time, 0.3, 1e-15);
  EXPECT_NE(out.text().find("frame= 4, time=  0.3\n"), std::string::npos) << out.text();
}

// A sea that cannot be built ends the program: its water type needs a band
// the list does not have (its lattice is square here, so that the band is
// what fails).
TEST(OceanInObjectList, ASeaThatCannotBeBuiltEndsTheProgram) {
  Scratch_folder folder;
  const std::string path = folder.file("sea.ocean");
  put_file(path, replaced(plain_ocean(5), "dy 4", "dy 2"));
  TCObject_list_input input;
  std::string printed;
  ASSERT_EQ(read_list(input, list_with_ocean(path), printed), 1) << printed;
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list list;
        int needs_updates = 0;
        list.build(input, needs_updates);
      },
      ::testing::ExitedWithCode(1),
      "unable to process spectral part of input \n"
      "unable to allocate object 1\n"
      "unable to add object 0 to object list \n");
}

}  // namespace
