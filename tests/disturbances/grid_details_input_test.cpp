#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <typeinfo>

#include "Boat_details_input.h"
#include "Deformation_details_input.h"
#include "Height_grid_details_input.h"
#include "Multiplier_grid_details_input.h"
#include "Reflection_details_input.h"
#include "Ripple_details_input.h"
#include "Swell_details_input.h"
#include "TCData_file.h"
#include "TCDisturbance_inputs.h"
#include "TCGrid_details_input.h"
#include "Wake_details_input.h"
#include "Wall_details_input.h"
#include "details_test_helpers.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

const char* const primary_block =
    "n_points_x 256 0\n"
    "n_points_y 128 1\n"
    "dx 0.5\n"
    "dy 0.25\n"
    "spectrum_file: waves.dat\n"
    "generate_file: yes\n"
    "random_seed 4711\n"
    "end\n";

TEST(GridDetailsInput, StartsAsAFurtherOceanGridWithoutADetailFile) {
  TCGrid_details_input grid;
  EXPECT_EQ(grid.field_code, 1);
  EXPECT_STREQ(grid.detail_file, "ocean_grid_details.dat");
  EXPECT_EQ(grid.has_detail_file, 0);
  EXPECT_EQ(grid.periodic_x, 1);
  EXPECT_EQ(grid.periodic_y, 1);
  EXPECT_EQ(grid.n_x, 0);
  EXPECT_EQ(grid.n_y, 0);
  EXPECT_EQ(grid.dx, 0.0);
  EXPECT_EQ(grid.dy, 0.0);
  EXPECT_EQ(grid.random_seed, 1);
  EXPECT_EQ(grid.generate_file, 1);
  // The blank at the end belongs to the name.
  EXPECT_STREQ(grid.spectrum_file, "ocean_spectrum.dat ");
  EXPECT_EQ(grid.parent_ocean, nullptr);
  EXPECT_EQ(grid.carries_periodicity, 0);
}

