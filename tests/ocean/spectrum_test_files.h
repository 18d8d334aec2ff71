#ifndef TC_TESTS_SPECTRUM_TEST_FILES_H
#define TC_TESTS_SPECTRUM_TEST_FILES_H

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "TCSettings.h"

// Shared by the spectrum tests: the reference files of spectrum_reference.py,
// spectrum files written by hand, and the process-wide settings put back
// after a test changes them.

const double test_pi = 3.1415926535;
const double test_degrees = 0.017453292519444445;

inline std::string ocean_data(const std::string& name) {
  return std::string(TC_TEST_DATA_DIR) + "/ocean/" + name;
}

inline std::vector<unsigned char> bytes_of(const std::string& path) {
  std::ifstream in(path.c_str(), std::ios::binary);
  return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                    std::istreambuf_iterator<char>());
}

// One value a line, as the reference script writes them.
inline std::vector<double> values_of(const std::string& path) {
  std::vector<double> values;
  std::ifstream in(path.c_str());
  std::string line;
  while (std::getline(in, line))
    if (!line.empty()) values.push_back(std::strtod(line.c_str(), nullptr));
  return values;
}

// A spectrum file in the engine's default order (big-endian): int32 n_kx,
// int32 n_ky, then the floats.
inline void write_big_endian_spectrum(const std::string& path, int n_kx, int n_ky,
                                      const std::vector<float>& values) {
  std::ofstream out(path.c_str(), std::ios::binary);
  auto put = [&out](unsigned int bits) {
    const unsigned char b[4] = {
        static_cast<unsigned char>(bits >> 24), static_cast<unsigned char>(bits >> 16),
        static_cast<unsigned char>(bits >> 8), static_cast<unsigned char>(bits)};
    out.write(reinterpret_cast<const char*>(b), 4);
  };
  put(static_cast<unsigned int>(n_kx));
  put(static_cast<unsigned int>(n_ky));
  for (size_t e = 0; e < values.size(); e++) {
    unsigned int bits;
    std::memcpy(&bits, &values[e], 4);
    put(bits);
  }
}

// Puts verbose, swap_bytes and the generator family back as they were.
class Spectrum_settings_guard {
 public:
  Spectrum_settings_guard()
      : verbose_(verbose), swap_(swap_bytes), generator_(random_generator_kind) {}
  ~Spectrum_settings_guard() {
    verbose = verbose_;
    swap_bytes = swap_;
    random_generator_kind = generator_;
  }

 private:
  int verbose_;
  int swap_;
  int generator_;
};

// The largest magnitude of a list, for tolerances relative to the data.
inline double largest(const std::vector<double>& values) {
  double m = 0.0;
  for (size_t i = 0; i < values.size(); i++) m = std::fmax(m, std::fabs(values[i]));
  return m;
}

#endif
