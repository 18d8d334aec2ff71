#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCRay.h"
#include "TCSettings.h"
#include "TCSpectrum.h"
#include "TCView.h"
#include "TCVolume_Object.h"
#include "TCVolume_Object_class.h"
#include "object_contour.h"
#include "volume_test_objects.h"

namespace {

const std::string data_dir = std::string(TC_TEST_DATA_DIR) + "/volumes/";
const double isotropic = 0.079577471545947673;

// A 100 by 100 by 20 m slab of density 0.5 in two bands (ids 1, 2), sun
// overhead, unit irradiance.
struct Two_band_slab {
  explicit Two_band_slab(double integration_scale = 1.0, double subdivide = 0.0,
                         double cutoff = 0.0001, int nx = 11, double dx = 10.0) {
    const double a[2] = {0.002, 0.01}, b[2] = {0.01, 0.02}, x[2] = {0.012, 0.03};
    fill_volume_record(record, nx, 11, 5, dx, 10.0, 5.0, 2, a, b, x, isotropic);
    record.integration_scale = integration_scale;
    record.subdivide_threshold = subdivide;
    record.transmission_cutoff = cutoff;
    volume = new Lattice_test_volume(record);
    volume->fill(0.5);
    volume->sun_direction = TCVector(0.0, 0.0, 1.0);
    volume->sun_radiance.radiance_in_band[0] = 1.0;
    volume->sun_radiance.radiance_in_band[1] = 1.0;
    volume->make_extinction_field();
  }
  ~Two_band_slab() { delete volume; }
  TCVolume_Object_class record;
  Lattice_test_volume* volume;
};

TCSpectrum bands_of(int n, const int* ids) {
  TCSpectrum out(n);
  for (int k = 0; k < n; k++) out.band_id[k] = ids[k];
  return out;
}

const TCRay straight_down(TCVector(3.0, -7.0, 50.0), TCVector(0.0, 0.0, -1.0));

}  // namespace

TEST(VolumeObject, ARayThatMissesOrGrazesTheBoxReturnsTheBackgroundExactly) {
  Two_band_slab slab;
  const int ids[2] = {1, 2};
  const double behind[2] = {0.123456789, 9.87654321};
  // Leaving the top face from a point on it, passing a millimetre beyond
  // an edge, and well clear of the box.
  const TCRay touching(TCVector(10.0, 0.0, 10.0), TCVector(0.6, 0.0, 0.8));
  const TCRay past_edge(TCVector(-80.0, 0.0, 10.001), TCVector(1.0, 0.0, 0.0));
  const TCRay clear(TCVector(0.0, 0.0, 50.0), TCVector(1.0, 0.0, 0.0));
  for (const TCRay& ray : {touching, past_edge, clear}) {
    TCSpectrum out = bands_of(2, ids);
    double T[2] = {0.0, 0.0};
    EXPECT_EQ(slab.volume->integrate_ray(ray, out, behind, 1e8, 0, nullptr, 0, T), 0);
    EXPECT_EQ(out.radiance_in_band[0], behind[0]);
    EXPECT_EQ(out.radiance_in_band[1], behind[1]);
    EXPECT_EQ(T[0], 1.0);
    EXPECT_EQ(T[1], 1.0);
  }
}

TEST(VolumeObject, ABandTheObjectLacksIsFullyTransmittedWithNoScatteredLight) {
  Two_band_slab slab;
  const int ids[2] = {7, 2};
  const double behind[2] = {3.0, 0.0};
  TCSpectrum out = bands_of(2, ids);
  double T[2];
  ASSERT_EQ(slab.volume->integrate_ray(straight_down, out, behind, 1e8, 0, nullptr, 0, T), 1);
  EXPECT_EQ(T[0], 1.0);
  EXPECT_EQ(out.radiance_in_band[0], 3.0);
  // The band it has is dimmed over the 20 m: exp(-(a + b) rho 20).
  EXPECT_NEAR(T[1], std::exp(-0.03 * 0.5 * 20.0), 1e-12);
  EXPECT_GT(out.radiance_in_band[1], 0.0);
}

