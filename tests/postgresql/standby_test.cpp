// What the lists show of a standby.
#include <map>
#include <string>

#include "tests/postgresql/situation_test.h"
#include "tests/support/wait_until.h"

namespace testing_support {
namespace {

TEST_F(SituationTest, ReplayOnAStandbyWaitsForAReader) {
  const PrivateServer standby(server_);
  Session reader = superuser(standby, "app", "reader");
  reader.run("BEGIN; SELECT * FROM t");
  engine_ = openEngine(standby);

  admin_.run("TRUNCATE t");
  Session observer = superuser(standby, "app", "observer");
  const bool isWaiting = waitUntil([&] {
    return observer.value(
               "SELECT wait_event_type FROM pg_stat_activity WHERE backend_type = 'startup'") ==
           "Lock";
  });

  ASSERT_TRUE(isWaiting);
  const tal::OpenFile observed = file("app.public.t");
  std::map<std::string, std::string> handles;
  for (const tal::FileHandle& handle : observed.handles) {
    handles[handle.clientName] = describe(handle);
  }
  EXPECT_EQ(observed.readOnly, tal::flag::kYes);
  EXPECT_EQ(handles, (std::map<std::string, std::string>{
                         {"postgres@app", "254/78/0/1019"},
                         {"startup",      "252/78/2/0"   },
  }));
  EXPECT_EQ(handleOn("app.public.t", reader), "254/78/0/1019");
}

}  // namespace
}  // namespace testing_support
