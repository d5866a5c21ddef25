// The open files, as the engine reports them.
#pragma once

#include <utility>

#include "orv/Collections.h"
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

// One open file. The list of handles is empty if handle detail was not requested.
struct FileInfo : orv::Object {
  using Handles = orv::collections::List<FileHandleInfo>;

  FileInfo() = default;
  FileInfo(orv::String fileName, long pageSizeBytes, short readOnlyCode, short recordLocksCode,
           short transactionLockCode, long sizeInKb, orv::Reference<Handles>& handleList)
      : name(std::move(fileName)),
        pageSize(pageSizeBytes),
        readOnly(readOnlyCode),
        recordLocks(recordLocksCode),
        transactionLock(transactionLockCode),
        sizeKb(sizeInKb),
        handles(handleList) {}

  orv::String name;
  long pageSize = 0;
  short readOnly = 0;
  short recordLocks = 0;
  short transactionLock = 0;
  long sizeKb = 0;
  orv::Reference<Handles> handles;
};
