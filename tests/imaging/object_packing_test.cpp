#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "TCObject_input.h"
#include "stream_capture.h"

namespace {

// A record with fields of its own after the root's, one of them of variable
// length, packed the way every derived input packs.
class Packed_probe : public TCObject_input {
 public:
  Packed_probe() : count(0), first(0), second(0), scale(0.0), values(nullptr) {}
  ~Packed_probe() override { delete[] values; }

  void set_values(int n) {
    delete[] values;
    count = n;
    values = new double[n > 0 ? n : 0]();
  }

  // Ints: count, first, second. Doubles: scale, then count values.
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override {
    TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
    n_ints += 3;
    n_doubles += 1 + count;
  }

  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override {
    TCObject_input::set_sizes_from_packed(ints, doubles, chars);
    int n_ints, n_doubles, n_chars;
    TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
    set_values(ints[n_ints]);
  }

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override {
    if (!TCObject_input::pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) return 0;
    int n_ints, n_doubles, n_chars;
    TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
    ints[n_ints] = count;
    ints[n_ints + 1] = first;
    ints[n_ints + 2] = second;
    doubles[n_doubles] = scale;
    for (int i = 0; i < count; i++) doubles[n_doubles + 1 + i] = values[i];
    return 1;
  }

  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override {
    if (!TCObject_input::unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
      return 0;
    }
    int n_ints, n_doubles, n_chars;
    TCObject_input::packing_sizes(n_ints, n_doubles, n_chars);
    first = ints[n_ints + 1];
    second = ints[n_ints + 2];
    scale = doubles[n_doubles];
    for (int i = 0; i < count; i++) values[i] = doubles[n_doubles + 1 + i];
    return 1;
  }

  int count;
  int first;
  int second;
  double scale;
  double* values;
};

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

int pack_into(TCObject_input& input, Packed& p) {
  return input.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
}

int unpack_from(TCObject_input& input, const Packed& p) {
  return input.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
}

TEST(ObjectPacking, RootSizesAreNoNumbersAndTwoHundredFiftySixChars) {
  TCObject_input input;
  int n_ints = -1, n_doubles = -1, n_chars = -1;
  input.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, 0);
  EXPECT_EQ(n_doubles, 0);
  EXPECT_EQ(n_chars, 256);
}

TEST(ObjectPacking, RootPacksTheNameWithNewLineAndZero) {
  TCObject_input input;
  std::strcpy(input.object_name, "harbour_light");
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(input, p), 1);
    EXPECT_EQ(out.text(), "packing harbour_light\n");
  }
  EXPECT_EQ(p.int_bytes, 0);
  EXPECT_EQ(p.double_bytes, 0);
  EXPECT_EQ(p.char_bytes, 256);
  EXPECT_NE(p.ints, nullptr);
  EXPECT_NE(p.doubles, nullptr);
  ASSERT_NE(p.chars, nullptr);
  EXPECT_EQ(std::string(p.chars, 15), std::string("harbour_light\n\0", 15));
}

TEST(ObjectPacking, RootRoundTripPrintsNameUnpacked) {
  TCObject_input sender;
  std::strcpy(sender.object_name, "buoy");
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  TCObject_input receiver;
  Stream_capture out(std::cout);
  ASSERT_EQ(unpack_from(receiver, p), 1);
  EXPECT_STREQ(receiver.object_name, "buoy");
  EXPECT_EQ(out.text(), "buoy unpacked !\n");
}

TEST(ObjectPacking, DerivedClassAppendsAtTheRootsCountsAndRoundTrips) {
  Packed_probe sender;
  std::strcpy(sender.object_name, "probe");
  sender.first = 17;
  sender.second = -4;
  sender.scale = 0.75;
  sender.set_values(3);
  sender.values[0] = 1.5;
  sender.values[1] = -2.25;
  sender.values[2] = 1e10;

  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sender, p), 1);
  }
  EXPECT_EQ(p.int_bytes, 3 * 4);
  EXPECT_EQ(p.double_bytes, 4 * 8);
  EXPECT_EQ(p.char_bytes, 256);
  EXPECT_EQ(p.ints[0], 3);
  EXPECT_EQ(p.ints[1], 17);
  EXPECT_EQ(p.doubles[0], 0.75);
  EXPECT_EQ(p.doubles[3], 1e10);

  // The receiver learns the variable count before it checks any size.
  Packed_probe receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  EXPECT_EQ(receiver.count, 3);
  Stream_capture out(std::cout);
  ASSERT_EQ(unpack_from(receiver, p), 1);
  EXPECT_EQ(out.text(), "probe unpacked !\n");
  EXPECT_STREQ(receiver.object_name, "probe");
  EXPECT_EQ(receiver.first, 17);
  EXPECT_EQ(receiver.second, -4);
  EXPECT_EQ(receiver.scale, 0.75);
  EXPECT_EQ(receiver.values[0], 1.5);
  EXPECT_EQ(receiver.values[1], -2.25);
  EXPECT_EQ(receiver.values[2], 1e10);
}

