#include "acquisition/record_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "platform/file.h"
#include "platform/host/faults.h"
#include "tests/app/test_folder.h"

namespace tw {
namespace {

TEST(FileSizeText, UnitsChangeAtTheirBounds) {
  const struct {
    uint64_t size;
    const wchar_t* text;
  } cases[] = {
      {0, L"File size: 0Bytes"},        {1, L"File size: 1Bytes"},
      {1'024, L"File size: 1024Bytes"}, {1'025, L"File size: 1KB"},
      {2'047, L"File size: 1KB"},       {10'485'760, L"File size: 10240KB"},
      {10'485'761, L"File size: 10MB"}, {UINT64_MAX, L"File size: 17592186044415MB"},
  };
  for (const auto& each : cases) {
    wchar_t text[kSizeTextSize];
    FormatFileSize(text, each.size);
    EXPECT_STREQ(text, each.text);
  }
}

class RecordFile : public testing::Test {
 protected:
  RecordFile() {
    MakeLock(state_->recordLock);
    state_->recordFileA = state_->recordFileB = Handle::invalid;
    state_->recordBusyA = state_->recordBusyB = Handle::invalid;
  }
  ~RecordFile() override {
    CloseBothRecordFiles(*state_);
    ClearFaults();
    DestroyLock(state_->recordLock);
  }

  // Opens a file that begins with a settings line, as run control does.
  void Open(RecordChannel channel, const wchar_t* name) {
    const Handle file = CreateFileAnew((folder_.Path() / name).wstring().c_str());
    ASSERT_NE(file, Handle::invalid);
    uint32_t written = 0;
    ASSERT_TRUE(WriteFileBytes(file, "INFO\r\n", 6, written));
    PutRecordFile(*state_, channel, file);
  }
  // "absent" when there is no such file.
  [[nodiscard]] std::string Content(const wchar_t* name) const {
    std::ifstream file(folder_.Path() / name, std::ios::binary);
    if (!file) return "absent";
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  uint32_t Write(RecordChannel channel, std::string_view ping) { return WriteRecord(*state_, channel, ping); }
  [[nodiscard]] bool IsOpen(RecordChannel channel) { return IsRecordFileOpen(*state_, channel); }

  static constexpr RecordChannel kA = RecordChannel::a;
  static constexpr RecordChannel kB = RecordChannel::b;
  const std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
  const test::TestFolder folder_;
};

TEST_F(RecordFile, EachChannelHasItsOwn) {
  Open(kA, L"a.log");
  EXPECT_EQ(Write(kA, "one"), 3u);
  EXPECT_EQ(Write(kB, "lost"), 0u) << "no file is open";
  Open(kB, L"b.log");
  EXPECT_EQ(Write(kB, "two"), 3u);
  CloseBothRecordFiles(*state_);
  EXPECT_EQ(Write(kA, "late"), 0u);
  EXPECT_EQ(Content(L"a.log"), "INFO\r\none");
  EXPECT_EQ(Content(L"b.log"), "INFO\r\ntwo");
}

TEST_F(RecordFile, AShortWriteIsCutBackToTheLastWholePingAndTheFileClosed) {
  for (const uint32_t taken : {0u, 1u, 5u}) {
    Open(kA, L"a.log");
    Open(kB, L"b.log");
    EXPECT_EQ(Write(kA, "ping 1"), 6u);
    InjectFault({.point = FaultPoint::writeFile, .taken = taken});
    EXPECT_EQ(Write(kA, "ping 2"), 0u);
    EXPECT_FALSE(IsOpen(kA));
    EXPECT_EQ(Write(kA, "ping 3"), 0u) << "recording does not begin again by itself";
    EXPECT_EQ(Content(L"a.log"), "INFO\r\nping 1") << taken << " bytes were taken";
    EXPECT_EQ(Write(kB, "other"), 5u) << "the other channel goes on";
    CloseBothRecordFiles(*state_);
    ClearFaults();
  }
}

TEST_F(RecordFile, AFileThatIsClosedWhileItIsWrittenIsClosedByTheWriter) {
  Open(kA, L"a.log");
  const Handle file = state_->recordFileA;
  state_->recordBusyA = file;  // as in the middle of a write
  CloseRecordFile(*state_, kA);
  EXPECT_FALSE(IsOpen(kA));
  uint32_t written = 0;
  EXPECT_TRUE(WriteFileBytes(file, "whole", 5, written)) << "the handle is still good";
  CloseFile(file);
  EXPECT_EQ(Content(L"a.log"), "INFO\r\nwhole");
}

TEST_F(RecordFile, AnotherFilePutInItsPlaceClosesTheFirst) {
  Open(kA, L"a.log");
  const Handle first = state_->recordFileA;
  Open(kA, L"next.log");
  uint32_t written = 0;
  EXPECT_FALSE(WriteFileBytes(first, "x", 1, written));
  EXPECT_EQ(Write(kA, "ping"), 4u);
  CloseBothRecordFiles(*state_);
  EXPECT_EQ(Content(L"next.log"), "INFO\r\nping");
}

TEST_F(RecordFile, AFileWhoseNameIsNotFoundStaysWithItsReturnCharacter) {
  Open(kA, L"a.log");
  InjectFault({.point = FaultPoint::pathOfFile});
  DeleteEmptyRecordFiles(*state_);
  EXPECT_FALSE(IsOpen(kA));
  EXPECT_EQ(Content(L"a.log"), "INFO\r\n\r");
}

}  // namespace
}  // namespace tw