TEST(VolumeObject, StraightDownUnderAnOverheadSunMatchesTheHandFormula) {
  // L / E = b P (1 - exp(-(e + x) rho H)) / (e + x), with no step error:
  // the integrand is a pure exponential sampled at one spacing... within the
  // trapezoid's (c h)^2 / 12, c = (e + x) rho, h = 5 m.
  Two_band_slab slab;
  const int ids[2] = {1, 2};
  TCSpectrum out = bands_of(2, ids);
  slab.volume->integrate_ray(straight_down, out, nullptr, 1e8, 0, nullptr, 0);
  const double e[2] = {0.012, 0.03}, x[2] = {0.012, 0.03}, b[2] = {0.01, 0.02};
  for (int k = 0; k < 2; k++) {
    const double c = (e[k] + x[k]) * 0.5;
    const double expected = b[k] * isotropic * (1.0 - std::exp(-c * 20.0)) / (e[k] + x[k]);
    EXPECT_NEAR(out.radiance_in_band[k] / expected, 1.0, (c * 5.0) * (c * 5.0) / 12.0 * 1.01);
  }
}

TEST(VolumeObject, WithoutSubStepsTheSubdivideThresholdChangesNothing) {
  Two_band_slab plain(1.0, 0.0), thresholded(1.0, 0.5), fine(0.25, 0.0);
  const int ids[2] = {1, 2};
  const TCRay slanted(TCVector(-60.0, 3.0, 30.0), TCVector(0.8, 0.0, -0.6));
  TCSpectrum a = bands_of(2, ids), b = bands_of(2, ids), c = bands_of(2, ids);
  plain.volume->integrate_ray(slanted, a, nullptr, 1e8, 0, nullptr, 0);
  thresholded.volume->integrate_ray(slanted, b, nullptr, 1e8, 0, nullptr, 0);
  fine.volume->integrate_ray(slanted, c, nullptr, 1e8, 0, nullptr, 0);
  for (int k = 0; k < 2; k++) {
    EXPECT_EQ(a.radiance_in_band[k], b.radiance_in_band[k]);
    // Sub-steps (three per interval at a quarter) do change the sum.
    EXPECT_NE(a.radiance_in_band[k], c.radiance_in_band[k]);
    EXPECT_NEAR(a.radiance_in_band[k] / c.radiance_in_band[k], 1.0, 0.02);
  }
}

TEST(VolumeObject, SubStepsRefineOnlyIntervalsAboveTheThreshold) {
  // Above every interval's mean nothing is refined: the plain sum.
  Two_band_slab plain(1.0, 0.0), none_refined(0.25, 1.0), all_refined(0.25, 0.0);
  const int ids[2] = {1, 2};
  const TCRay slanted(TCVector(-60.0, 3.0, 30.0), TCVector(0.8, 0.0, -0.6));
  TCSpectrum a = bands_of(2, ids), b = bands_of(2, ids), c = bands_of(2, ids);
  plain.volume->integrate_ray(slanted, a, nullptr, 1e8, 0, nullptr, 0);
  none_refined.volume->integrate_ray(slanted, b, nullptr, 1e8, 0, nullptr, 0);
  all_refined.volume->integrate_ray(slanted, c, nullptr, 1e8, 0, nullptr, 0);
  EXPECT_EQ(a.radiance_in_band[0], b.radiance_in_band[0]);
  EXPECT_NE(a.radiance_in_band[0], c.radiance_in_band[0]);
}

TEST(VolumeObject, PhaseLookupIsLinearInterpolationOfTheTable) {
  const std::string file = data_dir + "phase_lookup_reference.txt";
  const auto table = reference_records(file, "table");
  ASSERT_EQ(table.size(), 181u);
  TCVolume_Object_class record;
  const double zero = 0.0;
  fill_volume_record(record, 2, 2, 2, 1.0, 1.0, 1.0, 1, &zero, &zero, &zero, 0.0);
  for (int i = 0; i < 181; i++) record.phase_functions[0][i] = table[i][1];
  Lattice_test_volume volume(record);
  for (const auto& lookup : reference_records(file, "lookup"))
    EXPECT_NEAR(volume.phase_lookup(lookup[1], 0), lookup[2], 1e-13) << lookup[1];
  const auto edges = reference_records(file, "edge");
  ASSERT_GE(edges.size(), 8u);
  for (const auto& edge : edges)
    EXPECT_NEAR(volume.phase_lookup(edge[1], 0), edge[2], 1e-13) << edge[1];
  // Exactly pi lands on the last entry with no interpolation.
  EXPECT_EQ(volume.phase_lookup(3.1415926535, 0), table[180][1]);
  // No such band.
  EXPECT_EQ(volume.phase_lookup(0.5, 1), 0.0);
}

