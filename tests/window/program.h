// The program under test, seen from outside: a process with a window that is clicked and read like an
// operator would. Times are limits for what happens by itself; nothing is asserted about how long it takes.
#pragma once

#include <windows.h>

#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace tw {

// Polls until the condition holds; false when it does not within the time, which is for a machine that has
// nothing else to do: a busy one gets three times as much.
[[nodiscard]] bool WaitUntil(const std::function<bool()>& condition, int limit_s);

struct MessageBoxContent {
  std::wstring caption;
  std::wstring text;

  bool operator==(const MessageBoxContent&) const = default;
};
void PrintTo(const MessageBoxContent& box, std::ostream* out);  // for failed expectations

struct ControlPlace {
  int id;  // 0xFFFF for those without
  HWND window;
  std::wstring className;
  std::wstring text;
  RECT place;  // in client pixels of its window
  LONG style;
};

// The children of a window, in the order of the keyboard.
[[nodiscard]] std::vector<ControlPlace> ControlsOf(HWND window);

[[nodiscard]] std::wstring TextOf(HWND control);
void RestOn(HWND control);  // with the mouse
[[nodiscard]] std::vector<std::wstring> ItemsOf(HWND combo);

class Program {
 public:
  // Starts the program that TW_PROGRAM names and waits for its window.
  Program();
  // Ends it the hard way if it still runs.
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  [[nodiscard]] HWND Window() const { return window_; }
  [[nodiscard]] HWND Control(int id) const { return GetDlgItem(window_, id); }
  [[nodiscard]] std::wstring Title() const;
  [[nodiscard]] std::wstring Text(int id) const;
  [[nodiscard]] bool IsTicked(int id) const;
  [[nodiscard]] bool IsEnabled(int id) const { return IsWindowEnabled(Control(id)) != FALSE; }
  [[nodiscard]] std::vector<std::wstring> Items(int combo) const { return ItemsOf(Control(combo)); }
  [[nodiscard]] std::wstring Status(int part) const;
  [[nodiscard]] std::vector<ControlPlace> Controls() const { return ControlsOf(window_); }
  [[nodiscard]] std::wstring Tip() const;  // that is shown now, else empty
  [[nodiscard]] bool TipComes(std::wstring_view begin, std::wstring_view end) const;
  [[nodiscard]] SIZE ClientSize() const;
  [[nodiscard]] bool IsBusy() const;  // it takes no message at the moment

  // Posted, because Start keeps the window busy for seconds.
  void Click(int id) const;
  // As an operator does it from the list.
  void Select(int combo, const std::wstring& item) const;
  void Choose(int menuEntry) const;
  void Resize(int width, int height) const;

  // The message box that is shown now or within the time, above a dialog that is open; empty texts when none
  // comes. It is closed with OK.
  [[nodiscard]] MessageBoxContent AnswerBox(int limit_s, HWND dialog = nullptr) const;

  // The dialog that is shown now or within the time, above another one; null when none comes.
  [[nodiscard]] HWND FindDialog(int limit_s, HWND below = nullptr) const;

  // File, Exit; the exit code, or -1 when the process does not end.
  [[nodiscard]] int Exit();

 private:
  [[nodiscard]] HWND FindOwnWindow(const wchar_t* className, HWND besides = nullptr) const;

  PROCESS_INFORMATION process_{};
  HWND window_ = nullptr;
};

}  // namespace tw
