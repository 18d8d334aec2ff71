#ifndef TC_ENGINE_H
#define TC_ENGINE_H

#include <cstddef>
#include <iostream>

class TCCommand_line;

// The whole of TCEngine: size checks, banner, options, then each scene file.
int engine_main(int argc, char** argv);

// Prints the porting complaint for the first size that is wrong and returns 0;
// 1 when short, int, float and double have 2, 4, 4 and 8 bytes.
int check_type_sizes(std::size_t short_size, std::size_t int_size, std::size_t float_size,
                     std::size_t double_size, std::ostream& err);

void print_banner(std::ostream& out);
void print_usage(std::ostream& out);

// "COMMAND LINEA: 1: (5,5,1)\n" and its B twin.
void print_command_line_trace(std::ostream& out, const char* label, int frames_given, int first,
                              int last, int increment);

// Reads and runs one scene file; exits on every failure.
void run_scene_file(const char* name, const TCCommand_line& command, int traced);

#endif
