// The volume section and its phase file. The bytes up to a line "%%" are
// the section, the rest the phase file. A section that reads must read back
// from its own writing to the same writing and survive packing; a phase
// file either fills every value or leaves every value as it was.
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "TCVolume_Object_class.h"
#include "quiet_streams.h"

namespace {

char phase_path[] = "/tmp/fuzz_volume_phase_XXXXXX";

// The value no phase file read here can leave behind by accident.
const double untouched_value = -12345.5;

void pack_round_trip(TCVolume_Object_class& input, const std::string& written) {
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  if (input.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    TCVolume_Object_class receiver;
    receiver.set_sizes_from_packed(ints, doubles, chars);
    if (!receiver.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) std::abort();
    std::ostringstream again;
    if (!receiver.write_stream(again) || again.str() != written) std::abort();
    for (int b = 0; b < input.num_bands; b++) {
      if (std::memcmp(receiver.phase_functions[b], input.phase_functions[b],
                      sizeof(double) * input.n_phase_function_angles) != 0) {
        std::abort();
      }
    }
  }
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

void check_phase_file(TCVolume_Object_class& input, const std::string& text) {
  for (int b = 0; b < input.num_bands; b++) {
    for (int k = 0; k < input.n_phase_function_angles; k++) {
      input.phase_functions[b][k] = untouched_value;
    }
  }
  {
    std::ofstream out(phase_path, std::ios::binary | std::ios::trunc);
    out << text;
  }
  const int filled = input.read_phase_file(phase_path);
  for (int b = 0; b < input.num_bands; b++) {
    for (int k = 0; k < input.n_phase_function_angles; k++) {
      const bool kept = input.phase_functions[b][k] == untouched_value;
      // A file may hold the sentinel itself; only a partial fill is a fault.
      if (!filled && !kept) std::abort();
    }
  }
}

void remove_phase_file() {
  unlink(phase_path);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  const int fd = mkstemp(phase_path);
  if (fd < 0) std::abort();
  close(fd);
  std::atexit(remove_phase_file);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string all = text_of(data, size);
  const size_t split = all.find("\n%%\n");
  const std::string section = split == std::string::npos ? all : all.substr(0, split);
  const std::string phase = split == std::string::npos ? "" : all.substr(split + 4);
  // Phase files are read for a few bands only: the cost grows with them.
  const int most_checked_bands = 64;

  TCVolume_Object_class input;
  std::istringstream in(section);
  if (!input.read_section(in)) return 0;
  std::ostringstream first;
  if (!input.write_stream(first)) std::abort();
  // NUL bytes cut a word short of what the stream took as one.
  if (section.find('\0') == std::string::npos) {
    TCVolume_Object_class again;
    std::istringstream back(first.str());
    if (!again.read_section(back)) std::abort();
    std::ostringstream second;
    if (!again.write_stream(second) || second.str() != first.str()) std::abort();
  }
  if (input.num_bands <= most_checked_bands) check_phase_file(input, phase);
  pack_round_trip(input, first.str());
  return 0;
}
