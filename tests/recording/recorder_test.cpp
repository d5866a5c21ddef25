// zelk-record as a whole, over the simulated engine.
#include "tests/recording/recorder_under_test.h"

#include <chrono>
#include <thread>

#include "tests/support/terminal.h"

namespace companions::record {
namespace {

std::string replaced(std::string text, const std::string& part, const std::string& by) {
  return text.replace(text.find(part), part.size(), by);
}

TEST_F(Recording, GoesToStandardOutputOrIntoAFileOfTheOwner) {
  const Result result = testing_support::run(recorder({"-n", "2"}));
  record({"-n", "2", "-o", "r"});

  for (const auto& moments : {momentsIn(result.output), moments("r")}) {
    ASSERT_EQ(moments.size(), 2U) << result.error;
    EXPECT_EQ(moments[1]["sequence"], 2);
    EXPECT_EQ(moments[1]["server"], "sim:s.toml");
    EXPECT_EQ(moments[1]["interval_us"], 100'000);
    EXPECT_EQ(moments[1]["run"], moments[0]["run"]);
    EXPECT_EQ(moments[0]["missed"], 0);
    EXPECT_GE(moments[1]["elapsed_us"], 100'000);
    EXPECT_EQ(moments[1]["file"][0]["name"], "orders");
  }
  EXPECT_EQ(std::filesystem::status(folder_ / "r").permissions(), std::filesystem::perms(0600));
}

TEST_F(Recording, HasTheIntervalOfTheConfigurationOrTenSeconds) {
  Command command = recorder({"-n", "1", "-o", "r"});
  std::erase(command.arguments, "-i");
  std::erase(command.arguments, "0.1");
  for (const auto& [rate, interval] : {
           std::pair{"7", 7'000'000 },
           std::pair{"",  10'000'000}
  }) {
    writeFile(folder_ / "r.cfg", replaced(file("r.cfg"), "REFR=", std::string("REFR=") + rate));
    EXPECT_EQ(testing_support::run(command).ending, Ending::exit(0));
    EXPECT_EQ(moments("r").back()["interval_us"], interval);
    configure("sim:s.toml");
  }
}

TEST_F(Recording, LeavesOutWhatTheConfigurationSwitchesOff) {
  writeFile(folder_ / "r.cfg",
            "SERV=sim:demo\nUSER=\nPASS=\nREFR=\nLIMI=\nOUTP=CONSOLE\nNAME=\nFILE=no\nSESS=yes\n"
            "CONN=no\nRESO=no\nCOMM=no\nHAND=no\n");

  record({"-n", "1", "-o", "r"});

  const json moment = moments("r").at(0);
  EXPECT_TRUE(moment.contains("engine") && moment.contains("version"));
  for (const char* const off : {"file", "sql_connection", "usage", "communication"}) {
    EXPECT_FALSE(moment.contains(off)) << off;
  }
  EXPECT_GT(moment["client"][0]["handle"].size(), 0U);
}

TEST_F(Recording, GoesOnAfterALoss) {
  serve("[[fault]]\ncall = \"TalGetZorbUsageEx2\"\nstatus = 7106\nrefresh = 2\n");

  record({"-n", "3", "-o", "r"});

  const auto all = moments("r");
  ASSERT_EQ(all.size(), 3U);
  EXPECT_FALSE(all[0].contains("error"));
  EXPECT_EQ(all[1]["error"]["call"], "TalGetZorbUsageEx2");
  EXPECT_EQ(all[1]["error"]["status"], 7106);
  EXPECT_EQ(all[1]["error"]["text"].get<std::string>().find("The connection to the server"), 0U);
  EXPECT_TRUE(all[1].contains("sql_connection"));
  EXPECT_FALSE(all[1].contains("usage") || all[1].contains("communication"));
  EXPECT_FALSE(all[2].contains("error"));
  EXPECT_GE(all[2]["missed"], 5);
}

TEST_F(Recording, NeedsTheServerAtItsStartOrWaits) {
  serve("[[fault]]\ncall = \"TalConnectServer\"\nstatus = 7103\n");

  const Result refused = testing_support::run(recorder({"-o", "r"}));
  const bool wasMade = std::filesystem::exists(folder_ / "r");
  record({"-o", "r", "--wait", "-n", "2"});

  EXPECT_EQ(refused.ending, Ending::exit(1));
  EXPECT_EQ(refused.error.find("zelk-record: 7103: The server cannot be reached"), 0U);
  EXPECT_FALSE(wasMade);
  EXPECT_EQ(moments("r").at(1)["error"]["call"], "TalConnectServer");
}

// All that does not depend on when it was recorded.
std::vector<json> timeless(std::vector<json> moments) {
  for (json& moment : moments) {
    for (const char* const key :
         {"run", "time", "elapsed_us", "interval_us", "missed", "took_us", "server"}) {
      EXPECT_EQ(moment.erase(key), 1U) << key;
    }
  }
  return moments;
}

TEST_F(Recording, OfAReplayIsThatRecording) {
  serve(
      "[usage]\nup_time_seconds = { start = 7, step = 1 }\n"
      "[[fault]]\ncall = \"TalGetZorbUsageEx2\"\nstatus = 7106\nrefresh = 2\n");
  record({"-n", "4", "-o", "r"});
  configure("replay:r");

  record({"-o", "copy"});

  EXPECT_EQ(timeless(moments("copy")), timeless(moments("r")));
  EXPECT_EQ(moments("copy").size(), 4U);
}

TEST_F(Recording, PausesWhileTheDiskIsFull) {
  serve("[[file]]\nname = \"orders {n}\"\ncount = 100\n");
  Command command = recorder({"-o", "r"});
  command.fileSizeLimit = 30'000;
  Process process(command);

  ASSERT_TRUE(process.waitUntil([&] { return !process.error().empty(); }, "a pause"));
  const std::size_t before = moments("r").size();
  std::filesystem::resize_file(folder_ / "r", 0);  // makes room
  waitForMoments(process, "r", 1);
  ASSERT_TRUE(process.waitUntil([&] { return process.error().find("again") != std::string::npos; },
                                "the end of the pause"));
  stop(process);

  EXPECT_GE(before, 1U);
  EXPECT_GE(moments("r").at(0)["missed"], 1);
  EXPECT_EQ(moments("r").at(0)["sequence"], before + 1);
  EXPECT_EQ(
      process.error().find("zelk-record: r: File too large; recording pauses until there is room\n"
                           "zelk-record: recording again\n"),
      0U);
}

TEST_F(Recording, PausesWhileTheDiskHasTooLittleRoom) {
  Process process(recorder({"-o", "r", "--leave-free", "4000T"}));

  ASSERT_TRUE(process.waitUntil([&] { return !process.error().empty(); }, "a pause"));
  stop(process, SIGINT);

  EXPECT_EQ(file("r"), "");
  EXPECT_EQ(process.error(),
            "zelk-record: the disk has less room than --leave-free wants; recording pauses until "
            "there is room\n");
}

TEST_F(Recording, SurvivesBeingKilled) {
  for (int round = 1; round <= 3; ++round) {
    Process process(recorder({"-o", "r"}));
    waitForMoments(process, "r", 2 * round);
    process.sendSignal(SIGKILL);
    EXPECT_EQ(process.wait(), Ending::killedBy(SIGKILL));
    // What a kill in the middle of a write leaves.
    writeFile(folder_ / "r", file("r") + "{\"zelk_recording\":1,\"run\":\"0");
  }

  record({"-o", "r", "-n", "1"});

  EXPECT_GE(moments("r").size(), 7U);
}

TEST_F(Recording, ContinuesBehindTheLastWholeMoment) {
  record({"-o", "r", "-n", "1"});
  const std::string one = file("r");
  const std::string nul(5000, '\0');
  struct Case {
    std::string found;
    std::string kept;
  };
  for (const Case& each : std::vector<Case>{
           {"",           ""      },
           {one,          one     },
           {one.substr(0, 100),     ""},
           {nul,            ""                 },
           {one + one.substr(0,            100),one},
           {one + nul,         one                               },
           {one + "damaged\n" + one.substr(0, 9),one + "damaged\n"},
           {one + "{\"cut\n" + nul + "\n",          one + "{\"cut\n" + nul + "\n"                       },
  }) {
    writeFile(folder_ / "r", each.found);
    record({"-o", "r", "-n", "1"});

    const std::string now = file("r");
    EXPECT_EQ(now.substr(0, each.kept.size()), each.kept);
    EXPECT_EQ(momentsIn(now.substr(std::min(now.size(), each.kept.size()))).size(), 1U);
  }
}

TEST_F(Recording, WritesIntoNoFileOfOthers) {
  record({"-o", "mine", "-n", "1"});
  Process first(recorder({"-o", "busy"}));
  waitForMoments(first, "busy", 1);
  writeFile(folder_ / "letter", "Dear Anna,\n");
  writeFile(folder_ / "note", "no line end");
  std::filesystem::create_directory(folder_ / "folder");
  const auto complaint = [&](const std::string& name) {
    const Result result = testing_support::run(recorder({"-o", name, "-n", "1"}));
    EXPECT_EQ(result.ending, Ending::exit(1)) << name;
    return result.error;
  };

  EXPECT_EQ(complaint("busy"),
            "zelk-record: busy: another recorder writes this file; give another one with -o\n");
  EXPECT_EQ(complaint("letter"),
            "zelk-record: letter: holds no recording; give another file with -o\n");
  EXPECT_EQ(complaint("note"),
            "zelk-record: note: holds no recording; give another file with -o\n");
  EXPECT_EQ(complaint("folder"), "zelk-record: folder: cannot be opened: Is a directory\n");
  EXPECT_EQ(complaint("none/r"),
            "zelk-record: none/r: cannot be opened: No such file or directory\n");
  configure("sim:demo");
  EXPECT_EQ(complaint("mine"),
            "zelk-record: mine: holds moments of the server \"sim:s.toml\"; give another file with "
            "-o\n");
  EXPECT_EQ(file("letter"), "Dear Anna,\n");
  EXPECT_EQ(file("note"), "no line end");
  stop(first);
}

TEST_F(Recording, OpensItsFileAnewAfterHangup) {
  Process process(recorder({"-o", "r"}));
  waitForMoments(process, "r", 1);
  std::filesystem::rename(folder_ / "r", folder_ / "r.1");

  process.sendSignal(SIGHUP);
  waitForMoments(process, "r", 1);
  stop(process);

  EXPECT_EQ(moments("r").at(0)["sequence"], moments("r.1").back()["sequence"].get<int>() + 1);
}

TEST_F(Recording, FillsAFileThatSomebodyEmpties) {
  Process process(recorder({"-o", "r"}));
  waitForMoments(process, "r", 2);

  std::filesystem::resize_file(folder_ / "r", 0);
  waitForMoments(process, "r", 1);
  stop(process);

  EXPECT_GE(moments("r").at(0)["sequence"], 3);
}

TEST_F(Recording, CountsWhatItMissed) {
  Process process(recorder({"-o", "r"}));
  waitForMoments(process, "r", 1);

  process.sendSignal(SIGSTOP);
  const std::size_t before = moments("r").size();
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  process.sendSignal(SIGCONT);
  waitForMoments(process, "r", static_cast<int>(before) + 2);
  stop(process);

  std::uint64_t missed = 0;
  for (const json& moment : moments("r")) missed += moment["missed"].get<std::uint64_t>();
  EXPECT_GE(missed, 3U);
}

int framesIn(const std::string& text) {
  int frames = 0;
  for (std::size_t at = 0; (at = text.find("\x28\xb5\x2f\xfd", at)) != std::string::npos; ++at) {
    ++frames;
  }
  return frames;
}

TEST_F(Recording, MayBeCompressed) {
  record({"-o", "r.zst", "-n", "2"});
  const std::string whole = file("r.zst");
  writeFile(folder_ / "r.zst", whole + whole.substr(0, 30));

  record({"-o", "r.zst", "-n", "1"});

  const Result text = testing_support::run({
      .program = "/usr/bin/env", .arguments = {"zstd", "-dcq", "r.zst"},
           .folder = folder_.path()
  });
  EXPECT_EQ(text.ending, Ending::exit(0)) << text.error;
  EXPECT_EQ(momentsIn(text.output).size(), 3U);
  EXPECT_EQ(file("r.zst").substr(0, whole.size()), whole);
  EXPECT_EQ(framesIn(file("r.zst")), 3);
}

TEST_F(Recording, EndsWhenItsReaderGoesAway) {
  Process process(recorder({}));
  ASSERT_TRUE(process.waitForOutput("\n"));
  process.closeOutput();
  EXPECT_EQ(process.wait(), Ending::killedBy(SIGPIPE));

  Command full = recorder({});
  full.output = "/dev/full";
  const Result result = testing_support::run(full);
  EXPECT_EQ(result.ending, Ending::exit(1));
  EXPECT_EQ(result.error, "zelk-record: standard output: No space left on device\n");

  Command limited = recorder({});
  limited.output = folder_ / "out";
  limited.fileSizeLimit = 3000;
  EXPECT_EQ(testing_support::run(limited).ending, Ending::exit(1));
  EXPECT_GE(moments("out").size(), 1U);
}

TEST_F(Recording, ShowsItsProgressOnATerminalAlone) {
  testing_support::Terminal terminal(recorder({"-o", "r", "-n", "2"}));

  EXPECT_TRUE(terminal.waitFor("2 moments, "));
  EXPECT_EQ(terminal.wait(), Ending::exit(0));
  EXPECT_EQ(record({"-o", "r", "-n", "1"}), "");
}

TEST_F(Recording, RefusesAWrongCommandLine) {
  const std::vector<std::vector<std::string>> cases = {
      {"extra"       },
      {"-i",           "0.05"},
      {"-i",              "x"},
      {"-i","1e1"},
      {"-n",           "0"},
      {"-o"             },
      {"--keep", "1"},
      {"--keep",           "2", "-o", "r"},
      {"--utc"      },
      {"--no-sync"             },
      {"--leave-free", "1G"},
      {"--leave-free",           "x", "-o", "r"},
      {"--keep",        "1", "-o", "%F/r"},
      {"--leave-free",    "99999999T", "-o", "r"},
      {"--none"}
  };
  for (const auto& arguments : cases) {
    const Result result = testing_support::run(recorder(arguments));
    EXPECT_EQ(result.ending, Ending::exit(2)) << arguments.front();
    EXPECT_EQ(result.error.find("zelk-record: "), 0U);
    EXPECT_EQ(result.output, "");
  }
  Command noFile = recorder({});
  noFile.arguments = {"-i", "1"};
  EXPECT_EQ(testing_support::run(noFile).ending, Ending::exit(2));
}

}  // namespace
}  // namespace companions::record
