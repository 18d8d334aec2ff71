#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>

#include "TCKeyframes.h"
#include "TCObject.h"
#include "TCObject_kinds.h"
#include "TCScene.h"
#include "TCScene_input.h"
#include "TCSettings.h"
#include "stream_capture.h"

namespace {

// Records the calls the frame walk makes, in order, into a shared log.
class Clock_object : public TCObject {
 public:
  Clock_object(int type, const char* tag_in, std::string* log_in)
      : TCObject(TCKeyframes(), 0.0, 0.0, 0, nullptr, type), tag(tag_in), log(log_in) {}
  void set_time(double t) override {
    std::ostringstream s;
    s << tag << ".t" << t << " ";
    *log += s.str();
    TCObject::set_time(t);
  }
  void prepare_frame() override { *log += tag + ".p "; }
  std::string tag;
  std::string* log;
};

class Scene_test : public ::testing::Test {
 protected:
  void SetUp() override {
    char dir[] = "/tmp/tc_scene_XXXXXX";
    ASSERT_NE(mkdtemp(dir), nullptr);
    work = dir;
  }
  void TearDown() override { std::system(("rm -rf " + work).c_str()); }

  // A scene with no objects and no cameras over the given frame table.
  int read(TCScene_input& input, const std::string& table, const std::string& base = "") {
    const std::string text =
        "Tidecast_data_file scene 2 2\noutput_file: " + (base.empty() ? work + "/run" : base) +
        "\noutput_format: -b-C-c-f-.-t-\n"
        "number_of_bands: 1\nwidth center_wavelength band_id\n1 0.5 0.1\n"
        "sun_flag: 0\nnumber_of_objects: 0\nnumber_of_cameras: 0\n" +
        table;
    std::istringstream in(text);
    Stream_capture quiet(std::cout);
    return input.read_scene(in);
  }

  std::string work;
};

const char* const two_rows =
    "number_of_frames: 2\ntod_flag: 0\nframe_number time\n10 0.0\n20 1.0\nend\n";

std::string run_output(TCScene& scene) {
  Stream_capture out(std::cout);
  scene.run();
  return out.text();
}

}  // namespace

TEST_F(Scene_test, TimesInterpolateAndExtrapolateFromTheTable) {
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  TCScene scene(input);
  EXPECT_DOUBLE_EQ(scene.time_for_frame(15), 0.5);
  EXPECT_DOUBLE_EQ(scene.time_for_frame(25), 1.5);
  EXPECT_DOUBLE_EQ(scene.time_for_frame(5), -0.5);
  // With no time-of-day column the time of day is the time.
  EXPECT_DOUBLE_EQ(scene.time_of_day_for_frame(25), 1.5);
}

TEST_F(Scene_test, OneRowGivesEveryFrameItsTime) {
  TCScene_input input;
  ASSERT_EQ(read(input, "number_of_frames: 1\ntod_flag: 0\nframe_number time\n4 2.5\nend\n"), 1);
  TCScene scene(input);
  for (int frame : {-7, 1, 4, 100}) EXPECT_DOUBLE_EQ(scene.time_for_frame(frame), 2.5);
  EXPECT_EQ(scene.needs_updates, 0);
}

TEST_F(Scene_test, ConstructionCopiesAndNormalisesTheRange) {
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  input.set_frame_range(9, 3, 1);  // as -f9 -l3 gives it
  TCScene scene(input);
  EXPECT_EQ(scene.first_frame, 9);
  EXPECT_EQ(scene.last_frame, 9);
  EXPECT_EQ(scene.increment, 1);
  EXPECT_EQ(scene.current_frame, 1);
  EXPECT_STREQ(scene.output_format, "-b-C-c-f-.-t-");
  EXPECT_EQ(scene.number_of_frames, 2);
  EXPECT_EQ(scene.frame_numbers[1], 20);
}

TEST_F(Scene_test, ReversedRangeWithNegativeIncrementRunsBackwards) {
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  input.set_frame_range(9, 3, -2);
  TCScene scene(input);
  verbose = 1;
  EXPECT_EQ(run_output(scene),
            "\nfirst frame: 9\nlast frame:  3\nincrement:   -2\n"
            "frame= 9, time=  -0.1\nWriting frame 0009\n"
            "frame= 7, time=  -0.3\nWriting frame 0007\n"
            "frame= 5, time=  -0.5\nWriting frame 0005\n"
            "frame= 3, time=  -0.7\nWriting frame 0003\n");
  EXPECT_EQ(scene.current_frame, 3);
  EXPECT_EQ(scene.object_list.current_frame, 3);
}

