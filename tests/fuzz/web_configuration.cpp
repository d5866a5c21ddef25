// Web configurations: a file that is understood protects something, and any other is refused with
// its name.
#include <stdexcept>
#include <string>

#include "companions/exporter/web_config.h"
#include "tests/fuzz/target.h"
#include "tests/support/temporary_folder.h"

namespace fuzzing {

void run(std::string_view input) {
  static const testing_support::TemporaryFolder folder;
  const std::string file = folder / "web.yml";
  testing_support::writeFile(file, std::string(input));
  testing_support::writeFile(folder / "pem", "PEM");

  try {
    const exporter::WebConfig config = exporter::readWebConfig(file);

    require(config.protects(), "a web configuration protects");
    if (!config.tls) return;
    require(!config.tls->certificate.empty() && !config.tls->key.empty(), "TLS has its key");
    const bool verifies = config.tls->clientCertificate != exporter::ClientCertificate::kNone;
    require(verifies != config.tls->clientAuthorities.empty(), "clients can be verified");
  } catch (const std::runtime_error& refused) {
    require(std::string(refused.what()).starts_with(folder.path().string()),
            "a refusal says where");
  }
}

}  // namespace fuzzing
