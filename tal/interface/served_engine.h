// One open engine with its snapshots.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "engine/tal.h"
#include "tal/engine.h"
#include "tal/interface/snapshots.h"

namespace tal::interface {

// An engine and the snapshots that were taken from it: at most one of each kind, kept until it is
// released or taken again. Every failure is thrown as Failure; a look-up allocates nothing.
class ServedEngine {
 public:
  explicit ServedEngine(std::unique_ptr<Engine> engine) noexcept;

  // Comes before each call that is served. Throws Failure when the engine wants another status
  // returned. If the call takes a list again, the old list is dropped here, so that a failure
  // leaves no old list behind.
  ServedEngine& admit(Call call);

  [[nodiscard]] Engine& engine() noexcept { return *engine_; }

  // Each takes a snapshot and returns its length.
  [[nodiscard]] std::size_t takeFiles();
  [[nodiscard]] std::size_t takeClients();
  [[nodiscard]] std::size_t takeSqlConnections();

  // Throw Failure kNoSnapshot if there is no snapshot.
  [[nodiscard]] FileSnapshot& files();
  [[nodiscard]] ClientSnapshot& clients();
  [[nodiscard]] const std::vector<SqlConnection>& sqlConnections();
  void releaseFiles();
  void releaseClients();
  void releaseSqlConnections();

 private:
  std::unique_ptr<Engine> engine_;
  std::optional<FileSnapshot> files_;
  std::optional<ClientSnapshot> clients_;
  std::optional<std::vector<SqlConnection>> sqlConnections_;
};

}  // namespace tal::interface
