#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "TCObject_kinds.h"
#include "TCPoly_object_input.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// Every expected value below is read off the text by hand.

const char* version_one_file =
    "Tidecast_data_file poly 1 1\n"
    "scale_flag: 0\n"
    "number_of_surfaces: 1\n"
    "surface_file_type: poly\n"
    "surface_file: hull.poly\n"
    "shading_model: color\n"
    "surface_color: 0.5 0.25 0.125\n"
    "surface_scale: 1 2 3\n"
    "end\n";

const char* version_two_file =
    "Tidecast_data_file poly 2 2\n"
    "scale_flag: 1\n"
    "scale_x: 2 scale_y: 3 scale_z: 4\n"
    "image_flag: secondary\n"
    "image_level: 2\n"
    "number_of_surfaces: 2\n"
    "surface_file_type: poly surface_file: deck.poly\n"
    "shading_model: texture texture_file: planks.rgb\n"
    "surface_color: 1 0.75 0.5 surface_scale: 0.5 0.25 2\n"
    "surface_file_type: obj surface_file: mast.obj\n"
    "shading_model: color\n"
    "surface_color: 0.1 0.2 0.3 surface_scale: 1 1 1\n"
    "end\n";

const char* version_three_obj_file =
    "Tidecast_data_file poly 3 3\n"
    "scale_flag: 0\n"
    "image_flag: primary\n"
    "image_level: 1\n"
    "object_file_type: obj\n"
    "obj_file: ship.obj\n"
    "obj_scale: 2 2 0.5\n"
    "obj_offset: -1 0 4.5\n"
    "modify_surfaces: 1\n"
    "number_modified: 3\n"
    "surface: 4 modify_kind: off\n"
    "surface: 0 modify_kind: texture 0.5 2\n"
    "surface: 2 modify_kind: color 0.9 0.8 0.7\n"
    "number_ordered: 3 2 0 1\n"
    "end\n";

int read_text(TCPoly_object_input& record, const std::string& text, std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = record.read_stream(in);
  printed = out.text();
  return result;
}

// parse_stream: the result, whether the fault ends the process, and what
// was printed.
int parse_text(TCPoly_object_input& record, const std::string& text, int& fatal,
               std::string& printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = record.parse_stream(in, fatal);
  printed = out.text();
  return result;
}

std::string written(const TCPoly_object_input& record) {
  std::ostringstream out;
  EXPECT_EQ(record.write_stream(out), 1);
  return out.str();
}

// A version 3 "poly" type file of count color surfaces named s<i>.poly.
std::string surface_list_file(int count) {
  std::ostringstream text;
  text << "Tidecast_data_file poly 3 3\nscale_flag: 0\nimage_flag: all\nimage_level: 0\n"
       << "object_file_type: poly\nnumber_of_surfaces: " << count << "\n";
  for (int i = 0; i < count; i++) {
    text << "surface_file_type: poly surface_file: s" << i << ".poly shading_model: color "
         << "surface_color: 0 0 0 surface_scale: 1 1 1\n";
  }
  text << "end\n";
  return text.str();
}

// A version 3 OBJ file with count "off" modifications.
std::string modified_obj_file(int count) {
  std::ostringstream text;
  text << "Tidecast_data_file poly 3 3\nscale_flag: 0\nimage_flag: all\nimage_level: 0\n"
       << "object_file_type: obj\nobj_file: a.obj\nobj_scale: 1 1 1\nobj_offset: 0 0 0\n"
       << "modify_surfaces: 1\nnumber_modified: " << count << "\n";
  for (int i = 0; i < count; i++) text << "surface: " << i << " modify_kind: off\n";
  text << "number_ordered: 0\nend\n";
  return text.str();
}

