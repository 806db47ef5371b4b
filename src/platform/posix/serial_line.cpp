// Serial lines are terminals, named by their path ("/dev/ttyUSB0"), with or without the prefix of device
// names.
#include "platform/serial_line.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

#include "base/text_format.h"
#include "platform/posix/handle_table.h"
#include "platform/posix/last_error.h"
#include "platform/posix/monitor.h"
#include "platform/posix/paths.h"
#include "platform/posix/terminal_line.h"

namespace tw {
namespace {

constexpr std::wstring_view kDevicePrefix = L"\\\\.\\";
constexpr std::string_view kTerminals = "/sys/class/tty";

HandleTable<TerminalLine>& Lines() {
  static auto* const table = new HandleTable<TerminalLine>(HandleKind::line);
  return *table;
}

[[nodiscard]] std::shared_ptr<TerminalLine> FindLine(Handle handle) {
  std::shared_ptr<TerminalLine> line = Lines().Find(handle);
  if (line == nullptr) SetSystemError(EBADF);
  return line;
}

// Takes what waits; negative when the line has failed.
[[nodiscard]] int64_t Take(TerminalLine& line, std::span<uint8_t> out) {
  if (!line.Closed()) return line.Take(out);
  SetSystemError(EBADF);
  return -1;
}

// True for a terminal with a device behind it; those of type 0 are places where none was found.
[[nodiscard]] bool HasDevice(const std::string& name) {
  const std::string folder = std::string(kTerminals) + '/' + name;
  if (access((folder + "/device").c_str(), F_OK) != 0) return false;
  const int type = open((folder + "/type").c_str(), O_RDONLY | O_CLOEXEC);
  char first = '1';
  const bool isNone = type >= 0 && read(type, &first, 1) == 1 && first == '0';
  if (type >= 0) close(type);
  return !isNone;
}

}  // namespace

Handle OpenSerialLine(const wchar_t* name, const char* mode, uint32_t readConstant_ms) {
  std::wstring_view path = name;
  if (path.starts_with(kDevicePrefix)) path.remove_prefix(kDevicePrefix.size());
  if (!path.starts_with(L'/')) {
    SetSystemError(ENOENT);
    return Handle::invalid;
  }
  const std::wstring known(path);
  if (Lines().FindIf([&](const Line& line) { return line.Name() == known; }) != nullptr) {
    SetSystemError(EACCES);
    return Handle::invalid;
  }
  auto line = TerminalLine::Open(known, posix::NarrowedPath(known).Get(), mode, readConstant_ms);
  return line != nullptr ? Lines().Add(std::move(line)) : Handle::invalid;
}

bool ReadSerialLine(Handle handle, void* bytes, uint32_t size, uint32_t& got) {
  got = 0;
  const std::shared_ptr<TerminalLine> line = FindLine(handle);
  if (line == nullptr) return false;
  const int64_t deadline_us = DeadlineAfter_us(line->ReadConstant_ms());
  for (;;) {
    const int64_t taken = Take(*line, {static_cast<uint8_t*>(bytes), size});
    if (taken < 0) return false;
    got = static_cast<uint32_t>(taken);
    if (taken > 0 || size == 0 || Now_us() >= deadline_us) return true;
    line->Await(deadline_us);
  }
}

bool WriteSerialLine(Handle handle, const void* bytes, uint32_t size) {
  const std::shared_ptr<TerminalLine> line = FindLine(handle);
  return line != nullptr && line->Put({static_cast<const uint8_t*>(bytes), size});
}

bool WriteSerialLineWithin(Handle handle, const void* bytes, uint32_t size, uint32_t limit_ms,
                           uint32_t& written) {
  written = 0;
  const std::shared_ptr<TerminalLine> line = FindLine(handle);
  return line != nullptr &&
         line->PutUntil({static_cast<const uint8_t*>(bytes), size}, DeadlineAfter_us(limit_ms), written);
}

uint32_t BytesWaiting(Handle handle, uint32_t*) {
  const std::shared_ptr<TerminalLine> line = Lines().Find(handle);
  return line != nullptr ? line->Waiting() : 0;
}

// The reads of a terminal that has hung up fail by themselves.
bool IsLineThere(Handle handle) {
  const std::shared_ptr<TerminalLine> line = FindLine(handle);
  return line != nullptr && !line->Closed();
}

void CloseSerialLine(Handle handle) {
  const std::shared_ptr<TerminalLine> line = Lines().Remove(handle);
  if (line == nullptr) return;
  line->MarkClosed();
  line->Shut();
}

bool ListSerialLines(void (*take)(void* context, const wchar_t* name), void* context) {
  DIR* const folder = opendir(kTerminals.data());
  if (folder == nullptr) return FailWithErrno();
  std::vector<std::string> names;
  while (const dirent* const entry = readdir(folder)) {  // NOLINT(concurrency-mt-unsafe): the folder is ours
    if (HasDevice(entry->d_name)) names.emplace_back(entry->d_name);
  }
  closedir(folder);
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    wchar_t path[256];
    WidenText(path, "/dev/" + name);
    take(context, path);
  }
  return true;
}

}  // namespace tw
