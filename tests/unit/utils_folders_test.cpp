#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "orv/Result.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/working_folder.h"
#include "util/Utils.h"

namespace {

using orv::String;
using std::filesystem::is_directory;
using testing_support::TemporaryFolder;
using testing_support::WorkingFolder;

String narrow(const std::filesystem::path& path) { return String(path.string()); }

// Names of all that is in a folder, at any depth.
std::size_t countEntries(const std::filesystem::path& folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    ++count;
  }
  return count;
}

TEST(UtilsFolders, TellsWhatExists) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", "");

  EXPECT_TRUE(Utils::fileExist(narrow(folder.path())));
  EXPECT_TRUE(Utils::fileExist(narrow(folder / "file")));
  EXPECT_FALSE(Utils::fileExist(narrow(folder / "missing")));
  EXPECT_FALSE(Utils::fileExist(""));
  EXPECT_FALSE(Utils::fileExist(String(std::string(5000, 'x'))));
}

TEST(UtilsFolders, TellsWhatIsAFolder) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", "");

  EXPECT_TRUE(Utils::dirExist(narrow(folder.path())));
  EXPECT_FALSE(Utils::dirExist(narrow(folder / "file")));
  EXPECT_FALSE(Utils::dirExist(narrow(folder / "missing")));
  EXPECT_FALSE(Utils::dirExist(""));
}

TEST(UtilsFolders, LeavesNoFolderOpen) {
  const TemporaryFolder folder;
  const auto before = countEntries("/proc/self/fd");

  for (int i = 0; i < 100; ++i) EXPECT_TRUE(Utils::dirExist(narrow(folder.path())));

  EXPECT_EQ(countEntries("/proc/self/fd"), before);
}

TEST(UtilsFolders, MakesTheFoldersAboveAFile) {
  const TemporaryFolder folder;

  EXPECT_EQ(Utils::createDirs(narrow(folder / "a/b/c.log")), 0);
  EXPECT_EQ(Utils::createDirs(narrow(folder / "a/b/d/e.log")), 0);

  EXPECT_TRUE(is_directory(folder / "a/b/d"));
  EXPECT_EQ(countEntries(folder.path()), 3U);
}

TEST(UtilsFolders, StartsAtTheCurrentFolderWithoutADelimiter) {
  const TemporaryFolder folder;
  const WorkingFolder working(folder.path());

  EXPECT_EQ(Utils::createDirs("logs/run.log"), 0);

  EXPECT_TRUE(is_directory(folder / "logs"));
  EXPECT_EQ(countEntries(folder.path()), 1U);
}

TEST(UtilsFolders, MakesNothingWithoutAFolder) {
  const TemporaryFolder folder;
  const WorkingFolder working(folder.path());

  for (const char* path : {"run.log", "", "/", "//", "run.log/", "/run.log", "./run.log"}) {
    EXPECT_EQ(Utils::createDirs(path), 0) << path;
  }

  EXPECT_EQ(countEntries(folder.path()), 0U);
}

TEST(UtilsFolders, TakesManyDelimitersForOne) {
  const TemporaryFolder folder;

  EXPECT_EQ(Utils::createDirs("//" + narrow(folder / "a//b///c.log")), 0);

  EXPECT_TRUE(is_directory(folder / "a/b"));
  EXPECT_EQ(countEntries(folder.path()), 2U);
}

TEST(UtilsFolders, TakesNamesInAnyEncoding) {
  const TemporaryFolder folder;

  EXPECT_EQ(Utils::createDirs(narrow(folder / "\xFF\xC3\xA4/c.log")), 0);

  EXPECT_TRUE(is_directory(folder / "\xFF\xC3\xA4"));
}

TEST(UtilsFolders, LeavesPermissionsToTheMask) {
  const TemporaryFolder folder;
  const mode_t before = umask(0);

  const orv::Result result = Utils::createDirs(narrow(folder / "a/c.log"));
  umask(before);

  EXPECT_EQ(result, 0);
  EXPECT_EQ(std::filesystem::status(folder / "a").permissions(), std::filesystem::perms(0777));
}

TEST(UtilsFolders, StopsAtTheFirstFolderThatCannotBeMade) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", "");

  EXPECT_EQ(Utils::createDirs(narrow(folder / "a/c.log")), 0);
  EXPECT_EQ(Utils::createDirs(narrow(folder / "file/c.log")), orv::resultOfErrno(EEXIST));
  EXPECT_EQ(Utils::createDirs(narrow(folder / "file/b/c.log")), orv::resultOfErrno(EEXIST));
  EXPECT_EQ(Utils::createDirs("/dev/null/a/c.log"), orv::resultOfErrno(EEXIST));

  EXPECT_EQ(countEntries(folder.path()), 2U);
}

TEST(UtilsFoldersDeathTest, TellsThatAccessIsDenied) {
  const TemporaryFolder folder;
  std::filesystem::permissions(folder.path(), std::filesystem::perms(0555));
  const auto makeAsNobody = [&] {
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0 && setuid(kNobody) != 0) std::exit(2);
    const orv::Result result = Utils::createDirs(narrow(folder / "a/b/c.log"));
    std::exit(result == orv::kAccessDenied ? 0 : 1);
  };

  EXPECT_EXIT(makeAsNobody(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
