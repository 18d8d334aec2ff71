#include "Cloud_input.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "TCData_file.h"
#include "TCObject_list_input.h"
#include "TCVolume_Object_class.h"
#include "scratch_folder.h"
#include "stream_capture.h"
#include "volume_test_files.h"

namespace {

// The cloud's own values in the dynamic mode, every one set away from its
// default.
const char* dynamic_values =
    "density_file: uniform lwc_field.dat\n"
    "small_scale_fluctuations:  dynamic\n"
    "small_scale_n_x: 32\n"
    "small_scale_n_y: 16\n"
    "small_scale_n_z: 8\n"
    "relative_scale: 0.5\n"
    "small_scale_file_name: eddies.dat\n"
    "generate_file_from_scratch: yes\n"
    "log_normal_width: 0.75\n"
    "power_law: 1.625\n"
    "length_scale: 12.5\n"
    "random_seed: 4711\n"
    "reference_time: 2.5\n"
    "update_time: 0.25\n"
    "sigma_time: 0.375\n"
    "end\n";

// The dump mode, with a field read back from its file.
const char* dump_values =
    "density_file: binary dense.dat\n"
    "small_scale_fluctuations:  yesdumpdensity\n"
    "density_with_fluctuation_file:  dumped.dat\n"
    "small_scale_n_x: 4\n"
    "small_scale_n_y: 5\n"
    "small_scale_n_z: 6\n"
    "relative_scale: 2\n"
    "small_scale_file_name: stored.dat\n"
    "generate_file_from_scratch: no\n"
    "end\n";

const char* plain_values =
    "density_file: binary plain.dat\n"
    "small_scale_fluctuations:  no\n"
    "end\n";

// A scratch folder with a two-band phase file, and cloud files naming it.
class Cloud_files {
 public:
  Cloud_files() : phase_path(folder.file("phase.dat")) {
    write_text_file(phase_path, phase_text(2, 181));
  }
  std::string cloud(const char* values) const {
    return "Tidecast_data_file cloud  1 1\n" + volume_text(phase_path) + values;
  }
  Scratch_folder folder;
  std::string phase_path;
};

int read_text(Cloud_input& record, const std::string& text, std::string* printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = record.read_stream(in);
  if (printed != nullptr) *printed = out.text();
  return result;
}

// The reader that never ends the process, for the texts that are meant to
// fail.
int read_sections_text(Cloud_input& record, const std::string& text, std::string* printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = record.read_sections(in);
  if (printed != nullptr) *printed = out.text();
  return result;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
  const size_t at = text.find(from);
  if (at == std::string::npos) return "<" + from + " not found>";
  return text.replace(at, from.size(), to);
}

std::string written(const Cloud_input& record) {
  std::ostringstream out;
  Stream_capture quiet(std::cout);
  if (!record.write_stream(out)) return "<write failed>";
  return out.str();
}

// The volume section of volume_text as the volume's writer gives it.
std::string written_volume(const std::string& phase_path) {
  return "Tidecast_data_file volume 1 1\n"
         "number_points_x: 11\n"
         "number_points_y: 3\n"
         "number_points_z: 6\n"
         "lattice_spacing_x: 10\n"
         "lattice_spacing_y: 0.5\n"
         "lattice_spacing_z: 20\n"
         "number_of_bands 2\n"
         "band_id  4 9\n"
         "absorption:  0.001 0.002\n"
         "scattering:  0.125 0.25\n"
         "extinction:  0.375 0.5\n"
         "phase_function_file: " +
         phase_path +
         "\n"
         "threshold_density: 0.01\n"
         "scattering_method: single\n"
         "integration_scale: 0.25\n"
         "transmission_cutoff: 0.001\n"
         "subdivide_threshold: 0.05\n"
         "end \n";
}

struct Packed {
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  ~Packed() {
    delete[] ints;
    delete[] doubles;
    delete[] chars;
  }
};

int pack_quietly(Cloud_input& record, Packed& p) {
  Stream_capture quiet(std::cout);
  return record.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
}

void expect_fluctuation_defaults(const Cloud_input& c) {
  EXPECT_STREQ(c.density_with_fluctuation_file, "cloudfluclwc.dat");
  EXPECT_EQ(c.small_scale_n_x, 1);
  EXPECT_EQ(c.small_scale_n_y, 1);
  EXPECT_EQ(c.small_scale_n_z, 1);
  EXPECT_EQ(c.relative_scale, 1.0);
  EXPECT_STREQ(c.small_scale_file_name, "cloud_fluctuations.dat");
  EXPECT_EQ(c.generate_file_from_scratch, 1);
  EXPECT_EQ(c.log_normal_width, 1.0);
  EXPECT_EQ(c.power_law, 1.0);
  EXPECT_EQ(c.length_scale, 2.0);
  EXPECT_EQ(c.random_seed, 1);
  EXPECT_EQ(c.reference_time, 0.0);
  EXPECT_EQ(c.update_time, 0.1);
  EXPECT_EQ(c.sigma_time, 0.1);
}

// ---- Defaults and words ----

TEST(CloudInput, DefaultsMatchTheRecordDescription) {
  Cloud_input c;
  EXPECT_EQ(c.type_code, 1);
  EXPECT_STREQ(c.object_type, "cloud");
  EXPECT_STREQ(c.object_name, "cloud_type_name");
  EXPECT_STREQ(c.density_file, "cloudlwc.dat");
  EXPECT_EQ(c.density_format, 0);
  EXPECT_EQ(c.small_scale_fluctuations, 0);
  expect_fluctuation_defaults(c);
  // The volume part keeps its own defaults.
  EXPECT_EQ(c.num_bands, 0);
  EXPECT_STREQ(c.phase_function_file, "phase_functions.dat");
  EXPECT_EQ(c.n_phase_function_angles, 181);
  EXPECT_EQ(c.scattering_method, 1);
  EXPECT_EQ(c.transmission_cutoff, 0.0001);
}

TEST(CloudInput, CodesOfTheFormatAndFluctuationWords) {
  EXPECT_EQ(Cloud_input::density_binary, 0);
  EXPECT_EQ(Cloud_input::density_uniform, 1);
  EXPECT_EQ(Cloud_input::fluctuations_no, 0);
  EXPECT_EQ(Cloud_input::fluctuations_yes, 1);
  EXPECT_EQ(Cloud_input::fluctuations_yes_dump_density, 2);
  EXPECT_EQ(Cloud_input::fluctuations_dynamic, 3);
  EXPECT_EQ(Cloud_input::density_format_code("binary"), 0);
  EXPECT_EQ(Cloud_input::density_format_code("uniform"), 1);
  EXPECT_EQ(Cloud_input::density_format_code("Binary"), -1);
  EXPECT_EQ(Cloud_input::density_format_code(""), -1);
  EXPECT_EQ(Cloud_input::fluctuation_code("no"), 0);
  EXPECT_EQ(Cloud_input::fluctuation_code("yes"), 1);
  EXPECT_EQ(Cloud_input::fluctuation_code("yesdumpdensity"), 2);
  EXPECT_EQ(Cloud_input::fluctuation_code("dynamic"), 3);
  EXPECT_EQ(Cloud_input::fluctuation_code("Yes"), -1);
  EXPECT_EQ(Cloud_input::fluctuation_code("NO"), -1);
  EXPECT_STREQ(Cloud_input::density_format_word(1), "uniform");
  EXPECT_EQ(Cloud_input::density_format_word(2), nullptr);
  EXPECT_STREQ(Cloud_input::fluctuation_word(2), "yesdumpdensity");
  EXPECT_EQ(Cloud_input::fluctuation_word(4), nullptr);
  EXPECT_EQ(Cloud_input::fluctuation_word(-1), nullptr);
}

// ---- Reading ----

TEST(CloudInput, DynamicFileGivesEveryFieldInOrder) {
  Cloud_files files;
  Cloud_input c;
  std::string printed;
  ASSERT_EQ(read_text(c, files.cloud(dynamic_values), &printed), 1) << printed;
  EXPECT_EQ(printed, "");
  EXPECT_STREQ(c.density_file, "lwc_field.dat");
  EXPECT_EQ(c.density_format, Cloud_input::density_uniform);
  EXPECT_EQ(c.small_scale_fluctuations, Cloud_input::fluctuations_dynamic);
  EXPECT_EQ(c.small_scale_n_x, 32);
  EXPECT_EQ(c.small_scale_n_y, 16);
  EXPECT_EQ(c.small_scale_n_z, 8);
  EXPECT_EQ(c.relative_scale, 0.5);
  EXPECT_STREQ(c.small_scale_file_name, "eddies.dat");
  EXPECT_EQ(c.generate_file_from_scratch, 1);
  EXPECT_EQ(c.log_normal_width, 0.75);
  EXPECT_EQ(c.power_law, 1.625);
  EXPECT_EQ(c.length_scale, 12.5);
  EXPECT_EQ(c.random_seed, 4711);
  EXPECT_EQ(c.reference_time, 2.5);
  EXPECT_EQ(c.update_time, 0.25);
  EXPECT_EQ(c.sigma_time, 0.375);
  // Only the dump mode names the fluctuation density file.
  EXPECT_STREQ(c.density_with_fluctuation_file, "cloudfluclwc.dat");
  // The volume section and the phase file it names were read too.
  EXPECT_EQ(c.number_points_x, 11);
  ASSERT_EQ(c.num_bands, 2);
  EXPECT_EQ(c.band_id[1], 9);
  EXPECT_EQ(c.scattering_method, 0);
  EXPECT_EQ(c.length.z, 100.0);
  // 1.5 + band + degree / 1000.
  EXPECT_DOUBLE_EQ(c.phase_functions[1][180], 2.68);
}

TEST(CloudInput, DumpModeReadsItsFileNameAndNoTimes) {
  Cloud_files files;
  Cloud_input c;
  std::string printed;
  ASSERT_EQ(read_text(c, files.cloud(dump_values), &printed), 1) << printed;
  EXPECT_STREQ(c.density_file, "dense.dat");
  EXPECT_EQ(c.density_format, Cloud_input::density_binary);
  EXPECT_EQ(c.small_scale_fluctuations, Cloud_input::fluctuations_yes_dump_density);
  EXPECT_STREQ(c.density_with_fluctuation_file, "dumped.dat");
  EXPECT_EQ(c.small_scale_n_x, 4);
  EXPECT_EQ(c.small_scale_n_y, 5);
  EXPECT_EQ(c.small_scale_n_z, 6);
  EXPECT_EQ(c.relative_scale, 2.0);
  EXPECT_STREQ(c.small_scale_file_name, "stored.dat");
  EXPECT_EQ(c.generate_file_from_scratch, 0);
  // "no": the generation values and the times are not on file.
  EXPECT_EQ(c.log_normal_width, 1.0);
  EXPECT_EQ(c.power_law, 1.0);
  EXPECT_EQ(c.length_scale, 2.0);
  EXPECT_EQ(c.random_seed, 1);
  EXPECT_EQ(c.reference_time, 0.0);
  EXPECT_EQ(c.update_time, 0.1);
  EXPECT_EQ(c.sigma_time, 0.1);
}

TEST(CloudInput, YesModeHasNeitherDumpFileNorTimes) {
  Cloud_files files;
  const std::string values =
      "density_file: binary a.dat\n"
      "small_scale_fluctuations: yes\n"
      "small_scale_n_x: 7 small_scale_n_y: 9 small_scale_n_z: 11\n"
      "relative_scale: 3\n"
      "small_scale_file_name: f.dat\n"
      "generate_file_from_scratch: yes\n"
      "log_normal_width: 0.5 power_law: 2 length_scale: 4 random_seed: 99\n"
      "end\n";
  Cloud_input c;
  std::string printed;
  ASSERT_EQ(read_text(c, files.cloud(values.c_str()), &printed), 1) << printed;
  EXPECT_EQ(c.small_scale_fluctuations, Cloud_input::fluctuations_yes);
  EXPECT_EQ(c.small_scale_n_x, 7);
  EXPECT_EQ(c.small_scale_n_z, 11);
  EXPECT_EQ(c.relative_scale, 3.0);
  EXPECT_STREQ(c.small_scale_file_name, "f.dat");
  EXPECT_EQ(c.log_normal_width, 0.5);
  EXPECT_EQ(c.power_law, 2.0);
  EXPECT_EQ(c.length_scale, 4.0);
  EXPECT_EQ(c.random_seed, 99);
  EXPECT_STREQ(c.density_with_fluctuation_file, "cloudfluclwc.dat");
  EXPECT_EQ(c.reference_time, 0.0);
  EXPECT_EQ(c.update_time, 0.1);
  EXPECT_EQ(c.sigma_time, 0.1);
}

TEST(CloudInput, NoFluctuationsReadsNothingBeyondTheModeWord) {
  Cloud_files files;
  Cloud_input c;
  std::string printed;
  ASSERT_EQ(read_text(c, files.cloud(plain_values), &printed), 1) << printed;
  EXPECT_STREQ(c.density_file, "plain.dat");
  EXPECT_EQ(c.small_scale_fluctuations, Cloud_input::fluctuations_no);
  expect_fluctuation_defaults(c);
  // A fluctuation line after "no" stands where "end" belongs.
  Cloud_input d;
  const std::string extra = replaced(plain_values, "end\n", "small_scale_n_x: 4\nend\n");
  EXPECT_EQ(read_text(d, files.cloud(extra.c_str()), &printed), 0);
  EXPECT_EQ(printed, "cloud input file is invalid, read small_scale_n_x: instead of end\n");
}

TEST(CloudInput, GenerateWordIsYesOnlyForTheYesWords) {
  Cloud_files files;
  const char* words[] = {"yes", "Yes", "YES", "y", "no", "maybe"};
  const int flags[] = {1, 1, 1, 0, 0, 0};
  for (int i = 0; i < 6; i++) {
    std::string values = replaced(dump_values, "generate_file_from_scratch: no",
                                  std::string("generate_file_from_scratch: ") + words[i]);
    // After a yes word the four generation values follow.
    if (flags[i]) {
      values = replaced(values, "end\n",
                        "log_normal_width: 1 power_law: 1 length_scale: 2 random_seed: 1\nend\n");
    }
    Cloud_input c;
    c.generate_file_from_scratch = 5;
    std::string printed;
    ASSERT_EQ(read_text(c, files.cloud(values.c_str()), &printed), 1) << words[i] << printed;
    EXPECT_EQ(c.generate_file_from_scratch, flags[i]) << words[i];
  }
}

TEST(CloudInput, KeywordsAreSkippedUnreadAndOnlyEndIsCompared) {
  Cloud_files files;
  std::string text = files.cloud(dynamic_values);
  const char* keywords[] = {"density_file:",    "small_scale_fluctuations:",
                            "small_scale_n_y:", "small_scale_file_name:",
                            "random_seed:",     "sigma_time:"};
  for (const char* word : keywords) text = replaced(text, word, "zzz");
  Cloud_input c;
  std::string printed;
  ASSERT_EQ(read_text(c, text, &printed), 1) << printed;
  EXPECT_STREQ(c.density_file, "lwc_field.dat");
  EXPECT_EQ(c.small_scale_fluctuations, 3);
  EXPECT_EQ(c.small_scale_n_y, 16);
  EXPECT_STREQ(c.small_scale_file_name, "eddies.dat");
  EXPECT_EQ(c.random_seed, 4711);
  EXPECT_EQ(c.sigma_time, 0.375);
}

TEST(CloudInput, HeaderWithOneBlankOrTheOtherMagicIsAccepted) {
  Cloud_files files;
  Cloud_input c;
  EXPECT_EQ(read_text(c,
                      replaced(files.cloud(plain_values), "Tidecast_data_file cloud  1 1",
                               "Tidecast_data_file cloud 1 1"),
                      nullptr),
            1);
  Cloud_input d;
  EXPECT_EQ(read_text(d,
                      replaced(files.cloud(plain_values), "Tidecast_data_file cloud",
                               "Beavis_rules_the cloud"),
                      nullptr),
            1);
}

// ---- Hostile files ----

TEST(CloudInput, BadHeadersAreRefusedWithTheCloudsLine) {
  Cloud_input c;
  std::string printed;
  EXPECT_EQ(read_sections_text(c, "Tidecast_data_file volume 1 1\nend\n", &printed), 0);
  EXPECT_EQ(printed,
            "file type volume is not of \nexpected type cloud\nunable to process cloud data \n");
  // A file that needs a newer reader: the header says nothing of its own.
  EXPECT_EQ(read_sections_text(c, "Tidecast_data_file cloud 2 2\n", &printed), 0);
  EXPECT_EQ(printed, "unable to process cloud data \n");
  // The version must be 1: the second number is the oldest reader.
  EXPECT_EQ(read_sections_text(c, "Tidecast_data_file cloud 1 2\n", &printed), 0);
  EXPECT_EQ(printed, "unable to process cloud data \n");
}

TEST(CloudInput, FailedVolumeSectionIsFollowedByTheCloudsLine) {
  Cloud_files files;
  std::string text = files.cloud(plain_values);
  // The volume's own end, the first "end" of the file.
  text.replace(text.find("end\n"), 3, "ending");
  Cloud_input c;
  std::string printed;
  EXPECT_EQ(read_sections_text(c, text, &printed), 0);
  EXPECT_EQ(printed,
            "error processing volume data \nread ending instead of end \n"
            "unable to process cloud data \n");
}

TEST(CloudInput, OtherWordThanEndOrNoneIsReported) {
  Cloud_files files;
  std::string printed;
  Cloud_input c;
  const std::string ending = files.cloud(dynamic_values);
  EXPECT_EQ(read_text(c, ending.substr(0, ending.rfind("end")) + "ending\n", &printed), 0);
  EXPECT_EQ(printed, "cloud input file is invalid, read ending instead of end\n");
  Cloud_input d;
  EXPECT_EQ(read_text(d, ending.substr(0, ending.rfind("end")), &printed), 0);
  EXPECT_EQ(printed, "cloud input file is invalid, read  instead of end\n");
}

TEST(CloudInput, AWordWhereANumberBelongsIsTheWordShownAtTheEnd) {
  Cloud_files files;
  struct Case {
    const char* from;
    const char* to;
    const char* shown;
  } cases[] = {
      {"small_scale_n_x: 32", "small_scale_n_x: many", "many"},
      {"small_scale_n_y: 16", "small_scale_n_y: 16.5", "small_scale_n_z:"},
      {"relative_scale: 0.5", "relative_scale: half", "half"},
      {"log_normal_width: 0.75", "log_normal_width: wide", "wide"},
      {"power_law: 1.625", "power_law: steep", "steep"},
      {"length_scale: 12.5", "length_scale: long", "long"},
      {"random_seed: 4711", "random_seed: seed", "seed"},
      {"reference_time: 2.5", "reference_time: now", "now"},
      {"update_time: 0.25", "update_time: soon", "soon"},
      {"sigma_time: 0.375", "sigma_time: x", "x"},
  };
  for (const Case& k : cases) {
    Cloud_input c;
    std::string printed;
    EXPECT_EQ(read_text(c, replaced(files.cloud(dynamic_values), k.from, k.to), &printed), 0)
        << k.to;
    EXPECT_EQ(printed,
              std::string("cloud input file is invalid, read ") + k.shown + " instead of end\n")
        << k.to;
  }
}

TEST(CloudInput, DensityFormatOtherThanBinaryOrUniformIsRefused) {
  Cloud_files files;
  const char* words[] = {"Binary", "text", "uniformly"};
  for (const char* word : words) {
    Cloud_input c;
    std::string printed;
    const std::string text = replaced(files.cloud(dynamic_values), "uniform lwc_field.dat",
                                      std::string(word) + " lwc_field.dat");
    EXPECT_EQ(read_text(c, text, &printed), 0) << word;
    EXPECT_EQ(printed, std::string(word) + " not a valid density format\n");
    EXPECT_EQ(c.density_format, Cloud_input::density_binary);
    EXPECT_STREQ(c.density_file, "cloudlwc.dat");
  }
}

TEST(CloudInput, UnknownFluctuationWordIsReportedToTheCaller) {
  Cloud_files files;
  const char* words[] = {"maybe", "Yes", "dynamics", "NO"};
  for (const char* word : words) {
    Cloud_input c;
    std::string printed;
    const std::string text =
        replaced(files.cloud(dynamic_values), "small_scale_fluctuations:  dynamic",
                 std::string("small_scale_fluctuations: ") + word);
    EXPECT_EQ(read_sections_text(c, text, &printed), Cloud_input::invalid_fluctuation_word);
    // No blank between the word and "not valid".
    EXPECT_EQ(printed, std::string("input string ") + word + "not valid\n");
    EXPECT_EQ(c.small_scale_fluctuations, Cloud_input::fluctuations_no);
  }
}

TEST(CloudInputDeath, UnknownFluctuationWordEndsTheRunWithStatusOne) {
  Cloud_files files;
  const std::string text =
      replaced(files.cloud(dynamic_values), "small_scale_fluctuations:  dynamic",
               "small_scale_fluctuations: maybe");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Cloud_input c;
        std::istringstream in(text);
        c.read_stream(in);
      },
      ::testing::ExitedWithCode(1), "^input string maybenot valid\n$");
  const std::string path = files.folder.file("bad.cloud");
  write_text_file(path, text);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Cloud_input c;
        c.read_file(path.c_str());
      },
      ::testing::ExitedWithCode(1), "^input string maybenot valid\n$");
}

