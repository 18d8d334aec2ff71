#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "../driver/object_list_test_objects.h"
#include "TCCamera.h"
#include "TCCamera_input.h"
#include "TCImage_file.h"
#include "TCObject_kinds.h"
#include "TCObject_list.h"
#include "TCSettings.h"
#include "TCSgi_image.h"
#include "image_test_files.h"
#include "stream_capture.h"

// Renders through the camera into real files, read back through the image
// file dispatch. Expected values are worked out by hand beside each test;
// camera_reference.py holds the few that need a calculator.

namespace {

// An unrotated camera at the origin over the whole picture, one slice, hdf.
// With fov 90 on an axis of n pixels, the plane runs from -1 to 1 (to the
// rounding of tan(pi / 4) with the engine's pi) in steps of 2 / n.
void describe(TCCamera_input& in, int n_azimuth, int n_elevation, int n_bands) {
  in.n_pixel_azimuth = n_azimuth;
  in.n_pixel_elevation = n_elevation;
  in.fov_azimuth = 90.0;
  in.fov_elevation = 90.0;
  in.first_azimuth = 0;
  in.last_azimuth = n_azimuth - 1;
  in.first_elevation = 0;
  in.last_elevation = n_elevation - 1;
  in.bands = TCSpectrum(n_bands);
  std::strcpy(in.object_file, "cam.dat");
}

void set_mattes(TCCamera_input& in, const char* text) {
  std::istringstream section(text);
  ASSERT_EQ(in.matte.read(section), 1);
}

bool exists(const std::string& name) {
  std::ifstream in(name.c_str(), std::ios::binary);
  return in.good();
}

// Plane `plane` of an hdf file of rows by cols; -999 everywhere if it cannot
// be read.
std::vector<float> read_hdf(const std::string& name, int plane, int rows, int cols) {
  std::vector<float> data(static_cast<size_t>(rows) * cols, -999.0f);
  const int dims[2] = {rows, cols};
  Stream_capture quiet(std::cout);
  EXPECT_EQ(read_plane(3000, name.c_str(), plane, data.data(), dims, 0, 0.0, 1.0), 1)
      << name << " plane " << plane;
  return data;
}

int hdf_has_plane(const std::string& name, int plane, int rows, int cols) {
  std::vector<float> data(static_cast<size_t>(rows) * cols);
  const int dims[2] = {rows, cols};
  Stream_capture quiet(std::cout);
  return read_plane(3000, name.c_str(), plane, data.data(), dims, 0, 0.0, 1.0);
}

void expect_plane(const std::vector<float>& got, const std::vector<float>& expected) {
  ASSERT_EQ(got.size(), expected.size());
  for (size_t k = 0; k < got.size(); k++) EXPECT_FLOAT_EQ(got[k], expected[k]) << "pixel " << k;
}

class CameraRender : public ::testing::Test {
 protected:
  CameraRender() : saved_verbose_(verbose), quiet_(std::cout) { verbose = 0; }
  ~CameraRender() override { verbose = saved_verbose_; }

  // A slab painting value (band b: value + 10 b) at depth, over the pixels
  // whose centre azimuth lies in [first_a, last_a).
  Test_slab* add_slab(const char* name, int type, double value, double depth, double first_a,
                      double last_a) {
    Test_slab* slab = new Test_slab(type, 1.0, value, depth);
    slab->set_name(name);
    slab->first_azimuth_painted = first_a;
    slab->last_azimuth_painted = last_a;
    EXPECT_EQ(list.add_runtime_object(slab), 1);
    return slab;
  }

  std::string file(const char* name) const { return folder.file(name); }

