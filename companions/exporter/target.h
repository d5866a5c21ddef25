// A server that the exporter serves the metrics of.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "companions/exporter/collection.h"

namespace exporter {

// Collects in a thread of its own, so that an engine that hangs holds up nobody else. All functions
// may be called by any thread.
class Target {
 public:
  // Where `turn` is not null, collections take turns with those of all targets that have it.
  Target(std::string name, companions::Settings settings, std::shared_ptr<std::mutex> turn);
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;
  // Waits until no collection is under way.
  ~Target();

  [[nodiscard]] const std::string& name() const noexcept { return name_; }

  // A collection that began after this call, or that others wait for at this moment; nothing at the
  // deadline, and when the target stops.
  [[nodiscard]] std::shared_ptr<const Collection> collect(Clock::time_point deadline);

  // The last collection that ended; nothing before the first one.
  [[nodiscard]] std::shared_ptr<const Collection> last() const;

  // Since when the target has been up or down; 0 before the first collection.
  [[nodiscard]] std::time_t since() const;

  // Begins no further collection and closes the connection.
  void requestStop();
  // Whether that was done by the deadline.
  [[nodiscard]] bool hasStopped(Clock::time_point deadline);

 private:
  void work();
  bool waitForWork();
  std::unique_lock<std::mutex> takeTurn() const;
  Collection collectInTurn();
  void finish(Collection collection);
  void noteState(const Collection& collection);

  const std::string name_;
  const std::shared_ptr<std::mutex> turn_;
  Collector collector_;  // of the thread alone

  mutable std::mutex mutex_;  // of all that follows; no collection is made while it is held
  std::condition_variable changed_;
  std::uint64_t asked_ = 0;  // collections are counted from 1
  std::uint64_t begun_ = 0;
  std::uint64_t finished_ = 0;
  Clock::time_point expires_;      // after it nobody waits for the present collection
  Clock::time_point nextExpires_;  // the same of the next one
  std::shared_ptr<const Collection> last_;
  std::time_t since_ = 0;
  bool stops_ = false;
  bool stopped_ = false;

  std::thread thread_;
};

}  // namespace exporter
