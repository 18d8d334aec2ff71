#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TCVolume_Object_class.h"
#include "scratch_folder.h"
#include "stream_capture.h"
#include "volume_test_files.h"

namespace {

// A record of n_bands bands whose phase values are all 9.0, and the result
// and printout of reading text as its phase file.
struct Phase_read {
  Phase_read(int n_bands, const std::string& text) {
    EXPECT_EQ(record.allocate_arrays(n_bands, 181), 1);
    for (int b = 0; b < n_bands; b++) {
      for (int k = 0; k < 181; k++) record.phase_functions[b][k] = 9.0;
    }
    const std::string path = folder.file("phase.dat");
    write_text_file(path, text);
    Stream_capture out(std::cout);
    result = record.read_phase_file(path.c_str());
    printed = out.text();
  }
  // Every value still the 9.0 set before the read.
  bool untouched() const {
    for (int b = 0; b < record.num_bands; b++) {
      for (int k = 0; k < 181; k++) {
        if (record.phase_functions[b][k] != 9.0) return false;
      }
    }
    return true;
  }
  Scratch_folder folder;
  TCVolume_Object_class record;
  int result = 0;
  std::string printed;
};

const char* wrong_count = "currently able to use only phase functions with 181 angles \n";

TEST(PhaseFile, EachBandTakes181ValuesInDegreeOrder) {
  Phase_read read(3, phase_text(3, 181));
  ASSERT_EQ(read.result, 1) << read.printed;
  EXPECT_EQ(read.printed, "");
  // 1.5 + band + degree / 1000, as written.
  EXPECT_DOUBLE_EQ(read.record.phase_functions[0][0], 1.5);
  EXPECT_DOUBLE_EQ(read.record.phase_functions[0][1], 1.501);
  EXPECT_DOUBLE_EQ(read.record.phase_functions[1][45], 2.545);
  EXPECT_DOUBLE_EQ(read.record.phase_functions[2][179], 3.679);
  // The value at 180 degrees, the one a backward scattering angle of
  // exactly pi uses alone, is the band's last.
  EXPECT_DOUBLE_EQ(read.record.phase_functions[2][180], 3.68);
}

TEST(PhaseFile, BandIdsAndAnglesOnFileAreNotCompared) {
  // Ids 40.. do not match the record's 1..; angles all 999 are not degrees
  // 0 to 180: both are read and dropped.
  std::ostringstream text;
  for (int b = 0; b < 2; b++) {
    text << 40 + b << "\n";
    for (int k = 0; k < 181; k++) text << "999 " << 0.25 * b + k << "\n";
  }
  Phase_read read(2, text.str());
  ASSERT_EQ(read.result, 1) << read.printed;
  EXPECT_EQ(read.record.band_id[0], 1);
  EXPECT_EQ(read.record.phase_functions[0][7], 7.0);
  EXPECT_EQ(read.record.phase_functions[1][180], 180.25);
}

TEST(PhaseFile, FileOf180AnglesIsRefusedAndChangesNothing) {
  for (int bands = 1; bands <= 2; bands++) {
    Phase_read read(bands, phase_text(bands, 180));
    EXPECT_EQ(read.result, 0) << bands;
    EXPECT_EQ(read.printed, wrong_count) << bands;
    EXPECT_TRUE(read.untouched()) << bands;
  }
}

TEST(PhaseFile, FileOf182AnglesIsRefusedAndChangesNothing) {
  for (int bands = 1; bands <= 3; bands++) {
    Phase_read read(bands, phase_text(bands, 182));
    EXPECT_EQ(read.result, 0) << bands;
    EXPECT_EQ(read.printed, wrong_count) << bands;
    EXPECT_TRUE(read.untouched()) << bands;
  }
}

TEST(PhaseFile, FileWithABandMoreOrLessIsRefused) {
  Phase_read more(2, phase_text(3, 181));
  EXPECT_EQ(more.result, 0);
  EXPECT_EQ(more.printed, wrong_count);
  Phase_read fewer(2, phase_text(1, 181));
  EXPECT_EQ(fewer.result, 0);
  EXPECT_EQ(fewer.printed, wrong_count);
  EXPECT_TRUE(fewer.untouched());
}

TEST(PhaseFile, EmptyFileForOneBandIsRefused) {
  Phase_read read(1, "");
  EXPECT_EQ(read.result, 0);
  EXPECT_EQ(read.printed, wrong_count);
}

TEST(PhaseFile, FileCutAtEveryNumberIsRefused) {
  const std::string full = phase_text(1, 181);
  std::istringstream words(full);
  std::string token;
  std::string text;
  int cuts = 0;
  while (words >> token) {
    Phase_read read(1, text);
    ASSERT_EQ(read.result, 0) << "after " << cuts << " numbers";
    ASSERT_TRUE(read.untouched());
    text += token + " ";
    cuts++;
  }
  EXPECT_EQ(cuts, 1 + 2 * 181);
  Phase_read whole(1, text);
  EXPECT_EQ(whole.result, 1);
}

TEST(PhaseFile, WordWhereANumberBelongsIsLeftToTheCallersLine) {
  std::string text = phase_text(1, 181);
  const std::string target = "\n90 ";
  const size_t at = text.find(target);
  ASSERT_NE(at, std::string::npos);
  text.replace(at, target.size(), "\nninety ");
  Phase_read read(1, text);
  EXPECT_EQ(read.result, 0);
  EXPECT_EQ(read.printed, "");
  EXPECT_TRUE(read.untouched());
  Phase_read id_word(1, "first\n" + phase_text(1, 181).substr(2));
  EXPECT_EQ(id_word.result, 0);
  EXPECT_EQ(id_word.printed, "");
}

TEST(PhaseFile, UnopenableFileIsNamed) {
  Scratch_folder folder;
  const std::string missing = folder.file("absent.dat");
  TCVolume_Object_class v;
  ASSERT_EQ(v.allocate_arrays(1, 181), 1);
  Stream_capture printed(std::cout);
  EXPECT_EQ(v.read_phase_file(missing.c_str()), 0);
  EXPECT_EQ(printed.text(), "unable to open " + missing + "\n");
}

TEST(PhaseFile, RecordWithoutArraysIsNotFilled) {
  Scratch_folder folder;
  const std::string path = folder.file("phase.dat");
  write_text_file(path, phase_text(1, 181));
  TCVolume_Object_class v;
  Stream_capture printed(std::cout);
  EXPECT_EQ(v.read_phase_file(path.c_str()), 0);
  EXPECT_EQ(printed.text(), "attempt to fill unallocated phase function array \n");
}

TEST(PhaseFile, OnlyRecordsOf181AnglesAreFilled) {
  Scratch_folder folder;
  const std::string path = folder.file("phase.dat");
  write_text_file(path, phase_text(1, 181));
  const int angles[] = {180, 182, 1};
  for (int n : angles) {
    TCVolume_Object_class v;
    ASSERT_EQ(v.allocate_arrays(1, n), 1);
    Stream_capture printed(std::cout);
    EXPECT_EQ(v.read_phase_file(path.c_str()), 0) << n;
    EXPECT_EQ(printed.text(), wrong_count) << n;
    EXPECT_EQ(v.phase_functions[0][0], 0.0);
  }
}

TEST(PhaseFile, SectionNamingABadPhaseFileFailsWithTheSectionsLine) {
  Scratch_folder folder;
  const std::string path = folder.file("short.dat");
  write_text_file(path, phase_text(2, 180));
  TCVolume_Object_class v;
  std::istringstream in(volume_text(path));
  Stream_capture printed(std::cout);
  EXPECT_EQ(v.read_stream(in), 0);
  EXPECT_EQ(printed.text(), std::string(wrong_count) + "unable to process phase function file \n");
}

}  // namespace
