#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "TCScene_input.h"
#include "stream_capture.h"

namespace {

// The object list section of a scene with one band, no sun, no objects and
// no cameras.
const char* const empty_list =
    "number_of_bands: 1\n"
    "width center_wavelength band_id\n"
    "7 0.55 0.1\n"
    "sun_flag: 0\n"
    "number_of_objects: 0\n"
    "number_of_cameras: 0\n";

std::string scene_text(const std::string& header, const std::string& names,
                       const std::string& table) {
  return header + "\n" + names + empty_list + table;
}

const char* const v2_header = "Tidecast_data_file scene 2 2";
const char* const v2_names = "output_file: out/run\noutput_format: -b-f-.-t-\n";
const char* const two_rows =
    "number_of_frames: 2\n"
    "tod_flag:         0\n"
    "frame_number   time\n"
    "10 0.0\n"
    "20 1.5\n"
    "end\n";

struct Read_result {
  int ok;
  std::string out;
};

Read_result read_text(TCScene_input& input, const std::string& text) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  Read_result r;
  r.ok = input.read_scene(in);
  r.out = out.text();
  return r;
}

}  // namespace

TEST(SceneInput, DefaultsBeforeReading) {
  TCScene_input input;
  EXPECT_STREQ(input.output_file, "");
  EXPECT_STREQ(input.output_format, "-b-C-c-f-.-t-");
  EXPECT_EQ(input.version, 2);
  EXPECT_EQ(input.number_of_frames, 0);
  EXPECT_EQ(input.tod_flag, 0);
  EXPECT_EQ(input.first_frame, 1);
  EXPECT_EQ(input.last_frame, 1);
  EXPECT_EQ(input.increment, 1);
}

TEST(SceneInput, ReadsEveryFieldOfAVersionTwoScene) {
  TCScene_input input;
  Read_result r = read_text(input, scene_text(v2_header, v2_names, two_rows));
  ASSERT_EQ(r.ok, 1) << r.out;
  EXPECT_EQ(input.version, 2);
  EXPECT_EQ(input.object_list.version, 2);
  EXPECT_STREQ(input.output_file, "out/run");
  EXPECT_STREQ(input.output_format, "-b-f-.-t-");
  EXPECT_EQ(input.object_list.number_of_bands, 1);
  EXPECT_EQ(input.object_list.objects_spectrum[0].band_id, 7);
  ASSERT_EQ(input.number_of_frames, 2);
  EXPECT_EQ(input.frame_numbers[0], 10);
  EXPECT_EQ(input.frame_numbers[1], 20);
  EXPECT_DOUBLE_EQ(input.times[0], 0.0);
  EXPECT_DOUBLE_EQ(input.times[1], 1.5);
}

TEST(SceneInput, VersionOneHasNoFormatAndKeepsTheDefault) {
  TCScene_input input;
  Read_result r =
      read_text(input, scene_text("Tidecast_data_file scene 1 1", "output_file: run\n", two_rows));
  ASSERT_EQ(r.ok, 1) << r.out;
  EXPECT_EQ(input.version, 1);
  EXPECT_EQ(input.object_list.version, 1);
  EXPECT_STREQ(input.output_file, "run");
  EXPECT_STREQ(input.output_format, "-b-C-c-f-.-t-");
}

TEST(SceneInput, BadHeaderIsRefused) {
  TCScene_input input;
  Read_result r = read_text(input, scene_text("Tidecast_data_file camera 2 2", v2_names, two_rows));
  EXPECT_EQ(r.ok, 0);
  const std::string last = "scene file stream not of correct format\n";
  ASSERT_GE(r.out.size(), last.size());
  EXPECT_EQ(r.out.substr(r.out.size() - last.size()), last);
}

TEST(SceneInput, TimeOfDayColumnUnderATwoWordHeading) {
  TCScene_input input;
  Read_result r = read_text(input, scene_text(v2_header, v2_names,
                                              "number_of_frames: 2\n"
                                              "tod_flag:         1\n"
                                              "frame_number   time\n"
                                              "1 0.0 6.0\n"
                                              "5 2.0 8.5\n"
                                              "end\n"));
  ASSERT_EQ(r.ok, 1) << r.out;
  EXPECT_EQ(input.tod_flag, 1);
  EXPECT_DOUBLE_EQ(input.times[1], 2.0);
  EXPECT_DOUBLE_EQ(input.times_of_day[0], 6.0);
  EXPECT_DOUBLE_EQ(input.times_of_day[1], 8.5);
}

