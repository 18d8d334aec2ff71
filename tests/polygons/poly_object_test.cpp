// A polygon object in a scene: meshes loaded from ".poly" and OBJ files,
// the ray test that takes the first polygon of the file, the winding of OBJ
// faces, the level and band rules of drawing, and exact pixel coverage.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "../objects/texture_test_pictures.h"
#include "TCPoly_object.h"
#include "TCPoly_object_input.h"
#include "TCSpectrum.h"
#include "TCView.h"
#include "object_contour.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

void put(const std::string& path, const std::string& text) {
  std::ofstream(path) << text;
}

// A polygon object built from an objects file and the meshes beside it;
// what building printed is kept.
struct Poly_case {
  std::unique_ptr<TCPoly_object> object;
  std::string printed;
  std::string errors;
  void build(const Scratch_folder& folder, const std::string& objects_text) {
    put(folder.file("object.poly_objects"), objects_text);
    TCPoly_object_input input;
    Stream_capture out(std::cout), err(std::cerr);
    if (input.read_objects_file(folder.file("object.poly_objects").c_str()))
      object.reset(new TCPoly_object(input));
    printed = out.text();
    errors = err.text();
  }
};

std::string obj_objects(const std::string& obj_path, const std::string& changes = "0\n",
                        const std::string& flag = "all") {
  return "Tidecast_data_file poly 3 3\nscale_flag: 0\nimage_flag: " + flag +
         "\nimage_level: 0\nobject_file_type: obj\nobj_file: " + obj_path +
         "\nobj_scale: 1 1 1\nobj_offset: 0 0 0\nmodify_surfaces: " + changes +
         "number_ordered: 0\nend\n";
}

std::string poly_objects(const std::string& mesh_path, const std::string& colour = "1 0.5 0.25") {
  return "Tidecast_data_file poly 3 3\nscale_flag: 0\nimage_flag: all\nimage_level: 0\n"
         "object_file_type: poly\nnumber_of_surfaces: 1\nsurface_file_type: poly\n"
         "surface_file: " +
         mesh_path + "\nshading_model: color\nsurface_color: " + colour +
         "\nsurface_scale: 1 1 1\nend\n";
}

// A unit cube centred on (0, 0, 0), every face counter-clockwise seen from
// outside, as modelling tools write it.
const char* cube_obj =
    "# cube\no cube\n"
    "v -0.5 -0.5 -0.5\nv 0.5 -0.5 -0.5\nv 0.5 0.5 -0.5\nv -0.5 0.5 -0.5\n"
    "v -0.5 -0.5 0.5\nv 0.5 -0.5 0.5\nv 0.5 0.5 0.5\nv -0.5 0.5 0.5\n"
    "usemtl paint\n"
    "f 1 4 3 2\nf 5 6 7 8\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n";

TEST(PolyObject, ClosedObjMeshFacesRaysFromOutside) {
  Scratch_folder folder;
  put(folder.file("cube.obj"), cube_obj);
  Poly_case c;
  c.build(folder, obj_objects(folder.file("cube.obj")));
  ASSERT_TRUE(c.object) << c.printed << c.errors;
  TCVector hit;
  double d2 = 0.0;
  // From +x towards the cube: the +x face at x = 0.5, 4.5 m along.
  ASSERT_TRUE(c.object->intersect(TCRay(TCVector(5, 0.1, 0.2), TCVector(-1, 0, 0)), hit, d2));
  EXPECT_NEAR(hit.x, 0.5, 1e-12);
  EXPECT_NEAR(d2, 4.5 * 4.5, 1e-9);
  // From below.
  ASSERT_TRUE(c.object->intersect(TCRay(TCVector(0.1, 0.1, -3), TCVector(0, 0, 1)), hit, d2));
  EXPECT_NEAR(hit.z, -0.5, 1e-12);
  // From inside every face is a back face.
  EXPECT_FALSE(c.object->intersect(TCRay(TCVector(0, 0, 0), TCVector(0, 0, 1)), hit, d2));
  EXPECT_TRUE(c.object->point_inside(TCVector(0.1, 0.2, 0.3)));
  EXPECT_FALSE(c.object->point_inside(TCVector(0.1, 0.2, 1.3)));
}

