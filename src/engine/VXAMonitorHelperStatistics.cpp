#include <algorithm>
#include <iterator>

#include "engine/VXAMonitorHelper.h"

namespace {

ResourceCount countOf(const TalGauge& gauge) { return {gauge.current, gauge.peak, gauge.maximum}; }

orv::Reference<ProtocolStats> protocolOf(const TalProtocol& entry) {
  auto protocol = orv::makeReference<ProtocolStats>();
  protocol->code = entry.code;
  protocol->requests = entry.requests;
  protocol->currentSessions = entry.currentSessions;
  protocol->peakSessions = entry.peakSessions;
  return protocol;
}

}  // namespace

orv::Reference<UsageStats> VXAMonitorHelper::getUsageStats() {
  TalUsage words{};
  check(TalGetZorbUsageEx2(handle_, &words));
  auto usage = orv::makeReference<UsageStats>();
  usage->users = countOf(words.users);
  usage->files = countOf(words.files);
  usage->handles = countOf(words.handles);
  usage->transactions = countOf(words.transactions);
  usage->clients = countOf(words.clients);
  usage->workerThreads = countOf(words.workerThreads);
  usage->locksCurrent = words.locksCurrent;
  usage->locksPeak = words.locksPeak;
  usage->dataMb = countOf(words.dataMb);
  usage->sessions = countOf(words.sessions);
  usage->upTimeSeconds = words.upTimeSeconds;
  return usage;
}

orv::Reference<CommStats> VXAMonitorHelper::getCommStats() {
  TalCommStat words{};
  check(TalGetZorbCommStatEx(handle_, &words));
  auto statistics = orv::makeReference<CommStats>();
  statistics->requests = words.requests;
  std::copy(std::begin(words.counters), std::end(words.counters), statistics->counters);
  statistics->remoteCurrent = words.remoteCurrent;
  statistics->remotePeak = words.remotePeak;
  statistics->remoteMaximum = words.remoteMaximum;
  statistics->threadsCurrent = words.threadsCurrent;
  statistics->threadsPeak = words.threadsPeak;
  statistics->threadsMaximum = words.threadsMaximum;
  statistics->timeouts = words.timeouts;
  statistics->recoveries = words.recoveries;
  statistics->protocols = orv::makeReference<orv::collections::List<ProtocolStats>>();
  const std::uint32_t count = std::min<std::uint32_t>(words.protocolCount, TAL_PROTOCOL_COUNT);
  for (std::uint32_t index = 0; index < count; ++index) {
    statistics->protocols->append(protocolOf(words.protocols[index]));
  }
  return statistics;
}
