#include <utility>

#include "engine/Snapshots.h"
#include "engine/VXAMonitorHelper.h"

namespace {

orv::Reference<ClientIDInfo> identityOf(const tagTALCLIENTID& client) {
  auto identity = orv::makeReference<ClientIDInfo>();
  identity->text = fieldText(client.text);
  identity->first = client.first;
  identity->task = client.task;
  return identity;
}

orv::Reference<SessionInfo> sessionOf(const TalClientInfo& info) {
  auto session = orv::makeReference<SessionInfo>();
  session->site = static_cast<short>(info.site);
  session->networkAddress = fieldText(info.networkAddress);
  session->reserved = static_cast<short>(info.reserved);
  session->recordsDeleted = info.recordsDeleted;
  session->recordsUpdated = info.recordsUpdated;
  session->recordsInserted = info.recordsInserted;
  session->recordsRead = info.recordsRead;
  session->diskAccesses = info.diskAccesses;
  session->cacheAccesses = info.cacheAccesses;
  session->locksUsed = info.locksUsed;
  session->transactionState = static_cast<short>(info.transactionState);
  session->processId = info.processId;
  session->connectionNumber = info.connectionNumber;
  session->sessionName = fieldText(info.sessionName);
  return session;
}

orv::Reference<SessionHandleInfo> sessionHandleOf(const TalClientHandleInfo& info) {
  auto handle = orv::makeReference<SessionHandleInfo>();
  handle->openMode = info.openMode;
  handle->recordLockType = info.recordLockType;
  handle->waitState = info.waitState;
  handle->transactionState = static_cast<short>(info.transactionState);
  handle->fileName = fieldText(info.fileName);
  return handle;
}

}  // namespace

orv::Reference<VXAMonitorHelper::Sessions> VXAMonitorHelper::getActiveSessionInfoList(
    bool withHandles) {
  std::uint32_t count = 0;
  check(TalGetZorbClientsData(handle_, &count));
  const SnapshotRelease release(TalFreeZorbClientsData, handle_);
  auto sessions = orv::makeReference<Sessions>();
  for (std::uint32_t index = 0; index < count; ++index) {
    tagTALCLIENTID client{};
    const std::int16_t status = TalGetZorbClientId(handle_, index, &client);
    if (status == TAL_STATUS_NO_ENTRY) break;
    check(status);
    if (auto session = readSession(client, withHandles)) sessions->append(std::move(session));
  }
  return sessions;
}

orv::Reference<SessionInfo> VXAMonitorHelper::readSession(const tagTALCLIENTID& client,
                                                          bool withHandles) {
  TalClientInfo info{};
  const std::int16_t status = TalGetZorbClientInfo(handle_, &client, &info);
  if (status == TAL_STATUS_CLIENT_GONE) return {};
  check(status);
  auto session = sessionOf(info);
  session->clientId = identityOf(client);
  session->handles = withHandles ? getSessionFileHandleInfoList(&client)
                                 : orv::makeReference<SessionInfo::Handles>();
  if (withHandles && session->handles->isEmpty()) return {};
  return session;
}

orv::Reference<SessionInfo::Handles> VXAMonitorHelper::getSessionFileHandleInfoList(
    const tagTALCLIENTID* clientId) {
  std::uint32_t count = 0;
  check(TalGetZorbClientHandlesData(handle_, clientId, &count));
  auto handles = orv::makeReference<SessionInfo::Handles>();
  for (std::uint32_t index = 0; index < count; ++index) {
    TalClientHandleInfo info{};
    const std::int16_t status = TalGetZorbClientHandleInfo(handle_, clientId, index, &info);
    if (status == TAL_STATUS_NO_ENTRY) break;
    if (status == TAL_STATUS_CLIENT_GONE) {
      handles->clear();  // the client went away during the walk: no partial list
      break;
    }
    check(status);
    handles->append(sessionHandleOf(info));
  }
  handles->shrinkToSize();
  return handles;
}
