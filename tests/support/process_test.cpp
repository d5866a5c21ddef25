#include "tests/support/process.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <filesystem>
#include <optional>
#include <string>

#include "tests/support/temporary_folder.h"

namespace testing_support {
namespace {

Command shell(const std::string& script) {
  return {
      .program = "/bin/sh", .arguments = {"-c", script}
  };
}

TEST(Process, KeepsOutputAndErrorApart) {
  const Command command = shell("echo out; echo err >&2; exit 3");

  const Result result = run(command);

  EXPECT_EQ(result.output, "out\n");
  EXPECT_EQ(result.error, "err\n");
  EXPECT_EQ(result.ending, Ending::exit(3));
}

TEST(Process, GivesTextOnStandardInput) {
  Command command = shell("cat");
  command.input = Input::text("r\nq\n");

  const Result result = run(command);

  EXPECT_EQ(result.output, "r\nq\n");
}

TEST(Process, ClosesStandardInput) {
  Command command = shell("test -e /proc/self/fd/0 || echo closed");
  command.input = Input::closed();

  const Result result = run(command);

  EXPECT_EQ(result.output, "closed\n");
}

TEST(Process, TalksOverAPipeThatStaysOpen) {
  Command command = shell("while read line; do echo got $line; done; echo end");
  command.input = Input::pipe();
  Process process(command);

  process.write("one\n");
  EXPECT_TRUE(process.waitForOutput("got one"));
  process.write("one\n");
  EXPECT_TRUE(process.waitForOutput("got one", 2));
  process.closeInput();

  EXPECT_EQ(process.wait(), Ending::exit(0));
  EXPECT_EQ(process.output(), "got one\ngot one\nend\n");
}

TEST(Process, ChangesTheEnvironmentAndTheFolder) {
  const TemporaryFolder folder;
  Command command = shell("echo $ADDED ${HOME-none}; pwd");
  command.environment = {
      {"ADDED", "yes"       },
      {"HOME",  std::nullopt}
  };
  command.folder = folder.path();

  const Result result = run(command);

  EXPECT_EQ(result.output, "yes none\n" + folder.path().string() + "\n");
}

TEST(Process, WritesToFilesInsteadOfPipes) {
  const TemporaryFolder folder;
  Command command = shell("echo out; echo err >&2");
  command.output = folder / "out";
  command.error = folder / "err";

  const Result result = run(command);

  EXPECT_EQ(result.output + result.error, "");
  EXPECT_EQ(readFile(folder / "out"), "out\n");
  EXPECT_EQ(readFile(folder / "err"), "err\n");
}

TEST(Process, LimitsTheSizeOfFiles) {
  const TemporaryFolder folder;
  Command command = shell("printf 123456 > file");
  command.folder = folder.path();
  command.fileSizeLimit = 4;

  const Result result = run(command);

  EXPECT_EQ(result.ending, Ending::killedBy(SIGXFSZ));
  EXPECT_EQ(readFile(folder / "file"), "1234");
}

TEST(Process, SendsSignals) {
  Process process(shell("trap 'echo caught; exit 4' TERM; echo ready; while :; do :; done"));
  process.waitForOutput("ready");

  process.sendSignal(SIGTERM);

  EXPECT_EQ(process.wait(), Ending::exit(4));
  EXPECT_EQ(process.output(), "ready\ncaught\n");
}

TEST(Process, StartsWithDefaultSignalsButThoseToIgnore) {
  Command command = shell("kill -HUP $$; echo still here; kill -PIPE $$; echo not here");
  command.ignoredSignals = {SIGHUP};

  const Result result = run(command);

  EXPECT_EQ(result.ending, Ending::killedBy(SIGPIPE));
  EXPECT_EQ(result.output, "still here\n");
}

TEST(Process, BreaksThePipeOfItsOutput) {
  Command command = shell("echo first; read line; echo second");
  command.input = Input::pipe();
  Process process(command);
  process.waitForOutput("first");

  process.closeOutput();
  process.write("go\n");

  EXPECT_EQ(process.wait(), Ending::killedBy(SIGPIPE));
}

TEST(Process, RunsTheProgramUnderTestBehindAWrapper) {
  setenv("ZELK_WRAPPER", "echo", 1);

  const Result wrapped = run({
      .program = "/nowhere/zelk", .arguments = {"-f", "zelk.cfg"}
  });
  const Result other = run(shell("echo as it is"));

  unsetenv("ZELK_WRAPPER");
  EXPECT_EQ(wrapped.output, "/nowhere/zelk -f zelk.cfg\n");
  EXPECT_EQ(other.output, "as it is\n");
}

TEST(Process, TellsThatAProgramIsMissing) {
  const Result result = run({.program = "/nowhere/program"});

  EXPECT_EQ(result.ending, Ending::exit(127));
  EXPECT_EQ(result.error, "cannot run /nowhere/program\n");
}

TEST(Process, FailsTheTestIfTheTextNeverComes) {
  Process process(shell("echo other"));

  EXPECT_NONFATAL_FAILURE(process.waitForOutput("text"), "did not come: text");
}

TEST(Process, EndsTheProgramWithItsOwnLife) {
  Command command = shell("echo ready; exec cat");
  command.input = Input::pipe();
  pid_t id = 0;
  {
    Process process(command);
    process.waitForOutput("ready");
    id = process.id();
  }

  EXPECT_EQ(kill(id, 0), -1);
}

}  // namespace
}  // namespace testing_support
