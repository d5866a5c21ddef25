// What the tests on private servers share.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tal/engine.h"
#include "tal/status.h"
#include "tests/mariadb/private_server.h"
#include "tests/mariadb/session.h"

namespace mariadb_testing {

// The server renews its picture of transactions only when nobody has read it for this long.
inline constexpr std::chrono::milliseconds kPictureAge{110};

// The two servers of a test binary; each runs from the first call to the end of all tests. Both
// have these accounts for 127.0.0.1 with the password "secret":
//   app      a user who may do everything     zelk    may see what is reported
//   noproc   lacks the PROCESS privilege      nops    lacks the performance schema
// The fully instrumented one has the performance schema with metadata locks, and no encryption; the
// plain one is as servers are by default, but offers encryption.
PrivateServer& instrumentedServer();
PrivateServer& plainServer();

// Makes the accounts above.
void makeAccounts(const PrivateServer& server);

// "127.0.0.1:port", as it follows "mariadb://".
std::string locationOf(const PrivateServer& server);

std::unique_ptr<tal::Engine> openEngine(const PrivateServer& server,
                                        const std::string& user = "zelk");

// The status of the Failure that `action` throws, kSuccess when it throws none.
tal::Status statusOf(const std::function<void()>& action);
tal::Status statusOfLogin(const std::string& location, const std::string& user,
                          const std::string& password = "secret");

// A test that begins and ends with no session but its own administrator's and an empty database
// "app".
class ServerTest : public testing::Test {
 protected:
  explicit ServerTest(PrivateServer& server);
  void SetUp() override;
  void TearDown() override { clear(); }

  // A session of "app" in the database "app".
  Session session();
  // Names a session in the texts of the handles below.
  Session named(const std::string& name);

  // Returns when a session's state in the process list is this one.
  void waitForState(const Session& session, const std::string& state);

  // Handles on the file of the database "app", for instance "t.ibd", or on something without a
  // file, one line for each in the order of the list: "name (open mode, lock type, wait,
  // transaction)".
  std::string fileHandles(const std::string& file);
  std::string clientHandles(const std::string& file);

  // Expects both lists to come to hold these handles.
  void expectHandles(const std::string& file, const std::string& handles);

  // Asks until a list answers what is expected, slowly enough for the server's picture to be new.
  void expectInTheEnd(const std::function<std::string()>& answer, const std::string& expected);

  PrivateServer& server_;
  Session admin_;
  std::unique_ptr<tal::Engine> engine_;  // of "zelk"

 private:
  void clear();
  std::string nameOf(std::uint32_t connection) const;

  std::map<std::uint32_t, std::string> names_;
};

class InstrumentedServerTest : public ServerTest {
 protected:
  InstrumentedServerTest() : ServerTest(instrumentedServer()) {}
};

class PlainServerTest : public ServerTest {
 protected:
  PlainServerTest() : ServerTest(plainServer()) {}
};

}  // namespace mariadb_testing