TEST(GridDetailsInput, PrimaryBlockCarriesThePeriodicFlagOfEachAxis) {
  TCGrid_details_input grid;
  grid.carries_periodicity = 1;
  std::string printed;
  ASSERT_EQ(read_block(grid, primary_block, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(grid.n_x, 256);
  EXPECT_EQ(grid.periodic_x, 0);
  EXPECT_EQ(grid.n_y, 128);
  EXPECT_EQ(grid.periodic_y, 1);
  EXPECT_EQ(grid.dx, 0.5);
  EXPECT_EQ(grid.dy, 0.25);
  EXPECT_STREQ(grid.spectrum_file, "waves.dat");
  EXPECT_EQ(grid.generate_file, 1);
  EXPECT_EQ(grid.random_seed, 4711);
}

TEST(GridDetailsInput, FurtherGridBlockHasOnlyTheCountsAndNoSeedAfterNo) {
  TCGrid_details_input grid;
  grid.periodic_x = 0;
  std::string printed;
  ASSERT_EQ(read_block(grid,
                       "n_points_x 64 n_points_y 32 dx 2 dy 3 spectrum_file: s.dat "
                       "generate_file: no end",
                       printed),
            1);
  EXPECT_EQ(grid.n_x, 64);
  EXPECT_EQ(grid.n_y, 32);
  EXPECT_EQ(grid.periodic_x, 0);
  EXPECT_EQ(grid.periodic_y, 1);
  EXPECT_EQ(grid.dx, 2.0);
  EXPECT_EQ(grid.dy, 3.0);
  EXPECT_STREQ(grid.spectrum_file, "s.dat");
  EXPECT_EQ(grid.generate_file, 0);
  EXPECT_EQ(grid.random_seed, 1);
}

TEST(GridDetailsInput, KeywordsAreSkippedUnread) {
  TCGrid_details_input grid;
  std::string printed;
  ASSERT_EQ(read_block(grid, "a 5 b 6 c 1.5 d 2.5 e f.dat g YES h 9 end", printed), 1);
  EXPECT_EQ(grid.n_x, 5);
  EXPECT_EQ(grid.n_y, 6);
  EXPECT_EQ(grid.dx, 1.5);
  EXPECT_EQ(grid.dy, 2.5);
  EXPECT_STREQ(grid.spectrum_file, "f.dat");
  EXPECT_EQ(grid.generate_file, 1);
  EXPECT_EQ(grid.random_seed, 9);
}

TEST(GridDetailsInput, WriterPrintsTheBlockInItsOwnWords) {
  TCGrid_details_input grid;
  grid.carries_periodicity = 1;
  grid.n_x = 256;
  grid.periodic_x = 0;
  grid.n_y = 128;
  grid.dx = 0.5;
  grid.dy = 0.25;
  grid.random_seed = 4711;
  EXPECT_EQ(block_of(grid),
            "n_points_x 256 0\n"
            "n_points_y 128 1\n"
            "dx 0.5\n"
            "dy 0.25\n"
            "spectrum_file: ocean_spectrum.dat \n"
            "generate_file:  yes \n"
            "random_seed 4711\n"
            "end \n");
  grid.carries_periodicity = 0;
  grid.generate_file = 0;
  EXPECT_EQ(block_of(grid),
            "n_points_x 256\n"
            "n_points_y 128\n"
            "dx 0.5\n"
            "dy 0.25\n"
            "spectrum_file: ocean_spectrum.dat \n"
            "generate_file:  no \n"
            "end \n");
}

TEST(GridDetailsInput, WrittenBlockReadsBackToTheSameRecord) {
  for (int carries = 0; carries <= 1; carries++) {
    for (int generate = 0; generate <= 1; generate++) {
      TCGrid_details_input grid, again;
      grid.carries_periodicity = carries;
      again.carries_periodicity = carries;
      grid.n_x = 96;
      grid.n_y = 48;
      grid.periodic_x = 0;
      grid.dx = 0.1;
      grid.dy = 2.75;
      grid.generate_file = generate;
      grid.random_seed = 31;
      copy_text(grid.spectrum_file, "sea.dat", 256);
      std::string printed;
      ASSERT_EQ(read_block(again, block_of(grid), printed), 1);
      EXPECT_EQ(printed, "");
      EXPECT_EQ(block_of(again), block_of(grid));
      EXPECT_EQ(again.n_x, 96);
      EXPECT_EQ(again.n_y, 48);
      EXPECT_EQ(again.periodic_x, carries ? 0 : 1);
      EXPECT_EQ(again.dx, 0.1);
      EXPECT_EQ(again.dy, 2.75);
      EXPECT_EQ(again.generate_file, generate);
      EXPECT_EQ(again.random_seed, generate ? 31 : 1);
      EXPECT_STREQ(again.spectrum_file, "sea.dat");
    }
  }
}

TEST(GridDetailsInput, AnyClosingWordButEndFailsTheBlock) {
  TCGrid_details_input grid;
  std::string printed;
  std::string text = primary_block;
  text.replace(text.find("end"), 3, "stop");
  grid.carries_periodicity = 1;
  EXPECT_EQ(read_block(grid, text, printed), 0);
  EXPECT_EQ(printed, "grid input file is invalid, read stop instead of end\n");
}

TEST(GridDetailsInput, NumberThatDoesNotReadIsTheWordShownAtTheClose) {
  TCGrid_details_input grid;
  std::string printed;
  EXPECT_EQ(read_block(grid, "n_points_x many n_points_y 4 dx 1 dy 1 end", printed), 0);
  EXPECT_EQ(printed, "grid input file is invalid, read many instead of end\n");
  EXPECT_EQ(grid.n_x, 0);
}

TEST(GridDetailsInput, SeedAfterNoIsNotRead) {
  TCGrid_details_input grid;
  std::string printed;
  EXPECT_EQ(
      read_block(grid, "n 1 n 1 d 1 d 1 s x.dat generate_file: no random_seed 3 end", printed), 0);
  EXPECT_EQ(printed, "grid input file is invalid, read random_seed instead of end\n");
}

TEST(GridDetailsInput, EmptyOrCutStreamsFailWithoutHarm) {
  const char* texts[] = {"", "n_points_x", "n_points_x 4 n_points_y", "n 1 n 1 d 1 d 1 s",
                         "n 1 n 1 d 1 d 1 s x g yes r"};
  for (const char* text : texts) {
    TCGrid_details_input grid;
    std::string printed;
    EXPECT_EQ(read_block(grid, text, printed), 0) << text;
    EXPECT_EQ(printed, "grid input file is invalid, read  instead of end\n") << text;
  }
}

TEST(GridDetailsInput, DetailFileIsOpenedOnlyWhenTheRecordHasOne) {
  Scratch_folder folder;
  const std::string missing = folder.file("missing.dat");
  TCGrid_details_input grid;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(grid.read_file(missing.c_str()), 1);
    EXPECT_EQ(grid.write_file(missing.c_str()), 1);
    EXPECT_EQ(out.text(), "");
  }
  EXPECT_FALSE(std::filesystem::exists(missing));
  grid.has_detail_file = 1;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(grid.read_file(missing.c_str()), 0);
    EXPECT_EQ(out.text(), "unable to open grid file " + missing + "\n");
  }
  {
    const std::string nowhere = folder.file("no_folder/out.dat");
    Stream_capture out(std::cout);
    EXPECT_EQ(grid.write_file(nowhere.c_str()), 0);
    EXPECT_EQ(out.text(), "unable to open grid output file " + nowhere + "\n");
  }
  // The base kind's detail file has no body: it opens and is done.
  {
    const std::string empty = folder.file("empty.dat");
    Stream_capture out(std::cout);
    EXPECT_EQ(grid.write_file(empty.c_str()), 1);
    EXPECT_TRUE(std::filesystem::exists(empty));
    EXPECT_EQ(grid.read_file(empty.c_str()), 1);
    EXPECT_EQ(out.text(), "");
  }
}

