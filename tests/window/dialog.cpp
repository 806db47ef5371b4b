#include "tests/window/dialog.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <prsht.h>

#include <cwctype>
#include <set>

#include "tests/window/layout_checks.h"

namespace tw {
namespace {

std::wstring WithoutAmpersand(std::wstring text) {
  std::erase(text, L'&');
  return text;
}

bool IsField(const ControlPlace& control) {
  return control.className == L"Edit" || control.className == L"ComboBox";
}

// Without one: 0.
wchar_t Mnemonic(const std::wstring& label) {
  const size_t at = label.find(L'&');
  if (at == label.npos || at + 1 >= label.size()) return L'\0';
  return static_cast<wchar_t>(towlower(static_cast<wint_t>(label[at + 1])));
}

}  // namespace

Dialog::Dialog(const Program& program) : window_(program.FindDialog(10)) {}

bool Dialog::CloseHasCome() const {
  return WaitUntil([this] { return !IsOpen(); }, 60);
}

std::wstring Dialog::Caption() const {
  return TextOf(window_);
}

HWND Dialog::Field(const std::wstring& label, int column) const {
  for (const ControlPlace& control : Controls()) {
    if (control.className != L"Static" || WithoutAmpersand(control.text) != label) continue;
    HWND field = control.window;
    for (int i = 0; i <= column; ++i) field = GetWindow(field, GW_HWNDNEXT);
    return field;
  }
  return nullptr;
}

std::wstring Dialog::Value(const std::wstring& label, int column) const {
  return TextOf(Field(label, column));
}

void Dialog::Enter(const std::wstring& label, const std::wstring& text, int column) const {
  SendMessageW(Field(label, column), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void Dialog::Select(const std::wstring& label, const std::wstring& item, int column) const {
  const auto index = SendMessageW(Field(label, column), CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1),
                                  reinterpret_cast<LPARAM>(item.c_str()));
  const HWND field = Field(label, column);
  SendMessageW(field, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
  SendMessageW(GetParent(field), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(field), CBN_SELCHANGE),
               reinterpret_cast<LPARAM>(field));
}

HWND Dialog::Focus() const {
  GUITHREADINFO info{};
  info.cbSize = sizeof(info);
  GetGUIThreadInfo(GetWindowThreadProcessId(window_, nullptr), &info);
  return info.hwndFocus;
}

bool Dialog::FocusComesTo(HWND control) const {
  return WaitUntil([&] { return Focus() == control; }, 5);
}

void Dialog::Press(int key) const {
  PostMessageW(Focus(), WM_KEYDOWN, static_cast<WPARAM>(key), 1);
}

void Dialog::PressWithAlt(wchar_t letter) const {
  constexpr LPARAM kAltIsDown = 1 << 29;
  PostMessageW(Focus(), WM_SYSCHAR, letter, kAltIsDown | 1);
}

Dialog PageOf(const Dialog& sheet, int index) {
  SendMessageW(sheet.Window(), PSM_SETCURSEL, static_cast<WPARAM>(index), 0);
  HWND page = nullptr;
  static_cast<void>(WaitUntil(
      [&] {
        do page = FindWindowExW(sheet.Window(), page, L"#32770", nullptr);
        while (page != nullptr && IsWindowVisible(page) == FALSE);
        return page != nullptr;
      },
      10));
  return Dialog(page);
}

void ExpectWellMade(const Dialog& dialog) {
  std::vector<ControlPlace> controls = dialog.Controls();
  std::erase_if(controls, [](const ControlPlace& control) {
    const bool arrows = control.className == L"msctls_updown32";  // within the frame of their number
    return (control.style & WS_VISIBLE) == 0 || arrows;
  });
  RECT client{};
  GetClientRect(dialog.Window(), &client);
  ExpectNoIntersections(controls);
  std::set<wchar_t> letters;
  const ControlPlace* previous = nullptr;
  bool labelled = false;  // the fields of two channels share a label
  for (const ControlPlace& control : controls) {
    EXPECT_TRUE(control.place.left >= 0 && control.place.top >= 0 && control.place.right <= client.right &&
                control.place.bottom <= client.bottom)
        << Name(control);
    const bool isPath = control.className == L"Edit" && control.text.find(L'\\') != std::wstring::npos;
    if (!isPath) ExpectTextFits(control, control.text);
    for (const std::wstring& item : ItemsOf(control.window)) ExpectTextFits(control, item);
    if (IsField(control)) {
      labelled = labelled || (previous != nullptr && Mnemonic(previous->text) != L'\0');
      EXPECT_TRUE(labelled) << Name(control);
    } else {
      labelled = false;
      const wchar_t letter = Mnemonic(control.text);
      EXPECT_TRUE(letter == L'\0' || letters.insert(letter).second) << Name(control);
    }
    previous = &control;
  }
}

}  // namespace tw
