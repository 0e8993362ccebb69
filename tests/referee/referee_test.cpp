#include "tests/referee/referee.h"

#include <gtest/gtest.h>

#include <cmath>

namespace norvane::test {
namespace {

// A few states of each class; norvane_referee runs as many as wanted.
TEST(Referee, FindsNoDeviationBeyondItsLimit) {
  const std::vector<referee::Row> rows = referee::run(20260101, 6);
  EXPECT_GT(rows.size(), 150u);
  for (const referee::Row& row : rows)
    EXPECT_LE(row.worst, row.limit) << row.function << ", " << row.states << ", " << row.quantity << " at "
                                    << row.worst_state;
}

}  // namespace
}  // namespace norvane::test