TEST(CloudInput, CloudFileCutAtEveryTokenFailsWithAMessage) {
  Cloud_files files;
  const char* texts[] = {dynamic_values, dump_values, plain_values};
  for (const char* values : texts) {
    std::istringstream words(files.cloud(values));
    std::vector<std::string> tokens;
    std::string token;
    while (words >> token) tokens.push_back(token);
    ASSERT_GT(tokens.size(), 40u);
    for (size_t cut = 0; cut < tokens.size(); cut++) {
      std::string text;
      for (size_t i = 0; i < cut; i++) text += tokens[i] + " ";
      Cloud_input c;
      std::string printed;
      EXPECT_EQ(read_sections_text(c, text, &printed), 0) << "cut at " << cut;
      EXPECT_FALSE(printed.empty()) << "cut at " << cut;
    }
  }
}

TEST(CloudInput, PhaseFileIsReadOnlyAfterTheCloudsEnd) {
  Scratch_folder folder;
  const std::string missing = folder.file("none.dat");
  const std::string text = "Tidecast_data_file cloud  1 1\n" + volume_text(missing) + plain_values;
  Cloud_input c;
  std::string printed;
  EXPECT_EQ(read_text(c, text, &printed), 0);
  EXPECT_EQ(printed, "unable to open " + missing + "\nunable to process phase function file \n");
  // The cloud's values were all read before.
  EXPECT_STREQ(c.density_file, "plain.dat");
  // A cloud part that fails is reported before the phase file is looked for.
  Cloud_input d;
  EXPECT_EQ(read_text(d, replaced(text, "no\nend", "no\nand"), &printed), 0);
  EXPECT_EQ(printed, "cloud input file is invalid, read and instead of end\n");
  // The sections alone never look for it.
  Cloud_input e;
  EXPECT_EQ(read_sections_text(e, text, &printed), 1);
  EXPECT_EQ(printed, "");
}