  int saved_verbose_;
  Stream_capture quiet_;
  Temp_folder folder;
  TCObject_list list;
};

// ---- Pictures of an empty scene ----

TEST_F(CameraRender, EmptySceneOneBandIsAllZero) {
  TCCamera_input in;
  describe(in, 4, 3, 1);
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  const std::string name = file("pic0001.img");
  expect_plane(read_hdf(name, 0, 3, 4), std::vector<float>(12, 0.0f));
  EXPECT_EQ(hdf_has_plane(name, 1, 3, 4), 0);
}

TEST_F(CameraRender, EmptySceneThreeBandsHasThreeZeroPlanes) {
  TCCamera_input in;
  describe(in, 4, 3, 3);
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  const std::string name = file("pic0001.img");
  for (int p = 0; p < 3; p++) expect_plane(read_hdf(name, p, 3, 4), std::vector<float>(12, 0.0f));
  EXPECT_EQ(hdf_has_plane(name, 3, 3, 4), 0);
  // Each plane is a data set of its own size.
  EXPECT_EQ(hdf_has_plane(name, 0, 4, 3), 0);
}

TEST_F(CameraRender, EmptySceneRgbFileHasHeaderAndThreeZeroPlanes) {
  TCCamera_input in;
  describe(in, 4, 3, 3);
  in.image_format = 3002;
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".rgb");
  const std::string name = file("pic0001.rgb");
  const std::vector<unsigned char> bytes = file_bytes(name);
  ASSERT_EQ(bytes.size(), 512u + 3u * 12u);
  int dims[2] = {0, 0};
  int channels = 0;
  ASSERT_EQ(rgb_read_dims(name.c_str(), dims), 1);
  ASSERT_EQ(rgb_read_channels(name.c_str(), channels), 1);
  EXPECT_EQ(dims[0], 3);
  EXPECT_EQ(dims[1], 4);
  EXPECT_EQ(channels, 3);
  for (size_t k = 512; k < bytes.size(); k++) EXPECT_EQ(bytes[k], 0) << k;
}

TEST_F(CameraRender, LogRescalingGivesMinusTwentyOnZeros) {
  TCCamera_input in;
  describe(in, 4, 3, 1);
  in.rescale_method = 1;
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 3, 4), std::vector<float>(12, -20.0f));
}

TEST_F(CameraRender, WithoutAListThePictureIsBlack) {
  TCCamera_input in;
  describe(in, 2, 2, 1);
  TCCamera camera(in, nullptr);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 2, 2), std::vector<float>(4, 0.0f));
}

// ---- Painted scenes ----

TEST_F(CameraRender, SlabPaintsItsColumnsInEveryBand) {
  // Four columns from -1 to 1: centres -0.75, -0.25, 0.25, 0.75.
  add_slab("hull", 4, 5.0, 10.0, -1e9, 0.0);
  TCCamera_input in;
  describe(in, 4, 2, 2);
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  const std::string name = file("pic0001.img");
  expect_plane(read_hdf(name, 0, 2, 4), {5, 5, 0, 0, 5, 5, 0, 0});
  expect_plane(read_hdf(name, 1, 2, 4), {15, 15, 0, 0, 15, 15, 0, 0});
}

TEST_F(CameraRender, SubPixelsAverageRadiance) {
  // Two pixels of 2 by 2 samples; sample columns centred at -0.75, -0.25,
  // 0.25, 0.75. Only the first sample column is painted: pixel 0 is
  // (4 + 4 + 0 + 0) / 4.
  add_slab("hull", 4, 4.0, 10.0, -1e9, -0.5);
  TCCamera_input in;
  describe(in, 2, 1, 1);
  in.n_sub_azimuth = 2;
  in.n_sub_elevation = 2;
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 1, 2), {2.0f, 0.0f});
}

TEST_F(CameraRender, HalfDarkPixelAveragesLogarithmsAndMinusTwenty) {
  // As above under "log": (2 log10(4) - 40) / 4 = -9.69896984
  // (camera_reference.py); the unpainted pixel is -20.
  add_slab("hull", 4, 4.0, 10.0, -1e9, -0.5);
  TCCamera_input in;
  describe(in, 2, 1, 1);
  in.n_sub_azimuth = 2;
  in.n_sub_elevation = 2;
  in.rescale_method = 1;
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 1, 2), {-9.69896984f, -20.0f});
}

TEST_F(CameraRender, GammaRescalingRaisesToThePower) {
  add_slab("hull", 4, 9.0, 10.0, -1e9, 0.0);
  TCCamera_input in;
  describe(in, 4, 1, 1);
  in.rescale_method = 2;
  in.gamma = 0.5f;
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 1, 4), {3.0f, 3.0f, 0.0f, 0.0f});
}

