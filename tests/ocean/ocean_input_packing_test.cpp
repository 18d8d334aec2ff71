#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "Height_grid_details_input.h"
#include "Swell_details_input.h"
#include "ocean_input.h"
#include "ocean_test_records.h"
#include "stream_capture.h"

namespace {

// The three arrays of one pack, freed with the holder.
struct Packed {
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0;
  int double_bytes = 0;
  int char_bytes = 0;
  ~Packed() {
    delete[] ints;
    delete[] doubles;
    delete[] chars;
  }
};

int pack(ocean_input& ocean, Packed& packed) {
  Stream_capture out(std::cout);
  return ocean.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                    packed.chars, packed.char_bytes);
}

// The receiving side as the contract has it: counts first, then the arrays.
int unpack(ocean_input& ocean, const Packed& packed, std::string& printed) {
  Stream_capture out(std::cout);
  ocean.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  const int result = ocean.unpack(packed.ints, packed.int_bytes, packed.doubles,
                                  packed.double_bytes, packed.chars, packed.char_bytes);
  printed = out.text();
  return result;
}

// Every section of the format filled: the fixture, the foam textures of the
// other whitecap file, a swell among the disturbances and a box size.
void read_everything(ocean_input& ocean) {
  Working_folder here(ocean_data_dir());
  ASSERT_TRUE(here.ok());
  Stream_capture out(std::cout);
  ASSERT_EQ(ocean.read_file("full_ocean.dat"), 1) << out.text();
  ASSERT_EQ(ocean.read_whitecaps("foam_textures_whitecaps.dat"), 1) << out.text();
  Swell_details_input* swell = static_cast<Swell_details_input*>(ocean.add_disturbance(-5));
  ASSERT_NE(swell, nullptr);
  swell->n_x = 12;
  swell->swell_height = 0.75;
  swell->swell_wavelength = 90.0;
  swell->direction = 0.3;
  ocean.length.x = 100.0;
  ocean.length.y = 200.0;
  ocean.length.z = 30.0;
  ocean.priority = 3.5;
  ocean.version = 2;
}

// Where the ocean's own ints start: after the surface's header and its
// textures (the root packs no ints).
int ocean_ints_start(const ocean_input& ocean) {
  return 3 + 21 * ocean.textures.n_textures;
}

TEST(OceanInputPacking, EmptyOceanPacksItsFixedPartsOnly) {
  ocean_input ocean;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  ocean.packing_sizes(n_ints, n_doubles, n_chars);
  // Surface: 3 block counts; ocean: 11 counts, 2 grid records of 4 directory
  // and 8 own ints, 24 scalar ints, 3 for the empty whitecap textures.
  EXPECT_EQ(n_ints, 3 + 11 + 2 * (4 + 8) + 24 + 3);
  // Lengths 3, 2 per grid record, 44 scalar doubles.
  EXPECT_EQ(n_doubles, 3 + 2 * 2 + 44);
  // The name's 256, 768 per grid record, 5 file names of 256.
  EXPECT_EQ(n_chars, 256 + 2 * 768 + 5 * 256);
}

TEST(OceanInputPacking, BandsWindAndDisturbancesAddToTheSizes) {
  ocean_input ocean;
  ASSERT_EQ(ocean.allocate_bands(2), 1);
  ASSERT_NE(ocean.add_disturbance(1), nullptr);
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  ocean.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, 65 + 2 + (4 + 8));
  EXPECT_EQ(n_doubles, 51 + 6 * 2 + 2);
  EXPECT_EQ(n_chars, 3072 + 768);
}

TEST(OceanInputPacking, EveryFieldSurvivesPackingExactly) {
  ocean_input ocean;
  read_everything(ocean);
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  ocean.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(packed.int_bytes, 4 * n_ints);
  EXPECT_EQ(packed.double_bytes, 8 * n_doubles);
  EXPECT_EQ(packed.char_bytes, n_chars);

  ocean_input receiver;
  std::string printed;
  ASSERT_EQ(unpack(receiver, packed, printed), 1) << printed;
  expect_same_ocean(ocean, receiver, true);
  EXPECT_EQ(receiver.priority, 3.5);
  EXPECT_EQ(receiver.version, 2);
  // Each disturbance comes back as its own class.
  ASSERT_EQ(receiver.n_disturbances, 3);
  const Swell_details_input* swell =
      dynamic_cast<const Swell_details_input*>(receiver.disturbance(2));
  ASSERT_NE(swell, nullptr);
  EXPECT_EQ(swell->swell_height, 0.75);
  EXPECT_EQ(swell->direction, 0.3);
  EXPECT_EQ(receiver.disturbance(2)->parent_ocean, &receiver);
  EXPECT_EQ(dynamic_cast<const Swell_details_input*>(receiver.disturbance(0)), nullptr);
  EXPECT_EQ(receiver.primary_grid.carries_periodicity, 1);
  // Exclusions are part of the record, though never of a written file.
  EXPECT_EQ(receiver.exclude_mask, 5);
}

