// HTTP requests: the input is all that a client sends on a connection.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <memory>
#include <string>

#include "companions/exporter/http_server.h"
#include "companions/exporter/pages.h"
#include "tests/fuzz/target.h"
#include "tests/support/file_descriptor.h"

namespace fuzzing {
namespace {

using testing_support::FileDescriptor;

class Exporter {
 public:
  Exporter() {
    companions::Settings settings;
    settings.login.server = "sim:demo";
    targets_.push_back(std::make_unique<exporter::Target>("demo", settings, nullptr));
    pages_ = std::make_unique<exporter::Pages>(targets_, "127.0.0.1:1", 1);
    server_ = std::make_unique<exporter::HttpServer>(
        exporter::Address{"127.0.0.1", "0"}, exporter::WebConfig(), false,
        [this](const exporter::Request& request) { return pages_->answer(request); });
  }

  [[nodiscard]] unsigned port() const { return server_->port(); }

 private:
  companions::EngineLibrary library_;
  exporter::Targets targets_;
  std::unique_ptr<exporter::Pages> pages_;
  std::unique_ptr<exporter::HttpServer> server_;
};

// The fuzzer's clock interrupts system calls.
template <typename Call>
ssize_t uninterrupted(const Call& call) {
  ssize_t result = 0;
  do {
    result = call();
  } while (result < 0 && (errno == EINTR || errno == EALREADY));
  return result;
}

// From one address after the other, because each has its own ports to come from.
FileDescriptor connectedTo(unsigned port) {
  static std::uint32_t next = 0;
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + next++ % 200);
  FileDescriptor client(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  ::bind(client.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const ssize_t done = uninterrupted([&] {
    return ::connect(client.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  });
  require(done == 0 || errno == EISCONN, "the exporter accepts connections");
  return client;
}

std::string exchanged(const FileDescriptor& client, std::string_view input) {
  uninterrupted([&] { return ::send(client.number(), input.data(), input.size(), MSG_NOSIGNAL); });
  ::shutdown(client.number(), SHUT_WR);
  std::string answer;
  std::array<char, 65536> buffer{};
  while (true) {
    const ssize_t size =
        uninterrupted([&] { return ::recv(client.number(), buffer.data(), buffer.size(), 0); });
    if (size <= 0) return answer;
    answer.append(buffer.data(), static_cast<std::size_t>(size));
  }
}

}  // namespace

void run(std::string_view input) {
  static const Exporter exporter;

  const std::string answer = exchanged(connectedTo(exporter.port()), input);

  require(answer.empty() || answer.starts_with("HTTP/1."), "an answer is one of HTTP");
  const std::string healthy =
      exchanged(connectedTo(exporter.port()), "GET /-/healthy HTTP/1.1\r\nHost: a\r\n\r\n");
  require(healthy.starts_with("HTTP/1.1 200 "), "the next client is served");
}

}  // namespace fuzzing
