#pragma once

#include "orv/Object.h"
#include "orv/String.h"

// What identifies a record-level client. Of it only the task number is shown.
struct ClientIDInfo : orv::Object {
  orv::String text;
  int first = 0;
  int task = 0;
};
