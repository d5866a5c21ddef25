// Turns the rows of files.sql into open files.
#pragma once

#include <cstddef>
#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kFileColumns = 15;

// One file for each (database, relation, name) with one handle for each row of it. Files keep the
// order of their first rows; if an earlier file has the same name, "#" and the OID of the relation
// are added. Throws Failure(kServerError) if a number cannot be read.
std::vector<OpenFile> readFiles(sql::RowSource& rows);

}  // namespace tal::postgresql
