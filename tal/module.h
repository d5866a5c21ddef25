// The engines that need a client library are modules: shared objects in the folder of this library,
// loaded when their scheme is first used, so that nobody else needs the libraries that they link.
// The modules include this, and the code that loads them.
#pragma once

#include <memory>
#include <string_view>

#include "tal/credentials.h"
#include "tal/engine.h"

namespace tal {

// Opens an engine; the argument is the rest of the server name after the scheme. Throws Failure.
using OpenEngine = std::unique_ptr<Engine>(std::string_view location,
                                           const Credentials& credentials);

// ABI tag: C++ objects pass between library and module, so both must be built with the same one.
inline constexpr const char* kAbiTag = TAL_ABI_TAG;

// The one function that a module exports. It returns the function that opens the module's engine,
// or nullptr if the library has another ABI tag.
using ModuleEntry = OpenEngine*(const char* abiTag) noexcept;
inline constexpr const char* kModuleEntryName = "talModule";

// The result of a module's entry; `open` is the function of the engine.
inline OpenEngine* unlessForeign(std::string_view abiTag, OpenEngine& open) noexcept {
  return abiTag == kAbiTag ? &open : nullptr;
}

}  // namespace tal

extern "C" tal::ModuleEntry talModule;
