/*
 * The engine's monitoring interface: 23 plain functions and the structures that they fill.
 *
 * Valid C11 and C++20. zelk imports the functions from libtal.so; whoever has another engine
 * puts a library with these symbols in its place. Every function returns a 16-bit status:
 * 0 is success, three others have a meaning of their own (below), all others are errors.
 *
 * The layout is fixed. Natural alignment with named gaps gives every offset; the asserts at the
 * end hold each row. A caller clears a structure before each call. Texts are narrow, closed by a
 * NUL or by the end of their field. Integers are little-endian, as on the host.
 *
 * Different connections may be used by different threads at the same time, one connection by one
 * thread at a time. TalStart and TalStop come first and last.
 */
#ifndef ZELK_ENGINE_TAL_H
#define ZELK_ENGINE_TAL_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Statuses that end or shorten a list without being an error. */
enum {
  TAL_STATUS_NO_ENTRY = 7008,    /* no entry at this index: the list ends early */
  TAL_STATUS_CLIENT_GONE = 7010, /* the client asked about is no longer known */
  TAL_STATUS_FILE_CLOSED = 7015  /* the file asked about is no longer open */
};

enum {
  TAL_NAME_SIZE = 1024,   /* bytes of the name buffer of TalGetOpenFileName */
  TAL_PROTOCOL_COUNT = 64 /* protocol entries that the communication statistics hold */
};

/* Identifies one record-level client; passed back to the library unchanged. */
struct tagTALCLIENTID {
  char text[12];
  uint16_t first;
  uint16_t task;
};

struct TalVersion {
  int32_t major;
  int32_t minor;
  int32_t build;
};

/* Flags are character codes: 'Y' (89), 'N' (78), anything else is not known. */
struct TalFileInfo {
  uint8_t gap0[1];
  uint8_t recordLocks;
  uint8_t transactionLock;
  uint8_t gap3[1];
  uint8_t readOnly;
  uint8_t gap5[11];
  uint32_t pageSize;
  uint8_t gap20[16];
  uint32_t sizeKb;
  uint8_t gap40[72];
};

struct TalFileHandleInfo {
  uint32_t clientIndex;
  uint8_t openMode;
  uint8_t recordLockType;
  uint8_t waitState;
  uint8_t gap7[1];
  uint16_t transactionState;
  char clientName[70];
};

struct TalClientInfo {
  int32_t site; /* only the low 16 bits are used */
  char networkAddress[80];
  uint16_t reserved;
  uint8_t gap86[2];
  uint32_t recordsDeleted;
  uint32_t recordsUpdated;
  uint32_t recordsInserted;
  uint32_t recordsRead;
  uint32_t diskAccesses;
  uint32_t cacheAccesses;
  uint32_t locksUsed;
  int32_t transactionState; /* only the low 16 bits are used */
  uint32_t processId;
  uint32_t connectionNumber;
  char sessionName[256];
};

struct TalClientHandleInfo {
  uint8_t openMode;
  uint8_t recordLockType;
  uint8_t waitState;
  uint8_t gap3[1];
  uint16_t transactionState;
  char fileName[1024];
  uint8_t gap1030[2];
};

struct TalSqlConnectionInfo {
  char clientHost[65];
  char dataSource[33];
  char application[256];
  char networkAddress[66];
  char userName[66];
  uint16_t status;
  uint32_t periodMs;  /* of the present activity or idleness, milliseconds */
  uint32_t totalTime; /* since the connection was made */
};

struct TalGauge {
  uint32_t current;
  uint32_t peak;
  int32_t maximum;
};

struct TalUsage {
  struct TalGauge users;
  struct TalGauge files;
  struct TalGauge handles;
  struct TalGauge transactions;
  struct TalGauge clients;
  struct TalGauge workerThreads;
  uint32_t locksCurrent;
  uint32_t locksPeak;
  struct TalGauge dataMb;
  struct TalGauge sessions;
  uint32_t upTimeSeconds;
};

struct TalProtocol {
  uint32_t code;
  uint32_t requests;
  uint32_t currentSessions;
  uint32_t peakSessions;
};

struct TalCommStat {
  uint32_t requests;
  uint32_t counters[3]; /* carried unchanged */
  uint32_t remoteCurrent;
  uint32_t remotePeak;
  uint32_t remoteMaximum;
  uint32_t threadsCurrent;
  uint32_t threadsPeak;
  uint32_t threadsMaximum;
  uint32_t protocolCount; /* entries that follow; never read beyond TAL_PROTOCOL_COUNT */
  uint32_t timeouts;
  uint32_t recoveries;
  struct TalProtocol protocols[TAL_PROTOCOL_COUNT];
};

