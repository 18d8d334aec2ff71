#ifndef TC_CLOUD_INPUT_H
#define TC_CLOUD_INPUT_H

#include <iostream>

#include "TCVolume_Object_class.h"

// A cloud: a volume whose density comes from a file, with an optional field
// of small-scale fluctuations that may change with time.
//
// On file, keywords skipped unread, values in this order:
//   Tidecast_data_file cloud  1 1
//   (the volume section, its own header to its own "end")
//   density_file: binary cloudlwc.dat        (format word, then the name)
//   small_scale_fluctuations:  dynamic       (no, yes, yesdumpdensity, dynamic)
//   density_with_fluctuation_file:  cloudfluclwc.dat   (yesdumpdensity only)
//   small_scale_n_x: 32                      (this line to random_seed: not
//   small_scale_n_y: 32                       for "no")
//   small_scale_n_z: 16
//   relative_scale: 1
//   small_scale_file_name: cloud_fluctuations.dat
//   generate_file_from_scratch: yes          (the next four only after yes)
//   log_normal_width: 1
//   power_law: 1
//   length_scale: 2
//   random_seed: 1
//   reference_time: 0                        (the three times: dynamic only)
//   update_time: 0.1
//   sigma_time: 0.1
//   end
//
// The phase file the volume section names is read once the cloud's "end"
// has been read.
class Cloud_input : public TCVolume_Object_class {
 public:
  // density_format
  static constexpr int density_binary = 0;
  static constexpr int density_uniform = 1;
  // small_scale_fluctuations
  static constexpr int fluctuations_no = 0;
  static constexpr int fluctuations_yes = 1;
  static constexpr int fluctuations_yes_dump_density = 2;
  static constexpr int fluctuations_dynamic = 3;
  // What read_sections gives after an unknown fluctuation word.
  static constexpr int invalid_fluctuation_word = -1;

  // Kind word "cloud", code 1, name "cloud_type_name", every field at its
  // default (see below), the volume's defaults beneath.
  Cloud_input();
  ~Cloud_input() override;

  // The cloud file at path; the path is named when it cannot be opened or
  // read.
  int read_file(const char* path) override;
  int write_file(const char* path) override;
  // Header to "end", then the phase file. 0 after a message; an unknown
  // fluctuation word ends the process with status 1.
  int read_stream(std::istream& in) override;
  // Nothing is written for a format or fluctuation code with no word, nor
  // for a volume part its writer refuses: 0 after a message.
  int write_stream(std::ostream& out) const override;
  // Header to "end" without the phase file and without ending the process:
  // 1, 0 after a message, or invalid_fluctuation_word after its message.
  // Fields read before a failure keep their new values.
  int read_sections(std::istream& in);

  // Codes of the words on file, -1 for another word (exact case).
  static int density_format_code(const char* word);
  static int fluctuation_code(const char* word);
  // Words of the codes, null for a code with none.
  static const char* density_format_word(int code);
  static const char* fluctuation_word(int code);

  int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
           int& char_bytes) override;
  int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
             const char* chars, int char_bytes) override;
  void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const override;

  // Liquid water content lattice (default "cloudlwc.dat") and its layout,
  // density_binary (default) or density_uniform.
  char density_file[256];
  int density_format;
  // fluctuations_no (default), _yes, _yes_dump_density or _dynamic.
  int small_scale_fluctuations;
  // Where the dump mode writes the density with its fluctuations (default
  // "cloudfluclwc.dat").
  char density_with_fluctuation_file[256];
  // Points of the fluctuation field along x, y, z (default 1 each).
  int small_scale_n_x;
  int small_scale_n_y;
  int small_scale_n_z;
  // Size of the fluctuation field against the lattice (default 1.0).
  double relative_scale;
  // The fluctuation field's file (default "cloud_fluctuations.dat"): written
  // when generated, else read from.
  char small_scale_file_name[256];
  // 1 (default) to generate the field from the four values below.
  int generate_file_from_scratch;
  // Width of the log normal distribution of the field (default 1.0).
  double log_normal_width;
  // Power of the fluctuation spectrum (default 1.0; must be positive).
  double power_law;
  // Metres (default 2.0).
  double length_scale;
  // Seed of the field's random deviates (default 1).
  int random_seed;
  // Seconds: the time of step 0 (default 0), the time between steps
  // (default 0.1), and the time scale of the field's change from step to
  // step (default 0.1).
  double reference_time;
  double update_time;
  double sigma_time;

 private:
  int read_cloud_values(std::istream& in);
  int write_cloud_values(std::ostream& out) const;

  Cloud_input(const Cloud_input&);
  Cloud_input& operator=(const Cloud_input&);
};

#endif