void expect_same_record(const TCPoly_object_input& a, const TCPoly_object_input& b) {
  EXPECT_EQ(a.scale_flag, b.scale_flag);
  EXPECT_EQ(a.scale_x, b.scale_x);
  EXPECT_EQ(a.scale_y, b.scale_y);
  EXPECT_EQ(a.scale_z, b.scale_z);
  EXPECT_EQ(a.image_flag, b.image_flag);
  EXPECT_EQ(a.image_level, b.image_level);
  EXPECT_EQ(a.object_file_type, b.object_file_type);
  ASSERT_EQ(a.n_surfaces, b.n_surfaces);
  for (int i = 0; i < a.n_surfaces; i++) {
    const Poly_surface_input& s = a.surfaces[i];
    const Poly_surface_input& t = b.surfaces[i];
    EXPECT_EQ(s.surface_file_type, t.surface_file_type);
    EXPECT_STREQ(s.surface_file, t.surface_file);
    EXPECT_EQ(s.shading_model, t.shading_model);
    EXPECT_STREQ(s.texture_file, t.texture_file);
    for (int k = 0; k < 3; k++) {
      EXPECT_EQ(s.surface_color[k], t.surface_color[k]);
      EXPECT_EQ(s.surface_scale[k], t.surface_scale[k]);
    }
    EXPECT_EQ(s.image_flag, t.image_flag);
  }
  EXPECT_STREQ(a.obj_file, b.obj_file);
  for (int k = 0; k < 3; k++) {
    EXPECT_EQ(a.obj_scale[k], b.obj_scale[k]);
    EXPECT_EQ(a.obj_offset[k], b.obj_offset[k]);
  }
  EXPECT_EQ(a.modify_surfaces, b.modify_surfaces);
  ASSERT_EQ(a.n_modified, b.n_modified);
  for (int i = 0; i < a.n_modified; i++) {
    EXPECT_EQ(a.changes[i].surface, b.changes[i].surface);
    EXPECT_EQ(a.changes[i].kind, b.changes[i].kind);
    for (int k = 0; k < 3; k++) EXPECT_EQ(a.changes[i].values[k], b.changes[i].values[k]);
  }
  EXPECT_EQ(a.has_order, b.has_order);
  ASSERT_EQ(a.n_ordered, b.n_ordered);
  for (int i = 0; i < a.n_ordered; i++) EXPECT_EQ(a.order[i], b.order[i]);
}

// The tokens of text, each cut off after its last character.
std::vector<std::string> token_cuts(const std::string& text) {
  std::vector<std::string> cuts;
  for (size_t i = 0; i < text.size(); i++) {
    const bool ends_token = text[i] != ' ' && text[i] != '\n' &&
                            (i + 1 == text.size() || text[i + 1] == ' ' || text[i + 1] == '\n');
    if (ends_token) cuts.push_back(text.substr(0, i + 1));
  }
  return cuts;
}

// ---- Construction ----

TEST(PolyObjectInput, NewRecordIsKindPolyCodeNineteenWithNothingImported) {
  TCPoly_object_input record;
  EXPECT_STREQ(record.object_type, "poly");
  EXPECT_EQ(record.type_code, 19);
  EXPECT_EQ(record.type_code, TC_KIND_POLY);
  EXPECT_EQ(record.scale_flag, 0);
  EXPECT_EQ(record.scale_x, 1.0);
  EXPECT_EQ(record.image_flag, 1);
  EXPECT_EQ(record.object_file_type, 1);
  EXPECT_EQ(record.n_surfaces, 0);
  EXPECT_EQ(record.surfaces, nullptr);
  EXPECT_EQ(record.has_order, 0);
  EXPECT_EQ(record.order, nullptr);
  EXPECT_EQ(TCPoly_object_input::most_surfaces, 50);
  EXPECT_EQ(TCPoly_object_input::most_changes, 49);
}

// ---- Versions ----

