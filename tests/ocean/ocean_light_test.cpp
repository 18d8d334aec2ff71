// The light of the water: the Fresnel table against the textbook equations,
// the radiance and reflection tables against an independent numpy model of
// their averaging over unresolved slopes, the table lookups and levels, and
// the guards of the glint.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "../objects/box_test_boxes.h"
#include "TCBand.h"
#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCObject_list.h"
#include "TCOcean.h"
#include "TCSgi_image.h"
#include "TCSolid_Box.h"
#include "TCStar.h"
#include "TCTexture_plane.h"
#include "TCVector.h"
#include "TCWave_spectrum.h"
#include "object_contour.h"
#include "ocean_input.h"
#include "ocean_test_records.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// A windless sea of one lattice with the given bands; coupling "yes" with
// averaged reflection keeps the reflection tables.
std::string light_ocean(const std::string& indices, int bands, const std::string& glitter_lines) {
  std::ostringstream ids, optics;
  for (int b = 0; b < bands; b++) ids << " " << b + 1;
  std::string five[5] = {"a:", "b:", "c:", "k:", "refl:"};
  for (int r = 0; r < 5; r++) {
    optics << five[r];
    for (int b = 0; b < bands; b++) optics << " 0.05";
    optics << "\n";
  }
  return "Tidecast_data_file ocean 5 5\n"
         "n_points_x 16 1\nn_points_y 16 1\ndx 2\ndy 2\n"
         "spectrum_file: light.spectrum\ngenerate_file:  yes\nrandom_seed 5\nend\n"
         "number_aux_oceans  0\nnumber_disturbances  0\n"
         "box_depth  20\nreference_time  0\nsurface_type:  flat\nmax_distance  1000\n"
         "doubling_distance  100\nvariable_wind:  no\nwind_direction:  0\nwind_velocity:  6\n"
         "ocean_spectrum_type:  phillips_smoothed\njerlov_water_type:  0\n"
         "external_exact:  yes\nmax_exact_distance:  400\nexact_sharpening_factor:  1\n"
         "include:  above\nreflection_method:  averaged\nshadow_method:  no\n" +
         glitter_lines +
         "whitecaps: no\ntexture_maps:  no\nsunbeams:  no\nexclude_items:   no\n"
         "number_of_bands:  " +
         std::to_string(bands) + "\nband_ids: " + ids.str() + "\nindex_of_refraction: " + indices +
         "\n" + optics.str() + "end\n";
}

class LightSea {
 public:
  explicit LightSea(const std::string& text, int build_now = 1) {
    put_file(folder.file("sea.ocean"), text);
    if (build_now) build();
  }
  // Reads and builds the sea of the folder's sea.ocean.
  void build() {
    Working_folder here(folder.file(""));
    Stream_capture quiet(std::cout);
    read = input.read_file("sea.ocean");
    if (read) {
      ocean = new TCOcean(input);
      built = ocean->construct(input);
    }
    printed = quiet.text();
  }
  ~LightSea() { delete ocean; }
  Scratch_folder folder;
  ocean_input input;
  TCOcean* ocean = nullptr;
  int read = 0;
  int built = 0;
  std::string printed;
};

TEST(OceanLight, FresnelTableMatchesTheTextbookAtEveryNodeFromBothSides) {
  LightSea sea(light_ocean("1.34 1.5", 2, "glitter:  yes\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  std::ifstream in(TC_TEST_DATA_DIR "/ocean/fresnel_nodes.txt");
  ASSERT_TRUE(in.good());
  std::string line;
  int compared = 0;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream fields(line);
    double n = 0.0, c = 0.0, r = 0.0;
    int i = 0;
    fields >> n >> i >> c >> r;
    const int band = n < 1.4 ? 0 : 1;
    ASSERT_EQ(sea.ocean->fresnel_axis_n, 201);
    // The index is kept in single precision (1.34 within 3e-8), which moves
    // the steep values near the critical angle by up to about 1e-6.
    EXPECT_NEAR(sea.ocean->fresnel_table[band * 201 + i], r, 2e-6) << "n " << n << " c " << c;
    compared++;
  }
  EXPECT_EQ(compared, 402);
}

TEST(OceanLight, NormalIncidenceReflectanceOfWater) {
  const double expected = (0.34 / 2.34) * (0.34 / 2.34);
  EXPECT_NEAR(TCOcean::fresnel_reflectance(3.1415926535, 1.34), expected, 1e-15);
  EXPECT_NEAR(TCOcean::fresnel_reflectance(0.0, 1.0 / 1.34), expected, 1e-15);
  // Beyond the critical angle the light stays in the water.
  EXPECT_EQ(TCOcean::fresnel_reflectance(1.2, 1.0 / 1.34), 1.0);
}

TEST(OceanLight, FresnelLookupIsLinearAndClampedAtBothEnds) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  yes\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  const double* table = sea.ocean->fresnel_table;
  double out[1];
  sea.ocean->fresnel(-1.5, out);
  EXPECT_DOUBLE_EQ(out[0], table[0]);
  sea.ocean->fresnel(2.0, out);
  EXPECT_DOUBLE_EQ(out[0], table[200]);
  sea.ocean->fresnel(-0.955, out);  // half way between nodes 4 and 5
  EXPECT_NEAR(out[0], 0.5 * (table[4] + table[5]), 1e-12);
}

