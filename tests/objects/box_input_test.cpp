#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Bobbing_box_input.h"
#include "Solid_box_input.h"
#include "TCObject_kinds.h"
#include "Thermal_box_input.h"
#include "stream_capture.h"

namespace {

const char* solid_text =
    "Tidecast_data_file box 1 1\n"
    "length_x:  2 length_y:  3.5 length_z:  0.25\n"
    "number_of_bands: 2\n"
    "band_id: 4 9\n"
    "radiance: 0.5 0.75\n"
    "reflectivity: 0.125 0.25\n"
    "transmissivity: 0.0625 0.03125\n"
    "end\n";

const char* thermal_text =
    "Tidecast_data_file thermal_box 1 1\n"
    "length_x:  20 length_y:  10 length_z:  5\n"
    "number_of_bands: 3\n"
    "band_id: 1 2 3\n"
    "radiance: 1 2 3\n"
    "absorption: 0.5 0.25 0.125\n"
    "end\n";

const char* bobbing_section =
    "Tidecast_data_file bobbing_box 1 1\n"
    "decoupling_height 1.5\n"
    "dampening_factor  0.25\n"
    "end\n";

// Reads text through the reader, capturing what it prints.
template <class Record>
int read_text(Record& record, const std::string& text, std::string* printed) {
  std::istringstream in(text);
  Stream_capture out(std::cout);
  const int result = record.read_stream(in);
  if (printed != nullptr) *printed = out.text();
  return result;
}

class Temp_dir {
 public:
  Temp_dir() {
    char pattern[] = "/tmp/box_input_XXXXXX";
    const char* made = mkdtemp(pattern);
    path_ = made != nullptr ? made : "/tmp";
  }
  ~Temp_dir() {
    for (const std::string& f : files_) std::remove(f.c_str());
    rmdir(path_.c_str());
  }
  std::string file(const char* name, const std::string& text) {
    const std::string full = path_ + "/" + name;
    std::ofstream(full) << text;
    files_.push_back(full);
    return full;
  }
  std::string name(const char* name) {
    const std::string full = path_ + "/" + name;
    files_.push_back(full);
    return full;
  }

