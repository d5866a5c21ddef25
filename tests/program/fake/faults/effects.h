// What a status does to a run, function by function.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace program_tests {

enum class Effect {
  kServed,      // the call was answered
  kIgnored,     // the status changes nothing
  kEndsList,    // the list that is being read ends before this entry
  kDropsEntry,  // the file or client that the call is about is left out
  kEndsRun,     // the status is reported and the run ends
};

// One row for each function of the interface, in the order of its header.
struct EffectRow {
  const char* function;
  Effect onNoEntry;     // 7008
  Effect onClientGone;  // 7010
  Effect onFileClosed;  // 7015
  Effect onOther;       // every other status but 0
};

std::ostream& operator<<(std::ostream& out, const EffectRow& row);

const std::vector<EffectRow>& effectTable();

Effect effectOf(const std::string& function, int status);

}  // namespace program_tests
