// A signal asks for the same stop as "q": the refresh under way is finished, the document is
// closed, the engine is left in order.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <fstream>
#include <string>
#include <vector>

#include "tests/program/fake/expected_text.h"
#include "tests/program/program_under_test.h"
#include "tests/support/masking.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/terminal.h"
#include "tests/support/text_comparison.h"

namespace program_tests {
namespace {

using testing_support::Command;
using testing_support::Ending;
using testing_support::Input;
using testing_support::Process;
using testing_support::readFile;
using testing_support::sameText;
using testing_support::Terminal;
using testing_support::writeFile;

const std::string kLeft = "TalDisconnect(42)\nTalStop(null)\n";

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// True if the kernel has handed over every signal that was sent to the process.
bool allSignalsAreDelivered(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    const bool isPending = line.starts_with("SigPnd:") || line.starts_with("ShdPnd:");
    if (isPending && line.find_first_not_of("SigShdPn:\t0") != std::string::npos) {
      return false;
    }
  }
  return true;
}

// True if the process waits for something in the kernel.
bool isAsleep(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("State:")) return line.find("S (sleeping)") != std::string::npos;
  }
  return false;
}

class Signals : public ::testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    if (kUnderThreadSanitizer) GTEST_SKIP() << "the sanitizer may hold a signal back for good";
  }

  [[nodiscard]] Command command() const {
    Command command = place_.command(kLoop);
    command.input = Input::pipe();
    return command;
  }

  void configure(const std::string& rate, const std::string& limit) {
    place_.configure({
        {"OUTP", "BOTH"},
        {"RESO", "YES" },
        {"REFR", rate  },
        {"LIMI", limit }
    });
    log_ = runHeader({.rate = rate, .limit = limit, .output = "BOTH", .resources = true}) +
           kIdleResources;
  }

  // Makes the engine wait in its first answer about resources until releaseEngine().
  void holdEngine() {
    ASSERT_EQ(mkfifo((place_ / "fifo").c_str(), 0600), 0);
    place_.disturb("pause TalGetZorbUsageEx2 1 " + (place_ / "fifo").string() + "\n");
  }

  void releaseEngine() const { const std::ofstream writer(place_ / "fifo"); }

  bool waitUntilTheEngineIsAsked(Process& process) const {
    return process.waitUntil([&] { return endsWith(place_.trace(), "TalGetZorbUsageEx2(42)\n"); },
                             "the question about resources");
  }

  void expectOrderlyEnd(Process& process) {
    EXPECT_EQ(process.wait(), Ending::exit(0));
    EXPECT_EQ(process.error(), "");
    EXPECT_PRED_FORMAT2(sameText, log_, place_.maskedFile("monitor.log"));
    EXPECT_TRUE(endsWith(place_.trace(), kLeft)) << place_.trace();
  }

  Workplace place_;
  std::string log_;
};

TEST_P(Signals, EndTheWaitForAKey) {
  configure("0", "0");
  Process process(command());
  process.waitForOutput("Type r to refresh, q to stop.");

  process.sendSignal(GetParam());

  expectOrderlyEnd(process);
}

TEST_P(Signals, EndTheTimedLoopWithoutALimit) {
  configure("3600", "0");
  Process process(command());
  process.waitForOutput("Type q to stop.");

  process.sendSignal(GetParam());

  expectOrderlyEnd(process);
}

TEST_P(Signals, EndTheTimedLoopWithALimit) {
  configure("3600", "9");
  Process process(command());
  process.waitForOutput("(1 of 9)");

  process.sendSignal(GetParam());

  expectOrderlyEnd(process);
}

TEST_P(Signals, LetTheRefreshUnderWayFinish) {
  for (const char* const rate : {"0", "3600"}) {
    std::filesystem::remove(place_ / "fifo");
    std::filesystem::remove(place_ / "trace");
    configure(rate, "0");
    holdEngine();
    Process process(command());
    waitUntilTheEngineIsAsked(process);

    process.sendSignal(GetParam());
    releaseEngine();

    expectOrderlyEnd(process);
  }
}

