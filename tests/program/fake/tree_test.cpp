// The program, its engine library and its messages form a tree that can be moved; the library and
// the messages can be replaced.
#include <gtest/gtest.h>

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
using testing_support::maskTimes;
using testing_support::Result;
using testing_support::run;
using testing_support::sameText;
using testing_support::TemporaryFolder;
using testing_support::writeFile;

const std::string kUnknownScheme = "7102: The server name does not say which engine to watch.";

class Tree : public ::testing::Test {
 protected:
  Tree() { writeFile(folder_ / "zelk.cfg", configuration()); }

  [[nodiscard]] Command command(const std::filesystem::path& program) const {
    Command command{.program = program, .arguments = kOnce};
    command.folder = folder_.path();
    command.environment = plainEnvironment();
    return command;
  }

  void expectReport(const Result& result) {
    EXPECT_PRED_FORMAT2(sameText, kBanner + runHeader({}), maskTimes(result.output));
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(result.ending, Ending::exit(0));
  }

  TemporaryFolder folder_;
};

TEST_F(Tree, RunsWhereItWasCopiedTo) {
  const ProgramTree tree(folder_ / "some where else");

  const Result result = run(command(tree.program()));

  EXPECT_EQ(result.output.substr(0, std::string(kBanner).size()), kBanner);
  EXPECT_EQ(result.error.substr(0, kUnknownScheme.size()), kUnknownScheme);
  EXPECT_EQ(result.ending, Ending::exit(1));
}

TEST_F(Tree, RunsThroughASymbolicLink) {
  const ProgramTree tree(folder_ / "tree");
  tree.replaceEngine(fakeEngine());
  std::filesystem::create_symlink(tree.program(), folder_ / "link");

  expectReport(run(command(folder_ / "link")));
}

TEST_F(Tree, RunsWhenFoundOnThePath) {
  const ProgramTree tree(folder_ / "tree");
  tree.replaceEngine(fakeEngine());
  Command found = command("/usr/bin/env");
  found.arguments = {"PATH=" + (folder_ / "tree/bin").string(), "zelk", "-f", "zelk.cfg",
                     "-runonce"};

  expectReport(run(found));
}

TEST_F(Tree, TakesAnotherEngineLibraryInItsPlace) {
  const ProgramTree tree(folder_ / "tree");
  tree.replaceEngine(fakeEngine());

  expectReport(run(command(tree.program())));
}

TEST_F(Tree, TakesAnEngineLibraryThatIsPreloaded) {
  Command preloading = command(builtProgram());
  preloading.environment["LD_PRELOAD"] = fakeEngine();
  // An instrumented build has its runtime behind the preloaded library.
  preloading.environment["ASAN_OPTIONS"] = "verify_asan_link_order=0";

  expectReport(run(preloading));
}

TEST_F(Tree, ShowsAFixedTextWhereMessagesAreMissing) {
  const std::string none = "The resource bundle is not installed";
  const ProgramTree tree(folder_ / "tree");
  std::filesystem::remove_all(tree.messages());

  const Result result = run(command(tree.program()));

  EXPECT_EQ(result.output.substr(0, 2 * none.size() + 3), none + "\n" + none + "\n\n");
  EXPECT_EQ(result.error, "7102: " + none + "\n");
  EXPECT_EQ(result.ending, Ending::exit(1));
}

// A text is data from a file: it may be wrong in every way, but it must stay a text.
TEST_F(Tree, ShowsAMessageUnformattedIfItsConversionsDoNotFit) {
  const char* const texts[] = {"%n",           "%s %s", "%d",   "%s%s%s%s%s%s%n", "%",    "100%",
                               "%99999999s%n", "%*s",   "%2$s", "%lls",           "%.*s", "%c"};
  for (const std::string text : texts) {
    SCOPED_TRACE(text);
    const TemporaryFolder place;
    const ProgramTree tree(place / "tree");
    writeFile(tree.messages() / "ZELK.properties", "ZELK_NAME=" + text + "\nZELK_USAGE=usage\n");

    Command usage = command(tree.program());
    usage.arguments = {};
    const Result result = run(usage);

    EXPECT_EQ(result.output, text + "\nThe resource bundle is not installed\n\nusage\n");
    EXPECT_EQ(result.ending, Ending::exit(1));
  }
}

TEST_F(Tree, CutsLongMessages) {
  const ProgramTree tree(folder_ / "tree");
  writeFile(tree.messages() / "ZELK.properties",
            "ZELK_NAME=" + std::string(3000, 'n') + "\nZELK_COPYRIGHT=c\nZELK_USAGE=u\n");
  Command usage = command(tree.program());
  usage.arguments = {};

  const Result result = run(usage);

  EXPECT_EQ(result.output, std::string(1023, 'n') + "\nc\n\nu\n");
}

}  // namespace
}  // namespace program_tests
