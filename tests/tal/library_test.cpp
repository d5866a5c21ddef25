#include "tal/interface/library.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <new>
#include <stdexcept>

#include "tal/interface/boundary.h"

namespace tal::interface {
namespace {

// What a test makes the engine do, and what became of it.
struct Script {
  std::vector<std::string> names;
  std::map<Call, Status> instead;
  bool filesFail = false;
  bool closed = false;
};

class ScriptedEngine : public Engine {
 public:
  explicit ScriptedEngine(Script& script) : script_(script) {}
  ~ScriptedEngine() override { script_.closed = true; }

  Information information() override { return {}; }
  Version version() override { return {}; }
  Usage usage() override { return {}; }
  Communication communication() override { return {}; }
  std::vector<OpenFile> openFiles() override {
    if (script_.filesFail) throw Failure(Status::kConnectionLost);
    std::vector<OpenFile> files;
    for (const std::string& name : script_.names) files.emplace_back().name = name;
    return files;
  }
  std::vector<Client> clients() override { return {}; }
  std::vector<SqlConnection> sqlConnections() override { return {}; }
  Status answerInstead(Call call) override {
    const auto found = script_.instead.find(call);
    return found == script_.instead.end() ? Status::kSuccess : found->second;
  }

 private:
  Script& script_;
};

class LibraryTest : public testing::Test {
 protected:
  LibraryTest() { library_.start(); }

  std::int32_t adopt() { return library_.adopt(std::make_unique<ScriptedEngine>(script_)); }

  static std::int16_t statusOf(const std::function<void()>& action) { return guarded(action); }

  std::int16_t takeFiles(std::int32_t handle) {
    return guarded(
        [&] { static_cast<void>(library_.serving(handle, Call::kGetOpenFilesData).takeFiles()); });
  }

  std::int16_t readFiles(std::int32_t handle) {
    return guarded(
        [&] { static_cast<void>(library_.serving(handle, Call::kGetFileInfo2).files()); });
  }

  Script script_;
  Library library_;
};

TEST(Guarded, TurnsExceptionsIntoStatuses) {
  EXPECT_EQ(guarded([] {}), 0);
  EXPECT_EQ(guarded([] { throw Failure(Status::kNoEntry); }), 7008);
  EXPECT_EQ(guarded([] { throw Failure(static_cast<Status>(-1)); }), -1);
  EXPECT_EQ(guarded([] { throw std::bad_alloc(); }), code(Status::kOutOfMemory));
  EXPECT_EQ(guarded([] { throw std::runtime_error("x"); }), code(Status::kInternalError));
  EXPECT_EQ(guarded([] { throw 5; }), code(Status::kInternalError));
}

TEST_F(LibraryTest, KeepsASnapshotWhileTheEngineMovesOn) {
  script_.names = {"a", "b"};
  ServedEngine& served = library_.serving(adopt(), Call::kGetOpenFilesData);
  ASSERT_EQ(served.takeFiles(), 2U);

  script_.names = {"c"};

  EXPECT_EQ(served.files().count(), 2U);
  EXPECT_EQ(served.files().at(0).name, "a");
  EXPECT_EQ(served.takeFiles(), 1U);
  EXPECT_EQ(served.files().at(0).name, "c");
}

TEST_F(LibraryTest, HasNoSnapshotAfterAnEngineFailure) {
  const std::int32_t handle = adopt();
  ASSERT_EQ(takeFiles(handle), 0);
  script_.filesFail = true;

  EXPECT_EQ(takeFiles(handle), code(Status::kConnectionLost));

  EXPECT_EQ(readFiles(handle), code(Status::kNoSnapshot));
}

TEST_F(LibraryTest, HasNoSnapshotAfterAStatusInsteadOfAnAnswer) {
  const std::int32_t handle = adopt();
  ASSERT_EQ(takeFiles(handle), 0);
  script_.instead[Call::kGetOpenFilesData] = Status::kNoAnswer;

  EXPECT_EQ(takeFiles(handle), code(Status::kNoAnswer));

  EXPECT_EQ(readFiles(handle), code(Status::kNoSnapshot));
}

TEST_F(LibraryTest, ClosesAnEngineThatDoesNotLetConnect) {
  script_.instead[Call::kConnectServer] = Status::kLoginRefused;

  EXPECT_EQ(statusOf([&] { adopt(); }), code(Status::kLoginRefused));

  EXPECT_TRUE(script_.closed);
}

TEST_F(LibraryTest, ClosesAnEngineThatFailsToDisconnect) {
  const std::int32_t handle = adopt();
  script_.instead[Call::kDisconnect] = Status::kConnectionLost;

  EXPECT_EQ(statusOf([&] { library_.disconnect(handle); }), code(Status::kConnectionLost));

  EXPECT_TRUE(script_.closed);
  EXPECT_EQ(statusOf([&] { library_.disconnect(handle); }), code(Status::kUnknownHandle));
}

TEST_F(LibraryTest, StopsWithTheStatusOfAnEngineThatWasClosedBefore) {
  script_.instead[Call::kStop] = Status::kNoAnswer;
  library_.disconnect(adopt());

  EXPECT_EQ(statusOf([&] { library_.stop(); }), code(Status::kNoAnswer));

  library_.start();
  EXPECT_EQ(statusOf([&] { library_.stop(); }), 0);
}

TEST_F(LibraryTest, StopsWithTheStatusOfAnEngineThatIsOpen) {
  script_.instead[Call::kStop] = Status::kNoAnswer;
  adopt();

  EXPECT_EQ(statusOf([&] { library_.stop(); }), code(Status::kNoAnswer));

  EXPECT_TRUE(script_.closed);
  EXPECT_EQ(statusOf([&] { library_.stop(); }), code(Status::kNotStarted));
}

TEST_F(LibraryTest, GivesNoHandleTwice) {
  const std::int32_t first = adopt();
  library_.disconnect(first);

  EXPECT_GT(first, 0);
  EXPECT_GT(adopt(), first);
}

TEST_F(LibraryTest, OpensTheLocalEngineAtItsFirstUse) {
  EXPECT_EQ(statusOf([&] { library_.disconnect(Library::kLocalHandle); }), 0);

  ServedEngine& local = library_.serving(Library::kLocalHandle, Call::kGetOpenFilesData);

  EXPECT_GT(local.takeFiles(), 0U);
  EXPECT_EQ(&library_.serving(Library::kLocalHandle, Call::kGetFileInfo2), &local);
  EXPECT_EQ(statusOf([&] { library_.disconnect(Library::kLocalHandle); }), 0);
  EXPECT_EQ(readFiles(Library::kLocalHandle), code(Status::kNoSnapshot));
}

TEST_F(LibraryTest, RefusesServersOfNoKnownScheme) {
  for (const char* server :
       {"", "sim", "SIM:demo", "demo", "http://x", "postgresql:/x", "://", ":"}) {
    EXPECT_EQ(statusOf([&] { static_cast<void>(library_.connect(server, {})); }),
              code(Status::kUnknownScheme))
        << server;
  }
}

}  // namespace
}  // namespace tal::interface
