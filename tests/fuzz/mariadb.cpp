// Rows of a MariaDB server. Lines of "--" part the statements: files, locks, clients, connections,
// figures.
#include <algorithm>
#include <cstdint>

#include "tal/mariadb/clients.h"
#include "tal/mariadb/communication.h"
#include "tal/mariadb/open_files.h"
#include "tal/mariadb/sql_connections.h"
#include "tal/mariadb/table_handles.h"
#include "tal/mariadb/table_locks.h"
#include "tal/mariadb/usage.h"
#include "tests/fuzz/served.h"
#include "tests/fuzz/table.h"

namespace fuzzing {
namespace {

using testing_support::Table;

constexpr std::int64_t kOwnConnection = 1;
const tal::mariadb::ServerFacts kFacts{
    .innodbReadOnly = false, .networking = true, .ariaBlockSize = 8192, .myisamBlockSize = 1024};

struct Answers {
  Rows files;
  Rows locks;
  Rows clients;
  Rows connections;
  Rows figures;
};

Rows takeRows(std::string_view& input) {
  constexpr std::string_view kEnd = "--\n";
  const std::string_view lines = input.substr(0, input.find(kEnd));
  input.remove_prefix(std::min(lines.size() + kEnd.size(), input.size()));
  return rowsOf(lines);
}

void readLists(const Answers& answers) {
  Table fileRows(answers.files);
  const auto files = tal::mariadb::decodeFiles(fileRows, kFacts);
  const tal::mariadb::TableFiles tableFiles(files);
  Table lockRows(answers.locks);
  const auto picture = tal::mariadb::decodeLocks(lockRows, kOwnConnection);
  const auto uses = tal::mariadb::mergeLocks(picture.locks);
  require(uses.size() <= picture.locks.size(), "locks are merged, never made");
  const auto handles = tal::mariadb::handlesOf(uses, tableFiles);

  serve(tal::mariadb::openFilesOf(files, handles, picture, kFacts));
  Table clientRows(answers.clients);
  serve(tal::mariadb::clientsOf(tal::mariadb::decodeClients(clientRows), handles, tableFiles));
}

// Twice, because the readers keep the peaks.
void readStatistics(const Rows& rows) {
  tal::mariadb::UsageReader usageReader;
  tal::mariadb::CommunicationReader communicationReader;
  for (const bool networking : {true, false}) {
    Table usageRows(rows);
    serve(usageReader.read(usageRows));
    Table communicationRows(rows);
    serve(communicationReader.read(communicationRows, networking));
  }
}

}  // namespace

void run(std::string_view input) {
  Answers answers;
  for (Rows* rows :
       {&answers.files, &answers.locks, &answers.clients, &answers.connections, &answers.figures}) {
    *rows = takeRows(input);
  }
  decode([&] { readLists(answers); });
  decode([&] {
    Table table(answers.connections);
    serve(tal::mariadb::decodeSqlConnections(table));
  });
  decode([&] { readStatistics(answers.figures); });
}

}  // namespace fuzzing
