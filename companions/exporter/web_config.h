// The file that protects the HTTP side, in the form that is usual for exporters.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace exporter {

// What a client's certificate must be.
enum class ClientCertificate : std::uint8_t {
  kNone,           // NoClientCert
  kVerifiedIfAny,  // VerifyClientCertIfGiven
  kVerified,       // RequireAndVerifyClientCert
};

struct TlsConfig {
  std::string certificate;        // PEM
  std::string key;                // PEM
  std::string clientAuthorities;  // PEM; empty if none are named
  ClientCertificate clientCertificate = ClientCertificate::kNone;
  bool onlyTls13 = false;
};

struct WebConfig {
  std::optional<TlsConfig> tls;
  std::map<std::string, std::string> users;  // and the bcrypt hashes of their passwords

  // Whether the traffic is encrypted or users need a password.
  [[nodiscard]] bool protects() const noexcept { return tls.has_value() || !users.empty(); }
};

// Reads the file and those that it names, relative to its folder. Throws std::runtime_error that
// says what is wrong: an unknown key, a file that cannot be read, a hash that is not bcrypt.
[[nodiscard]] WebConfig readWebConfig(const std::string& fileName);

// Checks the passwords of users. Any thread may use it.
class Gate {
 public:
  explicit Gate(WebConfig config) : config_(std::move(config)) {}

  [[nodiscard]] const WebConfig& config() const noexcept { return config_; }

  // Whether the user has this password. The check takes as long if the user is unknown.
  [[nodiscard]] bool admits(const std::string& user, const std::string& password);

 private:
  const WebConfig config_;
  std::mutex mutex_;
  std::set<std::string> admitted_;  // hashed, because bcrypt is meant to be slow
};

}  // namespace exporter
