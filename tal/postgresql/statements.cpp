#include "tal/postgresql/statements.h"

#include <string_view>

namespace tal::postgresql {
namespace {

std::string replaceOnce(std::string text, std::string_view part, std::string_view replacement) {
  return text.replace(text.find(part), part.size(), replacement);
}

}  // namespace

const std::string& openFilesWithEstimatedSizes() {
  static const std::string text =
      replaceOnce(kOpenFiles, "pg_relation_size(c.oid)", "c.relpages * me.page");
  return text;
}

}  // namespace tal::postgresql
