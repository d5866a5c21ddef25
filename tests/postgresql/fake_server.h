// A listener on loopback that plays a server: what a real one does too seldom to wait for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/support/file_descriptor.h"
#include "tests/support/loopback.h"

namespace testing_support {

// Messages of the server's side of the protocol, complete with type and length.
namespace protocol {
std::string message(char type, const std::string& body);
std::string error(const std::string& sqlState);
std::string notice();
std::string ready();
// A request of the login: 0 done, 3 clear text, 5 MD5, 10 to 12 the steps of SCRAM. In the data of
// a step kNonce stands for the client's part of the nonce.
std::string authentication(std::uint32_t request, const std::string& data = {});
inline constexpr std::string_view kNonce = "########################";
std::string setting(const std::string& name, const std::string& value);
// What a server says when a login succeeds.
std::string welcome(const std::string& version);
// Answers to the preparing of a statement and to its execution with rows of texts.
std::string prepared();
std::string rows(const std::vector<std::vector<std::string>>& rows);
// Such an answer to an execution begins to copy rows to (H) or from (G) the client.
std::string copy(char type);
}  // namespace protocol

// Serves one client at a time: refuses TLS or answers the wish for it otherwise, answers the start
// packet with the first text of the script and each following batch of messages with the next. When
// the script ends it stays silent, or closes the connection. Ends with the object.
class FakeServer {
 public:
  enum class AtEnd { kSilent, kClose };

  FakeServer(std::vector<std::string> script, AtEnd atEnd, std::string answerToTls = "N");
  FakeServer(const FakeServer&) = delete;
  FakeServer& operator=(const FakeServer&) = delete;
  ~FakeServer();

  // Ends the server; then all that it was sent after start packets.
  const std::string& received();

  [[nodiscard]] std::uint16_t port() const { return listener_.port(); }

 private:
  void serve();
  void play(int client);

  std::vector<std::string> script_;
  AtEnd atEnd_;
  std::string answerToTls_;
  std::string received_;
  SilentListener listener_;
  FileDescriptor stopReading_;
  FileDescriptor stopWriting_;
  std::thread thread_;
};

}  // namespace testing_support
