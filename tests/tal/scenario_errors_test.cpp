#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tal/sim/read_scenario.h"

namespace tal::sim {
namespace {

std::string problemOf(std::string_view text) {
  try {
    parseScenario(text, "shop");
  } catch (const ScenarioError& error) {
    return error.what();
  }
  return "none";
}

// A complaint about a number that may be given in every form.
std::string numberProblem(const std::string& problem) {
  return problem +
         ", or a list of up to 10000 with one for each refresh"
         ", or a table with start, step and each";
}

void expectProblem(const std::string& text, const std::string& problem) {
  EXPECT_EQ(problemOf(text), problem) << text.substr(0, 80);
}

// The line only: the words are those of the TOML library.
void expectLine(int line, const std::string& text) {
  const std::string beginning = "shop:" + std::to_string(line) + ": ";
  EXPECT_EQ(problemOf(text).substr(0, beginning.size()), beginning) << text;
}

TEST(ScenarioErrors, NameTheLineAndWhatIsExpected) {
  expectProblem(
      "[version]\nmajor = -2147483649\n",
      numberProblem("shop:2: \"major\" is -2147483649; expected a whole number from -2147483648 to "
                    "2147483647"));
  expectProblem(
      "[[file]]\nname = 'a'\npage_size = 4294967296",
      numberProblem("shop:3: \"page_size\" is 4294967296; expected a whole number from 0 to "
                    "4294967295"));
  expectProblem("[[file]]\nname = 'a'\npage_size = \"big\"",
                numberProblem("shop:3: \"page_size\" is \"big\"; expected a whole number from 0 to "
                              "4294967295"));
  expectProblem(
      "[[file]]\nname = 'a'\nread_only = \"maybe\"",
      numberProblem("shop:3: \"read_only\" is \"maybe\"; expected a whole number from 0 to 255 or "
                    "\"no\" or \"yes\" or \"unknown\""));
  expectProblem(
      "[[client]]\nid = 'a'\ntask_number = [1,\n 2,\n 65536]\n",
      numberProblem("shop:5: \"task_number\" is 65536; expected a whole number from 0 to 65535"));
  expectProblem(
      "[[client]]\nid = 'a'\nsite = []\n",
      numberProblem(
          "shop:3: \"site\" is an empty list; expected a whole number from -2147483648 to "
          "2147483647 or \"remote\" or \"local\" or \"unknown\""));
  expectProblem(
      "[engine]\ntype = 1.5",
      numberProblem(
          "shop:2: \"type\" is neither a whole number nor a text; expected a whole number "
          "from -2147483648 to 2147483647"));
  expectProblem("[usage]\nusers = 3\n", "shop:2: \"users\" is 3; expected a table");
  expectProblem("[usage]\n\nusers = { curent = 3 }\n",
                "shop:3: unknown key \"curent\" in \"users\"; expected current, peak, maximum");
  expectProblem("[version]\nmajor = { start = 1, stop = 2 }\n",
                "shop:2: unknown key \"stop\" in \"major\"; expected start, step or each");
  expectProblem(
      "[version]\nmajor = { step = 4294967296 }\n",
      "shop:2: \"step\" is 4294967296; expected a whole number from -4294967295 to 4294967295");
  expectProblem(
      "[version]\nmajor = { start = [1, 2] }\n",
      "shop:2: \"major\" is a list; expected a whole number from -2147483648 to 2147483647");
  expectProblem("[version]\nmajer = 1\nminer = 2\n",
                "shop:2: unknown key \"majer\" in [version]; expected major, minor, build");
  expectProblem("\n\nfiles = 3\n",
                "shop:3: unknown key \"files\" in the scenario; expected engine, version, usage, "
                "communication, file, client, sql_connection, fault");
  expectProblem("[file]\nname = 'a'\n", "shop:1: \"file\" is a table; expected a list of tables");
  expectProblem("file = [1]\n", "shop:1: \"file\" is 1; expected a table");
  expectProblem("# none\n[[file]]\npage_size = 1\n", "shop:2: [[file]] has no key \"name\"");
  expectProblem("[[client]]\ntask_number = 1\n", "shop:1: [[client]] has no key \"id\"");
  expectProblem(
      "[[file]]\nname = 5\n",
      "shop:2: \"name\" is 5; expected a text of at most 2048 bytes, or a list of up to 10000 with "
      "one for each refresh");
  expectProblem(
      "[[file]]\nname = '" + std::string(2049, 'x') + "'\n",
      "shop:2: \"name\" is a text of 2049 bytes; expected a text of at most 2048 bytes, or a list "
      "of up to 10000 with one for each refresh");
  expectProblem(
      "[[file]]\nname = ''\n[[file.handle]]\nfile = ''\n",
      "shop:4: unknown key \"file\" in a handle; expected client, client_index, open_mode, "
      "record_lock, wait_state, transaction_state, count, from, until");
  expectProblem(
      "[[client]]\nid = ''\n[[client.handle]]\nclient_index = 1\n",
      "shop:4: unknown key \"client_index\" in a handle; expected file, open_mode, record_lock, "
      "wait_state, transaction_state, count, from, until");
  expectProblem("[[file]]\nname = ''\nfrom = 0\n",
                "shop:3: \"from\" is 0; expected a whole number from 1 to 4294967295");
  expectProblem("[[file]]\nname = ''\nfrom = 3\nuntil = 2\n",
                "shop:4: \"until\" is 2; expected a number that is not below \"from\"");
  expectProblem(
      "[[file]]\nname = ''\ncount = { start = 1 }\n",
      "shop:3: \"count\" is a table; expected a whole number from 0 to 4294967295, or a list of up "
      "to 10000 with one for each refresh");
  expectProblem("[[fault]]\nstatus = 1\n", "shop:1: [[fault]] has no key \"call\"");
  expectProblem("[[fault]]\ncall = 'TalStop'\n", "shop:1: [[fault]] has no key \"status\"");
  expectProblem(
      "[[fault]]\ncall = 'TalStart'\nstatus = 1\n",
      "shop:2: \"call\" is \"TalStart\"; expected the name of an interface function other than "
      "TalStart");
  expectProblem("[[fault]]\ncall = 'TalStop'\nstatus = 0\n",
                "shop:3: \"status\" is 0; expected a status other than 0");
  expectProblem("[[fault]]\ncall = 'TalStop'\nstatus = 32768\n",
                "shop:3: \"status\" is 32768; expected a whole number from -32768 to 32767");
  expectProblem("[[fault]]\ncall = 'TalStop'\nstatus = 1\nat = 0\n",
                "shop:4: \"at\" is 0; expected a whole number from 1 to 4294967295");
}

TEST(ScenarioErrors, NameTheLineOfWhatIsNotToml) {
  expectLine(3, "[version]\nmajor = 1\nmajor = 2\n");
  expectLine(3, "[version]\n[usage]\n[version]\n");
  expectLine(1, "a = \n");
  expectLine(2, "[[file]]\nname = 'never closed\n");
  expectLine(2, "[[file]]\nname = 'never closed");
  expectLine(1, "[version\n");
  expectLine(2, "[version]\nmajor = 99999999999999999999\n");
  expectLine(2, "# fine\n\xff\xfe = 1\n");
  expectLine(2, std::string("a = 1\nb\0 = 2\n", 13));
}

std::string repeated(std::string_view text, int times) {
  std::string result;
  for (int time = 0; time < times; ++time) result += text;
  return result;
}

TEST(ScenarioErrors, RefuseAListThatIsTooLong) {
  expectProblem("[version]\nmajor = [" + repeated("1,", 10'001) + "]\n",
                numberProblem("shop:2: \"major\" is a list; expected a whole number from "
                              "-2147483648 to 2147483647"));
}

TEST(ScenarioErrors, NameTheLineOfABadByte) {
  for (const char* bytes : {"\x80", "\xc3", "\xc0\x8a", "\xe0\x80\x80", "\xed\xa0\x80", "\xf5"}) {
    EXPECT_EQ(problemOf("a = 1\n\n# " + std::string(bytes) + "\nb = 1\n"),
              "shop:3: a byte that is not UTF-8; expected {xHH} in a text for such a byte");
  }
}

TEST(ScenarioErrors, StopBeforeNestingExhaustsTheStack) {
  expectProblem("\na = " + repeated("[", 500'000), "shop:2: brackets are nested too deeply");
  expectProblem("a = " + repeated("{a=", 300'000), "shop:1: brackets are nested too deeply");
  expectProblem("\n\n" + repeated("a.", 500'000) + "a = 1", "shop:3: a key has too many parts");
  expectProblem("[" + repeated("a.", 500'000) + "a]", "shop:1: a key has too many parts");
  expectProblem("a = '''\n[[[[[[[[[[\n'''\n" + repeated("\"a\" . ", 10) + "a = 1",
                "shop:4: a key has too many parts");
  expectProblem("a = \"\\\"[[[[[[[[[[\"\nb = [[[[[[[[[\n",
                "shop:2: brackets are nested too deeply");
}

TEST(ScenarioErrors, LeaveBracketsAndDotsInTextsAndCommentsAlone) {
  const std::string brackets = repeated("[{.", 40);
  const std::string text = "# " + brackets + "\n[[file]]\nname = \"" + brackets +
                           "\\\"\"\n[[file]]\nname = '" + brackets +
                           "\\'\n[[file]]\nname = \"\"\"\n\"" + brackets +
                           "\"\"\"\"\"\n[[file]]\nname = '''" + brackets + "''''\n";

  EXPECT_EQ(problemOf(text), "none");
}

TEST(ScenarioErrors, AreOneLineOfBoundedLength) {
  const std::string key = "\"\\u001b[2J\\n" + repeated("x", 100'000) + "\"";

  const std::string problem = problemOf("[version]\n" + key + " = 1\n");

  EXPECT_EQ(problem.substr(0, 36), "shop:2: unknown key \"?[2J?xxxxxxxxxx");
  EXPECT_LE(problem.size(), 1000U);
}

TEST(ScenarioErrors, StopAtTooManyItems) {
  const std::string million = "[[file]]\nname = 'f{n}'\ncount = 1000000\n";
  const std::string handles = "handle = [{ count = [1, 9] }]\n";

  EXPECT_EQ(problemOf(million + handles), "none");
  EXPECT_EQ(problemOf(million + handles + "[[client]]\nid = 'c'\n"),
            "shop:5: the scenario stands for more than 10000000 items; expected smaller counts");
  EXPECT_EQ(problemOf("[[file]]\nname = 'f'\ncount = 4294967295\n"),
            "shop:1: the scenario stands for more than 10000000 items; expected smaller counts");
}

TEST(ScenarioErrors, StopAtTooManyBytes) {
  const std::string name = "[[file]]\nname = ['f', '" + repeated("x", 1024 - 256) + "']\n";

  EXPECT_EQ(problemOf(name + "count = 4194304\n"), "none");
  EXPECT_EQ(problemOf(name + "count = 4194304\n[[client]]\nid = 'c'\n"),
            "shop:4: the items take up more than 4294967296 bytes; expected smaller counts or "
            "shorter texts");
  EXPECT_EQ(problemOf("[[client]]\nid = 'c'\nhandle = [{ file = '" + repeated("{n}", 100) +
                      "', count = 5000000 }]\n"),
            "shop:3: the items take up more than 4294967296 bytes; expected smaller counts or "
            "shorter texts");
}

}  // namespace
}  // namespace tal::sim
