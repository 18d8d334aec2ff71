#ifndef TC_TESTS_IMAGE_TEST_FILES_H
#define TC_TESTS_IMAGE_TEST_FILES_H

#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Files for the image tests: a private folder per test, raw bytes in and out,
// and the independent HDF checker run as a separate process.

// A fresh folder under /tmp, removed with its contents when the holder goes.
class Temp_folder {
 public:
  Temp_folder() {
    char pattern[] = "/tmp/tc_image_XXXXXX";
    const char* made = mkdtemp(pattern);
    path_ = made ? made : "";
  }
  ~Temp_folder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  bool ok() const { return !path_.empty(); }
  std::string file(const char* name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

inline std::vector<unsigned char> file_bytes(const std::string& name) {
  std::ifstream in(name, std::ios::binary);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>());
}

inline void put_file_bytes(const std::string& name, const std::vector<unsigned char>& bytes) {
  std::ofstream out(name, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

// Runs a shell command; its standard output, and its exit status in status
// (-1 when it could not be started or did not exit normally).
inline std::string command_output(const std::string& command, int& status) {
  std::string text;
  status = -1;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return text;
  char buffer[4096];
  size_t n;
  while ((n = fread(buffer, 1, sizeof(buffer), pipe)) > 0) text.append(buffer, n);
  const int raw = pclose(pipe);
  if (raw != -1 && WIFEXITED(raw)) status = WEXITSTATUS(raw);
  return text;
}

// Debian's own interpreter: the one that has pyhdf and numpy.
inline std::string hdf_tool_command(const std::string& arguments) {
  return std::string("/usr/bin/python3 ") + TC_TEST_DATA_DIR + "/hdf_tool.py " + arguments;
}

#endif
