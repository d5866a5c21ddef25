// The figures of the server as a whole, sane and hostile, decoded without a server.
#include <gtest/gtest.h>

#include <limits>

#include "tal/mariadb/read_figures.h"
#include "tal/status.h"
#include "tests/sql/table.h"

namespace tal::mariadb {
namespace {

using testing_support::Table;

constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();

std::string text(const Gauge& gauge) {
  return std::to_string(gauge.current) + "/" + std::to_string(gauge.peak) + "/" +
         std::to_string(gauge.maximum);
}

TEST(UsageReaderTest, EachFigureHasItsPlace) {
  UsageReader reader;
  Table rows({
      {"UPTIME",                  "77"     },
      {"THREADS_CONNECTED",       "5"      },
      {"THREADS_CACHED",          "3"      },
      {"MAX_USED_CONNECTIONS",    "9"      },
      {"MAX_CONNECTIONS",         "151"    },
      {"OPEN_FILES",              "40"     },
      {"INNODB_NUM_OPEN_FILES",   "60"     },
      {"OPEN_FILES_LIMIT",        "1024"   },
      {"OPEN_TABLES",             "12"     },
      {"TABLE_OPEN_CACHE",        "2000"   },
      {"THREADPOOL_THREADS",      "8"      },
      {"THREAD_POOL_MAX_THREADS", "65536"  },
      {"x_thread_pool",           "0"      },
      {"x_transactions",          "2"      },
      {"x_locks",                 "31"     },
      {"x_data_bytes",            "1048577"}
  });

  const Usage usage = reader.read(rows);

  EXPECT_EQ(text(usage.users), "5/9/151");
  EXPECT_EQ(text(usage.files), "100/100/1024");
  EXPECT_EQ(text(usage.handles), "12/12/2000");
  EXPECT_EQ(text(usage.transactions), "2/2/0");
  EXPECT_EQ(text(usage.clients), "5/9/151");
  EXPECT_EQ(text(usage.workerThreads), "8/8/0");
  EXPECT_EQ(text(usage.locks), "31/31/0");
  EXPECT_EQ(text(usage.dataMb), "2/2/0");
  EXPECT_EQ(text(usage.sessions), "5/9/151");
  EXPECT_EQ(usage.upTimeSeconds, 77U);
}

TEST(UsageReaderTest, ThreadPoolAndPeaks) {
  UsageReader reader;
  Table first({
      {"UPTIME",                  "1"  },
      {"x_thread_pool",           "1"  },
      {"THREADPOOL_THREADS",      "8"  },
      {"OPEN_TABLES",             "90" },
      {"THREAD_POOL_MAX_THREADS", "500"}
  });
  Table second({
      {"UPTIME",                  "2"  },
      {"x_thread_pool",           "1"  },
      {"THREADPOOL_THREADS",      "6"  },
      {"OPEN_TABLES",             "7"  },
      {"THREAD_POOL_MAX_THREADS", "500"}
  });
  reader.read(first);

  const Usage usage = reader.read(second);

  EXPECT_EQ(text(usage.workerThreads), "6/8/500");
  EXPECT_EQ(text(usage.handles), "7/90/0");
}

TEST(UsageReaderTest, FlushedPeakIsNotBelowThePresent) {
  UsageReader reader;
  Table rows({
      {"UPTIME",               "1"},
      {"THREADS_CONNECTED",    "5"},
      {"MAX_USED_CONNECTIONS", "4"}
  });

  EXPECT_EQ(text(reader.read(rows).sessions), "5/5/0");
}

TEST(UsageReaderTest, SumsDoNotOverflow) {
  UsageReader reader;
  const char* const largest = "9223372036854775807";
  Table rows({
      {"UPTIME",                "1"    },
      {"OPEN_FILES",            largest},
      {"INNODB_NUM_OPEN_FILES", largest},
      {"THREADS_CONNECTED",     largest},
      {"THREADS_CACHED",        largest}
  });

  const Usage usage = reader.read(rows);

  EXPECT_EQ(usage.files.current, kLargest);
  EXPECT_EQ(usage.workerThreads.current, kLargest);
}

TEST(NamedValuesTest, AnswerWithoutRowsIsNoServerThatDoesNothing) {
  Table usage({});
  Table communication({});

  EXPECT_THROW(UsageReader().read(usage), Failure);
  EXPECT_THROW(CommunicationReader().read(communication, true), Failure);
}

TEST(CommunicationReaderTest, EachFigureHasItsPlace) {
  CommunicationReader reader;
  Table rows({
      {"QUESTIONS",            "9999999999"},
      {"THREADS_CONNECTED",    "5"         },
      {"MAX_USED_CONNECTIONS", "9"         },
      {"ABORTED_CLIENTS",      "4"         },
      {"MAX_CONNECTIONS",      "151"       },
      {"x_tcp_sessions",       "3"         },
      {"x_tcp_requests",       "1234"      }
  });

  const Communication result = reader.read(rows, true);

  EXPECT_EQ(result.requests, kLargest);
  EXPECT_EQ(text(result.remoteSessions), "3/3/151");
  EXPECT_EQ(text(result.threads), "5/9/151");
  EXPECT_EQ(result.timeouts, 4U);
  EXPECT_EQ(result.recoveries, 0U);
  ASSERT_EQ(result.protocols.size(), 1U);
  EXPECT_EQ(result.protocols[0].code, kTcpIpProtocol);
  EXPECT_EQ(result.protocols[0].requests, 1234U);
  EXPECT_EQ(result.protocols[0].currentSessions, 3U);
  EXPECT_EQ(result.protocols[0].peakSessions, 3U);
}

TEST(CommunicationReaderTest, NoProtocolWithoutNetworking) {
  CommunicationReader reader;
  Table rows({
      {"QUESTIONS",       "1"},
      {"ABORTED_CLIENTS", "0"}
  });

  EXPECT_TRUE(reader.read(rows, false).protocols.empty());
}

}  // namespace
}  // namespace tal::mariadb
