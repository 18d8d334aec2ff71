#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "ocean_input.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

const double to_radians = 0.017453292519444445;

std::string fixture(const char* name) {
  return ocean_data_dir() + "/" + name;
}

int read_whitecap_text(ocean_input& ocean, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = ocean.read_whitecap_stream(in, "caps.dat");
  printed = out.text();
  return result;
}

std::string whitecap_text(const ocean_input& ocean) {
  std::ostringstream out;
  EXPECT_EQ(ocean.write_whitecap_stream(out), 1);
  return out.str();
}

// ---- Variable wind ----

TEST(OceanWindFile, RowsAreTimeSpeedAndDirectionInDegrees) {
  ocean_input ocean;
  Stream_capture out(std::cout);
  ASSERT_EQ(ocean.read_variable_wind(fixture("full_ocean_wind.dat").c_str()), 1) << out.text();
  EXPECT_EQ(out.text(), "");
  ASSERT_EQ(ocean.n_wind_values, 3);
  EXPECT_EQ(ocean.wind_time[0], 0.0);
  EXPECT_EQ(ocean.wind_time[2], 120.0);
  EXPECT_EQ(ocean.wind_speed[0], 5.0);
  EXPECT_EQ(ocean.wind_speed[2], 10.0);
  EXPECT_EQ(ocean.wind_direction_series[0], 30 * to_radians);
  EXPECT_EQ(ocean.wind_direction_series[1], 45 * to_radians);
}

TEST(OceanWindFile, WrittenFileHasTheHeadingsAndReadsBack) {
  Scratch_folder folder;
  ocean_input ocean;
  ASSERT_EQ(ocean.read_variable_wind(fixture("full_ocean_wind.dat").c_str()), 1);
  const std::string path = folder.file("wind.dat");
  ASSERT_EQ(ocean.write_variable_wind(path.c_str()), 1);
  EXPECT_EQ(file_text(path),
            "number_of_times:  3\n"
            "time      speed      direction \n"
            "0  5  30\n"
            "60  7.5  45\n"
            "120  10  90\n");
  ocean_input again;
  ASSERT_EQ(again.read_variable_wind(path.c_str()), 1);
  ASSERT_EQ(again.n_wind_values, 3);
  for (int i = 0; i < 3; i++) {
    EXPECT_EQ(again.wind_time[i], ocean.wind_time[i]);
    EXPECT_EQ(again.wind_speed[i], ocean.wind_speed[i]);
    EXPECT_EQ(again.wind_direction_series[i], ocean.wind_direction_series[i]);
  }
}

TEST(OceanWindFile, CountBelowOneIsRefusedWithTheFormatsSpelling) {
  Scratch_folder folder;
  for (const char* count : {"0", "-5", "many"}) {
    const std::string path = folder.file("wind.dat");
    put_file(path, std::string("number_of_times: ") + count + "\ntime speed direction\n0 1 2\n");
    ocean_input ocean;
    Stream_capture out(std::cout);
    EXPECT_EQ(ocean.read_variable_wind(path.c_str()), 0) << count;
    EXPECT_EQ(out.text(), "number of variable wind values must be postive \n") << count;
    EXPECT_EQ(ocean.n_wind_values, 0);
  }
}

TEST(OceanWindFile, MissingFileIsNamedWithTheDoubleBlank) {
  ocean_input ocean;
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.read_variable_wind("/nonexistent/tidecast/wind.dat"), 0);
  EXPECT_EQ(out.text(), "Error reading variable wind  file /nonexistent/tidecast/wind.dat\n");
}

TEST(OceanWindFile, FileShorterThanItsCountKeepsTheOldRows) {
  Scratch_folder folder;
  const std::string path = folder.file("wind.dat");
  put_file(path, "number_of_times: 2000000000\ntime speed direction\n0 1 2\n3 4\n");
  ocean_input ocean;
  ASSERT_EQ(ocean.read_variable_wind(fixture("full_ocean_wind.dat").c_str()), 1);
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.read_variable_wind(path.c_str()), 0);
  EXPECT_EQ(out.text(), "");  // the ocean file's reader names the file
  EXPECT_EQ(ocean.n_wind_values, 3);
  EXPECT_EQ(ocean.wind_speed[2], 10.0);
}

