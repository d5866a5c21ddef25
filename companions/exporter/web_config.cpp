#include "companions/exporter/web_config.h"

#include <crypt.h>
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <yaml-cpp/yaml.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace exporter {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = 1024UL * 1024;
constexpr std::size_t kMostAdmitted = 100;
constexpr const char* kHighestCost = "15";
// The hash of a password that nobody knows, so that the check of an unknown user takes as long as
// that of a known one.
constexpr const char* kNobody = "$2b$10$abcdefghijklmnopqrstuuOtBJtHqcu0CMhS5xVVQKF6M6TJ4UYDO";

[[noreturn]] void refuse(const std::string& what) { throw std::runtime_error(what); }

// `where` begins the text of a refusal.
std::string contentsOf(const fs::path& file, const std::string& where) {
  std::ifstream stream(file, std::ios::binary);
  std::string text;
  char byte = 0;
  while (text.size() <= kLargestFile && stream.get(byte)) text += byte;
  if (!stream.eof() || text.empty()) refuse(where + " cannot be read, or is empty or too large");
  return text;
}

std::string where(const YAML::Node& node, const fs::path& file) {
  return file.string() + ":" + std::to_string(node.Mark().line + 1);
}

std::string scalar(const YAML::Node& node, const fs::path& file) {
  if (!node.IsScalar()) refuse(where(node, file) + ": a text is expected");
  return node.Scalar();
}

// Calls `take` for each key and value of a table.
template <typename Take>
void forEach(const YAML::Node& table, const fs::path& file, const Take& take) {
  if (!table.IsMap()) refuse(where(table, file) + ": a table of keys is expected");
  std::set<std::string> seen;
  for (const auto& entry : table) {
    const std::string key = scalar(entry.first, file);
    if (!seen.insert(key).second) refuse(where(entry.first, file) + ": " + key + " is given twice");
    if (!take(key, entry.second)) refuse(where(entry.first, file) + ": unknown key " + key);
  }
}

ClientCertificate clientCertificateIn(const YAML::Node& node, const fs::path& file) {
  static const std::map<std::string, ClientCertificate> kWords = {
      {"NoClientCert",               ClientCertificate::kNone         },
      {"VerifyClientCertIfGiven",    ClientCertificate::kVerifiedIfAny},
      {"RequireAndVerifyClientCert", ClientCertificate::kVerified     },
  };
  const auto found = kWords.find(scalar(node, file));
  if (found == kWords.end())
    refuse(
        where(node, file) +
        ": client_auth_type is NoClientCert, VerifyClientCertIfGiven or RequireAndVerifyClientCert");
  return found->second;
}

bool onlyTls13(const YAML::Node& node, const fs::path& file) {
  const std::string version = scalar(node, file);
  if (version != "TLS12" && version != "TLS13") {
    refuse(where(node, file) + ": min_version is TLS12 or TLS13");
  }
  return version == "TLS13";
}

TlsConfig tlsIn(const YAML::Node& table, const fs::path& file) {
  TlsConfig tls;
  const auto read = [&](const YAML::Node& node) {
    const std::string name = scalar(node, file);
    return contentsOf(file.parent_path() / name, where(node, file) + ": " + name);
  };
  forEach(table, file, [&](const std::string& key, const YAML::Node& value) {
    if (key == "cert_file")
      tls.certificate = read(value);
    else if (key == "key_file")
      tls.key = read(value);
    else if (key == "client_ca_file")
      tls.clientAuthorities = read(value);
    else if (key == "client_auth_type")
      tls.clientCertificate = clientCertificateIn(value, file);
    else if (key == "min_version")
      tls.onlyTls13 = onlyTls13(value, file);
    else
      return false;
    return true;
  });
  if (tls.certificate.empty() || tls.key.empty()) {
    refuse(where(table, file) + ": tls_server_config needs cert_file and key_file");
  }
  const bool verifies = tls.clientCertificate != ClientCertificate::kNone;
  if (verifies == tls.clientAuthorities.empty()) {
    refuse(where(table, file) +
           ": client_ca_file and a client_auth_type that verifies go together");
  }
  return tls;
}

std::string hashOf(const std::string& password, const std::string& setting) {
  crypt_data data{};
  const char* const hash = crypt_r(password.c_str(), setting.c_str(), &data);
  return hash == nullptr ? "" : hash;
}

// Whether it is a bcrypt hash of a cost that a login can bear: above it, each takes seconds.
bool isBcrypt(const std::string& hash) {
  const bool isForm = hash.size() == 60 && (hash.starts_with("$2a$") || hash.starts_with("$2b$") ||
                                            hash.starts_with("$2y$"));
  return isForm && hash.substr(4, 2) <= kHighestCost && hashOf("", hash).size() == 60;
}

std::map<std::string, std::string> usersIn(const YAML::Node& table, const fs::path& file) {
  std::map<std::string, std::string> users;
  forEach(table, file, [&](const std::string& user, const YAML::Node& hash) {
    if (!isBcrypt(scalar(hash, file))) {
      refuse(where(hash, file) + ": the password of " + user +
             " must be a bcrypt hash of a cost up to " + kHighestCost);
    }
    users.emplace(user, scalar(hash, file));
    return true;
  });
  return users;
}

std::string digestOf(const std::string& text) {
  std::string digest(gnutls_hash_get_len(GNUTLS_DIG_SHA256), '\0');
  gnutls_hash_fast(GNUTLS_DIG_SHA256, text.data(), text.size(), digest.data());
  return digest;
}

bool sameBytes(const std::string& left, const std::string& right) {
  return left.size() == right.size() && gnutls_memcmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace

WebConfig readWebConfig(const std::string& fileName) {
  const fs::path file = fileName;
  WebConfig config;
  try {
    forEach(YAML::Load(contentsOf(file, fileName)), file,
            [&](const std::string& key, const YAML::Node& value) {
              if (key == "tls_server_config")
                config.tls = tlsIn(value, file);
              else if (key == "basic_auth_users")
                config.users = usersIn(value, file);
              else
                return false;
              return true;
            });
  } catch (const YAML::Exception& failure) {
    refuse(fileName + ":" + std::to_string(failure.mark.line + 1) + ": " + failure.msg);
  }
  if (!config.protects()) refuse(fileName + " protects nothing: it has no TLS and no users");
  return config;
}

bool Gate::admits(const std::string& user, const std::string& password) {
  const auto found = config_.users.find(user);
  const bool isKnown = found != config_.users.end();
  const std::string& hash = isKnown ? found->second : kNobody;
  const std::string digest = digestOf(user + '\0' + password);
  {
    const std::lock_guard lock(mutex_);
    if (admitted_.contains(digest)) return true;
  }
  if (!sameBytes(hashOf(password, hash), hash) || !isKnown) return false;
  const std::lock_guard lock(mutex_);
  if (admitted_.size() >= kMostAdmitted) admitted_.clear();
  admitted_.insert(digest);
  return true;
}

}  // namespace exporter
