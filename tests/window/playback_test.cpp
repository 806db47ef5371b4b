// A recording that the program has made, played back and converted by it as an operator does it: buttons,
// menu, file dialog and boxes.
#include <gtest/gtest.h>

#include <shlobj.h>

#include <cstring>
#include <cwchar>
#include <filesystem>
#include <optional>
#include <utility>

#include "app/window/control_ids.h"
#include "tests/window/dialog.h"
#include "tests/window/program.h"
#include "tests/window/stored_choices.h"
#include "tests/window/view_picture.h"

namespace tw {
namespace {

constexpr int kRecord_s = 100;
constexpr size_t kPings = 400;
constexpr uintmax_t kFrameSize = 88 + 2 * 4 * 1'000;  // as the session's device samples

BOOL CALLBACK FindEdit(HWND window, LPARAM found) {
  wchar_t name[64] = L"";
  GetClassNameW(window, name, 64);
  if (std::wstring_view(name) != L"Edit" || !IsWindowVisible(window)) return TRUE;
  *reinterpret_cast<HWND*>(found) = window;
  return FALSE;
}

struct BarChoice {
  explicit BarChoice(bool on) { StoreOption(L"PlaybackBar", on ? 1 : 0); }
};

class Playback : public ::testing::Test {
 protected:
  explicit Playback(bool bar = false) : bar_(bar) {}

  static void SetUpTestSuite() {
    if (folder_) return;  // both suites play one recording
    folder_.emplace();
    StoreRunChoices(folder_->Path());
    Program program;
    program.Click(ID_START);
    ASSERT_TRUE(WaitUntil([] { return RecordedBytes() > kPings * kFrameSize; }, kRecord_s));
    program.Click(ID_STOP);
    ASSERT_TRUE(WaitUntil([&] { return program.IsEnabled(ID_START); }, 20));
    ASSERT_EQ(program.Exit(), 0);
    const std::vector<std::wstring> files = folder_->Files();
    ASSERT_EQ(files.size(), 1u);
    file_ = files.front();
    size_ = std::filesystem::file_size(file_);
  }

  [[nodiscard]] static uintmax_t RecordedBytes() {
    const std::vector<std::wstring> files = folder_->Files();
    return files.empty() ? 0 : std::filesystem::file_size(files.front());
  }

  // In the file dialog that stands open: a file, or none.
  void ChooseFile(const std::wstring& path) const {
    const HWND dialog = program_.FindDialog(20);
    ASSERT_NE(dialog, nullptr);
    HWND name = nullptr;
    ASSERT_TRUE(WaitUntil(
        [&] {
          EnumChildWindows(dialog, FindEdit, reinterpret_cast<LPARAM>(&name));
          return name != nullptr;
        },
        10));
    SendMessageW(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    PostMessageW(dialog, WM_COMMAND, path.empty() ? IDCANCEL : IDOK, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindow(dialog); }, 20));
  }

  // Lets go of a file over the window.
  void Drop(const std::wstring& path) const {
    DWORD process = 0;
    GetWindowThreadProcessId(program_.Window(), &process);
    const HANDLE opened = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, process);
    std::string bytes(sizeof(DROPFILES) + (path.size() + 2) * sizeof(wchar_t), '\0');
    DROPFILES head{};
    head.pFiles = sizeof(DROPFILES);
    head.fWide = TRUE;
    std::memcpy(bytes.data(), &head, sizeof(head));
    std::memcpy(bytes.data() + sizeof(head), path.data(), path.size() * sizeof(wchar_t));
    void* const there = VirtualAllocEx(opened, nullptr, bytes.size(), MEM_COMMIT, PAGE_READWRITE);
    ASSERT_TRUE(WriteProcessMemory(opened, there, bytes.data(), bytes.size(), nullptr));
    CloseHandle(opened);
    PostMessageW(program_.Window(), WM_DROPFILES, reinterpret_cast<WPARAM>(there), 0);
  }