TEST(OceanWindFile, OceanFileNamesAWindFileThatFails) {
  Scratch_folder folder;
  const std::string path = folder.file("short_wind.dat");
  put_file(path, "number_of_times: 3\ntime speed direction\n0 1 2\n");
  const std::string text = replaced(plain_ocean(5), "variable_wind:  no\n",
                                    "variable_wind:  yes\nwind_file:  " + path + "\n");
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed, "unable to process variable wind file " + path + "\n");
}

TEST(OceanWindFile, OceanFileNamingAMissingWindFileGivesBothLines) {
  const std::string text = replaced(plain_ocean(5), "variable_wind:  no\n",
                                    "variable_wind:  yes\nwind_file:  /nonexistent/w.dat\n");
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "Error reading variable wind  file /nonexistent/w.dat\n"
            "unable to process variable wind file /nonexistent/w.dat\n");
}

// ---- Sharpening ----

TEST(OceanSharpeningFile, RowsAreAngleInDegreesAndSharpness) {
  ocean_input ocean;
  ASSERT_EQ(ocean.read_sharpening(fixture("full_ocean_sharpening.dat").c_str()), 1);
  ASSERT_EQ(ocean.n_sharpening_angles, 2);
  EXPECT_EQ(ocean.sharpening_angle[0], 0.0);
  EXPECT_EQ(ocean.sharpening_angle[1], 60 * to_radians);
  EXPECT_EQ(ocean.sharpening_value[0], 1.0);
  EXPECT_EQ(ocean.sharpening_value[1], 2.5);
}

TEST(OceanSharpeningFile, WrittenFileHasTheHeadingsAndReadsBack) {
  Scratch_folder folder;
  ocean_input ocean;
  ASSERT_EQ(ocean.read_sharpening(fixture("full_ocean_sharpening.dat").c_str()), 1);
  const std::string path = folder.file("sharp.dat");
  ASSERT_EQ(ocean.write_sharpening(path.c_str()), 1);
  EXPECT_EQ(file_text(path),
            "number_of_angles:  2\n"
            "angle      sharpness \n"
            "0  1\n"
            "60  2.5\n");
  ocean_input again;
  ASSERT_EQ(again.read_sharpening(path.c_str()), 1);
  EXPECT_EQ(again.sharpening_angle[1], ocean.sharpening_angle[1]);
}

TEST(OceanSharpeningFile, CountBelowOneIsRefused) {
  Scratch_folder folder;
  const std::string path = folder.file("sharp.dat");
  put_file(path, "number_of_angles: 0\nangle sharpness\n");
  ocean_input ocean;
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.read_sharpening(path.c_str()), 0);
  EXPECT_EQ(out.text(), "number of sharpening angles must be postive \n");
}

TEST(OceanSharpeningFile, MissingFileIsNamedByBothReaders) {
  const std::string text =
      replaced(plain_ocean(5), "glitter:  yes\n",
               "glitter:  enhanced\nsharpening_type:    yes\nsharpening_file:  /nonexistent/s.dat\n"
               "glitter_threshold:  0\nsaturation_type:   no\n");
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "Error reading sharpening file /nonexistent/s.dat\n"
            "error in processeing sharpening file /nonexistent/s.dat\n");
}

TEST(OceanSharpeningFile, WritingWhereNoFileCanBeMadeFails) {
  ocean_input ocean;
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.write_sharpening("/nonexistent/tidecast/s.dat"), 0);
  EXPECT_EQ(out.text(), "unable to open sharpening file /nonexistent/tidecast/s.dat\n");
}

// ---- Whitecaps ----

