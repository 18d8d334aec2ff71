#include "TCScene_input.h"

#include <cstring>

#include "TCData_file.h"

TCScene_input::TCScene_input()
    : version(2),
      number_of_frames(0),
      tod_flag(0),
      frame_numbers(nullptr),
      times(nullptr),
      times_of_day(nullptr),
      first_frame(1),
      last_frame(1),
      increment(1) {
  output_file[0] = '\0';
  std::strcpy(output_format, "-b-C-c-f-.-t-");
}

TCScene_input::~TCScene_input() {
  delete[] frame_numbers;
  delete[] times;
  delete[] times_of_day;
}

int TCScene_input::read_scene(std::istream& in) {
  const int file_version = check_header(in, "scene", 2);
  if (file_version == 0) {
    std::cout << "scene file stream not of correct format"
              << "\n";
    return 0;
  }
  version = file_version;
  // The body (output names, object list, frame table) is not read by this
  // build yet: refuse the scene rather than render something half-read.
  std::cout << "scene contents can't be read by this build of TCEngine"
            << "\n";
  return 0;
}

void normalise_frame_range(int& first, int& last, int& step) {
  if (step == 0) step = 1;
  if (last < first && step >= 0) {
    last = first;
    step = 1;
  }
  if (first < last && step < 1) {
    last = first;
    step = 1;
  }
}

int TCScene_input::read_frame_range(std::istream& in) {
  skip_token(in);
  read_int(in, first_frame);
  skip_token(in);
  read_int(in, last_frame);
  skip_token(in);
  read_int(in, increment);
  normalise_frame_range(first_frame, last_frame, increment);
  return in ? 1 : 0;
}

void TCScene_input::set_frame_range(int first, int last, int step) {
  first_frame = first;
  last_frame = last;
  increment = step;
}
