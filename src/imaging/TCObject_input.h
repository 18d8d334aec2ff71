#ifndef TC_OBJECT_INPUT_H
#define TC_OBJECT_INPUT_H

#include <iostream>

#include "TCKeyframes.h"

class TCObject_list_input;

// Root of the input records: what an object line and the kind's own file say.
// Every record can also pack itself into flat int, double and char arrays for
// a process boundary, with size checks on both sides.
class TCObject_input {
 public:
  TCObject_input();

  // The kind's own file. Kinds without one read nothing and succeed.
  virtual int read_file(const char* path);
  virtual int write_file(const char* path);
  // Allocates the three arrays with new (sizes from packing_sizes, in bytes
  // in the *_bytes arguments) and fills them; the caller owns them.
  virtual int pack(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
                   int& char_bytes);
  // Rebuilds the record from arrays of the given byte sizes, refusing sizes
  // that differ from packing_sizes.
  virtual int unpack(const int* ints, int int_bytes, const double* doubles, int double_bytes,
                     const char* chars, int char_bytes);
  virtual ~TCObject_input();
  // Takes the variable-length counts from a packed int array so that
  // packing_sizes gives the sender's numbers.
  virtual void set_sizes_from_packed(const int* ints, const double* doubles, const char* chars);
  // Counts of ints, doubles and chars; each class adds its own to its base's.
  virtual void packing_sizes(int& n_ints, int& n_doubles, int& n_chars) const;

  // An object line of the list, laid out by the list's version (set version
  // first). Returns 0 for a kind word not in the table.
  int read_object_line(std::istream& in);
  int read_camera_line(std::istream& in);
  int write_object_line(std::ostream& out) const;
  int write_camera_line(std::ostream& out) const;

  // Everything this root holds, from another record.
  void copy_header(const TCObject_input& other);
  // copy_header, then the kind's file.
  int process_input(const TCObject_input& other);

  TCKeyframes track;
  double priority;
  TCObject_list_input* list;
  int object_id;
  double start_time;
  char object_name[256];
  char object_type[256];
  int type_code;
  int version;
  char object_file[256];

 protected:
  // The receiving side's first check, shared by every class that unpacks:
  // 0, with the word for the first missing array, when one is null.
  static int packed_arrays_present(const int* ints, const double* doubles, const char* chars);
  // A class's whole count worked out wide: -1, which pack and unpack refuse,
  // when not sound or when its bytes would not fit an int.
  static int packed_count(long long total, int sound);
  // pack's first check: the first of the char, int and double counts that
  // is -1 prints its message, and gives 0.
  static int packing_counts_fit(int n_ints, int n_doubles, int n_chars, const char* char_message,
                                const char* int_message, const char* double_message);
  // The common start of a record's pack: the whole record's counts (through
  // packing_sizes) checked with the three messages, the arrays made and the
  // root part packed, root_failure printed if that fails. Gives where the
  // record's own part starts in each array; 0 after a message.
  int pack_root_part(int*& ints, int& int_bytes, double*& doubles, int& double_bytes, char*& chars,
                     int& char_bytes, const char* char_message, const char* int_message,
                     const char* double_message, const char* root_failure, int& base_ints,
                     int& base_doubles, int& base_chars);
  // unpack's byte checks against the counts packing_sizes gives, each count
  // at least its least; prints the first array of the wrong size and gives 0.
  static int packed_numbers_fit(int n_ints, int least_ints, int int_bytes, int n_doubles,
                                int least_doubles, int double_bytes);
  static int packed_chars_fit(int n_chars, int char_bytes);
  // Print that the int or double array is of the wrong size; give 0.
  static int packed_ints_wrong();
  static int packed_doubles_wrong();
  // A string from a packed block of 256 chars: up to its zero, never past
  // the block.
  static void text_from_block(char* target, const char* block);

 private:
  TCObject_input(const TCObject_input&);
  TCObject_input& operator=(const TCObject_input&);
};

#endif