TEST(PolyObjectInput, VersionOneFileHasNeitherImageFlagNorTypeWordsAndIsAllPolyType) {
  TCPoly_object_input record;
  // Left over from an earlier read; a version 1 file must not keep them.
  std::string printed;
  ASSERT_EQ(read_text(record, version_three_obj_file, printed), 1);
  ASSERT_EQ(read_text(record, version_one_file, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(record.scale_flag, 0);
  EXPECT_EQ(record.scale_x, 1.0);
  EXPECT_EQ(record.scale_y, 1.0);
  EXPECT_EQ(record.scale_z, 1.0);
  EXPECT_EQ(record.image_flag, 1);
  EXPECT_EQ(record.image_level, 0);
  EXPECT_EQ(record.object_file_type, 1);
  EXPECT_EQ(record.has_order, 0);
  EXPECT_EQ(record.n_ordered, 0);
  EXPECT_EQ(record.n_modified, 0);
  EXPECT_EQ(record.modify_surfaces, 0);
  EXPECT_STREQ(record.obj_file, "");
  EXPECT_EQ(record.obj_scale[2], 1.0);
  EXPECT_EQ(record.obj_offset[0], 0.0);
  ASSERT_EQ(record.n_surfaces, 1);
  const Poly_surface_input& s = record.surfaces[0];
  EXPECT_EQ(s.surface_file_type, 1);
  EXPECT_STREQ(s.surface_file, "hull.poly");
  EXPECT_EQ(s.shading_model, 4);
  EXPECT_STREQ(s.texture_file, "null.dat");
  EXPECT_EQ(s.surface_color[0], 0.5);
  EXPECT_EQ(s.surface_color[1], 0.25);
  EXPECT_EQ(s.surface_color[2], 0.125);
  EXPECT_EQ(s.surface_scale[0], 1.0);
  EXPECT_EQ(s.surface_scale[1], 2.0);
  EXPECT_EQ(s.surface_scale[2], 3.0);
  EXPECT_EQ(s.image_flag, 1);
}

TEST(PolyObjectInput, VersionTwoReadsScaleImageFlagLevelAndASurfaceList) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, version_two_file, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(record.scale_flag, 1);
  EXPECT_EQ(record.scale_x, 2.0);
  EXPECT_EQ(record.scale_y, 3.0);
  EXPECT_EQ(record.scale_z, 4.0);
  EXPECT_EQ(record.image_flag, 3);
  EXPECT_EQ(record.image_level, 2);
  EXPECT_EQ(record.object_file_type, 1);
  ASSERT_EQ(record.n_surfaces, 2);
  const Poly_surface_input& deck = record.surfaces[0];
  EXPECT_EQ(deck.surface_file_type, 1);
  EXPECT_STREQ(deck.surface_file, "deck.poly");
  EXPECT_EQ(deck.shading_model, 1);
  EXPECT_STREQ(deck.texture_file, "planks.rgb");
  EXPECT_EQ(deck.surface_color[0], 1.0);
  EXPECT_EQ(deck.surface_color[1], 0.75);
  EXPECT_EQ(deck.surface_color[2], 0.5);
  EXPECT_EQ(deck.surface_scale[0], 0.5);
  EXPECT_EQ(deck.surface_scale[1], 0.25);
  EXPECT_EQ(deck.surface_scale[2], 2.0);
  EXPECT_EQ(deck.image_flag, 3);
  const Poly_surface_input& mast = record.surfaces[1];
  EXPECT_EQ(mast.surface_file_type, 2);
  EXPECT_STREQ(mast.surface_file, "mast.obj");
  EXPECT_EQ(mast.shading_model, 4);
  EXPECT_STREQ(mast.texture_file, "null.dat");
  EXPECT_EQ(mast.surface_color[0], 0.1);
  EXPECT_EQ(mast.surface_color[1], 0.2);
  EXPECT_EQ(mast.surface_color[2], 0.3);
  EXPECT_EQ(mast.image_flag, 3);
}

TEST(PolyObjectInput, VersionThreeObjTypeReadsTheObjBlock) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, version_three_obj_file, printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(record.image_flag, 2);
  EXPECT_EQ(record.image_level, 1);
  EXPECT_EQ(record.object_file_type, 2);
  EXPECT_EQ(record.n_surfaces, 0);
  EXPECT_STREQ(record.obj_file, "ship.obj");
  EXPECT_EQ(record.obj_scale[0], 2.0);
  EXPECT_EQ(record.obj_scale[1], 2.0);
  EXPECT_EQ(record.obj_scale[2], 0.5);
  EXPECT_EQ(record.obj_offset[0], -1.0);
  EXPECT_EQ(record.obj_offset[1], 0.0);
  EXPECT_EQ(record.obj_offset[2], 4.5);
  EXPECT_EQ(record.modify_surfaces, 1);
  ASSERT_EQ(record.n_modified, 3);
  EXPECT_EQ(record.changes[0].surface, 4);
  EXPECT_EQ(record.changes[0].kind, 3);
  EXPECT_EQ(record.changes[1].surface, 0);
  EXPECT_EQ(record.changes[1].kind, 1);
  EXPECT_EQ(record.changes[1].values[0], 0.5);
  EXPECT_EQ(record.changes[1].values[1], 2.0);
  EXPECT_EQ(record.changes[2].surface, 2);
  EXPECT_EQ(record.changes[2].kind, 2);
  EXPECT_EQ(record.changes[2].values[0], 0.9);
  EXPECT_EQ(record.changes[2].values[1], 0.8);
  EXPECT_EQ(record.changes[2].values[2], 0.7);
  EXPECT_EQ(record.has_order, 1);
  ASSERT_EQ(record.n_ordered, 3);
  EXPECT_EQ(record.order[0], 2);
  EXPECT_EQ(record.order[1], 0);
  EXPECT_EQ(record.order[2], 1);
}

