#include <gtest/gtest.h>

#include <cstring>

#include "TCByte_order.h"
#include "TCSettings.h"

namespace {

// Sets swap_bytes for one test and puts the process-wide value back.
class Swap_setting {
 public:
  explicit Swap_setting(int value) : saved_(swap_bytes) { swap_bytes = value; }
  ~Swap_setting() { swap_bytes = saved_; }

 private:
  int saved_;
};

TEST(ImageByteOrder, ShortIsSwappedWhenTheFlagIsOne) {
  Swap_setting swapping(1);
  short value = 0x1234;
  swap_short(value);
  EXPECT_EQ(value, 0x3412);
}

TEST(ImageByteOrder, LongIsSwappedWhenTheFlagIsOne) {
  Swap_setting swapping(1);
  int value = 0x12345678;
  swap_long(value);
  EXPECT_EQ(value, 0x78563412);
}

TEST(ImageByteOrder, HighBitsSurviveTheSwap) {
  Swap_setting swapping(1);
  short s = static_cast<short>(0xFF01);
  swap_short(s);
  EXPECT_EQ(static_cast<unsigned short>(s), 0x01FF);
  int l = static_cast<int>(0x800000FFu);
  swap_long(l);
  EXPECT_EQ(static_cast<unsigned int>(l), 0xFF000080u);
}

TEST(ImageByteOrder, NothingChangesWhenTheFlagIsZero) {
  Swap_setting no_swapping(0);
  short s = 0x1234;
  swap_short(s);
  EXPECT_EQ(s, 0x1234);
  int l = 0x12345678;
  swap_long(l);
  EXPECT_EQ(l, 0x12345678);
}

TEST(ImageByteOrder, ValuesReachTheFileBigEndianOnThisHost) {
  // The engine's default: the flag follows the host, so the bytes in memory
  // after a swap are the big-endian form whatever the host.
  short s = 474;
  swap_short(s);
  unsigned char b[2];
  std::memcpy(b, &s, 2);
  EXPECT_EQ(b[0], 0x01);
  EXPECT_EQ(b[1], 0xDA);
  int l = 255;
  swap_long(l);
  unsigned char w[4];
  std::memcpy(w, &l, 4);
  EXPECT_EQ(w[0], 0);
  EXPECT_EQ(w[1], 0);
  EXPECT_EQ(w[2], 0);
  EXPECT_EQ(w[3], 0xFF);
}

}  // namespace
