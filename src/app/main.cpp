// The entry of the process.
#include <new>

#include "app/CommandLine.h"
#include "app/Failures.h"
#include "config/ConfigFileReader.h"
#include "engine/VXAMonitorHelper.h"
#include "monitor/JsonFrame.h"
#include "monitor/MonitorProcessor.h"
#include "orv/Exception.h"
#include "orv/Process.h"
#include "output/ProcessWide.h"

namespace {

// The settings of the only run of this process. MonitorProcessor does not own them, and they must
// outlive it however the run ends.
orv::OwningPtr<ConfigData> s_config;

void printBanner() {
  s_pw->println(s_msgHelper->getResStr("NAME", kProgramVersion));
  s_pw->println(s_msgHelper->getResStr("COPYRIGHT"));
  s_pw->println();
}

void monitor(const orv::String& fileName, bool runOnce) {
  ConfigFileReader reader(fileName);
  s_config = reader.readConfiguration();
  if (s_config->isPasswordExposed) {
    reportWarning(s_msgHelper->getResStr("WARN_PASSWORD_EXPOSED", fileName.toBytes().c_str()));
  }
  MonitorProcessor processor(s_config.get(), m_JSON);
  displayJSONHeader(m_JSON, 0, 1);
  processor.startMonitoring(runOnce, m_JSON);
}

// Runs the monitoring, and turns every failure into its message and exit code.
int monitorGuarded(const orv::String& fileName, bool runOnce) {
  try {
    monitor(fileName, runOnce);
    displayJSONHeader(m_JSON, 1, 2);
    return 0;
  } catch (const ConfigException& failure) {
    return reportDescription(failure.getDescription());
  } catch (const VXAException& failure) {
    return reportDescription(failure.getDescription());
  } catch (const orv::io::IoException& failure) {
    return reportDescription(failure.getDescription());
  } catch (const orv::Exception& failure) {
    return reportFailure(failure);
  } catch (const std::bad_alloc&) {
    return reportFatal(kExitOutOfMemory);
  } catch (...) {
    return reportFatal(kExitUnknownFailure);
  }
}

}  // namespace

int main(int argc, char** argv) {
  installTerminateHandler();
  orv::keepStandardDescriptors();
  orv::keepMemoryPrivate();
  orv::useMessageLanguage();
  createProcessWideObjects();
  orv::ignoreFileSizeSignal();

  orv::String fileName;
  bool runOnce = false;
  const int exitCode = parseArgs(argc, argv, fileName, runOnce);
  if (!m_JSON) printBanner();
  if (exitCode != 0) {
    displayJSONHeader(m_JSON, 0, 0);
    displayUsage(m_JSON);
    return exitCode;
  }
  return monitorGuarded(fileName, runOnce);
}
