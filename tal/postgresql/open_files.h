// Rows of open_files.sql as open files.
#pragma once

#include <vector>

#include "tal/engine.h"
#include "tal/sql/row.h"

namespace tal::postgresql {

// One file for each (database, relation) pair with one handle for each row of it. Files keep the
// order of their first rows; a name that an earlier file has is made different by "#" and the
// relation's OID. Throws Failure(kServerError) when a number is none.
std::vector<OpenFile> readOpenFiles(sql::RowSource& rows);

}  // namespace tal::postgresql
