#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "TCData_file.h"
#include "TCVolume_Object_class.h"
#include "scratch_folder.h"
#include "stream_capture.h"
#include "volume_test_files.h"

namespace {

int read_text(TCVolume_Object_class& record, const std::string& text, std::string* printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = record.read_stream(in);
  if (printed != nullptr) *printed = out.text();
  return result;
}

// A scratch folder with a two-band phase file and a section that names it.
class Volume_files {
 public:
  Volume_files() : phase_path(folder.file("phase.dat")) {
    write_text_file(phase_path, phase_text(2, 181));
    section = volume_text(phase_path);
  }
  Scratch_folder folder;
  std::string phase_path;
  std::string section;
};

// The record's arrays agree with its band count.
void expect_consistent(const TCVolume_Object_class& v) {
  if (v.num_bands > 0) {
    ASSERT_NE(v.band_id, nullptr);
    ASSERT_NE(v.absorption, nullptr);
    ASSERT_NE(v.scattering, nullptr);
    ASSERT_NE(v.extinction, nullptr);
    ASSERT_NE(v.phase_functions, nullptr);
  }
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

TEST(VolumeInput, DefaultsMatchTheRecordDescription) {
  TCVolume_Object_class v;
  EXPECT_EQ(v.number_points_x, 0);
  EXPECT_EQ(v.number_points_y, 0);
  EXPECT_EQ(v.number_points_z, 0);
  EXPECT_EQ(v.lattice_spacing_x, 1.0);
  EXPECT_EQ(v.lattice_spacing_y, 1.0);
  EXPECT_EQ(v.lattice_spacing_z, 1.0);
  EXPECT_EQ(v.num_bands, 0);
  EXPECT_EQ(v.band_id, nullptr);
  EXPECT_EQ(v.absorption, nullptr);
  EXPECT_EQ(v.scattering, nullptr);
  EXPECT_EQ(v.extinction, nullptr);
  EXPECT_EQ(v.phase_functions, nullptr);
  EXPECT_STREQ(v.phase_function_file, "phase_functions.dat");
  EXPECT_EQ(v.n_phase_function_angles, 181);
  EXPECT_EQ(v.threshold_density, 0.0);
  EXPECT_EQ(v.scattering_method, 1);
  EXPECT_EQ(v.integration_scale, 1.0);
  EXPECT_EQ(v.transmission_cutoff, 0.0001);
  EXPECT_EQ(v.subdivide_threshold, 0.0);
  // The box part keeps its own default until a lattice is read.
  EXPECT_EQ(v.length.x, 1.0);
  EXPECT_EQ(v.length.y, 1.0);
  EXPECT_EQ(v.length.z, 1.0);
  EXPECT_EQ(v.priority, 1.0);
}

TEST(VolumeInput, SectionGivesEveryFieldInOrder) {
  Volume_files files;
  TCVolume_Object_class v;
  std::string printed;
  ASSERT_EQ(read_text(v, files.section, &printed), 1) << printed;
  EXPECT_EQ(printed, "");
  EXPECT_EQ(v.number_points_x, 11);
  EXPECT_EQ(v.number_points_y, 3);
  EXPECT_EQ(v.number_points_z, 6);
  EXPECT_EQ(v.lattice_spacing_x, 10.0);
  EXPECT_EQ(v.lattice_spacing_y, 0.5);
  EXPECT_EQ(v.lattice_spacing_z, 20.0);
  ASSERT_EQ(v.num_bands, 2);
  EXPECT_EQ(v.band_id[0], 4);
  EXPECT_EQ(v.band_id[1], 9);
  EXPECT_EQ(v.absorption[0], 0.001);
  EXPECT_EQ(v.absorption[1], 0.002);
  EXPECT_EQ(v.scattering[0], 0.125);
  EXPECT_EQ(v.scattering[1], 0.25);
  EXPECT_EQ(v.extinction[0], 0.375);
  EXPECT_EQ(v.extinction[1], 0.5);
  EXPECT_EQ(std::string(v.phase_function_file), files.phase_path);
  EXPECT_EQ(v.threshold_density, 0.01);
  EXPECT_EQ(v.scattering_method, 0);
  EXPECT_EQ(v.integration_scale, 0.25);
  EXPECT_EQ(v.transmission_cutoff, 0.001);
  EXPECT_EQ(v.subdivide_threshold, 0.05);
  // Box size (n - 1) times the spacing: 10 * 10, 2 * 0.5, 5 * 20.
  EXPECT_EQ(v.length.x, 100.0);
  EXPECT_EQ(v.length.y, 1.0);
  EXPECT_EQ(v.length.z, 100.0);
  EXPECT_EQ(v.number_of_points(), 11 * 3 * 6);
  // The phase file named by the section has been read: 1.5 + band + degree/1000.
  EXPECT_DOUBLE_EQ(v.phase_functions[0][0], 1.5);
  EXPECT_DOUBLE_EQ(v.phase_functions[0][90], 1.59);
  EXPECT_DOUBLE_EQ(v.phase_functions[1][180], 2.68);
}

TEST(VolumeInput, KeywordsAreSkippedUnreadAndOnlyEndIsCompared) {
  Volume_files files;
  std::string text = files.section;
  const char* keywords[] = {"number_points_x:", "lattice_spacing_y:",   "band_id",
                            "scattering:",      "phase_function_file:", "subdivide_threshold:"};
  for (const char* word : keywords) {
    const size_t at = text.find(word);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::strlen(word), "zzz");
  }
  TCVolume_Object_class v;
  std::string printed;
  ASSERT_EQ(read_text(v, text, &printed), 1) << printed;
  EXPECT_EQ(v.number_points_x, 11);
  EXPECT_EQ(v.lattice_spacing_y, 0.5);
  EXPECT_EQ(v.band_id[1], 9);
  EXPECT_EQ(v.scattering[1], 0.25);
  EXPECT_EQ(v.subdivide_threshold, 0.05);
}

TEST(VolumeInput, ScatteringIsMultipleOnlyForTheExactWord) {
  Volume_files files;
  const char* words[] = {"multiple", "Multiple", "single", "MULTIPLE", "other"};
  const int codes[] = {1, 0, 0, 0, 0};
  for (int i = 0; i < 5; i++) {
    std::string text = files.section;
    const size_t at = text.find("single");
    text.replace(at, 6, words[i]);
    TCVolume_Object_class v;
    v.scattering_method = 7;
    ASSERT_EQ(read_text(v, text, nullptr), 1) << words[i];
    EXPECT_EQ(v.scattering_method, codes[i]) << words[i];
  }
}

TEST(VolumeInput, EitherMagicWordIsAccepted) {
  Volume_files files;
  std::string text = files.section;
  text.replace(0, std::strlen("Tidecast_data_file"), "Beavis_rules_the");
  TCVolume_Object_class v;
  EXPECT_EQ(read_text(v, text, nullptr), 1);
}

TEST(VolumeInput, BadHeadersAreRefusedWithTheSectionsWords) {
  TCVolume_Object_class v;
  std::string printed;
  EXPECT_EQ(read_text(v, "Tidecast_data_file cloud 1 1\nend\n", &printed), 0);
  EXPECT_EQ(printed,
            "file type cloud is not of \nexpected type volume\nunable to process volume data \n");
  EXPECT_EQ(read_text(v, "Tidecast_data_files volume 1 1\n", &printed), 0);
  EXPECT_EQ(printed,
            "incorrect header Tidecast_data_files in data file\nexpected string "
            "Tidecast_data_file \nunable to process volume data \n");
  // A file that needs a newer reader is refused without a word of the header's.
  EXPECT_EQ(read_text(v, "Tidecast_data_file volume 2 2\n", &printed), 0);
  EXPECT_EQ(printed, "unable to process volume data \n");
}

TEST(VolumeInput, OtherWordThanEndIsReportedWithABlankBeforeInstead) {
  Volume_files files;
  std::string text = files.section;
  text.replace(text.rfind("end"), 3, "ending");
  TCVolume_Object_class v;
  std::string printed;
  EXPECT_EQ(read_text(v, text, &printed), 0);
  EXPECT_EQ(printed, "error processing volume data \nread ending instead of end \n");
}

TEST(VolumeInput, AWordWhereANumberBelongsIsTheWordShownAtTheEnd) {
  Volume_files files;
  const char* targets[] = {
      "number_points_y: 3",     "lattice_spacing_z: 20",   "band_id  4 9",
      "extinction:  0.375 0.5", "threshold_density: 0.01", "transmission_cutoff: 0.001"};
  const char* replaced[] = {"number_points_y: three", "lattice_spacing_z: twenty",
                            "band_id  4 nine",        "extinction:  0.375 half",
                            "threshold_density: low", "transmission_cutoff: tiny"};
  const char* shown[] = {"three", "twenty", "nine", "half", "low", "tiny"};
  for (int i = 0; i < 6; i++) {
    std::string text = files.section;
    const size_t at = text.find(targets[i]);
    ASSERT_NE(at, std::string::npos) << targets[i];
    text.replace(at, std::strlen(targets[i]), replaced[i]);
    TCVolume_Object_class v;
    std::string printed;
    EXPECT_EQ(read_text(v, text, &printed), 0) << replaced[i];
    EXPECT_EQ(printed,
              std::string("error processing volume data \nread ") + shown[i] + " instead of end \n")
        << replaced[i];
    expect_consistent(v);
  }
}

TEST(VolumeInput, SectionCutAtEveryTokenFails) {
  Volume_files files;
  std::istringstream words(files.section);
  std::vector<std::string> tokens;
  std::string token;
  while (words >> token) tokens.push_back(token);
  ASSERT_GT(tokens.size(), 30u);
  for (size_t cut = 0; cut < tokens.size(); cut++) {
    std::string text;
    for (size_t i = 0; i < cut; i++) text += tokens[i] + " ";
    TCVolume_Object_class v;
    std::string printed;
    EXPECT_EQ(read_text(v, text, &printed), 0) << "cut at " << cut;
    EXPECT_FALSE(printed.empty()) << "cut at " << cut;
    expect_consistent(v);
  }
}

TEST(VolumeInput, NegativeOrHugeBandCountsAreRefusedBeforeAnyStorage) {
  Volume_files files;
  const char* counts[] = {"-2", "2000000000", "2147483647"};
  for (const char* count : counts) {
    std::string text = files.section;
    text.replace(text.find("number_of_bands 2"), std::strlen("number_of_bands 2"),
                 std::string("number_of_bands ") + count);
    TCVolume_Object_class v;
    std::string printed;
    EXPECT_EQ(read_text(v, text, &printed), 0);
    EXPECT_EQ(printed, std::string("can not allocate volume object input arrays because "
                                   "num_bands = ") +
                           count + "\nunable to allocate volume object input arrays \n");
    EXPECT_EQ(v.num_bands, 0);
  }
}

TEST(VolumeInput, LargeBandCountInAShortSectionCostsNoMemory) {
  // A count the stream does not back fails at the missing ids, not at an
  // allocation of a million bands of 181 values.
  TCVolume_Object_class v;
  std::string printed;
  const std::string text =
      "Tidecast_data_file volume 1 1\n"
      "number_points_x: 2 number_points_y: 2 number_points_z: 2\n"
      "lattice_spacing_x: 1 lattice_spacing_y: 1 lattice_spacing_z: 1\n"
      "number_of_bands 1000000 band_id 1 2 3\n";
  EXPECT_EQ(read_text(v, text, &printed), 0);
  EXPECT_EQ(printed, "error processing volume data \nread  instead of end \n");
  EXPECT_EQ(v.num_bands, 0);
}

TEST(VolumeInput, ZeroBandsReadWithAnEmptyPhaseFile) {
  Scratch_folder folder;
  const std::string phase = folder.file("empty.dat");
  write_text_file(phase, "");
  const std::string text =
      "Tidecast_data_file volume 1 1\n"
      "number_points_x: 1 number_points_y: 1 number_points_z: 1\n"
      "lattice_spacing_x: 1 lattice_spacing_y: 1 lattice_spacing_z: 1\n"
      "number_of_bands 0 band_id absorption: scattering: extinction:\n"
      "phase_function_file: " +
      phase +
      "\nthreshold_density: 0 scattering_method: multiple integration_scale: 1\n"
      "transmission_cutoff: 0.0001 subdivide_threshold: 0 end\n";
  TCVolume_Object_class v;
  std::string printed;
  ASSERT_EQ(read_text(v, text, &printed), 1) << printed;
  EXPECT_EQ(v.num_bands, 0);
  EXPECT_EQ(v.length.x, 0.0);
}

TEST(VolumeInput, LatticeWithoutPointsOrWithNegativeSpacingIsRefused) {
  Volume_files files;
  struct Case {
    const char* from;
    const char* to;
    const char* words;
  } cases[] = {
      {"number_points_x: 11", "number_points_x: 0",
       "volume lattice needs at least one point on each axis, read number_points_x = 0\n"},
      {"number_points_z: 6", "number_points_z: -4",
       "volume lattice needs at least one point on each axis, read number_points_z = -4\n"},
      {"lattice_spacing_y: 0.5", "lattice_spacing_y: -0.5",
       "volume lattice spacing can not be negative, read lattice_spacing_y = -0.5\n"},
  };
  for (const Case& c : cases) {
    std::string text = files.section;
    text.replace(text.find(c.from), std::strlen(c.from), c.to);
    TCVolume_Object_class v;
    std::string printed;
    EXPECT_EQ(read_text(v, text, &printed), 0) << c.to;
    EXPECT_EQ(printed, std::string(c.words) + "unable to process volume data \n");
  }
  // A zero spacing is a flat lattice, which the march allows for.
  std::string text = files.section;
  text.replace(text.find("lattice_spacing_y: 0.5"), 22, "lattice_spacing_y: 0");
  TCVolume_Object_class v;
  EXPECT_EQ(read_text(v, text, nullptr), 1);
  EXPECT_EQ(v.length.y, 0.0);
}

TEST(VolumeInput, MissingPhaseFileFailsTheSection) {
  Scratch_folder folder;
  const std::string missing = folder.file("none.dat");
  TCVolume_Object_class v;
  std::string printed;
  EXPECT_EQ(read_text(v, volume_text(missing), &printed), 0);
  EXPECT_EQ(printed, "unable to open " + missing + "\nunable to process phase function file \n");
  // The section itself was read.
  EXPECT_EQ(v.num_bands, 2);
  // The section alone does not look for the phase file.
  TCVolume_Object_class section_only;
  std::istringstream in(volume_text(missing));
  Stream_capture quiet(std::cout);
  EXPECT_EQ(section_only.read_section(in), 1);
  EXPECT_EQ(quiet.text(), "");
  EXPECT_EQ(section_only.phase_functions[1][180], 0.0);
}

TEST(VolumeInput, WriterGivesTheSectionForm) {
  Volume_files files;
  TCVolume_Object_class v;
  ASSERT_EQ(read_text(v, files.section, nullptr), 1);
  std::ostringstream out;
  ASSERT_EQ(v.write_stream(out), 1);
  EXPECT_EQ(out.str(),
            "Tidecast_data_file volume 1 1\n"
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
                files.phase_path +
                "\n"
                "threshold_density: 0.01\n"
                "scattering_method: single\n"
                "integration_scale: 0.25\n"
                "transmission_cutoff: 0.001\n"
                "subdivide_threshold: 0.05\n"
                "end \n");
  v.scattering_method = 1;
  std::ostringstream multiple;
  ASSERT_EQ(v.write_stream(multiple), 1);
  EXPECT_NE(multiple.str().find("scattering_method: multiple\n"), std::string::npos);
}

TEST(VolumeInput, WriterRefusesAScatteringFlagWithNoWord) {
  TCVolume_Object_class v;
  v.scattering_method = 2;
  std::ostringstream out;
  Stream_capture printed(std::cout);
  EXPECT_EQ(v.write_stream(out), 0);
  EXPECT_EQ(printed.text(), "attempt to output invalid volume object scattering flag \n");
  EXPECT_EQ(out.str(), "");
}

TEST(VolumeInput, WrittenSectionReadsBackTheSame) {
  Volume_files files;
  TCVolume_Object_class v;
  ASSERT_EQ(read_text(v, files.section, nullptr), 1);
  v.absorption[0] = 0.1 + 0.2;  // a value with no short decimal form
  v.threshold_density = 1.0 / 3.0;
  std::ostringstream first;
  ASSERT_EQ(v.write_stream(first), 1);
  TCVolume_Object_class again;
  ASSERT_EQ(read_text(again, first.str(), nullptr), 1);
  // Fifteen significant digits, the writers' precision.
  EXPECT_NEAR(again.absorption[0], 0.1 + 0.2, 1e-15);
  EXPECT_NEAR(again.threshold_density, 1.0 / 3.0, 1e-15);
  std::ostringstream second;
  ASSERT_EQ(again.write_stream(second), 1);
  EXPECT_EQ(second.str(), first.str());
}

TEST(VolumeInput, FilesAreNamedWhenTheyCannotBeOpenedOrRead) {
  Volume_files files;
  TCVolume_Object_class v;
  const std::string missing = files.folder.file("missing.vol");
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(v.read_file(missing.c_str()), 0);
    EXPECT_EQ(printed.text(), "unable to open volume input file " + missing + "\n");
  }
  const std::string bad = files.folder.file("bad.vol");
  write_text_file(bad, "Tidecast_data_file volume 1 1\nnumber_points_x: 2\n");
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(v.read_file(bad.c_str()), 0);
    EXPECT_EQ(printed.text(),
              "error processing volume data \nread  instead of end \n"
              "unable to process volume file " +
                  bad + "\n");
  }
  const std::string unwritable = files.folder.file("no/such/folder.vol");
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(v.write_file(unwritable.c_str()), 0);
    EXPECT_EQ(printed.text(), "unable to open volume output file " + unwritable + "\n");
  }
  const std::string out_path = files.folder.file("out.vol");
  v.scattering_method = 5;
  {
    Stream_capture printed(std::cout);
    EXPECT_EQ(v.write_file(out_path.c_str()), 0);
    EXPECT_EQ(printed.text(),
              "attempt to output invalid volume object scattering flag \n"
              "unable to process air output file " +
                  out_path + "\n");
  }
}