TEST(OceanWhitecapFile, VersionTwoReadsEveryField) {
  ocean_input ocean;
  Stream_capture out(std::cout);
  ASSERT_EQ(ocean.read_whitecaps(fixture("full_ocean_whitecaps.dat").c_str()), 1) << out.text();
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(ocean.whitecap_center_x, 100.0);
  EXPECT_EQ(ocean.whitecap_center_y, -50.0);
  EXPECT_EQ(ocean.whitecap_length_x, 400.0);
  EXPECT_EQ(ocean.whitecap_length_y, 300.0);
  EXPECT_EQ(ocean.whitecap_interval_x, 2.0);
  EXPECT_EQ(ocean.whitecap_interval_y, 1.5);
  EXPECT_EQ(ocean.whitecap_max_distance, 5000.0);
  EXPECT_EQ(ocean.whitecap_reference_time, -10.0);
  EXPECT_EQ(ocean.whitecap_time_increment, 0.1);
  EXPECT_EQ(ocean.whitecap_initialization_time, 30.0);
  EXPECT_EQ(ocean.whitecap_initialization_increment, 0.5);
  EXPECT_EQ(ocean.whitecap_formation_time, 0.4);
  EXPECT_EQ(ocean.whitecap_decay_time, 3.0);
  EXPECT_EQ(ocean.acceleration_threshold_low, 0.4);
  EXPECT_EQ(ocean.acceleration_threshold_high, 0.6);
  EXPECT_EQ(ocean.whitecap_reflectivity_low, 0.3);
  EXPECT_EQ(ocean.whitecap_reflectivity_high, 0.7);
  EXPECT_EQ(ocean.smear_x, 1.0);
  EXPECT_EQ(ocean.smear_y, 2.0);
  EXPECT_EQ(ocean.smear_t, 0.05);
  EXPECT_EQ(ocean.acceleration_time_offset, 0.02);
  EXPECT_EQ(ocean.whitecap_generation, 2);
  EXPECT_STREQ(ocean.initial_state_file, "caps.state");
  EXPECT_STREQ(ocean.frame_file, "caps_frame");
  EXPECT_EQ(ocean.fluctuation_mode, 1);
  EXPECT_EQ(ocean.fluctuation_n_x, 64);
  EXPECT_EQ(ocean.fluctuation_n_y, 32);
  EXPECT_EQ(ocean.fluctuation_dx, 0.5);
  EXPECT_EQ(ocean.fluctuation_dy, 0.25);
  EXPECT_EQ(ocean.fluctuation_seed, 99);
  EXPECT_EQ(ocean.fluctuation_length_scale, 3.0);
  EXPECT_EQ(ocean.fluctuation_power_law, 2.5);
  EXPECT_EQ(ocean.fluctuation_time_scale, 4.0);
  EXPECT_EQ(ocean.fluctuation_log_normal_width, 0.6);
}

TEST(OceanWhitecapFile, WrittenFileIsTheCurrentFormAndReadsBack) {
  ocean_input ocean;
  ASSERT_EQ(ocean.read_whitecaps(fixture("full_ocean_whitecaps.dat").c_str()), 1);
  const std::string text = whitecap_text(ocean);
  EXPECT_EQ(text,
            "Tidecast_data_file whitecaps 2 2\n"
            "sampling_region\n"
            "center: 100 -50\n"
            "length: 400 300\n"
            "interval: 2 1.5\n"
            "max_distance: 5000\n"
            "reference_time: -10\n"
            "time_increment: 0.1\n"
            "initialization_time: 30\n"
            "initialization_increment: 0.5\n"
            "formation_time:  0.4\n"
            "whitecap_decay_time: 3\n"
            "acceleration_thresholds: 0.4 0.6\n"
            "reflectivities:  0.3 0.7\n"
            "smearing_scales: 1 2 0.05\n"
            "acceleration_time_offset: 0.02\n"
            "whitecap_generation: input_initial_output_by_frames\n"
            "initial_state_file: caps.state\n"
            "frame_file: caps_frame\n"
            "small_scale_fluctuations: yes\n"
            "lattice_size: 64 32\n"
            "lattice_spacing: 0.5 0.25\n"
            "random_seed: 99\n"
            "length_scale: 3\n"
            "power_law: 2.5\n"
            "time_scale: 4\n"
            "log_normal_width: 0.6\n"
            "end \n"
            "diffusion:  no \n"
            "end \n");
  ocean_input again;
  std::string printed;
  ASSERT_EQ(read_whitecap_text(again, text, printed), 1) << printed;
  EXPECT_EQ(whitecap_text(again), text);
}

