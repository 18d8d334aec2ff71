#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCObject_kinds.h"
#include "ocean_input.h"
#include "ocean_test_records.h"
#include "stream_capture.h"

namespace {

const double to_radians = 0.017453292519444445;

// The fixture of every section, read where its side files lie.
int read_full_fixture(ocean_input& ocean, std::string& printed) {
  Working_folder here(ocean_data_dir());
  EXPECT_TRUE(here.ok());
  Stream_capture out(std::cout);
  const int result = ocean.read_file("full_ocean.dat");
  printed = out.text();
  return result;
}

TEST(OceanInput, StartsAsAnOceanWithItsDefaults) {
  ocean_input ocean;
  EXPECT_EQ(ocean.type_code, TC_KIND_OCEAN);
  EXPECT_EQ(ocean.type_code, 13);
  EXPECT_STREQ(ocean.object_type, "ocean");
  EXPECT_STREQ(ocean.object_name, "ocean");
  EXPECT_EQ(ocean.number_aux_oceans, 0);
  EXPECT_EQ(ocean.n_disturbances, 0);
  EXPECT_EQ(ocean.disturbance(0), nullptr);
  EXPECT_EQ(ocean.box_depth, 20.0);
  EXPECT_EQ(ocean.reference_time, 0.0);
  EXPECT_EQ(ocean.variable_wind, 0);
  EXPECT_STREQ(ocean.wind_file, "ocean_wind_file.dat");
  EXPECT_EQ(ocean.ocean_spectrum_type, 103);
  EXPECT_EQ(ocean.glassy_scale, 0.0);
  EXPECT_EQ(ocean.jerlov_water_type, 3);
  EXPECT_EQ(ocean.external_exact, 0);
  EXPECT_EQ(ocean.exact_sharpening_factor, 1.0);
  EXPECT_EQ(ocean.reflection_method, 0);
  EXPECT_EQ(ocean.shadow_method, 0);
  EXPECT_EQ(ocean.max_shadow_fraction, 1.0);
  EXPECT_EQ(ocean.shadow_distance, 99999999.0);
  EXPECT_EQ(ocean.glitter, 0);
  EXPECT_EQ(ocean.sharpening_type, 0);
  EXPECT_STREQ(ocean.sharpening_file, "sharpening_file.dat");
  EXPECT_EQ(ocean.sharpening_factor, 1.0);
  EXPECT_EQ(ocean.glitter_threshold, 0.0);
  EXPECT_EQ(ocean.saturation_type, 0);
  EXPECT_EQ(ocean.whitecaps, 0);
  EXPECT_STREQ(ocean.whitecap_file, "ocean_whitecaps_file.dat");
  EXPECT_STREQ(ocean.initial_state_file, "ocean_whitecaps_state.dat");
  EXPECT_STREQ(ocean.frame_file, "ocean_whitecaps_frame");
  EXPECT_EQ(ocean.texture_maps, 0);
  EXPECT_EQ(ocean.cusps, 0);
  EXPECT_EQ(ocean.cusps_scale, 0.0);
  EXPECT_EQ(ocean.exclude_mask, 0);
  EXPECT_EQ(ocean.render_disturbances_interior, 0);
  EXPECT_EQ(ocean.number_of_bands, 0);
  EXPECT_EQ(ocean.band_ids, nullptr);
  // The primary grid is the one whose lattice lines carry periodic flags.
  EXPECT_EQ(ocean.primary_grid.carries_periodicity, 1);
  EXPECT_EQ(ocean.secondary_grid.carries_periodicity, 0);
  EXPECT_EQ(ocean.primary_grid.parent_ocean, &ocean);
}

TEST(OceanInputBands, AllocatedBandsStartAtWaterIndexAndNoOptics) {
  ocean_input ocean;
  ASSERT_EQ(ocean.allocate_bands(3), 1);
  EXPECT_EQ(ocean.number_of_bands, 3);
  for (int i = 0; i < 3; i++) {
    EXPECT_EQ(ocean.band_ids[i], 0);
    EXPECT_EQ(ocean.index_of_refraction[i], 1.34);
    EXPECT_EQ(ocean.a[i], 0.0);
    EXPECT_EQ(ocean.b[i], 0.0);
    EXPECT_EQ(ocean.c[i], 0.0);
    EXPECT_EQ(ocean.k[i], 0.0);
    EXPECT_EQ(ocean.refl[i], 0.0);
  }
}

TEST(OceanInputBands, NegativeCountIsRefusedAndKeepsTheOldArrays) {
  ocean_input ocean;
  ASSERT_EQ(ocean.allocate_bands(2), 1);
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.allocate_bands(-1), 0);
  EXPECT_EQ(out.text(), "unable to allocate index of refraction array \n");
  EXPECT_EQ(ocean.number_of_bands, 2);
  EXPECT_NE(ocean.index_of_refraction, nullptr);
}

