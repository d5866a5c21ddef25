// zelk-record: writes down what an engine does, one line for each moment.
#include "companions/record/clock.h"
#include "companions/record/options.h"
#include "companions/record/recorder.h"

using namespace companions;

int main(int argc, char** argv) {
  return runProgram(record::kProgram, [&] {
    const auto options = record::optionsOf(argc, argv);
    if (!options) return;
    Settings settings = readSettings(options->configuration);
    record::installSignals();
    record::Recorder(*options, std::move(settings)).run();
  });
}
