#include "companions/shared/engine.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "companions/shared/settings.h"
#include "orv/Exception.h"
#include "tests/support/temporary_folder.h"

namespace companions {
namespace {

using testing_support::TemporaryFolder;
using testing_support::writeFile;

const std::string kShop = R"(
file = [{ name = "orders", size_kb = 7, handle = [{ client = "anna", client_index = 3 }] },
        { name = "idle" },
        { name = "parts", handle = [{ client = "ben", count = 3 }] }]
client = [{ id = "anna", task_number = 4, handle = [{ file = "orders", count = 2 }] },
          { id = "ben" }]
sql_connection = [{ user_name = "carl", status = "active" }, { user_name = "dora" }]
[usage]
locks = { current = 1, peak = 2, maximum = 3 }
[communication]
remote_sessions = { maximum = -1 }
protocol = [{ count = 65 }]
)";

class CompanionEngine : public testing::Test {
 protected:
  [[nodiscard]] Login simulated(const std::string& scenario) const {
    writeFile(folder_ / "shop.toml", scenario);
    return {"sim:" + (folder_ / "shop.toml").string(), "", ""};
  }

  // The shop, with a fault.
  [[nodiscard]] Login failing(const std::string& call, int status, int at = 1) const {
    return simulated(kShop + "[[fault]]\ncall = '" + call + "'\nat = " + std::to_string(at) +
                     "\nstatus = " + std::to_string(status) + "\n");
  }

