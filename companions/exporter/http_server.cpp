#include "companions/exporter/http_server.h"

#include <gnutls/gnutls.h>
#include <microhttpd.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <stdexcept>

namespace exporter {
namespace {

constexpr unsigned kMostConnections = 512;
constexpr unsigned kMostOfOneAddress = 256;
constexpr unsigned kIdleSeconds = 120;  // longer than the usual interval between scrapes
constexpr std::size_t kMemoryOfConnection = 16UL * 1024;
constexpr std::size_t kStackOfConnection = 256UL * 1024;
constexpr int kYes = MHD_YES;

struct FreeAddresses {
  void operator()(addrinfo* list) const noexcept { freeaddrinfo(list); }
};
using Addresses = std::unique_ptr<addrinfo, FreeAddresses>;

Addresses resolved(const Address& address) {
  addrinfo hints{};
  hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  const char* const host = address.host.empty() ? nullptr : address.host.c_str();
  const int error = getaddrinfo(host, address.port.c_str(), &hints, &list);
  if (error != 0) throw std::runtime_error(address.text() + ": " + gai_strerror(error));
  return Addresses(list);
}

bool isLoopback(const sockaddr& address) {
  if (address.sa_family == AF_INET) {
    sockaddr_in four{};
    std::memcpy(&four, &address, sizeof(four));
    return (ntohl(four.sin_addr.s_addr) >> 24) == 127;
  }
  sockaddr_in6 six{};
  std::memcpy(&six, &address, sizeof(six));
  return address.sa_family == AF_INET6 && IN6_IS_ADDR_LOOPBACK(&six.sin6_addr);
}

std::string valueOf(MHD_Connection* connection, MHD_ValueKind kind, const char* key) {
  const char* value = nullptr;
  std::size_t size = 0;
  const bool isThere =
      MHD_lookup_connection_value_n(connection, kind, key, std::strlen(key), &value, &size) == kYes;
  return isThere && value != nullptr ? std::string(value, size) : std::string();
}

Request requestOf(MHD_Connection* connection, const char* path) {
  const auto header = [&](const char* key) { return valueOf(connection, MHD_HEADER_KIND, key); };
  return {path,
          valueOf(connection, MHD_GET_ARGUMENT_KIND, "target"),
          header(MHD_HTTP_HEADER_HOST),
          header(MHD_HTTP_HEADER_ACCEPT),
          header(MHD_HTTP_HEADER_ACCEPT_ENCODING),
          header("X-Prometheus-Scrape-Timeout-Seconds")};
}

struct FreeMemory {
  void operator()(char* memory) const noexcept { MHD_free(memory); }
};

bool isAdmitted(MHD_Connection* connection, Gate& gate) {
  if (gate.config().users.empty()) return true;
  char* sent = nullptr;
  const std::unique_ptr<char, FreeMemory> user(
      MHD_basic_auth_get_username_password(connection, &sent));
  const std::unique_ptr<char, FreeMemory> password(sent);
  return user && password && gate.admits(user.get(), password.get());
}

// Whether the certificate of the client is as the configuration demands.
bool isCertified(MHD_Connection* connection, const WebConfig& config) {
  if (!config.tls || config.tls->clientCertificate == ClientCertificate::kNone) return true;
  const MHD_ConnectionInfo* const info =
      MHD_get_connection_info(connection, MHD_CONNECTION_INFO_GNUTLS_SESSION);
  if (info == nullptr) return false;
  auto* const session = static_cast<gnutls_session_t>(info->tls_session);
  unsigned count = 0;
  const bool isGiven = gnutls_certificate_get_peers(session, &count) != nullptr && count > 0;
  if (!isGiven) return config.tls->clientCertificate == ClientCertificate::kVerifiedIfAny;
  unsigned status = 0;
  return gnutls_certificate_verify_peers2(session, &status) == 0 && status == 0;
}

Reply refusal(unsigned status, const char* text) {
  return {status, std::string(text) + '\n', {{"Content-Type", "text/plain; charset=utf-8"}}};
}

MHD_Result send(MHD_Connection* connection, const Reply& reply) {
  // libmicrohttpd copies the bytes; its parameter lacks a const.
  const std::unique_ptr<MHD_Response, decltype(&MHD_destroy_response)> response(
      MHD_create_response_from_buffer(reply.body.size(), const_cast<char*>(reply.body.data()),
                                      MHD_RESPMEM_MUST_COPY),
      MHD_destroy_response);
  if (!response) return MHD_NO;
  MHD_add_response_header(response.get(), "X-Content-Type-Options", "nosniff");
  for (const auto& [name, value] : reply.headers) {
    MHD_add_response_header(response.get(), name.c_str(), value.c_str());
  }
  return MHD_queue_response(connection, reply.status, response.get());
}

Reply replyTo(MHD_Connection* connection, const char* path, Gate& gate,
              const HttpServer::Answer& answer) {
  if (!isCertified(connection, gate.config())) {
    return refusal(MHD_HTTP_FORBIDDEN, "a client certificate that can be verified is needed");
  }
  if (!isAdmitted(connection, gate)) {
    Reply reply = refusal(MHD_HTTP_UNAUTHORIZED, "a user and a password are needed");
    reply.headers.emplace_back("WWW-Authenticate", "Basic realm=\"zelk-exporter\"");
    return reply;
  }
  return answer(requestOf(connection, path));
}

// The options in the form that libmicrohttpd takes. They point into `tls`.
std::vector<MHD_OptionItem> optionsFor(const addrinfo& address,
                                       const std::optional<TlsConfig>& tls) {
  const auto item = [](MHD_OPTION option, std::size_t value, const void* pointer) {
    return MHD_OptionItem{option, static_cast<std::intptr_t>(value), const_cast<void*>(pointer)};
  };
  std::vector<MHD_OptionItem> options = {
      item(MHD_OPTION_SOCK_ADDR, 0, address.ai_addr),
      item(MHD_OPTION_CONNECTION_LIMIT, kMostConnections, nullptr),
      item(MHD_OPTION_PER_IP_CONNECTION_LIMIT, kMostOfOneAddress, nullptr),
      item(MHD_OPTION_CONNECTION_TIMEOUT, kIdleSeconds, nullptr),
      item(MHD_OPTION_CONNECTION_MEMORY_LIMIT, kMemoryOfConnection, nullptr),
      item(MHD_OPTION_THREAD_STACK_SIZE, kStackOfConnection, nullptr)};
  if (tls) {
    const char* const priorities = tls->onlyTls13 ? "NORMAL:-VERS-ALL:+VERS-TLS1.3"
                                                  : "NORMAL:-VERS-ALL:+VERS-TLS1.3:+VERS-TLS1.2";
    options.push_back(item(MHD_OPTION_HTTPS_MEM_CERT, 0, tls->certificate.c_str()));
    options.push_back(item(MHD_OPTION_HTTPS_MEM_KEY, 0, tls->key.c_str()));
    options.push_back(item(MHD_OPTION_HTTPS_PRIORITIES, 0, priorities));
    if (!tls->clientAuthorities.empty()) {
      options.push_back(item(MHD_OPTION_HTTPS_MEM_TRUST, 0, tls->clientAuthorities.c_str()));
    }
  }
  options.push_back(item(MHD_OPTION_END, 0, nullptr));
  return options;
}

unsigned flagsFor(const addrinfo& address, bool tls) {
  unsigned flags = MHD_USE_POLL_INTERNAL_THREAD | MHD_USE_THREAD_PER_CONNECTION | MHD_USE_ITC;
  if (address.ai_family == AF_INET6) flags |= MHD_USE_IPv6;
  return tls ? flags | MHD_USE_TLS : flags;
}

}  // namespace

std::string Address::text() const {
  const bool isSix = host.find(':') != std::string::npos;
  return (isSix ? '[' + host + ']' : host) + ':' + port;
}

Address addressIn(const std::string& text) {
  const auto colon = text.rfind(':');
  if (colon == std::string::npos || colon + 1 == text.size()) {
    throw std::runtime_error("\"" + text + "\" is no address: give HOST:PORT");
  }
  Address address{text.substr(0, colon), text.substr(colon + 1)};
  if (address.host.starts_with('[') && address.host.ends_with(']')) {
    address.host = address.host.substr(1, address.host.size() - 2);
  }
  return address;
}

// The C callback of libmicrohttpd, which calls it once for the headers and once for the end.
struct HttpServer::Callback {
  static MHD_Result onRequest(void* self, MHD_Connection* connection, const char* path,
                              const char* method, const char* /*version*/,
                              const char* /*uploadData*/, std::size_t* uploadSize, void** state) {
    auto& server = *static_cast<HttpServer*>(self);
    if (std::strcmp(method, MHD_HTTP_METHOD_GET) != 0) {
      Reply reply = refusal(MHD_HTTP_METHOD_NOT_ALLOWED, "only GET is served");
      reply.headers.emplace_back("Allow", "GET");
      return send(connection, reply);
    }
    if (*uploadSize > 0) return MHD_NO;  // GET has no body
    if (*state == nullptr) {
      *state = self;
      return MHD_YES;
    }
    try {
      return send(connection, replyTo(connection, path, server.gate_, server.answer_));
    } catch (const std::exception& failure) {
      std::fprintf(stderr, "zelk-exporter: a request failed: %s\n", failure.what());
      return MHD_NO;
    }
  }
};

HttpServer::HttpServer(const Address& address, WebConfig protection, bool insecure, Answer answer)
    : gate_(std::move(protection)), answer_(std::move(answer)) {
  const Addresses addresses = resolved(address);
  if (!isLoopback(*addresses->ai_addr) && !gate_.config().protects() && !insecure) {
    throw std::runtime_error(address.text() +
                             " can be reached from other machines: give --web-config FILE, or "
                             "--insecure to let everybody read the metrics");
  }
  const auto& tls = gate_.config().tls;
  std::vector<MHD_OptionItem> options = optionsFor(*addresses, tls);
  daemon_.reset(MHD_start_daemon(flagsFor(*addresses, tls.has_value()), 0, nullptr, nullptr,
                                 Callback::onRequest, this, MHD_OPTION_ARRAY, options.data(),
                                 MHD_OPTION_END));
  if (!daemon_) {
    throw std::runtime_error(address.text() + ": cannot listen: " + std::strerror(errno) +
                             (tls ? ", or the certificate and its key do not fit" : ""));
  }
}

HttpServer::~HttpServer() = default;

unsigned HttpServer::port() const {
  return MHD_get_daemon_info(daemon_.get(), MHD_DAEMON_INFO_BIND_PORT)->port;
}

void HttpServer::Stop::operator()(MHD_Daemon* daemon) const noexcept { MHD_stop_daemon(daemon); }

}  // namespace exporter
