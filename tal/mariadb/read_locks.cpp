#include "tal/mariadb/read_locks.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "tal/mariadb/thread_parts.h"

namespace tal::mariadb {
namespace {

enum Column : std::size_t {
  kPart,
  kConnection,
  kKind,
  kSchema,
  kName,
  kMode,
  kGranted,
  kSpace,
  kTablesLocked,
  kRowsLocked,
  kRowsModified
};

enum class Part : std::uint8_t { kConnection, kTransaction, kInnodbLock, kMetadataLock };

constexpr auto kParts = std::to_array<std::pair<std::string_view, Part>>({
    {"connection",    Part::kConnection  },
    {"transaction",   Part::kTransaction },
    {"innodb lock",   Part::kInnodbLock  },
    {"metadata lock", Part::kMetadataLock},
});

constexpr auto kStrengths = std::to_array<std::pair<std::string_view, Strength>>({
    {"SHARED",               Strength::kRead     },
    {"SHARED_HIGH_PRIO",     Strength::kRead     },
    {"SHARED_READ",          Strength::kRead     },
    {"SHARED_READ_ONLY",     Strength::kRead     },
    {"SHARED_NO_READ_WRITE", Strength::kExclusive},
    {"EXCLUSIVE",            Strength::kExclusive},
    {"BACKUP_FTWRL1",        Strength::kExclusive},
    {"BACKUP_FTWRL2",        Strength::kExclusive},
    {"BACKUP_BLOCK_DDL",     Strength::kExclusive},
    {"BACKUP_BLOCK_COMMIT",  Strength::kExclusive},
});

constexpr std::string_view kUserLock = "USER LEVEL LOCK";
constexpr std::string_view kBackup = "BACKUP";
constexpr std::string_view kBackupLock = "backup lock";
constexpr std::string_view kGlobalReadLock = "global read lock";

// Of a lock mode of InnoDB: "S", "IX,GAP", "AUTO_INC".
Strength strengthOfMode(std::string_view mode) {
  return mode.starts_with('S') || mode.starts_with("IS") ? Strength::kRead : Strength::kWrite;
}

void keepStronger(std::optional<Strength>& strongest, Strength strength) {
  strongest = std::max(strongest.value_or(strength), strength);
}

std::string lowerCase(std::string text) {
  std::ranges::transform(text, text.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
  });
  return text;
}

// Removes from `text` a name in backquotes, in which they are doubled, and everything before it.
// Returns the name.
std::string takeQuoted(std::string_view& text) {
  std::string name;
  text.remove_prefix(std::min(text.find('`'), text.size()));
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] == '`' && (i + 1 == text.size() || text[i + 1] != '`')) {
      text.remove_prefix(i + 1);
      return name;
    }
    if (text[i] == '`') ++i;
    name += text[i];
  }
  text = {};
  return name;
}

// Of "`schema`.`table` /* Partition `p0` */".
TableName innodbTableIn(std::string_view text) {
  std::string schema = takeQuoted(text);
  std::string table = takeQuoted(text);
  return {std::move(schema), std::move(table)};
}

LockTarget targetNamed(std::string name, LockTarget::Kind kind = LockTarget::Kind::kOther) {
  return {
      kind, {"", std::move(name)}
  };
}

// "schema app", "function app.f".
std::string describe(const std::string& kind, const TableName& object) {
  const std::string name =
      object.table.empty() ? object.schema : object.schema + "." + object.table;
  return lowerCase(kind) + (name.empty() ? "" : " " + name);
}

// The target that a connection in this state waits for; empty if it waits for no lock.
std::string awaitedIn(std::string_view state) {
  constexpr std::string_view kWaiting = "Waiting for ";
  constexpr std::string_view kMetadataLock = "metadata lock";
  if (state == "User lock") return "user lock";
  if (!state.starts_with(kWaiting)) return {};
  state.remove_prefix(kWaiting.size());
  if (state.ends_with(kMetadataLock)) return std::string(kMetadataLock);
  return state.ends_with(" lock") || state == "table flush" ? std::string(state) : std::string();
}

class PictureMaker {
 public:
  explicit PictureMaker(std::int64_t ownConnection) : own_(ownConnection) {}

  void take(const sql::RowSource& row) {
    const auto part = sql::codeOf(kParts, row, kPart);
    const std::int64_t connection = sql::integer(row, kConnection);
    if (!part) return;
    if (connection == own_) {
      picture_.isComplete = picture_.isComplete || *part == Part::kMetadataLock;
      return;
    }
    switch (*part) {
      case Part::kConnection:
        return addConnection(owner(connection), row);
      case Part::kTransaction:
        return addTransaction(owner(connection), row);
      case Part::kInnodbLock:
        return addInnodbLock(connection, row);
      case Part::kMetadataLock:
        return addMetadataLock(connection, row);
    }
  }

  LockPicture made() {
    for (auto& [connection, owner] : picture_.owners) addFromLists(owner);
    for (auto& [key, use] : uses_) {
      if (!isShown(use.target)) continue;
      use.target = shownTarget(key.second);
      use.owner = &picture_.owners.at(key.first);
      picture_.uses.push_back(std::move(use));
    }
    return std::move(picture_);
  }

 private:
  using Key = std::pair<std::int64_t, LockTarget>;