// One case of the fixture: the tables filled from its sky and widths.
struct Table_case {
  int side;
  double n, upwelling, g, resolved;
  std::vector<double> sky;
  struct Cell {
    int t, s, m;
    double radiance, reflection;
  };
  std::vector<Cell> cells;
};

std::vector<Table_case> read_table_cases() {
  std::vector<Table_case> cases;
  std::ifstream in(TC_TEST_DATA_DIR "/ocean/facet_table_cells.txt");
  std::string word;
  while (in >> word) {
    if (word[0] == '#') {
      std::string rest;
      std::getline(in, rest);
      continue;
    }
    if (word != "case") break;
    Table_case c;
    in >> c.side >> c.n >> c.upwelling >> c.g >> c.resolved >> word;
    c.sky.resize(201);
    for (double& v : c.sky) in >> v;
    int count = 0;
    in >> word >> count;
    for (int k = 0; k < count; k++) {
      Table_case::Cell cell;
      in >> cell.t >> cell.s >> cell.m >> cell.radiance >> cell.reflection;
      c.cells.push_back(cell);
    }
    cases.push_back(c);
  }
  return cases;
}

TEST(OceanLight, TableCellsMatchTheNumpyModelOnBothSidesAndLevels) {
  const std::vector<Table_case> cases = read_table_cases();
  ASSERT_EQ(cases.size(), 6u);
  int checked = 0;
  for (const Table_case& c : cases) {
    std::ostringstream index;
    index.precision(17);
    index << c.n;
    LightSea sea(light_ocean(index.str(), 1, "glitter:  yes\n"));
    ASSERT_EQ(sea.built, 1) << sea.printed;
    TCOcean& ocean = *sea.ocean;
    ASSERT_EQ(ocean.keep_reflection_table, 1);
    ocean.ocean_field->slope_resolved = c.resolved;
    {
      Stream_capture quiet(std::cout);
      ocean.update_light();
    }
    for (int i = 0; i < 201; i++) ocean.external_radiance_mean[i] = c.sky[i];
    ocean.upwelling[0] = c.upwelling;
    ocean.ocean_field->slope_unresolved = c.g;
    ocean.table_level = 1;
    std::string told;
    {
      Stream_capture out(std::cout);
      ocean.make_tables(c.side);
      told = out.text();
    }
    EXPECT_EQ(told, "Calculating Radiance Table 1\nCalculating Reflection Table \n");
    const int which = c.side == 1 ? 0 : 1;
    const int m_count = which == 0 ? 9 : 36;
    const long level_cells = 16L * 15 * m_count;
    const float* radiance = ocean.radiance_table[which] + level_cells;
    const float* reflection = ocean.reflection_table[which] + level_cells;
    for (const Table_case::Cell& cell : c.cells) {
      const long at = (static_cast<long>(cell.t) * 15 + cell.s) * m_count + cell.m;
      EXPECT_NEAR(radiance[at], cell.radiance, 2e-6 + 2e-6 * std::fabs(cell.radiance))
          << "side " << c.side << " g " << c.g << " cell " << cell.t << " " << cell.s << " "
          << cell.m;
      EXPECT_NEAR(reflection[at], cell.reflection, 2e-6 + 2e-6 * std::fabs(cell.reflection))
          << "side " << c.side << " g " << c.g << " cell " << cell.t << " " << cell.s << " "
          << cell.m;
      checked++;
    }
  }
  EXPECT_EQ(checked, 240);
}

TEST(OceanLight, TablesAreMadeOncePerLevelAndSide) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  yes\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  sea.ocean->table_level = 0;
  Stream_capture out(std::cout);
  sea.ocean->make_tables(1);
  sea.ocean->make_tables(1);
  sea.ocean->make_tables(-1);
  EXPECT_EQ(out.text(),
            "Calculating Radiance Table 0\nCalculating Reflection Table \n"
            "Calculating Radiance Table 0\nCalculating Reflection Table \n");
  EXPECT_EQ(sea.ocean->table_done[0][0], 1);
  EXPECT_EQ(sea.ocean->table_done[1][0], 1);
}

