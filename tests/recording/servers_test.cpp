// What zelk prints of a real server is what it prints of the server's recording: every section
// switched on and off, with and without handles, as text and as JSON.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "tests/mariadb/server_test.h"
#include "tests/postgresql/server_test.h"
#include "tests/program/program_under_test.h"
#include "tests/support/masking.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"
#include "tests/support/wait_until.h"

namespace recording_tests {
namespace {

using nlohmann::json;
using testing_support::Command;
using testing_support::Ending;
using testing_support::sameText;

using Settings = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kRecording = "r.ndjson";
const std::string kReplay = "replay:r.ndjson";
const std::vector<std::string> kSections = {"FILE", "SESS", "CONN", "RESO", "COMM", "HAND"};
constexpr unsigned kAll = 0b111111;
constexpr unsigned kAtRest = 0b100011;  // neither connections, whose periods grow, nor counters

// Two refreshes of a server: recorded, reported from the server's own answers, and replayed.
class RoundTrip {
 public:
  explicit RoundTrip(std::string server) : server_(std::move(server)) {}

  // Records the server, and keeps what it answered.
  void record() const {
    const auto result = testing_support::run(withAnswers(recorder({"-n", "2"})));
    ASSERT_EQ(result.ending, Ending::exit(0)) << result.error;
  }

  [[nodiscard]] Command recorder(std::vector<std::string> arguments) const {
    configure(server_, kAll);
    arguments.insert(arguments.begin(), {"-f", "zelk.cfg", "-i", "0.1", "-o", kRecording});
    return command(ZELK_RECORD_BINARY, std::move(arguments));
  }

  // The moments that are recorded so far.
  [[nodiscard]] std::vector<json> moments() const {
    std::vector<json> moments;
    std::ifstream lines(folder_ / kRecording);
    for (std::string line; std::getline(lines, line) && !lines.eof();) {
      moments.push_back(json::parse(line));
    }
    return moments;
  }

  // Runs zelk over the recording from `time` on, with these keys.
  [[nodiscard]] testing_support::Result replay(const std::string& time,
                                               const std::string& keys) const {
    configure(kReplay + time, kAll);
    Command replay = zelk(false);
    replay.input = testing_support::Input::text(keys);
    return testing_support::run(replay);
  }

  // What zelk prints of the kept answers; `sections` are bits of kSections.
  [[nodiscard]] std::string original(unsigned sections, bool asJson) const {
    configure(server_, sections);
    return printed(withAnswers(zelk(asJson)));
  }

  // What zelk prints of the server itself.
  [[nodiscard]] std::string direct(unsigned sections, bool asJson) const {
    configure(server_, sections);
    return printed(zelk(asJson));
  }

  [[nodiscard]] std::string replayed(unsigned sections, bool asJson) const {
    configure(kReplay, sections);
    std::string text = printed(zelk(asJson));
    const std::size_t at = text.find(kReplay);
    EXPECT_NE(at, std::string::npos) << text;
    return text.replace(std::min(at, text.size()), kReplay.size(), server_);
  }

 private:
  void configure(const std::string& server, unsigned sections) const {
    Settings settings = {
        {"SERV", server  },
        {"USER", "zelk"  },
        {"PASS", "secret"}
    };
    for (std::size_t at = 0; at < kSections.size(); ++at) {
      settings.emplace_back(kSections[at], (sections >> at & 1U) != 0 ? "YES" : "NO");
    }
    testing_support::writeFile(folder_ / "zelk.cfg", program_tests::configuration(settings));
    std::filesystem::permissions(folder_ / "zelk.cfg", std::filesystem::perms{0600});
  }

  [[nodiscard]] Command command(const std::filesystem::path& program,
                                std::vector<std::string> arguments) const {
    Command command{.program = program, .arguments = std::move(arguments)};
    command.folder = folder_.path();
    command.environment = program_tests::plainEnvironment();
    return command;
  }

  [[nodiscard]] Command zelk(bool asJson) const {
    std::vector<std::string> arguments = {"-f", "zelk.cfg"};
    if (asJson) arguments.insert(arguments.end(), {"-runonce", "-JSON"});
    Command zelk = command(program_tests::builtProgram(), std::move(arguments));
    zelk.input = testing_support::Input::text("r\nq\n");
    return zelk;
  }

  [[nodiscard]] Command withAnswers(Command command) const {
    command.environment["LD_PRELOAD"] = KEPT_ANSWERS_LIBRARY;
    command.environment["KEPT_ANSWERS"] = folder_ / "answers";
    return command;
  }

  static std::string printed(const Command& command) {
    const auto result = testing_support::run(command);
    EXPECT_EQ(result.ending, Ending::exit(0));
    return testing_support::maskTimes(result.output) + "\n--\n" + result.error;
  }

