// A modal dialog of the program under test, filled in and left as an operator does it, mostly with the
// keyboard.
#pragma once

#include <string>
#include <vector>

#include "tests/window/program.h"

namespace tw {

class Dialog {
 public:
  // The one that the program shows now or within ten seconds.
  explicit Dialog(const Program& program);
  // One that is shown, such as a page of a sheet.
  explicit Dialog(HWND window) : window_(window) {}

  [[nodiscard]] bool IsOpen() const { return IsWindow(window_) != FALSE; }
  [[nodiscard]] bool CloseHasCome() const;  // within a minute: a device may have to be told first
  [[nodiscard]] HWND Window() const { return window_; }
  [[nodiscard]] std::wstring Caption() const;
  [[nodiscard]] std::vector<ControlPlace> Controls() const { return ControlsOf(window_); }

  // The control that follows the label with this text (without its ampersand); of two channels the second one
  // with `column` 1. Null when there is none.
  [[nodiscard]] HWND Field(const std::wstring& label, int column = 0) const;
  [[nodiscard]] std::wstring Value(const std::wstring& label, int column = 0) const;
  void Enter(const std::wstring& label, const std::wstring& text, int column = 0) const;
  void Select(const std::wstring& label, const std::wstring& item, int column = 0) const;

  // To where the keyboard is.
  void Press(int key) const;
  void PressWithAlt(wchar_t letter) const;
  [[nodiscard]] HWND Focus() const;
  [[nodiscard]] bool FocusComesTo(HWND control) const;  // within some seconds

 private:
  HWND window_;
};

// A page of the options, brought to the front.
[[nodiscard]] Dialog PageOf(const Dialog& sheet, int index);

// Nothing overlaps, nothing is cut off, each entry of a list fits, each field has a label with a letter of
// its own.
void ExpectWellMade(const Dialog& dialog);

}  // namespace tw
