#include <gtest/gtest.h>

#include <string>

#include "Reflection_details_input.h"
#include "Swell_details_input.h"
#include "TCData_file.h"
#include "details_test_helpers.h"

namespace {

const char* const swell_block =
    "n_points_x 128\n"
    "n_points_y 64\n"
    "dx 2\n"
    "dy 4\n"
    "spectrum_file: swell_sp.dat\n"
    "generate_file: no\n"
    "swell_file: my_swell.dat\n"
    "end\n";

const char* const swell_detail =
    "swell_height: 0.5\n"
    "swell_wavelenth: 120\n"
    "long_spread: 0.1\n"
    "trans_spread: 0.2\n"
    "direction: 30\n"
    "random_seed: 7\n"
    "end\n";

TEST(SwellDetailsInput, StartsPeriodicWithItsOwnDetailFile) {
  Swell_details_input swell;
  EXPECT_EQ(swell.field_code, -5);
  EXPECT_EQ(swell.has_detail_file, 1);
  EXPECT_STREQ(swell.detail_file, "swell_spectrum.dat ");
  EXPECT_EQ(swell.periodic_x, 1);
  EXPECT_EQ(swell.periodic_y, 1);
  EXPECT_EQ(swell.swell_height, 0.0);
  EXPECT_EQ(swell.swell_wavelength, 0.0);
  EXPECT_EQ(swell.long_spread, 0.0);
  EXPECT_EQ(swell.trans_spread, 0.0);
  EXPECT_EQ(swell.direction, 0.0);
}

TEST(SwellDetailsInput, ReadsEveryLineOfItsBlock) {
  Swell_details_input swell;
  std::string printed;
  ASSERT_EQ(read_block(swell, swell_block, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(swell.n_x, 128);
  EXPECT_EQ(swell.n_y, 64);
  EXPECT_EQ(swell.dx, 2.0);
  EXPECT_EQ(swell.dy, 4.0);
  EXPECT_STREQ(swell.spectrum_file, "swell_sp.dat");
  EXPECT_EQ(swell.generate_file, 0);
  EXPECT_STREQ(swell.detail_file, "my_swell.dat");
  // No seed in the block: it stands in the detail file.
  EXPECT_EQ(swell.random_seed, 1);
  EXPECT_EQ(swell.periodic_x, 1);
}

TEST(SwellDetailsInput, BlockIsWrittenInItsOwnWordsAndReadsBack) {
  Swell_details_input swell, again;
  std::string printed;
  ASSERT_EQ(read_block(swell, swell_block, printed), 1);
  EXPECT_EQ(block_of(swell),
            "n_points_x 128\n"
            "n_points_y 64\n"
            "dx 2\n"
            "dy 4\n"
            "spectrum_file: swell_sp.dat\n"
            "generate_file: no\n"
            "swell_file: my_swell.dat\n"
            "end \n");
  swell.generate_file = 1;
  ASSERT_EQ(read_block(again, block_of(swell), printed), 1);
  EXPECT_EQ(again.generate_file, 1);
  EXPECT_EQ(block_of(again), block_of(swell));
}

TEST(SwellDetailsInput, BlockClosingWordIsTheGridsMessage) {
  Swell_details_input swell;
  std::string printed;
  EXPECT_EQ(read_block(swell, "n 1 n 1 d 1 d 1 s a g no f b.dat finish", printed), 0);
  EXPECT_EQ(printed, "grid input file is invalid, read finish instead of end\n");
}

TEST(SwellDetailsInput, ReadsTheDetailFileWithTheDirectionInRadians) {
  Swell_details_input swell;
  std::string printed;
  ASSERT_EQ(read_detail(swell, swell_detail, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(swell.swell_height, 0.5);
  EXPECT_EQ(swell.swell_wavelength, 120.0);
  EXPECT_EQ(swell.long_spread, 0.1);
  EXPECT_EQ(swell.trans_spread, 0.2);
  // 30 degrees by the engine's factor: pi / 6 with pi = 3.1415926535.
  EXPECT_DOUBLE_EQ(swell.direction, 0.5235987755833333);
  EXPECT_EQ(swell.direction, radians_of(30.0));
  EXPECT_EQ(swell.random_seed, 7);
}

TEST(SwellDetailsInput, DetailFileIsWrittenInDegreesAndReadsBack) {
  Swell_details_input swell, again;
  std::string printed;
  ASSERT_EQ(read_detail(swell, swell_detail, printed), 1);
  EXPECT_EQ(detail_of(swell),
            "swell_height: 0.5\n"
            "swell_wavelenth: 120\n"
            "long_spread: 0.1\n"
            "trans_spread: 0.2\n"
            "direction: 30\n"
            "random_seed: 7\n"
            "end \n");
  ASSERT_EQ(read_detail(again, detail_of(swell), printed), 1);
  EXPECT_EQ(again.direction, swell.direction);
  EXPECT_EQ(detail_of(again), detail_of(swell));
}

TEST(SwellDetailsInput, DetailFileClosingWordFailsTheRead) {
  Swell_details_input swell;
  std::string printed;
  std::string text = swell_detail;
  text.replace(text.find("end"), 3, "more");
  EXPECT_EQ(read_detail(swell, text, printed), 0);
  EXPECT_EQ(printed, "unable to process swell detail stream \nread moreinstead of end\n");
  EXPECT_EQ(read_detail(swell, "swell_height: 0.5 swell_wavelenth:", printed), 0);
  EXPECT_EQ(printed, "unable to process swell detail stream \nread instead of end\n");
}

TEST(SwellPacking, RecordCrossesThePackedArraysWhole) {
  Swell_details_input swell, received;
  std::string printed;
  ASSERT_EQ(read_block(swell, swell_block, printed), 1);
  ASSERT_EQ(read_detail(swell, swell_detail, printed), 1);
  copy_text(swell.object_name, "long_swell", 256);
  Packed packed;
  ASSERT_EQ(pack_record(swell, packed, printed), 1);
  EXPECT_EQ(printed, "packing long_swell\n");
  EXPECT_EQ(packed.int_bytes, 8 * 4);
  EXPECT_EQ(packed.double_bytes, 7 * 8);
  EXPECT_EQ(packed.char_bytes, 768);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(printed, "long_swell unpacked !\n");
  EXPECT_EQ(block_of(received), block_of(swell));
  EXPECT_EQ(detail_of(received), detail_of(swell));
  EXPECT_EQ(received.direction, swell.direction);
  EXPECT_EQ(received.random_seed, 7);
}

TEST(SwellPacking, WrongSizesAreRefusedInTheSwellsWords) {
  Swell_details_input swell;
  Packed packed;
  std::string printed;
  ASSERT_EQ(pack_record(swell, packed, printed), 1);
  Swell_details_input received;
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes - 4, packed.double_bytes,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "swell packing integer array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes + 8,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "swell packing double array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes,
                          packed.char_bytes + 256, printed),
            0);
  EXPECT_EQ(printed, "swell char packing array of the wrong size \n");
}

// Reflection.

const char* const reflection_detail =
    "radius: 5\n"
    "n_theta: 64\n"
    "n_k_radial: 128\n"
    "k_min_radial: 0.01\n"
    "dr_radial: 0.5\n"
    "stretching_factor_x: 1.25\n"
    "stretching_factor_y: 0.75\n"
    "algorithm_method:     2\n"
    "matching_method_flag: 1\n"
    "bessel_table_flag:    1\n"
    "table_size: 1000\n"
    "table_increment: 0.02\n"
    "end\n";

TEST(ReflectionDetailsInput, StartsNotPeriodicWithItsOwnDetailFile) {
  Reflection_details_input reflection;
  EXPECT_EQ(reflection.field_code, -1);
  EXPECT_EQ(reflection.has_detail_file, 1);
  EXPECT_STREQ(reflection.detail_file, "reflection_spectrum.dat ");
  EXPECT_EQ(reflection.periodic_x, 0);
  EXPECT_EQ(reflection.periodic_y, 0);
  EXPECT_EQ(reflection.bessel_table_flag, 0);
}

TEST(ReflectionDetailsInput, BlockNamesTheReflectionFile) {
  Reflection_details_input reflection, again;
  std::string printed;
  ASSERT_EQ(read_block(reflection,
                       "n_points_x 32 n_points_y 16 dx 1 dy 0.5 spectrum_file: a.dat "
                       "generate_file: yes reflection_file: body.dat end",
                       printed),
            1);
  EXPECT_EQ(reflection.n_x, 32);
  EXPECT_EQ(reflection.n_y, 16);
  EXPECT_EQ(reflection.dx, 1.0);
  EXPECT_EQ(reflection.dy, 0.5);
  EXPECT_STREQ(reflection.spectrum_file, "a.dat");
  EXPECT_EQ(reflection.generate_file, 1);
  EXPECT_STREQ(reflection.detail_file, "body.dat");
  EXPECT_EQ(block_of(reflection),
            "n_points_x 32\n"
            "n_points_y 16\n"
            "dx 1\n"
            "dy 0.5\n"
            "spectrum_file: a.dat\n"
            "generate_file: yes\n"
            "reflection_file: body.dat\n"
            "end \n");
  ASSERT_EQ(read_block(again, block_of(reflection), printed), 1);
  EXPECT_EQ(block_of(again), block_of(reflection));
  EXPECT_EQ(read_block(again, "n 1 n 1 d 1 d 1 s a g no f b.dat .", printed), 0);
  EXPECT_EQ(printed, "grid input file is invalid, read . instead of end\n");
}

TEST(ReflectionDetailsInput, ReadsTheBesselTableLinesWhenItsFlagIsSet) {
  Reflection_details_input reflection;
  std::string printed;
  ASSERT_EQ(read_detail(reflection, reflection_detail, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(reflection.radius, 5.0);
  EXPECT_EQ(reflection.n_theta, 64);
  EXPECT_EQ(reflection.n_k_radial, 128);
  EXPECT_EQ(reflection.k_min_radial, 0.01);
  EXPECT_EQ(reflection.dr_radial, 0.5);
  EXPECT_EQ(reflection.stretching_factor_x, 1.25);
  EXPECT_EQ(reflection.stretching_factor_y, 0.75);
  EXPECT_EQ(reflection.algorithm_method, 2);
  EXPECT_EQ(reflection.matching_method_flag, 1);
  EXPECT_EQ(reflection.bessel_table_flag, 1);
  EXPECT_EQ(reflection.table_size, 1000);
  EXPECT_EQ(reflection.table_increment, 0.02);
}

TEST(ReflectionDetailsInput, WithoutTheFlagTheFileEndsAfterIt) {
  Reflection_details_input reflection;
  std::string printed;
  std::string text = reflection_detail;
  text.replace(text.find("bessel_table_flag:    1"), 23, "bessel_table_flag:    0");
  EXPECT_EQ(read_detail(reflection, text, printed), 0);
  EXPECT_EQ(printed,
            "unable to process reflection detail stream \nread table_size:instead of end\n");
  Reflection_details_input plain;
  const std::string without = text.substr(0, text.find("table_size:")) + "end\n";
  ASSERT_EQ(read_detail(plain, without, printed), 1);
  EXPECT_EQ(plain.bessel_table_flag, 0);
  EXPECT_EQ(plain.table_size, 0);
  EXPECT_EQ(plain.table_increment, 0.0);
}

TEST(ReflectionDetailsInput, WriterPrintsTheTableLinesOnlyWithTheFlag) {
  Reflection_details_input reflection, again;
  std::string printed;
  ASSERT_EQ(read_detail(reflection, reflection_detail, printed), 1);
  std::string expected = reflection_detail;
  expected.replace(expected.rfind("end"), 4, "end \n");
  EXPECT_EQ(detail_of(reflection), expected);
  reflection.bessel_table_flag = 0;
  const std::string written = detail_of(reflection);
  EXPECT_EQ(written.find("table_size"), std::string::npos);
  ASSERT_EQ(read_detail(again, written, printed), 1);
  EXPECT_EQ(detail_of(again), written);
}

TEST(ReflectionPacking, CrossesTheArraysAndSpeaksTheSwellsWords) {
  Reflection_details_input reflection, received;
  std::string printed;
  ASSERT_EQ(read_detail(reflection, reflection_detail, printed), 1);
  Packed packed;
  ASSERT_EQ(pack_record(reflection, packed, printed), 1);
  EXPECT_EQ(packed.int_bytes, 14 * 4);
  EXPECT_EQ(packed.double_bytes, 8 * 8);
  EXPECT_EQ(packed.char_bytes, 768);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(detail_of(received), detail_of(reflection));
  EXPECT_EQ(received.field_code, -1);
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes - 8,
                          packed.char_bytes, printed),
            0);
  EXPECT_EQ(printed, "swell packing double array of the wrong size \n");
  EXPECT_EQ(unpack_record(received, packed, packed.int_bytes, packed.double_bytes,
                          packed.char_bytes - 1, printed),
            0);
  EXPECT_EQ(printed, "swell char packing array of the wrong size \n");
}

}  // namespace
