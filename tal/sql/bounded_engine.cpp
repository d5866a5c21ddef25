#include "tal/sql/bounded_engine.h"
#include <algorithm>
#include <string>
#include <type_traits>
#include <utility>

#include "tal/sql/message.h"
#include "tal/sql/worker.h"
#include "tal/status.h"

namespace tal::sql {
namespace {

constexpr std::chrono::milliseconds kClosingLimit{1000};

void disarm(std::string& text) {
  std::ranges::replace_if(
      text, [](char byte) { return byte == '"' || byte == '\\'; }, '?');
}

void disarm(OpenFile& file) {
  disarm(file.name);
  for (FileHandle& handle : file.handles) disarm(handle.clientName);
}

void disarm(Client& client) {
  disarm(client.id);
  disarm(client.networkAddress);
  disarm(client.sessionName);
  for (ClientHandle& handle : client.handles) disarm(handle.fileName);
}

void disarm(SqlConnection& connection) {
  disarm(connection.clientHost);
  disarm(connection.dataSource);
  disarm(connection.application);
  disarm(connection.networkAddress);
  disarm(connection.userName);
}

template <typename Entry>
std::vector<Entry> disarmed(std::vector<Entry> entries) {
  for (Entry& entry : entries) disarm(entry);
  return entries;
}

// The data that the worker's jobs share.
struct Served {
  SocketCutter cutter;
  std::unique_ptr<Engine> engine;  // null before it is open, and after its session was lost

  template <typename Ask>
  auto answer(const Ask& ask) {
    if (!engine) throw Failure(Status::kConnectionLost);
    try {
      return ask(*engine);
    } catch (const Failure& failure) {
      if (failure.status() == Status::kConnectionLost) engine.reset();
      throw;
    }
  }
};

class BoundedEngine final : public Engine {
 public:
  BoundedEngine(OpenUnbounded open, std::chrono::milliseconds limit) : limit_(limit) {
    within([open = std::move(open)](Served& served) {
      served.engine = open(served.cutter);
      return true;
    });
  }

  ~BoundedEngine() override {
    if (!served_) return;
    worker_.run(
        [served = std::move(served_)]() mutable {
          served.reset();
          return true;
        },
        kClosingLimit);
  }

  Information information() override {
    return ask([](Engine& engine) { return engine.information(); });
  }
  Version version() override {
    return ask([](Engine& engine) { return engine.version(); });
  }
  Usage usage() override {
    return ask([](Engine& engine) { return engine.usage(); });
  }
  Communication communication() override {
    return ask([](Engine& engine) { return engine.communication(); });
  }
  std::vector<OpenFile> openFiles() override {
    return ask([](Engine& engine) { return disarmed(engine.openFiles()); });
  }
  std::vector<Client> clients() override {
    return ask([](Engine& engine) { return disarmed(engine.clients()); });
  }
  std::vector<SqlConnection> sqlConnections() override {
    return ask([](Engine& engine) { return disarmed(engine.sqlConnections()); });
  }

 private:
  template <typename Ask>
  std::invoke_result_t<Ask, Engine&> ask(Ask ask) {
    return within([ask](Served& served) { return served.answer(ask); });
  }

  template <typename Work>
  std::invoke_result_t<Work, Served&> within(Work work) {
    if (!served_) throw Failure(Status::kConnectionLost);
    auto result = worker_.run([served = served_, work] { return work(*served); }, limit_);
    if (!result) {
      served_->cutter.cut();
      served_.reset();
      throw Failure(Status::kNoAnswer);
    }
    return std::move(*result);
  }

  std::chrono::milliseconds limit_;
  std::shared_ptr<Served> served_ = std::make_shared<Served>();  // null after it was left behind
  Worker worker_;
};

}  // namespace

std::unique_ptr<Engine> openBounded(OpenUnbounded open, std::chrono::milliseconds limit) {
  try {
    return std::make_unique<BoundedEngine>(std::move(open), limit);
  } catch (const ExplainedFailure& failure) {
    tell(failure.explanation());
    throw;
  }
}

}  // namespace tal::sql
