// The sun's glint against physics worked out apart from the code: the
// Cox-Munk glint radiance for a flat resolved facet, a numerical integral of
// the view-weighted slope density, and a Monte Carlo of Gaussian facets.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "TCOcean.h"
#include "TCVector.h"
#include "TCWave_spectrum.h"
#include "ocean_input.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

std::string glint_ocean() {
  return "Tidecast_data_file ocean 5 5\n"
         "n_points_x 16 1\nn_points_y 16 1\ndx 2\ndy 2\n"
         "spectrum_file: glint.spectrum\ngenerate_file:  yes\nrandom_seed 5\nend\n"
         "number_aux_oceans  0\nnumber_disturbances  0\n"
         "box_depth  20\nreference_time  0\nsurface_type:  flat\nmax_distance  1000\n"
         "doubling_distance  100\nvariable_wind:  no\nwind_direction:  0\nwind_velocity:  6\n"
         "ocean_spectrum_type:  phillips_smoothed\njerlov_water_type:  0\n"
         "external_exact:  no\nglitter:  yes\nwhitecaps: no\ntexture_maps:  no\n"
         "sunbeams:  no\nexclude_items:   no\nnumber_of_bands:  1\nband_ids:  1\n"
         "index_of_refraction:  1.34\na: 0.05\nb: 0.05\nc: 0.1\nk: 0.05\nrefl: 0.02\nend\n";
}

class GlintSea : public ::testing::Test {
 protected:
  void SetUp() override {
    put_file(folder.file("sea.ocean"), glint_ocean());
    Working_folder here(folder.file(""));
    Stream_capture quiet(std::cout);
    ASSERT_EQ(input.read_file("sea.ocean"), 1) << quiet.text();
    ocean = new TCOcean(input);
    ASSERT_EQ(ocean->construct(input), 1) << quiet.text();
    ASSERT_EQ(ocean->glitter_mode, 1);
  }
  void TearDown() override { delete ocean; }

  // Glint per unit irradiance for a sun at geometric zenith and azimuth.
  double glint(double zenith, double azimuth, const TCVector& view, double px, double py,
               double sigma) {
    ocean->sun_direction_local = TCVector(std::sin(zenith) * std::cos(azimuth),
                                          std::sin(zenith) * std::sin(azimuth), std::cos(zenith));
    ocean->ocean_field->slope_current = sigma;
    double out[1] = {-1.0};
    ocean->glitter_intensity(px, py, view, out, 1);
    return out[0];
  }

  Scratch_folder folder;
  ocean_input input;
  TCOcean* ocean = nullptr;
};

// Data lines of a fixture, comments left out.
std::vector<std::vector<double>> fixture_rows(const char* name) {
  std::vector<std::vector<double>> rows;
  std::ifstream in((std::string(TC_TEST_DATA_DIR) + "/ocean/" + name).c_str());
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    std::vector<double> row;
    double v = 0.0;
    while (fields >> v) row.push_back(v);
    rows.push_back(row);
  }
  return rows;
}

TEST_F(GlintSea, FlatFacetUnderAHighSunGivesTheCoxMunkGlint) {
  const std::vector<std::vector<double>> rows = fixture_rows("glint_cox_munk.txt");
  ASSERT_GE(rows.size(), 30u);
  for (const std::vector<double>& r : rows) {
    ASSERT_EQ(r.size(), 10u);
    const double got = glint(r[0], r[1], TCVector(r[2], r[3], r[4]), r[5], r[6], r[7]);
    // A few percent: the code reads Fresnel and the normal distribution
    // from tables.
    EXPECT_NEAR(got, r[9], 0.02 * r[9]) << "sun " << r[0] << " " << r[1] << " view " << r[2] << " "
                                        << r[3] << " " << r[4] << " sigma " << r[7];
  }
}

TEST_F(GlintSea, NormaliserMatchesTheIntegralOfTheViewWeightedDensity) {
  const std::vector<std::vector<double>> rows = fixture_rows("glint_normaliser.txt");
  ASSERT_GE(rows.size(), 280u);
  for (const std::vector<double>& r : rows) {
    const double T = r[0], pu = r[1], sigma = r[2];
    // The normal distribution is read at hundredths, without interpolation.
    const double tolerance = 0.0105 * sigma * (1.0 + T * pu) * 2.5066283 + 1e-12;
    EXPECT_NEAR(ocean->glitter_normaliser(T, pu, sigma), r[3], tolerance)
        << "T " << T << " pu " << pu << " sigma " << sigma;
  }
}

TEST_F(GlintSea, GlintAgreesWithAMonteCarloOfGaussianFacets) {
  const std::vector<std::vector<double>> rows = fixture_rows("glint_monte_carlo.txt");
  ASSERT_GE(rows.size(), 12u);
  for (const std::vector<double>& r : rows) {
    ASSERT_EQ(r.size(), 11u);
    const double got = glint(r[0], r[1], TCVector(r[2], r[3], r[4]), r[5], r[6], r[7]);
    // Three standard errors, the finite sun disc (0.2%) and the tables (1%).
    const double tolerance = 3.0 * r[10] + 0.012 * r[9];
    EXPECT_NEAR(got, r[9], tolerance)
        << "sun " << r[0] << " " << r[1] << " view " << r[2] << " " << r[3] << " " << r[4]
        << " slopes " << r[5] << " " << r[6] << " sigma " << r[7];
  }
}

}  // namespace