TEST_F(CameraRender, PictureFractionWritesTheWholePictureWithTheWindowFilled) {
  add_slab("hull", 4, 5.0, 10.0, -1e9, 1e9);
  TCCamera_input in;
  describe(in, 4, 3, 1);
  in.picture_fraction_flag = 1;
  in.first_azimuth = 1;
  in.last_azimuth = 2;
  in.first_elevation = 0;
  in.last_elevation = 1;
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 3, 4), {0, 5, 5, 0, 0, 5, 5, 0, 0, 0, 0, 0});
}

TEST_F(CameraRender, PictureFractionUnderLogClearsToMinusTwenty) {
  add_slab("hull", 4, 100.0, 10.0, -1e9, 1e9);
  TCCamera_input in;
  describe(in, 3, 2, 1);
  in.picture_fraction_flag = 1;
  in.first_azimuth = 2;
  in.last_azimuth = 2;
  in.first_elevation = 1;
  in.last_elevation = 1;
  in.rescale_method = 1;
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 2, 3), {-20, -20, -20, -20, -20, 2});
}

TEST_F(CameraRender, SurfaceLinePassPaintsOnlyPolygonsAndOceans) {
  add_slab("box", TC_KIND_SOLID_BOX, 9.0, 5.0, -1e9, 1e9);
  add_slab("mesh", TC_KIND_POLY, 6.0, 10.0, -1e9, 1e9);
  TCCamera_input in;
  describe(in, 2, 1, 1);
  TCCamera camera(in, &list);
  camera.image_surface_line(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic_surfaceline0001.img"), 0, 1, 2), {6.0f, 6.0f});
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 1, 2), {9.0f, 9.0f});
}

// ---- Mattes ----

TEST_F(CameraRender, SceneMattesCarryDistancesAndPositions) {
  // Depth 16 over the first two of four columns: the distance mattes take
  // the root, 4. Unpainted, both hold "nothing", 1e8 m.
  add_slab("hull", 4, 5.0, 16.0, -1e9, 0.0);
  TCCamera_input in;
  describe(in, 4, 1, 1);
  set_mattes(in,
             "use_mattes: 1 NObjects: 2"
             " Object: hull NMattes: 1 distance"
             " Object: scene NMattes: 1 scene_xyz");
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");

  // scene_xyz brings scene_distance with it.
  const std::string scene_distance = file("pic_scene_distance0001.img");
  expect_plane(read_hdf(scene_distance, 0, 1, 4), {4.0f, 4.0f, 1e8f, 1e8f});
  EXPECT_EQ(hdf_has_plane(scene_distance, 1, 1, 4), 0);
  expect_plane(read_hdf(file("pic_hull_distance0001.img"), 0, 1, 4), {4.0f, 4.0f, 1e8f, 1e8f});

  // Pixel 0 looks along (0, 0.75, 1) / 1.25 = (0, 0.6, 0.8): at 4 metres,
  // (0, 2.4, 3.2). Pixel 1 along (0, 0.25, 1) / sqrt(1.0625).
  const std::string xyz = file("pic_scene_xyz0001.img");
  const std::vector<float> x = read_hdf(xyz, 0, 1, 4);
  const std::vector<float> y = read_hdf(xyz, 1, 1, 4);
  const std::vector<float> z = read_hdf(xyz, 2, 1, 4);
  EXPECT_NEAR(x[0], 0.0f, 1e-6);
  EXPECT_NEAR(y[0], 2.4f, 1e-6);
  EXPECT_NEAR(z[0], 3.2f, 1e-6);
  EXPECT_NEAR(y[1], 4.0 * 0.25 / 1.0307764064044151, 1e-6);
  EXPECT_NEAR(z[1], 4.0 / 1.0307764064044151, 1e-6);
  EXPECT_EQ(hdf_has_plane(xyz, 3, 1, 4), 0);
}