TEST(VolumeInput, FileWrittenReadsBack) {
  Volume_files files;
  const std::string path = files.folder.file("volume.vol");
  write_text_file(path, files.section);
  TCVolume_Object_class v;
  ASSERT_EQ(v.read_file(path.c_str()), 1);
  const std::string copy = files.folder.file("copy.vol");
  ASSERT_EQ(v.write_file(copy.c_str()), 1);
  TCVolume_Object_class again;
  ASSERT_EQ(again.read_file(copy.c_str()), 1);
  EXPECT_EQ(again.number_points_z, 6);
  EXPECT_EQ(again.extinction[1], 0.5);
  EXPECT_DOUBLE_EQ(again.phase_functions[1][90], 2.59);
}

TEST(VolumeArrays, AllocationRefusesCountsItCannotHold) {
  TCVolume_Object_class v;
  ASSERT_EQ(v.allocate_arrays(3, 181), 1);
  ASSERT_EQ(v.num_bands, 3);
  EXPECT_EQ(v.band_id[0], 1);
  EXPECT_EQ(v.band_id[2], 3);
  EXPECT_EQ(v.absorption[2], 0.0);
  EXPECT_EQ(v.phase_functions[2][180], 0.0);
  struct Case {
    int count, angles;
    const char* words;
  } cases[] = {
      {-1, 181, "can not allocate volume object input arrays because num_bands = -1\n"},
      {2, 0, "can not allocate volume object input arrays because n_phase_function_angles = 0\n"},
      {2, -181,
       "can not allocate volume object input arrays because n_phase_function_angles = -181\n"},
      {INT_MAX, 181,
       "can not allocate volume object input arrays because num_bands = 2147483647\n"},
  };
  for (const Case& c : cases) {
    Stream_capture printed(std::cout);
    EXPECT_EQ(v.allocate_arrays(c.count, c.angles), 0);
    EXPECT_EQ(printed.text(), c.words);
    // The old arrays stay.
    EXPECT_EQ(v.num_bands, 3);
    EXPECT_EQ(v.n_phase_function_angles, 181);
  }
}

