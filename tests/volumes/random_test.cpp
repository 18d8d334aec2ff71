#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "TCRandom.h"
#include "TCSettings.h"
#include "stream_capture.h"

namespace {

// Sequences written by random_reference.py from a fresh generator per
// sequence; values in shortest round-trip text, so reading them gives back
// the script's doubles bit for bit.
const char* const sequences_file = TC_TEST_DATA_DIR "/../volumes/random_sequences.txt";

struct Sequence {
  int seed;
  std::string kind;
  std::vector<double> values;
};

std::vector<Sequence> read_sequences() {
  std::vector<Sequence> found;
  std::ifstream in(sequences_file);
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream head(line);
    std::string word;
    Sequence s;
    int count = 0;
    if (!(head >> word >> s.seed >> s.kind >> count) || word != "sequence") {
      ADD_FAILURE() << "bad line in " << sequences_file << ": " << line;
      return found;
    }
    for (int k = 0; k < count && std::getline(in, line); k++)
      s.values.push_back(std::strtod(line.c_str(), nullptr));
    EXPECT_EQ(static_cast<int>(s.values.size()), count) << "seed " << s.seed;
    found.push_back(s);
  }
  return found;
}

const Sequence* find_sequence(const std::vector<Sequence>& all, int seed, const char* kind) {
  for (const Sequence& s : all)
    if (s.seed == seed && s.kind == kind) return &s;
  return nullptr;
}

// Reaches the slot check, which no reachable state can trip.
class Slot_probe : public TCRandom {
 public:
  Slot_probe() : TCRandom(random_own_generator) {}
  int slot(int state) const { return table_slot(state); }
  static int remainder(long long x, int m) { return positive_remainder(x, m); }
};

TEST(Random, ConstructorTakesTheProcessWideFamilyByDefault) {
  const int saved = random_generator_kind;
  random_generator_kind = 902;
  TCRandom ours;
  random_generator_kind = 901;
  TCRandom library;
  random_generator_kind = saved;
  EXPECT_EQ(ours.get_generator_type(), 902);
  EXPECT_EQ(library.get_generator_type(), 901);
  EXPECT_EQ(TCRandom(901).get_generator_type(), 901);
  EXPECT_EQ(ours.get_initialized(), 0);
  EXPECT_EQ(ours.get_have_spare(), 0);
}

TEST(Random, ConstantsAreTheGeneratorsOwn) {
  EXPECT_EQ(TCRandom::m1, 259200);
  EXPECT_EQ(TCRandom::m2, 134456);
  EXPECT_EQ(TCRandom::m3, 243000);
  EXPECT_EQ(TCRandom::a1, 7141);
  EXPECT_EQ(TCRandom::a2, 8121);
  EXPECT_EQ(TCRandom::a3, 4561);
  EXPECT_EQ(TCRandom::c1, 54773);
  EXPECT_EQ(TCRandom::c2, 28411);
  EXPECT_EQ(TCRandom::c3, 51349);
  EXPECT_EQ(TCRandom::table_size, 97);
}

TEST(Random, PositiveRemainderAddsTheModulusToNegativeResults) {
  EXPECT_EQ(Slot_probe::remainder(7, 5), 2);
  EXPECT_EQ(Slot_probe::remainder(-7, 5), 3);
  EXPECT_EQ(Slot_probe::remainder(-10, 5), 0);
  EXPECT_EQ(Slot_probe::remainder(0, 5), 0);
  // c1 - seed for seed 100000: -45227 + 259200.
  EXPECT_EQ(Slot_probe::remainder(54773 - 100000, 259200), 213973);
  // c1 - INT_MIN does not fit an int: 2147538421 - 8285 * 259200 = 66421.
  EXPECT_EQ(Slot_probe::remainder(54773LL - INT_MIN, 259200), 66421);
}

TEST(RandomDeath, UniformBeforeSeedingEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCRandom r(902);
        r.uniform();
      },
      ::testing::ExitedWithCode(1), "^attempt to use uninitialized random number generator\n$");
}

TEST(RandomDeath, LibraryUniformBeforeSeedingEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCRandom r(901);
        r.uniform();
      },
      ::testing::ExitedWithCode(1), "^attempt to use uninitialized random number generator\n$");
}

TEST(RandomDeath, GaussiansBeforeSeedingEndTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCRandom r(902);
        r.gaussian();
      },
      ::testing::ExitedWithCode(1), "^attempt to use uninitialized random number generator\n$");
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCRandom r(901);
        r.random_gaussian();
      },
      ::testing::ExitedWithCode(1), "^attempt to use uninitialized random number generator\n$");
}

TEST(Random, SeedingMarksTheGeneratorInitialized) {
  TCRandom ours(902);
  ours.seed_generator(5);
  EXPECT_EQ(ours.get_initialized(), 1);
  EXPECT_EQ(ours.get_seed(), 5);
  TCRandom library(901);
  library.seed_generator(5);
  EXPECT_EQ(library.get_initialized(), 1);
}

