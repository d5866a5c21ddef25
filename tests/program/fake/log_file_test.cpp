// The log file: where it is made, what it replaces, what happens when somebody truncates it.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/program/fake/expected_text.h"
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
using testing_support::Process;
using testing_support::readFile;
using testing_support::Result;
using testing_support::run;
using testing_support::sameText;
using testing_support::TemporaryFolder;
using testing_support::writeFile;

std::string reportTo(const std::string& file) {
  return runHeader({.output = "FILE", .file = file});
}

TEST(LogFile, IsMadeWithItsFolders) {
  const TemporaryFolder elsewhere;
  const std::string names[] = {"run.log", "logs/run.log", "logs/a/b/run.log", "./x//y/run.log",
                               elsewhere / "made/run.log"};
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const Workplace place(Settings{
        {"OUTP", "FILE"},
        {"NAME", name  }
    });

    const Result result = run(place.command(kOnce));

    EXPECT_EQ(result.ending, Ending::exit(0));
    EXPECT_EQ(result.error, "");
    EXPECT_PRED_FORMAT2(sameText, reportTo(name), place.maskedFile(name));
  }
}

TEST(LogFile, ReplacesAnOlderOne) {
  const Workplace place(Settings{
      {"OUTP", "FILE"}
  });
  writeFile(place / "monitor.log", std::string(100000, 'x'));

  run(place.command(kOnce));

  EXPECT_PRED_FORMAT2(sameText, reportTo("monitor.log"), place.maskedFile("monitor.log"));
}

void expectRefusal(const Result& result, const std::string& file, const std::string& reason) {
  EXPECT_EQ(result.error, "Cannot create the log file \"" + file + "\": " + reason +
                              ". Check the key NAME in the configuration file.\n");
  EXPECT_EQ(result.ending, Ending::exit(1));
}

const std::string kDenied = "permission denied (0x80070005)";

TEST(LogFile, IsReportedWithTheCurrentFolderIfItsNameIsBare) {
  for (const std::string folder : {"", "./"}) {
    const Workplace place(Settings{
        {"OUTP", "FILE"             },
        {"NAME", folder + "bare.log"}
    });
    std::filesystem::create_symlink("/nowhere/at/all", place / "bare.log");

    const Result result = run(place.command(kOnce));

    expectRefusal(result, folder.empty() ? (place / "bare.log").string() : "./bare.log",
                  "no such file or directory (0x80070002)");
  }
}

TEST(LogFile, IsRefusedWhereNothingMayBeWritten) {
  for (const std::string name : {"closed/run.log", "closed/logs/run.log"}) {
    SCOPED_TRACE(name);
    const Workplace place(Settings{
        {"OUTP", "FILE"},
        {"NAME", name  }
    });
    std::filesystem::create_directory(place / "closed");
    std::filesystem::permissions(place / "closed", std::filesystem::perms{0555});

    const Result result = run(place.unprivilegedCommand(kOnce));

    expectRefusal(result, name, kDenied);
  }
}

TEST(LogFile, IsMadeForItsOwnerAndGroup) {
  const Workplace place(Settings{
      {"OUTP", "FILE"}
  });

  run(place.command(kOnce));

  const auto mode = std::filesystem::status(place / "monitor.log").permissions();
  EXPECT_EQ(mode & std::filesystem::perms(07137), std::filesystem::perms::none);
}

