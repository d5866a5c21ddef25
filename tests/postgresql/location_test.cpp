#include "tal/postgresql/location.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tal/status.h"

namespace tal::postgresql {
namespace {

TEST(LocationTest, Forms) {
  struct Row {
    std::string_view text;
    std::string host;
    int port;
    std::string database;
  };
  const Row rows[] = {
      {"db1",                       "db1",                  5432,  "postgres"    },
      {"db1:6000",                  "db1",                  6000,  "postgres"    },
      {"db1/app1",                  "db1",                  5432,  "app1"        },
      {"db1:6000/app1",             "db1",                  6000,  "app1"        },
      {"db1:65535/",                "db1",                  65535, "postgres"    },
      {"db1:",                      "db1",                  5432,  "postgres"    },
      {"db1:/app1",                 "db1",                  5432,  "app1"        },
      {"db1/a/b:c",                 "db1",                  5432,  "a/b:c"       },
      {"192.0.2.7:1",               "192.0.2.7",            1,     "postgres"    },
      {"[::1]",                     "::1",                  5432,  "postgres"    },
      {"[::1]:6000/app1",           "::1",                  6000,  "app1"        },
      {"[fe80::1%eth0]/app1",       "fe80::1%eth0",         5432,  "app1"        },
      {"/run/postgresql",           "/run/postgresql",      5432,  "postgres"    },
      {"/run/postgresql/app1",      "/run/postgresql/app1", 5432,  "postgres"    },
      {"/run/postgresql:6000",      "/run/postgresql",      6000,  "postgres"    },
      {"/run/postgresql:6000/app1", "/run/postgresql",      6000,  "app1"        },
      {"/run/postgresql:/app1",     "/run/postgresql",      5432,  "app1"        },
      {"/run/postgresql:",          "/run/postgresql",      5432,  "postgres"    },
      {"/:6000/a/b:c",              "/",                    6000,  "a/b:c"       },
      {"/a b/@c",                   "/a b/@c",              5432,  "postgres"    },
      {"db1/na\xc3\xafve",          "db1",                  5432,  "na\xc3\xafve"},
  };

  for (const Row& row : rows) {
    const Location location = parseLocation(row.text);
    EXPECT_EQ(location.host, row.host) << row.text;
    EXPECT_EQ(location.port, row.port) << row.text;
    EXPECT_EQ(location.database, row.database) << row.text;
    EXPECT_EQ(location.isSocket(), row.text.front() == '/') << row.text;
  }
}

TEST(LocationTest, Refused) {
  using namespace std::string_view_literals;
  constexpr std::string_view kTexts[] = {
      ""sv,           ":5432"sv,     "db1:0"sv,     "db1:65536"sv, "db1:x"sv,         "db1:-1"sv,
      "db1:+1"sv,     "db1:5432x"sv, "db1: 5432"sv, "::1"sv,       "[::1"sv,          "[]"sv,
      "[::1]x"sv,     "[::1]6000"sv, "user@db1"sv,  "@db1"sv,      "db1,db2"sv,       "db 1"sv,
      "db1\n/app1"sv, "/run,/tmp"sv, "/run:x/a"sv,  "/run:0"sv,    "d\xc3\xa9"sv,     "db1/a\0b"sv,
      "db1/a\x1b"sv,  "[::1]]:1"sv,  "db[1]"sv,     "db1:1:2"sv,   "/run:70000/app"sv};

  for (const std::string_view text : kTexts) {
    try {
      parseLocation(text);
      ADD_FAILURE() << text << " was taken";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.status(), Status::kBadServerName) << text;
    }
  }
}

}  // namespace
}  // namespace tal::postgresql