TEST(Random, UniformMatchesTheReferenceSequencesExactly) {
  const std::vector<Sequence> all = read_sequences();
  const int seeds[] = {1, 12345, -7, 100000, 54773, INT_MAX, INT_MIN};
  for (int seed : seeds) {
    const Sequence* s = find_sequence(all, seed, "uniform");
    ASSERT_NE(s, nullptr) << "seed " << seed;
    if (seed == 1 || seed == 12345 || seed == -7) {
      EXPECT_GE(s->values.size(), 1000u);
    }
    TCRandom r(902);
    r.seed_generator(seed);
    for (size_t k = 0; k < s->values.size(); k++) {
      // Every operation is one IEEE double operation in the same order on
      // both sides, so the results agree to the bit.
      const double u = r.uniform();
      ASSERT_EQ(u, s->values[k]) << "seed " << seed << " draw " << k;
    }
  }
}

TEST(Random, GaussianMatchesTheReferenceSequences) {
  const std::vector<Sequence> all = read_sequences();
  const int seeds[] = {1, 12345, -7, 100000, 54773, INT_MAX, INT_MIN};
  for (int seed : seeds) {
    const Sequence* s = find_sequence(all, seed, "gaussian");
    ASSERT_NE(s, nullptr) << "seed " << seed;
    if (seed == 1 || seed == 12345 || seed == -7) {
      EXPECT_GE(s->values.size(), 1000u);
    }
    TCRandom r(902);
    r.seed_generator(seed);
    TCRandom spray(902);
    spray.seed_generator(seed);
    for (size_t k = 0; k < s->values.size(); k++) {
      // log, sin and cos need not be correctly rounded, so another libm may
      // differ in the last bits; 1e-12 is far above that and far below the
      // O(1) change any wrong step would make.
      const double g = r.gaussian();
      ASSERT_NEAR(g, s->values[k], 1e-12) << "seed " << seed << " draw " << k;
      ASSERT_EQ(spray.random_gaussian(), g) << "seed " << seed << " draw " << k;
    }
  }
}

TEST(Random, NegativeAndLargeSeedsStayInRange) {
  const int seeds[] = {-7, -1, 54773, 54774, 100000, INT_MAX, INT_MIN, INT_MIN + 1};
  for (int seed : seeds) {
    TCRandom r(902);
    Stream_capture out(std::cout);
    r.seed_generator(seed);
    for (int k = 0; k < 20000; k++) {
      const double u = r.uniform();
      ASSERT_GE(u, 0.0) << "seed " << seed;
      ASSERT_LT(u, 1.0) << "seed " << seed;
    }
    EXPECT_EQ(out.text(), "") << "seed " << seed;
  }
}

TEST(Random, SlotOutsideTheTableIsReportedAndClamped) {
  Slot_probe r;
  r.seed_generator(-42);
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(r.slot(0), 0);
    EXPECT_EQ(r.slot(242999), 96);  // 242999 * 97 / 243000 = 96
    EXPECT_EQ(r.slot(2506), 1);     // the first state that reaches slot 1
    EXPECT_EQ(r.slot(2505), 0);
    EXPECT_EQ(out.text(), "");
  }
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(r.slot(243000), 96);
    EXPECT_EQ(out.text(), "random seed -42 too large\n");
  }
  {
    Stream_capture out(std::cout);
    EXPECT_EQ(r.slot(-243000), 0);
    EXPECT_EQ(out.text(), "random seed -42 too large\n");
  }
  {
    // No overflow on the way: INT_MAX * 97 needs 64 bits.
    Stream_capture out(std::cout);
    EXPECT_EQ(r.slot(INT_MAX), 96);
    EXPECT_EQ(out.text(), "random seed -42 too large\n");
  }
}

TEST(Random, TwoInstancesSeededAlikeAgree) {
  TCRandom a(902);
  TCRandom b(902);
  a.seed_generator(2024);
  b.seed_generator(2024);
  // Interleaved, so that neither instance's state leaks into the other.
  for (int k = 0; k < 500; k++) {
    const double ua = a.uniform();
    ASSERT_EQ(ua, b.uniform()) << k;
    const double ga = a.gaussian();
    ASSERT_EQ(ga, b.gaussian()) << k;
  }
  TCRandom c(902);
  c.seed_generator(2025);
  TCRandom d(902);
  d.seed_generator(2024);
  int same = 0;
  for (int k = 0; k < 100; k++)
    if (c.uniform() == d.uniform()) same++;
  EXPECT_LT(same, 5);
}