TEST(OceanInputDisturbances, AddAppendsRecordsOfTheKindsClassOwnedByTheOcean) {
  ocean_input ocean;
  TCGrid_details_input* first = ocean.add_disturbance(1);
  TCGrid_details_input* second = ocean.add_disturbance(-5);
  TCGrid_details_input* third = ocean.add_disturbance(0);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  ASSERT_NE(third, nullptr);
  EXPECT_EQ(ocean.n_disturbances, 3);
  EXPECT_EQ(ocean.disturbance(0), first);
  EXPECT_EQ(ocean.disturbance(1), second);
  EXPECT_EQ(ocean.disturbance(2), third);
  EXPECT_EQ(first->field_code, 1);
  EXPECT_EQ(second->field_code, -5);
  EXPECT_EQ(third->field_code, 0);
  EXPECT_EQ(second->parent_ocean, &ocean);
}

TEST(OceanInputDisturbances, ManyRecordsKeepTheirOrder) {
  ocean_input ocean;
  TCGrid_details_input* made[40];
  for (int i = 0; i < 40; i++) {
    made[i] = ocean.add_disturbance(1);
    ASSERT_NE(made[i], nullptr);
    made[i]->n_x = i;
  }
  ASSERT_EQ(ocean.n_disturbances, 40);
  for (int i = 0; i < 40; i++) EXPECT_EQ(ocean.disturbance(i), made[i]);
}

TEST(OceanInputDisturbances, RemoveUnlinksOneAndClosesTheGap) {
  ocean_input ocean;
  TCGrid_details_input* first = ocean.add_disturbance(1);
  TCGrid_details_input* second = ocean.add_disturbance(-7);
  TCGrid_details_input* third = ocean.add_disturbance(-3);
  EXPECT_EQ(ocean.remove_disturbance(second), 1);
  ASSERT_EQ(ocean.n_disturbances, 2);
  EXPECT_EQ(ocean.disturbance(0), first);
  EXPECT_EQ(ocean.disturbance(1), third);
  EXPECT_EQ(ocean.disturbance(2), nullptr);
  // A record the list does not hold, and null, change nothing.
  TCGrid_details_input stranger;
  EXPECT_EQ(ocean.remove_disturbance(&stranger), 0);
  EXPECT_EQ(ocean.remove_disturbance(nullptr), 0);
  EXPECT_EQ(ocean.n_disturbances, 2);
  ocean.clear_disturbances();
  EXPECT_EQ(ocean.n_disturbances, 0);
  EXPECT_EQ(ocean.disturbance(0), nullptr);
}

