#ifndef TC_TESTS_SCRATCH_FOLDER_H
#define TC_TESTS_SCRATCH_FOLDER_H

#include <stdlib.h>

#include <filesystem>
#include <string>

// A fresh private folder under /tmp, removed with what it holds when the
// holder goes.
class Scratch_folder {
 public:
  Scratch_folder() {
    char pattern[] = "/tmp/tc_scratch_XXXXXX";
    const char* made = mkdtemp(pattern);
    path_ = made ? made : "";
  }
  ~Scratch_folder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

#endif
