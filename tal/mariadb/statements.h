// The statements that the engine asks, each in the .sql file of its name. There is one for each
// thing to know and none for each file or client, so that a refresh costs the same number of
// statements on every server. Rows come in no order, and a row's first column tells which part of
// the statement it comes from, where it has several.
#pragma once

namespace tal::mariadb {

extern const char kSession[];  // settings of the monitor's own session; answers no rows
extern const char kAccount[];  // fixed facts of the server; fails where a privilege is missing
extern const char kUsage[];
extern const char kCommunication[];
extern const char kFiles[];
extern const char kLocks[];  // for the files and the clients alike
extern const char kClients[];
extern const char kSqlConnections[];

}  // namespace tal::mariadb
