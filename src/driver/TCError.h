#ifndef TC_ERROR_H
#define TC_ERROR_H

// Reports on standard error in the frame "\n->TCError in <where> : <what><detail>\n".
// report_error returns; the caller decides whether to stop.
void report_error(const char* where, const char* what, const char* detail);

// The same frame with the missing pieces left out, then exit status 1.
void report_error_exit(const char* where);
void report_error_exit(const char* where, const char* what);

#endif
