// The engine's 23 functions over answers that a test has set. An index past the end gives 7008, an
// unknown client 7010, an unknown file 7015; the statuses that were set come first.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "engine/tal.h"
#include "tests/support/settable_engine/session.h"

namespace settable {
namespace {

constexpr std::int32_t kHandle = 42;
constexpr std::int16_t kSuccess = 0;

Session& session() {
  static Session theSession;
  return theSession;
}

// Traces the call and serves what was set for it; else what the function itself answers.
template <typename Serve>
std::int16_t call(const char* function, std::string_view arguments, const Serve& serve) {
  const std::int16_t status = session().enter(function, arguments);
  return status != kSuccess ? status : serve(session().answers());
}

std::string join(std::int32_t handle, std::string_view text) {
  return std::to_string(handle) + " " + std::string(text);
}

std::string join(std::int32_t handle, std::uint32_t index) {
  return join(handle, std::to_string(index));
}

std::string textOf(const tagTALCLIENTID* client) {
  return {client->text, strnlen(client->text, sizeof client->text)};
}

template <typename List>
std::uint32_t countOf(const char* function, const List& list) {
  const auto& announced = session().answers().announced;
  const auto row = announced.find(function);
  return row != announced.end() ? row->second : static_cast<std::uint32_t>(list.size());
}

template <typename Element>
std::int16_t entry(const std::vector<Element>& list, std::uint32_t index, Element* target) {
  if (index >= list.size()) {
    return TAL_STATUS_NO_ENTRY;
  }
  *target = list[index];
  return kSuccess;
}

// What `serve` answers for the file, or 7015.
template <typename Serve>
std::int16_t withFile(const Answers& answers, const char* name, const Serve& serve) {
  const auto file = std::find_if(answers.files.begin(), answers.files.end(),
                                 [&](const File& candidate) { return candidate.name == name; });
  return file == answers.files.end() ? std::int16_t{TAL_STATUS_FILE_CLOSED} : serve(*file);
}

// What `serve` answers for the client, or 7010.
template <typename Serve>
std::int16_t withClient(const Answers& answers, const tagTALCLIENTID* id, const Serve& serve) {
  const auto client = std::find_if(
      answers.clients.begin(), answers.clients.end(),
      [&](const Client& candidate) { return std::memcmp(&candidate.id, id, sizeof *id) == 0; });
  return client == answers.clients.end() ? std::int16_t{TAL_STATUS_CLIENT_GONE} : serve(*client);
}

}  // namespace
}  // namespace settable

using settable::Answers;
using settable::call;
using settable::Client;
using settable::countOf;
using settable::entry;
using settable::File;
using settable::join;
using settable::kSuccess;
using settable::textOf;
using settable::withClient;
using settable::withFile;

