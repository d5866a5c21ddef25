// Turns a collection into metrics.
#include <algorithm>
#include <cstdint>
#include <map>
#include <string>

#include "companions/exporter/collection.h"
#include "companions/exporter/metrics.h"
#include "companions/exporter/text_format.h"
#include "tal/recording/words.h"

namespace exporter {
namespace {

namespace recording = tal::recording;

constexpr std::uint32_t kHighestTotal = 4294967295U;  // the highest number of the interface
constexpr double kBytesOfMb = 1024 * 1024;
constexpr double kBytesOfKb = 1024;
constexpr double kMillisecondsOfSecond = 1000;
constexpr const char* kUnknownWord = "unknown";

// Values by a word, in the order of the words. Every word has a value, 0 if nothing was added, so
// that no series comes and goes. A code without a word is added to "unknown".
class ByWord {
 public:
  explicit ByWord(recording::Words words) : words_(words) {
    for (const recording::Word& each : words) values_.emplace(each.word, 0);
    values_.emplace(kUnknownWord, 0);
  }

  double& operator[](std::int64_t code) {
    const auto found = std::ranges::find_if(
        words_, [&](const recording::Word& each) { return each.code == code; });
    return values_.find(found == words_.end() ? kUnknownWord : found->word)->second;
  }

  void addTo(Metrics& metrics, Metric metric, const char* label) const {
    for (const auto& [word, value] : values_) {
      metrics.add(metric, value,
                  {
                      {label, std::string(word)}
      });
    }
  }

