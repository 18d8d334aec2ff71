#include "TCByte_order.h"

#include <cstring>

#include "TCSettings.h"

void swap_short(short& value) {
  if (swap_bytes != 1) return;
  unsigned char b[2];
  std::memcpy(b, &value, 2);
  const unsigned char first = b[0];
  b[0] = b[1];
  b[1] = first;
  std::memcpy(&value, b, 2);
}

void swap_long(int& value) {
  if (swap_bytes != 1) return;
  unsigned char b[4];
  std::memcpy(b, &value, 4);
  unsigned char t = b[0];
  b[0] = b[3];
  b[3] = t;
  t = b[1];
  b[1] = b[2];
  b[2] = t;
  std::memcpy(&value, b, 4);
}
