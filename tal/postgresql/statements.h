// The statements, each in the .sql file of its name. There is one for each list or counter and none
// for each file or client, so that a refresh takes the same number of statements on every server.
#pragma once

#include <cstddef>
#include <string>

namespace tal::postgresql {

extern const char kLocks[];  // the common start of files, clients and usage
extern const char kFiles[];
extern const char kClients[];
extern const char kUsage[];
extern const char kCommunication[];
extern const char kSqlConnections[];
extern const char kAccount[];

// A statement as it is prepared on the server, once for each connection.
struct Statement {
  const char* name;
  std::string text;
  std::size_t columns;  // of its result; an answer with other columns is refused
};

const Statement& filesStatement();
// The same with the sizes that the server estimated at the last VACUUM or ANALYZE, because reading
// the true size of a relation locks it.
const Statement& filesWithEstimatedSizesStatement();
const Statement& clientsStatement();
const Statement& usageStatement();
const Statement& communicationStatement();
const Statement& sqlConnectionsStatement();
const Statement& accountStatement();

}  // namespace tal::postgresql
