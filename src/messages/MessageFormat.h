// Whether a message text from a file may be given to printf.
#pragma once

#include <span>
#include <string_view>

enum class ArgumentKind { kText, kInteger };

// True if every conversion of `text` finds an argument of its kind, in order, and none can write
// memory, read another width than int, or ask for more than the result can hold. Arguments may be
// left over.
[[nodiscard]] bool conversionsFit(std::string_view text,
                                  std::span<const ArgumentKind> arguments) noexcept;