TEST(PolyObject, PolyMeshKeepsTheArithmeticOfItsWinding) {
  // The same square in a .poly file, counter-clockwise seen from +z: its
  // normal points down, so only rays from below meet it.
  Scratch_folder folder;
  put(folder.file("square.poly"),
      "POINTS\n1: 0 0 0\n2: 1 0 0\n3: 1 1 0\n4: 0 1 0\nPOLYS\n1: 1 2 3 4\nEND\n");
  Poly_case c;
  c.build(folder, poly_objects(folder.file("square.poly")));
  ASSERT_TRUE(c.object) << c.printed << c.errors;
  TCVector hit;
  double d2 = 0.0;
  EXPECT_FALSE(c.object->intersect(TCRay(TCVector(0.5, 0.5, 2), TCVector(0, 0, -1)), hit, d2));
  EXPECT_TRUE(c.object->intersect(TCRay(TCVector(0.5, 0.5, -2), TCVector(0, 0, 1)), hit, d2));
  EXPECT_NE(c.printed.find("   Object size:        "), std::string::npos);
  EXPECT_NE(c.printed.find("   Center Offset:      0.5 0.5 0\n"), std::string::npos) << c.printed;
}

TEST(PolyObject, FirstPolygonOfTheFileWinsOverANearerOne) {
  // Two squares facing a ray from below: the far one (z = 5) first.
  Scratch_folder folder;
  put(folder.file("two.poly"),
      "POINTS\n1: 0 0 5\n2: 1 0 5\n3: 1 1 5\n4: 0 1 5\n"
      "5: 0 0 1\n6: 1 0 1\n7: 1 1 1\n8: 0 1 1\nPOLYS\n1: 1 2 3 4\n2: 5 6 7 8\nEND\n");
  Poly_case c;
  c.build(folder, poly_objects(folder.file("two.poly")));
  ASSERT_TRUE(c.object) << c.printed << c.errors;
  TCVector hit;
  double d2 = 0.0;
  ASSERT_TRUE(c.object->intersect(TCRay(TCVector(0.5, 0.5, 0), TCVector(0, 0, 1)), hit, d2));
  EXPECT_NEAR(hit.z, 5.0, 1e-12);
  EXPECT_NEAR(d2, 25.0, 1e-9);
}

TEST(PolyObject, CollinearPolygonIsSkippedAndTheObjectStillRuns) {
  Scratch_folder folder;
  put(folder.file("line.poly"),
      "POINTS\n1: 0 0 0\n2: 1 1 1\n3: 2 2 2\n4: 0 1 0\nPOLYS\n1: 1 2 3\n2: 1 4 2\nEND\n");
  Poly_case c;
  c.build(folder, poly_objects(folder.file("line.poly")));
  ASSERT_TRUE(c.object) << c.printed << c.errors;
  EXPECT_NE(c.errors.find("Error setting normal for polygon# 0: points might be on a line\n"),
            std::string::npos)
      << c.errors;
  EXPECT_EQ(c.object->surfaces[0].polygons[0].flags, TCPoly_Polygon::not_imaged);
  EXPECT_NE(c.object->surfaces[0].polygons[1].flags, TCPoly_Polygon::not_imaged);
}

// A camera 10 m off along -y looking at the origin (+y), 40 by 30 pixels.
void camera_on(TCView& view) {
  view.set_pose(TCVector(0.0, -10.0, 0.0), 1.57079632675, 1.57079632675, 0.0);
  view.set_grid(30, -0.15, 0.15, 40, -0.2, 0.2);
}

TEST(PolyObject, AFourthBandStopsDrawingButNotTheRun) {
  Scratch_folder folder;
  put(folder.file("cube.obj"), cube_obj);
  Poly_case c;
  c.build(folder, obj_objects(folder.file("cube.obj")));
  ASSERT_TRUE(c.object);
  TCView view;
  camera_on(view);
  TCSpectrum four(4);
  object_contour contour(30, 40, &four, 0.0f, 0, nullptr, nullptr);
  Stream_capture out(std::cout);
  c.object->image_contour(view, contour);
  EXPECT_EQ(out.text(),
            "Sorry, polygon objects are currently set only to image 3 bands\n"
            "Not imaging polygon\n");
  for (int row = 0; row < 30; row++)
    for (int col = 0; col < 40; col++) EXPECT_EQ(contour.layer_coverage[row][col], 0.0f);
}

double covered(const object_contour& contour, int rows, int cols) {
  double sum = 0.0;
  for (int row = 0; row < rows; row++)
    for (int col = 0; col < cols; col++) sum += contour.layer_coverage[row][col];
  return sum;
}

