#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>

#include "config/ConfigFileReader.h"
#include "orv/Exception.h"
#include "orv/Result.h"
#include "tests/support/temporary_folder.h"
#include "tests/unit/configuration.h"
#include "tests/unit/printing.h"

namespace {

using testing_support::Configuration;
using testing_support::ConfigurationFolder;
using testing_support::writeFile;

// What reading the file ends with.
std::string outcome(const ConfigurationFolder& folder, const std::string& path) {
  try {
    return folder.readPath(path)->server.toBytes();
  } catch (const ConfigException& exception) {
    return "ConfigException: " + exception.getDescription().toBytes();
  } catch (const orv::io::IoException& exception) {
    return "IoException: " + exception.getDescription().toBytes();
  } catch (const orv::ResultException& exception) {
    return "ResultException: " + std::to_string(exception.getResult() & 0xFFFF) +
           exception.getDescription().toBytes();
  }
}

TEST(ConfigFileReaderFiles, TellsThatAFileIsMissing) {
  const ConfigurationFolder folder;
  const std::string path = (folder / "missing.cfg").string();

  EXPECT_EQ(outcome(folder, path), "IoException: cannot read " + path + ": not found (80070002)");
  EXPECT_EQ(outcome(folder, ""), "IoException: cannot read : not found (80070002)");
}

TEST(ConfigFileReaderFiles, TellsThatAFolderOnTheWayIsAFile) {
  const ConfigurationFolder folder;
  writeFile(folder / "file", "");
  const std::string path = (folder / "file/zelk.cfg").string();

  EXPECT_EQ(outcome(folder, path), "IoException: cannot read " + path + ": not found (80070002)");
}

TEST(ConfigFileReaderFiles, NamesAFileByItsOwnBytes) {
  const ConfigurationFolder folder;
  const std::string path = (folder / "%s%n\xFF\xC3\xA4").string();

  EXPECT_EQ(outcome(folder, path), "IoException: cannot read " + path + ": not found (80070002)");
}

TEST(ConfigFileReaderFilesDeathTest, TellsThatAccessIsDenied) {
  const ConfigurationFolder folder;
  writeFile(folder / "secret.cfg", Configuration().text());
  std::filesystem::permissions(folder / "secret.cfg", std::filesystem::perms::none);
  const auto readAsNobody = [&] {
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0 && setuid(kNobody) != 0) std::exit(2);
    std::cerr << outcome(folder, (folder / "secret.cfg").string());
    std::exit(1);
  };

  EXPECT_EXIT(readAsNobody(), ::testing::ExitedWithCode(1),
              "^IoException: cannot read .*/secret.cfg: refused \\(80070005\\)$");
}

TEST(ConfigFileReaderFiles, PassesOtherFailuresToOpenThrough) {
  const ConfigurationFolder folder;
  const auto result = [](int error) { return "ResultException: " + std::to_string(error); };

  EXPECT_EQ(outcome(folder, (folder / "").string()), result(EISDIR));
  EXPECT_EQ(outcome(folder, std::string(5000, 'x')), result(ENAMETOOLONG));
}

TEST(ConfigFileReaderFiles, PassesFailuresToReadThrough) {
  const ConfigurationFolder folder;

  // Opens, but has nothing at its start to read.
  EXPECT_EQ(outcome(folder, "/proc/self/mem"), "ResultException: " + std::to_string(0x45D));
}

TEST(ConfigFileReaderFiles, OpensNothingBeforeItReads) {
  const ConfigurationFolder folder;
  ConfigFileReader reader(orv::String((folder / "later.cfg").string()));

  writeFile(folder / "later.cfg", Configuration().text());

  EXPECT_EQ(reader.readConfiguration()->server, "dbhost1");
}

TEST(ConfigFileReaderFiles, ForgetsAnEarlierReading) {
  const ConfigurationFolder folder;
  writeFile(folder / "zelk.cfg", Configuration().text());
  ConfigFileReader reader(orv::String((folder / "zelk.cfg").string()));
  const auto first = reader.readConfiguration();

  writeFile(folder / "zelk.cfg", Configuration().without("HAND").text());

  EXPECT_THROW(static_cast<void>(reader.readConfiguration()), ConfigException);
  EXPECT_EQ(first->server, "dbhost1");
}

TEST(ConfigFileReaderFiles, FindsNothingInAnEmptyFile) {
  EXPECT_EQ(outcome(ConfigurationFolder(), "/dev/null"), "ConfigException: missing SERV");
}

TEST(ConfigFileReaderFiles, RefusesAFileWithoutAnEnd) {
  EXPECT_EQ(outcome(ConfigurationFolder(), "/dev/zero"), "ConfigException: file too large");
}

TEST(ConfigFileReaderFiles, RefusesALineThatIsTooLong) {
  const ConfigurationFolder folder;
  const std::string path = (folder / "zelk.cfg").string();

  for (const std::string& line : {"PASS=" + std::string(70000, 'x'), std::string(70000, 'x') + "=",
                                  std::string(70000, ' ') + "// = no comment any more"}) {
    writeFile(path, Configuration().withLine(line).text());
    EXPECT_EQ(outcome(folder, path), "ConfigException: line too long");
  }
}

TEST(ConfigFileReaderFiles, IgnoresALongLineWithoutAnEqualsSign) {
  const ConfigurationFolder folder;
  const std::string path = (folder / "zelk.cfg").string();

  for (const char filling : {'x', ' '}) {
    writeFile(path, std::string(1000000, filling) + "\n" + Configuration().text());
    EXPECT_EQ(outcome(folder, path), "dbhost1");
  }
}

TEST(ConfigFileReaderFiles, SkipsACommentOfAnyLength) {
  const ConfigurationFolder folder;
  const std::string path = (folder / "zelk.cfg").string();
  writeFile(path, "  // " + std::string(1000000, 'x') + "SERV=comment\n" + Configuration().text());

  EXPECT_EQ(outcome(folder, path), "dbhost1");
}

TEST(ConfigFileReaderFiles, SurvivesAnyBytes) {
  const ConfigurationFolder folder;
  const std::string path = (folder / "zelk.cfg").string();
  std::mt19937 random(20160229);
  std::uniform_int_distribution<int> anyByte(0, 255);

  for (int round = 0; round < 20; ++round) {
    std::string bytes;
    for (int i = 0; i < 20000; ++i) bytes.push_back(static_cast<char>(anyByte(random)));
    writeFile(path, bytes);
    EXPECT_EQ(outcome(folder, path), "ConfigException: missing SERV");
    writeFile(path, bytes + "\n" + Configuration().text());
    EXPECT_EQ(outcome(folder, path), "dbhost1");
  }
}

}  // namespace
