#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCObject_list.h"
#include "TCObject_list_input.h"
#include "TCOcean.h"
#include "TCSettings.h"
#include "ocean_input.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

// Building the sea from its record: what it refuses, what it keeps, and
// which objects it counts as above the water.

namespace {

// A sea with custom optics (water type 0), so that it needs no scene to be
// built, and a spectrum it does not generate, so that it writes nothing.
std::string custom_ocean() {
  std::string text = replaced(plain_ocean(5), "n_points_y 16 1\n", "n_points_y 32 1\n");
  text = replaced(text, "dy 4\n", "dy 2\n");
  text = replaced(text, "generate_file:  yes\nrandom_seed 5\n", "generate_file:  no\n");
  text = replaced(text, "jerlov_water_type:  3\n", "jerlov_water_type:  0\n");
  return replaced(text, "index_of_refraction:  1.33\n",
                  "index_of_refraction:  1.33\na: 0.1\nb: 0.2\nc: 0.3\nk: 0.4\nrefl: 0.5\n");
}

class Ocean_build : public ::testing::Test {
 protected:
  Ocean_build() : saved_verbose_(verbose) { verbose = 1; }
  ~Ocean_build() override {
    delete sea;
    verbose = saved_verbose_;
  }

  // Reads text and builds a sea of it: construct's result, what it printed
  // in printed.
  int build(const std::string& text) {
    std::string read_printed;
    EXPECT_EQ(read_ocean_text(input, text, read_printed), 1) << read_printed;
    sea = new TCOcean(input);
    Stream_capture out(std::cout);
    const int result = sea->construct(input);
    printed = out.text();
    return result;
  }

  int saved_verbose_;
  ocean_input input;
  TCOcean* sea = nullptr;
  std::string printed;
};

}  // namespace

TEST_F(Ocean_build, SpacingTwoThousandthsOffSquareIsRefused) {
  EXPECT_EQ(build(replaced(custom_ocean(), "dy 2\n", "dy 1.996\n")), 0);
  EXPECT_EQ(printed, "Error: TCGrid spacing on the ocean surface not square\n");
}

TEST_F(Ocean_build, SpacingHalfAThousandthOffSquareIsTakenAsSquare) {
  // dx / dy = 2 / 1.999 = 1.0005.
  ASSERT_EQ(build(replaced(custom_ocean(), "dy 2\n", "dy 1.999\n")), 1) << printed;
  EXPECT_EQ(sea->primary.dy, 2.0);
  EXPECT_NE(printed.find("lattice spacing:        2 2\n"), std::string::npos) << printed;
}

TEST_F(Ocean_build, SecondFurtherLatticeIsRefused) {
  const std::string text = replaced(custom_ocean(), "number_aux_oceans  0\n",
                                    "number_aux_oceans  2\n" + grid_block(16, 16, "far.spectrum"));
  EXPECT_EQ(build(text), 0);
  EXPECT_EQ(printed, "Not allowed more than 1 additional ocean grid\n");
}

TEST_F(Ocean_build, WaterTypeOutsideTheTableIsRefused) {
  std::string read_printed;
  ASSERT_EQ(read_ocean_text(input, custom_ocean(), read_printed), 1) << read_printed;
  // The reader refuses such a file; a record made otherwise meets the sea's
  // own check.
  input.jerlov_water_type = 6;
  sea = new TCOcean(input);
  Stream_capture out(std::cout);
  EXPECT_EQ(sea->construct(input), 0);
  EXPECT_EQ(out.text(),
            "water type 6 is not valid\n"
            "must be 1,2,3,4,5,( or 0 for custom parameters)\n");
}

TEST_F(Ocean_build, CouplingWithoutTheAirPrintsAsExact) {
  const std::string text = replaced(
      custom_ocean(), "external_exact:  no\n",
      "external_exact:  yes_no_air\nmax_exact_distance:  400\nexact_sharpening_factor:  1.5\n"
      "include:  above\nreflection_method:  averaged\nshadow_method:  no\n");
  ASSERT_EQ(build(text), 1) << printed;
  EXPECT_EQ(sea->external_exact, 1);
  EXPECT_EQ(sea->air_coupling, 0);
  EXPECT_EQ(sea->max_exact_distance_sq, 160000.0);
  EXPECT_NE(printed.find("external coupling:     EXACT\nexternal_sharpening:  1.5\n"),
            std::string::npos)
      << printed;
}

