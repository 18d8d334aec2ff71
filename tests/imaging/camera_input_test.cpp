#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "TCCamera_input.h"
#include "stream_capture.h"

namespace {

// Reads text through read_stream; the reader's result, its output in printed.
int read_text(TCCamera_input& camera, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = camera.read_stream(in);
  printed = out.text();
  return result;
}

std::string written(const TCCamera_input& camera) {
  std::ostringstream out;
  EXPECT_EQ(camera.write_stream(out), 1);
  return out.str();
}

std::string temp_path(const char* name) {
  return ::testing::TempDir() + name;
}

void write_text_file(const std::string& path, const std::string& text) {
  std::ofstream out(path.c_str());
  out << text;
}

// Every field and every optional part of a version 3 file.
const char* const full_camera =
    "Tidecast_data_file camera 3 3\n"
    "n_pixel_azimuth 640\n"
    "n_pixel_elevation 480\n"
    "fov_azimuth 40.5\n"
    "fov_elevation 30.25\n"
    "image_method 1\n"
    "picture_fraction_flag 1\n"
    "azimuth_range 10 319\n"
    "elevation_range 20 239\n"
    "n_sub_azimuth 2\n"
    "n_sub_elevation 3\n"
    "number_of_bands 3\n"
    "band_id 4 5 6\n"
    "anti_alias 1\n"
    "resampling_azimuth 2\n"
    "resampling_elevation 4\n"
    "efficiency_matte 1\n"
    "efficiency_matte_file eff.hdf\n"
    "image_slices 4\n"
    "image_format rgb\n"
    "scale gamma 2.5\n"
    "min_value 0.5\n"
    "max_value 1.5\n"
    "end\n";

// The fields of a file up to and including the efficiency matte part; the
// tests add what follows.
const char* const camera_head =
    "Tidecast_data_file camera 3 3\n"
    "n_pixel_azimuth 8 n_pixel_elevation 6\n"
    "fov_azimuth 20 fov_elevation 15\n"
    "image_method 1\n"
    "picture_fraction_flag 0\n"
    "n_sub_azimuth 1 n_sub_elevation 1\n"
    "number_of_bands 1 band_id 7\n"
    "anti_alias 0\n"
    "efficiency_matte 0\n";

const char* const no_mattes = "use_mattes: 0\n";

TEST(CameraInput, ConstructionPrintsTheDefaultName) {
  Stream_capture out(std::cout);
  TCCamera_input camera;
  EXPECT_EQ(out.text(), "camera constructed camera_type_name\n");
  EXPECT_STREQ(camera.object_name, "camera_type_name");
  EXPECT_STREQ(camera.object_type, "camera");
  EXPECT_EQ(camera.type_code, 255);
}

TEST(CameraInput, DefaultsAreOneHdfSliceWithoutRescalingOrMattes) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  EXPECT_EQ(camera.image_slices, 1);
  EXPECT_EQ(camera.slices_given, 0);
  EXPECT_EQ(camera.slices_to_be_imaged, nullptr);
  EXPECT_EQ(camera.image_format, 3000);
  EXPECT_EQ(camera.rescale_method, 0);
  EXPECT_EQ(camera.anti_alias, 0);
  EXPECT_EQ(camera.efficiency_matte, 0);
  EXPECT_STREQ(camera.efficiency_matte_file, "");
  EXPECT_EQ(camera.matte.use_mattes, 0);
  EXPECT_EQ(camera.bands.n, 1);
  EXPECT_EQ(camera.bands.band_id[0], 1);
  EXPECT_EQ(camera.matte_name_count(), 0);
}

TEST(CameraInput, ReadsEveryFieldOfAVersionThreeFile) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  std::string printed;
  ASSERT_EQ(read_text(camera, std::string(full_camera) + no_mattes, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.n_pixel_azimuth, 640);
  EXPECT_EQ(camera.n_pixel_elevation, 480);
  EXPECT_DOUBLE_EQ(camera.fov_azimuth, 40.5);
  EXPECT_DOUBLE_EQ(camera.fov_elevation, 30.25);
  EXPECT_EQ(camera.picture_fraction_flag, 1);
  EXPECT_EQ(camera.first_azimuth, 10);
  EXPECT_EQ(camera.last_azimuth, 319);
  EXPECT_EQ(camera.first_elevation, 20);
  EXPECT_EQ(camera.last_elevation, 239);
  EXPECT_EQ(camera.n_sub_azimuth, 2);
  EXPECT_EQ(camera.n_sub_elevation, 3);
  ASSERT_EQ(camera.bands.n, 3);
  EXPECT_EQ(camera.bands.band_id[0], 4);
  EXPECT_EQ(camera.bands.band_id[1], 5);
  EXPECT_EQ(camera.bands.band_id[2], 6);
  EXPECT_EQ(camera.anti_alias, 1);
  EXPECT_EQ(camera.resampling_azimuth, 2);
  EXPECT_EQ(camera.resampling_elevation, 4);
  EXPECT_EQ(camera.efficiency_matte, 1);
  EXPECT_STREQ(camera.efficiency_matte_file, "eff.hdf");
  EXPECT_EQ(camera.image_slices, 4);
  EXPECT_EQ(camera.slices_given, 0);
  EXPECT_EQ(camera.image_format, 3002);
  EXPECT_EQ(camera.rescale_method, 2);
  EXPECT_FLOAT_EQ(camera.gamma, 2.5f);
  EXPECT_FLOAT_EQ(camera.min_value, 0.5f);
  EXPECT_FLOAT_EQ(camera.max_value, 1.5f);
  EXPECT_EQ(camera.matte.use_mattes, 0);
}

