#include "tests/program/servers/shared_memory.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <fstream>
#include <sstream>
#include <string>

namespace servers_testing {

SharedMemory::SharedMemory(pid_t process) {
  std::ifstream maps("/proc/" + std::to_string(process) + "/maps");
  for (std::string line; std::getline(maps, line);) {
    std::istringstream fields(line);
    std::string addresses;
    std::string permissions;
    std::string offset;
    std::string device;
    long inode = 0;  // of a segment: its number
    std::string name;
    fields >> addresses >> permissions >> offset >> device >> inode >> name;
    if (name.starts_with("/SYSV")) segments_.push_back(static_cast<int>(inode));
  }
}

void SharedMemory::remove() const {
  for (const int segment : segments_) ::shmctl(segment, IPC_RMID, nullptr);
}

}  // namespace servers_testing
