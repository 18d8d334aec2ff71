#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "TCAir.h"
#include "TCAir_input.h"
#include "TCObject_list.h"
#include "TCStar.h"
#include "air_test_scenes.h"
#include "sun_test_objects.h"

// Expected values: air_reference.py beside this file integrates the
// single-scattering integrand numerically along each ray; its fixture is
// tests/data/atmosphere/air_reference.txt. Others are worked by hand.

namespace {

using air_scene::fixture_lines;
using air_scene::infinity;
using air_scene::ray_of;
using air_scene::two_bands;

double relative(double a, double b) {
  return std::fabs(a - b) / std::fabs(b);
}

class AirPaths : public ::testing::Test {
 protected:
  void SetUp() override { air_scene::set_bands(list); }
  TCAir* air(int air_type, int shape, double zenith, double azimuth) {
    air_scene::set_sun(list, zenith, azimuth);
    return air_scene::add_air(list, air_type, shape);
  }
  TCObject_list list;
};

// ---- Flat base ----

// The closed forms against the numerical integral: 1e-4 relative, or x / 2
// where the form's series for small x = tau u m r keeps only its first term.
TEST_F(AirPaths, FlatClosedFormsMatchTheNumericalIntegral) {
  const auto lines = fixture_lines("flat");
  ASSERT_EQ(lines.size(), 10u);
  for (size_t i = 0; i < lines.size(); i++) {
    const auto& v = lines[i];
    TCAir* a = air(2, 0, v[0], v[1]);
    const TCRay ray = ray_of(v, 2);
    TCSpectrum mol = two_bands(), aer = two_bands(), t = two_bands();
    a->path_radiance(ray, mol, aer, v[8], v[9]);
    a->path_transmission(ray, t, v[8], v[9]);
    for (int b = 0; b < 2; b++) {
      const double bound = v[16 + b];
      EXPECT_LT(relative(mol.radiance_in_band[b], v[10 + b]), bound)
          << "case " << i << " band " << b;
      EXPECT_LT(relative(aer.radiance_in_band[b], v[12 + b]), bound)
          << "case " << i << " band " << b;
      if (v[14 + b] == 0.0) {
        EXPECT_LT(t.radiance_in_band[b], 1e-300) << "case " << i;
      } else {
        // The closed form's series for a short path, (dz / H) (1 - y / 2),
        // drops y^2 / 6 of the column, y = dz / H.
        EXPECT_LT(relative(t.radiance_in_band[b], v[14 + b]), 1e-10) << "case " << i;
      }
    }
  }
}

TEST_F(AirPaths, CleanAirHasNoAerosolOutput) {
  TCAir* a = air(1, 0, 2.0, 0.0);
  TCSpectrum mol = two_bands(), aer = two_bands();
  a->path_radiance(TCRay(TCVector(0, 0, 1), TCVector(0.6, 0.0, 0.8)), mol, aer, 0.0, infinity);
  EXPECT_GT(mol.radiance_in_band[0], 0.0);
  EXPECT_EQ(aer.radiance_in_band[0], 0.0);
  EXPECT_EQ(aer.radiance_in_band[1], 0.0);
  a = air(1, 1, 2.0, 0.0);
  a->path_radiance(TCRay(TCVector(0, 0, 1), TCVector(0.6, 0.0, 0.8)), mol, aer, 0.0, infinity);
  EXPECT_GT(mol.radiance_in_band[1], 0.0);
  EXPECT_EQ(aer.radiance_in_band[0], 0.0);
  EXPECT_EQ(aer.radiance_in_band[1], 0.0);
}

TEST_F(AirPaths, SunOnOrBelowTheHorizonGivesNoPathRadianceOverAFlatBase) {
  const double zeniths[2] = {3.1415926535 / 2 - 1e-9, 1.2};  // just below, well below
  for (double zenith : zeniths) {
    TCAir* a = air(2, 0, zenith, 0.0);
    EXPECT_LE(a->sun_direction.z, 0.0);
    TCSpectrum mol = two_bands(), aer = two_bands();
    a->path_radiance(TCRay(TCVector(0, 0, 1), TCVector(0.0, 0.6, 0.8)), mol, aer, 0.0, infinity);
    for (int b = 0; b < 2; b++) {
      EXPECT_EQ(mol.radiance_in_band[b], 0.0);
      EXPECT_EQ(aer.radiance_in_band[b], 0.0);
    }
  }
}

TEST_F(AirPaths, RayBelowTheBaseHeadingDownGivesNothing) {
  TCAir* a = air(2, 0, 2.5, 0.0);
  TCSpectrum mol = two_bands(), aer = two_bands(), t = two_bands();
  const TCRay ray(TCVector(0, 0, -5), TCVector(0.6, 0.0, -0.8));
  a->path_radiance(ray, mol, aer, 0.0, infinity);
  a->path_transmission(ray, t, 0.0, infinity);
  EXPECT_EQ(mol.radiance_in_band[0], 0.0);
  EXPECT_EQ(aer.radiance_in_band[1], 0.0);
  EXPECT_EQ(t.radiance_in_band[0], 1.0);
  // Rising, but reaching the base only after the path's end: 5 / 0.8 = 6.25.
  const TCRay up(TCVector(0, 0, -5), TCVector(0.6, 0.0, 0.8));
  a->path_radiance(up, mol, aer, 0.0, 6.0);
  a->path_transmission(up, t, 0.0, 6.0);
  EXPECT_EQ(mol.radiance_in_band[0], 0.0);
  EXPECT_EQ(t.radiance_in_band[1], 1.0);
}

TEST_F(AirPaths, RayAlongTheSunPeaksBothPhaseFunctionsAndStaysFinite) {
  // The sun 30 degrees up: mu = mu_s, kept from the division by the offsets.
  TCAir* a = air(2, 0, 3.1415926535 / 2 + 3.1415926535 / 6, 3.1415926535);
  const TCRay ray(TCVector(0, 0, 0), a->sun_direction);
  TCSpectrum mol = two_bands(), aer = two_bands();
  a->path_radiance(ray, mol, aer, 0.0, infinity);
  for (int b = 0; b < 2; b++) {
    EXPECT_TRUE(std::isfinite(mol.radiance_in_band[b]));
    EXPECT_TRUE(std::isfinite(aer.radiance_in_band[b]));
    EXPECT_GT(aer.radiance_in_band[b], 0.0);
  }
  // With unit integrals the phase is at its peak: c = 1.
  TCSpectrum unit_mol(2), unit_aer(2);
  for (int b = 0; b < 2; b++) {
    unit_mol.radiance_in_band[b] = 1.0;
    unit_aer.radiance_in_band[b] = 1.0;
  }
  a->scatter_phase(ray, unit_mol, unit_aer);
  const auto phase = fixture_lines("phase");
  ASSERT_EQ(phase.size(), 6u);
  // The fixture's first line is c = 1 (its sun differs, c does not).
  for (int b = 0; b < 2; b++)
    EXPECT_LT(relative(unit_mol.radiance_in_band[b], phase[0][5 + b] + phase[0][7 + b]), 1e-9);
}

TEST_F(AirPaths, ScatterPhaseMatchesTheTwoLayersPhaseFunctions) {
  const auto lines = fixture_lines("phase");
  for (const auto& v : lines) {
    TCAir* a = air(2, 1, v[0], v[1]);
    const TCRay ray(TCVector(0, 0, 0), TCVector(v[2], v[3], v[4]));
    TCSpectrum mol(2), aer(2);
    mol.radiance_in_band[0] = 1.0;
    mol.radiance_in_band[1] = 1.0;
    aer.radiance_in_band[0] = 0.0;
    aer.radiance_in_band[1] = 0.0;
    a->scatter_phase(ray, mol, aer);
    EXPECT_LT(relative(mol.radiance_in_band[0], v[5]), 1e-9);
    EXPECT_LT(relative(mol.radiance_in_band[1], v[6]), 1e-9);
    mol.radiance_in_band[0] = 0.0;
    mol.radiance_in_band[1] = 0.0;
    aer.radiance_in_band[0] = 2.0;
    aer.radiance_in_band[1] = 2.0;
    a->scatter_phase(ray, mol, aer);
    EXPECT_LT(relative(mol.radiance_in_band[0], 2.0 * v[7]), 1e-9);
    EXPECT_LT(relative(mol.radiance_in_band[1], 2.0 * v[8]), 1e-9);
  }
}

TEST_F(AirPaths, ScatterPhaseGivesZeroForABandTheAirLacks) {
  TCAir* a = air(1, 0, 2.0, 0.0);
  TCSpectrum mol(1), aer(1);
  mol.band_id[0] = 5;
  mol.radiance_in_band[0] = 3.0;
  aer.band_id[0] = 5;
  a->scatter_phase(TCRay(TCVector(0, 0, 0), TCVector(0, 0, 1)), mol, aer);
  EXPECT_EQ(mol.radiance_in_band[0], 0.0);
}

TEST_F(AirPaths, MissingSunGivesNoPathRadianceAndTransmissionAlone) {
  TCAir* flat = air_scene::add_air(list, 2, 0);
  TCAir* round = air_scene::add_air(list, 2, 1);
  const TCRay ray(TCVector(0, 0, 2), TCVector(0.8, 0.0, 0.6));
  TCAir* airs[2] = {flat, round};
  for (TCAir* a : airs) {
    TCSpectrum mol = two_bands(), aer = two_bands(), t = two_bands();
    a->path_radiance(ray, mol, aer, 0.0, infinity);
    a->path_transmission(ray, t, 0.0, infinity);
    EXPECT_EQ(mol.radiance_in_band[0], 0.0);
    EXPECT_EQ(aer.radiance_in_band[1], 0.0);
    EXPECT_GT(t.radiance_in_band[0], 0.0);
    EXPECT_LT(t.radiance_in_band[0], 1.0);
    TCSpectrum sky = two_bands();
    a->radiance(ray, sky);
    EXPECT_EQ(sky.radiance_in_band[0], 0.0);
  }
}

TEST_F(AirPaths, PathOfNoLengthGivesNoRadianceAndFullTransmission) {
  TCAir* a = air(2, 1, 2.5, 0.0);
  const TCRay ray(TCVector(0, 0, 2), TCVector(0.8, 0.0, 0.6));
  TCSpectrum mol = two_bands(), aer = two_bands(), t = two_bands();
  a->path_radiance(ray, mol, aer, 50.0, 50.0);
  a->path_transmission(ray, t, 50.0, 50.0);
  EXPECT_EQ(mol.radiance_in_band[0], 0.0);
  EXPECT_EQ(aer.radiance_in_band[0], 0.0);
  EXPECT_EQ(t.radiance_in_band[0], 1.0);
  a->path_radiance(ray, mol, aer, 60.0, 50.0);
  EXPECT_EQ(mol.radiance_in_band[1], 0.0);
}

TEST_F(AirPaths, BandsTheAirLacksGetNoRadianceAndPassUndimmed) {
  TCAir* a = air(2, 0, 2.5, 0.0);
  TCSpectrum mol(1), aer(1), t(1);
  mol.band_id[0] = aer.band_id[0] = t.band_id[0] = 4;
  const TCRay ray(TCVector(0, 0, 2), TCVector(0.8, 0.0, 0.6));
  a->path_radiance(ray, mol, aer, 0.0, 1000.0);
  a->path_transmission(ray, t, 0.0, 1000.0);
  EXPECT_EQ(mol.radiance_in_band[0], 0.0);
  EXPECT_EQ(t.radiance_in_band[0], 1.0);
}

// ---- Round base ----

// The Gaussian form of the optical depth against direct quadrature. The
// bound of each case comes from the table's step: at a Gaussian end,
// step^2 / 8 * max|G''| over the cell (G'' = -2x exp(-x^2)) plus the
// trapezoid's (h^2 / 6) |x| exp(-x^2), times exp(p^2/4 - z0/H) / q; at an
// asymptotic end the first dropped term, 3 / (8 |x|^5) exp(-z/H) / q; see
// column_bound in air_reference.py.
TEST_F(AirPaths, RoundColumnMatchesQuadratureWithinTheTableBound) {
  TCAir* a = air(2, 1, 2.5, 0.0);
  const auto lines = fixture_lines("column");
  ASSERT_EQ(lines.size(), 22u);
  for (size_t i = 0; i < lines.size(); i++) {
    const auto& v = lines[i];
    const double column =
        a->round_column(TCVector(v[0], v[1], v[2]), TCVector(v[3], v[4], v[5]), v[6], v[7], v[8]);
    EXPECT_LE(std::fabs(column - v[9]), v[10]) << "case " << i << " H " << v[8];
  }
}

TEST_F(AirPaths, RoundTransmissionIsTheExponentialOfBothDepths) {
  TCAir* a = air(2, 1, 2.5, 0.0);
  const auto lines = fixture_lines("column");
  // The horizon ray from the ground: lines 0 (molecules) and 1 (aerosol).
  const TCRay ray(TCVector(0, 0, 0), TCVector(1, 0, 0));
  TCSpectrum t = two_bands();
  a->path_transmission(ray, t, 0.0, infinity);
  const auto taus = fixture_lines("molecular_tau");
  const double tau_a = 0.1272;
  for (int b = 0; b < 2; b++) {
    const double depth = taus[0][1 + b] * lines[0][9] + tau_a * lines[1][9];
    const double bound = taus[0][1 + b] * lines[0][10] + tau_a * lines[1][10];
    EXPECT_LE(std::fabs(-std::log(t.radiance_in_band[b]) - depth), bound);
  }
}

TEST_F(AirPaths, RoundTransmissionStopsAtTheSphere) {
  TCAir* a = air(2, 1, 2.5, 0.0);
  // From 300 m, 5 degrees down: the sphere is met where
  // s^2 + 2 s (d.o + R d.z) + o.o + 2 R o.z = 0.
  const double dz = -std::sin(5.0 * 3.1415926535 / 180.0);
  const TCVector d(std::sqrt(1.0 - dz * dz), 0.0, dz);
  const TCVector o(0.0, 0.0, 300.0);
  const double r = air_scene::radius;
  const double half_b = d.dot(o) + r * d.z;
  const double c = o.dot(o) + 2 * r * o.z;
  const double hit = -half_b - std::sqrt(half_b * half_b - c);
  TCSpectrum to_infinity = two_bands(), to_hit = two_bands(), beyond = two_bands();
  a->path_transmission(TCRay(o, d), to_infinity, 0.0, infinity);
  a->path_transmission(TCRay(o, d), to_hit, 0.0, hit);
  a->path_transmission(TCRay(o, d), beyond, hit + 10.0, infinity);
  for (int b = 0; b < 2; b++) {
    EXPECT_LT(relative(to_infinity.radiance_in_band[b], to_hit.radiance_in_band[b]), 1e-9);
    EXPECT_LT(to_hit.radiance_in_band[b], 1.0);
    // Starting beyond the cut: no air left.
    EXPECT_EQ(beyond.radiance_in_band[b], 1.0);
  }
}

TEST_F(AirPaths, RoundTransmissionFromInsideTheSphereStartsWhereTheRayLeavesIt) {
  TCAir* a = air(2, 1, 2.5, 0.0);
  // From 10 m under the ground, straight up: the air starts at s = 10.
  TCSpectrum from_below = two_bands(), from_ground = two_bands();
  a->path_transmission(TCRay(TCVector(0, 0, -10), TCVector(0, 0, 1)), from_below, 0.0, 1010.0);
  a->path_transmission(TCRay(TCVector(0, 0, 0), TCVector(0, 0, 1)), from_ground, 0.0, 1000.0);
  for (int b = 0; b < 2; b++)
    EXPECT_LT(relative(from_below.radiance_in_band[b], from_ground.radiance_in_band[b]), 1e-12);
}

TEST_F(AirPaths, VerticalRayHasThePlainExponentialDepth) {
  TCAir* a = air(1, 1, 2.5, 0.0);
  // (1/H) * integral of exp(-s/H) from 100 to 9000 = e^-0.0125 - e^-1.125.
  const double column =
      a->round_column(TCVector(0, 0, 0), TCVector(0, 0, 1), 100.0, 9000.0, 8000.0);
  EXPECT_DOUBLE_EQ(column, std::exp(-0.0125) - std::exp(-1.125));
  EXPECT_DOUBLE_EQ(a->round_column(TCVector(0, 0, 0), TCVector(0, 0, 1), 0.0, infinity, 8000.0),
                   1.0);
}

// The Romberg integral stops when the largest band moves by less than
// 2.5% from one level to the next; the reference is held to that.
TEST_F(AirPaths, RoundPathRadianceMatchesTheNumericalIntegral) {
  const auto lines = fixture_lines("round");
  ASSERT_EQ(lines.size(), 9u);
  for (size_t i = 0; i < lines.size(); i++) {
    const auto& v = lines[i];
    TCAir* a = air(2, 1, v[0], v[1]);
    TCSpectrum mol = two_bands(), aer = two_bands();
    a->path_radiance(ray_of(v, 2), mol, aer, v[8], v[9]);
    for (int b = 0; b < 2; b++) {
      EXPECT_LT(relative(mol.radiance_in_band[b], v[10 + b]), 0.025)
          << "case " << i << " band " << b;
      EXPECT_LT(relative(aer.radiance_in_band[b], v[12 + b]), 0.025)
          << "case " << i << " band " << b;
    }
  }
}

TEST_F(AirPaths, ViewFromAboveTheShellEntersItPlusTheOffset) {
  // Top of the shell: 6 * 8000 m. From 60 km, 30 degrees down.
  TCAir* a = air(2, 1, 2.3, 3.1415926535);
  const double dz = -0.5;
  const TCVector d(std::sqrt(0.75), 0.0, dz);
  const TCVector o(0.0, 0.0, 60000.0);
  // z(s) = z0 + a s + b s^2 = 48000 on the way down.
  const double r = air_scene::radius;
  const double qa = (1 - dz * dz) / (2 * r);
  const double qb = dz;
  const double qc = 60000.0 - 48000.0;
  const double entry = (-qb - std::sqrt(qb * qb - 4 * qa * qc)) / (2 * qa);
  // 12 km down at a sine of 0.5, and 68 m more as the shell curves away.
  EXPECT_NEAR(entry, 24068.0, 1.0);
  TCSpectrum mol = two_bands(), aer = two_bands(), mol2 = two_bands(), aer2 = two_bands();
  a->path_radiance(TCRay(o, d), mol, aer, 0.0, infinity);
  a->path_radiance(TCRay(o, d), mol2, aer2, entry + 0.01, infinity);
  for (int b = 0; b < 2; b++) {
    EXPECT_GT(mol.radiance_in_band[b], 0.0);
    EXPECT_LT(relative(mol.radiance_in_band[b], mol2.radiance_in_band[b]), 1e-9);
    EXPECT_LT(relative(aer.radiance_in_band[b], aer2.radiance_in_band[b]), 1e-9);
  }
}

TEST_F(AirPaths, RayThatNeverEntersTheShellGivesNothing) {
  TCAir* a = air(2, 1, 2.3, 0.0);
  TCSpectrum mol = two_bands(), aer = two_bands();
  a->path_radiance(TCRay(TCVector(0, 0, 60000), TCVector(0.6, 0.0, 0.8)), mol, aer, 0.0, infinity);
  EXPECT_EQ(mol.radiance_in_band[0], 0.0);
  EXPECT_EQ(aer.radiance_in_band[1], 0.0);
}

TEST_F(AirPaths, PathWhollyInTheEarthsShadowGivesNothing) {
  // The sun 30 degrees below the horizon; looking away from it, level: the
  // shadow reaches above the shell's top all along the path.
  TCAir* a = air(2, 1, 3.1415926535 / 2 - 3.1415926535 / 6, 3.1415926535);
  TCSpectrum mol = two_bands(), aer = two_bands();
  a->path_radiance(TCRay(TCVector(0, 0, 2), TCVector(-1.0, 0.0, 0.0)), mol, aer, 0.0, infinity);
  EXPECT_EQ(mol.radiance_in_band[0], 0.0);
  EXPECT_EQ(aer.radiance_in_band[0], 0.0);
}

// ---- radiance and radiance_from ----

TEST_F(AirPaths, RadianceIsThePathToInfinityThroughThePhase) {
  TCAir* a = air(2, 1, 2.5, 0.4);
  const TCRay ray(TCVector(0, 0, 10), TCVector(0.0, 0.8, 0.6));
  TCSpectrum sky = two_bands(), mol = two_bands(), aer = two_bands();
  a->radiance(ray, sky);
  a->path_radiance(ray, mol, aer, 0.0, infinity);
  a->scatter_phase(ray, mol, aer);
  EXPECT_GT(sky.radiance_in_band[0], 0.0);
  EXPECT_EQ(sky.radiance_in_band[0], mol.radiance_in_band[0]);
  EXPECT_EQ(sky.radiance_in_band[1], mol.radiance_in_band[1]);
}

TEST_F(AirPaths, RadianceAtOrBelowAFlatHorizonIsZero) {
  TCAir* a = air(2, 0, 2.5, 0.0);
  TCSpectrum sky = two_bands();
  a->radiance(TCRay(TCVector(0, 0, 10), TCVector(1.0, 0.0, 0.0)), sky);
  EXPECT_EQ(sky.radiance_in_band[0], 0.0);
  a->radiance(TCRay(TCVector(0, 0, 10), TCVector(0.8, 0.0, -0.6)), sky);
  EXPECT_EQ(sky.radiance_in_band[1], 0.0);
}

TEST_F(AirPaths, RadianceIntoTheRoundBaseIsZero) {
  TCAir* a = air(2, 1, 2.5, 0.0);
  TCSpectrum sky = two_bands();
  a->radiance(TCRay(TCVector(0, 0, 10), TCVector(0.8, 0.0, -0.6)), sky);
  EXPECT_EQ(sky.radiance_in_band[0], 0.0);
  // Level from 10 m the ray clears the sphere and sees sky.
  a->radiance(TCRay(TCVector(0, 0, 10), TCVector(1.0, 0.0, 0.0)), sky);
  EXPECT_GT(sky.radiance_in_band[0], 0.0);
}

TEST_F(AirPaths, UniformAirRadianceIsItsOwnValues) {
  TCAir_input input;
  air_scene::fill_input(input, 0, 1);
  input.radiance_value[0] = 2.5;
  input.radiance_value[1] = 6.0;
  air_scene::set_sun(list, 2.5, 0.0);
  TCAir* a = new TCAir(input, &list);
  list.add_runtime_object(a);
  TCSpectrum out(3);
  out.band_id[0] = 2;
  out.band_id[1] = 7;
  out.band_id[2] = 1;
  a->radiance(TCRay(TCVector(0, 0, 1), TCVector(0, 0, -1)), out);
  EXPECT_EQ(out.radiance_in_band[0], 6.0);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);
  EXPECT_EQ(out.radiance_in_band[2], 2.5);
  TCSpectrum t = two_bands();
  a->path_transmission(TCRay(TCVector(0, 0, 1), TCVector(1, 0, 0)), t, 0.0, infinity);
  EXPECT_EQ(t.radiance_in_band[0], 1.0);
}

