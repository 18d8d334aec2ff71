#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "ocean_test_records.h"
#include "stream_capture.h"
#include "surface_object_input.h"

namespace {

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

int pack(surface_object_input& surface, Packed& packed) {
  Stream_capture out(std::cout);
  return surface.pack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                      packed.chars, packed.char_bytes);
}

// Two textures: one above with an alpha band and drift, one on both sides
// with a below range longer than the above one.
void read_two_textures(surface_object_input& surface) {
  std::istringstream in(
      "Tidecast_data_file texture 2 2\nsurface_type: ocean\nnumber_of_textures: 2\n"
      "Center: 1 2\nOrientation: 10\nDimensions: 30 40\nMakePeridoic: 1\n"
      "AnimationFlag: 1\nV_x: 0.5\nV_y: 0.25\nt_o: 4\nNewPictureFlag: 1\nBaseFileName: base\n"
      "PictureFile: a.rgb\nPriority: 2\nPicture_bands: 2\n"
      "image_above: yes\nreflection_flag: 1\nalpha_flag: 1\nmin_radiance 0 1\n"
      "max_radiance: 2 3\nimage_below: no\n"
      "Center: 0 0\nOrientation: 0\nDimensions: 5 6\nMakePeridoic: 0\n"
      "AnimationFlag: 0\nNewPictureFlag: 0\nPictureFile: b.rgb\nPriority: 7\nPicture_bands: 2\n"
      "image_above: yes\nreflection_flag: 0\nalpha_flag: 0\nmin_radiance 4 5\n"
      "max_radiance: 6 7\nimage_below: yes\nreflection_flag: 2\nalpha_flag: 1\n"
      "min_radiance 8 9\nmax_radiance: 10 11\nendTexture\n");
  Stream_capture out(std::cout);
  ASSERT_EQ(surface.textures.process_texture_grid_input(in), 1) << out.text();
  surface.length.x = 10.0;
  surface.length.y = 20.0;
  surface.length.z = 5.0;
}

TEST(SurfaceObjectPacking, EmptySurfacePacksItsLengthsAndBlockCounts) {
  surface_object_input surface;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  surface.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, 3);
  EXPECT_EQ(n_doubles, 3);
  EXPECT_EQ(n_chars, 256);
}

TEST(SurfaceObjectPacking, EachTextureAddsItsFieldsRangesAndNames) {
  surface_object_input surface;
  read_two_textures(surface);
  // The first texture holds 3 values a side above (two bands and the
  // alpha's); the second 2 above and 3 below (the alpha widens the below).
  ASSERT_EQ(surface.textures.textures[0].above_values(), 3);
  ASSERT_EQ(surface.textures.textures[1].above_values(), 2);
  ASSERT_EQ(surface.textures.textures[1].below_values(), 3);
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  surface.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, 3 + 2 * 21);
  EXPECT_EQ(n_doubles, 3 + 2 * 8 + 2 * (3 + 2 + 3));
  EXPECT_EQ(n_chars, 256 + 2 * 512);
}

TEST(SurfaceObjectPacking, TexturesAndLengthsSurviveExactly) {
  surface_object_input surface;
  read_two_textures(surface);
  Packed packed;
  ASSERT_EQ(pack(surface, packed), 1);
  surface_object_input receiver;
  Stream_capture out(std::cout);
  receiver.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  ASSERT_EQ(receiver.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            1)
      << out.text();
  // Nothing but the root's line: the below range is restored without the
  // mismatch report it gave when read.
  EXPECT_EQ(out.text(), "type_name unpacked !\n");
  expect_same_textures(surface.textures, receiver.textures, "surface");
  EXPECT_EQ(receiver.length.x, 10.0);
  EXPECT_EQ(receiver.length.y, 20.0);
  EXPECT_EQ(receiver.length.z, 5.0);
  EXPECT_EQ(receiver.textures.textures[1].max_below[2], 1.0);  // the alpha's range
}

TEST(SurfaceObjectPacking, ArraysOfTheWrongSizeAreRefused) {
  surface_object_input surface;
  read_two_textures(surface);
  Packed packed;
  ASSERT_EQ(pack(surface, packed), 1);
  struct Case {
    int int_change;
    int double_change;
    int char_change;
    const char* message;
  };
  const Case cases[] = {
      {-4, 0, 0, "packing integer array of the wrong size \n"},
      {0, 8, 0, "packing double array of the wrong size \n"},
      {0, 0, -256, "packing char array of the wrong size \n"},
  };
  for (const Case& each : cases) {
    surface_object_input receiver;
    Stream_capture out(std::cout);
    receiver.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
    EXPECT_EQ(receiver.unpack(packed.ints, packed.int_bytes + each.int_change, packed.doubles,
                              packed.double_bytes + each.double_change, packed.chars,
                              packed.char_bytes + each.char_change),
              0);
    EXPECT_EQ(out.text(), each.message);
  }
}

TEST(SurfaceObjectPacking, ReceiverWithOtherTexturesAndNoCountsRefusesTheSizes) {
  surface_object_input surface;
  read_two_textures(surface);
  Packed packed;
  ASSERT_EQ(pack(surface, packed), 1);
  surface_object_input receiver;
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
}

TEST(SurfaceObjectPacking, RangeCountsThatDoNotAddUpAreRefused) {
  surface_object_input surface;
  read_two_textures(surface);
  Packed packed;
  ASSERT_EQ(pack(surface, packed), 1);
  // One value taken from the second texture's below range and given to the
  // first's above range: the header's total still holds.
  ASSERT_EQ(packed.ints[3 + 19], 3);
  ASSERT_EQ(packed.ints[3 + 21 + 20], 3);
  packed.ints[3 + 19] = 4;
  packed.ints[3 + 21 + 20] = 2;
  surface_object_input receiver;
  Stream_capture out(std::cout);
  receiver.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  // The sums agree, so this one unpacks, into other ranges.
  EXPECT_EQ(receiver.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            1);
  EXPECT_EQ(receiver.textures.textures[0].above_values(), 4);
  // A count past the total is refused.
  packed.ints[3 + 21 + 20] = 5;
  surface_object_input refusing;
  Stream_capture again(std::cout);
  refusing.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  EXPECT_EQ(refusing.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
  EXPECT_NE(again.text().find("packing integer array of the wrong size \n"), std::string::npos);
  packed.ints[3 + 21 + 20] = -1;
  surface_object_input negative;
  negative.set_sizes_from_packed(packed.ints, packed.doubles, packed.chars);
  EXPECT_EQ(negative.unpack(packed.ints, packed.int_bytes, packed.doubles, packed.double_bytes,
                            packed.chars, packed.char_bytes),
            0);
}

}  // namespace
