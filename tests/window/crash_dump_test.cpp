// A crash leaves a dump beside the recordings. The process that crashes is this test program, once more.
#include "app/window/crash_dump_win32.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "tests/window/program.h"
#include "tests/window/stored_choices.h"

namespace tw {
namespace {

constexpr wchar_t kFolderVariable[] = L"TW_CRASH_FOLDER";

// Without Windows' box, which would wait for somebody.
TEST(CrashDump, DISABLED_Crash) {
  static wchar_t folder[MAX_PATH];
  GetEnvironmentVariableW(kFolderVariable, folder, MAX_PATH);
  SetErrorMode(SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS);
  WriteDumpOnCrash(folder);
  RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

PROCESS_INFORMATION StartCrash() {
  wchar_t path[MAX_PATH] = L"";
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring command = L"\"" + std::wstring(path) +
                         L"\" --gtest_filter=CrashDump.DISABLED_Crash --gtest_also_run_disabled_tests";
  STARTUPINFOW info{};
  info.cb = sizeof(info);
  PROCESS_INFORMATION process{};
  EXPECT_TRUE(
      CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &info, &process));
  return process;
}

TEST(CrashDump, StandsInTheFolderAndIsOneThatDebuggersKnow) {
  const OwnFolder folder;
  SetEnvironmentVariableW(kFolderVariable, folder.Path().c_str());
  const PROCESS_INFORMATION process = StartCrash();
  const auto firstBytes = [&] {
    char bytes[4] = "";
    const std::vector<std::wstring> files = folder.Files();
    if (!files.empty()) std::ifstream(std::filesystem::path(files[0]), std::ios::binary).read(bytes, 4);
    return std::string(bytes, 4);
  };
  EXPECT_TRUE(WaitUntil([&] { return firstBytes() == "MDMP"; }, 60));
  TerminateProcess(process.hProcess, 99);  // a debugger may have stopped it
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  ASSERT_EQ(folder.Files().size(), 1u);
  const std::wstring name = std::filesystem::path(folder.Files()[0]).filename().wstring();
  EXPECT_TRUE(std::regex_match(name, std::wregex(L"tidewriter_[0-9]{8}_[0-9]{6}\\.dmp")));
}

}  // namespace
}  // namespace tw
