#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "TCAir.h"
#include "TCAir_input.h"
#include "TCData_file.h"
#include "TCGaussian_table.h"
#include "TCObject_kinds.h"
#include "TCObject_list.h"
#include "TCObject_list_input.h"
#include "TCStar.h"
#include "air_test_scenes.h"
#include "stream_capture.h"

// Expected values: air_reference.py beside this file (the fixture
// tests/data/atmosphere/air_reference.txt), or worked by hand where shown.

namespace {

using air_scene::fixture_lines;

// The Gaussian table against erf: linear interpolation at step 0.025 is off
// by at most 0.025^2 / 8 * max|G''| = 0.025^2 / 8 * sqrt(2/e) = 6.70e-5, and
// the trapezoid rule over 10 parts of each step by at most
// (0.0025^2 / 12) * sqrt(2/e) = 4.5e-7 in all; beyond 4 the table keeps
// G(4), 1.5e-8 short of sqrt(pi)/2.
const double gaussian_bound = 6.75e-5;

double relative(double a, double b) {
  return std::fabs(a - b) / std::fabs(b);
}

TEST(AirGaussianTable, MatchesErrorFunctionWithinTheTableStepBound) {
  TCGaussian_table table;
  const auto lines = fixture_lines("gaussian");
  ASSERT_EQ(lines.size(), 12u);
  for (const auto& v : lines) EXPECT_NEAR(table.value(v[0]), v[1], gaussian_bound) << "x " << v[0];
}

TEST(AirGaussianTable, HasOneHundredSixtyOneEntriesFromZeroToFour) {
  TCGaussian_table table;
  EXPECT_EQ(TCGaussian_table::count, 161);
  EXPECT_EQ(TCGaussian_table::step, 0.025);
  EXPECT_EQ(table.values[0], 0.0);
  EXPECT_EQ(table.value(4.0), table.values[160]);
  // One step by hand: h = 0.0025, (f(0) + f(0.025)) / 2 + f(0.0025) + ... +
  // f(0.0225), times h, f(t) = exp(-t^2): 0.024994792...
  double sum = 0.5 * (1.0 + std::exp(-0.025 * 0.025));
  for (int j = 1; j < 10; j++) sum += std::exp(-(j * 0.0025) * (j * 0.0025));
  EXPECT_DOUBLE_EQ(table.values[1], sum * 0.0025);
}

TEST(AirGaussianTable, InterpolatesLinearlyAndIsOdd) {
  TCGaussian_table table;
  EXPECT_DOUBLE_EQ(table.value(0.0125), 0.5 * (table.values[0] + table.values[1]));
  EXPECT_DOUBLE_EQ(table.value(1.01),
                   table.values[40] + 0.4 * (table.values[41] - table.values[40]));
  EXPECT_EQ(table.value(-0.7), -table.value(0.7));
}

TEST(AirGaussianTable, KeepsTheLastEntryBeyondFourAndForNotANumber) {
  TCGaussian_table table;
  EXPECT_EQ(table.value(100.0), table.values[160]);
  EXPECT_EQ(table.value(1e300), table.values[160]);
  EXPECT_EQ(table.value(-100.0), -table.values[160]);
  EXPECT_EQ(table.value(std::nan("")), table.values[160]);
}

class AirSetup : public ::testing::Test {
 protected:
  void SetUp() override { air_scene::set_bands(list); }
  TCAir* air_with_exponent(double exponent) {
    TCAir_input input;
    air_scene::fill_input(input, 1, 1);
    input.molecular_wavelength_dependence = exponent;
    TCAir* air = new TCAir(input, &list);
    list.add_runtime_object(air);
    return air;
  }
  TCObject_list list;
};

TEST_F(AirSetup, MolecularDepthIsTheBandMeanForEachExponentBranch) {
  const auto lines = fixture_lines("molecular_tau");
  ASSERT_EQ(lines.size(), 4u);  // 4.1 and 1.0 exactly, then the general form
  for (const auto& v : lines) {
    TCAir* air = air_with_exponent(v[0]);
    EXPECT_EQ(air->molecular_height_m, 8000.0);
    EXPECT_LT(relative(air->tau_molecular[0], v[1]), 1e-10) << "exponent " << v[0];
    EXPECT_LT(relative(air->tau_molecular[1], v[2]), 1e-10) << "exponent " << v[0];
  }
}

TEST_F(AirSetup, MolecularVisibilityIsTheSmallestHeightOverDepth) {
  const auto lines = fixture_lines("molecular_tau");
  TCAir* air = air_with_exponent(4.1);
  // Band 1 is the deeper: 8000 / tau_1.
  EXPECT_LT(relative(air->molecular_visibility, 8000.0 / lines[0][1]), 1e-10);
  EXPECT_EQ(air->aerosol_visibility, 99999999.0);  // clean air
}

TEST_F(AirSetup, BandEdgesAreCentreLessAndPlusHalfTheWidth) {
  TCAir* air = air_with_exponent(4.1);
  EXPECT_DOUBLE_EQ(air->lambda_low[0], 0.4);
  EXPECT_DOUBLE_EQ(air->lambda_high[0], 0.5);
  EXPECT_DOUBLE_EQ(air->lambda_low[1], 0.6);
  EXPECT_DOUBLE_EQ(air->lambda_high[1], 0.7);
}

TEST_F(AirSetup, ZeroWidthBandTakesTheValueAtItsCentre) {
  TCBand bands[2];
  bands[0].band_id = 1;
  bands[0].center_wavelength = 0.5;
  bands[0].width = 0.0;
  bands[1].band_id = 2;
  bands[1].center_wavelength = 0.5;
  bands[1].width = 0.0;
  list.set_bands(2, bands);
  TCAir* air = air_with_exponent(4.1);
  // 1.07e-06 * 8000 * 0.5^-4.1 = 0.00856 * 17.1484...
  EXPECT_LT(relative(air->tau_molecular[0], 1.07e-06 * 8000.0 * std::pow(0.5, -4.1)), 1e-14);
}

TEST_F(AirSetup, DirtyAerosolLobesFollowTheBandCentres) {
  TCAir* air = air_scene::add_air(list, 2, 1);
  const auto lines = fixture_lines("dirty");
  ASSERT_EQ(lines.size(), 2u);
  for (int m = 0; m < 2; m++) {
    const auto& v = lines[m];
    EXPECT_LT(relative(air->aerosol_g1[m], v[1]), 1e-14);
    EXPECT_LT(relative(air->aerosol_g2[m], v[2]), 1e-14);
    EXPECT_LT(relative(air->aerosol_w1[m], v[3]), 1e-14);
    EXPECT_LT(relative(air->aerosol_w2[m], v[4]), 1e-14);
    EXPECT_LT(relative(air->tau_aerosol[m], v[5]), 1e-14);
  }
  EXPECT_EQ(air->aerosol_height_m, 1200.0);
  // 1200 / (0.000106 * 1200) = 9433.96...
  EXPECT_LT(relative(air->aerosol_visibility, 1.0 / 0.000106), 1e-12);
}

TEST_F(AirSetup, HazeTakesWidthAndStrengthPerBandWithStrengthAtLeastATenth) {
  TCAir_input input;
  air_scene::fill_input(input, 3, 0);
  input.aerosol_height = 0.5;
  input.aerosol_density = 2.0;
  input.haze_phase_function[0] = 0.8;
  input.haze_phase_function[1] = 0.6;
  input.radiance_value[0] = 0.05;  // raised to 0.1
  input.radiance_value[1] = 3.0;
  TCAir* air = new TCAir(input, &list);
  list.add_runtime_object(air);
  EXPECT_EQ(air->aerosol_height_m, 600.0);
  EXPECT_EQ(air->aerosol_g1[0], 0.8);
  EXPECT_EQ(air->aerosol_g2[0], 0.0);
  EXPECT_EQ(air->aerosol_w2[1], 0.0);
  // (1 - 0.64) / 12.566371 and (1 - 0.36) / 12.566371.
  EXPECT_DOUBLE_EQ(air->aerosol_w1[0], 0.36 / 12.566371);
  EXPECT_DOUBLE_EQ(air->aerosol_w1[1], 0.64 / 12.566371);
  // 2 * 0.000106 * 600 * 0.1 = 0.01272; * 3.0 = 0.3816.
  EXPECT_DOUBLE_EQ(air->tau_aerosol[0], 0.01272);
  EXPECT_DOUBLE_EQ(air->tau_aerosol[1], 0.3816);
  EXPECT_DOUBLE_EQ(air->aerosol_visibility, 600.0 / 0.3816);
}

TEST_F(AirSetup, UniformAirKeepsOnlyItsRadiance) {
  TCAir_input input;
  air_scene::fill_input(input, 0, 0);
  input.radiance_value[0] = 12.5;
  input.radiance_value[1] = 7.25;
  TCAir* air = new TCAir(input, &list);
  list.add_runtime_object(air);
  EXPECT_EQ(air->uniform_radiance[0], 12.5);
  EXPECT_EQ(air->uniform_radiance[1], 7.25);
  EXPECT_EQ(air->tau_molecular[0], 0.0);
  EXPECT_EQ(air->molecular_visibility, 99999999.0);
}

TEST_F(AirSetup, BandsComeFromTheInputListWithoutARuntimeList) {
  TCObject_list_input input_list;
  input_list.number_of_bands = 2;
  input_list.objects_spectrum = new TCBand[2];
  input_list.objects_spectrum[0] = list.objects_spectrum[0];
  input_list.objects_spectrum[1] = list.objects_spectrum[1];
  TCAir_input input;
  air_scene::fill_input(input, 1, 1);
  input.list = &input_list;
  TCAir air(input);
  EXPECT_DOUBLE_EQ(air.lambda_low[1], 0.6);
  EXPECT_EQ(air.sun_present, 0);
  EXPECT_TRUE(air.list == nullptr);
}

TEST_F(AirSetup, ListBuildsAnAirForKindSeven) {
  TCObject_list_input input_list;
  input_list.number_of_bands = 2;
  input_list.objects_spectrum = new TCBand[2];
  input_list.objects_spectrum[0] = list.objects_spectrum[0];
  input_list.objects_spectrum[1] = list.objects_spectrum[1];
  TCAir_input* record = new TCAir_input;
  air_scene::fill_input(*record, 1, 0);
  record->list = &input_list;
  input_list.objects[input_list.n_objects++] = record;
  TCObject_list built;
  int needs_updates = -1;
  ASSERT_EQ(built.build(input_list, needs_updates), 1);
  ASSERT_EQ(built.n_objects, 1);
  TCAir* air = dynamic_cast<TCAir*>(built.objects[0]);
  ASSERT_TRUE(air != nullptr);
  EXPECT_EQ(air->get_type(), TC_KIND_AIR);
  EXPECT_EQ(built.find_air(), 0);
  EXPECT_EQ(needs_updates, 0);
}

// ---- The sun ----

TEST_F(AirSetup, SunValuesComeFromTheListsSun) {
  air_scene::set_sun(list, 2.0, 0.5);
  list.sun->solid_angle = 1e-4;
  TCAir* air = air_scene::add_air(list, 1, 1);
  EXPECT_EQ(air->sun_present, 1);
  EXPECT_EQ(air->sun_irradiance[0], 1.8);
  EXPECT_EQ(air->sun_irradiance[1], 1.5);
  EXPECT_EQ(air->sun_solid_angle, 1e-4);
  EXPECT_DOUBLE_EQ(air->sun_cos_radius, 1.0 - 1e-4 / 6.283185307);
  EXPECT_NEAR(air->sun_zenith, 2.0, 1e-14);
  EXPECT_NEAR(air->sun_azimuth, 0.5, 1e-14);
  EXPECT_NEAR(air->sun_direction.x, -std::sin(2.0) * std::cos(0.5), 1e-15);
  EXPECT_NEAR(air->sun_direction.y, -std::sin(2.0) * std::sin(0.5), 1e-15);
  EXPECT_NEAR(air->sun_direction.z, -std::cos(2.0), 1e-15);
}

TEST_F(AirSetup, SunBandTheAirHasButTheSunLacksGetsNoIrradiance) {
  TCStar_input input;
  TCSpectrum irradiance(1);
  irradiance.band_id[0] = 2;
  irradiance.radiance_in_band[0] = 3.0;
  input.irradiance = irradiance;
  input.number_of_bands = 1;
  list.sun = new TCStar(input);
  list.sun->set_angles(2.5, 0.0);
  TCAir* air = air_scene::add_air(list, 1, 0);
  EXPECT_EQ(air->sun_irradiance[0], 0.0);
  EXPECT_EQ(air->sun_irradiance[1], 3.0);
}

TEST_F(AirSetup, SunAnglesAreTakenInTheAirsFrame) {
  // Sun in the world's +x, 30 degrees up; the air turned by phi = 90
  // degrees, which takes world +x to its own -y (row 1 of the rotation:
  // -sin(phi) at column 0).
  air_scene::set_sun(list, 3.1415926535 / 2 + 3.1415926535 / 6, 3.1415926535);
  TCAir* air = air_scene::add_air(list, 1, 0);
  air->set_position(TCVector(0.0, 0.0, 0.0), 0.0, 3.1415926535 / 2, 0.0);
  const TCVector& d = list.sun->direction;
  EXPECT_NEAR(air->sun_direction.x, 0.0, 1e-9);
  EXPECT_NEAR(air->sun_direction.y, -d.x, 1e-9);
  EXPECT_NEAR(air->sun_direction.z, d.z, 1e-12);
  EXPECT_NEAR(air->sun_azimuth, 3.1415926535 / 2, 1e-9);
}

TEST_F(AirSetup, MissingSunPointsStraightDownWithNoIrradiance) {
  TCAir* air = air_scene::add_air(list, 2, 1);
  EXPECT_EQ(air->sun_present, 0);
  EXPECT_EQ(air->sun_direction.x, 0.0);
  EXPECT_EQ(air->sun_direction.y, 0.0);
  EXPECT_EQ(air->sun_direction.z, -1.0);
  EXPECT_EQ(air->sun_zenith, 0.0);
  EXPECT_EQ(air->sun_azimuth, 0.0);
  EXPECT_EQ(air->sun_irradiance[0], 0.0);
  // A sun object that was never set is no sun either.
  list.sun = new TCStar();
  air->set_sun_values();
  EXPECT_EQ(air->sun_present, 0);
  EXPECT_EQ(air->sun_direction.z, -1.0);
}

TEST_F(AirSetup, SunThatIsOffCountsAsMissing) {
  air_scene::set_sun(list, 2.0, 0.0);
  list.sun->on = 0;
  TCAir* air = air_scene::add_air(list, 1, 1);
  EXPECT_EQ(air->sun_present, 0);
  EXPECT_EQ(air->sun_irradiance[1], 0.0);
}

TEST_F(AirSetup, SetTimeAndSetPositionRefreshTheSunValues) {
  air_scene::set_sun(list, 2.0, 0.0);
  TCAir* air = air_scene::add_air(list, 1, 1);
  list.sun->set_angles(2.8, 1.0);
  air->set_time(0.0);
  EXPECT_NEAR(air->sun_zenith, 2.8, 1e-14);
  EXPECT_NEAR(air->sun_azimuth, 1.0, 1e-14);
  list.sun->set_angles(2.2, -1.0);
  air->set_position(TCVector(0.0, 0.0, 0.0), 0.0, 0.0, 0.0);
  EXPECT_NEAR(air->sun_zenith, 2.2, 1e-14);
  EXPECT_NEAR(air->sun_azimuth, -1.0, 1e-14);
}

// ---- Geometry answers ----

TEST_F(AirSetup, PointInsideMeansOnOrAboveTheBase) {
  TCAir* flat = air_scene::add_air(list, 1, 0);
  EXPECT_EQ(flat->point_inside(TCVector(5.0, 5.0, 0.0)), 1);
  EXPECT_EQ(flat->point_inside(TCVector(5.0, 5.0, -0.001)), 0);
  TCAir* round = air_scene::add_air(list, 1, 1);
  // 10 km away the sphere has fallen 7.85 m below the tangent plane.
  EXPECT_EQ(round->point_inside(TCVector(10000.0, 0.0, -7.0)), 1);
  EXPECT_EQ(round->point_inside(TCVector(10000.0, 0.0, -8.0)), 0);
  EXPECT_EQ(round->point_inside(TCVector(0.0, 0.0, -1.0)), 0);
}

TEST_F(AirSetup, IntersectNeverHits) {
  TCAir* air = air_scene::add_air(list, 1, 1);
  TCVector hit(9.0, 9.0, 9.0);
  double distance = 5.0;
  EXPECT_EQ(air->intersect(TCRay(TCVector(1.0, 2.0, 3.0), TCVector(0.0, 0.0, -1.0)), hit, distance),
            0);
  EXPECT_EQ(distance, 0.0);
  EXPECT_EQ(hit.x, 1.0);
  EXPECT_EQ(hit.z, 3.0);
}

// ---- Printout ----

TEST_F(AirSetup, PrintsCleanAirOverARoundBase) {
  TCAir_input input;
  air_scene::fill_input(input, 1, 1);
  input.sun_max_radiance = 2000.0;
  TCAir air(input, &list);
  Stream_capture out(std::cout);
  air.print_dimensions();
  const std::string text = out.text();
  EXPECT_EQ(text.find("      ATMOSPHERE         \n"), 0u);
  EXPECT_NE(text.find(" air type :                           clean \n"), std::string::npos);
  EXPECT_NE(text.find(" molecular height :                  8000\n"), std::string::npos);
  EXPECT_NE(text.find(" molecular density scaling factor:   1\n"), std::string::npos);
  EXPECT_NE(text.find(" molecular wavelength dependence:   4.1\n"), std::string::npos);
  EXPECT_NE(text.find(" molecular visiblity distance (sea level) :          "), std::string::npos);
  EXPECT_NE(text.find(" maximum direct sun radiance in image : 2000\n"), std::string::npos);
  EXPECT_NE(text.find(" external exact flag     :  0\n"), std::string::npos);
  EXPECT_NE(
      text.find(" atmosphere base shape   :   round \n radius                  :  6.371e+06\n"),
      std::string::npos);
  EXPECT_EQ(text.find("haze"), std::string::npos);
}

TEST_F(AirSetup, PrintsHazeOverAFlatBase) {
  TCAir_input input;
  air_scene::fill_input(input, 3, 0);
  TCAir air(input, &list);
  Stream_capture out(std::cout);
  air.print_dimensions();
  const std::string text = out.text();
  EXPECT_NE(text.find(" air type :     haze  \n"), std::string::npos);
  EXPECT_NE(text.find(" molecular density scaling factor :  1\n"), std::string::npos);
  EXPECT_NE(text.find(" haze height :                       1200\n"), std::string::npos);
  EXPECT_NE(text.find(" haze density scaling factor :       1\n"), std::string::npos);
  EXPECT_NE(text.find("  aerosol visiblity distance (sea level) :          "), std::string::npos);
  EXPECT_NE(text.find(" atmosphere base shape   :  flat \n"), std::string::npos);
  EXPECT_EQ(text.find("radius"), std::string::npos);
}

TEST_F(AirSetup, PrintsUniformRadiancePerBand) {
  TCAir_input input;
  air_scene::fill_input(input, 0, 0);
  input.radiance_value[0] = 3.5;
  input.radiance_value[1] = 4.5;
  TCAir air(input, &list);
  Stream_capture out(std::cout);
  air.print_dimensions();
  const std::string text = out.text();
  EXPECT_NE(text.find(" air type :    uniform \n"), std::string::npos);
  EXPECT_NE(text.find(" radiance in band 1  3.5\n radiance in band 2  4.5\n"), std::string::npos);
  EXPECT_EQ(text.find("molecular"), std::string::npos);
}

// ---- Exits ----

TEST(AirSetupDeath, UndefinedBandEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list list;
        air_scene::set_bands(list);
        TCAir_input input;
        air_scene::fill_input(input, 1, 1);
        input.band_id.band_id[1] = 9;
        TCAir air(input, &list);
      },
      ::testing::ExitedWithCode(1),
      "^ air attempting to use an undefined band\nband 9 not defined in object list\n"
      "unable to process air file reference.air\n$");
}

