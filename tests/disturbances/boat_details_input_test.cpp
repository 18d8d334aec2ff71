#include "Boat_details_input.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCData_file.h"
#include "details_test_helpers.h"

namespace {

const char* const boat_block =
    "n_points_x 256\n"
    "n_points_y 64\n"
    "dx 0.5\n"
    "dy 0.25\n"
    "boat_file: ferry.dat\n"
    "position_x: -20\n"
    "position_y: 30\n"
    "direction:  135\n"
    "velocity:   5\n"
    "end \n";

const char* const hull_part =
    "Tidecast_data_file boat 2 2\n"
    "number_of_hull_points: 4\n"
    "-10 -2\n"
    "10 -2\n"
    "12 0\n"
    "10 2\n"
    "end \n"
    "boat_hull_depth:  constant\n"
    "hull_depth:  1.5\n"
    "end \n";

const char* const dynamic_part =
    "wake_type:  dynamic\n"
    "use_initial_wake:  no_output_height_frames\n"
    "wake_file_name:   state.dat\n"
    "reference_time: 5\n"
    "initialization_interval: 20\n"
    "time_increment:  0.1\n"
    "acceleration_threshold:  0.5\n"
    "fore_wake_enhancement:    1.25\n"
    "aft_wake_enhancement:   0.75\n"
    "couple_to_ocean_waves:  yes \n"
    "end \n";

const char* const kelvin_lines =
    "wake_type:  kelvin\n"
    "use_initial_wake:  yes\n"
    "wake_file_name:   kelvin.hdf\n"
    "eps0:   0.02\n"
    "us:     3\n"
    "slope_threshold:  0.4\n";

const char* const coupling_block =
    "use_initial_wake:  yes_input_height_frames\n"
    "wake_file_name:   coupled.dat\n"
    "reference_time: 1\n"
    "initialization_interval: 8\n"
    "time_increment:  0.05\n"
    "acceleration_threshold:  0.3\n";

const std::string constant_depth = "boat_hull_depth:  constant\nhull_depth:  1.5\n";

std::string dynamic_boat() {
  return std::string(hull_part) + dynamic_part;
}

TEST(BoatDetailsInput, StartsWithoutHullOrWake) {
  Boat_details_input boat;
  EXPECT_EQ(boat.field_code, -9);
  EXPECT_EQ(boat.has_detail_file, 1);
  EXPECT_STREQ(boat.detail_file, "boat_grid.dat ");
  EXPECT_EQ(boat.periodic_x, 0);
  EXPECT_EQ(boat.periodic_y, 0);
  EXPECT_EQ(boat.number_of_hull_points, 0);
  EXPECT_EQ(boat.hull_type, 601);
  EXPECT_EQ(boat.wake_type, 501);
  EXPECT_EQ(boat.fore_enhancement, 1.0);
  EXPECT_EQ(boat.aft_enhancement, 1.0);
  EXPECT_EQ(boat.couple_to_ocean_waves, 0);
  EXPECT_STREQ(boat.kelvin_file, "boat_wake.hdf");
  EXPECT_STREQ(boat.dynamic_file, "boat_wake.dat");
  EXPECT_STREQ(boat.hull_file, "boat_wake_height.hdf");
}

TEST(BoatDetailsInput, BlockPlacesAndMovesTheHull) {
  Boat_details_input boat, again;
  std::string printed;
  ASSERT_EQ(read_block(boat, boat_block, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(boat.n_x, 256);
  EXPECT_EQ(boat.n_y, 64);
  EXPECT_EQ(boat.dx, 0.5);
  EXPECT_EQ(boat.dy, 0.25);
  EXPECT_STREQ(boat.detail_file, "ferry.dat");
  EXPECT_EQ(boat.position_x, -20.0);
  EXPECT_EQ(boat.position_y, 30.0);
  EXPECT_DOUBLE_EQ(boat.direction, 2.356194490125);
  EXPECT_EQ(boat.direction, radians_of(135.0));
  EXPECT_EQ(boat.velocity, 5.0);
  EXPECT_EQ(block_of(boat), boat_block);
  ASSERT_EQ(read_block(again, block_of(boat), printed), 1);
  EXPECT_EQ(again.direction, boat.direction);
  std::string text = boat_block;
  text.replace(text.rfind("end"), 3, "spectrum_file:");
  EXPECT_EQ(read_block(again, text, printed), 0);
  EXPECT_EQ(printed, "ocean boat input file is invalid, read spectrum_file: instead of end\n");
}

TEST(BoatDetailsInput, ReadsTheHullAndADynamicWake) {
  Boat_details_input boat;
  std::string printed;
  ASSERT_EQ(read_detail(boat, dynamic_boat(), printed), 1);
  EXPECT_EQ(printed, "");
  ASSERT_EQ(boat.number_of_hull_points, 4);
  const double xs[] = {-10, 10, 12, 10};
  const double ys[] = {-2, -2, 0, 2};
  for (int i = 0; i < 4; i++) {
    EXPECT_EQ(boat.hull_x[i], xs[i]);
    EXPECT_EQ(boat.hull_y[i], ys[i]);
  }
  EXPECT_EQ(boat.hull_type, 601);
  EXPECT_EQ(boat.hull_depth, 1.5);
  EXPECT_EQ(boat.wake_type, 503);
  EXPECT_EQ(boat.dynamic_initial, 3);
  EXPECT_STREQ(boat.dynamic_file, "state.dat");
  EXPECT_EQ(boat.reference_time, 5.0);
  EXPECT_EQ(boat.initialization_interval, 20.0);
  EXPECT_EQ(boat.time_increment, 0.1);
  EXPECT_EQ(boat.acceleration_threshold, 0.5);
  EXPECT_EQ(boat.fore_enhancement, 1.25);
  EXPECT_EQ(boat.aft_enhancement, 0.75);
  EXPECT_EQ(boat.couple_to_ocean_waves, 1);
  EXPECT_EQ(detail_of(boat), dynamic_boat());
}

TEST(BoatDetailsInput, VersionOneDynamicWakeHasNoEnhancements) {
  Boat_details_input boat;
  boat.fore_enhancement = 3.0;
  std::string text = dynamic_boat();
  text.replace(0, 27, "Tidecast_data_file boat 1 1");
  const size_t from = text.find("fore_wake");
  text.erase(from, text.find("couple_to") - from);
  std::string printed;
  ASSERT_EQ(read_detail(boat, text, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(boat.fore_enhancement, 1.0);
  EXPECT_EQ(boat.aft_enhancement, 1.0);
  EXPECT_EQ(boat.acceleration_threshold, 0.5);
  EXPECT_EQ(boat.couple_to_ocean_waves, 1);
}

TEST(BoatDetailsInput, EachUseInitialWakeWordHasItsCode) {
  struct Case {
    const char* word;
    int code;
  } cases[] = {{"yes", 1},
               {"yes_input_height_frames", 2},
               {"no_output_height_frames", 3},
               {"yes_output_height_frames", 4},
               {"no", 0},
               {"maybe", 0}};
  for (const Case& c : cases) {
    Boat_details_input boat;
    boat.dynamic_initial = 9;
    std::string text = dynamic_boat();
    text.replace(text.find("no_output_height_frames"), 23, c.word);
    std::string printed;
    ASSERT_EQ(read_detail(boat, text, printed), 1) << c.word;
    EXPECT_EQ(boat.dynamic_initial, c.code) << c.word;
  }
}

TEST(BoatDetailsInput, HullDepthFromAFileOrTheCustomShape) {
  Boat_details_input boat, custom;
  std::string printed;
  std::string text = dynamic_boat();
  text.replace(text.find(constant_depth), constant_depth.size(),
               "boat_hull_depth:  file\n"
               "hull_file:    hull.hdf\n"
               "hull_dx:      0.5\n"
               "hull_dy:      0.25\n"
               "hull_scaling: 2\n");
  ASSERT_EQ(read_detail(boat, text, printed), 1);
  EXPECT_EQ(boat.hull_type, 602);
  EXPECT_STREQ(boat.hull_file, "hull.hdf");
  EXPECT_EQ(boat.hull_dx, 0.5);
  EXPECT_EQ(boat.hull_dy, 0.25);
  EXPECT_EQ(boat.hull_depth, 2.0);
  EXPECT_EQ(detail_of(boat), text);

  text = dynamic_boat();
  text.replace(text.find(constant_depth), constant_depth.size(),
               "boat_hull_depth:  custom_type_one\n"
               "hull_scaling: 3\n");
  ASSERT_EQ(read_detail(custom, text, printed), 1);
  EXPECT_EQ(custom.hull_type, 701);
  EXPECT_EQ(custom.hull_depth, 3.0);
  EXPECT_EQ(detail_of(custom), text);
}

TEST(BoatDetailsInput, IllegalHullTypeIsNamed) {
  Boat_details_input boat;
  std::string printed;
  std::string text = dynamic_boat();
  text.replace(text.find("constant"), 8, "sphere");
  EXPECT_EQ(read_detail(boat, text, printed), 0);
  EXPECT_EQ(printed, "illegal boat hull type sphere\n");
}

TEST(BoatDetailsInput, HullCountBelowOneStaysZero) {
  const char* const counts[] = {"0", "-3"};
  for (const char* count : counts) {
    Boat_details_input boat;
    std::string printed;
    ASSERT_EQ(
        read_detail(boat,
                    std::string("Tidecast_data_file boat 2 2\nnumber_of_hull_points: ") + count +
                        "\nend\nboat_hull_depth: constant hull_depth: 1 end\n"
                        "wake_type: none couple_to_ocean_waves: no end\n",
                    printed),
        1)
        << count;
    EXPECT_EQ(printed, "");
    EXPECT_EQ(boat.number_of_hull_points, 0);
    EXPECT_NE(boat.hull_x, nullptr);
  }
}

TEST(BoatDetailsInput, OtherWakeWordsMeanNoWakeAndFullIsKept) {
  const char* const words[] = {"none", "no", "wavy"};
  for (const char* word : words) {
    Boat_details_input boat;
    boat.wake_type = 503;
    std::string printed;
    const std::string text =
        std::string(hull_part) + "wake_type: " + word + "\ncouple_to_ocean_waves:   no  \nend\n";
    ASSERT_EQ(read_detail(boat, text, printed), 1) << word;
    EXPECT_EQ(boat.wake_type, 501);
    EXPECT_EQ(detail_of(boat),
              std::string(hull_part) + "wake_type:  none\ncouple_to_ocean_waves:   no  \nend \n");
  }
  Boat_details_input full;
  std::string printed;
  ASSERT_EQ(read_detail(full, std::string(hull_part) + "wake_type: full couple: yes end", printed),
            1);
  EXPECT_EQ(full.wake_type, 504);
  EXPECT_EQ(full.couple_to_ocean_waves, 1);
}

TEST(BoatDetailsInput, KelvinWakeAloneAndCoupled) {
  Boat_details_input alone, coupled;
  std::string printed;
  ASSERT_EQ(
      read_detail(alone,
                  std::string(hull_part) + kelvin_lines + "couple_to_ocean_waves:   no  \nend \n",
                  printed),
      1);
  EXPECT_EQ(alone.wake_type, 502);
  EXPECT_EQ(alone.kelvin_initial, 1);
  EXPECT_STREQ(alone.kelvin_file, "kelvin.hdf");
  EXPECT_EQ(alone.eps0, 0.02);
  EXPECT_EQ(alone.us, 3.0);
  EXPECT_EQ(alone.slope_threshold, 0.4);
  EXPECT_EQ(alone.couple_to_ocean_waves, 0);

  ASSERT_EQ(read_detail(coupled,
                        std::string(hull_part) + kelvin_lines + "couple_to_ocean_waves:  yes \n" +
                            coupling_block + "end\n",
                        printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(coupled.couple_to_ocean_waves, 1);
  EXPECT_EQ(coupled.dynamic_initial, 2);
  EXPECT_STREQ(coupled.dynamic_file, "coupled.dat");
  EXPECT_EQ(coupled.reference_time, 1.0);
  EXPECT_EQ(coupled.initialization_interval, 8.0);
  EXPECT_EQ(coupled.time_increment, 0.05);
  EXPECT_EQ(coupled.acceleration_threshold, 0.3);
  EXPECT_EQ(coupled.fore_enhancement, 1.0);
}

TEST(BoatDetailsInput, KelvinWriterPutsTheCouplingWordTheWrongWayRound) {
  Boat_details_input boat, again;
  std::string printed;
  ASSERT_EQ(read_detail(boat,
                        std::string(hull_part) + kelvin_lines + "couple_to_ocean_waves:  yes \n" +
                            coupling_block + "end\n",
                        printed),
            1);
  ASSERT_EQ(boat.couple_to_ocean_waves, 1);
  // Coupled, it is written "no", and without the dynamic lines.
  const std::string coupled_written = detail_of(boat);
  EXPECT_EQ(coupled_written,
            std::string(hull_part) + kelvin_lines + "couple_to_ocean_waves:   no  \nend \n");
  ASSERT_EQ(read_detail(again, coupled_written, printed), 1);
  EXPECT_EQ(again.couple_to_ocean_waves, 0);
  // Not coupled, it is written "yes" with the dynamic lines, and so reads
  // back coupled.
  // Its dynamic lines are those the record holds: here the defaults.
  EXPECT_EQ(detail_of(again), std::string(hull_part) + kelvin_lines +
                                  "couple_to_ocean_waves:   yes \n"
                                  "use_initial_wake:  no\n"
                                  "wake_file_name:   boat_wake.dat\n"
                                  "reference_time: 0\n"
                                  "initialization_interval: 0\n"
                                  "time_increment:  0\n"
                                  "acceleration_threshold:  0\n"
                                  "end \n");
  Boat_details_input third;
  ASSERT_EQ(read_detail(third, detail_of(again), printed), 1);
  EXPECT_EQ(third.couple_to_ocean_waves, 1);
}

TEST(BoatDetailsInput, DynamicWriterPutsTheCouplingWordAsItIs) {
  Boat_details_input boat;
  std::string printed;
  ASSERT_EQ(read_detail(boat, dynamic_boat(), printed), 1);
  boat.couple_to_ocean_waves = 0;
  std::string expected = dynamic_boat();
  expected.replace(expected.find("couple_to_ocean_waves:  yes "), 28,
                   "couple_to_ocean_waves:   no  ");
  EXPECT_EQ(detail_of(boat), expected);
}

TEST(BoatDetailsInput, HeaderAndClosingWordsFailTheirParts) {
  Boat_details_input boat;
  std::string printed;
  EXPECT_EQ(read_detail(boat, "Tidecast_data_file wake 2 2 number_of_hull_points: 0 end", printed),
            0);
  EXPECT_EQ(printed,
            "file type wake is not of \nexpected type boat\nfile not of ocean boat data type \n");
  EXPECT_EQ(read_detail(boat, "Tidecast_data_file boat 3 3 n 0 end", printed), 0);
  EXPECT_EQ(printed, "file not of ocean boat data type \n");

  std::string text = dynamic_boat();
  text.replace(text.find("end"), 3, "10");
  EXPECT_EQ(read_detail(boat, text, printed), 0);
  EXPECT_EQ(printed, "unable to process hull part of boat stream \nread 10instead of end\n");

  text = dynamic_boat();
  text.replace(text.find("end", text.find("hull_depth:")), 3, "wake_type:");
  EXPECT_EQ(read_detail(boat, text, printed), 0);
  EXPECT_EQ(printed,
            "unable to process hull part of boat stream \nread wake_type:instead of end\n");

  text = dynamic_boat();
  text.replace(text.rfind("end"), 3, "over");
  EXPECT_EQ(read_detail(boat, text, printed), 0);
  EXPECT_EQ(printed, "unable to process wake part of boat stream \nread overinstead of end\n");
}

TEST(BoatDetailsInput, HugeHullCountInAShortFileFailsWithoutTheMemory) {
  Boat_details_input boat;
  std::string printed;
  EXPECT_EQ(read_detail(boat,
                        "Tidecast_data_file boat 2 2 number_of_hull_points: 2000000000 "
                        "1 2 3 4 end",
                        printed),
            0);
  EXPECT_EQ(printed, "unable to process hull part of boat stream \nread endinstead of end\n");
  EXPECT_EQ(boat.number_of_hull_points, 0);
}

TEST(BoatDetailsInput, CodesWithoutWordsCannotBeWritten) {
  struct Case {
    int hull_type, wake_type, kelvin_initial, dynamic_initial;
    const char* words;
  } cases[] = {
      {600, 501, 0, 0, "illegal value of boat_hull_flag in Boat Grid parameters \n"},
      {601, 505, 0, 0, "illegal wake_type_flag in Boat input structure \n"},
      {601, 502, 5, 0, "illegal generation flag in Boat input structure \n"},
      {601, 502, 0, -1, "illegal generation flag in Boat input structure \n"},
      {601, 503, 0, 7, "illegal generation flag in Boat input structure \n"},
  };
  for (const Case& c : cases) {
    Boat_details_input boat;
    boat.hull_type = c.hull_type;
    boat.wake_type = c.wake_type;
    boat.kelvin_initial = c.kelvin_initial;
    boat.dynamic_initial = c.dynamic_initial;
    std::ostringstream out;
    Stream_capture printed(std::cout);
    EXPECT_EQ(boat.write_detail_file(out), 0);
    EXPECT_EQ(printed.text(), c.words);
    EXPECT_EQ(out.str(), "");
  }
  // Coupled, a Kelvin wake writes no dynamic lines, so their flag is not asked.
  Boat_details_input coupled;
  coupled.wake_type = 502;
  coupled.couple_to_ocean_waves = 1;
  coupled.dynamic_initial = 7;
  std::ostringstream out;
  EXPECT_EQ(coupled.write_detail_file(out), 1);
}

TEST(BoatPacking, HullCrossesTheArraysAndIsMadeAnew) {
  Boat_details_input boat, received;
  std::string printed;
  ASSERT_EQ(read_block(boat, boat_block, printed), 1);
  ASSERT_EQ(read_detail(boat, dynamic_boat(), printed), 1);
  boat.eps0 = 0.125;
  copy_text(boat.kelvin_file, "k.hdf", 256);
  Packed packed;
  ASSERT_EQ(pack_record(boat, packed, printed), 1);
  EXPECT_EQ(packed.int_bytes, 14 * 4);
  EXPECT_EQ(packed.double_bytes, (2 + 16 + 8) * 8);
  EXPECT_EQ(packed.char_bytes, 1536);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  ASSERT_EQ(received.number_of_hull_points, 4);
  EXPECT_EQ(received.hull_x[2], 12.0);
  EXPECT_EQ(received.hull_y[3], 2.0);
  EXPECT_EQ(received.eps0, 0.125);
  EXPECT_STREQ(received.kelvin_file, "k.hdf");
  EXPECT_STREQ(received.hull_file, "boat_wake_height.hdf");
  EXPECT_EQ(detail_of(received), detail_of(boat));
  EXPECT_EQ(block_of(received), boat_block);
}

TEST(BoatPacking, WrongSizesAndCountsAreRefusedInTheBoatsWords) {
  Boat_details_input boat;
  std::string printed;
  ASSERT_EQ(read_detail(boat, dynamic_boat(), printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(boat, packed, printed), 1);
  Boat_details_input received;
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes - 4, packed.double_bytes,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "boat packing integer array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes - 8,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "boat packing double array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes,
                          packed.char_bytes + 1, printed),
            0);
  EXPECT_EQ(printed, "boat char packing array of the wrong size \n");
  packed.ints[8] = -5;
  EXPECT_EQ(unpack_record(received, packed, printed), 0);
  EXPECT_EQ(printed, "boat packing integer array of the wrong size \n");
  packed.ints[8] = 1 << 29;
  EXPECT_EQ(unpack_record(received, packed, printed), 0);
  EXPECT_EQ(printed, "boat packing double array of the wrong size \n");
  EXPECT_EQ(received.number_of_hull_points, 0);
}

}  // namespace
