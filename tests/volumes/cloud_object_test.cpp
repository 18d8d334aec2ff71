#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "Cloud_input.h"
#include "TCCloud_fluctuations.h"
#include "TCLattice_file.h"
#include "TCSettings.h"
#include "TCVector.h"
#include "cloud_class.h"
#include "scratch_folder.h"
#include "stream_capture.h"

namespace {

// A cloud record of 5 x 4 x 3 points 10 m apart, one band, reading its
// density from the given file in the given format.
void cloud_record(Cloud_input& record, const std::string& density_file, int format) {
  record.number_points_x = 5;
  record.number_points_y = 4;
  record.number_points_z = 3;
  record.lattice_spacing_x = record.lattice_spacing_y = record.lattice_spacing_z = 10.0;
  record.length = TCVector(40.0, 30.0, 20.0);
  record.allocate_arrays(1, 181);
  record.band_id[0] = 1;
  record.scattering[0] = 0.1;
  record.extinction[0] = 0.1;
  std::snprintf(record.density_file, sizeof(record.density_file), "%s", density_file.c_str());
  record.density_format = format;
}

// Density i + 10 j + 100 k + 1 at point (i, j, k).
std::vector<float> ramp() {
  std::vector<float> values(60);
  for (int k = 0; k < 3; k++)
    for (int j = 0; j < 4; j++)
      for (int i = 0; i < 5; i++) values[i + 5 * (j + 4 * k)] = i + 10.0f * j + 100.0f * k + 1;
  return values;
}

TCVector point_of(double i, double j, double k) {
  return TCVector(-20.0 + 10.0 * i, -15.0 + 10.0 * j, -10.0 + 10.0 * k);
}

}  // namespace

TEST(CloudObject, WithoutFluctuationsTheDensityIsThePlainLattice) {
  Scratch_folder folder;
  const std::vector<float> values = ramp();
  ASSERT_TRUE(TCLattice_file::write(folder.file("lwc").c_str(), 5, 4, 3, values.data()));
  Cloud_input record;
  cloud_record(record, folder.file("lwc"), Cloud_input::density_binary);
  cloud_class cloud(record);
  double rho = 0.0, column = 0.0;
  cloud.density_point(point_of(2, 1, 1), rho, column);
  EXPECT_DOUBLE_EQ(rho, 2 + 10 + 100 + 1);
  // Between points: trilinear, which is exact for this linear ramp.
  cloud.density_point(point_of(2.5, 1.25, 0.5), rho, column);
  EXPECT_NEAR(rho, 2.5 + 12.5 + 50 + 1, 1e-5);
  EXPECT_EQ(cloud.small_scale_factor(), 0.0);
  EXPECT_EQ(cloud.blended, nullptr);
  // Outside the box: nothing.
  cloud.density_point(TCVector(30.0, 0.0, 0.0), rho, column);
  EXPECT_EQ(rho, 0.0);
  EXPECT_EQ(cloud.min_density, 1.0);
  EXPECT_EQ(cloud.max_density, 4 + 30 + 200 + 1);
}

TEST(CloudObject, AUniformFileHoldsOneNumberForEveryPoint) {
  Scratch_folder folder;
  std::ofstream(folder.file("one")) << "0.375\n";
  Cloud_input record;
  cloud_record(record, folder.file("one"), Cloud_input::density_uniform);
  cloud_class cloud(record);
  for (long i = 0; i < 60; i++) EXPECT_EQ(cloud.density_of_index(i), 0.375);
}

TEST(CloudObject, PointsAtOrBelowTheThresholdAreEmpty) {
  Scratch_folder folder;
  const std::vector<float> values = ramp();
  TCLattice_file::write(folder.file("lwc").c_str(), 5, 4, 3, values.data());
  Cloud_input record;
  cloud_record(record, folder.file("lwc"), Cloud_input::density_binary);
  record.threshold_density = 12.0;
  cloud_class cloud(record);
  EXPECT_EQ(cloud.density_of_index(1 + 5 * 1), 0.0);   // 12: at the threshold
  EXPECT_EQ(cloud.density_of_index(2 + 5 * 1), 13.0);  // 13: above
}

TEST(CloudObjectDeathTest, AMissingOrMisshapenDensityFileEndsTheRun) {
  Scratch_folder folder;
  Cloud_input missing;
  cloud_record(missing, folder.file("none"), Cloud_input::density_binary);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        cloud_class cloud(missing);
      },
      ::testing::ExitedWithCode(1), "^unable to process cloud data \n$");
  const std::vector<float> other(24, 1.0f);
  TCLattice_file::write(folder.file("small").c_str(), 2, 3, 4, other.data());
  Cloud_input misshapen;
  cloud_record(misshapen, folder.file("small"), Cloud_input::density_binary);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        cloud_class cloud(misshapen);
      },
      ::testing::ExitedWithCode(1), "^unable to process cloud data \n$");
  std::ofstream(folder.file("word")) << "dense\n";
  Cloud_input word;
  cloud_record(word, folder.file("word"), Cloud_input::density_uniform);
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        cloud_class cloud(word);
      },
      ::testing::ExitedWithCode(1), "^unable to process cloud data \n$");
}

