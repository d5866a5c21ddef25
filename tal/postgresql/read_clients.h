// Turns the rows of clients.sql into record-level clients.
#pragma once

#include <cstddef>
#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kClientColumns = 15;

// One client for each process, with one handle for each row of it that names a file. Clients keep
// the order of their first rows. Throws Failure(kServerError) if a number cannot be read.
std::vector<Client> readClients(sql::RowSource& rows);

}  // namespace tal::postgresql