TEST_F(Ocean_build, CustomOpticsArePrintedPerBand) {
  ASSERT_EQ(build(custom_ocean()), 1) << printed;
  EXPECT_NE(printed.find("     optical properties \n a 0.1\n b 0.2\n c 0.3\n k 0.4\n"
                         " effective reflection 0.5\n"),
            std::string::npos)
      << printed;
  EXPECT_EQ(sea->current_time, 1.5);
  // Before any frame the box of a calm sea runs from 25 m down to 0.
  EXPECT_EQ(sea->length.z, 25.0);
  EXPECT_EQ(sea->box_centre.z, -12.5);
}

// Which objects a ray reflected from under the water may look for: those
// above the sea's own height, truncated to whole metres.
TEST(OceanAbove, ObjectAtTheSeasTruncatedHeightCountsAsBelow) {
  Scratch_folder folder;
  // This sea runs frames: its spectrum is generated into the folder.
  put_file(folder.file("sea.ocean"),
           replaced(custom_ocean(), "spectrum_file: sea.spectrum\ngenerate_file:  no\n",
                    "spectrum_file: " + folder.file("sea.spectrum") +
                        "\ngenerate_file:  yes\nrandom_seed 5\n"));
  put_file(folder.file("b.box"),
           "Tidecast_data_file box 1 1\nlength_x:  1\nlength_y:  1\nlength_z:  1\n"
           "number_of_bands: 1\nband_id: 1\nradiance: 0.5\nreflectivity: 0.1\n"
           "transmissivity: 0\nend\n");
  auto object = [&](const char* name, const char* kind, const std::string& file, double z) {
    std::ostringstream text;
    text << "number_of_times 1\ntime x y z chi phi theta\n0 0 0 " << z << " 0 0 0\n"
         << "object_name: " << name << "\nobject_type: " << kind << "\nobject_file: " << file
         << "\npriority: 1\n";
    return text.str();
  };
  // The sea stands at z 0.7, which truncates to 0.
  const std::string list_text =
      "number_of_bands: 1\nwidth center_wavelength band_id \n1 0.55 0.1\nsun_flag: 0\n"
      "number_of_objects: 4\n" +
      object("sea", "ocean", folder.file("sea.ocean"), 0.7) +
      object("level", "box", folder.file("b.box"), 0.0) +
      object("over", "box", folder.file("b.box"), 0.25) +
      object("under", "box", folder.file("b.box"), -3.0) + "number_of_cameras: 0\n";
  TCObject_list_input input;
  TCObject_list list;
  int needs_updates = 0;
  {
    std::istringstream in(list_text);
    Stream_capture quiet(std::cout);
    ASSERT_EQ(input.read_list(in), 1);
    ASSERT_EQ(list.build(input, needs_updates), 1);
  }
  TCOcean* sea = dynamic_cast<TCOcean*>(list.objects[0]);
  ASSERT_NE(sea, nullptr);
  {
    Stream_capture quiet(std::cout);
    for (int i = 0; i < list.n_objects; i++) list.objects[i]->set_time(2.0);
    for (int i = 0; i < list.n_objects; i++) list.objects[i]->prepare_frame();
  }
  // The sea itself, at 0.7, is above 0; the box at exactly 0 is not.
  EXPECT_EQ(sea->object_above[0], 1);
  EXPECT_EQ(sea->object_above[1], 0);
  EXPECT_EQ(sea->object_above[2], 1);
  EXPECT_EQ(sea->object_above[3], 0);
  // Slots with no object stay open.
  EXPECT_EQ(sea->object_above[4], 1);
  EXPECT_EQ(sea->table_level, 1);
}
