#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "ocean_input.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

const double to_radians = 0.017453292519444445;

// plain_ocean(5) as the writer lays it out.
const char* const plain_written =
    "Tidecast_data_file ocean 5 5\n"
    "n_points_x 32 1\n"
    "n_points_y 16 1\n"
    "dx 2\n"
    "dy 4\n"
    "spectrum_file: sea.spectrum\n"
    "generate_file:  yes \n"
    "random_seed 5\n"
    "end \n"
    "number_aux_oceans  0\n"
    "number_disturbances  0\n"
    "box_depth  25\n"
    "reference_time  1.5\n"
    "surface_type:  flat \n"
    "max_distance  1000\n"
    "doubling_distance  100\n"
    "variable_wind:  no \n"
    "wind_direction:  30\n"
    "wind_velocity:  8\n"
    "ocean_spectrum_type:  phillips_smoothed\n"
    "jerlov_water_type:  3\n"
    "external_exact:  no\n"
    "glitter:  yes\n"
    "whitecaps: no\n"
    "texture_maps:  no \n"
    "sunbeams:  no\n"
    "exclude_items:   no \n"
    "number_of_bands:  1\n"
    "band_ids:  7\n"
    "index_of_refraction:  1.33\n"
    "end \n";

void read_plain(ocean_input& ocean) {
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, plain_ocean(5), printed), 1) << printed;
}

std::string write_text(const ocean_input& ocean) {
  int result = 0;
  std::string printed;
  const std::string text = written_ocean(ocean, result, printed);
  EXPECT_EQ(result, 1) << printed;
  EXPECT_EQ(printed, "");
  return text;
}

// Writes ocean to a file of the folder, reads it back into again.
void write_and_read_back(const ocean_input& ocean, const Scratch_folder& folder,
                         ocean_input& again) {
  const std::string path = folder.file("written_ocean.dat");
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(const_cast<ocean_input&>(ocean).write_file(path.c_str()), 1) << out.text();
    EXPECT_EQ(out.text(), "");
  }
  Stream_capture out(std::cout);
  ASSERT_EQ(again.read_file(path.c_str()), 1) << out.text();
  EXPECT_EQ(out.text(), "");
}

TEST(OceanInputWrite, PlainRecordIsWrittenInTheCurrentForm) {
  ocean_input ocean;
  read_plain(ocean);
  EXPECT_EQ(write_text(ocean), plain_written);
}

TEST(OceanInputWrite, CuspsNoIsWrittenAsSunbeamsAndYesWithThreeBlanks) {
  ocean_input ocean;
  read_plain(ocean);
  EXPECT_NE(write_text(ocean).find("\nsunbeams:  no\n"), std::string::npos);
  ocean.cusps = 1;
  ocean.cusps_scale = 0.25;
  const std::string text = write_text(ocean);
  EXPECT_NE(text.find("\ncusps:   yes\ncusps_scale:  0.25\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("sunbeams"), std::string::npos);
}

TEST(OceanInputWrite, ExclusionsAreNeverWritten) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.exclude_mask = 7;
  EXPECT_EQ(write_text(ocean), plain_written);
}

TEST(OceanInputWrite, JerlovLineIsLeftOutForATypeOutsideZeroToFive) {
  for (int type : {-1, 6, 42}) {
    ocean_input ocean;
    read_plain(ocean);
    ocean.jerlov_water_type = type;
    const std::string text = write_text(ocean);
    EXPECT_EQ(text.find("jerlov_water_type"), std::string::npos) << type;
    EXPECT_NE(text.find("ocean_spectrum_type:  phillips_smoothed\nexternal_exact:  no\n"),
              std::string::npos)
        << type;
  }
}

TEST(OceanInputWrite, WaterTypeZeroWritesTheOpticsOfEveryBand) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.jerlov_water_type = 0;
  ASSERT_EQ(ocean.allocate_bands(2), 1);
  ocean.band_ids[0] = 4;
  ocean.band_ids[1] = 9;
  for (int i = 0; i < 2; i++) {
    ocean.a[i] = 0.5 + i;
    ocean.b[i] = 1.5 + i;
    ocean.c[i] = 2.5 + i;
    ocean.k[i] = 3.5 + i;
    ocean.refl[i] = 4.5 + i;
  }
  const std::string text = write_text(ocean);
  EXPECT_NE(text.find("jerlov_water_type:  0\n"), std::string::npos);
  EXPECT_NE(text.find("number_of_bands:  2\n"
                      "band_ids:  4 9\n"
                      "index_of_refraction:  1.34 1.34\n"
                      "a:  0.5 1.5\n"
                      "b:  1.5 2.5\n"
                      "c:  2.5 3.5\n"
                      "k:  3.5 4.5\n"
                      "refl:  4.5 5.5\n"
                      "end \n"),
            std::string::npos)
      << text;
}

