// Sessions and SQL connections, as the engine reports them.
#pragma once

#include "orv/Collections.h"
#include "orv/Object.h"
#include "orv/String.h"

// Identifies a record-level client. Reports show only the task number.
struct ClientIDInfo : orv::Object {
  orv::String text;
  int first = 0;
  int task = 0;
};

// One handle of a session. Codes are the engine's.
struct SessionHandleInfo : orv::Object {
  short openMode = 0;
  short recordLockType = 0;
  short waitState = 0;
  short transactionState = 0;
  orv::String fileName;
};

// One record-level client session. Codes are the engine's; the list of handles is empty if handle
// detail was not requested.
struct SessionInfo : orv::Object {
  using Handles = orv::collections::List<SessionHandleInfo>;

  int site = 0;
  orv::String networkAddress;
  short reserved = 0;
  long recordsDeleted = 0;
  long recordsUpdated = 0;
  long recordsInserted = 0;
  long recordsRead = 0;
  long diskAccesses = 0;
  long cacheAccesses = 0;
  long locksUsed = 0;
  int transactionState = 0;
  long processId = 0;
  long connectionNumber = 0;
  orv::String sessionName;
  orv::Reference<ClientIDInfo> clientId;
  orv::Reference<Handles> handles;
};

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
