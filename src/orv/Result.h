// Result codes of operating-system errors.
#pragma once

#include <cstdint>

namespace orv {

// 0 is success. The codes are 0x80070000 plus a number: 2 for a missing file or folder, 5 for a
// refused access, otherwise errno (so that
// an input/output error, errno 5, reads as a refused access).
using Result = std::int32_t;

inline constexpr Result kFileNotFound = static_cast<Result>(0x80070002U);
inline constexpr Result kAccessDenied = static_cast<Result>(0x80070005U);

// The result code for an errno other than 0.
Result resultOfErrno(int error) noexcept;

}  // namespace orv
