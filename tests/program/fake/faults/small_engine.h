// The scenario of the fault tests: three entries in each list, two
// handles on each file and client.
#pragma once

#include <string>

namespace program_tests {

inline constexpr int kEntries = 3;
inline constexpr int kHandles = 2;

std::string fileName(int index);
std::string clientId(int index);

// The entry with that index and its first handles.
std::string fileRecords(int index, int handles);
std::string clientRecords(int index, int handles);
std::string connectionRecord(int index);

// All entries with all handles.
std::string wholeEngine();

}  // namespace program_tests
