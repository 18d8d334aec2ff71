#ifndef TC_OCEAN_WORDS_H
#define TC_OCEAN_WORDS_H

// The words of the ocean file and its whitecap file and the codes they stand
// for. Each table is a pair: word to code, and code to the word the writer
// puts on file, null for a code that has no word. Complaints about unknown
// words go to standard output; a word without a complaint silently gives the
// table's fallback code.

// "ocean_spectrum_type:".
const int ocean_spectrum_flat = 0;
const int ocean_spectrum_phillips = 101;
const int ocean_spectrum_dp = 102;
const int ocean_spectrum_phillips_smoothed = 103;
const int ocean_spectrum_glassy = 104;

// "flat" 0, "phillips" 101, "dp" 102, "phillips_smoothed", "yes", "Yes",
// "YES" 103, "glassy" 104; anything else prints
// "Unrecognized surface waves type: " and the word, and gives 0.
int ocean_spectrum_code(const char* word);
// "flat", "phillips", "dp", "phillips_smoothed", "glassy".
const char* ocean_spectrum_word(int code);

// "disturbance_type:": the class of a detail lattice.
const int ocean_disturbance_none = 0;
const int ocean_disturbance_grid = 1;
const int ocean_disturbance_reflect = -1;
const int ocean_disturbance_deform = -2;
const int ocean_disturbance_reflect_wall = -3;
const int ocean_disturbance_ripple = -4;
const int ocean_disturbance_swell = -5;
const int ocean_disturbance_wake = -6;
const int ocean_disturbance_height_grid = -7;
const int ocean_disturbance_multiplier_grid = -8;
const int ocean_disturbance_boat = -9;

// "yes" 1, "no" 0, "reflect" and "reflect_object" -1, "deform" -2,
// "reflect_wall" -3, "ripple" -4, "swell" -5, "wake" -6, "height_grid" -7,
// "multiplier_grid" -8, "boat" -9; anything else prints "illegal ocean type "
// and the word, and gives 0.
int ocean_disturbance_type_code(const char* word);
// -1 is written "reflect_object"; "reflect" is accepted only on reading.
const char* ocean_disturbance_type_word(int code);

// "external_exact:": exact rays to the objects around the surface.
const int ocean_external_exact_none = 0;
const int ocean_external_exact_yes = 1;
const int ocean_external_exact_no_air = 3;

// "yes" 1, "yes_no_air" 3, anything else 0.
int ocean_external_exact_code(const char* word);
// 0 is written "no".
const char* ocean_external_exact_word(int code);

// "include:": which side of the surface the exact rays serve.
const int ocean_include_nothing = 0;
const int ocean_include_above = 1;
const int ocean_include_below = 2;
const int ocean_include_everything = 3;

// "nothing" 0, "above" 1, "below" 2, "everything" 3; anything else 0.
int ocean_include_code(const char* word);
const char* ocean_include_word(int code);

// "glitter:".
const int ocean_glitter_off = 0;
const int ocean_glitter_yes = 1;
const int ocean_glitter_enhanced = 200;
const int ocean_glitter_exact_enhanced = 201;
const int ocean_glitter_exact = 202;

// "yes" 1, "enhanced" 200, "exactenhanced" 201, "exact" 202, anything else 0.
int ocean_glitter_code(const char* word);
// 0 is written "no".
const char* ocean_glitter_word(int code);

// "reflection_method:".
const int ocean_reflection_specular = 0;
const int ocean_reflection_averaged = 1;
const int ocean_reflection_total = 2;

// "averaged" 1, "total" 2, anything else 0.
int ocean_reflection_method_code(const char* word);
// 0 is written "specular".
const char* ocean_reflection_method_word(int code);

// "render_disturbances_interior:".
const int ocean_interior_black = 0;
const int ocean_interior_flat = 1;
const int ocean_interior_natural = 2;

// "black" 0, "flat" 1, "natural" 2; anything else 0.
int ocean_interior_code(const char* word);
const char* ocean_interior_word(int code);

// "surface_type:": "round" 1, anything else 0 (a flat sea).
int ocean_surface_type_code(const char* word);
// "flat", "round".
const char* ocean_surface_type_word(int code);

// The yes-or-no switches of the file (variable_wind, generate_file,
// shadow_method, sharpening_type, saturation_type, whitecaps, texture_maps,
// cusps, exclude_items): only "yes" sets one.
int ocean_yes_no_code(const char* word);
// "no" 0, "yes" 1.
const char* ocean_yes_no_word(int code);

// "exclude_items:": bits of the exclusion mask.
const int ocean_exclude_glitter = 1;
const int ocean_exclude_textures = 2;
const int ocean_exclude_whitecaps = 4;

// "glitter" 1, "textures" 2, "whitecaps" 4; any other word prints the word
// and " is invalid item to exclude - cannot continue", and gives 0, on which
// the reader stops.
int ocean_exclude_item_code(const char* word);
// A single bit's word; null for 0 and for combined masks.
const char* ocean_exclude_item_word(int code);

// "whitecap_generation:" of the whitecap file: where the foam state comes
// from and goes to.
const int whitecap_generation_none = 0;
const int whitecap_generation_input = 1;
const int whitecap_generation_output = -1;
const int whitecap_generation_input_by_frames = -2;
const int whitecap_generation_output_by_frames = -3;
const int whitecap_generation_input_initial_output_by_frames = 2;

// "input" 1, "output" -1, "input_by_frames" -2, "output_by_frames" -3,
// "input_initial_output_by_frames" 2, anything else 0.
int whitecap_generation_code(const char* word);
// 0 is written "no".
const char* whitecap_generation_word(int code);

// "small_scale_fluctuations:" of the whitecap file.
const int whitecap_fluctuations_none = 0;
const int whitecap_fluctuations_lattice = 1;
const int whitecap_fluctuations_texture = 2;

// "yes" 1, "texture" 2, anything else 0.
int whitecap_fluctuations_code(const char* word);
// 0 is written "no".
const char* whitecap_fluctuations_word(int code);

#endif
