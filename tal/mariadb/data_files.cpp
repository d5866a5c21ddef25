#include "tal/mariadb/data_files.h"

#include <map>
#include <string_view>

namespace tal::mariadb {
namespace {

enum Column : std::size_t { kPart, kPath, kEvent, kSpace, kPageSize, kBytes, kSchema, kTable };

// Of the column `part`. Every other row is a file that the server has open.
constexpr std::string_view kTablespace = "tablespace";

constexpr std::string_view kInnodbData = "wait/io/file/innodb/innodb_data_file";

// The logs of the server and of Aria belong to no table, although they lie where a table could.
bool belongsToTable(std::string_view event, std::string_view path) {
  if (event == kInnodbData) return path.ends_with(".ibd");
  return !event.starts_with("wait/io/file/sql/") && !event.starts_with("wait/io/file/innodb/") &&
         event != "wait/io/file/aria/control" && event != "wait/io/file/aria/translog";
}

std::int64_t pageSizeOf(std::string_view event, const ServerFacts& facts) {
  if (event == "wait/io/file/aria/MAD" || event == "wait/io/file/aria/MAI") {
    return facts.ariaBlockSize;
  }
  return event == "wait/io/file/myisam/kfile" ? facts.myisamBlockSize : 0;
}

TableName tableOf(const sql::RowSource& row) {
  return {sql::text(row, kSchema), sql::text(row, kTable)};
}

DataFile openFile(const sql::RowSource& row, const ServerFacts& facts) {
  const std::string event = sql::text(row, kEvent);
  DataFile file{.path = sql::text(row, kPath), .table = {}, .space = {}};
  file.isInnodb = event.starts_with("wait/io/file/innodb/");
  file.pageSize = pageSizeOf(event, facts);
  if (belongsToTable(event, file.path)) file.table = tableOf(row);
  return file;
}

void addTablespace(DataFile& file, const sql::RowSource& row) {
  file.isInnodb = true;
  file.space = sql::integer(row, kSpace);
  file.pageSize = sql::integer(row, kPageSize);
  file.bytes = sql::integer(row, kBytes);
  if (file.path.ends_with(".ibd")) file.table = tableOf(row);
}

// A table or partition has several files with the same name and different extensions.
std::string_view partOf(std::string_view path) { return path.substr(0, path.rfind('.')); }

}  // namespace

std::vector<DataFile> readDataFiles(sql::RowSource& rows, const ServerFacts& facts) {
  std::vector<DataFile> files;
  std::map<std::string, std::size_t> indexes;
  while (rows.next()) {
    const bool isTablespace = rows.cell(kPart) == kTablespace;
    const auto [known, isNew] = indexes.try_emplace(sql::text(rows, kPath), files.size());
    if (isNew) {
      files.push_back(isTablespace ? DataFile{.path = known->first, .table = {}, .space = {}}
                                   : openFile(rows, facts));
    }
    if (isTablespace) addTablespace(files[known->second], rows);
  }
  return files;
}

TableFiles::TableFiles(const std::vector<DataFile>& files) : files_(files) {
  for (std::size_t i = 0; i < files.size(); ++i) add(i);
}

void TableFiles::add(std::size_t index) {
  const DataFile& file = files_[index];
  if (file.space) spaces_[*file.space] = index;
  if (!file.table) return;

  std::vector<std::size_t>& first = tables_[*file.table];
  const auto order = first.empty() ? std::strong_ordering::less
                                   : partOf(file.path) <=> partOf(files_[first.front()].path);
  if (order < 0) first.clear();
  if (order <= 0) first.push_back(index);
}

const std::vector<std::size_t>& TableFiles::of(const TableName& table) const {
  static const std::vector<std::size_t> kNone;
  const auto found = tables_.find(table);
  return found == tables_.end() ? kNone : found->second;
}

std::optional<std::size_t> TableFiles::ofSpace(std::int64_t space) const {
  const auto found = spaces_.find(space);
  return found == spaces_.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace tal::mariadb
