#include "tal/postgresql/environment.h"

#include <cstdlib>

namespace tal::postgresql {
namespace {

constexpr const char* kNames[] = {"PGTZ", "PGDATESTYLE", "PGGEQO"};

std::mutex& environmentMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

WithoutSessionVariables::WithoutSessionVariables() : lock_(environmentMutex()) {
  for (const char* const name : kNames) {
    if (const char* const value = std::getenv(name)) values_.emplace(name, value);
  }
  for (const auto& [name, value] : values_) ::unsetenv(name);
}

WithoutSessionVariables::~WithoutSessionVariables() {
  for (const auto& [name, value] : values_) ::setenv(name, value.c_str(), 1);
}

}  // namespace tal::postgresql
