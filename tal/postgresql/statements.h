// The statements, each in the .sql file of its name. There is one for each thing to know and none
// for each file or client, so that a refresh costs the same number of statements on every server.
#pragma once

#include <cstddef>
#include <string>

namespace tal::postgresql {

extern const char kLocks[];  // what files, clients and usage begin with
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
  std::size_t columns;  // of its result; an answer with others is none
};

const Statement& filesStatement();
// The same with the sizes that the server estimated at the last VACUUM or ANALYZE: asking for a
// relation's true size locks it.
const Statement& filesWithEstimatedSizesStatement();
const Statement& clientsStatement();
const Statement& usageStatement();
const Statement& communicationStatement();
const Statement& sqlConnectionsStatement();
const Statement& accountStatement();

}  // namespace tal::postgresql
