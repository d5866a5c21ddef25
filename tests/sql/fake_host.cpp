#include "tests/sql/fake_host.h"

#include <dlfcn.h>
#include <netdb.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <utility>

namespace sql_testing {
namespace {

using Resolve = int(const char*, const char*, const addrinfo*, addrinfo**);

struct Hosts {
  std::mutex mutex;
  std::condition_variable change;
  std::map<std::string, std::vector<std::string>> known;
  std::set<std::string> silent;
  int waiting = 0;
};

Hosts& hosts() {
  static Hosts all;
  return all;
}

int resolveReally(const char* host, const char* service, const addrinfo* hints, addrinfo** list) {
  static auto* const real = reinterpret_cast<Resolve*>(dlsym(RTLD_NEXT, "getaddrinfo"));
  return real(host, service, hints, list);
}

int resolveAll(const std::vector<std::string>& addresses, const char* service,
               const addrinfo* hints, addrinfo** list) {
  addrinfo** end = list;
  for (const std::string& address : addresses) {
    if (const int error = resolveReally(address.c_str(), service, hints, end)) return error;
    while (*end != nullptr) end = &(*end)->ai_next;
  }
  return 0;
}

int waitForTheEndOf(const std::string& host, std::unique_lock<std::mutex>& lock) {
  ++hosts().waiting;
  hosts().change.wait(lock, [&] { return !hosts().silent.contains(host); });
  --hosts().waiting;
  hosts().change.notify_all();
  return EAI_AGAIN;
}

}  // namespace

FakeHost::FakeHost(std::string name, std::vector<std::string> addresses) : name_(std::move(name)) {
  const std::lock_guard lock(hosts().mutex);
  hosts().known[name_] = std::move(addresses);
}

FakeHost::~FakeHost() {
  const std::lock_guard lock(hosts().mutex);
  hosts().known.erase(name_);
}

SilentHost::SilentHost(std::string name) : name_(std::move(name)) {
  const std::lock_guard lock(hosts().mutex);
  hosts().silent.insert(name_);
}

SilentHost::~SilentHost() {
  std::unique_lock lock(hosts().mutex);
  hosts().silent.erase(name_);
  hosts().change.notify_all();
  hosts().change.wait(lock, [] { return hosts().waiting == 0; });
}

}  // namespace sql_testing

// Stands before the C library's own.
extern "C" int getaddrinfo(const char* host, const char* service, const addrinfo* hints,
                           addrinfo** list) {
  using namespace sql_testing;
  const bool isName =
      host != nullptr && (hints == nullptr || (hints->ai_flags & AI_NUMERICHOST) == 0);
  if (!isName) return resolveReally(host, service, hints, list);
  std::unique_lock lock(hosts().mutex);
  if (hosts().silent.contains(host)) return waitForTheEndOf(host, lock);
  const auto known = hosts().known.find(host);
  if (known == hosts().known.end()) {
    lock.unlock();
    return resolveReally(host, service, hints, list);
  }
  return resolveAll(known->second, service, hints, list);
}
