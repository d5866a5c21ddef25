// Sockets that are shut down at a deadline.
#include "tal/mariadb/watchdog.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "tests/support/file_descriptor.h"

namespace tal::mariadb {
namespace {

using testing_support::FileDescriptor;

class WatchdogTest : public testing::Test {
 protected:
  WatchdogTest() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    own_ = FileDescriptor(ends[0]);
    peer_ = FileDescriptor(ends[1]);
  }

  FileDescriptor own_;
  FileDescriptor peer_;
};

TEST_F(WatchdogTest, EndsAReadThatNobodyAnswers) {
  Watchdog watchdog{sql::Deadline(std::chrono::milliseconds(20))};
  watchdog.guard(own_.number());
  char byte = 0;

  EXPECT_EQ(::read(own_.number(), &byte, 1), 0);
  EXPECT_TRUE(watchdog.hasBitten());
}

TEST_F(WatchdogTest, EndsAReadThatBeginsPastTheDeadline) {
  Watchdog watchdog{sql::Deadline(std::chrono::milliseconds(0))};
  watchdog.guard(-1);
  watchdog.guard(own_.number());
  char byte = 0;

  EXPECT_EQ(::read(own_.number(), &byte, 1), 0);
  EXPECT_TRUE(watchdog.hasBitten());
}

TEST_F(WatchdogTest, LeavesTheSocketAloneBefore) {
  {
    Watchdog watchdog{sql::Deadline(std::chrono::hours(1))};
    watchdog.guard(own_.number());
    EXPECT_FALSE(watchdog.hasBitten());
  }
  char byte = 0;

  ASSERT_EQ(::write(peer_.number(), "x", 1), 1);
  EXPECT_EQ(::read(own_.number(), &byte, 1), 1);
}

}  // namespace
}  // namespace tal::mariadb
