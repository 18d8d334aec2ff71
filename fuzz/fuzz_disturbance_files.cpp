// A disturbance's block of the ocean file followed by its detail file, for
// every kind. The first byte picks the kind. A record that reads must write,
// read back from its own writing to the same writing, and cross the packed
// arrays to a record that writes the same detail file.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "Boat_details_input.h"
#include "TCDisturbance_inputs.h"
#include "TCGrid_details_input.h"
#include "quiet_streams.h"

namespace {

// Codes -9 .. -1, a further ocean grid, and the primary grid with its
// periodic flags.
const int n_choices = 11;

TCGrid_details_input* record_for(int choice) {
  TCGrid_details_input* record = new_grid_details_input(choice < 9 ? -1 - choice : 1);
  if (record != nullptr && choice == 10) record->carries_periodicity = 1;
  return record;
}

std::string written(const TCGrid_details_input& record, int with_block) {
  std::ostringstream out;
  if (with_block && !record.write_grid_block(out)) return "";
  if (!record.write_detail_file(out)) return "";
  return out.str();
}

void check_round_trips(TCGrid_details_input& input, int choice, int text_has_nul) {
  const std::string first = written(input, 1);
  if (first.empty()) return;
  // The Kelvin boat writes its coupling word the wrong way round on purpose.
  const Boat_details_input* boat = dynamic_cast<const Boat_details_input*>(&input);
  const int stable = boat == nullptr || boat->wake_type != Boat_details_input::wake_kelvin;
  if (stable && !text_has_nul) {
    TCGrid_details_input* again = record_for(choice);
    std::istringstream back(first);
    // Numbers too large for the text (written "inf") do not read back.
    if (again->read_grid_block(back) && again->read_detail_file(back)) {
      if (written(*again, 1) != first) std::abort();
    }
    delete again;
  }

  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  if (!input.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) std::abort();
  TCGrid_details_input* receiver = record_for(choice);
  receiver->set_sizes_from_packed(ints, doubles, chars);
  if (!receiver->unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) std::abort();
  if (written(*receiver, 0) != written(input, 0)) std::abort();
  delete receiver;
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const int choice = data[0] % n_choices;
  TCGrid_details_input* input = record_for(choice);
  if (input == nullptr) return 0;
  std::istringstream in(text_of(data + 1, size - 1));
  if (input->read_grid_block(in) && input->read_detail_file(in)) {
    // NUL bytes cut a word short of what the stream took as one.
    check_round_trips(*input, choice, std::memchr(data + 1, 0, size - 1) != nullptr);
  }
  delete input;
  return 0;
}
