#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "TCAir.h"
#include "TCAir_input.h"
#include "TCObject_list.h"
#include "TCObject_list_input.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// Two bands, no sun, one air object named sky reading file, no cameras.
std::string list_with_air(const std::string& file) {
  return "number_of_bands: 2\n"
         "width center_wavelength band_id \n"
         "1 0.55 0.1\n"
         "2 0.65 0.05\n"
         "sun_flag: 0\n"
         "number_of_objects: 1\n"
         "number_of_times  1\n"
         "time  x  y  z  chi  phi  theta \n"
         "0 0 0 0 0 0 0 \n"
         "object_name: sky\n"
         "object_type: air\n"
         "object_file: " +
         file +
         "\n"
         "priority:    1\n"
         "number_of_cameras: 0\n";
}

const char* clean_air =
    "Tidecast_data_file air 2 2\nnumber_of_bands 2\nband_id 1 2\nair_type: clean\n"
    "surface_shape flat\nmolecular_height 1\nmolecular_density 1\n"
    "molecular_wavelength_dependence: 4.1\nend\n";

int read_list(TCObject_list_input& list, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = list.read_list(in);
  printed = out.text();
  return result;
}

}  // namespace

TEST(AirInObjectList, ListNamingAnAirFileReadsAndBuildsIt) {
  Scratch_folder folder;
  const std::string path = folder.file("sky.air");
  {
    std::ofstream out(path);
    out << clean_air;
  }
  TCObject_list_input input;
  std::string printed;
  ASSERT_EQ(read_list(input, list_with_air(path), printed), 1) << printed;
  EXPECT_EQ(printed, "");
  ASSERT_EQ(input.n_objects, 1);
  const TCAir_input* record = dynamic_cast<const TCAir_input*>(input.objects[0]);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->type_code, 7);
  EXPECT_STREQ(record->object_name, "sky");
  EXPECT_EQ(record->air_type, 1);
  EXPECT_EQ(record->surface_shape, 0);
  ASSERT_EQ(record->number_of_bands, 2);
  EXPECT_EQ(record->band_id.band_id[1], 2);

  TCObject_list list;
  int needs_updates = 0;
  Stream_capture out(std::cout);
  ASSERT_EQ(list.build(input, needs_updates), 1) << out.text();
  EXPECT_NE(dynamic_cast<TCAir*>(list.objects[0]), nullptr);
}

TEST(AirInObjectList, AirFileThatFailsFailsTheList) {
  TCObject_list_input list;
  std::string printed;
  EXPECT_EQ(read_list(list, list_with_air("/nonexistent/sky.air"), printed), 0);
  EXPECT_EQ(printed,
            "unable to open air input file /nonexistent/sky.air\n"
            "unable to process input structure \n");
}
