// The metrics that the exporter serves: their definitions, which stand here once, their values, and
// what these come from.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace exporter {

enum class Type : std::uint8_t { kGauge, kCounter, kInfo };

// The families in the order in which they are served.
enum class Metric : std::uint8_t {
  kUp,
  kScrapeDuration,
  kSectionSuccess,
  kSectionDuration,
  kSectionStatus,
  kSectionCalls,
  kEngine,
  kUptime,
  kResourceCurrent,
  kResourcePeak,
  kResourceLimit,
  kData,
  kDataPeak,
  kDataLimit,
  kRequests,
  kTimeouts,
  kRecoveries,
  kProtocolRequests,
  kProtocolSessions,
  kProtocolSessionsPeak,
  kOpenFiles,
  kOpenFilesSize,
  kHandlesByOpenMode,
  kHandlesByRecordLock,
  kHandlesByWait,
  kHandlesByTransaction,
  kFileHandles,
  kFileHandlesWaiting,
  kClientsBySite,
  kClientsByTransaction,
  kClientsWaiting,
  kClientRecords,
  kClientAccesses,
  kClientLocks,
  kSqlConnections,
  kSqlLongestPeriod,
  kSqlOldest,
  kExporterBuild,
  kExporterTargets,
  kExporterScrapes,
  kExporterFailures,
  kProcessCpu,
  kProcessMemory,
  kProcessDescriptors,
  kProcessStart,
};

// A family. The name has no "_total" or "_info", which its type adds; it ends in its unit.
struct Definition {
  Metric metric;
  const char* name;
  Type type;
  const char* unit;  // empty if there is none
  const char* help;
};

