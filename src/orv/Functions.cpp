#include "orv/Functions.h"

#include <dirent.h>
#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>

#include "orv/Encoding.h"

namespace orv {
namespace {

// The system refuses a longer name instead of cutting it.
constexpr std::size_t kThreadNameLength = 15;

// Blocks the signals that ask for a stop while it lives; a thread that is started meanwhile
// inherits that, so that they reach the thread that sleeps.
class SignalBlock {
 public:
  SignalBlock() noexcept {
    sigset_t stops;
    sigemptyset(&stops);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&stops, signal);
    pthread_sigmask(SIG_BLOCK, &stops, &before_);
  }
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;
  ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_;
};

}  // namespace

Result ORVThreadCreate(ThreadBody body, void* argument, const char* name) {
  const std::string shortName(name, std::min(std::strlen(name), kThreadNameLength));
  const SignalBlock block;
  pthread_t thread{};
  const int error = pthread_create(&thread, nullptr, body, argument);
  if (error != 0) return resultOfErrno(error);
  pthread_setname_np(thread, shortName.c_str());
  pthread_detach(thread);
  return 0;
}

DirHandle* ORVDirOpen(const String& path) {
  return reinterpret_cast<DirHandle*>(opendir(path.toBytes().c_str()));
}

void ORVDirClose(DirHandle* handle) noexcept {
  if (handle != nullptr) closedir(reinterpret_cast<DIR*>(handle));
}

Result ORVDirCreate(const String& path, unsigned permissions) {
  const std::string name = path.toBytes();
  if (mkdir(name.c_str(), permissions) == 0) return 0;
  const int error = errno;
  struct stat status {};
  const bool isThere =
      error == EEXIST && stat(name.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
  return isThere ? 0 : resultOfErrno(error);
}

bool ORVPathExists(const String& path) {
  struct stat status {};
  return stat(path.toBytes().c_str(), &status) == 0;
}

LocalTime ORVTimeGetLocal() noexcept { return {std::time(nullptr)}; }

std::time_t ORVTimeToPosix(const LocalTime& time) noexcept { return time.seconds; }

void returnFreeMemory() noexcept { malloc_trim(0); }

void ORVUnicodeToAnsi(const String& text, char* buffer, std::size_t size) {
  const std::string bytes = text.toBytes();
  ORVStrCpyA(buffer, size, bytes.c_str());
  if (bytes.size() < size) return;
  buffer[lengthOfWholeCharacters(std::string_view(buffer, std::strlen(buffer)))] = '\0';
}

void ORVStrCpyA(char* buffer, std::size_t size, const char* text) noexcept {
  const std::size_t length = strnlen(text, size - 1);
  std::memcpy(buffer, text, length);
  buffer[length] = '\0';
}

}  // namespace orv