TEST(SceneInput, ThreeWordHeadingDoesNotRead) {
  // The third heading word is taken as the first row's frame number.
  TCScene_input input;
  Read_result r = read_text(input, scene_text(v2_header, v2_names,
                                              "number_of_frames: 1\n"
                                              "tod_flag:         1\n"
                                              "frame_number   time  time_of_day\n"
                                              "1 0.0 6.0\n"
                                              "end\n"));
  EXPECT_EQ(r.ok, 0);
}

TEST(SceneInput, FrameCountBelowOneIsRefused) {
  for (const char* count : {"0", "-3"}) {
    TCScene_input input;
    Read_result r = read_text(input, scene_text(v2_header, v2_names,
                                                std::string("number_of_frames: ") + count +
                                                    "\ntod_flag: 0\nframe_number time\nend\n"));
    EXPECT_EQ(r.ok, 0);
    EXPECT_EQ(r.out, "number of keyframes must be positive \n");
  }
}

TEST(SceneInput, WordOtherThanEndIsReported) {
  TCScene_input input;
  Read_result r = read_text(input, scene_text(v2_header, v2_names,
                                              "number_of_frames: 1\ntod_flag: 0\n"
                                              "frame_number time\n1 0.0\nfinish\n"));
  EXPECT_EQ(r.ok, 0);
  EXPECT_EQ(r.out, "error reading scene stream \nread finishinstead of end\n");
}

TEST(SceneInput, HugeFrameCountInAShortFileFailsWithoutTheMemory) {
  TCScene_input input;
  Read_result r = read_text(input, scene_text(v2_header, v2_names,
                                              "number_of_frames: 2000000000\ntod_flag: 0\n"
                                              "frame_number time\n1 0.0\n2 1.0\nend\n"));
  EXPECT_EQ(r.ok, 0);
  // What was read is kept consistently: the arrays hold the rows counted.
  EXPECT_EQ(input.number_of_frames, 2);
  EXPECT_EQ(input.frame_numbers[1], 2);
}

TEST(SceneInput, CutShortAtEveryTokenNeverSucceeds) {
  // Cut after the header's version and up to the band count, the list finds no band
  // and ends the run; every other cut is a failed read.
  const std::string full = scene_text(v2_header, v2_names, two_rows);
  std::istringstream words(full);
  std::string word;
  std::string prefix;
  int cuts = 0;
  int band_count_seen = 0;
  while (words >> word) {
    if (cuts >= 3 && !band_count_seen) {
      EXPECT_EXIT(
          {
            TCScene_input input;
            read_text(input, prefix);
          },
          ::testing::ExitedWithCode(1), "")
          << "cut before " << word;
    } else {
      TCScene_input input;
      Read_result r = read_text(input, prefix);
      EXPECT_EQ(r.ok, 0) << "cut before " << word;
    }
    if (prefix.find("number_of_bands: ") != std::string::npos) band_count_seen = 1;
    prefix += word + " ";
    cuts++;
  }
  EXPECT_GT(cuts, 20);
  TCScene_input input;
  EXPECT_EQ(read_text(input, prefix).ok, 1);
}

TEST(SceneInput, RangeLinesAreNormalised) {
  struct Case {
    const char* text;
    int first, last, increment;
  } cases[] = {
      {"first_frame: 9 last_frame: 3 increment: -2", 9, 3, -2},
      {"first_frame: 3 last_frame: 9 increment: -2", 3, 3, 1},
      {"first_frame: 9 last_frame: 3 increment: 1", 9, 9, 1},
      {"first_frame: 1 last_frame: 10 increment: 0", 1, 10, 1},
      {"first_frame: 1 last_frame: 10 increment: 4", 1, 10, 4},
  };
  for (const Case& c : cases) {
    TCScene_input input;
    std::istringstream in(c.text);
    EXPECT_EQ(input.read_frame_range(in), 1);
    EXPECT_EQ(input.first_frame, c.first) << c.text;
    EXPECT_EQ(input.last_frame, c.last) << c.text;
    EXPECT_EQ(input.increment, c.increment) << c.text;
  }
}

