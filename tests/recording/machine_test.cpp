// zelk-record on a machine that is in trouble: its disk is full, its clocks jump.
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "tests/program/program_under_test.h"
#include "tests/recording/recorder_under_test.h"

namespace companions::record {
namespace {

constexpr std::uint64_t kHour = 3'600'000'000;  // microseconds

class TroubledRecording : public Recording {
 protected:
  // The recorder on a disk of 64 KiB, which is the folder "disk" to it alone. A file named
  // "ballast" takes half of it.
  [[nodiscard]] Command onSmallDisk(const std::vector<std::string>& arguments) const {
    std::filesystem::create_directory(folder_ / "disk");
    Command command = recorder(arguments);
    const char* const script =
        "mount -t tmpfs -o size=64k none disk && head -c 32k /dev/zero >disk/ballast || exit 99; "
        "exec \"$@\"";
    std::vector<std::string> words = {"--mount", "--", "/bin/sh", "-c", script, "sh"};
    if (::geteuid() != 0) words.insert(words.begin(), {"--user", "--map-root-user"});
    words.push_back(command.program);
    words.insert(words.end(), command.arguments.begin(), command.arguments.end());
    command.program = "/usr/bin/unshare";
    command.arguments = words;
    return command;
  }

  // Waits for the pause; false if this machine lets nobody mount a disk.
  static bool isPaused(Process& process) {
    process.waitUntil([&] { return !process.error().empty(); }, "a pause");
    return !process.error().starts_with("unshare:") && !process.error().starts_with("mount:");
  }

  // The small disk of a recorder, as others see it.
  static std::filesystem::path diskOf(const Process& process) {
    return "/proc/" + std::to_string(process.id()) + "/cwd/disk";
  }

  [[nodiscard]] Command onOddMachine(std::vector<std::string> arguments) const {
    Command command = recorder(std::move(arguments));
    command.environment["LD_PRELOAD"] = ODD_MACHINE_LIBRARY;
    command.environment["ODD_MACHINE"] = folder_ / "machine";
    return command;
  }

