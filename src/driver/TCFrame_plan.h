#ifndef TC_FRAME_PLAN_H
#define TC_FRAME_PLAN_H

// The pieces of a scene's frame loop that need nothing but their arguments:
// frame number to time, the range test, the frame's text and the output name.

// Time of a frame from a table of n rows (frame_numbers[i], times[i]).
// Linear between rows and extrapolated past both ends from the outer
// segments. The table is not checked: equal neighbouring frame numbers give
// inf or nan. One row gives its time for every frame. The time-of-day form is
// this same function over the time-of-day column.
double time_for_frame(int frame, int n, const int* frame_numbers, const double* times);

// 1 while the loop should go on: frame >= last for an increment below 1,
// frame <= last otherwise.
int frame_in_range(int frame, int last, int increment);

// The frame number as "%04d" cut to its first four characters, NUL behind:
// 7 -> "0007", 12345 -> "1234", -1 -> "-001", -12345 -> "-123".
void frame_text(int frame, char out[5]);

// Builds the file name parts around the frame text from a format of "-x"
// items. prefix and suffix are buffers of 256 characters; text that does not
// fit is cut. Returns 1, or 0 when the format was faulty and the fallback
// names (base "c" number camera_name, and the file type) were set instead.
// Every complaint goes to standard error.
int make_output_name(const char* format, const char* base, const char* camera_name,
                     int camera_number, const char* frame_text, const char* file_type, char* prefix,
                     char* suffix);

#endif
