// The open files, as the engine reports them.
#pragma once

#include <utility>

#include "orv/Collections.h"
#include "orv/Object.h"
#include "orv/String.h"

// A client's name, which all its handles share.
struct ClientName : orv::Object {
  explicit ClientName(orv::String name) : text(std::move(name)) {}

  const orv::String text;
};

// One handle on an open file. Codes are the engine's.
struct FileHandleInfo : orv::Object {
  FileHandleInfo() : FileHandleInfo(0, 0, 0, 0, 0, orv::String()) {}
  // Trap: the record lock type comes before the open mode (deliberate).
  FileHandleInfo(long clientIndexValue, short recordLockTypeCode, short openModeCode,
                 short waitStateCode, int transactionStateCode, orv::String clientNameText)
      : FileHandleInfo(clientIndexValue, recordLockTypeCode, openModeCode, waitStateCode,
                       transactionStateCode,
                       orv::makeReference<ClientName>(std::move(clientNameText))) {}
  FileHandleInfo(long clientIndexValue, short recordLockTypeCode, short openModeCode,
                 short waitStateCode, int transactionStateCode,
                 orv::Reference<ClientName> sharedName)
      : transactionState(transactionStateCode),
        clientIndex(clientIndexValue),
        openMode(openModeCode),
        recordLockType(recordLockTypeCode),
        waitState(waitStateCode),
        clientName_(std::move(sharedName)) {}

  [[nodiscard]] const orv::String& clientName() const noexcept { return clientName_->text; }

  // Very many are held at a time: this order leaves no holes between the fields.
  int transactionState;
  long clientIndex;
  short openMode;
  short recordLockType;
  short waitState;

 private:
  orv::Reference<ClientName> clientName_;  // never null
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
