// The state behind the 23 functions.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "tal/connect.h"
#include "tal/interface/served_engine.h"
#include "tal/status.h"

namespace tal::interface {

// Whether the library was started, and which connections are open. Not synchronised: calls are to
// be made by one thread at a time. Everything that is not served is thrown as Failure.
class Library {
 public:
  // Throws Failure kNotStarted before start() and after stop().
  Library& requireStarted();

  // The engine that needs no connecting: it is opened by its first use.
  static constexpr std::int32_t kLocalHandle = -1;

  // Starting twice is starting once.
  void start() noexcept { started_ = true; }

  // Closes every connection.
  void stop();

  // Opens the engine that `server` names. A handle is never given twice.
  [[nodiscard]] std::int32_t connect(std::string_view server, const Credentials& credentials);

  // Makes a connection of an open engine. Throws what the engine wants returned instead.
  [[nodiscard]] std::int32_t adopt(std::unique_ptr<Engine> engine);

  // The handle is unknown afterwards, whatever status the engine wants returned. Closing the local
  // engine succeeds even if it was never used.
  void disconnect(std::int32_t handle);

  // The connection, admitted to the call.
  [[nodiscard]] ServedEngine& serving(std::int32_t handle, Call call);

 private:
  void noteStopStatus(ServedEngine& closing);

  bool started_ = false;
  std::int32_t lastHandle_ = 0;
  // What TalStop has to return: engines are asked when they close, because none is left by then.
  Status stopStatus_ = Status::kSuccess;
  std::unordered_map<std::int32_t, std::unique_ptr<ServedEngine>> connections_;
};

// The one library of this process.
Library& library();

}  // namespace tal::interface