TEST(CameraInput, AccessorsGiveTheFields) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera, full_camera, printed), 1);
  EXPECT_EQ(camera.get_n_pixel_azimuth(), 640);
  EXPECT_EQ(camera.get_n_pixel_elevation(), 480);
  EXPECT_DOUBLE_EQ(camera.get_fov_azimuth(), 40.5);
  EXPECT_DOUBLE_EQ(camera.get_fov_elevation(), 30.25);
  EXPECT_EQ(camera.get_picture_fraction_flag(), 1);
  EXPECT_EQ(camera.get_first_azimuth(), 10);
  EXPECT_EQ(camera.get_last_azimuth(), 319);
  EXPECT_EQ(camera.get_first_elevation(), 20);
  EXPECT_EQ(camera.get_last_elevation(), 239);
  EXPECT_EQ(camera.get_n_sub_azimuth(), 2);
  EXPECT_EQ(camera.get_n_sub_elevation(), 3);
  EXPECT_EQ(camera.get_bands().n, 3);
  EXPECT_EQ(camera.get_anti_alias(), 1);
  EXPECT_EQ(camera.get_resampling_azimuth(), 2);
  EXPECT_EQ(camera.get_resampling_elevation(), 4);
  EXPECT_EQ(camera.get_efficiency_matte(), 1);
  EXPECT_STREQ(camera.get_efficiency_matte_file(), "eff.hdf");
  EXPECT_EQ(camera.get_image_slices(), 4);
  EXPECT_EQ(camera.get_slices_given(), 0);
  EXPECT_EQ(camera.get_slices_to_be_imaged(), nullptr);
  EXPECT_EQ(camera.get_image_format(), 3002);
  EXPECT_EQ(camera.get_rescale_method(), 2);
  EXPECT_FLOAT_EQ(camera.get_gamma(), 2.5f);
  EXPECT_FLOAT_EQ(camera.get_min_value(), 0.5f);
  EXPECT_FLOAT_EQ(camera.get_max_value(), 1.5f);
  EXPECT_EQ(camera.get_use_mattes(), 0);
  EXPECT_EQ(camera.get_n_matte_objects(), 0);
  EXPECT_EQ(&camera.get_matte(), &camera.matte);
}

TEST(CameraInput, FractionFlagZeroImagesTheWholePicture) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera, std::string(camera_head) + "image_slices 1 image_format img end\n",
                      printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.first_azimuth, 0);
  EXPECT_EQ(camera.last_azimuth, 7);
  EXPECT_EQ(camera.first_elevation, 0);
  EXPECT_EQ(camera.last_elevation, 5);
}

TEST(CameraInput, VersionOneFileHasNoAntiAliasOrEfficiencyKeywords) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  camera.anti_alias = 9;
  camera.efficiency_matte = 9;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      "Tidecast_data_file camera 1 1\n"
                      "n_pixel_azimuth 4 n_pixel_elevation 2\n"
                      "fov_azimuth 10 fov_elevation 5\n"
                      "image_method 1 picture_fraction_flag 0\n"
                      "n_sub_azimuth 1 n_sub_elevation 1\n"
                      "number_of_bands 2 band_id 1 2\n"
                      "image_slices 2\n"
                      "image_format hdf\n"
                      "end\n",
                      printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.anti_alias, 0);
  EXPECT_EQ(camera.efficiency_matte, 0);
  EXPECT_EQ(camera.image_slices, 2);
  EXPECT_EQ(camera.image_format, 3000);
}

TEST(CameraInput, VersionTwoFileReadsAntiAliasButNoEfficiencyMatte) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  camera.efficiency_matte = 9;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      "Tidecast_data_file camera 2 2\n"
                      "n_pixel_azimuth 4 n_pixel_elevation 2\n"
                      "fov_azimuth 10 fov_elevation 5\n"
                      "image_method 1 picture_fraction_flag 0\n"
                      "n_sub_azimuth 1 n_sub_elevation 1\n"
                      "number_of_bands 1 band_id 3\n"
                      "anti_alias 1 resampling_azimuth 3 resampling_elevation 5\n"
                      "image_slices 1\n"
                      "image_format img\n"
                      "end\n",
                      printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.anti_alias, 1);
  EXPECT_EQ(camera.resampling_azimuth, 3);
  EXPECT_EQ(camera.resampling_elevation, 5);
  EXPECT_EQ(camera.efficiency_matte, 0);
}

