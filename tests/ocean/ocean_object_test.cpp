// The runtime sea built from records made in code: what construction
// takes, refuses and places, and how a frame brings the surface up to time.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Ripple_details_input.h"
#include "TCDisturbed_grid.h"
#include "TCOcean.h"
#include "TCSurface_field.h"
#include "TCVector.h"
#include "TCWave_spectrum.h"
#include "Wall_details_input.h"
#include "ocean_input.h"
#include "ocean_object_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// ---- Edge cases of construction ----

TEST(OceanObject, OneReflectingObjectPutsTheLatticeOriginAtItsCornerAndStopsWithoutAFieldClass) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  add_kind(input, -1, 8, 8, 1.0, 1.0);
  TCOcean ocean(input);
  std::string printed;
  EXPECT_EQ(construct_quietly(ocean, input, printed), 0);
  EXPECT_EQ(printed,
            "the reflect_object disturbance has no field class in this build\n"
            "unable to initialize disturbance data structure \n");
  ASSERT_NE(ocean.holder, nullptr);
  EXPECT_EQ(ocean.holder->offset_x, 0.0);
  EXPECT_EQ(ocean.holder->offset_y, 0.0);
}

TEST(OceanObject, WithoutAReflectingObjectTheLatticeIsCentred) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  add_swell(input, folder, "swell.spectrum", 8, 2.0);
  TCOcean ocean(input);
  std::string printed;
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  // Half of 16 by 2 m and of 8 by 2 m.
  EXPECT_EQ(ocean.holder->offset_x, 16.0);
  EXPECT_EQ(ocean.holder->offset_y, 8.0);
}

TEST(OceanObject, SpacingsOneAndOnePointZeroZeroTwoAreNotSquare) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.primary_grid.dx = 1.0;
  input.primary_grid.dy = 1.002;
  TCOcean ocean(input);
  std::string printed;
  EXPECT_EQ(construct_quietly(ocean, input, printed), 0);
  EXPECT_EQ(printed, "Error: TCGrid spacing on the ocean surface not square\n");
}

TEST(OceanObject, SpacingsOneAndOnePointZeroZeroZeroFivePassWithDyMadeDx) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.primary_grid.dx = 1.0;
  input.primary_grid.dy = 1.0005;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.primary.dy, 1.0);
  ASSERT_NE(ocean.ocean_grid, nullptr);
  EXPECT_EQ(ocean.ocean_grid->dy, 1.0);
  // The lattice is centred with the spacing it was given: 8 by 1 m.
  EXPECT_EQ(ocean.ocean_grid->offset_y, 4.0);
}

TEST(OceanObject, AFurtherOceanGridMustBeSquareToo) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.number_aux_oceans = 1;
  input.secondary_grid.dy = 8.1;
  TCOcean ocean(input);
  std::string printed;
  EXPECT_EQ(construct_quietly(ocean, input, printed), 0);
  EXPECT_EQ(printed, "Error: TCGrid spacing on the ocean surface not square\n");
}

TEST(OceanObject, ATopOfZeroGivesABoxFromMinusTheDepthToZero) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ocean.set_box_top(3.0);
  ocean.set_box_top(0.0);
  EXPECT_EQ(ocean.length.z, 20.0);
  EXPECT_EQ(ocean.box_centre.z, -10.0);
  EXPECT_EQ(ocean.box_centre.z - 0.5 * ocean.length.z, -20.0);
  EXPECT_EQ(ocean.box_centre.z + 0.5 * ocean.length.z, 0.0);
  EXPECT_EQ(ocean.ocean_grid->z_offset, 10.0);
}

TEST(OceanObject, ABoxTopKeepsTheSurfaceWhereItIs) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ocean.set_box_top(3.0);
  // From -20 to 3: 23 m long, centred at -8.5; the lattice moves up by 8.5.
  EXPECT_EQ(ocean.length.z, 23.0);
  EXPECT_EQ(ocean.box_centre.z, -8.5);
  EXPECT_EQ(ocean.ocean_grid->z_offset, 8.5);
}