TEST(PolyObject, ReflectionsOnlyObjectShowsOnlyInViewsOffASurface) {
  Scratch_folder folder;
  put(folder.file("cube.obj"), cube_obj);
  for (const char* flag : {"all", "primary", "reflections"}) {
    Poly_case c;
    c.build(folder, obj_objects(folder.file("cube.obj"), "0\n", flag));
    ASSERT_TRUE(c.object) << flag;
    TCView view;
    camera_on(view);
    TCSpectrum three(3);
    object_contour camera_view(30, 40, &three, 0.0f, 0, nullptr, nullptr);
    object_contour reflected(30, 40, &three, 0.0f, 0, nullptr, nullptr);
    reflected.level = 1;
    c.object->image_contour(view, camera_view);
    c.object->image_contour(view, reflected);
    const std::string which = flag;
    EXPECT_EQ(covered(camera_view, 30, 40) > 0.0, which != "reflections") << flag;
    EXPECT_EQ(covered(reflected, 30, 40) > 0.0, which != "primary") << flag;
  }
}

TEST(PolyObject, ClosedCubeCoversItsOutlineOnceWithoutSeams) {
  Scratch_folder folder;
  put(folder.file("cube.obj"), cube_obj);
  Poly_case c;
  c.build(folder, obj_objects(folder.file("cube.obj")));
  ASSERT_TRUE(c.object);
  TCView view;
  // A little off every axis, so that three faces show and their edges run
  // through pixels.
  view.set_pose(TCVector(1.3, -3.1, 0.9), 1.83, 1.97, 0.1);
  view.set_grid(60, -0.3, 0.3, 80, -0.4, 0.4);
  TCSpectrum three(3);
  object_contour contour(60, 80, &three, 0.0f, 0, nullptr, nullptr);
  c.object->image_contour(view, contour);
  // A pixel whose four corners and centre rays all meet the cube lies
  // inside its outline: covered exactly once.
  int inside = 0;
  for (int row = 0; row < 60; row++) {
    for (int col = 0; col < 80; col++) {
      int hits = 0;
      for (int k = 0; k < 5; k++) {
        TCRay world;
        const double fr = k == 4 ? 0.5 : (k & 1), fc = k == 4 ? 0.5 : (k >> 1);
        view.fractional_ray(row, col, fr, fc, world);
        TCRay local;
        c.object->ray_to_object(world, local);
        TCVector hit;
        double d2 = 0.0;
        hits += c.object->intersect(local, hit, d2);
      }
      if (hits == 5) {
        inside++;
        EXPECT_NEAR(contour.layer_coverage[row][col], 1.0f, 1e-5) << row << " " << col;
      } else if (hits == 0) {
        EXPECT_LE(contour.layer_coverage[row][col], 1.0f);
      }
    }
  }
  EXPECT_GT(inside, 200);
}

TEST(PolyObject, ColouredSurfaceGivesItsColourAtItsDistance) {
  // A square facing the camera (clockwise seen from -y, so its normal
  // points to -y), 10 m off, filling the middle of the picture.
  Scratch_folder folder;
  put(folder.file("wall.poly"),
      "POINTS\n1: -3 0 -3\n2: -3 0 3\n3: 3 0 3\n4: 3 0 -3\nPOLYS\n1: 1 2 3 4\nEND\n");
  Poly_case c;
  c.build(folder, poly_objects(folder.file("wall.poly"), "0.8 0.4 0.2"));
  ASSERT_TRUE(c.object) << c.errors;
  TCView view;
  camera_on(view);
  TCSpectrum three(3);
  object_contour contour(30, 40, &three, 0.0f, 0, nullptr, nullptr);
  c.object->image_contour(view, contour);
  EXPECT_NEAR(contour.layer_coverage[15][20], 1.0f, 1e-6);
  EXPECT_NEAR(contour.layer_radiance[0][15][20], 0.8f, 1e-6);
  EXPECT_NEAR(contour.layer_radiance[1][15][20], 0.4f, 1e-6);
  EXPECT_NEAR(contour.layer_radiance[2][15][20], 0.2f, 1e-6);
  // Squared distance along the pixel's centre ray to the plane y = 0.
  TCRay ray;
  view.pixel_ray(15, 20, ray);
  const double t = 10.0 / ray[4];
  EXPECT_NEAR(contour.layer_distance[15][20], t * t, 1e-3);
}

