#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/temporary_folder.h"
#include "tests/tal/interface.h"

namespace tal::test {
namespace {

using testing_support::TemporaryFolder;
using testing_support::writeFile;

class ScenarioFile : public testing::Test {
 protected:
  // Connects to a scenario and returns the line on standard error.
  std::string complaintAbout(const std::string& path, Status expected) {
    std::int32_t handle = 0;
    testing::internal::CaptureStderr();
    const std::int16_t status = connect({"sim:" + path, "", ""}, handle);
    EXPECT_EQ(status, code(expected)) << path;
    return testing::internal::GetCapturedStderr();
  }

  std::string scenario(std::string_view text) {
    const std::filesystem::path path = folder_ / "shop.toml";
    writeFile(path, text);
    return path.string();
  }

  TemporaryFolder folder_;
  Started started_;
};

TEST_F(ScenarioFile, IsServed) {
  const std::string path =
      scenario("[[file]]\nname = 'orders'\n[[file.handle]]\nclient = 'anna'\n");

  const std::vector<ListedFile> files = listFiles(connected({"sim:" + path, "any", "body"}));

  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files[0].name, "orders");
  ASSERT_EQ(files[0].handles.size(), 1U);
  EXPECT_STREQ(files[0].handles[0].clientName, "anna");
}

TEST_F(ScenarioFile, IsFoundInTheWorkingDirectory) {
  scenario("[version]\nmajor = 9\n");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());

  const std::int32_t handle = connected({"sim:shop.toml", "", ""});

  std::filesystem::current_path(before);
  TalVersion version{};
  EXPECT_EQ(TalGetZorbVersion(handle, &version), 0);
  EXPECT_EQ(version.major, 9);
}

TEST_F(ScenarioFile, WithAMistakeIsRefusedInOneLine) {
  const std::string path = scenario("[version]\nmajor = 1\nmino = 2\n");

  EXPECT_EQ(
      complaintAbout(path, Status::kScenarioWrong),
      "libtal: " + path + ":3: unknown key \"mino\" in [version]; expected major, minor, build\n");
}

TEST_F(ScenarioFile, ThatCannotBeReadIsRefusedInOneLine) {
  const std::string missing = (folder_ / "none").string();
  const std::string aFolder = folder_.path().string();

  EXPECT_EQ(complaintAbout(missing, Status::kScenarioWrong),
            "libtal: " + missing + ": cannot be read: No such file or directory\n");
  EXPECT_EQ(complaintAbout(aFolder, Status::kScenarioWrong),
            "libtal: " + aFolder + ": is not a regular file\n");
  EXPECT_EQ(complaintAbout("/dev/zero", Status::kScenarioWrong),
            "libtal: /dev/zero: is not a regular file\n");
  EXPECT_EQ(complaintAbout("", Status::kScenarioWrong),
            "libtal: : cannot be read: No such file or directory\n");
}

TEST_F(ScenarioFile, MayHaveOneMebibyte) {
  std::string text(1048576, '\n');
  const std::string path = scenario(text);
  EXPECT_EQ(complaintAbout(path, Status::kSuccess), "");

  scenario(text + '\n');

  EXPECT_EQ(complaintAbout(path, Status::kScenarioWrong),
            "libtal: " + path + ": is larger than 1048576 bytes\n");
}

TEST_F(ScenarioFile, WithHostileNamesDoesNotDriveTheTerminal) {
  EXPECT_EQ(complaintAbout("no\x1b[2J\nsuch", Status::kScenarioWrong),
            "libtal: no?[2J?such: cannot be read: No such file or directory\n");
}

TEST_F(ScenarioFile, FailsTheCallsOfItsFaults) {
  const auto with = [&](const std::string& call) {
    return Target{"sim:" + scenario("[[fault]]\ncall = '" + call + "'\nstatus = -5\n"), "", ""};
  };
  std::int32_t handle = 0;

  EXPECT_EQ(connect(with("TalConnectServer"), handle), -5);
  EXPECT_EQ(TalDisconnect(connected(with("TalDisconnect"))), -5);
  for (const NamedCall& named : callsOnAHandle()) {
    EXPECT_EQ(named.call(connected(with(named.name))), -5) << named.name;
  }
  EXPECT_EQ(TalDisconnect(connected(with("TalStop"))), 0);
  EXPECT_EQ(TalStop(nullptr), -5);
}

TEST_F(ScenarioFile, StaysStableBetweenASnapshotAndItsRelease) {
  const std::int32_t handle = connected(
      {"sim:" + scenario("[[file]]\nname = ['a', 'b', 'c']\nsize_kb = { step = 1 }\n"), "", ""});
  std::uint32_t count = 0;
  ASSERT_EQ(TalGetOpenFilesData(handle, &count), 0);

  const std::string first = readFiles(handle, count).at(0).name;
  listClients(handle);

  EXPECT_EQ(first, "a");
  EXPECT_EQ(readFiles(handle, count).at(0).name, "a");
  ASSERT_EQ(TalGetOpenFilesData(handle, &count), 0);
  EXPECT_EQ(readFiles(handle, count).at(0).name, "b");
  EXPECT_EQ(readFiles(handle, count).at(0).info.sizeKb, 1U);
}

TEST_F(ScenarioFile, StandsForMasses) {
  const std::int32_t handle =
      connected({"sim:" + scenario("[[file]]\nname = 'f{n}'\ncount = 100\nhandle = [{ client = "
                                   "'till {n}', count = 1000 }]\n"),
                 "", ""});

  const std::vector<ListedFile> files = listFiles(handle);

  ASSERT_EQ(files.size(), 100U);
  EXPECT_EQ(files[99].name, "f100");
  ASSERT_EQ(files[99].handles.size(), 1000U);
  EXPECT_STREQ(files[99].handles[999].clientName, "till 1000");
}

}  // namespace
}  // namespace tal::test
