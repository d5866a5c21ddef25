// The words for the codes of the interface, in scenario files and in recordings.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "tal/engine.h"

namespace tal::recording {

// A word for a code. If a code has no word, its number is written.
struct Word {
  std::string_view word;
  std::int64_t code;
};
using Words = std::span<const Word>;

inline constexpr std::array kFlagWords = {
    Word{"no",      flag::kNo     },
    Word{"yes",     flag::kYes    },
    Word{"unknown", flag::kUnknown},
};

inline constexpr std::array kOpenModeWords = {
    Word{"normal",                        open_mode::kNormal                     },
    Word{"accelerated",                   open_mode::kAccelerated                },
    Word{"read-only",                     open_mode::kReadOnly                   },
    Word{"verify",                        open_mode::kVerify                     },
    Word{"exclusive",                     open_mode::kExclusive                  },
    Word{"normal non-transactional",      open_mode::kNormalNonTransactional     },
    Word{"accelerated non-transactional", open_mode::kAcceleratedNonTransactional},
    Word{"read-only non-transactional",   open_mode::kReadOnlyNonTransactional   },
    Word{"verify non-transactional",      open_mode::kVerifyNonTransactional     },
    Word{"exclusive non-transactional",   open_mode::kExclusiveNonTransactional  },
    Word{"normal shared locking",         open_mode::kNormalSharedLocking        },
    Word{"accelerated shared locking",    open_mode::kAcceleratedSharedLocking   },
    Word{"read-only shared locking",      open_mode::kReadOnlySharedLocking      },
    Word{"verify shared locking",         open_mode::kVerifySharedLocking        },
    Word{"exclusive shared locking",      open_mode::kExclusiveSharedLocking     },
    Word{"unknown",                       open_mode::kUnknown                    },
};

inline constexpr std::array kRecordLockWords = {
    Word{"none",     record_lock::kNone    },
    Word{"single",   record_lock::kSingle  },
    Word{"multiple", record_lock::kMultiple},
    Word{"unknown",  record_lock::kUnknown },
};

inline constexpr std::array kWaitStateWords = {
    Word{"none",    wait_state::kNone   },
    Word{"record",  wait_state::kRecord },
    Word{"file",    wait_state::kFile   },
    Word{"unknown", wait_state::kUnknown},
};

inline constexpr std::array kTransactionStateWords = {
    Word{"none",       transaction_state::kNone      },
    Word{"exclusive",  transaction_state::kExclusive },
    Word{"concurrent", transaction_state::kConcurrent},
    Word{"unknown",    transaction_state::kUnknown   },
};

inline constexpr std::array kSiteWords = {
    Word{"remote",  site::kRemote },
    Word{"local",   site::kLocal  },
    Word{"unknown", site::kUnknown},
};

inline constexpr std::array kConnectionStatusWords = {
    Word{"idle",   connection_status::kIdle  },
    Word{"active", connection_status::kActive},
    Word{"dying",  connection_status::kDying },
};

inline constexpr std::array kProtocolWords = {
    Word{"spx",     kSpxProtocol    },
    Word{"tcp/ip",  kTcpIpProtocol  },
    Word{"netbios", kNetbiosProtocol},
};

}  // namespace tal::recording
