// The HTTP side of the exporter, over libmicrohttpd.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "companions/exporter/web_config.h"

struct MHD_Daemon;

namespace exporter {

// A GET request. The value of an absent header is empty. Everything in it comes from outside.
struct Request {
  std::string path;
  std::string target;  // the parameter of the query
  std::string host;
  std::string accept;
  std::string acceptEncoding;
  std::string scrapeTimeout;  // X-Prometheus-Scrape-Timeout-Seconds
};

struct Reply {
  unsigned status = 200;
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers;
};

// Where to listen.
struct Address {
  std::string host;  // a name or a numeric address; empty for all addresses
  std::string port;

  [[nodiscard]] std::string text() const;
};

// "host:port", "[::1]:port" or ":port". Throws std::runtime_error that says what is wrong.
[[nodiscard]] Address addressIn(const std::string& text);

// Listens while it exists. Each connection has a thread, which calls `answer` and may wait in it.
// The number of connections, of requests and of their bytes is limited. Only GET is accepted.
class HttpServer {
 public:
  using Answer = std::function<Reply(const Request& request)>;

  // Throws std::runtime_error if it cannot listen. Also throws it, unless `insecure`, if other
  // machines can reach the address and `protection` has neither TLS nor users.
  HttpServer(const Address& address, WebConfig protection, bool insecure, Answer answer);
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;
  // Ends when all requests under way are answered.
  ~HttpServer();

  [[nodiscard]] unsigned port() const;

 private:
  struct Callback;
  struct Stop {
    void operator()(MHD_Daemon* daemon) const noexcept;
  };

  Gate gate_;
  Answer answer_;
  std::unique_ptr<MHD_Daemon, Stop> daemon_;
};

}  // namespace exporter
