#pragma once

#include "orv/Object.h"
#include "orv/String.h"

// One handle of a session. Codes are the engine's.
struct SessionHandleInfo : orv::Object {
  short openMode = 0;
  short recordLockType = 0;
  short waitState = 0;
  short transactionState = 0;
  orv::String fileName;
};
