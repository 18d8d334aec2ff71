#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>

#include "TCStar_input.h"
#include "stream_capture.h"

namespace {

// The three arrays a pack hands over, freed by whoever holds them.
struct Packed {
  ~Packed() {
    delete[] ints;
    delete[] doubles;
    delete[] chars;
  }
  int* ints = nullptr;
  int int_bytes = -1;
  double* doubles = nullptr;
  int double_bytes = -1;
  char* chars = nullptr;
  int char_bytes = -1;
};

int pack_into(TCStar_input& input, Packed& p) {
  return input.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
}

// The receiving side as the contract has it: sizes first, then the arrays.
int receive(TCStar_input& input, const Packed& p) {
  input.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  return input.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
}

// Three bands, method 1, two keys, file "noon.sun", name "daystar".
void fill(TCStar_input& sun) {
  std::istringstream file(
      "Tidecast_data_file sun 1 1 position_method_flag 1 number_of_bands 3 band_id 4 5 6 "
      "irradiance 1.5 2.5 3.5 end");
  std::istringstream block(
      "number_of_times 2 time theta phi 0 30 90 10 60 180 data_file: noon.sun");
  ASSERT_EQ(sun.read_stream(file), 1);
  ASSERT_EQ(sun.read_list_block(block), 1);
  std::strcpy(sun.object_name, "daystar");
}

TEST(SunPacking, SizesCountBandsAndKeys) {
  TCStar_input sun;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  sun.packing_sizes(n_ints, n_doubles, n_chars);
  // Method, band count, key count and one id; one irradiance and one key of
  // seven; the name and the file name.
  EXPECT_EQ(n_ints, 4);
  EXPECT_EQ(n_doubles, 8);
  EXPECT_EQ(n_chars, 512);
  fill(sun);
  sun.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, 6);
  EXPECT_EQ(n_doubles, 3 + 14);
  EXPECT_EQ(n_chars, 512);
}

TEST(SunPacking, PackedArraysHoldTheFieldsInOrder) {
  TCStar_input sun;
  fill(sun);
  Packed p;
  Stream_capture out(std::cout);
  ASSERT_EQ(pack_into(sun, p), 1);
  EXPECT_EQ(out.text(), "packing daystar\n");
  EXPECT_EQ(p.int_bytes, 6 * 4);
  EXPECT_EQ(p.double_bytes, 17 * 8);
  EXPECT_EQ(p.char_bytes, 512);
  const int ints[] = {1, 3, 2, 4, 5, 6};
  for (int i = 0; i < 6; i++) EXPECT_EQ(p.ints[i], ints[i]) << i;
  EXPECT_EQ(p.doubles[0], 1.5);
  EXPECT_EQ(p.doubles[2], 3.5);
  EXPECT_EQ(p.doubles[3], 0.0);                        // first key's time
  EXPECT_DOUBLE_EQ(p.doubles[7], 2.6179938779166667);  // its zenith
  EXPECT_DOUBLE_EQ(p.doubles[8], 4.71238898025);       // its azimuth
  EXPECT_EQ(p.doubles[10], 10.0);                      // second key's time
  EXPECT_DOUBLE_EQ(p.doubles[14], 2.0943951023333334);
  EXPECT_STREQ(p.chars, "daystar\n");
  EXPECT_STREQ(p.chars + 256, "noon.sun");
}

TEST(SunPacking, RoundTripRebuildsTheRecord) {
  TCStar_input sun, receiver;
  fill(sun);
  Packed p;
  Stream_capture out(std::cout);
  ASSERT_EQ(pack_into(sun, p), 1);
  ASSERT_EQ(receive(receiver, p), 1);
  EXPECT_EQ(out.text(), "packing daystar\ndaystar unpacked !\n");
  EXPECT_STREQ(receiver.object_name, "daystar");
  EXPECT_STREQ(receiver.object_file, "noon.sun");
  EXPECT_EQ(receiver.position_method_flag, 1);
  EXPECT_EQ(receiver.number_of_bands, 3);
  ASSERT_EQ(receiver.irradiance.n, 3);
  EXPECT_EQ(receiver.irradiance.band_id[2], 6);
  EXPECT_EQ(receiver.irradiance.radiance_in_band[1], 2.5);
  ASSERT_EQ(receiver.track.number_of_times, 2);
  EXPECT_EQ(receiver.track.times[1], 10.0);
  EXPECT_EQ(receiver.track.chi[1], sun.track.chi[1]);
  EXPECT_EQ(receiver.track.phi[1], sun.track.phi[1]);
  std::ostringstream a, b;
  ASSERT_EQ(sun.write_list_block(a), 1);
  ASSERT_EQ(receiver.write_list_block(b), 1);
  EXPECT_EQ(a.str(), b.str());
}

