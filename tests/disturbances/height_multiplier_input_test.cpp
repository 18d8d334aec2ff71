#include <gtest/gtest.h>

#include <string>

#include "Height_grid_details_input.h"
#include "Multiplier_grid_details_input.h"
#include "TCData_file.h"
#include "details_test_helpers.h"

namespace {

const char* const height_block =
    "n_points_x 100\n"
    "n_points_y 50\n"
    "dx 0.2\n"
    "dy 0.4\n"
    "height_detail_file: bump.dat\n"
    "position_x: 10\n"
    "position_y: -4\n"
    "orientation: 30\n"
    "velocity:   2\n"
    "direction:  90\n"
    "end \n";

const char* const height_detail =
    "Tidecast_data_file height_grid 2 2\n"
    "height_file_name:  bump.hdf\n"
    "periodicity:  1 0\n"
    "number_of_scaling_key_times:  3\n"
    "time   scale \n"
    "0 0\n"
    "10 2\n"
    "12.5 -0.25\n"
    "end \n";

std::string multiplier_form(std::string text) {
  const std::string from[] = {"height_detail_file:", "height_grid", "height_file_name:"};
  const std::string to[] = {"multiplier_detail_file:", "multiplier_grid", "multiplier_file_name:"};
  for (int i = 0; i < 3; i++) {
    const size_t at = text.find(from[i]);
    if (at != std::string::npos) text.replace(at, from[i].size(), to[i]);
  }
  return text;
}

TEST(HeightGridDetailsInput, StartsWithAConstantScaleOfOne) {
  Height_grid_details_input height;
  EXPECT_EQ(height.field_code, -7);
  EXPECT_EQ(height.has_detail_file, 1);
  EXPECT_STREQ(height.detail_file, "height_field_file.dat");
  EXPECT_STREQ(height.field_file, "nouse_grid.dat ");
  EXPECT_EQ(height.periodic_x, 0);
  EXPECT_EQ(height.periodic_y, 0);
  ASSERT_EQ(height.number_of_key_times, 1);
  EXPECT_EQ(height.key_times[0], 0.0);
  EXPECT_EQ(height.key_scales[0], 1.0);
}

TEST(MultiplierGridDetailsInput, StartsWithItsOwnCodeAndNames) {
  Multiplier_grid_details_input multiplier;
  EXPECT_EQ(multiplier.field_code, -8);
  EXPECT_EQ(multiplier.has_detail_file, 1);
  EXPECT_STREQ(multiplier.detail_file, "multiplier_grid_file.dat");
  EXPECT_STREQ(multiplier.field_file, "nouse_grid.dat ");
  EXPECT_EQ(multiplier.periodic_x, 0);
  ASSERT_EQ(multiplier.number_of_key_times, 1);
  EXPECT_EQ(multiplier.key_scales[0], 1.0);
}

TEST(HeightGridDetailsInput, BlockPlacesTurnsAndMovesTheGrid) {
  Height_grid_details_input height, again;
  std::string printed;
  ASSERT_EQ(read_block(height, height_block, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(height.n_x, 100);
  EXPECT_EQ(height.n_y, 50);
  EXPECT_EQ(height.dx, 0.2);
  EXPECT_EQ(height.dy, 0.4);
  EXPECT_STREQ(height.detail_file, "bump.dat");
  EXPECT_EQ(height.position_x, 10.0);
  EXPECT_EQ(height.position_y, -4.0);
  EXPECT_DOUBLE_EQ(height.orientation, 0.5235987755833333);
  EXPECT_EQ(height.orientation, radians_of(30.0));
  EXPECT_EQ(height.velocity, 2.0);
  EXPECT_EQ(height.direction, radians_of(90.0));
  EXPECT_EQ(block_of(height), height_block);
  ASSERT_EQ(read_block(again, block_of(height), printed), 1);
  EXPECT_EQ(again.orientation, height.orientation);
}

TEST(MultiplierGridDetailsInput, BlockNamesTheMultiplierDetailFile) {
  Multiplier_grid_details_input multiplier;
  std::string printed;
  const std::string block = multiplier_form(height_block);
  ASSERT_EQ(read_block(multiplier, block, printed), 1);
  EXPECT_STREQ(multiplier.detail_file, "bump.dat");
  EXPECT_EQ(multiplier.direction, radians_of(90.0));
  EXPECT_EQ(block_of(multiplier), block);
}

TEST(HeightGridDetailsInput, EachGridKindClosesItsBlockInItsOwnWords) {
  Height_grid_details_input height;
  Multiplier_grid_details_input multiplier;
  std::string printed;
  const char* const text = "n 1 n 1 d 1 d 1 f a.dat x 1 y 2 o 3 v 4 d 5 done";
  EXPECT_EQ(read_block(height, text, printed), 0);
  EXPECT_EQ(printed, "height_field input file is invalid, read done instead of end\n");
  EXPECT_EQ(read_block(multiplier, text, printed), 0);
  EXPECT_EQ(printed, "multiplier_grid input file is invalid, read done instead of end\n");
}

TEST(HeightGridDetailsInput, ReadsTheDataSetNamePeriodicityAndKeyTable) {
  Height_grid_details_input height;
  std::string printed;
  ASSERT_EQ(read_detail(height, height_detail, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_STREQ(height.field_file, "bump.hdf");
  EXPECT_EQ(height.periodic_x, 1);
  EXPECT_EQ(height.periodic_y, 0);
  ASSERT_EQ(height.number_of_key_times, 3);
  EXPECT_EQ(height.key_times[0], 0.0);
  EXPECT_EQ(height.key_scales[0], 0.0);
  EXPECT_EQ(height.key_times[1], 10.0);
  EXPECT_EQ(height.key_scales[1], 2.0);
  EXPECT_EQ(height.key_times[2], 12.5);
  EXPECT_EQ(height.key_scales[2], -0.25);
  EXPECT_EQ(detail_of(height), height_detail);
}

TEST(MultiplierGridDetailsInput, DetailFileHasItsOwnTypeAndNameKeyword) {
  Multiplier_grid_details_input multiplier, again;
  std::string printed;
  const std::string text = multiplier_form(height_detail);
  ASSERT_EQ(read_detail(multiplier, text, printed), 1);
  EXPECT_STREQ(multiplier.field_file, "bump.hdf");
  EXPECT_EQ(multiplier.number_of_key_times, 3);
  EXPECT_EQ(detail_of(multiplier), text);
  ASSERT_EQ(read_detail(again, detail_of(multiplier), printed), 1);
  EXPECT_EQ(detail_of(again), text);
}

TEST(HeightGridDetailsInput, VersionOneFileHasNoPeriodicityLine) {
  Height_grid_details_input height;
  std::string printed;
  ASSERT_EQ(read_detail(height,
                        "Tidecast_data_file height_grid 1 1\n"
                        "height_file_name:  old.hdf\n"
                        "number_of_scaling_key_times:  1\n"
                        "time scale\n"
                        "5 0.5\n"
                        "end\n",
                        printed),
            1);
  EXPECT_EQ(printed, "");
  EXPECT_STREQ(height.field_file, "old.hdf");
  EXPECT_EQ(height.periodic_x, 0);
  EXPECT_EQ(height.periodic_y, 0);
  ASSERT_EQ(height.number_of_key_times, 1);
  EXPECT_EQ(height.key_times[0], 5.0);
  EXPECT_EQ(height.key_scales[0], 0.5);
}

TEST(HeightGridDetailsInput, FileOfAnotherKindIsRefused) {
  Height_grid_details_input height;
  Multiplier_grid_details_input multiplier;
  std::string printed;
  EXPECT_EQ(read_detail(height, multiplier_form(height_detail), printed), 0);
  EXPECT_EQ(printed,
            "file type multiplier_grid is not of \nexpected type height_grid\n"
            "file not of height_grid data type \n");
  EXPECT_EQ(read_detail(multiplier, height_detail, printed), 0);
  EXPECT_EQ(printed,
            "file type height_grid is not of \nexpected type multiplier_grid\n"
            "file not of multiplier_grid data type \n");
  EXPECT_EQ(
      read_detail(height, "Tidecast_data_file height_grid 3 3 h a.hdf p 0 0 n 0 t s end", printed),
      0);
  EXPECT_EQ(printed, "file not of height_grid data type \n");
}

TEST(HeightGridDetailsInput, ClosingWordFailsTheStreamForBothKinds) {
  Height_grid_details_input height;
  Multiplier_grid_details_input multiplier;
  std::string printed;
  std::string text = height_detail;
  text.replace(text.rfind("end"), 3, "20");
  EXPECT_EQ(read_detail(height, text, printed), 0);
  EXPECT_EQ(printed, "unable to process height grid stream \nread 20instead of end\n");
  EXPECT_EQ(read_detail(multiplier, multiplier_form(text), printed), 0);
  EXPECT_EQ(printed, "unable to process height grid stream \nread 20instead of end\n");
}

TEST(HeightGridDetailsInput, NegativeKeyCountFailsAndKeepsTheTable) {
  Height_grid_details_input height;
  std::string printed;
  EXPECT_EQ(read_detail(height,
                        "Tidecast_data_file height_grid 2 2 h a.hdf p 0 0 "
                        "number_of_scaling_key_times: -2 time scale end",
                        printed),
            0);
  EXPECT_EQ(printed, "unable to allocate time array in height grid \n");
  ASSERT_EQ(height.number_of_key_times, 1);
  EXPECT_EQ(height.key_scales[0], 1.0);
}

TEST(HeightGridDetailsInput, HugeKeyCountInAShortFileFailsAtTheClose) {
  Height_grid_details_input height;
  std::string printed;
  EXPECT_EQ(read_detail(height,
                        "Tidecast_data_file height_grid 2 2 h a.hdf p 0 0 "
                        "number_of_scaling_key_times: 2000000000 time scale 1 2 3 4 end",
                        printed),
            0);
  EXPECT_EQ(printed, "unable to process height grid stream \nread endinstead of end\n");
  ASSERT_EQ(height.number_of_key_times, 1);
  EXPECT_EQ(height.key_scales[0], 1.0);
}

TEST(HeightGridDetailsInput, EmptyKeyTableIsKept) {
  Height_grid_details_input height, again;
  std::string printed;
  ASSERT_EQ(
      read_detail(height, "Tidecast_data_file height_grid 2 2 h a.hdf p 0 1 n 0 time scale end",
                  printed),
      1);
  EXPECT_EQ(height.number_of_key_times, 0);
  EXPECT_EQ(height.periodic_y, 1);
  ASSERT_EQ(read_detail(again, detail_of(height), printed), 1);
  EXPECT_EQ(again.number_of_key_times, 0);
}

TEST(HeightGridPacking, KeyTableCrossesTheArraysAndIsMadeAnew) {
  Height_grid_details_input height, received;
  std::string printed;
  ASSERT_EQ(read_block(height, height_block, printed), 1);
  ASSERT_EQ(read_detail(height, height_detail, printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(height, packed, printed), 1);
  // The grid part's 8 ints and the key count; dx, dy, five placement
  // doubles and two of each of the three keys; the name, two file names and
  // the data set's.
  EXPECT_EQ(packed.int_bytes, 9 * 4);
  EXPECT_EQ(packed.double_bytes, 13 * 8);
  EXPECT_EQ(packed.char_bytes, 1024);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  ASSERT_EQ(received.number_of_key_times, 3);
  EXPECT_EQ(received.key_times[2], 12.5);
  EXPECT_EQ(received.key_scales[2], -0.25);
  EXPECT_EQ(detail_of(received), height_detail);
  EXPECT_EQ(block_of(received), height_block);
}

TEST(HeightGridPacking, WrongSizesSpeakTheWakesWords) {
  Height_grid_details_input height;
  std::string printed;
  ASSERT_EQ(read_detail(height, height_detail, printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(height, packed, printed), 1);
  Height_grid_details_input received;
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes - 4, packed.double_bytes,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "wake packing integer array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes - 16,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "wake packing double array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes,
                          packed.char_bytes - 256, printed),
            0);
  EXPECT_EQ(printed, "wake char packing array of the wrong size \n");
  ASSERT_EQ(received.number_of_key_times, 1);
}

TEST(HeightGridPacking, KeyCountThatDisagreesWithTheSizesIsRefused) {
  Height_grid_details_input height;
  std::string printed;
  ASSERT_EQ(read_detail(height, height_detail, printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(height, packed, printed), 1);
  {
    // Sizes taken before the count is changed.
    Height_grid_details_input received;
    Stream_capture out(std::cout);
    received.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
    packed.ints[8] = 2;
    EXPECT_EQ(received.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                              packed.chars, packed.char_bytes),
              0);
    EXPECT_EQ(out.text(), "wake packing integer array of the wrong size \n");
  }
  // A count no array could hold.
  packed.ints[8] = 1 << 30;
  Height_grid_details_input received;
  EXPECT_EQ(unpack_record(received, packed, printed), 0);
  EXPECT_EQ(printed, "wake packing double array of the wrong size \n");
  packed.ints[8] = -1;
  EXPECT_EQ(unpack_record(received, packed, printed), 0);
  EXPECT_EQ(printed, "wake packing integer array of the wrong size \n");
}

TEST(HeightGridPacking, CountTooLargeToPackIsRefusedBeforeAnyArrayIsMade) {
  Height_grid_details_input height;
  const int kept = height.number_of_key_times;
  height.number_of_key_times = 200000000;
  Packed packed;
  std::string printed;
  EXPECT_EQ(pack_record(height, packed, printed), 0);
  EXPECT_EQ(printed, "unable to allocate wake double packing array \n");
  EXPECT_EQ(packed.doubles, nullptr);
  height.number_of_key_times = kept;
}

TEST(MultiplierGridPacking, CrossesTheArraysLikeTheHeightGrid) {
  Multiplier_grid_details_input multiplier, received;
  std::string printed;
  ASSERT_EQ(read_detail(multiplier, multiplier_form(height_detail), printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(multiplier, packed, printed), 1);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(received.field_code, -8);
  EXPECT_EQ(detail_of(received), multiplier_form(height_detail));
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes + 8,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "wake packing double array of the wrong size \n");
}

}  // namespace
