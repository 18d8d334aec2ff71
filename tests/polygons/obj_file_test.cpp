#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "TCObj_file.h"
#include "stream_capture.h"

// Expected points, ids and messages are worked by hand from the files
// written here; the modelling tool's file and its counts come from
// make_tool_style_obj.py beside this file.

namespace {

class Obj_files : public ::testing::Test {
 protected:
  void SetUp() override {
    char pattern[] = "/tmp/obj_file_testXXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    dir_ = pattern;
  }
  void TearDown() override {
    for (const std::string& path : made_) std::remove(path.c_str());
    rmdir(dir_.c_str());
  }
  std::string path(const char* name) {
    const std::string p = dir_ + "/" + name;
    made_.push_back(p);
    return p;
  }
  std::string write(const char* name, const std::string& text) {
    const std::string p = path(name);
    std::FILE* f = std::fopen(p.c_str(), "wb");
    EXPECT_NE(f, nullptr);
    if (f == nullptr) return p;
    std::fwrite(text.data(), 1, text.size(), f);
    std::fclose(f);
    return p;
  }
  // Reads text as an OBJ file; printed receives standard output.
  int read_text(TCObj_file& obj, const std::string& text, std::string& printed) {
    file_ = write("mesh.obj", text);
    Stream_capture out(std::cout);
    const int result = obj.read(file_.c_str());
    printed = out.text();
    return result;
  }
  // What every read prints before the summary or the failure.
  std::string opening() const { return "Opening file: " + file_ + "\n"; }
  std::string dir_;
  std::string file_;
  std::vector<std::string> made_;
};

const char* const triangle_head =
    "v 0 0 0\n"
    "v 1 0 0\n"
    "v 0 1 0\n"
    "vt 0 0\n"
    "usemtl Red\n";

std::string repeated(const std::string& line, int n) {
  std::string text;
  for (int i = 0; i < n; i++) text += line;
  return text;
}

}  // namespace

TEST(ObjCommands, WordsGetTheirCodes) {
  EXPECT_EQ(TCObj_file::command_code("v"), 1);
  EXPECT_EQ(TCObj_file::command_code("vt"), 2);
  EXPECT_EQ(TCObj_file::command_code("vn"), 3);
  EXPECT_EQ(TCObj_file::command_code("vp"), 4);
  EXPECT_EQ(TCObj_file::command_code("l"), 9);
  EXPECT_EQ(TCObj_file::command_code("f"), 10);
  EXPECT_EQ(TCObj_file::command_code("curv"), 11);
  EXPECT_EQ(TCObj_file::command_code("end"), 19);
  EXPECT_EQ(TCObj_file::command_code("con"), 20);
  EXPECT_EQ(TCObj_file::command_code("g"), 21);
  EXPECT_EQ(TCObj_file::command_code("s"), 22);
  EXPECT_EQ(TCObj_file::command_code("mg"), 23);
  EXPECT_EQ(TCObj_file::command_code("o"), 24);
  EXPECT_EQ(TCObj_file::command_code("lod"), 28);
  EXPECT_EQ(TCObj_file::command_code("usemtl"), 29);
  EXPECT_EQ(TCObj_file::command_code("mtllib"), 30);
  EXPECT_EQ(TCObj_file::command_code("stech"), 34);
  EXPECT_EQ(TCObj_file::command_code("V"), 0);
  EXPECT_EQ(TCObj_file::command_code("usemtl2"), 0);
  EXPECT_STREQ(TCObj_file::command_word(27), "d_interp");
  EXPECT_STREQ(TCObj_file::command_word(31), "shadow_obj");
}

