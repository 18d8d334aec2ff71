// Merges the slice files of separate "-S n -s k" runs of TCEngine into the
// picture and mattes one run over all slices writes, and removes the slice
// files as that run would. It takes the engine's own command line: the same
// scene file, frame options and slice count.
//
//   TCMerge_slices [-f first] [-l last] [-i increment] -S n scene_file ...
//
// Exit status 0 when every frame of every camera merged, 1 otherwise.

#include <fstream>
#include <iostream>

#include "TCCamera.h"
#include "TCCommand_line.h"
#include "TCScene.h"
#include "TCScene_input.h"
#include "TCSettings.h"

static void print_tool_usage() {
  std::cerr
      << "usage: TCMerge_slices [-f first] [-l last] [-i increment] -S slices scene_file ...\n";
}

static int merge_scene(const char* name, const TCCommand_line& command) {
  std::ifstream stream(name);
  if (!stream) {
    std::cerr << "TCMerge_slices: can't open scene file " << name << "\n";
    return 0;
  }
  TCScene_input input;
  if (!input.read_scene(stream)) {
    std::cerr << "TCMerge_slices: unable to read scene file " << name << "\n";
    return 0;
  }
  if (!command.frames_given) {
    input.read_frame_range(stream);
  } else {
    input.set_frame_range(command.first_frame, command.last_frame, command.increment);
  }
  for (int i = 0; i < input.object_list.n_cameras; i++) {
    input.object_list.cameras[i]->set_all_slices(command.n_slices);
  }

  TCScene scene(input);
  int ok = 1;
  for (int frame = scene.first_frame; scene.frame_in_range(frame); frame += scene.increment) {
    const double t = scene.time_for_frame(frame);
    for (int c = 0; c < scene.object_list.n_cameras; c++) {
      TCCamera* camera = scene.object_list.cameras[c];
      // The window and the matte names follow the camera's pose at the frame.
      camera->set_time(t);
      char prefix[256], text[5], suffix[256];
      scene.output_name(c, frame, prefix, text, suffix);
      if (!camera->recombine_slices(prefix, text, suffix)) ok = 0;
    }
  }
  return ok;
}

int main(int argc, char** argv) {
  // The camera summaries the scene prints while it builds are of no use here.
  verbose = 0;
  TCCommand_line command;
  const int first_scene = command.parse(argc, argv);
  command.apply_frame_override();
  if (!command.slices_given || first_scene >= argc) {
    print_tool_usage();
    return 1;
  }
  int ok = 1;
  for (int i = first_scene; i < argc; i++) {
    if (!merge_scene(argv[i], command)) ok = 0;
  }
  return ok ? 0 : 1;
}
