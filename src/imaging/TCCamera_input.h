#ifndef TC_CAMERA_INPUT_H
#define TC_CAMERA_INPUT_H

#include <iostream>

#include "TCImage_file.h"
#include "TCMatte_input.h"
#include "TCObject_input.h"
#include "TCSpectrum.h"

// Output formats beyond those of the image files: read, then replaced by hdf.
const int image_format_cineon = 3004;

// Rescaling of the picture before it is coded into 8 bits.

const int camera_rescale_none = 0;
const int camera_rescale_log = 1;
const int camera_rescale_gamma = 2;

// "hdf", "img", "HDF" 3000; "sgi", "rgb" 3002; "tiff" 3003; "cineon" 3004.
// Any other word prints its complaint and gives 0.
int image_format_code(const char* word);
// The word a writer puts on file: "img", "rgb", "tiff"; null for any other
// code, cineon included, since no writer can produce a file that reads back
// to it.
const char* image_format_word(int code);
// "no" 0, "log" 1, "gamma" 2; any other word prints its complaint, gives 0.
int rescale_method_code(const char* word);
// "no", "log", "gamma"; null for any other code.
const char* rescale_method_word(int code);

// A camera file: image size and field of view, the imaged part of the
// picture, bands, anti-aliasing, efficiency mattes, slices, output format
// and rescaling, and (object lists of version 2 on) the matte section.
//
// On file, keywords skipped unread, values in this order:
//   Tidecast_data_file camera 3 3
//   n_pixel_azimuth 640  n_pixel_elevation 480
//   fov_azimuth 40  fov_elevation 30
//   image_method 1
//   picture_fraction_flag 1
//   azimuth_range 0 319  elevation_range 0 479     (flag not 0 only)
//   n_sub_azimuth 1  n_sub_elevation 1
//   number_of_bands 3  band_id 1 2 3              (at most 10 bands)
//   anti_alias 1                                   (file version 2 on)
//   resampling_azimuth 2 resampling_elevation 2    (anti_alias not 0 only)
//   efficiency_matte 1                             (file version 3 on)
//   efficiency_matte_file eff.hdf                  (efficiency_matte not 0)
//   image_slices 4                                 ("end" here ends the file)
//   image_format rgb                               ("end" here ends the file)
//   scale gamma 2.2                                (formats other than hdf)
//   min_value 0  max_value 1                       (formats other than hdf)
//   end
//   use_mattes: 0                                  (list version 2 on)
class TCCamera_input : public TCObject_input {
 public:
  TCCamera_input();
  ~TCCamera_input() override;

  // The camera file at path, through read_stream; a message with the path
  // when it cannot be opened or read.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // The file's sections from a stream: the camera section and, for an
  // object list of version 2 or more (the version field), the matte section.
  // Prints what is wrong and returns 0; nothing about the path.
  virtual int read_stream(std::istream& in);
  // Writes what read_stream reads back to the same record. Returns 0 for a
  // format or rescale code with no word, or a failed stream.
  virtual int write_stream(std::ostream& out) const;

  // Every slice is imaged; a list from before is dropped.
  void set_all_slices(int n);
  // Only the slices whose flag (of n) is not 0. Returns 0, keeping what was
  // there, for n below 1 or when memory runs out.
  int set_slices_to_image(int n, const int* flags);

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  // Reads the counts at the fixed positions (see the table in the source):
  // ints must hold at least 20 ints past the root's, 24 with mattes on.
  void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  // Names the matte section holds: the two leading words, one per object and
  // one per matte; 0 with mattes off.
  int matte_name_count() const;

  int get_use_mattes() const { return matte.use_mattes; }
  int get_n_matte_objects() const { return matte.n_matte_objects; }
  const TCMatte_input& get_matte() const { return matte; }
  int get_n_pixel_elevation() const { return n_pixel_elevation; }
  int get_n_pixel_azimuth() const { return n_pixel_azimuth; }
  double get_fov_elevation() const { return fov_elevation; }
  double get_fov_azimuth() const { return fov_azimuth; }
  int get_picture_fraction_flag() const { return picture_fraction_flag; }
  int get_first_elevation() const { return first_elevation; }
  int get_first_azimuth() const { return first_azimuth; }
  int get_last_elevation() const { return last_elevation; }
  int get_last_azimuth() const { return last_azimuth; }
  int get_n_sub_elevation() const { return n_sub_elevation; }
  int get_n_sub_azimuth() const { return n_sub_azimuth; }
  const TCSpectrum& get_bands() const { return bands; }
  int get_anti_alias() const { return anti_alias; }
  int get_efficiency_matte() const { return efficiency_matte; }
  const char* get_efficiency_matte_file() const { return efficiency_matte_file; }
  int get_resampling_elevation() const { return resampling_elevation; }
  int get_resampling_azimuth() const { return resampling_azimuth; }
  int get_image_slices() const { return image_slices; }
  int get_slices_given() const { return slices_given; }
  const int* get_slices_to_be_imaged() const { return slices_to_be_imaged; }
  int get_image_format() const { return image_format; }
  int get_rescale_method() const { return rescale_method; }
  float get_gamma() const { return gamma; }
  float get_min_value() const { return min_value; }
  float get_max_value() const { return max_value; }

