#include "Poly_mesh.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

// Expected values are worked by hand from the format: ids count from 1, the
// writer's numbers are printf's %g.

namespace {

const char* const triangle_text =
    "POINTS\n"
    "1: 0 0 0 c(1, 0, 0) uv(0, 0)\n"
    "2: 1 0 0 n(0, 0, 1)\n"
    "3: 0 1 0\n"
    "POLYS\n"
    "1: 1 2 3 <\n"
    "END\n";

class Poly_files : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/poly_mesh_testXXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    dir_ = pattern;
  }
  void TearDown() override {
    for (const std::string& path : made_) std::remove(path.c_str());
    rmdir(dir_.c_str());
  }
  std::string write(const char* name, const std::string& text) {
    const std::string path = dir_ + "/" + name;
    std::FILE* f = std::fopen(path.c_str(), "wb");
    EXPECT_NE(f, nullptr);
    if (f == nullptr) return path;
    std::fwrite(text.data(), 1, text.size(), f);
    std::fclose(f);
    made_.push_back(path);
    return path;
  }
  // Reads text as a mesh file; errors receives what went to standard error.
  Poly_mesh* read_text(const std::string& text, std::string& errors) {
    const std::string path = write("mesh.poly", text);
    testing::internal::CaptureStderr();
    std::FILE* f = poly_open_read(path.c_str());
    Poly_mesh* mesh = f ? poly_read(f) : nullptr;
    if (f) std::fclose(f);
    errors = testing::internal::GetCapturedStderr();
    return mesh;
  }
  std::string written(const Poly_mesh* mesh) {
    const std::string path = dir_ + "/written.poly";
    made_.push_back(path);
    std::FILE* f = std::fopen(path.c_str(), "w");
    EXPECT_NE(f, nullptr);
    EXPECT_EQ(poly_write(f, mesh), 1);
    std::fclose(f);
    f = std::fopen(path.c_str(), "rb");
    std::string text;
    char buffer[4096];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, f)) > 0) text.append(buffer, got);
    std::fclose(f);
    return text;
  }
  std::string dir_;
  std::vector<std::string> made_;
};

std::string failure(int points, int polys) {
  return "Error reading in .poly file: \n      read in " + std::to_string(points) +
         " points\n      read in " + std::to_string(polys) + " polys\n";
}

const Poly_point* point_at(const Poly_mesh* mesh, int index) {
  const Poly_point* p = mesh->points;
  for (int i = 0; i < index; i++) p = p->next;
  return p;
}

const Poly_polygon* polygon_at(const Poly_mesh* mesh, int index) {
  const Poly_polygon* p = mesh->polys;
  for (int i = 0; i < index; i++) p = p->next;
  return p;
}

}  // namespace

TEST(PolyTypeOfName, ExtensionAfterTheLastDotGivesTheCode) {
  EXPECT_EQ(poly_type_of_name("hull.bpoly"), 1);
  EXPECT_EQ(poly_type_of_name("hull.bramp"), 1);
  EXPECT_EQ(poly_type_of_name("hull.poly"), 0);
  EXPECT_EQ(poly_type_of_name("hull.ramp"), 0);
  EXPECT_EQ(poly_type_of_name("hull.d"), 2);
  EXPECT_EQ(poly_type_of_name("a.poly.d"), 2);
  EXPECT_EQ(poly_type_of_name("hull.poly.obj"), -1);
  EXPECT_EQ(poly_type_of_name("hull"), -1);
  EXPECT_EQ(poly_type_of_name("hull."), -1);
  EXPECT_EQ(poly_type_of_name("hull.POLY"), -1);
  EXPECT_EQ(poly_type_of_name(nullptr), -1);
}