TEST(OceanObject, ExternalExactThreeCouplesWithoutTheAirAndPrintsAsExact) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.external_exact = 3;
  input.include = 3;
  input.max_exact_distance = 500.0;
  input.exact_sharpening_factor = 2.0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.external_exact, 1);
  EXPECT_EQ(ocean.air_coupling, 0);
  const std::string text = printed_parameters(ocean);
  EXPECT_NE(text.find("external coupling:     EXACT\nexternal_sharpening:  2\n"), std::string::npos)
      << text;
  EXPECT_EQ(text.find("EXACT_NO_AIR"), std::string::npos) << text;
}

// ---- Failures ----

TEST(OceanObject, TwoFurtherOceanGridsAreRefused) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.number_aux_oceans = 2;
  TCOcean ocean(input);
  std::string printed;
  EXPECT_EQ(construct_quietly(ocean, input, printed), 0);
  EXPECT_EQ(printed, "Not allowed more than 1 additional ocean grid\n");
}

TEST(OceanObject, WaterTypeSevenIsRefused) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.jerlov_water_type = 7;
  TCOcean ocean(input);
  std::string printed;
  EXPECT_EQ(construct_quietly(ocean, input, printed), 0);
  EXPECT_EQ(printed,
            "water type 7 is not valid\n"
            "must be 1,2,3,4,5,( or 0 for custom parameters)\n");
}

TEST(OceanObject, MoreThanAHundredFieldsAreRefused) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  // The further ocean grid is a field too: with it, 100 swells make 101.
  input.number_aux_oceans = 1;
  for (int i = 0; i < 100; i++) add_kind(input, -5, 4, 4, 1.0, 1.0);
  TCOcean ocean(input);
  std::string printed;
  EXPECT_EQ(construct_quietly(ocean, input, printed), 0);
  EXPECT_EQ(printed, "too many disturbances on surface: 101, at most 100 fit\n");
}

TEST(OceanObject, AWallBeyondTheHundredthEndsTheProgram) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  for (int i = 0; i < 101; i++) input.add_disturbance(-3);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCOcean ocean(input);
        ocean.construct(input);
      },
      ::testing::ExitedWithCode(1),
      "unable to allocate reflecting line \ntoo many disturbances on surface \n");
}

TEST(OceanObject, AHundredWallsAreTaken) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  for (int i = 0; i < 100; i++) input.add_disturbance(-3);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.n_walls, 100);
  EXPECT_EQ(ocean.n_fields, 0);
  EXPECT_EQ(ocean.holder->n_lines, 100);
}

// ---- What construction takes ----

TEST(OceanObject, WallsGoToTheirOwnListAndAreNotCountedAsFields) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  write_small_grid(folder.file("h.hdf"), 0.0f, 0.1f);
  const double t[1] = {0.0}, s[1] = {1.0};
  add_swell(input, folder, "swell.spectrum", 8, 2.0);
  Wall_details_input* first = static_cast<Wall_details_input*>(input.add_disturbance(-3));
  first->position_x = 3.0;
  first->position_y = 4.0;
  first->angle = 0.5;
  add_map(input, -7, folder.file("h.hdf"), 1.0, 2.0, 0.0, 0.0, 0.0, 1, t, s);
  Wall_details_input* second = static_cast<Wall_details_input*>(input.add_disturbance(-3));
  second->position_x = -1.5;
  second->position_y = 2.0;
  second->angle = 1.25;
  add_map(input, -8, folder.file("h.hdf"), 1.0, 2.0, 0.0, 0.0, 0.0, 1, t, s);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.has_disturbances, 1);
  ASSERT_EQ(ocean.n_fields, 3);
  EXPECT_EQ(ocean.field_info[0].field_code, -5);
  EXPECT_EQ(ocean.field_info[1].field_code, -7);
  EXPECT_EQ(ocean.field_info[2].field_code, -8);
  ASSERT_EQ(ocean.n_walls, 2);
  EXPECT_EQ(ocean.wall_origin[0][0], 3.0);
  EXPECT_EQ(ocean.wall_origin[0][1], 4.0);
  EXPECT_EQ(ocean.wall_orientation[0], 0.5);
  EXPECT_EQ(ocean.wall_origin[1][0], -1.5);
  EXPECT_EQ(ocean.wall_origin[1][1], 2.0);
  EXPECT_EQ(ocean.wall_orientation[1], 1.25);
  // The holder has a detail per field and a mirror line per wall, in order.
  EXPECT_EQ(ocean.holder->n_details, 3);
  ASSERT_EQ(ocean.holder->n_lines, 2);
  EXPECT_EQ(ocean.holder->line_x[1], -1.5);
  EXPECT_EQ(ocean.holder->line_y[1], 2.0);
  EXPECT_DOUBLE_EQ(ocean.holder->line_cos[0], std::cos(0.5));
  for (int i = 0; i < 3; i++) EXPECT_NE(ocean.fields[i], nullptr) << i;
}