TEST(OceanWhitecapFile, VersionOneStepsItsSpinUpAtTheRunningStepWithoutGeneration) {
  ocean_input ocean;
  ocean.whitecap_generation = -3;  // left from before
  ocean.whitecap_formation_time = 9.0;
  std::string printed;
  ASSERT_EQ(read_whitecap_text(ocean,
                               "Tidecast_data_file whitecaps 1 1\n"
                               "sampling_region center: 1 2 length: 3 4 interval: 5 6\n"
                               "max_distance: 7 reference_time: 8 time_increment: 0.3\n"
                               "initialization_time: 10 whitecap_decay_time: 11\n"
                               "acceleration_thresholds: 12 13 reflectivities: 14 15\n"
                               "smearing_scales: 16 17 18 acceleration_time_offset: 19\n"
                               "small_scale_fluctuations: no diffusion: no end\n",
                               printed),
            1)
      << printed;
  EXPECT_EQ(ocean.whitecap_time_increment, 0.3);
  EXPECT_EQ(ocean.whitecap_initialization_increment, 0.3);
  EXPECT_EQ(ocean.whitecap_formation_time, 0.0);
  EXPECT_EQ(ocean.whitecap_decay_time, 11.0);
  EXPECT_EQ(ocean.acceleration_time_offset, 19.0);
  EXPECT_EQ(ocean.whitecap_generation, 0);
  EXPECT_EQ(ocean.fluctuation_mode, 0);
}

// The lines that follow each generation word, in a version 2 file.
std::string generation_text(const std::string& lines) {
  return "Tidecast_data_file whitecaps 2 2 sampling_region center: 0 0 length: 1 1\n"
         "interval: 1 1 max_distance: 1 reference_time: 0 time_increment: 1\n"
         "initialization_time: 0 initialization_increment: 1 formation_time: 0\n"
         "whitecap_decay_time: 1 acceleration_thresholds: 1 2 reflectivities: 1 2\n"
         "smearing_scales: 0 0 0 acceleration_time_offset: 0\n" +
         lines + "\nsmall_scale_fluctuations: no diffusion: no end\n";
}

TEST(OceanWhitecapFile, GenerationWordsNameTheirFiles) {
  struct Case {
    const char* lines;
    int mode;
    const char* state;
    const char* frames;
  };
  const Case cases[] = {
      {"whitecap_generation: input initial_state_file: in.state", 1, "in.state", "f0"},
      {"whitecap_generation: output initial_state_file: out.state", -1, "out.state", "f0"},
      {"whitecap_generation: input_by_frames frame_file: in_frames", -2, "s0", "in_frames"},
      {"whitecap_generation: output_by_frames frame_file: out_frames", -3, "s0", "out_frames"},
      {"whitecap_generation: input_initial_output_by_frames initial_state_file: a "
       "frame_file: b",
       2, "a", "b"},
      {"whitecap_generation: no", 0, "s0", "f0"},
      {"whitecap_generation: sometimes", 0, "s0", "f0"},
  };
  for (const Case& each : cases) {
    ocean_input ocean;
    copy_text(ocean.initial_state_file, "s0", 256);
    copy_text(ocean.frame_file, "f0", 256);
    std::string printed;
    ASSERT_EQ(read_whitecap_text(ocean, generation_text(each.lines), printed), 1)
        << each.lines << printed;
    EXPECT_EQ(ocean.whitecap_generation, each.mode) << each.lines;
    EXPECT_STREQ(ocean.initial_state_file, each.state) << each.lines;
    EXPECT_STREQ(ocean.frame_file, each.frames) << each.lines;
    // Written and read again, the same mode and names.
    ocean_input again;
    ASSERT_EQ(read_whitecap_text(again, whitecap_text(ocean), printed), 1) << printed;
    EXPECT_EQ(again.whitecap_generation, each.mode);
    EXPECT_EQ(whitecap_text(again), whitecap_text(ocean));
  }
}

TEST(OceanWhitecapFile, GenerationCodeWithoutAWordIsWrittenAsNone) {
  ocean_input ocean;
  ocean.whitecap_generation = 5;
  const std::string text = whitecap_text(ocean);
  EXPECT_NE(text.find("whitecap_generation: no\nsmall_scale_fluctuations: no\n"), std::string::npos)
      << text;
}

