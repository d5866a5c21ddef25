#include "tests/support/terminal.h"

#include <gtest/gtest.h>
#include <signal.h>

namespace testing_support {
namespace {

TEST(Terminal, IsOneForTheProgram) {
  Terminal terminal({
      .program = "/bin/sh",
      .arguments = {"-c", "test -t 0 && test -t 1 && test -t 2 && echo terminal"}
  });

  const Ending ending = terminal.wait();

  EXPECT_EQ(ending, Ending::exit(0));
  EXPECT_EQ(terminal.screen(), "terminal\n");
}

TEST(Terminal, HandsOverWhatIsTyped) {
  Terminal terminal({
      .program = "/bin/sh", .arguments = {"-c", "echo ready; read x; echo got $x"}
  });
  terminal.waitFor("ready");

  terminal.type("keys\n");

  EXPECT_EQ(terminal.wait(), Ending::exit(0));
  EXPECT_EQ(terminal.screen(), "ready\nkeys\ngot keys\n");
}

TEST(Terminal, InterruptsTheProgram) {
  Terminal terminal({
      .program = "/bin/sh", .arguments = {"-c", "echo ready; exec cat"}
  });
  terminal.waitFor("ready");

  terminal.type("\x03");

  EXPECT_EQ(terminal.wait(), Ending::killedBy(SIGINT));
}

}  // namespace
}  // namespace testing_support