TEST(GridDetailsInput, DetailFileThatDoesNotReadIsNamed) {
  Scratch_folder folder;
  const std::string path = folder.file("swell.dat");
  {
    std::ofstream out(path.c_str());
    out << "swell_height: 1 swell_wavelenth: 2 long_spread: 3 trans_spread: 4 direction: 5 "
           "random_seed: 6 stop\n";
  }
  Swell_details_input swell;
  Stream_capture out(std::cout);
  EXPECT_EQ(swell.read_file(path.c_str()), 0);
  EXPECT_EQ(out.text(),
            "unable to process swell detail stream \n"
            "read stopinstead of end\n"
            "unable to process grid file " +
                path + "\n");
}

TEST(GridDetailsInput, DetailFileIsWrittenAndReadByPath) {
  Scratch_folder folder;
  const std::string path = folder.file("swell.dat");
  Swell_details_input swell, again;
  swell.swell_height = 0.75;
  swell.random_seed = 99;
  Stream_capture out(std::cout);
  ASSERT_EQ(swell.write_file(path.c_str()), 1);
  ASSERT_EQ(again.read_file(path.c_str()), 1);
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(again.swell_height, 0.75);
  EXPECT_EQ(again.random_seed, 99);
}

// Packing.

TCGrid_details_input* filled_grid() {
  TCGrid_details_input* grid = new TCGrid_details_input;
  copy_text(grid->object_name, "second_sea", 256);
  grid->field_code = 1;
  grid->has_detail_file = 1;
  grid->periodic_x = 0;
  grid->periodic_y = 1;
  grid->n_x = 512;
  grid->n_y = 256;
  grid->dx = 0.125;
  grid->dy = 0.375;
  grid->random_seed = -17;
  grid->generate_file = 0;
  copy_text(grid->detail_file, "details.dat", 256);
  copy_text(grid->spectrum_file, "spectrum.dat ", 256);
  return grid;
}

