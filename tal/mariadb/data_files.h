// The open files of the server, and which table each belongs to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "tal/mariadb/session.h"
#include "tal/mariadb/table_name.h"
#include "tal/sql/row.h"

namespace tal::mariadb {

struct DataFile {
  std::string path;
  std::optional<TableName> table;  // none for logs and the like
  bool isInnodb = false;
  std::optional<std::int64_t> space;  // of InnoDB files that hold data
  std::int64_t pageSize = 0;          // 0 where there are no pages
  std::int64_t bytes = 0;             // 0 where the server does not tell
};

// Reads files.sql. A file that both parts of it tell of is one file here, and the files stand in
// the order in which they came.
std::vector<DataFile> decodeFiles(sql::RowSource& rows, const ServerFacts& facts);

// Where the data of a table is.
class TableFiles {
 public:
  // `files` must outlive this object, and not move.
  explicit TableFiles(const std::vector<DataFile>& files);

  // Indexes into the files: several for a partitioned table, none for a table in memory, a view, or
  // a table inside the system tablespace.
  [[nodiscard]] const std::vector<std::size_t>& of(const TableName& table) const;

  [[nodiscard]] const DataFile& file(std::size_t index) const { return files_[index]; }

 private:
  const std::vector<DataFile>& files_;
  std::unordered_map<TableName, std::vector<std::size_t>, TableNameHash> indexes_;
};

}  // namespace tal::mariadb