TEST(Random, ReseedingRestartsTheSequenceAndDropsTheSpare) {
  TCRandom r(902);
  r.seed_generator(77);
  const double first = r.gaussian();
  const double second = r.gaussian();
  const double third = r.gaussian();  // leaves a spare pending
  EXPECT_EQ(r.get_have_spare(), 1);
  EXPECT_NE(first, second);

  r.seed_generator(77);
  EXPECT_EQ(r.get_have_spare(), 0);
  EXPECT_EQ(r.gaussian(), first);
  EXPECT_EQ(r.gaussian(), second);
  EXPECT_EQ(r.gaussian(), third);

  r.seed_generator(3);
  const double other = r.uniform();
  r.seed_generator(77);
  TCRandom fresh(902);
  fresh.seed_generator(77);
  EXPECT_EQ(r.uniform(), fresh.uniform());
  r.seed_generator(3);
  EXPECT_EQ(r.uniform(), other);
}

TEST(Random, GaussianPairSharesTwoUniforms) {
  TCRandom g(902);
  TCRandom u(902);
  g.seed_generator(9);
  u.seed_generator(9);
  const double u1 = u.uniform();
  const double u2 = u.uniform();
  const double angle = u1 * 6.283185307;
  const double radius = std::sqrt(-2.0 * std::log(u2));
  EXPECT_EQ(g.gaussian(), radius * std::cos(angle));
  EXPECT_EQ(g.get_have_spare(), 1);
  EXPECT_EQ(g.gaussian(), radius * std::sin(angle));
  EXPECT_EQ(g.get_have_spare(), 0);
  // Both streams have used two uniforms.
  EXPECT_EQ(g.uniform(), u.uniform());
}

// Mean and variance of 10^6 draws. For N(0, 1) the standard errors are
// 1 / sqrt(N) = 0.001 for the mean and sqrt(2 / N) = 0.00141 for the
// variance; for U[0, 1), sqrt(1 / (12 N)) = 0.000289 and
// sqrt(1 / (180 N)) = 0.0000745. The bounds are five standard errors.
TEST(Random, GaussianMeanAndVarianceAreWithinSamplingError) {
  const int n = 1000000;
  TCRandom r(902);
  r.seed_generator(31415);
  double sum = 0.0;
  double sum2 = 0.0;
  for (int k = 0; k < n; k++) {
    const double g = r.gaussian();
    sum += g;
    sum2 += g * g;
  }
  const double mean = sum / n;
  const double variance = sum2 / n - mean * mean;
  EXPECT_NEAR(mean, 0.0, 5 * 0.001);
  EXPECT_NEAR(variance, 1.0, 5 * 0.00141);
}

TEST(Random, UniformMeanAndVarianceAreWithinSamplingError) {
  const int n = 1000000;
  TCRandom r(902);
  r.seed_generator(-271828);
  double sum = 0.0;
  double sum2 = 0.0;
  for (int k = 0; k < n; k++) {
    const double u = r.uniform();
    sum += u;
    sum2 += u * u;
  }
  const double mean = sum / n;
  const double variance = sum2 / n - mean * mean;
  EXPECT_NEAR(mean, 0.5, 5 * 0.000289);
  EXPECT_NEAR(variance, 1.0 / 12.0, 5 * 0.0000745);
}

TEST(Random, LibraryFamilyDividesFifteenBitsOfRandBy32767) {
  TCRandom r(901);
  r.seed_generator(12345);
  std::srand(12345u);
  std::vector<int> drawn;
  for (int k = 0; k < 50; k++) drawn.push_back(std::rand());
  r.seed_generator(12345);
  for (int k = 0; k < 50; k++) EXPECT_EQ(r.uniform(), (drawn[k] & 0x7fff) / 32767.0) << k;
}

TEST(Random, LibraryFamilyRandomGaussianSumsTwelveUniformsLessSix) {
  TCRandom r(901);
  std::srand(404u);
  double expected[3];
  for (int g = 0; g < 3; g++) {
    double sum = 0.0;
    for (int k = 0; k < 12; k++) sum += (std::rand() & 0x7fff) / 32767.0;
    expected[g] = sum - 6.0;
  }
  r.seed_generator(404);
  for (int g = 0; g < 3; g++) EXPECT_EQ(r.random_gaussian(), expected[g]) << g;
  EXPECT_EQ(r.get_have_spare(), 0);
}

TEST(Random, LibraryFamilyGaussianUsesBoxMullerPairs) {
  TCRandom r(901);
  std::srand(8u);
  std::rand();
  std::rand();
  const double third = (std::rand() & 0x7fff) / 32767.0;
  r.seed_generator(8);
  r.gaussian();
  EXPECT_EQ(r.get_have_spare(), 1);
  r.gaussian();
  EXPECT_EQ(r.get_have_spare(), 0);
  // The pair took exactly two library draws.
  EXPECT_EQ(r.uniform(), third);
}

