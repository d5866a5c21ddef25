// A session that is fit for monitoring.
#pragma once

#include <cstdint>

#include "tal/mariadb/connection.h"

namespace tal::mariadb {

// What cannot change while the server runs.
struct ServerFacts {
  bool innodbReadOnly = false;
  bool networking = true;  // whether the server listens to TCP at all
  std::int64_t ariaBlockSize = 0;
  std::int64_t myisamBlockSize = 0;
};

// A session that is read-only, limits its own statements, and belongs to an account that may see
// all that is reported. A process list without the PROCESS privilege is not refused but shortened
// to one's own row, which would look like an idle server: so it is checked here.
class Session {
 public:
  // Logs in. Throws Failure: kVersionNotSupported for a server that lacks what is asked,
  // kPrivilegeMissing, or why the login failed. It takes sql::kConnectLimit at most for the login.
  Session(const Location& location, const Credentials& credentials, const Encryption& encryption,
          const sql::Deadline& call);

  [[nodiscard]] Result query(const char* statement, const sql::Deadline& call) {
    return connection_.query(statement, call);
  }

  [[nodiscard]] std::int64_t id() const { return connection_.id(); }
  [[nodiscard]] std::int64_t version() const { return connection_.version(); }
  [[nodiscard]] const ServerFacts& facts() const { return facts_; }

 private:
  Connection connection_;
  ServerFacts facts_;
};

}  // namespace tal::mariadb
