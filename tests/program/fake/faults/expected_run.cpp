#include "tests/program/fake/faults/expected_run.h"

#include <utility>

#include "tests/program/fake/faults/small_engine.h"

namespace program_tests {
namespace {

const std::string kHandle = "1";

std::string with(const std::string& argument) { return kHandle + ", " + argument; }

std::string with(int index) { return with(std::to_string(index)); }

// As the trace writes the client's identifier.
std::string clientText(int index) { return clientId(index) + "/0/" + std::to_string(index); }

}  // namespace

ExpectedRun::ExpectedRun(std::optional<Fault> fault, bool handles)
    : fault_(std::move(fault)), handles_(handles) {
  bool isConnected = false;
  try {
    call("TalStart", "null");
    call("TalConnectServer", "engine, , ");
    isConnected = true;
    readEverything();
  } catch (const Failed&) {
    failure_ = stage_;
  }
  if (isConnected) {
    call("TalDisconnect", kHandle);
  }
  call("TalStop", "null");
}

int ExpectedRun::callsOf(const std::string& function) const {
  const auto found = calls_.find(function);
  return found == calls_.end() ? 0 : found->second;
}

Effect ExpectedRun::call(const std::string& function, const std::string& arguments) {
  trace_ += function + "(" + arguments + ")\n";
  const int number = ++calls_[function];
  if (!fault_ || fault_->function != function || fault_->call != number) {
    return Effect::kServed;
  }
  const Effect effect = effectOf(function, fault_->status);
  if (effect == Effect::kEndsRun) {
    throw Failed();
  }
  return effect;
}

void ExpectedRun::readEverything() {
  call("TalGetEngineInformation", kHandle);
  call("TalGetZorbVersion", kHandle);
  stage_ = Stage::kFiles;
  readFiles();
  stage_ = Stage::kSessions;
  readClients();
  stage_ = Stage::kConnections;
  readConnections();
  stage_ = Stage::kResources;
  call("TalGetZorbUsageEx2", kHandle);
  stage_ = Stage::kCommunication;
  call("TalGetZorbCommStatEx", kHandle);
}

template <typename Read>
void ExpectedRun::readAndRelease(const std::string& release, const Read& read) {
  try {
    int index = 0;
    while (index < kEntries && read(index)) {
      ++index;
    }
  } catch (const Failed&) {
    call(release, kHandle);
    throw;
  }
  call(release, kHandle);
}

void ExpectedRun::readFiles() {
  call("TalGetOpenFilesData", kHandle);
  readAndRelease("TalFreeOpenFilesData", [this](int index) {
    if (call("TalGetOpenFileName", with(index)) == Effect::kEndsList) {
      return false;
    }
    if (call("TalGetFileInfo2", with(fileName(index))) == Effect::kDropsEntry) {
      return true;
    }
    const int handles =
        handles_ ? readHandles("TalGetFileHandlesData", "TalGetFileHandleInfo", fileName(index))
                 : 0;
    if (handles > 0 || !handles_) {
      reported_ += fileRecords(index, handles);
    }
    return true;
  });
}

void ExpectedRun::readClients() {
  call("TalGetZorbClientsData", kHandle);
  readAndRelease("TalFreeZorbClientsData", [this](int index) {
    if (call("TalGetZorbClientId", with(index)) == Effect::kEndsList) {
      return false;
    }
    if (call("TalGetZorbClientInfo", with(clientText(index))) == Effect::kDropsEntry) {
      return true;
    }
    const int handles = handles_ ? readHandles("TalGetZorbClientHandlesData",
                                               "TalGetZorbClientHandleInfo", clientText(index))
                                 : 0;
    if (handles > 0 || !handles_) {
      reported_ += clientRecords(index, handles);
    }
    return true;
  });
}

int ExpectedRun::readHandles(const std::string& data, const std::string& info,
                             const std::string& owner) {
  if (call(data, with(owner)) == Effect::kDropsEntry) {
    return 0;
  }
  for (int handle = 0; handle < kHandles; ++handle) {
    const Effect effect = call(info, with(owner) + ", " + std::to_string(handle));
    if (effect == Effect::kEndsList) {
      return handle;
    }
    if (effect == Effect::kDropsEntry) {
      return 0;
    }
  }
  return kHandles;
}

void ExpectedRun::readConnections() {
  call("TalGetSQLConnectionsData", kHandle);
  readAndRelease("TalFreeSQLConnectionsData", [this](int index) {
    if (call("TalGetSQLConnectionInfo2", with(index)) == Effect::kEndsList) {
      return false;
    }
    reported_ += connectionRecord(index);
    return true;
  });
}

}  // namespace program_tests