TEST(CameraInput, AntiAliasOffReadsNoResamplingAndEfficiencyOffNoFile) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera, std::string(camera_head) + "image_slices 3\nimage_format HDF\nend\n",
                      printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.anti_alias, 0);
  EXPECT_EQ(camera.resampling_azimuth, 1);
  EXPECT_EQ(camera.resampling_elevation, 1);
  EXPECT_EQ(camera.efficiency_matte, 0);
  EXPECT_STREQ(camera.efficiency_matte_file, "");
  EXPECT_EQ(camera.image_slices, 3);
  EXPECT_EQ(camera.image_format, 3000);
}

TEST(CameraInput, EndAfterTheEfficiencyPartGivesOneHdfSlice) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  camera.image_slices = 6;
  camera.image_format = 3002;
  camera.rescale_method = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera, std::string(camera_head) + "end\n" + no_mattes, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.image_slices, 1);
  EXPECT_EQ(camera.slices_given, 0);
  EXPECT_EQ(camera.image_format, 3000);
  EXPECT_EQ(camera.rescale_method, 0);
}

TEST(CameraInput, EndInPlaceOfTheFormatKeepsTheSlicesAndGivesHdf) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  camera.image_format = 3002;
  camera.rescale_method = 2;
  std::string printed;
  ASSERT_EQ(
      read_text(camera, std::string(camera_head) + "image_slices 5\nend\n" + no_mattes, printed),
      1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.image_slices, 5);
  EXPECT_EQ(camera.image_format, 3000);
  EXPECT_EQ(camera.rescale_method, 0);
}

TEST(CameraInput, ZeroSlicesAreReadAsOne) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera, std::string(camera_head) + "image_slices 0 image_format img end\n",
                      printed),
            1);
  EXPECT_EQ(camera.image_slices, 1);
}

TEST(CameraInput, NegativeSlicesAreReadAsOne) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera, std::string(camera_head) + "image_slices -7 image_format img end\n",
                      printed),
            1);
  EXPECT_EQ(camera.image_slices, 1);
}

TEST(CameraInput, HugeSliceCountIsKeptWithoutAList) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(
      read_text(camera, std::string(camera_head) + "image_slices 2000000000 image_format img end\n",
                printed),
      1);
  EXPECT_EQ(camera.image_slices, 2000000000);
  EXPECT_EQ(camera.slices_to_be_imaged, nullptr);
}

TEST(CameraInput, ReadingTheSliceCountDropsAGivenSliceList) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  const int flags[3] = {1, 0, 1};
  ASSERT_EQ(camera.set_slices_to_image(3, flags), 1);
  std::string printed;
  ASSERT_EQ(read_text(camera, std::string(camera_head) + "image_slices 2 image_format img end\n",
                      printed),
            1);
  EXPECT_EQ(camera.image_slices, 2);
  EXPECT_EQ(camera.slices_given, 0);
  EXPECT_EQ(camera.slices_to_be_imaged, nullptr);
}

TEST(CameraInput, TenBandsAreAccepted) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      "Tidecast_data_file camera 1 1\n"
                      "n_pixel_azimuth 4 n_pixel_elevation 2 fov_azimuth 10 fov_elevation 5\n"
                      "image_method 1 picture_fraction_flag 0 n_sub_azimuth 1 n_sub_elevation 1\n"
                      "number_of_bands 10 band_id 10 9 8 7 6 5 4 3 2 1\n"
                      "image_slices 1 image_format img end\n",
                      printed),
            1);
  EXPECT_EQ(printed, "");
  ASSERT_EQ(camera.bands.n, 10);
  EXPECT_EQ(camera.bands.band_id[0], 10);
  EXPECT_EQ(camera.bands.band_id[9], 1);
}

TEST(CameraInput, ElevenBandsAreTooMany) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  EXPECT_EQ(read_text(camera,
                      "Tidecast_data_file camera 1 1\n"
                      "n_pixel_azimuth 4 n_pixel_elevation 2 fov_azimuth 10 fov_elevation 5\n"
                      "image_method 1 picture_fraction_flag 0 n_sub_azimuth 1 n_sub_elevation 1\n"
                      "number_of_bands 11 band_id 1 2 3 4 5 6 7 8 9 10 11\n"
                      "image_slices 1 image_format img end\n",
                      printed),
            0);
  EXPECT_EQ(printed, "n_bands = 11is too large\n");
}

