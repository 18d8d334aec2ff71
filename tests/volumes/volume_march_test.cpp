#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "TCRay.h"
#include "TCSpectrum.h"
#include "TCVolume_Object.h"
#include "TCVolume_Object_class.h"
#include "volume_test_objects.h"

namespace {

const std::string data_dir = std::string(TC_TEST_DATA_DIR) + "/volumes/";
const double isotropic = 0.079577471545947673;

struct Slab {
  Slab() : record(), volume(nullptr) {
    const auto boxes = reference_records(data_dir + "slab_reference.txt", "box");
    const auto bands = reference_records(data_dir + "slab_reference.txt", "band");
    const std::vector<double>& box = boxes.at(0);
    double a[3], b[3], x[3];
    for (int m = 0; m < 3; m++) {
      a[m] = bands.at(m)[2];
      b[m] = bands.at(m)[3];
      x[m] = bands.at(m)[4];
    }
    fill_volume_record(record, static_cast<int>(box[0]), static_cast<int>(box[1]),
                       static_cast<int>(box[2]), box[3], box[4], box[5], 3, a, b, x, isotropic);
    volume = new Lattice_test_volume(record);
    volume->fill(box[6]);
    rho = box[6];
    for (int m = 0; m < 3; m++) {
      volume->sun_radiance.radiance_in_band[m] = 1.0;
      this->a[m] = a[m];
      this->x[m] = x[m];
      spacing[m] = box[3 + m];
    }
  }
  ~Slab() { delete volume; }
  void sun(const std::vector<double>& s) {
    volume->sun_direction = TCVector(s[3], s[4], s[5]);
    volume->make_extinction_field();
  }
  TCVolume_Object_class record;
  Lattice_test_volume* volume;
  double rho;
  double a[3], x[3], spacing[3];
};

// The march's step along a reference ray: weights (d_i / L_i)^2 summed to
// one, step sum w_i L_i, not below the smallest spacing; then the samples
// are spread evenly over the path.
double march_step(const Slab& slab, const std::vector<double>& r) {
  double w[3], sum = 0.0, smallest = 1e300, step = 0.0;
  for (int i = 0; i < 3; i++) {
    w[i] = (r[4 + i] / slab.spacing[i]) * (r[4 + i] / slab.spacing[i]);
    sum += w[i];
    smallest = std::min(smallest, slab.spacing[i]);
  }
  for (int i = 0; i < 3; i++) step += w[i] / sum * slab.spacing[i];
  step = std::max(step, smallest);
  const double path = r[11];
  const double n = std::floor(path / step) + 2;
  return path / (n - 1);
}

TCSpectrum three_bands() {
  TCSpectrum out(3);
  for (int k = 0; k < 3; k++) out.band_id[k] = k + 1;
  return out;
}

TCRay reference_ray(const std::vector<double>& r) {
  return TCRay(TCVector(r[1], r[2], r[3]), TCVector(r[4], r[5], r[6]));
}

}  // namespace

TEST(VolumeMarch, TransmissionThroughAUniformSlabIsBeerLambert) {
  Slab slab;
  slab.sun(reference_records(data_dir + "slab_reference.txt", "sun").at(1));
  const auto rays = reference_records(data_dir + "slab_reference.txt", "ray");
  const auto trans = reference_records(data_dir + "slab_reference.txt", "trans");
  ASSERT_EQ(trans.size(), rays.size() * 3);
  for (const auto& t : trans) {
    const std::vector<double>& r = rays.at(static_cast<size_t>(t[0]));
    for (int flag = 0; flag < 2; flag++) {
      TCSpectrum out = three_bands();
      double T[3];
      slab.volume->integrate_ray(reference_ray(r), out, nullptr, r[7], flag, nullptr, 0, T);
      EXPECT_NEAR(T[static_cast<int>(t[1])], t[2 + flag], 1e-12)
          << "ray " << t[0] << " band " << t[1] << " flag " << flag;
    }
  }
}

