#include "TCOcean_words.h"

#include <cstring>
#include <iostream>

namespace {

struct Word_code {
  const char* word;
  int code;
};

// Position of word in the table, or -1; a null word matches nothing.
int find_word(const Word_code* table, int count, const char* word) {
  if (word == nullptr) return -1;
  for (int i = 0; i < count; ++i) {
    if (std::strcmp(table[i].word, word) == 0) return i;
  }
  return -1;
}

// The first word listed for code: where a code has several words, the
// first is the one written.
const char* find_code(const Word_code* table, int count, int code) {
  for (int i = 0; i < count; ++i) {
    if (table[i].code == code) return table[i].word;
  }
  return nullptr;
}

// Word to code, fallback when the word is not in the table.
int code_or(const Word_code* table, int count, const char* word, int fallback) {
  const int i = find_word(table, count, word);
  return i < 0 ? fallback : table[i].code;
}

const char* text_of(const char* word) {
  return word ? word : "";
}

const Word_code spectrum_words[] = {
    {"flat", ocean_spectrum_flat},
    {"phillips", ocean_spectrum_phillips},
    {"dp", ocean_spectrum_dp},
    {"phillips_smoothed", ocean_spectrum_phillips_smoothed},
    {"yes", ocean_spectrum_phillips_smoothed},
    {"Yes", ocean_spectrum_phillips_smoothed},
    {"YES", ocean_spectrum_phillips_smoothed},
    {"glassy", ocean_spectrum_glassy},
};
const int n_spectrum_words = sizeof(spectrum_words) / sizeof(spectrum_words[0]);

const Word_code disturbance_words[] = {
    {"yes", ocean_disturbance_grid},
    {"no", ocean_disturbance_none},
    {"deform", ocean_disturbance_deform},
    // The writer gives the first word of a code: "reflect" is read only.
    {"reflect_object", ocean_disturbance_reflect},
    {"reflect", ocean_disturbance_reflect},
    {"reflect_wall", ocean_disturbance_reflect_wall},
    {"ripple", ocean_disturbance_ripple},
    {"swell", ocean_disturbance_swell},
    {"wake", ocean_disturbance_wake},
    {"height_grid", ocean_disturbance_height_grid},
    {"multiplier_grid", ocean_disturbance_multiplier_grid},
    {"boat", ocean_disturbance_boat},
};
const int n_disturbance_words = sizeof(disturbance_words) / sizeof(disturbance_words[0]);

// "no" stands last so that it is written for 0 without being read as a word
// of its own: any unknown word gives 0 too.
const Word_code external_exact_words[] = {
    {"yes", ocean_external_exact_yes},
    {"yes_no_air", ocean_external_exact_no_air},
    {"no", ocean_external_exact_none},
};
const int n_external_exact_words = sizeof(external_exact_words) / sizeof(external_exact_words[0]);

const Word_code include_words[] = {
    {"nothing", ocean_include_nothing},
    {"above", ocean_include_above},
    {"below", ocean_include_below},
    {"everything", ocean_include_everything},
};
const int n_include_words = sizeof(include_words) / sizeof(include_words[0]);

const Word_code glitter_words[] = {
    {"yes", ocean_glitter_yes},
    {"enhanced", ocean_glitter_enhanced},
    {"exactenhanced", ocean_glitter_exact_enhanced},
    {"exact", ocean_glitter_exact},
    {"no", ocean_glitter_off},
};
const int n_glitter_words = sizeof(glitter_words) / sizeof(glitter_words[0]);

const Word_code reflection_words[] = {
    {"averaged", ocean_reflection_averaged},
    {"total", ocean_reflection_total},
    {"specular", ocean_reflection_specular},
};
const int n_reflection_words = sizeof(reflection_words) / sizeof(reflection_words[0]);

const Word_code interior_words[] = {
    {"black", ocean_interior_black},
    {"flat", ocean_interior_flat},
    {"natural", ocean_interior_natural},
};
const int n_interior_words = sizeof(interior_words) / sizeof(interior_words[0]);

const Word_code surface_words[] = {
    {"round", 1},
    {"flat", 0},
};
const int n_surface_words = sizeof(surface_words) / sizeof(surface_words[0]);

const Word_code yes_no_words[] = {
    {"yes", 1},
    {"no", 0},
};
const int n_yes_no_words = sizeof(yes_no_words) / sizeof(yes_no_words[0]);

const Word_code exclude_words[] = {
    {"glitter", ocean_exclude_glitter},
    {"textures", ocean_exclude_textures},
    {"whitecaps", ocean_exclude_whitecaps},
};
const int n_exclude_words = sizeof(exclude_words) / sizeof(exclude_words[0]);

const Word_code generation_words[] = {
    {"input", whitecap_generation_input},
    {"output", whitecap_generation_output},
    {"input_by_frames", whitecap_generation_input_by_frames},
    {"output_by_frames", whitecap_generation_output_by_frames},
    {"input_initial_output_by_frames", whitecap_generation_input_initial_output_by_frames},
    {"no", whitecap_generation_none},
};
const int n_generation_words = sizeof(generation_words) / sizeof(generation_words[0]);

const Word_code fluctuation_words[] = {
    {"yes", whitecap_fluctuations_lattice},
    {"texture", whitecap_fluctuations_texture},
    {"no", whitecap_fluctuations_none},
};
const int n_fluctuation_words = sizeof(fluctuation_words) / sizeof(fluctuation_words[0]);

}  // namespace

