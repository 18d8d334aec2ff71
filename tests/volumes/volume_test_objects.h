#ifndef TC_TESTS_VOLUME_TEST_OBJECTS_H
#define TC_TESTS_VOLUME_TEST_OBJECTS_H

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "TCVolume_Object.h"
#include "TCVolume_Object_class.h"

// A volume record with a lattice, bands (ids 1..n) and the same phase table
// value at every angle for every band.
inline void fill_volume_record(TCVolume_Object_class& record, int nx, int ny, int nz, double dx,
                               double dy, double dz, int n_bands, const double* a, const double* b,
                               const double* x, double phase) {
  record.number_points_x = nx;
  record.number_points_y = ny;
  record.number_points_z = nz;
  record.lattice_spacing_x = dx;
  record.lattice_spacing_y = dy;
  record.lattice_spacing_z = dz;
  record.allocate_arrays(n_bands, 181);
  for (int m = 0; m < n_bands; m++) {
    record.band_id[m] = m + 1;
    record.absorption[m] = a[m];
    record.scattering[m] = b[m];
    record.extinction[m] = x[m];
    for (int i = 0; i < 181; i++) record.phase_functions[m][i] = phase;
  }
}

// A volume whose lattice holds given densities, looked up trilinearly: the
// base's march and field walk seen through the plainest kind there is.
class Lattice_test_volume : public TCVolume_Object {
 public:
  explicit Lattice_test_volume(const TCVolume_Object_class& record)
      : TCVolume_Object(record),
        density(static_cast<size_t>(n_x) * n_y * n_z, 0.0),
        column(static_cast<size_t>(n_x) * n_y * n_z, 0.0),
        exact_sun(0),
        uniform(0.0) {}

  // Length of the sun's ray from an object-frame point to the box's edge.
  double path_to_sun(const TCVector& p) const {
    const double half[3] = {length.x / 2, length.y / 2, length.z / 2};
    double t = 1e300;
    for (int a = 0; a < 3; a++) {
      if (sun_direction[a] == 0.0) continue;
      const double face = sun_direction[a] > 0.0 ? half[a] : -half[a];
      const double t_a = (face - p[a]) / sun_direction[a];
      if (t_a < t) t = t_a;
    }
    return t < 0.0 ? 0.0 : t;
  }

  void fill(double rho) {
    uniform = rho;
    for (size_t i = 0; i < density.size(); i++) density[i] = rho;
    density_changed = 1;
  }

  double density_of_index(long index) override { return density[index]; }
  void set_extinction(long index, double value) override { column[index] = value; }
  double get_extinction(long index) override { return column[index]; }
  double density_point(const TCVector& p, double& rho, double& sun_column) override {
    rho = 0.0;
    sun_column = 0.0;
    const int n[3] = {n_x, n_y, n_z};
    const double half[3] = {length.x / 2, length.y / 2, length.z / 2};
    double u[3];
    int i0[3];
    double f[3];
    for (int a = 0; a < 3; a++) {
      if (p[a] < -half[a] - 1e-9 || p[a] > half[a] + 1e-9) return 0.0;
      u[a] = spacing[a] > 0.0 ? (p[a] + half[a]) / spacing[a] : 0.0;
      if (u[a] < 0.0) u[a] = 0.0;
      if (u[a] > n[a] - 1) u[a] = n[a] - 1;
      i0[a] = static_cast<int>(std::floor(u[a]));
      if (i0[a] > n[a] - 2) i0[a] = n[a] - 2;
      if (i0[a] < 0) i0[a] = 0;
      f[a] = n[a] > 1 ? u[a] - i0[a] : 0.0;
    }
    for (int c = 0; c < 8; c++) {
      int idx[3];
      double w = 1.0;
      for (int a = 0; a < 3; a++) {
        const int up = (c >> a) & 1;
        idx[a] = i0[a] + up;
        w *= up ? f[a] : 1.0 - f[a];
      }
      if (w == 0.0) continue;
      const long k = idx[0] + static_cast<long>(n_x) * (idx[1] + static_cast<long>(n_y) * idx[2]);
      rho += w * density[k];
      sun_column += w * column[k];
    }
    // A uniform box's column to the sun in closed form, to tell the
    // march's own error from the lattice's.
    if (exact_sun) sun_column = uniform * path_to_sun(p);
    return rho;
  }

  std::vector<double> density;
  std::vector<double> column;
  int exact_sun;
  double uniform;
};

// Whitespace-separated records of a reference file whose first word is tag.
inline std::vector<std::vector<double>> reference_records(const std::string& path,
                                                          const std::string& tag) {
  std::vector<std::vector<double>> records;
  std::ifstream in(path.c_str());
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string first;
    if (!(words >> first) || first != tag) continue;
    std::vector<double> values;
    std::string word;
    while (words >> word) {
      // Face names and the like are kept as NaN.
      char* end = nullptr;
      const double v = std::strtod(word.c_str(), &end);
      values.push_back(end != nullptr && *end == '\0' ? v : std::nan(""));
    }
    records.push_back(values);
  }
  return records;
}

#endif