 private:
  std::string path_;
  std::vector<std::string> files_;
};

TEST(BoxInput, RecordsStartWithTheirKindsDefaults) {
  Solid_box_input solid;
  EXPECT_STREQ(solid.object_type, "box");
  EXPECT_EQ(solid.type_code, TC_KIND_SOLID_BOX);
  EXPECT_EQ(solid.priority, 2.0);
  EXPECT_EQ(solid.length.x, 1.0);
  EXPECT_EQ(solid.length.y, 1.0);
  EXPECT_EQ(solid.length.z, 1.0);
  EXPECT_EQ(solid.number_of_bands, 0);
  Thermal_box_input thermal;
  EXPECT_STREQ(thermal.object_type, "boxcloud");
  EXPECT_EQ(thermal.type_code, TC_KIND_THERMAL_BOX);
  EXPECT_EQ(thermal.priority, 2.0);
  EXPECT_EQ(thermal.length.z, 1.0);
  Bobbing_box_input bobbing;
  EXPECT_STREQ(bobbing.object_type, "bobbing_box");
  EXPECT_EQ(bobbing.type_code, TC_KIND_BOBBING_BOX);
  EXPECT_EQ(bobbing.priority, 2.0);
  EXPECT_EQ(bobbing.decoupling_height, 0.0);
  EXPECT_EQ(bobbing.dampening_factor, 1.0);
}

TEST(BoxInput, SolidBoxFileGivesEveryField) {
  Solid_box_input box;
  std::string printed;
  ASSERT_EQ(read_text(box, solid_text, &printed), 1);
  EXPECT_EQ(printed, "");
  EXPECT_EQ(box.length.x, 2.0);
  EXPECT_EQ(box.length.y, 3.5);
  EXPECT_EQ(box.length.z, 0.25);
  ASSERT_EQ(box.number_of_bands, 2);
  ASSERT_EQ(box.band_ids.n, 2);
  EXPECT_EQ(box.band_ids.band_id[0], 4);
  EXPECT_EQ(box.band_ids.band_id[1], 9);
  EXPECT_EQ(box.band_ids.radiance_in_band[0], 0.5);
  EXPECT_EQ(box.band_ids.radiance_in_band[1], 0.75);
  EXPECT_EQ(box.reflectivity[0], 0.125);
  EXPECT_EQ(box.reflectivity[1], 0.25);
  EXPECT_EQ(box.transmissivity[0], 0.0625);
  EXPECT_EQ(box.transmissivity[1], 0.03125);
}

TEST(BoxInput, SolidBoxWritesItsFileForm) {
  Solid_box_input box;
  ASSERT_EQ(read_text(box, solid_text, nullptr), 1);
  std::ostringstream out;
  ASSERT_EQ(box.write_stream(out), 1);
  EXPECT_EQ(out.str(),
            "Tidecast_data_file box 1 1 \n"
            "length_x:  2\n"
            "length_y:  3.5\n"
            "length_z:  0.25\n"
            "number_of_bands: 2\n"
            "band_id: 4 9\n"
            "radiance: 0.5 0.75\n"
            "reflectivity: 0.125 0.25\n"
            "transmissivity: 0.0625 0.03125\n"
            "end \n");
  Solid_box_input again;
  ASSERT_EQ(read_text(again, out.str(), nullptr), 1);
  std::ostringstream second;
  again.write_stream(second);
  EXPECT_EQ(second.str(), out.str());
}

TEST(BoxInput, ThermalBoxFileGivesEveryFieldAndWritesBack) {
  Thermal_box_input box;
  ASSERT_EQ(read_text(box, thermal_text, nullptr), 1);
  EXPECT_EQ(box.length.x, 20.0);
  ASSERT_EQ(box.number_of_bands, 3);
  EXPECT_EQ(box.band_ids.band_id[2], 3);
  EXPECT_EQ(box.radiance[1], 2.0);
  EXPECT_EQ(box.absorption[2], 0.125);
  std::ostringstream out;
  ASSERT_EQ(box.write_stream(out), 1);
  EXPECT_EQ(out.str(),
            "Tidecast_data_file thermal_box 1 1 \n"
            "length_x:  20\n"
            "length_y:  10\n"
            "length_z:  5\n"
            "number_of_bands: 3\n"
            "band_id: 1 2 3\n"
            "radiance: 1 2 3\n"
            "absorption: 0.5 0.25 0.125\n"
            "end \n");
}

TEST(BoxInput, BobbingBoxFileIsASolidBoxFileAndItsOwnSection) {
  Bobbing_box_input box;
  ASSERT_EQ(read_text(box, std::string(solid_text) + bobbing_section, nullptr), 1);
  EXPECT_EQ(box.number_of_bands, 2);
  EXPECT_EQ(box.decoupling_height, 1.5);
  EXPECT_EQ(box.dampening_factor, 0.25);
  std::ostringstream out;
  ASSERT_EQ(box.write_stream(out), 1);
  const std::string text = out.str();
  const std::string tail =
      "end \n"
      "Tidecast_data_file bobbing_box 1 1\n"
      "decoupling_height 1.5\n"
      "dampening_factor  0.25\n"
      "end \n";
  ASSERT_GE(text.size(), tail.size());
  EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
}

TEST(BoxInput, BobbingReaderStopsAfterItsSecondNumber) {
  Bobbing_box_input box;
  std::string printed;
  const std::string text = std::string(solid_text) +
                           "Tidecast_data_file bobbing_box 1 1\n"
                           "decoupling_height 2 dampening_factor 0.5 anything";
  std::istringstream in(text);
  {
    Stream_capture out(std::cout);
    ASSERT_EQ(box.read_stream(in), 1);
    printed = out.text();
  }
  EXPECT_EQ(printed, "");
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "anything");
}

