#include "tests/components/report_test.h"

namespace component_tests {
namespace {

constexpr Section kSection = &MonitorProcessor::processCommunicationStats;

class CommunicationStatistics : public ReportTest {
 protected:
  // Every counter has its own value; the threads are not limited.
  CommunicationStatistics() {
    TalCommStat& statistics = engine().communication;
    statistics.requests = 1200;
    statistics.remoteCurrent = 3;
    statistics.remotePeak = 5;
    statistics.remoteMaximum = 4294967295U;
    statistics.threadsCurrent = 2;
    statistics.threadsPeak = 4;
    statistics.threadsMaximum = 0;
    statistics.timeouts = 6;
    statistics.recoveries = 7;
  }

  static void addProtocol(const TalProtocol& protocol) {
    TalCommStat& statistics = engine().communication;
    statistics.protocols[statistics.protocolCount++] = protocol;
  }
};

// What stands between the two lists of protocols.
const std::string kTextMiddle = lines({
    R"(\tTotal Connection Timeouts:\t6)",
    R"(\tTotal Connection Recoveries:\t7)",
    R"(\t                                Current\t\tPeak\t\tMaximum)",
    R"(\tCommunication Threads:          2\t\t4\t\tunlimited)",
    R"(\tTotal Remote Sessions:          3\t\t5\t\t4294967295)",
});

const std::string kJsonMiddle = lines({
    R"(\t\t"total_connection_timeouts": 6,)",
    R"(\t\t"total_connection_recoveries": 7,)",
    R"(\t\t"communication_threads": {)",
    R"(\t\t\t"current": 2,)",
    R"(\t\t\t"peak": 4,)",
    R"(\t\t\t"maximum": "unlimited")",
    R"(\t\t},)",
    R"(\t\t"total_remote_sessions": {)",
    R"(\t\t\t"current": 3,)",
    R"(\t\t\t"peak": 5,)",
    R"(\t\t\t"maximum": "4294967295")",
    R"(\t\t},)",
});

const std::string kTextWithoutProtocols = lines({
                                              R"(========================)",
                                              R"(COMMUNICATION STATISTICS)",
                                              R"(========================)",
                                              R"(\tTotal Requests Processed:\t1200)",
                                          }) +
                                          kTextMiddle;

const std::string kJsonWithoutProtocols = lines({
                                              R"(\t"communication_statistics":)",
                                              R"(\t{)",
                                              R"(\t\t"total_requests_processed": 1200,)",
                                          }) +
                                          kJsonMiddle + "\t}\n";

TEST_F(CommunicationStatistics, AnEmptyProtocolListLeavesTheTotals) {
  EXPECT_PRED_FORMAT2(sameText, kTextWithoutProtocols, textOf(kSection));
  EXPECT_PRED_FORMAT2(sameText, kJsonWithoutProtocols, jsonOf(kSection));
}

TEST_F(CommunicationStatistics, AProtocolWithoutALabelIsPrintedNowhere) {
  for (const std::uint32_t code : {0U, 2U, 13U, 65536U + 4U, 4294967295U}) {
    addProtocol({code, 999, 999, 999});
  }

  EXPECT_PRED_FORMAT2(sameText, kTextWithoutProtocols, textOf(kSection));
  EXPECT_PRED_FORMAT2(sameText, kJsonWithoutProtocols, jsonOf(kSection));
}

TEST_F(CommunicationStatistics, ProtocolsInTextKeepTheEnginesOrder) {
  addProtocol({12, 10, 11, 12});
  addProtocol({2, 20, 21, 22});
  addProtocol({4, 30, 31, 32});
  addProtocol({1, 40, 41, 4294967295U});

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(========================)",
                          R"(COMMUNICATION STATISTICS)",
                          R"(========================)",
                          R"(\tTotal Requests Processed:\t1200)",
                          R"(\tNETBIOS Requests Processed:\t10)",
                          R"(\tTCP/IP Requests Processed:\t30)",
                          R"(\tSPX Requests Processed:\t40)",
                      }) + kTextMiddle +
                          lines({
                              R"(\tNETBIOS Remote Sessions:       11\t\t12)",
                              R"(\tTCP/IP Remote Sessions:         31\t\t32)",
                              R"(\tSPX Remote Sessions:            41\t\t4294967295)",
                          }),
                      textOf(kSection));
}

TEST_F(CommunicationStatistics, ProtocolsInJsonFollowEachOtherWithoutACommaBetween) {
  addProtocol({12, 10, 11, 12});
  addProtocol({2, 20, 21, 22});
  addProtocol({4, 30, 31, 32});
  addProtocol({1, 40, 41, 4294967295U});

  EXPECT_PRED_FORMAT2(sameText,
                      lines({
                          R"(\t"communication_statistics":)",
                          R"(\t{)",
                          R"(\t\t"total_requests_processed": 1200,)",
                          R"(\t\t"netbios_requests_processed": 10,)",
                          R"(\t\t"tcp_requests_processed": 30,)",
                          R"(\t\t"spx_requests_processed": 40,)",
                      }) + kJsonMiddle +
                          lines({
                              R"(\t\t"netbios_remote_sessions": {)",
                              R"(\t\t\t"current": 11,)",
                              R"(\t\t\t"peak": 12)",
                              R"(\t\t})",
                              R"(\t\t"tcp/ip_remote_sessions": {)",
                              R"(\t\t\t"current": 31,)",
                              R"(\t\t\t"peak": 32)",
                              R"(\t\t})",
                              R"(\t\t"spx_remote_sessions": {)",
                              R"(\t\t\t"current": 41,)",
                              R"(\t\t\t"peak": 4294967295)",
                              R"(\t\t})",
                              R"(\t})",
                          }),
                      jsonOf(kSection));
}

TEST_F(CommunicationStatistics, AFailingEngineLeavesNoLine) {
  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetZorbCommStatEx", false), "");
  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetZorbCommStatEx", true), "");
}

}  // namespace
}  // namespace component_tests
