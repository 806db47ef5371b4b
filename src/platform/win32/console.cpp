#include "platform/console.h"

#include <windows.h>

namespace tw {
namespace {

std::atomic<std::atomic<bool>*> watched = nullptr;

// On a thread of the system's own. When a window or session is closed the program ends as soon as this
// returns, or after some seconds: until then the main thread cleans up and ends the program itself.
BOOL WINAPI Interrupt(DWORD event) {
  watched.load()->store(true);
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(INFINITE);
  return TRUE;
}

}  // namespace

bool IsErrorTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

Utf8Console::Utf8Console() : codePage_(GetConsoleOutputCP()) {
  if (codePage_ != 0) SetConsoleOutputCP(CP_UTF8);
}

Utf8Console::~Utf8Console() {
  if (codePage_ != 0) SetConsoleOutputCP(codePage_);
}

// The library's stream has no buffer and would write byte by byte.
void WriteError(std::string_view text) {
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

void WatchInterruption(std::atomic<bool>& stop) {
  watched.store(&stop);
  SetConsoleCtrlHandler(Interrupt, TRUE);
}

}  // namespace tw
