// Result codes of operating-system errors.
#pragma once

#include <cerrno>
#include <cstdint>

namespace orv {

// 0 is success. The codes are 0x80070000 plus a number: 2 for a missing file or folder, 5 for a
// refused access, 1117 for an input/output error (whose errno is 5), otherwise errno.
using Result = std::int32_t;

inline constexpr Result kFileNotFound = static_cast<Result>(0x80070002U);
inline constexpr Result kAccessDenied = static_cast<Result>(0x80070005U);
inline constexpr Result kInvalidArgument = static_cast<Result>(0x80070000U + EINVAL);
inline constexpr Result kFileTooLarge = static_cast<Result>(0x80070000U + EFBIG);
inline constexpr Result kInputOutputError = static_cast<Result>(0x8007045DU);

// The result code for an errno other than 0.
Result resultOfErrno(int error) noexcept;

}  // namespace orv
