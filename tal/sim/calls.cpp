#include "tal/sim/calls.h"

#include <algorithm>
#include <utility>

namespace tal::sim {
namespace {

struct CallName {
  std::string_view name;
  Call call;
};

constexpr std::array kCallNames = {
    CallName{"TalStop",                     Call::kStop                    },
    CallName{"TalConnectServer",            Call::kConnectServer           },
    CallName{"TalDisconnect",               Call::kDisconnect              },
    CallName{"TalGetEngineInformation",     Call::kGetEngineInformation    },
    CallName{"TalGetZorbVersion",           Call::kGetZorbVersion          },
    CallName{"TalGetZorbUsageEx2",          Call::kGetZorbUsageEx2         },
    CallName{"TalGetZorbCommStatEx",        Call::kGetZorbCommStatEx       },
    CallName{"TalGetOpenFilesData",         Call::kGetOpenFilesData        },
    CallName{"TalGetOpenFileName",          Call::kGetOpenFileName         },
    CallName{"TalGetFileInfo2",             Call::kGetFileInfo2            },
    CallName{"TalFreeOpenFilesData",        Call::kFreeOpenFilesData       },
    CallName{"TalGetFileHandlesData",       Call::kGetFileHandlesData      },
    CallName{"TalGetFileHandleInfo",        Call::kGetFileHandleInfo       },
    CallName{"TalGetZorbClientsData",       Call::kGetZorbClientsData      },
    CallName{"TalGetZorbClientId",          Call::kGetZorbClientId         },
    CallName{"TalGetZorbClientInfo",        Call::kGetZorbClientInfo       },
    CallName{"TalGetZorbClientHandlesData", Call::kGetZorbClientHandlesData},
    CallName{"TalGetZorbClientHandleInfo",  Call::kGetZorbClientHandleInfo },
    CallName{"TalFreeZorbClientsData",      Call::kFreeZorbClientsData     },
    CallName{"TalGetSQLConnectionsData",    Call::kGetSQLConnectionsData   },
    CallName{"TalGetSQLConnectionInfo2",    Call::kGetSQLConnectionInfo2   },
    CallName{"TalFreeSQLConnectionsData",   Call::kFreeSQLConnectionsData  },
};

constexpr std::size_t indexOf(Call call) { return static_cast<std::size_t>(call); }

// The lists: the call that takes the snapshot, and the call that releases it. The calls between
// read it.
constexpr std::array kLists = {
    std::pair{Call::kGetOpenFilesData,      Call::kFreeOpenFilesData     },
    std::pair{Call::kGetZorbClientsData,    Call::kFreeZorbClientsData   },
    std::pair{Call::kGetSQLConnectionsData, Call::kFreeSQLConnectionsData},
};

// The first and the last call that share their refreshes with `call`.
std::pair<Call, Call> listOf(Call call) {
  for (const auto& list : kLists) {
    if (call >= list.first && call <= list.second) return list;
  }
  return {call, call};
}

}  // namespace

std::optional<Call> callNamed(std::string_view name) {
  const auto found = std::ranges::find(kCallNames, name, &CallName::name);
  if (found == kCallNames.end()) return std::nullopt;
  return found->call;
}

Status Calls::count(Call call) {
  const auto [first, last] = listOf(call);
  if (call == first) {
    for (std::size_t at = indexOf(first); at <= indexOf(last); ++at) counters_[at].inRefresh = 0;
  }
  ++counters_[indexOf(call)].inAll;
  ++counters_[indexOf(call)].inRefresh;
  for (const Fault& fault : faults_) {
    if (fault.call == call && applies(fault)) return fault.status;
  }
  return Status::kSuccess;
}

std::uint64_t Calls::refresh(Call call) const noexcept {
  return std::max<std::uint64_t>(1, counters_[indexOf(listOf(call).first)].inAll);
}

bool Calls::applies(const Fault& fault) const noexcept {
  const Counter& counter = counters_[indexOf(fault.call)];
  if (!fault.refresh) return !fault.at || *fault.at == counter.inAll;
  return *fault.refresh == refresh(fault.call) && (!fault.at || *fault.at == counter.inRefresh);
}

}  // namespace tal::sim
