#include "orv/Files.h"
#include "orv/Process.h"
#include "orv/String.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <string_view>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace {

using orv::String;
using testing_support::TemporaryFolder;
using namespace std::string_view_literals;

String narrow(const std::filesystem::path& path) { return String(path.string()); }

// What a started thread sees of itself.
struct ThreadView {
  std::string name;
  bool blocksInterrupts = false;
};

// Owns its argument. Waits for its name, which the thread that starts it gives it.
void* reportThread(void* argument) {
  const std::unique_ptr<std::promise<ThreadView>> report(
      static_cast<std::promise<ThreadView>*>(argument));
  std::array<char, 16> name{};
  while (name.data() != "ZelkUserInputTh"sv) {
    pthread_getname_np(pthread_self(), name.data(), name.size());
  }
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  report->set_value({name.data(), sigismember(&blocked, SIGINT) == 1});
  return nullptr;
}

TEST(ThreadCreate, NamesTheThreadAndKeepsSignalsAway) {
  auto report = std::make_unique<std::promise<ThreadView>>();
  auto view = report->get_future();

  const orv::Result result =
      orv::ORVThreadCreate(reportThread, report.release(), "ZelkUserInputThread");

  ASSERT_EQ(result, 0);
  ASSERT_EQ(view.wait_for(testing_support::kDeadline), std::future_status::ready);
  const ThreadView seen = view.get();
  EXPECT_EQ(seen.name, "ZelkUserInputTh");
  EXPECT_TRUE(seen.blocksInterrupts);
  sigset_t own;
  pthread_sigmask(SIG_SETMASK, nullptr, &own);
  EXPECT_EQ(sigismember(&own, SIGINT), 0);
}

TEST(Dir, OpensFoldersAlone) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", "");

  orv::DirHandle* const opened = orv::ORVDirOpen(narrow(folder.path()));
  EXPECT_NE(opened, nullptr);
  orv::ORVDirClose(opened);

  EXPECT_EQ(orv::ORVDirOpen(narrow(folder / "file")), nullptr);
  EXPECT_EQ(orv::ORVDirOpen(narrow(folder / "missing")), nullptr);
  EXPECT_EQ(orv::ORVDirOpen(""), nullptr);
}

TEST(Dir, IsMadeWithinTheMaskOfTheProcess) {
  const TemporaryFolder folder;
  const mode_t before = umask(0027);

  const orv::Result result = orv::ORVDirCreate(narrow(folder / "new"), 0777);
  umask(before);

  EXPECT_EQ(result, 0);
  EXPECT_EQ(std::filesystem::status(folder / "new").permissions(), std::filesystem::perms(0750));
}

// Another program may have been faster.
TEST(Dir, MayBeThereAlready) {
  const TemporaryFolder folder;

  EXPECT_EQ(orv::ORVDirCreate(narrow(folder.path()), 0777), 0);
}

TEST(Dir, TellsWhyItCannotBeMade) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "file", "");

  EXPECT_EQ(orv::ORVDirCreate(narrow(folder / "file"), 0777), orv::resultOfErrno(EEXIST));
  EXPECT_EQ(orv::ORVDirCreate(narrow(folder / "a/b"), 0777), orv::kFileNotFound);
  EXPECT_EQ(orv::ORVDirCreate(narrow(folder / "file/b"), 0777), orv::kFileNotFound);
}

TEST(PathExists, FollowsWhatTheSystemReports) {
  const TemporaryFolder folder;
  testing_support::writeFile(folder / "\xFF", "");
  std::filesystem::create_symlink("missing", folder / "dangling");

  EXPECT_TRUE(orv::ORVPathExists(narrow(folder.path())));
  EXPECT_TRUE(orv::ORVPathExists(narrow(folder / "\xFF")));
  EXPECT_FALSE(orv::ORVPathExists(narrow(folder / "missing")));
  EXPECT_FALSE(orv::ORVPathExists(narrow(folder / "dangling")));
  EXPECT_FALSE(orv::ORVPathExists(""));
}

TEST(Time, IsThatOfTheSystem) {
  const std::time_t before = std::time(nullptr);
  const std::time_t now = orv::ORVTimeToPosix(orv::ORVTimeGetLocal());
  const std::time_t after = std::time(nullptr);

  EXPECT_GE(now, before);
  EXPECT_LE(now, after);
}

TEST(UnicodeToAnsi, CutsAtACharacter) {
  struct Case {
    std::string_view text;
    std::size_t size;
    const char* expected;
  };
  constexpr Case kCases[] = {
      {"abc"sv,              4, "abc"          },
      {"abc"sv,              3, "ab"           },
      {"abc"sv,              1, ""             },
      {""sv,                 1, ""             },
      {"a\xE2\x82\xAC"sv,    5, "a\xE2\x82\xAC"},
      {"a\xE2\x82\xAC"sv,    4, "a"            },
      {"a\xE2\x82\xAC"sv,    3, "a"            },
      {"\xF0\x9F\x98\x80"sv, 4, ""             },
      {"\xFF\xFE\xFD"sv,     3, "\xFF\xFE"     },
      {"a\0b"sv,             9, "a"            },
      {"a\0bcdefgh"sv,       4, "a"            },
  };

  for (const Case& row : kCases) {
    std::string buffer(16, '#');
    orv::ORVUnicodeToAnsi(String(row.text), buffer.data(), row.size);
    EXPECT_STREQ(buffer.c_str(), row.expected) << ::testing::PrintToString(row.text);
    EXPECT_EQ(buffer.substr(row.size), std::string(16 - row.size, '#'));
  }
}

TEST(StrCpyA, CutsToFit) {
  std::string buffer(8, '#');

  orv::ORVStrCpyA(buffer.data(), 4, "abcdef");
  EXPECT_EQ(buffer, std::string("abc\0####", 8));
  orv::ORVStrCpyA(buffer.data(), 8, "xy");
  EXPECT_STREQ(buffer.c_str(), "xy");
  orv::ORVStrCpyA(buffer.data(), 1, "z");

  EXPECT_STREQ(buffer.c_str(), "");
}

TEST(Result, NamesTheKnownReasonsAndCarriesTheOthers) {
  struct Case {
    int error;
    std::uint32_t result;
  };
  constexpr Case kCases[] = {
      {ENOENT,       0x80070002U},
      {ENOTDIR,      0x80070002U},
      {EACCES,       0x80070005U},
      {EPERM,        0x80070005U},
      {EROFS,        0x80070005U},
      {EIO,          0x8007045DU}, // 5 would read as a refused access
      {EISDIR,       0x80070015U},
      {ENOSPC,       0x8007001CU},
      {ENAMETOOLONG, 0x80070024U},
  };

  for (const Case& row : kCases) {
    EXPECT_EQ(orv::resultOfErrno(row.error), static_cast<orv::Result>(row.result)) << row.error;
  }
}

}  // namespace
