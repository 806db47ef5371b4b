// A run whose instruments are pulled out and plugged in again, with the option to go on: what Windows tells
// of devices and of its sleep, and what the operator does meanwhile.
#include <gtest/gtest.h>
#include <windows.h>

#include <dbt.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "app/window/control_ids.h"
#include "tests/app/test_files.h"
#include "tests/window/dialog.h"
#include "tests/window/ping_log.h"
#include "tests/window/program.h"
#include "tests/window/stored_choices.h"
#include "tests/window/view_picture.h"

namespace tw {
namespace {

constexpr wchar_t kConnected[] = L"Device: COM5,921600bps, ID: VIRTUAL-0001";
constexpr ULONGLONG kPause_ms = 2'000;  // from one try to the next, when nothing is told
constexpr ULONGLONG kTries = 4;

// What the programs of this session tell debuggers, one text at a time: each waits until its text is taken.
class DebugTexts {
 public:
  DebugTexts()
      : mapping_(
            CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kSize, L"DBWIN_BUFFER")),
        taken_(CreateEventW(nullptr, FALSE, TRUE, L"DBWIN_BUFFER_READY")),
        given_(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY")),
        view_(static_cast<const char*>(MapViewOfFile(mapping_, FILE_MAP_READ, 0, 0, kSize))) {}
  ~DebugTexts() {
    UnmapViewOfFile(view_);
    for (const HANDLE each : {mapping_, taken_, given_}) CloseHandle(each);
  }
  DebugTexts(const DebugTexts&) = delete;
  DebugTexts& operator=(const DebugTexts&) = delete;

  // The next one; empty when there is none.
  [[nodiscard]] std::string Take() const {
    if (WaitForSingleObject(given_, 0) != WAIT_OBJECT_0) return {};
    const std::string text(view_ + sizeof(DWORD), strnlen(view_ + sizeof(DWORD), kSize - sizeof(DWORD)));
    SetEvent(taken_);
    return text;
  }

 private:
  static constexpr DWORD kSize = 4'096;
  HANDLE mapping_;
  HANDLE taken_;
  HANDLE given_;
  const char* view_;
};

class ComeBack : public ::testing::Test {
 protected:
  ComeBack() {
    StoreRunChoices(folder_.Path());
    StoreOption(L"KeepRunGoing", 1);
  }
  ~ComeBack() override { ForgetStoredChoices(); }

  void Start() {
    program_.emplace();
    program_->Click(ID_START);
    ASSERT_TRUE(WaitUntil([this] { return program_->Title().ends_with(L".log"); }, 60)) << "it records";
    ASSERT_EQ(program_->Status(0), kConnected);
  }

  [[nodiscard]] bool Says(const wchar_t* text, int limit_s) const {
    return WaitUntil([&] { return program_->Status(0).find(text) != std::wstring::npos; }, limit_s);
  }
  void TakeInstrumentsAway() const {
    const std::ofstream file(away_);
    ASSERT_TRUE(Says(L"the port is not there", 20)) << "COM5 is gone";
  }
  void GiveInstrumentsBack() const {
    std::filesystem::remove(away_);
    const auto isBack = [this] {
      SendMessageW(program_->Window(), WM_DEVICECHANGE, DBT_DEVICEARRIVAL, 0);
      return program_->Status(0) == kConnected;
    };
    ASSERT_TRUE(WaitUntil(isBack, 30));
  }

  // For each of the messages, one behind the other, a try to open the port.
  [[nodiscard]] ULONGLONG TimeOfTries_ms(UINT message, WPARAM kind) const {
    const DebugTexts texts;
    const ULONGLONG begin_ms = GetTickCount64();
    for (ULONGLONG i = 0; i < kTries; ++i) {
      SendMessageW(program_->Window(), message, kind, 0);
      EXPECT_TRUE(WaitUntil([&] { return texts.Take() == "Link retry\n"; }, 10));
    }
    return GetTickCount64() - begin_ms;
  }