TEST(BoxInput, BadHeadersAreRefusedWithTheKindsWords) {
  std::string printed;
  Solid_box_input solid;
  EXPECT_EQ(read_text(solid, "Tidecast_data_file thermal_box 1 1 end", &printed), 0);
  EXPECT_EQ(printed,
            "file type thermal_box is not of \nexpected type box\n cannot process box file \n");
  Thermal_box_input thermal;
  EXPECT_EQ(read_text(thermal, "Tidecast_data_file box 1 1 end", &printed), 0);
  EXPECT_EQ(printed,
            "file type box is not of \nexpected type thermal_box\n"
            " cannot process thermal box file \n");
  // A reader too old for the file: no word of the header's own.
  EXPECT_EQ(read_text(thermal, "Tidecast_data_file thermal_box 2 2 end", &printed), 0);
  EXPECT_EQ(printed, " cannot process thermal box file \n");
  Bobbing_box_input bobbing;
  EXPECT_EQ(read_text(bobbing, std::string(solid_text) + "Tidecast_data_file box 1 1", &printed),
            0);
  EXPECT_EQ(printed,
            "file type box is not of \nexpected type bobbing_box\n"
            " cannot process bobbing_box file \n");
}

TEST(BoxInput, MissingEndIsReportedWithTheWordFound) {
  std::string printed;
  Solid_box_input solid;
  std::string text = solid_text;
  text.replace(text.find("end"), 3, "fin");
  EXPECT_EQ(read_text(solid, text, &printed), 0);
  EXPECT_EQ(printed, "error processing solid_box file \nread fininstead of end\n");
  EXPECT_EQ(solid.number_of_bands, 0);
  EXPECT_EQ(solid.length.x, 1.0);

  Thermal_box_input thermal;
  text = thermal_text;
  text.replace(text.find("end"), 3, "stop");
  EXPECT_EQ(read_text(thermal, text, &printed), 0);
  EXPECT_EQ(printed, "error processing Thermal_box file \nread stopinstead of end\n");
}

TEST(BoxInput, WrongTypesStopTheReadAtTheWordThatFailed) {
  std::string printed;
  Solid_box_input solid;
  EXPECT_EQ(read_text(solid,
                      "Tidecast_data_file box 1 1 length_x: 2 length_y: wide length_z: 1 "
                      "number_of_bands: 0 band_id: radiance: reflectivity: transmissivity: end",
                      &printed),
            0);
  EXPECT_EQ(printed, "error processing solid_box file \nread wideinstead of end\n");
  EXPECT_EQ(solid.length.x, 1.0);
  Thermal_box_input thermal;
  EXPECT_EQ(read_text(thermal,
                      "Tidecast_data_file thermal_box 1 1 length_x: 2 length_y: 2 length_z: 1 "
                      "number_of_bands: 2 band_id: 1 two radiance: 1 1 absorption: 1 1 end",
                      &printed),
            0);
  EXPECT_EQ(printed, "error processing Thermal_box file \nread twoinstead of end\n");
}

TEST(BoxInput, TruncatedFilesFailWithoutKeepingAnything) {
  const std::string whole = solid_text;
  for (size_t cut = 0; cut < whole.size(); cut += 7) {
    Solid_box_input solid;
    std::string printed;
    EXPECT_EQ(read_text(solid, whole.substr(0, cut), &printed), 0) << cut;
    EXPECT_EQ(solid.number_of_bands, 0) << cut;
    EXPECT_EQ(solid.length.y, 1.0) << cut;
  }
  const std::string gas = thermal_text;
  for (size_t cut = 0; cut < gas.size(); cut += 5) {
    Thermal_box_input thermal;
    EXPECT_EQ(read_text(thermal, gas.substr(0, cut), nullptr), 0) << cut;
    EXPECT_EQ(thermal.number_of_bands, 0) << cut;
  }
}

