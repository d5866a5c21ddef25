#include "tal/sql/deadline.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include "tal/status.h"
#include "tests/support/file_descriptor.h"

namespace tal::sql {
namespace {

using testing_support::FileDescriptor;

class WaitTest : public testing::Test {
 protected:
  WaitTest() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    reading_ = FileDescriptor(ends[0]);
    writing_ = FileDescriptor(ends[1]);
  }

  FileDescriptor reading_;
  FileDescriptor writing_;
};

TEST_F(WaitTest, EndsWhenReady) {
  const Deadline deadline(std::chrono::seconds(30));

  EXPECT_EQ(waitForSocket(writing_.number(), POLLOUT, deadline), POLLOUT);
  ASSERT_EQ(::write(writing_.number(), "x", 1), 1);
  EXPECT_EQ(waitForSocket(reading_.number(), POLLIN, deadline), POLLIN);
}

TEST_F(WaitTest, AnErrorCountsAsReady) {
  writing_.close();

  EXPECT_EQ(waitForSocket(reading_.number(), POLLIN, Deadline(std::chrono::seconds(30))), POLLIN);
}

TEST_F(WaitTest, EndsAtTheDeadline) {
  const auto start = Deadline::Clock::now();
  const Deadline deadline(std::chrono::milliseconds(20));

  try {
    waitForSocket(reading_.number(), POLLIN, deadline);
    ADD_FAILURE() << "nothing was sent";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), Status::kNoAnswer);
  }
  EXPECT_GE(Deadline::Clock::now() - start, std::chrono::milliseconds(20));
  EXPECT_TRUE(deadline.passed());
}

TEST_F(WaitTest, ReadinessDoesNotOutliveTheDeadline) {
  ASSERT_EQ(::write(writing_.number(), "x", 1), 1);
  const Deadline passed(std::chrono::milliseconds(0));

  try {
    waitForSocket(reading_.number(), POLLIN, passed);
    ADD_FAILURE() << "the deadline has passed";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), Status::kNoAnswer);
  }
}

TEST(DeadlineTest, WithinTakesTheEarlier) {
  const Deadline deadline(std::chrono::hours(1));

  EXPECT_LE(deadline.within(std::chrono::milliseconds(50)).remaining(),
            std::chrono::milliseconds(50));
  EXPECT_LE(deadline.within(std::chrono::hours(2)).remaining(), std::chrono::hours(1));
  EXPECT_TRUE(Deadline(std::chrono::milliseconds(-5)).passed());
}

}  // namespace
}  // namespace tal::sql
