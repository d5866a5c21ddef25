#include "tests/program/fake/faults/small_engine.h"

namespace program_tests {
namespace {

std::string handleRecords(const std::string& values, int count) {
  return "handle = [{ " + values + ", record_lock = 'none', count = " + std::to_string(count) +
         " }]\n";
}

}  // namespace

std::string fileName(int index) { return "/FILE" + std::to_string(index); }

std::string clientId(int index) { return "client" + std::to_string(index); }

std::string fileRecords(int index, int handles) {
  return "[[file]]\nname = '" + fileName(index) +
         "'\npage_size = 4096\nread_only = 'no'\nrecord_locks = 'no'\ntransaction_lock = 'yes'\n"
         "size_kb = 64\n" +
         handleRecords("client = 'APP', client_index = { each = 1 }", handles);
}

std::string clientRecords(int index, int handles) {
  const std::string number = std::to_string(index);
  return "[[client]]\nid = '" + clientId(index) + "'\ntask_number = " + number +
         "\nsite = 'local'\nnetwork_address = 'address'\nrecords_deleted = 1\n"
         "records_updated = 2\nrecords_inserted = 3\nrecords_read = 4\ndisk_accesses = 5\n"
         "cache_accesses = 6\nlocks_used = 7\nprocess_id = 8\nconnection_number = 9\n"
         "session_name = 'session " +
         number + "'\n" + handleRecords("file = '/HANDLE{n}'", handles);
}

std::string connectionRecord(int index) {
  return "[[sql_connection]]\nclient_host = 'host" + std::to_string(index) +
         "'\ndata_source = 'DSN'\napplication = 'application'\nnetwork_address = 'address'\n"
         "user_name = 'user'\nstatus = 'active'\nperiod_ms = 2\ntotal_time = 3\n";
}

std::string wholeEngine() {
  std::string records;
  for (int index = 0; index < kEntries; ++index) {
    records += fileRecords(index, kHandles);
    records += clientRecords(index, kHandles);
    records += connectionRecord(index);
  }
  return records;
}

}  // namespace program_tests
