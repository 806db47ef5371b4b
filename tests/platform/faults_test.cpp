#include "platform/host/faults.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/clock.h"
#include "platform/debug_output.h"
#include "platform/file.h"
#include "platform/host/debug_capture.h"
#include "platform/host/memory_registry.h"
#include "platform/host/serial_peer.h"
#include "platform/host/virtual_clock.h"
#include "platform/memory.h"
#include "platform/registry.h"
#include "platform/serial_line.h"
#include "platform/sync.h"
#include "platform/system_error.h"
#include "platform/thread.h"
#include "tests/platform/test_peers.h"

namespace tw {
namespace {

constexpr wchar_t kDevice[] = L"\\\\.\\COM7";
constexpr wchar_t kGps[] = L"\\\\.\\COM8";
constexpr char kMode[] = "baud=115200 parity=N data=8 stop=1";

class Faults : public testing::Test {
 protected:
  void SetUp() override {
    ClearFaults();
    path_ = std::filesystem::temp_directory_path() /
            (std::string("tw_") + testing::UnitTest::GetInstance()->current_test_info()->name());
    widePath_ = path_.wstring();
  }
  void TearDown() override {
    ClearFaults();
    DetachSerialLines();
    std::filesystem::remove(path_);
  }
  [[nodiscard]] std::string Content() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::filesystem::path path_;
  std::wstring widePath_;
};

TEST_F(Faults, AFileWriteFailsAtItsCallAndTakesTheBytesThatWereSaid) {
  const Handle file = CreateFileAnew(widePath_.c_str());
  InjectFault({.point = FaultPoint::writeFile, .call = 2, .code = ENOSPC, .taken = 3});
  uint32_t written = 0;
  EXPECT_TRUE(WriteFileBytes(file, "12345", 5, written));
  EXPECT_FALSE(WriteFileBytes(file, "abcde", 5, written));
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(ENOSPC));
  EXPECT_EQ(written, 3u);
  EXPECT_TRUE(WriteFileBytes(file, "67890", 5, written));
  EXPECT_EQ(CallCount(FaultPoint::writeFile), 3u);
  CloseFile(file);
  EXPECT_EQ(Content(), "12345abc67890");
}

TEST_F(Faults, AFullDiskCutsTheWriteThatMeetsIt) {
  LimitDiskSpace(8);
  const Handle file = CreateFileAnew(widePath_.c_str());
  uint32_t written = 0;
  EXPECT_TRUE(WriteFileBytes(file, "12345", 5, written));
  EXPECT_FALSE(WriteFileBytes(file, "67890", 5, written));
  EXPECT_EQ(written, 3u);
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(ENOSPC));
  EXPECT_FALSE(WriteFileBytes(file, "x", 1, written));
  EXPECT_EQ(written, 0u);
  CloseFile(file);
  EXPECT_EQ(Content(), "12345678");
}

