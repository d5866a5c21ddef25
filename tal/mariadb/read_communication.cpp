#include "tal/mariadb/read_communication.h"

#include "tal/mariadb/named_values.h"

namespace tal::mariadb {

Communication CommunicationReader::read(sql::RowSource& rows, bool networking) {
  const NamedValues values(rows);
  Communication result;
  result.requests = sql::clampUnsigned(values.needed("QUESTIONS"));
  result.remoteSessions = tcpSessions_.sample(values["x_tcp_sessions"], values["MAX_CONNECTIONS"]);
  result.threads = hasThreadPool(values) ? poolThreads(values, poolThreads_) : connections(values);
  // The server counts every connection that ended without a formal close, including time-outs.
  result.timeouts = sql::clampUnsigned(values["ABORTED_CLIENTS"]);
  if (networking) {
    result.protocols.push_back({.code = kTcpIpProtocol,
                                .requests = sql::clampUnsigned(values["x_tcp_requests"]),
                                .currentSessions = result.remoteSessions.current,
                                .peakSessions = result.remoteSessions.peak});
  }
  return result;
}

}  // namespace tal::mariadb
