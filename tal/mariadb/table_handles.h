// The handles that the reports show, made of who uses which table and where its data is.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "tal/engine.h"
#include "tal/mariadb/data_files.h"
#include "tal/mariadb/table_locks.h"

namespace tal::mariadb {

// One connection's handle on one file, or on a table that has no file of its own.
struct TableHandle {
  const TableUse* use = nullptr;
  std::optional<std::size_t> file;  // index into the files
  std::uint8_t openMode = open_mode::kUnknown;
  std::uint8_t recordLockType = record_lock::kUnknown;
  std::uint8_t waitState = wait_state::kUnknown;
  std::uint16_t transactionState = transaction_state::kUnknown;
};

// More handles than a server at work has. Those of a table are as many as its files times its
// users, so that a short answer of a hostile server could fill the memory with them.
inline constexpr std::size_t kMostHandles = 1'000'000;

// The handles in the order of `uses`, which must be sorted by connection as mergeLocks() leaves
// them, and must outlive the result. Throws Failure(kServerError) for more than kMostHandles.
std::vector<TableHandle> handlesOf(const std::vector<TableUse>& uses, const TableFiles& files);

}  // namespace tal::mariadb