TEST(VolumeObject, MultipleScatteringFadesThePhaseFunctionBeyondTwoOpticalDepths) {
  Two_band_slab slab;
  // Hand: tau 12, P 0.5: E = exp(-1), M = (1 - E) / (12.566371 * 0.5) + E.
  EXPECT_NEAR(slab.volume->multiple_scattering_factor(12.0, 0.5), 0.46848454965, 1e-10);
  EXPECT_EQ(slab.volume->multiple_scattering_factor(2.0, 0.5), 1.0);
  EXPECT_EQ(slab.volume->multiple_scattering_factor(50.0, 0.0), 1.0);
  // Deep in, the product with P goes to the isotropic 1 / (4 pi).
  EXPECT_NEAR(slab.volume->multiple_scattering_factor(400.0, 3.0) * 3.0, 1.0 / 12.566371, 1e-9);
  slab.volume->scattering_method = 0;
  EXPECT_EQ(slab.volume->multiple_scattering_factor(12.0, 0.5), 1.0);
}

TEST(VolumeObject, ARayOfExactly2500SamplesIsAccepted) {
  // 3000 points 1 m apart along x; from inside, a path of 2498.5 m at a
  // step of 1 m gives floor(2498.5) + 2 = 2500 samples.
  Two_band_slab slab(1.0, 0.0, 0.0001, 3000, 1.0);
  const int ids[1] = {1};
  TCSpectrum out = bands_of(1, ids);
  const TCRay along(TCVector(-1400.0, 0.0, 0.0), TCVector(1.0, 0.0, 0.0));
  double T = 0.0;
  slab.volume->cutoff = 1e300;
  EXPECT_EQ(slab.volume->integrate_ray(along, out, nullptr, 2498.5, 0, nullptr, 0, &T), 1);
  EXPECT_NEAR(T, std::exp(-0.012 * 0.5 * 2498.5), 1e-12);
}

TEST(VolumeObjectDeathTest, ARayOfMoreThan2500SamplesEndsTheRun) {
  Two_band_slab slab(1.0, 0.0, 0.0001, 3000, 1.0);
  const int ids[1] = {1};
  TCSpectrum out = bands_of(1, ids);
  const TCRay along(TCVector(-1400.0, 0.0, 0.0), TCVector(1.0, 0.0, 0.0));
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        slab.volume->integrate_ray(along, out, nullptr, 2499.5, 0, nullptr, 0);
        std::exit(0);
      },
      ::testing::ExitedWithCode(1), "^MAX_INTEGRAND not large enough \n$");
}

TEST(VolumeObject, TheMarchStopsOnceTheFirstBandsDepthPassesTheCutoff) {
  // Cutoff -ln 0.5 = 0.693 in band 0 (e = 0.012, rho 0.5): e tau passes it
  // after 115.5 m. The 300 m path takes floor(300 / 5) + 2 = 62 samples,
  // 300 / 61 m apart, so the walk stops at sample 24 (118.03 m), the first
  // past it, and the sum covers that stretch alone.
  Two_band_slab slab(1.0, 0.0, 0.5, 61, 5.0);
  slab.volume->sun_direction = TCVector(0.0, 0.0, 1.0);
  slab.volume->make_extinction_field();
  const int ids[1] = {1};
  TCSpectrum out = bands_of(1, ids);
  const TCRay along(TCVector(-160.0, 0.0, 0.0), TCVector(1.0, 0.0, 0.0));
  double T = 0.0;
  slab.volume->integrate_ray(along, out, nullptr, 1e8, 0, nullptr, 0, &T);
  const double stop = 24.0 * 300.0 / 61.0;
  EXPECT_NEAR(T, std::exp(-0.012 * 0.5 * stop), 1e-12);
  // At z = 0 the sun's path is 10 m: L / E = b P exp(-x rho 10) (1 - exp(-e rho t)) / e.
  const double expected = 0.01 * isotropic * std::exp(-0.012 * 0.5 * 10.0) *
                          (1.0 - std::exp(-0.012 * 0.5 * stop)) / 0.012;
  EXPECT_NEAR(out.radiance_in_band[0] / expected, 1.0, 1e-4);
}

