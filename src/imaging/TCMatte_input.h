#ifndef TC_MATTE_INPUT_H
#define TC_MATTE_INPUT_H

#include <iostream>

class TCMatte_fields;
class TCScene_tracer;

// The matte section of a camera file: which objects (or "scene", the whole
// picture) get which mattes. A camera keeps its own copy as its request, and
// process_matte_input resolves the object words against the scene.
//
// On file:
//   use_mattes: 1
//     NObjects: 2
//       Object: boat
//         NMattes: 2
//           radiance
//           reflect-buoy
//       Object: scene
//         NMattes: 1
//           scene_distance
class TCMatte_input {
 public:
  // Most "reflect-" and "alpha-" object names one section can hold.
  static constexpr int max_named_objects = 5;

  TCMatte_input();
  ~TCMatte_input();

  // Replaces the record with the section read from in. Returns 0 on the first
  // value that cannot be read, an object with fewer than one matte, an unknown
  // matte name, too many "alpha-" or "alpha-texture" mattes, or a failed
  // allocation. Storage grows with what is actually read, so a wild count in a
  // short file costs nothing. Positional names are numbered as they come:
  // "reflect-<object>" 7 up, "alpha-<object>" 22 up, "alpha-texture" 27 up.
  int read(std::istream& in);
  // The section in the form read accepts; names are written back in their
  // read form, so a written section reads back to the same record: codes
  // 7 + k as "reflect-" and reflected_names[k], 22 + k as "alpha-" and
  // alpha_names[k], 27 to 31 as "alpha-texture", 34 as "scene_no_radiance".
  int write(std::ostream& out) const;
  // A deep copy of other, resolution included; 0 if memory runs out.
  int copy_from(const TCMatte_input& other);
  // No mattes, no objects, no names.
  void clear();
  // Entries over all objects.
  int total_mattes() const;
  // Room for at least n objects, keeping those held; 0 if memory runs out.
  // With reserve_codes, lets a record be rebuilt entry by entry (unpacking):
  // fill object i, set n_matte_objects to i + 1, then reserve its codes.
  int reserve_objects(int n);
  // Room for at least n codes in object i's list; 0 if memory runs out.
  int reserve_codes(int i, int n);

  int use_mattes;
  int n_matte_objects;
  char (*matte_object_names)[256];
  int* matte_counts;  // mattes per object
  int** matte_ids;    // per object, matte_counts[i] codes
  int n_reflected_names;
  char reflected_names[max_named_objects][256];
  int n_alpha_names;
  char alpha_names[max_named_objects][256];

  // Filled by process_matte_input: the list index of each matte object (the
  // list's object count for "scene"), and of each reflected and alpha name;
  // -1 where not resolved.
  int* object_indices;
  int reflected_objects[max_named_objects];
  int alpha_objects[max_named_objects];

 private:
  // Applies the positional rules to a code from matte_code; 0 fails the read.
  int place_code(const char* name, int& code, int& n_textures);

  int object_capacity_;
  int* code_capacity_;  // per object, room in matte_ids[i]

  TCMatte_input(const TCMatte_input&);
  TCMatte_input& operator=(const TCMatte_input&);
};

// At camera construction: gives the fields 40 codes and the scene's object
// count, resolves every object word of the request ("scene" first, then the
// scene's find_by_name) and every reflected and alpha object name, and checks
// the codes. A request for matte 34 sets need_picture to 0: only the mattes
// are written. Returns 0, with a message, on the first thing that does not
// resolve.
int process_matte_input(TCMatte_input& request, const TCScene_tracer& scene, TCMatte_fields& fields,
                        int& need_picture);
// The same for a scene that may be null: one with no objects.
int process_matte_input(TCMatte_input& request, const TCScene_tracer* scene, TCMatte_fields& fields,
                        int& need_picture);

#endif
