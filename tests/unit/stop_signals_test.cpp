#include "orv/Process.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "orv/io/InputStreams.h"
#include "tests/unit/pipe.h"

// Each test runs in a process of its own: signals cannot be given back.
namespace {

using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;
using testing_support::Pipe;

std::atomic<bool> s_stopRequested{false};

// A standard input that says nothing and does not end.
void silenceInput(const Pipe& pipe) { dup2(pipe.readEnd(), STDIN_FILENO); }

// A shell or nohup may have started the tests with some of them ignored, and they would stay so.
void installStopSignals() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::signal(signal, SIG_DFL);
  orv::installStopSignals(s_stopRequested);
}

[[noreturn]] void exitUnless(bool condition) { std::exit(condition ? 0 : 1); }

TEST(StopSignalsDeathTest, SetTheFlag) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const auto stop = [signal] {
      installStopSignals();
      const bool before = s_stopRequested || orv::stopSignalCame();
      raise(signal);
      exitUnless(!before && s_stopRequested && orv::stopSignalCame());
    };

    EXPECT_EXIT(stop(), ExitedWithCode(0), "") << signal;
  }
}

TEST(StopSignalsDeathTest, EndTheProcessTheSecondTime) {
  const auto stopTwice = [] {
    installStopSignals();
    raise(SIGTERM);
    raise(SIGINT);
    std::exit(0);
  };

  EXPECT_EXIT(stopTwice(), KilledBySignal(SIGINT), "");
}

TEST(StopSignalsDeathTest, StayIgnoredWhereTheyWere) {
  const auto ignored = [] {
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGHUP, SIG_IGN);
    orv::installStopSignals(s_stopRequested);
    raise(SIGHUP);
    const bool wasIgnored = !s_stopRequested && !orv::stopSignalCame();
    raise(SIGINT);
    raise(SIGHUP);
    exitUnless(wasIgnored && s_stopRequested);
  };

  EXPECT_EXIT(ignored(), ExitedWithCode(0), "");
}

TEST(StopSignalsDeathTest, WakeAReaderThatWaits) {
  const auto wake = [] {
    const Pipe pipe;
    silenceInput(pipe);
    installStopSignals();
    const pthread_t reader = pthread_self();
    std::thread([reader] { pthread_kill(reader, SIGTERM); }).detach();
    orv::io::StdioInputStream stream;
    exitUnless(stream.read() == -1 && s_stopRequested);
  };

  EXPECT_EXIT(wake(), ExitedWithCode(0), "");
}

TEST(StopSignalsDeathTest, EndAllLaterReads) {
  const auto readLater = [] {
    const Pipe pipe;
    silenceInput(pipe);
    installStopSignals();
    raise(SIGINT);
    orv::io::StdioInputStream stream;
    exitUnless(stream.read() == -1 && stream.read() == -1);
  };

  EXPECT_EXIT(readLater(), ExitedWithCode(0), "");
}

}  // namespace
