#include "tests/program/fake/faults/small_engine.h"

namespace program_tests {

std::string fileName(int index) { return "/FILE" + std::to_string(index); }

std::string clientId(int index) { return "client" + std::to_string(index); }

std::string fileRecords(int index, int handles) {
  std::string records = "file\t" + fileName(index) + "\t4096\t78\t78\t89\t64\n";
  for (int handle = 0; handle < handles; ++handle) {
    records += "handle\t" + std::to_string(handle) + "\t0\t78\t0\t0\tAPP\n";
  }
  return records;
}

std::string clientRecords(int index, int handles) {
  const std::string number = std::to_string(index);
  std::string records = "client\t" + clientId(index) + "\t0\t" + number +
                        "\t1\taddress\t1\t2\t3\t4\t5\t6\t7\t0\t8\t9\tsession " + number + "\n";
  for (int handle = 0; handle < handles; ++handle) {
    records += "handle\t0\t78\t0\t0\t/HANDLE" + std::to_string(handle) + "\n";
  }
  return records;
}

std::string connectionRecord(int index) {
  return "connection\thost" + std::to_string(index) +
         "\tDSN\tapplication\taddress\tuser\t1\t2\t3\n";
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
