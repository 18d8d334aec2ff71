// What the sea prints about itself, byte for byte: each line's text, then
// its values one space apart, doubles as a plain stream writes them.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "TCOcean.h"
#include "Wall_details_input.h"
#include "ocean_input.h"
#include "ocean_object_records.h"
#include "scratch_folder.h"

namespace {

// The parameters of the small sea, in blocks that the tests replace.
struct Printed_sea {
  std::string surface = "surface type:           FLAT\n";
  std::string waves = "surface waves:  yes \n";
  std::string coupling = "external coupling:     AIR_ONLY\n";
  std::string optics = "";
  std::string fields = "";
  std::string walls = "";
  std::string glitter = "glitter: off\n";
  std::string whitecaps = "whitecaps: off \n";
  std::string cusps = "cusps: off\n";

  std::string text() const {
    return "     OCEAN \n" + surface + waves +
           "maximum distance        1000\n"
           "wind velocity:          8\n"
           "wind direction:         30\n" +
           coupling + optics +
           "  FIRST OCEAN GRID\n"
           "lattice size:           16 8\n"
           "lattice spacing:        2 2\n"
           "periodicity:           1 1\n" +
           fields + walls + glitter + whitecaps + cusps;
  }
};

// Constructs the sea of input quietly and gives what it prints; expect_built
// says whether construction should succeed.
std::string printed_sea(const ocean_input& input, int expect_built = 1) {
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  EXPECT_EQ(construct_quietly(ocean, input, printed), expect_built) << printed;
  return printed_parameters(ocean);
}

TEST(OceanParameters, PlainSea) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  EXPECT_EQ(printed_sea(input), Printed_sea().text());
}

TEST(OceanParameters, RoundSurfaceGivesItsRadius) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.round_surface = 1;
  input.surface_radius = 6371000.0;
  Printed_sea expected;
  expected.surface =
      "surface type:           ROUND\n"
      "radius:                      6.371e+06\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

TEST(OceanParameters, EachSpectrumTypeHasItsLine) {
  const int types[4] = {0, 101, 103, 104};
  const char* const lines[4] = {"surface waves:              NO\n",
                                "surface waves:              PHILLIPS\n", "surface waves:  yes \n",
                                "surface waves: glassy \n"};
  for (int t = 0; t < 4; t++) {
    Scratch_folder folder;
    ocean_input input;
    small_sea(input, folder);
    input.ocean_spectrum_type = types[t];
    Printed_sea expected;
    expected.waves = lines[t];
    EXPECT_EQ(printed_sea(input), expected.text()) << types[t];
  }
}

TEST(OceanParameters, ExactCouplingGivesItsSharpening) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.external_exact = 1;
  input.include = 3;
  input.max_exact_distance = 400.0;
  input.exact_sharpening_factor = 2.5;
  Printed_sea expected;
  expected.coupling =
      "external coupling:     EXACT\n"
      "external_sharpening:  2.5\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

TEST(OceanParameters, ExternalExactThreePrintsAsExact) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.external_exact = 3;
  input.include = 1;
  input.exact_sharpening_factor = 0.75;
  Printed_sea expected;
  expected.coupling =
      "external coupling:     EXACT\n"
      "external_sharpening:  0.75\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

TEST(OceanParameters, VerboseAddsTheOpticsOfEveryBand) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  two_bands(input);
  TCOcean ocean(input);
  std::string printed;
  {
    Verbose_as quiet(0);
    ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  }
  Printed_sea expected;
  expected.optics =
      "     optical properties \n"
      " a 0.1 0.2\n"
      " b 0.01 0.02\n"
      " c 0.11 0.22\n"
      " k 0.05 0.06\n"
      " effective reflection 0.02 0.025\n";
  Verbose_as loud(1);
  EXPECT_EQ(printed_parameters(ocean), expected.text());
}

TEST(OceanParameters, AFurtherOceanGrid) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.number_aux_oceans = 1;
  Printed_sea expected;
  expected.fields =
      "  ADDITIONAL OCEAN GRID :\n"
      "lattice size:           8 8\n"
      "lattice spacing:        8 8\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

