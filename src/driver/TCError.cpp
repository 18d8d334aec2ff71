#include "TCError.h"

#include <cstdlib>
#include <iostream>

void report_error(const char* where, const char* what, const char* detail) {
  std::cerr << "\n->TCError in " << where << " : " << what << detail << "\n";
  std::cerr.flush();
}

void report_error_exit(const char* where) {
  std::cerr << "\n->TCError in " << where << " : "
            << "\n";
  std::cerr.flush();
  std::exit(1);
}

void report_error_exit(const char* where, const char* what) {
  std::cerr << "\n->TCError in " << where << " : " << what << "\n";
  std::cerr.flush();
  std::exit(1);
}
