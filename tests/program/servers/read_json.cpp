// The JSON form of a report.
#include <nlohmann/json.hpp>

#include <set>
#include <stdexcept>

#include "tests/program/servers/report.h"

namespace servers_testing {
namespace {

using Json = nlohmann::json;

// The labels of the text form.
const std::map<std::string, std::string> kLabels = {
    {"page_size",                   "Page Size"                  },
    {"read_only_flag",              "Read-Only Flag"             },
    {"read_locks",                  "Record Locks"               },
    {"transaction_lock",            "Transaction Lock"           },
    {"physical_file_size_kb",       "Physical File Size KB"      },
    {"client_index",                "Client Index"               },
    {"client_name",                 "Client Name"                },
    {"open_mode",                   "Open Mode"                  },
    {"record_lock_type",            "Record Lock Type"           },
    {"wait_state",                  "Wait State"                 },
    {"transaction_state",           "Transaction State"          },
    {"session_name",                "Session Name"               },
    {"connection_number",           "Connection Number"          },
    {"task_number",                 "Task Number"                },
    {"PID",                         "PID"                        },
    {"site",                        "Site"                       },
    {"network_address",             "Network Address"            },
    {"locks_used",                  "Locks used"                 },
    {"records_read",                "Records Read"               },
    {"records_inserted",            "Records Inserted"           },
    {"records_deleted",             "Records Deleted"            },
    {"records_updated",             "Records Updated"            },
    {"disk_accesses",               "Disk Accesses"              },
    {"cache_accesses",              "Cache Accesses"             },
    {"user_name",                   "User Name"                  },
    {"client_host_name",            "Client Host Name"           },
    {"client_application",          "Client Application"         },
    {"data_source_name",            "Data Source Name"           },
    {"connection_status",           "Connection Status"          },
    {"active/idle_Period(ms)",      "Active/Idle Period(ms)"     },
    {"total_connection_time",       "Total Connection Time"      },
    {"engine_uptime",               "Engine Uptime"              },
    {"files",                       "Files"                      },
    {"handles",                     "Handles"                    },
    {"client",                      "Clients"                    },
    {"worker_threads",              "Worker Threads"             },
    {"user_count",                  "User Count"                 },
    {"session_count",               "Session Count"              },
    {"data_in_use_MB",              "Data in Use MB"             },
    {"transactions",                "Transactions"               },
    {"locks",                       "Locks"                      },
    {"total_requests_processed",    "Total Requests Processed"   },
    {"tcp_requests_processed",      "TCP/IP Requests Processed"  },
    {"total_connection_timeouts",   "Total Connection Timeouts"  },
    {"total_connection_recoveries", "Total Connection Recoveries"},
    {"communication_threads",       "Communication Threads"      },
    {"total_remote_sessions",       "Total Remote Sessions"      },
    {"tcp/ip_remote_sessions",      "TCP/IP Remote Sessions"     },
};

// The parser itself would keep the last of several members of one name.
class UniqueKeys {
 public:
  bool operator()(int /*depth*/, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) keys_.emplace_back();
    if (event == Json::parse_event_t::object_end) keys_.pop_back();
    if (event == Json::parse_event_t::key && !keys_.back().insert(parsed).second) {
      throw std::runtime_error("twice in one object: " + parsed.dump());
    }
    return true;
  }

 private:
  std::vector<std::set<std::string>> keys_;
};

std::string joined(const Json& texts, const std::string& between) {
  std::string result;
  for (const Json& text : texts) {
    if (!result.empty()) result += between;
    result += text.is_string() ? text.get<std::string>() : text.dump();
  }
  return result;
}

std::string valueOf(const Json& value) {
  if (value.is_boolean()) return value.get<bool>() ? "Yes" : "No";
  if (value.is_string()) return value.get<std::string>();
  if (value.is_array()) return joined(value, ", ");
  return value.dump();
}

// A counted resource, in the order of its members in the report.
std::string gaugeOf(const Json& gauge) {
  Json figures = {gauge.at("current"), gauge.at("peak")};
  if (gauge.contains("maximum")) figures.push_back(gauge.at("maximum"));
  if (gauge.size() != figures.size()) throw std::runtime_error("no gauge: " + gauge.dump());
  return joined(figures, " ");
}

Values valuesOf(const Json& object, const std::set<std::string>& others = {}) {
  Values values;
  for (const auto& [key, value] : object.items()) {
    if (others.contains(key)) continue;
    values[kLabels.at(key)] = value.is_object() ? gaugeOf(value) : valueOf(value);
  }
  return values;
}

void expectLength(const Json& list, const Json& announced) {
  if (list.size() != announced) throw std::runtime_error("not " + announced.dump() + " handles");
}

Entry fileOf(const Json& object) {
  Entry file{.name = capitals(object.at("active_file_name")),
             .values = valuesOf(object, {"active_file_name", "file_handles", "handle_info"})};
  for (const Json& handle : object.at("handle_info")) {
    file.handles.push_back({.values = valuesOf(handle)});
  }
  expectLength(object.at("handle_info"), object.at("file_handles"));
  return file;
}

Entry sessionOf(const Json& object) {
  Entry session{.values = valuesOf(object, {"client_id", "session_handles"})};
  session.values["Client ID"] = "";  // has a value in this form only, and always the same
  const Json& handles = object.at("session_handles");
  for (const Json& handle : handles.at("session_handles_info")) {
    session.handles.push_back({.name = capitals(handle.at("handle_file_name")),
                               .values = valuesOf(handle, {"handle_file_name"})});
  }
  expectLength(handles.at("session_handles_info"), handles.at("number_of_session_handles"));
  return session;
}

Entry connectionOf(const Json& object) { return {.values = valuesOf(object)}; }

std::vector<Entry> entriesOf(const Json& list, Entry (*entryOf)(const Json&)) {
  std::vector<Entry> entries;
  for (const Json& object : list) entries.push_back(entryOf(object));
  return entries;
}

Report reportOf(const Json& document) {
  const Json& files = document.at("active_files");
  const Json& sessions = document.at("vantor_active_sessions");
  const Json& connections = document.at("sql_connection_manager_active_sessions");
  return {
      .version = document.at("engine_version"),
      .announced = {{"files", files.at("number_of_active_files")},
                    {"sessions", sessions.at("number_of_vantor_active_sessions")},
                    {"connections",
                     connections.at("sql_connection_manager_number_of_active_sessions")}},
      .files = entriesOf(files.at("active_files_info"), fileOf),
      .sessions = entriesOf(sessions.at("active_session_info"), sessionOf),
      .connections = entriesOf(connections.at("session_info"), connectionOf),
      .usage = valuesOf(document.at("resource_usage")),
      .communication = valuesOf(document.at("communication_statistics")),
  };
}

}  // namespace

void requireJson(const std::string& text) {
  try {
    [[maybe_unused]] const Json parsed = Json::parse(text, UniqueKeys());
  } catch (const std::exception& error) {
    throw std::runtime_error(std::string(error.what()) + " in: " + text);
  }
}

Report readJson(const std::string& text) {
  try {
    return reportOf(Json::parse(text, UniqueKeys()));
  } catch (const std::exception& error) {
    throw std::runtime_error(std::string(error.what()) + " in: " + text);
  }
}

}  // namespace servers_testing