TEST(OceanInputWrite, WindDirectionIsWrittenInDegreesByTheEnginesPi) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.wind_direction = 1.0;
  // 1.0 * 180.0 / 3.1415926535 with 15 digits; a library pi would give
  // 57.2957795130823.
  EXPECT_NE(write_text(ocean).find("wind_direction:  57.29577951472\n"), std::string::npos);
}

TEST(OceanInputWrite, RoundSurfaceAndVariableWindForms) {
  Scratch_folder folder;
  ocean_input ocean;
  read_plain(ocean);
  ocean.round_surface = 1;
  ocean.surface_radius = 6000;
  ocean.variable_wind = 1;
  const std::string wind = folder.file("wind.dat");
  copy_text(ocean.wind_file, wind.c_str(), 256);
  const std::string text = write_text(ocean);
  EXPECT_NE(text.find("surface_type:  round \nsurface_radius:  6000\n"), std::string::npos);
  EXPECT_NE(text.find("variable_wind:   yes \nwind_file:  " + wind + "\n"), std::string::npos);
  EXPECT_EQ(text.find("wind_direction"), std::string::npos);
}

TEST(OceanInputWrite, EnhancedGlitterFormsWithSaturationBandCountedFromOne) {
  Scratch_folder folder;
  ocean_input ocean;
  read_plain(ocean);
  ocean.glitter = 201;
  ocean.sharpening_factor = 2;
  ocean.glitter_threshold = 0.125;
  ocean.saturation_type = 1;
  ocean.saturation_band = 0;
  ocean.saturation_threshold = 0.5;
  ASSERT_EQ(ocean.allocate_saturation(), 1);
  ocean.sub_saturation_scale[0] = 0.25;
  ocean.saturation_values[0] = 40;
  std::string text = write_text(ocean);
  EXPECT_NE(text.find("glitter:  exactenhanced\n"
                      "sharpening_type:   no \n"
                      "sharpening_factor:  2\n"
                      "glitter_threshold:  0.125\n"
                      "saturation_type:   yes  \n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("index_of_refraction:  1.33\n"
                      "saturation_band:  1\n"
                      "saturation_threshold:  0.5\n"
                      "sub_saturation_scale:  0.25\n"
                      "saturation_values:  40\n"
                      "end \n"),
            std::string::npos)
      << text;

  ocean.saturation_type = 0;
  ocean.sharpening_type = 1;
  const std::string sharpening = folder.file("sharp.dat");
  copy_text(ocean.sharpening_file, sharpening.c_str(), 256);
  text = write_text(ocean);
  EXPECT_NE(text.find("sharpening_type:    yes\nsharpening_file:  " + sharpening +
                      "\nglitter_threshold:  0.125\nsaturation_type:   no  \n"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("saturation_band"), std::string::npos);
}

TEST(OceanInputWrite, PlainGlitterWritesNoSaturationLinesWhateverTheFlag) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.saturation_type = 1;
  ocean.sharpening_type = 1;
  EXPECT_EQ(write_text(ocean), plain_written);
}

