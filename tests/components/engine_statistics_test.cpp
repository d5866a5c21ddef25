// VXAMonitorHelper: resource usage and communication statistics.
#include <cstring>
#include <numeric>
#include <vector>

#include "tests/components/engine_test.h"

namespace component_tests {
namespace {

class EngineStatistics : public EngineTest {
 protected:
  // Every 32-bit word of the structure gets its own number: 100, 101, ...
  template <class Structure>
  static void number(Structure& structure) {
    std::vector<std::uint32_t> words(sizeof structure / sizeof(std::uint32_t));
    std::iota(words.begin(), words.end(), 100U);
    std::memcpy(&structure, words.data(), sizeof structure);
  }

  template <class Structure>
  static void setAllBits(Structure& structure) {
    std::memset(&structure, 0xFF, sizeof structure);
  }
};

void expectCount(const ResourceCount& count, long current, long peak, long maximum) {
  EXPECT_EQ(count.current, current);
  EXPECT_EQ(count.peak, peak);
  EXPECT_EQ(count.maximum, maximum);
}

TEST_F(EngineStatistics, UsageIsTheEnginesWordsInTheirOrder) {
  number(engine().usage);

  const auto usage = helper_.getUsageStats();

  expectCount(usage->users, 100, 101, 102);
  expectCount(usage->files, 103, 104, 105);
  expectCount(usage->handles, 106, 107, 108);
  expectCount(usage->transactions, 109, 110, 111);
  expectCount(usage->clients, 112, 113, 114);
  expectCount(usage->workerThreads, 115, 116, 117);
  EXPECT_EQ(usage->locksCurrent, 118);
  EXPECT_EQ(usage->locksPeak, 119);
  expectCount(usage->dataMb, 120, 121, 122);
  expectCount(usage->sessions, 123, 124, 125);
  EXPECT_EQ(usage->upTimeSeconds, 126);
  EXPECT_EQ(engine().calls, (Calls{"TalGetZorbUsageEx2(7)"}));
}

TEST_F(EngineStatistics, MaximaOfUsageKeepTheirSignAndAllElseHasNone) {
  setAllBits(engine().usage);

  const auto usage = helper_.getUsageStats();

  for (const ResourceCount& count :
       {usage->users, usage->files, usage->handles, usage->transactions, usage->clients,
        usage->workerThreads, usage->dataMb, usage->sessions}) {
    expectCount(count, 4294967295, 4294967295, -1);
  }
  EXPECT_EQ(usage->locksCurrent, 4294967295);
  EXPECT_EQ(usage->locksPeak, 4294967295);
  EXPECT_EQ(usage->upTimeSeconds, 4294967295);
}

TEST_F(EngineStatistics, CommunicationIsTheEnginesWordsInTheirOrder) {
  number(engine().communication);
  engine().communication.protocolCount = 2;

  const auto statistics = helper_.getCommStats();

  EXPECT_EQ(statistics->requests, 100);
  EXPECT_EQ(statistics->counters[0], 101);
  EXPECT_EQ(statistics->counters[1], 102);
  EXPECT_EQ(statistics->counters[2], 103);
  EXPECT_EQ(statistics->remoteCurrent, 104);
  EXPECT_EQ(statistics->remotePeak, 105);
  EXPECT_EQ(statistics->remoteMaximum, 106);
  EXPECT_EQ(statistics->threadsCurrent, 107);
  EXPECT_EQ(statistics->threadsPeak, 108);
  EXPECT_EQ(statistics->threadsMaximum, 109);
  EXPECT_EQ(statistics->timeouts, 111);
  EXPECT_EQ(statistics->recoveries, 112);
  ASSERT_EQ(statistics->protocols->size(), 2U);
  EXPECT_EQ(statistics->protocols->get(0)->code, 113);
  EXPECT_EQ(statistics->protocols->get(0)->requests, 114);
  EXPECT_EQ(statistics->protocols->get(0)->currentSessions, 115);
  EXPECT_EQ(statistics->protocols->get(0)->peakSessions, 116);
  EXPECT_EQ(statistics->protocols->get(1)->code, 117);
  EXPECT_EQ(engine().calls, (Calls{"TalGetZorbCommStatEx(7)"}));
}

TEST_F(EngineStatistics, NothingOfCommunicationHasASign) {
  setAllBits(engine().communication);

  const auto statistics = helper_.getCommStats();

  EXPECT_EQ(statistics->requests, 4294967295);
  EXPECT_EQ(statistics->remotePeak, 4294967295);
  EXPECT_EQ(statistics->remoteMaximum, 4294967295) << "unlike the maxima of usage";
  EXPECT_EQ(statistics->threadsMaximum, 4294967295) << "unlike the maxima of usage";
  EXPECT_EQ(statistics->protocols->get(0)->code, 4294967295);
  EXPECT_EQ(statistics->protocols->get(0)->peakSessions, 4294967295);
}

TEST_F(EngineStatistics, NoMoreProtocolsAreReadThanTheStructureHolds) {
  struct Row {
    std::uint32_t announced;
    std::size_t read;
  };
  const Row rows[] = {
      {0,           0 },
      {1,           1 },
      {64,          64},
      {65,          64},
      {4294967295U, 64},
  };

  for (const Row& row : rows) {
    engine().communication.protocolCount = row.announced;
    EXPECT_EQ(helper_.getCommStats()->protocols->size(), row.read) << row.announced;
  }
}

}  // namespace
}  // namespace component_tests