TEST_F(CameraRender, FloatMattesOfAnRgbCameraAreHdfFilesNamedImg) {
  add_slab("hull", 4, 0.5, 9.0, -1e9, 0.0);
  TCCamera_input in;
  describe(in, 4, 1, 1);
  in.image_format = 3002;
  set_mattes(in,
             "use_mattes: 1 NObjects: 2"
             " Object: hull NMattes: 2 radiance distance"
             " Object: scene NMattes: 1 scene_distance");
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".rgb");
  expect_plane(read_hdf(file("pic_scene_distance0001.img"), 0, 1, 4), {3.0f, 3.0f, 1e8f, 1e8f});
  expect_plane(read_hdf(file("pic_hull_distance0001.img"), 0, 1, 4), {3.0f, 3.0f, 1e8f, 1e8f});
  EXPECT_FALSE(exists(file("pic_hull_distance0001.rgb")));
  // The radiance matte stays 8-bit: 0.5 over (0, 1) codes to 127.
  const std::vector<unsigned char> radiance = file_bytes(file("pic_hull_radiance0001.rgb"));
  ASSERT_EQ(radiance.size(), 512u + 4u);
  EXPECT_EQ(radiance[512], 127);
  EXPECT_EQ(radiance[513], 127);
  EXPECT_EQ(radiance[514], 0);
}

TEST_F(CameraRender, LogSparesAbsorptionAndTransmission) {
  // Radiance 100 over two of four columns: log gives 2 there and -20 on
  // zeros; absorption and transmission hold 0 and keep it.
  add_slab("hull", 4, 100.0, 9.0, -1e9, 0.0);
  TCCamera_input in;
  describe(in, 4, 1, 1);
  in.rescale_method = 1;
  set_mattes(in,
             "use_mattes: 1 NObjects: 1"
             " Object: hull NMattes: 3 radiance absorption transmission");
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 1, 4), {2, 2, -20, -20});
  expect_plane(read_hdf(file("pic_hull_radiance0001.img"), 0, 1, 4), {2, 2, -20, -20});
  expect_plane(read_hdf(file("pic_hull_absorption0001.img"), 0, 1, 4), {0, 0, 0, 0});
  expect_plane(read_hdf(file("pic_hull_transmission0001.img"), 0, 1, 4), {0, 0, 0, 0});
}

TEST_F(CameraRender, PerBandMatteHasOnePlanePerBandAndSingleMattesOne) {
  add_slab("hull", 4, 1.0, 9.0, -1e9, 1e9);
  TCCamera_input in;
  describe(in, 2, 1, 3);
  set_mattes(in, "use_mattes: 1 NObjects: 1 Object: hull NMattes: 2 radiance fraction_filled");
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  const std::string radiance = file("pic_hull_radiance0001.img");
  expect_plane(read_hdf(radiance, 2, 1, 2), {21.0f, 21.0f});
  EXPECT_EQ(hdf_has_plane(radiance, 3, 1, 2), 0);
  const std::string filled = file("pic_hull_fraction_filled0001.img");
  expect_plane(read_hdf(filled, 0, 1, 2), {1.0f, 1.0f});
  EXPECT_EQ(hdf_has_plane(filled, 1, 1, 2), 0);
}

TEST_F(CameraRender, NoRadianceMatteWritesOnlyMattes) {
  add_slab("hull", 4, 1.0, 4.0, -1e9, 1e9);
  TCCamera_input in;
  describe(in, 2, 1, 1);
  set_mattes(in,
             "use_mattes: 1 NObjects: 1 Object: scene NMattes: 2 scene_no_radiance"
             " scene_distance");
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  EXPECT_FALSE(exists(file("pic0001.img")));
  expect_plane(read_hdf(file("pic_scene_distance0001.img"), 0, 1, 2), {2.0f, 2.0f});
}

// ---- Slices ----

// Seven columns of three rows, 2 by 2 samples a pixel: one slab of 3 at 16
// metres left of the boundary after pixel 2, one of 7 at 25 metres right of
// the boundary after pixel 4. Columns are 2 / 7 wide from -1.
class CameraSliceFiles : public CameraRender {
 protected:
  CameraSliceFiles() {
    add_slab("port", 4, 3.0, 16.0, -1e9, -1.0 + 3 * 2.0 / 7);
    add_slab("starboard", 4, 7.0, 25.0, -1.0 + 5 * 2.0 / 7, 1e9);
  }

  void describe_sliced(TCCamera_input& in) {
    describe(in, 7, 3, 2);
    in.n_sub_azimuth = 2;
    in.n_sub_elevation = 2;
    set_mattes(in,
               "use_mattes: 1 NObjects: 2"
               " Object: port NMattes: 2 radiance distance"
               " Object: scene NMattes: 1 scene_xyz");
  }

