#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCKeyframes.h"
#include "TCObject_list.h"
#include "TCObject_list_input.h"
#include "TCOcean.h"
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

// The list builds the sea from its record, with the list's bands.
TEST(OceanInObjectList, BuildingAListWithAnOceanMakesTheSea) {
  Scratch_folder folder;
  Working_folder here(folder.file(""));
  ASSERT_TRUE(here.ok());
  const std::string path = folder.file("sea.ocean");
  // A square lattice, and a band the list has.
  put_file(path,
           replaced(replaced(plain_ocean(5), "dy 4", "dy 2"), "band_ids:  7", "band_ids:  1"));
  TCObject_list_input input;
  std::string printed;
  ASSERT_EQ(read_list(input, list_with_ocean(path), printed), 1) << printed;
  TCObject_list list;
  int needs_updates = 0;
  Stream_capture out(std::cout);
  ASSERT_EQ(list.build(input, needs_updates), 1) << out.text();
  ASSERT_EQ(list.n_objects, 1);
  const TCOcean* sea = dynamic_cast<const TCOcean*>(list.objects[0]);
  ASSERT_NE(sea, nullptr);
  EXPECT_EQ(sea->get_type(), 13);
  EXPECT_EQ(sea->primary.n_x, 32);
  EXPECT_EQ(sea->box_depth, 25.0);
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