// ---- Writing ----

TEST(CloudInput, WriterGivesTheDynamicForm) {
  Cloud_files files;
  Cloud_input c;
  ASSERT_EQ(read_text(c, files.cloud(dynamic_values), nullptr), 1);
  EXPECT_EQ(written(c), "Tidecast_data_file cloud  1 1\n" + written_volume(files.phase_path) +
                            "density_file: uniform lwc_field.dat\n"
                            "small_scale_fluctuations:  dynamic \n"
                            "small_scale_n_x: 32\n"
                            "small_scale_n_y: 16\n"
                            "small_scale_n_z: 8\n"
                            "relative_scale: 0.5\n"
                            "small_scale_file_name: eddies.dat\n"
                            "generate_file_from_scratch: yes\n"
                            "log_normal_width: 0.75\n"
                            "power_law: 1.625\n"
                            "length_scale: 12.5\n"
                            "random_seed: 4711\n"
                            "reference_time: 2.5\n"
                            "update_time: 0.25\n"
                            "sigma_time: 0.375\n"
                            "end \n");
}

TEST(CloudInput, WriterGivesTheDumpAndPlainForms) {
  Cloud_files files;
  Cloud_input c;
  ASSERT_EQ(read_text(c, files.cloud(dump_values), nullptr), 1);
  EXPECT_EQ(written(c), "Tidecast_data_file cloud  1 1\n" + written_volume(files.phase_path) +
                            "density_file: binary dense.dat\n"
                            "small_scale_fluctuations:  yesdumpdensity \n"
                            "density_with_fluctuation_file:  dumped.dat\n"
                            "small_scale_n_x: 4\n"
                            "small_scale_n_y: 5\n"
                            "small_scale_n_z: 6\n"
                            "relative_scale: 2\n"
                            "small_scale_file_name: stored.dat\n"
                            "generate_file_from_scratch: no \n"
                            "end \n");
  Cloud_input d;
  ASSERT_EQ(read_text(d, files.cloud(plain_values), nullptr), 1);
  EXPECT_EQ(written(d), "Tidecast_data_file cloud  1 1\n" + written_volume(files.phase_path) +
                            "density_file: binary plain.dat\n"
                            "small_scale_fluctuations:  no \n"
                            "end \n");
}

