#include "TCRandom.h"

#include <cmath>
#include <cstdlib>
#include <iostream>

#include "TCConstants.h"

TCRandom::TCRandom(int type)
    : generator_type(type),
      rm1(1.0 / m1),
      rm2(1.0 / m2),
      seed(0),
      initialized(0),
      i1(0),
      i2(0),
      i3(0),
      have_spare(0),
      spare(0.0) {
  for (int j = 0; j < table_size; j++) table[j] = 0.0;
}

int TCRandom::positive_remainder(long long x, int m) {
  long long r = x % m;
  if (r < 0) r += m;
  return static_cast<int>(r);
}

void TCRandom::seed_generator(int s) {
  seed = s;
  have_spare = 0;
  if (generator_type == random_library_generator) {
    std::srand(static_cast<unsigned int>(s));
  } else {
    i1 = positive_remainder(static_cast<long long>(c1) - s, m1);
    i1 = positive_remainder(static_cast<long long>(a1) * i1 + c1, m1);
    i2 = positive_remainder(i1, m2);
    i1 = positive_remainder(static_cast<long long>(a1) * i1 + c1, m1);
    i3 = positive_remainder(i1, m3);
    for (int j = 0; j < table_size; j++) {
      i1 = positive_remainder(static_cast<long long>(a1) * i1 + c1, m1);
      i2 = positive_remainder(static_cast<long long>(a2) * i2 + c2, m2);
      table[j] = (i1 + i2 * rm2) * rm1;
    }
  }
  initialized = 1;
}

int TCRandom::table_slot(int state) const {
  const long long j = static_cast<long long>(state) * table_size / m3;
  if (j >= table_size || j < 0) {
    std::cout << "random seed " << seed << " too large"
              << "\n";
    return j < 0 ? 0 : table_size - 1;
  }
  return static_cast<int>(j);
}

double TCRandom::uniform() {
  if (!initialized) {
    std::cout << "attempt to use uninitialized random number generator"
              << "\n";
    std::cout.flush();
    std::exit(1);
  }
  // The library's draw is cut to the 15 bits the divisor is made for, so that
  // the value stays within [0, 1] where RAND_MAX is larger than 32767.
  if (generator_type == random_library_generator) return (std::rand() & 0x7fff) / 32767.0;

  i1 = positive_remainder(static_cast<long long>(a1) * i1 + c1, m1);
  i2 = positive_remainder(static_cast<long long>(a2) * i2 + c2, m2);
  i3 = positive_remainder(static_cast<long long>(a3) * i3 + c3, m3);
  const int j = table_slot(i3);
  const double value = table[j];
  table[j] = (i1 + i2 * rm2) * rm1;
  return value;
}

double TCRandom::gaussian() {
  if (have_spare) {
    have_spare = 0;
    return spare;
  }
  // Two draws in this order: the angle's, then the radius's.
  const double angle = uniform() * tc_two_pi;
  double u = uniform();
  // ln 0 would make the radius, and every wave built on it, infinite. The
  // draw 0 stands for the first step of the family's grid of values.
  if (u == 0.0) u = smallest_radius_draw();
  const double radius = std::sqrt(-2.0 * std::log(u));
  spare = radius * std::sin(angle);
  have_spare = 1;
  return radius * std::cos(angle);
}

double TCRandom::smallest_radius_draw() const {
  if (generator_type == random_library_generator) return 0.5 / 32767.0;
  return 0.5 * rm2 * rm1;
}

double TCRandom::random_gaussian() {
  if (generator_type != random_library_generator) return gaussian();
  // Twelve uniforms of variance 1/12 each: mean 6, variance 1.
  double sum = 0.0;
  for (int k = 0; k < 12; k++) sum += uniform();
  return sum - 6.0;
}