TEST(OceanInputWrite, ExternalExactForms) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.external_exact = 3;
  ocean.max_exact_distance = 250;
  ocean.exact_sharpening_factor = 1.5;
  ocean.include = 2;
  ocean.reflection_method = 0;
  ocean.shadow_method = 1;
  ocean.max_shadow_fraction = 0.25;
  ocean.shadow_distance = 80;
  EXPECT_NE(write_text(ocean).find("external_exact:  yes_no_air\n"
                                   "max_exact_distance:  250\n"
                                   "exact_sharpening_factor:  1.5\n"
                                   "include:  below\n"
                                   "reflection_method:  specular\n"
                                   "shadow_method:  yes\n"
                                   "max_shadow_fraction:  0.25\n"
                                   "shadow_distance:  80\n"
                                   "glitter:  yes\n"),
            std::string::npos);
  ocean.shadow_method = 0;
  ocean.reflection_method = 1;
  EXPECT_NE(write_text(ocean).find("reflection_method:  averaged\n"
                                   "shadow_method:  no\n"
                                   "glitter:  yes\n"),
            std::string::npos);
}

TEST(OceanInputWrite, ExternalExactCodeWithoutAWordIsWrittenAsNo) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.external_exact = 2;
  ocean.include = 3;
  EXPECT_EQ(write_text(ocean), plain_written);
}

TEST(OceanInputWrite, WhitecapAndTextureForms) {
  Scratch_folder folder;
  ocean_input ocean;
  read_plain(ocean);
  ocean.whitecaps = 1;
  const std::string caps = folder.file("caps.dat");
  copy_text(ocean.whitecap_file, caps.c_str(), 256);
  ocean.texture_maps = 1;
  const std::string text = write_text(ocean);
  EXPECT_NE(text.find("whitecaps:  yes\nwhitecap_file:  " + caps +
                      "\ntexture_maps:  yes\n"
                      "Tidecast_data_file texture 2 2\n"
                      "surface_type: ocean \n"
                      "number_of_textures:  0\n"
                      "endTexture\n"
                      "sunbeams:  no\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(file_text(caps).substr(0, 33), "Tidecast_data_file whitecaps 2 2\n");
}

TEST(OceanInputWrite, DisturbancesAreWrittenWithTheInteriorLineAndTheirWords) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.render_disturbances_interior = 1;
  TCGrid_details_input* grid = ocean.add_disturbance(1);
  ASSERT_NE(grid, nullptr);
  grid->n_x = 4;
  grid->n_y = 2;
  grid->dx = 0.5;
  grid->dy = 0.25;
  grid->generate_file = 0;
  copy_text(grid->spectrum_file, "d.spectrum", 256);
  ASSERT_NE(ocean.add_disturbance(0), nullptr);
  const std::string text = write_text(ocean);
  EXPECT_NE(text.find("number_disturbances  2\n"
                      "render_disturbances_interior:  flat\n"
                      "disturbance_type:  yes\n"
                      "n_points_x 4\n"
                      "n_points_y 2\n"
                      "dx 0.5\n"
                      "dy 0.25\n"
                      "spectrum_file: d.spectrum\n"
                      "generate_file:  no \n"
                      "end \n"
                      "disturbance_type:  no\n"),
            std::string::npos)
      << text;
}

TEST(OceanInputWrite, ReflectingObjectIsWrittenUnderItsLongerWord) {
  Scratch_folder folder;
  ocean_input ocean;
  read_plain(ocean);
  TCGrid_details_input* reflect = ocean.add_disturbance(-1);
  ASSERT_NE(reflect, nullptr);
  // Its detail file goes beside the ocean file.
  copy_text(reflect->detail_file, folder.file("reflection.dat").c_str(), 256);
  const std::string text = write_text(ocean);
  EXPECT_NE(text.find("disturbance_type:  reflect_object\n"), std::string::npos) << text;
}

TEST(OceanInputWrite, SecondaryGridIsWrittenOnlyWithFurtherOceans) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.secondary_grid.n_x = 8;
  EXPECT_EQ(write_text(ocean), plain_written);
  ocean.number_aux_oceans = 1;
  EXPECT_NE(write_text(ocean).find("number_aux_oceans  1\nn_points_x 8\n"), std::string::npos);
}

// ---- Codes with no word stop the write ----

void expect_refused(const ocean_input& ocean, const std::string& message) {
  int result = 1;
  std::string printed;
  const std::string text = written_ocean(ocean, result, printed);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(printed, message);
  EXPECT_EQ(text, "");  // refused before anything is written
}

