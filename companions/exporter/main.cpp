// zelk-exporter: serves metrics of engines over HTTP, or writes those of one moment.
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "companions/exporter/http_server.h"
#include "companions/exporter/options.h"
#include "companions/exporter/pages.h"
#include "companions/exporter/text_format.h"

namespace exporter {
namespace {

constexpr auto kTimeToStop = std::chrono::seconds(2);

companions::Settings settingsIn(const std::string& path) {
  companions::Settings settings = companions::readSettings(path);
  const companions::Sections& wanted = settings.sections;
  if (!wanted.files && !wanted.clients && !wanted.sqlConnections && !wanted.usage &&
      !wanted.communication) {
    throw std::runtime_error(
        "no section is switched on: set FILE, SESS, CONN, RESO or COMM to YES");
  }
  return settings;
}

Targets targetsFor(const Options& options) {
  const auto turn = options.oneAtATime ? std::make_shared<std::mutex>() : nullptr;
  Targets targets;
  for (const auto& [name, path] : targetFiles(options.configurations)) {
    try {
      targets.push_back(std::make_unique<Target>(name, settingsIn(path), turn));
    } catch (...) {
      std::fprintf(stderr, "zelk-exporter: %s:\n", path.c_str());
      throw;
    }
  }
  return targets;
}

// Ends the process if an engine hangs, because nothing else ends its thread.
void stop(const Targets& targets) {
  const Clock::time_point deadline = Clock::now() + kTimeToStop;
  for (const auto& target : targets) target->requestStop();
  for (const auto& target : targets) {
    if (!target->hasStopped(deadline)) std::_Exit(EXIT_SUCCESS);
  }
}

// The signals that end the program. Only the main thread takes them: they are blocked before any
// other thread starts.
class StopSignals {
 public:
  StopSignals() {
    sigemptyset(&signals_);
    for (const int signal : kSignals) sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  }

  void await() const {
    int signal = 0;
    sigwait(&signals_, &signal);
  }

  // After this call they end the process at once.
  void endProcess() const {
    for (const int signal : kSignals) std::signal(signal, [](int) { std::_Exit(EXIT_SUCCESS); });
    pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
  }

 private:
  static constexpr int kSignals[] = {SIGINT, SIGTERM};
  sigset_t signals_{};
};

[[noreturn]] void failToWrite(const std::string& name) {
  throw std::system_error(errno, std::generic_category(), name + " cannot be written");
}

void print(const std::string& text) {
  if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0) {
    failToWrite("standard output");
  }
}

// By a rename, so that nobody reads half of it.
void replace(const std::string& name, const std::string& text) {
  const std::string temporary = name + '.' + std::to_string(getpid());
  std::ofstream file(temporary, std::ios::binary);
  file << text;
  file.close();
  if (!file || std::rename(temporary.c_str(), name.c_str()) != 0) {
    const int reason = errno;
    std::remove(temporary.c_str());
    errno = reason;
    failToWrite(name);
  }
}

void writeOnce(const Options& options, const Targets& targets) {
  if (targets.size() != 1) throw companions::WrongCommandLine("--once goes with one target");
  const Metrics metrics = scraped(*targets.front(), Clock::now() + scrapeLimit(""), options.files);
  const std::string text = serialized(metrics, Format::kText);
  if (options.output.empty()) {
    print(text);
  } else {
    replace(options.output, text);
  }
}

void serve(const Options& options, const Targets& targets, const StopSignals& signals) {
  const Address address = addressIn(options.listen);
  Pages pages(targets, address.text(), options.files);
  const HttpServer server(
      address, options.webConfig.empty() ? WebConfig() : readWebConfig(options.webConfig),
      options.insecure, [&](const Request& request) { return pages.answer(request); });
  std::fprintf(stderr, "zelk-exporter: %zu target%s, listening on %s\n", targets.size(),
               targets.size() == 1 ? "" : "s",
               Address{address.host, std::to_string(server.port())}.text().c_str());
  signals.await();
  for (const auto& target : targets) target->requestStop();
}

}  // namespace

void run(int argc, char** argv) {
  const auto options = optionsIn(argc, argv);
  if (!options) return;
  std::signal(SIGPIPE, SIG_IGN);
  const StopSignals signals;
  const companions::EngineLibrary library;
  const Targets targets = targetsFor(*options);
  if (options->once) {
    signals.endProcess();
    writeOnce(*options, targets);
  } else {
    serve(*options, targets, signals);
  }
  stop(targets);
}

}  // namespace exporter

int main(int argc, char** argv) {
  return companions::runProgram(exporter::kProgram, [&] { exporter::run(argc, argv); });
}
