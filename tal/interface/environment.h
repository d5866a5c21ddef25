// The process's environment, as far as client libraries read it by themselves.
#pragma once

namespace tal::interface {

// Removes the variables that no parameter of a connection can switch off: those that make a client
// library load foreign code, and those that make it send settings to a server. Call it while no
// other thread may read the environment.
void removeClientVariables() noexcept;

}  // namespace tal::interface
