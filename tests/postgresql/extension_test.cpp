// What the lists show while sessions wait to make a table longer. Nobody keeps that lock from one
// statement to the next, so the holder is stopped as a process.
#include <array>
#include <atomic>
#include <chrono>
#include <future>
#include <optional>
#include <string>

#include "tests/postgresql/situation_test.h"
#include "tests/support/frozen.h"
#include "tests/support/wait_until.h"

namespace testing_support {
namespace {

constexpr const char* kHolder =
    "SELECT pid FROM pg_locks WHERE locktype = 'extend' AND granted"
    " AND relation = 'grows'::regclass";

class ExtensionTest : public SituationTest {
 protected:
  void SetUp() override {
    SituationTest::SetUp();
    // Each row needs a page of its own.
    admin_.run("CREATE UNLOGGED TABLE grows (filler char(1000)) WITH (fillfactor = 10)");
    for (Session& writer : writers_) {
      writer.start("INSERT INTO grows SELECT '' FROM generate_series(1, 200000)");
    }
  }

  void TearDown() override {
    stopped_.reset();
    SituationTest::TearDown();
  }

  // Stops the holder of the lock. Returns whether all others wait for it then and the lists can be
  // made.
  bool stopHolder() {
    const std::string holder = admin_.value(kHolder);
    if (holder.empty()) return false;
    stopped_.emplace(holder_ = std::stoi(holder));
    std::atomic<bool> isOver = false;
    std::future<bool> jam =
        std::async(std::launch::async, [&] { return isJammed(holder, isOver); });
    // Stopped at a bad moment, a process holds up whoever asks for the server's locks, too.
    isOver = jam.wait_for(std::chrono::seconds(1)) != std::future_status::ready;
    if (isOver) stopped_.reset();
    if (jam.get() && !isOver) return true;
    stopped_.reset();
    return false;
  }

  std::array<Session, 4> writers_ = {session("a"), session("b"), session("c"), session("d")};
  int holder_ = 0;
  std::optional<Frozen> stopped_;

 private:
  bool isJammed(const std::string& holder, const std::atomic<bool>& isOver) {
    std::string waiters;
    do {
      waiters = admin_.value(
          "SELECT count(*) FILTER (WHERE NOT granted) FROM pg_locks WHERE locktype = 'extend'"
          " HAVING bool_or(granted AND pid = " +
          holder + ")");
    } while (!isOver && !waiters.empty() && waiters != std::to_string(writers_.size() - 1));
    if (isOver || waiters.empty()) return false;
    engine_->openFiles();
    engine_->clients();
    engine_->sqlConnections();
    return true;
  }
};

TEST_F(ExtensionTest, WaitsForTheExtensionOfATableAreShownOnTheTable) {
  ASSERT_TRUE(waitUntil([this] { return stopHolder(); }, std::chrono::milliseconds(0)));

  for (const Session& writer : writers_) {
    EXPECT_EQ(observe(writer), writer.process() == holder_
                                   ? "grows 0/77/0/1019; 1019, 4 locks; active"
                                   : "grows 0/77/2/1019; 1019, 3 locks; active");
  }
}

}  // namespace
}  // namespace testing_support
