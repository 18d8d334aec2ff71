#include "TCScene_input.h"

#include <cstring>
#include <fstream>
#include <new>

#include "TCCamera_input.h"
#include "TCData_file.h"
#include "TCError.h"
#include "TCStar_input.h"

namespace {

// Rows the frame table starts with before it grows by doubling.
const int first_table_rows = 16;

int* grown_ints(const int* old, int used, int capacity) {
  int* grown = new (std::nothrow) int[capacity];
  if (grown != nullptr && used > 0) std::memcpy(grown, old, sizeof(int) * used);
  return grown;
}

double* grown_doubles(const double* old, int used, int capacity) {
  double* grown = new (std::nothrow) double[capacity];
  if (grown != nullptr && used > 0) std::memcpy(grown, old, sizeof(double) * used);
  return grown;
}

}  // namespace

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

int TCScene_input::read_frame_table(std::istream& in) {
  delete[] frame_numbers;
  delete[] times;
  delete[] times_of_day;
  frame_numbers = nullptr;
  times = nullptr;
  times_of_day = nullptr;

  const int wanted = number_of_frames;
  int capacity = 0;
  int rows = 0;
  int ok = 1;
  while (rows < wanted) {
    if (rows == capacity) {
      const int next = capacity == 0 ? (wanted < first_table_rows ? wanted : first_table_rows)
                                     : (capacity > wanted / 2 ? wanted : capacity * 2);
      int* f = grown_ints(frame_numbers, rows, next);
      double* t = grown_doubles(times, rows, next);
      double* d = grown_doubles(times_of_day, rows, next);
      delete[] frame_numbers;
      delete[] times;
      delete[] times_of_day;
      frame_numbers = f;
      times = t;
      times_of_day = d;
      if (f == nullptr || t == nullptr || d == nullptr) {
        report_error_exit("TCScene_input::read_scene", "unable to allocate frame table ");
      }
      capacity = next;
    }
    int frame = 0;
    double t = 0.0;
    double tod = 0.0;
    if (!read_int(in, frame) || !read_double(in, t) || (tod_flag && !read_double(in, tod))) {
      ok = 0;
      break;
    }
    frame_numbers[rows] = frame;
    times[rows] = t;
    times_of_day[rows] = tod_flag ? tod : t;
    rows++;
  }
  // The arrays always hold number_of_frames rows, also after a cut-short table.
  number_of_frames = rows;
  return ok;
}

int TCScene_input::read_scene(std::istream& in) {
  const int file_version = check_header(in, "scene", 2);
  if (file_version == 0) {
    std::cout << "scene file stream not of correct format"
              << "\n";
    return 0;
  }
  version = file_version;

  skip_token(in);
  read_token(in, output_file, sizeof(output_file));
  if (version >= 2) {
    skip_token(in);
    read_token(in, output_format, sizeof(output_format));
  }

  object_list.version = version;
  if (!object_list.read_list(in)) return 0;

  skip_token(in);
  if (!read_int(in, number_of_frames) || number_of_frames < 1) {
    std::cout << "number of keyframes must be positive "
              << "\n";
    return 0;
  }
  skip_token(in);
  read_int(in, tod_flag);
  // Two heading words, whatever tod_flag says: a hand-written file with a
  // time-of-day column still has a two-word heading.
  skip_token(in);
  skip_token(in);
  read_frame_table(in);
  return check_end(in, "error reading scene stream ");
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

int TCScene_input::write_scene(std::ostream& out) const {
  set_file_precision(out);
  write_header(out, "scene", version);
  out << "output_file: " << output_file << "\n";
  if (version > 1) out << "output_format: " << output_format << "\n";
  if (!object_list.write_list(out)) return 0;
  out << "number_of_frames: " << number_of_frames << "\n";
  out << "tod_flag:         " << tod_flag << "\n";
  out << "frame_number "
      << "  time ";
  if (tod_flag) out << " time_of_day ";
  out << "\n";
  for (int i = 0; i < number_of_frames; i++) {
    out << frame_numbers[i] << " " << times[i];
    if (tod_flag) out << " " << times_of_day[i];
    out << "\n";
  }
  out << "end "
      << "\n";
  out << "first_frame: " << first_frame << "\n";
  out << "last_frame: " << last_frame << "\n";
  out << "increment:  " << increment << "\n";
  return out ? 1 : 0;
}

int TCScene_input::write_scene_file(const char* path) const {
  std::ofstream out(path);
  if (!out) {
    std::cout << "unable to open scene input file "
              << "\n";
    return 0;
  }
  if (!write_scene(out)) {
    std::cout << "unable to write scene output stream "
              << "\n";
    return 0;
  }
  if (!object_list.write_files()) {
    std::cout << "unable to write out objects files "
              << "\n";
    return 0;
  }
  return 1;
}

// Two keys at one time would give every pose between them as NaN.
static int track_times_distinct(const TCKeyframes& track, const char* scene_path,
                                const char* owner_file) {
  double time = 0.0;
  if (!track.repeated_time(time)) return 1;
  std::cout << "scene file " << scene_path << ": two key frames of " << owner_file
            << " are at time " << time << "\n";
  return 0;
}

int TCScene_input::key_frame_times_distinct(const char* path) const {
  const TCObject_list_input& list = object_list;
  if (list.sun_flag && list.star_input != nullptr &&
      !track_times_distinct(list.star_input->track, path, list.star_input->object_file))
    return 0;
  for (int i = 0; i < list.n_objects; i++) {
    if (list.objects[i] == nullptr) continue;
    if (!track_times_distinct(list.objects[i]->track, path, list.objects[i]->object_file)) return 0;
  }
  for (int i = 0; i < list.n_cameras; i++) {
    if (list.cameras[i] == nullptr) continue;
    if (!track_times_distinct(list.cameras[i]->track, path, list.cameras[i]->object_file)) return 0;
  }
  return 1;
}

int TCScene_input::read_scene_file(const char* path) {
  std::ifstream in(path);
  if (!in) {
    report_error("TCScene_input::read_scene_file", "Can't open scene file: ", path);
    return 0;
  }
  if (!read_scene(in) || !key_frame_times_distinct(path)) {
    std::cout << "unable to process scene input file "
              << "\n";
    return 0;
  }
  if (!read_frame_range(in)) {
    std::cout << "unable to process scene input frames "
              << "\n";
    return 0;
  }
  return 1;
}
