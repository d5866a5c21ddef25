#include "tal/postgresql/errors.h"

#include <gtest/gtest.h>

namespace tal::postgresql {
namespace {

TEST(ErrorsTest, StatusOfEachCode) {
  struct Row {
    std::string_view sqlState;
    Status status;
  };
  constexpr Row kRows[] = {
      {"28P01",  Status::kLoginRefused    },
      {"28000",  Status::kLoginRefused    },
      {"3D000",  Status::kUnknownDatabase },
      {"42501",  Status::kPrivilegeMissing},
      {"53300",  Status::kNoConnectionSlot},
      {"57P03",  Status::kServerNotReady  },
      {"57P01",  Status::kConnectionLost  },
      {"57P02",  Status::kConnectionLost  },
      {"57P05",  Status::kConnectionLost  },
      {"08003",  Status::kConnectionLost  },
      {"08006",  Status::kConnectionLost  },
      {"57014",  Status::kNoAnswer        },
      {"55P03",  Status::kCatalogLocked   },
      {"42P01",  Status::kServerError     },
      {"XX000",  Status::kServerError     },
      {"",       Status::kServerError     },
      {"28p01",  Status::kServerError     },
      {"28P011", Status::kServerError     },
  };

  for (const Row& row : kRows) {
    EXPECT_EQ(statusOf(row.sqlState), row.status) << row.sqlState;
  }
}

TEST(ErrorsTest, CodeInALoginMessage) {
  struct Row {
    std::string_view message;
    std::string_view sqlState;
  };
  constexpr Row kRows[] = {
      {"connection to server at \"127.0.0.1\", port 5432 failed: FATAL:  28P01\n", "28P01"},
      {"failed: FATAL:  28P01\nfailed: FATAL:  28000\n",                           "28P01"},
      {"failed: Connection refused\nfailed: FATAL:  3D000",                        "3D000"},
      {"Verbindung gescheitert: FATAL:  53300\n",                                  "53300"},
      {"failed: Connection refused\n\tIs the server running?\n",                   ""     },
      {"ends in lower case 28p01\n",                                               ""     },
      {"beside the digits 2800/\n",                                                ""     },
      {"beside the digits 2800:\n",                                                ""     },
      {"beside the letters 28P0@\n",                                               ""     },
      {"beside the letters 28P0[\n",                                               ""     },
      {"not a word:28P01\n",                                                       ""     },
      {"longer than a code 128P01\n",                                              ""     },
      {" 28P01",                                                                   "28P01"},
      {"28P01",                                                                    ""     },
      {"\n\n\n",                                                                   ""     },
      {"",                                                                         ""     },
  };

  for (const Row& row : kRows) {
    EXPECT_EQ(sqlStateIn(row.message), row.sqlState) << row.message;
  }
}

}  // namespace
}  // namespace tal::postgresql