TEST(OceanInputRead, FullFixtureReadsEverySection) {
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_full_fixture(ocean, printed), 1) << printed;
  EXPECT_EQ(printed, "");

  EXPECT_EQ(ocean.primary_grid.n_x, 64);
  EXPECT_EQ(ocean.primary_grid.periodic_x, 1);
  EXPECT_EQ(ocean.primary_grid.n_y, 32);
  EXPECT_EQ(ocean.primary_grid.periodic_y, 0);
  EXPECT_EQ(ocean.primary_grid.dx, 2.5);
  EXPECT_EQ(ocean.primary_grid.dy, 3.0);
  EXPECT_STREQ(ocean.primary_grid.spectrum_file, "wind_sea.spectrum");
  EXPECT_EQ(ocean.primary_grid.generate_file, 1);
  EXPECT_EQ(ocean.primary_grid.random_seed, 4242);

  EXPECT_EQ(ocean.number_aux_oceans, 1);
  EXPECT_EQ(ocean.secondary_grid.n_x, 16);
  EXPECT_EQ(ocean.secondary_grid.n_y, 8);
  EXPECT_EQ(ocean.secondary_grid.dx, 10.0);
  EXPECT_EQ(ocean.secondary_grid.dy, 12.0);
  EXPECT_EQ(ocean.secondary_grid.generate_file, 0);
  // The further grid carries no flags of its own: it takes the primary's.
  EXPECT_EQ(ocean.secondary_grid.periodic_x, 1);
  EXPECT_EQ(ocean.secondary_grid.periodic_y, 0);

  ASSERT_EQ(ocean.n_disturbances, 2);
  EXPECT_EQ(ocean.render_disturbances_interior, 2);
  EXPECT_EQ(ocean.disturbance(0)->field_code, 1);
  EXPECT_EQ(ocean.disturbance(0)->n_x, 8);
  EXPECT_EQ(ocean.disturbance(0)->dy, 0.5);
  EXPECT_EQ(ocean.disturbance(0)->random_seed, 7);
  EXPECT_EQ(ocean.disturbance(1)->field_code, 0);
  EXPECT_STREQ(ocean.disturbance(1)->spectrum_file, "patch.spectrum");

  EXPECT_EQ(ocean.box_depth, 35.0);
  EXPECT_EQ(ocean.reference_time, 12.5);
  EXPECT_EQ(ocean.round_surface, 1);
  EXPECT_EQ(ocean.surface_radius, 6371000.0);
  EXPECT_EQ(ocean.max_distance, 8000.0);
  EXPECT_EQ(ocean.doubling_distance, 250.0);

  EXPECT_EQ(ocean.variable_wind, 1);
  EXPECT_STREQ(ocean.wind_file, "full_ocean_wind.dat");
  ASSERT_EQ(ocean.n_wind_values, 3);
  EXPECT_EQ(ocean.wind_time[1], 60.0);
  EXPECT_EQ(ocean.wind_speed[1], 7.5);
  EXPECT_EQ(ocean.wind_direction_series[1], 45 * to_radians);
  EXPECT_EQ(ocean.wind_direction_series[2], 90 * to_radians);

  EXPECT_EQ(ocean.ocean_spectrum_type, 104);
  EXPECT_EQ(ocean.glassy_scale, 0.02);
  EXPECT_EQ(ocean.jerlov_water_type, 0);

  EXPECT_EQ(ocean.external_exact, 1);
  EXPECT_EQ(ocean.max_exact_distance, 400.0);
  EXPECT_EQ(ocean.exact_sharpening_factor, 1.5);
  EXPECT_EQ(ocean.include, 1);
  EXPECT_EQ(ocean.reflection_method, 1);
  EXPECT_EQ(ocean.shadow_method, 1);
  EXPECT_EQ(ocean.max_shadow_fraction, 0.75);
  EXPECT_EQ(ocean.shadow_distance, 600.0);

  EXPECT_EQ(ocean.glitter, 200);
  EXPECT_EQ(ocean.sharpening_type, 1);
  EXPECT_STREQ(ocean.sharpening_file, "full_ocean_sharpening.dat");
  ASSERT_EQ(ocean.n_sharpening_angles, 2);
  EXPECT_EQ(ocean.sharpening_angle[1], 60 * to_radians);
  EXPECT_EQ(ocean.sharpening_value[1], 2.5);
  EXPECT_EQ(ocean.glitter_threshold, 0.001);
  EXPECT_EQ(ocean.saturation_type, 1);

  EXPECT_EQ(ocean.whitecaps, 1);
  EXPECT_STREQ(ocean.whitecap_file, "full_ocean_whitecaps.dat");
  EXPECT_EQ(ocean.whitecap_center_x, 100.0);
  EXPECT_EQ(ocean.fluctuation_mode, 1);
  EXPECT_EQ(ocean.fluctuation_seed, 99);

  EXPECT_EQ(ocean.texture_maps, 1);
  EXPECT_EQ(ocean.textures.active, 1);
  ASSERT_EQ(ocean.textures.n_textures, 1);
  EXPECT_STREQ(ocean.textures.textures[0].picture_file, "slick.rgb");
  EXPECT_EQ(ocean.textures.above_flag[0], 2);
  EXPECT_EQ(ocean.textures.textures[0].max_above[1], 20.0);

  EXPECT_EQ(ocean.cusps, 1);
  EXPECT_EQ(ocean.cusps_scale, 0.3);
  EXPECT_EQ(ocean.exclude_mask, 1 | 4);

  ASSERT_EQ(ocean.number_of_bands, 2);
  EXPECT_EQ(ocean.band_ids[0], 3);
  EXPECT_EQ(ocean.band_ids[1], 5);
  EXPECT_EQ(ocean.index_of_refraction[0], 1.33);
  EXPECT_EQ(ocean.index_of_refraction[1], 1.34);
  EXPECT_EQ(ocean.a[1], 0.2);
  EXPECT_EQ(ocean.b[0], 0.01);
  EXPECT_EQ(ocean.c[1], 0.22);
  EXPECT_EQ(ocean.k[0], 0.05);
  EXPECT_EQ(ocean.refl[1], 0.01);
  EXPECT_EQ(ocean.saturation_band, 1);
  EXPECT_EQ(ocean.saturation_threshold, 0.9);
  ASSERT_EQ(ocean.n_saturation_values, 2);
  EXPECT_EQ(ocean.sub_saturation_scale[1], 0.25);
  EXPECT_EQ(ocean.saturation_values[0], 100.0);
}