/* Life of the library and of a connection. The reserved pointer is null. Server, user and
 * password are NUL-terminated texts of at most 255 bytes. Handle -1 is the local engine, which
 * needs no connecting. */
int16_t TalStart(void* reserved);
int16_t TalStop(void* reserved);
int16_t TalConnectServer(const char* server, const char* user, const char* password,
                         int32_t* handle);
int16_t TalDisconnect(int32_t handle);

/* One call, one answer. */
int16_t TalGetEngineInformation(int32_t handle, uint8_t* flag, int32_t* first, int32_t* second,
                                int32_t* third, int32_t* engineType);
int16_t TalGetZorbVersion(int32_t handle, struct TalVersion* version);
int16_t TalGetZorbUsageEx2(int32_t handle, struct TalUsage* usage);
int16_t TalGetZorbCommStatEx(int32_t handle, struct TalCommStat* statistics);

/* Lists. A ...Data call takes a snapshot and tells its length, indexes run from 0, the TalFree...
 * call releases it. The size of a file name is 1024 before the call. */
int16_t TalGetOpenFilesData(int32_t handle, uint32_t* count);
int16_t TalGetOpenFileName(int32_t handle, uint32_t index, uint32_t* size, char* name);
int16_t TalGetFileInfo2(int32_t handle, const char* name, struct TalFileInfo* info);
int16_t TalFreeOpenFilesData(int32_t handle);
int16_t TalGetFileHandlesData(int32_t handle, const char* name, uint32_t* count);
int16_t TalGetFileHandleInfo(int32_t handle, const char* name, uint32_t index,
                             struct TalFileHandleInfo* info);
int16_t TalGetZorbClientsData(int32_t handle, uint32_t* count);
int16_t TalGetZorbClientId(int32_t handle, uint32_t index, struct tagTALCLIENTID* client);
int16_t TalGetZorbClientInfo(int32_t handle, const struct tagTALCLIENTID* client,
                             struct TalClientInfo* info);
int16_t TalGetZorbClientHandlesData(int32_t handle, const struct tagTALCLIENTID* client,
                                    uint32_t* count);
int16_t TalGetZorbClientHandleInfo(int32_t handle, const struct tagTALCLIENTID* client,
                                   uint32_t index, struct TalClientHandleInfo* info);
int16_t TalFreeZorbClientsData(int32_t handle);
int16_t TalGetSQLConnectionsData(int32_t handle, uint32_t* count);
int16_t TalGetSQLConnectionInfo2(int32_t handle, uint32_t index, struct TalSqlConnectionInfo* info);
int16_t TalFreeSQLConnectionsData(int32_t handle);

#ifdef __cplusplus
}
#endif

#ifdef __cplusplus
#define TAL_LAYOUT(condition) static_assert(condition, #condition)
#define TAL_WIDTH(type, field) sizeof(type::field)
#else
#define TAL_LAYOUT(condition) _Static_assert(condition, #condition)
#define TAL_WIDTH(type, field) sizeof(((struct type*)0)->field)
#endif
#define TAL_FIELD(type, field, at, width)           \
  TAL_LAYOUT(offsetof(struct type, field) == (at)); \
  TAL_LAYOUT(TAL_WIDTH(type, field) == (width))

TAL_FIELD(tagTALCLIENTID, text, 0, 12);
TAL_FIELD(tagTALCLIENTID, first, 12, 2);
TAL_FIELD(tagTALCLIENTID, task, 14, 2);
TAL_LAYOUT(sizeof(struct tagTALCLIENTID) == 16);

TAL_FIELD(TalVersion, major, 0, 4);
TAL_FIELD(TalVersion, minor, 4, 4);
TAL_FIELD(TalVersion, build, 8, 4);
TAL_LAYOUT(sizeof(struct TalVersion) == 12);

TAL_FIELD(TalFileInfo, recordLocks, 1, 1);
TAL_FIELD(TalFileInfo, transactionLock, 2, 1);
TAL_FIELD(TalFileInfo, readOnly, 4, 1);
TAL_FIELD(TalFileInfo, pageSize, 16, 4);
TAL_FIELD(TalFileInfo, sizeKb, 36, 4);
TAL_LAYOUT(sizeof(struct TalFileInfo) == 112);

TAL_FIELD(TalFileHandleInfo, clientIndex, 0, 4);
TAL_FIELD(TalFileHandleInfo, openMode, 4, 1);
TAL_FIELD(TalFileHandleInfo, recordLockType, 5, 1);
TAL_FIELD(TalFileHandleInfo, waitState, 6, 1);
TAL_FIELD(TalFileHandleInfo, transactionState, 8, 2);
TAL_FIELD(TalFileHandleInfo, clientName, 10, 70);
TAL_LAYOUT(sizeof(struct TalFileHandleInfo) == 80);

