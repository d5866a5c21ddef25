// The parts of clients.sql and sql_connections.sql, joined to one record for each connection. Both
// statements have the same columns, and the first one says which part a row belongs to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tal/sql/row.h"

namespace tal::mariadb {

// The host of "host:port" as in the server's process list: a resolved name or an address, and the
// port after the last colon. A connection by socket has no port.
std::string_view hostOf(std::string_view hostAndPort);

// What the server knows about the client's end of a connection.
struct Peer {
  std::string hostAndPort;
  std::optional<std::string> ip;  // empty for a socket; not known without the performance schema

  // The address; the word "Socket" for a socket. If the address is not known, the host.
  [[nodiscard]] std::string address() const;

  // A code of tal::site: every TCP connection is remote, even from the same machine, and counts as
  // a remote session in the communication statistics.
  [[nodiscard]] std::int32_t site() const;
};

// Measurements of the thread that serves a connection; there are none without the performance
// schema.
struct ThreadFacts {
  std::optional<std::string> ip;
  std::int64_t recordsDeleted = 0;
  std::int64_t recordsUpdated = 0;
  std::int64_t recordsInserted = 0;
  std::int64_t recordsRead = 0;
  std::int64_t fileOperations = 0;
  // The time that it has worked and waited before its present command; absent if it is not
  // measured.
  std::optional<double> pastMicroseconds;
};

// What a client says about itself when it connects.
struct ClientWords {
  std::string program;
  std::string library;
  std::int64_t processId = 0;  // on the client's machine
};

struct ConnectionFacts {
  std::int64_t connection = 0;
  std::string user;
  Peer peer;
  std::string database;
  std::string command;
  std::int64_t periodMs = 0;  // of the present command
  ClientWords words;
  ThreadFacts thread;
  std::optional<std::int64_t> rowsLocked;  // of its transaction, if it is in one
};

// Reads all rows; the connections are sorted by their numbers. Facts about connections and threads
// that no row lists are left out.
std::vector<ConnectionFacts> joinParts(sql::RowSource& rows);

}  // namespace tal::mariadb
