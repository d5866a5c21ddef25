#include "config/ConfigFileReader.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/temporary_folder.h"
#include "tests/unit/configuration.h"
#include "tests/unit/printing.h"

namespace {

using testing_support::Configuration;
using namespace std::string_view_literals;

class ConfigFileReaderTest : public ::testing::Test {
 protected:
  orv::OwningPtr<ConfigData> read(const Configuration& configuration) const {
    return configurations_.read(configuration.text());
  }

  orv::OwningPtr<ConfigData> readText(std::string_view text) const {
    return configurations_.read(text);
  }

  // Why the configuration cannot be used.
  std::string refusalOf(std::string_view text) const {
    try {
      static_cast<void>(configurations_.read(text));
      return "(accepted)";
    } catch (const ConfigException& exception) {
      return exception.getDescription().toBytes();
    }
  }

 private:
  const testing_support::ConfigurationFolder configurations_;
};

TEST(ConfigData, IsOffAndEmptyAtFirst) {
  const ConfigData data;

  for (const orv::String* text :
       {&data.server, &data.user, &data.password, &data.outputType, &data.logFileName}) {
    EXPECT_TRUE(text->isEmpty());
  }
  EXPECT_EQ(data.refreshRate, 0);
  EXPECT_EQ(data.refreshLimit, 0);
  for (const bool flag : {data.consoleOutput, data.fileOutput, data.showFiles, data.showSessions,
                          data.showConnections, data.showResources, data.showCommunications}) {
    EXPECT_FALSE(flag);
  }
}

TEST(ConfigException, IsItsDescription) {
  const ConfigException described("text");
  const ConfigException copy(described);

  EXPECT_EQ(copy.getDescription(), "text");
  EXPECT_EQ(ConfigException().getDescription(), "");
}

TEST_F(ConfigFileReaderTest, ReadsACompleteFile) {
  const auto data = readText(R"(// engine to watch
SERV=dbhost1
USER=admin
PASS=secret
// seconds between refreshes (1 to 4 become 5; 0 or empty: refresh on request)
REFR=10
// stop after this many refreshes (0 or empty: until stopped)
LIMI=7
// CONSOLE, BOTH, or anything else for the log file only
OUTP=BOTH
NAME=zelk.log
FILE=YES
SESS=NO
CONN=YES
RESO=NO
COMM=YES
HAND=NO
)");

  EXPECT_EQ(data->server, "dbhost1");
  EXPECT_EQ(data->user, "admin");
  EXPECT_EQ(data->password, "secret");
  EXPECT_EQ(data->refreshRate, 10);
  EXPECT_EQ(data->refreshLimit, 7);
  EXPECT_EQ(data->outputType, "BOTH");
  EXPECT_TRUE(data->consoleOutput);
  EXPECT_TRUE(data->fileOutput);
  EXPECT_EQ(data->logFileName, "zelk.log");
  EXPECT_TRUE(data->showFiles);
  EXPECT_FALSE(data->showSessions);
  EXPECT_TRUE(data->showConnections);
  EXPECT_FALSE(data->showResources);
  EXPECT_TRUE(data->showCommunications);
  EXPECT_FALSE(data->showHandles);
}

TEST_F(ConfigFileReaderTest, NeedsEveryKey) {
  for (const char* key : {"SERV", "USER", "PASS", "REFR", "LIMI", "OUTP", "NAME", "FILE", "SESS",
                          "CONN", "RESO", "COMM", "HAND"}) {
    EXPECT_EQ(refusalOf(Configuration().without(key).text()), std::string("missing ") + key);
  }
}

TEST_F(ConfigFileReaderTest, NamesTheFirstMissingKey) {
  std::string given;
  for (const char* key : {"SERV", "USER", "PASS", "REFR", "LIMI", "OUTP", "NAME", "FILE", "SESS",
                          "CONN", "RESO", "COMM", "HAND"}) {
    EXPECT_EQ(refusalOf(given), std::string("missing ") + key);
    given = std::string(key) + "=1\n" + given;
  }
  EXPECT_EQ(refusalOf(given), "(accepted)");
}

TEST_F(ConfigFileReaderTest, NamesTheFirstEmptyKeyBeforeALaterMissingOne) {
  EXPECT_EQ(refusalOf("SERV=\n"), "no value for SERV");
  EXPECT_EQ(refusalOf(Configuration().with("OUTP", "").without("NAME").text()),
            "no value for OUTP");
  EXPECT_EQ(refusalOf(Configuration().with("OUTP", "").without("USER").text()), "missing USER");
}

TEST_F(ConfigFileReaderTest, FindsNoKeysInAnEmptyFileOrInComments) {
  for (const std::string_view text : {""sv, "\n\n"sv, "//SERV=x\n  // USER=y\n"sv, " \t\r\n"sv}) {
    EXPECT_EQ(refusalOf(text), "missing SERV") << text;
  }
}

TEST_F(ConfigFileReaderTest, NeedsAValueForTheServerAndTheOutputAlone) {
  EXPECT_EQ(refusalOf(Configuration().with("SERV", "").text()), "no value for SERV");
  EXPECT_EQ(refusalOf(Configuration().with("OUTP", "").text()), "no value for OUTP");
  for (const char* key :
       {"USER", "PASS", "REFR", "LIMI", "NAME", "FILE", "SESS", "CONN", "RESO", "COMM", "HAND"}) {
    EXPECT_EQ(refusalOf(Configuration().with(key, "").text()), "(accepted)") << key;
  }
}

TEST_F(ConfigFileReaderTest, EmptiesAValueWithASecondEqualsSign) {
  EXPECT_EQ(refusalOf(Configuration().with("SERV", "a=b").text()), "no value for SERV");
  EXPECT_EQ(read(Configuration().with("PASS", "a=b"))->password, "");
  EXPECT_EQ(read(Configuration().with("PASS", "a=b=c"))->password, "");
}

// Empty pieces between "=" do not count.
TEST_F(ConfigFileReaderTest, DropsEmptyPieces) {
  EXPECT_EQ(read(Configuration().with("PASS", "=a"))->password, "a");
  EXPECT_EQ(read(Configuration().with("PASS", "a=="))->password, "a");
  EXPECT_EQ(read(Configuration().without("PASS").withLine("==PASS=a"))->password, "a");
  EXPECT_EQ(read(Configuration().withLine("=").withLine("==="))->server, "dbhost1");
}

TEST_F(ConfigFileReaderTest, KnowsKeysByTheirFirstFourCharactersInAnyCase) {
  struct Case {
    const char* line;
    const char* server;
  };
  constexpr Case kCases[] = {
      {"serv=x",         "x"},
      {"Server=x",       "x"},
      {"sErVeR name =x", "x"},
      {"  SERV=x  ",     "x"},
      {"\t SERV=x\t\r",  "x"},
      {"SERV\xFF=x",     "x"},
  };

  for (const Case& row : kCases) {
    EXPECT_EQ(read(Configuration().without("SERV").withLine(row.line))->server, row.server)
        << row.line;
  }
  EXPECT_EQ(read(Configuration().without("REFR").withLine("refreshing=30"))->refreshRate, 30);
}

TEST_F(ConfigFileReaderTest, MatchesNoShorterAndNoOtherKey) {
  for (const char* line : {"SER=x", "S=x", "ER=x", "SER =x", "SERW=x", "XSERV=x", "S ERV=x",
                           "\xC5\xBF"
                           "ERV=x",
                           "=x", "SERV"}) {
    EXPECT_EQ(refusalOf(Configuration().without("SERV").withLine(line).text()), "missing SERV")
        << line;
  }
}

TEST_F(ConfigFileReaderTest, TakesTheLastLineOfAKey) {
  EXPECT_EQ(read(Configuration().withLine("server=later"))->server, "later");
  EXPECT_EQ(refusalOf(Configuration().withLine("SERV=").text()), "no value for SERV");
}

TEST_F(ConfigFileReaderTest, TakesAValueAsItIs) {
  EXPECT_EQ(read(Configuration().with("PASS", " \t a b"))->password, " \t a b");
  EXPECT_EQ(read(Configuration().with("PASS", "a // b"))->password, "a // b");
  EXPECT_EQ(read(Configuration().with("PASS", "\"'\\n#%s"))->password, "\"'\\n#%s");
  EXPECT_EQ(read(Configuration().with("PASS", "\xC3\xA4\xFF"))->password.toBytes(), "\xC3\xA4\xFF");
  EXPECT_EQ(read(Configuration().with("PASS", "a \t"))->password, "a");  // the line is trimmed
}

TEST_F(ConfigFileReaderTest, IgnoresLinesWithoutAnEqualsSign) {
  std::string text = "SERV\nwhat is this\n";
  text += Configuration().withLine("FILE").text();

  EXPECT_TRUE(readText(text)->showFiles);
}

TEST_F(ConfigFileReaderTest, TakesCommentsAsWholeLinesOnly) {
  EXPECT_EQ(read(Configuration().withLine("  //SERV=comment"))->server, "dbhost1");
  EXPECT_EQ(read(Configuration().withLine("/ /SERV=no comment"))->server, "dbhost1");
  EXPECT_EQ(read(Configuration().withLine("/SERV=x"))->server, "dbhost1");
  EXPECT_EQ(read(Configuration().with("SERV", "//x"))->server, "//x");
}

TEST_F(ConfigFileReaderTest, ReadsOtherLineEndsAndAByteOrderMark) {
  std::string text = "\xEF\xBB\xBF" + Configuration().text();
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) {
    text.insert(at, "\r");
  }
  text.resize(text.size() - 2);

  const auto data = readText(text);

  EXPECT_EQ(data->server, "dbhost1");
  EXPECT_TRUE(data->showHandles);
}

TEST_F(ConfigFileReaderTest, KeepsLongValues) {
  const std::string value(60000, 'x');

  EXPECT_EQ(read(Configuration().with("PASS", value))->password, orv::String(value));
}

TEST_F(ConfigFileReaderTest, ReadsAFileWithManyOtherKeys) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "K" + std::to_string(i) + "=value\n";

  const auto data = readText(text + Configuration().text() + text);

  EXPECT_EQ(data->server, "dbhost1");
}

}  // namespace
