// The processor time of a server.
#pragma once

#include <string>

namespace bench {

// Seconds in user and kernel mode that the process has used since its start, together with its
// children, the ended ones included. Throws std::runtime_error if there is no such process.
double serverCpuSeconds(const std::string& process);

}  // namespace bench