 private:
  recording::Words words_;
  std::map<std::string_view, double> values_;
};

void addTotal(Metrics& metrics, Metric metric, std::uint32_t total, Labels labels = {}) {
  if (total < kHighestTotal) metrics.add(metric, total, std::move(labels));
}

void addResource(Metrics& metrics, const char* resource, const tal::Gauge& gauge) {
  const Labels labels = {
      {"resource", resource}
  };
  metrics.add(Metric::kResourceCurrent, gauge.current, labels);
  metrics.add(Metric::kResourcePeak, gauge.peak, labels);
  if (gauge.maximum > 0) metrics.add(Metric::kResourceLimit, gauge.maximum, labels);
}

void addUsage(Metrics& metrics, const tal::Usage& usage) {
  metrics.add(Metric::kUptime, usage.upTimeSeconds);
  addResource(metrics, "users", usage.users);
  addResource(metrics, "files", usage.files);
  addResource(metrics, "handles", usage.handles);
  addResource(metrics, "transactions", usage.transactions);
  addResource(metrics, "clients", usage.clients);
  addResource(metrics, "worker_threads", usage.workerThreads);
  addResource(metrics, "locks", usage.locks);
  addResource(metrics, "sessions", usage.sessions);
  metrics.add(Metric::kData, usage.dataMb.current * kBytesOfMb);
  metrics.add(Metric::kDataPeak, usage.dataMb.peak * kBytesOfMb);
  if (usage.dataMb.maximum > 0) {
    metrics.add(Metric::kDataLimit, usage.dataMb.maximum * kBytesOfMb);
  }
}

std::string protocolName(std::uint32_t code) {
  const auto found = std::ranges::find_if(
      recording::kProtocolWords,
      [&](const recording::Word& each) { return each.code == std::int64_t{code}; });
  return found == recording::kProtocolWords.end() ? std::to_string(code) : std::string(found->word);
}

void addProtocols(Metrics& metrics, const std::vector<tal::Protocol>& protocols) {
  std::map<std::uint32_t, tal::Protocol> byCode;  // an engine may list a protocol twice
  for (const tal::Protocol& each : protocols) byCode.emplace(each.code, each);
  for (const auto& [code, protocol] : byCode) {
    const Labels labels = {
        {"protocol", protocolName(code)}
    };
    addTotal(metrics, Metric::kProtocolRequests, protocol.requests, labels);
    metrics.add(Metric::kProtocolSessions, protocol.currentSessions, labels);
    metrics.add(Metric::kProtocolSessionsPeak, protocol.peakSessions, labels);
  }
}

void addCommunication(Metrics& metrics, const tal::Communication& communication) {
  addTotal(metrics, Metric::kRequests, communication.requests);
  addTotal(metrics, Metric::kTimeouts, communication.timeouts);
  addTotal(metrics, Metric::kRecoveries, communication.recoveries);
  addResource(metrics, "remote_sessions", communication.remoteSessions);
  addResource(metrics, "communication_threads", communication.threads);
  addProtocols(metrics, communication.protocols);
}

template <typename Handle>
bool waits(const Handle& handle) {
  return handle.waitState == tal::wait_state::kRecord || handle.waitState == tal::wait_state::kFile;
}

void addHandles(Metrics& metrics, const std::vector<tal::OpenFile>& files) {
  ByWord openModes(recording::kOpenModeWords);
  ByWord recordLocks(recording::kRecordLockWords);
  ByWord waitStates(recording::kWaitStateWords);
  ByWord transactions(recording::kTransactionStateWords);
  for (const tal::OpenFile& file : files) {
    for (const tal::FileHandle& handle : file.handles) {
      ++openModes[handle.openMode];
      ++recordLocks[handle.recordLockType];
      ++waitStates[handle.waitState];
      ++transactions[handle.transactionState];
    }
  }
  openModes.addTo(metrics, Metric::kHandlesByOpenMode, "open_mode");
  recordLocks.addTo(metrics, Metric::kHandlesByRecordLock, "record_lock");
  waitStates.addTo(metrics, Metric::kHandlesByWait, "wait");
  transactions.addTo(metrics, Metric::kHandlesByTransaction, "transaction");
}

// Names that differ only after the length of a label count as one.
struct FileUse {
  std::size_t waiting = 0;
  std::size_t handles = 0;
};

void addMostWaitedFor(Metrics& metrics, const std::vector<tal::OpenFile>& files,
                      std::size_t count) {
  if (count == 0) return;
  std::map<std::string, FileUse> uses;
  for (const tal::OpenFile& file : files) {
    FileUse& use = uses[labelText(file.name)];
    use.handles += file.handles.size();
    use.waiting +=
        static_cast<std::size_t>(std::ranges::count_if(file.handles, waits<tal::FileHandle>));
  }
  std::vector<std::pair<std::string, FileUse>> sorted(uses.begin(), uses.end());
  std::ranges::stable_sort(sorted, std::ranges::greater(),
                           [](const auto& each) { return each.second.waiting; });
  sorted.resize(std::min(count, sorted.size()));
  for (const auto& [name, use] : sorted) {
    const Labels labels = {
        {"file", name}
    };
    metrics.add(Metric::kFileHandles, static_cast<double>(use.handles), labels);
    metrics.add(Metric::kFileHandlesWaiting, static_cast<double>(use.waiting), labels);
  }
}

void addFiles(Metrics& metrics, const std::vector<tal::OpenFile>& files, std::size_t fileCount) {
  double size = 0;
  for (const tal::OpenFile& file : files) size += file.sizeKb * kBytesOfKb;
  metrics.add(Metric::kOpenFiles, static_cast<double>(files.size()));
  metrics.add(Metric::kOpenFilesSize, size);
  addHandles(metrics, files);
  addMostWaitedFor(metrics, files, fileCount);
}

void addClientSums(Metrics& metrics, const std::vector<tal::Client>& clients) {
  struct Sum {
    Metric metric;
    const char* label;
    const char* word;
    std::uint32_t tal::Client::*field;
  };
  constexpr Sum kSums[] = {
      {Metric::kClientRecords,  "operation", "deleted",  &tal::Client::recordsDeleted },
      {Metric::kClientRecords,  "operation", "updated",  &tal::Client::recordsUpdated },
      {Metric::kClientRecords,  "operation", "inserted", &tal::Client::recordsInserted},
      {Metric::kClientRecords,  "operation", "read",     &tal::Client::recordsRead    },
      {Metric::kClientAccesses, "place",     "disk",     &tal::Client::diskAccesses   },
      {Metric::kClientAccesses, "place",     "cache",    &tal::Client::cacheAccesses  },
  };
  double locks = 0;
  for (const tal::Client& client : clients) locks += client.locksUsed;
  metrics.add(Metric::kClientLocks, locks);
  for (const auto& [metric, label, word, field] : kSums) {
    double sum = 0;
    for (const tal::Client& client : clients) sum += client.*field;
    metrics.add(metric, sum,
                {
                    {label, word}
    });
  }
}

void addClients(Metrics& metrics, const std::vector<tal::Client>& clients) {
  ByWord sites(recording::kSiteWords);
  ByWord transactions(recording::kTransactionStateWords);
  double waiting = 0;
  for (const tal::Client& client : clients) {
    ++sites[client.site & 0xffff];
    ++transactions[client.transactionState & 0xffff];
    waiting += std::ranges::any_of(client.handles, waits<tal::ClientHandle>) ? 1 : 0;
  }
  sites.addTo(metrics, Metric::kClientsBySite, "site");
  transactions.addTo(metrics, Metric::kClientsByTransaction, "transaction");
  metrics.add(Metric::kClientsWaiting, waiting);
  addClientSums(metrics, clients);
}

void addSqlConnections(Metrics& metrics, const std::vector<tal::SqlConnection>& connections) {
  ByWord counts(recording::kConnectionStatusWords);
  ByWord periods(recording::kConnectionStatusWords);
  double oldest = 0;
  for (const tal::SqlConnection& each : connections) {
    ++counts[each.status];
    double& longest = periods[each.status];
    longest = std::max(longest, each.periodMs / kMillisecondsOfSecond);
    oldest = std::max<double>(oldest, each.totalTime);
  }
  counts.addTo(metrics, Metric::kSqlConnections, "status");
  periods.addTo(metrics, Metric::kSqlLongestPeriod, "status");
  metrics.add(Metric::kSqlOldest, oldest);
}

void addEngine(Metrics& metrics, const recording::Moment& moment) {
  if (!moment.engine || !moment.version) return;
  const tal::Version& version = *moment.version;
  metrics.add(Metric::kEngine, 1,
              {
                  {"version", std::to_string(version.major) + '.' + std::to_string(version.minor) +
                                  '.' + std::to_string(version.build)},
                  {"type",    std::to_string(moment.engine->engineType)                           }
  });
}

void addScrape(Metrics& metrics, const Collection& collection) {
  metrics.add(Metric::kUp, collection.isUp() ? 1 : 0);
  metrics.add(Metric::kScrapeDuration, collection.seconds);
  for (const SectionResult& section : collection.sections) {
    const Labels labels = {
        {"section", section.name}
    };
    metrics.add(Metric::kSectionSuccess, section.status == 0 ? 1 : 0, labels);
    metrics.add(Metric::kSectionDuration, section.seconds, labels);
    metrics.add(Metric::kSectionStatus, section.status, labels);
    metrics.add(Metric::kSectionCalls, static_cast<double>(section.calls), labels);
  }
}

}  // namespace

void addCollection(Metrics& metrics, const Collection& collection, std::size_t fileCount) {
  addScrape(metrics, collection);
  if (!collection.isUp()) return;
  const recording::Moment& moment = collection.moment;
  addEngine(metrics, moment);
  if (moment.usage) addUsage(metrics, *moment.usage);
  if (moment.communication) addCommunication(metrics, *moment.communication);
  if (moment.files) addFiles(metrics, *moment.files, fileCount);
  if (moment.clients) addClients(metrics, *moment.clients);
  if (moment.sqlConnections) addSqlConnections(metrics, *moment.sqlConnections);
}

void addMissed(Metrics& metrics, double seconds) {
  metrics.add(Metric::kUp, 0);
  metrics.add(Metric::kScrapeDuration, seconds);
}

}  // namespace exporter