TEST_F(Scene_test, RangeAgainstANegativeIncrementCollapsesToTheFirstFrame) {
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  input.set_frame_range(3, 9, -2);
  TCScene scene(input);
  verbose = 0;
  EXPECT_EQ(run_output(scene),
            "\nfirst frame: 3\nlast frame:  3\nincrement:   1\nframe= 3, time=  -0.7\n");
  verbose = 1;
}

TEST_F(Scene_test, IncrementFourWalksOneFiveNine) {
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  input.set_frame_range(1, 10, 4);
  TCScene scene(input);
  verbose = 0;
  EXPECT_EQ(run_output(scene),
            "\nfirst frame: 1\nlast frame:  10\nincrement:   4\n"
            "frame= 1, time=  -0.9\nframe= 5, time=  -0.5\nframe= 9, time=  -0.1\n");
  verbose = 1;
}

TEST_F(Scene_test, TimeOfDayIsPrintedAndForcesUpdates) {
  TCScene_input input;
  ASSERT_EQ(read(input,
                 "number_of_frames: 2\ntod_flag: 1\nframe_number time\n"
                 "0 0.0 6.0\n10 1.0 7.0\nend\n"),
            1);
  input.set_frame_range(5, 5, 1);
  TCScene scene(input);
  EXPECT_EQ(scene.needs_updates, 1);
  verbose = 0;
  EXPECT_EQ(run_output(scene),
            "\nfirst frame: 5\nlast frame:  5\nincrement:   1\n"
            "frame= 5, time=  0.5time of day= 6.5\n");
  verbose = 1;
  EXPECT_DOUBLE_EQ(scene.time_of_day, 6.5);
}

TEST_F(Scene_test, ProgressLineKeepsAllDigitsOfALongFrameNumber) {
  // Only the file names cut a frame number to four characters.
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  input.set_frame_range(12345, 12345, 1);
  TCScene scene(input);
  verbose = 1;
  const std::string out = run_output(scene);
  EXPECT_NE(out.find("Writing frame 12345\n"), std::string::npos) << out;
}

TEST_F(Scene_test, ObjectsUpdateOnTheFirstFrameOnlyWhenNothingMoves) {
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  input.set_frame_range(10, 20, 10);
  TCScene scene(input);
  ASSERT_EQ(scene.needs_updates, 0);
  std::string log;
  scene.object_list.add_runtime_object(new Clock_object(TC_KIND_BOBBING_BOX, "bob", &log));
  scene.object_list.add_runtime_object(new Clock_object(TC_KIND_SOLID_BOX, "box", &log));
  scene.object_list.add_runtime_object(new Clock_object(TC_KIND_AIR, "air", &log));
  verbose = 0;
  run_output(scene);
  // The bobbing box moves after all others; prepare_frame follows in list order.
  EXPECT_EQ(log, "box.t0 air.t0 bob.t0 bob.p box.p air.p ");

  log.clear();
  scene.needs_updates = 1;
  run_output(scene);
  EXPECT_EQ(log,
            "box.t0 air.t0 bob.t0 bob.p box.p air.p "
            "box.t1 air.t1 bob.t1 bob.p box.p air.p ");
  verbose = 1;
}

TEST_F(Scene_test, PrintStateWalkPrintsSunObjectsAndFrames) {
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  input.set_frame_range(10, 10, 1);
  TCScene scene(input);
  std::string log;
  scene.object_list.add_runtime_object(new Clock_object(TC_KIND_SOLID_BOX, "box", &log));
  std::ostringstream state;
  {
    Stream_capture quiet(std::cout);
    scene.run_print_state(state);
  }
  const std::string s = state.str();
  EXPECT_EQ(s.find("\nFrame: 10\n  "), 0u) << s;
  EXPECT_NE(s.find("object_0\n"), std::string::npos) << s;
}

TEST_F(Scene_test, WriteDataWalkAsksEveryObjectPerFrame) {
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows), 1);
  input.set_frame_range(10, 20, 5);
  TCScene scene(input);
  std::string log;
  scene.object_list.add_runtime_object(new Clock_object(TC_KIND_SOLID_BOX, "box", &log));
  Stream_capture quiet(std::cout);
  EXPECT_EQ(scene.run_write_data("data"), 0);
  EXPECT_EQ(scene.current_frame, 20);
}

TEST_F(Scene_test, UnwritableOutputDirectoryExitsWith1912) {
  // exit(1912) reaches the parent as its low eight bits, 120.
  TCScene_input input;
  ASSERT_EQ(read(input, two_rows, work + "/no/such/run"), 1);
  EXPECT_EXIT(TCScene scene(input), ::testing::ExitedWithCode(1912 & 0xff),
              "\n      OUTPUT DIRECTORY ERROR \n      UNABLE TO WRITE TO " + work +
                  "/no/such/run\n      RENDER TERMINATED\n\n");
}