TEST(VolumeObject, SingleRayRadianceAddsTheTransmittedBackground) {
  Two_band_slab slab;
  const int ids[2] = {1, 2};
  TCSpectrum bare = bands_of(2, ids), lit = bands_of(2, ids);
  double T[2];
  slab.volume->integrate_ray(straight_down, bare, nullptr, 1e8, 0, nullptr, 0, T);
  lit.radiance_in_band[0] = 2.0;
  lit.radiance_in_band[1] = 4.0;
  slab.volume->radiance(straight_down, lit);
  EXPECT_NEAR(lit.radiance_in_band[0], bare.radiance_in_band[0] + T[0] * 2.0, 1e-15);
  EXPECT_NEAR(lit.radiance_in_band[1], bare.radiance_in_band[1] + T[1] * 4.0, 1e-15);
}

TEST(VolumeObject, LightAlongALineIsDimmedByTheSunsExtinction) {
  Two_band_slab slab;
  const int ids[2] = {1, 2};
  TCSpectrum through = bands_of(2, ids);
  through.radiance_in_band[0] = through.radiance_in_band[1] = 1.0;
  slab.volume->radiance_from(-1, straight_down, through);
  EXPECT_NEAR(through.radiance_in_band[0], std::exp(-0.012 * 0.5 * 20.0), 1e-12);
  EXPECT_NEAR(through.radiance_in_band[1], std::exp(-0.03 * 0.5 * 20.0), 1e-12);
}

TEST(VolumeObject, LinearDensityUnderAnOverheadSunGivesTheExactColumn) {
  Two_band_slab slab;
  // rho = 1 + 0.1 k on planes k = 0..4, 5 m apart: the column from plane k
  // up is the trapezoid of a linear profile, exact.
  for (int k = 0; k < 5; k++)
    for (int j = 0; j < 11; j++)
      for (int i = 0; i < 11; i++) slab.volume->density[i + 11 * (j + 11 * k)] = 1.0 + 0.1 * k;
  slab.volume->make_extinction_field();
  for (int k = 0; k < 5; k++) {
    const double z0 = 5.0 * k, top = 20.0;
    // integral of 1 + 0.1 z / 5 from z0 to 20.
    const double expected = (top - z0) + 0.01 * (top * top - z0 * z0);
    EXPECT_NEAR(slab.volume->column[3 + 11 * (4 + 11 * k)], expected, 1e-12) << k;
  }
}

TEST(VolumeObjectDeathTest, APhaseTableOfOtherThan181AnglesIsRefused) {
  TCVolume_Object_class record;
  const double zero = 0.0;
  fill_volume_record(record, 2, 2, 2, 1.0, 1.0, 1.0, 1, &zero, &zero, &zero, 0.0);
  record.allocate_arrays(1, 180);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        Lattice_test_volume volume(record);
        std::exit(0);
      },
      ::testing::ExitedWithCode(1),
      "^only 181 phase function angles currently supported by api \n$");
}

TEST(VolumeObject, TheEntryReportedIsWhereTheDensityBegins) {
  Two_band_slab slab;
  // Empty for x < 0 (planes i < 5 of 11, 10 m apart, x from -50 to 50).
  for (int k = 0; k < 5; k++)
    for (int j = 0; j < 11; j++)
      for (int i = 0; i < 5; i++) slab.volume->density[i + 11 * (j + 11 * k)] = 0.0;
  slab.volume->make_extinction_field();
  const int ids[1] = {1};
  TCSpectrum out = bands_of(1, ids);
  const TCRay along(TCVector(-60.0, 0.0, 0.0), TCVector(1.0, 0.0, 0.0));
  double entry = 0.0, exit = 0.0;
  ASSERT_EQ(
      slab.volume->integrate_ray(along, out, nullptr, 1e8, 0, nullptr, 0, nullptr, &entry, &exit),
      1);
  // 12 samples over the 100 m from t = 10: sample 4 (x = -13.6) is the
  // last empty one, sample 5 (x = -4.5) the first with density.
  EXPECT_NEAR(entry, 10.0 + 4 * 100.0 / 11, 1e-9);
  EXPECT_NEAR(exit, 110.0, 1e-9);
}
