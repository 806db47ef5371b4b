#include "acquisition/record_file.h"

#include <gtest/gtest.h>

#include "platform/file.h"
#include "platform/virtual/faults.h"
#include "tests/acquisition/live_fixture.h"

namespace tw {
namespace {

using test::kA;
using test::kB;

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

class RecordFile : public test::LiveTest {
 protected:
  uint32_t Write(RecordChannel channel, std::string_view ping) { return WriteRecord(state_, channel, ping); }
  [[nodiscard]] bool IsOpen(RecordChannel channel) { return IsRecordFileOpen(state_, channel); }
};

TEST_F(RecordFile, AShortWriteIsCutBackToTheLastWholePingAndTheFileClosed) {
  for (const uint32_t taken : {0u, 1u, 5u}) {
    program_.OpenFile(kA, L"a.log");
    program_.OpenFile(kB, L"b.log");
    EXPECT_EQ(Write(kA, "ping 1"), 6u);
    InjectFault({.point = FaultPoint::writeFile, .taken = taken});
    EXPECT_EQ(Write(kA, "ping 2"), 0u);
    EXPECT_FALSE(IsOpen(kA));
    EXPECT_EQ(Write(kA, "ping 3"), 0u) << "recording does not begin again by itself";
    EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\nping 1") << taken << " bytes were taken";
    EXPECT_EQ(Write(kB, "other"), 5u) << "the other channel goes on";
    CloseBothRecordFiles(state_);
    ClearFaults();
  }
}

TEST_F(RecordFile, AFileThatIsClosedWhileItIsWrittenIsClosedByTheWriter) {
  program_.OpenFile(kA, L"a.log");
  const Handle file = state_.recordFileA;
  state_.recordBusyA = file;  // as in the middle of a write
  CloseRecordFile(state_, kA);
  EXPECT_FALSE(IsOpen(kA));
  uint32_t written = 0;
  EXPECT_TRUE(WriteFileBytes(file, "whole", 5, written)) << "the handle is still good";
  CloseFile(file);
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\nwhole");
}

TEST_F(RecordFile, AnotherFilePutInItsPlaceClosesTheFirst) {
  program_.OpenFile(kA, L"a.log");
  const Handle first = state_.recordFileA;
  program_.OpenFile(kA, L"next.log");
  uint32_t written = 0;
  EXPECT_FALSE(WriteFileBytes(first, "x", 1, written));
  EXPECT_EQ(Write(kA, "ping"), 4u);
  CloseBothRecordFiles(state_);
  EXPECT_EQ(program_.FileContent(L"next.log"), "INFO\r\nping");
}

TEST_F(RecordFile, AFileWhoseNameIsNotFoundStaysWithItsReturnCharacter) {
  program_.OpenFile(kA, L"a.log");
  InjectFault({.point = FaultPoint::pathOfFile});
  DeleteEmptyRecordFiles(state_);
  EXPECT_FALSE(IsOpen(kA));
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n\r");
}

}  // namespace
}  // namespace tw
