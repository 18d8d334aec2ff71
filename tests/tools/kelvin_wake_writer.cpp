// Generates a Kelvin wake for the given parameters, for scripts that check
// the pattern on their own.
//   kelvin_wake_writer N_X N_Y DX DY SHAPE LENGTH WIDTH DEPTH VELOCITY EPS US
//                      WAKE_FILE [FIELD_FILE [ACCELERATION_FILE]]
// SHAPE is rectangle, ellipse or file. WAKE_FILE is written by the wake
// itself: the pattern per metre of depth (undivided at depth 0 or below).
// FIELD_FILE receives the pattern as the sea carries it (times the depth),
// ACCELERATION_FILE the vertical acceleration the whitecaps would see. All
// are one float plane of N_Y rows by N_X columns. The lines the wake prints,
// then "center_x: ", "center_y: " and "damping: " go to standard output.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <vector>

#include "TCHdf_image.h"
#include "TCKelvin_wake.h"
#include "Wake_details_input.h"

namespace {

int write_plane_file(const char* name, const float* data, int n_x, int n_y) {
  const int dims[2] = {n_y, n_x};
  int first_flag = 1;
  return hdf_write_plane(name, data, dims, first_flag);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 13 || argc > 15) {
    std::fprintf(stderr,
                 "usage: %s N_X N_Y DX DY SHAPE LENGTH WIDTH DEPTH VELOCITY EPS US WAKE_FILE "
                 "[FIELD_FILE [ACCELERATION_FILE]]\n",
                 argv[0]);
    return 2;
  }
  Wake_details_input input;
  input.n_x = std::atoi(argv[1]);
  input.n_y = std::atoi(argv[2]);
  input.dx = std::atof(argv[3]);
  input.dy = std::atof(argv[4]);
  if (std::strcmp(argv[5], "rectangle") == 0) {
    input.boat_shape = 1;
  } else if (std::strcmp(argv[5], "ellipse") == 0) {
    input.boat_shape = 2;
  } else {
    input.boat_shape = 0;
  }
  input.boat_length = std::atof(argv[6]);
  input.boat_width = std::atof(argv[7]);
  input.boat_depth = std::atof(argv[8]);
  input.velocity = std::atof(argv[9]);
  input.damping_eps = std::atof(argv[10]);
  input.damping_us = std::atof(argv[11]);
  input.generate_wake = 1;
  std::snprintf(input.wake_file, sizeof(input.wake_file), "%s", argv[12]);
  if (input.n_x < 2 || input.n_y < 1 || input.n_x % 2 != 0) {
    std::fprintf(stderr, "N_X must be even and at least 2, N_Y at least 1\n");
    return 2;
  }

  // Files of an earlier run must not pass for this one's.
  for (int a = 12; a < argc; a++) std::remove(argv[a]);

  const int n_x = input.n_x;
  const int n_y = input.n_y;
  std::vector<float> field(static_cast<size_t>(n_x + 2) * n_y, 0.0f);
  TCKelvin_wake wake(input, field.data());
  std::cout.precision(17);
  std::cout << "center_x: " << wake.center_x << "\n";
  std::cout << "center_y: " << wake.center_y << "\n";
  std::cout << "damping: " << wake.damping << "\n";
  if (argc > 13 && !write_plane_file(argv[13], field.data(), n_x, n_y)) return 1;
  if (argc > 14) {
    std::vector<float> acceleration(field.size(), 0.0f);
    wake.evolve_acceleration_into(acceleration.data(), 0.0, 0.0, 0.0, 0.0);
    if (!write_plane_file(argv[14], acceleration.data(), n_x, n_y)) return 1;
  }
  return 0;
}