namespace {

// A cloud with a 8 x 8 x 4 fluctuation field over its box.
struct Fluctuating {
  explicit Fluctuating(int mode, const Scratch_folder& folder) {
    std::ofstream(folder.file("one")) << "2\n";
    cloud_record(record, folder.file("one"), Cloud_input::density_uniform);
    record.small_scale_fluctuations = mode;
    record.small_scale_n_x = 8;
    record.small_scale_n_y = 8;
    record.small_scale_n_z = 4;
    record.log_normal_width = 0.5;
    record.power_law = 2.0;
    record.length_scale = 0.1;
    record.random_seed = 7;
    record.reference_time = 1.0;
    record.update_time = 0.5;
    record.sigma_time = 1.0;
    std::snprintf(record.small_scale_file_name, sizeof(record.small_scale_file_name), "%s",
                  folder.file("fluct").c_str());
    std::snprintf(record.density_with_fluctuation_file,
                  sizeof(record.density_with_fluctuation_file), "%s",
                  folder.file("dumped").c_str());
  }
  Cloud_input record;
};

}  // namespace

TEST(CloudObject, FluctuationsMultiplyTheLatticeAndAreWrittenOut) {
  Scratch_folder folder;
  Fluctuating f(Cloud_input::fluctuations_yes, folder);
  Stream_capture out(std::cout);
  cloud_class cloud(f.record);
  EXPECT_EQ(out.text(), "writing to " + folder.file("fluct") + "\n");
  // The field the cloud made is the one the seed makes, its shortest
  // wavelength 0.1 m in cells of the smallest side, 3.75 m.
  TCCloud_fluctuations same;
  ASSERT_TRUE(same.generate(8, 8, 4, 2.0, 0.5, 0.1 / 3.75, 7));
  TCCloud_fluctuations written;
  ASSERT_TRUE(written.read_file(folder.file("fluct").c_str()));
  for (int c = 0; c < 8 * 8 * 4; c++) EXPECT_FLOAT_EQ(written.values()[c], same.values()[c]);
  // A fluctuation cell spans 40 / 8 = 5 m across: (x + 20) / 5 cells.
  double rho = 0.0, column = 0.0;
  cloud.density_point(TCVector(-20.0 + 5.0 * 3, -15.0 + 30.0 / 8 * 2, -10.0 + 5.0), rho, column);
  EXPECT_NEAR(rho, 2.0 * same.value(3, 2, 1), 1e-5);
  // The field's smallest cell (30 / 8 = 3.75 m) against the lattice's
  // smallest spacing (10 m).
  EXPECT_NEAR(cloud.small_scale_factor(), 0.375, 1e-12);
}

TEST(CloudObject, AFieldIsReadBackWhenNotGeneratedAndTheDumpHoldsDensityTimesIt) {
  Scratch_folder folder;
  Fluctuating made(Cloud_input::fluctuations_yes, folder);
  {
    Stream_capture quiet(std::cout);
    cloud_class first(made.record);
  }
  Fluctuating again(Cloud_input::fluctuations_yes_dump_density, folder);
  again.record.generate_file_from_scratch = 0;
  cloud_class cloud(again.record);
  TCCloud_fluctuations field;
  ASSERT_TRUE(field.read_file(folder.file("fluct").c_str()));
  std::vector<float> dumped(60);
  ASSERT_TRUE(TCLattice_file::read(folder.file("dumped").c_str(), 5, 4, 3, dumped.data()));
  // Lattice point (i, j, k) at (10 i, 10 j, 10 k) from the corner: cells
  // (2 i, 8 / 3 j, 2 k) of the field, trilinear between them.
  for (int k = 0; k < 3; k++)
    for (int j = 0; j < 4; j++)
      for (int i = 0; i < 5; i++)
        EXPECT_NEAR(dumped[i + 5 * (j + 4 * k)],
                    2.0 * field.value_at(2.0 * i, 8.0 / 3 * j, 2.0 * k), 1e-5);
}

TEST(CloudObjectDeathTest, APowerThatIsNotPositiveEndsTheRun) {
  Scratch_folder folder;
  Fluctuating f(Cloud_input::fluctuations_yes, folder);
  f.record.power_law = 0.0;
  EXPECT_EXIT(
      {
        std::cout.rdbuf(std::cerr.rdbuf());
        cloud_class cloud(f.record);
      },
      ::testing::ExitedWithCode(1), "^small scale power must be positive \n$");
}

