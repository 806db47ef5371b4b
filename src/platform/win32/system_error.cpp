#include "platform/system_error.h"

#include <windows.h>

#include "base/text_format.h"

namespace tw {

uint32_t LastSystemError() {
  return GetLastError();
}

bool MeansFullDisk(uint32_t code) {
  return code == ERROR_DISK_FULL || code == ERROR_HANDLE_DISK_FULL || code == ERROR_NOT_ENOUGH_QUOTA;
}

size_t SystemErrorText(uint32_t code, std::span<wchar_t> out) {
  wchar_t* text = nullptr;
  constexpr DWORD kFlags =
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  const DWORD length = FormatMessageW(kFlags, nullptr, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                                      reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  if (length == 0) return FormatWide(out, "System error %lu", static_cast<unsigned long>(code));
  const size_t stored = CopyWide(out, {text, length});
  LocalFree(text);
  return stored;
}

}  // namespace tw
