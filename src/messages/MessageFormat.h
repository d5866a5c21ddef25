// Filling in message texts in printf style. A text is data from a file, so nothing of it reaches
// printf but what was understood before.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

using MessageArgument = std::variant<const char*, int>;

// The text with its conversions replaced, at least as far as the first 2047 bytes. Conversions are
// %s for a narrow string, %d %i %u %o %x %X %c for an int, with flags, a width, a precision, h or
// hh, and all or none of them with a position (%2$s). Arguments may be left over. Nothing if a
// conversion is another one, has no argument, or has one of the other type.
[[nodiscard]] std::optional<std::string> fillIn(std::string_view text,
                                                std::span<const MessageArgument> arguments);
