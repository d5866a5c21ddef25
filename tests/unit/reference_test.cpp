#include "orv/Object.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>

#include "tests/unit/counted.h"

namespace {

using orv::makeReference;
using orv::Reference;
using testing_support::Counted;

class Derived : public Counted {
 public:
  using Counted::Counted;
};

TEST(Reference, IsNullAtFirst) {
  const Reference<Counted> none;

  EXPECT_FALSE(none);
  EXPECT_EQ(none.get(), nullptr);
}

TEST(Reference, DeletesWithTheLastOne) {
  std::atomic<int> living = 0;

  auto first = makeReference<Counted>(living);
  auto second = first;
  first = {};
  EXPECT_EQ(living, 1);
  second = {};

  EXPECT_EQ(living, 0);
}

TEST(Reference, MovesWithoutCounting) {
  std::atomic<int> living = 0;
  auto first = makeReference<Counted>(living);

  const Reference<Counted> second = std::move(first);

  EXPECT_EQ(living, 1);
  EXPECT_TRUE(second);
}

TEST(Reference, SurvivesAssignmentOfItself) {
  std::atomic<int> living = 0;
  auto reference = makeReference<Counted>(living);
  const auto& same = reference;

  reference = same;

  EXPECT_EQ(living, 1);
  EXPECT_TRUE(reference);
}

TEST(Reference, ConvertsToTheBase) {
  std::atomic<int> living = 0;

  Reference<orv::Object> base;
  {
    const auto derived = makeReference<Derived>(living);
    base = derived;
  }
  EXPECT_EQ(living, 1);
  base = {};

  EXPECT_EQ(living, 0);
}

TEST(Reference, CountsAcrossThreads) {
  constexpr int kRounds = 20000;
  std::atomic<int> living = 0;
  auto shared = makeReference<Counted>(living);
  const auto copyOften = [](Reference<Counted> own) {
    for (int i = 0; i < kRounds; ++i) {
      const Reference<Counted> copy = own;
      own = copy;
    }
  };

  std::thread other(copyOften, shared);
  copyOften(shared);
  other.join();

  EXPECT_EQ(living, 1);
  shared = {};
  EXPECT_EQ(living, 0);
}

TEST(OwningPtr, DeletesWhatItHeldWhenAnotherIsStored) {
  std::atomic<int> living = 0;
  auto owner = orv::makeOwned<Counted>(living);

  owner = orv::makeOwned<Counted>(living);
  EXPECT_EQ(living, 1);
  owner = nullptr;

  EXPECT_EQ(living, 0);
}

}  // namespace