TEST_F(Faults, OnlyTheNamedSubjectIsMeant) {
  const VirtualClock clock(0);
  TickingPeer device(1'000);
  TickingPeer gps(1'000);
  AttachPeer(kDevice, &device);
  AttachPeer(kGps, &gps);
  InjectFault({.point = FaultPoint::openLine, .code = EACCES, .subject = L"COM8"});
  InjectFault({.point = FaultPoint::readLine, .call = 2, .repeat = kEveryCall, .subject = L"COM7"});
  const Handle line = OpenSerialLine(kDevice, kMode, 100);
  EXPECT_EQ(OpenSerialLine(kGps, kMode, 100), Handle::invalid);
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(EACCES));
  const Handle other = OpenSerialLine(kGps, kMode, 100);
  char byte = 0;
  uint32_t got = 0;
  EXPECT_TRUE(ReadSerialLine(line, &byte, 1, got));
  for (int i = 0; i < 5; ++i) {
    EXPECT_TRUE(ReadSerialLine(other, &byte, 1, got));
    EXPECT_FALSE(ReadSerialLine(line, &byte, 1, got));
    EXPECT_EQ(got, 0u);
  }
  CloseSerialLine(line);
  CloseSerialLine(other);
}

TEST_F(Faults, AShortWriteReachesTheDeviceThatFar) {
  const VirtualClock clock(0);
  TickingPeer device(1'000);
  AttachPeer(kDevice, &device);
  const Handle line = OpenSerialLine(kDevice, kMode, 100);
  InjectFault({.point = FaultPoint::writeLine, .taken = 2});
  EXPECT_FALSE(WriteSerialLine(line, "#info", 5));
  EXPECT_EQ(device.received, "#i");
  EXPECT_TRUE(WriteSerialLine(line, "nfo", 3));
  EXPECT_EQ(device.received, "#info");
  CloseSerialLine(line);
}

TEST_F(Faults, SilenceAndHangUpComeAtTheirByte) {
  const VirtualClock clock(0);
  TickingPeer device(1'000);
  AttachPeer(kDevice, &device);
  const Handle line = OpenSerialLine(kDevice, kMode, 100);
  SilenceLine(kDevice, 3);
  SleepMilliseconds(10);
  char bytes[32] = {};
  uint32_t got = 0;
  EXPECT_EQ(BytesWaiting(line), 3u);
  EXPECT_TRUE(ReadSerialLine(line, bytes, sizeof(bytes), got));
  EXPECT_EQ(std::string(bytes, got), "abc");
  const int64_t before_us = VirtualNow_us();
  EXPECT_EQ(BytesWaiting(line), 0u);
  EXPECT_TRUE(ReadSerialLine(line, bytes, sizeof(bytes), got));
  EXPECT_EQ(got, 0u);
  EXPECT_EQ(VirtualNow_us() - before_us, 100'001);

  RestoreLine(kDevice);
  HangUpLine(kDevice, 2);
  EXPECT_TRUE(ReadSerialLine(line, bytes, 1, got));
  EXPECT_EQ(bytes[0], 'g');  // at 111 ms: letter number 110, what came during the silence is lost
  EXPECT_TRUE(ReadSerialLine(line, bytes, sizeof(bytes), got));
  EXPECT_EQ(got, 1u);
  EXPECT_FALSE(ReadSerialLine(line, bytes, sizeof(bytes), got));
  EXPECT_FALSE(WriteSerialLine(line, "x", 1));
  CloseSerialLine(line);
}

TEST_F(Faults, OneByteAtATime) {
  const VirtualClock clock(0);
  TickingPeer device(1'000);
  AttachPeer(kDevice, &device);
  const Handle line = OpenSerialLine(kDevice, kMode, 100);
  DeliverSingly(kDevice);
  SleepMilliseconds(5);
  char bytes[8];
  uint32_t got = 0;
  for (const char expected : {'a', 'b', 'c'}) {
    EXPECT_TRUE(ReadSerialLine(line, bytes, sizeof(bytes), got));
    EXPECT_EQ(std::string(bytes, got), std::string(1, expected));
  }
  CloseSerialLine(line);
}

TEST_F(Faults, WhatTheSystemRefusesToGive) {
  Event event{};
  InjectFault({.point = FaultPoint::makeEvent});
  InjectFault({.point = FaultPoint::allocate, .code = ENOMEM});
  InjectFault({.point = FaultPoint::startThread});
  InjectFault({.point = FaultPoint::createFolder, .code = EROFS});
  InjectFault({.point = FaultPoint::listLines, .code = EPERM});
  EXPECT_FALSE(MakeEvent(event, ResetMode::manual));
  EXPECT_EQ(event.word, 0u);
  EXPECT_EQ(AllocateZeroed(4096), nullptr);
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(ENOMEM));
  EXPECT_EQ(StartThread([](void*) {}, nullptr), Handle::null);
  EXPECT_FALSE(CreateFolder(widePath_.c_str()));
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(EROFS));
  EXPECT_FALSE(ListSerialLines([](void*, const wchar_t*) {}, nullptr));
  EXPECT_EQ(LastSystemError(), static_cast<uint32_t>(EPERM));
}

TEST_F(Faults, OneRegistryValueFailsAndTheWritesAreKnownInOrder) {
  ClearRegistry();
  InjectFault({.point = FaultPoint::writeRegistry, .subject = L"Second"});
  EXPECT_TRUE(WriteRegistryNumber(L"key", L"First", 1));
  EXPECT_FALSE(WriteRegistryNumber(L"key", L"Second", 2));
  EXPECT_TRUE(WriteRegistryText(L"key", L"Third", L"3"));
  const std::vector<std::wstring> expected = {L"First", L"Third"};
  EXPECT_EQ(RegistryWrites(), expected);
  RegistryValue value;
  EXPECT_FALSE(FindRegistryValue(L"key", L"Second", value));
  ClearRegistry();
}

TEST_F(Faults, DebugTextsAreKeptInTheirOrder) {
  WriteDebugText(L"before");
  StartDebugCapture();
  WriteDebugText(L"one\n");
  WriteDebugText(L"two\n");
  const std::vector<std::wstring> expected = {L"one\n", L"two\n"};
  EXPECT_EQ(TakeDebugTexts(), expected);
  EXPECT_TRUE(TakeDebugTexts().empty());
  StopDebugCapture();
}

}  // namespace
}  // namespace tw
