// One session on a server, by its client library.
#pragma once

#include <mysql.h>

#include <cstdint>
#include <memory>
#include <string>

#include "tal/credentials.h"
#include "tal/mariadb/encryption.h"
#include "tal/mariadb/location.h"
#include "tal/mariadb/result.h"
#include "tal/sql/deadline.h"

namespace tal::mariadb {

struct CloseConnection {
  void operator()(MYSQL* mysql) const noexcept;
};

// Logged in from construction to destruction. No operation waits past its deadline, but for one
// look-up: a host whose certificate is verified is looked up again by the library, as long as the
// system's resolver takes. After Failure(kNoAnswer) or Failure(kConnectionLost) it is good for
// nothing but to be destroyed; it never opens itself again.
class Connection {
 public:
  // Logs in by `credentials` as they are. Throws Failure; kNoAnswer when `deadline` passes first.
  Connection(const Location& location, const Credentials& credentials, const Encryption& encryption,
             const sql::Deadline& deadline);

  // The result of one statement, with all its rows. Throws Failure; kNoAnswer after
  // sql::kStatementLimit or past `call`, whichever comes first.
  Result query(const char* statement, const sql::Deadline& call);

  // The session's number on the server, as its own process list and KILL have it.
  [[nodiscard]] std::int64_t id() const;
  // 101119 for version 10.11.19.
  [[nodiscard]] std::int64_t version() const;
  // Whether the server is a MariaDB: others speak the same protocol.
  [[nodiscard]] bool isMariaDb() const;

 private:
  std::unique_ptr<MYSQL, CloseConnection> mysql_;
};

}  // namespace tal::mariadb
