#include <gtest/gtest.h>

#include <atomic>

#include "orv/Collections.h"
#include "orv/Object.h"
#include "orv/String.h"
#include "tests/unit/counted.h"
#include "tests/unit/printing.h"

namespace {

using orv::makeReference;
using orv::String;
using orv::collections::IntegerHashMap;
using orv::collections::List;
using orv::collections::StringHashMap;
using testing_support::Counted;

TEST(List, KeepsTheOrder) {
  List<String> list;
  EXPECT_TRUE(list.isEmpty());

  list.append("b");
  list.append("a");

  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list.get(0), "b");
  EXPECT_EQ(list.get(1), "a");
  String all;
  for (const String& text : list) all += text;
  EXPECT_EQ(all, "ba");
}

TEST(List, ReleasesItsElements) {
  std::atomic<int> living = 0;
  auto list = makeReference<List<Counted>>();
  list->append(makeReference<Counted>(living));
  list->append(makeReference<Counted>(living));
  const auto kept = list->get(0);
  EXPECT_EQ(living, 2);

  list->clear();
  EXPECT_EQ(living, 1);
  list->append(makeReference<Counted>(living));
  list = {};

  EXPECT_EQ(living, 1);
}

TEST(HashMap, FindsExactKeysAlone) {
  StringHashMap map(101, 0.75F);

  map.put("SERV", "first");
  map.put("SERV", "second");
  map.put("", "empty key");

  ASSERT_NE(map.get("SERV"), nullptr);
  EXPECT_EQ(*map.get("SERV"), "second");
  EXPECT_EQ(*map.get(""), "empty key");
  EXPECT_EQ(map.get("serv"), nullptr);
  EXPECT_EQ(map.size(), 2U);
}

TEST(HashMap, GrowsBeyondItsCapacity) {
  IntegerHashMap map(1, 0.75F);

  for (int i = -5000; i < 5000; ++i) map.put(i, String::valueOf(i));

  EXPECT_EQ(map.size(), 10000U);
  EXPECT_EQ(*map.get(-5000), "-5000");
  EXPECT_EQ(*map.get(4999), "4999");
  EXPECT_EQ(map.get(5000), nullptr);
}

}  // namespace
