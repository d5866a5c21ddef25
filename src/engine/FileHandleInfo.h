#pragma once

#include <utility>

#include "orv/Object.h"
#include "orv/String.h"

// One handle on an open file. Codes are the engine's.
struct FileHandleInfo : orv::Object {
  FileHandleInfo() = default;
  // Trap: the record lock type comes before the open mode (deliberate).
  FileHandleInfo(long clientIndexValue, short recordLockTypeCode, short openModeCode,
                 short waitStateCode, int transactionStateCode, orv::String clientNameText)
      : clientIndex(clientIndexValue),
        openMode(openModeCode),
        recordLockType(recordLockTypeCode),
        waitState(waitStateCode),
        transactionState(transactionStateCode),
        clientName(std::move(clientNameText)) {}

  long clientIndex = 0;
  short openMode = 0;
  short recordLockType = 0;
  short waitState = 0;
  int transactionState = 0;
  orv::String clientName;
};