TEST(OceanInputRead, PlainFileReadsWithASteadyWindInRadians) {
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, plain_ocean(5), printed), 1) << printed;
  EXPECT_EQ(printed, "");
  EXPECT_EQ(ocean.primary_grid.n_x, 32);
  EXPECT_EQ(ocean.primary_grid.n_y, 16);
  EXPECT_EQ(ocean.box_depth, 25.0);
  EXPECT_EQ(ocean.reference_time, 1.5);
  EXPECT_EQ(ocean.round_surface, 0);
  EXPECT_EQ(ocean.surface_radius, 0.0);
  EXPECT_EQ(ocean.variable_wind, 0);
  EXPECT_EQ(ocean.wind_direction, 30 * to_radians);
  EXPECT_EQ(ocean.wind_velocity, 8.0);
  EXPECT_EQ(ocean.ocean_spectrum_type, 103);
  EXPECT_EQ(ocean.glitter, 1);
  EXPECT_EQ(ocean.number_of_bands, 1);
  EXPECT_EQ(ocean.band_ids[0], 7);
  EXPECT_EQ(ocean.index_of_refraction[0], 1.33);
  // Water type 3: the optics are not on file and stay as allocated.
  EXPECT_EQ(ocean.a[0], 0.0);
}

// ---- The edge cases of the format ----

TEST(OceanInputEdgeCases, MisspeltKeywordChangesNothing) {
  ocean_input ocean;
  std::string printed;
  std::string text = replaced(plain_ocean(5), "box_depth  25", "bax_dapth  25");
  text = replaced(text, "wind_velocity:", "wind_speed_typo:");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(printed, "");
  EXPECT_EQ(ocean.box_depth, 25.0);
  EXPECT_EQ(ocean.wind_velocity, 8.0);
}

TEST(OceanInputEdgeCases, MissingValueShiftsTheRestAndIsFoundAtTheEnd) {
  ocean_input ocean;
  std::string printed;
  // Without its value the keyword of the next line is taken for the depth,
  // fails as a number, and the stream stops there.
  const std::string text = replaced(plain_ocean(5), "box_depth  25\n", "box_depth\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed, "ocean input file is invalid, read reference_time instead of end\n");
}

TEST(OceanInputEdgeCases, MissingValueBeforeTheEndIsFoundByTheEnd) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(5), "index_of_refraction:  1.33\n", "index_of_refraction:\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  // The word "end" was taken for the missing number and failed there.
  EXPECT_EQ(printed, "ocean input file is invalid, read end instead of end\n");
}

TEST(OceanInputEdgeCases, NoDisturbancesReadNoInteriorLine) {
  ocean_input ocean;
  ocean.render_disturbances_interior = 2;  // left from an earlier file
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, plain_ocean(5), printed), 1) << printed;
  EXPECT_EQ(ocean.n_disturbances, 0);
  EXPECT_EQ(ocean.render_disturbances_interior, 0);
}

TEST(OceanInputEdgeCases, OneDisturbanceInVersionThreeReadsNoInteriorLineAndIsBlack) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(3), "number_disturbances  0\n",
               "number_disturbances  1\ndisturbance_type:  yes\n" + grid_block(8, 8, "d.spectrum"));
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(printed, "");
  ASSERT_EQ(ocean.n_disturbances, 1);
  EXPECT_EQ(ocean.disturbance(0)->n_x, 8);
  EXPECT_EQ(ocean.render_disturbances_interior, 0);
}

TEST(OceanInputEdgeCases, VersionFourReadsTheInteriorLineBeforeTheDisturbances) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(4), "number_disturbances  0\n",
                                    "number_disturbances  1\nrender_disturbances_interior:  flat\n"
                                    "disturbance_type:  no\n" +
                                        grid_block(4, 2, "d.spectrum"));
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.render_disturbances_interior, 1);
  ASSERT_EQ(ocean.n_disturbances, 1);
  EXPECT_EQ(ocean.disturbance(0)->field_code, 0);
}

TEST(OceanInputEdgeCases, FlatSpectrumWordIsInTheTableAndRefusedAllTheSame) {
  for (const char* word : {"flat", "dp"}) {
    ocean_input ocean;
    std::string printed;
    const std::string text = replaced(plain_ocean(5), "phillips_smoothed", word);
    EXPECT_EQ(read_ocean_text(ocean, text, printed), 0) << word;
    // A word of the table: no complaint about the word itself.
    EXPECT_EQ(printed, "non-phillips ocean spectra not yet supported \n") << word;
  }
}

