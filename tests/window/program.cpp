#include "tests/window/program.h"

#include <commctrl.h>
#include <psapi.h>

#include <cstdlib>
#include <stdexcept>

#include "app/window/control_ids.h"

namespace tw {
namespace {

constexpr wchar_t kMainClass[] = L"KT730 Control";
constexpr wchar_t kBoxClass[] = L"#32770";
constexpr int kBoxText = 0xFFFF;

std::wstring WindowText(HWND window) {
  wchar_t text[1024] = L"";
  GetWindowTextW(window, text, 1024);
  return text;
}

std::wstring ClassName(HWND window) {
  wchar_t name[128] = L"";
  GetClassNameW(window, name, 128);
  return name;
}

// Memory in another process, for messages that take pointers there.
class RemoteBuffer {
 public:
  RemoteBuffer(HANDLE process, size_t size)
      : process_(process),
        address_(VirtualAllocEx(process, nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE)) {}
  ~RemoteBuffer() { VirtualFreeEx(process_, address_, 0, MEM_RELEASE); }
  RemoteBuffer(const RemoteBuffer&) = delete;
  RemoteBuffer& operator=(const RemoteBuffer&) = delete;

  [[nodiscard]] LPARAM Address() const { return reinterpret_cast<LPARAM>(address_); }
  bool Read(void* out, size_t size) const {
    return ReadProcessMemory(process_, address_, out, size, nullptr) != FALSE;
  }

 private:
  HANDLE process_;
  void* address_;
};

struct OwnWindowSearch {
  DWORD process;
  const wchar_t* className;
  HWND besides;
  HWND found;
};

BOOL CALLBACK LookAtWindow(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<OwnWindowSearch*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != search.process || window == search.besides || !IsWindowVisible(window) ||
      ClassName(window) != search.className)
    return TRUE;
  search.found = window;
  return FALSE;
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition, int limit_s) {
  constexpr ULONGLONG kPatience = 3;  // others keep the machine busy
  const ULONGLONG end_ms = GetTickCount64() + kPatience * 1000 * static_cast<ULONGLONG>(limit_s);
  while (!condition()) {
    if (GetTickCount64() > end_ms) return false;
    Sleep(50);
  }
  return true;
}

void PrintTo(const MessageBoxContent& box, std::ostream* out) {
  const std::wstring all = box.caption + L" | " + box.text;
  for (const wchar_t c : all) *out << (c < 0x80 ? static_cast<char>(c) : '?');
}

std::wstring TextOf(HWND control) {
  wchar_t text[1024] = L"";
  SendMessageW(control, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(text));
  return text;
}

void RestOn(HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  SetCursorPos(place.left + 8, place.top + 6);
}

std::vector<std::wstring> ItemsOf(HWND combo) {
  std::vector<std::wstring> items;
  const LRESULT count = SendMessageW(combo, CB_GETCOUNT, 0, 0);
  for (LRESULT i = 0; i < count; ++i) {
    wchar_t text[256] = L"";
    SendMessageW(combo, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
    items.emplace_back(text);
  }
  return items;
}

std::vector<ControlPlace> ControlsOf(HWND window) {
  std::vector<ControlPlace> controls;
  for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    ControlPlace control{GetDlgCtrlID(child) & 0xFFFF,    child, ClassName(child), TextOf(child), {},
                         GetWindowLongW(child, GWL_STYLE)};
    GetWindowRect(child, &control.place);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&control.place), 2);
    controls.push_back(control);
  }
  return controls;
}

Program::Program() {
  SetProcessDPIAware();  // so that its pixels are ours
  const wchar_t* const path = _wgetenv(L"TW_PROGRAM");
  if (path == nullptr) throw std::runtime_error("TW_PROGRAM names no program");
  std::wstring command = L"\"" + std::wstring(path) + L"\"";
  STARTUPINFOW info{};
  info.cb = sizeof(info);
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &info,
                      &process_)) {
    throw std::runtime_error("the program does not start");
  }
  if (!WaitUntil([this] { return (window_ = FindOwnWindow(kMainClass)) != nullptr; }, 60)) {
    TerminateProcess(process_.hProcess, 99);
    throw std::runtime_error("the program shows no window");
  }
}

