// Rows of a PostgreSQL server, the same ones for every statement.
#include "tal/postgresql/read_figures.h"
#include "tal/postgresql/read_lists.h"
#include "tests/fuzz/served.h"
#include "tests/fuzz/table.h"

namespace fuzzing {
namespace {

using testing_support::Table;

void requirePeak(const tal::Gauge& gauge) {
  require(gauge.peak >= gauge.current, "a peak is not below what was served");
}

// Twice, because the readers keep the peaks.
void readStatistics(const Rows& rows) {
  tal::postgresql::UsageReader usageReader;
  tal::postgresql::CommunicationReader communicationReader;
  for (int i = 0; i < 2; ++i) {
    Table usageRows(rows);
    const tal::Usage usage = usageReader.read(usageRows);
    requirePeak(usage.users);
    requirePeak(usage.dataMb);
    serve(usage);
    Table communicationRows(rows);
    const tal::Communication communication = communicationReader.read(communicationRows);
    requirePeak(communication.threads);
    serve(communication);
  }
}

}  // namespace

void run(std::string_view input) {
  const Rows rows = rowsOf(input);
  decode([&] {
    Table table(rows);
    serve(tal::postgresql::readFiles(table));
  });
  decode([&] {
    Table table(rows);
    serve(tal::postgresql::readClients(table));
  });
  decode([&] {
    Table table(rows);
    serve(tal::postgresql::readSqlConnections(table));
  });
  decode([&] { readStatistics(rows); });
}

}  // namespace fuzzing