  [[nodiscard]] bool Comes(int control) const {
    return WaitUntil([&] { return program_.IsEnabled(control); }, 60);
  }
  [[nodiscard]] HWND Slider() const {
    return FindWindowExW(program_.Window(), nullptr, L"EchoSliderbar class", nullptr);
  }
  [[nodiscard]] bool ShowsSlider() const { return IsWindowVisible(Slider()) != FALSE; }

  [[nodiscard]] Picture Echogram() const { return PictureOf(program_.Control(ID_ECHOGRAM)); }
  [[nodiscard]] bool Changes(const Picture& from) const {
    return WaitUntil([&] { return Echogram().pixels != from.pixels; }, 10);
  }

  // Once what has been done is painted.
  [[nodiscard]] bool Rests() const {
    Picture last = Echogram();
    return WaitUntil(
        [&] {
          Sleep(500);  // five repaints
          const Picture before = std::exchange(last, Echogram());
          return last.pixels == before.pixels;
        },
        10);
  }

  // Asked for with a control or a menu entry; returns what is said at the end.
  template <typename Ask>
  MessageBoxContent Converts(Ask ask) {
    ask();
    ChooseFile(file_);
    return program_.AnswerBox(60);
  }

  static inline std::optional<OwnFolder> folder_;
  static inline std::wstring file_;
  static inline uintmax_t size_ = 0;
  BarChoice bar_;  // ahead of the program, which reads it at its start
  Program program_;
};

class PlaybackWithBar : public Playback {
 protected:
  PlaybackWithBar() : Playback(true) {}

  [[nodiscard]] HWND Bar() const { return program_.Control(ID_PLAYBACK_BAR); }
  [[nodiscard]] HWND Part(int id) const { return GetDlgItem(Bar(), id); }
  // How many seconds of the recording have been played, of how many; below 0: it does not say.
  [[nodiscard]] int Played(int& length_s) const {
    int minutes = 0;
    int seconds = -1;
    int minutesInAll = 0;
    const std::wstring text = TextOf(Part(ID_REPLAY_TIME));
    if (std::swscanf(text.c_str(), L"00:%d:%d of 00:%d:%d", &minutes, &seconds, &minutesInAll, &length_s) !=
        4)
      return -1;
    length_s += 60 * minutesInAll;
    return 60 * minutes + seconds;
  }
  [[nodiscard]] bool ComesTo(int from_s, int to_s) const {
    int length_s = 0;
    return WaitUntil(
        [&] {
          const int played_s = Played(length_s);
          return played_s >= from_s && played_s <= to_s;
        },
        10);
  }
  static void Press(HWND window, int key) { PostMessageW(window, WM_KEYDOWN, static_cast<WPARAM>(key), 1); }
  // At a part of the window's width.
  static void Mouse(UINT message, HWND window, int percent, int y) {
    RECT client{};
    GetClientRect(window, &client);
    PostMessageW(window, message, MK_LBUTTON, MAKELPARAM(client.right * percent / 100, y));
  }
};

