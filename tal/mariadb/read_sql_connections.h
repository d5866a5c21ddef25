// SQL connections: every client connection, its state, and the time since it has been in it.
#pragma once

#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// Reads sql_connections.sql. The result is sorted by connection number.
std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows);

}  // namespace tal::mariadb
