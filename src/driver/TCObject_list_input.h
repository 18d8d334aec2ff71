#ifndef TC_OBJECT_LIST_INPUT_H
#define TC_OBJECT_LIST_INPUT_H

#include <iostream>

#include "TCBand.h"
#include "TCKeyframes.h"

class TCCamera_input;
class TCObject_input;
class TCStar_input;

// The object list section of a scene file: the bands, the sun, the objects
// and the cameras. Every object line names the kind's own file, which is read
// as soon as the line is; the list owns every record it makes.
//
// On file (keywords are skipped unread):
//   number_of_bands: 1
//   width center_wavelength band_id
//   1 0.55 0.1                        (band_id, centre wavelength, width)
//   sun_flag: 0                       (not 0: the sun's block follows)
//   number_of_objects: 1
//   <object line>                     (key frames, name, kind, file, priority)
//   number_of_cameras: 1
//   <camera line>                     (key frames, kind, file)
//   use_mattes: 0                     (version 1: the camera's matte section)
class TCObject_list_input {
 public:
  // Most objects, and most cameras, a list holds.
  static constexpr int max_objects = 100;

  // No bands, no sun, no objects, no cameras; version 2.
  TCObject_list_input();
  ~TCObject_list_input();

  // Replaces the list by the section read from in, laid out by version (set
  // it first). Fewer than one band prints "must define atleast one band" and
  // ends the process with status 1. Returns 0 on the first failure, keeping
  // what was read so far; a negative object or camera count reads as none.
  // With a version below 2 a camera's matte section follows its line here;
  // from version 2 it is in the camera's own file.
  int read_list(std::istream& in);
  // The section in the same layout. From version 2 each camera line is
  // followed by the camera's matte section although read_list takes it from
  // the camera's file: a written list with cameras does not read back as it
  // stands. Lists of version 1 write no matte section.
  int write_list(std::ostream& out) const;
  // Every object's, camera's and the sun's own file, each at its
  // object_file; 0 on the first that fails.
  int write_files() const;

  // A record of a kind at the end of the list, owned by the list, or null
  // with a message: a full list, a code that is no object kind, a kind with
  // no record in this build. Name and file are cut to 255 characters.
  TCObject_input* add_object(int type_code, const char* name, const char* file, double priority,
                             const TCKeyframes& track);
  // A camera (255) or bobbing camera (254) at the end of the list.
  TCCamera_input* add_camera(int type_code, const char* file, const TCKeyframes& track);
  // The sun, with its file; sets sun_flag. Null if there is one already.
  TCStar_input* add_sun(const char* file);
  // Deletes an object, camera or the sun the list holds and closes the gap;
  // object ids are renumbered. 0 with a message for a pointer not held.
  int remove_input(const TCObject_input* pointer);

  // Position of a band id in objects_spectrum, or -1.
  int band_index(int id) const;

  int n_objects;
  TCObject_input* objects[max_objects];
  int n_cameras;
  TCCamera_input* cameras[max_objects];
  int sun_flag;
  TCStar_input* star_input;
  int number_of_bands;
  TCBand* objects_spectrum;
  // Layout version of the list; the scene sets it from its own file's.
  int version;

 private:
  // Outcome of making a record for a type code.
  enum Record_status { record_made, no_such_kind, no_record_in_build, record_not_allocated };

  // Deletes every record and the bands; version is kept.
  void release();
  int read_bands(std::istream& in);
  int read_sun(std::istream& in);
  int read_objects(std::istream& in);
  int read_cameras(std::istream& in);
  // 0, with a message naming the camera file and the band, when a band of
  // the camera is not in the band table.
  int camera_bands_known(const TCCamera_input& camera) const;
  // A new, empty record for an object kind; null with the reason in status.
  static TCObject_input* new_object_record(int type_code, Record_status& status);
  // Gives every object its index as id.
  void renumber_objects();

  TCObject_list_input(const TCObject_list_input&);
  TCObject_list_input& operator=(const TCObject_list_input&);
};

#endif