TEST_F(Obj_files, SecondTextureOfAVertexMakesAFourthPoint) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj,
                      "v 0 0 0\nv 1 0 0\nv 0 1 0\n"
                      "vt 0.1 0.1\nvt 0.2 0.2\nvt 0.3 0.3\nvt 0.4 0.4\nvt 0.5 0.5\n"
                      "usemtl Red\n"
                      "f 1/5 2/2 3/3\n"
                      "f 1/1 2/2 3/3\n",
                      printed),
            1)
      << printed;
  ASSERT_EQ(obj.n_points, 4);
  // Point 3 is vertex 1 again, with texture vertex 1.
  EXPECT_DOUBLE_EQ(obj.x[3], 0.0);
  EXPECT_DOUBLE_EQ(obj.y[3], 0.0);
  EXPECT_EQ(obj.has_texture[3], 1);
  EXPECT_DOUBLE_EQ(obj.u[3], 0.1);
  EXPECT_DOUBLE_EQ(obj.u[0], 0.5);
  EXPECT_DOUBLE_EQ(obj.v[1], 0.2);
  EXPECT_DOUBLE_EQ(obj.x[1], 1.0);
  EXPECT_DOUBLE_EQ(obj.y[2], 1.0);
  EXPECT_EQ(obj.has_normal[0], 0);
  ASSERT_EQ(obj.n_faces, 2);
  ASSERT_EQ(obj.n_corners, 6);
  const int expected[6] = {0, 1, 2, 3, 1, 2};
  for (int i = 0; i < 6; i++) EXPECT_EQ(obj.corners[i], expected[i]) << i;
  EXPECT_EQ(obj.face_first[1], 3);
  EXPECT_EQ(obj.face_size[1], 3);
  EXPECT_EQ(obj.face_surface[1], 0);
}

TEST_F(Obj_files, CornerFormsNameTextureAndNormalOrNot) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj,
                      "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\n"
                      "vt 0.5 0.25\nvn 0 0 1\nvn 0 1 0\n"
                      "usemtl m\n"
                      "f 1 2/1 3//1 4/1/2\n",
                      printed),
            1)
      << printed;
  ASSERT_EQ(obj.n_points, 4);
  EXPECT_EQ(obj.has_texture[0], 0);
  EXPECT_EQ(obj.has_normal[0], 0);
  EXPECT_EQ(obj.has_texture[1], 1);
  EXPECT_DOUBLE_EQ(obj.u[1], 0.5);
  EXPECT_DOUBLE_EQ(obj.v[1], 0.25);
  EXPECT_EQ(obj.has_normal[1], 0);
  EXPECT_EQ(obj.has_texture[2], 0);
  EXPECT_EQ(obj.has_normal[2], 1);
  EXPECT_DOUBLE_EQ(obj.nz[2], 1.0);
  EXPECT_EQ(obj.has_texture[3], 1);
  EXPECT_EQ(obj.has_normal[3], 1);
  EXPECT_DOUBLE_EQ(obj.ny[3], 1.0);
  EXPECT_DOUBLE_EQ(obj.x[3], 1.0);
  EXPECT_DOUBLE_EQ(obj.y[3], 1.0);
  ASSERT_EQ(obj.n_faces, 1);
  EXPECT_EQ(obj.face_size[0], 4);
}

TEST_F(Obj_files, SummaryNamesCountsIgnoredCommandsAndSurfaces) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj,
                      "# a comment\n"
                      "mtllib m.mtl\n"
                      "o Thing\n"
                      "v 0 0 0\nv 1 0 0\nv 0 1 0\n"
                      "vt 0 0\nvt 1 0\nvt 0 1\nvt 5 5\n"
                      "\n"
                      "usemtl Red\n"
                      "g group1\n"
                      "s 1\n"
                      "f 1/4 2/2 3/3\n"
                      "f 1/1 2/2 3/3\n"
                      "frobnicate 3\n",
                      printed),
            1);
  EXPECT_EQ(printed, opening() + "Read file: " + file_ +
                         "\n"
                         " OBJ file information:\n"
                         "         3 vertices.\n"
                         "         2 polygons.\n"
                         "         1 textured surfaces.\n"
                         "         OBJ group information not used (1 groups)\n"
                         "         OBJ smoothing groups not supported - 1 lines ignored\n"
                         "         OBJ o command not supported (1 lines)\n"
                         "         OBJ mtllib command not supported (1 lines)\n"
                         "         Surface[0]: 2 polygons texture: Red.rgb Vert: 1 2 3\n");
  EXPECT_EQ(obj.counts[1], 3);
  EXPECT_EQ(obj.counts[2], 4);
  EXPECT_EQ(obj.counts[10], 2);
  EXPECT_EQ(obj.counts[24], 1);
  EXPECT_EQ(obj.counts[TCObj_file::code_unknown], 1);
  EXPECT_EQ(obj.counts[TCObj_file::code_comment], 1);
  EXPECT_EQ(obj.counts[TCObj_file::code_blank_line], 1);
  EXPECT_STREQ(obj.texture_names[0], "Red.rgb");
}

