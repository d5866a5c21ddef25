// Rows of files.sql as open files.
#pragma once

#include <cstddef>
#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

inline constexpr std::size_t kFileColumns = 15;

// One file for each (database, relation, name) with one handle for each row of it. Files keep the
// order of their first rows; a name that an earlier file has is made different by "#" and the
// relation's OID. Throws Failure(kServerError) when a number is none.
std::vector<OpenFile> readFiles(sql::RowSource& rows);

}  // namespace tal::postgresql