TEST(OceanInputEdgeCases, UnknownSpectrumWordIsNamedAndRefused) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "phillips_smoothed", "jonswap");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "Unrecognized surface waves type: jonswap\n"
            "non-phillips ocean spectra not yet supported \n");
}

TEST(OceanInputEdgeCases, PhillipsAndGlassyAreAccepted) {
  ocean_input phillips;
  std::string printed;
  ASSERT_EQ(
      read_ocean_text(phillips, replaced(plain_ocean(5), "phillips_smoothed", "phillips"), printed),
      1)
      << printed;
  EXPECT_EQ(phillips.ocean_spectrum_type, 101);
  ocean_input glassy;
  ASSERT_EQ(
      read_ocean_text(
          glassy, replaced(plain_ocean(5), "phillips_smoothed\n", "glassy\nglassy_scale:  0.125\n"),
          printed),
      1)
      << printed;
  EXPECT_EQ(glassy.ocean_spectrum_type, 104);
  EXPECT_EQ(glassy.glassy_scale, 0.125);
}

TEST(OceanInputEdgeCases, GlitterYesAndExactReadNoSharpeningThresholdOrSaturation) {
  for (const char* word : {"yes", "exact"}) {
    ocean_input ocean;
    ocean.sharpening_factor = 4.0;
    ocean.glitter_threshold = 0.5;
    std::string printed;
    const std::string text =
        replaced(plain_ocean(5), "glitter:  yes", std::string("glitter:  ") + word);
    ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << word << printed;
    EXPECT_EQ(ocean.glitter, word[0] == 'y' ? 1 : 202);
    EXPECT_EQ(ocean.sharpening_type, 0);
    EXPECT_EQ(ocean.sharpening_factor, 4.0);
    EXPECT_EQ(ocean.glitter_threshold, 0.5);
    EXPECT_EQ(ocean.saturation_type, 0);
  }
}

TEST(OceanInputEdgeCases, EnhancedGlitterReadsFactorThresholdAndSaturationSwitch) {
  for (const char* word : {"enhanced", "exactenhanced"}) {
    ocean_input ocean;
    std::string printed;
    const std::string text =
        replaced(plain_ocean(5), "glitter:  yes\n",
                 std::string("glitter:  ") + word +
                     "\nsharpening_type:   no\nsharpening_factor:  2.5\nglitter_threshold:  0.01\n"
                     "saturation_type:   no\n");
    ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << word << printed;
    EXPECT_EQ(ocean.glitter, word[0] == 'e' && word[1] == 'n' ? 200 : 201);
    EXPECT_EQ(ocean.sharpening_type, 0);
    EXPECT_EQ(ocean.sharpening_factor, 2.5);
    EXPECT_EQ(ocean.glitter_threshold, 0.01);
    EXPECT_EQ(ocean.saturation_type, 0);
  }
}

TEST(OceanInputEdgeCases, ExternalYesWithIncludeNothingEndsWithoutCouplingButReadsItsLines) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "external_exact:  no\n",
                                    "external_exact:  yes\n"
                                    "max_exact_distance:  300\n"
                                    "exact_sharpening_factor:  2\n"
                                    "include:  nothing\n"
                                    "reflection_method:  total\n"
                                    "shadow_method:  yes\n"
                                    "max_shadow_fraction:  0.5\n"
                                    "shadow_distance:  40\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.external_exact, 0);
  EXPECT_EQ(ocean.include, 0);
  EXPECT_EQ(ocean.max_exact_distance, 300.0);
  EXPECT_EQ(ocean.exact_sharpening_factor, 2.0);
  EXPECT_EQ(ocean.reflection_method, 2);
  EXPECT_EQ(ocean.shadow_method, 1);
  EXPECT_EQ(ocean.max_shadow_fraction, 0.5);
  EXPECT_EQ(ocean.shadow_distance, 40.0);
}

TEST(OceanInputEdgeCases, ExternalYesWithIncludeNothingWithoutItsLinesFails) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "external_exact:  no\n",
                                    "external_exact:  yes\ninclude:  nothing\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_NE(printed.find("ocean input file is invalid, read "), std::string::npos) << printed;
}

TEST(OceanInputEdgeCases, ExternalNoClearsIncludeAndDistance) {
  ocean_input ocean;
  ocean.include = 3;
  ocean.max_exact_distance = 70.0;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, plain_ocean(5), printed), 1) << printed;
  EXPECT_EQ(ocean.external_exact, 0);
  EXPECT_EQ(ocean.include, 0);
  EXPECT_EQ(ocean.max_exact_distance, 0.0);
}

