// The pixels a polygon object covers, against an independent script's
// projections: each polygon's coverage sums to its projected area, pixel by
// pixel too, and a closed cube or a cut quad leaves no seam.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "TCPoly_object.h"
#include "TCPoly_object_input.h"
#include "TCSpectrum.h"
#include "TCView.h"
#include "object_contour.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

struct Ref_camera {
  double x, y, z, chi, phi, theta, fov_a, fov_e;
  int cols, rows;
};

struct Ref_polygon {
  int camera = 0, index = 0;
  std::vector<double> corners;  // x y z per corner
  double area = 0.0;
  int facing = 0;
  std::map<std::pair<int, int>, double> pixels;
};

struct Ref_mesh {
  std::string name;
  int camera = 0;
  std::vector<std::vector<double>> triangles;  // nine numbers each
  std::map<std::pair<int, int>, double> cells;
};

struct Reference {
  std::map<int, Ref_camera> cameras;
  std::vector<Ref_polygon> polygons;
  std::vector<Ref_mesh> meshes;
};

const Reference& reference() {
  static Reference r;
  static int loaded = 0;
  if (loaded) return r;
  loaded = 1;
  std::ifstream in(TC_TEST_DATA_DIR "/polygons/projected_area_reference.txt");
  std::string line;
  Ref_polygon* polygon = nullptr;
  Ref_mesh* mesh = nullptr;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream words(line);
    std::string what;
    words >> what;
    if (what == "camera") {
      int id = 0;
      words >> id;
      Ref_camera& c = r.cameras[id];
      words >> c.x >> c.y >> c.z >> c.chi >> c.phi >> c.theta >> c.cols >> c.rows >> c.fov_a >>
          c.fov_e;
    } else if (what == "polygon") {
      r.polygons.emplace_back();
      polygon = &r.polygons.back();
      mesh = nullptr;
      int n = 0;
      words >> polygon->camera >> polygon->index >> n;
      polygon->corners.resize(3 * n);
      for (double& v : polygon->corners) words >> v;
    } else if (what == "area" && polygon != nullptr) {
      words >> polygon->area;
    } else if (what == "facing" && polygon != nullptr) {
      words >> polygon->facing;
    } else if (what == "pixel" && polygon != nullptr) {
      int row = 0, col = 0;
      double a = 0.0;
      words >> row >> col >> a;
      polygon->pixels[{row, col}] = a;
    } else if (what == "mesh") {
      r.meshes.emplace_back();
      mesh = &r.meshes.back();
      polygon = nullptr;
      int n = 0;
      words >> mesh->name >> mesh->camera >> n;
    } else if (what == "triangle" && mesh != nullptr) {
      int i = 0;
      words >> i;
      std::vector<double> t(9);
      for (double& v : t) words >> v;
      mesh->triangles.push_back(t);
    } else if (what == "cell" && mesh != nullptr) {
      int row = 0, col = 0;
      double a = 0.0;
      words >> row >> col >> a;
      mesh->cells[{row, col}] = a;
    }
  }
  return r;
}

void set_camera(const Ref_camera& c, TCView& view) {
  const double half_e = std::tan(c.fov_e * 0.008726646259722222);
  const double half_a = std::tan(c.fov_a * 0.008726646259722222);
  view.set_pose(TCVector(c.x, c.y, c.z), c.chi, c.phi, c.theta);
  view.set_grid(c.rows, -half_e, half_e, c.cols, -half_a, half_a);
}

