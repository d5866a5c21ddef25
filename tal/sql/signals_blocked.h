#pragma once

#include <signal.h>

namespace tal::sql {

// Keeps signals away from threads that are started while it exists: the program handles them. The
// destructor restores the mask of the calling thread.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

}  // namespace tal::sql
