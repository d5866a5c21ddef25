// Rows of sql_connections.sql as SQL connections.
#pragma once

#include <cstddef>
#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kSqlConnectionColumns = 8;

// One connection for each row. Throws Failure(kServerError) when a number is none.
std::vector<SqlConnection> readSqlConnections(sql::RowSource& rows);

}  // namespace tal::postgresql