TEST(OceanObject, AFurtherOceanGridIsFieldOneWithItsOwnSpectrum) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.number_aux_oceans = 1;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.has_disturbances, 1);
  ASSERT_EQ(ocean.n_fields, 1);
  EXPECT_EQ(ocean.field_info[0].field_code, 1);
  ASSERT_NE(ocean.fields[0], nullptr);
  EXPECT_EQ(ocean.fields[0]->field, ocean.holder->detail_field[0]);
  EXPECT_STREQ(ocean.fields[0]->spectrum_file, folder.file("secondary.spectrum").c_str());
  EXPECT_STREQ(ocean.ocean_field->spectrum_file, folder.file("primary.spectrum").c_str());
  // Centred on the primary's origin: half of 8 cells of 8 m; wrapping, not turned.
  EXPECT_EQ(ocean.holder->detail_offset[0][0], 32.0);
  EXPECT_EQ(ocean.holder->detail_offset[0][1], 32.0);
  EXPECT_EQ(ocean.holder->detail_periodic[0], 1);
  EXPECT_EQ(ocean.holder->detail_rotated[0], 0);
}

TEST(OceanObject, ARippleIsOneRowCentredOnItsPosition) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  Ripple_details_input* ripple =
      static_cast<Ripple_details_input*>(add_kind(input, -4, 64, 64, 0.5, 0.5));
  ripple->position_x = 7.0;
  ripple->position_y = -2.0;
  TCOcean ocean(input);
  std::string printed;
  // Ripples have no field class yet: construction stops after placing it.
  EXPECT_EQ(construct_quietly(ocean, input, printed), 0);
  EXPECT_EQ(printed,
            "the ripple disturbance has no field class in this build\n"
            "unable to initialize disturbance data structure \n");
  ASSERT_EQ(ocean.n_fields, 1);
  EXPECT_EQ(ocean.field_info[0].n_x, 64);
  EXPECT_EQ(ocean.field_info[0].n_y, 1);
  EXPECT_EQ(ocean.field_info[0].centre_x, 7.0);
  EXPECT_EQ(ocean.field_info[0].centre_y, -2.0);
  ASSERT_NE(ocean.holder, nullptr);
  EXPECT_EQ(ocean.holder->detail_n_y[0], 1);
  EXPECT_EQ(ocean.holder->detail_mode[0], +TCDisturbed_grid::additive_radial);
  EXPECT_EQ(ocean.holder->detail_offset[0][0], -7.0);
  EXPECT_EQ(ocean.holder->detail_offset[0][1], 2.0);
}

