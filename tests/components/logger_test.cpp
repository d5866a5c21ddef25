#include "output/Logger.h"

#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "orv/Exception.h"
#include "tests/components/component_test.h"
#include "tests/support/redirected_streams.h"

namespace component_tests {
namespace {

using testing_support::CapturedOutput;

using testing_support::readFile;
using testing_support::writeFile;

class LoggerTest : public ComponentTest {
 protected:
  [[nodiscard]] orv::String pathOf(const std::string& name) const {
    return orv::String((folder_ / name).string());
  }
  // Of the log file in the folder.
  [[nodiscard]] std::string logged() const { return readFile(folder_ / "log"); }

  // The description of the orv::io::IoException that adding a log file ends with.
  std::string refusalOf(const orv::String& path) {
    try {
      logger_->addFileHandler(path);
    } catch (const orv::io::IoException& failure) {
      return failure.getDescription().toBytes();
    }
    return "no exception";
  }

  testing_support::TemporaryFolder folder_;
  orv::Reference<Logger> logger_ = orv::makeReference<Logger>("ZELK", "ZELK_");
};

// The folder is the process's current one while this lives.
class CurrentFolder {
 public:
  explicit CurrentFolder(const std::filesystem::path& path) { std::filesystem::current_path(path); }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;
  ~CurrentFolder() { std::filesystem::current_path(original_); }

 private:
  std::filesystem::path original_ = std::filesystem::current_path();
};

TEST_F(LoggerTest, WritesNothingUntilAThresholdIsSet) {
  logger_->addFileHandler(pathOf("log"));

  logger_->severe("dropped");

  EXPECT_EQ(logged(), "");
}

TEST_F(LoggerTest, WritesAMessageAtTheThresholdAndNoneBelow) {
  logger_->addFileHandler(pathOf("log"));
  logger_->setLevel(Level::kInfo);

  logger_->config("below");
  logger_->info("at");
  logger_->warning("above");

  EXPECT_EQ(logged(), "at\nabove\n");
}

TEST_F(LoggerTest, EachLevelHasItsMethod) {
  using Method = void (Logger::*)(const orv::String&);
  const Method methods[] = {&Logger::finest, &Logger::finer,   &Logger::fine,  &Logger::config,
                            &Logger::info,   &Logger::warning, &Logger::severe};
  logger_->addFileHandler(pathOf("log"));

  std::string expected;
  int level = 1;
  for (const Method method : methods) {
    logger_->setLevel(static_cast<Level>(level));
    (logger_.get()->*method)("at " + orv::String::valueOf(level));
    logger_->setLevel(static_cast<Level>(level + 1));
    (logger_.get()->*method)("below");
    expected += "at " + std::to_string(level++) + "\n";
  }

  EXPECT_EQ(logged(), expected);
}

TEST_F(LoggerTest, TakesItsThresholdByNameInAnyCase) {
  struct Row {
    const char* name;
    int threshold;
  };
  const Row rows[] = {
      {"SEVERE",  7},
      {"WARNING", 6},
      {"INFO",    5},
      {"CONFIG",  4},
      {"FINE",    3},
      {"FINER",   2},
      {"FINEST",  1},
      {"finest",  1},
      {"FinEst",  1},
      {"ALL",     0},
      {"all",     0},
      {"DEBUG",   8},
      {"FINES",   8},
      {" INFO",   8},
      {"",        8},
  };
  logger_->addFileHandler(pathOf("log"));

  std::string expected;
  for (const Row& row : rows) {
    logger_->setLevel(Level::kAll);
    logger_->setLevel(orv::String(row.name));
    for (int level = 0; level <= 7; ++level) {
      const std::string message = std::string(row.name) + " " + std::to_string(level);
      logger_->log(static_cast<Level>(level), orv::String(message));
      if (level >= row.threshold) expected += message + "\n";
    }
  }

  EXPECT_PRED_FORMAT2(sameText, expected, logged());
}

TEST_F(LoggerTest, WithoutAHandlerASevereMessageGoesNowhere) {
  const CapturedOutput output;
  logger_->setLevel(Level::kAll);

  logger_->severe("to nobody");

  EXPECT_EQ(output.text(), "");
}

TEST_F(LoggerTest, WritesEachMessageOnceToEachHandlerAndFlushesIt) {
  const CapturedOutput output;
  logger_->addStdOutHandler();
  logger_->addFileHandler(pathOf("log"));
  logger_->setLevel(Level::kAll);

  logger_->info("\tone");
  EXPECT_EQ(output.text(), "\tone\n");
  EXPECT_EQ(logged(), "\tone\n");

  logger_->severe("zwölf");
  EXPECT_EQ(output.text(), "\tone\nzwölf\n");
  EXPECT_EQ(logged(), "\tone\nzwölf\n");
}

TEST_F(LoggerTest, StartsAnExistingFileAfresh) {
  writeFile(folder_ / "log", "yesterday\nand the day before\n");
  logger_->addFileHandler(pathOf("log"));
  logger_->setLevel(Level::kAll);

  logger_->info("today");

  EXPECT_EQ(logged(), "today\n");
}

TEST_F(LoggerTest, GoesOnAtTheBeginningOfAFileThatIsEmptiedMeanwhile) {
  logger_->addFileHandler(pathOf("log"));
  logger_->setLevel(Level::kAll);
  logger_->info("before");
  std::filesystem::resize_file(folder_ / "log", 0);

  logger_->info("after");

  EXPECT_EQ(logged(), "after\n");
}

TEST_F(LoggerTest, CreatesTheFoldersOfALogFile) {
  logger_->addFileHandler(pathOf("a/b/log"));

  EXPECT_EQ(readFile(folder_ / "a/b/log"), "");
}

auto openDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return std::distance(begin(all), end(all));
}

TEST_F(LoggerTest, ClosesItsFileWhenAllIsWritten) {
  const auto before = openDescriptors();
  logger_->addFileHandler(pathOf("log"));

  logger_->close();

  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(LoggerTest, ClosesItsFileAtTheEndOfItsLife) {
  const auto before = openDescriptors();
  logger_->addFileHandler(pathOf("log"));
  EXPECT_EQ(openDescriptors(), before + 1);

  logger_ = {};

  EXPECT_EQ(openDescriptors(), before);
}

TEST_F(LoggerTest, EndsItsLifeQuietlyIfItsFileCannotBeClosed) {
  const int next = ::dup(STDERR_FILENO);  // what the file will open as
  ::close(next);
  logger_->addFileHandler(pathOf("log"));
  ASSERT_EQ(::close(next), 0);

  logger_ = {};

  EXPECT_EQ(logged(), "");
}

TEST_F(LoggerTest, SaysWhichFileCannotBeCreatedAndWhy) {
  std::filesystem::create_symlink("missing/target", folder_ / "dangling");

  EXPECT_EQ(refusalOf(pathOf("dangling")),
            "cannot create [" + (folder_ / "dangling").string() + "]: not there (0x80070002)");
}

TEST_F(LoggerTest, PutsTheCurrentFolderBeforeABareNameThatCannotBeOpened) {
  std::filesystem::create_symlink("missing/target", folder_ / "dangling");
  const CurrentFolder current(folder_.path());

  EXPECT_EQ(refusalOf("dangling"),
            "cannot create [" + (folder_ / "dangling").string() + "]: not there (0x80070002)");
}

TEST_F(LoggerTest, RefusesANameWithANulByte) {
  const std::string name = (folder_ / "logs/run").string();

  EXPECT_EQ(refusalOf(orv::String(name + std::string("\0.log", 5))),
            "cannot create [" + name + "?.log]: not there (0x80070002)");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.path()));
}