TEST(SunPacking, ReceiverWithOtherCountsTakesTheSendersSizes) {
  TCStar_input sun, receiver;
  fill(sun);
  Packed p;
  Stream_capture out(std::cout);
  ASSERT_EQ(pack_into(sun, p), 1);
  // The receiver has one band and one key of its own; the sizes it checks
  // come from the packed counts.
  ASSERT_EQ(receive(receiver, p), 1);
  EXPECT_EQ(receiver.irradiance.n, 3);
  // After the unpack the receiver counts its own fields again.
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  receiver.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, 6);
}

TEST(SunPacking, UnpackWithoutTheSizesStepRefusesOtherCounts) {
  TCStar_input sun, receiver;
  fill(sun);
  Packed p;
  Stream_capture out(std::cout);
  ASSERT_EQ(pack_into(sun, p), 1);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing daystar\npacking integer array of the wrong size \n");
}

TEST(SunPacking, WrongByteSizesAreRefused) {
  TCStar_input sun;
  fill(sun);
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sun, p), 1);
  }
  struct Case {
    int int_delta, double_delta, char_delta;
    const char* message;
  } cases[] = {
      {-4, 0, 0, "packing integer array of the wrong size \n"},
      {4, 0, 0, "packing integer array of the wrong size \n"},
      {0, -8, 0, "packing double array of the wrong size \n"},
      {0, 8, 0, "packing double array of the wrong size \n"},
      {0, 0, -1, "packing char array of the wrong size \n"},
  };
  for (const Case& c : cases) {
    TCStar_input receiver;
    receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
    Stream_capture out(std::cout);
    EXPECT_EQ(
        receiver.unpack(p.ints, p.int_bytes + c.int_delta, p.doubles,
                        p.double_bytes + c.double_delta, p.chars, p.char_bytes + c.char_delta),
        0);
    EXPECT_EQ(out.text(), c.message);
    EXPECT_EQ(receiver.irradiance.n, 1);
  }
}

TEST(SunPacking, MissingArraysAreNamed) {
  TCStar_input sun;
  fill(sun);
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sun, p), 1);
  }
  TCStar_input receiver;
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, nullptr, 512), 0);
  EXPECT_EQ(receiver.unpack(nullptr, p.int_bytes, p.doubles, p.double_bytes, p.chars, 512), 0);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, nullptr, p.double_bytes, p.chars, 512), 0);
  EXPECT_EQ(out.text(),
            "char variable pointer not allocated \n"
            "integer variable pointer not allocated \n"
            "double variable pointer not allocated \n");
}

TEST(SunPacking, NegativeOrHugeCountsAreRefusedBeforeAnyAllocation) {
  TCStar_input sun;
  fill(sun);
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sun, p), 1);
  }
  struct Case {
    int at;
    int value;
    const char* message;
  } cases[] = {
      {1, -1, "packing integer array of the wrong size \n"},
      {2, 0, "packing integer array of the wrong size \n"},
      {2, -5, "packing integer array of the wrong size \n"},
      {1, 2000000000, "packing integer array of the wrong size \n"},
      // Keys beyond what any double array could hold in an int of bytes.
      {2, 2000000000, "packing double array of the wrong size \n"},
  };
  for (const Case& c : cases) {
    const int kept = p.ints[c.at];
    p.ints[c.at] = c.value;
    TCStar_input receiver;
    Stream_capture out(std::cout);
    receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
    EXPECT_EQ(
        receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0)
        << c.at << " " << c.value;
    EXPECT_EQ(out.text(), c.message);
    EXPECT_EQ(receiver.irradiance.n, 1);
    p.ints[c.at] = kept;
  }
}

TEST(SunPacking, CountsThatDisagreeWithTheirArraysAreRefused) {
  TCStar_input sun;
  fill(sun);
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sun, p), 1);
  }
  // One band fewer claimed than sent, sizes taken from the true counts: the
  // integer array is then too long for what the counts say.
  TCStar_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  p.ints[1] = 2;
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
}

TEST(SunPacking, KeyCountThatDisagreesWithTheDoublesIsRefused) {
  TCStar_input sun;
  fill(sun);
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sun, p), 1);
  }
  TCStar_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  p.ints[2] = 1;
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing double array of the wrong size \n");
}

TEST(SunPacking, TrackWithNoKeysPacksItsOneStoredKey) {
  TCStar_input sun, receiver;
  sun.track.set_number_of_times(0);
  Packed p;
  Stream_capture out(std::cout);
  ASSERT_EQ(pack_into(sun, p), 1);
  EXPECT_EQ(p.ints[2], 1);
  ASSERT_EQ(receive(receiver, p), 1);
  EXPECT_EQ(receiver.track.number_of_times, 1);
}

TEST(SunPacking, UnterminatedFileNameStaysInsideItsBlock) {
  TCStar_input sun, receiver;
  fill(sun);
  Packed p;
  Stream_capture out(std::cout);
  ASSERT_EQ(pack_into(sun, p), 1);
  std::memset(p.chars + 256, 'q', 256);
  ASSERT_EQ(receive(receiver, p), 1);
  EXPECT_EQ(std::strlen(receiver.object_file), 255u);
}

}  // namespace
