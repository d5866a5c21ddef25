// Record-level clients: every connection, with its handles.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tal/engine.h"
#include "tal/mariadb/peer.h"
#include "tal/mariadb/table_handles.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// One connection as clients.sql tells of it. Counters are 0 without the performance schema.
struct ClientRow {
  std::int64_t connection = 0;
  std::string user;
  Peer peer;
  std::int64_t recordsDeleted = 0;
  std::int64_t recordsUpdated = 0;
  std::int64_t recordsInserted = 0;
  std::int64_t recordsRead = 0;
  std::int64_t diskAccesses = 0;
  std::int64_t processId = 0;              // on the client's machine, as the client says
  std::optional<std::int64_t> rowsLocked;  // of its transaction, if it is in one
};

// Reads clients.sql and joins its parts; sorted by connection.
std::vector<ClientRow> decodeClients(sql::RowSource& rows);

// The clients of the report. Handles of connections that are not among `rows` are left out.
std::vector<Client> clientsOf(const std::vector<ClientRow>& rows,
                              const std::vector<TableHandle>& handles, const TableFiles& files);

}  // namespace tal::mariadb
