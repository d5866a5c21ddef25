// What each section costs the machine that zelk runs on, compared with the server's own
// command-line client that asks the same statements and prints their rows, a line for each column;
// how many statements a refresh is, as the server counts them; and what zelk costs the server.
//   server_cost ENGINE ZELK SERVER SOCKET_FOLDER PROGRAMS [SESSIONS [TABLES]]
// ENGINE is postgresql or mariadb, SERVER the process of the server, which the run script starts.
#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "bench/configuration.h"
#include "bench/refresh.h"
#include "bench/reports.h"
#include "bench/series.h"
#include "bench/servers/server.h"
#include "bench/servers/server_cpu.h"
#include "orv/Exception.h"
#include "tests/support/temporary_folder.h"

namespace {

using bench::Output;
using bench::Refresh;
using bench::Series;
using bench::Server;

constexpr int kTurns = 5;
constexpr int kRefreshes = 100;  // in one turn
constexpr int kSmallestRate = 5;
constexpr int kTimedRefreshes = 6;

// The figures of an engine that must not be exceeded.
struct Aims {
  double refresh;
  double program;
  long statements;
  double serverPercent = 1.0;
};

constexpr Aims kPostgresqlAims{.refresh = 0.8, .program = 1.0, .statements = 5};
constexpr Aims kMariadbAims{.refresh = 1.0, .program = 0.9, .statements = 8};

// The lowest and the highest of the sections' medians.
struct Range {
  double least = 1e9;
  double greatest = 0;

  void add(double value) {
    least = std::min(least, value);
    greatest = std::max(greatest, value);
  }
};

struct Section {
  const char* name;
  const char* key;
  bool ConfigData::*shown;
  std::vector<std::string> bench::Statements::*statements;
};

constexpr Section kSections[] = {
    {"files",          "FILE", &ConfigData::showFiles,          &bench::Statements::files         },
    {"sessions",       "SESS", &ConfigData::showSessions,       &bench::Statements::sessions      },
    {"connections",    "CONN", &ConfigData::showConnections,    &bench::Statements::connections   },
    {"resources",      "RESO", &ConfigData::showResources,      &bench::Statements::resources     },
    {"communications", "COMM", &ConfigData::showCommunications, &bench::Statements::communications},
};

double ownCpuSeconds() {
  constexpr double kMicrosecond = 1e-6;
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * kMicrosecond;
}

double cpuSecondsOf(const bench::Command& command) {
  return bench::runChecked(command, Output::kDevNull).cpuSeconds;
}

// Two costs of the same thing, and one over the other, turn by turn.
class Pair {
 public:
  void add(double ours, double theirs) {
    ours_.add(ours);
    theirs_.add(theirs);
    ratio_.add(ours / theirs);
  }

  [[nodiscard]] double ratio() const { return ratio_.median(); }

  void print() const {
    constexpr double kMilliseconds = 1e3;
    std::printf("  %7.2f %7.2f  %5.2f (%.2f to %.2f)", ours_.median() * kMilliseconds,
                theirs_.median() * kMilliseconds, ratio_.median(), ratio_.least(),
                ratio_.greatest());
  }

 private:
  Series ours_;
  Series theirs_;
  Series ratio_;
};

class Bench {
 public:
  Bench(Server& server, std::string zelk, std::string process)
      : server_(server), zelk_(std::move(zelk)), process_(std::move(process)) {}

  void measure(const Section& section) {
    const std::vector<std::string> statements = server_.statements().*section.statements;
    const std::string once = statementFile("once.sql", statements, 1);
    const std::string often = statementFile("often.sql", statements, 1 + kRefreshes);
    const std::string configuration = configurationFile({
        {section.key, "YES"}
    });

    Refresh refresh(server_.name(), section.shown);
    refresh.run();
    const long before = server_.statementsSent();
    for (int k = 0; k < kRefreshes; ++k) refresh.run();
    // A late good-bye of another client counts too: of so many refreshes it is no statement.
    const long sent = (server_.statementsSent() - before) / kRefreshes;

    Pair programs;
    Pair refreshes;
    for (int i = 0; i < kTurns; ++i) {
      const double started = ownCpuSeconds();
      for (int k = 0; k < kRefreshes; ++k) refresh.run();
      const double ours = (ownCpuSeconds() - started) / kRefreshes;
      const double theirsOnce = cpuSecondsOf(server_.client(once));
      const double theirs = (cpuSecondsOf(server_.client(often)) - theirsOnce) / kRefreshes;
      refreshes.add(ours, theirs);
      programs.add(cpuSecondsOf({zelk_, "-f", configuration, "-runonce"}), theirsOnce);
    }
    std::printf("%-14s  %10ld", section.name, sent);
    refreshes.print();
    programs.print();
    std::printf("\n");
    std::fflush(stdout);
    statements_ += sent;
    refreshRatios_.add(refreshes.ratio());
    programRatios_.add(programs.ratio());
  }

