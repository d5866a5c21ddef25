#include "tal/postgresql/lock_codes.h"

#include "tal/engine.h"
#include "tal/postgresql/connection.h"

namespace tal::postgresql {

LockUse lockUseIn(const sql::RowSource& row, std::size_t first) {
  return {.isRelation = isTrue(row, first),
          .hasRows = isTrue(row, first + 1),
          .held = sql::integer(row, first + 2),
          .asked = sql::integer(row, first + 3),
          .awaitsRecord = isTrue(row, first + 4),
          .awaitsFile = isTrue(row, first + 5),
          .mayLockRows = isTrue(row, first + 6)};
}

std::uint8_t openModeOf(const LockUse& use) {
  if (!use.isRelation) return open_mode::kNormal;
  if (use.asked >= kShareRowExclusive) return open_mode::kExclusive;
  if (use.asked == kShare) return open_mode::kReadOnlySharedLocking;
  return use.asked == kAccessShare ? open_mode::kReadOnly : open_mode::kNormal;
}

std::uint8_t recordLockTypeOf(const LockUse& use) {
  return use.mayLockRows && use.hasRows ? record_lock::kMultiple : record_lock::kNone;
}

std::uint8_t waitStateOf(const LockUse& use) {
  if (use.awaitsRecord) return wait_state::kRecord;
  return use.awaitsFile ? wait_state::kFile : wait_state::kNone;
}

std::uint16_t transactionStateOf(const LockUse& use) {
  if (use.held < kAccessShare) return transaction_state::kNone;
  const LockMode exclusive = use.isRelation ? kShareRowExclusive : kExclusive;
  return use.held >= exclusive ? transaction_state::kExclusive : transaction_state::kConcurrent;
}

bool excludesWriters(const LockUse& use) { return use.isRelation && use.held >= kShare; }

}  // namespace tal::postgresql
