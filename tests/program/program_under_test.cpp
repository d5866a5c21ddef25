#include "tests/program/program_under_test.h"

#include <algorithm>

#include "tests/support/masking.h"

namespace program_tests {

using testing_support::readFile;
using testing_support::writeFile;

namespace {

constexpr const char* kNumberLocale = "de_DE.UTF-8";

std::filesystem::path moduleIn(const std::filesystem::path& tree, const std::string& engine) {
  return tree / "lib/zelk" / ("tal-" + engine + ".so");
}

std::filesystem::path builtTree() { return builtProgram().parent_path().parent_path(); }

}  // namespace

Environment plainEnvironment() {
  return {
      {"TZ",            "UTC"       },
      {"LC_ALL",        "C"         },
      {"LANG",          std::nullopt},
      {"LANGUAGE",      std::nullopt},
      {"FAKE_ENGINE",   std::nullopt},
      {"FAKE_SCENARIO", std::nullopt},
      {"FAKE_TRACE",    std::nullopt}
  };
}

Environment decimalCommaEnvironment() {
  Environment environment = plainEnvironment();
  environment["LC_ALL"] = std::nullopt;
  environment["LC_MESSAGES"] = std::nullopt;
  environment["LC_TIME"] = std::nullopt;
  environment["LC_CTYPE"] = std::nullopt;
  environment["LANG"] = "C";
  environment["LC_NUMERIC"] = kNumberLocale;
  environment["LOCPATH"] = LOCALE_FOLDER;
  return environment;
}

Environment environmentWithMessages(const std::string& locale) {
  Environment environment = decimalCommaEnvironment();
  environment["LC_NUMERIC"] = std::nullopt;
  environment["LC_MESSAGES"] = locale;
  return environment;
}

std::filesystem::path builtProgram() { return ZELK_BINARY; }

std::filesystem::path builtModule(const std::string& engine) {
  return moduleIn(builtTree(), engine);
}

std::filesystem::path fakeEngine() { return FAKE_ENGINE_LIBRARY; }

void useFakeEngine(testing_support::Command& command) {
  const auto set = [&](const char* variable, const char* file) {
    if (std::filesystem::exists(command.folder / file)) {
      command.environment[variable] = command.folder / file;
    }
  };
  set("FAKE_ENGINE", "engine");
  set("FAKE_SCENARIO", "scenario.toml");
}

ProgramTree::ProgramTree(const std::filesystem::path& folder) : folder_(folder) {
  for (const char* const part : {"bin/zelk", "lib/zelk/libtal.so", "share/zelk/messages"}) {
    std::filesystem::create_directories((folder_ / part).parent_path());
    std::filesystem::copy(builtTree() / part, folder_ / part,
                          std::filesystem::copy_options::recursive);
  }
}

std::filesystem::path ProgramTree::module(const std::string& engine) const {
  return moduleIn(folder_, engine);
}

void ProgramTree::replaceEngine(const std::filesystem::path& library) const {
  const std::filesystem::path place = folder_ / "lib/zelk/libtal.so";
  std::filesystem::remove(place);
  std::filesystem::copy_file(library, place);
}

std::string configuration(const Settings& changes) {
  Settings settings = {
      {"SERV", "engine" },
      {"USER", ""       },
      {"PASS", ""       },
      {"REFR", "0"      },
      {"LIMI", "0"      },
      {"OUTP", "CONSOLE"},
      {"NAME", ""       },
      {"FILE", "NO"     },
      {"SESS", "NO"     },
      {"CONN", "NO"     },
      {"RESO", "NO"     },
      {"COMM", "NO"     },
      {"HAND", "NO"     }
  };
  for (const auto& [key, value] : changes) {
    std::find_if(settings.begin(), settings.end(), [name = key](const auto& setting) {
      return setting.first == name;
    })->second = value;
  }
  std::string text;
  for (const auto& [key, value] : settings) {
    text.append(key).append("=").append(value).append("\n");
  }
  return text;
}

Workplace::Workplace(const Settings& changes) : tree_(folder_ / "tree") {
  tree_.replaceEngine(fakeEngine());
  configure(changes);
}

testing_support::Command Workplace::command(std::vector<std::string> arguments) const {
  testing_support::Command command{.program = tree_.program(), .arguments = std::move(arguments)};
  command.folder = folder_.path();
  command.environment = plainEnvironment();
  useFakeEngine(command);
  command.environment["FAKE_TRACE"] = folder_ / "trace";
  return command;
}

testing_support::Command Workplace::unprivilegedCommand(std::vector<std::string> arguments) const {
  std::filesystem::permissions(folder_.path(), std::filesystem::perms{0755});
  testing_support::Command unprivileged = command(std::move(arguments));
  unprivileged.withoutPrivileges = true;
  unprivileged.environment["FAKE_TRACE"] = std::nullopt;
  return unprivileged;
}

void Workplace::configure(const Settings& changes) const {
  using std::filesystem::perms;
  const bool hasPassword = std::any_of(changes.begin(), changes.end(),
                                       [](const auto& change) { return change.first == "PASS"; });
  writeFile(folder_ / "zelk.cfg", configuration(changes));
  std::filesystem::permissions(folder_ / "zelk.cfg", perms(hasPassword ? 0600 : 0644));
}

void Workplace::simulate(const std::string& scenario) const {
  writeFile(folder_ / "scenario.toml", scenario);
}

void Workplace::disturb(const std::string& disturbances) const {
  writeFile(folder_ / "engine", disturbances);
}

std::string Workplace::trace() const {
  return std::filesystem::exists(folder_ / "trace") ? readFile(folder_ / "trace") : "";
}

std::string Workplace::maskedFile(const std::string& name) const {
  const std::filesystem::path path = folder_ / name;
  return std::filesystem::exists(path) ? testing_support::maskTimes(readFile(path)) : "";
}

}  // namespace program_tests
