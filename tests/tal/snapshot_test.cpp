#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tal/interface/snapshots.h"

namespace tal::interface {
namespace {

std::vector<OpenFile> filesNamed(const std::vector<std::string>& names) {
  std::vector<OpenFile> files(names.size());
  for (std::size_t at = 0; at < names.size(); ++at) {
    files[at].name = names[at];
    files[at].pageSize = static_cast<std::uint32_t>(at);
  }
  return files;
}

std::vector<std::string> finalNames(const std::vector<std::string>& names) {
  FileSnapshot snapshot(filesNamed(names));
  std::vector<std::string> result;
  for (std::uint32_t at = 0; at < snapshot.count(); ++at) {
    result.push_back(snapshot.at(at).name);
    EXPECT_EQ(snapshot.find(result.back()).pageSize, at) << result.back();
  }
  for (std::uint32_t at = 0; at < snapshot.count(); ++at) {
    EXPECT_EQ(snapshot.find(result[at]).pageSize, at) << result[at];
  }
  return result;
}

using Names = std::vector<std::string>;

TEST(FileSnapshot, KeepsNamesThatDiffer) {
  EXPECT_EQ(finalNames({"a", "b", "A"}), (Names{"a", "b", "A"}));
}

TEST(FileSnapshot, NumbersNamesThatOccurAgain) {
  EXPECT_EQ(finalNames({"a", "a", "b", "a"}), (Names{"a", "a#2", "b", "a#3"}));
}

TEST(FileSnapshot, StepsOverNumbersThatAreNames) {
  EXPECT_EQ(finalNames({"a", "a#2", "a", "a#2"}), (Names{"a", "a#2", "a#3", "a#2#2"}));
}

TEST(FileSnapshot, NumbersNamesThatBecameAlike) {
  EXPECT_EQ(finalNames({"a\n", "a\t", "", ""}), (Names{"a?", "a?#2", "", "#2"}));
}

TEST(FileSnapshot, CutsNamesToTheBuffer) {
  const std::string filling(1023, 'x');

  const Names names = finalNames({filling, filling + "y", filling + "z"});

  EXPECT_EQ(names, (Names{filling, std::string(1012, 'x') + "#2", std::string(1012, 'x') + "#3"}));
}

TEST(FileSnapshot, CutsNamesAtACharacter) {
  const Names names = finalNames({std::string(1022, 'x') + "\u00fc"});

  EXPECT_EQ(names, Names{std::string(1022, 'x')});
}

TEST(FileSnapshot, SharesNumbersAmongNamesWithOneBeginning) {
  const std::string beginning(1012, 'x');

  const Names names =
      finalNames({beginning + "a", beginning + "a", beginning + "b", beginning + "b"});

  EXPECT_EQ(names, (Names{beginning + "a", beginning + "#2", beginning + "b", beginning + "#3"}));
}

TEST(FileSnapshot, RefusesWhatItDoesNotHold) {
  FileSnapshot snapshot(filesNamed({"a"}));

  EXPECT_THROW(static_cast<void>(snapshot.at(1)), Failure);
  EXPECT_THROW(static_cast<void>(snapshot.find("")), Failure);
  FileSnapshot empty({});
  EXPECT_THROW(static_cast<void>(empty.find("")), Failure);
}

Client clientWith(const std::string& id, std::uint16_t first, std::uint16_t task,
                  std::uint32_t processId) {
  Client client;
  client.id = id;
  client.firstNumber = first;
  client.taskNumber = task;
  client.processId = processId;
  return client;
}

tagTALCLIENTID idOf(const Client& client) {
  tagTALCLIENTID id{};
  std::memcpy(id.text, client.id.data(), client.id.size());
  id.first = client.firstNumber;
  id.task = client.taskNumber;
  return id;
}

TEST(ClientSnapshot, TellsClientsApartByAllPartsOfTheirIdentifier) {
  ClientSnapshot snapshot({clientWith("a", 1, 1, 0), clientWith("a", 1, 2, 1),
                           clientWith("a", 2, 1, 2), clientWith("b", 1, 1, 3)});

  std::vector<tagTALCLIENTID> ids;
  for (std::uint32_t at = 0; at < snapshot.count(); ++at) {
    ids.push_back(idOf(snapshot.at(at)));
    EXPECT_EQ(snapshot.find(ids.back()).processId, at);
  }
  for (std::uint32_t at = 0; at < snapshot.count(); ++at) {
    EXPECT_EQ(snapshot.find(ids[at]).processId, at);
  }
  EXPECT_EQ(snapshot.at(2).firstNumber, 2);
}

TEST(ClientSnapshot, GivesAnotherFirstNumberToAClientThatOccursAgain) {
  ClientSnapshot snapshot({clientWith("a", 1, 7, 0), clientWith("a", 1, 7, 1),
                           clientWith("a", 2, 7, 2), clientWith("a", 1, 8, 3)});

  for (std::uint32_t at = 0; at < snapshot.count(); ++at) {
    EXPECT_EQ(snapshot.find(idOf(snapshot.at(at))).processId, at);
    EXPECT_EQ(snapshot.at(at).taskNumber, at == 3 ? 8 : 7);
  }
}

TEST(ClientSnapshot, CutsAndCleansIdentifiers) {
  ClientSnapshot snapshot({clientWith("1234567890ab", 0, 0, 0), clientWith("1234567890ac", 0, 0, 1),
                           clientWith("\x1b", 0, 0, 2)});

  EXPECT_EQ(snapshot.at(0).id, "1234567890a");
  EXPECT_EQ(snapshot.at(1).id, "1234567890a");
  EXPECT_EQ(snapshot.find(idOf(snapshot.at(1))).processId, 1U);
  EXPECT_EQ(snapshot.at(2).id, "?");
}

TEST(ClientSnapshot, SurvivesMoreClientsOfOneIdentifierThanThereAreNumbers) {
  ClientSnapshot snapshot(std::vector<Client>(70'000, clientWith("a", 0, 0, 0)));

  EXPECT_EQ(snapshot.count(), 70'000U);
  EXPECT_EQ(snapshot.at(65'535).firstNumber, 65'535);
  EXPECT_EQ(snapshot.find(idOf(snapshot.at(69'999))).id, "a");
}

TEST(ClientSnapshot, IgnoresBytesBehindTheTextOfAnIdentifier) {
  ClientSnapshot snapshot({clientWith("a", 1, 2, 5)});
  tagTALCLIENTID id{
      {'a', '\0', 'r', 'e', 's', 't'},
      1, 2
  };

  EXPECT_EQ(snapshot.find(id).processId, 5U);
}

}  // namespace
}  // namespace tal::interface
