#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>

#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCObject_kinds.h"
#include "TCRay.h"
#include "TCSettings.h"
#include "TCSpectrum.h"
#include "TCView.h"
#include "TCVolume_Object.h"
#include "TCVolume_Object_class.h"
#include "object_contour.h"
#include "quiet_scene_tracer.h"
#include "stream_capture.h"
#include "volume_test_objects.h"

namespace {

const double tc_pi = 3.1415926535;
const double isotropic = 0.079577471545947673;

// A 100 by 100 by 20 m slab, density 0.5, bands 1 and 2 (or band 1
// alone), lit from overhead with unit irradiance.
struct Lit_slab {
  explicit Lit_slab(int n_bands = 2) {
    const double a[2] = {0.002, 0.01}, b[2] = {0.01, 0.02}, x[2] = {0.012, 0.03};
    fill_volume_record(record, 11, 11, 5, 10.0, 10.0, 5.0, n_bands, a, b, x, isotropic);
    volume = new Lattice_test_volume(record);
    volume->fill(0.5);
    volume->sun_direction = TCVector(0.0, 0.0, 1.0);
    for (int m = 0; m < n_bands; m++) volume->sun_radiance.radiance_in_band[m] = 1.0;
    volume->make_extinction_field();
  }
  ~Lit_slab() { delete volume; }
  TCVolume_Object_class record;
  Lattice_test_volume* volume;
};

// Straight down from 110 m over rows and columns of the plane's range.
TCView view_down(int rows, double half_width) {
  TCView view;
  view.set_pose(TCVector(1.0, 2.0, 110.0), tc_pi, 0.0, 0.0);
  view.set_grid(rows, -half_width, half_width, rows, -half_width, half_width);
  return view;
}

struct Patch {
  Patch(int rows, int n_bands) : bands(n_bands), n(rows) {
    for (int k = 0; k < n_bands; k++) bands.band_id[k] = k + 1;
    planes = new float*[n_bands];
    for (int k = 0; k < n_bands; k++) planes[k] = new float[rows * rows]();
    contour = new object_contour(rows, rows, &bands, planes, 0.0f, 0, nullptr, nullptr);
  }
  ~Patch() {
    delete contour;
    for (int k = 0; k < bands.n; k++) delete[] planes[k];
    delete[] planes;
  }
  TCSpectrum bands;
  int n;
  float** planes;
  object_contour* contour;
};

}  // namespace

TEST(VolumeImaging, APixelShowsItsRaysScatteredLightOverWhatLiesBehind) {
  Lit_slab slab;
  // 3.7 m a pixel at the slab, under its smallest spacing (5 m): one ray.
  TCView view = view_down(6, 0.1);
  Patch patch(6, 2);
  {
    Stream_capture quiet(std::cout);
    slab.volume->image_contour(view, *patch.contour);
  }
  patch.contour->merge_layer();
  // Then a plain surface 200 m down, radiance 5 and 7, behind everything.
  for (int r = 0; r < 6; r++)
    for (int c = 0; c < 6; c++) {
      const double behind[2] = {5.0, 7.0};
      patch.contour->add_sample(r, c, behind, 4e4, 4e4, 4e4, 1.0, 1, nullptr);
    }
  patch.contour->merge_layer();
  for (int r = 0; r < 6; r++) {
    for (int c = 0; c < 6; c++) {
      TCRay ray;
      view.pixel_ray(r, c, ray);
      TCSpectrum alone(2);
      alone.band_id[0] = 1;
      alone.band_id[1] = 2;
      double T[2];
      ASSERT_EQ(slab.volume->integrate_ray(ray, alone, nullptr, 1e8, 0, nullptr, 0, T), 1);
      // One opacity for all bands: the mean of theirs.
      const double opacity = 1.0 - 0.5 * (T[0] + T[1]);
      EXPECT_NEAR(patch.planes[0][r * 6 + c], alone.radiance_in_band[0] + (1 - opacity) * 5.0, 1e-5)
          << alone.radiance_in_band[0] << " " << opacity << " " << T[0] << " " << T[1];
      EXPECT_NEAR(patch.planes[1][r * 6 + c], alone.radiance_in_band[1] + (1 - opacity) * 7.0,
                  1e-5);
    }
  }
}

TEST(VolumeImaging, TheOrderOfPaintingDoesNotChangeThePicture) {
  Lit_slab slab;
  TCView view = view_down(4, 0.06);
  Patch first(4, 2), last(4, 2);
  const double behind[2] = {5.0, 7.0};
  Stream_capture quiet(std::cout);
  slab.volume->image_contour(view, *first.contour);
  first.contour->merge_layer();
  for (int r = 0; r < 4; r++)
    for (int c = 0; c < 4; c++)
      first.contour->add_sample(r, c, behind, 4e4, 4e4, 4e4, 1.0, 1, nullptr);
  first.contour->merge_layer();
  for (int r = 0; r < 4; r++)
    for (int c = 0; c < 4; c++)
      last.contour->add_sample(r, c, behind, 4e4, 4e4, 4e4, 1.0, 1, nullptr);
  last.contour->merge_layer();
  slab.volume->image_contour(view, *last.contour);
  last.contour->merge_layer();
  for (int k = 0; k < 2; k++)
    for (int p = 0; p < 16; p++) EXPECT_NEAR(first.planes[k][p], last.planes[k][p], 1e-6);
}