TAL_FIELD(TalClientInfo, site, 0, 4);
TAL_FIELD(TalClientInfo, networkAddress, 4, 80);
TAL_FIELD(TalClientInfo, reserved, 84, 2);
TAL_FIELD(TalClientInfo, recordsDeleted, 88, 4);
TAL_FIELD(TalClientInfo, recordsUpdated, 92, 4);
TAL_FIELD(TalClientInfo, recordsInserted, 96, 4);
TAL_FIELD(TalClientInfo, recordsRead, 100, 4);
TAL_FIELD(TalClientInfo, diskAccesses, 104, 4);
TAL_FIELD(TalClientInfo, cacheAccesses, 108, 4);
TAL_FIELD(TalClientInfo, locksUsed, 112, 4);
TAL_FIELD(TalClientInfo, transactionState, 116, 4);
TAL_FIELD(TalClientInfo, processId, 120, 4);
TAL_FIELD(TalClientInfo, connectionNumber, 124, 4);
TAL_FIELD(TalClientInfo, sessionName, 128, 256);
TAL_LAYOUT(sizeof(struct TalClientInfo) == 384);

TAL_FIELD(TalClientHandleInfo, openMode, 0, 1);
TAL_FIELD(TalClientHandleInfo, recordLockType, 1, 1);
TAL_FIELD(TalClientHandleInfo, waitState, 2, 1);
TAL_FIELD(TalClientHandleInfo, transactionState, 4, 2);
TAL_FIELD(TalClientHandleInfo, fileName, 6, 1024);
TAL_LAYOUT(sizeof(struct TalClientHandleInfo) == 1032);

TAL_FIELD(TalSqlConnectionInfo, clientHost, 0, 65);
TAL_FIELD(TalSqlConnectionInfo, dataSource, 65, 33);
TAL_FIELD(TalSqlConnectionInfo, application, 98, 256);
TAL_FIELD(TalSqlConnectionInfo, networkAddress, 354, 66);
TAL_FIELD(TalSqlConnectionInfo, userName, 420, 66);
TAL_FIELD(TalSqlConnectionInfo, status, 486, 2);
TAL_FIELD(TalSqlConnectionInfo, periodMs, 488, 4);
TAL_FIELD(TalSqlConnectionInfo, totalTime, 492, 4);
TAL_LAYOUT(sizeof(struct TalSqlConnectionInfo) == 496);

TAL_LAYOUT(sizeof(struct TalGauge) == 12);
TAL_FIELD(TalUsage, users, 0, 12);
TAL_FIELD(TalUsage, files, 12, 12);
TAL_FIELD(TalUsage, handles, 24, 12);
TAL_FIELD(TalUsage, transactions, 36, 12);
TAL_FIELD(TalUsage, clients, 48, 12);
TAL_FIELD(TalUsage, workerThreads, 60, 12);
TAL_FIELD(TalUsage, locksCurrent, 72, 4);
TAL_FIELD(TalUsage, locksPeak, 76, 4);
TAL_FIELD(TalUsage, dataMb, 80, 12);
TAL_FIELD(TalUsage, sessions, 92, 12);
TAL_FIELD(TalUsage, upTimeSeconds, 104, 4);
TAL_LAYOUT(sizeof(struct TalUsage) == 108);

TAL_LAYOUT(sizeof(struct TalProtocol) == 16);
TAL_FIELD(TalCommStat, requests, 0, 4);
TAL_FIELD(TalCommStat, counters, 4, 12);
TAL_FIELD(TalCommStat, remoteCurrent, 16, 4);
TAL_FIELD(TalCommStat, remotePeak, 20, 4);
TAL_FIELD(TalCommStat, remoteMaximum, 24, 4);
TAL_FIELD(TalCommStat, threadsCurrent, 28, 4);
TAL_FIELD(TalCommStat, threadsPeak, 32, 4);
TAL_FIELD(TalCommStat, threadsMaximum, 36, 4);
TAL_FIELD(TalCommStat, protocolCount, 40, 4);
TAL_FIELD(TalCommStat, timeouts, 44, 4);
TAL_FIELD(TalCommStat, recoveries, 48, 4);
TAL_FIELD(TalCommStat, protocols, 52, 1024);
TAL_LAYOUT(sizeof(struct TalCommStat) == 1076);

#undef TAL_FIELD
#undef TAL_WIDTH
#undef TAL_LAYOUT

#endif
