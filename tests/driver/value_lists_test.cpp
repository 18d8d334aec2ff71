#include <gtest/gtest.h>

#include <climits>
#include <sstream>

#include "TCValue_lists.h"

TEST(DoubleRows, ReadsEveryRowIntoItsColumns) {
  std::istringstream in("0 1.5 10\n2 2.5 20\n4 3.5 30\nend");
  double* columns[3] = {nullptr, nullptr, nullptr};
  int failed = 7;
  ASSERT_EQ(read_double_rows(in, 3, 3, columns, failed), rows_read);
  EXPECT_EQ(failed, -1);
  EXPECT_DOUBLE_EQ(columns[0][2], 4.0);
  EXPECT_DOUBLE_EQ(columns[1][0], 1.5);
  EXPECT_DOUBLE_EQ(columns[2][1], 20.0);
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "end");
  delete_band_lists(columns, 3);
}

TEST(DoubleRows, GrowsPastTheFirstCapacity) {
  // More rows than a first allocation holds (16), so the arrays must grow.
  std::ostringstream text;
  for (int i = 0; i < 40; i++) text << i << " " << -i << "\n";
  std::istringstream in(text.str());
  double* columns[2] = {nullptr, nullptr};
  int failed = 0;
  ASSERT_EQ(read_double_rows(in, 40, 2, columns, failed), rows_read);
  for (int i = 0; i < 40; i++) {
    EXPECT_DOUBLE_EQ(columns[0][i], i);
    EXPECT_DOUBLE_EQ(columns[1][i], -i);
  }
  delete_band_lists(columns, 2);
}

TEST(DoubleRows, ACutTableKeepsNothing) {
  std::istringstream in("1 2\n3");
  double* columns[2] = {nullptr, nullptr};
  int failed = 0;
  EXPECT_EQ(read_double_rows(in, 2, 2, columns, failed), rows_cut_short);
  EXPECT_EQ(columns[0], nullptr);
  EXPECT_EQ(columns[1], nullptr);
}

TEST(DoubleRows, AWildCountInAShortFileCostsNothing) {
  std::istringstream in("1 2\n");
  double* columns[2] = {nullptr, nullptr};
  int failed = 0;
  EXPECT_EQ(read_double_rows(in, INT_MAX, 2, columns, failed), rows_cut_short);
  EXPECT_EQ(columns[0], nullptr);
}

TEST(DoubleRows, NoRowsGiveEmptyColumnsWithRoom) {
  std::istringstream in("end");
  double* columns[1] = {nullptr};
  int failed = 0;
  ASSERT_EQ(read_double_rows(in, 0, 1, columns, failed), rows_read);
  ASSERT_NE(columns[0], nullptr);
  delete_band_lists(columns, 1);
}