TEST(VolumeImaging, AFarPixelAveragesUpToFourByFourRaysAndCoversOnlyWhatItHits) {
  Lit_slab slab;
  // 0.5 plane units a pixel over 110 m: 55 m, over five 10 m cells: 4 x 4.
  TCView view = view_down(2, 0.5);
  view.set_pose(TCVector(50.0, 0.0, 110.0), tc_pi, 0.0, 0.0);
  Patch patch(2, 2);
  {
    Stream_capture quiet(std::cout);
    slab.volume->image_contour(view, *patch.contour);
  }
  for (int r = 0; r < 2; r++) {
    for (int c = 0; c < 2; c++) {
      double scattered = 0.0, opacity = 0.0;
      for (int i = 0; i < 4; i++) {
        for (int j = 0; j < 4; j++) {
          TCRay ray;
          view.fractional_ray(r, c, (i + 0.5) / 4, (j + 0.5) / 4, ray);
          TCSpectrum one(2);
          one.band_id[0] = 1;
          one.band_id[1] = 2;
          double T[2] = {1.0, 1.0};
          slab.volume->integrate_ray(ray, one, nullptr, 1e8, 0, nullptr, 0, T);
          scattered += one.radiance_in_band[0] / 16;
          opacity += (1.0 - 0.5 * (T[0] + T[1])) / 16;
        }
      }
      EXPECT_NEAR(patch.contour->layer_radiance[0][r][c], scattered, 1e-6) << r << " " << c;
      EXPECT_NEAR(patch.contour->layer_coverage[r][c], opacity, 1e-6) << r << " " << c;
    }
  }
  // The box's edge (x = 50) runs down the middle: half a pixel's rays miss.
  const double inside = patch.contour->layer_coverage[0][0] + patch.contour->layer_coverage[0][1];
  EXPECT_GT(inside, 0.0);
}

TEST(VolumeImaging, RowsAreReportedEveryTenthRowOfTheBox) {
  Lit_slab slab;
  TCView view = view_down(21, 0.4);
  Patch patch(21, 2);
  Stream_capture out(std::cout);
  const int saved = verbose;
  verbose = 0;
  slab.volume->image_contour(view, *patch.contour);
  verbose = saved;
  EXPECT_EQ(out.text(), " on row 0 out of 20\n on row 10 out of 20\n on row 20 out of 20\n");
}

TEST(VolumeImagingDeathTest, AnUnknownTotalRadianceFlagEndsTheRun) {
  Lit_slab slab;
  TCView view = view_down(2, 0.2);
  Patch patch(2, 2);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        slab.volume->image_volume(view, *patch.contour, 3);
        std::exit(0);
      },
      ::testing::ExitedWithCode(1),
      "^total_radiance_flag incorrectly set in volume_object radiance\n$");
}

namespace {

// Mattes of object 0 in two bands: radiance (0), absorption (1),
// transmission (2) and distance (19).
struct Volume_mattes {
  Volume_mattes(int rows) {
    std::istringstream text(
        "use_mattes: 1\n"
        "  NObjects: 1\n"
        "    Object: cloud\n"
        "      NMattes: 4\n"
        "        radiance\n"
        "        absorption\n"
        "        transmission\n"
        "        distance\n");
    ok = request.read(text);
    request.object_indices[0] = 0;
    fields.set_sizes(40, 1);
    fields.prepare(rows, rows, 2, request);
  }
  float plane(int code, int band, int pixel) const {
    int first = -1, count = 0;
    fields.is_wanted(0, code, first, count);
    return fields.planes[0][first + band][pixel];
  }
  int ok;
  TCMatte_input request;
  TCMatte_fields fields;
};

}  // namespace

TEST(VolumeImaging, MattesTakeTheScatteredLightTransmissionAndDistance) {
  Lit_slab slab;
  TCView view = view_down(2, 0.04);  // one ray a pixel
  Volume_mattes mattes(2);
  ASSERT_TRUE(mattes.ok);
  TCSpectrum bands(2);
  bands.band_id[0] = 1;
  bands.band_id[1] = 2;
  object_contour contour(2, 2, &bands, 0.0f, 0, &mattes.fields, nullptr);
  {
    Stream_capture quiet(std::cout);
    slab.volume->image_contour(view, contour);
  }
  contour.merge_layer();
  TCRay ray;
  view.pixel_ray(1, 0, ray);
  TCSpectrum one(2);
  one.band_id[0] = 1;
  one.band_id[1] = 2;
  double T[2], entry = 0.0;
  slab.volume->integrate_ray(ray, one, nullptr, 1e8, 0, nullptr, 0, T, &entry);
  const int p = 2;
  // Every matte of a sample is weighted by its coverage, 1 - mean T.
  const double c = 1.0 - 0.5 * (T[0] + T[1]);
  EXPECT_NEAR(mattes.plane(0, 1, p), c * one.radiance_in_band[1], 1e-6);
  EXPECT_NEAR(mattes.plane(2, 0, p), c * T[0], 1e-6);
  EXPECT_NEAR(mattes.plane(1, 1, p), c * (1.0 - T[1]), 1e-6);
  EXPECT_NEAR(mattes.plane(19, 0, p), entry * entry, 1e-2);
}

