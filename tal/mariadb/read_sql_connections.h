// SQL connections: every client connection, with what it does and since when.
#pragma once

#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// Reads sql_connections.sql; sorted by the connections' numbers.
std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows);

}  // namespace tal::mariadb