TEST(OceanParameters, SwellHeightAndMultiplierGrids) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  write_small_grid(folder.file("h.hdf"), 0.0f, 0.1f);
  const double t[1] = {0.0}, s[1] = {1.0};
  add_swell(input, folder, "swell.spectrum", 8, 3.0);
  add_map(input, -7, folder.file("h.hdf"), 1.0, 2.0, 0.0, 0.0, 0.0, 1, t, s);
  add_map(input, -8, folder.file("h.hdf"), 1.0, 2.0, 0.0, 0.0, 0.0, 1, t, s);
  Printed_sea expected;
  expected.fields =
      "  SWELL GRID\n"
      "swell lattice size:           8 8\n"
      "swell lattice spacing:        3 3\n"
      "  HEIGHT GRID \n"
      "grid lattice size:           4 3\n"
      "grid lattice spacing:        1 1\n"
      "  MULTIPLIER GRID \n"
      "grid lattice size:           4 3\n"
      "grid lattice spacing:        1 1\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

// These kinds stop construction (they have no field class yet) after the
// table is filled, so the table still prints.
TEST(OceanParameters, ReflectingDeformingRippleWakeAndBoatGrids) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  add_kind(input, -1, 32, 16, 1.0, 0.5);
  add_kind(input, -2, 10, 12, 0.25, 0.25);
  add_kind(input, -4, 128, 128, 0.125, 0.125);
  add_kind(input, -6, 64, 32, 1.5, 1.5);
  add_kind(input, -9, 48, 24, 0.75, 0.75);
  Printed_sea expected;
  expected.fields =
      "  REFLECTING GRID\n"
      "reflecting lattice size:           32 16\n"
      "reflecting lattice spacing:        1 0.5\n"
      "  DEFORMING GRID\n"
      "deforming lattice size:           10 12\n"
      "deforming lattice spacing:        0.25 0.25\n"
      " RIPPLE GRID\n"
      "ripple lattice size:           128 1\n"
      "ripple lattice spacing:        0.125 0.125\n"
      "  WAKE GRID \n"
      "grid lattice size:           64 32\n"
      "grid lattice spacing:        1.5 1.5\n"
      "  BOAT GRID \n"
      "grid lattice size:           48 24\n"
      "grid lattice spacing:        0.75 0.75\n";
  EXPECT_EQ(printed_sea(input, 0), expected.text());
}

TEST(OceanParameters, WallsWithOriginAndOrientation) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  Wall_details_input* first = static_cast<Wall_details_input*>(input.add_disturbance(-3));
  first->position_x = 3.0;
  first->position_y = 4.0;
  first->angle = 0.5;
  Wall_details_input* second = static_cast<Wall_details_input*>(input.add_disturbance(-3));
  second->position_x = -1.5;
  second->position_y = 20.25;
  second->angle = 1.25;
  Printed_sea expected;
  expected.walls =
      "  REFLECTING WALL \n"
      "origin  3 4\n"
      "orientation 0.5\n"
      "  REFLECTING WALL \n"
      "origin  -1.5 20.25\n"
      "orientation 1.25\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

TEST(OceanParameters, GlitterOnExactAndEnhancedExact) {
  const int modes[3] = {1, 202, 201};
  // The enhanced-exact form is tested inside the enhanced branch and so
  // shows as off.
  const char* const lines[3] = {"glitter:                on\n", "glitter:                exact\n",
                                "glitter: off\n"};
  for (int m = 0; m < 3; m++) {
    Scratch_folder folder;
    ocean_input input;
    small_sea(input, folder);
    input.glitter = modes[m];
    Printed_sea expected;
    expected.glitter = lines[m];
    EXPECT_EQ(printed_sea(input), expected.text()) << modes[m];
  }
}

TEST(OceanParameters, EnhancedGlitterWithASharpeningFactor) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.glitter = 200;
  input.sharpening_factor = 3.0;
  input.glitter_threshold = 0.25;
  Printed_sea expected;
  expected.glitter =
      "glitter:                enhanced\n"
      "sharpening factor:     3\n"
      "threshold:             0.25\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

