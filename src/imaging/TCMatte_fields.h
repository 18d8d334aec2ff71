#ifndef TC_MATTE_FIELDS_H
#define TC_MATTE_FIELDS_H

// Matte planes of one camera slice: per object (and the scene, as the last
// "object") one float plane per wanted channel, written while objects paint.
//
// Planes of one object, with B bands, by matte code:
//   0 to 17    B planes from B * code (one per band)
//   18 to 31   1 plane at B * 18 - 18 + code
//   32         3 planes from B * 18 + 14 (the surface normal)
//   33, 34     none: scene positions come from the scene distance (20), and
//              34 only switches the picture off
//   35 to 39   no such matte; never wanted
// Distances (19, 20) are squared metres and start at 1e16, the square of the
// "nothing" distance; every other plane starts at 0.

class TCMatte_fields;
class TCMatte_input;

// The per-ray companion of a volume or surface: matte values gathered along
// one ray before they are handed to the fields.
class TCMatte_sample {
 public:
  TCMatte_sample();
  ~TCMatte_sample();

  // Follows object object_index of fields: on, with its sizes and code flags,
  // when the fields are in use and want that object; off otherwise. An index
  // outside 0..n_objects prints "Bad matte field index". Storage is made
  // when first needed (exit 1 if memory runs out) and kept; values are not
  // cleared here.
  void attach(int object_index, const TCMatte_fields* fields);
  // The operations below do nothing while the sample is off.
  // All values 0, the distance (code 19) 1e8.
  void clear();
  // Value by value.
  void add(const TCMatte_sample& other);
  // Divides every value by weight; a weight below 1e-06 is reported and
  // leaves the values as they are.
  void normalise(double weight);
  // The distance matte, code 19.
  void set_distance(double d);

  int on;
  int n_codes;
  int n_bands;
  int* wanted;    // a copy of the attached object's code flags
  float* values;  // laid out as one object's planes, one value per plane

 private:
  int wanted_size_;  // entries held in wanted
  int values_size_;  // entries held in values
  TCMatte_sample(const TCMatte_sample&);
  TCMatte_sample& operator=(const TCMatte_sample&);
};

class TCMatte_fields {
 public:
  // Matte codes the fields know of.
  static constexpr int code_count = 40;

  // No planes, 40 codes, no objects, mattes off.
  TCMatte_fields();
  ~TCMatte_fields();

  // Layout of a code in one object's planes with n_bands bands (see above).
  // Returns 1 for codes 0 to 34; codes 33 and 34 have first_plane -1 and
  // n_planes 0. Codes 35 to 39 and negative codes give 0, a code of 40 or
  // more prints "Bad matte index value: " and gives 0; first_plane is then -1
  // and n_planes 0.
  static int plane_layout(int code, int n_bands, int& first_plane, int& n_planes);
  // Plane pointers of one object: room for every code with some to spare.
  static int plane_table_size(int n_bands);

  // Codes (1 to 40) and list objects (the scene is one more, at index
  // n_objects). Set at camera construction; refused (0) while planes are
  // allocated or for sizes out of range.
  int set_sizes(int codes, int objects);

  // Planes of rows * columns floats for every code the resolved request
  // (see process_matte_input) wants, per object. Exits 1 when already
  // allocated or when memory runs out. With mattes off nothing is made.
  void prepare(int rows, int columns, int bands, const TCMatte_input& request);
  // Frees all planes and flags; prepare may follow again. At each slice's end.
  void release();
  // Every plane to 0, the distance plane too.
  void clear_all();

  // Layout of a code within one object's planes; 0 when mattes are off or the
  // code is not wanted for that object (first_plane -1, n_planes 0 then).
  int is_wanted(int object, int code, int& first_plane, int& n_planes) const;

  // Plane 20 (scene distance) of the scene at a row-major pixel index.
  void set_scene_distance(int pixel, double value);
  // What the scene shows at a row-major pixel: the squared distance of the
  // front-most surface (planes 19 and 20) and the part of the pixel that
  // objects fill (plane 18), for those the scene wants.
  void set_scene_pixel(int pixel, double distance, double coverage);
  // The scene's alpha mattes (22 to 26) as a layer of object `object`, of
  // coverage layer_coverage, merges into the pixel: in front of what stands,
  // the earlier shares are thinned by what it covers; behind, it adds its
  // own share of the part still open (open, the uncovered fraction).
  void merge_scene_alpha(int pixel, int object, double layer_coverage, int in_front, double open);

  // One contour sample: weights of the new sample and of what stood before,
  // the sample's coverage, the weight of the per-ray sample's values, its
  // distance, and its radiance per band; sample may be null, and a sample
  // that is off or sized for other fields counts as none.
  void accumulate(int row, int col, int object, double weight_new, double weight_old,
                  double coverage, double sample_weight, double distance, const double* radiance,
                  const TCMatte_sample* sample);
  void accumulate(int row, int col, int object, double weight_new, double weight_old,
                  double coverage, double sample_weight, double distance, const float* radiance,
                  const TCMatte_sample* sample);

  int n_rows;
  int n_cols;
  int n_bands;
  int allocated;
  int n_objects;
  int n_codes;
  int use_mattes;
  int* object_wanted;  // n_objects + 1 entries; the last is the scene
  // List index of the object each alpha matte (22 + k) follows, -1 if none.
  int alpha_objects[5];
  // List index of the object each reflected-object matte (7 + k) follows,
  // -1 if none.
  int reflected_objects[5];
  int** code_wanted;  // per object, n_codes flags
  float*** planes;    // per object, plane pointers, each rows * columns floats

 private:
  // Objects allocated by prepare, scene included, whatever n_objects says later.
  int held_objects_;
  int held_table_;  // plane pointers per wanted object
  // Pixel of (row, col) if it and the object can be written; 0 otherwise.
  int writable(int row, int col, int object, int& pixel) const;
  // The two accumulate forms; exactly one radiance array is given.
  void accumulate_any(int row, int col, int object, double weight_new, double weight_old,
                      double coverage, double sample_weight, double distance,
                      const double* radiance_d, const float* radiance_f,
                      const TCMatte_sample* sample);
  TCMatte_fields(const TCMatte_fields&);
  TCMatte_fields& operator=(const TCMatte_fields&);
};

#endif
