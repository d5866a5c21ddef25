// Record-level clients: every connection.
#pragma once

#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// Reads clients.sql. The clients are sorted by connection number and have no handles yet.
std::vector<Client> readClients(sql::RowSource& rows);

}  // namespace tal::mariadb
