#include "tests/program/fake/faults/effects.h"

#include <algorithm>
#include <ostream>

namespace program_tests {

std::ostream& operator<<(std::ostream& out, const EffectRow& row) { return out << row.function; }

const std::vector<EffectRow>& effectTable() {
  constexpr Effect kIgnored = Effect::kIgnored;
  constexpr Effect kEnds = Effect::kEndsList;
  constexpr Effect kDrops = Effect::kDropsEntry;
  constexpr Effect kFails = Effect::kEndsRun;
  static const std::vector<EffectRow> table = {
  // function, then what 7008, 7010, 7015 and any other status do
      {"TalStart",                    kIgnored, kIgnored, kIgnored, kIgnored},
      {"TalStop",                     kIgnored, kIgnored, kIgnored, kIgnored},
      {"TalConnectServer",            kFails,   kFails,   kFails,   kFails  },
      {"TalDisconnect",               kIgnored, kIgnored, kIgnored, kIgnored},
      {"TalGetEngineInformation",     kFails,   kFails,   kFails,   kFails  },
      {"TalGetZorbVersion",           kFails,   kFails,   kFails,   kFails  },
      {"TalGetZorbUsageEx2",          kFails,   kFails,   kFails,   kFails  },
      {"TalGetZorbCommStatEx",        kFails,   kFails,   kFails,   kFails  },
      {"TalGetOpenFilesData",         kFails,   kFails,   kFails,   kFails  },
      {"TalGetOpenFileName",          kEnds,    kFails,   kFails,   kFails  },
      {"TalGetFileInfo2",             kFails,   kFails,   kDrops,   kFails  },
      {"TalFreeOpenFilesData",        kIgnored, kIgnored, kIgnored, kIgnored},
      {"TalGetFileHandlesData",       kFails,   kFails,   kDrops,   kFails  },
      {"TalGetFileHandleInfo",        kEnds,    kFails,   kDrops,   kFails  },
      {"TalGetZorbClientsData",       kFails,   kFails,   kFails,   kFails  },
      {"TalGetZorbClientId",          kEnds,    kFails,   kFails,   kFails  },
      {"TalGetZorbClientInfo",        kFails,   kDrops,   kFails,   kFails  },
      {"TalGetZorbClientHandlesData", kFails,   kFails,   kFails,   kFails  },
      {"TalGetZorbClientHandleInfo",  kEnds,    kDrops,   kFails,   kFails  },
      {"TalFreeZorbClientsData",      kIgnored, kIgnored, kIgnored, kIgnored},
      {"TalGetSQLConnectionsData",    kFails,   kFails,   kFails,   kFails  },
      {"TalGetSQLConnectionInfo2",    kEnds,    kFails,   kFails,   kFails  },
      {"TalFreeSQLConnectionsData",   kIgnored, kIgnored, kIgnored, kIgnored},
  };
  return table;
}

Effect effectOf(const std::string& function, int status) {
  const auto row = std::find_if(effectTable().begin(), effectTable().end(),
                                [&](const EffectRow& r) { return r.function == function; });
  switch (status) {
    case 7008:
      return row->onNoEntry;
    case 7010:
      return row->onClientGone;
    case 7015:
      return row->onFileClosed;
    default:
      return row->onOther;
  }
}

}  // namespace program_tests
