#pragma once

#include <utility>

#include "engine/FileHandleInfo.h"
#include "orv/Object.h"
#include "orv/String.h"
#include "orv/collections/List.h"

// One open file. The list of handles is empty when handle detail was not asked for.
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
