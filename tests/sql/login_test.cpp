#include "tal/sql/login.h"

#include <gtest/gtest.h>

#include <map>

namespace tal::sql {
namespace {

// A host whose addresses answer with these statuses.
class Host {
 public:
  explicit Host(std::map<std::string, Status> answers) : answers_(std::move(answers)) {}

  std::string connect(const std::vector<std::string>& addresses) {
    return firstReachable(addresses, Deadline(std::chrono::hours(1)),
                          [this](const std::string& address, const Deadline& deadline) {
                            asked_ += address + " ";
                            lastShare_ = deadline.remaining();
                            const Status status = answers_.at(address);
                            if (status != Status::kSuccess) throw Failure(status);
                            return address;
                          });
  }

  [[nodiscard]] const std::string& asked() const { return asked_; }
  [[nodiscard]] std::chrono::milliseconds lastShare() const { return lastShare_; }

 private:
  std::map<std::string, Status> answers_;
  std::string asked_;
  std::chrono::milliseconds lastShare_{};
};

Status statusOf(Host& host, const std::vector<std::string>& addresses) {
  try {
    host.connect(addresses);
    return Status::kSuccess;
  } catch (const Failure& failure) {
    return failure.status();
  }
}

TEST(FirstReachable, PassesOverSilentAndClosedAddresses) {
  Host host({
      {"silent", Status::kNoAnswer   },
      {"closed", Status::kCannotReach},
      {"open",   Status::kSuccess    },
      {"spare",  Status::kSuccess    }
  });

  EXPECT_EQ(host.connect({"silent", "closed", "open", "spare"}), "open");

  EXPECT_EQ(host.asked(), "silent closed open ");
}

TEST(FirstReachable, TakesTheAnswerOfAServer) {
  Host host({
      {"refuses", Status::kLoginRefused},
      {"open",    Status::kSuccess     }
  });

  EXPECT_EQ(statusOf(host, {"refuses", "open"}), Status::kLoginRefused);

  EXPECT_EQ(host.asked(), "refuses ");
}

TEST(FirstReachable, FailsAsTheLastAddressDoes) {
  Host host({
      {"closed", Status::kCannotReach},
      {"silent", Status::kNoAnswer   }
  });

  EXPECT_EQ(statusOf(host, {"closed", "silent"}), Status::kNoAnswer);
}

TEST(FirstReachable, SharesTheTimeEqually) {
  Host host({
      {"open",  Status::kSuccess},
      {"spare", Status::kSuccess}
  });

  host.connect({"open", "spare"});

  EXPECT_LE(host.lastShare(), std::chrono::minutes(30));
  EXPECT_GT(host.lastShare(), std::chrono::minutes(29));
}

}  // namespace
}  // namespace tal::sql
