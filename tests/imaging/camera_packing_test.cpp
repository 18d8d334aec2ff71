#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "TCCamera_input.h"
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

int pack_into(TCObject_input& input, Packed& p) {
  return input.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
}

// The receiving side as the contract has it: sizes first, then the arrays.
int receive(TCObject_input& input, const Packed& p) {
  input.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  return input.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
}

int read_text(TCCamera_input& camera, const std::string& text) {
  std::istringstream in(text);
  return camera.read_stream(in);
}

const char* const camera_with_mattes =
    "Tidecast_data_file camera 3 3\n"
    "n_pixel_azimuth 640 n_pixel_elevation 480\n"
    "fov_azimuth 40.5 fov_elevation 30.25\n"
    "image_method 1\n"
    "picture_fraction_flag 1 azimuth_range 10 319 elevation_range 20 239\n"
    "n_sub_azimuth 2 n_sub_elevation 3\n"
    "number_of_bands 3 band_id 4 5 6\n"
    "anti_alias 1 resampling_azimuth 2 resampling_elevation 4\n"
    "efficiency_matte 1 efficiency_matte_file eff.hdf\n"
    "image_slices 4\n"
    "image_format rgb\n"
    "scale gamma 2.5\n"
    "min_value 0.5 max_value 1.5\n"
    "end\n"
    "use_mattes: 1\n"
    "  NObjects: 2\n"
    "    Object: boat\n"
    "      NMattes: 3\n"
    "        radiance reflect-buoy distance\n"
    "    Object: scene\n"
    "      NMattes: 2\n"
    "        scene_distance whitecap\n";

const char* const bobbing_section =
    "Tidecast_data_file bobbing_camera 1 1\n"
    "decouple_height: 0.75\n"
    "decouple_relax_time: 2.5\n"
    "base_size: 3.25\n"
    "end\n";

const char* const plain_camera =
    "Tidecast_data_file camera 3 3\n"
    "n_pixel_azimuth 8 n_pixel_elevation 6 fov_azimuth 20 fov_elevation 15\n"
    "image_method 1 picture_fraction_flag 0 n_sub_azimuth 1 n_sub_elevation 1\n"
    "number_of_bands 1 band_id 7 anti_alias 0 efficiency_matte 0\n"
    "end\n"
    "use_mattes: 0\n";

TEST(CameraPacking, DefaultCameraCounts) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  int n_ints = -1, n_doubles = -1, n_chars = -1;
  camera.packing_sizes(n_ints, n_doubles, n_chars);
  // 19 fixed, use_mattes, one band; the name and the efficiency file.
  EXPECT_EQ(n_ints, 21);
  EXPECT_EQ(n_doubles, 6);
  EXPECT_EQ(n_chars, 512);
}

TEST(CameraPacking, CountsGrowWithBandsMattesAndGivenSlices) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  ASSERT_EQ(read_text(camera, camera_with_mattes), 1);
  const int flags[4] = {1, 0, 0, 1};
  ASSERT_EQ(camera.set_slices_to_image(4, flags), 1);
  int n_ints = -1, n_doubles = -1, n_chars = -1;
  camera.packing_sizes(n_ints, n_doubles, n_chars);
  // 20, then 4 matte counts, 1 + 3 and 1 + 2 for the objects, 3 bands and
  // 4 slice flags.
  EXPECT_EQ(n_ints, 20 + 4 + 4 + 3 + 3 + 4);
  EXPECT_EQ(n_doubles, 6);
  // Name, efficiency file, two object names, one reflected name.
  EXPECT_EQ(n_chars, 256 * 5);
  EXPECT_EQ(camera.matte_name_count(), 2 + 2 + 5);
}

