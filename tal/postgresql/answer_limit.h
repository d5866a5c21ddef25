// A bound on what one answer may take up in memory.
#pragma once

#include <libpq-fe.h>

#include <cstdint>

namespace tal::postgresql {

// Counts what arrives for one answer, with its notices, from its making on.
class AnswerLimit {
 public:
  // The connection must outlive the limit.
  explicit AnswerLimit(const PGconn* connection);

  // To be called before each read: throws Failure(kAnswerTooLarge) when more has arrived than
  // sql::kMostBytes. A socket of this machine shows only what waits to be read, so that what
  // arrives during a read is not counted there.
  void check();

 private:
  const PGconn* connection_;
  bool isTcp_;
  std::uint64_t before_;    // bytes on the TCP connection before this answer
  std::uint64_t seen_ = 0;  // bytes of this answer on a socket of this machine
};

}  // namespace tal::postgresql
