#include "tests/postgresql/situation_test.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

namespace testing_support {
namespace {

template <typename Handle>
std::string describeAny(const Handle& handle) {
  return std::to_string(handle.openMode) + '/' + std::to_string(handle.recordLockType) + '/' +
         std::to_string(handle.waitState) + '/' + std::to_string(handle.transactionState);
}

std::string join(std::vector<std::string> parts) {
  std::ranges::sort(parts);
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

std::string withoutSchema(const std::string& name) {
  constexpr std::string_view kPrefix = "app.public.";
  return name.starts_with(kPrefix) ? name.substr(kPrefix.size()) : name;
}

std::string handlesOf(const tal::Client& client) {
  std::vector<std::string> parts;
  for (const tal::ClientHandle& handle : client.handles) {
    parts.push_back(withoutSchema(handle.fileName) + ' ' + describe(handle));
  }
  return join(std::move(parts));
}

}  // namespace

std::string describe(const tal::FileHandle& handle) { return describeAny(handle); }
std::string describe(const tal::ClientHandle& handle) { return describeAny(handle); }

int waitIn(const std::string& handle) {
  std::istringstream parts(handle);
  std::string part;
  for (int i = 0; i < 3; ++i) std::getline(parts, part, '/');
  return part.empty() ? -1 : std::stoi(part);
}

std::string SituationTest::handlesInFiles(std::uint32_t process) {
  std::vector<std::string> parts;
  for (const tal::OpenFile& file : engine_->openFiles()) {
    for (const tal::FileHandle& handle : file.handles) {
      if (handle.clientIndex != process) continue;
      parts.push_back(withoutSchema(file.name) + ' ' + describe(handle));
    }
  }
  return join(std::move(parts));
}

std::string SituationTest::observe(const Session& session) {
  const auto process = static_cast<std::uint32_t>(session.process());
  std::string text = "not a client";
  for (const tal::Client& client : engine_->clients()) {
    if (client.processId != process) continue;
    text = handlesOf(client);
    EXPECT_EQ(text, handlesInFiles(process));
    text += "; " + std::to_string(client.transactionState) + ", " +
            std::to_string(client.locksUsed) + " locks; ";
  }
  for (const tal::SqlConnection& connection : engine_->sqlConnections()) {
    if (connection.application != session.name()) continue;
    text += connection.status == tal::connection_status::kActive ? "active" : "idle";
  }
  return text;
}

std::string SituationTest::nameOf(std::string query, const Session& holder) {
  constexpr std::string_view kHolder = "{holder}";
  const std::size_t at = query.find(kHolder);
  if (at != std::string::npos) {
    query.replace(at, kHolder.size(), std::to_string(holder.process()));
  }
  return admin_.value(query);
}

std::string SituationTest::handleOn(const std::string& name, const Session& session) {
  const auto process = static_cast<std::uint32_t>(session.process());
  std::string inFiles;
  for (const tal::OpenFile& file : engine_->openFiles()) {
    for (const tal::FileHandle& handle : file.handles) {
      if (file.name == name && handle.clientIndex == process) inFiles = describe(handle);
    }
  }
  std::string inClients;
  for (const tal::Client& client : engine_->clients()) {
    for (const tal::ClientHandle& handle : client.handles) {
      if (client.processId == process && handle.fileName == name) inClients = describe(handle);
    }
  }
  EXPECT_EQ(inFiles, inClients);
  return inFiles;
}

tal::OpenFile SituationTest::file(const std::string& name) {
  for (tal::OpenFile& file : engine_->openFiles()) {
    if (file.name == name) return file;
  }
  ADD_FAILURE() << name << " is not open";
  return {};
}

}  // namespace testing_support