TEST(CameraInput, NegativeBandCountStopsTheReadingAtTheEndCheck) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  EXPECT_EQ(read_text(camera,
                      "Tidecast_data_file camera 1 1\n"
                      "n_pixel_azimuth 4 n_pixel_elevation 2 fov_azimuth 10 fov_elevation 5\n"
                      "image_method 1 picture_fraction_flag 0 n_sub_azimuth 1 n_sub_elevation 1\n"
                      "number_of_bands -2000000000 band_id\n"
                      "image_slices 1 image_format img end\n",
                      printed),
            0);
  EXPECT_EQ(printed, "camera file invalid, read band_idinstead of end\n");
}

TEST(CameraInput, ZeroBandsReadAnEmptyBandList) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      "Tidecast_data_file camera 1 1\n"
                      "n_pixel_azimuth 4 n_pixel_elevation 2 fov_azimuth 10 fov_elevation 5\n"
                      "image_method 1 picture_fraction_flag 0 n_sub_azimuth 1 n_sub_elevation 1\n"
                      "number_of_bands 0 band_id\n"
                      "image_slices 1 image_format img end\n",
                      printed),
            1);
  EXPECT_EQ(camera.bands.n, 0);
}

TEST(CameraInput, AWordWhereANumberBelongsIsShownByTheEndCheck) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  EXPECT_EQ(read_text(camera,
                      "Tidecast_data_file camera 3 3\n"
                      "n_pixel_azimuth wide n_pixel_elevation 2\n",
                      printed),
            0);
  EXPECT_EQ(printed, "camera file invalid, read wideinstead of end\n");
  EXPECT_EQ(camera.n_pixel_azimuth, 0);
}

TEST(CameraInput, AFileCutShortFailsAtTheEndCheck) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  EXPECT_EQ(read_text(camera,
                      "Tidecast_data_file camera 3 3\n"
                      "n_pixel_azimuth 4 n_pixel_elevation\n",
                      printed),
            0);
  EXPECT_EQ(printed, "camera file invalid, read instead of end\n");
  EXPECT_EQ(camera.n_pixel_azimuth, 4);
}

TEST(CameraInput, ALastValueOutOfRangeFailsEvenBeforeEnd) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  EXPECT_EQ(read_text(camera,
                      std::string(camera_head) +
                          "image_slices 1 image_format rgb scale no min_value 0 max_value 1e39\n"
                          "end\n",
                      printed),
            0);
  EXPECT_EQ(printed, "camera file invalid, read endinstead of end\n");
  EXPECT_FLOAT_EQ(camera.max_value, 1.0f);
}

TEST(CameraInput, AnotherWordThanEndIsRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  EXPECT_EQ(read_text(camera, std::string(camera_head) + "image_slices 1 image_format img finish\n",
                      printed),
            0);
  EXPECT_EQ(printed, "camera file invalid, read finishinstead of end\n");
}

TEST(CameraInput, WrongFileTypeFailsTheHeader) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  std::string printed;
  EXPECT_EQ(read_text(camera, "Tidecast_data_file scene 2 2\n", printed), 0);
  EXPECT_EQ(printed,
            "file type scene is not of \n"
            "expected type camera\n"
            " cannot process camera file \n");
}

TEST(CameraInput, AFileForANewerReaderFailsWithTheCamerasLineOnly) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  std::string printed;
  EXPECT_EQ(read_text(camera, "Tidecast_data_file camera 4 4\n", printed), 0);
  EXPECT_EQ(printed, " cannot process camera file \n");
}

TEST(CameraInput, TheSecondMagicWordIsAccepted) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string text = std::string(camera_head) + "end\n";
  text.replace(0, std::strlen("Tidecast_data_file"), "Beavis_rules_the");
  std::string printed;
  EXPECT_EQ(read_text(camera, text, printed), 1);
  EXPECT_EQ(printed, "");
}

TEST(CameraInput, HdfFormatWordsReadNoScaleSection) {
  const char* const words[3] = {"hdf", "img", "HDF"};
  for (const char* word : words) {
    Stream_capture quiet(std::cout);
    TCCamera_input camera;
    camera.version = 1;
    camera.rescale_method = 2;
    std::string printed;
    ASSERT_EQ(read_text(camera,
                        std::string(camera_head) + "image_slices 1 image_format " + word + " end\n",
                        printed),
              1)
        << word;
    EXPECT_EQ(camera.image_format, 3000) << word;
    EXPECT_EQ(camera.rescale_method, 0) << word;
  }
}

TEST(CameraInput, SgiAndRgbAreOneFormat) {
  const char* const words[2] = {"sgi", "rgb"};
  for (const char* word : words) {
    Stream_capture quiet(std::cout);
    TCCamera_input camera;
    camera.version = 1;
    std::string printed;
    ASSERT_EQ(read_text(camera,
                        std::string(camera_head) + "image_slices 1 image_format " + word +
                            "\nscale log\nmin_value -1 max_value 2.25\nend\n",
                        printed),
              1)
        << word;
    EXPECT_EQ(printed, "");
    EXPECT_EQ(camera.image_format, 3002) << word;
    EXPECT_EQ(camera.rescale_method, 1);
    EXPECT_FLOAT_EQ(camera.gamma, 1.0f);
    EXPECT_FLOAT_EQ(camera.min_value, -1.0f);
    EXPECT_FLOAT_EQ(camera.max_value, 2.25f);
  }
}