TEST(OceanWhitecapFile, TextureFluctuationsReadTheTextureBlock) {
  ocean_input ocean;
  Stream_capture out(std::cout);
  ASSERT_EQ(ocean.read_whitecaps(fixture("foam_textures_whitecaps.dat").c_str()), 1) << out.text();
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(ocean.whitecap_generation, -1);
  EXPECT_STREQ(ocean.initial_state_file, "spun_up.state");
  EXPECT_EQ(ocean.fluctuation_mode, 2);
  const TCOcean_textures_input& foam = ocean.whitecap_textures;
  EXPECT_EQ(foam.active, 1);
  ASSERT_EQ(foam.n_textures, 2);
  EXPECT_STREQ(foam.textures[0].picture_file, "foam_a.rgb");
  EXPECT_EQ(foam.alpha_above[0], 1);
  EXPECT_EQ(foam.textures[0].n_bands, 2);  // the alpha band counts
  EXPECT_EQ(foam.textures[1].v_y, -0.5);
  EXPECT_EQ(foam.order[0], 1);  // priority 4 before priority 1
  // The ocean's own textures are another block.
  EXPECT_EQ(ocean.textures.n_textures, 0);

  ocean_input again;
  std::string printed;
  const std::string text = whitecap_text(ocean);
  ASSERT_EQ(read_whitecap_text(again, text, printed), 1) << printed;
  expect_same_textures(foam, again.whitecap_textures, "foam");
  EXPECT_EQ(whitecap_text(again), text);
}

TEST(OceanWhitecapFile, BrokenTextureBlockIsReported) {
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_whitecap_text(
                ocean,
                replaced(generation_text("whitecap_generation: no"), "small_scale_fluctuations: no",
                         "small_scale_fluctuations: texture Tidecast_data_file texture 2 2 "
                         "surface_type: land"),
                printed),
            0);
  EXPECT_EQ(printed,
            "Error processing texture input. Expected ocean but read land\n"
            "unable to process whitecap texture maps \n");
}

TEST(OceanWhitecapFile, FluctuationBlockMustEndWithEnd) {
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_whitecap_text(
                ocean,
                replaced(generation_text("whitecap_generation: no"), "small_scale_fluctuations: no",
                         "small_scale_fluctuations: yes lattice_size: 8 8 "
                         "lattice_spacing: 1 1 random_seed: 3 length_scale: 1 "
                         "power_law: 1 time_scale: 1 log_normal_width: 1 done"),
                printed),
            0);
  EXPECT_EQ(printed, "unable to read in small scale fluctuation parameters of whitecap\n");
}

TEST(OceanWhitecapFile, WrongClosingWordIsReportedOnTwoLines) {
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_whitecap_text(
                ocean, replaced(generation_text("whitecap_generation: no"), "no end", "no stop"),
                printed),
            0);
  EXPECT_EQ(printed,
            "problem reading whitecap file\n"
            " expected to read end, read stop instead \n");
}

TEST(OceanWhitecapFile, DiffusionWordIsIgnored) {
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(
      read_whitecap_text(
          ocean, replaced(generation_text("whitecap_generation: no"), "diffusion: no", "x: yes"),
          printed),
      1)
      << printed;
}

TEST(OceanWhitecapFile, WrongHeaderNamesTheFile) {
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_whitecap_text(ocean, "Tidecast_data_file whitecaps 3 3\n", printed), 0);
  EXPECT_EQ(printed, "whitecap data file caps.dat not of correct type\n");
}

TEST(OceanWhitecapFile, MissingFilesAreNamed) {
  ocean_input ocean;
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.read_whitecaps("/nonexistent/caps.dat"), 0);
  EXPECT_EQ(ocean.write_whitecaps("/nonexistent/caps.dat"), 0);
  EXPECT_EQ(out.text(),
            "unable to open whitecap file /nonexistent/caps.dat\n"
            "unable to open ocean whitecap output file /nonexistent/caps.dat\n");
}

TEST(OceanWhitecapFile, OceanFileNamingABadWhitecapFileGivesBothLines) {
  Scratch_folder folder;
  const std::string path = folder.file("caps.dat");
  put_file(path, "Tidecast_data_file sun 2 2\n");
  const std::string text = replaced(plain_ocean(5), "whitecaps: no\n",
                                    "whitecaps:  yes\nwhitecap_file:  " + path + "\n");
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "file type sun is not of \n"
            "expected type whitecaps\n"
            "whitecap data file " +
                path +
                " not of correct type\n"
                "unable to read whitecaps file " +
                path + "\n");
}

TEST(OceanWhitecapFile, OceanFileWithABrokenTextureBlockIsReported) {
  const std::string text = replaced(plain_ocean(5), "texture_maps:  no\n",
                                    "texture_maps:  yes\nTidecast_data_file texture 2 2\n"
                                    "surface_type: ocean\nnumber_of_textures: 0\nnotTheEnd\n");
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "Error reading ocean texture maps: Expected endTexture, read notTheEnd\n"
            "unable to process ocean texture maps \n");
}

}  // namespace