TEST(Random, OurFamilyRandomGaussianIsTheBoxMullerDeviate) {
  TCRandom a(902);
  TCRandom b(902);
  a.seed_generator(6);
  b.seed_generator(6);
  for (int k = 0; k < 11; k++) ASSERT_EQ(a.random_gaussian(), b.gaussian()) << k;
  EXPECT_EQ(a.get_have_spare(), 1);
}

TEST(Random, AnyTypeButTheLibrarysIsOurs) {
  TCRandom odd(7);
  TCRandom ours(902);
  odd.seed_generator(1);
  ours.seed_generator(1);
  for (int k = 0; k < 10; k++) ASSERT_EQ(odd.uniform(), ours.uniform()) << k;
}

}  // namespace

TEST(Random, LibraryFamilyStaysWithinZeroAndOne) {
  TCRandom r(901);
  r.seed_generator(2024);
  for (int k = 0; k < 10000; k++) {
    const double u = r.uniform();
    ASSERT_GE(u, 0.0) << k;
    ASSERT_LE(u, 1.0) << k;
  }
}

namespace {

// Puts a 0 in every slot of the shuffle table, a value no seed of family 902
// reaches but which the generator must survive all the same.
class Zero_table : public TCRandom {
 public:
  Zero_table() : TCRandom(random_own_generator) {}
  void zero_table() {
    for (int j = 0; j < table_size; j++) table[j] = 0.0;
  }
};

// The first seed from 1 whose library sequence has a draw with low 15 bits 0
// in a radius place (the second of a Box-Muller pair) within draws draws;
// 0 if none does up to last_seed.
int seed_with_zero_radius_draw(int draws, int last_seed, int& place) {
  for (int seed = 1; seed <= last_seed; seed++) {
    std::srand(static_cast<unsigned int>(seed));
    for (int k = 0; k < draws; k++) {
      if ((std::rand() & 0x7fff) == 0 && k % 2 == 1) {
        place = k;
        return seed;
      }
    }
  }
  return 0;
}

}  // namespace

TEST(Random, LibraryFamilyGaussianIsFiniteWhenARadiusDrawIsZero) {
  int place = 0;
  const int seed = seed_with_zero_radius_draw(2000, 3000, place);
  ASSERT_NE(seed, 0) << "no zero draw found to reproduce";

  // Every deviate by hand from the library's own draws: the usual pair where
  // the radius draw is above 0, and the radius sqrt(-2 ln(0.5 / 32767)) where
  // it is 0.
  std::srand(static_cast<unsigned int>(seed));
  std::vector<double> expected;
  for (int k = 0; k <= place + 4; k += 2) {
    const double angle = (std::rand() & 0x7fff) / 32767.0 * 6.283185307;
    const int r = std::rand() & 0x7fff;
    const double radius = r == 0 ? std::sqrt(-2.0 * std::log(0.5 / 32767.0))
                                 : std::sqrt(-2.0 * std::log(r / 32767.0));
    expected.push_back(radius * std::cos(angle));
    expected.push_back(radius * std::sin(angle));
  }
  TCRandom g(random_library_generator);
  g.seed_generator(seed);
  for (size_t k = 0; k < expected.size(); k++) {
    const double value = g.gaussian();
    ASSERT_TRUE(std::isfinite(value)) << "seed " << seed << " deviate " << k;
    EXPECT_EQ(value, expected[k]) << "seed " << seed << " deviate " << k;
  }
  // The zero draw's pair has the largest radius the family can give.
  const double pair = std::hypot(expected[place - 1], expected[place]);
  EXPECT_NEAR(pair, 4.70963, 0.00001);
}

TEST(Random, OwnFamilyGaussianIsFiniteWhenATableEntryIsZero) {
  Zero_table g;
  g.seed_generator(17);
  g.zero_table();
  // Angle draw 0 and radius draw 0: cos 0 = 1, so the deviate is the radius
  // of half the smallest step, sqrt(2 ln(2 m1 m2)) = 7.06647..., and the spare
  // sin 0 = 0.
  const double first = g.gaussian();
  ASSERT_TRUE(std::isfinite(first));
  EXPECT_NEAR(first, std::sqrt(2.0 * std::log(2.0 * 259200.0 * 134456.0)), 1e-12);
  EXPECT_NEAR(first, 7.06647, 0.00001);
  EXPECT_EQ(g.gaussian(), 0.0);
}

TEST(Random, GaussiansOfBothFamiliesAreFiniteOverManySeeds) {
  for (int family = random_library_generator; family <= random_own_generator; family++) {
    TCRandom g(family);
    for (int seed = 1; seed <= 300; seed++) {
      g.seed_generator(seed);
      for (int k = 0; k < 2000; k++) {
        const double value = g.gaussian();
        ASSERT_TRUE(std::isfinite(value)) << family << " seed " << seed << " deviate " << k;
      }
    }
  }
}
