#include "orv/Result.h"

#include <cerrno>

namespace orv {

Result resultOfErrno(int error) noexcept {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return kFileNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
      return kAccessDenied;
    case EIO:
      return kInputOutputError;
    default:
      return static_cast<Result>(0x80070000U + static_cast<std::uint32_t>(error));
  }
}

}  // namespace orv