TEST(GridDetailsPacking, RecordCrossesThePackedArraysWhole) {
  TCGrid_details_input* grid = filled_grid();
  Packed packed;
  std::string printed;
  ASSERT_EQ(pack_record(*grid, packed, printed), 1);
  EXPECT_EQ(printed, "packing second_sea\n");
  // Eight ints, dx and dy, and the name and two file names of 256 each.
  EXPECT_EQ(packed.int_bytes, 8 * 4);
  EXPECT_EQ(packed.double_bytes, 2 * 8);
  EXPECT_EQ(packed.char_bytes, 768);
  TCGrid_details_input received;
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(printed, "second_sea unpacked !\n");
  EXPECT_STREQ(received.object_name, "second_sea");
  EXPECT_EQ(received.has_detail_file, 1);
  EXPECT_EQ(received.periodic_x, 0);
  EXPECT_EQ(received.periodic_y, 1);
  EXPECT_EQ(received.n_x, 512);
  EXPECT_EQ(received.n_y, 256);
  EXPECT_EQ(received.dx, 0.125);
  EXPECT_EQ(received.dy, 0.375);
  EXPECT_EQ(received.random_seed, -17);
  EXPECT_EQ(received.generate_file, 0);
  EXPECT_STREQ(received.detail_file, "details.dat");
  EXPECT_STREQ(received.spectrum_file, "spectrum.dat ");
  delete grid;
}

TEST(GridDetailsPacking, FieldCodeTravelsWithTheRecord) {
  TCGrid_details_input grid, received;
  grid.field_code = 0;
  Packed packed;
  std::string printed;
  ASSERT_EQ(pack_record(grid, packed, printed), 1);
  ASSERT_EQ(unpack_record(received, packed, printed), 1);
  EXPECT_EQ(received.field_code, 0);
}

TEST(GridDetailsPacking, ArraysOfTheWrongSizeAreRefusedInTheGridsWords) {
  TCGrid_details_input grid;
  Packed packed;
  std::string printed;
  ASSERT_EQ(pack_record(grid, packed, printed), 1);
  struct Case {
    int int_bytes, double_bytes, char_bytes;
    const char* words;
  } cases[] = {
      {packed.int_bytes - 4, packed.double_bytes, packed.char_bytes,
       "grid packing integer array of the wrong size \n"},
      {packed.int_bytes + 4, packed.double_bytes, packed.char_bytes,
       "grid packing integer array of the wrong size \n"},
      {packed.int_bytes, packed.double_bytes - 8, packed.char_bytes,
       "grid packing double array of the wrong size \n"},
      {packed.int_bytes, packed.double_bytes, packed.char_bytes - 1,
       "grid char packing array of the wrong size \n"},
  };
  for (const Case& c : cases) {
    TCGrid_details_input received;
    received.n_x = 3;
    EXPECT_EQ(unpack_record(received, packed, c.int_bytes, c.double_bytes, c.char_bytes, printed),
              0);
    EXPECT_EQ(printed, c.words);
    EXPECT_EQ(received.n_x, 3);
  }
}

TEST(GridDetailsPacking, MissingArraysAreNamed) {
  TCGrid_details_input grid;
  int ints[8] = {0};
  double doubles[2] = {0};
  char chars[768] = {0};
  Stream_capture out(std::cout);
  EXPECT_EQ(grid.unpack(ints, 32, doubles, 16, nullptr, 768), 0);
  EXPECT_EQ(grid.unpack(nullptr, 32, doubles, 16, chars, 768), 0);
  EXPECT_EQ(grid.unpack(ints, 32, nullptr, 16, chars, 768), 0);
  EXPECT_EQ(out.text(),
            "char variable pointer not allocated \n"
            "integer variable pointer not allocated \n"
            "double variable pointer not allocated \n");
}