TEST(PolyObject, SurfaceChangesPaintSwitchOffAndRescale) {
  Scratch_folder folder;
  std::string two = cube_obj;
  two += "usemtl glass\nf 1 2 3\n";
  put(folder.file("two.obj"), two);
  Poly_case c;
  c.build(folder, obj_objects(folder.file("two.obj"),
                              "1\nnumber_modified: 4\nsurface: 1 modify_kind: off\n"
                              "surface: 0 modify_kind: color 0.9 0.8 0.7\n"
                              "surface: 0 modify_kind: texture 0.5 2\n"
                              "surface: 7 modify_kind: off\n"));
  ASSERT_TRUE(c.object) << c.printed << c.errors;
  EXPECT_NE(c.printed.find("Surface[1]: NOT imaging.\n"), std::string::npos) << c.printed;
  EXPECT_NE(c.printed.find("Surface[0]: set to color (0.9, 0.8, 0.7)\n"), std::string::npos);
  EXPECT_NE(c.printed.find("Surface[0]: texture rescaled by (0.5, 2)\n"), std::string::npos);
  EXPECT_NE(c.errors.find("Error modifiying surface 7: out of range\n"), std::string::npos);
  EXPECT_EQ(c.object->surfaces[1].imaging, 0);
  EXPECT_EQ(c.object->surfaces[0].colour[0], 0.9);
  EXPECT_EQ(c.object->surfaces[0].u_scale, 0.5);
}

}  // namespace

namespace {

TEST(PolyObject, NearerSurfaceHidesAFartherOneInTheSamePixels) {
  // A red wall 10 m off, and a green square 5 m nearer in front of its
  // middle; both face the camera on -y.
  Scratch_folder folder;
  put(folder.file("far.poly"),
      "POINTS\n1: -3 0 -3\n2: -3 0 3\n3: 3 0 3\n4: 3 0 -3\nPOLYS\n1: 1 2 3 4\nEND\n");
  put(folder.file("near.poly"),
      "POINTS\n1: -0.5 -5 -0.5\n2: -0.5 -5 0.5\n3: 0.5 -5 0.5\n4: 0.5 -5 -0.5\nPOLYS\n"
      "1: 1 2 3 4\nEND\n");
  Poly_case c;
  c.build(folder,
          "Tidecast_data_file poly 3 3\nscale_flag: 0\nimage_flag: all\nimage_level: 0\n"
          "object_file_type: poly\nnumber_of_surfaces: 2\n"
          "surface_file_type: poly\nsurface_file: " +
              folder.file("far.poly") +
              "\nshading_model: color\nsurface_color: 1 0 0\nsurface_scale: 1 1 1\n"
              "surface_file_type: poly\nsurface_file: " +
              folder.file("near.poly") +
              "\nshading_model: color\nsurface_color: 0 1 0\nsurface_scale: 1 1 1\nend\n");
  ASSERT_TRUE(c.object) << c.errors;
  TCView view;
  camera_on(view);
  TCSpectrum three(3);
  object_contour contour(30, 40, &three, 0.0f, 0, nullptr, nullptr);
  c.object->image_contour(view, contour);
  // The middle pixel: the green square alone, at its distance.
  EXPECT_NEAR(contour.layer_coverage[15][20], 1.0f, 1e-6);
  EXPECT_NEAR(contour.layer_radiance[0][15][20], 0.0f, 1e-6);
  EXPECT_NEAR(contour.layer_radiance[1][15][20], 1.0f, 1e-6);
  // Off the square, the red wall.
  EXPECT_NEAR(contour.layer_radiance[0][15][2], 1.0f, 1e-6);
  EXPECT_NEAR(contour.layer_radiance[1][15][2], 0.0f, 1e-6);
}

}  // namespace

