#include <gtest/gtest.h>

#include <string>

#include "ocean_input.h"
#include "ocean_test_records.h"

// Lattices that a real inverse transform fills must have even point counts:
// the ocean file is refused where such a lattice is read, naming the lattice
// and the count.

namespace {

std::string with_disturbance(const std::string& kind, const std::string& block) {
  return replaced(plain_ocean(5), "number_disturbances  0\n",
                  "number_disturbances  1\nrender_disturbances_interior:  black\n"
                  "disturbance_type:  " +
                      kind + "\n" + block);
}

}  // namespace

TEST(OddLatticeRefusal, PrimaryLatticeWithAnOddRowCountIsRefused) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "n_points_y 16 1\n", "n_points_y 33 1\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "primary lattice has an odd n_points_y of 33: wave lattices need even numbers of "
            "points\n");
}

TEST(OddLatticeRefusal, PrimaryLatticeWithAnOddColumnCountIsRefused) {
  ocean_input ocean;
  std::string printed;
  const std::string text = replaced(plain_ocean(5), "n_points_x 32 1\n", "n_points_x 31 1\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "primary lattice has an odd n_points_x of 31: wave lattices need even numbers of "
            "points\n");
}

TEST(OddLatticeRefusal, SecondaryLatticeWithAnOddCountIsRefused) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      replaced(plain_ocean(5), "number_aux_oceans  0\n",
               "number_aux_oceans  1\nn_points_x 8\nn_points_y 5\ndx 10\n"
               "dy 10\nspectrum_file: far.spectrum\ngenerate_file:  no\nend\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "secondary lattice has an odd n_points_y of 5: wave lattices need even numbers of "
            "points\n");
}

TEST(OddLatticeRefusal, SwellLatticeWithAnOddCountIsRefusedBeforeItsDetailFile) {
  ocean_input ocean;
  std::string printed;
  const std::string text =
      with_disturbance("swell",
                       "n_points_x 63\nn_points_y 64\ndx 2\ndy 2\nspectrum_file: s.spectrum\n"
                       "generate_file:  yes\nswell_file: no_such_swell_file.dat\nend\n");
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "disturbance 1 (swell) lattice has an odd n_points_x of 63: wave lattices need even "
            "numbers of points\n");
}

TEST(OddLatticeRefusal, AdditionalWaveLatticeWithAnOddCountIsRefused) {
  ocean_input ocean;
  std::string printed;
  const std::string text = with_disturbance("yes", grid_block(8, 7, "near.spectrum"));
  EXPECT_EQ(read_ocean_text(ocean, text, printed), 0);
  EXPECT_EQ(printed,
            "disturbance 1 (yes) lattice has an odd n_points_y of 7: wave lattices need even "
            "numbers of points\n");
}

TEST(OddLatticeRefusal, EvenLatticesAndOddNonSpectralOnesAreAccepted) {
  {
    ocean_input ocean;
    std::string printed;
    ASSERT_EQ(
        read_ocean_text(ocean, with_disturbance("yes", grid_block(8, 6, "n.spectrum")), printed), 1)
        << printed;
    EXPECT_EQ(printed, "");
  }
  {
    // A base record of an unknown kind is no wave lattice.
    ocean_input ocean;
    std::string printed;
    ASSERT_EQ(read_ocean_text(ocean, with_disturbance("tsunami", grid_block(3, 1, "t.spectrum")),
                              printed),
              1)
        << printed;
    EXPECT_EQ(printed, "illegal ocean type tsunami\n");
  }
}