TEST(OceanInputEdgeCases, VersionOneHasNoWhitecapOrTextureLines) {
  ocean_input ocean;
  ocean.whitecaps = 1;  // left from an earlier file
  ocean.texture_maps = 1;
  std::string printed;
  const std::string text = plain_ocean(1);
  ASSERT_EQ(text.find("whitecaps"), std::string::npos);
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(printed, "");
  EXPECT_EQ(ocean.whitecaps, 0);
  EXPECT_EQ(ocean.texture_maps, 0);
}

TEST(OceanInputEdgeCases, SaturationBandOneOfTheFileIsBandIndexZero) {
  ocean_input ocean;
  std::string printed;
  std::string text = replaced(plain_ocean(5), "glitter:  yes\n",
                              "glitter:  enhanced\nsharpening_type:   no\n"
                              "sharpening_factor:  1\nglitter_threshold:  0\n"
                              "saturation_type:   yes\n");
  text = replaced(text, "index_of_refraction:  1.33\n",
                  "index_of_refraction:  1.33\n"
                  "saturation_band:  1\n"
                  "saturation_threshold:  0.8\n"
                  "sub_saturation_scale:  0.5\n"
                  "saturation_values:  30\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.saturation_type, 1);
  EXPECT_EQ(ocean.saturation_band, 0);
  EXPECT_EQ(ocean.saturation_threshold, 0.8);
  ASSERT_EQ(ocean.n_saturation_values, 1);
  EXPECT_EQ(ocean.sub_saturation_scale[0], 0.5);
  EXPECT_EQ(ocean.saturation_values[0], 30.0);
}

TEST(OceanInputEdgeCases, TwoAdditionalOceansStillReadOneSecondaryStream) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(5), "number_aux_oceans  0\n",
               "number_aux_oceans  2\nn_points_x 8\nn_points_y 4\ndx 10\ndy 20\n"
               "spectrum_file: far.spectrum\ngenerate_file:  no\nend\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.number_aux_oceans, 2);
  EXPECT_EQ(ocean.secondary_grid.n_x, 8);
  EXPECT_EQ(ocean.secondary_grid.dy, 20.0);
  EXPECT_STREQ(ocean.secondary_grid.spectrum_file, "far.spectrum");
}

// ---- Version rules ----

TEST(OceanInputVersions, VersionTwoHasNoExactSharpeningFactorAndNoExclusions) {
  ocean_input ocean;
  ocean.exact_sharpening_factor = 9.0;
  std::string printed;
  const std::string text = replaced(plain_ocean(2), "external_exact:  no\n",
                                    "external_exact:  yes_no_air\n"
                                    "max_exact_distance:  120\n"
                                    "include:  everything\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.external_exact, 3);
  EXPECT_EQ(ocean.max_exact_distance, 120.0);
  EXPECT_EQ(ocean.exact_sharpening_factor, 1.0);
  EXPECT_EQ(ocean.include, 3);
}

TEST(OceanInputVersions, BeforeVersionFiveExactRaysAreSpecularWithoutShadows) {
  ocean_input ocean;
  ocean.reflection_method = 2;
  ocean.shadow_method = 1;
  ocean.max_shadow_fraction = 0.1;
  ocean.shadow_distance = 3.0;
  std::string printed;
  const std::string text = replaced(plain_ocean(4), "external_exact:  no\n",
                                    "external_exact:  yes\n"
                                    "max_exact_distance:  120\n"
                                    "exact_sharpening_factor:  3\n"
                                    "include:  below\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.exact_sharpening_factor, 3.0);
  EXPECT_EQ(ocean.include, 2);
  EXPECT_EQ(ocean.reflection_method, 0);
  EXPECT_EQ(ocean.shadow_method, 0);
  EXPECT_EQ(ocean.max_shadow_fraction, 1.0);
  EXPECT_EQ(ocean.shadow_distance, 99999999.0);
}

TEST(OceanInputVersions, VersionFiveWithoutShadowReadsNoShadowLines) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "external_exact:  no\n",
                                    "external_exact:  yes\n"
                                    "max_exact_distance:  120\n"
                                    "exact_sharpening_factor:  3\n"
                                    "include:  above\n"
                                    "reflection_method:  specular\n"
                                    "shadow_method:  no\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.external_exact, 1);
  EXPECT_EQ(ocean.reflection_method, 0);
  EXPECT_EQ(ocean.shadow_method, 0);
  EXPECT_EQ(ocean.max_shadow_fraction, 1.0);
}

TEST(OceanInputVersions, BeforeVersionFourThereIsNoExcludeLine) {
  ocean_input ocean;
  ocean.exclude_mask = 7;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, plain_ocean(3), printed), 1) << printed;
  EXPECT_EQ(ocean.exclude_mask, 0);
}

