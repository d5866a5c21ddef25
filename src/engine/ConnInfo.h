#pragma once

#include "orv/Object.h"
#include "orv/String.h"

// One SQL connection.
struct ConnInfo : orv::Object {
  orv::String clientHost;
  orv::String dataSource;
  orv::String application;
  orv::String networkAddress;
  orv::String userName;
  short status = 0;    // 0 idle, 1 active, anything else dying
  long periodMs = 0;   // of the present activity or idleness, milliseconds
  long totalTime = 0;  // since the connection was made, in the engine's unit
};
