// The receiving side of the packing contract: arbitrary arrays and sizes.
#include <cstring>
#include <vector>

#include "TCObject_input.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  // Three claimed byte sizes, then the character array.
  const int int_bytes = data[0] * 4;
  const int double_bytes = data[1] * 8;
  const int char_bytes = static_cast<int>(size) - 3;
  std::vector<int> ints(data[0] + 1, 0);
  std::vector<double> doubles(data[1] + 1, 0.0);
  std::vector<char> chars(data + 3, data + size);
  chars.push_back('\0');
  TCObject_input input;
  input.set_sizes_from_packed(ints.data(), doubles.data(), chars.data());
  input.unpack(ints.data(), int_bytes, doubles.data(), double_bytes, chars.data(),
               data[2] & 1 ? char_bytes : 256);
  return 0;
}
