#include "tal/postgresql/errors.h"

#include <algorithm>

namespace tal::postgresql {
namespace {

struct Row {
  std::string_view sqlState;
  Status status;
};

constexpr Row kRows[] = {
    {"08003", Status::kConnectionLost  }, // connection does not exist
    {"08006", Status::kConnectionLost  }, // connection failure
    {"28000", Status::kLoginRefused    }, // no login right, no matching line in pg_hba.conf
    {"28P01", Status::kLoginRefused    }, // wrong or expired password, unknown user
    {"3D000", Status::kUnknownDatabase }, //
    {"42501", Status::kPrivilegeMissing}, //
    {"53300", Status::kNoConnectionSlot}, // also the account's own limit
    {"55P03", Status::kCatalogLocked   }, // lock_timeout
    {"57014", Status::kNoAnswer        }, // statement_timeout
    {"57P01", Status::kConnectionLost  }, // terminated by the administrator, shutdown
    {"57P02", Status::kConnectionLost  }, // crash of another session
    {"57P03", Status::kServerNotReady  }, // starting, stopping, recovering
    {"57P05", Status::kConnectionLost  }, // idle_session_timeout
    {"",      Status::kServerError     }, // anything else
};

constexpr std::size_t kSqlStateLength = 5;

bool isSqlStateCharacter(char character) {
  return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z');
}

// The last word of a line when it looks like an SQLSTATE.
std::string_view lastCode(std::string_view line) {
  if (line.size() <= kSqlStateLength) return {};
  const std::string_view code = line.substr(line.size() - kSqlStateLength);
  const bool isWord = line[line.size() - kSqlStateLength - 1] == ' ';
  return isWord && std::ranges::all_of(code, isSqlStateCharacter) ? code : std::string_view{};
}

}  // namespace

Status statusOf(std::string_view sqlState) {
  const auto* const row = std::ranges::find(kRows, sqlState, &Row::sqlState);
  return row != std::end(kRows) ? row->status : std::prev(std::end(kRows))->status;
}

std::string_view sqlStateIn(std::string_view message) {
  while (!message.empty()) {
    const std::size_t end = std::min(message.find('\n'), message.size());
    if (const auto code = lastCode(message.substr(0, end)); !code.empty()) return code;
    message.remove_prefix(std::min(end + 1, message.size()));
  }
  return {};
}

}  // namespace tal::postgresql
