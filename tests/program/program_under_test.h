// Where the program is, and what surrounds it in every test: a configuration, a time zone, a
// locale, and where it is wanted the fake engine.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace program_tests {

// Its runtime holds signals back while a call blocks, and needs more addresses than a limit leaves.
#ifdef __SANITIZE_THREAD__
inline constexpr bool kUnderThreadSanitizer = true;
#else
inline constexpr bool kUnderThreadSanitizer = false;
#endif

using Environment = std::map<std::string, std::optional<std::string>>;

// Universal time and no language: what the expected texts were written for.
Environment plainEnvironment();

// The same with numbers in the German way.
Environment decimalCommaEnvironment();

// The same with this locale for messages.
Environment environmentWithMessages(const std::string& locale);

// The executable of the build tree.
std::filesystem::path builtProgram();

// The module of that engine in the build tree.
std::filesystem::path builtModule(const std::string& engine);

// The engine library that a test sets (support/fake_engine).
std::filesystem::path fakeEngine();

// Lets the fake engine in the command's program do what the files "scenario.toml" and "engine" of
// the command's folder say. Without a scenario it is an idle engine.
void useFakeEngine(testing_support::Command& command);

// A copy of the built tree: bin/zelk, lib/zelk/libtal.so and share/zelk/messages in the folder. The
// engine library's modules, which few tests need, are not in it.
class ProgramTree {
 public:
  explicit ProgramTree(const std::filesystem::path& folder);

  [[nodiscard]] std::filesystem::path program() const { return folder_ / "bin/zelk"; }
  [[nodiscard]] std::filesystem::path messages() const { return folder_ / "share/zelk/messages"; }

  // Where the engine library opens the module of that engine, "postgresql" or "mariadb".
  [[nodiscard]] std::filesystem::path module(const std::string& engine) const;

  // Puts another library in the place of the engine library.
  void replaceEngine(const std::filesystem::path& library) const;

 private:
  std::filesystem::path folder_;
};

// Command lines: one report, the same in JSON, a report at each key.
inline const std::vector<std::string> kOnce = {"-f", "zelk.cfg", "-runonce"};
inline const std::vector<std::string> kOnceJson = {"-f", "zelk.cfg", "-runonce", "-JSON"};
inline const std::vector<std::string> kLoop = {"-f", "zelk.cfg"};

// Keys of the configuration file and their values.
using Settings = std::vector<std::pair<std::string, std::string>>;

// A complete configuration: console output, no sections, no refreshing, engine "engine". The
// changes replace the values of keys.
std::string configuration(const Settings& changes = {});

// A folder with a configuration file and a program tree over the fake engine.
class Workplace {
 public:
  explicit Workplace(const Settings& changes = {});

  // The program in this folder, standard input at its end.
  [[nodiscard]] testing_support::Command command(std::vector<std::string> arguments) const;

  // The same for a user to whom permissions apply; the folder is opened to all users.
  [[nodiscard]] testing_support::Command unprivilegedCommand(
      std::vector<std::string> arguments) const;

  void configure(const Settings& changes) const;

  // Sets what the engine is, as a scenario.
  void simulate(const std::string& scenario) const;

  // Sets what it does otherwise, in the words of the fake engine.
  void disturb(const std::string& disturbances) const;

  // The calls that the engine has seen, a line each.
  [[nodiscard]] std::string trace() const;

  // The file of that name in the folder, times masked; empty if there is none.
  [[nodiscard]] std::string maskedFile(const std::string& name) const;

  [[nodiscard]] std::filesystem::path operator/(const std::string& name) const {
    return folder_ / name;
  }

 private:
  testing_support::TemporaryFolder folder_;
  ProgramTree tree_;
};

// What the program writes first in text: its name, the copyright, an empty line.
inline constexpr const char* kBanner =
    "zelk 15.21.016.000 - database engine monitor\n"
    "Copyright (c) 2026 the zelk developers\n"
    "\n";

}  // namespace program_tests
