#include <gtest/gtest.h>

#include <iostream>
#include <string>

#include "TCOcean_words.h"
#include "stream_capture.h"

namespace {

struct Pair {
  const char* word;
  int code;
};

// Each word reads to its code without a word printed.
void expect_words_read(int (*to_code)(const char*), const Pair* pairs, int count) {
  for (int i = 0; i < count; ++i) {
    Stream_capture out(std::cout);
    EXPECT_EQ(pairs[i].code, to_code(pairs[i].word)) << pairs[i].word;
    EXPECT_EQ("", out.text()) << pairs[i].word;
  }
}

// Each code writes as its word.
void expect_codes_written(const char* (*to_word)(int), const Pair* pairs, int count) {
  for (int i = 0; i < count; ++i) {
    const char* word = to_word(pairs[i].code);
    ASSERT_NE(nullptr, word) << pairs[i].code;
    EXPECT_STREQ(pairs[i].word, word) << pairs[i].code;
  }
}

// A word outside the table reads silently as fallback.
void expect_silent_fallback(int (*to_code)(const char*), const char* word, int fallback) {
  Stream_capture out(std::cout);
  EXPECT_EQ(fallback, to_code(word)) << word;
  EXPECT_EQ("", out.text()) << word;
}

}  // namespace

TEST(OceanWords, SpectrumWordsAndTheirCodes) {
  const Pair read[] = {{"flat", 0},  {"phillips", 101}, {"dp", 102},  {"phillips_smoothed", 103},
                       {"yes", 103}, {"Yes", 103},      {"YES", 103}, {"glassy", 104}};
  expect_words_read(ocean_spectrum_code, read, 8);
  const Pair written[] = {
      {"flat", 0}, {"phillips", 101}, {"dp", 102}, {"phillips_smoothed", 103}, {"glassy", 104}};
  expect_codes_written(ocean_spectrum_word, written, 5);
  EXPECT_EQ(nullptr, ocean_spectrum_word(100));
  EXPECT_EQ(nullptr, ocean_spectrum_word(1));
}

TEST(OceanWords, UnknownSpectrumWordComplainsAndGivesFlat) {
  Stream_capture out(std::cout);
  EXPECT_EQ(0, ocean_spectrum_code("pierson"));
  EXPECT_EQ("Unrecognized surface waves type: pierson\n", out.text());
}

TEST(OceanWords, SpectrumWordsAreCaseSensitive) {
  Stream_capture out(std::cout);
  EXPECT_EQ(0, ocean_spectrum_code("Phillips"));
  EXPECT_EQ("Unrecognized surface waves type: Phillips\n", out.text());
}

TEST(OceanWords, DisturbanceWordsAndTheirCodes) {
  const Pair read[] = {{"yes", 1},
                       {"no", 0},
                       {"deform", -2},
                       {"reflect", -1},
                       {"reflect_object", -1},
                       {"reflect_wall", -3},
                       {"ripple", -4},
                       {"swell", -5},
                       {"wake", -6},
                       {"height_grid", -7},
                       {"multiplier_grid", -8},
                       {"boat", -9}};
  expect_words_read(ocean_disturbance_type_code, read, 12);
  const Pair written[] = {{"yes", 1},
                          {"no", 0},
                          {"reflect_object", -1},
                          {"deform", -2},
                          {"reflect_wall", -3},
                          {"ripple", -4},
                          {"swell", -5},
                          {"wake", -6},
                          {"height_grid", -7},
                          {"multiplier_grid", -8},
                          {"boat", -9}};
  expect_codes_written(ocean_disturbance_type_word, written, 11);
  EXPECT_EQ(nullptr, ocean_disturbance_type_word(-10));
  EXPECT_EQ(nullptr, ocean_disturbance_type_word(2));
}

TEST(OceanWords, UnknownDisturbanceWordComplainsAndGivesZero) {
  Stream_capture out(std::cout);
  EXPECT_EQ(0, ocean_disturbance_type_code("kelvin"));
  EXPECT_EQ("illegal ocean type kelvin\n", out.text());
}

TEST(OceanWords, ExternalCouplingWords) {
  const Pair read[] = {{"yes", 1}, {"yes_no_air", 3}, {"no", 0}};
  expect_words_read(ocean_external_exact_code, read, 3);
  expect_silent_fallback(ocean_external_exact_code, "maybe", 0);
  expect_codes_written(ocean_external_exact_word, read, 3);
  EXPECT_EQ(nullptr, ocean_external_exact_word(2));
}

TEST(OceanWords, IncludeWords) {
  const Pair pairs[] = {{"nothing", 0}, {"above", 1}, {"below", 2}, {"everything", 3}};
  expect_words_read(ocean_include_code, pairs, 4);
  expect_codes_written(ocean_include_word, pairs, 4);
  expect_silent_fallback(ocean_include_code, "sideways", 0);
  EXPECT_EQ(nullptr, ocean_include_word(4));
  EXPECT_EQ(nullptr, ocean_include_word(-1));
}

TEST(OceanWords, GlitterWordsWriteNoForOff) {
  const Pair pairs[] = {
      {"yes", 1}, {"enhanced", 200}, {"exactenhanced", 201}, {"exact", 202}, {"no", 0}};
  expect_words_read(ocean_glitter_code, pairs, 5);
  expect_codes_written(ocean_glitter_word, pairs, 5);
  expect_silent_fallback(ocean_glitter_code, "sparkle", 0);
  EXPECT_EQ(nullptr, ocean_glitter_word(2));
  EXPECT_EQ(nullptr, ocean_glitter_word(203));
}

