# Compares what the library lets out with the interface, and what a module lets out with its entry:
# -DNM=... -DLIBRARY=... -DMODULES=...;...
set(interface
  TalConnectServer TalDisconnect TalFreeOpenFilesData TalFreeSQLConnectionsData
  TalFreeZorbClientsData TalGetEngineInformation TalGetFileHandleInfo TalGetFileHandlesData
  TalGetFileInfo2 TalGetOpenFileName TalGetOpenFilesData TalGetSQLConnectionInfo2
  TalGetSQLConnectionsData TalGetZorbClientHandleInfo TalGetZorbClientHandlesData
  TalGetZorbClientId TalGetZorbClientInfo TalGetZorbClientsData TalGetZorbCommStatEx
  TalGetZorbUsageEx2 TalGetZorbVersion TalStart TalStop)

function(expect_symbols library)
  execute_process(COMMAND ${NM} -D --defined-only ${library}
                  OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]+" lines "${lines}")
  list(TRANSFORM lines REPLACE "^[0-9a-f]+ " "")
  set(expected ${ARGN})
  list(TRANSFORM expected PREPEND "T ")
  list(SORT lines)
  list(SORT expected)
  if(NOT lines STREQUAL expected)
    message(FATAL_ERROR "${library} exports:\n${lines}\nexpected:\n${expected}")
  endif()
endfunction()

expect_symbols(${LIBRARY} ${interface})
foreach(module IN LISTS MODULES)
  expect_symbols(${module} talModule)
endforeach()