TEST(CameraInput, TiffIsAcceptedWhenRead) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      std::string(camera_head) +
                          "image_slices 1 image_format tiff\nscale no\nmin_value 0 max_value 4\n"
                          "end\n",
                      printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.image_format, 3003);
  EXPECT_EQ(camera.rescale_method, 0);
  EXPECT_FLOAT_EQ(camera.max_value, 4.0f);
}

TEST(CameraInput, CineonReadsTwoSettingsAndFallsBackToHdf) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      std::string(camera_head) + "image_slices 2 image_format cineon\n"
                                                 "black_point 95.0 white_point 685.0\n"
                                                 "end\n",
                      printed),
            1);
  EXPECT_EQ(printed,
            "**Sorry, this version does NOT support cineon format!\n"
            "**Using hdf instead\n");
  EXPECT_EQ(camera.image_format, 3000);
  EXPECT_EQ(camera.rescale_method, 0);
  EXPECT_EQ(camera.image_slices, 2);
}

TEST(CameraInput, GammaValueFollowsTheMethodWord) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(
      read_text(camera,
                std::string(camera_head) + "image_slices 1 image_format rgb\nscale gamma 0.45\n"
                                           "min_value 0 max_value 1\nend\n",
                printed),
      1);
  EXPECT_EQ(camera.rescale_method, 2);
  EXPECT_FLOAT_EQ(camera.gamma, 0.45f);
}

TEST(CameraInput, UnknownFormatWordIsReportedAndReadingGoesOn) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      std::string(camera_head) +
                          "image_slices 1 image_format png\nscale no\nmin_value 0 max_value 1\n"
                          "end\n",
                      printed),
            1);
  EXPECT_EQ(printed,
            "file format pngunknown\n"
            "allowable formats:  img  rgb \n");
  EXPECT_EQ(camera.image_format, 0);
}

TEST(CameraInput, UnknownRescaleWordIsReportedAndGivesNoRescaling) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  camera.rescale_method = 1;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      std::string(camera_head) +
                          "image_slices 1 image_format rgb\nscale cubic\nmin_value 0 max_value 1\n"
                          "end\n",
                      printed),
            1);
  EXPECT_EQ(printed,
            "rescaling method cubicunknown\n"
            "allowable values :  no  log  gamma \n");
  EXPECT_EQ(camera.rescale_method, 0);
}

TEST(CameraInput, RgbWithoutAScaleSectionDoesNotRead) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  std::string printed;
  // "min_value" is taken for the scale keyword and "0" for the method.
  EXPECT_EQ(
      read_text(camera,
                std::string(camera_head) +
                    "image_slices 1 image_format rgb\nmin_value 0 max_value 1\nend\n" + no_mattes,
                printed),
      0);
  EXPECT_EQ(printed,
            "rescaling method 0unknown\n"
            "allowable values :  no  log  gamma \n"
            "camera file invalid, read use_mattes:instead of end\n");
}

TEST(CameraInput, ListVersionTwoReadsTheMatteSection) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  std::string printed;
  ASSERT_EQ(read_text(camera,
                      std::string(camera_head) + "end\n"
                                                 "use_mattes: 1\n"
                                                 "  NObjects: 2\n"
                                                 "    Object: boat\n"
                                                 "      NMattes: 3\n"
                                                 "        radiance reflect-buoy alpha-buoy\n"
                                                 "    Object: scene\n"
                                                 "      NMattes: 2\n"
                                                 "        scene_distance whitecap\n",
                      printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(camera.matte.use_mattes, 1);
  ASSERT_EQ(camera.matte.n_matte_objects, 2);
  EXPECT_STREQ(camera.matte.matte_object_names[0], "boat");
  ASSERT_EQ(camera.matte.matte_counts[0], 3);
  EXPECT_EQ(camera.matte.matte_ids[0][0], 0);
  EXPECT_EQ(camera.matte.matte_ids[0][1], 7);
  EXPECT_EQ(camera.matte.matte_ids[0][2], 22);
  EXPECT_STREQ(camera.matte.reflected_names[0], "buoy");
  EXPECT_STREQ(camera.matte.alpha_names[0], "buoy");
  ASSERT_EQ(camera.matte.matte_counts[1], 2);
  EXPECT_EQ(camera.matte.matte_ids[1][0], 20);
  EXPECT_EQ(camera.matte.matte_ids[1][1], 13);
  // Two leading words, two object names, five matte names.
  EXPECT_EQ(camera.matte_name_count(), 9);
}

TEST(CameraInput, ListVersionOneLeavesWhatFollowsTheEndUnread) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  std::istringstream in(std::string(camera_head) + "end\nuse_mattes: 1\n");
  ASSERT_EQ(camera.read_stream(in), 1);
  EXPECT_EQ(camera.matte.use_mattes, 0);
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "use_mattes:");
}

