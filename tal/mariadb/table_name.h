// A table as the key of a hash map.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <string>

namespace tal::mariadb {

struct TableName {
  std::string schema;
  std::string table;

  // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the 0 that is compared with for a null.
  auto operator<=>(const TableName&) const = default;
};

struct TableNameHash {
  std::size_t operator()(const TableName& name) const noexcept {
    const std::size_t schema = std::hash<std::string>{}(name.schema);
    return schema * 31 + std::hash<std::string>{}(name.table);
  }
};

}  // namespace tal::mariadb