  OwnFolder folder_;
  std::optional<Program> program_;
  const std::filesystem::path away_ = _wgetenv(L"TW_INSTRUMENTS_AWAY");
};

TEST_F(ComeBack, WhateverTheOperatorDoesMeanwhile) {
  Start();
  SavePicture(program_->Window(), "before");
  TakeInstrumentsAway();
  EXPECT_TRUE(WaitUntil([this] { return program_->Status(1) == L"port failed"; }, 20)) << "the receiver";
  SavePicture(program_->Window(), "during");
  constexpr struct {
    const char* what;
    UINT message;
    WPARAM kind;
  } kMessages[] = {{"a device has arrived", WM_DEVICECHANGE, DBT_DEVICEARRIVAL},
                   {"devices have changed", WM_DEVICECHANGE, DBT_DEVNODES_CHANGED},
                   {"the computer has slept", WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC}};
  for (const auto& [what, message, kind] : kMessages)
    EXPECT_LT(TimeOfTries_ms(message, kind), (kTries - 1) * kPause_ms) << what;
  GiveInstrumentsBack();
  EXPECT_TRUE(WaitUntil([this] { return program_->Status(1) == L"GPS: COM6,4800bps"; }, 20));
  SavePicture(program_->Window(), "after");

  program_->Click(ID_DETAIL);
  const Dialog settings(*program_);
  settings.Enter(L"Gain [dB]", L"-7.5");
  TakeInstrumentsAway();
  GiveInstrumentsBack();
  EXPECT_TRUE(settings.IsOpen());
  settings.Press(VK_RETURN);  // the device that has come back is told, and the run goes on in a second file
  EXPECT_TRUE(settings.CloseHasCome());
  SendMessageW(program_->Window(), WM_NULL, 0, 0);  // answered when the device has been told
  EXPECT_EQ(program_->Status(0), kConnected);
  program_->Click(ID_DETAIL);
  const Dialog told(*program_);
  EXPECT_EQ(told.Value(L"Gain [dB]"), L"-7.5");
  told.Press(VK_ESCAPE);
  EXPECT_TRUE(told.CloseHasCome());

  ShowWindow(program_->Window(), SW_MINIMIZE);
  TakeInstrumentsAway();
  GiveInstrumentsBack();
  EXPECT_TRUE(IsIconic(program_->Window()));
  ShowWindow(program_->Window(), SW_RESTORE);

  const auto isSized = [this] {
    GUITHREADINFO info{};
    info.cbSize = sizeof(info);
    const DWORD thread = GetWindowThreadProcessId(program_->Window(), nullptr);
    return GetGUIThreadInfo(thread, &info) != FALSE && (info.flags & GUI_INMOVESIZE) != 0;
  };
  PostMessageW(program_->Window(), WM_SYSCOMMAND, SC_SIZE, 0);
  ASSERT_TRUE(WaitUntil(isSized, 10));
  TakeInstrumentsAway();
  GiveInstrumentsBack();
  EXPECT_TRUE(isSized());
  PostMessageW(program_->Window(), WM_KEYDOWN, VK_ESCAPE, 0);
  EXPECT_TRUE(WaitUntil([&] { return !isSized(); }, 10));

  TakeInstrumentsAway();
  program_->Click(ID_STOP);
  EXPECT_TRUE(WaitUntil([this] { return program_->IsEnabled(ID_START); }, 3)) << "Stop waits for nothing";
  EXPECT_EQ(program_->Exit(), 0);
  const std::vector<std::wstring> files = folder_.Files();
  ASSERT_EQ(files.size(), 2u) << "of one run, up to Apply and from there on";
  for (const std::wstring& path : files) {
    const std::string file = test::ReadWhole(path);
    const Recording recording = TakeApart(file);
    EXPECT_EQ(recording.fault, "");
    EXPECT_GT(recording.blocks.size(), 20u);
  }
}

}  // namespace
}  // namespace tw
