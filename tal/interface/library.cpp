#include "tal/interface/library.h"

#include <stdlib.h>

#include <utility>

#include "tal/connect.h"

namespace tal::interface {
namespace {

// Variables that client libraries read by themselves, and that no parameter of a connection can
// switch off: those that make a library load foreign code, and those that make it send settings to
// a server.
constexpr const char* kClientVariables[] = {
    "LIBMYSQL_ENABLE_CLEARTEXT_PLUGIN",
    "LIBMYSQL_PLUGINS",
    "MARIADB_PLUGIN_DIR",
    "PGDATESTYLE",
    "PGGEQO",
    "PGTZ",
};

void removeClientVariables() noexcept {
  for (const char* const name : kClientVariables) ::unsetenv(name);
}

void throwUnlessSuccess(Status status) {
  if (status != Status::kSuccess) throw Failure(status);
}

}  // namespace

void Library::requireStarted() const {
  const std::lock_guard lock(mutex_);
  if (!started_) throw Failure(Status::kNotStarted);
}

void Library::start() {
  const std::lock_guard lock(mutex_);
  if (!std::exchange(started_, true)) removeClientVariables();
}

void Library::stop() {
  requireStarted();
  Engines closing;
  {
    const std::lock_guard lock(mutex_);
    started_ = false;
    closing.swap(engines_);
  }
  for (const auto& [handle, engine] : closing) noteStopStatus(*engine);
  closing.clear();
  const std::lock_guard lock(mutex_);
  throwUnlessSuccess(std::exchange(stopStatus_, Status::kSuccess));
}

std::int32_t Library::connect(std::string_view server, const Credentials& credentials) {
  requireStarted();
  return adopt(openEngine(server, credentials));
}

std::int32_t Library::adopt(std::unique_ptr<Engine> engine) {
  requireStarted();
  auto served = std::make_unique<ServedEngine>(std::move(engine));
  served->admit(Call::kConnectServer);
  const std::lock_guard lock(mutex_);
  const std::int32_t handle = ++lastHandle_;
  engines_.emplace(handle, std::move(served));
  return handle;
}

void Library::disconnect(std::int32_t handle) {
  requireStarted();
  Engines::node_type closing;
  {
    const std::lock_guard lock(mutex_);
    closing = engines_.extract(handle);
  }
  if (closing.empty()) {
    if (handle == kLocalHandle) return;
    throw Failure(Status::kUnknownHandle);
  }
  ServedEngine& engine = *closing.mapped();
  noteStopStatus(engine);
  engine.admit(Call::kDisconnect);
}

ServedEngine& Library::serving(std::int32_t handle, Call call) {
  ServedEngine* engine = find(handle);
  if (engine == nullptr) {
    if (handle != kLocalHandle) throw Failure(Status::kUnknownHandle);
    engine = &add(handle, std::make_unique<ServedEngine>(openLocalEngine()));
  }
  return engine->admit(call);
}

ServedEngine* Library::find(std::int32_t handle) const {
  const std::lock_guard lock(mutex_);
  if (!started_) throw Failure(Status::kNotStarted);
  const auto found = engines_.find(handle);
  return found == engines_.end() ? nullptr : found->second.get();
}

ServedEngine& Library::add(std::int32_t handle, std::unique_ptr<ServedEngine> engine) {
  const std::lock_guard lock(mutex_);
  return *engines_.emplace(handle, std::move(engine)).first->second;
}

void Library::noteStopStatus(ServedEngine& closing) {
  const Status status = closing.engine().answerInstead(Call::kStop);
  const std::lock_guard lock(mutex_);
  if (stopStatus_ == Status::kSuccess) stopStatus_ = status;
}

Library& library() {
  static Library theLibrary;
  return theLibrary;
}

}  // namespace tal::interface
