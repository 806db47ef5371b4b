// A recording that the program has made, played back and converted by it as an operator does it: buttons,
// menu, file dialog and boxes.
#include <gtest/gtest.h>

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

class Playback : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
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
  static void TearDownTestSuite() { folder_.reset(); }

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
  Program program_;
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
  EXPECT_FALSE(program_.IsEnabled(ID_PAUSE));
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

TEST_F(Playback, ConvertsToSegyAndToText) {
  const MessageBoxContent completed{L"Info", L"Convert completed"};
  EXPECT_EQ(Converts([&] { program_.Click(ID_SEGY_CONVERT); }), completed);
  EXPECT_EQ(Converts([&] { program_.Choose(ID_MENU_BIN_TO_TXT); }), completed);
  EXPECT_TRUE(WaitUntil([&] { return program_.IsEnabled(ID_PLAYBACK); }, 10));
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
