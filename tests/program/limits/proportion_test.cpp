// Ten times the entries cost ten times the work, counted in engine calls and allocations: no time
// that a busy machine could change.
#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "engine/tal.h"
#include "tests/program/limits/simulated_run.h"

namespace limits {
namespace {

constexpr int kFew = 1000;
constexpr int kMany = 10 * kFew;

// Text in which "#" stands for a number of entries, "~" for a tenth of it.
std::string withNumber(std::string_view scenario, int entries) {
  std::string text;
  for (const char character : scenario) {
    if (character == '#') {
      text += std::to_string(entries);
    } else if (character == '~') {
      text += std::to_string(entries / 10);
    } else {
      text += character;
    }
  }
  return text;
}

// All that can be asked about the entry with this index; its first handle included.
void lookUpFile(std::int32_t handle, std::uint32_t index) {
  std::uint32_t size = TAL_NAME_SIZE;
  char name[TAL_NAME_SIZE] = {};
  TalFileInfo info{};
  std::uint32_t handles = 0;
  TalFileHandleInfo first{};
  ASSERT_EQ(TalGetOpenFileName(handle, index, &size, name), 0);
  ASSERT_EQ(TalGetFileInfo2(handle, name, &info), 0);
  ASSERT_EQ(TalGetFileHandlesData(handle, name, &handles), 0);
  ASSERT_EQ(TalGetFileHandleInfo(handle, name, 0, &first), 0);
}

void lookUpClient(std::int32_t handle, std::uint32_t index) {
  tagTALCLIENTID id{};
  TalClientInfo info{};
  std::uint32_t handles = 0;
  TalClientHandleInfo first{};
  ASSERT_EQ(TalGetZorbClientId(handle, index, &id), 0);
  ASSERT_EQ(TalGetZorbClientInfo(handle, &id, &info), 0);
  ASSERT_EQ(TalGetZorbClientHandlesData(handle, &id, &handles), 0);
  ASSERT_EQ(TalGetZorbClientHandleInfo(handle, &id, 0, &first), 0);
}

void lookUpConnection(std::int32_t handle, std::uint32_t index) {
  TalSqlConnectionInfo info{};
  ASSERT_EQ(TalGetSQLConnectionInfo2(handle, index, &info), 0);
}

struct Shape {
  const char* name;
  std::string_view scenario;
};

void PrintTo(const Shape& shape, std::ostream* out) { *out << shape.name; }

constexpr Shape kShapes[] = {
    {"FilesWithOneHandle",    "[[file]]\nname = 'f{n}'\ncount = #\nhandle = [{ client = 'a' }]\n"},
    {"HandlesOfTenFiles",
     "[[file]]\nname = 'f{n}'\ncount = 10\nhandle = [{ client = 'a', count = ~ }]\n"             },
    {"FilesOfOneName",        "[[file]]\nname = 'f'\ncount = #\nhandle = [{ client = 'a' }]\n"   },
    {"SessionsWithOneHandle", "[[client]]\nid = 'c{n}'\ncount = #\nhandle = [{ file = 'f' }]\n"  },
    {"HandlesOfTenSessions",
     "[[client]]\nid = 'c{n}'\ncount = 10\nhandle = [{ file = 'f', count = ~ }]\n"               },
    {"SessionsOfOneName",     "[[client]]\nid = 'c'\ncount = #\nhandle = [{ file = 'f' }]\n"     },
    {"Connections",           "[[sql_connection]]\nclient_host = 'h{n}'\ncount = #\n"            },
};

class Proportion : public ::testing::TestWithParam<Shape> {
 protected:
  static Cost costOfReport(int entries, bool json) {
    SimulatedRun run(withNumber(GetParam().scenario, entries), json);
    return costOf([&] { run.processor().processMonitorRequests(json); });
  }

  static void expectTenfold(const Cost& few, const Cost& many) {
    EXPECT_GE(few.engineCalls, kFew);
    EXPECT_GE(few.allocations, kFew);
    EXPECT_LE(many.engineCalls, 11 * few.engineCalls);
    EXPECT_LE(many.allocations, 11 * few.allocations);
  }
};

TEST_P(Proportion, OfReportsInText) {
  expectTenfold(costOfReport(kFew, false), costOfReport(kMany, false));
}

TEST_P(Proportion, OfReportsInJson) {
  expectTenfold(costOfReport(kFew, true), costOfReport(kMany, true));
}

TEST_P(Proportion, OfCollecting) {
  const auto costOfCollecting = [](int entries) {
    const SimulatedRun run(withNumber(GetParam().scenario, entries), false);
    VXAMonitorHelper helper;
    helper.connect(run.server(), "user", "password");
    const Cost cost = costOf([&helper] {
      helper.getActiveFileInfoList(true);
      helper.getActiveSessionInfoList(true);
      helper.getConnInfoList();
    });
    helper.disconnect();
    return cost;
  };

  expectTenfold(costOfCollecting(kFew), costOfCollecting(kMany));
}

// A look-up that allocated would copy what it found.
TEST(LookUps, AllocateNothing) {
  const SimulatedRun run(
      withNumber("[[file]]\nname = 'a name that needs memory {n}'\ncount = #\n"
                 "handle = [{ client = 'a client that needs memory' }]\n"
                 "[[client]]\nid = 'c{n}'\ncount = #\nsession_name = 'a name that needs memory'\n"
                 "handle = [{ file = 'a file that needs memory' }]\n"
                 "[[sql_connection]]\nclient_host = 'a host that needs memory'\ncount = #\n",
                 kMany),
      false);
  TalStart(nullptr);
  std::int32_t handle = 0;
  ASSERT_EQ(TalConnectServer(run.server().toBytes().c_str(), "", "", &handle), 0);
  std::uint32_t files = 0;
  std::uint32_t clients = 0;
  std::uint32_t connections = 0;
  ASSERT_EQ(TalGetOpenFilesData(handle, &files), 0);
  ASSERT_EQ(TalGetZorbClientsData(handle, &clients), 0);
  ASSERT_EQ(TalGetSQLConnectionsData(handle, &connections), 0);

  const Cost cost = costOf([&] {
    for (std::uint32_t i = 0; i < files; ++i) lookUpFile(handle, i);
    for (std::uint32_t i = 0; i < clients; ++i) lookUpClient(handle, i);
    for (std::uint32_t i = 0; i < connections; ++i) lookUpConnection(handle, i);
  });

  EXPECT_EQ(cost.engineCalls, 9U * kMany);
  EXPECT_EQ(cost.allocations, 0U);
  TalDisconnect(handle);
  TalStop(nullptr);
}

INSTANTIATE_TEST_SUITE_P(All, Proportion, ::testing::ValuesIn(kShapes),
                         [](const auto& shape) { return shape.param.name; });

}  // namespace
}  // namespace limits