  // The files one frame leaves for a prefix, picture first. Scene positions
  // are left out: they follow the rays of pixel centres, whose last bits
  // depend on the strip a pixel is imaged in.
  std::vector<std::string> outputs(const char* prefix, const char* picture_suffix) {
    const std::string p = file(prefix);
    return {p + "0001" + picture_suffix, p + "_port_radiance0001" + picture_suffix,
            p + "_port_distance0001.img", p + "_scene_distance0001.img"};
  }

  void expect_same_files(const char* a, const char* b, const char* picture_suffix) {
    const std::vector<std::string> first = outputs(a, picture_suffix);
    const std::vector<std::string> second = outputs(b, picture_suffix);
    for (size_t i = 0; i < first.size(); i++) {
      ASSERT_TRUE(exists(first[i])) << first[i];
      ASSERT_TRUE(exists(second[i])) << second[i];
      EXPECT_TRUE(file_bytes(first[i]) == file_bytes(second[i])) << second[i];
    }
    const std::string xyz_a = file(a) + "_scene_xyz0001.img";
    const std::string xyz_b = file(b) + "_scene_xyz0001.img";
    for (int p = 0; p < 3; p++) {
      const std::vector<float> got = read_hdf(xyz_b, p, 3, 7);
      const std::vector<float> expected = read_hdf(xyz_a, p, 3, 7);
      for (size_t k = 0; k < got.size(); k++) {
        EXPECT_NEAR(got[k], expected[k], 1e-5 * (1.0 + std::fabs(expected[k])))
            << "plane " << p << " pixel " << k;
      }
    }
    EXPECT_EQ(hdf_has_plane(xyz_b, 3, 3, 7), 0);
  }
};

TEST_F(CameraSliceFiles, RecombinedSlicesEqualAnUnslicedRenderByteForByte) {
  TCCamera_input whole_in;
  describe_sliced(whole_in);
  TCCamera whole(whole_in, &list);
  whole.image(file("whole").c_str(), "0001", ".img");

  TCCamera_input cut_in;
  describe_sliced(cut_in);
  cut_in.set_all_slices(3);
  TCCamera cut(cut_in, &list);
  Stream_capture out(std::cout);
  cut.image(file("cut").c_str(), "0001", ".img");
  EXPECT_EQ(out.text(), " imaging slice 1 of 3\n imaging slice 2 of 3\n imaging slice 3 of 3\n");

  expect_same_files("whole", "cut", ".img");
  // The picture is what the slabs paint: pixels 0-2 are 3, 3-4 empty, 5-6 7.
  expect_plane(read_hdf(file("cut0001.img"), 0, 3, 7),
               {3, 3, 3, 0, 0, 7, 7, 3, 3, 3, 0, 0, 7, 7, 3, 3, 3, 0, 0, 7, 7});
  // Slice files are gone once merged.
  for (int i = 0; i < 3; i++) {
    const std::string slice = file("cut") + "s" + std::to_string(i);
    EXPECT_FALSE(exists(slice + "0001.img")) << i;
    EXPECT_FALSE(exists(slice + "_port_radiance0001.img")) << i;
    EXPECT_FALSE(exists(slice + "_scene_xyz0001.img")) << i;
  }
}

TEST_F(CameraSliceFiles, RecombinedRgbSlicesEqualAnUnslicedRenderByteForByte) {
  TCCamera_input whole_in;
  describe_sliced(whole_in);
  whole_in.image_format = 3002;
  whole_in.max_value = 10.0f;
  TCCamera whole(whole_in, &list);
  whole.image(file("whole").c_str(), "0001", ".rgb");

  TCCamera_input cut_in;
  describe_sliced(cut_in);
  cut_in.image_format = 3002;
  cut_in.max_value = 10.0f;
  cut_in.set_all_slices(3);
  TCCamera cut(cut_in, &list);
  cut.image(file("cut").c_str(), "0001", ".rgb");
  expect_same_files("whole", "cut", ".rgb");
  // 3 over (0, 10) codes to 76, 7 to 178.
  const std::vector<unsigned char> bytes = file_bytes(file("cut0001.rgb"));
  ASSERT_EQ(bytes.size(), 512u + 2u * 21u);
  EXPECT_EQ(bytes[512], 76);
  EXPECT_EQ(bytes[512 + 3], 0);
  EXPECT_EQ(bytes[512 + 6], 178);
}