  // Also runs zelk for some refreshes at the smallest rate.
  void printSummary(const char* client, const Aims& aims) {
    const double server = serverPercent();
    std::printf("                                        aim     measured\n");
    std::printf("a refresh over %-14s      %8.2f     %.2f to %.2f\n", client, aims.refresh,
                refreshRatios_.least, refreshRatios_.greatest);
    std::printf("a program's run over %-14s%8.2f     %.2f to %.2f\n", client, aims.program,
                programRatios_.least, programRatios_.greatest);
    std::printf("statements of a refresh            %8ld     %ld\n", aims.statements, statements_);
    std::printf("the server's CPU every %d s, %%      %8.2f     %.2f\n\n", kSmallestRate,
                aims.serverPercent, server);
  }

 private:
  // Of one core, for reports with all sections and handles; what the server does without zelk is
  // part of it.
  double serverPercent() {
    const std::string configuration = configurationFile({
        {"FILE", "YES"                          },
        {"SESS", "YES"                          },
        {"CONN", "YES"                          },
        {"RESO", "YES"                          },
        {"COMM", "YES"                          },
        {"REFR", std::to_string(kSmallestRate)  },
        {"LIMI", std::to_string(kTimedRefreshes)}
    });
    const double before = bench::serverCpuSeconds(process_);
    cpuSecondsOf({zelk_, "-f", configuration});
    const double used = bench::serverCpuSeconds(process_) - before;
    return used / (kSmallestRate * kTimedRefreshes) * 100;
  }

  [[nodiscard]] std::string configurationFile(std::map<std::string, std::string> values) const {
    values.insert({
        {"SERV", server_.name()},
        {"USER", "zelk"        },
        {"NAME", "/dev/null"   }
    });
    return write("zelk.cfg", bench::configuration(values));
  }

  std::string statementFile(const std::string& name, const std::vector<std::string>& statements,
                            int times) const {
    std::string text;
    for (int i = 0; i < times; ++i) {
      for (const std::string& each : statements) text += each + ";\n";
    }
    return write(name, text);
  }

  // Returns the file's path.
  [[nodiscard]] std::string write(const std::string& name, const std::string& text) const {
    testing_support::writeFile(files_ / name, text);
    return files_ / name;
  }

  Server& server_;
  std::string zelk_;
  std::string process_;
  testing_support::TemporaryFolder files_;
  long statements_ = 0;
  Range refreshRatios_;
  Range programRatios_;
};

}  // namespace

int main(int argc, char** argv) {
  constexpr int kSessions = 200;
  constexpr int kTables = 500;
  if (argc < 6) {
    std::fputs(
        "usage: server_cost ENGINE ZELK SERVER SOCKET_FOLDER PROGRAMS"
        " [SESSIONS [TABLES]]\n",
        stderr);
    return 2;
  }
  try {
    const bench::Place place{argv[4], argv[5]};
    const int sessions = argc > 6 ? std::stoi(argv[6]) : kSessions;
    const int tables = argc > 7 ? std::stoi(argv[7]) : kTables;
    const bool isMariadb = std::string(argv[1]) == "mariadb";
    const auto server = isMariadb ? bench::loadMariadb(place, sessions, tables)
                                  : bench::loadPostgresql(place, sessions, tables);
    std::printf(
        "%s: %d sessions on %d tables; ms of CPU, medians of %d, and zelk's over the client's\n"
        "                statements     a refresh, client, ratio           "
        "a program's run, client, ratio\n",
        argv[1], sessions, tables, kTurns);
    Bench bench(*server, argv[2], argv[3]);
    for (const Section& section : kSections) bench.measure(section);
    bench.printSummary(isMariadb ? "mariadb -E" : "psql -x",
                       isMariadb ? kMariadbAims : kPostgresqlAims);
    return 0;
  } catch (const orv::Exception& failure) {
    std::fprintf(stderr, "server_cost: %s\n", failure.getDescription().toBytes().c_str());
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "server_cost: %s\n", failure.what());
  }
  return 1;
}