TEST(CameraPacking, SizesSitAtTheirFixedPositions) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  camera.version = 2;
  ASSERT_EQ(read_text(camera, camera_with_mattes), 1);
  const int flags[4] = {1, 0, 0, 1};
  ASSERT_EQ(camera.set_slices_to_image(4, flags), 1);
  Packed p;
  ASSERT_EQ(pack_into(camera, p), 1);
  EXPECT_EQ(p.int_bytes, 38 * 4);
  EXPECT_EQ(p.double_bytes, 6 * 8);
  EXPECT_EQ(p.char_bytes, 1280);
  EXPECT_EQ(p.ints[13], 4);
  EXPECT_EQ(p.ints[16], 3);
  EXPECT_EQ(p.ints[17], 1);
  EXPECT_EQ(p.ints[19], 1);
  EXPECT_EQ(p.ints[20], 2);
  EXPECT_EQ(p.ints[21], 5);
  // The first object's count and codes follow the four matte counts.
  EXPECT_EQ(p.ints[24], 3);
  EXPECT_EQ(p.ints[25], 0);
  EXPECT_EQ(p.ints[26], 7);
  EXPECT_EQ(p.ints[27], 19);
  EXPECT_EQ(p.ints[28], 2);
  EXPECT_EQ(p.ints[29], 20);
  EXPECT_EQ(p.ints[30], 13);
  // Bands, then the slice flags.
  EXPECT_EQ(p.ints[31], 4);
  EXPECT_EQ(p.ints[33], 6);
  EXPECT_EQ(p.ints[34], 1);
  EXPECT_EQ(p.ints[35], 0);
  EXPECT_EQ(p.ints[37], 1);
  EXPECT_DOUBLE_EQ(p.doubles[0], 30.25);
  EXPECT_DOUBLE_EQ(p.doubles[1], 40.5);
  EXPECT_STREQ(p.chars + 256, "eff.hdf");
  EXPECT_STREQ(p.chars + 512, "boat");
  EXPECT_STREQ(p.chars + 768, "scene");
  EXPECT_STREQ(p.chars + 1024, "buoy");
}

TEST(CameraPacking, PackPrintsTheNameAndUnpackSaysUnpacked) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  std::strcpy(sender.object_name, "mast_camera");
  Packed p;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(pack_into(sender, p), 1);
    EXPECT_EQ(out.text(), "packing mast_camera\n");
  }
  TCCamera_input receiver;
  Stream_capture out(std::cout);
  ASSERT_EQ(receive(receiver, p), 1);
  EXPECT_EQ(out.text(), "mast_camera unpacked !\n");
  EXPECT_STREQ(receiver.object_name, "mast_camera");
}

// Every field that packing carries, a against b.
void expect_same_packed_camera(const TCCamera_input& a, const TCCamera_input& b) {
  EXPECT_STREQ(a.object_name, b.object_name);
  EXPECT_EQ(a.version, b.version);
  EXPECT_EQ(a.priority, b.priority);
  EXPECT_EQ(a.n_pixel_elevation, b.n_pixel_elevation);
  EXPECT_EQ(a.n_pixel_azimuth, b.n_pixel_azimuth);
  EXPECT_EQ(a.fov_elevation, b.fov_elevation);
  EXPECT_EQ(a.fov_azimuth, b.fov_azimuth);
  EXPECT_EQ(a.picture_fraction_flag, b.picture_fraction_flag);
  EXPECT_EQ(a.first_elevation, b.first_elevation);
  EXPECT_EQ(a.first_azimuth, b.first_azimuth);
  EXPECT_EQ(a.last_elevation, b.last_elevation);
  EXPECT_EQ(a.last_azimuth, b.last_azimuth);
  EXPECT_EQ(a.n_sub_elevation, b.n_sub_elevation);
  EXPECT_EQ(a.n_sub_azimuth, b.n_sub_azimuth);
  ASSERT_EQ(a.bands.n, b.bands.n);
  for (int i = 0; i < a.bands.n; i++) EXPECT_EQ(a.bands.band_id[i], b.bands.band_id[i]);
  EXPECT_EQ(a.anti_alias, b.anti_alias);
  EXPECT_EQ(a.efficiency_matte, b.efficiency_matte);
  EXPECT_STREQ(a.efficiency_matte_file, b.efficiency_matte_file);
  EXPECT_EQ(a.resampling_elevation, b.resampling_elevation);
  EXPECT_EQ(a.resampling_azimuth, b.resampling_azimuth);
  EXPECT_EQ(a.image_slices, b.image_slices);
  ASSERT_EQ(a.slices_given, b.slices_given);
  if (a.slices_given) {
    for (int i = 0; i < a.image_slices; i++) {
      EXPECT_EQ(a.slices_to_be_imaged[i], b.slices_to_be_imaged[i]);
    }
  } else {
    EXPECT_EQ(b.slices_to_be_imaged, nullptr);
  }
  EXPECT_EQ(a.image_format, b.image_format);
  EXPECT_EQ(a.rescale_method, b.rescale_method);
  EXPECT_EQ(a.gamma, b.gamma);
  EXPECT_EQ(a.min_value, b.min_value);
  EXPECT_EQ(a.max_value, b.max_value);
  EXPECT_EQ(a.matte.use_mattes, b.matte.use_mattes);
  ASSERT_EQ(a.matte.n_matte_objects, b.matte.n_matte_objects);
  for (int i = 0; i < a.matte.n_matte_objects; i++) {
    EXPECT_STREQ(a.matte.matte_object_names[i], b.matte.matte_object_names[i]);
    ASSERT_EQ(a.matte.matte_counts[i], b.matte.matte_counts[i]);
    for (int j = 0; j < a.matte.matte_counts[i]; j++) {
      EXPECT_EQ(a.matte.matte_ids[i][j], b.matte.matte_ids[i][j]);
    }
  }
  ASSERT_EQ(a.matte.n_reflected_names, b.matte.n_reflected_names);
  for (int k = 0; k < a.matte.n_reflected_names; k++) {
    EXPECT_STREQ(a.matte.reflected_names[k], b.matte.reflected_names[k]);
  }
  ASSERT_EQ(a.matte.n_alpha_names, b.matte.n_alpha_names);
  for (int k = 0; k < a.matte.n_alpha_names; k++) {
    EXPECT_STREQ(a.matte.alpha_names[k], b.matte.alpha_names[k]);
  }
}

