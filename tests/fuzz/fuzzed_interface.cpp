// How the fuzzed engine is asked: every rule of the interface is required of the caller.
#include <algorithm>
#include <cstring>
#include <span>
#include <string_view>

#include "tests/fuzz/fuzzed_engine.h"
#include "tests/fuzz/target.h"
#include "tests/support/fake_engine/call.h"

namespace fuzzing {
namespace {

using fake_engine::Call;
using fake_engine::Kind;
using fake_engine::List;

// The releasing calls give a status that nobody may care about.
constexpr std::int16_t kIgnored = -1;

Snapshot& snapshotOf(List list) {
  switch (list) {
    case List::kFiles:
      return engine().files;
    case List::kClients:
      return engine().clients;
    default:
      return engine().connections;
  }
}

std::int16_t start() {
  require(!engine().isStarted, "the library is started once");
  engine().isStarted = true;
  return engine().next().status;
}

// Gives a handle also with a status that is an error: a caller must not take it.
std::int16_t connect(const Call& call) {
  for (const char* const text : call.texts) {
    require(std::strlen(text) <= 255, "credentials have their limit");
  }
  const Answer answer = engine().next();
  *call.number = static_cast<std::int32_t>(numberIn(answer.bytes, 7));
  engine().handle = *call.number;
  return answer.status;
}

void requireOwner(const Call& call) {
  if (call.list == List::kFiles && call.texts[0] != nullptr) {
    require(engine().files.isTaken && call.texts[0] == engine().fileName,
            "a file is asked for by the name that it was given");
  }
  if (call.client != nullptr) {
    require(engine().clients.isTaken &&
                std::memcmp(call.client, &engine().client, sizeof *call.client) == 0,
            "a client is asked for by the identifier that it was given");
  }
}

bool isPart(const Call& call) { return call.texts[0] != nullptr || call.client != nullptr; }

std::int16_t take(const Call& call) {
  Snapshot& snapshot = snapshotOf(call.list);
  require(isPart(call) || !snapshot.isTaken, "a snapshot is released before the next one is taken");
  const Answer answer = engine().next();
  *call.count = static_cast<std::uint32_t>(numberIn(answer.bytes, UINT32_MAX));
  if (!isPart(call)) snapshot = {answer.status == 0, *call.count};
  return answer.status;
}

std::int16_t release(Snapshot& snapshot) {
  require(snapshot.isTaken, "only what was taken is released");
  snapshot.isTaken = false;
  return kIgnored;
}

void requireEntry(const Call& call) {
  const Snapshot& snapshot = snapshotOf(call.list);
  require(isPart(call) || (snapshot.isTaken && *call.index < snapshot.count),
          "only entries that were announced are read");
}

void noteWellFormed(bool isWellFormed) {
  engine().isWellFormed = engine().isWellFormed && isWellFormed;
}

// No byte of a field that is printed, up to its NUL, means something in JSON.
template <std::size_t kSize>
void noteText(const char (&field)[kSize]) {
  noteWellFormed(std::ranges::all_of(std::string_view(field, strnlen(field, kSize)), [](char byte) {
    return byte >= ' ' && byte < '\x7f' && byte != '"' && byte != '\\';
  }));
}

void noteOpenMode(std::uint8_t mode) {
  constexpr std::string_view kModes = "\xff\xfe\xfd\xfc\xf8\xf7\xf6\xf5\xf4\xf0\xef\xee";
  noteWellFormed(mode == 0 || kModes.find(static_cast<char>(mode)) != std::string_view::npos);
}

// Notes what was served. The pointers are those of the variant: to const, none would be taken.
struct Noter {
  void operator()(const auto& /*other*/) const {}
  void operator()(TalCommStat* statistics) const {
    const std::size_t count = std::min<std::size_t>(statistics->protocolCount, TAL_PROTOCOL_COUNT);
    engine().namedProtocols += static_cast<int>(std::ranges::count_if(
        std::span(statistics->protocols).first(count), [](const TalProtocol& protocol) {
          return protocol.code == 1 || protocol.code == 4 || protocol.code == 12;
        }));
  }
  void operator()(TalFileInfo* info) const {
    for (const std::uint8_t flag : {info->readOnly, info->recordLocks, info->transactionLock}) {
      noteWellFormed(flag == 'Y' || flag == 'N');
    }
  }
  void operator()(TalFileHandleInfo* info) const {
    noteText(info->clientName);
    noteOpenMode(info->openMode);
  }
  void operator()(tagTALCLIENTID* client) const { engine().client = *client; }
  void operator()(TalClientInfo* info) const {
    noteText(info->networkAddress);
    noteText(info->sessionName);
  }
  void operator()(TalClientHandleInfo* info) const {
    noteText(info->fileName);
    noteOpenMode(info->openMode);
  }
  void operator()(TalSqlConnectionInfo* info) const {
    noteText(info->clientHost);
    noteText(info->dataSource);
    noteText(info->application);
    noteText(info->networkAddress);
    noteText(info->userName);
  }
};

void noteName(const Call& call) {
  require(*call.count == TAL_NAME_SIZE, "the size of the name buffer is passed");
  *call.count = UINT32_MAX;
  const auto& name = *reinterpret_cast<char(*)[TAL_NAME_SIZE]>(call.name);
  engine().fileName.assign(name, strnlen(name, TAL_NAME_SIZE));
  noteText(name);
}

std::int16_t give(const Call& call, const Answer& answer) {
  require(fake_engine::isCleared(call), "a structure is cleared before a call");
  if (call.number != nullptr) {
    *call.number = static_cast<std::int32_t>(numberIn(answer.bytes, 0));
  }
  if (answer.status == 0) {
    fill(fake_engine::filledBytes(call), answer.bytes);
    std::visit(Noter(), call.structure);
  }
  if (call.name != nullptr) noteName(call);
  return answer.status;
}

}  // namespace
}  // namespace fuzzing

std::int16_t fake_engine::serve(const Call& call, const Next& /*next*/) {
  using fuzzing::engine;
  fuzzing::require(!call.handle || *call.handle == engine().handle,
                   "the engine is asked by its handle");
  fuzzing::requireOwner(call);
  switch (call.kind) {
    case Kind::kStart:
      return fuzzing::start();
    case Kind::kStop:
      ++engine().stops;
      return fuzzing::kIgnored;
    case Kind::kConnect:
      return fuzzing::connect(call);
    case Kind::kDisconnect:
      ++engine().disconnects;
      return fuzzing::kIgnored;
    case Kind::kTake:
      return fuzzing::take(call);
    case Kind::kRelease:
      return fuzzing::release(fuzzing::snapshotOf(call.list));
    case Kind::kEntry:
      fuzzing::requireEntry(call);
      return fuzzing::give(call, engine().nextEntry());
    default:
      return fuzzing::give(call, engine().next());
  }
}