TEST(PolyObjectInput, VersionThreePolyTypeReadsASurfaceList) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, surface_list_file(2), printed), 1);
  EXPECT_EQ(record.object_file_type, 1);
  ASSERT_EQ(record.n_surfaces, 2);
  EXPECT_STREQ(record.surfaces[1].surface_file, "s1.poly");
}

TEST(PolyObjectInput, ObjBlockWithoutModificationsOrOrderReadsNoneOfEither) {
  const std::string text =
      "Tidecast_data_file poly 3 3 scale_flag: 0 image_flag: all image_level: 0\n"
      "object_file_type: obj obj_file: a.obj obj_scale: 1 1 1 obj_offset: 0 0 0\n"
      "modify_surfaces: 0 number_ordered: 0 end\n";
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, text, printed), 1);
  EXPECT_EQ(record.modify_surfaces, 0);
  EXPECT_EQ(record.n_modified, 0);
  EXPECT_EQ(record.has_order, 0);
  EXPECT_EQ(record.n_ordered, 0);
}

TEST(PolyObjectInput, LabelsAreDroppedWhateverTheirText) {
  std::string text = version_two_file;
  const char* labels[] = {"scale_flag:",   "scale_x:",       "image_flag:",    "image_level:",
                          "surface_file:", "shading_model:", "surface_color:", "texture_file:"};
  for (const char* label : labels) {
    size_t at = 0;
    while ((at = text.find(label, at)) != std::string::npos) text.replace(at, 1, "Q");
  }
  TCPoly_object_input plain, relabelled;
  std::string printed;
  ASSERT_EQ(read_text(plain, version_two_file, printed), 1);
  ASSERT_EQ(read_text(relabelled, text, printed), 1);
  expect_same_record(plain, relabelled);
}

// ---- Words ----

TEST(PolyObjectInput, ImageFlagWordsGiveTheirCodes) {
  const char* words[] = {"all", "primary", "secondary", "reflections"};
  const int codes[] = {1, 2, 3, 3};
  for (int i = 0; i < 4; i++) {
    std::string text = version_two_file;
    text.replace(text.find("secondary"), 9, words[i]);
    TCPoly_object_input record;
    std::string printed;
    ASSERT_EQ(read_text(record, text, printed), 1) << words[i];
    EXPECT_EQ(record.image_flag, codes[i]) << words[i];
    EXPECT_EQ(record.surfaces[0].image_flag, codes[i]) << words[i];
  }
}

TEST(PolyObjectInput, ImageFlagWordOtherThanTheFourIsFatal) {
  std::string text = version_two_file;
  text.replace(text.find("secondary"), 9, "All");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 1);
  EXPECT_EQ(printed, "Texture map input has invalid imageflag: All\n");
}

TEST(PolyObjectInputDeathTest, ImageFlagWordOtherThanTheFourEndsWithStatusOne) {
  std::string text = version_two_file;
  text.replace(text.find("secondary"), 9, "everything");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCPoly_object_input record;
        std::istringstream in(text);
        record.read_stream(in);
      },
      ::testing::ExitedWithCode(1), "^Texture map input has invalid imageflag: everything\n$");
}

TEST(PolyObjectInput, ObjectFileTypeWordOtherThanPolyOrObjFailsTheRead) {
  std::string text = version_three_obj_file;
  text.replace(text.find("object_file_type: obj"), 21, "object_file_type: OBJ");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 0);
  EXPECT_EQ(printed, "Invalid object file type: OBJ\n");
}

TEST(PolyObjectInput, SurfaceFileTypeWordOtherThanPolyOrObjFailsTheRead) {
  std::string text = version_one_file;
  text.replace(text.find("surface_file_type: poly"), 23, "surface_file_type: mesh");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 0);
  EXPECT_EQ(printed, "Invalid object file type: mesh\n");
}

