// A scenario as it was read: everything that a simulated engine serves, at every refresh. The
// fields have the same names as those in tal/engine.h, so that both can be visited together.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "tal/engine.h"
#include "tal/sim/values.h"

namespace tal::sim {

// The most items that a scenario may stand for, each entry counted at its largest, and the most
// bytes that they may take.
inline constexpr std::uint64_t kItemLimit = 10'000'000;
inline constexpr std::uint64_t kByteLimit = 4ULL << 30U;

// The bytes of an item besides its texts. The size of the largest kind is used for all.
inline constexpr std::uint64_t kItemBytes = 256;

// How many items an entry stands for, and in which refreshes.
struct Presence {
  Number<std::uint32_t> count{1};
  std::uint32_t from = 1;
  std::uint32_t until = std::numeric_limits<std::uint32_t>::max();

  [[nodiscard]] std::uint32_t items(std::uint64_t refresh) const noexcept {
    return refresh < from || refresh > until ? 0 : count.at({refresh, 1, 1});
  }
};

struct GaugeValues {
  Number<std::uint32_t> current{0};
  Number<std::uint32_t> peak{0};
  Number<std::int32_t> maximum{0};
};

struct InformationValues {
  Number<std::uint8_t> flag{0};
  Number<std::int32_t> first{0};
  Number<std::int32_t> second{0};
  Number<std::int32_t> third{0};
  Number<std::int32_t> engineType{0};
};

struct VersionValues {
  Number<std::int32_t> major{0};
  Number<std::int32_t> minor{0};
  Number<std::int32_t> build{0};
};

struct UsageValues {
  GaugeValues users;
  GaugeValues files;
  GaugeValues handles;
  GaugeValues transactions;
  GaugeValues clients;
  GaugeValues workerThreads;
  GaugeValues locks;
  GaugeValues dataMb;
  GaugeValues sessions;
  Number<std::uint32_t> upTimeSeconds{0};
};

struct ProtocolEntry {
  Presence presence;
  Number<std::uint32_t> code{kTcpIpProtocol};
  Number<std::uint32_t> requests{0};
  Number<std::uint32_t> currentSessions{0};
  Number<std::uint32_t> peakSessions{0};
};

struct CommunicationValues {
  Number<std::uint32_t> requests{0};
  Number<std::uint32_t> counters[3] = {0, 0, 0};
  GaugeValues remoteSessions;
  GaugeValues threads;
  Number<std::uint32_t> timeouts{0};
  Number<std::uint32_t> recoveries{0};
  std::vector<ProtocolEntry> protocols;
};

// The common part of the handles of files and of clients.
struct HandleEntry {
  Presence presence;
  Number<std::uint8_t> openMode{open_mode::kNormal};
  Number<std::uint8_t> recordLockType{record_lock::kNone};
  Number<std::uint8_t> waitState{wait_state::kNone};
  Number<std::uint16_t> transactionState{transaction_state::kNone};
};

struct FileHandleEntry : HandleEntry {
  Number<std::uint32_t> clientIndex{0};
  Text clientName;
};

struct ClientHandleEntry : HandleEntry {
  Text fileName;
};

struct FileEntry {
  Presence presence;
  Text name;
  Number<std::uint32_t> pageSize{0};
  Number<std::uint8_t> readOnly{flag::kUnknown};
  Number<std::uint8_t> recordLocks{flag::kUnknown};
  Number<std::uint8_t> transactionLock{flag::kUnknown};
  Number<std::uint32_t> sizeKb{0};
  std::vector<FileHandleEntry> handles;
};

struct ClientEntry {
  Presence presence;
  Text id;
  Number<std::uint16_t> firstNumber{0};
  Number<std::uint16_t> taskNumber{0};
  Number<std::int32_t> site{site::kUnknown};
  Text networkAddress;
  Number<std::uint16_t> reserved{0};
  Number<std::uint32_t> recordsDeleted{0};
  Number<std::uint32_t> recordsUpdated{0};
  Number<std::uint32_t> recordsInserted{0};
  Number<std::uint32_t> recordsRead{0};
  Number<std::uint32_t> diskAccesses{0};
  Number<std::uint32_t> cacheAccesses{0};
  Number<std::uint32_t> locksUsed{0};
  Number<std::int32_t> transactionState{transaction_state::kNone};
  Number<std::uint32_t> processId{0};
  Number<std::uint32_t> connectionNumber{kUnknownConnectionNumber};
  Text sessionName;
  std::vector<ClientHandleEntry> handles;
};

struct SqlConnectionEntry {
  Presence presence;
  Text clientHost;
  Text dataSource;
  Text application;
  Text networkAddress;
  Text userName;
  Number<std::uint16_t> status{connection_status::kIdle};
  Number<std::uint32_t> periodMs{0};
  Number<std::uint32_t> totalTime{0};
};

// A status that is returned instead of an answer.
struct Fault {
  Call call = Call::kStop;
  std::optional<std::uint32_t> at;       // which call, from 1; every one without it
  std::optional<std::uint32_t> refresh;  // in which refresh, from 1; `at` then counts within it
  Status status = Status::kInternalError;
};

struct Scenario {
  InformationValues information;
  VersionValues version;
  UsageValues usage;
  CommunicationValues communication;
  std::vector<FileEntry> files;
  std::vector<ClientEntry> clients;
  std::vector<SqlConnectionEntry> sqlConnections;
  std::vector<Fault> faults;
};

// The answers of one refresh, which counts from 1, made in time linear in their size.
Information informationAt(const InformationValues& values, std::uint64_t refresh);
Version versionAt(const VersionValues& values, std::uint64_t refresh);
Usage usageAt(const UsageValues& values, std::uint64_t refresh);
Communication communicationAt(const CommunicationValues& values, std::uint64_t refresh);
std::vector<OpenFile> filesAt(const std::vector<FileEntry>& entries, std::uint64_t refresh);
std::vector<Client> clientsAt(const std::vector<ClientEntry>& entries, std::uint64_t refresh);
std::vector<SqlConnection> sqlConnectionsAt(const std::vector<SqlConnectionEntry>& entries,
                                            std::uint64_t refresh);

}  // namespace tal::sim
