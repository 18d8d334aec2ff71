#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCDisturbance_inputs.h"
#include "TCGrid_details_input.h"
#include "details_test_helpers.h"
#include "stream_capture.h"

namespace {

// A whole block and detail file of every kind, as the ocean reader meets
// them one after the other.
struct Kind_text {
  int code;
  int carries_periodicity;
  const char* text;
};

const Kind_text kind_texts[] = {
    {1, 1,
     "n_points_x 256 0 n_points_y 128 1 dx 0.5 dy 0.25 spectrum_file: w.dat "
     "generate_file: yes random_seed 4711 end"},
    {-1, 0,
     "n_points_x 32 n_points_y 16 dx 1 dy 0.5 spectrum_file: a.dat generate_file: yes "
     "reflection_file: body.dat end radius: 5 n_theta: 64 n_k_radial: 128 k_min_radial: 0.01 "
     "dr_radial: 0.5 stretching_factor_x: 1 stretching_factor_y: 1 algorithm_method: 2 "
     "matching_method_flag: 1 bessel_table_flag: 1 table_size: 1000 table_increment: 0.02 end"},
    {-2, 0,
     "n_points_x 64 n_points_y 128 dx 4 dy 2 spectrum_file: u.dat generate_file: no "
     "deformation_file: rise.dat end initial_height: 0.25 final_height: 1.5 "
     "evolution_time: 30 width: 10"},
    {-3, 0, "position_x 10 position_y -5 angle 90 end"},
    {-4, 0,
     "n_points_x 256 n_points_y 1 dx 0.05 dy 0.05 spectrum_file: none.dat generate_file: no "
     "ripple_file: splash.dat position_x: 12.5 position_y: -3 end "
     "Tidecast_data_file ripple 1 1 start_time: 2.5 radius: 0.3 velocity: 1.5 n_r: 256 dr: 0.1"},
    {-5, 0,
     "n_points_x 128 n_points_y 64 dx 2 dy 4 spectrum_file: s.dat generate_file: no "
     "swell_file: my_swell.dat end swell_height: 0.5 swell_wavelenth: 120 long_spread: 0.1 "
     "trans_spread: 0.2 direction: 30 random_seed: 7 end"},
    {-6, 0,
     "n_points_x 512 n_points_y 128 dx 1 dy 0.5 spectrum_file: none.dat generate_file: no "
     "wake_file: w.dat position_x: 100 position_y: 50 direction: 45 velocity: 7.5 end "
     "Tidecast_data_file wake 1 1 generate_wake: yes wake_file_name: wake.hdf "
     "boat_shape: ellipse boat_length: 40 boat_width: 8 boat_depth: 2 damping_eps: 0.01 "
     "damping_us: 2 end"},
    {-7, 0,
     "n_points_x 100 n_points_y 50 dx 0.2 dy 0.4 height_detail_file: bump.dat position_x: 10 "
     "position_y: -4 orientation: 30 velocity: 2 direction: 90 end "
     "Tidecast_data_file height_grid 2 2 height_file_name: bump.hdf periodicity: 1 0 "
     "number_of_scaling_key_times: 3 time scale 0 0 10 2 12.5 -0.25 end"},
    {-8, 0,
     "n_points_x 100 n_points_y 50 dx 0.2 dy 0.4 multiplier_detail_file: m.dat position_x: 10 "
     "position_y: -4 orientation: 30 velocity: 2 direction: 90 end "
     "Tidecast_data_file multiplier_grid 2 2 multiplier_file_name: m.hdf periodicity: 0 0 "
     "number_of_scaling_key_times: 2 time scale 0 1 10 2 end"},
    {-9, 0,
     "n_points_x 256 n_points_y 64 dx 0.5 dy 0.25 boat_file: ferry.dat position_x: -20 "
     "position_y: 30 direction: 135 velocity: 5 end "
     "Tidecast_data_file boat 2 2 number_of_hull_points: 4 -10 -2 10 -2 12 0 10 2 end "
     "boat_hull_depth: file hull_file: h.hdf hull_dx: 1 hull_dy: 1 hull_scaling: 2 end "
     "wake_type: kelvin use_initial_wake: yes wake_file_name: k.hdf eps0: 0.1 us: 1 "
     "slope_threshold: 0 couple_to_ocean_waves: yes use_initial_wake: yes "
     "wake_file_name: d.dat reference_time: 0 initialization_interval: 1 time_increment: 0.1 "
     "acceleration_threshold: 0 end"},
};

// Both parts read from one stream; 1 only when both succeed.
int read_both(const Kind_text& kind, const std::string& text) {
  TCGrid_details_input* record = new_grid_details_input(kind.code);
  record->carries_periodicity = kind.carries_periodicity;
  std::istringstream in(text);
  Stream_capture quiet(std::cout);
  const int result = record->read_grid_block(in) && record->read_detail_file(in);
  delete record;
  return result;
}

TEST(DisturbanceHostileInput, EveryWholeTextReads) {
  for (const Kind_text& kind : kind_texts) {
    EXPECT_EQ(read_both(kind, kind.text), 1) << kind.code;
  }
}

TEST(DisturbanceHostileInput, TextCutBeforeItsLastWordNeverReads) {
  for (const Kind_text& kind : kind_texts) {
    const std::string text = kind.text;
    const size_t last_word = text.find_last_of(' ') + 1;
    for (size_t cut = 0; cut < last_word; cut++) {
      EXPECT_EQ(read_both(kind, text.substr(0, cut)), 0) << kind.code << " cut at " << cut;
    }
  }
}

TEST(DisturbanceHostileInput, WordsInPlaceOfNumbersNeverRead) {
  for (const Kind_text& kind : kind_texts) {
    const std::string text = kind.text;
    // Each number in turn becomes a word.
    size_t at = 0;
    int replaced = 0;
    while ((at = text.find_first_of("-0123456789", at)) != std::string::npos) {
      const size_t end = text.find(' ', at);
      const bool starts_token = at == 0 || text[at - 1] == ' ';
      if (starts_token) {
        std::string broken = text;
        broken.replace(at, (end == std::string::npos ? text.size() : end) - at, "x");
        EXPECT_EQ(read_both(kind, broken), 0) << kind.code << ": " << broken;
        replaced++;
      }
      at = end == std::string::npos ? text.size() : end;
    }
    EXPECT_GT(replaced, 0);
  }
}

TEST(DisturbanceHostileInput, WildCountsFailWithoutTakingTheirMemory) {
  const char* const texts[] = {
      "Tidecast_data_file height_grid 2 2 h a.hdf p 0 0 n 2147483647 t s 1 2 end",
      "Tidecast_data_file height_grid 2 2 h a.hdf p 0 0 n -2147483648 t s end",
      "Tidecast_data_file height_grid 2 2 h a.hdf p 0 0 n 99999999999 t s end",
  };
  for (const char* text : texts) {
    TCGrid_details_input* height = new_grid_details_input(-7);
    std::string printed;
    EXPECT_EQ(read_detail(*height, text, printed), 0) << text;
    delete height;
  }
  const char* const boats[] = {
      "Tidecast_data_file boat 2 2 number_of_hull_points: 2147483647 1 2 end",
      "Tidecast_data_file boat 2 2 number_of_hull_points: -2147483648 end boat_hull_depth: "
      "constant hull_depth: 1 end wake_type: none couple_to_ocean_waves: no end",
  };
  TCGrid_details_input* boat = new_grid_details_input(-9);
  std::string printed;
  EXPECT_EQ(read_detail(*boat, boats[0], printed), 0);
  EXPECT_EQ(read_detail(*boat, boats[1], printed), 1);
  delete boat;
}

}  // namespace
