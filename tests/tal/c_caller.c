/* A caller in plain C: proves that the header is C11 and that the library's functions have C
 * linkage. Exits with 0 when one walk through the interface succeeds. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "engine/tal.h"

static int failed(const char* what, int16_t status) {
  if (status != 0) fprintf(stderr, "%s: %d\n", what, status);
  return status != 0;
}

static int walkFiles(int32_t handle) {
  uint32_t count = 0;
  if (failed("TalGetOpenFilesData", TalGetOpenFilesData(handle, &count)) || count == 0) return 1;
  for (uint32_t index = 0; index < count; ++index) {
    char name[TAL_NAME_SIZE] = {0};
    uint32_t size = sizeof(name);
    struct TalFileInfo info;
    memset(&info, 0, sizeof(info));
    if (failed("TalGetOpenFileName", TalGetOpenFileName(handle, index, &size, name))) return 1;
    if (failed("TalGetFileInfo2", TalGetFileInfo2(handle, name, &info))) return 1;
    if (size != strlen(name) || info.pageSize == 0) return 1;
  }
  return failed("TalFreeOpenFilesData", TalFreeOpenFilesData(handle));
}

static int walkClients(int32_t handle) {
  uint32_t count = 0;
  if (failed("TalGetZorbClientsData", TalGetZorbClientsData(handle, &count)) || count == 0) {
    return 1;
  }
  for (uint32_t index = 0; index < count; ++index) {
    struct tagTALCLIENTID id;
    struct TalClientInfo info;
    memset(&id, 0, sizeof(id));
    memset(&info, 0, sizeof(info));
    if (failed("TalGetZorbClientId", TalGetZorbClientId(handle, index, &id))) return 1;
    if (failed("TalGetZorbClientInfo", TalGetZorbClientInfo(handle, &id, &info))) return 1;
  }
  return failed("TalFreeZorbClientsData", TalFreeZorbClientsData(handle));
}

int main(void) {
  int32_t handle = 0;
  if (failed("TalStart", TalStart(NULL))) return 1;
  if (failed("TalConnectServer", TalConnectServer("sim:demo", "", "", &handle))) return 1;
  if (walkFiles(handle) || walkClients(handle)) return 1;
  if (failed("TalDisconnect", TalDisconnect(handle))) return 1;
  return failed("TalStop", TalStop(NULL));
}
