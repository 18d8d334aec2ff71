// The sea among other objects: which of them stand above its level, and
// when its sky tables are made again.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TCOcean.h"
#include "TCScene_tracer.h"
#include "TCVector.h"
#include "ocean_input.h"
#include "ocean_object_records.h"
#include "quiet_scene_tracer.h"
#include "scratch_folder.h"

namespace {

// A scene of objects of one kind (7 is the air) at given heights, and no
// sun.
class Heights_scene : public Quiet_scene_tracer {
 public:
  explicit Heights_scene(const std::vector<double>& z, int kind_in = 1)
      : heights(z), kind(kind_in) {}
  int object_count() const override { return static_cast<int>(heights.size()); }
  const char* object_name(int) const override { return "thing"; }
  int object_kind(int) const override { return kind; }
  int object_position(int index, TCVector& out) const override {
    if (index < 0 || index >= object_count()) return 0;
    out = TCVector(5.0, -3.0, heights[index]);
    return 1;
  }

  std::vector<double> heights;
  int kind;  // of every object
};

TEST(OceanScene, AnObjectExactlyAtTheTruncatedHeightCountsAsBelow) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ocean.set_position(TCVector(0.0, 0.0, 2.7), 0.0, 0.0, 0.0);
  // The ocean's level is trunc(2.7) = 2.
  Heights_scene scene({2.0, 2.5, 1.0, 3.0, 2.0000001});
  ocean.scene = &scene;
  for (int i = 0; i < 100; i++) ocean.object_above[i] = -5;
  ocean.prepare_frame();
  EXPECT_EQ(ocean.object_above[0], 0);
  EXPECT_EQ(ocean.object_above[1], 1);
  EXPECT_EQ(ocean.object_above[2], 0);
  EXPECT_EQ(ocean.object_above[3], 1);
  EXPECT_EQ(ocean.object_above[4], 1);
  // Indices the scene does not have are left looking above.
  for (int i = 5; i < 100; i++) EXPECT_EQ(ocean.object_above[i], 1) << i;
  EXPECT_EQ(ocean.table_level, 1);
  ocean.scene = nullptr;
}

TEST(OceanScene, BelowZeroTheLevelIsTruncatedTowardsZeroNotFloored) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ocean.set_position(TCVector(0.0, 0.0, -2.5), 0.0, 0.0, 0.0);
  // trunc(-2.5) = -2: an object at -2 is at the level, one at -2.2 below it
  // (a floor of -3 would put both above).
  Heights_scene scene({-2.0, -2.2, -1.5});
  ocean.scene = &scene;
  ocean.update_scene();
  EXPECT_EQ(ocean.object_above[0], 0);
  EXPECT_EQ(ocean.object_above[1], 0);
  EXPECT_EQ(ocean.object_above[2], 1);
  ocean.scene = nullptr;
}

TEST(OceanScene, SkyTablesAreRedoneWhenTheSunMovesOrUnderAnAtmosphere) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  input.external_exact = 1;
  input.include = 3;
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  ASSERT_GE(ocean.n_levels, 1);
  Heights_scene scene({-50.0});
  ocean.scene = &scene;
  // The stored sun is nowhere: the first frame is a move.
  ocean.table_done[0][0] = 1;
  ocean.table_done[1][0] = 1;
  ocean.prepare_frame();
  EXPECT_EQ(ocean.table_builds, 1);
  EXPECT_EQ(ocean.table_done[0][0], 0);
  EXPECT_EQ(ocean.table_done[1][0], 0);
  EXPECT_EQ(ocean.stored_sun[2], -1.0);
  // The same sun again: the tables stand.
  ocean.table_done[0][0] = 1;
  ocean.prepare_frame();
  EXPECT_EQ(ocean.table_builds, 1);
  EXPECT_EQ(ocean.table_done[0][0], 1);
  // Under an atmosphere (kind 7) they are redone every frame.
  Heights_scene sky({50.0}, 7);
  ocean.scene = &sky;
  ocean.prepare_frame();
  EXPECT_EQ(ocean.table_builds, 2);
  EXPECT_EQ(ocean.table_done[0][0], 0);
  ocean.scene = nullptr;
}

TEST(OceanScene, WithoutCouplingTheDoneMarksAreKeptWhenTheSunMoves) {
  Scratch_folder folder;
  ocean_input input;
  small_sea(input, folder);
  TCOcean ocean(input);
  std::string printed;
  Verbose_as quiet(0);
  ASSERT_EQ(construct_quietly(ocean, input, printed), 1) << printed;
  Heights_scene scene({-50.0});
  ocean.scene = &scene;
  ocean.table_done[0][0] = 1;
  ocean.prepare_frame();
  EXPECT_EQ(ocean.table_builds, 1);
  EXPECT_EQ(ocean.table_done[0][0], 1);
  ocean.scene = nullptr;
}

}  // namespace