// A polygon object of one coloured .poly surface holding the given
// polygons (corner lists of x y z), in the world frame.
std::unique_ptr<TCPoly_object> object_of(const Scratch_folder& folder,
                                         const std::vector<std::vector<double>>& polygons) {
  std::ostringstream mesh;
  mesh.precision(17);
  mesh << "POINTS\n";
  int id = 0;
  for (const auto& p : polygons)
    for (size_t k = 0; k < p.size(); k += 3)
      mesh << ++id << ": " << p[k] << " " << p[k + 1] << " " << p[k + 2] << "\n";
  mesh << "POLYS\n";
  id = 0;
  int polygon_id = 0;
  for (const auto& p : polygons) {
    mesh << ++polygon_id << ":";
    for (size_t k = 0; k < p.size(); k += 3) mesh << " " << ++id;
    mesh << "\n";
  }
  mesh << "END\n";
  std::ofstream(folder.file("mesh.poly")) << mesh.str();
  std::ofstream(folder.file("object.txt"))
      << "Tidecast_data_file poly 3 3\nscale_flag: 0\nimage_flag: all\nimage_level: 0\n"
         "object_file_type: poly\nnumber_of_surfaces: 1\nsurface_file_type: poly\n"
         "surface_file: "
      << folder.file("mesh.poly")
      << "\nshading_model: color\nsurface_color: 1 1 1\nsurface_scale: 1 1 1\nend\n";
  TCPoly_object_input input;
  Stream_capture out(std::cout), err(std::cerr);
  if (!input.read_objects_file(folder.file("object.txt").c_str())) return nullptr;
  return std::unique_ptr<TCPoly_object>(new TCPoly_object(input));
}

TEST(PolyCoverage, EachPolygonCoversItsProjectedAreaPixelByPixel) {
  const Reference& r = reference();
  ASSERT_EQ(r.polygons.size(), 90u);
  int facing = 0, detailed = 0;
  for (const Ref_polygon& p : r.polygons) {
    Scratch_folder folder;
    std::unique_ptr<TCPoly_object> object = object_of(folder, {p.corners});
    ASSERT_TRUE(object) << p.camera << " " << p.index;
    const Ref_camera& c = r.cameras.at(p.camera);
    TCView view;
    set_camera(c, view);
    TCSpectrum three(3);
    object_contour contour(c.rows, c.cols, &three, 0.0f, 0, nullptr, nullptr);
    object->image_contour(view, contour);
    double sum = 0.0;
    for (int row = 0; row < c.rows; row++) {
      for (int col = 0; col < c.cols; col++) {
        const double got = contour.layer_coverage[row][col];
        sum += got;
        if (!p.pixels.empty() && p.facing) {
          auto it = p.pixels.find({row, col});
          const double want = it == p.pixels.end() ? 0.0 : it->second;
          EXPECT_NEAR(got, want, 1e-5) << p.camera << " " << p.index << " " << row << " " << col;
        }
      }
    }
    if (p.facing) {
      facing++;
      detailed += !p.pixels.empty();
      EXPECT_NEAR(sum, p.area, 1e-4) << p.camera << " " << p.index;
    } else {
      // Seen from its back: no ray meets it, and no pixel shows it.
      EXPECT_EQ(sum, 0.0) << p.camera << " " << p.index;
    }
  }
  EXPECT_GT(facing, 20);
  EXPECT_GT(detailed, 3);
}

TEST(PolyCoverage, ClosedCubeAndCutQuadLeaveNoSeams) {
  const Reference& r = reference();
  ASSERT_EQ(r.meshes.size(), 2u);
  for (const Ref_mesh& m : r.meshes) {
    Scratch_folder folder;
    std::unique_ptr<TCPoly_object> object = object_of(folder, m.triangles);
    ASSERT_TRUE(object) << m.name;
    const Ref_camera& c = r.cameras.at(m.camera);
    TCView view;
    set_camera(c, view);
    TCSpectrum three(3);
    object_contour contour(c.rows, c.cols, &three, 0.0f, 0, nullptr, nullptr);
    object->image_contour(view, contour);
    int whole = 0;
    for (int row = 0; row < c.rows; row++) {
      for (int col = 0; col < c.cols; col++) {
        auto it = m.cells.find({row, col});
        const double want = it == m.cells.end() ? 0.0 : it->second;
        EXPECT_NEAR(contour.layer_coverage[row][col], want, 1e-4)
            << m.name << " " << row << " " << col;
        whole += want > 1.0 - 1e-9;
      }
    }
    EXPECT_GT(whole, 50) << m.name;
  }
}

}  // namespace