  // From now on; see odd_machine.cpp.
  void setMachine(long wall, long steady, int diskError = 0) const {
    writeFile(folder_ / "new", std::to_string(wall) + " " + std::to_string(steady) + " " +
                                   std::to_string(diskError) + "\n");
    std::filesystem::rename(folder_ / "new", folder_ / "machine");
  }
};

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST_F(TroubledRecording, GoesOnWhenTheFullDiskHasRoomAgain) {
  serve("[[file]]\nname = \"orders {n}\"\ncount = 100\n");
  Process process(onSmallDisk({"-o", "disk/r"}));
  if (!isPaused(process)) GTEST_SKIP() << "no disk can be mounted: " << process.error();
  std::ifstream recording(diskOf(process) / "r");  // outlives the disk

  std::filesystem::remove(diskOf(process) / "ballast");
  process.waitUntil([&] { return contains(process.error(), "again"); }, "the end of the pause");
  stop(process);

  const auto all = momentsIn({std::istreambuf_iterator<char>(recording), {}});
  ASSERT_GE(all.size(), 2U);
  bool hasMissed = false;
  for (std::size_t at = 0; at < all.size(); ++at) {
    EXPECT_EQ(all[at]["sequence"], at + 1);
    hasMissed = hasMissed || all[at]["missed"] > 0;
  }
  EXPECT_TRUE(hasMissed);
  EXPECT_TRUE(process.error().starts_with(
      "zelk-record: disk/r: No space left on device; recording pauses until there is room\n"
      "zelk-record: recording again\n"))
      << process.error();
}

TEST_F(TroubledRecording, LeavesTheDiskAsMuchRoomAsItMust) {
  Process process(onSmallDisk({"-o", "disk/r", "--leave-free", "48K"}));
  if (!isPaused(process)) GTEST_SKIP() << "no disk can be mounted: " << process.error();
  EXPECT_EQ(readFile(diskOf(process) / "r"), "");

  std::filesystem::remove(diskOf(process) / "ballast");
  process.waitUntil([&] { return contains(process.error(), "again"); }, "the end of the pause");
  stop(process);

  EXPECT_TRUE(process.error().starts_with(
      "zelk-record: the disk has less room than --leave-free wants; recording pauses until there is "
      "room\nzelk-record: recording again\n"))
      << process.error();
}

// Whatever engine library is there is asked for each list once.
TEST_F(TroubledRecording, AsksTheLibraryThatIsPreloaded) {
  serve(
      "file = [{ name = \"orders\", handle = [{ client = \"anna\" }] }, { name = \"idle\" }]\n"
      "client = [{ id = \"anna\", handle = [{ file = \"orders\" }] }, { id = \"ben\" }]\n"
      "sql_connection = [{}]\n");
  Command command = recorder({"-n", "1", "-o", "r"});
  command.environment["LD_PRELOAD"] = program_tests::fakeEngine();
  command.environment["FAKE_SCENARIO"] = folder_ / "s.toml";
  command.environment["FAKE_TRACE"] = folder_ / "trace";

  const Result result = testing_support::run(command);

  EXPECT_EQ(result.ending, Ending::exit(0)) << result.error;
  EXPECT_EQ(moments("r").at(0)["file"][0]["handle"][0]["client"], "anna");
  EXPECT_EQ(file("trace"), R"(TalStart(null)
TalConnectServer(sim:s.toml, , )
TalGetEngineInformation(1)
TalGetZorbVersion(1)
TalGetOpenFilesData(1)
TalGetOpenFileName(1, 0)
TalGetFileInfo2(1, orders)
TalGetFileHandlesData(1, orders)
TalGetFileHandleInfo(1, orders, 0)
TalGetOpenFileName(1, 1)
TalGetFileInfo2(1, idle)
TalGetFileHandlesData(1, idle)
TalFreeOpenFilesData(1)
TalGetZorbClientsData(1)
TalGetZorbClientId(1, 0)
TalGetZorbClientInfo(1, anna/0/0)
TalGetZorbClientHandlesData(1, anna/0/0)
TalGetZorbClientHandleInfo(1, anna/0/0, 0)
TalGetZorbClientId(1, 1)
TalGetZorbClientInfo(1, ben/0/0)
TalGetZorbClientHandlesData(1, ben/0/0)
TalFreeZorbClientsData(1)
TalGetSQLConnectionsData(1)
TalGetSQLConnectionInfo2(1, 0)
TalFreeSQLConnectionsData(1)
TalGetZorbUsageEx2(1)
TalGetZorbCommStatEx(1)
TalDisconnect(1)
TalStop(null)
)");
}

// A disk far away says so when it is waited for.
TEST_F(TroubledRecording, PausesWhenTheDiskTurnsOutToBeFull) {
  setMachine(0, 0, ENOSPC);
  Process process(onOddMachine({"-i", "1", "-o", "r"}));

  process.waitUntil([&] { return !process.error().empty(); }, "a pause");
  const std::string paused = file("r");
  setMachine(0, 0);
  waitForMoments(process, "r", 1);
  stop(process);

  EXPECT_EQ(paused, "");
  EXPECT_EQ(moments("r").at(0)["sequence"], 1);
  EXPECT_GE(moments("r").at(0)["missed"], 1);
  EXPECT_EQ(process.error(),
            "zelk-record: r: No space left on device; recording pauses until there is room\n"
            "zelk-record: recording again\n");
}

TEST_F(TroubledRecording, OutlivesClocksThatJump) {
  setMachine(0, 0);
  Process process(onOddMachine({"-o", "r"}));
  const auto recordTwo = [&] {
    waitForMoments(process, "r", static_cast<int>(moments("r").size()) + 2);
    return moments("r").back();
  };

  const json start = recordTwo();
  setMachine(-7200, 0);  // the clock is set back
  const json back = recordTwo();
  setMachine(7200, 0);  // and forward
  const json forward = recordTwo();
  setMachine(10800, 3600);  // the machine sleeps
  const json awake = recordTwo();
  recordTwo();  // what the sleep missed counts once
  stop(process);

  const auto elapsed = [](const json& moment) { return moment["elapsed_us"].get<std::uint64_t>(); };
  EXPECT_LT(back["time"], start["time"]);
  EXPECT_GT(forward["time"], start["time"]);
  EXPECT_LT(elapsed(forward), kHour);
  EXPECT_GT(elapsed(awake), kHour);
  std::uint64_t missed = 0;
  std::uint64_t last = 0;
  for (const json& moment : moments("r")) {
    EXPECT_GE(elapsed(moment), last);
    last = elapsed(moment);
    missed += moment["missed"].get<std::uint64_t>();
  }
  // Ten moments each second, recorded or missed.
  const std::uint64_t ticks = missed + moments("r").size();
  EXPECT_GE(ticks, kHour / 100'000);
  EXPECT_LE(ticks, elapsed(moments("r").back()) / 100'000 + 1);
}

TEST_F(TroubledRecording, BeginsAFileEachDayAndKeepsTwo) {
  constexpr long kDay = 86'400;
  const auto days = [&] {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with("day-")) names.push_back(name);
    }
    std::ranges::sort(names);
    return names;
  };
  setMachine(0, 0);
  Process process(onOddMachine({"-o", "day-%F", "--utc", "--keep", "2"}));
  process.waitUntil([&] { return days().size() == 1; }, "a file");
  const std::string first = days().at(0);

  setMachine(kDay, 0);
  process.waitUntil([&] { return days().size() == 2; }, "a second file");
  setMachine(2 * kDay, 0);
  process.waitUntil([&] { return days().at(0) != first; }, "a third file");
  stop(process);

  EXPECT_EQ(days().size(), 2U);
  EXPECT_EQ(moments(days().at(0)).at(0)["run"], moments(days().at(1)).at(0)["run"]);
}

}  // namespace
}  // namespace companions::record