TEST(OceanWords, ReflectionMethodWritesSpecularForZero) {
  const Pair pairs[] = {{"averaged", 1}, {"total", 2}, {"specular", 0}};
  expect_words_read(ocean_reflection_method_code, pairs, 3);
  expect_codes_written(ocean_reflection_method_word, pairs, 3);
  expect_silent_fallback(ocean_reflection_method_code, "mirror", 0);
  EXPECT_EQ(nullptr, ocean_reflection_method_word(3));
}

TEST(OceanWords, InteriorRenderingWords) {
  const Pair pairs[] = {{"black", 0}, {"flat", 1}, {"natural", 2}};
  expect_words_read(ocean_interior_code, pairs, 3);
  expect_codes_written(ocean_interior_word, pairs, 3);
  expect_silent_fallback(ocean_interior_code, "white", 0);
  EXPECT_EQ(nullptr, ocean_interior_word(3));
}

TEST(OceanWords, SurfaceTypeIsRoundOnlyForRound) {
  const Pair pairs[] = {{"round", 1}, {"flat", 0}};
  expect_words_read(ocean_surface_type_code, pairs, 2);
  expect_codes_written(ocean_surface_type_word, pairs, 2);
  expect_silent_fallback(ocean_surface_type_code, "Round", 0);
  EXPECT_EQ(nullptr, ocean_surface_type_word(2));
}

TEST(OceanWords, OnlyYesSetsASwitch) {
  const Pair pairs[] = {{"yes", 1}, {"no", 0}};
  expect_words_read(ocean_yes_no_code, pairs, 2);
  expect_codes_written(ocean_yes_no_word, pairs, 2);
  expect_silent_fallback(ocean_yes_no_code, "Yes", 0);
  expect_silent_fallback(ocean_yes_no_code, "1", 0);
  EXPECT_EQ(nullptr, ocean_yes_no_word(2));
}

TEST(OceanWords, ExclusionItemsAreMaskBits) {
  const Pair pairs[] = {{"glitter", 1}, {"textures", 2}, {"whitecaps", 4}};
  expect_words_read(ocean_exclude_item_code, pairs, 3);
  expect_codes_written(ocean_exclude_item_word, pairs, 3);
  EXPECT_EQ(nullptr, ocean_exclude_item_word(0));
  EXPECT_EQ(nullptr, ocean_exclude_item_word(3));
  EXPECT_EQ(nullptr, ocean_exclude_item_word(7));
}

TEST(OceanWords, UnknownExclusionItemComplainsAndGivesZero) {
  Stream_capture out(std::cout);
  EXPECT_EQ(0, ocean_exclude_item_code("spray"));
  EXPECT_EQ("spray is invalid item to exclude - cannot continue\n", out.text());
}

TEST(OceanWords, WhitecapGenerationWordsWriteNoForNone) {
  const Pair pairs[] = {{"input", 1},
                        {"output", -1},
                        {"input_by_frames", -2},
                        {"output_by_frames", -3},
                        {"input_initial_output_by_frames", 2},
                        {"no", 0}};
  expect_words_read(whitecap_generation_code, pairs, 6);
  expect_codes_written(whitecap_generation_word, pairs, 6);
  expect_silent_fallback(whitecap_generation_code, "both", 0);
  EXPECT_EQ(nullptr, whitecap_generation_word(3));
  EXPECT_EQ(nullptr, whitecap_generation_word(-4));
}

TEST(OceanWords, SmallScaleFluctuationWords) {
  const Pair pairs[] = {{"yes", 1}, {"texture", 2}, {"no", 0}};
  expect_words_read(whitecap_fluctuations_code, pairs, 3);
  expect_codes_written(whitecap_fluctuations_word, pairs, 3);
  expect_silent_fallback(whitecap_fluctuations_code, "textures", 0);
  EXPECT_EQ(nullptr, whitecap_fluctuations_word(3));
}

TEST(OceanWords, EveryWrittenWordReadsBackToItsCode) {
  const int spectra[] = {0, 101, 102, 103, 104};
  for (int code : spectra) EXPECT_EQ(code, ocean_spectrum_code(ocean_spectrum_word(code)));
  for (int code = -9; code <= 1; ++code) {
    EXPECT_EQ(code, ocean_disturbance_type_code(ocean_disturbance_type_word(code)));
  }
  const int glitters[] = {0, 1, 200, 201, 202};
  for (int code : glitters) EXPECT_EQ(code, ocean_glitter_code(ocean_glitter_word(code)));
  const int couplings[] = {0, 1, 3};
  for (int code : couplings) {
    EXPECT_EQ(code, ocean_external_exact_code(ocean_external_exact_word(code)));
  }
  for (int code = 0; code <= 2; ++code) {
    EXPECT_EQ(code, ocean_reflection_method_code(ocean_reflection_method_word(code)));
    EXPECT_EQ(code, ocean_interior_code(ocean_interior_word(code)));
    EXPECT_EQ(code, whitecap_fluctuations_code(whitecap_fluctuations_word(code)));
  }
  for (int code = -3; code <= 2; ++code) {
    EXPECT_EQ(code, whitecap_generation_code(whitecap_generation_word(code)));
  }
}

TEST(OceanWords, NullWordIsHandledAsUnknown) {
  EXPECT_EQ(0, ocean_include_code(nullptr));
  EXPECT_EQ(0, ocean_yes_no_code(nullptr));
  Stream_capture out(std::cout);
  EXPECT_EQ(0, ocean_spectrum_code(nullptr));
  EXPECT_EQ(0, ocean_disturbance_type_code(nullptr));
  EXPECT_EQ("Unrecognized surface waves type: \nillegal ocean type \n", out.text());
}
