// The open files of the server, and the table of each.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tal/mariadb/connection.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

struct TableName {
  std::string schema;
  std::string table;

  // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 that is compared with for a null.
  auto operator<=>(const TableName&) const = default;
};

struct DataFile {
  std::string path;
  std::optional<TableName> table;  // absent for logs and similar files
  bool isInnodb = false;
  std::optional<std::int64_t> space;  // of InnoDB files that hold data
  std::int64_t pageSize = 0;          // 0 if there are no pages
  std::int64_t bytes = 0;             // 0 if the server does not say
};

// Reads files.sql. A file that is in both parts of the statement is one file here. The files keep
// the order in which they came.
std::vector<DataFile> readDataFiles(sql::RowSource& rows, const ServerFacts& facts);

// The files of each table, and the table of each tablespace.
class TableFiles {
 public:
  // `files` must outlive this object, and not move.
  explicit TableFiles(const std::vector<DataFile>& files);

  // Indexes into the files. Empty for a table in memory, a view, or a table inside the system
  // tablespace. For a partitioned table, the files of the partition whose name sorts first.
  [[nodiscard]] const std::vector<std::size_t>& of(const TableName& table) const;

  [[nodiscard]] std::optional<std::size_t> ofSpace(std::int64_t space) const;

  [[nodiscard]] const DataFile& file(std::size_t index) const { return files_[index]; }

 private:
  void add(std::size_t index);

  const std::vector<DataFile>& files_;
  std::map<TableName, std::vector<std::size_t>> tables_;
  std::map<std::int64_t, std::size_t> spaces_;
};

}  // namespace tal::mariadb