TEST(CameraPacking, RoundTripGivesEqualFields) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  sender.version = 2;
  ASSERT_EQ(read_text(sender, camera_with_mattes), 1);
  std::strcpy(sender.object_name, "deck");
  sender.priority = -1.0;
  const int flags[4] = {0, 1, 1, 0};
  ASSERT_EQ(sender.set_slices_to_image(4, flags), 1);
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  TCCamera_input receiver;
  receiver.version = 1;
  ASSERT_EQ(receive(receiver, p), 1);
  expect_same_packed_camera(sender, receiver);
}

TEST(CameraPacking, ReceiverWithMoreStateTakesTheSendersSizes) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  sender.version = 2;
  ASSERT_EQ(read_text(sender, plain_camera), 1);
  TCCamera_input receiver;
  receiver.version = 2;
  ASSERT_EQ(read_text(receiver, camera_with_mattes), 1);
  const int flags[2] = {1, 1};
  ASSERT_EQ(receiver.set_slices_to_image(2, flags), 1);
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  ASSERT_EQ(receive(receiver, p), 1);
  expect_same_packed_camera(sender, receiver);
  EXPECT_EQ(receiver.matte.n_matte_objects, 0);
}

TEST(CameraPacking, ReceivedRecordPacksAgainToTheSameArrays) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  sender.version = 2;
  ASSERT_EQ(read_text(sender, camera_with_mattes), 1);
  Packed first;
  ASSERT_EQ(pack_into(sender, first), 1);
  TCCamera_input receiver;
  ASSERT_EQ(receive(receiver, first), 1);
  Packed second;
  ASSERT_EQ(pack_into(receiver, second), 1);
  ASSERT_EQ(first.int_bytes, second.int_bytes);
  ASSERT_EQ(first.double_bytes, second.double_bytes);
  ASSERT_EQ(first.char_bytes, second.char_bytes);
  EXPECT_EQ(std::memcmp(first.ints, second.ints, first.int_bytes), 0);
  EXPECT_EQ(std::memcmp(first.doubles, second.doubles, first.double_bytes), 0);
  EXPECT_EQ(std::memcmp(first.chars, second.chars, first.char_bytes), 0);
}

TEST(CameraPacking, WrongIntegerSizeIsRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  TCCamera_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  Stream_capture out(std::cout);
  EXPECT_EQ(
      receiver.unpack(p.ints, p.int_bytes - 4, p.doubles, p.double_bytes, p.chars, p.char_bytes),
      0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
}

TEST(CameraPacking, WrongDoubleSizeIsRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  TCCamera_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  Stream_capture out(std::cout);
  EXPECT_EQ(
      receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes + 8, p.chars, p.char_bytes),
      0);
  EXPECT_EQ(out.text(), "packing double array of the wrong size \n");
}

TEST(CameraPacking, WrongCharSizeIsRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  TCCamera_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, 256), 0);
  EXPECT_EQ(out.text(), "packing char array of the wrong size \n");
}

