#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "TCDisturbed_grid.h"
#include "TCKelvin_wake.h"
#include "TCOcean.h"
#include "Wake_details_input.h"
#include "ocean_input.h"
#include "ocean_object_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// A flat sea with one ship's wake: a 20 by 4 m rectangle hull 1 m deep on a
// 128 by 64 lattice of 1 m, from (10, -5) at 5 m/s on a course of 0.5 rad.
void ship_at_sea(ocean_input& input, const Scratch_folder& folder) {
  small_sea(input, folder);
  input.ocean_spectrum_type = 0;
  Wake_details_input* wake = static_cast<Wake_details_input*>(input.add_disturbance(-6));
  wake->n_x = 128;
  wake->n_y = 64;
  wake->dx = 1.0;
  wake->dy = 1.0;
  wake->generate_wake = 1;
  std::snprintf(wake->wake_file, 256, "%s", folder.file("w.hdf").c_str());
  wake->boat_shape = 1;
  wake->boat_length = 20;
  wake->boat_width = 4;
  wake->boat_depth = 1;
  wake->damping_eps = 0.02;
  wake->damping_us = 4;
  wake->position_x = 10;
  wake->position_y = -5;
  wake->direction = 0.5;
  wake->velocity = 5;
}

}  // namespace

// The sea carries a ship's Kelvin pattern with the ship: at every frame the
// height at a lattice node's place in the world is that node's value.
TEST(OceanWake, TheWakeLatticeTravelsAcrossTheSeaWithTheShip) {
  Scratch_folder folder;
  ocean_input input;
  ship_at_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  const TCKelvin_wake* field = static_cast<const TCKelvin_wake*>(ocean.fields[0]);
  ASSERT_NE(field, nullptr);
  for (double t : {1.5, 4.0, 9.0}) {
    ocean.update_to_time(t);
    const double dt = t - 1.5;
    double worst = 0, largest = 0;
    for (int j = 5; j < 60; j += 7) {
      for (int i = 5; i < 120; i += 9) {
        double x, y;
        field->lattice_to_world(i * 1.0, j * 1.0, dt, x, y);
        const double h = ocean.ocean_grid->height_at(x, y, 1) - ocean.ocean_grid->z_offset;
        const double node = field->field[i + 128 * j];
        worst = std::fmax(worst, std::fabs(h - node));
        largest = std::fmax(largest, std::fabs(node));
      }
    }
    EXPECT_GT(largest, 1e-3) << t;
    EXPECT_LT(worst, 1e-6 * (1 + largest)) << t;
  }
}

// Where the ship is at the frame's time its hull covers the water: the
// hull's middle is covered, a point a hull's length beside it is not, and
// the covered place moves with the ship.
TEST(OceanWake, TheHullCoversTheWaterWhereTheShipIsAtTheFrame) {
  Scratch_folder folder;
  ocean_input input;
  ship_at_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  const TCKelvin_wake* field = static_cast<const TCKelvin_wake*>(ocean.fields[0]);
  double x0 = 0.0, y0 = 0.0;
  for (double t : {1.5, 4.0}) {
    ocean.update_to_time(t);
    const double dt = t - 1.5;
    double x = 0.0, y = 0.0;
    field->lattice_to_world(field->center_x, field->center_y, dt, x, y);
    EXPECT_EQ(ocean.hull_covers(x, y), 1) << t;
    // Abeam by a hull's length: open water.
    EXPECT_EQ(ocean.hull_covers(x - 20.0 * std::sin(0.5), y + 20.0 * std::cos(0.5)), 0) << t;
    if (t == 1.5) {
      x0 = x;
      y0 = y;
    } else {
      // 2.5 s at 5 m/s later the old place is 12.5 m astern: open water.
      EXPECT_EQ(ocean.hull_covers(x0, y0), 0);
      EXPECT_NEAR(std::hypot(x - x0, y - y0), 12.5, 1e-9);
    }
  }
}
