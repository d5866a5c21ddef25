// Makes the answers of one refresh from a scenario, in time linear in their size.
#pragma once

#include <cstdint>
#include <vector>

#include "tal/engine.h"
#include "tal/sim/scenario.h"

namespace tal::sim {

// Refreshes count from 1.
Information informationAt(const InformationValues& values, std::uint64_t refresh);
Version versionAt(const VersionValues& values, std::uint64_t refresh);
Usage usageAt(const UsageValues& values, std::uint64_t refresh);
Communication communicationAt(const CommunicationValues& values, std::uint64_t refresh);
std::vector<OpenFile> filesAt(const std::vector<FileEntry>& entries, std::uint64_t refresh);
std::vector<Client> clientsAt(const std::vector<ClientEntry>& entries, std::uint64_t refresh);
std::vector<SqlConnection> sqlConnectionsAt(const std::vector<SqlConnectionEntry>& entries,
                                            std::uint64_t refresh);

}  // namespace tal::sim
