// What the lists show of one session.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tal/engine.h"
#include "tests/postgresql/server_test.h"

namespace testing_support {

// A handle as open mode, record lock type, wait state and transaction state: "0/77/0/1019".
std::string describe(const tal::FileHandle& handle);
std::string describe(const tal::ClientHandle& handle);

// The wait state of such a text, -1 when there is none.
int waitIn(const std::string& handle);

class SituationTest : public ServerTest {
 protected:
  // The handles of a process in the list of files, "t 0/77/0/1019, t_pkey 0/78/0/1019". Relations
  // of the schema "public" in "app" are named without both.
  std::string handlesInFiles(std::uint32_t process);
  // The same by the list of clients, then transaction state, number of locks and whether the
  // connection is active: "t 0/77/0/1019; 1019, 2 locks; idle". Fails the test when the two lists
  // differ in the handles.
  std::string observe(const Session& session);
  // The name that a query gives; "{holder}" in it is the process of a session.
  std::string nameOf(std::string query, const Session& holder);
  // The handle of a session on an object. Fails the test when the two lists differ in it; empty
  // when none has it.
  std::string handleOn(const std::string& name, const Session& session);
  // An entry of the list of files, which must be there.
  tal::OpenFile file(const std::string& name);

  std::unique_ptr<tal::Engine> engine_ = openEngine(server_);
};

}  // namespace testing_support
