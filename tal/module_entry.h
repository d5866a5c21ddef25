// The entry of a module: included by the modules and by what loads them.
#pragma once

#include <string_view>

#include "tal/module.h"

namespace tal {

// ABI tag: C++ objects pass between library and module, so both must be built with the same one.
inline constexpr const char* kAbiTag = TAL_ABI_TAG;

// The one function that a module exports. It returns what opens the module's engine, or nullptr to
// a library that has another ABI tag.
using ModuleEntry = OpenEngine*(const char* abiTag) noexcept;
inline constexpr const char* kModuleEntryName = "talModule";

// What a module's entry returns; `open` is the engine's function.
inline OpenEngine* unlessForeign(std::string_view abiTag, OpenEngine& open) noexcept {
  return abiTag == kAbiTag ? &open : nullptr;
}

}  // namespace tal

extern "C" tal::ModuleEntry talModule;
