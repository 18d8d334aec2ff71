#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "ocean_input.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// Where each token of a text ends.
std::vector<size_t> token_ends(const std::string& text) {
  std::vector<size_t> ends;
  size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) i++;
    if (i == text.size()) break;
    while (i < text.size() && !std::isspace(static_cast<unsigned char>(text[i]))) i++;
    ends.push_back(i);
  }
  return ends;
}

std::string last_line(const std::string& printed) {
  if (printed.empty()) return "";
  const size_t end = printed.size() - 1;
  const size_t start = printed.rfind('\n', end - 1);
  return printed.substr(start == std::string::npos ? 0 : start + 1,
                        end - (start == std::string::npos ? 0 : start + 1));
}

// Index of the token that is word, counted from 0.
size_t token_index(const std::string& text, const std::vector<size_t>& ends,
                   const std::string& word) {
  const size_t at = text.find("\n" + word) + 1;
  for (size_t i = 0; i < ends.size(); i++) {
    if (ends[i] > at) return i;
  }
  return ends.size();
}

TEST(OceanInputHostile, FullFileCutAfterEveryTokenFailsWithItsReport) {
  const std::string text = file_text(ocean_data_dir() + "/full_ocean.dat");
  const std::vector<size_t> ends = token_ends(text);
  ASSERT_GT(ends.size(), 200u);
  // From the box depth on, a cut leaves the stream failed and only the
  // closing check speaks; inside the texture block the block does.
  const size_t first_plain = token_index(text, ends, "box_depth");
  const size_t texture_first = token_index(text, ends, "texture_maps:") + 2;
  const size_t texture_last = token_index(text, ends, "endTexture");
  const std::set<std::string> reports = {
      "unable to process ocean file ",
      "unable to process primary grid ",
      "unable to process secondary grid ",
      "unable to process disturbance stream of yes",
      "unable to process disturbance stream of no",
      "ocean input file is invalid, read  instead of end",
  };

  Working_folder here(ocean_data_dir());
  ASSERT_TRUE(here.ok());
  for (size_t k = 0; k < ends.size(); k++) {
    const std::string cut = k == 0 ? "" : text.substr(0, ends[k - 1]);
    ocean_input ocean;
    std::string printed;
    ASSERT_EQ(read_ocean_text(ocean, cut, printed), 0) << k << " tokens";
    if (k >= first_plain && (k < texture_first || k > texture_last)) {
      EXPECT_EQ(printed, "ocean input file is invalid, read  instead of end\n") << k << " tokens";
    } else if (k >= texture_first && k <= texture_last) {
      EXPECT_EQ(last_line(printed), "unable to process ocean texture maps ") << k << " tokens";
    } else {
      EXPECT_EQ(reports.count(last_line(printed)), 1u) << k << " tokens: " << printed;
    }
  }
  // The whole file reads.
  ocean_input ocean;
  std::string printed;
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
}

TEST(OceanInputHostile, WrongTypesStopTheStreamAndAreShownAtTheEnd) {
  struct Case {
    const char* from;
    const char* to;
    const char* message;
  };
  const Case cases[] = {
      {"box_depth  25", "box_depth  deep",
       "ocean input file is invalid, read deep instead of end\n"},
      {"number_aux_oceans  0", "number_aux_oceans  none",
       "ocean input file is invalid, read none instead of end\n"},
      {"number_of_bands:  1", "number_of_bands:  one",
       "ocean input file is invalid, read one instead of end\n"},
      {"band_ids:  7", "band_ids:  seven",
       "ocean input file is invalid, read seven instead of end\n"},
      {"jerlov_water_type:  3", "jerlov_water_type:  clear",
       "ocean input file is invalid, read clear instead of end\n"},
      {"n_points_x 32 1", "n_points_x wide 1",
       "grid input file is invalid, read wide instead of end\nunable to process primary grid \n"},
  };
  for (const Case& each : cases) {
    ocean_input ocean;
    std::string printed;
    EXPECT_EQ(read_ocean_text(ocean, replaced(plain_ocean(5), each.from, each.to), printed), 0)
        << each.to;
    EXPECT_EQ(printed, each.message) << each.to;
  }
}

TEST(OceanInputHostile, NegativeDisturbanceCountReadsTheInteriorLineAndNoRecords) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(5), "number_disturbances  0\n",
               "number_disturbances  -3\nrender_disturbances_interior: flat\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.n_disturbances, 0);
  EXPECT_EQ(ocean.render_disturbances_interior, 1);
}

TEST(OceanInputHostile, HugeDisturbanceCountInAShortFileEndsAtTheFirstBadBlock) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(5), "number_disturbances  0\n",
               "number_disturbances  2000000000\nrender_disturbances_interior: flat\n"
               "disturbance_type: yes\n" +
                   grid_block(2, 2, "a"));
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  // The second record takes the box depth's lines for its own.
  EXPECT_EQ(last_line(printed), "unable to process disturbance stream of 25");
  EXPECT_EQ(ocean.n_disturbances, 2);
}

