// The answers of an engine, as a record.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tal.h"
#include "tests/support/fake_engine/call.h"

namespace fake_engine {

struct File {
  std::string name;
  TalFileInfo info{};
  std::vector<TalFileHandleInfo> handles = {};
};

struct Client {
  tagTALCLIENTID id{};
  TalClientInfo info{};
  std::vector<TalClientHandleInfo> handles = {};
};

struct Record {
  std::int32_t handle = 42;  // what a connection gets
  std::int32_t engineType = 0;
  TalVersion version{};
  TalUsage usage{};
  TalCommStat communication{};
  std::vector<File> files;
  std::vector<Client> clients;
  std::vector<TalSqlConnectionInfo> connections;

  // By function name: announced in place of the list's length.
  std::map<std::string, std::uint32_t> counts;
};

// Answers the call from the record: 7008 after the end of a list, 7010 for an unknown client, 7015
// for an unknown file, otherwise 0.
std::int16_t answer(const Record& record, const Call& call);

// Puts a text into a field of a structure, with a NUL if there is room for it.
template <std::size_t kSize>
void setText(char (&field)[kSize], std::string_view text) {
  std::fill_n(field, kSize, '\0');
  std::copy_n(text.begin(), std::min(text.size(), kSize), field);
}

}  // namespace fake_engine
