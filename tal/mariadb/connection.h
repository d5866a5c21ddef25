// One session on a server, and statements in it.
#pragma once

#include <cstdint>

#include "tal/mariadb/result.h"

namespace tal::mariadb {

// What cannot change while the server runs.
struct ServerFacts {
  bool performanceSchema = false;
  bool innodbReadOnly = false;
  bool networking = true;  // whether the server listens to TCP at all
  std::int64_t ariaBlockSize = 0;
  std::int64_t myisamBlockSize = 0;
};

// Runs statements on a session that is logged in. The session is read-only, limits its own
// statements, and belongs to an account that may see all that is reported. Not for use by several
// threads at once.
class Connection {
 public:
  // Makes the session fit for monitoring. Throws Failure: kVersionNotSupported for a server that is
  // too old or no MariaDB; kPrivilegeMissing, because without PROCESS the server shows one's own
  // row alone, and would look idle.
  explicit Connection(SessionHandle session);

  // Runs a statement. Read its rows before the next one. A server that is silent for
  // sql::kStatementLimit ends the session, but not while it encrypts: then only the limit of the
  // whole call holds. Throws Failure.
  Result run(const char* statement);

  // The session's number on the server, as its own process list and KILL have it.
  [[nodiscard]] std::int64_t id() const;
  // 101119 for version 10.11.19.
  [[nodiscard]] std::int64_t version() const;
  [[nodiscard]] const ServerFacts& facts() const { return facts_; }

 private:
  SessionHandle session_;
  ServerFacts facts_;
};

}  // namespace tal::mariadb