TEST(OceanInputWriteRefusals, SpectrumTypeWithoutAWord) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.ocean_spectrum_type = 105;
  expect_refused(ocean, "ocean spectrum type not supported \n");
}

TEST(OceanInputWriteRefusals, InteriorModeWithoutAWordWhenThereAreDisturbances) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.render_disturbances_interior = 3;
  EXPECT_EQ(write_text(ocean), plain_written);  // not written without disturbances
  ASSERT_NE(ocean.add_disturbance(1), nullptr);
  expect_refused(ocean, "image_water_within_objects_flag value not supported \n");
}

TEST(OceanInputWriteRefusals, ReflectionMethodWithoutAWord) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.external_exact = 1;
  ocean.include = 1;
  ocean.reflection_method = 3;
  expect_refused(ocean, "illegal value of external_exact_reflection_method_flag \n");
}

TEST(OceanInputWriteRefusals, ShadowMethodOtherThanNoOrYes) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.external_exact = 1;
  ocean.include = 1;
  ocean.shadow_method = 2;
  expect_refused(ocean, "illegal value of external_exact_shadow_method_flag \n");
}

TEST(OceanInputWriteRefusals, IncludeWithoutAWord) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.external_exact = 1;
  ocean.include = 4;
  expect_refused(ocean, "illegal value of external_exact_include_flag \n");
}

TEST(OceanInputWriteRefusals, GlitterWithoutAWord) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.glitter = 2;
  expect_refused(ocean, "illegal glitter flag value \n");
}

TEST(OceanInputWriteRefusals, DisturbanceCodeWithoutAWord) {
  ocean_input ocean;
  read_plain(ocean);
  ASSERT_NE(ocean.add_disturbance(17), nullptr);
  expect_refused(ocean, "illegal ocean type 17\n");
}

TEST(OceanInputWriteRefusals, SideFileThatCannotBeWritten) {
  ocean_input ocean;
  read_plain(ocean);
  ocean.variable_wind = 1;
  copy_text(ocean.wind_file, "/nonexistent/tidecast/wind.dat", 256);
  int result = 1;
  std::string printed;
  written_ocean(ocean, result, printed);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(printed,
            "unable to open variable wind file /nonexistent/tidecast/wind.dat\n"
            "unable to generate variable wind file \n");

  ocean.variable_wind = 0;
  ocean.glitter = 200;
  ocean.sharpening_type = 1;
  copy_text(ocean.sharpening_file, "/nonexistent/tidecast/sharp.dat", 256);
  written_ocean(ocean, result, printed);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(printed,
            "unable to open sharpening file /nonexistent/tidecast/sharp.dat\n"
            "error in writing sharpening file \n");

  ocean.glitter = 1;
  ocean.whitecaps = 1;
  copy_text(ocean.whitecap_file, "/nonexistent/tidecast/caps.dat", 256);
  written_ocean(ocean, result, printed);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(printed,
            "unable to open ocean whitecap output file /nonexistent/tidecast/caps.dat\n"
            "unable to write whitecap file \n");
}

TEST(OceanInputWriteRefusals, FileThatCannotBeOpenedIsNamed) {
  ocean_input ocean;
  read_plain(ocean);
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.write_file("/nonexistent/tidecast/ocean.dat"), 0);
  EXPECT_EQ(out.text(), "unable to open ocean output file /nonexistent/tidecast/ocean.dat\n");
}

TEST(OceanInputWriteRefusals, FailedWriteNamesTheFile) {
  Scratch_folder folder;
  ocean_input ocean;
  read_plain(ocean);
  ocean.glitter = 2;
  const std::string path = folder.file("refused.dat");
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.write_file(path.c_str()), 0);
  EXPECT_EQ(out.text(),
            "illegal glitter flag value \nunable to process ocean output file " + path + "\n");
}

// ---- Written and read again, version by version ----

