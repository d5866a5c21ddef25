// What the tests on the private server share.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "tal/engine.h"
#include "tests/postgresql/private_server.h"
#include "tests/postgresql/session.h"

namespace testing_support {

// The one server of this test binary; runs from the first call to the end of all tests. It has a
// database "app" and these roles, all with the password PrivateServer::kPassword:
//   zelk     may see what is reported     guest    may not
//   limited  may hold no connection       sleeper  may not log in
//   clear    is asked for the password in clear text, otherwise as zelk
//   hashed   is asked for it by MD5, otherwise as zelk
PrivateServer& sharedServer();

// A session of the superuser.
Session superuser(const PrivateServer& server, const std::string& database,
                  const std::string& name);

// Makes the roles and the database of sharedServer() on another server.
void prepare(const PrivateServer& server);

// An engine logged in as zelk to the database "app".
std::unique_ptr<tal::Engine> openEngine(const PrivateServer& server);

// The status of the Failure that `action` throws, kSuccess when it throws none.
tal::Status statusOf(const std::function<void()>& action);

// A test that begins and ends with no session on the server but its own administrator's, with a new
// table t in "app" that has a primary key and an index, t_note.
class ServerTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Ends a session from the server's side, and returns when it is gone.
  void end(const Session& session);
  // A user's session in a database.
  Session session(const std::string& name, const std::string& database = "app");
  // Returns when a session waits for a lock.
  void waitUntilBlocked(const Session& session);

  PrivateServer& server_ = sharedServer();
  Session admin_ = superuser(server_, "app", "admin");
};

}  // namespace testing_support