extern "C" {

int16_t TalStart(void*) {
  return call("TalStart", "", [](const Answers&) { return kSuccess; });
}

int16_t TalStop(void*) {
  return call("TalStop", "", [](const Answers&) { return kSuccess; });
}

int16_t TalConnectServer(const char* server, const char* user, const char* password,
                         int32_t* handle) {
  const std::string arguments =
      std::string(server) + "|" + std::string(user) + "|" + std::string(password);
  return call("TalConnectServer", arguments, [&](const Answers&) {
    *handle = settable::kHandle;
    return kSuccess;
  });
}

int16_t TalDisconnect(int32_t handle) {
  return call("TalDisconnect", std::to_string(handle), [](const Answers&) { return kSuccess; });
}

int16_t TalGetEngineInformation(int32_t handle, uint8_t* flag, int32_t* first, int32_t* second,
                                int32_t* third, int32_t* engineType) {
  return call("TalGetEngineInformation", std::to_string(handle), [&](const Answers& answers) {
    *flag = 1;
    *first = 91;
    *second = 92;
    *third = 93;
    *engineType = answers.engineType;
    return kSuccess;
  });
}

int16_t TalGetZorbVersion(int32_t handle, TalVersion* version) {
  return call("TalGetZorbVersion", std::to_string(handle), [&](const Answers& answers) {
    *version = answers.version;
    return kSuccess;
  });
}

int16_t TalGetZorbUsageEx2(int32_t handle, TalUsage* usage) {
  return call("TalGetZorbUsageEx2", std::to_string(handle), [&](const Answers& answers) {
    *usage = answers.usage;
    return kSuccess;
  });
}

int16_t TalGetZorbCommStatEx(int32_t handle, TalCommStat* statistics) {
  return call("TalGetZorbCommStatEx", std::to_string(handle), [&](const Answers& answers) {
    *statistics = answers.communication;
    return kSuccess;
  });
}

int16_t TalGetOpenFilesData(int32_t handle, uint32_t* count) {
  return call("TalGetOpenFilesData", std::to_string(handle), [&](const Answers& answers) {
    *count = countOf("TalGetOpenFilesData", answers.files);
    return kSuccess;
  });
}

int16_t TalGetOpenFileName(int32_t handle, uint32_t index, uint32_t* size, char* name) {
  const std::string arguments = join(handle, index) + " " + std::to_string(*size);
  return call("TalGetOpenFileName", arguments, [&](const Answers& answers) {
    File file;
    const int16_t status = entry(answers.files, index, &file);
    if (status == kSuccess) {
      std::memcpy(name, file.name.c_str(), std::min<std::size_t>(file.name.size() + 1, *size));
    }
    return status;
  });
}

int16_t TalGetFileInfo2(int32_t handle, const char* name, TalFileInfo* info) {
  return call("TalGetFileInfo2", join(handle, name), [&](const Answers& answers) {
    return withFile(answers, name, [&](const File& file) {
      *info = file.info;
      return kSuccess;
    });
  });
}

int16_t TalFreeOpenFilesData(int32_t handle) {
  return call("TalFreeOpenFilesData", std::to_string(handle),
              [](const Answers&) { return kSuccess; });
}

int16_t TalGetFileHandlesData(int32_t handle, const char* name, uint32_t* count) {
  return call("TalGetFileHandlesData", join(handle, name), [&](const Answers& answers) {
    return withFile(answers, name, [&](const File& file) {
      *count = countOf("TalGetFileHandlesData", file.handles);
      return kSuccess;
    });
  });
}

int16_t TalGetFileHandleInfo(int32_t handle, const char* name, uint32_t index,
                             TalFileHandleInfo* info) {
  const std::string arguments = join(handle, name) + " " + std::to_string(index);
  return call("TalGetFileHandleInfo", arguments, [&](const Answers& answers) {
    return withFile(answers, name,
                    [&](const File& file) { return entry(file.handles, index, info); });
  });
}

int16_t TalGetZorbClientsData(int32_t handle, uint32_t* count) {
  return call("TalGetZorbClientsData", std::to_string(handle), [&](const Answers& answers) {
    *count = countOf("TalGetZorbClientsData", answers.clients);
    return kSuccess;
  });
}

int16_t TalGetZorbClientId(int32_t handle, uint32_t index, tagTALCLIENTID* client) {
  return call("TalGetZorbClientId", join(handle, index), [&](const Answers& answers) {
    Client found;
    const int16_t status = entry(answers.clients, index, &found);
    *client = found.id;
    return status;
  });
}

int16_t TalGetZorbClientInfo(int32_t handle, const tagTALCLIENTID* client, TalClientInfo* info) {
  return call("TalGetZorbClientInfo", join(handle, textOf(client)), [&](const Answers& answers) {
    return withClient(answers, client, [&](const Client& found) {
      *info = found.info;
      return kSuccess;
    });
  });
}

int16_t TalGetZorbClientHandlesData(int32_t handle, const tagTALCLIENTID* client, uint32_t* count) {
  return call("TalGetZorbClientHandlesData", join(handle, textOf(client)),
              [&](const Answers& answers) {
                return withClient(answers, client, [&](const Client& found) {
                  *count = countOf("TalGetZorbClientHandlesData", found.handles);
                  return kSuccess;
                });
              });
}

int16_t TalGetZorbClientHandleInfo(int32_t handle, const tagTALCLIENTID* client, uint32_t index,
                                   TalClientHandleInfo* info) {
  const std::string arguments = join(handle, textOf(client)) + " " + std::to_string(index);
  return call("TalGetZorbClientHandleInfo", arguments, [&](const Answers& answers) {
    return withClient(answers, client,
                      [&](const Client& found) { return entry(found.handles, index, info); });
  });
}

int16_t TalFreeZorbClientsData(int32_t handle) {
  return call("TalFreeZorbClientsData", std::to_string(handle),
              [](const Answers&) { return kSuccess; });
}

int16_t TalGetSQLConnectionsData(int32_t handle, uint32_t* count) {
  return call("TalGetSQLConnectionsData", std::to_string(handle), [&](const Answers& answers) {
    *count = countOf("TalGetSQLConnectionsData", answers.connections);
    return kSuccess;
  });
}

int16_t TalGetSQLConnectionInfo2(int32_t handle, uint32_t index, TalSqlConnectionInfo* info) {
  return call("TalGetSQLConnectionInfo2", join(handle, index),
              [&](const Answers& answers) { return entry(answers.connections, index, info); });
}

int16_t TalFreeSQLConnectionsData(int32_t handle) {
  return call("TalFreeSQLConnectionsData", std::to_string(handle),
              [](const Answers&) { return kSuccess; });
}

}  // extern "C"