inline constexpr std::array kDefinitions = {
    Definition{Metric::kUp,                   "zelk_up",                                    Type::kGauge,   "",
               "Whether the engine was connected and at least one section was collected now."                                                                 },
    Definition{Metric::kScrapeDuration,       "zelk_scrape_duration_seconds",               Type::kGauge,   "seconds",
               "How long collecting took."                                                                                                                    },
    Definition{Metric::kSectionSuccess,       "zelk_scrape_section_success",                Type::kGauge,   "",
               "Whether the section was collected."                                                                                                           },
    Definition{Metric::kSectionDuration,      "zelk_scrape_section_duration_seconds",       Type::kGauge,
               "seconds",                                                                                              "How long collecting the section took."},
    Definition{Metric::kSectionStatus,        "zelk_scrape_section_status",                 Type::kGauge,   "",
               "Status of the call that ended the section; 0 is success."                                                                                     },
    Definition{Metric::kSectionCalls,         "zelk_scrape_section_calls",                  Type::kGauge,   "",
               "Calls of the engine interface by which the section was asked for."                                                                            },
    Definition{Metric::kEngine,               "zelk_engine",                                Type::kInfo,    "",        "Version and type of the engine."      },
    Definition{Metric::kUptime,               "zelk_uptime_seconds",                        Type::kGauge,   "seconds",
               "How long the engine has been running."                                                                                                        },
    Definition{Metric::kResourceCurrent,      "zelk_resource_current",                      Type::kGauge,   "",
               "How much of the resource is in use."                                                                                                          },
    Definition{Metric::kResourcePeak,         "zelk_resource_peak",                         Type::kGauge,   "",
               "The most of the resource that was in use at one time."                                                                                        },
    Definition{Metric::kResourceLimit,        "zelk_resource_limit",                        Type::kGauge,   "",
               "The most of the resource that can be in use; absent where there is no limit."                                                                 },
    Definition{Metric::kData,                 "zelk_data_bytes",                            Type::kGauge,   "bytes",   "Size of the data in use."             },
    Definition{Metric::kDataPeak,             "zelk_data_peak_bytes",                       Type::kGauge,   "bytes",
               "The most data that was in use at one time."                                                                                                   },
    Definition{Metric::kDataLimit,            "zelk_data_limit_bytes",                      Type::kGauge,   "bytes",
               "The most data that can be in use; absent where there is no limit."                                                                            },
    Definition{Metric::kRequests,             "zelk_requests",                              Type::kCounter, "",
               "Requests that the engine received."                                                                                                           },
    Definition{Metric::kTimeouts,             "zelk_communication_timeouts",                Type::kCounter, "",
               "Timeouts of the communication."                                                                                                               },
    Definition{Metric::kRecoveries,           "zelk_communication_recoveries",              Type::kCounter, "",
               "Recoveries of the communication."                                                                                                             },
    Definition{Metric::kProtocolRequests,     "zelk_protocol_requests",                     Type::kCounter, "",
               "Requests that the engine received over the protocol."                                                                                         },
    Definition{Metric::kProtocolSessions,     "zelk_protocol_sessions",                     Type::kGauge,   "",
               "Sessions over the protocol."                                                                                                                  },
    Definition{Metric::kProtocolSessionsPeak, "zelk_protocol_sessions_peak",                Type::kGauge,   "",
               "The most sessions over the protocol at one time."                                                                                             },
    Definition{Metric::kOpenFiles,            "zelk_open_files",                            Type::kGauge,   "",        "Open files."                          },
    Definition{Metric::kOpenFilesSize,        "zelk_open_files_size_bytes",                 Type::kGauge,   "bytes",
               "Size of the open files together."                                                                                                             },
    Definition{Metric::kHandlesByOpenMode,    "zelk_handles_by_open_mode",                  Type::kGauge,   "",
               "Handles of open files by the mode in which they were opened."                                                                                 },
    Definition{Metric::kHandlesByRecordLock,  "zelk_handles_by_record_lock",                Type::kGauge,   "",
               "Handles of open files by the record locks that they hold."                                                                                    },
    Definition{Metric::kHandlesByWait,        "zelk_handles_by_wait",                       Type::kGauge,   "",
               "Handles of open files by what they wait for."                                                                                                 },
    Definition{Metric::kHandlesByTransaction, "zelk_handles_by_transaction",                Type::kGauge,   "",
               "Handles of open files by the state of their transaction."                                                                                     },
    Definition{Metric::kFileHandles,          "zelk_file_handles",                          Type::kGauge,   "",
               "Handles of the file; only of the files that are most waited for, on request."                                                                 },
    Definition{Metric::kFileHandlesWaiting,   "zelk_file_handles_waiting",                  Type::kGauge,   "",
               "Handles that wait for the file or a record in it; for the same files."                                                                        },
    Definition{Metric::kClientsBySite,        "zelk_clients_by_site",                       Type::kGauge,   "",
               "Clients by where they are."                                                                                                                   },
    Definition{Metric::kClientsByTransaction, "zelk_clients_by_transaction",                Type::kGauge,   "",
               "Clients by the state of their transaction."                                                                                                   },
    Definition{Metric::kClientsWaiting,       "zelk_clients_waiting",                       Type::kGauge,   "",
               "Clients with a handle that waits."                                                                                                            },
    Definition{Metric::kClientRecords,        "zelk_client_records",                        Type::kGauge,   "",
               "Records that the present clients deleted, updated, inserted and read; falls when a "
               "client goes."                                                                                                                                 },
    Definition{Metric::kClientAccesses,       "zelk_client_accesses",                       Type::kGauge,   "",
               "Accesses of the present clients to the disk and to the cache; falls when a client "
               "goes."                                                                                                                                        },
    Definition{Metric::kClientLocks,          "zelk_client_locks",                          Type::kGauge,   "",
               "Locks that the present clients use."                                                                                                          },
    Definition{Metric::kSqlConnections,       "zelk_sql_connections",                       Type::kGauge,   "",
               "SQL connections by their status."                                                                                                             },
    Definition{Metric::kSqlLongestPeriod,     "zelk_sql_connection_longest_period_seconds",
               Type::kGauge,                                                                                "seconds",
               "The longest present activity or idleness of an SQL connection, by its status."                                                                },
    Definition{Metric::kSqlOldest,            "zelk_sql_connection_oldest_seconds",         Type::kGauge,   "seconds",
               "Age of the oldest SQL connection."                                                                                                            },
    Definition{Metric::kExporterBuild,        "zelk_exporter_build",                        Type::kInfo,    "",
               "Version of the exporter."                                                                                                                     },
    Definition{Metric::kExporterTargets,      "zelk_exporter_targets",                      Type::kGauge,   "",
               "Targets that the exporter serves."                                                                                                            },
    Definition{Metric::kExporterScrapes,      "zelk_exporter_scrapes",                      Type::kCounter, "",
               "Scrapes of targets that were answered."                                                                                                       },
    Definition{Metric::kExporterFailures,     "zelk_exporter_scrapes_failed",               Type::kCounter, "",
               "Scrapes of targets that were answered with zelk_up 0."                                                                                        },
    Definition{Metric::kProcessCpu,           "process_cpu_seconds",                        Type::kCounter, "seconds",
               "Processor time of the exporter."                                                                                                              },
    Definition{Metric::kProcessMemory,        "process_resident_memory_bytes",              Type::kGauge,   "bytes",
               "Memory of the exporter."                                                                                                                      },
    Definition{Metric::kProcessDescriptors,   "process_open_fds",                           Type::kGauge,   "",
               "Open descriptors of the exporter."                                                                                                            },
    Definition{Metric::kProcessStart,         "process_start_time_seconds",                 Type::kGauge,   "seconds",
               "When the exporter was started, in seconds since 1970 UTC."                                                                                    },
};

using Labels = std::vector<std::pair<const char*, std::string>>;

struct Sample {
  Labels labels;
  double value = 0;
};

// The values of one answer, by family. No two samples of a family have the same labels: the callers
// see to that.
class Metrics {
 public:
  void add(Metric metric, double value, Labels labels = {}) {
    samples_[static_cast<std::size_t>(metric)].push_back({std::move(labels), value});
  }

  [[nodiscard]] const std::vector<Sample>& samples(Metric metric) const {
    return samples_[static_cast<std::size_t>(metric)];
  }

 private:
  std::array<std::vector<Sample>, kDefinitions.size()> samples_;
};

struct Collection;

// Adds the scrape and every section that was collected. Adds by name the `fileCount` files that
// most handles wait for.
void addCollection(Metrics& metrics, const Collection& collection, std::size_t fileCount);

// Adds a scrape that reached its deadline.
void addMissed(Metrics& metrics, double seconds);

// Adds the exporter's own process.
void addProcess(Metrics& metrics);

}  // namespace exporter
