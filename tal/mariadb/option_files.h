// The option files that the client programs of the server read. They hold settings that do not
// belong in the program's configuration: a password, and how to encrypt.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tal::mariadb {

// Option names, with "-" in place of "_", and their values. An option without a value has an empty
// text.
using Options = std::map<std::string, std::string, std::less<>>;

// The files in the order in which they are read: the system's, then the user's own.
std::vector<std::filesystem::path> standardOptionFiles();

// The options of one group. A later file or line overrides an earlier one. "!include" and
// "!includedir" take effect where they stand, 10 deep; for each of `files` an included file is read
// once. A file is skipped if it cannot be read, is not regular or is larger than 1 MiB. It is also
// skipped if it belongs to somebody other than root and the user, or if everybody may write it. A
// password that everybody can read is not used, and a line on standard error says so.
Options readOptions(std::string_view group, const std::vector<std::filesystem::path>& files);

}  // namespace tal::mariadb
