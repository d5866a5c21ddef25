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

Calls::Calls(const std::vector<Fault>& faults) {
  for (std::size_t place = 0; place < faults.size(); ++place) {
    const Fault& fault = faults[place];
    Numbers& numbers = faults_[indexOf(fault.call)][fault.refresh.value_or(0)];
    numbers.try_emplace(fault.at.value_or(0), Ordered{place, fault.status});
  }
}

Status Calls::count(Call call) {
  const auto [first, last] = listOf(call);
  if (call == first) {
    for (std::size_t at = indexOf(first); at <= indexOf(last); ++at) counters_[at].inRefresh = 0;
  }
  Counter& counter = counters_[indexOf(call)];
  ++counter.inAll;
  ++counter.inRefresh;
  if (faults_[indexOf(call)].empty()) return Status::kSuccess;

  const Ordered* found = nullptr;
  const std::uint64_t now = refresh(call);
  for (const Ordered* const fault :
       {faultAt(call, 0, 0), faultAt(call, 0, counter.inAll), faultAt(call, now, 0),
        faultAt(call, now, counter.inRefresh)}) {
    if (fault != nullptr && (found == nullptr || fault->place < found->place)) found = fault;
  }
  return found != nullptr ? found->status : Status::kSuccess;
}

std::uint64_t Calls::refresh(Call call) const noexcept {
  return std::max<std::uint64_t>(1, counters_[indexOf(listOf(call).first)].inAll);
}

const Calls::Ordered* Calls::faultAt(Call call, std::uint64_t refresh, std::uint64_t at) const {
  const Refreshes& refreshes = faults_[indexOf(call)];
  const auto numbers = refreshes.find(refresh);
  if (numbers == refreshes.end()) return nullptr;
  const auto fault = numbers->second.find(at);
  return fault != numbers->second.end() ? &fault->second : nullptr;
}

}  // namespace tal::sim
