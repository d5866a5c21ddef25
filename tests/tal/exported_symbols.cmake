# Compares what the library lets out with the interface: -DNM=... -DLIBRARY=...
set(expected
  TalConnectServer TalDisconnect TalFreeOpenFilesData TalFreeSQLConnectionsData
  TalFreeZorbClientsData TalGetEngineInformation TalGetFileHandleInfo TalGetFileHandlesData
  TalGetFileInfo2 TalGetOpenFileName TalGetOpenFilesData TalGetSQLConnectionInfo2
  TalGetSQLConnectionsData TalGetZorbClientHandleInfo TalGetZorbClientHandlesData
  TalGetZorbClientId TalGetZorbClientInfo TalGetZorbClientsData TalGetZorbCommStatEx
  TalGetZorbUsageEx2 TalGetZorbVersion TalStart TalStop)

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY}
                OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${lines}")
list(TRANSFORM lines REPLACE "^[0-9a-f]+ " "")
list(TRANSFORM expected PREPEND "T ")
list(SORT lines)
list(SORT expected)
if(NOT lines STREQUAL expected)
  message(FATAL_ERROR "exported:\n${lines}\nexpected:\n${expected}")
endif()