TEST_F(Playback, PlaysHoldsStepsBackAndStops) {
  EXPECT_FALSE(ShowsSlider());
  program_.Click(ID_SHOW_SETTINGS);
  EXPECT_EQ(program_.AnswerBox(10), (MessageBoxContent{L"Error", L"Click after Playback saved file"}));

  program_.Click(ID_PLAYBACK);
  ChooseFile(file_);
  ASSERT_TRUE(Comes(ID_PAUSE));
  EXPECT_TRUE(WaitUntil([&] { return ShowsSlider(); }, 10));
  const std::wstring size = L"File size: " + std::to_wstring(size_) + L"Bytes";
  EXPECT_TRUE(WaitUntil([&] { return program_.Status(3) == size; }, 10));
  EXPECT_TRUE(WaitUntil([&] { return program_.Status(2).starts_with(L"Position(3D)"); }, 10));
  for (const WPARAM number : {1, 4'096, 0x7FFF'0000})  // that a worker never sent
    for (const HWND window : {program_.Window(), Slider()}) PostMessageW(window, WM_USER, number, 0);
  EXPECT_TRUE(Changes(Echogram())) << "it plays";
  const Picture thumb = PictureOf(Slider());
  EXPECT_TRUE(WaitUntil([&] { return PictureOf(Slider()).pixels != thumb.pixels; }, 10)) << "the thumb moves";

  Sleep(2'000);
  program_.Click(ID_PAUSE);
  ASSERT_TRUE(Comes(ID_RESUME));
  EXPECT_TRUE(WaitUntil([&] { return !program_.IsEnabled(ID_PAUSE); }, 10));  // a moment later
  EXPECT_TRUE(Rests()) << "it holds";
  SavePicture(program_.Window(), "playback");
  for (const int back : {ID_BACK, ID_FAST_BACK}) {
    const Picture before = Echogram();
    program_.Click(back);
    EXPECT_TRUE(Changes(before)) << "a step back while it holds: " << back;
    EXPECT_TRUE(Rests());
  }

  program_.Click(ID_SHOW_SETTINGS);
  {
    const Dialog settings(program_);
    EXPECT_EQ(settings.Caption(), L"Settings (Single)");
    EXPECT_EQ(settings.Value(L"Range [m]"), L"30");
    ExpectWellMade(settings);
    SavePicture(settings.Window(), "show-settings");
    for (const ControlPlace& control : settings.Controls()) {
      const bool isField = control.className == L"Edit" || control.className == L"ComboBox";
      EXPECT_EQ(IsWindowEnabled(control.window) != FALSE, !isField) << control.id;
    }
    settings.Press(VK_ESCAPE);
    ASSERT_TRUE(settings.CloseHasCome());
  }

  program_.Click(ID_RESUME);
  ASSERT_TRUE(Comes(ID_PAUSE));
  ASSERT_TRUE(Comes(ID_RESUME)) << "at the end";
  EXPECT_EQ(program_.Text(ID_RESUME), L"\u25BA");
  program_.Click(ID_RESUME);
  ASSERT_TRUE(Comes(ID_PAUSE)) << "begun anew";
  EXPECT_TRUE(Changes(Echogram()));

  program_.Click(ID_STOP);
  ASSERT_TRUE(WaitUntil([&] { return !program_.IsEnabled(ID_STOP); }, 20));
  EXPECT_FALSE(ShowsSlider());
  EXPECT_TRUE(WaitUntil([&] { return program_.Status(3).empty(); }, 10));
  EXPECT_EQ(program_.Exit(), 0);
}

// Twenty pings a second, 400 of them or some more.
TEST_F(PlaybackWithBar, KeysPaceStripAndTimeSteerIt) {
  EXPECT_EQ(Bar(), nullptr);
  program_.Click(ID_PLAYBACK);
  ChooseFile(file_);
  ASSERT_TRUE(Comes(ID_PAUSE));
  int length_s = 0;
  ASSERT_TRUE(WaitUntil([&] { return Bar() != nullptr && Played(length_s) >= 0; }, 10));
  EXPECT_GE(length_s, 19);
  RECT echogram{};
  RECT bar{};
  GetWindowRect(program_.Control(ID_ECHOGRAM), &echogram);
  GetWindowRect(Bar(), &bar);
  EXPECT_GE(bar.top, echogram.bottom);

  Press(Slider(), VK_SPACE);
  ASSERT_TRUE(Comes(ID_RESUME)) << "held";
  Press(program_.Control(ID_ECHOGRAM), VK_HOME);
  EXPECT_TRUE(ComesTo(0, 0));
  for (int i = 0; i < 5; ++i) Press(Bar(), VK_RIGHT);
  EXPECT_TRUE(ComesTo(4, 5)) << "100 pings on, about each twentieth of a second one";

  const HWND goTo = Part(ID_REPLAY_GO_TO);
  Press(goTo, VK_SPACE);  // counts for what is typed in
  EXPECT_TRUE(WaitUntil([&] { return TextOf(goTo) == L" "; }, 10));
  for (const wchar_t c : std::wstring(L"0:12")) PostMessageW(goTo, WM_CHAR, static_cast<WPARAM>(c), 1);
  Press(goTo, VK_RETURN);
  EXPECT_TRUE(ComesTo(12, 12));
  EXPECT_TRUE(program_.IsEnabled(ID_RESUME)) << "held still";
  Press(Bar(), VK_LEFT);
  EXPECT_TRUE(ComesTo(10, 11)) << "20 pings back";

  const HWND pace = Part(ID_REPLAY_PACE);
  EXPECT_EQ(SendMessageW(pace, CB_GETCURSEL, 0, 0), 4) << "as given";
  const struct {
    wchar_t key;
    LRESULT place;
  } paces[] = {{L'+', 5}, {L'+', 6}, {L'+', 6}, {L'-', 5}};
  for (const auto& row : paces) {
    PostMessageW(Bar(), WM_CHAR, row.key, 1);
    EXPECT_TRUE(WaitUntil([&] { return SendMessageW(pace, CB_GETCURSEL, 0, 0) == row.place; }, 10))
        << row.place;
  }

  Mouse(WM_LBUTTONDOWN, Bar(), 50, bar.bottom - bar.top - 10);
  Mouse(WM_LBUTTONUP, Bar(), 50, bar.bottom - bar.top - 10);
  EXPECT_TRUE(ComesTo(length_s / 2 - 1, length_s / 2 + 1)) << "the strip";
  Mouse(WM_LBUTTONDOWN, Slider(), 80, 10);
  Mouse(WM_LBUTTONUP, Slider(), 80, 10);
  EXPECT_TRUE(ComesTo(length_s * 7 / 10, length_s * 9 / 10)) << "beside the thumb";
  Mouse(WM_LBUTTONDOWN, Slider(), 80, 10);
  Mouse(WM_MOUSEMOVE, Slider(), 20, 500);
  EXPECT_TRUE(ComesTo(0, length_s * 3 / 10)) << "the thumb follows";
  Mouse(WM_LBUTTONUP, Slider(), 20, 500);

  Press(Bar(), VK_SPACE);
  EXPECT_TRUE(Comes(ID_PAUSE)) << "it plays";
  ASSERT_TRUE(Comes(ID_RESUME)) << "at the end";
  SavePicture(program_.Window(), "playback-bar");
  program_.Click(ID_STOP);
  EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(Bar()); }, 20));
  EXPECT_EQ(program_.Exit(), 0);
}

