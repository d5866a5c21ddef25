// The statuses of the engine interface that this library returns. Each has a text in the message
// bundle TALMSG that says what to do.
#pragma once

#include <cstdint>
#include <exception>

namespace tal {

// 0, the three list statuses and libtal's own from 7101 on are named here; other values are error
// numbers that a database server gave and that are passed through.
enum class Status : std::int16_t {
  kSuccess = 0,

  kNoEntry = 7008,     // no entry at this index: the list ends
  kClientGone = 7010,  // the client is not, or no longer, in the snapshot
  kFileClosed = 7015,  // the file is not, or no longer, in the snapshot

  kNotStarted = 7101,           // TalStart was not called
  kUnknownScheme = 7102,        // the server name begins with no scheme that the library serves
  kCannotReach = 7103,          // unknown host, nothing listens, no socket file
  kLoginRefused = 7104,         // wrong user or password, or the server admits no such login
  kPrivilegeMissing = 7105,     // logged in, but the account may not see what is reported
  kConnectionLost = 7106,       // the server ended the session or went away
  kNoAnswer = 7107,             // no answer within the time limit
  kUnknownHandle = 7108,        // the handle is of no open connection
  kNoSnapshot = 7109,           // the list was not taken, or was released
  kVersionNotSupported = 7110,  // the server is older than what the library can ask
  kScenarioWrong = 7111,        // a scenario file cannot be read or does not fit its format
  kOutOfMemory = 7112,          // the library ran out of memory
  kInternalError = 7113,        // a failure that has no better name; nothing is known to cause it
  kBadArgument = 7114,          // a null pointer or a text that is too long
  kUnknownDatabase = 7115,      // the database in the server name does not exist
  kNoConnectionSlot = 7116,     // the server has no free connection for this account
  kServerNotReady = 7117,       // the server is starting, stopping or recovering
  kTlsFailed = 7118,            // the required encrypted connection cannot be made
  kCatalogLocked = 7119,        // the server's own catalog is locked; nothing can be asked now
  kServerError = 7120,          // the server refused a statement for another reason
  kBadServerName = 7121,        // the scheme is known, but the rest of the name cannot be read
  kPasswordMissing = 7122,      // the server asks for a password and none is configured
  kPasswordExpired = 7123,      // the account's password has expired
  kAccountLocked = 7124,        // the account is locked
  kModuleMissing = 7125,        // the engine's module, or a library that it needs, is not installed
  kModuleForeign = 7126,        // the engine's module is of another build than the library
  kRecordingEnds = 7127,        // a replay has no further moment
  kNotRecorded = 7128,          // a replay lacks the section: it was switched off in the recording
  kAnswerTooLarge = 7129,       // the server's answer has more bytes or rows than the library takes
  kOtherProtocol = 7130,        // something answers there, but not as a server of this kind
  kUnsafeLogin = 7131,          // the server asks for the password in a way that gives it away
  kSettingsRefused = 7132,      // the session is not read-only or has no time limit, as it must
  kRecordingUnreadable = 7133,  // the file of a replay cannot be read
};

// The one exception of this library. Thrown by engines; becomes its status at the interface and
// never crosses it.
class Failure : public std::exception {
 public:
  explicit Failure(Status status) noexcept : status_(status) {}

  [[nodiscard]] Status status() const noexcept { return status_; }

 private:
  Status status_;
};

}  // namespace tal
