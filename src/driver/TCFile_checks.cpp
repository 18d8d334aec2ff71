#include "TCFile_checks.h"

#include <cstdio>
#include <fstream>
#include <iostream>

int output_directory_ok(const char* path) {
  char test_name[256];
  const int length = std::snprintf(test_name, sizeof(test_name), "%s_ovktst.tmp", path);
  if (length < 0 || length >= static_cast<int>(sizeof(test_name))) {
    std::cout << "unable to open test string for testing directory "
              << "\n";
    return 0;
  }
  std::ofstream test(test_name);
  if (!test) {
    std::cerr << "\n"
              << "      OUTPUT DIRECTORY ERROR "
              << "\n"
              << "      UNABLE TO WRITE TO " << path << "\n"
              << "      RENDER TERMINATED"
              << "\n"
              << "\n";
    return 0;
  }
  test.close();
  std::remove(test_name);
  return 1;
}

int file_readable(const char* path) {
  std::ifstream file(path);
  if (!file) {
    std::cerr << "   UNABLE TO READ FROM " << path << "\n"
              << "   RENDER TERMINATED "
              << "\n";
    return 0;
  }
  return 1;
}
