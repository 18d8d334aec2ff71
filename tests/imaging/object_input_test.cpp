#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>

#include "TCConstants.h"
#include "TCObject_input.h"
#include "TCObject_kinds.h"
#include "stream_capture.h"

namespace {

const char* const kTwoKeys =
    "number_of_times 2\n"
    "time x y z chi phi theta\n"
    "0 1 2 3 10 20 30\n"
    "4 5 6 7 40 50 60\n";

const char* const kOneKey =
    "number_of_times 1\n"
    "time x y z chi phi theta\n"
    "0 -1 -2 -3 0 90 0\n";

TEST(ObjectInput, DefaultsBeforeAnyLine) {
  TCObject_input input;
  EXPECT_EQ(input.priority, 1.0);
  EXPECT_EQ(input.list, nullptr);
  EXPECT_EQ(input.object_id, 0);
  EXPECT_EQ(input.start_time, 0.0);
  EXPECT_STREQ(input.object_name, "type_name");
  EXPECT_STREQ(input.object_type, "type_name");
  EXPECT_EQ(input.type_code, -1);
  EXPECT_EQ(input.version, 2);
  EXPECT_STREQ(input.object_file, "");
  EXPECT_EQ(input.track.number_of_times, 1);
}

TEST(ObjectInput, VersionTwoLineReadsNameTypeFileAndPriority) {
  std::istringstream in(std::string(kTwoKeys) +
                        "object_name: boat object_type: box object_file: boat.box priority: 2.5\n");
  TCObject_input input;
  input.version = 2;
  ASSERT_EQ(input.read_object_line(in), 1);
  EXPECT_STREQ(input.object_name, "boat");
  EXPECT_STREQ(input.object_type, "box");
  EXPECT_EQ(input.type_code, TC_KIND_SOLID_BOX);
  EXPECT_STREQ(input.object_file, "boat.box");
  EXPECT_EQ(input.priority, 2.5);
  ASSERT_EQ(input.track.number_of_times, 2);
  EXPECT_EQ(input.track.times[1], 4.0);
  EXPECT_EQ(input.track.positions[1].z, 7.0);
  EXPECT_NEAR(input.track.chi[0], 10.0 * tc_degrees_to_radians, 1e-15);
}

// Lists of the first version have no names: every object is "type_name",
// so lookups by name cannot tell them apart.
TEST(ObjectInput, VersionOneLineNamesEveryObjectTypeName) {
  std::istringstream in(std::string(kTwoKeys) + "type: ocean file: sea.ocean priority: 3\n" +
                        kOneKey + "type: air file: air.dat priority: 0.5\n");
  TCObject_input first, second;
  first.version = 1;
  second.version = 1;
  std::strcpy(first.object_name, "was_named");
  ASSERT_EQ(first.read_object_line(in), 1);
  ASSERT_EQ(second.read_object_line(in), 1);
  EXPECT_STREQ(first.object_name, "type_name");
  EXPECT_STREQ(second.object_name, "type_name");
  EXPECT_STREQ(first.object_type, "ocean");
  EXPECT_EQ(first.type_code, TC_KIND_OCEAN);
  EXPECT_STREQ(first.object_file, "sea.ocean");
  EXPECT_EQ(first.priority, 3.0);
  EXPECT_STREQ(second.object_type, "air");
  EXPECT_EQ(second.type_code, TC_KIND_AIR);
  EXPECT_EQ(second.priority, 0.5);
}

TEST(ObjectInput, VersionZeroIsLaidOutAsVersionOne) {
  std::istringstream in(std::string(kOneKey) + "type: water file: flat.dat priority: 2\n");
  TCObject_input input;
  input.version = 0;
  ASSERT_EQ(input.read_object_line(in), 1);
  EXPECT_STREQ(input.object_type, "water");
  EXPECT_STREQ(input.object_file, "flat.dat");
  EXPECT_STREQ(input.object_name, "type_name");
}

TEST(ObjectInput, UnknownKindWordIsRefusedWithItsMessage) {
  std::istringstream in(std::string(kOneKey) +
                        "object_name: b object_type: yacht object_file: y.dat priority: 1\n");
  TCObject_input input;
  int result;
  {
    Stream_capture out(std::cout);
    result = input.read_object_line(in);
    EXPECT_EQ(out.text(), "object type yachtnot valid \n");
  }
  EXPECT_EQ(result, 0);
  EXPECT_EQ(input.type_code, -1);
}

TEST(ObjectInput, CameraLineHasNoNameAndPriorityMinusOne) {
  std::istringstream in(std::string(kTwoKeys) + "type: camera file: cam.dat\n");
  TCObject_input input;
  std::strcpy(input.object_name, "old");
  ASSERT_EQ(input.read_camera_line(in), 1);
  EXPECT_STREQ(input.object_type, "camera");
  EXPECT_EQ(input.type_code, TC_KIND_CAMERA);
  EXPECT_STREQ(input.object_file, "cam.dat");
  EXPECT_EQ(input.priority, -1.0);
  EXPECT_STREQ(input.object_name, "type_name");
  EXPECT_EQ(input.track.number_of_times, 2);
}

TEST(ObjectInput, CameraLineWithUnknownKindIsRefused) {
  std::istringstream in(std::string(kOneKey) + "type: eye file: cam.dat\n");
  TCObject_input input;
  Stream_capture out(std::cout);
  EXPECT_EQ(input.read_camera_line(in), 0);
  EXPECT_EQ(out.text(), "object type eyenot valid \n");
}

TEST(ObjectInput, VersionTwoWriterEndsWithItsFourKeywordLines) {
  std::istringstream in(std::string(kOneKey) + "n: boat t: solidbox f: boat.box p: 2.5\n");
  TCObject_input input;
  ASSERT_EQ(input.read_object_line(in), 1);
  std::ostringstream out;
  ASSERT_EQ(input.write_object_line(out), 1);
  const std::string tail =
      "object_name: boat\nobject_type: solidbox\nobject_file: boat.box\npriority:    2.5\n";
  const std::string text = out.str();
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST(ObjectInput, VersionOneWriterHasNoNameLine) {
  TCObject_input input;
  input.version = 1;
  std::strcpy(input.object_type, "land");
  std::strcpy(input.object_file, "hills.dat");
  input.priority = 4.0;
  std::ostringstream out;
  input.write_object_line(out);
  const std::string text = out.str();
  EXPECT_EQ(text.find("object_name"), std::string::npos);
  const std::string tail = "object_type: land\nobject_file: hills.dat\npriority:    4\n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

void expect_same_line(const TCObject_input& a, const TCObject_input& b) {
  EXPECT_STREQ(a.object_name, b.object_name);
  EXPECT_STREQ(a.object_type, b.object_type);
  EXPECT_EQ(a.type_code, b.type_code);
  EXPECT_STREQ(a.object_file, b.object_file);
  EXPECT_EQ(a.priority, b.priority);
  ASSERT_EQ(a.track.number_of_times, b.track.number_of_times);
  for (int i = 0; i < a.track.number_of_times; i++) {
    EXPECT_EQ(a.track.times[i], b.track.times[i]);
    EXPECT_EQ(a.track.positions[i].x, b.track.positions[i].x);
    EXPECT_EQ(a.track.positions[i].y, b.track.positions[i].y);
    EXPECT_EQ(a.track.positions[i].z, b.track.positions[i].z);
    EXPECT_NEAR(a.track.chi[i], b.track.chi[i], 1e-13);
    EXPECT_NEAR(a.track.phi[i], b.track.phi[i], 1e-13);
    EXPECT_NEAR(a.track.theta[i], b.track.theta[i], 1e-13);
  }
}

TEST(ObjectInput, VersionTwoLineRoundTrips) {
  std::istringstream in(std::string(kTwoKeys) +
                        "object_name: hull_7 object_type: bobbing_box object_file: hull.box "
                        "priority: 0.125\n");
  TCObject_input original;
  ASSERT_EQ(original.read_object_line(in), 1);
  std::stringstream text;
  ASSERT_EQ(original.write_object_line(text), 1);
  TCObject_input copy;
  ASSERT_EQ(copy.read_object_line(text), 1);
  expect_same_line(original, copy);
}

TEST(ObjectInput, VersionOneLineRoundTrips) {
  std::istringstream in(std::string(kTwoKeys) + "type: spray file: mist.dat priority: 6.75\n");
  TCObject_input original;
  original.version = 1;
  ASSERT_EQ(original.read_object_line(in), 1);
  std::stringstream text;
  ASSERT_EQ(original.write_object_line(text), 1);
  TCObject_input copy;
  copy.version = 1;
  ASSERT_EQ(copy.read_object_line(text), 1);
  expect_same_line(original, copy);
  EXPECT_STREQ(copy.object_name, "type_name");
}

TEST(ObjectInput, CameraLineRoundTrips) {
  std::istringstream in(std::string(kTwoKeys) + "type: bobbing_camera file: bob.cam\n");
  TCObject_input original;
  ASSERT_EQ(original.read_camera_line(in), 1);
  std::stringstream text;
  ASSERT_EQ(original.write_camera_line(text), 1);
  const std::string tail = "object_type: bobbing_camera\nobject_file: bob.cam\n";
  ASSERT_GE(text.str().size(), tail.size());
  EXPECT_EQ(text.str().substr(text.str().size() - tail.size()), tail);
  TCObject_input copy;
  ASSERT_EQ(copy.read_camera_line(text), 1);
  expect_same_line(original, copy);
  EXPECT_EQ(copy.type_code, TC_KIND_BOBBING_CAMERA);
}

TEST(ObjectInput, CopyHeaderCopiesEveryFieldAndOwnsItsTrack) {
  std::istringstream in(std::string(kTwoKeys) +
                        "object_name: rock object_type: land object_file: rock.dat priority: 9\n");
  TCObject_input source;
  ASSERT_EQ(source.read_object_line(in), 1);
  source.object_id = 12;
  source.start_time = 3.5;
  source.version = 2;
  source.list = reinterpret_cast<TCObject_list_input*>(&source);

  TCObject_input copy;
  copy.version = 1;
  copy.copy_header(source);
  expect_same_line(source, copy);
  EXPECT_EQ(copy.object_id, 12);
  EXPECT_EQ(copy.start_time, 3.5);
  EXPECT_EQ(copy.version, 2);
  EXPECT_EQ(copy.list, source.list);

  source.track.positions[0].x = 100.0;
  EXPECT_EQ(copy.track.positions[0].x, 1.0);
  EXPECT_NE(copy.track.positions, source.track.positions);
}

// A kind with a file of its own, to see that process_input reads it.
class File_reading_input : public TCObject_input {
 public:
  int read_file(const char* path) override {
    read_path = path;
    calls++;
    return result;
  }
  std::string read_path;
  int calls = 0;
  int result = 1;
};

TEST(ObjectInput, ProcessInputCopiesThenReadsTheNamedFile) {
  TCObject_input header;
  std::strcpy(header.object_file, "boat.box");
  std::strcpy(header.object_name, "boat");
  header.type_code = TC_KIND_SOLID_BOX;
  File_reading_input kind;
  EXPECT_EQ(kind.process_input(header), 1);
  EXPECT_EQ(kind.calls, 1);
  EXPECT_EQ(kind.read_path, "boat.box");
  EXPECT_STREQ(kind.object_name, "boat");
  EXPECT_EQ(kind.type_code, TC_KIND_SOLID_BOX);
  kind.result = 0;
  EXPECT_EQ(kind.process_input(header), 0);
}

TEST(ObjectInput, KindWithoutFileReadsAndWritesNothingAndSucceeds) {
  TCObject_input input;
  EXPECT_EQ(input.read_file("/nonexistent/anything"), 1);
  EXPECT_EQ(input.write_file("/nonexistent/anything"), 1);
  TCObject_input header;
  EXPECT_EQ(input.process_input(header), 1);
}

}  // namespace
