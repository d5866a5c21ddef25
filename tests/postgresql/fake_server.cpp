#include "tests/postgresql/fake_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

namespace testing_support {
namespace protocol {
namespace {

std::string bigEndian(std::uint32_t value, int bytes) {
  std::string text;
  for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8) {
    text += static_cast<char>((value >> shift) & 0xffU);
  }
  return text;
}

std::string terminated(const std::string& text) { return text + '\0'; }

std::string rowDescription(std::size_t columns) {
  std::string body = bigEndian(static_cast<std::uint32_t>(columns), 2);
  for (std::size_t column = 0; column < columns; ++column) {
    body += terminated("c") + bigEndian(0, 4) + bigEndian(0, 2) + bigEndian(25, 4) +
            bigEndian(0xffff, 2) + bigEndian(0xffffffff, 4) + bigEndian(0, 2);
  }
  return message('T', body);
}

std::string dataRow(const std::vector<std::string>& values) {
  std::string body = bigEndian(static_cast<std::uint32_t>(values.size()), 2);
  for (const std::string& value : values) {
    body += bigEndian(static_cast<std::uint32_t>(value.size()), 4) + value;
  }
  return message('D', body);
}

}  // namespace

std::string message(char type, const std::string& body) {
  return type + bigEndian(static_cast<std::uint32_t>(body.size() + 4), 4) + body;
}

std::string error(const std::string& sqlState) {
  return message('E', terminated("SFATAL") + terminated("VFATAL") + terminated('C' + sqlState) +
                          terminated("Mno reason given") + '\0');
}

std::string notice() {
  return message('N', terminated("SNOTICE") + terminated("VNOTICE") + terminated("C00000") +
                          terminated("Mno news") + '\0');
}

std::string authentication(std::uint32_t request, const std::string& data) {
  return message('R', bigEndian(request, 4) + data);
}

std::string setting(const std::string& name, const std::string& value) {
  return message('S', terminated(name) + terminated(value));
}

std::string ready() { return message('Z', "I"); }

std::string welcome(const std::string& version) {
  return message('R', bigEndian(0, 4)) +
         message('S', terminated("server_version") + terminated(version)) +
         message('K', bigEndian(1, 4) + bigEndian(2, 4)) + ready();
}

std::string prepared() { return message('1', "") + ready(); }

std::string rows(const std::vector<std::vector<std::string>>& rows) {
  std::string text = message('2', "") + rowDescription(rows.front().size());
  for (const auto& row : rows) text += dataRow(row);
  return text + message('C', terminated("SELECT 1")) + ready();
}

std::string copy(char type) { return message('2', "") + message(type, std::string(3, '\0')); }

}  // namespace protocol

namespace {

// Waits for input on `client`; false when the test is over or the client has gone.
bool waitForInput(int client, int stop) {
  pollfd entries[] = {
      {client, POLLIN, 0},
      {stop,   POLLIN, 0}
  };
  return ::poll(entries, 2, -1) > 0 && entries[1].revents == 0;
}

bool readExactly(int client, int stop, std::string& bytes, std::size_t size) {
  bytes.clear();
  while (bytes.size() < size) {
    char buffer[4096];
    if (!waitForInput(client, stop)) return false;
    const ssize_t count = ::read(client, buffer, std::min(sizeof buffer, size - bytes.size()));
    if (count <= 0) return false;
    bytes.append(buffer, static_cast<std::size_t>(count));
  }
  return true;
}

// The body of a packet: a length that counts itself, then the rest.
bool readPacket(int client, int stop, std::string& body) {
  std::string length;
  if (!readExactly(client, stop, length, 4)) return false;
  std::uint32_t size = 0;
  std::memcpy(&size, length.data(), 4);
  return readExactly(client, stop, body, ntohl(size) - 4);
}

// Reads the start packet; a wish for encryption before it is answered.
bool readStart(int client, int stop, const std::string& answerToTls) {
  const std::string wish("\x04\xd2\x16\x2f", 4);
  std::string body;
  if (!readPacket(client, stop, body)) return false;
  if (body != wish) return true;
  return ::send(client, answerToTls.data(), answerToTls.size(), MSG_NOSIGNAL) > 0 &&
         readPacket(client, stop, body);
}

// Reads messages up to the one that asks for an answer.
bool readBatch(int client, int stop, std::string& received) {
  const std::string askForAnswer = "Sp";  // synchronisation, and a step of the login
  std::string type;
  std::string body;
  do {
    if (!readExactly(client, stop, type, 1) || !readPacket(client, stop, body)) return false;
    received += type + body;
  } while (askForAnswer.find(type) == std::string::npos);
  return true;
}

// The client's own part of the nonce stands in its first message of SCRAM.
std::string withNonce(std::string answer, const std::string& received) {
  const std::size_t place = answer.find(protocol::kNonce);
  const std::size_t nonce = received.find(",r=");
  if (place == std::string::npos || nonce == std::string::npos) return answer;
  return answer.replace(place, protocol::kNonce.size(),
                        received.substr(nonce + 3, protocol::kNonce.size()));
}

}  // namespace

FakeServer::FakeServer(std::vector<std::string> script, AtEnd atEnd, std::string answerToTls)
    : script_(std::move(script)), atEnd_(atEnd), answerToTls_(std::move(answerToTls)) {
  int ends[2] = {-1, -1};
  if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  stopReading_ = FileDescriptor(ends[0]);
  stopWriting_ = FileDescriptor(ends[1]);
  thread_ = std::thread([this] { serve(); });
}

FakeServer::~FakeServer() {
  if (thread_.joinable()) received();
}

const std::string& FakeServer::received() {
  stopWriting_.close();
  if (thread_.joinable()) thread_.join();
  return received_;
}

void FakeServer::serve() {
  while (waitForInput(listener_.socket(), stopReading_.number())) {
    const FileDescriptor client(::accept4(listener_.socket(), nullptr, nullptr, SOCK_CLOEXEC));
    play(client.number());
  }
}

void FakeServer::play(int client) {
  bool isStart = true;
  for (const std::string& answer : script_) {
    const bool asked = isStart ? readStart(client, stopReading_.number(), answerToTls_)
                               : readBatch(client, stopReading_.number(), received_);
    if (!asked) return;
    isStart = false;
    const std::string text = withNonce(answer, received_);
    if (::send(client, text.data(), text.size(), MSG_NOSIGNAL) < 0) return;
  }
  std::string rest;
  while (atEnd_ == AtEnd::kSilent && readExactly(client, stopReading_.number(), rest, 1)) {
  }
}

}  // namespace testing_support
