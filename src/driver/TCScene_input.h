#ifndef TC_SCENE_INPUT_H
#define TC_SCENE_INPUT_H

#include <iostream>

#include "TCObject_list_input.h"

// What a scene file says: where the output goes, the object list, the frame
// table and the frame range.
//
// On file (keywords are skipped unread):
//   Tidecast_data_file scene 2 2
//   output_file: out/run
//   output_format: -b-C-c-f-.-t-        (version 2 on)
//   <object list section>
//   number_of_frames: 2
//   tod_flag:         0
//   frame_number   time                 (two heading words, whatever tod_flag says)
//   1 0.0
//   10 0.9                              (a third column, time of day, with tod_flag 1)
//   end
//   first_frame: 1
//   last_frame: 10
//   increment:  1
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

  // The layout read_scene reads, with the range lines behind "end". With
  // tod_flag set the heading has a third word, which read_scene does not take
  // back: a written scene with a time-of-day column does not read again.
  int write_scene(std::ostream& out) const;
  // Opens path, writes the scene, then every object's own file.
  int write_scene_file(const char* path) const;
  // Opens path and reads the scene and its range lines.
  int read_scene_file(const char* path);
  // 0, with a message naming the scene file at path, the track's file and
  // the time, when any track (sun, object, camera) has two keys at one time.
  int key_frame_times_distinct(const char* path) const;

  char output_file[256];
  char output_format[256];
  int version;
  TCObject_list_input object_list;
  int number_of_frames;
  int tod_flag;
  int* frame_numbers;
  double* times;
  double* times_of_day;
  int first_frame;
  int last_frame;
  int increment;

 private:
  // The frame table's rows, grown as they are read so that a count the file
  // cannot back costs nothing; 0 when the stream fails in a row.
  int read_frame_table(std::istream& in);

  TCScene_input(const TCScene_input&);
  TCScene_input& operator=(const TCScene_input&);
};

// An increment of 0 becomes 1; a range that runs against its increment
// collapses to its first frame with increment 1.
void normalise_frame_range(int& first, int& last, int& increment);

#endif