TEST_F(Obj_files, WarningsForNoSurfacesNoTexturesAndNoVertices) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj, "# nothing here\n", printed), 1);
  EXPECT_EQ(printed, opening() + "Read file: " + file_ +
                         "\n"
                         " OBJ file information:\n"
                         "         0 vertices.\n"
                         "         0 polygons.\n"
                         "         0 textured surfaces.\n"
                         "         NO textures defined with usemtl\n"
                         "         NO VERTICE TEXTURES\n"
                         "         Your file has NO vertices!\n");
  EXPECT_EQ(obj.n_points, 0);
  EXPECT_EQ(obj.n_faces, 0);
  EXPECT_EQ(obj.n_surfaces, 0);
}

TEST_F(Obj_files, SurfacesListTheirFirstFacesVertices) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj,
                      "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nvt 0 0\n"
                      "usemtl a\nf 4 3 2 1\nf 1 2 3\nusemtl empty\nusemtl b\nf 2/1 3 4\n",
                      printed),
            1);
  EXPECT_NE(printed.find("         Surface[0]: 2 polygons texture: a.rgb Vert: 4 3 2\n"),
            std::string::npos)
      << printed;
  EXPECT_NE(printed.find("         Surface[1]: 0 polygons texture: empty.rgb Vert:\n"),
            std::string::npos)
      << printed;
  EXPECT_NE(printed.find("         Surface[2]: 1 polygons texture: b.rgb Vert: 2 3 4\n"),
            std::string::npos)
      << printed;
  EXPECT_EQ(obj.n_surfaces, 3);
  EXPECT_EQ(obj.face_surface[2], 2);
}

TEST_F(Obj_files, FaceBeforeAnyUsemtlEndsTheRead) {
  TCObj_file obj;
  std::string printed;
  EXPECT_EQ(read_text(obj, "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nusemtl late\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Opps! Defining a polygon face with NO texture.\nBye.\n");
  EXPECT_EQ(obj.n_points, 0);
}

TEST_F(Obj_files, FiftyUsemtlLinesReadAndTheFiftyFirstEndsTheRead) {
  std::string fifty;
  for (int i = 0; i < 50; i++) fifty += "usemtl m" + std::to_string(i) + "\n";
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj, "v 0 0 0\nv 1 0 0\nv 0 1 0\n" + fifty + "f 1 2 3\n", printed), 1)
      << printed;
  EXPECT_EQ(obj.n_surfaces, 50);
  EXPECT_STREQ(obj.texture_names[49], "m49.rgb");
  EXPECT_EQ(obj.face_surface[0], 49);
  EXPECT_EQ(read_text(obj, fifty + "usemtl m50\n", printed), 0);
  EXPECT_EQ(printed, opening() + "surface index is greater than expected!\nBye.\n");
  EXPECT_EQ(obj.n_surfaces, 0);
}

