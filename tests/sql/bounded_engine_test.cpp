#include "tal/sql/bounded_engine.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <future>
#include <string>

#include "tal/sql/message.h"
#include "tal/status.h"
#include "tests/support/file_descriptor.h"

namespace tal::sql {
namespace {

using namespace std::chrono_literals;
using testing_support::FileDescriptor;

constexpr std::chrono::milliseconds kShort{20};
constexpr std::chrono::milliseconds kAmple{30'000};

// Answers every question by doing what the test says.
struct Behaviour {
  std::function<void()> onUsage = [] {};
  std::vector<OpenFile> files;
  std::vector<Client> clients;
  std::vector<SqlConnection> sqlConnections;
  std::promise<void> destroyed;
};

class TestEngine final : public Engine {
 public:
  explicit TestEngine(Behaviour& behaviour) : behaviour_(behaviour) {}
  ~TestEngine() override { behaviour_.destroyed.set_value(); }

  Information information() override { return {0, 0, 0, 0, 3}; }
  Version version() override { return {1, 2, 3}; }
  Usage usage() override {
    behaviour_.onUsage();
    Usage usage;
    usage.upTimeSeconds = 7;
    return usage;
  }
  Communication communication() override {
    Communication communication;
    communication.requests = 8;
    return communication;
  }
  std::vector<OpenFile> openFiles() override { return behaviour_.files; }
  std::vector<Client> clients() override { return behaviour_.clients; }
  std::vector<SqlConnection> sqlConnections() override { return behaviour_.sqlConnections; }

 private:
  Behaviour& behaviour_;
};

std::unique_ptr<Engine> bounded(Behaviour& behaviour, std::chrono::milliseconds limit = kAmple) {
  return openBounded([&](SocketCutter&) { return std::make_unique<TestEngine>(behaviour); }, limit);
}

Status statusOf(const std::function<void()>& action) {
  try {
    action();
    return Status::kSuccess;
  } catch (const Failure& failure) {
    return failure.status();
  }
}

TEST(BoundedEngineTest, PassesAnswersOn) {
  Behaviour behaviour;
  const auto engine = bounded(behaviour);

  EXPECT_EQ(engine->information().engineType, 3);
  EXPECT_EQ(engine->version().minor, 2);
  EXPECT_EQ(engine->usage().upTimeSeconds, 7U);
  EXPECT_EQ(engine->communication().requests, 8U);
}

TEST(BoundedEngineTest, DisarmsTexts) {
  const std::string armed = R"(a"b\c)";
  Behaviour behaviour;
  OpenFile& openFile = behaviour.files.emplace_back();
  openFile.name = armed;
  openFile.handles.emplace_back().clientName = armed;
  Client& someClient = behaviour.clients.emplace_back();
  someClient.id = someClient.networkAddress = someClient.sessionName = armed;
  someClient.handles.emplace_back().fileName = armed;
  SqlConnection& sql = behaviour.sqlConnections.emplace_back();
  sql.clientHost = sql.dataSource = sql.application = sql.networkAddress = sql.userName = armed;
  const auto engine = bounded(behaviour);

  const OpenFile file = engine->openFiles().at(0);
  const Client client = engine->clients().at(0);
  const SqlConnection connection = engine->sqlConnections().at(0);

  for (const std::string& text :
       {file.name, file.handles[0].clientName, client.id, client.networkAddress, client.sessionName,
        client.handles[0].fileName, connection.clientHost, connection.dataSource,
        connection.application, connection.networkAddress, connection.userName}) {
    EXPECT_EQ(text, "a?b?c");
  }
}

TEST(BoundedEngineTest, LeavesALateCallBehind) {
  Behaviour behaviour;
  int ends[2] = {-1, -1};
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  const FileDescriptor near(ends[0]);
  const FileDescriptor far(ends[1]);
  std::promise<void> goOn;
  behaviour.onUsage = [&] { goOn.get_future().wait(); };
  auto engine = openBounded(
      [&](SocketCutter& cutter) {
        cutter.watch(near.number());
        return std::make_unique<TestEngine>(behaviour);
      },
      kShort);

  const Status late = statusOf([&] { engine->usage(); });
  const Status later = statusOf([&] { engine->version(); });
  engine.reset();
  char byte = 0;
  const ssize_t cut = ::read(far.number(), &byte, 1);
  std::future<void> destroyed = behaviour.destroyed.get_future();
  const bool isEarly = destroyed.wait_for(0s) == std::future_status::ready;
  goOn.set_value();

  EXPECT_EQ(late, Status::kNoAnswer);
  EXPECT_EQ(later, Status::kConnectionLost);
  EXPECT_EQ(cut, 0);
  EXPECT_FALSE(isEarly);
  EXPECT_EQ(destroyed.wait_for(kAmple), std::future_status::ready);
}

TEST(BoundedEngineTest, LeavesALateOpeningBehind) {
  Behaviour behaviour;
  std::promise<void> goOn;

  const Status late = statusOf([&] {
    openBounded(
        [&](SocketCutter&) {
          goOn.get_future().wait();
          return std::make_unique<TestEngine>(behaviour);
        },
        kShort);
  });
  goOn.set_value();

  EXPECT_EQ(late, Status::kNoAnswer);
  EXPECT_EQ(behaviour.destroyed.get_future().wait_for(kAmple), std::future_status::ready);
}

TEST(BoundedEngineTest, ALostSessionStaysLost) {
  Behaviour behaviour;
  const auto engine = bounded(behaviour);
  behaviour.onUsage = [] { throw Failure(Status::kServerError); };
  const Status refused = statusOf([&] { engine->usage(); });
  behaviour.onUsage = [] { throw Failure(Status::kConnectionLost); };

  const Status lost = statusOf([&] { engine->usage(); });
  behaviour.onUsage = [] {};

  EXPECT_EQ(refused, Status::kServerError);
  EXPECT_EQ(lost, Status::kConnectionLost);
  EXPECT_EQ(statusOf([&] { engine->usage(); }), Status::kConnectionLost);
  EXPECT_EQ(behaviour.destroyed.get_future().wait_for(0s), std::future_status::ready);
}

TEST(BoundedEngineTest, ExplainsAFailureToOpen) {
  ::testing::internal::CaptureStderr();

  const Status status = statusOf([] {
    openBounded([](SocketCutter&) -> std::unique_ptr<Engine> {
      throw ExplainedFailure(Status::kCannotReach, "db1, port 5432: Connection refused");
    });
  });

  EXPECT_EQ(::testing::internal::GetCapturedStderr(),
            "libtal: db1, port 5432: Connection refused\n");
  EXPECT_EQ(status, Status::kCannotReach);
}

TEST(BoundedEngineTest, NoSignalReachesItsThread) {
  Behaviour behaviour;
  sigset_t mask;
  ::sigemptyset(&mask);
  behaviour.onUsage = [&] { ::pthread_sigmask(SIG_BLOCK, nullptr, &mask); };

  bounded(behaviour)->usage();

  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) {
    EXPECT_EQ(::sigismember(&mask, signal), 1) << signal;
  }
}

// Libraries clean up in such handlers, and the thread may be in the middle of them.
TEST(BoundedEngineDeathTest, ProcessEndsAtOnceWithAThreadLeftBehind) {
  const auto endWithALateCall = [] {
    ::atexit([] { ::_exit(9); });
    Behaviour behaviour;
    std::promise<void> never;
    behaviour.onUsage = [&] { never.get_future().wait(); };
    const auto engine = bounded(behaviour, kShort);
    statusOf([&] { engine->usage(); });
    ::exit(3);
  };

  EXPECT_EXIT(endWithALateCall(), testing::ExitedWithCode(3), "");
}

}  // namespace
}  // namespace tal::sql
