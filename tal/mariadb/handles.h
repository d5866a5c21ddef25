// The handles that the reports show, made of who uses what and where the data of tables is.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "tal/engine.h"
#include "tal/mariadb/read_files.h"
#include "tal/mariadb/read_locks.h"

namespace tal::mariadb {

// One connection's handle on one file, or on something that has none.
struct Handle {
  const Use* use = nullptr;
  std::optional<std::size_t> file;  // index into the files
  std::uint8_t openMode = open_mode::kNormal;
  std::uint8_t recordLockType = record_lock::kNone;
  std::uint8_t waitState = wait_state::kNone;
  std::uint16_t transactionState = transaction_state::kNone;
};

// The handles in the order of the picture, into which they point. A use of a table stands on the
// files where InnoDB says that it locks or awaits rows, otherwise on all files of the table, of a
// partitioned one on those of its first partition: which ones it uses is not known.
std::vector<Handle> handlesOf(const LockPicture& picture, const TableFiles& files);

// Every file of the report with its handles, in the order of `files`, and behind them what is
// locked and has no file.
std::vector<OpenFile> openFilesOf(const std::vector<DataFile>& files,
                                  const std::vector<Handle>& handles, const ServerFacts& facts);

// Adds each handle to the client that owns it; those of connections that are not listed are left
// out.
void addHandles(std::vector<Client>& clients, const std::vector<Handle>& handles,
                const TableFiles& files);

}  // namespace tal::mariadb
