// The engine's counters.
#pragma once

#include "orv/Collections.h"
#include "orv/Object.h"

// A counted resource. The maximum keeps its sign: an engine may report -1.
struct ResourceCount {
  long current = 0;
  long peak = 0;
  long maximum = 0;
};

// Resource usage.
struct UsageStats : orv::Object {
  ResourceCount users;
  ResourceCount files;
  ResourceCount handles;
  ResourceCount transactions;
  ResourceCount clients;
  ResourceCount workerThreads;
  long locksCurrent = 0;
  long locksPeak = 0;
  ResourceCount dataMb;
  ResourceCount sessions;
  long upTimeSeconds = 0;
};

// The counters of one network protocol.
struct ProtocolStats : orv::Object {
  long code = 0;
  long requests = 0;
  long currentSessions = 0;
  long peakSessions = 0;
};

// Communication statistics. The maxima are unsigned here, unlike those of UsageStats (deliberate):
// an engine's -1 arrives as 4294967295.
struct CommStats : orv::Object {
  long requests = 0;
  long counters[3] = {0, 0, 0};
  long remoteCurrent = 0;
  long remotePeak = 0;
  long remoteMaximum = 0;
  long threadsCurrent = 0;
  long threadsPeak = 0;
  long threadsMaximum = 0;
  long timeouts = 0;
  long recoveries = 0;
  orv::Reference<orv::collections::List<ProtocolStats>> protocols;
};
