// The statements of the engine, each in the .sql file of its name. There is one for each list or
// counter and none for each file or client, so that a refresh takes the same number of statements
// on every server. Rows come in no order. If a statement has several parts, the first column of a
// row says which part it comes from.
#pragma once

namespace tal::mariadb {

extern const char kSession[];  // settings of the monitor's own session; returns no rows
extern const char kAccount[];  // fixed facts of the server; fails if a privilege is missing
extern const char kUsage[];
extern const char kCommunication[];
extern const char kFiles[];
extern const char kLocks[];  // for both files and clients
extern const char kClients[];
extern const char kSqlConnections[];

}  // namespace tal::mariadb