TEST(OceanParameters, EnhancedGlitterWithTheSharpeningTableAndSaturation) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  two_bands(input);
  input.glitter = 200;
  input.sharpening_type = 1;
  input.n_sharpening_angles = 2;
  input.sharpening_angle = new double[2]{10.0 * 0.017453292519444445, 40.0 * 0.017453292519444445};
  input.sharpening_value = new double[2]{1.5, 2.0};
  input.glitter_threshold = 0.25;
  input.saturation_type = 1;
  input.saturation_band = 1;
  input.saturation_threshold = 0.8;
  ASSERT_EQ(input.allocate_saturation(), 1);
  input.sub_saturation_scale[0] = 0.5;
  input.sub_saturation_scale[1] = 0.25;
  input.saturation_values[0] = 4.0;
  input.saturation_values[1] = 8.0;
  Printed_sea expected;
  expected.glitter =
      "glitter:                enhanced\n"
      "variable_sharpening\n"
      " angle  sharpening\n"
      "10 1.5\n"
      "40 2\n"
      "threshold:             0.25\n"
      "glitter saturated\n"
      "threshold value of          0.8\n"
      "on band #                   2\n"
      "sub saturation scaling: 0.5 0.25\n"
      "saturation values: 4 8\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

void foamy(ocean_input& input, int generation) {
  input.whitecaps = 1;
  input.whitecap_center_x = 10.0;
  input.whitecap_center_y = -20.0;
  input.whitecap_length_x = 300.0;
  input.whitecap_length_y = 400.0;
  input.whitecap_interval_x = 2.0;
  input.whitecap_interval_y = 2.5;
  input.whitecap_max_distance = 1000.0;
  input.whitecap_reference_time = 5.0;
  input.whitecap_time_increment = 0.5;
  input.whitecap_initialization_time = 20.0;
  input.whitecap_initialization_increment = 1.0;
  input.whitecap_formation_time = 0.3;
  input.whitecap_decay_time = 4.0;
  input.acceleration_threshold_low = 0.3;
  input.acceleration_threshold_high = 0.5;
  input.whitecap_reflectivity_low = 0.2;
  input.whitecap_reflectivity_high = 0.6;
  input.acceleration_time_offset = 0.1;
  input.whitecap_generation = generation;
  std::snprintf(input.initial_state_file, 256, "%s", "foam.state");
}

// floor(log2(2 * 1000 / 300)) + 2 = floor(2.74) + 2 = 4 grids.
const char* const whitecap_block =
    "whitecaps: on\n"
    "       whitecap parameters      \n"
    "  sampling region center:  10 -20\n"
    "  sampling region length:  300 400\n"
    "  sampling interval     :  2 2.5\n"
    "  number of grids       :  4\n"
    "  reference time:          5\n"
    "  evolution increment:     0.5\n"
    "  ramp up time:            20\n"
    "  ramp up increment:       1\n"
    "  formation time:          0.3\n"
    "  decay time:              4\n"
    "  thresholds:              0.3 0.5\n"
    "  reflectivities           0.2 0.6\n"
    "  acceleration_offset      0.1\n";

TEST(OceanParameters, WhitecapsReadingTheirStartingState) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  foamy(input, 1);
  Printed_sea expected;
  expected.whitecaps =
      std::string(whitecap_block) + "  inputting initial whitecap configuration from foam.state\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

TEST(OceanParameters, WhitecapsWritingTheirStartingState) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  foamy(input, -1);
  Printed_sea expected;
  expected.whitecaps =
      std::string(whitecap_block) + "  outputting initial whitecap configuration to foam.state\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

TEST(OceanParameters, CuspsOn) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.cusps = 1;
  input.cusps_scale = 0.4;
  Printed_sea expected;
  expected.cusps =
      "cusps:  on \n"
      "cuspy factor:  0.4\n";
  EXPECT_EQ(printed_sea(input), expected.text());
}

}  // namespace