  TemporaryFolder folder_;
  EngineLibrary library_;
};

// Names with the number of handles of each.
template <typename Entries>
std::string outline(const Entries& entries) {
  std::string text;
  for (const auto& entry : entries) {
    if constexpr (requires { entry.name; }) text += entry.name;
    if constexpr (requires { entry.id; }) text += entry.id;
    text += ":" + std::to_string(entry.handles.size()) + " ";
  }
  return text;
}

TEST_F(CompanionEngine, AnswersWithPlainValues) {
  const EngineConnection engine(simulated(kShop));

  const std::vector<tal::OpenFile> files = engine.files();
  const std::vector<tal::Client> clients = engine.clients();
  const tal::Communication communication = engine.communication();

  EXPECT_EQ(outline(files), "orders:1 idle:0 parts:3 ");
  EXPECT_EQ(files[0].sizeKb, 7U);
  EXPECT_EQ(files[0].handles[0].clientName, "anna");
  EXPECT_EQ(files[0].handles[0].clientIndex, 3U);
  EXPECT_EQ(outline(clients), "anna:2 ben:0 ");
  EXPECT_EQ(clients[0].taskNumber, 4);
  EXPECT_EQ(clients[0].handles[1].fileName, "orders");
  EXPECT_EQ(engine.sqlConnections().at(0).userName, "carl");
  EXPECT_EQ(engine.usage().locks.peak, 2U);
  EXPECT_EQ(communication.remoteSessions.maximum, -1);
  EXPECT_EQ(communication.protocols.size(), 64U);
}

TEST_F(CompanionEngine, LeavesOutWhatVanishes) {
  struct Case {
    const char* call;
    int status;
    int at;
    const char* files;
    const char* clients;
  };
  const char* const allFiles = "orders:1 idle:0 parts:3 ";
  const char* const allClients = "anna:2 ben:0 ";
  const std::vector<Case> cases = {
      {"TalGetOpenFileName",         7008, 2, "orders:1 ",                allClients     },
      {"TalGetFileInfo2",            7015, 2, "orders:1 parts:3 ",        allClients     },
      {"TalGetFileHandlesData",      7015, 3, "orders:1 idle:0 parts:0 ", allClients     },
      {"TalGetFileHandleInfo",       7015, 3, "orders:1 idle:0 parts:0 ", allClients     },
      {"TalGetFileHandleInfo",       7008, 3, "orders:1 idle:0 parts:1 ", allClients     },
      {"TalGetZorbClientId",         7008, 2, allFiles,                   "anna:2 "      },
      {"TalGetZorbClientInfo",       7010, 1, allFiles,                   "ben:0 "       },
      {"TalGetZorbClientHandleInfo", 7010, 2, allFiles,                   "anna:0 ben:0 "},
      {"TalGetZorbClientHandleInfo", 7008, 2, allFiles,                   "anna:1 ben:0 "},
  };
  for (const Case& each : cases) {
    const EngineConnection engine(failing(each.call, each.status, each.at));

    EXPECT_EQ(outline(engine.files()), each.files) << each.call << " " << each.status;
    EXPECT_EQ(outline(engine.clients()), each.clients) << each.call << " " << each.status;
  }
}

template <typename Ask>
void expectFailure(const Ask& ask, const std::string& call, int status) {
  try {
    ask();
    ADD_FAILURE() << call;
  } catch (const CallFailure& failure) {
    EXPECT_EQ(failure.call(), call);
    EXPECT_EQ(failure.status(), status);
  }
}

TEST_F(CompanionEngine, NamesTheCallThatFails) {
  const auto all = [this](const std::string& call, int status) {
    const EngineConnection engine(failing(call, status));
    engine.information();
    engine.version();
    engine.files();
    engine.clients();
    engine.sqlConnections();
    engine.usage();
    engine.communication();
  };
  for (const char* const call :
       {"TalConnectServer", "TalGetEngineInformation", "TalGetZorbVersion", "TalGetOpenFilesData",
        "TalGetOpenFileName", "TalGetFileInfo2", "TalGetFileHandlesData", "TalGetFileHandleInfo",
        "TalGetZorbClientsData", "TalGetZorbClientId", "TalGetZorbClientInfo",
        "TalGetZorbClientHandlesData", "TalGetZorbClientHandleInfo", "TalGetSQLConnectionsData",
        "TalGetSQLConnectionInfo2", "TalGetZorbUsageEx2", "TalGetZorbCommStatEx"}) {
    expectFailure([&] { all(call, 7106); }, call, 7106);
  }
  expectFailure([&] { all("TalGetZorbClientHandlesData", 7010); }, "TalGetZorbClientHandlesData",
                7010);
}

TEST_F(CompanionEngine, ReleasesASnapshotThatFails) {
  const EngineConnection engine(failing("TalGetFileInfo2", 7106));

  expectFailure([&] { engine.files(); }, "TalGetFileInfo2", 7106);

  EXPECT_EQ(outline(engine.files()), "orders:1 idle:0 parts:3 ");
}

TEST(CompanionSettings, AreThoseOfTheConfiguration) {
  const TemporaryFolder folder;
  const std::string path = (folder / "zelk.cfg").string();
  const std::string rest =
      "USER=u\nPASS=p\nLIMI=\nOUTP=CONS\nNAME=\nFILE=NO\nSESS=YES\nCONN=NO\nRESO=\nCOMM=NO\nHAND=\n";

  writeFile(path, "SERV=sim:demo\nREFR=7\n" + rest);
  const Settings settings = readSettings(path);

  EXPECT_EQ(settings.login.server, "sim:demo");
  EXPECT_EQ(settings.login.user, "u");
  EXPECT_EQ(settings.login.password, "p");
  EXPECT_EQ(settings.refreshRate, 7);
  EXPECT_FALSE(settings.sections.files);
  EXPECT_TRUE(settings.sections.clients);
  EXPECT_FALSE(settings.sections.sqlConnections);
  EXPECT_TRUE(settings.sections.usage);
  EXPECT_FALSE(settings.sections.communication);

  writeFile(path, "SERV=" + std::string(256, 's') + "\nREFR=\n" + rest);
  EXPECT_THROW(static_cast<void>(readSettings(path)), orv::Exception);
  EXPECT_THROW(static_cast<void>(readSettings((folder / "none").string())), orv::Exception);
}

}  // namespace
}  // namespace companions
