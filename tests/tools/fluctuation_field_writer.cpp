// Writes fluctuation fields for the spectrum check script: the field made from
// the arguments, then one more file after each evolve step.
//   fluctuation_field_writer N_X N_Y N_Z POWER WIDTH LENGTH SEED A STEPS PREFIX
// writes PREFIX_0.dat .. PREFIX_<STEPS>.dat in the lattice file layout.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "TCCloud_fluctuations.h"

int main(int argc, char** argv) {
  if (argc != 11) {
    std::fprintf(stderr, "usage: %s N_X N_Y N_Z POWER WIDTH LENGTH SEED A STEPS PREFIX\n", argv[0]);
    return 2;
  }
  TCCloud_fluctuations field;
  if (!field.generate(std::atoi(argv[1]), std::atoi(argv[2]), std::atoi(argv[3]),
                      std::atof(argv[4]), std::atof(argv[5]), std::atof(argv[6]),
                      std::atoi(argv[7]))) {
    std::fprintf(stderr, "the field was refused\n");
    return 1;
  }
  const double a = std::atof(argv[8]);
  const int steps = std::atoi(argv[9]);
  for (int step = 0; step <= steps; step++) {
    if (step > 0 && !field.evolve(a)) {
      std::fprintf(stderr, "evolve refused\n");
      return 1;
    }
    const std::string path = std::string(argv[10]) + "_" + std::to_string(step) + ".dat";
    if (!field.write_file(path.c_str())) {
      std::fprintf(stderr, "cannot write %s\n", path.c_str());
      return 1;
    }
  }
  return 0;
}
