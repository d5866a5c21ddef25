// Locks merged into handles, on tables of the test's own.
#include <gtest/gtest.h>

#include "tal/mariadb/handles.h"
#include "tests/sql/table.h"

namespace tal::mariadb {
namespace {

using testing_support::Cell;
using testing_support::Table;

using Row = std::vector<Cell>;
using Rows = std::vector<Row>;

constexpr std::int64_t kOwn = 99;

// Rows of locks.sql.
Row process(const char* connection, const char* state) {
  return {"connection", connection, state, "app", "host:4711"};
}
Row transaction(const char* connection, const char* tables, const char* rows,
                const char* modified) {
  return {"transaction", connection, {},      {}, std::string("9") + connection, {}, {}, {},
          tables,        rows,       modified};
}
Row innodb(const char* connection, const char* kind, const char* table, const char* mode,
           const char* granted, Cell space) {
  return {"innodb lock", connection,      kind, {}, "`db`.`" + std::string(table) + "`", mode,
          granted,       std::move(space)};
}
Row metadata(const char* connection, const char* table, const char* type,
             const char* granted = "1") {
  return {"metadata lock", connection, "TABLE", "db", table, type, granted};
}
Row object(const char* connection, const char* kind, Cell schema, Cell name, const char* type,
           const char* granted = "1") {
  return {"metadata lock", connection, kind, std::move(schema), std::move(name), type, granted};
}
const Row kOwnLock = metadata("99", "metadata_locks", "SHARED_READ");

DataFile file(const char* table, const char* path, std::optional<std::int64_t> space = {}) {
  DataFile result;
  result.path = path;
  result.table = TableName{"db", table};
  result.isInnodb = space.has_value();
  result.space = space;
  return result;
}

const std::vector<DataFile> kFiles = {file("t", "t.ibd", 5),  file("u", "u.ibd", 6),
                                      file("p", "p0.ibd", 7), file("p", "p1.ibd", 8),
                                      file("m", "m.MYD"),     file("m", "m.MYI")};

std::string text(std::uint8_t mode, std::uint8_t type, std::uint8_t wait, std::uint16_t state) {
  return std::to_string(mode) + " " + static_cast<char>(type) + " " + std::to_string(wait) + " " +
         std::to_string(state) + "\n";
}

// "connection file-or-name open-mode lock wait transaction" lines, of both lists.
std::string handlesIn(Rows rows) {
  const TableFiles tables(kFiles);
  Table table(std::move(rows));
  const LockPicture picture = readLocks(table, kOwn);
  const std::vector<Handle> handles = handlesOf(picture, tables);

  std::vector<Client> clients;
  for (const auto& [connection, owner] : picture.owners) {
    clients.emplace_back().connectionNumber = static_cast<std::uint32_t>(connection);
  }
  addHandles(clients, handles, tables);
  std::string result;
  for (const Client& client : clients) {
    for (const ClientHandle& handle : client.handles) {
      result +=
          std::to_string(client.connectionNumber) + " " + handle.fileName + " " +
          text(handle.openMode, handle.recordLockType, handle.waitState, handle.transactionState);
    }
  }
  return result;
}

// The same for the files, with "readOnly recordLocks transactionLock" behind each name.
std::string filesIn(Rows rows, const ServerFacts& facts = {}) {
  Table table(std::move(rows));
  const LockPicture picture = readLocks(table, kOwn);
  std::string result;
  for (const OpenFile& open : openFilesOf(kFiles, handlesOf(picture, TableFiles(kFiles)), facts)) {
    result += open.name + " " + static_cast<char>(open.readOnly) +
              static_cast<char>(open.recordLocks) + static_cast<char>(open.transactionLock);
    for (const FileHandle& handle : open.handles) {
      result += " " + std::to_string(handle.clientIndex) + "=" + handle.clientName;
    }
    result += "\n";
  }
  return result;
}

struct ModeRow {
  const char* lockType;
  std::string mode;
  std::string modeOfOther;
};

TEST(LocksTest, OpenModeFollowsTheLockType) {
  const ModeRow rows[] = {
      {"SHARED",                "254", "246"},
      {"SHARED_HIGH_PRIO",      "254", "246"},
      {"SHARED_READ",           "254", "246"},
      {"SHARED_READ_ONLY",      "254", "246"},
      {"SHARED_WRITE",          "0",   "248"},
      {"SHARED_WRITE_LOW_PRIO", "0",   "248"},
      {"SHARED_UPGRADABLE",     "0",   "248"},
      {"SHARED_NO_WRITE",       "0",   "248"},
      {"INTENTION_EXCLUSIVE",   "0",   "248"},
      {"SOMETHING_NEW",         "0",   "248"},
      {"SHARED_NO_READ_WRITE",  "252", "244"},
      {"EXCLUSIVE",             "252", "244"},
  };
  for (const ModeRow& row : rows) {
    const std::string end = std::string(" N 0 ") + (row.mode == "252" ? "19" : "0") + "\n";
    EXPECT_EQ(handlesIn({metadata("1", "t", row.lockType), metadata("2", "m", row.lockType),
                         metadata("3", "view", row.lockType)}),
              "1 t.ibd " + row.mode + end + "2 m.MYD " + row.modeOfOther + end + "2 m.MYI " +
                  row.modeOfOther + end + "3 db.view " + row.mode + end);
  }
}

TEST(LocksTest, StrongestGrantedLockCounts) {
  EXPECT_EQ(handlesIn({metadata("1", "t", "SHARED_READ"), metadata("1", "t", "SHARED_WRITE"),
                       metadata("1", "t", "EXCLUSIVE", "0"), metadata("2", "t", "SHARED_READ", "0"),
                       metadata("3", "t", "EXCLUSIVE", "0")}),
            "1 t.ibd 0 N 2 0\n"
            "2 t.ibd 254 N 2 0\n"
            "3 t.ibd 252 N 2 0\n");
}

struct LockTypeRow {
  const char* tablesLocked;
  const char* rowsLocked;
  const char* rowsModified;
  std::string written;  // record lock type on the table that is written
  std::string read;     // and on the one that is read
};

TEST(LocksTest, RecordLocksOfATransaction) {
  const LockTypeRow rows[] = {
      {"1", "0", "0", "N", "N"},
      {"1", "1", "0", "S", "N"},
      {"1", "2", "1", "M", "N"},
      {"1", "0", "1", "S", "N"},
      {"1", "0", "7", "M", "N"},
      {"2", "1", "0", "S", "S"},
      {"2", "9", "0", "M", "M"},
      {"3", "9", "0", "M", "N"},
  };
  for (const LockTypeRow& row : rows) {
    EXPECT_EQ(handlesIn({transaction("1", row.tablesLocked, row.rowsLocked, row.rowsModified),
                         metadata("1", "t", "SHARED_WRITE"), metadata("1", "u", "SHARED_READ")}),
              "1 t.ibd 0 " + row.written + " 0 1019\n1 u.ibd 254 " + row.read + " 0 1019\n")
        << row.tablesLocked << row.rowsLocked << row.rowsModified;
  }
}

TEST(LocksTest, OnlyTableOfATransactionHasItsLocks) {
  EXPECT_EQ(handlesIn({kOwnLock, transaction("1", "7", "1", "0"), metadata("1", "t", "SHARED_READ"),
                       metadata("1", "m", "SHARED_WRITE")}),
            "1 m.MYD 248 N 0 0\n"
            "1 m.MYI 248 N 0 0\n"
            "1 t.ibd 254 S 0 1019\n");
}

TEST(LocksTest, TableWithoutFilesMayHaveTheLocks) {
  EXPECT_EQ(handlesIn({kOwnLock, transaction("1", "1", "1", "0"), metadata("1", "t", "SHARED_READ"),
                       metadata("1", "view", "SHARED_READ"), metadata("1", "memory", "EXCLUSIVE")}),
            "1 db.memory 252 N 0 19\n"
            "1 t.ibd 254 N 0 1019\n"
            "1 db.view 254 N 0 1019\n");
}

TEST(LocksTest, TableThatIsOnlyAwaitedHasNoLockedRows) {
  EXPECT_EQ(
      handlesIn({kOwnLock, transaction("1", "1", "1", "0"), metadata("1", "t", "SHARED_WRITE"),
                 metadata("1", "u", "SHARED_WRITE", "0")}),
      "1 t.ibd 0 S 0 1019\n"
      "1 u.ibd 0 N 2 1019\n");
}

TEST(LocksTest, PartitionIsKnownInContentionOnly) {
  const Row holds = innodb("1", "RECORD", "p` /* Partition `p1", "X", "1", "8");
  const Row waits = innodb("2", "RECORD", "p` /* Partition `p1", "X", "0", "8");
  EXPECT_EQ(
      handlesIn({kOwnLock, transaction("1", "1", "1", "0"), transaction("2", "1", "1", "0"),
                 transaction("3", "1", "1", "0"), holds, waits, metadata("1", "p", "SHARED_WRITE"),
                 metadata("2", "p", "SHARED_WRITE"), metadata("3", "p", "SHARED_WRITE")}),
      "1 p1.ibd 0 S 0 1019\n"
      "2 p1.ibd 0 S 1 1019\n"
      "3 p0.ibd 0 S 0 1019\n");
}

// A user who may do as he likes in a database of his own must not fill everybody's report.
TEST(LocksTest, UseOfATableIsOneHandleHoweverManyItsPartitions) {
  std::vector<DataFile> files;
  for (int i = 0; i < 8192; ++i) files.push_back(file("p", ("p" + std::to_string(i)).c_str(), i));
  Rows rows;
  for (int i = 1; i <= 125; ++i)
    rows.push_back(metadata(std::to_string(i).c_str(), "p", "SHARED_WRITE"));
  Table table(std::move(rows));
  const LockPicture picture = readLocks(table, 999);

  EXPECT_EQ(handlesOf(picture, TableFiles(files)).size(), 125U);
}

// The child's insert locks the parent's row without a metadata lock on the parent.
TEST(LocksTest, ParentOfAForeignKeyIsHeldByTheChildsWriter) {
  EXPECT_EQ(handlesIn({kOwnLock, transaction("1", "2", "1", "1"), transaction("2", "1", "1", "0"),
                       innodb("1", "RECORD", "u", "S", "1", "6"),
                       innodb("2", "RECORD", "u", "X", "0", "6"),
                       metadata("1", "t", "SHARED_WRITE"), metadata("2", "u", "SHARED_WRITE")}),
            "1 t.ibd 0 S 0 1019\n"
            "1 u.ibd 254 S 0 1019\n"
            "2 u.ibd 0 S 1 1019\n");
}

TEST(LocksTest, WaitForALockOfInnodbOnATable) {
  EXPECT_EQ(handlesIn({kOwnLock, transaction("2", "2", "0", "0"),
                       metadata("2", "t", "SHARED_WRITE"), metadata("2", "u", "SHARED_WRITE"),
                       innodb("2", "TABLE", "t", "AUTO_INC", "0", {})}),
            "2 t.ibd 0 N 2 1019\n"
            "2 u.ibd 0 N 0 1019\n");
}

TEST(LocksTest, WaitForATableLevelLockConcernsOtherEngines) {
  EXPECT_EQ(handlesIn({kOwnLock, process("1", "Waiting for table level lock"),
                       metadata("1", "t", "SHARED_WRITE"), metadata("1", "m", "SHARED_WRITE")}),
            "1 m.MYD 248 N 2 0\n"
            "1 m.MYI 248 N 2 0\n"
            "1 t.ibd 0 N 0 0\n");
}

void expectShown(Rows rows, const std::string& handles) {
  rows.push_back(kOwnLock);
  EXPECT_EQ(handlesIn(std::move(rows)), handles);
}

TEST(LocksTest, LocksThatUsersName) {
  const Row held = object("1", "USER LEVEL LOCK", "", "mine", "SHARED_NO_WRITE");
  const Row awaited = object("2", "USER LEVEL LOCK", "", "mine", "SHARED_NO_WRITE", "0");

  expectShown({held}, "1 user lock mine 252 N 0 19\n");
  expectShown({held, awaited}, "1 user lock mine 252 N 0 19\n2 user lock mine 252 N 2 0\n");
}

TEST(LocksTest, BackupsAreShownWhenTheyHinderSomebody) {
  const Row stage = object("1", "BACKUP", {}, {}, "BACKUP_BLOCK_DDL");
  const Row flush = object("1", "BACKUP", {}, {}, "BACKUP_FTWRL2");
  const Row writes = object("2", "BACKUP", {}, {}, "BACKUP_TRANS_DML");
  const Row commits = object("2", "BACKUP", {}, {}, "BACKUP_COMMIT", "0");

  expectShown({stage, writes}, "");
  expectShown({stage, writes, commits}, "1 backup lock 252 N 0 19\n2 backup lock 0 N 2 0\n");
  expectShown({flush, commits}, "1 global read lock 252 N 0 19\n2 global read lock 0 N 2 0\n");
}

TEST(LocksTest, OtherThingsAreShownWhenSomebodyWaits) {
  const Row used = object("1", "FUNCTION", "db", "f", "SHARED");
  const Row dropped = object("2", "FUNCTION", "db", "f", "EXCLUSIVE", "0");
  const Row made = object("1", "SCHEMA", "shop", "", "INTENTION_EXCLUSIVE");
  const Row changed = object("2", "SCHEMA", "shop", "", "EXCLUSIVE", "0");

  expectShown({used, made}, "");
  expectShown({used, dropped}, "1 function db.f 254 N 0 0\n2 function db.f 252 N 2 0\n");
  expectShown({made, changed}, "1 schema shop 0 N 0 0\n2 schema shop 252 N 2 0\n");
  expectShown({process("1", "Waiting for table flush")}, "1 table flush 0 N 2 0\n");
}

TEST(LocksTest, WithoutMetadataLocksTheListsSayWhatTheyCan) {
  EXPECT_EQ(
      handlesIn({process("1", ""), process("2", "Updating"), process("3", ""),
                 process("4", "User lock"), process("5", "Waiting for table metadata lock"),
                 process("6", "Waiting for backup lock"),
                 process("7", "Waiting for table level lock"),
                 process("8", "Waiting for work from SQL thread"), transaction("1", "1", "5", "0"),
                 transaction("2", "1", "1", "0"), transaction("3", "1", "3", "2"),
                 transaction("5", "0", "0", "0"), innodb("1", "RECORD", "t", "X", "1", "5"),
                 innodb("2", "RECORD", "t", "X", "0", "5")}),
      "1 t.ibd 0 M 0 1019\n"
      "2 t.ibd 0 S 1 1019\n"
      "3 transaction 93 0 M 0 1019\n"
      "4 user lock 0 N 2 0\n"
      "5 transaction 95 0 N 0 1019\n"
      "5 metadata lock 0 N 2 1019\n"
      "6 backup lock 0 N 2 0\n"
      "7 table level lock 0 N 2 0\n");
}

TEST(LocksTest, FilesHaveTheirHandlesAndFlags) {
  EXPECT_EQ(filesIn({kOwnLock, process("1", ""), process("2", ""), transaction("1", "1", "2", "0"),
                     metadata("1", "t", "SHARED_WRITE"), metadata("2", "u", "SHARED_READ"),
                     metadata("2", "view", "SHARED_READ"),
                     object("2", "USER LEVEL LOCK", "", "a", "SHARED_NO_WRITE")}),
            "t.ibd NYY 1=app@host\n"
            "u.ibd NNN 2=app@host\n"
            "p0.ibd NNN\n"
            "p1.ibd NNN\n"
            "m.MYD NNN\n"
            "m.MYI NNN\n"
            "db.view NNN 2=app@host\n"
            "user lock a NNY 2=app@host\n");
}

TEST(LocksTest, ServerThatMayNotWriteItsDataSaysSo) {
  const std::string files = filesIn({}, {.innodbReadOnly = true});

  EXPECT_NE(files.find("t.ibd YNN\n"), std::string::npos);
  EXPECT_NE(files.find("m.MYD NNN\n"), std::string::npos);
}

// Its session is gone, and it is listed with the files alone.
TEST(LocksTest, PreparedTransactionsAreHolders) {
  const std::string files =
      filesIn({transaction("0", "1", "1", "0"), innodb("0", "RECORD", "t", "X", "1", "5")});

  EXPECT_NE(files.find("t.ibd NYY 0=prepared transaction 90\n"), std::string::npos);
}

// It came or went between the two statements.
TEST(LocksTest, ConnectionThatIsNotListedIsLeftOut) {
  const TableFiles tables(kFiles);
  Table table({metadata("4", "t", "SHARED_READ"), metadata("5", "t", "SHARED_READ")});
  const LockPicture picture = readLocks(table, kOwn);
  std::vector<Client> clients(1);
  clients[0].connectionNumber = 5;

  addHandles(clients, handlesOf(picture, tables), tables);

  EXPECT_EQ(clients[0].handles.size(), 1U);
}

TEST(LocksTest, NamesOfInnodbAreUnquoted) {
  const TableFiles tables(kFiles);
  Table table({
      {"innodb lock", "1", "TABLE", {}, "`a``b`.`c``` /* Partition `p` */", "IX", "1"},
      {"innodb lock", "2", "TABLE", {}, "`open",                            "IX", "1"},
      {"innodb lock", "3", "TABLE", {}, "",                                 "IX", "1"}
  });

  std::string names;
  for (const Use& use : readLocks(table, kOwn).uses) names += use.target.name() + "\n";

  EXPECT_EQ(names, "a`b.c`\nopen.\n.\n");
}

TEST(LocksTest, RowsOfNullsAreCarried) {
  EXPECT_EQ(handlesIn({}), "");
  EXPECT_EQ(
      handlesIn({Row(11), {"metadata lock"}, {"innodb lock"}, {"transaction"}, {"connection"}, {}}),
      "0 . 0 N 2 1019\n0  0 N 2 1019\n");
}

}  // namespace
}  // namespace tal::mariadb
