#include "tests/program/servers/monitor.h"

#include <gtest/gtest.h>

#include "tests/program/program_under_test.h"

namespace servers_testing {

using testing_support::Ending;
using testing_support::Result;

Monitor::Monitor(const Target& target,
                 const std::vector<std::pair<std::string, std::string>>& changes) {
  std::vector<std::pair<std::string, std::string>> settings = {
      {"SERV", target.server  },
      {"USER", target.user    },
      {"PASS", target.password}
  };
  for (const char* const section : {"FILE", "SESS", "CONN", "RESO", "COMM", "HAND"}) {
    settings.emplace_back(section, "YES");
  }
  settings.insert(settings.end(), changes.begin(), changes.end());
  testing_support::writeFile(folder_ / "zelk.cfg", program_tests::configuration(settings));
  std::filesystem::permissions(folder_ / "zelk.cfg", std::filesystem::perms{0600});
}

testing_support::Command Monitor::command(std::vector<std::string> arguments) const {
  testing_support::Command command{.program = program_tests::builtProgram(),
                                   .arguments = std::move(arguments)};
  command.environment = program_tests::plainEnvironment();
  command.folder = folder_.path();
  command.input = testing_support::Input::pipe();
  return command;
}

Report Monitor::textReport() const { return readText(output(kAsText)); }

Report Monitor::jsonReport() const { return readJson(output(kAsJson)); }

std::string Monitor::log() const { return testing_support::readFile(folder_ / "zelk.log"); }

std::string Monitor::output(const std::vector<std::string>& arguments) const {
  const Result result = testing_support::run(command(arguments));
  EXPECT_EQ(result.ending, Ending::exit(0));
  EXPECT_EQ(result.error, "");
  return result.output;
}

void expectWellFormedReports(const std::string& server) {
  const std::vector<std::string> sections = {"FILE", "SESS", "CONN", "RESO"};
  for (unsigned int off = 0; off < 1U << sections.size(); ++off) {
    std::vector<std::pair<std::string, std::string>> changes;
    for (std::size_t i = 0; i < sections.size(); ++i) {
      changes.emplace_back(sections[i], (off >> i & 1U) != 0 ? "NO" : "YES");
    }
    const Monitor monitor({server}, changes);
    const Result result = testing_support::run(monitor.command(kAsJson));
    EXPECT_EQ(result.ending, Ending::exit(0)) << result.error;
    EXPECT_NO_THROW(requireJson(result.output)) << off;
  }
}

std::string failureText(int status) {
  const std::string key = "\nORV_MSG_P_E_" + std::to_string(status) + "=";
  const std::string texts =
      testing_support::readFile(program_tests::builtProgram().parent_path().parent_path() /
                                "share/zelk/messages/TALMSG.properties");
  const auto begin = texts.find(key);
  EXPECT_NE(begin, texts.npos) << status;
  const auto text = begin + key.size();
  return std::to_string(status) + ": " + texts.substr(text, texts.find('\n', text) - text);
}

}  // namespace servers_testing