TEST(PolyObjectInput, ShadingWordOtherThanTextureOrColorIsFatalAndNamesTheSurface) {
  std::string text = version_two_file;
  const size_t second = text.find("shading_model: color");
  text.replace(second, 20, "shading_model: shiny");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 1);
  EXPECT_EQ(printed,
            "Invalid object shading type: shiny\n"
            "Error processing polygon file: \n"
            "Invalid shading model for surface 1: shiny\n");
}

TEST(PolyObjectInputDeathTest, ShadingWordOtherThanTextureOrColorEndsWithStatusOne) {
  std::string text = version_one_file;
  text.replace(text.find("shading_model: color"), 20, "shading_model: colour");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCPoly_object_input record;
        std::istringstream in(text);
        record.read_stream(in);
      },
      ::testing::ExitedWithCode(1),
      "^Invalid object shading type: colour\nError processing polygon file: \n"
      "Invalid shading model for surface 0: colour\n$");
}

TEST(PolyObjectInput, ModifyKindWordsGiveTheirCodesAndValueCounts) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, version_three_obj_file, printed), 1);
  // off 3 takes no values, texture 1 two, color 2 three: the order list
  // after them reads right only if each took its own count.
  EXPECT_EQ(record.changes[0].kind, 3);
  EXPECT_EQ(record.changes[0].values[0], 0.0);
  EXPECT_EQ(record.changes[1].kind, 1);
  EXPECT_EQ(record.changes[1].values[2], 0.0);
  EXPECT_EQ(record.changes[2].kind, 2);
  EXPECT_EQ(record.n_ordered, 3);
}

TEST(PolyObjectInput, ModifyKindWordOtherThanTheThreeFailsTheRead) {
  std::string text = version_three_obj_file;
  text.replace(text.find("modify_kind: off"), 16, "modify_kind: hide");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 0);
  EXPECT_EQ(printed, "Error reading poly input: Invalid surface modification: hide\n");
}

// ---- Counts ----

TEST(PolyObjectInput, FiftySurfacesRead) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, surface_list_file(50), printed), 1);
  ASSERT_EQ(record.n_surfaces, 50);
  EXPECT_STREQ(record.surfaces[49].surface_file, "s49.poly");
}

TEST(PolyObjectInput, NoSurfacesRead) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, surface_list_file(0), printed), 1);
  EXPECT_EQ(record.n_surfaces, 0);
}

TEST(PolyObjectInput, SurfaceCountsOutsideZeroToFiftyAreFatal) {
  const int counts[] = {51, -1, 2147483647};
  for (int count : counts) {
    std::string text = surface_list_file(0);
    text.replace(text.find("number_of_surfaces: 0"), 21,
                 "number_of_surfaces: " + std::to_string(count));
    TCPoly_object_input record;
    int fatal = 0;
    std::string printed;
    EXPECT_EQ(parse_text(record, text, fatal, printed), 0) << count;
    EXPECT_EQ(fatal, 1) << count;
    EXPECT_EQ(printed, "Error reading poly_object input.\n      Bad number of surfaces: " +
                           std::to_string(count) + "out of  a maximum of 50\n")
        << count;
    EXPECT_EQ(record.n_surfaces, 0);
  }
}

TEST(PolyObjectInputDeathTest, FiftyOneSurfacesEndWithStatusOne) {
  const std::string text = surface_list_file(51);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCPoly_object_input record;
        std::istringstream in(text);
        record.read_stream(in);
      },
      ::testing::ExitedWithCode(1),
      "^Error reading poly_object input.\n      Bad number of surfaces: 51out of  a maximum of "
      "50\n$");
}

TEST(PolyObjectInputDeathTest, NegativeSurfaceCountEndsWithStatusOne) {
  std::string text = surface_list_file(0);
  text.replace(text.find("number_of_surfaces: 0"), 21, "number_of_surfaces: -3");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCPoly_object_input record;
        std::istringstream in(text);
        record.read_stream(in);
      },
      ::testing::ExitedWithCode(1), "Bad number of surfaces: -3out of  a maximum of 50\n$");
}

TEST(PolyObjectInput, FortyNineModificationsRead) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, modified_obj_file(49), printed), 1);
  ASSERT_EQ(record.n_modified, 49);
  EXPECT_EQ(record.changes[48].surface, 48);
  EXPECT_EQ(record.changes[48].kind, 3);
}

