#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "companions/shared/engine.h"
#include "tal/recording/text.h"
#include "tal/recording/writer.h"
#include "tests/recording/random_moment.h"
#include "tests/support/temporary_folder.h"
#include "tests/tal/conformance.h"

namespace recording_tests {
namespace {

using companions::CallFailure;
using companions::EngineConnection;
using companions::EngineLibrary;
using namespace tal::recording;

Moment moment(std::int64_t seconds, std::uint32_t users) {
  Moment moment;
  moment.heading.time = seconds * 1'000'000;
  moment.engine.emplace();
  moment.version = {.major = static_cast<std::int32_t>(users), .minor = 0, .build = 0};
  moment.files.emplace().resize(1);
  moment.files->at(0).name = "file";
  moment.clients.emplace();
  moment.sqlConnections.emplace();
  moment.usage.emplace().users.current = users;
  moment.communication.emplace().requests = users;
  return moment;
}

Moment lost(std::int64_t seconds) {
  Moment moment;
  moment.heading.time = seconds * 1'000'000;
  moment.error = {"TalConnectServer", 7103, "away"};
  return moment;
}

class Replay : public testing::Test {
 protected:
  std::string recording(const std::vector<Moment>& moments, const std::string& tail = "") {
    std::string lines;
    for (const Moment& each : moments) appendLine(lines, each);
    testing_support::writeFile(folder_ / "r@1.ndjson", lines + tail);
    return "replay:" + (folder_ / "r@1.ndjson").string();
  }

  testing_support::TemporaryFolder folder_;
  EngineLibrary library_;
};

// The status that asking fails with; 0 where it does not.
template <typename Ask>
int statusOf(const Ask& ask) {
  try {
    ask();
    return 0;
  } catch (const CallFailure& failure) {
    return failure.status();
  }
}

TEST_F(Replay, LeavesAMomentWhenSomethingIsAskedAgain) {
  const EngineConnection engine({recording({moment(1, 10), moment(2, 20), moment(3, 30)}), "", ""});

  EXPECT_EQ(engine.version().major, 10);
  EXPECT_EQ(engine.usage().users.current, 10U);
  EXPECT_EQ(engine.files().at(0).name, "file");
  EXPECT_EQ(engine.version().major, 10);
  EXPECT_EQ(engine.usage().users.current, 20U);
  EXPECT_EQ(engine.communication().requests, 20U);
  EXPECT_EQ(engine.communication().requests, 30U);
  EXPECT_EQ(engine.version().major, 10);
}

TEST_F(Replay, EndsBehindTheLastMoment) {
  for (const auto& moments : {std::vector<Moment>{}, {moment(1, 10)}}) {
    const EngineConnection engine({recording(moments), "", ""});
    if (!moments.empty()) engine.usage();
    for (int round = 0; round < 2; ++round) {
      EXPECT_EQ(statusOf([&] { engine.usage(); }), 7127);
      EXPECT_EQ(statusOf([&] { engine.files(); }), 7127);
      EXPECT_EQ(statusOf([&] { engine.version(); }), 7127);
      EXPECT_EQ(statusOf([&] { engine.information(); }), 7127);
    }
  }
}

TEST_F(Replay, AnswersWhatFailedOrWasNotRecordedWithAStatus) {
  Moment failed = moment(2, 20);
  failed.usage.reset();
  failed.communication.reset();
  failed.error = {"TalGetZorbUsageEx2", -7, "failed"};
  Moment off = moment(3, 30);
  off.clients.reset();
  const EngineConnection engine({recording({lost(1), failed, off}), "", ""});

  EXPECT_EQ(statusOf([&] { engine.information(); }), 7103);
  EXPECT_EQ(statusOf([&] { engine.version(); }), 7103);
  EXPECT_EQ(statusOf([&] { engine.files(); }), 7103);
  EXPECT_EQ(engine.files().size(), 1U);
  EXPECT_EQ(engine.version().major, 20);
  EXPECT_EQ(statusOf([&] { engine.usage(); }), -7);
  EXPECT_EQ(statusOf([&] { engine.communication(); }), -7);
  EXPECT_EQ(engine.usage().users.current, 30U);
  EXPECT_EQ(statusOf([&] { engine.clients(); }), 7128);
}

TEST_F(Replay, BeginsAtATime) {
  const std::string server = recording({moment(1, 10), moment(3, 30), moment(2, 20)});
  struct Case {
    const char* time;
    std::uint32_t users;  // 0: the end
  };
  const std::vector<Case> cases = {
      {"@1970-01-01T00:00:00Z",    10},
      {"@1970-01-01T00:00:01.5Z",  30},
      {"@1970-01-01T00:00:03Z",    30},
      {"@1970-01-01T00:00:03.01Z", 0 },
      {"",                         10},
  };
  for (const Case& each : cases) {
    const EngineConnection engine({server + each.time, "", ""});
    std::uint32_t users = 0;
    const int status = statusOf([&] { users = engine.usage().users.current; });
    EXPECT_EQ(users, each.users) << each.time;
    EXPECT_EQ(status, each.users == 0 ? 7127 : 0) << each.time;
  }
}

TEST_F(Replay, PassesDamageOverAloud) {
  std::string tail = "{\"broken\n";
  appendLine(tail, moment(2, 20));
  const EngineConnection engine({recording({moment(1, 10)}, tail), "", ""});
  engine.usage();

  testing::internal::CaptureStderr();
  EXPECT_EQ(engine.usage().users.current, 20U);
  const std::string complaint = testing::internal::GetCapturedStderr();

  EXPECT_EQ(complaint.find("libtal: " + (folder_ / "r@1.ndjson").string() + ":2 (byte "), 0U)
      << complaint;
}

TEST_F(Replay, NeedsAFileThatCanBeRead) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(statusOf([] { const EngineConnection engine({"replay:/none", "", ""}); }), 7133);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "libtal: /none: cannot be read: No such file or directory\n");
}