TEST(VolumeImaging, MattesOfOtherBandCountsAreZeroedWithAMessage) {
  Lit_slab slab(1);
  TCView view = view_down(2, 0.1);
  Volume_mattes mattes(2);
  ASSERT_TRUE(mattes.ok);
  TCSpectrum bands(2);
  bands.band_id[0] = 1;
  bands.band_id[1] = 2;
  object_contour contour(2, 2, &bands, 0.0f, 0, &mattes.fields, nullptr);
  Stream_capture out(std::cout);
  const int saved = verbose;
  verbose = 0;
  slab.volume->image_contour(view, contour);
  verbose = saved;
  contour.merge_layer();
  EXPECT_EQ(out.text(),
            "Number of bands in matte field != number of object bands\n"
            "Setting ALL matte fields for this object to zero\n"
            " on row 0 out of 1\n");
  for (int p = 0; p < 4; p++) {
    EXPECT_EQ(mattes.plane(0, 0, p), 0.0f);
    EXPECT_EQ(mattes.plane(2, 0, p), 0.0f);
  }
}

namespace {

// Object 0 is the volume; object 1, of the given kind, stands 15 m under
// the slab's top along every ray straight down (z = -5).
class Thing_inside : public Quiet_scene_tracer {
 public:
  explicit Thing_inside(int kind_in) : kind(kind_in), asked_for_it(0) {}
  int object_count() const override { return 2; }
  int object_kind(int index) const override { return index == 0 ? TC_KIND_CLOUD : kind; }
  int nearest_active(const int* flags, const TCRay& ray, TCVector& hit) override {
    if (!flags[1]) return 0;
    asked_for_it++;
    const double t = (ray[2] - (-5.0)) / -ray[5];
    hit = TCVector(ray[0] + t * ray[3], ray[1] + t * ray[4], -5.0);
    return 2;
  }
  int kind;
  int asked_for_it;
};

}  // namespace

TEST(VolumeImaging, ASolidThingInsideTheBoxEndsTheMarchWhereItStands) {
  Lit_slab slab;
  TCView view = view_down(2, 0.02);
  for (int kind : {TC_KIND_SOLID_BOX, TC_KIND_CLOUD, TC_KIND_AIR}) {
    Thing_inside scene(kind);
    slab.volume->scene = &scene;
    Patch patch(2, 2);
    {
      Stream_capture quiet(std::cout);
      slab.volume->image_contour(view, *patch.contour);
    }
    TCRay ray;
    view.pixel_ray(0, 0, ray);
    TCSpectrum one(2);
    one.band_id[0] = 1;
    one.band_id[1] = 2;
    double T[2];
    // Solid: the path ends 15 m in; another volume or the air ends nothing.
    const double far = kind == TC_KIND_SOLID_BOX ? (110.0 - (-5.0)) / -ray[5] : 1e8;
    slab.volume->integrate_ray(ray, one, nullptr, far, 0, nullptr, 0, T);
    EXPECT_NEAR(patch.contour->layer_coverage[0][0], 1.0 - 0.5 * (T[0] + T[1]), 1e-6) << kind;
    EXPECT_EQ(scene.asked_for_it > 0, kind == TC_KIND_SOLID_BOX) << kind;
    slab.volume->scene = nullptr;
  }
}

TEST(VolumeImaging, AViewFromInsideSeesTheVolumeFromItsOwnPositionAndBeyond) {
  Lit_slab slab;
  // No point counts as inside, so the scene goes on to paint what lies
  // beyond; the volume's own layer starts at the view.
  EXPECT_EQ(slab.volume->point_inside(TCVector(0.0, 0.0, 0.0)), 0);
  TCView view;
  view.set_pose(TCVector(1.0, 2.0, 3.0), tc_pi, 0.0, 0.0);
  view.set_grid(2, -0.02, 0.02, 2, -0.02, 0.02);
  Patch patch(2, 2);
  {
    Stream_capture quiet(std::cout);
    slab.volume->image_contour(view, *patch.contour);
  }
  for (int r = 0; r < 2; r++)
    for (int c = 0; c < 2; c++) {
      EXPECT_EQ(patch.contour->layer_distance[r][c], 0.0f);
      // 13 m of slab below the view: 1 - mean of exp(-(a + b) 0.5 13).
      const double expected =
          1.0 - 0.5 * (std::exp(-0.012 * 0.5 * 13.0) + std::exp(-0.03 * 0.5 * 13.0));
      EXPECT_NEAR(patch.contour->layer_coverage[r][c], expected, 1e-4);
    }
}
