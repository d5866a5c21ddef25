#include "tests/mariadb/encrypted_listener.h"

#include <gnutls/gnutls.h>
#include <sys/socket.h>

#include <array>
#include <memory>
#include <type_traits>
#include <utility>

#include "tests/mariadb/greetings.h"

namespace mariadb_testing {
namespace {

using namespace std::string_literals;
using testing_support::FileDescriptor;

// A request for encryption with its head.
constexpr std::size_t kRequestSize = 36;

using Handle = std::remove_pointer_t<gnutls_session_t>;
using Keys = std::remove_pointer_t<gnutls_certificate_credentials_t>;
using KeysHandle = std::unique_ptr<Keys, decltype(&gnutls_certificate_free_credentials)>;
using SessionHandle = std::unique_ptr<Handle, decltype(&gnutls_deinit)>;

KeysHandle keysOf(const std::string& certificate, const std::string& key) {
  gnutls_certificate_credentials_t keys = nullptr;
  gnutls_certificate_allocate_credentials(&keys);
  gnutls_certificate_set_x509_key_file(keys, certificate.c_str(), key.c_str(), GNUTLS_X509_FMT_PEM);
  return {keys, &gnutls_certificate_free_credentials};
}

SessionHandle sessionOn(int socket, const KeysHandle& keys) {
  gnutls_session_t session = nullptr;
  gnutls_init(&session, GNUTLS_SERVER);
  gnutls_set_default_priority(session);
  gnutls_credentials_set(session, GNUTLS_CRD_CERTIFICATE, keys.get());
  gnutls_transport_set_int(session, socket);
  return {session, &gnutls_deinit};
}

// What comes next, nothing at the end.
std::string received(const SessionHandle& session) {
  std::array<char, 1024> buffer{};
  const ssize_t size = gnutls_record_recv(session.get(), buffer.data(), buffer.size());
  return {buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
}

}  // namespace

EncryptedListener::EncryptedListener(std::string certificate, std::string key, std::string way)
    : certificate_(std::move(certificate)),
      key_(std::move(key)),
      way_(std::move(way)),
      thread_([this] { serve(); }) {}

void EncryptedListener::serve() {
  const FileDescriptor visitor(::accept4(socket(), nullptr, nullptr, SOCK_CLOEXEC));
  if (!visitor.isOpen()) return;
  const std::string greeting = greetingOf("5.5.5-10.11.9-MariaDB", true);
  ::send(visitor.number(), greeting.data(), greeting.size(), MSG_NOSIGNAL);
  heard_.resize(kRequestSize);
  const ssize_t size = ::recv(visitor.number(), heard_.data(), kRequestSize, MSG_WAITALL);
  heard_.resize(size > 0 ? static_cast<std::size_t>(size) : 0);

  const KeysHandle keys = keysOf(certificate_, key_);
  const SessionHandle session = sessionOn(visitor.number(), keys);
  if (gnutls_handshake(session.get()) != GNUTLS_E_SUCCESS) return;
  for (const std::string& answer :
       {packet(3, "\xfe"s + way_ + "\0"s), packet(5, "\xff\x15\x04#28000denied"s)}) {
    const std::string said = received(session);
    if (said.empty()) return;
    heard_ += said;
    gnutls_record_send(session.get(), answer.data(), answer.size());
  }
}

const std::string& EncryptedListener::heard() {
  if (thread_.joinable()) thread_.join();
  return heard_;
}

EncryptedListener::~EncryptedListener() {
  // Wakes the thread if nobody has visited.
  ::shutdown(socket(), SHUT_RDWR);
  if (thread_.joinable()) thread_.join();
}

}  // namespace mariadb_testing
