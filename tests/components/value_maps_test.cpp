#include <climits>
#include <map>
#include <string>

#include "monitor/MonitorProcessor.h"
#include "tests/components/component_test.h"

namespace component_tests {
namespace {

using Words = std::map<int, std::string>;
using Translator = orv::String (MonitorProcessor::*)(int) const;

constexpr bool kText = false;
constexpr bool kJson = true;

class ValueMaps : public ComponentTest {
 protected:
  // The translator must know these words and no others.
  void expectWords(bool json, Translator translate, const Words& words) {
    const MonitorProcessor processor(&config_, json);
    expectWords(processor, translate, words);
  }

  static void expectWords(const MonitorProcessor& processor, Translator translate,
                          const Words& words) {
    const auto expectWord = [&](int code) {
      const auto found = words.find(code);
      EXPECT_EQ((processor.*translate)(code).toBytes(),
                found == words.end() ? "n/a" : found->second)
          << code;
    };
    for (int code = -2000; code <= 2000; ++code) expectWord(code);
    for (const int code : {INT_MIN, INT_MIN + 1, -65536, 65536, INT_MAX}) expectWord(code);
  }

  ConfigData config_;
};

const Words kTextStates = {
    {78, "No" },
    {89, "Yes"},
};
const Words kJsonStates = {
    {78, "false"},
    {89, "true" },
};
constexpr Translator kFlags[] = {
    &MonitorProcessor::getBooleanStateString,
    &MonitorProcessor::getReadOnlyFlagString,
    &MonitorProcessor::getTransactionLockString,
    &MonitorProcessor::getRecordLocksString,
};

TEST_F(ValueMaps, Flags) {
  for (const Translator flag : kFlags) {
    expectWords(kText, flag, kTextStates);
    expectWords(kJson, flag, kJsonStates);
  }
}

TEST_F(ValueMaps, OpenModesInText) {
  expectWords(kText, &MonitorProcessor::getOpenModeString,
              {
                  {0,   "Normal"                        },
                  {255, "Accelerated"                   },
                  {254, "Read-only"                     },
                  {253, "Verify"                        },
                  {252, "Exclusive"                     },
                  {248, "Normal, non-transactional"     },
                  {247, "Accelerated, non-transactional"},
                  {246, "Read-only, non-transactional"  },
                  {245, "Verify, non-transactional"     },
                  {244, "Exclusive, non-transactional"  },
                  {240, "Normal, shared locking"        },
                  {239, "Accelerated, shared locking"   },
                  {238, "Read-only, shared locking"     },
                  {237, "Verify, shared locking"        },
                  {236, "Exclusive, shared locking"     },
  });
}

// With their quotes; two of them are one short.
TEST_F(ValueMaps, OpenModesInJson) {
  expectWords(kJson, &MonitorProcessor::getOpenModeString,
              {
                  {0,   R"("Normal")"                          },
                  {255, R"("Accelerated")"                     },
                  {254, R"("Read-only")"                       },
                  {253, R"("Verify")"                          },
                  {252, R"("Exclusive")"                       },
                  {248, R"("Normal", "non-transactional")"     },
                  {247, R"("Accelerated", "non-transactional")"},
                  {246, R"("Read-only", "non-transactional")"  },
                  {245, R"("Verify", "non-transactional")"     },
                  {244, R"("Exclusive", "non-transactional")"  },
                  {240, R"("Normal", "shared locking")"        },
                  {239, R"("Accelerated", "shared locking")"   },
                  {238, R"("Read-only", "shared locking")"     },
                  {237, R"("Verify, "shared locking")"         },
                  {236, R"("Exclusive, "shared locking")"      },
  });
}

TEST_F(ValueMaps, WordsThatAreTheSameInTextAndJson) {
  for (const bool json : {kText, kJson}) {
    expectWords(json, &MonitorProcessor::getRecordLockTypeString,
                {
                    {78, "None"          },
                    {83, "Single Lock"   },
                    {77, "Multiple Locks"},
    });
    expectWords(json, &MonitorProcessor::getTransStateString,
                {
                    {0,    "None"           },
                    {19,   "Exclusive Lock" },
                    {1019, "Concurrent Lock"},
    });
    expectWords(json, &MonitorProcessor::getWaitStateString,
                {
                    {0, "None"  },
                    {1, "Record"},
                    {2, "File"  },
    });
    expectWords(json, &MonitorProcessor::getSiteString,
                {
                    {0, "Remote"},
                    {1, "Local" },
    });
    expectWords(json, &MonitorProcessor::getProtocolRequestString,
                {
                    {1,  "SPX Requests Processed"    },
                    {4,  "TCP/IP Requests Processed" },
                    {12, "NETBIOS Requests Processed"},
    });
    expectWords(json, &MonitorProcessor::getProtocolSessionString,
                {
                    {1,  "SPX Remote Sessions:            "},
                    {4,  "TCP/IP Remote Sessions:         "},
                    {12, "NETBIOS Remote Sessions:       " },
    });
  }
}

TEST_F(ValueMaps, ProtocolLabelsAre32CharactersWideButOne) {
  const MonitorProcessor processor(&config_, kText);

  EXPECT_EQ(processor.getProtocolSessionString(1).length(), 32U);
  EXPECT_EQ(processor.getProtocolSessionString(4).length(), 32U);
  EXPECT_EQ(processor.getProtocolSessionString(12).length(), 31U);
}

TEST_F(ValueMaps, CreatingThemTwiceLeavesTheFlavourOfTheLastCall) {
  MonitorProcessor processor(&config_, kText);

  processor.createMaps(kJson);
  expectWords(processor, &MonitorProcessor::getBooleanStateString, kJsonStates);
  EXPECT_EQ(processor.getOpenModeString(0), "\"Normal\"");

  processor.createMaps(kText);
  expectWords(processor, &MonitorProcessor::getBooleanStateString, kTextStates);
  EXPECT_EQ(processor.getOpenModeString(0), "Normal");
}

TEST_F(ValueMaps, AMapIsLookedUpByTheExactKey) {
  const auto map = orv::makeReference<orv::collections::IntegerHashMap>(101, 0.75F);
  map->put(5, "five");

  EXPECT_EQ(MonitorProcessor::getMapValue(map, 5), "five");
  EXPECT_EQ(MonitorProcessor::getMapValue(map, 5 + 101), "n/a");
}

TEST_F(ValueMaps, EveryStatusButTwoIsDying) {
  for (int status = -2000; status <= 2000; ++status) {
    EXPECT_EQ(MonitorProcessor::getStatusString(status), status == 0   ? "Idle"
                                                         : status == 1 ? "Active"
                                                                       : "Dying")
        << status;
  }
}

TEST_F(ValueMaps, AMaximumOf0IsUnlimited) {
  EXPECT_EQ(MonitorProcessor::getMaxValue(0), "unlimited");
  EXPECT_EQ(MonitorProcessor::getMaxValue(1), "1");
  EXPECT_EQ(MonitorProcessor::getMaxValue(-1), "-1");
  EXPECT_EQ(MonitorProcessor::getMaxValue(-5), "-5");
  EXPECT_EQ(MonitorProcessor::getMaxValue(LONG_MAX), "9223372036854775807");
  EXPECT_EQ(MonitorProcessor::getMaxValue(LONG_MIN), "-9223372036854775808");
}

TEST_F(ValueMaps, AConnectionNumberAbove32000IsNotAvailable) {
  EXPECT_EQ(MonitorProcessor::getConnectionString(0), "0");
  EXPECT_EQ(MonitorProcessor::getConnectionString(32000), "32000");
  EXPECT_EQ(MonitorProcessor::getConnectionString(32001), "n/a");
  EXPECT_EQ(MonitorProcessor::getConnectionString(ULONG_MAX), "n/a");
}

}  // namespace
}  // namespace component_tests