TEST(CloudInput, DefaultRecordWritesTheDefaultWords) {
  Cloud_input c;
  const std::string text = written(c);
  const std::string tail =
      "phase_function_file: phase_functions.dat\n"
      "threshold_density: 0\n"
      "scattering_method: multiple\n"
      "integration_scale: 1\n"
      "transmission_cutoff: 0.0001\n"
      "subdivide_threshold: 0\n"
      "end \n"
      "density_file: binary cloudlwc.dat\n"
      "small_scale_fluctuations:  no \n"
      "end \n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(0, 30), "Tidecast_data_file cloud  1 1\n");
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST(CloudInput, WriterRefusesCodesWithNoWordAndWritesNothing) {
  struct Case {
    int format, mode, scattering;
    const char* words;
  } cases[] = {
      {2, 0, 1, "2 not a valid density format\n"},
      {-1, 0, 1, "-1 not a valid density format\n"},
      {0, 4, 1, "invalid small_scale_fluctuation_flag \n"},
      {1, -1, 1, "invalid small_scale_fluctuation_flag \n"},
      {0, 3, 7, "attempt to output invalid volume object scattering flag \n"},
  };
  for (const Case& k : cases) {
    Cloud_input c;
    c.density_format = k.format;
    c.small_scale_fluctuations = k.mode;
    c.scattering_method = k.scattering;
    std::ostringstream out;
    Stream_capture printed(std::cout);
    EXPECT_EQ(c.write_stream(out), 0);
    EXPECT_EQ(printed.text(), k.words);
    EXPECT_EQ(out.str(), "");
  }
}

TEST(CloudInput, WrittenFileReadsBackTheSameInEveryMode) {
  Cloud_files files;
  const char* texts[] = {dynamic_values, dump_values, plain_values};
  for (const char* values : texts) {
    Cloud_input c;
    ASSERT_EQ(read_text(c, files.cloud(values), nullptr), 1);
    const std::string first = written(c);
    Cloud_input again;
    std::string printed;
    ASSERT_EQ(read_text(again, first, &printed), 1) << printed;
    EXPECT_EQ(written(again), first);
    EXPECT_STREQ(again.density_file, c.density_file);
    EXPECT_EQ(again.density_format, c.density_format);
    EXPECT_EQ(again.small_scale_fluctuations, c.small_scale_fluctuations);
    EXPECT_STREQ(again.density_with_fluctuation_file, c.density_with_fluctuation_file);
    EXPECT_EQ(again.small_scale_n_x, c.small_scale_n_x);
    EXPECT_EQ(again.small_scale_n_y, c.small_scale_n_y);
    EXPECT_EQ(again.small_scale_n_z, c.small_scale_n_z);
    EXPECT_EQ(again.relative_scale, c.relative_scale);
    EXPECT_STREQ(again.small_scale_file_name, c.small_scale_file_name);
    EXPECT_EQ(again.generate_file_from_scratch, c.generate_file_from_scratch);
    EXPECT_EQ(again.log_normal_width, c.log_normal_width);
    EXPECT_EQ(again.power_law, c.power_law);
    EXPECT_EQ(again.length_scale, c.length_scale);
    EXPECT_EQ(again.random_seed, c.random_seed);
    EXPECT_EQ(again.reference_time, c.reference_time);
    EXPECT_EQ(again.update_time, c.update_time);
    EXPECT_EQ(again.sigma_time, c.sigma_time);
    EXPECT_EQ(again.extinction[1], 0.5);
  }
}

TEST(CloudInput, RoundTripKeepsFifteenSignificantDigits) {
  Cloud_files files;
  Cloud_input c;
  ASSERT_EQ(read_text(c, files.cloud(dynamic_values), nullptr), 1);
  c.power_law = 1.0 / 3.0;
  c.sigma_time = 0.1 + 0.2;
  Cloud_input again;
  ASSERT_EQ(read_text(again, written(c), nullptr), 1);
  EXPECT_NEAR(again.power_law, 1.0 / 3.0, 1e-15);
  EXPECT_NEAR(again.sigma_time, 0.3, 1e-15);
}

TEST(CloudInput, FilesAreNamedWhenTheyCannotBeOpenedOrRead) {
  Cloud_files files;
  Cloud_input c;
  const std::string missing = files.folder.file("missing.cloud");
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(c.read_file(missing.c_str()), 0);
    EXPECT_EQ(printed.text(), "unable to open cloud input file " + missing + "\n");
  }
  const std::string bad = files.folder.file("bad.cloud");
  write_text_file(bad, files.cloud("density_file: binary x.dat\n"));
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(c.read_file(bad.c_str()), 0);
    EXPECT_EQ(printed.text(),
              "cloud input file is invalid, read  instead of end\n"
              "unable to process cloud file " +
                  bad + "\n");
  }
  const std::string unwritable = files.folder.file("no/such/folder.cloud");
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(c.write_file(unwritable.c_str()), 0);
    EXPECT_EQ(printed.text(), "unable to open cloud output file " + unwritable + "\n");
  }
  const std::string out_path = files.folder.file("out.cloud");
  c.small_scale_fluctuations = 9;
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(c.write_file(out_path.c_str()), 0);
    EXPECT_EQ(printed.text(),
              "invalid small_scale_fluctuation_flag \n"
              "unable to process cloud output file " +
                  out_path + "\n");
  }
}

