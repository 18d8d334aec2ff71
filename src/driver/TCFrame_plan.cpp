#include "TCFrame_plan.h"

#include <cstdio>
#include <cstring>

namespace {

const int name_buffer_size = 256;

// Appends as much of text as fits behind what the buffer already holds.
void append_cut(char* buffer, const char* text) {
  size_t used = std::strlen(buffer);
  size_t room = name_buffer_size - 1 - used;
  size_t length = std::strlen(text);
  if (length > room) length = room;
  std::memcpy(buffer + used, text, length);
  buffer[used + length] = '\0';
}

void append_number(char* buffer, int number) {
  char digits[16];
  std::snprintf(digits, sizeof digits, "%d", number);
  append_cut(buffer, digits);
}

}  // namespace

double time_for_frame(int frame, int n, const int* frame_numbers, const double* times) {
  // A scene never has fewer than one row; keep a bad call from reading off
  // the table.
  if (n < 1) return 0.0;
  if (n == 1) return times[0];

  int i;
  if (frame <= frame_numbers[0]) {
    i = 0;
  } else if (frame >= frame_numbers[n - 1]) {
    i = n - 2;
  } else {
    // Here frame_numbers[0] < frame < frame_numbers[n - 1], so i stays in
    // 0 .. n-2 even for a table that does not increase.
    i = 0;
    for (int k = 0; k < n - 1; ++k) {
      if (frame_numbers[k] <= frame) i = k;
    }
  }
  // Differences in doubles so that far-apart ints cannot overflow.
  double along = static_cast<double>(frame) - frame_numbers[i];
  double width = static_cast<double>(frame_numbers[i + 1]) - frame_numbers[i];
  return times[i] + (times[i + 1] - times[i]) * along / width;
}

int frame_in_range(int frame, int last, int increment) {
  if (increment < 1) return frame >= last ? 1 : 0;
  return frame <= last ? 1 : 0;
}

void frame_text(int frame, char out[5]) {
  // Wide enough for any int; a longer text is cut to its first four
  // characters rather than widening the field.
  char wide[16];
  std::snprintf(wide, sizeof wide, "%04d", frame);
  std::memcpy(out, wide, 4);
  out[4] = '\0';
}

int make_output_name(const char* format, const char* base, const char* camera_name,
                     int camera_number, const char* frame_text, const char* file_type, char* prefix,
                     char* suffix) {
  prefix[0] = '\0';
  suffix[0] = '\0';
  int error = 0;
  int after_frame = 0;
  size_t length = std::strlen(format);

  // Items are read in pairs while a pair fits; the last character of an
  // odd-length format is never an item, only the final "-" check sees it.
  for (size_t i = 0; i + 1 < length; i += 2) {
    char* out = after_frame ? suffix : prefix;
    if (format[i] != '-') {
      std::fprintf(stderr, "Error in format string format: %s", format);
      error = 1;
      break;
    }
    switch (format[i + 1]) {
      case '-':
        append_cut(out, "-");
        break;
      case '.':
        append_cut(out, ".");
        break;
      case '_':
        append_cut(out, "_");
        break;
      case 'C':
        append_cut(out, "c");
        append_number(out, camera_number);
        break;
      case 'b':
        append_cut(out, base);
        break;
      case 'c':
        append_cut(out, camera_name);
        break;
      case 't':
        // The extension without its dot: the format's own "-." item puts the
        // dot, so the default format gives "run0007.img" and not "..img".
        append_cut(out, file_type[0] == '.' ? file_type + 1 : file_type);
        break;
      case 'f':
        if (after_frame) std::fputs("You have 2 frame numbers in your output field!\n", stderr);
        after_frame = 1;
        break;
      default:
        std::fprintf(stderr, "%c is not a valid input\n", format[i + 1]);
        std::fprintf(stderr, "Input format string is incorrect: %s", format);
        error = 1;
        break;
    }
  }

  if (length == 0 || format[length - 1] != '-') {
    std::fprintf(stderr, "Format string error: %s is not correctly ", format);
    std::fputs(" formatted to end with a -\n", stderr);
    error = 1;
  }

  if (!error) {
    // A missing frame number is allowed, only warned about. The fallback
    // always carries the frame, so it needs no warning.
    if (!after_frame) {
      std::fputs("WARNING! You're output file format string has NO frame number.\n", stderr);
      std::fputs(
          "If you are running more than 1 file, the latest frame will "
          "overwrite earlier ones\n",
          stderr);
    }
    return 1;
  }

  // A bad format does not stop the run: fall back to a fixed naming.
  prefix[0] = '\0';
  append_cut(prefix, base);
  append_cut(prefix, "c");
  append_number(prefix, camera_number);
  append_cut(prefix, camera_name);
  suffix[0] = '\0';
  append_cut(suffix, file_type);
  std::fputs("Error in outfile format string. \n", stderr);
  std::fprintf(stderr, "Setting file output file to: Base:  %s\n", prefix);
  std::fprintf(stderr, "                             Frame: %s\n", frame_text);
  std::fprintf(stderr, "                             End:   %s\n", suffix);
  return 0;
}
