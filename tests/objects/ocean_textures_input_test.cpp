#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>

#include "TCOcean_textures_input.h"
#include "stream_capture.h"

namespace {

std::string texture_text(const std::string& picture, int priority, int bands) {
  return "Center: 0 0\nOrientation: 0\nDimensions: 100 50\nMakePeridoic: 1\n"
         "AnimationFlag: 0\nNewPictureFlag: 0\nPictureFile: " +
         picture + "\nPriority: " + std::to_string(priority) +
         "\nPicture_bands: " + std::to_string(bands) + "\n";
}

std::string side_text(const char* word, int reflection, int alpha, const std::string& mins,
                      const std::string& maxs) {
  return std::string(word) + " yes\nreflection_flag: " + std::to_string(reflection) +
         "\nalpha_flag: " + std::to_string(alpha) + "\nmin_radiance " + mins +
         "\nmax_radiance: " + maxs + "\n";
}

const char* const kHeader = "Tidecast_data_file texture 2 2\nsurface_type: ocean\n";

std::string block(int n, const std::string& body) {
  return std::string(kHeader) + "number_of_textures: " + std::to_string(n) + "\n" + body +
         "endTexture\n";
}

// A texture with a priority and nothing on either side.
std::string plain_texture(const std::string& picture, int priority) {
  return texture_text(picture, priority, 1) + "image_above: no\nimage_below: no\n";
}

TEST(TextureBlock, TwoTexturesWithBothSections) {
  const std::string body = texture_text("a.rgb", 1, 3) +
                           side_text("image_above:", 1, 0, "0 0.5 1", "10 20 30") +
                           "image_below: no\n" + texture_text("b.rgb", 5, 3) + "image_above: no\n" +
                           side_text("image_below:", 0, 0, "1 2 3", "4 5 6");
  std::istringstream in(block(2, body));
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(capture.text(), "");
  EXPECT_EQ(block_input.active, 1);
  ASSERT_EQ(block_input.n_textures, 2);

  const TCTexture_plane_input& a = block_input.textures[0];
  EXPECT_STREQ(a.picture_file, "a.rgb");
  EXPECT_EQ(block_input.above_flag[0], 2);  // 1 + the reflection flag
  EXPECT_EQ(block_input.below_flag[0], 0);
  EXPECT_EQ(block_input.alpha_above[0], 0);
  EXPECT_EQ(a.side_code, 1);
  EXPECT_EQ(a.n_bands, 3);
  EXPECT_EQ(a.min_above[1], 0.5);
  EXPECT_EQ(a.max_above[2], 30.0);
  EXPECT_EQ(a.min_below, nullptr);

  const TCTexture_plane_input& b = block_input.textures[1];
  EXPECT_EQ(block_input.above_flag[1], 0);
  EXPECT_EQ(block_input.below_flag[1], 1);
  EXPECT_EQ(b.side_code, 2);
  EXPECT_EQ(b.n_bands, 3);
  EXPECT_EQ(b.min_below[0], 1.0);
  EXPECT_EQ(b.max_below[2], 6.0);

  EXPECT_EQ(block_input.priorities[0], 1);
  EXPECT_EQ(block_input.priorities[1], 5);
  EXPECT_EQ(block_input.order[0], 1);  // the higher priority is drawn first
  EXPECT_EQ(block_input.order[1], 0);
}

TEST(TextureBlock, BothSidesOfOneTexture) {
  const std::string body = texture_text("c.rgb", 0, 2) +
                           side_text("image_above:", 0, 0, "0 0", "1 1") +
                           side_text("image_below:", 1, 0, "0.1 0.2", "3 4");
  std::istringstream in(block(1, body));
  TCOcean_textures_input block_input;
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(block_input.order[0], 0);
  EXPECT_EQ(block_input.above_flag[0], 1);
  EXPECT_EQ(block_input.below_flag[0], 2);
  EXPECT_EQ(block_input.textures[0].side_code, 3);
  EXPECT_EQ(block_input.textures[0].max_below[1], 4.0);
}

TEST(TextureBlock, AlphaFlagAddsABandWithRangeZeroToOne) {
  const std::string body = texture_text("d.rgb", 0, 3) +
                           side_text("image_above:", 0, 1, "0.5 0.5 0.5", "2 2 2") +
                           side_text("image_below:", 0, 1, "0.25 0.25 0.25", "4 4 4");
  std::istringstream in(block(1, body));
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(capture.text(), "");
  const TCTexture_plane_input& t = block_input.textures[0];
  EXPECT_EQ(block_input.alpha_above[0], 1);
  EXPECT_EQ(block_input.alpha_below[0], 1);
  EXPECT_EQ(t.n_bands, 4);
  EXPECT_EQ(t.side_code, 3);
  EXPECT_EQ(t.min_above[2], 0.5);
  EXPECT_EQ(t.min_above[3], 0.0);
  EXPECT_EQ(t.max_above[3], 1.0);
  EXPECT_EQ(t.min_below[3], 0.0);
  EXPECT_EQ(t.max_below[3], 1.0);
}

TEST(TextureBlock, AlphaOnOneSideOnlyReportsTheBandMismatch) {
  const std::string body = texture_text("e.rgb", 0, 2) +
                           side_text("image_above:", 0, 0, "0 0", "1 1") +
                           side_text("image_below:", 0, 1, "0 0", "1 1");
  std::istringstream in(block(1, body));
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(capture.text(),
            "Number of bands below water (3) not equal to number of bands above (2)\n");
}

TEST(TextureBlock, OnlyLowerCaseYesOpensASection) {
  const std::string body = texture_text("f.rgb", 0, 1) + "image_above: Yes\nimage_below: no\n";
  std::istringstream in(block(1, body));
  TCOcean_textures_input block_input;
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(block_input.above_flag[0], 0);
  EXPECT_EQ(block_input.textures[0].side_code, 0);
}

TEST(TextureBlock, VersionOneTexturesHaveNoAnimationFields) {
  std::istringstream in(
      "Tidecast_data_file texture 1 1\nsurface_type: ocean\nnumber_of_textures: 1\n"
      "Center: 0 0 Orientation: 0 Dimensions: 1 1 MakePeridoic: 0 PictureFile: g.rgb "
      "Priority: 2 Picture_bands: 1 image_above: no image_below: no endTexture");
  TCOcean_textures_input block_input;
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_STREQ(block_input.textures[0].picture_file, "g.rgb");
  EXPECT_EQ(block_input.textures[0].animation_flag, 0);
}

TEST(TextureBlock, WrongSurfaceTypeIsRefused) {
  std::istringstream in("Tidecast_data_file texture 2 2\nsurface_type: land\n");
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  EXPECT_EQ(block_input.process_texture_grid_input(in), 0);
  EXPECT_EQ(capture.text(), "Error processing texture input. Expected ocean but read land\n");
}

TEST(TextureBlock, WrongHeaderPrintsOnlyTheHeaderLines) {
  std::istringstream in("Tidecast_data_file scene 2 2\nsurface_type: ocean\n");
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  EXPECT_EQ(block_input.process_texture_grid_input(in), 0);
  EXPECT_EQ(capture.text(), "file type scene is not of \nexpected type texture\n");
}

TEST(TextureBlock, NewerReaderNeededIsRefusedSilently) {
  std::istringstream in("Tidecast_data_file texture 3 3\nsurface_type: ocean\n");
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  EXPECT_EQ(block_input.process_texture_grid_input(in), 0);
  EXPECT_EQ(capture.text(), "");
}

TEST(TextureBlock, MissingEndTextureIsRefused) {
  std::istringstream in(std::string(kHeader) + "number_of_textures: 1\n" +
                        plain_texture("h.rgb", 1) + "end\n");
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  EXPECT_EQ(block_input.process_texture_grid_input(in), 0);
  EXPECT_EQ(capture.text(), "Error reading ocean texture maps: Expected endTexture, read end\n");
}

TEST(TextureBlock, DifferentBandCountsAreRefused) {
  const std::string body = plain_texture("i.rgb", 1) + texture_text("j.rgb", 1, 3) +
                           "image_above: no\nimage_below: no\n";
  std::istringstream in(block(2, body));
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  EXPECT_EQ(block_input.process_texture_grid_input(in), 0);
  EXPECT_EQ(capture.text(), "Texture maps cannot have different numbers of bands.\n");
}

TEST(TextureBlock, EqualPrioritiesKeepFileOrder) {
  const std::string body = plain_texture("p0", 3) + plain_texture("p1", 7) +
                           plain_texture("p2", 3) + plain_texture("p3", 7) + plain_texture("p4", 0);
  std::istringstream in(block(5, body));
  TCOcean_textures_input block_input;
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  const int expected[5] = {1, 3, 0, 2, 4};
  for (int k = 0; k < 5; k++) EXPECT_EQ(block_input.order[k], expected[k]) << k;
}

TEST(TextureBlock, PriorityMinusOneIsNeverDrawnAndRepeatsTheLastPick) {
  const std::string body = plain_texture("q0", -1) + plain_texture("q1", 2) +
                           plain_texture("q2", -5) + plain_texture("q3", 0);
  std::istringstream in(block(4, body));
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(capture.text(), "");
  const int expected[4] = {1, 3, 3, 3};
  for (int k = 0; k < 4; k++) EXPECT_EQ(block_input.order[k], expected[k]) << k;
}

TEST(TextureBlock, OneTextureIsDrawnWhateverItsPriority) {
  std::istringstream in(block(1, plain_texture("r0", -3)));
  TCOcean_textures_input block_input;
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(block_input.order[0], 0);
}

TEST(TextureBlock, WriterFormat) {
  const std::string body = texture_text("a.rgb", 1, 2) +
                           side_text("image_above:", 1, 1, "0 0.5", "10 20") +
                           side_text("image_below:", 0, 0, "1 2", "3 4") +
                           texture_text("b.rgb", 0, 2) + "image_above: no\nimage_below: no\n";
  std::istringstream in(block(2, body));
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);  // alpha above only: the band mismatch line
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  std::ostringstream out;
  EXPECT_EQ(block_input.print_texture_grid_input(out), 1);
  const std::string texture_a =
      "Center: 0 0\nOrientation: 0\nDimensions: 100 50\nMakePeridoic: 1\nAnimationFlag: 0\n"
      "NewPictureFlag: 0\nPictureFile: a.rgb\nPriority: 1\n";
  const std::string texture_b =
      "Center: 0 0\nOrientation: 0\nDimensions: 100 50\nMakePeridoic: 1\nAnimationFlag: 0\n"
      "NewPictureFlag: 0\nPictureFile: b.rgb\nPriority: 0\n";
  EXPECT_EQ(out.str(),
            "Tidecast_data_file texture 2 2\n"
            "surface_type: ocean \n"
            "number_of_textures:  2\n" +
                texture_a +
                "Picture_bands: 2\n"
                "image_above:  yes \n"
                "reflection_flag:  1\n"
                "alpha_flag:  1\n"
                "min_radiance 0 0.5 \n"
                "max_radiance: 10 20 \n"
                "image_below: yes \n"
                "reflection_flag:  0\n"
                "alpha_flag: 0\n"
                "1 2 \n"
                "max_radiance: 3 4 \n" +
                texture_b +
                "Picture_bands: 2\n"
                "image_above: no \n"
                "image_below:  no \n"
                "endTexture\n");
}

