#include "Wake_details_input.h"

#include <gtest/gtest.h>

#include <string>

#include "TCData_file.h"
#include "details_test_helpers.h"

namespace {

const char* const wake_block =
    "n_points_x 512\n"
    "n_points_y 128\n"
    "dx 1\n"
    "dy 0.5\n"
    "spectrum_file: none.dat\n"
    "generate_file: no\n"
    "wake_file: ship_wake.dat\n"
    "position_x: 100\n"
    "position_y: 50\n"
    "direction:  45\n"
    "velocity:   7.5\n"
    "end \n";

const char* const generating_rectangle =
    "Tidecast_data_file wake 1 1\n"
    "generate_wake:  yes \n"
    "wake_file_name:  wake.hdf\n"
    "boat_shape:   rectangle \n"
    "boat_length: 40\n"
    "boat_width:  8\n"
    "boat_depth:  2\n"
    "damping_eps:  0.01\n"
    "damping_us:  2\n"
    "end \n";

const char* const stored_wake =
    "Tidecast_data_file wake 1 1\n"
    "generate_wake:  no \n"
    "wake_file_name:  stored.hdf\n"
    "boat_length: 60\n"
    "boat_width:  12\n"
    "boat_depth:  3\n"
    "end \n";

TEST(WakeDetailsInput, StartsNotPeriodicWithTheTabledNames) {
  Wake_details_input wake;
  EXPECT_EQ(wake.field_code, -6);
  EXPECT_EQ(wake.has_detail_file, 1);
  EXPECT_STREQ(wake.detail_file, "boat_hull_file.dat");
  EXPECT_STREQ(wake.wake_file, "wake_grid.dat ");
  EXPECT_STREQ(wake.hull_file, "");
  EXPECT_EQ(wake.periodic_x, 0);
  EXPECT_EQ(wake.periodic_y, 0);
  EXPECT_EQ(wake.generate_wake, 0);
  EXPECT_EQ(wake.boat_shape, 1);
}

TEST(WakeDetailsInput, BlockPlacesAndMovesTheShip) {
  Wake_details_input wake, again;
  std::string printed;
  ASSERT_EQ(read_block(wake, wake_block, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(wake.n_x, 512);
  EXPECT_EQ(wake.n_y, 128);
  EXPECT_EQ(wake.dx, 1.0);
  EXPECT_EQ(wake.dy, 0.5);
  EXPECT_STREQ(wake.spectrum_file, "none.dat");
  EXPECT_EQ(wake.generate_file, 0);
  EXPECT_STREQ(wake.detail_file, "ship_wake.dat");
  EXPECT_EQ(wake.position_x, 100.0);
  EXPECT_EQ(wake.position_y, 50.0);
  // A quarter of the engine's pi, 3.1415926535.
  EXPECT_DOUBLE_EQ(wake.direction, 0.785398163375);
  EXPECT_EQ(wake.direction, radians_of(45.0));
  EXPECT_EQ(wake.velocity, 7.5);
  EXPECT_EQ(block_of(wake), wake_block);
  ASSERT_EQ(read_block(again, block_of(wake), printed), 1);
  EXPECT_EQ(again.direction, wake.direction);
}

TEST(WakeDetailsInput, BlockClosingWordIsTheGridsMessage) {
  Wake_details_input wake;
  std::string printed;
  std::string text = wake_block;
  text.replace(text.rfind("end"), 3, "speed:");
  EXPECT_EQ(read_block(wake, text, printed), 0);
  EXPECT_EQ(printed, "grid input file is invalid, read speed: instead of end\n");
}

TEST(WakeDetailsInput, GeneratingFileGivesShapeSizesAndDamping) {
  Wake_details_input wake;
  std::string printed;
  ASSERT_EQ(read_detail(wake, generating_rectangle, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(wake.generate_wake, 1);
  EXPECT_STREQ(wake.wake_file, "wake.hdf");
  EXPECT_EQ(wake.boat_shape, 1);
  EXPECT_EQ(wake.boat_length, 40.0);
  EXPECT_EQ(wake.boat_width, 8.0);
  EXPECT_EQ(wake.boat_depth, 2.0);
  EXPECT_EQ(wake.damping_eps, 0.01);
  EXPECT_EQ(wake.damping_us, 2.0);
  EXPECT_EQ(detail_of(wake), generating_rectangle);
}

TEST(WakeDetailsInput, EllipseIsItsOwnShape) {
  Wake_details_input wake;
  std::string printed;
  std::string text = generating_rectangle;
  text.replace(text.find("boat_shape:   rectangle "), 24, "boat_shape:  ellipse ");
  ASSERT_EQ(read_detail(wake, text, printed), 1);
  EXPECT_EQ(wake.boat_shape, 2);
  EXPECT_EQ(wake.boat_depth, 2.0);
  EXPECT_EQ(detail_of(wake), text);
}

TEST(WakeDetailsInput, AnyOtherShapeWordMeansAHullFile) {
  const char* const words[] = {"file", "hull", "Rectangle"};
  for (const char* word : words) {
    Wake_details_input wake;
    std::string printed;
    const std::string text = std::string(
                                 "Tidecast_data_file wake 1 1\n"
                                 "generate_wake:  yes \n"
                                 "wake_file_name:  wake.hdf\n"
                                 "boat_shape:  ") +
                             word +
                             "\n"
                             "file:  hull_shape.dat\n"
                             "damping_eps:  0.5\n"
                             "damping_us:  3\n"
                             "end\n";
    ASSERT_EQ(read_detail(wake, text, printed), 1) << word;
    EXPECT_EQ(wake.boat_shape, 0);
    EXPECT_STREQ(wake.hull_file, "hull_shape.dat");
    EXPECT_EQ(wake.damping_eps, 0.5);
    EXPECT_EQ(wake.damping_us, 3.0);
    EXPECT_EQ(wake.boat_length, 0.0);
    EXPECT_EQ(detail_of(wake),
              "Tidecast_data_file wake 1 1\n"
              "generate_wake:  yes \n"
              "wake_file_name:  wake.hdf\n"
              "boat_shape:  file \n"
              "file:  hull_shape.dat\n"
              "damping_eps:  0.5\n"
              "damping_us:  3\n"
              "end \n");
  }
}

TEST(WakeDetailsInput, StoredWakeGivesOnlyItsSizes) {
  Wake_details_input wake;
  std::string printed;
  ASSERT_EQ(read_detail(wake, stored_wake, printed), 1);
  EXPECT_EQ(wake.generate_wake, 0);
  EXPECT_STREQ(wake.wake_file, "stored.hdf");
  EXPECT_EQ(wake.boat_length, 60.0);
  EXPECT_EQ(wake.boat_width, 12.0);
  EXPECT_EQ(wake.boat_depth, 3.0);
  EXPECT_EQ(wake.damping_eps, 0.0);
  EXPECT_EQ(detail_of(wake), stored_wake);
  // Not generating, a shape without a word is never written.
  wake.boat_shape = 7;
  EXPECT_EQ(detail_of(wake), stored_wake);
}

TEST(WakeDetailsInput, ShapeWithoutAWordCannotBeWritten) {
  Wake_details_input wake;
  wake.generate_wake = 1;
  wake.boat_shape = 3;
  std::ostringstream out;
  Stream_capture printed(std::cout);
  EXPECT_EQ(wake.write_detail_file(out), 0);
  EXPECT_EQ(printed.text(), "unable to generate output for boat shape in wake \n");
  EXPECT_EQ(out.str(), "");
}

TEST(WakeDetailsInput, HeaderOfAnotherFileIsRefused) {
  struct Case {
    const char* text;
    const char* words;
  } cases[] = {
      {"Tidecast_data_file boat 1 1\n",
       "file type boat is not of \nexpected type wake\nfile not of wake data type \n"},
      {"Tidecast_data_files wake 1 1\n",
       "incorrect header Tidecast_data_files in data file\nexpected string Tidecast_data_file \n"
       "file not of wake data type \n"},
      {"Tidecast_data_file wake 2 2\n", "file not of wake data type \n"},
  };
  for (const Case& c : cases) {
    Wake_details_input wake;
    std::string printed;
    EXPECT_EQ(read_detail(wake, std::string(c.text) + "generate_wake: no x.hdf 1 2 3 end", printed),
              0);
    EXPECT_EQ(printed, c.words);
  }
}

TEST(WakeDetailsInput, ClosingWordFailsTheWakeStream) {
  Wake_details_input wake;
  std::string printed;
  std::string text = stored_wake;
  text.replace(text.rfind("end"), 3, "damping_eps:");
  EXPECT_EQ(read_detail(wake, text, printed), 0);
  EXPECT_EQ(printed, "unable to process wake stream \nread damping_eps:instead of end\n");
  EXPECT_EQ(read_detail(wake, "Tidecast_data_file wake 1 1 generate_wake: yes", printed), 0);
  EXPECT_EQ(printed, "unable to process wake stream \nread instead of end\n");
}

TEST(WakePacking, SevenIntsElevenDoublesAndThreeNames) {
  Wake_details_input wake, received;
  std::string printed;
  ASSERT_EQ(read_block(wake, wake_block, printed), 1);
  ASSERT_EQ(read_detail(wake, generating_rectangle, printed), 1);
  copy_text(wake.object_name, "ferry", 256);
  copy_text(wake.hull_file, "ferry_hull.dat", 256);
  wake.periodic_y = 1;
  Packed packed;
  ASSERT_EQ(pack_record(wake, packed, printed), 1);
  EXPECT_EQ(printed, "packing ferry\n");
  EXPECT_EQ(packed.int_bytes, 7 * 4);
  EXPECT_EQ(packed.double_bytes, 11 * 8);
  EXPECT_EQ(packed.char_bytes, 768);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(printed, "ferry unpacked !\n");
  EXPECT_EQ(received.periodic_x, 0);
  EXPECT_EQ(received.periodic_y, 1);
  EXPECT_EQ(received.n_x, 512);
  EXPECT_EQ(received.n_y, 128);
  EXPECT_EQ(received.generate_file, 0);
  EXPECT_EQ(received.dx, 1.0);
  EXPECT_EQ(received.dy, 0.5);
  EXPECT_EQ(received.position_x, 100.0);
  EXPECT_EQ(received.position_y, 50.0);
  EXPECT_EQ(received.direction, wake.direction);
  EXPECT_EQ(received.velocity, 7.5);
  EXPECT_STREQ(received.hull_file, "ferry_hull.dat");
  EXPECT_EQ(detail_of(received), detail_of(wake));
  // The names of the files the field does not read stay the receiver's.
  EXPECT_STREQ(received.detail_file, "boat_hull_file.dat");
  EXPECT_STREQ(received.spectrum_file, "ocean_spectrum.dat ");
}

TEST(WakePacking, WrongSizesAndMissingArraysAreRefused) {
  Wake_details_input wake;
  Packed packed;
  std::string printed;
  ASSERT_EQ(pack_record(wake, packed, printed), 1);
  struct Case {
    int int_bytes, double_bytes, char_bytes;
    const char* words;
  } cases[] = {
      {8 * 4, 11 * 8, 768, "wake packing integer array of the wrong size \n"},
      {7 * 4, 10 * 8, 768, "wake packing double array of the wrong size \n"},
      {7 * 4, 11 * 8, 1024, "wake char packing array of the wrong size \n"},
  };
  for (const Case& c : cases) {
    Wake_details_input received;
    EXPECT_EQ(unpack_record(received, packed, c.int_bytes, c.double_bytes, c.char_bytes, printed),
              0);
    EXPECT_EQ(printed, c.words);
  }
  Wake_details_input received;
  Stream_capture out(std::cout);
  EXPECT_EQ(received.unpack(packed.ints, packed.int_bytes, nullptr, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
  EXPECT_EQ(out.text(), "double variable pointer not allocated \n");
}

}  // namespace