TEST(CameraInput, AFailedMatteSectionFailsTheCamera) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  std::string printed;
  EXPECT_EQ(read_text(camera,
                      std::string(camera_head) +
                          "end\nuse_mattes: 1 NObjects: 1 Object: boat NMattes: 0\n",
                      printed),
            0);
  EXPECT_EQ(printed, "must have atleast one matte for object boat\n");
}

TEST(CameraInput, AMissingMatteSectionFailsAListVersionTwoCamera) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  std::string printed;
  EXPECT_EQ(read_text(camera, std::string(camera_head) + "end\n", printed), 0);
  EXPECT_EQ(printed, "");
}

TEST(CameraInput, HugeMatteObjectCountInAShortFileFailsQuickly) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  std::string printed;
  EXPECT_EQ(read_text(camera,
                      std::string(camera_head) +
                          "end\nuse_mattes: 1 NObjects: 2000000000 Object: boat NMattes: "
                          "2000000000 radiance\n",
                      printed),
            0);
}

TEST(CameraFormatWords, CodesOfTheFormatWords) {
  Stream_capture quiet(std::cout);
  EXPECT_EQ(image_format_code("hdf"), 3000);
  EXPECT_EQ(image_format_code("img"), 3000);
  EXPECT_EQ(image_format_code("HDF"), 3000);
  EXPECT_EQ(image_format_code("sgi"), 3002);
  EXPECT_EQ(image_format_code("rgb"), 3002);
  EXPECT_EQ(image_format_code("tiff"), 3003);
  EXPECT_EQ(image_format_code("cineon"), 3004);
  EXPECT_EQ(quiet.text(), "");
}

TEST(CameraFormatWords, UnknownFormatWordPrintsTheAllowedOnes) {
  Stream_capture out(std::cout);
  EXPECT_EQ(image_format_code("Img"), 0);
  EXPECT_EQ(out.text(), "file format Imgunknown\nallowable formats:  img  rgb \n");
}

TEST(CameraFormatWords, WordsWrittenForTheCodes) {
  EXPECT_STREQ(image_format_word(3000), "img");
  EXPECT_STREQ(image_format_word(3002), "rgb");
  EXPECT_STREQ(image_format_word(3003), "tiff");
  EXPECT_EQ(image_format_word(3004), nullptr);
  EXPECT_EQ(image_format_word(3001), nullptr);
  EXPECT_EQ(image_format_word(0), nullptr);
}

TEST(CameraFormatWords, RescaleWordsAndCodes) {
  Stream_capture out(std::cout);
  EXPECT_EQ(rescale_method_code("no"), 0);
  EXPECT_EQ(rescale_method_code("log"), 1);
  EXPECT_EQ(rescale_method_code("gamma"), 2);
  EXPECT_EQ(out.text(), "");
  EXPECT_STREQ(rescale_method_word(0), "no");
  EXPECT_STREQ(rescale_method_word(1), "log");
  EXPECT_STREQ(rescale_method_word(2), "gamma");
  EXPECT_EQ(rescale_method_word(3), nullptr);
  EXPECT_EQ(rescale_method_code("Gamma"), 0);
  EXPECT_EQ(out.text(), "rescaling method Gammaunknown\nallowable values :  no  log  gamma \n");
}

TEST(CameraSlices, AllSlicesDropsTheList) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  const int flags[2] = {0, 1};
  ASSERT_EQ(camera.set_slices_to_image(2, flags), 1);
  camera.set_all_slices(8);
  EXPECT_EQ(camera.image_slices, 8);
  EXPECT_EQ(camera.slices_given, 0);
  EXPECT_EQ(camera.slices_to_be_imaged, nullptr);
}

TEST(CameraSlices, GivenSlicesAreCopied) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  int flags[3] = {1, 0, 1};
  ASSERT_EQ(camera.set_slices_to_image(3, flags), 1);
  flags[1] = 1;
  EXPECT_EQ(camera.image_slices, 3);
  EXPECT_EQ(camera.slices_given, 1);
  ASSERT_NE(camera.slices_to_be_imaged, nullptr);
  EXPECT_EQ(camera.slices_to_be_imaged[0], 1);
  EXPECT_EQ(camera.slices_to_be_imaged[1], 0);
  EXPECT_EQ(camera.slices_to_be_imaged[2], 1);
}

TEST(CameraSlices, NonPositiveSliceCountIsRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  const int flags[1] = {1};
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(camera.set_slices_to_image(0, flags), 0);
    EXPECT_EQ(camera.set_slices_to_image(-3, flags), 0);
    EXPECT_EQ(out.text(),
              "can not image a non-positive number of slices \n"
              "can not image a non-positive number of slices \n");
  }
  EXPECT_EQ(camera.image_slices, 1);
  EXPECT_EQ(camera.slices_given, 0);
}