// In a folder that everybody can write, what another user has put there is not written to.
TEST(LogFile, IsRefusedWhereItMayBePlanted) {
  constexpr uid_t kSomebody = 12345;
  if (geteuid() != 0) GTEST_SKIP() << "only root can give files to another user";
  const Workplace place;
  const std::filesystem::path shared = place / "shared";
  std::filesystem::create_directory(shared);
  std::filesystem::permissions(shared, std::filesystem::perms{01777});
  std::filesystem::create_directory(place / "private");
  writeFile(place / "private/victim", "kept");
  writeFile(shared / "file", "kept");
  ASSERT_EQ(mkfifo((shared / "pipe").c_str(), 0666), 0);
  std::filesystem::create_symlink(place / "private/victim", shared / "link");
  std::filesystem::create_symlink(place / "private", shared / "folder");
  for (const char* name : {"file", "pipe", "link", "folder"}) {
    ASSERT_EQ(lchown((shared / name).c_str(), kSomebody, kSomebody), 0);
  }

  for (const std::string name :
       {"shared/file", "shared/pipe", "shared/link", "shared/folder/new/run.log"}) {
    place.configure({
        {"OUTP", "FILE"},
        {"NAME", name  }
    });
    const Result result = run(place.command(kOnce));
    expectRefusal(result, name, kDenied);
  }
  EXPECT_EQ(readFile(place / "private/victim") + readFile(shared / "file"), "keptkept");
  EXPECT_FALSE(std::filesystem::exists(place / "private/new"));
}

// Another user can give a second name to a file that he cannot write.
TEST(LogFile, IsRefusedInASharedFolderIfItHasASecondName) {
  const Workplace place;
  const std::filesystem::path shared = place / "shared";
  std::filesystem::create_directory(shared);
  std::filesystem::permissions(shared, std::filesystem::perms{01777});
  writeFile(place / "victim", "kept");
  std::filesystem::create_hard_link(place / "victim", shared / "run.log");
  place.configure({
      {"OUTP", "FILE"          },
      {"NAME", "shared/run.log"}
  });

  const Result result = run(place.command(kOnce));

  EXPECT_EQ(result.error,
            "Cannot create the log file \"shared/run.log\": permission denied (0x80070005). Check "
            "the key NAME in the configuration file.\n");
  EXPECT_EQ(result.ending, Ending::exit(1));
  EXPECT_EQ(readFile(place / "victim"), "kept");
}

TEST(LogFile, MayBeAnOwnLinkInASharedFolder) {
  const Workplace place;
  std::filesystem::create_directory(place / "shared");
  std::filesystem::permissions(place / "shared", std::filesystem::perms{01777});
  std::filesystem::create_symlink(place / "run.log", place / "shared/link");
  place.configure({
      {"OUTP", "FILE"       },
      {"NAME", "shared/link"}
  });

  const Result result = run(place.command(kOnce));

  EXPECT_EQ(result.error, "");
  EXPECT_PRED_FORMAT2(sameText, reportTo("shared/link"), place.maskedFile("run.log"));
}

TEST(LogFile, HasEachLineAtOnceAndGoesOnFromTheStartAfterARotation) {
  const Workplace place(Settings{
      {"OUTP", "FILE"},
      {"RESO", "YES" }
  });
  Command command = place.command(kLoop);
  command.input = Input::pipe();
  Process process(command);
  process.waitForOutput("Type r to refresh, q to stop.");
  const std::string first = place.maskedFile("monitor.log");

  // As a rotation does that copies the log. It must not leave a hole of zero bytes.
  std::filesystem::resize_file(place / "monitor.log", 0);
  process.write("rq");

  EXPECT_EQ(process.wait(), Ending::exit(0));
  EXPECT_PRED_FORMAT2(sameText, runHeader({.output = "FILE", .resources = true}) + kIdleResources,
                      first);
  EXPECT_PRED_FORMAT2(sameText, kIdleResources, readFile(place / "monitor.log"));
}

TEST(LogFile, HasTheSameLinesAsTheConsole) {
  const Workplace place(Settings{
      {"OUTP", "BOTH"},
      {"RESO", "YES" },
      {"FILE", "YES" },
      {"COMM", "YES" }
  });

  const Result result = run(place.command(kOnce));

  EXPECT_PRED_FORMAT2(sameText, result.output, kBanner + readFile(place / "monitor.log"));
}

}  // namespace
}  // namespace program_tests
