// The sections of a scenario, each read from the root table into its values. They throw
// ScenarioError for what does not fit.
#pragma once

#include "tal/sim/read_parts.h"
#include "tal/sim/scenario.h"
#include "tal/sim/table_reader.h"

namespace tal::sim {

void readInformation(TableReader& root, InformationValues& information);
void readVersion(TableReader& root, VersionValues& version);
void readUsage(TableReader& root, UsageValues& usage);
void readCommunication(TableReader& root, CommunicationValues& communication, ItemBudget& budget);
void readFiles(TableReader& root, std::vector<FileEntry>& files, ItemBudget& budget);
void readClients(TableReader& root, std::vector<ClientEntry>& clients, ItemBudget& budget);
void readSqlConnections(TableReader& root, std::vector<SqlConnectionEntry>& connections,
                        ItemBudget& budget);
void readFaults(TableReader& root, std::vector<Fault>& faults);

}  // namespace tal::sim
