#include <span>

#include "monitor/MonitorProcessor.h"

namespace {

constexpr int kMapCapacity = 101;
constexpr float kMapLoadFactor = 0.75F;
constexpr unsigned long kHighestConnectionNumber = 32000;

struct Row {
  int code;
  const char* text;
  const char* json;
};

// Codes of the engine interface: flags are character codes, open modes unsigned bytes, transaction
// states the operation numbers of the transaction's begin.

constexpr Row kBooleanStates[] = {
    {'N', "No",  "false"},
    {'Y', "Yes", "true" },
};

constexpr Row kOpenModes[] = {
    {0,   "Normal",                         "\"Normal\""                            },
    {255, "Accelerated",                    "\"Accelerated\""                       },
    {254, "Read-only",                      "\"Read-only\""                         },
    {253, "Verify",                         "\"Verify\""                            },
    {252, "Exclusive",                      "\"Exclusive\""                         },
    {248, "Normal, non-transactional",      "\"Normal\", \"non-transactional\""     },
    {247, "Accelerated, non-transactional", "\"Accelerated\", \"non-transactional\""},
    {246, "Read-only, non-transactional",   "\"Read-only\", \"non-transactional\""  },
    {245, "Verify, non-transactional",      "\"Verify\", \"non-transactional\""     },
    {244, "Exclusive, non-transactional",   "\"Exclusive\", \"non-transactional\""  },
    {240, "Normal, shared locking",         "\"Normal\", \"shared locking\""        },
    {239, "Accelerated, shared locking",    "\"Accelerated\", \"shared locking\""   },
    {238, "Read-only, shared locking",      "\"Read-only\", \"shared locking\""     },
 // One quote short (deliberate: parsers rely on it).
    {237, "Verify, shared locking",         "\"Verify, \"shared locking\""          },
    {236, "Exclusive, shared locking",      "\"Exclusive, \"shared locking\""       },
};

constexpr Row kRecordLockTypes[] = {
    {'N', "None",           "None"          },
    {'S', "Single Lock",    "Single Lock"   },
    {'M', "Multiple Locks", "Multiple Locks"},
};

constexpr Row kTransactionStates[] = {
    {0,    "None",            "None"           },
    {19,   "Exclusive Lock",  "Exclusive Lock" },
    {1019, "Concurrent Lock", "Concurrent Lock"},
};

constexpr Row kWaitStates[] = {
    {0, "None",   "None"  },
    {1, "Record", "Record"},
    {2, "File",   "File"  },
};

constexpr Row kSites[] = {
    {0, "Remote", "Remote"},
    {1, "Local",  "Local" },
};

constexpr Row kProtocolRequests[] = {
    {1,  "SPX Requests Processed",     "SPX Requests Processed"    },
    {4,  "TCP/IP Requests Processed",  "TCP/IP Requests Processed" },
    {12, "NETBIOS Requests Processed", "NETBIOS Requests Processed"},
};

constexpr Row kProtocolSessions[] = {
    {1,  "SPX Remote Sessions:            ", "SPX Remote Sessions:            "},
    {4,  "TCP/IP Remote Sessions:         ", "TCP/IP Remote Sessions:         "},
 // One blank short (deliberate).
    {12, "NETBIOS Remote Sessions:       ",  "NETBIOS Remote Sessions:       " },
};

orv::Reference<orv::collections::IntegerHashMap> mapOf(std::span<const Row> rows, bool json) {
  auto map = orv::makeReference<orv::collections::IntegerHashMap>(kMapCapacity, kMapLoadFactor);
  for (const Row& row : rows) map->put(row.code, json ? row.json : row.text);
  return map;
}

}  // namespace

void MonitorProcessor::createMaps(bool json) {
  booleanStateMap_ = mapOf(kBooleanStates, json);
  openModeMap_ = mapOf(kOpenModes, json);
  recordLockTypeMap_ = mapOf(kRecordLockTypes, json);
  transStateMap_ = mapOf(kTransactionStates, json);
  waitStateMap_ = mapOf(kWaitStates, json);
  siteMap_ = mapOf(kSites, json);
  protocolRequestMap_ = mapOf(kProtocolRequests, json);
  protocolSessionMap_ = mapOf(kProtocolSessions, json);
}

orv::String MonitorProcessor::getMapValue(
    const orv::Reference<orv::collections::IntegerHashMap>& map, int code) {
  const orv::String* text = map->get(code);
  return text != nullptr ? *text : s_notAvailable;
}

orv::String MonitorProcessor::getBooleanStateString(int code) const {
  return getMapValue(booleanStateMap_, code);
}

orv::String MonitorProcessor::getReadOnlyFlagString(int code) const {
  return getBooleanStateString(code);
}

orv::String MonitorProcessor::getTransactionLockString(int code) const {
  return getBooleanStateString(code);
}

orv::String MonitorProcessor::getRecordLocksString(int code) const {
  return getBooleanStateString(code);
}

orv::String MonitorProcessor::getOpenModeString(int code) const {
  return getMapValue(openModeMap_, code);
}

orv::String MonitorProcessor::getRecordLockTypeString(int code) const {
  return getMapValue(recordLockTypeMap_, code);
}

orv::String MonitorProcessor::getTransStateString(int code) const {
  return getMapValue(transStateMap_, code);
}

orv::String MonitorProcessor::getWaitStateString(int code) const {
  return getMapValue(waitStateMap_, code);
}

orv::String MonitorProcessor::getSiteString(int code) const { return getMapValue(siteMap_, code); }

orv::String MonitorProcessor::getProtocolRequestString(int code) const {
  return getMapValue(protocolRequestMap_, code);
}

orv::String MonitorProcessor::getProtocolSessionString(int code) const {
  return getMapValue(protocolSessionMap_, code);
}

orv::String MonitorProcessor::getStatusString(int status) {
  if (status == 0) return "Idle";
  if (status == 1) return "Active";
  return "Dying";
}

orv::String MonitorProcessor::getMaxValue(long maximum) {
  return maximum == 0 ? "unlimited" : orv::String::valueOf(maximum);
}

orv::String MonitorProcessor::getConnectionString(unsigned long number) {
  return number > kHighestConnectionNumber ? s_notAvailable : orv::String::valueOf(number);
}