TEST(OceanInputVersions, FileNeedingANewerReaderIsRefused) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "ocean 5 5", "ocean 7 7");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  // The header fails silently; the ocean's line is the only one.
  EXPECT_EQ(printed, "unable to process ocean file \n");
}

TEST(OceanInputVersions, NewerFileReadableByThisReaderReadsAsTheNewest) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "ocean 5 5", "ocean 6 5");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
}

TEST(OceanInputVersions, FileReadableByAVersion6ReaderIsAccepted) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "ocean 5 5", "ocean 6 6");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
}

TEST(OceanInputVersions, WrongTypeWordIsRefusedAfterTheHeadersLines) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "ocean 5 5", "skydome 5 5");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "file type skydome is not of \n"
            "expected type ocean\n"
            "unable to process ocean file \n");
}

// ---- Other sections and their messages ----

TEST(OceanInputRead, RoundSurfaceReadsItsRadius) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "surface_type:  flat\n",
                                    "surface_type:  round\nsurface_radius:  5000\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.round_surface, 1);
  EXPECT_EQ(ocean.surface_radius, 5000.0);
}

TEST(OceanInputRead, SurfaceWordOtherThanRoundIsFlatWithNoRadius) {
  ocean_input ocean;
  ocean.surface_radius = 77.0;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "surface_type:  flat", "surface_type:  Round");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.round_surface, 0);
  EXPECT_EQ(ocean.surface_radius, 0.0);
}

TEST(OceanInputRead, OnlyLowerCaseYesSwitchesAVariableWindOn) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "variable_wind:  no", "variable_wind:  Yes");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.variable_wind, 0);
  EXPECT_EQ(ocean.wind_velocity, 8.0);
}

TEST(OceanInputRead, JerlovTypesZeroToFiveAreAccepted) {
  for (int type = 1; type <= 5; type++) {
    ocean_input ocean;
    std::string printed;
    const std::string text = replaced(plain_ocean(5), "jerlov_water_type:  3",
                                      "jerlov_water_type:  " + std::to_string(type));
    ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << type << printed;
    EXPECT_EQ(ocean.jerlov_water_type, type);
  }
}

TEST(OceanInputRead, JerlovTypeZeroReadsTheOpticsOfEveryBand) {
  ocean_input ocean;
  std::string printed;
  std::string text = replaced(plain_ocean(5), "jerlov_water_type:  3", "jerlov_water_type:  0");
  text = replaced(text, "number_of_bands:  1\nband_ids:  7\nindex_of_refraction:  1.33\n",
                  "number_of_bands:  2\nband_ids:  7 8\nindex_of_refraction:  1.33 1.35\n"
                  "a: 1 2\nb: 3 4\nc: 5 6\nk: 7 8\nrefl: 9 10\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  ASSERT_EQ(ocean.number_of_bands, 2);
  EXPECT_EQ(ocean.a[0], 1.0);
  EXPECT_EQ(ocean.a[1], 2.0);
  EXPECT_EQ(ocean.b[1], 4.0);
  EXPECT_EQ(ocean.c[0], 5.0);
  EXPECT_EQ(ocean.k[1], 8.0);
  EXPECT_EQ(ocean.refl[0], 9.0);
}

TEST(OceanInputRead, JerlovTypeOutsideZeroToFiveIsRefused) {
  for (int type : {-1, 6}) {
    ocean_input ocean;
    std::string printed;
    const std::string text = replaced(plain_ocean(5), "jerlov_water_type:  3",
                                      "jerlov_water_type:  " + std::to_string(type));
    EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
    EXPECT_EQ(printed, "jerlov water type " + std::to_string(type) + " not yet supported\n");
  }
}

TEST(OceanInputRead, ExcludedItemsAreOredIntoTheMask) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "exclude_items:   no\n",
                                    "exclude_items:  yes\nnumber_of_items: 3\n"
                                    "textures whitecaps glitter\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.exclude_mask, 7);
}

TEST(OceanInputRead, ExcludeCountOutsideOneToThreeIsRefused) {
  for (int count : {0, 4, -2}) {
    ocean_input ocean;
    std::string printed;
    const std::string text =
        replaced(plain_ocean(5), "exclude_items:   no\n",
                 "exclude_items:  yes\nnumber_of_items: " + std::to_string(count) + "\nglitter\n");
    EXPECT_EQ(read_ocean_text(ocean, text, printed), 0) << count;
    EXPECT_EQ(printed, "unable to exclude items from ocean texture\n") << count;
  }
}