TEST(CloudInput, FileWrittenReadsBack) {
  Cloud_files files;
  const std::string path = files.folder.file("sky.cloud");
  write_text_file(path, files.cloud(dynamic_values));
  Cloud_input c;
  ASSERT_EQ(c.read_file(path.c_str()), 1);
  const std::string copy = files.folder.file("copy.cloud");
  ASSERT_EQ(c.write_file(copy.c_str()), 1);
  Cloud_input again;
  ASSERT_EQ(again.read_file(copy.c_str()), 1);
  EXPECT_EQ(again.random_seed, 4711);
  EXPECT_EQ(again.update_time, 0.25);
  EXPECT_DOUBLE_EQ(again.phase_functions[0][90], 1.59);
}

// ---- Packing ----

TEST(CloudPacking, SizesAddTheCloudsPartToTheVolumes) {
  Cloud_input c;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  c.packing_sizes(n_ints, n_doubles, n_chars);
  // Volume with no bands: 6 ints, 11 doubles, 512 chars; the cloud adds 7
  // ints, 7 doubles and three names of 256.
  EXPECT_EQ(n_ints, 13);
  EXPECT_EQ(n_doubles, 18);
  EXPECT_EQ(n_chars, 1280);
  ASSERT_EQ(c.allocate_arrays(2, 181), 1);
  c.packing_sizes(n_ints, n_doubles, n_chars);
  // 6 + 2 + 7; 11 + 3 * 2 + 2 * 181 + 7.
  EXPECT_EQ(n_ints, 15);
  EXPECT_EQ(n_doubles, 386);
  EXPECT_EQ(n_chars, 1280);
}