TEST(OceanInputPacking, UnpackingReplacesWhatTheReceiverHeld) {
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, plain_ocean(5), printed), 1) << printed;
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);

  ocean_input receiver;
  read_everything(receiver);
  ASSERT_EQ(unpack(receiver, packed, printed), 1) << printed;
  expect_same_ocean(ocean, receiver, true);
  EXPECT_EQ(receiver.n_disturbances, 0);
  EXPECT_EQ(receiver.n_wind_values, 0);
  EXPECT_EQ(receiver.wind_time, nullptr);
  EXPECT_EQ(receiver.textures.n_textures, 0);
  EXPECT_EQ(receiver.whitecap_textures.n_textures, 0);
}

TEST(OceanInputPacking, AnotherPackingVersionIsRefusedFirst) {
  ocean_input ocean;
  read_everything(ocean);
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  const int at = ocean_ints_start(ocean);
  ASSERT_EQ(packed.ints[at], 1);
  packed.ints[at] = 2;
  ocean_input receiver;
  std::string printed;
  EXPECT_EQ(unpack(receiver, packed, printed), 0);
  EXPECT_EQ(printed, "packing version number 2\n");
}

TEST(OceanInputPacking, AnotherPackingVersionIsRefusedWithoutTheSendersCountsToo) {
  ocean_input ocean;
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  packed.ints[ocean_ints_start(ocean)] = 7;
  ocean_input receiver;  // of the same shape, so the sizes agree
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing version number 7\n");
}

TEST(OceanInputPacking, ArraysOfTheWrongSizeAreRefusedEachWithItsWords) {
  ocean_input ocean;
  read_everything(ocean);
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  struct Case {
    int int_change;
    int double_change;
    int char_change;
    const char* message;
  };
  const Case cases[] = {
      {-4, 0, 0, "packing integer array of the wrong size \n"},
      {4, 0, 0, "packing integer array of the wrong size \n"},
      {0, -8, 0, "packing double array of the wrong size \n"},
      {0, 0, -1, "ocean char packing array of the wrong size \n"},
      {0, 0, 1, "ocean char packing array of the wrong size \n"},
  };
  for (const Case& each : cases) {
    ocean_input receiver;
    Stream_capture out(std::cout);
    receiver.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
    EXPECT_EQ(receiver.unpack(packed.ints, packed.int_bytes + each.int_change, packed.doubles,
                              packed.double_bytes + each.double_change, packed.chars,
                              packed.char_bytes + each.char_change),
              0);
    EXPECT_EQ(out.text(), each.message);
  }
}

TEST(OceanInputPacking, MissingArraysAreNamed) {
  ocean_input ocean;
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  ocean_input receiver;
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            nullptr, packed.char_bytes),
            0);
  EXPECT_EQ(receiver.unpack(nullptr, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
  EXPECT_EQ(receiver.unpack(packed.ints, packed.int_bytes, nullptr, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
  EXPECT_EQ(out.text(),
            "char variable pointer not allocated \n"
            "integer variable pointer not allocated \n"
            "double variable pointer not allocated \n");
}

TEST(OceanInputPacking, ReceiverWithoutTheSendersCountsRefusesTheSizes) {
  ocean_input ocean;
  read_everything(ocean);
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  ocean_input receiver;  // no set_sizes_from_packed: its own, smaller counts
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
}

TEST(OceanInputPacking, CountsThatDisagreeWithTheDirectoryAreRefused) {
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean, plain_ocean(5), printed), 1) << printed;
  ASSERT_NE(ocean.add_disturbance(1), nullptr);
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  // The second record's int count, in the directory after the 11 counts.
  const int entry = ocean_ints_start(ocean) + 11 + 4 * 1;
  ASSERT_EQ(packed.ints[entry + 1], 8);
  packed.ints[entry + 1] = 7;
  ocean_input receiver;
  EXPECT_EQ(unpack(receiver, packed, printed), 0);
  EXPECT_EQ(printed, "packing integer array of the wrong size \n");
  // Moving one int from a record to the next keeps the sum but is still
  // less than a grid record packs.
  packed.ints[entry + 4 + 1] = 9;
  EXPECT_EQ(unpack(receiver, packed, printed), 0);
  EXPECT_EQ(printed, "packing integer array of the wrong size \n");
}

TEST(OceanInputPacking, NegativeDirectoryCountIsRefused) {
  ocean_input ocean;
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  const int entry = ocean_ints_start(ocean) + 11;
  packed.ints[entry + 3] = -768;  // the primary grid's chars
  ocean_input receiver;
  std::string printed;
  EXPECT_EQ(unpack(receiver, packed, printed), 0);
  EXPECT_EQ(printed, "ocean char packing array of the wrong size \n");
}

TEST(OceanInputPacking, TextureRangeCountsThatDoNotAddUpAreRefused) {
  ocean_input ocean;
  read_everything(ocean);
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  // The ocean texture's above-range count (int 19 of its 21), one too many
  // and one too few where its block header says 4.
  ASSERT_EQ(packed.ints[2], 4);
  ASSERT_EQ(packed.ints[3 + 19], 2);
  packed.ints[3 + 19] = 3;
  ocean_input receiver;
  std::string printed;
  EXPECT_EQ(unpack(receiver, packed, printed), 0);
  EXPECT_NE(printed.find("packing integer array of the wrong size \n"), std::string::npos)
      << printed;
}

TEST(OceanInputPacking, CountsNoArrayCanHoldAreRefusedBeforeAllocating) {
  ocean_input ocean;
  ASSERT_EQ(ocean.allocate_bands(1), 1);
  ocean.number_of_bands = INT_MAX / 2;  // arrays of one, a count far beyond
  Packed packed;
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                       packed.chars, packed.char_bytes),
            0);
  EXPECT_EQ(out.text(), "unable to allocate ocean integer packing array \n");
  EXPECT_EQ(packed.ints, nullptr);
  ocean.number_of_bands = 1;
}