TEST(OceanObject, MapsArePlacedAtMinusTheirPositionAndSwellAtHalfItsExtent) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  write_small_grid(folder.file("h.hdf"), 0.0f, 0.1f);
  const double t[1] = {0.0}, s[1] = {1.0};
  add_map(input, -7, folder.file("h.hdf"), 10.0, -4.0, 0.3, 2.0, 0.5, 1, t, s);
  add_swell(input, folder, "swell.spectrum", 8, 3.0);
  add_map(input, -8, folder.file("h.hdf"), 5.0, 6.0, 0.7, 1.5, 2.0, 1, t, s);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  const TCDisturbed_grid& holder = *ocean.holder;
  EXPECT_EQ(holder.detail_offset[0][0], -10.0);
  EXPECT_EQ(holder.detail_offset[0][1], 4.0);
  // 8 cells of 3 m: the swell's middle on the lattice origin.
  EXPECT_EQ(holder.detail_offset[1][0], 12.0);
  EXPECT_EQ(holder.detail_offset[1][1], 12.0);
  EXPECT_EQ(holder.detail_offset[2][0], -5.0);
  EXPECT_EQ(holder.detail_offset[2][1], -6.0);
  EXPECT_EQ(holder.detail_mode[0], +TCDisturbed_grid::additive_cartesian);
  EXPECT_EQ(holder.detail_mode[1], +TCDisturbed_grid::additive_cartesian);
  EXPECT_EQ(holder.detail_mode[2], +TCDisturbed_grid::multiplying_cartesian);
}

TEST(OceanObject, MapsAreTurnedByTheirOrientationAndSwellIsNot) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  write_small_grid(folder.file("h.hdf"), 0.0f, 0.1f);
  const double t[1] = {0.0}, s[1] = {1.0};
  add_map(input, -7, folder.file("h.hdf"), 10.0, -4.0, 0.3, 2.0, 0.5, 1, t, s);
  add_swell(input, folder, "swell.spectrum", 8, 3.0);
  add_map(input, -8, folder.file("h.hdf"), 5.0, 6.0, 0.7, 1.5, 2.0, 1, t, s);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  const TCDisturbed_grid& holder = *ocean.holder;
  // cos(0.3), sin(-0.3); cos(0.7), sin(-0.7): by the orientation, not by
  // the direction of travel.
  EXPECT_EQ(holder.detail_rotated[0], 1);
  EXPECT_NEAR(holder.detail_cos[0], 0.955336489125606, 1e-15);
  EXPECT_NEAR(holder.detail_sin[0], -0.29552020666133955, 1e-15);
  EXPECT_EQ(holder.detail_rotated[1], 0);
  EXPECT_EQ(holder.detail_rotated[2], 1);
  EXPECT_NEAR(holder.detail_cos[2], 0.7648421872844885, 1e-15);
  EXPECT_NEAR(holder.detail_sin[2], -0.644217687237691, 1e-15);
}

TEST(OceanObject, FirstBoxIsUnboundedAlongPeriodicAxes) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.length.x, 99999999.0);
  EXPECT_EQ(ocean.length.y, 99999999.0);
  EXPECT_EQ(ocean.length.z, 20.0);
}

TEST(OceanObject, FirstBoxEndsWithTheLatticeAlongAnAxisThatDoesNotRepeat) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.primary_grid.periodic_y = 0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.length.x, 99999999.0);
  EXPECT_EQ(ocean.length.y, 16.0);
}

TEST(OceanObject, FirstBoxTakesTheFirstFieldsExtentWhenThereIsOne) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.primary_grid.periodic_x = 0;
  input.primary_grid.periodic_y = 0;
  add_swell(input, folder, "swell.spectrum", 8, 3.0);
  add_swell(input, folder, "other.spectrum", 4, 1.0);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.length.x, 24.0);
  EXPECT_EQ(ocean.length.y, 24.0);
}

TEST(OceanObject, FirstBoxOfANonRepeatingLatticeAlone) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.primary_grid.periodic_x = 0;
  input.primary_grid.periodic_y = 0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.length.x, 32.0);
  EXPECT_EQ(ocean.length.y, 16.0);
}