TEST(TextureBlock, WrittenAboveSectionsReadBack) {
  std::istringstream in(block(1, texture_text("a.rgb", 4, 2) +
                                     side_text("image_above:", 1, 1, "0.25 0.5", "10 20") +
                                     "image_below: no\n"));
  TCOcean_textures_input written;
  ASSERT_EQ(written.process_texture_grid_input(in), 1);
  std::ostringstream out;
  written.print_texture_grid_input(out);
  std::istringstream again(out.str());
  TCOcean_textures_input second;
  ASSERT_EQ(second.process_texture_grid_input(again), 1);
  ASSERT_EQ(second.n_textures, 1);
  EXPECT_EQ(second.above_flag[0], 2);
  EXPECT_EQ(second.alpha_above[0], 1);
  EXPECT_EQ(second.textures[0].n_bands, 3);
  EXPECT_EQ(second.textures[0].min_above[1], 0.5);
  EXPECT_EQ(second.textures[0].max_above[2], 1.0);
  EXPECT_EQ(second.textures[0].priority, 4);
}

TEST(TextureBlock, WrittenBelowSectionIsOneTokenOffForTheReader) {
  std::istringstream in(block(1, texture_text("a.rgb", 0, 2) + "image_above: no\n" +
                                     side_text("image_below:", 0, 0, "1 2", "3 4")));
  TCOcean_textures_input written;
  ASSERT_EQ(written.process_texture_grid_input(in), 1);
  std::ostringstream out;
  written.print_texture_grid_input(out);
  EXPECT_NE(out.str().find("alpha_flag: 0\n1 2 \nmax_radiance: 3 4 \n"), std::string::npos);
  std::istringstream again(out.str());
  TCOcean_textures_input second;
  Stream_capture capture(std::cout);
  EXPECT_EQ(second.process_texture_grid_input(again), 0);
  EXPECT_EQ(capture.text(), "Error reading ocean texture maps: Expected endTexture, read \n");
}