TEST_F(Obj_files, MaterialWordMustLeaveRoomForItsExtension) {
  TCObj_file obj;
  std::string printed;
  const std::string longest(251, 'm');
  ASSERT_EQ(read_text(obj, "usemtl " + longest + "\n", printed), 1) << printed;
  EXPECT_EQ(std::string(obj.texture_names[0]), longest + ".rgb");
  EXPECT_EQ(read_text(obj, "usemtl " + longest + "m\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Error processing OBJ line: usemtl " + longest + "m\n");
  EXPECT_EQ(read_text(obj, "usemtl\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Error processing OBJ line: usemtl\n");
}

TEST_F(Obj_files, NegativeIndicesAreRefusedByThePointTable) {
  TCObj_file obj;
  std::string printed;
  EXPECT_EQ(read_text(obj, std::string(triangle_head) + "f -3 -2 -1\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Reached end of subroutine\nOpps! Error setting polyList\n");
  EXPECT_EQ(read_text(obj, std::string(triangle_head) + "f 0 1 2\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Reached end of subroutine\nOpps! Error setting polyList\n");
}

TEST_F(Obj_files, CornersNamingWhatIsNotYetReadEndTheRead) {
  const char* const faces[] = {"f 1 2 4\n",    "f 1/2 2 3\n", "f 1//1 2 3\n",
                               "f 1/-1 2 3\n", "f 1/0 2 3\n", "f 1 2 99999999999\n"};
  for (const char* face : faces) {
    TCObj_file obj;
    std::string printed;
    EXPECT_EQ(read_text(obj, std::string(triangle_head) + face, printed), 0) << face;
    std::string line = face;
    line.pop_back();
    EXPECT_EQ(printed, opening() + "Error processing OBJ line: " + line + "\n") << face;
  }
}

TEST_F(Obj_files, MalformedLinesEndTheReadWithTheLine) {
  const char* const lines[] = {"v 1 2\n",   "v 1 2 x\n",   "v 1 2 3e\n",  "vt 1\n",
                               "vn 0 0\n",  "v nan 0 0\n", "v 0 inf 0\n", "f 1 2\n",
                               "f\n",       "f 1 2 3/\n",  "f 1 2 3//\n", "f 1 2 3/1/1/1\n",
                               "f 1 2 a\n", "f 1 2 +3\n",  "f 1 2 3/x\n", "f 1, 2, 3\n"};
  for (const char* text : lines) {
    TCObj_file obj;
    std::string printed;
    EXPECT_EQ(read_text(obj, std::string(triangle_head) + "vn 0 0 1\n" + text, printed), 0) << text;
    std::string line = text;
    line.pop_back();
    EXPECT_EQ(printed, opening() + "Error processing OBJ line: " + line + "\n") << text;
  }
}

TEST_F(Obj_files, ExtraValuesAfterACoordinateLineAreNotRead) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj,
                      "v 1 2 3 0.5 0.5 0.5\nv 0 0 0\nv 0 1 0\nvt 0.25 0.5 0.75\n"
                      "usemtl m\nf 1/1 2/1 3/1\n",
                      printed),
            1)
      << printed;
  EXPECT_DOUBLE_EQ(obj.z[0], 3.0);
  EXPECT_DOUBLE_EQ(obj.v[0], 0.5);
}

TEST_F(Obj_files, FacesOfUpTo349CornersRead) {
  std::string text;
  for (int i = 0; i < 351; i++) text += "v " + std::to_string(i) + " 0 0\n";
  text += "usemtl m\n";
  std::string face349 = "f";
  for (int i = 1; i <= 349; i++) face349 += " " + std::to_string(i);
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj, text + face349 + "\n", printed), 1) << printed;
  EXPECT_EQ(obj.face_size[0], 349);
  EXPECT_EQ(obj.corners[348], 348);
  EXPECT_EQ(read_text(obj, text + face349 + " 350\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Too many vertices: 350 >= 350\n");
  EXPECT_EQ(read_text(obj, text + face349 + " 350 351\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Too many vertices: 351 >= 350\n");
}

TEST_F(Obj_files, FiftyThousandOfEachVertexKindReadAndOneMoreFails) {
  const std::string v = repeated("v 1 2 3\n", 50000);
  const std::string vt = repeated("vt 0.5 0.5\n", 50000);
  const std::string vn = repeated("vn 0 0 1\n", 50000);
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj, v + vt + vn + "usemtl m\nf 50000/50000/50000 1/1/1 2/2/2\n", printed),
            1);
  EXPECT_EQ(obj.n_points, 50000);
  EXPECT_DOUBLE_EQ(obj.z[49999], 3.0);
  EXPECT_EQ(obj.corners[0], 49999);
  EXPECT_EQ(read_text(obj, v + "v 0 0 0\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Opps! Too many vertices: 50001\n");
  EXPECT_EQ(read_text(obj, vt + "vt 0 0\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Opps! Too many texture vertices 50001\n");
  EXPECT_EQ(read_text(obj, vn + "vn 0 0 1\n", printed), 0);
  EXPECT_EQ(printed, opening() + "Too many NORMALS\n");
}

TEST_F(Obj_files, FiftyThousandFacesInASurfaceAreTheMost) {
  const std::string faces = repeated("f 1 2 3\n", 50000);
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj, std::string(triangle_head) + faces + "usemtl next\nf 3 2 1\n", printed),
            1);
  EXPECT_EQ(obj.n_faces, 50001);
  EXPECT_EQ(obj.face_surface[50000], 1);
  EXPECT_EQ(read_text(obj, std::string(triangle_head) + faces + "f 3 2 1\n", printed), 0);
  EXPECT_EQ(printed, opening() +
                         "Gee, somethings wrong in the poly input file:\n"
                         "Error processing OBJ line: f 3 2 1\n");
}