TEST(CameraPacking, SizesOfAnotherShapeAreRefusedWithoutTheirCounts) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  sender.version = 2;
  ASSERT_EQ(read_text(sender, camera_with_mattes), 1);
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  // The receiver counts its own single band and no mattes.
  TCCamera_input receiver;
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
}

TEST(CameraPacking, MissingArraysAreRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  TCCamera_input receiver;
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, nullptr, p.char_bytes),
            0);
  EXPECT_EQ(receiver.unpack(nullptr, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, nullptr, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(),
            "char variable pointer not allocated \n"
            "integer variable pointer not allocated \n"
            "double variable pointer not allocated \n");
}

TEST(CameraPacking, CountsTooLargeForAnyArrayAreNotPacked) {
  Stream_capture quiet(std::cout);
  TCCamera_input camera;
  const int flags[1] = {1};
  ASSERT_EQ(camera.set_slices_to_image(1, flags), 1);
  camera.image_slices = INT_MAX;
  Packed p;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(pack_into(camera, p), 0);
    EXPECT_EQ(out.text(), "unable to allocate camera integer packing array \n");
  }
  EXPECT_EQ(p.ints, nullptr);
  camera.image_slices = 1;
}

TEST(CameraPacking, HugeReceivedCountsAreRefusedWithoutAllocating) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  p.ints[13] = 2000000000;
  p.ints[17] = 1;
  TCCamera_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  receiver.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, -1);
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
  EXPECT_EQ(receiver.slices_to_be_imaged, nullptr);
}

TEST(CameraPacking, NegativeReceivedCountsAreRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  sender.version = 2;
  ASSERT_EQ(read_text(sender, plain_camera), 1);
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  // One band less and a slice list of one more: the total stays the same.
  p.ints[16] = 0;
  p.ints[13] = 1;
  p.ints[17] = 1;
  TCCamera_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(receive(receiver, p), 1);
  }
  // Now a negative band count balanced by a larger slice list.
  p.ints[16] = -1;
  p.ints[13] = 2;
  Stream_capture out(std::cout);
  EXPECT_EQ(receive(receiver, p), 0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
}

TEST(CameraPacking, MatteCountsThatDoNotAddUpAreRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  sender.version = 2;
  ASSERT_EQ(read_text(sender, camera_with_mattes), 1);
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  // The first object claims every code of the section, the second then
  // falls beyond the total.
  p.ints[24] = 5;
  TCCamera_input receiver;
  Stream_capture out(std::cout);
  EXPECT_EQ(receive(receiver, p), 0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
  EXPECT_EQ(receiver.matte.n_matte_objects, 0);
}

TEST(CameraPacking, MattesSwitchedOnInASmallArrayAreRefused) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  p.ints[19] = 1;
  TCCamera_input receiver;
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
}

TEST(CameraBobbing, ConstructionPrintsItsOwnName) {
  Stream_capture out(std::cout);
  TCBobbing_camera_input camera;
  EXPECT_EQ(out.text(), "camera constructed bobbing_camera_type\n");
  EXPECT_STREQ(camera.object_name, "bobbing_camera_type");
  EXPECT_STREQ(camera.object_type, "bobbing_camera");
  EXPECT_EQ(camera.type_code, 254);
}

TEST(CameraBobbing, ReadsTheSectionBehindTheMattes) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  camera.version = 2;
  std::istringstream in(std::string(camera_with_mattes) + bobbing_section);
  Stream_capture out(std::cout);
  ASSERT_EQ(camera.read_stream(in), 1);
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(camera.n_pixel_azimuth, 640);
  EXPECT_EQ(camera.matte.n_matte_objects, 2);
  EXPECT_DOUBLE_EQ(camera.get_decouple_height(), 0.75);
  EXPECT_DOUBLE_EQ(camera.get_decouple_relax_time(), 2.5);
  EXPECT_DOUBLE_EQ(camera.get_base_size(), 3.25);
}

TEST(CameraBobbing, ListVersionOneHasTheSectionRightBehindTheEnd) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  camera.version = 1;
  std::istringstream in(
      "Tidecast_data_file camera 1 1\n"
      "n_pixel_azimuth 4 n_pixel_elevation 2 fov_azimuth 10 fov_elevation 5\n"
      "image_method 1 picture_fraction_flag 0 n_sub_azimuth 1 n_sub_elevation 1\n"
      "number_of_bands 1 band_id 1\n"
      "end\n" +
      std::string(bobbing_section));
  ASSERT_EQ(camera.read_stream(in), 1);
  EXPECT_DOUBLE_EQ(camera.base_size, 3.25);
}

