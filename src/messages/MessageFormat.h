// Filling in message texts in printf style. A text is data from a file, so only conversions that
// were checked before reach printf.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

using MessageArgument = std::variant<const char*, int>;

// The text with its conversions replaced, at least in the first 2047 bytes. Conversions are %s for
// a narrow string, %d %i %u %o %x %X %c for an int, with flags, a width, a precision, h or hh, and
// all or none of them with a position (%2$s). Unused arguments are allowed. Returns nothing if the
// text has another conversion, or one without an argument of its type.
[[nodiscard]] std::optional<std::string> fillIn(std::string_view text,
                                                std::span<const MessageArgument> arguments);
