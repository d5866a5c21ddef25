// A call of the engine interface as a record: its arguments, and the places for the answer. The 23
// functions are written once, in functions.cpp. Their answers come from serve(), which each program
// that links them defines.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "engine/tal.h"

namespace fake_engine {

enum class Kind {
  kStart,
  kStop,
  kConnect,
  kDisconnect,
  kAsk,      // about the engine, a file or a client
  kTake,     // a snapshot of a list, or of the handles of a file or client
  kEntry,    // one entry of a snapshot
  kRelease,  // of a snapshot of a list
};

enum class List { kNone, kFiles, kClients, kConnections };

using Structure = std::variant<std::monostate, TalVersion*, TalUsage*, TalCommStat*, TalFileInfo*,
                               TalFileHandleInfo*, tagTALCLIENTID*, TalClientInfo*,
                               TalClientHandleInfo*, TalSqlConnectionInfo*>;

struct Call {
  const char* function = "";
  Kind kind = Kind::kAsk;
  List list = List::kNone;

  // The arguments; empty or null if the function has no such parameter.
  std::optional<std::int32_t> handle = {};
  std::optional<std::uint32_t> index = {};
  const tagTALCLIENTID* client = nullptr;
  const char* texts[3] = {};  // server, user and password, or the name of a file

  // The places to fill; null if the function has no such parameter.
  std::int32_t* number = nullptr;  // a connection's handle, the engine's type
  std::uint32_t* count = nullptr;  // the length of a list, the size of the name buffer
  char* name = nullptr;
  Structure structure = {};
};

// Makes the same call to the next library. Allocates nothing.
class Next {
 public:
  virtual std::int16_t operator()() const = 0;

 protected:
  ~Next() = default;
};

// Answers a call.
std::int16_t serve(const Call& call, const Next& next);

// The call without the places that it fills, for instance "TalGetOpenFileName(7, 1)"; a client is
// written "text/first/task".
std::string textOf(const Call& call);

// The structure or name to fill; empty if the call fills numbers only.
std::span<char> filledBytes(const Call& call);

// Whether the caller has cleared it, as it must.
bool isCleared(const Call& call);

}  // namespace fake_engine
