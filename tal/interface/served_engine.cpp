#include "tal/interface/served_engine.h"

#include <utility>

namespace tal::interface {
namespace {

template <typename Snapshot>
Snapshot& present(std::optional<Snapshot>& snapshot) {
  if (!snapshot) throw Failure(Status::kNoSnapshot);
  return *snapshot;
}

template <typename Snapshot>
void release(std::optional<Snapshot>& snapshot) {
  present(snapshot);
  snapshot.reset();
}

}  // namespace

ServedEngine::ServedEngine(std::unique_ptr<Engine> engine) noexcept : engine_(std::move(engine)) {}

ServedEngine& ServedEngine::admit(Call call) {
  if (call == Call::kGetOpenFilesData) files_.reset();
  if (call == Call::kGetZorbClientsData) clients_.reset();
  if (call == Call::kGetSQLConnectionsData) sqlConnections_.reset();
  const Status status = engine_->answerInstead(call);
  if (status != Status::kSuccess) throw Failure(status);
  return *this;
}

std::size_t ServedEngine::takeFiles() { return files_.emplace(engine_->openFiles()).count(); }

std::size_t ServedEngine::takeClients() { return clients_.emplace(engine_->clients()).count(); }

std::size_t ServedEngine::takeSqlConnections() {
  return sqlConnections_.emplace(engine_->sqlConnections()).size();
}

FileSnapshot& ServedEngine::files() { return present(files_); }

ClientSnapshot& ServedEngine::clients() { return present(clients_); }

const std::vector<SqlConnection>& ServedEngine::sqlConnections() {
  return present(sqlConnections_);
}

void ServedEngine::releaseFiles() { release(files_); }

void ServedEngine::releaseClients() { release(clients_); }

void ServedEngine::releaseSqlConnections() { release(sqlConnections_); }

}  // namespace tal::interface
