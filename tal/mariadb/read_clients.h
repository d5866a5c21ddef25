// Record-level clients: every connection.
#pragma once

#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

// Reads clients.sql; sorted by the connections' numbers, and without handles.
std::vector<Client> readClients(sql::RowSource& rows);

}  // namespace tal::mariadb
