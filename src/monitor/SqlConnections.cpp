// The SQL connections section.
#include <cstddef>

#include "monitor/MonitorProcessor.h"
#include "monitor/ReportText.h"

void MonitorProcessor::processActiveConnections(bool json) {
  const auto connections = engine_->getConnInfoList();
  if (json) {
    writeConnectionsJson(*connections);
  } else {
    writeConnectionsText(*connections);
  }
}

void MonitorProcessor::writeConnectionsText(const VXAMonitorHelper::Connections& connections) {
  output_->putHeader(
      "SQL Connection Manager Active Sessions: " + orv::String::valueOf(connections.size()), 0);
  unsigned long number = 0;
  for (const auto& connection : connections) {
    output_->putHeader("Session Info: # " + orv::String::valueOf(++number), 1);
    processActiveConnectionInfo(*connection, false);
  }
}

void MonitorProcessor::writeConnectionsJson(const VXAMonitorHelper::Connections& connections) {
  put("\t\"sql_connection_manager_active_sessions\": ");
  put("\t{");
  put("\t\t\"sql_connection_manager_number_of_active_sessions\": " +
      orv::String::valueOf(connections.size()) + ",");
  put("\t\t\"session_info\": [");
  std::size_t left = connections.size();
  for (const auto& connection : connections) {
    put("\t\t{");
    processActiveConnectionInfo(*connection, true);
    put(--left > 0 ? "\t\t}," : "\t\t}");
  }
  put("\t\t]");
  put("\t},");
}

void MonitorProcessor::processActiveConnectionInfo(const ConnInfo& connection, bool json) {
  const orv::String status = getStatusString(connection.status);
  const orv::String period = unsignedText(connection.periodMs);
  const orv::String total = unsignedText(connection.totalTime);
  if (json) {  // texts are not escaped (deliberate)
    put("\t\t\t\"user_name\": \"" + connection.userName + "\",");
    put("\t\t\t\"client_host_name\": \"" + connection.clientHost + "\",");
    put("\t\t\t\"network_address\": \"" + connection.networkAddress + "\",");
    put("\t\t\t\"client_application\": \"" + connection.application + "\",");
    put("\t\t\t\"data_source_name\": \"" + connection.dataSource + "\",");
    put("\t\t\t\"connection_status\": \"" + status + "\",");
    put("\t\t\t\"active/idle_Period(ms)\": " + period + ",");  // the key is kept (deliberate)
    put("\t\t\t\"total_connection_time\": " + total);
  } else {
    put(label<24>("User Name:              ") + connection.userName, 1);
    put(label<24>("Client Host Name:       ") + connection.clientHost, 1);
    put(label<24>("Network Address:        ") + connection.networkAddress, 1);
    put(label<24>("Client Application:     ") + connection.application, 1);
    put(label<24>("Data Source Name:       ") + connection.dataSource, 1);
    put(label<24>("Connection Status:      ") + status, 1);
    put(label<24>("Active/Idle Period(ms): ") + period, 1);
    put(label<24>("Total Connection Time:  ") + total, 1);
  }
}
