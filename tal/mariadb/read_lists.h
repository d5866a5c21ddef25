// Turns the rows of clients.sql and of sql_connections.sql into lists, sorted by the number of the
// connection. Each function throws Failure(kServerError) if a number cannot be read.
#pragma once

#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// The clients have no handles yet.
std::vector<Client> readClients(sql::RowSource& rows);

std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows);

}  // namespace tal::mariadb
