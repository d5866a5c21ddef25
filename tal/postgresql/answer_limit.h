// A bound on what one answer may take up in memory.
#pragma once

#include <libpq-fe.h>

#include <cstdint>

namespace tal::postgresql {

// Bytes of one answer, with its notices, on the network. The rows take a few times as much.
inline constexpr std::uint64_t kAnswerLimit = 64ULL << 20U;

// Counts what arrives from its making on. A socket of this machine does not tell how much arrived:
// there the deadline alone ends an answer.
class AnswerLimit {
 public:
  // The connection must outlive the limit.
  explicit AnswerLimit(const PGconn* connection);

  // Throws Failure(kServerError) when more has arrived than one answer may have.
  void check() const;

 private:
  const PGconn* connection_;
  std::uint64_t before_;
};

}  // namespace tal::postgresql
