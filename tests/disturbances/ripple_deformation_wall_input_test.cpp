#include <gtest/gtest.h>

#include <string>

#include "Deformation_details_input.h"
#include "Ripple_details_input.h"
#include "TCData_file.h"
#include "Wall_details_input.h"
#include "details_test_helpers.h"
#include "scratch_folder.h"

namespace {

const char* const ripple_block =
    "n_points_x 256\n"
    "n_points_y 1\n"
    "dx 0.05\n"
    "dy 0.05\n"
    "spectrum_file: none.dat\n"
    "generate_file: no\n"
    "ripple_file: splash.dat\n"
    "position_x: 12.5\n"
    "position_y: -3\n"
    "end\n";

const char* const ripple_body =
    "start_time: 2.5\n"
    "radius:     0.3\n"
    "velocity:   1.5\n"
    "n_r:        256\n"
    "dr:         0.1\n";

TEST(RippleDetailsInput, StartsPeriodicWithItsOwnDetailFile) {
  Ripple_details_input ripple;
  EXPECT_EQ(ripple.field_code, -4);
  EXPECT_EQ(ripple.has_detail_file, 1);
  EXPECT_STREQ(ripple.detail_file, "ripple_spectrum.dat ");
  EXPECT_EQ(ripple.periodic_x, 1);
  EXPECT_EQ(ripple.periodic_y, 1);
  EXPECT_EQ(ripple.n_r, 0);
}

TEST(RippleDetailsInput, BlockPlacesTheRing) {
  Ripple_details_input ripple, again;
  std::string printed;
  ASSERT_EQ(read_block(ripple, ripple_block, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(ripple.n_x, 256);
  EXPECT_EQ(ripple.n_y, 1);
  EXPECT_EQ(ripple.dx, 0.05);
  EXPECT_EQ(ripple.dy, 0.05);
  EXPECT_STREQ(ripple.spectrum_file, "none.dat");
  EXPECT_EQ(ripple.generate_file, 0);
  EXPECT_STREQ(ripple.detail_file, "splash.dat");
  EXPECT_EQ(ripple.position_x, 12.5);
  EXPECT_EQ(ripple.position_y, -3.0);
  std::string expected = ripple_block;
  expected.replace(expected.rfind("end"), 4, "end \n");
  EXPECT_EQ(block_of(ripple), expected);
  ASSERT_EQ(read_block(again, block_of(ripple), printed), 1);
  EXPECT_EQ(block_of(again), expected);
}

TEST(RippleDetailsInput, BlockClosingWordIsTheGridsMessage) {
  Ripple_details_input ripple;
  std::string printed;
  std::string text = ripple_block;
  text.replace(text.rfind("end"), 3, "position_z:");
  EXPECT_EQ(read_block(ripple, text, printed), 0);
  EXPECT_EQ(printed, "grid input file is invalid, read position_z: instead of end\n");
}

TEST(RippleDetailsInput, DetailFileReadsWithOrWithoutItsHeader) {
  const std::string texts[] = {std::string("Tidecast_data_file  ripple  1 1 \n") + ripple_body,
                               std::string("Beavis_rules_the ripple 1 1\n") + ripple_body,
                               ripple_body};
  for (const std::string& text : texts) {
    Ripple_details_input ripple;
    std::string printed;
    ASSERT_EQ(read_detail(ripple, text, printed), 1) << text;
    EXPECT_EQ(printed, "");
    EXPECT_EQ(ripple.ripple_start_time, 2.5);
    EXPECT_EQ(ripple.radius, 0.3);
    EXPECT_EQ(ripple.velocity, 1.5);
    EXPECT_EQ(ripple.n_r, 256);
    EXPECT_EQ(ripple.dr, 0.1);
  }
}

TEST(RippleDetailsInput, HeaderOfAnotherTypeOrANewerReaderIsRefused) {
  Ripple_details_input ripple;
  std::string printed;
  EXPECT_EQ(
      read_detail(ripple, std::string("Tidecast_data_file wake 1 1\n") + ripple_body, printed), 0);
  EXPECT_EQ(printed, "file type wake is not of \nexpected type ripple\n");
  EXPECT_EQ(
      read_detail(ripple, std::string("Tidecast_data_file ripple 2 2\n") + ripple_body, printed),
      0);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(ripple.n_r, 0);
}

TEST(RippleDetailsInput, WriterGivesTheHeaderAndNoClosingWord) {
  Ripple_details_input ripple, again;
  std::string printed;
  ASSERT_EQ(read_detail(ripple, ripple_body, printed), 1);
  EXPECT_EQ(detail_of(ripple), std::string("Tidecast_data_file  ripple  1 1 \n") + ripple_body);
  ASSERT_EQ(read_detail(again, detail_of(ripple), printed), 1);
  EXPECT_EQ(detail_of(again), detail_of(ripple));
}

TEST(RippleDetailsInput, CutDetailFileFails) {
  Ripple_details_input ripple;
  std::string printed;
  EXPECT_EQ(read_detail(ripple, "start_time: 2.5 radius: 0.3 velocity:", printed), 0);
  EXPECT_EQ(printed, "unable to process ripple detail stream \n");
  EXPECT_EQ(read_detail(ripple, "Tidecast_data_file", printed), 0);
  EXPECT_EQ(printed, "file type  is not of \nexpected type ripple\n");
}

TEST(RipplePacking, CrossesTheArraysInItsOwnWords) {
  Ripple_details_input ripple, received;
  std::string printed;
  ASSERT_EQ(read_block(ripple, ripple_block, printed), 1);
  ASSERT_EQ(read_detail(ripple, ripple_body, printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(ripple, packed, printed), 1);
  EXPECT_EQ(packed.int_bytes, 9 * 4);
  EXPECT_EQ(packed.double_bytes, 8 * 8);
  EXPECT_EQ(packed.char_bytes, 768);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(block_of(received), block_of(ripple));
  EXPECT_EQ(detail_of(received), detail_of(ripple));
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes + 4, packed.double_bytes,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "ripple packing integer array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes,
                          packed.char_bytes - 256, printed),
            0);
  EXPECT_EQ(printed, "ripple char packing array of the wrong size \n");
}

// Deformation.

const char* const deformation_body =
    "initial_height: 0.25\n"
    "final_height:     1.5\n"
    "evolution_time:   30\n"
    "width:        10\n";

TEST(DeformationDetailsInput, StartsNotPeriodicWithItsOwnDetailFile) {
  Deformation_details_input deformation;
  EXPECT_EQ(deformation.field_code, -2);
  EXPECT_EQ(deformation.has_detail_file, 1);
  EXPECT_STREQ(deformation.detail_file, "deform_spectrum.dat ");
  EXPECT_EQ(deformation.periodic_x, 0);
  EXPECT_EQ(deformation.periodic_y, 0);
}

TEST(DeformationDetailsInput, BlockNamesTheDeformationFileAndClosesInItsOwnWords) {
  Deformation_details_input deformation, again;
  std::string printed;
  const char* const block =
      "n_points_x 64\n"
      "n_points_y 128\n"
      "dx 4\n"
      "dy 2\n"
      "spectrum_file: unused.dat\n"
      "generate_file: no\n"
      "deformation_file: rise.dat\n"
      "end \n";
  ASSERT_EQ(read_block(deformation, block, printed), 1);
  EXPECT_EQ(deformation.n_x, 64);
  EXPECT_EQ(deformation.n_y, 128);
  EXPECT_EQ(deformation.dx, 4.0);
  EXPECT_EQ(deformation.dy, 2.0);
  EXPECT_STREQ(deformation.spectrum_file, "unused.dat");
  EXPECT_EQ(deformation.generate_file, 0);
  EXPECT_STREQ(deformation.detail_file, "rise.dat");
  EXPECT_EQ(block_of(deformation), block);
  ASSERT_EQ(read_block(again, block_of(deformation), printed), 1);
  EXPECT_EQ(read_block(again, "n 1 n 1 d 1 d 1 s a g no f b.dat fin", printed), 0);
  EXPECT_EQ(printed, "deformation input file is invalid, read fin instead of end\n");
}

TEST(DeformationDetailsInput, DetailFileHasFourNumbersAndNoClosingWord) {
  Deformation_details_input deformation, again;
  std::string printed;
  ASSERT_EQ(read_detail(deformation, deformation_body, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(deformation.initial_height, 0.25);
  EXPECT_EQ(deformation.final_height, 1.5);
  EXPECT_EQ(deformation.evolution_time, 30.0);
  EXPECT_EQ(deformation.width, 10.0);
  EXPECT_EQ(detail_of(deformation), deformation_body);
  ASSERT_EQ(read_detail(again, detail_of(deformation), printed), 1);
  EXPECT_EQ(again.width, 10.0);
  EXPECT_EQ(read_detail(again, "initial_height: 1 final_height:", printed), 0);
  EXPECT_EQ(printed, "unable to process deformation detail stream \n");
}

TEST(DeformationPacking, CrossesTheArraysAndSpeaksTheRipplesWords) {
  Deformation_details_input deformation, received;
  std::string printed;
  ASSERT_EQ(read_detail(deformation, deformation_body, printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(deformation, packed, printed), 1);
  EXPECT_EQ(packed.int_bytes, 8 * 4);
  EXPECT_EQ(packed.double_bytes, 6 * 8);
  EXPECT_EQ(packed.char_bytes, 768);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(detail_of(received), deformation_body);
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes - 4, packed.double_bytes,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "ripple packing integer array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes + 8,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "ripple packing double array of the wrong size \n");
}

// Wall.

TEST(WallDetailsInput, StartsWithoutADetailFile) {
  Wall_details_input wall;
  EXPECT_EQ(wall.field_code, -3);
  EXPECT_EQ(wall.has_detail_file, 0);
  EXPECT_STREQ(wall.detail_file, "reflect_wall_spectrum.dat");
  EXPECT_EQ(wall.periodic_x, 1);
  EXPECT_EQ(wall.periodic_y, 1);
}

TEST(WallDetailsInput, BlockIsAPointAndAnAngleInDegrees) {
  Wall_details_input wall, again;
  std::string printed;
  const char* const block =
      "position_x 10\n"
      "position_y -5\n"
      "angle 90\n"
      "end \n";
  ASSERT_EQ(read_block(wall, block, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(wall.position_x, 10.0);
  EXPECT_EQ(wall.position_y, -5.0);
  // Half of the engine's pi, 3.1415926535.
  EXPECT_DOUBLE_EQ(wall.angle, 1.57079632675);
  EXPECT_EQ(wall.angle, radians_of(90.0));
  EXPECT_EQ(block_of(wall), block);
  ASSERT_EQ(read_block(again, block_of(wall), printed), 1);
  EXPECT_EQ(again.angle, wall.angle);
  EXPECT_EQ(read_block(again, "position_x 1 position_y 2 angle 3 n_points_x", printed), 0);
  EXPECT_EQ(printed, "grid input file is invalid, read n_points_x instead of end\n");
}

TEST(WallDetailsInput, HasNoDetailFileToReadOrWrite) {
  Scratch_folder folder;
  Wall_details_input wall;
  const std::string path = folder.file(wall.detail_file);
  Stream_capture out(std::cout);
  EXPECT_EQ(wall.read_file(path.c_str()), 1);
  EXPECT_EQ(wall.write_file(path.c_str()), 1);
  EXPECT_EQ(out.text(), "");
}

TEST(WallPacking, CrossesTheArraysInItsOwnWords) {
  Wall_details_input wall, received;
  std::string printed;
  ASSERT_EQ(read_block(wall, "position_x 10 position_y -5 angle 45 end", printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(wall, packed, printed), 1);
  EXPECT_EQ(packed.int_bytes, 8 * 4);
  EXPECT_EQ(packed.double_bytes, 5 * 8);
  EXPECT_EQ(packed.char_bytes, 768);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(received.angle, radians_of(45.0));
  EXPECT_EQ(received.has_detail_file, 0);
  EXPECT_EQ(block_of(received), block_of(wall));
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes - 8,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "wall packing double array of the wrong size \n");
}

}  // namespace