int ocean_spectrum_code(const char* word) {
  const int i = find_word(spectrum_words, n_spectrum_words, word);
  if (i >= 0) return spectrum_words[i].code;
  std::cout << "Unrecognized surface waves type: " << text_of(word) << "\n";
  return ocean_spectrum_flat;
}

const char* ocean_spectrum_word(int code) {
  return find_code(spectrum_words, n_spectrum_words, code);
}

int ocean_disturbance_type_code(const char* word) {
  const int i = find_word(disturbance_words, n_disturbance_words, word);
  if (i >= 0) return disturbance_words[i].code;
  std::cout << "illegal ocean type " << text_of(word) << "\n";
  return ocean_disturbance_none;
}

const char* ocean_disturbance_type_word(int code) {
  return find_code(disturbance_words, n_disturbance_words, code);
}

int ocean_external_exact_code(const char* word) {
  return code_or(external_exact_words, n_external_exact_words, word, ocean_external_exact_none);
}

const char* ocean_external_exact_word(int code) {
  return find_code(external_exact_words, n_external_exact_words, code);
}

int ocean_include_code(const char* word) {
  return code_or(include_words, n_include_words, word, ocean_include_nothing);
}

const char* ocean_include_word(int code) {
  return find_code(include_words, n_include_words, code);
}

int ocean_glitter_code(const char* word) {
  return code_or(glitter_words, n_glitter_words, word, ocean_glitter_off);
}

const char* ocean_glitter_word(int code) {
  return find_code(glitter_words, n_glitter_words, code);
}

int ocean_reflection_method_code(const char* word) {
  return code_or(reflection_words, n_reflection_words, word, ocean_reflection_specular);
}

const char* ocean_reflection_method_word(int code) {
  return find_code(reflection_words, n_reflection_words, code);
}

int ocean_interior_code(const char* word) {
  return code_or(interior_words, n_interior_words, word, ocean_interior_black);
}

const char* ocean_interior_word(int code) {
  return find_code(interior_words, n_interior_words, code);
}

int ocean_surface_type_code(const char* word) {
  return code_or(surface_words, n_surface_words, word, 0);
}

const char* ocean_surface_type_word(int code) {
  return find_code(surface_words, n_surface_words, code);
}

int ocean_yes_no_code(const char* word) {
  return code_or(yes_no_words, n_yes_no_words, word, 0);
}

const char* ocean_yes_no_word(int code) {
  return find_code(yes_no_words, n_yes_no_words, code);
}

int ocean_exclude_item_code(const char* word) {
  const int i = find_word(exclude_words, n_exclude_words, word);
  if (i >= 0) return exclude_words[i].code;
  std::cout << text_of(word) << " is invalid item to exclude - cannot continue\n";
  return 0;
}

const char* ocean_exclude_item_word(int code) {
  return find_code(exclude_words, n_exclude_words, code);
}

int whitecap_generation_code(const char* word) {
  return code_or(generation_words, n_generation_words, word, whitecap_generation_none);
}

const char* whitecap_generation_word(int code) {
  return find_code(generation_words, n_generation_words, code);
}

int whitecap_fluctuations_code(const char* word) {
  return code_or(fluctuation_words, n_fluctuation_words, word, whitecap_fluctuations_none);
}

const char* whitecap_fluctuations_word(int code) {
  return find_code(fluctuation_words, n_fluctuation_words, code);
}
