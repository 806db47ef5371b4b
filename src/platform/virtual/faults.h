// Faults put at an exact call or byte of the platform layer, for tests. Set them while no other thread is in
// the platform layer, or from a thread of the virtual clock.
#pragma once

#include <cstdint>
#include <string>

namespace tw {

enum class FaultPoint : uint8_t {
  openLine,       // subject: the line's name, "\\.\COM7"
  readLine,       // subject: the line's name
  writeLine,      // subject: the line's name
  overrunLine,    // input was lost before BytesWaiting; subject: the line's name
  askLine,        // IsLineThere; subject: the line's name
  listLines,      // no subject
  createFile,     // subject of this and the other calls on files: the path
  openFile,       //
  readFile,       //
  writeFile,      //
  seekFile,       // SeekFile, FilePosition, FileSize
  truncateFile,   //
  flushFile,      //
  pathOfFile,     //
  removeFile,     //
  renameFile,     // subject: the old path
  createFolder,   //
  listFolder,     //
  freeSpace,      //
  documents,      // no subject
  readRegistry,   // subject: the value's name
  writeRegistry,  // subject: the value's name
  startThread,    // no subject
  makeEvent,      // no subject
  allocate,       // no subject
};
inline constexpr int kFaultPoints = 25;

inline constexpr uint64_t kEveryCall = UINT64_MAX;

// The calls number `call` to `call + repeat - 1` from now fail (1 is the next one).
struct Fault {
  FaultPoint point;
  uint64_t call = 1;
  uint64_t repeat = 1;
  uint32_t code = 5;       // what LastSystemError() says: an errno, EIO at first
  uint32_t taken = 0;      // of a failing write: so many bytes of it were taken
  uint32_t held_ms = 0;    // not 0: the calls do not fail, each takes so long
  std::wstring subject{};  // only calls whose subject contains this text count; empty: all
};
void InjectFault(const Fault& fault);

// From now on the files together take so many bytes; what goes beyond is cut there and fails with ENOSPC.
void LimitDiskSpace(uint64_t bytes);

// Calls at this point since the last ClearFaults(), the failed ones too.
[[nodiscard]] uint64_t CallCount(FaultPoint point);

// What the line delivers to the program, named as it is opened ("\\.\COM7"). Counted from now on: after so
// many bytes it falls silent (what arrives is lost) or hangs up (each call fails at once).
void SilenceLine(const wchar_t* name, uint64_t afterBytes = 0);
void HangUpLine(const wchar_t* name, uint64_t afterBytes = 0);
// Each read gives one byte at most, whatever waits.
void DeliverSingly(const wchar_t* name);
// The line takes no bytes, as one whose CTS is low: a write lasts until it does again, or to its limit.
void BlockLine(const wchar_t* name);
// Takes the line's faults of these four kinds back.
void RestoreLine(const wchar_t* name);

// No faults, no limit, counts at 0.
void ClearFaults();

}  // namespace tw
