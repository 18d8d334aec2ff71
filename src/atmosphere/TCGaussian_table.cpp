#include "TCGaussian_table.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

namespace {

const int sub_intervals = 10;

}  // namespace

TCGaussian_table::TCGaussian_table() : values(nullptr) {
  values = new (std::nothrow) double[count];
  if (values == nullptr) {
    std::cout << "unable to allocate memory for Gaussian table "
              << "\n";
    std::exit(1);
  }
  const double h = step / sub_intervals;
  values[0] = 0.0;
  for (int i = 1; i < count; i++) {
    const double a = (i - 1) * step;
    const double b = i * step;
    double sum = 0.5 * (std::exp(-a * a) + std::exp(-b * b));
    for (int j = 1; j < sub_intervals; j++) {
      const double t = a + j * h;
      sum += std::exp(-t * t);
    }
    values[i] = values[i - 1] + sum * h;
  }
}

TCGaussian_table::~TCGaussian_table() {
  delete[] values;
}

double TCGaussian_table::value(double x) const {
  const double t = std::fabs(x) * (1.0 / step);
  double result = values[count - 1];
  // Written so that a NaN lands on the last entry rather than in an index.
  if (t < count - 1) {
    const int i = static_cast<int>(t);
    result = values[i] + (t - i) * (values[i + 1] - values[i]);
  }
  return x < 0.0 ? -result : result;
}