TEST(OceanInputRoundTrip, FullFixtureKeepsEverythingButItsExclusions) {
  Scratch_folder folder;
  ocean_input ocean;
  {
    Working_folder here(ocean_data_dir());
    ASSERT_TRUE(here.ok());
    Stream_capture out(std::cout);
    ASSERT_EQ(ocean.read_file("full_ocean.dat"), 1) << out.text();
  }
  ASSERT_NE(ocean.exclude_mask, 0);
  // The side files are written where the new ocean file names them.
  copy_text(ocean.wind_file, folder.file("wind.dat").c_str(), 256);
  copy_text(ocean.sharpening_file, folder.file("sharpening.dat").c_str(), 256);
  copy_text(ocean.whitecap_file, folder.file("whitecaps.dat").c_str(), 256);
  ocean_input again;
  write_and_read_back(ocean, folder, again);
  expect_same_ocean(ocean, again, false, false);
  EXPECT_EQ(again.exclude_mask, 0);
}

TEST(OceanInputRoundTrip, VersionOneFileReadsWithItsDefaultsAndWritesAsVersionFive) {
  Scratch_folder folder;
  const std::string text =
      "Tidecast_data_file ocean 1 1\n"
      "n_points_x 16 0 n_points_y 8 1 dx 3 dy 3 spectrum_file: s.spectrum\n"
      "generate_file: no end\n"
      "number_aux_oceans 0\n"
      "number_disturbances 1\n"
      "disturbance_type: yes\n" +
      grid_block(4, 4, "d.spectrum") +
      "box_depth 10 reference_time 0 surface_type: flat max_distance 500\n"
      "doubling_distance 50 variable_wind: no wind_direction: 90 wind_velocity: 5\n"
      "ocean_spectrum_type: phillips jerlov_water_type: 1\n"
      "external_exact: yes max_exact_distance: 60 include: everything\n"
      "glitter: exact\n"
      "cusps: no\n"
      "number_of_bands: 2 band_ids: 1 2 index_of_refraction: 1.33 1.34\n"
      "end\n";
  ocean_input ocean;
  // Values the version 1 file cannot give, left from before.
  ocean.whitecaps = 1;
  ocean.texture_maps = 1;
  ocean.exact_sharpening_factor = 5.0;
  ocean.reflection_method = 2;
  ocean.exclude_mask = 2;
  ocean.render_disturbances_interior = 2;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(printed, "");
  EXPECT_EQ(ocean.primary_grid.periodic_x, 0);
  EXPECT_EQ(ocean.n_disturbances, 1);
  EXPECT_EQ(ocean.render_disturbances_interior, 0);
  EXPECT_EQ(ocean.wind_direction, 90 * to_radians);
  EXPECT_EQ(ocean.external_exact, 1);
  EXPECT_EQ(ocean.include, 3);
  EXPECT_EQ(ocean.exact_sharpening_factor, 1.0);
  EXPECT_EQ(ocean.reflection_method, 0);
  EXPECT_EQ(ocean.shadow_method, 0);
  EXPECT_EQ(ocean.shadow_distance, 99999999.0);
  EXPECT_EQ(ocean.glitter, 202);
  EXPECT_EQ(ocean.whitecaps, 0);
  EXPECT_EQ(ocean.texture_maps, 0);
  EXPECT_EQ(ocean.exclude_mask, 0);

  ocean_input again;
  write_and_read_back(ocean, folder, again);
  expect_same_ocean(ocean, again, false);
}

