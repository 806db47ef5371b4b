#include "platform/virtual/faults.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/clock.h"
#include "platform/file.h"
#include "platform/memory.h"
#include "platform/sync.h"
#include "platform/system_error.h"
#include "tests/platform/virtual_line.h"

namespace tw {
namespace {

// Texts that were written to a file of the test's own, as WriteFileBytes took them.
class FileFaults : public testing::Test {
 protected:
  ~FileFaults() override {
    ClearFaults();
    std::filesystem::remove(path_);
  }

  // Writes five bytes and expects so many of them to be taken.
  void Write(const char* text, uint32_t taken) {
    uint32_t written = 0;
    EXPECT_EQ(WriteFileBytes(file_, text, 5, written), taken == 5);
    EXPECT_EQ(written, taken);
    if (taken < 5) {
      EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(ENOSPC));
    }
  }
  std::string Content() {
    CloseFile(file_);
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  const std::filesystem::path path_ =
      testing::TempDir() + "tw_" + testing::UnitTest::GetInstance()->current_test_info()->name();
  const Handle file_ = CreateFileAnew(path_.wstring().c_str());
};

TEST_F(FileFaults, AWriteFailsAtItsCallAndTakesTheBytesThatWereSaid) {
  InjectFault({.point = FaultPoint::writeFile, .call = 2, .code = ENOSPC, .taken = 3});
  Write("12345", 5);
  Write("abcde", 3);
  Write("67890", 5);
  EXPECT_EQ(CallCount(FaultPoint::writeFile), 3u);
  EXPECT_EQ(Content(), "12345abc67890");
}

TEST_F(FileFaults, AFullDiskCutsTheWriteThatMeetsIt) {
  LimitDiskSpace(8);
  Write("12345", 5);
  Write("67890", 3);
  Write("xxxxx", 0);
  EXPECT_EQ(Content(), "12345678");
}

TEST(SystemFaults, WhatTheSystemRefusesToGive) {
  Event event{};
  InjectFault({.point = FaultPoint::makeEvent});
  InjectFault({.point = FaultPoint::allocate, .code = ENOMEM});
  InjectFault({.point = FaultPoint::createFolder, .code = EROFS});
  EXPECT_FALSE(MakeEvent(event, ResetMode::manual));
  EXPECT_EQ(event.word, 0u);
  EXPECT_EQ(AllocateZeroed(4096), nullptr);
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(ENOMEM));
  EXPECT_FALSE(CreateFolder(L"never made"));
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(EROFS));
  ClearFaults();
}

class LineFaults : public VirtualLine {
 protected:
  LineFaults() { line_ = OpenLine(); }
};

TEST_F(LineFaults, OnlyTheNamedSubjectIsMeant) {
  constexpr wchar_t kGps[] = L"\\\\.\\COM8";
  TickingPeer gps;
  AttachPeer(kGps, &gps);
  InjectFault({.point = FaultPoint::openLine, .code = EACCES, .subject = L"COM8"});
  InjectFault({.point = FaultPoint::readLine, .call = 2, .repeat = kEveryCall, .subject = L"COM7"});
  EXPECT_EQ(OpenLine(kGps), Handle::invalid);
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(EACCES));
  const Handle other = OpenLine(kGps);
  EXPECT_EQ(Read(1), "a");
  for (const char* letter : {"a", "b", "c"}) {
    EXPECT_EQ(ReadOf(other, 1), letter);
    EXPECT_EQ(Read(1), "failed");
  }
  CloseSerialLine(other);
}

TEST_F(LineFaults, AShortWriteReachesTheDeviceThatFar) {
  InjectFault({.point = FaultPoint::writeLine, .taken = 2});
  EXPECT_FALSE(WriteSerialLine(line_, "#info", 5));
  EXPECT_EQ(device_.received, "#i");
  EXPECT_TRUE(WriteSerialLine(line_, "nfo", 3));
  EXPECT_EQ(device_.received, "#info");
}

TEST_F(LineFaults, SilenceAndHangUpComeAtTheirByte) {
  SilenceLine(kName, 3);
  SleepMilliseconds(10);
  EXPECT_EQ(BytesWaiting(line_), 3u);
  EXPECT_EQ(Read(32), "abc");
  const int64_t before_us = VirtualNow_us();
  EXPECT_EQ(BytesWaiting(line_), 0u);
  EXPECT_EQ(Read(32), "");
  EXPECT_EQ(VirtualNow_us() - before_us, 100'001);

  RestoreLine(kName);
  HangUpLine(kName, 2);
  EXPECT_EQ(Read(1), "g") << "at 111 ms: letter number 110, what came during the silence is lost";
  EXPECT_EQ(Read(32), "h");
  EXPECT_EQ(Read(32), "failed");
  EXPECT_FALSE(WriteSerialLine(line_, "x", 1));
}

TEST_F(LineFaults, OneByteAtATime) {
  DeliverSingly(kName);
  SleepMilliseconds(5);
  for (const char* letter : {"a", "b", "c"}) EXPECT_EQ(Read(8), letter);
}

}  // namespace
}  // namespace tw