TEST(OceanLight, FlatResolvedFacetLooksUpAtTheTenthOfTheCosineAxis) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  yes\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCOcean& ocean = *sea.ocean;
  ocean.table_level = 0;
  {
    Stream_capture quiet(std::cout);
    ocean.make_tables(1);
  }
  // s = 0: lo equals hi, so t is 0.1, the first node; m on its third node.
  const double m = 0.005 + 2 * (0.99 / 8);
  double out[1];
  ocean.radiance_lookup(0.3, m, 0.0, out, 1);
  const float* table = ocean.radiance_table[0];
  EXPECT_NEAR(out[0], table[(0 * 15 + 0) * 9 + 2], 1e-7);
  // Outside every axis the nearest corner stands.
  ocean.radiance_lookup(5.0, 2.0, 1e9, out, 1);
  EXPECT_NEAR(out[0], table[(15 * 15 + 14) * 9 + 8], 1e-7);
}

TEST(OceanLight, FootprintLevels) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  yes\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCOcean& ocean = *sea.ocean;
  ASSERT_GE(ocean.n_levels, 3);
  EXPECT_EQ(ocean.level_for(0.0), 0);
  EXPECT_EQ(ocean.level_for(-2.0), 0);
  EXPECT_EQ(ocean.level_for(1.0), 1);
  EXPECT_EQ(ocean.level_for(1.9), 1);
  EXPECT_EQ(ocean.level_for(2.0), 2);
  EXPECT_EQ(ocean.level_for(3.0), 2);
  EXPECT_EQ(ocean.level_for(1e9), 0);  // beyond the last level
}

TEST(OceanLight, NoGlintWithTheSunBelowTheHorizon) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  yes\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCOcean& ocean = *sea.ocean;
  ocean.sun_direction_local = TCVector(0.6, 0.0, -0.8);
  double out[1] = {7.0};
  for (int k = 0; k < 20; k++) {
    const double a = 0.3 * k;
    const TCVector ray(0.5 * std::cos(a), 0.5 * std::sin(a), -std::sqrt(0.75));
    ocean.glitter_intensity(0.01 * k, -0.02 * k, ray, out, 1);
    EXPECT_EQ(out[0], 0.0);
    ocean.glitter_intensity(0.01 * k, -0.02 * k, ray, out, -1);
    EXPECT_EQ(out[0], 0.0);
  }
}

TEST(OceanLight, PlainGlitterHasNoThreshold) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  yes\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  EXPECT_EQ(sea.ocean->glitter_threshold, 0.0);
}

TEST(OceanLight, LevelViewGivesFiniteGlint) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  yes\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCOcean& ocean = *sea.ocean;
  ocean.sun_direction_local = TCVector(-0.5, 0.0, std::sqrt(0.75));
  double out[1] = {0.0};
  // mv = 0: every guarded constant is in play.
  ocean.glitter_intensity(0.0, 0.0, TCVector(1.0, 0.0, 0.0), out, 1);
  EXPECT_TRUE(std::isfinite(out[0]));
  EXPECT_GE(out[0], 0.0);
  ocean.glitter_intensity(0.1, 0.05, TCVector(0.0, 1.0, 0.0), out, -1);
  EXPECT_TRUE(std::isfinite(out[0]));
  ocean.glitter_intensity(0.0, 0.0, TCVector(0.0, 0.0, -1.0), out, 1);
  EXPECT_TRUE(std::isfinite(out[0]));
}