TEST_F(AirPaths, SunThroughTheAirWithNothingInTheWayIsItsTransmission) {
  TCAir* a = air(2, 1, 2.6, 0.3);
  const TCVector point(0.0, 0.0, 5.0);
  TCSpectrum through = two_bands(), t = two_bands();
  list.sun->irradiance_at(point, through, &list, -1);
  a->path_transmission(TCRay(point, list.sun->direction), t, 0.0, infinity);
  EXPECT_DOUBLE_EQ(through.radiance_in_band[0], 1.8 * t.radiance_in_band[0]);
  EXPECT_DOUBLE_EQ(through.radiance_in_band[1], 1.5 * t.radiance_in_band[1]);
  EXPECT_LT(t.radiance_in_band[0], 1.0);
}

TEST_F(AirPaths, RadianceFromDimsWhatTheHitObjectSendsAndAddsThePath) {
  TCAir* a = air(2, 0, 2.6, 0.0);
  Sun_blocker* blocker = new Sun_blocker(0.5);
  blocker->hit = 1;
  blocker->hit_distance = 100.0;
  list.add_runtime_object(blocker);
  const TCRay ray(TCVector(0, 0, 5), TCVector(0.6, 0.0, 0.8));
  TCSpectrum out(2);
  out.radiance_in_band[0] = 1.0;
  out.radiance_in_band[1] = 1.0;
  a->radiance_from(-1, ray, out);
  EXPECT_EQ(blocker->radiance_calls, 1);
  EXPECT_EQ(blocker->last_source, a->get_object_id());
  TCSpectrum t = two_bands(), mol = two_bands(), aer = two_bands();
  a->path_transmission(ray, t, 0.0, 100.0);
  a->path_radiance(ray, mol, aer, 0.0, 100.0);
  a->scatter_phase(ray, mol, aer);
  for (int b = 0; b < 2; b++) {
    EXPECT_DOUBLE_EQ(out.radiance_in_band[b],
                     0.5 * t.radiance_in_band[b] + mol.radiance_in_band[b]);
    EXPECT_LT(t.radiance_in_band[b], 1.0);
    EXPECT_GT(mol.radiance_in_band[b], 0.0);
  }
}

