#ifndef TC_COMMAND_LINE_H
#define TC_COMMAND_LINE_H

// What the command line asked for, local to one run of the engine.
class TCCommand_line {
 public:
  TCCommand_line();
  ~TCCommand_line();

  // Scans the options. Bad -S/-s values print on standard output and exit 1.
  // Returns the index of the first scene file in argv.
  int parse(int argc, char** argv);

  // Missing -f means 1, missing -l means the first frame, missing -i means 1.
  void apply_frame_override();

  int frames_given;
  int first_frame;
  int last_frame;
  int increment;
  int n_slices;
  int slices_given;
  int slice_list_given;
  int* slice_flags;  // n_slices entries of 0 or 1 after -S
  int any_option_seen;

 private:
  int first_given_;
  int last_given_;
  int increment_given_;

  TCCommand_line(const TCCommand_line&);
  TCCommand_line& operator=(const TCCommand_line&);
};

#endif
