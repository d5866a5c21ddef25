#pragma once

#include "engine/ClientIDInfo.h"
#include "engine/SessionHandleInfo.h"
#include "orv/Object.h"
#include "orv/String.h"
#include "orv/collections/List.h"

// One record-level client session. Codes are the engine's; the list of handles is empty when handle
// detail was not asked for.
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