TEST(CloudPacking, RecordCrossesWhole) {
  Cloud_files files;
  Cloud_input c;
  ASSERT_EQ(read_text(c, files.cloud(dynamic_values), nullptr), 1);
  copy_text(c.object_name, "cumulus", 256);
  copy_text(c.density_with_fluctuation_file, "dump_here.dat", 256);
  c.priority = 2.5;
  Packed p;
  {
    Stream_capture printed(std::cout);
    ASSERT_EQ(c.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
    EXPECT_EQ(printed.text(), "packing cumulus\n");
  }
  EXPECT_EQ(p.int_bytes, 15 * 4);
  EXPECT_EQ(p.double_bytes, 386 * 8);
  EXPECT_EQ(p.char_bytes, 1280);
  // The cloud's part starts where the volume's two-band part ends: int 8,
  // double 379, char 512.
  EXPECT_EQ(p.ints[8], 1);
  EXPECT_EQ(p.ints[9], 3);
  EXPECT_EQ(p.ints[10], 32);
  EXPECT_EQ(p.ints[14], 4711);
  EXPECT_EQ(p.doubles[379], 0.5);
  EXPECT_EQ(p.doubles[385], 0.375);
  EXPECT_STREQ(p.chars + 512, "lwc_field.dat");
  EXPECT_STREQ(p.chars + 768, "dump_here.dat");
  EXPECT_STREQ(p.chars + 1024, "eddies.dat");

  Cloud_input r;
  r.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  {
    Stream_capture printed(std::cout);
    ASSERT_EQ(r.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
    EXPECT_EQ(printed.text(), "cumulus unpacked !\n");
  }
  EXPECT_STREQ(r.object_name, "cumulus");
  EXPECT_EQ(r.priority, 2.5);
  EXPECT_STREQ(r.density_file, "lwc_field.dat");
  EXPECT_EQ(r.density_format, 1);
  EXPECT_EQ(r.small_scale_fluctuations, 3);
  EXPECT_STREQ(r.density_with_fluctuation_file, "dump_here.dat");
  EXPECT_EQ(r.small_scale_n_x, 32);
  EXPECT_EQ(r.small_scale_n_y, 16);
  EXPECT_EQ(r.small_scale_n_z, 8);
  EXPECT_EQ(r.relative_scale, 0.5);
  EXPECT_STREQ(r.small_scale_file_name, "eddies.dat");
  EXPECT_EQ(r.generate_file_from_scratch, 1);
  EXPECT_EQ(r.log_normal_width, 0.75);
  EXPECT_EQ(r.power_law, 1.625);
  EXPECT_EQ(r.length_scale, 12.5);
  EXPECT_EQ(r.random_seed, 4711);
  EXPECT_EQ(r.reference_time, 2.5);
  EXPECT_EQ(r.update_time, 0.25);
  EXPECT_EQ(r.sigma_time, 0.375);
  // And the volume part.
  ASSERT_EQ(r.num_bands, 2);
  EXPECT_EQ(r.band_id[0], 4);
  EXPECT_EQ(r.number_points_z, 6);
  EXPECT_EQ(r.length.x, 100.0);
  EXPECT_DOUBLE_EQ(r.phase_functions[1][180], 2.68);
  EXPECT_EQ(written(r), written(c));
  // The receiver's own counts now give the same sizes.
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  r.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_doubles, 386);
}

TEST(CloudPacking, WrongSizesAndMissingArraysAreRefused) {
  Cloud_input c;
  ASSERT_EQ(c.allocate_arrays(1, 181), 1);
  Packed p;
  ASSERT_EQ(pack_quietly(c, p), 1);
  struct Case {
    int di, dd, dc;
    const char* words;
  } cases[] = {
      {-4, 0, 0, "packing integer array of the wrong size \n"},
      {4, 0, 0, "packing integer array of the wrong size \n"},
      {0, -8, 0, "packing double array of the wrong size \n"},
      {0, 8, 0, "packing double array of the wrong size \n"},
      {0, 0, -1, "packing char array of the wrong size \n"},
      {0, 0, -256, "packing char array of the wrong size \n"},
  };
  for (const Case& k : cases) {
    Cloud_input r;
    r.set_sizes_from_packed(p.ints, p.doubles, p.chars);
    Stream_capture printed(std::cout);
    EXPECT_EQ(r.unpack(p.ints, p.int_bytes + k.di, p.doubles, p.double_bytes + k.dd, p.chars,
                       p.char_bytes + k.dc),
              0);
    EXPECT_EQ(printed.text(), std::string(k.words) + "unable to unpack volume part of cloud \n");
    EXPECT_EQ(r.num_bands, 0);
  }
  Cloud_input r;
  Stream_capture printed(std::cout);
  EXPECT_EQ(r.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, nullptr, p.char_bytes), 0);
  EXPECT_EQ(printed.text(),
            "char variable pointer not allocated \nunable to unpack volume part of cloud \n");
}

