// What zelk prints of a replay is what it printed of the engine: every situation of the expected
// outputs that has an engine, and some scenarios made by chance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "tests/program/golden.h"
#include "tests/program/program_under_test.h"
#include "tests/recording/random_moment.h"
#include "tests/support/masking.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace companions::record {
namespace {

using testing_support::Command;
using testing_support::Ending;
using testing_support::Input;
using testing_support::readFile;
using testing_support::Result;
using testing_support::writeFile;

constexpr const char* kReplay = "replay:r.ndjson";

std::string replacedAll(std::string text, const std::string& part, const std::string& by) {
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at)) {
    text.replace(at, part.size(), by);
    at += by.size();
  }
  return text;
}

class RoundTrip : public testing::Test {
 protected:
  void TearDown() override { RecordProperty("compared", compared_); }

  [[nodiscard]] Command command(const std::filesystem::path& program,
                                std::vector<std::string> arguments) const {
    Command command{.program = program, .arguments = std::move(arguments)};
    command.folder = folder_.path();
    command.environment = program_tests::plainEnvironment();
    return command;
  }

  // The same over the engine of the situation, which may be another library.
  [[nodiscard]] Command original(const std::filesystem::path& program,
                                 std::vector<std::string> arguments) const {
    Command command = this->command(program, std::move(arguments));
    if (std::filesystem::exists(folder_ / "engine")) {
      command.environment["LD_PRELOAD"] = program_tests::fakeEngine();
      program_tests::useFakeEngine(command);
    }
    return command;
  }

  // Everything that zelk leaves, times apart.
  [[nodiscard]] std::string leavings(Command zelk, const std::string& keys) const {
    std::filesystem::remove(folder_ / "monitor.log");
    zelk.input = Input::text(keys);
    const Result result = testing_support::run(zelk);
    const bool hasLog = std::filesystem::exists(folder_ / "monitor.log");
    return testing_support::maskTimes(result.output) + "\n--\n" + result.error + "\n--\n" +
           std::to_string(result.ending.status.value_or(-1)) + "\n--\n" +
           (hasLog ? testing_support::maskTimes(readFile(folder_ / "monitor.log")) : "");
  }

  // Records so many refreshes of the configuration's engine.
  bool record(std::ptrdiff_t refreshes) const {
    std::filesystem::remove(folder_ / "r.ndjson");
    const Result result = testing_support::run(original(
        ZELK_RECORD_BINARY,
        {"-f", "zelk.cfg", "-i", "0.1", "-n", std::to_string(refreshes), "-o", "r.ndjson"}));
    return result.ending == Ending::exit(0);
  }

  void compare(const std::vector<std::string>& arguments, const std::string& keys,
               const std::string& situation) {
    const std::filesystem::path zelk = program_tests::builtProgram();
    const std::string settings = readFile(folder_ / "zelk.cfg");
    const std::size_t at = settings.find("SERV=") + 5;
    const std::string server = settings.substr(at, settings.find('\n', at) - at);
    const std::string expected = leavings(original(zelk, arguments), keys);
    writeFile(folder_ / "zelk.cfg",
              replacedAll(settings, "SERV=" + server, std::string("SERV=") + kReplay));
    EXPECT_EQ(replacedAll(leavings(command(zelk, arguments), keys), kReplay, server), expected)
        << situation;
    writeFile(folder_ / "zelk.cfg", settings);
    ++compared_;
  }

  int compared_ = 0;
  testing_support::TemporaryFolder folder_;
};

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

// What is left out: how a configuration is read, runs that take many seconds, names that fill a
// field and leave no room for the NUL that our library writes, and under a sanitizer other
// libraries, which cannot be preloaded.
bool canBeReplayed(const std::string& name, bool hasOtherLibrary) {
  const bool isAboutReading = name.starts_with("config/");
  const bool fillsFields = hasOtherLibrary && name.find("/odd-names/") != std::string::npos;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  if (hasOtherLibrary) return false;
#endif
  return !isAboutReading && !fillsFields && !name.starts_with("everything/timed");
}

TEST_F(RoundTrip, PrintsEveryExpectedOutputAgain) {
  for (const std::string& name : program_tests::goldenRuns()) {
    const program_tests::GoldenRun run(name);
    const testing_support::TemporaryFolder inputs;
    run.copyTo(inputs.path());
    const auto has = [&](const char* file) { return std::filesystem::exists(inputs / file); };
    // Both forms of the output are compared at the first of them.
    if (run.folder.filename() == "json") continue;
    if (!has("scenario.toml") || !has("zelk.cfg") || !canBeReplayed(name, has("engine"))) continue;
    for (const char* const file : {"scenario.toml", "zelk.cfg", "engine", "faults.toml"}) {
      std::filesystem::remove(folder_ / file);
      if (has(file)) std::filesystem::copy_file(inputs / file, folder_ / file);
    }
    const std::string keys = has("stdin") ? readFile(inputs / "stdin") : "";
    const auto refreshes =
        std::count(keys.begin(), keys.end(), 'r') + std::count(keys.begin(), keys.end(), 'R') + 1;
    if (!record(refreshes)) continue;
    std::vector<std::string> arguments = linesOf(readFile(inputs / "args"));
    compare(arguments, keys, name);
    arguments.emplace_back("-JSON");
    compare(arguments, keys, name);
  }
  EXPECT_GT(compared_, 100);
}

// The variable ZELK_ROUND_TRIPS asks for more of them.
TEST_F(RoundTrip, PrintsScenariosMadeByChanceAgain) {
  recording_tests::Random random(6);
  const char* const wanted = std::getenv("ZELK_ROUND_TRIPS");
  const int rounds = wanted == nullptr ? 20 : std::stoi(wanted);
  for (int round = 0; round < rounds; ++round) {
    std::vector<tal::recording::Moment> moments(1 + random() % 2);
    for (auto& moment : moments) moment = recording_tests::randomMoment(random);
    const std::string scenario = recording_tests::scenarioOf(moments, random);
    writeFile(folder_ / "scenario.toml", scenario);
    std::string settings =
        "SERV=sim:scenario.toml\nUSER=\nPASS=\nREFR=0\nLIMI=0\nOUTP=CONSOLE\nNAME=\n";
    for (const char* const key : {"FILE", "SESS", "CONN", "RESO", "COMM"}) {
      settings.append(key).append(random() % 5 == 0 ? "=NO\n" : "=YES\n");
    }
    // A recorder asks for handles in any case, so it meets failures that a report without them does
    // not.
    const bool hasFault = scenario.find("[[fault]]") != std::string::npos;
    settings.append(hasFault || random() % 2 == 0 ? "HAND=YES\n" : "HAND=NO\n");
    writeFile(folder_ / "zelk.cfg", settings);

    ASSERT_TRUE(record(std::ssize(moments)));
    std::string keys;
    for (std::size_t refresh = 1; refresh < moments.size(); ++refresh) keys += "r\n";
    compare({"-f", "zelk.cfg"}, keys + "q\n", std::to_string(round));
    compare({"-f", "zelk.cfg", "-runonce", "-JSON"}, "", std::to_string(round));
  }
}

}  // namespace
}  // namespace companions::record
