// The option files that the server's own client programs read, for what does not belong in the
// program's configuration: a password, and how to encrypt.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tal::mariadb {

// Option names with "-" for "_", and their values; an option without a value has an empty one.
using Options = std::map<std::string, std::string, std::less<>>;

// The files in the order in which they are read: the system's, then the user's own.
std::vector<std::filesystem::path> standardOptionFiles();

// The options of one group. A later file or line overrides an earlier one. "!include" and
// "!includedir" are followed where they stand, 10 deep, for each of `files` at the first mention of
// a file. Skipped are files that cannot be read, that are no regular ones or larger than 1 MiB, and
// those that somebody else than root and the user owns or that everybody may write. A password that
// everybody can read is not taken, and a line on standard error says so.
Options readOptions(std::string_view group, const std::vector<std::filesystem::path>& files);

}  // namespace tal::mariadb
