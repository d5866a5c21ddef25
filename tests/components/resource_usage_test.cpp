#include "tests/components/report_test.h"

namespace component_tests {
namespace {

constexpr Section kSection = &MonitorProcessor::processResourceStats;

class ResourceUsage : public ReportTest {
 protected:
  // Every counter has its own value; a maximum of files of 0, of handles of -1.
  ResourceUsage() {
    TalUsage& usage = engine().usage;
    usage.users = {1, 2, 3};
    usage.files = {4, 5, 0};
    usage.handles = {7, 8, -1};
    usage.transactions = {10, 11, 12};
    usage.clients = {13, 14, 15};
    usage.workerThreads = {16, 17, 18};
    usage.locksCurrent = 19;
    usage.locksPeak = 20;
    usage.dataMb = {21, 22, 23};
    usage.sessions = {24, 25, 26};
    usage.upTimeSeconds = 172799;
  }

  // The second line of the text form, or what differs of it.
  std::string upTimeAfter(std::uint32_t seconds) {
    engine().usage.upTimeSeconds = seconds;
    const std::string text = textOf(kSection);
    const std::string before = "Engine Uptime: ";
    const std::size_t at = text.find(before) + before.size();
    return text.substr(at, text.find('\n', at) - at);
  }
};

const std::string kTextHead = lines({
    R"(==============)",
    R"(RESOURCE USAGE)",
    R"(==============)",
    R"(Engine Uptime: 1 day  23:59:59 (hh:mm:ss))",
    R"()",
    R"(\t                       Current\t\tPeak\t\tMaximum)",
    R"(\tFiles:                 4\t\t5\t\tunlimited)",
    R"(\tHandles:               7\t\t8\t\t-1)",
    R"(\tClients:               13\t\t14\t\t15)",
    R"(\tWorker Threads:        16\t\t17\t\t18)",
});

// Transactions and locks are unlimited, although the engine has a maximum of transactions.
const std::string kTextTail = lines({
    R"(\tTransactions:          10\t\t11\t\tunlimited)",
    R"(\tLocks:                 19\t\t20\t\tunlimited)",
});

// The handles' peak is their current value again.
const std::string kJsonHead = lines({
    R"(\t"resource_usage":)",
    R"(\t{)",
    R"_(\t\t"engine_uptime": "1 day  23:59:59 (hh:mm:ss)",)_",
    R"(\t\t"files": {)",
    R"(\t\t\t"current": 4,)",
    R"(\t\t\t"peak": 5,)",
    R"(\t\t\t"maximum": "unlimited")",
    R"(\t\t},)",
    R"(\t\t"handles": {)",
    R"(\t\t\t"current": 7,)",
    R"(\t\t\t"peak": 7,)",
    R"(\t\t\t"maximum": "-1")",
    R"(\t\t},)",
    R"(\t\t"client": {)",
    R"(\t\t\t"current": 13,)",
    R"(\t\t\t"peak": 14,)",
    R"(\t\t\t"maximum": "15")",
    R"(\t\t}, )",
    R"(\t\t"worker_threads": {)",
    R"(\t\t\t"current": 16,)",
    R"(\t\t\t"peak": 17,)",
    R"(\t\t\t"maximum": "18")",
    R"(\t\t}, )",
});

const std::string kJsonTail = lines({
    R"(\t\t"transactions": {)",
    R"(\t\t\t"current": 10,)",
    R"(\t\t\t"peak": 11,)",
    R"(\t\t\t"maximum": "unlimited")",
    R"(\t\t},)",
    R"(\t\t"locks": {)",
    R"(\t\t\t"current": 19,)",
    R"(\t\t\t"peak": 20,)",
    R"(\t\t\t"maximum": "unlimited")",
    R"(\t\t})",
    R"(\t},)",
});

TEST_F(ResourceUsage, MostEngineTypesLimitUsersInText) {
  for (const std::int32_t engineType : {0, 5, 8, -6, 256 + 6}) {
    engine().engineType = engineType;
    EXPECT_PRED_FORMAT2(sameText,
                        kTextHead +
                            lines({
                                R"(\tUser Count:            1\t\t2\t\t3)",
                                R"(\tSession Count:         24\t\t25\t\tn/a)",
                                R"(\tData in Use MB:        21\t\t22\t\tn/a)",
                            }) +
                            kTextTail,
                        textOf(kSection));
  }
}

TEST_F(ResourceUsage, EngineTypes6And7LimitSessionsAndDataInText) {
  for (const std::int32_t engineType : {6, 7}) {
    engine().engineType = engineType;
    EXPECT_PRED_FORMAT2(sameText,
                        kTextHead +
                            lines({
                                R"(\tUser Count:            n/a\t\tn/a\t\tn/a)",
                                R"(\tSession Count:         24\t\t25\t\t26)",
                                R"(\tData in Use MB:        21\t\t22\t\t23)",
                            }) +
                            kTextTail,
                        textOf(kSection));
  }
}

TEST_F(ResourceUsage, MostEngineTypesLimitUsersInJson) {
  EXPECT_PRED_FORMAT2(sameText,
                      kJsonHead +
                          lines({
                              R"(\t\t"user_count": {)",
                              R"(\t\t\t"current": 1,)",
                              R"(\t\t\t"peak": 2,)",
                              R"(\t\t\t"maximum": "3")",
                              R"(\t\t},)",
                              R"(\t\t"session_count": {)",
                              R"(\t\t\t"current": 24,)",
                              R"(\t\t\t"peak": 25,)",
                              R"(\t\t\t"maximum": "n/a")",
                              R"(\t\t}, )",
                              R"(\t\t"data_in_use_MB": {)",
                              R"(\t\t\t"current": 21,)",
                              R"(\t\t\t"peak": 22,)",
                              R"(\t\t\t"maximum": "n/a")",
                              R"(\t\t},)",
                          }) +
                          kJsonTail,
                      jsonOf(kSection));
}

TEST_F(ResourceUsage, EngineTypes6And7LimitSessionsAndDataInJson) {
  for (const std::int32_t engineType : {6, 7}) {
    engine().engineType = engineType;
    EXPECT_PRED_FORMAT2(sameText,
                        kJsonHead +
                            lines({
                                R"(\t\t"user_count": {)",
                                R"(\t\t\t"current":1,)",
                                R"(\t\t\t"peak":2,)",
                                R"(\t\t\t"maximum": "n/a")",
                                R"(\t\t},)",
                                R"(\t\t"session_count": {)",
                                R"(\t\t\t"current": 24,)",
                                R"(\t\t\t"peak":25,)",
                                R"(\t\t\t"maximum": "26")",
                                R"(\t\t}, )",
                                R"(\t\t"data_in_use_MB": {)",
                                R"(\t\t\t"current": 21,)",
                                R"(\t\t\t"peak":22,)",
                                R"(\t\t\t"maximum": "23")",
                                R"(\t\t},)",
                            }) +
                            kJsonTail,
                        jsonOf(kSection));
  }
}

// A maximum of 0 is a number in these rows, and means "unlimited" in one of them in JSON alone.
TEST_F(ResourceUsage, MaximaOf0ThatAreNotUnlimited) {
  engine().usage.users.maximum = 0;
  engine().usage.sessions.maximum = 0;
  engine().usage.dataMb.maximum = 0;
  EXPECT_NE(textOf(kSection).find("User Count:            1\t\t2\t\t0\n"), std::string::npos);
  EXPECT_NE(jsonOf(kSection).find("\"peak\": 2,\n\t\t\t\"maximum\": \"0\"\n"), std::string::npos);

  engine().engineType = 6;
  EXPECT_NE(textOf(kSection).find("Session Count:         24\t\t25\t\t0\n"), std::string::npos);
  EXPECT_NE(textOf(kSection).find("Data in Use MB:        21\t\t22\t\t0\n"), std::string::npos);
  EXPECT_NE(jsonOf(kSection).find("\"peak\":25,\n\t\t\t\"maximum\": \"unlimited\"\n"),
            std::string::npos);
  EXPECT_NE(jsonOf(kSection).find("\"peak\":22,\n\t\t\t\"maximum\": \"0\"\n"), std::string::npos);
}

TEST_F(ResourceUsage, UptimeInDaysAndHours) {
  EXPECT_EQ(upTimeAfter(0), "0 day  00:00:00 (hh:mm:ss)");
  EXPECT_EQ(upTimeAfter(172799), "1 day  23:59:59 (hh:mm:ss)");
  EXPECT_EQ(upTimeAfter(172800), "2 days  00:00:00 (hh:mm:ss)");
  EXPECT_EQ(upTimeAfter(4294967295U), "49710 days  06:28:15 (hh:mm:ss)");
}

TEST_F(ResourceUsage, AFailingEngineLeavesNoLine) {
  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetZorbUsageEx2", false), "");
  EXPECT_EQ(writtenBeforeFailure(kSection, "TalGetZorbUsageEx2", true), "");
}

}  // namespace
}  // namespace component_tests
