// The round-base sky and sunlight against a brute-force single-scattering
// quadrature (single_scattering_reference.py, run by
// single_scattering_fixture.py into data/atmosphere/single_scattering.txt).

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Solid_box_input.h"
#include "TCAir.h"
#include "TCAir_input.h"
#include "TCBand.h"
#include "TCConstants.h"
#include "TCObject_list.h"
#include "TCSolid_Box.h"
#include "TCStar.h"
#include "TCStar_input.h"
#include "TCView.h"
#include "stream_capture.h"

namespace {

const double infinity = 99999999.0;
const double degrees = 0.017453292519444445;

struct Fixture_line {
  std::string air;
  std::vector<double> values;
};

// The fixture's lines of one kind ("sky" or "sun").
std::vector<Fixture_line> fixture(const std::string& tag) {
  std::vector<Fixture_line> lines;
  std::ifstream in(TC_TEST_DATA_DIR "/atmosphere/single_scattering.txt");
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string first;
    Fixture_line entry;
    if (!(words >> first) || first != tag || !(words >> entry.air)) continue;
    std::string word;
    while (words >> word) entry.values.push_back(word == "inf" ? infinity : std::stod(word));
    lines.push_back(entry);
  }
  return lines;
}

// Three bands, a sun of 1.8, 1.8 and 1.5 at the fixture's elevation and
// azimuth (degrees, azimuth from x towards y), and the named air file.
class Reference_scene {
 public:
  Reference_scene(const std::string& air_name, double sun_elevation, double sun_azimuth)
      : air(nullptr) {
    TCBand bands[3];
    const double centres[3] = {0.45, 0.55, 0.65};
    for (int i = 0; i < 3; i++) {
      bands[i].band_id = i + 1;
      bands[i].center_wavelength = centres[i];
      bands[i].width = 0.1;
    }
    list.set_bands(3, bands);

    TCStar_input sun_input;
    TCSpectrum irradiance(3);
    const double values[3] = {1.8, 1.8, 1.5};
    for (int i = 0; i < 3; i++) {
      irradiance.band_id[i] = i + 1;
      irradiance.radiance_in_band[i] = values[i];
    }
    sun_input.irradiance = irradiance;
    sun_input.number_of_bands = 3;
    list.sun = new TCStar(sun_input);
    // The sun's own angles: zenith pi/2 + elevation, azimuth turned by pi.
    list.sun->set_angles(1.5707963267948966 + sun_elevation * degrees,
                         sun_azimuth * degrees + 3.141592653589793);

    TCAir_input input;
    const std::string path = TC_TEST_DATA_DIR "/atmosphere/single_scattering/" + air_name + ".air";
    input.object_id = 0;
    Stream_capture quiet(std::cout);
    if (!input.read_file(path.c_str())) return;
    air = new TCAir(input, &list);
    list.add_runtime_object(air);
    air->set_sun_values();
  }

  TCObject_list list;
  TCAir* air;
};

TCSpectrum three_bands() {
  TCSpectrum out(3);
  for (int i = 0; i < 3; i++) out.band_id[i] = i + 1;
  return out;
}

}  // namespace

// Over a round base the sky's path radiance stays within 3% of the
// single-scattering quadrature in every band, for clean, dirty and hazy air,
// level, raised and grazing views, towards, across and away from a sun at 45
// and at 3 degrees.
TEST(AirSingleScattering, SkyEveryBandWithinThreePercentOfTheQuadrature) {
  const std::vector<Fixture_line> lines = fixture("sky");
  ASSERT_EQ(lines.size(), 3u * 2u * 2u * (4u * 3u + 2u));
  double worst = 0.0;
  for (const Fixture_line& line : lines) {
    const std::vector<double>& v = line.values;
    ASSERT_EQ(v.size(), 15u);
    Reference_scene scene(line.air, v[0], v[1]);
    ASSERT_NE(scene.air, nullptr);
    const TCRay ray(TCVector(v[2], v[3], v[4]), TCVector(v[5], v[6], v[7]));
    TCSpectrum molecular = three_bands();
    TCSpectrum aerosol = three_bands();
    scene.air->path_radiance(ray, molecular, aerosol, 0.0, v[8]);
    scene.air->scatter_phase(ray, molecular, aerosol);
    for (int b = 0; b < 3; b++) {
      const double want = v[9 + b];
      const double got = molecular.radiance_in_band[b];
      const double error = std::fabs(got - want) / want;
      if (error > worst) worst = error;
      EXPECT_LT(error, 0.03) << line.air << " sun " << v[0] << " from z " << v[4] << " along "
                             << v[5] << " " << v[6] << " " << v[7] << " to " << v[8] << " band "
                             << b + 1 << ": " << got << " against " << want;
    }
  }
  RecordProperty("worst_relative_error", std::to_string(worst));
}

// The transmission of the same paths, compared as optical depths.
TEST(AirSingleScattering, PathOpticalDepthWithinOnePercentOfTheQuadrature) {
  const std::vector<Fixture_line> lines = fixture("sky");
  ASSERT_FALSE(lines.empty());
  for (const Fixture_line& line : lines) {
    const std::vector<double>& v = line.values;
    Reference_scene scene(line.air, v[0], v[1]);
    ASSERT_NE(scene.air, nullptr);
    const TCRay ray(TCVector(v[2], v[3], v[4]), TCVector(v[5], v[6], v[7]));
    TCSpectrum transmission = three_bands();
    scene.air->path_transmission(ray, transmission, 0.0, v[8]);
    for (int b = 0; b < 3; b++) {
      const double want = -std::log(v[12 + b]);
      const double got = -std::log(transmission.radiance_in_band[b]);
      EXPECT_NEAR(got, want, 0.01 * want + 2e-4)
          << line.air << " sun " << v[0] << " from z " << v[4] << " along " << v[5] << " " << v[6]
          << " " << v[7] << " to " << v[8] << " band " << b + 1;
    }
  }
}

