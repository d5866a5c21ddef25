// Keeps a session open over the calls of the interface.
#pragma once

#include <memory>
#include <utility>

#include "tal/failure.h"
#include "tal/mariadb/session.h"

namespace tal::mariadb {

// Owns the one session of an engine. A session that has ended between two calls, by the server's
// time limit for idle ones or by a restart, is opened again once in a call; a second loss in the
// same call is reported, and so is every other failure.
class SessionKeeper {
 public:
  // Logs in. Throws Failure.
  SessionKeeper(Location location, Credentials credentials, Encryption encryption)
      : location_(std::move(location)),
        credentials_(std::move(credentials)),
        encryption_(std::move(encryption)) {
    logIn(sql::Deadline(sql::kCallLimit));
  }

  // Answers one call of the interface by `answer(session, deadline)`, within sql::kCallLimit.
  template <typename Answer>
  auto ask(Answer answer) {
    const sql::Deadline call(sql::kCallLimit);
    if (session_) {
      try {
        return attempt(answer, call);
      } catch (const Failure& failure) {
        if (failure.status() != Status::kConnectionLost) throw;
      }
    }
    logIn(call);
    return attempt(answer, call);
  }

  // Of the server that was last logged in to.
  [[nodiscard]] std::int64_t version() const { return version_; }

 private:
  void logIn(const sql::Deadline& call) {
    session_ = std::make_unique<Session>(location_, credentials_, encryption_, call);
    version_ = session_->version();
  }

  // After a lost connection or a missed deadline the session is of no use any more.
  template <typename Answer>
  auto attempt(Answer& answer, const sql::Deadline& call) {
    try {
      return answer(*session_, call);
    } catch (const Failure& failure) {
      const bool ended =
          failure.status() == Status::kConnectionLost || failure.status() == Status::kNoAnswer;
      if (ended) session_.reset();
      throw;
    }
  }

  Location location_;
  Credentials credentials_;
  Encryption encryption_;
  std::unique_ptr<Session> session_;  // null after its loss, until the next call
  std::int64_t version_ = 0;
};

}  // namespace tal::mariadb