TEST(OceanInputRead, UnknownExcludedItemStopsTheRead) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "exclude_items:   no\n",
                                    "exclude_items:  yes\nnumber_of_items: 2\nglitter\nsunbeams\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed, "sunbeams is invalid item to exclude - cannot continue\n");
}

TEST(OceanInputRead, BandCountBelowOneIsRefused) {
  for (int count : {0, -3}) {
    ocean_input ocean;
    std::string printed;
    const std::string text = replaced(plain_ocean(5), "number_of_bands:  1",
                                      "number_of_bands:  " + std::to_string(count));
    EXPECT_EQ(read_ocean_text(ocean, text, printed), 0) << count;
    EXPECT_EQ(printed, "number of bands must be positive \n") << count;
  }
}

TEST(OceanInputRead, CuspsYesReadsItsScale) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(5), "sunbeams:  no\n", "cusps:   yes\ncusps_scale:  0.75\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.cusps, 1);
  EXPECT_EQ(ocean.cusps_scale, 0.75);
}

TEST(OceanInputRead, ClosingWordOtherThanEndIsNamed) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "1.33\nend\n", "1.33\nfinish\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed, "ocean input file is invalid, read finish instead of end\n");
}

TEST(OceanInputRead, BadPrimaryGridIsReportedByTheGridAndTheOcean) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "random_seed 5\nend\n", "random_seed 5\nfin\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "grid input file is invalid, read fin instead of end\n"
            "unable to process primary grid \n");
}

TEST(OceanInputRead, BadSecondaryGridIsReportedByTheGridAndTheOcean) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(5), "number_aux_oceans  0\n",
               "number_aux_oceans  1\nn_points_x 8\nn_points_y 4\ndx 10\n"
               "dy 20\nspectrum_file: far.spectrum\ngenerate_file:  no\nstop\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "grid input file is invalid, read stop instead of end\n"
            "unable to process secondary grid \n");
}

TEST(OceanInputRead, BadDisturbanceBlockNamesItsKindWord) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "number_disturbances  0\n",
                                    "number_disturbances  1\nrender_disturbances_interior:  black\n"
                                    "disturbance_type:  yes\nn_points_x 4 n_points_y 4 dx 1 dy 1 "
                                    "spectrum_file: s generate_file: no over\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "grid input file is invalid, read over instead of end\n"
            "unable to process disturbance stream of yes\n");
}

TEST(OceanInputRead, UnknownDisturbanceWordLeavesABaseRecordOfCodeZero) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "number_disturbances  0\n",
                                    "number_disturbances  1\nrender_disturbances_interior:  black\n"
                                    "disturbance_type:  tsunami\n" +
                                        grid_block(4, 4, "t.spectrum"));
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(printed, "illegal ocean type tsunami\n");
  ASSERT_EQ(ocean.n_disturbances, 1);
  EXPECT_EQ(ocean.disturbance(0)->field_code, 0);
}

TEST(OceanInputRead, ReadingAgainReplacesTheDisturbances) {
  ocean_input ocean;
  std::string printed;
  const std::string two =
      replaced(plain_ocean(5), "number_disturbances  0\n",
               "number_disturbances  2\nrender_disturbances_interior:  black\n"
               "disturbance_type:  yes\n" +
                   grid_block(4, 4, "a") + "disturbance_type:  yes\n" + grid_block(2, 2, "b"));
  ASSERT_EQ(read_ocean_text(ocean, two, printed), 1) << printed;
  ASSERT_EQ(ocean.n_disturbances, 2);
  ASSERT_EQ(read_ocean_text(ocean, plain_ocean(5), printed), 1) << printed;
  EXPECT_EQ(ocean.n_disturbances, 0);
}

TEST(OceanInputRead, MissingFileIsNamed) {
  ocean_input ocean;
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.read_file("/nonexistent/tidecast/ocean.dat"), 0);
  EXPECT_EQ(out.text(), "unable to open ocean input file /nonexistent/tidecast/ocean.dat\n");
}

TEST(OceanInputRead, FailedFileIsNamedAfterTheReadersLine) {
  Working_folder here(ocean_data_dir());
  ASSERT_TRUE(here.ok());
  ocean_input ocean;
  Stream_capture out(std::cout);
  // A side file is no ocean file.
  EXPECT_EQ(ocean.read_file("full_ocean_wind.dat"), 0);
  EXPECT_EQ(out.text(),
            "incorrect header number_of_times: in data file\n"
            "expected string Tidecast_data_file \n"
            "unable to process ocean file \n"
            "unable to process ocean file full_ocean_wind.dat\n");
}

}  // namespace