TEST(CloudPacking, ReceiverWithoutTheSendersCountsRefusesTheSizes) {
  Cloud_input c;
  ASSERT_EQ(c.allocate_arrays(2, 181), 1);
  Packed p;
  ASSERT_EQ(pack_quietly(c, p), 1);
  Cloud_input r;
  Stream_capture printed(std::cout);
  EXPECT_EQ(r.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
  EXPECT_EQ(printed.text(),
            "packing integer array of the wrong size \nunable to unpack volume part of cloud \n");
}

TEST(CloudPacking, AVolumesArraysAreNotACloud) {
  // A plain volume of the same bands lacks the cloud's part.
  TCVolume_Object_class v;
  ASSERT_EQ(v.allocate_arrays(1, 181), 1);
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(v.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes), 1);
  }
  Cloud_input r;
  r.set_sizes_from_packed(ints, doubles, chars);
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(r.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes), 0);
    EXPECT_EQ(printed.text(),
              "packing integer array of the wrong size \nunable to unpack volume part of cloud \n");
  }
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

TEST(CloudPacking, CountsNoArrayCanHoldAreRefusedWithTheCloudsWords) {
  Cloud_input c;
  // A received band count that no array can hold stands in until the next
  // pack; the volume's -1 stays -1 with the cloud's part added.
  int ints[13] = {2147483647, 181};
  c.set_sizes_from_packed(ints, nullptr, nullptr);
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  c.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, -1);
  EXPECT_EQ(n_doubles, -1);
  EXPECT_EQ(n_chars, 1280);
  Packed p;
  Stream_capture printed(std::cout);
  EXPECT_EQ(c.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
  EXPECT_EQ(printed.text(), "unable to allocate cloud integer packing array \n");
  EXPECT_EQ(p.ints, nullptr);
}

