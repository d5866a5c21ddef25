// Turns the rows of sql_connections.sql into SQL connections.
#pragma once

#include <cstddef>
#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kSqlConnectionColumns = 8;

// One connection for each row. Throws Failure(kServerError) if a number cannot be read.
std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows);

}  // namespace tal::postgresql
