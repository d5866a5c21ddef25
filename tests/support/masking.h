// Masks the parts of an output that differ from run to run.
#pragma once

#include <string>

namespace testing_support {

// Replaces the times that zelk prints by placeholders of the same length. Only well-formed times
// are replaced, so that a wrong form is noticed. Expected files hold the placeholders:
//
//   <Ddd Mmm 00 00:00:00 UTC 0000>            the first line of the settings in text
//   *** START RECORD 00/00/00 00:00 XM ***    the start line in text
//   \t"time": "0000-00-00T00:00:00+0000",     and "start_record_time", in JSON
std::string maskTimes(std::string text);

}  // namespace testing_support
