// A server whose metrics the exporter serves.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "companions/exporter/collection.h"

namespace exporter {

// The last collection of a target, as people want to know it.
struct Outline {
  bool isUp = false;
  std::time_t since = 0;  // since when it has been up or down
  std::string failure;    // of the first call that failed; empty if no call failed
  std::optional<tal::Usage> usage;
  std::optional<std::size_t> openFiles;
};

// Collects in a thread of its own, so that an engine that hangs does not delay other targets. Any
// thread may call any function.
class Target {
 public:
  // If `turn` is not null, only one of the targets that share it collects at a time.
  Target(std::string name, companions::Settings settings, std::shared_ptr<std::mutex> turn);
  Target(const Target&) = delete;
  Target& operator=(const Target&) = delete;
  // Waits until no collection is under way.
  ~Target();

  [[nodiscard]] const std::string& name() const noexcept { return name_; }

  // Returns a collection that began after this call, or the one that others wait for at this
  // moment. Returns nothing at the deadline, and when the target stops.
  [[nodiscard]] std::shared_ptr<const Collection> collect(Clock::time_point deadline);

  // Nothing before the first collection.
  [[nodiscard]] std::optional<Outline> outline() const;

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
  void note(const Collection& collection);

  const std::string name_;
  const std::shared_ptr<std::mutex> turn_;
  Collector collector_;  // of the thread alone

  mutable std::mutex mutex_;  // of all members below; it is not held during a collection
  std::condition_variable changed_;
  std::uint64_t asked_ = 0;  // collections are counted from 1
  std::uint64_t begun_ = 0;
  std::uint64_t finished_ = 0;
  Clock::time_point expires_;      // after this time nobody waits for the present collection
  Clock::time_point nextExpires_;  // the same for the next one
  // Kept only while somebody waits: a target that nobody scrapes must be small.
  std::shared_ptr<const Collection> last_;
  std::size_t waiting_ = 0;
  std::optional<Outline> outline_;
  bool stops_ = false;
  bool stopped_ = false;

  std::thread thread_;
};

}  // namespace exporter
