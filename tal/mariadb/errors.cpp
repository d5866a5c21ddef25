#include "tal/mariadb/errors.h"

#include <errmsg.h>
#include <mysqld_error.h>

#include <algorithm>
#include <array>

namespace tal::mariadb {
namespace {

struct Row {
  unsigned int error;
  Status status;
};

constexpr Status passedThrough(unsigned int error) { return static_cast<Status>(error); }

// A malformed packet or another version of the protocol comes from a program that is no MariaDB
// server. A missing table, column, variable or word means that the server is too old.
constexpr auto kRows = std::to_array<Row>({
    {CR_SOCKET_CREATE_ERROR,             Status::kCannotReach               },
    {CR_CONNECTION_ERROR,                Status::kCannotReach               },
    {CR_CONN_HOST_ERROR,                 Status::kCannotReach               },
    {CR_UNKNOWN_HOST,                    Status::kCannotReach               },
    {CR_VERSION_ERROR,                   Status::kOtherProtocol             },
    {CR_SERVER_HANDSHAKE_ERR,            Status::kOtherProtocol             },
    {CR_MALFORMED_PACKET,                Status::kOtherProtocol             },
    {ER_HANDSHAKE_ERROR,                 Status::kCannotReach               },
    {CR_SERVER_GONE_ERROR,               Status::kConnectionLost            },
    {CR_SERVER_LOST,                     Status::kConnectionLost            },
    {CR_SERVER_LOST_EXTENDED,            Status::kConnectionLost            },
    {ER_CONNECTION_KILLED,               Status::kConnectionLost            },
    {ER_NET_READ_ERROR,                  Status::kConnectionLost            },
    {ER_NET_READ_INTERRUPTED,            Status::kConnectionLost            },
    {ER_NET_ERROR_ON_WRITE,              Status::kConnectionLost            },
    {ER_NET_WRITE_INTERRUPTED,           Status::kConnectionLost            },
    {ER_STATEMENT_TIMEOUT,               Status::kNoAnswer                  },
    {ER_ACCESS_DENIED_ERROR,             Status::kLoginRefused              },
    {ER_ACCESS_DENIED_NO_PASSWORD_ERROR, Status::kLoginRefused              },
    {ER_HOST_NOT_PRIVILEGED,             Status::kLoginRefused              },
    {ER_NOT_SUPPORTED_AUTH_MODE,         Status::kLoginRefused              },
    {CR_AUTH_PLUGIN_CANNOT_LOAD,         Status::kLoginRefused              },
    {CR_AUTH_PLUGIN_ERR,                 Status::kLoginRefused              },
    {CR_PLUGIN_NOT_ALLOWED,              Status::kUnsafeLogin               },
    {ER_MUST_CHANGE_PASSWORD,            Status::kPasswordExpired           },
    {ER_MUST_CHANGE_PASSWORD_LOGIN,      Status::kPasswordExpired           },
    {ER_ACCOUNT_HAS_BEEN_LOCKED,         Status::kAccountLocked             },
    {ER_DBACCESS_DENIED_ERROR,           Status::kPrivilegeMissing          },
    {ER_TABLEACCESS_DENIED_ERROR,        Status::kPrivilegeMissing          },
    {ER_COLUMNACCESS_DENIED_ERROR,       Status::kPrivilegeMissing          },
    {ER_SPECIFIC_ACCESS_DENIED_ERROR,    Status::kPrivilegeMissing          },
    {ER_CON_COUNT_ERROR,                 Status::kNoConnectionSlot          },
    {ER_TOO_MANY_USER_CONNECTIONS,       Status::kNoConnectionSlot          },
    {ER_USER_LIMIT_REACHED,              Status::kNoConnectionSlot          },
    {ER_SERVER_SHUTDOWN,                 Status::kServerNotReady            },
    {ER_NORMAL_SHUTDOWN,                 Status::kServerNotReady            },
    {CR_SSL_CONNECTION_ERROR,            Status::kTlsFailed                 },
    {CR_NET_PACKET_TOO_LARGE,            Status::kAnswerTooLarge            },
    {ER_NET_PACKET_TOO_LARGE,            Status::kAnswerTooLarge            },
    {CR_OUT_OF_MEMORY,                   Status::kOutOfMemory               },
    {ER_NO_SUCH_TABLE,                   Status::kVersionNotSupported       },
    {ER_UNKNOWN_TABLE,                   Status::kVersionNotSupported       },
    {ER_BAD_FIELD_ERROR,                 Status::kVersionNotSupported       },
    {ER_UNKNOWN_SYSTEM_VARIABLE,         Status::kVersionNotSupported       },
    {ER_PARSE_ERROR,                     Status::kVersionNotSupported       },
    {ER_DISK_FULL,                       passedThrough(ER_DISK_FULL)        },
    {ER_OUTOFMEMORY,                     passedThrough(ER_OUTOFMEMORY)      },
    {ER_OUT_OF_RESOURCES,                passedThrough(ER_OUT_OF_RESOURCES) },
    {ER_HOST_IS_BLOCKED,                 passedThrough(ER_HOST_IS_BLOCKED)  },
    {ER_QUERY_INTERRUPTED,               passedThrough(ER_QUERY_INTERRUPTED)},
});

}  // namespace

Status statusOf(unsigned int error) {
  const auto* const row =
      std::find_if(kRows.begin(), kRows.end(), [error](const Row& r) { return r.error == error; });
  return row == kRows.end() ? Status::kServerError : row->status;
}

}  // namespace tal::mariadb
