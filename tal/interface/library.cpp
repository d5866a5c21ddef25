#include "tal/interface/library.h"

#include <utility>

namespace tal::interface {
namespace {

void throwUnlessSuccess(Status status) {
  if (status != Status::kSuccess) throw Failure(status);
}

}  // namespace

void Library::stop() {
  requireStarted();
  for (const auto& [handle, connection] : connections_) noteStopStatus(*connection);
  connections_.clear();
  started_ = false;
  throwUnlessSuccess(std::exchange(stopStatus_, Status::kSuccess));
}

std::int32_t Library::connect(std::string_view server, const Credentials& credentials) {
  requireStarted();
  return adopt(openEngine(server, credentials));
}

std::int32_t Library::adopt(std::unique_ptr<Engine> engine) {
  requireStarted();
  auto connection = std::make_unique<ServedEngine>(std::move(engine));
  connection->admit(Call::kConnectServer);
  const std::int32_t handle = ++lastHandle_;
  connections_.emplace(handle, std::move(connection));
  return handle;
}

void Library::disconnect(std::int32_t handle) {
  requireStarted();
  const auto closing = connections_.extract(handle);
  if (closing.empty()) {
    if (handle == kLocalHandle) return;
    throw Failure(Status::kUnknownHandle);
  }
  ServedEngine& connection = *closing.mapped();
  noteStopStatus(connection);
  connection.admit(Call::kDisconnect);
}

ServedEngine& Library::serving(std::int32_t handle, Call call) {
  requireStarted();
  auto found = connections_.find(handle);
  if (found == connections_.end()) {
    if (handle != kLocalHandle) throw Failure(Status::kUnknownHandle);
    auto connection = std::make_unique<ServedEngine>(openLocalEngine());
    found = connections_.emplace(kLocalHandle, std::move(connection)).first;
  }
  return found->second->admit(call);
}

Library& Library::requireStarted() {
  if (!started_) throw Failure(Status::kNotStarted);
  return *this;
}

void Library::noteStopStatus(ServedEngine& closing) {
  const Status status = closing.engine().answerInstead(Call::kStop);
  if (stopStatus_ == Status::kSuccess) stopStatus_ = status;
}

Library& library() {
  static Library theLibrary;
  return theLibrary;
}

}  // namespace tal::interface
