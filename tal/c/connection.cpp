#include "tal/c/connection.h"

#include <utility>

namespace tal::c {
namespace {

template <typename Snapshot>
const Snapshot& present(const std::optional<Snapshot>& snapshot) {
  if (!snapshot) throw Failure(Status::kNoSnapshot);
  return *snapshot;
}

template <typename Snapshot>
void release(std::optional<Snapshot>& snapshot) {
  present(snapshot);
  snapshot.reset();
}

}  // namespace

Connection::Connection(std::unique_ptr<Engine> engine) noexcept : engine_(std::move(engine)) {}

Connection& Connection::admit(Call call) {
  if (call == Call::kGetOpenFilesData) files_.reset();
  if (call == Call::kGetZorbClientsData) clients_.reset();
  if (call == Call::kGetSQLConnectionsData) sqlConnections_.reset();
  const Status status = engine_->answerInstead(call);
  if (status != Status::kSuccess) throw Failure(status);
  return *this;
}

std::size_t Connection::takeFiles() { return files_.emplace(engine_->openFiles()).count(); }

std::size_t Connection::takeClients() { return clients_.emplace(engine_->clients()).count(); }

std::size_t Connection::takeSqlConnections() {
  return sqlConnections_.emplace(engine_->sqlConnections()).size();
}

const FileSnapshot& Connection::files() const { return present(files_); }

const ClientSnapshot& Connection::clients() const { return present(clients_); }

const std::vector<SqlConnection>& Connection::sqlConnections() const {
  return present(sqlConnections_);
}

void Connection::releaseFiles() { release(files_); }

void Connection::releaseClients() { release(clients_); }

void Connection::releaseSqlConnections() { release(sqlConnections_); }

}  // namespace tal::c