TEST(PolyObjectInput, FiftyModificationsFailTheRead) {
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, modified_obj_file(50), fatal, printed), 0);
  EXPECT_EQ(fatal, 0);
  EXPECT_EQ(printed, "Error - too many modified surfaces.\n");
  EXPECT_EQ(record.n_modified, 0);
}

TEST(PolyObjectInput, NegativeModificationCountFailsTheRead) {
  std::string text = modified_obj_file(0);
  text.replace(text.find("number_modified: 0"), 18, "number_modified: -2");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 0);
  EXPECT_EQ(printed, "Error reading poly input: Bad number of modified surfaces: -2\n");
  EXPECT_EQ(record.n_modified, 0);
}

TEST(PolyObjectInput, OrderCountsBelowZeroOrAboveFiftyFailTheRead) {
  const int counts[] = {-1, 51};
  for (int count : counts) {
    std::string text = modified_obj_file(0);
    text.replace(text.find("number_ordered: 0"), 17, "number_ordered: " + std::to_string(count));
    TCPoly_object_input record;
    int fatal = 0;
    std::string printed;
    EXPECT_EQ(parse_text(record, text, fatal, printed), 0) << count;
    EXPECT_EQ(fatal, 0);
    EXPECT_EQ(printed, "Error reading poly input: Bad number of ordered surfaces: " +
                           std::to_string(count) + "\n");
    EXPECT_EQ(record.has_order, 0);
    EXPECT_EQ(record.order, nullptr);
  }
}

// ---- Closing words and headers ----

TEST(PolyObjectInput, SurfaceListNotClosedByEndIsFatal) {
  std::string text = version_one_file;
  text.replace(text.rfind("end"), 3, "fin");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 1);
  EXPECT_EQ(printed, "Error processing polygon data file: \nExpected end but read: fin\n");
}

TEST(PolyObjectInputDeathTest, SurfaceListNotClosedByEndEndsWithStatusOne) {
  std::string text = version_one_file;
  text.replace(text.rfind("end"), 3, "END");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCPoly_object_input record;
        std::istringstream in(text);
        record.read_stream(in);
      },
      ::testing::ExitedWithCode(1),
      "^Error processing polygon data file: \nExpected end but read: END\n$");
}

TEST(PolyObjectInput, ObjBlockNotClosedByEndFailsTheRead) {
  std::string text = version_three_obj_file;
  text.replace(text.rfind("end"), 3, "stop");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 0);
  EXPECT_EQ(printed, "Error reading poly input: Expected end, read: stop\n");
}

TEST(PolyObjectInput, WrongTypeInHeaderFailsWithTheFirstLineMessage) {
  std::string text = version_one_file;
  text.replace(text.find("poly 1 1"), 4, "mesh");
  TCPoly_object_input record;
  std::string printed;
  EXPECT_EQ(read_text(record, text, printed), 0);
  EXPECT_EQ(printed,
            "file type mesh is not of \nexpected type poly\n"
            "Error processing first line of polygon input stream.\n");
}

TEST(PolyObjectInput, FileNeedingAReaderNewerThanThreeFailsWithOnlyTheFirstLineMessage) {
  TCPoly_object_input record;
  std::string printed;
  EXPECT_EQ(read_text(record, "Tidecast_data_file poly 4 4\nscale_flag: 0\n", printed), 0);
  EXPECT_EQ(printed, "Error processing first line of polygon input stream.\n");
}

TEST(PolyObjectInput, VersionFourReadableByThreeReadsAsThree) {
  std::string text = surface_list_file(1);
  text.replace(text.find("poly 3 3"), 8, "poly 4 3");
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, text, printed), 1);
  EXPECT_EQ(record.n_surfaces, 1);
}

TEST(PolyObjectInput, SecondMagicWordIsAccepted) {
  std::string text = version_one_file;
  text.replace(0, 18, "Beavis_rules_the");
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, text, printed), 1);
  EXPECT_EQ(record.n_surfaces, 1);
}

TEST(PolyObjectInput, MissingFileIsNamedAndFails) {
  Scratch_folder folder;
  const std::string path = folder.file("absent.poly_input");
  TCPoly_object_input record;
  Stream_capture out(std::cout);
  EXPECT_EQ(record.read_objects_file(path.c_str()), 0);
  EXPECT_EQ(record.read_file(path.c_str()), 0);
  EXPECT_EQ(out.text(), "Can't open polygon objects file: " + path + "\n" +
                            "Can't open polygon objects file: " + path + "\n");
}