TEST_F(CameraSliceFiles, NamedSlicesStayOnDiskWithoutAMergedImage) {
  TCCamera_input in;
  describe_sliced(in);
  const int flags[3] = {0, 1, 0};
  ASSERT_EQ(in.set_slices_to_image(3, flags), 1);
  TCCamera camera(in, &list);
  Stream_capture out(std::cout);
  camera.image(file("pic").c_str(), "0001", ".img");
  EXPECT_EQ(out.text(), " imaging slice 2 of 3\n");

  EXPECT_FALSE(exists(file("pic0001.img")));
  EXPECT_FALSE(exists(file("pics00001.img")));
  EXPECT_FALSE(exists(file("pics20001.img")));
  // Strip 1 of 7 / 3 = 2 columns: pixels 2 and 3, the first of them painted.
  expect_plane(read_hdf(file("pics10001.img"), 0, 3, 2), {3, 0, 3, 0, 3, 0});
  EXPECT_TRUE(exists(file("pics1_port_radiance0001.img")));
  EXPECT_TRUE(exists(file("pics1_scene_xyz0001.img")));
}

TEST_F(CameraSliceFiles, SlicesFromSeparateRunsMergeAsOneRunWould) {
  TCCamera_input whole_in;
  describe_sliced(whole_in);
  TCCamera whole(whole_in, &list);
  whole.image(file("whole").c_str(), "0001", ".img");

  for (int i = 0; i < 3; i++) {
    TCCamera_input part_in;
    describe_sliced(part_in);
    int flags[3] = {0, 0, 0};
    flags[i] = 1;
    ASSERT_EQ(part_in.set_slices_to_image(3, flags), 1);
    TCCamera part(part_in, &list);
    part.image(file("cut").c_str(), "0001", ".img");
  }
  EXPECT_FALSE(exists(file("cut0001.img")));

  TCCamera_input merge_in;
  describe_sliced(merge_in);
  merge_in.set_all_slices(3);
  TCCamera merger(merge_in, &list);
  EXPECT_EQ(merger.recombine_slices(file("cut").c_str(), "0001", ".img"), 1);
  expect_same_files("whole", "cut", ".img");
  EXPECT_FALSE(exists(file("cuts10001.img")));
}

TEST_F(CameraSliceFiles, WindowNarrowerThanTheSliceCountStillMakesTheWholePicture) {
  TCCamera_input whole_in;
  describe(whole_in, 3, 1, 1);
  TCCamera whole(whole_in, &list);
  whole.image(file("whole").c_str(), "0001", ".img");

  TCCamera_input cut_in;
  describe(cut_in, 3, 1, 1);
  cut_in.set_all_slices(5);
  TCCamera cut(cut_in, &list);
  cut.image(file("cut").c_str(), "0001", ".img");
  EXPECT_TRUE(file_bytes(file("whole0001.img")) == file_bytes(file("cut0001.img")));
  EXPECT_FALSE(exists(file("cuts40001.img")));
}

TEST_F(CameraSliceFiles, SlicedWindowIsPlacedInTheWholePicture) {
  // Window of pixels 1..5 on row 1 of 3, cut in two strips of 2 and 3:
  // the merged picture is whole, zero outside the window.
  TCCamera_input in;
  describe(in, 7, 3, 1);
  in.picture_fraction_flag = 1;
  in.first_azimuth = 1;
  in.last_azimuth = 5;
  in.first_elevation = 1;
  in.last_elevation = 1;
  in.set_all_slices(2);
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 3, 7),
               {0, 0, 0, 0, 0, 0, 0, 0, 3, 3, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0});
}

// ---- Efficiency mattes ----

class CameraEfficiency : public CameraRender {
 protected:
  CameraEfficiency() { add_slab("hull", 4, 5.0, 10.0, -1e9, 1e9); }

  // An efficiency matte of rows by cols, 255 where marks says 1.
  std::string write_matte(int rows, int cols, const std::vector<unsigned char>& bytes) {
    const std::string name = file("eff.rgb");
    const int dims[2] = {rows, cols};
    EXPECT_EQ(rgb_open(name.c_str(), dims, 1), 1);
    EXPECT_EQ(rgb_write_mask(name.c_str(), 0, bytes.data(), dims), 1);
    return name;
  }

