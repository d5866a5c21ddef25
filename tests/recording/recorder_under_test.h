// zelk-record in a folder of its own, over the simulated engine.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace companions::record {

using nlohmann::json;
using testing_support::Command;
using testing_support::Ending;
using testing_support::Process;
using testing_support::readFile;
using testing_support::Result;
using testing_support::writeFile;

class Recording : public testing::Test {
 protected:
  Recording() { serve("[[file]]\nname = \"orders\"\n"); }

  // What the simulated engine serves from now on.
  void serve(const std::string& scenario) {
    writeFile(folder_ / "s.toml", scenario);
    configure("sim:s.toml");
  }

  void configure(const std::string& server) {
    writeFile(folder_ / "r.cfg", "SERV=" + server +
                                     "\nUSER=\nPASS=\nREFR=\nLIMI=\nOUTP=CONSOLE\nNAME=\nFILE=\n"
                                     "SESS=\nCONN=\nRESO=\nCOMM=\nHAND=\n");
  }

  [[nodiscard]] Command recorder(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"-f", "r.cfg", "-i", "0.1"});
    Command command{.program = ZELK_RECORD_BINARY, .arguments = std::move(arguments)};
    command.folder = folder_.path();
    command.environment = {
        {"TZ",     "UTC"},
        {"LC_ALL", "C"  }
    };
    return command;
  }

  // Runs it to its end, which must be a good one.
  std::string record(std::vector<std::string> arguments) const {
    const Result result = testing_support::run(recorder(std::move(arguments)));
    EXPECT_EQ(result.ending, Ending::exit(0)) << result.error;
    return result.error;
  }

  [[nodiscard]] std::string file(const std::string& name) const {
    return std::filesystem::exists(folder_ / name) ? readFile(folder_ / name) : "";
  }

  // The moments of a text, all of which must be whole.
  static std::vector<json> momentsIn(const std::string& text) {
    EXPECT_TRUE(text.empty() || text.ends_with('\n'));
    std::vector<json> moments;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) moments.push_back(json::parse(line));
    return moments;
  }
  [[nodiscard]] std::vector<json> moments(const std::string& name) const {
    return momentsIn(file(name));
  }

  void waitForMoments(Process& process, const std::string& name, int count) const {
    ASSERT_TRUE(process.waitUntil(
        [&] {
          const std::string text = file(name);
          return std::count(text.begin(), text.end(), '\n') >= count;
        },
        "so many moments"));
  }

  static void stop(Process& process, int signal = SIGTERM) {
    process.sendSignal(signal);
    EXPECT_EQ(process.wait(), Ending::exit(0)) << process.error();
  }

  testing_support::TemporaryFolder folder_;
};

}  // namespace companions::record