// ---- Writing ----

TEST(PolyObjectInput, WrittenFileIsVersionThreeWithTheWordsItReads) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, version_two_file, printed), 1);
  EXPECT_EQ(written(record),
            "Tidecast_data_file poly 3 3\n"
            "scale_flag: 1\n"
            "scale_x: 2\n"
            "scale_y: 3\n"
            "scale_z: 4\n"
            "image_flag: secondary\n"
            "image_level: 2\n"
            "object_file_type: poly\n"
            "number_of_surfaces: 2\n"
            "surface_file_type: poly\n"
            "surface_file: deck.poly\n"
            "shading_model: texture\n"
            "texture_file: planks.rgb\n"
            "surface_color: 1 0.75 0.5\n"
            "surface_scale: 0.5 0.25 2\n"
            "surface_file_type: obj\n"
            "surface_file: mast.obj\n"
            "shading_model: color\n"
            "surface_color: 0.1 0.2 0.3\n"
            "surface_scale: 1 1 1\n"
            "end\n");
}

TEST(PolyObjectInput, WrittenObjBlockHasModificationsAndOrder) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, version_three_obj_file, printed), 1);
  EXPECT_EQ(written(record),
            "Tidecast_data_file poly 3 3\n"
            "scale_flag: 0\n"
            "image_flag: primary\n"
            "image_level: 1\n"
            "object_file_type: obj\n"
            "obj_file: ship.obj\n"
            "obj_scale: 2 2 0.5\n"
            "obj_offset: -1 0 4.5\n"
            "modify_surfaces: 1\n"
            "number_modified: 3\n"
            "surface: 4 modify_kind: off\n"
            "surface: 0 modify_kind: texture 0.5 2\n"
            "surface: 2 modify_kind: color 0.9 0.8 0.7\n"
            "number_ordered: 3 2 0 1\n"
            "end\n");
}

TEST(PolyObjectInput, EveryVersionReadsBackEqualFromItsWriting) {
  const std::string files[] = {version_one_file, version_two_file, version_three_obj_file,
                               surface_list_file(50), modified_obj_file(49)};
  for (const std::string& file : files) {
    TCPoly_object_input first, second;
    std::string printed;
    ASSERT_EQ(read_text(first, file, printed), 1);
    const std::string text = written(first);
    ASSERT_EQ(read_text(second, text, printed), 1) << text;
    EXPECT_EQ(printed, "");
    expect_same_record(first, second);
    EXPECT_EQ(written(second), text);
  }
}

TEST(PolyObjectInput, NumbersReadBackToTheSameDouble) {
  std::string text = version_one_file;
  text.replace(text.find("0.5 0.25 0.125"), 14, "0.1 3.1415926535 1e-300");
  TCPoly_object_input first, second;
  std::string printed;
  ASSERT_EQ(read_text(first, text, printed), 1);
  ASSERT_EQ(read_text(second, written(first), printed), 1);
  EXPECT_EQ(second.surfaces[0].surface_color[0], 0.1);
  EXPECT_EQ(second.surfaces[0].surface_color[1], 3.1415926535);
  EXPECT_EQ(second.surfaces[0].surface_color[2], 1e-300);
}

TEST(PolyObjectInput, WriteFileAndReadFileRoundTrip) {
  Scratch_folder folder;
  const std::string path = folder.file("ship.poly_input");
  TCPoly_object_input first, second;
  std::string printed;
  ASSERT_EQ(read_text(first, version_three_obj_file, printed), 1);
  ASSERT_EQ(first.write_file(path.c_str()), 1);
  Stream_capture out(std::cout);
  ASSERT_EQ(second.read_file(path.c_str()), 1);
  EXPECT_EQ(out.text(), "");
  expect_same_record(first, second);
}

TEST(PolyObjectInput, WriteFileToAFolderThatIsNotThereFails) {
  Scratch_folder folder;
  const std::string path = folder.file("no/such/place");
  TCPoly_object_input record;
  Stream_capture out(std::cout);
  EXPECT_EQ(record.write_file(path.c_str()), 0);
  EXPECT_EQ(out.text(), "Can't open polygon objects file: " + path + "\n");
}

// ---- Hostile files ----