TEST(OceanObject, RayStepIsNineTenthsOfTheSpacing) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.primary_grid.dx = 0.5;
  input.primary_grid.dy = 0.5;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_DOUBLE_EQ(ocean.ray_step, 0.45);
  // 1000 m and 100 m in steps of 0.5 m.
  EXPECT_EQ(ocean.last_index, 2000);
  EXPECT_EQ(ocean.doubling_size, 200);
}

TEST(OceanObject, WithoutCouplingTheExactDistanceIsTheNothingConstant) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.max_exact_distance = 500.0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.external_exact, 0);
  // As written, not the square of 99999999 (which rounds to ...002).
  EXPECT_EQ(ocean.max_exact_distance_sq, 9999999800000000.0);
  EXPECT_EQ(ocean.air_coupling, 1);
}

TEST(OceanObject, WithCouplingTheDistancesAreSquared) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.external_exact = 1;
  input.include = 1;
  input.max_exact_distance = 500.0;
  input.shadow_distance = 30.0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.external_exact, 1);
  EXPECT_EQ(ocean.air_coupling, 1);
  EXPECT_EQ(ocean.max_exact_distance_sq, 250000.0);
  EXPECT_EQ(ocean.shadow_distance_sq, 900.0);
}

// external_exact, texture_maps, reflection_method -> keep_reflection_table.
int kept_table(int exact, int textures, int method) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.external_exact = exact;
  input.include = 3;
  input.texture_maps = textures;
  input.reflection_method = method;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  EXPECT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  return ocean.keep_reflection_table;
}

TEST(OceanObject, ReflectionTablesAreKeptForCouplingOrTexturesWithTheAveragedMethod) {
  EXPECT_EQ(kept_table(1, 0, 1), 1);
  EXPECT_EQ(kept_table(0, 1, 1), 1);
  EXPECT_EQ(kept_table(1, 1, 1), 1);
  EXPECT_EQ(kept_table(0, 0, 1), 0);
  EXPECT_EQ(kept_table(1, 1, 0), 0);
  EXPECT_EQ(kept_table(1, 1, 2), 0);
}

TEST(OceanObject, IncludingNothingTurnsCouplingOff) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.external_exact = 1;
  input.include = 0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.external_exact, 0);
  EXPECT_NE(printed_parameters(ocean).find("external coupling:     AIR_ONLY\n"), std::string::npos);
}

TEST(OceanObject, ConstructionStartsTheClockAtTheReferenceTime) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.current_time, 1.5);
  EXPECT_EQ(ocean.stored_sun[0], 99999999.0);
  EXPECT_EQ(ocean.stored_sun[1], 99999999.0);
  EXPECT_EQ(ocean.stored_sun[2], 99999999.0);
  EXPECT_EQ(printed, "");
}

TEST(OceanObject, VerboseConstructionPrintsTheParameters) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as loud(1);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(printed, printed_parameters(ocean));
}

TEST(OceanObject, TwoOceanGridsShareTheBandTheOtherCanCarry) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.number_aux_oceans = 1;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  // Primary 16 x 8 cells of 2 m: 1/32 to 1/4 cycles per metre; secondary
  // 8 x 8 cells of 8 m: 1/64 to 1/16. Each field's band is the other's.
  const TCWave_spectrum* secondary = static_cast<const TCWave_spectrum*>(ocean.fields[0]);
  EXPECT_DOUBLE_EQ(secondary->band_low, 0.03125);
  EXPECT_DOUBLE_EQ(secondary->band_high, 0.25);
  EXPECT_DOUBLE_EQ(ocean.ocean_field->band_low, 0.015625);
  EXPECT_DOUBLE_EQ(ocean.ocean_field->band_high, 0.0625);
}

TEST(OceanObject, ASingleOceanGridSharesNoBand) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  EXPECT_EQ(ocean.ocean_field->band_low, 99999999.0);
  EXPECT_EQ(ocean.ocean_field->band_high, 99999999.0);
}

