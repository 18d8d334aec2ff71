#ifndef TC_SCENE_H
#define TC_SCENE_H

#include <iostream>

#include "TCObject_list.h"

class TCScene_input;

// The running form of a scene: it owns the object list and walks the frames,
// moving what moves and letting every camera image the list.
class TCScene {
 public:
  // Exits when the scene cannot run: status 1912 when the output directory
  // cannot be written, 1 for anything else.
  explicit TCScene(TCScene_input& input);
  ~TCScene();

  // Times from the frame table, extrapolated past both ends.
  double time_for_frame(int frame) const;
  double time_of_day_for_frame(int frame) const;
  int frame_in_range(int frame) const;

  // Renders every frame of the range with every camera.
  int run();
  // As run, for the surface-line picture (".rgb" files, "_surfaceline" in the
  // names).
  int run_surface_line();
  // Prints the state of the sun, the objects and the cameras at each frame.
  int run_print_state(std::ostream& out);
  // Lets every object write its data for each frame.
  int run_write_data(const char* stream_name);

  // Prefix, frame text and suffix of a camera's file for a frame (camera
  // numbered from 0 here, from 1 in the name); what run and the slice merger
  // use. The buffers hold 256, 5 and 256 characters.
  void output_name(int camera, int frame, char* prefix, char* text, char* suffix) const;

  char output_file[256];
  TCObject_list object_list;
  double time_of_day;
  int current_frame;
  int number_of_frames;
  int tod_flag;
  int* frame_numbers;
  double* times;
  double* times_of_day;
  int first_frame;
  int last_frame;
  int increment;
  char output_format[256];
  int needs_updates;

 private:
  // Steps 1 and 2 of a frame: its time, the frame line, and the updates of
  // the sun and objects (always on the first frame of the walk). Returns t.
  double start_frame(int frame, int first_of_walk);

  TCScene(const TCScene&);
  TCScene& operator=(const TCScene&);
};

#endif