TEST(BoxInput, NegativeOrHugeBandCountsAreRefusedAsAllocations) {
  std::string printed;
  Solid_box_input solid;
  EXPECT_EQ(read_text(solid,
                      "Tidecast_data_file box 1 1 length_x: 2 length_y: 2 length_z: 1 "
                      "number_of_bands: -3 band_id: 1 end",
                      &printed),
            0);
  EXPECT_EQ(printed, "unable to allocate memory in Solid_box_input\n");
  EXPECT_EQ(solid.length.x, 1.0);
  EXPECT_EQ(read_text(solid,
                      "Tidecast_data_file box 1 1 length_x: 2 length_y: 2 length_z: 1 "
                      "number_of_bands: 2000000000 band_id: 1 end",
                      &printed),
            0);
  EXPECT_EQ(printed, "unable to allocate memory in Solid_box_input\n");
  Thermal_box_input thermal;
  EXPECT_EQ(read_text(thermal,
                      "Tidecast_data_file thermal_box 1 1 length_x: 2 length_y: 2 length_z: 1 "
                      "number_of_bands: -1 end",
                      &printed),
            0);
  EXPECT_EQ(printed, "unable to allocate memory in Thermal_box_input\n");
}

TEST(BoxInput, LargeBandCountInAShortFileCostsNoMemory) {
  std::string printed;
  Solid_box_input solid;
  EXPECT_EQ(read_text(solid,
                      "Tidecast_data_file box 1 1 length_x: 2 length_y: 2 length_z: 1 "
                      "number_of_bands: 200000000 band_id: 1 2 3 end",
                      &printed),
            0);
  // The word the id list choked on is shown, even when it is "end".
  EXPECT_EQ(printed, "error processing solid_box file \nread endinstead of end\n");
  EXPECT_EQ(solid.number_of_bands, 0);
}

TEST(BoxInput, FilesAreNamedWhenTheyCannotBeOpenedOrRead) {
  Temp_dir dir;
  std::string missing = dir.name("missing.box");
  Solid_box_input solid;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(solid.read_file(missing.c_str()), 0);
    EXPECT_EQ(out.text(), "unable to open box file " + missing + "\n");
  }
  std::string bad = dir.file("bad.box", "Tidecast_data_file box 1 1 length_x: 1 end");
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(solid.read_file(bad.c_str()), 0);
    EXPECT_EQ(out.text(),
              "error processing solid_box file \nread instead of end\n"
              "unable to process box file " +
                  bad + "\n");
  }
  Thermal_box_input thermal;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(thermal.read_file(missing.c_str()), 0);
    EXPECT_EQ(out.text(), "unable to open box file " + missing + "\n");
  }
  Bobbing_box_input bobbing;
  std::string only_solid = dir.file("solid_only.box", solid_text);
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(bobbing.read_file(only_solid.c_str()), 0);
    EXPECT_EQ(out.text(),
              "incorrect header  in data file\nexpected string Tidecast_data_file \n"
              " cannot process bobbing_box file \n"
              "unable to process bobbing box file " +
                  only_solid + "\n");
  }
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(bobbing.read_file(bad.c_str()), 0);
    EXPECT_EQ(out.text(),
              "error processing solid_box file \nread instead of end\n"
              "unable to process box file " +
                  bad + "\n");
  }
  std::string nowhere = dir.name("no_such_folder/out.box");
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(solid.write_file(nowhere.c_str()), 0);
    EXPECT_EQ(thermal.write_file(nowhere.c_str()), 0);
    EXPECT_EQ(bobbing.write_file(nowhere.c_str()), 0);
    EXPECT_EQ(out.text(), "unable to open box file " + nowhere + "\n" + "unable to open box file " +
                              nowhere + "\n" + "unable to open box file " + nowhere + "\n");
  }
}