TEST(CameraBobbing, NewerSectionIsRefused) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  std::istringstream in("Tidecast_data_file bobbing_camera 2 2\n");
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.read_bobbing_section(in), 0);
  EXPECT_EQ(out.text(), " cannot process bobbing camera file \n");
}

TEST(CameraBobbing, WrongSectionTypeIsRefused) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  std::istringstream in("Tidecast_data_file camera 1 1\n");
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.read_bobbing_section(in), 0);
  EXPECT_EQ(out.text(),
            "file type camera is not of \n"
            "expected type bobbing_camera\n"
            " cannot process bobbing camera file \n");
}

TEST(CameraBobbing, MissingEndIsRefused) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  std::istringstream in(
      "Tidecast_data_file bobbing_camera 1 1\n"
      "decouple_height: 1 decouple_relax_time: 2 base_size: 3 stop\n");
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.read_bobbing_section(in), 0);
  EXPECT_EQ(out.text(), "error in bobbing camera file, found stopwhere I expected end \n");
  EXPECT_DOUBLE_EQ(camera.base_size, 3.0);
}

TEST(CameraBobbing, AWordForANumberIsShownByTheEndCheck) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  std::istringstream in(
      "Tidecast_data_file bobbing_camera 1 1\n"
      "decouple_height: high decouple_relax_time: 2 base_size: 3 end\n");
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.read_bobbing_section(in), 0);
  EXPECT_EQ(out.text(), "error in bobbing camera file, found highwhere I expected end \n");
  EXPECT_DOUBLE_EQ(camera.decouple_relax_time, 0.0);
}

TEST(CameraBobbing, ALastValueOutOfRangeFailsEvenBeforeEnd) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  std::istringstream in(
      "Tidecast_data_file bobbing_camera 1 1\n"
      "decouple_height: 1 decouple_relax_time: 2 base_size: 1e400 end\n");
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.read_bobbing_section(in), 0);
  EXPECT_EQ(out.text(), "error in bobbing camera file, found endwhere I expected end \n");
}

std::string temp_path(const char* name) {
  return ::testing::TempDir() + name;
}

void write_text_file(const std::string& path, const std::string& text) {
  std::ofstream out(path.c_str());
  out << text;
}

TEST(CameraBobbing, FileMessagesNameThePath) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  camera.version = 2;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(camera.read_file("/nonexistent/tidecast/bob.cam"), 0);
    EXPECT_EQ(out.text(), "unable to open bobbing camera file /nonexistent/tidecast/bob.cam\n");
  }
  const std::string bad_camera = temp_path("bobbing_bad_camera.cam");
  write_text_file(bad_camera, "Tidecast_data_file camera 3 3\nn_pixel_azimuth x\n");
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(camera.read_file(bad_camera.c_str()), 0);
    EXPECT_EQ(out.text(),
              "camera file invalid, read xinstead of end\n"
              "unable to process camera file " +
                  bad_camera + "\n");
  }
  const std::string bad_section = temp_path("bobbing_bad_section.cam");
  write_text_file(bad_section, std::string(plain_camera) +
                                   "Tidecast_data_file bobbing_camera 1 1\n"
                                   "decouple_height: 1\n");
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(camera.read_file(bad_section.c_str()), 0);
    EXPECT_EQ(out.text(),
              "error in bobbing camera file, found where I expected end \n"
              "unable to process bobbing camera file " +
                  bad_section + "\n");
  }
  std::remove(bad_camera.c_str());
  std::remove(bad_section.c_str());
}

TEST(CameraBobbing, OutputFileMessages) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(camera.write_file("/nonexistent/tidecast/bob.cam"), 0);
    EXPECT_EQ(out.text(),
              "unable to open bobbing camera output file /nonexistent/tidecast/bob.cam\n");
  }
  const std::string path = temp_path("bobbing_no_word.cam");
  camera.rescale_method = 7;
  camera.image_format = 3002;
  Stream_capture out(std::cout);
  EXPECT_EQ(camera.write_file(path.c_str()), 0);
  EXPECT_EQ(out.text(), "unable to process bobbing camera output file " + path + "\n");
  std::remove(path.c_str());
}