// ---- The object list ----

std::string cloud_list(const std::string& path) {
  return "number_of_bands: 2\n"
         "width center_wavelength band_id \n"
         "4 0.55 0.1\n"
         "9 0.65 0.05\n"
         "sun_flag: 0\n"
         "number_of_objects: 1\n"
         "number_of_times  1\n"
         "time  x  y  z  chi  phi  theta \n"
         "0 100 200 300 0 0 0 \n"
         "object_name: cumulus\n"
         "object_type: cloud\n"
         "object_file: " +
         path +
         "\n"
         "priority:    3\n"
         "number_of_cameras: 0\n";
}

TEST(CloudInList, CloudLineMakesACloudRecordThatReadsItsFile) {
  Cloud_files files;
  const std::string path = files.folder.file("sky.cloud");
  write_text_file(path, files.cloud(dynamic_values));
  TCObject_list_input list;
  std::istringstream in(cloud_list(path));
  int result = 0;
  std::string printed;
  {
    Stream_capture out(std::cout);
    result = list.read_list(in);
    printed = out.text();
  }
  ASSERT_EQ(result, 1) << printed;
  EXPECT_EQ(printed, "");
  ASSERT_EQ(list.n_objects, 1);
  Cloud_input* cloud = dynamic_cast<Cloud_input*>(list.objects[0]);
  ASSERT_NE(cloud, nullptr);
  EXPECT_EQ(cloud->type_code, 1);
  EXPECT_STREQ(cloud->object_type, "cloud");
  EXPECT_STREQ(cloud->object_name, "cumulus");
  EXPECT_EQ(cloud->priority, 3.0);
  EXPECT_EQ(cloud->track.positions[0].z, 300.0);
  EXPECT_EQ(cloud->small_scale_fluctuations, Cloud_input::fluctuations_dynamic);
  EXPECT_EQ(cloud->sigma_time, 0.375);
  EXPECT_EQ(cloud->num_bands, 2);
}

TEST(CloudInList, CloudWhoseFileFailsFailsTheList) {
  Cloud_files files;
  const std::string missing = files.folder.file("absent.cloud");
  TCObject_list_input list;
  std::istringstream in(cloud_list(missing));
  Stream_capture out(std::cout);
  EXPECT_EQ(list.read_list(in), 0);
  EXPECT_EQ(out.text(), "unable to open cloud input file " + missing +
                            "\nunable to process input structure \n");
}

TEST(CloudInList, AddedCloudIsACloudRecordThatWritesItsWord) {
  TCObject_list_input list;
  Stream_capture out(std::cout);
  TCKeyframes track;
  TCObject_input* record = list.add_object(1, "stratus", "stratus.cloud", 2.0, track);
  EXPECT_EQ(out.text(), "");
  ASSERT_NE(record, nullptr);
  EXPECT_NE(dynamic_cast<Cloud_input*>(record), nullptr);
  EXPECT_EQ(record->type_code, 1);
  EXPECT_STREQ(record->object_type, "cloud");
  EXPECT_STREQ(record->object_name, "stratus");
  std::ostringstream written_list;
  ASSERT_EQ(list.write_list(written_list), 1);
  EXPECT_NE(written_list.str().find("object_type: cloud\n"), std::string::npos)
      << written_list.str();
}

}  // namespace