TEST(SceneInput, WrittenSceneReadsBackEqual) {
  TCScene_input input;
  ASSERT_EQ(read_text(input, scene_text(v2_header, v2_names, two_rows)).ok, 1);
  input.first_frame = 2;
  input.last_frame = 8;
  input.increment = 3;
  std::ostringstream out;
  ASSERT_EQ(input.write_scene(out), 1);
  const std::string written = out.str();
  EXPECT_EQ(written.find("Tidecast_data_file scene 2 2\noutput_file: out/run\n"
                         "output_format: -b-f-.-t-\n"),
            0u);
  EXPECT_NE(written.find("number_of_frames: 2\ntod_flag:         0\nframe_number   time \n"
                         "10 0\n20 1.5\nend \nfirst_frame: 2\nlast_frame: 8\nincrement:  3\n"),
            std::string::npos)
      << written;

  TCScene_input again;
  std::istringstream in(written);
  Stream_capture quiet(std::cout);
  ASSERT_EQ(again.read_scene(in), 1);
  ASSERT_EQ(again.read_frame_range(in), 1);
  EXPECT_STREQ(again.output_file, "out/run");
  EXPECT_STREQ(again.output_format, "-b-f-.-t-");
  ASSERT_EQ(again.number_of_frames, 2);
  EXPECT_EQ(again.frame_numbers[1], 20);
  EXPECT_DOUBLE_EQ(again.times[1], 1.5);
  EXPECT_EQ(again.first_frame, 2);
  EXPECT_EQ(again.last_frame, 8);
  EXPECT_EQ(again.increment, 3);
}

TEST(SceneInput, VersionOneWriterLeavesTheFormatOut) {
  TCScene_input input;
  ASSERT_EQ(
      read_text(input, scene_text("Tidecast_data_file scene 1 1", "output_file: run\n", two_rows))
          .ok,
      1);
  std::ostringstream out;
  ASSERT_EQ(input.write_scene(out), 1);
  EXPECT_EQ(out.str().find("Tidecast_data_file scene 1 1\noutput_file: run\nnumber_of_bands"), 0u)
      << out.str();
}

TEST(SceneInput, WriterPrintsAThirdHeadingWordWithTimeOfDay) {
  TCScene_input input;
  ASSERT_EQ(read_text(input, scene_text(v2_header, v2_names,
                                        "number_of_frames: 1\ntod_flag: 1\nframe_number time\n"
                                        "4 0.5 7.25\nend\n"))
                .ok,
            1);
  std::ostringstream out;
  ASSERT_EQ(input.write_scene(out), 1);
  EXPECT_NE(out.str().find("frame_number   time  time_of_day \n4 0.5 7.25\nend \n"),
            std::string::npos)
      << out.str();
  // And that file does not read back.
  TCScene_input again;
  std::istringstream in(out.str());
  Stream_capture quiet(std::cout);
  EXPECT_EQ(again.read_scene(in), 0);
}

TEST(SceneInput, SceneFileMessages) {
  char dir[] = "/tmp/tc_scene_input_XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const std::string d = dir;
  {
    TCScene_input input;
    Stream_capture err(std::cerr);
    EXPECT_EQ(input.read_scene_file((d + "/missing.dat").c_str()), 0);
    EXPECT_EQ(err.text(),
              "\n->TCError in TCScene_input::read_scene_file : Can't open scene file: " + d +
                  "/missing.dat\n");
  }
  {
    std::ofstream(d + "/bad.dat") << "Tidecast_data_file sun 1 1\n";
    TCScene_input input;
    Stream_capture out(std::cout);
    EXPECT_EQ(input.read_scene_file((d + "/bad.dat").c_str()), 0);
    EXPECT_NE(out.text().find("unable to process scene input file \n"), std::string::npos);
  }
  {
    std::ofstream(d + "/norange.dat") << scene_text(v2_header, v2_names, two_rows);
    TCScene_input input;
    Stream_capture out(std::cout);
    EXPECT_EQ(input.read_scene_file((d + "/norange.dat").c_str()), 0);
    EXPECT_EQ(out.text(), "unable to process scene input frames \n");
  }
  {
    TCScene_input input;
    Stream_capture out(std::cout);
    EXPECT_EQ(input.write_scene_file((d + "/no/such/dir.dat").c_str()), 0);
    EXPECT_EQ(out.text(), "unable to open scene input file \n");
  }
  {
    std::ofstream(d + "/good.dat") << scene_text(v2_header, v2_names, two_rows)
                                   << "first_frame: 1 last_frame: 2 increment: 1\n";
    TCScene_input input;
    Stream_capture out(std::cout);
    EXPECT_EQ(input.read_scene_file((d + "/good.dat").c_str()), 1);
    EXPECT_EQ(input.write_scene_file((d + "/copy.dat").c_str()), 1);
    TCScene_input again;
    EXPECT_EQ(again.read_scene_file((d + "/copy.dat").c_str()), 1);
    EXPECT_EQ(again.last_frame, 2);
  }
  std::system(("rm -rf " + d).c_str());
}
