#include "tal/mariadb/errors.h"

#include <gtest/gtest.h>

#include <map>

namespace tal::mariadb {
namespace {

// A copy of its own: numbers as the server's manual has them.
const std::map<unsigned int, std::int16_t> kExpected = {
    {1021, 1021},
    {1037, 1037},
    {1041, 1041},
    {1129, 1129},
    {1317, 1317},
    {2001, 7103},
    {2002, 7103},
    {2003, 7103},
    {2005, 7103},
    {2007, 7130},
    {2012, 7130},
    {2027, 7130},
    {1043, 7103},
    {1045, 7104},
    {1698, 7104},
    {1130, 7104},
    {1251, 7104},
    {2059, 7104},
    {5010, 7131},
    {2061, 7104},
    {1044, 7105},
    {1142, 7105},
    {1143, 7105},
    {1227, 7105},
    {2006, 7106},
    {2013, 7106},
    {2055, 7106},
    {1927, 7106},
    {1158, 7106},
    {1159, 7106},
    {1160, 7106},
    {1161, 7106},
    {1969, 7107},
    {1054, 7110},
    {1064, 7110},
    {1109, 7110},
    {1146, 7110},
    {1193, 7110},
    {2008, 7112},
    {1040, 7116},
    {1203, 7116},
    {1226, 7116},
    {1053, 7117},
    {1077, 7117},
    {2026, 7118},
    {1820, 7123},
    {1862, 7123},
    {4151, 7124},
    {2020, 7129},
    {1153, 7129},
};

TEST(ErrorsTest, EachNumberHasItsStatus) {
  for (unsigned int error = 0; error <= 65535; ++error) {
    const auto row = kExpected.find(error);
    const std::int16_t expected = row == kExpected.end() ? 7120 : row->second;
    EXPECT_EQ(static_cast<std::int16_t>(statusOf(error)), expected) << error;
  }
}

TEST(ErrorsTest, NoNumberIsTakenForAStatusOfTheInterface) {
  for (const auto& [error, status] : kExpected) {
    if (static_cast<unsigned int>(status) != error) continue;
    EXPECT_LT(status, 7008) << error;
    EXPECT_NE(status, 0) << error;
  }
}

}  // namespace
}  // namespace tal::mariadb
