// What an engine implements: plain C++ values behind the monitoring interface. The folder interface
// turns them into the interface's structures, keeps the snapshots and answers the look-ups in them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tal/status.h"

namespace tal {

// Codes of the interface. An engine uses only these; for an unknown value it uses the code that the
// reports show as "n/a".
namespace flag {
inline constexpr std::uint8_t kUnknown = 0;
inline constexpr std::uint8_t kNo = 78;   // 'N'
inline constexpr std::uint8_t kYes = 89;  // 'Y'
}  // namespace flag

namespace open_mode {
inline constexpr std::uint8_t kNormal = 0;
inline constexpr std::uint8_t kUnknown = 1;
inline constexpr std::uint8_t kAccelerated = 255;
inline constexpr std::uint8_t kReadOnly = 254;
inline constexpr std::uint8_t kVerify = 253;
inline constexpr std::uint8_t kExclusive = 252;
inline constexpr std::uint8_t kNormalNonTransactional = 248;
inline constexpr std::uint8_t kAcceleratedNonTransactional = 247;
inline constexpr std::uint8_t kReadOnlyNonTransactional = 246;
inline constexpr std::uint8_t kVerifyNonTransactional = 245;
inline constexpr std::uint8_t kExclusiveNonTransactional = 244;
inline constexpr std::uint8_t kNormalSharedLocking = 240;
inline constexpr std::uint8_t kAcceleratedSharedLocking = 239;
inline constexpr std::uint8_t kReadOnlySharedLocking = 238;
inline constexpr std::uint8_t kVerifySharedLocking = 237;
inline constexpr std::uint8_t kExclusiveSharedLocking = 236;
}  // namespace open_mode

namespace record_lock {
inline constexpr std::uint8_t kUnknown = 0;
inline constexpr std::uint8_t kMultiple = 77;  // 'M'
inline constexpr std::uint8_t kNone = 78;      // 'N'
inline constexpr std::uint8_t kSingle = 83;    // 'S'
}  // namespace record_lock

namespace wait_state {
inline constexpr std::uint8_t kNone = 0;
inline constexpr std::uint8_t kRecord = 1;
inline constexpr std::uint8_t kFile = 2;
inline constexpr std::uint8_t kUnknown = 3;
}  // namespace wait_state

namespace transaction_state {
inline constexpr std::uint16_t kNone = 0;
inline constexpr std::uint16_t kUnknown = 2;
inline constexpr std::uint16_t kExclusive = 19;
inline constexpr std::uint16_t kConcurrent = 1019;
}  // namespace transaction_state

namespace site {
inline constexpr std::int32_t kRemote = 0;
inline constexpr std::int32_t kLocal = 1;
inline constexpr std::int32_t kUnknown = 2;
}  // namespace site

namespace connection_status {
inline constexpr std::uint16_t kIdle = 0;
inline constexpr std::uint16_t kActive = 1;
inline constexpr std::uint16_t kDying = 2;
}  // namespace connection_status

inline constexpr std::uint32_t kSpxProtocol = 1;
inline constexpr std::uint32_t kTcpIpProtocol = 4;
inline constexpr std::uint32_t kNetbiosProtocol = 12;
// A connection number that the reports show as "n/a" (they do so above 32000).
inline constexpr std::uint32_t kUnknownConnectionNumber = 4294967295U;

// The engine information, of which the program reads only the engine type.
struct Information {
  std::uint8_t flag = 0;
  std::int32_t first = 0;
  std::int32_t second = 0;
  std::int32_t third = 0;
  std::int32_t engineType = 0;
};

struct Version {
  std::int32_t major = 0;
  std::int32_t minor = 0;
  std::int32_t build = 0;
};

// A counted resource. A maximum of 0 means "no limit".
struct Gauge {
  std::uint32_t current = 0;
  std::uint32_t peak = 0;
  std::int32_t maximum = 0;
};

struct Usage {
  Gauge users;
  Gauge files;
  Gauge handles;
  Gauge transactions;
  Gauge clients;
  Gauge workerThreads;
  Gauge locks;  // the interface has no field for its maximum
  Gauge dataMb;
  Gauge sessions;
  std::uint32_t upTimeSeconds = 0;
};

struct Protocol {
  std::uint32_t code = 0;
  std::uint32_t requests = 0;
  std::uint32_t currentSessions = 0;
  std::uint32_t peakSessions = 0;
};

struct Communication {
  std::uint32_t requests = 0;
  std::uint32_t counters[3] = {0, 0, 0};
  Gauge remoteSessions;
  Gauge threads;
  std::uint32_t timeouts = 0;
  std::uint32_t recoveries = 0;
  std::vector<Protocol> protocols;  // the interface carries the first 64
};

// Texts below may hold any bytes and any length: the interface cleans and cuts them to their
// fields.
struct FileHandle {
  std::uint32_t clientIndex = 0;
  std::uint8_t openMode = open_mode::kNormal;
  std::uint8_t recordLockType = record_lock::kNone;
  std::uint8_t waitState = wait_state::kNone;
  std::uint16_t transactionState = transaction_state::kNone;
  std::string clientName;
};

struct OpenFile {
  std::string name;
  std::uint32_t pageSize = 0;
  std::uint8_t readOnly = flag::kUnknown;
  std::uint8_t recordLocks = flag::kUnknown;
  std::uint8_t transactionLock = flag::kUnknown;
  std::uint32_t sizeKb = 0;
  std::vector<FileHandle> handles;
};

struct ClientHandle {
  std::uint8_t openMode = open_mode::kNormal;
  std::uint8_t recordLockType = record_lock::kNone;
  std::uint8_t waitState = wait_state::kNone;
  std::uint16_t transactionState = transaction_state::kNone;
  std::string fileName;
};

struct Client {
  std::string id;  // at most 11 bytes reach the interface
  std::uint16_t firstNumber = 0;
  std::uint16_t taskNumber = 0;
  std::int32_t site = site::kUnknown;
  std::string networkAddress;
  std::uint16_t reserved = 0;
  std::uint32_t recordsDeleted = 0;
  std::uint32_t recordsUpdated = 0;
  std::uint32_t recordsInserted = 0;
  std::uint32_t recordsRead = 0;
  std::uint32_t diskAccesses = 0;
  std::uint32_t cacheAccesses = 0;
  std::uint32_t locksUsed = 0;
  std::int32_t transactionState = transaction_state::kNone;
  std::uint32_t processId = 0;
  std::uint32_t connectionNumber = kUnknownConnectionNumber;
  std::string sessionName;
  std::vector<ClientHandle> handles;
};

struct SqlConnection {
  std::string clientHost;
  std::string dataSource;
  std::string application;
  std::string networkAddress;
  std::string userName;
  std::uint16_t status = connection_status::kIdle;
  std::uint32_t periodMs = 0;   // of the present activity or idleness, milliseconds
  std::uint32_t totalTime = 0;  // since the connection was made, seconds
};

// The 23 functions of the interface, in the order of its header.
enum class Call : std::uint8_t {
  kStart,
  kStop,
  kConnectServer,
  kDisconnect,
  kGetEngineInformation,
  kGetZorbVersion,
  kGetZorbUsageEx2,
  kGetZorbCommStatEx,
  kGetOpenFilesData,
  kGetOpenFileName,
  kGetFileInfo2,
  kFreeOpenFilesData,
  kGetFileHandlesData,
  kGetFileHandleInfo,
  kGetZorbClientsData,
  kGetZorbClientId,
  kGetZorbClientInfo,
  kGetZorbClientHandlesData,
  kGetZorbClientHandleInfo,
  kFreeZorbClientsData,
  kGetSQLConnectionsData,
  kGetSQLConnectionInfo2,
  kFreeSQLConnectionsData,
};

// One open connection to an engine. Every operation reports a failure by throwing Failure; a list
// is one consistent answer by a constant number of statements. Destroying it disconnects.
class Engine {
 public:
  Engine() = default;
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;
  virtual ~Engine() = default;

  virtual Information information() = 0;
  virtual Version version() = 0;
  virtual Usage usage() = 0;
  virtual Communication communication() = 0;
  virtual std::vector<OpenFile> openFiles() = 0;  // with their handles
  virtual std::vector<Client> clients() = 0;      // with their handles
  virtual std::vector<SqlConnection> sqlConnections() = 0;

  // The status that a call of the interface returns instead of being served. Only a simulation
  // returns anything but success.
  virtual Status answerInstead(Call /*call*/) { return Status::kSuccess; }
};

}  // namespace tal