TEST(BoxInput, FilesWrittenReadBack) {
  Temp_dir dir;
  Bobbing_box_input bobbing;
  ASSERT_EQ(read_text(bobbing, std::string(solid_text) + bobbing_section, nullptr), 1);
  std::string path = dir.name("bob.box");
  ASSERT_EQ(bobbing.write_file(path.c_str()), 1);
  Bobbing_box_input again;
  ASSERT_EQ(again.read_file(path.c_str()), 1);
  EXPECT_EQ(again.band_ids.band_id[1], 9);
  EXPECT_EQ(again.dampening_factor, 0.25);

  Thermal_box_input thermal;
  ASSERT_EQ(read_text(thermal, thermal_text, nullptr), 1);
  std::string gas = dir.name("gas.box");
  ASSERT_EQ(thermal.write_file(gas.c_str()), 1);
  Thermal_box_input thermal_again;
  ASSERT_EQ(thermal_again.read_file(gas.c_str()), 1);
  EXPECT_EQ(thermal_again.absorption[1], 0.25);
}

// Packing.

struct Packed {
  ~Packed() {
    delete[] ints;
    delete[] doubles;
    delete[] chars;
  }
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0;
  int double_bytes = 0;
  int char_bytes = 0;
};

template <class Record>
int pack(Record& record, Packed& p) {
  Stream_capture out(std::cout);
  return record.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
}

template <class Record>
int unpack(Record& record, const Packed& p, std::string* printed) {
  Stream_capture out(std::cout);
  record.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  const int result =
      record.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes);
  if (printed != nullptr) *printed = out.text();
  return result;
}

TEST(BoxPacking, SolidBoxCrossesWhole) {
  Solid_box_input box;
  ASSERT_EQ(read_text(box, solid_text, nullptr), 1);
  std::strcpy(box.object_name, "crate");
  Packed p;
  ASSERT_EQ(pack(box, p), 1);
  // Root name block, then 1 count + 2 ids; 3 lengths + 3 x 2 values.
  EXPECT_EQ(p.int_bytes, 3 * 4);
  EXPECT_EQ(p.double_bytes, 9 * 8);
  EXPECT_EQ(p.char_bytes, 256);
  EXPECT_EQ(p.ints[0], 2);
  EXPECT_EQ(p.doubles[1], 3.5);
  Solid_box_input receiver;
  std::string printed;
  ASSERT_EQ(unpack(receiver, p, &printed), 1);
  EXPECT_EQ(printed, "crate unpacked !\n");
  EXPECT_STREQ(receiver.object_name, "crate");
  EXPECT_EQ(receiver.length.y, 3.5);
  std::ostringstream a, b;
  box.write_stream(a);
  receiver.write_stream(b);
  EXPECT_EQ(a.str(), b.str());
}

TEST(BoxPacking, ThermalAndBobbingBoxesCrossWhole) {
  Thermal_box_input gas;
  ASSERT_EQ(read_text(gas, thermal_text, nullptr), 1);
  Packed p;
  ASSERT_EQ(pack(gas, p), 1);
  EXPECT_EQ(p.int_bytes, 4 * 4);
  EXPECT_EQ(p.double_bytes, (3 + 6) * 8);
  Thermal_box_input gas_receiver;
  ASSERT_EQ(unpack(gas_receiver, p, nullptr), 1);
  std::ostringstream a, b;
  gas.write_stream(a);
  gas_receiver.write_stream(b);
  EXPECT_EQ(a.str(), b.str());

  Bobbing_box_input bob;
  ASSERT_EQ(read_text(bob, std::string(solid_text) + bobbing_section, nullptr), 1);
  Packed q;
  ASSERT_EQ(pack(bob, q), 1);
  EXPECT_EQ(q.double_bytes, 11 * 8);
  Bobbing_box_input bob_receiver;
  ASSERT_EQ(unpack(bob_receiver, q, nullptr), 1);
  std::ostringstream c, d;
  bob.write_stream(c);
  bob_receiver.write_stream(d);
  EXPECT_EQ(c.str(), d.str());
}