TEST(AirSetupDeath, AirWithNoBandTableEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCAir_input input;
        air_scene::fill_input(input, 1, 1);
        TCAir air(input);
      },
      ::testing::ExitedWithCode(1), "band 1 not defined in object list\n");
}

TEST(AirSetupDeath, UnusableMolecularLayerEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list list;
        air_scene::set_bands(list);
        TCAir_input input;
        air_scene::fill_input(input, 1, 1);
        input.molecular_height = 0.0;
        TCAir air(input, &list);
      },
      ::testing::ExitedWithCode(1), "^TCAir: unable to initialize air molecules \n$");
}

TEST(AirSetupDeath, UnusableDirtyAerosolEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list list;
        air_scene::set_bands(list);
        TCAir_input input;
        air_scene::fill_input(input, 2, 1);
        input.aerosol_height = -1.0;
        TCAir air(input, &list);
      },
      ::testing::ExitedWithCode(1), "^TCAir: unable to initialize aerosols \n$");
}

TEST(AirSetupDeath, UnusableHazeEndsTheRun) {
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list list;
        air_scene::set_bands(list);
        TCAir_input input;
        air_scene::fill_input(input, 3, 1);
        input.aerosol_density = -2.0;
        TCAir air(input, &list);
      },
      ::testing::ExitedWithCode(1), "^TCAir: unable to initialize haze \n$");
}

TEST(AirSetupDeath, HazeWidthOfOneEndsTheRun) {
  // A record that did not come through the file reader.
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list list;
        air_scene::set_bands(list);
        TCAir_input input;
        air_scene::fill_input(input, 3, 1);
        input.haze_phase_function[1] = 1.0;
        TCAir air(input, &list);
      },
      ::testing::ExitedWithCode(1), "^TCAir: unable to initialize haze \n$");
}

TEST(AirSetupDeath, DirtyFactorGivingAWidthBeyondOneEndsTheRun) {
  // 1.1 - 0.1064 * 0.45 is above 1 in band 1.
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        TCObject_list list;
        air_scene::set_bands(list);
        TCAir_input input;
        air_scene::fill_input(input, 2, 1);
        input.aerosol_scattering_factor = 1.1;
        TCAir air(input, &list);
      },
      ::testing::ExitedWithCode(1), "^TCAir: unable to initialize aerosols \n$");
}

}  // namespace