  std::string server_;
  testing_support::TemporaryFolder folder_;
};

// Compares all reports, and those of what stands still with the server itself.
void expectTheSame(const RoundTrip& trip) {
  int compared = 0;
  EXPECT_TRUE(trip.original(kAll, false).find("Wait State:        Record") != std::string::npos);
  for (const bool asJson : {false, true}) {
    for (unsigned sections = 0; sections <= kAll; ++sections) {
      EXPECT_PRED_FORMAT2(sameText, trip.original(sections, asJson),
                          trip.replayed(sections, asJson))
          << sections;
      ++compared;
    }
    EXPECT_PRED_FORMAT2(sameText, trip.direct(kAtRest, asJson), trip.replayed(kAtRest, asJson));
    ++compared;
  }
  testing::Test::RecordProperty("compared", compared);
}

std::string locationOf(const testing_support::PrivateServer& server) {
  return "postgresql://127.0.0.1:" + std::to_string(server.port()) + "/app";
}

using RecordedPostgresql = testing_support::ServerTest;

// One session has locked a row and a table of an odd name, the other waits for the row.
TEST_F(RecordedPostgresql, IsReplayedAsItWas) {
  admin_.run(R"(CREATE TABLE "größe {x41} ""\" (n int))");
  auto holder = session("holder");
  auto waiter = session("waiter");
  holder.run("SET application_name TO 'a \"name\" {x41} {n}'");
  holder.run(R"(BEGIN; UPDATE t SET note = '' WHERE id = 1; LOCK TABLE "größe {x41} ""\")");
  waiter.start("UPDATE t SET note = '' WHERE id = 1");
  waitUntilBlocked(waiter);
  const RoundTrip trip(locationOf(server_));

  trip.record();

  expectTheSame(trip);
}

class RecordedMariadb : public mariadb_testing::InstrumentedServerTest {};

TEST_F(RecordedMariadb, IsReplayedAsItWas) {
  admin_.executeAll({"CREATE TABLE orders (id INT PRIMARY KEY, v INT)",
                     "INSERT INTO orders SELECT seq, 0 FROM seq_1_to_100",
                     "CREATE TABLE `p \"{x41}` (id INT)"});
  auto holder = session();
  auto waiter = session();
  holder.executeAll(
      {"BEGIN", "SELECT COUNT(*) FROM `p \"{x41}`", "UPDATE orders SET v = 1 WHERE id < 4"});
  waiter.execute("BEGIN");
  waiter.start("UPDATE orders SET v = 2 WHERE id = 1");
  waitForState(waiter, "Updating");
  ASSERT_TRUE(testing_support::waitUntil(
      [&] {
        return admin_.value("SELECT COUNT(*) FROM information_schema.innodb_lock_waits") == "1";
      },
      mariadb_testing::kPictureAge));
  const RoundTrip trip("mariadb://" + mariadb_testing::locationOf(server_));

  trip.record();

  expectTheSame(trip);
}

std::ptrdiff_t refreshesIn(const std::string& text) {
  std::ptrdiff_t count = 0;
  for (std::size_t at = 0; (at = text.find("\tTCP/IP Remote Sessions:", at)) != std::string::npos;
       ++at)
    ++count;
  return count;
}

std::ptrdiff_t errorsIn(const std::vector<json>& moments) {
  return std::ranges::count_if(moments, [](const json& each) { return each.contains("error"); });
}

// zelk ends at the failure, as it did then, and can begin after it.
TEST(RecordedRestart, EndsTheReplayAndCanBeSkipped) {
  testing_support::PrivateServer server;
  testing_support::prepare(server);
  const RoundTrip trip(locationOf(server));
  testing_support::Process recorder(trip.recorder({}));
  recorder.waitUntil([&] { return trip.moments().size() >= 2; }, "two moments");

  server.restart();
  recorder.waitUntil([&] { return errorsIn(trip.moments()) > 0; }, "a moment that failed");
  recorder.waitUntil([&] { return !trip.moments().back().contains("error"); }, "another server");
  recorder.sendSignal(SIGTERM);
  EXPECT_EQ(recorder.wait(), Ending::exit(0)) << recorder.error();

  const std::vector<json> moments = trip.moments();
  const auto failed =
      std::ranges::find_if(moments, [](const auto& each) { return each.contains("error"); });
  const std::string status = std::to_string((*failed)["error"]["status"].get<int>());
  const std::string last = "@" + moments.back()["time"].get<std::string>();
  const auto ended = trip.replay("", std::string(2 * moments.size(), 'r'));
  EXPECT_EQ(ended.ending, Ending::exit(1));
  EXPECT_TRUE(ended.error.starts_with(status + ": ")) << ended.error;
  EXPECT_EQ(refreshesIn(ended.output), failed - moments.begin());
  EXPECT_EQ(refreshesIn(trip.replay(last, "q").output), 1);
}

}  // namespace
}  // namespace recording_tests
