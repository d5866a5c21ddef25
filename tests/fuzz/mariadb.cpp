// Rows of a MariaDB server. Lines of "--" part the statements: files, locks, clients, connections,
// figures.
#include <algorithm>
#include <cstdint>

#include "tal/mariadb/data_files.h"
#include "tal/mariadb/greeting.h"
#include "tal/mariadb/handles.h"
#include "tal/mariadb/read_figures.h"
#include "tal/mariadb/read_lists.h"
#include "tal/mariadb/read_locks.h"
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
  const auto files = tal::mariadb::readDataFiles(fileRows, kFacts);
  const tal::mariadb::TableFiles tableFiles(files);
  Table lockRows(answers.locks);
  const auto picture = tal::mariadb::readLocks(lockRows, kOwnConnection);
  require(picture.uses.size() <= 2 * answers.locks.size(), "locks are merged, never multiplied");
  const auto handles = tal::mariadb::handlesOf(picture, tableFiles);

  serve(tal::mariadb::openFilesOf(files, handles, kFacts));
  Table clientRows(answers.clients);
  auto clients = tal::mariadb::readClients(clientRows);
  tal::mariadb::addHandles(clients, handles, tableFiles);
  serve(clients);
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
  tal::mariadb::greetingIn(input);
  Answers answers;
  for (Rows* rows :
       {&answers.files, &answers.locks, &answers.clients, &answers.connections, &answers.figures}) {
    *rows = takeRows(input);
  }
  decode([&] { readLists(answers); });
  decode([&] {
    Table table(answers.connections);
    serve(tal::mariadb::readSqlConnections(table));
  });
  decode([&] { readStatistics(answers.figures); });
}

}  // namespace fuzzing