TEST(CameraFile, ReadsAFileFromDisk) {
  Stream_capture quiet(std::cout);
  const std::string path = temp_path("camera_reads_a_file.cam");
  write_text_file(path, std::string(full_camera) + no_mattes);
  TCCamera_input camera;
  camera.version = 2;
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.read_file(path.c_str()), 1);
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(camera.n_pixel_azimuth, 640);
  std::remove(path.c_str());
}

TEST(CameraFile, MissingFileCannotBeOpened) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.read_file("/nonexistent/tidecast/none.cam"), 0);
  EXPECT_EQ(out.text(), "unable to open camera file /nonexistent/tidecast/none.cam\n");
}

TEST(CameraFile, UnreadableFileNamesThePath) {
  Stream_capture quiet(std::cout);
  const std::string path = temp_path("camera_unreadable.cam");
  write_text_file(path, std::string(camera_head) + "image_slices 1 image_format img stop\n");
  TCCamera_input camera;
  camera.version = 1;
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.read_file(path.c_str()), 0);
  EXPECT_EQ(out.text(),
            "camera file invalid, read stopinstead of end\n"
            "unable to process camera file " +
                path + "\n");
  std::remove(path.c_str());
}

TEST(CameraFile, OutputFileThatCannotBeOpened) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.write_file("/nonexistent/tidecast/out.cam"), 0);
  EXPECT_EQ(out.text(), "unable to open camera output file /nonexistent/tidecast/out.cam\n");
}

TEST(CameraFile, FormatWithNoWordCannotBeWritten) {
  Stream_capture quiet(std::cout);
  const std::string path = temp_path("camera_no_word.cam");
  TCCamera_input camera;
  camera.image_format = 3004;
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.write_file(path.c_str()), 0);
  EXPECT_EQ(out.text(), "unable to process camera output file " + path + "\n");
  std::remove(path.c_str());
}

TEST(CameraFile, WriterUsesTheHeaderAndKeywordsOfTheReader) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  std::string printed;
  ASSERT_EQ(read_text(camera, std::string(full_camera) + no_mattes, printed), 1);
  EXPECT_EQ(written(camera),
            "Tidecast_data_file camera 3 3\n"
            "n_pixel_azimuth 640\n"
            "n_pixel_elevation 480\n"
            "fov_azimuth 40.5\n"
            "fov_elevation 30.25\n"
            "image_method 1\n"
            "picture_fraction_flag 1\n"
            "azimuth_range 10 319\n"
            "elevation_range 20 239\n"
            "n_sub_azimuth 2\n"
            "n_sub_elevation 3\n"
            "number_of_bands 3\n"
            "band_id 4 5 6\n"
            "anti_alias 1\n"
            "resampling_azimuth 2\n"
            "resampling_elevation 4\n"
            "efficiency_matte 1\n"
            "efficiency_matte_file eff.hdf\n"
            "image_slices 4\n"
            "image_format rgb\n"
            "scale gamma 2.5\n"
            "min_value 0.5\n"
            "max_value 1.5\n"
            "end \n"
            "use_mattes: 0\n");
}

TEST(CameraFile, HdfIsWrittenWithoutAScaleSection) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 1;
  const std::string text = written(camera);
  EXPECT_NE(text.find("image_format img\nend \n"), std::string::npos);
  EXPECT_EQ(text.find("scale"), std::string::npos);
  EXPECT_EQ(text.find("use_mattes"), std::string::npos);
}