TEST(OceanLight, SaturationBandUnderThresholdScalesEveryBand) {
  const std::string glitter =
      "glitter:  enhanced\nsharpening_type:   no\nsharpening_factor:  1\n"
      "glitter_threshold:  0\nsaturation_type:   yes\n";
  std::string text = light_ocean("1.34 1.34", 2, glitter);
  text = replaced(text, "refl: 0.05 0.05\n",
                  "refl: 0.05 0.05\nsaturation_band:  1\nsaturation_threshold:  1e30\n"
                  "sub_saturation_scale:  0.5 0.25\nsaturation_values:  100 200\n");
  LightSea sea(text);
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCOcean& ocean = *sea.ocean;
  ASSERT_EQ(ocean.saturated, 1);
  ocean.sun_direction_local = TCVector(0.0, 0.0, 1.0);
  ocean.sun_irradiance[0] = ocean.sun_irradiance[1] = 1000.0f;
  ocean.table_level = 0;
  // Looking straight down on a flat facet under a high sun: a bright glint.
  double plain[2];
  ocean.glitter_intensity(0.0, 0.0, TCVector(0.0, 0.0, -1.0), plain, 1);
  ASSERT_GT(plain[0], 0.0);
  TCSpectrum spectrum(2);
  std::vector<float> mattes(2 * 40, 0.0f);
  {
    Stream_capture quiet(std::cout);
    ocean.surface_radiance(TCRay(TCVector(0, 0, 10), TCVector(0, 0, -1)), TCVector(0, 0, 0),
                           TCVector(0, 0, 1), spectrum, 1, mattes.data(), 1.0);
  }
  EXPECT_NEAR(mattes[2 * 12 + 0], plain[0] * 1000.0 * 0.5,
              1e-6 * plain[0] * 1000.0);  // mattes are floats
  EXPECT_NEAR(mattes[2 * 12 + 1], plain[1] * 1000.0 * 0.25, 1e-6 * plain[1] * 1000.0);
  // Under the threshold no fixed colour.
  mattes[2 * 15 + 0] = mattes[2 * 15 + 1] = -1.0f;
  {
    Stream_capture quiet(std::cout);
    ocean.surface_radiance(TCRay(TCVector(0, 0, 10), TCVector(0, 0, -1)), TCVector(0, 0, 0),
                           TCVector(0, 0, 1), spectrum, 1, mattes.data(), 1.0);
  }
  EXPECT_EQ(mattes[2 * 15 + 0], 0.0f);
  EXPECT_EQ(mattes[2 * 15 + 1], 0.0f);
  // Over the threshold the fixed colour.
  ocean.saturation_threshold = 0.0;
  {
    Stream_capture quiet(std::cout);
    ocean.surface_radiance(TCRay(TCVector(0, 0, 10), TCVector(0, 0, -1)), TCVector(0, 0, 0),
                           TCVector(0, 0, 1), spectrum, 1, mattes.data(), 1.0);
  }
  EXPECT_EQ(mattes[2 * 12 + 0], 100.0f);
  EXPECT_EQ(mattes[2 * 12 + 1], 200.0f);
  // The colour itself goes to the record's unnamed place, code 15.
  EXPECT_EQ(mattes[2 * 15 + 0], 100.0f);
  EXPECT_EQ(mattes[2 * 15 + 1], 200.0f);
}

}  // namespace