// The kind table.

TEST(DisturbanceInputs, EachCodeMakesItsKindsRecord) {
  struct Case {
    int code;
    bool (*is_kind)(TCGrid_details_input*);
  } cases[] = {
      {-1,
       [](TCGrid_details_input* r) {
         return dynamic_cast<Reflection_details_input*>(r) != nullptr;
       }},
      {-2,
       [](TCGrid_details_input* r) {
         return dynamic_cast<Deformation_details_input*>(r) != nullptr;
       }},
      {-3, [](TCGrid_details_input* r) { return dynamic_cast<Wall_details_input*>(r) != nullptr; }},
      {-4,
       [](TCGrid_details_input* r) { return dynamic_cast<Ripple_details_input*>(r) != nullptr; }},
      {-5,
       [](TCGrid_details_input* r) { return dynamic_cast<Swell_details_input*>(r) != nullptr; }},
      {-6, [](TCGrid_details_input* r) { return dynamic_cast<Wake_details_input*>(r) != nullptr; }},
      {-7,
       [](TCGrid_details_input* r) {
         return dynamic_cast<Height_grid_details_input*>(r) != nullptr &&
                dynamic_cast<Multiplier_grid_details_input*>(r) == nullptr;
       }},
      {-8,
       [](TCGrid_details_input* r) {
         return dynamic_cast<Multiplier_grid_details_input*>(r) != nullptr;
       }},
      {-9, [](TCGrid_details_input* r) { return dynamic_cast<Boat_details_input*>(r) != nullptr; }},
  };
  for (const Case& c : cases) {
    TCGrid_details_input* record = new_grid_details_input(c.code);
    ASSERT_NE(record, nullptr);
    EXPECT_TRUE(c.is_kind(record)) << c.code;
    EXPECT_EQ(record->field_code, c.code);
    delete record;
  }
}

TEST(DisturbanceInputs, OceanGridAndUnknownCodesMakeABaseRecordKeepingTheCode) {
  const int codes[] = {1, 0, 7, -10, 42};
  for (int code : codes) {
    TCGrid_details_input* record = new_grid_details_input(code);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(typeid(*record), typeid(TCGrid_details_input)) << code;
    EXPECT_EQ(record->field_code, code);
    EXPECT_EQ(record->has_detail_file, 0);
    delete record;
  }
}

TEST(DisturbanceInputs, EveryKindButTheWallHasADetailFile) {
  for (int code = -9; code <= -1; code++) {
    TCGrid_details_input* record = new_grid_details_input(code);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->has_detail_file, code == -3 ? 0 : 1) << code;
    delete record;
  }
}

TEST(DisturbanceInputs, DefaultDetailFileNamesKeepTheirTrailingBlanks) {
  struct Case {
    int code;
    const char* name;
    int periodic;
  } cases[] = {
      {-1, "reflection_spectrum.dat ", 0},
      {-2, "deform_spectrum.dat ", 0},
      {-3, "reflect_wall_spectrum.dat", 1},
      {-4, "ripple_spectrum.dat ", 1},
      {-5, "swell_spectrum.dat ", 1},
      {-6, "boat_hull_file.dat", 0},
      {-7, "height_field_file.dat", 0},
      {-8, "multiplier_grid_file.dat", 0},
      {-9, "boat_grid.dat ", 0},
  };
  for (const Case& c : cases) {
    TCGrid_details_input* record = new_grid_details_input(c.code);
    ASSERT_NE(record, nullptr);
    EXPECT_STREQ(record->detail_file, c.name) << c.code;
    EXPECT_EQ(record->periodic_x, c.periodic) << c.code;
    EXPECT_EQ(record->periodic_y, c.periodic) << c.code;
    EXPECT_STREQ(record->spectrum_file, "ocean_spectrum.dat ") << c.code;
    delete record;
  }
}

}  // namespace