  void describe_masked(TCCamera_input& in, const std::string& matte) {
    describe(in, 4, 3, 1);
    in.efficiency_matte = 1;
    std::strcpy(in.efficiency_matte_file, matte.c_str());
  }
};

TEST_F(CameraEfficiency, MarkedPixelsStayBlack) {
  // 255 marks a pixel; 254 does not. Each pixel has 2 by 2 samples, all
  // masked together.
  const std::string matte = write_matte(3, 4, {0, 255, 0, 0, 0, 254, 0, 0, 0, 0, 0, 255});
  TCCamera_input in;
  describe_masked(in, matte);
  in.n_sub_azimuth = 2;
  in.n_sub_elevation = 2;
  Stream_capture out(std::cout);
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(camera.efficiency_matte, 1);
  expect_plane(read_hdf(file("pic0001.img"), 0, 3, 4), {5, 0, 5, 5, 5, 5, 5, 5, 5, 5, 5, 0});
}

TEST_F(CameraEfficiency, MatteFollowsTheSliceWindow) {
  const std::string matte = write_matte(3, 4, {255, 0, 0, 255, 0, 0, 0, 0, 0, 0, 255, 0});
  TCCamera_input in;
  describe_masked(in, matte);
  in.set_all_slices(2);
  TCCamera camera(in, &list);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 3, 4), {0, 5, 5, 0, 5, 5, 5, 5, 5, 5, 0, 5});
}

TEST_F(CameraEfficiency, WrongSizeIsReportedAndTheRenderIsUnmasked) {
  const std::string matte = write_matte(3, 5, std::vector<unsigned char>(15, 255));
  TCCamera_input in;
  describe_masked(in, matte);
  Stream_capture out(std::cout);
  TCCamera camera(in, &list);
  EXPECT_EQ(out.text(),
            "Efficiency matte dimensions: (5, 3) != camera dimensions: (4, 3)\n"
            "**NOT USING EFFICIENCY MATTES!**\n");
  EXPECT_EQ(camera.efficiency_matte, 0);
  camera.image(file("pic").c_str(), "0001", ".img");
  expect_plane(read_hdf(file("pic0001.img"), 0, 3, 4), std::vector<float>(12, 5.0f));
}

TEST_F(CameraEfficiency, MissingFileIsReportedAndTheRenderIsUnmasked) {
  const std::string matte = file("absent.rgb");
  TCCamera_input in;
  describe_masked(in, matte);
  Stream_capture out(std::cout);
  TCCamera camera(in, &list);
  EXPECT_EQ(out.text(), "unable to open " + matte + "\n" +
                            "Error reading efficiency matte dimensions from " + matte + "\n" +
                            "Error setting efficiency mattes from file: " + matte + "\n" +
                            "**NOT USING EFFICIENCY MATTES!**\n");
  EXPECT_EQ(camera.efficiency_matte, 0);
}

TEST_F(CameraEfficiency, FileWithoutChannelsIsReported) {
  // A header of 4 columns, 3 rows and no planes.
  std::vector<unsigned char> header(512, 0);
  header[0] = 0x01;
  header[1] = 0xDA;
  header[3] = 1;
  header[5] = 3;
  header[7] = 4;
  header[9] = 3;
  const std::string matte = file("empty.rgb");
  put_file_bytes(matte, header);
  TCCamera_input in;
  describe_masked(in, matte);
  Stream_capture out(std::cout);
  TCCamera camera(in, &list);
  EXPECT_EQ(out.text(), "No channels in efficiency matte file: " + matte + "\n" +
                            "**NOT USING EFFICIENCY MATTES!**\n");
  EXPECT_EQ(camera.efficiency_matte, 0);
}

