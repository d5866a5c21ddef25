#include "monitor/MonitorProcessor.h"

#include "monitor/JsonFrame.h"
#include "orv/Process.h"
#include "output/Logger.h"
#include "util/Utils.h"

std::atomic<bool> s_stopRequested{false};
const orv::String s_notAvailable("n/a");

MonitorProcessor::MonitorProcessor(ConfigData* config, bool json)
    : config_(config), messages_(orv::makeReference<MessageHelper>("ZELK", "ZELK_")) {
  createMaps(json);
}

MonitorProcessor::~MonitorProcessor() {
  if (engine_) engine_->disconnect();
}

void MonitorProcessor::startMonitoring(bool runOnce, bool json) {
  createOutputFormatter();
  if (json) {
    for (const orv::String& line : jsonHeaderLines(*messages_)) put(line);
  }
  printConfiguration(json);
  engine_ = orv::makeOwned<VXAMonitorHelper>();
  engine_->connect(config_->server, config_->user, config_->password);
  config_->password.wipe();
  orv::installStopSignals(s_stopRequested);
  engineType_ = engine_->getEngineType();
  writeRunStart(json);
  if (runOnce) {
    processMonitorRequests(json);
  } else if (config_->refreshRate == 0) {
    processMonitorRequestManually(json);
  } else {
    processMonitorRequestsUntilStopped(json);
  }
  if (json) closeDocument();
  output_->close();
}

void MonitorProcessor::closeDocument() {
  // The console comes first, so that it has its "}" even if a later output fails.
  if (config_->consoleOutput) completeJsonDocument();
  put("}");
  completeJsonDocument();
}

void MonitorProcessor::createOutputFormatter() {
  const auto logger = orv::makeReference<Logger>("ZELK", "ZELK_");
  if (config_->consoleOutput) logger->addStdOutHandler();
  if (config_->fileOutput) logger->addFileHandler(config_->logFileName);
  logger->setLevel(Level::kAll);
  output_ = orv::makeReference<FormatHelper>(logger.get());
}

void MonitorProcessor::writeRunStart(bool json) {
  if (json) {
    put("\t\"engine_version\": \"" + engine_->getEngineVersion() + "\",");
    put("\t\"start_record_time\": \"" + Utils::getTime("%FT%T%z") + "\",");
  } else {
    output_->putHeader("Engine Version: " + engine_->getEngineVersion(), 0);
    output_->putHeader("*** START RECORD " + Utils::getTime("%m/%d/%y %I:%M %p") + " ***", 0);
  }
}

void MonitorProcessor::processMonitorRequests(bool json) {
  if (config_->showFiles) processActiveFiles(json);
  if (config_->showSessions) processActiveSessions(json);
  if (config_->showConnections) processActiveConnections(json);
  if (config_->showResources) processResourceStats(json);
  if (config_->showCommunications) processCommunicationStats(json);
}