namespace {

TEST(PolyObject, TexturedSurfaceShowsItsPictureThroughTheFittedCoordinates) {
  // A wall facing the camera, 6 m square, its corners carrying (u, v) over
  // the unit square: u along +x, v along +z. Its 8 by 8 picture holds one
  // colour in each 4 by 4 quarter; picture row 0 is v = 0.
  Scratch_folder folder;
  const unsigned char quarter[4][3] = {{10, 20, 30}, {40, 50, 60}, {70, 80, 90}, {100, 110, 120}};
  std::vector<unsigned char> bytes;
  for (int b = 0; b < 3; b++)
    for (int y = 0; y < 8; y++)
      for (int x = 0; x < 8; x++) bytes.push_back(quarter[(x >= 4) + 2 * (y >= 4)][b]);
  write_sgi_bytes(folder.file("paint.rgb"), 8, 8, 3, bytes);
  put(folder.file("wall.poly"),
      "POINTS\n1: -3 0 -3 uv(0, 0)\n2: -3 0 3 uv(0, 1)\n3: 3 0 3 uv(1, 1)\n"
      "4: 3 0 -3 uv(1, 0)\nPOLYS\n1: 1 2 3 4\nEND\n");
  Poly_case c;
  c.build(folder,
          "Tidecast_data_file poly 3 3\nscale_flag: 0\nimage_flag: all\nimage_level: 0\n"
          "object_file_type: poly\nnumber_of_surfaces: 1\nsurface_file_type: poly\n"
          "surface_file: " +
              folder.file("wall.poly") + "\nshading_model: texture\ntexture_file: " +
              folder.file("paint.rgb") + "\nsurface_color: 1 1 1\nsurface_scale: 1 1 2\nend\n");
  ASSERT_TRUE(c.object) << c.errors;
  ASSERT_NE(c.object->surfaces[0].texture, nullptr) << c.errors;
  TCView view;
  camera_on(view);
  TCSpectrum three(3);
  object_contour contour(30, 40, &three, 0.0f, 0, nullptr, nullptr);
  c.object->image_contour(view, contour);
  // 10 m off, column 10 x + 20 and row 10 z + 15: pixel (0, 5) sees
  // x, z near -1.45 (u, v near 0.26), pixel (27, 35) near 1.25, 1.55.
  const int pixels[4][2] = {{0, 5}, {0, 35}, {27, 5}, {27, 35}};
  for (int q = 0; q < 4; q++) {
    const int row = pixels[q][0], col = pixels[q][1];
    EXPECT_NEAR(contour.layer_coverage[row][col], 1.0f, 1e-6) << q;
    EXPECT_NEAR(contour.layer_radiance[0][row][col], quarter[q][0] / 255.0, 1e-5) << q;
    EXPECT_NEAR(contour.layer_radiance[1][row][col], quarter[q][1] / 255.0, 1e-5) << q;
    EXPECT_NEAR(contour.layer_radiance[2][row][col], 2.0 * quarter[q][2] / 255.0, 1e-5) << q;
  }
}

}  // namespace

namespace {

TEST(PolyObject, FloorReachingBehindTheCameraIsCutAtTheNearLimit) {
  // A floor 1 m under the camera, from 50 m behind it to 50 m ahead,
  // facing up (clockwise seen from above); the camera looks 30 degrees
  // down, so every pixel of its lower half meets the floor.
  Scratch_folder folder;
  put(folder.file("floor.poly"),
      "POINTS\n1: -50 -50 -1\n2: -50 50 -1\n3: 50 50 -1\n4: 50 -50 -1\nPOLYS\n1: 1 2 3 4\nEND\n");
  Poly_case c;
  c.build(folder, poly_objects(folder.file("floor.poly")));
  ASSERT_TRUE(c.object) << c.errors;
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 0.0), 2.0943951023333334, 0.0, 0.0);
  view.set_grid(30, -0.3, 0.3, 40, -0.4, 0.4);
  TCSpectrum three(3);
  object_contour contour(30, 40, &three, 0.0f, 0, nullptr, nullptr);
  c.object->image_contour(view, contour);
  for (int row = 0; row < 15; row++) {
    for (int col = 0; col < 40; col++) {
      EXPECT_NEAR(contour.layer_coverage[row][col], 1.0f, 1e-5) << row << " " << col;
      TCRay ray;
      view.pixel_ray(row, col, ray);
      const double t = -1.0 / ray[5];
      EXPECT_NEAR(contour.layer_distance[row][col], t * t, 1e-3 * t * t) << row << " " << col;
    }
  }
}

TEST(PolyObject, SurfaceLinePassDrawsAsThePictureDoes) {
  Scratch_folder folder;
  put(folder.file("cube.obj"), cube_obj);
  Poly_case c;
  c.build(folder, obj_objects(folder.file("cube.obj")));
  ASSERT_TRUE(c.object);
  TCView view;
  camera_on(view);
  TCSpectrum three(3);
  object_contour picture(30, 40, &three, 0.0f, 0, nullptr, nullptr);
  object_contour line(30, 40, &three, 0.0f, 0, nullptr, nullptr);
  c.object->image_contour(view, picture);
  c.object->image_surface_line(view, line);
  EXPECT_GT(covered(picture, 30, 40), 10.0);
  for (int row = 0; row < 30; row++)
    for (int col = 0; col < 40; col++)
      EXPECT_EQ(line.layer_coverage[row][col], picture.layer_coverage[row][col]);
}

}  // namespace