// On paths of 10 m to 1 km the sky is as close, while the optical depth
// carries the error of the Gaussian table: a difference of two values
// interpolated in one cell of 0.025 takes the cell's chord for the slope.
// Over these paths the depth is off by up to 4.2% of itself (2 degrees up
// through haze), 0.0094 at most in absolute depth.
const double short_depth_tolerance = 0.05;

TEST(AirSingleScattering, ShortPathsKeepOnlyTheTablesErrorInTheDepth) {
  const std::vector<Fixture_line> lines = fixture("short");
  ASSERT_EQ(lines.size(), 3u * 3u * 3u);
  for (const Fixture_line& line : lines) {
    const std::vector<double>& v = line.values;
    ASSERT_EQ(v.size(), 15u);
    Reference_scene scene(line.air, v[0], v[1]);
    ASSERT_NE(scene.air, nullptr);
    const TCRay ray(TCVector(v[2], v[3], v[4]), TCVector(v[5], v[6], v[7]));
    TCSpectrum molecular = three_bands();
    TCSpectrum aerosol = three_bands();
    scene.air->path_radiance(ray, molecular, aerosol, 0.0, v[8]);
    scene.air->scatter_phase(ray, molecular, aerosol);
    TCSpectrum transmission = three_bands();
    scene.air->path_transmission(ray, transmission, 0.0, v[8]);
    for (int b = 0; b < 3; b++) {
      const double want_radiance = v[9 + b];
      EXPECT_NEAR(molecular.radiance_in_band[b], want_radiance, 0.03 * want_radiance)
          << line.air << " along " << v[7] << " to " << v[8] << " band " << b + 1;
      const double want = -std::log(v[12 + b]);
      const double got = -std::log(transmission.radiance_in_band[b]);
      EXPECT_NEAR(got, want, short_depth_tolerance * want)
          << line.air << " along " << v[7] << " to " << v[8] << " band " << b + 1;
    }
  }
}

// The sun's irradiance at a point is the quadrature's while the sun is up,
// and exactly 0 once the base hides it. Within 1%: with the sun 5 to 15
// degrees up the optical depth along its ray comes from the two-term tail of
// the Gaussian integral, which is short by up to 3 / (4 x^4) at x = 3.
const double sunlight_tolerance = 0.01;
TEST(AirSingleScattering, SunlightIsTheQuadraturesAboveTheHorizonAndZeroBelow) {
  const std::vector<Fixture_line> lines = fixture("sun");
  ASSERT_EQ(lines.size(), 3u * 5u * 2u);
  for (const Fixture_line& line : lines) {
    const std::vector<double>& v = line.values;
    ASSERT_EQ(v.size(), 8u);
    Reference_scene scene(line.air, v[0], v[1]);
    ASSERT_NE(scene.air, nullptr);
    TCSpectrum out = three_bands();
    scene.list.sun->irradiance_at(TCVector(v[2], v[3], v[4]), out, &scene.list, -1);
    for (int b = 0; b < 3; b++) {
      const double want = v[5 + b];
      const double got = out.radiance_in_band[b];
      if (want == 0.0) {
        EXPECT_EQ(got, 0.0) << line.air << " sun " << v[0] << " at z " << v[4] << " band " << b + 1;
      } else {
        EXPECT_NEAR(got, want, sunlight_tolerance * want)
            << line.air << " sun " << v[0] << " at z " << v[4] << " band " << b + 1;
      }
    }
  }
}

// A white wall facing the sun reads the sunlight on it: the quadrature's at
// 10 degrees, nothing at 5 and at 60 degrees below the horizon.
TEST(AirSingleScattering, WallFacingASetSunReadsZero) {
  for (const char* kind : {"clean", "dirty", "haze"}) {
    for (double elevation : {10.0, -5.0, -60.0}) {
      Reference_scene scene(kind, elevation, 0.0);
      ASSERT_NE(scene.air, nullptr);
      Solid_box_input input;
      input.length = TCVector(2.0, 2.0, 2.0);
      input.allocate_bands(3);
      for (int i = 0; i < 3; i++) {
        input.band_ids.band_id[i] = i + 1;
        input.band_ids.radiance_in_band[i] = 0.0;
        input.reflectivity[i] = 1.0;
        input.transmissivity[i] = 0.0;
      }
      TCSolid_Box* wall = new TCSolid_Box(input);
      wall->set_position(TCVector(0.0, 0.0, 10.0), 0.0, 0.0, 0.0);
      ASSERT_EQ(scene.list.add_runtime_object(wall), 1);
      scene.air->set_sun_values();

      // The face towards the sun, seen from the sun's side.
      TCSpectrum out = three_bands();
      TCView view;
      wall->surface_radiance(TCRay(TCVector(6.0, 0.2, 10.0), TCVector(-1.0, 0.0, 0.0)), out, view);
      const std::vector<Fixture_line> lines = fixture("sun");
      const Fixture_line* match = nullptr;
      for (const Fixture_line& line : lines)
        if (line.air == kind && line.values[0] == elevation && line.values[4] == 10.0)
          match = &line;
      ASSERT_NE(match, nullptr);
      for (int b = 0; b < 3; b++) {
        const double want = match->values[5 + b];
        if (elevation < 0.0) {
          EXPECT_EQ(out.radiance_in_band[b], 0.0) << kind << " " << elevation << " band " << b + 1;
        } else {
          EXPECT_NEAR(out.radiance_in_band[b], want, sunlight_tolerance * want)
              << kind << " " << elevation << " band " << b + 1;
        }
      }
    }
  }
}
