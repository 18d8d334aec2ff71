#ifndef TC_RANDOM_H
#define TC_RANDOM_H

#include "TCSettings.h"

// Generator families: the C library's srand/rand, or our own shuffled one.
const int random_library_generator = 901;
const int random_own_generator = 902;

// Seeded uniform and Gaussian deviates. Family 902 is three linear
// congruential states with a 97-entry shuffle table, the same on every
// platform; family 901 hands everything to srand/rand, whose state is shared
// by the whole process. Any type other than 901 behaves as 902. Each user
// owns its own instance.
class TCRandom {
 public:
  // The family defaults to the process-wide setting at construction time.
  explicit TCRandom(int type = random_generator_kind);

  // Restarts the sequence of this seed and drops a pending Gaussian spare.
  void seed_generator(int s);
  // Family 902: in [0, 1). Family 901: the low 15 bits of rand() / 32767.0,
  // so in [0, 1] (both ends included) whatever the library's RAND_MAX. Used
  // before any seed_generator it prints
  // "attempt to use uninitialized random number generator" and exits 1.
  double uniform();
  // Unit-variance normal deviate by Box-Muller, made in pairs: every second
  // call returns the spare of the one before. Always finite: a radius draw of
  // exactly 0 is taken as half the family's smallest draw above 0.
  double gaussian();
  // That stand-in: 0.5 / 32767 for family 901, 0.5 / (m1 m2) for 902.
  double smallest_radius_draw() const;
  // The spray's deviate: family 901 sums 12 uniforms and subtracts 6.0;
  // family 902 is gaussian().
  double random_gaussian();

  int get_generator_type() const { return generator_type; }
  int get_seed() const { return seed; }
  int get_initialized() const { return initialized; }
  int get_have_spare() const { return have_spare; }

  static constexpr int table_size = 97;
  static constexpr int m1 = 259200;
  static constexpr int m2 = 134456;
  static constexpr int m3 = 243000;
  static constexpr int a1 = 7141;
  static constexpr int a2 = 8121;
  static constexpr int a3 = 4561;
  static constexpr int c1 = 54773;
  static constexpr int c2 = 28411;
  static constexpr int c3 = 51349;

 protected:
  // x % m made non-negative; 64-bit so that no seed can overflow it.
  static int positive_remainder(long long x, int m);
  // The table slot the third state picks. A slot outside the table prints
  // "random seed <seed> too large" and is clamped to the nearest end so that
  // nothing is read out of bounds; with a state in [0, m3) it cannot happen.
  int table_slot(int state) const;

  int generator_type;
  double rm1;  // 1 / m1
  double rm2;  // 1 / m2
  int seed;
  int initialized;
  int i1;
  int i2;
  int i3;
  double table[table_size];
  int have_spare;
  double spare;
};

#endif
