// The open files of the report.
#pragma once

#include <vector>

#include "tal/engine.h"
#include "tal/mariadb/data_files.h"
#include "tal/mariadb/table_handles.h"

namespace tal::mariadb {

// Every file, in the order of `files`, with its handles. Where the server does not tell of metadata
// locks, the flags are not known, but for files with a contended row.
std::vector<OpenFile> openFilesOf(const std::vector<DataFile>& files,
                                  const std::vector<TableHandle>& handles,
                                  const LockPicture& picture, const ServerFacts& facts);

}  // namespace tal::mariadb