  TCMatte_input matte;
  int n_pixel_elevation;
  int n_pixel_azimuth;
  double fov_elevation;  // degrees
  double fov_azimuth;    // degrees
  int picture_fraction_flag;
  // Inclusive pixel numbers of the imaged part of the picture.
  int first_elevation;
  int first_azimuth;
  int last_elevation;
  int last_azimuth;
  int n_sub_elevation;
  int n_sub_azimuth;
  TCSpectrum bands;
  int anti_alias;
  int efficiency_matte;
  char efficiency_matte_file[256];
  int resampling_elevation;
  int resampling_azimuth;
  int image_slices;
  int slices_given;
  // image_slices flags when slices_given, else null; owned.
  int* slices_to_be_imaged;
  int image_format;
  int rescale_method;
  float gamma;
  float min_value;
  float max_value;

 protected:
  // For a derived kind: its own default name, kind word and code.
  TCCamera_input(const char* name, const char* kind, int code);

  // The camera section, header to "end", without the matte section.
  int read_camera_section(std::istream& in);
  int write_camera_section(std::ostream& out) const;
  // 0, with a message, for counts no allocation can give (bytes beyond an
  // int); the words name the class.
  int check_packing_sizes(const char* class_word) const;
  // 0, with a message naming the file at path and the value, for a field of
  // view that no pinhole camera has: above 0 and below 180 degrees.
  int check_field_of_view(const char* path) const;
  // Makes packing_sizes count the fields again, forgetting counts taken by
  // set_sizes_from_packed; pack does this first.
  void drop_received_counts() { has_received_counts_ = 0; }

 private:
  // The variable-length counts that decide the packed sizes.
  struct Packed_counts {
    int n_bands;
    int image_slices;
    int slices_given;
    int use_mattes;
    int n_matte_objects;
    int matte_total;
    int n_reflected_names;
    int n_alpha_names;
  };

  // unpack without forgetting the received counts, which the root's size
  // check still needs.
  int unpack_camera_part(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                         const char* chars, int char_bytes);
  // The fields after the header up to the "end" check: 1 to go on to the
  // check (also after a failed read, which the check then reports), 2 when
  // the file ended early at its "end", 0 for a refused value.
  int read_camera_fields(std::istream& in, int file_version);
  Packed_counts counts_of_fields() const;
  // The counts at the fixed positions of a packed int array.
  static Packed_counts counts_in(const int* ints, int n_base_ints);
  // Camera part of the sizes from counts, wide so that no count overflows;
  // the root's part is added by the caller.
  static void sizes_of(const Packed_counts& counts, long long& n_ints, long long& n_doubles,
                       long long& n_chars);
  // 1 when the packed counts describe a record: no negative count, slices
  // given 0 or 1, at most 5 reflected and alpha names, per-object matte
  // counts that add up to the total within the array.
  static int counts_are_sound(const int* ints, int n_base_ints, int n_ints,
                              const Packed_counts& counts);

  // Set by set_sizes_from_packed, used by packing_sizes until the next pack
  // or unpack.
  int has_received_counts_;
  Packed_counts received_counts_;

  TCCamera_input(const TCCamera_input&);
  TCCamera_input& operator=(const TCCamera_input&);
};

// A camera that rides the sea. Its file is a camera file followed by:
//   Tidecast_data_file bobbing_camera 1 1
//   decouple_height: 0.5
//   decouple_relax_time: 2
//   base_size: 3
//   end
class TCBobbing_camera_input : public TCCamera_input {
 public:
  TCBobbing_camera_input();
  ~TCBobbing_camera_input() override;

  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // The camera's sections, then the bobbing section.
  int read_stream(std::istream& in) override;
  int write_stream(std::ostream& out) const override;
  int read_bobbing_section(std::istream& in);
  int write_bobbing_section(std::ostream& out) const;

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  double get_decouple_height() const { return decouple_height; }
  double get_decouple_relax_time() const { return decouple_relax_time; }
  double get_base_size() const { return base_size; }

  double decouple_height;      // metres
  double decouple_relax_time;  // seconds
  double base_size;            // metres

 private:
  TCBobbing_camera_input(const TCBobbing_camera_input&);
  TCBobbing_camera_input& operator=(const TCBobbing_camera_input&);
};

#endif
