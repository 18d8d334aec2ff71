#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "fourt.h"

// Agreement of fourt with a plain double-precision discrete Fourier transform
// computed here, one dimension at a time, with the library's own pi.

namespace {

typedef std::complex<double> Complex;

const double true_pi = 3.14159265358979323846;

// Errors allowed, as a fraction of the reference's norm: single precision
// rounding over a few dozen operations a value.
const double tolerance = 2e-6;

// X[k] = sum_j x[j] exp(isign 2 pi i j k / N) along every dimension, the
// first fastest.
std::vector<Complex> reference_transform(const std::vector<Complex>& in, const std::vector<int>& n,
                                         int isign) {
  std::vector<Complex> data = in;
  long inner = 1;
  for (size_t d = 0; d < n.size(); ++d) {
    const long length = n[d];
    long outer = static_cast<long>(data.size()) / (inner * length);
    std::vector<Complex> roots(length);
    for (long k = 0; k < length; ++k)
      roots[k] = std::polar(1.0, isign * 2.0 * true_pi * k / length);
    std::vector<Complex> line(length);
    for (long o = 0; o < outer; ++o) {
      for (long e = 0; e < inner; ++e) {
        const long base = o * inner * length + e;
        for (long k = 0; k < length; ++k) {
          Complex sum = 0.0;
          for (long j = 0; j < length; ++j)
            sum += data[base + j * inner] * roots[(((j * k) % length) + length) % length];
          line[k] = sum;
        }
        for (long k = 0; k < length; ++k) data[base + k * inner] = line[k];
      }
    }
    inner *= length;
  }
  return data;
}

long product(const std::vector<int>& n) {
  long total = 1;
  for (size_t i = 0; i < n.size(); ++i) total *= n[i];
  return total;
}

std::vector<double> random_values(long count, unsigned seed) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  std::vector<double> values(count);
  for (long i = 0; i < count; ++i) values[i] = uniform(engine);
  return values;
}

double norm(const std::vector<Complex>& values) {
  double sum = 0.0;
  for (size_t i = 0; i < values.size(); ++i) sum += std::norm(values[i]);
  return std::sqrt(sum);
}

// The relative distance between float pairs and reference values.
double relative_error(const std::vector<float>& got, const std::vector<Complex>& expected) {
  double sum = 0.0;
  for (size_t i = 0; i < expected.size(); ++i)
    sum += std::norm(Complex(got[2 * i], got[2 * i + 1]) - expected[i]);
  return std::sqrt(sum) / norm(expected);
}

// Complex form, in and out.
double complex_error(const std::vector<int>& n, int isign, unsigned seed) {
  const long total = product(n);
  const std::vector<double> values = random_values(2 * total, seed);
  std::vector<Complex> in(total);
  std::vector<float> data(2 * total);
  for (long i = 0; i < total; ++i) {
    data[2 * i] = static_cast<float>(values[2 * i]);
    data[2 * i + 1] = static_cast<float>(values[2 * i + 1]);
    in[i] = Complex(data[2 * i], data[2 * i + 1]);
  }
  float work[400];
  fourt(data.data(), n.data(), static_cast<int>(n.size()), isign, 1, work, 100);
  return relative_error(data, reference_transform(in, n, isign));
}

// Keeps the first n[0] / 2 + 1 values of every row of a full spectrum.
std::vector<Complex> half_complex(const std::vector<Complex>& full, int n0) {
  const long rows = static_cast<long>(full.size()) / n0;
  const int kept = n0 / 2 + 1;
  std::vector<Complex> half(rows * kept);
  for (long r = 0; r < rows; ++r)
    for (int k = 0; k < kept; ++k) half[r * kept + k] = full[r * n0 + k];
  return half;
}

// Real data in, half-complex out.
double real_forward_error(const std::vector<int>& n, int isign, unsigned seed) {
  const long total = product(n);
  const std::vector<double> values = random_values(total, seed);
  std::vector<Complex> in(total);
  std::vector<float> data((n[0] + 2) * (total / n[0]), 99.0f);
  for (long i = 0; i < total; ++i) {
    data[i] = static_cast<float>(values[i]);
    in[i] = data[i];
  }
  float work[400];
  fourt(data.data(), n.data(), static_cast<int>(n.size()), isign, 0, work, 100);
  return relative_error(data, half_complex(reference_transform(in, n, isign), n[0]));
}

