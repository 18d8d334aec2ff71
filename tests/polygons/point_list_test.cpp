#include "Point_list.h"

#include <gtest/gtest.h>

#include <iostream>
#include <string>

#include "stream_capture.h"

// Results worked by hand: the first triple of a vertex takes slot v, later
// different triples are numbered 1, 2, ... in order of arrival, as -index.

TEST(PointList, FirstTripleOfAVertexTakesItsPrimarySlot) {
  Point_list points;
  ASSERT_TRUE(points.ok());
  EXPECT_EQ(points.capacity, 50000);
  EXPECT_EQ(points.add(7, 5, 0), 7);
  EXPECT_EQ(points.n_primary, 1);
  EXPECT_EQ(points.n_duplicates, 0);
  EXPECT_EQ(points.primary[7].used, 1);
  EXPECT_EQ(points.primary[7].t, 5);
  EXPECT_EQ(points.add(7, 5, 0), 7);
  EXPECT_EQ(points.n_primary, 1);
}

TEST(PointList, AnotherTextureOrNormalMakesADuplicate) {
  Point_list points;
  EXPECT_EQ(points.add(1, 5, 0), 1);
  EXPECT_EQ(points.add(2, 2, 0), 2);
  EXPECT_EQ(points.add(3, 3, 0), 3);
  EXPECT_EQ(points.add(1, 1, 0), -1);
  EXPECT_EQ(points.add(2, 2, 0), 2);
  EXPECT_EQ(points.add(3, 3, 0), 3);
  EXPECT_EQ(points.n_primary, 3);
  EXPECT_EQ(points.n_duplicates, 1);
  // Same vertex and texture but a normal: a second duplicate of vertex 1.
  EXPECT_EQ(points.add(1, 1, 4), -2);
  // A duplicate of vertex 2 takes the next free position.
  EXPECT_EQ(points.add(2, 0, 0), -3);
  // Matches along the chain give the duplicate met before.
  EXPECT_EQ(points.add(1, 1, 0), -1);
  EXPECT_EQ(points.add(1, 1, 4), -2);
  EXPECT_EQ(points.add(2, 0, 0), -3);
  EXPECT_EQ(points.n_duplicates, 3);
  EXPECT_EQ(points.primary[1].next, 1);
  EXPECT_EQ(points.duplicates[1].next, 2);
  EXPECT_EQ(points.duplicates[2].next, 0);
  EXPECT_EQ(points.primary[2].next, 3);
  ASSERT_NE(points.slot_of(-2), nullptr);
  EXPECT_EQ(points.slot_of(-2)->v, 1);
  EXPECT_EQ(points.slot_of(-2)->n, 4);
  EXPECT_EQ(points.slot_of(-4), nullptr);
  EXPECT_EQ(points.slot_of(0), nullptr);
  EXPECT_EQ(points.slot_of(4), nullptr);
}

TEST(PointList, VertexOutsideOneToCapacityIsRefused) {
  Point_list points;
  const int refused[] = {0, -1, -3, 50001};
  for (int v : refused) {
    Stream_capture out(std::cout);
    EXPECT_EQ(points.add(v, 1, 1), 0) << v;
    EXPECT_EQ(out.text(), "Reached end of subroutine\n") << v;
  }
  EXPECT_EQ(points.add(50000, 1, 1), 50000);
  EXPECT_EQ(points.n_primary, 1);
}

TEST(PointList, DuplicatesBeyondCapacityAreRefusedWithTheirMessages) {
  Point_list points(2);
  EXPECT_EQ(points.add(1, 1, 0), 1);
  EXPECT_EQ(points.add(1, 2, 0), -1);
  EXPECT_EQ(points.add(2, 3, 0), 2);
  EXPECT_EQ(points.add(2, 4, 0), -2);
  Stream_capture out(std::cout);
  EXPECT_EQ(points.add(1, 5, 0), 0);
  EXPECT_EQ(out.text(),
            "Too many duplicate vertices!\n"
            "You've got too many duplicate points!: 2\n"
            "Maximum points in temporary OBJ vertice list reached.\n");
  // What is already there is still found.
  EXPECT_EQ(points.add(2, 4, 0), -2);
}

TEST(PointList, SameTextureWithAnotherNormalIsADuplicate) {
  Point_list points;
  EXPECT_EQ(points.add(4, 1, 1), 4);
  EXPECT_EQ(points.add(4, 1, 2), -1);
  EXPECT_EQ(points.add(4, 1, 1), 4);
  EXPECT_EQ(points.add(4, 0, 1), -2);
  EXPECT_EQ(points.n_primary, 1);
  EXPECT_EQ(points.n_duplicates, 2);
}
