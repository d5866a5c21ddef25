// The language of what the program and its engine library say.
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "tests/program/program_under_test.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace program_tests {
namespace {

using testing_support::Command;

constexpr const char* kEnglish =
    "libtal: A MariaDB server name ends with the port: leave out the \"/\" and what follows it.\n"
    "7121: The server name cannot be read.";
constexpr const char* kGerman =
    "libtal: Der Name eines MariaDB-Servers endet mit dem Port: Lassen Sie den \"/\" und was ihm "
    "folgt weg.\n"
    "7121: Der Servername ist nicht lesbar.";

// As in other programs: LANGUAGE comes first, and has no effect in the locale C, which is in force
// too where the machine does not have the locale that is named.
TEST(Language, IsTheOneThatTheUserAsksFor) {
  struct Row {
    std::string locale;
    std::optional<std::string> list;
    std::string text;
  };
  const Row rows[] = {
      {"C",           std::nullopt, kEnglish},
      {"de_DE.UTF-8", std::nullopt, kGerman },
      {"de_AT.UTF-8", std::nullopt, kGerman },
      {"de_CH.UTF-8", std::nullopt, kEnglish},
      {"C.UTF-8",     "de",         kGerman },
      {"C.UTF-8",     "fr:de_CH",   kGerman },
      {"de_DE.UTF-8", "en:de",      kEnglish},
      {"C",           "de",         kEnglish},
      {"de_CH.UTF-8", "de",         kEnglish},
  };
  const testing_support::TemporaryFolder folder;
  testing_support::writeFile(folder / "zelk.cfg", configuration({
                                                      {"SERV", "mariadb://h/db"}
  }));
  for (const Row& row : rows) {
    Command command{
        .program = builtProgram(), .arguments = {"-f", "zelk.cfg", "-runonce"}
    };
    command.environment = environmentWithMessages(row.locale);
    command.environment["LANGUAGE"] = row.list;
    command.folder = folder.path();

    const std::string error = testing_support::run(command).error;

    EXPECT_EQ(error.substr(0, row.text.size()), row.text)
        << row.locale << " " << row.list.value_or("");
  }
}

TEST(Language, OfTheClientLibraryIsWrittenInUtf8) {
  const auto texts = "/usr/share/locale/de/LC_MESSAGES/libpq5-15.mo";
  if (!std::filesystem::exists(texts)) GTEST_SKIP() << "the system has no German texts of it";
  const testing_support::TemporaryFolder folder;
  testing_support::writeFile(folder / "zelk.cfg", configuration({
                                                      {"SERV", "postgresql:///nowhere"}
  }));
  Command command{
      .program = builtProgram(), .arguments = {"-f", "zelk.cfg", "-runonce"}
  };
  command.environment = environmentWithMessages("de_DE.UTF-8");
  command.folder = folder.path();

  const std::string error = testing_support::run(command).error;

  const std::string expected = "libtal: Verbindung zum Server auf Socket »/nowhere/.s.PGSQL.5432« ";
  EXPECT_EQ(error.substr(0, expected.size()), expected);
}

}  // namespace
}  // namespace program_tests
