#include <gtest/gtest.h>

#include "tal/sql/figures.h"

namespace tal::sql {
namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

TEST(NumbersTest, ClampUnsigned) {
  EXPECT_EQ(clampUnsigned(kLeast), 0U);
  EXPECT_EQ(clampUnsigned(-1), 0U);
  EXPECT_EQ(clampUnsigned(0), 0U);
  EXPECT_EQ(clampUnsigned(4294967295), 4294967295U);
  EXPECT_EQ(clampUnsigned(4294967296), 4294967295U);
  EXPECT_EQ(clampUnsigned(kMost), 4294967295U);
}

TEST(NumbersTest, ClampMaximum) {
  EXPECT_EQ(clampMaximum(-1), 0);
  EXPECT_EQ(clampMaximum(2147483647), 2147483647);
  EXPECT_EQ(clampMaximum(2147483648), 2147483647);
}

TEST(NumbersTest, Kilobytes) {
  EXPECT_EQ(kilobytes(0), 0U);
  EXPECT_EQ(kilobytes(1), 1U);
  EXPECT_EQ(kilobytes(1024), 1U);
  EXPECT_EQ(kilobytes(1025), 2U);
  EXPECT_EQ(kilobytes(-1), 0U);
  EXPECT_EQ(kilobytes(kMost), 4294967295U);
}

TEST(PeakTest, KeepsTheHighestSample) {
  Peak peak;

  EXPECT_EQ(peak.sample(5).peak, 5U);
  EXPECT_EQ(peak.sample(9).peak, 9U);
  const Gauge last = peak.sample(2, 100);

  EXPECT_EQ(last.current, 2U);
  EXPECT_EQ(last.peak, 9U);
  EXPECT_EQ(last.maximum, 100);
}

}  // namespace
}  // namespace tal::sql