TEST(OceanObject, EachBandKeepsItsIndexAndSnellCosine) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  two_bands(input);
  input.index_of_refraction[1] = 1.0;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ASSERT_EQ(ocean.n_bands, 2);
  EXPECT_EQ(ocean.object_spectrum->band_id[0], 7);
  EXPECT_EQ(ocean.object_spectrum->band_id[1], 8);
  EXPECT_EQ(ocean.index_of_refraction[0], 1.34f);
  // -sqrt(1 - 1 / 1.34^2) in single precision; an index of 1 gives 0.
  EXPECT_EQ(ocean.snell_cosine[0], -0.6656448841094971f);
  EXPECT_EQ(ocean.snell_cosine[1], 0.0f);
  EXPECT_EQ(ocean.a[1], 0.2);
  EXPECT_EQ(ocean.refl[1], 0.025);
}

TEST(OceanObject, DoublingOnlyForALatticePeriodicBothWays) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean periodic(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(periodic, input, printed), 1) << printed;
  EXPECT_EQ(periodic.ocean_grid->doubling_on, 1);
  // 1000 m in 2 m steps; 100 m is 50 steps, down to a multiple of 4.
  EXPECT_EQ(periodic.ocean_grid->last_index, 500);
  EXPECT_EQ(periodic.ocean_grid->doubling_size, 48);
  ocean_input open_sea;
  small_sea(open_sea, folder);
  open_sea.primary_grid.periodic_x = 0;
  TCOcean edged(open_sea);
  ASSERT_EQ(construct_quietly(edged, open_sea, printed), 1) << printed;
  EXPECT_EQ(edged.ocean_grid->doubling_on, 0);
  EXPECT_EQ(edged.ocean_grid->periodic_x, 0);
  EXPECT_EQ(edged.ocean_grid->periodic_y, 1);
}

TEST(OceanObject, TheSeedIsTakenOnlyWhenTheSpectrumIsGenerated) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean generating(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(generating, input, printed), 1) << printed;
  EXPECT_EQ(generating.primary_seed, 5);
  input.primary_grid.generate_file = 0;
  TCOcean reading(input);
  ASSERT_EQ(construct_quietly(reading, input, printed), 1) << printed;
  EXPECT_EQ(reading.primary_seed, 0);
}

TEST(OceanObject, AnOceanGridInTheDisturbanceListIsTheFurtherGridWhereverItStands) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  add_swell(input, folder, "swell.spectrum", 8, 2.0);
  TCGrid_details_input* grid = add_kind(input, 1, 8, 8, 8.0, 8.0);
  grid->random_seed = 11;
  std::snprintf(grid->spectrum_file, 256, "%s", folder.file("listed.spectrum").c_str());
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ASSERT_EQ(ocean.n_fields, 2);
  EXPECT_EQ(ocean.field_info[1].field_code, 1);
  const TCWave_spectrum* second = dynamic_cast<const TCWave_spectrum*>(ocean.fields[1]);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->field, ocean.holder->detail_field[1]);
  EXPECT_EQ(second->seed, 11);
  EXPECT_STREQ(second->spectrum_file, folder.file("listed.spectrum").c_str());
  // The two share their bands as any two ocean grids do.
  EXPECT_DOUBLE_EQ(second->band_low, 0.03125);
  EXPECT_DOUBLE_EQ(ocean.ocean_field->band_high, 0.0625);
}

TEST(OceanObject, AThirdOceanGridIsRefused) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.number_aux_oceans = 1;
  add_kind(input, 1, 8, 8, 8.0, 8.0);
  TCOcean ocean(input);
  std::string printed;
  EXPECT_EQ(construct_quietly(ocean, input, printed), 0);
  EXPECT_EQ(printed, "more than two ocean grids not yet implemented\n");
}

}  // namespace