namespace {

// A box standing beside the sea, the only thing a mirror ray from the
// water can meet.
TEST(OceanLight, ExactPathShowsTheBoxTheMirrorRayMeets) {
  LightSea sea(
      replaced(light_ocean("1.34", 1, "glitter:  no\n"), "wind_velocity:  6", "wind_velocity:  0"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCObject_list list;
  TCBand band;
  band.band_id = 1;
  band.center_wavelength = 0.55;
  band.width = 0.1;
  ASSERT_EQ(list.set_bands(1, &band), 1);
  TCOcean* ocean = sea.ocean;
  sea.ocean = nullptr;  // the list owns it now
  ASSERT_EQ(list.add_runtime_object(ocean), 1);
  // Its -y face at y = 19 from x -20 to 20 and z 0 to 40.
  TCSolid_Box* wall = new_solid_box(TCVector(40.0, 2.0, 40.0), 10.0);
  wall->set_position(TCVector(0.0, 20.0, 20.0), 0.0, 0.0, 0.0);
  ASSERT_EQ(list.add_runtime_object(wall), 1);
  {
    Working_folder here(sea.folder.file(""));
    Stream_capture quiet(std::cout);
    ocean->update_to_time(0.0);
    ocean->prepare_frame();
  }
  // From (0, -10, 10) to the water at the origin: the mirror ray rises at
  // 45 degrees and meets the face at y = 19, z = 19.
  const TCVector from(0.0, -10.0, 10.0);
  const TCVector down = TCVector(0.0, 10.0, -10.0) * (1.0 / std::sqrt(200.0));
  TCVector point;
  ocean->point_to_box(TCVector(0.0, 0.0, 0.0), point);
  TCSpectrum spectrum(1);
  std::vector<float> mattes(40, 0.0f);
  {
    Stream_capture quiet(std::cout);
    ocean->surface_radiance(TCRay(from, down), point, TCVector(0.0, 0.0, 1.0), spectrum, 1,
                            mattes.data(), 0.01);
  }
  EXPECT_NEAR(mattes[5], 10.0, 1e-4);  // what the water reflects: the box's colour
  EXPECT_EQ(mattes[7], 0.0f);          // no matte names the box yet
  // A camera's matte naming the box as reflected object 0: the share of the
  // mirror cone it fills, all of it here.
  TCMatte_fields fields;
  fields.reflected_objects[0] = wall->get_object_id();
  ocean->matte_fields = &fields;
  {
    Stream_capture quiet(std::cout);
    ocean->surface_radiance(TCRay(from, down), point, TCVector(0.0, 0.0, 1.0), spectrum, 1,
                            mattes.data(), 0.01);
  }
  EXPECT_NEAR(mattes[7], 1.0, 1e-6);
  // Averaged reflection is kept: the reflectance comes from its table, at
  // 45 degrees on a facet with no resolved slope.
  double r[1];
  ocean->reflection_lookup(std::sqrt(0.5), std::sqrt(0.5), 0.0, r, 1);
  EXPECT_NEAR(mattes[3], r[0], 1e-6);
  double flat[1];
  ocean->fresnel(-std::sqrt(0.5), flat);
  EXPECT_NEAR(r[0], flat[0], 0.1 * flat[0]);
  // The total holds the box's light times the reflectance on top of the
  // tables' sky and water.
  EXPECT_NEAR(mattes[0], r[0] * 10.0 + mattes[4], 1e-4);
  // A camera beyond max_exact_distance (400 m) in y alone, looking at the
  // same point with the box in the mirror: the tables alone.
  const TCVector far_camera(0.0, -401.0, 401.0);
  TCVector far_down = TCVector(0.0, 0.0, 0.0) - far_camera;
  far_down = far_down * (1.0 / std::sqrt(far_down.dot(far_down)));
  {
    Stream_capture quiet(std::cout);
    ocean->surface_radiance(TCRay(far_camera, far_down), point, TCVector(0.0, 0.0, 1.0), spectrum,
                            1, mattes.data(), 0.01);
  }
  EXPECT_EQ(mattes[5], 0.0f);
  EXPECT_EQ(mattes[0], mattes[4]);
  // Within it in both axes the exact path runs again.
  const TCVector near_camera(0.0, -399.0, 399.0);
  TCVector near_down = TCVector(0.0, 0.0, 0.0) - near_camera;
  near_down = near_down * (1.0 / std::sqrt(near_down.dot(near_down)));
  {
    Stream_capture quiet(std::cout);
    ocean->surface_radiance(TCRay(near_camera, near_down), point, TCVector(0.0, 0.0, 1.0), spectrum,
                            1, mattes.data(), 0.01);
  }
  EXPECT_NEAR(mattes[5], 10.0, 1e-4);
  // Looking the other way the mirror ray misses the box.
  const TCVector away = TCVector(0.0, -10.0, -10.0) * (1.0 / std::sqrt(200.0));
  {
    Stream_capture quiet(std::cout);
    ocean->surface_radiance(TCRay(TCVector(0.0, 10.0, 10.0), away), point, TCVector(0.0, 0.0, 1.0),
                            spectrum, 1, mattes.data(), 0.01);
  }
  EXPECT_EQ(mattes[5], 0.0f);
  EXPECT_EQ(mattes[7], 0.0f);
  ocean->matte_fields = nullptr;
}

}  // namespace

namespace {

// A sea with a wall along the x axis: water at y > 0 lies behind it.
std::string walled_ocean(const std::string& interior) {
  return replaced(light_ocean("1.34", 1, "glitter:  no\n"), "number_disturbances  0\n",
                  "number_disturbances  1\nrender_disturbances_interior:  " + interior +
                      "\ndisturbance_type:  reflect_wall\nposition_x 0\nposition_y 0\nangle 0\n"
                      "end\n");
}

// Radiance at a box-frame point with a normal, by the tables.
double water_light(TCOcean& ocean, double y, const TCVector& normal) {
  TCSpectrum spectrum(1);
  Stream_capture quiet(std::cout);
  ocean.surface_radiance(
      TCRay(TCVector(0.0, y - 10.0, 10.0), TCVector(0.0, 1.0, -1.0) * (1.0 / std::sqrt(2.0))),
      TCVector(0.0, y, ocean.ocean_grid->z_offset), normal, spectrum, 1, nullptr, 0.5);
  return spectrum.radiance_in_band[0];
}

TEST(OceanLight, WaterBehindAWallFollowsTheInteriorWord) {
  const TCVector tilted = TCVector(0.2, -0.3, 1.0) * (1.0 / std::sqrt(1.13));
  const TCVector flat(0.0, 0.0, 1.0);
  for (const char* word : {"black", "flat", "natural"}) {
    LightSea sea(walled_ocean(word));
    ASSERT_EQ(sea.built, 1) << sea.printed;
    TCOcean& ocean = *sea.ocean;
    ASSERT_EQ(ocean.n_walls, 1);
    ocean.external_exact = 0;  // tables alone: the light does not depend on where
    for (int i = 0; i < 201; i++) ocean.external_radiance_mean[i] = 1.0 + i * 0.01;
    ocean.upwelling[0] = 0.05;
    const double front_tilted = water_light(ocean, -5.0, tilted);
    const double front_flat = water_light(ocean, -5.0, flat);
    ASSERT_NE(front_tilted, front_flat);
    const double behind = water_light(ocean, 5.0, tilted);
    if (std::string(word) == "black") {
      EXPECT_EQ(behind, 0.0);
    } else if (std::string(word) == "flat") {
      EXPECT_EQ(behind, front_flat);
    } else {
      EXPECT_EQ(behind, front_tilted);
    }
  }
}

}  // namespace

namespace {

// Exact glint asks the scene how much sun reaches the water: a box
// overhead takes it all.
TEST(OceanLight, ExactGlintTakesTheSunThatReachesTheWater) {
  for (int shaded = 0; shaded < 2; shaded++) {
    LightSea sea(replaced(light_ocean("1.34", 1, "glitter:  exact\n"), "wind_velocity:  6",
                          "wind_velocity:  3"));
    ASSERT_EQ(sea.built, 1) << sea.printed;
    ASSERT_EQ(sea.ocean->glitter_mode, 202);
    TCObject_list list;
    TCBand band;
    band.band_id = 1;
    band.center_wavelength = 0.55;
    band.width = 0.1;
    ASSERT_EQ(list.set_bands(1, &band), 1);
    TCOcean* ocean = sea.ocean;
    sea.ocean = nullptr;
    ASSERT_EQ(list.add_runtime_object(ocean), 1);
    list.sun = new TCStar();
    list.sun->irradiance.band_id[0] = 1;
    list.sun->irradiance.radiance_in_band[0] = 800.0;
    list.sun->set_angles(3.1415926535, 0.0);  // overhead
    if (shaded) {
      TCSolid_Box* roof = new_solid_box(TCVector(10.0, 10.0, 1.0), 0.0);
      roof->set_position(TCVector(0.0, 0.0, 30.0), 0.0, 0.0, 0.0);
      ASSERT_EQ(list.add_runtime_object(roof), 1);
    }
    {
      Working_folder here(sea.folder.file(""));
      Stream_capture quiet(std::cout);
      ocean->update_to_time(0.0);
      ocean->prepare_frame();
    }
    ASSERT_GT(ocean->sun_direction_local.z, 0.99);
    ocean->external_exact = 0;
    TCVector point;
    ocean->point_to_box(TCVector(0.0, 0.0, 0.0), point);
    TCSpectrum spectrum(1);
    std::vector<float> mattes(40, 0.0f);
    const TCVector down = TCVector(0.01, 0.0, -1.0) * (1.0 / std::sqrt(1.0001));
    {
      Stream_capture quiet(std::cout);
      ocean->surface_radiance(TCRay(TCVector(-0.2, 0.0, 20.0), down), point,
                              TCVector(0.0, 0.0, 1.0), spectrum, 1, mattes.data(), 0.5);
    }
    double plain[1];
    ocean->glitter_intensity(0.0, 0.0, down, plain, 1);
    ASSERT_GT(plain[0], 1e-3);
    if (shaded) {
      EXPECT_EQ(mattes[12], 0.0f);
    } else {
      EXPECT_NEAR(mattes[12], plain[0] * 800.0, 1e-5 * plain[0] * 800.0);
    }
  }
}

}  // namespace

namespace {

// A sea with one 8 m square picture on it, drifting at 2 m/s along x from
// time 0, drawn above the water with the reflection flag given.
std::string painted_ocean(int reflection_flag) {
  const std::string block =
      "texture_maps:  yes\nTidecast_data_file texture 2 2\nsurface_type: ocean\n"
      "number_of_textures: 1\nCenter: 0 0\nOrientation: 0\nDimensions: 8 8\nMakePeridoic: 0\n"
      "AnimationFlag: 1\nV_x: 2 V_y: 0 t_o: 0\nNewPictureFlag: 0\nPictureFile: paint.rgb\n"
      "Priority: 1\nPicture_bands: 1\nimage_above: yes\nreflection_flag: " +
      std::to_string(reflection_flag) +
      "\nalpha_flag: 0\nmin_radiance 0\nmax_radiance: 255\nimage_below: no\nendTexture\n";
  return replaced(light_ocean("1.34", 1, "glitter:  no\n"), "texture_maps:  no\n", block);
}

TEST(OceanLight, TexturesOnTheWaterBlendByTheirMode) {
  for (int flag = 0; flag < 3; flag++) {
    std::vector<float> bytes(16, 100.0f);
    const int dims[2] = {4, 4};
    // The picture must be there before the sea is built.
    LightSea* sea = new LightSea(painted_ocean(flag), 0);
    ASSERT_EQ(rgb_open(sea->folder.file("paint.rgb").c_str(), dims, 1), 1);
    ASSERT_EQ(
        rgb_write_plane(sea->folder.file("paint.rgb").c_str(), 0, bytes.data(), dims, 0.0, 255.0),
        1);
    sea->build();
    ASSERT_EQ(sea->built, 1) << sea->printed;
    TCOcean& ocean = *sea->ocean;
    ASSERT_EQ(ocean.n_texture_planes, 1);
    for (int i = 0; i < 201; i++) ocean.external_radiance_mean[i] = 1.0 + i * 0.01;
    ocean.upwelling[0] = 0.05;
    ocean.external_exact = 0;
    ocean.update_textures(0.0, 1);
    const TCVector normal(0.0, 0.0, 1.0);
    const TCRay ray(TCVector(0.0, -10.0, 10.0), TCVector(0.0, 1.0, -1.0) * (1.0 / std::sqrt(2.0)));
    TCSpectrum spectrum(1);
    std::vector<float> mattes(40, 0.0f);
    double colour[1];
    ocean.texture_planes[0]->sample_point(colour, 1.0, 1.0, 0.5, 1);
    ASSERT_GT(colour[0], 50.0);
    {
      Stream_capture quiet(std::cout);
      ocean.surface_radiance(ray, TCVector(1.0, 1.0, 0.0), normal, spectrum, 1, mattes.data(), 0.5);
    }
    const double total = mattes[0], added = mattes[17], R = mattes[3];
    const double before = total - added;
    ASSERT_GT(before, 0.0);
    double expected = 0.0;
    if (flag == 0) expected = colour[0];
    if (flag == 1) expected = R * before + colour[0];
    if (flag == 2) expected = R * before + (1.0 - R) * colour[0];
    EXPECT_NEAR(total, expected, 1e-4 * expected) << "reflection flag " << flag;
    EXPECT_NEAR(spectrum.radiance_in_band[0], total, 1e-4 * total);
    // Beyond the picture's edge, nothing of it.
    {
      Stream_capture quiet(std::cout);
      ocean.surface_radiance(ray, TCVector(5.0, 1.0, 0.0), normal, spectrum, 1, mattes.data(), 0.5);
    }
    EXPECT_EQ(mattes[17], 0.0f);
    // Five seconds on it has drifted 10 m along x and covers x = 10.
    ocean.update_textures(5.0, 2);
    {
      Stream_capture quiet(std::cout);
      ocean.surface_radiance(ray, TCVector(10.0, 1.0, 0.0), normal, spectrum, 1, mattes.data(),
                             0.5);
    }
    EXPECT_NE(mattes[17], 0.0f);
    {
      Stream_capture quiet(std::cout);
      ocean.surface_radiance(ray, TCVector(1.0, 1.0, 0.0), normal, spectrum, 1, mattes.data(), 0.5);
    }
    EXPECT_EQ(mattes[17], 0.0f);
    delete sea;
  }
}

}  // namespace

namespace {

TEST(OceanLight, ATextureTakesThePictureOfEachFrame) {
  std::string text = replaced(painted_ocean(0), "NewPictureFlag: 0\n",
                              "NewPictureFlag: 1\nBaseFileName: frames\n");
  LightSea sea(text, 0);
  const int dims[2] = {4, 4};
  const char* names[3] = {"paint.rgb", "frames.0001.rgb", "frames.0002.rgb"};
  const float values[3] = {100.0f, 150.0f, 200.0f};
  for (int k = 0; k < 3; k++) {
    std::vector<float> bytes(16, values[k]);
    ASSERT_EQ(rgb_open(sea.folder.file(names[k]).c_str(), dims, 1), 1);
    ASSERT_EQ(rgb_write_plane(sea.folder.file(names[k]).c_str(), 0, bytes.data(), dims, 0.0, 255.0),
              1);
  }
  sea.build();
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCOcean& ocean = *sea.ocean;
  Working_folder here(sea.folder.file(""));
  double colour[1];
  for (int frame = 1; frame <= 2; frame++) {
    Stream_capture quiet(std::cout);
    ocean.update_textures(0.0, frame);
    ocean.texture_planes[0]->sample_point(colour, 0.0, 0.0, 0.5, 1);
    EXPECT_NEAR(colour[0], values[frame], 1.0) << frame;
  }
  // No picture for frame 3: the last one stays, with a warning.
  Stream_capture out(std::cout);
  ocean.update_textures(0.0, 3);
  EXPECT_NE(out.text().find("Error updating texture\n"), std::string::npos) << out.text();
  ocean.texture_planes[0]->sample_point(colour, 0.0, 0.0, 0.5, 1);
  EXPECT_NEAR(colour[0], 200.0, 1.0);
}

}  // namespace

namespace {

TEST(OceanLight, HullMatteIsFramedByItsTwoLinesAndStaysEmptyWithoutABoat) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  no\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCOcean& ocean = *sea.ocean;
  std::istringstream text(
      "use_mattes: 1\n"
      "  NObjects: 1\n"
      "    Object: sea\n"
      "      NMattes: 1\n"
      "        hull_line_water_line\n");
  TCMatte_input request;
  ASSERT_TRUE(request.read(text));
  request.object_indices[0] = ocean.get_object_id();
  TCMatte_fields fields;
  fields.set_sizes(40, ocean.get_object_id() + 1);
  fields.prepare(4, 4, 1, request);
  int plane = -1, count = 0;
  ASSERT_TRUE(fields.is_wanted(ocean.get_object_id(), 21, plane, count));
  TCSpectrum spectrum(1);
  spectrum.band_id[0] = 1;
  // A camera over the water looking up: no water in view.
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 0.2, 0.0, 0.0);
  view.set_grid(4, -0.1, 0.1, 4, -0.1, 0.1);
  object_contour contour(4, 4, &spectrum, 0.0f, 0, &fields, nullptr);
  Stream_capture out(std::cout);
  ocean.image_contour(view, contour);
  EXPECT_EQ(out.text(), "generating boat hull matte \ndone generating boat hull matte \n");
  for (int k = 0; k < 16; k++) EXPECT_EQ(fields.planes[ocean.get_object_id()][plane][k], 0.0f);
}

TEST(OceanLight, NoHullLinesWhenTheMatteIsNotAskedFor) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  no\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCSpectrum spectrum(1);
  spectrum.band_id[0] = 1;
  TCView view;
  view.set_pose(TCVector(0.0, 0.0, 10.0), 0.2, 0.0, 0.0);
  view.set_grid(4, -0.1, 0.1, 4, -0.1, 0.1);
  object_contour contour(4, 4, &spectrum, 0.0f, 0, nullptr, nullptr);
  Stream_capture out(std::cout);
  sea.ocean->image_contour(view, contour);
  EXPECT_EQ(out.text(), "");
}

}  // namespace

