// zelk watching a server.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/program/servers/report.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace servers_testing {

// Whom to watch, and by which account.
struct Target {
  std::string server;
  std::string user = "zelk";
  std::string password = "secret";
};

// The program of the build tree in a folder of its own, with a configuration that asks for all
// sections with their handles; the changes replace the values of keys.
class Monitor {
 public:
  explicit Monitor(const Target& target,
                   const std::vector<std::pair<std::string, std::string>>& changes = {});

  // Standard input stays open until the test closes it.
  [[nodiscard]] testing_support::Command command(std::vector<std::string> arguments) const;

  // One report in either form. Fails the test when the program does.
  [[nodiscard]] Report textReport() const;
  [[nodiscard]] Report jsonReport() const;

  // All that is in the log file, which has the name "zelk.log".
  [[nodiscard]] std::string log() const;

 private:
  [[nodiscard]] std::string output(const std::vector<std::string>& arguments) const;

  testing_support::TemporaryFolder folder_;
};

inline const std::vector<std::string> kAsText = {"-f", "zelk.cfg", "-runonce"};
inline const std::vector<std::string> kAsJson = {"-f", "zelk.cfg", "-runonce", "-JSON"};
inline const std::vector<std::string> kTimed = {"-f", "zelk.cfg"};

// Expects strict JSON of a server with each section on and off. Communication statistics stay on:
// without them a comma is left at the end of the document.
void expectWellFormedReports(const std::string& server);

// How a failure of the engine is shown: "7103: The server cannot be reached...".
std::string failureText(int status);

}  // namespace servers_testing
