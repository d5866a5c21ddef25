// A limit on the memory that one answer may take.
#pragma once

#include <libpq-fe.h>

#include <cstdint>

namespace tal::postgresql {

// Counts the bytes that arrive for one answer and its notices, from the construction of this object
// on.
class AnswerLimit {
 public:
  // The connection must outlive the limit.
  explicit AnswerLimit(const PGconn* connection);

  // Call it before each read. Throws Failure(kAnswerTooLarge) if more than sql::kMostBytes have
  // arrived. A local socket shows only bytes that wait to be read, so bytes that arrive during a
  // read are not counted there: the connection measures the whole answer again.
  void check();

 private:
  const PGconn* connection_;
  bool isTcp_;
  std::uint64_t before_;    // bytes on the TCP connection before this answer
  std::uint64_t seen_ = 0;  // bytes of this answer on a socket of this machine
};

}  // namespace tal::postgresql