// Half-complex spectrum of real data in, real data out: the transform with
// the opposite sign gives the data times the length product.
double real_inverse_error(const std::vector<int>& n, int isign, unsigned seed) {
  const long total = product(n);
  const std::vector<double> values = random_values(total, seed);
  std::vector<Complex> real(total);
  for (long i = 0; i < total; ++i) real[i] = static_cast<float>(values[i]);
  const std::vector<Complex> spectrum = reference_transform(real, n, -isign);
  const std::vector<Complex> half = half_complex(spectrum, n[0]);
  std::vector<float> data(2 * half.size());
  for (size_t i = 0; i < half.size(); ++i) {
    data[2 * i] = static_cast<float>(half[i].real());
    data[2 * i + 1] = static_cast<float>(half[i].imag());
  }
  std::vector<Complex> expected(total);
  for (long i = 0; i < total; ++i) expected[i] = real[i] * static_cast<double>(total);
  float work[400];
  fourt(data.data(), n.data(), static_cast<int>(n.size()), isign, -1, work, 100);
  double sum = 0.0;
  for (long i = 0; i < total; ++i) sum += std::norm(Complex(data[i]) - expected[i]);
  return std::sqrt(sum) / norm(expected);
}

TEST(FourtTransform, ComplexLengthsOneToSixtyFourMatchTheDirectTransformBothSigns) {
  for (int length = 1; length <= 64; ++length) {
    for (int isign = -1; isign <= 1; isign += 2) {
      const std::vector<int> n(1, length);
      EXPECT_LT(complex_error(n, isign, length), tolerance)
          << "length " << length << " sign " << isign;
    }
  }
}

TEST(FourtTransform, PrimeAndMixedLengthsBeyondSixtyFourMatchTheDirectTransform) {
  // 1260 = 2 2 3 3 5 7: unpaired 5 and 7 in the middle.
  const int lengths[] = {97, 99, 100, 128, 180, 256, 360, 768, 1000, 1024, 1260};
  for (int length : lengths) {
    for (int isign = -1; isign <= 1; isign += 2) {
      const std::vector<int> n(1, length);
      EXPECT_LT(complex_error(n, isign, length), tolerance) << "length " << length;
    }
  }
}

TEST(FourtTransform, RealForwardEvenLengthsToSixtyFourMatchTheDirectTransform) {
  for (int length = 2; length <= 64; length += 2) {
    for (int isign = -1; isign <= 1; isign += 2) {
      const std::vector<int> n(1, length);
      EXPECT_LT(real_forward_error(n, isign, length), tolerance) << "length " << length;
    }
  }
  for (int length : {194, 200, 1024}) {
    const std::vector<int> n(1, length);
    EXPECT_LT(real_forward_error(n, -1, length), tolerance) << "length " << length;
  }
}

TEST(FourtTransform, RealInverseEvenLengthsToSixtyFourMatchTheDirectTransform) {
  for (int length = 2; length <= 64; length += 2) {
    for (int isign = -1; isign <= 1; isign += 2) {
      const std::vector<int> n(1, length);
      EXPECT_LT(real_inverse_error(n, isign, length), tolerance) << "length " << length;
    }
  }
  for (int length : {194, 200, 1024}) {
    const std::vector<int> n(1, length);
    EXPECT_LT(real_inverse_error(n, 1, length), tolerance) << "length " << length;
  }
}

TEST(FourtTransform, TwoAndThreeDimensionsMatchInAllFormsAndSigns) {
  const std::vector<std::vector<int> > shapes = {{6, 10}, {10, 6},   {12, 8},  {8, 6, 4},
                                                 {2, 3},  {4, 1, 3}, {14, 22}, {2, 97}};
  for (size_t s = 0; s < shapes.size(); ++s) {
    for (int isign = -1; isign <= 1; isign += 2) {
      EXPECT_LT(complex_error(shapes[s], isign, 7 + s), tolerance) << "shape " << s;
      EXPECT_LT(real_forward_error(shapes[s], isign, 17 + s), tolerance) << "shape " << s;
      EXPECT_LT(real_inverse_error(shapes[s], isign, 27 + s), tolerance) << "shape " << s;
    }
  }
}