TEST(CloudObject, ATimeBeforeTheReferenceLeavesTheCloudAsItStands) {
  Scratch_folder folder;
  Fluctuating f(Cloud_input::fluctuations_dynamic, folder);
  Stream_capture out(std::cout);
  cloud_class cloud(f.record);
  std::vector<float> before(cloud.blended, cloud.blended + 256);
  const int saved = verbose;
  verbose = 1;
  cloud.evolve_cloud(0.25);
  verbose = saved;
  EXPECT_EQ(out.text(), "writing to " + folder.file("fluct") +
                            "\nevolving cloud to time 0.25\n done evolving cloud \n");
  for (int c = 0; c < 256; c++) EXPECT_EQ(cloud.blended[c], before[c]);
  EXPECT_EQ(cloud.current_step, 0);
}

TEST(CloudObject, AFrameOnAStepShowsThatStepAloneAndBetweenStepsBlendsTwo) {
  Scratch_folder folder;
  Fluctuating f(Cloud_input::fluctuations_dynamic, folder);
  Stream_capture out(std::cout);
  cloud_class cloud(f.record);
  // The chain by hand: step 0 the generated field, each step one chunk of
  // a = exp(-0.5 / 1.0) on.
  TCCloud_fluctuations s0, s1, s2, s3;
  s0.generate(8, 8, 4, 2.0, 0.5, 0.1 / 3.75, 7);
  s1.copy_from(s0);
  s1.evolve(std::exp(-0.5));
  s2.copy_from(s1);
  s2.evolve(std::exp(-0.5));
  s3.copy_from(s2);
  s3.evolve(std::exp(-0.5));
  // t = 1 + 2 * 0.5: step 2, r = 0.
  cloud.evolve_cloud(2.0);
  EXPECT_EQ(cloud.current_step, 2);
  EXPECT_EQ(cloud.interpolation, 0.0);
  for (int c = 0; c < 256; c++) EXPECT_FLOAT_EQ(cloud.blended[c], s2.values()[c]);
  // A quarter of the way to step 3.
  cloud.evolve_cloud(2.125);
  EXPECT_EQ(cloud.current_step, 2);
  EXPECT_NEAR(cloud.interpolation, 0.25, 1e-12);
  for (int c = 0; c < 256; c++)
    EXPECT_NEAR(cloud.blended[c], 0.75 * s2.values()[c] + 0.25 * s3.values()[c], 1e-5);
  // Back to step 1: the chain starts again from the seed, same states.
  cloud.evolve_cloud(1.5);
  EXPECT_EQ(cloud.current_step, 1);
  for (int c = 0; c < 256; c++) EXPECT_FLOAT_EQ(cloud.blended[c], s1.values()[c]);
}

TEST(CloudObject, VerboseEvolutionNamesTheStepsAndChunks) {
  Scratch_folder folder;
  Fluctuating f(Cloud_input::fluctuations_dynamic, folder);
  cloud_class* cloud = nullptr;
  {
    Stream_capture quiet(std::cout);
    cloud = new cloud_class(f.record);
  }
  Stream_capture out(std::cout);
  const int saved = verbose;
  verbose = 1;
  cloud->evolve_cloud(2.25);
  verbose = saved;
  EXPECT_EQ(out.text(),
            "evolving cloud to time 2.25\nstep of time 2\ncurrent_step 0\nTCInterpolation 0.5\n"
            "evolving one chunk \nevolving one chunk \n done evolving cloud \n");
  delete cloud;
}

TEST(CloudObject, ThePrintoutNamesTheLatticeAndTheDynamicTimes) {
  Scratch_folder folder;
  Fluctuating f(Cloud_input::fluctuations_dynamic, folder);
  Stream_capture out(std::cout);
  cloud_class cloud(f.record);
  cloud.print_dimensions();
  const std::string text = out.text();
  EXPECT_NE(text.find("VOLUME PARAMETERS\n"), std::string::npos);
  EXPECT_NE(text.find("lattice points        5 4 3\n"), std::string::npos);
  EXPECT_NE(text.find("box size              40 30 20\n"), std::string::npos);
  EXPECT_NE(text.find("SCATTERING METHOD: multiple\n"), std::string::npos);
  EXPECT_NE(text.find("CLOUD PARAMETERS\nlwc file              " + folder.file("one") +
                      "\nminimum density       2\nmaximum density       2\n"
                      "small scale fluctuations dynamic\nsmall scale reference time  1\n"
                      "small scale update time     0.5\nsmall scale sigma           1\n"),
            std::string::npos)
      << text;
}