// With the sun's column in closed form the march's only error is its
// trapezoid at one cell a step, which the reference gives per ray.
TEST(VolumeMarch, SingleScatteredRadianceOfAUniformSlabMatchesTheClosedForm) {
  Slab slab;
  slab.volume->exact_sun = 1;
  const auto suns = reference_records(data_dir + "slab_reference.txt", "sun");
  const auto rays = reference_records(data_dir + "slab_reference.txt", "ray");
  const auto rads = reference_records(data_dir + "slab_reference.txt", "rad");
  int checked = 0;
  for (size_t sun = 0; sun < suns.size(); sun++) {
    slab.sun(suns[sun]);
    for (const auto& rad : rads) {
      if (static_cast<size_t>(rad[1]) != sun) continue;
      const std::vector<double>& r = rays.at(static_cast<size_t>(rad[0]));
      const int band = static_cast<int>(rad[2]);
      for (int flag = 0; flag < 2; flag++) {
        TCSpectrum out = three_bands();
        slab.volume->integrate_ray(reference_ray(r), out, nullptr, r[7], flag, nullptr, 0);
        const double expected = rad[4 + flag];
        if (expected == 0.0) {
          EXPECT_EQ(out.radiance_in_band[band], 0.0);
          continue;
        }
        const double rel = std::fabs(out.radiance_in_band[band] / expected - 1.0);
        // The reference's trapezoid error is for the full view extinction;
        // with absorption alone the bound is the trapezoid's h^2 max(g')^2 / 12
        // for an integrand exp(g), g' at most rho (e + x max |d_i / s_i|),
        // taken twice for the kinks of the sun's path.
        double tolerance = 1.5 * rad[6];
        if (flag == 1) {
          const double h = march_step(slab, r);
          double slope = 0.0;
          for (int a = 0; a < 3; a++) {
            if (suns[sun][3 + a] != 0.0)
              slope = std::max(slope, std::fabs(r[4 + a] / suns[sun][3 + a]));
          }
          const double g = slab.rho * (slab.a[band] + slab.x[band] * slope);
          tolerance = 2.0 * h * h * g * g / 12.0;  // twice: the sun path's kinks
        }
        EXPECT_LT(rel, tolerance + 1e-9)
            << "ray " << rad[0] << " sun " << sun << " band " << band << " flag " << flag << " got "
            << out.radiance_in_band[band] << " want " << expected;
        checked++;
      }
    }
  }
  EXPECT_GT(checked, 100);
}

// The sun's column read from the lattice adds at most its largest
// interpolation error, measured here between the lattice points, to the
// optical depth of every sample.
TEST(VolumeMarch, LatticeSunColumnChangesRadianceOnlyByItsInterpolationError) {
  Slab lattice, exact;
  exact.volume->exact_sun = 1;
  const auto suns = reference_records(data_dir + "slab_reference.txt", "sun");
  const auto rays = reference_records(data_dir + "slab_reference.txt", "ray");
  const auto bands = reference_records(data_dir + "slab_reference.txt", "band");
  for (size_t sun = 0; sun < suns.size(); sun++) {
    lattice.sun(suns[sun]);
    exact.sun(suns[sun]);
    double worst_column = 0.0;
    for (int i = 0; i < 4000; i++) {
      const TCVector p((std::fmod(i * 0.6180339887, 1.0) - 0.5) * lattice.volume->length.x,
                       (std::fmod(i * 0.7548776662, 1.0) - 0.5) * lattice.volume->length.y,
                       (std::fmod(i * 0.5698402910, 1.0) - 0.5) * lattice.volume->length.z);
      double rho = 0.0, a = 0.0, b = 0.0;
      lattice.volume->density_point(p, rho, a);
      exact.volume->density_point(p, rho, b);
      if (std::fabs(a - b) > worst_column) worst_column = std::fabs(a - b);
    }
    for (const auto& r : rays) {
      TCSpectrum from_lattice = three_bands(), from_exact = three_bands();
      lattice.volume->integrate_ray(reference_ray(r), from_lattice, nullptr, r[7], 0, nullptr, 0);
      exact.volume->integrate_ray(reference_ray(r), from_exact, nullptr, r[7], 0, nullptr, 0);
      for (int k = 0; k < 3; k++) {
        const double bound = std::expm1(bands[k][4] * worst_column * 1.05) + 1e-12;
        const double e = from_exact.radiance_in_band[k];
        if (e == 0.0) continue;
        EXPECT_LT(std::fabs(from_lattice.radiance_in_band[k] / e - 1.0), bound)
            << "sun " << sun << " ray " << r[0] << " band " << k;
      }
    }
  }
}

TEST(VolumeExtinctionField, UniformBoxMatchesTheOpticalDepthToTheSun) {
  const std::string file = data_dir + "extinction_field_reference.txt";
  const std::vector<double> box = reference_records(file, "box").at(0);
  const auto suns = reference_records(file, "sun");
  const auto points = reference_records(file, "point");
  TCVolume_Object_class record;
  const double zero = 0.0, x = box[7];
  fill_volume_record(record, static_cast<int>(box[0]), static_cast<int>(box[1]),
                     static_cast<int>(box[2]), box[3], box[4], box[5], 1, &zero, &zero, &x,
                     isotropic);
  Lattice_test_volume volume(record);
  volume.fill(box[6]);
  const int nx = static_cast<int>(box[0]), ny = static_cast<int>(box[1]);
  for (size_t sun = 0; sun < suns.size(); sun++) {
    volume.sun_direction = TCVector(suns[sun][3], suns[sun][4], suns[sun][5]);
    volume.make_extinction_field();
    double worst = 0.0;
    for (const auto& p : points) {
      if (static_cast<size_t>(p[0]) != sun) continue;
      const long idx =
          static_cast<long>(p[1]) + nx * (static_cast<long>(p[2]) + ny * static_cast<long>(p[3]));
      const double got = x * volume.get_extinction(idx);
      const double diff = std::fabs(got - p[9]);
      if (diff > worst) worst = diff;
      EXPECT_NEAR(got, p[9], 1e-9)
          << "sun " << sun << " point " << p[1] << " " << p[2] << " " << p[3] << " got " << got;
    }
    std::printf("sun %zu worst %g\n", sun, worst);
  }
}
