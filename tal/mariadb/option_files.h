// The option files that the server's own client programs read, for what does not belong into the
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
// "!includedir" are followed where they stand, for each of `files` at the first mention of a file.
// Files that cannot be read are skipped, and so are those that everyone may write, as the client
// programs do.
Options readOptions(std::string_view group, const std::vector<std::filesystem::path>& files);

}  // namespace tal::mariadb
