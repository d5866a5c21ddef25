// The statements, each in a file of its own beside this one: kOpenFiles stands in open_files.sql.
#pragma once

#include <string>

namespace tal::postgresql {

extern const char kPrivileges[];
extern const char kUsage[];
extern const char kCommunication[];
extern const char kOpenFiles[];
extern const char kClients[];
extern const char kSqlConnections[];

// A statement as it is prepared on the server, once for each connection.
struct Statement {
  const char* name;
  const char* text;
};

// kOpenFiles with the sizes that the server estimated at the last VACUUM or ANALYZE: asking for a
// file's true size locks it.
const std::string& openFilesWithEstimatedSizes();

}  // namespace tal::postgresql