TEST_F(AirPaths, RadianceFromAnOpaqueHitIsZero) {
  TCAir* a = air(2, 0, 2.6, 0.0);
  Sun_blocker* blocker = new Sun_blocker(0.0);
  blocker->hit = 1;
  blocker->hit_distance = 100.0;
  list.add_runtime_object(blocker);
  TCSpectrum out(2);
  out.radiance_in_band[0] = 1.0;
  out.radiance_in_band[1] = 1.0;
  a->radiance_from(-1, TCRay(TCVector(0, 0, 5), TCVector(0.6, 0.0, 0.8)), out);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);
}

TEST_F(AirPaths, RadianceFromSkipsTheSourceObject) {
  TCAir* a = air(2, 0, 2.6, 0.0);
  Sun_blocker* blocker = new Sun_blocker(0.0);
  blocker->hit = 1;
  blocker->hit_distance = 100.0;
  list.add_runtime_object(blocker);
  TCSpectrum out(2);
  out.radiance_in_band[0] = 1.0;
  out.radiance_in_band[1] = 1.0;
  const TCRay ray(TCVector(0, 0, 5), TCVector(0.6, 0.0, 0.8));
  a->radiance_from(blocker->get_object_id(), ray, out);
  EXPECT_EQ(blocker->radiance_calls, 0);
  TCSpectrum t = two_bands();
  a->path_transmission(ray, t, 0.0, infinity);
  EXPECT_DOUBLE_EQ(out.radiance_in_band[0], t.radiance_in_band[0]);
}