// Every field of a against b.
void expect_same_camera(const TCCamera_input& a, const TCCamera_input& b) {
  EXPECT_EQ(a.n_pixel_elevation, b.n_pixel_elevation);
  EXPECT_EQ(a.n_pixel_azimuth, b.n_pixel_azimuth);
  EXPECT_EQ(a.fov_elevation, b.fov_elevation);
  EXPECT_EQ(a.fov_azimuth, b.fov_azimuth);
  EXPECT_EQ(a.picture_fraction_flag, b.picture_fraction_flag);
  EXPECT_EQ(a.first_elevation, b.first_elevation);
  EXPECT_EQ(a.first_azimuth, b.first_azimuth);
  EXPECT_EQ(a.last_elevation, b.last_elevation);
  EXPECT_EQ(a.last_azimuth, b.last_azimuth);
  EXPECT_EQ(a.n_sub_elevation, b.n_sub_elevation);
  EXPECT_EQ(a.n_sub_azimuth, b.n_sub_azimuth);
  ASSERT_EQ(a.bands.n, b.bands.n);
  for (int i = 0; i < a.bands.n; i++) EXPECT_EQ(a.bands.band_id[i], b.bands.band_id[i]);
  EXPECT_EQ(a.anti_alias, b.anti_alias);
  EXPECT_EQ(a.efficiency_matte, b.efficiency_matte);
  EXPECT_STREQ(a.efficiency_matte_file, b.efficiency_matte_file);
  EXPECT_EQ(a.resampling_elevation, b.resampling_elevation);
  EXPECT_EQ(a.resampling_azimuth, b.resampling_azimuth);
  EXPECT_EQ(a.image_slices, b.image_slices);
  EXPECT_EQ(a.image_format, b.image_format);
  EXPECT_EQ(a.rescale_method, b.rescale_method);
  EXPECT_EQ(a.gamma, b.gamma);
  EXPECT_EQ(a.min_value, b.min_value);
  EXPECT_EQ(a.max_value, b.max_value);
  EXPECT_EQ(a.matte.use_mattes, b.matte.use_mattes);
  ASSERT_EQ(a.matte.n_matte_objects, b.matte.n_matte_objects);
  for (int i = 0; i < a.matte.n_matte_objects; i++) {
    EXPECT_STREQ(a.matte.matte_object_names[i], b.matte.matte_object_names[i]);
    ASSERT_EQ(a.matte.matte_counts[i], b.matte.matte_counts[i]);
    for (int j = 0; j < a.matte.matte_counts[i]; j++) {
      EXPECT_EQ(a.matte.matte_ids[i][j], b.matte.matte_ids[i][j]);
    }
  }
  ASSERT_EQ(a.matte.n_reflected_names, b.matte.n_reflected_names);
  for (int k = 0; k < a.matte.n_reflected_names; k++) {
    EXPECT_STREQ(a.matte.reflected_names[k], b.matte.reflected_names[k]);
  }
  ASSERT_EQ(a.matte.n_alpha_names, b.matte.n_alpha_names);
  for (int k = 0; k < a.matte.n_alpha_names; k++) {
    EXPECT_STREQ(a.matte.alpha_names[k], b.matte.alpha_names[k]);
  }
}

const char* const two_matte_objects =
    "use_mattes: 1\n"
    "  NObjects: 2\n"
    "    Object: boat\n"
    "      NMattes: 4\n"
    "        radiance reflect-buoy reflect-pier alpha-buoy\n"
    "    Object: scene\n"
    "      NMattes: 2\n"
    "        scene_xyz scene_no_radiance\n";

TEST(CameraFile, WrittenFileReadsBackIdentically) {
  Stream_capture quiet(std::cout);
  TCCamera_input first;
  first.version = 2;
  std::string printed;
  ASSERT_EQ(read_text(first, std::string(full_camera) + two_matte_objects, printed), 1);
  const std::string path = temp_path("camera_round_trip.cam");
  ASSERT_EQ(first.write_file(path.c_str()), 1);
  TCCamera_input second;
  second.version = 2;
  ASSERT_EQ(second.read_file(path.c_str()), 1);
  expect_same_camera(first, second);
  EXPECT_EQ(written(first), written(second));
  std::remove(path.c_str());
}

TEST(CameraFile, VersionOneAndTwoFilesReadBackFromTheirWriting) {
  const char* const files[2] = {
      "Tidecast_data_file camera 1 1\n"
      "n_pixel_azimuth 4 n_pixel_elevation 2 fov_azimuth 10.125 fov_elevation 5\n"
      "image_method 1 picture_fraction_flag 0 n_sub_azimuth 2 n_sub_elevation 2\n"
      "number_of_bands 2 band_id 1 2\n"
      "image_slices 3 image_format tiff scale log min_value 0.001 max_value 3\n"
      "end\n",
      "Tidecast_data_file camera 2 2\n"
      "n_pixel_azimuth 4 n_pixel_elevation 2 fov_azimuth 10 fov_elevation 5\n"
      "image_method 1 picture_fraction_flag 1 azimuth_range 1 2 elevation_range 0 0\n"
      "n_sub_azimuth 1 n_sub_elevation 1\n"
      "number_of_bands 1 band_id 3\n"
      "anti_alias 1 resampling_azimuth 3 resampling_elevation 5\n"
      "end\n"};
  for (const char* file : files) {
    Stream_capture quiet(std::cout);
    TCCamera_input first;
    first.version = 1;
    std::string printed;
    ASSERT_EQ(read_text(first, file, printed), 1) << file;
    TCCamera_input second;
    second.version = 1;
    ASSERT_EQ(read_text(second, written(first), printed), 1) << written(first);
    expect_same_camera(first, second);
  }
}

TEST(CameraFile, GammaAndLimitsKeepTheirFloatValues) {
  Stream_capture quiet(std::cout);
  TCCamera_input first;
  first.version = 1;
  first.image_format = 3002;
  first.rescale_method = 2;
  first.gamma = 1.0f / 3.0f;
  first.min_value = 0.1f;
  first.max_value = 123456.789f;
  TCCamera_input second;
  second.version = 1;
  std::string printed;
  ASSERT_EQ(read_text(second, written(first), printed), 1);
  EXPECT_EQ(second.gamma, first.gamma);
  EXPECT_EQ(second.min_value, first.min_value);
  EXPECT_EQ(second.max_value, first.max_value);
}

}  // namespace
