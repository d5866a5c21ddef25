// The engine library's modules: found in its folder and nowhere else, and refused where they do not
// fit.
#include <gtest/gtest.h>

#include <string>

#include "tests/program/program_under_test.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text_comparison.h"

namespace program_tests {
namespace {

using testing_support::Command;
using testing_support::Ending;
using testing_support::Result;
using testing_support::run;
using testing_support::sameText;
using testing_support::TemporaryFolder;
using testing_support::writeFile;

const std::string kMissing =
    "7125: The part of zelk that watches this kind of server cannot be loaded; the line before this "
    "one says what is missing. Install the client library of PostgreSQL or MariaDB, or all of zelk "
    "again.\n";
const std::string kForeign =
    "7126: The part of zelk that watches this kind of server is of another version than the rest. "
    "Install all of zelk again.\n";

// A copied tree without modules, and a server of the engine under test that is not there.
class Modules : public ::testing::TestWithParam<std::string> {
 protected:
  Modules() : tree_(folder_ / "tree") {
    writeFile(folder_ / "zelk.cfg", configuration({
                                        {"SERV", GetParam() + "://127.0.0.1:1"}
    }));
  }

  [[nodiscard]] Command command() const {
    Command command{
        .program = tree_.program(), .arguments = {"-f", "zelk.cfg", "-runonce"}
    };
    command.folder = folder_.path();
    command.environment = plainEnvironment();
    return command;
  }

  [[nodiscard]] std::filesystem::path place() const { return tree_.module(GetParam()); }

  // The same as the loader has it, which comes there by way of the program.
  [[nodiscard]] std::string loaded() const {
    return tree_.program().parent_path() / "../lib/zelk" / place().filename();
  }

  static void expectFailure(const Result& result, const std::string& error) {
    EXPECT_PRED_FORMAT2(sameText, error, result.error);
    EXPECT_EQ(result.ending, Ending::exit(1));
  }

  TemporaryFolder folder_;
  ProgramTree tree_;
};

TEST_P(Modules, AreOpenedWhereTheLibraryIs) {
  std::filesystem::copy_file(builtModule(GetParam()), place());

  const Result result = run(command());

  // After a line that says which host and port refused.
  EXPECT_NE(result.error.find("\n7103: The server cannot be reached"), std::string::npos)
      << result.error;
  EXPECT_EQ(result.ending, Ending::exit(1));
}

TEST_P(Modules, AreSoughtNowhereElse) {
  std::filesystem::copy_file(builtModule(GetParam()), folder_ / place().filename());
  Command elsewhere = command();
  elsewhere.environment["LD_LIBRARY_PATH"] = folder_.path();

  const Result result = run(elsewhere);

  expectFailure(result, "libtal: " + loaded() +
                            ": cannot open shared object file: No such file or directory\n" +
                            kMissing);
}

TEST_P(Modules, AreSoughtWhereALibraryOfRelativeNameIs) {
  Command relative = command();
  relative.program = builtProgram();
  relative.environment["LD_LIBRARY_PATH"] = "tree/lib/zelk";

  const Result result = run(relative);

  expectFailure(result, "libtal: " + place().string() +
                            ": cannot open shared object file: No such file or directory\n" +
                            kMissing);
}

TEST_P(Modules, NeedTheirClientLibrary) {
  std::filesystem::copy_file(builtModule(GetParam()), place());
  const std::string library = GetParam() == "mariadb" ? "libmariadb.so.3" : "libpq.so.5";
  writeFile(folder_ / library, "");
  Command damaged = command();
  damaged.environment["LD_LIBRARY_PATH"] = folder_.path();

  const Result result = run(damaged);

  expectFailure(result,
                "libtal: " + (folder_ / library).string() + ": file too short\n" + kMissing);
}

TEST_P(Modules, AreNoOtherLibraries) {
  std::filesystem::copy_file(fakeEngine(), place());

  const Result result = run(command());

  expectFailure(result, "libtal: " + loaded() + ": undefined symbol: talModule\n" + kMissing);
}

TEST_P(Modules, AreOfTheSameBuildAsTheLibrary) {
  std::filesystem::copy_file(FOREIGN_MODULE, place());

  const Result result = run(command());

  expectFailure(result, kForeign);
}

INSTANTIATE_TEST_SUITE_P(All, Modules, ::testing::Values("mariadb", "postgresql"),
                         [](const auto& engine) { return engine.param; });

}  // namespace
}  // namespace program_tests
