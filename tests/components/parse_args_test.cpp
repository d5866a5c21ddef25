#include "app/CommandLine.h"

#include <string>
#include <vector>

#include "output/ProcessWide.h"
#include "tests/components/component_test.h"

namespace component_tests {
namespace {

constexpr int kAccepted = 0;
constexpr int kRejected = 1;

struct Row {
  std::vector<std::string> arguments;
  int result;
  const char* fileName;
  bool runOnce;
  bool json;
};

class ParseArgs : public ComponentTest {
 protected:
  static void expectRow(const Row& row) {
    std::vector<std::string> texts = {"zelk"};
    texts.insert(texts.end(), row.arguments.begin(), row.arguments.end());
    std::string shown;
    std::vector<char*> argv;
    for (std::string& text : texts) {
      shown += text + " ";
      argv.push_back(text.data());
    }
    argv.push_back(nullptr);
    orv::String fileName;
    bool runOnce = false;
    m_JSON = false;

    const int result = parseArgs(static_cast<int>(texts.size()), argv.data(), fileName, runOnce);

    EXPECT_EQ(result, row.result) << shown;
    EXPECT_EQ(fileName, row.fileName) << shown;
    EXPECT_EQ(runOnce, row.runOnce) << shown;
    EXPECT_EQ(m_JSON, row.json) << shown;
  }
};

TEST_F(ParseArgs, AcceptsItsFixedOrder) {
  const Row rows[] = {
      {{"-f", "zelk.cfg"},                             kAccepted, "zelk.cfg",      false, false},
      {{"-f", "zelk.cfg", "-runonce"},                 kAccepted, "zelk.cfg",      true,  false},
      {{"-f", "zelk.cfg", "-runonce", "-JSON"},        kAccepted, "zelk.cfg",      true,  true },
      {{"-f", "zelk.cfg", "-runonce", "-json"},        kAccepted, "zelk.cfg",      true,  true },
      {{"-f", "zelk.cfg", "-runonce", "x", "-f", "y"}, kAccepted, "zelk.cfg",      true,  false},
      {{"-f", "zelk.cfg", "-runonce", "x", "-JSON"},   kAccepted, "zelk.cfg",      true,  true },
      {{"-f", "zelk.cfg", "-runonce", "-runonce"},     kAccepted, "zelk.cfg",      true,  false},
      {{"-f", "zelk.cfg", "-runonce", "-Json"},        kAccepted, "zelk.cfg",      true,  false},
      {{"-f", " größe .cfg", "-runonce"},            kAccepted, " größe .cfg", true,  false},
      {{"-f", ""},                                     kAccepted, "",              false, false},
      {{"-f", "-JSON"},                                kAccepted, "-JSON",         false, true },
      {{"-f", "-runonce"},                             kAccepted, "-runonce",      false, false},
  };

  for (const Row& row : rows) expectRow(row);
}

TEST_F(ParseArgs, RejectsEverythingElse) {
  const Row rows[] = {
      {{},                                  kRejected, "",         false, false},
      {{"-f"},                              kRejected, "",         false, false},
      {{"zelk.cfg"},                        kRejected, "",         false, false},
      {{"zelk.cfg", "-f"},                  kRejected, "",         false, false},
      {{"-F", "zelk.cfg"},                  kRejected, "",         false, false},
      {{"-f ", "zelk.cfg"},                 kRejected, "",         false, false},
      {{"-runonce", "-f", "zelk.cfg"},      kRejected, "",         false, false},
      {{"-f", "zelk.cfg", "-RUNONCE"},      kRejected, "zelk.cfg", false, false},
      {{"-f", "zelk.cfg", "-runonce "},     kRejected, "zelk.cfg", false, false},
      {{"-f", "zelk.cfg", "x"},             kRejected, "zelk.cfg", false, false},
      {{"-f", "zelk.cfg", "x", "-runonce"}, kRejected, "zelk.cfg", false, false},
      {{"-f", "zelk.cfg", ""},              kRejected, "zelk.cfg", false, false},
  };

  for (const Row& row : rows) expectRow(row);
}

TEST_F(ParseArgs, SeesTheJsonSwitchAlsoWhenTheRestIsWrong) {
  const Row rows[] = {
      {{"-JSON"},                        kRejected, "",         false, true },
      {{"-json", "-f", "zelk.cfg"},      kRejected, "",         false, true },
      {{"-f", "zelk.cfg", "-JSON"},      kRejected, "zelk.cfg", false, true },
      {{"-f", "zelk.cfg", "x", "-json"}, kRejected, "zelk.cfg", false, true },
      {{"-Json", "-f", "zelk.cfg"},      kRejected, "",         false, false},
      {{"-f", "zelk.cfg", "--json"},     kRejected, "zelk.cfg", false, false},
  };

  for (const Row& row : rows) expectRow(row);
}

TEST_F(ParseArgs, NeverResetsTheJsonSwitch) {
  char program[] = "zelk";
  char* argv[] = {program, nullptr};
  orv::String fileName;
  bool runOnce = false;
  m_JSON = true;

  EXPECT_EQ(parseArgs(1, argv, fileName, runOnce), kRejected);

  EXPECT_TRUE(m_JSON);
}

}  // namespace
}  // namespace component_tests
