#include "TCScene.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "TCCamera.h"
#include "TCData_file.h"
#include "TCFile_checks.h"
#include "TCFrame_plan.h"
#include "TCObject.h"
#include "TCObject_kinds.h"
#include "TCScene_input.h"
#include "TCSettings.h"
#include "TCStar.h"

TCScene::TCScene(TCScene_input& input)
    : time_of_day(0.0),
      current_frame(1),
      number_of_frames(0),
      tod_flag(0),
      frame_numbers(nullptr),
      times(nullptr),
      times_of_day(nullptr),
      first_frame(1),
      last_frame(1),
      increment(1),
      needs_updates(0) {
  copy_text(output_file, input.output_file, sizeof(output_file));
  if (!output_directory_ok(output_file)) std::exit(1912);
  copy_text(output_format, input.output_format, sizeof(output_format));
  current_frame = 1;

  if (!object_list.build(input.object_list, needs_updates)) {
    std::cout << "unable to allocate objects "
              << "\n";
    std::exit(1);
  }
  if (input.number_of_frames < 1) {
    std::cout << "number of keyframes must be positive "
              << "\n";
    std::exit(1);
  }

  number_of_frames = input.number_of_frames;
  tod_flag = input.tod_flag;
  frame_numbers = new int[number_of_frames];
  times = new double[number_of_frames];
  times_of_day = new double[number_of_frames];
  for (int i = 0; i < number_of_frames; i++) {
    frame_numbers[i] = input.frame_numbers[i];
    times[i] = input.times[i];
    times_of_day[i] = input.times_of_day[i];
  }
  if (tod_flag) needs_updates = 1;

  first_frame = input.first_frame;
  last_frame = input.last_frame;
  increment = input.increment;
  normalise_frame_range(first_frame, last_frame, increment);
}

TCScene::~TCScene() {
  delete[] frame_numbers;
  delete[] times;
  delete[] times_of_day;
  object_list.destroy();
}

double TCScene::time_for_frame(int frame) const {
  return ::time_for_frame(frame, number_of_frames, frame_numbers, times);
}

double TCScene::time_of_day_for_frame(int frame) const {
  return ::time_for_frame(frame, number_of_frames, frame_numbers, times_of_day);
}

int TCScene::frame_in_range(int frame) const {
  return ::frame_in_range(frame, last_frame, increment);
}

double TCScene::start_frame(int frame, int first_of_walk) {
  const double t = time_for_frame(frame);
  const double tod = tod_flag ? time_of_day_for_frame(frame) : t;
  time_of_day = tod;
  current_frame = frame;
  object_list.current_frame = frame;

  std::cout << "frame= " << frame << ", time=  " << t;
  if (tod_flag) std::cout << "time of day= " << tod;
  std::cout << "\n";

  if (first_of_walk || needs_updates == 1) {
    TCStar* sun = object_list.sun;
    if (sun != nullptr && sun->present) {
      sun->set_time(sun->position_method_flag == 0 ? t : tod);
    }
    // A bobbing box rests on the sea, so it moves after everything else.
    for (int i = 0; i < object_list.n_objects; i++) {
      TCObject* object = object_list.objects[i];
      if (object->get_type() != TC_KIND_BOBBING_BOX) object->set_time(t);
    }
    for (int i = 0; i < object_list.n_objects; i++) {
      TCObject* object = object_list.objects[i];
      if (object->get_type() == TC_KIND_BOBBING_BOX) object->set_time(t);
    }
    for (int i = 0; i < object_list.n_objects; i++) object_list.objects[i]->prepare_frame();
  }
  return t;
}

void TCScene::output_name(int camera, int frame, char* prefix, char* text, char* suffix) const {
  const TCCamera* c = object_list.cameras[camera];
  char file_type[256];
  c->get_file_type(file_type);
  frame_text(frame, text);
  make_output_name(output_format, output_file, c->get_name(), camera + 1, text, file_type, prefix,
                   suffix);
}

static void print_range(int first, int last, int increment) {
  std::cout << "\n"
            << "first frame: " << first << "\n"
            << "last frame:  " << last << "\n"
            << "increment:   " << increment << "\n";
}

int TCScene::run() {
  print_range(first_frame, last_frame, increment);
  for (int frame = first_frame; frame_in_range(frame); frame += increment) {
    const double t = start_frame(frame, frame == first_frame);
    for (int c = 0; c < object_list.n_cameras; c++) {
      TCCamera* camera = object_list.cameras[c];
      camera->set_time(t);
      char prefix[256], text[5], suffix[256];
      output_name(c, frame, prefix, text, suffix);
      for (int i = 0; i < object_list.n_objects; i++)
        object_list.objects[i]->prepare_camera(camera);
      camera->image(prefix, text, suffix);
    }
    if (verbose) {
      char text[16];
      std::snprintf(text, sizeof(text), "%04d", frame);
      std::cout << "Writing frame " << text << "\n";
    }
  }
  return 0;
}

int TCScene::run_surface_line() {
  print_range(first_frame, last_frame, increment);
  for (int frame = first_frame; frame_in_range(frame); frame += increment) {
    const double t = start_frame(frame, frame == first_frame);
    for (int c = 0; c < object_list.n_cameras; c++) {
      TCCamera* camera = object_list.cameras[c];
      camera->set_time(t);
      char prefix[256], text[5], suffix[256];
      frame_text(frame, text);
      make_output_name(output_format, output_file, camera->get_name(), c + 1, text, ".rgb", prefix,
                       suffix);
      camera->image_surface_line(prefix, text, suffix);
    }
  }
  return 0;
}

int TCScene::run_print_state(std::ostream& out) {
  print_range(first_frame, last_frame, increment);
  for (int frame = first_frame; frame_in_range(frame); frame += increment) {
    const double t = start_frame(frame, frame == first_frame);
    out << "\nFrame: " << frame << "\n";
    if (object_list.sun != nullptr) {
      out << "  ";
      object_list.sun->print_state(out);
    }
    for (int i = 0; i < object_list.n_objects; i++) object_list.objects[i]->print_state(out);
    for (int c = 0; c < object_list.n_cameras; c++) {
      object_list.cameras[c]->set_time(t);
      out << "Camera " << c + 1 << "\n";
      object_list.cameras[c]->print_state(out);
    }
  }
  return 0;
}

int TCScene::run_write_data(const char* stream_name) {
  print_range(first_frame, last_frame, increment);
  for (int frame = first_frame; frame_in_range(frame); frame += increment) {
    start_frame(frame, frame == first_frame);
    // The frame text through a four-character stream, as the image names cut it.
    std::ostringstream text_stream;
    char text[5];
    frame_text(frame, text);
    text_stream << text;
    object_list.write_all_frame_data(stream_name, text_stream.str().c_str(), 0);
  }
  return 0;
}
