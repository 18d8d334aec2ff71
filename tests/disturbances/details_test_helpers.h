#ifndef TC_TESTS_DETAILS_TEST_HELPERS_H
#define TC_TESTS_DETAILS_TEST_HELPERS_H

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <string>

#include "TCGrid_details_input.h"
#include "stream_capture.h"

// Reading and writing a detail record's block and file through strings, and
// carrying it across the packed arrays, with what each step printed.

inline int read_block(TCGrid_details_input& record, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = record.read_grid_block(in);
  printed = out.text();
  return result;
}

inline int read_detail(TCGrid_details_input& record, const std::string& text,
                       std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = record.read_detail_file(in);
  printed = out.text();
  return result;
}

inline std::string block_of(const TCGrid_details_input& record) {
  std::ostringstream out;
  EXPECT_EQ(record.write_grid_block(out), 1);
  return out.str();
}

inline std::string detail_of(const TCGrid_details_input& record) {
  std::ostringstream out;
  EXPECT_EQ(record.write_detail_file(out), 1);
  return out.str();
}

struct Packed {
  Packed() {}
  ~Packed() {
    delete[] ints;
    delete[] doubles;
    delete[] chars;
  }
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;

 private:
  Packed(const Packed&);
  Packed& operator=(const Packed&);
};

inline int pack_record(TCGrid_details_input& record, Packed& packed, std::string& printed) {
  Stream_capture out(std::cout);
  const int result = record.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                                 packed.chars, packed.char_bytes);
  printed = out.text();
  return result;
}

// set_sizes_from_packed, then unpack with the given byte sizes.
inline int unpack_record(TCGrid_details_input& record, const Packed& packed, int int_bytes,
                         int double_bytes, int char_bytes, std::string& printed) {
  Stream_capture out(std::cout);
  record.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  const int result =
      record.unpack(packed.ints, int_bytes, packed.doubles, double_bytes, packed.chars, char_bytes);
  printed = out.text();
  return result;
}

inline int unpack_record(TCGrid_details_input& record, const Packed& packed, std::string& printed) {
  return unpack_record(record, packed, packed.int_bytes, packed.double_bytes, packed.char_bytes,
                       printed);
}

// The degrees of a file in memory, the engine's factor written out.
inline double radians_of(double degrees) {
  return degrees * 0.017453292519444445;
}

#endif