namespace {

TEST(OceanLight, FromBelowOnlyRaysPastTheCriticalAngleAreWhollyReflected) {
  LightSea sea(light_ocean("1.34", 1, "glitter:  no\n"));
  ASSERT_EQ(sea.built, 1) << sea.printed;
  TCOcean& ocean = *sea.ocean;
  ocean.table_level = 0;
  TCSpectrum spectrum(1);
  spectrum.band_id[0] = 1;
  std::vector<float> mattes(40, 0.0f);
  // Critical angle for n = 1.34: acos(sqrt(1 - 1 / 1.34^2)) = 48.3 degrees
  // from the vertical. A view 20 degrees from straight up passes the
  // surface in part; one 70 degrees from it is wholly reflected.
  for (double degrees : {20.0, 70.0}) {
    const double a = degrees * 0.017453292519444445;
    const TCVector up(std::sin(a), 0.0, std::cos(a));
    {
      Stream_capture quiet(std::cout);
      ocean.surface_radiance(TCRay(TCVector(0, 0, -5), up), TCVector(0, 0, 0), TCVector(0, 0, 1),
                             spectrum, -1, mattes.data(), 1.0);
    }
    const float reflectance = mattes[3];
    if (degrees < 48.0) {
      // Fresnel from the water side at 20 degrees is about 0.02 (the
      // averaged table from below keeps only mirror rays that rise, so it
      // may give less).
      EXPECT_LT(reflectance, 0.05f) << degrees;
    } else {
      EXPECT_EQ(reflectance, 1.0f) << degrees;
    }
  }
}

}  // namespace
