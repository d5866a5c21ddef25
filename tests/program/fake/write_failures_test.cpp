// A write that fails is never silent, and a reader that went away is no failure.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/program/program_under_test.h"
#include "tests/support/masking.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"

namespace program_tests {
namespace {

using testing_support::Command;
using testing_support::Ending;
using testing_support::Input;
using testing_support::maskTimes;
using testing_support::Process;
using testing_support::readFile;
using testing_support::Result;
using testing_support::run;
using testing_support::sameText;

std::string incomplete(const std::string& file, const std::string& reason) {
  return "Output is incomplete because a write failed. Free space or choose another place and run "
         "again: " +
         file + ": " + reason;
}

std::string asJson(const std::string& text) { return "\t\"error\": \"" + text + "\"\n"; }

void expectFailure(const Result& result, const std::string& error) {
  EXPECT_PRED_FORMAT2(sameText, error, result.error);
  EXPECT_EQ(result.ending, Ending::exit(1));
}

const std::string kFull = "No space left on device";

TEST(WriteFailure, OfStandardOutputIsReported) {
  const Workplace place;
  for (const auto& arguments : {kOnce, kLoop, std::vector<std::string>{}, kOnceJson}) {
    Command command = place.command(arguments);
    command.output = "/dev/full";

    const Result result = run(command);

    const std::string error = incomplete("standard output", kFull);
    expectFailure(result, arguments == kOnceJson ? asJson(error) : error + "\n");
  }
}

// The reason is the system's own text, in UTF-8 as all that the program says.
TEST(WriteFailure, OfStandardOutputIsReportedInTheUsersLanguage) {
  if (!std::filesystem::exists("/usr/share/locale/de/LC_MESSAGES/libc.mo")) {
    GTEST_SKIP() << "the system has no German texts: install libc-l10n";
  }
  const Workplace place;
  Command command = place.command(kOnce);
  command.environment.merge(environmentWithMessages("C"));
  command.environment["LC_ALL"] = "de_DE.UTF-8";
  command.output = "/dev/full";

  const Result result = run(command);

  EXPECT_PRED_FORMAT2(sameText,
                      "Die Ausgabe ist unvollständig, weil ein Schreibvorgang scheiterte. Schaffen "
                      "Sie Platz oder wählen Sie einen anderen Ort und starten Sie erneut: "
                      "Standardausgabe: Auf dem Gerät ist kein Speicherplatz mehr verfügbar\n",
                      result.error);
  EXPECT_EQ(result.ending, Ending::exit(1));
}

TEST(WriteFailure, OfTheUsageInJsonIsReported) {
  const Workplace place;
  Command command = place.command({"-JSON"});
  command.output = "/dev/full";

  const Result result = run(command);

  EXPECT_NE(result.error.find(incomplete("standard output", kFull)), std::string::npos)
      << result.error;
  EXPECT_EQ(result.ending, Ending::exit(1));
}

TEST(WriteFailure, OfTheLogIsReportedInText) {
  const Workplace place;
  for (const char* const output : {"FILE", "BOTH"}) {
    place.configure({
        {"OUTP", output     },
        {"NAME", "/dev/full"}
    });

    const Result result = run(place.command(kOnce));

    expectFailure(result, incomplete("/dev/full", kFull) + "\n");
  }
}

TEST(WriteFailure, OfTheLogIsReportedInJson) {
  const Workplace place(Settings{
      {"OUTP", "FILE"     },
      {"NAME", "/dev/full"}
  });

  const Result result = run(place.command(kOnceJson));

  expectFailure(result, asJson(incomplete("/dev/full", kFull)));
  EXPECT_EQ(result.output, "}\n");
}

TEST(WriteFailure, EndsARunThatWentOnForAWhileAndLeavesTheEngineInOrder) {
  const Workplace place(Settings{
      {"OUTP", "FILE"     },
      {"NAME", "small.log"},
      {"RESO", "YES"      }
  });
  Command command = place.command(kLoop);
  command.fileSizeLimit = 8000;
  command.input = Input::text(std::string(60, 'r'));

  const Result result = run(command);

  expectFailure(result, incomplete("small.log", "File too large") + "\n");
  EXPECT_EQ(std::filesystem::file_size(place / "small.log"), 8000U);
  const std::string trace = place.trace();
  EXPECT_TRUE(trace.ends_with("TalGetZorbUsageEx2(42)\nTalDisconnect(42)\nTalStop(null)\n"))
      << trace;
}

// The program on a disk of 16 KiB at place / "disk"; what the log holds in the end is kept as
// "kept.log".
Command onSmallDisk(const Workplace& place, const std::vector<std::string>& arguments) {
  Command command = place.command(
      {"--mount", "--", "/bin/sh", "-c",
       "mount -t tmpfs -o size=16k none disk || exit 99; \"$@\"; code=$?; cp disk/zelk.log kept.log;"
       " exit $code",
       "sh"});
  if (::geteuid() != 0) {
    command.arguments.insert(command.arguments.begin(), {"--user", "--map-root-user"});
  }
  command.arguments.push_back(command.program);
  command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
  command.program = "/usr/bin/unshare";
  std::filesystem::create_directory(place / "disk");
  return command;
}

std::string wholeLines(const std::string& text) { return text.substr(0, text.rfind('\n') + 1); }

TEST(WriteFailure, OnAFullFileSystemLeavesABeginningOfTheLog) {
  const Workplace place(Settings{
      {"OUTP", "FILE"         },
      {"NAME", "disk/zelk.log"},
      {"RESO", "YES"          }
  });
  Command command = onSmallDisk(place, kLoop);
  command.input = Input::text(std::string(60, 'r'));
  Command unlimited = place.command(kLoop);
  unlimited.input = command.input;

  const Result result = run(command);
  if (result.ending == Ending::exit(99) || result.error.starts_with("unshare:")) {
    GTEST_SKIP() << "this machine lets nobody mount a disk: " << result.error;
  }
  run(unlimited);

  EXPECT_PRED_FORMAT2(sameText, incomplete("disk/zelk.log", kFull) + "\n", result.error);
  const std::string kept = readFile(place / "kept.log");
  EXPECT_EQ(kept.size(), 16384U);
  EXPECT_TRUE(
      maskTimes(readFile(place / "disk/zelk.log")).starts_with(maskTimes(wholeLines(kept))));
}

TEST(WriteFailure, OfAStandardOutputFileOverItsLimitIsReported) {
  const Workplace place(Settings{
      {"RESO", "YES"}
  });
  Command command = place.command(kOnce);
  command.output = place / "out";
  command.fileSizeLimit = 300;

  const Result result = run(command);

  expectFailure(result, incomplete("standard output", "File too large") + "\n");
}

// The next file that is opened gets the free number 1: the log must not receive the console's
// lines.
TEST(WriteFailure, OfAClosedStandardOutputIsReported) {
  const Workplace place(Settings{
      {"OUTP", "BOTH"}
  });
  Command command = place.command({"-c", "exec \"$0\" \"$@\" >&-"});
  command.arguments.push_back(command.program);
  command.arguments.insert(command.arguments.end(), kOnce.begin(), kOnce.end());
  command.program = "/bin/sh";

  const Result result = run(command);

  expectFailure(result, incomplete("standard output", "Bad file descriptor") + "\n");
}

// Only the exit code is left to report it.
TEST(WriteFailure, OfStandardErrorKeepsTheExitCode) {
  const Workplace place;
  for (const auto& arguments : {kOnce, kOnceJson}) {
    std::filesystem::remove(place / "zelk.cfg");
    Command command = place.command(arguments);
    command.error = "/dev/full";

    const Result result = run(command);

    EXPECT_EQ(result.ending, Ending::exit(1));
  }
}

TEST(ClosedReader, EndsTheProgramQuietly) {
  const Workplace place(Settings{
      {"RESO", "YES"}
  });
  Command command = place.command(kLoop);
  command.input = Input::pipe();
  Process process(command);
  process.waitForOutput("Type r to refresh, q to stop.");

  process.closeOutput();
  process.write("r");

  EXPECT_EQ(process.wait(), Ending::killedBy(SIGPIPE));
  EXPECT_EQ(process.error(), "");
}

TEST(ClosedReader, EndsALongReportQuietly) {
  const Workplace place;
  place.simulate("[[file]]\nname = '/data/file{n}'\ncount = 5000\n");
  place.configure({
      {"FILE", "YES"}
  });
  Process process(place.command(kOnce));
  process.waitForOutput("\n");

  process.closeOutput();

  EXPECT_EQ(process.wait(), Ending::killedBy(SIGPIPE));
  EXPECT_EQ(process.error(), "");
}

}  // namespace
}  // namespace program_tests
