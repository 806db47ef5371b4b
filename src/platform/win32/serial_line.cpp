#include "platform/serial_line.h"

#include <utility>

#include "base/text_format.h"
#include "platform/win32/handle_win32.h"

namespace tw {
namespace {

constexpr DWORD kInputQueueSize = 1u << 20;
constexpr size_t kNameUnits = 256;

// Nothing here is checked: a driver that refuses a setting may work all the same.
void SetLine(HANDLE line, const char* mode) {
  wchar_t wideMode[128];
  FormatWide(wideMode, "%s", mode);
  DCB settings{};
  BuildCommDCBW(wideMode, &settings);
  settings.DCBlength = sizeof(settings);
  SetCommState(line, &settings);
}

// A read takes what waits at once, else it waits for the first byte, at most the constant. Writes never time
// out.
void SetTimeouts(HANDLE line, DWORD readConstant_ms) {
  COMMTIMEOUTS timeouts{};
  timeouts.ReadIntervalTimeout = MAXDWORD;
  timeouts.ReadTotalTimeoutMultiplier = MAXDWORD;
  timeouts.ReadTotalTimeoutConstant = readConstant_ms;
  SetCommTimeouts(line, &timeouts);
}

// A zero-filled buffer of wide characters.
class Buffer {
 public:
  explicit Buffer(DWORD units)
      : units_(units), text_(static_cast<wchar_t*>(LocalAlloc(LMEM_ZEROINIT, Bytes()))) {}
  ~Buffer() { LocalFree(text_); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  void Clear() { ZeroMemory(text_, Bytes()); }
  [[nodiscard]] wchar_t* Get() const { return text_; }
  [[nodiscard]] DWORD Units() const { return units_; }
  [[nodiscard]] DWORD Bytes() const { return units_ * static_cast<DWORD>(sizeof(wchar_t)); }

 private:
  const DWORD units_;
  wchar_t* const text_;
};

using TakeName = void (*)(void* context, const wchar_t* name);

void TakeTextValues(HKEY key, Buffer& name, Buffer& data, TakeName take, void* context) {
  for (DWORD index = 0;; ++index) {
    name.Clear();
    data.Clear();
    DWORD nameUnits = name.Units();
    DWORD dataBytes = data.Bytes();
    DWORD type = 0;
    const LSTATUS result = RegEnumValueW(key, index, name.Get(), &nameUnits, nullptr, &type,
                                         reinterpret_cast<BYTE*>(data.Get()), &dataBytes);
    if (result != ERROR_SUCCESS) return;  // no more, as a rule
    // Data that grew since the sizes were asked may fill the buffer to its end.
    data.Get()[data.Units() - 1] = L'\0';
    if (type != REG_SZ) continue;
    wchar_t lineName[kNameUnits];
    CopyWide(lineName, data.Get());
    take(context, lineName);
  }
}

[[nodiscard]] DWORD TakeTextValues(HKEY key, TakeName take, void* context) {
  DWORD longestName = 0;
  DWORD longestData_bytes = 0;
  const LSTATUS result = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                          &longestName, &longestData_bytes, nullptr, nullptr);
  if (result != ERROR_SUCCESS) return static_cast<DWORD>(result);
  Buffer name(longestName + 1);
  Buffer data(longestData_bytes / 2 + 1);
  if (name.Get() == nullptr || data.Get() == nullptr) return ERROR_OUTOFMEMORY;
  TakeTextValues(key, name, data, take, context);
  return ERROR_SUCCESS;
}

}  // namespace

Handle OpenSerialLine(const wchar_t* name, const char* mode, uint32_t readConstant_ms) {
  const HANDLE line = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (line == INVALID_HANDLE_VALUE) return Handle::invalid;
  SetLine(line, mode);
  SetTimeouts(line, readConstant_ms);
  SetupComm(line, kInputQueueSize, 0);
  PurgeComm(line, PURGE_TXABORT | PURGE_RXABORT | PURGE_TXCLEAR | PURGE_RXCLEAR);
  return FromSystem(line);
}

bool ReadSerialLine(Handle line, void* bytes, uint32_t size, uint32_t& got) {
  DWORD count = 0;
  const bool read = ReadFile(ToSystem(line), bytes, size, &count, nullptr) != 0;
  got = read ? count : 0;
  return read;
}

bool WriteSerialLine(Handle line, const void* bytes, uint32_t size) {
  DWORD count = 0;
  return WriteFile(ToSystem(line), bytes, size, &count, nullptr) != 0 && count == size;
}

bool WriteSerialLineWithin(Handle line, const void* bytes, uint32_t size, uint32_t limit_ms,
                           uint32_t& written) {
  written = 0;
  const HANDLE system = ToSystem(line);
  COMMTIMEOUTS timeouts{};
  if (!GetCommTimeouts(system, &timeouts)) return false;
  const DWORD given_ms = std::exchange(timeouts.WriteTotalTimeoutConstant, limit_ms);
  if (!SetCommTimeouts(system, &timeouts)) return false;
  DWORD count = 0;
  const bool wrote = WriteFile(system, bytes, size, &count, nullptr) != 0;
  const DWORD error = wrote ? ERROR_SUCCESS : GetLastError();
  written = count;
  timeouts.WriteTotalTimeoutConstant = given_ms;
  SetCommTimeouts(system, &timeouts);
  SetLastError(error);
  return wrote || error == ERROR_TIMEOUT || error == ERROR_SEM_TIMEOUT;
}

uint32_t BytesWaiting(Handle line, uint32_t* overruns) {
  DWORD errors = 0;
  COMSTAT state{};
  if (!ClearCommError(ToSystem(line), &errors, &state)) return 0;
  if (overruns != nullptr && (errors & (CE_OVERRUN | CE_RXOVER)) != 0) ++*overruns;
  return state.cbInQue;
}

// Not by ClearCommError, which would take away losses of input that BytesWaiting is to report.
bool IsLineThere(Handle line) {
  DCB settings{};
  settings.DCBlength = sizeof(settings);
  return GetCommState(ToSystem(line), &settings) != 0;
}

void CloseSerialLine(Handle line) {
  CloseIfOpen(line);
}

bool ListSerialLines(TakeName take, void* context) {
  HKEY key = nullptr;
  const LSTATUS opened =
      RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, KEY_QUERY_VALUE, &key);
  if (opened != ERROR_SUCCESS) {
    SetLastError(static_cast<DWORD>(opened));
    return false;
  }
  const DWORD result = TakeTextValues(key, take, context);
  RegCloseKey(key);
  if (result == ERROR_SUCCESS) return true;
  SetLastError(result);
  return false;
}

}  // namespace tw