TEST(CameraBobbing, WriterAppendsItsSection) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  camera.version = 2;
  camera.decouple_height = 0.75;
  camera.decouple_relax_time = 2.5;
  camera.base_size = 3.25;
  std::ostringstream out;
  ASSERT_EQ(camera.write_stream(out), 1);
  const std::string text = out.str();
  const std::string tail =
      "end \n"
      "use_mattes: 0\n"
      "Tidecast_data_file bobbing_camera 1 1\n"
      "decouple_height: 0.75\n"
      "decouple_relax_time: 2.5\n"
      "base_size: 3.25\n"
      "end \n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
  EXPECT_EQ(text.rfind("Tidecast_data_file camera 3 3\n", 0), 0u);
}

TEST(CameraBobbing, WrittenFileReadsBackIdentically) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input first;
  first.version = 2;
  std::istringstream in(std::string(camera_with_mattes) + bobbing_section);
  ASSERT_EQ(first.read_stream(in), 1);
  const std::string path = temp_path("bobbing_round_trip.cam");
  ASSERT_EQ(first.write_file(path.c_str()), 1);
  TCBobbing_camera_input second;
  second.version = 2;
  ASSERT_EQ(second.read_file(path.c_str()), 1);
  expect_same_packed_camera(first, second);
  EXPECT_EQ(second.decouple_height, 0.75);
  EXPECT_EQ(second.decouple_relax_time, 2.5);
  EXPECT_EQ(second.base_size, 3.25);
  std::remove(path.c_str());
}

TEST(CameraBobbing, PackingAddsThreeDoubles) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  int n_ints = -1, n_doubles = -1, n_chars = -1;
  camera.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, 21);
  EXPECT_EQ(n_doubles, 9);
  EXPECT_EQ(n_chars, 512);
}

TEST(CameraBobbing, PackingRoundTripGivesEqualFields) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input sender;
  sender.version = 2;
  std::istringstream in(std::string(camera_with_mattes) + bobbing_section);
  ASSERT_EQ(sender.read_stream(in), 1);
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  EXPECT_DOUBLE_EQ(p.doubles[6], 0.75);
  EXPECT_DOUBLE_EQ(p.doubles[7], 2.5);
  EXPECT_DOUBLE_EQ(p.doubles[8], 3.25);
  TCBobbing_camera_input receiver;
  ASSERT_EQ(receive(receiver, p), 1);
  expect_same_packed_camera(sender, receiver);
  EXPECT_EQ(receiver.decouple_height, 0.75);
  EXPECT_EQ(receiver.decouple_relax_time, 2.5);
  EXPECT_EQ(receiver.base_size, 3.25);
}

TEST(CameraBobbing, WrongSizesNameWhatWasExpectedAndWhatCame) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input sender;
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  TCBobbing_camera_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, 80, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, 48, p.chars, p.char_bytes), 0);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, 256), 0);
  EXPECT_EQ(out.text(),
            "packing integer array of the wrong size \n"
            "expected 84\n"
            "got 80\n"
            "packing double array of the wrong size \n"
            "expected 72\n"
            "got 48\n"
            "packing char array of the wrong size \n"
            "expected 512\n"
            "got 256\n");
}

TEST(CameraBobbing, ACameraPackIsNotABobbingCamera) {
  Stream_capture quiet(std::cout);
  TCCamera_input sender;
  Packed p;
  ASSERT_EQ(pack_into(sender, p), 1);
  TCBobbing_camera_input receiver;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  Stream_capture out(std::cout);
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(),
            "packing double array of the wrong size \n"
            "expected 72\n"
            "got 48\n");
}

TEST(CameraBobbing, CountsTooLargeForAnyArrayAreNotPacked) {
  Stream_capture quiet(std::cout);
  TCBobbing_camera_input camera;
  const int flags[1] = {1};
  ASSERT_EQ(camera.set_slices_to_image(1, flags), 1);
  camera.image_slices = INT_MAX;
  Packed p;
  Stream_capture out(std::cout);
  EXPECT_EQ(pack_into(camera, p), 0);
  EXPECT_EQ(out.text(), "unable to allocate bobbing camera integer packing array \n");
  camera.image_slices = 1;
}

}  // namespace