TEST(OceanInputPacking, NegativeTextureCountTravelsAsIs) {
  ocean_input ocean;
  std::string printed;
  ASSERT_EQ(read_ocean_text(ocean,
                            replaced(plain_ocean(5), "texture_maps:  no\n",
                                     "texture_maps:  yes\nTidecast_data_file texture 2 2\n"
                                     "surface_type: ocean\nnumber_of_textures: -5\nendTexture\n"),
                            printed),
            1)
      << printed;
  ASSERT_EQ(ocean.textures.n_textures, -5);
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  ocean_input receiver;
  ASSERT_EQ(unpack(receiver, packed, printed), 1) << printed;
  EXPECT_EQ(receiver.textures.n_textures, -5);
  EXPECT_EQ(receiver.texture_maps, 1);
}

TEST(OceanInputPacking, HeightGridWithoutKeyTimesCrossesTheArrays) {
  ocean_input ocean;
  Height_grid_details_input* grid =
      static_cast<Height_grid_details_input*>(ocean.add_disturbance(-7));
  ASSERT_NE(grid, nullptr);
  // A detail file may give no key times at all; the record packs 2 doubles
  // fewer than a new one, which starts with one key.
  Stream_capture quiet(std::cout);
  ASSERT_EQ(grid->allocate_keys(0), 1);
  grid->position_x = 12.5;
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  ocean_input receiver;
  std::string printed;
  ASSERT_EQ(unpack(receiver, packed, printed), 1) << printed;
  ASSERT_EQ(receiver.n_disturbances, 1);
  const Height_grid_details_input* got =
      dynamic_cast<const Height_grid_details_input*>(receiver.disturbance(0));
  ASSERT_NE(got, nullptr);
  EXPECT_EQ(got->number_of_key_times, 0);
  EXPECT_EQ(got->position_x, 12.5);
}

TEST(OceanInputPacking, WhitecapTextureCountsThatDisagreeWithTheHeaderAreRefused) {
  ocean_input ocean;
  read_everything(ocean);
  ASSERT_GT(ocean.whitecap_textures.n_textures, 0);
  Packed packed;
  ASSERT_EQ(pack(ocean, packed), 1);
  // The whitecap texture block stands just before the band ids: its own
  // header is active, texture count, range values.
  const int n_ints = packed.int_bytes / 4;
  const int block = n_ints - ocean.number_of_bands - (3 + 21 * ocean.whitecap_textures.n_textures);
  ASSERT_EQ(packed.ints[block + 1], ocean.whitecap_textures.n_textures);
  ocean_input receiver;
  std::string printed;

  // More textures than the ocean's header made room for.
  packed.ints[block + 1] = 1000;
  EXPECT_EQ(unpack(receiver, packed, printed), 0);
  EXPECT_EQ(printed, "packing integer array of the wrong size \n");
  packed.ints[block + 1] = ocean.whitecap_textures.n_textures;

  // One more range value pair in the first texture, and a block total to
  // match, beyond what the ocean's header counted.
  const int first_above = block + 3 + 19;
  packed.ints[first_above] += 1;
  packed.ints[block + 2] += 2;
  EXPECT_EQ(unpack(receiver, packed, printed), 0);
  EXPECT_EQ(printed, "packing integer array of the wrong size \n");
}

}  // namespace
