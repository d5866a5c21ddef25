#include "tal/sql/limits.h"

#include <gtest/gtest.h>

namespace tal::sql {
namespace {

constexpr std::size_t kShare = kMostHandles / 2;

OpenFile fileWith(std::size_t count, std::uint32_t client, std::uint8_t wait = wait_state::kNone) {
  FileHandle handle;
  handle.clientIndex = client;
  handle.waitState = wait;
  OpenFile file;
  file.handles.assign(count, handle);
  return file;
}

Client clientWith(std::size_t count) {
  Client client;
  client.handles.resize(count);
  return client;
}

TEST(HandleLimitTest, ShareOfEachClient) {
  EXPECT_EQ(handlesOfEachClient(0, 0), 0U);
  EXPECT_EQ(handlesOfEachClient(kMostHandles, 1), kMostHandles);
  EXPECT_EQ(handlesOfEachClient(kMostHandles + 1, 0), kMostHandles);
  EXPECT_EQ(handlesOfEachClient(kMostHandles + 1, 2), kShare);
  EXPECT_EQ(handlesOfEachClient(kMostHandles * 3, kMostHandles * 2), 1U);
}

TEST(HandleLimitTest, ListsThatFitStayWhole) {
  std::vector<OpenFile> files = {fileWith(kMostHandles, 1)};
  std::vector<Client> clients = {clientWith(kMostHandles)};

  limitHandles(files);
  limitHandles(clients);

  EXPECT_EQ(files[0].handles.size(), kMostHandles);
  EXPECT_EQ(clients[0].handles.size(), kMostHandles);
}

TEST(HandleLimitTest, FilesKeepTheShareOfEachClientAndWhatWaits) {
  std::vector<OpenFile> files = {fileWith(kMostHandles, 1), fileWith(1, 2),
                                 fileWith(1, 1, wait_state::kFile)};

  limitHandles(files);

  ASSERT_EQ(files[0].handles.size(), kShare);
  EXPECT_EQ(files[0].handles.back().clientName, "(" + std::to_string(kShare + 1) + " more)");
  EXPECT_EQ(files[0].handles.back().clientIndex, 0U);
  EXPECT_EQ(files[1].handles.size(), 1U);
  ASSERT_EQ(files[2].handles.size(), 1U);
  EXPECT_EQ(files[2].handles[0].waitState, wait_state::kFile);
}

TEST(HandleLimitTest, ClientsKeepTheirShareAndWhatWaits) {
  std::vector<Client> clients = {clientWith(kMostHandles + 1), clientWith(1)};
  clients[0].handles.back().waitState = wait_state::kRecord;

  limitHandles(clients);

  ASSERT_EQ(clients[0].handles.size(), kShare + 1);
  EXPECT_EQ(clients[0].handles[kShare - 1].waitState, wait_state::kRecord);
  EXPECT_EQ(clients[0].handles.back().fileName, "(" + std::to_string(kShare + 1) + " more)");
  EXPECT_EQ(clients[1].handles.size(), 1U);
}

}  // namespace
}  // namespace tal::sql