Moment collected(const EngineConnection& engine) {
  Moment moment;
  try {
    moment.engine = engine.information();
    moment.version = engine.version();
    moment.files = engine.files();
    moment.clients = engine.clients();
    moment.sqlConnections = engine.sqlConnections();
    moment.usage = engine.usage();
    moment.communication = engine.communication();
  } catch (const CallFailure& failure) {
    moment.error = {failure.call(), failure.status(), ""};
  }
  return moment;
}

// What goes through the interface of a simulated engine comes out of the replay again.
TEST_F(Replay, ServesWhatAThousandScenariosServed) {
  constexpr std::size_t kRefreshes = 2;
  Random random(5);
  std::size_t failures = 0;
  for (int round = 0; round < 1000; ++round) {
    std::vector<Moment> moments;
    while (moments.size() < kRefreshes) moments.push_back(randomMoment(random));
    testing_support::writeFile(folder_ / "s.toml", scenarioOf(moments, random));
    const EngineConnection original({"sim:" + (folder_ / "s.toml").string(), "", ""});
    std::vector<Moment> served;
    do {
      served.push_back(collected(original));
    } while (served.size() < kRefreshes && !served.back().error);
    failures += served.back().error ? 1 : 0;

    const EngineConnection replay({recording(served), "", ""});

    for (const Moment& each : served) {
      Moment again = collected(replay);
      // The call is the one that found out: the first of its section.
      ASSERT_EQ(again.error.has_value(), each.error.has_value()) << round;
      if (again.error) {
        EXPECT_EQ(again.error->status, each.error->status);
        again.error->call = each.error->call;
      }
      ASSERT_EQ(sectionsOf(again), sectionsOf(each)) << round;
    }
  }
  EXPECT_GT(failures, 20U);
}

// A recording that is long enough for every test of the suite.
tal::test::Target conformingRecording() {
  static const testing_support::TemporaryFolder folder;
  std::string lines;
  Moment each = moment(1, 10);
  each.files->at(0).handles.resize(2);
  each.clients->resize(3);
  for (tal::Client& client : *each.clients) client.handles.resize(1);
  each.sqlConnections->resize(2);
  for (int count = 0; count < 5; ++count) appendLine(lines, each);
  testing_support::writeFile(folder / "r.ndjson", lines);
  return {"replay:" + (folder / "r.ndjson").string(), "", ""};
}

}  // namespace
}  // namespace recording_tests

namespace tal::test {
namespace {

INSTANTIATE_TEST_SUITE_P(Replayed, Conformance,
                         testing::Values(EngineUnderTest{"Recording",
                                                         recording_tests::conformingRecording}),
                         nameOf);

}  // namespace
}  // namespace tal::test
