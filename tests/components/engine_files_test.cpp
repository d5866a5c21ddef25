// VXAMonitorHelper: open files and their handles.
#include <string>

#include "tests/components/engine_test.h"

namespace component_tests {
namespace {

class EngineFiles : public EngineTest {
 protected:
  EngineFiles() {
    engine().files = {
        {"/a", {}, {TalFileHandleInfo{}}                     },
        {"/b", {}, {}                                        },
        {"/c", {}, {TalFileHandleInfo{}, TalFileHandleInfo{}}},
    };
  }

  std::vector<std::string> namesOf(bool withHandles) {
    std::vector<std::string> names;
    const auto files = helper_.getActiveFileInfoList(withHandles);
    for (const auto& file : *files) names.push_back(file->name.toBytes());
    return names;
  }

  static auto releases() { return engine().callsOf("TalFreeOpenFilesData(7)"); }
};

using Names = std::vector<std::string>;

TEST_F(EngineFiles, AreReadFromOneSnapshotAndReleased) {
  engine().files.pop_back();

  EXPECT_EQ(namesOf(true), Names{"/a"});

  EXPECT_EQ(engine().calls, (Calls{
                                "TalGetOpenFilesData(7)",
                                "TalGetOpenFileName(7, 0)",
                                "TalGetFileInfo2(7, /a)",
                                "TalGetFileHandlesData(7, /a)",
                                "TalGetFileHandleInfo(7, /a, 0)",
                                "TalGetOpenFileName(7, 1)",
                                "TalGetFileInfo2(7, /b)",
                                "TalGetFileHandlesData(7, /b)",
                                "TalFreeOpenFilesData(7)",
                            }));
}

TEST_F(EngineFiles, ACountOf3Where7008AnswersAtIndex1GivesOneFile) {
  engine().statuses["TalGetOpenFileName(7, 1)"] = 7008;

  EXPECT_EQ(namesOf(false), Names{"/a"});
  EXPECT_EQ(releases(), 1);
}

TEST_F(EngineFiles, AFileThatClosedMeanwhileIsMissing) {
  engine().statuses["TalGetFileInfo2(7, /b)"] = 7015;

  EXPECT_EQ(namesOf(false), (Names{"/a", "/c"}));
  EXPECT_EQ(releases(), 1);
}

TEST_F(EngineFiles, WithoutHandleDetailEveryFileHasAnEmptyHandleList) {
  const auto files = helper_.getActiveFileInfoList(false);

  ASSERT_EQ(files->size(), 3U);
  for (const auto& file : *files) {
    ASSERT_TRUE(file->handles);
    EXPECT_TRUE(file->handles->isEmpty());
  }
  EXPECT_EQ(engine().callsOf("TalGetFileHandlesData(7, /a)"), 0);
}

TEST_F(EngineFiles, WithHandleDetailAFileWithoutHandlesIsNotListed) {
  EXPECT_EQ(namesOf(true), (Names{"/a", "/c"}));
}

TEST_F(EngineFiles, AFileThatClosesDuringItsHandleWalkIsNotListedWithHandleDetail) {
  engine().statuses["TalGetFileHandleInfo(7, /c, 1)"] = 7015;
  EXPECT_EQ(namesOf(true), Names{"/a"});

  engine().statuses["TalGetFileHandlesData(7, /a)"] = 7015;
  EXPECT_EQ(namesOf(true), Names{});
}

TEST_F(EngineFiles, AHandleWalkEndsAt7008WithWhatItHas) {
  engine().statuses["TalGetFileHandleInfo(7, /c, 1)"] = 7008;

  EXPECT_EQ(helper_.getFileHandleInfoList("/c")->size(), 1U);
}

TEST_F(EngineFiles, AHandleWalkThatMeets7015IsEmpty) {
  engine().statuses["TalGetFileHandleInfo(7, /c, 1)"] = 7015;

  EXPECT_TRUE(helper_.getFileHandleInfoList("/c")->isEmpty());
}

TEST_F(EngineFiles, AnyOtherStatusIsAnErrorAndReleasesTheSnapshotOnce) {
  const std::map<std::string, Statuses> errors = {
      {"TalGetOpenFileName(7, 1)",       {7010, 7015, 7103, 1, -1, -32768}},
      {"TalGetFileInfo2(7, /b)",         {7008, 7010, 7103, 1, -1, -32768}},
      {"TalGetFileHandlesData(7, /a)",   {7008, 7010, 7103, 1, -1, -32768}},
      {"TalGetFileHandleInfo(7, /c, 1)", {7010, 7103, 1, -1, -32768}      },
  };

  for (const auto& [call, statuses] : errors) {
    for (const std::int16_t status : statuses) {
      engine().calls.clear();
      engine().statuses = {
          {call, status}
      };
      EXPECT_EQ(failureOf([&] { helper_.getActiveFileInfoList(true); }), status) << call;
      EXPECT_EQ(releases(), 1) << call;
      EXPECT_EQ(engine().calls.back(), "TalFreeOpenFilesData(7)");
    }
  }
}

TEST_F(EngineFiles, WithoutASnapshotNothingIsReleased) {
  for (const std::int16_t status : Statuses{7008, 7010, 7015, 7103, -1}) {
    engine().statuses["TalGetOpenFilesData"] = status;
    EXPECT_EQ(failureOf([&] { helper_.getActiveFileInfoList(true); }), status);
  }
  EXPECT_EQ(releases(), 0);
}

TEST_F(EngineFiles, AreReleasedOnceWhenMemoryRunsOut) {
  for (const std::string call :
       {"TalGetOpenFileName(7, 1)", "TalGetFileInfo2(7, /b)", "TalGetFileHandlesData(7, /c)",
        "TalGetFileHandleInfo(7, /c, 1)"}) {
    engine().calls.clear();
    runOutOfMemoryAt(call);
    EXPECT_THROW(helper_.getActiveFileInfoList(true), std::bad_alloc);
    EXPECT_EQ(releases(), 1) << call;
  }
}

TEST_F(EngineFiles, AreAllocatedByWhatIsReadNotByAnAnnouncedCount) {
  engine().files = {
      {"/a", {}, {TalFileHandleInfo{}}}
  };
  engine().counts["TalGetOpenFilesData"] = 4294967295U;
  engine().counts["TalGetFileHandlesData"] = 4294967295U;
  EXPECT_EQ(namesOf(true), Names{"/a"});

  engine().files.clear();
  EXPECT_EQ(namesOf(true), Names{});
  EXPECT_EQ(releases(), 2);
}

TEST_F(EngineFiles, ANameThatFillsItsBufferEndsWithIt) {
  const std::string name(1024, 'n');
  engine().files = {
      {name, {}, {}}
  };

  EXPECT_EQ(namesOf(false), Names{name});
}

TEST_F(EngineFiles, CarryTheirNumbersWithoutASign) {
  TalFileInfo info{};
  info.pageSize = 4294967295U;
  info.sizeKb = 4294967294U;
  info.readOnly = 255;
  info.recordLocks = 'N';
  info.transactionLock = 'Y';
  engine().files = {
      {"/größe\xFF", info, {}}
  };

  const auto files = helper_.getActiveFileInfoList(false);

  ASSERT_EQ(files->size(), 1U);
  const FileInfo& file = *files->get(0);
  EXPECT_EQ(file.name.toBytes(), "/größe\xFF");
  EXPECT_EQ(file.pageSize, 4294967295L);
  EXPECT_EQ(file.sizeKb, 4294967294L);
  EXPECT_EQ(file.readOnly, 255);
  EXPECT_EQ(file.recordLocks, 78);
  EXPECT_EQ(file.transactionLock, 89);
}

TEST_F(EngineFiles, HandlesKeepEachCodeInItsPlace) {
  TalFileHandleInfo info{};
  info.clientIndex = 4294967295U;
  info.openMode = 255;
  info.recordLockType = 77;
  info.waitState = 2;
  info.transactionState = 65535;
  setText(info.clientName, std::string(80, 'c'));
  engine().files = {
      {"/a", {}, {info}}
  };

  const auto handles = helper_.getFileHandleInfoList("/a");

  ASSERT_EQ(handles->size(), 1U);
  const FileHandleInfo& handle = *handles->get(0);
  EXPECT_EQ(handle.clientIndex, 4294967295L);
  EXPECT_EQ(handle.openMode, 255);
  EXPECT_EQ(handle.recordLockType, 77);
  EXPECT_EQ(handle.waitState, 2);
  EXPECT_EQ(handle.transactionState, 65535);
  EXPECT_EQ(handle.clientName().toBytes(), std::string(70, 'c')) << "the field's end, not beyond";
}

TEST(FileHandleInfo, IsMadeWithTheLockTypeBeforeTheOpenMode) {
  const auto handle = orv::makeReference<FileHandleInfo>(3L, short{77}, short{254}, short{2}, 19,
                                                         orv::String("client"));

  EXPECT_EQ(handle->clientIndex, 3);
  EXPECT_EQ(handle->recordLockType, 77);
  EXPECT_EQ(handle->openMode, 254);
  EXPECT_EQ(handle->waitState, 2);
  EXPECT_EQ(handle->transactionState, 19);
  EXPECT_EQ(handle->clientName(), "client");
}

TEST(FileInfo, IsMadeInTheOrderOfItsFields) {
  auto handles = orv::makeReference<FileInfo::Handles>();
  const auto file = orv::makeReference<FileInfo>(orv::String("/a"), 4096L, short{1}, short{2},
                                                 short{3}, 64L, handles);

  EXPECT_EQ(file->name, "/a");
  EXPECT_EQ(file->pageSize, 4096);
  EXPECT_EQ(file->readOnly, 1);
  EXPECT_EQ(file->recordLocks, 2);
  EXPECT_EQ(file->transactionLock, 3);
  EXPECT_EQ(file->sizeKb, 64);
  EXPECT_EQ(file->handles.get(), handles.get());
}

}  // namespace
}  // namespace component_tests
