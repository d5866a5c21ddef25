#include "tal/mariadb/location.h"

#include <gtest/gtest.h>

#include "tal/status.h"

namespace tal::mariadb {
namespace {

struct Good {
  const char* text;
  const char* socketPath;
  const char* host;
  std::uint16_t port;
};

class GoodLocationTest : public testing::TestWithParam<Good> {};

TEST_P(GoodLocationTest, IsRead) {
  const Location location = parseLocation(GetParam().text);

  EXPECT_EQ(location.socketPath, GetParam().socketPath);
  EXPECT_EQ(location.address.host, GetParam().host);
  EXPECT_EQ(location.address.port, GetParam().port);
}

INSTANTIATE_TEST_SUITE_P(
    All, GoodLocationTest,
    testing::Values(Good{"db", "", "db", 3306}, Good{"db:3307", "", "db", 3307},
                    Good{"db:", "", "db", 3306}, Good{"localhost", "", "localhost", 3306},
                    Good{"127.0.0.1:65535", "", "127.0.0.1", 65535}, Good{"[::1]", "", "::1", 3306},
                    Good{"[fe80::1]:1", "", "fe80::1", 1},
                    Good{"/run/mysqld/mysqld.sock", "/run/mysqld/mysqld.sock", "", 0},
                    Good{"/a b/c:3306", "/a b/c:3306", "", 0}));

class BadLocationTest : public testing::TestWithParam<std::string> {};

TEST_P(BadLocationTest, IsRefused) {
  try {
    parseLocation(GetParam());
    FAIL() << GetParam();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), Status::kBadServerName);
  }
}

INSTANTIATE_TEST_SUITE_P(All, BadLocationTest,
                         testing::Values("", ":3306", "db:0", "db:65536", "db:x", "db/", "db/app",
                                         "db:3306/app", "user@db", "::1", "[::1", "[]", "[::1]x",
                                         "/", "/run/mysqld/", "d b", "/" + std::string(108, 's'),
                                         std::string("/a\0b", 4)));

TEST(LocationTest, LongestSocketPath) {
  const std::string path = "/" + std::string(106, 's');

  EXPECT_EQ(parseLocation(path).socketPath, path);
}

}  // namespace
}  // namespace tal::mariadb
