#ifndef TC_DATA_FILE_H
#define TC_DATA_FILE_H

#include <fstream>
#include <iostream>
#include <string>

// The conventions every keyword file of the engine shares. A file is a stream
// of whitespace-separated tokens read in a fixed order; keywords are skipped
// without comparison and only the closing "end" is checked.

// Judges "Tidecast_data_file <type> <version> <oldest reader>". Returns the
// file's version, or 0 for a wrong magic or type (with a message on standard
// output) and, silently, when the file needs a reader newer than max_version.
int check_header(std::istream& in, const char* expected_type, int max_version);

// "Tidecast_data_file <type> <version> <version>".
void write_header(std::ostream& out, const char* type, int version);

// 1 for "yes", "Yes", "YES"; 0 for anything else.
int parse_yes_no(const char* token);
const char* yes_no_text(int flag);

// Reads one token; anything but "end" prints message, a new line,
// "read <token>instead of end" and returns 0.
int check_end(std::istream& in, const char* message);

// The closing word after fields read unchecked. A failed read earlier left
// the word it choked on in the stream, the most useful thing to show: the
// failure is cleared and that word put in token. 1 only for "end" with no
// failure before it.
int read_end_word(std::istream& in, std::string& token);
// read_end_word; on failure prints message, a new line and
// "read <word>instead of end", and returns 0.
int check_end_after_fields(std::istream& in, const char* message);

// Open path (null counts as "") for reading or writing; when that fails,
// print message, the path and a new line, and return 0.
int open_input_file(std::ifstream& in, const char* path, const char* message);
int open_output_file(std::ofstream& out, const char* path, const char* message);
// Prints message, name (null as "") and a new line; returns 0.
int report_file_failure(const char* message, const char* name);

// Token readers that never overrun and never change the target when the stream
// fails, so a field keeps its value when the file is cut short or malformed.
// read_token keeps at most size - 1 characters of the token (and consumes all).
int read_token(std::istream& in, char* buffer, int size);
void skip_token(std::istream& in);
int read_int(std::istream& in, int& value);
int read_double(std::istream& in, double& value);

// A keyword dropped unread, then its value: the one line shape of every
// positional file. Same results as the readers above, the keyword aside.
int read_keyed_int(std::istream& in, int& value);
int read_keyed_double(std::istream& in, double& value);
int read_keyed_word(std::istream& in, char* buffer, int size);
// The word after the keyword, whole; empty when none reads.
std::string read_keyed_text(std::istream& in);
// Degrees on file into radians; radians keeps its value when the number
// does not read.
int read_keyed_angle(std::istream& in, double& radians);

// Copies a C string into a buffer of size characters, cutting it to fit.
void copy_text(char* target, const char* source, int size);

// Degrees on file, radians in memory, in the engine's two exact forms.
double radians_from_file(double degrees);
double degrees_for_file(double radians);

// Numbers as the writers print them: enough digits to read back the same value
// in all practical cases, without trailing noise.
void set_file_precision(std::ostream& out);

#endif
