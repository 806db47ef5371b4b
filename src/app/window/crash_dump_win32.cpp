#include "app/window/crash_dump_win32.h"

#include <windows.h>

#include <dbghelp.h>

#include "app/state/file_naming.h"
#include "base/text_format.h"

namespace tw {
namespace {

using WriteDumpFunction = decltype(&MiniDumpWriteDump);

// Of the process; nothing is looked up, loaded or allocated any more when it crashes.
const wchar_t* dumpFolder = nullptr;
WriteDumpFunction writeDump = nullptr;
volatile LONG crashes = 0;

bool NameDump(wchar_t (&path)[kPathSize]) {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  wchar_t name[64];
  FormatWide(name, "tidewriter_%04d%02d%02d_%02d%02d%02d.dmp", now.wYear, now.wMonth, now.wDay, now.wHour,
             now.wMinute, now.wSecond);
  return JoinPath(path, dumpFolder, name);
}

void WriteDump(EXCEPTION_POINTERS* exception) {
  wchar_t path[kPathSize];
  if (!NameDump(path)) return;
  const HANDLE file =
      CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  MINIDUMP_EXCEPTION_INFORMATION information{GetCurrentThreadId(), exception, FALSE};
  const BOOL written = writeDump(GetCurrentProcess(), GetCurrentProcessId(), file, MiniDumpNormal,
                                 &information, nullptr, nullptr);
  CloseHandle(file);
  if (written == FALSE) DeleteFileW(path);
}

// A second thread that crashes meanwhile goes straight to the box.
LONG WINAPI OnCrash(EXCEPTION_POINTERS* exception) {
  if (InterlockedIncrement(&crashes) == 1) WriteDump(exception);
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void WriteDumpOnCrash(const wchar_t* folder) {
  constexpr ULONG kStackForDump_bytes = 64 * 1024;  // left over when a stack overflows
  const HMODULE library = LoadLibraryExW(L"dbghelp.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (library == nullptr) return;
  writeDump = reinterpret_cast<WriteDumpFunction>(
      reinterpret_cast<void (*)()>(GetProcAddress(library, "MiniDumpWriteDump")));
  if (writeDump == nullptr) return;
  dumpFolder = folder;
  ULONG guarantee = kStackForDump_bytes;
  SetThreadStackGuarantee(&guarantee);
  SetUnhandledExceptionFilter(OnCrash);
}

}  // namespace tw