TEST(ObjectPacking, ReceiverWithoutTheSendersCountRefusesTheDoubles) {
  Packed_probe sender;
  sender.set_values(2);
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sender, p), 1);
  }
  Packed_probe receiver;  // count 0: its sizes are not the sender's
  Stream_capture out(std::cout);
  EXPECT_EQ(unpack_from(receiver, p), 0);
  EXPECT_EQ(out.text(), "object packing double array of the wrong size \n");
}

class PackingSizeMismatch : public ::testing::Test {
 protected:
  void SetUp() override {
    std::strcpy(sender.object_name, "probe");
    sender.set_values(1);
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sender, p), 1);
    receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  }
  std::string unpack_message(int expected_result) {
    Stream_capture out(std::cout);
    EXPECT_EQ(unpack_from(receiver, p), expected_result);
    return out.text();
  }
  Packed_probe sender;
  Packed_probe receiver;
  Packed p;
};

TEST_F(PackingSizeMismatch, IntegerBytesOffByOneIntIsRefused) {
  p.int_bytes += 4;
  EXPECT_EQ(unpack_message(0), "object packing integer array of the wrong size \n");
}

TEST_F(PackingSizeMismatch, DoubleBytesShortIsRefused) {
  p.double_bytes -= 8;
  EXPECT_EQ(unpack_message(0), "object packing double array of the wrong size \n");
}

TEST_F(PackingSizeMismatch, CharBytesShortIsRefused) {
  p.char_bytes = 255;
  EXPECT_EQ(unpack_message(0), "object char packing array of the wrong size \n");
}

TEST_F(PackingSizeMismatch, IntegersAreCheckedBeforeDoublesAndChars) {
  p.int_bytes = 0;
  p.double_bytes = 0;
  p.char_bytes = 0;
  EXPECT_EQ(unpack_message(0), "object packing integer array of the wrong size \n");
}

TEST_F(PackingSizeMismatch, RefusalLeavesTheNameUntouched) {
  std::strcpy(receiver.object_name, "kept");
  p.char_bytes = 512;
  unpack_message(0);
  EXPECT_STREQ(receiver.object_name, "kept");
}

TEST(ObjectPacking, NullPointersAreRefusedCharsFirst) {
  TCObject_input input;
  int ints[1] = {0};
  double doubles[1] = {0.0};
  char chars[256] = {0};
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(input.unpack(nullptr, 0, nullptr, 0, nullptr, 256), 0);
    EXPECT_EQ(out.text(), "char variable pointer not allocated \n");
  }
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(input.unpack(nullptr, 0, doubles, 0, chars, 256), 0);
    EXPECT_EQ(out.text(), "integer variable pointer not allocated \n");
  }
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(input.unpack(ints, 0, nullptr, 0, chars, 256), 0);
    EXPECT_EQ(out.text(), "double variable pointer not allocated \n");
  }
}

TEST(ObjectPacking, LongestNameThatFitsFillsTheBlockExactly) {
  TCObject_input input;
  const std::string name(254, 'n');
  std::strcpy(input.object_name, name.c_str());
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(input, p), 1);
  }
  EXPECT_EQ(p.chars[253], 'n');
  EXPECT_EQ(p.chars[254], '\n');
  EXPECT_EQ(p.chars[255], '\0');
  TCObject_input receiver;
  Stream_capture out(std::cout);
  ASSERT_EQ(unpack_from(receiver, p), 1);
  EXPECT_EQ(std::string(receiver.object_name), name);
}

TEST(ObjectPacking, NameTooLongForTheBlockFailsWithStreamMessage) {
  TCObject_input input;
  const std::string name(255, 'n');
  std::strcpy(input.object_name, name.c_str());
  Packed p;
  Stream_capture out(std::cout);
  EXPECT_EQ(pack_into(input, p), 0);
  EXPECT_EQ(out.text(), "unable to open stream to packing char array \n");
}

TEST(ObjectPacking, UnterminatedNameIsCutAtTheFieldsLength) {
  char chars[256];
  std::memset(chars, 'z', sizeof(chars));
  int ints[1] = {0};
  double doubles[1] = {0.0};
  TCObject_input receiver;
  Stream_capture out(std::cout);
  ASSERT_EQ(receiver.unpack(ints, 0, doubles, 0, chars, 256), 1);
  EXPECT_EQ(std::string(receiver.object_name), std::string(255, 'z'));
}

TEST(ObjectPacking, NameEndsAtTheFirstZeroWithoutNewLine) {
  char chars[256] = {0};
  std::strcpy(chars, "gull");
  int ints[1] = {0};
  double doubles[1] = {0.0};
  TCObject_input receiver;
  Stream_capture out(std::cout);
  ASSERT_EQ(receiver.unpack(ints, 0, doubles, 0, chars, 256), 1);
  EXPECT_STREQ(receiver.object_name, "gull");
  EXPECT_EQ(out.text(), "gull unpacked !\n");
}

}  // namespace