TEST(VolumePacking, SizesCountBandsAndPhaseValues) {
  TCVolume_Object_class v;
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  v.packing_sizes(n_ints, n_doubles, n_chars);
  // No bands: 6 fixed ints; 11 fixed doubles; name and phase file name.
  EXPECT_EQ(n_ints, 6);
  EXPECT_EQ(n_doubles, 11);
  EXPECT_EQ(n_chars, 512);
  ASSERT_EQ(v.allocate_arrays(2, 181), 1);
  v.packing_sizes(n_ints, n_doubles, n_chars);
  // 6 + 2 ids; 11 + 3 * 2 coefficients + 2 * 181 phase values.
  EXPECT_EQ(n_ints, 8);
  EXPECT_EQ(n_doubles, 379);
  EXPECT_EQ(n_chars, 512);
}

TEST(VolumePacking, RecordCrossesWhole) {
  Volume_files files;
  TCVolume_Object_class v;
  ASSERT_EQ(read_text(v, files.section, nullptr), 1);
  copy_text(v.object_name, "fog", 256);
  v.priority = 3.5;
  Packed p;
  {
    Stream_capture printed(std::cout);
    ASSERT_EQ(v.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
    EXPECT_EQ(printed.text(), "packing fog\n");
  }
  EXPECT_EQ(p.int_bytes, 8 * 4);
  EXPECT_EQ(p.double_bytes, 379 * 8);
  EXPECT_EQ(p.char_bytes, 512);
  TCVolume_Object_class r;
  r.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  {
    Stream_capture printed(std::cout);
    ASSERT_EQ(r.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
    EXPECT_EQ(printed.text(), "fog unpacked !\n");
  }
  EXPECT_STREQ(r.object_name, "fog");
  EXPECT_EQ(r.priority, 3.5);
  EXPECT_EQ(r.number_points_x, 11);
  EXPECT_EQ(r.number_points_y, 3);
  EXPECT_EQ(r.number_points_z, 6);
  EXPECT_EQ(r.lattice_spacing_x, 10.0);
  EXPECT_EQ(r.lattice_spacing_y, 0.5);
  EXPECT_EQ(r.lattice_spacing_z, 20.0);
  EXPECT_EQ(r.length.x, 100.0);
  EXPECT_EQ(r.length.y, 1.0);
  EXPECT_EQ(r.length.z, 100.0);
  ASSERT_EQ(r.num_bands, 2);
  EXPECT_EQ(r.band_id[0], 4);
  EXPECT_EQ(r.band_id[1], 9);
  EXPECT_EQ(r.absorption[1], 0.002);
  EXPECT_EQ(r.scattering[0], 0.125);
  EXPECT_EQ(r.extinction[1], 0.5);
  EXPECT_EQ(r.n_phase_function_angles, 181);
  for (int b = 0; b < 2; b++) {
    for (int k = 0; k < 181; k++) EXPECT_EQ(r.phase_functions[b][k], v.phase_functions[b][k]);
  }
  EXPECT_DOUBLE_EQ(r.phase_functions[1][180], 2.68);
  EXPECT_EQ(std::string(r.phase_function_file), files.phase_path);
  EXPECT_EQ(r.threshold_density, 0.01);
  EXPECT_EQ(r.scattering_method, 0);
  EXPECT_EQ(r.integration_scale, 0.25);
  EXPECT_EQ(r.transmission_cutoff, 0.001);
  EXPECT_EQ(r.subdivide_threshold, 0.05);
  // And the receiver's own count now packs the same sizes.
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  r.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_doubles, 379);
}

TEST(VolumePacking, ReceiverWithoutTheSendersCountsRefusesTheSizes) {
  TCVolume_Object_class v;
  ASSERT_EQ(v.allocate_arrays(2, 181), 1);
  Packed p;
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(v.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
  }
  TCVolume_Object_class r;
  Stream_capture printed(std::cout);
  EXPECT_EQ(r.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
  EXPECT_EQ(printed.text(), "packing integer array of the wrong size \n");
  EXPECT_EQ(r.num_bands, 0);
}

TEST(VolumePacking, WrongSizesAndMissingArraysAreRefused) {
  TCVolume_Object_class v;
  ASSERT_EQ(v.allocate_arrays(1, 181), 1);
  Packed p;
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(v.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
  }
  struct Case {
    int di, dd, dc;
    const char* words;
  } cases[] = {
      {-4, 0, 0, "packing integer array of the wrong size \n"},
      {4, 0, 0, "packing integer array of the wrong size \n"},
      {0, -8, 0, "packing double array of the wrong size \n"},
      {0, 8, 0, "packing double array of the wrong size \n"},
      {0, 0, -1, "packing char array of the wrong size \n"},
  };
  for (const Case& c : cases) {
    TCVolume_Object_class r;
    r.set_sizes_from_packed(p.ints, p.doubles, p.chars);
    Stream_capture printed(std::cout);
    EXPECT_EQ(r.unpack(p.ints, p.int_bytes + c.di, p.doubles, p.double_bytes + c.dd, p.chars,
                       p.char_bytes + c.dc),
              0);
    EXPECT_EQ(printed.text(), c.words);
  }
  TCVolume_Object_class r;
  Stream_capture printed(std::cout);
  EXPECT_EQ(r.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, nullptr, p.char_bytes), 0);
  EXPECT_EQ(r.unpack(nullptr, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
  EXPECT_EQ(r.unpack(p.ints, p.int_bytes, nullptr, p.double_bytes, p.chars, p.char_bytes), 0);
  EXPECT_EQ(printed.text(),
            "char variable pointer not allocated \ninteger variable pointer not allocated \n"
            "double variable pointer not allocated \n");
}

TEST(VolumePacking, CountsChangedOnTheWireAreRefused) {
  TCVolume_Object_class v;
  ASSERT_EQ(v.allocate_arrays(1, 181), 1);
  Packed p;
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(v.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
  }
  // The sizes were taken from the array; a count changed after that does
  // not match them.
  TCVolume_Object_class r;
  r.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  p.ints[1] = 180;
  Stream_capture printed(std::cout);
  EXPECT_EQ(r.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
  EXPECT_EQ(printed.text(), "packing integer array of the wrong size \n");
  // Negative counts give sizes no array has.
  p.ints[0] = -1;
  p.ints[1] = 181;
  TCVolume_Object_class s;
  s.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  EXPECT_EQ(s.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
  EXPECT_EQ(s.num_bands, 0);
}

TEST(VolumePacking, AngleCountOtherThan181CrossesButCannotBeFilledFromAFile) {
  TCVolume_Object_class v;
  ASSERT_EQ(v.allocate_arrays(1, 180), 1);
  v.phase_functions[0][179] = 0.75;
  Packed p;
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(v.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
  }
  // 11 + 3 + 180 doubles.
  EXPECT_EQ(p.double_bytes, 194 * 8);
  TCVolume_Object_class r;
  r.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  {
    Stream_capture quiet(std::cout);
    ASSERT_EQ(r.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 1);
  }
  EXPECT_EQ(r.n_phase_function_angles, 180);
  EXPECT_EQ(r.phase_functions[0][179], 0.75);
  Stream_capture printed(std::cout);
  EXPECT_EQ(r.read_phase_file("/nonexistent"), 0);
  EXPECT_EQ(printed.text(), "currently able to use only phase functions with 181 angles \n");
}

TEST(VolumePacking, ReceivedCountsNoArrayCanHoldGiveSizesEveryArrayRefuses) {
  TCVolume_Object_class v;
  // A received count that no array can hold stands in until the next pack.
  int ints[8] = {INT_MAX, 181, 0, 0, 0, 0, 0, 0};
  v.set_sizes_from_packed(ints, nullptr, nullptr);
  int n_ints = 0, n_doubles = 0, n_chars = 0;
  v.packing_sizes(n_ints, n_doubles, n_chars);
  EXPECT_EQ(n_ints, -1);
  EXPECT_EQ(n_doubles, -1);
  // The chars do not depend on the bands.
  EXPECT_EQ(n_chars, 512);
}

}  // namespace