double seconds_since(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(TextureBlock, HugeTextureCountInAShortFileFailsQuickly) {
  std::istringstream in(std::string(kHeader) + "number_of_textures: 2000000000\n" +
                        plain_texture("s0", 1));
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(block_input.process_texture_grid_input(in), 0);
  EXPECT_LT(seconds_since(start), 1.0);
  EXPECT_EQ(capture.text(), "Error reading ocean texture maps: Expected endTexture, read \n");
  EXPECT_EQ(block_input.n_textures, 2);  // the one read and the one cut short
}

TEST(TextureBlock, HugeBandCountInAShortFileFailsQuickly) {
  std::istringstream in(std::string(kHeader) + "number_of_textures: 1\n" +
                        texture_text("t0", 1, 2000000000) +
                        "image_above: yes reflection_flag: 0 alpha_flag: 1 min_radiance 1 2 3");
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(block_input.process_texture_grid_input(in), 0);
  EXPECT_LT(seconds_since(start), 1.0);
  EXPECT_EQ(capture.text(), "Error reading ocean texture maps: Expected endTexture, read \n");
}

TEST(TextureBlock, LargestBandCountDoesNotOverflow) {
  std::istringstream in(std::string(kHeader) + "number_of_textures: 1\n" +
                        texture_text("t1", 1, 2147483647) +
                        "image_above: yes reflection_flag: 0 alpha_flag: 1 min_radiance 1 2 3");
  TCOcean_textures_input block_input;
  Stream_capture capture(std::cout);
  EXPECT_EQ(block_input.process_texture_grid_input(in), 0);
}

TEST(TextureBlock, NegativeCountsReadNothing) {
  std::istringstream in(std::string(kHeader) + "number_of_textures: -4\nendTexture\n");
  TCOcean_textures_input block_input;
  EXPECT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(block_input.n_textures, -4);
  std::ostringstream out;
  block_input.print_texture_grid_input(out);

  std::istringstream bands(block(1, texture_text("u0", 1, -3) +
                                        "image_above: yes reflection_flag: 0 alpha_flag: 1 "
                                        "min_radiance max_radiance: image_below: no\n"));
  TCOcean_textures_input negative_bands;
  EXPECT_EQ(negative_bands.process_texture_grid_input(bands), 1);
}

TEST(TextureBlock, ExtremeFlagsAndCountsWrapWithoutFault) {
  std::istringstream in(block(1, texture_text("x0", 1, -2147483647 - 1) +
                                     "image_above: yes reflection_flag: 2147483647 alpha_flag: 1 "
                                     "min_radiance max_radiance: image_below: no\n"));
  TCOcean_textures_input block_input;
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  EXPECT_EQ(block_input.above_flag[0], -2147483647 - 1);
  std::ostringstream out;
  EXPECT_EQ(block_input.print_texture_grid_input(out), 1);
  EXPECT_NE(out.str().find("reflection_flag:  2147483647\n"), std::string::npos);
}

TEST(TextureBlock, ReadingAgainReplacesTheTextures) {
  TCOcean_textures_input block_input;
  std::istringstream first(block(2, plain_texture("v0", 1) + plain_texture("v1", 2)));
  ASSERT_EQ(block_input.process_texture_grid_input(first), 1);
  std::istringstream second(block(1, plain_texture("w0", 1)));
  ASSERT_EQ(block_input.process_texture_grid_input(second), 1);
  EXPECT_EQ(block_input.n_textures, 1);
  EXPECT_STREQ(block_input.textures[0].picture_file, "w0");
}

TEST(TextureBlock, ManyTexturesGrowPastTheFirstRoom) {
  std::string body;
  for (int i = 0; i < 40; i++) body += plain_texture("m" + std::to_string(i), i % 5);
  std::istringstream in(block(40, body));
  TCOcean_textures_input block_input;
  ASSERT_EQ(block_input.process_texture_grid_input(in), 1);
  ASSERT_EQ(block_input.n_textures, 40);
  EXPECT_STREQ(block_input.textures[39].picture_file, "m39");
  EXPECT_EQ(block_input.order[0], 4);  // first of the priority-4 textures
  EXPECT_EQ(block_input.order[1], 9);
  EXPECT_EQ(block_input.order[39], 35);  // last of the priority-0 textures
}

}  // namespace
