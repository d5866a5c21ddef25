#include "orv/Files.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "orv/Exception.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/printing.h"
#include "tests/unit/working_folder.h"

namespace {

using orv::util::FilePath;
using testing_support::TemporaryFolder;
using testing_support::WorkingFolder;

TEST(FilePath, EndsTheCurrentFolderWithTheDelimiter) {
  const TemporaryFolder folder;
  const WorkingFolder working(folder.path());

  EXPECT_EQ(FilePath::getCurrentDir().toBytes(), folder.path().string() + "/");
}

TEST(FilePath, HasOneDelimiterAtTheRoot) {
  const WorkingFolder working("/");

  EXPECT_EQ(FilePath::getCurrentDir(), "/");
}

TEST(FilePath, TellsThatTheCurrentFolderIsGone) {
  const TemporaryFolder folder;
  const WorkingFolder working(folder.path());
  std::filesystem::remove(folder.path());

  EXPECT_THROW(FilePath::getCurrentDir(), orv::ResultException);
}

TEST(FilePath, KnowsTheFolderOfTheProgram) {
  const auto program = std::filesystem::canonical("/proc/self/exe");

  EXPECT_EQ(FilePath::getProgramDir().toBytes(), program.parent_path().string());
}

}  // namespace