TEST_F(Playback, WhatIsDroppedIsPlayedAndOfferedAgain) {
  Drop(file_);
  ASSERT_TRUE(Comes(ID_PAUSE));
  program_.Click(ID_STOP);
  ASSERT_TRUE(WaitUntil([&] { return !program_.IsEnabled(ID_STOP); }, 20));
  program_.Choose(ID_MENU_RECENT);
  EXPECT_TRUE(Comes(ID_PAUSE));
  EXPECT_EQ(program_.Exit(), 0);
}

TEST_F(Playback, ConvertsToSegyAndToText) {
  const MessageBoxContent completed{L"Info", L"Convert completed"};
  EXPECT_EQ(Converts([&] { program_.Click(ID_SEGY_CONVERT); }), completed);
  EXPECT_EQ(Converts([&] { program_.Choose(ID_MENU_BIN_TO_TXT); }), completed);
  EXPECT_TRUE(WaitUntil([&] { return program_.IsEnabled(ID_PLAYBACK); }, 10));
  EXPECT_EQ(program_.Status(2), L"Written: " + file_.substr(0, file_.size() - 4) + L"_txt.log");
  EXPECT_FALSE(ShowsSlider());

  program_.Choose(ID_MENU_SEGY);
  ChooseFile(L"");
  EXPECT_EQ(program_.AnswerBox(10), (MessageBoxContent{L"Error", L"File is not selected"}));
  EXPECT_EQ(program_.Exit(), 0);

  const std::wstring stem = file_.substr(0, file_.size() - 4);
  EXPECT_GT(std::filesystem::file_size(stem + L".sgy"), size_);
  EXPECT_GT(std::filesystem::file_size(stem + L"_txt.log"), size_);
}

}  // namespace
}  // namespace tw
