// Turns the rows of files.sql, clients.sql and sql_connections.sql into lists. Each function throws
// Failure(kServerError) if a number cannot be read.
#pragma once

#include <cstddef>
#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kFileColumns = 15;

// One file for each (database, relation, name) with one handle for each row of it. Files keep the
// order of their first rows; if an earlier file has the same name, "#" and the OID of the relation
// are added.
std::vector<OpenFile> readFiles(sql::RowSource& rows);

inline constexpr std::size_t kClientColumns = 15;

// One client for each process, with one handle for each row of it that names a file. Clients keep
// the order of their first rows.
std::vector<Client> readClients(sql::RowSource& rows);

inline constexpr std::size_t kSqlConnectionColumns = 8;

// One connection for each row.
std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows);

}  // namespace tal::postgresql