TEST_F(CameraEfficiency, UnreadableAtRenderTimeIsDroppedForGood) {
  const std::string matte = write_matte(3, 4, std::vector<unsigned char>(12, 255));
  TCCamera_input in;
  describe_masked(in, matte);
  TCCamera camera(in, &list);
  ASSERT_EQ(camera.efficiency_matte, 1);
  ASSERT_EQ(std::remove(matte.c_str()), 0);
  {
    Stream_capture out(std::cout);
    camera.image(file("pic").c_str(), "0001", ".img");
    EXPECT_EQ(out.text(), "unable to open " + matte + "\n" +
                              "Error reading in efficiency matte file: " + matte + "\n" +
                              "NOT USING EFFICIENCY MATTES FOR THIS OR FUTURE FRAMES\n");
  }
  EXPECT_EQ(camera.efficiency_matte, 0);
  expect_plane(read_hdf(file("pic0001.img"), 0, 3, 4), std::vector<float>(12, 5.0f));
  Stream_capture again(std::cout);
  camera.image(file("pic").c_str(), "0002", ".img");
  EXPECT_EQ(again.text(), "");
}

// ---- Failures end the run ----

const char* const missing_folder = "/nonexistent_tidecast_camera_dir/pic";

TEST(CameraWriteFailure, UnwritableHdfPicture) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 2, 2, 1);
        TCCamera camera(in, &list);
        camera.image(missing_folder, "0001", ".img");
      },
      ::testing::ExitedWithCode(1),
      "unable to output data file /nonexistent_tidecast_camera_dir/pic0001.img\n");
}

TEST(CameraWriteFailure, UnwritableRgbPicture) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 2, 2, 1);
        in.image_format = 3002;
        TCCamera camera(in, &list);
        camera.image(missing_folder, "0001", ".rgb");
      },
      ::testing::ExitedWithCode(1),
      "unable to initialize data file /nonexistent_tidecast_camera_dir/pic0001.rgb\n");
}

TEST(CameraWriteFailure, TiffPictureIsRefused) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 2, 2, 1);
        in.image_format = 3003;
        TCCamera camera(in, &list);
        camera.image("pic", "0001", ".tiff");
      },
      ::testing::ExitedWithCode(1),
      "TIFF FILE FORMAT NOT YET IMPLEMENTED\nunable to initialize data file pic0001.tiff\n");
}

TEST(CameraWriteFailure, UnwritableMatte) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 2, 2, 1);
        set_mattes(in,
                   "use_mattes: 1 NObjects: 1 Object: scene NMattes: 2 scene_no_radiance"
                   " scene_distance");
        TCCamera camera(in, &list);
        camera.image(missing_folder, "0001", ".img");
      },
      ::testing::ExitedWithCode(1),
      "unable to output data file /nonexistent_tidecast_camera_dir/pic_scene_distance0001.img\n");
}

// Images both slices of a frame, keeping their files, loses one and merges.
void merge_with_a_slice_missing(const std::string& prefix) {
  std::cout.rdbuf(std::cerr.rdbuf());
  verbose = 0;
  TCObject_list list;
  TCCamera_input in;
  describe(in, 4, 2, 1);
  const int flags[2] = {1, 1};
  in.set_slices_to_image(2, flags);
  TCCamera camera(in, &list);
  camera.image(prefix.c_str(), "0001", ".img");
  std::remove((prefix + "s10001.img").c_str());
  camera.recombine_slices(prefix.c_str(), "0001", ".img");
}

TEST(CameraWriteFailure, MissingSliceFileStopsTheMerge) {
  Temp_folder folder;
  ASSERT_TRUE(folder.ok());
  const std::string prefix = folder.file("pic");
  EXPECT_EXIT(merge_with_a_slice_missing(prefix), ::testing::ExitedWithCode(1),
              "unable to read file .*pics10001.img\n");
}

TEST(CameraWriteFailure, UnwritableMergedMatte) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        verbose = 0;
        TCObject_list list;
        TCCamera_input in;
        describe(in, 4, 2, 1);
        in.image_format = 3002;
        set_mattes(in,
                   "use_mattes: 1 NObjects: 1 Object: scene NMattes: 2 scene_no_radiance"
                   " fraction_filled");
        in.set_all_slices(2);
        TCCamera camera(in, &list);
        camera.recombine_slices(missing_folder, "0001", ".rgb");
      },
      ::testing::ExitedWithCode(1),
      "unable to initialize matte file "
      "/nonexistent_tidecast_camera_dir/pic_fraction_filled0001.rgb\n");
}

}  // namespace