  LockOwner& owner(std::int64_t connection) {
    LockOwner& owner = picture_.owners[connection];
    owner.connection = connection;
    return owner;
  }

  Use& use(std::int64_t connection, const LockTarget& target) {
    owner(connection);
    Use& use = uses_[{connection, target}];
    use.target = target;
    return use;
  }

  static void addConnection(LockOwner& owner, const sql::RowSource& row) {
    owner.name = sql::text(row, kSchema) + "@" + std::string(hostOf(sql::text(row, kName)));
    owner.state = sql::text(row, kKind);
  }

  void addTransaction(LockOwner& owner, const sql::RowSource& row) {
    const std::string name = "transaction " + sql::text(row, kName);
    if (owner.connection == 0) owner.name = "prepared " + name;
    transactions_[owner.connection] = name;
    owner.transaction = Transaction{.tablesLocked = sql::integer(row, kTablesLocked),
                                    .rowsLocked = sql::integer(row, kRowsLocked),
                                    .rowsModified = sql::integer(row, kRowsModified)};
  }

  void addInnodbLock(std::int64_t connection, const sql::RowSource& row) {
    Use& lock = use(connection, {LockTarget::Kind::kTable, innodbTableIn(sql::text(row, kName))});
    const bool granted = sql::integer(row, kGranted) != 0;
    const bool onRow = sql::text(row, kKind) == "RECORD";
    lock.isInnodb = true;
    // A connection that waits for a row has the table open.
    keepStronger(granted || onRow ? lock.granted : lock.pending,
                 strengthOfMode(sql::text(row, kMode)));
    if (!granted) isWaiting_.insert(connection);
    if (!onRow) return;
    bool& waits = lock.rowSpaces[sql::integer(row, kSpace)];
    waits = waits || !granted;
  }

  void addMetadataLock(std::int64_t connection, const sql::RowSource& row) {
    const std::string kind = sql::text(row, kKind);
    const std::string type = sql::text(row, kMode);
    const TableName object{sql::text(row, kSchema), sql::text(row, kName)};
    const bool granted = sql::integer(row, kGranted) != 0;
    const LockTarget target = targetOf(kind, object);
    Use& lock = use(connection, target);
    keepStronger(granted ? lock.granted : lock.pending,
                 kind == kUserLock ? Strength::kExclusive : strengthOf(type));
    if (kind == kUserLock || !granted) isAwaited_.insert(target);
    if (!granted) isWaiting_.insert(connection);
    if (kind == kBackup && type.starts_with("BACKUP_FTWRL")) isReadLocked_ = true;
  }

  static LockTarget targetOf(const std::string& kind, const TableName& object) {
    if (kind == "TABLE") return {LockTarget::Kind::kTable, object};
    if (kind == kUserLock) return targetNamed("user lock " + object.table);
    if (kind == kBackup) return targetNamed(std::string(kBackupLock));
    return targetNamed(describe(kind, object));
  }

  // The facts that the lists of processes and transactions add to the locks.
  void addFromLists(const LockOwner& owner) {
    const bool isKnown = picture_.isComplete || hasUse(owner.connection);
    const std::string awaited = awaitedIn(owner.state);
    if (!awaited.empty() && !isWaiting_.contains(owner.connection)) addWait(owner, awaited);
    if (owner.transaction && !isKnown) {
      use(owner.connection,
          targetNamed(transactions_[owner.connection], LockTarget::Kind::kTransaction))
          .granted = Strength::kWrite;
    }
  }

  // A lock of a storage engine on a whole table is the only wait that metadata locks do not show,
  // although they show the table.
  void addWait(const LockOwner& owner, const std::string& awaited) {
    if (picture_.isComplete && awaited == "table level lock") return;
    const LockTarget target = targetNamed(awaited);
    use(owner.connection, target).pending = Strength::kWrite;
    isAwaited_.insert(target);
  }

  [[nodiscard]] bool hasUse(std::int64_t connection) const {
    const auto first = uses_.lower_bound({connection, LockTarget{}});
    return first != uses_.end() && first->first.first == connection;
  }

  [[nodiscard]] bool isShown(const LockTarget& target) const {
    return target.kind != LockTarget::Kind::kOther || isAwaited_.contains(target);
  }

  [[nodiscard]] LockTarget shownTarget(const LockTarget& target) const {
    const bool renamed = isReadLocked_ && target.table.table == kBackupLock;
    return renamed ? targetNamed(std::string(kGlobalReadLock)) : target;
  }

  std::int64_t own_;
  LockPicture picture_;
  std::map<Key, Use> uses_;
  std::map<std::int64_t, std::string> transactions_;  // names by connection
  std::set<LockTarget> isAwaited_;                    // and therefore shown
  std::set<std::int64_t> isWaiting_;                  // for something that is known
  bool isReadLocked_ = false;
};

}  // namespace

Strength strengthOf(std::string_view lockType) {
  const auto* const found =
      std::ranges::find(kStrengths, lockType, [](const auto& row) { return row.first; });
  return found == kStrengths.end() ? Strength::kWrite : found->second;
}

std::string LockTarget::name() const {
  return kind == Kind::kTable ? table.schema + "." + table.table : table.table;
}

LockPicture readLocks(sql::RowSource& rows, std::int64_t ownConnection) {
  PictureMaker maker(ownConnection);
  while (rows.next()) maker.take(rows);
  return maker.made();
}

}  // namespace tal::mariadb
