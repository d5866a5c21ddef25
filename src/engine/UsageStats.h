#pragma once

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