TEST_P(Signals, CloseTheJsonDocument) {
  for (const char* const rate : {"0", "3600"}) {
    place_.configure({
        {"OUTP", "BOTH"},
        {"REFR", rate  }
    });
    writeFile(place_ / "-JSON", readFile(place_ / "zelk.cfg"));
    Command json = command();
    json.arguments = {"-f", "-JSON"};
    Process process(json);
    process.waitForOutput(" to stop.");

    process.sendSignal(GetParam());

    EXPECT_EQ(process.wait(), Ending::exit(0));
    EXPECT_TRUE(endsWith(place_.maskedFile("monitor.log"),
                         "\t\"start_record_time\": \"0000-00-00T00:00:00+0000\",\n}\n"));
    EXPECT_TRUE(endsWith(process.output(), "}\n"));
  }
}

TEST_P(Signals, EndTheProcessAtOnceTheSecondTime) {
  configure("0", "0");
  holdEngine();
  Process process(command());
  waitUntilTheEngineIsAsked(process);
  process.sendSignal(GetParam());
  process.waitUntil([&] { return allSignalsAreDelivered(process.id()); }, "the first signal");

  process.sendSignal(GetParam());

  EXPECT_EQ(process.wait(), Ending::killedBy(GetParam()));
  EXPECT_TRUE(endsWith(place_.trace(), "TalGetZorbUsageEx2(42)\n")) << place_.trace();
}

TEST_P(Signals, StayIgnoredIfTheyWereAtTheStart) {
  configure("0", "0");
  Command ignoring = command();
  ignoring.ignoredSignals = {GetParam()};
  Process process(ignoring);
  process.waitForOutput("Type r to refresh, q to stop.");

  process.sendSignal(GetParam());
  process.waitUntil([&] { return allSignalsAreDelivered(process.id()); }, "the signal");
  process.write("r");
  EXPECT_TRUE(process.waitForOutput("Type r to refresh, q to stop.", 2));
  process.write("q");

  EXPECT_EQ(process.wait(), Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText, log_ + kIdleResources, place_.maskedFile("monitor.log"));
}

// What the program waits for before its run may never come.
TEST_P(Signals, EndTheProcessAtOnceBeforeTheEngineIsConnected) {
  ASSERT_EQ(mkfifo((place_ / "fifo").c_str(), 0600), 0);
  const std::string fifo = (place_ / "fifo").string();
  const auto expectKilled = [this](const std::vector<std::string>& arguments) {
    Command waiting = command();
    waiting.arguments = arguments;
    Process process(waiting);
    process.waitForOutput("developers");  // the banner is printed before the file is opened
    process.waitUntil([&] { return isAsleep(process.id()); }, "the wait");

    process.sendSignal(GetParam());

    EXPECT_EQ(process.wait(), Ending::killedBy(GetParam()));
  };

  expectKilled({"-f", fifo});

  place_.configure({
      {"OUTP", "FILE"},
      {"NAME", fifo  }
  });
  expectKilled(kLoop);

  configure("0", "0");
  place_.disturb("pause TalConnectServer 1 " + fifo + "\n");
  expectKilled(kLoop);
}

std::string signalName(const ::testing::TestParamInfo<int>& info) {
  return sigabbrev_np(info.param);
}

INSTANTIATE_TEST_SUITE_P(Stop, Signals, ::testing::Values(SIGINT, SIGTERM, SIGHUP), signalName);

TEST(InterruptKey, StopsOnATerminal) {
  if (kUnderThreadSanitizer) GTEST_SKIP() << "the sanitizer may hold a signal back for good";
  for (const char* const rate : {"0", "3600"}) {
    const Workplace place(Settings{
        {"OUTP", "BOTH"},
        {"REFR", rate  }
    });
    Terminal terminal(place.command(kLoop));
    terminal.waitFor(" to stop.");

    terminal.type("\x03");

    EXPECT_EQ(terminal.wait(), Ending::exit(0));
    EXPECT_TRUE(endsWith(place.trace(), kLeft)) << place.trace();
  }
}

}  // namespace
}  // namespace program_tests
