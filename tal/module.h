// The engines that need a client library are modules: shared objects beside the library itself,
// opened when their scheme is first asked for, so that nobody else pays for what they link.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tal/connect.h"
#include "tal/engine.h"

namespace tal {

// Opens an engine from what follows the scheme in the server name. Throws Failure.
using OpenEngine = std::unique_ptr<Engine>(std::string_view location,
                                           const Credentials& credentials);

// Names what passes between library and modules as C++ objects: they fit each other only where this
// text is the same.
inline constexpr const char* kModuleInterface = TAL_MODULE_INTERFACE;

// The one function that a module lets out. It returns what opens the module's engine, or nullptr to
// a library whose kModuleInterface is not its own.
using ModuleEntry = OpenEngine*(const char* interface) noexcept;
inline constexpr const char* kModuleEntryName = "talModule";

// What a module's entry returns; `open` is the engine's function.
inline OpenEngine* unlessForeign(std::string_view interface, OpenEngine& open) noexcept {
  return interface == kModuleInterface ? &open : nullptr;
}

// Opens the module of that file name and nothing but it: it lies in the folder of this library. It
// stays loaded until the process ends. Throws Failure kModuleMissing, after a line on standard
// error that says what is missing, or kModuleForeign.
OpenEngine& moduleOf(const std::string& fileName);

}  // namespace tal

extern "C" tal::ModuleEntry talModule;