TEST(BoxPacking, WrongSizesAreRefused) {
  Solid_box_input box;
  ASSERT_EQ(read_text(box, solid_text, nullptr), 1);
  Packed p;
  ASSERT_EQ(pack(box, p), 1);
  Solid_box_input receiver;
  std::string printed;
  {
    Stream_capture out(std::cout);
    receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
    EXPECT_EQ(
        receiver.unpack(p.ints, p.int_bytes - 4, p.doubles, p.double_bytes, p.chars, p.char_bytes),
        0);
    receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
    EXPECT_EQ(
        receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes + 8, p.chars, p.char_bytes),
        0);
    receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
    EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, 100), 0);
    // Without the sender's counts the receiver's own (no bands) decide.
    EXPECT_EQ(
        receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
    EXPECT_EQ(
        receiver.unpack(nullptr, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
    printed = out.text();
  }
  EXPECT_EQ(printed,
            "packing integer array of the wrong size \n"
            "packing double array of the wrong size \n"
            "packing char array of the wrong size \n"
            "packing integer array of the wrong size \n"
            "integer variable pointer not allocated \n");
  EXPECT_EQ(receiver.number_of_bands, 0);

  // A count in the array that differs from the one the sizes came from.
  p.ints[0] = 5;
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  p.ints[0] = 2;
  EXPECT_EQ(unpack(receiver, p, &printed), 1);
  {
    Stream_capture out(std::cout);
    receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
    p.ints[0] = -1;
    EXPECT_EQ(
        receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
    EXPECT_EQ(out.text(), "packing integer array of the wrong size \n");
  }
}

TEST(BoxPacking, BobbingBoxSizesAreCheckedBeforeItsSolidPart) {
  Bobbing_box_input bob;
  ASSERT_EQ(read_text(bob, std::string(solid_text) + bobbing_section, nullptr), 1);
  Packed p;
  ASSERT_EQ(pack(bob, p), 1);
  Bobbing_box_input receiver;
  Stream_capture out(std::cout);
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  EXPECT_EQ(
      receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes - 8, p.chars, p.char_bytes),
      0);
  EXPECT_EQ(out.text(), "packing double array of the wrong size \n");
}

TEST(BoxPacking, BobbingBoxReportsItsSolidPartFailing) {
  Bobbing_box_input bob;
  ASSERT_EQ(read_text(bob, std::string(solid_text) + bobbing_section, nullptr), 1);
  Packed p;
  ASSERT_EQ(pack(bob, p), 1);
  Bobbing_box_input receiver;
  Stream_capture out(std::cout);
  // Sizes taken for two bands, then the count in the array changed.
  receiver.set_sizes_from_packed(p.ints, p.doubles, p.chars);
  p.ints[0] = 3;
  EXPECT_EQ(receiver.unpack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
            0);
  EXPECT_EQ(out.text(),
            "packing integer array of the wrong size \n"
            "unable to unpack box part of bobbing box \n");
  EXPECT_EQ(receiver.number_of_bands, 0);
}

TEST(BoxPacking, CountsNoArrayCanHoldAreRefusedWithTheKeptWords) {
  Packed p;
  Solid_box_input solid;
  solid.number_of_bands = -2;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(solid.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
    // Ints fit, doubles (3 per band) do not.
    solid.number_of_bands = 100000000;
    EXPECT_EQ(solid.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
    EXPECT_EQ(out.text(),
              "unable to allocate air integer packing array \n"
              "unable to allocate air double packing array \n");
  }
  solid.number_of_bands = 0;
  Thermal_box_input thermal;
  thermal.number_of_bands = 200000000;
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(thermal.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes),
              0);
    EXPECT_EQ(out.text(), "unable to allocate air double packing array \n");
  }
  thermal.number_of_bands = 0;
  Bobbing_box_input bob;
  {
    Stream_capture out(std::cout);
    bob.number_of_bands = -1;
    EXPECT_EQ(bob.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
    bob.number_of_bands = 100000000;
    EXPECT_EQ(bob.pack(p.ints, p.int_bytes, p.doubles, p.double_bytes, p.chars, p.char_bytes), 0);
    EXPECT_EQ(out.text(),
              "unable to allocate bobbing box integer packing array \n"
              "unable to allocate bobbing box double packing array \n");
  }
  bob.number_of_bands = 0;
  EXPECT_EQ(p.ints, nullptr);
  EXPECT_EQ(p.doubles, nullptr);
}

}  // namespace
