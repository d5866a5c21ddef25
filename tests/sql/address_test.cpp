#include "tal/sql/address.h"

#include <gtest/gtest.h>

#include "tal/status.h"

namespace tal::sql {
namespace {

TEST(AddressTest, Forms) {
  struct Row {
    std::string_view text;
    std::string host;
    int port;
  };
  const Row rows[] = {
      {"db1",             "db1",         77   },
      {"db1:1",           "db1",         1    },
      {"db1:65535",       "db1",         65535},
      {"db1:",            "db1",         77   },
      {"db1:0080",        "db1",         80   },
      {"192.0.2.7:9",     "192.0.2.7",   9    },
      {"[::1]",           "::1",         77   },
      {"[::1]:",          "::1",         77   },
      {"[2001:db8::7]:9", "2001:db8::7", 9    },
  };

  for (const Row& row : rows) {
    const Address address = parseAddress(row.text, 77);
    EXPECT_EQ(address.host, row.host) << row.text;
    EXPECT_EQ(address.port, row.port) << row.text;
  }
}

TEST(AddressTest, Refused) {
  constexpr std::string_view kTexts[] = {"",      ":1",
                                         "a:0",   "a:65536",
                                         "a:-1",  "a:1x",
                                         "a:1:2", "::1",
                                         "[::1",  "[]",
                                         "[]:1",  "[::1]1",
                                         "a b",   "a\tb",
                                         "a,b",   "u@a",
                                         "a/b",   "a]",
                                         "[a[b]", "\x7f",
                                         "\xc3",  "a:99999999999999999999"};

  for (const std::string_view text : kTexts) {
    try {
      parseAddress(text, 77);
      ADD_FAILURE() << text << " was taken";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.status(), Status::kBadServerName) << text;
    }
  }
}

}  // namespace
}  // namespace tal::sql
