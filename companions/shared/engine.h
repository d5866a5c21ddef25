// An engine, used through the interface of the engine library that is installed.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "tal/recording/moment.h"

namespace companions {

// A function of the interface returned a status that is an error.
class CallFailure : public std::exception {
 public:
  // `call` is a literal, as in "TalGetOpenFilesData".
  CallFailure(const char* call, std::int16_t status) noexcept : call_(call), status_(status) {}

  [[nodiscard]] const char* what() const noexcept override { return call_; }
  [[nodiscard]] const char* call() const noexcept { return call_; }
  [[nodiscard]] std::int16_t status() const noexcept { return status_; }

  // What the status means and what to do about it, from the message bundle TALMSG; may throw
  // std::bad_alloc.
  [[nodiscard]] std::string text() const;

 private:
  const char* call_;
  std::int16_t status_;
};

// How many calls of the interface this thread has made to ask an engine.
[[nodiscard]] std::uint64_t callsOfThisThread() noexcept;

// The engine library between its start and its stop. One object for a process; it must live longer
// than every connection.
class EngineLibrary {
 public:
  EngineLibrary() noexcept;
  EngineLibrary(const EngineLibrary&) = delete;
  EngineLibrary& operator=(const EngineLibrary&) = delete;
  ~EngineLibrary();
};

// Server name, user and password. No text is longer than 255 bytes or has a NUL byte.
struct Login {
  std::string server;
  std::string user;
  std::string password;
};

// One connection to an engine, used by one thread at a time; different connections may be used by
// different threads. Every request throws CallFailure. A list is one snapshot of the engine, which
// is always released. An entry that vanished meanwhile is treated as zelk treats it: the list ends
// at a missing entry, and a file or client that is gone is left out.
class EngineConnection {
 public:
  // Three empty texts stand for the local engine. Throws CallFailure.
  explicit EngineConnection(const Login& login);
  EngineConnection(const EngineConnection&) = delete;
  EngineConnection& operator=(const EngineConnection&) = delete;
  ~EngineConnection();

  tal::Information information() const;
  tal::Version version() const;
  tal::Usage usage() const;
  tal::Communication communication() const;

  // Returns all handles, and also the files and clients without handles.
  std::vector<tal::OpenFile> files() const;
  std::vector<tal::Client> clients() const;
  std::vector<tal::SqlConnection> sqlConnections() const;

 private:
  std::int32_t handle_;
};

}  // namespace companions