TEST(PolyObjectInput, FileCutAtEveryTokenFailsAndSurfaceListCutsAreFatal) {
  const std::string files[] = {version_one_file, version_two_file, version_three_obj_file};
  for (const std::string& file : files) {
    const std::vector<std::string> cuts = token_cuts(file);
    ASSERT_GT(cuts.size(), 10u);
    // The last cut is the whole file.
    for (size_t i = 0; i + 1 < cuts.size(); i++) {
      TCPoly_object_input record;
      int fatal = 0;
      std::string printed;
      EXPECT_EQ(parse_text(record, cuts[i], fatal, printed), 0) << cuts[i];
      EXPECT_NE(printed, "") << cuts[i];
      EXPECT_LE(record.n_surfaces, TCPoly_object_input::most_surfaces);
      EXPECT_LE(record.n_modified, TCPoly_object_input::most_changes);
      // Past the header a cut surface list reaches its closing word check,
      // which is fatal, unless a surface type word is missing; a cut OBJ
      // block fails without ending the process.
      const bool type_word_missing = printed.rfind("Invalid object file type: \n", 0) == 0;
      if (i >= 4 && file != version_three_obj_file) {
        EXPECT_TRUE(fatal == 1 || type_word_missing) << cuts[i];
      }
      if (file == version_three_obj_file && i >= 12) {
        EXPECT_EQ(fatal, 0) << cuts[i];
      }
    }
    TCPoly_object_input whole;
    int fatal = 0;
    std::string printed;
    EXPECT_EQ(parse_text(whole, cuts.back(), fatal, printed), 1);
  }
}

TEST(PolyObjectInput, FileCutInTheHeaderGivesTheFirstLineMessage) {
  // Cut after the version, the missing oldest reader reads as 0 and passes.
  const std::vector<std::string> cuts = token_cuts(version_one_file);
  for (int i = 0; i < 2; i++) {
    TCPoly_object_input record;
    int fatal = 0;
    std::string printed;
    EXPECT_EQ(parse_text(record, cuts[i], fatal, printed), 0);
    EXPECT_EQ(fatal, 0);
    const std::string tail = "Error processing first line of polygon input stream.\n";
    ASSERT_GE(printed.size(), tail.size());
    EXPECT_EQ(printed.substr(printed.size() - tail.size()), tail);
  }
}

TEST(PolyObjectInput, WordWhereANumberStandsIsCaughtAtTheClosingWord) {
  std::string text = version_one_file;
  text.replace(text.find("0.25"), 4, "grey");
  TCPoly_object_input record;
  int fatal = 0;
  std::string printed;
  EXPECT_EQ(parse_text(record, text, fatal, printed), 0);
  EXPECT_EQ(fatal, 1);
  EXPECT_EQ(printed, "Error processing polygon data file: \nExpected end but read: grey\n");
}

TEST(PolyObjectInput, OverlongNamesAreCutToFit) {
  std::string text = version_one_file;
  const std::string long_name(400, 'n');
  text.replace(text.find("hull.poly"), 9, long_name);
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, text, printed), 1);
  EXPECT_EQ(std::string(record.surfaces[0].surface_file), std::string(255, 'n'));
}

TEST(PolyObjectInput, ReadingAgainReplacesTheSurfaces) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, surface_list_file(5), printed), 1);
  ASSERT_EQ(read_text(record, version_one_file, printed), 1);
  EXPECT_EQ(record.n_surfaces, 1);
  EXPECT_STREQ(record.surfaces[0].surface_file, "hull.poly");
}

// ---- Packing ----

TEST(PolyObjectInput, PacksAsItsBoxBaseDoesTheNameAlone) {
  TCPoly_object_input record;
  std::string printed;
  ASSERT_EQ(read_text(record, version_two_file, printed), 1);
  std::snprintf(record.object_name, 256, "%s", "schooner");
  int n_ints = -1, n_doubles = -1, n_chars = -1;
  record.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, 0);
  EXPECT_EQ(n_doubles, 0);
  EXPECT_EQ(n_chars, 256);
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  TCPoly_object_input receiver;
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(record.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes), 1);
    EXPECT_EQ(int_bytes, 0);
    EXPECT_EQ(double_bytes, 0);
    EXPECT_EQ(char_bytes, 256);
    receiver.set_sizes_from_packed(ints, doubles, chars);
    EXPECT_EQ(receiver.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes), 1);
  }
  EXPECT_STREQ(receiver.object_name, "schooner");
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

}  // namespace
