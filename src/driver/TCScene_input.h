#ifndef TC_SCENE_INPUT_H
#define TC_SCENE_INPUT_H

#include <iostream>

// What a scene file says.
class TCScene_input {
 public:
  TCScene_input();
  ~TCScene_input();

  // Reads everything up to and including the scene's "end" token.
  int read_scene(std::istream& in);
  // The three range lines behind "end", normalised.
  int read_frame_range(std::istream& in);
  // Stores a range as given (the command line's); normalising is the scene's.
  void set_frame_range(int first, int last, int step);

  char output_file[256];
  char output_format[256];
  int version;
  int number_of_frames;
  int tod_flag;
  int* frame_numbers;
  double* times;
  double* times_of_day;
  int first_frame;
  int last_frame;
  int increment;

 private:
  TCScene_input(const TCScene_input&);
  TCScene_input& operator=(const TCScene_input&);
};

// An increment of 0 becomes 1; a range that runs against its increment
// collapses to its first frame with increment 1.
void normalise_frame_range(int& first, int& last, int& increment);

#endif
