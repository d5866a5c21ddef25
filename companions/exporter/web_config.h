// The file that protects the HTTP side, in the form that exporters have in common.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace exporter {

// What is asked of a client's certificate.
enum class ClientCertificate : std::uint8_t {
  kNone,           // NoClientCert
  kVerifiedIfAny,  // VerifyClientCertIfGiven
  kVerified,       // RequireAndVerifyClientCert
};

struct TlsConfig {
  std::string certificate;        // PEM
  std::string key;                // PEM
  std::string clientAuthorities;  // PEM; empty where none are named
  ClientCertificate clientCertificate = ClientCertificate::kNone;
  bool onlyTls13 = false;
};

struct WebConfig {
  std::optional<TlsConfig> tls;
  std::map<std::string, std::string> users;  // and the bcrypt hashes of their passwords

  // Whether anything is asked of a client, or hidden from those who listen.
  [[nodiscard]] bool protects() const noexcept { return tls.has_value() || !users.empty(); }
};

// Reads the file and those that it names, relative to its folder. Throws std::runtime_error, which
// says what is wrong: an unknown key, a file that cannot be read, a hash that is not bcrypt.
[[nodiscard]] WebConfig readWebConfig(const std::string& fileName);

// Lets users in. May be used by any thread.
class Gate {
 public:
  explicit Gate(WebConfig config) : config_(std::move(config)) {}

  [[nodiscard]] const WebConfig& config() const noexcept { return config_; }

  // Whether the password is the user's. Takes as long for a user that is not known.
  [[nodiscard]] bool admits(const std::string& user, const std::string& password);

 private:
  const WebConfig config_;
  std::mutex mutex_;
  std::set<std::string> admitted_;  // hashed, because bcrypt is meant to be slow
};

}  // namespace exporter
