// The state behind the 23 functions.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include "tal/credentials.h"
#include "tal/interface/served_engine.h"
#include "tal/status.h"

namespace tal::interface {

// Whether the library was started, and which engines are open under which handles. Different
// handles may be used by different threads at the same time, one handle by one thread at a time;
// start() and stop() come first and last. A request that is not served throws Failure.
class Library {
 public:
  // The handle of the engine that needs no connection: the first use opens it.
  static constexpr std::int32_t kLocalHandle = -1;

  // Throws Failure kNotStarted before start() and after stop().
  void requireStarted() const;

  // Removes the variables of the environment that client libraries must not read. Call it while no
  // other thread may read the environment. A second start does nothing.
  void start();

  // Closes every engine.
  void stop();

  // Opens the engine that `server` names. A handle is never given twice.
  [[nodiscard]] std::int32_t connect(std::string_view server, const Credentials& credentials);

  // Serves an open engine from now on. Throws the status that the engine wants returned instead.
  [[nodiscard]] std::int32_t adopt(std::unique_ptr<Engine> engine);

  // The handle is unknown afterwards, whatever status the engine wants returned. Closing the local
  // engine succeeds even if it was never used.
  void disconnect(std::int32_t handle);

  // The engine behind the handle, admitted to the call.
  [[nodiscard]] ServedEngine& serving(std::int32_t handle, Call call);

 private:
  using Engines = std::unordered_map<std::int32_t, std::unique_ptr<ServedEngine>>;

  ServedEngine* find(std::int32_t handle) const;
  ServedEngine& add(std::int32_t handle, std::unique_ptr<ServedEngine> engine);
  void noteStopStatus(ServedEngine& closing);

  mutable std::mutex mutex_;  // of all members below; it is not held while an engine works
  bool started_ = false;
  std::int32_t lastHandle_ = 0;
  // The status that TalStop returns. Engines give it when they close, because none is left when
  // TalStop returns.
  Status stopStatus_ = Status::kSuccess;
  Engines engines_;
};

// The one library of this process.
Library& library();

}  // namespace tal::interface