// The base is opaque to the sun in every kind of air: uniform air, which
// dims nothing, still lets no sun through the ground.
TEST_F(AirPaths, UniformAirHidesASetSunOverEitherBase) {
  for (int shape = 0; shape <= 1; shape++) {
    TCObject_list scene;
    air_scene::set_bands(scene);
    // Zenith 1.2 in the sun's convention: 21 degrees below the horizon.
    air_scene::set_sun(scene, 1.2, 0.0);
    TCAir* a = air_scene::add_air(scene, 0, shape);
    TCSpectrum out = two_bands();
    scene.sun->irradiance_at(TCVector(0.0, 0.0, 5.0), out, &scene, -1);
    EXPECT_EQ(out.radiance_in_band[0], 0.0) << shape;
    EXPECT_EQ(out.radiance_in_band[1], 0.0) << shape;
    scene.sun->set_angles(2.6, 0.0);
    a->set_sun_values();
    scene.sun->irradiance_at(TCVector(0.0, 0.0, 5.0), out, &scene, -1);
    EXPECT_EQ(out.radiance_in_band[0], 1.8) << shape;
    EXPECT_EQ(out.radiance_in_band[1], 1.5) << shape;
  }
}

// Along a ray that strikes the round base, what lies beyond the ground is
// not asked and sends nothing; what lies in front of it still is.
TEST_F(AirPaths, RadianceFromStopsAtTheGroundBeforeAFartherObject) {
  TCAir* a = air(2, 1, 2.6, 0.0);
  Sun_blocker* blocker = new Sun_blocker(0.5);
  blocker->hit = 1;
  blocker->hit_distance = 100.0;
  list.add_runtime_object(blocker);
  // From 5 m up, 0.2 down: the ground is about 25 m away.
  const TCRay ray(TCVector(0, 0, 5), TCVector(0.9797958971132712, 0.0, -0.2));
  TCSpectrum out(2);
  out.radiance_in_band[0] = 1.0;
  out.radiance_in_band[1] = 1.0;
  a->radiance_from(-1, ray, out);
  EXPECT_EQ(blocker->radiance_calls, 0);
  EXPECT_EQ(out.radiance_in_band[0], 0.0);
  EXPECT_EQ(out.radiance_in_band[1], 0.0);

  blocker->hit_distance = 10.0;
  out.radiance_in_band[0] = 1.0;
  out.radiance_in_band[1] = 1.0;
  a->radiance_from(-1, ray, out);
  EXPECT_EQ(blocker->radiance_calls, 1);
  EXPECT_GT(out.radiance_in_band[0], 0.0);
}

}  // namespace
