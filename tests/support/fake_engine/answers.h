// What the fake engine answers as a library, read from a file.
//
// The file has a record on each line, its fields separated by tabs; "%XX" is the byte with that
// hexadecimal code. Blank lines and lines that begin with "#" are skipped. Numbers are decimal.
//
//   type N                      the engine type
//   version N N N
//   usage N ...                 the 27 words in the order of the structure; missing ones are 0
//   communication N ...         the 13 words before the protocols, the announced count included
//   protocol N N N N            the next protocol entry
//   file NAME PAGE READONLY RECORDLOCKS TRANSACTIONLOCK SIZEKB
//   handle CLIENTINDEX MODE LOCK WAIT TRANSACTION CLIENTNAME             of the file above
//   client ID FIRST TASK SITE ADDRESS DELETED UPDATED INSERTED READ DISK CACHE LOCKS TRANSACTION
//          PROCESS CONNECTION NAME
//   handle MODE LOCK WAIT TRANSACTION FILENAME                           of the client above
//   connection HOST DATASOURCE APPLICATION ADDRESS USER STATUS PERIOD TOTAL
//   announce FUNCTION N         the count that a ...Data function returns, whatever follows
//   status FUNCTION CALL N      the status of this function's call with that number, from 1
//   throw FUNCTION CALL WHAT    that call throws: "memory" (std::bad_alloc) or "other"
//   pause FUNCTION CALL FIFO    that call waits until somebody opens the FIFO for writing
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "tests/support/fake_engine/record.h"

namespace fake_engine {

// A function and the number of its call, counted from 1.
using CallNumber = std::pair<std::string, int>;

struct Answers : Record {
  std::map<CallNumber, std::int16_t> statuses;
  std::map<CallNumber, std::string> exceptions;
  std::map<CallNumber, std::string> pauses;
};

// Ends the process with a message on standard error if a line cannot be understood: a test with a
// wrong file must not pass.
Answers readAnswers(const std::string& path);

}  // namespace fake_engine