TEST_F(LoggerTest, LeavesABareNameAloneWhereTheCurrentFolderIsGone) {
  std::filesystem::create_directory(folder_ / "gone");
  const CurrentFolder current(folder_ / "gone");
  std::filesystem::remove(folder_ / "gone");

  EXPECT_EQ(refusalOf("log"), "cannot create [log]: not there (0x80070002)");
}

TEST_F(LoggerTest, AFailureWithoutATextOfItsOwnKeepsItsCode) {
  writeFile(folder_ / "file", "");
  std::filesystem::create_symlink("missing", folder_ / "dangling");
  struct Row {
    const char* name;
    unsigned code;  // 0x80070000 plus errno
  };
  const Row rows[] = {
      {"",             0x80070015U}, // the folder itself: EISDIR
      {"file/log",     0x80070011U}, // a folder where the file is: EEXIST
      {"dangling/log", 0x80070011U}, // the same where a link leads nowhere
  };

  for (const Row& row : rows) {
    try {
      logger_->addFileHandler(pathOf(row.name));
      ADD_FAILURE() << row.name << " was opened";
    } catch (const orv::ResultException& failure) {
      EXPECT_EQ(static_cast<unsigned>(failure.getResult()), row.code) << row.name;
      EXPECT_EQ(failure.getDescription(), "") << row.name;
    }
  }
}

TEST_F(LoggerTest, KeepsEarlierHandlersWhenAnotherCannotBeAdded) {
  logger_->addFileHandler(pathOf("log"));
  logger_->setLevel(Level::kAll);
  EXPECT_THROW(logger_->addFileHandler(pathOf("")), orv::ResultException);

  logger_->info("still written");

  EXPECT_EQ(logged(), "still written\n");
}

TEST_F(LoggerTest, TurnsACodeIntoAnExceptionWithTheTextsOfItsBundle) {
  const auto descriptionOf = [](const Logger& logger, orv::Result code) {
    try {
      logger.throwError(code, "/a/log");
    } catch (const orv::io::IoException& failure) {
      EXPECT_EQ(failure.getResult(), code);
      return failure.getDescription().toBytes();
    } catch (const orv::ResultException& failure) {
      EXPECT_EQ(failure.getResult(), code);
      return std::string("no description");
    }
  };
  messages_.add("ARSK.properties",
                "ARSK_ACCESS_ERROR=locked\nARSK_ERR_CREATE_FILE=%s is %s, code %d\n");

  EXPECT_EQ(descriptionOf(*logger_, orv::kAccessDenied),
            "cannot create [/a/log]: not allowed (0x80070005)");
  EXPECT_EQ(descriptionOf(*logger_, orv::kFileNotFound),
            "cannot create [/a/log]: not there (0x80070002)");
  EXPECT_EQ(descriptionOf(*logger_, static_cast<orv::Result>(0x8007001CU)), "no description");
  EXPECT_EQ(descriptionOf(*orv::makeReference<Logger>(), orv::kAccessDenied),
            "/a/log is locked, code -2147024891");
}

}  // namespace
}  // namespace component_tests