Program::~Program() {
  if (WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT) TerminateProcess(process_.hProcess, 99);
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
}

HWND Program::FindOwnWindow(const wchar_t* className, HWND besides) const {
  OwnWindowSearch search{process_.dwProcessId, className, besides, nullptr};
  EnumWindows(LookAtWindow, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::wstring Program::Title() const {
  return WindowText(window_);
}

std::wstring Program::Text(int id) const {
  return TextOf(Control(id));
}

bool Program::IsTicked(int id) const {
  return SendMessageW(Control(id), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

std::wstring Program::Status(int part) const {
  const HWND bar = FindWindowExW(window_, nullptr, STATUSCLASSNAMEW, nullptr);
  const auto index = static_cast<WPARAM>(part);
  const size_t length = LOWORD(SendMessageW(bar, SB_GETTEXTLENGTHW, index, 0));
  std::wstring text(length + 1, L'\0');
  const RemoteBuffer remote(process_.hProcess, 4096);
  SendMessageW(bar, SB_GETTEXTW, index, remote.Address());
  if (!remote.Read(text.data(), text.size() * sizeof(wchar_t))) return L"";
  text.resize(length);
  return text;
}

std::wstring Program::Tip() const {
  const HWND tip = FindOwnWindow(TOOLTIPS_CLASSW);
  return tip == nullptr ? L"" : TextOf(tip);
}

bool Program::TipComes(std::wstring_view begin, std::wstring_view end) const {
  return WaitUntil(
      [&] {
        const std::wstring tip = Tip();
        return tip.starts_with(begin) && tip.ends_with(end);
      },
      10);
}

SIZE Program::ClientSize() const {
  RECT client{};
  GetClientRect(window_, &client);
  return {client.right, client.bottom};
}

bool Program::IsBusy() const {
  constexpr UINT kPatience_ms = 300;
  DWORD_PTR answer = 0;
  return SendMessageTimeoutW(window_, WM_NULL, 0, 0, 0, kPatience_ms, &answer) == 0;
}

void Program::Click(int id) const {
  PostMessageW(Control(id), BM_CLICK, 0, 0);
}

void Program::Select(int combo, const std::wstring& item) const {
  SendMessageW(Control(combo), CB_SELECTSTRING, static_cast<WPARAM>(-1),
               reinterpret_cast<LPARAM>(item.c_str()));
  PostMessageW(window_, WM_COMMAND, MAKEWPARAM(combo, CBN_SELCHANGE),
               reinterpret_cast<LPARAM>(Control(combo)));
}

void Program::Choose(int menuEntry) const {
  PostMessageW(window_, WM_COMMAND, static_cast<WPARAM>(menuEntry), 0);
}

void Program::Resize(int width, int height) const {
  SetWindowPos(window_, nullptr, 0, 0, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

HWND Program::FindDialog(int limit_s, HWND below) const {
  HWND dialog = nullptr;
  static_cast<void>(
      WaitUntil([&] { return (dialog = FindOwnWindow(kBoxClass, below)) != nullptr; }, limit_s));
  return dialog;
}

MessageBoxContent Program::AnswerBox(int limit_s, HWND dialog) const {
  const HWND box = FindDialog(limit_s, dialog);
  if (box == nullptr) return {};
  const MessageBoxContent content{WindowText(box), TextOf(GetDlgItem(box, kBoxText))};
  PostMessageW(box, WM_COMMAND, IDOK, 0);
  static_cast<void>(WaitUntil([&] { return !IsWindow(box); }, limit_s));
  return content;
}

int Program::Exit() {
  Choose(ID_MENU_EXIT);
  if (WaitForSingleObject(process_.hProcess, 60'000) != WAIT_OBJECT_0) return -1;
  DWORD code = 0;
  GetExitCodeProcess(process_.hProcess, &code);
  return static_cast<int>(code);
}

}  // namespace tw