TEST_F(Obj_files, OverlongLineIsSkippedAndReported) {
  const std::string comment = "#" + std::string(8199, 'x');  // 8200 characters
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj, std::string(triangle_head) + comment + "\nf 1 2 3\n", printed), 1);
  EXPECT_EQ(printed.substr(0, opening().size()), opening());
  const std::string report =
      "line too long: SKIPPING OVER LINE\nline:  " + comment.substr(0, 8192) + "\n";
  EXPECT_EQ(printed.substr(opening().size(), report.size()), report);
  EXPECT_EQ(obj.n_faces, 1);
  EXPECT_EQ(obj.counts[TCObj_file::code_comment], 0);
  // A line of exactly 8192 characters is read.
  const std::string longest = "#" + std::string(8191, 'x');
  ASSERT_EQ(read_text(obj, longest + "\n", printed), 1);
  EXPECT_EQ(obj.counts[TCObj_file::code_comment], 1);
  EXPECT_EQ(printed.find("line too long"), std::string::npos);
}

TEST_F(Obj_files, MissingFileIsNamed) {
  TCObj_file obj;
  const std::string missing = dir_ + "/absent.obj";
  Stream_capture out(std::cout);
  EXPECT_EQ(obj.read(missing.c_str()), 0);
  EXPECT_EQ(out.text(), "Opening file: " + missing + "\nError opening " + missing + "\n");
}

TEST_F(Obj_files, ASecondReadForgetsTheFirst) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj, std::string(triangle_head) + "f 1 2 3\n", printed), 1);
  ASSERT_EQ(read_text(obj, "v 5 5 5\nv 6 6 6\nv 7 7 7\nv 8 8 8\nusemtl q\nf 4 3 2\n", printed), 1);
  EXPECT_EQ(obj.n_points, 4);
  EXPECT_EQ(obj.n_surfaces, 1);
  EXPECT_STREQ(obj.texture_names[0], "q.rgb");
  EXPECT_EQ(obj.n_faces, 1);
  EXPECT_EQ(obj.corners[0], 3);
  EXPECT_EQ(obj.counts[29], 1);
}

TEST_F(Obj_files, UnusedVerticesKeepTheirPlacesBeforeTheDuplicates) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj,
                      "v 0 0 0\nv 1 0 0\nv 2 0 0\nv 3 0 0\nv 4 0 0\nvt 0 0\nvt 1 1\n"
                      "usemtl m\nf 1/1 2/1 5/1\nf 1/2 2/1 5/2\n",
                      printed),
            1);
  // Vertices 1 to 5 are points 0 to 4; the duplicates of 1 and 5 follow.
  ASSERT_EQ(obj.n_points, 7);
  EXPECT_DOUBLE_EQ(obj.x[2], 2.0);
  EXPECT_EQ(obj.has_texture[2], 0);
  EXPECT_DOUBLE_EQ(obj.x[5], 0.0);
  EXPECT_DOUBLE_EQ(obj.u[5], 1.0);
  EXPECT_DOUBLE_EQ(obj.x[6], 4.0);
  EXPECT_DOUBLE_EQ(obj.u[6], 1.0);
  const int expected[6] = {0, 1, 4, 5, 1, 6};
  for (int i = 0; i < 6; i++) EXPECT_EQ(obj.corners[i], expected[i]) << i;
}

