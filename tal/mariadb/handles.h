// The handles that the reports show. They are made from the uses of tables and from the places of
// their data.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "tal/engine.h"
#include "tal/mariadb/data_files.h"
#include "tal/mariadb/read_locks.h"

namespace tal::mariadb {

// The handle of one connection on one file, or on something without a file.
struct Handle {
  const Use* use = nullptr;
  std::optional<std::size_t> file;  // index into the files
  std::uint8_t openMode = open_mode::kNormal;
  std::uint8_t recordLockType = record_lock::kNone;
  std::uint8_t waitState = wait_state::kNone;
  std::uint16_t transactionState = transaction_state::kNone;
};

// The handles in the order of the picture, into which they point. If InnoDB says in which files a
// use of a table locks or awaits rows, it has handles on these files. Otherwise it has handles on
// all files of the table. If the table is partitioned, they are on the files of its first
// partition, because the partitions in use are not known.
std::vector<Handle> handlesOf(const LockPicture& picture, const TableFiles& files);

// Every file of the report with its handles, in the order of `files`. After them come the locked
// things without a file.
std::vector<OpenFile> openFilesOf(const std::vector<DataFile>& files,
                                  const std::vector<Handle>& handles, const ServerFacts& facts);

// Adds each handle to the client that owns it. Leaves out the handles of connections that are not
// listed.
void addHandles(std::vector<Client>& clients, const std::vector<Handle>& handles,
                const TableFiles& files);

}  // namespace tal::mariadb
