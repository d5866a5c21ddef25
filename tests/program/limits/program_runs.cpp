#include "tests/program/limits/program_runs.h"

#include <filesystem>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "tests/program/program_under_test.h"

namespace limits {

using testing_support::Command;
using testing_support::Ending;
using testing_support::readFile;
using testing_support::writeFile;

namespace {

constexpr std::string_view kScenario = R"(
[version]
major = 15
minor = 21
build = 16

[usage]
users = { current = 3, peak = 5, maximum = 20 }
up_time_seconds = 3600

[communication]
requests = 7
[[communication.protocol]]
code = "tcp/ip"
requests = 5
[[communication.protocol]]
code = "netbios"

[[file]]
name = 'C:\SHOP\ORDERS{n}.DAT'
count = 2
page_size = 4096
handle = [{ client = "anna till {n}", client_index = { start = 1, each = 1 }, count = 2 }]

[[client]]
id = "anna{n}"
count = 2
session_name = "a session name that needs memory"
handle = [{ file = 'C:\SHOP\ORDERS{n}.DAT', open_mode = "normal", count = 2 }]

[[sql_connection]]
client_host = "a client host that needs memory"
status = "idle"
count = 2
)";

std::string configurationOf(const Form& form) {
  return program_tests::configuration({
      {"SERV", "sim:engine.toml"     },
      {"OUTP", form.output           },
      {"REFR", form.timed ? "5" : "0"},
      {"NAME", "zelk.log"            },
      {"FILE", "YES"                 },
      {"SESS", "YES"                 },
      {"CONN", "YES"                 },
      {"RESO", "YES"                 },
      {"COMM", "YES"                 },
      {"HAND", "YES"                 }
  });
}

// The files are written before the server starts in their folder.
Command serverIn(const std::filesystem::path& folder, const Form& form) {
  writeFile(folder / "engine.toml", kScenario);
  writeFile(folder / "zelk.cfg", configurationOf(form));
  Command command{
      .program = program_tests::builtProgram(), .arguments = {"-f", "zelk.cfg"}
  };
  if (!form.timed) command.arguments.emplace_back("-runonce");
  if (form.json) command.arguments.emplace_back("-JSON");
  command.folder = folder;
  command.environment = program_tests::plainEnvironment();
  command.environment["LD_PRELOAD"] = LIMITS_SHIM;
  command.input = testing_support::Input::pipe();
  return command;
}

std::string bytesOf(const std::filesystem::path& path) {
  return std::filesystem::exists(path) ? readFile(path) : "";
}

}  // namespace

std::string nameOf(const ::testing::TestParamInfo<Form>& form) { return form.param.name; }

void PrintTo(const Form& form, std::ostream* out) { *out << form.name; }

ProgramRuns::ProgramRuns(const Form& form) : server_(serverIn(folder_.path(), form)) {}

Report ProgramRuns::run(const std::string& fault, std::uint64_t number) {
  std::filesystem::remove(folder_ / "zelk.log");
  const std::string order = fault + " " + std::to_string(number);
  server_.write(order + "\n");
  server_.waitUntil([this] { return server_.output().find('\n', answered_) != std::string::npos; },
                    "the end of the run with " + order);
  std::istringstream answer(server_.output().substr(answered_));
  answered_ = server_.output().size();
  Report run;
  int status = -1;
  if (!(answer >> status >> run.allocations >> run.starts >> run.connections >> run.snapshots)) {
    throw std::runtime_error("no answer from the server: " + server_.error());
  }
  run.ending = status < 0 ? Ending::killedBy(-status) : Ending::exit(status);
  run.output = bytesOf(folder_ / "out");
  run.error = bytesOf(folder_ / "err");
  run.log = bytesOf(folder_ / "zelk.log");
  return run;
}

std::string errorLine(const Form& form, const std::string& text) {
  return form.json ? "\t\"error\": \"" + text + "\"\n" : text + "\n";
}

bool areFirstLinesOf(std::string_view part, std::string_view whole) {
  return whole.starts_with(part) && (part.empty() || part.ends_with('\n'));
}

}  // namespace limits