TEST_F(Obj_files, ModellingToolExportLoadsWithTheScriptsCounts) {
  const std::string obj_path = path("tool.obj");
  const std::string counts_path = path("tool.counts");
  const std::string script = std::string(TC_TEST_DATA_DIR) + "/../polygons/make_tool_style_obj.py";
  const std::string command = "python3 " + script + " " + obj_path + " 5 > " + counts_path;
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  std::map<std::string, std::string> expected;
  std::ifstream in(counts_path);
  std::string key, value;
  while (in >> key >> value) expected[key] = value;
  ASSERT_EQ(expected.count("points"), 1u);

  TCObj_file obj;
  Stream_capture out(std::cout);
  ASSERT_EQ(obj.read(obj_path.c_str()), 1) << out.text();
  EXPECT_EQ(std::to_string(obj.n_points), expected["points"]);
  EXPECT_EQ(std::to_string(obj.n_faces), expected["faces"]);
  EXPECT_EQ(std::to_string(obj.n_corners), expected["corners"]);
  EXPECT_EQ(std::to_string(obj.n_surfaces), expected["surfaces"]);
  EXPECT_EQ(std::to_string(obj.counts[1]), expected["vertices"]);
  EXPECT_EQ(std::to_string(obj.counts[2]), expected["texture_vertices"]);
  EXPECT_EQ(std::to_string(obj.counts[3]), expected["normals"]);
  EXPECT_EQ(std::to_string(obj.counts[24]), expected["o_lines"]);
  EXPECT_EQ(std::to_string(obj.counts[30]), expected["mtllib_lines"]);
  EXPECT_EQ(std::to_string(obj.counts[22]), expected["s_lines"]);
  EXPECT_EQ(std::to_string(obj.counts[TCObj_file::code_comment]), expected["comment_lines"]);
  for (int i = 0; i < obj.n_surfaces; i++) {
    EXPECT_EQ(obj.texture_names[i], expected["texture_" + std::to_string(i)]);
    int faces = 0;
    for (int f = 0; f < obj.n_faces; f++) faces += obj.face_surface[f] == i;
    EXPECT_EQ(std::to_string(faces), expected["surface_faces_" + std::to_string(i)]);
  }
  for (int i = 0; i < obj.n_corners; i++) {
    EXPECT_GE(obj.corners[i], 0);
    EXPECT_LT(obj.corners[i], obj.n_points);
  }
  EXPECT_NE(out.text().find("         OBJ mtllib command not supported (1 lines)\n"),
            std::string::npos);
}

TEST_F(Obj_files, EveryTruncationOfAFileReadsOrFailsWithAMessage) {
  const std::string text =
      "# made by hand\nmtllib a.mtl\no A\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\n"
      "vn 0 0 1\nusemtl Hull\ns off\nf 1/1/1 2/2/1 3/1/1\nf 3//1 2//1 1//1\n";
  for (size_t cut = 0; cut <= text.size(); cut++) {
    TCObj_file obj;
    std::string printed;
    const int result = read_text(obj, text.substr(0, cut), printed);
    if (result) {
      EXPECT_NE(printed.find("Read file: "), std::string::npos) << cut;
      for (int i = 0; i < obj.n_corners; i++) EXPECT_LT(obj.corners[i], obj.n_points) << cut;
    } else {
      EXPECT_EQ(printed.find("Read file: "), std::string::npos) << cut;
      EXPECT_GT(printed.size(), opening().size()) << cut;
    }
  }
}

TEST_F(Obj_files, BinaryNoiseIsRefusedOrReadWithoutHarm) {
  unsigned state = 777u;
  for (int trial = 0; trial < 200; trial++) {
    std::string noise = trial % 2 ? std::string(triangle_head) + "f " : "";
    const int length = 1 + trial * 53 % 4000;
    for (int i = 0; i < length; i++) {
      state = state * 1103515245u + 12345u;
      noise += static_cast<char>((state >> 16) & 0xff);
    }
    TCObj_file obj;
    std::string printed;
    if (read_text(obj, noise, printed)) {
      for (int i = 0; i < obj.n_corners; i++) EXPECT_LT(obj.corners[i], obj.n_points);
    }
  }
}