TEST(OceanInputRoundTrip, VersionTwoFileWithWhitecapsAndTexturesReadsAndWritesBack) {
  Scratch_folder folder;
  const std::string caps = folder.file("caps.dat");
  put_file(caps,
           "Tidecast_data_file whitecaps 1 1\n"
           "sampling_region center: 0 0 length: 50 50 interval: 1 1 max_distance: 400\n"
           "reference_time: 0 time_increment: 0.25 initialization_time: 5\n"
           "whitecap_decay_time: 2 acceleration_thresholds: 0.4 0.5 reflectivities: 0.3 0.6\n"
           "smearing_scales: 1 1 0 acceleration_time_offset: 0\n"
           "small_scale_fluctuations: no diffusion: no end\n");
  const std::string text =
      replaced(plain_ocean(2), "whitecaps: no\ntexture_maps:  no\n",
               "whitecaps: yes\nwhitecap_file: " + caps +
                   "\ntexture_maps: yes\n"
                   "Tidecast_data_file texture 2 2\nsurface_type: ocean\nnumber_of_textures: 2\n"
                   "Center: 1 2\nOrientation: 45\nDimensions: 30 40\nMakePeridoic: 0\n"
                   "AnimationFlag: 1\nV_x: 1\nV_y: 2\nt_o: 3\nNewPictureFlag: 1\n"
                   "BaseFileName: frames\nPictureFile: a.rgb\nPriority: 1\nPicture_bands: 1\n"
                   "image_above: yes\nreflection_flag: 0\nalpha_flag: 1\nmin_radiance 0.5\n"
                   "max_radiance: 8\nimage_below: no\n"
                   "Center: 0 0\nOrientation: 0\nDimensions: 5 5\nMakePeridoic: 1\n"
                   "AnimationFlag: 0\nNewPictureFlag: 0\nPictureFile: b.rgb\nPriority: 6\n"
                   "Picture_bands: 1\nimage_above: no\nimage_below: no\nendTexture\n");
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.whitecaps, 1);
  EXPECT_EQ(ocean.whitecap_time_increment, 0.25);
  // A version 1 whitecap file: spin-up at the running step, foam at once.
  EXPECT_EQ(ocean.whitecap_initialization_increment, 0.25);
  EXPECT_EQ(ocean.whitecap_formation_time, 0.0);
  EXPECT_EQ(ocean.texture_maps, 1);
  ASSERT_EQ(ocean.textures.n_textures, 2);
  EXPECT_EQ(ocean.textures.order[0], 1);
  EXPECT_EQ(ocean.exclude_mask, 0);

  copy_text(ocean.whitecap_file, folder.file("caps_again.dat").c_str(), 256);
  ocean_input again;
  write_and_read_back(ocean, folder, again);
  expect_same_ocean(ocean, again, false);
}

TEST(OceanInputRoundTrip, VersionThreeFileReadsItsExactSharpeningFactor) {
  Scratch_folder folder;
  const std::string text = replaced(plain_ocean(3), "external_exact:  no\n",
                                    "external_exact:  yes\nmax_exact_distance:  90\n"
                                    "exact_sharpening_factor:  2.5\ninclude:  above\n");
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.exact_sharpening_factor, 2.5);
  EXPECT_EQ(ocean.reflection_method, 0);
  EXPECT_EQ(ocean.max_shadow_fraction, 1.0);
  ocean_input again;
  write_and_read_back(ocean, folder, again);
  expect_same_ocean(ocean, again, false);
}

TEST(OceanInputRoundTrip, VersionFourFileReadsInteriorAndExclusions) {
  Scratch_folder folder;
  std::string text = replaced(plain_ocean(4), "number_disturbances  0\n",
                              "number_disturbances  1\nrender_disturbances_interior:  natural\n"
                              "disturbance_type:  no\n" +
                                  grid_block(2, 2, "n.spectrum"));
  text = replaced(text, "exclude_items:   no\n",
                  "exclude_items:  yes\nnumber_of_items: 1\ntextures\n");
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.render_disturbances_interior, 2);
  EXPECT_EQ(ocean.exclude_mask, 2);
  ocean_input again;
  write_and_read_back(ocean, folder, again);
  expect_same_ocean(ocean, again, false, false);
  EXPECT_EQ(again.exclude_mask, 0);
}

TEST(OceanInputRoundTrip, VersionFiveFileWithShadowsReadsAndWritesBack) {
  Scratch_folder folder;
  const std::string text = replaced(plain_ocean(5), "external_exact:  no\n",
                                    "external_exact:  yes\nmax_exact_distance:  90\n"
                                    "exact_sharpening_factor:  2.5\ninclude:  above\n"
                                    "reflection_method:  total\nshadow_method:  yes\n"
                                    "max_shadow_fraction:  0.4\nshadow_distance:  30\n");
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.reflection_method, 2);
  EXPECT_EQ(ocean.shadow_distance, 30.0);
  ocean_input again;
  write_and_read_back(ocean, folder, again);
  expect_same_ocean(ocean, again, false);
  // And the writing is a fixed point.
  EXPECT_EQ(write_text(again), write_text(ocean));
}

}  // namespace