TEST(FourtTransform, TwoFiftySixSquareMatchesInAllForms) {
  const std::vector<int> n = {256, 256};
  EXPECT_LT(complex_error(n, -1, 3), tolerance);
  EXPECT_LT(real_forward_error(n, -1, 4), tolerance);
  EXPECT_LT(real_inverse_error(n, 1, 5), tolerance);
}

TEST(FourtTransform, OtherSignsTurnTheAngleByThatManyTurns) {
  for (int length : {5, 8, 12, 16, 30}) {
    for (int isign : {2, -3}) {
      const std::vector<int> n(1, length);
      EXPECT_LT(complex_error(n, isign, length), tolerance) << length << " " << isign;
    }
  }
}

TEST(FourtTransform, ForwardThenInverseGivesTheLengthProductTimesTheData) {
  const std::vector<std::vector<int> > shapes = {{64}, {6, 10}, {12, 8}, {8, 6, 4}, {256, 256}};
  for (size_t s = 0; s < shapes.size(); ++s) {
    const std::vector<int>& n = shapes[s];
    const long total = product(n);
    const std::vector<double> values = random_values(2 * total, 40 + s);
    float work[400];
    // Complex form.
    std::vector<float> data(values.begin(), values.end());
    fourt(data.data(), n.data(), static_cast<int>(n.size()), -1, 1, work, 100);
    fourt(data.data(), n.data(), static_cast<int>(n.size()), 1, 1, work, 100);
    double error = 0.0, size = 0.0;
    for (long i = 0; i < 2 * total; ++i) {
      const double expected = static_cast<float>(values[i]) * static_cast<double>(total);
      error += (data[i] - expected) * (data[i] - expected);
      size += expected * expected;
    }
    EXPECT_LT(std::sqrt(error / size), tolerance) << "complex shape " << s;
    // Real forms.
    std::vector<float> real((n[0] + 2) * (total / n[0]));
    for (long i = 0; i < total; ++i) real[i] = static_cast<float>(values[i]);
    fourt(real.data(), n.data(), static_cast<int>(n.size()), -1, 0, work, 100);
    fourt(real.data(), n.data(), static_cast<int>(n.size()), 1, -1, work, 100);
    error = 0.0;
    size = 0.0;
    for (long i = 0; i < total; ++i) {
      const double expected = static_cast<float>(values[i]) * static_cast<double>(total);
      error += (real[i] - expected) * (real[i] - expected);
      size += expected * expected;
    }
    EXPECT_LT(std::sqrt(error / size), tolerance) << "real shape " << s;
  }
}

TEST(FourtTransform, ParsevalHoldsForComplexAndHalfComplexSpectra) {
  const std::vector<int> n = {12, 8};
  const long total = product(n);
  const std::vector<double> values = random_values(2 * total, 91);
  float work[400];
  std::vector<float> data(values.begin(), values.end());
  double energy = 0.0;
  for (long i = 0; i < 2 * total; ++i) energy += static_cast<double>(data[i]) * data[i];
  fourt(data.data(), n.data(), 2, 1, 1, work, 100);
  double spectrum_energy = 0.0;
  for (long i = 0; i < 2 * total; ++i) spectrum_energy += static_cast<double>(data[i]) * data[i];
  EXPECT_NEAR(spectrum_energy / total, energy, 1e-5 * energy);

  // A half-complex row stands for its mirror too, except at 0 and Nyquist.
  std::vector<float> real((n[0] + 2) * n[1]);
  double real_energy = 0.0;
  for (long i = 0; i < total; ++i) {
    real[i] = static_cast<float>(values[i]);
    real_energy += static_cast<double>(real[i]) * real[i];
  }
  fourt(real.data(), n.data(), 2, -1, 0, work, 100);
  double half_energy = 0.0;
  const int kept = n[0] / 2 + 1;
  for (int row = 0; row < n[1]; ++row) {
    for (int k = 0; k < kept; ++k) {
      const double re = real[2 * (row * kept + k)], im = real[2 * (row * kept + k) + 1];
      half_energy += (k == 0 || k == kept - 1 ? 1.0 : 2.0) * (re * re + im * im);
    }
  }
  EXPECT_NEAR(half_energy / total, real_energy, 1e-5 * real_energy);
}

}  // namespace
