// An object whose life shows.
#pragma once

#include <atomic>

#include "orv/Object.h"

namespace testing_support {

// Counts the objects that live.
class Counted : public orv::Object {
 public:
  explicit Counted(std::atomic<int>& living) : living_(living) { ++living_; }
  ~Counted() override { --living_; }

 private:
  std::atomic<int>& living_;
};

}  // namespace testing_support
