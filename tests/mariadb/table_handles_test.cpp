// Metadata locks merged into handles, on tables of the test's own.
#include "tal/mariadb/table_handles.h"

#include <gtest/gtest.h>

#include "tal/mariadb/clients.h"
#include "tests/sql/table.h"

namespace tal::mariadb {
namespace {

using testing_support::Cell;
using testing_support::Table;

constexpr std::int64_t kOwn = 99;

// A row of handles.sql for the connection, without a transaction.
std::vector<Cell> lockRow(const char* connection, const char* table, const char* type,
                          const char* granted) {
  return {"M", connection, "app", "host", "", "db", table, type, granted, {}, {}, {}, {}, {}};
}

// The same in a transaction, which may wait.
std::vector<Cell> lockRow(const char* connection, const char* table, const char* type,
                          const char* tablesLocked, const char* rowsLocked,
                          const char* rowsModified, Cell wait = {}, Cell space = {}) {
  std::vector<Cell> row = lockRow(connection, table, type, "1");
  row[9] = tablesLocked;
  row[10] = rowsLocked;
  row[11] = rowsModified;
  row[12] = std::move(wait);
  row[13] = std::move(space);
  return row;
}

DataFile innodbFile(const char* table, const char* path, std::int64_t space) {
  DataFile file;
  file.path = path;
  file.table = TableName{"db", table};
  file.isInnodb = true;
  file.space = space;
  return file;
}

DataFile otherFile(const char* table, const char* path) {
  DataFile file;
  file.path = path;
  file.table = TableName{"db", table};
  return file;
}

// "connection table-or-file open-mode lock wait transaction" lines.
std::string handlesIn(std::vector<std::vector<Cell>> rows) {
  const std::vector<DataFile> files = {innodbFile("t", "t.ibd", 5),  innodbFile("u", "u.ibd", 6),
                                       innodbFile("p", "p0.ibd", 7), innodbFile("p", "p1.ibd", 8),
                                       otherFile("m", "m.MYD"),      otherFile("m", "m.MYI")};
  const TableFiles tableFiles(files);
  Table table(std::move(rows));
  const std::vector<TableUse> uses = mergeLocks(decodeLocks(table, kOwn).locks);

  std::string result;
  for (const TableHandle& handle : handlesOf(uses, tableFiles)) {
    result += std::to_string(handle.use->owner.connection) + " " +
              (handle.file ? files[*handle.file].path : handle.use->table.table) + " " +
              std::to_string(handle.openMode) + " " + std::to_string(handle.recordLockType) + " " +
              std::to_string(handle.waitState) + " " + std::to_string(handle.transactionState) +
              "\n";
  }
  return result;
}

struct ModeRow {
  const char* lockType;
  std::string mode;
  std::string modeOfOther;
};

TEST(TableHandlesTest, OpenModeFollowsTheLockType) {
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
    const std::string state = row.mode == "252" ? "19" : "0";
    EXPECT_EQ(
        handlesIn({lockRow("1", "t", row.lockType, "1"), lockRow("2", "m", row.lockType, "1")}),
        "1 t.ibd " + row.mode + " 78 0 " + state + "\n" + "2 m.MYD " + row.modeOfOther + " 78 0 " +
            state + "\n" + "2 m.MYI " + row.modeOfOther + " 78 0 " + state + "\n");
  }
}

TEST(TableHandlesTest, StrongestGrantedLockCounts) {
  EXPECT_EQ(handlesIn({lockRow("1", "t", "SHARED_READ", "1"),
                       lockRow("1", "t", "SHARED_WRITE", "1"), lockRow("1", "t", "EXCLUSIVE", "0"),
                       lockRow("2", "t", "SHARED_READ", "0"), lockRow("3", "t", "EXCLUSIVE", "0")}),
            "1 t.ibd 0 78 2 0\n"
            "2 t.ibd 254 78 2 0\n"
            "3 t.ibd 252 78 2 0\n");
}

TEST(TableHandlesTest, OwnLocksShowThatThePictureIsComplete) {
  Table with({
      lockRow("99", "metadata_locks", "SHARED_READ", "1"),
      lockRow("1", "t", "SHARED_READ", "1"),
      {"C", {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, "5"}
  });
  Table without({lockRow("1", "t", "SHARED_READ", "1")});

  const LockPicture complete = decodeLocks(with, kOwn);

  EXPECT_TRUE(complete.isComplete);
  EXPECT_EQ(complete.locks.size(), 1U);
  EXPECT_EQ(complete.contendedSpaces, std::unordered_set<std::int64_t>{5});
  EXPECT_FALSE(decodeLocks(without, kOwn).isComplete);
}

struct LockTypeRow {
  const char* tablesLocked;
  const char* rowsLocked;
  const char* rowsModified;
  std::string written;  // record lock type on the table that is written
  std::string read;     // and on the one that is read
};

TEST(TableHandlesTest, RecordLocksOfATransaction) {
  const LockTypeRow rows[] = {
      {"1", "0", "0", "78", "78"},
      {"1", "1", "0", "83", "78"},
      {"1", "2", "1", "77", "78"},
      {"1", "0", "1", "83", "78"},
      {"1", "0", "7", "77", "78"},
      {"2", "1", "0", "83", "83"},
      {"2", "9", "0", "77", "77"},
      {"3", "9", "0", "77", "78"},
  };
  for (const LockTypeRow& row : rows) {
    const auto lock = [&](const char* table, const char* type) {
      return lockRow("1", table, type, row.tablesLocked, row.rowsLocked, row.rowsModified);
    };
    EXPECT_EQ(handlesIn({lock("t", "SHARED_WRITE"), lock("u", "SHARED_READ")}),
              "1 t.ibd 0 " + row.written + " 0 1019\n1 u.ibd 254 " + row.read + " 0 1019\n")
        << row.tablesLocked << row.rowsLocked << row.rowsModified;
  }
}

TEST(TableHandlesTest, OnlyTableOfATransactionHasItsLocks) {
  EXPECT_EQ(handlesIn({lockRow("1", "t", "SHARED_READ", "7", "1", "0"),
                       lockRow("1", "m", "SHARED_WRITE", "7", "1", "0")}),
            "1 m.MYD 248 78 0 0\n"
            "1 m.MYI 248 78 0 0\n"
            "1 t.ibd 254 83 0 1019\n");
}

TEST(TableHandlesTest, TableWithoutFilesLeavesOpenWhoseTheLocksAre) {
  EXPECT_EQ(handlesIn({lockRow("1", "t", "SHARED_READ", "1", "1", "0"),
                       lockRow("1", "view", "SHARED_READ", "1", "1", "0"),
                       lockRow("1", "memory", "EXCLUSIVE", "1", "1", "0")}),
            "1 memory 1 0 0 19\n"
            "1 t.ibd 254 78 0 1019\n"
            "1 view 1 0 0 2\n");
}

TEST(TableHandlesTest, TableThatIsOnlyAwaitedHasNoLockedRows) {
  std::vector<Cell> awaited = lockRow("1", "u", "SHARED_WRITE", "1", "1", "0");
  awaited[8] = "0";

  EXPECT_EQ(handlesIn({lockRow("1", "t", "SHARED_WRITE", "1", "1", "0"), awaited}),
            "1 t.ibd 0 83 0 1019\n"
            "1 u.ibd 0 78 2 1019\n");
}

TEST(TableHandlesTest, Waits) {
  EXPECT_EQ(handlesIn({lockRow("1", "p", "SHARED_WRITE", "1", "1", "0", "RECORD", "8"),
                       lockRow("2", "t", "SHARED_WRITE", "1", "1", "0", "TABLE", {})}),
            "1 p0.ibd 0 83 0 1019\n"
            "1 p1.ibd 0 83 1 1019\n"
            "2 t.ibd 0 83 2 1019\n");
}

TEST(TableHandlesTest, WaitForATableLevelLockConcernsOtherEngines) {
  std::vector<Cell> innodb = lockRow("1", "t", "SHARED_WRITE", "1");
  std::vector<Cell> other = lockRow("1", "m", "SHARED_WRITE", "1");
  innodb[4] = other[4] = "Waiting for table level lock";

  EXPECT_EQ(handlesIn({innodb, other}),
            "1 m.MYD 248 78 2 0\n"
            "1 m.MYI 248 78 2 0\n"
            "1 t.ibd 0 78 0 0\n");
}

// It came or went between the two statements.
TEST(TableHandlesTest, ConnectionThatIsNotListedIsLeftOut) {
  const std::vector<DataFile> files = {innodbFile("t", "t.ibd", 5)};
  const TableFiles tableFiles(files);
  Table table({lockRow("4", "t", "SHARED_READ", "1"), lockRow("5", "t", "SHARED_READ", "1")});
  const std::vector<TableUse> uses = mergeLocks(decodeLocks(table, kOwn).locks);
  std::vector<ClientRow> listed(1);
  listed[0].connection = 5;

  const std::vector<Client> clients = clientsOf(listed, handlesOf(uses, tableFiles), tableFiles);

  ASSERT_EQ(clients.size(), 1U);
  EXPECT_EQ(clients[0].handles.size(), 1U);
}

TEST(TableHandlesTest, NoLocksNoHandles) { EXPECT_EQ(handlesIn({}), ""); }

TEST(TableHandlesTest, RowsOfNullsAreCarried) {
  EXPECT_EQ(handlesIn({std::vector<Cell>(14), {"M"}, {}}), "0  1 78 2 0\n");
}

// As many users of a table with 1000 files.
std::size_t handlesOfUsers(std::int64_t users) {
  const std::vector<DataFile> files(1000, innodbFile("t", "t.ibd", 5));
  std::vector<TableUse> uses;
  for (std::int64_t user = 0; user < users; ++user) {
    TableUse& use = uses.emplace_back();
    use.owner.connection = user;
    use.table = *files.front().table;
  }
  return handlesOf(uses, TableFiles(files)).size();
}

TEST(TableHandlesTest, FilesTimesUsersHaveALimit) {
  EXPECT_EQ(handlesOfUsers(1000), kMostHandles);
  try {
    handlesOfUsers(1001);
    ADD_FAILURE() << "no limit";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.status(), Status::kServerError);
  }
}

}  // namespace
}  // namespace tal::mariadb
