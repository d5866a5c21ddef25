// What stays private: the password, in the memory of the program and outside it.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tests/program/program_under_test.h"
#include "tests/support/process.h"
#include "tests/support/process_memory.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/terminal.h"

namespace program_tests {
namespace {

using testing_support::Command;
using testing_support::copiesIn;
using testing_support::Ending;
using testing_support::Input;
using testing_support::Process;
using testing_support::readFile;
using testing_support::Terminal;

constexpr const char* kPrompt = "Type r to refresh, q to stop.";
const std::string kVisible = "visible-text-of-the-environment";
const std::string kPassword = "hidden-password-of-the-user";

// As the program itself keeps texts.
std::string asWideText(const std::string& text) {
  std::string bytes;
  for (const char character : text) bytes += character + std::string(sizeof(wchar_t) - 1, '\0');
  return bytes;
}

// The program over the embedded engine, which forgets the password at once.
class Privacy : public ::testing::Test {
 protected:
  Privacy() {
    testing_support::writeFile(folder_ / "zelk.cfg",
                               configuration({
                                   {"SERV", "sim:demo"},
                                   {"USER", "zelk"    },
                                   {"PASS", kPassword }
    }));
    std::filesystem::permissions(folder_ / "zelk.cfg", std::filesystem::perms{0644});
    std::filesystem::permissions(folder_.path(), std::filesystem::perms{0777});
  }

  [[nodiscard]] Command command() const {
    Command result{
        .program = builtProgram(), .arguments = {"-f", "zelk.cfg"}
    };
    result.environment = plainEnvironment();
    result.folder = folder_.path();
    result.input = Input::pipe();
    return result;
  }

  // The same after a shell has done something in its place.
  [[nodiscard]] Command commandAfter(const std::string& step) const {
    Command result = command();
    result.program = "/bin/sh";
    result.arguments = {"-c", step + "; exec " + builtProgram().string() + " -f zelk.cfg"};
    return result;
  }

  [[nodiscard]] int coreFiles() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      if (entry.path().filename().string().starts_with("core")) ++count;
    }
    return count;
  }

  testing_support::TemporaryFolder folder_;
};

TEST_F(Privacy, QuitKeyLeavesNoCoreFile) {
  const std::string wish = "ulimit -c unlimited";
  testing_support::run(commandAfter(wish + "; kill -QUIT $$"));
  const int before = coreFiles();
  Terminal terminal(commandAfter(wish));
  terminal.waitFor(kPrompt);

  terminal.type("\x1c");

  EXPECT_EQ(terminal.wait(), Ending::killedBy(SIGQUIT));
  EXPECT_EQ(coreFiles(), before);
  if (before == 0) GTEST_SKIP() << "this machine puts core files elsewhere";
}

TEST_F(Privacy, CoreFilesStayOff) {
  Process process(commandAfter("ulimit -c unlimited"));
  process.waitForOutput(kPrompt);

  const std::string limits = readFile("/proc/" + std::to_string(process.id()) + "/limits");

  const std::string line = limits.substr(limits.find("Max core file size"), 46);
  EXPECT_EQ(line, "Max core file size        0                   ");
}

TEST_F(Privacy, OtherProcessesOfTheUserCannotReadTheMemory) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can start programs as another user";
  if (!testing_support::kMemoryIsAsUsual) GTEST_SKIP() << "a sanitizer itself reads it";
  const ProgramTree tree(folder_ / "tree");  // that user may not reach the build
  Command own = command();
  own.program = tree.program();
  own.withoutPrivileges = true;
  Process process(own);
  process.waitForOutput(kPrompt);
  const std::string folder = "/proc/" + std::to_string(process.id());
  const Command read{
      .program = "/bin/head", .arguments = {"-c1", folder + "/environ"},
           .withoutPrivileges = true
  };

  const testing_support::Result result = testing_support::run(read);

  EXPECT_EQ(result.output, "");
  EXPECT_NE(result.error.find("Permission denied"), std::string::npos) << result.error;
}

TEST_F(Privacy, PasswordIsForgottenOnceItWasUsed) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can read the memory of the program";
  if (!testing_support::kMemoryIsAsUsual) GTEST_SKIP() << "a sanitizer keeps freed memory";
  Command watched = command();
  watched.environment["VISIBLE"] = kVisible;
  Process process(watched);
  process.waitForOutput(kPrompt);

  EXPECT_EQ(copiesIn(process.id(), kVisible), 1);
  EXPECT_EQ(copiesIn(process.id(), kPassword), 0);
  EXPECT_EQ(copiesIn(process.id(), asWideText(kPassword)), 0);
}

}  // namespace
}  // namespace program_tests