TEST_F(Obj_files, SquareOfTheDocsReadsAsShown) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj,
                      "# a square of two triangles, textured\n"
                      "mtllib square.mtl\n"
                      "o Square\n"
                      "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
                      "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
                      "vn 0 0 1\n"
                      "usemtl Sailcloth\n"
                      "s off\n"
                      "f 1/1/1 2/2/1 3/3/1\n"
                      "f 1/1/1 3/3/1 4/4/1\n",
                      printed),
            1);
  EXPECT_EQ(printed, opening() + "Read file: " + file_ +
                         "\n"
                         " OBJ file information:\n"
                         "         4 vertices.\n"
                         "         2 polygons.\n"
                         "         1 textured surfaces.\n"
                         "         OBJ smoothing groups not supported - 1 lines ignored\n"
                         "         OBJ o command not supported (1 lines)\n"
                         "         OBJ mtllib command not supported (1 lines)\n"
                         "         Surface[0]: 2 polygons texture: Sailcloth.rgb Vert: 1 2 3\n");
  EXPECT_EQ(obj.n_points, 4);
  const int expected[6] = {0, 1, 2, 0, 2, 3};
  for (int i = 0; i < 6; i++) EXPECT_EQ(obj.corners[i], expected[i]) << i;
}

TEST_F(Obj_files, TooManyAddedPointsEndTheRead) {
  // Each of vertices 1 to 25000 met with texture vertices 1, 2 and 3: its
  // own point and two added ones, 50000 added in all, the table full.
  std::string text = repeated("v 0 0 0\n", 25001) + "vt 0 0\nvt 1 0\nvt 0 1\nusemtl m\n";
  for (int k = 1; k <= 25000; k++) {
    const std::string v = std::to_string(k);
    text += "f " + v + "/1 " + v + "/2 " + v + "/3\n";
  }
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj, text, printed), 1);
  EXPECT_EQ(obj.n_points, 25001 + 50000);
  EXPECT_EQ(obj.corners[3 * 24999 + 2], 25001 + 50000 - 1);
  EXPECT_EQ(read_text(obj, text + "f 25001/1 25001/1 25001/2\n", printed), 0);
  EXPECT_EQ(printed, opening() +
                         "Too many duplicate vertices!\n"
                         "You've got too many duplicate points!: 50000\n"
                         "Maximum points in temporary OBJ vertice list reached.\n"
                         "Opps! Error setting polyList\n");
}

TEST_F(Obj_files, AnOpenFileReadsAsItsPathDoes) {
  const std::string p = write("open.obj", std::string(triangle_head) + "f 3 2 1\n");
  std::FILE* f = std::fopen(p.c_str(), "r");
  ASSERT_NE(f, nullptr);
  TCObj_file obj;
  Stream_capture out(std::cout);
  EXPECT_EQ(obj.read_file(f, "named.obj"), 1);
  std::fclose(f);
  EXPECT_EQ(out.text().substr(0, 21), "Read file: named.obj\n");
  EXPECT_EQ(obj.n_faces, 1);
  EXPECT_EQ(obj.corners[0], 2);
  EXPECT_EQ(obj.read_file(nullptr, "none"), 0);
  EXPECT_EQ(obj.n_faces, 0);
}

TEST_F(Obj_files, CarriageReturnsAndTabsSeparateLikeBlanks) {
  TCObj_file obj;
  std::string printed;
  ASSERT_EQ(read_text(obj,
                      "v 0 0 0\r\nv\t1 0 0\r\nv 0 1 0\r\nvt 0 0\r\n\r\nusemtl Red\r\n"
                      "f 1/1\t2/1 3/1\r\n",
                      printed),
            1)
      << printed;
  EXPECT_STREQ(obj.texture_names[0], "Red.rgb");
  EXPECT_DOUBLE_EQ(obj.x[1], 1.0);
  EXPECT_EQ(obj.counts[TCObj_file::code_blank_line], 1);
  EXPECT_EQ(obj.face_size[0], 3);
}