TEST(OceanInputHostile, HugeBandCountInAShortFileCostsNothingAndIsShownAtTheEnd) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(5), "number_of_bands:  1", "number_of_bands:  2000000000");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed, "ocean input file is invalid, read index_of_refraction: instead of end\n");
  EXPECT_EQ(ocean.number_of_bands, 0);
  EXPECT_EQ(ocean.band_ids, nullptr);
}

TEST(OceanInputHostile, HugeAndNegativeTextureCountsAreTheBlocksToJudge) {
  ocean_input ocean;
  std::string printed;
  std::string text = replaced(plain_ocean(5), "texture_maps:  no\n",
                              "texture_maps:  yes\nTidecast_data_file texture 2 2\n"
                              "surface_type: ocean\nnumber_of_textures: 2000000000\nendTexture\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(last_line(printed), "unable to process ocean texture maps ");
}

TEST(OceanInputHostile, HugeWindAndSharpeningCountsInShortFilesFail) {
  Scratch_folder folder;
  const std::string wind = folder.file("wind.dat");
  const std::string sharp = folder.file("sharp.dat");
  put_file(wind, "number_of_times: 2147483647\ntime speed direction\n1 2 3\n");
  put_file(sharp, "number_of_angles: 2147483647\nangle sharpness\n1 2\n");
  ocean_input ocean;
  Stream_capture out(std::cout);
  EXPECT_EQ(ocean.read_variable_wind(wind.c_str()), 0);
  EXPECT_EQ(ocean.read_sharpening(sharp.c_str()), 0);
  EXPECT_EQ(out.text(), "");
  EXPECT_EQ(ocean.n_wind_values, 0);
  EXPECT_EQ(ocean.n_sharpening_angles, 0);
}

TEST(OceanInputHostile, SideFilesCutAfterEveryTokenFailWithoutHarm) {
  Scratch_folder folder;
  const char* names[] = {"full_ocean_wind.dat", "full_ocean_sharpening.dat",
                         "full_ocean_whitecaps.dat", "foam_textures_whitecaps.dat"};
  for (int which = 0; which < 4; which++) {
    const std::string text = file_text(ocean_data_dir() + "/" + names[which]);
    const std::vector<size_t> ends = token_ends(text);
    ASSERT_GT(ends.size(), 5u);
    for (size_t k = 0; k + 1 < ends.size(); k++) {
      const std::string path = folder.file("cut.dat");
      put_file(path, text.substr(0, ends[k]));
      ocean_input ocean;
      Stream_capture out(std::cout);
      int result = 0;
      if (which == 0) result = ocean.read_variable_wind(path.c_str());
      if (which == 1) result = ocean.read_sharpening(path.c_str());
      if (which >= 2) result = ocean.read_whitecaps(path.c_str());
      EXPECT_EQ(result, 0) << names[which] << " cut after " << k + 1 << " tokens";
    }
  }
}

TEST(OceanInputHostile, MissingSideFilesAreReportedByBothReaders) {
  struct Case {
    const char* from;
    const char* to;
    const char* message;
  };
  const Case cases[] = {
      {"variable_wind:  no\n", "variable_wind:  yes\nwind_file: /nonexistent/w\n",
       "Error reading variable wind  file /nonexistent/w\n"
       "unable to process variable wind file /nonexistent/w\n"},
      {"glitter:  yes\n",
       "glitter:  enhanced\nsharpening_type: yes\nsharpening_file: /nonexistent/s\n",
       "Error reading sharpening file /nonexistent/s\n"
       "error in processeing sharpening file /nonexistent/s\n"},
      {"whitecaps: no\n", "whitecaps: yes\nwhitecap_file: /nonexistent/c\n",
       "unable to open whitecap file /nonexistent/c\n"
       "unable to read whitecaps file /nonexistent/c\n"},
  };
  for (const Case& each : cases) {
    ocean_input ocean;
    std::string printed;
    EXPECT_EQ(read_ocean_text(ocean, replaced(plain_ocean(5), each.from, each.to), printed), 0);
    EXPECT_EQ(printed, each.message);
  }
}

TEST(OceanInputHostile, OverlongNamesAreCutToTheirFields) {
  Scratch_folder folder;
  const std::string long_name(400, 'w');
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "variable_wind:  no\n",
                                    "variable_wind:  yes\nwind_file: " + long_name + "\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(std::string(ocean.wind_file), long_name.substr(0, 255));
}

TEST(OceanInputHostile, ExtremeSaturationBandWrapsInsteadOfOverflowing) {
  ocean_input ocean;
  std::string printed;
  std::string text = replaced(plain_ocean(5), "glitter:  yes\n",
                              "glitter:  enhanced\nsharpening_type:   no\n"
                              "sharpening_factor:  1\nglitter_threshold:  0\n"
                              "saturation_type:   yes\n");
  text = replaced(text, "index_of_refraction:  1.33\n",
                  "index_of_refraction:  1.33\nsaturation_band:  -2147483648\n"
                  "saturation_threshold: 0 sub_saturation_scale: 0 saturation_values: 0\n");
  ASSERT_EQ(read_ocean_text(ocean, text, printed), 1) << printed;
  EXPECT_EQ(ocean.saturation_band, 2147483647);
}

}  // namespace