TEST_F(Poly_files, OpeningAMissingFileNamesIt) {
  testing::internal::CaptureStderr();
  const std::string path = dir_ + "/absent.poly";
  EXPECT_EQ(poly_open_read(path.c_str()), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Error opening prisms poly file: " + path + "\n");
}

TEST_F(Poly_files, StdinNamesStandardInput) {
  EXPECT_EQ(poly_open_read("stdin"), stdin);
}

TEST_F(Poly_files, ReadsPointsWithAttributesAndAClosedPolygon) {
  std::string errors;
  Poly_mesh* mesh = read_text(triangle_text, errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(errors, "");
  ASSERT_EQ(mesh->n_points, 3);
  ASSERT_EQ(mesh->n_polys, 1);
  const Poly_point* a = point_at(mesh, 0);
  const Poly_point* b = point_at(mesh, 1);
  const Poly_point* c = point_at(mesh, 2);
  EXPECT_EQ(a->id, 1);
  EXPECT_EQ(b->id, 2);
  EXPECT_EQ(c->id, 3);
  EXPECT_EQ(a->has_colour, 1);
  EXPECT_DOUBLE_EQ(a->r, 1.0);
  EXPECT_DOUBLE_EQ(a->g, 0.0);
  EXPECT_DOUBLE_EQ(a->a, 1.0);
  EXPECT_EQ(a->has_uv, 1);
  EXPECT_EQ(a->has_normal, 0);
  EXPECT_DOUBLE_EQ(b->x, 1.0);
  EXPECT_EQ(b->has_normal, 1);
  EXPECT_DOUBLE_EQ(b->nz, 1.0);
  EXPECT_EQ(b->has_colour, 0);
  // No colour given: black, alpha and weight 1.
  EXPECT_DOUBLE_EQ(c->r, 0.0);
  EXPECT_DOUBLE_EQ(c->a, 1.0);
  EXPECT_DOUBLE_EQ(c->weight, 1.0);
  EXPECT_DOUBLE_EQ(c->y, 1.0);
  // The rings close: the head's previous is the last.
  EXPECT_EQ(mesh->points->previous, c);
  EXPECT_EQ(c->next, mesh->points);
  const Poly_polygon* p = mesh->polys;
  EXPECT_EQ(p->id, 1);
  ASSERT_EQ(p->n_ids, 3);
  EXPECT_EQ(p->ids[0], 1);
  EXPECT_EQ(p->ids[1], 2);
  EXPECT_EQ(p->ids[2], 3);
  EXPECT_EQ(p->closed, 1);
  poly_free(mesh);
}

TEST_F(Poly_files, AttributesAreReadInAnyOrder) {
  std::string errors;
  Poly_mesh* mesh = read_text(
      "POINTS\n1: 1.5 -2 3e2 n(0,1,0) uv(0.25, 0.75) c(0.1, 0.2, 0.3, 0.5)\nPOLYS\n", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  const Poly_point* a = mesh->points;
  EXPECT_DOUBLE_EQ(a->x, 1.5);
  EXPECT_DOUBLE_EQ(a->y, -2.0);
  EXPECT_DOUBLE_EQ(a->z, 300.0);
  EXPECT_DOUBLE_EQ(a->ny, 1.0);
  EXPECT_DOUBLE_EQ(a->u, 0.25);
  EXPECT_DOUBLE_EQ(a->v, 0.75);
  EXPECT_DOUBLE_EQ(a->b, 0.3);
  EXPECT_DOUBLE_EQ(a->a, 0.5);
  poly_free(mesh);
}

TEST_F(Poly_files, ColourWithoutAlphaKeepsAlphaOneAndIsWrittenWithoutIt) {
  std::string errors;
  Poly_mesh* mesh = read_text("POINTS\n1: 0 0 0 c(1, 0, 0)\nPOLYS\n", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_DOUBLE_EQ(mesh->points->a, 1.0);
  EXPECT_EQ(written(mesh), "POINTS\n1: 0 0 0 c(1, 0, 0)\nPOLYS\n");
  poly_free(mesh);
}

TEST_F(Poly_files, WriterUsesItsExactFormats) {
  std::string errors;
  Poly_mesh* mesh = read_text(
      "POINTS\n1: 0.5 1e-07 123456789 n(0, 0, -1) c(0.25, 0.5, 0.75, 0.125) uv(2, 3)\n"
      "2: 1 2 3\n3: 4 5 6\nPOLYS\n1: 1 2 3\n2: 3 2 1 <\n",
      errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(written(mesh),
            "POINTS\n"
            "1: 0.5 1e-07 1.23457e+08 c(0.25, 0.5, 0.75, 0.125) uv(2, 3) n(0, 0, -1)\n"
            "2: 1 2 3\n"
            "3: 4 5 6\n"
            "POLYS\n"
            "1: 1 2 3\n"
            "2: 3 2 1 <\n");
  poly_free(mesh);
}

TEST_F(Poly_files, EmptyMeshIsWrittenAsTheTwoSectionWords) {
  Poly_mesh empty = {0, 0, nullptr, nullptr};
  EXPECT_EQ(written(&empty), "POINTS\nPOLYS\n");
  std::string errors;
  Poly_mesh* mesh = read_text("POINTS\nPOLYS\n", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(mesh->n_points, 0);
  EXPECT_EQ(mesh->n_polys, 0);
  EXPECT_EQ(mesh->points, nullptr);
  EXPECT_EQ(mesh->polys, nullptr);
  poly_free(mesh);
}

TEST_F(Poly_files, WritingThenReadingGivesAnEqualMesh) {
  std::string errors;
  Poly_mesh* first = read_text(
      "POINTS\n"
      "1: 0 0 0 c(1, 0.5, 0.25, 0.125) uv(0, 1) n(0, 0, 1)\n"
      "2: 2.5 0 -1 c(0, 1, 0)\n"
      "3: 0 3.75 0 uv(1, 0)\n"
      "4: -1 -1 -1 n(0.6, 0.8, 0)\n"
      "POLYS\n"
      "1: 1 2 3 <\n"
      "2: 4 3 2 1\n"
      "3: 2 4 3 <\n",
      errors);
  ASSERT_NE(first, nullptr) << errors;
  const std::string text = written(first);
  Poly_mesh* second = read_text(text, errors);
  ASSERT_NE(second, nullptr) << errors;
  ASSERT_EQ(second->n_points, first->n_points);
  ASSERT_EQ(second->n_polys, first->n_polys);
  for (int i = 0; i < first->n_points; i++) {
    const Poly_point* a = point_at(first, i);
    const Poly_point* b = point_at(second, i);
    EXPECT_EQ(a->id, b->id);
    EXPECT_EQ(a->x, b->x);
    EXPECT_EQ(a->y, b->y);
    EXPECT_EQ(a->z, b->z);
    EXPECT_EQ(a->has_colour, b->has_colour);
    EXPECT_EQ(a->has_uv, b->has_uv);
    EXPECT_EQ(a->has_normal, b->has_normal);
    EXPECT_EQ(a->r, b->r);
    EXPECT_EQ(a->g, b->g);
    EXPECT_EQ(a->b, b->b);
    EXPECT_EQ(a->a, b->a);
    EXPECT_EQ(a->u, b->u);
    EXPECT_EQ(a->v, b->v);
    EXPECT_EQ(a->nx, b->nx);
    EXPECT_EQ(a->ny, b->ny);
    EXPECT_EQ(a->nz, b->nz);
  }
  for (int i = 0; i < first->n_polys; i++) {
    const Poly_polygon* a = polygon_at(first, i);
    const Poly_polygon* b = polygon_at(second, i);
    EXPECT_EQ(a->id, b->id);
    EXPECT_EQ(a->closed, b->closed);
    ASSERT_EQ(a->n_ids, b->n_ids);
    for (int k = 0; k < a->n_ids; k++) EXPECT_EQ(a->ids[k], b->ids[k]);
  }
  EXPECT_EQ(written(second), text);
  poly_free(first);
  poly_free(second);
}

TEST_F(Poly_files, FirstLineOtherThanPointsIsShown) {
  std::string errors;
  EXPECT_EQ(read_text("POLYS\n1: 1 2 3\n", errors), nullptr);
  EXPECT_EQ(errors, "ERROR in .poly file: first line != POINTS\n      First line is: POLYS\n");
  EXPECT_EQ(read_text("", errors), nullptr);
  EXPECT_EQ(errors, "ERROR in .poly file: first line != POINTS\n      First line is: \n");
}

TEST_F(Poly_files, SecondPointWithIdThreeFailsAtThatLine) {
  std::string errors;
  EXPECT_EQ(read_text("POINTS\n1: 0 0 0\n3: 1 0 0\n4: 0 1 0\nPOLYS\n", errors), nullptr);
  EXPECT_EQ(errors, failure(1, 0));
}

TEST_F(Poly_files, PolygonIdsMustCountFromOneWithoutGaps) {
  std::string errors;
  EXPECT_EQ(read_text("POINTS\n1: 0 0 0\n2: 1 0 0\n3: 0 1 0\nPOLYS\n1: 1 2 3\n3: 3 2 1\n", errors),
            nullptr);
  EXPECT_EQ(errors, failure(3, 1));
  EXPECT_EQ(read_text("POINTS\n1: 0 0 0\n2: 1 0 0\n3: 0 1 0\nPOLYS\n0: 1 2 3\n", errors), nullptr);
  EXPECT_EQ(errors, failure(3, 0));
}

TEST_F(Poly_files, PointIdZeroOrAboveThePointCountInAPolygonFails) {
  std::string errors;
  const std::string points = "POINTS\n1: 0 0 0\n2: 1 0 0\n3: 0 1 0\nPOLYS\n1: 1 2 3\n";
  EXPECT_EQ(read_text(points + "2: 0 1 2\n", errors), nullptr);
  EXPECT_EQ(errors, failure(3, 1));
  EXPECT_EQ(read_text(points + "2: 1 2 4\n", errors), nullptr);
  EXPECT_EQ(errors, failure(3, 1));
  EXPECT_EQ(read_text(points + "2: 1 -2 3\n", errors), nullptr);
  EXPECT_EQ(errors, failure(3, 1));
}

TEST_F(Poly_files, EndOfFileInThePolygonSectionCountsAsEnd) {
  std::string errors;
  Poly_mesh* mesh = read_text("POINTS\n1: 0 0 0\n2: 1 0 0\n3: 0 1 0\nPOLYS\n1: 1 2 3", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(mesh->n_polys, 1);
  EXPECT_EQ(mesh->polys->n_ids, 3);
  poly_free(mesh);
}

TEST_F(Poly_files, EndOfFileAmongThePointsFails) {
  std::string errors;
  EXPECT_EQ(read_text("POINTS\n1: 0 0 0\n2: 1 0 0\n", errors), nullptr);
  EXPECT_EQ(errors, failure(2, 0));
}

TEST_F(Poly_files, EndStopsTheReadAndWhatFollowsIsNotRead) {
  std::string errors;
  Poly_mesh* mesh = read_text(std::string(triangle_text) + "garbage\n2: 9 9 9\n", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(mesh->n_polys, 1);
  poly_free(mesh);
  // END among the points ends a mesh that has no polygons.
  mesh = read_text("POINTS\n1: 0 0 0\nEND\n", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(mesh->n_points, 1);
  EXPECT_EQ(mesh->n_polys, 0);
  poly_free(mesh);
}

TEST_F(Poly_files, ClosedMarkerMaySitAnywhereAmongTheIds) {
  std::string errors;
  Poly_mesh* mesh =
      read_text("POINTS\n1: 0 0 0\n2: 1 0 0\n3: 0 1 0\nPOLYS\n1: 1 < 2,3\n2: 3 2 1\n", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(mesh->polys->closed, 1);
  EXPECT_EQ(mesh->polys->n_ids, 3);
  EXPECT_EQ(mesh->polys->ids[2], 3);
  EXPECT_EQ(mesh->polys->next->closed, 0);
  poly_free(mesh);
}

TEST_F(Poly_files, BlankLinesAndCarriageReturnsAreSkipped) {
  std::string errors;
  Poly_mesh* mesh = read_text(
      "POINTS\r\n1: 0 0 0\r\n\r\n2: 1 0 0 c(1, 1, 1)\r\n3: 0 1 0\r\nPOLYS\r\n\n1: 1 2 3\r\n",
      errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(mesh->n_points, 3);
  EXPECT_EQ(mesh->n_polys, 1);
  poly_free(mesh);
}

TEST_F(Poly_files, MalformedPointLinesFailWithTheCountsSoFar) {
  const char* const bad[] = {
      "1: 0 0\n",            // two coordinates
      "1 0 0 0\n",           // no colon
      "1: 0 0 x\n",          // not a number
      "1: 0 0 0x\n",         // number glued to a word
      "1: 0 0 0 c(1, 0)\n",  // colour of two
      "1: 0 0 0 c(1, 0, 0, 1, 1)\n",
      "1: 0 0 0 n(1, 0)\n",  // normal of two
      "1: 0 0 0 n(1, 0, 0, 0)\n",
      "1: 0 0 0 uv(1)\n",  // one texture coordinate
      "1: 0 0 0 uv(1, 2, 3)\n",
      "1: 0 0 0 c(1, 0, 0\n",              // unclosed
      "1: 0 0 0 q(1, 0, 0)\n",             // unknown attribute
      "1: 0 0 0 c(1, 0, 0) c(0, 1, 0)\n",  // twice
      "1: 0 0 0 c(1, nan, 0)\n",
      "1: 0 0 inf\n",
      "99999999999999999999: 0 0 0\n",
      "-1: 0 0 0\n",
  };
  for (const char* line : bad) {
    std::string errors;
    EXPECT_EQ(read_text(std::string("POINTS\n") + line + "POLYS\n", errors), nullptr) << line;
    EXPECT_EQ(errors, failure(0, 0)) << line;
  }
}

TEST_F(Poly_files, MalformedPolygonLinesFail) {
  const char* const bad[] = {
      "1 2 3\n",     "1: 1 2 x\n", "1: 1 2 3x\n", "1: 1 2 <3\n", "1: 1 2 99999999999999999999\n",
      "1: 1 2 3)\n", "POINTS\n",   "POLYS\n"};
  for (const char* line : bad) {
    std::string errors;
    EXPECT_EQ(
        read_text(std::string("POINTS\n1: 0 0 0\n2: 1 0 0\n3: 0 1 0\nPOLYS\n") + line, errors),
        nullptr)
        << line;
    EXPECT_EQ(errors, failure(3, 0)) << line;
  }
}

TEST_F(Poly_files, LinesOfUpTo4096CharactersAreRead) {
  // "1: 0 0 0" padded with blanks to exactly 4096 characters.
  std::string line = "1: 0 0 0";
  line += std::string(4096 - line.size(), ' ');
  ASSERT_EQ(line.size(), 4096u);
  std::string errors;
  Poly_mesh* mesh = read_text("POINTS\n" + line + "\nPOLYS\n", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  poly_free(mesh);
  EXPECT_EQ(read_text("POINTS\n" + line + " \nPOLYS\n", errors), nullptr);
  EXPECT_EQ(errors, failure(0, 0));
}

TEST_F(Poly_files, APolygonAsLongAsALineAllowsIsRead) {
  // 2047 ids of "1 " after "1:" make a line of 2 + 2 * 2047 = 4096 characters.
  std::string line = "1:";
  for (int i = 0; i < 2047; i++) line += " 1";
  ASSERT_EQ(line.size(), 4096u);
  std::string errors;
  Poly_mesh* mesh = read_text("POINTS\n1: 0 0 0\nPOLYS\n" + line + "\n", errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(mesh->polys->n_ids, 2047);
  poly_free(mesh);
}

TEST_F(Poly_files, NulByteInALineFails) {
  std::string errors;
  const char raw[] = "POINTS\n1: 0 0 0\0 9\nPOLYS\n";
  EXPECT_EQ(read_text(std::string(raw, sizeof raw - 1), errors), nullptr);
  EXPECT_EQ(errors, failure(0, 0));
}

TEST_F(Poly_files, WriterReportsAFailedWrite) {
  std::FILE* full = std::fopen("/dev/full", "w");
  if (full == nullptr) GTEST_SKIP() << "no /dev/full";
  Poly_mesh empty = {0, 0, nullptr, nullptr};
  EXPECT_EQ(poly_write(full, &empty), 0);
  std::fclose(full);
  EXPECT_EQ(poly_write(nullptr, &empty), 0);
  EXPECT_EQ(poly_read(nullptr), nullptr);
  poly_free(nullptr);
}

TEST_F(Poly_files, EveryTruncationOfAFileReadsOrFailsWithAMessage) {
  const std::string text = triangle_text;
  for (size_t cut = 0; cut <= text.size(); cut++) {
    std::string errors;
    Poly_mesh* mesh = read_text(text.substr(0, cut), errors);
    if (mesh == nullptr) {
      EXPECT_NE(errors, "") << cut;
    } else {
      EXPECT_EQ(errors, "") << cut;
    }
    poly_free(mesh);
  }
  // Cut inside the last polygon line, the polygon keeps the ids it has.
  std::string errors;
  Poly_mesh* mesh = read_text(text.substr(0, text.find("3 <")), errors);
  ASSERT_NE(mesh, nullptr) << errors;
  EXPECT_EQ(mesh->polys->n_ids, 2);
  poly_free(mesh);
}

TEST_F(Poly_files, BinaryNoiseIsRefusedWithoutHarm) {
  unsigned state = 12345u;
  for (int trial = 0; trial < 200; trial++) {
    std::string noise = trial % 2 ? "POINTS\n" : "";
    const int length = 1 + trial * 37 % 3000;
    for (int i = 0; i < length; i++) {
      state = state * 1103515245u + 12345u;
      noise += static_cast<char>((state >> 16) & 0xff);
    }
    std::string errors;
    Poly_mesh* mesh = read_text(noise, errors);
    if (mesh == nullptr) {
      EXPECT_NE(errors, "");
    }
    poly_free(mesh);
  }
}
