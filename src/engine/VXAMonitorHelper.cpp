#include "engine/VXAMonitorHelper.h"

#include <cstddef>

#include "engine/Snapshots.h"
#include "util/Utils.h"

namespace {

constexpr std::int32_t kNoConnection = -2;
constexpr std::int32_t kLocalEngine = -1;
constexpr std::size_t kLongestCredential = 255;

orv::Reference<ConnInfo> connectionOf(const TalSqlConnectionInfo& info) {
  auto connection = orv::makeReference<ConnInfo>();
  connection->clientHost = fieldText(info.clientHost);
  connection->dataSource = fieldText(info.dataSource);
  connection->application = fieldText(info.application);
  connection->networkAddress = fieldText(info.networkAddress);
  connection->userName = fieldText(info.userName);
  connection->status = static_cast<short>(info.status);
  connection->periodMs = info.periodMs;
  connection->totalTime = info.totalTime;
  return connection;
}

}  // namespace

VXAMonitorHelper::VXAMonitorHelper()
    : handle_(kNoConnection),
      messages_(orv::makeReference<MessageHelper>("TALMSG", "ORV_MSG_P_E_")),
      programMessages_(orv::makeReference<MessageHelper>("ZELK", "ZELK_")) {}

void VXAMonitorHelper::connect(const orv::String& server, const orv::String& user,
                               const orv::String& password) {
  TalStart(nullptr);
  // No server and no account: the engine inside the library is meant, which needs no connection.
  if (server.isEmpty() && user.isEmpty() && password.isEmpty()) {
    handle_ = kLocalEngine;
    return;
  }
  for (const orv::String* const text : {&server, &user, &password}) {
    if (text->toBytes().size() <= kLongestCredential && !text->contains('\0')) continue;
    stop();
    throw orv::ResultException(orv::kInvalidArgument,
                               programMessages_->getResStr("ERR_CREDENTIALS_TOO_LONG"));
  }
  std::int32_t connected = kNoConnection;
  const std::int16_t status = TalConnectServer(server.toBytes().c_str(), user.toBytes().c_str(),
                                               password.toBytes().c_str(), &connected);
  if (status != 0) stop();
  check(status);
  handle_ = connected;
}

void VXAMonitorHelper::disconnect() {
  if (handle_ != kNoConnection) {
    TalDisconnect(handle_);
    handle_ = kNoConnection;
  }
  if (!isStopped_) stop();
}

int VXAMonitorHelper::getEngineType() {
  std::uint8_t flag = 0;
  std::int32_t first = 0;
  std::int32_t second = 0;
  std::int32_t third = 0;
  std::int32_t engineType = 0;
  check(TalGetEngineInformation(handle_, &flag, &first, &second, &third, &engineType));
  return engineType;
}

orv::String VXAMonitorHelper::getEngineVersion() {
  TalVersion version{};
  check(TalGetZorbVersion(handle_, &version));
  orv::String text = orv::String::valueOf(version.major) + "." +
                     orv::String::valueOf(version.minor) + "." +
                     orv::String::valueOf(version.build);
  Utils::formatEngVerString(text);
  return text;
}

orv::Reference<VXAMonitorHelper::Connections> VXAMonitorHelper::getConnInfoList() {
  std::uint32_t count = 0;
  check(TalGetSQLConnectionsData(handle_, &count));
  const SnapshotRelease release(TalFreeSQLConnectionsData, handle_);
  auto connections = orv::makeReference<Connections>();
  for (std::uint32_t index = 0; index < count; ++index) {
    TalSqlConnectionInfo info{};
    const std::int16_t status = TalGetSQLConnectionInfo2(handle_, index, &info);
    if (status == TAL_STATUS_NO_ENTRY) break;
    check(status);
    connections->append(connectionOf(info));
  }
  return connections;
}

orv::String VXAMonitorHelper::createErrorMsg(int code) const {
  const orv::String number = orv::String::valueOf(code);
  return number + ": " + messages_->getResStr(number.toBytes().c_str());
}

void VXAMonitorHelper::check(std::int16_t status) const {
  if (status != 0) throw VXAException(createErrorMsg(status), status);
}

void VXAMonitorHelper::stop() {
  isStopped_ = true;
  TalStop(nullptr);
}
