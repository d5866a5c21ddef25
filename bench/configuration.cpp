#include "bench/configuration.h"

namespace bench {
namespace {

constexpr long kHandlesPerFile = 100;

}  // namespace

std::string configuration(const std::map<std::string, std::string>& values) {
  std::map<std::string, std::string> all = values;
  all.merge(std::map<std::string, std::string>{
      {"SERV", ""    },
      {"USER", ""    },
      {"PASS", ""    },
      {"REFR", "0"   },
      {"LIMI", "0"   },
      {"OUTP", "FILE"},
      {"NAME", ""    },
      {"FILE", "NO"  },
      {"SESS", "NO"  },
      {"CONN", "NO"  },
      {"RESO", "NO"  },
      {"COMM", "NO"  },
      {"HAND", "YES" },
  });
  std::string text;
  for (const auto& [key, value] : all) text.append(key).append("=").append(value).append("\n");
  return text;
}

std::string scenario(long handles) {
  if (handles == 0) return "";
  return "[[file]]\nname = '/data/shop/orders_{n}.dat'\ncount = " +
         std::to_string(handles / kHandlesPerFile) +
         "\npage_size = 4096\nread_only = 'no'\n"
         "[[file.handle]]\nclient = 'app01@shop'\ncount = " +
         std::to_string(kHandlesPerFile) + "\nopen_mode = 'normal'\nrecord_lock = 'single'\n";
}

}  // namespace bench
