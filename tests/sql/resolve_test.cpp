#include "tal/sql/address.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tal/status.h"
#include "tests/sql/fake_host.h"

namespace tal::sql {
namespace {

using Texts = std::vector<std::string>;

const Deadline& later() {
  static const Deadline deadline(std::chrono::seconds(30));
  return deadline;
}

TEST(ResolveTest, ANumericHostIsItsOwnAddress) {
  EXPECT_EQ(resolveHost("192.0.2.7", later()), Texts{"192.0.2.7"});
  EXPECT_EQ(resolveHost("2001:DB8::7", later()), Texts{"2001:db8::7"});
}

TEST(ResolveTest, ThisMachine) {
  const Texts addresses = resolveHost("localhost", later());

  EXPECT_FALSE(addresses.empty());
  EXPECT_TRUE(std::ranges::all_of(addresses, &isLoopback));
}

TEST(ResolveTest, UnknownHost) {
  try {
    // A label holds 63 bytes at most, so nobody is asked about this one.
    resolveHost(std::string(64, 'x') + ".invalid", later());
    ADD_FAILURE() << "the host has an address";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), Status::kCannotReach);
  }
}

TEST(ResolveTest, EachAddressOfAHostOnce) {
  const sql_testing::FakeHost host("shop", {"127.0.0.2", "127.0.0.1", "127.0.0.2"});

  EXPECT_EQ(resolveHost("shop", later()), (Texts{"127.0.0.2", "127.0.0.1"}));
}

TEST(ResolveTest, SilenceEndsInTime) {
  const sql_testing::SilentHost host("silent");

  try {
    resolveHost("silent", Deadline(std::chrono::milliseconds(10)));
    ADD_FAILURE() << "the host has an address";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), Status::kNoAnswer);
  }
}

TEST(ResolveTest, Loopback) {
  struct Row {
    const char* address;
    bool isLoopback;
  };
  constexpr Row kRows[] = {
      {"127.0.0.1",       true },
      {"127.255.255.255", true },
      {"::1",             true },
      {"128.0.0.1",       false},
      {"10.0.0.1",        false},
      {"::2",             false},
      {"fe80::1",         false},
      {"",                false},
      {"localhost",       false},
  };

  for (const Row& row : kRows) {
    EXPECT_EQ(isLoopback(row.address), row.isLoopback) << row.address;
  }
}

}  // namespace
}  // namespace tal::sql
